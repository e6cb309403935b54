// CString and the text encodings behind it.
#include "winstr.h"

#include "wincodepage.h"

#include <cstring>
#include <cwchar>
#include <ostream>

// ---------------------------------------------------------------- UTF-8

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void putUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

std::string toUtf8(std::wstring_view s) {
    std::string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        auto c = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(s[i]));
        // Text that came from UTF-16 may still hold its pairs; join them rather than lose them.
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < s.size()) {
            const auto lo = static_cast<char32_t>(s[i + 1]);
            if (lo >= 0xDC00 && lo <= 0xDFFF) {
                putUtf8(out, 0x10000 + ((c - 0xD800) << 10) + (lo - 0xDC00));
                ++i;
                continue;
            }
        }
        if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) c = kReplacement;
        putUtf8(out, c);
    }
    return out;
}

} // namespace

std::string qorToUtf8(const std::wstring& s) {
    return toUtf8(s);
}

std::string qorToUtf8(const wchar_t* s) {
    return s ? toUtf8(s) : std::string();
}

std::wstring qorFromUtf8(std::string_view s) {
    std::wstring out;
    out.reserve(s.size());
    const size_t n = s.size();
    size_t i = 0;
    while (i < n) {
        const auto b0 = static_cast<unsigned char>(s[i]);
        if (b0 < 0x80) {
            out += static_cast<wchar_t>(b0);
            ++i;
            continue;
        }
        int need = 0;
        char32_t c = 0;
        // The bounds on the second byte exclude overlong forms, surrogates and values past
        // U+10FFFF, so a maximal invalid prefix becomes exactly one replacement character.
        unsigned char lo = 0x80, hi = 0xBF;
        if (b0 >= 0xC2 && b0 <= 0xDF) {
            need = 1;
            c = b0 & 0x1F;
        } else if (b0 >= 0xE0 && b0 <= 0xEF) {
            need = 2;
            c = b0 & 0x0F;
            if (b0 == 0xE0) lo = 0xA0;
            if (b0 == 0xED) hi = 0x9F;
        } else if (b0 >= 0xF0 && b0 <= 0xF4) {
            need = 3;
            c = b0 & 0x07;
            if (b0 == 0xF0) lo = 0x90;
            if (b0 == 0xF4) hi = 0x8F;
        } else {
            out += static_cast<wchar_t>(kReplacement);
            ++i;
            continue;
        }
        size_t j = i + 1;
        bool ok = true;
        for (int k = 0; k < need; ++k, ++j) {
            if (j >= n) {
                ok = false;
                break;
            }
            const auto b = static_cast<unsigned char>(s[j]);
            const unsigned char min = k == 0 ? lo : 0x80, max = k == 0 ? hi : 0xBF;
            if (b < min || b > max) {
                ok = false;
                break;
            }
            c = (c << 6) | (b & 0x3F);
        }
        out += static_cast<wchar_t>(ok ? c : kReplacement);
        i = j;
    }
    return out;
}

// Narrow text is in the ANSI code page, 936 (GBK). Plain ASCII, most of it, needs no converter;
// should the converter be missing, UTF-8 is the best guess left.
std::wstring qorFromNarrow(std::string_view s) {
    bool ascii = true;
    for (char c : s)
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    if (ascii) return std::wstring(s.begin(), s.end());
    std::wstring out = qorFromCodePage(CP_ACP, s);
    return out.empty() ? qorFromUtf8(s) : out;
}

// ---------------------------------------------------------------- CString

namespace {

bool isSpace(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

wchar_t foldLower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c;
}

wchar_t foldUpper(wchar_t c) {
    return c >= L'a' && c <= L'z' ? c - L'a' + L'A' : c;
}

bool inSet(wchar_t c, const wchar_t* set) {
    return set && c != 0 && std::wcschr(set, c);
}

int clampToInt(size_t n) {
    return n > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(n);
}

template <class Pred> void trimLeftIf(std::wstring& s, Pred pred) {
    size_t i = 0;
    while (i < s.size() && pred(s[i]))
        ++i;
    s.erase(0, i);
}

template <class Pred> void trimRightIf(std::wstring& s, Pred pred) {
    size_t n = s.size();
    while (n > 0 && pred(s[n - 1]))
        --n;
    s.resize(n);
}

} // namespace

CString::CString(const wchar_t* s, int length) {
    if (s && length > 0) mText.assign(s, static_cast<size_t>(length));
}

CString::CString(const char* s) {
    if (s) mText = qorFromNarrow(s);
}

CString::CString(wchar_t ch, int repeat) {
    if (repeat > 0) mText.assign(static_cast<size_t>(repeat), ch);
}

CString& CString::operator=(const wchar_t* s) {
    // s may point into this string; assign copes with that.
    if (s)
        mText.assign(s);
    else
        mText.clear();
    return *this;
}

CString& CString::operator=(const char* s) {
    mText = s ? qorFromNarrow(s) : std::wstring();
    return *this;
}

CString& CString::operator=(wchar_t ch) {
    mText.assign(1, ch);
    return *this;
}

wchar_t CString::GetAt(int index) const {
    return index >= 0 && index < GetLength() ? mText[static_cast<size_t>(index)] : L'\0';
}

void CString::SetAt(int index, wchar_t ch) {
    if (index >= 0 && index < GetLength()) mText[static_cast<size_t>(index)] = ch;
}

wchar_t* CString::GetBuffer() {
    return mText.data();
}

wchar_t* CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) mText.resize(static_cast<size_t>(minLength));
    return mText.data();
}

wchar_t* CString::GetBufferSetLength(int length) {
    mText.resize(static_cast<size_t>(std::max(0, length)));
    return mText.data();
}

void CString::ReleaseBuffer(int newLength) {
    if (newLength < 0) newLength = clampToInt(std::min(mText.find(L'\0'), mText.size()));
    if (newLength < GetLength()) mText.resize(static_cast<size_t>(newLength));
}

CString& CString::operator+=(const CString& s) {
    mText += s.mText;
    return *this;
}

CString& CString::operator+=(const wchar_t* s) {
    if (s) mText.append(s);
    return *this;
}

CString& CString::operator+=(const char* s) {
    if (s) mText += qorFromNarrow(s);
    return *this;
}

CString& CString::operator+=(wchar_t ch) {
    mText += ch;
    return *this;
}

CString operator+(const CString& a, const CString& b) {
    return CString(a.mText + b.mText);
}

CString operator+(const CString& a, const wchar_t* b) {
    CString r(a);
    r += b;
    return r;
}

CString operator+(const wchar_t* a, const CString& b) {
    CString r(a);
    r += b;
    return r;
}

CString operator+(const CString& a, wchar_t b) {
    return CString(a.mText + b);
}

CString operator+(wchar_t a, const CString& b) {
    return CString(a + b.mText);
}

int CString::Compare(const wchar_t* s) const {
    const int c = mText.compare(s ? s : L"");
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int CString::CompareNoCase(const wchar_t* s) const {
    if (!s) s = L"";
    for (size_t i = 0;; ++i) {
        const wchar_t a = i < mText.size() ? foldLower(mText[i]) : L'\0';
        const wchar_t b = foldLower(s[i]);
        if (a != b) return a < b ? -1 : 1;
        if (b == L'\0') return 0;
    }
}

int CString::Find(wchar_t ch, int start) const {
    if (start < 0) start = 0;
    if (start > GetLength()) return -1;
    if (ch == L'\0') return GetLength();
    const size_t at = mText.find(ch, static_cast<size_t>(start));
    return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

int CString::Find(const wchar_t* sub, int start) const {
    if (!sub) return -1;
    if (start < 0) start = 0;
    if (start > GetLength()) return -1;
    const size_t at = mText.find(sub, static_cast<size_t>(start));
    return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

int CString::ReverseFind(wchar_t ch) const {
    if (ch == L'\0') return GetLength();
    const size_t at = mText.rfind(ch);
    return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

int CString::FindOneOf(const wchar_t* set) const {
    if (!set || !*set) return -1;
    const size_t at = mText.find_first_of(set);
    return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

CString CString::Left(int count) const {
    if (count <= 0) return CString();
    return CString(mText.substr(0, static_cast<size_t>(count)));
}

CString CString::Right(int count) const {
    if (count <= 0) return CString();
    if (count >= GetLength()) return *this;
    return CString(mText.substr(mText.size() - static_cast<size_t>(count)));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    if (first < 0) first = 0;
    if (count <= 0 || first >= GetLength()) return CString();
    return CString(mText.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

CString CString::SpanIncluding(const wchar_t* set) const {
    size_t n = 0;
    while (n < mText.size() && inSet(mText[n], set))
        ++n;
    return CString(mText.substr(0, n));
}

CString CString::SpanExcluding(const wchar_t* set) const {
    size_t n = 0;
    while (n < mText.size() && mText[n] != L'\0' && !inSet(mText[n], set))
        ++n;
    return CString(mText.substr(0, n));
}

CString CString::Tokenize(const wchar_t* delimiters, int& start) const {
    if (start >= 0 && start < GetLength()) {
        // MFC returns the rest without moving `start` when there are no delimiters, which
        // loops a caller forever; ending the walk is the safe reading of that case.
        if (!delimiters || !*delimiters) {
            CString rest(mText.substr(static_cast<size_t>(start)));
            start = GetLength();
            return rest;
        }
        size_t from = static_cast<size_t>(start);
        while (from < mText.size() && inSet(mText[from], delimiters))
            ++from;
        if (from < mText.size()) {
            size_t until = from;
            while (until < mText.size() && !inSet(mText[until], delimiters))
                ++until;
            start = static_cast<int>(until) + 1;
            return CString(mText.substr(from, until - from));
        }
    }
    start = -1;
    return CString();
}

CString& CString::MakeUpper() {
    for (wchar_t& c : mText)
        c = foldUpper(c);
    return *this;
}

CString& CString::MakeLower() {
    for (wchar_t& c : mText)
        c = foldLower(c);
    return *this;
}

CString& CString::MakeReverse() {
    std::reverse(mText.begin(), mText.end());
    return *this;
}

int CString::Replace(wchar_t oldCh, wchar_t newCh) {
    int count = 0;
    for (wchar_t& c : mText) {
        if (c == oldCh) {
            c = newCh;
            ++count;
        }
    }
    return count;
}

int CString::Replace(const wchar_t* oldText, const wchar_t* newText) {
    if (!oldText || !*oldText) return 0;
    // Either argument may point into this string, so take copies before changing it.
    const std::wstring from(oldText), to(newText ? newText : L"");
    std::wstring out;
    int count = 0;
    size_t pos = 0;
    for (size_t at; (at = mText.find(from, pos)) != std::wstring::npos; pos = at + from.size()) {
        out.append(mText, pos, at - pos);
        out += to;
        ++count;
    }
    if (count == 0) return 0;
    out.append(mText, pos, std::wstring::npos);
    mText = std::move(out);
    return count;
}

int CString::Remove(wchar_t ch) {
    const size_t before = mText.size();
    std::erase(mText, ch);
    return static_cast<int>(before - mText.size());
}

int CString::Insert(int index, wchar_t ch) {
    index = std::clamp(index, 0, GetLength());
    mText.insert(static_cast<size_t>(index), 1, ch);
    return GetLength();
}

int CString::Insert(int index, const wchar_t* s) {
    if (s) {
        const std::wstring copy(s);
        index = std::clamp(index, 0, GetLength());
        mText.insert(static_cast<size_t>(index), copy);
    }
    return GetLength();
}

int CString::Delete(int index, int count) {
    if (index < 0) index = 0;
    if (count > 0 && index < GetLength())
        mText.erase(static_cast<size_t>(index), static_cast<size_t>(count));
    return GetLength();
}

std::ostream& operator<<(std::ostream& os, const CString& s) {
    return os << qorToUtf8(s.str());
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}
CString& CString::Trim(wchar_t ch) {
    return TrimRight(ch).TrimLeft(ch);
}
CString& CString::Trim(const wchar_t* set) {
    const std::wstring copy(set ? set : L""); // set may point into this string
    return TrimRight(copy.c_str()).TrimLeft(copy.c_str());
}

CString& CString::TrimLeft() {
    trimLeftIf(mText, isSpace);
    return *this;
}

CString& CString::TrimLeft(wchar_t ch) {
    trimLeftIf(mText, [ch](wchar_t c) { return c == ch; });
    return *this;
}

CString& CString::TrimLeft(const wchar_t* set) {
    trimLeftIf(mText, [set](wchar_t c) { return inSet(c, set); });
    return *this;
}

CString& CString::TrimRight() {
    trimRightIf(mText, isSpace);
    return *this;
}

CString& CString::TrimRight(wchar_t ch) {
    trimRightIf(mText, [ch](wchar_t c) { return c == ch; });
    return *this;
}

CString& CString::TrimRight(const wchar_t* set) {
    trimRightIf(mText, [set](wchar_t c) { return inSet(c, set); });
    return *this;
}
