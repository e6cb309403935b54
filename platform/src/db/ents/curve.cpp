// Curves: the parameter, distance and point queries every curve shares, splitting, extension
// to a point, extents and intersection. Line-and-arc curves use their exact pieces, the others
// (ellipses, splines, 3D polylines) their evaluated paths.
#include "db/ents/entsimpl.h"
#include "gecurves.h"

#include <algorithm>
#include <cmath>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

using namespace ents_detail;

namespace {

// The geometry of a curve being read, or the status its queries report.
struct Geom {
    CurveGeom g;
    PathGeom path;
    bool isPath = false;
    Acad::ErrorStatus es = Acad::eOk;
    explicit Geom(const AcDbCurve* c) {
        c->assertReadEnabled();
        if (curveGeom(c, g)) return;
        es = pathGeom(c, path);
        isPath = es == Acad::eOk;
    }
    double startParam() const { return isPath ? path.t0 : g.startParam(); }
    double endParam() const { return isPath ? path.t1 : g.endParam(); }
    bool closed() const { return isPath ? path.closed : g.closed; }
    Acad::ErrorStatus pointAtParam(double t, AcGePoint3d& p) const {
        return isPath ? path.pointAtParam(t, p) : g.pointAtParam(t, p);
    }
    Acad::ErrorStatus paramAtPoint(const AcGePoint3d& p, double& t) const {
        return isPath ? path.paramAtPoint(p, t) : g.paramAtPoint(p, t);
    }
    Acad::ErrorStatus distAtParam(double t, double& d) const {
        return isPath ? path.distAtParam(t, d) : g.distAtParam(t, d);
    }
    Acad::ErrorStatus paramAtDist(double d, double& t) const {
        return isPath ? path.paramAtDist(d, t) : g.paramAtDist(d, t);
    }
    Acad::ErrorStatus firstDeriv(double t, AcGeVector3d& d) const {
        return isPath ? path.firstDeriv(t, d) : g.firstDeriv(t, d);
    }
    Acad::ErrorStatus secondDeriv(double t, AcGeVector3d& d) const {
        return isPath ? path.secondDeriv(t, d) : g.secondDeriv(t, d);
    }
};

} // namespace

Acad::ErrorStatus AcDbCurve::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    if (c.isPath) {
        AcGePoint3d origin;
        AcGeVector3d normal;
        if (!c.path.plane(origin, normal, type)) {
            type = AcDb::kNonPlanar;
            return Acad::eNotApplicable;
        }
        plane.set(origin, normal);
        return Acad::eOk;
    }
    plane.set(c.g.frame.origin, c.g.frame.z);
    type = c.g.linear ? AcDb::kLinear : AcDb::kPlanar;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getStartParam(double& param) const {
    Geom c(this);
    if (c.es == Acad::eOk) param = c.startParam();
    return c.es;
}

Acad::ErrorStatus AcDbCurve::getEndParam(double& param) const {
    Geom c(this);
    if (c.es == Acad::eOk) param = c.endParam();
    return c.es;
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.pointAtParam(c.startParam(), p);
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.pointAtParam(c.endParam(), p);
}

Acad::ErrorStatus AcDbCurve::getPointAtParam(double param, AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.pointAtParam(param, p);
}

Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d& p, double& param) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.paramAtPoint(p, param);
}

Acad::ErrorStatus AcDbCurve::getDistAtParam(double param, double& dist) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.distAtParam(param, dist);
}

Acad::ErrorStatus AcDbCurve::getParamAtDist(double dist, double& param) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.paramAtDist(dist, param);
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& p, double& dist) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.distAtParam(param, dist);
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double dist, AcGePoint3d& p) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.paramAtDist(dist, param); es != Acad::eOk) return es;
    return c.pointAtParam(param, p);
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(double param, AcGeVector3d& d) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.firstDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& p, AcGeVector3d& d) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.firstDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(double param, AcGeVector3d& d) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.secondDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(const AcGePoint3d& p, AcGeVector3d& d) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.secondDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& onCurve,
                                               bool extend) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    if (c.isPath) {
        c.path.closest(given, extend, onCurve);
        return Acad::eOk;
    }
    size_t i = 0;
    double u = 0.0;
    c.g.closest(given, extend, i, u, onCurve);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given,
                                               const AcGeVector3d& direction, AcGePoint3d& onCurve,
                                               bool extend) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    if (!(direction.length() > 1e-300) || !std::isfinite(direction.length()))
        return Acad::eInvalidInput;
    const AcGeVector3d dir = unitNormal(direction);
    if (c.isPath) {
        onCurve = projectedClosest(c.path, given, dir, extend);
        return Acad::eOk;
    }
    size_t i = 0;
    double u = 0.0;
    if (c.g.linear) {
        // Nearest approach of the segment to the line through the given point along dir.
        const Piece& pc = c.g.pieces.front();
        const AcGePoint3d a = c.g.frame.toWorld(pc.a), b = c.g.frame.toWorld(pc.b);
        AcGeVector3d d = b - a, w = a - given;
        d -= dir * d.dotProduct(dir);
        w -= dir * w.dotProduct(dir);
        double t = d.lengthSqrd() > 0.0 ? -w.dotProduct(d) / d.lengthSqrd() : 0.0;
        if (!extend) t = std::clamp(t, 0.0, 1.0);
        onCurve = a + (b - a) * t;
        return Acad::eOk;
    }
    const double cosine = dir.dotProduct(c.g.frame.z);
    if (std::fabs(cosine) < 1e-12) return Acad::eInvalidInput; // looking along the curve's plane
    if (std::fabs(std::fabs(cosine) - 1.0) > 1e-12) {
        // Seen at a slant, arcs are ellipses: the evaluated path handles that.
        onCurve = projectedClosest(pathOf(c.g), given, dir, extend);
        return Acad::eOk;
    }
    c.g.closest(given, extend, i, u, onCurve);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getOffsetCurves(double, AcDbVoidPtrArray&) const {
    assertReadEnabled();
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGeDoubleArray& params,
                                            AcDbVoidPtrArray& curves) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    const double s = c.startParam(), e = c.endParam(), span = e - s;
    const bool closed = c.closed();
    const double eps = 1e-10 * std::max(1.0, std::fabs(s) + std::fabs(e));
    std::vector<double> cuts;
    for (double p : params) {
        if (!std::isfinite(p) || p < s - eps || p > e + eps) return Acad::eInvalidInput;
        p = std::clamp(p, s, e);
        if (closed && p >= e - eps) p = s;
        if (!closed && (p <= s + eps || p >= e - eps)) continue;
        cuts.push_back(p);
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(
        std::unique(cuts.begin(), cuts.end(), [&](double a, double b) { return b - a <= eps; }),
        cuts.end());

    std::vector<std::pair<double, double>> spans;
    if (closed) {
        if (cuts.empty()) return Acad::eInvalidInput;
        for (size_t k = 0; k + 1 < cuts.size(); ++k)
            spans.emplace_back(cuts[k], cuts[k + 1]);
        spans.emplace_back(cuts.back(), cuts.front() + span);
    } else {
        double from = s;
        for (double p : cuts) {
            spans.emplace_back(from, p);
            from = p;
        }
        spans.emplace_back(from, e);
    }
    AcDbVoidPtrArray made;
    for (const auto& [from, to] : spans) {
        AcDbCurve* piece = subCurve(this, from, to);
        if (!piece) {
            for (void* p : made)
                delete static_cast<AcDbCurve*>(p);
            return Acad::eNotApplicable;
        }
        made.append(piece);
    }
    curves.append(made);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGePoint3dArray& points,
                                            AcDbVoidPtrArray& curves) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    AcGeDoubleArray params;
    for (const auto& p : points) {
        double param = 0.0;
        if (Acad::ErrorStatus es = c.paramAtPoint(p, param); es != Acad::eOk) return es;
        params.append(param);
    }
    return getSplitCurves(params, curves);
}

Acad::ErrorStatus AcDbCurve::extend(double) {
    assertWriteEnabled();
    return Acad::eNotApplicable;
}

namespace {

// The parameter past an end of an evaluated path at which it reaches toPoint.
Acad::ErrorStatus pathExtendParam(const PathGeom& g, bool extendStart, const AcGePoint3d& toPoint,
                                  double& param) {
    if (g.closed) return Acad::eNotApplicable;
    const double tol = g.tolerance(1e-6);
    AcGeVector3d d;
    for (const auto& e : g.ext) {
        if (e.ray) {
            if (e.atStart != extendStart) continue;
            const double s = (toPoint - e.origin).dotProduct(e.dir);
            if (s < 0.0 || (e.origin + e.dir * s).distanceTo(toPoint) > tol) continue;
            g.ev->eval(extendStart ? g.t0 : g.t1, &d);
            if (!(d.length() > 0.0)) continue;
            param = extendStart ? g.t0 - s / d.length() : g.t1 + s / d.length();
            return Acad::eOk;
        }
        if (!(e.b > e.a)) continue;
        const geimpl::SampledCurve s(*e.ev, e.a, e.b);
        const double t = s.closestParam(toPoint);
        if (e.ev->eval(t).distanceTo(toPoint) > tol) continue;
        // The rest of a closed carrier runs from the end round to the start a period on.
        param = extendStart ? t - (e.b - g.t0) : t;
        return Acad::eOk;
    }
    return Acad::eInvalidInput;
}

} // namespace

Acad::ErrorStatus AcDbCurve::extend(bool extendStart, const AcGePoint3d& toPoint) {
    double param = 0.0;
    {
        Geom c(this);
        if (c.es != Acad::eOk) return c.es;
        if (c.isPath) {
            if (Acad::ErrorStatus es = pathExtendParam(c.path, extendStart, toPoint, param);
                es != Acad::eOk)
                return es;
            return extend(param);
        }
        if (c.g.closed) return Acad::eNotApplicable;
        const size_t i = extendStart ? 0 : c.g.pieces.size() - 1;
        const Piece& pc = c.g.pieces[i];
        const AcGePoint2d q = c.g.frame.toLocal(toPoint);
        double u = pc.closestU(q, true, true);
        if (c.g.frame.toWorld(pc.at(u)).distanceTo(toPoint) > c.g.tolerance(1e-6))
            return Acad::eInvalidInput;
        // Round the circle, a point before the start is reached going backwards.
        if (pc.arc && extendStart && u > 0.0) u -= kTwoPi / std::fabs(pc.sweep);
        if (extendStart ? u > 0.0 : u < 1.0) return Acad::eInvalidInput;
        param = c.g.p0[i] + u * c.g.dp[i];
    }
    return extend(param);
}

Acad::ErrorStatus AcDbCurve::getArea(double&) const {
    assertReadEnabled();
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbCurve::reverseCurve() {
    assertWriteEnabled();
    return Acad::eNotImplementedYet;
}

// ---------------------------------------------------------------- extents and intersections

Acad::ErrorStatus AcDbCurve::subGetGeomExtents(AcDbExtents& extents) const {
    Geom c(this);
    if (c.es != Acad::eOk) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    if (c.isPath) {
        c.path.addExtents(extents);
        return Acad::eOk;
    }
    AcGePoint3dArray pts;
    c.g.addExtents(pts);
    const double t = thicknessOf(this);
    const AcGeVector3d up = unitNormal(normalOf(this)) * t;
    for (const auto& p : pts) {
        extents.addPoint(p);
        if (t != 0.0) extents.addPoint(p + up);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                              AcGePoint3dArray& points, Adesk::GsMarker,
                                              Adesk::GsMarker) const {
    const AcDbCurve* other = AcDbCurve::cast(ent);
    if (!other) return ent ? Acad::eNotImplementedYet : Acad::eNullEntityPointer;
    Geom a(this);
    if (a.es != Acad::eOk) return a.es;
    other->assertReadEnabled();
    const bool extThis = intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth;
    const bool extArg = intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth;
    CurveGeom b;
    if (!a.isPath && curveGeom(other, b)) {
        intersect(a.g, extThis, b, extArg, points);
        return Acad::eOk;
    }
    PathGeom pb;
    if (Acad::ErrorStatus es = anyPath(other, pb); es != Acad::eOk) return es;
    intersectPaths(a.isPath ? a.path : pathOf(a.g), extThis, pb, extArg, points);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                              const AcGePlane& projPlane, AcGePoint3dArray& points,
                                              Adesk::GsMarker, Adesk::GsMarker) const {
    const AcDbCurve* other = AcDbCurve::cast(ent);
    if (!other) return ent ? Acad::eNotImplementedYet : Acad::eNullEntityPointer;
    Geom a(this);
    if (a.es != Acad::eOk) return a.es;
    other->assertReadEnabled();
    const bool extThis = intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth;
    const bool extArg = intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth;
    CurveGeom b;
    if (!a.isPath && curveGeom(other, b)) {
        const Acad::ErrorStatus es = intersectProjected(
            a.g, extThis, b, extArg, projPlane.pointOnPlane(), projPlane.normal(), points);
        if (es != Acad::eNotApplicable) return es;
        // Arcs seen at a slant are ellipses: the evaluated paths handle that.
        return intersectPathsProjected(pathOf(a.g), extThis, pathOf(b), extArg,
                                       projPlane.pointOnPlane(), projPlane.normal(), points);
    }
    PathGeom pb;
    if (Acad::ErrorStatus es = anyPath(other, pb); es != Acad::eOk) return es;
    return intersectPathsProjected(a.isPath ? a.path : pathOf(a.g), extThis, pb, extArg,
                                   projPlane.pointOnPlane(), projPlane.normal(), points);
}
