// The suite's registry values.
#include "module/settings.h"

namespace {

// The suite key and a sub-key, with one "\" between them.
CString joinKey(CString key, const CString& subKey) {
    if (key.Right(1) != L"\\") key += L'\\';
    return key + subKey;
}

int setString(HKEY key, const CString& valueName, const CString& value) {
    const auto bytes = static_cast<DWORD>((value.GetLength() + 1) * sizeof(wchar_t));
    const LONG r = RegSetValueExW(key, valueName, 0, REG_SZ,
                                  reinterpret_cast<const BYTE*>(value.GetString()), bytes);
    RegCloseKey(key);
    return r == ERROR_SUCCESS ? 1 : 0;
}

} // namespace

int M_GetRegStr(HKEY root, CString subKey, CString valueName, CString& out) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, subKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
    wchar_t buf[260] = {};
    DWORD size = sizeof buf, type = REG_NONE;
    const LONG r =
        RegQueryValueExW(key, valueName, nullptr, &type, reinterpret_cast<LPBYTE>(buf), &size);
    RegCloseKey(key);
    if (r != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return 0;
    // The stored text need not end with a NUL; take no more than was returned.
    const size_t count = size / sizeof(wchar_t);
    size_t length = 0;
    while (length < count && buf[length])
        ++length;
    out = CString(buf, static_cast<int>(length));
    return 1;
}

int M_GetQorReg(CString valueName, CString& out) {
    return M_GetRegStr(HKEY_CURRENT_USER, kQorRegKey, valueName, out);
}

int M_GetQorReg(CString subKey, CString valueName, CString& out) {
    return M_GetRegStr(HKEY_CURRENT_USER, joinKey(kQorRegKey, subKey), valueName, out);
}

int M_SetQorReg(CString valueName, CString value) {
    HKEY key = nullptr;
    if (RegOpenKeyW(HKEY_CURRENT_USER, kQorRegKey, &key) != ERROR_SUCCESS) return 0;
    return setString(key, valueName, value);
}

int M_SetQorReg(CString subKey, CString valueName, CString value) {
    HKEY key = nullptr;
    if (RegCreateKeyW(HKEY_CURRENT_USER, joinKey(kQorRegKey, subKey), &key) != ERROR_SUCCESS)
        return 0;
    return setString(key, valueName, value);
}
