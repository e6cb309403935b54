// Elliptical arcs of the geometry library: lengths against the closed form, nearest points,
// affine images, line crossings and the plane form's sense.
#include "geellip.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

// The perimeter of an ellipse by the arithmetic-geometric mean (complete elliptic integrals).
double perimeter(double a, double b) {
    double x = 1.0, y = b / a, sum = 0.5 * (1.0 - y * y), power = 0.5;
    for (int i = 0; i < 30 && x - y > 1e-17; ++i) {
        const double c = 0.5 * (x - y);
        const double nx = 0.5 * (x + y), ny = std::sqrt(x * y);
        power *= 2.0;
        sum += power * c * c;
        x = nx;
        y = ny;
    }
    return 4.0 * a * (kPi / (2.0 * x)) * (1.0 - sum);
}

bool onEllipse(const AcGeEllipArc3d& e, const AcGePoint3d& p, double tol) {
    return e.closestPointTo(p).distanceTo(p) < tol;
}

} // namespace

TEST(GeEllipArc3d, LengthMatchesTheClosedForm) {
    for (double ratio : {1.0, 0.7, 0.3, 0.05}) {
        SCOPED_TRACE(ratio);
        const AcGeEllipArc3d e(AcGePoint3d(1, 2, 3), AcGeVector3d(1, 1, 0), AcGeVector3d(0, 0, 1),
                               4.0, 4.0 * ratio);
        EXPECT_NEAR(e.length(), perimeter(4.0, 4.0 * ratio), 1e-10 * e.length());
        // By symmetry each quarter is a quarter.
        EXPECT_NEAR(e.length(0.0, kPi / 2), e.length() / 4, 1e-10 * e.length());
        const double t = e.paramAtLength(0.0, e.length() / 2);
        EXPECT_NEAR(t, kPi, 1e-8);
    }
}

TEST(GeEllipArc3d, NearestPointsAndParameters) {
    const AcGeEllipArc3d e(AcGePoint3d(0, 0, 0), AcGeVector3d(2, 1, 0), AcGeVector3d(-1, 2, 0), 3.0,
                           1.2, 0.4, 5.0);
    EXPECT_NEAR(e.normal().z, 1.0, 1e-15);
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-5.0, 5.0);
    for (int trial = 0; trial < 30; ++trial) {
        const AcGePoint3d q(u(rng), u(rng), u(rng));
        const AcGePoint3d on = e.closestPointTo(q);
        for (int k = 0; k <= 400; ++k)
            ASSERT_LE(q.distanceTo(on), q.distanceTo(e.evalPoint(0.4 + 4.6 * k / 400)) + 1e-12);
    }
    for (double t : {0.4, 1.0, 2.5, 4.9, 5.0})
        EXPECT_NEAR(e.paramOf(e.evalPoint(t)), t, 1e-9);
    EXPECT_TRUE(e.isInside(AcGePoint3d(0.5, 0.2, 0)));
    EXPECT_FALSE(e.isInside(AcGePoint3d(0.5, 0.2, 0.1)));
    EXPECT_FALSE(e.isClosed());
    AcGeVector3dArray d;
    e.evalPoint(1.0, 3, d);
    ASSERT_EQ(d.length(), 3);
    // The third derivative turns back to the negated first.
    EXPECT_LT((d[2] + d[0]).length(), 1e-14);
}

TEST(GeEllipArc3d, AffineImagesStayOnTheImage) {
    const AcGeEllipArc3d circle(AcGeCircArc3d(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1),
                                              AcGeVector3d(1, 0, 0), 1.0, 0.5, 2.5));
    AcGeMatrix3d shear;
    shear.entry[0][0] = 3.0;
    shear.entry[0][1] = 1.0;
    shear.entry[1][1] = 0.5;
    shear.entry[2][3] = 4.0;
    AcGeEllipArc3d e = circle;
    e.transformBy(shear);
    EXPECT_GE(e.majorRadius(), e.minorRadius());
    EXPECT_NEAR(e.majorAxis().dotProduct(e.minorAxis()), 0.0, 1e-14);
    for (int k = 0; k <= 12; ++k) {
        AcGePoint3d p = circle.evalPoint(0.5 + 2.0 * k / 12);
        p.transformBy(shear);
        EXPECT_TRUE(onEllipse(e, p, 1e-10)) << k;
    }
    AcGePoint3d s = circle.startPoint(), t = circle.endPoint();
    s.transformBy(shear);
    t.transformBy(shear);
    EXPECT_LT(e.startPoint().distanceTo(s), 1e-12);
    EXPECT_LT(e.endPoint().distanceTo(t), 1e-12);

    // A mirror turns the normal over and keeps the ends.
    AcGeEllipArc3d m = circle;
    m.transformBy(AcGeMatrix3d::mirroring(AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0))));
    EXPECT_NEAR(m.normal().z, -1.0, 1e-14);
    EXPECT_LT(m.startPoint().distanceTo(AcGePoint3d(-1 - std::cos(0.5), 1 + std::sin(0.5), 0)),
              1e-12);

    AcGeEllipArc3d r = e;
    r.reverseParam();
    EXPECT_LT(r.startPoint().distanceTo(e.endPoint()), 1e-12);
    EXPECT_LT(r.endPoint().distanceTo(e.startPoint()), 1e-12);
    EXPECT_NEAR(r.length(), e.length(), 1e-12);
}

TEST(GeEllipArc3d, LineCrossings) {
    const AcGeEllipArc3d e(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), 2.0,
                           1.0, 0.0, kPi);
    int n = 0;
    AcGePoint3d p1, p2;
    // y = 0.5 crosses the upper half twice.
    ASSERT_TRUE(
        e.intersectWith(AcGeLine3d(AcGePoint3d(0, 0.5, 0), AcGeVector3d(1, 0, 0)), n, p1, p2));
    ASSERT_EQ(n, 2);
    EXPECT_NEAR(std::fabs(p1.x), 2.0 * std::sqrt(0.75), 1e-12);
    EXPECT_NEAR(p1.x, -p2.x, 1e-12);
    // The lower half is not on the arc; a segment stopping short meets only one side.
    EXPECT_FALSE(
        e.intersectWith(AcGeLine3d(AcGePoint3d(0, -0.5, 0), AcGeVector3d(1, 0, 0)), n, p1, p2));
    ASSERT_TRUE(
        e.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 0.5, 0), AcGePoint3d(3, 0.5, 0)), n, p1, p2));
    EXPECT_EQ(n, 1);
    // Through the plane: the piercing point when it is on the arc.
    ASSERT_TRUE(
        e.intersectWith(AcGeLine3d(AcGePoint3d(0, 1, -1), AcGeVector3d(0, 0, 1)), n, p1, p2));
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(p1.isEqualTo(AcGePoint3d(0, 1, 0)));
    EXPECT_FALSE(
        e.intersectWith(AcGeLine3d(AcGePoint3d(0, 0.5, -1), AcGeVector3d(0, 0, 1)), n, p1, p2));
}

TEST(GeEllipArc2d, SenseFollowsTheMinorAxis) {
    const AcGeEllipArc2d ccw(AcGePoint2d(0, 0), AcGeVector2d(1, 0), AcGeVector2d(0, 1), 2.0, 1.0);
    const AcGeEllipArc2d cw(AcGePoint2d(0, 0), AcGeVector2d(1, 0), AcGeVector2d(0, -1), 2.0, 1.0);
    EXPECT_FALSE(ccw.isClockWise());
    EXPECT_TRUE(cw.isClockWise());
    EXPECT_TRUE(ccw.evalPoint(kPi / 2).isEqualTo(AcGePoint2d(0, 1)));
    EXPECT_TRUE(cw.evalPoint(kPi / 2).isEqualTo(AcGePoint2d(0, -1)));
    EXPECT_TRUE(ccw.isClosed());

    // From a circular arc: the same points, the same sense.
    const AcGeCircArc2d arc(AcGePoint2d(1, 1), 2.0, 0.3, 2.0, AcGeVector2d(0, 1), true);
    const AcGeEllipArc2d fromArc(arc);
    EXPECT_TRUE(fromArc.isClockWise());
    EXPECT_TRUE(fromArc.startPoint().isEqualTo(arc.startPoint()));
    EXPECT_TRUE(fromArc.endPoint().isEqualTo(arc.endPoint()));
    EXPECT_NEAR(fromArc.length(), arc.length(), 1e-10);

    AcGeEllipArc2d turned = ccw;
    turned.transformBy(AcGeMatrix2d::rotation(kPi / 2));
    EXPECT_TRUE(turned.majorAxis().isEqualTo(AcGeVector2d(0, 1)));
    EXPECT_FALSE(turned.isClockWise());
    int n = 0;
    AcGePoint2d p1, p2;
    ASSERT_TRUE(ccw.intersectWith(AcGeLineSeg2d(AcGePoint2d(-3, 0), AcGePoint2d(3, 0)), n, p1, p2));
    EXPECT_EQ(n, 2);
}
