// The largest inscribed circle's centre on the Voronoi vertices of points sampled along the
// outline.
#include "dbents.h"
#include "toolkit/curves.h"
#include "toolkit/geometry.h"
#include "toolkit/labelcentre.h"
#include "toolkit/labelcentreinternal.h"
#include "toolkit/voronoi.h"

#include <algorithm>
#include <cmath>

using namespace qor::labels;

namespace {

// The margin the diagram adds round its sites, and how near a side counts as on it.
constexpr double kBoxMargin = 10.0;
constexpr double kOnSide = 0.0001;

struct Box {
    double x0, y0, x1, y1;
    // Ends of edges that run off to infinity were cut at the box: their vertices are not real.
    bool onSide(const AcGePoint3d& p) const {
        return std::fabs(p.x - x0) < kOnSide || std::fabs(p.x - x1) < kOnSide ||
               std::fabs(p.y - y0) < kOnSide || std::fabs(p.y - y1) < kOnSide;
    }
};

// The diagram's own box: the cleaned sites' extents with the margin.
Box enlargedBox(const AcArray<AcGePoint3d>& sites) {
    Box b{sites[0].x, sites[0].y, sites[0].x, sites[0].y};
    for (const AcGePoint3d& p : sites) {
        b.x0 = std::min(b.x0, p.x);
        b.y0 = std::min(b.y0, p.y);
        b.x1 = std::max(b.x1, p.x);
        b.y1 = std::max(b.y1, p.y);
    }
    return Box{b.x0 - kBoxMargin, b.y0 - kBoxMargin, b.x1 + kBoxMargin, b.y1 + kBoxMargin};
}

} // namespace

int M_GetCenPtVoron(AcDbCurve* c, int precision, AcGePoint2d& centre, double& radius) {
    AcArray<AcGePoint2d> outline;
    double len = 0.0;
    if (!outlinePoints(c, outline) || !M_GetCurveLength(c, len)) return 0;
    AcArray<AcGePoint3d> samples;
    if (!M_GetCurPts(c, len / sampleDivisor(precision), samples)) return 0;
    M_DelMultPts(samples);
    AcArray<AcGePoint3d> edges;
    AcArray<int> counts;
    if (samples.isEmpty() || !M_GetVoronoi(0, samples, edges, counts)) return 0;

    const Box box = enlargedBox(samples);
    Farthest best(outline);
    for (int i = 0; i + 1 < edges.length(); i += 2) {
        if (box.onSide(edges[i]) || box.onSide(edges[i + 1])) continue;
        best.offer(edges[i].convert2d());
        best.offer(edges[i + 1].convert2d());
    }
    if (!best.found()) return 0;
    centre = best.point();
    radius = best.clearance();
    return 1;
}
