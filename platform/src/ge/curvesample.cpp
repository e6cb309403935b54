// What every curve offers on top of its own queries: the parameter at an arc length and
// sample points, built on evalPoint, length and the interval alone.
#include "gecurves.h"

#include <algorithm>
#include <cmath>

namespace {

// Solves length(datum, t) = target for t beyond datum (dir +1) or before it (dir -1).
template <class Curve>
double paramAtLengthOf(const Curve& c, double datum, double target, bool forward, double tol) {
    if (!std::isfinite(datum) || !std::isfinite(target)) return datum;
    if (target < 0.0) {
        target = -target;
        forward = !forward;
    }
    if (target == 0.0) return datum;
    const double dir = forward ? 1.0 : -1.0;
    AcGeInterval range;
    c.getInterval(range);
    const bool bounded = forward ? range.isBoundedAbove() : range.isBoundedBelow();
    const double limit = forward ? range.upperBound() : range.lowerBound();
    double lo = datum, hi = datum;
    if (bounded) {
        if (dir * (limit - datum) <= 0.0) return datum;
        if (c.length(datum, limit) <= target) return limit;
        hi = limit;
    } else {
        // Open ends: widen the bracket until it holds the length.
        double step = 1.0;
        hi = datum + dir * step;
        for (int i = 0; i < 200 && c.length(datum, hi) < target; ++i) {
            lo = hi;
            step *= 2.0;
            hi = datum + dir * step;
        }
    }
    // Regula falsi with the Illinois tweak: the length grows steadily with the parameter.
    double flo = c.length(datum, lo) - target, fhi = c.length(datum, hi) - target;
    const double eps = std::max(tol, 0.0) * 1e-3;
    double t = hi;
    int side = 0;
    for (int i = 0; i < 200; ++i) {
        t = (fhi - flo) != 0.0 ? hi - fhi * (hi - lo) / (fhi - flo) : 0.5 * (lo + hi);
        if (!(dir * (t - lo) > 0.0 && dir * (hi - t) > 0.0)) t = 0.5 * (lo + hi);
        const double ft = c.length(datum, t) - target;
        if (std::fabs(ft) <= eps || std::fabs(hi - lo) <= 1e-15 * (1.0 + std::fabs(t))) break;
        if (ft < 0.0) {
            lo = t;
            flo = ft;
            if (side == -1) fhi *= 0.5;
            side = -1;
        } else {
            hi = t;
            fhi = ft;
            if (side == 1) flo *= 0.5;
            side = 1;
        }
    }
    return t;
}

template <class Curve, class PointArray>
void evenSamples(const Curve& c, int numSample, PointArray& out) {
    AcGeInterval range;
    c.getInterval(range);
    if (!range.isBounded() || numSample <= 0) return;
    const double lo = range.lowerBound(), hi = range.upperBound();
    if (numSample == 1) {
        out.append(c.evalPoint(lo));
        return;
    }
    for (int i = 0; i < numSample; ++i)
        out.append(c.evalPoint(i == numSample - 1 ? hi : lo + (hi - lo) * i / (numSample - 1)));
}

template <class Point> double chordGap(const Point& a, const Point& b, const Point& m) {
    const auto d = b - a;
    const double l2 = d.lengthSqrd();
    const double s = l2 > 0.0 ? std::clamp((m - a).dotProduct(d) / l2, 0.0, 1.0) : 0.0;
    return (a + d * s).distanceTo(m);
}

template <class Curve, class Point, class PointArray>
void split(const Curve& c, double ta, const Point& pa, double tb, const Point& pb, double eps,
           int depth, PointArray& pts, AcGeDoubleArray& params) {
    const double tm = 0.5 * (ta + tb);
    const Point pm = c.evalPoint(tm);
    // The quarter points too, so that an S between two samples is not missed.
    const bool far = chordGap(pa, pb, pm) > eps ||
                     chordGap(pa, pb, c.evalPoint(0.5 * (ta + tm))) > eps ||
                     chordGap(pa, pb, c.evalPoint(0.5 * (tm + tb))) > eps;
    // A bound on the count keeps curves with absurd data from taking all the memory.
    constexpr int kMaxPoints = 1 << 14;
    if (!far || depth >= 20 || pts.length() >= kMaxPoints) return;
    split(c, ta, pa, tm, pm, eps, depth + 1, pts, params);
    pts.append(pm);
    params.append(tm);
    split(c, tm, pm, tb, pb, eps, depth + 1, pts, params);
}

template <class Curve, class Point, class PointArray>
void chordSamples(const Curve& c, double from, double to, double eps, PointArray& pts,
                  AcGeDoubleArray& params) {
    if (!std::isfinite(from) || !std::isfinite(to)) return;
    if (from > to) std::swap(from, to);
    AcGeInterval range;
    c.getInterval(range);
    if (range.isBoundedBelow()) from = std::max(from, range.lowerBound());
    if (range.isBoundedAbove()) to = std::min(to, range.upperBound());
    if (from > to) return;
    const double scale = c.length(from, to);
    eps = std::max(eps, 1e-12 * std::max(1.0, std::isfinite(scale) ? scale : 1.0));
    constexpr int kStart = 4;
    Point prev = c.evalPoint(from);
    pts.append(prev);
    params.append(from);
    for (int i = 1; i <= kStart; ++i) {
        const double t = i == kStart ? to : from + (to - from) * i / kStart;
        const Point p = c.evalPoint(t);
        split(c, from + (to - from) * (i - 1) / kStart, prev, t, p, eps, 0, pts, params);
        pts.append(p);
        params.append(t);
        prev = p;
    }
}

} // namespace

double AcGeCurve2d::paramAtLength(double datumParam, double length, bool posParamDir,
                                  double tol) const {
    return paramAtLengthOf(*this, datumParam, length, posParamDir, tol);
}

void AcGeCurve2d::getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const {
    evenSamples(*this, numSample, pointArray);
}

void AcGeCurve2d::getSamplePoints(double fromParam, double toParam, double approxEps,
                                  AcGePoint2dArray& pointArray, AcGeDoubleArray& paramArray) const {
    chordSamples<AcGeCurve2d, AcGePoint2d>(*this, fromParam, toParam, approxEps, pointArray,
                                           paramArray);
}

double AcGeCurve3d::paramAtLength(double datumParam, double length, bool posParamDir,
                                  double tol) const {
    return paramAtLengthOf(*this, datumParam, length, posParamDir, tol);
}

void AcGeCurve3d::getSamplePoints(int numSample, AcGePoint3dArray& pointArray) const {
    evenSamples(*this, numSample, pointArray);
}

void AcGeCurve3d::getSamplePoints(double fromParam, double toParam, double approxEps,
                                  AcGePoint3dArray& pointArray, AcGeDoubleArray& paramArray) const {
    chordSamples<AcGeCurve3d, AcGePoint3d>(*this, fromParam, toParam, approxEps, pointArray,
                                           paramArray);
}
