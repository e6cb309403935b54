// The hatch: loops of both forms, associated objects, area, patterns, drawing, transforms and
// filing.
#include "cmdline.h"
#include "dbents.h"
#include "dbfilers.h"
#include "dbsymtb.h"
#include "genurbs.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

AcDbObjectId noIds(AcDbHandle) {
    return AcDbObjectId();
}

AcGePoint2dArray square(double x0, double y0, double side) {
    return AcGePoint2dArray{{x0, y0}, {x0 + side, y0}, {x0 + side, y0 + side}, {x0, y0 + side}};
}

// A circle as two half arcs, as an edge loop.
void appendCircle(AcDbHatch& h, Adesk::Int32 type, const AcGePoint2d& c, double r) {
    AcGeCircArc2d a(c, r, 0.0, kPi), b(c, r, kPi, 2 * kPi);
    AcGeVoidPointerArray edges{&a, &b};
    AcGeIntArray types{AcDbHatch::kCirArc, AcDbHatch::kCirArc};
    ASSERT_EQ(h.appendLoop(type, edges, types), Acad::eOk);
}

// A 10 x 10 square with a round hole of radius 2 in the middle, off the unit grid so that no
// pattern line runs along its edges.
std::unique_ptr<AcDbHatch> squareWithHole() {
    auto h = std::make_unique<AcDbHatch>();
    EXPECT_EQ(h->appendLoop(AcDbHatch::kExternal, square(0.5, 0.5, 10), AcGeDoubleArray()),
              Acad::eOk);
    appendCircle(*h, AcDbHatch::kDefault, AcGePoint2d(5.5, 5.5), 2.0);
    return h;
}

bool insideSquareOutsideHole(const AcGePoint2d& p) {
    return p.x > 0.5 - 1e-9 && p.x < 10.5 + 1e-9 && p.y > 0.5 - 1e-9 && p.y < 10.5 + 1e-9 &&
           p.distanceTo(AcGePoint2d(5.5, 5.5)) > 2.0 - 1e-9;
}

// Points along every loop, in world coordinates, for comparing two hatches.
std::vector<AcGePoint3d> outline(const AcDbHatch& h) {
    std::vector<AcGePoint3d> out;
    for (int i = 0; i < h.numLoops(); ++i) {
        Adesk::Int32 type = 0;
        AcGeVoidPointerArray edges;
        AcGeIntArray types;
        EXPECT_EQ(h.getLoopAt(i, type, edges, types), Acad::eOk);
        for (void* e : edges) {
            AcGePoint2dArray pts;
            static_cast<const AcGeCurve2d*>(e)->getSamplePoints(5, pts);
            for (const auto& p : pts)
                out.emplace_back(p.x, p.y, 0.0);
        }
    }
    return out;
}

void expectSameHatch(const AcDbHatch& a, const AcDbHatch& b) {
    ASSERT_EQ(a.numLoops(), b.numLoops());
    for (int i = 0; i < a.numLoops(); ++i)
        EXPECT_EQ(a.loopTypeAt(i), b.loopTypeAt(i));
    const auto pa = outline(a), pb = outline(b);
    ASSERT_EQ(pa.size(), pb.size());
    for (size_t k = 0; k < pa.size(); ++k)
        EXPECT_LT(pa[k].distanceTo(pb[k]), 1e-9) << k;
    EXPECT_EQ(std::wstring(a.patternName()), std::wstring(b.patternName()));
    EXPECT_EQ(a.patternType(), b.patternType());
    EXPECT_NEAR(a.patternAngle(), b.patternAngle(), 1e-12);
    EXPECT_EQ(a.patternDouble(), b.patternDouble());
    EXPECT_EQ(a.associative(), b.associative());
    EXPECT_EQ(a.hatchStyle(), b.hatchStyle());
    EXPECT_NEAR(a.elevation(), b.elevation(), 1e-12);
    EXPECT_TRUE(a.normal().isEqualTo(b.normal()));
    ASSERT_EQ(a.numSeedPoints(), b.numSeedPoints());
    for (int i = 0; i < a.numSeedPoints(); ++i)
        EXPECT_TRUE(a.getSeedPointAt(i).isEqualTo(b.getSeedPointAt(i)));
}

// One loop of every edge kind, a polyline loop with bulges, ids and a seed point.
std::unique_ptr<AcDbHatch> everyEdgeKind() {
    auto h = std::make_unique<AcDbHatch>();
    h->setPattern(AcDbHatch::kUserDefined, L"_USER");
    h->setPatternAngle(0.3);
    h->setPatternSpace(0.75);
    h->setPatternDouble(true);
    h->setHatchStyle(AcDbHatch::kOuter);
    h->setElevation(1.5);
    h->setNormal(AcGeVector3d(0, 0.6, 0.8));
    AcGeDoubleArray bulges{0.0, 0.4, 0.0, -0.2};
    h->appendLoop(AcDbHatch::kExternal | AcDbHatch::kOutermost, square(0, 0, 20), bulges);
    AcGeLineSeg2d line(AcGePoint2d(5, 5), AcGePoint2d(10, 5));
    AcGeEllipArc2d ell(AcGePoint2d(10, 7), AcGeVector2d(0, -1), AcGeVector2d(1, 0), 2.0, 1.0, 0.0,
                       kPi);
    AcGeCircArc2d arc(AcGePoint2d(10, 9), AcGePoint2d(9, 10), AcGePoint2d(8, 9));
    AcGePoint2dArray ctrl{{8, 9}, {7, 11}, {5, 8}, {5, 5}};
    AcGeNurbCurve2d spline(3, AcGeKnotVector(AcGeDoubleArray{0, 0, 0, 0, 1, 1, 1, 1}), ctrl,
                           AcGeDoubleArray{1, 2, 1, 1});
    AcGeVoidPointerArray edges{&line, &ell, &arc, &spline};
    AcGeIntArray types{AcDbHatch::kLine, AcDbHatch::kEllArc, AcDbHatch::kCirArc,
                       AcDbHatch::kSpline};
    EXPECT_EQ(h->appendLoop(AcDbHatch::kDefault, edges, types), Acad::eOk);
    h->appendSeedPoint(AcGePoint2d(1, 1));
    return h;
}

} // namespace

TEST(EntsHatch, LoopsOfBothForms) {
    AcDbHatch h;
    EXPECT_TRUE(h.isSolidFill());
    const AcGeDoubleArray bulges{0.0, 1.0, 0.0, 0.0};
    ASSERT_EQ(h.appendLoop(AcDbHatch::kExternal, square(0, 0, 4), bulges), Acad::eOk);
    EXPECT_EQ(h.loopTypeAt(0), AcDbHatch::kExternal | AcDbHatch::kPolyline);
    appendCircle(h, AcDbHatch::kDefault, AcGePoint2d(2, 2), 1.0);
    ASSERT_EQ(h.numLoops(), 2);
    EXPECT_EQ(h.loopTypeAt(1) & AcDbHatch::kPolyline, 0);
    EXPECT_EQ(h.loopTypeAt(7), 0);

    Adesk::Int32 type = 0;
    AcGePoint2dArray verts;
    AcGeDoubleArray bs;
    ASSERT_EQ(h.getLoopAt(0, type, verts, bs), Acad::eOk);
    EXPECT_EQ(verts.length(), 4);
    EXPECT_EQ(bs, bulges);
    EXPECT_EQ(h.getLoopAt(1, type, verts, bs), Acad::eInvalidInput); // edges have no vertices
    EXPECT_EQ(h.getLoopAt(2, type, verts, bs), Acad::eInvalidIndex);

    // The polyline loop as edges: three lines and the half circle of its bulge.
    AcGeVoidPointerArray edges;
    AcGeIntArray types;
    ASSERT_EQ(h.getLoopAt(0, type, edges, types), Acad::eOk);
    EXPECT_EQ(types, (AcGeIntArray{AcDbHatch::kLine, AcDbHatch::kCirArc, AcDbHatch::kLine,
                                   AcDbHatch::kLine}));
    const auto* arc = static_cast<const AcGeCircArc2d*>(edges[1]);
    EXPECT_NEAR(arc->radius(), 2.0, 1e-12);
    EXPECT_TRUE(arc->center().isEqualTo(AcGePoint2d(4, 2)));
    ASSERT_EQ(h.getLoopAt(1, type, edges, types), Acad::eOk);
    EXPECT_EQ(edges.length(), 2);

    // What does not describe a loop is refused and adds nothing.
    EXPECT_EQ(h.appendLoop(0, square(0, 0, 1), AcGeDoubleArray{1.0}), Acad::eInvalidInput);
    EXPECT_EQ(h.appendLoop(0, AcGePoint2dArray(), AcGeDoubleArray()), Acad::eInvalidInput);
    AcGeLineSeg2d seg(AcGePoint2d(0, 0), AcGePoint2d(1, 0));
    AcGeVoidPointerArray one{&seg};
    EXPECT_EQ(h.appendLoop(0, one, AcGeIntArray{AcDbHatch::kCirArc}), Acad::eInvalidInput);
    EXPECT_EQ(h.appendLoop(0, AcGeVoidPointerArray{nullptr}, AcGeIntArray{AcDbHatch::kLine}),
              Acad::eInvalidInput);
    EXPECT_EQ(h.appendLoop(0, square(0, 0, std::nan("")), AcGeDoubleArray()), Acad::eInvalidInput);
    EXPECT_EQ(h.numLoops(), 2);

    ASSERT_EQ(h.insertLoopAt(0, AcDbHatch::kTextbox, square(1, 1, 1), AcGeDoubleArray()),
              Acad::eOk);
    EXPECT_EQ(h.loopTypeAt(0), AcDbHatch::kTextbox | AcDbHatch::kPolyline);
    EXPECT_EQ(h.removeLoopAt(0), Acad::eOk);
    EXPECT_EQ(h.removeLoopAt(5), Acad::eInvalidIndex);
    EXPECT_EQ(h.numLoops(), 2);
}

TEST(EntsHatch, AreaTakesHolesAway) {
    auto h = squareWithHole();
    double area = 0.0;
    ASSERT_EQ(h->getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 100.0 - 4 * kPi, 1e-9);
    // A bulging edge adds its half disc; an elliptical hole takes pi a b.
    AcDbHatch b;
    b.appendLoop(AcDbHatch::kExternal, square(0, 0, 4), AcGeDoubleArray{1.0, 0.0, 0.0, 0.0});
    AcGeEllipArc2d e(AcGePoint2d(2, 2), AcGeVector2d(1, 0), AcGeVector2d(0, 1), 1.5, 0.5);
    b.appendLoop(0, AcGeVoidPointerArray{&e}, AcGeIntArray{AcDbHatch::kEllArc});
    ASSERT_EQ(b.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 16.0 + 2 * kPi - kPi * 0.75, 1e-9);
    AcDbHatch empty;
    EXPECT_NE(empty.getArea(area), Acad::eOk);
}

TEST(EntsHatch, LoopsFromDatabaseCurvesKeepTheirIds) {
    AcDbDatabase db;
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    auto* pl = new AcDbPolyline();
    pl->addVertexAt(0, AcGePoint2d(0, 0));
    pl->addVertexAt(1, AcGePoint2d(6, 0), 0.5);
    pl->addVertexAt(2, AcGePoint2d(6, 4));
    pl->addVertexAt(3, AcGePoint2d(0, 4));
    pl->setClosed(true);
    auto* circle = new AcDbCircle(AcGePoint3d(2, 2, 0), AcGeVector3d(0, 0, -1), 1.0);
    AcGePoint3dArray fit{{-1, -1, 0}, {3, -3, 0}, {7, -1, 0}};
    auto* spline = new AcDbSpline(fit);
    auto* closing = new AcDbLine(AcGePoint3d(7, -1, 0), AcGePoint3d(-1, -1, 0));
    AcDbObjectId plId, circleId, splineId, lineId;
    ASSERT_EQ(ms->appendAcDbEntity(plId, pl), Acad::eOk);
    ASSERT_EQ(ms->appendAcDbEntity(circleId, circle), Acad::eOk);
    ASSERT_EQ(ms->appendAcDbEntity(splineId, spline), Acad::eOk);
    ASSERT_EQ(ms->appendAcDbEntity(lineId, closing), Acad::eOk);
    double plArea = 0.0;
    pl->getArea(plArea);
    for (AcDbEntity* e : std::initializer_list<AcDbEntity*>{pl, circle, spline, closing})
        e->close();
    ms->close();

    AcDbHatch h;
    ASSERT_EQ(h.appendLoop(AcDbHatch::kExternal, AcDbObjectIdArray{plId}), Acad::eOk);
    ASSERT_EQ(h.appendLoop(AcDbHatch::kDefault, AcDbObjectIdArray{circleId}), Acad::eOk);
    ASSERT_EQ(h.appendLoop(AcDbHatch::kExternal, AcDbObjectIdArray{splineId, lineId}), Acad::eOk);
    h.setAssociative(true);
    AcDbObjectIdArray ids;
    h.getAssocObjIds(ids);
    EXPECT_EQ(ids, (AcDbObjectIdArray{plId, circleId, splineId, lineId}));
    h.getAssocObjIdsAt(2, ids);
    EXPECT_EQ(ids, (AcDbObjectIdArray{splineId, lineId}));
    Adesk::Int32 type = 0;
    AcGeVoidPointerArray edges;
    AcGeIntArray types;
    h.getLoopAt(0, type, edges, types);
    EXPECT_EQ(types.length(), 4);
    h.getLoopAt(2, type, edges, types);
    EXPECT_EQ(types, (AcGeIntArray{AcDbHatch::kSpline, AcDbHatch::kLine}));

    // The circle facing down becomes a clockwise arc of the same points.
    h.getLoopAt(1, type, edges, types);
    ASSERT_EQ(types.length(), 1);
    EXPECT_TRUE(static_cast<const AcGeCircArc2d*>(edges[0])->isClockWise());

    AcDbHatch outer;
    outer.appendLoop(AcDbHatch::kExternal, AcDbObjectIdArray{plId});
    double area = 0.0;
    outer.getArea(area);
    EXPECT_NEAR(area, plArea, 1e-9);

    // A curve out of the hatch's plane cannot bound it.
    AcDbHatch raised;
    raised.setElevation(5.0);
    EXPECT_EQ(raised.appendLoop(AcDbHatch::kExternal, AcDbObjectIdArray{plId}),
              Acad::eInvalidInput);
    EXPECT_EQ(raised.numLoops(), 0);
    h.removeAssocObjIds();
    h.getAssocObjIds(ids);
    EXPECT_EQ(ids.length(), 0);
}

TEST(EntsHatch, PatternLinesStayInsideTheRegion) {
    auto h = squareWithHole();
    ASSERT_EQ(h->setPattern(AcDbHatch::kUserDefined, L"_USER"), Acad::eOk);
    h->setPatternSpace(1.0);
    ASSERT_EQ(h->evaluateHatch(), Acad::eOk);
    // Ten lines across the square; the four through the hole come in two pieces.
    EXPECT_EQ(h->numHatchLines(), 14);
    for (int i = 0; i < h->numHatchLines(); ++i) {
        AcGePoint2d a, b;
        ASSERT_EQ(h->getHatchLineDataAt(i, a, b), Acad::eOk);
        EXPECT_NEAR(a.y, b.y, 1e-12);
        EXPECT_TRUE(insideSquareOutsideHole(a + (b - a) * 0.5));
        for (const auto& p : {a, b}) {
            const bool onSquare = std::fabs(p.x - 0.5) < 1e-9 || std::fabs(p.x - 10.5) < 1e-9;
            const bool onHole = std::fabs(p.distanceTo(AcGePoint2d(5.5, 5.5)) - 2.0) < 1e-3;
            EXPECT_TRUE(onSquare || onHole) << p.x << "," << p.y;
        }
    }
    AcGePoint2d a, b;
    EXPECT_EQ(h->getHatchLineDataAt(14, a, b), Acad::eInvalidIndex);
    h->setPatternDouble(true);
    h->evaluateHatch();
    EXPECT_EQ(h->numHatchLines(), 28);

    // Predefined patterns scale their own spacing; the angle turns them.
    h->setPattern(AcDbHatch::kPreDefined, L"ANSI31");
    h->setPatternScale(2.0);
    h->evaluateHatch();
    AcGePoint2dArray starts, ends;
    h->getHatchLinesData(starts, ends);
    ASSERT_GT(starts.length(), 0);
    for (int i = 0; i < starts.length(); ++i) {
        const AcGeVector2d d = ends[i] - starts[i];
        EXPECT_NEAR(std::fabs(d.x), std::fabs(d.y), 1e-9); // 45 degrees
        EXPECT_TRUE(insideSquareOutsideHole(starts[i] + d * 0.5));
    }
    h->setPattern(AcDbHatch::kPreDefined, L"SOLID");
    h->evaluateHatch();
    EXPECT_EQ(h->numHatchLines(), 0);

    // A spacing that would need millions of lines is refused.
    h->setPattern(AcDbHatch::kUserDefined, L"_USER");
    h->setPatternSpace(1e-7);
    EXPECT_NE(h->evaluateHatch(), Acad::eOk);
    EXPECT_EQ(h->numHatchLines(), 0);
}

TEST(EntsHatch, DrawsAFilledShellOrItsLines) {
    auto h = squareWithHole();
    h->setNormal(AcGeVector3d(0, 0, -1));
    AcGiRecorder rec;
    h->worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kShell), 1);
    const AcGiRecordedItem& shell = rec.items()[0];
    EXPECT_EQ(shell.traits.fillType, kAcGiFillAlways);
    EXPECT_EQ(shell.ints[0], 4); // the square is the face
    EXPECT_LT(shell.ints[5], 0); // the circle its hole
    // Seen from below: the plane system of the normal mirrors x.
    for (const auto& p : shell.points)
        EXPECT_NEAR(p.z, 0.0, 1e-12);
    EXPECT_NEAR(shell.points[1].x, -10.5, 1e-12);

    h->setPattern(AcDbHatch::kUserDefined, L"_USER");
    h->setPatternSpace(2.5);
    rec.clear();
    h->worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.count(AcGiRecordedKind::kShell), 0);
    EXPECT_EQ(rec.count(AcGiRecordedKind::kPolyline), 4 + 1); // y = 2.5, 5 (split), 7.5, 10
}

TEST(EntsHatch, TransformsKeepTheRegion) {
    auto h = squareWithHole();
    h->appendSeedPoint(AcGePoint2d(1, 1));
    // Stretching x makes the hole an ellipse: arcs become elliptical arcs.
    AcGeMatrix3d stretch;
    stretch.entry[0][0] = 2.0;
    ASSERT_EQ(h->transformBy(stretch), Acad::eOk);
    Adesk::Int32 type = 0;
    AcGeVoidPointerArray edges;
    AcGeIntArray types;
    h->getLoopAt(1, type, edges, types);
    EXPECT_EQ(types, (AcGeIntArray{AcDbHatch::kEllArc, AcDbHatch::kEllArc}));
    double area = 0.0;
    h->getArea(area);
    EXPECT_NEAR(area, 2 * (100 - 4 * kPi), 1e-9);
    AcDbExtents ext;
    ASSERT_EQ(h->getGeomExtents(ext), Acad::eOk);
    EXPECT_LT(ext.maxPoint().distanceTo(AcGePoint3d(21, 10.5, 0)), 1e-9);
    EXPECT_TRUE(h->getSeedPointAt(0).isEqualTo(AcGePoint2d(2, 1)));

    // A bulged polyline loop under the same stretch: its arc goes elliptical too.
    AcDbHatch b;
    b.appendLoop(AcDbHatch::kExternal, square(0, 0, 2), AcGeDoubleArray{1.0, 0.0, 0.0, 0.0});
    double before = 0.0;
    b.getArea(before);
    ASSERT_EQ(b.transformBy(stretch), Acad::eOk);
    b.getArea(area);
    EXPECT_NEAR(area, 2 * before, 1e-6);
    EXPECT_EQ(b.loopTypeAt(0) & AcDbHatch::kPolyline, 0);

    // A rotation turns the pattern with the boundary; a mirror keeps the area.
    AcDbHatch r;
    r.appendLoop(AcDbHatch::kExternal, square(0, 0, 2), AcGeDoubleArray{0.5, 0.0, 0.0, 0.0});
    r.setPattern(AcDbHatch::kPreDefined, L"LINE");
    r.getArea(before);
    ASSERT_EQ(r.transformBy(AcGeMatrix3d::rotation(0.4, AcGeVector3d(0, 0, 1))), Acad::eOk);
    EXPECT_NEAR(r.patternAngle(), 0.4, 1e-12);
    AcGeMatrix3d mirror;
    mirror.entry[1][1] = -1.0;
    ASSERT_EQ(r.transformBy(mirror), Acad::eOk);
    r.getArea(area);
    EXPECT_NEAR(area, before, 1e-9);
    EXPECT_TRUE(r.normal().isEqualTo(AcGeVector3d(0, 0, 1)));
    AcGePoint2dArray verts;
    AcGeDoubleArray bulges;
    r.getLoopAt(0, type, verts, bulges);
    EXPECT_EQ(bulges[0], -0.5);
}

TEST(EntsHatch, FilesThroughStreamRecordingAndDxf) {
    auto h = everyEdgeKind();
    h->setAssociative(true);
    AcDbObjectId id;
    AcDbDatabase db;
    id = db.modelSpaceId();
    h->setAssocObjIdsAt(1, AcDbObjectIdArray{id});

    AcDbStreamDwgFiler out;
    ASSERT_EQ(h->dwgOutFields(&out), Acad::eOk);
    AcDbHatch s;
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), noIds, nullptr);
    ASSERT_EQ(s.dwgInFields(&in), Acad::eOk);
    EXPECT_TRUE(in.atEnd());
    expectSameHatch(*h, s);
    for (size_t n = 0; n < out.bytes().size(); n += 7) {
        AcDbHatch cut;
        AcDbStreamDwgFiler part(out.bytes().data(), n, noIds, nullptr);
        EXPECT_NE(cut.dwgInFields(&part), Acad::eOk) << n;
    }

    AcDbRecordingDwgFiler rec;
    ASSERT_EQ(h->dwgOutFields(&rec), Acad::eOk);
    rec.rewind();
    AcDbHatch r;
    ASSERT_EQ(r.dwgInFields(&rec), Acad::eOk);
    expectSameHatch(*h, r);
    AcDbObjectIdArray ids;
    r.getAssocObjIdsAt(1, ids);
    EXPECT_EQ(ids, AcDbObjectIdArray{id});

    AcDbRecordingDxfFiler dxf;
    ASSERT_EQ(h->dxfOutFields(&dxf), Acad::eOk);
    dxf.rewind();
    AcDbHatch d;
    ASSERT_EQ(d.dxfInFields(&dxf), Acad::eOk);
    EXPECT_TRUE(dxf.atEOF());
    expectSameHatch(*h, d);
    d.getAssocObjIdsAt(1, ids);
    EXPECT_EQ(ids, AcDbObjectIdArray{id});

    // A solid fill files its flag and no pattern groups.
    auto solid = squareWithHole();
    AcDbRecordingDxfFiler sf;
    ASSERT_EQ(solid->dxfOutFields(&sf), Acad::eOk);
    EXPECT_NE(sf.dump().find("2 \"SOLID\"\n70 1\n71 0\n91 2\n92 3\n72 0\n73 1\n93 4\n"),
              std::string::npos)
        << sf.dump();
    EXPECT_EQ(sf.dump().find("\n52 "), std::string::npos);
}

TEST(EntsHatch, CorruptRecordsAreRefused) {
    auto h = everyEdgeKind();
    AcDbRecordingDwgFiler rec;
    ASSERT_EQ(h->dwgOutFields(&rec), Acad::eOk);
    std::vector<AcDbFiledItem> items = rec.items();
    // An edge type that does not exist.
    for (auto& item : items)
        if (item.kind == AcDbFilerKind::kInt16 && std::get<Adesk::Int64>(item.value) == 3) {
            item.value = Adesk::Int64{9};
            break;
        }
    AcDbRecordingDwgFiler bad(items);
    AcDbHatch back;
    EXPECT_NE(back.dwgInFields(&bad), Acad::eOk);

    // A DXF record that promises a million loops and has none.
    std::vector<AcDbDxfItem> groups = {AcDbDxfItem(100, L"AcDbEntity"),
                                       AcDbDxfItem(8, L"0"),
                                       AcDbDxfItem(100, L"AcDbHatch"),
                                       AcDbDxfItem(10, AcGePoint3d(0, 0, 0)),
                                       AcDbDxfItem(210, AcGePoint3d(0, 0, 1)),
                                       AcDbDxfItem(2, L"SOLID"),
                                       AcDbDxfItem(70, 1),
                                       AcDbDxfItem(71, 0),
                                       AcDbDxfItem(91, 1000000)};
    AcDbRecordingDxfFiler f(groups);
    EXPECT_NE(back.dxfInFields(&f), Acad::eOk);
    EXPECT_EQ(back.numLoops(), 0);

    // A vertex that is not a number.
    groups.back() = AcDbDxfItem(91, 1);
    for (const auto& g : {AcDbDxfItem(92, 3), AcDbDxfItem(72, 0), AcDbDxfItem(73, 1),
                          AcDbDxfItem(93, 1), AcDbDxfItem(10, AcGePoint3d(std::nan(""), 0, 0)),
                          AcDbDxfItem(97, 0), AcDbDxfItem(75, 0), AcDbDxfItem(76, 1)})
        groups.push_back(g);
    AcDbRecordingDxfFiler g(groups);
    EXPECT_NE(back.dxfInFields(&g), Acad::eOk);
    EXPECT_EQ(back.numLoops(), 0);
}

TEST(EntsHatch, DamagedRecordsNeverCrash) {
    auto h = everyEdgeKind();
    AcDbStreamDwgFiler out;
    ASSERT_EQ(h->dwgOutFields(&out), Acad::eOk);
    const std::vector<std::uint8_t> good = out.bytes();
    std::mt19937 rng(11);
    std::uniform_int_distribution<size_t> at(0, good.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255);
    int accepted = 0;
    for (int trial = 0; trial < 60; ++trial) {
        std::vector<std::uint8_t> bytes = good;
        for (int k = 0; k < 1 + trial % 3; ++k)
            bytes[at(rng)] = static_cast<std::uint8_t>(byte(rng));
        AcDbHatch back;
        AcDbStreamDwgFiler in(bytes.data(), bytes.size(), noIds, nullptr);
        if (back.dwgInFields(&in) != Acad::eOk) continue;
        ++accepted;
        // Whatever was accepted draws, measures and hatches without harm.
        double area = 0.0;
        back.getArea(area);
        AcDbExtents ext;
        back.getGeomExtents(ext);
        back.evaluateHatch();
        AcGiRecorder rec;
        back.worldDraw(rec.worldDraw());
    }
    EXPECT_GT(accepted, 0);
}

TEST(EntsHatch, ListingShowsPatternAndArea) {
    auto h = squareWithHole();
    AcutCapture capture;
    h->list();
    const std::wstring s = capture.text();
    EXPECT_NE(s.find(L"AcDbHatch"), std::wstring::npos);
    EXPECT_NE(s.find(L"Pattern: SOLID"), std::wstring::npos) << s.size();
    EXPECT_NE(s.find(L"Loops: 2"), std::wstring::npos);
    wchar_t area[64];
    std::swprintf(area, 64, L"Area: %10.4f", 100 - 4 * kPi);
    EXPECT_NE(s.find(area), std::wstring::npos);
}
