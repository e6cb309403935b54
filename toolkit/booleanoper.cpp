// The exported forms of the two-polygon engine.
#include "toolkit/boolean.h"

#include "dbents.h"
#include "toolkit/booleanengine.h"

#include <utility>

namespace {

AcArray<AcGePoint2d> flat(const AcArray<AcGePoint3d>& pts) {
    AcArray<AcGePoint2d> out(pts.length());
    for (const AcGePoint3d& p : pts)
        out.append(p.convert2d());
    return out;
}

int toPolylines(const AcArray<AcGePoint2d>& a, const AcArray<AcGePoint2d>& b, int op,
                AcArray<void*>& plines) {
    AcArray<int> counts;
    AcArray<AcGePoint2d> pts;
    if (!qor::boolean::booleanLoops(a, b, op, counts, pts)) return 0;
    for (int at = 0; at < counts.length(); at += counts[at] + 1) {
        int n = counts[at];
        const int first = counts[at + 1];
        // A closed polyline closes itself: its repeated closing point would be a zero-length
        // segment.
        if (n > 2 && pts[counts[at + n]].distanceTo(pts[first]) < 0.0001) --n;
        auto* pl = new AcDbPolyline(static_cast<unsigned>(n));
        for (int k = 0; k < n; ++k)
            pl->addVertexAt(static_cast<unsigned>(k), pts[counts[at + 1 + k]]);
        pl->setClosed(true);
        plines.append(pl);
    }
    return 1;
}

} // namespace

int M_BooleanOper(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts) {
    return qor::boolean::booleanLoops(std::move(a), std::move(b), op, counts, pts);
}

int M_BooleanOper(AcArray<AcGePoint3d> a, AcArray<AcGePoint3d> b, int op, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts) {
    return qor::boolean::booleanLoops(flat(a), flat(b), op, counts, pts);
}

int M_BooleanOper(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<void*>& plines) {
    return toPolylines(a, b, op, plines);
}

int M_BooleanOper(AcArray<AcGePoint3d> a, AcArray<AcGePoint3d> b, int op, AcArray<void*>& plines) {
    return toPolylines(flat(a), flat(b), op, plines);
}
