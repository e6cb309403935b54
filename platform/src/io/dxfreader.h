// The DXF reader: a file's groups sorted into sections and records, then read into a
// database in the order names are needed (linetypes before layers, blocks before the
// inserts that name them); objects of registered classes are made first and filled through
// their dxfInFields once every handle of the file has its object.
#pragma once

#include "dbdict.h"
#include "dbdxf.h"
#include "dbmain.h"
#include "io/dxfgroups.h"
#include "io/dxftext.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class AcDbBlockTableRecord;

namespace qor::dxf {

// One record: the groups from a 0 group up to the next.
struct Record {
    const Group* begin = nullptr;
    const Group* end = nullptr;

    std::string_view type() const { return begin->trimmed(); }
    int line() const { return begin->line; }
    // The first group with the code after the record's 0 group, or null.
    const Group* find(int code) const;
    double real(int code, double fallback = 0.0) const;
    long long integer(int code, long long fallback = 0) const;
    // A point from its x group and the y and z groups that follow it.
    AcGePoint3d point(int code, const AcGePoint3d& fallback = AcGePoint3d()) const;
    AcGeVector3d normal() const;
    std::uint64_t handle() const;
    std::uint64_t owner() const;
};

AcGePoint3d pointAt(const Group* g, const Group* end);
// The platform's lineweights, in hundredths of a millimetre, and the three by-values.
bool isLineWeight(long long w);

class Reader {
public:
    Reader(AcDbDatabase* db, QorDxfReport& report) : mDb(db), mReport(report) {}
    // Throws Error for a damaged file.
    void read(std::string_view bytes);

private:
    struct Section {
        std::string_view name;
        const Group* begin = nullptr; // after its name
        const Group* end = nullptr;   // at its ENDSEC
        std::vector<Record> records;
    };
    // An object made from a record and filled in later.
    struct Pending {
        AcDbObjectId id;
        Record record;
    };
    struct ClassInfo {
        AcRxClass* cls = nullptr; // null when not registered here
        bool entity = false;
        // The file format's own classes (their C++ names start with AcDb): layouts,
        // materials and the like, which the platform does not keep and nobody misses.
        bool own = false;
    };

    // dxfreader.cpp
    void sections();
    const Section* section(std::string_view name) const;
    void header(const Section& s);
    void headerReferences();
    void classes(const Section* s);
    std::wstring text(const Group* g) const;
    std::wstring text(const Record& r, int code) const;
    AcDbObjectId resolve(std::uint64_t handle) const;
    void skip(std::string_view type) { ++mReport.skipped[text(type)]; }
    std::wstring text(std::string_view raw) const { return mText(raw); }
    // A registered class for the record's type, or the CLASSES row that names an unknown one.
    const ClassInfo* customClass(std::string_view type);

    // dxfreadertables.cpp
    // The names the database already has, before the file adds its own.
    void names();
    void tables(const Section& s);
    void linetype(const Record& r);
    void layer(const Record& r);
    void textStyle(const Record& r);
    void regApp(const std::wstring& name);
    AcDbObjectId layerNamed(const std::wstring& name);
    AcDbObjectId linetypeNamed(const std::wstring& name) const;
    AcDbObjectId styleNamed(const std::wstring& name) const;

    // dxfreaderblocks.cpp: blocks, and where each entity goes
    void blocks(const Section& s);
    void entities(const Section& s);
    // Reads records [i, end) into the block; returns past the records one entity took.
    size_t entity(const std::vector<Record>& records, size_t i, size_t end,
                  AcDbBlockTableRecord* target, AcDbBlockTableRecord* paper);
    AcDbObjectId add(AcDbBlockTableRecord* target, AcDbEntity* ent, const Record& r);
    // An entity of the class is made now and read through its dxfInFields in the second pass.
    void later(AcDbBlockTableRecord* target, AcRxClass* cls, const Record& r);
    void common(AcDbEntity* ent, const Record& r);
    // Remembers the extension dictionary a record names, to be read with the objects.
    void noteXdict(AcDbObjectId id, const Record& r);

    // dxfreaderentities.cpp: the plain entities, one record each
    AcDbEntity* line(const Record& r) const;
    AcDbEntity* circle(const Record& r) const;
    AcDbEntity* arc(const Record& r) const;
    AcDbEntity* lwpolyline(const Record& r) const;
    AcDbEntity* ellipse(const Record& r) const;
    AcDbEntity* textEntity(const Record& r, bool attribute) const;
    AcDbEntity* polyline(const std::vector<Record>& records, size_t first, size_t end) const;
    std::vector<AcDbEntity*> mtext(const Record& r) const;
    std::vector<AcDbEntity*> inserts(const Record& r) const;

    // dxfreaderobjects.cpp
    void objects(const Section* s);
    bool importable(const Record& r, int depth);
    void importEntries(AcDbDictionary* dict, const Record& r, int depth);
    void fill();
    void xdata(AcDbObject* obj, const Record& r);
    std::vector<const Group*> fieldsOf(const Record& r, bool entity) const;

    AcDbDatabase* mDb;
    QorDxfReport& mReport;
    std::vector<Group> mGroups;
    std::vector<Section> mSections;
    TextDecoder mText;
    // Header variables: name to its groups.
    std::unordered_map<std::string_view, Record> mHeader;
    // The file's handles and the objects made for them.
    std::unordered_map<std::uint64_t, AcDbObjectId> mIds;
    // Names, upper-cased, to records of this database.
    std::unordered_map<std::wstring, AcDbObjectId> mLayers, mLinetypes, mStyles, mBlocks;
    // DXF type names, as in the file, to their classes.
    std::unordered_map<std::string, ClassInfo> mClasses;
    // BLOCK_RECORD handles to their names, upper-cased.
    std::unordered_map<std::uint64_t, std::wstring> mBlockRecords;
    // OBJECTS records by handle, and which dictionaries hold something to read.
    std::unordered_map<std::uint64_t, Record> mObjects;
    std::unordered_map<std::uint64_t, bool> mImportable;
    std::vector<Pending> mCustom, mXrecords;
    // Objects whose records name an extension dictionary.
    std::vector<std::pair<AcDbObjectId, std::uint64_t>> mXdicts;
    AcDbObjectId mModelSpace, mPaperSpace;
};

} // namespace qor::dxf
