// What the boolean engine's passes work on: polygon edges, the points an edge is split at, and
// where two edges meet.
#pragma once

#include "acarray.h"
#include "gebasic.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace qor::boolean {

// Where a point lies against the other polygon.
enum PointClass : std::int32_t { kOutside = 0, kInside = 1, kOnBoundary = 2, kCrossing = 3 };

inline bool isBoundary(std::int32_t c) {
    return c == kOnBoundary || c == kCrossing;
}

// From the angle-sum test's -1 outside, 0 on the boundary, 1 inside.
inline std::int32_t classOf(int location) {
    return location < 0 ? kOutside : (location == 0 ? kOnBoundary : kInside);
}

struct Edge {
    double x1, y1, x2, y2;
};

struct SplitPoint {
    double x, y;
    std::int32_t type;
};

// a.distanceTo(b) < tol, deciding without the square root unless the distance is within
// rounding of tol: the distance is never below either coordinate difference.
inline bool closerThan(const AcGePoint2d& a, const AcGePoint2d& b, double tol) {
    const double dx = a.x - b.x, dy = a.y - b.y;
    if (std::fabs(dx) >= tol || std::fabs(dy) >= tol) return false;
    const double s = dx * dx + dy * dy, t = tol * tol;
    if (s < t * (1.0 - 1e-9)) return true;
    if (s > t * (1.0 + 1e-9)) return false;
    return a.distanceTo(b) < tol;
}

// Two split points closer than this are one.
constexpr double kSplitTol = 1e-6;
// Lines whose determinant is smaller than this in magnitude are parallel.
constexpr double kParallelDet = 1e-6;

// Edge i runs from vertex i to vertex (i + 1) mod n.
std::vector<Edge> edgeTable(const AcArray<AcGePoint2d>& polygon);

// Adds to `split` where edge f meets edge e: their crossing, or, when the two lie on one line,
// the ends of f that lie on e. A point already in the list within kSplitTol is only marked as a
// crossing.
void addMeetings(const Edge& e, const Edge& f, std::vector<SplitPoint>& split);

// Orders the split points by their distance from e's start; equal distances keep their order.
void sortAlong(const Edge& e, std::vector<SplitPoint>& split);

} // namespace qor::boolean
