// Point-in-polygon tests: the angle sum, the crossing count, and the polyline form.
#include "dbents.h"
#include "toolkit/curves.h"
#include "toolkit/geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kOnTol = 0.0001;

// The sum of the angles the edges subtend at p. Each difference is reduced by fmod with pi,
// not to (-pi, pi]: a point inside a simple outline then sums to +-pi, and callers rely on the
// results this gives for outlines that overlap themselves too.
template <class Point> int angleSum(const AcGePoint2d& p, const AcArray<Point>& pts) {
    const int n = pts.length();
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        const int j = i == 0 ? n - 1 : i - 1;
        const AcGePoint2d vi(pts[i].x, pts[i].y), vj(pts[j].x, pts[j].y);
        const double d = M_Angle(p, vj) - M_Angle(p, vi);
        if (p.distanceTo(vi) < kOnTol) return 0;
        // Opposite directions: p lies between the two vertices.
        if (std::fabs(std::fabs(d) - kPi) < kOnTol) return 0;
        sum += std::fmod(d, kPi);
    }
    return std::fabs(std::fabs(sum) - kPi) < kOnTol ? 1 : -1;
}

} // namespace

int M_PtInPolygon(AcGePoint2d p, AcArray<AcGePoint2d> pts) {
    return angleSum(p, pts);
}

int M_PtInPolygon(AcGePoint2d p, AcArray<AcGePoint3d> pts) {
    return angleSum(p, pts);
}

int M_IsPointInside(AcGePoint2d p, AcArray<AcGePoint2d> pts) {
    const int n = pts.length();
    if (n < 2) return 0;
    int count = 0;
    AcGePoint2d a = pts[0];
    for (int i = 1; i <= n; ++i) {
        const AcGePoint2d b = pts[i % n];
        // Half-open in y so that a vertex on the ray counts once; a vertical edge through p
        // counts, so points on right-hand edges are inside and those on left-hand edges not.
        if (p.y > std::min(a.y, b.y) && p.y <= std::max(a.y, b.y) && p.x <= std::max(a.x, b.x) &&
            a.y != b.y) {
            const double x = (p.y - a.y) * (b.x - a.x) / (b.y - a.y) + a.x;
            if (a.x == b.x || p.x <= x) ++count;
        }
        a = b;
    }
    return count % 2 == 1 ? 1 : 0;
}

int M_IsInPline(AcGePoint3d p, AcDbPolyline* pl) {
    AcArray<AcGePoint2d> pts;
    if (!M_GetArcPlineVertex(pl, 1.0, pts)) return 0;
    return M_PtInPolygon(p.convert2d(), pts) >= 0 ? 1 : 0;
}
