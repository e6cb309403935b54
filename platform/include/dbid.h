// Object identifiers and handles.
#pragma once

#include "acstatus.h"
#include "adesk.h"

#include <functional>

class AcDbDatabase;
class AcRxClass;
struct AcDbStub;

// A database handle: a 64-bit number, unique and permanent within one drawing.
class AcDbHandle {
public:
    AcDbHandle() = default;
    AcDbHandle(Adesk::UInt64 v) : mValue(v) {}
    // Parses a hexadecimal handle string; an invalid string gives the null handle.
    explicit AcDbHandle(const ACHAR* hex);

    bool isNull() const { return mValue == 0; }
    void setNull() { mValue = 0; }
    Adesk::UInt64 value() const { return mValue; }
    operator Adesk::UInt64() const { return mValue; }
    AcDbHandle& operator++() {
        ++mValue;
        return *this;
    }
    bool operator==(const AcDbHandle& h) const { return mValue == h.mValue; }
    bool operator!=(const AcDbHandle& h) const { return mValue != h.mValue; }
    bool operator<(const AcDbHandle& h) const { return mValue < h.mValue; }
    // Upper-case hexadecimal without leading zeros; buffer of at least 17 characters.
    bool getIntoAsciiBuffer(ACHAR* buffer, size_t bufferLength = 17) const;

private:
    Adesk::UInt64 mValue = 0;
};

// Identifies an object of an open database for the database's lifetime.
class AcDbObjectId {
public:
    AcDbObjectId() = default;
    explicit AcDbObjectId(AcDbStub* stub) : mStub(stub) {}

    static const AcDbObjectId kNull;

    bool isNull() const { return mStub == nullptr; }
    void setNull() { mStub = nullptr; }
    bool isValid() const;
    bool isErased() const;
    bool isEffectivelyErased() const;
    bool isResident() const;
    AcDbHandle handle() const;
    AcDbDatabase* database() const;
    AcRxClass* objectClass() const;
    AcDbStub* stub() const { return mStub; }
    Adesk::IntPtr asOldId() const { return reinterpret_cast<Adesk::IntPtr>(mStub); }

    bool operator==(const AcDbObjectId& o) const { return mStub == o.mStub; }
    bool operator!=(const AcDbObjectId& o) const { return mStub != o.mStub; }
    bool operator<(const AcDbObjectId& o) const;

private:
    AcDbStub* mStub = nullptr;
};

// The four reference kinds differ only in how the drawing treats them on copy and purge.
class AcDbHardPointerId : public AcDbObjectId {
public:
    AcDbHardPointerId() = default;
    AcDbHardPointerId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbSoftPointerId : public AcDbObjectId {
public:
    AcDbSoftPointerId() = default;
    AcDbSoftPointerId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbHardOwnershipId : public AcDbObjectId {
public:
    AcDbHardOwnershipId() = default;
    AcDbHardOwnershipId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbSoftOwnershipId : public AcDbObjectId {
public:
    AcDbSoftOwnershipId() = default;
    AcDbSoftOwnershipId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};

template <> struct std::hash<AcDbObjectId> {
    size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<const void*>()(id.stub());
    }
};

#include "acarray.h"
using AcDbObjectIdArray = AcArray<AcDbObjectId>;
