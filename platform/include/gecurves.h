// Curves of the geometry library (lines, segments, circular arcs) and the plane; elliptical
// arcs are in geellip.h, NURBS curves and knot vectors in genurbs.h.
//
// Curves are plain values: copy() hands the caller a new object to delete. Parameters:
// lines and segments run along their defining vector (a segment from 0 at its start to 1 at
// its end); arcs are parametrised by angle from their reference vector, in the arc's sense.
#pragma once

#include "acarray.h"
#include "gebasic.h"

using AcGeVoidPointerArray = AcArray<void*>;

namespace AcGe {
enum EntityId {
    kEntity2d,
    kEntity3d,
    kCurve2d,
    kCurve3d,
    kLinearEnt2d,
    kLinearEnt3d,
    kLine2d,
    kLine3d,
    kLineSeg2d,
    kLineSeg3d,
    kCircArc2d,
    kCircArc3d,
    kPlane,
    kEllipArc2d,
    kEllipArc3d,
    kSplineEnt2d,
    kSplineEnt3d,
    kNurbCurve2d,
    kNurbCurve3d,
};
} // namespace AcGe

// A range of parameters, possibly open at either end.
class AcGeInterval {
public:
    // Unbounded on both sides.
    AcGeInterval() = default;
    AcGeInterval(double lower, double upper) { set(lower, upper); }

    // The bounds are put in order, so set(1, 0) is the same as set(0, 1).
    AcGeInterval& set(double lower, double upper);
    // Unbounded on both sides.
    AcGeInterval& set();
    AcGeInterval& setLower(double lower);
    AcGeInterval& setUpper(double upper);

    void getBounds(double& lower, double& upper) const {
        lower = mLower;
        upper = mUpper;
    }
    double lowerBound() const { return mLower; }
    double upperBound() const { return mUpper; }
    bool isBoundedBelow() const { return mBoundedBelow; }
    bool isBoundedAbove() const { return mBoundedAbove; }
    bool isBounded() const { return mBoundedBelow && mBoundedAbove; }
    // Infinite when unbounded on either side.
    double length() const;
    double tolerance() const { return mTol; }
    void setTolerance(double tol) { mTol = tol; }
    // Membership with the interval's tolerance at each bound.
    bool contains(double val) const;

private:
    double mLower = 0.0, mUpper = 0.0;
    bool mBoundedBelow = false, mBoundedAbove = false;
    double mTol = 1e-12;
};

// ---------------------------------------------------------------- roots

class AcGeEntity2d {
public:
    virtual ~AcGeEntity2d() = default;
    virtual AcGe::EntityId type() const = 0;
    virtual bool isKindOf(AcGe::EntityId id) const { return id == AcGe::kEntity2d; }
    virtual AcGeEntity2d* copy() const = 0;
    virtual AcGeEntity2d& transformBy(const AcGeMatrix2d& m) = 0;

protected:
    AcGeEntity2d() = default;
    AcGeEntity2d(const AcGeEntity2d&) = default;
    AcGeEntity2d& operator=(const AcGeEntity2d&) = default;
};

class AcGeEntity3d {
public:
    virtual ~AcGeEntity3d() = default;
    virtual AcGe::EntityId type() const = 0;
    virtual bool isKindOf(AcGe::EntityId id) const { return id == AcGe::kEntity3d; }
    virtual AcGeEntity3d* copy() const = 0;
    virtual AcGeEntity3d& transformBy(const AcGeMatrix3d& m) = 0;

protected:
    AcGeEntity3d() = default;
    AcGeEntity3d(const AcGeEntity3d&) = default;
    AcGeEntity3d& operator=(const AcGeEntity3d&) = default;
};

class AcGeCurve2d : public AcGeEntity2d {
public:
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kCurve2d || AcGeEntity2d::isKindOf(id);
    }
    AcGeCurve2d* copy() const override = 0;

    virtual AcGePoint2d evalPoint(double param) const = 0;
    // The parameter of the curve's point nearest to pt: bounded curves clamp to their ends.
    virtual double paramOf(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const = 0;
    virtual AcGePoint2d closestPointTo(const AcGePoint2d& pt,
                                       const AcGeTol& tol = AcGeContext::gTol) const = 0;
    double distanceTo(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const {
        return closestPointTo(pt, tol).distanceTo(pt);
    }
    virtual bool isOn(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(pt, tol) <= tol.equalPoint();
    }
    virtual void getInterval(AcGeInterval& range) const = 0;
    virtual bool hasStartPoint(AcGePoint2d& pt) const = 0;
    virtual bool hasEndPoint(AcGePoint2d& pt) const = 0;
    // Arc length between two parameters, whatever their order.
    virtual double length(double fromParam, double toParam) const = 0;
    virtual bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const = 0;
    // Runs the curve the other way; the point set is unchanged.
    virtual AcGeCurve2d& reverseParam() = 0;

    // The parameter at arc length `length` from datumParam, forwards or backwards; bounded
    // curves stop at their ends.
    double paramAtLength(double datumParam, double length, bool posParamDir = true,
                         double tol = AcGeContext::gTol.equalPoint()) const;
    // numSample points evenly spaced in parameter over a bounded curve (none otherwise).
    void getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const;
    // Points from fromParam to toParam whose chords stay within approxEps of the curve, with
    // their parameters.
    void getSamplePoints(double fromParam, double toParam, double approxEps,
                         AcGePoint2dArray& pointArray, AcGeDoubleArray& paramArray) const;
};

class AcGeCurve3d : public AcGeEntity3d {
public:
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kCurve3d || AcGeEntity3d::isKindOf(id);
    }
    AcGeCurve3d* copy() const override = 0;

    virtual AcGePoint3d evalPoint(double param) const = 0;
    virtual double paramOf(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const = 0;
    virtual AcGePoint3d closestPointTo(const AcGePoint3d& pt,
                                       const AcGeTol& tol = AcGeContext::gTol) const = 0;
    double distanceTo(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const {
        return closestPointTo(pt, tol).distanceTo(pt);
    }
    virtual bool isOn(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(pt, tol) <= tol.equalPoint();
    }
    virtual void getInterval(AcGeInterval& range) const = 0;
    virtual bool hasStartPoint(AcGePoint3d& pt) const = 0;
    virtual bool hasEndPoint(AcGePoint3d& pt) const = 0;
    virtual double length(double fromParam, double toParam) const = 0;
    virtual bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const = 0;
    virtual AcGeCurve3d& reverseParam() = 0;

    // As for the 2D curves.
    double paramAtLength(double datumParam, double length, bool posParamDir = true,
                         double tol = AcGeContext::gTol.equalPoint()) const;
    void getSamplePoints(int numSample, AcGePoint3dArray& pointArray) const;
    void getSamplePoints(double fromParam, double toParam, double approxEps,
                         AcGePoint3dArray& pointArray, AcGeDoubleArray& paramArray) const;
};

// ---------------------------------------------------------------- 2D lines

class AcGeLine2d;

// A point and a vector; the parameter counts multiples of the vector from the point.
class AcGeLinearEnt2d : public AcGeCurve2d {
public:
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLinearEnt2d || AcGeCurve2d::isKindOf(id);
    }
    AcGeLinearEnt2d* copy() const override = 0;

    AcGePoint2d pointOnLine() const { return mPoint; }
    // Unit vector; zero for a degenerate entity.
    AcGeVector2d direction() const;
    void getLine(AcGeLine2d& line) const;

    bool isParallelTo(const AcGeLinearEnt2d& other, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeLinearEnt2d& other,
                           const AcGeTol& tol = AcGeContext::gTol) const;
    bool isColinearTo(const AcGeLinearEnt2d& other, const AcGeTol& tol = AcGeContext::gTol) const;
    // The single point common to both entities (within their bounds); false when parallel.
    bool intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& pt,
                       const AcGeTol& tol = AcGeContext::gTol) const;

    AcGePoint2d evalPoint(double param) const override { return mPoint + mVec * param; }
    double paramOf(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint2d closestPointTo(const AcGePoint2d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& = AcGeContext::gTol) const override { return false; }
    AcGeLinearEnt2d& transformBy(const AcGeMatrix2d& m) override;

protected:
    AcGeLinearEnt2d() = default;
    AcGeLinearEnt2d(const AcGePoint2d& p, const AcGeVector2d& v) : mPoint(p), mVec(v) {}
    // The parameter range as bounds, infinite where open.
    void bounds(double& lo, double& hi) const;

    AcGePoint2d mPoint;
    AcGeVector2d mVec{1.0, 0.0};
};

// An unbounded line.
class AcGeLine2d : public AcGeLinearEnt2d {
public:
    // The x axis.
    AcGeLine2d() = default;
    AcGeLine2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : AcGeLinearEnt2d(pnt, vec) {}
    AcGeLine2d(const AcGePoint2d& p1, const AcGePoint2d& p2) : AcGeLinearEnt2d(p1, p2 - p1) {}

    static const AcGeLine2d kXAxis, kYAxis;

    AcGeLine2d& set(const AcGePoint2d& pnt, const AcGeVector2d& vec);
    AcGeLine2d& set(const AcGePoint2d& p1, const AcGePoint2d& p2);

    AcGe::EntityId type() const override { return AcGe::kLine2d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLine2d || AcGeLinearEnt2d::isKindOf(id);
    }
    AcGeLine2d* copy() const override { return new AcGeLine2d(*this); }
    void getInterval(AcGeInterval& range) const override { range.set(); }
    bool hasStartPoint(AcGePoint2d&) const override { return false; }
    bool hasEndPoint(AcGePoint2d&) const override { return false; }
    AcGeLine2d& reverseParam() override;
};

// A bounded segment: parameter 0 at the start point, 1 at the end point.
class AcGeLineSeg2d : public AcGeLinearEnt2d {
public:
    // From the origin to (1, 0).
    AcGeLineSeg2d() = default;
    AcGeLineSeg2d(const AcGePoint2d& p1, const AcGePoint2d& p2) : AcGeLinearEnt2d(p1, p2 - p1) {}

    AcGeLineSeg2d& set(const AcGePoint2d& p1, const AcGePoint2d& p2);

    AcGePoint2d startPoint() const { return mPoint; }
    AcGePoint2d endPoint() const { return mPoint + mVec; }
    AcGePoint2d midPoint() const { return mPoint + mVec * 0.5; }
    using AcGeLinearEnt2d::length;
    double length() const { return mVec.length(); }

    AcGe::EntityId type() const override { return AcGe::kLineSeg2d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLineSeg2d || AcGeLinearEnt2d::isKindOf(id);
    }
    AcGeLineSeg2d* copy() const override { return new AcGeLineSeg2d(*this); }
    void getInterval(AcGeInterval& range) const override { range.set(0.0, 1.0); }
    bool hasStartPoint(AcGePoint2d& pt) const override;
    bool hasEndPoint(AcGePoint2d& pt) const override;
    AcGeLineSeg2d& reverseParam() override;
};

// ---------------------------------------------------------------- 3D lines

class AcGeLine3d;
class AcGePlane;

class AcGeLinearEnt3d : public AcGeCurve3d {
public:
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLinearEnt3d || AcGeCurve3d::isKindOf(id);
    }
    AcGeLinearEnt3d* copy() const override = 0;

    AcGePoint3d pointOnLine() const { return mPoint; }
    AcGeVector3d direction() const;
    void getLine(AcGeLine3d& line) const;

    bool isParallelTo(const AcGeLinearEnt3d& other, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeLinearEnt3d& other,
                           const AcGeTol& tol = AcGeContext::gTol) const;
    bool isColinearTo(const AcGeLinearEnt3d& other, const AcGeTol& tol = AcGeContext::gTol) const;
    // The single point common to both entities; false when parallel, skew or out of bounds.
    bool intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& pt,
                       const AcGeTol& tol = AcGeContext::gTol) const;
    bool intersectWith(const AcGePlane& plane, AcGePoint3d& pt,
                       const AcGeTol& tol = AcGeContext::gTol) const;
    // The point of this entity whose image along projDir comes nearest to pt's image: what a
    // viewer looking along projDir would pick.
    AcGePoint3d projClosestPointTo(const AcGePoint3d& pt, const AcGeVector3d& projDir,
                                   const AcGeTol& tol = AcGeContext::gTol) const;

    AcGePoint3d evalPoint(double param) const override { return mPoint + mVec * param; }
    double paramOf(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint3d closestPointTo(const AcGePoint3d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& = AcGeContext::gTol) const override { return false; }
    AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& m) override;

protected:
    AcGeLinearEnt3d() = default;
    AcGeLinearEnt3d(const AcGePoint3d& p, const AcGeVector3d& v) : mPoint(p), mVec(v) {}
    // The parameter range as bounds, infinite where open.
    void bounds(double& lo, double& hi) const;

    AcGePoint3d mPoint;
    AcGeVector3d mVec{1.0, 0.0, 0.0};
};

class AcGeLine3d : public AcGeLinearEnt3d {
public:
    AcGeLine3d() = default;
    AcGeLine3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : AcGeLinearEnt3d(pnt, vec) {}
    AcGeLine3d(const AcGePoint3d& p1, const AcGePoint3d& p2) : AcGeLinearEnt3d(p1, p2 - p1) {}

    static const AcGeLine3d kXAxis, kYAxis, kZAxis;

    AcGeLine3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec);
    AcGeLine3d& set(const AcGePoint3d& p1, const AcGePoint3d& p2);

    AcGe::EntityId type() const override { return AcGe::kLine3d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLine3d || AcGeLinearEnt3d::isKindOf(id);
    }
    AcGeLine3d* copy() const override { return new AcGeLine3d(*this); }
    void getInterval(AcGeInterval& range) const override { range.set(); }
    bool hasStartPoint(AcGePoint3d&) const override { return false; }
    bool hasEndPoint(AcGePoint3d&) const override { return false; }
    AcGeLine3d& reverseParam() override;
};

class AcGeLineSeg3d : public AcGeLinearEnt3d {
public:
    AcGeLineSeg3d() = default;
    AcGeLineSeg3d(const AcGePoint3d& p1, const AcGePoint3d& p2) : AcGeLinearEnt3d(p1, p2 - p1) {}

    AcGeLineSeg3d& set(const AcGePoint3d& p1, const AcGePoint3d& p2);

    AcGePoint3d startPoint() const { return mPoint; }
    AcGePoint3d endPoint() const { return mPoint + mVec; }
    AcGePoint3d midPoint() const { return mPoint + mVec * 0.5; }
    using AcGeLinearEnt3d::length;
    double length() const { return mVec.length(); }

    AcGe::EntityId type() const override { return AcGe::kLineSeg3d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kLineSeg3d || AcGeLinearEnt3d::isKindOf(id);
    }
    AcGeLineSeg3d* copy() const override { return new AcGeLineSeg3d(*this); }
    void getInterval(AcGeInterval& range) const override { range.set(0.0, 1.0); }
    bool hasStartPoint(AcGePoint3d& pt) const override;
    bool hasEndPoint(AcGePoint3d& pt) const override;
    AcGeLineSeg3d& reverseParam() override;
};

// ---------------------------------------------------------------- plane

// An unbounded plane: a point on it and a unit normal. Its own coordinate system takes the
// point as origin and derives the axes from the normal alone, so that every plane with the same
// normal agrees on them.
class AcGePlane : public AcGeEntity3d {
public:
    // The XY plane through the origin.
    AcGePlane() = default;
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal);

    static const AcGePlane kXYPlane, kYZPlane, kZXPlane;

    // A zero normal leaves the plane unchanged.
    AcGePlane& set(const AcGePoint3d& origin, const AcGeVector3d& normal);

    AcGePoint3d pointOnPlane() const { return mOrigin; }
    AcGeVector3d normal() const { return mNormal; }
    // axis1 is (0,1,0) x n when n is within 1/64 of the z axis in x and y, (0,0,1) x n otherwise;
    // axis2 = n x axis1. Both unit.
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1, AcGeVector3d& axis2) const;

    // Positive on the side the normal points to.
    double signedDistanceTo(const AcGePoint3d& pt) const;
    double distanceTo(const AcGePoint3d& pt) const;
    AcGePoint3d closestPointTo(const AcGePoint3d& pt) const;
    bool isOn(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCoplanarTo(const AcGePlane& plane, const AcGeTol& tol = AcGeContext::gTol) const;
    // The point where a line or segment pierces the plane; false when it runs parallel to the
    // plane or, for a segment, stops short of it.
    bool intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& pt,
                       const AcGeTol& tol = AcGeContext::gTol) const;
    // The line two planes share; false when they are parallel.
    bool intersectWith(const AcGePlane& plane, AcGeLine3d& line,
                       const AcGeTol& tol = AcGeContext::gTol) const;

    AcGe::EntityId type() const override { return AcGe::kPlane; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kPlane || AcGeEntity3d::isKindOf(id);
    }
    AcGePlane* copy() const override { return new AcGePlane(*this); }
    AcGePlane& transformBy(const AcGeMatrix3d& m) override;

private:
    AcGePoint3d mOrigin;
    AcGeVector3d mNormal{0.0, 0.0, 1.0};
    AcGeVector3d mAxis1{1.0, 0.0, 0.0}, mAxis2{0.0, 1.0, 0.0};
};

// ---------------------------------------------------------------- arcs

// A circular arc in the plane. Angles are measured from the reference vector in the arc's own
// sense (counter-clockwise, or clockwise for a clockwise arc), and the parameter is that angle.
// The end angle always lies above the start angle, by at most a full turn.
class AcGeCircArc2d : public AcGeCurve2d {
public:
    // The unit circle.
    AcGeCircArc2d() = default;
    AcGeCircArc2d(const AcGePoint2d& center, double radius) { set(center, radius); }
    AcGeCircArc2d(const AcGePoint2d& center, double radius, double startAng, double endAng,
                  const AcGeVector2d& refVec = AcGeVector2d(1, 0), bool isClockWise = false) {
        set(center, radius, startAng, endAng, refVec, isClockWise);
    }
    AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& pnt,
                  const AcGePoint2d& endPoint) {
        set(startPoint, pnt, endPoint);
    }
    AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge,
                  bool bulgeFlag) {
        set(startPoint, endPoint, bulge, bulgeFlag);
    }

    // A full counter-clockwise circle starting on the x axis.
    AcGeCircArc2d& set(const AcGePoint2d& center, double radius);
    // Equal angles make a full circle; otherwise the sweep is reduced to (0, 2*pi].
    AcGeCircArc2d& set(const AcGePoint2d& center, double radius, double startAng, double endAng,
                       const AcGeVector2d& refVec = AcGeVector2d(1, 0), bool isClockWise = false);
    // Through three points, from the first to the last; collinear points leave the arc unchanged.
    AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& pnt,
                       const AcGePoint2d& endPoint);
    // From the start to the end point with the given bulge: the tangent of a quarter of the
    // included angle, positive for counter-clockwise travel. Both values of bulgeFlag read the
    // value as a bulge. A zero bulge or coincident points leave the arc unchanged: no circle
    // passes through them.
    AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge,
                       bool bulgeFlag);

    AcGeCircArc2d& setCenter(const AcGePoint2d& center);
    AcGeCircArc2d& setRadius(double radius);
    AcGeCircArc2d& setAngles(double startAng, double endAng);
    AcGeCircArc2d& setRefVec(const AcGeVector2d& vec);

    AcGePoint2d center() const { return mCenter; }
    double radius() const { return mRadius; }
    double startAng() const { return mStart; }
    double endAng() const { return mEnd; }
    bool isClockWise() const { return mClockWise; }
    AcGeVector2d refVec() const { return mRef; }
    AcGePoint2d startPoint() const { return evalPoint(mStart); }
    AcGePoint2d endPoint() const { return evalPoint(mEnd); }
    using AcGeCurve2d::length;
    double length() const { return mRadius * (mEnd - mStart); }

    // Points common to the bounded arc and the line or segment; a tangent line gives one.
    bool intersectWith(const AcGeLinearEnt2d& line, int& numInt, AcGePoint2d& p1, AcGePoint2d& p2,
                       const AcGeTol& tol = AcGeContext::gTol) const;
    // Points common to both bounded arcs; arcs on the same circle report none.
    bool intersectWith(const AcGeCircArc2d& arc, int& numInt, AcGePoint2d& p1, AcGePoint2d& p2,
                       const AcGeTol& tol = AcGeContext::gTol) const;

    AcGe::EntityId type() const override { return AcGe::kCircArc2d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kCircArc2d || AcGeCurve2d::isKindOf(id);
    }
    AcGeCircArc2d* copy() const override { return new AcGeCircArc2d(*this); }
    // A similarity maps the arc exactly (a mirror flips its sense); any other matrix gives the
    // arc through the images of its start, middle and end points.
    AcGeCircArc2d& transformBy(const AcGeMatrix2d& m) override;
    AcGePoint2d evalPoint(double param) const override;
    // The angle of pt for points over the arc; otherwise the nearer end angle.
    double paramOf(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    // Outside the span the nearer end point.
    AcGePoint2d closestPointTo(const AcGePoint2d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override { range.set(mStart, mEnd); }
    bool hasStartPoint(AcGePoint2d& pt) const override;
    bool hasEndPoint(AcGePoint2d& pt) const override;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGeCircArc2d& reverseParam() override;

private:
    // The angle of a direction from the reference vector in the arc's sense, in [0, 2*pi).
    double angleOf(const AcGeVector2d& v) const;

    AcGePoint2d mCenter;
    double mRadius = 1.0;
    AcGeVector2d mRef{1.0, 0.0};
    double mStart = 0.0, mEnd = 6.28318530717958647692;
    bool mClockWise = false;
};

// A circular arc in space: counter-clockwise about its normal, angles from the reference vector.
class AcGeCircArc3d : public AcGeCurve3d {
public:
    // The unit circle in the XY plane.
    AcGeCircArc3d() = default;
    AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
        set(center, normal, radius);
    }
    AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec,
                  double radius, double startAng, double endAng) {
        set(center, normal, refVec, radius, startAng, endAng);
    }
    AcGeCircArc3d(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3) {
        set(p1, p2, p3);
    }

    // A full circle whose reference vector is the first axis of the plane with that normal.
    AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);
    // refVec is made perpendicular to the normal and unit; one parallel to the normal is replaced
    // by the plane's first axis. Angles as for the 2D arc.
    AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal,
                       const AcGeVector3d& refVec, double radius, double startAng, double endAng);
    // Through three points, from p1 to p3; the normal makes the travel counter-clockwise.
    // Collinear points leave the arc unchanged.
    AcGeCircArc3d& set(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3);

    AcGeCircArc3d& setCenter(const AcGePoint3d& center);
    AcGeCircArc3d& setRadius(double radius);
    AcGeCircArc3d& setAngles(double startAng, double endAng);
    AcGeCircArc3d& setAxes(const AcGeVector3d& normal, const AcGeVector3d& refVec);

    AcGePoint3d center() const { return mCenter; }
    AcGeVector3d normal() const { return mNormal; }
    AcGeVector3d refVec() const { return mRef; }
    double radius() const { return mRadius; }
    double startAng() const { return mStart; }
    double endAng() const { return mEnd; }
    AcGePoint3d startPoint() const { return evalPoint(mStart); }
    AcGePoint3d endPoint() const { return evalPoint(mEnd); }
    using AcGeCurve3d::length;
    double length() const { return mRadius * (mEnd - mStart); }
    void getPlane(AcGePlane& plane) const { plane.set(mCenter, mNormal); }

    // Points common to the bounded arc and a line or segment: in the arc's plane the circle's
    // crossings, otherwise the point where the line pierces the plane if it is on the arc.
    bool intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1, AcGePoint3d& p2,
                       const AcGeTol& tol = AcGeContext::gTol) const;

    AcGe::EntityId type() const override { return AcGe::kCircArc3d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kCircArc3d || AcGeCurve3d::isKindOf(id);
    }
    AcGeCircArc3d* copy() const override { return new AcGeCircArc3d(*this); }
    // Rotations, translations, uniform scaling and mirrors map the arc exactly, keeping its
    // angles (a mirror turns the normal over); any other matrix gives the arc through the images
    // of its start, middle and end points.
    AcGeCircArc3d& transformBy(const AcGeMatrix3d& m) override;
    AcGePoint3d evalPoint(double param) const override;
    double paramOf(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint3d closestPointTo(const AcGePoint3d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override { range.set(mStart, mEnd); }
    bool hasStartPoint(AcGePoint3d& pt) const override;
    bool hasEndPoint(AcGePoint3d& pt) const override;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGeCircArc3d& reverseParam() override;

private:
    // The angle of a vector's projection from the reference vector about the normal, in
    // [0, 2*pi); false when the projection is too short to have a direction.
    bool angleOf(const AcGeVector3d& v, double& ang) const;
    AcGeVector3d perpRef() const { return mNormal.crossProduct(mRef); }

    AcGePoint3d mCenter;
    AcGeVector3d mNormal{0.0, 0.0, 1.0};
    AcGeVector3d mRef{1.0, 0.0, 0.0};
    double mRadius = 1.0;
    double mStart = 0.0, mEnd = 6.28318530717958647692;
};
