// The qor program as users run it: exit codes, messages and listings.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "support/qorrun.h"
#include "support/sqlfile.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

TEST(QorCli, ClassesListsTheModuleClasses) {
    Outcome r = runQor("classes");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_NE(r.out.find("classes"), std::string::npos);
    EXPECT_EQ(r.out.find("AcDbPolyline"), std::string::npos)
        << "platform classes are not the module's";
}

TEST(QorCli, ListPrintsEveryEntity) {
    TempDir dir;
    const std::wstring file = dir.file("site.qdb");
    {
        AcDbDatabase db;
        AcDbBlockTableRecord* ms = nullptr;
        ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(3, 4, 0));
        ASSERT_EQ(ms->appendAcDbEntity(line), Acad::eOk);
        line->close();
        auto* text = new AcDbText(AcGePoint3d(0, 0, 0), L"规划道路", AcDbObjectId(), 2.5);
        ASSERT_EQ(ms->appendAcDbEntity(text), Acad::eOk);
        text->close();
        ms->close();
        ASSERT_EQ(db.saveAs(file.c_str()), Acad::eOk);
    }
    Outcome r = runQor("list '" + qorToUtf8(file) + "'");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_NE(r.out.find("AcDbLine"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("规划道路"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("2 entities"), std::string::npos) << r.out;
    Outcome bare = runQor("--no-module list '" + qorToUtf8(file) + "'");
    EXPECT_EQ(bare.status, 0) << bare.out;
}

TEST(QorCli, BadFilesGiveAClearErrorAndANonZeroExit) {
    TempDir dir;
    Outcome missing = runQor("list '" + dir.path().string() + "/missing.qdb'");
    EXPECT_NE(missing.status, 0);
    EXPECT_NE(missing.out.find("qor: "), std::string::npos) << missing.out;
    EXPECT_NE(missing.out.find("missing.qdb"), std::string::npos) << missing.out;

    const std::string junk = dir.path().string() + "/junk.qdb";
    std::ofstream(junk) << std::string(300, 'x');
    Outcome garbage = runQor("list '" + junk + "'");
    EXPECT_NE(garbage.status, 0);
    EXPECT_NE(garbage.out.find("junk.qdb"), std::string::npos) << garbage.out;

    // A drawing whose one object stream is garbled: the reader refuses it and says which.
    const std::wstring site = dir.file("garbled.qdb");
    {
        AcDbDatabase db;
        AcDbBlockTableRecord* ms = nullptr;
        ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(3, 4, 0));
        ASSERT_EQ(ms->appendAcDbEntity(line), Acad::eOk);
        line->close();
        ms->close();
        ASSERT_EQ(db.saveAs(site.c_str()), Acad::eOk);
    }
    execOn(site, "UPDATE objects SET data = substr(data, 1, 7) WHERE class = (SELECT id FROM "
                 "classes WHERE name = 'AcDbLine')");
    Outcome garbled = runQor("list '" + qorToUtf8(site) + "'");
    EXPECT_NE(garbled.status, 0);
    EXPECT_NE(garbled.out.find("qor: "), std::string::npos) << garbled.out;
    EXPECT_NE(garbled.out.find("AcDbLine"), std::string::npos) << garbled.out;

    Outcome noArgs = runQor("");
    EXPECT_NE(noArgs.status, 0);
    Outcome badModule = runQor("--module /nonexistent/libx.so classes");
    EXPECT_NE(badModule.status, 0);
    EXPECT_NE(badModule.out.find("libx.so"), std::string::npos) << badModule.out;
}

} // namespace
