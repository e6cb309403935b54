// The 2D and 3D polylines: vertex ownership and iteration, vertex types and fitted forms,
// plane placement, explode, offsets, areas, extension and drawing.
#include "cmdline.h"
#include "dbents.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

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

// The vertex types in iteration order.
template <class Poly, class Vertex> std::vector<int> typesOf(const Poly& p) {
    std::vector<int> out;
    std::unique_ptr<AcDbObjectIterator> it(p.vertexIterator());
    for (it->start(); !it->done(); it->step())
        out.push_back(Vertex::cast(it->entity())->vertexType());
    return out;
}

const AcGePoint3dArray kFrame{{0, 0, 0}, {4, 0, 1}, {5, 4, 2}, {1, 5, 0}};

} // namespace

TEST(EntsHeavyPoly, VerticesAreOwnedAndIterated) {
    AcDb3dPolyline p;
    auto* a = new AcDb3dPolylineVertex(AcGePoint3d(0, 0, 0));
    auto* c = new AcDb3dPolylineVertex(AcGePoint3d(2, 0, 1));
    ASSERT_EQ(p.appendVertex(a), Acad::eOk);
    ASSERT_EQ(p.appendVertex(c), Acad::eOk);
    EXPECT_EQ(p.appendVertex(a), Acad::eInvalidInput); // already there
    EXPECT_EQ(p.appendVertex(nullptr), Acad::eNullObjectPointer);
    auto* b = new AcDb3dPolylineVertex(AcGePoint3d(1, 1, 0));
    ASSERT_EQ(p.insertVertexAt(a, b), Acad::eOk); // after a
    AcDb3dPolylineVertex stranger;
    auto* d = new AcDb3dPolylineVertex(AcGePoint3d(5, 5, 5));
    EXPECT_EQ(p.insertVertexAt(&stranger, d), Acad::eInvalidInput);
    delete d; // refused, so still ours
    std::vector<AcGePoint3d> seen;
    std::unique_ptr<AcDbObjectIterator> it(p.vertexIterator());
    for (it->start(); !it->done(); it->step()) {
        EXPECT_TRUE(it->objectId().isNull());
        seen.push_back(AcDb3dPolylineVertex::cast(it->entity())->position());
    }
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_TRUE(seen[1].isEqualTo(AcGePoint3d(1, 1, 0)));
    // Backwards from the end, and to a given vertex.
    it->start(true);
    EXPECT_EQ(it->entity(), c);
    it->step(true);
    EXPECT_EQ(it->entity(), b);
    it->setPosition(a);
    EXPECT_EQ(it->entity(), a);
    it->step(true);
    EXPECT_TRUE(it->done());
    EXPECT_EQ(it->entity(), nullptr);
    EXPECT_NEAR(lengthOf(p), std::sqrt(3.0) + std::sqrt(2.0), 1e-12);

    // A 2D vertex lies in the polyline's plane system at its elevation.
    AcDb2dPolyline p2;
    p2.setNormal(AcGeVector3d(0, 0, -1));
    p2.setElevation(2.0);
    auto* v = new AcDb2dVertex(AcGePoint3d(3, 1, 7));
    ASSERT_EQ(p2.appendVertex(v), Acad::eOk);
    EXPECT_EQ(v->position().z, 2.0);
    EXPECT_TRUE(p2.vertexPosition(*v).isEqualTo(AcGePoint3d(-3, 1, -2)));
    // Closing a vertex that lives in its polyline is harmless.
    EXPECT_EQ(v->close(), Acad::eOk);
}

TEST(EntsHeavyPoly, SplineFitKeepsTheFrameAsControlVertices) {
    AcDb3dPolyline p(AcDb::k3dCubicSplinePoly, kFrame);
    const std::vector<int> types = typesOf<AcDb3dPolyline, AcDb3dPolylineVertex>(p);
    ASSERT_EQ(types.size(), 4u + 1 * 8 + 1);
    for (size_t i = 0; i < types.size(); ++i)
        EXPECT_EQ(types[i], i < 4 ? AcDb::k3dControlVertex : AcDb::k3dFitVertex);
    EXPECT_EQ(AcDb::k3dControlVertex, 1);
    // The curve is the run of fit vertices: from the first frame point to the last.
    AcGePoint3d s, e;
    p.getStartPoint(s);
    p.getEndPoint(e);
    EXPECT_TRUE(s.isEqualTo(kFrame[0]));
    EXPECT_TRUE(e.isEqualTo(kFrame[3]));
    double end = 0.0;
    p.getEndParam(end);
    EXPECT_EQ(end, 8.0);
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    p.getGripPoints(grips, modes, ids);
    EXPECT_EQ(grips.length(), 4); // the frame
    // Moving a frame point refits.
    p.moveGripPointsAt(AcDbIntArray{3}, AcGeVector3d(0, 0, 3));
    p.getEndPoint(e);
    EXPECT_TRUE(e.isEqualTo(AcGePoint3d(1, 5, 3)));
    ASSERT_EQ(p.straighten(), Acad::eOk);
    EXPECT_EQ(p.polyType(), AcDb::k3dSimplePoly);
    const std::vector<int> simple = typesOf<AcDb3dPolyline, AcDb3dPolylineVertex>(p);
    EXPECT_EQ(simple, std::vector<int>(4, 0));

    // In 2D the numbers differ: value 1 is the vertex a curve fit adds.
    AcDb2dPolyline q(AcDb::k2dQuadSplinePoly, kFrame, 0.0, true);
    const std::vector<int> t2 = typesOf<AcDb2dPolyline, AcDb2dVertex>(q);
    ASSERT_EQ(t2.size(), 4u + 4 * 8);
    EXPECT_EQ(t2.front(), AcDb::k2dSplineCtlVertex);
    EXPECT_EQ(t2.back(), AcDb::k2dSplineFitVertex);
    EXPECT_TRUE(q.isClosed());
}

TEST(EntsHeavyPoly, CurveFitMeetsItsVerticesSmoothly) {
    AcDb2dPolyline p(AcDb::k2dFitCurvePoly, kFrame);
    const std::vector<int> types = typesOf<AcDb2dPolyline, AcDb2dVertex>(p);
    EXPECT_EQ(types, (std::vector<int>{0, 1, 0, 1, 0, 1, 0}));
    EXPECT_EQ(AcDb::k2dCurveFitVertex, 1);
    for (const auto& v : kFrame)
        EXPECT_LT(distanceTo(p, AcGePoint3d(v.x, v.y, 0)), 1e-12);
    // Tangent at every vertex and joint, from both sides.
    double end = 0.0;
    p.getEndParam(end);
    for (double t = 1.0; t < end; t += 1.0) {
        AcGeVector3d before, after;
        p.getFirstDeriv(t - 1e-9, before);
        p.getFirstDeriv(t + 1e-9, after);
        EXPECT_LT((before.normal() - after.normal()).length(), 1e-6) << t;
    }
    ASSERT_EQ(p.straighten(), Acad::eOk);
    EXPECT_NEAR(lengthOf(p), 4 + 2 * std::sqrt(17.0), 1e-12);
}

TEST(EntsHeavyPoly, ExplodeOffsetAreaAndExtend) {
    AcGeDoubleArray bulges{0.0, 1.0, 0.0, 0.0};
    AcGePoint3dArray square{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}};
    AcDb2dPolyline p(AcDb::k2dSimplePoly, square, 1.0, true, 0.0, 0.0, &bulges);
    p.setColorIndex(4);
    double area = 0.0;
    ASSERT_EQ(p.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 16 + 2 * kPi, 1e-12);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(p.explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 4);
    double total = 0.0;
    int arcs = 0;
    for (void* v : parts) {
        std::unique_ptr<AcDbCurve> c(static_cast<AcDbCurve*>(v));
        EXPECT_EQ(c->colorIndex(), 4);
        arcs += AcDbArc::cast(c.get()) != nullptr;
        total += lengthOf(*c);
    }
    EXPECT_EQ(arcs, 1);
    EXPECT_NEAR(total, lengthOf(p), 1e-12);

    AcDbVoidPtrArray off;
    ASSERT_EQ(p.getOffsetCurves(-0.5, off), Acad::eOk);
    ASSERT_EQ(off.length(), 1);
    std::unique_ptr<AcDb2dPolyline> o(AcDb2dPolyline::cast(static_cast<AcRxObject*>(off[0])));
    ASSERT_TRUE(o);
    EXPECT_EQ(o->elevation(), 1.0);
    o->getArea(area);
    EXPECT_NEAR(area, 3.5 * 3 + kPi * 1.5 * 1.5 / 2, 1e-9); // counter-clockwise: left goes in

    AcDb2dPolyline open(AcDb::k2dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}});
    ASSERT_EQ(open.extend(false, AcGePoint3d(2, 5, 0)), Acad::eOk);
    AcGePoint3d e;
    open.getEndPoint(e);
    EXPECT_TRUE(e.isEqualTo(AcGePoint3d(2, 5, 0)));

    AcDb3dPolyline p3(AcDb::k3dSimplePoly, kFrame);
    parts.removeAll();
    ASSERT_EQ(p3.explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 3);
    for (void* v : parts)
        delete static_cast<AcDbCurve*>(v);
    off.removeAll();
    EXPECT_EQ(p3.getOffsetCurves(0.5, off), Acad::eNotApplicable); // not flat
    EXPECT_EQ(p3.getArea(area), Acad::eNotApplicable);
    ASSERT_EQ(p3.extend(-0.5), Acad::eOk);
    AcGePoint3d s;
    p3.getStartPoint(s);
    EXPECT_TRUE(s.isEqualTo(AcGePoint3d(-2, 0, -0.5)));
    ASSERT_EQ(p3.extend(true, AcGePoint3d(-4, 0, -1)), Acad::eOk);
    p3.getStartPoint(s);
    EXPECT_TRUE(s.isEqualTo(AcGePoint3d(-4, 0, -1)));

    // A flat 3D polyline in a tilted plane offsets in that plane.
    AcDb3dPolyline flat(AcDb::k3dSimplePoly,
                        AcGePoint3dArray{{0, 0, 0}, {4, 0, 0}, {4, 3, 3}, {0, 3, 3}}, true);
    flat.getArea(area);
    EXPECT_NEAR(area, 4 * std::sqrt(18.0), 1e-12);
    off.removeAll();
    ASSERT_EQ(flat.getOffsetCurves(0.5, off), Acad::eOk);
    std::unique_ptr<AcDbCurve> fo(static_cast<AcDbCurve*>(off[0]));
    AcGePoint3d q;
    fo->getStartPoint(q);
    EXPECT_NEAR(q.y, q.z, 1e-12); // still in the plane y = z
    // The rectangle grows or shrinks by the distance on every side.
    double offArea = 0.0;
    ASSERT_EQ(fo->getArea(offArea), Acad::eOk);
    const double side = std::sqrt(18.0);
    EXPECT_TRUE(std::fabs(offArea - 5 * (side + 1)) < 1e-9 ||
                std::fabs(offArea - 3 * (side - 1)) < 1e-9)
        << offArea;
}

TEST(EntsHeavyPoly, DrawingAndListing) {
    AcGeDoubleArray bulges{1.0, 0.0, 0.0};
    AcDb2dPolyline p(AcDb::k2dSimplePoly, AcGePoint3dArray{{0, 0, 0}, {2, 0, 0}, {2, 3, 0}}, 0.0,
                     false, 0.0, 0.0, &bulges);
    AcGiRecorder rec;
    p.worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.count(AcGiRecordedKind::kCircularArc), 1);
    EXPECT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);

    rec.clear();
    AcDb3dPolyline p3(AcDb::k3dSimplePoly, kFrame, true);
    p3.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);
    const AcGePoint3dArray& pts = rec.items()[0].points;
    ASSERT_EQ(pts.length(), 5); // closed: back to the start
    EXPECT_TRUE(pts[4].isEqualTo(kFrame[0]));

    AcutCapture capture;
    p3.list();
    EXPECT_NE(capture.text().find(L"Closed Simple"), std::wstring::npos);
    EXPECT_NE(capture.text().find(L"at point X=    5.0000  Y=    4.0000  Z=    2.0000"),
              std::wstring::npos);
}
