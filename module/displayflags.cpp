#include "module/displayflags.h"
#include "module/settingsdetail.h"

namespace {

int storeOrLoad(int& stored, int mode, int& flag) {
    if (mode == 1)
        stored = flag != 0 ? 1 : 0;
    else
        flag = stored;
    return 1;
}

int loadOrSave(int& stored, int save, int value) {
    if (!save) return stored;
    stored = value;
    return 0;
}

qor::settings::Cache& flags() {
    return qor::settings::cache();
}

} // namespace

int M_GetViewGreenLineFlg(int mode, int& flag) {
    return storeOrLoad(flags().greenLine, mode, flag);
}

int M_GetViewBudWinFlg(int mode, int& flag) {
    return storeOrLoad(flags().budWin, mode, flag);
}

int M_GetViewBudLineWinFlg(int mode, int& flag) {
    return storeOrLoad(flags().budLineWin, mode, flag);
}

int M_GetViewVportFlg(int mode, int& flag) {
    return storeOrLoad(flags().vport, mode, flag);
}

int M_GetHighlightFlg(int mode, int& flag) {
    return storeOrLoad(flags().highlight, mode, flag);
}

int M_GetSaveOldFlg(int mode, int& flag) {
    return storeOrLoad(flags().saveOld, mode, flag);
}

int M_GetViewPipeCodeFlg(int mode, int& flag) {
    return storeOrLoad(flags().pipeCode, mode, flag);
}

int M_LoadOrSaveQorVport(int save, int value) {
    return loadOrSave(flags().qorVport, save, value);
}

int M_LoadOrSaveBlockView(int save, int value) {
    return loadOrSave(flags().blockView, save, value);
}

int M_LoadOrSavePlanView(int save, int value) {
    return loadOrSave(flags().planView, save, value);
}
