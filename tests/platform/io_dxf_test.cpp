// DXF exchange: what the writer puts out (checked by hand, by two independent readers and by
// our own reader field for field), what the reader makes of files from another program, and
// the line it names for damaged files.
#include "db2dpoly.h"
#include "db3dpoly.h"
#include "dbdict.h"
#include "dbdxf.h"
#include "dbelipse.h"
#include "dbents.h"
#include "dbhatch.h"
#include "dbmain.h"
#include "dbproxy.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "support/qorrun.h"
#include "support/tempdir.h"
#include "wincodepage.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sys/wait.h>

namespace {

constexpr double kPi = 3.14159265358979323846;

// ---------------------------------------------------------------- classes of a "module"

// An entity with a point, a size, a label, an angle and a reference to another entity; it
// explodes to a cross of two lines.
class TestMark : public AcDbEntity {
public:
    static AcRxClass* sDesc;
    static AcRxClass* desc() { return sDesc; }
    AcRxClass* isA() const override { return sDesc; }
    static TestMark* cast(const AcRxObject* p) {
        return p && p->isKindOf(sDesc) ? static_cast<TestMark*>(const_cast<AcRxObject*>(p))
                                       : nullptr;
    }

    AcGePoint3d at;
    double size = 1.0, angle = 0.0;
    std::wstring label;
    AcDbObjectId ref;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* f) const override {
        if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f); es != Acad::eOk) return es;
        f->writeString(AcDb::kDxfSubclass, L"TestMark");
        f->writePoint3d(AcDb::kDxfXCoord, at);
        f->writeDouble(AcDb::kDxfReal, size);
        f->writeAngle(AcDb::kDxfAngle, angle);
        f->writeString(AcDb::kDxfText, label.c_str());
        f->writeObjectId(AcDb::kDxfHardPointerId, ref);
        return f->filerStatus();
    }
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* f) override {
        if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(f); es != Acad::eOk) return es;
        if (!f->atSubclassData(L"TestMark")) return Acad::eBadDxfSequence;
        resbuf rb{};
        while (f->readItem(&rb) == Acad::eOk) {
            switch (rb.restype) {
            case AcDb::kDxfXCoord:
                at.set(rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]);
                continue;
            case AcDb::kDxfReal:
                size = rb.resval.rreal;
                continue;
            case AcDb::kDxfAngle:
                angle = rb.resval.rreal;
                continue;
            case AcDb::kDxfText:
                label = rb.resval.rstring;
                continue;
            case AcDb::kDxfHardPointerId:
                acdbGetObjectId(ref, rb.resval.rlname);
                continue;
            default:
                f->pushBackItem();
                break;
            }
            break;
        }
        return f->filerStatus() == Acad::eEndOfFile ? Acad::eOk : f->filerStatus();
    }
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& ents) const override {
        for (const AcGeVector3d d : {AcGeVector3d(size, 0, 0), AcGeVector3d(0, size, 0)}) {
            auto* line = new AcDbLine(at - d, at + d);
            line->setPropertiesFrom(this);
            ents.append(line);
        }
        return Acad::eOk;
    }
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& e) const override {
        e.addPoint(at - AcGeVector3d(size, size, 0));
        e.addPoint(at + AcGeVector3d(size, size, 0));
        return Acad::eOk;
    }
};
AcRxClass* TestMark::sDesc = nullptr;

// A setting kept in the named-object dictionary.
class TestSetting : public AcDbObject {
public:
    static AcRxClass* sDesc;
    static AcRxClass* desc() { return sDesc; }
    AcRxClass* isA() const override { return sDesc; }
    static TestSetting* cast(const AcRxObject* p) {
        return p && p->isKindOf(sDesc) ? static_cast<TestSetting*>(const_cast<AcRxObject*>(p))
                                       : nullptr;
    }

    Adesk::Int32 value = 0;
    std::wstring name;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* f) const override {
        if (Acad::ErrorStatus es = AcDbObject::dxfOutFields(f); es != Acad::eOk) return es;
        f->writeString(AcDb::kDxfSubclass, L"TestSetting");
        f->writeInt32(AcDb::kDxfInt32, value);
        f->writeString(AcDb::kDxfText, name.c_str());
        return f->filerStatus();
    }
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* f) override {
        if (Acad::ErrorStatus es = AcDbObject::dxfInFields(f); es != Acad::eOk) return es;
        if (!f->atSubclassData(L"TestSetting")) return Acad::eBadDxfSequence;
        resbuf rb{};
        while (f->readItem(&rb) == Acad::eOk) {
            if (rb.restype == AcDb::kDxfInt32)
                value = rb.resval.rlong;
            else if (rb.restype == AcDb::kDxfText)
                name = rb.resval.rstring;
        }
        return Acad::eOk;
    }
};
AcRxClass* TestSetting::sDesc = nullptr;

// ---------------------------------------------------------------- helpers

template <class T> T* openFor(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead) {
    T* obj = nullptr;
    EXPECT_EQ(acdbOpenObject(obj, id, mode), Acad::eOk);
    return obj;
}

AcDbObjectId append(AcDbObjectId space, AcDbEntity* ent) {
    auto* btr = openFor<AcDbBlockTableRecord>(space, AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(btr->appendAcDbEntity(id, ent), Acad::eOk);
    ent->close();
    btr->close();
    return id;
}

template <class Table> AcDbObjectId addRecord(AcDbObjectId table, AcDbSymbolTableRecord* rec) {
    auto* t = openFor<Table>(table, AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(t->add(id, rec), Acad::eOk);
    rec->close();
    t->close();
    return id;
}

AcDbObjectId recordId(AcDbObjectId table, const ACHAR* name) {
    auto* t = openFor<AcDbSymbolTable>(table);
    AcDbObjectId id;
    t->getAt(name, id);
    t->close();
    return id;
}

std::vector<AcDbObjectId> entitiesOf(AcDbObjectId space) {
    auto* btr = openFor<AcDbBlockTableRecord>(space);
    std::vector<AcDbObjectId> ids;
    for (AcDbObjectId id : btr->entityIds())
        if (!id.isErased()) ids.push_back(id);
    btr->close();
    return ids;
}

std::string name(const AcDbObject* obj) {
    return qorToUtf8(obj->isA()->name());
}

const std::string kAuditScript = std::string(QOR_TEST_DATA) + "/ezdxf_audit.py";

// One group of a written file.
struct Pair {
    int code = 0;
    std::string value;
};

std::vector<Pair> pairsOf(const std::string& text) {
    std::vector<Pair> pairs;
    size_t pos = 0;
    auto next = [&](std::string& line) {
        if (pos >= text.size()) return false;
        size_t nl = text.find('\n', pos);
        if (nl == std::string::npos) nl = text.size();
        line = text.substr(pos, nl - pos);
        pos = nl + 1;
        return true;
    };
    std::string code, value;
    while (next(code) && next(value))
        pairs.push_back({std::stoi(code), value});
    return pairs;
}

// ---------------------------------------------------------------- the sample drawing

class Dxf : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        TestMark::sDesc = newAcRxClass(
            L"TestMark", L"AcDbEntity", 29, 63, 1,
            [] { return static_cast<AcRxObject*>(new TestMark()); }, L"TESTMARK", L"QORTEST");
        TestSetting::sDesc = newAcRxClass(
            L"TestSetting", L"AcDbObject", 29, 63, 0,
            [] { return static_cast<AcRxObject*>(new TestSetting()); }, L"TESTSETTING", L"QORTEST");
    }
    static void TearDownTestSuite() {
        deleteAcRxClass(TestMark::sDesc);
        deleteAcRxClass(TestSetting::sDesc);
        TestMark::sDesc = TestSetting::sDesc = nullptr;
    }

    // Layers, a linetype, a text style, every plain entity, a block and its insert, a custom
    // entity and object, an extended record, extended data and an extension dictionary.
    void build(AcDbDatabase& db) {
        acdbHostApplicationServices()->setWorkingDatabase(&db);
        auto* dashed = new AcDbLinetypeTableRecord();
        dashed->setName(L"DASHED");
        dashed->setComments(L"Dashed __ __ __");
        dashed->setNumDashes(2);
        dashed->setDashLengthAt(0, 0.5);
        dashed->setDashLengthAt(1, -0.25);
        const AcDbObjectId dashedId = addRecord<AcDbLinetypeTable>(db.linetypeTableId(), dashed);

        auto* wall = new AcDbLayerTableRecord();
        wall->setName(L"墙体");
        AcCmColor red;
        red.setColorIndex(1);
        wall->setColor(red);
        wall->setLinetypeObjectId(dashedId);
        wall->setLineWeight(AcDb::kLnWt035);
        wall->setIsLocked(true);
        const AcDbObjectId wallId = addRecord<AcDbLayerTable>(db.layerTableId(), wall);

        auto* road = new AcDbLayerTableRecord();
        road->setName(L"道路");
        road->setColor(AcCmEntityColor(10, 200, 30));
        road->setLinetypeObjectId(db.continuousLinetype());
        road->setIsOff(true);
        road->setIsFrozen(true);
        road->setIsPlottable(false);
        addRecord<AcDbLayerTable>(db.layerTableId(), road);

        auto* style = new AcDbTextStyleTableRecord();
        style->setName(L"仿宋");
        style->setFileName(L"simfang.ttf");
        style->setXScale(0.7);
        style->setFont(L"仿宋", false, true, 134, 2);
        const AcDbObjectId styleId = addRecord<AcDbTextStyleTable>(db.textStyleTableId(), style);
        acdbRegApp(L"QORTEST");

        const AcDbObjectId ms = db.modelSpaceId();
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 50, 0.125));
        line->setDatabaseDefaults(&db);
        line->setLayer(wallId);
        line->setThickness(2);
        line->setColorIndex(3);
        line->setLinetype(dashedId);
        line->setLineWeight(AcDb::kLnWt050);
        line->setLinetypeScale(2);
        resbuf* xd = acutBuildList(AcDb::kDxfRegAppName, L"QORTEST", AcDb::kDxfXdAsciiString,
                                   L"你好", AcDb::kDxfXdReal, 1.5, AcDb::kDxfXdInteger16, 7, 0);
        line->setXData(xd);
        acutRelRb(xd);
        mLine = append(ms, line);

        auto* arc = new AcDbArc(AcGePoint3d(10, 10, 0), 5, kPi / 6, 5 * kPi / 3);
        arc->setLayer(L"道路");
        append(ms, arc);

        auto* circle = new AcDbCircle(AcGePoint3d(50, 50, 0), AcGeVector3d(0, 0, 1), 12.5);
        circle->setColor(AcCmEntityColor(200, 100, 50));
        mCircle = append(ms, circle);
        {
            auto* c = openFor<AcDbCircle>(mCircle, AcDb::kForWrite);
            c->createExtensionDictionary();
            const AcDbObjectId xdict = c->extensionDictionary();
            c->close();
            auto* dict = openFor<AcDbDictionary>(xdict, AcDb::kForWrite);
            auto* note = new AcDbXrecord();
            resbuf* chain = acutBuildList(AcDb::kDxfText, L"备注", 0);
            note->setFromRbChain(*chain);
            acutRelRb(chain);
            AcDbObjectId noteId;
            dict->setAt(L"NOTE", note, noteId);
            note->close();
            dict->close();
        }

        auto* pline = new AcDbPolyline();
        pline->addVertexAt(0, AcGePoint2d(0, 0), 0.5);
        pline->addVertexAt(1, AcGePoint2d(10, 0), 0.0, 0.5, 1.0);
        pline->addVertexAt(2, AcGePoint2d(10, 10), -1.0);
        pline->addVertexAt(3, AcGePoint2d(0, 10));
        pline->setClosed(true);
        pline->setPlinegen(true);
        pline->setElevation(3);
        append(ms, pline);

        auto* text = new AcDbText(AcGePoint3d(5, 5, 0), L"道路中心线 ABC^2", styleId, 2.5, 0.3);
        text->setHorizontalMode(AcDb::kTextCenter);
        text->setVerticalMode(AcDb::kTextVertMid);
        text->setAlignmentPoint(AcGePoint3d(20, 5, 0));
        text->setWidthFactor(0.8);
        append(ms, text);

        auto* door = new AcDbBlockTableRecord();
        door->setName(L"门");
        door->setOrigin(AcGePoint3d(1, 1, 0));
        const AcDbObjectId doorId = addRecord<AcDbBlockTable>(db.blockTableId(), door);
        append(doorId, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
        append(doorId, new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 1));
        auto* insert = new AcDbBlockReference(AcGePoint3d(200, 100, 0), doorId);
        insert->setScaleFactors(AcGeScale3d(2, 2, 1));
        insert->setRotation(0.5);
        append(ms, insert);

        auto* mark = new TestMark();
        mark->at = AcGePoint3d(30, 40, 0);
        mark->size = 3;
        mark->angle = 0.25;
        mark->label = L"标记";
        mark->ref = mLine;
        mark->setLayer(wallId);
        append(ms, mark);

        append(ms, new AcDbEllipse(AcGePoint3d(70, 10, 0), AcGeVector3d(0, 0, 1),
                                   AcGeVector3d(8, 0, 0), 0.5, 0.0, kPi));
        AcGePoint3dArray fit;
        for (const AcGePoint3d& p : {AcGePoint3d(0, 60, 0), AcGePoint3d(10, 65, 0),
                                     AcGePoint3d(20, 58, 0), AcGePoint3d(30, 62, 0)})
            fit.append(p);
        append(ms, new AcDbSpline(fit));
        AcGePoint3dArray corners;
        AcGeDoubleArray bulges;
        for (const AcGePoint3d& p :
             {AcGePoint3d(0, 80, 0), AcGePoint3d(10, 80, 0), AcGePoint3d(10, 90, 0)}) {
            corners.append(p);
            bulges.append(p.x == 10 && p.y == 80 ? 0.25 : 0.0);
        }
        append(ms, new AcDb2dPolyline(AcDb::k2dSimplePoly, corners, 1.5, true, 0.0, 0.0, &bulges));
        corners[2].z = 4;
        append(ms, new AcDb3dPolyline(AcDb::k3dSimplePoly, corners));
        auto* hatch = new AcDbHatch();
        hatch->setPattern(AcDbHatch::kPreDefined, L"SOLID");
        AcGePoint2dArray square;
        AcGeDoubleArray none;
        for (const AcGePoint2d& p :
             {AcGePoint2d(40, 80), AcGePoint2d(50, 80), AcGePoint2d(50, 90), AcGePoint2d(40, 90)})
            square.append(p);
        hatch->appendLoop(AcDbHatch::kExternal, square, none);
        hatch->evaluateHatch();
        append(ms, hatch);

        append(db.paperSpaceId(), new AcDbCircle(AcGePoint3d(1, 2, 0), AcGeVector3d(0, 0, 1), 3));

        AcDbDictionary* nod = nullptr;
        ASSERT_EQ(db.getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
        auto* setting = new TestSetting();
        setting->value = 42;
        setting->name = L"设置";
        AcDbObjectId id;
        nod->setAt(L"QOR_SETTING", setting, id);
        setting->close();
        auto* data = new AcDbXrecord();
        const ads_point where = {1, 2, 3};
        resbuf* chain = acutBuildList(AcDb::kDxfText, L"数据", AcDb::kDxfReal, 2.5, AcDb::kDxfInt16,
                                      3, AcDb::kDxfXCoord, where, 0);
        data->setFromRbChain(*chain);
        acutRelRb(chain);
        nod->setAt(L"QOR_DATA", data, id);
        data->close();
        nod->close();
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    }

    std::string write(AcDbDatabase& db, bool explode = false, QorDxfReport* report = nullptr) {
        std::string text;
        QorDxfOptions options;
        options.explode = explode;
        QorDxfReport local;
        EXPECT_EQ(qorWriteDxfString(&db, text, options, report ? report : &local), Acad::eOk);
        return text;
    }

    std::string file(const std::string& name, const std::string& text) const {
        const std::string path = (mDir.path() / name).string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    Outcome audit(const std::string& dxf) const {
        return shell("/usr/bin/python3 " + quoted(kAuditScript) + " " + quoted(dxf));
    }

    AcDbObjectId mLine, mCircle;
    TempDir mDir;
};

// ---------------------------------------------------------------- the writer

TEST_F(Dxf, WrittenFileHasItsSectionsUniqueHandlesKnownOwnersAndAHigherSeed) {
    AcDbDatabase db;
    build(db);
    const std::vector<Pair> pairs = pairsOf(write(db));
    ASSERT_FALSE(pairs.empty());

    std::vector<std::string> sections;
    std::set<std::string> handles;
    std::vector<std::string> owners;
    std::string seed, version, codePage;
    for (size_t i = 0; i + 1 < pairs.size(); ++i) {
        const Pair& p = pairs[i];
        if (p.code == 0 && p.value == "SECTION") sections.push_back(pairs[i + 1].value);
        // Outside the header 5 is a handle (105 in DIMSTYLE records); there a variable's value.
        if ((p.code == 5 || p.code == 105) && sections.back() != "HEADER") {
            EXPECT_TRUE(handles.insert(p.value).second) << "handle " << p.value << " twice";
        }
        if (p.code == 330) owners.push_back(p.value);
        if (p.code == 9 && p.value == "$HANDSEED") seed = pairs[i + 1].value;
        if (p.code == 9 && p.value == "$ACADVER") version = pairs[i + 1].value;
        if (p.code == 9 && p.value == "$DWGCODEPAGE") codePage = pairs[i + 1].value;
    }
    EXPECT_EQ(sections, (std::vector<std::string>{"HEADER", "CLASSES", "TABLES", "BLOCKS",
                                                  "ENTITIES", "OBJECTS"}));
    EXPECT_EQ(pairs.back().code, 0);
    EXPECT_EQ(pairs.back().value, "EOF");
    EXPECT_EQ(version, "AC1024");
    EXPECT_EQ(codePage, "ANSI_936");
    for (const std::string& owner : owners)
        EXPECT_TRUE(owner == "0" || handles.count(owner)) << "owner " << owner << " not written";
    unsigned long long highest = 0;
    for (const std::string& h : handles)
        highest = std::max(highest, std::stoull(h, nullptr, 16));
    ASSERT_FALSE(seed.empty());
    EXPECT_GT(std::stoull(seed, nullptr, 16), highest);
}

TEST_F(Dxf, ClassesListCustomClassesWithTheirCountsAndRecordsUseTheirDxfNames) {
    AcDbDatabase db;
    build(db);
    const std::vector<Pair> pairs = pairsOf(write(db));
    std::map<std::string, std::map<int, std::string>> rows; // DXF name -> code -> value
    int marks = 0, settings = 0;
    for (size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i].code == 0 && pairs[i].value == "CLASS") {
            std::map<int, std::string> row;
            for (size_t k = i + 1; k < pairs.size() && pairs[k].code != 0; ++k)
                row[pairs[k].code] = pairs[k].value;
            rows[row[1]] = row;
        }
        marks += pairs[i].code == 0 && pairs[i].value == "TESTMARK";
        settings += pairs[i].code == 0 && pairs[i].value == "TESTSETTING";
    }
    EXPECT_EQ(marks, 1);
    EXPECT_EQ(settings, 1);
    ASSERT_TRUE(rows.count("TESTMARK"));
    EXPECT_EQ(rows["TESTMARK"][2], "TestMark");
    EXPECT_EQ(rows["TESTMARK"][3], "QORTEST");
    EXPECT_EQ(rows["TESTMARK"][90], "1");
    EXPECT_EQ(rows["TESTMARK"][91], "1");
    EXPECT_EQ(rows["TESTMARK"][281], "1");
    ASSERT_TRUE(rows.count("TESTSETTING"));
    EXPECT_EQ(rows["TESTSETTING"][281], "0");
    // Platform types are the file format's own and have no rows.
    EXPECT_FALSE(rows.count("LINE"));
}

TEST_F(Dxf, ExplodeWritesTheCustomEntityAsItsPlainPieces) {
    AcDbDatabase db;
    build(db);
    QorDxfReport plain, exploded;
    const std::string plainText = write(db, false, &plain);
    const std::string explodedText = write(db, true, &exploded);
    auto count = [](const std::string& text, const std::string& type) {
        int n = 0;
        for (const Pair& p : pairsOf(text))
            n += p.code == 0 && p.value == type;
        return n;
    };
    EXPECT_EQ(count(explodedText, "TESTMARK"), 0);
    EXPECT_EQ(count(explodedText, "LINE"), count(plainText, "LINE") + 2);
    EXPECT_EQ(exploded.entities, plain.entities + 1);
    // The object that is no entity stays as it is.
    EXPECT_EQ(count(explodedText, "TESTSETTING"), 1);

    AcDbDatabase back;
    QorDxfReport read;
    ASSERT_EQ(qorReadDxfBytes(&back, explodedText, &read), Acad::eOk) << qorToUtf8(read.error);
    int wallLines = 0;
    for (AcDbObjectId id : entitiesOf(back.modelSpaceId())) {
        auto* ent = openFor<AcDbEntity>(id);
        EXPECT_EQ(TestMark::cast(ent), nullptr);
        ACHAR* layer = ent->layer();
        if (AcDbLine::cast(ent) && std::wstring(layer) == L"墙体") ++wallLines;
        delete[] layer;
        ent->close();
    }
    EXPECT_EQ(wallLines, 3); // the line and the cross's two
}

TEST_F(Dxf, ProxiesAreLeftOutAndCounted) {
    AcDbDatabase db;
    append(db.modelSpaceId(), new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0)));
    AcDbClassRecord rec{L"GoneEntity", L"AcDbEntity", L"GONE_ENTITY", L"GONEAPP", 0};
    append(db.modelSpaceId(), new AcDbProxyEntity(rec, {1, 2, 3}));
    QorDxfReport report;
    const std::string text = write(db, false, &report);
    EXPECT_EQ(report.entities, 1u);
    EXPECT_EQ(report.skippedCount(), 1);
    EXPECT_EQ(report.skippedSummary(), L"GONE_ENTITY 1");
    EXPECT_EQ(text.find("GONE_ENTITY"), std::string::npos);
}

// ---------------------------------------------------------------- independent readers

TEST_F(Dxf, EzdxfLoadsBothFormsStrictlyAndItsAuditFindsNothing) {
    AcDbDatabase db;
    build(db);
    for (bool explode : {false, true}) {
        const std::string path = file(explode ? "exploded.dxf" : "plain.dxf", write(db, explode));
        const Outcome r = audit(path);
        EXPECT_EQ(r.status, 0) << r.out;
        EXPECT_NE(r.out.find("AUDIT CLEAN"), std::string::npos) << r.out;
        EXPECT_EQ(r.out.find("ERROR"), std::string::npos) << r.out;
        EXPECT_EQ(r.out.find("FIX"), std::string::npos) << r.out;
        EXPECT_TRUE(r.has(explode ? "TYPE LINE 3\n" : "TYPE TESTMARK 1\n")) << r.out;
    }
}

TEST_F(Dxf, DimeReadsTheWrittenFile) {
    AcDbDatabase db;
    build(db);
    const std::string path = file("plain.dxf", write(db));
    const std::string vrml = (mDir.path() / "plain.wrl").string();
    const Outcome r = shell("dxf2vrml " + quoted(path) + " -o " + quoted(vrml));
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(r.out.find("failed"), std::string::npos) << r.out;
    std::ifstream in(vrml);
    const std::string scene((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_NE(scene.find("Coordinate3"), std::string::npos) << "no geometry was read";
}

// ---------------------------------------------------------------- our own reader

TEST_F(Dxf, OurFileReadsBackFieldForField) {
    AcDbDatabase db;
    build(db);
    AcDbDatabase back;
    QorDxfReport report;
    ASSERT_EQ(qorReadDxfBytes(&back, write(db), &report), Acad::eOk) << qorToUtf8(report.error);
    EXPECT_EQ(report.skippedCount(), 0) << qorToUtf8(report.skippedSummary());
    // Twelve in model space, one in paper space, two in the block.
    EXPECT_EQ(report.entities, 15u);

    // Tables
    const AcDbObjectId dashedId = recordId(back.linetypeTableId(), L"DASHED");
    {
        auto* lt = openFor<AcDbLinetypeTableRecord>(dashedId);
        EXPECT_STREQ(lt->comments(), L"Dashed __ __ __");
        ASSERT_EQ(lt->numDashes(), 2);
        EXPECT_EQ(lt->dashLengthAt(0), 0.5);
        EXPECT_EQ(lt->dashLengthAt(1), -0.25);
        lt->close();
        auto* wall = openFor<AcDbLayerTableRecord>(recordId(back.layerTableId(), L"墙体"));
        EXPECT_EQ(wall->color().colorIndex(), 1);
        EXPECT_EQ(wall->linetypeObjectId(), dashedId);
        EXPECT_EQ(wall->lineWeight(), AcDb::kLnWt035);
        EXPECT_TRUE(wall->isLocked());
        EXPECT_FALSE(wall->isOff());
        wall->close();
        auto* road = openFor<AcDbLayerTableRecord>(recordId(back.layerTableId(), L"道路"));
        EXPECT_TRUE(road->color().isByColor());
        EXPECT_EQ(road->color().green(), 200);
        EXPECT_TRUE(road->isOff());
        EXPECT_TRUE(road->isFrozen());
        EXPECT_FALSE(road->isPlottable());
        road->close();
        auto* style = openFor<AcDbTextStyleTableRecord>(recordId(back.textStyleTableId(), L"仿宋"));
        EXPECT_STREQ(style->fileName(), L"simfang.ttf");
        EXPECT_EQ(style->xScale(), 0.7);
        ACHAR* face = nullptr;
        bool bold = true, italic = false;
        int charset = 0, pitch = 0;
        style->font(face, bold, italic, charset, pitch);
        EXPECT_STREQ(face, L"仿宋");
        EXPECT_FALSE(bold);
        EXPECT_TRUE(italic);
        EXPECT_EQ(charset, 134);
        EXPECT_EQ(pitch, 2);
        delete[] face;
        style->close();
    }

    const std::vector<AcDbObjectId> ms = entitiesOf(back.modelSpaceId());
    ASSERT_EQ(ms.size(), 12u);
    {
        auto* line = openFor<AcDbLine>(ms[0]);
        EXPECT_EQ(line->startPoint(), AcGePoint3d(0, 0, 0));
        EXPECT_EQ(line->endPoint(), AcGePoint3d(100, 50, 0.125));
        EXPECT_EQ(line->endPoint().z, 0.125);
        EXPECT_EQ(line->thickness(), 2.0);
        EXPECT_EQ(line->colorIndex(), 3);
        EXPECT_EQ(line->linetypeId(), dashedId);
        EXPECT_EQ(line->lineWeight(), AcDb::kLnWt050);
        EXPECT_EQ(line->linetypeScale(), 2.0);
        ACHAR* layer = line->layer();
        EXPECT_STREQ(layer, L"墙体");
        delete[] layer;
        resbuf* xd = line->xData(L"QORTEST");
        ASSERT_NE(xd, nullptr);
        ASSERT_NE(xd->rbnext, nullptr);
        EXPECT_STREQ(xd->rbnext->resval.rstring, L"你好");
        ASSERT_NE(xd->rbnext->rbnext, nullptr);
        EXPECT_EQ(xd->rbnext->rbnext->resval.rreal, 1.5);
        ASSERT_NE(xd->rbnext->rbnext->rbnext, nullptr);
        EXPECT_EQ(xd->rbnext->rbnext->rbnext->resval.rint, 7);
        acutRelRb(xd);
        line->close();
    }
    {
        auto* arc = openFor<AcDbArc>(ms[1]);
        EXPECT_EQ(arc->center(), AcGePoint3d(10, 10, 0));
        EXPECT_EQ(arc->radius(), 5.0);
        EXPECT_NEAR(arc->startAngle(), kPi / 6, 1e-12);
        EXPECT_NEAR(arc->endAngle(), 5 * kPi / 3, 1e-12);
        arc->close();
        auto* circle = openFor<AcDbCircle>(ms[2]);
        EXPECT_EQ(circle->center(), AcGePoint3d(50, 50, 0));
        EXPECT_EQ(circle->radius(), 12.5);
        EXPECT_TRUE(circle->color().isByColor());
        EXPECT_EQ(circle->color().red(), 200);
        EXPECT_EQ(circle->color().blue(), 50);
        // Its extension dictionary came along with the record in it.
        ASSERT_FALSE(circle->extensionDictionary().isNull());
        auto* xdict = openFor<AcDbDictionary>(circle->extensionDictionary());
        AcDbObjectId noteId;
        EXPECT_EQ(xdict->getAt(L"NOTE", noteId), Acad::eOk);
        xdict->close();
        circle->close();
        auto* note = openFor<AcDbXrecord>(noteId);
        resbuf* chain = nullptr;
        note->rbChain(&chain);
        ASSERT_NE(chain, nullptr);
        EXPECT_STREQ(chain->resval.rstring, L"备注");
        acutRelRb(chain);
        note->close();
    }
    {
        auto* pline = openFor<AcDbPolyline>(ms[3]);
        ASSERT_EQ(pline->numVerts(), 4u);
        const double bulges[] = {0.5, 0.0, -1.0, 0.0};
        for (unsigned int i = 0; i < 4; ++i) {
            double bulge = 9;
            pline->getBulgeAt(i, bulge);
            EXPECT_EQ(bulge, bulges[i]) << "vertex " << i;
        }
        AcGePoint2d p;
        pline->getPointAt(2, p);
        EXPECT_EQ(p, AcGePoint2d(10, 10));
        double start = 0, end = 0;
        pline->getWidthsAt(1, start, end);
        EXPECT_EQ(start, 0.5);
        EXPECT_EQ(end, 1.0);
        EXPECT_TRUE(pline->isClosed());
        EXPECT_TRUE(pline->hasPlinegen());
        EXPECT_EQ(pline->elevation(), 3.0);
        pline->close();
    }
    {
        auto* text = openFor<AcDbText>(ms[4]);
        EXPECT_STREQ(text->textStringConst(), L"道路中心线 ABC^2");
        EXPECT_EQ(text->position(), AcGePoint3d(5, 5, 0));
        EXPECT_EQ(text->alignmentPoint(), AcGePoint3d(20, 5, 0));
        EXPECT_EQ(text->height(), 2.5);
        EXPECT_NEAR(text->rotation(), 0.3, 1e-12);
        EXPECT_EQ(text->widthFactor(), 0.8);
        EXPECT_EQ(text->horizontalMode(), AcDb::kTextCenter);
        EXPECT_EQ(text->verticalMode(), AcDb::kTextVertMid);
        EXPECT_EQ(text->textStyle(), recordId(back.textStyleTableId(), L"仿宋"));
        text->close();
    }
    {
        auto* insert = openFor<AcDbBlockReference>(ms[5]);
        const AcDbObjectId doorId = recordId(back.blockTableId(), L"门");
        EXPECT_EQ(insert->blockTableRecord(), doorId);
        EXPECT_EQ(insert->position(), AcGePoint3d(200, 100, 0));
        EXPECT_EQ(insert->scaleFactors().sx, 2.0);
        EXPECT_EQ(insert->scaleFactors().sz, 1.0);
        EXPECT_NEAR(insert->rotation(), 0.5, 1e-12);
        insert->close();
        auto* door = openFor<AcDbBlockTableRecord>(doorId);
        EXPECT_EQ(door->origin(), AcGePoint3d(1, 1, 0));
        door->close();
        const std::vector<AcDbObjectId> inside = entitiesOf(doorId);
        ASSERT_EQ(inside.size(), 2u);
        auto* first = openFor<AcDbEntity>(inside[0]);
        auto* second = openFor<AcDbEntity>(inside[1]);
        EXPECT_EQ(name(first), "AcDbLine");
        EXPECT_EQ(name(second), "AcDbCircle");
        first->close();
        second->close();
    }
    {
        // Read through its own dxfInFields, its reference pointing at the new line.
        auto* mark = openFor<TestMark>(ms[6]);
        EXPECT_EQ(mark->at, AcGePoint3d(30, 40, 0));
        EXPECT_EQ(mark->size, 3.0);
        EXPECT_NEAR(mark->angle, 0.25, 1e-12);
        EXPECT_EQ(mark->label, L"标记");
        EXPECT_EQ(mark->ref, ms[0]);
        ACHAR* layer = mark->layer();
        EXPECT_STREQ(layer, L"墙体");
        delete[] layer;
        mark->close();
    }
    {
        auto* ellipse = openFor<AcDbEllipse>(ms[7]);
        EXPECT_EQ(ellipse->center(), AcGePoint3d(70, 10, 0));
        EXPECT_EQ(ellipse->majorAxis(), AcGeVector3d(8, 0, 0));
        EXPECT_EQ(ellipse->radiusRatio(), 0.5);
        EXPECT_NEAR(ellipse->endAngle(), kPi, 1e-12);
        ellipse->close();
        auto* spline = openFor<AcDbSpline>(ms[8]);
        EXPECT_EQ(spline->degree(), 3);
        EXPECT_GE(spline->numControlPoints(), 4);
        AcGePoint3d first;
        spline->getControlPointAt(0, first);
        EXPECT_EQ(first, AcGePoint3d(0, 60, 0));
        spline->close();
        auto* poly2d = openFor<AcDb2dPolyline>(ms[9]);
        EXPECT_TRUE(poly2d->isClosed());
        EXPECT_EQ(poly2d->elevation(), 1.5);
        std::vector<double> bulges;
        AcDbObjectIterator* it = poly2d->vertexIterator();
        for (; !it->done(); it->step())
            bulges.push_back(AcDb2dVertex::cast(it->entity())->bulge());
        delete it;
        EXPECT_EQ(bulges, (std::vector<double>{0.0, 0.25, 0.0}));
        poly2d->close();
        auto* poly3d = openFor<AcDb3dPolyline>(ms[10]);
        std::vector<AcGePoint3d> points;
        it = poly3d->vertexIterator();
        for (; !it->done(); it->step())
            points.push_back(AcDb3dPolylineVertex::cast(it->entity())->position());
        delete it;
        EXPECT_EQ(points, (std::vector<AcGePoint3d>{AcGePoint3d(0, 80, 0), AcGePoint3d(10, 80, 0),
                                                    AcGePoint3d(10, 90, 4)}));
        poly3d->close();
        auto* hatch = openFor<AcDbHatch>(ms[11]);
        EXPECT_STREQ(hatch->patternName(), L"SOLID");
        EXPECT_TRUE(hatch->isSolidFill());
        ASSERT_EQ(hatch->numLoops(), 1);
        Adesk::Int32 type = 0;
        AcGePoint2dArray loop;
        AcGeDoubleArray loopBulges;
        hatch->getLoopAt(0, type, loop, loopBulges);
        ASSERT_EQ(loop.length(), 4);
        EXPECT_EQ(loop[2], AcGePoint2d(50, 90));
        hatch->close();
    }
    const std::vector<AcDbObjectId> ps = entitiesOf(back.paperSpaceId());
    ASSERT_EQ(ps.size(), 1u);
    {
        auto* circle = openFor<AcDbCircle>(ps[0]);
        EXPECT_EQ(circle->radius(), 3.0);
        circle->close();
    }

    AcDbDictionary* nod = nullptr;
    ASSERT_EQ(back.getNamedObjectsDictionary(nod), Acad::eOk);
    AcDbObjectId settingId, dataId;
    EXPECT_EQ(nod->getAt(L"QOR_SETTING", settingId), Acad::eOk);
    EXPECT_EQ(nod->getAt(L"QOR_DATA", dataId), Acad::eOk);
    // The writer's own layout dictionaries are not brought in as data.
    EXPECT_FALSE(nod->has(L"ACAD_LAYOUT"));
    nod->close();
    auto* setting = openFor<TestSetting>(settingId);
    EXPECT_EQ(setting->value, 42);
    EXPECT_EQ(setting->name, L"设置");
    setting->close();
    auto* data = openFor<AcDbXrecord>(dataId);
    resbuf* chain = nullptr;
    data->rbChain(&chain);
    ASSERT_NE(chain, nullptr);
    EXPECT_STREQ(chain->resval.rstring, L"数据");
    ASSERT_NE(chain->rbnext, nullptr);
    EXPECT_EQ(chain->rbnext->resval.rreal, 2.5);
    ASSERT_NE(chain->rbnext->rbnext, nullptr);
    EXPECT_EQ(chain->rbnext->rbnext->resval.rint, 3);
    ASSERT_NE(chain->rbnext->rbnext->rbnext, nullptr);
    EXPECT_EQ(chain->rbnext->rbnext->rbnext->resval.rpoint[2], 3.0);
    acutRelRb(chain);
    data->close();
}

// A drawing made by another program: lines, an arc, a circle, a polyline with bulges,
// Chinese text, a block with an attribute, an ellipse, a spline, a hatch, old-style 2D and 3D
// polylines, and a point the platform has no class for.
constexpr const char* kEzdxfDrawing = R"py(
import sys
import ezdxf
doc = ezdxf.new("R2010")
doc.linetypes.add("DASHED", pattern=[0.75, 0.5, -0.25], description="Dashed __ __")
doc.layers.add("墙", color=1)
doc.layers.add("道路", color=3, linetype="DASHED")
msp = doc.modelspace()
msp.add_line((0, 0), (10, 5), dxfattribs={"layer": "墙"})
msp.add_line((1, 1, 1), (2, 2, 2))
msp.add_arc((5, 5), 3, 30, 120, dxfattribs={"layer": "道路"})
msp.add_circle((1, 2), 4, dxfattribs={"color": 5})
msp.add_lwpolyline([(0, 0, 0, 0, 0.5), (10, 0, 0.25, 0.75, 0), (10, 10, 0, 0, -1)],
                   format="xyseb", close=True, dxfattribs={"layer": "道路"})
msp.add_text("中文文字", dxfattribs={"height": 2.5, "layer": "墙"}).set_placement((3, 4))
block = doc.blocks.new("门")
block.add_line((0, 0), (1, 0))
block.add_attdef("编号", (0, 1), dxfattribs={"height": 0.5})
ref = msp.add_blockref("门", (20, 20))
ref.add_auto_attribs({"编号": "D-01"})
msp.add_ellipse((40, 0), major_axis=(6, 0), ratio=0.5, start_param=0, end_param=3.141592653589793)
msp.add_spline([(0, 40), (10, 45), (20, 38), (30, 42)])
hatch = msp.add_hatch(color=2)
hatch.paths.add_polyline_path([(0, 50), (10, 50), (10, 60), (0, 60)], is_closed=True)
msp.add_polyline2d([(0, 70, 0.5), (10, 70, 0), (10, 80, 0)], format="xyb", close=True)
msp.add_polyline3d([(0, 0, 0), (1, 2, 3), (4, 5, 6)])
msp.add_point((7, 7))
doc.saveas(sys.argv[1])
)py";

TEST_F(Dxf, ADrawingWrittenByEzdxfImportsWithEveryEntityAndLayer) {
    const std::string path = (mDir.path() / "ezdxf.dxf").string();
    const std::string script = file("make.py", kEzdxfDrawing);
    const Outcome made = shell("/usr/bin/python3 " + quoted(script) + " " + quoted(path));
    ASSERT_EQ(made.status, 0) << made.out;

    AcDbDatabase db;
    QorDxfReport report;
    ASSERT_EQ(qorReadDxf(&db, qorFromUtf8(path).c_str(), &report), Acad::eOk)
        << qorToUtf8(report.error);
    EXPECT_EQ(report.skippedSummary(), L"POINT 1");

    for (const ACHAR* layer : {L"墙", L"道路"})
        EXPECT_FALSE(recordId(db.layerTableId(), layer).isNull()) << qorToUtf8(layer);
    {
        auto* road = openFor<AcDbLayerTableRecord>(recordId(db.layerTableId(), L"道路"));
        EXPECT_EQ(road->color().colorIndex(), 3);
        EXPECT_EQ(road->linetypeObjectId(), recordId(db.linetypeTableId(), L"DASHED"));
        road->close();
    }

    std::vector<std::string> types;
    std::vector<std::wstring> texts;
    for (AcDbObjectId id : entitiesOf(db.modelSpaceId())) {
        auto* ent = openFor<AcDbEntity>(id);
        types.push_back(name(ent));
        if (auto* t = AcDbText::cast(ent)) texts.push_back(t->textStringConst());
        if (auto* p = AcDbPolyline::cast(ent)) {
            ASSERT_EQ(p->numVerts(), 3u);
            double b0 = 0, b2 = 0, s1 = 0, e1 = 0;
            p->getBulgeAt(0, b0);
            p->getBulgeAt(2, b2);
            p->getWidthsAt(1, s1, e1);
            EXPECT_EQ(b0, 0.5);
            EXPECT_EQ(b2, -1.0);
            EXPECT_EQ(s1, 0.25);
            EXPECT_EQ(e1, 0.75);
            EXPECT_TRUE(p->isClosed());
        }
        if (auto* a = AcDbArc::cast(ent)) {
            EXPECT_NEAR(a->startAngle(), kPi / 6, 1e-12);
            EXPECT_NEAR(a->endAngle(), 2 * kPi / 3, 1e-12);
            ACHAR* layer = a->layer();
            EXPECT_STREQ(layer, L"道路");
            delete[] layer;
        }
        if (auto* c = AcDbCircle::cast(ent)) {
            EXPECT_EQ(c->colorIndex(), 5);
        }
        if (auto* l = AcDbLine::cast(ent); l && l->startPoint().z != 0) {
            EXPECT_EQ(l->endPoint(), AcGePoint3d(2, 2, 2));
        }
        ent->close();
    }
    // The attribute became a text beside its insert.
    EXPECT_EQ(types, (std::vector<std::string>{"AcDbLine", "AcDbLine", "AcDbArc", "AcDbCircle",
                                               "AcDbPolyline", "AcDbText", "AcDbBlockReference",
                                               "AcDbText", "AcDbEllipse", "AcDbSpline", "AcDbHatch",
                                               "AcDb2dPolyline", "AcDb3dPolyline"}));
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"中文文字", L"D-01"}));

    const AcDbObjectId door = recordId(db.blockTableId(), L"门");
    ASSERT_FALSE(door.isNull());
    const std::vector<AcDbObjectId> inside = entitiesOf(door);
    ASSERT_EQ(inside.size(), 2u);
    auto* tag = openFor<AcDbText>(inside[1]);
    EXPECT_STREQ(tag->textStringConst(), L"编号");
    EXPECT_EQ(tag->visibility(), AcDb::kInvisible);
    tag->close();
}

// ---------------------------------------------------------------- text and old files

std::string entitiesFile(const std::string& header, const std::string& body) {
    return "  0\nSECTION\n  2\nHEADER\n" + header + "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n" +
           body + "  0\nENDSEC\n  0\nEOF\n";
}

std::vector<std::wstring> textsOf(AcDbDatabase& db) {
    std::vector<std::wstring> texts;
    for (AcDbObjectId id : entitiesOf(db.modelSpaceId())) {
        auto* t = openFor<AcDbText>(id);
        texts.push_back(t->textStringConst());
        t->close();
    }
    return texts;
}

TEST_F(Dxf, OldFilesInCodePage936AreReadAsGbkAndNewOnesAsUtf8) {
    const std::string gbk = qorToCodePage(936, L"道路");
    const std::string body =
        "  0\nTEXT\n  8\n" + gbk + "\n 10\n0\n 20\n0\n 40\n1\n  1\n" + gbk + "\\U+4E2D ^J^ \n";
    AcDbDatabase old;
    QorDxfReport report;
    ASSERT_EQ(qorReadDxfBytes(&old,
                              entitiesFile("  9\n$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\n"
                                           "ANSI_936\n",
                                           body),
                              &report),
              Acad::eOk)
        << qorToUtf8(report.error);
    EXPECT_EQ(textsOf(old), std::vector<std::wstring>{L"道路中 \n^"});
    EXPECT_FALSE(recordId(old.layerTableId(), L"道路").isNull());

    // The same bytes in a file of a UTF-8 release are not taken for GBK.
    AcDbDatabase utf8;
    ASSERT_EQ(qorReadDxfBytes(&utf8, entitiesFile("  9\n$ACADVER\n  1\nAC1024\n", body), &report),
              Acad::eOk);
    EXPECT_TRUE(recordId(utf8.layerTableId(), L"道路").isNull());
    const std::string utf8Body =
        "  0\nTEXT\n  8\n0\n 10\n0\n 20\n0\n 40\n1\n  1\n" + qorToUtf8(L"道路") + "\n";
    AcDbDatabase utf8Text;
    ASSERT_EQ(
        qorReadDxfBytes(&utf8Text, entitiesFile("  9\n$ACADVER\n  1\nAC1024\n", utf8Body), &report),
        Acad::eOk);
    EXPECT_EQ(textsOf(utf8Text), std::vector<std::wstring>{L"道路"});
}

TEST_F(Dxf, OldStylePolylinesMtextAndUnknownTypesAreReadOrCounted) {
    // A 2D polyline, a 3D polyline whose frame point is dropped, a polyface mesh, a 3D face,
    // an MTEXT of two paragraphs and a dimension; no handles or subclass markers, as in old files.
    const std::string body = "  0\nPOLYLINE\n  8\n0\n 66\n1\n 10\n0\n 20\n0\n 30\n2.5\n 70\n1\n"
                             "  0\nVERTEX\n  8\n0\n 10\n0\n 20\n0\n 42\n0.5\n"
                             "  0\nVERTEX\n  8\n0\n 10\n10\n 20\n0\n"
                             "  0\nVERTEX\n  8\n0\n 10\n10\n 20\n10\n"
                             "  0\nSEQEND\n  8\n0\n"
                             "  0\nPOLYLINE\n  8\n0\n 66\n1\n 70\n8\n"
                             "  0\nVERTEX\n  8\n0\n 10\n1\n 20\n2\n 30\n3\n 70\n32\n"
                             "  0\nVERTEX\n  8\n0\n 10\n9\n 20\n9\n 30\n9\n 70\n16\n"
                             "  0\nVERTEX\n  8\n0\n 10\n4\n 20\n5\n 30\n6\n 70\n32\n"
                             "  0\nSEQEND\n  8\n0\n"
                             "  0\nPOLYLINE\n  8\n0\n 66\n1\n 70\n64\n"
                             "  0\nVERTEX\n  8\n0\n 10\n1\n 20\n2\n 30\n3\n 70\n192\n"
                             "  0\nSEQEND\n  8\n0\n"
                             "  0\n3DFACE\n  8\n0\n 10\n0\n 20\n0\n 30\n0\n"
                             "  0\nMTEXT\n  8\n0\n 10\n0\n 20\n10\n 30\n0\n 40\n2\n 71\n1\n"
                             "  1\n{\\fArial|b0;first}\\Psecond \\S1^2;\n"
                             "  0\nDIMENSION\n  8\n0\n";
    AcDbDatabase db;
    QorDxfReport report;
    ASSERT_EQ(qorReadDxfBytes(&db, entitiesFile("", body), &report), Acad::eOk)
        << qorToUtf8(report.error);
    EXPECT_EQ(report.skippedSummary(), L"3DFACE 1, DIMENSION 1, POLYLINE 1");
    const std::vector<AcDbObjectId> ids = entitiesOf(db.modelSpaceId());
    ASSERT_EQ(ids.size(), 4u);
    auto* flat = openFor<AcDb2dPolyline>(ids[0]);
    std::vector<double> bulges;
    AcDbObjectIterator* it = flat->vertexIterator();
    for (; !it->done(); it->step())
        bulges.push_back(AcDb2dVertex::cast(it->entity())->bulge());
    delete it;
    EXPECT_EQ(bulges, (std::vector<double>{0.5, 0.0, 0.0}));
    EXPECT_TRUE(flat->isClosed());
    EXPECT_EQ(flat->elevation(), 2.5);
    flat->close();
    auto* space = openFor<AcDb3dPolyline>(ids[1]);
    std::vector<AcGePoint3d> points;
    it = space->vertexIterator();
    for (; !it->done(); it->step())
        points.push_back(AcDb3dPolylineVertex::cast(it->entity())->position());
    delete it;
    EXPECT_EQ(points, (std::vector<AcGePoint3d>{AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6)}));
    space->close();
    auto* first = openFor<AcDbText>(ids[2]);
    auto* second = openFor<AcDbText>(ids[3]);
    EXPECT_STREQ(first->textStringConst(), L"first");
    EXPECT_STREQ(second->textStringConst(), L"second 1/2");
    EXPECT_EQ(first->verticalMode(), AcDb::kTextTop);
    EXPECT_EQ(first->alignmentPoint(), AcGePoint3d(0, 10, 0));
    EXPECT_NEAR(second->alignmentPoint().y, 10 - 2 * 5.0 / 3.0, 1e-12);
    first->close();
    second->close();
}

// ---------------------------------------------------------------- damaged files

struct Damage {
    const char* what;
    std::string text;
    int line;
    const wchar_t* message;
};

const std::string kLine = "  0\nLINE\n  8\n0\n 10\n1.0\n 20\n2.0\n 11\n3.0\n 21\n4.0\n";
const std::string kHead = "  0\nSECTION\n  2\nENTITIES\n";

TEST_F(Dxf, DamagedOrTruncatedFilesNameTheLine) {
    const std::vector<Damage> cases = {
        {"empty", "", 1, L"the file is empty"},
        {"binary", std::string("Program Binary DXF\r\n\x1a\0", 22), 1, L"binary DXF"},
        {"no section", kLine, 1, L"expected 0 SECTION, found 0 \"LINE\""},
        {"code is text", kHead + "  0\nLINE\nxx\n0\n", 7, L"expected a group code, found \"xx\""},
        {"real is text", kHead + "  0\nLINE\n 10\nabc\n", 8, L"group 10 needs a number"},
        {"integer is a fraction", kHead + "  0\nLINE\n 62\n1.5\n", 8, L"group 62 needs an integer"},
        {"value missing", kHead + "  0\nLINE\n 10\n", 7,
         L"before its value (the file is truncated)"},
        {"section cut", kHead + kLine, 16, L"ends inside the ENTITIES section"},
        {"no EOF", kHead + kLine + "  0\nENDSEC\n", 18, L"without EOF"},
        {"no ENDSEC", kHead + kLine + "  0\nSECTION\n  2\nOBJECTS\n  0\nENDSEC\n  0\nEOF\n", 17,
         L"the ENTITIES section has no ENDSEC"},
        {"block not ended",
         "  0\nSECTION\n  2\nBLOCKS\n  0\nBLOCK\n  2\nB\n" + kLine + "  0\nENDSEC\n  0\nEOF\n", 5,
         L"block B has no ENDBLK"},
    };
    for (const Damage& c : cases) {
        AcDbDatabase db;
        QorDxfReport report;
        EXPECT_EQ(qorReadDxfBytes(&db, c.text, &report), Acad::eBadDxfSequence) << c.what;
        EXPECT_EQ(report.errorLine, c.line) << c.what << ": " << qorToUtf8(report.error);
        EXPECT_EQ(report.error.rfind(L"line " + std::to_wstring(c.line) + L": ", 0), 0u)
            << c.what << ": " << qorToUtf8(report.error);
        EXPECT_NE(report.error.find(c.message), std::wstring::npos)
            << c.what << ": " << qorToUtf8(report.error);
    }
}

TEST_F(Dxf, AMissingFileIsReportedByName) {
    AcDbDatabase db;
    QorDxfReport report;
    EXPECT_EQ(qorReadDxf(&db, mDir.file("none.dxf").c_str(), &report), Acad::eFileNotFound);
    EXPECT_NE(report.error.find(L"none.dxf"), std::wstring::npos);
}

} // namespace
