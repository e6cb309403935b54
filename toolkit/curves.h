// Curves of the drawing as point lists: sampling at a chosen spacing, the equivalent polyline
// of any curve (vertices and bulges), lengths, ordering and splitting at points, intersections,
// hatch loops as polylines, joined outlines, and conversions between database and geometric
// curves.
//
// Functions returning int give 1 for success and 0 for failure. A null or unsuitable curve, a
// step that is too small, a curve that is too short or a failing platform query gives 0 and
// leaves the outputs as each function says; nothing is printed. New curves handed out through
// void* arrays or pointer outputs belong to the caller.
#pragma once

#include "acarray.h"
#include "adsdef.h"
#include "dbents.h"
#include "toolkit/offsetcurves.h"

// ---------------------------------------------------------------- lengths and samplers

// Distance at the end parameter less distance at the start parameter.
int M_GetCurveLength(const AcDbCurve* c, double& len);

// The samplers below take n = floor(length / step), then at most maxCount, then at least
// minCount points. A step below 0.0001 or a length below 0.0001 fails. pts is replaced on
// success and left as it was on failure.

// n points evenly along the arc, both ends included; 1 when at least 2 result.
int M_GetArcPts(const AcDbArc* arc, double step, int minCount, int maxCount,
                AcArray<AcGePoint3d>& pts);
// n points round the circle, always a closed ring.
int M_GetCirclePts(const AcDbCircle* c, double step, int minCount, int maxCount,
                   AcArray<AcGePoint3d>& pts);
// n points evenly in parameter along the elliptical arc (closed ellipses as a closed ring),
// then thinned: a middle point goes where the path turns by less than 0.01 radian.
int M_GetEllipsePts(const AcDbEllipse* e, double step, int minCount, int maxCount,
                    AcArray<AcGePoint3d>& pts);
// The same along the NURBS curve of the spline's control data.
int M_GetSplinePts(const AcDbSpline* s, double step, int minCount, int maxCount,
                   AcArray<AcGePoint3d>& pts);

// The polyline with each arc segment of length L replaced by the points at L*k/n, k = 1..n;
// line segments give their end vertex. M_GetPlinePts clamps n = floor(L / step) to
// [minCount, maxCount] (the step raised to 0.0001 for this) and gives (x, y, elevation).
// M_GetArcPlineVertex raises the step to 0.2 and caps n at 100; an arc shorter than the step
// then gives nothing, not even its end vertex. Both fail for a null polyline or a step below
// 0.00001, and replace pts only when some segment gave a point.
int M_GetPlinePts(AcDbPolyline* pl, double step, int minCount, int maxCount,
                  AcArray<AcGePoint3d>& pts);
int M_GetArcPlineVertex(AcDbPolyline* pl, double step, AcArray<AcGePoint2d>& pts);
// pts cleared, then the points of M_GetArcPlineVertex with z = 0.
int M_GetPlineCurPts(AcDbPolyline* pl, double step, AcArray<AcGePoint3d>& pts);
// Step 1.0, z = the polyline's elevation.
int M_GetPlineCurPts(AcDbPolyline* pl, AcArray<AcGePoint3d>& pts);

// Points along the curve at the distances 0, step, 2*step, ... that lie more than 0.0001
// before the end, then the end point (so a closed curve gives a closed ring). Fails like the
// samplers, and when more than 1,000,000 points would result. pts replaced on success.
int M_GetCurPts(AcDbCurve* c, double step, AcArray<AcGePoint3d>& pts);
// The vertices of the equivalent polyline (M_GetCurve3dPts) with every arc segment replaced by
// points about 1.0 apart (at least one part, at most 100); z runs linearly along each arc. pts
// replaced on success.
int M_GetCurvePts(AcDbCurve* c, AcArray<AcGePoint3d>& pts);

// ---------------------------------------------------------------- equivalent polylines

// Vertices and bulges of an equivalent polyline: lines and arcs exactly, a circle as four
// arcs (five vertices, the last the first again), ellipses and splines sampled at step 1.0,
// 2D and 3D polylines by their curve points, lightweight polylines vertex by vertex at their
// elevation (a closed one repeats vertex 0 with bulge 0). Both arrays are cleared first. 0 for
// other classes and for curves shorter than 0.0001.
int M_GetCurve3dPts(AcDbCurve* c, AcArray<AcGePoint3d>& pts, AcArray<double>& bulges);
// The same with z dropped, appended to the caller's arrays; on failure they are unchanged.
int M_GetCurve2dPts(AcDbCurve* c, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// The vertex positions in order, skipping vertices of type value 1 (the spline frame's control
// vertices in 3D, curve-fit vertices in 2D); a closed polyline repeats its first point. pts
// replaced on success (at least one point).
int M_Get3dPlineCurPts(AcDb3dPolyline* pl, AcArray<AcGePoint3d>& pts);
int M_Get2dPlineCurPts(AcDb2dPolyline* pl, AcArray<AcGePoint3d>& pts);

// ---------------------------------------------------------------- points on curves

// The points strictly inside the curve (distance along it above 0 and below its length),
// ordered by that distance; equal distances keep their input order. sorted is replaced when
// any remain (result 1) and left as it was otherwise.
int M_SortPtsbyCur(AcDbCurve* c, AcArray<AcGePoint3d> pts, AcArray<AcGePoint3d>& sorted);
// The curve split at those points; the pieces are appended to out. On failure nothing is
// appended and every piece made is deleted.
int M_BreakCurByPts(AcDbCurve* c, AcArray<AcGePoint3d> pts, AcArray<void*>& out);
// Intersection points appended to pts. Two curves are intersected on copies moved so that the
// first one starts at the origin (1 when a point was found); other entities by the platform
// directly (1 when it succeeds, even without points).
int M_IntersectWith(const AcDbEntity* a, const AcDbEntity* b, AcDb::Intersect mode,
                    AcArray<AcGePoint3d>& pts);

// ---------------------------------------------------------------- hatches

// One new lightweight polyline per hatch loop with more than two vertices (elevation 0,
// constant width 0), with the loop's type. A polyline loop whose last vertex repeats its
// first is marked closed; an edge loop becomes edge start points with circular-arc bulges and
// points along elliptical arcs and splines, closed when it ends where it began. Both arrays are
// cleared first (not for a null hatch).
int M_GetHatchPline(AcDbHatch* h, AcArray<void*>& plines, AcArray<int>& loopTypes);
// The same loops as one vertex list and a face list: per loop its count (positive for the
// external loop, negative for the others) and the indices of its vertices; a closed loop
// repeats its first vertex with bulge 0. The three arrays are cleared first.
int M_GetHatchPline(AcDbHatch* h, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges,
                    AcArray<int>& faces);
// The associated boundary objects of every loop, with each one's loop type beside it. Both
// arrays cleared first; 1 when any.
int M_GetHatchBoundId(AcDbHatch* h, AcArray<AcDbObjectId>& ids, AcArray<long>& loopTypes);

// ---------------------------------------------------------------- polyline parts and outlines

// The part of the polyline between the points nearest to `from` and `to`, appended as vertices
// and bulges in the order from `from` to `to`. On a closed polyline the part is the one that
// runs in the polyline's direction from `from` to `to`; on an open one, a part that runs the
// other way is appended reversed (each bulge negated and moved to the preceding vertex).
int M_AddPtArrayByPline(AcDbPolyline* pl, AcGePoint3d from, AcGePoint3d to,
                        AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// Joins the pieces appended one after another into one outline in place: a vertex that
// repeats the next one (within 0.0001) goes, and the first vertex is appended again with bulge
// 0 when the last is more than 0.001 from it. 0, nothing changed, for fewer than two vertices
// or arrays of different lengths.
int M_GetLinkPlinePts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// Appends the part of curve `cur` between its joints with `prev` and `next` (where it crosses
// them, or else where it comes nearest). With mode 1, len is that part's length; otherwise 0.
int M_OpenMyObj(AcDbObjectId prev, AcDbObjectId cur, AcDbObjectId next, AcArray<AcGePoint2d>& pts,
                AcArray<double>& bulges, double& len, int mode);
// The curves taken as a closed cycle, each cut between its joints with its neighbours, joined
// into one green lightweight polyline appended to the current space. name and length (the sum
// of the parts' lengths with mode 1) are set on success.
int M_GetLinkPline(AcArray<AcDbObjectId> ids, int mode, ads_name& name, double& length);

// ---------------------------------------------------------------- conversions

// The geometric curve of a database curve, and a database curve for a geometric one; the new
// object belongs to the caller and the output is untouched on failure.
int M_CurDbToGe(const AcDbCurve* c, AcGeCurve3d*& g);
int M_CurGeToDb(const AcGeCurve3d* g, AcDbCurve*& c);
// A lightweight polyline of constant width `width` built from the equivalent polyline of a
// drawing curve (not itself a lightweight polyline), with the curve's layer, colour and
// linetype, added to the curve's space; the curve itself is left as it is.
int M_CvtCurvToPln(ads_name ent, double width, ads_name& newEnt);
// Vertices and bulges of the equivalent polyline of a drawing curve; both arrays replaced on
// success.
int M_GetPlineByPline(ads_name ent, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// For segment `index` of a lightweight polyline that is an arc (or for an arc or circle entity,
// whatever the index): the centre, the middle point of the arc (for a circle, its point at
// angle 0) and the radius, in the XY plane.
int M_GetArcPlineCenPt(AcDbEntity* ent, AcGePoint2d& center, AcGePoint2d& mid, double& radius,
                       int index);
