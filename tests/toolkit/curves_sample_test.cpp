// Sampling curves at a spacing: the counts and their clamps, closed rings, thinning of
// ellipses and splines, arc expansion of polylines with its step floor, cap and dropped short
// arcs, and points at a fixed spacing.
#include "toolkit/curves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

AcArray<AcGePoint3d> sentinel() {
    return AcArray<AcGePoint3d>{AcGePoint3d(7, 7, 7)};
}

// Every consecutive triple turns by at least the thinning angle.
void expectThinned(const AcArray<AcGePoint3d>& pts) {
    for (int i = 2; i < pts.length(); ++i)
        EXPECT_GE((pts[i - 1] - pts[i - 2]).angleTo(pts[i] - pts[i - 1]), 0.01) << "at " << i;
}

std::unique_ptr<AcDbPolyline> pline(std::initializer_list<std::pair<AcGePoint2d, double>> verts,
                                    bool closed = false) {
    auto pl = std::make_unique<AcDbPolyline>();
    unsigned i = 0;
    for (const auto& [p, b] : verts)
        pl->addVertexAt(i++, p, b);
    pl->setClosed(closed);
    return pl;
}

} // namespace

TEST(CurvesSample, LengthIsTheDistanceBetweenTheEnds) {
    double len = -1.0;
    EXPECT_EQ(M_GetCurveLength(nullptr, len), 0);
    EXPECT_EQ(len, -1.0);
    AcDbArc arc(AcGePoint3d(3, 4, 0), 10.0, 0.0, kPi / 2);
    ASSERT_EQ(M_GetCurveLength(&arc, len), 1);
    EXPECT_NEAR(len, 5 * kPi, 1e-12);
    AcDbCurve bare; // a curve of no class the platform can measure
    EXPECT_EQ(M_GetCurveLength(&bare, len), 0);
}

TEST(CurvesSample, QuarterArcGivesFifteenEvenPoints) {
    const AcGePoint3d c(100, 200, 5);
    AcDbArc arc(c, 10.0, 0.0, kPi / 2);
    AcArray<AcGePoint3d> pts = sentinel();
    ASSERT_EQ(M_GetArcPts(&arc, 1.0, 3, 100, pts), 1);
    ASSERT_EQ(pts.length(), 15); // floor(15.708)
    EXPECT_TRUE(pts.first().isEqualTo(AcGePoint3d(110, 200, 5)));
    EXPECT_TRUE(pts.last().isEqualTo(AcGePoint3d(100, 210, 5)));
    const double chord = pts[0].distanceTo(pts[1]);
    for (int i = 0; i < pts.length(); ++i) {
        EXPECT_NEAR(pts[i].distanceTo(c), 10.0, 1e-9);
        if (i > 0) {
            EXPECT_NEAR(pts[i - 1].distanceTo(pts[i]), chord, 1e-9);
        }
    }
}

TEST(CurvesSample, ArcOnATiltedPlaneAndAcrossZeroStartsAtItsStartPoint) {
    AcDbArc arc(AcGePoint3d(1, 2, 3), AcGeVector3d(1, 1, 1).normal(), 4.0, 5.5, 0.5);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetArcPts(&arc, 0.5, 3, 100, pts), 1);
    AcGePoint3d s, e;
    arc.getStartPoint(s);
    arc.getEndPoint(e);
    EXPECT_TRUE(pts.first().isEqualTo(s));
    EXPECT_TRUE(pts.last().isEqualTo(e));
    for (const AcGePoint3d& p : pts) {
        AcGePoint3d on;
        arc.getClosestPointTo(p, on);
        EXPECT_LT(on.distanceTo(p), 1e-9);
    }
}

TEST(CurvesSample, CountsAreClampedAndBadInputFails) {
    AcDbArc arc(AcGePoint3d(0, 0, 0), 10.0, 0.0, kPi / 2);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetArcPts(&arc, 0.01, 3, 100, pts), 1);
    EXPECT_EQ(pts.length(), 100);
    ASSERT_EQ(M_GetArcPts(&arc, 1000.0, 3, 100, pts), 1);
    EXPECT_EQ(pts.length(), 3);
    // One point is not an arc: failure, and the output is kept.
    pts = sentinel();
    EXPECT_EQ(M_GetArcPts(&arc, 1000.0, 1, 100, pts), 0);
    EXPECT_EQ(M_GetArcPts(nullptr, 1.0, 3, 100, pts), 0);
    EXPECT_EQ(M_GetArcPts(&arc, 0.00009, 3, 100, pts), 0);
    EXPECT_EQ(M_GetArcPts(&arc, std::nan(""), 3, 100, pts), 0);
    AcDbArc point(AcGePoint3d(0, 0, 0), 0.0, 0.0, 1.0);
    EXPECT_EQ(M_GetArcPts(&point, 1.0, 3, 100, pts), 0);
    AcDbCircle dot(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 0.00001);
    EXPECT_EQ(M_GetCirclePts(&dot, 1.0, 3, 100, pts), 0);
    EXPECT_EQ(M_GetEllipsePts(nullptr, 1.0, 3, 100, pts), 0);
    EXPECT_EQ(M_GetSplinePts(nullptr, 1.0, 3, 100, pts), 0);
    EXPECT_EQ(pts, sentinel());
}

TEST(CurvesSample, CircleIsAlwaysAClosedRing) {
    for (double r : {0.3, 1.0, 7.5, 1234.0})
        for (int minCount : {2, 3, 17}) {
            AcDbCircle c(AcGePoint3d(5, -5, 1), AcGeVector3d::kZAxis, r);
            AcArray<AcGePoint3d> pts;
            ASSERT_EQ(M_GetCirclePts(&c, 1.0, minCount, 50, pts), 1) << r;
            const int n = std::max(minCount, std::min(50, static_cast<int>(2 * kPi * r)));
            EXPECT_EQ(pts.length(), n) << r << " " << minCount;
            EXPECT_LE(pts.first().distanceTo(pts.last()), 0.001) << r << " " << minCount;
            for (const AcGePoint3d& p : pts)
                EXPECT_NEAR(p.distanceTo(c.center()), r, 1e-9 * r);
        }
}

TEST(CurvesSample, EllipseSamplesAreThinnedAndClosed) {
    // Long and flat: its sides are nearly straight, so most of their samples go.
    AcDbEllipse flat(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(1000, 0, 0), 0.01);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetEllipsePts(&flat, 1.0, 20, 200, pts), 1);
    EXPECT_LT(pts.length(), 200);
    EXPECT_GT(pts.length(), 4);
    expectThinned(pts);
    EXPECT_LE(pts.first().distanceTo(pts.last()), 0.001);
    for (const AcGePoint3d& p : pts) {
        AcGePoint3d on;
        flat.getClosestPointTo(p, on);
        EXPECT_LT(on.distanceTo(p), 1e-6);
    }
    // A round one turns enough everywhere: nothing goes.
    AcDbEllipse round(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(10, 0, 0), 1.0);
    ASSERT_EQ(M_GetEllipsePts(&round, 1.0, 20, 200, pts), 1);
    EXPECT_EQ(pts.length(), 62); // floor(20*pi), first and last the same point
    // An open arc keeps its ends.
    AcDbEllipse arc(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(10, 0, 0), 0.5, 0.0,
                    kPi);
    ASSERT_EQ(M_GetEllipsePts(&arc, 1.0, 20, 200, pts), 1);
    AcGePoint3d s, e;
    arc.getStartPoint(s);
    arc.getEndPoint(e);
    EXPECT_TRUE(pts.first().isEqualTo(s));
    EXPECT_TRUE(pts.last().isEqualTo(e));
    expectThinned(pts);
}

TEST(CurvesSample, SplineSamplesFollowTheControlDataAndAreThinned) {
    // Straight for a long way, then a bend: the straight run thins to almost nothing.
    const AcGePoint3dArray ctrl{{0, 0, 0},  {10, 0, 0}, {20, 0, 0}, {30, 0, 0},
                                {40, 0, 0}, {50, 0, 0}, {60, 20, 0}};
    const AcGeDoubleArray knots{0, 0, 0, 0, 1, 2, 3, 4, 4, 4, 4};
    AcDbSpline s(3, false, false, false, ctrl, knots, AcGeDoubleArray());
    ASSERT_FALSE(s.isNull());
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetSplinePts(&s, 1.0, 50, 500, pts), 1);
    EXPECT_LT(pts.length(), 40);
    expectThinned(pts);
    AcGePoint3d a, b;
    s.getStartPoint(a);
    s.getEndPoint(b);
    EXPECT_TRUE(pts.first().isEqualTo(a));
    EXPECT_TRUE(pts.last().isEqualTo(b));
    for (const AcGePoint3d& p : pts) {
        AcGePoint3d on;
        s.getClosestPointTo(p, on);
        EXPECT_LT(on.distanceTo(p), 1e-6);
    }
    // A closed one, fitted through points round a circle, closes its ring.
    const AcGePoint3dArray fit{{10, 0, 0}, {0, 10, 0}, {-10, 0, 0}, {0, -10, 0}, {10, 0, 0}};
    AcDbSpline closed(fit);
    ASSERT_TRUE(closed.isClosed());
    ASSERT_EQ(M_GetSplinePts(&closed, 1.0, 50, 500, pts), 1);
    EXPECT_LE(pts.first().distanceTo(pts.last()), 0.001);
}

TEST(CurvesSample, PointsAtASpacingEndAtTheEnd) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetCurPts(&line, 3.0, pts), 1);
    ASSERT_EQ(pts.length(), 5);
    EXPECT_TRUE(pts[3].isEqualTo(AcGePoint3d(9, 0, 0)));
    EXPECT_TRUE(pts[4].isEqualTo(AcGePoint3d(10, 0, 0)));
    // A spacing that divides the length does not repeat the end.
    ASSERT_EQ(M_GetCurPts(&line, 2.5, pts), 1);
    EXPECT_EQ(pts.length(), 5);
    AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 2.0);
    ASSERT_EQ(M_GetCurPts(&c, 1.0, pts), 1);
    EXPECT_EQ(pts.length(), 14); // 0..12 and the end
    EXPECT_LT(pts.first().distanceTo(pts.last()), 1e-9);
    pts = sentinel();
    EXPECT_EQ(M_GetCurPts(nullptr, 1.0, pts), 0);
    EXPECT_EQ(M_GetCurPts(&line, 0.0, pts), 0);
    AcDbLine far(AcGePoint3d(0, 0, 0), AcGePoint3d(1e7, 0, 0));
    EXPECT_EQ(M_GetCurPts(&far, 0.001, pts), 0); // too many points
    EXPECT_EQ(pts, sentinel());
}

TEST(CurvesSample, PolylineArcsExpandWithTheStepFloorAndCap) {
    // A half circle of radius 5 (length 15.708), then a line.
    const auto pl = pline({{{0, 0}, 1.0}, {{10, 0}, 0.0}, {{20, 0}, 0.0}});
    AcArray<AcGePoint2d> pts;
    ASSERT_EQ(M_GetArcPlineVertex(pl.get(), 1.0, pts), 1);
    ASSERT_EQ(pts.length(), 1 + 15 + 1);
    for (int i = 1; i <= 15; ++i)
        EXPECT_NEAR(pts[i].distanceTo(AcGePoint2d(5, 0)), 5.0, 1e-9);
    EXPECT_EQ(pts[15], AcGePoint2d(10, 0)); // the vertex itself
    // Below 0.2 the step is 0.2.
    AcArray<AcGePoint2d> fine, floor;
    ASSERT_EQ(M_GetArcPlineVertex(pl.get(), 0.05, fine), 1);
    ASSERT_EQ(M_GetArcPlineVertex(pl.get(), 0.2, floor), 1);
    EXPECT_EQ(fine.length(), 1 + 78 + 1);
    EXPECT_EQ(fine, floor);
    // At most 100 parts per arc.
    const auto big = pline({{{0, 0}, 1.0}, {{100, 0}, 0.0}});
    ASSERT_EQ(M_GetArcPlineVertex(big.get(), 1.0, pts), 1);
    EXPECT_EQ(pts.length(), 1 + 100);
}

TEST(CurvesSample, ShortArcsDropTheirEndVertex) {
    // The arc is about 1.03 long, shorter than the step: it gives nothing, not even (1, 0).
    const auto pl = pline({{{0, 0}, 0.1}, {{1, 0}, 0.0}, {{5, 0}, 0.0}});
    AcArray<AcGePoint2d> pts;
    ASSERT_EQ(M_GetArcPlineVertex(pl.get(), 2.0, pts), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{0, 0}, {5, 0}}));
    // Nothing but short arcs: failure, output kept.
    const auto arcs = pline({{{0, 0}, 0.1}, {{1, 0}, 0.0}});
    pts = AcArray<AcGePoint2d>{{9, 9}};
    EXPECT_EQ(M_GetArcPlineVertex(arcs.get(), 2.0, pts), 0);
    EXPECT_EQ(M_GetArcPlineVertex(nullptr, 1.0, pts), 0);
    EXPECT_EQ(M_GetArcPlineVertex(pl.get(), 0.000001, pts), 0);
    AcDbPolyline empty;
    EXPECT_EQ(M_GetArcPlineVertex(&empty, 1.0, pts), 0);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{9, 9}}));
    // The polyline sampler clamps instead: at least minCount parts.
    AcArray<AcGePoint3d> p3;
    ASSERT_EQ(M_GetPlinePts(pl.get(), 2.0, 3, 10, p3), 1);
    EXPECT_EQ(p3.length(), 1 + 3 + 1);
}

TEST(CurvesSample, PolylineSamplersOfAClosedOutlineAndTheirHeights) {
    auto pl = pline({{{0, 0}, 0.0}, {{10, 0}, 0.0}, {{10, 10}, 1.0}, {{0, 10}, 0.0}}, true);
    pl->setElevation(2.5);
    AcArray<AcGePoint3d> pts;
    ASSERT_EQ(M_GetPlinePts(pl.get(), 1.0, 0, 1000, pts), 1);
    // Three lines and a half circle of radius 5 (15 parts), back to the start.
    ASSERT_EQ(pts.length(), 1 + 2 + 15 + 1);
    EXPECT_TRUE(pts.last().isEqualTo(AcGePoint3d(0, 0, 2.5)));
    for (const AcGePoint3d& p : pts)
        EXPECT_EQ(p.z, 2.5);
    ASSERT_EQ(M_GetPlineCurPts(pl.get(), 1.0, pts), 1);
    EXPECT_EQ(pts.length(), 19);
    EXPECT_EQ(pts[5].z, 0.0);
    ASSERT_EQ(M_GetPlineCurPts(pl.get(), pts), 1);
    EXPECT_EQ(pts[5].z, 2.5);
    // The stepped form clears its output even when it fails.
    EXPECT_EQ(M_GetPlineCurPts(nullptr, 1.0, pts), 0);
    EXPECT_TRUE(pts.isEmpty());
    EXPECT_EQ(M_GetPlinePts(pl.get(), 0.000001, 0, 10, pts), 0);
}
