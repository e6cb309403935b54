// qor demo as the README runs it: the site is built, saved, reopened, listed, drawn and
// exported, and the picture really shows the roads.
#include "accolor.h"
#include "girender.h"
#include "host/demowindow.h"
#include "support/qorrun.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

std::string head(const std::filesystem::path& file, size_t n) {
    std::ifstream in(file, std::ios::binary);
    std::string s(n, '\0');
    in.read(s.data(), static_cast<std::streamsize>(n));
    s.resize(static_cast<size_t>(in.gcount()));
    return s;
}

class QorDemo : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        sDir = new TempDir;
        sRun = new Outcome(runQor("demo " + quoted((sDir->path() / "out").string())));
    }
    static void TearDownTestSuite() {
        delete sRun;
        delete sDir;
    }

    static std::filesystem::path out(const std::string& name) {
        return sDir->path() / "out" / name;
    }

    static TempDir* sDir;
    static Outcome* sRun;
};

TempDir* QorDemo::sDir = nullptr;
Outcome* QorDemo::sRun = nullptr;

TEST_F(QorDemo, BuildsSavesListsAndWritesEveryFile) {
    ASSERT_EQ(sRun->status, 0) << sRun->out;
    EXPECT_NE(sRun->out.find("AcdbQorDubLi"), std::string::npos) << sRun->out;
    EXPECT_NE(sRun->out.find("the module's objects exploded"), std::string::npos) << sRun->out;
    EXPECT_EQ(head(out("site.qdb"), 16), std::string("SQLite format 3\0", 16));
    EXPECT_EQ(head(out("site.png"), 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(head(out("site.pdf"), 5), "%PDF-");
    for (const char* dxf : {"site.dxf", "site-exploded.dxf"})
        EXPECT_NE(head(out(dxf), 16).find("SECTION"), std::string::npos) << dxf;
}

// The spine road is a double line 16 wide along y = 75 on the road layer (colour 8): its
// sides run at y = 67 and y = 83 and nothing is drawn between them. Street trees stand at
// x = 10, 30, ... close to both sides, so the sides are sampled midway between trees.
TEST_F(QorDemo, ThePictureShowsTheSpineRoadsSideLinesAndNothingBetweenThem) {
    ASSERT_EQ(sRun->status, 0) << sRun->out;
    AcGiRenderImage image;
    std::wstring error;
    ASSERT_TRUE(acgiReadPng(out("site.png").wstring().c_str(), image, error)) << qorToUtf8(error);
    const AcGiRenderView view({kQorDemoWindow[0], kQorDemoWindow[1]},
                              {kQorDemoWindow[2], kQorDemoWindow[3]}, image.width(),
                              image.height());
    ASSERT_TRUE(view.isValid());
    const std::uint32_t road = AcCmEntityColor::lookUpRGB(8) & 0xFFFFFF;

    // A pixel inked with the road's colour: antialiasing blends it with the white page, so
    // every channel shows the same share of it; a third at least counts.
    auto roadInk = [&](std::uint32_t p) {
        double lo = 1.0, hi = 0.0;
        for (int shift : {0, 8, 16}) {
            const double page = 255.0, ink = (road >> shift) & 0xFF, got = (p >> shift) & 0xFF;
            const double share = (page - got) / (page - ink);
            lo = std::min(lo, share);
            hi = std::max(hi, share);
        }
        return lo >= 0.33 && hi - lo <= 0.15;
    };
    // The road's ink within a pixel of the point.
    auto roadNear = [&](double x, double y) {
        const AcGePoint2d d = view.toDevice({x, y, 0});
        const int cx = static_cast<int>(d.x), cy = static_cast<int>(d.y);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (roadInk(image.pixel(cx + dx, cy + dy))) return true;
        return false;
    };
    auto white = [&](double x, double y) {
        const AcGePoint2d d = view.toDevice({x, y, 0});
        return (image.pixel(static_cast<int>(d.x), static_cast<int>(d.y)) & 0xFFFFFF) == 0xFFFFFF;
    };

    int sampled = 0, onSides = 0, clearInside = 0;
    for (double x = 16; x <= 224; x += 20) {
        for (double t = 0; t <= 8; t += 2) {          // between the trees at x - 6 and x + 14
            if (x + t > 50 && x + t < 70) continue;   // the lane leaves the north side at 60
            if (x + t > 110 && x + t < 130) continue; // the cross street meets the south side
            ++sampled;
            onSides += roadNear(x + t, 67) && roadNear(x + t, 83);
            clearInside += white(x + t, 71) && white(x + t, 75) && white(x + t, 79);
        }
    }
    ASSERT_GT(sampled, 30);
    EXPECT_EQ(onSides, sampled);
    // Labels may stand on the road; the rest of its inside is empty.
    EXPECT_GE(clearInside, sampled * 8 / 10);
}

} // namespace
