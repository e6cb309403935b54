// The database: default drawing, the open/close protocol, ownership, extended data, dictionaries.
#include "dbdict.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace {

AcDbObjectId appendToModelSpace(AcDbDatabase& db, AcDbEntity* ent) {
    AcDbBlockTableRecord* ms = nullptr;
    EXPECT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(ms->appendAcDbEntity(id, ent), Acad::eOk);
    ent->close();
    ms->close();
    return id;
}

TEST(DbDatabase, DefaultDrawingHasItsTablesSpacesAndRecords) {
    AcDbDatabase db;
    EXPECT_FALSE(db.modelSpaceId().isNull());
    EXPECT_FALSE(db.paperSpaceId().isNull());
    EXPECT_NE(db.modelSpaceId(), db.paperSpaceId());
    EXPECT_EQ(db.clayer(), db.layerZero());
    EXPECT_EQ(db.celtype(), db.byLayerLinetype());
    EXPECT_FALSE(db.continuousLinetype().isNull());
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getLayerTable(layers), Acad::eOk);
    EXPECT_TRUE(layers->has(L"0"));
    AcDbObjectId id;
    EXPECT_EQ(layers->getAt(L"missing", id), Acad::eKeyNotFound);
    layers->close();
    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(db.getBlockTable(blocks), Acad::eOk);
    // Names compare without regard to case.
    EXPECT_TRUE(blocks->has(L"*MODEL_SPACE"));
    blocks->close();
    AcDbDatabase empty(false, true);
    EXPECT_TRUE(empty.modelSpaceId().isNull());
    EXPECT_EQ(empty.numObjects(), 0u);
}

TEST(DbDatabase, OpenCloseProtocol) {
    AcDbDatabase db;
    AcDbObjectId id =
        appendToModelSpace(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    AcDbLine *w = nullptr, *r1 = nullptr, *r2 = nullptr;
    ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eWasOpenForWrite);
    EXPECT_EQ(r1, nullptr);
    w->close();
    ASSERT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eOk);
    ASSERT_EQ(acdbOpenObject(r2, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eWasOpenForRead);
    EXPECT_EQ(r1->upgradeOpen(), Acad::eWasOpenForRead); // another reader holds it
    r2->close();
    EXPECT_EQ(r1->upgradeOpen(), Acad::eOk);
    EXPECT_TRUE(r1->isWriteEnabled());
    EXPECT_EQ(r1->erase(), Acad::eOk);
    r1->close();
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eWasErased);
    ASSERT_EQ(acdbOpenObject(r1, id, AcDb::kForRead, true), Acad::eOk);
    r1->close();
    AcDbCircle* circle = nullptr;
    EXPECT_EQ(acdbOpenObject(circle, id, AcDb::kForRead, true), Acad::eNotThatKindOfClass);
    EXPECT_EQ(acdbOpenObject(circle, AcDbObjectId(), AcDb::kForRead), Acad::eNullObjectId);
    // The failed typed open must not leave the object open.
    ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite, true), Acad::eOk);
    w->close();
}

TEST(DbDatabase, AppendedEntitiesAreOwnedAndTakeTheCurrentLayer) {
    AcDbDatabase db;
    auto* layer = new AcDbLayerTableRecord();
    layer->setName(L"道路");
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    AcDbObjectId layerId;
    ASSERT_EQ(layers->add(layerId, layer), Acad::eOk);
    layer->close();
    auto* dup = new AcDbLayerTableRecord();
    dup->setName(L"道路");
    EXPECT_NE(layers->add(dup), Acad::eOk);
    delete dup;
    layers->close();
    ASSERT_EQ(db.setClayer(layerId), Acad::eOk);

    AcDbObjectId id = appendToModelSpace(db, new AcDbLine());
    AcDbEntity* ent = nullptr;
    ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(ent->ownerId(), db.modelSpaceId());
    EXPECT_EQ(ent->layerId(), layerId);
    ACHAR* name = ent->layer();
    EXPECT_STREQ(name, L"道路");
    delete[] name;
    EXPECT_EQ(ent->database(), &db);
    ent->close();

    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecordIterator* it = nullptr;
    ASSERT_EQ(ms->newIterator(it), Acad::eOk);
    int count = 0;
    for (; !it->done(); it->step()) {
        AcDbObjectId eid;
        it->getEntityId(eid);
        EXPECT_EQ(eid, id);
        ++count;
    }
    delete it;
    ms->close();
    EXPECT_EQ(count, 1);
}

TEST(DbDatabase, EntityPropertiesResolveByName) {
    AcDbDatabase db;
    acdbHostApplicationServices()->setWorkingDatabase(&db);
    AcDbLine line;
    EXPECT_EQ(line.setLayer(L"0"), Acad::eOk);
    EXPECT_EQ(line.setLayer(L"nowhere"), Acad::eKeyNotFound);
    EXPECT_EQ(line.setLinetype(L"continuous"), Acad::eOk);
    EXPECT_EQ(line.linetypeId(), db.continuousLinetype());
    EXPECT_EQ(line.setColorIndex(1), Acad::eOk);
    EXPECT_EQ(line.colorIndex(), 1);
    EXPECT_TRUE(line.color().isByACI());
    AcCmColor rgb;
    rgb.setRGB(10, 20, 30);
    line.setColor(rgb);
    EXPECT_EQ(line.color().color(), 0xC20A141Eu);
    EXPECT_EQ(line.setLinetypeScale(0.0), Acad::eInvalidInput);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

TEST(DbDatabase, ExtendedDataIsKeptPerApplication) {
    AcDbLine line;
    resbuf* a = acutBuildList(AcDb::kDxfRegAppName, L"QOROBJ", AcDb::kDxfXdAsciiString, L"道路",
                              AcDb::kDxfXdReal, 7.5, 0);
    resbuf* b = acutBuildList(AcDb::kDxfRegAppName, L"OTHER", AcDb::kDxfXdInteger16, 3, 0);
    ASSERT_EQ(line.setXData(a), Acad::eOk);
    ASSERT_EQ(line.setXData(b), Acad::eOk);
    resbuf* got = line.xData(L"qorobj");
    ASSERT_NE(got, nullptr);
    EXPECT_STREQ(got->resval.rstring, L"QOROBJ");
    ASSERT_NE(got->rbnext, nullptr);
    EXPECT_STREQ(got->rbnext->resval.rstring, L"道路");
    ASSERT_NE(got->rbnext->rbnext, nullptr);
    EXPECT_DOUBLE_EQ(got->rbnext->rbnext->resval.rreal, 7.5);
    EXPECT_EQ(got->rbnext->rbnext->rbnext, nullptr); // the other application's data is not included
    acutRelRb(got);

    // A lone application item removes that application's data only.
    resbuf* clear = acutBuildList(AcDb::kDxfRegAppName, L"QOROBJ", 0);
    ASSERT_EQ(line.setXData(clear), Acad::eOk);
    EXPECT_EQ(line.xData(L"QOROBJ"), nullptr);
    resbuf* other = line.xData(L"OTHER");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->rbnext->resval.rint, 3);
    acutRelRb(other);
    acutRelRb(a);
    acutRelRb(b);
    acutRelRb(clear);
}

TEST(DbDatabase, DictionariesOwnTheirEntries) {
    AcDbDatabase db;
    AcDbDictionary* nod = nullptr;
    ASSERT_EQ(db.getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
    auto* settings = new AcDbDictionary();
    AcDbObjectId settingsId;
    ASSERT_EQ(nod->setAt(L"qor_dict", settings, settingsId), Acad::eOk);
    EXPECT_EQ(settings->ownerId(), nod->objectId());
    auto* rec = new AcDbXrecord();
    resbuf* data = acutBuildList(AcDb::kDxfText, L"1:1000", 0);
    rec->setFromRbChain(*data);
    acutRelRb(data);
    AcDbObjectId recId;
    ASSERT_EQ(settings->setAt(L"scale", rec, recId), Acad::eOk);
    rec->close();
    settings->close();
    EXPECT_TRUE(nod->has(L"QOR_DICT"));
    AcDbObjectId found;
    EXPECT_EQ(nod->getAt(L"Qor_Dict", found), Acad::eOk);
    EXPECT_EQ(found, settingsId);
    EXPECT_EQ(nod->remove(L"nothing"), Acad::eKeyNotFound);
    nod->close();

    AcDbXrecord* back = nullptr;
    ASSERT_EQ(acdbOpenObject(back, recId, AcDb::kForRead), Acad::eOk);
    resbuf* chain = nullptr;
    back->rbChain(&chain);
    back->close();
    ASSERT_NE(chain, nullptr);
    EXPECT_STREQ(chain->resval.rstring, L"1:1000");
    acutRelRb(chain);
}

TEST(DbDatabase, HandlesParseAndPrintInHexadecimal) {
    EXPECT_EQ(AcDbHandle(L"1f").value(), 0x1Fu);
    EXPECT_EQ(AcDbHandle(L"zz").value(), 0u);
    EXPECT_EQ(AcDbHandle(L"").value(), 0u);
    EXPECT_EQ(AcDbHandle(L"12345678901234567").value(), 0u); // more than 64 bits
    ACHAR buf[17];
    ASSERT_TRUE(AcDbHandle(0xABC).getIntoAsciiBuffer(buf));
    EXPECT_STREQ(buf, L"ABC");
}

} // namespace
