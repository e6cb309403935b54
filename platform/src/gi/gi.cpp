// Run-time identity of the drawing interfaces, their few default behaviours, and the check
// of clip outlines.
#include "gi.h"

#include <algorithm>
#include <cmath>
#include <vector>

ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawable, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiSubEntityTraits, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawableTraits, AcGiSubEntityTraits)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiGeometry, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiContext, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewport, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiCommonDraw, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldDraw, AcGiCommonDraw)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportDraw, AcGiCommonDraw)

Adesk::Boolean AcGiGeometry::worldLine(const AcGePoint3d pnts[2]) {
    if (!pnts) return Adesk::kFalse;
    // Undo the model transform for the one line, so the points arrive in world coordinates.
    AcGeMatrix3d worldToModel;
    getWorldToModelTransform(worldToModel);
    const bool pushed = pushModelTransform(worldToModel);
    const Adesk::Boolean stop = polyline(2, pnts);
    if (pushed) popModelTransform();
    return stop;
}

AcGeVector3d AcGiViewport::viewDir() const {
    AcGePoint3d camera, target;
    getCameraLocation(camera);
    getCameraTarget(target);
    const AcGeVector3d d = camera - target;
    const double len = d.length();
    if (!(len > 0.0) || !std::isfinite(len)) return {0, 0, 1};
    return d / len;
}

// ---------------------------------------------------------------- clip outlines

namespace {

double cross(const AcGePoint2d& o, const AcGePoint2d& a, const AcGePoint2d& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double pointSegmentDistance(const AcGePoint2d& p, const AcGePoint2d& a, const AcGePoint2d& b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// Closed segments that cross, or come within tol of each other.
bool segmentsMeet(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c,
                  const AcGePoint2d& d, double tol) {
    const double o1 = cross(a, b, c), o2 = cross(a, b, d);
    const double o3 = cross(c, d, a), o4 = cross(c, d, b);
    if (((o1 > 0 && o2 < 0) || (o1 < 0 && o2 > 0)) && ((o3 > 0 && o4 < 0) || (o3 < 0 && o4 > 0)))
        return true;
    return pointSegmentDistance(c, a, b) <= tol || pointSegmentDistance(d, a, b) <= tol ||
           pointSegmentDistance(a, c, d) <= tol || pointSegmentDistance(b, c, d) <= tol;
}

} // namespace

bool acgiIsValidClipBoundary(const AcGePoint2dArray& input) {
    std::vector<AcGePoint2d> pts(input.begin(), input.end());
    double extent = 0.0;
    for (const AcGePoint2d& p : pts) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
        extent = std::max({extent, std::fabs(p.x), std::fabs(p.y)});
    }
    // Relative to the outline's size, so that far-off or tiny outlines are judged alike.
    const double tol = AcGeContext::gTol.equalPoint() * std::max(1.0, extent);
    if (pts.size() > 3 && pts.front().distanceTo(pts.back()) <= tol) pts.pop_back();
    const size_t n = pts.size();
    if (n < 3) return false;

    for (size_t i = 0; i < n; ++i)
        if (pts[i].distanceTo(pts[(i + 1) % n]) <= tol) return false;

    // Consecutive edges share a vertex and nothing more: no fold-back along either of them.
    // (With four or more edges a fold-back also touches a far edge; a triangle needs this.)
    for (size_t i = 0; i < n; ++i) {
        const AcGePoint2d& a = pts[(i + n - 1) % n];
        const AcGePoint2d& b = pts[i];
        const AcGePoint2d& c = pts[(i + 1) % n];
        if (pointSegmentDistance(c, a, b) <= tol || pointSegmentDistance(a, b, c) <= tol)
            return false;
    }

    for (size_t i = 0; i < n; ++i) {
        for (size_t j = i + 2; j < n; ++j) {
            if (i == 0 && j == n - 1) continue; // the closing edge is adjacent to the first
            if (segmentsMeet(pts[i], pts[(i + 1) % n], pts[j], pts[(j + 1) % n], tol)) return false;
        }
    }

    // Edges that share nothing but their vertices close a simple outline, which has an area.
    return true;
}
