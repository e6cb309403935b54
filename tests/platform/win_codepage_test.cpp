// Code pages 936 and UTF-8: the Windows conventions for sizes, NUL-terminated input,
// replacement of what a code page cannot hold, and failures.
#include "wincodepage.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

// "中文" in GBK.
const std::string kZhongwen = "\xD6\xD0\xCE\xC4";

std::string toAnsi(const std::wstring& s, BOOL* used = nullptr, LPCSTR defaultChar = nullptr) {
    const int n = WideCharToMultiByte(CP_ACP, 0, s.data(), static_cast<int>(s.size()), nullptr, 0,
                                      defaultChar, used);
    std::string out(static_cast<size_t>(n), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_ACP, 0, s.data(), static_cast<int>(s.size()), out.data(), n,
                            defaultChar, used);
    return out;
}

std::wstring fromPage(UINT page, const std::string& s, DWORD flags = 0) {
    const int n =
        MultiByteToWideChar(page, flags, s.data(), static_cast<int>(s.size()), nullptr, 0);
    std::wstring out(static_cast<size_t>(n), L'\0');
    if (n > 0)
        MultiByteToWideChar(page, flags, s.data(), static_cast<int>(s.size()), out.data(), n);
    return out;
}

TEST(CodePage, TheAnsiCodePageIsGbk) {
    EXPECT_EQ(GetACP(), 936u);
    EXPECT_EQ(GetOEMCP(), 936u);
    EXPECT_TRUE(IsValidCodePage(936));
    EXPECT_TRUE(IsValidCodePage(CP_UTF8));
    EXPECT_FALSE(IsValidCodePage(1252));

    EXPECT_EQ(toAnsi(L"中文 ABC"), kZhongwen + " ABC");
    EXPECT_EQ(fromPage(CP_ACP, kZhongwen + " ABC"), L"中文 ABC");
    EXPECT_EQ(fromPage(936, "\x80"), L"€");
    EXPECT_EQ(toAnsi(L"规划道路"), "\xB9\xE6\xBB\xAE\xB5\xC0\xC2\xB7");
}

TEST(CodePage, SizesFollowTheWindowsConventions) {
    // -1: the input ends at its NUL, which is converted and counted too.
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"中文", -1, nullptr, 0, nullptr, nullptr), 5);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"中文", 2, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, kZhongwen.c_str(), -1, nullptr, 0), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "\xE4\xB8\xAD", 3, nullptr, 0), 1);

    char narrow[8];
    std::fill(std::begin(narrow), std::end(narrow), 'x');
    ASSERT_EQ(WideCharToMultiByte(CP_ACP, 0, L"中文", -1, narrow, 5, nullptr, nullptr), 5);
    EXPECT_EQ(std::string(narrow), kZhongwen);
    EXPECT_EQ(narrow[5], 'x') << "nothing is written past the result";

    wchar_t wide[4] = {L'x', L'x', L'x', L'x'};
    ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, kZhongwen.c_str(), -1, wide, 3), 3);
    EXPECT_EQ(std::wstring(wide), L"中文");
    EXPECT_EQ(wide[3], L'x');

    // An embedded NUL inside an explicit length is just a character.
    EXPECT_EQ(fromPage(CP_ACP, std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(CodePage, ABufferTooSmallFailsAndReceivesNothing) {
    char narrow[4] = {'x', 'x', 'x', 'x'};
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"中文", -1, narrow, 4, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::string(narrow, 4), "xxxx");

    wchar_t wide[2] = {L'x', L'x'};
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", 3, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(wide[0], L'x');
}

TEST(CodePage, CharactersWithoutACodeTakeTheDefaultCharacter) {
    BOOL used = TRUE;
    EXPECT_EQ(toAnsi(L"ok", &used), "ok");
    EXPECT_EQ(used, FALSE);

    // Thai and an emoji (given as a surrogate pair, one character) have no GBK code.
    EXPECT_EQ(toAnsi(L"a\u0E01b\xD83D\xDE00", &used), "a?b?");
    EXPECT_EQ(used, TRUE);
    EXPECT_EQ(toAnsi(std::wstring(L"\U0001F600中"), &used), "?" + kZhongwen.substr(0, 2));
    EXPECT_EQ(toAnsi(L"\u0E01", &used, "*"), "*");
    // A double-byte default is a lead and a trail byte.
    EXPECT_EQ(toAnsi(L"\u0E01", &used, "\xA1\xF5"), "\xA1\xF5");
    // A lone surrogate has no code either.
    EXPECT_EQ(toAnsi(std::wstring(1, static_cast<wchar_t>(0xDC00))), "?");
}

TEST(CodePage, InvalidGbkBytesBecomeQuestionMarks) {
    EXPECT_EQ(fromPage(CP_ACP, "\xFF"), L"?");
    EXPECT_EQ(fromPage(CP_ACP, "a\xA2\xA0z"), L"a?z") << "an unmapped pair is one character";
    EXPECT_EQ(fromPage(CP_ACP, "\x81 "), L"? ") << "a lead byte without a trail byte";
    EXPECT_EQ(fromPage(CP_ACP, "A\x81"), L"A?") << "a lead byte cut off at the end";

    wchar_t wide[8];
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, "A\x81", 2, wide, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, kZhongwen.c_str(), 4, wide, 8), 2);
}

TEST(CodePage, Utf8ReplacesInvalidSequencesAndTakesNoDefaultCharacter) {
    EXPECT_EQ(fromPage(CP_UTF8, "a\xC3(b"), L"a\uFFFD(b");
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(fromPage(CP_UTF8, "a\xC3(b", MB_ERR_INVALID_CHARS), L"");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    // A real U+FFFD in the input is not an error.
    EXPECT_EQ(fromPage(CP_UTF8, "\xEF\xBF\xBD", MB_ERR_INVALID_CHARS), L"\uFFFD");

    const std::wstring lone(1, static_cast<wchar_t>(0xD800));
    char buf[8] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, lone.data(), 1, buf, 8, nullptr, nullptr), 3);
    EXPECT_EQ(std::string(buf, 3), "\xEF\xBF\xBD");
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, lone.data(), 1, buf, 8, nullptr,
                                  nullptr),
              0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    // A pair from UTF-16 text is one character of four bytes.
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"\xD83D\xDE00", 2, nullptr, 0, nullptr, nullptr), 4);

    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", 1, buf, 8, nullptr, &used), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", 1, buf, 8, "?", nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(CodePage, BadArgumentsFailWithTheirCode) {
    char buf[8];
    wchar_t wide[8];
    struct Case {
        const char* what;
        std::function<int()> call;
        DWORD error;
    };
    const Case cases[] = {
        {"unknown code page",
         [&] { return WideCharToMultiByte(1252, 0, L"a", 1, buf, 8, nullptr, nullptr); },
         ERROR_INVALID_PARAMETER},
        {"null input",
         [&] { return WideCharToMultiByte(CP_ACP, 0, nullptr, 1, buf, 8, nullptr, nullptr); },
         ERROR_INVALID_PARAMETER},
        {"empty input",
         [&] { return WideCharToMultiByte(CP_ACP, 0, L"a", 0, buf, 8, nullptr, nullptr); },
         ERROR_INVALID_PARAMETER},
        {"negative length",
         [&] { return WideCharToMultiByte(CP_ACP, 0, L"a", -2, buf, 8, nullptr, nullptr); },
         ERROR_INVALID_PARAMETER},
        {"size without a buffer",
         [&] { return WideCharToMultiByte(CP_ACP, 0, L"a", 1, nullptr, 8, nullptr, nullptr); },
         ERROR_INVALID_PARAMETER},
        {"UTF-8 flag on 936",
         [&] {
             return WideCharToMultiByte(CP_ACP, WC_ERR_INVALID_CHARS, L"a", 1, buf, 8, nullptr,
                                        nullptr);
         },
         ERROR_INVALID_FLAGS},
        {"936 flag on UTF-8",
         [&] { return MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "a", 1, wide, 8); },
         ERROR_INVALID_FLAGS},
        {"precomposed and composite",
         [&] {
             return MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED | MB_COMPOSITE, "a", 1, wide, 8);
         },
         ERROR_INVALID_FLAGS},
        {"negative output size", [&] { return MultiByteToWideChar(CP_ACP, 0, "a", 1, wide, -1); },
         ERROR_INVALID_PARAMETER},
    };
    for (const Case& c : cases) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(c.call(), 0) << c.what;
        EXPECT_EQ(GetLastError(), c.error) << c.what;
    }
    // The symbolic ANSI pages all mean 936.
    EXPECT_EQ(MultiByteToWideChar(CP_THREAD_ACP, MB_PRECOMPOSED, kZhongwen.c_str(), 4, wide, 8), 2);
}

TEST(CodePage, WholeStringHelpersFollowTheSameRules) {
    bool used = false;
    EXPECT_EQ(qorToCodePage(936, L"中文\u0E01", &used), kZhongwen + "?");
    EXPECT_TRUE(used);
    EXPECT_EQ(qorFromCodePage(CP_ACP, kZhongwen + "\xFF"), L"中文?");
    EXPECT_EQ(qorToCodePage(CP_UTF8, L"中"), "\xE4\xB8\xAD");
    EXPECT_EQ(qorFromCodePage(CP_UTF8, "\xE4\xB8\xAD"), L"中");
    EXPECT_EQ(qorToCodePage(1252, L"abc"), "");
    EXPECT_EQ(qorFromCodePage(1252, "abc"), L"");
}

TEST(CodePage, ThreadsConvertIndependently) {
    // Each thread keeps its own converter state; interleaved conversions must not mix.
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t, &failures] {
            const std::wstring text = t % 2 ? L"规划道路\u0E01" : L"中文abc";
            const std::string expected =
                t % 2 ? "\xB9\xE6\xBB\xAE\xB5\xC0\xC2\xB7?" : kZhongwen + "abc";
            for (int i = 0; i < 2000; ++i) {
                if (qorToCodePage(936, text) != expected) ++failures[t];
                if (qorFromCodePage(936, expected) != (t % 2 ? L"规划道路?" : text)) ++failures[t];
            }
        });
    for (auto& th : threads)
        th.join();
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(failures[t], 0) << "thread " << t;
}

} // namespace
