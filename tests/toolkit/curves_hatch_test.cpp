// Hatch loops as polylines and as one face list: polyline loops with their closing rule, edge
// loops of lines, arcs, elliptical arcs and splines, outer and hole signs, associated boundaries.
#include "dbsymtb.h"
#include "genurbs.h"
#include "toolkit/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace {

constexpr double kPi = std::numbers::pi;

std::vector<std::unique_ptr<AcDbPolyline>> own(const AcArray<void*>& ptrs) {
    std::vector<std::unique_ptr<AcDbPolyline>> out;
    for (void* p : ptrs)
        out.emplace_back(static_cast<AcDbPolyline*>(p));
    return out;
}

double bulgeAt(const AcDbPolyline& pl, unsigned i) {
    double b = 0.0;
    pl.getBulgeAt(i, b);
    return b;
}

AcGePoint2d pointAt(const AcDbPolyline& pl, unsigned i) {
    AcGePoint2d p;
    pl.getPointAt(i, p);
    return p;
}

// An outer square given as a polyline loop that repeats its first vertex, with one arc side.
void addOuter(AcDbHatch& h) {
    ASSERT_EQ(h.appendLoop(AcDbHatch::kExternal,
                           AcGePoint2dArray{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}},
                           AcGeDoubleArray{0, 0.5, 0, 0, 0}),
              Acad::eOk);
}

// A hole of edges: a line, a half circle, a line given back to front, and a line.
void addEdgeHole(AcDbHatch& h) {
    AcGeLineSeg2d a(AcGePoint2d(2, 2), AcGePoint2d(6, 2));
    AcGeCircArc2d arc(AcGePoint2d(6, 4), 2.0, -kPi / 2, kPi / 2);
    AcGeLineSeg2d back(AcGePoint2d(2, 6), AcGePoint2d(6, 6));
    AcGeLineSeg2d c(AcGePoint2d(2, 6), AcGePoint2d(2, 2));
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcGeVoidPointerArray{&a, &arc, &back, &c},
                           AcGeIntArray{AcDbHatch::kLine, AcDbHatch::kCirArc, AcDbHatch::kLine,
                                        AcDbHatch::kLine}),
              Acad::eOk);
}

} // namespace

TEST(CurvesHatch, PolylineLoopsCloseWhenTheyRepeatTheirStart) {
    AcDbHatch h;
    addOuter(h);
    // Open: the last vertex is not the first.
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcGePoint2dArray{{3, 3}, {4, 3}, {4, 4}},
                           AcGeDoubleArray()),
              Acad::eOk);
    // Two vertices only: not returned.
    ASSERT_EQ(
        h.appendLoop(AcDbHatch::kDefault, AcGePoint2dArray{{5, 5}, {5, 5}}, AcGeDoubleArray()),
        Acad::eOk);
    AcArray<void*> ptrs{nullptr};
    AcArray<int> types{42};
    ASSERT_EQ(M_GetHatchPline(&h, ptrs, types), 1);
    const auto plines = own(ptrs);
    ASSERT_EQ(plines.size(), 2u);
    ASSERT_EQ(types.length(), 2);
    EXPECT_EQ(types[0], AcDbHatch::kExternal | AcDbHatch::kPolyline);
    EXPECT_EQ(types[1], AcDbHatch::kPolyline);
    const AcDbPolyline& outer = *plines[0];
    EXPECT_TRUE(outer.isClosed());
    EXPECT_EQ(outer.numVerts(), 5u); // the repeated vertex stays
    EXPECT_EQ(bulgeAt(outer, 1), 0.5);
    double w = -1.0;
    outer.getConstantWidth(w);
    EXPECT_EQ(w, 0.0);
    EXPECT_EQ(outer.elevation(), 0.0);
    EXPECT_FALSE(plines[1]->isClosed());
    EXPECT_EQ(plines[1]->numVerts(), 3u);
}

TEST(CurvesHatch, EdgeLoopsBecomeStartPointsWithArcBulges) {
    AcDbHatch h;
    addEdgeHole(h);
    AcArray<void*> ptrs;
    AcArray<int> types;
    ASSERT_EQ(M_GetHatchPline(&h, ptrs, types), 1);
    const auto plines = own(ptrs);
    ASSERT_EQ(plines.size(), 1u);
    const AcDbPolyline& pl = *plines[0];
    ASSERT_EQ(pl.numVerts(), 4u);
    EXPECT_TRUE(pl.isClosed());
    EXPECT_EQ(pointAt(pl, 0), AcGePoint2d(2, 2));
    EXPECT_EQ(pointAt(pl, 1), AcGePoint2d(6, 2));
    EXPECT_EQ(pointAt(pl, 2), AcGePoint2d(6, 6));
    EXPECT_EQ(pointAt(pl, 3), AcGePoint2d(2, 6));
    EXPECT_NEAR(bulgeAt(pl, 1), 1.0, 1e-12);
    EXPECT_EQ(bulgeAt(pl, 2), 0.0); // the reversed line runs from (6, 6) on
    double area = 0.0;
    pl.getArea(area);
    EXPECT_NEAR(area, 16.0 + kPi * 2.0, 1e-9);
}

TEST(CurvesHatch, CurvedEdgesAreSampledOnTheCurve) {
    AcDbHatch h;
    // A full circle, then an ellipse and a spline closed by a line.
    AcGeCircArc2d circle(AcGePoint2d(50, 50), 5.0);
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcGeVoidPointerArray{&circle},
                           AcGeIntArray{AcDbHatch::kCirArc}),
              Acad::eOk);
    AcGeEllipArc2d half(AcGePoint2d(0, 0), AcGeVector2d(1, 0), AcGeVector2d(0, 1), 20.0, 10.0, 0.0,
                        kPi);
    AcGeLineSeg2d base(AcGePoint2d(-20, 0), AcGePoint2d(20, 0));
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcGeVoidPointerArray{&half, &base},
                           AcGeIntArray{AcDbHatch::kEllArc, AcDbHatch::kLine}),
              Acad::eOk);
    AcGeNurbCurve2d spline(AcGePoint2dArray{{0, -30}, {10, -25}, {20, -30}});
    AcGeLineSeg2d close(AcGePoint2d(20, -30), AcGePoint2d(0, -30));
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcGeVoidPointerArray{&spline, &close},
                           AcGeIntArray{AcDbHatch::kSpline, AcDbHatch::kLine}),
              Acad::eOk);
    AcArray<void*> ptrs;
    AcArray<int> types;
    ASSERT_EQ(M_GetHatchPline(&h, ptrs, types), 1);
    const auto plines = own(ptrs);
    ASSERT_EQ(plines.size(), 3u);
    // The circle in four quarters.
    ASSERT_EQ(plines[0]->numVerts(), 4u);
    EXPECT_TRUE(plines[0]->isClosed());
    double area = 0.0;
    plines[0]->getArea(area);
    EXPECT_NEAR(area, kPi * 25.0, 1e-9);
    const std::vector<const AcGeCurve2d*> curves{&half, &spline};
    for (size_t k = 1; k < 3; ++k) {
        const AcDbPolyline& pl = *plines[k];
        EXPECT_TRUE(pl.isClosed());
        EXPECT_GT(pl.numVerts(), 20u);
        // Every vertex but the last (the closing line's start) lies on the curved edge.
        for (unsigned i = 0; i + 1 < pl.numVerts(); ++i) {
            EXPECT_LT(curves[k - 1]->distanceTo(pointAt(pl, i)), 1e-9) << k << " " << i;
            EXPECT_EQ(bulgeAt(pl, i), 0.0);
        }
    }
}

TEST(CurvesHatch, FaceListSignsOuterLoopsAndHoles) {
    AcDbHatch h;
    addOuter(h);
    addEdgeHole(h);
    AcArray<AcGePoint2d> pts{{9, 9}};
    AcArray<double> bulges{9.0};
    AcArray<int> faces{9};
    ASSERT_EQ(M_GetHatchPline(&h, pts, bulges, faces), 1);
    // The outer loop: its five vertices and the first again; the hole: four and the first.
    ASSERT_EQ(pts.length(), 6 + 5);
    ASSERT_EQ(bulges.length(), pts.length());
    EXPECT_EQ(faces, (AcArray<int>{6, 0, 1, 2, 3, 4, 5, -5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(pts[5], pts[0]);
    EXPECT_EQ(bulges[1], 0.5);
    EXPECT_EQ(bulges[5], 0.0);
    EXPECT_EQ(pts[6], AcGePoint2d(2, 2));
    EXPECT_EQ(pts[10], AcGePoint2d(2, 2));
    EXPECT_NEAR(bulges[7], 1.0, 1e-12);
    EXPECT_EQ(bulges[10], 0.0);
}

TEST(CurvesHatch, EmptyAndNullHatches) {
    AcArray<void*> ptrs;
    AcArray<int> types{5};
    EXPECT_EQ(M_GetHatchPline(nullptr, ptrs, types), 0);
    EXPECT_EQ(types.length(), 1);
    AcDbHatch empty;
    EXPECT_EQ(M_GetHatchPline(&empty, ptrs, types), 0);
    EXPECT_TRUE(types.isEmpty());
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    AcArray<int> faces{1};
    EXPECT_EQ(M_GetHatchPline(nullptr, pts, bulges, faces), 0);
    EXPECT_EQ(faces.length(), 1);
    EXPECT_EQ(M_GetHatchPline(&empty, pts, bulges, faces), 0);
    EXPECT_TRUE(faces.isEmpty());
    AcArray<AcDbObjectId> ids;
    AcArray<long> loopTypes;
    EXPECT_EQ(M_GetHatchBoundId(nullptr, ids, loopTypes), 0);
    EXPECT_EQ(M_GetHatchBoundId(&empty, ids, loopTypes), 0);
}

TEST(CurvesHatch, BoundaryObjectsComeWithTheirLoopTypes) {
    AcDbDatabase db;
    acdbHostApplicationServices()->setWorkingDatabase(&db);
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId circleId, innerId;
    auto* circle = new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 10.0);
    ASSERT_EQ(ms->appendAcDbEntity(circleId, circle), Acad::eOk);
    circle->close();
    auto* inner = new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 2.0);
    ASSERT_EQ(ms->appendAcDbEntity(innerId, inner), Acad::eOk);
    inner->close();
    ms->close();

    AcDbHatch h;
    ASSERT_EQ(h.appendLoop(AcDbHatch::kExternal, AcDbObjectIdArray{circleId}), Acad::eOk);
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcDbObjectIdArray{innerId}), Acad::eOk);
    AcArray<AcDbObjectId> ids;
    AcArray<long> loopTypes;
    ASSERT_EQ(M_GetHatchBoundId(&h, ids, loopTypes), 1);
    EXPECT_EQ(ids, (AcArray<AcDbObjectId>{circleId, innerId}));
    ASSERT_EQ(loopTypes.length(), 2);
    EXPECT_TRUE(loopTypes[0] & AcDbHatch::kExternal);
    EXPECT_FALSE(loopTypes[1] & AcDbHatch::kExternal);
    // The loops made from database circles come out as closed polylines too.
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    AcArray<int> faces;
    ASSERT_EQ(M_GetHatchPline(&h, pts, bulges, faces), 1);
    ASSERT_GE(faces.length(), 2);
    EXPECT_GT(faces[0], 2);
    EXPECT_LT(faces[faces[0] + 1], -2);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}
