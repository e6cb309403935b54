// A double line's whole life driven through `qor run` and the test command module: made,
// saved, reopened, drawn, edited, transformed, exploded and exported to a block.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "support/qorrun.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

class QorScript : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return (mDir.path() / name).string(); }

    std::string script(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

    // Runs a script with the test commands loaded; drawings by name in the temporary folder.
    Outcome run(const std::string& text, const std::string& open = "",
                const std::string& save = "") const {
        std::string args =
            "run --load " + quoted(QOR_TEST_COMMANDS) + " " + quoted(script("script.txt", text));
        if (!open.empty()) args += " --open " + quoted(path(open));
        if (!save.empty()) args += " --save " + quoted(path(save));
        return runQor(args);
    }

    // A drawing whose current layer is 道路 and current colour green (3), so that what the
    // commands make shows that it takes the drawing's defaults.
    void SetUp() override {
        AcDbDatabase db;
        AcDbLayerTable* layers = nullptr;
        ASSERT_EQ(db.getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
        auto* road = new AcDbLayerTableRecord();
        road->setName(L"道路");
        AcDbObjectId roadId;
        ASSERT_EQ(layers->add(roadId, road), Acad::eOk);
        road->close();
        layers->close();
        ASSERT_EQ(db.setClayer(roadId), Acad::eOk);
        AcCmColor green;
        green.setColorIndex(3);
        ASSERT_EQ(db.setCecolor(green), Acad::eOk);
        ASSERT_EQ(db.saveAs(qorFromUtf8(path("base.qdb")).c_str()), Acad::eOk);
    }

    // Two double lines: A of width 2.5 along (0,0) (10,0) (10,5), B of width 0.
    void makeLines() {
        Outcome made = run("; a double line with a corner, and one without width\n"
                           "DUBLINE\n2.5\n0,0\n10,0\n@0,5\n\n"
                           "\n"
                           "dubline\n0\n0,20\n10,20\n\n"
                           "DLLIST\n",
                           "base.qdb", "made.qdb");
        ASSERT_EQ(made.status, 0) << made.out;
        ASSERT_EQ(made.count("\nDouble line "), 2) << made.out;
        ASSERT_TRUE(made.has("2 double lines")) << made.out;
    }

    TempDir mDir;
};

TEST_F(QorScript, MadeLinesAreSavedAndReopenWithTheirWidthLayerAndColour) {
    makeLines();
    Outcome listed = runQor("list " + quoted(path("made.qdb")));
    EXPECT_EQ(listed.status, 0) << listed.out;
    EXPECT_EQ(listed.count("AcdbQorDubLine  Layer: \"道路\""), 2) << listed.out;
    EXPECT_EQ(listed.count("Color: 3"), 2) << listed.out;
    EXPECT_TRUE(listed.has("实体宽度:  2.500")) << listed.out;
    EXPECT_TRUE(listed.has("实体宽度:  0.000")) << listed.out;
    EXPECT_TRUE(listed.has("2 entities")) << listed.out;
}

TEST_F(QorScript, DrawingGivesTwoSideLinesAndNothingForNoWidth) {
    makeLines();
    Outcome drawn = run("DLDRAW\n", "made.qdb");
    EXPECT_EQ(drawn.status, 0) << drawn.out;
    EXPECT_TRUE(drawn.has(": 2 items\n")) << drawn.out;
    EXPECT_TRUE(drawn.has(": 0 items\n")) << drawn.out;
    EXPECT_EQ(drawn.count("Polyline pts="), 2) << drawn.out;
    EXPECT_TRUE(drawn.has("Polyline pts=[(0.000,-1.250,0.000) (11.250,-1.250,0.000) "
                          "(11.250,5.000,0.000)]"))
        << drawn.out;
    EXPECT_TRUE(drawn.has("Polyline pts=[(0.000,1.250,0.000) (8.750,1.250,0.000) "
                          "(8.750,5.000,0.000)]"))
        << drawn.out;
    EXPECT_EQ(drawn.count("| color=3 "), 2) << drawn.out;
}

TEST_F(QorScript, GripsAndStretchPointsMoveTheCentreLine) {
    makeLines();
    // Grip 2 exists only on A; stretch point 0 on both.
    Outcome edited = run("DLGRIP\n2\n0,5\nDLSTRETCH\n0\n-5,0\nDLDRAW\n", "made.qdb", "edited.qdb");
    EXPECT_EQ(edited.status, 0) << edited.out;
    EXPECT_TRUE(edited.has("has only 2 grip points")) << edited.out;
    EXPECT_TRUE(edited.has("Moved grip point 2 of 1 double lines.")) << edited.out;
    EXPECT_TRUE(edited.has("Moved stretch point 0 of 2 double lines.")) << edited.out;
    EXPECT_TRUE(edited.has("Polyline pts=[(-5.000,-1.250,0.000) (11.250,-1.250,0.000) "
                           "(11.250,10.000,0.000)]"))
        << edited.out;
    EXPECT_TRUE(edited.has("Polyline pts=[(-5.000,1.250,0.000) (8.750,1.250,0.000) "
                           "(8.750,10.000,0.000)]"))
        << edited.out;
    // The edit was saved: drawing the saved drawing gives the same sides.
    Outcome again = run("DLDRAW\n", "edited.qdb");
    EXPECT_TRUE(again.has("(-5.000,1.250,0.000) (8.750,1.250,0.000) (8.750,10.000,0.000)"))
        << again.out;
}

TEST_F(QorScript, MoveScaleAndMirrorTransformTheLinesAndTheWidth) {
    makeLines();
    // A ends at (1,1) (11,1) (11,6), then (1,1) (21,1) (21,11) and width 5, then mirrored in
    // the y axis.
    Outcome moved = run("DLMOVE\n1,1\nDLSCALE\n1,1\n2\nDLMIRROR\n0,0\n@0,1\nDLLIST\nDLDRAW\n",
                        "made.qdb", "moved.qdb");
    EXPECT_EQ(moved.status, 0) << moved.out;
    EXPECT_TRUE(moved.has("Scaled 2 double lines.")) << moved.out;
    EXPECT_TRUE(moved.has("实体宽度:  5.000")) << moved.out;
    EXPECT_FALSE(moved.has("实体宽度:  2.500")) << moved.out;
    EXPECT_TRUE(moved.has("(-1.000,-1.500,0.000) (-23.500,-1.500,0.000) (-23.500,11.000,0.000)"))
        << moved.out;
    EXPECT_TRUE(moved.has("(-1.000,3.500,0.000) (-18.500,3.500,0.000) (-18.500,11.000,0.000)"))
        << moved.out;
    Outcome listed = runQor("list " + quoted(path("moved.qdb")));
    EXPECT_TRUE(listed.has("实体宽度:  5.000")) << listed.out;
    EXPECT_TRUE(listed.has("实体宽度:  0.000")) << listed.out;
}

TEST_F(QorScript, ExplodeReplacesTheLinesByCurvesWithTheirColourAndLayer) {
    makeLines();
    Outcome exploded = run("DLEXPLODE\nDLLIST\n", "made.qdb", "exploded.qdb");
    EXPECT_EQ(exploded.status, 0) << exploded.out;
    EXPECT_TRUE(exploded.has("Exploded 2 double lines into 2 entities.")) << exploded.out;
    EXPECT_TRUE(exploded.has("0 double lines")) << exploded.out;
    Outcome listed = runQor("list " + quoted(path("exploded.qdb")));
    EXPECT_EQ(listed.status, 0) << listed.out;
    EXPECT_EQ(listed.count("AcDbPolyline  Layer: \"道路\""), 2) << listed.out;
    EXPECT_EQ(listed.count("Color: 3"), 2) << listed.out;
    EXPECT_FALSE(listed.has("AcdbQorDubLine")) << listed.out;
    EXPECT_TRUE(listed.has("at point X=   11.2500  Y=    5.0000")) << listed.out;
    EXPECT_TRUE(listed.has("at point X=    8.7500  Y=    1.2500")) << listed.out;
    EXPECT_TRUE(listed.has("2 entities")) << listed.out;
}

TEST_F(QorScript, ExportToABlockLeavesTheLinesAndFillsTheBlock) {
    makeLines();
    Outcome exported = run("DLBLOCK\n双线\nDLBLOCK\n双线\nDLBLOCK\n\n", "made.qdb", "block.qdb");
    EXPECT_EQ(exported.status, 0) << exported.out;
    EXPECT_TRUE(exported.has("Block 双线: 2 double lines, 2 entities.")) << exported.out;
    EXPECT_TRUE(exported.has("Block 双线 already exists.")) << exported.out;

    // Read back here, without the object module: the block's curves are plain entities.
    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile(qorFromUtf8(path("block.qdb")).c_str()), Acad::eOk);
    acdbHostApplicationServices()->setWorkingDatabase(&db);
    AcDbBlockTable* table = nullptr;
    ASSERT_EQ(db.getBlockTable(table), Acad::eOk);
    AcDbBlockTableRecord* block = nullptr;
    ASSERT_EQ(table->getAt(L"双线", block, AcDb::kForRead), Acad::eOk);
    table->close();
    const std::vector<AcDbObjectId> ids = block->entityIds();
    block->close();
    ASSERT_EQ(ids.size(), 2u);
    for (AcDbObjectId id : ids) {
        AcDbPolyline* side = nullptr;
        ASSERT_EQ(acdbOpenObject(side, id, AcDb::kForRead), Acad::eOk);
        EXPECT_EQ(side->colorIndex(), 3);
        ACHAR* layer = side->layer();
        EXPECT_STREQ(layer, L"道路");
        delete[] layer;
        EXPECT_EQ(side->numVerts(), 3u);
        side->close();
    }
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(ms->entityIds().size(), 2u) << "the double lines stay";
    ms->close();
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

TEST_F(QorScript, ArcKeywordBendsASegmentAndBadAnswersAreAskedAgain) {
    Outcome made = run("DUBLINE\nwide\n-1\n2\nA\n0,0\n20,0\nArc\n1\n20,20\n\nDLDRAW\n");
    EXPECT_EQ(made.status, 0) << made.out;
    EXPECT_EQ(made.count("Invalid input"), 3) << made.out;
    // The second segment is a half circle of radius 10 about (20,10): its sides have radii
    // 9 and 11.
    EXPECT_TRUE(made.has("CircularArc pts=[(20.000,10.000,0.000)]")) << made.out;
    EXPECT_TRUE(made.has("num=[9.000 3.142]")) << made.out;
    EXPECT_TRUE(made.has("num=[11.000 3.142]")) << made.out;
}

TEST_F(QorScript, ScriptsFromStandardInput) {
    const std::string file = script("stdin.txt", "DUBLINE\n1\n0,0\n3,4\n\nDLLIST\n");
    Outcome r = runQor("run - --load " + quoted(QOR_TEST_COMMANDS) + " < " + quoted(file));
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(r.has("实体宽度:  1.000")) << r.out;
    EXPECT_TRUE(r.has("1 double lines")) << r.out;
}

TEST_F(QorScript, ACancelledPromptEndsOnlyItsCommand) {
    Outcome r =
        run("DUBLINE\n2\n0,0\n*cancel*\nDLLIST\nDUBLINE\n3\n0,0\n1,0\n\nDLLIST\nDUBLINE\n4\n", "",
            "cancelled.qdb");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(r.count("*Cancel*"), 2) << "at the prompt and at the end of the input\n" << r.out;
    EXPECT_TRUE(r.has("0 double lines")) << r.out;
    EXPECT_TRUE(r.has("1 double lines")) << r.out;
    EXPECT_EQ(r.count("\nDouble line "), 1) << r.out;
    Outcome listed = runQor("list " + quoted(path("cancelled.qdb")));
    EXPECT_TRUE(listed.has("实体宽度:  3.000")) << listed.out;
    EXPECT_TRUE(listed.has("1 entities")) << listed.out;
}

TEST_F(QorScript, BadScriptsAndArgumentsFailClearly) {
    Outcome unknown = run("DUBLINE\n1\n0,0\n1,1\n\n\n; comment\nNOSUCH\nDLLIST\n", "", "never.qdb");
    EXPECT_NE(unknown.status, 0);
    EXPECT_TRUE(unknown.has("qor: unknown command NOSUCH (line 8)")) << unknown.out;
    EXPECT_TRUE(unknown.has("\nDouble line ")) << "the commands before it ran\n" << unknown.out;
    EXPECT_FALSE(unknown.has("double lines")) << "nothing after it ran\n" << unknown.out;
    EXPECT_FALSE(std::filesystem::exists(path("never.qdb"))) << "a failed script saves nothing";

    // An answer left over after a command is no command either.
    Outcome leftover = run("DLMOVE\n1,1\n2,2\n");
    EXPECT_NE(leftover.status, 0);
    EXPECT_TRUE(leftover.has("qor: unknown command 2,2 (line 3)")) << leftover.out;

    Outcome missing =
        runQor("run --load " + quoted(QOR_TEST_COMMANDS) + " " + quoted(path("no.txt")));
    EXPECT_NE(missing.status, 0);
    EXPECT_TRUE(missing.has("qor: cannot open script")) << missing.out;
    EXPECT_TRUE(missing.has("no.txt")) << missing.out;

    Outcome badModule = runQor("run --load " + quoted(path("nomodule.so")) + " " +
                               quoted(script("s.txt", "DLLIST\n")));
    EXPECT_NE(badModule.status, 0);
    EXPECT_TRUE(badModule.has("nomodule.so")) << badModule.out;

    Outcome badDrawing = run("DLLIST\n", "absent.qdb");
    EXPECT_NE(badDrawing.status, 0);
    EXPECT_TRUE(badDrawing.has("absent.qdb")) << badDrawing.out;

    // Without the object module the test commands refuse to register.
    Outcome bare = runQor("--no-module run --load " + quoted(QOR_TEST_COMMANDS) + " " +
                          quoted(script("s.txt", "DLLIST\n")));
    EXPECT_NE(bare.status, 0);
    EXPECT_TRUE(bare.has("need the object module")) << bare.out;
    EXPECT_TRUE(bare.has("unknown command DLLIST (line 1)")) << bare.out;

    Outcome noScript = runQor("run");
    EXPECT_NE(noScript.status, 0);
}

} // namespace
