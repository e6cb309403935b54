// The BLOCKS and ENTITIES sections: where each entity goes, the records that belong to one
// entity (a polyline's vertices, an insert's attributes), and the properties all share.
#include "io/dxfreader.h"

#include "ed/meterscope.h"

#include "dbhatch.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "io/dxfwriter.h"

#include <cstdlib>

namespace qor::dxf {

namespace {

bool isModelSpaceName(const std::wstring& upper) {
    return upper == L"*MODEL_SPACE" || upper == L"$MODEL_SPACE";
}

bool isPaperSpaceName(const std::wstring& upper) {
    return upper == L"*PAPER_SPACE" || upper == L"$PAPER_SPACE";
}

// The records after first that follow an entity (VERTEX or ATTRIB) up to its SEQEND;
// returns where they end and sets next past the SEQEND.
size_t followers(const std::vector<Record>& records, size_t first, size_t end,
                 std::string_view type, size_t& next) {
    size_t j = first;
    while (j < end && records[j].type() == type)
        ++j;
    next = j < end && records[j].type() == "SEQEND" ? j + 1 : j;
    return j;
}

} // namespace

void Reader::blocks(const Section& s) {
    struct Definition {
        size_t begin = 0, end = 0; // the records between BLOCK and ENDBLK
        AcDbObjectId id;
    };
    const std::vector<Record>& records = s.records;
    // Every block is made first, so that an insert may name one defined after it.
    std::vector<Definition> definitions;
    for (size_t i = 0; i < records.size(); ++i) {
        const Record& r = records[i];
        if (r.type() != "BLOCK")
            fail(r.line(), L"expected BLOCK, found " + text(r.type()) + L" outside a block");
        std::wstring name = text(r, 2);
        if (name.empty()) name = text(r, 3);
        size_t j = i + 1;
        while (j < records.size() && records[j].type() != "ENDBLK") {
            if (records[j].type() == "BLOCK")
                fail(records[j].line(), L"block " + name + L" has no ENDBLK before this BLOCK");
            ++j;
        }
        if (j == records.size()) fail(r.line(), L"block " + name + L" has no ENDBLK");
        Definition d{i + 1, j, {}};
        const std::wstring key = upperCase(name);
        if (name.empty()) {
            fail(r.line(), L"a block without a name");
        } else if (isModelSpaceName(key)) {
            d.id = mModelSpace;
        } else if (isPaperSpaceName(key)) {
            d.id = mPaperSpace;
        } else if (auto it = mBlocks.find(key); it != mBlocks.end()) {
            d.id = it->second;
        } else {
            auto* btr = new AcDbBlockTableRecord();
            btr->setName(name.c_str());
            btr->setOrigin(r.point(10));
            btr->setComments(text(r, 4).c_str());
            AcDbBlockTable* table = nullptr;
            if (mDb->getBlockTable(table, AcDb::kForWrite) == Acad::eOk) {
                if (table->add(d.id, btr) == Acad::eOk)
                    btr->close();
                else
                    delete btr;
                table->close();
            } else {
                delete btr;
            }
            mBlocks[key] = d.id;
        }
        if (r.owner() && !d.id.isNull()) mIds[r.owner()] = d.id;
        definitions.push_back(d);
        i = j;
    }
    for (const auto& [handle, name] : mBlockRecords)
        if (auto it = mBlocks.find(name); it != mBlocks.end()) mIds.emplace(handle, it->second);

    for (const Definition& d : definitions) {
        AcDbBlockTableRecord* btr = nullptr;
        if (acdbOpenObject(btr, d.id, AcDb::kForWrite) != Acad::eOk) continue;
        for (size_t k = d.begin; k < d.end;)
            k = entity(records, k, d.end, btr, nullptr);
        btr->close();
    }
}

void Reader::entities(const Section& s) {
    AcDbBlockTableRecord *model = nullptr, *paper = nullptr;
    if (acdbOpenObject(model, mModelSpace, AcDb::kForWrite) != Acad::eOk)
        fail(0, L"the model space cannot be opened");
    acdbOpenObject(paper, mPaperSpace, AcDb::kForWrite);
    qor::MeterScope meter(L"Reading DXF", s.records.size());
    for (size_t i = 0; i < s.records.size();) {
        const size_t next = entity(s.records, i, s.records.size(), model, paper);
        for (; i < next; ++i)
            meter.step();
    }
    model->close();
    if (paper) paper->close();
}

size_t Reader::entity(const std::vector<Record>& records, size_t i, size_t end,
                      AcDbBlockTableRecord* target, AcDbBlockTableRecord* paper) {
    const Record& r = records[i];
    const std::string_view type = r.type();
    if (paper && (r.integer(67, 0) == 1 || (r.owner() && resolve(r.owner()) == mPaperSpace)))
        target = paper;
    size_t next = i + 1;

    if (type == "LINE") {
        add(target, line(r), r);
    } else if (type == "CIRCLE") {
        add(target, circle(r), r);
    } else if (type == "ARC") {
        add(target, arc(r), r);
    } else if (type == "LWPOLYLINE") {
        add(target, lwpolyline(r), r);
    } else if (type == "TEXT" || type == "ATTDEF") {
        add(target, textEntity(r, type == "ATTDEF"), r);
    } else if (type == "MTEXT") {
        for (AcDbEntity* ent : mtext(r))
            add(target, ent, r);
    } else if (type == "POLYLINE") {
        const size_t last = followers(records, i + 1, end, "VERTEX", next);
        if (AcDbEntity* ent = polyline(records, i + 1, last))
            add(target, ent, r);
        else
            skip(type);
    } else if (type == "INSERT") {
        const size_t last = followers(records, i + 1, end, "ATTRIB", next);
        const std::vector<AcDbEntity*> made = inserts(r);
        if (made.empty()) skip(type);
        for (AcDbEntity* ent : made)
            add(target, ent, r);
        // Attributes stay where they show, as texts beside their insert.
        for (size_t k = i + 1; k < last; ++k)
            add(target, textEntity(records[k], true), records[k]);
    } else if (type == "SEQEND") {
        // The end of a run whose head was already read or skipped.
    } else if (type == "ELLIPSE") {
        if (AcDbEntity* ent = ellipse(r))
            add(target, ent, r);
        else
            skip(type);
    } else if (type == "SPLINE") {
        later(target, AcDbSpline::desc(), r);
    } else if (type == "HATCH") {
        later(target, AcDbHatch::desc(), r);
    } else if (const ClassInfo* c = customClass(type)) {
        if (c->cls && c->entity)
            later(target, c->cls, r);
        else
            skip(type);
    } else {
        skip(type);
        // A run of an unknown head goes with it.
        if (next < end && (records[next].type() == "VERTEX" || records[next].type() == "ATTRIB"))
            followers(records, next, end, records[next].type(), next);
    }
    return next;
}

void Reader::later(AcDbBlockTableRecord* target, AcRxClass* cls, const Record& r) {
    auto* ent = AcDbEntity::cast(cls->create());
    AcDbObjectId id;
    if (!ent || target->appendAcDbEntity(id, ent) != Acad::eOk) {
        delete ent;
        skip(r.type());
        return;
    }
    ent->close();
    if (r.handle() && mIds.emplace(r.handle(), id).second) noteXdict(id, r);
    mCustom.push_back({id, r});
}

AcDbObjectId Reader::add(AcDbBlockTableRecord* target, AcDbEntity* ent, const Record& r) {
    if (!ent) return {};
    const bool hidden = ent->visibility() == AcDb::kInvisible;
    AcDbObjectId id;
    if (target->appendAcDbEntity(id, ent) != Acad::eOk) {
        delete ent;
        return {};
    }
    common(ent, r);
    if (hidden) ent->setVisibility(AcDb::kInvisible);
    xdata(ent, r);
    ent->close();
    if (const std::uint64_t h = r.handle(); h && mIds.emplace(h, id).second) noteXdict(id, r);
    ++mReport.entities;
    return id;
}

void Reader::noteXdict(AcDbObjectId id, const Record& r) {
    bool inXdict = false;
    for (const Group* g = r.begin + 1; g < r.end && g->code != 100; ++g) {
        if (g->code == 102)
            inXdict = g->trimmed() == "{ACAD_XDICTIONARY";
        else if (g->code == 360 && inXdict)
            mXdicts.emplace_back(id, g->handle());
    }
}

void Reader::common(AcDbEntity* ent, const Record& r) {
    const Group *layerName = nullptr, *ltype = nullptr, *aci = nullptr, *rgb = nullptr,
                *weight = nullptr, *scale = nullptr, *visibility = nullptr;
    for (const Group* g = r.begin + 1; g < r.end && g->code < 1000; ++g) {
        const Group** slot = nullptr;
        switch (g->code) {
        case 8:
            slot = &layerName;
            break;
        case 6:
            slot = &ltype;
            break;
        case 62:
            slot = &aci;
            break;
        case 420:
            slot = &rgb;
            break;
        case 370:
            slot = &weight;
            break;
        case 48:
            slot = &scale;
            break;
        case 60:
            slot = &visibility;
            break;
        default:
            break;
        }
        if (slot && !*slot) *slot = g;
    }
    ent->setLayer(layerNamed(text(layerName)));
    if (ltype)
        if (AcDbObjectId id = linetypeNamed(text(ltype)); !id.isNull()) ent->setLinetype(id);
    if (rgb) {
        const auto v = static_cast<std::uint32_t>(rgb->integer);
        AcCmColor c;
        c.setRGB((v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF);
        ent->setColor(c);
    } else if (aci && aci->integer >= -256 && aci->integer <= 256) {
        ent->setColorIndex(static_cast<Adesk::UInt16>(std::llabs(aci->integer)));
    }
    if (weight && isLineWeight(weight->integer))
        ent->setLineWeight(static_cast<AcDb::LineWeight>(weight->integer));
    if (scale && scale->real > 0.0) ent->setLinetypeScale(scale->real);
    if (visibility) ent->setVisibility(visibility->integer ? AcDb::kInvisible : AcDb::kVisible);
}

} // namespace qor::dxf
