// Host geometry on prompt points: conversion between coordinate systems, the current user
// system, angles and line intersections.
#include "acedads.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

// A coordinate-system argument: a code, an extrusion or an entity.
struct Sys {
    resbuf rb{};
    explicit Sys(short code) {
        rb.restype = RTSHORT;
        rb.resval.rint = code;
    }
    static Sys extrusion(double x, double y, double z) {
        Sys s(0);
        s.rb.restype = RT3DPOINT;
        s.rb.resval.rpoint[0] = x;
        s.rb.resval.rpoint[1] = y;
        s.rb.resval.rpoint[2] = z;
        return s;
    }
    static Sys entity(const ads_name name) {
        Sys s(0);
        s.rb.restype = RTENAME;
        s.rb.resval.rlname[0] = name[0];
        s.rb.resval.rlname[1] = name[1];
        return s;
    }
};

const Sys kWorld(0), kUser(1), kDisplay(2), kPaper(3);

// The converted point, or (-7, -7, -7) when the host refused.
AcGePoint3d trans(double x, double y, double z, const Sys& from, const Sys& to, int disp = 0) {
    const ads_point in = {x, y, z};
    ads_point out = {-7, -7, -7};
    const int rc = acedTrans(in, &from.rb, &to.rb, disp, out);
    EXPECT_EQ(rc == RTNORM, out[0] != -7) << "a refusal must leave the result";
    return {out[0], out[1], out[2]};
}

const AcGePoint3d kRefused(-7, -7, -7);

class EdTrans : public ::testing::Test {
protected:
    void SetUp() override { qorResetUcs(); }
    void TearDown() override { qorResetUcs(); }
};

TEST_F(EdTrans, UserSystemMovesAndTurnsPoints) {
    // Turned a quarter about z and moved: user x runs along world y.
    ASSERT_TRUE(qorSetUcs(AcGePoint3d(10, 20, 5), AcGeVector3d(0, 2, 0), AcGeVector3d(-1, 0, 0)));
    EXPECT_EQ(trans(1, 2, 3, kUser, kWorld), AcGePoint3d(8, 21, 8));
    EXPECT_EQ(trans(8, 21, 8, kWorld, kUser), AcGePoint3d(1, 2, 3));
    // A displacement turns with the axes but ignores the origin.
    EXPECT_EQ(trans(1, 2, 3, kUser, kWorld, 1), AcGePoint3d(-2, 1, 3));
    // No views here: display coordinates are the user system's, and paper-space display
    // coordinates pair with display ones only.
    EXPECT_EQ(trans(8, 21, 8, kWorld, kDisplay), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(trans(1, 2, 3, kDisplay, kPaper), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(trans(1, 2, 3, kPaper, kWorld), kRefused);
    EXPECT_EQ(trans(1, 2, 3, kUser, kPaper), kRefused);

    // A vertical working plane: user y is world z, so user z is world -y.
    ASSERT_TRUE(qorSetUcs(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 0, 1)));
    EXPECT_EQ(trans(1, 2, 3, kUser, kWorld), AcGePoint3d(1, -3, 2));
}

TEST_F(EdTrans, ExtrusionsAndEntitiesUseTheArbitraryAxisSystem) {
    // Seen from below the rule turns x over and keeps y; off the z axis it takes world z as
    // the helper, so normal x gives the axes y and z.
    EXPECT_EQ(trans(1, 2, 3, Sys::extrusion(0, 0, -1), kWorld), AcGePoint3d(-1, 2, -3));
    EXPECT_EQ(trans(1, 2, 3, Sys::extrusion(2, 0, 0), kWorld), AcGePoint3d(3, 1, 2));

    AcDbDatabase db;
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId circleId, lineId;
    auto* circle = new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, -1), 2.0);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 1));
    ASSERT_EQ(ms->appendAcDbEntity(circleId, circle), Acad::eOk);
    ASSERT_EQ(ms->appendAcDbEntity(lineId, line), Acad::eOk);
    circle->close();
    ms->close();
    ads_name circleName, lineName;
    acdbGetAdsName(circleName, circleId);
    acdbGetAdsName(lineName, lineId);
    EXPECT_EQ(trans(1, 2, 3, Sys::entity(circleName), kWorld), AcGePoint3d(-1, 2, -3));
    // Lines are not planar: they keep world coordinates. Open for write, they cannot be read.
    EXPECT_EQ(trans(1, 2, 3, Sys::entity(lineName), kWorld), kRefused);
    line->close();
    EXPECT_EQ(trans(1, 2, 3, Sys::entity(lineName), kWorld), AcGePoint3d(1, 2, 3));
}

TEST_F(EdTrans, BadArgumentsAreRefused) {
    const ads_name noName = {0, 0};
    resbuf real{};
    real.restype = RTREAL;
    EXPECT_EQ(trans(1, 2, 3, Sys(4), kWorld), kRefused);
    EXPECT_EQ(trans(1, 2, 3, kWorld, Sys(-1)), kRefused);
    EXPECT_EQ(trans(1, 2, 3, Sys::extrusion(0, 0, 0), kWorld), kRefused);
    EXPECT_EQ(trans(1, 2, 3, Sys::entity(noName), kWorld), kRefused);
    const ads_point p = {1, 2, 3};
    ads_point out = {-7, -7, -7};
    EXPECT_EQ(acedTrans(p, &real, &kWorld.rb, 0, out), RTERROR);
    EXPECT_EQ(acedTrans(nullptr, &kWorld.rb, &kUser.rb, 0, out), RTERROR);
    EXPECT_EQ(acedTrans(p, nullptr, &kUser.rb, 0, out), RTERROR);
    EXPECT_EQ(acedTrans(p, &kWorld.rb, &kUser.rb, 0, nullptr), RTERROR);
    EXPECT_EQ(out[0], -7);
}

TEST_F(EdTrans, UserSystemIsSquaredAndRefusesDegenerateAxes) {
    ASSERT_TRUE(qorSetUcs(AcGePoint3d(1, 2, 3), AcGeVector3d(2, 0, 0), AcGeVector3d(5, 3, 0)));
    AcGePoint3d o;
    AcGeVector3d x, y, z;
    qorGetUcs(o, x, y, z);
    EXPECT_EQ(y, AcGeVector3d(0, 1, 0));
    EXPECT_EQ(z, AcGeVector3d(0, 0, 1));
    EXPECT_FALSE(qorSetUcs(AcGePoint3d(9, 9, 9), AcGeVector3d(1, 1, 0), AcGeVector3d(-2, -2, 0)));
    EXPECT_FALSE(qorSetUcs(AcGePoint3d(9, 9, 9), AcGeVector3d(0, 0, 0), AcGeVector3d(0, 1, 0)));
    // The matrix forms carry the same system; a zero y column is refused.
    AcGeMatrix3d m;
    ASSERT_EQ(acedGetCurrentUCS(m), Acad::eOk);
    qorResetUcs();
    ASSERT_EQ(acedSetCurrentUCS(m), Acad::eOk);
    qorGetUcs(o, x, y, z);
    EXPECT_EQ(o, AcGePoint3d(1, 2, 3));
    m.entry[1][1] = 0.0;
    EXPECT_EQ(acedSetCurrentUCS(m), Acad::eInvalidInput);
}

// ---------------------------------------------------------------- angles and intersections

TEST(EdGeomFuncs, AnglesRunCounterClockwiseFromXInOneTurn) {
    const struct {
        double dx, dy, angle;
    } cases[] = {{1, 0, 0},          {0, 1, kPi / 2},     {-1, 0, kPi},
                 {0, -1, 1.5 * kPi}, {1, -1, 1.75 * kPi}, {0, 0, 0}};
    for (const auto& c : cases) {
        const ads_point a = {5, 5, 100}, b = {5 + c.dx, 5 + c.dy, -100};
        EXPECT_NEAR(acutAngle(a, b), c.angle, 1e-12) << c.dx << "," << c.dy;
    }
    // Just below the x axis the angle rounds to 0, never to a full turn.
    const ads_point o = {0, 0, 0}, below = {1, -1e-17, 0};
    EXPECT_LT(acutAngle(o, below), 2 * kPi);
    EXPECT_EQ(acutAngle(nullptr, o), 0.0);
}

TEST(EdGeomFuncs, IntersectionsOfLinesAndSegments) {
    const struct {
        const char* name;
        ads_point a1, a2, b1, b2;
        int teston, code;
        AcGePoint3d at;
    } cases[] = {
        {"crossing", {0, 0, 0}, {10, 10, 0}, {0, 10, 0}, {10, 0, 0}, 1, RTNORM, {5, 5, 0}},
        {"off a segment", {0, 0, 0}, {2, 0, 0}, {5, -1, 0}, {5, 1, 0}, 1, RTNONE, {}},
        {"the lines meet", {0, 0, 0}, {2, 0, 0}, {5, -1, 0}, {5, 1, 0}, 0, RTNORM, {5, 0, 0}},
        {"at an end", {0, 0, 0}, {4, 0, 0}, {4, 0, 0}, {4, 3, 0}, 1, RTNORM, {4, 0, 0}},
        {"far off, at an end",
         {5e5, 3e6, 0},
         {5e5 + 10, 3e6, 0},
         {5e5 + 10, 3e6, 0},
         {5e5 + 10, 3e6 + 10, 0},
         1,
         RTNORM,
         {5e5 + 10, 3e6, 0}},
        {"parallel", {0, 0, 0}, {4, 0, 0}, {0, 1, 0}, {4, 1, 0}, 0, RTNONE, {}},
        {"collinear", {0, 0, 0}, {4, 0, 0}, {2, 0, 0}, {6, 0, 0}, 0, RTNONE, {}},
        {"degenerate", {1, 1, 0}, {1, 1, 0}, {0, 0, 0}, {2, 2, 0}, 0, RTNONE, {}},
        {"meeting in space", {0, 0, 0}, {2, 2, 2}, {2, 0, 0}, {0, 2, 2}, 1, RTNORM, {1, 1, 1}},
        {"skew", {0, 0, 0}, {2, 0, 0}, {1, -1, 1}, {1, 1, 1}, 0, RTNONE, {}},
    };
    for (const auto& c : cases) {
        ads_point out = {-7, -7, -7};
        EXPECT_EQ(acdbInters(c.a1, c.a2, c.b1, c.b2, c.teston, out), c.code) << c.name;
        EXPECT_EQ(AcGePoint3d(out[0], out[1], out[2]), c.code == RTNORM ? c.at : kRefused)
            << c.name;
    }
    ads_point out = {0, 0, 0};
    EXPECT_EQ(acdbInters(out, out, out, nullptr, 0, out), RTERROR);
}

} // namespace
