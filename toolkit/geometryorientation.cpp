// Orientation, clip-boundary validity and area of outlines.
#include "dbents.h"
#include "gi.h"
#include "toolkit/curves.h"
#include "toolkit/geometry.h"
#include "toolkit/geometryarcs.h"

#include <cmath>

namespace {

// Clockwise when twice the signed area, over the outline closed by a repeated first vertex,
// is negative; a degenerate outline counts as counter-clockwise.
int clockwise(AcArray<AcGePoint2d>& ring) {
    double twice = 0.0;
    for (int k = 1; k < ring.length(); ++k)
        twice += ring[k - 1].x * ring[k].y - ring[k].x * ring[k - 1].y;
    return twice < 0.0 ? 1 : 0;
}

template <class Point> int clockwiseList(const AcArray<Point>& pts) {
    if (pts.length() < 3) return 0;
    AcArray<AcGePoint2d> ring;
    for (const Point& p : pts)
        ring.append(AcGePoint2d(p.x, p.y));
    if (ring.first().distanceTo(ring.last()) > 0.0001) ring.append(ring.first());
    return clockwise(ring);
}

} // namespace

int M_PolyIsClockWise(AcArray<AcGePoint3d> pts) {
    return clockwiseList(pts);
}

int M_PolyIsClockWise(AcArray<AcGePoint2d> pts) {
    return clockwiseList(pts);
}

int M_PolyIsClockWise(AcDbPolyline* pl) {
    if (!pl || pl->numVerts() <= 2) return 0;
    AcArray<AcGePoint2d> ring;
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
        AcGePoint2d p;
        pl->getPointAt(i, p);
        ring.append(p);
    }
    ring.append(ring.first());
    return clockwise(ring);
}

int M_CheckBorder(AcArray<AcGePoint2d> pts) {
    return pts.length() > 2 && acgiIsValidClipBoundary(pts) ? 1 : 0;
}

int M_CheckBorder(AcArray<AcGePoint3d> pts) {
    AcArray<AcGePoint2d> flat;
    for (const AcGePoint3d& p : pts)
        flat.append(p.convert2d());
    return M_CheckBorder(flat);
}

int M_CheckBorder(AcArray<AcGePoint2d> pts, AcArray<double> bulges) {
    if (pts.length() < 2 || pts.length() != bulges.length()) return 0;
    // Left open: the expanded list is judged as closing on itself.
    const auto pl = qor::geometry::bulgedPline(pts, bulges);
    AcArray<AcGePoint2d> out;
    if (!M_GetArcPlineVertex(pl.get(), 1.0, out)) return 0;
    return out.length() > 2 && acgiIsValidClipBoundary(out) ? 1 : 0;
}

int M_HasArea(AcArray<AcGePoint2d> pts, AcArray<double> bulges) {
    if (pts.length() < 2 || pts.length() != bulges.length()) return 0;
    const auto pl = qor::geometry::bulgedPline(pts, bulges);
    pl->setClosed(true);
    double area = 0.0;
    if (pl->getArea(area) != Acad::eOk) return 0;
    return std::fabs(area) > 0.001 ? 1 : 0;
}
