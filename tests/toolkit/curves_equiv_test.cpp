// The equivalent polyline of every curve class: exact lines, arcs and circles, sampled
// ellipses and splines, the vertex runs of heavy polylines with their type-1 rule, lightweight
// polylines; the 2D form's appending; and the arc-sampled points built on them.
#include "toolkit/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

const AcGePoint3dArray kFrame{{0, 0, 0}, {4, 0, 1}, {5, 4, 2}, {1, 5, 0}};

AcArray<double> zeros(int n) {
    AcArray<double> out;
    out.setLogicalLength(n);
    return out;
}

template <class Poly, class Vertex> int countNotType(const Poly& p, int type) {
    int n = 0;
    std::unique_ptr<AcDbObjectIterator> it(p.vertexIterator());
    for (it->start(); !it->done(); it->step())
        n += static_cast<int>(Vertex::cast(it->entity())->vertexType()) != type;
    return n;
}

} // namespace

TEST(CurvesEquiv, LinesArcsAndCirclesAreExact) {
    AcArray<AcGePoint3d> pts;
    AcArray<double> bulges;
    AcDbLine line(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 6, 3));
    ASSERT_EQ(M_GetCurve3dPts(&line, pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint3d>{{1, 2, 3}, {4, 6, 3}}));
    EXPECT_EQ(bulges, (AcArray<double>{0.0, 0.0}));

    AcDbArc quarter(AcGePoint3d(0, 0, 0), 10.0, 0.0, kPi / 2);
    ASSERT_EQ(M_GetCurve3dPts(&quarter, pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint3d>{{10, 0, 0}, {0, 10, 0}}));
    EXPECT_DOUBLE_EQ(bulges[0], std::tan(kPi / 8));
    EXPECT_EQ(bulges[1], 0.0);
    // Across the zero angle the sweep is still taken counter-clockwise.
    AcDbArc across(AcGePoint3d(0, 0, 0), 10.0, 1.5 * kPi, 0.5 * kPi);
    ASSERT_EQ(M_GetCurve3dPts(&across, pts, bulges), 1);
    EXPECT_NEAR(bulges[0], 1.0, 1e-12);

    AcDbCircle circle(AcGePoint3d(5, 5, 1), AcGeVector3d::kZAxis, 2.0);
    ASSERT_EQ(M_GetCurve3dPts(&circle, pts, bulges), 1);
    ASSERT_EQ(pts.length(), 5);
    EXPECT_EQ(pts.first().x, pts.last().x);
    EXPECT_EQ(pts.first().y, pts.last().y);
    EXPECT_TRUE(pts[0].isEqualTo(AcGePoint3d(7, 5, 1)));
    EXPECT_TRUE(pts[1].isEqualTo(AcGePoint3d(5, 7, 1)));
    EXPECT_TRUE(pts[2].isEqualTo(AcGePoint3d(3, 5, 1)));
    EXPECT_TRUE(pts[3].isEqualTo(AcGePoint3d(5, 3, 1)));
    ASSERT_EQ(bulges.length(), 5);
    for (double b : bulges)
        EXPECT_DOUBLE_EQ(b, std::tan(kPi / 8));
}

TEST(CurvesEquiv, LightweightPolylinesKeepTheirBulgesAndClose) {
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0), 0.5);
    pl.addVertexAt(1, AcGePoint2d(10, 0), -0.25);
    pl.addVertexAt(2, AcGePoint2d(10, 10), 0.0);
    pl.setElevation(4.0);
    AcArray<AcGePoint3d> pts;
    AcArray<double> bulges;
    ASSERT_EQ(M_GetCurve3dPts(&pl, pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint3d>{{0, 0, 4}, {10, 0, 4}, {10, 10, 4}}));
    EXPECT_EQ(bulges, (AcArray<double>{0.5, -0.25, 0.0}));
    pl.setClosed(true);
    pl.setBulgeAt(2, 0.125);
    ASSERT_EQ(M_GetCurve3dPts(&pl, pts, bulges), 1);
    EXPECT_EQ(pts.length(), 4);
    EXPECT_EQ(pts.last(), AcGePoint3d(0, 0, 4));
    EXPECT_EQ(bulges, (AcArray<double>{0.5, -0.25, 0.125, 0.0}));
}

TEST(CurvesEquiv, HeavyPolylinesSkipTypeOneVertices) {
    // 3D: type 1 is the spline frame's control vertices; the fitted ones remain.
    AcDb3dPolyline p3(AcDb::k3dQuadSplinePoly, kFrame);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_Get3dPlineCurPts(&p3, pts), 1);
    EXPECT_EQ(pts.length(), (countNotType<AcDb3dPolyline, AcDb3dPolylineVertex>(p3, 1)));
    EXPECT_LT(pts.length(), (countNotType<AcDb3dPolyline, AcDb3dPolylineVertex>(p3, -1)));
    AcDb3dPolyline simple(AcDb::k3dSimplePoly, kFrame, true);
    ASSERT_EQ(M_Get3dPlineCurPts(&simple, pts), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint3d>{kFrame[0], kFrame[1], kFrame[2], kFrame[3], kFrame[0]}));

    // 2D: the same test drops the curve-fit vertices and keeps the frame...
    AcDb2dPolyline fit(AcDb::k2dFitCurvePoly, kFrame);
    ASSERT_EQ(M_Get2dPlineCurPts(&fit, pts), 1);
    ASSERT_EQ(pts.length(), 4);
    EXPECT_EQ(pts[2], AcGePoint3d(5, 4, 0));
    // ...while a spline-fit one keeps all, its frame (type 9) included.
    AcDb2dPolyline spline(AcDb::k2dQuadSplinePoly, kFrame);
    ASSERT_EQ(M_Get2dPlineCurPts(&spline, pts), 1);
    EXPECT_EQ(pts.length(), (countNotType<AcDb2dPolyline, AcDb2dVertex>(spline, -1)));

    AcArray<double> bulges;
    ASSERT_EQ(M_GetCurve3dPts(&simple, pts, bulges), 1);
    EXPECT_EQ(pts.length(), 5);
    EXPECT_EQ(bulges, zeros(5));
    pts = AcArray<AcGePoint3d>{{9, 9, 9}};
    EXPECT_EQ(M_Get3dPlineCurPts(nullptr, pts), 0);
    EXPECT_EQ(M_Get2dPlineCurPts(nullptr, pts), 0);
    AcDb3dPolyline empty;
    EXPECT_EQ(M_Get3dPlineCurPts(&empty, pts), 0);
    EXPECT_EQ(pts.length(), 1);
}

TEST(CurvesEquiv, EllipsesAndSplinesAreSampledStraight) {
    AcDbEllipse e(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(30, 0, 0), 0.5);
    AcArray<AcGePoint3d> pts, direct;
    AcArray<double> bulges;
    ASSERT_EQ(M_GetCurve3dPts(&e, pts, bulges), 1);
    ASSERT_EQ(M_GetEllipsePts(&e, 1.0, 20, 200, direct), 1);
    EXPECT_EQ(pts, direct);
    EXPECT_EQ(bulges, zeros(pts.length()));

    AcDbSpline s(AcGePoint3dArray{{0, 0, 0}, {5, 3, 0}, {10, 0, 0}, {15, -3, 0}});
    ASSERT_EQ(M_GetCurve3dPts(&s, pts, bulges), 1);
    ASSERT_EQ(M_GetSplinePts(&s, 1.0, 50, 500, direct), 1);
    EXPECT_EQ(pts, direct);
    EXPECT_EQ(bulges.length(), pts.length());
}

TEST(CurvesEquiv, FailuresClearTheThreeDFormAndSpareTheTwoDForm) {
    AcArray<AcGePoint3d> pts{{1, 1, 1}};
    AcArray<double> bulges{1.0};
    EXPECT_EQ(M_GetCurve3dPts(nullptr, pts, bulges), 0);
    EXPECT_TRUE(pts.isEmpty());
    EXPECT_TRUE(bulges.isEmpty());
    AcDbLine zero(AcGePoint3d(1, 1, 0), AcGePoint3d(1, 1, 0));
    EXPECT_EQ(M_GetCurve3dPts(&zero, pts, bulges), 0);
    AcDbCurve bare;
    EXPECT_EQ(M_GetCurve3dPts(&bare, pts, bulges), 0);

    AcArray<AcGePoint2d> p2{{7, 7}};
    AcArray<double> b2{0.5};
    EXPECT_EQ(M_GetCurve2dPts(&zero, p2, b2), 0);
    EXPECT_EQ(M_GetCurve2dPts(nullptr, p2, b2), 0);
    EXPECT_EQ(p2, (AcArray<AcGePoint2d>{{7, 7}}));
    EXPECT_EQ(b2, (AcArray<double>{0.5}));
    // Success appends, z dropped.
    AcDbArc arc(AcGePoint3d(0, 0, 9), 1.0, 0.0, kPi);
    ASSERT_EQ(M_GetCurve2dPts(&arc, p2, b2), 1);
    EXPECT_EQ(p2, (AcArray<AcGePoint2d>{{7, 7}, {1, 0}, {-1, 0}}));
    ASSERT_EQ(b2.length(), 3);
    EXPECT_EQ(b2[0], 0.5);
    EXPECT_NEAR(b2[1], 1.0, 1e-12);
}

TEST(CurvesEquiv, CurvePointsSampleEveryArcAtUnitSteps) {
    AcDbCircle circle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 10.0);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetCurvePts(&circle, pts), 1);
    ASSERT_EQ(pts.length(), 1 + 4 * 15); // each quarter 15.7 long
    EXPECT_EQ(pts.first(), pts.last());
    for (const AcGePoint3d& p : pts)
        EXPECT_NEAR(p.distanceTo(AcGePoint3d::kOrigin), 10.0, 1e-9);
    // A short arc keeps its end; heights run along arcs and straight runs keep theirs.
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0), 0.2);
    pl.addVertexAt(1, AcGePoint2d(0.5, 0), 0.0);
    pl.addVertexAt(2, AcGePoint2d(3, 0), 0.0);
    ASSERT_EQ(M_GetCurvePts(&pl, pts), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint3d>{{0, 0, 0}, {0.5, 0, 0}, {3, 0, 0}}));
    AcDb3dPolyline p3(AcDb::k3dSimplePoly, kFrame);
    ASSERT_EQ(M_GetCurvePts(&p3, pts), 1);
    EXPECT_EQ(pts, kFrame);
    pts = AcArray<AcGePoint3d>{{9, 9, 9}};
    EXPECT_EQ(M_GetCurvePts(nullptr, pts), 0);
    EXPECT_EQ(pts.length(), 1);
}
