// Evaluators of the curves the numerical code works on: straight runs through points,
// ellipses (circles among them) and NURBS curves.
#pragma once

#include "ge/curvenum.h"
#include "ge/nurbscore.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace geimpl {

// Straight segments through the points; parameter i at point i (the last segment back to the
// first point when closed).
class PolylineEval : public CurveEval {
public:
    PolylineEval(std::vector<AcGePoint3d> pts, bool closed) : mPts(std::move(pts)) {
        if (closed && !mPts.empty()) mPts.push_back(mPts.front());
    }
    double endParam() const { return mPts.empty() ? 0.0 : static_cast<double>(mPts.size() - 1); }
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        if (d2) *d2 = AcGeVector3d();
        if (mPts.size() < 2) {
            if (d1) *d1 = AcGeVector3d();
            return mPts.empty() ? AcGePoint3d() : mPts[0];
        }
        const double last = static_cast<double>(mPts.size() - 2);
        // Past the ends the end segments go straight on.
        const double i = std::clamp(std::floor(t), 0.0, last);
        const size_t k = static_cast<size_t>(i);
        const AcGeVector3d d = mPts[k + 1] - mPts[k];
        if (d1) *d1 = d;
        const double u = t - i;
        if (u == 0.0) return mPts[k];
        if (u == 1.0) return mPts[k + 1];
        return mPts[k] + d * u;
    }

private:
    std::vector<AcGePoint3d> mPts;
};

// center + M cos t + m sin t: any ellipse by conjugate semi-diameters.
class EllipseEval : public CurveEval {
public:
    EllipseEval(const AcGePoint3d& c, const AcGeVector3d& major, const AcGeVector3d& minor)
        : mC(c), mM(major), mm(minor) {}
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        const double ct = std::cos(t), st = std::sin(t);
        if (d1) *d1 = mm * ct - mM * st;
        if (d2) *d2 = -(mM * ct + mm * st);
        return mC + mM * ct + mm * st;
    }

private:
    AcGePoint3d mC;
    AcGeVector3d mM, mm;
};

class NurbsEval : public CurveEval {
public:
    explicit NurbsEval(Nurbs n) : mN(std::move(n)) {}
    const Nurbs& nurbs() const { return mN; }
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        AcGeVector3d d[2];
        const AcGePoint3d p = mN.eval(t, d2 ? 2 : (d1 ? 1 : 0), d);
        if (d1) *d1 = d[0];
        if (d2) *d2 = d[1];
        return p;
    }

private:
    Nurbs mN;
};

// A curve seen along a direction: each point dropped onto the plane through origin normal to it.
class ProjectedEval : public CurveEval {
public:
    ProjectedEval(const CurveEval& base, const AcGePoint3d& origin, const AcGeVector3d& unitDir)
        : mBase(base), mO(origin), mN(unitDir) {}
    AcGePoint3d eval(double t, AcGeVector3d* d1 = nullptr,
                     AcGeVector3d* d2 = nullptr) const override {
        const AcGePoint3d p = mBase.eval(t, d1, d2);
        if (d1) *d1 -= mN * d1->dotProduct(mN);
        if (d2) *d2 -= mN * d2->dotProduct(mN);
        return p - mN * (p - mO).dotProduct(mN);
    }

private:
    const CurveEval& mBase;
    AcGePoint3d mO;
    AcGeVector3d mN;
};

} // namespace geimpl
