// Outlines with arcs as temporary polylines: the piece the polygon predicates share.
#pragma once

#include "acarray.h"
#include "dbents.h"

#include <memory>

namespace qor::geometry {

// An open lightweight polyline of the vertices and bulges (start and end widths -1, constant
// width 0), never added to a drawing. The arrays must have the same length.
std::unique_ptr<AcDbPolyline> bulgedPline(const AcArray<AcGePoint2d>& pts,
                                          const AcArray<double>& bulges);

} // namespace qor::geometry
