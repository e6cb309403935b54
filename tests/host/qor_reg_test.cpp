// qor reg as users run it, on a temporary registry store.
#include "support/tempregistry.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace {

struct RegRun {
    int status = -1;
    std::string out, err;
};

// Runs qor with the arguments on the given store; standard error goes to its own file.
RegRun qorReg(const TempRegistry& reg, const std::string& args) {
    RegRun r;
    const std::string errFile = (reg.dir().path() / "stderr.txt").string();
    const std::string cmd = "QOR_REGISTRY='" + reg.path() + "' QOR_MODULE='" + QOR_MODULE_PATH +
                            "' '" + QOR_BIN_DIR + "/qor' " + args + " 2>'" + errFile + "'";
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return r;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
        r.out.append(buf, n);
    const int status = pclose(p);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (FILE* e = fopen(errFile.c_str(), "rb")) {
        while ((n = fread(buf, 1, sizeof buf, e)) > 0)
            r.err.append(buf, n);
        fclose(e);
    }
    return r;
}

TEST(QorReg, SetThenGetRoundTripsThroughThePlainTextStore) {
    TempRegistry reg;
    RegRun set = qorReg(reg, "reg set 'Software\\QorSoft\\Qor7' qordir 'D:\\Qor7\\'");
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out, "");
    EXPECT_NE(reg.read().find("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n"
                              "\"qordir\"=\"D:\\\\Qor7\\\\\"\n"),
              std::string::npos)
        << reg.read();

    RegRun get = qorReg(reg, "reg get 'HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7' qordir");
    EXPECT_EQ(get.status, 0) << get.err;
    EXPECT_EQ(get.out, "D:\\Qor7\\\n");
    // Slashes and the short root name reach the same key; names ignore letter case.
    get = qorReg(reg, "reg get HKCU/software/qorsoft/qor7 QORDIR");
    EXPECT_EQ(get.out, "D:\\Qor7\\\n") << get.err;

    ASSERT_EQ(qorReg(reg, "reg set HKLM/Software/QorSoft 说明 规划").status, 0);
    get = qorReg(reg, "reg get 'HKEY_LOCAL_MACHINE\\Software\\QorSoft' 说明");
    EXPECT_EQ(get.out, "规划\n") << get.err;
    EXPECT_EQ(qorReg(reg, "reg get Software/QorSoft 说明").status, 1)
        << "the machine's key is not the user's";
}

TEST(QorReg, ListPrintsEveryValueAndEveryKeyBelow) {
    TempRegistry reg;
    reg.write("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n"
              "\"qordir\"=\"/opt/qor/\"\n"
              "\"Count\"=dword:0000000c\n"
              "@=\"默认\"\n"
              "[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7\\Layers]\n"
              "\"DX-DGX\"=\"等高线\"\n");
    RegRun list = qorReg(reg, "reg list Software/QorSoft");
    EXPECT_EQ(list.status, 0) << list.err;
    EXPECT_EQ(list.out, "HKEY_CURRENT_USER\\Software\\QorSoft\n"
                        "\n"
                        "HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7\n"
                        "    qordir    REG_SZ    /opt/qor/\n"
                        "    Count    REG_DWORD    12\n"
                        "    (Default)    REG_SZ    默认\n"
                        "\n"
                        "HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7\\Layers\n"
                        "    DX-DGX    REG_SZ    等高线\n");
    RegRun all = qorReg(reg, "reg list");
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(all.out.rfind("HKEY_CURRENT_USER\n", 0), 0u) << all.out;
    EXPECT_NE(all.out.find("DX-DGX"), std::string::npos);
    RegRun get = qorReg(reg, "reg get Software/QorSoft/Qor7 Count");
    EXPECT_EQ(get.out, "12\n");
}

TEST(QorReg, MissingKeysAndValuesFailWithAMessage) {
    TempRegistry reg;
    RegRun get = qorReg(reg, "reg get Software/QorSoft/Qor7 qordir");
    EXPECT_EQ(get.status, 1);
    EXPECT_EQ(get.out, "");
    EXPECT_NE(get.err.find("qor: key HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7: not found"),
              std::string::npos)
        << get.err;
    ASSERT_EQ(qorReg(reg, "reg set Software/QorSoft/Qor7 a b").status, 0);
    get = qorReg(reg, "reg get Software/QorSoft/Qor7 qordir");
    EXPECT_EQ(get.status, 1);
    EXPECT_NE(get.err.find("value qordir"), std::string::npos) << get.err;
    RegRun list = qorReg(reg, "reg list Software/Nothing");
    EXPECT_EQ(list.status, 1);
    RegRun bad = qorReg(reg, "reg set '\\Software' a b");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.err.find("malformed key path"), std::string::npos) << bad.err;
    EXPECT_NE(qorReg(reg, "reg").status, 0) << "a command is required";
    EXPECT_NE(qorReg(reg, "reg get onlykey").status, 0);
}

TEST(QorReg, ADamagedStoreIsReportedAndLeftAsItIs) {
    TempRegistry reg;
    const std::string damaged = "[HKEY_CURRENT_USER\\Software]\n\"a\"=\"C:\\path\"\n";
    reg.write(damaged);
    RegRun get = qorReg(reg, "reg get Software a");
    EXPECT_EQ(get.status, 1);
    EXPECT_NE(get.err.find("registry: " + reg.path() + ": line 2"), std::string::npos) << get.err;
    RegRun set = qorReg(reg, "reg set Software a b");
    EXPECT_EQ(set.status, 1);
    EXPECT_NE(set.err.find("is damaged; fix or remove it first"), std::string::npos) << set.err;
    EXPECT_EQ(reg.read(), damaged);
}

} // namespace
