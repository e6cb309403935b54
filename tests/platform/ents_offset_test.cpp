// Offsetting polylines: the side rule, corner joints, arcs, dropped segments and closed loops.
#include "db/ents/offset2d.h"
#include "dbents.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

using ents_detail::BulgePath;
using ents_detail::offsetPath;

namespace {

constexpr double kPi = 3.14159265358979323846;

BulgePath path(std::initializer_list<std::array<double, 3>> verts, bool closed = false) {
    BulgePath p;
    p.closed = closed;
    for (const auto& v : verts)
        p.verts.push_back({AcGePoint2d(v[0], v[1]), v[2]});
    return p;
}

void expectVerts(const BulgePath& got, std::initializer_list<std::array<double, 3>> want) {
    ASSERT_EQ(got.verts.size(), want.size());
    size_t i = 0;
    for (const auto& w : want) {
        EXPECT_NEAR(got.verts[i].pt.x, w[0], 1e-9) << "vertex " << i;
        EXPECT_NEAR(got.verts[i].pt.y, w[1], 1e-9) << "vertex " << i;
        EXPECT_NEAR(got.verts[i].bulge, w[2], 1e-9) << "bulge " << i;
        ++i;
    }
}

std::unique_ptr<AcDbPolyline> pline(const BulgePath& p) {
    auto pl = std::make_unique<AcDbPolyline>();
    for (unsigned i = 0; i < p.verts.size(); ++i)
        pl->addVertexAt(i, p.verts[i].pt, p.verts[i].bulge);
    pl->setClosed(p.closed);
    return pl;
}

double offsetArea(const BulgePath& p, double d) {
    AcDbVoidPtrArray out;
    if (pline(p)->getOffsetCurves(d, out) != Acad::eOk) return -1.0;
    EXPECT_EQ(out.length(), 1);
    std::unique_ptr<AcDbPolyline> res(static_cast<AcDbPolyline*>(out[0]));
    double area = 0.0;
    EXPECT_EQ(res->getArea(area), Acad::eOk);
    return area;
}

} // namespace

TEST(PolylineOffset, PositiveDistanceGoesRightOfTravelAndCornersMeet) {
    const BulgePath l = path({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    expectVerts(*offsetPath(l, 1.0), {{0, -1, 0}, {11, -1, 0}, {11, 10, 0}});
    expectVerts(*offsetPath(l, -1.0), {{0, 1, 0}, {9, 1, 0}, {9, 10, 0}});
    // Reversing the travel swaps the sides.
    const BulgePath back = path({{10, 10, 0}, {10, 0, 0}, {0, 0, 0}});
    expectVerts(*offsetPath(back, 1.0), {{9, 10, 0}, {9, 1, 0}, {0, 1, 0}});
}

TEST(PolylineOffset, ArcsGrowWhenTravelledCounterClockwise) {
    // Semicircle below the chord, travelled counter-clockwise about (5, 0).
    const BulgePath half = path({{0, 0, 1}, {10, 0, 0}});
    expectVerts(*offsetPath(half, 1.0), {{-1, 0, 1}, {11, 0, 0}});
    expectVerts(*offsetPath(half, -1.0), {{1, 0, 1}, {9, 0, 0}});
    const BulgePath cw = path({{0, 0, -1}, {10, 0, 0}});
    expectVerts(*offsetPath(cw, 1.0), {{1, 0, -1}, {9, 0, 0}});
    // An arc that would shrink past its centre is dropped; nothing is left.
    EXPECT_FALSE(offsetPath(half, -5.0));
}

TEST(PolylineOffset, TangentJointsStayTangent) {
    const BulgePath p = path({{0, 0, 0}, {10, 0, 1}, {10, 10, 0}});
    expectVerts(*offsetPath(p, 1.0), {{0, -1, 0}, {10, -1, 1}, {10, 11, 0}});
    // Two half circles closing into a full circle.
    const BulgePath circle = path({{0, 0, 1}, {10, 0, 1}}, true);
    const auto grown = offsetPath(circle, 1.0);
    ASSERT_TRUE(grown);
    EXPECT_TRUE(grown->closed);
    expectVerts(*grown, {{-1, 0, 1}, {11, 0, 1}});
    EXPECT_FALSE(offsetPath(circle, -5.0));
    EXPECT_TRUE(offsetPath(circle, -4.9));
}

TEST(PolylineOffset, RepeatedVerticesAreSkipped) {
    const BulgePath p = path({{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    expectVerts(*offsetPath(p, 1.0), {{0, -1, 0}, {11, -1, 0}, {11, 10, 0}});
    EXPECT_FALSE(offsetPath(path({{3, 3, 0}, {3, 3, 0}}), 1.0));
}

TEST(PolylineOffset, SegmentsThatVanishAreDropped) {
    // Two left turns; on the inner side at distance 3 the short diagonal is overtaken.
    const BulgePath p = path({{0, 0, 0}, {10, 0, 0}, {11, 1, 0}, {11, 11, 0}});
    expectVerts(*offsetPath(p, -3.0), {{0, 3, 0}, {8, 3, 0}, {8, 11, 0}});
    // At a small distance it stays.
    EXPECT_EQ(offsetPath(p, -0.1)->verts.size(), 4u);
}

TEST(PolylineOffset, NearTangentAndReversingCorners) {
    // Almost straight on: the corner stays close to the moved vertex.
    const auto nearly = offsetPath(path({{0, 0, 0}, {10, 0, 0}, {20, 1e-7, 0}}), 1.0);
    ASSERT_TRUE(nearly);
    ASSERT_EQ(nearly->verts.size(), 3u);
    EXPECT_NEAR(nearly->verts[1].pt.x, 10.0, 1e-6);
    EXPECT_NEAR(nearly->verts[1].pt.y, -1.0, 1e-6);
    // Doubling back: the carriers never meet, so the corner goes round the vertex.
    expectVerts(*offsetPath(path({{0, 0, 0}, {10, 0, 0}, {0, 0, 0}}), 1.0),
                {{0, -1, 0}, {10, -1, 1}, {10, 1, 0}, {0, 1, 0}});
}

TEST(PolylineOffset, ClosedLoopsFollowTheSideRuleAndRefuseToTurnInsideOut) {
    // Counter-clockwise loops have their inside on the left: positive distances grow them.
    const BulgePath square = path({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, true);
    EXPECT_NEAR(offsetArea(square, 1.0), 144.0, 1e-9);
    EXPECT_NEAR(offsetArea(square, -1.0), 64.0, 1e-9);
    EXPECT_EQ(offsetArea(square, -6.0), -1.0);
    const BulgePath clockwise = path({{0, 10, 0}, {10, 10, 0}, {10, 0, 0}, {0, 0, 0}}, true);
    EXPECT_NEAR(offsetArea(clockwise, 1.0), 64.0, 1e-9);
    const BulgePath strip = path({{0, 0, 0}, {10, 0, 0}, {10, 2, 0}, {0, 2, 0}}, true);
    EXPECT_NEAR(offsetArea(strip, -0.5), 9.0, 1e-9);
    EXPECT_EQ(offsetArea(strip, -1.5), -1.0);
    // A stadium: the end arcs shrink with the sides, and vanish with them.
    const BulgePath stadium = path({{0, 0, 0}, {10, 0, 1}, {10, 4, 0}, {0, 4, 1}}, true);
    EXPECT_NEAR(offsetArea(stadium, -1.0), 20.0 + kPi, 1e-9);
    EXPECT_NEAR(offsetArea(stadium, 1.0), 60.0 + 9.0 * kPi, 1e-9);
    EXPECT_EQ(offsetArea(stadium, -2.0), -1.0);
    EXPECT_EQ(offsetArea(stadium, -2.5), -1.0);
}

TEST(PolylineOffset, ResultKeepsPlaneAndProperties) {
    auto pl = pline(path({{0, 0, 0}, {10, 0, 0.5}, {10, 10, 0}}));
    pl->setNormal(AcGeVector3d(0, 0, -1));
    pl->setElevation(4.0);
    pl->setColorIndex(3);
    AcDbVoidPtrArray out;
    ASSERT_EQ(pl->getOffsetCurves(-0.5, out), Acad::eOk); // the inner side: no mitred corner
    ASSERT_EQ(out.length(), 1);
    std::unique_ptr<AcDbPolyline> res(static_cast<AcDbPolyline*>(out[0]));
    EXPECT_EQ(res->normal(), AcGeVector3d(0, 0, -1));
    EXPECT_EQ(res->elevation(), 4.0);
    EXPECT_EQ(res->colorIndex(), 3);
    EXPECT_FALSE(res->isClosed());
    // Every point of the result lies at the offset distance from the original.
    double end = 0.0;
    ASSERT_EQ(res->getEndParam(end), Acad::eOk);
    for (int i = 0; i <= 40; ++i) {
        AcGePoint3d p, near;
        ASSERT_EQ(res->getPointAtParam(end * i / 40.0, p), Acad::eOk);
        ASSERT_EQ(pl->getClosestPointTo(p, near), Acad::eOk);
        EXPECT_NEAR(p.distanceTo(near), 0.5, 1e-9) << "at " << i;
    }
}
