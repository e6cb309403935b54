// Symbol tables, their records and iterators.
#include "dbsymtb.h"
#include "stub.h"

#include <cwchar>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, L"BLOCK_CONTROL")
ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, L"BLOCK_RECORD")
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, L"LAYER_CONTROL")
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, L"LAYER")
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, L"LTYPE_CONTROL")
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, L"LTYPE")
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable, L"STYLE_CONTROL")
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, L"STYLE")
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, L"APPID_CONTROL")
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, L"APPID")

namespace {

ACHAR* copyString(const std::wstring& s) {
    auto* out = new ACHAR[s.size() + 1];
    std::wmemcpy(out, s.c_str(), s.size() + 1);
    return out;
}

std::wstring readString(AcDbDwgFiler* filer) {
    ACHAR* s = nullptr;
    filer->readString(&s);
    std::wstring out = s ? s : L"";
    acdbFree(s);
    return out;
}

// Reads a list of ids written as a count and the ids; stops at the first filer error.
template <class IdKind> std::vector<AcDbObjectId> readIds(AcDbDwgFiler* filer) {
    std::vector<AcDbObjectId> ids;
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        IdKind id;
        if (filer->readHardOwnershipId(&id) != Acad::eOk) break;
        ids.push_back(id);
    }
    return ids;
}

void writeIds(AcDbDwgFiler* filer, const std::vector<AcDbObjectId>& ids) {
    filer->writeUInt32(static_cast<Adesk::UInt32>(ids.size()));
    for (const auto& id : ids)
        filer->writeHardOwnershipId(id);
}

} // namespace

// ---------------------------------------------------------------- tables

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id,
                                         bool getErased) const {
    assertReadEnabled();
    id.setNull();
    if (!name) return Acad::eInvalidInput;
    for (const auto& rid : mRecords) {
        if (rid.isErased() && !getErased) continue;
        const AcDbStub* s = rid.stub();
        auto* rec = s && s->object ? AcDbSymbolTableRecord::cast(s->object) : nullptr;
        if (rec && wcscasecmp(rec->name(), name) == 0) {
            id = rid;
            return Acad::eOk;
        }
    }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& rec,
                                         AcDb::OpenMode mode, bool openErased) const {
    rec = nullptr;
    AcDbObjectId id;
    if (Acad::ErrorStatus es = getAt(name, id, openErased); es != Acad::eOk) return es;
    return acdbOpenObject(rec, id, mode, openErased);
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    assertReadEnabled();
    for (const auto& rid : mRecords)
        if (rid == id && !rid.isErased()) return true;
    return false;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* rec) {
    AcDbObjectId id;
    return add(id, rec);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* rec) {
    if (!rec) return Acad::eNullObjectPointer;
    AcDbDatabase* db = database();
    if (!db) return Acad::eNotApplicable;
    if (!*rec->name()) return Acad::eInvalidSymbolTableName;
    if (has(rec->name())) return Acad::eDuplicateKey;
    assertWriteEnabled();
    if (Acad::ErrorStatus es = db->addAcDbObject(id, rec); es != Acad::eOk) return es;
    rec->setOwnerId(objectId());
    mRecords.push_back(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& it, bool atBeginning,
                                               bool skipDeleted) const {
    assertReadEnabled();
    it = new AcDbSymbolTableIterator(mRecords, skipDeleted);
    it->start(atBeginning, skipDeleted);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dwgOutFields(filer); es != Acad::eOk) return es;
    writeIds(filer, mRecords);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dwgInFields(filer); es != Acad::eOk) return es;
    mRecords = readIds<AcDbHardOwnershipId>(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTable::getAt(const ACHAR* name, AcDbBlockTableRecord*& rec,
                                        AcDb::OpenMode mode, bool openErased) const {
    rec = nullptr;
    AcDbObjectId id;
    if (Acad::ErrorStatus es = AcDbSymbolTable::getAt(name, id, openErased); es != Acad::eOk)
        return es;
    return acdbOpenObject(rec, id, mode, openErased);
}

// ---------------------------------------------------------------- iterators

AcDbSymbolTableIterator::AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids, bool skipDeleted)
    : mIds(std::move(ids)), mSkipDeleted(skipDeleted) {}

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex = atBeginning ? 0 : static_cast<long long>(mIds.size()) - 1;
    skip(atBeginning);
}

bool AcDbSymbolTableIterator::done() const {
    return mIndex < 0 || mIndex >= static_cast<long long>(mIds.size());
}

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex += forward ? 1 : -1;
    skip(forward);
}

void AcDbSymbolTableIterator::skip(bool forward) {
    while (mSkipDeleted && !done() && mIds[static_cast<size_t>(mIndex)].isErased())
        mIndex += forward ? 1 : -1;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
    if (done()) return Acad::eInvalidIndex;
    id = mIds[static_cast<size_t>(mIndex)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& rec,
                                                     AcDb::OpenMode mode, bool openErased) const {
    rec = nullptr;
    if (done()) return Acad::eInvalidIndex;
    return acdbOpenObject(rec, mIds[static_cast<size_t>(mIndex)], mode, openErased);
}

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids,
                                                           bool skipDeleted)
    : mIds(std::move(ids)), mSkipDeleted(skipDeleted) {}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex = atBeginning ? 0 : static_cast<long long>(mIds.size()) - 1;
    skip(atBeginning);
}

bool AcDbBlockTableRecordIterator::done() const {
    return mIndex < 0 || mIndex >= static_cast<long long>(mIds.size());
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex += forward ? 1 : -1;
    skip(forward);
}

void AcDbBlockTableRecordIterator::skip(bool forward) {
    while (mSkipDeleted && !done() && mIds[static_cast<size_t>(mIndex)].isErased())
        mIndex += forward ? 1 : -1;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
    if (done()) return Acad::eInvalidIndex;
    id = mIds[static_cast<size_t>(mIndex)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& ent, AcDb::OpenMode mode,
                                                          bool openErased) const {
    ent = nullptr;
    if (done()) return Acad::eInvalidIndex;
    return acdbOpenObject(ent, mIds[static_cast<size_t>(mIndex)], mode, openErased);
}

// ---------------------------------------------------------------- records

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
    assertReadEnabled();
    name = copyString(mName);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
    assertReadEnabled();
    name = mName.c_str();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
    if (!name || !*name) return Acad::eInvalidSymbolTableName;
    assertWriteEnabled();
    mName = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(mName.c_str());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dwgInFields(filer); es != Acad::eOk) return es;
    mName = readString(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* ent) {
    AcDbObjectId id;
    return appendAcDbEntity(id, ent);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* ent) {
    if (!ent) return Acad::eNullEntityPointer;
    AcDbDatabase* db = database();
    if (!db) return Acad::eNotApplicable;
    if (!ent->objectId().isNull()) return Acad::eAlreadyInDb;
    assertWriteEnabled();
    if (Acad::ErrorStatus es = db->addAcDbObject(id, ent); es != Acad::eOk) return es;
    // Entities made outside this database take its current layer and linetype.
    if (ent->layerId().database() != db) ent->setLayer(db->clayer());
    if (ent->linetypeId().database() != db) ent->setLinetype(db->byLayerLinetype());
    ent->setOwnerId(objectId());
    mEntities.push_back(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& it,
                                                    bool atBeginning, bool skipDeleted) const {
    assertReadEnabled();
    it = new AcDbBlockTableRecordIterator(mEntities, skipDeleted);
    it->start(atBeginning, skipDeleted);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& p) {
    assertWriteEnabled();
    mOrigin = p;
    return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
    return wcscasecmp(name(), ACDB_MODEL_SPACE) == 0 ||
           wcsncasecmp(name(), ACDB_PAPER_SPACE, 12) == 0;
}

bool AcDbBlockTableRecord::isAnonymous() const {
    return name()[0] == L'*' && !isLayout();
}

Acad::ErrorStatus AcDbBlockTableRecord::setComments(const ACHAR* s) {
    assertWriteEnabled();
    mComments = s ? s : L"";
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgOutFields(filer); es != Acad::eOk)
        return es;
    filer->writePoint3d(mOrigin);
    filer->writeString(mComments.c_str());
    writeIds(filer, mEntities);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgInFields(filer); es != Acad::eOk)
        return es;
    filer->readPoint3d(&mOrigin);
    mComments = readString(filer);
    mEntities = readIds<AcDbHardOwnershipId>(filer);
    return filer->filerStatus();
}

void AcDbLayerTableRecord::setColor(const AcCmColor& c) {
    assertWriteEnabled();
    mColor = c;
}

void AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId id) {
    assertWriteEnabled();
    mLinetype = id;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight w) {
    assertWriteEnabled();
    mLineWeight = w;
    return Acad::eOk;
}

void AcDbLayerTableRecord::setIsOff(bool v) {
    assertWriteEnabled();
    mOff = v;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool v) {
    assertWriteEnabled();
    mFrozen = v;
    return Acad::eOk;
}

void AcDbLayerTableRecord::setIsLocked(bool v) {
    assertWriteEnabled();
    mLocked = v;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool v) {
    assertWriteEnabled();
    mPlottable = v;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgOutFields(filer); es != Acad::eOk)
        return es;
    filer->writeUInt32(mColor.color());
    filer->writeHardPointerId(mLinetype);
    filer->writeInt16(static_cast<Adesk::Int16>(mLineWeight));
    filer->writeUInt8(static_cast<Adesk::UInt8>((mOff ? 1 : 0) | (mFrozen ? 2 : 0) |
                                                (mLocked ? 4 : 0) | (mPlottable ? 8 : 0)));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgInFields(filer); es != Acad::eOk)
        return es;
    Adesk::UInt32 color = 0;
    AcDbHardPointerId ltype;
    Adesk::Int16 weight = 0;
    Adesk::UInt8 flags = 0;
    filer->readUInt32(&color);
    filer->readHardPointerId(&ltype);
    filer->readInt16(&weight);
    filer->readUInt8(&flags);
    mColor.setColor(color);
    mLinetype = ltype;
    mLineWeight = static_cast<AcDb::LineWeight>(weight);
    mOff = flags & 1, mFrozen = flags & 2, mLocked = flags & 4, mPlottable = flags & 8;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* s) {
    assertWriteEnabled();
    mComments = s ? s : L"";
    return Acad::eOk;
}

void AcDbLinetypeTableRecord::setNumDashes(int n) {
    assertWriteEnabled();
    if (n >= 0 && n <= 12) mDashes.resize(static_cast<size_t>(n), 0.0);
}

double AcDbLinetypeTableRecord::dashLengthAt(int i) const {
    return i >= 0 && i < numDashes() ? mDashes[static_cast<size_t>(i)] : 0.0;
}

void AcDbLinetypeTableRecord::setDashLengthAt(int i, double length) {
    assertWriteEnabled();
    if (i >= 0 && i < numDashes()) mDashes[static_cast<size_t>(i)] = length;
}

double AcDbLinetypeTableRecord::patternLength() const {
    double total = 0.0;
    for (double d : mDashes)
        total += d < 0 ? -d : d;
    return total;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgOutFields(filer); es != Acad::eOk)
        return es;
    filer->writeString(mComments.c_str());
    filer->writeUInt32(static_cast<Adesk::UInt32>(mDashes.size()));
    for (double d : mDashes)
        filer->writeDouble(d);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgInFields(filer); es != Acad::eOk)
        return es;
    mComments = readString(filer);
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    mDashes.clear();
    for (Adesk::UInt32 i = 0; i < n && i < 12 && filer->filerStatus() == Acad::eOk; ++i) {
        double d = 0.0;
        filer->readDouble(&d);
        mDashes.push_back(d);
    }
    if (n > 12) filer->setFilerStatus(Acad::eFilerError);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbTextStyleTableRecord::fileName(ACHAR*& s) const {
    s = copyString(mFileName);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* s) {
    assertWriteEnabled();
    mFileName = s ? s : L"";
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::bigFontFileName(ACHAR*& s) const {
    s = copyString(mBigFont);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setBigFontFileName(const ACHAR* s) {
    assertWriteEnabled();
    mBigFont = s ? s : L"";
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double s) {
    if (s < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mTextSize = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double s) {
    if (!(s > 0.0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mXScale = s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setObliquingAngle(double a) {
    assertWriteEnabled();
    mOblique = a;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFont(const ACHAR* typeface, bool bold, bool italic,
                                                    int charset, int pitchAndFamily) {
    assertWriteEnabled();
    mTypeface = typeface ? typeface : L"";
    mBold = bold, mItalic = italic, mCharset = charset, mPitch = pitchAndFamily;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::font(ACHAR*& typeface, bool& bold, bool& italic,
                                                 int& charset, int& pitchAndFamily) const {
    typeface = copyString(mTypeface);
    bold = mBold, italic = mItalic, charset = mCharset, pitchAndFamily = mPitch;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgOutFields(filer); es != Acad::eOk)
        return es;
    filer->writeString(mFileName.c_str());
    filer->writeString(mBigFont.c_str());
    filer->writeString(mTypeface.c_str());
    filer->writeDouble(mTextSize);
    filer->writeDouble(mXScale);
    filer->writeDouble(mOblique);
    filer->writeBool(mBold);
    filer->writeBool(mItalic);
    filer->writeInt32(mCharset);
    filer->writeInt32(mPitch);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbSymbolTableRecord::dwgInFields(filer); es != Acad::eOk)
        return es;
    mFileName = readString(filer);
    mBigFont = readString(filer);
    mTypeface = readString(filer);
    filer->readDouble(&mTextSize);
    filer->readDouble(&mXScale);
    filer->readDouble(&mOblique);
    filer->readBool(&mBold);
    filer->readBool(&mItalic);
    Adesk::Int32 charset = 0, pitch = 0;
    filer->readInt32(&charset);
    filer->readInt32(&pitch);
    mCharset = charset, mPitch = pitch;
    return filer->filerStatus();
}

int acdbRegApp(const ACHAR* appName) {
    AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
    if (!db || !appName || !*appName) return RTERROR;
    AcDbRegAppTable* table = nullptr;
    if (db->getRegAppTable(table, AcDb::kForWrite) != Acad::eOk) return RTERROR;
    int result = RTNORM;
    if (!table->has(appName)) {
        auto* rec = new AcDbRegAppTableRecord();
        rec->setName(appName);
        if (table->add(rec) == Acad::eOk)
            rec->close();
        else {
            delete rec;
            result = RTERROR;
        }
    }
    table->close();
    return result;
}
