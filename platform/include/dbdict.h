// Dictionaries and extended records.
#pragma once

#include "dbmain.h"

#include <string>
#include <utility>
#include <vector>

class AcDbDictionaryIterator;

// Named entries owned by the dictionary, in insertion order; names compare without regard to case.
class AcDbDictionary : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbDictionary);

    Acad::ErrorStatus getAt(const ACHAR* key, AcDbObject*& obj, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getAt(const ACHAR* key, AcDbObjectId& id) const;
    Acad::ErrorStatus nameAt(AcDbObjectId id, ACHAR*& name) const;
    bool has(const ACHAR* key) const;
    bool has(AcDbObjectId id) const;
    Adesk::UInt32 numEntries() const { return static_cast<Adesk::UInt32>(mEntries.size()); }
    // Makes a new object resident, owned by the dictionary (an object already resident is
    // re-owned).
    Acad::ErrorStatus setAt(const ACHAR* key, AcDbObject* obj, AcDbObjectId& id);
    Acad::ErrorStatus remove(const ACHAR* key);
    Acad::ErrorStatus remove(const ACHAR* key, AcDbObjectId& removed);
    Acad::ErrorStatus remove(AcDbObjectId id);
    AcDbDictionaryIterator* newIterator() const;
    const std::vector<std::pair<std::wstring, AcDbObjectId>>& entries() const { return mEntries; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    long long indexOf(const ACHAR* key) const;
    std::vector<std::pair<std::wstring, AcDbObjectId>> mEntries;
};

class AcDbDictionaryIterator {
public:
    explicit AcDbDictionaryIterator(std::vector<std::pair<std::wstring, AcDbObjectId>> entries);
    bool done() const { return mIndex >= mEntries.size(); }
    bool next() {
        ++mIndex;
        return !done();
    }
    const ACHAR* name() const { return mEntries[mIndex].first.c_str(); }
    AcDbObjectId objectId() const { return mEntries[mIndex].second; }
    Acad::ErrorStatus getObject(AcDbObject*& obj, AcDb::OpenMode mode) const;

private:
    std::vector<std::pair<std::wstring, AcDbObjectId>> mEntries;
    size_t mIndex = 0;
};

// A record of tagged values (a result-buffer chain).
class AcDbXrecord : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbXrecord);
    AcDbXrecord();
    ~AcDbXrecord() override;
    AcDbXrecord(const AcDbXrecord&) = delete;
    AcDbXrecord& operator=(const AcDbXrecord&) = delete;

    // A copy of the chain, owned by the caller.
    Acad::ErrorStatus rbChain(resbuf** chain, AcDbDatabase* db = nullptr) const;
    Acad::ErrorStatus setFromRbChain(const resbuf& chain, AcDbDatabase* db = nullptr);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    resbuf* mChain = nullptr;
};

// Copies a result-buffer chain with its strings and chunks.
resbuf* acutCopyRbChain(const resbuf* chain);
