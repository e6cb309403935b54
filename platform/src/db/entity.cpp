// Entities: common properties, their filing and listing, and the default edit operations.
#include "cmdline.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "stub.h"

#include <cstring>
#include <cwchar>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)

namespace {

AcDbDatabase* resolvingDatabase(const AcDbEntity* e) {
    AcDbDatabase* db = e->database();
    return db ? db : acdbHostApplicationServices()->workingDatabase();
}

ACHAR* copyString(const ACHAR* s) {
    size_t n = std::wcslen(s) + 1;
    auto* out = new ACHAR[n];
    std::wmemcpy(out, s, n);
    return out;
}

ACHAR* recordName(AcDbObjectId id) {
    AcDbSymbolTableRecord* rec = nullptr;
    if (acdbOpenObject(rec, id, AcDb::kForRead) != Acad::eOk) return copyString(L"");
    ACHAR* name = copyString(rec->name());
    rec->close();
    return name;
}

Acad::ErrorStatus lookUp(AcDbDatabase* db, AcDbObjectId tableId, const ACHAR* name,
                         AcDbObjectId& id) {
    if (!db) return Acad::eNotApplicable;
    AcDbSymbolTable* table = nullptr;
    if (Acad::ErrorStatus es = acdbOpenObject(table, tableId, AcDb::kForRead); es != Acad::eOk)
        return es;
    Acad::ErrorStatus es = table->getAt(name, id);
    table->close();
    return es;
}

} // namespace

// ---------------------------------------------------------------- properties

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& c, bool) {
    assertWriteEnabled();
    mColor = c;
    return Acad::eOk;
}

Adesk::UInt16 AcDbEntity::colorIndex() const {
    assertReadEnabled();
    if (mColor.isByLayer()) return 256;
    if (mColor.isByBlock()) return 0;
    if (mColor.isByACI()) return mColor.colorIndex();
    return AcCmEntityColor::lookUpACI(mColor.red(), mColor.green(), mColor.blue());
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 index, bool) {
    if (index > 256) return Acad::eInvalidInput;
    assertWriteEnabled();
    mColor.setColorIndex(index);
    return Acad::eOk;
}

ACHAR* AcDbEntity::layer() const {
    assertReadEnabled();
    return recordName(mLayer);
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, bool doSubents, bool allowHidden) {
    if (!name) return Acad::eInvalidInput;
    AcDbDatabase* db = resolvingDatabase(this);
    AcDbObjectId id;
    if (Acad::ErrorStatus es = lookUp(db, db ? db->layerTableId() : AcDbObjectId(), name, id);
        es != Acad::eOk)
        return es == Acad::eNotApplicable ? es : Acad::eKeyNotFound;
    return setLayer(id, doSubents, allowHidden);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId id, bool, bool) {
    if (id.isNull()) return Acad::eNullObjectId;
    assertWriteEnabled();
    mLayer = id;
    return Acad::eOk;
}

ACHAR* AcDbEntity::linetype() const {
    assertReadEnabled();
    return recordName(mLinetype);
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, bool doSubents) {
    if (!name) return Acad::eInvalidInput;
    AcDbDatabase* db = resolvingDatabase(this);
    AcDbObjectId id;
    if (Acad::ErrorStatus es = lookUp(db, db ? db->linetypeTableId() : AcDbObjectId(), name, id);
        es != Acad::eOk)
        return es == Acad::eNotApplicable ? es : Acad::eKeyNotFound;
    return setLinetype(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId id, bool) {
    if (id.isNull()) return Acad::eNullObjectId;
    assertWriteEnabled();
    mLinetype = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double s, bool) {
    if (!(s > 0.0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mLinetypeScale = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight w, bool) {
    assertWriteEnabled();
    mLineWeight = w;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility v, bool) {
    assertWriteEnabled();
    mVisibility = v;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setMaterial(AcDbObjectId id, bool) {
    assertWriteEnabled();
    mMaterial = id;
    return Acad::eOk;
}

void AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool) {
    if (!other) return;
    assertWriteEnabled();
    mColor = other->mColor;
    mLayer = other->mLayer;
    mLinetype = other->mLinetype;
    mLinetypeScale = other->mLinetypeScale;
    mLineWeight = other->mLineWeight;
    mVisibility = other->mVisibility;
    mMaterial = other->mMaterial;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* db) {
    if (!db) db = resolvingDatabase(this);
    if (!db) return;
    assertWriteEnabled();
    mLayer = db->clayer();
    mColor = db->cecolor();
    mLinetype = db->celtype();
    mLinetypeScale = db->celtscale();
    mLineWeight = db->celweight();
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeHardPointerId(mLayer);
    filer->writeUInt32(mColor.color());
    filer->writeHardPointerId(mLinetype);
    filer->writeDouble(mLinetypeScale);
    filer->writeInt16(static_cast<Adesk::Int16>(mLineWeight));
    filer->writeUInt8(static_cast<Adesk::UInt8>(mVisibility));
    filer->writeHardPointerId(mMaterial);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dwgInFields(filer); es != Acad::eOk) return es;
    AcDbHardPointerId layer, linetype, material;
    Adesk::UInt32 color = 0;
    Adesk::Int16 weight = 0;
    Adesk::UInt8 visibility = 0;
    double ltscale = 1.0;
    filer->readHardPointerId(&layer);
    filer->readUInt32(&color);
    filer->readHardPointerId(&linetype);
    filer->readDouble(&ltscale);
    filer->readInt16(&weight);
    filer->readUInt8(&visibility);
    filer->readHardPointerId(&material);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mLayer = layer;
    mColor.setColor(color);
    mLinetype = linetype;
    mLinetypeScale = ltscale;
    mLineWeight = static_cast<AcDb::LineWeight>(weight);
    mVisibility = visibility ? AcDb::kInvisible : AcDb::kVisible;
    mMaterial = material;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbEntity");
    ACHAR* name = recordName(mLayer);
    filer->writeString(AcDb::kDxfLayerName, *name ? name : L"0");
    delete[] name;
    if (!mColor.isByLayer()) {
        filer->writeInt16(AcDb::kDxfColor, static_cast<Adesk::Int16>(colorIndex()));
        if (mColor.isByColor())
            filer->writeInt32(AcDb::kDxfColorRGB,
                              static_cast<Adesk::Int32>(mColor.color() & 0xFFFFFF));
    }
    if (mLineWeight != AcDb::kLnWtByLayer)
        filer->writeInt16(AcDb::kDxfLineWeight, static_cast<Adesk::Int16>(mLineWeight));
    if (mLinetypeScale != 1.0) filer->writeDouble(AcDb::kDxfLinetypeScale, mLinetypeScale);
    if (mVisibility == AcDb::kInvisible) filer->writeInt16(AcDb::kDxfVisibility, 1);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbEntity")) return filer->filerStatus();
    resbuf rb{};
    while (filer->readItem(&rb) == Acad::eOk) {
        switch (rb.restype) {
        case AcDb::kDxfLayerName:
            if (rb.resval.rstring) setLayer(rb.resval.rstring);
            continue;
        case AcDb::kDxfLinetypeName:
            if (rb.resval.rstring) setLinetype(rb.resval.rstring);
            continue;
        case AcDb::kDxfColor:
            setColorIndex(static_cast<Adesk::UInt16>(rb.resval.rint));
            continue;
        case AcDb::kDxfColorRGB: {
            Adesk::UInt32 rgb = static_cast<Adesk::UInt32>(rb.resval.rlong);
            mColor.setRGB((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
            continue;
        }
        case AcDb::kDxfLineWeight:
            mLineWeight = static_cast<AcDb::LineWeight>(rb.resval.rint);
            continue;
        case AcDb::kDxfLinetypeScale:
            mLinetypeScale = rb.resval.rreal;
            continue;
        case AcDb::kDxfVisibility:
            mVisibility = rb.resval.rint ? AcDb::kInvisible : AcDb::kVisible;
            continue;
        default:
            filer->pushBackItem();
            break;
        }
        break;
    }
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbEntity::subList() const {
    assertReadEnabled();
    ACHAR* layerName = layer();
    std::wstring space = L"Model space";
    if (AcDbBlockTableRecord* btr = nullptr;
        acdbOpenObject(btr, ownerId(), AcDb::kForRead) == Acad::eOk) {
        if (std::wcscmp(btr->name(), ACDB_MODEL_SPACE) != 0)
            space = std::wcscmp(btr->name(), ACDB_PAPER_SPACE) == 0 ? L"Paper space" : btr->name();
        btr->close();
    }
    ACHAR handleText[17] = L"0";
    handle().getIntoAsciiBuffer(handleText);
    acutPrintf(L"\n%18s  Layer: \"%s\"", isA()->name(), layerName);
    acutPrintf(L"\n%28s  Space: %s", L"", space.c_str());
    if (!mColor.isByLayer()) acutPrintf(L"\n%28s  Color: %d", L"", static_cast<int>(colorIndex()));
    acutPrintf(L"\n%28s  Handle = %s", L"", handleText);
    delete[] layerName;
}

Adesk::UInt32 AcDbEntity::subSetAttributes(AcGiDrawableTraits* traits) {
    if (!traits) return 0;
    if (mColor.isByACI() || mColor.isByLayer() || mColor.isByBlock())
        traits->setColor(colorIndex());
    else
        traits->setTrueColor(mColor);
    traits->setLayer(mLayer);
    traits->setLineType(mLinetype);
    traits->setLineTypeScale(mLinetypeScale);
    traits->setLineWeight(mLineWeight);
    return 0;
}

void AcDbEntity::subSaveAs(AcGiWorldDraw* mode, AcDb::SaveType) {
    if (mode) worldDraw(mode);
}

// ---------------------------------------------------------------- default edit operations

Acad::ErrorStatus AcDbEntity::subExplode(AcDbVoidPtrArray&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&,
                                               AcDbIntArray&) const {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subGetStretchPoints(AcGePoint3dArray& pts) const {
    AcDbIntArray modes, ids;
    return subGetGripPoints(pts, modes, ids);
}

Acad::ErrorStatus AcDbEntity::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    return subMoveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, Adesk::GsMarker,
                                                const AcGePoint3d&, const AcGePoint3d&,
                                                const AcGeMatrix3d&, AcGePoint3dArray&,
                                                AcDbIntArray&) const {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents&) const {
    return Acad::eInvalidExtents;
}

Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d&) {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetTransformedCopy(const AcGeMatrix3d& xform,
                                                    AcDbEntity*& ent) const {
    ent = AcDbEntity::cast(clone());
    if (!ent) return Acad::eNotApplicable;
    Acad::ErrorStatus es = ent->transformBy(xform);
    if (es != Acad::eOk) {
        delete ent;
        ent = nullptr;
    }
    return es;
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity*, AcDb::Intersect,
                                               AcGePoint3dArray&, Adesk::GsMarker,
                                               Adesk::GsMarker) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity*, AcDb::Intersect, const AcGePlane&,
                                               AcGePoint3dArray&, Adesk::GsMarker,
                                               Adesk::GsMarker) const {
    return Acad::eNotApplicable;
}

// ---------------------------------------------------------------- extents

AcDbExtents::AcDbExtents() : mMin(1e20, 1e20, 1e20), mMax(-1e20, -1e20, -1e20) {}

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& min, const AcGePoint3d& max) {
    if (min.x > max.x || min.y > max.y || min.z > max.z) return Acad::eInvalidExtents;
    mMin = min;
    mMax = max;
    return Acad::eOk;
}

void AcDbExtents::addPoint(const AcGePoint3d& p) {
    for (unsigned i = 0; i < 3; ++i) {
        if (p[i] < mMin[i]) mMin[i] = p[i];
        if (p[i] > mMax[i]) mMax[i] = p[i];
    }
}

void AcDbExtents::addPoints(const AcGePoint3dArray& pts) {
    for (const auto& p : pts)
        addPoint(p);
}

void AcDbExtents::addExt(const AcDbExtents& e) {
    if (!e.isValid()) return;
    addPoint(e.mMin);
    addPoint(e.mMax);
}

Acad::ErrorStatus AcDbExtents::expandBy(const AcGeVector3d& v) {
    if (!isValid()) return Acad::eInvalidExtents;
    addPoint(mMin + v);
    addPoint(mMax + v);
    return Acad::eOk;
}

void AcDbExtents::transformBy(const AcGeMatrix3d& m) {
    if (!isValid()) return;
    AcGePoint3d lo = mMin, hi = mMax;
    *this = AcDbExtents();
    for (int i = 0; i < 8; ++i) {
        AcGePoint3d c((i & 1) ? hi.x : lo.x, (i & 2) ? hi.y : lo.y, (i & 4) ? hi.z : lo.z);
        addPoint(c.transformBy(m));
    }
}
