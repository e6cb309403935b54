// The recording DWG filer: every primitive kept as a typed item, for layout tests and replay.
#include "dbfilers.h"
#include "winstr.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

template <class... F> struct Overloaded : F... { using F::operator()...; };
template <class... F> Overloaded(F...) -> Overloaded<F...>;

std::string hexBytes(const std::vector<std::uint8_t>& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string out = "<";
    for (std::uint8_t b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 0xF];
    }
    return out + ">";
}

std::string coords(std::initializer_list<double> values) {
    std::string out;
    for (double v : values) {
        if (!out.empty()) out += ',';
        out += AcDbFilerDetail::formatDouble(v);
    }
    return out;
}

ACHAR* allocString(const std::wstring& s) {
    auto* out = static_cast<ACHAR*>(acdbAlloc((s.size() + 1) * sizeof(ACHAR)));
    if (out) std::wmemcpy(out, s.c_str(), s.size() + 1);
    return out;
}

} // namespace

// ---------------------------------------------------------------- text helpers

namespace AcDbFilerDetail {

std::string formatDouble(double v) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string quoted(std::wstring_view s) {
    std::string out = "\"";
    for (char c : qorToUtf8(std::wstring(s))) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (u < 0x20 || u == 0x7F) {
            static const char digits[] = "0123456789abcdef";
            out += "\\x";
            out += digits[u >> 4];
            out += digits[u & 0xF];
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string hex(Adesk::UInt64 v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v, 16);
    std::string out(buf, r.ptr);
    for (char& c : out)
        if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

} // namespace AcDbFilerDetail

const char* acdbFilerKindName(AcDbFilerKind kind) {
    switch (kind) {
    case AcDbFilerKind::kBool:
        return "Bool";
    case AcDbFilerKind::kBoolean:
        return "Boolean";
    case AcDbFilerKind::kInt8:
        return "Int8";
    case AcDbFilerKind::kUInt8:
        return "UInt8";
    case AcDbFilerKind::kInt16:
        return "Int16";
    case AcDbFilerKind::kUInt16:
        return "UInt16";
    case AcDbFilerKind::kInt32:
        return "Int32";
    case AcDbFilerKind::kUInt32:
        return "UInt32";
    case AcDbFilerKind::kInt64:
        return "Int64";
    case AcDbFilerKind::kUInt64:
        return "UInt64";
    case AcDbFilerKind::kDouble:
        return "Double";
    case AcDbFilerKind::kPoint2d:
        return "Point2d";
    case AcDbFilerKind::kPoint3d:
        return "Point3d";
    case AcDbFilerKind::kVector2d:
        return "Vector2d";
    case AcDbFilerKind::kVector3d:
        return "Vector3d";
    case AcDbFilerKind::kScale3d:
        return "Scale3d";
    case AcDbFilerKind::kString:
        return "String";
    case AcDbFilerKind::kBChunk:
        return "BChunk";
    case AcDbFilerKind::kBytes:
        return "Bytes";
    case AcDbFilerKind::kHandle:
        return "Handle";
    case AcDbFilerKind::kHardOwnershipId:
        return "HardOwnershipId";
    case AcDbFilerKind::kSoftOwnershipId:
        return "SoftOwnershipId";
    case AcDbFilerKind::kHardPointerId:
        return "HardPointerId";
    case AcDbFilerKind::kSoftPointerId:
        return "SoftPointerId";
    }
    return "?";
}

std::string AcDbFiledItem::toString() const {
    using namespace AcDbFilerDetail;
    const std::string text = std::visit(
        Overloaded{
            [](bool v) -> std::string { return v ? "true" : "false"; },
            [](Adesk::Int64 v) { return std::to_string(v); },
            [](Adesk::UInt64 v) { return std::to_string(v); },
            [](double v) { return formatDouble(v); },
            [](const AcGePoint2d& p) {
                return coords({p.x, p.y});
            },
            [](const AcGePoint3d& p) {
                return coords({p.x, p.y, p.z});
            },
            [](const AcGeVector2d& v) {
                return coords({v.x, v.y});
            },
            [](const AcGeVector3d& v) {
                return coords({v.x, v.y, v.z});
            },
            [](const AcGeScale3d& s) {
                return coords({s.sx, s.sy, s.sz});
            },
            [](const std::wstring& s) { return quoted(s); },
            [](const std::vector<std::uint8_t>& b) { return hexBytes(b); },
            [](const AcDbHandle& h) { return hex(h.value()); },
            [](const AcDbObjectId& id) { return id.isNull() ? "0" : hex(id.handle().value()); },
        },
        value);
    return std::string(acdbFilerKindName(kind)) + " " + text;
}

// ---------------------------------------------------------------- the filer

AcDbRecordingDwgFiler::AcDbRecordingDwgFiler(AcDb::FilerType type, AcDbDatabase* db)
    : mDatabase(db), mType(type) {}

AcDbRecordingDwgFiler::AcDbRecordingDwgFiler(std::vector<AcDbFiledItem> items, AcDb::FilerType type,
                                             AcDbDatabase* db)
    : mItems(std::move(items)), mDatabase(db), mType(type) {}

std::string AcDbRecordingDwgFiler::dump() const {
    std::string out;
    for (const AcDbFiledItem& item : mItems)
        out += item.toString() + "\n";
    return out;
}

template <class T> Acad::ErrorStatus AcDbRecordingDwgFiler::record(AcDbFilerKind kind, T&& value) {
    if (mStatus != Acad::eOk) return mStatus;
    AcDbFiledItem item;
    item.kind = kind;
    item.value.emplace<std::decay_t<T>>(std::forward<T>(value));
    mItems.push_back(std::move(item));
    return Acad::eOk;
}

const AcDbFiledItem* AcDbRecordingDwgFiler::next(AcDbFilerKind kind) {
    if (mStatus != Acad::eOk) return nullptr;
    if (mPos >= mItems.size()) {
        mStatus = Acad::eEndOfFile;
        return nullptr;
    }
    if (mItems[mPos].kind != kind) {
        mStatus = Acad::eFilerError;
        return nullptr;
    }
    return &mItems[mPos];
}

template <class Out, class Held>
Acad::ErrorStatus AcDbRecordingDwgFiler::replay(AcDbFilerKind kind, Out* out) {
    Out v{};
    if (const AcDbFiledItem* item = next(kind)) {
        // Hand-made items may hold a value of another type or out of the kind's range.
        const Held* held = std::get_if<Held>(&item->value);
        bool fits = held != nullptr;
        if constexpr (std::is_integral_v<Held> && !std::is_same_v<Held, bool>)
            fits = fits && std::in_range<Out>(*held);
        if (fits) {
            v = static_cast<Out>(*held);
            ++mPos;
        } else {
            mStatus = Acad::eFilerError;
        }
    }
    if (out) *out = v;
    return mStatus;
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readId(AcDbFilerKind kind, AcDbObjectId* id) {
    return replay<AcDbObjectId, AcDbObjectId>(kind, id);
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readHardOwnershipId(AcDbHardOwnershipId* id) {
    AcDbObjectId v;
    const Acad::ErrorStatus es = readId(AcDbFilerKind::kHardOwnershipId, &v);
    if (id) *id = v;
    return es;
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readSoftOwnershipId(AcDbSoftOwnershipId* id) {
    AcDbObjectId v;
    const Acad::ErrorStatus es = readId(AcDbFilerKind::kSoftOwnershipId, &v);
    if (id) *id = v;
    return es;
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readHardPointerId(AcDbHardPointerId* id) {
    AcDbObjectId v;
    const Acad::ErrorStatus es = readId(AcDbFilerKind::kHardPointerId, &v);
    if (id) *id = v;
    return es;
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readSoftPointerId(AcDbSoftPointerId* id) {
    AcDbObjectId v;
    const Acad::ErrorStatus es = readId(AcDbFilerKind::kSoftPointerId, &v);
    if (id) *id = v;
    return es;
}

Acad::ErrorStatus AcDbRecordingDwgFiler::writeHardOwnershipId(const AcDbHardOwnershipId& id) {
    return record(AcDbFilerKind::kHardOwnershipId, AcDbObjectId(id));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeSoftOwnershipId(const AcDbSoftOwnershipId& id) {
    return record(AcDbFilerKind::kSoftOwnershipId, AcDbObjectId(id));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeHardPointerId(const AcDbHardPointerId& id) {
    return record(AcDbFilerKind::kHardPointerId, AcDbObjectId(id));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeSoftPointerId(const AcDbSoftPointerId& id) {
    return record(AcDbFilerKind::kSoftPointerId, AcDbObjectId(id));
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readString(ACHAR** s) {
    std::wstring text;
    Acad::ErrorStatus es = replay<std::wstring, std::wstring>(AcDbFilerKind::kString, &text);
    if (s) {
        *s = allocString(text);
        if (!*s) es = mStatus = Acad::eOutOfMemory;
    }
    return es;
}

Acad::ErrorStatus AcDbRecordingDwgFiler::writeString(const ACHAR* s) {
    return record(AcDbFilerKind::kString, std::wstring(s ? s : L""));
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readBChunk(ads_binary* chunk) {
    std::vector<std::uint8_t> bytes;
    Acad::ErrorStatus es = replay<std::vector<std::uint8_t>, std::vector<std::uint8_t>>(
        AcDbFilerKind::kBChunk, &bytes);
    if (es == Acad::eOk && bytes.size() > static_cast<size_t>(std::numeric_limits<short>::max())) {
        --mPos;
        es = mStatus = Acad::eFilerError;
    }
    if (!chunk) return es;
    chunk->clen = 0;
    chunk->buf = nullptr;
    if (es != Acad::eOk || bytes.empty()) return es;
    chunk->buf = static_cast<char*>(acdbAlloc(bytes.size()));
    if (!chunk->buf) return mStatus = Acad::eOutOfMemory;
    std::memcpy(chunk->buf, bytes.data(), bytes.size());
    chunk->clen = static_cast<short>(bytes.size());
    return es;
}

Acad::ErrorStatus AcDbRecordingDwgFiler::writeBChunk(const ads_binary& chunk) {
    std::vector<std::uint8_t> bytes;
    if (chunk.buf && chunk.clen > 0) bytes.assign(chunk.buf, chunk.buf + chunk.clen);
    return record(AcDbFilerKind::kBChunk, std::move(bytes));
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readAcDbHandle(AcDbHandle* h) {
    return replay<AcDbHandle, AcDbHandle>(AcDbFilerKind::kHandle, h);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeAcDbHandle(const AcDbHandle& h) {
    return record(AcDbFilerKind::kHandle, AcDbHandle(h));
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readInt8(Adesk::Int8* v) {
    return replay<Adesk::Int8, Adesk::Int64>(AcDbFilerKind::kInt8, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeInt8(Adesk::Int8 v) {
    return record(AcDbFilerKind::kInt8, Adesk::Int64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readUInt8(Adesk::UInt8* v) {
    return replay<Adesk::UInt8, Adesk::UInt64>(AcDbFilerKind::kUInt8, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeUInt8(Adesk::UInt8 v) {
    return record(AcDbFilerKind::kUInt8, Adesk::UInt64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readInt16(Adesk::Int16* v) {
    return replay<Adesk::Int16, Adesk::Int64>(AcDbFilerKind::kInt16, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeInt16(Adesk::Int16 v) {
    return record(AcDbFilerKind::kInt16, Adesk::Int64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readUInt16(Adesk::UInt16* v) {
    return replay<Adesk::UInt16, Adesk::UInt64>(AcDbFilerKind::kUInt16, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeUInt16(Adesk::UInt16 v) {
    return record(AcDbFilerKind::kUInt16, Adesk::UInt64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readInt32(Adesk::Int32* v) {
    return replay<Adesk::Int32, Adesk::Int64>(AcDbFilerKind::kInt32, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeInt32(Adesk::Int32 v) {
    return record(AcDbFilerKind::kInt32, Adesk::Int64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readUInt32(Adesk::UInt32* v) {
    return replay<Adesk::UInt32, Adesk::UInt64>(AcDbFilerKind::kUInt32, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeUInt32(Adesk::UInt32 v) {
    return record(AcDbFilerKind::kUInt32, Adesk::UInt64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readInt64(Adesk::Int64* v) {
    return replay<Adesk::Int64, Adesk::Int64>(AcDbFilerKind::kInt64, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeInt64(Adesk::Int64 v) {
    return record(AcDbFilerKind::kInt64, Adesk::Int64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readUInt64(Adesk::UInt64* v) {
    return replay<Adesk::UInt64, Adesk::UInt64>(AcDbFilerKind::kUInt64, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeUInt64(Adesk::UInt64 v) {
    return record(AcDbFilerKind::kUInt64, Adesk::UInt64{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readBoolean(Adesk::Boolean* v) {
    return replay<bool, bool>(AcDbFilerKind::kBoolean, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeBoolean(Adesk::Boolean v) {
    return record(AcDbFilerKind::kBoolean, bool{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readBool(bool* v) {
    return replay<bool, bool>(AcDbFilerKind::kBool, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeBool(bool v) {
    return record(AcDbFilerKind::kBool, bool{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readDouble(double* v) {
    return replay<double, double>(AcDbFilerKind::kDouble, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeDouble(double v) {
    return record(AcDbFilerKind::kDouble, double{v});
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readPoint2d(AcGePoint2d* v) {
    return replay<AcGePoint2d, AcGePoint2d>(AcDbFilerKind::kPoint2d, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writePoint2d(const AcGePoint2d& v) {
    return record(AcDbFilerKind::kPoint2d, AcGePoint2d(v));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readPoint3d(AcGePoint3d* v) {
    return replay<AcGePoint3d, AcGePoint3d>(AcDbFilerKind::kPoint3d, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writePoint3d(const AcGePoint3d& v) {
    return record(AcDbFilerKind::kPoint3d, AcGePoint3d(v));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readVector2d(AcGeVector2d* v) {
    return replay<AcGeVector2d, AcGeVector2d>(AcDbFilerKind::kVector2d, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeVector2d(const AcGeVector2d& v) {
    return record(AcDbFilerKind::kVector2d, AcGeVector2d(v));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readVector3d(AcGeVector3d* v) {
    return replay<AcGeVector3d, AcGeVector3d>(AcDbFilerKind::kVector3d, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeVector3d(const AcGeVector3d& v) {
    return record(AcDbFilerKind::kVector3d, AcGeVector3d(v));
}
Acad::ErrorStatus AcDbRecordingDwgFiler::readScale3d(AcGeScale3d* v) {
    return replay<AcGeScale3d, AcGeScale3d>(AcDbFilerKind::kScale3d, v);
}
Acad::ErrorStatus AcDbRecordingDwgFiler::writeScale3d(const AcGeScale3d& v) {
    return record(AcDbFilerKind::kScale3d, AcGeScale3d(v));
}

Acad::ErrorStatus AcDbRecordingDwgFiler::readBytes(void* buf, Adesk::UIntPtr n) {
    if (buf && n) std::memset(buf, 0, n);
    std::vector<std::uint8_t> bytes;
    Acad::ErrorStatus es =
        replay<std::vector<std::uint8_t>, std::vector<std::uint8_t>>(AcDbFilerKind::kBytes, &bytes);
    if (es != Acad::eOk) return es;
    if (bytes.size() != n) {
        --mPos;
        return mStatus = Acad::eFilerError;
    }
    if (buf && n) std::memcpy(buf, bytes.data(), n);
    return es;
}

Acad::ErrorStatus AcDbRecordingDwgFiler::writeBytes(const void* buf, Adesk::UIntPtr n) {
    if (mStatus != Acad::eOk) return mStatus;
    if (!buf && n) return mStatus = Acad::eInvalidInput;
    const auto* b = static_cast<const std::uint8_t*>(buf);
    return record(AcDbFilerKind::kBytes,
                  n ? std::vector<std::uint8_t>(b, b + n) : std::vector<std::uint8_t>());
}
