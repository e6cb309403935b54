// The command line: what acutPrintf formats reaches the sink, and by default standard output
// as UTF-8.
#include "cmdline.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(CmdlinePrintf, CaptureCollectsTheFormattedTextAndItsUtf8) {
    AcutCapture capture;
    EXPECT_EQ(acutPrintf(L"\n%15s:  %.3f", L"实体宽度", 1.5), 24);
    EXPECT_EQ(acutPrintf(L"%s%d", L"层", 2), 2);
    EXPECT_EQ(capture.text(), L"\n           实体宽度:  1.500层2");
    EXPECT_EQ(capture.utf8(),
              "\n           \xE5\xAE\x9E\xE4\xBD\x93\xE5\xAE\xBD\xE5\xBA\xA6:  1.500"
              "\xE5\xB1\x82"
              "2");
    capture.clear();
    EXPECT_EQ(acutPrintf(nullptr), 0);
    EXPECT_EQ(acutPrintf(L""), 0);
    EXPECT_TRUE(capture.text().empty());
}

TEST(CmdlinePrintf, StringObjectsPassAsTheirText) {
    AcutCapture capture;
    const CString name(L"道路");
    const std::wstring layer = L"0";
    acutPrintf(L"%s on %s, %ld", name, layer, 3000000000L);
    EXPECT_EQ(capture.text(), L"道路 on 0, -1294967296");
}

TEST(CmdlinePrintf, CapturesNestAndRestoreTheSinkBeforeThem) {
    AcutCapture outer;
    acutPrintf(L"a");
    {
        AcutCapture inner;
        acutPrintf(L"b");
        EXPECT_EQ(inner.text(), L"b");
    }
    acutPrintf(L"c");
    EXPECT_EQ(outer.text(), L"ac");
}

TEST(CmdlinePrintf, SinksReceiveEachPrintAndAreReplaceable) {
    std::vector<std::wstring> seen;
    AcutPrintSink previous =
        acutSetPrintSink([&seen](const std::wstring& s) { seen.push_back(s); });
    acutPrintf(L"%d", 1);
    acutPrintf(L"%s", L"二");
    // Replacing hands back the sink that was installed.
    AcutPrintSink mine = acutSetPrintSink(std::move(previous));
    ASSERT_TRUE(mine);
    mine(L"direct");
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"1", L"二", L"direct"}));
}

TEST(CmdlinePrintf, TheDefaultSinkWritesUtf8ToStandardOutput) {
    acutSetPrintSink(nullptr);
    testing::internal::CaptureStdout();
    acutPrintf(L"%s=%d\n", L"宽", 3);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\xE5\xAE\xBD=3\n");
}

TEST(CmdlinePrintf, SPrintfCutsToTheBufferAndAlwaysTerminates) {
    ACHAR buf[4] = {L'#', L'#', L'#', L'#'};
    EXPECT_EQ(acutSPrintf(buf, 4, L"%s", L"ab"), 2);
    EXPECT_EQ(std::wstring(buf), L"ab");
    EXPECT_EQ(acutSPrintf(buf, 4, L"%d", 123456), -1);
    EXPECT_EQ(std::wstring(buf), L"123");
    EXPECT_EQ(acutSPrintf(buf, 4, L"%s", CString(L"甲乙")), 2);
    EXPECT_EQ(std::wstring(buf), L"甲乙");
    EXPECT_EQ(acutSPrintf(buf, 0, L"x"), -1);
    EXPECT_EQ(acutSPrintf(nullptr, 4, L"x"), -1);
}

} // namespace
