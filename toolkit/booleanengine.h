// The two-polygon boolean engine: each polygon's edges are split where they meet the other
// polygon, the pieces an operation needs are kept by its pass rules, and the kept pieces are
// joined into loops.
#pragma once

#include "acarray.h"
#include "gebasic.h"

namespace qor::boolean {

enum Operation { kUnion = 0, kIntersection = 1, kDifference = 2 };

struct EngineOptions {
    // Spatial indexes narrow every search to what can matter. Off, each search runs over
    // everything, exactly as the rules read; both give the same loops.
    bool indexed = true;
};

// Removes, walking round the closed outline, each vertex closer than 0.0001 to the vertex after
// it (the last vertex is followed by the first).
void cleanPolygon(AcArray<AcGePoint2d>& pts);

// A op B as loops: counts holds each loop's point count followed by the indices of its points
// in pts; both are replaced. 1 when at least one loop came out; 0 for an unknown op, a polygon
// with fewer than 3 usable vertices or with a coordinate that is not a finite number, or no
// loop.
int booleanLoops(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<int>& counts,
                 AcArray<AcGePoint2d>& pts, const EngineOptions& options = {});

} // namespace qor::boolean
