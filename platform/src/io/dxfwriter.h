// The DXF writer: one database out as the sections of an ASCII DXF file. Each section is
// written into its own buffer; the header and the tables go last because they depend on
// what the others wrote (the next free handle, the classes used, the applications named).
#pragma once

#include "dbdxf.h"
#include "dbmain.h"
#include "ed/meterscope.h"
#include "io/dxfoutfiler.h"

#include <cstdint>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace qor::dxf {

// A write that cannot go on.
struct WriteError {
    Acad::ErrorStatus status = Acad::eNotApplicable;
    std::wstring message;
};

// Classes registered by modules (or by anyone but the platform): their records are what
// their dxfOutFields writes, and the CLASSES section lists them.
bool isCustomClass(const AcRxClass* c);
// The record type of a class in a DXF file.
std::wstring dxfTypeOf(const AcRxClass* c);

// Names compare without regard to case.
std::wstring upperCase(std::wstring s);

// The name of a symbol table record, or the fallback when there is none.
std::wstring recordNameOf(AcDbObjectId id, const wchar_t* fallback);

// Opens an object for read for the life of the holder.
template <class T> class ReadOpen {
public:
    explicit ReadOpen(AcDbObjectId id) { acdbOpenObject(mObj, id, AcDb::kForRead); }
    ~ReadOpen() {
        if (mObj) mObj->close();
    }
    ReadOpen(const ReadOpen&) = delete;
    ReadOpen& operator=(const ReadOpen&) = delete;
    T* get() const { return mObj; }
    T* operator->() const { return mObj; }
    explicit operator bool() const { return mObj != nullptr; }

private:
    T* mObj = nullptr;
};

class Writer {
public:
    Writer(AcDbDatabase* db, const QorDxfOptions& options, QorDxfReport& report);
    // Throws WriteError.
    void write(std::string& out);

private:
    struct Block {
        AcDbObjectId id;
        std::uint64_t begin = 0, end = 0; // the BLOCK and ENDBLK records
    };

    std::uint64_t newHandle() { return mNextHandle++; }
    static std::uint64_t handleOf(AcDbObjectId id) { return id.isNull() ? 0 : id.handle().value(); }
    void leaveOut(const std::wstring& type) { ++mReport.skipped[type]; }

    // dxfwriter.cpp
    void header(OutFiler& f) const;
    void classes(OutFiler& f) const;
    // The record's start: type, handle, extension dictionary and owner.
    void head(OutFiler& f, std::wstring_view type, std::uint64_t handle, std::uint64_t owner,
              const AcDbObject* obj = nullptr, int handleCode = 5);
    // The object's extended data, with the applications it names remembered for APPID.
    void xdata(OutFiler& f, const AcDbObject* obj);
    // Runs an object's dxfOutFields; throws when it fails.
    void fields(OutFiler& f, const AcDbObject* obj, std::uint64_t handle) const;
    void counted(const AcRxClass* c);

    // dxfwritertables.cpp
    void tables(OutFiler& f);

    // dxfwriterentities.cpp
    void blocks(OutFiler& f);
    void entities(OutFiler& f);
    void blockEntities(OutFiler& f, AcDbObjectId btr, std::uint64_t owner, bool paper,
                       bool extents, qor::MeterScope* meter = nullptr);
    void entity(OutFiler& f, const AcDbEntity* ent, std::uint64_t handle, std::uint64_t owner,
                bool paper, int depth);
    void exploded(OutFiler& f, const AcDbEntity* ent, std::uint64_t owner, bool paper, int depth);
    // The VERTEX records of an old-style polyline and its SEQEND.
    void vertices(OutFiler& f, const AcDbEntity* polyline, std::uint64_t handle, bool paper);

    // dxfwriterobjects.cpp
    void objects(OutFiler& f);
    // Whether an object goes into the file: entities once written, tables and their records,
    // and dictionaries, extended records and custom objects whose owners go in.
    bool writable(AcDbObjectId id, int depth = 0);

    AcDbDatabase* mDb;
    const QorDxfOptions& mOptions;
    QorDxfReport& mReport;
    std::uint64_t mNextHandle = 1;

    // Records the database has no objects for.
    std::uint64_t mVportTable = 0, mViewTable = 0, mUcsTable = 0, mDimStyleTable = 0;
    std::uint64_t mActiveVport = 0, mStandardDimStyle = 0;
    std::uint64_t mGroupDict = 0, mLayoutDict = 0, mModelLayout = 0, mPaperLayout = 0;

    AcDbObjectId mModelSpace, mPaperSpace;
    std::vector<Block> mBlocks;
    // Custom classes in the order first written, with their instance counts.
    std::vector<std::pair<const AcRxClass*, int>> mClasses;
    // Database entities written as themselves, and objects known writable or not.
    std::unordered_set<std::uint64_t> mWritten;
    std::unordered_set<std::uint64_t> mWritable, mUnwritable;
    // Applications named by extended data, upper-cased.
    std::set<std::wstring> mApps;
    AcDbExtents mExtents;
};

} // namespace qor::dxf
