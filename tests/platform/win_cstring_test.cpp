// CString with MFC's behaviour at the edges, and the UTF-8 helpers.
#include "winstr.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <unordered_set>

namespace {

TEST(WinCString, ConstructionAndCharacterAccess) {
    const wchar_t* none = nullptr;
    EXPECT_TRUE(CString(none).IsEmpty());
    EXPECT_EQ(CString("abc"), L"abc");
    EXPECT_EQ(CString(L'x', 3), L"xxx");
    EXPECT_TRUE(CString(L'x', -1).IsEmpty());
    EXPECT_EQ(CString(L"abcdef", 3), L"abc");

    CString s(L"中文ab");
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(s[1], L'文');
    EXPECT_EQ(s.GetAt(4), L'\0'); // out of range reads nothing
    EXPECT_EQ(s.GetAt(-1), L'\0');
    s.SetAt(3, L'c');
    s.SetAt(4, L'z');
    s.SetAt(-1, L'z');
    EXPECT_EQ(s, L"中文ac");
    EXPECT_EQ(std::wcslen(static_cast<const wchar_t*>(s)), 4u);
    s.Empty();
    EXPECT_TRUE(s.IsEmpty());
}

TEST(WinCString, ConcatenationAndComparison) {
    CString s = L"ab";
    s += L"cd";
    s += L'e';
    s += "f";
    s += CString(L"g");
    EXPECT_EQ(s, L"abcdefg");
    EXPECT_EQ(L"<" + CString(L"x") + L">", L"<x>");
    EXPECT_EQ(L'[' + CString(L"x") + L']', L"[x]");
    EXPECT_EQ(CString(L"a") + CString(L"b"), L"ab");

    const CString abc(L"abc");
    EXPECT_TRUE(abc == L"abc");
    EXPECT_TRUE(L"abc" == abc);
    EXPECT_TRUE(abc != L"abd");
    EXPECT_TRUE(abc < L"abd");
    EXPECT_TRUE(L"abb" < abc);
    EXPECT_TRUE(CString(L"ab") < abc);
    EXPECT_LT(abc.Compare(L"abd"), 0);
    EXPECT_GT(abc.Compare(L"ab"), 0);
    EXPECT_GT(abc.Compare(nullptr), 0);
    EXPECT_EQ(CString().Compare(nullptr), 0);
    EXPECT_EQ(abc.CompareNoCase(L"ABC"), 0);
    EXPECT_LT(abc.CompareNoCase(L"ABD"), 0);
    EXPECT_GT(abc.CompareNoCase(L"AB"), 0);
    EXPECT_LT(CString(L"ab").CompareNoCase(L"ABC"), 0);
    // Only ASCII letters fold.
    EXPECT_NE(CString(L"ä").CompareNoCase(L"Ä"), 0);

    std::unordered_set<CString> set{CString(L"甲"), CString(L"乙")};
    EXPECT_EQ(set.count(CString(L"甲")), 1u);
}

TEST(WinCString, FindAndReverseFindAtTheEdges) {
    const CString s(L"abcabc");
    EXPECT_EQ(s.Find(L'c'), 2);
    EXPECT_EQ(s.Find(L'c', 3), 5);
    EXPECT_EQ(s.Find(L'c', 6), -1);
    EXPECT_EQ(s.Find(L'c', 100), -1);
    EXPECT_EQ(s.Find(L'a', -5), 0);
    EXPECT_EQ(s.Find(L'z'), -1);
    EXPECT_EQ(s.Find(L"bc", 2), 4);
    EXPECT_EQ(s.Find(L"cab"), 2);
    EXPECT_EQ(s.Find(L"abcabcd"), -1);
    // An empty text is found where the search starts, up to the end.
    EXPECT_EQ(s.Find(L""), 0);
    EXPECT_EQ(s.Find(L"", 6), 6);
    EXPECT_EQ(s.Find(L"", 7), -1);
    EXPECT_EQ(s.Find(static_cast<const wchar_t*>(nullptr)), -1);
    // NUL is found at the end, as wcschr and wcsrchr find it.
    EXPECT_EQ(s.Find(L'\0'), 6);
    EXPECT_EQ(s.ReverseFind(L'\0'), 6);

    EXPECT_EQ(s.ReverseFind(L'a'), 3);
    EXPECT_EQ(s.ReverseFind(L'z'), -1);
    EXPECT_EQ(CString().ReverseFind(L'a'), -1);
    EXPECT_EQ(CString().Find(L'a'), -1);
    EXPECT_EQ(s.FindOneOf(L"xcb"), 1);
    EXPECT_EQ(s.FindOneOf(L"xyz"), -1);
    EXPECT_EQ(s.FindOneOf(L""), -1);
    EXPECT_EQ(CString(L"路径\\文件.dat").ReverseFind(L'\\'), 2);
}

TEST(WinCString, ExtractionClampsItsRange) {
    const CString s(L"abcdef");
    EXPECT_EQ(s.Left(2), L"ab");
    EXPECT_EQ(s.Left(-1), L"");
    EXPECT_EQ(s.Left(100), L"abcdef");
    EXPECT_EQ(s.Right(2), L"ef");
    EXPECT_EQ(s.Right(0), L"");
    EXPECT_EQ(s.Right(100), L"abcdef");
    EXPECT_EQ(s.Mid(2), L"cdef");
    EXPECT_EQ(s.Mid(2, 2), L"cd");
    EXPECT_EQ(s.Mid(-3, 2), L"ab");
    EXPECT_EQ(s.Mid(4, 100), L"ef");
    EXPECT_EQ(s.Mid(6), L"");
    EXPECT_EQ(s.Mid(100, 1), L"");
    EXPECT_EQ(s.Mid(1, -1), L"");
    EXPECT_EQ(s.Mid(1, 0x7FFFFFFF), L"bcdef");
    EXPECT_EQ(CString(L"1:1000").Mid(2), L"1000");

    EXPECT_EQ(CString(L"123abc").SpanIncluding(L"0123456789"), L"123");
    EXPECT_EQ(CString(L"abc").SpanIncluding(L"0123456789"), L"");
    EXPECT_EQ(CString(L"名称,值").SpanExcluding(L",;"), L"名称");
    EXPECT_EQ(CString(L"名称").SpanExcluding(L",;"), L"名称");
}

TEST(WinCString, TokenizeWalksTokensAndSkipsEmptyOnes) {
    const CString s(L"  a, b,,c  ");
    std::vector<std::wstring> tokens;
    int pos = 0;
    for (CString t = s.Tokenize(L" ,", pos); pos != -1; t = s.Tokenize(L" ,", pos))
        tokens.push_back(t.str());
    EXPECT_EQ(tokens, (std::vector<std::wstring>{L"a", L"b", L"c"}));

    pos = 0;
    EXPECT_EQ(CString(L"12,34,56").Tokenize(L",", pos), L"12");
    EXPECT_EQ(pos, 3);
    pos = 8;
    EXPECT_EQ(CString(L"12,34,56").Tokenize(L",", pos), L"");
    EXPECT_EQ(pos, -1);
    // All delimiters: nothing to return.
    pos = 0;
    EXPECT_EQ(CString(L",,,").Tokenize(L",", pos), L"");
    EXPECT_EQ(pos, -1);
    // A negative start is the end of the walk, never a read before the text.
    pos = -3;
    EXPECT_EQ(CString(L"abc").Tokenize(L",", pos), L"");
    EXPECT_EQ(pos, -1);
    // With no delimiters the rest is one token and the walk ends after it.
    pos = 1;
    EXPECT_EQ(CString(L"abc").Tokenize(L"", pos), L"bc");
    EXPECT_EQ(CString(L"abc").Tokenize(L"", pos), L"");
    EXPECT_EQ(pos, -1);
}

TEST(WinCString, TrimRemovesWhitespaceCharactersOrSets) {
    CString s(L" \t 中 文 \r\n");
    EXPECT_EQ(s.Trim(), L"中 文");
    s = L"xxabcxx";
    EXPECT_EQ(s.TrimLeft(L'x'), L"abcxx");
    EXPECT_EQ(s.TrimRight(L'x'), L"abc");
    s = L"xyaxyb yx";
    EXPECT_EQ(s.Trim(L"xy "), L"axyb");
    s = L"--a--";
    EXPECT_EQ(s.Trim(L'-'), L"a");
    s = L"   ";
    EXPECT_EQ(s.Trim(), L"");
    s = L" a ";
    EXPECT_EQ(s.TrimRight(), L" a");
    EXPECT_EQ(s.TrimLeft(), L"a");
    // The set may be the string itself.
    s = L"abba";
    EXPECT_EQ(s.Trim(static_cast<const wchar_t*>(s)), L"");
}

TEST(WinCString, ReplaceRemoveInsertAndDeleteReportCounts) {
    CString s(L"aaaa");
    EXPECT_EQ(s.Replace(L"aa", L"b"), 2);
    EXPECT_EQ(s, L"bb");
    s = L"a-b-c";
    EXPECT_EQ(s.Replace(L"-", L""), 2);
    EXPECT_EQ(s, L"abc");
    EXPECT_EQ(s.Replace(L"", L"x"), 0);
    EXPECT_EQ(s.Replace(L"z", L"x"), 0);
    EXPECT_EQ(s.Replace(L"b", nullptr), 1);
    EXPECT_EQ(s, L"ac");
    s = L"路径/子/文件";
    EXPECT_EQ(s.Replace(L'/', L'\\'), 2);
    EXPECT_EQ(s, L"路径\\子\\文件");
    // Replacing a string by itself inside itself.
    s = L"abc";
    EXPECT_EQ(s.Replace(static_cast<const wchar_t*>(s), L"x"), 1);
    EXPECT_EQ(s, L"x");

    s = L"a,b,,c";
    EXPECT_EQ(s.Remove(L','), 3);
    EXPECT_EQ(s, L"abc");

    EXPECT_EQ(s.Insert(1, L'-'), 4);
    EXPECT_EQ(s, L"a-bc");
    EXPECT_EQ(s.Insert(100, L"!"), 5); // past the end appends
    EXPECT_EQ(s.Insert(-5, L"<"), 6);  // before the start prepends
    EXPECT_EQ(s, L"<a-bc!");
    EXPECT_EQ(s.Insert(0, static_cast<const wchar_t*>(s)), 12);
    EXPECT_EQ(s, L"<a-bc!<a-bc!");

    s = L"abcdef";
    EXPECT_EQ(s.Delete(1, 2), 4);
    EXPECT_EQ(s, L"adef");
    EXPECT_EQ(s.Delete(2, 100), 2);
    EXPECT_EQ(s.Delete(10), 2);
    EXPECT_EQ(s.Delete(0, -1), 2);
    EXPECT_EQ(s.Delete(-1), 1);
    EXPECT_EQ(s, L"d");
}

TEST(WinCString, CaseAndReversal) {
    CString s(L"abc中ä");
    EXPECT_EQ(s.MakeUpper(), L"ABC中ä");
    EXPECT_EQ(s.MakeLower(), L"abc中ä");
    EXPECT_EQ(s.MakeReverse(), L"ä中cba");
}

TEST(WinCString, BufferAccessSetsTheLength) {
    CString s;
    wchar_t* p = s.GetBuffer(10);
    std::wcscpy(p, L"hello");
    s.ReleaseBuffer();
    EXPECT_EQ(s, L"hello");
    EXPECT_EQ(s.GetLength(), 5);

    p = s.GetBufferSetLength(3);
    EXPECT_EQ(s.GetLength(), 3);
    p[2] = L'y';
    s.ReleaseBuffer(2);
    EXPECT_EQ(s, L"he");
    s.ReleaseBuffer(100); // never grows the text
    EXPECT_EQ(s, L"he");
    p = s.GetBuffer();
    p[1] = L'i';
    s.ReleaseBuffer();
    EXPECT_EQ(s, L"hi");
    EXPECT_EQ(CString(L"abc").GetBufferSetLength(-4), std::wstring());
}

TEST(WinUtf8, EncodesAndDecodesValidText) {
    const std::wstring text = L"实体宽度 A1 ä €";
    EXPECT_EQ(qorToUtf8(L"实体"), "\xE5\xAE\x9E\xE4\xBD\x93");
    EXPECT_EQ(qorFromUtf8(qorToUtf8(text)), text);
    EXPECT_EQ(qorToUtf8(std::wstring(L"\U0001F600")), "\xF0\x9F\x98\x80");
    EXPECT_EQ(qorFromUtf8("\xF0\x9F\x98\x80"), std::wstring(1, static_cast<wchar_t>(0x1F600)));
    EXPECT_EQ(qorToUtf8(static_cast<const wchar_t*>(nullptr)), "");
    EXPECT_EQ(qorFromUtf8(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(WinUtf8, InvalidSequencesBecomeReplacementCharacters) {
    const std::wstring r(1, L'\xFFFD');
    EXPECT_EQ(qorFromUtf8("\xFF"), r);
    EXPECT_EQ(qorFromUtf8("a\xE5\xAE"), L"a" + r); // cut at the end
    EXPECT_EQ(qorFromUtf8("a\xE5\xAE"
                          "b"),
              L"a" + r + L"b");                                // cut in the middle
    EXPECT_EQ(qorFromUtf8("\xC0\xAF"), r + r);                 // overlong
    EXPECT_EQ(qorFromUtf8("\xED\xA0\x80"), r + r + r);         // encoded surrogate
    EXPECT_EQ(qorFromUtf8("\xF4\x90\x80\x80"), r + r + r + r); // past U+10FFFF
    EXPECT_EQ(qorFromUtf8("\x80\x80"), r + r);                 // stray continuations

    // Wide text that cannot be encoded: lone surrogates and values past the last plane.
    // Pairs left over from UTF-16 are joined.
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(qorToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), replacement);
    EXPECT_EQ(qorToUtf8(std::wstring(L"a") + static_cast<wchar_t>(0xDC00)), "a" + replacement);
    EXPECT_EQ(qorToUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), replacement);
    EXPECT_EQ(qorToUtf8(std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}),
              "\xF0\x9F\x98\x80");
}

} // namespace
