// Locating query points on a live network: the walk from point to point of the batch height
// functions, and the nearest network point for the points it cannot place.
#pragma once

#include "toolkit/tinengine.h"

#include <cstdint>
#include <vector>

namespace qor::tin {

// The network's rings laid out block after block along a Hilbert curve. A walk moves between
// neighbours in the plane, which the curve keeps near each other in memory; a step reads one
// block, works out no angle twice, and fetches the blocks it may go on to while it looks
// around. The layout changes where things are, not what a walk finds.
class Walker {
public:
    // input is the network's point list; both must outlive the walker.
    Walker(const Network& net, const AcArray<AcGePoint3d>& input);

    // Starting at the first input point: a triangle around the current point that holds q (or
    // q at one of its corners) gives the height; otherwise on to the neighbour that is the
    // smallest counter-clockwise turn from the direction of q. False when the walk finds no
    // triangle, or the triangle's rules give no height.
    bool locate(const AcGePoint3d& q, double& h);

    // The height of the nearest network point in plan, the first in input order of equally
    // near ones.
    bool nearest(const AcGePoint3d& q, double& h) const;

private:
    // A point's block is its hub cell followed by one spoke cell per neighbour,
    // counter-clockwise from its entry edge. A hub holds the point, the reach of its triangles
    // as value, its number of spokes as link and the mark of the last walk that passed; a
    // spoke holds the neighbour, its direction as value and the neighbour's block as link.
    struct Cell {
        AcGePoint3d p;
        double value;
        int link;
        int seen;
    };

    const AcArray<AcGePoint3d>& mInput;
    int mCount;
    int mFirst = 0;
    std::vector<Cell> mCells;
    int mStamp = 0;
};

} // namespace qor::tin
