// The DWG and DXF filer interfaces through which every object files its data.
#pragma once

#include "acdb.h"
#include "adsdef.h"
#include "dbid.h"
#include "gebasic.h"

class AcDbAuditInfo;
class AcDbFilerController;

class AcDbDwgFiler {
public:
    virtual ~AcDbDwgFiler() = default;

    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual AcDb::FilerType filerType() const = 0;
    virtual void setFilerStatus(Acad::ErrorStatus es) = 0;
    virtual void resetFilerStatus() = 0;
    // The database the objects being filed belong to, if any.
    virtual AcDbDatabase* database() const { return nullptr; }

    virtual Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) = 0;
    virtual Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) = 0;
    virtual Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) = 0;
    virtual Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) = 0;

    // Strings: readString allocates with acdbAlloc-compatible storage, freed by acdbFree.
    virtual Acad::ErrorStatus readString(ACHAR** s) = 0;
    virtual Acad::ErrorStatus writeString(const ACHAR* s) = 0;
    virtual Acad::ErrorStatus readBChunk(ads_binary* chunk) = 0;
    virtual Acad::ErrorStatus writeBChunk(const ads_binary& chunk) = 0;
    virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle* h) = 0;
    virtual Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& h) = 0;

    virtual Acad::ErrorStatus readInt8(Adesk::Int8* v) = 0;
    virtual Acad::ErrorStatus writeInt8(Adesk::Int8 v) = 0;
    virtual Acad::ErrorStatus readUInt8(Adesk::UInt8* v) = 0;
    virtual Acad::ErrorStatus writeUInt8(Adesk::UInt8 v) = 0;
    virtual Acad::ErrorStatus readInt16(Adesk::Int16* v) = 0;
    virtual Acad::ErrorStatus writeInt16(Adesk::Int16 v) = 0;
    virtual Acad::ErrorStatus readUInt16(Adesk::UInt16* v) = 0;
    virtual Acad::ErrorStatus writeUInt16(Adesk::UInt16 v) = 0;
    virtual Acad::ErrorStatus readInt32(Adesk::Int32* v) = 0;
    virtual Acad::ErrorStatus writeInt32(Adesk::Int32 v) = 0;
    virtual Acad::ErrorStatus readUInt32(Adesk::UInt32* v) = 0;
    virtual Acad::ErrorStatus writeUInt32(Adesk::UInt32 v) = 0;
    virtual Acad::ErrorStatus readInt64(Adesk::Int64* v) = 0;
    virtual Acad::ErrorStatus writeInt64(Adesk::Int64 v) = 0;
    virtual Acad::ErrorStatus readUInt64(Adesk::UInt64* v) = 0;
    virtual Acad::ErrorStatus writeUInt64(Adesk::UInt64 v) = 0;
    virtual Acad::ErrorStatus readBoolean(Adesk::Boolean* v) = 0;
    virtual Acad::ErrorStatus writeBoolean(Adesk::Boolean v) = 0;
    virtual Acad::ErrorStatus readBool(bool* v) = 0;
    virtual Acad::ErrorStatus writeBool(bool v) = 0;
    virtual Acad::ErrorStatus readDouble(double* v) = 0;
    virtual Acad::ErrorStatus writeDouble(double v) = 0;
    virtual Acad::ErrorStatus readPoint2d(AcGePoint2d* v) = 0;
    virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d& v) = 0;
    virtual Acad::ErrorStatus readPoint3d(AcGePoint3d* v) = 0;
    virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d& v) = 0;
    virtual Acad::ErrorStatus readVector2d(AcGeVector2d* v) = 0;
    virtual Acad::ErrorStatus writeVector2d(const AcGeVector2d& v) = 0;
    virtual Acad::ErrorStatus readVector3d(AcGeVector3d* v) = 0;
    virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d& v) = 0;
    virtual Acad::ErrorStatus readScale3d(AcGeScale3d* v) = 0;
    virtual Acad::ErrorStatus writeScale3d(const AcGeScale3d& v) = 0;
    virtual Acad::ErrorStatus readBytes(void* buf, Adesk::UIntPtr n) = 0;
    virtual Acad::ErrorStatus writeBytes(const void* buf, Adesk::UIntPtr n) = 0;
};

// Frees storage handed out by filers (strings from readString, chunks from readBChunk).
void acdbFree(void* p);
void* acdbAlloc(size_t n);

class AcDbDxfFiler {
public:
    virtual ~AcDbDxfFiler() = default;

    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual AcDb::FilerType filerType() const = 0;
    virtual void setFilerStatus(Acad::ErrorStatus es) = 0;
    virtual void resetFilerStatus() = 0;
    virtual AcDbDatabase* database() const { return nullptr; }
    virtual int precision() const { return 16; }
    virtual bool includesDefaultValues() const { return false; }

    // Reading: one group at a time; pushBackItem makes the last item read the next one again.
    virtual Acad::ErrorStatus readItem(resbuf* item) = 0;
    virtual Acad::ErrorStatus pushBackItem() = 0;
    virtual bool atEOF() = 0;
    virtual bool atSubclassData(const ACHAR* subClassName) = 0;
    virtual bool atExtendedData() = 0;
    virtual bool atEndOfObject() = 0;
    virtual bool atEmbeddedObjectStart() { return false; }

    // Writing
    virtual Acad::ErrorStatus writeItem(const resbuf& item) = 0;
    virtual Acad::ErrorStatus writeObjectId(AcDb::DxfCode code, const AcDbObjectId& id) = 0;
    virtual Acad::ErrorStatus writeString(AcDb::DxfCode code, const ACHAR* s) = 0;
    virtual Acad::ErrorStatus writeBool(AcDb::DxfCode code, bool v) = 0;
    virtual Acad::ErrorStatus writeInt8(AcDb::DxfCode code, Adesk::Int8 v) = 0;
    virtual Acad::ErrorStatus writeInt16(AcDb::DxfCode code, Adesk::Int16 v) = 0;
    virtual Acad::ErrorStatus writeInt32(AcDb::DxfCode code, Adesk::Int32 v) = 0;
    virtual Acad::ErrorStatus writeUInt8(AcDb::DxfCode code, Adesk::UInt8 v) = 0;
    virtual Acad::ErrorStatus writeUInt16(AcDb::DxfCode code, Adesk::UInt16 v) = 0;
    virtual Acad::ErrorStatus writeUInt32(AcDb::DxfCode code, Adesk::UInt32 v) = 0;
    virtual Acad::ErrorStatus writeInt64(AcDb::DxfCode code, Adesk::Int64 v) = 0;
    virtual Acad::ErrorStatus writeHandle(AcDb::DxfCode code, const AcDbHandle& h) = 0;
    virtual Acad::ErrorStatus writeDouble(AcDb::DxfCode code, double v, int prec = -1) = 0;
    virtual Acad::ErrorStatus writeAngle(AcDb::DxfCode code, double v, int prec = -1) = 0;
    virtual Acad::ErrorStatus writePoint2d(AcDb::DxfCode code, const AcGePoint2d& p,
                                           int prec = -1) = 0;
    virtual Acad::ErrorStatus writePoint3d(AcDb::DxfCode code, const AcGePoint3d& p,
                                           int prec = -1) = 0;
    virtual Acad::ErrorStatus writeVector2d(AcDb::DxfCode code, const AcGeVector2d& v,
                                            int prec = -1) = 0;
    virtual Acad::ErrorStatus writeVector3d(AcDb::DxfCode code, const AcGeVector3d& v,
                                            int prec = -1) = 0;
    virtual Acad::ErrorStatus writeScale3d(AcDb::DxfCode code, const AcGeScale3d& v,
                                           int prec = -1) = 0;
    virtual Acad::ErrorStatus writeBChunk(AcDb::DxfCode code, const ads_binary& chunk) = 0;
};
