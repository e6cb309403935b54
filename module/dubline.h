// The double line: two parallel side lines at half the width on either side of a centre polyline.
#pragma once

#include "dbents.h"
#include "module/qorclass.h"
#include "winstr.h"

class AcdbQorDubLine : public AcDbEntity {
    QOR_DECLARE_MEMBERS(AcdbQorDubLine);

public:
    static constexpr Adesk::UInt16 kVersion = 401;
    // The numbering of an earlier release, read with the current layout.
    static constexpr Adesk::UInt16 kOldVersion = 4;

    AcdbQorDubLine() = default;
    AcdbQorDubLine(const AcdbQorDubLine& other);
    AcdbQorDubLine& operator=(const AcdbQorDubLine& other);

    virtual Acad::ErrorStatus setWidth(double w);
    virtual Acad::ErrorStatus getWidth(double& w);
    int getNumPts(int& n);
    Acad::ErrorStatus getVertexAt(int i, AcGePoint3d& pt);
    Acad::ErrorStatus setVertexAt(unsigned int i, AcGePoint3d pt, double bulge);
    void removeVertexAt(unsigned int i);
    const AcDbPolyline& centreLine() const { return mCentre; }

    int M_DrawQorEnt(AcGiWorldDraw* wd, AcArray<void*>& ents, void* btr) const;
    virtual int OffsetEnt(AcGiWorldDraw* wd, AcArray<void*>& ents, void* btr, double dist) const;
    int M_OutPlotFile(AcDbBlockTableRecord* btr) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    Adesk::Boolean subWorldDraw(AcGiWorldDraw* wd) override;
    void subList() const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& ents) const override;
    void subSaveAs(AcGiWorldDraw* mode, AcDb::SaveType st) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& pts) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                       AcGePoint3dArray& points, Adesk::GsMarker thisGsMarker,
                                       Adesk::GsMarker otherGsMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                       const AcGePlane& projPlane, AcGePoint3dArray& points,
                                       Adesk::GsMarker thisGsMarker,
                                       Adesk::GsMarker otherGsMarker) const override;

private:
    AcDbPolyline mCentre;
    double mWidth = 0.0;
};
