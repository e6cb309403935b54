// The DXF reader's entry points, the file's sections, HEADER and CLASSES.
#include "io/dxfreader.h"

#include "dbsymtb.h"
#include "io/dxfwriter.h"
#include "winstr.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace qor::dxf {

namespace {

std::wstring describe(const Group* g) {
    std::wstring value = qorFromUtf8(g->trimmed().substr(0, 40));
    return std::to_wstring(g->code) + L" \"" + value + L"\"";
}

std::wstring wide(std::string_view s) {
    return qorFromUtf8(s);
}

} // namespace

// ---------------------------------------------------------------- records

const Group* Record::find(int code) const {
    for (const Group* g = begin + 1; g < end; ++g)
        if (g->code == code) return g;
    return nullptr;
}

double Record::real(int code, double fallback) const {
    const Group* g = find(code);
    return g && g->kind == Kind::kReal ? g->real : fallback;
}

long long Record::integer(int code, long long fallback) const {
    const Group* g = find(code);
    return g && g->kind == Kind::kInteger ? g->integer : fallback;
}

AcGePoint3d pointAt(const Group* g, const Group* end) {
    AcGePoint3d p(g->real, 0.0, 0.0);
    const Group* y = g + 1;
    if (y < end && y->code == g->code + 10) {
        p.y = y->real;
        const Group* z = y + 1;
        if (z < end && z->code == g->code + 20) p.z = z->real;
    }
    return p;
}

AcGePoint3d Record::point(int code, const AcGePoint3d& fallback) const {
    const Group* g = find(code);
    return g && g->kind == Kind::kReal ? pointAt(g, end) : fallback;
}

AcGeVector3d Record::normal() const {
    const AcGePoint3d p = point(210, AcGePoint3d(0, 0, 1));
    const AcGeVector3d n(p.x, p.y, p.z);
    // A zero extrusion in a damaged file means the usual one.
    return n.length() > 1e-12 ? n / n.length() : AcGeVector3d(0, 0, 1);
}

std::uint64_t Record::handle() const {
    const Group* g = find(5);
    if (!g) g = find(105);
    return g ? g->handle() : 0;
}

std::uint64_t Record::owner() const {
    // The owner is the 330 outside any {...} group list of applications.
    int depth = 0;
    for (const Group* g = begin + 1; g < end; ++g) {
        if (g->code == 102)
            depth += g->trimmed().starts_with("{") ? 1 : -1;
        else if (g->code == 330 && depth <= 0)
            return g->handle();
        else if (g->code == 100)
            break;
    }
    return 0;
}

// ---------------------------------------------------------------- sections

void Reader::read(std::string_view bytes) {
    mGroups = splitGroups(bytes);
    sections();
    mModelSpace = mDb->modelSpaceId();
    mPaperSpace = mDb->paperSpaceId();
    if (mModelSpace.isNull() || mDb->layerTableId().isNull())
        fail(0, L"the drawing to read into has no model space or layer table");
    if (const Section* h = section("HEADER"))
        header(*h);
    else
        mText.configure("", "");
    classes(section("CLASSES"));
    names();
    if (const Section* t = section("TABLES")) tables(*t);
    if (const Section* b = section("BLOCKS")) blocks(*b);
    if (const Section* e = section("ENTITIES")) entities(*e);
    objects(section("OBJECTS"));
    fill();
    headerReferences();
}

void Reader::sections() {
    if (mGroups.empty()) fail(1, L"the file is empty");
    const Group* g = mGroups.data();
    const Group* const end = g + mGroups.size();
    const int lastLine = mGroups.back().line + 1;
    while (g < end) {
        if (g->is(0, "EOF")) return;
        if (!g->is(0, "SECTION")) fail(g->line, L"expected 0 SECTION, found " + describe(g));
        if (++g == end) fail(lastLine, L"the file ends after SECTION (the file is truncated)");
        if (g->code != 2)
            fail(g->line, L"expected the section's name (group 2), found " + describe(g));
        Section s;
        s.name = g->trimmed();
        s.begin = ++g;
        const std::wstring name = wide(s.name);
        while (g < end && !g->is(0, "ENDSEC")) {
            if (g->is(0, "SECTION") || g->is(0, "EOF"))
                fail(g->line, L"the " + name + L" section has no ENDSEC");
            ++g;
        }
        if (g == end)
            fail(lastLine,
                 L"the file ends inside the " + name + L" section (the file is truncated)");
        s.end = g++;
        if (s.name != "HEADER") {
            const Group* p = s.begin;
            if (p < s.end && p->code != 0)
                fail(p->line, L"expected a record (group 0) in the " + name + L" section, found " +
                                  describe(p));
            while (p < s.end) {
                Record r;
                r.begin = p++;
                while (p < s.end && p->code != 0)
                    ++p;
                r.end = p;
                s.records.push_back(r);
            }
        }
        mSections.push_back(std::move(s));
    }
    fail(lastLine, L"the file ends without EOF (the file is truncated)");
}

const Reader::Section* Reader::section(std::string_view name) const {
    for (const Section& s : mSections)
        if (s.name == name) return &s;
    return nullptr;
}

std::wstring Reader::text(const Group* g) const {
    return g ? mText(g->raw) : std::wstring();
}

std::wstring Reader::text(const Record& r, int code) const {
    return text(r.find(code));
}

AcDbObjectId Reader::resolve(std::uint64_t handle) const {
    auto it = mIds.find(handle);
    return it == mIds.end() ? AcDbObjectId() : it->second;
}

// ---------------------------------------------------------------- HEADER

void Reader::header(const Section& s) {
    for (const Group* p = s.begin; p < s.end;) {
        if (p->code != 9) {
            ++p;
            continue;
        }
        Record r;
        r.begin = p++;
        while (p < s.end && p->code != 9)
            ++p;
        r.end = p;
        mHeader[r.type()] = r;
    }
    auto var = [this](std::string_view name) -> const Record* {
        auto it = mHeader.find(name);
        return it == mHeader.end() ? nullptr : &it->second;
    };
    std::string_view version, codePage;
    if (const Record* r = var("$ACADVER"))
        if (const Group* g = r->find(1)) version = g->trimmed();
    if (const Record* r = var("$DWGCODEPAGE"))
        if (const Group* g = r->find(3)) codePage = g->trimmed();
    mText.configure(version, codePage);

    // Units are numbered 0 to 24.
    if (const Record* r = var("$INSUNITS"))
        if (const long long u = r->integer(70, mDb->insunits()); u >= 0 && u <= 24)
            mDb->setInsunits(static_cast<Adesk::Int16>(u));
    if (const Record* r = var("$INSBASE")) mDb->setInsbase(r->point(10, mDb->insbase()));
    if (const Record* r = var("$EXTMIN")) mDb->setExtmin(r->point(10, mDb->extmin()));
    if (const Record* r = var("$EXTMAX")) mDb->setExtmax(r->point(10, mDb->extmax()));
    // The setters refuse values that are not positive.
    if (const Record* r = var("$LTSCALE")) mDb->setLtscale(r->real(40, mDb->ltscale()));
    if (const Record* r = var("$TEXTSIZE")) mDb->setTextsize(r->real(40, mDb->textsize()));
    if (const Record* r = var("$CELTSCALE")) mDb->setCeltscale(r->real(40, mDb->celtscale()));
    if (const Record* r = var("$CELWEIGHT"))
        if (const long long w = r->integer(370, mDb->celweight()); isLineWeight(w))
            mDb->setCelweight(static_cast<AcDb::LineWeight>(w));
    if (const Record* r = var("$CECOLOR")) {
        const long long index = r->integer(62, 256);
        if (index >= 0 && index <= 256) {
            AcCmColor c;
            c.setColorIndex(static_cast<Adesk::UInt16>(index));
            mDb->setCecolor(c);
        }
    }
}

void Reader::headerReferences() {
    auto name = [this](const char* var, int code) {
        auto it = mHeader.find(var);
        return it == mHeader.end() ? std::wstring() : text(it->second, code);
    };
    if (const std::wstring layer = name("$CLAYER", 8); !layer.empty())
        if (AcDbObjectId id = layerNamed(layer); !id.isNull()) mDb->setClayer(id);
    if (const std::wstring ltype = name("$CELTYPE", 6); !ltype.empty())
        if (AcDbObjectId id = linetypeNamed(ltype); !id.isNull()) mDb->setCeltype(id);
    if (const std::wstring style = name("$TEXTSTYLE", 7); !style.empty())
        if (AcDbObjectId id = styleNamed(style); !id.isNull()) mDb->setTextstyle(id);
}

// ---------------------------------------------------------------- CLASSES

void Reader::classes(const Section* s) {
    // Every registered custom class by its DXF name...
    for (AcRxDictionaryIterator it(acrxClassDictionary()); !it.done(); it.next()) {
        auto* c = AcRxClass::cast(it.object());
        if (!isCustomClass(c) || !c->constructor()) continue;
        mClasses[qorToUtf8(dxfTypeOf(c))] = {c, c->isDerivedFrom(AcDbEntity::desc())};
    }
    if (!s) return;
    // ...and the file's own rows, which may name a registered class under another DXF name.
    for (const Record& r : s->records) {
        if (r.type() != "CLASS") continue;
        const Group* dxf = r.find(1);
        if (!dxf) continue;
        const std::string type(dxf->trimmed());
        ClassInfo info;
        info.entity = r.integer(281, 0) != 0;
        const std::wstring className = text(r, 2);
        info.own = className.rfind(L"AcDb", 0) == 0;
        auto* c = AcRxClass::cast(acrxClassDictionary()->at(className.c_str()));
        if (c && isCustomClass(c) && c->constructor()) {
            info.cls = c;
            info.entity = c->isDerivedFrom(AcDbEntity::desc());
        } else if (auto known = mClasses.find(type); known != mClasses.end()) {
            info = known->second;
        }
        mClasses[type] = info;
    }
}

const Reader::ClassInfo* Reader::customClass(std::string_view type) {
    auto it = mClasses.find(std::string(type));
    return it == mClasses.end() ? nullptr : &it->second;
}

} // namespace qor::dxf

// ---------------------------------------------------------------- entry points

Acad::ErrorStatus qorReadDxfBytes(AcDbDatabase* db, std::string_view bytes, QorDxfReport* report) {
    QorDxfReport local;
    QorDxfReport& r = report ? *report : local;
    r = QorDxfReport();
    if (!db) {
        r.error = L"no drawing to read into";
        return Acad::eNullObjectPointer;
    }
    Acad::ErrorStatus es = Acad::eOk;
    try {
        // Custom objects read their names through the working database.
        QorWorkingDatabase working(db);
        qor::dxf::Reader(db, r).read(bytes);
    } catch (const qor::dxf::Error& e) {
        r.errorLine = e.line;
        r.error = e.line > 0 ? qor::dxf::at(e.line, e.message) : e.message;
        es = Acad::eBadDxfSequence;
    } catch (const std::bad_alloc&) {
        r.error = L"out of memory";
        es = Acad::eOutOfMemory;
    }
    if (!report) {
        if (es != Acad::eOk) std::fprintf(stderr, "DXF: %s\n", qorToUtf8(r.error).c_str());
        if (r.skippedCount() > 0)
            std::fprintf(stderr, "DXF: %d entities skipped (%s)\n", r.skippedCount(),
                         qorToUtf8(r.skippedSummary()).c_str());
    }
    return es;
}

Acad::ErrorStatus qorReadDxf(AcDbDatabase* db, const ACHAR* fileName, QorDxfReport* report) {
    QorDxfReport local;
    QorDxfReport& r = report ? *report : local;
    r = QorDxfReport();
    if (!fileName || !*fileName) {
        r.error = L"no file name";
        return Acad::eInvalidInput;
    }
    std::string path = qorToUtf8(fileName);
    for (char& c : path)
        if (c == '\\') c = '/';
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        r.error = std::wstring(fileName) + L": cannot open the file";
        if (!report) std::fprintf(stderr, "DXF: %s\n", qorToUtf8(r.error).c_str());
        return Acad::eFileNotFound;
    }
    const std::string bytes((std::istreambuf_iterator<char>(file)),
                            std::istreambuf_iterator<char>());
    return qorReadDxfBytes(db, bytes, report);
}
