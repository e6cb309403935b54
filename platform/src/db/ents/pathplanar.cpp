// Offsets and areas of evaluated planar paths. Offsets of ellipses and splines are not of their
// kind, so they become splines through points at the distance.
#include "db/ents/entsimpl.h"

#include <cmath>

namespace ents_detail {

AcDbCurve* offsetSmooth(const PathGeom& g, const AcGeVector3d& normal, double dist) {
    const AcGeVector3d n = unitNormal(normal);
    const auto& ts = g.sampled().params();
    if (ts.size() < 2 || !std::isfinite(dist)) return nullptr;
    // Every sample and the middle of every chord: enough fit points to follow the curve.
    std::vector<double> params;
    for (size_t k = 0; k < ts.size(); ++k) {
        params.push_back(ts[k]);
        if (k + 1 < ts.size()) params.push_back(0.5 * (ts[k] + ts[k + 1]));
    }
    AcGePoint3dArray fit;
    AcGeVector3d startTan, endTan;
    for (size_t k = 0; k < params.size(); ++k) {
        AcGeVector3d d1, d2;
        const AcGePoint3d p = g.ev->eval(params[k], &d1, &d2);
        const double speed = d1.length();
        if (!(speed > 0.0)) continue;
        // Signed curvature about the normal: the offset folds where it reaches the centre.
        const double kappa = d1.crossProduct(d2).dotProduct(n) / (speed * speed * speed);
        if (1.0 + dist * kappa <= 1e-6) return nullptr;
        const AcGeVector3d side = unitNormal(d1.crossProduct(n));
        fit.append(p + side * dist);
        if (k == 0) startTan = d1;
        endTan = d1;
    }
    if (fit.length() < 2) return nullptr;
    if (g.closed) {
        fit.last() = fit.first();
        return new AcDbSpline(fit, 4, 0.0);
    }
    return new AcDbSpline(fit, startTan, endTan, 4, 0.0);
}

double planarArea(const PathGeom& g, const AcGeVector3d& normal) {
    const Frame f = Frame::ocs(normal, g.ev->eval(g.t0));
    // Half the integral of x dy - y dx round the outline, closed by the chord when open.
    auto integrand = [&](double t) {
        AcGeVector3d d1;
        const AcGePoint2d p = f.toLocal(g.ev->eval(t, &d1));
        return p.x * d1.dotProduct(f.y) - p.y * d1.dotProduct(f.x);
    };
    const auto& ts = g.sampled().params();
    double sum = 0.0;
    for (size_t k = 0; k + 1 < ts.size(); ++k)
        sum += geimpl::integrate(integrand, ts[k], ts[k + 1]);
    if (!g.closed) {
        const AcGePoint2d a = f.toLocal(g.ev->eval(g.t1)), b = f.toLocal(g.ev->eval(g.t0));
        sum += a.x * b.y - b.x * a.y;
    }
    return 0.5 * std::fabs(sum);
}

} // namespace ents_detail
