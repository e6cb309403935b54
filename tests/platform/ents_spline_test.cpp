// The spline entity: editing fit points one by one (as the module's spline objects do),
// control data and its validation, periodic data, knots, weights, area, reversal, offsets,
// transforms and drawing.
#include "cmdline.h"
#include "dbents.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

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

AcDbSpline controlSpline() {
    AcGePoint3dArray ctrl{{0, 0, 0}, {1, 3, 0}, {4, 4, 0}, {6, 1, 0}, {8, 2, 0}};
    return AcDbSpline(3, false, false, false, ctrl, AcGeDoubleArray{0, 0, 0, 0, 0.5, 1, 1, 1, 1},
                      AcGeDoubleArray());
}

} // namespace

TEST(EntsSpline, FitPointsOneByOne) {
    AcDbSpline s;
    EXPECT_TRUE(s.isNull());
    EXPECT_EQ(s.numFitPoints(), 0);
    AcGePoint3d p;
    EXPECT_EQ(s.getFitPointAt(0, p), Acad::eInvalidIndex);
    EXPECT_NE(s.getStartPoint(p), Acad::eOk);
    ASSERT_EQ(s.insertFitPointAt(0, AcGePoint3d(0, 0, 0)), Acad::eOk);
    EXPECT_TRUE(s.isNull()); // one point is no curve yet
    ASSERT_EQ(s.insertFitPointAt(1, AcGePoint3d(4, 0, 0)), Acad::eOk);
    ASSERT_FALSE(s.isNull());
    EXPECT_NEAR(lengthOf(s), 4.0, 1e-12);
    EXPECT_EQ(s.insertFitPointAt(5, AcGePoint3d(9, 9, 0)), Acad::eInvalidIndex);
    EXPECT_EQ(s.insertFitPointAt(-1, AcGePoint3d(9, 9, 0)), Acad::eInvalidIndex);
    ASSERT_EQ(s.insertFitPointAt(2, AcGePoint3d(5, 3, 0)), Acad::eOk);
    ASSERT_EQ(s.insertFitPointAt(1, AcGePoint3d(2, -1, 0)), Acad::eOk);
    ASSERT_EQ(s.numFitPoints(), 4);
    s.getFitPointAt(1, p);
    EXPECT_TRUE(p.isEqualTo(AcGePoint3d(2, -1, 0)));
    for (int i = 0; i < 4; ++i) {
        s.getFitPointAt(i, p);
        EXPECT_LT(distanceTo(s, p), 1e-12) << i;
    }
    ASSERT_EQ(s.setFitPointAt(2, AcGePoint3d(4, 1, 2)), Acad::eOk);
    EXPECT_LT(distanceTo(s, AcGePoint3d(4, 1, 2)), 1e-12);
    EXPECT_EQ(s.setFitPointAt(4, p), Acad::eInvalidIndex);
    EXPECT_EQ(s.setFitPointAt(0, AcGePoint3d(std::nan(""), 0, 0)), Acad::eInvalidInput);

    // Repeating the first point at the end closes the curve smoothly.
    s.getFitPointAt(0, p);
    ASSERT_EQ(s.insertFitPointAt(s.numFitPoints(), p), Acad::eOk);
    EXPECT_TRUE(s.isClosed());
    AcGeVector3d d0, d1;
    double e = 0.0;
    s.getEndParam(e);
    s.getFirstDeriv(0.0, d0);
    s.getFirstDeriv(e, d1);
    EXPECT_LT((d0.normal() - d1.normal()).length(), 1e-12);

    ASSERT_EQ(s.removeFitPointAt(4), Acad::eOk);
    EXPECT_FALSE(s.isClosed());
    EXPECT_EQ(s.removeFitPointAt(4), Acad::eInvalidIndex);
    AcGePoint3dArray fit;
    int degree = 0;
    double tol = 0.0;
    Adesk::Boolean tangents = true;
    AcGeVector3d st, et;
    ASSERT_EQ(s.getFitData(fit, degree, tol, tangents, st, et), Acad::eOk);
    EXPECT_EQ(fit.length(), 4);
    EXPECT_EQ(degree, 3);
    EXPECT_FALSE(tangents);
    ASSERT_EQ(s.setFitTangents(AcGeVector3d(0, 1, 0), AcGeVector3d(0, -1, 0)), Acad::eOk);
    s.getFirstDeriv(0.0, d0);
    EXPECT_LT((d0.normal() - AcGeVector3d(0, 1, 0)).length(), 1e-12);
    ASSERT_EQ(s.purgeFitData(), Acad::eOk);
    EXPECT_FALSE(s.hasFitData());
    EXPECT_FALSE(s.isNull()); // the curve stays
    EXPECT_EQ(s.insertFitPointAt(0, p), Acad::eNotApplicable);
}

TEST(EntsSpline, ControlDataIsCheckedAndKept) {
    AcDbSpline s = controlSpline();
    ASSERT_FALSE(s.isNull());
    EXPECT_EQ(s.degree(), 3);
    EXPECT_TRUE(s.isPlanar());
    int degree = 0;
    Adesk::Boolean rational = true, closed = true, periodic = true;
    AcGePoint3dArray ctrl;
    AcGeDoubleArray knots, weights;
    double ct = 0.0, kt = 0.0;
    ASSERT_EQ(s.getNurbsData(degree, rational, closed, periodic, ctrl, knots, weights, ct, kt),
              Acad::eOk);
    EXPECT_EQ(degree, 3);
    EXPECT_FALSE(rational);
    EXPECT_FALSE(closed);
    EXPECT_EQ(ctrl.length(), 5);
    EXPECT_EQ(knots, (AcGeDoubleArray{0, 0, 0, 0, 0.5, 1, 1, 1, 1}));

    // Knots that do not fit the control points, weights of the wrong count: refused.
    const double before = lengthOf(s);
    EXPECT_EQ(s.setNurbsData(3, false, false, false, ctrl, AcGeDoubleArray{0, 0, 0, 1, 1, 1},
                             AcGeDoubleArray()),
              Acad::eInvalidInput);
    EXPECT_EQ(s.setNurbsData(3, true, false, false, ctrl, knots, AcGeDoubleArray{1, 1}),
              Acad::eInvalidInput);
    EXPECT_EQ(s.setNurbsData(0, false, false, false, ctrl, knots, AcGeDoubleArray()),
              Acad::eInvalidInput);
    EXPECT_NEAR(lengthOf(s), before, 1e-12);

    // A knot insertion or a weight of one changes nothing on the curve; other weights pull.
    AcGePoint3d mid0, mid1;
    s.getPointAtParam(0.3, mid0);
    ASSERT_EQ(s.insertKnot(0.3), Acad::eOk);
    EXPECT_EQ(s.numControlPoints(), 6);
    s.getPointAtParam(0.3, mid1);
    EXPECT_LT(mid0.distanceTo(mid1), 1e-12);
    EXPECT_EQ(s.insertKnot(1.5), Acad::eInvalidInput);
    ASSERT_EQ(s.setWeightAt(2, 1.0), Acad::eOk);
    EXPECT_NEAR(lengthOf(s), before, 1e-9);
    ASSERT_EQ(s.setWeightAt(2, 5.0), Acad::eOk);
    EXPECT_TRUE(s.isRational());
    AcGePoint3d c2;
    s.getControlPointAt(2, c2);
    EXPECT_LT(distanceTo(s, c2), c2.distanceTo(mid0)); // drawn towards the heavy point
    EXPECT_EQ(s.setWeightAt(2, -1.0), Acad::eInvalidInput);
    EXPECT_EQ(s.getControlPointAt(6, c2), Acad::eInvalidIndex);

    AcDbSpline fit(AcGePoint3dArray{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}});
    ASSERT_TRUE(fit.hasFitData());
    ASSERT_EQ(fit.setControlPointAt(0, AcGePoint3d(0, -1, 0)), Acad::eOk);
    EXPECT_FALSE(fit.hasFitData()); // the curve no longer passes through them
}

TEST(EntsSpline, PeriodicDataInBothForms) {
    AcGePoint3dArray ctrl{{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}};
    AcDbSpline onePeriod(3, false, true, true, ctrl, AcGeDoubleArray{0, 1, 2, 3, 4},
                         AcGeDoubleArray());
    ASSERT_FALSE(onePeriod.isNull());
    EXPECT_TRUE(onePeriod.isPeriodic());
    EXPECT_TRUE(onePeriod.isClosed());
    AcGePoint3dArray wrapped = ctrl;
    for (int i = 0; i < 3; ++i)
        wrapped.append(ctrl[i]);
    AcDbSpline standard(3, false, true, true, wrapped,
                        AcGeDoubleArray{-3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7}, AcGeDoubleArray());
    ASSERT_FALSE(standard.isNull());
    double s = 0.0, e = 0.0;
    onePeriod.getStartParam(s);
    onePeriod.getEndParam(e);
    EXPECT_EQ(s, 0.0);
    EXPECT_EQ(e, 4.0);
    for (int k = 0; k <= 16; ++k) {
        AcGePoint3d a, b;
        onePeriod.getPointAtParam(0.25 * k, a);
        standard.getPointAtParam(0.25 * k, b);
        EXPECT_LT(a.distanceTo(b), 1e-12);
    }
    double area = 0.0;
    ASSERT_EQ(onePeriod.getArea(area), Acad::eOk);
    // Compare with the polygon of many points.
    double twice = 0.0;
    const int n = 4000;
    for (int k = 0; k < n; ++k) {
        AcGePoint3d a, b;
        onePeriod.getPointAtParam(4.0 * k / n, a);
        onePeriod.getPointAtParam(4.0 * (k + 1) / n, b);
        twice += a.x * b.y - b.x * a.y;
    }
    EXPECT_NEAR(area, std::fabs(twice) / 2, 1e-5);
}

TEST(EntsSpline, ReverseOffsetTransformAndDraw) {
    AcDbSpline s(AcGePoint3dArray{{0, 0, 0}, {2, 2, 0}, {4, 1, 0}, {6, 3, 0}},
                 AcGeVector3d(1, 1, 0), AcGeVector3d(1, 1, 0));
    AcGePoint3d s0, e0;
    s.getStartPoint(s0);
    s.getEndPoint(e0);
    const double len = lengthOf(s);
    AcDbSpline r = s;
    ASSERT_EQ(r.reverseCurve(), Acad::eOk);
    AcGePoint3d s1, f0;
    r.getStartPoint(s1);
    EXPECT_LT(s1.distanceTo(e0), 1e-12);
    EXPECT_NEAR(lengthOf(r), len, 1e-9);
    r.getFitPointAt(0, f0);
    EXPECT_TRUE(f0.isEqualTo(AcGePoint3d(6, 3, 0)));
    AcGeVector3d st, et;
    r.getFitTangents(st, et);
    EXPECT_TRUE(st.isEqualTo(AcGeVector3d(-1, -1, 0)));

    AcDbVoidPtrArray out;
    ASSERT_EQ(s.getOffsetCurves(0.4, out), Acad::eOk);
    ASSERT_EQ(out.length(), 1);
    std::unique_ptr<AcDbCurve> off(static_cast<AcDbCurve*>(out[0]));
    const double olen = lengthOf(*off);
    for (int k = 0; k <= 30; ++k) {
        AcGePoint3d p;
        off->getPointAtDist(olen * k / 30, p);
        EXPECT_NEAR(distanceTo(s, p), 0.4, 1e-4) << k;
    }
    // Right of travel about the plane normal.
    AcGePoint3d os;
    off->getStartPoint(os);
    EXPECT_LT(os.distanceTo(AcGePoint3d(0.4 * std::sqrt(0.5), -0.4 * std::sqrt(0.5), 0)), 1e-12);
    // Further in than the tightest bend would fold the offset over.
    out.removeAll();
    EXPECT_EQ(s.getOffsetCurves(-0.7, out), Acad::eInvalidInput);
    EXPECT_EQ(out.length(), 0);
    AcDbSpline twisted(AcGePoint3dArray{{0, 0, 0}, {2, 2, 1}, {4, 1, 0}, {6, 3, 2}});
    out.removeAll();
    EXPECT_EQ(twisted.getOffsetCurves(0.5, out), Acad::eNotApplicable);

    AcGeMatrix3d m = AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 1, 1), AcGePoint3d(2, 0, 1));
    m.entry[0][0] *= 2.0; // and stretched
    AcDbSpline t = s;
    ASSERT_EQ(t.transformBy(m), Acad::eOk);
    for (int k = 0; k <= 10; ++k) {
        AcGePoint3d p;
        s.getPointAtParam(k / 10.0, p);
        p.transformBy(m);
        EXPECT_LT(distanceTo(t, p), 1e-9) << k;
    }

    AcGiRecorder rec;
    s.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);
    for (const auto& p : rec.items()[0].points)
        EXPECT_LT(distanceTo(s, p), 1e-12);
    AcutCapture capture;
    s.list();
    EXPECT_NE(capture.text().find(L"Fit points: 4"), std::wstring::npos);
    EXPECT_NE(capture.text().find(L"Planar, Non-Rational, Non-Periodic"), std::wstring::npos);
}
