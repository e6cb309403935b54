// The point sort of the triangulation engine.
#pragma once

namespace qor::tin {

struct SortKey {
    double x, y;
    int id; // the point's input index
};

// Sorts p[l..r] by x, ties by y, top-down: each merge copies the left half forward and the
// right half reversed into `scratch` (the same size as p) and merges from both ends, so neither
// run needs an end test. Two keys with equal x and y give the right half's key first. Indices
// stay within l..r whatever the keys hold.
void mergeSortKeys(SortKey* p, SortKey* scratch, int l, int r);

} // namespace qor::tin
