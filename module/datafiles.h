// Display flags kept in the small data files of the code standard's data folder:
// xgbuild.dat (site planning) and LandView.dat (land parcels).
#pragma once

#include "winstr.h"

// From xgbuild.dat (version 202), read once per process; 1 or 0. When the file is missing,
// of another version or cut short: SketchUp-style display 1, building windows 0, sunlight 1.
// The building-window switch also exists in memory (displayflags.h); each has its callers.
int M_GetSketchUpFlg();
int M_GetViewBudWinFlg();
int M_GetViewRizhaoFlg();

// The 13 land display flags of LandView.dat (version 2 or 3; flags 11 and 12 are 0 in
// version 2), cached for the process once read. 1 with flags replaced and value 0.0. When the
// file cannot be read (missing, another version, cut short): 0 with the defaults in flags and
// value, and the next call tries the file again.
int M_GetLandFlgs(CByteArray& flags, double& value);
// Flags 10 and 11, and flag 12, by the same rule.
int M_GetLandMinusFlg(int& a, int& b);
int M_GetLandRangeFlg(int& r);
