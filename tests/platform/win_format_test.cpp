// The wide formatting engine: Windows wide rules for strings, characters and `long`, the C
// library's digits for numbers.
#include "winstr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace {

std::wstring viaFormatV(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    CString s;
    s.FormatV(fmt, args);
    va_end(args);
    return s.str();
}

TEST(WinFormat, StringWidthsCountWideCharacters) {
    CString s;
    s.Format(L"%15s:  %.3f", L"实体宽度", 1.5);
    EXPECT_EQ(s, L"           实体宽度:  1.500");
    EXPECT_EQ(s.GetLength(), 23);
    // Left justified and cut, by characters rather than bytes.
    EXPECT_EQ(qorFormat(L"[%-6s]", L"中文"), L"[中文    ]");
    EXPECT_EQ(qorFormat(L"[%.2s]", L"实体宽度"), L"[实体]");
    EXPECT_EQ(qorFormat(L"[%6.3s]", L"实体宽度"), L"[   实体宽]");
    // Windows pads strings with zeros too when asked.
    EXPECT_EQ(qorFormat(L"[%05s]", L"ab"), L"[000ab]");
    EXPECT_EQ(qorFormat(L"[%-05s]", L"ab"), L"[ab   ]");
}

TEST(WinFormat, TwoColumnListingLinesPadAndCut) {
    // The shape the module's two-per-line listing uses: a padded label, its value and a run
    // of spaces, then the whole left column cut to 40 characters.
    const wchar_t* spaces = L"                   ";
    CString left, right;
    left.Format(L"%10s:  %s%s", L"地块编号", L"A-01", spaces);
    right.Format(L"%10s:  %s", L"主导性质", L"R2");
    EXPECT_EQ(left, L"      地块编号:  A-01" + std::wstring(19, L' '));
    EXPECT_EQ(right, L"      主导性质:  R2");
    EXPECT_EQ(qorFormat(L"\n%.40s %s", left, right),
              L"\n      地块编号:  A-01" + std::wstring(19, L' ') + L"       主导性质:  R2");

    // A long value: the 47-character column is cut to 40, keeping 12 of the spaces.
    left.Format(L"%10s:  %s%s", L"地块编号", L"城市中心区第十二号综合开发用地", spaces);
    EXPECT_EQ(left.GetLength(), 47);
    EXPECT_EQ(qorFormat(L"\n%.40s %s", left, right),
              L"\n      地块编号:  城市中心区第十二号综合开发用地" + std::wstring(12, L' ') +
                  L"       主导性质:  R2");

    // A label longer than the width is never cut by it.
    EXPECT_EQ(qorFormat(L"%10s:", L"最小居住建筑面积限制值"), L"最小居住建筑面积限制值:");
}

TEST(WinFormat, StringsAndCharactersAreWideUnlessMarkedNarrow) {
    EXPECT_EQ(qorFormat(L"%s|%S|%hs|%ls|%ws", L"w1", "n1", "n2", L"w2", L"w3"), L"w1|n1|n2|w2|w3");
    EXPECT_EQ(qorFormat(L"%c%c|%C|%hc|%lc", L'中', L'a', 'x', 'y', L'文'), L"中a|x|y|文");
    EXPECT_EQ(qorFormat(L"[%3c][%-3c][%03C]", L'中', L'a', 'z'), L"[  中][a  ][00z]");
    // A narrow string's width counts the characters it decodes to.
    EXPECT_EQ(qorFormat(L"[%5S]", "abc"), L"[  abc]");
    EXPECT_EQ(qorFormat(L"[%.2S]", "abc"), L"[ab]");
}

TEST(WinFormat, NarrowTextIsInCodePage936) {
    // 中文 in GBK; the width counts characters.
    EXPECT_EQ(qorFormat(L"[%4S]", "\xD6\xD0\xCE\xC4"), L"[  中文]");
    // The precision of a narrow string counts bytes, as on Windows.
    EXPECT_EQ(qorFormat(L"[%.2S]", "\xD6\xD0\xCE\xC4"), L"[中]");
    EXPECT_EQ(qorFormat(L"[%C]", 'A'), L"[A]");
    EXPECT_EQ(CString("\xBC\xD7"), L"甲");
    EXPECT_EQ(CString("plain"), L"plain");
    // Half a character at the end shows as '?', as the code page's own decoder does.
    EXPECT_EQ(CString("\xBC\xD7\xBC"), L"甲?");
}

TEST(WinFormat, NullStringsPrintAsNullCutByThePrecision) {
    const wchar_t* wide = nullptr;
    const char* narrow = nullptr;
    EXPECT_EQ(qorFormat(L"%s|%S|%8s", wide, narrow, wide), L"(null)|(null)|  (null)");
    EXPECT_EQ(qorFormat(L"%.3s", wide), L"(nu");
}

TEST(WinFormat, PrecisionStopsReadingAnUnterminatedString) {
    const wchar_t wide[3] = {L'a', L'b', L'c'};
    const char narrow[2] = {'x', 'y'};
    EXPECT_EQ(qorFormat(L"%.3s|%.2S", wide, narrow), L"abc|xy");
}

TEST(WinFormat, LongPrintsAsThirtyTwoBits) {
    const long above = 3000000000L; // above 2^31
    EXPECT_EQ(qorFormat(L"%ld", above), L"-1294967296");
    EXPECT_EQ(qorFormat(L"%lu", above), L"3000000000");
    EXPECT_EQ(qorFormat(L"%ld", 0x100000005L), L"5");
    EXPECT_EQ(qorFormat(L"%lx|%lX", 0x123456789AL, -1L), L"3456789a|FFFFFFFF");
    // The 64-bit forms keep everything.
    EXPECT_EQ(qorFormat(L"%lld|%I64d|%I64X", 3000000000LL, -3000000000LL, 0x123456789ALL),
              L"3000000000|-3000000000|123456789A");
    EXPECT_EQ(qorFormat(L"%zu|%Iu|%I32d", size_t{5000000000}, size_t{7}, -2), L"5000000000|7|-2");
    // Short forms truncate too.
    EXPECT_EQ(qorFormat(L"%hd|%hu|%hhu", 70000, 70000, 257), L"4464|4464|1");
}

TEST(WinFormat, IntegerFlagsWidthAndPrecision) {
    EXPECT_EQ(qorFormat(L"[%+d][% d][%05d][%-5d][%5.3d]", 5, 5, -42, 42, 7),
              L"[+5][ 5][-0042][42   ][  007]");
    EXPECT_EQ(qorFormat(L"[%#x][%#o][%X][%u][%i]", 255, 8, 0xBEEF, 4294967295u, -3),
              L"[0xff][010][BEEF][4294967295][-3]");
    // "%.d" prints nothing for zero.
    EXPECT_EQ(qorFormat(L"[%.d][%.d]", 0, 12), L"[][12]");
}

TEST(WinFormat, StarTakesWidthAndPrecisionFromTheArguments) {
    EXPECT_EQ(qorFormat(L"[%*d]", 5, 42), L"[   42]");
    // A negative width means left justification.
    EXPECT_EQ(qorFormat(L"[%*d]", -5, 42), L"[42   ]");
    EXPECT_EQ(qorFormat(L"[%*s]", -4, L"中"), L"[中   ]");
    EXPECT_EQ(qorFormat(L"[%.*f]", 2, 3.14159), L"[3.14]");
    EXPECT_EQ(qorFormat(L"[%*.*s]", 6, 2, L"实体宽度"), L"[    实体]");
    // A negative precision counts as none.
    EXPECT_EQ(qorFormat(L"[%.*s]", -1, L"abc"), L"[abc]");
    EXPECT_EQ(qorFormat(L"[%*d]", std::numeric_limits<int>::min(), 1).substr(0, 3), L"[1 ");
}

TEST(WinFormat, FloatingPointDigitsAreTheCLibrarys) {
    EXPECT_EQ(qorFormat(L"%.2f|%10.4f|%e|%E", 1.005, 3.14159265, 12345.678, 0.5),
              L"1.00|    3.1416|1.234568e+04|5.000000E-01");
    EXPECT_EQ(qorFormat(L"%g|%g|%G|%#g|%a", 0.0001, 1e-5, 1e20, 1.0, 1.0),
              L"0.0001|1e-05|1E+20|1.00000|0x1p+0");
    EXPECT_EQ(qorFormat(L"[%+08.2f][%-8.1f][% .0f]", -3.14159, 2.25, 2.5),
              L"[-0003.14][2.2     ][ 2]");
    EXPECT_EQ(qorFormat(L"%.2Lf|%lf", 2.5L, 0.25), L"2.50|0.250000");
    // float arguments are promoted like any variadic argument.
    EXPECT_EQ(qorFormat(L"%.3f", 1.25f), L"1.250");

    // Same digits as the C library for many values and forms, including long expansions.
    const char* forms[] = {"%.3f", "%.0f", "%.17g", "%e", "%.12e", "%g", "%#.3g", "%.40f"};
    const double values[] = {0.1, 2.0 / 3.0, 1e300, -1e-300, 123456789.125, 5e-324, 0.0, -0.0};
    for (const char* form : forms) {
        const std::wstring wideForm(form, form + std::char_traits<char>::length(form));
        for (double v : values) {
            char expected[512];
            std::snprintf(expected, sizeof expected, form, v);
            EXPECT_EQ(qorFormat(wideForm.c_str(), v), qorFromUtf8(expected)) << form << " " << v;
        }
    }
}

TEST(WinFormat, InfinityAndNanPrintAsTheCLibraryDoes) {
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(qorFormat(L"%f|%f|%5.1f|%E", inf, -inf, std::nan(""), inf), L"inf|-inf|  nan|INF");
}

TEST(WinFormat, PointersPrintAsFullWidthUpperCaseHex) {
    void* p = reinterpret_cast<void*>(std::uintptr_t{0xABC123});
    const std::wstring expected = sizeof(void*) == 8 ? L"0000000000ABC123" : L"00ABC123";
    EXPECT_EQ(qorFormat(L"%p", p), expected);
    EXPECT_EQ(qorFormat(L"[%-20p]", p),
              L"[" + expected + std::wstring(20 - expected.size(), L' ') + L"]");
}

TEST(WinFormat, OddConversionsAreHarmless) {
    int written = 0;
    // %n writes nothing but its pointer is consumed, so the next argument stays in step.
    EXPECT_EQ(qorFormat(L"a%nb%d", &written, 7), L"ab7");
    EXPECT_EQ(written, 0);
    EXPECT_EQ(qorFormat(L"100%% %y|%d", 3), L"100% %y|3");
    EXPECT_EQ(qorFormat(L"abc%"), L"abc%");
    EXPECT_EQ(qorFormat(L"abc%-5"), L"abc%-5");
    EXPECT_EQ(qorFormat(L"%c|%c", 0, L'x'), std::wstring(L"\0|x", 3));
    EXPECT_EQ(qorFormat(nullptr), L"");
    // A runaway width is bounded rather than honoured.
    const std::wstring wide = qorFormat(L"%2000000000d", 1);
    EXPECT_LT(wide.size(), 4u << 20);
    EXPECT_EQ(wide.back(), L'1');
}

TEST(WinFormat, StringObjectsPassAsTheirText) {
    // On Windows a CString handed to a variadic formatter arrives as its pointer; here the
    // formatter maps it, and std::wstring, before the call.
    const CString a(L"甲");
    std::wstring b = L"乙";
    CString s;
    s.Format(L"%s-%s-%s", a, b, CString(L"丙"));
    EXPECT_EQ(s, L"甲-乙-丙");
    s.AppendFormat(L"/%d/%s", 4, a);
    EXPECT_EQ(s, L"甲-乙-丙/4/甲");
    // Formatting a string with itself as an argument.
    s.Format(L"[%s]", s);
    EXPECT_EQ(s, L"[甲-乙-丙/4/甲]");
    EXPECT_EQ(viaFormatV(L"%s=%.1f", L"面积", 12.25), L"面积=12.2");
}

} // namespace
