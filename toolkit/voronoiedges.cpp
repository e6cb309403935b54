// The Voronoi edges: one per triangle side, between the circumcentres of the two triangles
// that share it or, on the hull, from the one triangle's circumcentre outwards.
#include "toolkit/voronoidiagram.h"

#include <cmath>
#include <limits>

namespace qor::voronoi {

namespace {

void append(AcGePoint2d a, AcGePoint2d b, AcArray<AcGePoint3d>& out) {
    out.append(AcGePoint3d(a.x, a.y, 0.0));
    out.append(AcGePoint3d(b.x, b.y, 0.0));
}

// A clipped piece; one that only touches the box is not in it.
void record(const Diagram& d, AcGePoint2d a, AcGePoint2d b, AcArray<AcGePoint3d>& out) {
    if (std::hypot(b.x - a.x, b.y - a.y) > d.negligible()) append(a, b, out);
}

bool inBox(const Box& box, AcGePoint2d p) {
    return p.x >= box.x0 && p.x <= box.x1 && p.y >= box.y0 && p.y <= box.y1;
}

// Sites on one line: the bisector between each pair of neighbours along it, across the box.
void lineEdges(const Diagram& d, AcArray<AcGePoint3d>& out) {
    const double inf = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i + 1 < d.sites.size(); ++i) {
        const AcGePoint2d &p = d.sites[i], &q = d.sites[i + 1];
        const AcGePoint2d mid((p.x + q.x) / 2.0, (p.y + q.y) / 2.0);
        AcGePoint2d a, b;
        if (clipToBox(d.box, mid, AcGeVector2d(-(q.y - p.y), q.x - p.x), -inf, inf, a, b))
            record(d, a, b, out);
    }
}

} // namespace

void appendEdges(const Diagram& d, AcArray<AcGePoint3d>& out) {
    if (d.corners.empty()) {
        lineEdges(d, out);
        return;
    }
    const double inf = std::numeric_limits<double>::infinity();
    for (int t = 0; t < d.triangles(); ++t) {
        if (!d.centreOk[static_cast<size_t>(t)]) continue;
        const AcGePoint2d c = d.centre[static_cast<size_t>(t)];
        const int* k = &d.corners[3 * static_cast<size_t>(t)];
        for (int e = 0; e < 3; ++e) {
            const int s = k[e], r = k[(e + 1) % 3];
            const int u = d.across(t, s, r);
            AcGePoint2d a, b;
            if (u >= 0) {
                // Each shared side once, from its lower-numbered triangle.
                if (u < t || !d.centreOk[static_cast<size_t>(u)]) continue;
                const AcGePoint2d cu = d.centre[static_cast<size_t>(u)];
                // Four or more sites on one circle give triangles with one circumcentre: the
                // side between them is still an edge of the diagram, of no length, and its
                // point a vertex that searches over the edges' ends must see.
                if (std::hypot(cu.x - c.x, cu.y - c.y) <= d.negligible()) {
                    if (inBox(d.box, c)) append(c, cu, out);
                    continue;
                }
                if (clipToBox(d.box, c, cu - c, 0.0, 1.0, a, b)) record(d, a, b, out);
                continue;
            }
            // The triangle runs counter-clockwise, so the outside of the hull side s-r is on
            // its right.
            const AcGePoint2d &ps = d.sites[static_cast<size_t>(s)],
                              &pr = d.sites[static_cast<size_t>(r)];
            const AcGeVector2d outward(pr.y - ps.y, -(pr.x - ps.x));
            if (clipToBox(d.box, c, outward, 0.0, inf, a, b)) record(d, a, b, out);
        }
    }
}

} // namespace qor::voronoi
