// Prompt and database points through the user system, angles, polar points and intersections.
#include "acedads.h"
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

AcGePoint3d asPoint(const double (&p)[3]) {
    return {p[0], p[1], p[2]};
}

TEST(GeometryPoints, PromptPointsAreUserPointsAndDatabasePointsWorldPoints) {
    // Turned a quarter about z and raised: user x runs along world y.
    ASSERT_TRUE(
        qorSetUcs(AcGePoint3d(100, 200, 10), AcGeVector3d(0, 1, 0), AcGeVector3d(-1, 0, 0)));
    const double prompt[3] = {1, 2, 3};
    double out[3];
    M_ToWcs(prompt, out);
    EXPECT_EQ(asPoint(out), AcGePoint3d(98, 201, 13));
    M_ToUcs(out, out);
    EXPECT_EQ(asPoint(out), AcGePoint3d(1, 2, 3));
    AcGePoint3d p3;
    AcGePoint2d p2;
    M_ads_pt(prompt, p3);
    M_ads_pt(prompt, p2);
    EXPECT_EQ(p3, AcGePoint3d(98, 201, 13));
    EXPECT_EQ(p2, AcGePoint2d(98, 201));
    M_pt_ads(p3, out);
    EXPECT_EQ(asPoint(out), AcGePoint3d(1, 2, 3));
    // A 2D database point stands at height 0, below the raised user plane.
    M_pt_ads(p2, out);
    EXPECT_EQ(asPoint(out), AcGePoint3d(1, 2, -10));

    // Refused conversions and null inputs leave the outputs.
    double kept[3] = {7, 7, 7};
    M_Trans(prompt, 0, 9, kept);
    M_Trans(prompt, 3, 0, kept); // paper display coordinates pair with display ones only
    M_ToWcs(nullptr, kept);
    M_ads_ads(nullptr, kept);
    M_ads_pt(nullptr, p3);
    EXPECT_EQ(asPoint(kept), AcGePoint3d(7, 7, 7));
    EXPECT_EQ(p3, AcGePoint3d(98, 201, 13));
    M_Trans(prompt, 1, 0, kept);
    EXPECT_EQ(asPoint(kept), AcGePoint3d(98, 201, 13));
    M_ads_ads(prompt, kept);
    EXPECT_EQ(asPoint(kept), AcGePoint3d(1, 2, 3));
    qorResetUcs();
}

TEST(GeometryPoints, AnglesAndPolarPointsWorkInPlan) {
    EXPECT_NEAR(M_Angle(AcGePoint2d(1, 1), AcGePoint2d(1, -5)), 1.5 * kPi, 1e-12);
    EXPECT_NEAR(M_Angle(AcGePoint3d(0, 0, 50), AcGePoint3d(-1, -1, -50)), 1.25 * kPi, 1e-12);
    AcGePoint2d p2;
    M_Polar(AcGePoint2d(1, 1), kPi, 3.0, p2);
    EXPECT_EQ(p2, AcGePoint2d(-2, 1));
    AcGePoint3d p3;
    M_Polar(AcGePoint3d(1, 1, 7), kPi / 2, 2.0, p3);
    EXPECT_EQ(p3, AcGePoint3d(1, 3, 7));
}

TEST(GeometryPoints, IntersectionsOfSegmentsAndOfLines) {
    AcGePoint2d out(-9, -9);
    // Meeting beyond an end: not on the segments, but the lines meet.
    EXPECT_EQ(M_Inters({0, 0}, {1, 0}, {3, -1}, {3, 1}, 1, out), 0);
    EXPECT_EQ(out, AcGePoint2d(-9, -9));
    EXPECT_EQ(M_Inters({0, 0}, {1, 0}, {3, -1}, {3, 1}, 0, out), 1);
    EXPECT_EQ(out, AcGePoint2d(3, 0));
    EXPECT_EQ(M_Inters({0, 0}, {2, 0}, {0, 1}, {2, 1}, 0, out), 0); // parallel

    // The space form works in plan: lines at different heights cross, at height 0.
    AcGePoint3d at(-9, -9, -9);
    EXPECT_EQ(M_Inters({0, 0, 5}, {4, 4, 5}, {0, 4, -3}, {4, 0, 8}, 1, at), 1);
    EXPECT_EQ(at, AcGePoint3d(2, 2, 0));
}

} // namespace
