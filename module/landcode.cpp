// The planning code standard in force and its folders.
#include "module/settings.h"
#include "module/settingsdetail.h"
#include "module/wtonum.h"

int M_GetLandCodeType() {
    CString text;
    int type = M_GetQorReg(L"CodeType", text) ? qorWtoi(text) : 0;
    // Standard 4 has a user variant, chosen by a second switch.
    CString useLc;
    if (type == 4 && M_GetQorReg(L"UseLC", useLc) && useLc != L"1") type = 5;
    return type;
}

int M_IsChangChunCode() {
    int& flag = qor::settings::cache().changChun;
    if (flag < 0) flag = M_GetLandCodeType() == 4 ? 1 : 0;
    return flag;
}

CString qor::settings::codeFolder(int codeType) {
    switch (codeType) {
    case 1:
        return L"Code1990\\";
    case 2:
        return L"Village\\";
    case 3:
        return L"Vlg2014\\";
    case 4:
        return L"Changchun\\";
    case 5:
        return L"UserCode\\";
    default:
        return L"Code2011\\";
    }
}
