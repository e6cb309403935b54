// Intersections between every kind of curve in the four extension modes: the exact
// line-and-arc pairs and the evaluated ones (ellipses, splines, heavy polylines).
#include "dbents.h"
#include "gecurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

AcDbPolyline* makePline(std::initializer_list<std::array<double, 3>> verts, bool closed = false) {
    auto* p = new AcDbPolyline();
    unsigned i = 0;
    for (const auto& v : verts)
        p->addVertexAt(i++, AcGePoint2d(v[0], v[1]), v[2]);
    p->setClosed(closed);
    return p;
}

bool extendsThis(AcDb::Intersect m) {
    return m == AcDb::kExtendThis || m == AcDb::kExtendBoth;
}
bool extendsArg(AcDb::Intersect m) {
    return m == AcDb::kExtendArg || m == AcDb::kExtendBoth;
}

double distanceTo(const AcDbCurve* c, const AcGePoint3d& p, bool extend) {
    AcGePoint3d on;
    EXPECT_EQ(c->getClosestPointTo(p, on, extend), Acad::eOk);
    return on.distanceTo(p);
}

AcGePoint3dArray meet(const AcDbCurve* a, const AcDbCurve* b, AcDb::Intersect mode) {
    AcGePoint3dArray pts;
    EXPECT_EQ(a->intersectWith(b, mode, pts), Acad::eOk);
    return pts;
}

bool has(const AcGePoint3dArray& pts, const AcGePoint3d& p) {
    for (const auto& q : pts)
        if (q.distanceTo(p) < 1e-9) return true;
    return false;
}

struct Shape {
    std::string name;
    std::unique_ptr<AcDbCurve> curve;
};

std::vector<Shape> shapes() {
    std::vector<Shape> out;
    out.push_back(
        {"line", std::make_unique<AcDbLine>(AcGePoint3d(-3, -1, 0), AcGePoint3d(1.2, 0.7, 0))});
    out.push_back({"arc", std::make_unique<AcDbArc>(AcGePoint3d(0.5, 0.5, 0), 1.6, 0.4, 3.9)});
    out.push_back({"circle", std::make_unique<AcDbCircle>(AcGePoint3d(-0.5, 0, 0),
                                                          AcGeVector3d(0, 0, 1), 1.1)});
    out.push_back({"pline", std::unique_ptr<AcDbCurve>(makePline(
                                {{-2, -2, 0}, {2, -1.5, 0.6}, {1.5, 2, 0}, {-1, 1.5, -0.4}}))});
    out.push_back({"pline closed", std::unique_ptr<AcDbCurve>(makePline(
                                       {{-1, -1, 0.3}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}, true))});
    out.push_back(
        {"ellipse", std::make_unique<AcDbEllipse>(AcGePoint3d(0.3, -0.2, 0), AcGeVector3d(0, 0, 1),
                                                  AcGeVector3d(2, 0.5, 0), 0.5)});
    out.push_back({"ellipse arc",
                   std::make_unique<AcDbEllipse>(AcGePoint3d(-0.5, 0.5, 0), AcGeVector3d(0, 0, 1),
                                                 AcGeVector3d(0, 1.5, 0), 0.6, 0.3, 4.5)});
    AcGePoint3dArray fit;
    for (const auto& p :
         {AcGePoint3d(-2.5, -0.5, 0), AcGePoint3d(-1, 1.2, 0), AcGePoint3d(0.5, -1, 0),
          AcGePoint3d(2, 0.8, 0), AcGePoint3d(2.8, -0.3, 0)})
        fit.append(p);
    out.push_back({"spline", std::make_unique<AcDbSpline>(fit)});
    AcGePoint3dArray v2;
    for (const auto& p : {AcGePoint3d(-2, 1, 0), AcGePoint3d(0, -2, 0), AcGePoint3d(2, 1.5, 0)})
        v2.append(p);
    AcGeDoubleArray bulges{0.3, -0.4, 0.0};
    out.push_back({"2d pline", std::make_unique<AcDb2dPolyline>(AcDb::k2dSimplePoly, v2, 0.0, false,
                                                                0.0, 0.0, &bulges)});
    AcGePoint3dArray v3;
    for (const auto& p :
         {AcGePoint3d(-2.2, -1.2, 0), AcGePoint3d(1, 2.2, 0), AcGePoint3d(2.5, -1.8, 0)})
        v3.append(p);
    out.push_back({"3d pline", std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, v3)});
    return out;
}

} // namespace

TEST(EntsIntersect, EveryPairAndModeGivesPointsOnBoth) {
    const AcDb::Intersect modes[] = {AcDb::kOnBothOperands, AcDb::kExtendThis, AcDb::kExtendArg,
                                     AcDb::kExtendBoth};
    auto all = shapes();
    int total = 0;
    for (auto& a : all)
        for (auto& b : all) {
            if (&a == &b) continue;
            for (AcDb::Intersect mode : modes) {
                SCOPED_TRACE(a.name + " x " + b.name + " mode " + std::to_string(mode));
                const AcGePoint3dArray pts = meet(a.curve.get(), b.curve.get(), mode);
                for (const auto& p : pts) {
                    EXPECT_LT(distanceTo(a.curve.get(), p, extendsThis(mode)), 1e-9);
                    EXPECT_LT(distanceTo(b.curve.get(), p, extendsArg(mode)), 1e-9);
                }
                for (int i = 0; i < pts.length(); ++i)
                    for (int j = i + 1; j < pts.length(); ++j)
                        EXPECT_GT(pts[i].distanceTo(pts[j]), 1e-9);
                // The same points either way round.
                const AcGePoint3dArray back =
                    meet(b.curve.get(), a.curve.get(),
                         mode == AcDb::kExtendThis
                             ? AcDb::kExtendArg
                             : (mode == AcDb::kExtendArg ? AcDb::kExtendThis : mode));
                EXPECT_EQ(back.length(), pts.length());
                for (const auto& p : back)
                    EXPECT_TRUE(has(pts, p));
                total += pts.length();
            }
        }
    EXPECT_GT(total, 300); // the shapes do cross
}

TEST(EntsIntersect, OnlyTheExtensionMeets) {
    // Lines: one stops short of the other.
    AcDbLine a(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)),
        b(AcGePoint3d(2, -1, 0), AcGePoint3d(2, 1, 0));
    EXPECT_EQ(meet(&a, &b, AcDb::kOnBothOperands).length(), 0);
    EXPECT_EQ(meet(&a, &b, AcDb::kExtendArg).length(), 0);
    const AcGePoint3dArray p = meet(&a, &b, AcDb::kExtendThis);
    ASSERT_EQ(p.length(), 1);
    EXPECT_TRUE(p[0].isEqualTo(AcGePoint3d(2, 0, 0)));
    EXPECT_EQ(meet(&a, &b, AcDb::kExtendBoth).length(), 1);

    // An arc's circle.
    AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi / 2);
    AcDbLine v(AcGePoint3d(-0.5, -2, 0), AcGePoint3d(-0.5, 2, 0));
    EXPECT_EQ(meet(&arc, &v, AcDb::kOnBothOperands).length(), 0);
    const AcGePoint3dArray q = meet(&arc, &v, AcDb::kExtendThis);
    ASSERT_EQ(q.length(), 2);
    EXPECT_TRUE(has(q, AcGePoint3d(-0.5, std::sqrt(0.75), 0)));

    // An open polyline's end segments.
    std::unique_ptr<AcDbPolyline> pl(makePline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}));
    AcDbLine top(AcGePoint3d(-1, 2, 0), AcGePoint3d(3, 2, 0));
    EXPECT_EQ(meet(pl.get(), &top, AcDb::kOnBothOperands).length(), 0);
    const AcGePoint3dArray r = meet(pl.get(), &top, AcDb::kExtendThis);
    ASSERT_EQ(r.length(), 1);
    EXPECT_TRUE(r[0].isEqualTo(AcGePoint3d(1, 2, 0)));
    AcDbLine left(AcGePoint3d(-2, -1, 0), AcGePoint3d(-2, 1, 0));
    const AcGePoint3dArray s = meet(pl.get(), &left, AcDb::kExtendThis);
    ASSERT_EQ(s.length(), 1);
    EXPECT_TRUE(s[0].isEqualTo(AcGePoint3d(-2, 0, 0)));
    // A closed polyline has no ends to extend.
    pl->setClosed(true);
    EXPECT_EQ(meet(pl.get(), &top, AcDb::kExtendThis).length(), 0);
}

TEST(EntsIntersect, TangentsSharedVerticesAndCircles) {
    AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    AcDbLine touch(AcGePoint3d(-2, 1, 0), AcGePoint3d(2, 1, 0));
    const AcGePoint3dArray t = meet(&c, &touch, AcDb::kOnBothOperands);
    ASSERT_EQ(t.length(), 1);
    EXPECT_TRUE(t[0].isEqualTo(AcGePoint3d(0, 1, 0)));

    AcDbCircle outside(AcGePoint3d(3, 0, 0), AcGeVector3d(0, 0, 1), 2.0);
    const AcGePoint3dArray o = meet(&c, &outside, AcDb::kOnBothOperands);
    ASSERT_EQ(o.length(), 1);
    EXPECT_TRUE(o[0].isEqualTo(AcGePoint3d(1, 0, 0)));
    AcDbCircle inside(AcGePoint3d(0.5, 0, 0), AcGeVector3d(0, 0, 1), 0.5);
    EXPECT_EQ(meet(&c, &inside, AcDb::kOnBothOperands).length(), 1);
    AcDbCircle crossing(AcGePoint3d(1, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    const AcGePoint3dArray x = meet(&c, &crossing, AcDb::kOnBothOperands);
    ASSERT_EQ(x.length(), 2);
    EXPECT_TRUE(has(x, AcGePoint3d(0.5, std::sqrt(0.75), 0)));
    // A circle facing the other way is the same circle of points.
    AcDbCircle flipped(AcGePoint3d(1, 0, 0), AcGeVector3d(0, 0, -1), 1.0);
    EXPECT_EQ(meet(&c, &flipped, AcDb::kOnBothOperands).length(), 2);

    std::unique_ptr<AcDbPolyline> square(
        makePline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, true));
    AcDbLine diagonal(AcGePoint3d(-1, -1, 0), AcGePoint3d(2, 2, 0));
    const AcGePoint3dArray d = meet(square.get(), &diagonal, AcDb::kOnBothOperands);
    ASSERT_EQ(d.length(), 2); // each corner once, though two segments meet there
    EXPECT_TRUE(has(d, AcGePoint3d(0, 0, 0)));
    EXPECT_TRUE(has(d, AcGePoint3d(1, 1, 0)));

    // Polyline arcs against arcs.
    std::unique_ptr<AcDbPolyline> bump(
        makePline({{-2, 0, 1}, {2, 0, 0}, {3, 0, 0}})); // lower half circle r 2
    AcDbArc upper(AcGePoint3d(0, -2, 0), 2.0, 0.0, kPi);
    const AcGePoint3dArray u = meet(bump.get(), &upper, AcDb::kOnBothOperands);
    EXPECT_EQ(u.length(), 2);
    EXPECT_TRUE(has(u, AcGePoint3d(-std::sqrt(3.0), -1, 0)) &&
                has(u, AcGePoint3d(std::sqrt(3.0), -1, 0)));
    // Extending the first arc segment round its circle meets nothing new; the last segment
    // extends to the right, away from the upper arc's top at the origin.
    EXPECT_EQ(meet(bump.get(), &upper, AcDb::kExtendThis).length(), 2);
    // Extending the upper arc to its circle adds where it meets the straight run.
    const AcGePoint3dArray full = meet(bump.get(), &upper, AcDb::kExtendArg);
    EXPECT_EQ(full.length(), 2);
}

TEST(EntsIntersect, OutOfPlaneAndProjected) {
    AcDbCircle c(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 1.0);
    AcDbLine through(AcGePoint3d(1, 0, -1), AcGePoint3d(1, 0, 1));
    AcDbLine inside(AcGePoint3d(0.5, 0, -1), AcGePoint3d(0.5, 0, 1));
    AcDbLine above(AcGePoint3d(-2, 0, 5), AcGePoint3d(2, 0, 5));
    const AcGePoint3dArray p = meet(&c, &through, AcDb::kOnBothOperands);
    ASSERT_EQ(p.length(), 1);
    EXPECT_TRUE(p[0].isEqualTo(AcGePoint3d(1, 0, 0)));
    EXPECT_EQ(meet(&c, &inside, AcDb::kOnBothOperands).length(), 0);
    EXPECT_EQ(meet(&c, &above, AcDb::kOnBothOperands).length(), 0);

    // Projected onto the world plane the line above crosses the circle twice; the points are on
    // this.
    const AcGePlane xy(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1));
    AcGePoint3dArray pp;
    ASSERT_EQ(c.intersectWith(&above, AcDb::kOnBothOperands, xy, pp), Acad::eOk);
    ASSERT_EQ(pp.length(), 2);
    EXPECT_TRUE(has(pp, AcGePoint3d(1, 0, 0)) && has(pp, AcGePoint3d(-1, 0, 0)));
    pp.removeAll();
    ASSERT_EQ(above.intersectWith(&c, AcDb::kOnBothOperands, xy, pp), Acad::eOk);
    EXPECT_TRUE(has(pp, AcGePoint3d(1, 0, 5)) && has(pp, AcGePoint3d(-1, 0, 5)));

    // Two circles in crossing planes meet on the planes' common line.
    AcDbCircle upright(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 1, 0), 1.0);
    const AcGePoint3dArray q = meet(&c, &upright, AcDb::kOnBothOperands);
    ASSERT_EQ(q.length(), 2);
    EXPECT_TRUE(has(q, AcGePoint3d(1, 0, 0)) && has(q, AcGePoint3d(-1, 0, 0)));
    AcDbCircle aside(AcGePoint3d(3, 0, 0), AcGeVector3d(0, 1, 0), 1.0);
    EXPECT_EQ(meet(&c, &aside, AcDb::kExtendBoth).length(), 0);
    // Skew lines never meet; lines in a tilted plane do.
    AcDbLine skew(AcGePoint3d(0, 1, 1), AcGePoint3d(0, -1, 1));
    EXPECT_EQ(meet(&above, &skew, AcDb::kExtendBoth).length(), 0);
    AcDbLine l1(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 2)),
        l2(AcGePoint3d(2, 0, 0), AcGePoint3d(0, 2, 2));
    const AcGePoint3dArray m = meet(&l1, &l2, AcDb::kOnBothOperands);
    ASSERT_EQ(m.length(), 1);
    EXPECT_TRUE(m[0].isEqualTo(AcGePoint3d(1, 1, 1)));

    AcDbText text;
    AcGePoint3dArray none;
    EXPECT_NE(c.intersectWith(&text, AcDb::kOnBothOperands, none), Acad::eOk);
    EXPECT_EQ(none.length(), 0);
}

TEST(EntsIntersect, EveryCrossingOfALineIsFound) {
    // Against an endless line, the crossings are where the signed distance changes sign along
    // the curve: a dense walk counts them independently.
    const AcGePoint3d bases[] = {{0.1, 0.2, 0}, {-0.7, 0.33, 0}, {0.45, -1.1, 0}};
    const double angles[] = {0.17, 1.1, 2.3, 3.0};
    auto all = shapes();
    for (auto& s : all) {
        SCOPED_TRACE(s.name);
        double e = 0.0, len = 0.0;
        s.curve->getEndParam(e);
        s.curve->getDistAtParam(e, len);
        std::vector<AcGePoint3d> walk;
        for (int k = 0; k <= 4000; ++k) {
            AcGePoint3d p;
            s.curve->getPointAtDist(len * k / 4000, p);
            walk.push_back(p);
        }
        for (const auto& base : bases)
            for (double a : angles) {
                const AcGeVector3d dir(std::cos(a), std::sin(a), 0);
                AcDbLine line(base, base + dir);
                int changes = 0;
                for (size_t k = 1; k < walk.size(); ++k) {
                    const double d0 = dir.crossProduct(walk[k - 1] - base).z,
                                 d1 = dir.crossProduct(walk[k] - base).z;
                    changes += (d0 < 0) != (d1 < 0);
                }
                const AcGePoint3dArray pts = meet(s.curve.get(), &line, AcDb::kExtendArg);
                EXPECT_EQ(pts.length(), changes) << base.x << " " << a;
            }
    }
}

TEST(EntsIntersect, EvaluatedCurvesInSpaceAndSeenAlongAnAxis) {
    // A spline standing in the YZ plane rests on an ellipse lying in the XY plane.
    AcDbEllipse e(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 2, 0), 0.5);
    AcDbSpline arch(AcGePoint3dArray{{0, -2, 0}, {0, 0, 1.5}, {0, 2, 0}});
    const AcGePoint3dArray p = meet(&e, &arch, AcDb::kOnBothOperands);
    ASSERT_EQ(p.length(), 2);
    EXPECT_TRUE(has(p, AcGePoint3d(0, 2, 0)) && has(p, AcGePoint3d(0, -2, 0)));
    // A 3D polyline piercing the ellipse's plane inside it misses; at its rim it meets.
    AcDb3dPolyline through(AcDb::k3dSimplePoly, AcGePoint3dArray{{0, 0, -1}, {0, 0, 1}});
    EXPECT_EQ(meet(&e, &through, AcDb::kOnBothOperands).length(), 0);
    AcDb3dPolyline rim(AcDb::k3dSimplePoly, AcGePoint3dArray{{1, 0, -1}, {1, 0, 1}, {3, 0, 2}});
    const AcGePoint3dArray r = meet(&rim, &e, AcDb::kOnBothOperands);
    ASSERT_EQ(r.length(), 1);
    EXPECT_TRUE(r[0].isEqualTo(AcGePoint3d(1, 0, 0)));

    // Seen from above, the arch is the segment x = 0 across the ellipse: two points, on the arch.
    AcGePoint3dArray pp;
    ASSERT_EQ(arch.intersectWith(&e, AcDb::kOnBothOperands,
                                 AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1)), pp),
              Acad::eOk);
    EXPECT_EQ(pp.length(), 2);
    AcDbLine high(AcGePoint3d(-3, 1, 5), AcGePoint3d(3, 1, 5));
    pp.removeAll();
    ASSERT_EQ(high.intersectWith(&arch, AcDb::kOnBothOperands,
                                 AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1)), pp),
              Acad::eOk);
    ASSERT_EQ(pp.length(), 1);
    EXPECT_TRUE(pp[0].isEqualTo(AcGePoint3d(0, 1, 5))); // on this, the line
    // An arc seen at a slant is an ellipse in the view: the crossings are still found.
    AcDbCircle tilted(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 1), 1.0);
    AcDbLine across(AcGePoint3d(-2, 0, 3), AcGePoint3d(2, 0, 3));
    pp.removeAll();
    ASSERT_EQ(tilted.intersectWith(&across, AcDb::kOnBothOperands,
                                   AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1)), pp),
              Acad::eOk);
    ASSERT_EQ(pp.length(), 2);
    for (const auto& q : pp)
        EXPECT_NEAR(std::fabs(q.x), std::sqrt(0.5), 1e-9);

    // Extending an elliptical arc takes in the rest of its ellipse; a spline does not extend.
    AcDbEllipse arc(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0), 0.5, 0.0,
                    kPi);
    AcDbLine low(AcGePoint3d(-3, -0.5, 0), AcGePoint3d(3, -0.5, 0));
    EXPECT_EQ(meet(&arc, &low, AcDb::kOnBothOperands).length(), 0);
    EXPECT_EQ(meet(&arc, &low, AcDb::kExtendThis).length(), 2);
    AcDbSpline shortS(AcGePoint3dArray{{-1, 1, 0}, {0, 2, 0}, {1, 1, 0}});
    EXPECT_EQ(meet(&shortS, &low, AcDb::kExtendThis).length(), 0);
}
