// The union of many outlines through a triangulation: the outlines' points are triangulated,
// the triangles inside any outline kept, and the outer edges of the kept triangles walked into
// loops. Independent of the two-polygon engine.
//
// Loops are given by ranges: two integers per loop, the index of its first point in the point
// list and the index just past its last point. A range that does not fit the list is ignored.
#pragma once

#include "acarray.h"
#include "dbid.h"
#include "gebasic.h"

// The outline of the union of the closed lightweight polylines among ids (other objects are
// skipped), arcs replaced by points about 1.0 apart. pts and ranges are replaced by the result.
// 1 when at least one loop came out.
int M_PolygonUnion(AcArray<AcDbObjectId> ids, AcArray<AcGePoint2d>& pts, AcArray<int>& ranges);

// The outline of the union of the loops of pts: all points (loop points and extra ones) are
// merged within 0.2, which closes small gaps between neighbouring outlines, and triangulated;
// a triangle whose centroid lies strictly inside some loop is kept, holes included. outPts and
// outRanges are replaced by the outline's loops, each point once. 1 when at least one loop came
// out; 0 for fewer than 3 points after merging, a coordinate that is not a finite number, or a
// failed triangulation.
int M_PolygonTriangle(AcArray<AcGePoint2d> pts, AcArray<int> ranges, AcArray<AcGePoint2d>& outPts,
                      AcArray<int>& outRanges);

// Extra points that help that triangulation follow the loops' edges: where an edge of the
// triangulation of the merged points crosses a loop edge, the crossing point, unless it lies
// within 0.4 of a point of pts or of the previous extra point on that loop edge. out is
// replaced; 1 when it holds any point.
int M_GetInterPolygonPt(AcArray<AcGePoint2d> pts, AcArray<int> ranges, AcArray<AcGePoint3d>& out);
