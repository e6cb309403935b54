// Knot vectors and NURBS curves of the geometry library: evaluation against closed forms,
// knot insertion, trimming, joining, interpolation through fit points, periodic data.
#include "genurbs.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

// A quarter of the unit circle as a rational quadratic.
AcGeNurbCurve3d quarterCircle() {
    AcGePoint3dArray pts{{1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    return AcGeNurbCurve3d(2, AcGeKnotVector(AcGeDoubleArray{0, 0, 0, 1, 1, 1}), pts,
                           AcGeDoubleArray{1, std::sqrt(0.5), 1});
}

AcGeNurbCurve3d cubic() {
    AcGePoint3dArray pts{{0, 0, 0}, {1, 2, 0}, {3, 3, 1}, {4, 0, 2}, {6, 1, 0}, {7, 3, 1}};
    return AcGeNurbCurve3d(3, AcGeKnotVector(AcGeDoubleArray{0, 0, 0, 0, 1, 2.5, 4, 4, 4, 4}), pts);
}

// Two curves trace the same points over parameter ranges mapped linearly onto each other.
void expectSamePoints(const AcGeCurve3d& a, const AcGeCurve3d& b, double tol = 1e-12) {
    AcGeInterval ia, ib;
    a.getInterval(ia);
    b.getInterval(ib);
    for (int k = 0; k <= 40; ++k) {
        const double f = k / 40.0;
        const AcGePoint3d p = a.evalPoint(ia.lowerBound() + f * ia.length());
        EXPECT_LT(b.closestPointTo(p).distanceTo(p), tol) << k;
    }
}

} // namespace

TEST(GeKnotVector, MultiplicityDistinctKnotsAndRange) {
    AcGeKnotVector k(AcGeDoubleArray{0, 0, 0, 1, 2, 2, 3, 3, 3});
    EXPECT_EQ(k.length(), 9);
    EXPECT_EQ(k.multiplicityAt(0.0), 3);
    EXPECT_EQ(k.multiplicityAt(4), 2);
    EXPECT_EQ(k.multiplicityAt(1.5), 0);
    EXPECT_EQ(k.numIntervals(), 3);
    AcGeDoubleArray d;
    k.getDistinctKnots(d);
    EXPECT_EQ(d, (AcGeDoubleArray{0, 1, 2, 3}));
    EXPECT_TRUE(k.contains(2.5));
    EXPECT_FALSE(k.contains(3.5));
    EXPECT_TRUE(k.isOn(2.0));
    EXPECT_EQ(k.getIndex(1.5), 3);
    k.setRange(10, 16);
    EXPECT_DOUBLE_EQ(k[3], 12.0);
    EXPECT_DOUBLE_EQ(k.endParam(), 16.0);
    k.reverse();
    EXPECT_DOUBLE_EQ(k[0], 10.0);
    EXPECT_DOUBLE_EQ(k[5], 14.0); // 10 + 16 - 12
    k.insertAt(4, 11.0, 2);
    EXPECT_EQ(k.length(), 11);
    EXPECT_EQ(k.multiplicityAt(11.0), 2);
}

TEST(GeNurbCurve3d, RationalQuarterCircleIsExact) {
    const AcGeNurbCurve3d q = quarterCircle();
    ASSERT_TRUE(q.isValid());
    EXPECT_TRUE(q.isRational());
    for (int k = 0; k <= 20; ++k) {
        AcGeVector3dArray d;
        const AcGePoint3d p = q.evalPoint(k / 20.0, 2, d);
        EXPECT_NEAR(p.asVector().length(), 1.0, 1e-14);
        ASSERT_EQ(d.length(), 2);
        // Tangent perpendicular to the radius, and the derivatives match differences.
        EXPECT_NEAR(d[0].dotProduct(p.asVector()), 0.0, 1e-13);
        const double t = std::clamp(k / 20.0, 1e-5, 1 - 1e-5), h = 1e-6;
        const AcGeVector3d diff = (q.evalPoint(t + h) - q.evalPoint(t - h)) / (2 * h);
        AcGeVector3dArray dt;
        q.evalPoint(t, 2, dt);
        EXPECT_LT((diff - dt[0]).length(), 1e-7);
        AcGeVector3dArray da, db;
        q.evalPoint(t - h, 1, da);
        q.evalPoint(t + h, 1, db);
        EXPECT_LT(((db[0] - da[0]) / (2 * h) - dt[1]).length(), 1e-5);
    }
    EXPECT_NEAR(q.length(0, 1), kPi / 2, 1e-12);
    EXPECT_NEAR(q.paramAtLength(0.0, kPi / 4), 0.5, 1e-9); // symmetric weights
}

TEST(GeNurbCurve3d, KnotInsertionTrimAndJoinKeepTheCurve) {
    AcGeNurbCurve3d c = cubic();
    const AcGeNurbCurve3d orig = c;
    c.insertKnot(1.7);
    c.insertKnot(1.7);
    EXPECT_EQ(c.numControlPoints(), orig.numControlPoints() + 2);
    for (int k = 0; k <= 40; ++k)
        EXPECT_LT(c.evalPoint(0.1 * k).distanceTo(orig.evalPoint(0.1 * k)), 1e-12);

    AcGeNurbCurve3d left = orig, right = orig;
    left.hardTrimByParams(0.0, 1.7);
    right.hardTrimByParams(1.7, 4.0);
    EXPECT_TRUE(left.endPoint().isEqualTo(orig.evalPoint(1.7)));
    EXPECT_TRUE(right.startPoint().isEqualTo(orig.evalPoint(1.7)));
    EXPECT_NEAR(left.length(0, 1.7) + right.length(1.7, 4.0), orig.length(0, 4), 1e-10);
    expectSamePoints(left, orig);
    left.joinWith(right);
    EXPECT_NEAR(left.length(0, 4), orig.length(0, 4), 1e-10);
    expectSamePoints(orig, left);

    // A gap is bridged straight; a closed curve ends where it starts.
    AcGeNurbCurve3d open = orig;
    open.makeClosed();
    EXPECT_TRUE(open.isClosed());
    EXPECT_GT(open.numControlPoints(), orig.numControlPoints());

    AcGeNurbCurve3d r = orig;
    r.reverseParam();
    EXPECT_TRUE(r.startPoint().isEqualTo(orig.endPoint()));
    EXPECT_TRUE(r.evalPoint(1.0).isEqualTo(orig.evalPoint(3.0)));
}

TEST(GeNurbCurve3d, FitPointsAreInterpolatedWithTheirTangents) {
    AcGePoint3dArray fit{{0, 0, 0}, {1, 1, 0}, {3, 1, 1}, {4, 3, 0}, {6, 2, 0}};
    AcGeNurbCurve3d c(fit, AcGeVector3d(0, 1, 0), AcGeVector3d(1, 0, 0));
    ASSERT_TRUE(c.isValid());
    EXPECT_EQ(c.degree(), 3);
    EXPECT_EQ(c.numFitPoints(), 5);
    for (const auto& p : fit)
        EXPECT_LT(c.closestPointTo(p).distanceTo(p), 1e-12);
    AcGeVector3dArray d;
    c.evalPoint(0.0, 1, d);
    EXPECT_TRUE(d[0].normal().isEqualTo(AcGeVector3d(0, 1, 0), AcGeTol()));
    c.evalPoint(1.0, 1, d);
    EXPECT_LT((d[0].normal() - AcGeVector3d(1, 0, 0)).length(), 1e-12);
    AcGePoint3dArray back;
    AcGeTol tol;
    bool tangents = false;
    AcGeVector3d st, et;
    ASSERT_TRUE(c.getFitData(back, tol, tangents, st, et));
    EXPECT_TRUE(tangents);
    EXPECT_EQ(back, fit);

    // A closed list closes smoothly: the same tangent direction on both sides of the seam.
    AcGePoint3dArray ring{{0, 0, 0}, {4, 0, 0}, {5, 3, 0}, {1, 4, 0}, {0, 0, 0}};
    AcGeNurbCurve3d closed(ring);
    EXPECT_TRUE(closed.isClosed());
    AcGeVector3dArray a, b;
    closed.evalPoint(0.0, 1, a);
    closed.evalPoint(1.0, 1, b);
    EXPECT_LT((a[0].normal() - b[0].normal()).length(), 1e-12);

    // Two points make a straight line; one point makes nothing.
    AcGeNurbCurve3d two(AcGePoint3dArray{{0, 0, 0}, {2, 2, 0}});
    ASSERT_TRUE(two.isValid());
    EXPECT_LT(two.evalPoint(0.5).distanceTo(AcGePoint3d(1, 1, 0)), 1e-12);
    AcGeNurbCurve3d one(AcGePoint3dArray{{1, 1, 1}, {1, 1, 1}});
    EXPECT_FALSE(one.isValid());
    EXPECT_TRUE(one.evalPoint(0.5).isEqualTo(AcGePoint3d()));
}

TEST(GeNurbCurve3d, PeriodicDataInEitherFormAndInvalidData) {
    // A closed uniform quadratic: one period of knots, or the wrapped standard form.
    AcGePoint3dArray ctrl{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    AcGeNurbCurve3d onePeriod(2, AcGeKnotVector(AcGeDoubleArray{0, 1, 2, 3, 4}), ctrl, true);
    AcGePoint3dArray wrapped = ctrl;
    wrapped.append(ctrl[0]);
    wrapped.append(ctrl[1]);
    AcGeNurbCurve3d standard(2, AcGeKnotVector(AcGeDoubleArray{-2, -1, 0, 1, 2, 3, 4, 5, 6}),
                             wrapped, true);
    ASSERT_TRUE(onePeriod.isValid());
    ASSERT_TRUE(standard.isValid());
    double period = 0.0;
    ASSERT_TRUE(onePeriod.isPeriodic(period));
    EXPECT_DOUBLE_EQ(period, 4.0);
    EXPECT_TRUE(onePeriod.isClosed());
    for (int k = 0; k <= 16; ++k)
        EXPECT_LT(onePeriod.evalPoint(0.25 * k).distanceTo(standard.evalPoint(0.25 * k)), 1e-12);

    // Knots going backwards, a zero weight, too few control points: no curve, no crash.
    AcGeNurbCurve3d backwards(2, AcGeKnotVector(AcGeDoubleArray{0, 0, 0, 2, 1, 1, 1}), wrapped);
    EXPECT_FALSE(backwards.isValid());
    AcGeNurbCurve3d zeroWeight(2, AcGeKnotVector(AcGeDoubleArray{0, 0, 0, 1, 1, 1}),
                               AcGePoint3dArray{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}},
                               AcGeDoubleArray{1, 0, 1});
    EXPECT_FALSE(zeroWeight.isValid());
    AcGeNurbCurve3d few(3, AcGeKnotVector(AcGeDoubleArray{0, 0, 1, 1}),
                        AcGePoint3dArray{{0, 0, 0}});
    EXPECT_FALSE(few.isValid());
    AcGeInterval range;
    few.getInterval(range);
    EXPECT_EQ(range.length(), 0.0);
    EXPECT_EQ(few.length(0, 1), 0.0);
}

TEST(GeNurbCurve2d, EllipseAndSegmentsAsNurbs) {
    const AcGeEllipArc2d e(AcGePoint2d(1, 2), AcGeVector2d(1, 1), AcGeVector2d(-1, 1), 3.0, 1.0,
                           0.2, 4.0);
    const AcGeNurbCurve2d n(e);
    ASSERT_TRUE(n.isValid());
    EXPECT_TRUE(n.isRational());
    EXPECT_TRUE(n.startPoint().isEqualTo(e.startPoint()));
    EXPECT_TRUE(n.endPoint().isEqualTo(e.endPoint()));
    AcGeInterval range;
    n.getInterval(range);
    for (int k = 0; k <= 30; ++k) {
        const AcGePoint2d p = n.evalPoint(range.lowerBound() + range.length() * k / 30);
        EXPECT_LT(e.closestPointTo(p).distanceTo(p), 1e-12);
    }
    EXPECT_NEAR(n.length(range.lowerBound(), range.upperBound()), e.length(), 1e-10);

    const AcGeNurbCurve2d s(AcGeLineSeg2d(AcGePoint2d(0, 0), AcGePoint2d(3, 4)));
    EXPECT_EQ(s.degree(), 1);
    EXPECT_NEAR(s.length(0, 1), 5.0, 1e-14);
    AcGePoint2dArray pts;
    s.getSamplePoints(6, pts);
    ASSERT_EQ(pts.length(), 6);
    EXPECT_TRUE(pts[5].isEqualTo(AcGePoint2d(3, 4)));
    AcGeNurbCurve2d moved = s;
    moved.transformBy(AcGeMatrix2d::translation(AcGeVector2d(1, 1)));
    EXPECT_TRUE(moved.startPoint().isEqualTo(AcGePoint2d(1, 1)));
}

TEST(GeCurves, ParamAtLengthAndSamplesOnEveryKind) {
    const AcGeLineSeg3d seg(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 6, 8));
    EXPECT_NEAR(seg.paramAtLength(0.0, 5.0), 0.5, 1e-12);
    EXPECT_NEAR(seg.paramAtLength(1.0, 5.0, false), 0.5, 1e-12);
    EXPECT_NEAR(seg.paramAtLength(0.0, 50.0), 1.0, 1e-12); // a bounded curve stops at its end
    const AcGeLine3d line(AcGePoint3d(0, 0, 0), AcGeVector3d(2, 0, 0));
    EXPECT_NEAR(line.paramAtLength(0.0, 9.0), 4.5, 1e-9);
    const AcGeCircArc3d arc(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 2.0);
    EXPECT_NEAR(arc.paramAtLength(0.5, 2.0), 1.5, 1e-9);
    AcGePoint3dArray pts;
    arc.getSamplePoints(5, pts);
    ASSERT_EQ(pts.length(), 5);
    EXPECT_LT(pts[1].distanceTo(AcGePoint3d(0, 2, 0)), 1e-12);
    line.getSamplePoints(5, pts); // unbounded: nothing added
    EXPECT_EQ(pts.length(), 5);

    // Chord samples stay within the asked deviation of the curve.
    const AcGeNurbCurve3d c = cubic();
    AcGePoint3dArray chord;
    AcGeDoubleArray params;
    c.getSamplePoints(0.0, 4.0, 1e-3, chord, params);
    ASSERT_EQ(chord.length(), params.length());
    ASSERT_GT(chord.length(), 8);
    for (int i = 0; i + 1 < params.length(); ++i) {
        EXPECT_LT(params[i], params[i + 1]);
        const AcGePoint3d mid = c.evalPoint(0.5 * (params[i] + params[i + 1]));
        const AcGeLineSeg3d s(chord[i], chord[i + 1]);
        EXPECT_LT(s.distanceTo(mid), 1e-3);
    }
    const double half = c.paramAtLength(0.0, 0.5 * c.length(0, 4));
    EXPECT_NEAR(c.length(0, half), c.length(half, 4), 1e-9);
}
