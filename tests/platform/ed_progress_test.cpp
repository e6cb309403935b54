// The progress meter as a terminal sees it: a bar redrawn in place, then its line cleared.
#include "acedprogress.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

// The meter drawing into a temporary file as if it were an 60-column terminal.
class EdProgress : public ::testing::Test {
protected:
    void SetUp() override {
        mFile = std::tmpfile();
        ASSERT_NE(mFile, nullptr);
        qorSetProgressOutput(mFile, 60);
    }
    void TearDown() override {
        acedRestoreStatusBar();
        qorSetProgressOutput(nullptr);
        std::fclose(mFile);
    }
    std::string written() {
        std::fflush(mFile);
        std::rewind(mFile);
        std::string out;
        char buf[512];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, mFile)) > 0)
            out.append(buf, n);
        return out;
    }
    std::FILE* mFile = nullptr;
};

TEST_F(EdProgress, TheBarFillsWithThePositionAndItsLineIsClearedAtTheEnd) {
    ASSERT_EQ(acedSetStatusBarProgressMeter(L"正在处理", 0, 200), 0);
    ASSERT_EQ(acedSetStatusBarProgressMeterPos(100), 0);
    std::string out = written();
    const size_t last = out.rfind('\r');
    ASSERT_NE(last, std::string::npos);
    const std::string line = out.substr(last);
    // The label, then a bar half full: 60 columns less the label (8) and 8 more is 44.
    EXPECT_EQ(line, "\r正在处理 [" + std::string(22, '#') + std::string(22, '-') + "]  50%");
    acedRestoreStatusBar();
    out = written();
    EXPECT_EQ(out.substr(out.size() - 4), "\r\033[K");
}

TEST_F(EdProgress, PositionsClampAdvanceAndNeedAMeter) {
    EXPECT_EQ(acedSetStatusBarProgressMeterPos(3), -1) << "no meter yet";
    EXPECT_EQ(acedSetStatusBarProgressMeter(L"x", 10, 5), -1) << "an empty range";
    ASSERT_EQ(acedSetStatusBarProgressMeter(L"x", 0, 10), 0);
    acedSetStatusBarProgressMeterPos(4);
    acedSetStatusBarProgressMeterPos(-3); // advances by three
    std::string out = written();
    EXPECT_EQ(out.substr(out.size() - 4), " 70%");
    acedSetStatusBarProgressMeterPos(50);
    out = written();
    EXPECT_EQ(out.substr(out.size() - 4), "100%");
    // Moves that do not change the percentage draw nothing new.
    const size_t before = written().size();
    acedSetStatusBarProgressMeterPos(10);
    EXPECT_EQ(written().size(), before);
    acedRestoreStatusBar();
    EXPECT_EQ(acedSetStatusBarProgressMeterPos(1), -1);
}

} // namespace
