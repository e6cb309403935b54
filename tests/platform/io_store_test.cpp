// Drawing files: round trips, proxies that keep their bytes, and damaged files.
#include "cmdline.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "support/sqlfile.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <vector>

namespace {

// A module-style entity with a version tag, registered and removed by the tests.
class TestTagged : public AcDbEntity {
public:
    static AcRxClass* sDesc;
    static Adesk::UInt16 sWriteVersion;
    static constexpr Adesk::UInt16 kHighest = 2;

    static AcRxClass* desc() { return sDesc; }
    AcRxClass* isA() const override { return sDesc; }
    static TestTagged* cast(const AcRxObject* p) {
        return p && sDesc && p->isKindOf(sDesc)
                   ? static_cast<TestTagged*>(const_cast<AcRxObject*>(p))
                   : nullptr;
    }
    static void rxInit() {
        sDesc = newAcRxClass(
            L"TestTagged", L"AcDbEntity", 29, 63, 3071,
            [] { return static_cast<AcRxObject*>(new TestTagged()); }, L"TEST_TAGGED", L"TESTAPP");
    }
    static void rxUninit() {
        deleteAcRxClass(sDesc);
        sDesc = nullptr;
    }

    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* f) const override {
        if (Acad::ErrorStatus es = AcDbEntity::dwgOutFields(f); es != Acad::eOk) return es;
        f->writeUInt16(sWriteVersion);
        f->writeDouble(value);
        f->writeString(name.c_str());
        f->writeHardPointerId(ref);
        return f->filerStatus();
    }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* f) override {
        if (Acad::ErrorStatus es = AcDbEntity::dwgInFields(f); es != Acad::eOk) return es;
        Adesk::UInt16 version = 0;
        f->readUInt16(&version);
        if (version > kHighest) return Acad::eMakeMeProxy;
        f->readDouble(&value);
        ACHAR* s = nullptr;
        f->readString(&s);
        name = s ? s : L"";
        acdbFree(s);
        f->readHardPointerId(&ref);
        return f->filerStatus();
    }

    double value = 0.0;
    std::wstring name;
    AcDbHardPointerId ref;
};
AcRxClass* TestTagged::sDesc = nullptr;
Adesk::UInt16 TestTagged::sWriteVersion = 1;

AcDbObjectId append(AcDbDatabase& db, AcDbEntity* ent) {
    AcDbBlockTableRecord* ms = nullptr;
    EXPECT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(ms->appendAcDbEntity(id, ent), Acad::eOk);
    ent->close();
    ms->close();
    return id;
}

std::vector<unsigned char> blobOf(const std::wstring& file, Adesk::UInt64 handle) {
    sqlite3* db = nullptr;
    std::vector<unsigned char> out;
    if (sqlite3_open_v2(qorToUtf8(file).c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* q = nullptr;
        sqlite3_prepare_v2(db, "SELECT data FROM objects WHERE handle = ?", -1, &q, nullptr);
        sqlite3_bind_int64(q, 1, static_cast<sqlite3_int64>(handle));
        if (sqlite3_step(q) == SQLITE_ROW) {
            const auto* p = static_cast<const unsigned char*>(sqlite3_column_blob(q, 0));
            out.assign(p, p + sqlite3_column_bytes(q, 0));
        }
        sqlite3_finalize(q);
    }
    sqlite3_close(db);
    return out;
}

class IoStore : public ::testing::Test {
protected:
    void SetUp() override { TestTagged::rxInit(); }
    void TearDown() override {
        if (TestTagged::sDesc) TestTagged::rxUninit();
        TestTagged::sWriteVersion = 1;
    }

    // A drawing with one tagged entity referring to layer "0"; returns its handle.
    Adesk::UInt64 saveTagged(const std::wstring& file) {
        AcDbDatabase db;
        auto* t = new TestTagged();
        t->value = 2.5;
        t->name = L"宗地";
        t->ref = db.layerZero();
        t->setColorIndex(3);
        AcDbObjectId id = append(db, t);
        EXPECT_EQ(db.saveAs(file.c_str()), Acad::eOk);
        return id.handle().value();
    }

    TempDir dir;
};

TEST_F(IoStore, PlainEntitiesRoundTripFieldForField) {
    const std::wstring file = dir.file("plain.qdb");
    AcDbHandle plineHandle, lineHandle, circleHandle, textHandle;
    {
        AcDbDatabase db;
        auto* pline = new AcDbPolyline();
        pline->addVertexAt(0, AcGePoint2d(0, 0), 0.0, 0.5, 1.0);
        pline->addVertexAt(1, AcGePoint2d(10, 0), 1.0);
        pline->addVertexAt(2, AcGePoint2d(10, 10), -0.25);
        pline->setClosed(true);
        pline->setElevation(3.0);
        plineHandle = append(db, pline).handle();
        auto* line = new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
        line->setColorIndex(1);
        lineHandle = append(db, line).handle();
        circleHandle =
            append(db, new AcDbCircle(AcGePoint3d(7, 8, 0), AcGeVector3d::kZAxis, 2.25)).handle();
        auto* text = new AcDbText(AcGePoint3d(1, 1, 0), L"用地红线 A-1", AcDbObjectId(), 3.5, 0.5);
        textHandle = append(db, text).handle();
        ASSERT_EQ(db.saveAs(file.c_str()), Acad::eOk);
    }
    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile(file.c_str()), Acad::eOk) << qorToUtf8(db.lastError());
    AcDbObjectId id;
    ASSERT_EQ(db.getAcDbObjectId(id, false, plineHandle), Acad::eOk);
    AcDbPolyline* pline = nullptr;
    ASSERT_EQ(acdbOpenObject(pline, id, AcDb::kForRead), Acad::eOk);
    ASSERT_EQ(pline->numVerts(), 3u);
    AcGePoint2d p;
    double bulge = 0, sw = 0, ew = 0;
    pline->getPointAt(1, p);
    pline->getBulgeAt(1, bulge);
    EXPECT_EQ(p, AcGePoint2d(10, 0));
    EXPECT_EQ(bulge, 1.0);
    pline->getBulgeAt(2, bulge);
    EXPECT_EQ(bulge, -0.25);
    pline->getWidthsAt(0, sw, ew);
    EXPECT_EQ(sw, 0.5);
    EXPECT_EQ(ew, 1.0);
    EXPECT_TRUE(pline->isClosed());
    EXPECT_EQ(pline->elevation(), 3.0);
    EXPECT_EQ(pline->ownerId(), db.modelSpaceId());
    EXPECT_EQ(pline->layerId(), db.layerZero());
    pline->close();

    AcDbLine* line = nullptr;
    ASSERT_EQ(db.getAcDbObjectId(id, false, lineHandle), Acad::eOk);
    ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(line->startPoint(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(line->endPoint(), AcGePoint3d(4, 5, 6));
    EXPECT_EQ(line->colorIndex(), 1);
    line->close();

    AcDbCircle* circle = nullptr;
    ASSERT_EQ(db.getAcDbObjectId(id, false, circleHandle), Acad::eOk);
    ASSERT_EQ(acdbOpenObject(circle, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(circle->center(), AcGePoint3d(7, 8, 0));
    EXPECT_EQ(circle->radius(), 2.25);
    circle->close();

    AcDbText* text = nullptr;
    ASSERT_EQ(db.getAcDbObjectId(id, false, textHandle), Acad::eOk);
    ASSERT_EQ(acdbOpenObject(text, id, AcDb::kForRead), Acad::eOk);
    EXPECT_STREQ(text->textStringConst(), L"用地红线 A-1");
    EXPECT_EQ(text->height(), 3.5);
    EXPECT_EQ(text->rotation(), 0.5);
    text->close();

    // New objects continue after the saved handles.
    auto* extra = new AcDbLine();
    AcDbObjectId extraId = append(db, extra);
    EXPECT_GT(extraId.handle().value(), textHandle.value());
}

TEST_F(IoStore, ObjectOfAMissingClassBecomesAProxyAndKeepsItsBytes) {
    const std::wstring first = dir.file("a.qdb"), second = dir.file("b.qdb");
    const Adesk::UInt64 handle = saveTagged(first);
    TestTagged::rxUninit();

    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile(first.c_str()), Acad::eOk) << qorToUtf8(db.lastError());
    AcDbObjectId id;
    ASSERT_EQ(db.getAcDbObjectId(id, false, handle), Acad::eOk);
    AcDbProxyEntity* proxy = nullptr;
    ASSERT_EQ(acdbOpenObject(proxy, id, AcDb::kForRead), Acad::eOk);
    EXPECT_STREQ(proxy->originalClassName(), L"TestTagged");
    EXPECT_STREQ(proxy->originalDxfName(), L"TEST_TAGGED");
    EXPECT_STREQ(proxy->applicationDescription(), L"TESTAPP");
    EXPECT_EQ(proxy->proxyFlags(), 3071);
    EXPECT_EQ(proxy->colorIndex(), 3); // the common entity data is still understood
    AcutCapture capture;
    proxy->list();
    EXPECT_NE(capture.text().find(L"TestTagged"), std::wstring::npos);
    proxy->close();

    ASSERT_EQ(db.saveAs(second.c_str()), Acad::eOk);
    EXPECT_EQ(blobOf(second, handle), blobOf(first, handle));
    EXPECT_FALSE(blobOf(first, handle).empty());

    // With the class back, the object reads as itself again.
    TestTagged::rxInit();
    AcDbDatabase again(false, true);
    ASSERT_EQ(again.readDwgFile(second.c_str()), Acad::eOk);
    ASSERT_EQ(again.getAcDbObjectId(id, false, handle), Acad::eOk);
    TestTagged* t = nullptr;
    ASSERT_EQ(acdbOpenObject(t, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(t->value, 2.5);
    EXPECT_EQ(t->name, L"宗地");
    EXPECT_EQ(t->ref, again.layerZero());
    t->close();
}

TEST_F(IoStore, ATagNewerThanTheClassKnowsGivesAProxy) {
    const std::wstring first = dir.file("new.qdb"), second = dir.file("again.qdb");
    TestTagged::sWriteVersion = TestTagged::kHighest + 1;
    const Adesk::UInt64 handle = saveTagged(first);
    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile(first.c_str()), Acad::eOk);
    AcDbObjectId id;
    ASSERT_EQ(db.getAcDbObjectId(id, false, handle), Acad::eOk);
    EXPECT_EQ(id.objectClass(), AcDbProxyEntity::desc());
    ASSERT_EQ(db.saveAs(second.c_str()), Acad::eOk);
    EXPECT_EQ(blobOf(second, handle), blobOf(first, handle));

    // The highest tag the class knows still reads.
    TestTagged::sWriteVersion = TestTagged::kHighest;
    saveTagged(first);
    AcDbDatabase current(false, true);
    ASSERT_EQ(current.readDwgFile(first.c_str()), Acad::eOk);
    ASSERT_EQ(current.getAcDbObjectId(id, false, handle), Acad::eOk);
    EXPECT_EQ(id.objectClass(), TestTagged::desc());
}

TEST_F(IoStore, DamagedObjectStreamsAreReportedNotTrusted) {
    const std::wstring file = dir.file("damaged.qdb");
    const Adesk::UInt64 handle = saveTagged(file);
    const auto full = blobOf(file, handle);
    ASSERT_GT(full.size(), 8u);
    // Cut the stream at every length: each read fails cleanly or (when only trailing data is lost)
    // succeeds.
    for (size_t cut = 0; cut < full.size(); cut += 3) {
        saveTagged(file);
        const std::string sql = "UPDATE objects SET data = substr(data, 1, " + std::to_string(cut) +
                                ") WHERE handle = " + std::to_string(handle);
        execOn(file, sql.c_str());
        AcDbDatabase db(false, true);
        Acad::ErrorStatus es = db.readDwgFile(file.c_str());
        EXPECT_NE(es, Acad::eOk) << "cut at " << cut;
        EXPECT_NE(db.lastError().find(L"TestTagged"), std::wstring::npos);
        EXPECT_EQ(db.numObjects(), 0u); // nothing half-read is left behind
    }
    saveTagged(file);
    execOn(file, ("UPDATE objects SET data = x'DEADBEEF0102030405060708' WHERE handle = " +
                  std::to_string(handle))
                     .c_str());
    AcDbDatabase db(false, true);
    EXPECT_NE(db.readDwgFile(file.c_str()), Acad::eOk);
}

TEST_F(IoStore, FilesThatAreNotDrawingsAreRefused) {
    AcDbDatabase db(false, true);
    EXPECT_EQ(db.readDwgFile(dir.file("missing.qdb").c_str()), Acad::eFileNotFound);
    const std::wstring text = dir.file("text.qdb");
    std::ofstream(qorToUtf8(text)) << "this is not a drawing\n";
    EXPECT_NE(db.readDwgFile(text.c_str()), Acad::eOk);
    EXPECT_FALSE(db.lastError().empty());
    const std::wstring other = dir.file("other.qdb");
    execOn(other, "CREATE TABLE t(x)");
    EXPECT_EQ(db.readDwgFile(other.c_str()), Acad::eInvalidDwgVersion);
    // A failed save leaves an existing file untouched.
    const std::wstring good = dir.file("good.qdb");
    saveTagged(good);
    const auto before = blobOf(good, 1);
    AcDbDatabase fresh;
    EXPECT_NE(fresh.saveAs(dir.file("no/such/folder/x.qdb").c_str()), Acad::eOk);
    EXPECT_EQ(blobOf(good, 1), before);
}

} // namespace
