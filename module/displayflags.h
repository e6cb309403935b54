// Process-wide display switches, set by the suite's commands and read by the objects.
#pragma once

// mode 1 stores flag != 0 as 1 or 0; any other mode copies the stored value into flag.
// Always 1.
int M_GetViewGreenLineFlg(int mode, int& flag);  // green lines of buildings, default 0
int M_GetViewBudWinFlg(int mode, int& flag);     // building windows, default 1
int M_GetViewBudLineWinFlg(int mode, int& flag); // window lines of buildings, default 0
int M_GetViewVportFlg(int mode, int& flag);      // viewport objects, default 0
int M_GetHighlightFlg(int mode, int& flag);      // highlighting, default 0
int M_GetSaveOldFlg(int mode, int& flag);        // file objects in their older layout, default 0
int M_GetViewPipeCodeFlg(int mode, int& flag);   // pipe codes, default 0

// save non-zero stores value as given and returns 0; save 0 returns the stored value.
int M_LoadOrSaveQorVport(int save, int value);  // viewport switch, default 1
int M_LoadOrSaveBlockView(int save, int value); // block view, default 0
int M_LoadOrSavePlanView(int save, int value);  // plan view, default 0
