// The ellipse entity.
//
// Its curve parameter t gives the point center + majorAxis cos(t) + minorAxis sin(t), where the
// minor axis is normal x majorAxis scaled by the radius ratio; the parameter runs from the start
// parameter up to the end parameter (above it by at most a full turn). The start and end
// angles are the polar angles of the end points from the major axis, counter-clockwise about
// the normal: the angle a and the parameter t agree where tan(a) = ratio tan(t).
#pragma once

#include "dbents.h"

class AcDbEllipse : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbEllipse);
    AcDbEllipse() = default;
    AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0.0,
                double endAngle = 6.28318530717958647692);

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& c);
    AcGeVector3d normal() const;
    AcGeVector3d majorAxis() const;
    AcGeVector3d minorAxis() const;
    double majorRadius() const;
    double minorRadius() const;
    double radiusRatio() const;
    // A ratio outside (0, 1] is refused.
    Acad::ErrorStatus setRadiusRatio(double ratio);
    double startAngle() const;
    Acad::ErrorStatus setStartAngle(double angle);
    double endAngle() const;
    Acad::ErrorStatus setEndAngle(double angle);
    Acad::ErrorStatus setStartParam(double param);
    Acad::ErrorStatus setEndParam(double param);
    double paramAtAngle(double angle) const;
    double angleAtParam(double param) const;
    Acad::ErrorStatus get(AcGePoint3d& center, AcGeVector3d& unitNormal, AcGeVector3d& majorAxis,
                          double& radiusRatio, double& startAngle, double& endAngle) const;
    // The major axis must be perpendicular to the normal and not zero, the ratio in (0, 1].
    Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                          const AcGeVector3d& majorAxis, double radiusRatio,
                          double startAngle = 0.0, double endAngle = 6.28318530717958647692);
    // A zero major axis or ratio: no curve.
    bool isNull() const;
    bool isClosed() const override;
    bool isPeriodic() const override { return isClosed(); }

    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    // The region between the arc and its chord; the whole ellipse when closed.
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    // Offsets of an ellipse are not ellipses: a spline through points at the distance,
    // positive to the outside (right of travel).
    Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                      AcDbVoidPtrArray& offsetCurves) const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    void subList() const override;
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* wd) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geomIds) const override;
    // Any affine matrix maps an ellipse onto one; a singular one is refused.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;

private:
    AcGePoint3d mCenter;
    AcGeVector3d mNormal{0, 0, 1};
    AcGeVector3d mMajor{1, 0, 0};
    double mRatio = 1.0, mStartParam = 0.0, mEndParam = 6.28318530717958647692;
    friend struct AcDbEllipseImpl;
};
