// Which curve math each class uses, the pieces of a curve between two parameters, and the
// helpers the entities share for DXF reading and object snaps.
#include "db/ents/entsimpl.h"

#include <algorithm>
#include <array>
#include <cmath>

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
    else if (const AcDb2dPolyline* p2 = AcDb2dPolyline::cast(c))
        AcDb2dPolylineImpl::geom(*p2, g);
    else
        return false;
    return !g.empty();
}

namespace {

// The last few paths made, each with the data it came from: queries come in runs on one curve
// (a point at each of many distances), and sampling is the costly part.
struct RememberedPath {
    const AcDbCurve* owner = nullptr;
    std::vector<double> key;
    PathGeom path;
};
thread_local std::array<RememberedPath, 8> gRemembered;
thread_local size_t gNextSlot = 0;

bool pathKey(const AcDbCurve* c, std::vector<double>& key) {
    if (const AcDbEllipse* e = AcDbEllipse::cast(c))
        AcDbEllipseImpl::key(*e, key);
    else if (const AcDbSpline* s = AcDbSpline::cast(c))
        AcDbSplineImpl::key(*s, key);
    else if (const AcDb3dPolyline* p = AcDb3dPolyline::cast(c))
        AcDb3dPolylineImpl::key(*p, key);
    else
        return false;
    return true;
}

} // namespace

Acad::ErrorStatus pathGeom(const AcDbCurve* c, PathGeom& g) {
    std::vector<double> key;
    const bool keyed = pathKey(c, key);
    if (keyed)
        for (const auto& r : gRemembered)
            if (r.owner == c && r.key == key) {
                g = r.path;
                return Acad::eOk;
            }
    g = PathGeom();
    bool ok = false;
    if (const AcDbEllipse* e = AcDbEllipse::cast(c))
        ok = AcDbEllipseImpl::path(*e, g);
    else if (const AcDbSpline* s = AcDbSpline::cast(c))
        ok = AcDbSplineImpl::path(*s, g);
    else if (const AcDb3dPolyline* p = AcDb3dPolyline::cast(c))
        ok = AcDb3dPolylineImpl::path(*p, g);
    else if (AcDb2dPolyline::cast(c))
        ok = false; // a 2D polyline that makes no line-and-arc run has too few vertices
    else
        return Acad::eNotImplementedYet;
    if (!ok) return Acad::eInvalidInput;
    if (keyed) {
        g.sampled(); // shared by every copy from here on
        gRemembered[gNextSlot] = {c, std::move(key), g};
        gNextSlot = (gNextSlot + 1) % gRemembered.size();
    }
    return Acad::eOk;
}

AcDbCurve* subCurve(const AcDbCurve* c, double from, double to) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return AcDbLineImpl::sub(*l, from, to);
    if (const AcDbArc* a = AcDbArc::cast(c)) return AcDbArcImpl::sub(*a, from, to);
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return AcDbCircleImpl::sub(*ci, from, to);
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return AcDbPolylineImpl::sub(*p, from, to);
    if (const AcDb2dPolyline* p2 = AcDb2dPolyline::cast(c))
        return AcDb2dPolylineImpl::sub(*p2, from, to);
    if (const AcDb3dPolyline* p3 = AcDb3dPolyline::cast(c))
        return AcDb3dPolylineImpl::sub(*p3, from, to);
    if (const AcDbEllipse* e = AcDbEllipse::cast(c)) return AcDbEllipseImpl::sub(*e, from, to);
    if (const AcDbSpline* s = AcDbSpline::cast(c)) return AcDbSplineImpl::sub(*s, from, to);
    return nullptr;
}

double thicknessOf(const AcDbCurve* c) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return l->thickness();
    if (const AcDbArc* a = AcDbArc::cast(c)) return a->thickness();
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return ci->thickness();
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return p->thickness();
    if (const AcDb2dPolyline* p2 = AcDb2dPolyline::cast(c)) return p2->thickness();
    return 0.0;
}

AcGeVector3d normalOf(const AcDbCurve* c) {
    if (const AcDbLine* l = AcDbLine::cast(c)) return l->normal();
    if (const AcDbArc* a = AcDbArc::cast(c)) return a->normal();
    if (const AcDbCircle* ci = AcDbCircle::cast(c)) return ci->normal();
    if (const AcDbPolyline* p = AcDbPolyline::cast(c)) return p->normal();
    if (const AcDb2dPolyline* p2 = AcDb2dPolyline::cast(c)) return p2->normal();
    return {0, 0, 1};
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
