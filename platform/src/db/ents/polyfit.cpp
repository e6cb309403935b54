// Spline and curve fitting of polyline vertices.
#include "db/ents/polyfit.h"

#include "ge/nurbscore.h"

#include <algorithm>
#include <cmath>

namespace ents_detail {

std::vector<AcGePoint3d> splineFitPoints(const std::vector<AcGePoint3d>& frame, int degree,
                                         bool closed, int segs) {
    const int n = static_cast<int>(frame.size());
    if (n < 2 || segs < 1) return {};
    const int p = std::clamp(degree, 1, n - 1);
    geimpl::Nurbs c;
    c.degree = p;
    c.pts = frame;
    std::vector<AcGePoint3d> out;
    if (closed) {
        // Periodic: the frame wraps round, knots at the integers.
        for (int i = 0; i < p; ++i)
            c.pts.push_back(frame[static_cast<size_t>(i)]);
        for (int i = 0; i <= n + 2 * p; ++i)
            c.knots.push_back(i);
        for (int k = 0; k < n * segs; ++k)
            out.push_back(c.eval(p + static_cast<double>(k) / segs));
        return out;
    }
    c.knots = geimpl::clampedUniformKnots(n, p);
    const int total = (n - p) * segs;
    for (int k = 0; k <= total; ++k)
        out.push_back(c.eval(static_cast<double>(k) / total));
    out.front() = frame.front();
    out.back() = frame.back();
    return out;
}

namespace {

AcGeVector2d unit(const AcGeVector2d& v) {
    const double l = v.length();
    return l > 0.0 ? v / l : AcGeVector2d(0, 0);
}

double signedAngle(const AcGeVector2d& a, const AcGeVector2d& b) {
    return std::atan2(a.x * b.y - a.y * b.x, a.dotProduct(b));
}

// The biarc from p0 (tangent t0) to p1 (tangent t1): its joint and the two bulges; false when
// the two arcs do not exist and the segment stays straight.
bool biarc(const AcGePoint2d& p0, const AcGeVector2d& t0, const AcGePoint2d& p1,
           const AcGeVector2d& t1, AcGePoint2d& joint, double& b1, double& b2) {
    const AcGeVector2d v = p1 - p0;
    const double vv = v.dotProduct(v);
    if (!(vv > 0.0)) return false;
    const AcGeVector2d t = t0 + t1;
    const double vt = v.dotProduct(t), denom = 2.0 * (1.0 - t0.dotProduct(t1));
    double d = 0.0;
    if (std::fabs(denom) < 1e-12) {
        const double vt1 = v.dotProduct(t1);
        if (std::fabs(vt1) < 1e-12) return false;
        d = vv / (4.0 * vt1);
    } else {
        d = (-vt + std::sqrt(std::max(0.0, vt * vt + denom * vv))) / denom;
    }
    if (!(d > 0.0) || !std::isfinite(d)) return false;
    const AcGePoint2d q0 = p0 + t0 * d, q1 = p1 - t1 * d;
    joint.set(0.5 * (q0.x + q1.x), 0.5 * (q0.y + q1.y));
    b1 = std::tan(2.0 * signedAngle(t0, joint - p0) / 4.0);
    b2 = std::tan(2.0 * signedAngle(p1 - joint, t1) / 4.0);
    return std::isfinite(b1) && std::isfinite(b2);
}

} // namespace

std::vector<FitVertex> curveFitVertices(const std::vector<AcGePoint2d>& pts, bool closed) {
    const size_t n = pts.size();
    std::vector<FitVertex> out;
    if (n < 2) {
        for (size_t i = 0; i < n; ++i)
            out.push_back({pts[i], 0.0, false, i});
        return out;
    }
    // Tangents from the neighbours on either side; open ends mirror their neighbour's about
    // the chord.
    std::vector<AcGeVector2d> tan(n);
    for (size_t i = 0; i < n; ++i) {
        const bool inner = closed || (i > 0 && i + 1 < n);
        if (inner) tan[i] = unit(pts[(i + 1) % n] - pts[(i + n - 1) % n]);
    }
    if (!closed) {
        const AcGeVector2d c0 = unit(pts[1] - pts[0]), c1 = unit(pts[n - 1] - pts[n - 2]);
        tan[0] = n > 2 ? unit(c0 * (2.0 * c0.dotProduct(tan[1])) - tan[1]) : c0;
        tan[n - 1] = n > 2 ? unit(c1 * (2.0 * c1.dotProduct(tan[n - 2])) - tan[n - 2]) : c1;
    }
    const size_t segs = closed ? n : n - 1;
    for (size_t i = 0; i < segs; ++i) {
        const size_t j = (i + 1) % n;
        AcGePoint2d joint;
        double b1 = 0.0, b2 = 0.0;
        if (biarc(pts[i], tan[i], pts[j], tan[j], joint, b1, b2)) {
            out.push_back({pts[i], b1, false, i});
            out.push_back({joint, b2, true, i});
        } else {
            out.push_back({pts[i], 0.0, false, i});
        }
    }
    if (!closed) out.push_back({pts[n - 1], 0.0, false, n - 1});
    return out;
}

} // namespace ents_detail
