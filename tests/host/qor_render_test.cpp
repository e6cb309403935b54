// qor render as users run it: a drawing with plain lines and a double line (drawn by the
// object module) into PNG, SVG and PDF pictures, and the errors for bad arguments.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "girender.h"
#include "support/qorrun.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

bool isRed(std::uint32_t p) {
    return ((p >> 16) & 0xFF) > 200 && ((p >> 8) & 0xFF) < 60 && (p & 0xFF) < 60;
}
bool isBlue(std::uint32_t p) {
    return (p & 0xFF) > 200 && ((p >> 16) & 0xFF) < 60 && ((p >> 8) & 0xFF) < 60;
}
bool isWhite(std::uint32_t p) {
    return (p & 0xFFFFFF) == 0xFFFFFF;
}

class QorRender : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return (mDir.path() / name).string(); }

    std::string head(const std::string& name, size_t n) const {
        std::ifstream in(path(name), std::ios::binary);
        std::string s(n, '\0');
        in.read(s.data(), static_cast<std::streamsize>(n));
        s.resize(static_cast<size_t>(in.gcount()));
        return s;
    }

    AcGiRenderImage png(const std::string& name) const {
        AcGiRenderImage image;
        std::wstring error;
        EXPECT_TRUE(acgiReadPng(qorFromUtf8(path(name)).c_str(), image, error)) << qorToUtf8(error);
        return image;
    }

    // A drawing whose current layer 道路 is red, with a blue line 1 mm wide along y = -5 from
    // x = 0 to 10; then, through the test commands, a double line of width 2.5 along (0,0) (10,0)
    // (10,5) on that layer. Its sides run at y = -1.25 and y = 1.25, then up x = 11.25 and
    // x = 8.75.
    void SetUp() override {
        {
            AcDbDatabase db;
            AcDbLayerTable* layers = nullptr;
            ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
            auto* road = new AcDbLayerTableRecord();
            road->setName(L"道路");
            AcCmColor red;
            red.setColorIndex(1);
            road->setColor(red);
            AcDbObjectId roadId;
            ASSERT_EQ(layers->add(roadId, road), Acad::eOk);
            road->close();
            layers->close();
            ASSERT_EQ(db.setClayer(roadId), Acad::eOk);
            AcDbBlockTableRecord* ms = nullptr;
            ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
            auto* line = new AcDbLine(AcGePoint3d(0, -5, 0), AcGePoint3d(10, -5, 0));
            line->setColorIndex(5);
            line->setLineWeight(AcDb::kLnWt100);
            ASSERT_EQ(ms->appendAcDbEntity(line), Acad::eOk);
            line->close();
            ms->close();
            ASSERT_EQ(db.saveAs(qorFromUtf8(path("base.qdb")).c_str()), Acad::eOk);
        }
        std::ofstream(path("make.txt"), std::ios::binary) << "DUBLINE\n2.5\n0,0\n10,0\n@0,5\n\n";
        const Outcome made =
            runQor("run --load " + quoted(QOR_TEST_COMMANDS) + " " + quoted(path("make.txt")) +
                   " --open " + quoted(path("base.qdb")) + " --save " + quoted(path("site.qdb")));
        ASSERT_EQ(made.status, 0) << made.out;
    }

    TempDir mDir;
};

// The window (-2,-7)-(14,7) on 800 pixels: 50 a unit; world (x, y) is pixel
// (100 + 50x, 350 - 50y).
TEST_F(QorRender, TheDoubleLineShowsItsTwoSidesInTheLayerColour) {
    const Outcome r = runQor("render " + quoted(path("site.qdb")) + " -o " +
                             quoted(path("site.png")) + " --window -2,-7,14,7 --width 800");
    ASSERT_EQ(r.status, 0) << r.out;
    const AcGiRenderImage image = png("site.png");
    ASSERT_EQ(image.width(), 800);
    ASSERT_EQ(image.height(), 700);
    // Along the bottom run, x from 1 to 8: the sides at rows 287 and 412, nothing on the
    // centre line at row 350.
    for (int x = 150; x <= 500; x += 25) {
        EXPECT_TRUE(isRed(image.pixel(x, 287))) << x;
        EXPECT_TRUE(isRed(image.pixel(x, 412))) << x;
        EXPECT_TRUE(isWhite(image.pixel(x, 350))) << x;
    }
    // Up the corner run, y from 2 to 4: the sides at columns 537 and 662.
    for (int y = 150; y <= 250; y += 25) {
        EXPECT_TRUE(isRed(image.pixel(537, y))) << y;
        EXPECT_TRUE(isRed(image.pixel(662, y))) << y;
        EXPECT_TRUE(isWhite(image.pixel(600, y))) << y;
    }
    // The plain line, blue along row 600.
    EXPECT_TRUE(isBlue(image.pixel(300, 600)) || isBlue(image.pixel(300, 599)));
}

TEST_F(QorRender, WithoutTheModuleTheDoubleLineIsAProxyAndDrawsNothing) {
    const Outcome r = runQor("--no-module render " + quoted(path("site.qdb")) + " -o " +
                             quoted(path("bare.png")) + " --window -2,-7,14,7 --width 800");
    ASSERT_EQ(r.status, 0) << r.out;
    const AcGiRenderImage image = png("bare.png");
    int red = 0, blue = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            red += isRed(image.pixel(x, y));
            blue += isBlue(image.pixel(x, y));
        }
    EXPECT_EQ(red, 0);
    EXPECT_GT(blue, 400);
}

TEST_F(QorRender, FittedPicturesAndDocumentsAreWritten) {
    // Fitted to the extents at the default width, on either background.
    Outcome r = runQor("render " + quoted(path("site.qdb")) + " -o " + quoted(path("fit.png")) +
                       " --background black");
    ASSERT_EQ(r.status, 0) << r.out;
    const AcGiRenderImage image = png("fit.png");
    EXPECT_EQ(image.width(), 1600);
    EXPECT_EQ(image.pixel(0, 0) & 0xFFFFFF, 0u);
    // The double line's own extents are those of its centre line; the view still takes in
    // its outer side, beyond the end of the blue line.
    // (Its one-pixel sides may straddle two pixels, each half lit on the black page.)
    auto reddish = [](std::uint32_t p) {
        return ((p >> 16) & 0xFF) >= 120 && ((p >> 8) & 0xFF) < 40 && (p & 0xFF) < 40;
    };
    int redRight = -1, blueRight = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            if (reddish(image.pixel(x, y))) redRight = std::max(redRight, x);
            if (isBlue(image.pixel(x, y))) blueRight = std::max(blueRight, x);
        }
    EXPECT_GT(redRight, blueRight + image.width() / 20);
    EXPECT_LT(redRight, image.width() - 10);

    r = runQor("render " + quoted(path("site.qdb")) + " -o " + quoted(path("site.svg")));
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(head("site.svg", 5), "<?xml");
    EXPECT_NE(head("site.svg", 400).find("<svg"), std::string::npos);

    r = runQor("render " + quoted(path("site.qdb")) + " -o " + quoted(path("site.PDF")) +
               " --paper a3,landscape");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(head("site.PDF", 5), "%PDF-");
    // An A3 landscape page: 1190.55 by 841.89 points.
    const std::string pdf = head("site.PDF", 100000);
    EXPECT_NE(pdf.find("/MediaBox [ 0 0 1190.55"), std::string::npos);
}

TEST_F(QorRender, BadArgumentsFailClearlyAndWriteNothing) {
    const std::string site = quoted(path("site.qdb"));
    const std::string out = quoted(path("out.png"));
    struct Case {
        std::string args, says;
    };
    const Case cases[] = {
        {"render " + site + " -o " + quoted(path("out.jpg")), ".png, .svg or .pdf"},
        {"render " + site + " -o " + out + " --window 1,2,3", "--window wants four numbers"},
        {"render " + site + " -o " + out + " --window 1,2,x,4", "--window wants four numbers"},
        {"render " + site + " -o " + out + " --window 0,0,0,5", "has no area"},
        {"render " + site + " -o " + out + " --width 0", "--width wants a whole number"},
        {"render " + site + " -o " + out + " --width 99999", "--width wants a whole number"},
        {"render " + site + " -o " + out + " --width 12.5", "--width wants a whole number"},
        {"render " + site + " -o " + out + " --paper b9", "unknown paper"},
        {"render " + site + " -o " + out + " --background red", "--background is white or black"},
        {"render " + quoted(path("missing.qdb")) + " -o " + out, "missing.qdb"},
        {"render " + site + " -o /nonexistent-folder/out.png", "cannot write"},
    };
    for (const Case& c : cases) {
        const Outcome r = runQor(c.args);
        EXPECT_NE(r.status, 0) << c.args;
        EXPECT_TRUE(r.has("qor: ")) << c.args << "\n" << r.out;
        EXPECT_TRUE(r.has(c.says)) << c.args << "\n" << r.out;
    }
    std::ofstream(path("junk.qdb"), std::ios::binary) << std::string(300, 'x');
    const Outcome junk = runQor("render " + quoted(path("junk.qdb")) + " -o " + out);
    EXPECT_NE(junk.status, 0);
    EXPECT_TRUE(junk.has("junk.qdb")) << junk.out;
    EXPECT_FALSE(std::ifstream(path("out.png")).good()) << "no picture from a failed run";
    const Outcome missing = runQor("render " + site);
    EXPECT_NE(missing.status, 0) << "an output file is required";
}

} // namespace
