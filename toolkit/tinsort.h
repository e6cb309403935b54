// The point sort of the triangulation engine.
#pragma once

namespace qor::tin {

struct SortKey {
    double x, y;
    int id; // the point's input index
};

// Sorts p[0..n-1] by x, ties by y, using `scratch` (the same size as p). Keys with equal x and
// y end up side by side in no particular order. Values that are not finite numbers are put
// somewhere in the order without leaving p.
void sortKeys(SortKey* p, SortKey* scratch, int n);

} // namespace qor::tin
