#include "module/qorclass.h"

#include "acdb.h"

AcRxClass* qorLookUpDesc(AcRxClass*& desc, const ACHAR* name) {
    if (!desc) desc = AcRxClass::cast(acrxClassDictionary()->at(name));
    return desc;
}

void qorRxInit(AcRxClass*& desc, const ACHAR* name, const ACHAR* parent, int proxyFlags,
               AcRxPseudoConstructor ctor, const ACHAR* dxfName, const ACHAR* appName,
               AppNameChangeFuncPtr callback) {
    if (desc) {
        AcRxObject* registered = acrxClassDictionary()->at(name);
        if (registered == desc) return;
        if (registered) acrx_abort(L"Class mismatch");
    }
    desc = newAcRxClass(name, parent, AcDb::kDHL_1024, AcDb::kMReleaseCurrent, proxyFlags, ctor,
                        dxfName, appName, callback);
}
