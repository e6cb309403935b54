// What both forms of the Voronoi diagram are read from: the cleaned sites, the enlarged box,
// the Delaunay triangles with their circumcentres, and for every site the triangles around
// it.
#pragma once

#include "acarray.h"
#include "gebasic.h"

#include <vector>

namespace qor::voronoi {

// Sites lie at least this far inside the box on every side.
inline constexpr double kBoxMargin = 10.0;

struct Box {
    double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
};

struct Diagram {
    // In the order M_DelMultPts leaves them: by x, then y.
    std::vector<AcGePoint2d> sites;
    Box box;
    // Three site numbers per triangle, counter-clockwise.
    std::vector<int> corners;
    // Per triangle; a triangle too flat for a finite circumcentre has ok false.
    std::vector<AcGePoint2d> centre;
    std::vector<char> centreOk;
    // The triangles around site s are around[first[s] .. first[s + 1]).
    std::vector<int> first, around;

    int triangles() const { return static_cast<int>(centre.size()); }
    // The triangle other than t that has both a and b as corners, or -1 (a hull side).
    int across(int t, int a, int b) const;
    // The sites joined to s by a triangle side, each once; for sites on one line, the sites
    // before and after s along it.
    void neighbours(int s, std::vector<int>& out) const;
    // Lengths below this count as none: circumcentres of sites on one circle differ by
    // rounding only.
    double negligible() const;
};

// Copies the points with z = 0, cleans them and triangulates. False for no site or a
// coordinate that is not a finite number.
bool buildDiagram(const AcArray<AcGePoint3d>& pts, Diagram& d);

// The part of the line p + t·dir with t0 <= t <= t1 inside the box, as its two ends; false
// when none of it is inside. t0 and t1 may be infinite.
bool clipToBox(const Box& box, AcGePoint2d p, AcGeVector2d dir, double t0, double t1,
               AcGePoint2d& a, AcGePoint2d& b);

// Mode 0 and mode 1 of M_GetVoronoi, appending to out (and counts).
void appendEdges(const Diagram& d, AcArray<AcGePoint3d>& out);
void appendCells(const Diagram& d, AcArray<AcGePoint3d>& out, AcArray<int>& counts);

} // namespace qor::voronoi
