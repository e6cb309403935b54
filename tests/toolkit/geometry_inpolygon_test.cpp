// Point-in-polygon: the angle-sum rule, the crossing count with its left/right edge rule, and
// polylines with arcs.
#include "dbents.h"
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

using Pts2 = AcArray<AcGePoint2d>;

const Pts2 kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Pts2 kDiamond = {{5, 0}, {10, 5}, {5, 10}, {0, 5}};

Pts2 reversed(Pts2 pts) {
    pts.reverse();
    return pts;
}

Pts2 repeated(const Pts2& pts, int times) {
    Pts2 out;
    for (int t = 0; t < times; ++t)
        out.append(pts);
    return out;
}

struct Case {
    const char* name;
    Pts2 outline;
    AcGePoint2d p;
    int expected;
};

// ---------------------------------------------------------------- angle sum

TEST(GeometryPtInPolygon, InsideOnAndOutside) {
    const Pts2 triangle = {{0, 0}, {6, 0}, {0, 6}};
    const Case cases[] = {
        {"centroid", triangle, {2, 2}, 1},
        {"centroid, clockwise", reversed(triangle), {2, 2}, 1},
        {"well outside", triangle, {20, 20}, -1},
        {"beside an edge", triangle, {-1, 3}, -1},
        {"on a vertex", triangle, {6, 0}, 0},
        {"within 0.0001 of a vertex", triangle, {6.00005, 0}, 0},
        {"middle of an edge", triangle, {3, 3}, 0},
        {"middle of the closing edge", triangle, {0, 3}, 0},
        {"square centre", kSquare, {5, 5}, 1},
        {"near a corner inside", kSquare, {9.9, 0.1}, 1},
        // Not star-shaped: the ray from the point leaves and re-enters the outline.
        {"inside a U", {{0, 0}, {9, 0}, {9, 9}, {6, 9}, {6, 3}, {3, 3}, {3, 9}, {0, 9}}, {1, 8}, 1},
        {"in the notch of the U",
         {{0, 0}, {9, 0}, {9, 9}, {6, 9}, {6, 3}, {3, 3}, {3, 9}, {0, 9}},
         {4.5, 6},
         -1},
        {"no vertices", {}, {0, 0}, -1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(M_PtInPolygon(c.p, c.outline), c.expected) << c.name;
}

TEST(GeometryPtInPolygon, FmodByPiCountsOnlySingleWindings) {
    // Each angle difference is reduced by fmod with pi, so a simple inside point sums to +-pi
    // and a point the outline winds round twice sums to 2*pi: outside.
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(5, 5), repeated(kSquare, 2)), -1);
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(5, 5), repeated(kSquare, 3)), -1);
    // A pentagram winds twice round its centre and once round each point of the star.
    const Pts2 star = {{0, 10}, {5.878, -8.090}, {-9.511, 3.090}, {9.511, 3.090}, {-5.878, -8.090}};
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(0, 0), star), -1);
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(0, 7), star), 1);
}

TEST(GeometryPtInPolygon, SpaceFormUsesThePlan) {
    const AcArray<AcGePoint3d> raised = {{0, 0, 5}, {10, 0, -5}, {10, 10, 50}, {0, 10, 0}};
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(5, 5), raised), 1);
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(10, 5), raised), 0);
    EXPECT_EQ(M_PtInPolygon(AcGePoint2d(15, 5), raised), -1);
}

// ---------------------------------------------------------------- crossing count

TEST(GeometryIsPointInside, CrossingCountAndItsEdgeRule) {
    const Case cases[] = {
        {"centre", kSquare, {5, 5}, 1},
        {"to the left", kSquare, {-5, 5}, 0},
        {"to the right", kSquare, {15, 5}, 0},
        {"above", kSquare, {5, 15}, 0},
        // Right-hand and top edges count as inside, left-hand and bottom edges as outside.
        {"on the right edge", kSquare, {10, 5}, 1},
        {"on the left edge", kSquare, {0, 5}, 0},
        {"on the top edge", kSquare, {5, 10}, 1},
        {"on the bottom edge", kSquare, {5, 0}, 0},
        {"right edge, clockwise", reversed(kSquare), {10, 5}, 1},
        {"left edge, clockwise", reversed(kSquare), {0, 5}, 0},
        {"on a slanted right-hand edge", kDiamond, {7.5, 2.5}, 1},
        {"on a slanted left-hand edge", kDiamond, {2.5, 2.5}, 0},
        // Level with a vertex the ray is counted once.
        {"level with a vertex", {{0, 0}, {10, 5}, {0, 10}}, {2, 5}, 1},
        // Even-odd: a square traced three times holds its centre, unlike the angle sum.
        {"square traced three times", repeated(kSquare, 3), {5, 5}, 1},
        {"square traced twice", repeated(kSquare, 2), {5, 5}, 0},
        {"one vertex", {{5, 5}}, {5, 5}, 0},
        {"no vertices", {}, {5, 5}, 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(M_IsPointInside(c.p, c.outline), c.expected) << c.name;
}

// ---------------------------------------------------------------- polylines

// The square with its right side bulging out into a half circle of radius 5 about (10, 5).
std::unique_ptr<AcDbPolyline> bulgingSquare(bool closed) {
    auto pl = std::make_unique<AcDbPolyline>();
    pl->addVertexAt(0, AcGePoint2d(0, 0));
    pl->addVertexAt(1, AcGePoint2d(10, 0), 1.0);
    pl->addVertexAt(2, AcGePoint2d(10, 10));
    pl->addVertexAt(3, AcGePoint2d(0, 10));
    pl->setClosed(closed);
    return pl;
}

TEST(GeometryIsInPline, ArcsAreExpandedAndTheBoundaryCounts) {
    const auto pl = bulgingSquare(true);
    EXPECT_EQ(M_IsInPline(AcGePoint3d(5, 5, 0), pl.get()), 1);
    EXPECT_EQ(M_IsInPline(AcGePoint3d(13, 5, 99), pl.get()), 1); // in the bulge; z ignored
    EXPECT_EQ(M_IsInPline(AcGePoint3d(16, 5, 0), pl.get()), 0);
    EXPECT_EQ(M_IsInPline(AcGePoint3d(10, 0, 0), pl.get()), 1); // on a vertex
    EXPECT_EQ(M_IsInPline(AcGePoint3d(0, 5, 0), pl.get()), 1);  // on an edge
    EXPECT_EQ(M_IsInPline(AcGePoint3d(-1, 5, 0), pl.get()), 0);
    // An open polyline is closed by the test itself.
    EXPECT_EQ(M_IsInPline(AcGePoint3d(13, 5, 0), bulgingSquare(false).get()), 1);
}

TEST(GeometryIsInPline, ArcsAreSampledAboutOneApartAndAtMostAHundredTimes) {
    // The half circle of length 15.7 becomes 15 chords; the middle ones end at +-6 degrees,
    // cutting the arc's rightmost point (15, 5) back to x = 14.973.
    const auto pl = bulgingSquare(true);
    EXPECT_EQ(M_IsInPline(AcGePoint3d(14.95, 5, 0), pl.get()), 1);
    EXPECT_EQ(M_IsInPline(AcGePoint3d(14.99, 5, 0), pl.get()), 0);

    // A half circle of radius 1000 is cut into 100 chords, not 3141: their middles lie
    // 0.123 inside the arc.
    AcDbPolyline big;
    big.addVertexAt(0, AcGePoint2d(0, 0), 1.0);
    big.addVertexAt(1, AcGePoint2d(2000, 0));
    big.setClosed(true);
    const double a = 1.5 * std::numbers::pi + std::numbers::pi / 200;
    auto at = [&](double r) { return AcGePoint3d(1000 + r * std::cos(a), r * std::sin(a), 0); };
    EXPECT_EQ(M_IsInPline(at(999.8), &big), 1);
    EXPECT_EQ(M_IsInPline(at(999.95), &big), 0);
}

TEST(GeometryIsInPline, NothingToTestGivesZero) {
    EXPECT_EQ(M_IsInPline(AcGePoint3d(0, 0, 0), nullptr), 0);
    AcDbPolyline empty;
    EXPECT_EQ(M_IsInPline(AcGePoint3d(0, 0, 0), &empty), 0);
    AcDbPolyline single;
    single.addVertexAt(0, AcGePoint2d(0, 0));
    EXPECT_EQ(M_IsInPline(AcGePoint3d(0, 0, 0), &single), 0);
}

} // namespace
