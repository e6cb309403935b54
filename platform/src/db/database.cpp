// The database: handles and stubs, the default drawing, header variables and object ownership.
#include "dbdict.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "stub.h"

#include <cwchar>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static AcDbHostApplicationServices services;
    return &services;
}

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) {
    if (buildDefaultDrawing) buildDefaultDrawing_();
}

AcDbDatabase::~AcDbDatabase() {
    clear();
    if (acdbHostApplicationServices()->workingDatabase() == this)
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

void AcDbDatabase::clear() {
    for (auto& [handle, stub] : mStubs) {
        AcDbObject* obj = stub->object;
        stub->object = nullptr;
        if (obj) {
            obj->mId.setNull(); // so the destructor does not touch the stub
            delete obj;
        }
    }
    mStubs.clear();
    mNextHandle = 1;
    mBlockTable = mLayerTable = mLinetypeTable = mTextStyleTable = mRegAppTable = mNamedObjects =
        AcDbObjectId();
    mHeader = Header();
}

AcDbStub* AcDbDatabase::stubFor(Adesk::UInt64 handle, bool create) {
    if (handle == 0) return nullptr;
    auto it = mStubs.find(handle);
    if (it != mStubs.end()) return it->second.get();
    if (!create) return nullptr;
    auto stub = std::make_unique<AcDbStub>();
    stub->database = this;
    stub->handle = handle;
    AcDbStub* raw = stub.get();
    mStubs.emplace(handle, std::move(stub));
    if (handle >= mNextHandle) mNextHandle = handle + 1;
    return raw;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& h) {
    id = AcDbObjectId(stubFor(h.value(), createIfNotFound));
    return id.isNull() ? Acad::eUnknownHandle : Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* obj) {
    if (!obj) return Acad::eNullObjectPointer;
    if (!obj->mId.isNull()) return Acad::eAlreadyInDb;
    AcDbStub* stub = stubFor(mNextHandle, true);
    stub->object = obj;
    obj->mId = AcDbObjectId(stub);
    obj->mOpenMode = AcDb::kForWrite;
    obj->mReaders = 0;
    obj->mNew = true;
    id = obj->mId;
    return Acad::eOk;
}

std::vector<AcDbObjectId> AcDbDatabase::allObjectIds() const {
    std::vector<AcDbObjectId> ids;
    ids.reserve(mStubs.size());
    for (const auto& [handle, stub] : mStubs)
        if (stub->object) ids.emplace_back(stub.get());
    return ids;
}

// ---------------------------------------------------------------- default drawing

namespace {

template <class Table> AcDbObjectId addTable(AcDbDatabase* db, AcDbObjectId owner) {
    auto* table = new Table();
    AcDbObjectId id;
    db->addAcDbObject(id, table);
    table->setOwnerId(owner);
    table->close();
    return id;
}

AcDbObjectId addRecord(AcDbObjectId tableId, AcDbSymbolTableRecord* rec) {
    AcDbSymbolTable* table = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) {
        delete rec;
        return id;
    }
    if (table->add(id, rec) == Acad::eOk)
        rec->close();
    else
        delete rec;
    table->close();
    return id;
}

} // namespace

void AcDbDatabase::buildDefaultDrawing_() {
    auto* nod = new AcDbDictionary();
    addAcDbObject(mNamedObjects, nod);
    nod->close();
    mBlockTable = addTable<AcDbBlockTable>(this, AcDbObjectId());
    mLayerTable = addTable<AcDbLayerTable>(this, AcDbObjectId());
    mLinetypeTable = addTable<AcDbLinetypeTable>(this, AcDbObjectId());
    mTextStyleTable = addTable<AcDbTextStyleTable>(this, AcDbObjectId());
    mRegAppTable = addTable<AcDbRegAppTable>(this, AcDbObjectId());

    for (const ACHAR* name : {L"ByBlock", L"ByLayer", L"Continuous"}) {
        auto* ltype = new AcDbLinetypeTableRecord();
        ltype->setName(name);
        const bool continuous = std::wcscmp(name, L"Continuous") == 0;
        if (continuous) ltype->setComments(L"Solid line");
        AcDbObjectId id = addRecord(mLinetypeTable, ltype);
        if (std::wcscmp(name, L"ByLayer") == 0) mHeader.celtype = id;
    }
    auto* layer0 = new AcDbLayerTableRecord();
    layer0->setName(L"0");
    AcCmColor white;
    white.setColorIndex(7);
    layer0->setColor(white);
    layer0->setLinetypeObjectId(continuousLinetype());
    mHeader.clayer = addRecord(mLayerTable, layer0);

    auto* standard = new AcDbTextStyleTableRecord();
    standard->setName(L"Standard");
    standard->setFileName(L"txt");
    mHeader.textstyle = addRecord(mTextStyleTable, standard);

    auto* acad = new AcDbRegAppTableRecord();
    acad->setName(L"ACAD");
    addRecord(mRegAppTable, acad);

    for (const ACHAR* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
        auto* btr = new AcDbBlockTableRecord();
        btr->setName(name);
        addRecord(mBlockTable, btr);
    }
}

namespace {

AcDbObjectId recordId(AcDbObjectId tableId, const ACHAR* name) {
    AcDbSymbolTable* table = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(table, tableId, AcDb::kForRead) != Acad::eOk) return id;
    table->getAt(name, id);
    table->close();
    return id;
}

} // namespace

AcDbObjectId AcDbDatabase::modelSpaceId() const {
    return recordId(mBlockTable, ACDB_MODEL_SPACE);
}
AcDbObjectId AcDbDatabase::paperSpaceId() const {
    return recordId(mBlockTable, ACDB_PAPER_SPACE);
}
AcDbObjectId AcDbDatabase::currentSpaceId() const {
    return modelSpaceId();
}
AcDbObjectId AcDbDatabase::byLayerLinetype() const {
    return recordId(mLinetypeTable, L"ByLayer");
}
AcDbObjectId AcDbDatabase::byBlockLinetype() const {
    return recordId(mLinetypeTable, L"ByBlock");
}
AcDbObjectId AcDbDatabase::continuousLinetype() const {
    return recordId(mLinetypeTable, L"Continuous");
}
AcDbObjectId AcDbDatabase::layerZero() const {
    return recordId(mLayerTable, L"0");
}

namespace {

template <class T> Acad::ErrorStatus openTable(AcDbObjectId id, T*& out, AcDb::OpenMode mode) {
    return acdbOpenObject(out, id, mode);
}

} // namespace

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& t, AcDb::OpenMode m) {
    return openTable(mBlockTable, t, m);
}
Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& t, AcDb::OpenMode m) {
    return openTable(mLayerTable, t, m);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& t, AcDb::OpenMode m) {
    return openTable(mLinetypeTable, t, m);
}
Acad::ErrorStatus AcDbDatabase::getTextStyleTable(AcDbTextStyleTable*& t, AcDb::OpenMode m) {
    return openTable(mTextStyleTable, t, m);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& t, AcDb::OpenMode m) {
    return openTable(mRegAppTable, t, m);
}
Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
    return openTable(mNamedObjects, d, m);
}

// ---------------------------------------------------------------- header variables

namespace {

bool belongsTo(AcDbObjectId id, AcDbDatabase* db) {
    return !id.isNull() && id.database() == db;
}

} // namespace

Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId id) {
    if (!belongsTo(id, this)) return Acad::eInvalidInput;
    mHeader.clayer = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& c) {
    mHeader.cecolor = c;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId id) {
    if (!belongsTo(id, this)) return Acad::eInvalidInput;
    mHeader.celtype = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setCeltscale(double s) {
    if (!(s > 0.0)) return Acad::eInvalidInput;
    mHeader.celtscale = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setLtscale(double s) {
    if (!(s > 0.0)) return Acad::eInvalidInput;
    mHeader.ltscale = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setCelweight(AcDb::LineWeight w) {
    mHeader.celweight = w;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId id) {
    if (!belongsTo(id, this)) return Acad::eInvalidInput;
    mHeader.textstyle = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setTextsize(double s) {
    if (!(s > 0.0)) return Acad::eInvalidInput;
    mHeader.textsize = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setInsbase(const AcGePoint3d& p) {
    mHeader.insbase = p;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::updateExt(bool) {
    AcDbExtents ext;
    AcDbBlockTableRecord* ms = nullptr;
    if (Acad::ErrorStatus es = acdbOpenObject(ms, modelSpaceId(), AcDb::kForRead); es != Acad::eOk)
        return es;
    for (AcDbObjectId id : ms->entityIds()) {
        AcDbEntity* ent = nullptr;
        if (acdbOpenObject(ent, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents e;
        if (ent->visibility() == AcDb::kVisible && ent->getGeomExtents(e) == Acad::eOk)
            ext.addExt(e);
        ent->close();
    }
    ms->close();
    mHeader.extmin = ext.minPoint();
    mHeader.extmax = ext.maxPoint();
    return ext.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}
