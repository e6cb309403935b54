// The DXF filer that hands a record's groups, already checked by the splitter, to an object's
// dxfInFields: points joined from their coordinate groups, angles in radians, text decoded,
// handles turned into the ids of the objects read from the file.
#pragma once

#include "dbfiler.h"
#include "io/dxfgroups.h"
#include "io/dxftext.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qor::dxf {

class InFiler : public AcDbDxfFiler {
public:
    using Resolver = std::function<AcDbObjectId(std::uint64_t handle)>;

    InFiler(std::vector<const Group*> groups, const TextDecoder& text, Resolver resolve,
            AcDbDatabase* db)
        : mGroups(std::move(groups)), mText(text), mResolve(std::move(resolve)), mDatabase(db) {}

    // The line of the last group read, for messages about the object that read it.
    int line() const;

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }
    AcDbDatabase* database() const override { return mDatabase; }

    // Strings and chunks handed out stay valid until the next readItem.
    Acad::ErrorStatus readItem(resbuf* item) override;
    Acad::ErrorStatus pushBackItem() override;
    bool atEOF() override { return mPos >= mGroups.size(); }
    bool atSubclassData(const ACHAR* subClassName) override;
    bool atExtendedData() override { return mPos < mGroups.size() && mGroups[mPos]->code >= 1000; }
    bool atEndOfObject() override { return atEOF(); }

    Acad::ErrorStatus writeItem(const resbuf&) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeObjectId(AcDb::DxfCode, const AcDbObjectId&) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeString(AcDb::DxfCode, const ACHAR*) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeBool(AcDb::DxfCode, bool) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeInt8(AcDb::DxfCode, Adesk::Int8) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeInt16(AcDb::DxfCode, Adesk::Int16) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeInt32(AcDb::DxfCode, Adesk::Int32) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeUInt8(AcDb::DxfCode, Adesk::UInt8) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeUInt16(AcDb::DxfCode, Adesk::UInt16) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeUInt32(AcDb::DxfCode, Adesk::UInt32) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeInt64(AcDb::DxfCode, Adesk::Int64) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeHandle(AcDb::DxfCode, const AcDbHandle&) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeDouble(AcDb::DxfCode, double, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeAngle(AcDb::DxfCode, double, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writePoint2d(AcDb::DxfCode, const AcGePoint2d&, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writePoint3d(AcDb::DxfCode, const AcGePoint3d&, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeVector2d(AcDb::DxfCode, const AcGeVector2d&, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeVector3d(AcDb::DxfCode, const AcGeVector3d&, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeScale3d(AcDb::DxfCode, const AcGeScale3d&, int = -1) override {
        return Acad::eNotApplicable;
    }
    Acad::ErrorStatus writeBChunk(AcDb::DxfCode, const ads_binary&) override {
        return Acad::eNotApplicable;
    }

private:
    Acad::ErrorStatus fail(Acad::ErrorStatus es);

    std::vector<const Group*> mGroups;
    const TextDecoder& mText;
    Resolver mResolve;
    AcDbDatabase* mDatabase = nullptr;
    Acad::ErrorStatus mStatus = Acad::eOk;
    size_t mPos = 0;
    size_t mLastStart = 0; // where the last item read began, for pushBackItem
    bool mCanPushBack = false;
    std::wstring mString;
    std::vector<char> mChunk;
};

} // namespace qor::dxf
