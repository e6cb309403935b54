// Queries, extension and intersection of curves taken as evaluated paths.
#include "db/ents/pathgeom.h"

#include "db/ents/entsimpl.h"
#include "ge/evaluators.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace ents_detail {

namespace {

using geimpl::CurveEval;
using geimpl::SampledCurve;

// The exact line-and-arc geometry evaluated by its parameter.
class CurveGeomEval : public CurveEval {
public:
    explicit CurveGeomEval(CurveGeom g) : mG(std::move(g)) {}
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        size_t i = 0;
        double u = 0.0;
        if (!mG.locate(std::clamp(t, mG.startParam(), mG.endParam()), i, u)) {
            if (d1) *d1 = AcGeVector3d();
            if (d2) *d2 = AcGeVector3d();
            return mG.frame.origin;
        }
        const double span = mG.dp[i] > 0.0 ? mG.dp[i] : 1.0;
        if (d1) *d1 = mG.frame.toWorld(mG.pieces[i].d1(u)) / span;
        if (d2) *d2 = mG.frame.toWorld(mG.pieces[i].d2(u)) / (span * span);
        return mG.worldAt(i, u);
    }

private:
    CurveGeom mG;
};

// A circle of a frame by its angle.
class CircleEval : public CurveEval {
public:
    CircleEval(const Frame& f, const AcGePoint2d& c, double r) : mF(f), mC(c), mR(r) {}
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        const double ct = std::cos(t), st = std::sin(t);
        if (d1) *d1 = mF.toWorld(AcGeVector2d(-st, ct) * mR);
        if (d2) *d2 = mF.toWorld(AcGeVector2d(-ct, -st) * mR);
        return mF.toWorld(mC + AcGeVector2d(ct, st) * mR);
    }

private:
    Frame mF;
    AcGePoint2d mC;
    double mR;
};

class LineEval : public CurveEval {
public:
    LineEval(const AcGePoint3d& a, const AcGeVector3d& d) : mA(a), mD(d) {}
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        if (d1) *d1 = mD;
        if (d2) *d2 = AcGeVector3d();
        return mA + mD * t;
    }

private:
    AcGePoint3d mA;
    AcGeVector3d mD;
};

// A finite piece of a curve taken part in a numerical query, with its samples.
struct Part {
    std::shared_ptr<const CurveEval> ev;
    double a = 0.0, b = 0.0;
    std::vector<double> breaks;
    bool straight = false;
};

double paramEps(double t0, double t1) {
    return 1e-10 * std::max(1.0, std::fabs(t0) + std::fabs(t1));
}

struct Box {
    AcGePoint3d lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    void add(const AcGePoint3d& p) {
        for (unsigned k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    bool valid() const { return lo.x <= hi.x; }
};

Box boxOf(const SampledCurve& s) {
    Box b;
    for (const auto& p : s.points())
        b.add(p);
    const AcGeVector3d m(s.deviation(), s.deviation(), s.deviation());
    b.lo -= m;
    b.hi += m;
    return b;
}

// A ray cut off where it has passed every corner of the box.
Part rayPart(const ExtPart& r, const Box& reach) {
    double far = 0.0;
    for (int c = 0; c < 8; ++c) {
        const AcGePoint3d corner((c & 1) ? reach.hi.x : reach.lo.x,
                                 (c & 2) ? reach.hi.y : reach.lo.y,
                                 (c & 4) ? reach.hi.z : reach.lo.z);
        far = std::max(far, (corner - r.origin).dotProduct(r.dir));
    }
    Part p;
    p.ev = std::make_shared<LineEval>(r.origin, r.dir);
    p.a = 0.0;
    p.b = far * 1.01 + 1e-9;
    p.straight = true;
    return p;
}

Part mainPart(const PathGeom& g) {
    return {g.ev, g.t0, g.t1, g.breaks, g.straight};
}

// The parts of a curve, extended or not, finite within reach of another curve's box.
std::vector<Part> partsOf(const PathGeom& g, bool extend, const Box& reach) {
    std::vector<Part> out{mainPart(g)};
    if (!extend || g.closed) return out;
    for (const auto& e : g.ext) {
        if (e.ray) {
            out.push_back(rayPart(e, reach));
            continue;
        }
        if (e.b > e.a) out.push_back({e.ev, e.a, e.b, {}, false});
    }
    return out;
}

void intersectParts(
    const std::vector<Part>& pa, const std::vector<Part>& pb, double tol,
    const std::function<const CurveEval&(const Part&, std::unique_ptr<CurveEval>&)>& view,
    AcGePoint3dArray& out) {
    for (const auto& a : pa)
        for (const auto& b : pb) {
            std::unique_ptr<CurveEval> ha, hb;
            const CurveEval& ea = view(a, ha);
            const CurveEval& eb = view(b, hb);
            const SampledCurve sa(ea, a.a, a.b, a.breaks, a.straight);
            const SampledCurve sb(eb, b.a, b.b, b.breaks, b.straight);
            std::vector<std::pair<double, double>> hits;
            geimpl::intersectSampled(sa, sb, tol, hits);
            for (const auto& [s, t] : hits)
                addUnique(out, a.ev->eval(s), tol);
        }
}

} // namespace

// ---------------------------------------------------------------- queries

const SampledCurve& PathGeom::sampled() const {
    if (!mSampled) mSampled = std::make_shared<SampledCurve>(*ev, t0, t1, breaks, straight);
    return *mSampled;
}

double PathGeom::tolerance(double rel) const {
    const SampledCurve& s = sampled();
    double maxAbs = 0.0;
    for (const auto& p : s.points())
        maxAbs = std::max({maxAbs, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    return rel * std::max(1.0, s.size()) + 1e-13 * maxAbs;
}

Acad::ErrorStatus PathGeom::pointAtParam(double param, AcGePoint3d& p) const {
    const double eps = paramEps(t0, t1);
    if (!std::isfinite(param) || param < t0 - eps || param > t1 + eps) return Acad::eInvalidInput;
    p = ev->eval(std::clamp(param, t0, t1));
    return Acad::eOk;
}

Acad::ErrorStatus PathGeom::distAtParam(double param, double& dist) const {
    const double eps = paramEps(t0, t1);
    if (!std::isfinite(param) || param < t0 - eps || param > t1 + eps) return Acad::eInvalidInput;
    dist = sampled().lengthAt(std::clamp(param, t0, t1));
    return Acad::eOk;
}

Acad::ErrorStatus PathGeom::paramAtDist(double dist, double& param) const {
    const double total = length();
    const double eps = 1e-10 * std::max(1.0, total);
    if (!std::isfinite(dist) || dist < -eps || dist > total + eps) return Acad::eInvalidInput;
    param = sampled().paramAtLength(std::clamp(dist, 0.0, total));
    return Acad::eOk;
}

Acad::ErrorStatus PathGeom::firstDeriv(double param, AcGeVector3d& d) const {
    const double eps = paramEps(t0, t1);
    if (!std::isfinite(param) || param < t0 - eps || param > t1 + eps) return Acad::eInvalidInput;
    ev->eval(std::clamp(param, t0, t1), &d);
    return Acad::eOk;
}

Acad::ErrorStatus PathGeom::secondDeriv(double param, AcGeVector3d& d) const {
    const double eps = paramEps(t0, t1);
    if (!std::isfinite(param) || param < t0 - eps || param > t1 + eps) return Acad::eInvalidInput;
    AcGeVector3d d1;
    ev->eval(std::clamp(param, t0, t1), &d1, &d);
    return Acad::eOk;
}

Acad::ErrorStatus PathGeom::paramAtPoint(const AcGePoint3d& p, double& param) const {
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
        return Acad::eInvalidInput;
    const double t = sampled().closestParam(p);
    if (!(ev->eval(t).distanceTo(p) <= tolerance(1e-6))) return Acad::eInvalidInput;
    param = t;
    return Acad::eOk;
}

void PathGeom::closest(const AcGePoint3d& p, bool extend, AcGePoint3d& on) const {
    on = ev->eval(sampled().closestParam(p));
    if (!extend || closed) return;
    double best = on.distanceTo(p);
    for (const auto& e : ext) {
        AcGePoint3d q;
        if (e.ray) {
            q = e.origin + e.dir * std::max(0.0, (p - e.origin).dotProduct(e.dir));
        } else {
            if (!(e.b > e.a)) continue;
            const SampledCurve s(*e.ev, e.a, e.b);
            q = e.ev->eval(s.closestParam(p));
        }
        if (q.distanceTo(p) < best) {
            best = q.distanceTo(p);
            on = q;
        }
    }
}

void PathGeom::addExtents(AcDbExtents& extents) const {
    AcGePoint3d lo, hi;
    sampled().extents(lo, hi);
    extents.addPoint(lo);
    extents.addPoint(hi);
}

bool PathGeom::plane(AcGePoint3d& origin, AcGeVector3d& normal, AcDb::Planarity& type) const {
    const std::vector<AcGePoint3d>& pts = hull.empty() ? sampled().points() : hull;
    if (pts.empty()) return false;
    const double tol = tolerance(1e-9);
    origin = pts[0];
    size_t far = 0;
    for (size_t k = 1; k < pts.size(); ++k)
        if (pts[k].distanceTo(origin) > pts[far].distanceTo(origin)) far = k;
    const AcGeVector3d u = pts[far] - origin;
    if (u.length() <= tol) {
        type = AcDb::kLinear;
        normal = AcGeVector3d(0, 0, 1);
        return true;
    }
    const AcGeVector3d ux = u / u.length();
    AcGeVector3d best;
    double off = 0.0;
    for (const auto& p : pts) {
        AcGeVector3d w = p - origin;
        w -= ux * w.dotProduct(ux);
        if (w.length() > off) {
            off = w.length();
            best = w;
        }
    }
    if (off <= tol) {
        type = AcDb::kLinear;
        normal = unitNormal(ux.perpVector());
        return true;
    }
    normal = unitNormal(ux.crossProduct(best));
    // Face the way the world axes do, z first, so that a flat curve reports the usual normal.
    for (unsigned k : {2u, 1u, 0u})
        if (std::fabs(normal[k]) > 1e-12) {
            if (normal[k] < 0.0) normal = -normal;
            break;
        }
    for (const auto& p : pts)
        if (std::fabs((p - origin).dotProduct(normal)) > tol) return false;
    if (!hull.empty())
        for (const auto& p : sampled().points())
            if (std::fabs((p - origin).dotProduct(normal)) > tol) return false;
    type = AcDb::kPlanar;
    return true;
}

// ---------------------------------------------------------------- making paths

PathGeom pathOf(const CurveGeom& g) {
    PathGeom p;
    p.ev = std::make_shared<CurveGeomEval>(g);
    p.t0 = g.startParam();
    p.t1 = g.endParam();
    p.closed = g.closed;
    p.straight =
        std::none_of(g.pieces.begin(), g.pieces.end(), [](const Piece& pc) { return pc.arc; });
    for (size_t i = 1; i < g.pieces.size(); ++i)
        p.breaks.push_back(g.p0[i]);
    if (g.closed || g.pieces.empty()) return p;
    // The end pieces continue: lines straight on, arcs round their circles.
    auto extendPiece = [&](size_t i, bool atStart) {
        const Piece& pc = g.pieces[i];
        if (!pc.arc) {
            const AcGeVector3d d = g.frame.toWorld(pc.b - pc.a);
            if (d.length() <= 0.0) return;
            ExtPart e;
            e.ray = true;
            e.atStart = atStart;
            e.origin = g.worldAt(i, atStart ? 0.0 : 1.0);
            e.dir = (atStart ? -d : d) / d.length();
            p.ext.push_back(e);
            return;
        }
        ExtPart e;
        e.ev = std::make_shared<CircleEval>(g.frame, pc.c, pc.r);
        const double lo = std::min(pc.start, pc.start + pc.sweep);
        e.a = lo + std::fabs(pc.sweep);
        e.b = lo + kTwoPi;
        p.ext.push_back(e);
    };
    extendPiece(0, true);
    if (g.pieces.size() > 1 || !g.pieces[0].arc) extendPiece(g.pieces.size() - 1, false);
    return p;
}

Acad::ErrorStatus anyPath(const AcDbCurve* c, PathGeom& g) {
    CurveGeom cg;
    if (curveGeom(c, cg)) {
        g = pathOf(cg);
        return Acad::eOk;
    }
    return pathGeom(c, g);
}

// ---------------------------------------------------------------- intersections

void intersectPaths(const PathGeom& a, bool extA, const PathGeom& b, bool extB,
                    AcGePoint3dArray& out) {
    const double tol = std::max(a.tolerance(1e-9), b.tolerance(1e-9));
    // Rays only need to reach as far as the other curve does.
    Box reachA = boxOf(a.sampled()), reachB = boxOf(b.sampled());
    if (extA && !a.closed)
        for (const auto& e : a.ext)
            if (!e.ray && e.b > e.a) {
                const SampledCurve s(*e.ev, e.a, e.b);
                for (const auto& q : s.points())
                    reachA.add(q);
            }
    if (extB && !b.closed)
        for (const auto& e : b.ext)
            if (!e.ray && e.b > e.a) {
                const SampledCurve s(*e.ev, e.a, e.b);
                for (const auto& q : s.points())
                    reachB.add(q);
            }
    const std::vector<Part> pa = partsOf(a, extA, reachB), pb = partsOf(b, extB, reachA);
    auto same = [](const Part& p, std::unique_ptr<CurveEval>&) -> const CurveEval& {
        return *p.ev;
    };
    // Two rays meet where their lines do, wherever that is.
    for (const auto& ea : extA && !a.closed ? a.ext : std::vector<ExtPart>())
        for (const auto& eb : extB && !b.closed ? b.ext : std::vector<ExtPart>()) {
            if (!ea.ray || !eb.ray) continue;
            const AcGeVector3d r = ea.origin - eb.origin;
            const double dd = ea.dir.dotProduct(eb.dir), den = 1.0 - dd * dd;
            if (den <= 1e-14) continue;
            const double s = (dd * eb.dir.dotProduct(r) - ea.dir.dotProduct(r)) / den;
            const double t = (eb.dir.dotProduct(r) - dd * ea.dir.dotProduct(r)) / den;
            const AcGePoint3d p = ea.origin + ea.dir * s, q = eb.origin + eb.dir * t;
            if (s >= 0.0 && t >= 0.0 && p.distanceTo(q) <= tol) addUnique(out, p, tol);
        }
    intersectParts(pa, pb, tol, same, out);
}

Acad::ErrorStatus intersectPathsProjected(const PathGeom& a, bool extA, const PathGeom& b,
                                          bool extB, const AcGePoint3d& planeOrigin,
                                          const AcGeVector3d& planeNormal, AcGePoint3dArray& out) {
    if (!(planeNormal.length() > 1e-300)) return Acad::eInvalidInput;
    const AcGeVector3d n = unitNormal(planeNormal);
    const double tol = std::max(a.tolerance(1e-9), b.tolerance(1e-9));
    Box reach = boxOf(a.sampled());
    for (const auto& q : b.sampled().points())
        reach.add(q);
    const AcGeVector3d grow(reach.hi - reach.lo);
    reach.lo -= grow;
    reach.hi += grow;
    const std::vector<Part> pa = partsOf(a, extA, reach), pb = partsOf(b, extB, reach);
    auto projected = [&](const Part& p, std::unique_ptr<CurveEval>& hold) -> const CurveEval& {
        hold = std::make_unique<geimpl::ProjectedEval>(*p.ev, planeOrigin, n);
        return *hold;
    };
    intersectParts(pa, pb, tol, projected, out);
    return Acad::eOk;
}

AcGePoint3d projectedClosest(const PathGeom& a, const AcGePoint3d& p, const AcGeVector3d& dir,
                             bool extend) {
    const AcGeVector3d n = unitNormal(dir);
    Box reach = boxOf(a.sampled());
    reach.add(p);
    const AcGeVector3d grow(reach.hi - reach.lo);
    reach.lo -= grow;
    reach.hi += grow;
    AcGePoint3d best = a.ev->eval(a.t0);
    double bestDist = std::numeric_limits<double>::infinity();
    for (const auto& part : partsOf(a, extend, reach)) {
        const geimpl::ProjectedEval pe(*part.ev, p, n);
        const SampledCurve s(pe, part.a, part.b, part.breaks, part.straight);
        const double t = s.closestParam(p);
        const double d = pe.eval(t).distanceTo(p);
        if (d < bestDist) {
            bestDist = d;
            best = part.ev->eval(t);
        }
    }
    return best;
}

void drawPath(const PathGeom& g, AcGiWorldDraw* wd) {
    const auto& pts = g.sampled().points();
    if (pts.size() < 2 || !wd) return;
    wd->geometry().polyline(static_cast<Adesk::UInt32>(pts.size()), pts.data());
}

void pathSnaps(const PathGeom& g, AcDb::OsnapMode mode, const AcGePoint3d& pick,
               const AcGePoint3d& last, AcGePoint3dArray& pts) {
    const double tol = g.tolerance(1e-9);
    switch (mode) {
    case AcDb::kOsModeEnd:
        if (g.closed) break;
        addUnique(pts, g.ev->eval(g.t0), tol);
        addUnique(pts, g.ev->eval(g.t1), tol);
        break;
    case AcDb::kOsModeMid:
        if (!g.closed) pts.append(g.ev->eval(g.sampled().paramAtLength(0.5 * g.length())));
        break;
    case AcDb::kOsModeNear: {
        AcGePoint3d on;
        g.closest(pick, false, on);
        pts.append(on);
        break;
    }
    case AcDb::kOsModePerp: {
        AcGePoint3d on;
        g.closest(last, false, on);
        pts.append(on);
        break;
    }
    default:
        break;
    }
}

} // namespace ents_detail
