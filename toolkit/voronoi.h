// Voronoi (Thiessen) diagrams of plan points, built as the dual of their Delaunay
// triangulation and clipped to the points' bounding box enlarged by 10 drawing units on every
// side.
//
// The sites are the given points with z = 0, sorted by x, then y, with near-coincident points
// (0.0001) merged as M_DelMultPts does; cells come out in that order. Every output point has
// z = 0. The functions return 1 for success and 0 for failure.
#pragma once

#include "acarray.h"
#include "gebasic.h"

// out is cleared first, whatever the result.
//
// mode 0: the Voronoi edges as pairs of points in out, two entries per edge and one record
// per edge. An edge between two triangles joins their circumcentres; an edge of a hull side
// runs from its triangle's circumcentre outwards, square to the side, to the box. Edges are
// cut where they leave the box; one wholly outside it gives no record. Two triangles with one
// circumcentre (four or more sites on one circle) still give their edge, of no length: its
// point is a vertex of the diagram. counts is left as it is.
//
// mode 1: counts is cleared too, then each site's cell is appended as a polygon: its corner
// count in counts and its corners in out, counter-clockwise around the site without repeating
// the first. The first corner is the one whose direction from the site is the smallest angle
// counter-clockwise from the x axis. A cell that reaches the box is closed along the box's
// sides, through its corners where it covers them, so that every cell is a convex polygon
// holding its site and the cells tile the box.
//
// Sites all on one line have no triangles: their edges are the bisectors between neighbours
// along the line, across the whole box, and their cells the strips between them. A single
// site has no edge (mode 0 gives 0) and the whole box as its cell.
//
// 0 for another mode, no site, a coordinate that is not a finite number, or nothing produced.
int M_GetVoronoi(int mode, const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& out,
                 AcArray<int>& counts);
