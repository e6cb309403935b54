// Numerical work on parametric curves that have no closed forms (ellipses, NURBS, and anything
// mixed with them): sampling into chords that stay close to the curve, arc length and its
// inverse, nearest points, extents and intersections refined on the exact curves.
#pragma once

#include "gebasic.h"

#include <functional>
#include <utility>
#include <vector>

namespace geimpl {

// A parametric curve in space: the point and, when asked, the first two derivatives at t.
class CurveEval {
public:
    virtual ~CurveEval() = default;
    virtual AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                             AcGeVector3d* d2 = nullptr) const = 0;
};

// Arc length of ev between a and b (a <= b), smooth and gently turning between them, by
// Gauss-Legendre quadrature on `parts` equal pieces.
double arcLength(const CurveEval& ev, double a, double b, int parts = 4);

// The integral of f over [a, b] by ten-point Gauss-Legendre quadrature (f smooth there).
double integrate(const std::function<double(double)>& f, double a, double b);

// A curve between two parameters, sampled so that the chords between samples stay within
// deviation() of it and turn little, with the arc length at every sample.
class SampledCurve {
public:
    SampledCurve() = default;
    // breaks: parameters inside (t0, t1) where the curve may turn sharply (knots, vertices);
    // they become samples. With straightPieces the curve is straight between breaks.
    SampledCurve(const CurveEval& ev, double t0, double t1, const std::vector<double>& breaks = {},
                 bool straightPieces = false);

    const CurveEval& eval() const { return *mEv; }
    double t0() const { return mT.front(); }
    double t1() const { return mT.back(); }
    const std::vector<double>& params() const { return mT; }
    const std::vector<AcGePoint3d>& points() const { return mP; }
    AcGePoint3d at(double t) const { return mEv->eval(t); }
    // A bound on the distance between the chords and the curve.
    double deviation() const { return mDev; }
    bool straight() const { return mStraight; }
    // Diagonal of the samples' box.
    double size() const { return mSize; }

    double length() const { return mLen.back(); }
    // Arc length from t0 to t (clamped into the range).
    double lengthAt(double t) const;
    // The parameter at arc length s from t0 (clamped into the range).
    double paramAtLength(double s) const;
    // The parameter of the nearest point to q.
    double closestParam(const AcGePoint3d& q) const;
    // The box of the curve.
    void extents(AcGePoint3d& lo, AcGePoint3d& hi) const;

private:
    size_t intervalOf(double t) const;
    void refine(double ta, const AcGePoint3d& pa, double tb, const AcGePoint3d& pb, double tol,
                int depth);

    const CurveEval* mEv = nullptr;
    std::vector<double> mT;
    std::vector<AcGePoint3d> mP;
    std::vector<double> mLen;
    double mDev = 0.0, mSize = 0.0;
    bool mStraight = false;
};

// Where two sampled curves meet within tol: pairs of parameters (on a, on b), each refined on
// the exact curves. Repeats are possible; the caller merges them.
void intersectSampled(const SampledCurve& a, const SampledCurve& b, double tol,
                      std::vector<std::pair<double, double>>& out);

} // namespace geimpl
