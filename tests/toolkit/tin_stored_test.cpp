// Heights on a stored triangle list: the boundary and inside rules of one triangle, the list
// order, the sector estimate outside the list and its pair helper.
#include "toolkit/tin.h"
#include "toolkit/tinheight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Pts = AcArray<AcGePoint3d>;

// The plane z = x + y.
const Pts kTriangle = {{0, 0, 0}, {10, 0, 10}, {0, 20, 20}};

struct Case {
    const char* name;
    AcGePoint3d p;
    double h;
};

TEST(TinStoredHeight, OneTriangle) {
    const Case cases[] = {
        {"inside", {2, 3, 0}, 5},
        {"inside near p3", {1, 17, 0}, 18},
        {"corner p1", {0, 0, 0}, 0},
        {"corner p2", {10, 0, 0}, 10},
        {"corner p3", {0, 20, 0}, 20},
        {"edge p1-p2", {4, 0, 0}, 4},
        {"edge p2-p3", {5, 10, 0}, 15},
        // On p3-p1 the stored rule divides by d12 (10), not by d31 (20): twice the true height.
        {"edge p3-p1", {0, 5, 0}, 10},
        {"edge p3-p1 at (0,8)", {0, 8, 0}, 16},
        {"within 0.0001 outside edge p1-p2", {4, -0.00005, 0}, 4},
    };
    for (const Case& c : cases) {
        double h = -99;
        Pts tri;
        int index = -2;
        EXPECT_EQ(M_CalHgtByPt(kTriangle, c.p, h, tri, index), 1) << c.name;
        EXPECT_NEAR(h, c.h, 1e-9) << c.name;
        EXPECT_EQ(index, 0) << c.name;
        ASSERT_EQ(tri.length(), 3) << c.name;
        EXPECT_EQ(tri[2], kTriangle[2]) << c.name;
    }
}

TEST(TinStoredHeight, CornerOrderDecidesTheThirdEdgeRule) {
    // The same triangle listed from p3: (0,5) now lies on p1-p2, interpolated along its own
    // length.
    const Pts rotated = {{0, 20, 20}, {0, 0, 0}, {10, 0, 10}};
    double h = 0;
    ASSERT_EQ(M_CalHgtByPt(rotated, AcGePoint3d(0, 5, 0), h), 1);
    EXPECT_NEAR(h, 5, 1e-9);
    // p1 and p2 share a plan point, so d12 is 0: on p2-p3 the rule falls back to z2 although
    // d23 is 20.
    const Pts flat = {{0, 0, 7}, {0, 0, 9}, {0, 20, 20}};
    ASSERT_EQ(M_CalHgtByPt(flat, AcGePoint3d(0, 5, 0), h), 1);
    EXPECT_EQ(h, 9);
}

TEST(TinStoredHeight, FirstTriangleInListOrderWins) {
    // Two overlapping triangles on different planes; (2,2) lies in both.
    const Pts low = {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}};
    const Pts high = {{-1, -1, 50}, {9, -1, 50}, {-1, 9, 50}};
    Pts list = {{100, 100, 1}, {101, 100, 1}, {100, 101, 1}};
    list.append(low);
    list.append(high);
    double h = 0;
    Pts tri = {{7, 7, 7}};
    int index = -2;
    ASSERT_EQ(M_CalHgtByPt(list, AcGePoint3d(2, 2, 0), h, tri, index), 1);
    EXPECT_EQ(index, 1);
    EXPECT_NEAR(h, 0, 1e-9);
    ASSERT_EQ(tri.length(), 4); // appended to what was there
    EXPECT_EQ(tri[1], low[0]);

    Pts swapped = high;
    swapped.append(low);
    ASSERT_EQ(M_CalHgtByPt(swapped, AcGePoint3d(2, 2, 0), h, tri, index), 1);
    EXPECT_EQ(index, 0);
    EXPECT_NEAR(h, 50, 1e-9);
}

TEST(TinStoredHeight, TooFewPoints) {
    double h = 3;
    Pts tri;
    int index = 5;
    EXPECT_EQ(M_CalHgtByPt(Pts{}, AcGePoint3d(0, 0, 0), h, tri, index), 0);
    EXPECT_EQ(M_CalHgtByPt(Pts{{0, 0, 0}, {1, 0, 0}}, AcGePoint3d(0, 0, 0), h, tri, index), 0);
    EXPECT_EQ(h, 3);
    EXPECT_EQ(index, 5);
    EXPECT_TRUE(tri.isEmpty());
}

// ---------------------------------------------------------------- sector estimate

// Three triangles around the origin, pointing away from it, with first corners P (east),
// A (north) and B (south).
Pts sectorList(double zP) {
    return {{1, 0, zP}, {2, 0, 0},   {1, 1, 0},  {0, 2, 10}, {1, 3, 0},
            {0, 3, 0},  {0, -2, 20}, {1, -3, 0}, {0, -3, 0}};
}

TEST(TinStoredHeight, OutsideEveryTriangleTheSectorsDecide) {
    double h = -5;
    Pts tri;
    int index = 0;
    // P is nearest; the line P-q meets A-B at q itself: zX = 15, h = (1 * 15 + 1 * 5) / 2.
    ASSERT_EQ(M_CalHgtByPt(sectorList(5), AcGePoint3d(0, 0, 0), h, tri, index), 1);
    EXPECT_EQ(index, -1);
    EXPECT_TRUE(tri.isEmpty());
    EXPECT_NEAR(h, 10, 1e-9);

    // Nearness is measured in space: P high above is farther than A, which becomes the centre
    // point; the line A-q meets P-B at B: h = (2 * 20 + 4 * 10) / 6.
    ASSERT_EQ(M_CalHgtByPt(sectorList(100), AcGePoint3d(0, 0, 0), h, tri, index), 1);
    EXPECT_NEAR(h, 80.0 / 6.0, 1e-9);
}

TEST(TinStoredHeight, NoPairLeavesTheHeightAlone) {
    // Only one corner beside the nearest: no pair, h untouched, still 1.
    const Pts list = {{1, 0, 5}, {2, 0, 0}, {1, 1, 0}, {0, 2, 10}, {1, 3, 0}, {0, 3, 0}};
    double h = 42;
    int index = 0;
    Pts tri;
    EXPECT_EQ(M_CalHgtByPt(list, AcGePoint3d(0, 0, 0), h, tri, index), 1);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(h, 42);
    // Corners farther than 1,000,000 take no part.
    const Pts far = {{2e6, 0, 5}, {2e6 + 1, 0, 0}, {2e6, 1, 0}};
    EXPECT_EQ(M_CalHgtByPt(far, AcGePoint3d(0, 0, 0), h), 1);
    EXPECT_EQ(h, 42);
}

TEST(TinStoredHeight, QueryThatIsNotANumber) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double h = 1;
    int index = 0;
    Pts tri;
    EXPECT_EQ(M_CalHgtByPt(kTriangle, AcGePoint3d(nan, 2, 0), h, tri, index), 1);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(h, 1);
}

TEST(TinPairHeight, Cases) {
    using qor::tin::pairHeight;
    double h = 0;
    // q within 0.0001 of P in plan: P's height.
    ASSERT_TRUE(pairHeight({3, 4, 0}, {3.00005, 4, 8}, {0, 0, 0}, {1, 1, 1}, h));
    EXPECT_EQ(h, 8);
    // P (0,0,0), q (1,0): the x axis crosses A(4,-2,10)-B(4,2,30) at X(4,0), zX = 20;
    // h = (|Pq| * zX + |PX| * zP) / (|Pq| + |PX|) = (1 * 20 + 4 * 0) / 5.
    ASSERT_TRUE(pairHeight({1, 0, 0}, {0, 0, 0}, {4, -2, 10}, {4, 2, 30}, h));
    EXPECT_NEAR(h, 4, 1e-12);
    // The crossing misses the segment, or the lines are parallel.
    EXPECT_FALSE(pairHeight({1, 0, 0}, {0, 0, 0}, {4, 1, 10}, {4, 2, 30}, h));
    EXPECT_FALSE(pairHeight({1, 0, 0}, {0, 0, 0}, {0, 1, 10}, {5, 1, 30}, h));
    // A and B at one plan point: no line to cross.
    EXPECT_FALSE(pairHeight({1, 0, 0}, {0, 0, 0}, {4, 1, 10}, {4, 1, 30}, h));
}

} // namespace
