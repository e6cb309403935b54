// The curve queries agree with one another for every curve class: distance to point and back,
// split pieces against the whole, and closest points against points sampled along the curve.
#include "dbents.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Case {
    std::string name;
    std::function<AcDbCurve*()> make;
};

std::vector<Case> cases() {
    return {
        {"line", [] { return new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(11, -4, 5)); }},
        {"arc",
         [] {
             return new AcDbArc(AcGePoint3d(3, 1, 0), AcGeVector3d(0, 0.6, 0.8), 7.0, 5.0, 1.5);
         }},
        {"circle", [] { return new AcDbCircle(AcGePoint3d(-2, 4, 1), AcGeVector3d::kZAxis, 6.0); }},
        {"polyline",
         [] {
             auto* pl = new AcDbPolyline;
             pl->addVertexAt(0, AcGePoint2d(0, 0), 0.4);
             pl->addVertexAt(1, AcGePoint2d(8, 0));
             pl->addVertexAt(2, AcGePoint2d(8, 6), -0.7);
             pl->addVertexAt(3, AcGePoint2d(0, 6));
             pl->setClosed(true);
             pl->setElevation(2.0);
             return pl;
         }},
        {"ellipse arc",
         [] {
             return new AcDbEllipse(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis,
                                    AcGeVector3d(6, 3, 0), 0.4, 0.3, 4.0);
         }},
        {"spline",
         [] {
             return new AcDbSpline(
                 AcGePoint3dArray{{0, 0, 0}, {3, 5, 1}, {7, -2, 2}, {12, 4, 0}, {15, 0, -1}});
         }},
        {"2d polyline",
         [] {
             const AcGeDoubleArray bulges{0.0, 0.5, 0.0, -0.3};
             return new AcDb2dPolyline(AcDb::k2dSimplePoly,
                                       AcGePoint3dArray{{0, 0, 0}, {5, 0, 0}, {9, 3, 0}, {4, 8, 0}},
                                       1.5, false, 0.0, 0.0, &bulges);
         }},
        {"3d polyline",
         [] {
             return new AcDb3dPolyline(AcDb::k3dSimplePoly,
                                       AcGePoint3dArray{{0, 0, 0}, {4, 0, 1}, {5, 4, 2}, {1, 5, 0}},
                                       true);
         }},
    };
}

double lengthOf(const AcDbCurve& c) {
    double s = 0.0, e = 0.0, ds = 0.0, de = 0.0;
    EXPECT_EQ(c.getStartParam(s), Acad::eOk);
    EXPECT_EQ(c.getEndParam(e), Acad::eOk);
    EXPECT_EQ(c.getDistAtParam(s, ds), Acad::eOk);
    EXPECT_EQ(c.getDistAtParam(e, de), Acad::eOk);
    return de - ds;
}

} // namespace

TEST(EntsConsistency, DistanceToPointAndBack) {
    for (const Case& k : cases()) {
        const std::unique_ptr<AcDbCurve> c(k.make());
        const double len = lengthOf(*c);
        ASSERT_GT(len, 1.0) << k.name;
        for (int i = 1; i < 40; ++i) {
            const double d = len * i / 40.0;
            AcGePoint3d p;
            ASSERT_EQ(c->getPointAtDist(d, p), Acad::eOk) << k.name << " " << d;
            double back = -1.0;
            ASSERT_EQ(c->getDistAtPoint(p, back), Acad::eOk) << k.name << " " << d;
            EXPECT_NEAR(back, d, 1e-9 * len) << k.name;
        }
    }
}

TEST(EntsConsistency, SplitPiecesAddUpToTheWhole) {
    for (const Case& k : cases()) {
        const std::unique_ptr<AcDbCurve> c(k.make());
        const double len = lengthOf(*c);
        AcGeDoubleArray params;
        for (double f : {0.15, 0.5, 0.8}) {
            double t = 0.0;
            ASSERT_EQ(c->getParamAtDist(len * f, t), Acad::eOk) << k.name;
            params.append(t);
        }
        AcDbVoidPtrArray pieces;
        ASSERT_EQ(c->getSplitCurves(params, pieces), Acad::eOk) << k.name;
        EXPECT_EQ(pieces.length(), c->isClosed() ? 3 : 4) << k.name;
        double sum = 0.0;
        for (void* p : pieces) {
            const std::unique_ptr<AcDbCurve> piece(static_cast<AcDbCurve*>(p));
            sum += lengthOf(*piece);
        }
        EXPECT_NEAR(sum, len, 1e-9 * len) << k.name;
    }
}

TEST(EntsConsistency, ClosestPointsAreNoFartherThanAnySample) {
    const std::vector<AcGePoint3d> probes{{0, 0, 0}, {20, 3, 1}, {-7, 9, -2}, {4, 4, 4}, {3, 1, 0}};
    for (const Case& k : cases()) {
        const std::unique_ptr<AcDbCurve> c(k.make());
        const double len = lengthOf(*c);
        std::vector<AcGePoint3d> samples;
        for (int i = 0; i <= 400; ++i) {
            AcGePoint3d p;
            ASSERT_EQ(c->getPointAtDist(len * i / 400.0, p), Acad::eOk) << k.name;
            samples.push_back(p);
        }
        for (const AcGePoint3d& q : probes) {
            AcGePoint3d on;
            ASSERT_EQ(c->getClosestPointTo(q, on), Acad::eOk) << k.name;
            const double best = on.distanceTo(q);
            for (const AcGePoint3d& s : samples)
                ASSERT_LE(best, s.distanceTo(q) + 1e-9 * len) << k.name;
            // And it is on the curve.
            double d = 0.0;
            EXPECT_EQ(c->getDistAtPoint(on, d), Acad::eOk) << k.name;
        }
    }
}
