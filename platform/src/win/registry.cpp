// The registry functions over the file-backed store.
#include "winreg.h"

#include "win/regstore.h"

#include <cstring>
#include <mutex>
#include <unordered_set>

// An open key: its path from the root and the rights it was opened with.
struct HKEY__ {
    std::wstring path;
    REGSAM access;
};

namespace {

using qor::reg::Key;
using qor::reg::Loaded;
using qor::reg::Store;
using qor::reg::Value;

constexpr REGSAM kAllRights = KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY |
                              KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY | KEY_CREATE_LINK;

// Open handles, so that a stale or foreign one is refused rather than followed.
std::mutex gHandlesMutex;
std::unordered_set<HKEY> gHandles;

// The key a handle stands for, and its rights.
LONG resolve(HKEY key, std::wstring& path, REGSAM& access) {
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) {
        path = key == HKEY_CURRENT_USER ? qor::reg::kCurrentUser : qor::reg::kLocalMachine;
        access = kAllRights;
        return ERROR_SUCCESS;
    }
    std::lock_guard lock(gHandlesMutex);
    if (!key || !gHandles.count(key)) return ERROR_INVALID_HANDLE;
    path = key->path;
    access = key->access;
    return ERROR_SUCCESS;
}

// The path of subKey below the handle's key.
LONG resolveSub(HKEY key, LPCWSTR subKey, std::wstring& path, REGSAM& access) {
    if (const LONG r = resolve(key, path, access); r != ERROR_SUCCESS) return r;
    std::vector<std::wstring> parts;
    if (!qor::reg::splitPath(subKey ? subKey : L"", parts)) return ERROR_BAD_PATHNAME;
    for (const std::wstring& part : parts)
        path += L'\\' + part;
    return ERROR_SUCCESS;
}

HKEY newHandle(Key& key, REGSAM access) {
    HKEY h = new HKEY__{key.path, access};
    std::lock_guard lock(gHandlesMutex);
    gHandles.insert(h);
    return h;
}

REGSAM rightsOf(REGSAM desired) {
    return (desired & MAXIMUM_ALLOWED) ? kAllRights : desired & kAllRights;
}

LONG openKey(HKEY key, LPCWSTR subKey, REGSAM rights, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolveSub(key, subKey, path, access); r != ERROR_SUCCESS) return r;
    Loaded loaded = qor::reg::loadStore(qor::reg::storePath());
    Key* found = loaded.store.find(path);
    if (!found) return ERROR_FILE_NOT_FOUND;
    *result = newHandle(*found, rights);
    return ERROR_SUCCESS;
}

// Copies a name for the enumerators: *size is the buffer in characters and becomes the
// name's length.
LONG copyName(const std::wstring& name, LPWSTR buffer, LPDWORD size) {
    if (!buffer || !size) return ERROR_INVALID_PARAMETER;
    if (*size <= name.size()) {
        *size = static_cast<DWORD>(name.size());
        return ERROR_MORE_DATA;
    }
    std::wmemcpy(buffer, name.c_str(), name.size() + 1);
    *size = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

// Type and data of a value, by the query conventions.
LONG copyData(const Value& v, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (data && !size) return ERROR_INVALID_PARAMETER;
    if (type) *type = v.type;
    if (!size) return ERROR_SUCCESS;
    const auto needed = static_cast<DWORD>(v.data.size());
    if (data && *size < needed) {
        *size = needed;
        return ERROR_MORE_DATA;
    }
    if (data && needed) std::memcpy(data, v.data.data(), needed);
    *size = needed;
    return ERROR_SUCCESS;
}

} // namespace

std::wstring qorRegistryPath() {
    return qorFromUtf8(qor::reg::storePath());
}

LONG RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD, REGSAM samDesired, PHKEY phkResult) {
    return openKey(hKey, lpSubKey, rightsOf(samDesired), phkResult);
}

LONG RegOpenKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult) {
    return openKey(hKey, lpSubKey, kAllRights, phkResult);
}

LONG RegCreateKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult) {
    if (!phkResult) return ERROR_INVALID_PARAMETER;
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolveSub(hKey, lpSubKey, path, access); r != ERROR_SUCCESS) return r;
    const std::string file = qor::reg::storePath();
    {
        Loaded loaded = qor::reg::loadStore(file);
        if (Key* found = loaded.store.find(path)) {
            *phkResult = newHandle(*found, kAllRights);
            return ERROR_SUCCESS;
        }
    }
    if (!(access & KEY_CREATE_SUB_KEY)) return ERROR_ACCESS_DENIED;
    std::wstring base;
    REGSAM unused = 0;
    resolve(hKey, base, unused);
    HKEY created = nullptr;
    const LONG r = qor::reg::updateStore(file, [&](Store& store, bool& changed) {
        // The key the handle stands for must still be there to grow from.
        if (!store.find(base)) return static_cast<LONG>(ERROR_KEY_DELETED);
        changed = !store.find(path);
        created = newHandle(store.create(path), kAllRights);
        return static_cast<LONG>(ERROR_SUCCESS);
    });
    if (r != ERROR_SUCCESS && created) {
        RegCloseKey(created);
        created = nullptr;
    }
    if (r == ERROR_SUCCESS) *phkResult = created;
    return r;
}

LONG RegCloseKey(HKEY hKey) {
    if (hKey == HKEY_CURRENT_USER || hKey == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
    {
        std::lock_guard lock(gHandlesMutex);
        if (!hKey || !gHandles.erase(hKey)) return ERROR_INVALID_HANDLE;
    }
    delete hKey;
    return ERROR_SUCCESS;
}

LONG RegQueryValueExW(HKEY hKey, LPCWSTR lpValueName, LPDWORD, LPDWORD lpType, LPBYTE lpData,
                      LPDWORD lpcbData) {
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolve(hKey, path, access); r != ERROR_SUCCESS) return r;
    if (!(access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
    Loaded loaded = qor::reg::loadStore(qor::reg::storePath());
    Key* key = loaded.store.find(path);
    if (!key) return ERROR_KEY_DELETED;
    const Value* v = key->find(lpValueName ? lpValueName : L"");
    if (!v) return ERROR_FILE_NOT_FOUND;
    return copyData(*v, lpType, lpData, lpcbData);
}

LONG RegSetValueExW(HKEY hKey, LPCWSTR lpValueName, DWORD, DWORD dwType, const BYTE* lpData,
                    DWORD cbData) {
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolve(hKey, path, access); r != ERROR_SUCCESS) return r;
    if (!(access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
    if (!lpData && cbData) return ERROR_INVALID_PARAMETER;
    const std::wstring name = lpValueName ? lpValueName : L"";
    // A line break in a name could not be kept in the store's one-value-a-line form.
    for (wchar_t c : name)
        if (c < 0x20 || c == 0x7F) return ERROR_INVALID_PARAMETER;
    std::vector<BYTE> data(lpData, lpData + cbData);
    return qor::reg::updateStore(qor::reg::storePath(), [&](Store& store, bool& changed) {
        Key* key = store.find(path);
        if (!key) return static_cast<LONG>(ERROR_KEY_DELETED);
        if (Value* old = key->find(name)) {
            changed = old->type != dwType || old->data != data;
            old->type = dwType;
            old->data = data;
        } else {
            key->values.push_back(Value{name, dwType, data});
            changed = true;
        }
        return static_cast<LONG>(ERROR_SUCCESS);
    });
}

LONG RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName, LPDWORD,
                   LPWSTR lpClass, LPDWORD lpcchClass, PFILETIME lpftLastWriteTime) {
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolve(hKey, path, access); r != ERROR_SUCCESS) return r;
    if (!(access & KEY_ENUMERATE_SUB_KEYS)) return ERROR_ACCESS_DENIED;
    Loaded loaded = qor::reg::loadStore(qor::reg::storePath());
    if (!loaded.store.find(path)) return ERROR_KEY_DELETED;
    const std::vector<std::wstring> names = loaded.store.children(path);
    if (dwIndex >= names.size()) return ERROR_NO_MORE_ITEMS;
    const LONG r = copyName(names[dwIndex], lpName, lpcchName);
    if (r != ERROR_SUCCESS) return r;
    if (lpClass && lpcchClass && *lpcchClass > 0) lpClass[0] = 0;
    if (lpcchClass) *lpcchClass = 0;
    if (lpftLastWriteTime) *lpftLastWriteTime = FILETIME{0, 0};
    return ERROR_SUCCESS;
}

LONG RegEnumValueW(HKEY hKey, DWORD dwIndex, LPWSTR lpValueName, LPDWORD lpcchValueName, LPDWORD,
                   LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData) {
    std::wstring path;
    REGSAM access = 0;
    if (const LONG r = resolve(hKey, path, access); r != ERROR_SUCCESS) return r;
    if (!(access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
    Loaded loaded = qor::reg::loadStore(qor::reg::storePath());
    Key* key = loaded.store.find(path);
    if (!key) return ERROR_KEY_DELETED;
    if (dwIndex >= key->values.size()) return ERROR_NO_MORE_ITEMS;
    const Value& v = key->values[dwIndex];
    if (const LONG r = copyName(v.name, lpValueName, lpcchValueName); r != ERROR_SUCCESS) return r;
    return copyData(v, lpType, lpData, lpcbData);
}
