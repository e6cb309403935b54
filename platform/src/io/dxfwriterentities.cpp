// The BLOCKS and ENTITIES sections: every entity through its own dxfOutFields, or, when asked,
// the entities of a module's classes as the plain entities of their explode.
#include "io/dxfwriter.h"

#include "db2dpoly.h"
#include "db3dpoly.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "dbvertex.h"

#include <memory>

namespace qor::dxf {

namespace {

// The plain types whose platform classes write their whole record.
bool isPlainType(const std::wstring& type) {
    static const wchar_t* const kTypes[] = {
        L"LINE",    L"ARC",    L"CIRCLE", L"LWPOLYLINE", L"TEXT",   L"INSERT",   L"POINT",
        L"ELLIPSE", L"SPLINE", L"HATCH",  L"MTEXT",      L"3DFACE", L"POLYLINE",
    };
    for (const wchar_t* t : kTypes)
        if (type == t) return true;
    return false;
}

// The name a left-out entity is counted under: a proxy's original type, else its own.
std::wstring typeForReport(const AcDbEntity* ent) {
    if (const auto* p = AcDbProxyEntity::cast(ent)) {
        if (*p->originalDxfName()) return p->originalDxfName();
        return p->originalClassName();
    }
    return dxfTypeOf(ent->isA());
}

// The entity's own linetype, or empty for the default (by layer).
std::wstring linetypeOf(const AcDbEntity* ent) {
    if (ent->linetypeId().isNull()) return {};
    ACHAR* name = ent->linetype();
    std::wstring s = name ? name : L"";
    delete[] name;
    return upperCase(s) == L"BYLAYER" ? std::wstring() : s;
}

} // namespace

void Writer::blocks(OutFiler& f) {
    for (const Block& b : mBlocks) {
        std::wstring name, comments;
        AcGePoint3d origin;
        bool anonymous = false;
        {
            ReadOpen<AcDbBlockTableRecord> btr(b.id);
            if (!btr) continue;
            name = btr->name();
            comments = btr->comments();
            origin = btr->origin();
            anonymous = btr->isAnonymous();
        }
        const bool paper = b.id == mPaperSpace;
        const std::uint64_t owner = handleOf(b.id);
        head(f, L"BLOCK", b.begin, owner);
        f.ascii(100, "AcDbEntity");
        if (paper) f.integer(67, 1);
        f.ascii(8, "0");
        f.ascii(100, "AcDbBlockBegin");
        f.text(2, name);
        f.integer(70, anonymous ? 1 : 0);
        f.point(10, origin.x, origin.y, origin.z);
        f.text(3, name);
        f.ascii(1, "");
        if (!comments.empty()) f.text(4, comments);
        // The two spaces' entities go in the ENTITIES section.
        if (b.id != mModelSpace && b.id != mPaperSpace) blockEntities(f, b.id, owner, false, false);
        head(f, L"ENDBLK", b.end, owner);
        f.ascii(100, "AcDbEntity");
        if (paper) f.integer(67, 1);
        f.ascii(8, "0");
        f.ascii(100, "AcDbBlockEnd");
    }
}

void Writer::entities(OutFiler& f) {
    size_t count = 0;
    for (AcDbObjectId space : {mModelSpace, mPaperSpace}) {
        ReadOpen<AcDbBlockTableRecord> btr(space);
        if (btr) count += btr->entityIds().size();
    }
    qor::MeterScope meter(L"Writing DXF", count);
    blockEntities(f, mModelSpace, handleOf(mModelSpace), false, true, &meter);
    if (!mPaperSpace.isNull())
        blockEntities(f, mPaperSpace, handleOf(mPaperSpace), true, false, &meter);
}

void Writer::blockEntities(OutFiler& f, AcDbObjectId btrId, std::uint64_t owner, bool paper,
                           bool extents, qor::MeterScope* meter) {
    std::vector<AcDbObjectId> ids;
    {
        ReadOpen<AcDbBlockTableRecord> btr(btrId);
        if (!btr) return;
        ids = btr->entityIds();
    }
    for (AcDbObjectId id : ids) {
        if (meter) meter->step();
        ReadOpen<AcDbEntity> ent(id);
        if (!ent) continue; // erased
        if (extents && ent->visibility() == AcDb::kVisible) {
            AcDbExtents e;
            if (ent->getGeomExtents(e) == Acad::eOk) mExtents.addExt(e);
        }
        entity(f, ent.get(), handleOf(id), owner, paper, 0);
    }
}

void Writer::entity(OutFiler& f, const AcDbEntity* ent, std::uint64_t handle, std::uint64_t owner,
                    bool paper, int depth) {
    const AcRxClass* c = ent->isA();
    const bool custom = isCustomClass(c);
    if (custom && mOptions.explode) {
        exploded(f, ent, owner, paper, depth);
        return;
    }
    const std::wstring type = dxfTypeOf(c);
    if (!custom && !isPlainType(type)) {
        leaveOut(typeForReport(ent));
        return;
    }
    if (!ent->objectId().isNull()) mWritten.insert(handle);
    head(f, type, handle, owner, ent);
    f.beginEntity(paper, linetypeOf(ent));
    fields(f, ent, handle);
    f.endEntity();
    xdata(f, ent);
    vertices(f, ent, handle, paper);
    if (custom) counted(c);
    ++mReport.entities;
}

void Writer::vertices(OutFiler& f, const AcDbEntity* polyline, std::uint64_t handle, bool paper) {
    AcDbObjectIterator* it = nullptr;
    if (const auto* p = AcDb2dPolyline::cast(polyline))
        it = p->vertexIterator();
    else if (const auto* p = AcDb3dPolyline::cast(polyline))
        it = p->vertexIterator();
    if (!it) return;
    const std::unique_ptr<AcDbObjectIterator> owned(it);
    ACHAR* name = polyline->layer();
    const std::wstring layer = name && *name ? name : L"0";
    delete[] name;
    for (; !it->done(); it->step()) {
        const AcDbEntity* vertex = it->entity();
        if (!vertex) continue;
        head(f, L"VERTEX", newHandle(), handle);
        f.beginEntity(paper, {}, layer);
        fields(f, vertex, handle);
        f.endEntity();
    }
    head(f, L"SEQEND", newHandle(), handle);
    f.ascii(100, "AcDbEntity");
    if (paper) f.integer(67, 1);
    f.text(8, layer);
}

void Writer::exploded(OutFiler& f, const AcDbEntity* ent, std::uint64_t owner, bool paper,
                      int depth) {
    // Explode output that explodes to itself again must end somewhere.
    constexpr int kDeepest = 8;
    AcDbVoidPtrArray raw;
    const Acad::ErrorStatus es = depth < kDeepest ? ent->explode(raw) : Acad::eNotApplicable;
    std::vector<std::unique_ptr<AcDbEntity>> pieces;
    for (int i = 0; i < raw.length(); ++i)
        pieces.emplace_back(static_cast<AcDbEntity*>(raw[i]));
    if (es != Acad::eOk) {
        leaveOut(dxfTypeOf(ent->isA()));
        return;
    }
    for (const auto& piece : pieces)
        if (piece) entity(f, piece.get(), newHandle(), owner, paper, depth + 1);
}

} // namespace qor::dxf
