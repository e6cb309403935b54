// Label points inside outlines: the centre of the largest circle that fits inside a curve,
// found on the Voronoi vertices of points sampled along it, on a regular grid, or from the
// midpoints of chords through the mean of its points.
//
// The curve is taken as its equivalent polyline with arcs cut into pieces about 1.0 long
// (M_GetCurvePts); an open curve is closed from its end back to its start. precision chooses
// the density: 1 medium, 2 fine, any other value coarse. Everything works in the XY plane.
// The functions return 1 for success and 0 for failure, leaving their outputs as they were on
// failure.
#pragma once

#include "gebasic.h"

class AcDbCurve;

// The Voronoi vertex of the points sampled along the curve (every L/200, L/500 or L/1000 for
// curve length L) that lies inside or on the outline farthest from its segments; radius is
// that distance. Edges reaching the diagram's box are left out. The first of equally distant
// vertices wins.
int M_GetCenPtVoron(AcDbCurve* c, int precision, AcGePoint2d& centre, double& radius);

// The same on a grid over the curve's extents, with the spacing min(width, height) divided by
// 10, 50 or 100 but never below 0.001, starting one spacing in from the lower left; columns
// are visited left to right and each from the bottom up, and the first of equally distant
// points wins.
int M_GetCenPtNet(AcDbCurve* c, int precision, AcGePoint2d& centre, double& radius);

// The first of: M_GetCenPtVoron, M_GetCenPtNet, the chord method, the curve's start point. 0
// only when not even the start point can be read.
int M_FindInCircle(AcDbCurve* c, int precision, AcGePoint2d& pt);

// The same methods in the order: chord method, M_GetCenPtVoron, M_GetCenPtNet, start point.
int M_FindCenPoint(AcDbCurve* c, int precision, AcGePoint2d& pt);
