// The ellipse entity: angles and parameters, validation, area, extension, reversal, offsets,
// transforms, grips, snaps, drawing and listing.
#include "cmdline.h"
#include "dbents.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

constexpr double kPi = 3.14159265358979323846;

double lengthOf(const AcDbCurve& c) {
    double e = 0.0, d = 0.0;
    c.getEndParam(e);
    c.getDistAtParam(e, d);
    return d;
}

double distanceTo(const AcDbCurve& c, const AcGePoint3d& p) {
    AcGePoint3d on;
    c.getClosestPointTo(p, on);
    return on.distanceTo(p);
}

} // namespace

TEST(EntsEllipse, AnglesAreThoseOfTheEndPoints) {
    const AcGePoint3d c(1, 2, 0);
    AcDbEllipse e(c, AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0), 0.5, kPi / 4, kPi);
    AcGePoint3d s, t;
    e.getStartPoint(s);
    e.getEndPoint(t);
    EXPECT_NEAR(std::atan2(s.y - c.y, s.x - c.x), kPi / 4, 1e-12);
    EXPECT_LT(t.distanceTo(AcGePoint3d(-1, 2, 0)), 1e-12);
    EXPECT_NEAR(e.startAngle(), kPi / 4, 1e-12);
    double sp = 0.0;
    e.getStartParam(sp);
    EXPECT_NEAR(sp, std::atan2(1.0, 0.5), 1e-12); // tan(t) = tan(a) / ratio
    EXPECT_NEAR(e.angleAtParam(e.paramAtAngle(2.0)), 2.0, 1e-12);
    EXPECT_TRUE(e.minorAxis().isEqualTo(AcGeVector3d(0, 1, 0)));
    EXPECT_FALSE(e.isClosed());

    ASSERT_EQ(e.setEndParam(kPi / 2), Acad::eOk);
    e.getEndPoint(t);
    EXPECT_LT(t.distanceTo(AcGePoint3d(1, 3, 0)), 1e-12);
    ASSERT_EQ(e.setStartParam(3 * kPi / 2), Acad::eOk); // round through zero
    double ep = 0.0;
    e.getStartParam(sp);
    e.getEndParam(ep);
    EXPECT_NEAR(ep - sp, kPi, 1e-12);

    // What is not an ellipse is refused and changes nothing.
    EXPECT_EQ(e.set(c, AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 1), 0.5), Acad::eInvalidInput);
    EXPECT_EQ(e.set(c, AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 1.5), Acad::eInvalidInput);
    EXPECT_EQ(e.set(c, AcGeVector3d(0, 0, 1), AcGeVector3d(0, 0, 0), 0.5), Acad::eInvalidInput);
    EXPECT_EQ(e.setRadiusRatio(0.0), Acad::eInvalidInput);
    EXPECT_EQ(e.radiusRatio(), 0.5);
    AcDbEllipse bad(c, AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 2.0);
    EXPECT_TRUE(bad.isNull());
    AcGePoint3d p;
    EXPECT_NE(bad.getStartPoint(p), Acad::eOk);
}

TEST(EntsEllipse, AreaExtendAndReverse) {
    AcDbEllipse full(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(3, 0, 0), 0.5);
    EXPECT_TRUE(full.isClosed());
    double area = 0.0;
    full.getArea(area);
    EXPECT_NEAR(area, kPi * 3 * 1.5, 1e-12);
    AcDbEllipse half(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(3, 0, 0), 0.5, 0.0,
                     kPi);
    half.getArea(area);
    EXPECT_NEAR(area, kPi * 3 * 1.5 / 2, 1e-12);

    // Extended to a point of its ellipse below the major axis, past the end.
    ASSERT_EQ(half.extend(false, AcGePoint3d(0, -1.5, 0)), Acad::eOk);
    double e = 0.0;
    half.getEndParam(e);
    EXPECT_NEAR(e, 1.5 * kPi, 1e-9);
    EXPECT_EQ(half.extend(true, AcGePoint3d(5, 5, 0)), Acad::eInvalidInput);
    EXPECT_EQ(half.extend(1.0), Acad::eInvalidInput); // inside
    ASSERT_EQ(half.extend(-0.25 * kPi), Acad::eOk);
    half.getArea(area);
    EXPECT_NEAR(area, 0.5 * 4.5 * (1.75 * kPi - std::sin(1.75 * kPi)), 1e-9);

    AcDbEllipse arc(AcGePoint3d(1, 1, 1), AcGeVector3d(0, 0.6, 0.8), AcGeVector3d(2, 0, 0), 0.3,
                    0.5, 2.5);
    AcGePoint3d s0, e0, mid0;
    arc.getStartPoint(s0);
    arc.getEndPoint(e0);
    arc.getPointAtDist(0.5 * lengthOf(arc), mid0);
    const double len = lengthOf(arc);
    ASSERT_EQ(arc.reverseCurve(), Acad::eOk);
    AcGePoint3d s1, e1, mid1;
    arc.getStartPoint(s1);
    arc.getEndPoint(e1);
    arc.getPointAtDist(0.5 * len, mid1);
    EXPECT_LT(s1.distanceTo(e0), 1e-12);
    EXPECT_LT(e1.distanceTo(s0), 1e-12);
    EXPECT_LT(mid1.distanceTo(mid0), 1e-9);
    EXPECT_NEAR(lengthOf(arc), len, 1e-12);
    EXPECT_TRUE(arc.normal().isEqualTo(AcGeVector3d(0, -0.6, -0.8)));
}

TEST(EntsEllipse, OffsetsFollowAtTheDistance) {
    AcDbEllipse e(AcGePoint3d(2, 1, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(4, 2, 0), 0.5);
    for (double d : {0.75, -0.5}) {
        SCOPED_TRACE(d);
        AcDbVoidPtrArray out;
        ASSERT_EQ(e.getOffsetCurves(d, out), Acad::eOk);
        ASSERT_EQ(out.length(), 1);
        std::unique_ptr<AcDbSpline> s(AcDbSpline::cast(static_cast<AcRxObject*>(out[0])));
        ASSERT_TRUE(s);
        EXPECT_TRUE(s->isClosed());
        const double len = lengthOf(*s);
        for (int k = 0; k < 50; ++k) {
            AcGePoint3d p;
            s->getPointAtDist(len * k / 50, p);
            EXPECT_NEAR(distanceTo(e, p), std::fabs(d), 2e-4) << k;
        }
        // Outwards is positive.
        AcGePoint3d far;
        s->getPointAtParam(0.0, far);
        EXPECT_EQ(far.distanceTo(AcGePoint3d(2, 1, 0)) > 4.4, d > 0);
    }
    // The smallest radius of curvature is b^2 / a: an inner offset past it folds.
    AcDbVoidPtrArray none;
    const double a = std::sqrt(20.0), b = 0.5 * a;
    EXPECT_EQ(e.getOffsetCurves(-1.01 * b * b / a, none), Acad::eInvalidInput);
    EXPECT_EQ(none.length(), 0);
}

TEST(EntsEllipse, TransformsGripsSnapsAndDrawing) {
    AcDbEllipse e(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0), 0.5, 0.3,
                  2.0);
    AcGePoint3d before[5];
    for (int k = 0; k < 5; ++k)
        e.getPointAtParam(e.paramAtAngle(0.3) + 0.3 * k, before[k]);
    // A shear: the image of an ellipse is an ellipse through the images of its points.
    AcGeMatrix3d shear;
    shear.entry[0][1] = 1.5;
    shear.entry[1][1] = 0.7;
    shear.entry[0][3] = 3.0;
    ASSERT_EQ(e.transformBy(shear), Acad::eOk);
    for (auto p : before) {
        p.transformBy(shear);
        EXPECT_LT(distanceTo(e, p), 1e-10);
    }
    EXPECT_LE(e.radiusRatio(), 1.0);
    AcGeMatrix3d flat;
    flat.entry[1][1] = 0.0; // everything onto the x axis
    EXPECT_EQ(e.transformBy(flat), Acad::eInvalidInput);

    AcDbEllipse g(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0), 0.5);
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    g.getGripPoints(grips, modes, ids);
    ASSERT_EQ(grips.length(), 5);
    EXPECT_TRUE(grips[2].isEqualTo(AcGePoint3d(1, 2, 0)));
    g.moveGripPointsAt(AcDbIntArray{1}, AcGeVector3d(1, 0, 0));
    EXPECT_NEAR(g.majorRadius(), 3.0, 1e-12);
    EXPECT_NEAR(g.minorRadius(), 1.0, 1e-12);
    g.moveGripPointsAt(AcDbIntArray{0}, AcGeVector3d(0, 0, 2));
    EXPECT_TRUE(g.center().isEqualTo(AcGePoint3d(1, 1, 2)));

    AcGePoint3dArray snaps;
    const AcGeMatrix3d view;
    AcDbEllipse arc(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0), 0.5, 0.1,
                    kPi);
    arc.getOsnapPoints(AcDb::kOsModeQuad, 0, AcGePoint3d(), AcGePoint3d(), view, snaps, ids);
    ASSERT_EQ(snaps.length(), 2); // 90 and 180 degrees
    snaps.removeAll();
    arc.getOsnapPoints(AcDb::kOsModeNear, 0, AcGePoint3d(0, 3, 0), AcGePoint3d(), view, snaps, ids);
    ASSERT_EQ(snaps.length(), 1);
    EXPECT_TRUE(snaps[0].isEqualTo(AcGePoint3d(0, 1, 0)));

    AcGiRecorder rec;
    arc.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);
    const AcGePoint3dArray& pts = rec.items()[0].points;
    EXPECT_GT(pts.length(), 16);
    for (const auto& p : pts)
        EXPECT_LT(distanceTo(arc, p), 1e-12);

    AcutCapture capture;
    arc.list();
    EXPECT_NE(capture.text().find(L"Radius Ratio:     0.5000"), std::wstring::npos);
    EXPECT_NE(capture.text().find(L"End Angle:   180.0000"), std::wstring::npos);
}
