// Splitting DXF text into groups, with every number checked once.
#include "io/dxfgroups.h"

#include "winstr.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace qor::dxf {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

bool allBlank(std::string_view s) {
    for (char c : s)
        if (!isBlank(c) && c != '\n') return false;
    return true;
}

std::string_view trim(std::string_view s) {
    while (!s.empty() && isBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// What a bad line held, short enough for a message.
std::wstring shown(std::string_view s) {
    constexpr size_t kMost = 40;
    std::wstring text = qorFromUtf8(s.substr(0, kMost));
    if (s.size() > kMost) text += L"...";
    return L"\"" + text + L"\"";
}

bool parseReal(std::string_view s, double& v) {
    s = trim(s);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
    return r.ec == std::errc() && r.ptr == s.data() + s.size() && std::isfinite(v);
}

bool parseInteger(std::string_view s, std::int64_t& v) {
    s = trim(s);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
    if (r.ec == std::errc() && r.ptr == s.data() + s.size()) return true;
    // Some writers put "1.0" where an integer belongs; a whole number is taken as meant.
    double d = 0.0;
    if (!parseReal(s, d) || d != std::floor(d) || std::fabs(d) > 9.0e15) return false;
    v = static_cast<std::int64_t>(d);
    return true;
}

bool parseHandle(std::string_view s, std::uint64_t& v) {
    s = trim(s);
    if (s.empty() || s.size() > 16) return false;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), v, 16);
    return r.ec == std::errc() && r.ptr == s.data() + s.size();
}

// The next line and where the one after starts; false at the end of the data.
bool nextLine(std::string_view bytes, size_t& pos, std::string_view& line) {
    if (pos >= bytes.size()) return false;
    const char* start = bytes.data() + pos;
    const void* nl = std::memchr(start, '\n', bytes.size() - pos);
    size_t len =
        nl ? static_cast<size_t>(static_cast<const char*>(nl) - start) : bytes.size() - pos;
    pos += len + (nl ? 1 : 0);
    if (len > 0 && start[len - 1] == '\r') --len;
    line = std::string_view(start, len);
    return true;
}

} // namespace

Kind kindOf(int code) {
    if ((code >= 10 && code <= 59) || (code >= 110 && code <= 149) ||
        (code >= 210 && code <= 239) || (code >= 460 && code <= 469) ||
        (code >= 1010 && code <= 1059))
        return Kind::kReal;
    if ((code >= 60 && code <= 99) || (code >= 160 && code <= 179) ||
        (code >= 270 && code <= 299) || (code >= 370 && code <= 389) ||
        (code >= 400 && code <= 409) || (code >= 420 && code <= 429) ||
        (code >= 440 && code <= 459) || (code >= 1060 && code <= 1071))
        return Kind::kInteger;
    if (code == 5 || code == 105 || (code >= 320 && code <= 369) || (code >= 390 && code <= 399) ||
        (code >= 480 && code <= 481) || code == 1005)
        return Kind::kHandle;
    if ((code >= 310 && code <= 319) || code == 1004) return Kind::kBinary;
    return Kind::kText;
}

bool isPointStart(int code) {
    return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210 ||
           (code >= 1010 && code <= 1013);
}

std::string_view Group::trimmed() const {
    return trim(raw);
}

std::wstring at(int line, const std::wstring& message) {
    return L"line " + std::to_wstring(line) + L": " + message;
}

void fail(int line, const std::wstring& message) {
    throw Error{line, message};
}

std::vector<Group> splitGroups(std::string_view bytes) {
    // A byte-order mark is not part of the first line.
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    // The binary form starts with a 22-byte sentinel: a seven-letter program name, then this.
    if (bytes.size() >= 22 && bytes.substr(7, 15) == std::string_view(" Binary DXF\r\n\x1a\0", 15))
        fail(1, L"binary DXF files are not supported; save the drawing as ASCII DXF");

    std::vector<Group> groups;
    // About eight bytes a line and two lines a group.
    groups.reserve(bytes.size() / 16 + 16);
    size_t pos = 0;
    int line = 0;
    std::string_view codeLine, valueLine;
    while (nextLine(bytes, pos, codeLine)) {
        ++line;
        const std::string_view text = trim(codeLine);
        // Blank lines after the last group are what editors leave; elsewhere they are damage.
        if (text.empty() && allBlank(bytes.substr(pos))) break;
        std::int64_t code = 0;
        const auto r = std::from_chars(text.data(), text.data() + text.size(), code);
        if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size() ||
            code < std::numeric_limits<std::int16_t>::min() ||
            code > std::numeric_limits<std::int16_t>::max())
            fail(line, L"expected a group code, found " + shown(codeLine));
        if (!nextLine(bytes, pos, valueLine))
            fail(line, L"the file ends after group code " + std::to_wstring(code) +
                           L", before its value (the file is truncated)");
        Group g;
        g.raw = valueLine;
        g.line = line;
        g.code = static_cast<std::int16_t>(code);
        g.kind = kindOf(g.code);
        ++line;
        switch (g.kind) {
        case Kind::kReal:
            if (!parseReal(valueLine, g.real))
                fail(line, L"group " + std::to_wstring(code) + L" needs a number, found " +
                               shown(valueLine));
            break;
        case Kind::kInteger:
            if (!parseInteger(valueLine, g.integer))
                fail(line, L"group " + std::to_wstring(code) + L" needs an integer, found " +
                               shown(valueLine));
            break;
        case Kind::kHandle: {
            // Old files put names under some of these codes; such a value is no handle.
            std::uint64_t h = 0;
            g.integer = parseHandle(valueLine, h) ? static_cast<std::int64_t>(h) : 0;
            break;
        }
        default:
            break;
        }
        // Comments are for people reading the file.
        if (g.code != 999) groups.push_back(g);
        if (g.code == 0 && g.trimmed() == "EOF") break;
    }
    return groups;
}

} // namespace qor::dxf
