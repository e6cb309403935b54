// Outlines with arcs as temporary polylines, and their arcs expanded into points: the pieces
// the polygon predicates share.
#pragma once

#include "acarray.h"
#include "dbents.h"

#include <memory>

namespace qor::geometry {

// An open lightweight polyline of the vertices and bulges (start and end widths -1, constant
// width 0), never added to a drawing. The arrays must have the same length.
std::unique_ptr<AcDbPolyline> bulgedPline(const AcArray<AcGePoint2d>& pts,
                                          const AcArray<double>& bulges);

// The outline of a polyline in its own plane with every arc replaced by points about `step`
// apart: vertex 0, then each line segment's end, then for an arc of length L the points at
// L*k/n, k = 1..n, with n = floor(L / max(step, 0.2)) capped at 100. An arc shorter than the
// step contributes nothing, not even its end vertex. 1, with pts replaced, when any segment
// contributed; 0, pts untouched, otherwise or for a null polyline or a step below 0.00001.
int expandPlineArcs(const AcDbPolyline* pl, double step, AcArray<AcGePoint2d>& pts);

} // namespace qor::geometry
