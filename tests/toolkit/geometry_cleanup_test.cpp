// Point-list clean-up: sorting, near-coincident points, consecutive duplicates, and repeated or
// collinear outline vertices.
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Pts2 = AcArray<AcGePoint2d>;
using Pts3 = AcArray<AcGePoint3d>;
using Bulges = AcArray<double>;

// Exact comparison: clean-up moves points around, it never computes new ones.
template <class Point> std::string text(const AcArray<Point>& pts) {
    std::string s;
    for (const Point& p : pts) {
        s += "(" + std::to_string(p.x) + " " + std::to_string(p.y);
        if constexpr (requires { p.z; }) s += " " + std::to_string(p.z);
        s += ")";
    }
    return s;
}

// ---------------------------------------------------------------- sorting

TEST(GeometrySortPts, ByXThenYAndOnlyLongerLists) {
    Pts3 two = {{5, 0, 0}, {1, 0, 0}};
    M_SortPts(two);
    EXPECT_EQ(text(two), text(Pts3{{5, 0, 0}, {1, 0, 0}}));
    Pts3 pts = {{2, 1, 0}, {1, 9, 1}, {2, 0, 2}, {1, -9, 3}};
    M_SortPts(pts);
    EXPECT_EQ(text(pts), text(Pts3{{1, -9, 3}, {1, 9, 1}, {2, 0, 2}, {2, 1, 0}}));
}

// ---------------------------------------------------------------- near-coincident points

TEST(GeometryDelMultPts, NearCoincidentPointsLeaveTheLastOfEachCluster) {
    const Pts3 unsorted = {{0, 0, 0}, {7, 7, 0}, {0, 0.00001, 0}};
    const struct {
        const char* name;
        int sort;
        double tol;
        Pts3 in, out;
    } cases[] = {
        {"sorted first",
         1,
         0.001,
         {{0, 0, 0}, {1, 1, 0}, {0.0005, 0.0005, 0}},
         {{0.0005, 0.0005, 0}, {1, 1, 0}}},
        // z tells the points apart; it plays no part in the test.
        {"cluster",
         0,
         0.0001,
         {{5, 5, 1}, {5.00003, 5, 2}, {5.00006, 5.00002, 3}, {8, 8, 4}},
         {{5.00006, 5.00002, 3}, {8, 8, 4}}},
        {"close in x only", 1, 0.0001, {{1, 1, 0}, {1, 2, 0}}, {{1, 1, 0}, {1, 2, 0}}},
        // The walk stops at the first point far off in x, so unsorted lists keep duplicates
        // that are not neighbours in x. Only sort 1 sorts.
        {"unsorted", 0, 0.0001, unsorted, unsorted},
        {"sort 2", 2, 0.0001, unsorted, unsorted},
        {"sort 1", 1, 0.0001, unsorted, {{0, 0.00001, 0}, {7, 7, 0}}},
        {"empty", 1, 0.0001, {}, {}},
    };
    for (const auto& c : cases) {
        Pts3 pts = c.in;
        EXPECT_EQ(M_DelMultPts(c.sort, c.tol, pts), 0) << c.name;
        EXPECT_EQ(text(pts), text(c.out)) << c.name;
    }
    // The shorter forms: tolerance 0.0001, and sort 1.
    const Pts3 row = {{3.0002, 3, 0}, {3.00009, 3, 0}, {3, 3, 0}};
    const Pts3 cleaned = {{3.00009, 3, 0}, {3.0002, 3, 0}};
    Pts3 pts = row;
    EXPECT_EQ(M_DelMultPts(pts), 0);
    EXPECT_EQ(text(pts), text(cleaned));
    pts = row;
    M_DelMultPts(1, pts);
    EXPECT_EQ(text(pts), text(cleaned));
}

TEST(GeometryDelMultPts, PlaneFormLeavesTheCallersList) {
    Pts2 pts = {{1, 1}, {0, 0}, {1, 1}, {1.00001, 1}};
    const Pts2 before = pts;
    EXPECT_EQ(M_DelMultPts(1, pts), 0);
    EXPECT_EQ(text(pts), text(before));
}

// ---------------------------------------------------------------- consecutive duplicates

TEST(GeometryDelPlineMultPts, ConsecutiveDuplicatesOnly) {
    Pts3 pts = {{0, 0, 1}, {0, 0.00005, 2}, {5, 0, 3}, {5, 0, 4}, {5, 0, 5}, {0, 0, 6}};
    EXPECT_EQ(M_DelPlineMultPts(pts), 1);
    // The earlier of each pair goes; the closing vertex, equal to the first, stays.
    EXPECT_EQ(text(pts), text(Pts3{{0, 0.00005, 2}, {5, 0, 5}, {0, 0, 6}}));
    EXPECT_EQ(M_DelPlineMultPts(pts), 0);

    Pts2 flat = {{0, 0}, {1, 0}, {1, 0.0001}};
    EXPECT_EQ(M_DelPlineMultPts(flat), 0); // 0.0001 apart is not closer than 0.0001
    EXPECT_EQ(flat.length(), 3);
}

TEST(GeometryDelPlineMultPts, BulgesFollowTheirVertices) {
    Pts2 pts = {{0, 0}, {4, 0}, {4, 0}, {4, 4}};
    Bulges bulges = {0.1, 0.2, 0.3, 0.4};
    EXPECT_EQ(M_DelPlineMultPts(pts, bulges), 1);
    EXPECT_EQ(text(pts), text(Pts2{{0, 0}, {4, 0}, {4, 4}}));
    EXPECT_EQ(bulges.std(), (std::vector<double>{0.1, 0.3, 0.4}));

    Pts2 mismatched = {{0, 0}, {0, 0}};
    Bulges short1 = {0.5};
    EXPECT_EQ(M_DelPlineMultPts(mismatched, short1), 0);
    EXPECT_EQ(mismatched.length(), 2);
    EXPECT_EQ(short1.length(), 1);
}

// ---------------------------------------------------------------- repeated and collinear

TEST(GeometryDelPLineRepeatPts, OpenOutlines) {
    const struct {
        const char* name;
        Pts2 pts, expected;
    } cases[] = {
        {"collinear middle", {{0, 0}, {5, 0}, {10, 0}, {10, 5}}, {{0, 0}, {10, 0}, {10, 5}}},
        {"run of collinear", {{0, 0}, {1, 1}, {2, 2}, {3, 3}}, {{0, 0}, {3, 3}}},
        {"repeated", {{0, 0}, {5, 5}, {5, 5}, {10, 0}}, {{0, 0}, {5, 5}, {10, 0}}},
        // The repeat lies at the end of the segment past it, so it goes by the collinear rule.
        {"repeated end", {{0, 0}, {5, 5}, {10, 0}, {10, 0}}, {{0, 0}, {5, 5}, {10, 0}}},
        {"fold back", {{0, 0}, {10, 0}, {5, 0}}, {{0, 0}, {10, 0}, {5, 0}}},
        {"one vertex", {{1, 1}}, {{1, 1}}},
    };
    for (const auto& c : cases) {
        Pts2 pts = c.pts;
        M_DelPLineRepeatPts(pts);
        EXPECT_EQ(text(pts), text(c.expected)) << c.name;
    }
}

TEST(GeometryDelPLineRepeatPts, ClosedOutlinesStayClosed) {
    // The outline starts in the middle of its bottom side: the start moves to the corner.
    Pts2 pts = {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}};
    M_DelPLineRepeatPts(pts);
    EXPECT_EQ(text(pts), text(Pts2{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}));

    Pts3 space = {{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {10, 10, 0}, {0, 0, 0}};
    M_DelPLineRepeatPts(space);
    EXPECT_EQ(text(space), text(Pts3{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 0, 0}}));
    // In space a vertex off the line by height alone is no middle vertex.
    Pts3 ramp = {{0, 0, 0}, {5, 0, 1}, {10, 0, 0}};
    M_DelPLineRepeatPts(ramp);
    EXPECT_EQ(ramp.length(), 3);
}

TEST(GeometryDelPLineRepeatPts, ArcsKeepTheirVertices) {
    // Vertex 1 lies between its neighbours but starts an arc; vertex 3 sits between lines.
    Pts2 pts = {{0, 0}, {5, 0}, {10, 0}, {10, 5}, {10, 10}};
    Bulges bulges = {0, 0.5, 0, 0, 0};
    M_DelPLineRepeatPts(pts, bulges);
    EXPECT_EQ(text(pts), text(Pts2{{0, 0}, {5, 0}, {10, 0}, {10, 10}}));
    EXPECT_EQ(bulges.std(), (std::vector<double>{0, 0.5, 0, 0}));

    // A repeated vertex takes the bulge before it along.
    Pts2 rep = {{0, 0}, {5, 5}, {5, 5}, {10, 0}};
    Bulges repBulges = {0.1, 0.2, 0.3, 0.4};
    M_DelPLineRepeatPts(rep, repBulges);
    EXPECT_EQ(text(rep), text(Pts2{{0, 0}, {5, 5}, {10, 0}}));
    EXPECT_EQ(repBulges.std(), (std::vector<double>{0.1, 0.3, 0.4}));

    // Closed, starting mid-side between two lines: the arcs stay on their sides.
    Pts2 ring = {{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}};
    Bulges ringBulges = {0, 0.3, 0, 0.7, 0, 0};
    M_DelPLineRepeatPts(ring, ringBulges);
    EXPECT_EQ(text(ring), text(Pts2{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}));
    EXPECT_EQ(ringBulges.std(), (std::vector<double>{0, 0.3, 0, 0.7, 0}));

    Pts2 mismatched = {{0, 0}, {1, 0}, {2, 0}};
    Bulges two = {0, 0};
    M_DelPLineRepeatPts(mismatched, two);
    EXPECT_EQ(mismatched.length(), 3);
    EXPECT_EQ(two.length(), 2);
}

} // namespace
