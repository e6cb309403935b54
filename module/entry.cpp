// Module entry: initialisation and unload sequences.
#include "module/classtable.h"

#include "acdb.h"

namespace {

constexpr const ACHAR* kImageModule = L"acismui.arx";
constexpr const ACHAR* kService = L"QOROBJ_DBXSERVICE";

void initModule() {
    // Five landscape classes derive from the raster image, which the image-support module brings.
    if (!acrxClassDictionary()->at(L"AcDbRasterImage")) {
        if (acrxLoadModule(kImageModule, false, true)) acrxLoadModule(kImageModule, false, false);
    } else {
        acrxLoadModule(kImageModule, false, false);
    }
    for (const QorClassRow& row : qorClassTable())
        row.rxInit();
    acrxBuildClassHierarchy();
    acrxRegisterService(kService);
}

void unloadModule() {
    // Same order as registration, as drawings' class records expect.
    for (const QorClassRow& row : qorClassTable())
        deleteAcRxClass(row.desc());
    acrxUnloadModule(kImageModule, false);
    if (AcRxObject* service = acrxServiceDictionary()->remove(kService)) delete service;
}

} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
    switch (msg) {
    case AcRx::kInitAppMsg:
        acrxUnlockApplication(pkt);
        acrxRegisterAppMDIAware(pkt);
        initModule();
        break;
    case AcRx::kUnloadAppMsg:
        unloadModule();
        break;
    default:
        break;
    }
    return AcRx::kRetOK;
}

extern "C" unsigned int acrxGetApiVersion() {
    return kQorApiVersion;
}
