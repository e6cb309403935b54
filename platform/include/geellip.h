// Elliptical arcs of the geometry library.
//
// An elliptical arc is centre + majorRadius cos(t) majorAxis + minorRadius sin(t) minorAxis
// for t from its start angle to its end angle: the "angles" are that parameter, not the polar
// angle of the point. The axes are unit and perpendicular; the end angle lies above the start
// angle by at most a full turn.
#pragma once

#include "gecurves.h"

class AcGeEllipArc3d : public AcGeCurve3d {
public:
    // The unit circle in the XY plane.
    AcGeEllipArc3d() = default;
    explicit AcGeEllipArc3d(const AcGeCircArc3d& arc);
    AcGeEllipArc3d(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                   const AcGeVector3d& minorAxis, double majorRadius, double minorRadius) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius);
    }
    AcGeEllipArc3d(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                   const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                   double startAngle, double endAngle) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
    }

    // A full ellipse.
    AcGeEllipArc3d& set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                        const AcGeVector3d& minorAxis, double majorRadius, double minorRadius);
    // The axes are made unit; a minor axis not perpendicular to the major one is replaced by
    // the perpendicular in their plane. Equal angles make a full ellipse.
    AcGeEllipArc3d& set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                        const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                        double startAngle, double endAngle);
    AcGeEllipArc3d& set(const AcGeCircArc3d& arc);

    AcGeEllipArc3d& setCenter(const AcGePoint3d& center);
    AcGeEllipArc3d& setMajorRadius(double r);
    AcGeEllipArc3d& setMinorRadius(double r);
    AcGeEllipArc3d& setAxes(const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis);
    AcGeEllipArc3d& setAngles(double startAngle, double endAngle);

    AcGePoint3d center() const { return mCenter; }
    double majorRadius() const { return mA; }
    double minorRadius() const { return mB; }
    AcGeVector3d majorAxis() const { return mX; }
    AcGeVector3d minorAxis() const { return mY; }
    AcGeVector3d normal() const { return mX.crossProduct(mY); }
    double startAng() const { return mStart; }
    double endAng() const { return mEnd; }
    AcGePoint3d startPoint() const { return evalPoint(mStart); }
    AcGePoint3d endPoint() const { return evalPoint(mEnd); }
    void getPlane(AcGePlane& plane) const { plane.set(mCenter, normal()); }
    bool isCircular(const AcGeTol& tol = AcGeContext::gTol) const;
    // Whether pt lies in the plane inside the full ellipse (or on it).
    bool isInside(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const;
    // Points common to the bounded arc and a line or segment.
    bool intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1, AcGePoint3d& p2,
                       const AcGeTol& tol = AcGeContext::gTol) const;

    using AcGeCurve3d::length;
    double length() const { return length(mStart, mEnd); }
    // The point and its first numDeriv (at most 3) derivatives.
    AcGePoint3d evalPoint(double param, int numDeriv, AcGeVector3dArray& derivArray) const;

    AcGe::EntityId type() const override { return AcGe::kEllipArc3d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kEllipArc3d || AcGeCurve3d::isKindOf(id);
    }
    AcGeEllipArc3d* copy() const override { return new AcGeEllipArc3d(*this); }
    // Any affine matrix maps an ellipse onto an ellipse; a degenerate one leaves it unchanged.
    AcGeEllipArc3d& transformBy(const AcGeMatrix3d& m) override;
    AcGePoint3d evalPoint(double param) const override;
    double paramOf(const AcGePoint3d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint3d closestPointTo(const AcGePoint3d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override { range.set(mStart, mEnd); }
    bool hasStartPoint(AcGePoint3d& pt) const override;
    bool hasEndPoint(AcGePoint3d& pt) const override;
    double length(double fromParam, double toParam) const override;
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGeEllipArc3d& reverseParam() override;

private:
    AcGePoint3d mCenter;
    AcGeVector3d mX{1.0, 0.0, 0.0}, mY{0.0, 1.0, 0.0};
    double mA = 1.0, mB = 1.0;
    double mStart = 0.0, mEnd = 6.28318530717958647692;
};

// An elliptical arc in the plane: counter-clockwise when the minor axis is the major axis
// turned a quarter counter-clockwise, clockwise otherwise.
class AcGeEllipArc2d : public AcGeCurve2d {
public:
    AcGeEllipArc2d() = default;
    explicit AcGeEllipArc2d(const AcGeCircArc2d& arc);
    AcGeEllipArc2d(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                   const AcGeVector2d& minorAxis, double majorRadius, double minorRadius) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius);
    }
    AcGeEllipArc2d(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                   const AcGeVector2d& minorAxis, double majorRadius, double minorRadius,
                   double startAngle, double endAngle) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
    }

    AcGeEllipArc2d& set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                        const AcGeVector2d& minorAxis, double majorRadius, double minorRadius);
    // The minor axis keeps only its side of the major axis (which sets the sense).
    AcGeEllipArc2d& set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                        const AcGeVector2d& minorAxis, double majorRadius, double minorRadius,
                        double startAngle, double endAngle);
    AcGeEllipArc2d& set(const AcGeCircArc2d& arc);
    AcGeEllipArc2d& setCenter(const AcGePoint2d& center);
    AcGeEllipArc2d& setMajorRadius(double r);
    AcGeEllipArc2d& setMinorRadius(double r);
    AcGeEllipArc2d& setAxes(const AcGeVector2d& majorAxis, const AcGeVector2d& minorAxis);
    AcGeEllipArc2d& setAngles(double startAngle, double endAngle);

    AcGePoint2d center() const;
    double majorRadius() const { return m3.majorRadius(); }
    double minorRadius() const { return m3.minorRadius(); }
    AcGeVector2d majorAxis() const { return m3.majorAxis().convert2d(); }
    AcGeVector2d minorAxis() const { return m3.minorAxis().convert2d(); }
    double startAng() const { return m3.startAng(); }
    double endAng() const { return m3.endAng(); }
    bool isClockWise() const { return m3.normal().z < 0.0; }
    AcGePoint2d startPoint() const { return evalPoint(startAng()); }
    AcGePoint2d endPoint() const { return evalPoint(endAng()); }
    bool isCircular(const AcGeTol& tol = AcGeContext::gTol) const { return m3.isCircular(tol); }
    bool isInside(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const;
    bool intersectWith(const AcGeLinearEnt2d& line, int& numInt, AcGePoint2d& p1, AcGePoint2d& p2,
                       const AcGeTol& tol = AcGeContext::gTol) const;
    // The same arc in the XY plane of space.
    const AcGeEllipArc3d& asEllipArc3d() const { return m3; }

    using AcGeCurve2d::length;
    double length() const { return m3.length(); }
    AcGePoint2d evalPoint(double param, int numDeriv, AcGeVector2dArray& derivArray) const;

    AcGe::EntityId type() const override { return AcGe::kEllipArc2d; }
    bool isKindOf(AcGe::EntityId id) const override {
        return id == AcGe::kEllipArc2d || AcGeCurve2d::isKindOf(id);
    }
    AcGeEllipArc2d* copy() const override { return new AcGeEllipArc2d(*this); }
    AcGeEllipArc2d& transformBy(const AcGeMatrix2d& m) override;
    AcGePoint2d evalPoint(double param) const override;
    double paramOf(const AcGePoint2d& pt, const AcGeTol& tol = AcGeContext::gTol) const override;
    AcGePoint2d closestPointTo(const AcGePoint2d& pt,
                               const AcGeTol& tol = AcGeContext::gTol) const override;
    void getInterval(AcGeInterval& range) const override { m3.getInterval(range); }
    bool hasStartPoint(AcGePoint2d& pt) const override;
    bool hasEndPoint(AcGePoint2d& pt) const override;
    double length(double fromParam, double toParam) const override {
        return m3.length(fromParam, toParam);
    }
    bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const override {
        return m3.isClosed(tol);
    }
    AcGeEllipArc2d& reverseParam() override;

private:
    AcGeEllipArc3d m3;
};
