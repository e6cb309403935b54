// Curves: the parameter, distance and point queries every plain curve shares, splitting,
// extension to a point, extents and intersection.
#include "db/ents/entsimpl.h"
#include "gecurves.h"

#include <algorithm>
#include <cmath>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

using namespace ents_detail;

namespace ents_detail {

bool curveGeom(const AcDbCurve* c, CurveGeom& g) {
    g = CurveGeom();
    if (const AcDbLine* l = AcDbLine::cast(c))
        AcDbLineImpl::geom(*l, g);
    else if (const AcDbArc* a = AcDbArc::cast(c))
        AcDbArcImpl::geom(*a, g);
    else if (const AcDbCircle* ci = AcDbCircle::cast(c))
        AcDbCircleImpl::geom(*ci, g);
    else if (const AcDbPolyline* p = AcDbPolyline::cast(c))
        AcDbPolylineImpl::geom(*p, g);
    else
        return false;
    return !g.empty();
}

AcDbCurve* subCurve(const AcDbCurve* c, double from, double to) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return AcDbLineImpl::sub(*l, from, to);
    if (const AcDbArc* a = AcDbArc::cast(c)) return AcDbArcImpl::sub(*a, from, to);
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return AcDbCircleImpl::sub(*ci, from, to);
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return AcDbPolylineImpl::sub(*p, from, to);
    return nullptr;
}

bool nextItem(AcDbDxfFiler* filer, resbuf& rb) {
    rb = resbuf{};
    return filer->readItem(&rb) == Acad::eOk;
}

AcGePoint3d rbPoint(const resbuf& rb) {
    return {rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]};
}

AcGeVector3d rbVector(const resbuf& rb) {
    return {rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]};
}

void curveSnaps(const CurveGeom& g, AcDb::OsnapMode mode, const AcGePoint3d& pick,
                const AcGePoint3d& last, AcGePoint3dArray& pts) {
    const double tol = g.tolerance(1e-9);
    switch (mode) {
    case AcDb::kOsModeEnd:
        for (size_t i = 0; i < g.pieces.size(); ++i) {
            if (g.pieces[i].isFullCircle()) continue;
            addUnique(pts, g.worldAt(i, 0.0), tol);
            addUnique(pts, g.worldAt(i, 1.0), tol);
        }
        break;
    case AcDb::kOsModeMid:
        for (size_t i = 0; i < g.pieces.size(); ++i)
            if (!g.pieces[i].isFullCircle()) addUnique(pts, g.worldAt(i, 0.5), tol);
        break;
    case AcDb::kOsModeCen:
        for (const auto& pc : g.pieces)
            if (pc.arc) addUnique(pts, g.frame.toWorld(pc.c), tol);
        break;
    case AcDb::kOsModeQuad:
        for (const auto& pc : g.pieces) {
            if (!pc.arc) continue;
            for (int q = 0; q < 4; ++q) {
                const double t = q * kPi / 2.0;
                const double off = pc.sweep >= 0.0 ? ccwSweep(pc.start, t) : ccwSweep(t, pc.start);
                if (pc.isFullCircle() || off <= std::fabs(pc.sweep) + 1e-12)
                    addUnique(pts,
                              g.frame.toWorld(pc.c + AcGeVector2d(std::cos(t), std::sin(t)) * pc.r),
                              tol);
            }
        }
        break;
    case AcDb::kOsModeNear: {
        size_t i = 0;
        double u = 0.0;
        AcGePoint3d on;
        g.closest(pick, false, i, u, on);
        pts.append(on);
        break;
    }
    case AcDb::kOsModePerp: {
        const AcGePoint2d q = g.frame.toLocal(last);
        for (size_t i = 0; i < g.pieces.size(); ++i) {
            const Piece& pc = g.pieces[i];
            if (!pc.arc) {
                // Lines snap to the foot on their whole line, as a deferred perpendicular would.
                const bool whole = g.linear;
                const double u = pc.closestU(q, whole, whole);
                if (whole || (u > 0.0 && u < 1.0)) addUnique(pts, g.worldAt(i, u), tol);
                continue;
            }
            const AcGeVector2d d = q - pc.c;
            if (d.length() <= tol) continue;
            const double t = std::atan2(d.y, d.x);
            for (double a : {t, t + kPi}) {
                const AcGePoint2d p = pc.c + AcGeVector2d(std::cos(a), std::sin(a)) * pc.r;
                if (pc.onPiece(pc.uOf(p), tol, false, false))
                    addUnique(pts, g.frame.toWorld(p), tol);
            }
        }
        break;
    }
    case AcDb::kOsModeTan: {
        const AcGePoint2d q = g.frame.toLocal(last);
        for (const auto& pc : g.pieces) {
            if (!pc.arc) continue;
            const AcGeVector2d d = q - pc.c;
            const double dist = d.length();
            if (dist <= pc.r) continue;
            const double t = std::atan2(d.y, d.x), alpha = std::acos(pc.r / dist);
            for (double a : {t + alpha, t - alpha}) {
                const AcGePoint2d p = pc.c + AcGeVector2d(std::cos(a), std::sin(a)) * pc.r;
                if (pc.onPiece(pc.uOf(p), tol, false, false))
                    addUnique(pts, g.frame.toWorld(p), tol);
            }
        }
        break;
    }
    default:
        break;
    }
}

} // namespace ents_detail

// ---------------------------------------------------------------- queries

namespace {

// The geometry of a curve being read, or the status its queries report.
struct Geom {
    CurveGeom g;
    Acad::ErrorStatus es = Acad::eOk;
    explicit Geom(const AcDbCurve* c) {
        c->assertReadEnabled();
        if (!curveGeom(c, g)) es = Acad::eNotImplementedYet;
    }
};

} // namespace

Acad::ErrorStatus AcDbCurve::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    plane.set(c.g.frame.origin, c.g.frame.z);
    type = c.g.linear ? AcDb::kLinear : AcDb::kPlanar;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::getStartParam(double& param) const {
    Geom c(this);
    if (c.es == Acad::eOk) param = c.g.startParam();
    return c.es;
}

Acad::ErrorStatus AcDbCurve::getEndParam(double& param) const {
    Geom c(this);
    if (c.es == Acad::eOk) param = c.g.endParam();
    return c.es;
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.pointAtParam(c.g.startParam(), p);
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.pointAtParam(c.g.endParam(), p);
}

Acad::ErrorStatus AcDbCurve::getPointAtParam(double param, AcGePoint3d& p) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.pointAtParam(param, p);
}

Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d& p, double& param) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.paramAtPoint(p, param);
}

Acad::ErrorStatus AcDbCurve::getDistAtParam(double param, double& dist) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.distAtParam(param, dist);
}

Acad::ErrorStatus AcDbCurve::getParamAtDist(double dist, double& param) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.paramAtDist(dist, param);
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& p, double& dist) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.g.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.g.distAtParam(param, dist);
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double dist, AcGePoint3d& p) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.g.paramAtDist(dist, param); es != Acad::eOk) return es;
    return c.g.pointAtParam(param, p);
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(double param, AcGeVector3d& d) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.firstDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& p, AcGeVector3d& d) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.g.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.g.firstDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(double param, AcGeVector3d& d) const {
    Geom c(this);
    return c.es != Acad::eOk ? c.es : c.g.secondDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(const AcGePoint3d& p, AcGeVector3d& d) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
    double param = 0.0;
    if (Acad::ErrorStatus es = c.g.paramAtPoint(p, param); es != Acad::eOk) return es;
    return c.g.secondDeriv(param, d);
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& onCurve,
                                               bool extend) const {
    Geom c(this);
    if (c.es != Acad::eOk) return c.es;
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
    if (direction.length() <= 1e-300) return Acad::eInvalidInput;
    const AcGeVector3d dir = unitNormal(direction);
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
    // Where the line through the given point meets the curve's plane; in the projection along dir
    // the curve's plane maps affinely, so only the along-normal view is exact.
    if (std::fabs(std::fabs(cosine) - 1.0) > 1e-12) return Acad::eNotImplementedYet;
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
    const double s = c.g.startParam(), e = c.g.endParam(), span = e - s;
    const double eps = 1e-10 * std::max(1.0, std::fabs(s) + std::fabs(e));
    std::vector<double> cuts;
    for (double p : params) {
        if (!std::isfinite(p) || p < s - eps || p > e + eps) return Acad::eInvalidInput;
        p = std::clamp(p, s, e);
        if (c.g.closed && p >= e - eps) p = s;
        if (!c.g.closed && (p <= s + eps || p >= e - eps)) continue;
        cuts.push_back(p);
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(
        std::unique(cuts.begin(), cuts.end(), [&](double a, double b) { return b - a <= eps; }),
        cuts.end());

    std::vector<std::pair<double, double>> spans;
    if (c.g.closed) {
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
        if (Acad::ErrorStatus es = c.g.paramAtPoint(p, param); es != Acad::eOk) return es;
        params.append(param);
    }
    return getSplitCurves(params, curves);
}

Acad::ErrorStatus AcDbCurve::extend(double) {
    assertWriteEnabled();
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCurve::extend(bool extendStart, const AcGePoint3d& toPoint) {
    double param = 0.0;
    {
        Geom c(this);
        if (c.es != Acad::eOk) return c.es;
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

namespace {

double thicknessOf(const AcDbCurve* c) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return l->thickness();
    if (const AcDbArc* a = AcDbArc::cast(c)) return a->thickness();
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return ci->thickness();
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return p->thickness();
    return 0.0;
}

AcGeVector3d normalOf(const AcDbCurve* c) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return l->normal();
    if (const AcDbArc* a = AcDbArc::cast(c)) return a->normal();
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return ci->normal();
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return p->normal();
    return {0, 0, 1};
}

} // namespace

Acad::ErrorStatus AcDbCurve::subGetGeomExtents(AcDbExtents& extents) const {
    Geom c(this);
    if (c.es != Acad::eOk) return Acad::eInvalidExtents;
    AcGePoint3dArray pts;
    c.g.addExtents(pts);
    const double t = thicknessOf(this);
    const AcGeVector3d up = unitNormal(normalOf(this)) * t;
    extents = AcDbExtents();
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
    CurveGeom b;
    if (!curveGeom(other, b)) return Acad::eNotImplementedYet;
    const bool extThis = intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth;
    const bool extArg = intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth;
    intersect(a.g, extThis, b, extArg, points);
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
    CurveGeom b;
    if (!curveGeom(other, b)) return Acad::eNotImplementedYet;
    const bool extThis = intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth;
    const bool extArg = intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth;
    return intersectProjected(a.g, extThis, b, extArg, projPlane.pointOnPlane(), projPlane.normal(),
                              points);
}
