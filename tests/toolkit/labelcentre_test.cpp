// Label centres: the grid, Voronoi and chord methods on outlines whose largest inscribed circle
// is known (rectangles, a right triangle, an L, a circle, a square ring with a slit), the
// spacing each precision gives, the order in which the two chains fall back from one method to
// the next down to the start point, and curves with nothing to measure.
#include "toolkit/curves.h"
#include "toolkit/labelcentre.h"
#include "toolkit/labelcentreinternal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

namespace {

using Poly = std::vector<AcGePoint2d>;

constexpr double kPi = std::numbers::pi;
// The largest circle in the corner of an L with arms 20 wide touches both outer walls and the
// inner corner (20, 20): r = sqrt(2) * (20 - r).
const double kCornerRadius = 20.0 * (2.0 - std::sqrt(2.0));

std::unique_ptr<AcDbPolyline> closed(const Poly& verts) {
    auto pl = std::make_unique<AcDbPolyline>();
    unsigned i = 0;
    for (const AcGePoint2d& p : verts)
        pl->addVertexAt(i++, p);
    pl->setClosed(true);
    return pl;
}

Poly rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

const Poly kLShape = {{0, 0}, {60, 0}, {60, 20}, {20, 20}, {20, 60}, {0, 60}};

// A square ring 20 wide (outer 0..100, hole 20..80) cut open by a slit 0.5 wide on the right,
// at 30 <= y <= 30.5.
const Poly kSlitRing = {{100, 30.5}, {100, 100}, {0, 100}, {0, 0},   {100, 0}, {100, 30},
                        {80, 30},    {80, 20},   {20, 20}, {20, 80}, {80, 80}, {80, 30.5}};

// A 10 x 10 square gone round twice: every point off it is wound round twice.
const Poly kTwiceRound = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 10}, {0, 10}};

// Distance from p to the closed outline.
double clearance(const AcGePoint2d& p, const Poly& poly) {
    double best = std::numeric_limits<double>::max();
    for (size_t i = 0; i < poly.size(); ++i) {
        const AcGePoint2d &a = poly[i], &b = poly[(i + 1) % poly.size()];
        const AcGeVector2d ab = b - a;
        const double t = std::clamp((p - a).dotProduct(ab) / ab.dotProduct(ab), 0.0, 1.0);
        best = std::min(best, p.distanceTo(a + ab * t));
    }
    return best;
}

// Even-odd rule on a simple outline.
bool inside(const AcGePoint2d& p, const Poly& poly) {
    bool in = false;
    for (size_t i = 0, j = poly.size() - 1; i < poly.size(); j = i++) {
        const AcGePoint2d &a = poly[i], &b = poly[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            in = !in;
    }
    return in;
}

double perimeter(const Poly& poly) {
    double len = 0.0;
    for (size_t i = 0; i < poly.size(); ++i)
        len += poly[i].distanceTo(poly[(i + 1) % poly.size()]);
    return len;
}

// The mean of a closed polyline's outline points: its vertices and the first one again.
AcGePoint2d outlineMean(const Poly& poly) {
    double x = poly[0].x, y = poly[0].y;
    for (const AcGePoint2d& p : poly) {
        x += p.x;
        y += p.y;
    }
    const double n = static_cast<double>(poly.size() + 1);
    return AcGePoint2d(x / n, y / n);
}

const AcGePoint2d kUntouched(-123.0, 456.0);
constexpr double kUntouchedRadius = -7.0;

struct Centre {
    int result = 0;
    AcGePoint2d pt = kUntouched;
    double radius = kUntouchedRadius;
};

Centre voron(AcDbCurve* c, int precision) {
    Centre r;
    r.result = M_GetCenPtVoron(c, precision, r.pt, r.radius);
    return r;
}

Centre net(AcDbCurve* c, int precision) {
    Centre r;
    r.result = M_GetCenPtNet(c, precision, r.pt, r.radius);
    return r;
}

void expectFailed(const Centre& r) {
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.pt, kUntouched);
    EXPECT_EQ(r.radius, kUntouchedRadius);
}

void expectPoint(const AcGePoint2d& got, double x, double y, double tol) {
    EXPECT_NEAR(got.x, x, tol);
    EXPECT_NEAR(got.y, y, tol);
}

// A Voronoi centre: inside, measured right, and no worse than half the sampling spacing s
// below the true radius (every boundary point is within s/2 of a sample, and the true circle
// holds no sample).
void expectVoronoiCentre(const Centre& r, const Poly& poly, double trueRadius, double s) {
    ASSERT_EQ(r.result, 1);
    EXPECT_TRUE(inside(r.pt, poly));
    EXPECT_NEAR(r.radius, clearance(r.pt, poly), 1e-9);
    EXPECT_LE(r.radius, trueRadius + 1e-9);
    EXPECT_GE(r.radius, trueRadius - s / 2.0);
}

} // namespace

// ---------------------------------------------------------------- grid

TEST(LabelCentreGrid, LongRectangleCentreOnTheAxis) {
    // Spacing 20 / 10 = 2: the rows run 2, 4, ... 18, and the first column on which the row
    // y = 10 is 10 from every side is x = 10.
    const auto pl = closed(rectangle(0, 0, 100, 20));
    const Centre r = net(pl.get(), 0);
    ASSERT_EQ(r.result, 1);
    EXPECT_NEAR(r.radius, 10.0, 1e-12);
    expectPoint(r.pt, 10.0, 10.0, 1e-12);
}

TEST(LabelCentreGrid, PrecisionChoosesTheSpacing) {
    // Right triangle with legs 30 and 40: the clearance of (x, y) is min(x, y, (120-4x-3y)/5)
    // and the grid spacing 30 / 10, 30 / 50 or 30 / 100. Worked by hand:
    //   3.0: (9, 9), (9, 12) and (12, 9) all clear 9; (9, 9) comes first.
    //   0.6: (10.2, 10.2) clears 9.72; every neighbour is at most 9.6.
    //   0.3: (9.9, 9.9) clears 9.9 and comes before its equals.
    const Poly tri = {{0, 0}, {30, 0}, {0, 40}};
    const auto pl = closed(tri);
    struct Case {
        int precision;
        double at, radius;
    };
    for (const Case& k : {Case{0, 9.0, 9.0}, Case{1, 10.2, 9.72}, Case{2, 9.9, 9.9},
                          Case{3, 9.0, 9.0}, Case{-1, 9.0, 9.0}}) {
        SCOPED_TRACE(k.precision);
        const Centre r = net(pl.get(), k.precision);
        ASSERT_EQ(r.result, 1);
        expectPoint(r.pt, k.at, k.at, 1e-9);
        EXPECT_NEAR(r.radius, k.radius, 1e-9);
    }
}

TEST(LabelCentreGrid, SpacingNeverBelowAThousandth) {
    // 0.004 / 10 would be 0.0004: the floor 0.001 leaves a 3 x 3 grid whose middle point is
    // the centre. The same outline far from the origin.
    for (const AcGePoint2d o : {AcGePoint2d(0, 0), AcGePoint2d(5000, -3000)}) {
        const auto pl = closed(rectangle(o.x, o.y, o.x + 0.004, o.y + 0.004));
        const Centre r = net(pl.get(), 2);
        ASSERT_EQ(r.result, 1);
        expectPoint(r.pt, o.x + 0.002, o.y + 0.002, 1e-9);
        EXPECT_NEAR(r.radius, 0.002, 1e-9);
    }
}

TEST(LabelCentreGrid, NothingInsideFails) {
    // Thinner than the smallest spacing: no grid row at all.
    const auto flat = closed(rectangle(0, 0, 0.008, 0.0008));
    expectFailed(net(flat.get(), 0));
    // Wound twice: every grid point counts as outside.
    const auto twice = closed(kTwiceRound);
    expectFailed(net(twice.get(), 0));
}

// ---------------------------------------------------------------- Voronoi

TEST(LabelCentreVoronoi, RectangleCentreOnTheAxis) {
    const Poly rect = rectangle(0, 0, 100, 20);
    const auto pl = closed(rect);
    const double len = perimeter(rect);
    for (const auto& [precision, divisor] :
         {std::pair{0, 200.0}, std::pair{1, 500.0}, std::pair{2, 1000.0}}) {
        SCOPED_TRACE(precision);
        const Centre r = voron(pl.get(), precision);
        expectVoronoiCentre(r, rect, 10.0, len / divisor);
    }
    // Other precisions are the coarse one.
    const Centre coarse = voron(pl.get(), 0), other = voron(pl.get(), 9);
    EXPECT_EQ(other.result, 1);
    EXPECT_EQ(other.pt, coarse.pt);
    EXPECT_EQ(other.radius, coarse.radius);
}

TEST(LabelCentreVoronoi, LShapeCentreInTheCorner) {
    const auto pl = closed(kLShape);
    const double len = perimeter(kLShape);
    for (const auto& [precision, divisor] :
         {std::pair{0, 200.0}, std::pair{1, 500.0}, std::pair{2, 1000.0}}) {
        SCOPED_TRACE(precision);
        const double s = len / divisor;
        const Centre r = voron(pl.get(), precision);
        expectVoronoiCentre(r, kLShape, kCornerRadius, s);
        // The clearance falls at least 0.38 per unit away from the corner centre.
        EXPECT_LE(r.pt.distanceTo(AcGePoint2d(kCornerRadius, kCornerRadius)), 1.5 * s);
    }
}

// Samples evenly round a circle are all on one circle: the diagram's inner vertex is the centre
// where every triangle meets, joined by edges of no length that must still be searched.
TEST(LabelCentreVoronoi, CircleCentreWhereAllTrianglesMeet) {
    AcDbCircle circle(AcGePoint3d(5, 7, 0), AcGeVector3d::kZAxis, 30.0);
    for (int precision : {0, 1, 2}) {
        SCOPED_TRACE(precision);
        const Centre r = voron(&circle, precision);
        ASSERT_EQ(r.result, 1);
        EXPECT_LE(r.pt.distanceTo(AcGePoint2d(5, 7)), 1e-6);
        // The outline is the circle's chords at spacing 1.0: their distance from the centre.
        EXPECT_NEAR(r.radius, std::sqrt(30.0 * 30.0 - 0.25), 0.01);
    }
}

TEST(LabelCentreVoronoi, NothingToSampleOrNothingInsideFails) {
    // Perimeter 0.016: a 200th of it is below the smallest sampling step.
    const auto tiny = closed(rectangle(0, 0, 0.004, 0.004));
    expectFailed(voron(tiny.get(), 0));
    const auto twice = closed(kTwiceRound);
    expectFailed(voron(twice.get(), 0));
}

// ---------------------------------------------------------------- chord method

TEST(LabelCentreChord, RectangleChordAcrossTheLongSides) {
    // The mean of the outline points is (40, 8). Every line through it that crosses both long
    // sides has its midpoint on y = 10, clear by 10 when 10 <= x <= 90; no chord does better.
    const Poly rect = rectangle(0, 0, 100, 20);
    const auto pl = closed(rect);
    const AcGePoint2d mean = outlineMean(rect);
    expectPoint(mean, 40.0, 8.0, 1e-12);
    AcGePoint2d pt = kUntouched;
    ASSERT_TRUE(qor::labels::chordCentre(pl.get(), pt));
    EXPECT_NEAR(pt.y, 10.0, 1e-9);
    EXPECT_GE(pt.x, 10.0 - 1e-9);
    EXPECT_LE(pt.x, 90.0 + 1e-9);
    // It lies on one of the lines, every 10 degrees.
    const double deg = std::atan2(pt.y - mean.y, pt.x - mean.x) * 180.0 / kPi;
    EXPECT_NEAR(deg, 10.0 * std::round(deg / 10.0), 1e-7) << deg;
}

TEST(LabelCentreChord, CircleChordThroughTheCentre) {
    // Each chord's midpoint is the foot of the perpendicular from the centre O; one of the
    // lines is within 5 degrees of the line from the mean point m to O, so the best midpoint
    // is within |m - O| sin 5 of O.
    const AcGePoint3d o(5, 7, 2);
    AcDbCircle circle(o, AcGeVector3d::kZAxis, 3.0);
    AcArray<AcGePoint3d> outline;
    ASSERT_EQ(M_GetCurvePts(&circle, outline), 1);
    double sx = 0.0, sy = 0.0;
    for (const AcGePoint3d& p : outline) {
        sx += p.x;
        sy += p.y;
    }
    const AcGePoint2d mean(sx / outline.length(), sy / outline.length());
    AcGePoint2d pt = kUntouched;
    ASSERT_TRUE(qor::labels::chordCentre(&circle, pt));
    EXPECT_LE(pt.distanceTo(o.convert2d()),
              mean.distanceTo(o.convert2d()) * std::sin(kPi / 36.0) + 1e-9);
}

TEST(LabelCentreChord, NoChordGivesTheMeanPoint) {
    // From the hole of the slit ring every line crosses the ring four or six times.
    const auto ring = closed(kSlitRing);
    AcGePoint2d pt = kUntouched;
    EXPECT_FALSE(qor::labels::chordCentre(ring.get(), pt));
    const AcGePoint2d mean = outlineMean(kSlitRing);
    expectPoint(pt, mean.x, mean.y, 1e-9);
    // Round twice: the chords' midpoints are wound round twice, so outside.
    const auto twice = closed(kTwiceRound);
    pt = kUntouched;
    EXPECT_FALSE(qor::labels::chordCentre(twice.get(), pt));
    expectPoint(pt, 40.0 / 9.0, 40.0 / 9.0, 1e-9);
    // No curve at all: nothing to fall back on.
    pt = kUntouched;
    EXPECT_FALSE(qor::labels::chordCentre(nullptr, pt));
    EXPECT_EQ(pt, kUntouched);
}

// ---------------------------------------------------------------- chains

TEST(LabelCentreChains, EachTakesItsOwnFirstMethod) {
    const auto pl = closed(kLShape);
    const Centre v = voron(pl.get(), 1);
    AcGePoint2d chord = kUntouched;
    ASSERT_EQ(v.result, 1);
    ASSERT_TRUE(qor::labels::chordCentre(pl.get(), chord));
    ASSERT_GT(chord.distanceTo(v.pt), 1e-6); // the two methods disagree here
    AcGePoint2d pt = kUntouched;
    ASSERT_EQ(M_FindInCircle(pl.get(), 1, pt), 1);
    EXPECT_EQ(pt, v.pt);
    pt = kUntouched;
    ASSERT_EQ(M_FindCenPoint(pl.get(), 1, pt), 1);
    EXPECT_EQ(pt, chord);
}

TEST(LabelCentreChains, InCircleFallsBackToGridThenChord) {
    // Too short to sample: the grid gives the centre.
    const auto tiny = closed(rectangle(0, 0, 0.004, 0.004));
    AcGePoint2d pt = kUntouched;
    ASSERT_EQ(M_FindInCircle(tiny.get(), 0, pt), 1);
    expectPoint(pt, 0.002, 0.002, 1e-9);
    // Too short to sample and too thin for a grid row: a chord across the long sides.
    const auto flat = closed(rectangle(0, 0, 0.008, 0.0008));
    pt = kUntouched;
    ASSERT_EQ(M_FindInCircle(flat.get(), 0, pt), 1);
    EXPECT_NEAR(pt.y, 0.0004, 1e-9);
    EXPECT_GT(pt.x, 0.0004);
    EXPECT_LT(pt.x, 0.0076);
}

TEST(LabelCentreChains, CenPointFallsBackToVoronoi) {
    // No chord from the slit ring's mean point: the Voronoi method finds one of the four
    // corner circles, which beat the ring's straight parts (radius 10).
    const auto ring = closed(kSlitRing);
    const double s = perimeter(kSlitRing) / 200.0;
    AcGePoint2d pt = kUntouched;
    ASSERT_EQ(M_FindCenPoint(ring.get(), 0, pt), 1);
    EXPECT_TRUE(inside(pt, kSlitRing));
    EXPECT_GE(clearance(pt, kSlitRing), kCornerRadius - s / 2.0);
    const double r = kCornerRadius;
    double nearest = std::numeric_limits<double>::max();
    for (const AcGePoint2d corner : {AcGePoint2d(r, r), AcGePoint2d(100 - r, r),
                                     AcGePoint2d(r, 100 - r), AcGePoint2d(100 - r, 100 - r)})
        nearest = std::min(nearest, pt.distanceTo(corner));
    EXPECT_LE(nearest, 1.5 * s);
}

TEST(LabelCentreChains, EverythingFailsButTheStartPoint) {
    // Grid spacing 1, which adds up exactly: no grid row lands on the top side.
    const auto twice = closed(kTwiceRound);
    AcGePoint2d pt = kUntouched;
    ASSERT_EQ(M_FindInCircle(twice.get(), 0, pt), 1);
    EXPECT_EQ(pt, AcGePoint2d(0, 0));
    pt = kUntouched;
    ASSERT_EQ(M_FindCenPoint(twice.get(), 7, pt), 1);
    EXPECT_EQ(pt, AcGePoint2d(0, 0));
}

TEST(LabelCentreChains, CurvesWithNothingToMeasure) {
    AcGePoint2d pt = kUntouched;
    EXPECT_EQ(M_FindInCircle(nullptr, 0, pt), 0);
    EXPECT_EQ(M_FindCenPoint(nullptr, 0, pt), 0);
    EXPECT_EQ(pt, kUntouched);
    expectFailed(voron(nullptr, 0));
    expectFailed(net(nullptr, 0));

    // An open line of no length has no outline, but it does have a start point.
    AcDbLine dot(AcGePoint3d(5, 6, 0), AcGePoint3d(5, 6, 0));
    expectFailed(voron(&dot, 0));
    expectFailed(net(&dot, 0));
    EXPECT_FALSE(qor::labels::chordCentre(&dot, pt));
    EXPECT_EQ(pt, kUntouched);
    ASSERT_EQ(M_FindInCircle(&dot, 0, pt), 1);
    EXPECT_EQ(pt, AcGePoint2d(5, 6));
    pt = kUntouched;
    ASSERT_EQ(M_FindCenPoint(&dot, 1, pt), 1);
    EXPECT_EQ(pt, AcGePoint2d(5, 6));
}
