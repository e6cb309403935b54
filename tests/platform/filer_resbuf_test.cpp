// Result-buffer chains and the storage kinds of DXF group codes.
#include "dbfilers.h"

#include <gtest/gtest.h>

#include <cwchar>

TEST(GroupCodes, StorageKindsFollowTheDxfRanges) {
    // Both ends of each range of the DXF group code table, and gaps next to them.
    const struct {
        int code, kind;
    } cases[] = {
        {0, RTSTR},        {5, RTSTR},        {9, RTSTR},       {10, RT3DPOINT},    {39, RT3DPOINT},
        {40, RTREAL},      {59, RTREAL},      {60, RTSHORT},    {79, RTSHORT},      {80, RTNONE},
        {89, RTNONE},      {90, RTLONG},      {99, RTLONG},     {100, RTSTR},       {102, RTSTR},
        {103, RTNONE},     {105, RTSTR},      {110, RT3DPOINT}, {139, RT3DPOINT},   {140, RTREAL},
        {149, RTREAL},     {150, RTNONE},     {160, RTINT64},   {169, RTINT64},     {170, RTSHORT},
        {179, RTSHORT},    {209, RTNONE},     {210, RT3DPOINT}, {239, RT3DPOINT},   {270, RTSHORT},
        {289, RTSHORT},    {290, RTSHORT},    {299, RTSHORT},   {300, RTSTR},       {309, RTSTR},
        {310, RTRESBUF},   {319, RTRESBUF},   {320, RTSTR},     {329, RTSTR},       {330, RTENAME},
        {369, RTENAME},    {370, RTSHORT},    {389, RTSHORT},   {390, RTENAME},     {399, RTENAME},
        {400, RTSHORT},    {409, RTSHORT},    {410, RTSTR},     {419, RTSTR},       {420, RTLONG},
        {429, RTLONG},     {430, RTSTR},      {439, RTSTR},     {440, RTLONG},      {459, RTLONG},
        {460, RTREAL},     {469, RTREAL},     {470, RTSTR},     {479, RTSTR},       {999, RTSTR},
        {1000, RTSTR},     {1002, RTSTR},     {1004, RTRESBUF}, {1005, RTSTR},      {1009, RTSTR},
        {1010, RT3DPOINT}, {1039, RT3DPOINT}, {1040, RTREAL},   {1059, RTREAL},     {1060, RTSHORT},
        {1070, RTSHORT},   {1071, RTLONG},    {1072, RTNONE},   {-1, RTENAME},      {-3, RTNONE},
        {-4, RTSTR},       {RTSTR, RTSTR},    {RTREAL, RTREAL}, {RTPICKS, RTENAME}, {RTLB, RTNONE},
    };
    for (const auto& c : cases)
        EXPECT_EQ(acdbGroupCodeToType(c.code), c.kind) << "group code " << c.code;
}

TEST(ResultBuffers, BuildListCopiesEveryKindOfValue) {
    ads_point at = {1, 2, 3};
    ads_name name = {0x1234, 0};
    wchar_t text[] = L"道路";
    char bytes[] = {7, 8, 9};
    const ads_binary chunk{3, bytes};
    resbuf* chain = acutBuildList(RTSTR, text, RTSHORT, -5, RTLONG, 70000, RTREAL, 0.25, RT3DPOINT,
                                  at, RTENAME, name, RTLB, RTLE, AcDb::kDxfXdBinaryChunk, &chunk,
                                  AcDb::kDxfInt64, Adesk::Int64{1} << 40, AcDb::kDxfXdAsciiString,
                                  static_cast<const ACHAR*>(nullptr), RTNONE);
    ASSERT_NE(chain, nullptr);
    // The chain owns copies: changing the sources afterwards changes nothing.
    text[0] = L'X';
    bytes[0] = 0;
    at[0] = 0;

    const resbuf* rb = chain;
    ASSERT_EQ(rb->restype, RTSTR);
    EXPECT_STREQ(rb->resval.rstring, L"道路");
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.rint, -5);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.rlong, 70000);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.rreal, 0.25);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.rpoint[0], 1.0);
    EXPECT_EQ(rb->resval.rpoint[2], 3.0);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.rlname[0], 0x1234);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->restype, RTLB);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->restype, RTLE);
    ASSERT_TRUE(rb = rb->rbnext);
    ASSERT_EQ(rb->resval.rbinary.clen, 3);
    EXPECT_NE(rb->resval.rbinary.buf, bytes);
    EXPECT_EQ(rb->resval.rbinary.buf[0], 7);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->resval.mnInt64, Adesk::Int64{1} << 40);
    ASSERT_TRUE(rb = rb->rbnext);
    EXPECT_EQ(rb->restype, AcDb::kDxfXdAsciiString);
    EXPECT_EQ(rb->resval.rstring, nullptr);
    EXPECT_EQ(rb->rbnext, nullptr);

    // Releasing frees the strings and chunks too; the leak checker of the sanitizer build
    // would report any left behind.
    EXPECT_EQ(acutRelRb(chain), RTNORM);
}

TEST(ResultBuffers, UnknownTypeGivesNoList) {
    // The value after an unknown type cannot be skipped safely, so nothing is built.
    EXPECT_EQ(acutBuildList(RTSTR, L"a", 85, 1, 0), nullptr);
    EXPECT_EQ(acutBuildList(0), nullptr);
}

TEST(ResultBuffers, NewBuffersAreEmpty) {
    resbuf* rb = acutNewRb(AcDb::kDxfText);
    ASSERT_NE(rb, nullptr);
    EXPECT_EQ(rb->restype, AcDb::kDxfText);
    EXPECT_EQ(rb->rbnext, nullptr);
    EXPECT_EQ(rb->resval.rstring, nullptr);
    // A string set later with the filer allocator belongs to the buffer.
    rb->resval.rstring = static_cast<ACHAR*>(acdbAlloc(4 * sizeof(ACHAR)));
    std::wcscpy(rb->resval.rstring, L"abc");
    rb->rbnext = acutNewRb(AcDb::kDxfBinaryChunk);
    rb->rbnext->resval.rbinary.buf = static_cast<char*>(acdbAlloc(2));
    rb->rbnext->resval.rbinary.clen = 2;
    EXPECT_EQ(acutRelRb(rb), RTNORM);
    EXPECT_EQ(acutRelRb(nullptr), RTNORM);
    acdbFree(nullptr);
}
