#include "toolkit/curves.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

std::unique_ptr<AcDbCurve> cloneCurve(const AcDbCurve* c) {
    AcRxObject* copy = c->clone();
    AcDbCurve* curve = AcDbCurve::cast(copy);
    if (!curve) delete copy;
    return std::unique_ptr<AcDbCurve>(curve);
}

} // namespace

int M_SortPtsbyCur(AcDbCurve* c, AcArray<AcGePoint3d> pts, AcArray<AcGePoint3d>& sorted) {
    double len = 0.0;
    if (!c || !M_GetCurveLength(c, len)) return 0;
    struct Along {
        double dist;
        AcGePoint3d pt;
    };
    std::vector<Along> inside;
    for (const AcGePoint3d& p : pts) {
        double d = 0.0;
        if (c->getDistAtPoint(p, d) != Acad::eOk) continue;
        if (d > 0.0 && d < len) inside.push_back({d, p});
    }
    if (inside.empty()) return 0;
    std::stable_sort(inside.begin(), inside.end(),
                     [](const Along& a, const Along& b) { return a.dist < b.dist; });
    sorted.removeAll();
    for (const Along& a : inside)
        sorted.append(a.pt);
    return 1;
}

int M_BreakCurByPts(AcDbCurve* c, AcArray<AcGePoint3d> pts, AcArray<void*>& out) {
    AcArray<AcGePoint3d> sorted;
    if (!M_SortPtsbyCur(c, pts, sorted)) return 0;
    AcDbVoidPtrArray pieces;
    const bool ok = c->getSplitCurves(sorted, pieces) == Acad::eOk;
    AcArray<void*> kept;
    for (void* p : pieces) {
        if (!p) continue;
        if (ok)
            kept.append(p);
        else
            delete static_cast<AcDbEntity*>(p);
    }
    if (kept.isEmpty()) return 0;
    out.append(kept);
    return 1;
}

int M_IntersectWith(const AcDbEntity* a, const AcDbEntity* b, AcDb::Intersect mode,
                    AcArray<AcGePoint3d>& pts) {
    if (!a || !b) return 0;
    const AcDbCurve* ca = AcDbCurve::cast(a);
    const AcDbCurve* cb = AcDbCurve::cast(b);
    if (!ca || !cb) {
        AcGePoint3dArray found;
        if (a->intersectWith(b, mode, found) != Acad::eOk) return 0;
        pts.append(found);
        return 1;
    }
    // Far from the origin the coordinates lose the digits the intersection needs: work on
    // copies moved so that the first curve starts at the origin.
    AcGePoint3d start;
    if (ca->getStartPoint(start) != Acad::eOk) return 0;
    const std::unique_ptr<AcDbCurve> copyA = cloneCurve(ca), copyB = cloneCurve(cb);
    if (!copyA || !copyB) return 0;
    const AcGeVector3d shift = start.asVector();
    if (copyA->transformBy(AcGeMatrix3d::translation(-shift)) != Acad::eOk ||
        copyB->transformBy(AcGeMatrix3d::translation(-shift)) != Acad::eOk)
        return 0;
    AcGePoint3dArray found;
    copyA->intersectWith(copyB.get(), mode, found);
    for (const AcGePoint3d& p : found)
        pts.append(p + shift);
    return found.isEmpty() ? 0 : 1;
}
