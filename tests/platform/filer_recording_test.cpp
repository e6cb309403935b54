// The recording DWG and DXF filers: exact field order, dumps, and replay.
#include "db/stub.h"
#include "dbfilers.h"
#include "dbmain.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

} // namespace

// ---------------------------------------------------------------- DWG

TEST(RecordingDwgFiler, KeepsEveryFieldInOrder) {
    AcDbStub owner{nullptr, 0x1A, nullptr, false};
    const char chunk[] = {0x0A, static_cast<char>(0xFF)};
    const std::uint8_t block[] = {1, 2, 3};
    AcDbRecordingDwgFiler f;
    f.writeUInt16(401);
    f.writeInt8(-3);
    f.writeDouble(2.5);
    f.writePoint2d(AcGePoint2d(1, 2));
    f.writePoint3d(AcGePoint3d(1, -2, 0.1));
    f.writeScale3d(AcGeScale3d(1, 1, 0.5));
    f.writeString(L"abc");
    f.writeString(L"道路 \"A\"\n");
    f.writeBool(true);
    f.writeBoolean(false);
    f.writeBChunk(ads_binary{2, const_cast<char*>(chunk)});
    f.writeBytes(block, 3);
    f.writeAcDbHandle(AcDbHandle(0x2F));
    f.writeHardOwnershipId(AcDbObjectId(&owner));
    f.writeSoftPointerId(AcDbObjectId());
    f.writeUInt64(18446744073709551615ull);

    EXPECT_EQ(f.dump(), "UInt16 401\n"
                        "Int8 -3\n"
                        "Double 2.5\n"
                        "Point2d 1,2\n"
                        "Point3d 1,-2,0.1\n"
                        "Scale3d 1,1,0.5\n"
                        "String \"abc\"\n"
                        "String \"道路 \\\"A\\\"\\x0a\"\n"
                        "Bool true\n"
                        "Boolean false\n"
                        "BChunk <0aff>\n"
                        "Bytes <010203>\n"
                        "Handle 2F\n"
                        "HardOwnershipId 1A\n"
                        "SoftPointerId 0\n"
                        "UInt64 18446744073709551615\n");

    const auto& items = f.items();
    ASSERT_EQ(items.size(), 16u);
    EXPECT_EQ(items[0].kind, AcDbFilerKind::kUInt16);
    EXPECT_EQ(std::get<Adesk::UInt64>(items[0].value), 401u);
    EXPECT_EQ(items[1].kind, AcDbFilerKind::kInt8);
    EXPECT_EQ(std::get<Adesk::Int64>(items[1].value), -3);
    EXPECT_EQ(std::get<AcDbObjectId>(items[13].value).stub(), &owner);
}

TEST(RecordingDwgFiler, ReplaysWithTheStreamRules) {
    AcDbStub stub{nullptr, 0x44, nullptr, false};
    AcDbRecordingDwgFiler f;
    f.writeInt32(-7);
    f.writeString(L"宗地");
    f.writeHardPointerId(AcDbObjectId(&stub));
    const std::uint8_t block[] = {5, 6};
    f.writeBytes(block, 2);

    Adesk::Int32 i = 0;
    EXPECT_EQ(f.readInt32(&i), Acad::eOk);
    EXPECT_EQ(i, -7);

    // Another kind: a filer error, a zero value, and nothing consumed.
    double d = 1;
    EXPECT_EQ(f.readDouble(&d), Acad::eFilerError);
    EXPECT_EQ(d, 0.0);
    EXPECT_EQ(f.position(), 1u);
    ACHAR* s = nullptr;
    EXPECT_EQ(f.readString(&s), Acad::eFilerError) << "sticky";
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, L"");
    acdbFree(s);

    f.resetFilerStatus();
    EXPECT_EQ(f.readString(&s), Acad::eOk);
    EXPECT_STREQ(s, L"宗地");
    acdbFree(s);
    AcDbHardPointerId id;
    EXPECT_EQ(f.readHardPointerId(&id), Acad::eOk);
    EXPECT_EQ(id.stub(), &stub);
    std::uint8_t got[3] = {9, 9, 9};
    EXPECT_EQ(f.readBytes(got, 3), Acad::eFilerError) << "filed with another length";
    EXPECT_EQ(got[0] | got[1] | got[2], 0);
    f.resetFilerStatus();
    EXPECT_EQ(f.readBytes(got, 2), Acad::eOk);
    EXPECT_EQ(got[0], 5);
    EXPECT_EQ(got[1], 6);

    Adesk::Int16 past = 3;
    EXPECT_EQ(f.readInt16(&past), Acad::eEndOfFile);
    EXPECT_EQ(past, 0);
    EXPECT_TRUE(f.atEnd());

    f.resetFilerStatus();
    f.rewind();
    EXPECT_EQ(f.readInt32(&i), Acad::eOk);
}

TEST(RecordingDwgFiler, HandMadeItemsAreChecked) {
    // Items a test builds by hand may hold values their kind cannot carry.
    std::vector<AcDbFiledItem> items(3);
    items[0].kind = AcDbFilerKind::kInt16;
    items[0].value = Adesk::Int64{100000};
    items[1].kind = AcDbFilerKind::kUInt8;
    items[1].value = Adesk::UInt64{200};
    items[2].kind = AcDbFilerKind::kString;
    items[2].value = Adesk::Int64{1};

    AcDbRecordingDwgFiler f(items);
    Adesk::Int16 v = 5;
    EXPECT_EQ(f.readInt16(&v), Acad::eFilerError);
    EXPECT_EQ(v, 0);

    AcDbRecordingDwgFiler g(std::vector<AcDbFiledItem>(items.begin() + 1, items.end()));
    Adesk::UInt8 u = 0;
    EXPECT_EQ(g.readUInt8(&u), Acad::eOk);
    EXPECT_EQ(u, 200);
    ACHAR* s = nullptr;
    EXPECT_EQ(g.readString(&s), Acad::eFilerError);
    ASSERT_NE(s, nullptr);
    acdbFree(s);
}

// ---------------------------------------------------------------- DXF

TEST(RecordingDxfFiler, TypedWritesReadBackByStorageKind) {
    AcDbStub stub{nullptr, 0x3C, nullptr, false};
    const char chunk[] = {1, 2};
    AcDbRecordingDxfFiler f;
    f.writeString(AcDb::kDxfSubclass, L"AcDbEntity");
    f.writeInt16(AcDb::kDxfInt16, 3);
    f.writeUInt16(AcDb::kDxfInt16, 65535);
    f.writeDouble(AcDb::kDxfReal, 2.5);
    f.writeAngle(AcDb::kDxfAngle, 1.5);
    f.writePoint2d(AcDb::kDxfXCoord, AcGePoint2d(1, 2));
    f.writeBool(AcDb::kDxfBool, true);
    f.writeInt32(AcDb::kDxfInt32, -70000);
    f.writeInt64(AcDb::kDxfInt64, 1ll << 40);
    f.writeHandle(AcDb::kDxfHandle, AcDbHandle(0x1A));
    f.writeObjectId(AcDb::kDxfSoftPointerId, AcDbObjectId(&stub));
    f.writeBChunk(AcDb::kDxfBinaryChunk, ads_binary{2, const_cast<char*>(chunk)});
    ASSERT_EQ(f.filerStatus(), Acad::eOk);

    EXPECT_EQ(f.dump(), "100 \"AcDbEntity\"\n"
                        "70 3\n"
                        "70 65535\n"
                        "40 2.5\n"
                        "50 1.5\n"
                        "10 1,2,0\n"
                        "290 1\n"
                        "90 -70000\n"
                        "160 1099511627776\n"
                        "5 \"1A\"\n"
                        "330 3C\n"
                        "310 <0102>\n");
    EXPECT_TRUE(f.items()[4].angle);

    resbuf rb{};
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 100);
    EXPECT_STREQ(rb.resval.rstring, L"AcDbEntity");
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rint, 3);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rint, -1) << "unsigned flags keep their bits";
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rreal, 2.5);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rreal, 1.5) << "angles stay in radians";
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 10);
    EXPECT_EQ(rb.resval.rpoint[1], 2.0);
    EXPECT_EQ(rb.resval.rpoint[2], 0.0);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rint, 1);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rlong, -70000);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.mnInt64, 1ll << 40);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_STREQ(rb.resval.rstring, L"1A");
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    AcDbObjectId id;
    acdbGetObjectId(id, rb.resval.rlname);
    EXPECT_EQ(id.stub(), &stub);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    ASSERT_EQ(rb.resval.rbinary.clen, 2);
    EXPECT_EQ(rb.resval.rbinary.buf[1], 2);

    EXPECT_TRUE(f.atEOF());
    EXPECT_EQ(f.readItem(&rb), Acad::eEndOfFile);
    EXPECT_EQ(rb.restype, RTNONE);
    EXPECT_EQ(f.filerStatus(), Acad::eEndOfFile);
}

TEST(RecordingDxfFiler, PushBackGoesOneItemBack) {
    AcDbRecordingDxfFiler f({{AcDb::kDxfInt16, 1}, {AcDb::kDxfReal, 2.0}});
    resbuf rb{};
    EXPECT_NE(f.pushBackItem(), Acad::eOk) << "nothing read yet";
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 40);
    EXPECT_EQ(f.pushBackItem(), Acad::eOk);
    EXPECT_NE(f.pushBackItem(), Acad::eOk) << "one level only";
    EXPECT_FALSE(f.atEOF());
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 40);
    EXPECT_EQ(rb.resval.rreal, 2.0);
    EXPECT_EQ(f.readItem(&rb), Acad::eEndOfFile);
    EXPECT_NE(f.pushBackItem(), Acad::eOk) << "a failed read leaves nothing to push back";
}

TEST(RecordingDxfFiler, SubclassMarkersAreConsumedOnlyWhenTheyMatch) {
    AcDbRecordingDxfFiler f({{AcDb::kDxfSubclass, L"AcDbEntity"},
                             {AcDb::kDxfLayerName, L"AcDbCurve"},
                             {AcDb::kDxfSubclass, L"AcDbCurve"},
                             {AcDb::kDxfReal, 1.0}});
    EXPECT_FALSE(f.atSubclassData(L"AcDbCurve"));
    EXPECT_TRUE(f.atSubclassData(L"AcDbEntity"));
    EXPECT_EQ(f.position(), 1u);
    EXPECT_FALSE(f.atSubclassData(L"AcDbCurve")) << "same text under another code";
    resbuf rb{};
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 8);
    EXPECT_TRUE(f.atSubclassData(L"AcDbCurve"));
    EXPECT_FALSE(f.atSubclassData(nullptr));
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.restype, 40);
    EXPECT_FALSE(f.atSubclassData(L"AcDbCurve")) << "at the end";
}

TEST(RecordingDxfFiler, KnowsWhereExtendedDataAndTheEndAre) {
    AcDbRecordingDxfFiler f(
        {{AcDb::kDxfInt16, 0}, {AcDb::kDxfRegAppName, L"QOROBJ"}, {AcDb::kDxfXdInteger32, 5}});
    resbuf rb{};
    EXPECT_FALSE(f.atExtendedData());
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_TRUE(f.atExtendedData());
    EXPECT_FALSE(f.atEndOfObject());
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    ASSERT_EQ(f.readItem(&rb), Acad::eOk);
    EXPECT_EQ(rb.resval.rlong, 5);
    EXPECT_TRUE(f.atEndOfObject());
    EXPECT_TRUE(f.atEOF());
    EXPECT_FALSE(f.atExtendedData());
}

TEST(RecordingDxfFiler, ValuesThatDoNotFitTheirCodeAreRejected) {
    struct Case {
        const char* what;
        AcDbDxfItem item;
        Acad::ErrorStatus expected;
    };
    const Case cases[] = {
        {"integer under a real code reads as a real", {40, 3}, Acad::eOk},
        {"text under a real code", {40, L"3"}, Acad::eInvalidResBuf},
        {"real under a short code", {70, 3.0}, Acad::eInvalidResBuf},
        {"short out of range", {70, 70000}, Acad::eInvalidResBuf},
        {"point under a string code", {1, AcGePoint3d(1, 2, 3)}, Acad::eInvalidResBuf},
        {"code without storage but with a value", {85, 1}, Acad::eInvalidResBuf},
    };
    for (const Case& c : cases) {
        AcDbRecordingDxfFiler f({c.item});
        resbuf rb{};
        EXPECT_EQ(f.readItem(&rb), c.expected) << c.what;
        EXPECT_EQ(f.filerStatus(), c.expected) << c.what;
        if (c.expected == Acad::eOk)
            EXPECT_EQ(rb.resval.rreal, 3.0) << c.what;
        else
            EXPECT_EQ(f.readItem(&rb), c.expected) << c.what << ": sticky";
    }
}

TEST(RecordingDxfFiler, ReplaysABuiltListAndWritesItBack) {
    ads_point at = {1, 2, 3};
    resbuf* chain =
        acutBuildList(AcDb::kDxfSubclass, L"AcDbText", AcDb::kDxfText, L"宗地 12", AcDb::kDxfXCoord,
                      at, AcDb::kDxfTxtSize, 2.5, AcDb::kDxfInt16, 4, 0);
    ASSERT_NE(chain, nullptr);
    AcDbRecordingDxfFiler in(chain);
    AcDbRecordingDxfFiler out;
    resbuf rb{};
    const wchar_t* first = nullptr;
    while (in.readItem(&rb) == Acad::eOk) {
        if (rb.restype == AcDb::kDxfText) first = rb.resval.rstring;
        EXPECT_EQ(out.writeItem(rb), Acad::eOk);
    }
    EXPECT_EQ(in.filerStatus(), Acad::eEndOfFile);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(out.dump(), "100 \"AcDbText\"\n"
                          "1 \"宗地 12\"\n"
                          "10 1,2,3\n"
                          "40 2.5\n"
                          "70 4\n");
    EXPECT_EQ(out.dump(), in.dump());
    acutRelRb(chain);
}
