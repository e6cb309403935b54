// Classifying points against a polygon, as the angle-sum test does, for many points.
#pragma once

#include "toolkit/booleangrid.h"

#include <vector>

namespace qor::boolean {

class PolygonLocator {
public:
    // The polygon and its edge table; with a grid built on those edges the test visits only
    // the edges that can change its answer, otherwise it runs over the whole outline.
    PolygonLocator(const AcArray<AcGePoint2d>& polygon, const std::vector<Edge>& edges,
                   EdgeGrid* grid);

    // The answer of M_PtInPolygon(p, polygon): 1 inside, 0 on the boundary, -1 outside.
    int locate(const AcGePoint2d& p);

private:
    const AcArray<AcGePoint2d>& mPolygon;
    const std::vector<Edge>& mEdges;
    EdgeGrid* mGrid;
};

} // namespace qor::boolean
