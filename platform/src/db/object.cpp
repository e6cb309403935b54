// Objects: identity, the open/close protocol, erasing, extended data and base filing.
#include "dbdict.h"
#include "dbfilers.h"
#include "dbmain.h"
#include "rbfiling.h"
#include "stub.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)

namespace {

int gViolations = 0;

void reportViolation(const AcDbObject* obj, const char* what) {
    // Reported once: a protocol slip in a loop would otherwise flood the terminal.
    if (gViolations++ == 0)
        std::fprintf(stderr, "warning: %ls %s (handle %llX)\n", obj->isA()->name(), what,
                     static_cast<unsigned long long>(obj->handle().value()));
}

} // namespace

int acdbOpenViolationCount() {
    return gViolations;
}

AcDbObject::AcDbObject() = default;

AcDbObject::~AcDbObject() {
    acutRelRb(mXData);
    // A resident object deleted by its owner's database leaves its stub without an object.
    if (AcDbStub* s = mId.stub(); s && s->object == this) s->object = nullptr;
}

AcDbObject::AcDbObject(const AcDbObject& other)
    : AcGiDrawable(other), mXData(acutCopyRbChain(other.mXData)) {}

AcDbObject& AcDbObject::operator=(const AcDbObject& other) {
    if (this != &other) {
        acutRelRb(mXData);
        mXData = acutCopyRbChain(other.mXData);
    }
    return *this;
}

AcDbDatabase* AcDbObject::database() const {
    return mId.database();
}

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
    mOwner = owner;
    return Acad::eOk;
}

// ---------------------------------------------------------------- open/close

bool AcDbObject::isReadEnabled() const {
    return mId.isNull() || mOpenMode != AcDb::kNotOpen;
}
bool AcDbObject::isWriteEnabled() const {
    return mId.isNull() || mOpenMode == AcDb::kForWrite;
}
bool AcDbObject::isErased() const {
    return mId.isErased();
}

void AcDbObject::assertReadEnabled() const {
    if (!isReadEnabled()) reportViolation(this, "read while not open");
}

void AcDbObject::assertWriteEnabled(bool, bool recordModified) {
    if (!isWriteEnabled()) reportViolation(this, "changed while not open for write");
    if (recordModified) mModified = true;
}

Acad::ErrorStatus AcDbObject::close() {
    if (mId.isNull()) return Acad::eOk;
    if (mOpenMode == AcDb::kForRead && --mReaders > 0) return Acad::eOk;
    mReaders = 0;
    mOpenMode = AcDb::kNotOpen;
    mNew = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    if (mOpenMode == AcDb::kForWrite) return Acad::eWasOpenForWrite;
    if (mOpenMode != AcDb::kForRead) return Acad::eNotOpenForRead;
    if (mReaders > 1) return Acad::eWasOpenForRead;
    mOpenMode = AcDb::kForWrite;
    mReaders = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    if (mOpenMode != AcDb::kForWrite) return Acad::eNotOpenForWrite;
    mOpenMode = AcDb::kForRead;
    mReaders = 1;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    if (mId.isNull()) return Acad::eNotApplicable;
    assertWriteEnabled();
    mId.stub()->erased = erasing;
    return Acad::eOk;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    obj = nullptr;
    AcDbStub* s = id.stub();
    if (!s) return Acad::eNullObjectId;
    if (!s->object) return Acad::eUnknownHandle;
    if (s->erased && !openErased) return Acad::eWasErased;
    AcDbObject* o = s->object;
    if (mode == AcDb::kForWrite) {
        if (o->mOpenMode == AcDb::kForWrite) return Acad::eWasOpenForWrite;
        if (o->mOpenMode == AcDb::kForRead) return Acad::eWasOpenForRead;
        o->mOpenMode = AcDb::kForWrite;
    } else if (mode == AcDb::kForRead) {
        if (o->mOpenMode == AcDb::kForWrite) return Acad::eWasOpenForWrite;
        o->mOpenMode = AcDb::kForRead;
        ++o->mReaders;
    } else {
        return Acad::eInvalidOpenState;
    }
    obj = o;
    return Acad::eOk;
}

Acad::ErrorStatus acdbOpenObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased) {
    return acdbOpenAcDbObject(obj, id, mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& ent, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    return acdbOpenObject(ent, id, mode, openErased);
}

Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id) {
    name[0] = reinterpret_cast<Adesk::IntPtr>(id.stub());
    name[1] = 0;
    return id.isNull() ? Acad::eNullObjectId : Acad::eOk;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    id = AcDbObjectId(reinterpret_cast<AcDbStub*>(name[0]));
    return id.isNull() ? Acad::eNullObjectId : Acad::eOk;
}

// ---------------------------------------------------------------- extension dictionary

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
    if (!mExtDict.isNull()) return Acad::eAlreadyInDb;
    AcDbDatabase* db = database();
    if (!db) return Acad::eNotApplicable;
    auto* dict = new AcDbDictionary();
    AcDbObjectId id;
    if (Acad::ErrorStatus es = db->addAcDbObject(id, dict); es != Acad::eOk) {
        delete dict;
        return es;
    }
    dict->setOwnerId(mId);
    dict->close();
    assertWriteEnabled();
    mExtDict = id;
    return Acad::eOk;
}

// ---------------------------------------------------------------- extended data

namespace {

bool isAppItem(const resbuf* rb) {
    return rb->restype == AcDb::kDxfRegAppName;
}

bool sameName(const ACHAR* a, const ACHAR* b) {
    return a && b && wcscasecmp(a, b) == 0;
}

} // namespace

resbuf* AcDbObject::xData(const ACHAR* regappName) const {
    assertReadEnabled();
    if (!regappName) return acutCopyRbChain(mXData);
    for (const resbuf* rb = mXData; rb; rb = rb->rbnext) {
        if (!isAppItem(rb) || !sameName(rb->resval.rstring, regappName)) continue;
        // Copy this application's section: its 1001 item up to the next one.
        resbuf* head = nullptr;
        resbuf** tail = &head;
        for (const resbuf* p = rb; p && (p == rb || !isAppItem(p)); p = p->rbnext) {
            resbuf one = *p;
            one.rbnext = nullptr;
            *tail = acutCopyRbChain(&one);
            tail = &(*tail)->rbnext;
        }
        return head;
    }
    return nullptr;
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* xdata) {
    assertWriteEnabled();
    if (!xdata || !isAppItem(xdata) || !xdata->resval.rstring) return Acad::eInvalidInput;
    // Drop the application's old section, keep everyone else's.
    resbuf* kept = nullptr;
    resbuf** tail = &kept;
    bool skipping = false;
    for (resbuf* rb = mXData; rb;) {
        resbuf* next = rb->rbnext;
        if (isAppItem(rb)) skipping = sameName(rb->resval.rstring, xdata->resval.rstring);
        if (skipping) {
            rb->rbnext = nullptr;
            acutRelRb(rb);
        } else {
            *tail = rb;
            tail = &rb->rbnext;
            rb->rbnext = nullptr;
        }
        rb = next;
    }
    // A lone application item removes the application's data.
    if (xdata->rbnext) *tail = acutCopyRbChain(xdata);
    mXData = kept;
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    acdbWriteRbChain(filer, mXData);
    filer->writeHardOwnershipId(mExtDict);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    acutRelRb(mXData);
    mXData = nullptr;
    acdbReadRbChain(filer, mXData);
    AcDbHardOwnershipId dict;
    filer->readHardOwnershipId(&dict);
    mExtDict = dict;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    return filer->filerStatus();
}

// ---------------------------------------------------------------- copying

AcRxObject* AcDbObject::clone() const {
    // A copy is the object filed out and read back into a fresh instance of its class,
    // so every class copies exactly what it files. The copy is not in any database.
    AcRxObject* made = isA()->create();
    AcDbObject* copy = AcDbObject::cast(made);
    if (!copy) {
        delete made;
        return nullptr;
    }
    AcDbDatabase* db = database();
    AcDbStreamDwgFiler out(db);
    out.setFilerType(AcDb::kCopyFiler);
    if (dwgOutFields(&out) != Acad::eOk) {
        delete copy;
        return nullptr;
    }
    auto resolve = [db](AcDbHandle h) {
        AcDbObjectId id;
        if (db) db->getAcDbObjectId(id, false, h);
        return id;
    };
    AcDbStreamDwgFiler in(out.bytes(), resolve, db);
    in.setFilerType(AcDb::kCopyFiler);
    if (copy->dwgInFields(&in) != Acad::eOk) {
        delete copy;
        return nullptr;
    }
    return copy;
}
