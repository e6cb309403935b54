// The OBJECTS section and the second pass: dictionaries, extended records and objects of
// registered classes, then every custom object filled through its dxfInFields, and the
// extended data of whatever was read.
#include "io/dxfreader.h"

#include "io/dxfinfiler.h"
#include "io/dxfwriter.h"

namespace qor::dxf {

namespace {

// Nesting deeper than this is taken for damage.
constexpr int kDeepest = 32;

// The entity data AcDbEntity::dxfInFields reads; other common groups are not handed to it.
bool isCommonEntityCode(int code) {
    switch (code) {
    case 8:
    case 6:
    case 62:
    case 420:
    case 370:
    case 48:
    case 60:
        return true;
    default:
        return false;
    }
}

} // namespace

void Reader::objects(const Section* s) {
    if (!s) return;
    const Record* root = nullptr;
    for (const Record& r : s->records) {
        if (r.handle()) mObjects.emplace(r.handle(), r);
        if (!root && r.type() == "DICTIONARY") root = &r;
    }
    if (root) {
        if (root->handle()) mIds.emplace(root->handle(), mDb->namedObjectsDictionaryId());
        AcDbDictionary* nod = nullptr;
        if (mDb->getNamedObjectsDictionary(nod, AcDb::kForWrite) == Acad::eOk) {
            importEntries(nod, *root, 0);
            nod->close();
        }
    }
    for (const auto& [id, handle] : mXdicts) {
        auto it = mObjects.find(handle);
        if (it == mObjects.end() || mIds.count(handle) || !importable(it->second, 0)) continue;
        AcDbObjectId dictId;
        {
            AcDbObject* obj = nullptr;
            if (acdbOpenObject(obj, id, AcDb::kForWrite) != Acad::eOk) continue;
            obj->createExtensionDictionary();
            dictId = obj->extensionDictionary();
            obj->close();
        }
        AcDbDictionary* dict = nullptr;
        if (acdbOpenObject(dict, dictId, AcDb::kForWrite) != Acad::eOk) continue;
        mIds.emplace(handle, dictId);
        importEntries(dict, it->second, 1);
        dict->close();
    }
    // Objects of registered classes owned by other objects rather than by a dictionary.
    for (const Record& r : s->records) {
        const ClassInfo* c = customClass(r.type());
        if (!c || c->entity || (r.handle() && mIds.count(r.handle()))) continue;
        AcDbObject* obj = c->cls ? AcDbObject::cast(c->cls->create()) : nullptr;
        AcDbObjectId id;
        if (!obj || mDb->addAcDbObject(id, obj) != Acad::eOk) {
            delete obj;
            if (!c->own) skip(r.type());
            continue;
        }
        obj->close();
        if (r.handle()) mIds.emplace(r.handle(), id);
        mCustom.push_back({id, r});
    }
}

bool Reader::importable(const Record& r, int depth) {
    const std::string_view type = r.type();
    if (type == "XRECORD") return true;
    if (const ClassInfo* c = customClass(type)) return c->cls && !c->entity;
    if (type != "DICTIONARY" || depth > kDeepest) return false;
    const std::uint64_t h = r.handle();
    if (auto known = mImportable.find(h); h && known != mImportable.end()) return known->second;
    // A dictionary is worth making when something in it is; loops count as nothing.
    if (h) mImportable[h] = false;
    bool any = false;
    for (const Group* g = r.begin + 1; g < r.end && !any; ++g) {
        if (g->code != 350 && g->code != 360) continue;
        auto it = mObjects.find(g->handle());
        any = it != mObjects.end() && importable(it->second, depth + 1);
    }
    if (h) mImportable[h] = any;
    return any;
}

void Reader::importEntries(AcDbDictionary* dict, const Record& r, int depth) {
    if (depth > kDeepest) return;
    std::wstring name;
    for (const Group* g = r.begin + 1; g < r.end; ++g) {
        if (g->code == 3) {
            name = text(g);
            continue;
        }
        if ((g->code != 350 && g->code != 360) || name.empty()) continue;
        const std::wstring key = std::move(name);
        name.clear();
        auto it = mObjects.find(g->handle());
        if (it == mObjects.end() || mIds.count(g->handle())) continue;
        const Record& entry = it->second;
        if (!importable(entry, depth + 1)) continue;
        AcDbObject* obj = nullptr;
        if (entry.type() == "DICTIONARY")
            obj = new AcDbDictionary();
        else if (entry.type() == "XRECORD")
            obj = new AcDbXrecord();
        else
            obj = AcDbObject::cast(customClass(entry.type())->cls->create());
        AcDbObjectId id;
        if (!obj || dict->setAt(key.c_str(), obj, id) != Acad::eOk) {
            delete obj;
            continue;
        }
        mIds.emplace(g->handle(), id);
        if (auto* sub = AcDbDictionary::cast(obj)) {
            importEntries(sub, entry, depth + 1);
            xdata(sub, entry);
        } else if (AcDbXrecord::cast(obj)) {
            mXrecords.push_back({id, entry});
        } else {
            mCustom.push_back({id, entry});
        }
        obj->close();
    }
}

std::vector<const Group*> Reader::fieldsOf(const Record& r, bool entity) const {
    std::vector<const Group*> out;
    bool head = true, inEntity = false;
    int depth = 0;
    for (const Group* g = r.begin + 1; g < r.end && g->code < 1000; ++g) {
        if (g->code == 102) {
            // Application groups ({ACAD_REACTORS ... }) belong to the database, not the object.
            depth += g->trimmed().starts_with("{") ? 1 : -1;
            continue;
        }
        if (depth > 0) continue;
        if (g->code == 100) {
            head = false;
            inEntity = entity && g->trimmed() == "AcDbEntity";
            out.push_back(g);
            continue;
        }
        if (head && (g->code == 5 || g->code == 105 || g->code == 330)) continue;
        if (entity && (g->code == 67 || g->code == 410)) continue;
        if (inEntity && !isCommonEntityCode(g->code)) continue;
        out.push_back(g);
    }
    return out;
}

void Reader::fill() {
    auto resolver = [this](std::uint64_t h) { return resolve(h); };
    for (const Pending& p : mCustom) {
        AcDbObject* obj = nullptr;
        if (acdbOpenObject(obj, p.id, AcDb::kForWrite) != Acad::eOk) continue;
        const bool entity = AcDbEntity::cast(obj) != nullptr;
        InFiler filer(fieldsOf(p.record, entity), mText, resolver, mDb);
        const Acad::ErrorStatus es = obj->dxfInFields(&filer);
        if (es == Acad::eOk) {
            xdata(obj, p.record);
            if (obj->ownerId().isNull() && p.record.owner())
                obj->setOwnerId(resolve(p.record.owner()));
            if (entity) ++mReport.entities;
        } else {
            // An object its class cannot read is left out like an unknown one.
            obj->erase();
            skip(p.record.type());
        }
        obj->close();
    }
    for (const Pending& p : mXrecords) {
        AcDbXrecord* xrec = nullptr;
        if (acdbOpenObject(xrec, p.id, AcDb::kForWrite) != Acad::eOk) continue;
        std::vector<const Group*> groups;
        bool data = false;
        for (const Group* g = p.record.begin + 1; g < p.record.end && g->code < 1000; ++g) {
            if (!data) {
                data = g->code == 100 && g->trimmed() == "AcDbXrecord";
                // The cloning flag leads the data.
                if (data && g + 1 < p.record.end && g[1].code == 280) ++g;
                continue;
            }
            groups.push_back(g);
        }
        InFiler filer(std::move(groups), mText, resolver, mDb);
        resbuf* head = nullptr;
        resbuf** tail = &head;
        resbuf rb{};
        while (filer.readItem(&rb) == Acad::eOk) {
            resbuf one = rb;
            one.rbnext = nullptr;
            *tail = acutCopyRbChain(&one);
            tail = &(*tail)->rbnext;
        }
        if (head) xrec->setFromRbChain(*head, mDb);
        acutRelRb(head);
        xdata(xrec, p.record);
        xrec->close();
    }
}

void Reader::xdata(AcDbObject* obj, const Record& r) {
    const Group* first = r.begin + 1;
    while (first < r.end && first->code != 1001)
        ++first;
    if (first == r.end) return;
    std::vector<const Group*> groups;
    for (const Group* g = first; g < r.end; ++g)
        if (g->code >= 1000) groups.push_back(g);
    InFiler filer(
        std::move(groups), mText, [this](std::uint64_t h) { return resolve(h); }, mDb);
    resbuf* head = nullptr;
    resbuf** tail = &head;
    resbuf rb{};
    while (filer.readItem(&rb) == Acad::eOk) {
        // Every application named must be registered before the object may carry its data.
        if (rb.restype == AcDb::kDxfRegAppName && rb.resval.rstring) regApp(rb.resval.rstring);
        resbuf one = rb;
        one.rbnext = nullptr;
        *tail = acutCopyRbChain(&one);
        tail = &(*tail)->rbnext;
    }
    if (head && head->restype == AcDb::kDxfRegAppName) obj->setXData(head);
    acutRelRb(head);
}

} // namespace qor::dxf
