#include "toolkit/geometryarcs.h"

#include "gecurves.h"

#include <algorithm>
#include <cmath>

namespace qor::geometry {

std::unique_ptr<AcDbPolyline> bulgedPline(const AcArray<AcGePoint2d>& pts,
                                          const AcArray<double>& bulges) {
    auto pl = std::make_unique<AcDbPolyline>();
    const int n = std::min(pts.length(), bulges.length());
    for (int i = 0; i < n; ++i)
        pl->addVertexAt(static_cast<unsigned>(i), pts[i], bulges[i], -1.0, -1.0);
    pl->setConstantWidth(0.0);
    return pl;
}

int expandPlineArcs(const AcDbPolyline* pl, double step, AcArray<AcGePoint2d>& pts) {
    if (!pl || !(step >= 0.00001)) return 0;
    const unsigned nv = pl->numVerts();
    if (nv == 0) return 0;
    const unsigned segments = nv - 1 + (pl->isClosed() ? 1 : 0);
    // Finer than this the arcs would only grow the lists.
    const double s = std::max(step, 0.2);
    constexpr double kMaxParts = 100.0;

    AcArray<AcGePoint2d> out;
    AcGePoint2d p;
    pl->getPointAt(0, p);
    out.append(p);
    bool any = false;
    for (unsigned i = 0; i < segments; ++i) {
        AcGePoint2d end;
        pl->getPointAt((i + 1) % nv, end);
        switch (pl->segType(i)) {
        case AcDbPolyline::kLine:
            out.append(end);
            any = true;
            break;
        case AcDbPolyline::kArc: {
            AcGeCircArc2d arc;
            if (pl->getArcSegAt(i, arc) != Acad::eOk) break;
            const double ratio = std::floor(arc.length() / s);
            const int parts = ratio >= 1.0 ? static_cast<int>(std::min(ratio, kMaxParts)) : 0;
            // The arc's angles run in the polyline's direction of travel.
            const double a0 = arc.startAng(), sweep = arc.endAng() - arc.startAng();
            for (int k = 1; k <= parts; ++k) {
                // The last point is the vertex itself, so that closed outlines close exactly.
                out.append(k == parts ? end : arc.evalPoint(a0 + sweep * k / parts));
                any = true;
            }
            break;
        }
        default:
            break;
        }
    }
    if (!any) return 0;
    pts = out;
    return 1;
}

} // namespace qor::geometry
