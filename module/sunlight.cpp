// The sunlight distance ratio used for building spacing.
#include "module/settings.h"
#include "module/settingsdetail.h"
#include "module/wtonum.h"

int M_GetSundist(int mode, double& value) {
    double& stored = qor::settings::cache().sundist;
    if (mode == 1) {
        stored = value;
        return 1;
    }
    // The loading call leaves value as it was; callers make a get call first, and this
    // behaviour is kept for them.
    if (stored == 0.0) {
        CString text;
        const double ratio = M_GetQorReg(L"sundist", text) ? qorWtof(text) : 0.0;
        stored = ratio > 0.0 ? ratio : 1.2;
        return 1;
    }
    value = stored;
    return 1;
}
