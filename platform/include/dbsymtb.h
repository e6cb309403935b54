// Symbol tables and their records, dictionaries and extended records.
#pragma once

#include "dbmain.h"

#include <string>
#include <vector>

class AcDbSymbolTableRecord;
class AcDbSymbolTableIterator;
class AcDbBlockTableRecordIterator;

// Named records in insertion order. Names compare without regard to case, as in drawings.
class AcDbSymbolTable : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTable);

    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id,
                            bool getErasedRecord = false) const;
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& rec, AcDb::OpenMode mode,
                            bool openErasedRec = false) const;
    bool has(const ACHAR* name) const;
    bool has(AcDbObjectId id) const;
    // Makes the record resident, owned by this table; it stays open for write.
    Acad::ErrorStatus add(AcDbSymbolTableRecord* rec);
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* rec);
    Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& it, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    const std::vector<AcDbObjectId>& recordIds() const { return mRecords; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    std::vector<AcDbObjectId> mRecords;
};

class AcDbSymbolTableIterator {
public:
    explicit AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const;
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
    Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& rec, AcDb::OpenMode mode,
                                bool openErasedRec = false) const;

private:
    void skip(bool forward);
    std::vector<AcDbObjectId> mIds;
    long long mIndex = 0;
    bool mSkipDeleted = true;
};

class AcDbSymbolTableRecord : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);

    Acad::ErrorStatus getName(ACHAR*& name) const;
    Acad::ErrorStatus getName(const ACHAR*& name) const;
    const ACHAR* name() const { return mName.c_str(); }
    Acad::ErrorStatus setName(const ACHAR* name);
    bool isDependent() const { return false; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    std::wstring mName;
};

// ---------------------------------------------------------------- blocks

class AcDbBlockTable : public AcDbSymbolTable {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTable);
    using AcDbSymbolTable::getAt;
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbBlockTableRecord*& rec, AcDb::OpenMode mode,
                            bool openErasedRec = false) const;
};

#define ACDB_MODEL_SPACE L"*Model_Space"
#define ACDB_PAPER_SPACE L"*Paper_Space"

class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);

    // The record must be resident; the entity becomes resident, owned by it, and stays open for
    // write.
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* ent);
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* ent);
    Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& it, bool atBeginning = true,
                                  bool skipDeleted = true) const;
    const std::vector<AcDbObjectId>& entityIds() const { return mEntities; }
    AcGePoint3d origin() const { return mOrigin; }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& p);
    bool isLayout() const;
    bool isAnonymous() const;
    bool hasAttributeDefinitions() const { return false; }
    const ACHAR* comments() const { return mComments.c_str(); }
    Acad::ErrorStatus setComments(const ACHAR* s);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    std::vector<AcDbObjectId> mEntities;
    AcGePoint3d mOrigin;
    std::wstring mComments;
};

class AcDbBlockTableRecordIterator {
public:
    explicit AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const;
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
    Acad::ErrorStatus getEntity(AcDbEntity*& ent, AcDb::OpenMode mode,
                                bool openErasedEntity = false) const;

private:
    void skip(bool forward);
    std::vector<AcDbObjectId> mIds;
    long long mIndex = 0;
    bool mSkipDeleted = true;
};

// ---------------------------------------------------------------- layers, linetypes, styles,
// applications

class AcDbLayerTable : public AcDbSymbolTable {
public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTable);
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);

    AcCmColor color() const { return mColor; }
    void setColor(const AcCmColor& c);
    AcDbObjectId linetypeObjectId() const { return mLinetype; }
    void setLinetypeObjectId(AcDbObjectId id);
    AcDb::LineWeight lineWeight() const { return mLineWeight; }
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight w);
    bool isOff() const { return mOff; }
    void setIsOff(bool v);
    bool isFrozen() const { return mFrozen; }
    Acad::ErrorStatus setIsFrozen(bool v);
    bool isLocked() const { return mLocked; }
    void setIsLocked(bool v);
    bool isPlottable() const { return mPlottable; }
    Acad::ErrorStatus setIsPlottable(bool v);
    bool isHidden() const { return false; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    AcCmColor mColor = AcCmColor(AcCmEntityColor(AcCmEntityColor::kByACI));
    AcDbObjectId mLinetype;
    AcDb::LineWeight mLineWeight = AcDb::kLnWtByLwDefault;
    bool mOff = false, mFrozen = false, mLocked = false, mPlottable = true;
};

class AcDbLinetypeTable : public AcDbSymbolTable {
public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTable);
};

class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);

    const ACHAR* comments() const { return mComments.c_str(); }
    Acad::ErrorStatus setComments(const ACHAR* s);
    int numDashes() const { return static_cast<int>(mDashes.size()); }
    void setNumDashes(int n);
    double dashLengthAt(int i) const;
    void setDashLengthAt(int i, double length);
    double patternLength() const;
    void setPatternLength(double) {}

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    std::wstring mComments;
    std::vector<double> mDashes;
};

class AcDbTextStyleTable : public AcDbSymbolTable {
public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTable);
};

class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);

    const ACHAR* fileName() const { return mFileName.c_str(); }
    Acad::ErrorStatus fileName(ACHAR*& s) const;
    Acad::ErrorStatus setFileName(const ACHAR* s);
    const ACHAR* bigFontFileName() const { return mBigFont.c_str(); }
    Acad::ErrorStatus bigFontFileName(ACHAR*& s) const;
    Acad::ErrorStatus setBigFontFileName(const ACHAR* s);
    double textSize() const { return mTextSize; }
    Acad::ErrorStatus setTextSize(double s);
    double xScale() const { return mXScale; }
    Acad::ErrorStatus setXScale(double s);
    double obliquingAngle() const { return mOblique; }
    Acad::ErrorStatus setObliquingAngle(double a);
    Acad::ErrorStatus setFont(const ACHAR* typeface, bool bold, bool italic, int charset,
                              int pitchAndFamily);
    Acad::ErrorStatus font(ACHAR*& typeface, bool& bold, bool& italic, int& charset,
                           int& pitchAndFamily) const;
    const ACHAR* typeface() const { return mTypeface.c_str(); }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

private:
    std::wstring mFileName, mBigFont, mTypeface;
    double mTextSize = 0.0, mXScale = 1.0, mOblique = 0.0;
    bool mBold = false, mItalic = false;
    int mCharset = 0, mPitch = 0;
};

class AcDbRegAppTable : public AcDbSymbolTable {
public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTable);
};

class AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
};

// Registers an application name in the working database's application table.
int acdbRegApp(const ACHAR* appName);
