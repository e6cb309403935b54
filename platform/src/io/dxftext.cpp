// DXF string values: decoding by the file's code page and the escapes inside strings.
#include "io/dxftext.h"

#include "wincodepage.h"
#include "winstr.h"

#include <cerrno>
#include <cstring>
#include <iconv.h>

namespace qor::dxf {

namespace {

iconv_t handleOf(void* p) {
    return static_cast<iconv_t>(p);
}

bool isAsciiPlain(std::string_view s) {
    for (char c : s) {
        const auto u = static_cast<unsigned char>(c);
        if (u >= 0x80 || c == '^' || c == '\\') return false;
    }
    return true;
}

bool isValidUtf8(std::string_view s) {
    size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        size_t n = 0; // continuation bytes
        if (c >= 0x80) {
            if ((c & 0xE0) == 0xC0)
                n = 1;
            else if ((c & 0xF0) == 0xE0)
                n = 2;
            else if ((c & 0xF8) == 0xF0)
                n = 3;
            else
                return false;
            if (i + n >= s.size()) return false;
        }
        for (size_t k = 1; k <= n; ++k)
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
        i += n + 1;
    }
    return true;
}

int hexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

// Undoes ^J-style control characters, "^ " and \U+XXXX.
std::wstring unescape(std::wstring s) {
    if (s.find_first_of(L"^\\") == std::wstring::npos) return s;
    std::wstring out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        const wchar_t c = s[i];
        if (c == L'^' && i + 1 < s.size()) {
            const wchar_t n = s[i + 1];
            if (n == L' ') {
                out += L'^';
                ++i;
                continue;
            }
            if (n >= L'@' && n <= L'_') {
                out += static_cast<wchar_t>(n - L'@');
                ++i;
                continue;
            }
        }
        if (c == L'\\' && i + 6 < s.size() && (s[i + 1] == L'U' || s[i + 1] == L'u') &&
            s[i + 2] == L'+') {
            int v = 0;
            bool ok = true;
            for (size_t k = 3; k < 7 && ok; ++k) {
                const int d = hexDigit(s[i + k]);
                ok = d >= 0;
                v = v * 16 + d;
            }
            if (ok) {
                out += static_cast<wchar_t>(v);
                i += 6;
                continue;
            }
        }
        out += c;
    }
    return out;
}

} // namespace

TextDecoder::~TextDecoder() {
    if (mIconv) iconv_close(handleOf(mIconv));
}

void TextDecoder::configure(std::string_view version, std::string_view codePage) {
    if (mIconv) iconv_close(handleOf(mIconv));
    mIconv = nullptr;
    // Versions are "AC" and four digits, so they order as text.
    if (version.size() == 6 && version >= "AC1021") {
        mMode = Mode::kUtf8;
        return;
    }
    std::string page(codePage);
    for (char& c : page)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (page.empty()) {
        mMode = Mode::kGuess;
    } else if (page == "ANSI_936" || page == "GBK" || page == "GB2312") {
        mMode = Mode::kGbk;
    } else if (page == "UTF-8" || page == "UTF8") {
        mMode = Mode::kUtf8;
    } else {
        // ANSI_1252 is the Windows code page 1252, and so on.
        std::string name = page.rfind("ANSI_", 0) == 0 ? "CP" + page.substr(5) : page;
        iconv_t h = iconv_open("WCHAR_T", name.c_str());
        if (h == reinterpret_cast<iconv_t>(-1)) {
            mMode = Mode::kGuess;
        } else {
            mIconv = h;
            mMode = Mode::kIconv;
        }
    }
}

std::wstring TextDecoder::decodeBytes(std::string_view raw) const {
    switch (mMode) {
    case Mode::kUtf8:
        return qorFromUtf8(raw);
    case Mode::kGbk:
        return qorFromCodePage(936, raw);
    case Mode::kGuess:
        return isValidUtf8(raw) ? qorFromUtf8(raw) : qorFromCodePage(936, raw);
    case Mode::kIconv:
        break;
    }
    iconv_t h = handleOf(mIconv);
    iconv(h, nullptr, nullptr, nullptr, nullptr);
    std::wstring out(raw.size() + 1, L'\0');
    char* in = const_cast<char*>(raw.data());
    size_t inLeft = raw.size();
    char* dst = reinterpret_cast<char*>(out.data());
    size_t dstLeft = out.size() * sizeof(wchar_t);
    while (inLeft > 0) {
        if (iconv(h, &in, &inLeft, &dst, &dstLeft) != static_cast<size_t>(-1)) break;
        if (errno != EILSEQ && errno != EINVAL) break;
        // A byte the code page does not know stands for itself as a replacement character.
        if (dstLeft < sizeof(wchar_t)) break;
        const wchar_t bad = 0xFFFD;
        std::memcpy(dst, &bad, sizeof bad);
        dst += sizeof(wchar_t);
        dstLeft -= sizeof(wchar_t);
        ++in;
        --inLeft;
    }
    out.resize(out.size() - dstLeft / sizeof(wchar_t));
    return out;
}

std::wstring TextDecoder::operator()(std::string_view raw) const {
    if (isAsciiPlain(raw)) return std::wstring(raw.begin(), raw.end());
    return unescape(decodeBytes(raw));
}

void encodeText(std::wstring_view text, std::string& out) {
    bool plain = true;
    for (wchar_t c : text)
        if (c >= 0x80 || c < 0x20 || c == L'^') {
            plain = false;
            break;
        }
    if (plain) {
        for (wchar_t c : text)
            out += static_cast<char>(c);
        return;
    }
    for (char c : qorToUtf8(std::wstring(text))) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20) {
            out += '^';
            out += static_cast<char>(u + '@');
        } else if (c == '^') {
            out += "^ ";
        } else {
            out += c;
        }
    }
}

} // namespace qor::dxf
