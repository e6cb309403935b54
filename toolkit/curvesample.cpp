#include "gecurves.h"
#include "geellip.h"
#include "genurbs.h"
#include "toolkit/curves.h"
#include "toolkit/curvesinternal.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace qor::curves {

bool sampleCount(const AcDbCurve* c, double step, int minCount, int maxCount, int& n) {
    double len = 0.0;
    if (!c || !(step >= kMinStep) || !M_GetCurveLength(c, len) || !(len >= kMinStep)) return false;
    // Compared as doubles so that a huge ratio cannot overflow the count.
    const double ratio = std::floor(len / step);
    n = ratio >= maxCount ? maxCount : static_cast<int>(ratio);
    n = std::max(n, minCount);
    return true;
}

void thin(AcArray<AcGePoint3d>& pts) {
    constexpr double kStraight = 0.01;
    for (int i = 2; i < pts.length();) {
        const AcGeVector3d a = pts[i - 1] - pts[i - 2], b = pts[i] - pts[i - 1];
        if (a.angleTo(b) < kStraight)
            pts.removeAt(i - 1);
        else
            ++i;
    }
}

void closeRing(AcArray<AcGePoint3d>& pts) {
    if (!pts.isEmpty() && pts.first().distanceTo(pts.last()) > 0.001) pts.append(pts.first());
}

} // namespace qor::curves

using namespace qor::curves;

namespace {

// n points evenly in parameter along a bounded geometric curve; false for fewer than two.
bool sampleGe(const AcGeCurve3d& g, int n, AcArray<AcGePoint3d>& out) {
    if (n < 2) return false;
    g.getSamplePoints(n, out);
    return out.length() >= 2;
}

} // namespace

int M_GetCurveLength(const AcDbCurve* c, double& len) {
    if (!c) return 0;
    double s = 0.0, e = 0.0, ds = 0.0, de = 0.0;
    if (c->getStartParam(s) != Acad::eOk || c->getEndParam(e) != Acad::eOk) return 0;
    if (c->getDistAtParam(s, ds) != Acad::eOk || c->getDistAtParam(e, de) != Acad::eOk) return 0;
    len = de - ds;
    return 1;
}

int M_GetArcPts(const AcDbArc* arc, double step, int minCount, int maxCount,
                AcArray<AcGePoint3d>& pts) {
    int n = 0;
    if (!sampleCount(arc, step, minCount, maxCount, n)) return 0;
    // The arc's angles are measured from the x axis of its plane's own system.
    AcGePoint3d origin;
    AcGeVector3d xAxis, yAxis;
    AcGePlane(arc->center(), arc->normal()).getCoordSystem(origin, xAxis, yAxis);
    double end = arc->endAngle();
    if (end <= arc->startAngle()) end += 2.0 * std::numbers::pi;
    const AcGeCircArc3d g(arc->center(), arc->normal(), xAxis, arc->radius(), arc->startAngle(),
                          end);
    AcArray<AcGePoint3d> out;
    if (!sampleGe(g, n, out)) return 0;
    pts = out;
    return 1;
}

int M_GetCirclePts(const AcDbCircle* c, double step, int minCount, int maxCount,
                   AcArray<AcGePoint3d>& pts) {
    int n = 0;
    if (!sampleCount(c, step, minCount, maxCount, n)) return 0;
    const AcGeCircArc3d g(c->center(), c->normal(), c->radius());
    AcArray<AcGePoint3d> out;
    if (!sampleGe(g, n, out)) return 0;
    closeRing(out);
    pts = out;
    return 1;
}

int M_GetEllipsePts(const AcDbEllipse* e, double step, int minCount, int maxCount,
                    AcArray<AcGePoint3d>& pts) {
    int n = 0;
    if (!sampleCount(e, step, minCount, maxCount, n)) return 0;
    double t0 = 0.0, t1 = 0.0;
    if (e->getStartParam(t0) != Acad::eOk || e->getEndParam(t1) != Acad::eOk) return 0;
    const AcGeEllipArc3d g(e->center(), e->majorAxis(), e->minorAxis(), e->majorRadius(),
                           e->minorRadius(), t0, t1);
    AcArray<AcGePoint3d> out;
    if (!sampleGe(g, n, out)) return 0;
    if (e->isClosed()) closeRing(out);
    thin(out);
    pts = out;
    return 1;
}

int M_GetSplinePts(const AcDbSpline* s, double step, int minCount, int maxCount,
                   AcArray<AcGePoint3d>& pts) {
    int n = 0;
    if (!sampleCount(s, step, minCount, maxCount, n)) return 0;
    int degree = 0;
    Adesk::Boolean rational = false, closed = false, periodic = false;
    AcGePoint3dArray ctrl;
    AcGeDoubleArray knots, weights;
    double ctrlTol = 0.0, knotTol = 0.0;
    if (s->getNurbsData(degree, rational, closed, periodic, ctrl, knots, weights, ctrlTol,
                        knotTol) != Acad::eOk)
        return 0;
    const AcGeKnotVector kv(knots, 1e-9);
    AcGeNurbCurve3d g = rational ? AcGeNurbCurve3d(degree, kv, ctrl, weights, periodic)
                                 : AcGeNurbCurve3d(degree, kv, ctrl, periodic);
    if (!g.isValid()) return 0;
    if (closed) g.makeClosed();
    AcArray<AcGePoint3d> out;
    if (!sampleGe(g, n, out)) return 0;
    if (closed) closeRing(out);
    thin(out);
    pts = out;
    return 1;
}

int M_GetCurPts(AcDbCurve* c, double step, AcArray<AcGePoint3d>& pts) {
    constexpr double kMaxPoints = 1e6;
    double len = 0.0, d0 = 0.0, t0 = 0.0;
    if (!c || !(step >= kMinStep) || !M_GetCurveLength(c, len) || !(len >= kMinStep)) return 0;
    if (len / step > kMaxPoints) return 0;
    if (c->getStartParam(t0) != Acad::eOk || c->getDistAtParam(t0, d0) != Acad::eOk) return 0;
    AcArray<AcGePoint3d> out;
    // The last regular point keeps clear of the end, which always closes the list.
    for (int k = 0; k * step < len - kMinStep; ++k) {
        AcGePoint3d p;
        if (c->getPointAtDist(d0 + k * step, p) != Acad::eOk) return 0;
        out.append(p);
    }
    AcGePoint3d end;
    if (c->getEndPoint(end) != Acad::eOk) return 0;
    out.append(end);
    pts = out;
    return 1;
}
