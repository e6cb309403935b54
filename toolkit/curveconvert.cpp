#include "gecurves.h"
#include "toolkit/curves.h"
#include "toolkit/curvesinternal.h"

#include <memory>

using namespace qor::curves;

namespace {

// A drawing curve named by the host, open for read until this goes.
class NamedCurve {
public:
    explicit NamedCurve(const ads_name name) {
        AcDbObjectId id;
        if (acdbGetObjectId(id, name) != Acad::eOk || id.isNull()) return;
        if (acdbOpenObject(mCurve, id, AcDb::kForRead) != Acad::eOk) mCurve = nullptr;
    }
    ~NamedCurve() {
        if (mCurve) mCurve->close();
    }
    NamedCurve(const NamedCurve&) = delete;
    NamedCurve& operator=(const NamedCurve&) = delete;
    AcDbCurve* get() const { return mCurve; }

private:
    AcDbCurve* mCurve = nullptr;
};

} // namespace

int M_CurDbToGe(const AcDbCurve* c, AcGeCurve3d*& g) {
    if (!c) return 0;
    AcGeCurve3d* made = nullptr;
    if (c->getAcGeCurve(made) != Acad::eOk || !made) {
        delete made;
        return 0;
    }
    g = made;
    return 1;
}

int M_CurGeToDb(const AcGeCurve3d* g, AcDbCurve*& c) {
    if (!g) return 0;
    AcDbCurve* made = nullptr;
    if (AcDbCurve::createFromAcGeCurve(*g, made) != Acad::eOk || !made) {
        delete made;
        return 0;
    }
    c = made;
    return 1;
}

int M_CvtCurvToPln(ads_name ent, double width, ads_name& newEnt) {
    if (!ent) return 0;
    const NamedCurve src(ent);
    AcDbCurve* c = src.get();
    if (!c || AcDbPolyline::cast(c) || !c->database()) return 0;
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    if (!M_GetCurve2dPts(c, pts, bulges)) return 0;
    auto pl = std::make_unique<AcDbPolyline>();
    for (int i = 0; i < pts.length(); ++i)
        pl->addVertexAt(static_cast<unsigned>(i), pts[i], bulges[i]);
    AcGePoint3d start;
    if (c->getStartPoint(start) == Acad::eOk) pl->setElevation(start.z);
    pl->setConstantWidth(width);
    pl->setDatabaseDefaults(c->database());
    pl->setLayer(c->layerId());
    pl->setColor(c->color());
    pl->setLinetype(c->linetypeId());
    AcDbObjectId id;
    if (!appendToBlock(c->ownerId(), pl.get(), id)) return 0;
    pl.release();
    acdbGetAdsName(newEnt, id);
    return 1;
}

int M_GetPlineByPline(ads_name ent, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    if (!ent) return 0;
    const NamedCurve src(ent);
    AcArray<AcGePoint2d> run;
    AcArray<double> runBulges;
    if (!M_GetCurve2dPts(src.get(), run, runBulges)) return 0;
    pts = run;
    bulges = runBulges;
    return 1;
}

int M_GetArcPlineCenPt(AcDbEntity* ent, AcGePoint2d& center, AcGePoint2d& mid, double& radius,
                       int index) {
    if (!ent) return 0;
    if (const AcDbPolyline* pl = AcDbPolyline::cast(ent)) {
        if (index < 0 || static_cast<unsigned>(index) >= pl->numSegments()) return 0;
        if (pl->segType(static_cast<unsigned>(index)) != AcDbPolyline::kArc) return 0;
        AcGeCircArc2d arc;
        if (pl->getArcSegAt(static_cast<unsigned>(index), arc) != Acad::eOk) return 0;
        center = arc.center();
        mid = arc.evalPoint((arc.startAng() + arc.endAng()) / 2.0);
        radius = arc.radius();
        return 1;
    }
    if (const AcDbArc* arc = AcDbArc::cast(ent)) {
        double t0 = 0.0, t1 = 0.0;
        AcGePoint3d m;
        if (arc->getStartParam(t0) != Acad::eOk || arc->getEndParam(t1) != Acad::eOk ||
            arc->getPointAtParam((t0 + t1) / 2.0, m) != Acad::eOk)
            return 0;
        center = arc->center().convert2d();
        mid = m.convert2d();
        radius = arc->radius();
        return 1;
    }
    if (const AcDbCircle* circle = AcDbCircle::cast(ent)) {
        AcGePoint3d p;
        if (circle->getStartPoint(p) != Acad::eOk) return 0;
        center = circle->center().convert2d();
        mid = p.convert2d();
        radius = circle->radius();
        return 1;
    }
    return 0;
}
