// The platform's concrete filers: the typed binary stream of the drawing store, and the
// recording DWG and DXF filers that tests use to check and replay an object's fields.
#pragma once

#include "dbfiler.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The primitive kinds of DWG filing. In the typed stream each is the tag byte before its
// payload, so the values are part of the drawing file format: never renumber them.
enum class AcDbFilerKind : std::uint8_t {
    kBool = 1,
    kBoolean = 2,
    kInt8 = 3,
    kUInt8 = 4,
    kInt16 = 5,
    kUInt16 = 6,
    kInt32 = 7,
    kUInt32 = 8,
    kInt64 = 9,
    kUInt64 = 10,
    kDouble = 11,
    kPoint2d = 12,
    kPoint3d = 13,
    kVector2d = 14,
    kVector3d = 15,
    kScale3d = 16,
    kString = 17,
    kBChunk = 18,
    kBytes = 19,
    kHandle = 20,
    kHardOwnershipId = 21,
    kSoftOwnershipId = 22,
    kHardPointerId = 23,
    kSoftPointerId = 24,
};

// "UInt16", "Point2d", ...; "?" for a byte that is no kind.
const char* acdbFilerKindName(AcDbFilerKind kind);

// Text helpers shared by the filers and their dumps.
namespace AcDbFilerDetail {
// Shortest text that reads back as the same double.
std::string formatDouble(double v);
// Double-quoted UTF-8 with \" \\ and control characters escaped.
std::string quoted(std::wstring_view s);
// Upper-case hexadecimal without leading zeros, as handles are shown.
std::string hex(Adesk::UInt64 v);
} // namespace AcDbFilerDetail

// ---------------------------------------------------------------- typed binary stream

// Writes every primitive as a tag byte and a little-endian payload (strings as UTF-8 with a
// UInt32 byte length, chunks and byte blocks with a UInt32 length, ids as their 64-bit
// handle), and reads such a stream back. A read that meets another tag, a truncated payload
// or the end of the data sets the filer status (eFilerError or eEndOfFile), leaves the read
// position at the start of that item and gives zero values; once the status is not eOk,
// every read and write fails with it until resetFilerStatus().
class AcDbStreamDwgFiler : public AcDbDwgFiler {
public:
    // Turns a filed handle into an id of the database being read.
    using HandleResolver = std::function<AcDbObjectId(AcDbHandle)>;

    // Writes into a buffer of its own (and can read it back after rewind()).
    explicit AcDbStreamDwgFiler(AcDbDatabase* db = nullptr);
    // Reads size bytes at data, which must outlive the filer. Writing is refused.
    AcDbStreamDwgFiler(const std::uint8_t* data, size_t size, HandleResolver resolve = {},
                       AcDbDatabase* db = nullptr);
    // Reads its own copy of the bytes.
    explicit AcDbStreamDwgFiler(std::vector<std::uint8_t> bytes, HandleResolver resolve = {},
                                AcDbDatabase* db = nullptr);

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return mType; }
    void setFilerType(AcDb::FilerType type) { mType = type; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    // The bytes written so far (or the owned copy being read); empty for borrowed data.
    const std::vector<std::uint8_t>& bytes() const { return mOwned; }
    // Read position, in bytes from the start of the data.
    size_t position() const { return mPos; }
    size_t size() const;
    bool atEnd() const { return mPos >= size(); }
    void rewind() { mPos = 0; }

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override;
    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) override;
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override;
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override;
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override;
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) override;
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override;
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) override;

    // *s is always set to storage the caller frees with acdbFree, empty on failure.
    Acad::ErrorStatus readString(ACHAR** s) override;
    Acad::ErrorStatus writeString(const ACHAR* s) override;
    // chunk->buf is acdbAlloc storage (null when empty) the caller frees with acdbFree.
    Acad::ErrorStatus readBChunk(ads_binary* chunk) override;
    Acad::ErrorStatus writeBChunk(const ads_binary& chunk) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* h) override;
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& h) override;

    Acad::ErrorStatus readInt8(Adesk::Int8* v) override;
    Acad::ErrorStatus writeInt8(Adesk::Int8 v) override;
    Acad::ErrorStatus readUInt8(Adesk::UInt8* v) override;
    Acad::ErrorStatus writeUInt8(Adesk::UInt8 v) override;
    Acad::ErrorStatus readInt16(Adesk::Int16* v) override;
    Acad::ErrorStatus writeInt16(Adesk::Int16 v) override;
    Acad::ErrorStatus readUInt16(Adesk::UInt16* v) override;
    Acad::ErrorStatus writeUInt16(Adesk::UInt16 v) override;
    Acad::ErrorStatus readInt32(Adesk::Int32* v) override;
    Acad::ErrorStatus writeInt32(Adesk::Int32 v) override;
    Acad::ErrorStatus readUInt32(Adesk::UInt32* v) override;
    Acad::ErrorStatus writeUInt32(Adesk::UInt32 v) override;
    Acad::ErrorStatus readInt64(Adesk::Int64* v) override;
    Acad::ErrorStatus writeInt64(Adesk::Int64 v) override;
    Acad::ErrorStatus readUInt64(Adesk::UInt64* v) override;
    Acad::ErrorStatus writeUInt64(Adesk::UInt64 v) override;
    Acad::ErrorStatus readBoolean(Adesk::Boolean* v) override;
    Acad::ErrorStatus writeBoolean(Adesk::Boolean v) override;
    Acad::ErrorStatus readBool(bool* v) override;
    Acad::ErrorStatus writeBool(bool v) override;
    Acad::ErrorStatus readDouble(double* v) override;
    Acad::ErrorStatus writeDouble(double v) override;
    Acad::ErrorStatus readPoint2d(AcGePoint2d* v) override;
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& v) override;
    Acad::ErrorStatus readPoint3d(AcGePoint3d* v) override;
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& v) override;
    Acad::ErrorStatus readVector2d(AcGeVector2d* v) override;
    Acad::ErrorStatus writeVector2d(const AcGeVector2d& v) override;
    Acad::ErrorStatus readVector3d(AcGeVector3d* v) override;
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& v) override;
    Acad::ErrorStatus readScale3d(AcGeScale3d* v) override;
    Acad::ErrorStatus writeScale3d(const AcGeScale3d& v) override;
    // The block's length is filed too; reading a block of another length is an error.
    Acad::ErrorStatus readBytes(void* buf, Adesk::UIntPtr n) override;
    Acad::ErrorStatus writeBytes(const void* buf, Adesk::UIntPtr n) override;

private:
    // Where an item's payload lies in the data.
    struct Item {
        const std::uint8_t* body = nullptr;
        size_t length = 0;
    };

    const std::uint8_t* data() const;
    Acad::ErrorStatus fail(Acad::ErrorStatus es);
    // Finds the next item, of `kind`, with `fixed` payload bytes or, when counted, a UInt32
    // length of at most `limit` and that many bytes; moves past it on success.
    Acad::ErrorStatus take(AcDbFilerKind kind, size_t fixed, bool counted, size_t limit,
                           Item* item);
    Acad::ErrorStatus readUInt(AcDbFilerKind kind, size_t n, Adesk::UInt64* v);
    template <class T> Acad::ErrorStatus readInt(AcDbFilerKind kind, T* v);
    Acad::ErrorStatus readTruth(AcDbFilerKind kind, bool* v);
    Acad::ErrorStatus readDoubles(AcDbFilerKind kind, double* out, size_t count);
    Acad::ErrorStatus readId(AcDbFilerKind kind, AcDbObjectId* id);
    Acad::ErrorStatus begin(AcDbFilerKind kind);
    void putUInt(Adesk::UInt64 v, size_t n);
    Acad::ErrorStatus writeUInt(AcDbFilerKind kind, Adesk::UInt64 v, size_t n);
    Acad::ErrorStatus writeDoubles(AcDbFilerKind kind, const double* v, size_t count);
    Acad::ErrorStatus writeCounted(AcDbFilerKind kind, const void* p, size_t n);
    Acad::ErrorStatus writeId(AcDbFilerKind kind, const AcDbObjectId& id);

    std::vector<std::uint8_t> mOwned;
    const std::uint8_t* mBorrowed = nullptr;
    size_t mBorrowedSize = 0;
    bool mBorrowing = false;
    size_t mPos = 0;
    HandleResolver mResolve;
    AcDbDatabase* mDatabase = nullptr;
    Acad::ErrorStatus mStatus = Acad::eOk;
    AcDb::FilerType mType = AcDb::kFileFiler;
};

// ---------------------------------------------------------------- recording DWG filer

// One primitive as filed. Signed integers are held as Int64 and unsigned ones as UInt64;
// `kind` says which primitive it was.
struct AcDbFiledItem {
    using Value = std::variant<bool, Adesk::Int64, Adesk::UInt64, double, AcGePoint2d, AcGePoint3d,
                               AcGeVector2d, AcGeVector3d, AcGeScale3d, std::wstring,
                               std::vector<std::uint8_t>, AcDbHandle, AcDbObjectId>;

    AcDbFilerKind kind = AcDbFilerKind::kBool;
    Value value;

    // One dump line without its end: `UInt16 401`, `Point2d 1,2`, `String "abc"`.
    std::string toString() const;
};

// Keeps every primitive written as a typed item, and replays them to reads in order with
// the stream filer's rules: a read of another kind is eFilerError, a read past the last
// item eEndOfFile, and an error is sticky until resetFilerStatus().
class AcDbRecordingDwgFiler : public AcDbDwgFiler {
public:
    explicit AcDbRecordingDwgFiler(AcDb::FilerType type = AcDb::kFileFiler,
                                   AcDbDatabase* db = nullptr);
    // Replays hand-made items.
    explicit AcDbRecordingDwgFiler(std::vector<AcDbFiledItem> items,
                                   AcDb::FilerType type = AcDb::kFileFiler,
                                   AcDbDatabase* db = nullptr);

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return mType; }
    void setFilerType(AcDb::FilerType type) { mType = type; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    const std::vector<AcDbFiledItem>& items() const { return mItems; }
    // One line per item, each ended by '\n'.
    std::string dump() const;
    size_t position() const { return mPos; }
    bool atEnd() const { return mPos >= mItems.size(); }
    void rewind() { mPos = 0; }

    Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override;
    Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) override;
    Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override;
    Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) override;
    Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override;
    Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) override;
    Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override;
    Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) override;

    // As for the stream filer: *s is always acdbFree-able storage.
    Acad::ErrorStatus readString(ACHAR** s) override;
    Acad::ErrorStatus writeString(const ACHAR* s) override;
    Acad::ErrorStatus readBChunk(ads_binary* chunk) override;
    Acad::ErrorStatus writeBChunk(const ads_binary& chunk) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* h) override;
    Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& h) override;

    Acad::ErrorStatus readInt8(Adesk::Int8* v) override;
    Acad::ErrorStatus writeInt8(Adesk::Int8 v) override;
    Acad::ErrorStatus readUInt8(Adesk::UInt8* v) override;
    Acad::ErrorStatus writeUInt8(Adesk::UInt8 v) override;
    Acad::ErrorStatus readInt16(Adesk::Int16* v) override;
    Acad::ErrorStatus writeInt16(Adesk::Int16 v) override;
    Acad::ErrorStatus readUInt16(Adesk::UInt16* v) override;
    Acad::ErrorStatus writeUInt16(Adesk::UInt16 v) override;
    Acad::ErrorStatus readInt32(Adesk::Int32* v) override;
    Acad::ErrorStatus writeInt32(Adesk::Int32 v) override;
    Acad::ErrorStatus readUInt32(Adesk::UInt32* v) override;
    Acad::ErrorStatus writeUInt32(Adesk::UInt32 v) override;
    Acad::ErrorStatus readInt64(Adesk::Int64* v) override;
    Acad::ErrorStatus writeInt64(Adesk::Int64 v) override;
    Acad::ErrorStatus readUInt64(Adesk::UInt64* v) override;
    Acad::ErrorStatus writeUInt64(Adesk::UInt64 v) override;
    Acad::ErrorStatus readBoolean(Adesk::Boolean* v) override;
    Acad::ErrorStatus writeBoolean(Adesk::Boolean v) override;
    Acad::ErrorStatus readBool(bool* v) override;
    Acad::ErrorStatus writeBool(bool v) override;
    Acad::ErrorStatus readDouble(double* v) override;
    Acad::ErrorStatus writeDouble(double v) override;
    Acad::ErrorStatus readPoint2d(AcGePoint2d* v) override;
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& v) override;
    Acad::ErrorStatus readPoint3d(AcGePoint3d* v) override;
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& v) override;
    Acad::ErrorStatus readVector2d(AcGeVector2d* v) override;
    Acad::ErrorStatus writeVector2d(const AcGeVector2d& v) override;
    Acad::ErrorStatus readVector3d(AcGeVector3d* v) override;
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& v) override;
    Acad::ErrorStatus readScale3d(AcGeScale3d* v) override;
    Acad::ErrorStatus writeScale3d(const AcGeScale3d& v) override;
    Acad::ErrorStatus readBytes(void* buf, Adesk::UIntPtr n) override;
    Acad::ErrorStatus writeBytes(const void* buf, Adesk::UIntPtr n) override;

private:
    // The next item if it is of `kind`; null (with the status set) otherwise.
    const AcDbFiledItem* next(AcDbFilerKind kind);
    template <class T> Acad::ErrorStatus record(AcDbFilerKind kind, T&& value);
    template <class Out, class Held> Acad::ErrorStatus replay(AcDbFilerKind kind, Out* out);
    Acad::ErrorStatus readId(AcDbFilerKind kind, AcDbObjectId* id);

    std::vector<AcDbFiledItem> mItems;
    size_t mPos = 0;
    AcDbDatabase* mDatabase = nullptr;
    Acad::ErrorStatus mStatus = Acad::eOk;
    AcDb::FilerType mType = AcDb::kFileFiler;
};

// ---------------------------------------------------------------- recording DXF filer

// One DXF group. The value is held by the storage kind of its code (acdbGroupCodeToType):
// reals as double, points, vectors and scales as a point, all integers and booleans as
// Int64, strings and handles as text, ids as ids, binary chunks as bytes.
struct AcDbDxfItem {
    using Value = std::variant<std::monostate, double, AcGePoint3d, Adesk::Int64, std::wstring,
                               std::vector<std::uint8_t>, AcDbObjectId>;

    int code = 0;
    Value value;
    bool angle = false; // written by writeAngle; the value stays in radians

    AcDbDxfItem() = default;
    explicit AcDbDxfItem(int c) : code(c) {}
    AcDbDxfItem(int c, double v) : code(c), value(v) {}
    AcDbDxfItem(int c, const AcGePoint3d& p) : code(c), value(p) {}
    AcDbDxfItem(int c, int v) : code(c), value(Adesk::Int64{v}) {}
    AcDbDxfItem(int c, Adesk::Int64 v) : code(c), value(v) {}
    AcDbDxfItem(int c, const ACHAR* s) : code(c), value(std::wstring(s ? s : L"")) {}
    AcDbDxfItem(int c, std::wstring s) : code(c), value(std::move(s)) {}
    AcDbDxfItem(int c, std::vector<std::uint8_t> b) : code(c), value(std::move(b)) {}
    AcDbDxfItem(int c, const AcDbObjectId& id) : code(c), value(id) {}

    // One dump line without its end: `100 "AcDbEntity"`, `10 1,2,0`, `40 2.5`.
    std::string toString() const;
};

// Records the groups an object writes, and replays them to readItem in order.
//
// Ownership: strings and binary chunks in a resbuf filled by readItem point into storage
// owned by the filer, valid until the next readItem or the filer's end; callers must not
// free them (copy what they keep). A read past the last group sets eEndOfFile; a group
// whose value does not fit its code's storage kind sets eInvalidResBuf. Both are sticky.
class AcDbRecordingDxfFiler : public AcDbDxfFiler {
public:
    explicit AcDbRecordingDxfFiler(AcDb::FilerType type = AcDb::kFileFiler,
                                   AcDbDatabase* db = nullptr);
    // Replays hand-written groups.
    explicit AcDbRecordingDxfFiler(std::vector<AcDbDxfItem> items,
                                   AcDb::FilerType type = AcDb::kFileFiler,
                                   AcDbDatabase* db = nullptr);
    // Replays the groups of a result-buffer chain (e.g. one from acutBuildList).
    explicit AcDbRecordingDxfFiler(const resbuf* chain, AcDb::FilerType type = AcDb::kFileFiler,
                                   AcDbDatabase* db = nullptr);

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return mType; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    const std::vector<AcDbDxfItem>& items() const { return mItems; }
    std::string dump() const;
    size_t position() const { return mPos; }
    // Back to the first group; the status stays as it is.
    void rewind();

    Acad::ErrorStatus readItem(resbuf* item) override;
    // Makes the last item read be read again; one level only.
    Acad::ErrorStatus pushBackItem() override;
    bool atEOF() override { return mPos >= mItems.size(); }
    // True, consuming the marker, when the next group is 100 with this name.
    bool atSubclassData(const ACHAR* subClassName) override;
    bool atExtendedData() override;
    bool atEndOfObject() override { return mPos >= mItems.size(); }

    Acad::ErrorStatus writeItem(const resbuf& item) override;
    Acad::ErrorStatus writeObjectId(AcDb::DxfCode code, const AcDbObjectId& id) override;
    Acad::ErrorStatus writeString(AcDb::DxfCode code, const ACHAR* s) override;
    Acad::ErrorStatus writeBool(AcDb::DxfCode code, bool v) override;
    Acad::ErrorStatus writeInt8(AcDb::DxfCode code, Adesk::Int8 v) override;
    Acad::ErrorStatus writeInt16(AcDb::DxfCode code, Adesk::Int16 v) override;
    Acad::ErrorStatus writeInt32(AcDb::DxfCode code, Adesk::Int32 v) override;
    Acad::ErrorStatus writeUInt8(AcDb::DxfCode code, Adesk::UInt8 v) override;
    Acad::ErrorStatus writeUInt16(AcDb::DxfCode code, Adesk::UInt16 v) override;
    Acad::ErrorStatus writeUInt32(AcDb::DxfCode code, Adesk::UInt32 v) override;
    Acad::ErrorStatus writeInt64(AcDb::DxfCode code, Adesk::Int64 v) override;
    Acad::ErrorStatus writeHandle(AcDb::DxfCode code, const AcDbHandle& h) override;
    Acad::ErrorStatus writeDouble(AcDb::DxfCode code, double v, int prec = -1) override;
    Acad::ErrorStatus writeAngle(AcDb::DxfCode code, double v, int prec = -1) override;
    Acad::ErrorStatus writePoint2d(AcDb::DxfCode code, const AcGePoint2d& p,
                                   int prec = -1) override;
    Acad::ErrorStatus writePoint3d(AcDb::DxfCode code, const AcGePoint3d& p,
                                   int prec = -1) override;
    Acad::ErrorStatus writeVector2d(AcDb::DxfCode code, const AcGeVector2d& v,
                                    int prec = -1) override;
    Acad::ErrorStatus writeVector3d(AcDb::DxfCode code, const AcGeVector3d& v,
                                    int prec = -1) override;
    Acad::ErrorStatus writeScale3d(AcDb::DxfCode code, const AcGeScale3d& v,
                                   int prec = -1) override;
    Acad::ErrorStatus writeBChunk(AcDb::DxfCode code, const ads_binary& chunk) override;

private:
    Acad::ErrorStatus add(AcDbDxfItem item);
    Acad::ErrorStatus fail(Acad::ErrorStatus es);

    std::vector<AcDbDxfItem> mItems;
    size_t mPos = 0;
    bool mCanPushBack = false;
    // Backing for the string or chunk handed out by the last readItem.
    std::wstring mText;
    std::vector<char> mChunk;
    AcDbDatabase* mDatabase = nullptr;
    Acad::ErrorStatus mStatus = Acad::eOk;
    AcDb::FilerType mType = AcDb::kFileFiler;
};
