// Database curves as geometric curves and back.
#include "db/ents/entsimpl.h"
#include "ge/nurbscore.h"
#include "genurbs.h"

#include <cmath>
#include <memory>

using namespace ents_detail;
using geimpl::Nurbs;

namespace {

// A run of line and arc pieces as one exact NURBS curve of degree 2.
bool piecesAsNurbs(const CurveGeom& g, Nurbs& out) {
    bool any = false;
    const double tol = g.tolerance(1e-12);
    for (const auto& pc : g.pieces) {
        if (pc.length() <= tol) continue;
        Nurbs n;
        if (!pc.arc) {
            n = geimpl::segment(g.frame.toWorld(pc.a), g.frame.toWorld(pc.b), 2);
        } else {
            // Clockwise pieces run forward along the mirrored parameter.
            const double dir = pc.sweep >= 0.0 ? 1.0 : -1.0;
            n = geimpl::ellipseArc(g.frame.toWorld(pc.c), g.frame.x * pc.r,
                                   g.frame.y * (pc.r * dir), dir * pc.start,
                                   dir * pc.start + std::fabs(pc.sweep));
        }
        if (!any)
            out = std::move(n);
        else if (!out.append(n))
            return false;
        any = true;
    }
    return any && out.valid();
}

AcGeCurve3d* nurbsCurve(const Nurbs& n) {
    auto* c = new AcGeNurbCurve3d();
    c->setNurbs(n);
    return c;
}

} // namespace

Acad::ErrorStatus AcDbCurve::getAcGeCurve(AcGeCurve3d*& geCurve, const AcGeTol&) const {
    assertReadEnabled();
    geCurve = nullptr;
    if (const AcDbLine* l = AcDbLine::cast(this)) {
        geCurve = new AcGeLineSeg3d(l->startPoint(), l->endPoint());
        return Acad::eOk;
    }
    if (AcDbArc::cast(this) || AcDbCircle::cast(this)) {
        CurveGeom g;
        if (!curveGeom(this, g)) return Acad::eInvalidInput;
        const Piece& pc = g.pieces.front();
        geCurve = new AcGeCircArc3d(g.frame.origin, g.frame.z, g.frame.x, pc.r, pc.start,
                                    pc.start + pc.sweep);
        return Acad::eOk;
    }
    if (const AcDbEllipse* e = AcDbEllipse::cast(this)) {
        if (e->isNull()) return Acad::eInvalidInput;
        double s = 0.0, t = 0.0;
        e->getStartParam(s);
        e->getEndParam(t);
        const AcGeVector3d M = e->majorAxis(), m = e->minorAxis();
        geCurve = new AcGeEllipArc3d(e->center(), M, m, M.length(), m.length(), s, t);
        return Acad::eOk;
    }
    if (const AcDbSpline* sp = AcDbSpline::cast(this)) {
        if (sp->isNull()) return Acad::eInvalidInput;
        AcGePoint3dArray fit;
        int degree = 0;
        double fitTol = 0.0;
        Adesk::Boolean tangents = false;
        AcGeVector3d st, et;
        if (sp->getFitData(fit, degree, fitTol, tangents, st, et) == Acad::eOk && degree == 3) {
            // The same interpolation: the geometric curve keeps the fit points too.
            geCurve = new AcGeNurbCurve3d(fit, st, et, st.length() > 0.0, et.length() > 0.0);
            return Acad::eOk;
        }
        geCurve = nurbsCurve(*AcDbSplineImpl::nurbs(*sp));
        return Acad::eOk;
    }
    CurveGeom g;
    if (curveGeom(this, g)) {
        Nurbs n;
        if (!piecesAsNurbs(g, n)) return Acad::eInvalidInput;
        geCurve = nurbsCurve(n);
        return Acad::eOk;
    }
    PathGeom p;
    if (const Acad::ErrorStatus es = pathGeom(this, p); es != Acad::eOk) return es;
    // A 3D polyline: degree 1 through its vertices, vertex i at parameter i.
    Nurbs n;
    n.degree = 1;
    n.knots.push_back(p.t0);
    for (double t = p.t0; t <= p.t1 + 0.5; t += 1.0) {
        n.pts.push_back(p.ev->eval(std::min(t, p.t1)));
        n.knots.push_back(std::min(t, p.t1));
    }
    n.knots.push_back(p.t1);
    if (!n.valid()) return Acad::eInvalidInput;
    geCurve = nurbsCurve(n);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::createFromAcGeCurve(const AcGeCurve3d& geCurve, AcDbCurve*& dbCurve,
                                                 AcGeVector3d* normal, const AcGeTol& tol) {
    dbCurve = nullptr;
    switch (geCurve.type()) {
    case AcGe::kLineSeg3d: {
        const auto& s = static_cast<const AcGeLineSeg3d&>(geCurve);
        auto* l = new AcDbLine(s.startPoint(), s.endPoint());
        if (normal && normal->length() > 0.0) l->setNormal(*normal);
        dbCurve = l;
        return Acad::eOk;
    }
    case AcGe::kCircArc3d: {
        const auto& a = static_cast<const AcGeCircArc3d&>(geCurve);
        if (!(a.radius() > 0.0)) return Acad::eInvalidInput;
        if (a.isClosed(tol)) {
            dbCurve = new AcDbCircle(a.center(), a.normal(), a.radius());
            return Acad::eOk;
        }
        // Angles in the plane system of the arc's normal.
        const Frame f = Frame::ocs(a.normal(), a.center());
        const AcGePoint2d s = f.toLocal(a.startPoint()), e = f.toLocal(a.endPoint());
        dbCurve = new AcDbArc(a.center(), a.normal(), a.radius(), std::atan2(s.y, s.x),
                              std::atan2(e.y, e.x));
        return Acad::eOk;
    }
    case AcGe::kEllipArc3d: {
        const auto& e = static_cast<const AcGeEllipArc3d&>(geCurve);
        double a = e.majorRadius(), b = e.minorRadius();
        AcGeVector3d major = e.majorAxis() * a, minor = e.minorAxis() * b;
        double s = e.startAng(), t = e.endAng();
        if (b > a) {
            // The longer axis leads; the parameter turns back a quarter.
            const AcGeVector3d old = major;
            major = minor;
            minor = -old;
            std::swap(a, b);
            s -= kPi / 2;
            t -= kPi / 2;
        }
        if (!(a > 0.0) || !(b > 0.0)) return Acad::eInvalidInput;
        const AcGeVector3d n = unitNormal(major.crossProduct(minor));
        auto* el = new AcDbEllipse(e.center(), n, major, b / a);
        if (el->isNull()) {
            delete el;
            return Acad::eInvalidInput;
        }
        if (!e.isClosed(tol)) {
            el->setStartParam(s);
            el->setEndParam(t);
        }
        dbCurve = el;
        return Acad::eOk;
    }
    case AcGe::kNurbCurve3d: {
        const auto& c = static_cast<const AcGeNurbCurve3d&>(geCurve);
        if (!c.isValid()) return Acad::eInvalidInput;
        auto* sp = new AcDbSpline();
        AcGePoint3dArray fit;
        AcGeTol fitTol;
        bool tangents = false;
        AcGeVector3d st, et;
        if (c.getFitData(fit, fitTol, tangents, st, et)) {
            sp->setFitData(fit, 3, 0.0, st, et);
        } else {
            int degree = 0;
            bool rational = false, periodic = false;
            AcGeKnotVector knots;
            AcGePoint3dArray pts;
            AcGeDoubleArray weights;
            c.getDefinitionData(degree, rational, periodic, knots, pts, weights);
            if (sp->setNurbsData(degree, rational, c.isClosed(tol), false, pts, knots.asArray(),
                                 weights) != Acad::eOk) {
                delete sp;
                return Acad::eInvalidInput;
            }
        }
        dbCurve = sp;
        return Acad::eOk;
    }
    default:
        return Acad::eNotApplicable;
    }
}
