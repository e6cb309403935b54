// Code-page conversions: GBK through iconv, UTF-8 through the platform's own codec.
#include "wincodepage.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <iconv.h>

static_assert(sizeof(wchar_t) == sizeof(char32_t), "wide characters are UTF-32 here");

namespace {

enum class Page { kGbk, kUtf8, kNone };

Page pageOf(UINT codePage) {
    switch (codePage) {
    case CP_ACP:
    case CP_OEMCP:
    case CP_THREAD_ACP:
    case 936:
        return Page::kGbk;
    case CP_UTF8:
        return Page::kUtf8;
    default:
        return Page::kNone;
    }
}

int failWith(DWORD code) {
    SetLastError(code);
    return 0;
}

// An iconv descriptor keeps conversion state and may not be shared, so each thread opens its
// own, once per direction.
class Converter {
public:
    Converter(const char* to, const char* from) : mHandle(iconv_open(to, from)) {
        if (!ok() && !gReported.exchange(true))
            std::fprintf(stderr, "code page 936: iconv cannot convert %s to %s: %s\n", from, to,
                         std::strerror(errno));
    }
    ~Converter() {
        if (ok()) iconv_close(mHandle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool ok() const { return mHandle != reinterpret_cast<iconv_t>(-1); }
    // The descriptor, back in its initial state.
    iconv_t fresh() {
        iconv(mHandle, nullptr, nullptr, nullptr, nullptr);
        return mHandle;
    }

private:
    iconv_t mHandle;
    static inline std::atomic<bool> gReported{false};
};

Converter& toGbk() {
    thread_local Converter c("GBK", "WCHAR_T");
    return c;
}

Converter& fromGbk() {
    thread_local Converter c("WCHAR_T", "GBK");
    return c;
}

bool isHigh(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool isLow(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Text that came from UTF-16 may still hold surrogate pairs; a lone surrogate stays as it is
// and counts as a character with no code.
std::u32string joinPairs(std::wstring_view s) {
    std::u32string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        const auto c = static_cast<char32_t>(s[i]);
        if (isHigh(c) && i + 1 < s.size() && isLow(static_cast<char32_t>(s[i + 1]))) {
            out += 0x10000 + ((c - 0xD800) << 10) + (static_cast<char32_t>(s[i + 1]) - 0xDC00);
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

bool hasInvalidCodePoint(const std::u32string& s) {
    for (char32_t c : s)
        if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) return true;
    return false;
}

// Appends the GBK form of text; a character without a code becomes defaultChar. False only
// when the converter is not available.
bool encodeGbk(const std::u32string& text, std::string_view defaultChar, std::string& out,
               bool& usedDefault) {
    Converter& conv = toGbk();
    if (!conv.ok()) return false;
    iconv_t handle = conv.fresh();
    out.reserve(out.size() + text.size() * 2);
    size_t i = 0;
    while (i < text.size()) {
        if (text[i] < 0x80) {
            out += static_cast<char>(text[i++]);
            continue;
        }
        size_t end = i;
        while (end < text.size() && text[end] >= 0x80)
            ++end;
        char* in = reinterpret_cast<char*>(const_cast<char32_t*>(text.data() + i));
        size_t inLeft = (end - i) * sizeof(char32_t);
        char buf[256];
        while (inLeft > 0) {
            char* o = buf;
            size_t oLeft = sizeof buf;
            const size_t r = iconv(handle, &in, &inLeft, &o, &oLeft);
            out.append(buf, static_cast<size_t>(o - buf));
            if (r != static_cast<size_t>(-1) || errno == E2BIG) continue;
            // No code for this character (or one iconv refuses): the default takes its place.
            out += defaultChar;
            usedDefault = true;
            in += sizeof(char32_t);
            inLeft -= sizeof(char32_t);
            handle = conv.fresh();
        }
        i = end;
    }
    return true;
}

// A lead byte followed by a byte in the trail range is one (unmapped) character.
bool isGbkPair(const unsigned char* p, size_t left) {
    return left >= 2 && p[0] >= 0x81 && p[0] <= 0xFE && p[1] >= 0x40 && p[1] <= 0xFE &&
           p[1] != 0x7F;
}

enum class Decode { kOk, kInvalid, kUnavailable };

Decode decodeGbk(std::string_view bytes, bool strict, std::wstring& out) {
    Converter& conv = fromGbk();
    if (!conv.ok()) return Decode::kUnavailable;
    iconv_t handle = conv.fresh();
    out.reserve(out.size() + bytes.size());
    char* in = const_cast<char*>(bytes.data());
    size_t inLeft = bytes.size();
    wchar_t buf[256];
    while (inLeft > 0) {
        char* o = reinterpret_cast<char*>(buf);
        size_t oLeft = sizeof buf;
        const size_t r = iconv(handle, &in, &inLeft, &o, &oLeft);
        out.append(buf, static_cast<size_t>(reinterpret_cast<wchar_t*>(o) - buf));
        if (r != static_cast<size_t>(-1) || errno == E2BIG) continue;
        if (strict) return Decode::kInvalid;
        // EILSEQ, or EINVAL for a lead byte cut off at the end.
        const size_t skip = isGbkPair(reinterpret_cast<unsigned char*>(in), inLeft) ? 2 : 1;
        out += L'?';
        in += skip;
        inLeft -= skip;
        handle = conv.fresh();
    }
    return Decode::kOk;
}

// Each genuine U+FFFD of the input is the three bytes EF BF BD; any other is a replacement.
bool utf8HadInvalid(std::string_view bytes, const std::wstring& decoded) {
    size_t genuine = 0;
    for (size_t pos = bytes.find("\xEF\xBF\xBD"); pos != std::string_view::npos;
         pos = bytes.find("\xEF\xBF\xBD", pos + 3))
        ++genuine;
    size_t found = 0;
    for (wchar_t c : decoded)
        if (c == 0xFFFD) ++found;
    return found != genuine;
}

std::string defaultCharOf(LPCSTR given) {
    if (!given) return "?";
    const auto lead = static_cast<unsigned char>(given[0]);
    if (lead >= 0x81 && lead <= 0xFE && given[1] != 0) return std::string(given, 2);
    return std::string(given, 1);
}

} // namespace

UINT GetACP() {
    return 936;
}

UINT GetOEMCP() {
    return 936;
}

BOOL IsValidCodePage(UINT codePage) {
    // The symbolic pages are not page numbers.
    return codePage == 936 || codePage == CP_UTF8;
}

int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                        LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                        LPBOOL lpUsedDefaultChar) {
    const Page page = pageOf(CodePage);
    if (page == Page::kNone || !lpWideCharStr || cchWideChar == 0 || cchWideChar < -1 ||
        cbMultiByte < 0 || (cbMultiByte > 0 && !lpMultiByteStr))
        return failWith(ERROR_INVALID_PARAMETER);
    if (page == Page::kUtf8) {
        if (lpDefaultChar || lpUsedDefaultChar) return failWith(ERROR_INVALID_PARAMETER);
        if (dwFlags & ~static_cast<DWORD>(WC_ERR_INVALID_CHARS))
            return failWith(ERROR_INVALID_FLAGS);
    } else if (dwFlags & ~static_cast<DWORD>(WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS |
                                             WC_DEFAULTCHAR | WC_NO_BEST_FIT_CHARS)) {
        return failWith(ERROR_INVALID_FLAGS);
    }
    const size_t length =
        cchWideChar == -1 ? std::wcslen(lpWideCharStr) + 1 : static_cast<size_t>(cchWideChar);
    const std::wstring_view text(lpWideCharStr, length);

    std::string out;
    if (page == Page::kUtf8) {
        if ((dwFlags & WC_ERR_INVALID_CHARS) && hasInvalidCodePoint(joinPairs(text)))
            return failWith(ERROR_NO_UNICODE_TRANSLATION);
        out = qorToUtf8(std::wstring(text));
    } else {
        bool used = false;
        if (!encodeGbk(joinPairs(text), defaultCharOf(lpDefaultChar), out, used))
            return failWith(ERROR_INVALID_PARAMETER);
        if (lpUsedDefaultChar) *lpUsedDefaultChar = used ? TRUE : FALSE;
    }
    if (out.size() > static_cast<size_t>(INT_MAX)) return failWith(ERROR_INVALID_PARAMETER);
    const int needed = static_cast<int>(out.size());
    if (cbMultiByte == 0) return needed;
    if (needed > cbMultiByte) return failWith(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(lpMultiByteStr, out.data(), out.size());
    return needed;
}

int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                        LPWSTR lpWideCharStr, int cchWideChar) {
    const Page page = pageOf(CodePage);
    if (page == Page::kNone || !lpMultiByteStr || cbMultiByte == 0 || cbMultiByte < -1 ||
        cchWideChar < 0 || (cchWideChar > 0 && !lpWideCharStr))
        return failWith(ERROR_INVALID_PARAMETER);
    const bool strict = (dwFlags & MB_ERR_INVALID_CHARS) != 0;
    if (page == Page::kUtf8) {
        if (dwFlags & ~static_cast<DWORD>(MB_ERR_INVALID_CHARS))
            return failWith(ERROR_INVALID_FLAGS);
    } else if ((dwFlags & ~static_cast<DWORD>(MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS |
                                              MB_ERR_INVALID_CHARS)) ||
               ((dwFlags & MB_PRECOMPOSED) && (dwFlags & MB_COMPOSITE))) {
        return failWith(ERROR_INVALID_FLAGS);
    }
    const size_t length =
        cbMultiByte == -1 ? std::strlen(lpMultiByteStr) + 1 : static_cast<size_t>(cbMultiByte);
    const std::string_view bytes(lpMultiByteStr, length);

    std::wstring out;
    if (page == Page::kUtf8) {
        out = qorFromUtf8(bytes);
        if (strict && utf8HadInvalid(bytes, out)) return failWith(ERROR_NO_UNICODE_TRANSLATION);
    } else {
        switch (decodeGbk(bytes, strict, out)) {
        case Decode::kOk:
            break;
        case Decode::kInvalid:
            return failWith(ERROR_NO_UNICODE_TRANSLATION);
        case Decode::kUnavailable:
            return failWith(ERROR_INVALID_PARAMETER);
        }
    }
    if (out.size() > static_cast<size_t>(INT_MAX)) return failWith(ERROR_INVALID_PARAMETER);
    const int needed = static_cast<int>(out.size());
    if (cchWideChar == 0) return needed;
    if (needed > cchWideChar) return failWith(ERROR_INSUFFICIENT_BUFFER);
    std::wmemcpy(lpWideCharStr, out.data(), out.size());
    return needed;
}

std::string qorToCodePage(UINT codePage, std::wstring_view text, bool* usedDefaultChar) {
    bool used = false;
    std::string out;
    switch (pageOf(codePage)) {
    case Page::kUtf8:
        out = qorToUtf8(std::wstring(text));
        break;
    case Page::kGbk:
        if (!encodeGbk(joinPairs(text), "?", out, used)) out.clear();
        break;
    case Page::kNone:
        break;
    }
    if (usedDefaultChar) *usedDefaultChar = used;
    return out;
}

std::wstring qorFromCodePage(UINT codePage, std::string_view bytes) {
    std::wstring out;
    switch (pageOf(codePage)) {
    case Page::kUtf8:
        return qorFromUtf8(bytes);
    case Page::kGbk:
        if (decodeGbk(bytes, false, out) != Decode::kOk) out.clear();
        return out;
    case Page::kNone:
        break;
    }
    return out;
}
