// Extra points for the union by triangulation. Where the triangulation of the loops' points
// cuts across a loop edge, triangles straddle that edge and the kept ones make the outline
// jagged; a point where the cut crosses the edge lets the next triangulation put an edge
// along it instead.
#include "toolkit/booleangrid.h"
#include "toolkit/booleanhash.h"
#include "toolkit/booleanranges.h"
#include "toolkit/booleanunion.h"
#include "toolkit/geometry.h"
#include "toolkit/tin.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

namespace {

using qor::boolean::Edge;

constexpr double kMergeTol = 0.2;
// Twice the merge tolerance, so that merging never swallows an extra point or lets one
// replace a loop vertex.
constexpr double kSpacing = 0.4;
// Beyond this the grids' slack no longer covers rounding.
constexpr double kIndexedLimit = 1e9;

double cross(double ax, double ay, double bx, double by, double px, double py) {
    return (bx - ax) * (py - ay) - (by - ay) * (px - ax);
}

// The parameter along s where t crosses it, strictly inside both; -1 when they do not cross.
double crossing(const Edge& s, const Edge& t) {
    const double o1 = cross(s.x1, s.y1, s.x2, s.y2, t.x1, t.y1);
    const double o2 = cross(s.x1, s.y1, s.x2, s.y2, t.x2, t.y2);
    const double o3 = cross(t.x1, t.y1, t.x2, t.y2, s.x1, s.y1);
    const double o4 = cross(t.x1, t.y1, t.x2, t.y2, s.x2, s.y2);
    if (!((o1 < 0 && o2 > 0) || (o1 > 0 && o2 < 0))) return -1;
    if (!((o3 < 0 && o4 > 0) || (o3 > 0 && o4 < 0))) return -1;
    return o3 / (o3 - o4);
}

// The distinct edges of the triangulation of the merged points.
std::vector<Edge> triangulationEdges(const AcArray<AcGePoint2d>& pts) {
    AcArray<AcGePoint3d> merged(pts.length());
    for (const AcGePoint2d& p : pts)
        merged.append(AcGePoint3d(p.x, p.y, 0.0));
    M_DelMultPts(1, kMergeTol, merged);
    AcArray<int> faces;
    if (merged.length() < 3 || !M_GetTrianglePts(merged, faces)) return {};
    std::set<std::pair<int, int>> seen;
    std::vector<Edge> edges;
    for (int f = 0; f + 3 < faces.length(); f += faces[f] + 1)
        for (int k = 0; k < 3; ++k) {
            const int a = faces[f + 1 + k], b = faces[f + 1 + (k + 1) % 3];
            if (!seen.insert({std::min(a, b), std::max(a, b)}).second) continue;
            edges.push_back({merged[a].x, merged[a].y, merged[b].x, merged[b].y});
        }
    return edges;
}

} // namespace

int M_GetInterPolygonPt(AcArray<AcGePoint2d> pts, AcArray<int> ranges, AcArray<AcGePoint3d>& out) {
    out.removeAll();
    if (!qor::boolean::allFinite(pts)) return 0;
    const std::vector<Edge> cuts = triangulationEdges(pts);
    if (cuts.empty()) return 0;
    const bool modest = std::all_of(pts.begin(), pts.end(), [](const AcGePoint2d& p) {
        return std::fabs(p.x) <= kIndexedLimit && std::fabs(p.y) <= kIndexedLimit;
    });
    qor::boolean::EdgeGrid grid;
    if (modest) grid.build(cuts);
    qor::boolean::PointHash given(kSpacing);
    for (int i = 0; i < pts.length(); ++i)
        given.insert(pts[i], i);
    const auto nearGiven = [&](const AcGePoint2d& p) {
        bool found = false;
        given.forEachNear(p, [&](int i) { found = found || pts[i].distanceTo(p) < kSpacing; });
        return found;
    };

    std::vector<int> candidates;
    std::vector<double> along;
    for (const AcArray<AcGePoint2d>& loop : qor::boolean::loopsOf(pts, ranges)) {
        const int n = loop.length();
        for (int i = 0; i < n && n > 1; ++i) {
            const AcGePoint2d &p = loop[i], &q = loop[(i + 1) % n];
            const Edge side{p.x, p.y, q.x, q.y};
            if (modest) {
                grid.alongSegment(side, candidates);
            } else {
                candidates.resize(cuts.size());
                for (size_t k = 0; k < cuts.size(); ++k)
                    candidates[k] = static_cast<int>(k);
            }
            along.clear();
            for (int k : candidates) {
                const double t = crossing(side, cuts[static_cast<size_t>(k)]);
                if (t > 0.0 && t < 1.0) along.push_back(t);
            }
            std::sort(along.begin(), along.end());
            AcGePoint2d last = p;
            for (double t : along) {
                const AcGePoint2d x(p.x + t * (q.x - p.x), p.y + t * (q.y - p.y));
                if (x.distanceTo(last) < kSpacing || nearGiven(x)) continue;
                out.append(AcGePoint3d(x.x, x.y, 0.0));
                last = x;
            }
        }
    }
    return out.isEmpty() ? 0 : 1;
}
