// The union of many outlines by triangulation: outlines from loops and ranges, the extra points
// along loop sides, and the union of polylines of a drawing.
#include "toolkit/booleanunion.h"

#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

using Pts2 = AcArray<AcGePoint2d>;

struct Loop {
    std::vector<AcGePoint2d> pts;
    double area() const {
        double s = 0;
        for (size_t i = 0; i < pts.size(); ++i) {
            const AcGePoint2d &a = pts[i], &b = pts[(i + 1) % pts.size()];
            s += a.x * b.y - b.x * a.y;
        }
        return std::fabs(s) / 2.0;
    }
    // Whether the loop runs through `expected` in order, from any start, either way round.
    bool follows(std::vector<AcGePoint2d> expected) const {
        if (expected.size() != pts.size()) return false;
        const auto same = [](const AcGePoint2d& a, const AcGePoint2d& b) {
            return a.distanceTo(b) < 1e-9;
        };
        for (int dir = 0; dir < 2; ++dir) {
            for (size_t r = 0; r < pts.size(); ++r) {
                bool all = true;
                for (size_t i = 0; i < pts.size() && all; ++i)
                    all = same(pts[(r + i) % pts.size()], expected[i]);
                if (all) return true;
            }
            std::reverse(expected.begin(), expected.end());
        }
        return false;
    }
};

// The loops of an outline, checking that the ranges tile the point list.
std::vector<Loop> loopsOf(const Pts2& pts, const AcArray<int>& ranges) {
    std::vector<Loop> loops;
    int next = 0;
    EXPECT_EQ(ranges.length() % 2, 0);
    for (int r = 0; r + 1 < ranges.length(); r += 2) {
        EXPECT_EQ(ranges[r], next);
        EXPECT_GT(ranges[r + 1], ranges[r]);
        next = ranges[r + 1];
        Loop loop;
        for (int i = ranges[r]; i < ranges[r + 1] && i < pts.length(); ++i)
            loop.pts.push_back(pts[i]);
        loops.push_back(loop);
    }
    EXPECT_EQ(next, pts.length());
    return loops;
}

std::vector<Loop> triangleUnion(const Pts2& pts, const AcArray<int>& ranges, int expectResult = 1) {
    Pts2 out = {{9, 9}};
    AcArray<int> outRanges = {7};
    EXPECT_EQ(M_PolygonTriangle(pts, ranges, out, outRanges), expectResult);
    return loopsOf(out, outRanges);
}

// ---------------------------------------------------------------- M_PolygonTriangle

TEST(BooleanTriangleUnion, OverlappingSquaresGiveOneOutline) {
    // The crossing points (2, 1) and (1, 2) come as extra points outside the ranges.
    const Pts2 pts = {{0, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 1},
                      {3, 1}, {3, 3}, {1, 3}, {2, 1}, {1, 2}};
    const std::vector<Loop> loops = triangleUnion(pts, {0, 4, 4, 8});
    ASSERT_EQ(loops.size(), 1u);
    // Each point once: the closing point is not repeated.
    EXPECT_TRUE(loops[0].follows({{0, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 2}, {0, 2}}));
    EXPECT_DOUBLE_EQ(loops[0].area(), 7.0);
}

TEST(BooleanTriangleUnion, ApartOutlinesGiveOneLoopEach) {
    const Pts2 pts = {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {10, 0}, {13, 0}, {11, 3}};
    const std::vector<Loop> loops = triangleUnion(pts, {0, 4, 4, 7});
    ASSERT_EQ(loops.size(), 2u);
    std::vector<double> areas = {loops[0].area(), loops[1].area()};
    std::sort(areas.begin(), areas.end());
    EXPECT_DOUBLE_EQ(areas[0], 4.5);
    EXPECT_DOUBLE_EQ(areas[1], 16.0);
}

TEST(BooleanTriangleUnion, ConcaveOutlineKeepsItsNotch) {
    // The triangles across the notch have their centroids outside the outline.
    const Pts2 l = {{0, 0}, {30, 0}, {30, 1}, {1, 1}, {1, 30}, {0, 30}};
    const std::vector<Loop> loops = triangleUnion(l, {0, 6});
    ASSERT_EQ(loops.size(), 1u);
    EXPECT_TRUE(loops[0].follows(l.std()));
}

TEST(BooleanTriangleUnion, HolesAreFilled) {
    // A ring given as its outer and inner loops: the triangles of the hole lie inside the outer
    // loop, so they count.
    const Pts2 ring = {{0, 0}, {6, 0}, {6, 6}, {0, 6}, {2, 2}, {4, 2}, {4, 4}, {2, 4}};
    const std::vector<Loop> loops = triangleUnion(ring, {0, 4, 4, 8});
    ASSERT_EQ(loops.size(), 1u);
    EXPECT_TRUE(loops[0].follows({{0, 0}, {6, 0}, {6, 6}, {0, 6}}));
}

TEST(BooleanTriangleUnion, SmallGapsBetweenNeighboursClose) {
    // 0.1 apart: within the 0.2 merge, the two parcels' facing corners become one point each.
    const Pts2 row = {{0, 0}, {10, 0}, {10, 8}, {0, 8}, {10.1, 0}, {20, 0}, {20, 8}, {10.1, 8}};
    const std::vector<Loop> loops = triangleUnion(row, {0, 4, 4, 8});
    ASSERT_EQ(loops.size(), 1u);
    EXPECT_DOUBLE_EQ(loops[0].area(), 160.0);

    // 0.5 apart the gap stays.
    Pts2 apart = row;
    for (int i = 4; i < 8; ++i)
        apart[i].x += 0.4;
    EXPECT_EQ(triangleUnion(apart, {0, 4, 4, 8}).size(), 2u);
}

TEST(BooleanTriangleUnion, RefusalsReturnZeroAndEmptyOutputs) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Pts2 square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    const struct {
        const char* name;
        Pts2 pts;
        AcArray<int> ranges;
    } cases[] = {
        {"no points", {}, {}},
        {"two points", {{0, 0}, {5, 5}}, {0, 2}},
        {"merged to two points", {{0, 0}, {0.1, 0.1}, {5, 5}}, {0, 3}},
        {"collinear", {{0, 0}, {1, 1}, {2, 2}, {3, 3}}, {0, 4}},
        {"not a number", {{0, 0}, {4, 0}, {nan, 4}}, {0, 3}},
        // Ranges that do not fit the list give no loop, so no triangle is inside one.
        {"no ranges", square, {}},
        {"range past the end", square, {0, 5}},
        {"negative range", square, {-1, 4}},
        {"empty range", square, {2, 2}},
        {"reversed range", square, {4, 0}},
        {"lone integer", square, {0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(triangleUnion(c.pts, c.ranges, 0).empty());
    }
}

// ---------------------------------------------------------------- M_GetInterPolygonPt

TEST(BooleanInterPolygonPt, PointsOnSidesTheTriangulationCuts) {
    // The triangle's corners lie within the circle through the rectangle's top corners and a
    // bottom corner, so the triangulation cuts across the rectangle's top side; triangles then
    // bridge the 0.3 gap and the union swallows it.
    const Pts2 pts = {{0, 0}, {10, 0}, {10, 1}, {0, 1}, {4, 1.3}, {6, 1.3}, {5, 5}};
    const AcArray<int> ranges = {0, 4, 4, 7};
    const std::vector<Loop> plain = triangleUnion(pts, ranges);
    ASSERT_EQ(plain.size(), 1u);
    EXPECT_GT(plain[0].area(), 13.7 + 1.0);

    AcArray<AcGePoint3d> extra = {{1, 2, 3}};
    ASSERT_EQ(M_GetInterPolygonPt(pts, ranges, extra), 1);
    ASSERT_FALSE(extra.isEmpty());
    Pts2 more = pts;
    for (const AcGePoint3d& p : extra) {
        EXPECT_EQ(p.z, 0.0);
        EXPECT_NEAR(p.y, 1.0, 1e-12);
        EXPECT_GT(p.x, 0.0);
        EXPECT_LT(p.x, 10.0);
        for (const AcGePoint2d& q : more)
            EXPECT_GE(q.distanceTo(p.convert2d()), 0.4);
        more.append(p.convert2d());
    }
    const std::vector<Loop> loops = triangleUnion(more, ranges);
    ASSERT_EQ(loops.size(), 2u);
    std::vector<double> areas = {loops[0].area(), loops[1].area()};
    std::sort(areas.begin(), areas.end());
    EXPECT_NEAR(areas[0], 3.7, 1e-9);
    EXPECT_NEAR(areas[1], 10.0, 1e-9);
}

TEST(BooleanInterPolygonPt, NothingWhenTheSidesAreTriangleEdges) {
    AcArray<AcGePoint3d> extra = {{1, 2, 3}};
    const Pts2 square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
    EXPECT_EQ(M_GetInterPolygonPt(square, {0, 4}, extra), 0);
    EXPECT_TRUE(extra.isEmpty());
    EXPECT_EQ(M_GetInterPolygonPt(Pts2{{0, 0}, {1, 1}}, {0, 2}, extra), 0);
    EXPECT_EQ(M_GetInterPolygonPt(square, {3, 9}, extra), 0);
    EXPECT_TRUE(extra.isEmpty());
}

// ---------------------------------------------------------------- M_PolygonUnion

class BooleanPolygonUnion : public ::testing::Test {
protected:
    AcDbObjectId add(AcDbEntity* ent) {
        AcDbBlockTableRecord* ms = nullptr;
        EXPECT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        ms->appendAcDbEntity(id, ent);
        ms->close();
        ent->close();
        return id;
    }
    AcDbObjectId polyline(const Pts2& pts, const std::vector<double>& bulges = {}) {
        auto* pl = new AcDbPolyline;
        for (int i = 0; i < pts.length(); ++i)
            pl->addVertexAt(static_cast<unsigned>(i), pts[i],
                            i < static_cast<int>(bulges.size()) ? bulges[static_cast<size_t>(i)]
                                                                : 0.0);
        pl->setClosed(true);
        return add(pl);
    }
    static bool closedAgain(AcDbObjectId id) {
        AcDbObject* obj = nullptr;
        if (acdbOpenObject(obj, id, AcDb::kForWrite) != Acad::eOk) return false;
        obj->close();
        return true;
    }

    AcDbDatabase db;
};

TEST_F(BooleanPolygonUnion, CrossingPolylinesJoinWhereTheyCross) {
    // The crossing points are not vertices of either polyline: the union finds them.
    const AcDbObjectId a = polyline({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
    const AcDbObjectId b = polyline({{1, 1}, {3, 1}, {3, 3}, {1, 3}});
    const AcDbObjectId line = add(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(9, 9, 0)));
    Pts2 pts;
    AcArray<int> ranges;
    ASSERT_EQ(M_PolygonUnion({a, line, b}, pts, ranges), 1);
    const std::vector<Loop> loops = loopsOf(pts, ranges);
    ASSERT_EQ(loops.size(), 1u);
    EXPECT_TRUE(loops[0].follows({{0, 0}, {2, 0}, {2, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 2}, {0, 2}}));
    for (AcDbObjectId id : {a, b, line})
        EXPECT_TRUE(closedAgain(id));
}

TEST_F(BooleanPolygonUnion, ArcsBecomePoints) {
    // A half disc of radius 5: a bulge of 1 on the way back along the diameter.
    const AcDbObjectId half = polyline({{0, 0}, {10, 0}}, {0.0, 1.0});
    Pts2 pts;
    AcArray<int> ranges;
    ASSERT_EQ(M_PolygonUnion({half}, pts, ranges), 1);
    const std::vector<Loop> loops = loopsOf(pts, ranges);
    ASSERT_EQ(loops.size(), 1u);
    // The arc of length 5 pi is divided into 15 chords.
    EXPECT_EQ(loops[0].pts.size(), 16u);
    const double chords = 15 * 0.5 * 25 * std::sin(std::numbers::pi / 15);
    EXPECT_NEAR(loops[0].area(), chords, 1e-9);
}

TEST_F(BooleanPolygonUnion, NothingToJoin) {
    Pts2 pts = {{1, 1}};
    AcArray<int> ranges = {0, 1};
    EXPECT_EQ(M_PolygonUnion({}, pts, ranges), 0);
    EXPECT_TRUE(pts.isEmpty());
    EXPECT_TRUE(ranges.isEmpty());
    const AcDbObjectId line = add(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(9, 9, 0)));
    EXPECT_EQ(M_PolygonUnion({line, AcDbObjectId()}, pts, ranges), 0);
    EXPECT_TRUE(closedAgain(line));
}

} // namespace
