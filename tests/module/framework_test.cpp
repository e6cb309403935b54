// What every object class shares: listing columns, filing primitives, version tags, DXF
// headers in both orders, the regen-type rule and the explode/export helper.
#include "cmdline.h"
#include "dbfilers.h"
#include "girecorder.h"
#include "module/displayflags.h"
#include "module/framework.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

std::wstring printed(void (*print)(CString, CString, CString, CString), const wchar_t* l1,
                     const wchar_t* v1, const wchar_t* l2, const wchar_t* v2) {
    AcutCapture capture;
    print(l1, v1, l2, v2);
    return capture.text();
}

const std::wstring kSpaces19(19, L' ');

} // namespace

TEST(Framework, ListingColumnsAreCutAtFortyOrThirtyCharacters) {
    EXPECT_EQ(printed(M_PrintList, L"面积", L"12.500", L"周长", L"3.000"),
              L"\n        面积:  12.500" + kSpaces19 + L" " + L"        周长:  3.000");
    // A long left value is cut; an empty second label leaves the right column empty.
    const std::wstring longValue = L"一二三四五六七八九十一二三四五六七八九十一二三四五六七八九十";
    EXPECT_EQ(printed(M_PrintList, L"名称", longValue.c_str(), L"", L"x"),
              L"\n        名称:  " + longValue.substr(0, 27) + L" ");
    EXPECT_EQ(printed(M_PrintList15, L"类名", L"AcdbQorText", L"实体宽度", L"1.000"),
              L"\n             类名:  AcdbQorText " + std::wstring(L" ") +
                  L"           实体宽度:  1.000");

    CStringArray pairs;
    M_AddArray(L"甲", L"1", pairs);
    M_AddArray(L"乙", L"2", pairs);
    M_AddArray(L"丙", L"3", pairs);
    ASSERT_EQ(pairs.GetSize(), 6);
    EXPECT_EQ(pairs[4], CString(L"丙"));
    AcutCapture capture;
    M_PrintPairs(pairs);
    EXPECT_EQ(capture.text(), L"\n         甲:  1" + kSpaces19 + L"          乙:  2" +
                                  L"\n         丙:  3" + kSpaces19 + L" ");
}

TEST(Framework, StringsAndHardIdsFileAsThePlatformsPrimitives) {
    AcDbRecordingDwgFiler filer;
    M_WriteStr(&filer, L"用地红线");
    filer.rewind();
    CString back(L"old");
    M_ReadStr(&filer, back);
    EXPECT_EQ(back, CString(L"用地红线"));
    EXPECT_EQ(filer.items()[0].kind, AcDbFilerKind::kString);

    AcDbDatabase db;
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId liveId, goneId;
    auto* live = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    auto* gone = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0));
    ms->appendAcDbEntity(liveId, live);
    ms->appendAcDbEntity(goneId, gone);
    ms->close();
    live->close();
    gone->erase();
    gone->close();

    AcDbRecordingDwgFiler ids;
    M_WriteHardId(&ids, liveId);
    M_WriteHardId(&ids, goneId);
    ASSERT_EQ(ids.items().size(), 2u);
    EXPECT_EQ(ids.items()[0].kind, AcDbFilerKind::kHardPointerId);
    EXPECT_EQ(std::get<AcDbObjectId>(ids.items()[0].value), liveId);
    EXPECT_TRUE(std::get<AcDbObjectId>(ids.items()[1].value).isNull())
        << "an erased object is not pointed at";
}

TEST(Framework, VersionTagsAndDxfHeaders) {
    for (auto [tag, status] :
         {std::pair{Adesk::UInt64{401}, Acad::eOk}, std::pair{Adesk::UInt64{3}, Acad::eOk},
          std::pair{Adesk::UInt64{402}, Acad::eMakeMeProxy}}) {
        AcDbRecordingDwgFiler in({AcDbFiledItem{AcDbFilerKind::kUInt16, tag}});
        Adesk::UInt16 version = 0;
        EXPECT_EQ(qorReadVersion(&in, 401, version), status);
        EXPECT_EQ(version, tag);
    }
    AcDbRecordingDwgFiler wrongKind({AcDbFiledItem{AcDbFilerKind::kInt16, Adesk::Int64{401}}});
    Adesk::UInt16 version = 0;
    EXPECT_NE(qorReadVersion(&wrongKind, 401, version), Acad::eOk);

    AcDbRecordingDxfFiler markerFirst, versionFirst;
    qorDxfOutHeader(&markerFirst, L"AcdbQorLand", 4);
    qorDxfOutHeader(&versionFirst, L"AcdbQorLand", 4, QorDxfOrder::kVersionFirst);
    EXPECT_EQ(markerFirst.dump(), "100 \"AcdbQorLand\"\n70 4\n");
    EXPECT_EQ(versionFirst.dump(), "70 4\n100 \"AcdbQorLand\"\n");

    bool proceed = true;
    markerFirst.rewind();
    EXPECT_EQ(qorDxfInHeader(&markerFirst, L"AcdbQorLand", 4, proceed), Acad::eOk);
    EXPECT_TRUE(proceed);
    markerFirst.rewind();
    EXPECT_EQ(qorDxfInHeader(&markerFirst, L"AcdbQorLand", 3, proceed), Acad::eMakeMeProxy);
    // Version first: the marker is not where the reader looks, so nothing of the class is read.
    versionFirst.rewind();
    EXPECT_EQ(qorDxfInHeader(&versionFirst, L"AcdbQorLand", 4, proceed), Acad::eOk);
    EXPECT_FALSE(proceed);
    // A marker without its version: the next group is pushed back for whoever reads on.
    AcDbRecordingDxfFiler noVersion({AcDbDxfItem{100, L"AcdbQorLand"}, AcDbDxfItem{40, 2.5}});
    EXPECT_EQ(qorDxfInHeader(&noVersion, L"AcdbQorLand", 4, proceed), Acad::eOk);
    EXPECT_FALSE(proceed);
    resbuf rb{};
    ASSERT_EQ(noVersion.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 40);
}

TEST(Framework, RegenTypeRuleDrawsForDisplayExplodeAndProxyOnly) {
    struct Case {
        AcGiRegenType type;
        bool abort;
        bool drawn;
        Adesk::Boolean result;
    };
    const Case cases[] = {
        {kAcGiStandardDisplay, false, true, Adesk::kTrue},
        {kAcGiForExplode, false, true, Adesk::kTrue},
        {kAcGiSaveWorldDrawForProxy, false, true, Adesk::kTrue},
        {kAcGiHideOrShadeCommand, false, false, Adesk::kFalse},
        {kAcGiRenderCommand, false, false, Adesk::kFalse},
        {kAcGiForExtents, false, false, Adesk::kTrue},
        {kAcGiStandardDisplay, true, false, Adesk::kTrue},
    };
    for (const Case& c : cases) {
        AcGiRecorder rec;
        rec.setRegenType(c.type);
        rec.setRegenAbort(c.abort);
        bool drawn = false;
        EXPECT_EQ(qorWorldDrawByRegenType(rec.worldDraw(), [&] { drawn = true; }), c.result)
            << c.type;
        EXPECT_EQ(drawn, c.drawn) << c.type << " abort " << c.abort;
    }
}

TEST(Framework, ExplodeOutCollectsOrAppendsAndDeletesWhatIsRefused) {
    AcArray<void*> ents;
    EXPECT_EQ(M_ExplodeOut(nullptr, ents, nullptr), 0);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(M_ExplodeOut(line, ents, nullptr), 1);
    ASSERT_EQ(ents.length(), 1);
    EXPECT_EQ(ents[0], line);
    delete line;

    AcDbDatabase db;
    AcDbBlockTableRecord* ms = nullptr;
    ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    auto* appended = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(M_ExplodeOut(appended, ents, ms), 1);
    EXPECT_FALSE(appended->objectId().isNull());
    EXPECT_EQ(ms->entityIds().size(), 1u);
    ms->close();
    // A record outside any database refuses the entity, which is deleted (the sanitizer build
    // would report it leaked otherwise).
    AcDbBlockTableRecord loose;
    EXPECT_EQ(M_ExplodeOut(new AcDbLine(), ents, &loose), 0);
    EXPECT_EQ(ents.length(), 1);
}

TEST(Framework, SaveOldSwitchStoresAFlag) {
    int flag = 7;
    EXPECT_EQ(M_GetSaveOldFlg(1, flag), 1);
    flag = 0;
    M_GetSaveOldFlg(0, flag);
    EXPECT_EQ(flag, 1) << "any non-zero value is stored as 1";
    flag = 0;
    M_GetSaveOldFlg(1, flag);
    flag = 5;
    M_GetSaveOldFlg(2, flag);
    EXPECT_EQ(flag, 0);
}
