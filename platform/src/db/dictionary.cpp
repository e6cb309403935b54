// Dictionaries and extended records.
#include "dbdict.h"
#include "rbfiling.h"
#include "stub.h"

#include <cstring>
#include <cwchar>

ACRX_CONS_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, L"DICTIONARY")
ACRX_CONS_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, L"XRECORD")

long long AcDbDictionary::indexOf(const ACHAR* key) const {
    if (!key) return -1;
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (wcscasecmp(mEntries[i].first.c_str(), key) == 0) return static_cast<long long>(i);
    return -1;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObjectId& id) const {
    assertReadEnabled();
    long long i = indexOf(key);
    if (i < 0 || mEntries[static_cast<size_t>(i)].second.isErased()) {
        id.setNull();
        return Acad::eKeyNotFound;
    }
    id = mEntries[static_cast<size_t>(i)].second;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObject*& obj,
                                        AcDb::OpenMode mode) const {
    obj = nullptr;
    AcDbObjectId id;
    if (Acad::ErrorStatus es = getAt(key, id); es != Acad::eOk) return es;
    return acdbOpenObject(obj, id, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, ACHAR*& name) const {
    assertReadEnabled();
    name = nullptr;
    for (const auto& [key, entry] : mEntries)
        if (entry == id) {
            name = new ACHAR[key.size() + 1];
            std::wmemcpy(name, key.c_str(), key.size() + 1);
            return Acad::eOk;
        }
    return Acad::eKeyNotFound;
}

bool AcDbDictionary::has(const ACHAR* key) const {
    AcDbObjectId id;
    return getAt(key, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
    assertReadEnabled();
    for (const auto& entry : mEntries)
        if (entry.second == id) return true;
    return false;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* key, AcDbObject* obj, AcDbObjectId& id) {
    if (!key || !*key) return Acad::eInvalidKey;
    if (!obj) return Acad::eNullObjectPointer;
    AcDbDatabase* db = database();
    if (!db) return Acad::eNotApplicable;
    assertWriteEnabled();
    if (obj->objectId().isNull()) {
        if (Acad::ErrorStatus es = db->addAcDbObject(id, obj); es != Acad::eOk) return es;
    } else {
        id = obj->objectId();
    }
    obj->setOwnerId(objectId());
    // A key already present is re-pointed; its old object is erased, as drawings expect.
    long long i = indexOf(key);
    if (i >= 0) {
        AcDbObjectId old = mEntries[static_cast<size_t>(i)].second;
        if (old != id && old.stub()) old.stub()->erased = true;
        mEntries[static_cast<size_t>(i)].second = id;
    } else {
        mEntries.emplace_back(key, id);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key) {
    AcDbObjectId removed;
    return remove(key, removed);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key, AcDbObjectId& removed) {
    long long i = indexOf(key);
    if (i < 0) return Acad::eKeyNotFound;
    assertWriteEnabled();
    removed = mEntries[static_cast<size_t>(i)].second;
    mEntries.erase(mEntries.begin() + i);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i].second == id) {
            assertWriteEnabled();
            mEntries.erase(mEntries.begin() + static_cast<long long>(i));
            return Acad::eOk;
        }
    return Acad::eKeyNotFound;
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
    assertReadEnabled();
    std::vector<std::pair<std::wstring, AcDbObjectId>> live;
    for (const auto& e : mEntries)
        if (!e.second.isErased()) live.push_back(e);
    return new AcDbDictionaryIterator(std::move(live));
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeUInt32(static_cast<Adesk::UInt32>(mEntries.size()));
    for (const auto& [key, id] : mEntries) {
        filer->writeString(key.c_str());
        filer->writeHardOwnershipId(id);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dwgInFields(filer); es != Acad::eOk) return es;
    mEntries.clear();
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        ACHAR* key = nullptr;
        AcDbHardOwnershipId id;
        filer->readString(&key);
        filer->readHardOwnershipId(&id);
        if (filer->filerStatus() == Acad::eOk) mEntries.emplace_back(key ? key : L"", id);
        acdbFree(key);
    }
    return filer->filerStatus();
}

AcDbDictionaryIterator::AcDbDictionaryIterator(
    std::vector<std::pair<std::wstring, AcDbObjectId>> entries)
    : mEntries(std::move(entries)) {}

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& obj, AcDb::OpenMode mode) const {
    obj = nullptr;
    if (done()) return Acad::eInvalidIndex;
    return acdbOpenObject(obj, mEntries[mIndex].second, mode);
}

// ---------------------------------------------------------------- extended records

AcDbXrecord::AcDbXrecord() = default;

AcDbXrecord::~AcDbXrecord() {
    acutRelRb(mChain);
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** chain, AcDbDatabase*) const {
    assertReadEnabled();
    if (!chain) return Acad::eInvalidInput;
    *chain = acutCopyRbChain(mChain);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& chain, AcDbDatabase*) {
    assertWriteEnabled();
    acutRelRb(mChain);
    mChain = acutCopyRbChain(&chain);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbObject::dwgOutFields(filer); es != Acad::eOk) return es;
    return acdbWriteRbChain(filer, mChain);
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbObject::dwgInFields(filer); es != Acad::eOk) return es;
    acutRelRb(mChain);
    mChain = nullptr;
    return acdbReadRbChain(filer, mChain);
}
