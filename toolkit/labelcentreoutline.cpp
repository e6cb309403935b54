// The outline the label-centre methods measure against, and the search for the point farthest
// from it.
#include "dbents.h"
#include "toolkit/curves.h"
#include "toolkit/geometry.h"
#include "toolkit/labelcentreinternal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qor::labels {

double sampleDivisor(int precision) {
    return precision == 1 ? 500.0 : precision == 2 ? 1000.0 : 200.0;
}

double gridDivisor(int precision) {
    return precision == 1 ? 50.0 : precision == 2 ? 100.0 : 10.0;
}

bool outlinePoints(AcDbCurve* c, AcArray<AcGePoint2d>& pts) {
    AcArray<AcGePoint3d> run;
    if (!c || !M_GetCurvePts(c, run) || run.isEmpty()) return false;
    pts.removeAll();
    pts.setPhysicalLength(run.length());
    for (const AcGePoint3d& p : run)
        pts.append(AcGePoint2d(p.x, p.y));
    return true;
}

namespace {

double distanceToSegment(const AcGePoint2d& p, const AcGePoint2d& a, const AcGePoint2d& b) {
    const double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
    double t = len2 > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

} // namespace

double distanceToSegments(const AcGePoint2d& p, const AcArray<AcGePoint2d>& pts) {
    if (pts.length() == 1) return p.distanceTo(pts[0]);
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i + 1 < pts.length(); ++i)
        best = std::min(best, distanceToSegment(p, pts[i], pts[i + 1]));
    return best;
}

void Farthest::offer(const AcGePoint2d& p) {
    const double d = distanceToSegments(p, mOutline);
    // The angle-sum test is the costly part: only a point that would win needs it.
    if (!(d > mClearance) || M_PtInPolygon(p, mOutline) < 0) return;
    mPoint = p;
    mClearance = d;
}

} // namespace qor::labels
