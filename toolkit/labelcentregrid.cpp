// The largest inscribed circle's centre on a regular grid over the curve's extents.
#include "dbents.h"
#include "toolkit/labelcentre.h"
#include "toolkit/labelcentreinternal.h"

#include <algorithm>
#include <cmath>

using namespace qor::labels;

namespace {

constexpr double kMinSpacing = 0.001;

} // namespace

int M_GetCenPtNet(AcDbCurve* c, int precision, AcGePoint2d& centre, double& radius) {
    AcArray<AcGePoint2d> ring;
    if (!outlinePoints(c, ring) || ring.length() < 2) return 0;
    ring.append(ring.first());
    AcDbExtents ext;
    if (c->getGeomExtents(ext) != Acad::eOk) return 0;
    const double x0 = ext.minPoint().x, y0 = ext.minPoint().y;
    const double x1 = ext.maxPoint().x, y1 = ext.maxPoint().y;
    if (!std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1))
        return 0;
    double step = std::min(x1 - x0, y1 - y0) / gridDivisor(precision);
    if (step < kMinSpacing) step = kMinSpacing;
    // Without a row there is no grid point to try.
    if (!(y0 + step < y1)) return 0;

    Farthest best(ring);
    // Far from the origin a step can be lost in the rounding, which would never end the walk.
    for (double x = x0 + step; x < x1 && x + step > x; x += step)
        for (double y = y0 + step; y < y1 && y + step > y; y += step)
            best.offer(AcGePoint2d(x, y));
    if (!best.found()) return 0;
    centre = best.point();
    radius = best.clearance();
    return 1;
}
