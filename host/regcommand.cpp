// qor reg get KEY VALUE | set KEY VALUE DATA | list [KEY]
#include "host/regcommand.h"

#include "winreg.h"
#include "winstr.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

struct RegArgs {
    std::string key, value, data;
};

int failWith(const std::string& message) {
    return fail(qorFromUtf8(message));
}

std::string describe(LONG code) {
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
        return "not found";
    case ERROR_ACCESS_DENIED:
        return "permission denied on " + qorToUtf8(qorRegistryPath());
    case ERROR_BADDB:
        return "the registry store " + qorToUtf8(qorRegistryPath()) +
               " is damaged; fix or remove it first";
    case ERROR_REGISTRY_IO_FAILED:
        return "the registry store " + qorToUtf8(qorRegistryPath()) + " could not be written";
    case ERROR_BAD_PATHNAME:
        return "malformed key path";
    case ERROR_INVALID_PARAMETER:
        return "invalid name";
    default:
        return "registry error " + std::to_string(code);
    }
}

// A key as people type it: from HKEY_CURRENT_USER unless it starts with a root (HKCU and HKLM
// for short); '/' separates like '\'.
struct KeyPath {
    HKEY root = HKEY_CURRENT_USER;
    std::wstring sub;
    std::wstring shown() const {
        std::wstring s = root == HKEY_CURRENT_USER ? L"HKEY_CURRENT_USER" : L"HKEY_LOCAL_MACHINE";
        return sub.empty() ? s : s + L"\\" + sub;
    }
};

KeyPath parseKey(const std::string& text) {
    KeyPath k;
    std::wstring s = qorFromUtf8(text);
    for (wchar_t& c : s)
        if (c == L'/') c = L'\\';
    const size_t cut = s.find(L'\\');
    const CString first(s.substr(0, cut));
    bool rooted = true;
    if (first.CompareNoCase(L"HKEY_CURRENT_USER") == 0 || first.CompareNoCase(L"HKCU") == 0)
        k.root = HKEY_CURRENT_USER;
    else if (first.CompareNoCase(L"HKEY_LOCAL_MACHINE") == 0 || first.CompareNoCase(L"HKLM") == 0)
        k.root = HKEY_LOCAL_MACHINE;
    else
        rooted = false;
    k.sub = !rooted ? s : cut == std::wstring::npos ? std::wstring() : s.substr(cut + 1);
    return k;
}

// Closes a key at the end of the scope.
struct OpenKey {
    HKEY h = nullptr;
    ~OpenKey() {
        if (h) RegCloseKey(h);
    }
};

std::string typeName(DWORD type) {
    switch (type) {
    case REG_SZ:
        return "REG_SZ";
    case REG_EXPAND_SZ:
        return "REG_EXPAND_SZ";
    case REG_BINARY:
        return "REG_BINARY";
    case REG_DWORD:
        return "REG_DWORD";
    case REG_MULTI_SZ:
        return "REG_MULTI_SZ";
    case REG_QWORD:
        return "REG_QWORD";
    default:
        return "type " + std::to_string(type);
    }
}

// Text values as text (to their first NUL), numbers in decimal, anything else as hex bytes.
std::string dataText(DWORD type, const std::vector<BYTE>& data) {
    if ((type == REG_SZ || type == REG_EXPAND_SZ) && data.size() % sizeof(wchar_t) == 0) {
        std::wstring text(data.size() / sizeof(wchar_t), L'\0');
        std::memcpy(text.data(), data.data(), data.size());
        return qorToUtf8(text.c_str());
    }
    if (type == REG_DWORD && data.size() == 4) {
        DWORD d;
        std::memcpy(&d, data.data(), 4);
        return std::to_string(d);
    }
    if (type == REG_QWORD && data.size() == 8) {
        unsigned long long q;
        std::memcpy(&q, data.data(), 8);
        return std::to_string(q);
    }
    std::string out;
    char buf[4];
    for (size_t i = 0; i < data.size(); ++i) {
        std::snprintf(buf, sizeof buf, i ? " %02x" : "%02x", data[i]);
        out += buf;
    }
    return out;
}

int getValue(const RegArgs& args) {
    const KeyPath k = parseKey(args.key);
    OpenKey key;
    LONG r = RegOpenKeyExW(k.root, k.sub.c_str(), 0, KEY_READ, &key.h);
    if (r != ERROR_SUCCESS) return failWith("key " + qorToUtf8(k.shown()) + ": " + describe(r));
    const std::wstring name = qorFromUtf8(args.value);
    DWORD type = 0, size = 0;
    r = RegQueryValueExW(key.h, name.c_str(), nullptr, &type, nullptr, &size);
    std::vector<BYTE> data(size);
    if (r == ERROR_SUCCESS)
        r = RegQueryValueExW(key.h, name.c_str(), nullptr, &type, data.data(), &size);
    if (r != ERROR_SUCCESS)
        return failWith("value " + args.value + " of " + qorToUtf8(k.shown()) + ": " + describe(r));
    data.resize(size);
    std::printf("%s\n", dataText(type, data).c_str());
    return 0;
}

int setValue(const RegArgs& args) {
    const KeyPath k = parseKey(args.key);
    OpenKey key;
    LONG r = RegCreateKeyW(k.root, k.sub.c_str(), &key.h);
    if (r != ERROR_SUCCESS) return failWith("key " + qorToUtf8(k.shown()) + ": " + describe(r));
    const std::wstring name = qorFromUtf8(args.value), data = qorFromUtf8(args.data);
    r = RegSetValueExW(key.h, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(data.c_str()),
                       static_cast<DWORD>((data.size() + 1) * sizeof(wchar_t)));
    if (r != ERROR_SUCCESS)
        return failWith("value " + args.value + " of " + qorToUtf8(k.shown()) + ": " + describe(r));
    return 0;
}

// Prints a key's values, then its sub-keys the same way.
LONG listKey(HKEY key, const std::wstring& shown) {
    std::printf("%s\n", qorToUtf8(shown).c_str());
    for (DWORD i = 0;; ++i) {
        std::wstring name(16384, L'\0');
        DWORD nameLength = 16384, type = 0, size = 0;
        LONG r = RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, nullptr, &size);
        if (r == ERROR_NO_MORE_ITEMS) break;
        if (r != ERROR_SUCCESS) return r;
        std::vector<BYTE> data(size);
        name.resize(nameLength);
        r = RegQueryValueExW(key, name.c_str(), nullptr, &type, data.data(), &size);
        if (r != ERROR_SUCCESS) return r;
        data.resize(size);
        std::printf("    %s    %s    %s\n", nameLength ? qorToUtf8(name).c_str() : "(Default)",
                    typeName(type).c_str(), dataText(type, data).c_str());
    }
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD nameLength = 256;
        LONG r = RegEnumKeyExW(key, i, name, &nameLength, nullptr, nullptr, nullptr, nullptr);
        if (r == ERROR_NO_MORE_ITEMS) break;
        if (r != ERROR_SUCCESS) return r;
        OpenKey sub;
        r = RegOpenKeyExW(key, name, 0, KEY_READ, &sub.h);
        if (r != ERROR_SUCCESS) return r;
        std::printf("\n");
        r = listKey(sub.h, shown + L"\\" + name);
        if (r != ERROR_SUCCESS) return r;
    }
    return ERROR_SUCCESS;
}

int listValues(const RegArgs& args) {
    const KeyPath k = parseKey(args.key);
    OpenKey key;
    LONG r = RegOpenKeyExW(k.root, k.sub.c_str(), 0, KEY_READ, &key.h);
    if (r == ERROR_SUCCESS) r = listKey(key.h, k.shown());
    if (r != ERROR_SUCCESS) return failWith("key " + qorToUtf8(k.shown()) + ": " + describe(r));
    return 0;
}

} // namespace

void addRegCommand(CLI::App& app, QorAction& action) {
    auto args = std::make_shared<RegArgs>();
    auto* reg = app.add_subcommand("reg", "read and write the registry store (QOR_REGISTRY, or "
                                          "~/.config/qor/registry)");
    reg->require_subcommand(1);
    const char* keyHelp = "key, from HKEY_CURRENT_USER unless it starts with HKEY_CURRENT_USER "
                          "(HKCU) or HKEY_LOCAL_MACHINE (HKLM); \\ or / between names";

    auto* get = reg->add_subcommand("get", "print a value");
    get->add_option("key", args->key, keyHelp)->required();
    get->add_option("value", args->value, "value name; \"\" for the default value")->required();
    get->callback([&action, args] { action = [args] { return getValue(*args); }; });

    auto* set = reg->add_subcommand("set", "write a text value (REG_SZ), creating the key");
    set->add_option("key", args->key, keyHelp)->required();
    set->add_option("value", args->value, "value name; \"\" for the default value")->required();
    set->add_option("data", args->data, "the text")->required();
    set->callback([&action, args] { action = [args] { return setValue(*args); }; });

    auto* list = reg->add_subcommand("list", "print a key's values and every key below it");
    list->add_option("key", args->key, std::string(keyHelp) + " (default: HKEY_CURRENT_USER)");
    list->callback([&action, args] { action = [args] { return listValues(*args); }; });
}
