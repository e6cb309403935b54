// Height of a plan point in a triangle, and the sector estimate beside a triangle list.
#include "toolkit/tinheight.h"
#include "toolkit/geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qor::tin {

namespace {

constexpr double kOnEdge = 0.001;
constexpr double kCoincident = 0.0001;
constexpr double kFar = 1000000.0;

double planDist(const AcGePoint3d& a, const AcGePoint3d& b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    return std::sqrt(dx * dx + dy * dy);
}

double cross(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// True when q is farther than a thousandth of the longest edge (and 0.001) from the triangle.
// There the angle-sum test cannot answer anything but outside: no corner is within 0.0001 and
// no edge subtends an angle within 0.0001 of pi. Tried first against the bounding box, whose
// width plus height is at least the longest edge, then against each edge's line.
bool clearlyOutside(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                    const AcGePoint3d& q) {
    const double x0 = std::min({p1.x, p2.x, p3.x}), x1 = std::max({p1.x, p2.x, p3.x});
    const double y0 = std::min({p1.y, p2.y, p3.y}), y1 = std::max({p1.y, p2.y, p3.y});
    const double boxMargin = 0.001 * ((x1 - x0) + (y1 - y0)) + 0.001;
    if (q.x < x0 - boxMargin || q.x > x1 + boxMargin || q.y < y0 - boxMargin ||
        q.y > y1 + boxMargin)
        return true;
    const double area = cross(p1, p2, p3);
    if (!(area != 0.0) || !std::isfinite(area)) return false;
    const double side = area > 0.0 ? 1.0 : -1.0;
    const double l12 = planDist(p1, p2), l23 = planDist(p2, p3), l31 = planDist(p3, p1);
    const double margin = 0.001 * std::max({l12, l23, l31}) + 0.001;
    return -side * cross(p1, p2, q) > margin * l12 || -side * cross(p2, p3, q) > margin * l23 ||
           -side * cross(p3, p1, q) > margin * l31;
}

// An angle a hair below 2*pi can round up to sector 8; one that is not a number goes to 0.
int sectorOf(double angle) {
    const double s = angle * 4.0 / std::numbers::pi;
    if (!(s >= 0.0)) return 0;
    return s < 8.0 ? static_cast<int>(s) : 7;
}

} // namespace

int classify(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
             const AcGePoint3d& q) {
    if (clearlyOutside(p1, p2, p3, q)) return -1;
    return M_PtInPolygon(AcGePoint2d(q.x, q.y), AcArray<AcGePoint3d>{p1, p2, p3, p1});
}

bool heightInTriangle(int cls, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                      const AcGePoint3d& q, double& h) {
    if (cls < 0) return false;
    const double d12 = planDist(p1, p2), d23 = planDist(p2, p3), d31 = planDist(p3, p1);
    if (cls == 0) {
        const double dq1 = planDist(q, p1), dq2 = planDist(q, p2), dq3 = planDist(q, p3);
        if (std::fabs(d12 - dq1 - dq2) < kOnEdge) {
            h = d12 > 0.0 ? p1.z + (p2.z - p1.z) * dq1 / d12 : p1.z;
            return true;
        }
        if (std::fabs(d23 - dq2 - dq3) < kOnEdge) {
            // Only a zero d23 after d12 > 0 is guarded: the stored rule tests d12.
            h = d12 > 0.0 && d23 > 0.0 ? p2.z + (p3.z - p2.z) * dq2 / d23 : p2.z;
            return true;
        }
        if (std::fabs(d31 - dq1 - dq3) < kOnEdge) {
            h = d12 > 0.0 ? p1.z + (p3.z - p1.z) * dq1 / d12 : p1.z;
            return true;
        }
        return false;
    }
    // Inside: along the ray from p1 through q to the edge p2-p3. The ray from p2 must meet
    // p1-p3 as well, though only the first crossing is used.
    const double reach = 1.5 * std::max({d12, d23, d31});
    AcGePoint3d f1, f2, a, b;
    M_Polar(p1, M_Angle(p1, q), reach, f1);
    M_Polar(p2, M_Angle(p2, q), reach, f2);
    if (!M_Inters(p2, p3, p1, f1, 1, a) || !M_Inters(p1, p3, p2, f2, 1, b)) return false;
    const double d1a = planDist(p1, a);
    if (d23 == 0.0 || d1a == 0.0) return false;
    const double za = p2.z + (p3.z - p2.z) * planDist(p2, a) / d23;
    h = p1.z + (za - p1.z) * planDist(p1, q) / d1a;
    return true;
}

bool pairHeight(const AcGePoint3d& q, const AcGePoint3d& P, const AcGePoint3d& A,
                const AcGePoint3d& B, double& h) {
    const double pq = planDist(P, q);
    if (pq < kCoincident) {
        h = P.z;
        return true;
    }
    AcGePoint3d x;
    if (!M_Inters(P, q, A, B, 0, x)) return false;
    const double ab = planDist(A, B), ax = planDist(A, x), xb = planDist(x, B);
    if (!(std::fabs(ab - ax - xb) < kCoincident) || ab == 0.0) return false;
    const double zx = (ax * B.z + xb * A.z) / ab;
    const double px = planDist(P, x);
    h = (pq * zx + px * P.z) / (pq + px);
    return true;
}

bool sectorHeight(const AcArray<AcGePoint3d>& tris, const AcGePoint3d& q, double& h) {
    double dist[8];
    const AcGePoint3d* nearest[8] = {};
    std::fill(std::begin(dist), std::end(dist), kFar);
    for (int t = 0; t + 2 < tris.length(); t += 3) {
        const AcGePoint3d& p = tris[t];
        const int s = sectorOf(M_Angle(q, p));
        const double d = q.distanceTo(p);
        if (d < dist[s]) {
            dist[s] = d;
            nearest[s] = &p;
        }
    }
    int best = -1;
    double bestDist = kFar;
    for (int s = 0; s < 8; ++s) {
        if (dist[s] < bestDist) {
            bestDist = dist[s];
            best = s;
        }
    }
    if (best < 0) return false;
    const AcGePoint3d& P = *nearest[best];
    dist[best] = kFar;

    double sum = 0.0;
    int count = 0;
    for (int i = 0; i < 8; ++i) {
        for (int j = i + 1; j < 8; ++j) {
            double v = 0.0;
            if (dist[i] + dist[j] < kFar && pairHeight(q, P, *nearest[i], *nearest[j], v)) {
                sum += v;
                ++count;
            }
        }
    }
    if (count == 0) return false;
    h = sum / count;
    return true;
}

} // namespace qor::tin
