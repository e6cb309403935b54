// acedFindFile: the drawing's folder, then the host's support folders, then the current
// folder; names with either separator; results that must fit their buffer.
#include "acedfile.h"
#include "dbmain.h"

#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

void touch(const fs::path& p) {
    fs::create_directories(p.parent_path());
    std::ofstream(p) << "x";
}

std::wstring backslashed(std::wstring s) {
    for (wchar_t& c : s)
        if (c == L'/') c = L'\\';
    return s;
}

// The result of a search, or "[not found]".
std::wstring find(const std::wstring& name) {
    ACHAR result[MAX_PATH];
    if (acedFindFile(name.c_str(), result) != RTNORM) {
        EXPECT_EQ(result[0], L'\0') << "a failed search leaves an empty result";
        return L"[not found]";
    }
    return result;
}

class FindFile : public ::testing::Test {
protected:
    void SetUp() override {
        mOldCwd = fs::current_path();
        fs::create_directories(dir.path() / "cwd");
        fs::current_path(dir.path() / "cwd");
    }
    void TearDown() override {
        fs::current_path(mOldCwd);
        qorSetSupportFolders({});
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    }
    std::wstring at(const std::string& rel) const { return (dir.path() / rel).wstring(); }

    TempDir dir;

private:
    fs::path mOldCwd;
};

TEST_F(FindFile, SearchesTheDrawingFolderThenSupportFoldersThenTheCurrentFolder) {
    for (const char* where : {"drawing", "support1", "support2", "cwd"})
        touch(dir.path() / where / "LandView.dat");
    touch(dir.path() / "support2" / "only2.dat");
    touch(dir.path() / "cwd" / "onlycwd.dat");

    AcDbDatabase db;
    ASSERT_EQ(db.saveAs(at("drawing/site.qdb").c_str()), Acad::eOk);
    acdbHostApplicationServices()->setWorkingDatabase(&db);
    qorSetSupportFolders({at("support1"), backslashed(at("support2"))});

    EXPECT_EQ(find(L"LandView.dat"), at("drawing/LandView.dat"));
    EXPECT_EQ(find(L"only2.dat"), at("support2/only2.dat"));
    EXPECT_EQ(find(L"onlycwd.dat"), at("cwd/onlycwd.dat")) << "returned as a full path";

    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    EXPECT_EQ(find(L"LandView.dat"), at("support1/LandView.dat"));
    qorSetSupportFolders({});
    EXPECT_EQ(find(L"LandView.dat"), at("cwd/LandView.dat"));
    EXPECT_EQ(find(L"nowhere.dat"), L"[not found]");
}

TEST_F(FindFile, NamesMayUseBackslashesAndMayBeAbsolute) {
    touch(dir.path() / "support" / "data" / "Code2011" / "xgbuild.dat");
    qorSetSupportFolders({at("support")});
    EXPECT_EQ(find(L"data\\Code2011\\xgbuild.dat"), at("support/data/Code2011/xgbuild.dat"));
    EXPECT_EQ(find(backslashed(at("support/data/Code2011/xgbuild.dat"))),
              at("support/data/Code2011/xgbuild.dat"));
    EXPECT_EQ(find(backslashed(at("elsewhere/xgbuild.dat"))), L"[not found]")
        << "an absolute name is not looked for elsewhere";
    EXPECT_EQ(find(L"data"), L"[not found]") << "folders do not count";
}

TEST_F(FindFile, BadArgumentsAndSmallBuffersFail) {
    touch(dir.path() / "cwd" / "a.dat");
    ACHAR result[MAX_PATH];
    EXPECT_EQ(acedFindFile(nullptr, result), RTERROR);
    EXPECT_EQ(acedFindFile(L"", result), RTERROR);
    EXPECT_EQ(acedFindFile(L"a.dat", nullptr), RTERROR);

    const std::wstring full = at("cwd/a.dat");
    std::wstring buf(full.size() + 1, L'x');
    EXPECT_EQ(acedFindFile(L"a.dat", buf.data(), full.size()), RTERROR) << "no room for the NUL";
    EXPECT_EQ(buf[0], L'\0');
    EXPECT_EQ(buf[1], L'x') << "nothing is written past the first character";
    EXPECT_EQ(acedFindFile(L"a.dat", buf.data(), full.size() + 1), RTNORM);
    EXPECT_EQ(std::wstring(buf.c_str()), full);
}

} // namespace
