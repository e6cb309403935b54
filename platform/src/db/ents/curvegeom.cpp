// Curve math shared by the plain entities: pieces, parameter queries and intersection.
#include "db/ents/curvegeom.h"

#include "cmdline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace ents_detail {

double normAngle(double a) {
    if (!std::isfinite(a)) return 0.0;
    a = std::fmod(a, kTwoPi);
    if (a < 0.0) a += kTwoPi;
    return a >= kTwoPi ? 0.0 : a;
}

double ccwSweep(double a, double b) {
    return normAngle(b - a);
}

AcGeVector3d unitNormal(const AcGeVector3d& n) {
    const double len = n.length();
    if (!(len > 1e-300) || !std::isfinite(len)) return {0, 0, 1};
    return n / len;
}

void ocsAxes(const AcGeVector3d& normal, AcGeVector3d& xAxis, AcGeVector3d& yAxis) {
    const AcGeVector3d n = unitNormal(normal);
    // Near the world z axis the x axis comes from world y, elsewhere from world z.
    const AcGeVector3d ref = (std::fabs(n.x) < 1.0 / 64.0 && std::fabs(n.y) < 1.0 / 64.0)
                                 ? AcGeVector3d(0, 1, 0)
                                 : AcGeVector3d(0, 0, 1);
    xAxis = unitNormal(ref.crossProduct(n));
    yAxis = unitNormal(n.crossProduct(xAxis));
}

Frame Frame::ocs(const AcGeVector3d& normal, const AcGePoint3d& origin) {
    Frame f;
    f.origin = origin;
    f.z = unitNormal(normal);
    ocsAxes(f.z, f.x, f.y);
    return f;
}

AcGePoint2d Frame::toLocal(const AcGePoint3d& p) const {
    const AcGeVector3d v = p - origin;
    return {v.dotProduct(x), v.dotProduct(y)};
}

AcGePoint3d worldToOcs(const AcGePoint3d& p, const AcGeVector3d& normal) {
    AcGeVector3d x, y;
    const AcGeVector3d z = unitNormal(normal);
    ocsAxes(z, x, y);
    const AcGeVector3d v = p.asVector();
    return {v.dotProduct(x), v.dotProduct(y), v.dotProduct(z)};
}

AcGePoint3d ocsToWorld(const AcGePoint3d& p, const AcGeVector3d& normal) {
    AcGeVector3d x, y;
    const AcGeVector3d z = unitNormal(normal);
    ocsAxes(z, x, y);
    return AcGePoint3d::kOrigin + x * p.x + y * p.y + z * p.z;
}

// ---------------------------------------------------------------- pieces

namespace {

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}

AcGePoint2d onCircle(const AcGePoint2d& c, double r, double angle) {
    return {c.x + r * std::cos(angle), c.y + r * std::sin(angle)};
}

// Offset of an angle from an arc's start, measured in the arc's direction, in [0, 2*pi).
double sweepOffset(const Piece& p, double angle) {
    return p.sweep >= 0.0 ? ccwSweep(p.start, angle) : ccwSweep(angle, p.start);
}

} // namespace

Piece Piece::line(const AcGePoint2d& a, const AcGePoint2d& b) {
    Piece p;
    p.a = a;
    p.b = b;
    return p;
}

Piece Piece::arcOf(const AcGePoint2d& c, double r, double start, double sweep) {
    Piece p;
    p.arc = true;
    p.c = c;
    p.r = r;
    p.start = start;
    p.sweep = sweep;
    p.a = onCircle(c, r, start);
    p.b = onCircle(c, r, start + sweep);
    return p;
}

Piece Piece::bulged(const AcGePoint2d& a, const AcGePoint2d& b, double bulge) {
    const double chord = a.distanceTo(b);
    if (std::fabs(bulge) < 1e-12 || chord <= 1e-300 || !std::isfinite(bulge)) return line(a, b);
    const double sweep = 4.0 * std::atan(bulge);
    const double r = chord / (2.0 * std::fabs(std::sin(sweep / 2.0)));
    // Signed distance of the centre from the chord's midpoint, to its left for a positive bulge.
    const double h = chord * (1.0 - bulge * bulge) / (4.0 * bulge);
    const AcGeVector2d dir = (b - a) / chord;
    const AcGePoint2d mid(0.5 * (a.x + b.x), 0.5 * (a.y + b.y));
    const AcGePoint2d c = mid + dir.perpVector() * h;
    Piece p = arcOf(c, r, std::atan2(a.y - c.y, a.x - c.x), sweep);
    // Keep the vertices exact rather than recomputed.
    p.a = a;
    p.b = b;
    return p;
}

double bulgeOf(double sweep) {
    return std::tan(sweep / 4.0);
}

double Piece::length() const {
    return arc ? r * std::fabs(sweep) : a.distanceTo(b);
}

AcGePoint2d Piece::at(double u) const {
    if (!arc) return a + (b - a) * u;
    if (u == 0.0) return a;
    if (u == 1.0) return b;
    return onCircle(c, r, start + u * sweep);
}

AcGeVector2d Piece::d1(double u) const {
    if (!arc) return b - a;
    const double t = start + u * sweep;
    return AcGeVector2d(-std::sin(t), std::cos(t)) * (sweep * r);
}

AcGeVector2d Piece::d2(double u) const {
    if (!arc) return {0, 0};
    const double t = start + u * sweep;
    return AcGeVector2d(std::cos(t), std::sin(t)) * (-sweep * sweep * r);
}

double Piece::uOf(const AcGePoint2d& p) const {
    if (!arc) {
        const AcGeVector2d d = b - a;
        const double l2 = d.lengthSqrd();
        return l2 > 0.0 ? (p - a).dotProduct(d) / l2 : 0.0;
    }
    if (std::fabs(sweep) <= 0.0) return 0.0;
    return sweepOffset(*this, std::atan2(p.y - c.y, p.x - c.x)) / std::fabs(sweep);
}

double Piece::closestU(const AcGePoint2d& p, bool extStart, bool extEnd) const {
    double u = uOf(p);
    if (!arc) {
        if (!extStart) u = std::max(u, 0.0);
        if (!extEnd) u = std::min(u, 1.0);
        return u;
    }
    if (u <= 1.0 || extStart || extEnd) return u;
    // Off the sweep: the nearer end.
    return p.distanceTo(a) <= p.distanceTo(b) ? 0.0 : 1.0;
}

bool Piece::onPiece(double u, double tol, bool extStart, bool extEnd) const {
    if (!arc) {
        const double len = length();
        if (len <= tol) return true;
        const double e = tol / len;
        return (extStart || u >= -e) && (extEnd || u <= 1.0 + e);
    }
    if (extStart || extEnd || isFullCircle()) return true;
    const double e = r > 0.0 ? tol / r : 0.0;
    const double off = u * std::fabs(sweep);
    return (off >= -e && off <= std::fabs(sweep) + e) || off - kTwoPi >= -e;
}

// ---------------------------------------------------------------- curve geometry

double CurveGeom::length() const {
    double l = 0.0;
    for (const auto& p : pieces)
        l += p.length();
    return l;
}

double CurveGeom::tolerance(double rel) const {
    double lo[2] = {1e300, 1e300}, hi[2] = {-1e300, -1e300}, maxAbs = 0.0;
    auto add = [&](const AcGePoint2d& p) {
        for (unsigned k = 0; k < 2; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
            maxAbs = std::max(maxAbs, std::fabs(p[k]));
        }
    };
    for (const auto& p : pieces) {
        add(p.a);
        add(p.b);
        if (p.arc) {
            add(p.c + AcGeVector2d(p.r, p.r));
            add(p.c - AcGeVector2d(p.r, p.r));
        }
    }
    for (unsigned k = 0; k < 3; ++k)
        maxAbs = std::max(maxAbs, std::fabs(frame.origin[k]));
    double diag = pieces.empty() ? 0.0 : std::hypot(hi[0] - lo[0], hi[1] - lo[1]);
    if (!std::isfinite(diag)) diag = 0.0;
    return rel * std::max(1.0, diag) + 1e-13 * maxAbs;
}

bool CurveGeom::locate(double param, size_t& i, double& u) const {
    if (pieces.empty() || !std::isfinite(param)) return false;
    const double s = startParam(), e = endParam();
    const double eps = 1e-10 * std::max(1.0, std::fabs(e) + std::fabs(s));
    if (param < s - eps || param > e + eps) return false;
    param = std::clamp(param, s, e);
    i = pieces.size() - 1;
    for (size_t k = 0; k < pieces.size(); ++k)
        if (param <= p0[k] + dp[k]) {
            i = k;
            break;
        }
    u = dp[i] > 0.0 ? std::clamp((param - p0[i]) / dp[i], 0.0, 1.0) : 0.0;
    return true;
}

Acad::ErrorStatus CurveGeom::pointAtParam(double param, AcGePoint3d& p) const {
    size_t i = 0;
    double u = 0.0;
    if (!locate(param, i, u)) return Acad::eInvalidInput;
    p = worldAt(i, u);
    return Acad::eOk;
}

Acad::ErrorStatus CurveGeom::distAtParam(double param, double& dist) const {
    size_t i = 0;
    double u = 0.0;
    if (!locate(param, i, u)) return Acad::eInvalidInput;
    dist = 0.0;
    for (size_t k = 0; k < i; ++k)
        dist += pieces[k].length();
    dist += u * pieces[i].length();
    return Acad::eOk;
}

Acad::ErrorStatus CurveGeom::paramAtDist(double dist, double& param) const {
    if (pieces.empty() || !std::isfinite(dist)) return Acad::eInvalidInput;
    const double total = length();
    const double eps = 1e-10 * std::max(1.0, total);
    if (dist < -eps || dist > total + eps) return Acad::eInvalidInput;
    dist = std::clamp(dist, 0.0, total);
    double acc = 0.0;
    for (size_t k = 0; k < pieces.size(); ++k) {
        const double l = pieces[k].length();
        if (dist <= acc + l && l > 0.0) {
            param = p0[k] + dp[k] * std::clamp((dist - acc) / l, 0.0, 1.0);
            return Acad::eOk;
        }
        acc += l;
    }
    param = endParam();
    return Acad::eOk;
}

Acad::ErrorStatus CurveGeom::firstDeriv(double param, AcGeVector3d& d) const {
    size_t i = 0;
    double u = 0.0;
    if (!locate(param, i, u)) return Acad::eInvalidInput;
    d = frame.toWorld(pieces[i].d1(u));
    if (dp[i] > 0.0) d /= dp[i];
    return Acad::eOk;
}

Acad::ErrorStatus CurveGeom::secondDeriv(double param, AcGeVector3d& d) const {
    size_t i = 0;
    double u = 0.0;
    if (!locate(param, i, u)) return Acad::eInvalidInput;
    d = frame.toWorld(pieces[i].d2(u));
    if (dp[i] > 0.0) d /= dp[i] * dp[i];
    return Acad::eOk;
}

void CurveGeom::closest(const AcGePoint3d& p, bool extend, size_t& piece, double& u,
                        AcGePoint3d& on) const {
    piece = 0;
    u = 0.0;
    on = frame.origin;
    if (pieces.empty()) return;
    const AcGePoint2d q = frame.toLocal(p);
    double best = std::numeric_limits<double>::infinity();
    const size_t last = pieces.size() - 1;
    for (size_t k = 0; k < pieces.size(); ++k) {
        const bool es = extend && !closed && k == 0, ee = extend && !closed && k == last;
        const double uk = pieces[k].closestU(q, es, ee);
        const double d = pieces[k].at(uk).distanceTo(q);
        if (d < best) {
            best = d;
            piece = k;
            u = uk;
        }
    }
    on = worldAt(piece, u);
}

Acad::ErrorStatus CurveGeom::paramAtPoint(const AcGePoint3d& p, double& param) const {
    if (pieces.empty()) return Acad::eInvalidInput;
    size_t i = 0;
    double u = 0.0;
    AcGePoint3d on;
    closest(p, false, i, u, on);
    if (!(on.distanceTo(p) <= tolerance(1e-6))) return Acad::eInvalidInput;
    param = p0[i] + u * dp[i];
    return Acad::eOk;
}

void CurveGeom::addExtents(AcGePoint3dArray& pts) const {
    for (const auto& pc : pieces) {
        pts.append(frame.toWorld(pc.a));
        pts.append(frame.toWorld(pc.b));
        if (!pc.arc) continue;
        // Extremes of each world coordinate round the circle, where they fall inside the sweep.
        for (unsigned k = 0; k < 3; ++k) {
            const double xk = frame.x[k], yk = frame.y[k];
            if (std::hypot(xk, yk) < 1e-15) continue;
            const double t0 = std::atan2(yk, xk);
            for (double t : {t0, t0 + kPi})
                if (pc.isFullCircle() || sweepOffset(pc, normAngle(t)) <= std::fabs(pc.sweep))
                    pts.append(frame.toWorld(onCircle(pc.c, pc.r, t)));
        }
    }
}

void addUnique(AcGePoint3dArray& pts, const AcGePoint3d& p, double tol) {
    for (const auto& q : pts)
        if (q.distanceTo(p) <= tol) return;
    pts.append(p);
}

// ---------------------------------------------------------------- intersection

namespace {

struct Ext {
    bool s = false, e = false;
};

struct Flat {
    std::vector<Piece> pieces;
    std::vector<Ext> ext;
};

struct Hit {
    size_t i;
    double u;
    AcGePoint2d p;
};

std::vector<Ext> extFlags(const CurveGeom& g, bool extend) {
    std::vector<Ext> f(g.pieces.size());
    if (extend && !g.closed && !f.empty()) {
        f.front().s = true;
        f.back().e = true;
    }
    return f;
}

// Candidate points where the carriers (infinite lines, whole circles) of two pieces meet.
void carrierPoints(const Piece& p, const Piece& q, double tol, std::vector<AcGePoint2d>& out) {
    if (!p.arc && !q.arc) {
        const AcGeVector2d d1 = p.b - p.a, d2 = q.b - q.a;
        const double l1 = d1.length(), l2 = d2.length();
        if (l1 <= tol || l2 <= tol) {
            // A degenerate segment is a point: it meets the other where it lies on it.
            out.push_back(l1 <= tol ? p.a : q.a);
            return;
        }
        const double den = cross(d1, d2);
        if (std::fabs(den) <= 1e-12 * l1 * l2) {
            if (std::fabs(cross(d1, q.a - p.a)) / l1 <= tol)
                for (const auto& e : {p.a, p.b, q.a, q.b})
                    out.push_back(e);
            return;
        }
        out.push_back(p.a + d1 * (cross(q.a - p.a, d2) / den));
        return;
    }
    if (p.arc != q.arc) {
        const Piece& ln = p.arc ? q : p;
        const Piece& ar = p.arc ? p : q;
        const AcGeVector2d d = ln.b - ln.a;
        const double l = d.length();
        if (l <= tol) {
            out.push_back(ln.a);
            return;
        }
        const AcGeVector2d dir = d / l;
        const AcGePoint2d foot = ln.a + dir * (ar.c - ln.a).dotProduct(dir);
        const double h = foot.distanceTo(ar.c);
        if (h > ar.r + tol) return;
        if (std::fabs(h - ar.r) <= tol) {
            out.push_back(foot);
            return;
        }
        const double s = std::sqrt(std::max(0.0, ar.r * ar.r - h * h));
        out.push_back(foot + dir * s);
        out.push_back(foot - dir * s);
        return;
    }
    const AcGeVector2d cc = q.c - p.c;
    const double d = cc.length();
    if (d <= tol) {
        // Same circle: where the arcs' ends lie on each other.
        if (std::fabs(p.r - q.r) <= tol)
            for (const auto& e : {p.a, p.b, q.a, q.b})
                out.push_back(e);
        return;
    }
    if (d > p.r + q.r + tol || d < std::fabs(p.r - q.r) - tol) return;
    const AcGeVector2d dir = cc / d;
    const double a = std::clamp((d * d + p.r * p.r - q.r * q.r) / (2.0 * d), -p.r, p.r);
    const bool tangent =
        std::fabs(d - (p.r + q.r)) <= tol || std::fabs(d - std::fabs(p.r - q.r)) <= tol;
    const AcGePoint2d m = p.c + dir * a;
    if (tangent) {
        out.push_back(m);
        return;
    }
    const double h = std::sqrt(std::max(0.0, p.r * p.r - a * a));
    out.push_back(m + dir.perpVector() * h);
    out.push_back(m - dir.perpVector() * h);
}

double distToPiece(const Piece& pc, const AcGePoint2d& p, const Ext& ex) {
    return pc.at(pc.closestU(p, ex.s, ex.e)).distanceTo(p);
}

void intersect2d(const Flat& a, const Flat& b, double tol, std::vector<Hit>& hits) {
    std::vector<AcGePoint2d> cand;
    for (size_t i = 0; i < a.pieces.size(); ++i)
        for (size_t j = 0; j < b.pieces.size(); ++j) {
            cand.clear();
            carrierPoints(a.pieces[i], b.pieces[j], tol, cand);
            for (const auto& pt : cand) {
                const Piece& p = a.pieces[i];
                const Piece& q = b.pieces[j];
                const double u = p.uOf(pt), v = q.uOf(pt);
                if (!p.onPiece(u, tol, a.ext[i].s, a.ext[i].e) ||
                    !q.onPiece(v, tol, b.ext[j].s, b.ext[j].e))
                    continue;
                // Degenerate pieces offer their point blindly: check it lies on the other one.
                if (distToPiece(p, pt, a.ext[i]) > 2.0 * tol ||
                    distToPiece(q, pt, b.ext[j]) > 2.0 * tol)
                    continue;
                hits.push_back({i, u, pt});
            }
        }
}

// The pieces of g in frame f (same plane), keeping each piece's direction of travel.
Flat mapInto(const CurveGeom& g, const Frame& f, bool extend) {
    Flat out;
    out.ext = extFlags(g, extend);
    const bool flipped = g.frame.z.dotProduct(f.z) < 0.0;
    for (const auto& pc : g.pieces) {
        const AcGePoint2d a = f.toLocal(g.frame.toWorld(pc.a)),
                          b = f.toLocal(g.frame.toWorld(pc.b));
        if (!pc.arc) {
            out.pieces.push_back(Piece::line(a, b));
            continue;
        }
        const AcGePoint2d c = f.toLocal(g.frame.toWorld(pc.c));
        Piece m =
            Piece::arcOf(c, pc.r, std::atan2(a.y - c.y, a.x - c.x), flipped ? -pc.sweep : pc.sweep);
        m.a = a;
        m.b = b;
        out.pieces.push_back(m);
    }
    return out;
}

bool liesIn(const CurveGeom& g, const Frame& f, double tol) {
    if (g.linear) {
        for (const auto& pc : g.pieces)
            if (std::fabs(f.height(g.frame.toWorld(pc.a))) > tol ||
                std::fabs(f.height(g.frame.toWorld(pc.b))) > tol)
                return false;
        return true;
    }
    return g.frame.z.crossProduct(f.z).length() <= 1e-10 &&
           std::fabs(f.height(g.frame.origin)) <= tol;
}

// A plane holding both lines, when they are coplanar.
bool commonLineFrame(const CurveGeom& a, const CurveGeom& b, Frame& f) {
    const AcGePoint3d a0 = a.frame.toWorld(a.pieces.front().a),
                      a1 = a.frame.toWorld(a.pieces.front().b);
    const AcGePoint3d b0 = b.frame.toWorld(b.pieces.front().a),
                      b1 = b.frame.toWorld(b.pieces.front().b);
    AcGeVector3d x = a1 - a0;
    if (x.length() <= 1e-300) x = b1 - b0;
    if (x.length() <= 1e-300) x = b0 - a0;
    if (x.length() <= 1e-300) x = {1, 0, 0};
    x = unitNormal(x);
    AcGeVector3d z = x.crossProduct(b1 - b0);
    if (z.length() <= 1e-12 * std::max(1.0, (b1 - b0).length())) z = x.crossProduct(b0 - a0);
    if (z.length() <= 1e-12 * std::max(1.0, (b0 - a0).length())) z = x.perpVector();
    z = unitNormal(z);
    f.origin = a0;
    f.x = x;
    f.z = z;
    f.y = unitNormal(z.crossProduct(x));
    return true;
}

} // namespace

void intersect(const CurveGeom& a, bool extA, const CurveGeom& b, bool extB,
               AcGePoint3dArray& out) {
    if (a.empty() || b.empty()) return;
    const double tol = std::max(a.tolerance(1e-9), b.tolerance(1e-9));
    Frame f;
    if (!a.linear)
        f = a.frame;
    else if (!b.linear)
        f = b.frame;
    else
        commonLineFrame(a, b, f);

    if (liesIn(a, f, tol) && liesIn(b, f, tol)) {
        std::vector<Hit> hits;
        intersect2d(mapInto(a, f, extA), mapInto(b, f, extB), tol, hits);
        for (const auto& h : hits)
            addUnique(out, f.toWorld(h.p), tol);
        return;
    }
    if (a.linear && b.linear) return; // skew lines

    // Different planes: the points of one curve on the other's plane, kept where they lie on the
    // other.
    const CurveGeom& planar = a.linear ? b : a;
    const CurveGeom& other = a.linear ? a : b;
    const bool extPlanar = a.linear ? extB : extA, extOther = a.linear ? extA : extB;
    const Frame& pf = planar.frame;
    std::vector<AcGePoint3d> cand;
    const std::vector<Ext> oext = extFlags(other, extOther);
    if (other.linear) {
        const Piece& pc = other.pieces.front();
        const AcGePoint3d p0 = other.frame.toWorld(pc.a), p1 = other.frame.toWorld(pc.b);
        const double h0 = pf.height(p0), h1 = pf.height(p1);
        if (std::fabs(h1 - h0) <= 1e-15) return;
        const double s = h0 / (h0 - h1);
        const double len = p0.distanceTo(p1);
        const double e = len > 0.0 ? tol / len : 0.0;
        if ((oext[0].s || s >= -e) && (oext[0].e || s <= 1.0 + e))
            cand.push_back(p0 + (p1 - p0) * s);
    } else {
        const Frame& of = other.frame;
        const AcGeVector3d dir = of.z.crossProduct(pf.z);
        if (dir.length() <= 1e-10) return; // parallel planes apart
        const AcGeVector2d g(of.x.dotProduct(pf.z), of.y.dotProduct(pf.z));
        const double rhs = (pf.origin - of.origin).dotProduct(pf.z);
        const AcGePoint2d base = AcGePoint2d::kOrigin + g * (rhs / g.lengthSqrd());
        const AcGeVector2d d2 =
            unitNormal(AcGeVector3d(dir.dotProduct(of.x), dir.dotProduct(of.y), 0)).convert2d();
        Flat lineFlat;
        lineFlat.pieces.push_back(Piece::line(base, base + d2));
        lineFlat.ext.push_back({true, true});
        Flat otherFlat;
        otherFlat.pieces = other.pieces;
        otherFlat.ext = oext;
        std::vector<Hit> hits;
        intersect2d(otherFlat, lineFlat, tol, hits);
        for (const auto& h : hits)
            cand.push_back(of.toWorld(h.p));
    }
    const std::vector<Ext> pext = extFlags(planar, extPlanar);
    for (const auto& p : cand) {
        const AcGePoint2d q = pf.toLocal(p);
        for (size_t k = 0; k < planar.pieces.size(); ++k)
            if (distToPiece(planar.pieces[k], q, pext[k]) <= 2.0 * tol) {
                addUnique(out, p, tol);
                break;
            }
    }
}

Acad::ErrorStatus intersectProjected(const CurveGeom& a, bool extA, const CurveGeom& b, bool extB,
                                     const AcGePoint3d& planeOrigin,
                                     const AcGeVector3d& planeNormal, AcGePoint3dArray& out) {
    if (planeNormal.length() <= 1e-300) return Acad::eInvalidInput;
    if (a.empty() || b.empty()) return Acad::eOk;
    const Frame f = Frame::ocs(planeNormal, planeOrigin);
    // Arcs stay circles only when their plane is parallel to the projection plane.
    for (const CurveGeom* g : {&a, &b})
        if (!g->linear && g->frame.z.crossProduct(f.z).length() > 1e-10)
            return Acad::eNotApplicable;
    // Frame::toLocal drops the height: mapping into the plane's frame is the projection.
    auto flatten = [&](const CurveGeom& g, bool ext) { return mapInto(g, f, ext); };
    const double tol = std::max(a.tolerance(1e-9), b.tolerance(1e-9));
    std::vector<Hit> hits;
    intersect2d(flatten(a, extA), flatten(b, extB), tol, hits);
    for (const auto& h : hits)
        addUnique(out, a.worldAt(h.i, h.u), tol);
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing and transforms

void listPoint(const wchar_t* label, const AcGePoint3d& p) {
    acutPrintf(L"\n%18s X=%10.4f  Y=%10.4f  Z=%10.4f", label, p.x, p.y, p.z);
}

void listValue(const wchar_t* label, double v) {
    acutPrintf(L"\n%18s %10.4f", label, v);
}

void listAngle(const wchar_t* label, double radians) {
    acutPrintf(L"\n%18s %10.4f", label, normAngle(radians) * 180.0 / kPi);
}

void listVector(const wchar_t* label, const AcGeVector3d& v) {
    acutPrintf(L"\n%18s X=%10.4f  Y=%10.4f  Z=%10.4f", label, v.x, v.y, v.z);
}

bool keepsCircles(const AcGeMatrix3d& m, const AcGeVector3d& x, const AcGeVector3d& y) {
    AcGeVector3d xi = x, yi = y;
    xi.transformBy(m);
    yi.transformBy(m);
    const double lx = xi.length(), ly = yi.length();
    if (!(lx > 1e-300) || !(ly > 1e-300)) return false;
    return std::fabs(lx - ly) <= 1e-9 * std::max(lx, ly) &&
           std::fabs(xi.dotProduct(yi)) <= 1e-9 * lx * ly;
}

} // namespace ents_detail
