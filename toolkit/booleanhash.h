// A hash of points by square cells, for finding the points within a tolerance of another in
// constant time.
#pragma once

#include "gebasic.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace qor::boolean {

class PointHash {
public:
    // Points closer than `tol` are always found; the cells are twice that wide, so two such
    // points lie in the same or neighbouring cells even after rounding.
    // `expected` points can go in without the table growing.
    explicit PointHash(double tol, int expected = 0) : mInverse(1.0 / (2.0 * tol)) {
        reserve(expected);
    }

    void reserve(int expected) {
        if (expected <= 0 || static_cast<size_t>(expected) <= mEntries.capacity()) return;
        mEntries.reserve(static_cast<size_t>(expected));
        size_t size = mHeads.empty() ? 64 : mHeads.size();
        while (size < 2 * static_cast<size_t>(expected))
            size *= 2;
        if (size > mHeads.size()) rehash(size);
    }

    // Points that are not finite are never near anything and are left out.
    void insert(const AcGePoint2d& p, int id) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
        if (2 * (mEntries.size() + 1) > mHeads.size()) grow();
        const std::int64_t cx = key(p.x), cy = key(p.y);
        const size_t h = slot(cx, cy);
        mEntries.push_back({cx, cy, id, mHeads[h]});
        mHeads[h] = static_cast<int>(mEntries.size()) - 1;
    }

    // Calls fn(id) for every point in the cells around p: all those closer than the tolerance,
    // and some more.
    template <class Fn> void forEachNear(const AcGePoint2d& p, Fn&& fn) const {
        if (mEntries.empty() || !std::isfinite(p.x) || !std::isfinite(p.y)) return;
        std::int64_t x0, x1, y0, y1;
        span(p.x, x0, x1);
        span(p.y, y0, y1);
        for (std::int64_t x = x0; x <= x1; ++x)
            for (std::int64_t y = y0; y <= y1; ++y)
                for (int k = mHeads[slot(x, y)]; k >= 0;
                     k = mEntries[static_cast<size_t>(k)].next) {
                    const Entry& e = mEntries[static_cast<size_t>(k)];
                    if (e.cx == x && e.cy == y) fn(e.id);
                }
    }

private:
    struct Entry {
        std::int64_t cx, cy;
        int id, next;
    };

    static constexpr double kLimit = 1e18;

    // Clamped, so that far points share the outer cells instead of overflowing.
    static std::int64_t clamped(double c) {
        return static_cast<std::int64_t>(c < -kLimit ? -kLimit : (c > kLimit ? kLimit : c));
    }
    std::int64_t key(double v) const { return clamped(std::floor(v * mInverse)); }
    // The cells a point closer than half a cell to v can lie in: v's own and the neighbour on
    // the side v is nearer to, or both neighbours when v is near the middle, where rounding
    // could tip the choice.
    void span(double v, std::int64_t& lo, std::int64_t& hi) const {
        const double c = std::floor(v * mInverse), f = v * mInverse - c;
        lo = clamped(f < 0.51 ? c - 1 : c);
        hi = clamped(f > 0.49 ? c + 1 : c);
    }
    size_t slot(std::int64_t cx, std::int64_t cy) const {
        const std::uint64_t h = static_cast<std::uint64_t>(cx) * 0x9E3779B97F4A7C15ull ^
                                static_cast<std::uint64_t>(cy) * 0xC2B2AE3D27D4EB4Full;
        return static_cast<size_t>((h ^ (h >> 29)) & (mHeads.size() - 1));
    }
    void grow() { rehash(mHeads.empty() ? 64 : 2 * mHeads.size()); }
    void rehash(size_t size) {
        mHeads.assign(size, -1);
        for (size_t k = 0; k < mEntries.size(); ++k) {
            Entry& e = mEntries[k];
            const size_t h = slot(e.cx, e.cy);
            e.next = mHeads[h];
            mHeads[h] = static_cast<int>(k);
        }
    }

    double mInverse; // of the cell width
    std::vector<int> mHeads;
    std::vector<Entry> mEntries;
};

} // namespace qor::boolean
