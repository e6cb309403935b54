// A uniform grid over a polygon's edges, so that the engine's searches look only at edges that
// can matter instead of at all of them.
#pragma once

#include "toolkit/booleanedges.h"

#include <cstdint>
#include <vector>

namespace qor::boolean {

class EdgeGrid {
public:
    // Lists every edge in each cell that comes within its margin of it. The margin covers the
    // band beside an edge where the angle-sum test calls a point on the boundary and the
    // distance within which edges meet, so a search in the right cells never misses an edge.
    void build(const std::vector<Edge>& edges);

    double margin(int edge) const { return mMargin[static_cast<size_t>(edge)]; }
    // Whether p lies within the polygon's box widened by the largest margin.
    bool covers(double x, double y) const;

    // The edges listed in the cells the segment passes through, ascending, each once.
    void alongSegment(const Edge& s, std::vector<int>& out);
    // Calls fn(edge) for every edge listed in p's cell and in the cells to its right in the same
    // row, each once, until a call returns true; returns whether one did.
    template <class Fn> bool anyRightOf(double x, double y, Fn&& fn) {
        nextStamp();
        const int j = row(y);
        for (int c = column(x); c < mNx; ++c) {
            const size_t cell = static_cast<size_t>(j * mNx + c);
            for (int i = mStart[cell]; i < mStart[cell + 1]; ++i) {
                const int edge = mItems[static_cast<size_t>(i)];
                std::uint32_t& stamp = mStamp[static_cast<size_t>(edge)];
                if (stamp == mGeneration) continue;
                stamp = mGeneration;
                if (fn(edge)) return true;
            }
        }
        return false;
    }

private:
    int column(double x) const { return cell(x - mX0, mNx); }
    int row(double y) const { return cell(y - mY0, mNy); }
    // Clamped to the grid, as are values that are not numbers. From 0 up, truncation is the
    // floor, and the floor reaches `count` exactly when the value does.
    int cell(double offset, int count) const {
        const double t = offset * mInverse;
        if (!(t >= 0.0)) return 0;
        return t >= count ? count - 1 : static_cast<int>(t);
    }
    template <class Fn> void forEachCell(const Edge& s, double reach, Fn&& fn) const;
    void collect(int cell, std::vector<int>& out);
    void nextStamp();

    double mX0 = 0, mY0 = 0, mCell = 1, mInverse = 1, mSlack = 0;
    double mXmin = 0, mXmax = 0, mYmin = 0, mYmax = 0;
    int mNx = 1, mNy = 1;
    std::vector<int> mStart; // cell c lists mItems[mStart[c] .. mStart[c + 1])
    std::vector<int> mItems;
    std::vector<double> mMargin;
    std::vector<std::uint32_t> mStamp; // an edge already collected in the current search
    std::uint32_t mGeneration = 0;
};

} // namespace qor::boolean
