// The picture back-end: what lands on which pixels, for colours, fills, lineweights, texts,
// views and pages; and the device-space pieces it is built from.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "gi/renderbounds.h"
#include "gi/renderclip.h"
#include "gi/renderstyle.h"
#include "gi/textcodes.h"
#include "girecorder.h"
#include "girender.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

namespace {

using qorrender::Box;
using qorrender::Points;

// ---------------------------------------------------------------- helpers

// A drawable made of a function, with optional attributes.
class Sketch : public AcGiDrawable {
public:
    explicit Sketch(std::function<void(AcGiWorldDraw*)> draw,
                    std::function<void(AcGiDrawableTraits*)> attributes = nullptr)
        : mDraw(std::move(draw)), mAttributes(std::move(attributes)) {}
    Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override {
        mDraw(wd);
        return Adesk::kTrue;
    }
    void viewportDraw(AcGiViewportDraw*) override {}
    Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) override {
        if (mAttributes) mAttributes(traits);
        return 0;
    }
    bool isPersistent() const override { return false; }
    AcDbObjectId id() const override { return AcDbObjectId::kNull; }

private:
    std::function<void(AcGiWorldDraw*)> mDraw;
    std::function<void(AcGiDrawableTraits*)> mAttributes;
};

// World window (0,0)-(100,50) on a 200 x 100 picture: two pixels a unit, y up.
AcGiRenderSetup pageSetup(AcDbDatabase* db = nullptr, bool black = false) {
    AcGiRenderSetup s;
    s.format = AcGiRenderFormat::kImage;
    s.view = AcGiRenderView(AcGePoint2d(0, 0), AcGePoint2d(100, 50), 200, 100);
    s.database = db;
    s.blackBackground = black;
    return s;
}

AcGiRenderImage render(const std::function<void(AcGiWorldDraw*)>& draw,
                       const AcGiRenderSetup& setup = pageSetup()) {
    AcGiRenderer r(setup);
    EXPECT_TRUE(r.isOk()) << qorToUtf8(r.error());
    Sketch sketch(draw);
    r.drawTop(&sketch);
    AcGiRenderImage image;
    EXPECT_TRUE(r.snapshot(image));
    return image;
}

int red(std::uint32_t p) {
    return (p >> 16) & 0xFF;
}
int green(std::uint32_t p) {
    return (p >> 8) & 0xFF;
}
int blue(std::uint32_t p) {
    return p & 0xFF;
}
bool isWhite(std::uint32_t p) {
    return (p & 0xFFFFFF) == 0xFFFFFF;
}
bool isBlack(std::uint32_t p) {
    return (p & 0xFFFFFF) == 0;
}
bool isRed(std::uint32_t p) {
    return red(p) > 200 && green(p) < 60 && blue(p) < 60;
}
bool isDark(std::uint32_t p) {
    return red(p) + green(p) + blue(p) < 384;
}

// Pixels of the image matching pred inside device rows y0..y1 and columns x0..x1.
int countIn(const AcGiRenderImage& image, int x0, int y0, int x1, int y1,
            const std::function<bool(std::uint32_t)>& pred) {
    int n = 0;
    for (int y = std::max(0, y0); y <= std::min(image.height() - 1, y1); ++y)
        for (int x = std::max(0, x0); x <= std::min(image.width() - 1, x1); ++x)
            if (pred(image.pixel(x, y))) ++n;
    return n;
}

int countAll(const AcGiRenderImage& image, const std::function<bool(std::uint32_t)>& pred) {
    return countIn(image, 0, 0, image.width() - 1, image.height() - 1, pred);
}

void line(AcGiWorldDraw* wd, double x0, double y0, double x1, double y1) {
    const AcGePoint3d pts[2] = {{x0, y0, 0}, {x1, y1, 0}};
    wd->geometry().polyline(2, pts);
}

// ---------------------------------------------------------------- colours

TEST(GiRender, IndexColourOneIsRedAlongTheLineAndTheRestStaysWhite) {
    const AcGiRenderImage image = render([](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        line(wd, 10, 25, 90, 25); // device row 50, columns 20 to 180
    });
    ASSERT_EQ(image.width(), 200);
    ASSERT_EQ(image.height(), 100);
    for (int x = 25; x <= 175; x += 5) {
        EXPECT_TRUE(isRed(image.pixel(x, 49))) << x;
        EXPECT_TRUE(isRed(image.pixel(x, 50))) << x;
    }
    // Off the line: above, below, and beyond its round ends.
    for (int x = 0; x < 200; x += 7) {
        EXPECT_TRUE(isWhite(image.pixel(x, 40))) << x;
        EXPECT_TRUE(isWhite(image.pixel(x, 60))) << x;
    }
    EXPECT_TRUE(isWhite(image.pixel(12, 50)));
    EXPECT_TRUE(isWhite(image.pixel(188, 50)));
}

TEST(GiRender, ColoursByIndexByValueAndSevenAgainstEitherBackground) {
    auto draw = [](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        wd->subEntityTraits().setColor(5);
        line(wd, 10, 40, 90, 40); // row 20
        wd->subEntityTraits().setTrueColor(AcCmEntityColor(10, 200, 30));
        line(wd, 10, 30, 90, 30); // row 40
        wd->subEntityTraits().setColor(7);
        line(wd, 10, 20, 90, 20); // row 60
    };
    const AcGiRenderImage white = render(draw);
    EXPECT_EQ(white.pixel(100, 20) & 0xFFFFFF, AcCmEntityColor::lookUpRGB(5));
    EXPECT_EQ(white.pixel(100, 40) & 0xFFFFFF, 0x0AC81Eu);
    EXPECT_TRUE(isBlack(white.pixel(100, 60)));
    EXPECT_TRUE(isWhite(white.pixel(100, 80)));

    const AcGiRenderImage black = render(draw, pageSetup(nullptr, true));
    EXPECT_EQ(black.pixel(100, 20) & 0xFFFFFF, AcCmEntityColor::lookUpRGB(5));
    EXPECT_TRUE(isWhite(black.pixel(100, 60)));
    EXPECT_TRUE(isBlack(black.pixel(100, 80)));
}

// A drawing with a red layer, a blue one that is off, and a linetype of dashes.
class GiRenderLayers : public ::testing::Test {
protected:
    void SetUp() override {
        AcDbLayerTable* layers = nullptr;
        ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
        mRed = addLayer(layers, L"红", 1, false);
        mHidden = addLayer(layers, L"HIDDEN", 5, true);
        layers->close();
    }

    AcDbObjectId addLayer(AcDbLayerTable* layers, const wchar_t* name, int color, bool off) {
        auto* rec = new AcDbLayerTableRecord();
        rec->setName(name);
        AcCmColor c;
        c.setColorIndex(static_cast<Adesk::UInt16>(color));
        rec->setColor(c);
        rec->setIsOff(off);
        AcDbObjectId id;
        EXPECT_EQ(layers->add(id, rec), Acad::eOk);
        rec->close();
        return id;
    }

    AcDbDatabase db;
    AcDbObjectId mRed, mHidden;
};

TEST_F(GiRenderLayers, ByLayerTakesTheLayerColourAndAnOffLayerDrawsNothing) {
    const AcGiRenderImage image = render(
        [&](AcGiWorldDraw* wd) {
            AcGiSubEntityTraits& t = wd->subEntityTraits();
            t.setLineWeight(AcDb::kLnWt100);
            t.setLayer(mRed);
            t.setColor(256);
            line(wd, 10, 40, 90, 40); // row 20
            t.setLayer(mHidden);
            line(wd, 10, 20, 90, 20); // row 60
        },
        pageSetup(&db));
    EXPECT_TRUE(isRed(image.pixel(100, 20)));
    EXPECT_EQ(countIn(image, 0, 55, 199, 65, [](std::uint32_t p) { return !isWhite(p); }), 0);
}

TEST_F(GiRenderLayers, ByBlockAndLayerZeroTakeTheEnclosingDrawablesProperties) {
    // The inner drawable is on layer 0 with its colour by layer, then by block: inside an
    // enclosing drawable on the red layer in colour 5, the first shows red, the second blue.
    Sketch inner(
        [](AcGiWorldDraw* wd) {
            wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
            line(wd, 10, 40, 90, 40); // row 20
            wd->subEntityTraits().setColor(0);
            line(wd, 10, 20, 90, 20); // row 60
        },
        [&](AcGiDrawableTraits* t) {
            t->setLayer(db.layerZero());
            t->setColor(256);
        });
    AcGiRenderer r(pageSetup(&db));
    Sketch outer([&](AcGiWorldDraw* wd) { wd->geometry().draw(&inner); },
                 [&](AcGiDrawableTraits* t) {
                     t->setLayer(mRed);
                     t->setColor(5);
                 });
    r.drawTop(&outer);
    // On its own, the inner drawable shows layer 0's colour 7 and black for by block.
    r.drawTop(&inner);
    AcGiRenderImage image;
    ASSERT_TRUE(r.snapshot(image));
    // The second drawing painted over the first with black.
    EXPECT_TRUE(isBlack(image.pixel(100, 20)));
    EXPECT_TRUE(isBlack(image.pixel(100, 60)));

    AcGiRenderer nested(pageSetup(&db));
    nested.drawTop(&outer);
    ASSERT_TRUE(nested.snapshot(image));
    EXPECT_TRUE(isRed(image.pixel(100, 20)));
    EXPECT_EQ(image.pixel(100, 60) & 0xFFFFFF, AcCmEntityColor::lookUpRGB(5));
}

// ---------------------------------------------------------------- fills, arcs, weights

TEST(GiRender, PolygonsAndShellsFillOnlyWhenTheFillTypeSaysSo) {
    const AcGePoint3d square[4] = {{10, 10, 0}, {40, 10, 0}, {40, 40, 0}, {10, 40, 0}};
    const AcGiRenderImage image = render([&](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        wd->geometry().polygon(4, square); // outline only
        wd->subEntityTraits().setFillType(kAcGiFillAlways);
        const AcGePoint3d moved[4] = {{60, 10, 0}, {90, 10, 0}, {90, 40, 0}, {60, 40, 0}};
        wd->geometry().polygon(4, moved);
    });
    // The outlined square: its edge red, its middle white. The filled one: red throughout.
    EXPECT_TRUE(isRed(image.pixel(20, 50)));
    EXPECT_TRUE(isWhite(image.pixel(50, 50)));
    EXPECT_EQ(countIn(image, 124, 24, 176, 76, isRed), 53 * 53);

    // A shell face with a hole: the ring is filled, the hole is not.
    const AcGePoint3d pts[8] = {{10, 5, 0},  {90, 5, 0},  {90, 45, 0}, {10, 45, 0},
                                {30, 15, 0}, {70, 15, 0}, {70, 35, 0}, {30, 35, 0}};
    const Adesk::Int32 faces[10] = {4, 0, 1, 2, 3, -4, 4, 5, 6, 7};
    const AcGiRenderImage shell = render([&](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setFillType(kAcGiFillAlways);
        wd->geometry().shell(8, pts, 10, faces);
    });
    EXPECT_TRUE(isRed(shell.pixel(30, 50)));    // in the ring
    EXPECT_TRUE(isWhite(shell.pixel(100, 50))); // in the hole
    EXPECT_TRUE(isWhite(shell.pixel(5, 50)));   // outside
}

TEST(GiRender, ArcsSweepCounterclockwiseWithYUp) {
    // A quarter arc about (50,25), radius 20, from +x to +y.
    const AcGiRenderImage image = render([](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        wd->geometry().circularArc(AcGePoint3d(50, 25, 0), 20, AcGeVector3d(0, 0, 1),
                                   AcGeVector3d(1, 0, 0), std::numbers::pi / 2);
    });
    auto at = [&](double degrees) {
        const double a = degrees * std::numbers::pi / 180;
        return image.pixel(static_cast<int>(std::floor(100 + 40 * std::cos(a))),
                           static_cast<int>(std::floor(50 - 40 * std::sin(a))));
    };
    EXPECT_TRUE(isRed(at(45)));
    EXPECT_TRUE(isWhite(at(-45)));
    EXPECT_TRUE(isWhite(at(135)));
    EXPECT_TRUE(isWhite(at(225)));
}

TEST(GiRender, LineweightsAreSizesOnThePage) {
    // 2 mm at 96 pixels an inch is 7.6 pixels; weight 0 is the thinnest line, one pixel.
    auto thickness = [](AcDb::LineWeight w) {
        const AcGiRenderImage image = render([&](AcGiWorldDraw* wd) {
            wd->subEntityTraits().setColor(1);
            wd->subEntityTraits().setLineWeight(w);
            line(wd, 10, 25.25, 90, 25.25);
        });
        return countIn(image, 100, 0, 100, 99,
                       [](std::uint32_t p) { return red(p) > 200 && green(p) < 200; });
    };
    const int thick = thickness(AcDb::kLnWt200);
    EXPECT_GE(thick, 7);
    EXPECT_LE(thick, 9);
    EXPECT_GE(thickness(AcDb::kLnWt000), 1);
    EXPECT_LE(thickness(AcDb::kLnWt000), 2);
}

TEST(GiRender, GeometryFarBeyondThePageStillShowsWhereItCrossesIt) {
    // Coordinates millions of pages away must be cut down before cairo sees them.
    const AcGiRenderImage image = render([](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        line(wd, -1e12, 40, 1e12, 40); // row 20
        // Through (50,25) at a slope: the page's centre, then 30 rows up 100 columns on.
        line(wd, 50 - 1e9, 25 - 0.3e9, 50 + 1e9, 25 + 0.3e9);
        // A circle of radius 1e9 whose lowest point is at (50, 10): row 80 near column 100.
        wd->geometry().circle(AcGePoint3d(50, 10 + 1e9, 0), 1e9, AcGeVector3d(0, 0, 1));
        const AcGePoint3d far[2] = {{50, -1e15, 0}, {50, 1e15, 0}};
        wd->geometry().xline(far[0], far[1]); // column 100
    });
    EXPECT_TRUE(isRed(image.pixel(3, 20)));
    EXPECT_TRUE(isRed(image.pixel(196, 20)));
    EXPECT_TRUE(isRed(image.pixel(100, 79)) || isRed(image.pixel(100, 80)));
    EXPECT_TRUE(isRed(image.pixel(80, 79)) || isRed(image.pixel(80, 80)));
    EXPECT_TRUE(isRed(image.pixel(99, 5)) || isRed(image.pixel(100, 5)));
    EXPECT_TRUE(isRed(image.pixel(100, 50)));
    EXPECT_TRUE(isRed(image.pixel(160, 32)));
    EXPECT_TRUE(isWhite(image.pixel(150, 60)));
}

TEST(GiRender, BadPrimitivesAreRefusedAndDrawNothing) {
    AcGiRenderer r(pageSetup());
    Sketch bad([](AcGiWorldDraw* wd) {
        const double nan = std::nan("");
        const AcGePoint3d pts[2] = {{0, 0, 0}, {nan, 1, 0}};
        wd->geometry().polyline(2, pts);
        wd->geometry().circle(AcGePoint3d(10, 10, 0), -1, AcGeVector3d(0, 0, 1));
        wd->geometry().circularArc(AcGePoint3d(10, 10, 0), 5, AcGeVector3d(0, 0, 1),
                                   AcGeVector3d(0, 0, 1), 1.0); // start along the normal
        const Adesk::Int32 faces[3] = {3, 0, 7};
        wd->geometry().shell(2, pts, 3, faces);
        wd->geometry().text(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 0, 2), 5,
                            1, 0, L"x");
        wd->geometry().draw(nullptr);
    });
    r.drawTop(&bad);
    EXPECT_EQ(r.rejectedCount(), 6);
    AcGiRenderImage image;
    ASSERT_TRUE(r.snapshot(image));
    EXPECT_EQ(countAll(image, isWhite), 200 * 100);
}

// ---------------------------------------------------------------- texts

TEST(GiRender, TextDrawsInsideTheBoxTheMetricGivesIt) {
    // Two full-width and two half-width characters, 10 high: 30 units along, at (10,20).
    const std::wstring message = L"规划ab";
    ASSERT_DOUBLE_EQ(qorTextAdvance(message.c_str(), -1, false), 3.0);
    const AcGiRenderImage image = render([&](AcGiWorldDraw* wd) {
        wd->geometry().text(AcGePoint3d(10, 20, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0),
                            10, 1, 0, message.c_str());
    });
    // The box in pixels: columns 20 to 80, rows 40 (top) to 60 (baseline).
    const int inside = countIn(image, 20, 40, 79, 59, isDark);
    EXPECT_GT(inside, 60 * 20 / 10) << "glyphs cover a fair part of their box";
    // Nothing beyond the box, but for descenders a quarter height below the baseline.
    EXPECT_EQ(countAll(image, isDark), countIn(image, 20, 40, 79, 64, isDark));
    // Each full-width character sits in its own cell of 20 pixels.
    EXPECT_GT(countIn(image, 20, 40, 39, 59, isDark), 20);
    EXPECT_GT(countIn(image, 40, 40, 59, 59, isDark), 20);
    EXPECT_GT(countIn(image, 60, 40, 79, 59, isDark), 10);
}

TEST(GiRender, StyledTextFollowsWidthFactorAndRotation) {
    // Width factor 2: "甲乙" is 40 units along; turned a quarter, it runs up the page.
    AcGiTextStyle style(L"txt", L"gbcbig", 10, 2.0, 0, 1.0, false, false, false, false, false);
    const std::wstring message = L"甲乙";
    const AcGiRenderImage wide = render([&](AcGiWorldDraw* wd) {
        wd->geometry().text(AcGePoint3d(10, 20, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0),
                            message.c_str(), -1, false, style);
    });
    EXPECT_EQ(countAll(wide, isDark), countIn(wide, 20, 40, 99, 64, isDark));
    EXPECT_GT(countIn(wide, 80, 40, 99, 59, isDark), 20) << "the second glyph is stretched out";

    style.setXScale(1.0);
    const AcGiRenderImage turned = render([&](AcGiWorldDraw* wd) {
        wd->geometry().text(AcGePoint3d(50, 5, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 1, 0),
                            message.c_str(), -1, false, style);
    });
    // Up from (50,5) over 20 units, to the left of x = 50 by one height: columns 80 to 100,
    // rows 50 to 90.
    EXPECT_GT(countIn(turned, 80, 50, 104, 89, isDark), 40);
    EXPECT_EQ(countAll(turned, isDark), countIn(turned, 80, 50, 104, 89, isDark));
}

TEST(GiRender, TextCodesDecodeToWhatTheMetricMeasures) {
    for (const wchar_t* text : {L"%%u下划线%%u", L"45%%d", L"%%c100", L"%%p0.5", L"100%%%",
                                L"%%065B", L"%%oA%%o%%kB", L"50%", L"%%", L"%%9"}) {
        double advance = 0.0;
        for (const QorShownChar& c : qorDecodeTextCodes(text, -1, false))
            advance += qorIsFullWidthChar(c.c) ? 1.0 : 0.5;
        EXPECT_DOUBLE_EQ(advance, qorTextAdvance(text, -1, false)) << qorToUtf8(text);
    }
    const auto under = qorDecodeTextCodes(L"a%%ub%%uc", -1, false);
    ASSERT_EQ(under.size(), 3u);
    EXPECT_FALSE(under[0].underline);
    EXPECT_TRUE(under[1].underline);
    EXPECT_FALSE(under[2].underline);
    EXPECT_EQ(qorDecodeTextCodes(L"%%d", -1, true).size(), 3u) << "raw text shows the codes";
    EXPECT_EQ(qorDecodeTextCodes(L"abcdef", 2, false).size(), 2u);
}

// ---------------------------------------------------------------- views and pages

// A drawing of a red line near the origin and a blue one 100 units to the right.
class GiRenderDrawing : public ::testing::Test {
protected:
    void SetUp() override {
        AcDbBlockTableRecord* ms = nullptr;
        ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        auto* redLine = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
        redLine->setColorIndex(1);
        redLine->setLineWeight(AcDb::kLnWt100);
        ASSERT_EQ(ms->appendAcDbEntity(redLine), Acad::eOk);
        redLine->close();
        auto* blueLine = new AcDbLine(AcGePoint3d(100, 0, 0), AcGePoint3d(110, 0, 0));
        blueLine->setColorIndex(5);
        blueLine->setLineWeight(AcDb::kLnWt100);
        ASSERT_EQ(ms->appendAcDbEntity(blueLine), Acad::eOk);
        blueLine->close();
        ms->close();
    }

    static bool isBlue(std::uint32_t p) { return blue(p) > 200 && red(p) < 60 && green(p) < 60; }

    AcDbDatabase db;
};

TEST_F(GiRenderDrawing, AWindowCropsToItsPartAndFittingShowsEverything) {
    AcGiRenderOptions options;
    options.format = AcGiRenderFormat::kImage;
    options.width = 400;
    std::wstring error;
    AcGiRenderImage fitted;
    ASSERT_TRUE(acgiRenderModelSpace(&db, options, nullptr, error, &fitted)) << qorToUtf8(error);
    EXPECT_EQ(fitted.width(), 400);
    EXPECT_GT(countAll(fitted, isRed), 0);
    EXPECT_GT(countAll(fitted, isBlue), 0);

    options.hasWindow = true;
    options.windowMin.set(-5, -5);
    options.windowMax.set(15, 5);
    AcGiRenderImage cropped;
    ASSERT_TRUE(acgiRenderModelSpace(&db, options, nullptr, error, &cropped)) << qorToUtf8(error);
    // The window fills the page exactly: 20 units across 400 pixels, 10 up 200.
    ASSERT_EQ(cropped.width(), 400);
    ASSERT_EQ(cropped.height(), 200);
    EXPECT_EQ(countAll(cropped, isBlue), 0);
    // The red line runs from column 100 to 300 along row 100.
    EXPECT_TRUE(isRed(cropped.pixel(110, 100)));
    EXPECT_TRUE(isRed(cropped.pixel(290, 99)));
    EXPECT_TRUE(isWhite(cropped.pixel(60, 100)));
    EXPECT_TRUE(isWhite(cropped.pixel(340, 100)));
}

TEST_F(GiRenderDrawing, InvisibleEntitiesAreLeftOutOfTheViewAndThePicture) {
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    const AcDbObjectId blueId = ms->entityIds()[1];
    ms->close();
    AcDbEntity* blueLine = nullptr;
    ASSERT_EQ(acdbOpenObject(blueLine, blueId, AcDb::kForWrite), Acad::eOk);
    blueLine->setVisibility(AcDb::kInvisible);
    blueLine->close();

    AcGiRenderOptions options;
    options.format = AcGiRenderFormat::kImage;
    std::wstring error;
    AcGiRenderImage image;
    ASSERT_TRUE(acgiRenderModelSpace(&db, options, nullptr, error, &image));
    EXPECT_EQ(countAll(image, isBlue), 0);
    // The view fits what is shown: the red line alone, across most of the page.
    int left = image.width(), right = -1;
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (isRed(image.pixel(x, y))) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
    EXPECT_LT(left, image.width() / 10);
    EXPECT_GT(right, image.width() * 9 / 10);
}

TEST(GiRenderPages, PapersAndSetupsGiveThePagesAsked) {
    double w = 0, h = 0;
    ASSERT_TRUE(acgiPaperSize(L"A4", w, h));
    EXPECT_EQ(w, 210.0);
    EXPECT_EQ(h, 297.0);
    ASSERT_TRUE(acgiPaperSize(L"a3, Landscape", w, h));
    EXPECT_EQ(w, 420.0);
    EXPECT_EQ(h, 297.0);
    EXPECT_FALSE(acgiPaperSize(L"a9", w, h));
    EXPECT_FALSE(acgiPaperSize(L"a4,sideways", w, h));

    AcGiRenderOptions options;
    const AcGePoint2d lo(0, 0), hi(100, 50);
    AcGiRenderSetup setup;
    std::wstring error;
    // Fitted: the default width, the drawing's shape plus a margin.
    ASSERT_TRUE(acgiRenderSetupFor(options, &lo, &hi, setup, error));
    EXPECT_EQ(setup.view.pageWidth(), 1600);
    EXPECT_NEAR(setup.view.pageHeight(), 1600 * 56.0 / 106.0, 1.0);
    const AcGePoint2d corner = setup.view.toDevice(AcGePoint3d(0, 0, 0));
    EXPECT_NEAR(corner.x, 1600 * 3.0 / 106.0, 0.5);

    // A4 landscape PDF: the paper in points, lineweights in points a millimetre.
    options.format = AcGiRenderFormat::kPdf;
    options.paperWidthMm = 297;
    options.paperHeightMm = 210;
    ASSERT_TRUE(acgiRenderSetupFor(options, &lo, &hi, setup, error));
    EXPECT_NEAR(setup.view.pageWidth(), 841.89, 0.01);
    EXPECT_NEAR(setup.view.pageHeight(), 595.28, 0.01);
    EXPECT_NEAR(setup.unitsPerMm, 72.0 / 25.4, 1e-12);

    // A PNG of that paper, 1000 pixels across.
    options.format = AcGiRenderFormat::kPng;
    options.width = 1000;
    ASSERT_TRUE(acgiRenderSetupFor(options, &lo, &hi, setup, error));
    EXPECT_EQ(setup.view.pageHeight(), 707);
    EXPECT_NEAR(setup.unitsPerMm, 1000 / 297.0, 1e-12);

    options = AcGiRenderOptions();
    options.width = kAcGiRenderMaxPixels + 1;
    EXPECT_FALSE(acgiRenderSetupFor(options, &lo, &hi, setup, error));
    options.width = 0;
    options.hasWindow = true;
    options.windowMin.set(5, 0);
    options.windowMax.set(5, 10);
    EXPECT_FALSE(acgiRenderSetupFor(options, &lo, &hi, setup, error));
    EXPECT_NE(error.find(L"window"), std::wstring::npos);
}

TEST(GiRenderPages, AnUnwritablePathFailsBeforeDrawing) {
    AcGiRenderSetup setup = pageSetup();
    setup.format = AcGiRenderFormat::kPng;
    setup.path = L"/nonexistent-folder/picture.png";
    AcGiRenderer r(setup);
    EXPECT_FALSE(r.isOk());
    EXPECT_NE(r.error().find(L"/nonexistent-folder/picture.png"), std::wstring::npos);
    Sketch sketch([](AcGiWorldDraw* wd) { line(wd, 0, 0, 10, 10); });
    r.drawTop(&sketch); // harmless
    EXPECT_FALSE(r.finish());
}

TEST(GiRenderPages, APngWrittenReadsBackAsDrawn) {
    TempDir dir;
    AcGiRenderSetup setup = pageSetup();
    setup.format = AcGiRenderFormat::kPng;
    setup.path = dir.file("line.png");
    AcGiRenderer r(setup);
    ASSERT_TRUE(r.isOk());
    Sketch sketch([](AcGiWorldDraw* wd) {
        wd->subEntityTraits().setColor(1);
        wd->subEntityTraits().setLineWeight(AcDb::kLnWt100);
        line(wd, 10, 25, 90, 25);
    });
    r.drawTop(&sketch);
    AcGiRenderImage drawn, read;
    ASSERT_TRUE(r.snapshot(drawn));
    ASSERT_TRUE(r.finish()) << qorToUtf8(r.error());
    std::wstring error;
    ASSERT_TRUE(acgiReadPng(setup.path.c_str(), read, error)) << qorToUtf8(error);
    ASSERT_EQ(read.width(), drawn.width());
    ASSERT_EQ(read.height(), drawn.height());
    int differ = 0;
    for (int y = 0; y < read.height(); ++y)
        for (int x = 0; x < read.width(); ++x)
            differ += read.pixel(x, y) != drawn.pixel(x, y);
    EXPECT_EQ(differ, 0);
    EXPECT_FALSE(acgiReadPng(dir.file("missing.png").c_str(), read, error));
}

TEST(GiRenderPages, DrawnBoundsCoverWhatIsDrawnAndNoMore) {
    auto bounds = [](const std::function<void(AcGiWorldDraw*)>& draw) {
        AcGiRecorder rec;
        draw(&rec);
        qorrender::DrawingStyles styles(nullptr);
        AcDbExtents e;
        qorrender::addDrawnBounds(rec, styles, e);
        return e;
    };
    auto expectBox = [](const AcDbExtents& e, double x0, double y0, double x1, double y1) {
        ASSERT_TRUE(e.isValid());
        EXPECT_NEAR(e.minPoint().x, x0, 1e-9);
        EXPECT_NEAR(e.minPoint().y, y0, 1e-9);
        EXPECT_NEAR(e.maxPoint().x, x1, 1e-9);
        EXPECT_NEAR(e.maxPoint().y, y1, 1e-9);
    };
    // A quarter arc from +y round to -x (counter-clockwise), and the same swept clockwise from
    // +y round through +x and -y to -x.
    expectBox(bounds([](AcGiWorldDraw* wd) {
                  wd->geometry().circularArc(AcGePoint3d(0, 0, 0), 10, AcGeVector3d(0, 0, 1),
                                             AcGeVector3d(0, 1, 0), std::numbers::pi / 2);
              }),
              -10, 0, 0, 10);
    expectBox(bounds([](AcGiWorldDraw* wd) {
                  wd->geometry().circularArc(AcGePoint3d(0, 0, 0), 10, AcGeVector3d(0, 0, 1),
                                             AcGeVector3d(0, 1, 0), -1.5 * std::numbers::pi);
              }),
              -10, -10, 10, 10);
    // A text: its advance along, its height up and a quarter of it below.
    expectBox(bounds([](AcGiWorldDraw* wd) {
                  wd->geometry().text(AcGePoint3d(1, 2, 0), AcGeVector3d(0, 0, 1),
                                      AcGeVector3d(1, 0, 0), 4, 1, 0, L"道路ab");
              }),
              1, 1, 13, 6);
    // A wide polyline with a half-circle bulge: the bulge and half the width show.
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0), 1.0, 2, 2);
    pl.addVertexAt(1, AcGePoint2d(10, 0), 0, 2, 2);
    expectBox(bounds([&](AcGiWorldDraw* wd) { wd->geometry().pline(pl); }), -1, -6, 11, 1);
    // Construction lines reach everywhere and so have no bounds.
    EXPECT_FALSE(bounds([](AcGiWorldDraw* wd) {
                     wd->geometry().xline(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
                 }).isValid());
}

// ---------------------------------------------------------------- device-space pieces

TEST(GiRenderClip, PolylinesSplitIntoTheRunsInsideTheBox) {
    const Box box{0, 0, 10, 10};
    // In, out and back in: two runs, cut at the edge.
    const auto runs = qorrender::clipPolyline({{5, 5}, {15, 5}, {15, 8}, {5, 8}}, false, box);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].size(), 2u);
    EXPECT_DOUBLE_EQ(runs[0][1].x, 10);
    EXPECT_DOUBLE_EQ(runs[1][0].x, 10);
    EXPECT_DOUBLE_EQ(runs[1][1].x, 5);
    // Closed: the edge back to the start counts; wholly inside stays one run.
    const auto closed = qorrender::clipPolyline({{1, 1}, {9, 1}, {9, 9}}, true, box);
    ASSERT_EQ(closed.size(), 1u);
    EXPECT_EQ(closed[0].size(), 4u);
    EXPECT_TRUE(qorrender::clipPolyline({{20, 20}, {30, 30}}, false, box).empty());
}

TEST(GiRenderClip, PolygonsKeepTheirInsideWithinTheBox) {
    const Box box{0, 0, 10, 10};
    const Points cut = qorrender::clipPolygon({{-10, -10}, {20, -10}, {20, 20}, {-10, 20}}, box);
    ASSERT_EQ(cut.size(), 4u);
    double area = 0;
    for (size_t i = 0; i < cut.size(); ++i) {
        const auto& a = cut[i];
        const auto& b = cut[(i + 1) % cut.size()];
        area += a.x * b.y - b.x * a.y;
    }
    EXPECT_DOUBLE_EQ(std::fabs(area) / 2, 100.0);
    EXPECT_TRUE(qorrender::clipPolygon({{20, 20}, {30, 20}, {30, 30}}, box).empty());
}

TEST(GiRenderClip, EllipseArcsKeepTheIntervalsInTheBox) {
    // The unit circle about (0,0) against the box right of x = 0.5: t within +-60 degrees.
    const Box box{0.5, -2, 2, 2};
    const auto whole =
        qorrender::ellipseIntervals({0, 0}, {1, 0}, {0, 1}, 2 * std::numbers::pi, box);
    double covered = 0;
    for (const auto& [t0, t1] : whole)
        covered += t1 - t0;
    EXPECT_NEAR(covered, 2 * std::numbers::pi / 3, 1e-12);
    // Clockwise from +x through -y: the part in the box is the first 60 degrees.
    const auto back = qorrender::ellipseIntervals({0, 0}, {1, 0}, {0, 1}, -std::numbers::pi, box);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_NEAR(back[0].first, 0, 1e-12);
    EXPECT_NEAR(back[0].second, -std::numbers::pi / 3, 1e-12);
}

TEST(GiRenderStyle, DashPatternsStartWithADashAndKeepTheirPhase) {
    // Dash, gap: as it is.
    auto p = qorrender::dashPatternOf({0.5, -0.25});
    EXPECT_EQ(p.lengths, (std::vector<double>{0.5, 0.25}));
    EXPECT_DOUBLE_EQ(p.offset, 0.0);
    // Gap first: turned round, the offset brings the line's start back into the gap.
    p = qorrender::dashPatternOf({-0.25, 0.5});
    EXPECT_EQ(p.lengths, (std::vector<double>{0.5, 0.25}));
    EXPECT_DOUBLE_EQ(p.offset, 0.5);
    // A dash at each end joins up; dots stay dashes of no length.
    p = qorrender::dashPatternOf({0.5, -0.25, 0.25});
    EXPECT_EQ(p.lengths, (std::vector<double>{0.75, 0.25}));
    EXPECT_DOUBLE_EQ(p.offset, 0.25);
    p = qorrender::dashPatternOf({0.5, -0.2, 0.0, -0.2});
    EXPECT_EQ(p.lengths, (std::vector<double>{0.5, 0.2, 0.0, 0.2}));
    // Continuous, all gaps and nothing: no pattern.
    EXPECT_TRUE(qorrender::dashPatternOf({}).lengths.empty());
    EXPECT_TRUE(qorrender::dashPatternOf({1.0}).lengths.empty());
    EXPECT_TRUE(qorrender::dashPatternOf({0.0, 0.0}).lengths.empty());
}

} // namespace
