// The DXF filer that writes groups as text: each group a code line, right-aligned in three
// columns, and a value line. Objects write through its AcDbDxfFiler interface; the writer
// adds the groups around them through the plain group functions.
#pragma once

#include "dbfiler.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qor::dxf {

// Angles (codes 50 to 58) are radians in memory and degrees in the file, whichever call
// writes them, so that what the reader hands back is what was written.
bool isAngleCode(int code);

class OutFiler : public AcDbDxfFiler {
public:
    OutFiler(std::string& out, AcDbDatabase* db) : mOut(out), mDatabase(db) {}

    // ------------------------------------------------ plain groups
    void ascii(int code, std::string_view value);
    void text(int code, std::wstring_view value);
    void integer(int code, long long v);
    void real(int code, double v);
    void handle(int code, std::uint64_t h);
    void point(int code, double x, double y, double z);
    void point(int code, double x, double y);

    // Between these two the object's own fields are written. After its "100 AcDbEntity" an
    // entity in paper space gets 67 1, and after its layer its linetype unless it writes one.
    // A layer given here replaces the one the entity writes (vertices take their polyline's).
    void beginEntity(bool paperSpace, std::wstring linetype, std::wstring layer = {});
    void endEntity();

    // ------------------------------------------------ AcDbDxfFiler
    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    Acad::ErrorStatus readItem(resbuf* item) override;
    Acad::ErrorStatus pushBackItem() override { return Acad::eNotApplicable; }
    bool atEOF() override { return false; }
    bool atSubclassData(const ACHAR*) override { return false; }
    bool atExtendedData() override { return false; }
    bool atEndOfObject() override { return false; }

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
    enum class EntityState { kNone, kBeforeMarker, kAfterMarker, kAfterLayer };

    // Every group passes here first, for the entity additions.
    void code(int c);
    void number(double v);

    std::string& mOut;
    AcDbDatabase* mDatabase = nullptr;
    Acad::ErrorStatus mStatus = Acad::eOk;
    EntityState mEntity = EntityState::kNone;
    bool mPaperSpace = false;
    std::wstring mLinetype, mLayer;
};

} // namespace qor::dxf
