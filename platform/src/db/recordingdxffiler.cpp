// The recording DXF filer: the groups an object writes, replayed to its reader.
#include "dbfilers.h"
#include "winstr.h"
#include "dbmain.h"

#include <cstring>
#include <cwchar>
#include <limits>

namespace {

// A group of a result buffer, held by the storage kind of its code.
AcDbDxfItem itemFrom(const resbuf& rb) {
    AcDbDxfItem item(rb.restype);
    const ads_u_val& v = rb.resval;
    switch (acdbGroupCodeToType(rb.restype)) {
    case RTREAL:
    case RTANG:
        item.value = v.rreal;
        break;
    case RTPOINT:
    case RT3DPOINT:
        item.value = AcGePoint3d(v.rpoint[0], v.rpoint[1], v.rpoint[2]);
        break;
    case RTSHORT:
        item.value = Adesk::Int64{v.rint};
        break;
    case RTLONG:
        item.value = Adesk::Int64{v.rlong};
        break;
    case RTINT64:
        item.value = Adesk::Int64{v.mnInt64};
        break;
    case RTSTR:
        item.value = std::wstring(v.rstring ? v.rstring : L"");
        break;
    case RTENAME: {
        AcDbObjectId id;
        acdbGetObjectId(id, v.rlname);
        item.value = id;
        break;
    }
    case RTRESBUF: // binary chunks
        if (v.rbinary.buf && v.rbinary.clen > 0)
            item.value = std::vector<std::uint8_t>(v.rbinary.buf, v.rbinary.buf + v.rbinary.clen);
        else
            item.value = std::vector<std::uint8_t>();
        break;
    default:
        break;
    }
    return item;
}

bool inRange(Adesk::Int64 v, Adesk::Int64 lo, Adesk::Int64 hi) {
    return v >= lo && v <= hi;
}

} // namespace

std::string AcDbDxfItem::toString() const {
    using namespace AcDbFilerDetail;
    std::string text = std::to_string(code);
    if (const auto* d = std::get_if<double>(&value)) {
        text += " " + formatDouble(*d);
    } else if (const auto* p = std::get_if<AcGePoint3d>(&value)) {
        text += " " + formatDouble(p->x) + "," + formatDouble(p->y) + "," + formatDouble(p->z);
    } else if (const auto* i = std::get_if<Adesk::Int64>(&value)) {
        text += " " + std::to_string(*i);
    } else if (const auto* s = std::get_if<std::wstring>(&value)) {
        text += " " + quoted(*s);
    } else if (const auto* b = std::get_if<std::vector<std::uint8_t>>(&value)) {
        static const char digits[] = "0123456789abcdef";
        text += " <";
        for (std::uint8_t byte : *b) {
            text += digits[byte >> 4];
            text += digits[byte & 0xF];
        }
        text += ">";
    } else if (const auto* id = std::get_if<AcDbObjectId>(&value)) {
        text += " " + (id->isNull() ? std::string("0") : hex(id->handle().value()));
    }
    return text;
}

// ---------------------------------------------------------------- construction

AcDbRecordingDxfFiler::AcDbRecordingDxfFiler(AcDb::FilerType type, AcDbDatabase* db)
    : mDatabase(db), mType(type) {}

AcDbRecordingDxfFiler::AcDbRecordingDxfFiler(std::vector<AcDbDxfItem> items, AcDb::FilerType type,
                                             AcDbDatabase* db)
    : mItems(std::move(items)), mDatabase(db), mType(type) {}

AcDbRecordingDxfFiler::AcDbRecordingDxfFiler(const resbuf* chain, AcDb::FilerType type,
                                             AcDbDatabase* db)
    : mDatabase(db), mType(type) {
    for (const resbuf* rb = chain; rb; rb = rb->rbnext)
        mItems.push_back(itemFrom(*rb));
}

std::string AcDbRecordingDxfFiler::dump() const {
    std::string out;
    for (const AcDbDxfItem& item : mItems)
        out += item.toString() + "\n";
    return out;
}

void AcDbRecordingDxfFiler::rewind() {
    mPos = 0;
    mCanPushBack = false;
}

Acad::ErrorStatus AcDbRecordingDxfFiler::fail(Acad::ErrorStatus es) {
    mStatus = es;
    mCanPushBack = false;
    return es;
}

// ---------------------------------------------------------------- reading

Acad::ErrorStatus AcDbRecordingDxfFiler::readItem(resbuf* rb) {
    if (!rb) return Acad::eInvalidInput;
    rb->rbnext = nullptr;
    rb->restype = RTNONE;
    std::memset(static_cast<void*>(&rb->resval), 0, sizeof rb->resval);
    if (mStatus != Acad::eOk) return mStatus;
    if (mPos >= mItems.size()) return fail(Acad::eEndOfFile);

    const AcDbDxfItem& item = mItems[mPos];
    ads_u_val& v = rb->resval;
    const auto* real = std::get_if<double>(&item.value);
    const auto* point = std::get_if<AcGePoint3d>(&item.value);
    const auto* integer = std::get_if<Adesk::Int64>(&item.value);
    const auto* text = std::get_if<std::wstring>(&item.value);
    const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&item.value);
    const auto* id = std::get_if<AcDbObjectId>(&item.value);
    bool fits = false;
    switch (acdbGroupCodeToType(item.code)) {
    case RTREAL:
    case RTANG:
        // Integers written under a real code read back as reals, as they would from a file.
        fits = real || integer;
        v.rreal = real ? *real : integer ? static_cast<double>(*integer) : 0.0;
        break;
    case RTPOINT:
    case RT3DPOINT:
        if ((fits = point != nullptr)) {
            v.rpoint[0] = point->x;
            v.rpoint[1] = point->y;
            v.rpoint[2] = point->z;
        }
        break;
    case RTSHORT:
        // Unsigned 16-bit values (flags) keep their bits.
        if ((fits = integer && inRange(*integer, std::numeric_limits<short>::min(),
                                       std::numeric_limits<unsigned short>::max())))
            v.rint = static_cast<short>(*integer);
        break;
    case RTLONG:
        if ((fits = integer && inRange(*integer, std::numeric_limits<Adesk::Int32>::min(),
                                       std::numeric_limits<Adesk::UInt32>::max())))
            v.rlong = static_cast<Adesk::Int32>(*integer);
        break;
    case RTINT64:
        if ((fits = integer != nullptr)) v.mnInt64 = *integer;
        break;
    case RTSTR:
        if ((fits = text != nullptr)) {
            mText = *text;
            v.rstring = mText.data();
        }
        break;
    case RTENAME:
        if ((fits = id != nullptr)) acdbGetAdsName(v.rlname, *id);
        break;
    case RTRESBUF: // binary chunks
        if ((fits = bytes &&
                    bytes->size() <= static_cast<size_t>(std::numeric_limits<short>::max()))) {
            mChunk.assign(bytes->begin(), bytes->end());
            v.rbinary.clen = static_cast<short>(mChunk.size());
            v.rbinary.buf = mChunk.empty() ? nullptr : mChunk.data();
        }
        break;
    default: // codes without a value
        fits = std::holds_alternative<std::monostate>(item.value);
        break;
    }
    if (!fits) {
        std::memset(static_cast<void*>(&rb->resval), 0, sizeof rb->resval);
        return fail(Acad::eInvalidResBuf);
    }
    rb->restype = static_cast<short>(item.code);
    ++mPos;
    mCanPushBack = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRecordingDxfFiler::pushBackItem() {
    if (!mCanPushBack || mPos == 0) return Acad::eInvalidInput;
    --mPos;
    mCanPushBack = false;
    return Acad::eOk;
}

bool AcDbRecordingDxfFiler::atSubclassData(const ACHAR* subClassName) {
    if (mStatus != Acad::eOk || !subClassName || mPos >= mItems.size()) return false;
    const AcDbDxfItem& item = mItems[mPos];
    const auto* name = std::get_if<std::wstring>(&item.value);
    if (item.code != AcDb::kDxfSubclass || !name || *name != subClassName) return false;
    // Consuming the marker counts as reading it, so it can be pushed back.
    ++mPos;
    mCanPushBack = true;
    return true;
}

bool AcDbRecordingDxfFiler::atExtendedData() {
    return mPos < mItems.size() && mItems[mPos].code >= AcDb::kDxfXdAsciiString;
}

// ---------------------------------------------------------------- writing

Acad::ErrorStatus AcDbRecordingDxfFiler::add(AcDbDxfItem item) {
    if (mStatus != Acad::eOk) return mStatus;
    mItems.push_back(std::move(item));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeItem(const resbuf& item) {
    return add(itemFrom(item));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeObjectId(AcDb::DxfCode code, const AcDbObjectId& id) {
    // Handle-string codes (5, 105, 320-329, 1005) take the id's handle as text.
    if (acdbGroupCodeToType(code) == RTSTR)
        return add(AcDbDxfItem(code, std::wstring(qorFromUtf8(AcDbFilerDetail::hex(
                                         id.isNull() ? 0 : id.handle().value())))));
    return add(AcDbDxfItem(code, id));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeString(AcDb::DxfCode code, const ACHAR* s) {
    return add(AcDbDxfItem(code, s));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeBool(AcDb::DxfCode code, bool v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v ? 1 : 0}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeInt8(AcDb::DxfCode code, Adesk::Int8 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeInt16(AcDb::DxfCode code, Adesk::Int16 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeInt32(AcDb::DxfCode code, Adesk::Int32 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeUInt8(AcDb::DxfCode code, Adesk::UInt8 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeUInt16(AcDb::DxfCode code, Adesk::UInt16 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeUInt32(AcDb::DxfCode code, Adesk::UInt32 v) {
    return add(AcDbDxfItem(code, Adesk::Int64{v}));
}
Acad::ErrorStatus AcDbRecordingDxfFiler::writeInt64(AcDb::DxfCode code, Adesk::Int64 v) {
    return add(AcDbDxfItem(code, v));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeHandle(AcDb::DxfCode code, const AcDbHandle& h) {
    return add(AcDbDxfItem(code, qorFromUtf8(AcDbFilerDetail::hex(h.value()))));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeDouble(AcDb::DxfCode code, double v, int) {
    return add(AcDbDxfItem(code, v));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeAngle(AcDb::DxfCode code, double v, int) {
    const Acad::ErrorStatus es = add(AcDbDxfItem(code, v));
    if (es == Acad::eOk) mItems.back().angle = true;
    return es;
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writePoint2d(AcDb::DxfCode code, const AcGePoint2d& p,
                                                      int) {
    return add(AcDbDxfItem(code, AcGePoint3d(p.x, p.y, 0.0)));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writePoint3d(AcDb::DxfCode code, const AcGePoint3d& p,
                                                      int) {
    return add(AcDbDxfItem(code, p));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeVector2d(AcDb::DxfCode code, const AcGeVector2d& v,
                                                       int) {
    return add(AcDbDxfItem(code, AcGePoint3d(v.x, v.y, 0.0)));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeVector3d(AcDb::DxfCode code, const AcGeVector3d& v,
                                                       int) {
    return add(AcDbDxfItem(code, AcGePoint3d(v.x, v.y, v.z)));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeScale3d(AcDb::DxfCode code, const AcGeScale3d& v,
                                                      int) {
    return add(AcDbDxfItem(code, AcGePoint3d(v.sx, v.sy, v.sz)));
}

Acad::ErrorStatus AcDbRecordingDxfFiler::writeBChunk(AcDb::DxfCode code, const ads_binary& chunk) {
    std::vector<std::uint8_t> bytes;
    if (chunk.buf && chunk.clen > 0) bytes.assign(chunk.buf, chunk.buf + chunk.clen);
    return add(AcDbDxfItem(code, std::move(bytes)));
}
