// The Delaunay side of the Voronoi diagram: sites, box, oriented triangles, circumcentres and
// the triangles around each site; and the clipping of lines to the box.
#include "toolkit/voronoidiagram.h"
#include "toolkit/geometry.h"
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qor::voronoi {

namespace {

// The centre of the circle through a, b and c; false when they are too nearly on one line for
// it to be a finite point.
bool circumcentre(AcGePoint2d a, AcGePoint2d b, AcGePoint2d c, AcGePoint2d& out) {
    // Relative to a, which keeps the products small for surveyed coordinates far from 0.
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double d = 2.0 * (bx * cy - by * cx);
    if (d == 0.0) return false;
    const double b2 = bx * bx + by * by, c2 = cx * cx + cy * cy;
    out = AcGePoint2d(a.x + (cy * b2 - by * c2) / d, a.y + (bx * c2 - cx * b2) / d);
    return std::isfinite(out.x) && std::isfinite(out.y);
}

} // namespace

int Diagram::across(int t, int a, int b) const {
    for (int i = first[static_cast<size_t>(a)]; i < first[static_cast<size_t>(a) + 1]; ++i) {
        const int u = around[static_cast<size_t>(i)];
        if (u == t) continue;
        const int* c = &corners[3 * static_cast<size_t>(u)];
        if (c[0] == b || c[1] == b || c[2] == b) return u;
    }
    return -1;
}

void Diagram::neighbours(int s, std::vector<int>& out) const {
    out.clear();
    if (corners.empty()) {
        // One line: the sites are in order along it.
        if (s > 0) out.push_back(s - 1);
        if (s + 1 < static_cast<int>(sites.size())) out.push_back(s + 1);
        return;
    }
    for (int i = first[static_cast<size_t>(s)]; i < first[static_cast<size_t>(s) + 1]; ++i) {
        const int* c = &corners[3 * static_cast<size_t>(around[static_cast<size_t>(i)])];
        for (int k = 0; k < 3; ++k)
            if (c[k] != s && std::find(out.begin(), out.end(), c[k]) == out.end())
                out.push_back(c[k]);
    }
}

double Diagram::negligible() const {
    const double reach = std::max({std::fabs(box.x0), std::fabs(box.x1), std::fabs(box.y0),
                                   std::fabs(box.y1), box.x1 - box.x0, box.y1 - box.y0});
    return 1e-12 * reach;
}

bool buildDiagram(const AcArray<AcGePoint3d>& pts, Diagram& d) {
    AcArray<AcGePoint3d> flat;
    flat.setPhysicalLength(pts.length());
    for (const AcGePoint3d& p : pts)
        flat.append(AcGePoint3d(p.x, p.y, 0.0));
    if (!qor::tin::planFinite(flat)) return false;
    M_DelMultPts(flat);
    const int n = flat.length();
    if (n == 0) return false;

    d.sites.resize(static_cast<size_t>(n));
    d.box = Box{flat[0].x, flat[0].y, flat[0].x, flat[0].y};
    for (int i = 0; i < n; ++i) {
        const AcGePoint3d& p = flat[i];
        d.sites[static_cast<size_t>(i)] = AcGePoint2d(p.x, p.y);
        d.box.x0 = std::min(d.box.x0, p.x);
        d.box.y0 = std::min(d.box.y0, p.y);
        d.box.x1 = std::max(d.box.x1, p.x);
        d.box.y1 = std::max(d.box.y1, p.y);
    }
    d.box.x0 -= kBoxMargin;
    d.box.y0 -= kBoxMargin;
    d.box.x1 += kBoxMargin;
    d.box.y1 += kBoxMargin;

    d.corners.clear();
    AcArray<int> faces;
    if (n >= 3) M_GetTriangleFaces(flat, faces);
    d.corners.reserve(static_cast<size_t>(faces.length()) / 4 * 3);
    for (int f = 0; f + 3 < faces.length(); f += 4) {
        int a = faces[f + 1], b = faces[f + 2], c = faces[f + 3];
        const AcGePoint2d &pa = d.sites[static_cast<size_t>(a)],
                          &pb = d.sites[static_cast<size_t>(b)],
                          &pc = d.sites[static_cast<size_t>(c)];
        // The engine reports corners unoriented; the hull rays need to know which side is out.
        if ((pb.x - pa.x) * (pc.y - pa.y) - (pb.y - pa.y) * (pc.x - pa.x) < 0.0) std::swap(b, c);
        d.corners.insert(d.corners.end(), {a, b, c});
    }

    const size_t count = d.corners.size() / 3;
    d.centre.assign(count, AcGePoint2d());
    d.centreOk.assign(count, 0);
    for (size_t t = 0; t < count; ++t)
        d.centreOk[t] =
            circumcentre(d.sites[static_cast<size_t>(d.corners[3 * t])],
                         d.sites[static_cast<size_t>(d.corners[3 * t + 1])],
                         d.sites[static_cast<size_t>(d.corners[3 * t + 2])], d.centre[t]);

    d.first.assign(static_cast<size_t>(n) + 1, 0);
    for (int s : d.corners)
        ++d.first[static_cast<size_t>(s) + 1];
    for (int s = 0; s < n; ++s)
        d.first[static_cast<size_t>(s) + 1] += d.first[static_cast<size_t>(s)];
    d.around.assign(d.corners.size(), 0);
    std::vector<int> fill(d.first.begin(), d.first.end() - 1);
    for (size_t i = 0; i < d.corners.size(); ++i)
        d.around[static_cast<size_t>(fill[static_cast<size_t>(d.corners[i])]++)] =
            static_cast<int>(i / 3);
    return true;
}

bool clipToBox(const Box& box, AcGePoint2d p, AcGeVector2d dir, double t0, double t1,
               AcGePoint2d& a, AcGePoint2d& b) {
    if (dir.x == 0.0 && dir.y == 0.0) return false;
    // Liang-Barsky: each side of the box bounds t from one side.
    const double side[4][2] = {{-dir.x, p.x - box.x0},
                               {dir.x, box.x1 - p.x},
                               {-dir.y, p.y - box.y0},
                               {dir.y, box.y1 - p.y}};
    int from = -1, to = -1;
    for (int k = 0; k < 4; ++k) {
        const double pk = side[k][0], qk = side[k][1];
        if (pk == 0.0) {
            if (qk < 0.0) return false;
            continue;
        }
        const double r = qk / pk;
        if (pk < 0.0 && r > t0) {
            t0 = r;
            from = k;
        } else if (pk > 0.0 && r < t1) {
            t1 = r;
            to = k;
        }
    }
    if (!(t0 <= t1) || !std::isfinite(t0) || !std::isfinite(t1)) return false;
    a = AcGePoint2d(p.x + dir.x * t0, p.y + dir.y * t0);
    b = AcGePoint2d(p.x + dir.x * t1, p.y + dir.y * t1);
    // An end cut by a side lies on it exactly, not a rounding away.
    const double sides[4] = {box.x0, box.x1, box.y0, box.y1};
    if (from >= 0) (from < 2 ? a.x : a.y) = sides[from];
    if (to >= 0) (to < 2 ? b.x : b.y) = sides[to];
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(b.x) && std::isfinite(b.y);
}

} // namespace qor::voronoi
