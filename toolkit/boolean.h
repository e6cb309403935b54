// Union, intersection and difference of two simple polygons with straight edges.
//
// op is 0 for the union A + B, 1 for the intersection, 2 for the difference A - B. The result
// comes as loops: in `counts` each loop's point count followed by the indices of its points in
// `pts` (both are replaced), or as new closed polylines appended to `plines`, which the caller
// then owns. A loop that closes repeats its first point at its end; pieces that do not close
// come out as open chains. 1 when at least one loop came out; 0 for another op, a polygon with
// fewer than 3 vertices left once vertices closer than 0.0001 are merged, a coordinate that is
// not a finite number, or no loop.
#pragma once

#include "acarray.h"
#include "gebasic.h"

int M_BooleanOper(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts);
// z is ignored.
int M_BooleanOper(AcArray<AcGePoint3d> a, AcArray<AcGePoint3d> b, int op, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts);
// One closed AcDbPolyline per loop, without the repeated closing point.
int M_BooleanOper(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<void*>& plines);
int M_BooleanOper(AcArray<AcGePoint3d> a, AcArray<AcGePoint3d> b, int op, AcArray<void*>& plines);
