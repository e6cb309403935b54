// The NURBS arithmetic behind the geometry library's spline curves and the database splines:
// evaluation with derivatives, knot insertion, trimming, joining and interpolation. Points are
// held in 3D (2D curves keep z = 0); weights are empty for a non-rational curve.
#pragma once

#include "gebasic.h"

#include <vector>

namespace geimpl {

struct Nurbs {
    int degree = 1;
    std::vector<double> knots;    // numCtrl() + degree + 1 values, non-decreasing
    std::vector<AcGePoint3d> pts; // control points
    std::vector<double> weights;  // one per control point, or empty

    int numCtrl() const { return static_cast<int>(pts.size()); }
    bool rational() const { return !weights.empty(); }
    double weight(int i) const { return weights.empty() ? 1.0 : weights[static_cast<size_t>(i)]; }
    // Sizes agree, values are finite, knots do not decrease, weights are positive, no interior
    // knot repeats more than degree times and the domain is not empty.
    bool valid() const;
    // The domain: knots[degree] to knots[numCtrl()].
    double lo() const { return knots[static_cast<size_t>(degree)]; }
    double hi() const { return knots[pts.size()]; }
    // The index k of the knot span [knots[k], knots[k+1]) holding u, within the domain.
    int span(double u) const;
    // Point and, when ders is given, derivatives 1..nd (nd at most 3) at u in the domain.
    AcGePoint3d eval(double u, int nd = 0, AcGeVector3d* ders = nullptr) const;
    // Distinct knot values strictly inside the domain.
    std::vector<double> breaks() const;
    // Knots and weights of a curve that are all ones are dropped.
    void dropUnitWeights();

    // Inserts u (inside the domain) `times` times; the curve is unchanged.
    void insertKnot(double u, int times = 1);
    // The piece between a and b (lo <= a < b <= hi) as a clamped curve.
    Nurbs trimmed(double a, double b) const;
    // The curve run the other way over the same domain.
    void reverse();
    // Multiplicity of the knot value u (values within tol count as equal).
    int multiplicity(double u, double tol) const;
    // The knot value within tol of u, or u itself.
    double snap(double u, double tol) const;
    // Adds other after this one (both clamped, same degree, this end at other's start); other's
    // domain is shifted to start where this one ends.
    bool append(const Nurbs& other);
    void transformBy(const AcGeMatrix3d& m);
};

// A clamped uniform knot vector on [0, 1] for n control points of degree p.
std::vector<double> clampedUniformKnots(int n, int p);

// A curve through the points (consecutive repeats ignored) of at most the given degree, by
// chord length; with end tangents when given (their lengths do not matter). A closed list
// (first point equal to the last, no tangents) gets one tangent at the seam, so the curve
// closes smoothly. False when fewer than two distinct points remain or the system is singular.
bool interpolate(const std::vector<AcGePoint3d>& points, int degree, const AcGeVector3d* startTan,
                 const AcGeVector3d* endTan, Nurbs& out);

// The elliptical arc c + M cos t + m sin t for t in [t0, t1], exactly, as a rational quadratic
// curve whose parameter runs over [t0, t1] (though not proportionally to t).
Nurbs ellipseArc(const AcGePoint3d& c, const AcGeVector3d& major, const AcGeVector3d& minor,
                 double t0, double t1);
// A straight segment of the given degree on [0, 1].
Nurbs segment(const AcGePoint3d& a, const AcGePoint3d& b, int degree = 1);

// A periodic curve given as one period of knots (control points + 1) and its control points
// without repeats, widened to the standard form: the knots extended by the period, the first
// degree control points repeated at the end. Other shapes are left as they are.
void unwrapPeriodic(Nurbs& n);

} // namespace geimpl
