// The settings of the module on a temporary registry and temporary data files: the code
// standard and its folders, the installation folder, the sunlight ratio and its first-call
// rule, the display switches, xgbuild.dat and LandView.dat, and the file message.
#include "module/datafiles.h"
#include "module/displayflags.h"
#include "module/settings.h"

#include "acedfile.h"
#include "cmdline.h"

#include "support/tempregistry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Little-endian archive bytes, built by hand.
struct Bytes {
    std::vector<char> b;
    template <class T> Bytes& le(T v) {
        char raw[sizeof(T)];
        std::memcpy(raw, &v, sizeof v);
        b.insert(b.end(), raw, raw + sizeof raw);
        return *this;
    }
    Bytes cut(size_t drop) const {
        Bytes c = *this;
        c.b.resize(b.size() - drop);
        return c;
    }
};

Bytes xgbuild(int version, int sketchUp, int budWin, int rizhao) {
    Bytes b;
    b.le<int>(version);
    for (int i = 0; i < 9; ++i)
        b.le<int>(100 + i);
    for (int i = 0; i < 7; ++i)
        b.le<double>(0.5 * i);
    return b.le<int>(sketchUp).le<int>(budWin).le<int>(rizhao);
}

Bytes landView(int version, const std::vector<int>& flags, double number = 7.5) {
    Bytes b;
    b.le<int>(version);
    for (int i = 0; i < 10; ++i)
        b.le<int>(flags[i]);
    b.le<double>(number).le<int>(flags[10]);
    if (version >= 3) b.le<int>(flags[11]).le<int>(flags[12]);
    return b;
}

std::string quote(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '\\' || c == '"') out += '\\';
        out += c;
    }
    return out + "\"";
}

class Settings : public ::testing::Test {
protected:
    void SetUp() override { qorResetSettingsForTests(); }
    void TearDown() override {
        qorResetSettingsForTests();
        qorSetSupportFolders({});
    }

    // The suite's key with these values, written as an installer would.
    void suite(const std::map<std::string, std::string>& values) {
        std::string text = "[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n";
        for (const auto& [name, value] : values)
            text += quote(name) + "=" + quote(value) + "\n";
        reg.write(text);
    }
    // An installation folder with its "qordir" value and the given code type.
    void install(std::optional<std::string> codeType = std::nullopt) {
        std::map<std::string, std::string> values{{"qordir", base().string()}};
        if (codeType) values["CodeType"] = *codeType;
        suite(values);
    }
    fs::path base() const { return reg.dir().path() / "qor"; }
    // The base as the module gives it back: the registry text and a "\".
    std::wstring baseDir() const { return base().wstring() + L"\\"; }

    void writeData(const std::string& folder, const std::string& name, const Bytes& bytes) {
        const fs::path dir = base() / "data" / folder;
        fs::create_directories(dir);
        std::ofstream(dir / name, std::ios::binary)
            .write(bytes.b.data(), static_cast<std::streamsize>(bytes.b.size()));
    }

    TempRegistry reg;
};

// ---------------------------------------------------------------- registry

TEST_F(Settings, RegistryValuesAreReadAndWrittenOnTheSuiteKey) {
    CString out = L"untouched";
    EXPECT_EQ(M_GetQorReg(L"qordir", out), 0);
    EXPECT_EQ(out, L"untouched");
    EXPECT_EQ(M_SetQorReg(L"sundist", L"1.3"), 0) << "the suite key must exist";

    EXPECT_EQ(M_SetQorReg(L"Layers", L"DX-DGX", L"等高线"), 1) << "the sub-key form creates it";
    EXPECT_EQ(M_GetQorReg(L"Layers", L"DX-DGX", out), 1);
    EXPECT_EQ(out, L"等高线");
    EXPECT_EQ(M_SetQorReg(L"sundist", L"1.3"), 1);
    EXPECT_EQ(M_GetQorReg(L"sundist", out), 1);
    EXPECT_EQ(out, L"1.3");
    EXPECT_EQ(M_GetRegStr(HKEY_CURRENT_USER, L"Software\\QorSoft\\Qor7\\Layers", L"DX-DGX", out),
              1);
    EXPECT_EQ(out, L"等高线");
    EXPECT_NE(reg.read().find("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7\\Layers]"),
              std::string::npos);
}

TEST_F(Settings, OnlyTextValuesThatFitTheBufferAreRead) {
    reg.write("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n"
              "\"Number\"=dword:00000004\n"
              "\"Expand\"=expand:\"%QOR%\"\n"
              "\"NoNul\"=hex(1):41,00,00,00,42,00,00,00\n"
              "\"Fits\"=" +
              quote(std::string(259, 'a')) + "\n\"TooLong\"=" + quote(std::string(260, 'b')) +
              "\n");
    CString out = L"untouched";
    EXPECT_EQ(M_GetQorReg(L"Number", out), 0);
    EXPECT_EQ(M_GetQorReg(L"TooLong", out), 0) << "260 characters and a NUL do not fit";
    EXPECT_EQ(out, L"untouched");
    EXPECT_EQ(M_GetQorReg(L"Expand", out), 1);
    EXPECT_EQ(out, L"%QOR%");
    EXPECT_EQ(M_GetQorReg(L"NoNul", out), 1);
    EXPECT_EQ(out, L"AB") << "text without a final NUL ends where the data ends";
    EXPECT_EQ(M_GetQorReg(L"Fits", out), 1);
    EXPECT_EQ(out.GetLength(), 259);
}

// ---------------------------------------------------------------- code standard and folders

TEST_F(Settings, CodeTypesChooseTheDataAndLibraryFolders) {
    struct Case {
        std::optional<std::string> codeType, useLc;
        int type;
        const wchar_t* folder;
    };
    const Case cases[] = {
        {"4", std::nullopt, 4, L"Changchun\\"},
        {"4", "0", 5, L"UserCode\\"},
        {"4", "1", 4, L"Changchun\\"},
        {"7", std::nullopt, 7, L"Code2011\\"},
        {std::nullopt, std::nullopt, 0, L"Code2011\\"},
        {"1", std::nullopt, 1, L"Code1990\\"},
        {"2", "0", 2, L"Village\\"},
        {" 3rd", std::nullopt, 3, L"Vlg2014\\"},
        {"5", std::nullopt, 5, L"UserCode\\"},
        {"0", std::nullopt, 0, L"Code2011\\"},
    };
    for (const Case& c : cases) {
        std::map<std::string, std::string> values{{"qordir", base().string()}};
        if (c.codeType) values["CodeType"] = *c.codeType;
        if (c.useLc) values["UseLC"] = *c.useLc;
        suite(values);
        qorResetSettingsForTests();
        const std::string what =
            "CodeType " + c.codeType.value_or("missing") + ", UseLC " + c.useLc.value_or("missing");
        EXPECT_EQ(M_GetLandCodeType(), c.type) << what;
        CString dir;
        ASSERT_EQ(M_GetQorDataDir(dir), 1) << what;
        EXPECT_EQ(dir, baseDir() + L"data\\" + c.folder) << what;
        ASSERT_EQ(M_GetQorLibDir(dir), 1) << what;
        EXPECT_EQ(dir, baseDir() + L"lib\\" + c.folder) << what;
        EXPECT_EQ(M_IsChangChunCode(), c.type == 4 ? 1 : 0) << what;
    }
}

TEST_F(Settings, TheChangchunFlagIsReadOnceWhileTheCodeTypeIsReadEveryTime) {
    install("4");
    EXPECT_EQ(M_IsChangChunCode(), 1);
    install("7");
    EXPECT_EQ(M_IsChangChunCode(), 1) << "kept from the first call";
    EXPECT_EQ(M_GetLandCodeType(), 7);
    CString dir;
    ASSERT_EQ(M_GetQorDataDir(dir), 1);
    EXPECT_EQ(dir, baseDir() + L"data\\Code2011\\");
    qorResetSettingsForTests();
    EXPECT_EQ(M_IsChangChunCode(), 0);
}

TEST_F(Settings, TheInstallationFolderEndsWithABackslashAndIsKeptOnceKnown) {
    CString dir = L"untouched";
    for (auto* get :
         {M_GetQorStrFromFile, M_GetQorSysDir, M_GetQorImagesDir, M_GetQorDataDir, M_GetQorLibDir})
        EXPECT_EQ(get(dir), 0);
    EXPECT_EQ(dir, L"untouched") << "nothing is set while qordir is missing";

    suite({{"qordir", "D:\\Qor7"}});
    ASSERT_EQ(M_GetQorStrFromFile(dir), 1) << "a failed call caches nothing";
    EXPECT_EQ(dir, L"D:\\Qor7\\");
    EXPECT_EQ(M_GetQorSysDir(dir), 1);
    EXPECT_EQ(dir, L"D:\\Qor7\\sys64\\cad2012\\");
    EXPECT_EQ(M_GetQorImagesDir(dir), 1);
    EXPECT_EQ(dir, L"D:\\Qor7\\image\\");

    suite({{"qordir", "E:\\Other\\"}});
    EXPECT_EQ(M_GetQorStrFromFile(dir), 1);
    EXPECT_EQ(dir, L"D:\\Qor7\\") << "kept for the life of the process";

    qorResetSettingsForTests();
    EXPECT_EQ(M_GetQorStrFromFile(dir), 1);
    EXPECT_EQ(dir, L"E:\\Other\\") << "a value that ends with one gets no second";
    qorResetSettingsForTests();
    suite({{"qordir", "/opt/qor/"}});
    EXPECT_EQ(M_GetQorStrFromFile(dir), 1);
    EXPECT_EQ(dir, L"/opt/qor/");
}

TEST_F(Settings, TheAlternativeLayoutUsesTheBareInstallationFolder) {
    install();
    const fs::path support = reg.dir().path() / "support";
    fs::create_directories(support);
    std::ofstream(support / "QorFlat.dat") << "x";
    qorSetSupportFolders({support.wstring()});
    CString dir;
    for (auto* get : {M_GetQorSysDir, M_GetQorDataDir, M_GetQorLibDir}) {
        ASSERT_EQ(get(dir), 1);
        EXPECT_EQ(dir, baseDir());
    }
    ASSERT_EQ(M_GetQorImagesDir(dir), 1);
    EXPECT_EQ(dir, baseDir() + L"image\\") << "the image folder has no such check";
    qorSetSupportFolders({});
    ASSERT_EQ(M_GetQorSysDir(dir), 1);
    EXPECT_EQ(dir, baseDir() + L"sys64\\cad2012\\");
}

// ---------------------------------------------------------------- sunlight

TEST_F(Settings, SunlightLoadsOnAFirstCallThatLeavesTheValueAlone) {
    struct Case {
        std::optional<std::string> stored;
        double expected;
    };
    const Case cases[] = {{"0", 1.2},     {"-3", 1.2},    {std::nullopt, 1.2},
                          {"1.35", 1.35}, {" 2.5m", 2.5}, {"abc", 1.2}};
    for (const Case& c : cases) {
        std::map<std::string, std::string> values;
        if (c.stored) values["sundist"] = *c.stored;
        suite(values);
        qorResetSettingsForTests();
        const std::string what = "sundist " + c.stored.value_or("missing");
        double v = 99.0;
        EXPECT_EQ(M_GetSundist(0, v), 1);
        EXPECT_EQ(v, 99.0) << what << ": the loading call writes nothing";
        EXPECT_EQ(M_GetSundist(0, v), 1);
        EXPECT_EQ(v, c.expected) << what;
    }
}

TEST_F(Settings, ASetSunlightRatioIsReturnedAndZeroMeansLoadAgain) {
    suite({{"sundist", "1.5"}});
    double v = 1.7;
    EXPECT_EQ(M_GetSundist(1, v), 1);
    v = 0;
    M_GetSundist(0, v);
    EXPECT_EQ(v, 1.7) << "a set ratio needs no loading call";
    v = 0.0;
    M_GetSundist(1, v);
    v = 5;
    M_GetSundist(2, v);
    EXPECT_EQ(v, 5) << "storing 0.0 makes the next get a loading call";
    M_GetSundist(2, v);
    EXPECT_EQ(v, 1.5);
}

// ---------------------------------------------------------------- display switches

TEST_F(Settings, DisplaySwitchesStartAtTheirDefaultsAndStoreZeroOrOne) {
    using Flag = int (*)(int, int&);
    const std::pair<Flag, int> flags[] = {
        {M_GetViewGreenLineFlg, 0}, {M_GetViewBudWinFlg, 1}, {M_GetViewBudLineWinFlg, 0},
        {M_GetViewVportFlg, 0},     {M_GetHighlightFlg, 0},  {M_GetSaveOldFlg, 0},
        {M_GetViewPipeCodeFlg, 0},
    };
    for (size_t i = 0; i < std::size(flags); ++i) {
        auto [get, initial] = flags[i];
        int flag = -1;
        EXPECT_EQ(get(0, flag), 1);
        EXPECT_EQ(flag, initial) << "switch " << i;
        flag = 7;
        EXPECT_EQ(get(1, flag), 1);
        flag = -1;
        get(2, flag);
        EXPECT_EQ(flag, 1) << "switch " << i << ": any non-zero is stored as 1";
        flag = 0;
        get(1, flag);
        flag = -1;
        get(0, flag);
        EXPECT_EQ(flag, 0) << "switch " << i;
    }
    // Each switch is its own.
    int on = 1, probe = -1;
    M_GetHighlightFlg(1, on);
    M_GetViewVportFlg(0, probe);
    EXPECT_EQ(probe, 0);
}

TEST_F(Settings, LoadOrSaveSwitchesReturnZeroOnSaveAndTheValueOnLoad) {
    using Switch = int (*)(int, int);
    const std::pair<Switch, int> switches[] = {
        {M_LoadOrSaveQorVport, 1}, {M_LoadOrSaveBlockView, 0}, {M_LoadOrSavePlanView, 0}};
    for (size_t i = 0; i < std::size(switches); ++i) {
        auto [fn, initial] = switches[i];
        EXPECT_EQ(fn(0, 42), initial) << "switch " << i << ": the value is ignored on load";
        EXPECT_EQ(fn(1, 5), 0) << "switch " << i;
        EXPECT_EQ(fn(0, 0), 5) << "switch " << i << ": stored as given";
    }
    qorResetSettingsForTests();
    EXPECT_EQ(M_LoadOrSaveQorVport(0, 0), 1);
    int flag = -1;
    M_GetViewBudWinFlg(0, flag);
    EXPECT_EQ(flag, 1);
}

// ---------------------------------------------------------------- xgbuild.dat

TEST_F(Settings, XgbuildGivesItsThreeFlagsAsOneOrZero) {
    install();
    writeData("Code2011", "xgbuild.dat", xgbuild(202, 0, 5, 0));
    EXPECT_EQ(M_GetSketchUpFlg(), 0);
    EXPECT_EQ(M_GetViewBudWinFlg(), 1);
    EXPECT_EQ(M_GetViewRizhaoFlg(), 0);
    int inMemory = -1;
    M_GetViewBudWinFlg(0, inMemory);
    EXPECT_EQ(inMemory, 1) << "the in-memory switch is another one";

    // Read once per process.
    writeData("Code2011", "xgbuild.dat", xgbuild(202, 1, 0, 1));
    EXPECT_EQ(M_GetSketchUpFlg(), 0);
    qorResetSettingsForTests();
    EXPECT_EQ(M_GetSketchUpFlg(), 1);
    EXPECT_EQ(M_GetViewBudWinFlg(), 0);
}

TEST_F(Settings, XgbuildThatCannotBeReadGivesTheDefaults) {
    const Bytes full = xgbuild(202, 0, 1, 0);
    struct Case {
        const char* what;
        std::optional<Bytes> file;
    };
    const Case cases[] = {
        {"missing", std::nullopt},
        {"another version", xgbuild(201, 0, 1, 0)},
        {"cut in the last number", full.cut(2)},
        {"cut before the flags", full.cut(12)},
        {"cut in the doubles", full.cut(40)},
        {"cut in the version", Bytes().le<short>(202)},
        {"empty", Bytes()},
    };
    for (const Case& c : cases) {
        fs::remove_all(base());
        install();
        if (c.file) writeData("Code2011", "xgbuild.dat", *c.file);
        qorResetSettingsForTests();
        EXPECT_EQ(M_GetSketchUpFlg(), 1) << c.what;
        EXPECT_EQ(M_GetViewBudWinFlg(), 0) << c.what;
        EXPECT_EQ(M_GetViewRizhaoFlg(), 1) << c.what;
    }
    // A failed read counts as the one read of the process.
    writeData("Code2011", "xgbuild.dat", full);
    EXPECT_EQ(M_GetSketchUpFlg(), 1);
}

TEST_F(Settings, XgbuildIsReadFromTheCodeStandardsDataFolder) {
    install("3");
    writeData("Code2011", "xgbuild.dat", xgbuild(202, 0, 0, 0));
    writeData("Vlg2014", "xgbuild.dat", xgbuild(202, 0, 1, 1));
    EXPECT_EQ(M_GetViewBudWinFlg(), 1);
    EXPECT_EQ(M_GetViewRizhaoFlg(), 1);
}

// ---------------------------------------------------------------- LandView.dat

const std::vector<int> kDistinct = {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
const std::vector<BYTE> kLandDefaults = {1, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0};

std::vector<BYTE> bytesOf(const CByteArray& a) {
    return std::vector<BYTE>(a.begin(), a.end());
}

TEST_F(Settings, LandViewVersionThreeGivesAllThirteenFlags) {
    install();
    writeData("Code2011", "LandView.dat", landView(3, kDistinct));
    CByteArray flags;
    double value = -1;
    ASSERT_EQ(M_GetLandFlgs(flags, value), 1);
    EXPECT_EQ(bytesOf(flags), std::vector<BYTE>(kDistinct.begin(), kDistinct.end()));
    EXPECT_EQ(value, 0.0) << "the file's number is not passed on";
    int a = -1, b = -1, r = -1;
    EXPECT_EQ(M_GetLandMinusFlg(a, b), 1);
    EXPECT_EQ(a, 11);
    EXPECT_EQ(b, 12);
    EXPECT_EQ(M_GetLandRangeFlg(r), 1);
    EXPECT_EQ(r, 13);

    // Cached once read.
    writeData("Code2011", "LandView.dat", landView(3, std::vector<int>(13, 0)));
    M_GetLandRangeFlg(r);
    EXPECT_EQ(r, 13);
}

TEST_F(Settings, LandViewVersionTwoHasNoFlagsElevenAndTwelve) {
    install();
    writeData("Code2011", "LandView.dat", landView(2, kDistinct));
    CByteArray flags;
    double value = -1;
    ASSERT_EQ(M_GetLandFlgs(flags, value), 1);
    ASSERT_EQ(flags.GetSize(), 13);
    EXPECT_EQ(flags[10], 11);
    EXPECT_EQ(flags[11], 0);
    EXPECT_EQ(flags[12], 0);
    int a = -1, b = -1, r = -1;
    M_GetLandMinusFlg(a, b);
    M_GetLandRangeFlg(r);
    EXPECT_EQ(a, 11);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(r, 0);
}

TEST_F(Settings, LandViewKeepsTheLowByteOfEachFlag) {
    install();
    std::vector<int> flags(13, 0);
    flags[0] = 0x1FF;
    flags[12] = -1;
    writeData("Code2011", "LandView.dat", landView(3, flags));
    CByteArray got;
    double value = 0;
    ASSERT_EQ(M_GetLandFlgs(got, value), 1);
    EXPECT_EQ(got[0], 0xFF);
    EXPECT_EQ(got[12], 0xFF);
}

TEST_F(Settings, LandViewThatCannotBeReadFailsWithTheDefaultsAndIsTriedAgain) {
    const Bytes v3 = landView(3, kDistinct), v2 = landView(2, kDistinct);
    struct Case {
        const char* what;
        std::optional<Bytes> file;
    };
    const Case cases[] = {
        {"missing", std::nullopt},
        {"version 4", landView(4, kDistinct)},
        {"version 1", landView(1, kDistinct)},
        {"version 3 without flag 12", v3.cut(4)},
        {"version 2 cut in its number", v2.cut(8)},
        {"only a version", Bytes().le<int>(3)},
        {"empty", Bytes()},
    };
    for (const Case& c : cases) {
        fs::remove_all(base());
        install();
        if (c.file) writeData("Code2011", "LandView.dat", *c.file);
        qorResetSettingsForTests();
        CByteArray flags;
        flags.Add(9);
        double value = -1;
        EXPECT_EQ(M_GetLandFlgs(flags, value), 0) << c.what;
        EXPECT_EQ(bytesOf(flags), kLandDefaults) << c.what;
        EXPECT_EQ(value, 0.0) << c.what;
        int a = -1, b = -1, r = -1;
        EXPECT_EQ(M_GetLandMinusFlg(a, b), 0) << c.what;
        EXPECT_EQ(M_GetLandRangeFlg(r), 0) << c.what;
        EXPECT_EQ(a, 0) << c.what;
        EXPECT_EQ(b, 0) << c.what;
        EXPECT_EQ(r, 0) << c.what;
    }
    // Nothing was cached, so a good file is read on the next call.
    writeData("Code2011", "LandView.dat", v3);
    int r = -1;
    EXPECT_EQ(M_GetLandRangeFlg(r), 1);
    EXPECT_EQ(r, 13);
}

// ---------------------------------------------------------------- file message

TEST_F(Settings, TheFileMessageNamesTheFolder) {
    AcutCapture capture;
    EXPECT_EQ(M_FileRightMsg(L"D:\\Qor7\\data\\layerParm.dat"), 1);
    EXPECT_EQ(capture.text(), L"\n文件写入失败!请检查文件夹\"D:\\Qor7\\data\"写权限!");
    capture.clear();
    M_FileRightMsg(L"layerParm.dat");
    EXPECT_EQ(capture.text(), L"\n文件写入失败!请检查文件夹\"\"写权限!");
    capture.clear();
    M_FileRightMsg(L"/home/u/qor\\data/x.dat");
    EXPECT_EQ(capture.text(), L"\n文件写入失败!请检查文件夹\"/home/u/qor\\data\"写权限!");
}

} // namespace
