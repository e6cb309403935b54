// Wide strings and the small MFC collections the module uses, with the Windows wide
// formatting rules: in a wide format %s and %c take wide arguments, %S and %C narrow ones,
// and a `long` prints as 32 bits.
#pragma once

#include "adesk.h"

#include <algorithm>
#include <compare>
#include <cstdarg>
#include <functional> // std::hash
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

using TCHAR = wchar_t;
using LPTSTR = wchar_t*;
using LPCTSTR = const wchar_t*;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using LPSTR = char*;
using LPCSTR = const char*;
using INT_PTR = std::intptr_t;

// ---------------------------------------------------------------- text encodings

// UTF-8 <-> wide. Lone surrogates and values past U+10FFFF become U+FFFD on the way out (a
// surrogate pair is joined first); every invalid UTF-8 sequence becomes one U+FFFD on the way
// in.
std::string qorToUtf8(const std::wstring& s);
std::string qorToUtf8(const wchar_t* s);
std::wstring qorFromUtf8(std::string_view s);

// The one decoder for narrow (ANSI) text: CString's narrow constructor, %S and %C. Every
// narrow-to-wide conversion goes through it so that the code page is chosen in one place.
std::wstring qorFromNarrow(std::string_view s);

// ---------------------------------------------------------------- formatting

// Formats by the Windows wide rules described above. A null format gives an empty string.
std::wstring qorFormatV(const wchar_t* fmt, va_list args);
std::wstring qorFormat(const wchar_t* fmt, ...);

class CString;

namespace qor::detail {

// On Windows a CString passed through "..." is read as its character pointer. Here a class
// object would arrive as garbage, so the variadic entry points map strings to pointers first
// and refuse any other class type at compile time.
template <class T>
concept VarargSafe = std::is_scalar_v<std::decay_t<T>>;

template <class T> decltype(auto) varArg(T&& v) {
    using U = std::remove_cvref_t<T>;
    if constexpr (std::is_same_v<U, CString>) {
        return static_cast<const wchar_t*>(v);
    } else if constexpr (std::is_same_v<U, std::wstring> || std::is_same_v<U, std::string>) {
        return v.c_str();
    } else {
        static_assert(VarargSafe<T>, "only numbers, pointers and strings can be formatted");
        return std::forward<T>(v);
    }
}

} // namespace qor::detail

template <class... Args>
requires(!(qor::detail::VarargSafe<Args> && ...)) std::wstring
    qorFormat(const wchar_t* fmt, Args&&... args) {
    return qorFormat(fmt, qor::detail::varArg(std::forward<Args>(args))...);
}

// ---------------------------------------------------------------- CString

// Indices and lengths are int, as in MFC. Positions out of range are clamped the way MFC
// clamps them; where MFC would assert, the call reads or changes nothing.
class CString {
public:
    CString() = default;
    CString(const wchar_t* s) : mText(s ? s : L"") {}
    CString(const wchar_t* s, int length);
    CString(const char* s); // narrow text, through qorFromNarrow
    explicit CString(wchar_t ch, int repeat = 1);
    CString(std::wstring s) : mText(std::move(s)) {}

    CString& operator=(const wchar_t* s);
    CString& operator=(const char* s);
    CString& operator=(wchar_t ch);
    CString& operator=(std::wstring s) {
        mText = std::move(s);
        return *this;
    }

    // Length and characters
    int GetLength() const { return static_cast<int>(mText.size()); }
    bool IsEmpty() const { return mText.empty(); }
    void Empty() { mText.clear(); }
    wchar_t GetAt(int index) const;    // 0 out of range
    void SetAt(int index, wchar_t ch); // ignored out of range
    wchar_t operator[](int index) const { return GetAt(index); }
    operator const wchar_t*() const { return mText.c_str(); }
    const wchar_t* GetString() const { return mText.c_str(); }
    const std::wstring& str() const { return mText; }

    // Direct buffer access: the caller writes, then ReleaseBuffer sets the length (to the
    // first NUL when given -1).
    wchar_t* GetBuffer();
    wchar_t* GetBuffer(int minLength);
    wchar_t* GetBufferSetLength(int length);
    void ReleaseBuffer(int newLength = -1);

    // Concatenation
    CString& operator+=(const CString& s);
    CString& operator+=(const wchar_t* s);
    CString& operator+=(const char* s);
    CString& operator+=(wchar_t ch);
    friend CString operator+(const CString& a, const CString& b);
    friend CString operator+(const CString& a, const wchar_t* b);
    friend CString operator+(const wchar_t* a, const CString& b);
    friend CString operator+(const CString& a, wchar_t b);
    friend CString operator+(wchar_t a, const CString& b);

    // Comparison: by character value, as wcscmp; the no-case form folds ASCII letters only,
    // as the C locale does, so results never depend on the process locale.
    int Compare(const wchar_t* s) const;
    int CompareNoCase(const wchar_t* s) const;
    friend bool operator==(const CString& a, const CString& b) { return a.mText == b.mText; }
    friend bool operator==(const CString& a, const wchar_t* b) { return a.Compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
        return a.Compare(b.mText.c_str()) <=> 0;
    }
    friend std::strong_ordering operator<=>(const CString& a, const wchar_t* b) {
        return a.Compare(b) <=> 0;
    }

    // Searching. Find and ReverseFind give -1 when absent; searching for NUL finds the end, as
    // the C functions under MFC do.
    int Find(wchar_t ch, int start = 0) const;
    int Find(const wchar_t* sub, int start = 0) const;
    int ReverseFind(wchar_t ch) const;
    int FindOneOf(const wchar_t* set) const;

    // Extraction
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString SpanIncluding(const wchar_t* set) const;
    CString SpanExcluding(const wchar_t* set) const;
    // Returns the next token at or after `start` and moves `start` past its delimiter; at the
    // end returns an empty string and sets `start` to -1.
    CString Tokenize(const wchar_t* delimiters, int& start) const;

    // Changes in place. Case mapping is ASCII only (see Compare).
    CString& MakeUpper();
    CString& MakeLower();
    CString& MakeReverse();
    int Replace(wchar_t oldCh, wchar_t newCh);
    int Replace(const wchar_t* oldText, const wchar_t* newText);
    int Remove(wchar_t ch);
    int Insert(int index, wchar_t ch);
    int Insert(int index, const wchar_t* s);
    int Delete(int index, int count = 1);

    // Trimming: whitespace is the C locale's (tab, line feed, vertical tab, form feed,
    // carriage return, space).
    CString& Trim();
    CString& Trim(wchar_t ch);
    CString& Trim(const wchar_t* set);
    CString& TrimLeft();
    CString& TrimLeft(wchar_t ch);
    CString& TrimLeft(const wchar_t* set);
    CString& TrimRight();
    CString& TrimRight(wchar_t ch);
    CString& TrimRight(const wchar_t* set);

    // Formatting by the Windows wide rules; CString arguments may be passed directly.
    template <class... Args> void Format(const wchar_t* fmt, Args&&... args) {
        mText = qorFormat(fmt, qor::detail::varArg(std::forward<Args>(args))...);
    }
    template <class... Args> void AppendFormat(const wchar_t* fmt, Args&&... args) {
        mText += qorFormat(fmt, qor::detail::varArg(std::forward<Args>(args))...);
    }
    void FormatV(const wchar_t* fmt, va_list args) { mText = qorFormatV(fmt, args); }
    void AppendFormatV(const wchar_t* fmt, va_list args) { mText += qorFormatV(fmt, args); }

private:
    std::wstring mText;
};

// Writes the text as UTF-8.
std::ostream& operator<<(std::ostream& os, const CString& s);

template <> struct std::hash<CString> {
    size_t operator()(const CString& s) const noexcept {
        return std::hash<std::wstring>()(s.str());
    }
};

// ---------------------------------------------------------------- collections

// MFC's growable array. Index errors that MFC reports by assertion or exception leave the
// array unchanged; an out-of-range read gives a default element and an out-of-range write
// through a reference goes to a scratch element that nothing reads.
template <class TYPE, class ARG_TYPE = const TYPE&> class CArray {
public:
    CArray() = default;

    INT_PTR GetSize() const { return static_cast<INT_PTR>(mData.size()); }
    INT_PTR GetCount() const { return GetSize(); }
    INT_PTR GetUpperBound() const { return GetSize() - 1; }
    bool IsEmpty() const { return mData.empty(); }

    // New elements are value-initialised (zero for numbers and pointers). The growth
    // increment is accepted for compatibility; the vector grows geometrically anyway.
    void SetSize(INT_PTR newSize, INT_PTR growBy = -1) {
        (void)growBy;
        if (newSize < 0) return;
        mData.resize(static_cast<size_t>(newSize));
    }
    void FreeExtra() { mData.shrink_to_fit(); }
    void RemoveAll() { mData.clear(); }

    const TYPE& GetAt(INT_PTR i) const { return valid(i) ? mData[idx(i)] : empty(); }
    TYPE& GetAt(INT_PTR i) { return ElementAt(i); }
    TYPE& ElementAt(INT_PTR i) {
        if (valid(i)) return mData[idx(i)];
        mScratch = TYPE();
        return mScratch;
    }
    const TYPE& operator[](INT_PTR i) const { return GetAt(i); }
    TYPE& operator[](INT_PTR i) { return ElementAt(i); }
    const TYPE* GetData() const { return mData.data(); }
    TYPE* GetData() { return mData.data(); }

    void SetAt(INT_PTR i, ARG_TYPE v) {
        if (valid(i)) mData[idx(i)] = v;
    }
    void SetAtGrow(INT_PTR i, ARG_TYPE v) {
        if (i < 0) return;
        TYPE copy(v); // v may refer into the array, which growing moves
        if (i >= GetSize()) mData.resize(idx(i) + 1);
        mData[idx(i)] = std::move(copy);
    }
    INT_PTR Add(ARG_TYPE v) {
        mData.push_back(TYPE(v));
        return GetUpperBound();
    }
    // Returns the index of the first appended element.
    INT_PTR Append(const CArray& src) {
        const INT_PTR first = GetSize();
        if (&src == this) {
            const std::vector<TYPE> copy(mData);
            mData.insert(mData.end(), copy.begin(), copy.end());
        } else {
            mData.insert(mData.end(), src.mData.begin(), src.mData.end());
        }
        return first;
    }
    void Copy(const CArray& src) {
        if (&src != this) mData = src.mData;
    }

    // An index at or past the end grows the array with default elements up to it.
    void InsertAt(INT_PTR i, ARG_TYPE v, INT_PTR count = 1) {
        if (i < 0 || count <= 0) return;
        TYPE copy(v);
        if (i >= GetSize()) {
            mData.resize(idx(i));
            mData.insert(mData.end(), static_cast<size_t>(count), copy);
        } else {
            mData.insert(mData.begin() + i, static_cast<size_t>(count), copy);
        }
    }
    void InsertAt(INT_PTR start, const CArray* src) {
        if (!src || start < 0 || src->IsEmpty()) return;
        const std::vector<TYPE> copy(src->mData);
        if (start > GetSize()) mData.resize(idx(start));
        mData.insert(mData.begin() + start, copy.begin(), copy.end());
    }
    // Removing past the end is an error in MFC; here it removes nothing.
    void RemoveAt(INT_PTR i, INT_PTR count = 1) {
        if (i < 0 || count < 0 || count > GetSize() - i) return;
        mData.erase(mData.begin() + i, mData.begin() + i + count);
    }

    // For range-for in platform code.
    auto begin() { return mData.begin(); }
    auto end() { return mData.end(); }
    auto begin() const { return mData.begin(); }
    auto end() const { return mData.end(); }

private:
    bool valid(INT_PTR i) const { return i >= 0 && i < GetSize(); }
    static size_t idx(INT_PTR i) { return static_cast<size_t>(i); }
    static const TYPE& empty() {
        static const TYPE kEmpty{};
        return kEmpty;
    }

    std::vector<TYPE> mData;
    TYPE mScratch{};
};

class CStringArray : public CArray<CString, const CString&> {};
class CByteArray : public CArray<BYTE, BYTE> {};
class CWordArray : public CArray<WORD, WORD> {};
class CDWordArray : public CArray<DWORD, DWORD> {};
class CUIntArray : public CArray<UINT, UINT> {};
class CPtrArray : public CArray<void*, void*> {};
