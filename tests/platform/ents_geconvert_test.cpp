// Database curves as geometric curves and back: the same points, the same length, the
// expected kinds.
#include "dbents.h"
#include "genurbs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

double lengthOf(const AcDbCurve& c) {
    double e = 0.0, d = 0.0;
    c.getEndParam(e);
    c.getDistAtParam(e, d);
    return d;
}

struct Case {
    std::string name;
    std::unique_ptr<AcDbCurve> curve;
    AcGe::EntityId geType;
};

std::vector<Case> cases() {
    std::vector<Case> out;
    out.push_back({"line", std::make_unique<AcDbLine>(AcGePoint3d(1, 2, 3), AcGePoint3d(4, -2, 0)),
                   AcGe::kLineSeg3d});
    out.push_back(
        {"arc",
         std::make_unique<AcDbArc>(AcGePoint3d(1, 1, 1), AcGeVector3d(1, 2, 2), 2.0, 5.5, 1.0),
         AcGe::kCircArc3d});
    out.push_back({"circle",
                   std::make_unique<AcDbCircle>(AcGePoint3d(0, 0, 2), AcGeVector3d(0, 0, -1), 3.0),
                   AcGe::kCircArc3d});
    out.push_back({"ellipse arc",
                   std::make_unique<AcDbEllipse>(AcGePoint3d(1, 0, 0), AcGeVector3d(0, 0, 1),
                                                 AcGeVector3d(0, 3, 0), 0.4, 0.5, 4.0),
                   AcGe::kEllipArc3d});
    out.push_back({"spline fit",
                   std::make_unique<AcDbSpline>(
                       AcGePoint3dArray{{0, 0, 0}, {2, 1, 1}, {4, -1, 0}, {5, 2, 2}}),
                   AcGe::kNurbCurve3d});
    out.push_back({"spline control",
                   std::make_unique<AcDbSpline>(
                       2, true, false, false, AcGePoint3dArray{{0, 0, 0}, {1, 2, 0}, {3, 0, 1}},
                       AcGeDoubleArray{0, 0, 0, 1, 1, 1}, AcGeDoubleArray{1, 3, 1}),
                   AcGe::kNurbCurve3d});
    auto pl = std::make_unique<AcDbPolyline>();
    pl->addVertexAt(0, AcGePoint2d(0, 0), 0.4);
    pl->addVertexAt(1, AcGePoint2d(3, 0));
    pl->addVertexAt(2, AcGePoint2d(3, 2), -1.0);
    pl->addVertexAt(3, AcGePoint2d(0, 2));
    pl->setClosed(true);
    pl->setNormal(AcGeVector3d(0, 1, 1));
    pl->setElevation(1.0);
    out.push_back({"lightweight polyline", std::move(pl), AcGe::kNurbCurve3d});
    AcGeDoubleArray bulges{-0.5, 0.0, 0.0};
    out.push_back({"2d polyline",
                   std::make_unique<AcDb2dPolyline>(
                       AcDb::k2dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}, 0.5,
                       false, 0.0, 0.0, &bulges),
                   AcGe::kNurbCurve3d});
    out.push_back({"3d polyline",
                   std::make_unique<AcDb3dPolyline>(
                       AcDb::k3dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {1, 2, 3}, {2, 0, 1}}),
                   AcGe::kNurbCurve3d});
    return out;
}

} // namespace

TEST(EntsGeConvert, GeometricCurvesTraceTheSamePoints) {
    for (auto& c : cases()) {
        SCOPED_TRACE(c.name);
        AcGeCurve3d* raw = nullptr;
        ASSERT_EQ(c.curve->getAcGeCurve(raw), Acad::eOk);
        std::unique_ptr<AcGeCurve3d> ge(raw);
        EXPECT_EQ(ge->type(), c.geType);
        const double len = lengthOf(*c.curve);
        AcGeInterval range;
        ge->getInterval(range);
        EXPECT_NEAR(ge->length(range.lowerBound(), range.upperBound()), len, 1e-9 * len);
        for (int k = 0; k <= 20; ++k) {
            AcGePoint3d p;
            c.curve->getPointAtDist(len * k / 20, p);
            EXPECT_LT(ge->closestPointTo(p).distanceTo(p), 1e-9) << k;
        }
        AcGePoint3d s, gs;
        c.curve->getStartPoint(s);
        ASSERT_TRUE(ge->hasStartPoint(gs));
        EXPECT_LT(s.distanceTo(gs), 1e-12);

        // And back: a database curve over the same points.
        AcDbCurve* back = nullptr;
        ASSERT_EQ(AcDbCurve::createFromAcGeCurve(*ge, back), Acad::eOk);
        std::unique_ptr<AcDbCurve> b(back);
        EXPECT_NEAR(lengthOf(*b), len, 1e-9 * len);
        for (int k = 0; k <= 20; ++k) {
            AcGePoint3d p, q;
            c.curve->getPointAtDist(len * k / 20, p);
            b->getClosestPointTo(p, q);
            EXPECT_LT(q.distanceTo(p), 1e-9) << k;
        }
    }
}

TEST(EntsGeConvert, KindsOnTheWayBack) {
    const AcGeCircArc3d circle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 2.0);
    AcDbCurve* c = nullptr;
    ASSERT_EQ(AcDbCurve::createFromAcGeCurve(circle, c), Acad::eOk);
    std::unique_ptr<AcDbCurve> owned(c);
    EXPECT_TRUE(AcDbCircle::cast(c));

    // An ellipse with the longer axis second comes back with it first.
    const AcGeEllipArc3d tall(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0),
                              1.0, 3.0, 0.0, kPi);
    ASSERT_EQ(AcDbCurve::createFromAcGeCurve(tall, c), Acad::eOk);
    owned.reset(c);
    const AcDbEllipse* e = AcDbEllipse::cast(c);
    ASSERT_TRUE(e);
    EXPECT_NEAR(e->majorRadius(), 3.0, 1e-12);
    AcGePoint3d s, t;
    e->getStartPoint(s);
    e->getEndPoint(t);
    EXPECT_TRUE(s.isEqualTo(AcGePoint3d(1, 0, 0)));
    EXPECT_TRUE(t.isEqualTo(AcGePoint3d(-1, 0, 0)));

    // A fit curve stays a fit spline; an unbounded line has no database curve.
    const AcGeNurbCurve3d fit(AcGePoint3dArray{{0, 0, 0}, {1, 1, 0}, {2, 0, 0}});
    ASSERT_EQ(AcDbCurve::createFromAcGeCurve(fit, c), Acad::eOk);
    owned.reset(c);
    ASSERT_TRUE(AcDbSpline::cast(c));
    EXPECT_EQ(AcDbSpline::cast(c)->numFitPoints(), 3);
    EXPECT_EQ(AcDbCurve::createFromAcGeCurve(AcGeLine3d(), c), Acad::eNotApplicable);
    EXPECT_EQ(AcDbCurve::createFromAcGeCurve(AcGeNurbCurve3d(), c), Acad::eInvalidInput);

    AcDbSpline empty;
    AcGeCurve3d* g = nullptr;
    EXPECT_EQ(empty.getAcGeCurve(g), Acad::eInvalidInput);
    EXPECT_EQ(g, nullptr);
}
