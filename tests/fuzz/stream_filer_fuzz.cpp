// Feeds arbitrary bytes to the typed stream reader. The first bytes choose the sequence of
// primitive kinds to read; the rest is the stream. Any status is fine; reading out of
// bounds, leaking or allocating past the data is not.
#include "dbfilers.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr int kKinds = static_cast<int>(AcDbFilerKind::kSoftPointerId);

AcDbObjectId anyId(AcDbHandle) {
    return AcDbObjectId();
}

void readOne(AcDbStreamDwgFiler& in, int kind, std::uint8_t extra) {
    switch (static_cast<AcDbFilerKind>(kind)) {
    case AcDbFilerKind::kBool: {
        bool v;
        in.readBool(&v);
        break;
    }
    case AcDbFilerKind::kBoolean: {
        Adesk::Boolean v;
        in.readBoolean(&v);
        break;
    }
    case AcDbFilerKind::kInt8: {
        Adesk::Int8 v;
        in.readInt8(&v);
        break;
    }
    case AcDbFilerKind::kUInt8: {
        Adesk::UInt8 v;
        in.readUInt8(&v);
        break;
    }
    case AcDbFilerKind::kInt16: {
        Adesk::Int16 v;
        in.readInt16(&v);
        break;
    }
    case AcDbFilerKind::kUInt16: {
        Adesk::UInt16 v;
        in.readUInt16(&v);
        break;
    }
    case AcDbFilerKind::kInt32: {
        Adesk::Int32 v;
        in.readInt32(&v);
        break;
    }
    case AcDbFilerKind::kUInt32: {
        Adesk::UInt32 v;
        in.readUInt32(&v);
        break;
    }
    case AcDbFilerKind::kInt64: {
        Adesk::Int64 v;
        in.readInt64(&v);
        break;
    }
    case AcDbFilerKind::kUInt64: {
        Adesk::UInt64 v;
        in.readUInt64(&v);
        break;
    }
    case AcDbFilerKind::kDouble: {
        double v;
        in.readDouble(&v);
        break;
    }
    case AcDbFilerKind::kPoint2d: {
        AcGePoint2d v;
        in.readPoint2d(&v);
        break;
    }
    case AcDbFilerKind::kPoint3d: {
        AcGePoint3d v;
        in.readPoint3d(&v);
        break;
    }
    case AcDbFilerKind::kVector2d: {
        AcGeVector2d v;
        in.readVector2d(&v);
        break;
    }
    case AcDbFilerKind::kVector3d: {
        AcGeVector3d v;
        in.readVector3d(&v);
        break;
    }
    case AcDbFilerKind::kScale3d: {
        AcGeScale3d v;
        in.readScale3d(&v);
        break;
    }
    case AcDbFilerKind::kString: {
        ACHAR* s = nullptr;
        in.readString(&s);
        acdbFree(s);
        break;
    }
    case AcDbFilerKind::kBChunk: {
        ads_binary chunk;
        in.readBChunk(&chunk);
        acdbFree(chunk.buf);
        break;
    }
    case AcDbFilerKind::kBytes: {
        std::vector<std::uint8_t> buf(extra);
        in.readBytes(buf.data(), buf.size());
        break;
    }
    case AcDbFilerKind::kHandle: {
        AcDbHandle h;
        in.readAcDbHandle(&h);
        break;
    }
    case AcDbFilerKind::kHardOwnershipId: {
        AcDbHardOwnershipId id;
        in.readHardOwnershipId(&id);
        break;
    }
    case AcDbFilerKind::kSoftOwnershipId: {
        AcDbSoftOwnershipId id;
        in.readSoftOwnershipId(&id);
        break;
    }
    case AcDbFilerKind::kHardPointerId: {
        AcDbHardPointerId id;
        in.readHardPointerId(&id);
        break;
    }
    case AcDbFilerKind::kSoftPointerId: {
        AcDbSoftPointerId id;
        in.readSoftPointerId(&id);
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    if (size < 1) return 0;
    // First byte: how many kind bytes follow (up to 32); then the kinds; then the stream.
    const size_t count = data[0] % 33;
    if (size < 1 + count) return 0;
    const std::uint8_t* kinds = data + 1;
    const std::uint8_t* stream = data + 1 + count;
    const size_t streamSize = size - 1 - count;

    // A heap copy of exactly the stream's size, so any over-read is caught.
    std::vector<std::uint8_t> bytes(stream, stream + streamSize);
    AcDbStreamDwgFiler in(bytes.data(), bytes.size(), anyId);
    for (size_t i = 0; i < count; ++i) {
        readOne(in, 1 + kinds[i] % kKinds, kinds[i]);
        // Half the time, carry on past an error as a lenient caller would.
        if (in.filerStatus() != Acad::eOk && (kinds[i] & 0x80)) in.resetFilerStatus();
    }
    return 0;
}
