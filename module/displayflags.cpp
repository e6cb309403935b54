#include "module/displayflags.h"

namespace {

int storeOrLoad(int& stored, int mode, int& flag) {
    if (mode == 1)
        stored = flag != 0 ? 1 : 0;
    else
        flag = stored;
    return 1;
}

int gSaveOld = 0;

} // namespace

int M_GetSaveOldFlg(int mode, int& flag) {
    return storeOrLoad(gSaveOld, mode, flag);
}
