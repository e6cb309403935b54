// Parts of polylines between two points (forwards, backwards, round a closed one), curves
// joined into one outline in the drawing, and the conversions of drawing curves.
#include "dbsymtb.h"
#include "toolkit/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

// A drawing to add entities to, working for the length of a test.
class Drawing : public ::testing::Test {
protected:
    void SetUp() override { acdbHostApplicationServices()->setWorkingDatabase(&db); }
    void TearDown() override { acdbHostApplicationServices()->setWorkingDatabase(nullptr); }

    AcDbObjectId add(AcDbEntity* ent) {
        AcDbBlockTableRecord* ms = nullptr;
        AcDbObjectId id;
        EXPECT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        EXPECT_EQ(ms->appendAcDbEntity(id, ent), Acad::eOk);
        ms->close();
        ent->close();
        return id;
    }
    AcDbObjectId line(double x0, double y0, double x1, double y1) {
        return add(new AcDbLine(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y1, 0)));
    }
    template <class T> T* open(const ads_name name) {
        AcDbObjectId id;
        EXPECT_EQ(acdbGetObjectId(id, name), Acad::eOk);
        T* obj = nullptr;
        EXPECT_EQ(acdbOpenObject(obj, id, AcDb::kForRead), Acad::eOk);
        return obj;
    }

    AcDbDatabase db;
};

// (0,0) to (10,0), then a half circle below the axis to (20,0), then up to (20,10).
std::unique_ptr<AcDbPolyline> hook() {
    auto pl = std::make_unique<AcDbPolyline>();
    pl->addVertexAt(0, AcGePoint2d(0, 0));
    pl->addVertexAt(1, AcGePoint2d(10, 0), 1.0);
    pl->addVertexAt(2, AcGePoint2d(20, 0));
    pl->addVertexAt(3, AcGePoint2d(20, 10));
    return pl;
}

std::unique_ptr<AcDbPolyline> square(double bulgeOfClosingSide = 0.0) {
    auto pl = std::make_unique<AcDbPolyline>();
    pl->addVertexAt(0, AcGePoint2d(0, 0));
    pl->addVertexAt(1, AcGePoint2d(10, 0));
    pl->addVertexAt(2, AcGePoint2d(10, 10));
    pl->addVertexAt(3, AcGePoint2d(0, 10), bulgeOfClosingSide);
    pl->setClosed(true);
    return pl;
}

void expectBulges(const AcArray<double>& got, std::initializer_list<double> want) {
    ASSERT_EQ(got.length(), static_cast<int>(want.size()));
    int i = 0;
    for (double w : want)
        EXPECT_NEAR(got[i++], w, 1e-12) << "bulge " << i - 1;
}

} // namespace

TEST(CurvesLink, PartForwardsCutsArcsWithTheirShareOfTheBulge) {
    const auto pl = hook();
    AcArray<AcGePoint2d> pts{{-1, -1}};
    AcArray<double> bulges{7.0};
    ASSERT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(5, 0, 0), AcGePoint3d(15, -5, 0), pts, bulges),
        1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{-1, -1}, {5, 0}, {10, 0}, {15, -5}}));
    expectBulges(bulges, {7.0, 0.0, std::tan(kPi / 8), 0.0});
    // Points off the polyline are taken to their nearest points on it.
    pts.removeAll();
    bulges.removeAll();
    ASSERT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(5, 3, 0), AcGePoint3d(25, 5, 0), pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{5, 0}, {10, 0}, {20, 0}, {20, 5}}));
    expectBulges(bulges, {0.0, 1.0, 0.0, 0.0});
}

TEST(CurvesLink, PartBackwardsNegatesAndShiftsTheBulges) {
    const auto pl = hook();
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    ASSERT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(20, 5, 0), AcGePoint3d(5, 0, 0), pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{20, 5}, {20, 0}, {10, 0}, {5, 0}}));
    expectBulges(bulges, {0.0, -1.0, 0.0, 0.0});
    // The reversed part is the same arc: a polyline of it has the forward part's length.
    AcDbPolyline back;
    for (int i = 0; i < pts.length(); ++i)
        back.addVertexAt(static_cast<unsigned>(i), pts[i], bulges[i]);
    double len = 0.0;
    ASSERT_EQ(M_GetCurveLength(&back, len), 1);
    EXPECT_NEAR(len, 5.0 + 5.0 * kPi + 5.0, 1e-9);
    AcGePoint3d mid;
    back.getPointAtParam(1.5, mid);
    EXPECT_TRUE(mid.isEqualTo(AcGePoint3d(15, -5, 0)));
}

TEST(CurvesLink, PartOfAClosedPolylineFollowsItsDirectionAcrossTheStart) {
    const auto pl = square();
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    ASSERT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(0, 5, 0), AcGePoint3d(5, 0, 0), pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{0, 5}, {0, 0}, {5, 0}}));
    pts.removeAll();
    bulges.removeAll();
    ASSERT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(5, 0, 0), AcGePoint3d(0, 5, 0), pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}));
    // To the start vertex itself, and from an arc on the closing side.
    const auto round = square(1.0); // a half circle bulging out to x = -5
    pts.removeAll();
    bulges.removeAll();
    ASSERT_EQ(M_AddPtArrayByPline(round.get(), AcGePoint3d(-5, 5, 0), AcGePoint3d(10, 10, 0), pts,
                                  bulges),
              1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{-5, 5}, {0, 0}, {10, 0}, {10, 10}}));
    expectBulges(bulges, {std::tan(kPi / 8), 0.0, 0.0, 0.0});
}

TEST(CurvesLink, PartNeedsTwoDifferentPlaces) {
    const auto pl = hook();
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    EXPECT_EQ(M_AddPtArrayByPline(nullptr, AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0), pts, bulges),
              0);
    EXPECT_EQ(M_AddPtArrayByPline(pl.get(), AcGePoint3d(5, 0, 0), AcGePoint3d(5.00005, 0, 0), pts,
                                  bulges),
              0);
    // Different points, one place on the polyline.
    EXPECT_EQ(
        M_AddPtArrayByPline(pl.get(), AcGePoint3d(5, 1, 0), AcGePoint3d(5, 2, 0), pts, bulges), 0);
    AcDbPolyline empty;
    EXPECT_EQ(M_AddPtArrayByPline(&empty, AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0), pts, bulges),
              0);
    EXPECT_TRUE(pts.isEmpty());
    EXPECT_TRUE(bulges.isEmpty());
}

TEST(CurvesLink, LinkedPointsDropRepeatedJointsAndClose) {
    AcArray<AcGePoint2d> pts{{0, 0}, {10, 0}, {10, 0}, {10, 10}};
    AcArray<double> bulges{0.0, 0.0, 0.5, 0.0};
    ASSERT_EQ(M_GetLinkPlinePts(pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{0, 0}, {10, 0}, {10, 10}, {0, 0}}));
    EXPECT_EQ(bulges, (AcArray<double>{0.0, 0.5, 0.0, 0.0}));
    AcArray<AcGePoint2d> bad{{0, 0}, {1, 1}};
    AcArray<double> short1{0.0};
    EXPECT_EQ(M_GetLinkPlinePts(bad, short1), 0);
    EXPECT_EQ(bad.length(), 2);
    AcArray<AcGePoint2d> one{{0, 0}, {0.00001, 0}};
    AcArray<double> oneB{0.0, 0.0};
    EXPECT_EQ(M_GetLinkPlinePts(one, oneB), 0);
    EXPECT_EQ(one.length(), 2);
}

TEST_F(Drawing, FourLinesMakeAClosedGreenRectangle) {
    // Given in any direction, and overshooting their corners.
    const AcArray<AcDbObjectId> ids{line(-2, 0, 22, 0), line(20, 12, 20, -1), line(0, 10, 20, 10),
                                    line(0, -3, 0, 11)};
    ads_name name = {0, 0};
    double length = -1.0;
    ASSERT_EQ(M_GetLinkPline(ids, 1, name, length), 1);
    EXPECT_NEAR(length, 60.0, 1e-9);
    AcDbPolyline* pl = open<AcDbPolyline>(name);
    ASSERT_NE(pl, nullptr);
    EXPECT_EQ(pl->colorIndex(), 3);
    EXPECT_EQ(pl->ownerId(), db.modelSpaceId());
    ASSERT_EQ(pl->numVerts(), 5u);
    AcGePoint2d first, last;
    pl->getPointAt(0, first);
    pl->getPointAt(4, last);
    EXPECT_EQ(first, last);
    EXPECT_EQ(first, AcGePoint2d(0, 0));
    double len = 0.0, area = 0.0;
    M_GetCurveLength(pl, len);
    EXPECT_NEAR(len, 60.0, 1e-9);
    pl->getArea(area);
    EXPECT_NEAR(std::fabs(area), 200.0, 1e-9);
    pl->close();
    // Mode 0 reports no length.
    ASSERT_EQ(M_GetLinkPline(ids, 0, name, length), 1);
    EXPECT_EQ(length, 0.0);
}

TEST_F(Drawing, CurvesWithGapsJoinAtTheirNearestPoints) {
    // Three lines round a triangle that do not quite meet.
    const AcDbObjectId a = line(0, 0, 10, 0);
    const AcDbObjectId b = line(10.05, 0.05, 5, 8);
    AcDbLine cLine(AcGePoint3d(5, 8.1, 0), AcGePoint3d(0, 0.1, 0));
    const AcDbObjectId c = line(5, 8.1, 0, 0.1);
    ads_name name;
    double length = 0.0;
    ASSERT_EQ(M_GetLinkPline(AcArray<AcDbObjectId>{a, b, c}, 1, name, length), 1);
    AcDbPolyline* pl = open<AcDbPolyline>(name);
    ASSERT_NE(pl, nullptr);
    // a from its start to its end; b whole; c from its point nearest b's end to its end; then
    // the gap back to the start is closed.
    AcGePoint3d cFrom;
    cLine.getClosestPointTo(AcGePoint3d(5, 8, 0), cFrom);
    const AcArray<AcGePoint2d> want{{0, 0},   {10, 0}, {10.05, 0.05}, {5, 8}, cFrom.convert2d(),
                                    {0, 0.1}, {0, 0}};
    ASSERT_EQ(pl->numVerts(), 7u);
    for (unsigned i = 0; i < 7; ++i) {
        AcGePoint2d p;
        pl->getPointAt(i, p);
        EXPECT_LT(p.distanceTo(want[static_cast<int>(i)]), 1e-9) << i;
    }
    pl->close();
    const double parts = 10.0 + want[2].distanceTo(want[3]) + want[4].distanceTo(want[5]);
    EXPECT_NEAR(length, parts, 1e-9);
}

TEST_F(Drawing, LinkingFailsWithoutCurvesOrADrawing) {
    ads_name name = {7, 7};
    double length = 3.0;
    EXPECT_EQ(M_GetLinkPline(AcArray<AcDbObjectId>(), 1, name, length), 0);
    EXPECT_EQ(M_GetLinkPline(AcArray<AcDbObjectId>{AcDbObjectId()}, 1, name, length), 0);
    EXPECT_EQ(name[0], 7);
    EXPECT_EQ(length, 3.0);
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    double len = 1.0;
    EXPECT_EQ(M_OpenMyObj(AcDbObjectId(), AcDbObjectId(), AcDbObjectId(), pts, bulges, len, 1), 0);
    EXPECT_EQ(len, 0.0);
    const AcArray<AcDbObjectId> ids{line(0, 0, 1, 0), line(1, 0, 1, 1), line(1, 1, 0, 0)};
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    EXPECT_EQ(M_GetLinkPline(ids, 1, name, length), 0);
}

TEST_F(Drawing, CurvesConvertToPolylinesWithTheirProperties) {
    auto* arc = new AcDbArc(AcGePoint3d(0, 0, 2), 5.0, 0.0, kPi / 2);
    arc->setColorIndex(1);
    ASSERT_EQ(arc->setLinetype(L"Continuous"), Acad::eOk);
    const AcDbObjectId arcId = add(arc);
    ads_name src, made = {0, 0};
    ASSERT_EQ(acdbGetAdsName(src, arcId), Acad::eOk);
    ASSERT_EQ(M_CvtCurvToPln(src, 0.5, made), 1);
    AcDbPolyline* pl = open<AcDbPolyline>(made);
    ASSERT_NE(pl, nullptr);
    EXPECT_EQ(pl->numVerts(), 2u);
    EXPECT_EQ(pl->colorIndex(), 1);
    EXPECT_EQ(pl->linetypeId(), db.continuousLinetype());
    EXPECT_EQ(pl->ownerId(), db.modelSpaceId());
    EXPECT_EQ(pl->elevation(), 2.0);
    double w = 0.0, b = 0.0;
    pl->getConstantWidth(w);
    pl->getBulgeAt(0, b);
    EXPECT_EQ(w, 0.5);
    EXPECT_NEAR(b, std::tan(kPi / 8), 1e-12);
    pl->close();
    // The source stays; a lightweight polyline is not converted.
    AcDbArc* kept = nullptr;
    ASSERT_EQ(acdbOpenObject(kept, arcId, AcDb::kForRead), Acad::eOk);
    kept->close();
    ads_name again;
    EXPECT_EQ(M_CvtCurvToPln(made, 1.0, again), 0);
    ads_name none = {0, 0};
    EXPECT_EQ(M_CvtCurvToPln(none, 1.0, again), 0);

    AcArray<AcGePoint2d> pts{{1, 1}};
    AcArray<double> bulges{1.0};
    ASSERT_EQ(M_GetPlineByPline(made, pts, bulges), 1);
    EXPECT_EQ(pts, (AcArray<AcGePoint2d>{{5, 0}, {0, 5}}));
    EXPECT_EQ(M_GetPlineByPline(none, pts, bulges), 0);
    EXPECT_EQ(pts.length(), 2);
}

TEST(CurvesConvert, ArcCentresOfPolylineSegmentsArcsAndCircles) {
    const auto pl = hook();
    AcGePoint2d c, mid;
    double r = 0.0;
    ASSERT_EQ(M_GetArcPlineCenPt(pl.get(), c, mid, r, 1), 1);
    EXPECT_EQ(c, AcGePoint2d(15, 0));
    EXPECT_EQ(mid, AcGePoint2d(15, -5));
    EXPECT_DOUBLE_EQ(r, 5.0);
    EXPECT_EQ(M_GetArcPlineCenPt(pl.get(), c, mid, r, 0), 0); // a line
    EXPECT_EQ(M_GetArcPlineCenPt(pl.get(), c, mid, r, 3), 0); // no such segment
    EXPECT_EQ(M_GetArcPlineCenPt(pl.get(), c, mid, r, -1), 0);
    AcDbArc arc(AcGePoint3d(1, 1, 0), 2.0, 0.0, kPi);
    ASSERT_EQ(M_GetArcPlineCenPt(&arc, c, mid, r, 0), 1);
    EXPECT_EQ(mid, AcGePoint2d(1, 3));
    AcDbCircle circle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 3.0);
    ASSERT_EQ(M_GetArcPlineCenPt(&circle, c, mid, r, 0), 1);
    EXPECT_EQ(mid, AcGePoint2d(4, 1));
    AcDbLine line;
    EXPECT_EQ(M_GetArcPlineCenPt(&line, c, mid, r, 0), 0);
    EXPECT_EQ(M_GetArcPlineCenPt(nullptr, c, mid, r, 0), 0);
}

TEST(CurvesConvert, DatabaseAndGeometricCurvesRoundTrip) {
    AcDbArc arc(AcGePoint3d(1, 2, 0), 3.0, 0.5, 2.0);
    AcGeCurve3d* g = nullptr;
    ASSERT_EQ(M_CurDbToGe(&arc, g), 1);
    const std::unique_ptr<AcGeCurve3d> ge(g);
    EXPECT_EQ(ge->type(), AcGe::kCircArc3d);
    AcDbCurve* back = nullptr;
    ASSERT_EQ(M_CurGeToDb(ge.get(), back), 1);
    const std::unique_ptr<AcDbCurve> db(back);
    ASSERT_TRUE(AcDbArc::cast(db.get()));
    AcGePoint3d s, e;
    db->getStartPoint(s);
    db->getEndPoint(e);
    AcGePoint3d s0, e0;
    arc.getStartPoint(s0);
    arc.getEndPoint(e0);
    EXPECT_TRUE(s.isEqualTo(s0));
    EXPECT_TRUE(e.isEqualTo(e0));
    AcGeCurve3d* untouched = ge.get();
    EXPECT_EQ(M_CurDbToGe(nullptr, untouched), 0);
    EXPECT_EQ(untouched, ge.get());
    AcDbCurve* none = nullptr;
    EXPECT_EQ(M_CurGeToDb(nullptr, none), 0);
    EXPECT_EQ(none, nullptr);
}
