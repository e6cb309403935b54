// The 2D polyline (the heavy form): vertices in the plane system of its normal at its
// elevation, with bulges and widths, and fitted forms.
//
// Its curve runs through every vertex but the spline frame's control vertices, with each
// vertex's bulge; vertex i of that run is parameter i. Fitting (curveFit, splineFit) keeps the
// original vertices and adds the generated ones; straighten() takes them away again. In the
// exchange format each vertex is its own VERTEX record after the polyline, ended by SEQEND.
#pragma once

#include "dbents.h"
#include "dbvertex.h"

#include <memory>

class AcDb2dVertex : public AcDbVertex {
public:
    ACRX_DECLARE_MEMBERS(AcDb2dVertex);
    AcDb2dVertex() = default;
    explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0.0, double startWidth = 0.0,
                          double endWidth = 0.0, double tangent = 0.0,
                          Adesk::Int32 vertexIdentifier = 0);

    AcDb::Vertex2dType vertexType() const;
    // For readers of exchange files; the fitting functions set it themselves.
    Acad::ErrorStatus setVertexType(AcDb::Vertex2dType type);
    // In the polyline's plane system; z is the polyline's elevation.
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& p);
    double startWidth() const;
    Acad::ErrorStatus setStartWidth(double w);
    double endWidth() const;
    Acad::ErrorStatus setEndWidth(double w);
    double bulge() const;
    Acad::ErrorStatus setBulge(double b);
    bool isTangentUsed() const;
    Acad::ErrorStatus useTangent();
    Acad::ErrorStatus ignoreTangent();
    double tangent() const;
    Acad::ErrorStatus setTangent(double angle);
    Adesk::Int32 vertexIdentifier() const;
    Acad::ErrorStatus setVertexIdentifier(Adesk::Int32 id);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    AcGePoint3d mPos;
    double mBulge = 0.0, mStartWidth = 0.0, mEndWidth = 0.0, mTangent = 0.0;
    bool mTangentUsed = false;
    Adesk::Int32 mId = 0;
    AcDb::Vertex2dType mType = AcDb::k2dVertex;
    friend class AcDb2dPolyline;
    friend struct AcDb2dPolylineImpl;
};

class AcDb2dPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline);
    AcDb2dPolyline();
    // Vertices in the plane system (their z is ignored), with bulges when given (one per
    // vertex).
    AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation = 0.0,
                   Adesk::Boolean closed = false, double defStartWidth = 0.0,
                   double defEndWidth = 0.0, const AcGeDoubleArray* bulges = nullptr);
    ~AcDb2dPolyline() override;
    AcDb2dPolyline(const AcDb2dPolyline&) = delete;
    AcDb2dPolyline& operator=(const AcDb2dPolyline&) = delete;

    AcDb::Poly2dType polyType() const;
    // Fits or straightens to the type.
    Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
    Acad::ErrorStatus convertToPolyType(AcDb::Poly2dType type) { return setPolyType(type); }
    Acad::ErrorStatus makeClosed();
    Acad::ErrorStatus makeOpen();
    bool isClosed() const override;
    double defaultStartWidth() const;
    Acad::ErrorStatus setDefaultStartWidth(double w);
    double defaultEndWidth() const;
    Acad::ErrorStatus setDefaultEndWidth(double w);
    double thickness() const;
    Acad::ErrorStatus setThickness(double t);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    double elevation() const;
    Acad::ErrorStatus setElevation(double e);
    bool isLinetypeGenerationOn() const;
    Acad::ErrorStatus setLinetypeGenerationOn();
    Acad::ErrorStatus setLinetypeGenerationOff();

    // Removes fitted vertices and bulges' generated arcs: the frame's vertices remain.
    Acad::ErrorStatus straighten();
    // Arcs through the vertices meeting tangentially (two per segment).
    Acad::ErrorStatus curveFit();
    // A cubic B-spline of the vertices, 8 segments per span.
    Acad::ErrorStatus splineFit();
    Acad::ErrorStatus splineFit(AcDb::Poly2dType splineType, Adesk::Int16 splineSegs);

    // The polyline takes ownership; null or an owned vertex is refused.
    Acad::ErrorStatus appendVertex(AcDb2dVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDbObjectId& newVertId, AcDb2dVertex* vertex);
    // After indexVert (at the front when null).
    Acad::ErrorStatus insertVertexAt(const AcDb2dVertex* indexVert, AcDb2dVertex* newVertex);
    // The caller deletes the iterator.
    AcDbObjectIterator* vertexIterator() const;
    AcGePoint3d vertexPosition(const AcDb2dVertex& vert) const;

    Acad::ErrorStatus extend(double newParam) override;
    using AcDbCurve::extend;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    // A simple 2D polyline at the distance, as for the lightweight polyline.
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
    // Lines and arcs of the curve.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

private:
    std::vector<std::unique_ptr<AcDb2dVertex>> mVerts;
    AcDb::Poly2dType mType = AcDb::k2dSimplePoly;
    AcGeVector3d mNormal{0, 0, 1};
    double mElevation = 0.0, mThickness = 0.0, mDefStart = 0.0, mDefEnd = 0.0;
    bool mClosed = false, mPlinegen = false;
    friend struct AcDb2dPolylineImpl;
};
