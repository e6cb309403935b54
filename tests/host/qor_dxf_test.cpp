// `qor dxf` and `qor import` on a drawing of plain entities and double lines made through the
// test command module: both DXF forms pass two independent readers, and come back in.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "support/qorrun.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>

namespace {

const std::string kAuditScript = std::string(QOR_TEST_DATA) + "/ezdxf_audit.py";

template <class T> T* opened(AcDbObjectId id, AcDb::OpenMode mode) {
    T* obj = nullptr;
    EXPECT_EQ(acdbOpenObject(obj, id, mode), Acad::eOk);
    return obj;
}

void append(AcDbObjectId space, AcDbEntity* ent) {
    auto* btr = opened<AcDbBlockTableRecord>(space, AcDb::kForWrite);
    EXPECT_EQ(btr->appendAcDbEntity(ent), Acad::eOk);
    ent->close();
    btr->close();
}

class QorDxf : public ::testing::Test {
protected:
    Outcome runQor(const std::string& args) const {
        return shell(std::string("QOR_MODULE='") + QOR_MODULE_PATH + "' '" + QOR_BIN_DIR +
                     "/qor' " + args);
    }

    std::string path(const std::string& name) const { return (mDir.path() / name).string(); }

    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

    // Types and counts of a file's model space as ezdxf sees it, with the audit's verdict.
    std::map<std::string, int> audit(const std::string& dxf, std::string& output) const {
        const Outcome r = shell("/usr/bin/python3 " + quoted(kAuditScript) + " " + quoted(dxf));
        output = r.out;
        std::map<std::string, int> types;
        const std::regex row("TYPE (\\S+) (\\d+)");
        for (auto it = std::sregex_iterator(r.out.begin(), r.out.end(), row);
             it != std::sregex_iterator(); ++it)
            types[(*it)[1]] = std::stoi((*it)[2]);
        if (r.status != 0 || !r.has("AUDIT CLEAN") || r.has("ERROR") || r.has("FIX"))
            types["(audit failed)"] = 1;
        return types;
    }

    // Lines, an arc, a circle, polylines with bulges, Chinese texts and a block reference on a
    // current layer 道路; then two double lines, one with an arc, made by the test commands.
    void SetUp() override {
        {
            AcDbDatabase db;
            acdbHostApplicationServices()->setWorkingDatabase(&db);
            AcDbLayerTable* layers = nullptr;
            ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
            auto* road = new AcDbLayerTableRecord();
            road->setName(L"道路");
            AcCmColor green;
            green.setColorIndex(3);
            road->setColor(green);
            AcDbObjectId roadId;
            ASSERT_EQ(layers->add(roadId, road), Acad::eOk);
            road->close();
            layers->close();
            ASSERT_EQ(db.setClayer(roadId), Acad::eOk);

            const AcDbObjectId ms = db.modelSpaceId();
            append(ms, new AcDbLine(AcGePoint3d(0, -10, 0), AcGePoint3d(30, -10, 0)));
            append(ms, new AcDbLine(AcGePoint3d(0, -12, 0), AcGePoint3d(30, -12, 0)));
            append(ms, new AcDbArc(AcGePoint3d(40, 0, 0), 5, 0.0, 3.0));
            append(ms, new AcDbCircle(AcGePoint3d(50, 10, 0), AcGeVector3d(0, 0, 1), 2));
            auto* pline = new AcDbPolyline();
            pline->addVertexAt(0, AcGePoint2d(0, 30), 0.5);
            pline->addVertexAt(1, AcGePoint2d(10, 30), -0.25);
            pline->addVertexAt(2, AcGePoint2d(20, 35));
            append(ms, pline);
            append(ms, new AcDbText(AcGePoint3d(0, -20, 0), L"北环路", db.textstyle(), 2.5, 0));
            append(ms, new AcDbText(AcGePoint3d(0, -25, 0), L"桩号 K0+100", db.textstyle(), 2, 0));

            auto* mark = new AcDbBlockTableRecord();
            mark->setName(L"里程碑");
            AcDbBlockTable* blocks = nullptr;
            ASSERT_EQ(db.getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
            AcDbObjectId markId;
            ASSERT_EQ(blocks->add(markId, mark), Acad::eOk);
            mark->close();
            blocks->close();
            append(markId, new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 0.5));
            append(ms, new AcDbBlockReference(AcGePoint3d(60, 0, 0), markId));
            ASSERT_EQ(db.saveAs(qorFromUtf8(path("base.qdb")).c_str()), Acad::eOk);
            acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        }
        const std::string script = write("lines.txt", "DUBLINE\n2.5\n0,0\n10,0\n@0,5\n\n"
                                                      "DUBLINE\n1\n0,20\n10,20\nA\n0.5\n20,20\n\n");
        const Outcome made =
            runQor("run --load " + quoted(QOR_TEST_COMMANDS) + " " + quoted(script) + " --open " +
                   quoted(path("base.qdb")) + " --save " + quoted(path("made.qdb")));
        ASSERT_EQ(made.status, 0) << made.out;
        ASSERT_EQ(made.count("\nDouble line "), 2) << made.out;
    }

    TempDir mDir;
};

TEST_F(QorDxf, BothFormsPassEzdxfsStrictLoadAndAuditAndDimeReadsThem) {
    const Outcome plain =
        runQor("dxf " + quoted(path("made.qdb")) + " -o " + quoted(path("plain.dxf")));
    ASSERT_EQ(plain.status, 0) << plain.out;
    // Eight plain entities and two double lines in model space, one in the block.
    EXPECT_TRUE(plain.has("plain.dxf: 11 entities")) << plain.out;
    const Outcome exploded = runQor("dxf " + quoted(path("made.qdb")) + " -o " +
                                    quoted(path("exploded.dxf")) + " --explode");
    ASSERT_EQ(exploded.status, 0) << exploded.out;

    std::string output;
    std::map<std::string, int> types = audit(path("plain.dxf"), output);
    EXPECT_EQ(types, (std::map<std::string, int>{{"ARC", 1},
                                                 {"CIRCLE", 1},
                                                 {"INSERT", 1},
                                                 {"LINE", 2},
                                                 {"LWPOLYLINE", 1},
                                                 {"QOR_DUBLINE", 2},
                                                 {"TEXT", 2}}))
        << output;

    types = audit(path("exploded.dxf"), output);
    EXPECT_FALSE(types.count("(audit failed)")) << output;
    EXPECT_FALSE(types.count("QOR_DUBLINE")) << output;
    // Each double line leaves its two sides as polylines beside the one drawn as such.
    EXPECT_GE(types["LWPOLYLINE"], 1 + 4) << output;
    EXPECT_EQ(types["TEXT"], 2) << output;

    for (const char* name : {"plain", "exploded"}) {
        const Outcome dime = shell("dxf2vrml " + quoted(path(std::string(name) + ".dxf")) + " -o " +
                                   quoted(path(std::string(name) + ".wrl")));
        EXPECT_EQ(dime.status, 0) << name << ": " << dime.out;
        EXPECT_FALSE(dime.has("failed")) << name << ": " << dime.out;
    }
}

TEST_F(QorDxf, ImportBringsTheDoubleLinesBackThroughTheirClass) {
    ASSERT_EQ(runQor("dxf " + quoted(path("made.qdb")) + " -o " + quoted(path("plain.dxf"))).status,
              0);
    const Outcome imported =
        runQor("import " + quoted(path("plain.dxf")) + " -o " + quoted(path("back.qdb")));
    ASSERT_EQ(imported.status, 0) << imported.out;
    EXPECT_TRUE(imported.has("back.qdb: 11 entities")) << imported.out;
    EXPECT_FALSE(imported.has("skipped")) << imported.out;

    const Outcome listed = runQor("list " + quoted(path("back.qdb")));
    ASSERT_EQ(listed.status, 0) << listed.out;
    EXPECT_EQ(listed.count("AcdbQorDubLine  Layer: \"道路\""), 2) << listed.out;
    EXPECT_TRUE(listed.has("北环路")) << listed.out;
    EXPECT_TRUE(listed.has("桩号 K0+100")) << listed.out;
    EXPECT_TRUE(listed.has("10 entities")) << listed.out;
}

TEST_F(QorDxf, WithoutTheModuleDoubleLinesAreLeftOutAndCounted) {
    const Outcome r =
        runQor("--no-module dxf " + quoted(path("made.qdb")) + " -o " + quoted(path("bare.dxf")));
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(r.has("qor: left out 2 entities: QOR_DUBLINE 2")) << r.out;
    EXPECT_TRUE(r.has("bare.dxf: 9 entities")) << r.out;
}

TEST_F(QorDxf, DamagedFilesAndWrongArgumentsGiveClearErrors) {
    const std::string damaged = write("damaged.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n"
                                                     " 10\n1,5\n");
    Outcome r = runQor("import " + quoted(damaged) + " -o " + quoted(path("x.qdb")));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("damaged.dxf: line 8: group 10 needs a number, found \"1,5\"")) << r.out;

    const std::string truncated =
        write("truncated.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\n");
    r = runQor("import " + quoted(truncated) + " -o " + quoted(path("x.qdb")));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("line 7: the file ends after group code 10")) << r.out;

    const std::string odd = write("odd.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\n3DFACE\n  8\n0\n"
                                             "  0\nLINE\n 10\n0\n 20\n0\n 11\n1\n 21\n1\n"
                                             "  0\nENDSEC\n  0\nEOF\n");
    r = runQor("import " + quoted(odd) + " -o " + quoted(path("odd.qdb")));
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(r.has("qor: skipped 1 entities: 3DFACE 1")) << r.out;
    EXPECT_TRUE(r.has("odd.qdb: 1 entities")) << r.out;

    r = runQor("dxf " + quoted(path("none.qdb")) + " -o " + quoted(path("none.dxf")));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.has("none.qdb")) << r.out;
    r = runQor("dxf " + quoted(path("made.qdb")));
    EXPECT_NE(r.status, 0);
    EXPECT_TRUE(r.has("--output")) << r.out;
}

} // namespace
