// The registry: keys and values of HKEY_CURRENT_USER (and HKEY_LOCAL_MACHINE) kept in one
// text file per user, with the Windows functions and result codes.
//
// The file is $QOR_REGISTRY when that is set, else $XDG_CONFIG_HOME/qor/registry, else
// ~/.config/qor/registry. Every call reads it afresh, so a change made by another process is
// seen at once. A change is written to a temporary file that then replaces the store, under a
// lock on a file beside it (registry.lock) that orders concurrent writers; readers never see
// half a file, and comments in the file are not kept. A damaged store is
// reported once on standard error and reads as empty; it is never overwritten (writes fail
// with ERROR_BADDB) until it is fixed or removed.
//
// Byte counts are in bytes of the data as given: a REG_SZ value is wide text with its
// terminating NUL, (characters + 1) * sizeof(wchar_t) bytes.
#pragma once

#include "winerror.h"
#include "winstr.h"

#include <string>

struct HKEY__;
using HKEY = HKEY__*;
using PHKEY = HKEY*;
using REGSAM = DWORD;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
using PFILETIME = FILETIME*;

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000000u)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000001u)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000002u)))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000003u)))

// Value types
#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_LITTLE_ENDIAN 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_QWORD 11

// Access rights. A handle opened without a right gets ERROR_ACCESS_DENIED for what needs it.
#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_NOTIFY 0x0010
#define KEY_CREATE_LINK 0x0020
#define KEY_WOW64_64KEY 0x0100
#define KEY_WOW64_32KEY 0x0200
#define KEY_READ 0x20019
#define KEY_WRITE 0x20006
#define KEY_EXECUTE 0x20019
#define KEY_ALL_ACCESS 0xF003F
#define MAXIMUM_ALLOWED 0x02000000

// Sub-key paths are separated by '\'; a trailing '\' is ignored, a leading one or an empty
// part is ERROR_BAD_PATHNAME. Names compare without regard to ASCII letter case. A missing
// key or value is ERROR_FILE_NOT_FOUND. HKEY_CLASSES_ROOT and HKEY_USERS are not kept: they,
// like a closed handle, are ERROR_INVALID_HANDLE.
LONG RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                   PHKEY phkResult);
// Opens with every right.
LONG RegOpenKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult);
// Opens the key, creating it and any missing parent, with every right.
LONG RegCreateKeyW(HKEY hKey, LPCWSTR lpSubKey, PHKEY phkResult);
LONG RegCloseKey(HKEY hKey);

// A null or empty name is the key's default value. With lpData null, *lpcbData receives the
// size; with a buffer too small, ERROR_MORE_DATA and the size needed in *lpcbData.
LONG RegQueryValueExW(HKEY hKey, LPCWSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                      LPBYTE lpData, LPDWORD lpcbData);
LONG RegSetValueExW(HKEY hKey, LPCWSTR lpValueName, DWORD Reserved, DWORD dwType,
                    const BYTE* lpData, DWORD cbData);

// The dwIndex-th sub-key (in name order) or value (in the order written); ERROR_NO_MORE_ITEMS
// past the last. *lpcchName holds the buffer's size in characters and receives the name's
// length without its NUL. Keys have no class and no write time here (both come back empty).
LONG RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved,
                   LPWSTR lpClass, LPDWORD lpcchClass, PFILETIME lpftLastWriteTime);
LONG RegEnumValueW(HKEY hKey, DWORD dwIndex, LPWSTR lpValueName, LPDWORD lpcchValueName,
                   LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);

// Where the store of this process is, for messages.
std::wstring qorRegistryPath();
