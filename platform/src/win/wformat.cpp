// The wide formatting engine behind CString::Format, acutPrintf and the module's
// swprintf-style calls. It follows the Windows wide rules: %s/%c take wide arguments and %S/%C
// narrow ones (%hs/%ls/%ws say so explicitly); %ld, %lu and %lx read a `long` but print it as
// 32 bits; widths and precisions of strings count wide characters; a null string prints as
// "(null)", cut by the precision like any other text; the 0 flag pads strings with zeros too.
// Numbers are printed by the C library, so the digits are exactly its digits.
#include "winstr.h"

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <locale.h>

namespace {

// Widths and precisions beyond this are taken as this, so that a bad format cannot ask for
// gigabytes.
constexpr int kMaxField = 1 << 20;

enum class Size { kNone, kHH, kH, kL, kLL, kLongDouble, kMax, kSize, kPtrDiff, kWide, k32, k64 };

struct Field {
    bool left = false;
    bool plus = false;
    bool space = false;
    bool zero = false;
    bool alt = false;
    int width = 0;
    int precision = -1; // none
    Size size = Size::kNone;
    wchar_t conv = 0;
};

// Number formatting must not follow a process locale that writes a decimal comma.
locale_t cLocale() {
    static const locale_t loc = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return loc;
}

class CLocaleScope {
public:
    CLocaleScope() : mOld(cLocale() ? uselocale(cLocale()) : nullptr) {}
    ~CLocaleScope() {
        if (mOld) uselocale(mOld);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t mOld;
};

// The narrow format for the C library: flags, width, precision, then `length` and `conv`.
std::string narrowFormat(const Field& s, const char* length, char conv) {
    std::string f = "%";
    if (s.left) f += '-';
    if (s.plus) f += '+';
    if (s.space) f += ' ';
    if (s.zero) f += '0';
    if (s.alt) f += '#';
    if (s.width > 0) f += std::to_string(s.width);
    if (s.precision >= 0) f += '.' + std::to_string(s.precision);
    f += length;
    f += conv;
    return f;
}

template <class T> void appendC(std::wstring& out, const std::string& fmt, T value) {
    char small[128];
    int n = std::snprintf(small, sizeof small, fmt.c_str(), value);
    if (n < 0) return;
    if (static_cast<size_t>(n) < sizeof small) {
        out.append(small, small + n);
        return;
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    n = std::snprintf(big.data(), big.size(), fmt.c_str(), value);
    if (n > 0)
        out.append(big.begin(),
                   big.begin() + std::min<size_t>(static_cast<size_t>(n), big.size() - 1));
}

// Pads `text` to the width, as the Windows library does for every conversion.
void appendPadded(std::wstring& out, const Field& s, std::wstring_view text) {
    const size_t width = s.width > 0 ? static_cast<size_t>(s.width) : 0;
    const size_t pad = width > text.size() ? width - text.size() : 0;
    if (!s.left) out.append(pad, s.zero ? L'0' : L' ');
    out.append(text);
    if (s.left) out.append(pad, L' ');
}

// With a precision, no character past it is read: the text need not be terminated.
template <class Char> size_t boundedLength(const Char* p, int precision) {
    const size_t limit = precision < 0 ? SIZE_MAX : static_cast<size_t>(precision);
    size_t n = 0;
    while (n < limit && p[n] != 0)
        ++n;
    return n;
}

// Reads a decimal field, saturating at kMaxField.
int readNumber(const wchar_t*& p) {
    int n = 0;
    while (*p >= L'0' && *p <= L'9') {
        n = std::min(kMaxField, n * 10 + (*p - L'0'));
        ++p;
    }
    return n;
}

int clampField(int v) {
    return std::min(v, kMaxField);
}

class Formatter {
public:
    explicit Formatter(va_list args) { va_copy(mArgs, args); }
    ~Formatter() { va_end(mArgs); }
    Formatter(const Formatter&) = delete;
    Formatter& operator=(const Formatter&) = delete;

    std::wstring run(const wchar_t* fmt) {
        std::wstring out;
        const wchar_t* p = fmt;
        while (*p) {
            if (*p != L'%') {
                const wchar_t* start = p;
                while (*p && *p != L'%')
                    ++p;
                out.append(start, p);
                continue;
            }
            const wchar_t* start = p++;
            Field field;
            if (!parse(p, field)) {
                // A format that ends inside a conversion: keep the text as written.
                out.append(start);
                break;
            }
            ++p;
            if (!convert(out, field)) out.append(start, p);
        }
        return out;
    }

private:
    bool parse(const wchar_t*& p, Field& s) {
        for (;; ++p) {
            if (*p == L'-')
                s.left = true;
            else if (*p == L'+')
                s.plus = true;
            else if (*p == L' ')
                s.space = true;
            else if (*p == L'0')
                s.zero = true;
            else if (*p == L'#')
                s.alt = true;
            else
                break;
        }
        if (*p == L'*') {
            ++p;
            const int w = va_arg(mArgs, int);
            // A negative width from the argument list means left justification.
            if (w < 0) {
                s.left = true;
                s.width = w == INT32_MIN ? kMaxField : clampField(-w);
            } else {
                s.width = clampField(w);
            }
        } else {
            s.width = readNumber(p);
        }
        if (*p == L'.') {
            ++p;
            if (*p == L'*') {
                ++p;
                const int v = va_arg(mArgs, int);
                s.precision = v < 0 ? -1 : clampField(v);
            } else {
                s.precision = readNumber(p);
            }
        }
        switch (*p) {
        case L'h':
            ++p;
            s.size = Size::kH;
            if (*p == L'h') {
                ++p;
                s.size = Size::kHH;
            }
            break;
        case L'l':
            ++p;
            s.size = Size::kL;
            if (*p == L'l') {
                ++p;
                s.size = Size::kLL;
            }
            break;
        case L'L':
            ++p;
            s.size = Size::kLongDouble;
            break;
        case L'q':
            ++p;
            s.size = Size::kLL;
            break;
        case L'j':
            ++p;
            s.size = Size::kMax;
            break;
        case L'z':
            ++p;
            s.size = Size::kSize;
            break;
        case L't':
            ++p;
            s.size = Size::kPtrDiff;
            break;
        case L'w':
            ++p;
            s.size = Size::kWide;
            break;
        case L'I':
            ++p;
            if (p[0] == L'6' && p[1] == L'4') {
                p += 2;
                s.size = Size::k64;
            } else if (p[0] == L'3' && p[1] == L'2') {
                p += 2;
                s.size = Size::k32;
            } else {
                s.size = Size::kPtrDiff;
            }
            break;
        default:
            break;
        }
        s.conv = *p;
        return s.conv != L'\0';
    }

    long long readSigned(Size size) {
        switch (size) {
        case Size::kHH:
            return static_cast<signed char>(va_arg(mArgs, int));
        case Size::kH:
            return static_cast<short>(va_arg(mArgs, int));
        case Size::kL:
            // `long` is 32 bits on Windows: read what the caller passed, print its low half.
            return static_cast<std::int32_t>(va_arg(mArgs, long));
        case Size::kLL:
        case Size::kLongDouble:
        case Size::k64:
            return va_arg(mArgs, long long);
        case Size::kMax:
            return va_arg(mArgs, intmax_t);
        case Size::kSize:
        case Size::kPtrDiff:
            return va_arg(mArgs, ptrdiff_t);
        default:
            return va_arg(mArgs, int);
        }
    }

    unsigned long long readUnsigned(Size size) {
        switch (size) {
        case Size::kHH:
            return static_cast<unsigned char>(va_arg(mArgs, unsigned int));
        case Size::kH:
            return static_cast<unsigned short>(va_arg(mArgs, unsigned int));
        case Size::kL:
            return static_cast<std::uint32_t>(va_arg(mArgs, unsigned long));
        case Size::kLL:
        case Size::kLongDouble:
        case Size::k64:
            return va_arg(mArgs, unsigned long long);
        case Size::kMax:
            return va_arg(mArgs, uintmax_t);
        case Size::kSize:
        case Size::kPtrDiff:
            return va_arg(mArgs, size_t);
        default:
            return va_arg(mArgs, unsigned int);
        }
    }

    void text(std::wstring& out, const Field& s, bool wide) {
        if (wide) {
            const wchar_t* p = va_arg(mArgs, const wchar_t*);
            if (!p) p = L"(null)";
            appendPadded(out, s, std::wstring_view(p, boundedLength(p, s.precision)));
        } else {
            const char* p = va_arg(mArgs, const char*);
            if (!p) p = "(null)";
            // The precision bounds the bytes read, as the Windows library does; the width
            // counts the wide characters they decode to.
            appendPadded(out, s, qorFromNarrow(std::string_view(p, boundedLength(p, s.precision))));
        }
    }

    void character(std::wstring& out, const Field& s, bool wide) {
        const int v = va_arg(mArgs, int);
        if (wide) {
            const wchar_t c = static_cast<wchar_t>(v);
            appendPadded(out, s, std::wstring_view(&c, 1));
        } else {
            const char c = static_cast<char>(v);
            appendPadded(out, s, qorFromNarrow(std::string_view(&c, 1)));
        }
    }

    // Returns false for a conversion this engine does not know; the caller then copies it.
    bool convert(std::wstring& out, const Field& s) {
        const bool explicitNarrow = s.size == Size::kH || s.size == Size::kHH;
        const bool explicitWide =
            s.size == Size::kL || s.size == Size::kWide || s.size == Size::kLL;
        switch (s.conv) {
        case L'%':
            out += L'%';
            return true;
        case L's':
            text(out, s, !explicitNarrow);
            return true;
        case L'S':
            text(out, s, explicitWide);
            return true;
        case L'c':
            character(out, s, !explicitNarrow);
            return true;
        case L'C':
            character(out, s, explicitWide);
            return true;
        case L'd':
        case L'i':
            appendC(out, narrowFormat(s, "ll", static_cast<char>(s.conv)), readSigned(s.size));
            return true;
        case L'u':
        case L'o':
        case L'x':
        case L'X':
            appendC(out, narrowFormat(s, "ll", static_cast<char>(s.conv)), readUnsigned(s.size));
            return true;
        case L'e':
        case L'E':
        case L'f':
        case L'F':
        case L'g':
        case L'G':
        case L'a':
        case L'A': {
            // On Windows long double is double; a caller here passes a real long double.
            const double v = s.size == Size::kLongDouble
                                 ? static_cast<double>(va_arg(mArgs, long double))
                                 : va_arg(mArgs, double);
            // Infinities and NaNs print as the C library here prints them ("inf", "-nan"),
            // not as Windows does ("1.#INF" in old runtimes, "nan(ind)" in new ones): the
            // checked outputs never contain them, and one spelling across the platform's
            // own printing is worth more than copying either Windows runtime.
            CLocaleScope scope;
            appendC(out, narrowFormat(s, "", static_cast<char>(s.conv)), v);
            return true;
        }
        case L'p': {
            // Windows prints a pointer as its full width of upper-case hex digits, no prefix.
            const auto v = reinterpret_cast<std::uintptr_t>(va_arg(mArgs, void*));
            char digits[2 * sizeof(void*) + 1];
            std::snprintf(digits, sizeof digits, "%0*llX", static_cast<int>(2 * sizeof(void*)),
                          static_cast<unsigned long long>(v));
            Field padOnly = s;
            padOnly.zero = false;
            const std::wstring w(digits, digits + 2 * sizeof(void*));
            appendPadded(out, padOnly, w);
            return true;
        }
        case L'n':
            // Writing through a format is refused; the pointer is consumed so the arguments
            // after it stay in step.
            (void)va_arg(mArgs, void*);
            return true;
        default:
            return false;
        }
    }

    va_list mArgs;
};

} // namespace

std::wstring qorFormatV(const wchar_t* fmt, va_list args) {
    if (!fmt) return std::wstring();
    Formatter f(args);
    return f.run(fmt);
}

std::wstring qorFormat(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    std::wstring s = qorFormatV(fmt, args);
    va_end(args);
    return s;
}
