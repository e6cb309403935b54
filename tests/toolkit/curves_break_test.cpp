// Points ordered along curves, curves broken at points, and intersections computed near the
// origin for curves far from it.
#include "toolkit/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace {

constexpr double kPi = std::numbers::pi;

double lengthOf(const AcDbCurve* c) {
    double len = 0.0;
    EXPECT_EQ(M_GetCurveLength(c, len), 1);
    return len;
}

double offCurve(const AcDbCurve& c, const AcGePoint3d& p) {
    AcGePoint3d on;
    c.getClosestPointTo(p, on);
    return on.distanceTo(p);
}

std::vector<std::unique_ptr<AcDbCurve>> own(const AcArray<void*>& ptrs, int from = 0) {
    std::vector<std::unique_ptr<AcDbCurve>> out;
    for (int i = from; i < ptrs.length(); ++i)
        out.emplace_back(static_cast<AcDbCurve*>(ptrs[i]));
    return out;
}

} // namespace

TEST(CurvesBreak, SortingDropsTheEndsAndPointsOffTheCurve) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
    AcArray<AcGePoint3d> sorted{{9, 9, 9}};
    const AcArray<AcGePoint3d> pts{{10, 0, 0}, {7, 0, 0}, {0, 0, 0}, {3, 0, 0}, {5, 5, 0}};
    ASSERT_EQ(M_SortPtsbyCur(&line, pts, sorted), 1);
    EXPECT_EQ(sorted, (AcArray<AcGePoint3d>{{3, 0, 0}, {7, 0, 0}}));
    // Only ends: nothing remains, and the output is kept.
    sorted = AcArray<AcGePoint3d>{{9, 9, 9}};
    EXPECT_EQ(M_SortPtsbyCur(&line, AcArray<AcGePoint3d>{{0, 0, 0}, {10, 0, 0}}, sorted), 0);
    EXPECT_EQ(M_SortPtsbyCur(&line, AcArray<AcGePoint3d>(), sorted), 0);
    EXPECT_EQ(M_SortPtsbyCur(nullptr, pts, sorted), 0);
    EXPECT_EQ(sorted.length(), 1);

    // The start of a closed polyline is its end as well.
    AcDbPolyline square;
    square.addVertexAt(0, AcGePoint2d(0, 0));
    square.addVertexAt(1, AcGePoint2d(4, 0));
    square.addVertexAt(2, AcGePoint2d(4, 4), 0.5);
    square.addVertexAt(3, AcGePoint2d(0, 4));
    square.setClosed(true);
    ASSERT_EQ(
        M_SortPtsbyCur(&square, AcArray<AcGePoint3d>{{0, 2, 0}, {0, 0, 0}, {4, 0, 0}}, sorted), 1);
    EXPECT_EQ(sorted, (AcArray<AcGePoint3d>{{4, 0, 0}, {0, 2, 0}}));
}

TEST(CurvesBreak, EqualDistancesKeepTheirInputOrder) {
    AcDbArc arc(AcGePoint3d(0, 0, 0), 10.0, 0.0, kPi);
    // Three copies of one place, told apart by a difference far below any tolerance.
    const AcGePoint3d a(0, 10, 0), b(1e-13, 10, 0), c(-1e-13, 10, 0);
    AcArray<AcGePoint3d> sorted;
    ASSERT_EQ(M_SortPtsbyCur(&arc, AcArray<AcGePoint3d>{{-10, 0.5, 0}, b, a, c}, sorted), 1);
    ASSERT_EQ(sorted.length(), 3);
    EXPECT_EQ(sorted[0].x, b.x);
    EXPECT_EQ(sorted[1].x, a.x);
    EXPECT_EQ(sorted[2].x, c.x);
}

TEST(CurvesBreak, PiecesAddUpToTheWholeCurve) {
    std::vector<std::unique_ptr<AcDbCurve>> curves;
    curves.emplace_back(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)));
    curves.emplace_back(new AcDbArc(AcGePoint3d(0, 0, 0), 5.0, 0.5, 4.0));
    curves.emplace_back(new AcDbCircle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 3.0));
    auto* pl = new AcDbPolyline;
    pl->addVertexAt(0, AcGePoint2d(0, 0), 0.4);
    pl->addVertexAt(1, AcGePoint2d(6, 0), -1.0);
    pl->addVertexAt(2, AcGePoint2d(6, 6));
    curves.emplace_back(pl);
    curves.emplace_back(
        new AcDbEllipse(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d(8, 0, 0), 0.5));
    curves.emplace_back(
        new AcDbSpline(AcGePoint3dArray{{0, 0, 0}, {3, 4, 0}, {7, -2, 0}, {12, 1, 0}}));
    for (const auto& c : curves) {
        const double len = lengthOf(c.get());
        AcArray<AcGePoint3d> cuts;
        for (double f : {0.7, 0.2, 0.45}) {
            AcGePoint3d p;
            ASSERT_EQ(c->getPointAtDist(len * f, p), Acad::eOk);
            cuts.append(p);
        }
        AcArray<void*> out{nullptr}; // what was there stays
        ASSERT_EQ(M_BreakCurByPts(c.get(), cuts, out), 1) << c->isA()->name();
        EXPECT_EQ(out[0], nullptr);
        const auto pieces = own(out, 1);
        EXPECT_EQ(pieces.size(), c->isClosed() ? 3u : 4u) << c->isA()->name();
        double sum = 0.0;
        for (const auto& p : pieces)
            sum += lengthOf(p.get());
        EXPECT_NEAR(sum, len, 1e-9 * len) << c->isA()->name();
    }
}

TEST(CurvesBreak, NothingToBreakAtLeavesTheOutputAlone) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
    AcArray<void*> out;
    EXPECT_EQ(M_BreakCurByPts(&line, AcArray<AcGePoint3d>{{0, 0, 0}, {10, 0, 0}}, out), 0);
    EXPECT_EQ(M_BreakCurByPts(nullptr, AcArray<AcGePoint3d>{{5, 0, 0}}, out), 0);
    EXPECT_EQ(M_BreakCurByPts(&line, AcArray<AcGePoint3d>(), out), 0);
    EXPECT_TRUE(out.isEmpty());
}

TEST(CurvesBreak, IntersectionsFarFromTheOriginLieOnBothCurves) {
    const AcGeVector3d far(1e7, 1e7, 0);
    std::vector<std::pair<std::unique_ptr<AcDbCurve>, std::unique_ptr<AcDbCurve>>> pairs;
    pairs.emplace_back(new AcDbLine(AcGePoint3d(0, 0, 0) + far, AcGePoint3d(100, 37, 0) + far),
                       new AcDbCircle(AcGePoint3d(50, 20, 0) + far, AcGeVector3d::kZAxis, 15.0));
    pairs.emplace_back(new AcDbArc(AcGePoint3d(0, 0, 0) + far, 10.0, 0.0, kPi),
                       new AcDbArc(AcGePoint3d(12, 0, 0) + far, 7.0, 0.0, kPi));
    auto* pl = new AcDbPolyline;
    pl->addVertexAt(0, AcGePoint2d(1e7 - 5, 1e7 - 5), 0.3);
    pl->addVertexAt(1, AcGePoint2d(1e7 + 5, 1e7 + 5));
    pl->addVertexAt(2, AcGePoint2d(1e7 + 5, 1e7 - 5));
    pairs.emplace_back(
        pl, new AcDbSpline(AcGePoint3dArray{AcGePoint3d(-8, 0, 0) + far, AcGePoint3d(0, 2, 0) + far,
                                            AcGePoint3d(8, -1, 0) + far}));
    for (const auto& [a, b] : pairs) {
        AcArray<AcGePoint3d> pts{{1, 2, 3}};
        ASSERT_EQ(M_IntersectWith(a.get(), b.get(), AcDb::kOnBothOperands, pts), 1)
            << a->isA()->name();
        ASSERT_GE(pts.length(), 2);
        EXPECT_EQ(pts[0], AcGePoint3d(1, 2, 3));
        for (int i = 1; i < pts.length(); ++i) {
            EXPECT_LT(offCurve(*a, pts[i]), 1e-6) << a->isA()->name();
            EXPECT_LT(offCurve(*b, pts[i]), 1e-6) << b->isA()->name();
        }
    }
}

TEST(CurvesBreak, IntersectionModesAndBadInput) {
    AcDbLine shortLine(AcGePoint3d(1e7, 1e7, 0), AcGePoint3d(1e7 + 1, 1e7, 0));
    AcDbCircle circle(AcGePoint3d(1e7 + 10, 1e7, 0), AcGeVector3d::kZAxis, 3.0);
    AcArray<AcGePoint3d> pts;
    EXPECT_EQ(M_IntersectWith(&shortLine, &circle, AcDb::kOnBothOperands, pts), 0);
    EXPECT_TRUE(pts.isEmpty());
    ASSERT_EQ(M_IntersectWith(&shortLine, &circle, AcDb::kExtendThis, pts), 1);
    ASSERT_EQ(pts.length(), 2);
    for (const AcGePoint3d& p : pts)
        EXPECT_NEAR(std::fabs(p.x - (1e7 + 10)), 3.0, 1e-6);
    EXPECT_EQ(M_IntersectWith(&circle, &shortLine, AcDb::kExtendThis, pts), 0);
    EXPECT_EQ(M_IntersectWith(nullptr, &circle, AcDb::kOnBothOperands, pts), 0);
    EXPECT_EQ(M_IntersectWith(&circle, nullptr, AcDb::kOnBothOperands, pts), 0);
    EXPECT_EQ(pts.length(), 2);
}
