// Cutting self-intersection loops off closed outlines with lines and arcs.
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using Pts2 = AcArray<AcGePoint2d>;
using Bulges = AcArray<double>;

const double kQuarter = std::tan(std::numbers::pi / 8); // bulge of a quarter circle

struct Case {
    const char* name;
    Pts2 pts;
    Bulges bulges;
    Pts2 expectedPts;
    Bulges expectedBulges;
};

void check(const Case& c) {
    Pts2 pts = c.pts;
    Bulges bulges = c.bulges;
    M_DelSelfInterPts(pts, bulges);
    ASSERT_EQ(pts.length(), c.expectedPts.length()) << c.name;
    ASSERT_EQ(bulges.length(), c.expectedBulges.length()) << c.name;
    for (int i = 0; i < pts.length(); ++i)
        EXPECT_TRUE(pts[i].isEqualTo(c.expectedPts[i], AcGeTol()))
            << c.name << " vertex " << i << ": " << pts[i].x << "," << pts[i].y;
    for (int i = 0; i < bulges.length(); ++i)
        EXPECT_NEAR(bulges[i], c.expectedBulges[i], 1e-9) << c.name << " bulge " << i;
}

TEST(GeometryDelSelfInterPts, LoopsAreCutOff) {
    const double t34 = std::tan(std::atan(3.0 / 4.0) / 4.0);
    const double t43 = std::tan(std::atan(4.0 / 3.0) / 4.0);
    const Case cases[] = {
        {"figure of eight",
         {{0, 0}, {10, 10}, {10, 0}, {0, 10}, {0, 0}},
         {0, 0, 0, 0, 0},
         {{0, 0}, {5, 5}, {0, 10}, {0, 0}},
         {0, 0, 0, 0}},
        // A line crosses the half-circle arc in the middle: the arc keeps its first quarter.
        {"arc cut by a later line",
         {{0, 0}, {10, 0}, {10, -8}, {5, -8}, {5, 2}, {0, 2}, {0, 0}},
         {1, 0, 0, 0, 0, 0, 0},
         {{0, 0}, {5, -5}, {5, 2}, {0, 2}, {0, 0}},
         {kQuarter, 0, 0, 0, 0}},
        // The walk goes on along the arc from the crossing, clockwise as before.
        {"line cut by a later arc",
         {{5, 2}, {5, -8}, {10, -8}, {10, 0}, {0, 0}, {0, 2}, {5, 2}},
         {0, 0, 0, -1, 0, 0, 0},
         {{5, 2}, {5, -5}, {0, 0}, {0, 2}, {5, 2}},
         {0, -kQuarter, 0, 0, 0}},
        // The next segment meets the arc at their shared vertex and again at (2, -4): the
        // shared vertex does not count, the second crossing does.
        {"arc crossed back by its neighbour",
         {{0, 0}, {10, 0}, {0, -5}, {0, 0}},
         {1, 0, 0, 0},
         {{0, 0}, {2, -4}, {0, -5}, {0, 0}},
         {t43, 0, 0, 0}},
        {"two arcs crossing",
         {{0, 0}, {10, 0}, {10, -6}, {0, -6}, {0, 0}},
         {1, 0, 1, 0, 0},
         {{0, 0}, {1, -3}, {0, -6}, {0, 0}},
         {t34, t34, 0, 0}},
    };
    for (const Case& c : cases)
        check(c);
}

TEST(GeometryDelSelfInterPts, SimpleOutlinesAndBadInputStayAsTheyAre) {
    const Pts2 square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
    const Case cases[] = {
        {"square", square, {0, 0, 0, 0, 0}, square, {0, 0, 0, 0, 0}},
        {"square with arcs bulging out", square, {1, 1, 0, 0, 0}, square, {1, 1, 0, 0, 0}},
        {"implicitly closed square",
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {0, 0, 0, 0},
         {{0, 0}, {10, 0}, {10, 10}, {0, 10}},
         {0, 0, 0, 0}},
        {"lengths differ", square, {0, 0}, square, {0, 0}},
        {"one vertex", {{1, 1}}, {0.5}, {{1, 1}}, {0.5}},
        {"nothing", {}, {}, {}, {}},
    };
    for (const Case& c : cases)
        check(c);
}

TEST(GeometryDelSelfInterPts, TinySegmentsNeverCross) {
    // A spike shorter than 0.00001 pokes through the opposite side of a thin sliver.
    const Pts2 pts = {{0, 0}, {10, 0}, {10, 0.000004}, {5, 0.000004}, {5, -0.000004}, {0, 0}};
    const Bulges bulges = {0, 0, 0, 0, 0, 0};
    check({"tiny", pts, bulges, pts, bulges});
}

} // namespace
