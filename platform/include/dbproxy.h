// Stand-ins for objects whose class is missing or too new: they keep the drawing's class
// record and the object's filed bytes, and write them back unchanged.
#pragma once

#include "dbmain.h"

#include <cstdint>
#include <string>
#include <vector>

// The class record a drawing keeps for each class of its objects.
struct AcDbClassRecord {
    std::wstring name, parent, dxfName, appName;
    int proxyFlags = 0;
};

class AcDbProxyObject : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbProxyObject);
    enum ProxyFlags {
        kNoOperation = 0,
        kEraseAllowed = 0x1,
        kAllButCloningAllowed = 0x7F,
        kCloningAllowed = 0x80,
        kAllAllowedBits = 0xFF,
        kMergeIgnore = 0,
        kMergeReplace = 0x100,
        kMergeMangleName = 0x200
    };

    AcDbProxyObject() = default;
    AcDbProxyObject(AcDbClassRecord record, std::vector<std::uint8_t> data);

    int proxyFlags() const { return mRecord.proxyFlags; }
    const ACHAR* originalClassName() const { return mRecord.name.c_str(); }
    const ACHAR* originalDxfName() const { return mRecord.dxfName.c_str(); }
    const ACHAR* applicationDescription() const { return mRecord.appName.c_str(); }
    const AcDbClassRecord& classRecord() const { return mRecord; }
    const std::vector<std::uint8_t>& originalData() const { return mData; }

private:
    AcDbClassRecord mRecord;
    std::vector<std::uint8_t> mData;
};

class AcDbProxyEntity : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
    enum ProxyFlags {
        kNoOperation = 0,
        kEraseAllowed = 0x1,
        kTransformAllowed = 0x2,
        kColorChangeAllowed = 0x4,
        kLayerChangeAllowed = 0x8,
        kLinetypeChangeAllowed = 0x10,
        kLinetypeScaleChangeAllowed = 0x20,
        kVisibilityChangeAllowed = 0x40,
        kCloningAllowed = 0x80,
        kLineWeightChangeAllowed = 0x100,
        kPlotStyleNameChangeAllowed = 0x200,
        kAllButCloningAllowed = 0x37F,
        kAllAllowedBits = 0x3FF,
        kDisableProxyWarning = 0x400,
        kMaterialChangeAllowed = 0x800
    };

    AcDbProxyEntity() = default;
    AcDbProxyEntity(AcDbClassRecord record, std::vector<std::uint8_t> data);

    int proxyFlags() const { return mRecord.proxyFlags; }
    const ACHAR* originalClassName() const { return mRecord.name.c_str(); }
    const ACHAR* originalDxfName() const { return mRecord.dxfName.c_str(); }
    const ACHAR* applicationDescription() const { return mRecord.appName.c_str(); }
    const AcDbClassRecord& classRecord() const { return mRecord; }
    const std::vector<std::uint8_t>& originalData() const { return mData; }

    void subList() const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& xform) override;

private:
    AcDbClassRecord mRecord;
    std::vector<std::uint8_t> mData;
};
