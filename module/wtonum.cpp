// _wtoi and _wtof for the module.
#include "module/wtonum.h"

#include <charconv>
#include <climits>
#include <string>

namespace {

const wchar_t* skipSpace(const wchar_t* s) {
    while (*s == L' ' || (*s >= L'\t' && *s <= L'\r'))
        ++s;
    return s;
}

} // namespace

int qorWtoi(const wchar_t* text) {
    if (!text) return 0;
    const wchar_t* s = skipSpace(text);
    const bool negative = *s == L'-';
    if (*s == L'-' || *s == L'+') ++s;
    long long v = 0;
    for (; *s >= L'0' && *s <= L'9'; ++s) {
        v = v * 10 + (*s - L'0');
        if (v > static_cast<long long>(INT_MAX) + 1) break; // the result is settled
    }
    if (negative) v = -v;
    if (v > INT_MAX) return INT_MAX;
    if (v < INT_MIN) return INT_MIN;
    return static_cast<int>(v);
}

double qorWtof(const wchar_t* text) {
    if (!text) return 0.0;
    const wchar_t* s = skipSpace(text);
    const bool negative = *s == L'-';
    if (*s == L'-' || *s == L'+') ++s;
    // Only these characters can belong to the number; from_chars takes the longest prefix.
    std::string ascii;
    for (; *s && std::wstring_view(L"0123456789.eE+-").find(*s) != std::wstring_view::npos; ++s)
        ascii += static_cast<char>(*s);
    double v = 0.0;
    const auto r = std::from_chars(ascii.data(), ascii.data() + ascii.size(), v);
    if (r.ec == std::errc::invalid_argument || r.ptr == ascii.data()) return 0.0;
    return negative ? -v : v;
}
