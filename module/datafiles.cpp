// xgbuild.dat and LandView.dat.
#include "module/datafiles.h"
#include "module/settings.h"
#include "module/settingsdetail.h"

#include "archive.h"

namespace {

constexpr int kXgBuildVersion = 202;
constexpr int kLandFlagCount = 13;
constexpr BYTE kLandDefaults[kLandFlagCount] = {1, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0};

bool openDataFile(const wchar_t* name, CFile& file) {
    CString dir;
    return M_GetQorDataDir(dir) && file.Open(dir + name, CFile::modeRead | CFile::typeBinary);
}

void loadXgBuild() {
    auto& c = qor::settings::cache();
    if (c.xgLoaded) return;
    // Once per process, whether or not the file can be read.
    c.xgLoaded = true;
    CFile file;
    if (!openDataFile(L"xgbuild.dat", file)) return;
    CArchive ar(&file, CArchive::load);
    int version = 0;
    ar >> version;
    if (ar.Failed() || version != kXgBuildVersion) return;
    // Values of the suite's commands that write the file.
    int unusedInt = 0;
    for (int i = 0; i < 9; ++i)
        ar >> unusedInt;
    double unusedDouble = 0;
    for (int i = 0; i < 7; ++i)
        ar >> unusedDouble;
    int sketchUp = 0, budWin = 0, rizhao = 0;
    ar >> sketchUp >> budWin >> rizhao;
    // A file cut short keeps every default rather than some of its values.
    if (ar.Failed()) return;
    c.sketchUp = sketchUp != 0 ? 1 : 0;
    c.budWinFromFile = budWin != 0 ? 1 : 0;
    c.rizhao = rizhao != 0 ? 1 : 0;
}

bool readLandView(CByteArray& out) {
    CFile file;
    if (!openDataFile(L"LandView.dat", file)) return false;
    CArchive ar(&file, CArchive::load);
    int version = 0;
    ar >> version;
    if (ar.Failed() || (version != 2 && version != 3)) return false;
    int flags[kLandFlagCount];
    for (int i = 0; i < kLandFlagCount; ++i)
        flags[i] = kLandDefaults[i];
    for (int i = 0; i < 10; ++i)
        ar >> flags[i];
    double number = 0; // read and not passed on
    ar >> number >> flags[10];
    if (version == 3) ar >> flags[11] >> flags[12];
    if (ar.Failed()) return false;
    out.SetSize(kLandFlagCount);
    for (int i = 0; i < kLandFlagCount; ++i)
        out[i] = static_cast<BYTE>(flags[i] & 0xFF);
    return true;
}

} // namespace

int M_GetSketchUpFlg() {
    loadXgBuild();
    return qor::settings::cache().sketchUp;
}

int M_GetViewBudWinFlg() {
    loadXgBuild();
    return qor::settings::cache().budWinFromFile;
}

int M_GetViewRizhaoFlg() {
    loadXgBuild();
    return qor::settings::cache().rizhao;
}

int M_GetLandFlgs(CByteArray& flags, double& value) {
    auto& c = qor::settings::cache();
    if (c.landFlags.IsEmpty() && !readLandView(c.landFlags)) c.landFlags.RemoveAll();
    if (c.landFlags.GetSize() == kLandFlagCount) {
        flags.Copy(c.landFlags);
        value = c.landValue;
        return 1;
    }
    flags.SetSize(kLandFlagCount);
    for (int i = 0; i < kLandFlagCount; ++i)
        flags[i] = kLandDefaults[i];
    value = 0.0;
    return 0;
}

int M_GetLandMinusFlg(int& a, int& b) {
    CByteArray flags;
    double value = 0;
    const int ok = M_GetLandFlgs(flags, value);
    a = flags[10];
    b = flags[11];
    return ok;
}

int M_GetLandRangeFlg(int& r) {
    CByteArray flags;
    double value = 0;
    const int ok = M_GetLandFlgs(flags, value);
    r = flags[12];
    return ok;
}
