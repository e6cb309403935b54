// MD5 digests: the RFC vectors, the block boundaries of the padding, and the ANSI conversion
// in front of it (code page 936, its size limit and its replacement character).
#include "toolkit/md5.h"

#include <gtest/gtest.h>

#include <string>

TEST(Md5, KnownDigestsAndTheMiddleHalf) {
    EXPECT_EQ(M_GetMD5(L"", 32), CString(L"d41d8cd98f00b204e9800998ecf8427e"));
    EXPECT_EQ(M_GetMD5(L"", 16), CString(L"8f00b204e9800998"));
    EXPECT_EQ(M_GetMD5(L"abc", 32), CString(L"900150983cd24fb0d6963f7d28e17f72"));
    EXPECT_EQ(M_GetMD5(L"abc", 0), M_GetMD5(L"abc", 32)) << "any length but 16 gives all 32 digits";
    std::wstring digits;
    for (int i = 0; i < 8; ++i)
        digits += L"1234567890";
    EXPECT_EQ(M_GetMD5(digits.c_str(), 32), CString(L"57edf4a22be3c955ac49da2e2107b67a"));
}

TEST(Md5, PaddingAtTheBlockBoundaries) {
    // 55 bytes still fit the count in the first block; 56 and 64 need a second one.
    EXPECT_EQ(M_GetMD5(std::wstring(55, L'a').c_str(), 32),
              CString(L"ef1772b6dff9a122358552954ad0df65"));
    EXPECT_EQ(M_GetMD5(std::wstring(56, L'a').c_str(), 32),
              CString(L"3b0c8ac703f828b04c6c197006d17218"));
    EXPECT_EQ(M_GetMD5(std::wstring(64, L'a').c_str(), 32),
              CString(L"014842d480b571495a4a0363793f7367"));
    // Fed in uneven pieces, the digest is the same.
    CMD5Checksum pieces;
    const std::string text(64, 'a');
    pieces.Update(reinterpret_cast<const std::uint8_t*>(text.data()), 3);
    pieces.Update(reinterpret_cast<const std::uint8_t*>(text.data()) + 3, 61);
    EXPECT_EQ(pieces.Final(), CString(L"014842d480b571495a4a0363793f7367"));
}

TEST(Md5, WholeBlocksAndPiecesInAnyMixGiveOneDigest) {
    // A million 'a's (the long test vector), fed whole and in runs that leave the buffer part
    // full before, between and after whole blocks.
    const std::string text(1000000, 'a');
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const CString want(L"7707d6ae4e027c70eea2a935c2296f21");
    CMD5Checksum whole;
    whole.Update(bytes, text.size());
    EXPECT_EQ(whole.Final(), want);
    CMD5Checksum runs;
    size_t at = 0;
    for (size_t step : {1, 63, 64, 65, 130, 7, 4096}) {
        runs.Update(bytes + at, step);
        at += step;
    }
    runs.Update(bytes + at, text.size() - at);
    EXPECT_EQ(runs.Final(), want);
}

TEST(Md5, DigestsTheAnsiBytesWithinTheBufferLimit) {
    EXPECT_EQ(M_GetMD5(L"中文", 32), CString(L"bcce109775e8e1972e9f5fcda3e12895"));
    // 129 characters take 258 bytes and the terminator: they fit. One more does not, and the
    // digest is the empty text's.
    EXPECT_EQ(M_GetMD5(std::wstring(129, L'用').c_str(), 32),
              CString(L"58e60c422aac2ce95144fa015dfa3d63"));
    EXPECT_EQ(M_GetMD5(std::wstring(130, L'用').c_str(), 32), M_GetMD5(L"", 32));
    // A character without an ANSI code becomes '?', so two texts share a digest.
    EXPECT_EQ(M_GetMD5(L"한", 32), CString(L"d1457b72c3fb323a2671125aef3eab5d"));
    EXPECT_EQ(M_GetMD5(L"한", 32), M_GetMD5(L"?", 32));
}

TEST(Md5, AnsiConversionReportsTheBufferSize) {
    char buf[8] = "xxxxxxx";
    EXPECT_EQ(M_T2A(L"ab", buf, sizeof buf), 8);
    EXPECT_STREQ(buf, "ab");
    EXPECT_EQ(M_T2A(L"abcdefghij", buf, sizeof buf), 0);
    EXPECT_STREQ(buf, "") << "a failed conversion leaves the empty string";
    EXPECT_EQ(M_T2A(L"ab", nullptr, 8), 0);
}
