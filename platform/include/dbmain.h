// The drawing database, its objects and entities, and the open/close protocol.
#pragma once

#include "acarray.h"
#include "accolor.h"
#include "acdb.h"
#include "adsdef.h"
#include "dbfiler.h"
#include "dbid.h"
#include "gebasic.h"
#include "gi.h"
#include "rx.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class AcDbDatabase;
class AcDbDictionary;
class AcDbBlockTable;
class AcDbLayerTable;
class AcDbLinetypeTable;
class AcDbTextStyleTable;
class AcDbRegAppTable;
class AcDbBlockTableRecord;
class AcDbEntity;
class AcGePlane;

using AcDbVoidPtrArray = AcArray<void*>;
using AcDbIntArray = AcArray<int>;
using AcDbFullSubentPathArray = AcArray<int>;

// ---------------------------------------------------------------- extents

class AcDbExtents {
public:
    AcDbExtents();
    AcDbExtents(const AcGePoint3d& min, const AcGePoint3d& max) : mMin(min), mMax(max) {}

    const AcGePoint3d& minPoint() const { return mMin; }
    const AcGePoint3d& maxPoint() const { return mMax; }
    Acad::ErrorStatus set(const AcGePoint3d& min, const AcGePoint3d& max);
    void addPoint(const AcGePoint3d& p);
    void addPoints(const AcGePoint3dArray& pts);
    void addExt(const AcDbExtents& e);
    Acad::ErrorStatus expandBy(const AcGeVector3d& v);
    void transformBy(const AcGeMatrix3d& m);
    // False until a point has been added.
    bool isValid() const { return mMin.x <= mMax.x && mMin.y <= mMax.y && mMin.z <= mMax.z; }

private:
    AcGePoint3d mMin, mMax;
};

// ---------------------------------------------------------------- objects

class AcDbObject : public AcGiDrawable {
public:
    ACRX_DECLARE_MEMBERS(AcDbObject);

    AcDbObject();
    ~AcDbObject() override;
    AcDbObject(const AcDbObject&);
    AcDbObject& operator=(const AcDbObject&);

    AcDbObjectId objectId() const { return mId; }
    AcDbObjectId ownerId() const { return mOwner; }
    virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
    AcDbDatabase* database() const;
    AcDbHandle handle() const { return mId.handle(); }
    void getAcDbHandle(AcDbHandle& h) const { h = handle(); }
    AcDbObjectId extensionDictionary() const { return mExtDict; }
    Acad::ErrorStatus createExtensionDictionary();

    // Open/close protocol.
    Acad::ErrorStatus close();
    Acad::ErrorStatus cancel() { return close(); }
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    bool isReadEnabled() const;
    bool isWriteEnabled() const;
    bool isNotifyEnabled() const { return false; }
    bool isModified() const { return mModified; }
    bool isNewObject() const { return mNew; }
    bool isErased() const;
    Acad::ErrorStatus erase(bool erasing = true);
    void assertReadEnabled() const;
    void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
    void assertNotifyEnabled() const {}
    AcDb::OpenMode openMode() const { return mOpenMode; }

    // Filing.
    virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);
    virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
    virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer);
    virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const;

    // Extended data: a copy of the chain for one application (all when null), owned by the caller.
    virtual resbuf* xData(const ACHAR* regappName = nullptr) const;
    // Replaces the application's data with the chain (which starts with its 1001 item).
    virtual Acad::ErrorStatus setXData(const resbuf* xdata);

    // Drawable
    Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override { return subWorldDraw(wd); }
    void viewportDraw(AcGiViewportDraw* vd) override { subViewportDraw(vd); }
    Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) override {
        return subSetAttributes(traits);
    }
    bool isPersistent() const override { return !mId.isNull(); }
    AcDbObjectId id() const override { return mId; }
    virtual Adesk::Boolean subWorldDraw(AcGiWorldDraw*) { return Adesk::kTrue; }
    virtual void subViewportDraw(AcGiViewportDraw*) {}
    virtual Adesk::UInt32 subSetAttributes(AcGiDrawableTraits*) { return 0; }

    // A new object of the same class with the same data (through DWG filing), not
    // database-resident.
    AcRxObject* clone() const override;

private:
    friend class AcDbDatabase;
    friend struct AcDbObjectAccess;
    friend Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*&, AcDbObjectId, AcDb::OpenMode, bool);
    AcDbObjectId mId;
    AcDbObjectId mOwner;
    AcDbObjectId mExtDict;
    AcDb::OpenMode mOpenMode = AcDb::kNotOpen;
    int mReaders = 0;
    bool mModified = false;
    bool mNew = true;
    resbuf* mXData = nullptr; // every application's chain, each led by its 1001 item
};

// Open an object of a database by id. Fails for null, erased (unless openErased) or unloaded ids.
Acad::ErrorStatus acdbOpenObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false);
Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);
Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& ent, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);

template <class T>
inline Acad::ErrorStatus acdbOpenObject(T*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                        bool openErased = false) {
    AcDbObject* p = nullptr;
    obj = nullptr;
    Acad::ErrorStatus es = acdbOpenAcDbObject(p, id, mode, openErased);
    if (es != Acad::eOk) return es;
    obj = T::cast(p);
    if (!obj) {
        p->close();
        return Acad::eNotThatKindOfClass;
    }
    return Acad::eOk;
}

// Ids from ads names and back.
Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id);
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);

// ---------------------------------------------------------------- entities

class AcDbEntity : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbEntity);

    AcDbEntity() = default;

    AcDbObjectId blockId() const { return ownerId(); }

    AcCmColor color() const { return mColor; }
    Acad::ErrorStatus setColor(const AcCmColor& c, bool doSubents = true);
    Adesk::UInt16 colorIndex() const;
    Acad::ErrorStatus setColorIndex(Adesk::UInt16 index, bool doSubents = true);
    AcCmEntityColor entityColor() const { return mColor; }

    // Layer and linetype names resolve in the entity's database, or the working database.
    ACHAR* layer() const;
    AcDbObjectId layerId() const { return mLayer; }
    Acad::ErrorStatus setLayer(const ACHAR* name, bool doSubents = true,
                               bool allowHiddenLayer = false);
    Acad::ErrorStatus setLayer(AcDbObjectId id, bool doSubents = true,
                               bool allowHiddenLayer = false);
    ACHAR* linetype() const;
    AcDbObjectId linetypeId() const { return mLinetype; }
    Acad::ErrorStatus setLinetype(const ACHAR* name, bool doSubents = true);
    Acad::ErrorStatus setLinetype(AcDbObjectId id, bool doSubents = true);
    double linetypeScale() const { return mLinetypeScale; }
    Acad::ErrorStatus setLinetypeScale(double s, bool doSubents = true);
    AcDb::LineWeight lineWeight() const { return mLineWeight; }
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight w, bool doSubents = true);
    AcDb::Visibility visibility() const { return mVisibility; }
    Acad::ErrorStatus setVisibility(AcDb::Visibility v, bool doSubents = true);
    AcDbObjectId materialId() const { return mMaterial; }
    Acad::ErrorStatus setMaterial(AcDbObjectId id, bool doSubents = true);
    void setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);
    // Current layer, colour, linetype, scales and lineweight of the database (the working one when
    // null).
    void setDatabaseDefaults(AcDbDatabase* db = nullptr);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    // The public operations call the overridable sub... forms, as on the platform.
    void list() const { subList(); }
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entities) const { return subExplode(entities); }
    Acad::ErrorStatus getGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                    AcDbIntArray& geomIds) const {
        return subGetGripPoints(grips, osnapModes, geomIds);
    }
    Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveGripPointsAt(indices, offset);
    }
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& pts) const {
        return subGetStretchPoints(pts);
    }
    Acad::ErrorStatus moveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveStretchPointsAt(indices, offset);
    }
    Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker,
                                     const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                     const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                     AcDbIntArray& geomIds) const {
        return subGetOsnapPoints(mode, gsMarker, pickPoint, lastPoint, viewXform, snapPoints,
                                 geomIds);
    }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const {
        return subGetGeomExtents(extents);
    }
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) { return subTransformBy(xform); }
    Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& xform, AcDbEntity*& ent) const {
        return subGetTransformedCopy(xform, ent);
    }
    Acad::ErrorStatus intersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                    AcGePoint3dArray& points, Adesk::GsMarker thisGsMarker = 0,
                                    Adesk::GsMarker otherGsMarker = 0) const {
        return subIntersectWith(ent, intType, points, thisGsMarker, otherGsMarker);
    }
    Acad::ErrorStatus intersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                    const AcGePlane& projPlane, AcGePoint3dArray& points,
                                    Adesk::GsMarker thisGsMarker = 0,
                                    Adesk::GsMarker otherGsMarker = 0) const {
        return subIntersectWith(ent, intType, projPlane, points, thisGsMarker, otherGsMarker);
    }
    void saveAs(AcGiWorldDraw* mode, AcDb::SaveType st) { subSaveAs(mode, st); }

    virtual void subList() const;
    virtual Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const;
    virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                               AcDbIntArray& geomIds) const;
    virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& pts) const;
    virtual Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset);
    virtual Acad::ErrorStatus
    subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker gsMarker, const AcGePoint3d& pickPoint,
                      const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewXform,
                      AcGePoint3dArray& snapPoints, AcDbIntArray& geomIds) const;
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform);
    virtual Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& xform,
                                                    AcDbEntity*& ent) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                               AcGePoint3dArray& points,
                                               Adesk::GsMarker thisGsMarker,
                                               Adesk::GsMarker otherGsMarker) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* ent, AcDb::Intersect intType,
                                               const AcGePlane& projPlane, AcGePoint3dArray& points,
                                               Adesk::GsMarker thisGsMarker,
                                               Adesk::GsMarker otherGsMarker) const;
    virtual void subSaveAs(AcGiWorldDraw* mode, AcDb::SaveType st);
    // Sets colour, layer, linetype and lineweight on the drawing traits.
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;

private:
    AcCmColor mColor;
    AcDbObjectId mLayer;
    AcDbObjectId mLinetype;
    AcDbObjectId mMaterial;
    double mLinetypeScale = 1.0;
    AcDb::LineWeight mLineWeight = AcDb::kLnWtByLayer;
    AcDb::Visibility mVisibility = AcDb::kVisible;
};

// ---------------------------------------------------------------- database

class AcDbDatabase : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbDatabase);

    // With buildDefaultDrawing, the database has its tables, the two spaces, layer "0",
    // the standard linetypes, text style and application, and the named-object dictionary.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    ~AcDbDatabase() override;
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;

    // Makes obj resident: gives it a handle and leaves it open for write.
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* obj);
    Acad::ErrorStatus addAcDbObject(AcDbObject* obj) {
        AcDbObjectId id;
        return addAcDbObject(id, obj);
    }
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound, const AcDbHandle& h);

    AcDbObjectId blockTableId() const { return mBlockTable; }
    AcDbObjectId layerTableId() const { return mLayerTable; }
    AcDbObjectId linetypeTableId() const { return mLinetypeTable; }
    AcDbObjectId textStyleTableId() const { return mTextStyleTable; }
    AcDbObjectId regAppTableId() const { return mRegAppTable; }
    AcDbObjectId namedObjectsDictionaryId() const { return mNamedObjects; }
    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table,
                                       AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& table,
                                        AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode = AcDb::kForRead);
    Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dict,
                                                AcDb::OpenMode mode = AcDb::kForRead);
    AcDbObjectId currentSpaceId() const;
    AcDbObjectId modelSpaceId() const;
    AcDbObjectId paperSpaceId() const;
    AcDbObjectId byLayerLinetype() const;
    AcDbObjectId byBlockLinetype() const;
    AcDbObjectId continuousLinetype() const;
    AcDbObjectId layerZero() const;

    // Header variables.
    AcDbObjectId clayer() const { return mHeader.clayer; }
    Acad::ErrorStatus setClayer(AcDbObjectId id);
    AcCmColor cecolor() const { return mHeader.cecolor; }
    Acad::ErrorStatus setCecolor(const AcCmColor& c);
    AcDbObjectId celtype() const { return mHeader.celtype; }
    Acad::ErrorStatus setCeltype(AcDbObjectId id);
    double celtscale() const { return mHeader.celtscale; }
    Acad::ErrorStatus setCeltscale(double s);
    double ltscale() const { return mHeader.ltscale; }
    Acad::ErrorStatus setLtscale(double s);
    AcDb::LineWeight celweight() const { return mHeader.celweight; }
    Acad::ErrorStatus setCelweight(AcDb::LineWeight w);
    AcDbObjectId textstyle() const { return mHeader.textstyle; }
    Acad::ErrorStatus setTextstyle(AcDbObjectId id);
    double textsize() const { return mHeader.textsize; }
    Acad::ErrorStatus setTextsize(double s);
    AcGePoint3d insbase() const { return mHeader.insbase; }
    Acad::ErrorStatus setInsbase(const AcGePoint3d& p);
    AcGePoint3d extmin() const { return mHeader.extmin; }
    AcGePoint3d extmax() const { return mHeader.extmax; }
    void setExtmin(const AcGePoint3d& p) { mHeader.extmin = p; }
    void setExtmax(const AcGePoint3d& p) { mHeader.extmax = p; }
    Adesk::Int16 insunits() const { return mHeader.insunits; }
    void setInsunits(Adesk::Int16 u) { mHeader.insunits = u; }
    AcDbHandle handseed() const { return AcDbHandle(mNextHandle); }
    // Extents of the visible model-space entities.
    Acad::ErrorStatus updateExt(bool bExact = false);

    // Drawing files (.qdb). Reading replaces the contents of a database made without a default
    // drawing.
    Acad::ErrorStatus readDwgFile(const ACHAR* fileName);
    Acad::ErrorStatus saveAs(const ACHAR* fileName);
    const ACHAR* originalFileName() const { return mFileName.c_str(); }
    // Why the last readDwgFile or saveAs failed, for the host's message.
    const std::wstring& lastError() const { return mLastError; }

    // Every handle in use with its object, in handle order (for the store and the exchange).
    std::vector<AcDbObjectId> allObjectIds() const;
    size_t numObjects() const { return mStubs.size(); }

private:
    friend class AcDbObject;
    struct Header {
        AcDbObjectId clayer, celtype, textstyle;
        AcCmColor cecolor;
        double celtscale = 1.0, ltscale = 1.0, textsize = 2.5;
        AcDb::LineWeight celweight = AcDb::kLnWtByLayer;
        AcGePoint3d insbase, extmin{1e20, 1e20, 1e20}, extmax{-1e20, -1e20, -1e20};
        Adesk::Int16 insunits = 0;
    };
    AcDbStub* stubFor(Adesk::UInt64 handle, bool create);
    void buildDefaultDrawing_();
    void clear();

    std::map<Adesk::UInt64, std::unique_ptr<AcDbStub>> mStubs;
    Adesk::UInt64 mNextHandle = 1;
    AcDbObjectId mBlockTable, mLayerTable, mLinetypeTable, mTextStyleTable, mRegAppTable,
        mNamedObjects;
    Header mHeader;
    std::wstring mFileName, mLastError;
};

// The host's services: the working database.
class AcDbHostApplicationServices {
public:
    AcDbDatabase* workingDatabase() const { return mWorking; }
    void setWorkingDatabase(AcDbDatabase* db) { mWorking = db; }

private:
    AcDbDatabase* mWorking = nullptr;
};
AcDbHostApplicationServices* acdbHostApplicationServices();
inline AcDbDatabase* acdbCurDwg() {
    return acdbHostApplicationServices()->workingDatabase();
}

// Makes a database the working one for the length of a scope, and puts the one before back at
// its end: names (layers, styles, linetypes) resolve in the working database.
class QorWorkingDatabase {
public:
    explicit QorWorkingDatabase(AcDbDatabase* db) : mWas(acdbCurDwg()) {
        acdbHostApplicationServices()->setWorkingDatabase(db);
    }
    ~QorWorkingDatabase() { acdbHostApplicationServices()->setWorkingDatabase(mWas); }
    QorWorkingDatabase(const QorWorkingDatabase&) = delete;
    QorWorkingDatabase& operator=(const QorWorkingDatabase&) = delete;

private:
    AcDbDatabase* mWas;
};
