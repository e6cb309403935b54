// Plain entities: curves (line, arc, circle, lightweight polyline), text and block reference.
// The other curves and the hatch have headers of their own, included at the end.
#pragma once

#include "dbmain.h"

#include <string>
#include <vector>

class AcGePlane;
class AcGeLineSeg2d;
class AcGeLineSeg3d;
class AcGeCircArc2d;
class AcGeCircArc3d;
class AcGeCurve3d;

// ---------------------------------------------------------------- curves

// Parameter, distance and point queries fail (eInvalidInput) for values off the curve.
class AcDbCurve : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbCurve);

    virtual bool isClosed() const { return false; }
    virtual bool isPeriodic() const { return false; }
    virtual Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const;

    virtual Acad::ErrorStatus getStartParam(double& param) const;
    virtual Acad::ErrorStatus getEndParam(double& param) const;
    virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& p) const;
    virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& p) const;
    virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& p) const;
    virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& p, double& param) const;
    virtual Acad::ErrorStatus getDistAtParam(double param, double& dist) const;
    virtual Acad::ErrorStatus getParamAtDist(double dist, double& param) const;
    virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& p, double& dist) const;
    virtual Acad::ErrorStatus getPointAtDist(double dist, AcGePoint3d& p) const;
    virtual Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& d) const;
    virtual Acad::ErrorStatus getFirstDeriv(const AcGePoint3d& p, AcGeVector3d& d) const;
    virtual Acad::ErrorStatus getSecondDeriv(double param, AcGeVector3d& d) const;
    virtual Acad::ErrorStatus getSecondDeriv(const AcGePoint3d& p, AcGeVector3d& d) const;
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& onCurve,
                                                bool extend = false) const;
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given,
                                                const AcGeVector3d& direction, AcGePoint3d& onCurve,
                                                bool extend = false) const;
    // New curves owned by the caller.
    virtual Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                              AcDbVoidPtrArray& offsetCurves) const;
    virtual Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& params,
                                             AcDbVoidPtrArray& curves) const;
    virtual Acad::ErrorStatus getSplitCurves(const AcGePoint3dArray& points,
                                             AcDbVoidPtrArray& curves) const;
    virtual Acad::ErrorStatus extend(double newParam);
    virtual Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint);
    virtual Acad::ErrorStatus getArea(double& area) const;
    virtual Acad::ErrorStatus reverseCurve();

    // The curve as geometry, owned by the caller: lines as segments, arcs and circles as
    // circular arcs, ellipses as elliptical arcs, splines and polylines as NURBS curves.
    virtual Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*& geCurve,
                                           const AcGeTol& tol = AcGeContext::gTol) const;
    // A database curve for geometry (owned by the caller): segments and lines make lines,
    // circular arcs arcs or circles, elliptical arcs ellipses, NURBS curves splines. The normal
    // is used for a line's normal when given.
    static Acad::ErrorStatus createFromAcGeCurve(const AcGeCurve3d& geCurve, AcDbCurve*& dbCurve,
                                                 AcGeVector3d* normal = nullptr,
                                                 const AcGeTol& tol = AcGeContext::gTol);

    // Extents and intersections work for every pair of the platform's curves.
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                       AcGePoint3dArray& points, Adesk::GsMarker thisGsMarker,
                                       Adesk::GsMarker otherGsMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                       const AcGePlane& projPlane, AcGePoint3dArray& points,
                                       Adesk::GsMarker thisGsMarker,
                                       Adesk::GsMarker otherGsMarker) const override;
};

class AcDbLine : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbLine);
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : mStart(start), mEnd(end) {}

    AcGePoint3d startPoint() const;
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& p);
    AcGePoint3d endPoint() const;
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& p);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);

    Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                      AcDbVoidPtrArray& offsetCurves) const override;
    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& pts) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;

private:
    AcGePoint3d mStart, mEnd;
    AcGeVector3d mNormal{0, 0, 1};
    double mThickness = 0.0;
    friend struct AcDbLineImpl;
};

class AcDbArc : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbArc);
    AcDbArc() = default;
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
    AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
            double endAngle);

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& c);
    double radius() const;
    Acad::ErrorStatus setRadius(double r);
    // Angles in the arc's plane, counter-clockwise about the normal, in [0, 2*pi).
    double startAngle() const;
    Acad::ErrorStatus setStartAngle(double a);
    double endAngle() const;
    Acad::ErrorStatus setEndAngle(double a);
    double totalAngle() const;
    double length() const;
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);

    Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                      AcDbVoidPtrArray& offsetCurves) const override;
    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;

private:
    AcGePoint3d mCenter;
    AcGeVector3d mNormal{0, 0, 1};
    double mRadius = 0.0, mStartAngle = 0.0, mEndAngle = 0.0, mThickness = 0.0;
    friend struct AcDbArcImpl;
};

class AcDbCircle : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbCircle);
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
        : mCenter(center), mNormal(normal), mRadius(radius) {}

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& c);
    double radius() const;
    Acad::ErrorStatus setRadius(double r);
    double diameter() const { return 2.0 * radius(); }
    double circumference() const;
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);
    bool isClosed() const override { return true; }
    bool isPeriodic() const override { return true; }

    Acad::ErrorStatus getOffsetCurves(double offsetDist,
                                      AcDbVoidPtrArray& offsetCurves) const override;
    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;

private:
    AcGePoint3d mCenter;
    AcGeVector3d mNormal{0, 0, 1};
    double mRadius = 0.0, mThickness = 0.0;
    friend struct AcDbCircleImpl;
};

// The lightweight polyline: 2D vertices in the plane of its normal at an elevation, with
// a bulge (tan of a quarter of the included angle) and start/end widths per segment.
class AcDbPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbPolyline);
    enum SegType { kLine = 0, kArc = 1, kCoincident = 2, kPoint = 3, kEmpty = 4 };

    AcDbPolyline() = default;
    explicit AcDbPolyline(unsigned int numVerts);

    unsigned int numVerts() const;
    Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge = 0.0,
                                  double startWidth = -1.0, double endWidth = -1.0);
    Acad::ErrorStatus removeVertexAt(unsigned int index);
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& pt) const;
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& pt) const;
    Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& pt);
    Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
    Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
    Acad::ErrorStatus getStartWidthAt(unsigned int index, double& w) const;
    Acad::ErrorStatus getEndWidthAt(unsigned int index, double& w) const;
    Acad::ErrorStatus getConstantWidth(double& w) const;
    Acad::ErrorStatus setConstantWidth(double w);
    bool hasWidth() const;
    bool hasBulges() const;
    bool isOnlyLines() const;
    double elevation() const;
    void setElevation(double e);
    AcGeVector3d normal() const;
    void setNormal(const AcGeVector3d& n);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);
    void setClosed(bool closed);
    bool isClosed() const override;
    bool hasPlinegen() const;
    void setPlinegen(bool on);
    void reset(bool reuse, unsigned int numVerts);
    void minimizeMemory() {}
    void maximizeMemory() {}

    SegType segType(unsigned int index) const;
    Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg2d& seg) const;
    Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg3d& seg) const;
    Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc2d& arc) const;
    Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const;
    // The polyline's parameter of pt when it lies on segment index.
    bool onSegAt(unsigned int index, const AcGePoint2d& pt, double& param) const;
    unsigned int numSegments() const;

    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    // One polyline: segments moved to the side (positive = right of travel) and joined again.
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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

private:
    struct Vertex {
        AcGePoint2d pt;
        double bulge = 0.0, startWidth = 0.0, endWidth = 0.0;
    };
    std::vector<Vertex> mVerts;
    AcGeVector3d mNormal{0, 0, 1};
    double mElevation = 0.0, mThickness = 0.0, mConstantWidth = 0.0;
    bool mClosed = false, mPlinegen = false;
    friend struct AcDbPolylineImpl;
};

// ---------------------------------------------------------------- text and blocks

class AcDbText : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbText);
    AcDbText() = default;
    AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = AcDbObjectId(),
             double height = 0.0, double rotation = 0.0);

    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& p);
    AcGePoint3d alignmentPoint() const;
    Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& p);
    bool isDefaultAlignment() const;
    double height() const;
    Acad::ErrorStatus setHeight(double h);
    double widthFactor() const;
    Acad::ErrorStatus setWidthFactor(double w);
    double rotation() const;
    Acad::ErrorStatus setRotation(double a);
    double oblique() const;
    Acad::ErrorStatus setOblique(double a);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    // A copy the caller deletes with delete[].
    ACHAR* textString() const;
    const ACHAR* textStringConst() const;
    Acad::ErrorStatus setTextString(const ACHAR* s);
    AcDbObjectId textStyle() const;
    Acad::ErrorStatus setTextStyle(AcDbObjectId id);
    AcDb::TextHorzMode horizontalMode() const;
    Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode m);
    AcDb::TextVertMode verticalMode() const;
    Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode m);
    bool isMirroredInX() const;
    Acad::ErrorStatus mirrorInX(bool on);
    bool isMirroredInY() const;
    Acad::ErrorStatus mirrorInY(bool on);

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;

private:
    AcGePoint3d mPosition, mAlignment;
    AcGeVector3d mNormal{0, 0, 1};
    std::wstring mText;
    AcDbObjectId mStyle;
    double mHeight = 0.0, mWidthFactor = 1.0, mRotation = 0.0, mOblique = 0.0, mThickness = 0.0;
    AcDb::TextHorzMode mHorz = AcDb::kTextLeft;
    AcDb::TextVertMode mVert = AcDb::kTextBase;
    bool mMirrorX = false, mMirrorY = false;
    friend struct AcDbTextImpl;
};

class AcDbBlockReference : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockReference);
    AcDbBlockReference() = default;
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord);

    AcDbObjectId blockTableRecord() const;
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId id);
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& p);
    AcGeScale3d scaleFactors() const;
    Acad::ErrorStatus setScaleFactors(const AcGeScale3d& s);
    double rotation() const;
    Acad::ErrorStatus setRotation(double a);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    // Block coordinates to world: the block's origin to the position, scaled, rotated, in the
    // normal's plane.
    AcGeMatrix3d blockTransform() const;
    Acad::ErrorStatus setBlockTransform(const AcGeMatrix3d& m);

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    // Transformed copies of the block's entities, owned by the caller.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

private:
    AcDbObjectId mBlock;
    AcGePoint3d mPosition;
    AcGeScale3d mScale;
    AcGeVector3d mNormal{0, 0, 1};
    double mRotation = 0.0;
    friend struct AcDbBlockReferenceImpl;
};

#include "db2dpoly.h"
#include "db3dpoly.h"
#include "dbelipse.h"
#include "dbhatch.h"
#include "dbspline.h"
