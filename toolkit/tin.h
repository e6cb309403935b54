// Terrain networks: the Delaunay triangulation of elevation points, its triangles as point
// triples or shell face lists, and heights of plan points on the network, either on a live
// triangulation or on a stored list of triangles.
//
// Triangle lists hold three consecutive points per triangle; face lists hold, per triangle,
// the count 3 and three indices into the point array. A triangle's corners are reported from
// its lowest-numbered point, then the other two in input order; they are not oriented. The
// functions return 1 for success and 0 for failure.
#pragma once

#include "acarray.h"
#include "gebasic.h"

// ---------------------------------------------------------------- triangulation

// Sorts pts by x, then y, and removes near-coincident points (0.0001) in place, then appends
// the triangles. 1 when at least one triangle came out. A list with a coordinate that is not a
// finite number is left as it is: 0.
int M_GetTrianglePts(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& tris);
// The same, appending face records with indices into the cleaned pts.
int M_GetTrianglePts(AcArray<AcGePoint3d>& pts, AcArray<int>& faces);
// Face records for points the caller knows to be distinct in plan, in their given order; 0 for
// 2 points or fewer, and for a list holding two points at the same plan position or a
// coordinate that is not a finite number.
int M_GetTriangleFaces(AcArray<AcGePoint3d> pts, AcArray<int>& faces);

// ---------------------------------------------------------------- heights on a live network

// Each query point's z becomes its height on the triangulation of pts: -1 first, then the
// height in the triangle that holds it, or the z of the nearest network point when it lies
// outside the network. 1 when any query point received a height; 0, queries untouched, for
// fewer than 3 network points or a network the engine refuses (see M_GetTriangleFaces).
//
// Cleans pts first (a list with a plan coordinate that is not a finite number is left as it
// is: 0) and shows a progress meter for more than 5,000 query points; a user break stops the
// run, leaving the remaining points as they were. A query point that is not a number in plan
// keeps -1.
int M_CalHgtByPt(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query);
// Cleans pts first; no meter.
int M_CalHgtByPtNoBar(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query);
// pts as given; no meter.
int M_GetHgtByLsd(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query);

// ---------------------------------------------------------------- heights on a stored list

// The first triangle of tris (in list order) that holds p gives h; its points are appended to
// tri and its number goes to index. When none holds p, index is -1 and h is estimated from
// the nearest triangle corners around p, or left as it was when no estimate can be made.
// 1 whenever tris holds at least 3 points, else 0.
int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h,
                 AcArray<AcGePoint3d>& tri, int& index);
int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h,
                 AcArray<AcGePoint3d>& tri);
int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h);
