// Host geometry functions on prompt points: coordinate-system conversion, angles, polar points,
// distances and line intersections, and the host's current user coordinate system.
//
// Coordinate systems are named by result buffers, as on the platform:
//   RTSHORT 0  world (WCS)
//   RTSHORT 1  the current user system (UCS)
//   RTSHORT 2  display coordinates of the current view. This host has no views: display
//              coordinates are the user system's.
//   RTSHORT 3  paper-space display coordinates; they convert only to and from code 2, and are
//              the same as display coordinates here.
//   RTENAME    the entity coordinate system of a drawing entity: the arbitrary-axis system of
//              its normal for planar entities (arcs, circles, lightweight polylines, texts,
//              block references), the world system for the others.
//   RT3DPOINT  the arbitrary-axis system of the extrusion vector given.
#pragma once

#include "acstatus.h"
#include "adsdef.h"
#include "gebasic.h"

// Converts pt from one system to another. With disp non-zero pt is a displacement: only the
// axes apply, not the origins. RTNORM; RTERROR, with result left as it was, for a null
// argument, an unknown code, a zero extrusion, paper-space coordinates paired with anything
// but display ones, or an entity name that is not in a drawing or cannot be opened for read.
int acedTrans(const ads_point pt, const resbuf* from, const resbuf* to, int disp, ads_point result);

// Angle of the direction from pt1 to pt2 in the XY plane, counter-clockwise from the x axis, in
// [0, 2*pi); z is ignored. Equal points give 0.
ads_real acutAngle(const ads_point pt1, const ads_point pt2);
// The point dist away from pt in the XY direction angle; z is carried through.
void acutPolar(const ads_point pt, ads_real angle, ads_real dist, ads_point result);
// Distance in space between two points.
ads_real acutDistance(const ads_point pt1, const ads_point pt2);

// The point where line from1-to1 meets line from2-to2 in space. With teston non-zero the point
// must lie on both segments (their end points included). RTNORM with result set; RTNONE when
// the lines are parallel, skew, degenerate, or meet off a segment; RTERROR for a null argument.
int acdbInters(const ads_point from1, const ads_point to1, const ads_point from2,
               const ads_point to2, int teston, ads_point result);

// ---------------------------------------------------------------- the user coordinate system

// Makes the system with this origin and axes current. The y axis is made perpendicular to the
// x axis in their plane; false (nothing changed) when either is zero or they are parallel.
bool qorSetUcs(const AcGePoint3d& origin, const AcGeVector3d& xAxis, const AcGeVector3d& yAxis);
// The current system: origin and unit axes. The world system until one is set.
void qorGetUcs(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis, AcGeVector3d& zAxis);
// Back to the world system.
void qorResetUcs();

// The current system as the matrix that takes user coordinates to world coordinates.
Acad::ErrorStatus acedGetCurrentUCS(AcGeMatrix3d& mat);
// Sets the current system from such a matrix (its columns: x axis, y axis, z axis, origin).
// eInvalidInput, nothing changed, when the x and y columns are zero or parallel.
Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& mat);
