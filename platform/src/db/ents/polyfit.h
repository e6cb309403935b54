// The fitted forms of the heavy polylines: spline fitting (points along a uniform B-spline of
// the frame vertices) and curve fitting (two arcs per segment meeting tangentially).
#pragma once

#include "gebasic.h"

#include <vector>

namespace ents_detail {

// Points along the uniform B-spline of the given degree with the frame points as control
// points, `segs` per span; a closed frame wraps round (and its last point is not repeated).
// Empty for fewer than two frame points.
std::vector<AcGePoint3d> splineFitPoints(const std::vector<AcGePoint3d>& frame, int degree,
                                         bool closed, int segs);

struct FitVertex {
    AcGePoint2d pt;
    double bulge = 0.0;
    bool added = false; // the joint of a segment's two arcs
    size_t source = 0;  // the original vertex the segment starts at
};

// The curve fit through the points: every original vertex, then its segment's joint.
std::vector<FitVertex> curveFitVertices(const std::vector<AcGePoint2d>& pts, bool closed);

} // namespace ents_detail
