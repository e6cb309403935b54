// Angles, polar points and line intersections, through the host's functions on prompt points.
#include "acedads.h"
#include "toolkit/geometry.h"

double M_Angle(AcGePoint2d a, AcGePoint2d b) {
    const ads_point pa = {a.x, a.y, 0.0}, pb = {b.x, b.y, 0.0};
    return acutAngle(pa, pb);
}

double M_Angle(AcGePoint3d a, AcGePoint3d b) {
    const ads_point pa = {a.x, a.y, 0.0}, pb = {b.x, b.y, 0.0};
    return acutAngle(pa, pb);
}

void M_Polar(AcGePoint2d p, double angle, double dist, AcGePoint2d& out) {
    const ads_point from = {p.x, p.y, 0.0};
    ads_point to = {0.0, 0.0, 0.0};
    acutPolar(from, angle, dist, to);
    out.set(to[0], to[1]);
}

void M_Polar(AcGePoint3d p, double angle, double dist, AcGePoint3d& out) {
    const ads_point from = {p.x, p.y, p.z};
    ads_point to = {0.0, 0.0, 0.0};
    acutPolar(from, angle, dist, to);
    out.set(to[0], to[1], to[2]);
}

int M_Inters(AcGePoint2d a1, AcGePoint2d a2, AcGePoint2d b1, AcGePoint2d b2, int teston,
             AcGePoint2d& out) {
    const ads_point p1 = {a1.x, a1.y, 0.0}, p2 = {a2.x, a2.y, 0.0};
    const ads_point q1 = {b1.x, b1.y, 0.0}, q2 = {b2.x, b2.y, 0.0};
    ads_point r = {0.0, 0.0, 0.0};
    if (acdbInters(p1, p2, q1, q2, teston, r) != RTNORM) return 0;
    out.set(r[0], r[1]);
    return 1;
}

int M_Inters(AcGePoint3d a1, AcGePoint3d a2, AcGePoint3d b1, AcGePoint3d b2, int teston,
             AcGePoint3d& out) {
    // In the plan: heights would make crossing plan lines skew.
    AcGePoint2d r;
    if (!M_Inters(a1.convert2d(), a2.convert2d(), b1.convert2d(), b2.convert2d(), teston, r))
        return 0;
    out.set(r.x, r.y, 0.0);
    return 1;
}
