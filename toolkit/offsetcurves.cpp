#include "toolkit/offsetcurves.h"

int M_IsNotZeroLength(const AcDbCurve* curve) {
    if (!curve) return 0;
    double endParam = 0.0, length = 0.0;
    if (curve->getEndParam(endParam) != Acad::eOk) return 0;
    if (curve->getDistAtParam(endParam, length) != Acad::eOk) return 0;
    return length > 0.001 ? 1 : 0;
}

int M_GetOffsetCurves(const AcDbCurve* c, double dist, AcArray<void*>& out) {
    if (dist == 0.0) dist = 0.0001;
    if (!M_IsNotZeroLength(c)) return 0;
    AcGePoint3d start;
    if (c->getStartPoint(start) != Acad::eOk) return 0;
    auto* copy = AcDbCurve::cast(c->clone());
    if (!copy) return 0;
    const AcGeVector3d shift = start.asVector();
    copy->transformBy(AcGeMatrix3d::translation(-shift));
    AcArray<void*> results;
    const bool ok = copy->getOffsetCurves(dist, results) == Acad::eOk;
    delete copy;
    int appended = 0;
    for (void* p : results) {
        auto* ent = static_cast<AcDbEntity*>(p);
        AcDbCurve* curve = ok ? AcDbCurve::cast(ent) : nullptr;
        if (!curve) {
            delete ent;
            continue;
        }
        curve->transformBy(AcGeMatrix3d::translation(shift));
        out.append(curve);
        ++appended;
    }
    return appended > 0 ? 1 : 0;
}
