// Curve queries of the plain entities: parameters, distances, closest points, splitting,
// areas, polyline segments, transforms, extents and explode. The shared checks run on every
// kind of curve, the exact line-and-arc ones and the evaluated ones alike.
#include "dbents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Named {
    std::string name;
    std::unique_ptr<AcDbCurve> curve;
};

AcDbPolyline* makePline(std::initializer_list<std::array<double, 3>> verts, bool closed = false) {
    auto* p = new AcDbPolyline();
    unsigned i = 0;
    for (const auto& v : verts)
        p->addVertexAt(i++, AcGePoint2d(v[0], v[1]), v[2]);
    p->setClosed(closed);
    return p;
}

// One of each kind, some off the world plane, to run the shared checks on.
std::vector<Named> sampleCurves() {
    std::vector<Named> out;
    out.push_back(
        {"line", std::make_unique<AcDbLine>(AcGePoint3d(1, 2, 3), AcGePoint3d(-4, 6, 0.5))});
    out.push_back({"arc", std::make_unique<AcDbArc>(AcGePoint3d(2, -1, 0), 3.0, 0.3, 5.1)});
    out.push_back(
        {"arc tilted",
         std::make_unique<AcDbArc>(AcGePoint3d(1, 1, 1), AcGeVector3d(1, -2, 0.5), 2.0, 4.0, 1.0)});
    out.push_back({"circle", std::make_unique<AcDbCircle>(AcGePoint3d(-3, 2, 1),
                                                          AcGeVector3d(0, 0, 1), 1.5)});
    out.push_back({"circle tilted",
                   std::make_unique<AcDbCircle>(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 1, 1), 2.5)});
    std::unique_ptr<AcDbPolyline> open(
        makePline({{0, 0, 0}, {4, 0, 0.5}, {4, 3, -1}, {1, 5, 0}, {0, 2, 0}}));
    open->setElevation(2.0);
    out.push_back({"pline open", std::move(open)});
    std::unique_ptr<AcDbPolyline> closed(
        makePline({{0, 0, 0.3}, {5, 0, 0}, {5, 4, 1}, {0, 4, 0}}, true));
    closed->setNormal(AcGeVector3d(0.2, -0.3, 1));
    closed->setElevation(-1.5);
    out.push_back({"pline closed", std::move(closed)});

    out.push_back(
        {"ellipse", std::make_unique<AcDbEllipse>(AcGePoint3d(1, -2, 0.5), AcGeVector3d(0, 0, 1),
                                                  AcGeVector3d(3, 1, 0), 0.4)});
    out.push_back({"ellipse arc tilted",
                   std::make_unique<AcDbEllipse>(AcGePoint3d(-1, 1, 2), AcGeVector3d(1, -1, 2),
                                                 AcGeVector3d(2, 2, 0), 0.6, 0.5, 4.0)});
    AcGePoint3dArray fit;
    for (const auto& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(2, 1, 1), AcGePoint3d(4, -1, 0),
                          AcGePoint3d(6, 2, -1), AcGePoint3d(7, 0, 1)})
        fit.append(p);
    out.push_back({"spline fit", std::make_unique<AcDbSpline>(fit)});
    AcGePoint3dArray ring;
    for (const auto& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0), AcGePoint3d(5, 3, 0),
                          AcGePoint3d(1, 4, 0), AcGePoint3d(0, 0, 0)})
        ring.append(p);
    out.push_back({"spline closed", std::make_unique<AcDbSpline>(ring)});
    AcGePoint3dArray ctrl;
    for (const auto& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(1, 3, 0), AcGePoint3d(3, 4, 1),
                          AcGePoint3d(5, 1, 1), AcGePoint3d(6, -2, 0), AcGePoint3d(8, 0, 0)})
        ctrl.append(p);
    out.push_back({"spline rational",
                   std::make_unique<AcDbSpline>(3, true, false, false, ctrl,
                                                AcGeDoubleArray{0, 0, 0, 0, 1, 2, 3, 3, 3, 3},
                                                AcGeDoubleArray{1, 2, 0.5, 1, 1.5, 1})});
    AcGePoint3dArray v2;
    for (const auto& p :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0), AcGePoint3d(4, 3, 0), AcGePoint3d(1, 5, 0)})
        v2.append(p);
    AcGeDoubleArray bulges{0.5, 0.0, -0.7, 0.0};
    auto heavy =
        std::make_unique<AcDb2dPolyline>(AcDb::k2dSimplePoly, v2, 1.5, false, 0.0, 0.0, &bulges);
    heavy->setNormal(AcGeVector3d(0.1, 0.2, 1));
    out.push_back({"2d pline", std::move(heavy)});
    out.push_back({"2d pline spline fit",
                   std::make_unique<AcDb2dPolyline>(AcDb::k2dQuadSplinePoly, v2, 0.0, true)});
    out.push_back(
        {"2d pline curve fit", std::make_unique<AcDb2dPolyline>(AcDb::k2dFitCurvePoly, v2)});
    AcGePoint3dArray v3;
    for (const auto& p :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(3, 1, 2), AcGePoint3d(4, 4, -1), AcGePoint3d(0, 3, 1)})
        v3.append(p);
    out.push_back({"3d pline", std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, v3)});
    out.push_back(
        {"3d pline closed", std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, v3, true)});
    return out;
}

double lengthOf(const AcDbCurve* c) {
    double e = 0.0, d = 0.0;
    EXPECT_EQ(c->getEndParam(e), Acad::eOk);
    EXPECT_EQ(c->getDistAtParam(e, d), Acad::eOk);
    return d;
}

AcGeMatrix3d mirrorAcrossYZ() {
    AcGeMatrix3d m;
    m.entry[0][0] = -1.0;
    return m;
}

AcGeMatrix3d rotationAbout(double angle, double cx, double cy) {
    AcGeMatrix3d m;
    const double c = std::cos(angle), s = std::sin(angle);
    m.entry[0][0] = c;
    m.entry[0][1] = -s;
    m.entry[1][0] = s;
    m.entry[1][1] = c;
    m.entry[0][3] = cx - c * cx + s * cy;
    m.entry[1][3] = cy - s * cx - c * cy;
    return m;
}

AcGePoint3d apply(const AcGeMatrix3d& m, const AcGePoint3d& p) {
    AcGePoint3d q;
    for (unsigned r = 0; r < 3; ++r)
        q[r] = m.entry[r][0] * p.x + m.entry[r][1] * p.y + m.entry[r][2] * p.z + m.entry[r][3];
    return q;
}

} // namespace

TEST(EntsCurve, DistanceAndPointRoundTripOnEveryKind) {
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        const double len = lengthOf(c.get());
        ASSERT_GT(len, 0.0);
        const int n = 97;
        for (int k = 0; k <= n; ++k) {
            const double d = len * k / n;
            if (c->isClosed() && k == n) continue; // the end is the start again
            AcGePoint3d p;
            ASSERT_EQ(c->getPointAtDist(d, p), Acad::eOk);
            double back = -1.0;
            ASSERT_EQ(c->getDistAtPoint(p, back), Acad::eOk);
            EXPECT_NEAR(back, d, 1e-9 * len);
            // Parameter and distance agree through the point as well.
            double param = 0.0, viaParam = 0.0;
            ASSERT_EQ(c->getParamAtPoint(p, param), Acad::eOk);
            ASSERT_EQ(c->getDistAtParam(param, viaParam), Acad::eOk);
            EXPECT_NEAR(viaParam, d, 1e-9 * len);
        }
    }
}

TEST(EntsCurve, QueriesOffTheCurveOrRangeFail) {
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        double s = 0.0, e = 0.0, x = 0.0;
        AcGePoint3d p;
        ASSERT_EQ(c->getStartParam(s), Acad::eOk);
        ASSERT_EQ(c->getEndParam(e), Acad::eOk);
        EXPECT_EQ(c->getPointAtParam(e + 0.01 * (e - s) + 0.01, p), Acad::eInvalidInput);
        EXPECT_EQ(c->getPointAtParam(s - 0.01 * (e - s) - 0.01, p), Acad::eInvalidInput);
        EXPECT_EQ(c->getPointAtDist(-0.01, p), Acad::eInvalidInput);
        EXPECT_EQ(c->getPointAtDist(lengthOf(c.get()) * 1.01, p), Acad::eInvalidInput);
        EXPECT_EQ(c->getPointAtParam(std::nan(""), p), Acad::eInvalidInput);
        // A point moved off the curve by a clear margin along a direction that leaves it.
        ASSERT_EQ(c->getPointAtParam(0.5 * (s + e), p), Acad::eOk);
        AcGeVector3d d1;
        ASSERT_EQ(c->getFirstDeriv(0.5 * (s + e), d1), Acad::eOk);
        AcGeVector3d off = d1.crossProduct(AcGeVector3d(0.3, 0.5, 0.8));
        off = off / off.length() * 1e-3;
        EXPECT_EQ(c->getParamAtPoint(p + off, x), Acad::eInvalidInput);
        EXPECT_EQ(c->getDistAtPoint(p + off, x), Acad::eInvalidInput);
    }
}

TEST(EntsCurve, DerivativesMatchDifferences) {
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        double s = 0.0, e = 0.0;
        c->getStartParam(s);
        c->getEndParam(e);
        // Inside a segment (polyline segments are smooth only between vertices).
        const double t = s + 0.37 * (e - s), h = 1e-6 * (e - s);
        AcGePoint3d a, b;
        AcGeVector3d d1, d2, d1a, d1b;
        ASSERT_EQ(c->getPointAtParam(t - h, a), Acad::eOk);
        ASSERT_EQ(c->getPointAtParam(t + h, b), Acad::eOk);
        ASSERT_EQ(c->getFirstDeriv(t, d1), Acad::eOk);
        ASSERT_EQ(c->getSecondDeriv(t, d2), Acad::eOk);
        const AcGeVector3d diff = (b - a) / (2 * h);
        EXPECT_NEAR((diff - d1).length(), 0.0, 1e-5 * std::max(1.0, d1.length()));
        c->getFirstDeriv(t - h, d1a);
        c->getFirstDeriv(t + h, d1b);
        EXPECT_NEAR(((d1b - d1a) / (2 * h) - d2).length(), 0.0, 1e-4 * std::max(1.0, d2.length()));
    }
}

TEST(EntsCurve, ClosestPointBeatsEverySample) {
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> coord(-8.0, 8.0);
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        const double len = lengthOf(c.get());
        std::vector<AcGePoint3d> samples;
        for (int k = 0; k <= 1000; ++k) {
            AcGePoint3d p;
            ASSERT_EQ(c->getPointAtDist(len * k / 1000, p), Acad::eOk);
            samples.push_back(p);
        }
        for (int trial = 0; trial < 25; ++trial) {
            const AcGePoint3d given(coord(rng), coord(rng), coord(rng));
            AcGePoint3d on;
            ASSERT_EQ(c->getClosestPointTo(given, on), Acad::eOk);
            double param = 0.0;
            EXPECT_EQ(c->getParamAtPoint(on, param), Acad::eOk) << "closest point not on the curve";
            const double best = given.distanceTo(on);
            for (const auto& s : samples)
                ASSERT_LE(best, given.distanceTo(s) + 1e-9);
        }
    }
}

TEST(EntsCurve, ClosestPointWithExtendReachesPastTheEnds) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    AcGePoint3d on;
    line.getClosestPointTo(AcGePoint3d(5, 2, 0), on, false);
    EXPECT_TRUE(on.isEqualTo(AcGePoint3d(1, 0, 0)));
    line.getClosestPointTo(AcGePoint3d(5, 2, 0), on, true);
    EXPECT_TRUE(on.isEqualTo(AcGePoint3d(5, 0, 0)));

    AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi / 2);
    arc.getClosestPointTo(AcGePoint3d(-3, 0.1, 0), on, true);
    EXPECT_NEAR(on.x, -1.0, 1e-3);
    arc.getClosestPointTo(AcGePoint3d(-3, 0.1, 0), on, false);
    EXPECT_TRUE(on.isEqualTo(AcGePoint3d(0, 1, 0)));

    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}));
    pl->getClosestPointTo(AcGePoint3d(1.2, 4, 0), on, true);
    EXPECT_TRUE(on.isEqualTo(AcGePoint3d(1, 4, 0)));
    pl->getClosestPointTo(AcGePoint3d(-4, -0.2, 0), on, true);
    EXPECT_TRUE(on.isEqualTo(AcGePoint3d(-4, 0, 0)));
}

TEST(EntsCurve, SplitPiecesAddUpAndKeepProperties) {
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        c->setColorIndex(3);
        double s = 0.0, e = 0.0;
        c->getStartParam(s);
        c->getEndParam(e);
        AcGeDoubleArray params;
        for (double f : {0.61, 0.13, 0.5})
            params.append(s + f * (e - s));
        AcDbVoidPtrArray pieces;
        ASSERT_EQ(c->getSplitCurves(params, pieces), Acad::eOk);
        // Closed curves wrap round: as many pieces as cuts.
        EXPECT_EQ(pieces.length(), c->isClosed() ? 3 : 4);
        double total = 0.0;
        AcGePoint3d prevEnd;
        for (int k = 0; k < pieces.length(); ++k) {
            std::unique_ptr<AcDbCurve> piece(static_cast<AcDbCurve*>(pieces[k]));
            total += lengthOf(piece.get());
            EXPECT_EQ(piece->colorIndex(), 3);
            AcGePoint3d ps, pe;
            piece->getStartPoint(ps);
            piece->getEndPoint(pe);
            double param = 0.0;
            // Every piece lies on the original.
            AcGePoint3d mid;
            double ms = 0.0, me = 0.0;
            piece->getStartParam(ms);
            piece->getEndParam(me);
            piece->getPointAtParam(0.5 * (ms + me), mid);
            EXPECT_EQ(c->getParamAtPoint(mid, param), Acad::eOk);
            if (k > 0) {
                EXPECT_LT(prevEnd.distanceTo(ps), 1e-9);
            }
            prevEnd = pe;
        }
        EXPECT_NEAR(total, lengthOf(c.get()), 1e-9 * total);
    }
}

TEST(EntsCurve, SplitAtPointsAndBadSplits) {
    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 1}, {2, 0, 0}, {2, 2, 0}}));
    pl->setWidthsAt(0, 1.0, 3.0);
    AcGePoint3dArray at;
    AcGePoint3d mid;
    pl->getPointAtParam(0.5, mid); // the bottom of the half circle
    at.append(mid);
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(pl->getSplitCurves(at, pieces), Acad::eOk);
    ASSERT_EQ(pieces.length(), 2);
    std::unique_ptr<AcDbPolyline> a(static_cast<AcDbPolyline*>(pieces[0])),
        b(static_cast<AcDbPolyline*>(pieces[1]));
    double bulge = 0.0, sw = 0.0, ew = 0.0;
    a->getBulgeAt(0, bulge);
    EXPECT_NEAR(bulge, std::tan(kPi / 8), 1e-12); // a quarter circle
    a->getWidthsAt(0, sw, ew);
    EXPECT_DOUBLE_EQ(sw, 1.0);
    EXPECT_DOUBLE_EQ(ew, 2.0);
    b->getWidthsAt(0, sw, ew);
    EXPECT_DOUBLE_EQ(sw, 2.0);
    EXPECT_DOUBLE_EQ(ew, 3.0);
    EXPECT_EQ(b->numVerts(), 3u);

    AcGePoint3dArray off;
    off.append(AcGePoint3d(10, 10, 0));
    AcDbVoidPtrArray none;
    EXPECT_EQ(pl->getSplitCurves(off, none), Acad::eInvalidInput);
    AcGeDoubleArray outOfRange;
    outOfRange.append(7.0);
    EXPECT_EQ(pl->getSplitCurves(outOfRange, none), Acad::eInvalidInput);
    EXPECT_EQ(none.length(), 0);
}

TEST(EntsCurve, ExtendAndReverse) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0));
    EXPECT_EQ(line.extend(true, AcGePoint3d(-1, 0, 0)), Acad::eOk);
    EXPECT_TRUE(line.startPoint().isEqualTo(AcGePoint3d(-1, 0, 0)));
    EXPECT_EQ(line.extend(false, AcGePoint3d(3, 1, 0)), Acad::eInvalidInput);
    EXPECT_EQ(line.extend(1.0), Acad::eInvalidInput); // inside

    AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi / 2);
    EXPECT_EQ(arc.extend(false, AcGePoint3d(-1, 0, 0)), Acad::eOk);
    EXPECT_NEAR(arc.endAngle(), kPi, 1e-12);
    EXPECT_EQ(arc.extend(true, AcGePoint3d(0, -1, 0)), Acad::eOk);
    EXPECT_NEAR(arc.startAngle(), 1.5 * kPi, 1e-12);

    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 1}, {1, 0, 0}, {1, 1, 0}}));
    const double before = lengthOf(pl.get());
    EXPECT_EQ(pl->extend(false, AcGePoint3d(1, 3, 0)), Acad::eOk);
    EXPECT_NEAR(lengthOf(pl.get()), before + 2.0, 1e-12);
    // The first segment is a half circle of radius 1/2: extending it round its circle.
    EXPECT_EQ(pl->extend(-0.5), Acad::eOk);
    double bulge = 0.0;
    pl->getBulgeAt(0, bulge);
    EXPECT_NEAR(4 * std::atan(bulge), 1.5 * kPi, 1e-12);

    std::unique_ptr<AcDbPolyline> closed(
        makePline({{0, 0, 0.5}, {3, 0, 0}, {3, 2, -0.25}, {0, 2, 0}}, true));
    closed->setWidthsAt(0, 0.1, 0.2);
    double area = 0.0, areaRev = 0.0;
    closed->getArea(area);
    const double len = lengthOf(closed.get());
    AcGePoint3d mid;
    closed->getPointAtParam(0.5, mid);
    ASSERT_EQ(closed->reverseCurve(), Acad::eOk);
    closed->getArea(areaRev);
    EXPECT_NEAR(area, areaRev, 1e-12);
    EXPECT_NEAR(len, lengthOf(closed.get()), 1e-12);
    // Old segment 0 is new segment 2 travelled backwards: same midpoint, swapped widths.
    AcGePoint3d midRev;
    closed->getPointAtParam(2.5, midRev);
    EXPECT_LT(mid.distanceTo(midRev), 1e-12);
    double sw = 0.0, ew = 0.0;
    closed->getWidthsAt(2, sw, ew);
    EXPECT_DOUBLE_EQ(sw, 0.2);
    EXPECT_DOUBLE_EQ(ew, 0.1);

    AcDbArc tilted(AcGePoint3d(1, 2, 3), AcGeVector3d(0.3, 0.1, 1), 2.0, 0.5, 2.0);
    AcGePoint3d s0, e0, s1, e1;
    tilted.getStartPoint(s0);
    tilted.getEndPoint(e0);
    ASSERT_EQ(tilted.reverseCurve(), Acad::eOk);
    tilted.getStartPoint(s1);
    tilted.getEndPoint(e1);
    EXPECT_LT(s1.distanceTo(e0), 1e-12);
    EXPECT_LT(e1.distanceTo(s0), 1e-12);
}

TEST(EntsCurve, PolylineAreaCountsArcSegments) {
    // A unit square whose bottom edge bulges outwards into a half disc of radius 1/2.
    std::unique_ptr<AcDbPolyline> sq(makePline({{0, 0, 1}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, true));
    double area = 0.0;
    ASSERT_EQ(sq->getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 1.0 + kPi / 8, 1e-12);
    // Bulging inwards removes it; the open outline counts as if closed.
    sq->setBulgeAt(0, -1.0);
    sq->getArea(area);
    EXPECT_NEAR(area, 1.0 - kPi / 8, 1e-12);
    sq->setClosed(false);
    sq->getArea(area);
    EXPECT_NEAR(area, 1.0 - kPi / 8, 1e-12);
    // Clockwise order gives the same absolute area.
    std::unique_ptr<AcDbPolyline> cw(
        makePline({{0, 1, 0}, {1, 1, 0}, {1, 0, -1}, {0, 0, 0}}, true));
    cw->getArea(area);
    EXPECT_NEAR(area, 1.0 + kPi / 8, 1e-12);

    AcDbCircle circle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 2.0);
    circle.getArea(area);
    EXPECT_NEAR(area, 4 * kPi, 1e-12);
    AcDbArc half(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi);
    half.getArea(area);
    EXPECT_NEAR(area, kPi / 2, 1e-12);
}

TEST(EntsCurve, PolylineSegmentKinds) {
    AcDbPolyline empty;
    EXPECT_EQ(empty.segType(0), AcDbPolyline::kEmpty);
    std::unique_ptr<AcDbPolyline> one(makePline({{1, 1, 0}}));
    EXPECT_EQ(one->segType(0), AcDbPolyline::kPoint);
    std::unique_ptr<AcDbPolyline> p(
        makePline({{0, 0, 0}, {1, 0, 0.4}, {2, 1, 0}, {2, 1, 0}, {0, 3, 0}}));
    EXPECT_EQ(p->segType(0), AcDbPolyline::kLine);
    EXPECT_EQ(p->segType(1), AcDbPolyline::kArc);
    EXPECT_EQ(p->segType(2), AcDbPolyline::kCoincident);
    EXPECT_EQ(p->segType(3), AcDbPolyline::kLine);
    EXPECT_EQ(p->segType(4), AcDbPolyline::kPoint); // the open end starts nothing
    EXPECT_EQ(p->segType(5), AcDbPolyline::kEmpty);
    p->setClosed(true);
    EXPECT_EQ(p->segType(4), AcDbPolyline::kLine);

    double param = 0.0;
    EXPECT_TRUE(p->onSegAt(0, AcGePoint2d(0.25, 0), param));
    EXPECT_NEAR(param, 0.25, 1e-12);
    EXPECT_FALSE(p->onSegAt(0, AcGePoint2d(0.25, 0.1), param));
    EXPECT_FALSE(p->onSegAt(9, AcGePoint2d(0.25, 0), param));

    // Widths: negative means none; constant width sets them all.
    AcDbPolyline w;
    w.addVertexAt(0, AcGePoint2d(0, 0), 0.0, -1.0, -5.0);
    w.addVertexAt(1, AcGePoint2d(1, 0), 0.0, 2.0, 3.0);
    double sw = 1.0, ew = 1.0, cw = 0.0;
    w.getWidthsAt(0, sw, ew);
    EXPECT_EQ(sw, 0.0);
    EXPECT_EQ(ew, 0.0);
    EXPECT_EQ(w.getConstantWidth(cw), Acad::eNotApplicable);
    w.setConstantWidth(0.5);
    EXPECT_EQ(w.getConstantWidth(cw), Acad::eOk);
    EXPECT_EQ(cw, 0.5);
    w.getWidthsAt(1, sw, ew);
    EXPECT_EQ(sw, 0.5);
    EXPECT_EQ(ew, 0.5);
    EXPECT_EQ(w.getWidthsAt(2, sw, ew), Acad::eInvalidIndex);
    EXPECT_EQ(w.removeVertexAt(7), Acad::eInvalidIndex);
}

TEST(EntsCurve, MirrorAndRotationKeepShapeAndFlipSense) {
    const AcGeMatrix3d mirror = mirrorAcrossYZ(), rot = rotationAbout(0.7, 3.0, -2.0);
    for (const AcGeMatrix3d* m : {&mirror, &rot}) {
        const bool mirrored = m == &mirror;
        SCOPED_TRACE(mirrored ? "mirror" : "rotation");
        for (auto& [name, c] : sampleCurves()) {
            SCOPED_TRACE(name);
            const double len = lengthOf(c.get());
            double s = 0.0, e = 0.0;
            c->getStartParam(s);
            c->getEndParam(e);
            std::vector<AcGePoint3d> before;
            for (int k = 0; k <= 8; ++k) {
                AcGePoint3d p;
                c->getPointAtParam(s + (e - s) * k / 8, p);
                before.push_back(apply(*m, p));
            }
            ASSERT_EQ(c->transformBy(*m), Acad::eOk);
            EXPECT_NEAR(lengthOf(c.get()), len, 1e-9 * len);
            // Every image point is on the new curve.
            for (const auto& p : before) {
                double param = 0.0;
                EXPECT_EQ(c->getParamAtPoint(p, param), Acad::eOk);
            }
        }
    }

    // In the plane, a mirrored arc keeps its normal and runs from the image of the old end.
    AcDbArc arc(AcGePoint3d(1, 0, 0), 2.0, 0.2, 1.4);
    AcGePoint3d s0, e0;
    arc.getStartPoint(s0);
    arc.getEndPoint(e0);
    ASSERT_EQ(arc.transformBy(mirror), Acad::eOk);
    EXPECT_TRUE(arc.normal().isEqualTo(AcGeVector3d(0, 0, 1)));
    AcGePoint3d s1, e1;
    arc.getStartPoint(s1);
    arc.getEndPoint(e1);
    EXPECT_LT(s1.distanceTo(apply(mirror, e0)), 1e-12);
    EXPECT_LT(e1.distanceTo(apply(mirror, s0)), 1e-12);

    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 0.5}, {2, 0, -0.3}, {2, 2, 0}}));
    ASSERT_EQ(pl->transformBy(mirror), Acad::eOk);
    double b0 = 0.0, b1 = 0.0;
    pl->getBulgeAt(0, b0);
    pl->getBulgeAt(1, b1);
    EXPECT_DOUBLE_EQ(b0, -0.5);
    EXPECT_DOUBLE_EQ(b1, 0.3);
    EXPECT_TRUE(pl->normal().isEqualTo(AcGeVector3d(0, 0, 1)));
    ASSERT_EQ(pl->transformBy(rot), Acad::eOk);
    pl->getBulgeAt(0, b0);
    EXPECT_DOUBLE_EQ(b0, -0.5); // a rotation keeps the sense

    // Non-uniform scaling cannot keep a circle round.
    AcGeMatrix3d stretch;
    stretch.entry[0][0] = 2.0;
    AcDbCircle circle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    EXPECT_EQ(circle.transformBy(stretch), Acad::eNotApplicable);
    EXPECT_EQ(circle.radius(), 1.0);
    std::unique_ptr<AcDbPolyline> straight(makePline({{0, 0, 0}, {1, 1, 0}}));
    EXPECT_EQ(straight->transformBy(stretch), Acad::eOk);
    AcGePoint3d p;
    straight->getPointAt(1, p);
    EXPECT_TRUE(p.isEqualTo(AcGePoint3d(2, 1, 0)));
}

TEST(EntsCurve, ArcExtentsTakeOnlyTheQuadrantsInTheSweep) {
    const double r2 = std::sqrt(0.5);
    struct Case {
        double start, end;
        AcGePoint3d lo, hi;
    };
    const Case cases[] = {
        {kPi / 4, 7 * kPi / 4, {-1, -1, 0}, {r2, 1, 0}},     // misses 0
        {7 * kPi / 4, 5 * kPi / 4, {-1, -r2, 0}, {1, 1, 0}}, // crosses 0, misses 3*pi/2
        {0.1, 0.2, {std::cos(0.2), std::sin(0.1), 0}, {std::cos(0.1), std::sin(0.2), 0}},
    };
    for (const auto& c : cases) {
        AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, c.start, c.end);
        AcDbExtents ext;
        ASSERT_EQ(arc.getGeomExtents(ext), Acad::eOk);
        EXPECT_LT(ext.minPoint().distanceTo(c.lo), 1e-12);
        EXPECT_LT(ext.maxPoint().distanceTo(c.hi), 1e-12);
    }
    // A polyline's arc segment likewise, at its elevation.
    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 1}, {2, 0, 0}}));
    pl->setElevation(3.0);
    AcDbExtents ext;
    ASSERT_EQ(pl->getGeomExtents(ext), Acad::eOk);
    EXPECT_LT(ext.minPoint().distanceTo(AcGePoint3d(0, -1, 3)), 1e-12);
    EXPECT_LT(ext.maxPoint().distanceTo(AcGePoint3d(2, 0, 3)), 1e-12);
}

TEST(EntsCurve, ExplodedPolylineIsItsLinesAndArcs) {
    std::unique_ptr<AcDbPolyline> pl(
        makePline({{0, 0, 0}, {4, 0, 1}, {4, 4, 0}, {4, 4, 0}, {0, 4, -0.5}, {0, 2, 0}}, true));
    pl->setColorIndex(5);
    pl->setElevation(1.0);
    pl->setConstantWidth(0.3);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(pl->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 5); // the coincident pair makes nothing
    int lines = 0, arcs = 0;
    double total = 0.0;
    for (int k = 0; k < parts.length(); ++k) {
        std::unique_ptr<AcDbCurve> c(static_cast<AcDbCurve*>(parts[k]));
        EXPECT_EQ(c->colorIndex(), 5);
        if (AcDbLine::cast(c.get())) ++lines;
        if (AcDbArc* a = AcDbArc::cast(c.get())) {
            ++arcs;
            EXPECT_NEAR(a->center().z, 1.0, 1e-12);
        }
        total += lengthOf(c.get());
        // Each part's ends are on the polyline.
        AcGePoint3d s, e;
        double param = 0.0;
        c->getStartPoint(s);
        c->getEndPoint(e);
        EXPECT_EQ(pl->getParamAtPoint(s, param), Acad::eOk);
        EXPECT_EQ(pl->getParamAtPoint(e, param), Acad::eOk);
    }
    EXPECT_EQ(lines, 3);
    EXPECT_EQ(arcs, 2);
    EXPECT_NEAR(total, lengthOf(pl.get()), 1e-9);
}

TEST(EntsCurve, GripsOffsetsAndSnaps) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0));
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    line.getGripPoints(grips, modes, ids);
    ASSERT_EQ(grips.length(), 3);
    EXPECT_TRUE(grips[2].isEqualTo(AcGePoint3d(2, 0, 0)));
    line.moveGripPointsAt(AcDbIntArray{2}, AcGeVector3d(0, 1, 0));
    EXPECT_TRUE(line.startPoint().isEqualTo(AcGePoint3d(0, 1, 0)));
    EXPECT_TRUE(line.endPoint().isEqualTo(AcGePoint3d(4, 1, 0)));

    AcDbVoidPtrArray off;
    ASSERT_EQ(line.getOffsetCurves(0.5, off), Acad::eOk);
    ASSERT_EQ(off.length(), 1);
    std::unique_ptr<AcDbLine> ol(static_cast<AcDbLine*>(off[0]));
    EXPECT_TRUE(ol->startPoint().isEqualTo(AcGePoint3d(0, 0.5, 0))); // right of travel
    AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi);
    off.removeAll();
    ASSERT_EQ(arc.getOffsetCurves(-0.25, off), Acad::eOk);
    std::unique_ptr<AcDbArc> oa(static_cast<AcDbArc*>(off[0]));
    EXPECT_DOUBLE_EQ(oa->radius(), 0.75);
    off.removeAll();
    EXPECT_EQ(arc.getOffsetCurves(-1.5, off), Acad::eInvalidInput);
    AcDbPolyline pl;
    EXPECT_EQ(pl.getOffsetCurves(1.0, off), Acad::eInvalidInput); // nothing to offset

    AcDbCircle circle(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1), 2.0);
    grips.removeAll();
    circle.getGripPoints(grips, modes, ids);
    ASSERT_EQ(grips.length(), 5);
    circle.moveGripPointsAt(AcDbIntArray{1}, AcGeVector3d(1, 0, 0));
    EXPECT_DOUBLE_EQ(circle.radius(), 3.0);

    AcGePoint3dArray snaps;
    const AcGeMatrix3d view;
    arc.getOsnapPoints(AcDb::kOsModeQuad, 0, AcGePoint3d(), AcGePoint3d(), view, snaps, ids);
    EXPECT_EQ(snaps.length(), 3); // 0, 90 and 180 degrees
    snaps.removeAll();
    arc.getOsnapPoints(AcDb::kOsModePerp, 0, AcGePoint3d(), AcGePoint3d(0.5, 0.5, 0), view, snaps,
                       ids);
    ASSERT_EQ(snaps.length(), 1);
    EXPECT_LT(snaps[0].distanceTo(AcGePoint3d(std::sqrt(0.5), std::sqrt(0.5), 0)), 1e-12);
    snaps.removeAll();
    circle.getOsnapPoints(AcDb::kOsModeTan, 0, AcGePoint3d(), AcGePoint3d(1, 7, 0), view, snaps,
                          ids);
    EXPECT_EQ(snaps.length(), 2);
}

TEST(EntsCurve, ClosestPointSeenAlongADirection) {
    const AcGeVector3d dir = AcGeVector3d(0.2, -0.3, 1).normal();
    // The distance between two points as a viewer looking along dir sees it.
    auto seen = [&](const AcGePoint3d& a, const AcGePoint3d& b) {
        AcGeVector3d d = b - a;
        d -= dir * d.dotProduct(dir);
        return d.length();
    };
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> coord(-6.0, 6.0);
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        const double len = lengthOf(c.get());
        std::vector<AcGePoint3d> samples;
        for (int k = 0; k <= 600; ++k) {
            AcGePoint3d p;
            c->getPointAtDist(len * k / 600, p);
            samples.push_back(p);
        }
        for (int trial = 0; trial < 10; ++trial) {
            const AcGePoint3d given(coord(rng), coord(rng), coord(rng));
            AcGePoint3d on;
            ASSERT_EQ(c->getClosestPointTo(given, dir, on), Acad::eOk);
            double param = 0.0;
            EXPECT_EQ(c->getParamAtPoint(on, param), Acad::eOk) << "not on the curve";
            for (const auto& s : samples)
                ASSERT_LE(seen(given, on), seen(given, s) + 1e-9);
        }
    }
}

TEST(EntsCurve, ExtentsHoldEverySampleAndTouchIt) {
    for (auto& [name, c] : sampleCurves()) {
        SCOPED_TRACE(name);
        AcDbExtents ext;
        ASSERT_EQ(c->getGeomExtents(ext), Acad::eOk);
        const double len = lengthOf(c.get());
        AcGePoint3d lo(1e300, 1e300, 1e300), hi(-1e300, -1e300, -1e300);
        for (int k = 0; k <= 2000; ++k) {
            AcGePoint3d p;
            c->getPointAtDist(len * k / 2000, p);
            for (unsigned a = 0; a < 3; ++a) {
                EXPECT_GE(p[a], ext.minPoint()[a] - 1e-9);
                EXPECT_LE(p[a], ext.maxPoint()[a] + 1e-9);
                lo[a] = std::min(lo[a], p[a]);
                hi[a] = std::max(hi[a], p[a]);
            }
        }
        // Tight: no face of the box stands off the curve by more than a step of the walk.
        for (unsigned a = 0; a < 3; ++a) {
            EXPECT_NEAR(lo[a], ext.minPoint()[a], len / 2000);
            EXPECT_NEAR(hi[a], ext.maxPoint()[a], len / 2000);
        }
    }
}
