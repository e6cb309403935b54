// The OBJECTS section: the named-object dictionary with what it holds, the layouts readers
// expect, and every other dictionary, extended record and custom object whose owner is written.
#include "io/dxfwriter.h"

#include "dbdict.h"
#include "dbproxy.h"
#include "dbsymtb.h"

namespace qor::dxf {

namespace {

// The plot settings and layout of one space; the file's readers refuse a drawing without them.
void layout(OutFiler& f, const char* name, int tab, std::uint64_t block) {
    f.ascii(100, "AcDbPlotSettings");
    f.ascii(1, "");
    f.ascii(2, "none_device");
    f.ascii(4, "");
    f.ascii(6, "");
    for (int code = 40; code <= 49; ++code)
        f.real(code, 0.0);
    f.real(140, 0.0);
    f.real(141, 0.0);
    f.real(142, 1.0);
    f.real(143, 1.0);
    f.integer(70, 688);
    f.integer(72, 1);
    f.integer(73, 0);
    f.integer(74, 5);
    f.ascii(7, "");
    f.integer(75, 16);
    f.integer(76, 0);
    f.integer(77, 2);
    f.integer(78, 300);
    f.real(147, 1.0);
    f.real(148, 0.0);
    f.real(149, 0.0);
    f.ascii(100, "AcDbLayout");
    f.ascii(1, name);
    f.integer(70, 1);
    f.integer(71, tab);
    f.point(10, 0.0, 0.0);
    f.point(11, 420.0, 297.0);
    f.point(12, 0.0, 0.0, 0.0);
    f.point(14, 1e20, 1e20, 1e20);
    f.point(15, -1e20, -1e20, -1e20);
    f.real(146, 0.0);
    f.point(13, 0.0, 0.0, 0.0);
    f.point(16, 1.0, 0.0, 0.0);
    f.point(17, 0.0, 1.0, 0.0);
    f.integer(76, 0);
    f.handle(330, block);
}

bool isReservedEntry(const std::wstring& name) {
    const std::wstring n = upperCase(name);
    return n == L"ACAD_GROUP" || n == L"ACAD_LAYOUT";
}

} // namespace

bool Writer::writable(AcDbObjectId id, int depth) {
    const std::uint64_t h = handleOf(id);
    if (h == 0 || id.isErased()) return false;
    if (mWritten.count(h) || mWritable.count(h)) return true;
    if (mUnwritable.count(h)) return false;
    // An ownership loop in a damaged drawing must not loop here.
    constexpr int kDeepest = 64;
    bool ok = false;
    {
        ReadOpen<AcDbObject> obj(id);
        if (!obj) {
            mUnwritable.insert(h);
            return false;
        }
        // An entity goes in only as itself; whether it did is known once it is written.
        if (AcDbEntity::cast(obj.get())) return false;
        if (id == mDb->namedObjectsDictionaryId() || AcDbSymbolTable::cast(obj.get()) ||
            AcDbSymbolTableRecord::cast(obj.get())) {
            ok = true;
        } else if (AcDbDictionary::cast(obj.get()) || AcDbXrecord::cast(obj.get()) ||
                   isCustomClass(obj->isA())) {
            const AcDbObjectId owner = obj->ownerId();
            ok = depth < kDeepest && (owner.isNull() || writable(owner, depth + 1));
        }
    }
    (ok ? mWritable : mUnwritable).insert(h);
    return ok;
}

void Writer::objects(OutFiler& f) {
    const AcDbObjectId nodId = mDb->namedObjectsDictionaryId();
    const std::uint64_t root = nodId.isNull() ? newHandle() : handleOf(nodId);
    {
        ReadOpen<AcDbDictionary> nod(nodId);
        head(f, L"DICTIONARY", root, 0, nod.get());
        f.ascii(100, "AcDbDictionary");
        f.integer(281, 1);
        f.ascii(3, "ACAD_GROUP");
        f.handle(350, mGroupDict);
        f.ascii(3, "ACAD_LAYOUT");
        f.handle(350, mLayoutDict);
        if (nod) {
            for (const auto& [name, id] : nod->entries())
                if (!isReservedEntry(name) && writable(id)) {
                    f.text(3, name);
                    f.handle(350, handleOf(id));
                }
            xdata(f, nod.get());
        }
    }

    head(f, L"DICTIONARY", mGroupDict, root);
    f.ascii(100, "AcDbDictionary");
    f.integer(281, 1);

    head(f, L"DICTIONARY", mLayoutDict, root);
    f.ascii(100, "AcDbDictionary");
    f.integer(281, 1);
    f.ascii(3, "Model");
    f.handle(350, mModelLayout);
    if (mPaperLayout) {
        f.ascii(3, "Layout1");
        f.handle(350, mPaperLayout);
    }
    head(f, L"LAYOUT", mModelLayout, mLayoutDict);
    layout(f, "Model", 0, handleOf(mModelSpace));
    if (mPaperLayout) {
        head(f, L"LAYOUT", mPaperLayout, mLayoutDict);
        layout(f, "Layout1", 1, handleOf(mPaperSpace));
    }

    for (AcDbObjectId id : mDb->allObjectIds()) {
        if (id == nodId) continue;
        ReadOpen<AcDbObject> obj(id);
        if (!obj || AcDbEntity::cast(obj.get()) || AcDbSymbolTable::cast(obj.get()) ||
            AcDbSymbolTableRecord::cast(obj.get()))
            continue;
        if (const auto* proxy = AcDbProxyObject::cast(obj.get())) {
            leaveOut(*proxy->originalDxfName() ? proxy->originalDxfName()
                                               : proxy->originalClassName());
            continue;
        }
        if (!writable(id)) continue;
        const std::uint64_t handle = handleOf(id);
        const std::uint64_t owner = handleOf(obj->ownerId());
        if (const auto* dict = AcDbDictionary::cast(obj.get())) {
            head(f, L"DICTIONARY", handle, owner, dict);
            f.ascii(100, "AcDbDictionary");
            f.integer(281, 1);
            for (const auto& [name, entry] : dict->entries())
                if (writable(entry)) {
                    f.text(3, name);
                    f.handle(350, handleOf(entry));
                }
        } else if (const auto* xrec = AcDbXrecord::cast(obj.get())) {
            head(f, L"XRECORD", handle, owner, xrec);
            f.ascii(100, "AcDbXrecord");
            f.integer(280, 1);
            resbuf* chain = nullptr;
            xrec->rbChain(&chain);
            for (const resbuf* rb = chain; rb; rb = rb->rbnext)
                f.writeItem(*rb);
            acutRelRb(chain);
        } else {
            head(f, dxfTypeOf(obj->isA()), handle, owner, obj.get());
            fields(f, obj.get(), handle);
            counted(obj->isA());
        }
        xdata(f, obj.get());
    }
}

} // namespace qor::dxf
