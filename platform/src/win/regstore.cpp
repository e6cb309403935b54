// The registry's file form and its safe replacement.
#include "win/regstore.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qor::reg {

// ---------------------------------------------------------------- keys and values

std::wstring fold(std::wstring_view s) {
    std::wstring out(s);
    for (wchar_t& c : out)
        if (c >= L'a' && c <= L'z') c = c - L'a' + L'A';
    return out;
}

Value* Key::find(std::wstring_view name) {
    const std::wstring folded = fold(name);
    for (Value& v : values)
        if (fold(v.name) == folded) return &v;
    return nullptr;
}

Store::Store() {
    create(kCurrentUser);
    create(kLocalMachine);
}

Key* Store::find(std::wstring_view path) {
    auto it = mKeys.find(fold(path));
    return it == mKeys.end() ? nullptr : &it->second;
}

Key& Store::create(std::wstring_view path) {
    const size_t cut = path.rfind(L'\\');
    if (cut != std::wstring_view::npos) create(path.substr(0, cut));
    auto [it, added] = mKeys.try_emplace(fold(path));
    if (added) it->second.path = path;
    return it->second;
}

std::vector<std::wstring> Store::children(std::wstring_view path) const {
    const std::wstring prefix = fold(path) + L'\\';
    std::vector<std::wstring> names;
    for (auto it = mKeys.lower_bound(prefix); it != mKeys.end(); ++it) {
        if (it->first.compare(0, prefix.size(), prefix) != 0) break;
        const std::wstring_view rest = std::wstring_view(it->second.path).substr(prefix.size());
        if (rest.find(L'\\') == std::wstring_view::npos) names.emplace_back(rest);
    }
    return names;
}

bool splitPath(std::wstring_view path, std::vector<std::wstring>& parts) {
    parts.clear();
    if (!path.empty() && path.back() == L'\\') path.remove_suffix(1);
    if (path.empty()) return true;
    size_t start = 0;
    while (true) {
        const size_t cut = path.find(L'\\', start);
        const std::wstring_view part = path.substr(start, cut - start);
        if (part.empty()) return false;
        for (wchar_t c : part)
            if (c < 0x20 || c == 0x7F) return false;
        parts.emplace_back(part);
        if (cut == std::wstring_view::npos) return true;
        start = cut + 1;
    }
}

// ---------------------------------------------------------------- reading the text form

namespace {

bool isRoot(std::wstring_view s) {
    return fold(s) == kCurrentUser || fold(s) == kLocalMachine;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

void skipSpaces(std::string_view& s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
}

bool takePrefix(std::string_view& s, std::string_view prefix) {
    if (s.substr(0, prefix.size()) != prefix) return false;
    s.remove_prefix(prefix.size());
    return true;
}

// Each genuine U+FFFD of the text is the bytes EF BF BD; any other marks bytes that are not
// UTF-8.
bool decodeUtf8(std::string_view bytes, std::wstring& out) {
    out = qorFromUtf8(bytes);
    size_t genuine = 0, found = 0;
    for (size_t p = bytes.find("\xEF\xBF\xBD"); p != std::string_view::npos;
         p = bytes.find("\xEF\xBF\xBD", p + 3))
        ++genuine;
    for (wchar_t c : out)
        if (c == 0xFFFD) ++found;
    return genuine == found;
}

// A quoted string at the front of s, consumed.
bool takeQuoted(std::string_view& s, std::wstring& out, std::string& reason) {
    if (!takePrefix(s, "\"")) {
        reason = "a quoted text was expected";
        return false;
    }
    std::string raw;
    while (true) {
        if (s.empty()) {
            reason = "the closing quote is missing";
            return false;
        }
        const char c = s.front();
        s.remove_prefix(1);
        if (c == '"') break;
        if (c == '\\') {
            if (s.empty() || (s.front() != '\\' && s.front() != '"')) {
                reason = "a backslash in quotes must be written \\\\ (or \\\" for a quote)";
                return false;
            }
            raw += s.front();
            s.remove_prefix(1);
            continue;
        }
        raw += c;
    }
    if (!decodeUtf8(raw, out)) {
        reason = "the text is not UTF-8";
        return false;
    }
    return true;
}

bool takeHexNumber(std::string_view s, size_t maxDigits, unsigned long long& v) {
    if (s.empty() || s.size() > maxDigits) return false;
    v = 0;
    for (char c : s) {
        const int d = hexDigit(c);
        if (d < 0) return false;
        v = v << 4 | static_cast<unsigned>(d);
    }
    return true;
}

bool takeHexBytes(std::string_view s, std::vector<BYTE>& bytes) {
    skipSpaces(s);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    if (s.empty()) return true;
    while (true) {
        skipSpaces(s);
        size_t n = 0;
        while (n < s.size() && hexDigit(s[n]) >= 0)
            ++n;
        unsigned long long v = 0;
        if (n == 0 || n > 2 || !takeHexNumber(s.substr(0, n), 2, v)) return false;
        bytes.push_back(static_cast<BYTE>(v));
        s.remove_prefix(n);
        skipSpaces(s);
        if (s.empty()) return true;
        if (!takePrefix(s, ",")) return false;
    }
}

std::vector<BYTE> textBytes(const std::wstring& text) {
    std::vector<BYTE> bytes((text.size() + 1) * sizeof(wchar_t));
    std::memcpy(bytes.data(), text.c_str(), bytes.size());
    return bytes;
}

bool parseData(std::string_view s, Value& v, std::string& reason) {
    std::wstring text;
    const bool expand = takePrefix(s, "expand:");
    if (expand || s.substr(0, 1) == "\"") {
        v.type = expand ? REG_EXPAND_SZ : REG_SZ;
        if (!takeQuoted(s, text, reason)) return false;
        v.data = textBytes(text);
    } else if (takePrefix(s, "dword:")) {
        unsigned long long n = 0;
        if (!takeHexNumber(s, 8, n)) {
            reason = "dword: takes one to eight hex digits";
            return false;
        }
        v.type = REG_DWORD;
        const auto d = static_cast<DWORD>(n);
        v.data.resize(4);
        std::memcpy(v.data.data(), &d, 4);
        s = {};
    } else if (takePrefix(s, "qword:")) {
        unsigned long long n = 0;
        if (!takeHexNumber(s, 16, n)) {
            reason = "qword: takes one to sixteen hex digits";
            return false;
        }
        v.type = REG_QWORD;
        v.data.resize(8);
        std::memcpy(v.data.data(), &n, 8);
        s = {};
    } else if (takePrefix(s, "hex")) {
        v.type = REG_BINARY;
        if (takePrefix(s, "(")) {
            const size_t close = s.find(')');
            unsigned long long t = 0;
            if (close == std::string_view::npos || !takeHexNumber(s.substr(0, close), 8, t)) {
                reason = "hex(type): takes the type in hex";
                return false;
            }
            v.type = static_cast<DWORD>(t);
            s.remove_prefix(close + 1);
        }
        if (!takePrefix(s, ":") || !takeHexBytes(s, v.data)) {
            reason = "hex: takes bytes as two-digit hex numbers separated by commas";
            return false;
        }
        s = {};
    } else {
        reason = "the data must be \"text\", expand:, dword:, qword: or hex:";
        return false;
    }
    skipSpaces(s);
    if (!s.empty()) {
        reason = "unexpected text after the data";
        return false;
    }
    return true;
}

bool parseValueLine(std::string_view line, Value& v, std::string& reason) {
    if (!takePrefix(line, "@")) {
        if (!takeQuoted(line, v.name, reason)) {
            reason = "a value line starts with a quoted name or @: " + reason;
            return false;
        }
        for (wchar_t c : v.name)
            if (c < 0x20 || c == 0x7F) {
                reason = "a value name holds a control character";
                return false;
            }
    }
    skipSpaces(line);
    if (!takePrefix(line, "=")) {
        reason = "'=' is missing after the value name";
        return false;
    }
    skipSpaces(line);
    return parseData(line, v, reason);
}

} // namespace

bool parseStore(std::string_view text, Store& store, ParseError& error) {
    takePrefix(text, "\xEF\xBB\xBF");
    Key* key = nullptr;
    int lineNo = 0;
    while (!text.empty()) {
        const size_t eol = text.find('\n');
        std::string_view line = text.substr(0, eol);
        text.remove_prefix(eol == std::string_view::npos ? text.size() : eol + 1);
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        skipSpaces(line);
        if (line.empty() || line.front() == ';' || line.front() == '#') continue;
        error.line = lineNo;
        if (line.front() == '[') {
            while (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
                line.remove_suffix(1);
            if (line.back() != ']') {
                error.reason = "a key line must end with ']'";
                return false;
            }
            std::wstring path;
            if (!decodeUtf8(line.substr(1, line.size() - 2), path)) {
                error.reason = "the key is not UTF-8";
                return false;
            }
            std::vector<std::wstring> parts;
            if (!splitPath(path, parts) || parts.empty() || !isRoot(parts[0])) {
                error.reason = "a key is HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE followed by "
                               "names separated by single backslashes";
                return false;
            }
            std::wstring joined = fold(parts[0]) == kCurrentUser ? std::wstring(kCurrentUser)
                                                                 : std::wstring(kLocalMachine);
            for (size_t i = 1; i < parts.size(); ++i)
                joined += L'\\' + parts[i];
            key = &store.create(joined);
            continue;
        }
        if (!key) {
            error.reason = "a value comes before any [key] line";
            return false;
        }
        Value v;
        if (!parseValueLine(line, v, error.reason)) return false;
        // A name given twice keeps its last data, as writing it twice would.
        if (Value* old = key->find(v.name)) {
            old->type = v.type;
            old->data = std::move(v.data);
        } else {
            key->values.push_back(std::move(v));
        }
    }
    return true;
}

// ---------------------------------------------------------------- writing the text form

namespace {

std::string quotedText(const std::wstring& text) {
    std::string out = "\"";
    for (char c : qorToUtf8(text)) {
        if (c == '\\' || c == '"') out += '\\';
        out += c;
    }
    return out + '"';
}

// Text that reads back byte for byte: whole wide characters, one final NUL, nothing that
// could break the line or that UTF-8 cannot carry.
bool asText(const std::vector<BYTE>& data, std::wstring& text) {
    if (data.empty() || data.size() % sizeof(wchar_t) != 0) return false;
    text.resize(data.size() / sizeof(wchar_t));
    std::memcpy(text.data(), data.data(), data.size());
    if (text.back() != 0) return false;
    text.pop_back();
    for (wchar_t c : text)
        if (c < 0x20 || c == 0x7F || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) return false;
    return true;
}

std::string hexBytes(const std::vector<BYTE>& data) {
    std::string out;
    char buf[4];
    for (size_t i = 0; i < data.size(); ++i) {
        std::snprintf(buf, sizeof buf, i ? ",%02x" : "%02x", data[i]);
        out += buf;
    }
    return out;
}

std::string formatData(const Value& v) {
    std::wstring text;
    char buf[32];
    if ((v.type == REG_SZ || v.type == REG_EXPAND_SZ) && asText(v.data, text))
        return (v.type == REG_EXPAND_SZ ? "expand:" : "") + quotedText(text);
    if (v.type == REG_DWORD && v.data.size() == 4) {
        DWORD d;
        std::memcpy(&d, v.data.data(), 4);
        std::snprintf(buf, sizeof buf, "dword:%08x", static_cast<unsigned>(d));
        return buf;
    }
    if (v.type == REG_QWORD && v.data.size() == 8) {
        unsigned long long q;
        std::memcpy(&q, v.data.data(), 8);
        std::snprintf(buf, sizeof buf, "qword:%016llx", q);
        return buf;
    }
    if (v.type == REG_BINARY) return "hex:" + hexBytes(v.data);
    std::snprintf(buf, sizeof buf, "hex(%x):", static_cast<unsigned>(v.type));
    return buf + hexBytes(v.data);
}

} // namespace

std::string formatStore(const Store& store) {
    std::string out = "; qor registry. [key] lines, then one value a line: \"name\"=data, @ for "
                      "the default value.\n"
                      "; Data: \"text\", expand:\"text\", dword:hex, qword:hex, hex:bytes or "
                      "hex(type):bytes. In quotes write \\\\ and \\\".\n"
                      "; Comments are not kept when the store is written.\n";
    for (const auto& [folded, key] : store.keys()) {
        // A key with neither values nor sub-keys is kept by its own line; the others are
        // implied by their sub-keys. The roots always exist.
        const bool root = key.path.find(L'\\') == std::wstring::npos;
        if (key.values.empty() && (root || !store.children(key.path).empty())) continue;
        out += "\n[" + qorToUtf8(key.path) + "]\n";
        for (const Value& v : key.values)
            out += (v.name.empty() ? std::string("@") : quotedText(v.name)) + "=" + formatData(v) +
                   "\n";
    }
    return out;
}

// ---------------------------------------------------------------- the file

std::string storePath() {
    if (const char* env = std::getenv("QOR_REGISTRY"); env && *env) return env;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg == '/')
        return std::string(xdg) + "/qor/registry";
    const char* home = std::getenv("HOME");
    if (!home || !*home) {
        const passwd* pw = getpwuid(getuid());
        home = pw ? pw->pw_dir : nullptr;
    }
    if (!home || !*home) return {};
    return std::string(home) + "/.config/qor/registry";
}

namespace {

constexpr off_t kLargestStore = 64 << 20;

std::mutex gReportMutex;
std::map<std::string, std::string> gReported; // path -> state of the file last reported

// Says once for each state of the file (by its inode, size and time) that it is damaged.
void reportDamage(const std::string& path, const struct stat* st, const std::string& what) {
    std::string state = "unreadable";
    if (st)
        state = std::to_string(st->st_ino) + ":" + std::to_string(st->st_size) + ":" +
                std::to_string(st->st_mtim.tv_sec) + "." + std::to_string(st->st_mtim.tv_nsec);
    {
        std::lock_guard lock(gReportMutex);
        auto [it, added] = gReported.try_emplace(path, state);
        if (!added && it->second == state) return;
        it->second = state;
    }
    std::fflush(stdout);
    std::fprintf(stderr,
                 "registry: %s: %s; its keys are ignored and it is left as it is until it is "
                 "fixed or removed\n",
                 path.c_str(), what.c_str());
}

} // namespace

Loaded loadStore(const std::string& path) {
    Loaded result;
    if (path.empty()) return result;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT) {
            result.damaged = true;
            reportDamage(path, nullptr, std::string("cannot be read: ") + std::strerror(errno));
        }
        return result;
    }
    struct stat st;
    const bool known = fstat(fd, &st) == 0;
    std::string text;
    std::string problem;
    if (!known || !S_ISREG(st.st_mode)) {
        problem = "is not a file";
    } else if (st.st_size > kLargestStore) {
        problem = "is too large for a registry store";
    } else {
        text.resize(static_cast<size_t>(st.st_size));
        size_t got = 0;
        while (got < text.size()) {
            const ssize_t n = read(fd, text.data() + got, text.size() - got);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            got += static_cast<size_t>(n);
        }
        text.resize(got);
    }
    close(fd);
    if (problem.empty()) {
        ParseError error;
        if (parseStore(text, result.store, error)) return result;
        problem = "line " + std::to_string(error.line) + ": " + error.reason;
    }
    result.store = Store();
    result.damaged = true;
    reportDamage(path, known ? &st : nullptr, problem);
    return result;
}

namespace {

LONG codeOf(int err) {
    return err == EACCES || err == EPERM || err == EROFS ? ERROR_ACCESS_DENIED
                                                         : ERROR_REGISTRY_IO_FAILED;
}

// Holds an exclusive lock on the store's lock file while alive.
class WriterLock {
public:
    explicit WriterLock(const std::string& path) {
        mFd = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (mFd < 0) {
            mError = errno;
            return;
        }
        while (flock(mFd, LOCK_EX) != 0) {
            if (errno == EINTR) continue;
            mError = errno;
            break;
        }
    }
    ~WriterLock() {
        if (mFd >= 0) close(mFd); // releases the lock
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;
    int error() const { return mError; }

private:
    int mFd = -1;
    int mError = 0;
};

int writeAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return n < 0 ? errno : EIO;
        done += static_cast<size_t>(n);
    }
    return 0;
}

// Writes beside the store and renames over it, so that a reader sees the old file or the new
// one and never a part.
LONG replaceFile(const std::string& path, const std::string& text) {
    static std::atomic<unsigned> counter{0};
    const std::string temp =
        path + ".tmp." + std::to_string(getpid()) + "." + std::to_string(counter++);
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return codeOf(errno);
    int err = writeAll(fd, text);
    if (!err && fsync(fd) != 0) err = errno;
    if (close(fd) != 0 && !err) err = errno;
    if (!err && rename(temp.c_str(), path.c_str()) != 0) err = errno;
    if (err) {
        unlink(temp.c_str());
        return codeOf(err);
    }
    return ERROR_SUCCESS;
}

} // namespace

LONG updateStore(const std::string& path,
                 const std::function<LONG(Store&, bool& changed)>& change) {
    if (path.empty()) return ERROR_ACCESS_DENIED;
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, ec);
    WriterLock lock(path);
    if (lock.error()) return codeOf(lock.error());
    Loaded current = loadStore(path);
    if (current.damaged) return ERROR_BADDB;
    bool changed = false;
    const LONG code = change(current.store, changed);
    if (code != ERROR_SUCCESS || !changed) return code;
    return replaceFile(path, formatStore(current.store));
}

} // namespace qor::reg
