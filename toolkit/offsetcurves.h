// Offsets of curves, computed near the origin for accuracy.
#pragma once

#include "acarray.h"
#include "dbents.h"

// 1 when the curve exists and is longer than 0.001.
int M_IsNotZeroLength(const AcDbCurve* curve);
// Appends the offset curves of c at the signed distance (0 means 0.0001) to out, which the
// caller then owns. 1 when at least one curve was appended.
int M_GetOffsetCurves(const AcDbCurve* c, double dist, AcArray<void*>& out);
