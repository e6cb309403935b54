// Elementary plane geometry shared by every object and command: conversion of prompt points,
// angles and polar points, segment intersection, point-in-polygon tests, orientation, vectors,
// clean-up of point lists, and integer and face-list helpers.
//
// Everything works in the XY plane unless said otherwise. The tolerances are fixed: callers
// depend on them. Functions returning int give 1 for success and 0 for failure unless said
// otherwise.
#pragma once

#include "acarray.h"
#include "gebasic.h"

class AcDbPolyline;

// ---------------------------------------------------------------- prompt and database points

// Prompt points are in the current user system, database points in the world system.
void M_ToWcs(const double* in, double (&out)[3]);
void M_ToUcs(const double* in, double (&out)[3]);
// Between the host's coordinate-system codes (0 world, 1 user, 2 display, 3 paper display).
void M_Trans(const double* in, int from, int to, double (&out)[3]);
// Database point to prompt point.
void M_pt_ads(AcGePoint2d p, double (&out)[3]);
void M_pt_ads(AcGePoint3d p, double (&out)[3]);
// Prompt point to database point.
void M_ads_pt(const double* in, AcGePoint2d& p);
void M_ads_pt(const double* in, AcGePoint3d& p);
void M_ads_ads(const double* in, double (&out)[3]);

// ---------------------------------------------------------------- angles and intersections

// Direction from a to b in the XY plane, counter-clockwise from the x axis, in [0, 2*pi).
double M_Angle(AcGePoint2d a, AcGePoint2d b);
double M_Angle(AcGePoint3d a, AcGePoint3d b);
void M_Polar(AcGePoint2d p, double angle, double dist, AcGePoint2d& out);
// z is carried through.
void M_Polar(AcGePoint3d p, double angle, double dist, AcGePoint3d& out);
// Lines a1-a2 and b1-b2; teston non-zero asks for a point on both segments. 1 with out set, 0
// when parallel or off the segments. The 3D form works in the XY plane and gives out.z = 0.
int M_Inters(AcGePoint2d a1, AcGePoint2d a2, AcGePoint2d b1, AcGePoint2d b2, int teston,
             AcGePoint2d& out);
int M_Inters(AcGePoint3d a1, AcGePoint3d a2, AcGePoint3d b1, AcGePoint3d b2, int teston,
             AcGePoint3d& out);

// ---------------------------------------------------------------- polygon predicates

// By the sum of the angles the edges subtend: 1 inside, 0 on the boundary (within 0.0001),
// -1 outside. The outline closes from the last vertex back to the first.
int M_PtInPolygon(AcGePoint2d p, AcArray<AcGePoint2d> pts);
int M_PtInPolygon(AcGePoint2d p, AcArray<AcGePoint3d> pts);
// By counting edge crossings: 1 inside, 0 outside. A point on a right-hand edge counts as
// inside, one on a left-hand edge as outside. 0 for fewer than 2 vertices.
int M_IsPointInside(AcGePoint2d p, AcArray<AcGePoint2d> pts);
// 1 when p is inside or on the outline of the polyline with its arcs expanded.
int M_IsInPline(AcGePoint3d p, AcDbPolyline* pl);

// 1 when the outline runs clockwise; 0 otherwise and for fewer than 3 vertices.
int M_PolyIsClockWise(AcArray<AcGePoint3d> pts);
int M_PolyIsClockWise(AcArray<AcGePoint2d> pts);
// On the polyline's vertices, bulges ignored; 0 for null or 2 vertices or fewer.
int M_PolyIsClockWise(AcDbPolyline* pl);

// 1 when the outline has more than 2 vertices and is a valid clip boundary: closed and not
// crossing itself.
int M_CheckBorder(AcArray<AcGePoint2d> pts);
int M_CheckBorder(AcArray<AcGePoint3d> pts);
// The same with the arcs expanded; 0 when the arrays differ in length.
int M_CheckBorder(AcArray<AcGePoint2d> pts, AcArray<double> bulges);
// 1 when the closed outline with its arcs encloses more than 0.001.
int M_HasArea(AcArray<AcGePoint2d> pts, AcArray<double> bulges);

// ---------------------------------------------------------------- vectors

// Unit normal of the plane through the three points, along (p2 - p1) x (p3 - p2); the zero
// vector for collinear or coincident points.
AcGeVector3d M_GetNormal(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3);
// Unit XY direction from a to b.
AcGeVector2d M_GetVector2D(AcGePoint3d a, AcGePoint3d b);
// Unit horizontal direction from a to b: the z difference is dropped.
AcGeVector3d M_GetVector3D(AcGePoint3d a, AcGePoint3d b);
// The rotation between a Y-up model frame and the Z-up drawing frame: about the x axis by
// -pi/2 when dir is 0, by +pi/2 otherwise.
void M_Ogre2World(int dir, AcGeMatrix3d& m);

// ---------------------------------------------------------------- point-list clean-up

// By x, ties by y, when there are more than 2 points.
void M_SortPts(AcArray<AcGePoint3d>& pts);
// Removes near-coincident points (x and y both within tol), keeping the last of each cluster
// in list order. sort 1 sorts the list first, which the search needs. Always returns 0.
int M_DelMultPts(int sort, double tol, AcArray<AcGePoint3d>& pts);
int M_DelMultPts(int sort, AcArray<AcGePoint3d>& pts);
int M_DelMultPts(AcArray<AcGePoint3d>& pts);
// Works on a copy: the caller's array is left as it is.
int M_DelMultPts(int sort, AcArray<AcGePoint2d>& pts);
// Removes consecutive vertices closer than 0.0001 in XY; 1 if any went.
int M_DelPlineMultPts(AcArray<AcGePoint3d>& pts);
int M_DelPlineMultPts(AcArray<AcGePoint2d>& pts);
// With the matching bulges; 0, nothing done, when the arrays differ in length.
int M_DelPlineMultPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// Removes repeated vertices and middle vertices lying on the segment between their
// neighbours, keeping a closed outline closed. The bulge form removes a collinear vertex only
// between two straight segments, and does nothing when the arrays differ in length.
void M_DelPLineRepeatPts(AcArray<AcGePoint2d>& pts);
void M_DelPLineRepeatPts(AcArray<AcGePoint3d>& pts);
void M_DelPLineRepeatPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);
// Cuts the loops off a closed outline with arcs where it crosses itself.
void M_DelSelfInterPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges);

// ---------------------------------------------------------------- integer and face lists

void M_QuickSort(AcArray<int>& a);
// Index of key in the ascending array, or -1; with duplicates any matching index.
int M_QuickSearch(AcArray<int> a, int key);
// Reverses the vertex order of every face record (count, then that many indices).
void M_ReverseFaces(AcArray<int>& faces);
// Sum of the absolute face counts: the number of edges of the shell.
int M_GetEdgeCount(AcArray<int> faces);
