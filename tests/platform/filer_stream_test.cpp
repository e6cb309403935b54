// The typed binary stream: round trips, its byte layout, and how it meets damaged data.
#include "db/stub.h"
#include "dbfilers.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// Objects whose ids the samples file, and a resolver that finds them by handle.
struct Ids {
    AcDbStub owned{nullptr, 0x1A, nullptr, false};
    AcDbStub soft{nullptr, 0x2B, nullptr, false};
    AcDbStub pointer{nullptr, 0xFFFFFFFFFFFFull, nullptr, false};

    AcDbStreamDwgFiler::HandleResolver resolver() {
        return [this](AcDbHandle h) {
            for (AcDbStub* s : {&owned, &soft, &pointer})
                if (s->handle == h.value()) return AcDbObjectId(s);
            return AcDbObjectId();
        };
    }
};

// One of every primitive, with values at the edges of their ranges.
void writeSamples(AcDbDwgFiler& f, Ids& ids) {
    static const char chunk[] = {1, 2, 3, 0, static_cast<char>(0xFF)};
    static const std::uint8_t block[] = {9, 8, 7};
    f.writeBool(true);
    f.writeBoolean(false);
    f.writeInt8(-128);
    f.writeUInt8(255);
    f.writeInt16(-32768);
    f.writeUInt16(401);
    f.writeInt32(std::numeric_limits<Adesk::Int32>::min());
    f.writeUInt32(4000000000u);
    f.writeInt64(-1234567890123456789ll);
    f.writeUInt64(std::numeric_limits<Adesk::UInt64>::max());
    f.writeDouble(-0.1);
    f.writeDouble(1e-310); // subnormal
    f.writePoint2d(AcGePoint2d(1, 2));
    f.writePoint3d(AcGePoint3d(-1.5, 2.25, 1e300));
    f.writeVector2d(AcGeVector2d(0, -1));
    f.writeVector3d(AcGeVector3d(0.5, 0.25, 0.125));
    f.writeScale3d(AcGeScale3d(2, 3, 4));
    f.writeString(L"宗地 12");
    f.writeString(L"");
    f.writeString(L"\U0001F600 é");
    f.writeBChunk(ads_binary{static_cast<short>(sizeof chunk), const_cast<char*>(chunk)});
    f.writeBChunk(ads_binary{});
    f.writeBytes(block, sizeof block);
    f.writeAcDbHandle(AcDbHandle(0xABCDEFull));
    f.writeHardOwnershipId(AcDbObjectId(&ids.owned));
    f.writeSoftOwnershipId(AcDbObjectId(&ids.soft));
    f.writeHardPointerId(AcDbObjectId(&ids.pointer));
    f.writeSoftPointerId(AcDbObjectId());
}

// Reads one field of the item's kind from `in` and files what was read into `out`.
Acad::ErrorStatus copyField(const AcDbFiledItem& item, AcDbDwgFiler& in, AcDbDwgFiler& out) {
    Acad::ErrorStatus es = Acad::eOk;
    switch (item.kind) {
    case AcDbFilerKind::kBool: {
        bool v = true;
        es = in.readBool(&v);
        out.writeBool(v);
        break;
    }
    case AcDbFilerKind::kBoolean: {
        Adesk::Boolean v = true;
        es = in.readBoolean(&v);
        out.writeBoolean(v);
        break;
    }
    case AcDbFilerKind::kInt8: {
        Adesk::Int8 v = 1;
        es = in.readInt8(&v);
        out.writeInt8(v);
        break;
    }
    case AcDbFilerKind::kUInt8: {
        Adesk::UInt8 v = 1;
        es = in.readUInt8(&v);
        out.writeUInt8(v);
        break;
    }
    case AcDbFilerKind::kInt16: {
        Adesk::Int16 v = 1;
        es = in.readInt16(&v);
        out.writeInt16(v);
        break;
    }
    case AcDbFilerKind::kUInt16: {
        Adesk::UInt16 v = 1;
        es = in.readUInt16(&v);
        out.writeUInt16(v);
        break;
    }
    case AcDbFilerKind::kInt32: {
        Adesk::Int32 v = 1;
        es = in.readInt32(&v);
        out.writeInt32(v);
        break;
    }
    case AcDbFilerKind::kUInt32: {
        Adesk::UInt32 v = 1;
        es = in.readUInt32(&v);
        out.writeUInt32(v);
        break;
    }
    case AcDbFilerKind::kInt64: {
        Adesk::Int64 v = 1;
        es = in.readInt64(&v);
        out.writeInt64(v);
        break;
    }
    case AcDbFilerKind::kUInt64: {
        Adesk::UInt64 v = 1;
        es = in.readUInt64(&v);
        out.writeUInt64(v);
        break;
    }
    case AcDbFilerKind::kDouble: {
        double v = 1;
        es = in.readDouble(&v);
        out.writeDouble(v);
        break;
    }
    case AcDbFilerKind::kPoint2d: {
        AcGePoint2d v(1, 1);
        es = in.readPoint2d(&v);
        out.writePoint2d(v);
        break;
    }
    case AcDbFilerKind::kPoint3d: {
        AcGePoint3d v(1, 1, 1);
        es = in.readPoint3d(&v);
        out.writePoint3d(v);
        break;
    }
    case AcDbFilerKind::kVector2d: {
        AcGeVector2d v(1, 1);
        es = in.readVector2d(&v);
        out.writeVector2d(v);
        break;
    }
    case AcDbFilerKind::kVector3d: {
        AcGeVector3d v(1, 1, 1);
        es = in.readVector3d(&v);
        out.writeVector3d(v);
        break;
    }
    case AcDbFilerKind::kScale3d: {
        AcGeScale3d v(1, 1, 1);
        es = in.readScale3d(&v);
        out.writeScale3d(v);
        break;
    }
    case AcDbFilerKind::kString: {
        ACHAR* s = nullptr;
        es = in.readString(&s);
        EXPECT_NE(s, nullptr) << "a failed read still gives a string to free";
        out.writeString(s);
        acdbFree(s);
        break;
    }
    case AcDbFilerKind::kBChunk: {
        ads_binary chunk{5, nullptr};
        es = in.readBChunk(&chunk);
        out.writeBChunk(chunk);
        acdbFree(chunk.buf);
        break;
    }
    case AcDbFilerKind::kBytes: {
        const auto& held = std::get<Bytes>(item.value);
        Bytes buf(held.size(), 0x55);
        es = in.readBytes(buf.data(), buf.size());
        out.writeBytes(buf.data(), buf.size());
        break;
    }
    case AcDbFilerKind::kHandle: {
        AcDbHandle h(7);
        es = in.readAcDbHandle(&h);
        out.writeAcDbHandle(h);
        break;
    }
    case AcDbFilerKind::kHardOwnershipId: {
        AcDbHardOwnershipId id;
        es = in.readHardOwnershipId(&id);
        out.writeHardOwnershipId(id);
        break;
    }
    case AcDbFilerKind::kSoftOwnershipId: {
        AcDbSoftOwnershipId id;
        es = in.readSoftOwnershipId(&id);
        out.writeSoftOwnershipId(id);
        break;
    }
    case AcDbFilerKind::kHardPointerId: {
        AcDbHardPointerId id;
        es = in.readHardPointerId(&id);
        out.writeHardPointerId(id);
        break;
    }
    case AcDbFilerKind::kSoftPointerId: {
        AcDbSoftPointerId id;
        es = in.readSoftPointerId(&id);
        out.writeSoftPointerId(id);
        break;
    }
    }
    return es;
}

// The dump line of the zero value a failed read of this item gives.
std::string zeroLine(const AcDbFiledItem& item) {
    static const std::map<AcDbFilerKind, std::string> zeros = {
        {AcDbFilerKind::kBool, "false"},
        {AcDbFilerKind::kBoolean, "false"},
        {AcDbFilerKind::kInt8, "0"},
        {AcDbFilerKind::kUInt8, "0"},
        {AcDbFilerKind::kInt16, "0"},
        {AcDbFilerKind::kUInt16, "0"},
        {AcDbFilerKind::kInt32, "0"},
        {AcDbFilerKind::kUInt32, "0"},
        {AcDbFilerKind::kInt64, "0"},
        {AcDbFilerKind::kUInt64, "0"},
        {AcDbFilerKind::kDouble, "0"},
        {AcDbFilerKind::kPoint2d, "0,0"},
        {AcDbFilerKind::kPoint3d, "0,0,0"},
        {AcDbFilerKind::kVector2d, "0,0"},
        {AcDbFilerKind::kVector3d, "0,0,0"},
        {AcDbFilerKind::kScale3d, "0,0,0"},
        {AcDbFilerKind::kString, "\"\""},
        {AcDbFilerKind::kBChunk, "<>"},
        {AcDbFilerKind::kHandle, "0"},
        {AcDbFilerKind::kHardOwnershipId, "0"},
        {AcDbFilerKind::kSoftOwnershipId, "0"},
        {AcDbFilerKind::kHardPointerId, "0"},
        {AcDbFilerKind::kSoftPointerId, "0"},
    };
    std::string zero;
    if (item.kind == AcDbFilerKind::kBytes)
        zero = "<" + std::string(2 * std::get<Bytes>(item.value).size(), '0') + ">";
    else
        zero = zeros.at(item.kind);
    return std::string(acdbFilerKindName(item.kind)) + " " + zero;
}

Bytes streamOf(void (*write)(AcDbDwgFiler&)) {
    AcDbStreamDwgFiler out;
    write(out);
    EXPECT_EQ(out.filerStatus(), Acad::eOk);
    return out.bytes();
}

} // namespace

TEST(StreamFiler, EveryPrimitiveRoundTrips) {
    Ids ids;
    AcDbRecordingDwgFiler written;
    writeSamples(written, ids);
    AcDbStreamDwgFiler out;
    writeSamples(out, ids);
    ASSERT_EQ(out.filerStatus(), Acad::eOk);

    const Bytes bytes = out.bytes();
    AcDbStreamDwgFiler in(bytes.data(), bytes.size(), ids.resolver());
    AcDbRecordingDwgFiler read;
    for (const AcDbFiledItem& item : written.items())
        EXPECT_EQ(copyField(item, in, read), Acad::eOk) << item.toString();
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(in.position(), bytes.size());
    EXPECT_EQ(read.dump(), written.dump());

    EXPECT_EQ(read.items().size(), 28u);
}

TEST(StreamFiler, ValuesComeBackExactly) {
    Ids ids;
    AcDbStreamDwgFiler out;
    out.writeString(L"宗地 12");
    out.writeString(L"");
    out.writeString(nullptr);
    out.writeDouble(-0.0);
    out.writeDouble(std::numeric_limits<double>::quiet_NaN());
    out.writeInt64(std::numeric_limits<Adesk::Int64>::min());
    out.writeSoftPointerId(AcDbObjectId(&ids.pointer));

    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), ids.resolver());
    for (const wchar_t* expected : {L"宗地 12", L"", L""}) {
        ACHAR* s = nullptr;
        ASSERT_EQ(in.readString(&s), Acad::eOk);
        ASSERT_NE(s, nullptr);
        EXPECT_STREQ(s, expected);
        acdbFree(s);
    }
    double d = 1;
    ASSERT_EQ(in.readDouble(&d), Acad::eOk);
    EXPECT_EQ(d, 0.0);
    EXPECT_TRUE(std::signbit(d));
    ASSERT_EQ(in.readDouble(&d), Acad::eOk);
    EXPECT_TRUE(std::isnan(d));
    Adesk::Int64 i = 0;
    ASSERT_EQ(in.readInt64(&i), Acad::eOk);
    EXPECT_EQ(i, std::numeric_limits<Adesk::Int64>::min());
    AcDbSoftPointerId id;
    ASSERT_EQ(in.readSoftPointerId(&id), Acad::eOk);
    EXPECT_EQ(id.stub(), &ids.pointer);
    EXPECT_TRUE(in.atEnd());
}

TEST(StreamFiler, ByteLayoutIsTaggedLittleEndian) {
    // Drawing files hold these bytes: a change here breaks every saved drawing.
    const Bytes bytes = streamOf([](AcDbDwgFiler& f) {
        f.writeUInt16(0x0191);
        f.writeString(L"中a");
        f.writeDouble(1.0);
        f.writeBool(true);
        f.writeSoftPointerId(AcDbObjectId());
        f.writeInt32(-2);
    });
    const Bytes expected = {
        6,  0x91, 0x01,                                     // UInt16
        17, 4,    0,    0,    0,    0xE4, 0xB8, 0xAD, 'a',  // String: UTF-8 byte length
        11, 0,    0,    0,    0,    0,    0,    0xF0, 0x3F, // Double
        1,  1,                                              // Bool
        24, 0,    0,    0,    0,    0,    0,    0,    0,    // SoftPointerId: null handle
        7,  0xFE, 0xFF, 0xFF, 0xFF,                         // Int32
    };
    EXPECT_EQ(bytes, expected);
}

TEST(StreamFiler, IdsResolveThroughTheResolver) {
    Ids ids;
    AcDbStreamDwgFiler out;
    out.writeHardOwnershipId(AcDbObjectId(&ids.owned));
    out.writeHardPointerId(AcDbObjectId());
    out.writeSoftOwnershipId(AcDbObjectId(&ids.soft));

    std::vector<Adesk::UInt64> asked;
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), [&](AcDbHandle h) {
        asked.push_back(h.value());
        return AcDbObjectId(&ids.owned);
    });
    AcDbHardOwnershipId a;
    AcDbHardPointerId b(AcDbObjectId(&ids.soft));
    AcDbSoftOwnershipId c;
    EXPECT_EQ(in.readHardOwnershipId(&a), Acad::eOk);
    EXPECT_EQ(in.readHardPointerId(&b), Acad::eOk);
    EXPECT_EQ(in.readSoftOwnershipId(&c), Acad::eOk);
    EXPECT_EQ(a.stub(), &ids.owned);
    EXPECT_TRUE(b.isNull()) << "a null handle is a null id, not a lookup";
    EXPECT_EQ(asked, (std::vector<Adesk::UInt64>{0x1A, 0x2B}));

    // Without a resolver every id reads as null, but the stream still advances.
    AcDbStreamDwgFiler blind(out.bytes().data(), out.bytes().size());
    EXPECT_EQ(blind.readHardOwnershipId(&a), Acad::eOk);
    EXPECT_TRUE(a.isNull());
    EXPECT_EQ(blind.position(), 9u);
}

TEST(StreamFiler, EveryTruncationFailsCleanly) {
    Ids ids;
    AcDbRecordingDwgFiler written;
    writeSamples(written, ids);
    AcDbStreamDwgFiler out;
    writeSamples(out, ids);
    const Bytes full = out.bytes();
    std::vector<std::string> lines, zeros;
    for (const AcDbFiledItem& item : written.items()) {
        lines.push_back(item.toString());
        zeros.push_back(zeroLine(item));
    }

    for (size_t n = 0; n < full.size(); ++n) {
        // A heap block of exactly n bytes, so an over-read is caught by the address checks.
        const Bytes prefix(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(n));
        AcDbStreamDwgFiler in(prefix.data(), prefix.size(), ids.resolver());
        AcDbRecordingDwgFiler read;
        size_t good = 0;
        for (const AcDbFiledItem& item : written.items()) {
            const Acad::ErrorStatus es = copyField(item, in, read);
            if (es == Acad::eOk) {
                ASSERT_EQ(good, read.items().size() - 1) << "a read succeeded after a failure";
                ++good;
            } else {
                EXPECT_EQ(es, Acad::eEndOfFile) << "prefix " << n << ", " << item.toString();
            }
        }
        ASSERT_LT(good, lines.size()) << "prefix " << n << " read as complete";
        EXPECT_EQ(in.filerStatus(), Acad::eEndOfFile);
        for (size_t k = 0; k < lines.size(); ++k)
            EXPECT_EQ(read.items()[k].toString(), k < good ? lines[k] : zeros[k])
                << "prefix " << n << ", field " << k;
    }
}

TEST(StreamFiler, WrongTagIsAFilerErrorAndStays) {
    AcDbStreamDwgFiler out;
    out.writeInt16(7);
    out.writeDouble(2.5);

    AcDbStreamDwgFiler in(out.bytes());
    Adesk::UInt16 u = 9;
    EXPECT_EQ(in.readUInt16(&u), Acad::eFilerError);
    EXPECT_EQ(u, 0);
    EXPECT_EQ(in.position(), 0u) << "a failed read consumes nothing";
    Adesk::Int16 i = 9;
    EXPECT_EQ(in.readInt16(&i), Acad::eFilerError) << "the error is sticky";
    EXPECT_EQ(i, 0);
    EXPECT_EQ(in.writeInt16(1), Acad::eFilerError);

    in.resetFilerStatus();
    EXPECT_EQ(in.readInt16(&i), Acad::eOk);
    EXPECT_EQ(i, 7);
    double d = 0;
    EXPECT_EQ(in.readDouble(&d), Acad::eOk);
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(in.readDouble(&d), Acad::eEndOfFile);
    EXPECT_EQ(d, 0.0);
}

TEST(StreamFiler, GarbageIsRejected) {
    struct Case {
        const char* what;
        Bytes bytes;
    };
    const Case cases[] = {
        {"tag zero", {0, 1}},
        {"tag past the last kind", {25, 1}},
        {"bool byte other than 0 or 1", {1, 2}},
    };
    for (const Case& c : cases) {
        AcDbStreamDwgFiler in(c.bytes.data(), c.bytes.size());
        bool b = true;
        EXPECT_EQ(in.readBool(&b), Acad::eFilerError) << c.what;
        EXPECT_FALSE(b) << c.what;
        EXPECT_EQ(in.position(), 0u) << c.what;
    }

    // A chunk longer than an ads_binary can describe, with all its bytes present.
    Bytes big = {18, 0x00, 0x80, 0, 0};
    big.resize(big.size() + 0x8000, 'x');
    AcDbStreamDwgFiler in(big);
    ads_binary chunk{3, nullptr};
    EXPECT_EQ(in.readBChunk(&chunk), Acad::eFilerError);
    EXPECT_EQ(chunk.clen, 0);
    EXPECT_EQ(chunk.buf, nullptr);

    // Bytes filed with one length do not read into a block of another.
    AcDbStreamDwgFiler out;
    const std::uint8_t block[4] = {1, 2, 3, 4};
    out.writeBytes(block, 4);
    AcDbStreamDwgFiler blocks(out.bytes());
    std::uint8_t small[3] = {7, 7, 7};
    EXPECT_EQ(blocks.readBytes(small, 3), Acad::eFilerError);
    EXPECT_EQ(small[0] | small[1] | small[2], 0);
}

TEST(StreamFiler, InvalidUtf8ReadsAsReplacementCharacters) {
    struct Case {
        std::string utf8;
        std::wstring text;
    };
    const Case cases[] = {
        {"a\xFF"
         "b",
         L"a\uFFFDb"},
        {"\xE4\xB8", L"\uFFFD"}, // 中 cut short
        {"\xE4\xB8"
         "x",
         L"\uFFFDx"},                                      // ... and followed by another character
        {"\xC0\x80", L"\uFFFD\uFFFD"},                     // overlong NUL
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past U+10FFFF
        {"\xF0\x9F\x98\x80", L"\U0001F600"},
    };
    for (const Case& c : cases) {
        Bytes bytes = {17, static_cast<std::uint8_t>(c.utf8.size()), 0, 0, 0};
        bytes.insert(bytes.end(), c.utf8.begin(), c.utf8.end());
        AcDbStreamDwgFiler in(bytes.data(), bytes.size());
        ACHAR* s = nullptr;
        EXPECT_EQ(in.readString(&s), Acad::eOk);
        EXPECT_EQ(std::wstring(s), c.text) << AcDbFilerDetail::quoted(c.text);
        acdbFree(s);
    }

    // Text that cannot be UTF-8 is filed as U+FFFD rather than as broken bytes; a surrogate
    // pair left over from UTF-16 is filed as the one character it stands for.
    const std::wstring odd = {L'x', static_cast<wchar_t>(0xD800), L'y',
                              static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
    AcDbStreamDwgFiler out;
    ASSERT_EQ(out.writeString(odd.c_str()), Acad::eOk);
    const std::string filed(out.bytes().begin(), out.bytes().end());
    EXPECT_NE(filed.find("x\xEF\xBF\xBDy\xF0\x9F\x98\x80"), std::string::npos);
}

namespace {

// Runs fn in a child process whose address space may grow by at most 256 MB; the child
// exits 0 when fn returns true. A reader that trusted a huge length would die trying.
bool withinSmallAddressSpace(bool (*fn)()) {
    long pages = 0;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld", &pages) != 1) pages = 0;
        std::fclose(statm);
    }
    const rlim_t now = static_cast<rlim_t>(pages) * 4096;
    const rlimit cap{now + (256u << 20), now + (256u << 20)};
    if (now == 0 || setrlimit(RLIMIT_AS, &cap) != 0) return false;
    return fn();
}

bool hugeLengthsFail() {
    bool ok = true;
    for (std::uint8_t tag : {std::uint8_t{17}, std::uint8_t{18}, std::uint8_t{19}}) {
        // A 100-byte stream whose length field claims 4,000,000,000 bytes.
        Bytes bytes(100, 'x');
        bytes[0] = tag;
        const Adesk::UInt32 claimed = 4000000000u;
        std::memcpy(&bytes[1], &claimed, 4);
        AcDbStreamDwgFiler in(bytes.data(), bytes.size());
        Acad::ErrorStatus es = Acad::eOk;
        if (tag == 17) {
            ACHAR* s = nullptr;
            es = in.readString(&s);
            ok = ok && s && *s == 0;
            acdbFree(s);
        } else if (tag == 18) {
            ads_binary chunk;
            es = in.readBChunk(&chunk);
            ok = ok && chunk.buf == nullptr;
        } else {
            std::uint8_t block[95];
            es = in.readBytes(block, sizeof block);
        }
        ok = ok && es != Acad::eOk && in.position() == 0;
    }
    return ok;
}

} // namespace

TEST(StreamFilerDeathTest, HugeLengthFieldsAllocateNothing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(withinSmallAddressSpace(hugeLengthsFail) ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

TEST(StreamFiler, BorrowedDataIsNotWrittenTo) {
    const Bytes bytes = {6, 1, 0};
    AcDbStreamDwgFiler in(bytes.data(), bytes.size());
    EXPECT_EQ(in.writeUInt16(5), Acad::eIsReading);
    EXPECT_EQ(in.filerStatus(), Acad::eIsReading);
    EXPECT_TRUE(in.bytes().empty());

    // A filer that writes its own bytes can read them back.
    AcDbStreamDwgFiler own;
    own.writeUInt16(5);
    own.rewind();
    Adesk::UInt16 v = 0;
    EXPECT_EQ(own.readUInt16(&v), Acad::eOk);
    EXPECT_EQ(v, 5);
    EXPECT_EQ(own.filerType(), AcDb::kFileFiler);
    own.setFilerType(AcDb::kCopyFiler);
    EXPECT_EQ(own.filerType(), AcDb::kCopyFiler);
}
