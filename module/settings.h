// User and environment settings: the suite's registry key, the installation folders, the
// planning code standard, the sunlight distance ratio and the file-permission message. The
// display switches are in displayflags.h, the flags of the data files in datafiles.h.
#pragma once

#include "winreg.h"
#include "winstr.h"

// The suite's key under HKEY_CURRENT_USER.
inline constexpr const wchar_t* kQorRegKey = L"Software\\QorSoft\\Qor7";

// ---------------------------------------------------------------- registry

// Reads a REG_SZ or REG_EXPAND_SZ value of at most 259 characters. 1 with out set; 0 with out
// unchanged when the key, the value or the type is wrong.
int M_GetRegStr(HKEY root, CString subKey, CString valueName, CString& out);
// The same on the suite's key, or on a sub-key of it.
int M_GetQorReg(CString valueName, CString& out);
int M_GetQorReg(CString subKey, CString valueName, CString& out);
// Writes a REG_SZ value on the suite's key, which must exist; the sub-key form creates its key.
int M_SetQorReg(CString valueName, CString value);
int M_SetQorReg(CString subKey, CString valueName, CString value);

// ---------------------------------------------------------------- folders

// The installation folder ("qordir", ending with "\"), kept for the process once known. 0 and
// dir unchanged while it is not.
int M_GetQorStrFromFile(CString& dir);
// base + "sys64\cad2012\", "image\", "data\" + code folder, "lib\" + code folder. The system,
// data and library forms give the bare installation folder in the alternative layout.
int M_GetQorSysDir(CString& dir);
int M_GetQorImagesDir(CString& dir);
int M_GetQorDataDir(CString& dir);
int M_GetQorLibDir(CString& dir);

// ---------------------------------------------------------------- code standard

// "CodeType" (0 when missing); 4 becomes 5 when "UseLC" exists and is not "1". Read anew on
// every call.
int M_GetLandCodeType();
// Whether the code type is 4, as read on the first call of the process.
int M_IsChangChunCode();

// ---------------------------------------------------------------- sunlight

// mode 1 stores value. Otherwise a call that finds nothing stored loads "sundist" (1.2 when
// missing or not positive) and leaves value untouched; later calls copy the stored ratio into
// value. Always 1.
int M_GetSundist(int mode, double& value);

// ---------------------------------------------------------------- messages

// Says that a file could not be written and names its folder. Always 1.
int M_FileRightMsg(CString path);

// ---------------------------------------------------------------- tests

// Puts every settings cache and display switch of the process back to its start-up state.
void qorResetSettingsForTests();
