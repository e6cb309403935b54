// Point classification for the engine. The angle-sum test adds fmod(d, pi) over the edges; an
// edge whose difference d lies beyond a half turn adds d - pi or d + pi, so the sum comes to
// -pi times (edges beyond +pi less edges beyond -pi). Only edges that reach the ray from the
// point towards +x can go beyond a half turn, and only edges within their margin can put the
// point on the boundary; the grid finds both, and each is tested with the test's own arithmetic.
#include "toolkit/booleanlocate.h"

#include "toolkit/geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qor::boolean {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kOnTol = 0.0001;

// A direction just below +x whose angle rounds up to a full turn and so reads 0.
bool onRay(double dx, double dy) {
    return dx > 0.0 && -dy <= 1e-12 * dx;
}

} // namespace

PolygonLocator::PolygonLocator(const AcArray<AcGePoint2d>& polygon, const std::vector<Edge>& edges,
                               EdgeGrid* grid)
    : mPolygon(polygon), mEdges(edges), mGrid(grid) {}

int PolygonLocator::locate(const AcGePoint2d& p) {
    if (!mGrid || !std::isfinite(p.x) || !std::isfinite(p.y)) return M_PtInPolygon(p, mPolygon);
    // Beyond every margin nothing is near and the outline winds round nothing.
    if (!mGrid->covers(p.x, p.y)) return -1;
    int beyond = 0;
    const bool onBoundary = mGrid->anyRightOf(p.x, p.y, [&](int k) {
        const Edge& e = mEdges[static_cast<size_t>(k)];
        const double m = mGrid->margin(k);
        const bool near = p.x >= std::min(e.x1, e.x2) - m && p.x <= std::max(e.x1, e.x2) + m &&
                          p.y >= std::min(e.y1, e.y2) - m && p.y <= std::max(e.y1, e.y2) + m;
        if (!near) {
            const double dx1 = e.x1 - p.x, dy1 = e.y1 - p.y, dx2 = e.x2 - p.x, dy2 = e.y2 - p.y;
            // Both ends to the left, or both above, or both clearly below: the two directions
            // lie within a half turn of each other without passing +x.
            if (dx1 < 0.0 && dx2 < 0.0) return false;
            if (dy1 > 0.0 && dy2 > 0.0) return false;
            if (dy1 < 0.0 && dy2 < 0.0 && !onRay(dx1, dy1) && !onRay(dx2, dy2)) return false;
        }
        // Edge k is the test's term for vertex k + 1, whose predecessor is vertex k.
        const AcGePoint2d from(e.x1, e.y1), to(e.x2, e.y2);
        const double d = M_Angle(p, from) - M_Angle(p, to);
        if (p.distanceTo(to) < kOnTol) return true;
        if (std::fabs(std::fabs(d) - kPi) < kOnTol) return true;
        if (d > kPi)
            ++beyond;
        else if (d < -kPi)
            --beyond;
        return false;
    });
    if (onBoundary) return 0;
    return beyond == 1 || beyond == -1 ? 1 : -1;
}

} // namespace qor::boolean
