// The typed binary stream in which the drawing store files every object.
#include "dbfilers.h"
#include "winstr.h"

#include <bit>
#include <cstring>
#include <limits>

namespace {

constexpr size_t kLengthSize = 4;
// The largest chunk an ads_binary can describe.
constexpr size_t kMaxChunk = std::numeric_limits<short>::max();

Adesk::UInt64 loadLE(const std::uint8_t* p, size_t n) {
    Adesk::UInt64 v = 0;
    for (size_t i = n; i-- > 0;)
        v = (v << 8) | p[i];
    return v;
}

ACHAR* allocString(const std::wstring& s) {
    auto* out = static_cast<ACHAR*>(acdbAlloc((s.size() + 1) * sizeof(ACHAR)));
    if (out) std::wmemcpy(out, s.c_str(), s.size() + 1);
    return out;
}

} // namespace

// ---------------------------------------------------------------- construction

AcDbStreamDwgFiler::AcDbStreamDwgFiler(AcDbDatabase* db) : mDatabase(db) {}

AcDbStreamDwgFiler::AcDbStreamDwgFiler(const std::uint8_t* data, size_t size,
                                       HandleResolver resolve, AcDbDatabase* db)
    : mBorrowed(data), mBorrowedSize(data ? size : 0), mBorrowing(true),
      mResolve(std::move(resolve)), mDatabase(db) {}

AcDbStreamDwgFiler::AcDbStreamDwgFiler(std::vector<std::uint8_t> bytes, HandleResolver resolve,
                                       AcDbDatabase* db)
    : mOwned(std::move(bytes)), mResolve(std::move(resolve)), mDatabase(db) {}

size_t AcDbStreamDwgFiler::size() const {
    return mBorrowing ? mBorrowedSize : mOwned.size();
}

const std::uint8_t* AcDbStreamDwgFiler::data() const {
    return mBorrowing ? mBorrowed : mOwned.data();
}

Acad::ErrorStatus AcDbStreamDwgFiler::fail(Acad::ErrorStatus es) {
    mStatus = es;
    return es;
}

// ---------------------------------------------------------------- reading

Acad::ErrorStatus AcDbStreamDwgFiler::take(AcDbFilerKind kind, size_t fixed, bool counted,
                                           size_t limit, Item* item) {
    if (mStatus != Acad::eOk) return mStatus;
    const std::uint8_t* d = data();
    const size_t n = size();
    if (mPos >= n) return fail(Acad::eEndOfFile);
    if (d[mPos] != static_cast<std::uint8_t>(kind)) return fail(Acad::eFilerError);
    size_t at = mPos + 1;
    size_t length = fixed;
    if (counted) {
        if (n - at < kLengthSize) return fail(Acad::eEndOfFile);
        length = static_cast<size_t>(loadLE(d + at, kLengthSize));
        at += kLengthSize;
        if (length > limit) return fail(Acad::eFilerError);
    }
    // Checked before anyone allocates for the payload.
    if (n - at < length) return fail(Acad::eEndOfFile);
    item->body = d + at;
    item->length = length;
    mPos = at + length;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readUInt(AcDbFilerKind kind, size_t n, Adesk::UInt64* v) {
    *v = 0;
    Item item;
    const Acad::ErrorStatus es = take(kind, n, false, 0, &item);
    if (es == Acad::eOk) *v = loadLE(item.body, n);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readDoubles(AcDbFilerKind kind, double* out, size_t count) {
    for (size_t i = 0; i < count; ++i)
        out[i] = 0.0;
    Item item;
    const Acad::ErrorStatus es = take(kind, count * 8, false, 0, &item);
    if (es != Acad::eOk) return es;
    for (size_t i = 0; i < count; ++i)
        out[i] = std::bit_cast<double>(loadLE(item.body + 8 * i, 8));
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readTruth(AcDbFilerKind kind, bool* v) {
    Adesk::UInt64 raw = 0;
    const size_t start = mPos;
    Acad::ErrorStatus es = readUInt(kind, 1, &raw);
    if (es == Acad::eOk && raw > 1) {
        mPos = start;
        es = fail(Acad::eFilerError);
    }
    if (v) *v = es == Acad::eOk && raw == 1;
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readId(AcDbFilerKind kind, AcDbObjectId* id) {
    Adesk::UInt64 h = 0;
    const Acad::ErrorStatus es = readUInt(kind, 8, &h);
    AcDbObjectId out;
    if (es == Acad::eOk && h != 0 && mResolve) out = mResolve(AcDbHandle(h));
    if (id) *id = out;
    return es;
}

template <class T> Acad::ErrorStatus AcDbStreamDwgFiler::readInt(AcDbFilerKind kind, T* v) {
    Adesk::UInt64 raw = 0;
    const Acad::ErrorStatus es = readUInt(kind, sizeof(T), &raw);
    // Two's complement: the low bytes are the value, whatever its sign.
    if (v) *v = static_cast<T>(raw);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readHardOwnershipId(AcDbHardOwnershipId* id) {
    return readId(AcDbFilerKind::kHardOwnershipId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readSoftOwnershipId(AcDbSoftOwnershipId* id) {
    return readId(AcDbFilerKind::kSoftOwnershipId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readHardPointerId(AcDbHardPointerId* id) {
    return readId(AcDbFilerKind::kHardPointerId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readSoftPointerId(AcDbSoftPointerId* id) {
    return readId(AcDbFilerKind::kSoftPointerId, id);
}

Acad::ErrorStatus AcDbStreamDwgFiler::readString(ACHAR** s) {
    Item item;
    // Every UTF-8 byte gives at most one character, so the string is no longer than the data.
    Acad::ErrorStatus es =
        take(AcDbFilerKind::kString, 0, true, std::numeric_limits<size_t>::max(), &item);
    std::wstring text;
    if (es == Acad::eOk)
        text = qorFromUtf8(std::string_view(reinterpret_cast<const char*>(item.body), item.length));
    if (s) {
        *s = allocString(text);
        if (!*s) es = fail(Acad::eOutOfMemory);
    }
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readBChunk(ads_binary* chunk) {
    Item item;
    Acad::ErrorStatus es = take(AcDbFilerKind::kBChunk, 0, true, kMaxChunk, &item);
    if (!chunk) return es;
    chunk->clen = 0;
    chunk->buf = nullptr;
    if (es != Acad::eOk || item.length == 0) return es;
    chunk->buf = static_cast<char*>(acdbAlloc(item.length));
    if (!chunk->buf) return fail(Acad::eOutOfMemory);
    std::memcpy(chunk->buf, item.body, item.length);
    chunk->clen = static_cast<short>(item.length);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readAcDbHandle(AcDbHandle* h) {
    Adesk::UInt64 v = 0;
    const Acad::ErrorStatus es = readUInt(AcDbFilerKind::kHandle, 8, &v);
    if (h) *h = AcDbHandle(v);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readInt8(Adesk::Int8* v) {
    return readInt(AcDbFilerKind::kInt8, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readUInt8(Adesk::UInt8* v) {
    return readInt(AcDbFilerKind::kUInt8, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readInt16(Adesk::Int16* v) {
    return readInt(AcDbFilerKind::kInt16, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readUInt16(Adesk::UInt16* v) {
    return readInt(AcDbFilerKind::kUInt16, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readInt32(Adesk::Int32* v) {
    return readInt(AcDbFilerKind::kInt32, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readUInt32(Adesk::UInt32* v) {
    return readInt(AcDbFilerKind::kUInt32, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readInt64(Adesk::Int64* v) {
    return readInt(AcDbFilerKind::kInt64, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readUInt64(Adesk::UInt64* v) {
    return readInt(AcDbFilerKind::kUInt64, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readBoolean(Adesk::Boolean* v) {
    return readTruth(AcDbFilerKind::kBoolean, v);
}
Acad::ErrorStatus AcDbStreamDwgFiler::readBool(bool* v) {
    return readTruth(AcDbFilerKind::kBool, v);
}

Acad::ErrorStatus AcDbStreamDwgFiler::readDouble(double* v) {
    double d = 0.0;
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kDouble, &d, 1);
    if (v) *v = d;
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readPoint2d(AcGePoint2d* v) {
    double d[2];
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kPoint2d, d, 2);
    if (v) v->set(d[0], d[1]);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readPoint3d(AcGePoint3d* v) {
    double d[3];
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kPoint3d, d, 3);
    if (v) v->set(d[0], d[1], d[2]);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readVector2d(AcGeVector2d* v) {
    double d[2];
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kVector2d, d, 2);
    if (v) v->set(d[0], d[1]);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readVector3d(AcGeVector3d* v) {
    double d[3];
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kVector3d, d, 3);
    if (v) v->set(d[0], d[1], d[2]);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readScale3d(AcGeScale3d* v) {
    double d[3];
    const Acad::ErrorStatus es = readDoubles(AcDbFilerKind::kScale3d, d, 3);
    if (v) *v = AcGeScale3d(d[0], d[1], d[2]);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::readBytes(void* buf, Adesk::UIntPtr n) {
    if (buf && n) std::memset(buf, 0, n);
    Item item;
    const size_t start = mPos;
    Acad::ErrorStatus es = take(AcDbFilerKind::kBytes, 0, true, n, &item);
    if (es != Acad::eOk) return es;
    if (item.length != n) {
        mPos = start;
        return fail(Acad::eFilerError);
    }
    if (buf && n) std::memcpy(buf, item.body, n);
    return es;
}

// ---------------------------------------------------------------- writing

Acad::ErrorStatus AcDbStreamDwgFiler::begin(AcDbFilerKind kind) {
    if (mStatus != Acad::eOk) return mStatus;
    // Borrowed data is someone else's; appending to it is never meant.
    if (mBorrowing) return fail(Acad::eIsReading);
    mOwned.push_back(static_cast<std::uint8_t>(kind));
    return Acad::eOk;
}

void AcDbStreamDwgFiler::putUInt(Adesk::UInt64 v, size_t n) {
    for (size_t i = 0; i < n; ++i, v >>= 8)
        mOwned.push_back(static_cast<std::uint8_t>(v & 0xFF));
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeUInt(AcDbFilerKind kind, Adesk::UInt64 v, size_t n) {
    const Acad::ErrorStatus es = begin(kind);
    if (es == Acad::eOk) putUInt(v, n);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeDoubles(AcDbFilerKind kind, const double* v,
                                                   size_t count) {
    const Acad::ErrorStatus es = begin(kind);
    if (es != Acad::eOk) return es;
    for (size_t i = 0; i < count; ++i)
        putUInt(std::bit_cast<Adesk::UInt64>(v[i]), 8);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeCounted(AcDbFilerKind kind, const void* p, size_t n) {
    if (mStatus == Acad::eOk && n > std::numeric_limits<Adesk::UInt32>::max())
        return fail(Acad::eInvalidInput);
    const Acad::ErrorStatus es = begin(kind);
    if (es != Acad::eOk) return es;
    putUInt(n, kLengthSize);
    const auto* b = static_cast<const std::uint8_t*>(p);
    if (n) mOwned.insert(mOwned.end(), b, b + n);
    return es;
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeId(AcDbFilerKind kind, const AcDbObjectId& id) {
    return writeUInt(kind, id.isNull() ? 0 : id.handle().value(), 8);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeHardOwnershipId(const AcDbHardOwnershipId& id) {
    return writeId(AcDbFilerKind::kHardOwnershipId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeSoftOwnershipId(const AcDbSoftOwnershipId& id) {
    return writeId(AcDbFilerKind::kSoftOwnershipId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeHardPointerId(const AcDbHardPointerId& id) {
    return writeId(AcDbFilerKind::kHardPointerId, id);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeSoftPointerId(const AcDbSoftPointerId& id) {
    return writeId(AcDbFilerKind::kSoftPointerId, id);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeString(const ACHAR* s) {
    const std::string utf8 = qorToUtf8(s);
    return writeCounted(AcDbFilerKind::kString, utf8.data(), utf8.size());
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeBChunk(const ads_binary& chunk) {
    const size_t n = chunk.buf && chunk.clen > 0 ? static_cast<size_t>(chunk.clen) : 0;
    return writeCounted(AcDbFilerKind::kBChunk, chunk.buf, n);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeAcDbHandle(const AcDbHandle& h) {
    return writeUInt(AcDbFilerKind::kHandle, h.value(), 8);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeInt8(Adesk::Int8 v) {
    return writeUInt(AcDbFilerKind::kInt8, static_cast<Adesk::UInt8>(v), 1);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeUInt8(Adesk::UInt8 v) {
    return writeUInt(AcDbFilerKind::kUInt8, v, 1);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeInt16(Adesk::Int16 v) {
    return writeUInt(AcDbFilerKind::kInt16, static_cast<Adesk::UInt16>(v), 2);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeUInt16(Adesk::UInt16 v) {
    return writeUInt(AcDbFilerKind::kUInt16, v, 2);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeInt32(Adesk::Int32 v) {
    return writeUInt(AcDbFilerKind::kInt32, static_cast<Adesk::UInt32>(v), 4);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeUInt32(Adesk::UInt32 v) {
    return writeUInt(AcDbFilerKind::kUInt32, v, 4);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeInt64(Adesk::Int64 v) {
    return writeUInt(AcDbFilerKind::kInt64, static_cast<Adesk::UInt64>(v), 8);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeUInt64(Adesk::UInt64 v) {
    return writeUInt(AcDbFilerKind::kUInt64, v, 8);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeBoolean(Adesk::Boolean v) {
    return writeUInt(AcDbFilerKind::kBoolean, v ? 1 : 0, 1);
}
Acad::ErrorStatus AcDbStreamDwgFiler::writeBool(bool v) {
    return writeUInt(AcDbFilerKind::kBool, v ? 1 : 0, 1);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeDouble(double v) {
    return writeDoubles(AcDbFilerKind::kDouble, &v, 1);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writePoint2d(const AcGePoint2d& v) {
    const double d[2] = {v.x, v.y};
    return writeDoubles(AcDbFilerKind::kPoint2d, d, 2);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writePoint3d(const AcGePoint3d& v) {
    const double d[3] = {v.x, v.y, v.z};
    return writeDoubles(AcDbFilerKind::kPoint3d, d, 3);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeVector2d(const AcGeVector2d& v) {
    const double d[2] = {v.x, v.y};
    return writeDoubles(AcDbFilerKind::kVector2d, d, 2);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeVector3d(const AcGeVector3d& v) {
    const double d[3] = {v.x, v.y, v.z};
    return writeDoubles(AcDbFilerKind::kVector3d, d, 3);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeScale3d(const AcGeScale3d& v) {
    const double d[3] = {v.sx, v.sy, v.sz};
    return writeDoubles(AcDbFilerKind::kScale3d, d, 3);
}

Acad::ErrorStatus AcDbStreamDwgFiler::writeBytes(const void* buf, Adesk::UIntPtr n) {
    if (mStatus != Acad::eOk) return mStatus;
    if (!buf && n) return fail(Acad::eInvalidInput);
    return writeCounted(AcDbFilerKind::kBytes, buf, n);
}
