#include "module/dubline.h"

#include "cmdline.h"
#include "module/framework.h"
#include "toolkit/offsetcurves.h"

QOR_DEFINE_MEMBERS(AcdbQorDubLine, AcDbEntity, L"QOR_DUBLINE", L"QOROBJ", 3071)

AcdbQorDubLine::AcdbQorDubLine(const AcdbQorDubLine& other)
    : AcDbEntity(other), mCentre(other.mCentre), mWidth(other.mWidth) {}

AcdbQorDubLine& AcdbQorDubLine::operator=(const AcdbQorDubLine& other) {
    if (this != &other) {
        AcDbEntity::operator=(other);
        mCentre = other.mCentre;
        mWidth = other.mWidth;
    }
    return *this;
}

// ---------------------------------------------------------------- accessors

Acad::ErrorStatus AcdbQorDubLine::getWidth(double& w) {
    assertReadEnabled();
    w = mWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcdbQorDubLine::setWidth(double w) {
    assertWriteEnabled();
    mWidth = w;
    return Acad::eOk;
}

int AcdbQorDubLine::getNumPts(int& n) {
    assertReadEnabled();
    n = static_cast<int>(mCentre.numVerts());
    return 1;
}

Acad::ErrorStatus AcdbQorDubLine::getVertexAt(int i, AcGePoint3d& pt) {
    assertReadEnabled();
    const int n = static_cast<int>(mCentre.numVerts());
    AcGePoint2d p;
    if (n < 1 || i >= n || mCentre.getPointAt(static_cast<unsigned int>(i), p) != Acad::eOk)
        return Acad::eInvalidIndex;
    pt.set(p.x, p.y, 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus AcdbQorDubLine::setVertexAt(unsigned int i, AcGePoint3d pt, double bulge) {
    assertWriteEnabled();
    if (i < mCentre.numVerts()) {
        mCentre.setPointAt(i, AcGePoint2d(pt.x, pt.y));
        mCentre.setBulgeAt(i, bulge);
    } else {
        mCentre.addVertexAt(i, AcGePoint2d(pt.x, pt.y), bulge, -1.0, -1.0);
    }
    return Acad::eOk;
}

void AcdbQorDubLine::removeVertexAt(unsigned int i) {
    assertWriteEnabled();
    mCentre.removeVertexAt(i);
}

// ---------------------------------------------------------------- drawing

int AcdbQorDubLine::M_DrawQorEnt(AcGiWorldDraw* wd, AcArray<void*>& ents, void* btr) const {
    if (mWidth == 0.0) return 1;
    if (mCentre.numVerts() < 2) return 1;
    OffsetEnt(wd, ents, btr, mWidth / 2);
    OffsetEnt(wd, ents, btr, -mWidth / 2);
    return 1;
}

int AcdbQorDubLine::OffsetEnt(AcGiWorldDraw* wd, AcArray<void*>& ents, void* btr,
                              double dist) const {
    AcArray<void*> curves;
    if (!M_GetOffsetCurves(&mCentre, dist, curves)) return 1;
    for (void* p : curves) {
        auto* curve = static_cast<AcDbCurve*>(p);
        if (!curve) continue;
        if (wd) {
            curve->worldDraw(wd);
            delete curve;
            continue;
        }
        // Only colour and layer travel to the side lines.
        curve->setColor(color(), true);
        ACHAR* layerName = layer();
        curve->setLayer(layerName, true, false);
        delete[] layerName;
        M_ExplodeOut(curve, ents, btr);
    }
    return 1;
}

int AcdbQorDubLine::M_OutPlotFile(AcDbBlockTableRecord* btr) const {
    return qorOutPlotFile(this, btr);
}

Adesk::Boolean AcdbQorDubLine::subWorldDraw(AcGiWorldDraw* wd) {
    // The double line draws in every regen type.
    assertReadEnabled();
    AcArray<void*> unused;
    M_DrawQorEnt(wd, unused, nullptr);
    return Adesk::kTrue;
}

Acad::ErrorStatus AcdbQorDubLine::subExplode(AcDbVoidPtrArray& ents) const {
    assertReadEnabled();
    M_DrawQorEnt(nullptr, ents, nullptr);
    return Acad::eOk;
}

void AcdbQorDubLine::subSaveAs(AcGiWorldDraw* mode, AcDb::SaveType st) {
    qorSaveAsProxyGraphics(this, mode, st);
}

void AcdbQorDubLine::subList() const {
    assertReadEnabled();
    AcDbEntity::subList();
    CString left, right;
    left.Format(L"%15s:  %s%s", L"类名", isA()->name(), L"                   ");
    right.Format(L"%15s:  %.3f", L"实体宽度", mWidth);
    acutPrintf(L"\n%.30s %s", static_cast<const ACHAR*>(left), static_cast<const ACHAR*>(right));
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcdbQorDubLine::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (Acad::ErrorStatus es = AcDbEntity::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeUInt16(kVersion);
    filer->writeDouble(mWidth);
    const unsigned int n = mCentre.numVerts();
    filer->writeUInt32(n);
    for (unsigned int i = 0; i < n; ++i) {
        AcGePoint2d p;
        double bulge = 0.0;
        mCentre.getPointAt(i, p);
        mCentre.getBulgeAt(i, bulge);
        filer->writePoint2d(p);
        filer->writeDouble(bulge);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcdbQorDubLine::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (Acad::ErrorStatus es = AcDbEntity::dwgInFields(filer); es != Acad::eOk) return es;
    Adesk::UInt16 version = 0;
    if (Acad::ErrorStatus es = qorReadVersion(filer, kVersion, version); es != Acad::eOk) return es;
    if (version != kVersion && version != kOldVersion) return filer->filerStatus();
    filer->readDouble(&mWidth);
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    mCentre.reset(false, 0);
    // A damaged count stops at the filer's first error rather than running on.
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        AcGePoint2d p;
        double bulge = 0.0;
        filer->readPoint2d(&p);
        filer->readDouble(&bulge);
        if (filer->filerStatus() == Acad::eOk) mCentre.addVertexAt(i, p, bulge, -1.0, -1.0);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcdbQorDubLine::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(filer); es != Acad::eOk) return es;
    qorDxfOutHeader(filer, L"AcdbQorDubLine", kVersion);
    filer->writeDouble(AcDb::kDxfReal, mWidth);
    return filer->filerStatus();
}

Acad::ErrorStatus AcdbQorDubLine::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer); es != Acad::eOk) return es;
    bool proceed = false;
    if (Acad::ErrorStatus es = qorDxfInHeader(filer, L"AcdbQorDubLine", kVersion, proceed);
        !proceed)
        return es;
    resbuf rb{};
    // The width is written under group 40 but read from 43; files already written depend on it.
    while (filer->readItem(&rb) == Acad::eOk) {
        if (rb.restype != AcDb::kDxfViewFrontClip) {
            filer->pushBackItem();
            break;
        }
        mWidth = rb.resval.rreal;
    }
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- edit operations: the centre
// line's

Acad::ErrorStatus AcdbQorDubLine::subGetGripPoints(AcGePoint3dArray& grips,
                                                   AcDbIntArray& osnapModes,
                                                   AcDbIntArray& geomIds) const {
    assertReadEnabled();
    return mCentre.getGripPoints(grips, osnapModes, geomIds);
}

Acad::ErrorStatus AcdbQorDubLine::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    return mCentre.moveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcdbQorDubLine::subGetStretchPoints(AcGePoint3dArray& pts) const {
    assertReadEnabled();
    return mCentre.getStretchPoints(pts);
}

Acad::ErrorStatus AcdbQorDubLine::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                         const AcGeVector3d& offset) {
    assertWriteEnabled();
    return mCentre.moveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcdbQorDubLine::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker,
                                                    const AcGePoint3d& pickPoint,
                                                    const AcGePoint3d& lastPoint,
                                                    const AcGeMatrix3d& viewXform,
                                                    AcGePoint3dArray& snapPoints,
                                                    AcDbIntArray& geomIds) const {
    assertReadEnabled();
    return mCentre.getOsnapPoints(mode, gsMarker, pickPoint, lastPoint, viewXform, snapPoints,
                                  geomIds);
}

Acad::ErrorStatus AcdbQorDubLine::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    return mCentre.getGeomExtents(extents);
}

Acad::ErrorStatus AcdbQorDubLine::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    mWidth *= xform.scale();
    mCentre.transformBy(xform);
    return Acad::eOk;
}

Acad::ErrorStatus AcdbQorDubLine::subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                                   AcGePoint3dArray& points,
                                                   Adesk::GsMarker thisGsMarker,
                                                   Adesk::GsMarker otherGsMarker) const {
    assertReadEnabled();
    return mCentre.intersectWith(ent, intType, points, thisGsMarker, otherGsMarker);
}

Acad::ErrorStatus AcdbQorDubLine::subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                                   const AcGePlane& projPlane,
                                                   AcGePoint3dArray& points,
                                                   Adesk::GsMarker thisGsMarker,
                                                   Adesk::GsMarker otherGsMarker) const {
    assertReadEnabled();
    return mCentre.intersectWith(ent, intType, projPlane, points, thisGsMarker, otherGsMarker);
}
