// The double line as users meet it: filed through the recording filers and the drawing store,
// drawn through the recorder, listed, edited, exploded and exported to a block.
#include "cmdline.h"
#include "dbfilers.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "gecurves.h"
#include "girecorder.h"
#include "module/dubline.h"
#include "support/sqlfile.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt);

namespace {

struct V {
    double x, y, bulge;
};

std::unique_ptr<AcdbQorDubLine> makeDubLine(double width, std::initializer_list<V> verts) {
    auto d = std::make_unique<AcdbQorDubLine>();
    d->setWidth(width);
    unsigned i = 0;
    for (const V& v : verts)
        d->setVertexAt(i++, AcGePoint3d(v.x, v.y, 0), v.bulge);
    return d;
}

std::string tailOf(const std::string& dump, size_t lines) {
    size_t pos = dump.size();
    for (size_t n = 0; n <= lines && pos > 0; ++n)
        pos = dump.rfind('\n', pos - 1);
    return pos == std::string::npos ? dump : dump.substr(pos + 1);
}

class DubLine : public ::testing::Test {
protected:
    void SetUp() override {
        acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
        acdbHostApplicationServices()->setWorkingDatabase(db.get());
    }
    void TearDown() override {
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        db.reset();
        acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    }

    AcDbObjectId append(AcDbDatabase& into, AcDbEntity* ent) {
        AcDbBlockTableRecord* ms = nullptr;
        EXPECT_EQ(acdbOpenObject(ms, into.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(ms->appendAcDbEntity(id, ent), Acad::eOk);
        ent->close();
        ms->close();
        return id;
    }

    AcDbObjectId addLayer(const ACHAR* name) {
        AcDbLayerTable* table = nullptr;
        EXPECT_EQ(acdbOpenObject(table, db->layerTableId(), AcDb::kForWrite), Acad::eOk);
        auto* rec = new AcDbLayerTableRecord;
        rec->setName(name);
        AcDbObjectId id;
        EXPECT_EQ(table->add(id, rec), Acad::eOk);
        rec->close();
        table->close();
        return id;
    }

    std::unique_ptr<AcDbDatabase> db = std::make_unique<AcDbDatabase>();
};

// ---------------------------------------------------------------- DWG filing

TEST_F(DubLine, DwgLayoutIsTagWidthCountThenPointAndBulgePerVertex) {
    auto d = makeDubLine(2.5, {{0, 0, 0.5}, {10, 0, 0}, {10, 5, -1}});
    AcDbRecordingDwgFiler out;
    ASSERT_EQ(d->dwgOutFields(&out), Acad::eOk);
    EXPECT_EQ(tailOf(out.dump(), 9), "UInt16 401\n"
                                     "Double 2.5\n"
                                     "UInt32 3\n"
                                     "Point2d 0,0\n"
                                     "Double 0.5\n"
                                     "Point2d 10,0\n"
                                     "Double 0\n"
                                     "Point2d 10,5\n"
                                     "Double -1\n");
}

TEST_F(DubLine, OldAndCurrentTagsReadAlikeUnknownLowerTagsReadNothingNewerOnesAskForAProxy) {
    auto src = makeDubLine(3.0, {{1, 2, 0}, {4, 6, 0.25}});
    AcDbRecordingDwgFiler out;
    ASSERT_EQ(src->dwgOutFields(&out), Acad::eOk);
    std::vector<AcDbFiledItem> items = out.items();
    const size_t tag = items.size() - 7;
    ASSERT_EQ(items[tag].kind, AcDbFilerKind::kUInt16);

    auto readWithTag = [&](Adesk::UInt64 value, AcdbQorDubLine& into) {
        std::vector<AcDbFiledItem> patched = items;
        patched[tag].value = value;
        AcDbRecordingDwgFiler in(patched);
        return into.dwgInFields(&in);
    };
    for (Adesk::UInt64 t : {401u, 4u}) {
        auto d = makeDubLine(9.0, {{7, 7, 0}, {8, 8, 0}, {9, 9, 0}});
        ASSERT_EQ(readWithTag(t, *d), Acad::eOk) << t;
        double w = 0.0;
        d->getWidth(w);
        EXPECT_EQ(w, 3.0);
        int n = 0;
        d->getNumPts(n);
        ASSERT_EQ(n, 2) << "the old vertices are cleared first";
        AcGePoint3d p;
        ASSERT_EQ(d->getVertexAt(1, p), Acad::eOk);
        EXPECT_EQ(p, AcGePoint3d(4, 6, 0));
        double bulge = 0.0;
        d->centreLine().getBulgeAt(1, bulge);
        EXPECT_EQ(bulge, 0.25);
    }
    auto untouched = makeDubLine(9.0, {{7, 7, 0}});
    EXPECT_EQ(readWithTag(3, *untouched), Acad::eOk);
    double w = 0.0;
    untouched->getWidth(w);
    EXPECT_EQ(w, 9.0);
    int n = 0;
    untouched->getNumPts(n);
    EXPECT_EQ(n, 1);
    EXPECT_EQ(readWithTag(402, *untouched), Acad::eMakeMeProxy);
}

TEST_F(DubLine, SurvivesTheDrawingStoreFieldForField) {
    TempDir dir;
    const std::wstring file = dir.file("dub.qdb");
    addLayer(L"WALL");
    auto d = makeDubLine(-1.75, {{0, 0, 0}, {10, 0, 0.4142}, {20, 10, 0}});
    d->setLayer(L"WALL");
    d->setColorIndex(4);
    const AcDbHandle handle = append(*db, d.release()).handle();
    ASSERT_EQ(db->saveAs(file.c_str()), Acad::eOk);

    AcDbDatabase back(false, true);
    ASSERT_EQ(back.readDwgFile(file.c_str()), Acad::eOk);
    AcDbObjectId id;
    ASSERT_EQ(back.getAcDbObjectId(id, false, handle), Acad::eOk);
    AcdbQorDubLine* r = nullptr;
    ASSERT_EQ(acdbOpenObject(r, id, AcDb::kForRead), Acad::eOk);
    double w = 0.0;
    r->getWidth(w);
    EXPECT_EQ(w, -1.75);
    EXPECT_EQ(r->colorIndex(), 4);
    ACHAR* layer = r->layer();
    EXPECT_STREQ(layer, L"WALL");
    delete[] layer;
    ASSERT_EQ(r->centreLine().numVerts(), 3u);
    AcGePoint2d p;
    double bulge = 0.0;
    r->centreLine().getPointAt(2, p);
    r->centreLine().getBulgeAt(1, bulge);
    EXPECT_EQ(p, AcGePoint2d(20, 10));
    EXPECT_EQ(bulge, 0.4142);
    r->close();
}

TEST_F(DubLine, ANewerTagOpensAsAProxyThatSavesItsBytesBackUnchanged) {
    TempDir dir;
    const std::wstring file = dir.file("newer.qdb"), again = dir.file("again.qdb");
    const AcDbHandle handle =
        append(*db, makeDubLine(2.0, {{0, 0, 0}, {3, 4, 0}}).release()).handle();
    ASSERT_EQ(db->saveAs(file.c_str()), Acad::eOk);
    std::vector<unsigned char> bytes = objectBytes(file, handle.value());
    // The version tag as the typed stream holds it: the UInt16 kind, then 401 little-endian.
    const std::vector<unsigned char> tag401 = {6, 0x91, 0x01};
    auto at = std::search(bytes.begin(), bytes.end(), tag401.begin(), tag401.end());
    ASSERT_NE(at, bytes.end());
    at[1] = 0x92; // 402
    setObjectBytes(file, handle.value(), bytes);

    {
        AcDbDatabase back(false, true);
        ASSERT_EQ(back.readDwgFile(file.c_str()), Acad::eOk);
        AcDbObjectId id;
        ASSERT_EQ(back.getAcDbObjectId(id, false, handle), Acad::eOk);
        AcDbEntity* ent = nullptr;
        ASSERT_EQ(acdbOpenObject(ent, id, AcDb::kForRead), Acad::eOk);
        auto* proxy = AcDbProxyEntity::cast(ent);
        ASSERT_NE(proxy, nullptr);
        EXPECT_STREQ(proxy->originalClassName(), L"AcdbQorDubLine");
        ent->close();
        ASSERT_EQ(back.saveAs(again.c_str()), Acad::eOk);
    }
    EXPECT_EQ(objectBytes(again, handle.value()), bytes);
}

// ---------------------------------------------------------------- DXF filing

TEST_F(DubLine, DxfWritesWidthUnder40ButReadsItFrom43) {
    auto d = makeDubLine(2.0, {{0, 0, 0}, {5, 0, 0}});
    AcDbRecordingDxfFiler out;
    ASSERT_EQ(d->dxfOutFields(&out), Acad::eOk);
    const std::string dump = out.dump();
    EXPECT_NE(dump.find("100 \"AcdbQorDubLine\"\n70 401\n40 2\n"), std::string::npos) << dump;

    auto readBack = [&](std::vector<AcDbDxfItem> own, AcdbQorDubLine& into) {
        AcDbRecordingDxfFiler base;
        AcDbEntity plain;
        plain.dxfOutFields(&base);
        std::vector<AcDbDxfItem> all = base.items();
        all.insert(all.end(), own.begin(), own.end());
        AcDbRecordingDxfFiler in(all);
        return into.dxfInFields(&in);
    };
    auto target = makeDubLine(7.0, {{0, 0, 0}, {5, 0, 0}});
    const auto marker = AcDbDxfItem{100, std::wstring(L"AcdbQorDubLine")};
    ASSERT_EQ(readBack({marker, {70, Adesk::Int64{401}}, {40, 2.0}}, *target), Acad::eOk);
    double w = 0.0;
    target->getWidth(w);
    EXPECT_EQ(w, 7.0) << "group 40 is not read";
    ASSERT_EQ(readBack({marker, {70, Adesk::Int64{401}}, {43, 2.5}}, *target), Acad::eOk);
    target->getWidth(w);
    EXPECT_EQ(w, 2.5);
    EXPECT_EQ(readBack({marker, {70, Adesk::Int64{402}}, {43, 1.0}}, *target), Acad::eMakeMeProxy);
    ASSERT_EQ(readBack({marker, {43, 6.0}}, *target), Acad::eOk);
    target->getWidth(w);
    EXPECT_EQ(w, 2.5) << "no version group: nothing read";
}

// ---------------------------------------------------------------- drawing

TEST_F(DubLine, DrawsTwoSideLinesAtHalfTheWidthRightSideFirst) {
    AcGiRecorder rec;
    auto d = makeDubLine(2.0, {{0, 0, 0}, {10, 0, 0}});
    d->worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.items().size(), 2u) << rec.dump();
    EXPECT_EQ(rec.items()[0].points[0], AcGePoint3d(0, -1, 0));
    EXPECT_EQ(rec.items()[1].points[0], AcGePoint3d(0, 1, 0));

    rec.clear();
    d->setWidth(-2.0);
    d->worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.items().size(), 2u);
    EXPECT_EQ(rec.items()[0].points[0], AcGePoint3d(0, 1, 0)) << "a negative width swaps the sides";

    // Every regen type draws: the double line does not follow the regen-type rule.
    rec.clear();
    rec.setRegenType(kAcGiHideOrShadeCommand);
    d->worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.items().size(), 2u);

    for (auto& idle : {makeDubLine(0.0, {{0, 0, 0}, {10, 0, 0}}), makeDubLine(2.0, {{0, 0, 0}})}) {
        rec.clear();
        idle->worldDraw(rec.worldDraw());
        EXPECT_TRUE(rec.items().empty()) << rec.dump();
        AcDbVoidPtrArray ents;
        EXPECT_EQ(idle->explode(ents), Acad::eOk);
        EXPECT_EQ(ents.length(), 0);
    }
}

TEST_F(DubLine, ArcsInTheCentreLineGiveConcentricArcsOnBothSides) {
    AcGiRecorder rec;
    auto d = makeDubLine(1.0, {{0, 0, 1}, {10, 0, 0}}); // a half circle of radius 5
    d->worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kCircularArc), 2) << rec.dump();
    EXPECT_DOUBLE_EQ(rec.items()[0].numbers[0], 5.5);
    EXPECT_DOUBLE_EQ(rec.items()[1].numbers[0], 4.5);
}

// ---------------------------------------------------------------- explode and export

TEST_F(DubLine, ExplodeGivesTwoCurvesWithTheObjectsColourAndLayerOnly) {
    addLayer(L"ROAD");
    auto d = makeDubLine(4.0, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    d->setLayer(L"ROAD");
    d->setColorIndex(1);
    d->setLinetypeScale(3.0);
    AcDbVoidPtrArray ents;
    ASSERT_EQ(d->explode(ents), Acad::eOk);
    ASSERT_EQ(ents.length(), 2);
    for (void* p : ents) {
        std::unique_ptr<AcDbEntity> e(static_cast<AcDbEntity*>(p));
        ASSERT_NE(AcDbCurve::cast(e.get()), nullptr);
        EXPECT_EQ(e->colorIndex(), 1);
        ACHAR* layer = e->layer();
        EXPECT_STREQ(layer, L"ROAD");
        delete[] layer;
        EXPECT_EQ(e->linetypeScale(), 1.0) << "only colour and layer travel";
    }
}

TEST_F(DubLine, ExportAppendsToTheBlockAndARefusedEntityIsDeleted) {
    auto d = makeDubLine(1.0, {{0, 0, 0}, {10, 0, 0}});
    AcDbBlockTable* table = nullptr;
    ASSERT_EQ(acdbOpenObject(table, db->blockTableId(), AcDb::kForWrite), Acad::eOk);
    auto* btr = new AcDbBlockTableRecord;
    btr->setName(L"DUB");
    ASSERT_EQ(table->add(btr), Acad::eOk);
    table->close();
    EXPECT_EQ(d->M_OutPlotFile(btr), 1);
    EXPECT_EQ(btr->entityIds().size(), 2u);
    btr->close();

    // A block outside any database refuses every entity; the export still reports success.
    AcDbBlockTableRecord loose;
    EXPECT_EQ(d->M_OutPlotFile(&loose), 1);
    EXPECT_TRUE(loose.entityIds().empty());
}

// ---------------------------------------------------------------- listing

TEST_F(DubLine, ListingCutsTheClassNameColumnAtThirtyCharacters) {
    auto d = makeDubLine(2.5, {{0, 0, 0}, {10, 0, 0}});
    const AcDbObjectId id = append(*db, d.release());
    AcdbQorDubLine* r = nullptr;
    ASSERT_EQ(acdbOpenObject(r, id, AcDb::kForRead), Acad::eOk);
    AcutCapture capture;
    r->list();
    r->close();
    const std::wstring text = capture.text();
    const std::wstring last = text.substr(text.rfind(L'\n'));
    EXPECT_EQ(last, L"\n             类名:  AcdbQorDubLi            实体宽度:  2.500");
    EXPECT_EQ(text.find(L"\n    AcdbQorDubLine  Layer: \"0\""), 0u) << qorToUtf8(text);
}

// ---------------------------------------------------------------- edits

TEST_F(DubLine, VertexAccessKeepsThePlatformsIndexRules) {
    auto d = makeDubLine(1.0, {{1, 1, 0}, {2, 2, 0}});
    AcGePoint3d p(-1, -1, -1);
    EXPECT_EQ(d->getVertexAt(2, p), Acad::eInvalidIndex);
    EXPECT_EQ(d->getVertexAt(-1, p), Acad::eInvalidIndex);
    EXPECT_EQ(p, AcGePoint3d(-1, -1, -1)) << "untouched on failure";
    EXPECT_EQ(d->setVertexAt(2, AcGePoint3d(3, 3, 99), 0.5), Acad::eOk); // appends, z ignored
    ASSERT_EQ(d->getVertexAt(2, p), Acad::eOk);
    EXPECT_EQ(p, AcGePoint3d(3, 3, 0));
    d->removeVertexAt(17);
    int n = 0;
    d->getNumPts(n);
    EXPECT_EQ(n, 3);
    AcdbQorDubLine copy(*d);
    AcdbQorDubLine assigned;
    assigned = copy;
    double w = 0.0;
    assigned.getWidth(w);
    EXPECT_EQ(w, 1.0);
    EXPECT_EQ(assigned.centreLine().numVerts(), 3u);
}

TEST_F(DubLine, GripsStretchSnapsAndExtentsAreTheCentreLines) {
    auto d = makeDubLine(6.0, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    ASSERT_EQ(d->getGripPoints(grips, modes, ids), Acad::eOk);
    AcGePoint3dArray centreGrips;
    d->centreLine().getGripPoints(centreGrips, modes, ids);
    EXPECT_EQ(grips.length(), centreGrips.length());
    EXPECT_EQ(grips[0], AcGePoint3d(0, 0, 0));

    ASSERT_EQ(d->moveGripPointsAt(AcDbIntArray{2}, AcGeVector3d(5, 0, 0)), Acad::eOk);
    AcGePoint3d p;
    d->getVertexAt(2, p);
    EXPECT_EQ(p, AcGePoint3d(15, 10, 0));
    AcGePoint3dArray stretch;
    ASSERT_EQ(d->getStretchPoints(stretch), Acad::eOk);
    ASSERT_EQ(stretch.length(), 3);
    ASSERT_EQ(d->moveStretchPointsAt(AcDbIntArray{0}, AcGeVector3d(0, -2, 0)), Acad::eOk);
    d->getVertexAt(0, p);
    EXPECT_EQ(p, AcGePoint3d(0, -2, 0));

    AcDbExtents ext;
    ASSERT_EQ(d->getGeomExtents(ext), Acad::eOk);
    EXPECT_EQ(ext.minPoint(), AcGePoint3d(0, -2, 0)) << "the half width is not included";
    EXPECT_EQ(ext.maxPoint(), AcGePoint3d(15, 10, 0));

    AcGePoint3dArray snaps;
    ASSERT_EQ(d->getOsnapPoints(AcDb::kOsModeEnd, 0, AcGePoint3d(), AcGePoint3d(), AcGeMatrix3d(),
                                snaps, ids),
              Acad::eOk);
    EXPECT_TRUE(snaps.contains(AcGePoint3d(15, 10, 0)));

    AcDbLine across(AcGePoint3d(5, -10, 0), AcGePoint3d(5, 10, 0));
    AcGePoint3dArray hits;
    ASSERT_EQ(d->intersectWith(&across, AcDb::kOnBothOperands, hits), Acad::eOk);
    ASSERT_EQ(hits.length(), 1) << "the side lines are not intersected";
}

TEST_F(DubLine, TransformScalesTheWidthByTheMatrixScale) {
    auto d = makeDubLine(3.0, {{1, 0, 0}, {2, 0, 0}});
    ASSERT_EQ(d->transformBy(AcGeMatrix3d::scaling(2.0, AcGePoint3d(0, 0, 0))), Acad::eOk);
    double w = 0.0;
    d->getWidth(w);
    EXPECT_EQ(w, 6.0);
    AcGePoint3d p;
    d->getVertexAt(1, p);
    EXPECT_EQ(p, AcGePoint3d(4, 0, 0));
    ASSERT_EQ(d->transformBy(
                  AcGeMatrix3d::mirroring(AcGePlane(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0)))),
              Acad::eOk);
    d->getWidth(w);
    EXPECT_EQ(w, 6.0) << "a mirror has a positive scale";
    d->getVertexAt(1, p);
    EXPECT_EQ(p, AcGePoint3d(-4, 0, 0));
    ASSERT_EQ(d->transformBy(AcGeMatrix3d::translation(AcGeVector3d(1, 1, 0))), Acad::eOk);
    d->getWidth(w);
    EXPECT_EQ(w, 6.0);
}

TEST_F(DubLine, ProxyGraphicsFollowTheFillRule) {
    auto d = makeDubLine(2.0, {{0, 0, 0}, {10, 0, 0}});
    for (auto [type, fill] :
         {std::pair{AcDb::kR13Save, kAcGiFillNever}, std::pair{AcDb::kR14Save, kAcGiFillAlways}}) {
        AcGiRecorder rec;
        d->saveAs(rec.worldDraw(), type);
        EXPECT_EQ(rec.subEntityTraits().fillType(), fill);
        EXPECT_EQ(rec.items().size(), 2u);
    }
}

} // namespace
