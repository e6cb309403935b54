// The status-bar progress meter. Here the status bar is a line on standard error, drawn only
// when standard error is a terminal, so that pipes and logs stay clean. The bar appears once a
// run has lasted a moment: short runs show nothing.
#pragma once

#include "adesk.h"

#include <cstdio>

// Starts a meter over [minPos, maxPos] with a label. 0 on success, -1 when maxPos < minPos.
int acedSetStatusBarProgressMeter(const ACHAR* label, int minPos, int maxPos);
// Moves the meter to pos (clamped to the range); a negative pos advances it by -pos instead.
// 0 with a meter running, -1 without one.
int acedSetStatusBarProgressMeterPos(int pos);
// Takes the meter down and clears its line.
void acedRestoreStatusBar();

// Draws every change at once into out, as if it were a terminal of the given width; a null
// stream goes back to standard error with its terminal test and delay. For tests.
void qorSetProgressOutput(std::FILE* out, int columns = 80);
