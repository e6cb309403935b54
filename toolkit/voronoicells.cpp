// The Voronoi cells: the box cut down, neighbour by neighbour, to the points nearer the site
// than to that neighbour. The Delaunay neighbours are the only sites whose bisectors bound a
// cell, so the result is the cell clipped to the box, closed along the box's sides and through
// its corners wherever the cell reaches them.
#include "toolkit/geometry.h"
#include "toolkit/voronoidiagram.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace qor::voronoi {

namespace {

using Polygon = std::vector<AcGePoint2d>;

// Keeps the part of the convex polygon on the side of the bisector of s and t nearer s.
void cutByBisector(const Polygon& in, AcGePoint2d s, AcGePoint2d t, Polygon& out) {
    out.clear();
    const AcGePoint2d mid((s.x + t.x) / 2.0, (s.y + t.y) / 2.0);
    const double dx = t.x - s.x, dy = t.y - s.y;
    const auto side = [&](AcGePoint2d p) { return (p.x - mid.x) * dx + (p.y - mid.y) * dy; };
    const size_t n = in.size();
    for (size_t i = 0; i < n; ++i) {
        const AcGePoint2d p = in[i], q = in[(i + 1) % n];
        const double fp = side(p), fq = side(q);
        if (fp <= 0.0) out.push_back(p);
        if ((fp < 0.0 && fq > 0.0) || (fp > 0.0 && fq < 0.0)) {
            const double k = fp / (fp - fq);
            out.emplace_back(p.x + (q.x - p.x) * k, p.y + (q.y - p.y) * k);
        }
    }
}

// Corners that rounding split in two (a Voronoi vertex shared by four or more sites) become
// one.
void mergeClose(Polygon& poly, double tol) {
    Polygon kept;
    for (const AcGePoint2d& p : poly)
        if (kept.empty() || std::hypot(p.x - kept.back().x, p.y - kept.back().y) > tol)
            kept.push_back(p);
    while (kept.size() > 1 &&
           std::hypot(kept.front().x - kept.back().x, kept.front().y - kept.back().y) <= tol)
        kept.pop_back();
    poly.swap(kept);
}

// Turns the counter-clockwise ring so that it starts at the corner seen from the site at the
// smallest angle counter-clockwise from the x axis.
void startEastOfSite(Polygon& poly, AcGePoint2d site) {
    const auto angle = [&](AcGePoint2d p) { return M_Angle(site, p); };
    const auto first = std::min_element(poly.begin(), poly.end(),
                                        [&](auto a, auto b) { return angle(a) < angle(b); });
    std::rotate(poly.begin(), first, poly.end());
}

} // namespace

void appendCells(const Diagram& d, AcArray<AcGePoint3d>& out, AcArray<int>& counts) {
    const Box& b = d.box;
    const Polygon box = {{b.x0, b.y0}, {b.x1, b.y0}, {b.x1, b.y1}, {b.x0, b.y1}};
    const double tol = d.negligible();
    std::vector<int> near;
    Polygon cell, next;
    for (size_t s = 0; s < d.sites.size(); ++s) {
        const AcGePoint2d site = d.sites[s];
        d.neighbours(static_cast<int>(s), near);
        cell = box;
        for (int t : near) {
            cutByBisector(cell, site, d.sites[static_cast<size_t>(t)], next);
            cell.swap(next);
        }
        mergeClose(cell, tol);
        // The site is strictly inside its cell, so a cell never collapses; the test only
        // keeps a corrupt one from coming out.
        if (cell.size() < 3) continue;
        startEastOfSite(cell, site);
        counts.append(static_cast<int>(cell.size()));
        for (const AcGePoint2d& p : cell)
            out.append(AcGePoint3d(p.x, p.y, 0.0));
    }
}

} // namespace qor::voronoi
