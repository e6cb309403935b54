// The plane, and the members of points, vectors and matrices that need one.
#include "gecurves.h"

#include "geangles.h"

const AcGePlane AcGePlane::kXYPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 0.0, 1.0));
const AcGePlane AcGePlane::kYZPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(1.0, 0.0, 0.0));
const AcGePlane AcGePlane::kZXPlane(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 1.0, 0.0));

AcGePlane::AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal) {
    set(origin, normal);
}

AcGePlane& AcGePlane::set(const AcGePoint3d& origin, const AcGeVector3d& normal) {
    const double len = normal.length();
    if (len == 0.0) return *this;
    mOrigin = origin;
    mNormal = normal / len;
    mAxis1 = geimpl::arbitraryAxis(mNormal);
    mAxis2 = mNormal.crossProduct(mAxis1);
    return *this;
}

void AcGePlane::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1,
                               AcGeVector3d& axis2) const {
    origin = mOrigin;
    axis1 = mAxis1;
    axis2 = mAxis2;
}

double AcGePlane::signedDistanceTo(const AcGePoint3d& pt) const {
    return (pt - mOrigin).dotProduct(mNormal);
}

double AcGePlane::distanceTo(const AcGePoint3d& pt) const {
    return std::fabs(signedDistanceTo(pt));
}

AcGePoint3d AcGePlane::closestPointTo(const AcGePoint3d& pt) const {
    return pt - mNormal * signedDistanceTo(pt);
}

bool AcGePlane::isOn(const AcGePoint3d& pt, const AcGeTol& tol) const {
    return distanceTo(pt) <= tol.equalPoint();
}

bool AcGePlane::isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol) const {
    return std::fabs(line.direction().dotProduct(mNormal)) <= tol.equalVector();
}

bool AcGePlane::isCoplanarTo(const AcGePlane& plane, const AcGeTol& tol) const {
    return mNormal.isParallelTo(plane.mNormal, tol) && isOn(plane.mOrigin, tol);
}

bool AcGePlane::intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& pt,
                              const AcGeTol& tol) const {
    const AcGeVector3d u = line.direction();
    const double slope = u.dotProduct(mNormal);
    // A degenerate line has a zero direction and so counts as parallel.
    if (std::fabs(slope) <= tol.equalVector()) return false;
    const AcGePoint3d p0 = line.pointOnLine();
    const AcGePoint3d p = p0 - u * (signedDistanceTo(p0) / slope);
    if (!line.isOn(p, tol)) return false;
    pt = p;
    return true;
}

bool AcGePlane::intersectWith(const AcGePlane& plane, AcGeLine3d& line, const AcGeTol& tol) const {
    const AcGeVector3d dir = mNormal.crossProduct(plane.mNormal);
    const double s2 = dir.lengthSqrd();
    if (std::sqrt(s2) <= tol.equalVector()) return false;
    // The point of the common line nearest the world origin is a combination of both normals.
    const double d1 = mNormal.dotProduct(mOrigin.asVector());
    const double d2 = plane.mNormal.dotProduct(plane.mOrigin.asVector());
    const double c = mNormal.dotProduct(plane.mNormal);
    const AcGeVector3d p = (mNormal * (d1 - d2 * c) + plane.mNormal * (d2 - d1 * c)) / s2;
    line.set(AcGePoint3d(p.x, p.y, p.z), dir / std::sqrt(s2));
    return true;
}

AcGePlane& AcGePlane::transformBy(const AcGeMatrix3d& m) {
    AcGePoint3d o = mOrigin, a = mOrigin + mAxis1, b = mOrigin + mAxis2;
    o.transformBy(m);
    a.transformBy(m);
    b.transformBy(m);
    AcGeVector3d n = (a - o).crossProduct(b - o);
    // The images of the axes turn the other way under a mirror; the normal follows the matrix.
    if (m.det() < 0.0) n.negate();
    return set(o, n);
}

// ---------------------------------------------------------------- plane-dependent members

AcGePoint3d::AcGePoint3d(const AcGePlane& plane, const AcGePoint2d& p) {
    AcGePoint3d origin;
    AcGeVector3d a1, a2;
    plane.getCoordSystem(origin, a1, a2);
    *this = origin + a1 * p.x + a2 * p.y;
}

AcGeVector3d::AcGeVector3d(const AcGePlane& plane, const AcGeVector2d& v) {
    AcGePoint3d origin;
    AcGeVector3d a1, a2;
    plane.getCoordSystem(origin, a1, a2);
    *this = a1 * v.x + a2 * v.y;
}

AcGePoint2d AcGePoint3d::convert2d(const AcGePlane& plane) const {
    AcGePoint3d origin;
    AcGeVector3d a1, a2;
    plane.getCoordSystem(origin, a1, a2);
    const AcGeVector3d d = *this - origin;
    return {d.dotProduct(a1), d.dotProduct(a2)};
}

AcGePoint3d AcGePoint3d::orthoProject(const AcGePlane& plane) const {
    return plane.closestPointTo(*this);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePlane& plane) {
    // p' = p - 2 ((p - o) . n) n
    const AcGeVector3d n = plane.normal();
    const double d = n.dotProduct(plane.pointOnPlane().asVector());
    setToIdentity();
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            entry[i][j] -= 2.0 * n[i] * n[j];
        entry[i][3] = 2.0 * d * n[i];
    }
    return *this;
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePlane& plane) {
    return AcGeMatrix3d().setToMirroring(plane);
}
