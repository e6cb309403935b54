// The DXF writer's entry points, the order of its sections, HEADER and CLASSES.
#include "io/dxfwriter.h"

#include "dbsymtb.h"
#include "winstr.h"

#include <cstdio>
#include <cwctype>
#include <exception>
#include <filesystem>
#include <fstream>

namespace qor::dxf {

namespace {

int aciOf(const AcCmColor& c) {
    if (c.isByLayer()) return 256;
    if (c.isByBlock()) return 0;
    if (c.isByColor()) return AcCmEntityColor::lookUpACI(c.red(), c.green(), c.blue());
    return c.colorIndex();
}

} // namespace

std::wstring upperCase(std::wstring s) {
    for (wchar_t& c : s)
        c = static_cast<wchar_t>(std::towupper(c));
    return s;
}

std::wstring recordNameOf(AcDbObjectId id, const wchar_t* fallback) {
    ReadOpen<AcDbSymbolTableRecord> rec(id);
    return rec ? std::wstring(rec->name()) : std::wstring(fallback);
}

bool isCustomClass(const AcRxClass* c) {
    return c && (!c->moduleName().empty() || *c->appName());
}

std::wstring dxfTypeOf(const AcRxClass* c) {
    if (!c) return L"";
    return *c->dxfName() ? std::wstring(c->dxfName()) : upperCase(c->name());
}

Writer::Writer(AcDbDatabase* db, const QorDxfOptions& options, QorDxfReport& report)
    : mDb(db), mOptions(options), mReport(report), mNextHandle(db->handseed().value()) {
    if (mNextHandle == 0) mNextHandle = 1;
}

void Writer::write(std::string& out) {
    mModelSpace = mDb->modelSpaceId();
    mPaperSpace = mDb->paperSpaceId();
    if (mModelSpace.isNull() || mDb->layerTableId().isNull())
        throw WriteError{Acad::eInvalidInput, L"the drawing has no model space or layer table"};
    for (std::uint64_t* h : {&mVportTable, &mViewTable, &mUcsTable, &mDimStyleTable, &mActiveVport,
                             &mStandardDimStyle, &mGroupDict, &mLayoutDict, &mModelLayout})
        *h = newHandle();
    if (!mPaperSpace.isNull()) mPaperLayout = newHandle();
    {
        ReadOpen<AcDbBlockTable> table(mDb->blockTableId());
        if (!table) throw WriteError{Acad::eInvalidInput, L"the drawing's block table is damaged"};
        for (AcDbObjectId id : table->recordIds())
            if (!id.isErased()) mBlocks.push_back({id, newHandle(), newHandle()});
    }

    auto section = [this](std::string& text, const char* name, auto&& body) {
        OutFiler f(text, mDb);
        f.ascii(0, "SECTION");
        f.ascii(2, name);
        body(f);
        f.ascii(0, "ENDSEC");
    };
    std::string headerText, tablesText, blocksText, entitiesText, objectsText;
    section(blocksText, "BLOCKS", [this](OutFiler& f) { blocks(f); });
    section(entitiesText, "ENTITIES", [this](OutFiler& f) { entities(f); });
    section(objectsText, "OBJECTS", [this](OutFiler& f) { objects(f); });
    section(tablesText, "TABLES", [this](OutFiler& f) { tables(f); });
    section(headerText, "HEADER", [this](OutFiler& f) { header(f); });
    section(headerText, "CLASSES", [this](OutFiler& f) { classes(f); });

    out.clear();
    out.reserve(headerText.size() + tablesText.size() + blocksText.size() + entitiesText.size() +
                objectsText.size() + 16);
    for (const std::string* part :
         {&headerText, &tablesText, &blocksText, &entitiesText, &objectsText})
        out += *part;
    out += "  0\nEOF\n";
}

// ---------------------------------------------------------------- HEADER and CLASSES

void Writer::header(OutFiler& f) const {
    auto var = [&f](const char* name) { f.ascii(9, name); };
    const bool haveExtents = mExtents.isValid();
    const AcGePoint3d lo = haveExtents ? mExtents.minPoint() : AcGePoint3d();
    const AcGePoint3d hi = haveExtents ? mExtents.maxPoint() : AcGePoint3d();
    const AcGePoint3d base = mDb->insbase();

    var("$ACADVER");
    f.ascii(1, "AC1024");
    var("$ACADMAINTVER");
    f.integer(70, 6);
    // The text is UTF-8 whatever this says; readers of this release expect a Windows code page.
    var("$DWGCODEPAGE");
    f.ascii(3, "ANSI_936");
    var("$INSBASE");
    f.point(10, base.x, base.y, base.z);
    var("$EXTMIN");
    f.point(10, lo.x, lo.y, lo.z);
    var("$EXTMAX");
    f.point(10, hi.x, hi.y, hi.z);
    var("$LIMMIN");
    f.point(10, 0.0, 0.0);
    var("$LIMMAX");
    f.point(10, 420.0, 297.0);
    var("$LTSCALE");
    f.real(40, mDb->ltscale());
    var("$TEXTSIZE");
    f.real(40, mDb->textsize());
    var("$CLAYER");
    f.text(8, recordNameOf(mDb->clayer(), L"0"));
    var("$CELTYPE");
    f.text(6, recordNameOf(mDb->celtype(), L"ByLayer"));
    var("$CECOLOR");
    f.integer(62, aciOf(mDb->cecolor()));
    var("$CELTSCALE");
    f.real(40, mDb->celtscale());
    var("$CELWEIGHT");
    f.integer(370, static_cast<int>(mDb->celweight()));
    var("$TEXTSTYLE");
    f.text(7, recordNameOf(mDb->textstyle(), L"Standard"));
    var("$DIMSTYLE");
    f.ascii(2, "Standard");
    var("$LUNITS");
    f.integer(70, 2);
    var("$LUPREC");
    f.integer(70, 4);
    var("$AUNITS");
    f.integer(70, 0);
    var("$AUPREC");
    f.integer(70, 0);
    var("$HANDSEED");
    f.handle(5, mNextHandle);
    var("$INSUNITS");
    f.integer(70, mDb->insunits());
    var("$MEASUREMENT");
    f.integer(70, 1);
}

void Writer::counted(const AcRxClass* c) {
    for (auto& [cls, count] : mClasses)
        if (cls == c) {
            ++count;
            return;
        }
    mClasses.emplace_back(c, 1);
}

void Writer::classes(OutFiler& f) const {
    // Every class of a loaded module, then any other custom class that has instances here.
    std::vector<std::pair<const AcRxClass*, int>> rows;
    auto countOf = [this](const AcRxClass* c) {
        for (const auto& [cls, count] : mClasses)
            if (cls == c) return count;
        return 0;
    };
    for (AcRxDictionaryIterator it(acrxClassDictionary()); !it.done(); it.next()) {
        const auto* c = AcRxClass::cast(it.object());
        if (c && !c->moduleName().empty()) rows.emplace_back(c, countOf(c));
    }
    for (const auto& [cls, count] : mClasses) {
        bool listed = false;
        for (const auto& row : rows)
            listed = listed || row.first == cls;
        if (!listed) rows.emplace_back(cls, count);
    }
    for (const auto& [c, count] : rows) {
        f.ascii(0, "CLASS");
        f.text(1, dxfTypeOf(c));
        f.text(2, c->name());
        f.text(3, c->appName());
        f.integer(90, c->proxyFlags());
        f.integer(91, count);
        f.integer(280, 0);
        f.integer(281, c->isDerivedFrom(AcDbEntity::desc()) ? 1 : 0);
    }
}

// ---------------------------------------------------------------- pieces of every record

void Writer::head(OutFiler& f, std::wstring_view type, std::uint64_t handle, std::uint64_t owner,
                  const AcDbObject* obj, int handleCode) {
    f.text(0, type);
    f.handle(handleCode, handle);
    if (obj && !obj->extensionDictionary().isNull() && writable(obj->extensionDictionary())) {
        f.ascii(102, "{ACAD_XDICTIONARY");
        f.handle(360, handleOf(obj->extensionDictionary()));
        f.ascii(102, "}");
    }
    f.handle(330, owner);
}

void Writer::xdata(OutFiler& f, const AcDbObject* obj) {
    resbuf* chain = obj->xData();
    for (const resbuf* rb = chain; rb; rb = rb->rbnext) {
        if (rb->restype == AcDb::kDxfRegAppName && rb->resval.rstring)
            mApps.insert(upperCase(rb->resval.rstring));
        f.writeItem(*rb);
    }
    acutRelRb(chain);
}

void Writer::fields(OutFiler& f, const AcDbObject* obj, std::uint64_t handle) const {
    const Acad::ErrorStatus es = obj->dxfOutFields(&f);
    if (es != Acad::eOk || f.filerStatus() != Acad::eOk)
        throw WriteError{es != Acad::eOk ? es : f.filerStatus(),
                         qorFormat(L"object %llX of class %ls cannot be written to DXF (status %d)",
                                   static_cast<unsigned long long>(handle), obj->isA()->name(),
                                   static_cast<int>(es != Acad::eOk ? es : f.filerStatus()))};
}

} // namespace qor::dxf

// ---------------------------------------------------------------- entry points

int QorDxfReport::skippedCount() const {
    int n = 0;
    for (const auto& [type, count] : skipped)
        n += count;
    return n;
}

std::wstring QorDxfReport::skippedSummary() const {
    std::wstring text;
    for (const auto& [type, count] : skipped) {
        if (!text.empty()) text += L", ";
        text += type + L" " + std::to_wstring(count);
    }
    return text;
}

Acad::ErrorStatus qorWriteDxfString(AcDbDatabase* db, std::string& out,
                                    const QorDxfOptions& options, QorDxfReport* report) {
    QorDxfReport local;
    QorDxfReport& r = report ? *report : local;
    r = QorDxfReport();
    out.clear();
    if (!db) {
        r.error = L"no drawing to write";
        return Acad::eNullObjectPointer;
    }
    try {
        // Explode resolves layer and style names in the working database.
        QorWorkingDatabase working(db);
        qor::dxf::Writer(db, options, r).write(out);
    } catch (const qor::dxf::WriteError& e) {
        r.error = e.message;
        out.clear();
        return e.status;
    } catch (const std::bad_alloc&) {
        r.error = L"out of memory";
        out.clear();
        return Acad::eOutOfMemory;
    }
    if (!report && r.skippedCount() > 0)
        std::fprintf(stderr, "DXF: %d entities left out (%s)\n", r.skippedCount(),
                     qorToUtf8(r.skippedSummary()).c_str());
    return Acad::eOk;
}

Acad::ErrorStatus qorWriteDxf(AcDbDatabase* db, const ACHAR* fileName, const QorDxfOptions& options,
                              QorDxfReport* report) {
    QorDxfReport local;
    QorDxfReport& r = report ? *report : local;
    if (!fileName || !*fileName) {
        r = QorDxfReport();
        r.error = L"no file name";
        return Acad::eInvalidInput;
    }
    std::string text;
    if (Acad::ErrorStatus es = qorWriteDxfString(db, text, options, &r); es != Acad::eOk) {
        if (!report) std::fprintf(stderr, "DXF: %s\n", qorToUtf8(r.error).c_str());
        return es;
    }
    std::string path = qorToUtf8(fileName);
    for (char& c : path)
        if (c == '\\') c = '/';
    // A failed write leaves any earlier file as it was.
    const std::string temp = path + ".writing";
    bool ok = false;
    {
        std::ofstream file(temp, std::ios::binary | std::ios::trunc);
        ok = file && file.write(text.data(), static_cast<std::streamsize>(text.size())) &&
             file.flush();
    }
    std::error_code ec;
    if (ok) std::filesystem::rename(temp, path, ec);
    if (!ok || ec) {
        std::filesystem::remove(temp, ec);
        r.error = L"cannot write " + std::wstring(fileName);
        return Acad::eFileAccessErr;
    }
    if (!report && r.skippedCount() > 0)
        std::fprintf(stderr, "DXF: %d entities left out (%s)\n", r.skippedCount(),
                     qorToUtf8(r.skippedSummary()).c_str());
    return Acad::eOk;
}
