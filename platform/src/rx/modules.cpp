// Module loading: built-in platform modules by name, other modules as shared libraries.
#include "rxinternal.h"

#include "dbraster.h"

#include <algorithm>
#include <cstdio>
#include <dlfcn.h>
#include <map>
#include <string>

namespace {

using EntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);

struct LoadedModule {
    std::wstring name;
    void* handle = nullptr;
    EntryPoint entry = nullptr;
};

std::vector<LoadedModule>& loadedModules() {
    static std::vector<LoadedModule> modules;
    return modules;
}

// Built-in modules and how many times each is loaded.
std::map<std::wstring, int>& builtinLoads() {
    static std::map<std::wstring, int> loads;
    return loads;
}

std::wstring lowerBaseName(const ACHAR* name) {
    std::wstring s(name);
    auto slash = s.find_last_of(L"/\\");
    if (slash != std::wstring::npos) s.erase(0, slash + 1);
    std::transform(s.begin(), s.end(), s.begin(),
                   [](wchar_t c) { return c >= L'A' && c <= L'Z' ? c + 32 : c; });
    return s;
}

bool isBuiltin(const std::wstring& base) {
    return base == L"acismui.arx" || base == L"acismobj.dbx";
}

std::string narrowPath(const std::wstring& w) {
    std::string s;
    for (wchar_t c : w) {
        if (c < 0x80)
            s += static_cast<char>(c);
        else if (c < 0x800) {
            s += static_cast<char>(0xC0 | (c >> 6));
            s += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            s += static_cast<char>(0xE0 | (c >> 12));
            s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            s += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            s += static_cast<char>(0xF0 | (c >> 18));
            s += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            s += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    for (auto& ch : s)
        if (ch == '\\') ch = '/';
    return s;
}

std::wstring gLastError;

} // namespace

const std::wstring& acrxLastModuleError() {
    return gLastError;
}

bool acrxLoadModule(const ACHAR* moduleName, bool printit, bool /*asCmd*/) {
    if (!moduleName || !*moduleName) return false;
    acrxSysRegistry();
    const std::wstring base = lowerBaseName(moduleName);
    if (isBuiltin(base)) {
        // The image-support module brings the raster-image class with it.
        if (builtinLoads()[base]++ == 0) acrxAddPlatformClass(AcDbRasterImage::desc());
        return true;
    }
    for (const auto& m : loadedModules())
        if (m.name == moduleName) return true;

    const std::string path = narrowPath(moduleName);
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle) {
        const char* err = dlerror();
        gLastError =
            L"cannot load module " + std::wstring(moduleName) + L": " +
            std::wstring(err ? err : "", err ? err + std::char_traits<char>::length(err) : nullptr);
        if (printit) std::fprintf(stderr, "%ls\n", gLastError.c_str());
        return false;
    }
    auto entry = reinterpret_cast<EntryPoint>(dlsym(handle, "acrxEntryPoint"));
    if (!entry) {
        gLastError = L"module " + std::wstring(moduleName) + L" has no acrxEntryPoint";
        if (printit) std::fprintf(stderr, "%ls\n", gLastError.c_str());
        dlclose(handle);
        return false;
    }
    loadedModules().push_back({moduleName, handle, entry});
    acrxSetCurrentModule(moduleName);
    entry(AcRx::kInitAppMsg, handle);
    acrxSetCurrentModule(L"");
    return true;
}

bool acrxUnloadModule(const ACHAR* moduleName, bool /*asCmd*/) {
    if (!moduleName) return false;
    const std::wstring base = lowerBaseName(moduleName);
    if (isBuiltin(base)) {
        auto it = builtinLoads().find(base);
        if (it == builtinLoads().end() || it->second == 0) return false;
        if (--it->second == 0) acrxRemovePlatformClass(AcDbRasterImage::desc());
        return true;
    }
    auto& modules = loadedModules();
    auto it = std::find_if(modules.begin(), modules.end(),
                           [&](const LoadedModule& m) { return m.name == moduleName; });
    if (it == modules.end()) return false;
    LoadedModule m = *it;
    modules.erase(it);
    acrxSetCurrentModule(m.name);
    m.entry(AcRx::kUnloadAppMsg, m.handle);
    acrxSetCurrentModule(L"");
    dlclose(m.handle);
    return true;
}

std::vector<std::wstring> acrxLoadedModules() {
    std::vector<std::wstring> names;
    for (const auto& m : loadedModules())
        names.push_back(m.name);
    return names;
}
