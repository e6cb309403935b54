// The groups of an ASCII DXF file: a code line and a value line each, checked and converted
// once when the file is split, so that nothing later parses numbers or meets a bad one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qor::dxf {

// A damaged file: the line and what is wrong there. Thrown inside the reader only, and turned
// into a status and a message at its edge.
struct Error {
    int line = 0;
    std::wstring message;
};

// How a group's value is held, by its code.
enum class Kind : std::uint8_t { kText, kReal, kInteger, kHandle, kBinary };
Kind kindOf(int code);

// Codes of a point's x group; its y and z groups follow with the code plus 10 and 20.
bool isPointStart(int code);

struct Group {
    std::string_view raw;     // the value line without its line end
    double real = 0.0;        // kReal
    std::int64_t integer = 0; // kInteger; the handle for kHandle (0 when the text is no handle)
    int line = 0;             // the code's line, from 1
    std::int16_t code = 0;
    Kind kind = Kind::kText;

    bool is(int c, std::string_view value) const { return code == c && trimmed() == value; }
    std::string_view trimmed() const;
    std::uint64_t handle() const { return static_cast<std::uint64_t>(integer); }
};

// Splits the bytes into groups up to and including 0 EOF; what follows EOF is ignored. Throws
// Error for a binary file, a code line that is no number, a code without a value line, and a
// number group whose value is no number or out of range.
std::vector<Group> splitGroups(std::string_view bytes);

// "line 12: " prefixed to a message.
std::wstring at(int line, const std::wstring& message);
[[noreturn]] void fail(int line, const std::wstring& message);

} // namespace qor::dxf
