#include "gecurves.h"
#include "toolkit/curves.h"
#include "toolkit/curvesinternal.h"

#include <algorithm>
#include <cmath>

namespace qor::curves {

int ArcDivision::parts(double length) const {
    const double ratio = std::floor(length / std::max(step, minStep));
    if (cap > 0) return ratio >= cap ? cap : static_cast<int>(ratio);
    int n = ratio >= maxCount ? maxCount : static_cast<int>(ratio);
    return std::max(n, minCount);
}

bool expandPline(const AcDbPolyline& pl, const ArcDivision& div, AcArray<AcGePoint2d>& out) {
    const unsigned nv = pl.numVerts();
    if (nv == 0) return false;
    const unsigned segments = nv - 1 + (pl.isClosed() ? 1 : 0);
    AcArray<AcGePoint2d> pts;
    AcGePoint2d p;
    pl.getPointAt(0, p);
    pts.append(p);
    bool any = false;
    for (unsigned i = 0; i < segments; ++i) {
        AcGePoint2d end;
        pl.getPointAt((i + 1) % nv, end);
        switch (pl.segType(i)) {
        case AcDbPolyline::kLine:
            pts.append(end);
            any = true;
            break;
        case AcDbPolyline::kArc: {
            AcGeCircArc2d arc;
            if (pl.getArcSegAt(i, arc) != Acad::eOk) break;
            const int n = div.parts(arc.length());
            // The arc's angles run in the polyline's direction of travel.
            const double a0 = arc.startAng(), sweep = arc.endAng() - arc.startAng();
            for (int k = 1; k <= n; ++k) {
                // The last point is the vertex itself, so that closed outlines close exactly.
                pts.append(k == n ? end : arc.evalPoint(a0 + sweep * k / n));
                any = true;
            }
            break;
        }
        default:
            break;
        }
    }
    if (!any) return false;
    out = pts;
    return true;
}

double bulgedLength(const AcGePoint2d& a, const AcGePoint2d& b, double bulge) {
    const double chord = a.distanceTo(b);
    if (bulge == 0.0 || chord == 0.0) return chord;
    // Included angle 4*atan(bulge); the arc is chord * (angle/2) / sin(angle/2).
    const double half = 2.0 * std::atan(std::fabs(bulge));
    return chord * half / std::sin(half);
}

double runLength(const AcArray<AcGePoint2d>& pts, const AcArray<double>& bulges, int from, int to) {
    double len = 0.0;
    for (int i = from; i + 1 <= to && i + 1 < pts.length(); ++i)
        len += bulgedLength(pts[i], pts[i + 1], i < bulges.length() ? bulges[i] : 0.0);
    return len;
}

} // namespace qor::curves

using namespace qor::curves;

int M_GetPlinePts(AcDbPolyline* pl, double step, int minCount, int maxCount,
                  AcArray<AcGePoint3d>& pts) {
    if (!pl || !(step >= 0.00001)) return 0;
    ArcDivision div;
    div.step = step;
    div.minStep = kMinStep;
    div.cap = 0;
    div.minCount = minCount;
    div.maxCount = maxCount;
    AcArray<AcGePoint2d> flat;
    if (!expandPline(*pl, div, flat)) return 0;
    const double z = pl->elevation();
    pts.removeAll();
    for (const AcGePoint2d& p : flat)
        pts.append(AcGePoint3d(p.x, p.y, z));
    return 1;
}

int M_GetArcPlineVertex(AcDbPolyline* pl, double step, AcArray<AcGePoint2d>& pts) {
    if (!pl || !(step >= 0.00001)) return 0;
    // Finer than 0.2 the arcs would only grow the lists.
    ArcDivision div;
    div.step = step;
    return expandPline(*pl, div, pts) ? 1 : 0;
}

int M_GetPlineCurPts(AcDbPolyline* pl, double step, AcArray<AcGePoint3d>& pts) {
    pts.removeAll();
    AcArray<AcGePoint2d> flat;
    if (!M_GetArcPlineVertex(pl, step, flat)) return 0;
    for (const AcGePoint2d& p : flat)
        pts.append(AcGePoint3d(p.x, p.y, 0.0));
    return 1;
}

int M_GetPlineCurPts(AcDbPolyline* pl, AcArray<AcGePoint3d>& pts) {
    if (!M_GetPlineCurPts(pl, 1.0, pts)) return 0;
    const double z = pl->elevation();
    for (AcGePoint3d& p : pts)
        p.z = z;
    return 1;
}
