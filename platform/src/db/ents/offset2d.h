// Offsetting a planar run of line and arc segments (a lightweight polyline's vertices and
// bulges) to one side: each segment is moved, then neighbours are joined again.
#pragma once

#include "gebasic.h"

#include <optional>
#include <vector>

namespace ents_detail {

struct BulgeVertex {
    AcGePoint2d pt;
    double bulge = 0.0;
};

struct BulgePath {
    std::vector<BulgeVertex> verts; // an open path's last bulge is ignored
    bool closed = false;
};

// The path at distance dist, positive to the right of the direction of travel (so an arc
// travelled counter-clockwise grows). Corners between lines are extended until they meet,
// joints with arcs are trimmed or extended to the nearest crossing of the carriers, and
// round where the carriers do not meet; segments that shrink to nothing are dropped.
// Nothing when no segment survives or a closed path would turn inside out.
std::optional<BulgePath> offsetPath(const BulgePath& path, double dist);

} // namespace ents_detail
