// Angles, polar points, distances and line intersections on prompt points.
#include "acedads.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

AcGeVector3d vec(const ads_point p) {
    return {p[0], p[1], p[2]};
}

} // namespace

ads_real acutAngle(const ads_point pt1, const ads_point pt2) {
    if (!pt1 || !pt2) return 0.0;
    double a = std::atan2(pt2[1] - pt1[1], pt2[0] - pt1[0]);
    if (a < 0.0) a += kTwoPi;
    // A tiny negative angle rounds up to a full turn, which is 0 here; + 0.0 clears a -0.
    return a >= kTwoPi ? 0.0 : a + 0.0;
}

void acutPolar(const ads_point pt, ads_real angle, ads_real dist, ads_point result) {
    if (!pt || !result) return;
    const double x = pt[0] + dist * std::cos(angle);
    const double y = pt[1] + dist * std::sin(angle);
    result[2] = pt[2];
    result[0] = x;
    result[1] = y;
}

ads_real acutDistance(const ads_point pt1, const ads_point pt2) {
    if (!pt1 || !pt2) return 0.0;
    return (vec(pt2) - vec(pt1)).length();
}

int acdbInters(const ads_point from1, const ads_point to1, const ads_point from2,
               const ads_point to2, int teston, ads_point result) {
    if (!from1 || !to1 || !from2 || !to2 || !result) return RTERROR;
    const AcGeVector3d p1 = vec(from1), p2 = vec(from2);
    const AcGeVector3d d1 = vec(to1) - p1, d2 = vec(to2) - p2;
    // Point tolerance relative to the size of the coordinates, so that far-off lines are
    // judged as near ones are.
    double extent = 1.0;
    for (const double* p : {from1, to1, from2, to2})
        for (int i = 0; i < 3; ++i)
            extent = std::max(extent, std::fabs(p[i]));
    const double tol = AcGeContext::gTol.equalPoint() * extent;
    const double l1 = d1.length(), l2 = d2.length();
    if (!(l1 > tol) || !(l2 > tol)) return RTNONE;

    const AcGeVector3d n = d1.crossProduct(d2);
    const double nn = n.lengthSqrd();
    if (!(std::sqrt(nn) > AcGeContext::gTol.equalVector() * l1 * l2)) return RTNONE; // parallel
    const AcGeVector3d w = p2 - p1;
    // Lines that pass each other at a distance do not meet.
    if (std::fabs(w.dotProduct(n)) / std::sqrt(nn) > tol) return RTNONE;
    const double t1 = w.crossProduct(d2).dotProduct(n) / nn;
    const double t2 = w.crossProduct(d1).dotProduct(n) / nn;
    if (teston) {
        const double e1 = tol / l1, e2 = tol / l2;
        if (t1 < -e1 || t1 > 1.0 + e1 || t2 < -e2 || t2 > 1.0 + e2) return RTNONE;
    }
    const AcGeVector3d p = p1 + d1 * t1;
    result[0] = p.x;
    result[1] = p.y;
    result[2] = p.z;
    return RTNORM;
}
