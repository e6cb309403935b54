#include "cmdline.h"
#include "dbproxy.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject, L"ACAD_PROXY_OBJECT")
ACRX_CONS_DEFINE_MEMBERS(AcDbProxyEntity, AcDbEntity, L"ACAD_PROXY_ENTITY")

AcDbProxyObject::AcDbProxyObject(AcDbClassRecord record, std::vector<std::uint8_t> data)
    : mRecord(std::move(record)), mData(std::move(data)) {}

AcDbProxyEntity::AcDbProxyEntity(AcDbClassRecord record, std::vector<std::uint8_t> data)
    : mRecord(std::move(record)), mData(std::move(data)) {}

void AcDbProxyEntity::subList() const {
    AcDbEntity::subList();
    acutPrintf(L"\n%28s  Proxy of class: %s (%s)", L"", mRecord.name.c_str(),
               mRecord.dxfName.c_str());
    acutPrintf(L"\n%28s  Application: %s", L"", mRecord.appName.c_str());
}

// The filed bytes cannot follow a transformation, so a proxy refuses one whatever its flags say.
Acad::ErrorStatus AcDbProxyEntity::subTransformBy(const AcGeMatrix3d&) {
    return Acad::eNotApplicable;
}
