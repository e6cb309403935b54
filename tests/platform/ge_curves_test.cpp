// The geometric curves and the plane: arc construction, parameters, closest points,
// intersections, coordinate systems and transforms.
#include "gecurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kEps = 1e-9;

::testing::AssertionResult near(const AcGePoint2d& got, const AcGePoint2d& want,
                                double eps = kEps) {
    if (got.distanceTo(want) <= eps) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << got.x << ", " << got.y << ") != (" << want.x << ", " << want.y << ")";
}

::testing::AssertionResult near(const AcGePoint3d& got, const AcGePoint3d& want,
                                double eps = kEps) {
    if (got.distanceTo(want) <= eps) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << got.x << ", " << got.y << ", " << got.z << ") != (" << want.x << ", " << want.y
           << ", " << want.z << ")";
}

::testing::AssertionResult near(const AcGeVector3d& got, const AcGeVector3d& want) {
    return near(AcGePoint3d(got.x, got.y, got.z), AcGePoint3d(want.x, want.y, want.z));
}

// The nearest of many points spread along the curve's interval: a reference that does not share
// the closed-form code.
template <class Curve, class Point> double bruteDistance(const Curve& c, const Point& pt) {
    AcGeInterval r;
    c.getInterval(r);
    double best = 1e300;
    constexpr int kSteps = 20000;
    for (int i = 0; i <= kSteps; ++i) {
        const double t = r.lowerBound() + (r.upperBound() - r.lowerBound()) * i / kSteps;
        best = std::min(best, c.evalPoint(t).distanceTo(pt));
    }
    return best;
}

} // namespace

TEST(GeCircArc2d, BulgeSignSemicircleAndSmallBulge) {
    // Bulge 1 is a half circle; positive travel is counter-clockwise, so it passes below a
    // chord running along +x.
    const AcGeCircArc2d half(AcGePoint2d(0, 0), AcGePoint2d(2, 0), 1.0, false);
    EXPECT_FALSE(half.isClockWise());
    EXPECT_TRUE(near(half.center(), AcGePoint2d(1, 0)));
    EXPECT_NEAR(half.radius(), 1.0, kEps);
    EXPECT_NEAR(half.endAng() - half.startAng(), kPi, kEps);
    EXPECT_TRUE(near(half.startPoint(), AcGePoint2d(0, 0)));
    EXPECT_TRUE(near(half.endPoint(), AcGePoint2d(2, 0)));
    EXPECT_TRUE(near(half.evalPoint((half.startAng() + half.endAng()) / 2), AcGePoint2d(1, -1)));
    EXPECT_NEAR(half.length(), kPi, kEps);

    // The negative bulge runs clockwise over the chord; the angles grow in that sense.
    const AcGeCircArc2d neg(AcGePoint2d(0, 0), AcGePoint2d(2, 0), -1.0, false);
    EXPECT_TRUE(neg.isClockWise());
    EXPECT_TRUE(near(neg.startPoint(), AcGePoint2d(0, 0)));
    EXPECT_TRUE(near(neg.endPoint(), AcGePoint2d(2, 0)));
    EXPECT_TRUE(near(neg.evalPoint((neg.startAng() + neg.endAng()) / 2), AcGePoint2d(1, 1)));
    EXPECT_TRUE(neg.isOn(AcGePoint2d(1, 1)));
    EXPECT_FALSE(neg.isOn(AcGePoint2d(1, -1)));

    // A small bulge: the sagitta is bulge * chord / 2 and r = chord (1 + b^2) / (4 |b|).
    const double b = 0.1;
    const AcGeCircArc2d flat(AcGePoint2d(3, 1), AcGePoint2d(3, 5), b, false);
    EXPECT_NEAR(flat.radius(), 4.0 * (1 + b * b) / (4 * b), 1e-9);
    EXPECT_NEAR(flat.endAng() - flat.startAng(), 4 * std::atan(b), kEps);
    // Travelling up, counter-clockwise, the arc swings out to the right (+x).
    EXPECT_TRUE(
        near(flat.evalPoint((flat.startAng() + flat.endAng()) / 2), AcGePoint2d(3 + b * 2.0, 3)));
    EXPECT_TRUE(near(flat.startPoint(), AcGePoint2d(3, 1)));
    EXPECT_TRUE(near(flat.endPoint(), AcGePoint2d(3, 5)));

    // A small negative bulge swings out to the left of the travel.
    const AcGeCircArc2d flatCw(AcGePoint2d(3, 1), AcGePoint2d(3, 5), -b, false);
    EXPECT_TRUE(flatCw.isClockWise());
    EXPECT_TRUE(near(flatCw.evalPoint((flatCw.startAng() + flatCw.endAng()) / 2),
                     AcGePoint2d(3 - b * 2.0, 3)));
    EXPECT_TRUE(near(flatCw.endPoint(), AcGePoint2d(3, 5)));

    // Bulges above 1 take the long way round.
    const AcGeCircArc2d big(AcGePoint2d(0, 0), AcGePoint2d(2, 0), 2.0, true);
    EXPECT_NEAR(big.endAng() - big.startAng(), 4 * std::atan(2.0), kEps);
    // The centre moves past the chord, to the side the arc swells to.
    EXPECT_TRUE(near(big.center(), AcGePoint2d(1, -0.75)));
    EXPECT_TRUE(near(big.evalPoint((big.startAng() + big.endAng()) / 2), AcGePoint2d(1, -2)));
    EXPECT_TRUE(near(big.endPoint(), AcGePoint2d(2, 0)));
}

TEST(GeCircArc2d, ClockwiseAnglesEvalAndReverse) {
    // As a polyline builds it: angles from +x measured clockwise.
    AcGeCircArc2d cw;
    cw.set(AcGePoint2d(1, 1), 2.0, kPi / 2, kPi, AcGeVector2d(1, 0), true);
    EXPECT_TRUE(near(cw.startPoint(), AcGePoint2d(1, -1)));
    EXPECT_TRUE(near(cw.endPoint(), AcGePoint2d(-1, 1)));
    const double s = std::sqrt(2.0);
    EXPECT_TRUE(near(cw.evalPoint(3 * kPi / 4), AcGePoint2d(1 - s, 1 - s)));
    EXPECT_NEAR(cw.paramOf(AcGePoint2d(1 - 5, 1 - 5)), 3 * kPi / 4, kEps);
    EXPECT_FALSE(cw.isOn(AcGePoint2d(1, 3)));

    // A reference vector turns the whole arc.
    const AcGeCircArc2d turned(AcGePoint2d(0, 0), 1.0, 0.0, kPi / 2, AcGeVector2d(0, 3), true);
    EXPECT_TRUE(near(turned.startPoint(), AcGePoint2d(0, 1)));
    EXPECT_TRUE(near(turned.endPoint(), AcGePoint2d(1, 0)));

    // An end angle below the start wraps round; equal angles make a circle.
    const AcGeCircArc2d wrap(AcGePoint2d(0, 0), 1.0, 3 * kPi / 2, kPi / 2);
    EXPECT_NEAR(wrap.endAng() - wrap.startAng(), kPi, kEps);
    EXPECT_TRUE(wrap.isOn(AcGePoint2d(1, 0)));
    EXPECT_FALSE(wrap.isOn(AcGePoint2d(-1, 0)));
    EXPECT_TRUE(AcGeCircArc2d(AcGePoint2d(0, 0), 1.0, 1.0, 1.0).isClosed());
    // A full turn added to a large start angle loses a bit; it is still a full turn.
    const AcGeCircArc2d turn(AcGePoint2d(0, 0), 1.0, 7.3, 7.3 + 2 * kPi);
    EXPECT_TRUE(turn.isClosed());
    EXPECT_NEAR(turn.length(), 2 * kPi, kEps);
    EXPECT_FALSE(wrap.isClosed());

    // Reversing swaps the ends and the sense but keeps the points.
    AcGeCircArc2d rev = cw;
    rev.reverseParam();
    EXPECT_FALSE(rev.isClockWise());
    EXPECT_TRUE(near(rev.startPoint(), cw.endPoint()));
    EXPECT_TRUE(near(rev.endPoint(), cw.startPoint()));
    EXPECT_TRUE(rev.isOn(AcGePoint2d(1 - s, 1 - s)));
    EXPECT_NEAR(rev.length(), cw.length(), kEps);
}

TEST(GeCircArc2d, ThreePointsAndSimilarityTransforms) {
    const AcGeCircArc2d ccw(AcGePoint2d(1, 0), AcGePoint2d(0, 1), AcGePoint2d(-1, 0));
    EXPECT_FALSE(ccw.isClockWise());
    EXPECT_TRUE(near(ccw.center(), AcGePoint2d(0, 0)));
    EXPECT_NEAR(ccw.radius(), 1.0, kEps);
    EXPECT_NEAR(ccw.length(), kPi, kEps);
    EXPECT_TRUE(ccw.isOn(AcGePoint2d(0, 1)));
    EXPECT_FALSE(ccw.isOn(AcGePoint2d(0, -1)));

    // Over the top from left to right is clockwise.
    const AcGeCircArc2d cw(AcGePoint2d(-1, 0), AcGePoint2d(0, 1), AcGePoint2d(1, 0));
    EXPECT_TRUE(cw.isClockWise());
    EXPECT_TRUE(near(cw.startPoint(), AcGePoint2d(-1, 0)));
    EXPECT_TRUE(near(cw.endPoint(), AcGePoint2d(1, 0)));
    EXPECT_TRUE(cw.isOn(AcGePoint2d(0, 1)));

    // A long arc: the middle point sits on the far side of the circle.
    const AcGeCircArc2d longWay(AcGePoint2d(1, 0), AcGePoint2d(-1, 0), AcGePoint2d(0, 1));
    EXPECT_NEAR(longWay.length(), 1.5 * kPi, kEps);
    EXPECT_TRUE(longWay.isOn(AcGePoint2d(0, -1)));

    // Collinear points leave the arc as it was.
    AcGeCircArc2d keep = ccw;
    keep.set(AcGePoint2d(0, 0), AcGePoint2d(1, 1), AcGePoint2d(2, 2));
    EXPECT_TRUE(near(keep.center(), ccw.center()));
    EXPECT_NEAR(keep.radius(), ccw.radius(), kEps);

    // A mirror flips the sense and keeps the arc on its image.
    AcGeMatrix2d mirrorX;
    mirrorX.entry[0][0] = -1.0;
    AcGeCircArc2d m = ccw;
    m.transformBy(AcGeMatrix2d::translation(AcGeVector2d(5, 0)) * mirrorX);
    EXPECT_TRUE(m.isClockWise());
    EXPECT_TRUE(near(m.startPoint(), AcGePoint2d(4, 0)));
    EXPECT_TRUE(near(m.endPoint(), AcGePoint2d(6, 0)));
    EXPECT_TRUE(m.isOn(AcGePoint2d(5, 1)));

    // Stretching gives the arc through the images of the ends and the middle; a circle stays
    // closed.
    AcGeMatrix2d stretch;
    stretch.entry[1][1] = 3.0;
    AcGeCircArc2d st = ccw;
    st.transformBy(stretch);
    EXPECT_TRUE(near(st.startPoint(), AcGePoint2d(1, 0)));
    EXPECT_TRUE(near(st.endPoint(), AcGePoint2d(-1, 0)));
    EXPECT_TRUE(st.isOn(AcGePoint2d(0, 3)));
    AcGeCircArc2d circle(AcGePoint2d(1, 1), 1.0);
    circle.transformBy(stretch);
    EXPECT_TRUE(circle.isClosed());

    AcGeCircArc2d r = cw;
    r.transformBy(AcGeMatrix2d::rotation(kPi / 2) * AcGeMatrix2d::scaling(2.0));
    EXPECT_NEAR(r.radius(), 2.0, kEps);
    EXPECT_TRUE(near(r.startPoint(), AcGePoint2d(0, -2)));
    EXPECT_TRUE(r.isOn(AcGePoint2d(-2, 0)));
}

TEST(GeCircArc2d, ClosestPointAndParamOutsideSpan) {
    const AcGeCircArc2d quarter(AcGePoint2d(0, 0), 1.0, 0.0, kPi / 2);
    // Beyond either end the nearer end point wins, also just past the half-way angle.
    EXPECT_TRUE(near(quarter.closestPointTo(AcGePoint2d(2, -0.5)), AcGePoint2d(1, 0)));
    EXPECT_NEAR(quarter.paramOf(AcGePoint2d(2, -0.5)), 0.0, kEps);
    EXPECT_TRUE(near(quarter.closestPointTo(AcGePoint2d(-0.5, 2)), AcGePoint2d(0, 1)));
    EXPECT_NEAR(quarter.paramOf(AcGePoint2d(-0.5, 2)), kPi / 2, kEps);
    EXPECT_TRUE(near(quarter.closestPointTo(AcGePoint2d(-1, -0.9)), AcGePoint2d(0, 1)));
    EXPECT_TRUE(near(quarter.closestPointTo(AcGePoint2d(-0.9, -1)), AcGePoint2d(1, 0)));
    // Over the span the radial projection.
    EXPECT_TRUE(near(quarter.closestPointTo(AcGePoint2d(3, 3)),
                     AcGePoint2d(std::sqrt(0.5), std::sqrt(0.5))));
    EXPECT_NEAR(quarter.distanceTo(AcGePoint2d(0.3, 0.4)), 0.5, kEps);

    // Against a dense sampling, for a clockwise arc with a turned reference vector.
    const AcGeCircArc2d arc(AcGePoint2d(2, -1), 3.0, 0.4, 4.0, AcGeVector2d(1, 1), true);
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> coord(-6.0, 6.0);
    for (int i = 0; i < 50; ++i) {
        const AcGePoint2d p(coord(rng), coord(rng));
        const AcGePoint2d c = arc.closestPointTo(p);
        EXPECT_TRUE(arc.isOn(c, AcGeTol()));
        EXPECT_LE(c.distanceTo(p), bruteDistance(arc, p) + 1e-9);
    }
}

TEST(GeLineSeg, SegmentQueriesAndIntersections) {
    const AcGeLineSeg2d a(AcGePoint2d(0, 0), AcGePoint2d(2, 2));
    EXPECT_NEAR(a.length(), 2 * std::sqrt(2.0), kEps);
    EXPECT_TRUE(near(a.midPoint(), AcGePoint2d(1, 1)));
    EXPECT_NEAR(a.direction().x, std::sqrt(0.5), kEps);
    EXPECT_NEAR(a.paramOf(AcGePoint2d(1.5, 1.5)), 0.75, kEps);
    // Clamped to the ends off the segment.
    EXPECT_TRUE(near(a.closestPointTo(AcGePoint2d(5, 3)), AcGePoint2d(2, 2)));
    EXPECT_NEAR(a.paramOf(AcGePoint2d(-3, -1)), 0.0, kEps);
    EXPECT_NEAR(a.distanceTo(AcGePoint2d(2, 0)), std::sqrt(2.0), kEps);

    AcGePoint2d p;
    ASSERT_TRUE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(0, 2), AcGePoint2d(2, 0)), p));
    EXPECT_TRUE(near(p, AcGePoint2d(1, 1)));
    // Parallel, even overlapping, has no single point.
    EXPECT_FALSE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(1, 0), AcGePoint2d(3, 2)), p));
    EXPECT_FALSE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(1, 1), AcGePoint2d(3, 3)), p));
    // The lines would meet beyond the segments; an unbounded line does reach.
    const AcGeLineSeg2d shortSeg(AcGePoint2d(3, 0), AcGePoint2d(3, 1));
    EXPECT_FALSE(a.intersectWith(shortSeg, p));
    AcGeLine2d la, lb;
    a.getLine(la);
    shortSeg.getLine(lb);
    ASSERT_TRUE(la.intersectWith(lb, p));
    EXPECT_TRUE(near(p, AcGePoint2d(3, 3)));
    EXPECT_FALSE(la.intersectWith(shortSeg, p));
    // Meeting at an end point counts.
    ASSERT_TRUE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(2, 2), AcGePoint2d(4, 0)), p));
    EXPECT_TRUE(near(p, AcGePoint2d(2, 2)));

    AcGeLineSeg2d r = a;
    r.reverseParam();
    EXPECT_TRUE(near(r.startPoint(), AcGePoint2d(2, 2)));
    EXPECT_TRUE(near(r.evalPoint(0.25), AcGePoint2d(1.5, 1.5)));

    const AcGeLineSeg3d s(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 2));
    AcGePoint3d q;
    ASSERT_TRUE(s.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 2, 0), AcGePoint3d(2, 0, 2)), q));
    EXPECT_TRUE(near(q, AcGePoint3d(1, 1, 1)));
    EXPECT_FALSE(
        s.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 2, 0.1), AcGePoint3d(2, 0, 2.1)), q)); // skew
    EXPECT_FALSE(s.intersectWith(AcGeLineSeg3d(AcGePoint3d(1, 0, 0), AcGePoint3d(3, 2, 2)), q));
    EXPECT_FALSE(s.intersectWith(AcGeLineSeg3d(AcGePoint3d(3, 0, 3), AcGePoint3d(3, 6, 3)), q));

    // Seen from above, the pick lands on the segment under the cursor, not the nearest point.
    const AcGeLineSeg3d rising(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 4));
    EXPECT_TRUE(near(rising.projClosestPointTo(AcGePoint3d(1, 3, 10), AcGeVector3d(0, 0, 1)),
                     AcGePoint3d(1, 0, 1)));
    EXPECT_TRUE(near(rising.projClosestPointTo(AcGePoint3d(9, 3, 0), AcGeVector3d(0, 0, -1)),
                     AcGePoint3d(4, 0, 4)));
}

TEST(GeCircArc2d, LineIntersections) {
    const AcGeCircArc2d circle(AcGePoint2d(0, 0), 1.0);
    int n = -1;
    AcGePoint2d p1, p2;
    ASSERT_TRUE(
        circle.intersectWith(AcGeLineSeg2d(AcGePoint2d(-2, 0), AcGePoint2d(2, 0)), n, p1, p2));
    ASSERT_EQ(n, 2);
    EXPECT_TRUE((near(p1, AcGePoint2d(-1, 0)) && near(p2, AcGePoint2d(1, 0))) ||
                (near(p1, AcGePoint2d(1, 0)) && near(p2, AcGePoint2d(-1, 0))));
    // Tangent: a single point.
    ASSERT_TRUE(
        circle.intersectWith(AcGeLineSeg2d(AcGePoint2d(-2, 1), AcGePoint2d(2, 1)), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(0, 1)));
    EXPECT_FALSE(
        circle.intersectWith(AcGeLineSeg2d(AcGePoint2d(-2, 1.5), AcGePoint2d(2, 1.5)), n, p1, p2));
    EXPECT_EQ(n, 0);
    // A segment that stops inside the circle meets it once.
    ASSERT_TRUE(
        circle.intersectWith(AcGeLineSeg2d(AcGePoint2d(0, 0), AcGePoint2d(0, 3)), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(0, 1)));

    // Only the points on the arc's span count.
    const AcGeCircArc2d upper(AcGePoint2d(0, 0), 1.0, 0.0, kPi);
    EXPECT_FALSE(
        upper.intersectWith(AcGeLineSeg2d(AcGePoint2d(-2, -0.5), AcGePoint2d(2, -0.5)), n, p1, p2));
    ASSERT_TRUE(
        upper.intersectWith(AcGeLine2d(AcGePoint2d(0.6, 0), AcGeVector2d(0, 1)), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(0.6, 0.8)));
}

TEST(GeCircArc2d, ArcIntersections) {
    const AcGeCircArc2d a(AcGePoint2d(0, 0), 1.0);
    int n = -1;
    AcGePoint2d p1, p2;
    ASSERT_TRUE(a.intersectWith(AcGeCircArc2d(AcGePoint2d(1, 0), 1.0), n, p1, p2));
    ASSERT_EQ(n, 2);
    const double h = std::sqrt(3.0) / 2;
    EXPECT_NEAR(p1.x, 0.5, kEps);
    EXPECT_NEAR(p2.x, 0.5, kEps);
    EXPECT_NEAR(std::fabs(p1.y), h, kEps);
    EXPECT_NEAR(p1.y, -p2.y, kEps);

    // Touching from outside and from inside.
    ASSERT_TRUE(a.intersectWith(AcGeCircArc2d(AcGePoint2d(2, 0), 1.0), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(1, 0)));
    const AcGeCircArc2d big(AcGePoint2d(0, 0), 2.0);
    ASSERT_TRUE(big.intersectWith(AcGeCircArc2d(AcGePoint2d(1, 0), 1.0), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(2, 0)));
    ASSERT_TRUE(AcGeCircArc2d(AcGePoint2d(1, 0), 1.0).intersectWith(big, n, p1, p2));
    EXPECT_TRUE(near(p1, AcGePoint2d(2, 0)));

    // Apart, nested and concentric circles do not meet.
    EXPECT_FALSE(a.intersectWith(AcGeCircArc2d(AcGePoint2d(3, 0), 1.0), n, p1, p2));
    EXPECT_FALSE(big.intersectWith(AcGeCircArc2d(AcGePoint2d(0.5, 0), 0.5), n, p1, p2));
    EXPECT_FALSE(a.intersectWith(a, n, p1, p2));
    EXPECT_EQ(n, 0);

    // Spans filter the crossings of the circles.
    const AcGeCircArc2d upper(AcGePoint2d(0, 0), 1.0, 0.0, kPi);
    ASSERT_TRUE(upper.intersectWith(AcGeCircArc2d(AcGePoint2d(1, 0), 1.0), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint2d(0.5, h)));
    const AcGeCircArc2d lowerOther(AcGePoint2d(1, 0), 1.0, kPi, 2 * kPi);
    EXPECT_FALSE(upper.intersectWith(lowerOther, n, p1, p2));
}

TEST(GeCircArc3d, ConstructionParamsAndClosestPoints) {
    // Angles turn counter-clockwise about the normal from the reference vector, which is made
    // perpendicular to the normal.
    const AcGeCircArc3d arc(AcGePoint3d(1, 2, 3), AcGeVector3d(0, 0, 2), AcGeVector3d(1, 0, 5), 2.0,
                            0.0, kPi / 2);
    EXPECT_TRUE(near(arc.refVec(), AcGeVector3d(1, 0, 0)));
    EXPECT_TRUE(near(arc.normal(), AcGeVector3d(0, 0, 1)));
    EXPECT_TRUE(near(arc.startPoint(), AcGePoint3d(3, 2, 3)));
    EXPECT_TRUE(near(arc.endPoint(), AcGePoint3d(1, 4, 3)));
    EXPECT_NEAR(arc.length(), kPi, kEps);
    // Off the plane the point projects first; past the end the nearer end point.
    EXPECT_TRUE(near(arc.closestPointTo(AcGePoint3d(5, 6, 9)),
                     AcGePoint3d(1 + std::sqrt(2.0), 2 + std::sqrt(2.0), 3)));
    EXPECT_TRUE(near(arc.closestPointTo(AcGePoint3d(-4, 2.5, 0)), AcGePoint3d(1, 4, 3)));
    EXPECT_NEAR(arc.paramOf(AcGePoint3d(3, -5, 3)), 0.0, kEps);
    EXPECT_FALSE(arc.isOn(AcGePoint3d(-1, 2, 3)));
    EXPECT_FALSE(arc.isClosed());

    AcGePlane plane;
    arc.getPlane(plane);
    EXPECT_NEAR(plane.signedDistanceTo(AcGePoint3d(0, 0, 4)), 1.0, kEps);

    // Three points give the arc from the first to the last through the middle one.
    const AcGePoint3d p1(1, 0, 0), p2(0, 1, 1), p3(-1, 0, 2);
    const AcGeCircArc3d three(p1, p2, p3);
    EXPECT_TRUE(near(three.startPoint(), p1));
    EXPECT_TRUE(near(three.endPoint(), p3));
    EXPECT_TRUE(three.isOn(p2));
    EXPECT_NEAR(three.center().distanceTo(p2), three.radius(), kEps);
    const double mid = three.paramOf(p2);
    EXPECT_GT(mid, three.startAng());
    EXPECT_LT(mid, three.endAng());
    EXPECT_TRUE(near(three.normal(), (p2 - p1).crossProduct(p3 - p1).normal()));

    // The full circle about a normal uses the plane's first axis as its reference.
    const AcGeCircArc3d full(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 1, 1), 1.0);
    EXPECT_TRUE(full.isClosed());
    EXPECT_TRUE(near(full.refVec(), AcGeVector3d(-1, 1, 0).normal()));

    // A tilted arc against a dense sampling.
    const AcGeCircArc3d tilted(AcGePoint3d(1, -1, 2), AcGeVector3d(1, -2, 0.5),
                               AcGeVector3d(0, 0, 1), 2.5, 1.0, 4.5);
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> coord(-5.0, 5.0);
    for (int i = 0; i < 40; ++i) {
        const AcGePoint3d p(coord(rng), coord(rng), coord(rng));
        EXPECT_LE(tilted.distanceTo(p), bruteDistance(tilted, p) + 1e-9);
        EXPECT_TRUE(tilted.isOn(tilted.closestPointTo(p), AcGeTol()));
    }

    AcGeCircArc3d rev = tilted;
    rev.reverseParam();
    EXPECT_TRUE(near(rev.startPoint(), tilted.endPoint()));
    EXPECT_TRUE(near(rev.endPoint(), tilted.startPoint()));
    EXPECT_TRUE(rev.isOn(tilted.evalPoint(2.0)));
}

TEST(GeCircArc3d, LineIntersections) {
    const AcGeCircArc3d circle(AcGePoint3d(0, 0, 1), AcGeVector3d(0, 1, 0), 2.0);
    int n = -1;
    AcGePoint3d p1, p2;
    // In the circle's plane (y = 0): two crossings, or one when tangent.
    ASSERT_TRUE(circle.intersectWith(AcGeLineSeg3d(AcGePoint3d(-5, 0, 1), AcGePoint3d(5, 0, 1)), n,
                                     p1, p2));
    ASSERT_EQ(n, 2);
    EXPECT_NEAR(std::fabs(p1.x), 2.0, kEps);
    EXPECT_NEAR(p1.x + p2.x, 0.0, kEps);
    ASSERT_TRUE(circle.intersectWith(AcGeLineSeg3d(AcGePoint3d(-5, 0, 3), AcGePoint3d(5, 0, 3)), n,
                                     p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint3d(0, 0, 3)));
    // Parallel to the plane but off it: nothing.
    EXPECT_FALSE(circle.intersectWith(AcGeLineSeg3d(AcGePoint3d(-5, 1, 1), AcGePoint3d(5, 1, 1)), n,
                                      p1, p2));
    // Piercing the plane on the circle, and inside it.
    ASSERT_TRUE(
        circle.intersectWith(AcGeLine3d(AcGePoint3d(2, 7, 1), AcGeVector3d(0, 1, 0)), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(near(p1, AcGePoint3d(2, 0, 1)));
    EXPECT_FALSE(
        circle.intersectWith(AcGeLine3d(AcGePoint3d(1, 7, 1), AcGeVector3d(0, 1, 0)), n, p1, p2));
}

TEST(GeCircArc3d, MirrorScaleAndDistortingTransforms) {
    const AcGeCircArc3d arc(AcGePoint3d(1, 2, 0.5), AcGeVector3d(0.3, -0.2, 1),
                            AcGeVector3d(1, 0, 0), 2.0, 0.2, 2.3);
    const double params[] = {0.2, 0.9, 1.6, 2.3};

    // A mirror in a plane off the origin: every point goes to its image, angles stay.
    const AcGePlane mirrorPlane(AcGePoint3d(3, 0, 0), AcGeVector3d(1, 0.5, 0));
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring(mirrorPlane);
    AcGeCircArc3d m = arc;
    m.transformBy(mirror);
    EXPECT_NEAR(m.radius(), 2.0, kEps);
    EXPECT_NEAR(m.startAng(), arc.startAng(), kEps);
    EXPECT_NEAR(m.endAng(), arc.endAng(), kEps);
    for (double t : params) {
        AcGePoint3d want = arc.evalPoint(t);
        want.transformBy(mirror);
        EXPECT_TRUE(near(m.evalPoint(t), want));
    }
    // The mirrored normal is the mirror image turned over.
    AcGeVector3d img = arc.normal();
    img.transformBy(mirror);
    EXPECT_TRUE(near(m.normal(), -img));

    // Rotation with uniform scaling about a point.
    const AcGeMatrix3d rs =
        AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 1, 0), AcGePoint3d(0, 1, 0)) *
        AcGeMatrix3d::scaling(1.5, AcGePoint3d(2, 2, 2));
    AcGeCircArc3d r = arc;
    r.transformBy(rs);
    EXPECT_NEAR(r.radius(), 3.0, kEps);
    for (double t : params) {
        AcGePoint3d want = arc.evalPoint(t);
        want.transformBy(rs);
        EXPECT_TRUE(near(r.evalPoint(t), want));
    }

    // Stretching cannot keep a circle: the ends and the middle keep their images.
    AcGeMatrix3d stretch;
    stretch.entry[0][0] = 2.0;
    AcGeCircArc3d s = arc;
    s.transformBy(stretch);
    AcGePoint3d a0 = arc.startPoint(), a1 = arc.evalPoint(1.25), a2 = arc.endPoint();
    a0.transformBy(stretch);
    a1.transformBy(stretch);
    a2.transformBy(stretch);
    EXPECT_TRUE(near(s.startPoint(), a0));
    EXPECT_TRUE(near(s.endPoint(), a2));
    EXPECT_TRUE(s.isOn(a1));

    // A stretched full circle stays closed.
    AcGeCircArc3d full(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    full.transformBy(stretch);
    EXPECT_TRUE(full.isClosed());
}

TEST(GePlane, CoordinateSystemsProjectionAndMirror) {
    AcGePoint3d o;
    AcGeVector3d x, y;
    AcGePlane::kXYPlane.getCoordSystem(o, x, y);
    EXPECT_TRUE(near(x, AcGeVector3d(1, 0, 0)) && near(y, AcGeVector3d(0, 1, 0)));

    // Within 1/64 of the z axis the y axis is the helper: axis1 stays close to x.
    const AcGeVector3d nearZ = AcGeVector3d(0.01, 0, 1).normal();
    AcGePlane(AcGePoint3d(0, 0, 0), nearZ).getCoordSystem(o, x, y);
    EXPECT_TRUE(near(x, AcGeVector3d(nearZ.z, 0, -nearZ.x).normal()));
    EXPECT_TRUE(near(y, nearZ.crossProduct(x)));
    // Just past the threshold the z axis is the helper and axis1 swings to y.
    AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0.02, 0, 1)).getCoordSystem(o, x, y);
    EXPECT_TRUE(near(x, AcGeVector3d(0, 1, 0)));
    // Tilted.
    const AcGePlane tilted(AcGePoint3d(1, 2, 3), AcGeVector3d(2, 2, 2));
    tilted.getCoordSystem(o, x, y);
    EXPECT_TRUE(near(o.asVector(), AcGeVector3d(1, 2, 3)));
    EXPECT_TRUE(near(x, AcGeVector3d(-1, 1, 0) / std::sqrt(2.0)));
    EXPECT_TRUE(near(y, AcGeVector3d(-1, -1, 2) / std::sqrt(6.0)));
    EXPECT_TRUE(near(tilted.normal(), AcGeVector3d(1, 1, 1) / std::sqrt(3.0)));

    // Plane coordinates go both ways and lie on the plane.
    const AcGePoint3d onPlane(tilted, AcGePoint2d(2, -3));
    EXPECT_TRUE(tilted.isOn(onPlane));
    EXPECT_TRUE(near(onPlane.convert2d(tilted), AcGePoint2d(2, -3)));
    EXPECT_TRUE(near(AcGeVector3d(tilted, AcGeVector2d(0, 1)), y));
    const AcGePoint3d off = onPlane + tilted.normal() * 1.5;
    EXPECT_NEAR(tilted.signedDistanceTo(off), 1.5, kEps);
    EXPECT_NEAR(tilted.signedDistanceTo(onPlane - tilted.normal() * 2.0), -2.0, kEps);
    EXPECT_TRUE(near(off.orthoProject(tilted), onPlane));
    EXPECT_TRUE(near(tilted.closestPointTo(off), onPlane));

    // Segments pierce the plane or stop short; parallel ones never meet it.
    const AcGePlane z1(AcGePoint3d(5, 5, 1), AcGeVector3d(0, 0, -1));
    AcGePoint3d p;
    ASSERT_TRUE(z1.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 2)), p));
    EXPECT_TRUE(near(p, AcGePoint3d(1, 1, 1)));
    EXPECT_FALSE(z1.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 0, 0), AcGePoint3d(.5, .5, .5)), p));
    EXPECT_FALSE(z1.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 0)), p));
    ASSERT_TRUE(z1.intersectWith(AcGeLine3d(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 4)), p));
    EXPECT_TRUE(near(p, AcGePoint3d(0.25, 0, 1)));

    // Two planes share a line.
    AcGeLine3d common;
    ASSERT_TRUE(AcGePlane::kXYPlane.intersectWith(tilted, common));
    EXPECT_TRUE(AcGePlane::kXYPlane.isOn(common.evalPoint(3.0)));
    EXPECT_TRUE(tilted.isOn(common.evalPoint(-2.0)));
    EXPECT_FALSE(z1.intersectWith(AcGePlane::kXYPlane, common));

    // Mirroring: the image is as far on the other side; twice is no change.
    const AcGeMatrix3d m = AcGeMatrix3d::mirroring(tilted);
    AcGePoint3d img = off;
    img.transformBy(m);
    EXPECT_NEAR(tilted.signedDistanceTo(img), -1.5, kEps);
    EXPECT_TRUE(near(img.orthoProject(tilted), onPlane));
    EXPECT_TRUE((m * m).isEqualTo(AcGeMatrix3d::kIdentity));
    EXPECT_NEAR(m.det(), -1.0, kEps);

    // A mirror across the plane's own normal leaves it in place with its normal as the matrix
    // maps it; a rotation carries the point and the normal along.
    AcGePlane moved = z1;
    moved.transformBy(AcGeMatrix3d::mirroring(AcGePlane::kYZPlane));
    EXPECT_TRUE(near(moved.normal(), AcGeVector3d(0, 0, -1)));
    EXPECT_TRUE(near(moved.pointOnPlane(), AcGePoint3d(-5, 5, 1)));
    moved.transformBy(AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d(1, 0, 0)));
    EXPECT_TRUE(near(moved.normal(), AcGeVector3d(0, 1, 0)));
    EXPECT_TRUE(moved.isOn(AcGePoint3d(7, -1, 9)));
}

TEST(GeCurves, CopiesKeepTypeAndGeometry) {
    const AcGeCircArc3d arc(AcGePoint3d(1, 1, 1), AcGeVector3d(0, 1, 1), 2.0);
    const std::unique_ptr<AcGeCurve3d> c(arc.copy());
    EXPECT_EQ(c->type(), AcGe::kCircArc3d);
    EXPECT_TRUE(c->isKindOf(AcGe::kCurve3d));
    EXPECT_TRUE(c->isKindOf(AcGe::kEntity3d));
    EXPECT_FALSE(c->isKindOf(AcGe::kLineSeg3d));
    EXPECT_TRUE(near(c->evalPoint(1.0), arc.evalPoint(1.0)));

    const AcGeLineSeg2d seg(AcGePoint2d(1, 1), AcGePoint2d(4, 5));
    const std::unique_ptr<AcGeCurve2d> s(seg.copy());
    EXPECT_TRUE(s->isKindOf(AcGe::kLinearEnt2d));
    EXPECT_FALSE(s->isKindOf(AcGe::kLine2d));
    AcGeInterval range;
    s->getInterval(range);
    EXPECT_NEAR(s->length(range.lowerBound(), range.upperBound()), 5.0, kEps);
    AcGePoint2d end;
    ASSERT_TRUE(s->hasEndPoint(end));
    EXPECT_TRUE(near(end, AcGePoint2d(4, 5)));
    AcGeLine2d(AcGePoint2d(0, 0), AcGeVector2d(1, 0)).getInterval(range);
    EXPECT_FALSE(range.isBounded());
    EXPECT_TRUE(range.contains(-1e9));
}
