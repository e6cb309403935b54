// Drawing files: an SQLite database with a header table, a class table and an object table
// holding each object's typed stream. A save is one transaction into a temporary file that
// replaces the target only when complete, so a failed save loses nothing.
#include "db/stub.h"
#include "dbfilers.h"
#include "dbmain.h"
#include "dbproxy.h"
#include "winstr.h"

#include <sqlite3.h>

#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <map>
#include <unordered_map>

namespace {

constexpr const char* kFormat = "qdb";
constexpr int kFormatVersion = 1;

constexpr const char* kSchema = R"sql(
CREATE TABLE header(name TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE classes(id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, parent TEXT NOT NULL,
                     dxfname TEXT NOT NULL, app TEXT NOT NULL, proxyflags INTEGER NOT NULL);
CREATE TABLE objects(handle INTEGER PRIMARY KEY, owner INTEGER NOT NULL, class INTEGER NOT NULL,
                     erased INTEGER NOT NULL, data BLOB NOT NULL);
)sql";

std::string pathOf(const ACHAR* fileName) {
    std::string path = qorToUtf8(fileName);
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

// One prepared statement, finalised on scope exit.
class Statement {
public:
    Statement(sqlite3* db, const char* sql) { sqlite3_prepare_v2(db, sql, -1, &mStmt, nullptr); }
    ~Statement() { sqlite3_finalize(mStmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    explicit operator bool() const { return mStmt != nullptr; }
    sqlite3_stmt* get() const { return mStmt; }
    bool step() { return sqlite3_step(mStmt) == SQLITE_ROW; }
    bool run() {
        int rc = sqlite3_step(mStmt);
        sqlite3_reset(mStmt);
        return rc == SQLITE_DONE;
    }
    std::wstring text(int col) const {
        const auto* s = reinterpret_cast<const char*>(sqlite3_column_text(mStmt, col));
        return s ? qorFromUtf8(s) : std::wstring();
    }
    Adesk::Int64 integer(int col) const { return sqlite3_column_int64(mStmt, col); }
    void bind(int i, Adesk::Int64 v) { sqlite3_bind_int64(mStmt, i, v); }
    void bind(int i, const std::wstring& s) { bindUtf8(i, qorToUtf8(s)); }
    void bindUtf8(int i, const std::string& s) {
        sqlite3_bind_text(mStmt, i, s.c_str(), -1, SQLITE_TRANSIENT);
    }
    void bindBlob(int i, const void* data, size_t n) {
        sqlite3_bind_blob64(mStmt, i, n ? data : "", n, SQLITE_TRANSIENT);
    }

private:
    sqlite3_stmt* mStmt = nullptr;
};

class Connection {
public:
    ~Connection() { sqlite3_close(mDb); }
    bool open(const std::string& path, int flags) {
        return sqlite3_open_v2(path.c_str(), &mDb, flags, nullptr) == SQLITE_OK;
    }
    sqlite3* get() const { return mDb; }
    bool exec(const char* sql) {
        return sqlite3_exec(mDb, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    std::wstring error() const { return qorFromUtf8(mDb ? sqlite3_errmsg(mDb) : "cannot open"); }

private:
    sqlite3* mDb = nullptr;
};

std::wstring number(double v) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return qorFromUtf8(buf);
}

std::wstring point(const AcGePoint3d& p) {
    return number(p.x) + L"," + number(p.y) + L"," + number(p.z);
}

AcGePoint3d parsePoint(const std::wstring& s) {
    AcGePoint3d p;
    std::swscanf(s.c_str(), L"%lf,%lf,%lf", &p.x, &p.y, &p.z);
    return p;
}

bool isEntityClass(const AcDbClassRecord& rec) {
    // The parent row names a platform class for every module class.
    auto* parent = AcRxClass::cast(acrxClassDictionary()->at(rec.parent.c_str()));
    return parent && parent->isDerivedFrom(AcDbEntity::desc());
}

} // namespace

// Internal access to objects and databases for the store.
struct AcDbObjectAccess {
    static void attach(AcDbObject* obj, AcDbStub* stub, AcDbObjectId owner) {
        obj->mId = AcDbObjectId(stub);
        obj->mOwner = owner;
        obj->mOpenMode = AcDb::kForWrite;
        stub->object = obj;
    }
    static void settle(AcDbObject* obj) {
        obj->mOpenMode = AcDb::kNotOpen;
        obj->mReaders = 0;
        obj->mModified = false;
        obj->mNew = false;
    }
    static AcDb::OpenMode openMode(const AcDbObject* obj) { return obj->mOpenMode; }
    static void setOpenMode(AcDbObject* obj, AcDb::OpenMode m) { obj->mOpenMode = m; }
};

// ---------------------------------------------------------------- save

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName) {
    if (!fileName || !*fileName) {
        mLastError = L"no file name";
        return Acad::eInvalidInput;
    }
    const std::string path = pathOf(fileName);
    const std::string temp = path + ".saving";
    std::error_code ec;
    std::filesystem::remove(temp, ec);

    auto fail = [&](const std::wstring& why, Acad::ErrorStatus es) {
        mLastError = why;
        std::filesystem::remove(temp, ec);
        return es;
    };
    {
        Connection db;
        if (!db.open(temp, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE))
            return fail(L"cannot create " + std::wstring(fileName) + L": " + db.error(),
                        Acad::eFileAccessErr);
        db.exec("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;");
        if (!db.exec(kSchema) || !db.exec("BEGIN"))
            return fail(L"cannot write " + std::wstring(fileName) + L": " + db.error(),
                        Acad::eFileAccessErr);

        Statement addClass(db.get(), "INSERT INTO classes VALUES(?,?,?,?,?,?)");
        Statement addObject(db.get(), "INSERT INTO objects VALUES(?,?,?,?,?)");
        Statement addHeader(db.get(), "INSERT INTO header VALUES(?,?)");
        std::unordered_map<std::wstring, Adesk::Int64> classIds;

        auto classId = [&](const AcDbClassRecord& rec) {
            auto [it, added] =
                classIds.try_emplace(rec.name, static_cast<Adesk::Int64>(classIds.size() + 1));
            if (added) {
                addClass.bind(1, it->second);
                addClass.bind(2, rec.name);
                addClass.bind(3, rec.parent);
                addClass.bind(4, rec.dxfName);
                addClass.bind(5, rec.appName);
                addClass.bind(6, rec.proxyFlags);
                addClass.run();
            }
            return it->second;
        };

        for (const auto& [handle, stub] : mStubs) {
            AcDbObject* obj = stub->object;
            if (!obj) continue;
            AcDbClassRecord rec;
            const std::vector<std::uint8_t>* bytes = nullptr;
            AcDbStreamDwgFiler out;
            if (auto* p = AcDbProxyObject::cast(obj)) {
                rec = p->classRecord();
                bytes = &p->originalData();
            } else if (auto* p = AcDbProxyEntity::cast(obj)) {
                rec = p->classRecord();
                bytes = &p->originalData();
            } else {
                AcRxClass* c = obj->isA();
                rec = {c->name(), c->myParent() ? c->myParent()->name() : c->parentName(),
                       c->dxfName(), c->appName(), c->proxyFlags()};
                // Filing out reads the object; one nobody has open is read on the store's behalf.
                const AcDb::OpenMode was = AcDbObjectAccess::openMode(obj);
                if (was == AcDb::kNotOpen) AcDbObjectAccess::setOpenMode(obj, AcDb::kForRead);
                Acad::ErrorStatus es = obj->dwgOutFields(&out);
                AcDbObjectAccess::setOpenMode(obj, was);
                if (es != Acad::eOk)
                    return fail(L"cannot file out object " +
                                    qorFormat(L"%llX", static_cast<unsigned long long>(handle)) +
                                    L" of class " + rec.name,
                                es);
                bytes = &out.bytes();
            }
            addObject.bind(1, static_cast<Adesk::Int64>(handle));
            addObject.bind(2, static_cast<Adesk::Int64>(obj->ownerId().handle().value()));
            addObject.bind(3, classId(rec));
            addObject.bind(4, stub->erased ? 1 : 0);
            addObject.bindBlob(5, bytes->data(), bytes->size());
            if (!addObject.run())
                return fail(L"cannot write " + std::wstring(fileName) + L": " + db.error(),
                            Acad::eFileAccessErr);
        }

        auto header = [&](const char* name, const std::wstring& value) {
            addHeader.bindUtf8(1, name);
            addHeader.bind(2, value);
            addHeader.run();
        };
        auto handleOf = [](AcDbObjectId id) {
            return qorFormat(L"%llX", static_cast<unsigned long long>(id.handle().value()));
        };
        header("format", qorFromUtf8(kFormat));
        header("version", std::to_wstring(kFormatVersion));
        header("HANDSEED", qorFormat(L"%llX", static_cast<unsigned long long>(mNextHandle)));
        header("BLOCKTABLE", handleOf(mBlockTable));
        header("LAYERTABLE", handleOf(mLayerTable));
        header("LTYPETABLE", handleOf(mLinetypeTable));
        header("STYLETABLE", handleOf(mTextStyleTable));
        header("APPIDTABLE", handleOf(mRegAppTable));
        header("NAMEDOBJECTS", handleOf(mNamedObjects));
        header("CLAYER", handleOf(mHeader.clayer));
        header("CELTYPE", handleOf(mHeader.celtype));
        header("TEXTSTYLE", handleOf(mHeader.textstyle));
        header("CECOLOR", std::to_wstring(mHeader.cecolor.color()));
        header("CELTSCALE", number(mHeader.celtscale));
        header("LTSCALE", number(mHeader.ltscale));
        header("CELWEIGHT", std::to_wstring(static_cast<int>(mHeader.celweight)));
        header("TEXTSIZE", number(mHeader.textsize));
        header("INSBASE", point(mHeader.insbase));
        header("EXTMIN", point(mHeader.extmin));
        header("EXTMAX", point(mHeader.extmax));
        header("INSUNITS", std::to_wstring(mHeader.insunits));

        if (!db.exec("COMMIT"))
            return fail(L"cannot write " + std::wstring(fileName) + L": " + db.error(),
                        Acad::eFileAccessErr);
    }
    std::filesystem::rename(temp, path, ec);
    if (ec)
        return fail(L"cannot replace " + std::wstring(fileName) + L": " + qorFromUtf8(ec.message()),
                    Acad::eFileAccessErr);
    mFileName = fileName;
    mLastError.clear();
    return Acad::eOk;
}

// ---------------------------------------------------------------- read

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName) {
    if (!fileName || !*fileName) {
        mLastError = L"no file name";
        return Acad::eInvalidInput;
    }
    const std::string path = pathOf(fileName);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        mLastError = std::wstring(fileName) + L": no such drawing file";
        return Acad::eFileNotFound;
    }
    Connection db;
    if (!db.open(path, SQLITE_OPEN_READONLY)) {
        mLastError = std::wstring(fileName) + L": " + db.error();
        return Acad::eFileAccessErr;
    }
    auto fail = [&](const std::wstring& why, Acad::ErrorStatus es) {
        clear();
        mLastError = std::wstring(fileName) + L": " + why;
        return es;
    };

    std::map<std::wstring, std::wstring> header;
    {
        Statement q(db.get(), "SELECT name, value FROM header");
        if (!q) return fail(L"not a drawing file (" + db.error() + L")", Acad::eInvalidDwgVersion);
        while (q.step())
            header[q.text(0)] = q.text(1);
    }
    if (header[L"format"] != qorFromUtf8(kFormat))
        return fail(L"not a drawing file", Acad::eInvalidDwgVersion);
    if (std::wcstol(header[L"version"].c_str(), nullptr, 10) > kFormatVersion)
        return fail(L"written by a newer version of this program", Acad::eInvalidDwgVersion);

    clear();
    std::unordered_map<Adesk::Int64, AcDbClassRecord> classes;
    {
        Statement q(db.get(), "SELECT id, name, parent, dxfname, app, proxyflags FROM classes");
        if (!q) return fail(L"damaged class table (" + db.error() + L")", Acad::eFilerError);
        while (q.step())
            classes[q.integer(0)] = {q.text(1), q.text(2), q.text(3), q.text(4),
                                     static_cast<int>(q.integer(5))};
    }
    {
        Statement q(db.get(), "SELECT handle FROM objects");
        if (!q) return fail(L"damaged object table (" + db.error() + L")", Acad::eFilerError);
        while (q.step()) {
            Adesk::Int64 h = q.integer(0);
            if (h <= 0) return fail(L"object with an invalid handle", Acad::eFilerError);
            stubFor(static_cast<Adesk::UInt64>(h), true);
        }
    }

    auto resolve = [this](AcDbHandle h) { return AcDbObjectId(stubFor(h.value(), !h.isNull())); };
    Statement q(
        db.get(),
        "SELECT o.handle, o.owner, o.class, o.erased, o.data, "
        "(SELECT c.name FROM objects p JOIN classes c ON c.id = p.class WHERE p.handle = o.owner) "
        "FROM objects o ORDER BY o.handle");
    if (!q) return fail(L"damaged object table (" + db.error() + L")", Acad::eFilerError);
    while (q.step()) {
        const auto handle = static_cast<Adesk::UInt64>(q.integer(0));
        const auto owner = q.integer(1);
        auto cls = classes.find(q.integer(2));
        if (cls == classes.end())
            return fail(qorFormat(L"object %llX has no class record",
                                  static_cast<unsigned long long>(handle)),
                        Acad::eFilerError);
        const AcDbClassRecord& rec = cls->second;
        const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(q.get(), 4));
        const auto size = static_cast<size_t>(sqlite3_column_bytes(q.get(), 4));
        AcDbStub* stub = stubFor(handle, true);
        stub->erased = q.integer(3) != 0;
        const AcDbObjectId ownerId(stubFor(static_cast<Adesk::UInt64>(owner), owner > 0));

        AcDbObject* obj = nullptr;
        if (auto* c = AcRxClass::cast(acrxClassDictionary()->at(rec.name.c_str())))
            obj = AcDbObject::cast(c->create());
        Acad::ErrorStatus es = Acad::eMakeMeProxy;
        if (obj) {
            AcDbObjectAccess::attach(obj, stub, ownerId);
            AcDbStreamDwgFiler in(data, size, resolve, this);
            es = obj->dwgInFields(&in);
            if (es == Acad::eMakeMeProxy) {
                stub->object = nullptr;
                delete obj;
                obj = nullptr;
            } else if (es != Acad::eOk) {
                return fail(qorFormat(L"object %llX of class %ls cannot be read (status %d)",
                                      static_cast<unsigned long long>(handle), rec.name.c_str(),
                                      static_cast<int>(es)),
                            es);
            }
        }
        if (!obj) {
            // A missing or newer class: keep the record and the bytes as they are.
            std::vector<std::uint8_t> bytes(data, data + size);
            const bool entity = isEntityClass(rec) || q.text(5) == L"AcDbBlockTableRecord";
            if (entity) {
                auto* proxy = new AcDbProxyEntity(rec, std::move(bytes));
                AcDbObjectAccess::attach(proxy, stub, ownerId);
                // The common entity data leads the bytes; it gives the proxy its layer and colour.
                AcDbStreamDwgFiler in(data, size, resolve, this);
                proxy->AcDbEntity::dwgInFields(&in);
                obj = proxy;
            } else {
                obj = new AcDbProxyObject(rec, std::move(bytes));
                AcDbObjectAccess::attach(obj, stub, ownerId);
            }
        }
        AcDbObjectAccess::settle(obj);
    }

    auto id = [&](const wchar_t* name) {
        AcDbHandle h(header[name].c_str());
        return AcDbObjectId(stubFor(h.value(), false));
    };
    mBlockTable = id(L"BLOCKTABLE");
    mLayerTable = id(L"LAYERTABLE");
    mLinetypeTable = id(L"LTYPETABLE");
    mTextStyleTable = id(L"STYLETABLE");
    mRegAppTable = id(L"APPIDTABLE");
    mNamedObjects = id(L"NAMEDOBJECTS");
    if (mBlockTable.isNull() || mLayerTable.isNull() || !mBlockTable.isResident() ||
        !mLayerTable.isResident())
        return fail(L"the drawing has no block or layer table", Acad::eFilerError);
    mHeader.clayer = id(L"CLAYER");
    mHeader.celtype = id(L"CELTYPE");
    mHeader.textstyle = id(L"TEXTSTYLE");
    mHeader.cecolor.setColor(
        static_cast<Adesk::UInt32>(std::wcstoul(header[L"CECOLOR"].c_str(), nullptr, 10)));
    mHeader.celtscale = std::wcstod(header[L"CELTSCALE"].c_str(), nullptr);
    mHeader.ltscale = std::wcstod(header[L"LTSCALE"].c_str(), nullptr);
    mHeader.celweight =
        static_cast<AcDb::LineWeight>(std::wcstol(header[L"CELWEIGHT"].c_str(), nullptr, 10));
    mHeader.textsize = std::wcstod(header[L"TEXTSIZE"].c_str(), nullptr);
    mHeader.insbase = parsePoint(header[L"INSBASE"]);
    mHeader.extmin = parsePoint(header[L"EXTMIN"]);
    mHeader.extmax = parsePoint(header[L"EXTMAX"]);
    mHeader.insunits =
        static_cast<Adesk::Int16>(std::wcstol(header[L"INSUNITS"].c_str(), nullptr, 10));
    if (!(mHeader.celtscale > 0)) mHeader.celtscale = 1.0;
    if (!(mHeader.ltscale > 0)) mHeader.ltscale = 1.0;
    if (!(mHeader.textsize > 0)) mHeader.textsize = 2.5;
    const Adesk::UInt64 seed = AcDbHandle(header[L"HANDSEED"].c_str()).value();
    if (seed > mNextHandle) mNextHandle = seed;
    mFileName = fileName;
    mLastError.clear();
    return Acad::eOk;
}
