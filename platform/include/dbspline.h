// The spline entity: a NURBS curve in space, either given by its control data or built through
// fit points (with optional end tangents). Fit data, while present, defines the curve: changing
// it rebuilds the control data; setting control data drops the fit data.
//
// Fit points are interpolated exactly (the fit tolerance is kept but not used to approximate);
// a fit list whose first and last points coincide makes a smoothly closed curve. The curve
// parameter is the NURBS parameter; fit curves run from 0 to 1.
#pragma once

#include "dbents.h"

namespace geimpl {
struct Nurbs;
}

class AcDbSpline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbSpline);
    AcDbSpline();
    ~AcDbSpline() override;
    AcDbSpline(const AcDbSpline& other);
    AcDbSpline& operator=(const AcDbSpline& other);
    // order is the degree plus one.
    AcDbSpline(const AcGePoint3dArray& fitPoints, int order = 4, double fitTolerance = 0.0);
    AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
               const AcGeVector3d& endTangent, int order = 4, double fitTolerance = 0.0);
    AcDbSpline(int degree, bool rational, bool closed, bool periodic,
               const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
               const AcGeDoubleArray& weights, double controlPtTol = 0.0, double knotTol = 0.0);

    // No curve: too few points or inconsistent control data.
    bool isNull() const;
    bool isRational() const;
    int degree() const;
    bool isClosed() const override;
    bool isPeriodic() const override;
    bool isPlanar() const;

    // Control data. Periodic data may be given with one period of knots (control points + 1)
    // or with the first degree control points repeated at the end.
    Acad::ErrorStatus getNurbsData(int& degree, Adesk::Boolean& rational, Adesk::Boolean& closed,
                                   Adesk::Boolean& periodic, AcGePoint3dArray& controlPoints,
                                   AcGeDoubleArray& knots, AcGeDoubleArray& weights,
                                   double& controlPtTol, double& knotTol) const;
    Acad::ErrorStatus setNurbsData(int degree, Adesk::Boolean rational, Adesk::Boolean closed,
                                   Adesk::Boolean periodic, const AcGePoint3dArray& controlPoints,
                                   const AcGeDoubleArray& knots, const AcGeDoubleArray& weights,
                                   double controlPtTol = 0.0, double knotTol = 0.0);
    int numControlPoints() const;
    Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d& point);
    double weightAt(int index) const;
    Acad::ErrorStatus setWeightAt(int index, double weight);
    int numKnots() const;
    // Inserts a knot inside the parameter range; the curve does not change.
    Acad::ErrorStatus insertKnot(double param);

    // Fit data.
    bool hasFitData() const;
    int numFitPoints() const;
    Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setFitPointAt(int index, const AcGePoint3d& point);
    // An index at the count appends; past it, or on a spline without fit data that has control
    // data, eInvalidIndex / eNotApplicable.
    Acad::ErrorStatus insertFitPointAt(int index, const AcGePoint3d& point);
    Acad::ErrorStatus removeFitPointAt(int index);
    Acad::ErrorStatus getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance,
                                 Adesk::Boolean& tangentsExist, AcGeVector3d& startTangent,
                                 AcGeVector3d& endTangent) const;
    // Zero tangents mean none.
    Acad::ErrorStatus setFitData(const AcGePoint3dArray& fitPoints, int degree, double fitTolerance,
                                 const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
    Acad::ErrorStatus getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
    Acad::ErrorStatus setFitTangents(const AcGeVector3d& startTangent,
                                     const AcGeVector3d& endTangent);
    double fitTolerance() const;
    Acad::ErrorStatus setFitTol(double tol);
    // Keeps the curve, forgets how it was made.
    Acad::ErrorStatus purgeFitData();

    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    // Planar splines only: a spline through points at the distance, positive to the right of
    // travel about the spline's plane normal.
    Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                      AcDbVoidPtrArray& offsetCurves) const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    void subList() const override;
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* wd) override;
    // Fit points when there are any, control points otherwise.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;

private:
    void rebuild();

    std::unique_ptr<geimpl::Nurbs> mN;
    bool mPeriodic = false;
    double mCtrlTol = 0.0, mKnotTol = 0.0;
    std::vector<AcGePoint3d> mFit;
    AcGeVector3d mStartTan, mEndTan;
    int mFitDegree = 3;
    double mFitTol = 0.0;
    friend struct AcDbSplineImpl;
};
