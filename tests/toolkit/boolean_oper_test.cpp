// The two-polygon engine through its exported forms: the exact layout of the loop lists, the
// fate of shared sides, degenerate input, and the polyline forms.
#include "toolkit/boolean.h"
#include "toolkit/booleanengine.h"

#include "dbents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

using Pts2 = AcArray<AcGePoint2d>;
using Pts3 = AcArray<AcGePoint3d>;

const Pts2 kLeft = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
const Pts2 kRight = {{1, 0}, {2, 0}, {2, 1}, {1, 1}};

void expectPoints(const Pts2& got, const Pts2& expected, const char* what) {
    ASSERT_EQ(got.length(), expected.length()) << what;
    for (int i = 0; i < got.length(); ++i) {
        EXPECT_DOUBLE_EQ(got[i].x, expected[i].x) << what << " point " << i;
        EXPECT_DOUBLE_EQ(got[i].y, expected[i].y) << what << " point " << i;
    }
}

// Each loop's indices count up from 0 over the whole output.
AcArray<int> sequentialCounts(std::initializer_list<int> sizes) {
    AcArray<int> counts;
    int next = 0;
    for (int n : sizes) {
        counts.append(n);
        for (int k = 0; k < n; ++k)
            counts.append(next++);
    }
    return counts;
}

// ---------------------------------------------------------------- loop lists

TEST(BooleanOper, SingleTriangleLoopRepeatsItsFirstPoint) {
    const Pts2 triangle = {{1, 1}, {3, 1}, {2, 3}};
    const Pts2 around = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    AcArray<int> counts;
    Pts2 pts;
    ASSERT_EQ(M_BooleanOper(triangle, around, 1, counts, pts), 1);
    EXPECT_EQ(counts, (AcArray<int>{4, 0, 1, 2, 3}));
    expectPoints(pts, {{1, 1}, {3, 1}, {2, 3}, {1, 1}}, "triangle");
}

TEST(BooleanOper, SquaresSharingASideUnion) {
    // The shared side is kept once, from the pass over A, which closes A's outline; B's other
    // three sides stay an open chain.
    AcArray<int> counts;
    Pts2 pts;
    ASSERT_EQ(M_BooleanOper(kLeft, kRight, 0, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({5, 4}));
    expectPoints(pts, {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {2, 0}, {2, 1}, {1, 1}},
                 "union");
}

TEST(BooleanOper, SquaresSharingASideDifference) {
    // Neither pass keeps the shared side, so A's remaining sides form one open chain, grown
    // at its head.
    AcArray<int> counts;
    Pts2 pts;
    ASSERT_EQ(M_BooleanOper(kLeft, kRight, 2, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({4}));
    expectPoints(pts, {{1, 1}, {0, 1}, {0, 0}, {1, 0}}, "A - B");

    ASSERT_EQ(M_BooleanOper(kRight, kLeft, 2, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({4}));
    expectPoints(pts, {{1, 0}, {2, 0}, {2, 1}, {1, 1}}, "B - A");
}

TEST(BooleanOper, DisjointSquares) {
    const Pts2 far = {{5, 0}, {6, 0}, {6, 1}, {5, 1}};
    AcArray<int> counts;
    Pts2 pts;
    ASSERT_EQ(M_BooleanOper(kLeft, far, 0, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({5, 5}));
    expectPoints(pts,
                 {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {5, 0}, {6, 0}, {6, 1}, {5, 1}, {5, 0}},
                 "union");

    EXPECT_EQ(M_BooleanOper(kLeft, far, 1, counts, pts), 0);
    EXPECT_TRUE(counts.isEmpty());
    EXPECT_TRUE(pts.isEmpty());

    ASSERT_EQ(M_BooleanOper(kLeft, far, 2, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({5}));
    expectPoints(pts, {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, "difference");
}

TEST(BooleanOper, InnerSquareIntersectionIsItsOutline) {
    const Pts2 outer = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    const Pts2 inner = {{1, 1}, {2, 1}, {2, 2}, {1, 2}};
    AcArray<int> counts;
    Pts2 pts;
    ASSERT_EQ(M_BooleanOper(outer, inner, 1, counts, pts), 1);
    EXPECT_EQ(counts, sequentialCounts({5}));
    expectPoints(pts, {{1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}}, "A * B");
}

TEST(BooleanOper, ThreeDimensionalFormIgnoresHeights) {
    const Pts3 a = {{0, 0, 5}, {2, 0, -1}, {2, 2, 7}, {0, 2, 0}};
    const Pts3 b = {{1, 1, 3}, {3, 1, 3}, {3, 3, 9}, {1, 3, -4}};
    const Pts2 a2 = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    const Pts2 b2 = {{1, 1}, {3, 1}, {3, 3}, {1, 3}};
    for (int op = 0; op < 3; ++op) {
        AcArray<int> counts3, counts2;
        Pts2 pts3, pts2;
        EXPECT_EQ(M_BooleanOper(a, b, op, counts3, pts3), M_BooleanOper(a2, b2, op, counts2, pts2));
        EXPECT_EQ(counts3, counts2) << "op " << op;
        expectPoints(pts3, pts2, "3D against 2D");
    }
}

TEST(BooleanOper, FarCoordinatesGiveTheScaledLoops) {
    // Beyond 1e9 the engine searches without its indexes; scaled by a power of two the
    // arithmetic is exact, so the loops are the small case's, scaled.
    const double k = std::ldexp(1.0, 40);
    const Pts2 a = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    const Pts2 b = {{1, 1}, {3, 1}, {3, 3}, {1, 3}};
    Pts2 farA, farB;
    for (const AcGePoint2d& p : a)
        farA.append(AcGePoint2d(p.x * k, p.y * k));
    for (const AcGePoint2d& p : b)
        farB.append(AcGePoint2d(p.x * k, p.y * k));
    for (int op = 0; op < 3; ++op) {
        AcArray<int> nearCounts, farCounts;
        Pts2 nearPts, farPts;
        ASSERT_EQ(M_BooleanOper(a, b, op, nearCounts, nearPts), 1);
        ASSERT_EQ(M_BooleanOper(farA, farB, op, farCounts, farPts), 1);
        EXPECT_EQ(farCounts, nearCounts) << "op " << op;
        Pts2 scaled;
        for (const AcGePoint2d& p : nearPts)
            scaled.append(AcGePoint2d(p.x * k, p.y * k));
        expectPoints(farPts, scaled, "far");
    }
}

// ---------------------------------------------------------------- refusals

TEST(BooleanOper, RefusalsReturnZeroAndEmptyOutputs) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        Pts2 a, b;
        int op;
    } cases[] = {
        {"op 3", kLeft, kRight, 3},
        {"op -1", kLeft, kRight, -1},
        {"no vertices", {}, kRight, 0},
        {"two vertices", {{0, 0}, {1, 0}}, kRight, 0},
        {"two vertices in B", kLeft, {{0, 0}, {1, 0}}, 1},
        // Cleaning merges the two close vertices and leaves two.
        {"three vertices, two within 0.0001", {{0, 0}, {5, 0}, {5.00005, 0.00005}}, kRight, 0},
        {"closed triangle of two distinct points", {{0, 0}, {5, 0}, {0, 0}}, kRight, 0},
        {"all in one point", {{3, 3}, {3, 3}, {3, 3}, {3, 3}}, kRight, 2},
        {"not a number", {{0, 0}, {nan, 0}, {1, 1}}, kRight, 0},
        {"infinite", kLeft, {{0, 0}, {inf, 0}, {1, 1}}, 1},
    };
    for (const auto& c : cases) {
        AcArray<int> counts = {9, 9};
        Pts2 pts = {{9, 9}};
        EXPECT_EQ(M_BooleanOper(c.a, c.b, c.op, counts, pts), 0) << c.name;
        EXPECT_TRUE(counts.isEmpty()) << c.name;
        EXPECT_TRUE(pts.isEmpty()) << c.name;
    }
}

// ---------------------------------------------------------------- cleaning

TEST(BooleanClean, RemovesEachVertexCloseToTheNext) {
    const struct {
        const char* name;
        Pts2 in, out;
    } cases[] = {
        {"nothing close", {{0, 0}, {1, 0}, {1, 1}}, {{0, 0}, {1, 0}, {1, 1}}},
        // The earlier of two close vertices goes.
        {"close pair", {{0, 0}, {1, 0}, {1.00005, 0}, {1, 1}}, {{0, 0}, {1.00005, 0}, {1, 1}}},
        {"run of three",
         {{0, 0}, {1, 0}, {1, 0.00005}, {1, 0.0001}, {1, 1}},
         {{0, 0}, {1, 0.0001}, {1, 1}}},
        // The last vertex is followed by the first, so a repeated closing vertex goes.
        {"closing repeat", {{0, 0}, {1, 0}, {1, 1}, {0, 0}}, {{0, 0}, {1, 0}, {1, 1}}},
        // Once the first has gone the last is compared with the first that stayed.
        {"first and last",
         {{0, 0}, {0.00005, 0}, {1, 0}, {1, 1}, {0.0001, 0.00005}},
         {{0.00005, 0}, {1, 0}, {1, 1}}},
        {"one point", {{2, 2}}, {}},
        {"empty", {}, {}},
    };
    for (const auto& c : cases) {
        Pts2 pts = c.in;
        qor::boolean::cleanPolygon(pts);
        expectPoints(pts, c.out, c.name);
    }
}

TEST(BooleanClean, ClosedInputGivesTheSameLoopsAsOpen) {
    Pts2 closed = kLeft;
    closed.append(kLeft[0]);
    for (int op = 0; op < 3; ++op) {
        AcArray<int> c1, c2;
        Pts2 p1, p2;
        EXPECT_EQ(M_BooleanOper(closed, kRight, op, c1, p1),
                  M_BooleanOper(kLeft, kRight, op, c2, p2));
        EXPECT_EQ(c1, c2) << "op " << op;
        expectPoints(p1, p2, "closed against open");
    }
}

// ---------------------------------------------------------------- polylines

struct Owned {
    AcArray<void*> items;
    ~Owned() {
        for (void* p : items)
            delete static_cast<AcDbPolyline*>(p);
    }
    AcDbPolyline* at(int i) const { return static_cast<AcDbPolyline*>(items[i]); }
};

Pts2 vertices(const AcDbPolyline* pl) {
    Pts2 out;
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
        AcGePoint2d p;
        pl->getPointAt(i, p);
        out.append(p);
    }
    return out;
}

TEST(BooleanPolylines, OneClosedPolylinePerLoop) {
    Owned plines;
    ASSERT_EQ(M_BooleanOper(kLeft, kRight, 0, plines.items), 1);
    ASSERT_EQ(plines.items.length(), 2);
    // The closed loop loses its repeated point; the open chain keeps all of its own.
    EXPECT_TRUE(plines.at(0)->isClosed());
    expectPoints(vertices(plines.at(0)), kLeft, "closed loop");
    EXPECT_TRUE(plines.at(1)->isClosed());
    expectPoints(vertices(plines.at(1)), {{1, 0}, {2, 0}, {2, 1}, {1, 1}}, "open chain");
    double area = 0;
    ASSERT_EQ(plines.at(0)->getArea(area), Acad::eOk);
    EXPECT_NEAR(std::fabs(area), 1.0, 1e-12);
}

TEST(BooleanPolylines, AppendsAndLeavesEarlierEntriesAlone) {
    Owned plines;
    auto* mine = new AcDbPolyline;
    plines.items.append(mine);
    const Pts3 a = {{0, 0, 1}, {2, 0, 1}, {2, 2, 1}, {0, 2, 1}};
    const Pts3 b = {{1, 1, 0}, {3, 1, 0}, {3, 3, 0}, {1, 3, 0}};
    ASSERT_EQ(M_BooleanOper(a, b, 1, plines.items), 1);
    ASSERT_EQ(plines.items.length(), 2);
    EXPECT_EQ(plines.at(0), mine);
    expectPoints(vertices(plines.at(1)), {{1, 1}, {2, 1}, {2, 2}, {1, 2}}, "intersection");

    EXPECT_EQ(M_BooleanOper(a, b, 7, plines.items), 0);
    EXPECT_EQ(M_BooleanOper(Pts2{{0, 0}, {1, 1}}, kRight, 0, plines.items), 0);
    EXPECT_EQ(plines.items.length(), 2);
}

} // namespace
