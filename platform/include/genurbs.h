// Knot vectors and NURBS curves of the geometry library.
//
// A NURBS curve of degree p has n control points (with weights when rational) and n + p + 1
// knots; its parameter runs from knot p to knot n. A curve built from fit points passes through
// them and remembers them. Periodic curves are given either with n + p + 1 knots and their first
// p control points repeated at the end, or with n + 1 knots (one period) and no repeats.
#pragma once

#include "geellip.h"

#include <memory>

class AcGeKnotVector {
public:
    explicit AcGeKnotVector(double tol = 1e-9) : mTol(tol) {}
    AcGeKnotVector(int size, const double knots[], double tol = 1e-9);
    explicit AcGeKnotVector(const AcGeDoubleArray& knots, double tol = 1e-9);

    double operator[](int i) const { return mKnots[i]; }
    double& operator[](int i) { return mKnots[i]; }
    bool isEqualTo(const AcGeKnotVector& other) const;
    double startParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.first(); }
    double endParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.last(); }
    // How often the knot at index i (or the value param) occurs, within the tolerance.
    int multiplicityAt(int i) const;
    int multiplicityAt(double param) const;
    // Distinct knot values less one.
    int numIntervals() const;
    int length() const { return mKnots.length(); }
    int logicalLength() const { return mKnots.length(); }
    bool isEmpty() const { return mKnots.isEmpty(); }
    double tolerance() const { return mTol; }
    AcGeKnotVector& setTolerance(double tol);
    bool contains(double param) const;
    // Whether param is one of the knots.
    bool isOn(double knot) const;
    // The index of the last knot not above param (-1 before the first).
    int getIndex(double param) const;
    void getDistinctKnots(AcGeDoubleArray& knots) const;
    const double* getPtr() const { return mKnots.asArrayPtr(); }
    const double* asArrayPtr() const { return mKnots.asArrayPtr(); }
    const AcGeDoubleArray& asArray() const { return mKnots; }

    AcGeKnotVector& set(int size, const double knots[], double tol = 1e-9);
    AcGeKnotVector& setLogicalLength(int n);
    AcGeKnotVector& append(double knot);
    // Inserts the value `multiplicity` times before index i.
    AcGeKnotVector& insertAt(int i, double knot, int multiplicity = 1);
    AcGeKnotVector& removeAt(int i);
    AcGeKnotVector& removeSubVector(int startIndex, int endIndex);
    AcGeKnotVector& reverse();
    // Scales and shifts the knots onto [lower, upper].
    AcGeKnotVector& setRange(double lower, double upper);

private:
    AcGeDoubleArray mKnots;
    double mTol;
};

namespace geimpl {
struct Nurbs;
}

class AcGeNurbCurve3d : public AcGeCurve3d {
public:
    // An empty curve: not valid until set.
    AcGeNurbCurve3d();
    AcGeNurbCurve3d(const AcGeNurbCurve3d& src);
    AcGeNurbCurve3d& operator=(const AcGeNurbCurve3d& src);
    ~AcGeNurbCurve3d() override;
    AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& cntrlPnts,
                    bool isPeriodic = false);
    AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& cntrlPnts,
                    const AcGeDoubleArray& weights, bool isPeriodic = false);
    // Through the fit points, cubic, with the end tangents where defined.
    AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                    const AcGeVector3d& endTangent, bool startTangentDefined = true,
                    bool endTangentDefined = true, const AcGeTol& fitTolerance = AcGeContext::gTol);
    explicit AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints,
                             const AcGeTol& fitTolerance = AcGeContext::gTol);
    // The same point set exactly (rational quadratic); its parameter is not the angle.
    explicit AcGeNurbCurve3d(const AcGeEllipArc3d& ellipse, int numSpans = 0);
    explicit AcGeNurbCurve3d(const AcGeLineSeg3d& lineSeg);

    // Whether the definition makes a curve (see the header note on sizes).
    bool isValid() const;
    int degree() const;
    int order() const { return degree() + 1; }
    int numKnots() const;
    AcGeKnotVector knots() const;
    double knotAt(int i) const;
    AcGeNurbCurve3d& setKnotAt(int i, double val);
    int numControlPoints() const;
    AcGePoint3d controlPointAt(int i) const;
    AcGeNurbCurve3d& setControlPointAt(int i, const AcGePoint3d& pt);
    // 1 for a non-rational curve.
    double weightAt(int i) const;
    AcGeNurbCurve3d& setWeightAt(int i, double weight);
    bool isRational() const;
    bool isPeriodic(double& period) const;
    AcGePoint3d startPoint() const;
    AcGePoint3d endPoint() const;
    void getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeKnotVector& knots,
                           AcGePoint3dArray& controlPoints, AcGeDoubleArray& weights) const;
    AcGeNurbCurve3d& set(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& cntrlPnts,
                         const AcGeDoubleArray& weights, bool isPeriodic = false);

    int numFitPoints() const;
    bool getFitPointAt(int index, AcGePoint3d& point) const;
    bool getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
    bool getFitData(AcGePoint3dArray& fitPoints, AcGeTol& fitTolerance, bool& tangentsExist,
                    AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
    void purgeFitData();

    AcGeNurbCurve3d& insertKnot(double newKnot);
    // The curve from one parameter to the other only.
    AcGeNurbCurve3d& hardTrimByParams(double newStartParam, double newEndParam);
    // Adds a straight segment from the end back to the start when they differ.
    AcGeNurbCurve3d& makeClosed();
    // Adds curve after this one when it starts where this one ends (a gap is bridged by a
    // straight segment); degrees must agree.
    AcGeNurbCurve3d& joinWith(const AcGeNurbCurve3d& curve);
    AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const;

    AcGe::EntityId type() const override { return AcGe::kNurbCurve3d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kNurbCurve3d || id == AcGe::kSplineEnt3d || AcGeCurve3d::isKindOf(id);
    }
    AcGeNurbCurve3d* copy() const override { return new AcGeNurbCurve3d(*this); }
    AcGeNurbCurve3d& transformBy(const AcGeMatrix3d& m) override;
    AcGePoint3d evalPoint(double param) const override;
    double paramOf(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint3d closestPointTo(const AcGePoint3d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override;
    bool hasStartPoint(AcGePoint3d& pt) const override;
    bool hasEndPoint(AcGePoint3d& pt) const override;
    using AcGeCurve3d::length;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGeNurbCurve3d& reverseParam() override;

    // The definition, for the platform's own code.
    const geimpl::Nurbs& nurbs() const { return *mN; }
    void setNurbs(const geimpl::Nurbs& n, bool periodic = false);

private:
    void setFit(const AcGePoint3dArray& fitPoints, const AcGeVector3d* startTan,
                const AcGeVector3d* endTan, double tol);

    std::unique_ptr<geimpl::Nurbs> mN;
    // Whether mN makes a curve: -1 until asked after a change (checking is linear in its size).
    mutable signed char mValid = -1;
    bool mPeriodic = false;
    AcGePoint3dArray mFit;
    AcGeVector3d mStartTan, mEndTan;
    bool mTangents = false;
    double mFitTol = 0.0;
};

// The same in the plane.
class AcGeNurbCurve2d : public AcGeCurve2d {
public:
    AcGeNurbCurve2d() = default;
    AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots, const AcGePoint2dArray& cntrlPnts,
                    bool isPeriodic = false);
    AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots, const AcGePoint2dArray& cntrlPnts,
                    const AcGeDoubleArray& weights, bool isPeriodic = false);
    AcGeNurbCurve2d(const AcGePoint2dArray& fitPoints, const AcGeVector2d& startTangent,
                    const AcGeVector2d& endTangent, bool startTangentDefined = true,
                    bool endTangentDefined = true, const AcGeTol& fitTolerance = AcGeContext::gTol);
    explicit AcGeNurbCurve2d(const AcGePoint2dArray& fitPoints,
                             const AcGeTol& fitTolerance = AcGeContext::gTol);
    explicit AcGeNurbCurve2d(const AcGeEllipArc2d& ellipse);
    explicit AcGeNurbCurve2d(const AcGeLineSeg2d& lineSeg);

    bool isValid() const { return m3.isValid(); }
    int degree() const { return m3.degree(); }
    int order() const { return m3.order(); }
    int numKnots() const { return m3.numKnots(); }
    AcGeKnotVector knots() const { return m3.knots(); }
    double knotAt(int i) const { return m3.knotAt(i); }
    AcGeNurbCurve2d& setKnotAt(int i, double val);
    int numControlPoints() const { return m3.numControlPoints(); }
    AcGePoint2d controlPointAt(int i) const { return m3.controlPointAt(i).convert2d(); }
    AcGeNurbCurve2d& setControlPointAt(int i, const AcGePoint2d& pt);
    double weightAt(int i) const { return m3.weightAt(i); }
    AcGeNurbCurve2d& setWeightAt(int i, double weight);
    bool isRational() const { return m3.isRational(); }
    bool isPeriodic(double& period) const { return m3.isPeriodic(period); }
    AcGePoint2d startPoint() const { return m3.startPoint().convert2d(); }
    AcGePoint2d endPoint() const { return m3.endPoint().convert2d(); }
    void getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeKnotVector& knots,
                           AcGePoint2dArray& controlPoints, AcGeDoubleArray& weights) const;
    AcGeNurbCurve2d& set(int degree, const AcGeKnotVector& knots, const AcGePoint2dArray& cntrlPnts,
                         const AcGeDoubleArray& weights, bool isPeriodic = false);
    int numFitPoints() const { return m3.numFitPoints(); }
    bool getFitPointAt(int index, AcGePoint2d& point) const;
    bool getFitData(AcGePoint2dArray& fitPoints, AcGeTol& fitTolerance, bool& tangentsExist,
                    AcGeVector2d& startTangent, AcGeVector2d& endTangent) const;
    void purgeFitData() { m3.purgeFitData(); }
    AcGeNurbCurve2d& insertKnot(double newKnot);
    AcGeNurbCurve2d& hardTrimByParams(double newStartParam, double newEndParam);
    AcGeNurbCurve2d& makeClosed();
    AcGeNurbCurve2d& joinWith(const AcGeNurbCurve2d& curve);
    AcGePoint2d evalPoint(double param, int numDeriv, AcGeVector2dArray& derivArray) const;
    // The same curve in the XY plane of space.
    const AcGeNurbCurve3d& asNurbCurve3d() const { return m3; }

    AcGe::EntityId type() const override { return AcGe::kNurbCurve2d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kNurbCurve2d || id == AcGe::kSplineEnt2d || AcGeCurve2d::isKindOf(id);
    }
    AcGeNurbCurve2d* copy() const override { return new AcGeNurbCurve2d(*this); }
    AcGeNurbCurve2d& transformBy(const AcGeMatrix2d& m) override;
    AcGePoint2d evalPoint(double param) const override { return m3.evalPoint(param).convert2d(); }
    double paramOf(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint2d closestPointTo(const AcGePoint2d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override { m3.getInterval(range); }
    bool hasStartPoint(AcGePoint2d& pt) const override;
    bool hasEndPoint(AcGePoint2d& pt) const override;
    using AcGeCurve2d::length;
    double length(double fromParam, double toParam) const override {
        return m3.length(fromParam, toParam);
    }
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override {
        return m3.isClosed(tol);
    }
    AcGeNurbCurve2d& reverseParam() override;

private:
    AcGeNurbCurve3d m3;
};
