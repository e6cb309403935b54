// The hatch: a region bounded by loops in the plane system of its normal at its elevation,
// filled solid or with a pattern of lines.
//
// A loop is either a polyline (loop type bit kPolyline: 2D vertices with bulges) or a run of
// edges (line segments, circular arcs, elliptical arcs, NURBS curves, as 2D geometry). The hatch
// copies what it is given; the edge pointers that getLoopAt hands out belong to the hatch and
// stay valid until the hatch changes or is deleted (those of a polyline loop asked for as edges,
// until that loop is asked for again). Patterns: user-defined lines (angle,
// spacing, doubled crosswise) and a few predefined ones ("SOLID", "ANSI31", "ANSI37", "NET",
// "LINE"; other names hatch as ANSI31).
#pragma once

#include "dbents.h"
#include "gecurves.h"

#include <memory>

class AcGeCurve2d;

class AcDbHatch : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbHatch);
    enum HatchLoopType {
        kDefault = 0,
        kExternal = 1,
        kPolyline = 2,
        kDerived = 4,
        kTextbox = 8,
        kOutermost = 0x10,
        kNotClosed = 0x20,
        kSelfIntersecting = 0x40,
        kTextIsland = 0x80,
        kDuplicate = 0x100,
    };
    enum HatchEdgeType { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };
    enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
    enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };
    enum HatchObjectType { kHatchObject = 0, kGradientObject = 1 };

    AcDbHatch();
    ~AcDbHatch() override;
    AcDbHatch(const AcDbHatch&) = delete;
    AcDbHatch& operator=(const AcDbHatch&) = delete;

    double elevation() const;
    Acad::ErrorStatus setElevation(double e);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);

    int numLoops() const;
    // 0 for an index out of range.
    Adesk::Int32 loopTypeAt(int loopIndex) const;
    // A polyline loop; bulges are empty when every one is zero.
    Acad::ErrorStatus getLoopAt(int loopIndex, Adesk::Int32& loopType, AcGePoint2dArray& vertices,
                                AcGeDoubleArray& bulges) const;
    // Any loop as edges (a polyline loop as its lines and arcs).
    Acad::ErrorStatus getLoopAt(int loopIndex, Adesk::Int32& loopType,
                                AcGeVoidPointerArray& edgePtrs, AcGeIntArray& edgeTypes) const;
    // Bulges: one per vertex, or none. kPolyline is added to the type.
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                 const AcGeDoubleArray& bulges);
    // Edges of the types named, which must match the curves (AcGeLineSeg2d, AcGeCircArc2d,
    // AcGeEllipArc2d, AcGeNurbCurve2d); kPolyline is taken off the type.
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcGeVoidPointerArray& edgePtrs,
                                 const AcGeIntArray& edgeTypes);
    // A loop from the outlines of curves of the database (lines, arcs, circles, polylines,
    // ellipses, splines), in their order; the ids are kept as the loop's associated objects.
    Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& dbObjIds);
    Acad::ErrorStatus insertLoopAt(int loopIndex, Adesk::Int32 loopType,
                                   const AcGePoint2dArray& vertices, const AcGeDoubleArray& bulges);
    Acad::ErrorStatus insertLoopAt(int loopIndex, Adesk::Int32 loopType,
                                   const AcGeVoidPointerArray& edgePtrs,
                                   const AcGeIntArray& edgeTypes);
    Acad::ErrorStatus removeLoopAt(int loopIndex);

    bool associative() const;
    Acad::ErrorStatus setAssociative(bool isAssociative);
    Acad::ErrorStatus getAssocObjIds(AcDbObjectIdArray& dbObjIds) const;
    Acad::ErrorStatus getAssocObjIdsAt(int loopIndex, AcDbObjectIdArray& dbObjIds) const;
    Acad::ErrorStatus setAssocObjIdsAt(int loopIndex, const AcDbObjectIdArray& dbObjIds);
    Acad::ErrorStatus removeAssocObjIds();

    HatchPatternType patternType() const;
    const ACHAR* patternName() const;
    Acad::ErrorStatus setPattern(HatchPatternType patType, const ACHAR* patName);
    double patternAngle() const;
    Acad::ErrorStatus setPatternAngle(double angle);
    double patternSpace() const;
    Acad::ErrorStatus setPatternSpace(double space);
    double patternScale() const;
    Acad::ErrorStatus setPatternScale(double scale);
    bool patternDouble() const;
    Acad::ErrorStatus setPatternDouble(bool isDouble);
    bool isSolidFill() const;
    HatchStyle hatchStyle() const;
    Acad::ErrorStatus setHatchStyle(HatchStyle style);
    HatchObjectType hatchObjectType() const;
    Acad::ErrorStatus setHatchObjectType(HatchObjectType type);
    bool isGradient() const;

    int numSeedPoints() const;
    AcGePoint2d getSeedPointAt(int index) const;
    Acad::ErrorStatus appendSeedPoint(const AcGePoint2d& pt);
    Acad::ErrorStatus removeSeedPointAt(int index);

    // The pattern's lines clipped by the loops (nothing for a solid fill), in the plane system.
    Acad::ErrorStatus evaluateHatch(bool bUnderestimateNumLines = false);
    int numHatchLines() const;
    Acad::ErrorStatus getHatchLineDataAt(int lineIndex, AcGePoint2d& startPt,
                                         AcGePoint2d& endPt) const;
    Acad::ErrorStatus getHatchLinesData(AcGePoint2dArray& startPts, AcGePoint2dArray& endPts) const;
    // External loops add, the others take away.
    Acad::ErrorStatus getArea(double& area) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    void subList() const override;
    // A solid fill is a filled shell of the loops; a pattern is its lines.
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* wd) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    // Loops follow any affine map: arcs that stop being circular become elliptical arcs.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;

    struct Loop;

private:
    std::vector<std::unique_ptr<Loop>> mLoops;
    AcGeVector3d mNormal{0, 0, 1};
    double mElevation = 0.0;
    HatchPatternType mPatternType = kPreDefined;
    std::wstring mPatternName = L"SOLID";
    double mPatternAngle = 0.0, mPatternSpace = 1.0, mPatternScale = 1.0;
    bool mPatternDouble = false, mAssociative = false;
    HatchStyle mStyle = kNormal;
    HatchObjectType mObjectType = kHatchObject;
    std::vector<AcGePoint2d> mSeeds;
    std::vector<std::pair<AcGePoint2d, AcGePoint2d>> mLines;
    bool mEvaluated = false;
    friend struct AcDbHatchImpl;
};
