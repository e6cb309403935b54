// The engine's point sort: by the bits of x, then by y among equal x.
//
// Comparing doubles sends the processor down the wrong branch half the time on scattered
// points; a radix sort on x only counts and moves. The order is the one the comparison gives, so
// the network does not depend on which sort made it.
#include "toolkit/tinsort.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qor::tin {

namespace {

constexpr int kDigitBits = 11;
constexpr int kBuckets = 1 << kDigitBits;
constexpr int kDigits = (64 + kDigitBits - 1) / kDigitBits;

// A finite value as an unsigned number in the same order; -0 and +0 compare equal, so both map
// to the key of +0. Any other bits get some place too, so that the sort keeps to its range
// whatever it is given.
uint64_t orderKey(double x) {
    const double v = x + 0.0;
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return (bits >> 63) ? ~bits : bits | (uint64_t{1} << 63);
}

int digit(const SortKey& k, int d) {
    return static_cast<int>((orderKey(k.x) >> (d * kDigitBits)) & (kBuckets - 1));
}

bool before(const SortKey& a, const SortKey& b) {
    const uint64_t ax = orderKey(a.x), bx = orderKey(b.x);
    return ax < bx || (ax == bx && orderKey(a.y) < orderKey(b.y));
}

bool belowInY(const SortKey& a, const SortKey& b) {
    return orderKey(a.y) < orderKey(b.y);
}

// Stable least-significant-digit first, skipping the digits all keys share; the result lands
// back in p.
void radixByX(SortKey* p, SortKey* scratch, int n) {
    static_assert(kDigits * kDigitBits >= 64);
    int count[kDigits][kBuckets] = {};
    for (int i = 0; i < n; ++i)
        for (int d = 0; d < kDigits; ++d)
            ++count[d][digit(p[i], d)];
    SortKey *from = p, *to = scratch;
    for (int d = 0; d < kDigits; ++d) {
        int* c = count[d];
        if (c[digit(p[0], d)] == n) continue;
        int at = 0;
        for (int b = 0; b < kBuckets; ++b) {
            const int k = c[b];
            c[b] = at;
            at += k;
        }
        for (int i = 0; i < n; ++i)
            to[c[digit(from[i], d)]++] = from[i];
        std::swap(from, to);
    }
    if (from != p) std::copy(from, from + n, p);
}

} // namespace

void sortKeys(SortKey* p, SortKey* scratch, int n) {
    if (n < 2) return;
    // Below a few hundred keys clearing the counts costs more than comparing.
    if (n < 256) {
        std::sort(p, p + n, before);
        return;
    }
    radixByX(p, scratch, n);
    for (int i = 0; i < n;) {
        int j = i + 1;
        while (j < n && orderKey(p[j].x) == orderKey(p[i].x))
            ++j;
        if (j - i > 1) std::sort(p + i, p + j, belowInY);
        i = j;
    }
}

} // namespace qor::tin
