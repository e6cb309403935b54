// The engine's merge sort by x, then y.
#include "toolkit/tinsort.h"

namespace qor::tin {

namespace {

// Bitwise rather than short-circuit operators: the same answer, without branches.
bool before(const SortKey& a, const SortKey& b) {
    return (a.x < b.x) | ((a.x == b.x) & (a.y < b.y));
}

} // namespace

void mergeSortKeys(SortKey* p, SortKey* scratch, int l, int r) {
    if (r <= l) return;
    const int m = l + (r - l) / 2;
    mergeSortKeys(p, scratch, l, m);
    mergeSortKeys(p, scratch, m + 1, r);
    for (int k = l; k <= m; ++k)
        scratch[k] = p[k];
    for (int k = m + 1; k <= r; ++k)
        scratch[r + m + 1 - k] = p[k];
    // The reversed right run ends where the left one ends, so each side stops the other: i and
    // j meet after exactly r - l + 1 takes.
    // Which side gives the next key is a coin toss on scattered points: the step moves both
    // indices by arithmetic rather than by a branch the processor would mispredict half the
    // time.
    int i = l, j = r;
    for (int k = l; k <= r; ++k) {
        const bool left = before(scratch[i], scratch[j]);
        p[k] = scratch[left ? i : j];
        i += left;
        j -= !left;
    }
}

} // namespace qor::tin
