// Module entry: initialisation and unload sequences, and the class registration machinery.
#include "dbmain.h"
#include "module/classtable.h"
#include "module/qorclass.h"

#include <gtest/gtest.h>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt);
extern "C" unsigned int acrxGetApiVersion();

namespace {

// A class registered the way the module registers its own.
class TestQorThing : public AcDbEntity {
    QOR_DECLARE_MEMBERS(TestQorThing);
};
QOR_DEFINE_MEMBERS(TestQorThing, AcDbEntity, L"QOR_TESTTHING", L"QOROBJ", 3071)

std::vector<std::wstring> classNames() {
    std::vector<std::wstring> names;
    for (AcRxDictionaryIterator it(acrxClassDictionary()); !it.done(); it.next())
        names.emplace_back(it.key());
    return names;
}

TEST(ModuleEntry, InitialisationRegistersServiceAndImageSupportAndIsIdempotent) {
    EXPECT_EQ(acrxGetApiVersion(), 0x00120000u);
    ASSERT_EQ(acrxEntryPoint(AcRx::kInitAppMsg, nullptr), AcRx::kRetOK);
    EXPECT_TRUE(acrxServiceIsRegistered(L"QOROBJ_DBXSERVICE"));
    EXPECT_NE(acrxClassDictionary()->at(L"AcDbRasterImage"), nullptr);
    for (const QorClassRow& row : qorClassTable())
        EXPECT_NE(row.desc(), nullptr);
    const auto before = classNames();
    AcRxObject* service = acrxServiceDictionary()->at(L"QOROBJ_DBXSERVICE");
    ASSERT_EQ(acrxEntryPoint(AcRx::kInitAppMsg, nullptr), AcRx::kRetOK);
    EXPECT_EQ(classNames(), before);
    EXPECT_EQ(acrxServiceDictionary()->at(L"QOROBJ_DBXSERVICE"), service);

    // Names first: after unload the descriptors are deleted and desc() is stale.
    std::vector<std::wstring> moduleNames;
    for (const QorClassRow& row : qorClassTable())
        moduleNames.emplace_back(row.desc()->name());
    ASSERT_FALSE(moduleNames.empty());
    EXPECT_EQ(acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr), AcRx::kRetOK);
    EXPECT_FALSE(acrxServiceIsRegistered(L"QOROBJ_DBXSERVICE"));
    for (const std::wstring& name : moduleNames)
        EXPECT_EQ(acrxClassDictionary()->at(name.c_str()), nullptr) << name.size();
    // Other messages are ignored and still answered with success.
    EXPECT_EQ(acrxEntryPoint(AcRx::kQuitMsg, nullptr), AcRx::kRetOK);
    // The image module was loaded three times (twice on first start) and unloaded once: it stays.
    EXPECT_EQ(classNames().size(), before.size() - moduleNames.size());
    EXPECT_NE(acrxClassDictionary()->at(L"AcDbRasterImage"), nullptr);
}

TEST(ModuleEntry, ClassRegistrationRecordAndIdentity) {
    TestQorThing::rxInit();
    AcRxClass* desc = TestQorThing::desc();
    ASSERT_NE(desc, nullptr);
    EXPECT_STREQ(desc->name(), L"TestQorThing");
    EXPECT_STREQ(desc->parentName(), L"AcDbEntity");
    EXPECT_EQ(desc->myParent(), AcDbEntity::desc());
    EXPECT_STREQ(desc->dxfName(), L"QOR_TESTTHING");
    EXPECT_STREQ(desc->appName(), L"QOROBJ");
    EXPECT_EQ(desc->proxyFlags(), 3071);
    int maint = 0;
    EXPECT_EQ(desc->dwgVersion(maint), 29);
    EXPECT_EQ(maint, 63);

    // A second registration finds its own descriptor and does nothing.
    TestQorThing::rxInit();
    EXPECT_EQ(TestQorThing::desc(), desc);

    AcRxObject* made = desc->create();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->isA(), desc);
    EXPECT_NE(TestQorThing::cast(made), nullptr);
    EXPECT_NE(AcDbEntity::cast(made), nullptr);
    EXPECT_EQ(TestQorThing::cast(nullptr), nullptr);
    AcDbEntity plain;
    EXPECT_EQ(TestQorThing::cast(&plain), nullptr);
    delete made;

    deleteAcRxClass(TestQorThing::desc());
    EXPECT_EQ(acrxClassDictionary()->at(L"TestQorThing"), nullptr);
    // After removal the stale pointer is looked up again on the next registration.
    TestQorThing::rxInit();
    EXPECT_NE(acrxClassDictionary()->at(L"TestQorThing"), nullptr);
    deleteAcRxClass(TestQorThing::desc());
}

TEST(ModuleEntryDeathTest, AnotherClassUnderTheSameNameAbortsTheHost) {
    EXPECT_DEATH(
        {
            TestQorThing::rxInit();
            acrxClassDictionary()->remove(L"TestQorThing"); // the descriptor stays alive and set
            newAcRxClass(L"TestQorThing", L"AcDbEntity", 29, 63);
            TestQorThing::rxInit();
        },
        "Class mismatch");
}

} // namespace
