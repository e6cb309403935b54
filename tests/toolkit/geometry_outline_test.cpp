// Orientation of outlines, their validity as clip boundaries, and whether they have an area.
#include "dbents.h"
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

namespace {

using Pts2 = AcArray<AcGePoint2d>;
using Pts3 = AcArray<AcGePoint3d>;
using Bulges = AcArray<double>;

Pts3 lift(const Pts2& pts, double z) {
    Pts3 out;
    for (const AcGePoint2d& p : pts)
        out.append(AcGePoint3d(p.x, p.y, z));
    return out;
}

// ---------------------------------------------------------------- orientation

TEST(GeometryClockWise, PointLists) {
    const struct {
        const char* name;
        Pts2 pts;
        int expected;
    } cases[] = {
        {"closed square, clockwise", {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}, 1},
        {"closed square, counter-clockwise", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 0},
        {"open square, clockwise", {{0, 0}, {0, 10}, {10, 10}, {10, 0}}, 1},
        {"clockwise, far from the origin", {{5e5, 3e6}, {5e5, 3e6 + 1}, {5e5 + 1, 3e6}}, 1},
        {"collinear", {{0, 0}, {5, 5}, {10, 10}}, 0},
        {"two vertices", {{0, 0}, {0, 10}}, 0},
        {"none", {}, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(M_PolyIsClockWise(c.pts), c.expected) << c.name;
        EXPECT_EQ(M_PolyIsClockWise(lift(c.pts, 3.0)), c.expected) << c.name;
    }
}

TEST(GeometryClockWise, PolylinesIgnoreTheirBulges) {
    EXPECT_EQ(M_PolyIsClockWise(static_cast<AcDbPolyline*>(nullptr)), 0);
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0));
    pl.addVertexAt(1, AcGePoint2d(0, 10));
    EXPECT_EQ(M_PolyIsClockWise(&pl), 0);
    // Clockwise vertices; a large counter-clockwise arc on the closing side would turn the
    // area round, but bulges do not count.
    pl.addVertexAt(2, AcGePoint2d(10, 0), 20.0);
    EXPECT_EQ(M_PolyIsClockWise(&pl), 1);
    pl.reverseCurve();
    EXPECT_EQ(M_PolyIsClockWise(&pl), 0);
}

// ---------------------------------------------------------------- clip boundaries

TEST(GeometryCheckBorder, PlainOutlines) {
    const struct {
        const char* name;
        Pts2 pts;
        int expected;
    } cases[] = {
        {"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, 1},
        {"square with its first vertex repeated", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 1},
        {"bow tie", {{0, 0}, {10, 10}, {10, 0}, {0, 10}}, 0},
        {"repeated vertex", {{0, 0}, {10, 0}, {10, 0}, {0, 10}}, 0},
        {"two vertices", {{0, 0}, {10, 0}}, 0},
        {"none", {}, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(M_CheckBorder(c.pts), c.expected) << c.name;
        EXPECT_EQ(M_CheckBorder(lift(c.pts, -2.0)), c.expected) << c.name;
    }
}

TEST(GeometryCheckBorder, OutlinesWithArcs) {
    // Two vertices and a half-circle arc close a half disc.
    EXPECT_EQ(M_CheckBorder(Pts2{{0, 0}, {10, 0}}, Bulges{1.0, 0.0}), 1);
    EXPECT_EQ(M_CheckBorder(Pts2{{0, 0}, {10, 0}}, Bulges{0.0, 0.0}), 0);
    // An arc shorter than the sampling step contributes no points, its end vertex included.
    EXPECT_EQ(M_CheckBorder(Pts2{{0, 0}, {0.1, 0}}, Bulges{1.0, 0.0}), 0);
    // A half circle of radius 5 on the bottom side of a strip 3 high crosses the top side;
    // bulging outwards it does not.
    const Pts2 strip = {{0, 0}, {10, 0}, {10, 3}, {0, 3}};
    EXPECT_EQ(M_CheckBorder(strip, Bulges{-1.0, 0, 0, 0}), 0);
    EXPECT_EQ(M_CheckBorder(strip, Bulges{1.0, 0, 0, 0}), 1);
    // A large arc may sweep round the rest of the outline without touching it.
    const Pts2 square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(M_CheckBorder(square, Bulges{-3.0, 0, 0, 0}), 1);
    EXPECT_EQ(M_CheckBorder(square, Bulges{0, 0, 0}), 0);
    EXPECT_EQ(M_CheckBorder(Pts2{{0, 0}}, Bulges{1.0}), 0);
}

// ---------------------------------------------------------------- area

TEST(GeometryHasArea, ClosedOutlinesWithArcs) {
    const struct {
        const char* name;
        Pts2 pts;
        Bulges bulges;
        int expected;
    } cases[] = {
        {"square", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {0, 0, 0, 0}, 1},
        {"clockwise square", {{0, 0}, {0, 10}, {10, 10}, {10, 0}}, {0, 0, 0, 0}, 1},
        {"half disc from two vertices", {{0, 0}, {1, 0}}, {1, 0}, 1},
        {"two vertices, straight", {{0, 0}, {1, 0}}, {0, 0}, 0},
        {"collinear", {{0, 0}, {1, 1}, {2, 2}}, {0, 0, 0}, 0},
        {"0.0009, too small", {{0, 0}, {0.03, 0}, {0.03, 0.03}, {0, 0.03}}, {0, 0, 0, 0}, 0},
        {"0.001024", {{0, 0}, {0.032, 0}, {0.032, 0.032}, {0, 0.032}}, {0, 0, 0, 0}, 1},
        {"lengths differ", {{0, 0}, {10, 0}, {10, 10}}, {0, 0}, 0},
        {"one vertex", {{0, 0}}, {0}, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(M_HasArea(c.pts, c.bulges), c.expected) << c.name;
}

} // namespace
