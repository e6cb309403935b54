// The file-backed registry: the Windows calls and codes, the text store a person can edit,
// damaged stores, and several processes writing at once.
#include "winreg.h"

#include "support/tempregistry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

const wchar_t* const kSuite = L"Software\\QorSoft\\Qor7";

// A key handle closed at the end of the scope.
struct Key {
    HKEY h = nullptr;
    ~Key() {
        if (h) RegCloseKey(h);
    }
};

LONG setText(HKEY key, const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ) {
    return RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// The value as text, or the code of the failure in brackets.
std::wstring getText(HKEY root, const wchar_t* sub, const wchar_t* name, DWORD* typeOut = nullptr) {
    Key key;
    LONG r = RegOpenKeyExW(root, sub, 0, KEY_READ, &key.h);
    if (r != ERROR_SUCCESS) return L"[" + std::to_wstring(r) + L"]";
    wchar_t buf[260] = {};
    DWORD size = sizeof buf - sizeof(wchar_t), type = 0;
    r = RegQueryValueExW(key.h, name, nullptr, &type, reinterpret_cast<LPBYTE>(buf), &size);
    if (r != ERROR_SUCCESS) return L"[" + std::to_wstring(r) + L"]";
    if (typeOut) *typeOut = type;
    return std::wstring(buf, size / sizeof(wchar_t)).c_str();
}

class Registry : public ::testing::Test {
protected:
    TempRegistry reg;
};

TEST_F(Registry, AMissingStoreHasNoKeys) {
    Key key;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kSuite, 0, KEY_READ, &key.h), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key.h, nullptr);
    EXPECT_EQ(getText(HKEY_CURRENT_USER, nullptr, L"qordir"), L"[2]");
    EXPECT_FALSE(std::filesystem::exists(reg.path())) << "reading never creates the store";
    EXPECT_EQ(qorRegistryPath(), qorFromUtf8(reg.path()));
}

TEST_F(Registry, CreatedKeysAndTextValuesReadBackAndTheStoreIsPlainText) {
    Key key;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, L"qordir", L"D:\\Qor7\\"), ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, L"CodeType", L"4"), ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, L"说明", L"规划 \"总图\""), ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, nullptr, L"default"), ERROR_SUCCESS);

    DWORD type = 0;
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"qordir", &type), L"D:\\Qor7\\");
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"说明"), L"规划 \"总图\"");
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L""), L"default");
    // Parents come with the key.
    EXPECT_EQ(getText(HKEY_CURRENT_USER, L"Software\\QorSoft", L"x"), L"[2]");

    const std::string text = reg.read();
    EXPECT_NE(text.find("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\"qordir\"=\"D:\\\\Qor7\\\\\"\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\"说明\"=\"规划 \\\"总图\\\"\"\n"), std::string::npos) << text;
    EXPECT_NE(text.find("@=\"default\"\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("[HKEY_CURRENT_USER\\Software]"), std::string::npos)
        << "a key implied by its sub-keys needs no line";
}

TEST_F(Registry, AHandEditedStoreIsReadWithEveryDataForm) {
    reg.write("; edited by hand\r\n"
              "[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\r\n"
              "  \"qordir\" = \"/opt/qor\"\r\n"
              "\"Path\"=expand:\"%HOME%\\\\lib\"\n"
              "\"Count\"=dword:a\n"
              "\"Big\"=qword:0000000100000002\n"
              "\"Blob\"=hex:01, 02,ff\n"
              "\"Odd\"=hex(1):41,00,00\n"
              "\"Once\"=\"first\"\n"
              "\"once\"=\"second\"\n"
              "\n"
              "[hkey_current_user\\software\\qorsoft\\QOR7\\Layers]\n");
    DWORD type = 0;
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"qordir"), L"/opt/qor");
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"Path", &type), L"%HOME%\\lib");
    EXPECT_EQ(type, static_cast<DWORD>(REG_EXPAND_SZ));
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"ONCE"), L"second")
        << "names compare without case; the last line wins";

    Key key;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\qorsoft\\qor7\\", 0, KEY_READ, &key.h),
              ERROR_SUCCESS);
    BYTE buf[16];
    DWORD size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Count", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    ASSERT_EQ(size, 4u);
    DWORD count = 0;
    std::memcpy(&count, buf, 4);
    EXPECT_EQ(count, 10u);
    size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Big", nullptr, &type, buf, &size), ERROR_SUCCESS);
    unsigned long long big = 0;
    std::memcpy(&big, buf, 8);
    EXPECT_EQ(type, static_cast<DWORD>(REG_QWORD));
    EXPECT_EQ(big, 0x100000002ull);
    size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Blob", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(std::vector<BYTE>(buf, buf + size), (std::vector<BYTE>{1, 2, 0xFF}));
    size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Odd", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, 3u) << "text data that is not whole characters is kept byte for byte";

    Key layers;
    EXPECT_EQ(RegOpenKeyExW(key.h, L"layers", 0, KEY_READ, &layers.h), ERROR_SUCCESS);
}

TEST_F(Registry, DataThatIsNotPlainTextSurvivesAWrite) {
    Key key;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_SUCCESS);
    const std::wstring noNul = L"abc";
    ASSERT_EQ(RegSetValueExW(key.h, L"NoNul", 0, REG_SZ,
                             reinterpret_cast<const BYTE*>(noNul.data()), 3 * sizeof(wchar_t)),
              ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, L"Lines", L"a\nb"), ERROR_SUCCESS);
    const BYTE custom[] = {9, 8, 7};
    ASSERT_EQ(RegSetValueExW(key.h, L"Custom", 0, 0x42, custom, 3), ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExW(key.h, L"Empty", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    // Another write reads all of them from the file and writes them out again.
    ASSERT_EQ(setText(key.h, L"later", L"x"), ERROR_SUCCESS);

    BYTE buf[64];
    DWORD size = sizeof buf, type = 0;
    ASSERT_EQ(RegQueryValueExW(key.h, L"NoNul", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 3 * sizeof(wchar_t));
    EXPECT_EQ(std::memcmp(buf, noNul.data(), size), 0);
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"Lines"), L"a\nb");
    size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Custom", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, 0x42u);
    EXPECT_EQ(std::vector<BYTE>(buf, buf + size), (std::vector<BYTE>{9, 8, 7}));
    size = sizeof buf;
    ASSERT_EQ(RegQueryValueExW(key.h, L"Empty", nullptr, &type, buf, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 0u);
}

TEST_F(Registry, QueriesFollowTheSizeConventions) {
    Key key;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_SUCCESS);
    ASSERT_EQ(setText(key.h, L"sundist", L"1.35"), ERROR_SUCCESS);
    const DWORD full = 5 * sizeof(wchar_t);

    DWORD size = 0, type = 0;
    EXPECT_EQ(RegQueryValueExW(key.h, L"sundist", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, full);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(RegQueryValueExW(key.h, L"sundist", nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS)
        << "asking whether a value exists";

    BYTE small[8];
    size = sizeof small;
    EXPECT_EQ(RegQueryValueExW(key.h, L"sundist", nullptr, &type, small, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, full);
    EXPECT_EQ(RegQueryValueExW(key.h, L"sundist", nullptr, &type, small, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(key.h, L"missing", nullptr, &type, small, &size),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, HandlesCarryTheirRightsAndAreCheckedBeforeUse) {
    {
        Key key;
        ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_SUCCESS);
    }
    Key reader;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kSuite, 0, KEY_READ, &reader.h), ERROR_SUCCESS);
    EXPECT_EQ(setText(reader.h, L"x", L"1"), ERROR_ACCESS_DENIED);
    Key child;
    EXPECT_EQ(RegCreateKeyW(reader.h, L"Child", &child.h), ERROR_ACCESS_DENIED);

    Key writer;
    ASSERT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, kSuite, &writer.h), ERROR_SUCCESS);
    EXPECT_EQ(setText(writer.h, L"x", L"1"), ERROR_SUCCESS);
    Key setOnly;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kSuite, 0, KEY_SET_VALUE, &setOnly.h),
              ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(setOnly.h, L"x", nullptr, nullptr, nullptr, &size),
              ERROR_ACCESS_DENIED);

    HKEY closed = nullptr;
    ASSERT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, kSuite, &closed), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(closed), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(closed), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS) << "the roots are never closed";
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    Key other;
    EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, L"x", &other.h), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, kSuite, nullptr), ERROR_INVALID_PARAMETER);
}

TEST_F(Registry, MalformedKeyPathsAreRefused) {
    Key key;
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"\\Software", &key.h), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\\\QorSoft", &key.h), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"Soft\nware", &key.h), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"a\\\\b", 0, KEY_READ, &key.h), ERROR_BAD_PATHNAME);
    EXPECT_FALSE(std::filesystem::exists(reg.path()));
    // An empty sub-key opens the key itself.
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"", 0, KEY_READ, &key.h), ERROR_SUCCESS);
    Key named;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &named.h), ERROR_SUCCESS);
    EXPECT_EQ(setText(named.h, L"bad\nname", L"x"), ERROR_INVALID_PARAMETER);
}

TEST_F(Registry, EnumerationListsSubKeysByNameAndValuesInOrder) {
    Key suite;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &suite.h), ERROR_SUCCESS);
    for (const wchar_t* sub : {L"Zeta", L"alpha", L"Mid\\Deeper"}) {
        Key k;
        ASSERT_EQ(RegCreateKeyW(suite.h, sub, &k.h), ERROR_SUCCESS);
    }
    ASSERT_EQ(setText(suite.h, L"second", L"2"), ERROR_SUCCESS);
    ASSERT_EQ(setText(suite.h, L"first", L"1"), ERROR_SUCCESS);

    std::vector<std::wstring> keys;
    wchar_t name[64];
    for (DWORD i = 0;; ++i) {
        DWORD len = 64;
        const LONG r = RegEnumKeyExW(suite.h, i, name, &len, nullptr, nullptr, nullptr, nullptr);
        if (r == ERROR_NO_MORE_ITEMS) break;
        ASSERT_EQ(r, ERROR_SUCCESS);
        EXPECT_EQ(len, std::wcslen(name));
        keys.emplace_back(name);
    }
    EXPECT_EQ(keys, (std::vector<std::wstring>{L"alpha", L"Mid", L"Zeta"}));

    std::vector<std::wstring> values;
    for (DWORD i = 0;; ++i) {
        DWORD len = 64, type = 0, size = 0;
        const LONG r = RegEnumValueW(suite.h, i, name, &len, nullptr, &type, nullptr, &size);
        if (r == ERROR_NO_MORE_ITEMS) break;
        ASSERT_EQ(r, ERROR_SUCCESS);
        EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
        EXPECT_EQ(size, 2 * sizeof(wchar_t));
        values.emplace_back(name);
    }
    EXPECT_EQ(values, (std::vector<std::wstring>{L"second", L"first"}));

    DWORD tiny = 3;
    EXPECT_EQ(RegEnumKeyExW(suite.h, 0, name, &tiny, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA)
        << "three characters leave no room for the NUL";
    EXPECT_EQ(tiny, 5u);
}

TEST_F(Registry, ADamagedStoreReadsAsEmptyIsReportedOnceAndIsNeverOverwritten) {
    const std::string damaged = "[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n"
                                "\"qordir\"=\"D:\\Qor7\\\"\n";
    reg.write(damaged);
    testing::internal::CaptureStderr();
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"qordir"), L"[2]");
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"qordir"), L"[2]");
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_NE(message.find(reg.path()), std::string::npos) << message;
    EXPECT_NE(message.find("line 2"), std::string::npos) << message;
    EXPECT_EQ(message.find("line 2", message.find("line 2") + 1), std::string::npos)
        << "one message for one state of the file:\n"
        << message;

    Key key;
    testing::internal::CaptureStderr();
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_BADDB);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(reg.read(), damaged) << "the person's file is left for them to fix";

    // Fixed by hand, it is read again at once.
    reg.write("[HKEY_CURRENT_USER\\Software\\QorSoft\\Qor7]\n\"qordir\"=\"D:\\\\Qor7\\\\\"\n");
    EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, L"qordir"), L"D:\\Qor7\\");
}

TEST_F(Registry, GarbageOfEveryKindIsADamagedStoreAndNothingWorse) {
    const std::string cases[] = {
        "\"a\"=\"value before any key\"\n",
        "[HKEY_CLASSES_ROOT\\x]\n",
        "[HKEY_CURRENT_USER\\a\\\\b]\n",
        "[HKEY_CURRENT_USER\\x\n",
        "[HKEY_CURRENT_USER\\x]\n\"a\"=dword:123456789\n",
        "[HKEY_CURRENT_USER\\x]\n\"a\"=hex:1,2,zz\n",
        "[HKEY_CURRENT_USER\\x]\n\"a\"=hex(2:01\n",
        "[HKEY_CURRENT_USER\\x]\n\"a\"=\"x\" trailing\n",
        "[HKEY_CURRENT_USER\\x]\nplain text\n",
        "[HKEY_CURRENT_USER\\x]\n\"a\"=\"\xFF\xFE\"\n",
        "[HKEY_CURRENT_USER\\x]\n" + std::string("\0\0\0\x01\x02", 5),
    };
    for (const std::string& text : cases) {
        reg.write(text);
        testing::internal::CaptureStderr();
        Key key;
        EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"x", 0, KEY_READ, &key.h), ERROR_FILE_NOT_FOUND)
            << text;
        const std::string message = testing::internal::GetCapturedStderr();
        EXPECT_NE(message.find("registry: "), std::string::npos) << text;
    }
}

TEST_F(Registry, TheDefaultStoreIsInTheUsersConfigurationFolder) {
    const char* home = std::getenv("HOME");
    const std::string oldHome = home ? home : "";
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    const std::string oldXdg = xdg ? xdg : "";
    unsetenv("QOR_REGISTRY");

    setenv("XDG_CONFIG_HOME", "/tmp/qor-config", 1);
    EXPECT_EQ(qorRegistryPath(), L"/tmp/qor-config/qor/registry");
    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(qorRegistryPath(), L"/home/someone/.config/qor/registry");

    if (home) setenv("HOME", oldHome.c_str(), 1);
    if (xdg) setenv("XDG_CONFIG_HOME", oldXdg.c_str(), 1);
    setenv("QOR_REGISTRY", reg.path().c_str(), 1);
    EXPECT_EQ(qorRegistryPath(), qorFromUtf8(reg.path()));
}

TEST_F(Registry, AStoreThatCannotBeWrittenFailsWithItsCode) {
    const auto notAFolder = reg.dir().path() / "plain";
    std::ofstream(notAFolder) << "x";
    setenv("QOR_REGISTRY", (notAFolder / "registry").c_str(), 1);
    Key key;
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_REGISTRY_IO_FAILED);
    EXPECT_EQ(key.h, nullptr);
}

// Several processes write at once: no value is lost, and a reader never sees a half-written
// store.
TEST_F(Registry, ConcurrentWritersLoseNothingAndReadersNeverSeeAPartialStore) {
    {
        Key key;
        ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kSuite, &key.h), ERROR_SUCCESS);
        ASSERT_EQ(setText(key.h, L"qordir", L"/opt/qor/"), ERROR_SUCCESS);
    }
    constexpr int kWriters = 4, kEach = 15;
    std::vector<pid_t> children;
    for (int w = 0; w < kWriters; ++w) {
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            int failures = 0;
            for (int i = 0; i < kEach; ++i) {
                Key key;
                const std::wstring name = L"w" + std::to_wstring(w) + L"_" + std::to_wstring(i);
                if (RegOpenKeyW(HKEY_CURRENT_USER, kSuite, &key.h) != ERROR_SUCCESS ||
                    setText(key.h, name.c_str(), std::wstring(i + 1, L'x')) != ERROR_SUCCESS)
                    ++failures;
            }
            _exit(failures);
        }
        children.push_back(pid);
    }
    int badReads = 0;
    for (int i = 0; i < 60; ++i)
        if (getText(HKEY_CURRENT_USER, kSuite, L"qordir") != L"/opt/qor/") ++badReads;
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "writer failures";
    }
    EXPECT_EQ(badReads, 0);
    for (int w = 0; w < kWriters; ++w)
        for (int i = 0; i < kEach; ++i) {
            const std::wstring name = L"w" + std::to_wstring(w) + L"_" + std::to_wstring(i);
            EXPECT_EQ(getText(HKEY_CURRENT_USER, kSuite, name.c_str()), std::wstring(i + 1, L'x'))
                << qorToUtf8(name);
        }
    for (const auto& entry : std::filesystem::directory_iterator(reg.dir().path()))
        EXPECT_EQ(entry.path().filename().string().find(".tmp."), std::string::npos)
            << "a temporary file was left: " << entry.path();
}

} // namespace
