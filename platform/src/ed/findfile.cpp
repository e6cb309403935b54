// acedFindFile and the host's support folders.
#include "acedfile.h"

#include "dbmain.h"
#include "win/nativepath.h"

#include <cwchar>
#include <filesystem>
#include <mutex>

namespace fs = std::filesystem;

namespace {

std::mutex gFoldersMutex;
std::vector<std::wstring> gFolders;

bool isFile(const fs::path& p) {
    std::error_code ec;
    return fs::is_regular_file(p, ec);
}

bool found(const fs::path& candidate, std::string& out) {
    if (!isFile(candidate)) return false;
    std::error_code ec;
    const fs::path full = fs::absolute(candidate, ec);
    out = (ec ? candidate : full).lexically_normal().string();
    return true;
}

bool search(const std::string& name, std::string& out) {
    const fs::path file(name);
    if (file.is_absolute()) return found(file, out);
    if (const AcDbDatabase* db = acdbCurDwg()) {
        const std::string drawing = qorNativePath(db->originalFileName());
        if (!drawing.empty() && found(fs::path(drawing).parent_path() / file, out)) return true;
    }
    for (const std::wstring& folder : qorSupportFolders())
        if (!folder.empty() && found(fs::path(qorNativePath(folder.c_str())) / file, out))
            return true;
    return found(file, out);
}

} // namespace

void qorSetSupportFolders(std::vector<std::wstring> folders) {
    std::lock_guard lock(gFoldersMutex);
    gFolders = std::move(folders);
}

std::vector<std::wstring> qorSupportFolders() {
    std::lock_guard lock(gFoldersMutex);
    return gFolders;
}

int acedFindFile(const ACHAR* fname, ACHAR* result, size_t bufLen) {
    if (!result || bufLen == 0) return RTERROR;
    result[0] = 0;
    if (!fname || !*fname) return RTERROR;
    std::string path;
    if (!search(qorNativePath(fname), path)) return RTERROR;
    const std::wstring wide = qorFromUtf8(path);
    if (wide.size() >= bufLen) return RTERROR;
    std::wmemcpy(result, wide.c_str(), wide.size() + 1);
    return RTNORM;
}

int acedFindFile(const ACHAR* fname, ACHAR* result) {
    return acedFindFile(fname, result, MAX_PATH);
}
