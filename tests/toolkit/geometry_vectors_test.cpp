// Plane normals, direction vectors and the model-to-drawing frame change.
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

namespace {

TEST(GeometryVectors, NormalFollowsTheTurnOfThePoints) {
    const struct {
        const char* name;
        AcGePoint3d p1, p2, p3;
        AcGeVector3d expected;
    } cases[] = {
        {"counter-clockwise", {0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 0, 1}},
        {"clockwise", {0, 0, 0}, {4, 3, 0}, {4, 0, 0}, {0, 0, -1}},
        {"vertical plane", {0, 0, 0}, {5, 0, 0}, {5, 0, 7}, {0, -1, 0}},
        {"collinear", {0, 0, 0}, {1, 1, 1}, {3, 3, 3}, {0, 0, 0}},
        {"coincident", {2, 2, 2}, {2, 2, 2}, {5, 1, 0}, {0, 0, 0}},
    };
    for (const auto& c : cases) {
        const AcGeVector3d n = M_GetNormal(c.p1, c.p2, c.p3);
        EXPECT_TRUE(n.isEqualTo(c.expected)) << c.name << ": " << n.x << "," << n.y << "," << n.z;
    }
    // Barely bent: still a unit normal.
    EXPECT_TRUE(M_GetNormal({0, 0, 0}, {1e3, 0, 0}, {2e3, 1e-3, 0}).isUnitLength());
}

TEST(GeometryVectors, DirectionsAreHorizontalUnitVectors) {
    EXPECT_TRUE(M_GetVector3D({0, 0, 0}, {3, 0, 4}).isEqualTo(AcGeVector3d(1, 0, 0)));
    EXPECT_TRUE(M_GetVector3D({1, 1, 0}, {4, 5, -9}).isEqualTo(AcGeVector3d(0.6, 0.8, 0)));
    EXPECT_TRUE(M_GetVector2D({1, 1, 0}, {4, 5, -9}).isEqualTo(AcGeVector2d(0.6, 0.8)));
    EXPECT_TRUE(M_GetVector2D({0, 0, 0}, {0, -2, 10}).isEqualTo(AcGeVector2d(0, -1)));
}

TEST(GeometryVectors, ModelFrameRotation) {
    AcGeMatrix3d toDrawing, toModel;
    M_Ogre2World(1, toDrawing);
    M_Ogre2World(0, toModel);
    // Model "up" (y) becomes drawing up (z), and the way back.
    AcGePoint3d up(0, 1, 0);
    up.transformBy(toDrawing);
    EXPECT_TRUE(up.isEqualTo(AcGePoint3d(0, 0, 1)));
    up.transformBy(toModel);
    EXPECT_TRUE(up.isEqualTo(AcGePoint3d(0, 1, 0)));
    AcGePoint3d p(2, 3, 4);
    p.transformBy(toModel);
    EXPECT_TRUE(p.isEqualTo(AcGePoint3d(2, 4, -3)));
    // Any direction but 0 is the forward one; the old matrix is replaced.
    AcGeMatrix3d other = AcGeMatrix3d::translation(AcGeVector3d(5, 5, 5));
    M_Ogre2World(-7, other);
    EXPECT_TRUE(other.isEqualTo(toDrawing));
}

} // namespace
