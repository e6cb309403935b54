// The suite's installation folders, and the message for a folder that cannot be written.
#include "module/settings.h"
#include "module/settingsdetail.h"

#include "acedfile.h"
#include "cmdline.h"

#include <algorithm>
#include <iterator>

namespace {

// The marker file of the alternative layout, kept out of the module's plain text like the
// other strings of the licence code.
CString alternativeLayoutMarker() {
    static constexpr wchar_t kCoded[] = {0x7e, 0x5f, 0x43, 0x74, 0x5f, 0x55,
                                         0x41, 0x18, 0x53, 0x59, 0x4d};
    CString name;
    for (size_t i = 0; i < std::size(kCoded); ++i)
        name += static_cast<wchar_t>(kCoded[i] ^ (0x2F + i));
    return name;
}

// In the alternative layout everything lives in the installation folder itself.
void applyAlternativeLayout(const CString& base, CString& dir) {
    ACHAR found[MAX_PATH];
    if (acedFindFile(alternativeLayoutMarker(), found, MAX_PATH) == RTNORM) dir = base;
}

bool isSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

} // namespace

int M_GetQorStrFromFile(CString& dir) {
    auto& c = qor::settings::cache();
    if (!c.qorDirKnown) {
        CString value;
        if (!M_GetQorReg(L"qordir", value)) return 0;
        // The platform takes '/' as a separator too, so a Linux folder needs no "\".
        if (value.IsEmpty() || !isSeparator(value[value.GetLength() - 1])) value += L'\\';
        c.qorDir = value;
        c.qorDirKnown = true;
    }
    dir = c.qorDir;
    return 1;
}

int M_GetQorSysDir(CString& dir) {
    CString base;
    if (!M_GetQorStrFromFile(base)) return 0;
    dir = base + L"sys64\\cad2012\\";
    applyAlternativeLayout(base, dir);
    return 1;
}

int M_GetQorImagesDir(CString& dir) {
    CString base;
    if (!M_GetQorStrFromFile(base)) return 0;
    dir = base + L"image\\";
    return 1;
}

int M_GetQorDataDir(CString& dir) {
    CString base;
    if (!M_GetQorStrFromFile(base)) return 0;
    dir = base + L"data\\" + qor::settings::codeFolder(M_GetLandCodeType());
    applyAlternativeLayout(base, dir);
    return 1;
}

int M_GetQorLibDir(CString& dir) {
    CString base;
    if (!M_GetQorStrFromFile(base)) return 0;
    dir = base + L"lib\\" + qor::settings::codeFolder(M_GetLandCodeType());
    applyAlternativeLayout(base, dir);
    return 1;
}

int M_FileRightMsg(CString path) {
    const int cut = std::max(path.ReverseFind(L'\\'), path.ReverseFind(L'/'));
    const CString folder = cut < 0 ? CString() : path.Left(cut);
    acutPrintf(L"\n文件写入失败!请检查文件夹\"%s\"写权限!", folder);
    return 1;
}
