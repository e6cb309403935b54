// Normals, direction vectors and the change between model and drawing frames.
#include "toolkit/geometry.h"

#include <numbers>

AcGeVector3d M_GetNormal(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3) {
    const AcGeVector3d n = (p2 - p1).crossProduct(p3 - p2);
    // normal() would hand back a tiny vector unchanged; collinear points have no plane.
    if (n.isZeroLength()) return AcGeVector3d(0.0, 0.0, 0.0);
    return n.normal();
}

AcGeVector2d M_GetVector2D(AcGePoint3d a, AcGePoint3d b) {
    return AcGeVector2d(b.x - a.x, b.y - a.y).normal();
}

AcGeVector3d M_GetVector3D(AcGePoint3d a, AcGePoint3d b) {
    return AcGeVector3d(b.x - a.x, b.y - a.y, 0.0).normal();
}

void M_Ogre2World(int dir, AcGeMatrix3d& m) {
    const double angle = dir == 0 ? -std::numbers::pi / 2.0 : std::numbers::pi / 2.0;
    m.setToRotation(angle, AcGeVector3d::kXAxis, AcGePoint3d::kOrigin);
}
