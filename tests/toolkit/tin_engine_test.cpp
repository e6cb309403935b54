// The triangulation engine on small cases worked out by hand: the sort, the three-point cases,
// the square's diagonal, degenerate and refused input, and the cleaning wrappers.
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"
#include "toolkit/tinsort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using Pts = AcArray<AcGePoint3d>;

std::vector<int> faces(const Pts& pts) {
    AcArray<int> out;
    M_GetTriangleFaces(pts, out);
    return std::vector<int>(out.begin(), out.end());
}

// ---------------------------------------------------------------- sort

std::vector<int> sortedIds(std::vector<qor::tin::SortKey> keys) {
    std::vector<qor::tin::SortKey> scratch(keys.size());
    qor::tin::sortKeys(keys.data(), scratch.data(), static_cast<int>(keys.size()));
    std::vector<int> ids;
    for (const auto& k : keys)
        ids.push_back(k.id);
    return ids;
}

TEST(TinSort, OrdersByXThenY) {
    EXPECT_EQ(
        sortedIds({{3, 1, 0}, {1, 5, 1}, {3, 0, 2}, {-2, 7, 3}, {1, 4, 4}, {0, 0, 5}, {3, 2, 6}}),
        (std::vector<int>{3, 5, 4, 1, 2, 0, 6}));
    EXPECT_TRUE(sortedIds({}).empty());
    EXPECT_EQ(sortedIds({{1, 1, 0}}), std::vector<int>{0});
}

// Enough keys for the counting sort, with negative and positive zero, negative numbers, numbers
// far apart in size and runs of equal x: the same order as comparing x, then y.
TEST(TinSort, LongListsMatchTheComparison) {
    std::vector<qor::tin::SortKey> keys;
    const double xs[] = {-0.0, 0.0, -1e300, 1e300, -3.5, 2.25, 1e-300, -1e-300, 7.0};
    for (int i = 0; i < 3000; ++i) {
        const double x =
            i % 3 ? xs[(i * 7) % 9] : std::ldexp(double((i * 7919) % 1000) - 500.0, i % 40 - 20);
        keys.push_back({x, double((i * 104729) % 3001) - 1500.0, i});
    }
    std::vector<qor::tin::SortKey> expected = keys;
    std::sort(expected.begin(), expected.end(),
              [](const auto& a, const auto& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    const std::vector<int> ids = sortedIds(keys);
    ASSERT_EQ(ids.size(), expected.size());
    for (size_t k = 0; k < ids.size(); ++k) {
        const auto& got = keys[static_cast<size_t>(ids[k])];
        EXPECT_EQ(got.x, expected[k].x) << k;
        EXPECT_EQ(got.y, expected[k].y) << k;
    }
}

TEST(TinSort, KeysThatAreNotNumbersStayInRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (int n : {37, 600}) {
        std::vector<qor::tin::SortKey> keys;
        for (int i = 0; i < n; ++i)
            keys.push_back(
                {i % 3 ? nan : (i % 2 ? -inf : double(i % 4)), i % 5 ? double(i) : nan, i});
        std::vector<int> seen(static_cast<size_t>(n), 0);
        for (int id : sortedIds(keys))
            ++seen[static_cast<size_t>(id)];
        EXPECT_EQ(seen, std::vector<int>(static_cast<size_t>(n), 1))
            << n; // nothing lost or doubled
    }
}

// ---------------------------------------------------------------- small networks

TEST(TinEngine, ThreePoints) {
    // Counter-clockwise, clockwise: one triangle either way, reported once from point 0.
    EXPECT_EQ(faces({{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}), (std::vector<int>{3, 0, 1, 2}));
    EXPECT_EQ(faces({{0, 0, 0}, {0, 3, 0}, {4, 0, 0}}), (std::vector<int>{3, 0, 1, 2}));
    // Input order decides the corners' order, not the sorted order.
    EXPECT_EQ(faces({{4, 0, 0}, {0, 3, 0}, {0, 0, 0}}), (std::vector<int>{3, 0, 1, 2}));
}

TEST(TinEngine, CollinearPointsGiveNoTriangle) {
    AcArray<int> out;
    EXPECT_EQ(M_GetTriangleFaces({{0, 0, 1}, {1, 1, 2}, {2, 2, 3}}, out), 0);
    EXPECT_EQ(M_GetTriangleFaces({{0, 0, 1}, {3, 0, 2}, {1, 0, 3}, {2, 0, 4}, {5, 0, 0}}, out), 0);
    EXPECT_TRUE(out.isEmpty());
    // A vertical line: every x ties and the sort falls back on y.
    EXPECT_EQ(M_GetTriangleFaces({{0, 4, 1}, {0, 1, 2}, {0, 3, 3}, {0, 2, 4}}, out), 0);
}

TEST(TinEngine, SquareTakesTheLeftCandidateOnATie) {
    // The four corners are cocircular, so both diagonals cotangent-tie; the left candidate
    // wins and the diagonal runs from (0,10) to (10,0). Sorted: a(0,0) b(0,10) | c(10,0)
    // d(10,10); the base a-c sees b (left) and d (right) under equal angles.
    EXPECT_EQ(faces({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}),
              (std::vector<int>{3, 0, 1, 3, 3, 1, 2, 3}));
    // The same square listed from another corner: still the (0,10)-(10,0) diagonal.
    EXPECT_EQ(faces({{10, 10, 0}, {0, 10, 0}, {0, 0, 0}, {10, 0, 0}}),
              (std::vector<int>{3, 0, 1, 3, 3, 1, 2, 3}));
}

TEST(TinEngine, DelaunayDiagonalOfAKite) {
    // Not a tie: (5,1) and (5,-1) are close, so the short diagonal between them is Delaunay.
    EXPECT_EQ(faces({{0, 0, 0}, {5, 1, 0}, {10, 0, 0}, {5, -1, 0}}),
              (std::vector<int>{3, 0, 1, 3, 3, 1, 2, 3}));
    // Far apart in y: the long way across is the short diagonal now.
    // Both triangles come from point 0, in turn counter-clockwise from its first edge, the one
    // to (5,-9) made when the lowest pair was joined.
    EXPECT_EQ(faces({{0, 0, 0}, {5, 9, 0}, {10, 0, 0}, {5, -9, 0}}),
              (std::vector<int>{3, 0, 2, 3, 3, 0, 1, 2}));
}

TEST(TinEngine, PointInsideATriangleHull) {
    // The hull is a triangle: its outside must not come out as a fourth triangle.
    EXPECT_EQ(faces({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}, {2, 2, 0}}),
              (std::vector<int>{3, 0, 1, 3, 3, 0, 2, 3, 3, 1, 2, 3}));
}

TEST(TinEngine, RefusesWhatItCannotTriangulate) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const Pts cases[] = {
        {},
        {{1, 1, 1}},
        {{1, 1, 1}, {2, 2, 2}},
        {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 5}}, // the same plan point twice
        {{0, 0, 0}, {1, 0, 0}, {nan, 1, 0}},
        {{0, 0, 0}, {1, inf, 0}, {0, 1, 0}},
    };
    for (const Pts& pts : cases) {
        AcArray<int> out = {7};
        EXPECT_EQ(M_GetTriangleFaces(pts, out), 0) << pts.length();
        EXPECT_EQ(out.length(), 1);
        // Two points make a network of one edge, but no triangle.
        if (pts.length() == 2) continue;
        qor::tin::Network net;
        EXPECT_FALSE(net.build(pts.asArrayPtr(), pts.length())) << pts.length();
        EXPECT_EQ(net.size(), 0);
    }
    qor::tin::Network net;
    EXPECT_FALSE(net.build(nullptr, 5));
}

TEST(TinEngine, NetworksKeepTheirLinksConsistent) {
    // A grid: long runs of equal x, collinear columns and cocircular squares.
    Pts grid;
    for (int i = 0; i < 9; ++i)
        for (int j = 0; j < 7; ++j)
            grid.append(AcGePoint3d(j * 2.0, i * 3.0, 0));
    qor::tin::Network net;
    ASSERT_TRUE(net.build(grid.asArrayPtr(), grid.length()));
    EXPECT_TRUE(net.isValid());
    for (int v = 0; v < net.size(); ++v)
        EXPECT_GE(net.entry(v), 0) << v;
    // A 7 x 9 grid has 2 * 63 - 2 - 28 triangles.
    EXPECT_EQ(faces(grid).size(), 4u * 96);
}

// ---------------------------------------------------------------- cleaning wrappers

TEST(TinEngine, GetTrianglePtsSortsAndThinsItsInput) {
    Pts pts = {{10, 0, 1}, {0, 10, 2}, {0, 0, 3}, {10.00005, 0.00005, 4}, {12, 12, 5}};
    AcArray<AcGePoint3d> tris;
    ASSERT_EQ(M_GetTrianglePts(pts, tris), 1);
    // Sorted by x, then y; of the close pair the later one in sorted order stays.
    ASSERT_EQ(pts.length(), 4);
    EXPECT_EQ(pts[0], AcGePoint3d(0, 0, 3));
    EXPECT_EQ(pts[1], AcGePoint3d(0, 10, 2));
    EXPECT_EQ(pts[2], AcGePoint3d(10.00005, 0.00005, 4));
    EXPECT_EQ(pts[3], AcGePoint3d(12, 12, 5));
    ASSERT_EQ(tris.length(), 6);
    // (12,12) lies outside the circle through the other three: triangles (0,1,2), (1,2,3).
    const AcGePoint3d expected[] = {pts[0], pts[1], pts[2], pts[1], pts[2], pts[3]};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(tris[i], expected[i]) << i;

    AcArray<int> faceList;
    Pts again = {{10, 0, 1}, {0, 10, 2}, {0, 0, 3}, {10.00005, 0.00005, 4}, {12, 12, 5}};
    ASSERT_EQ(M_GetTrianglePts(again, faceList), 1);
    EXPECT_EQ(std::vector<int>(faceList.begin(), faceList.end()),
              (std::vector<int>{3, 0, 1, 2, 3, 1, 2, 3}));
}

TEST(TinEngine, GetTrianglePtsWithTooFewOrBadPoints) {
    AcArray<AcGePoint3d> tris;
    Pts two = {{0, 0, 0}, {0.00001, 0, 0}, {5, 5, 0}}; // thinned to two
    EXPECT_EQ(M_GetTrianglePts(two, tris), 0);
    EXPECT_EQ(two.length(), 2);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Pts bad = {{5, 0, 0}, {0, 0, 0}, {nan, 3, 0}, {0, 4, 0}};
    EXPECT_EQ(M_GetTrianglePts(bad, tris), 0);
    EXPECT_EQ(bad[0], AcGePoint3d(5, 0, 0)); // left as it was, not sorted
    EXPECT_EQ(bad.length(), 4);
    EXPECT_TRUE(tris.isEmpty());
}

TEST(TinEngine, GetTriangleFacesAppendsAndKeepsTheCallersOrder) {
    AcArray<int> out = {3, 7, 8, 9};
    const Pts pts = {{10, 10, 0}, {0, 0, 0}, {10, 0, 0}};
    ASSERT_EQ(M_GetTriangleFaces(pts, out), 1);
    EXPECT_EQ(std::vector<int>(out.begin(), out.end()), (std::vector<int>{3, 7, 8, 9, 3, 0, 1, 2}));
}

} // namespace
