// Run-time classes, the system registry, services and built-in modules.
#include "dbents.h"
#include "dbmain.h"
#include "dbraster.h"
#include "dbsymtb.h"
#include "rx.h"

#include <gtest/gtest.h>

namespace {

AcRxClass* registered(const ACHAR* name) {
    return AcRxClass::cast(acrxClassDictionary()->at(name));
}

TEST(RxRegistry, PlatformClassesArePresentWithTheirHierarchy) {
    for (const ACHAR* name :
         {L"AcRxObject", L"AcDbObject", L"AcDbEntity", L"AcDbCurve", L"AcDbPolyline", L"AcDbLine",
          L"AcDbBlockTableRecord", L"AcDbDictionary", L"AcDbXrecord", L"AcDbProxyEntity"})
        EXPECT_NE(registered(name), nullptr);
    EXPECT_TRUE(AcDbPolyline::desc()->isDerivedFrom(AcDbCurve::desc()));
    EXPECT_TRUE(AcDbPolyline::desc()->isDerivedFrom(AcDbEntity::desc()));
    EXPECT_FALSE(AcDbEntity::desc()->isDerivedFrom(AcDbPolyline::desc()));
    EXPECT_STREQ(AcDbPolyline::desc()->dxfName(), L"LWPOLYLINE");
    // The raster image arrives only with the image-support module.
    EXPECT_EQ(registered(L"AcDbRasterImage"), nullptr);
}

TEST(RxRegistry, CastAndIsKindOfFollowTheHierarchy) {
    AcDbLine line;
    AcRxObject* p = &line;
    EXPECT_TRUE(p->isKindOf(AcDbCurve::desc()));
    EXPECT_EQ(AcDbCurve::cast(p), &line);
    EXPECT_EQ(AcDbPolyline::cast(p), nullptr);
    EXPECT_EQ(AcDbLine::cast(nullptr), nullptr);
    EXPECT_EQ(line.isA(), AcDbLine::desc());
}

TEST(RxRegistry, NewClassesResolveTheirParentsWhenTheHierarchyIsBuilt) {
    // The child is registered before its parent exists, as modules may do.
    AcRxClass* child =
        newAcRxClass(L"TestChild", L"TestParent", 29, 63, 0, nullptr, L"TEST_CHILD", L"TESTAPP");
    EXPECT_EQ(child->myParent(), nullptr);
    AcRxClass* parent = newAcRxClass(L"TestParent", L"AcDbEntity", 29, 63);
    acrxBuildClassHierarchy();
    EXPECT_EQ(child->myParent(), parent);
    EXPECT_TRUE(child->isDerivedFrom(AcDbEntity::desc()));
    int maint = 0;
    EXPECT_EQ(child->dwgVersion(maint), 29);
    EXPECT_EQ(maint, 63);
    deleteAcRxClass(child);
    deleteAcRxClass(parent);
    EXPECT_EQ(registered(L"TestChild"), nullptr);
    EXPECT_EQ(registered(L"TestParent"), nullptr);
}

TEST(RxRegistryDeathTest, ASecondClassUnderOneNameAbortsWithClassMismatch) {
    EXPECT_DEATH(
        {
            newAcRxClass(L"TestTwice", L"AcDbEntity", 29, 63);
            newAcRxClass(L"TestTwice", L"AcDbEntity", 29, 63);
        },
        "Class mismatch");
}

TEST(RxRegistry, ServicesComeAndGo) {
    AcRxObject* service = acrxRegisterService(L"TEST_SERVICE");
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(acrxRegisterService(L"TEST_SERVICE"), service);
    EXPECT_TRUE(acrxServiceIsRegistered(L"TEST_SERVICE"));
    delete acrxServiceDictionary()->remove(L"TEST_SERVICE");
    EXPECT_FALSE(acrxServiceIsRegistered(L"TEST_SERVICE"));
}

TEST(RxRegistry, ImageSupportModuleBringsTheRasterClassUntilItsLastUnload) {
    ASSERT_TRUE(acrxLoadModule(L"acismui.arx", false, true));
    ASSERT_TRUE(acrxLoadModule(L"ACISMUI.ARX", false, false));
    EXPECT_EQ(registered(L"AcDbRasterImage"), AcDbRasterImage::desc());
    EXPECT_TRUE(AcDbRasterImage::desc()->isDerivedFrom(AcDbEntity::desc()));
    EXPECT_TRUE(acrxUnloadModule(L"acismui.arx"));
    EXPECT_NE(registered(L"AcDbRasterImage"), nullptr);
    EXPECT_TRUE(acrxUnloadModule(L"acismui.arx"));
    EXPECT_EQ(registered(L"AcDbRasterImage"), nullptr);
    EXPECT_FALSE(acrxUnloadModule(L"acismui.arx"));
}

TEST(RxRegistry, AMissingSharedModuleFailsWithAReason) {
    EXPECT_FALSE(acrxLoadModule(L"/nonexistent/libnothing.so", false));
    EXPECT_NE(acrxLastModuleError().find(L"libnothing"), std::wstring::npos);
}

TEST(RxRegistry, DictionaryKeepsInsertionOrderAndSurvivesRemovalWhileIterating) {
    AcRxDictionary dict;
    AcRxService a, b, c;
    dict.atPut(L"b", &b);
    dict.atPut(L"a", &a);
    dict.atPut(L"c", &c);
    EXPECT_EQ(dict.atPut(L"a", &c), &a);
    std::wstring keys;
    for (AcRxDictionaryIterator it(&dict); !it.done(); it.next()) {
        keys += it.key();
        dict.remove(it.key());
    }
    EXPECT_EQ(keys, L"bac");
    EXPECT_EQ(dict.numEntries(), 0u);
    EXPECT_EQ(dict.remove(L"a"), nullptr);
}

} // namespace
