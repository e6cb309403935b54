// The TABLES section: linetypes, layers, text styles and applications, in the order their
// names are needed. Viewports, views, user coordinate systems and dimension styles have no
// tables in the platform and are passed over.
#include "io/dxfreader.h"

#include "dbsymtb.h"
#include "io/dxfwriter.h"

#include <map>

namespace qor::dxf {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Adds a new record to a table of the database; the record stays open for write.
template <class Table, class Rec>
AcDbObjectId addRecord(AcDbObjectId tableId, Rec* rec, const std::wstring& name) {
    rec->setName(name.c_str());
    Table* table = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) {
        delete rec;
        return id;
    }
    if (table->add(id, rec) != Acad::eOk) {
        delete rec;
        id = AcDbObjectId();
    }
    table->close();
    return id;
}

std::unordered_map<std::wstring, AcDbObjectId> namesOf(AcDbObjectId tableId) {
    std::unordered_map<std::wstring, AcDbObjectId> names;
    ReadOpen<AcDbSymbolTable> table(tableId);
    if (!table) return names;
    for (AcDbObjectId id : table->recordIds())
        if (!id.isErased()) names.emplace(upperCase(recordNameOf(id, L"")), id);
    return names;
}

} // namespace

bool isLineWeight(long long w) {
    static const int kWeights[] = {-3, -2, -1, 0,  5,  9,  13,  15,  18,  20,  25,  30,  35, 40,
                                   50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
    for (int k : kWeights)
        if (w == k) return true;
    return false;
}

void Reader::tables(const Section& s) {
    std::map<std::string_view, std::vector<const Record*>> byTable;
    std::string_view current;
    for (const Record& r : s.records) {
        if (r.type() == "TABLE") {
            const Group* name = r.find(2);
            current = name ? name->trimmed() : std::string_view();
        } else if (r.type() == "ENDTAB") {
            current = {};
        } else if (!current.empty()) {
            byTable[current].push_back(&r);
        } else {
            fail(r.line(), L"record " + text(r.type()) + L" outside a table");
        }
    }
    for (const Record* r : byTable["LTYPE"])
        linetype(*r);
    for (const Record* r : byTable["LAYER"])
        layer(*r);
    for (const Record* r : byTable["STYLE"])
        textStyle(*r);
    for (const Record* r : byTable["APPID"])
        regApp(text(*r, 2));
    // Entities name their space by its record's handle; BLOCKS makes the records.
    for (const Record* r : byTable["BLOCK_RECORD"])
        if (r->handle()) mBlockRecords[r->handle()] = upperCase(text(*r, 2));
}

void Reader::names() {
    mLayers = namesOf(mDb->layerTableId());
    mLinetypes = namesOf(mDb->linetypeTableId());
    mStyles = namesOf(mDb->textStyleTableId());
    mBlocks = namesOf(mDb->blockTableId());
}

void Reader::linetype(const Record& r) {
    const std::wstring name = text(r, 2);
    if (name.empty()) return;
    const std::wstring key = upperCase(name);
    AcDbObjectId id = linetypeNamed(name);
    if (id.isNull()) {
        auto* rec = new AcDbLinetypeTableRecord();
        rec->setComments(text(r, 3).c_str());
        std::vector<double> dashes;
        for (const Group* g = r.begin + 1; g < r.end; ++g)
            if (g->code == 49) dashes.push_back(g->real);
        rec->setNumDashes(static_cast<int>(dashes.size()));
        for (size_t i = 0; i < dashes.size(); ++i)
            rec->setDashLengthAt(static_cast<int>(i), dashes[i]);
        id = addRecord<AcDbLinetypeTable>(mDb->linetypeTableId(), rec, name);
        if (id.isNull()) return;
        rec->close();
        mLinetypes[key] = id;
    }
    if (r.handle()) mIds[r.handle()] = id;
}

void Reader::layer(const Record& r) {
    const std::wstring name = text(r, 2);
    if (name.empty()) return;
    AcDbObjectId id = layerNamed(name);
    AcDbLayerTableRecord* rec = nullptr;
    if (acdbOpenObject(rec, id, AcDb::kForWrite) != Acad::eOk) return;
    const long long index = r.integer(62, 7);
    AcCmColor color;
    if (const Group* rgb = r.find(420)) {
        const auto v = static_cast<std::uint32_t>(rgb->integer);
        color.setRGB((v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF);
    } else {
        const long long aci = index >= -255 && index < 0 ? -index : index;
        color.setColorIndex(static_cast<Adesk::UInt16>(aci >= 1 && aci <= 255 ? aci : 7));
    }
    rec->setColor(color);
    rec->setIsOff(index < 0);
    const long long flags = r.integer(70, 0);
    rec->setIsFrozen((flags & 1) != 0);
    rec->setIsLocked((flags & 4) != 0);
    const AcDbObjectId ltype = linetypeNamed(text(r, 6));
    rec->setLinetypeObjectId(ltype.isNull() ? mDb->continuousLinetype() : ltype);
    if (const long long w = r.integer(370, AcDb::kLnWtByLwDefault);
        isLineWeight(w) && w != -1 && w != -2)
        rec->setLineWeight(static_cast<AcDb::LineWeight>(w));
    rec->setIsPlottable(r.integer(290, 1) != 0);
    xdata(rec, r);
    rec->close();
    if (r.handle()) mIds[r.handle()] = id;
}

void Reader::textStyle(const Record& r) {
    const std::wstring name = text(r, 2);
    // Shape files are styles without names or with flag 1; they draw no text.
    if (name.empty() || (r.integer(70, 0) & 1) != 0) return;
    AcDbObjectId id = styleNamed(name);
    AcDbTextStyleTableRecord* rec = nullptr;
    if (id.isNull()) {
        rec = new AcDbTextStyleTableRecord();
        id = addRecord<AcDbTextStyleTable>(mDb->textStyleTableId(), rec, name);
        if (id.isNull()) return;
        mStyles[upperCase(name)] = id;
    } else if (acdbOpenObject(rec, id, AcDb::kForWrite) != Acad::eOk) {
        return;
    }
    rec->setTextSize(r.real(40, 0.0));
    rec->setXScale(r.real(41, 1.0));
    rec->setObliquingAngle(r.real(50, 0.0) * kPi / 180.0);
    rec->setFileName(text(r, 3).c_str());
    rec->setBigFontFileName(text(r, 4).c_str());
    // A TrueType face comes as the ACAD application's data: the name, then packed flags.
    bool acad = false;
    std::wstring face;
    long long flags = 0;
    for (const Group* g = r.begin + 1; g < r.end; ++g) {
        if (g->code == 1001)
            acad = upperCase(text(g)) == L"ACAD";
        else if (acad && g->code == 1000 && face.empty())
            face = text(g);
        else if (acad && g->code == 1071)
            flags = g->integer;
    }
    if (!face.empty())
        rec->setFont(face.c_str(), (flags & 0x2000000) != 0, (flags & 0x1000000) != 0,
                     static_cast<int>((flags >> 8) & 0xFF), static_cast<int>(flags & 0xFF));
    xdata(rec, r);
    rec->close();
    if (r.handle()) mIds[r.handle()] = id;
}

void Reader::regApp(const std::wstring& name) {
    if (name.empty()) return;
    {
        ReadOpen<AcDbRegAppTable> table(mDb->regAppTableId());
        if (!table || table->has(name.c_str())) return;
    }
    auto* rec = new AcDbRegAppTableRecord();
    if (!addRecord<AcDbRegAppTable>(mDb->regAppTableId(), rec, name).isNull()) rec->close();
}

AcDbObjectId Reader::layerNamed(const std::wstring& name) {
    const std::wstring key = upperCase(name.empty() ? std::wstring(L"0") : name);
    if (auto it = mLayers.find(key); it != mLayers.end()) return it->second;
    // Entities may name layers the table lacks; other programs make them as they read.
    auto* rec = new AcDbLayerTableRecord();
    AcCmColor white;
    white.setColorIndex(7);
    rec->setColor(white);
    rec->setLinetypeObjectId(mDb->continuousLinetype());
    const AcDbObjectId id =
        addRecord<AcDbLayerTable>(mDb->layerTableId(), rec, name.empty() ? L"0" : name);
    if (id.isNull()) return mDb->layerZero();
    rec->close();
    mLayers[key] = id;
    return id;
}

AcDbObjectId Reader::linetypeNamed(const std::wstring& name) const {
    auto it = mLinetypes.find(upperCase(name));
    return it == mLinetypes.end() ? AcDbObjectId() : it->second;
}

AcDbObjectId Reader::styleNamed(const std::wstring& name) const {
    auto it = mStyles.find(upperCase(name));
    return it == mStyles.end() ? AcDbObjectId() : it->second;
}

} // namespace qor::dxf
