// Writing DXF groups as text.
#include "io/dxfoutfiler.h"

#include "dbmain.h"
#include "io/dxfgroups.h"
#include "io/dxftext.h"

#include <charconv>
#include <cmath>

namespace qor::dxf {

namespace {

constexpr double kPi = 3.14159265358979323846;

} // namespace

bool isAngleCode(int code) {
    return code >= 50 && code <= 58;
}

// ---------------------------------------------------------------- plain groups

void OutFiler::code(int c) {
    switch (mEntity) {
    case EntityState::kAfterLayer:
        // The entity's own linetype group wins over the one added for it.
        mEntity = EntityState::kNone;
        if (c != AcDb::kDxfLinetypeName && !mLinetype.empty()) {
            code(AcDb::kDxfLinetypeName);
            encodeText(mLinetype, mOut);
            mOut += '\n';
        }
        break;
    case EntityState::kAfterMarker:
        if (c == AcDb::kDxfLayerName) mEntity = EntityState::kAfterLayer;
        break;
    default:
        break;
    }
    char buf[16];
    if (c >= 0 && c < 10) {
        mOut += "  ";
        mOut += static_cast<char>('0' + c);
    } else if (c >= 10 && c < 100) {
        mOut += ' ';
        const auto r = std::to_chars(buf, buf + sizeof buf, c);
        mOut.append(buf, r.ptr);
    } else {
        const auto r = std::to_chars(buf, buf + sizeof buf, c);
        mOut.append(buf, r.ptr);
    }
    mOut += '\n';
}

void OutFiler::number(double v) {
    // No other program reads "nan" or "inf" back.
    if (!std::isfinite(v)) v = 0.0;
    char buf[40];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    const std::string_view s(buf, static_cast<size_t>(r.ptr - buf));
    mOut += s;
    // Some readers take a real only when it looks like one.
    if (s.find_first_of(".e") == std::string_view::npos) mOut += ".0";
    mOut += '\n';
}

void OutFiler::ascii(int c, std::string_view value) {
    code(c);
    mOut += value;
    mOut += '\n';
}

void OutFiler::text(int c, std::wstring_view value) {
    code(c);
    encodeText(value, mOut);
    mOut += '\n';
}

void OutFiler::integer(int c, long long v) {
    code(c);
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    mOut.append(buf, r.ptr);
    mOut += '\n';
}

void OutFiler::real(int c, double v) {
    code(c);
    number(isAngleCode(c) ? v * 180.0 / kPi : v);
}

void OutFiler::handle(int c, std::uint64_t h) {
    code(c);
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, h, 16);
    for (char* p = buf; p != r.ptr; ++p)
        if (*p >= 'a' && *p <= 'f') *p = static_cast<char>(*p - 'a' + 'A');
    mOut.append(buf, r.ptr);
    mOut += '\n';
}

void OutFiler::point(int c, double x, double y, double z) {
    real(c, x);
    real(c + 10, y);
    real(c + 20, z);
}

void OutFiler::point(int c, double x, double y) {
    real(c, x);
    real(c + 10, y);
}

void OutFiler::beginEntity(bool paperSpace, std::wstring linetype, std::wstring layer) {
    mEntity = EntityState::kBeforeMarker;
    mPaperSpace = paperSpace;
    mLinetype = std::move(linetype);
    mLayer = std::move(layer);
}

void OutFiler::endEntity() {
    if (mEntity == EntityState::kAfterLayer && !mLinetype.empty()) {
        mEntity = EntityState::kNone;
        text(AcDb::kDxfLinetypeName, mLinetype);
    }
    mEntity = EntityState::kNone;
}

// ---------------------------------------------------------------- AcDbDxfFiler

Acad::ErrorStatus OutFiler::readItem(resbuf*) {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus OutFiler::writeItem(const resbuf& rb) {
    if (mStatus != Acad::eOk) return mStatus;
    const ads_u_val& v = rb.resval;
    switch (acdbGroupCodeToType(rb.restype)) {
    case RTREAL:
    case RTANG:
        real(rb.restype, v.rreal);
        break;
    case RTPOINT:
    case RT3DPOINT:
        if (isPointStart(rb.restype))
            point(rb.restype, v.rpoint[0], v.rpoint[1], v.rpoint[2]);
        else
            real(rb.restype, v.rreal); // 38 and 39 are single reals
        break;
    case RTSHORT:
        integer(rb.restype, v.rint);
        break;
    case RTLONG:
        integer(rb.restype, v.rlong);
        break;
    case RTINT64:
        integer(rb.restype, v.mnInt64);
        break;
    case RTSTR:
        text(rb.restype, v.rstring ? v.rstring : L"");
        break;
    case RTENAME: {
        AcDbObjectId id;
        acdbGetObjectId(id, v.rlname);
        return writeObjectId(static_cast<AcDb::DxfCode>(rb.restype), id);
    }
    case RTRESBUF:
        return writeBChunk(static_cast<AcDb::DxfCode>(rb.restype), v.rbinary);
    default:
        return mStatus = Acad::eInvalidResBuf;
    }
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeObjectId(AcDb::DxfCode c, const AcDbObjectId& id) {
    if (mStatus != Acad::eOk) return mStatus;
    handle(c, id.isNull() ? 0 : id.handle().value());
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeString(AcDb::DxfCode c, const ACHAR* s) {
    if (mStatus != Acad::eOk) return mStatus;
    const std::wstring_view value = s ? std::wstring_view(s) : std::wstring_view();
    if (mEntity == EntityState::kBeforeMarker && c == AcDb::kDxfSubclass &&
        value == L"AcDbEntity") {
        text(c, value);
        mEntity = EntityState::kAfterMarker;
        if (mPaperSpace) integer(67, 1);
        return mStatus;
    }
    if (mEntity == EntityState::kAfterMarker && c == AcDb::kDxfLayerName && !mLayer.empty()) {
        text(c, mLayer);
        return mStatus;
    }
    text(c, value);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeBool(AcDb::DxfCode c, bool v) {
    if (mStatus == Acad::eOk) integer(c, v ? 1 : 0);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeInt8(AcDb::DxfCode c, Adesk::Int8 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeInt16(AcDb::DxfCode c, Adesk::Int16 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeInt32(AcDb::DxfCode c, Adesk::Int32 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeUInt8(AcDb::DxfCode c, Adesk::UInt8 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeUInt16(AcDb::DxfCode c, Adesk::UInt16 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeUInt32(AcDb::DxfCode c, Adesk::UInt32 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}
Acad::ErrorStatus OutFiler::writeInt64(AcDb::DxfCode c, Adesk::Int64 v) {
    if (mStatus == Acad::eOk) integer(c, v);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeHandle(AcDb::DxfCode c, const AcDbHandle& h) {
    if (mStatus == Acad::eOk) handle(c, h.value());
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeDouble(AcDb::DxfCode c, double v, int) {
    if (mStatus == Acad::eOk) real(c, v);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeAngle(AcDb::DxfCode c, double v, int) {
    if (mStatus == Acad::eOk) real(c, v);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writePoint2d(AcDb::DxfCode c, const AcGePoint2d& p, int) {
    if (mStatus == Acad::eOk) point(c, p.x, p.y);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writePoint3d(AcDb::DxfCode c, const AcGePoint3d& p, int) {
    if (mStatus == Acad::eOk) point(c, p.x, p.y, p.z);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeVector2d(AcDb::DxfCode c, const AcGeVector2d& v, int) {
    if (mStatus == Acad::eOk) point(c, v.x, v.y);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeVector3d(AcDb::DxfCode c, const AcGeVector3d& v, int) {
    if (mStatus == Acad::eOk) point(c, v.x, v.y, v.z);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeScale3d(AcDb::DxfCode c, const AcGeScale3d& v, int) {
    if (mStatus == Acad::eOk) point(c, v.sx, v.sy, v.sz);
    return mStatus;
}

Acad::ErrorStatus OutFiler::writeBChunk(AcDb::DxfCode c, const ads_binary& chunk) {
    if (mStatus != Acad::eOk) return mStatus;
    static const char digits[] = "0123456789ABCDEF";
    const auto* bytes = reinterpret_cast<const unsigned char*>(chunk.buf);
    const size_t n = chunk.buf && chunk.clen > 0 ? static_cast<size_t>(chunk.clen) : 0;
    // A value line holds at most 127 bytes; longer chunks continue in further groups.
    constexpr size_t kPerLine = 127;
    size_t i = 0;
    do {
        code(c);
        for (size_t k = 0; k < kPerLine && i < n; ++k, ++i) {
            mOut += digits[bytes[i] >> 4];
            mOut += digits[bytes[i] & 0xF];
        }
        mOut += '\n';
    } while (i < n);
    return mStatus;
}

} // namespace qor::dxf
