// Sampling, arc length, nearest points, extents and intersections of parametric curves.
#include "ge/curvenum.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace geimpl {

namespace {

// Ten-point Gauss-Legendre nodes and weights on [-1, 1].
constexpr double kGx[5] = {0.1488743389816312, 0.4333953941292472, 0.6794095682990244,
                           0.8650633666889845, 0.9739065285171717};
constexpr double kGw[5] = {0.2955242247147529, 0.2692667193099963, 0.2190863625159820,
                           0.1494513491505806, 0.0666713443086881};

double speed(const CurveEval& ev, double t) {
    AcGeVector3d d;
    ev.eval(t, &d);
    return d.length();
}

double gauss(const CurveEval& ev, double a, double b) {
    const double m = 0.5 * (a + b), h = 0.5 * (b - a);
    double s = 0.0;
    for (int i = 0; i < 5; ++i)
        s += kGw[i] * (speed(ev, m - h * kGx[i]) + speed(ev, m + h * kGx[i]));
    return s * h;
}

// Distance from p to the segment ab and the segment's parameter of the nearest point.
double segDistance(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b, double& s) {
    const AcGeVector3d d = b - a;
    const double l2 = d.lengthSqrd();
    s = l2 > 0.0 ? std::clamp((p - a).dotProduct(d) / l2, 0.0, 1.0) : 0.0;
    return (a + d * s).distanceTo(p);
}

// Closest points of two segments: parameters on each and their distance.
double segSegDistance(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& q0,
                      const AcGePoint3d& q1, double& s, double& t) {
    const AcGeVector3d d1 = p1 - p0, d2 = q1 - q0, r = p0 - q0;
    const double a = d1.dotProduct(d1), e = d2.dotProduct(d2), f = d2.dotProduct(r);
    if (a <= 1e-300 && e <= 1e-300) {
        s = t = 0.0;
        return p0.distanceTo(q0);
    }
    if (a <= 1e-300) {
        s = 0.0;
        t = std::clamp(f / e, 0.0, 1.0);
    } else {
        const double c = d1.dotProduct(r);
        if (e <= 1e-300) {
            t = 0.0;
            s = std::clamp(-c / a, 0.0, 1.0);
        } else {
            const double b = d1.dotProduct(d2), den = a * e - b * b;
            s = den > 1e-14 * a * e ? std::clamp((b * f - c * e) / den, 0.0, 1.0) : 0.0;
            t = (b * s + f) / e;
            if (t < 0.0) {
                t = 0.0;
                s = std::clamp(-c / a, 0.0, 1.0);
            } else if (t > 1.0) {
                t = 1.0;
                s = std::clamp((b - c) / a, 0.0, 1.0);
            }
        }
    }
    return (p0 + d1 * s).distanceTo(q0 + d2 * t);
}

// Golden-section search for the least f on [lo, hi].
template <class F> double goldenMin(F f, double lo, double hi, int iterations) {
    constexpr double g = 0.6180339887498949;
    double a = lo, b = hi;
    double x1 = b - g * (b - a), x2 = a + g * (b - a);
    double f1 = f(x1), f2 = f(x2);
    for (int i = 0; i < iterations && b - a > 0.0; ++i) {
        if (f1 <= f2) {
            b = x2;
            x2 = x1;
            f2 = f1;
            x1 = b - g * (b - a);
            f1 = f(x1);
        } else {
            a = x1;
            x1 = x2;
            f1 = f2;
            x2 = a + g * (b - a);
            f2 = f(x2);
        }
    }
    double best = f1 <= f2 ? x1 : x2;
    for (double e : {lo, hi})
        if (f(e) < f(best)) best = e;
    return best;
}

} // namespace

double integrate(const std::function<double(double)>& f, double a, double b) {
    const double m = 0.5 * (a + b), h = 0.5 * (b - a);
    double s = 0.0;
    for (int i = 0; i < 5; ++i)
        s += kGw[i] * (f(m - h * kGx[i]) + f(m + h * kGx[i]));
    return s * h;
}

double arcLength(const CurveEval& ev, double a, double b, int parts) {
    if (!(b > a)) return 0.0;
    parts = std::max(parts, 1);
    double s = 0.0;
    for (int i = 0; i < parts; ++i)
        s += gauss(ev, a + (b - a) * i / parts, a + (b - a) * (i + 1) / parts);
    return s;
}

// ---------------------------------------------------------------- sampling

SampledCurve::SampledCurve(const CurveEval& ev, double t0, double t1,
                           const std::vector<double>& breaks, bool straightPieces)
    : mEv(&ev), mStraight(straightPieces) {
    if (!(t1 > t0) || !std::isfinite(t0) || !std::isfinite(t1)) {
        mT = {t0};
        mP = {ev.eval(t0)};
        mLen = {0.0};
        return;
    }
    std::vector<double> nodes{t0};
    for (double b : breaks)
        if (b > nodes.back() && b < t1) nodes.push_back(b);
    nodes.push_back(t1);
    if (straightPieces) {
        for (double t : nodes) {
            mT.push_back(t);
            mP.push_back(ev.eval(t));
        }
    } else {
        // A first coarse pass for the size, then refinement against a tolerance relative to it.
        constexpr int kStart = 8;
        std::vector<double> coarse;
        for (size_t k = 0; k + 1 < nodes.size(); ++k)
            for (int i = 0; i < kStart; ++i)
                coarse.push_back(nodes[k] + (nodes[k + 1] - nodes[k]) * i / kStart);
        coarse.push_back(t1);
        std::vector<AcGePoint3d> cp;
        AcGePoint3d lo(1e300, 1e300, 1e300), hi(-1e300, -1e300, -1e300);
        for (double t : coarse) {
            cp.push_back(ev.eval(t));
            for (unsigned a = 0; a < 3; ++a) {
                lo[a] = std::min(lo[a], cp.back()[a]);
                hi[a] = std::max(hi[a], cp.back()[a]);
            }
        }
        const double size = (hi - lo).length();
        const double tol = 1e-3 * (std::isfinite(size) && size > 0.0 ? size : 1.0);
        mT.push_back(coarse[0]);
        mP.push_back(cp[0]);
        for (size_t k = 0; k + 1 < coarse.size(); ++k) {
            refine(coarse[k], cp[k], coarse[k + 1], cp[k + 1], tol, 0);
            mT.push_back(coarse[k + 1]);
            mP.push_back(cp[k + 1]);
        }
    }
    AcGePoint3d lo = mP[0], hi = mP[0];
    for (const auto& p : mP)
        for (unsigned a = 0; a < 3; ++a) {
            lo[a] = std::min(lo[a], p[a]);
            hi[a] = std::max(hi[a], p[a]);
        }
    mSize = (hi - lo).length();
    mLen.assign(mT.size(), 0.0);
    double dev = 0.0;
    for (size_t k = 1; k < mT.size(); ++k) {
        mLen[k] = mLen[k - 1] +
                  (straightPieces ? mP[k].distanceTo(mP[k - 1]) : arcLength(ev, mT[k - 1], mT[k]));
        if (!straightPieces) {
            double s = 0.0;
            dev =
                std::max(dev, segDistance(ev.eval(0.5 * (mT[k - 1] + mT[k])), mP[k - 1], mP[k], s));
        }
    }
    // The midpoint deviation understates the worst by little on chords that turn so little.
    mDev = 2.0 * dev + 1e-12 * std::max(1.0, mSize);
}

void SampledCurve::refine(double ta, const AcGePoint3d& pa, double tb, const AcGePoint3d& pb,
                          double tol, int depth) {
    // Enough for any curve worth drawing; damaged data must not run away with the memory.
    constexpr size_t kMaxSamples = 1u << 16;
    if (depth >= 24 || mP.size() >= kMaxSamples) return;
    const double tm = 0.5 * (ta + tb);
    AcGeVector3d da, db;
    mEv->eval(ta, &da);
    mEv->eval(tb, &db);
    const AcGePoint3d pm = mEv->eval(tm);
    double s = 0.0;
    const double dev = segDistance(pm, pa, pb, s);
    const double la = da.length(), lb = db.length();
    const bool turns = la > 0.0 && lb > 0.0 && da.dotProduct(db) < std::cos(0.3) * la * lb;
    // Points that are not numbers cannot be brought closer by dividing further.
    if ((dev <= tol && !turns) || !std::isfinite(dev)) return;
    refine(ta, pa, tm, pm, tol, depth + 1);
    mT.push_back(tm);
    mP.push_back(pm);
    refine(tm, pm, tb, pb, tol, depth + 1);
}

size_t SampledCurve::intervalOf(double t) const {
    if (mT.size() < 2) return 0;
    auto it = std::upper_bound(mT.begin(), mT.end(), t);
    size_t i = it == mT.begin() ? 0 : static_cast<size_t>(it - mT.begin()) - 1;
    return std::min(i, mT.size() - 2);
}

double SampledCurve::lengthAt(double t) const {
    if (mT.size() < 2) return 0.0;
    t = std::clamp(t, t0(), t1());
    const size_t i = intervalOf(t);
    if (mStraight) {
        const double span = mT[i + 1] - mT[i];
        const double f = span > 0.0 ? (t - mT[i]) / span : 0.0;
        return mLen[i] + f * (mLen[i + 1] - mLen[i]);
    }
    if (t >= mT[i + 1]) return mLen[i + 1];
    return mLen[i] + arcLength(*mEv, mT[i], t);
}

double SampledCurve::paramAtLength(double s) const {
    if (mT.size() < 2) return t0();
    if (s <= 0.0) return t0();
    if (s >= length()) return t1();
    auto it = std::upper_bound(mLen.begin(), mLen.end(), s);
    size_t i = static_cast<size_t>(it - mLen.begin());
    i = std::clamp<size_t>(i, 1, mLen.size() - 1) - 1;
    double lo = mT[i], hi = mT[i + 1];
    const double piece = mLen[i + 1] - mLen[i];
    if (!(piece > 0.0)) return lo;
    double t = lo + (hi - lo) * (s - mLen[i]) / piece;
    if (mStraight) return t;
    // Newton on the arc length, kept inside a shrinking bracket.
    for (int it2 = 0; it2 < 60; ++it2) {
        const double f = mLen[i] + arcLength(*mEv, mT[i], t) - s;
        if (std::fabs(f) <= 1e-15 * std::max(1.0, length())) break;
        if (f > 0.0)
            hi = t;
        else
            lo = t;
        const double v = speed(*mEv, t);
        double next = v > 0.0 ? t - f / v : 0.5 * (lo + hi);
        if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
        if (next == t) break;
        t = next;
    }
    return t;
}

double SampledCurve::closestParam(const AcGePoint3d& q) const {
    if (mT.size() < 2) return t0();
    std::vector<double> d(mT.size() - 1);
    std::vector<double> s(mT.size() - 1);
    double dmin = std::numeric_limits<double>::infinity();
    for (size_t k = 0; k + 1 < mT.size(); ++k) {
        d[k] = segDistance(q, mP[k], mP[k + 1], s[k]);
        dmin = std::min(dmin, d[k]);
    }
    double bestT = t0(), best = std::numeric_limits<double>::infinity();
    auto consider = [&](double t) {
        const double dist = mEv->eval(t).distanceTo(q);
        if (dist < best) {
            best = dist;
            bestT = t;
        }
    };
    consider(t0());
    consider(t1());
    const double reach = dmin + 2.0 * mDev;
    for (size_t k = 0; k + 1 < mT.size(); ++k) {
        if (d[k] > reach) continue;
        const double lo = mT[k], hi = mT[k + 1];
        if (mStraight) {
            consider(lo + (hi - lo) * s[k]);
            continue;
        }
        auto f = [&](double t) { return mEv->eval(t).distanceTo(q); };
        double t = goldenMin(f, lo, hi, 70);
        // Newton on (P - q).P' polishes what the search left.
        for (int it = 0; it < 4; ++it) {
            AcGeVector3d d1, d2;
            const AcGePoint3d p = mEv->eval(t, &d1, &d2);
            const AcGeVector3d r = p - q;
            const double g = r.dotProduct(d1), gp = d1.dotProduct(d1) + r.dotProduct(d2);
            if (!(gp > 0.0)) break;
            const double next = std::clamp(t - g / gp, lo, hi);
            if (f(next) > f(t)) break;
            t = next;
        }
        consider(t);
    }
    return bestT;
}

void SampledCurve::extents(AcGePoint3d& lo, AcGePoint3d& hi) const {
    lo = hi = mP[0];
    for (unsigned a = 0; a < 3; ++a) {
        for (int side = 0; side < 2; ++side) {
            const double sign = side == 0 ? 1.0 : -1.0;
            size_t best = 0;
            for (size_t k = 1; k < mP.size(); ++k)
                if (sign * mP[k][a] < sign * mP[best][a]) best = k;
            double v = mP[best][a];
            if (!mStraight && mT.size() > 1) {
                const double l = mT[best == 0 ? 0 : best - 1];
                const double h = mT[std::min(best + 1, mT.size() - 1)];
                auto f = [&](double t) { return sign * mEv->eval(t)[a]; };
                v = sign * f(goldenMin(f, l, h, 70));
                v = sign * std::min(sign * v, sign * mP[best][a]);
            }
            if (side == 0)
                lo[a] = v;
            else
                hi[a] = v;
        }
    }
}

// ---------------------------------------------------------------- intersection

namespace {

// Gauss-Newton on A(s) - B(t) = 0 from a seed; false when it does not come within tol.
bool refinePair(const SampledCurve& a, const SampledCurve& b, double& s, double& t, double tol) {
    const CurveEval& ea = a.eval();
    const CurveEval& eb = b.eval();
    double bestS = s, bestT = t;
    double best = ea.eval(s).distanceTo(eb.eval(t));
    // Past the tolerance too: the points should sit on both curves to rounding.
    for (int it = 0; it < 50 && best > 0.0; ++it) {
        AcGeVector3d da, db;
        const AcGePoint3d pa = ea.eval(s, &da), pb = eb.eval(t, &db);
        const AcGeVector3d r = pa - pb;
        const double aa = da.dotProduct(da), ab = da.dotProduct(db), bb = db.dotProduct(db);
        const double ra = da.dotProduct(r), rb = db.dotProduct(r);
        const double det = -aa * bb + ab * ab;
        double ds = 0.0, dt = 0.0;
        if (std::fabs(det) > 1e-14 * aa * bb) {
            // [aa -ab; ab -bb] [ds dt] = [-ra -rb]
            ds = (-ra * -bb - (-ab) * -rb) / det;
            dt = (aa * -rb - ab * -ra) / det;
        } else {
            // Tangent curves: step each onto the other in turn.
            if (aa > 0.0) ds = -ra / aa;
            if (bb > 0.0) dt = rb / bb;
        }
        s = std::clamp(s + ds, a.t0(), a.t1());
        t = std::clamp(t + dt, b.t0(), b.t1());
        const double dist = ea.eval(s).distanceTo(eb.eval(t));
        if (dist < best) {
            best = dist;
            bestS = s;
            bestT = t;
        }
        if (std::fabs(ds) + std::fabs(dt) <= 1e-16 * (1.0 + std::fabs(s) + std::fabs(t))) break;
    }
    s = bestS;
    t = bestT;
    return best <= tol;
}

struct Box {
    AcGePoint3d lo, hi;
    bool meets(const Box& o, double m) const {
        for (unsigned k = 0; k < 3; ++k)
            if (lo[k] > o.hi[k] + m || o.lo[k] > hi[k] + m) return false;
        return true;
    }
};

std::vector<Box> chordBoxes(const SampledCurve& c) {
    std::vector<Box> out;
    const auto& p = c.points();
    for (size_t k = 0; k + 1 < p.size(); ++k) {
        Box b;
        for (unsigned a = 0; a < 3; ++a) {
            b.lo[a] = std::min(p[k][a], p[k + 1][a]) - c.deviation();
            b.hi[a] = std::max(p[k][a], p[k + 1][a]) + c.deviation();
        }
        out.push_back(b);
    }
    return out;
}

} // namespace

void intersectSampled(const SampledCurve& a, const SampledCurve& b, double tol,
                      std::vector<std::pair<double, double>>& out) {
    const auto& pa = a.points();
    const auto& pb = b.points();
    const auto& ta = a.params();
    const auto& tb = b.params();
    if (pa.size() < 2 || pb.size() < 2) return;
    const std::vector<Box> ba = chordBoxes(a), bb = chordBoxes(b);
    const double reach = a.deviation() + b.deviation() + tol;
    for (size_t i = 0; i < ba.size(); ++i)
        for (size_t j = 0; j < bb.size(); ++j) {
            if (!ba[i].meets(bb[j], tol)) continue;
            double s = 0.0, t = 0.0;
            if (segSegDistance(pa[i], pa[i + 1], pb[j], pb[j + 1], s, t) > reach) continue;
            double ps = ta[i] + (ta[i + 1] - ta[i]) * s, pt = tb[j] + (tb[j + 1] - tb[j]) * t;
            if (refinePair(a, b, ps, pt, tol)) out.emplace_back(ps, pt);
        }
}

} // namespace geimpl
