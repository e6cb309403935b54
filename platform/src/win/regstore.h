// The registry's file: its text form, and reading and replacing it safely.
//
//   ; comment
//   [HKEY_CURRENT_USER\Software\QorSoft\Qor7]
//   "qordir"="D:\\Qor7\\"
//   "Count"=dword:0000000a
//   @="the key's default value"
//
// A key is a line in brackets; its values follow, one a line: a quoted name (or @), '=' and
// the data: "text" (REG_SZ), expand:"text", dword:hex, qword:hex, hex:bytes (REG_BINARY) or
// hex(type):bytes for anything else, bytes as two-digit hex numbers separated by commas. In
// quotes, \\ is a backslash and \" a quote. Data that would not read back the same as text
// (no final NUL, control characters) is written in the hex form. The file is UTF-8.
#pragma once

#include "winreg.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qor::reg {

struct Value {
    std::wstring name; // empty: the default value
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct Key {
    std::wstring path; // from the root: HKEY_CURRENT_USER\Software
    std::vector<Value> values;

    Value* find(std::wstring_view name);
};

// Names compare without regard to ASCII letter case.
std::wstring fold(std::wstring_view s);

// The two roots always exist; every key's parents exist.
class Store {
public:
    Store();
    Key* find(std::wstring_view path);
    // The key, created with any missing parent.
    Key& create(std::wstring_view path);
    // Names of the direct sub-keys, in name order.
    std::vector<std::wstring> children(std::wstring_view path) const;
    const std::map<std::wstring, Key>& keys() const { return mKeys; }

private:
    std::map<std::wstring, Key> mKeys; // by folded path
};

inline constexpr std::wstring_view kCurrentUser = L"HKEY_CURRENT_USER";
inline constexpr std::wstring_view kLocalMachine = L"HKEY_LOCAL_MACHINE";

// Splits a key path on '\'. False for a leading '\', an empty part or a control character; a
// trailing '\' is dropped.
bool splitPath(std::wstring_view path, std::vector<std::wstring>& parts);

struct ParseError {
    int line = 0;
    std::string reason;
};
bool parseStore(std::string_view text, Store& store, ParseError& error);
std::string formatStore(const Store& store);

// The store file of this process (see winreg.h); empty when no folder can be found for it.
std::string storePath();

struct Loaded {
    Store store;
    bool damaged = false; // unreadable or not in the form above; reads as empty
};
// A missing file is an empty store. A damaged one is reported on standard error once for
// each state of the file.
Loaded loadStore(const std::string& path);

// Applies change to the current store under the writers' lock and, when it says it changed
// something, replaces the file. Returns the change's code, ERROR_BADDB for a damaged store,
// or the code of a failed write.
LONG updateStore(const std::string& path, const std::function<LONG(Store&, bool& changed)>& change);

} // namespace qor::reg
