#include "gecurves.h"
#include "toolkit/curves.h"
#include "toolkit/curvesinternal.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

using namespace qor::curves;

namespace {

constexpr double kPi = std::numbers::pi;

// The vertex positions of a heavy polyline, skipping type value 1. The value means control
// vertices in 3D but curve-fit vertices in 2D; both are skipped alike.
template <class Vertex, class Polyline> int vertexRun(Polyline* pl, AcArray<AcGePoint3d>& pts) {
    if (!pl) return 0;
    std::unique_ptr<AcDbObjectIterator> it(pl->vertexIterator());
    if (!it) return 0;
    AcArray<AcGePoint3d> out;
    for (it->start(); !it->done(); it->step()) {
        const Vertex* v = Vertex::cast(it->entity());
        if (!v || static_cast<int>(v->vertexType()) == 1) continue;
        out.append(v->position());
    }
    if (out.isEmpty()) return 0;
    if (pl->isClosed()) out.append(out.first());
    pts = out;
    return 1;
}

void appendFlat(const AcArray<AcGePoint3d>& from, AcArray<AcGePoint3d>& pts,
                AcArray<double>& bulges) {
    pts.append(from);
    for (int i = 0; i < from.length(); ++i)
        bulges.append(0.0);
}

} // namespace

int M_Get3dPlineCurPts(AcDb3dPolyline* pl, AcArray<AcGePoint3d>& pts) {
    return vertexRun<AcDb3dPolylineVertex>(pl, pts);
}

int M_Get2dPlineCurPts(AcDb2dPolyline* pl, AcArray<AcGePoint3d>& pts) {
    return vertexRun<AcDb2dVertex>(pl, pts);
}

int M_GetCurve3dPts(AcDbCurve* c, AcArray<AcGePoint3d>& pts, AcArray<double>& bulges) {
    pts.removeAll();
    bulges.removeAll();
    double len = 0.0;
    if (!c || !M_GetCurveLength(c, len) || !(len >= kMinStep)) return 0;

    if (const AcDbLine* line = AcDbLine::cast(c)) {
        pts.append(line->startPoint());
        pts.append(line->endPoint());
        bulges.append(0.0);
        bulges.append(0.0);
        return 1;
    }
    if (const AcDbArc* arc = AcDbArc::cast(c)) {
        AcGePoint3d s, e;
        if (arc->getStartPoint(s) != Acad::eOk || arc->getEndPoint(e) != Acad::eOk) return 0;
        double sweep = arc->endAngle() - arc->startAngle();
        if (sweep < 0.0) sweep += 2.0 * kPi;
        pts.append(s);
        pts.append(e);
        bulges.append(std::tan(sweep / 4.0));
        bulges.append(0.0);
        return 1;
    }
    if (AcDbCircle::cast(c)) {
        AcArray<AcGePoint3d> quarters;
        for (int k = 0; k <= 4; ++k) {
            AcGePoint3d p;
            if (c->getPointAtDist(len * k / 4.0, p) != Acad::eOk) return 0;
            quarters.append(p);
        }
        // The closing vertex repeats the first exactly.
        quarters.last() = quarters.first();
        pts = quarters;
        for (int k = 0; k <= 4; ++k)
            bulges.append(std::tan(kPi / 8.0));
        return 1;
    }
    AcArray<AcGePoint3d> run;
    if (const AcDbSpline* s = AcDbSpline::cast(c)) {
        if (!M_GetSplinePts(s, 1.0, 50, 500, run)) return 0;
        appendFlat(run, pts, bulges);
        return 1;
    }
    if (const AcDbEllipse* e = AcDbEllipse::cast(c)) {
        if (!M_GetEllipsePts(e, 1.0, 20, 200, run)) return 0;
        appendFlat(run, pts, bulges);
        return 1;
    }
    if (AcDb3dPolyline* p3 = AcDb3dPolyline::cast(c)) {
        if (!M_Get3dPlineCurPts(p3, run)) return 0;
        appendFlat(run, pts, bulges);
        return 1;
    }
    if (AcDb2dPolyline* p2 = AcDb2dPolyline::cast(c)) {
        if (!M_Get2dPlineCurPts(p2, run)) return 0;
        appendFlat(run, pts, bulges);
        return 1;
    }
    if (const AcDbPolyline* pl = AcDbPolyline::cast(c)) {
        const double z = pl->elevation();
        const unsigned n = pl->numVerts();
        for (unsigned i = 0; i < n; ++i) {
            AcGePoint2d p;
            double b = 0.0;
            pl->getPointAt(i, p);
            pl->getBulgeAt(i, b);
            pts.append(AcGePoint3d(p.x, p.y, z));
            bulges.append(b);
        }
        if (pl->isClosed() && n > 0) {
            pts.append(pts.first());
            bulges.append(0.0);
        }
        return pts.isEmpty() ? 0 : 1;
    }
    return 0;
}

int M_GetCurve2dPts(AcDbCurve* c, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    AcArray<AcGePoint3d> run;
    AcArray<double> runBulges;
    if (!M_GetCurve3dPts(c, run, runBulges)) return 0;
    for (const AcGePoint3d& p : run)
        pts.append(p.convert2d());
    bulges.append(runBulges);
    return 1;
}

int M_GetCurvePts(AcDbCurve* c, AcArray<AcGePoint3d>& pts) {
    AcArray<AcGePoint3d> run;
    AcArray<double> bulges;
    if (!M_GetCurve3dPts(c, run, bulges)) return 0;
    ArcDivision div;
    div.step = 1.0;
    div.minStep = 1.0;
    AcArray<AcGePoint3d> out;
    out.append(run.first());
    for (int i = 0; i + 1 < run.length(); ++i) {
        const AcGePoint3d &a = run[i], &b = run[i + 1];
        const AcGePoint2d a2 = a.convert2d(), b2 = b.convert2d();
        if (bulges[i] == 0.0 || a2.isEqualTo(b2)) {
            out.append(b);
            continue;
        }
        const AcGeCircArc2d arc(a2, b2, bulges[i], true);
        // A short arc still keeps its end vertex.
        const int n = std::max(div.parts(arc.length()), 1);
        const double a0 = arc.startAng(), sweep = arc.endAng() - arc.startAng();
        for (int k = 1; k < n; ++k) {
            const AcGePoint2d p = arc.evalPoint(a0 + sweep * k / n);
            out.append(AcGePoint3d(p.x, p.y, a.z + (b.z - a.z) * k / n));
        }
        out.append(b);
    }
    pts = out;
    return 1;
}
