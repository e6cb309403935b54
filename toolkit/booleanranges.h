// Loops given by ranges of a point list, as the union by triangulation takes them.
#pragma once

#include "acarray.h"
#include "gebasic.h"

#include <cmath>
#include <vector>

namespace qor::boolean {

// Each [first, past) pair of ranges that fits pts, as its own point list; other pairs and a
// lone last integer are left out.
inline std::vector<AcArray<AcGePoint2d>> loopsOf(const AcArray<AcGePoint2d>& pts,
                                                 const AcArray<int>& ranges) {
    std::vector<AcArray<AcGePoint2d>> loops;
    for (int r = 0; r + 1 < ranges.length(); r += 2) {
        const int first = ranges[r], past = ranges[r + 1];
        if (first < 0 || past > pts.length() || first >= past) continue;
        AcArray<AcGePoint2d> loop(past - first);
        for (int i = first; i < past; ++i)
            loop.append(pts[i]);
        loops.push_back(loop);
    }
    return loops;
}

inline bool allFinite(const AcArray<AcGePoint2d>& pts) {
    for (const AcGePoint2d& p : pts)
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    return true;
}

} // namespace qor::boolean
