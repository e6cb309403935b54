// The 3D polyline: straight segments through world points, optionally spline-fitted.
//
// Its curve runs through every vertex but the spline frame's control vertices; vertex i of that
// run is parameter i. In the exchange format each vertex is its own VERTEX record after the
// polyline, ended by SEQEND.
#pragma once

#include "dbents.h"
#include "dbvertex.h"

#include <memory>

class AcDb3dPolylineVertex : public AcDbVertex {
public:
    ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);
    AcDb3dPolylineVertex() = default;
    explicit AcDb3dPolylineVertex(const AcGePoint3d& position) : mPos(position) {}

    AcDb::Vertex3dType vertexType() const;
    // For readers of exchange files; fitting sets it itself.
    Acad::ErrorStatus setVertexType(AcDb::Vertex3dType type);
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& p);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    AcGePoint3d mPos;
    AcDb::Vertex3dType mType = AcDb::k3dSimpleVertex;
    friend class AcDb3dPolyline;
    friend struct AcDb3dPolylineImpl;
};

class AcDb3dPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDb3dPolyline);
    AcDb3dPolyline();
    AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices,
                   Adesk::Boolean closed = false);
    ~AcDb3dPolyline() override;
    AcDb3dPolyline(const AcDb3dPolyline&) = delete;
    AcDb3dPolyline& operator=(const AcDb3dPolyline&) = delete;

    AcDb::Poly3dType polyType() const;
    Acad::ErrorStatus setPolyType(AcDb::Poly3dType type);
    Acad::ErrorStatus convertToPolyType(AcDb::Poly3dType type) { return setPolyType(type); }
    Acad::ErrorStatus makeClosed();
    Acad::ErrorStatus makeOpen();
    bool isClosed() const override;
    Acad::ErrorStatus straighten();
    // A cubic B-spline of the vertices, 8 segments per span.
    Acad::ErrorStatus splineFit();
    Acad::ErrorStatus splineFit(AcDb::Poly3dType splineType, Adesk::Int16 splineSegs);

    Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDbObjectId& newVertId, AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus insertVertexAt(const AcDb3dPolylineVertex* indexVert,
                                     AcDb3dPolylineVertex* newVertex);
    AcDbObjectIterator* vertexIterator() const;

    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    // Of the outline projected onto its plane, closed by a chord; planar polylines only.
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    // Planar polylines only, in their plane.
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
    // Lines of the curve.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

private:
    std::vector<std::unique_ptr<AcDb3dPolylineVertex>> mVerts;
    AcDb::Poly3dType mType = AcDb::k3dSimplePoly;
    bool mClosed = false;
    friend struct AcDb3dPolylineImpl;
};
