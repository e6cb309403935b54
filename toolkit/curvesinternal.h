// Pieces the curve functions share: sample counts, thinning, arc expansion of polylines and
// bulged segments.
#pragma once

#include "acarray.h"
#include "dbents.h"

namespace qor::curves {

// The smallest step and length a sampler accepts.
constexpr double kMinStep = 0.0001;

// n = floor(length / step), at most maxCount, at least minCount; false for a null curve, a step
// below kMinStep or a length below kMinStep.
bool sampleCount(const AcDbCurve* c, double step, int minCount, int maxCount, int& n);

// Drops p[i-1] wherever the path p[i-2], p[i-1], p[i] turns by less than 0.01 radian.
void thin(AcArray<AcGePoint3d>& pts);

// Appends the first point again when the last is more than 0.001 from it.
void closeRing(AcArray<AcGePoint3d>& pts);

// How an arc segment of length L is divided: n = floor(L / max(step, minStep)), then either
// capped at `cap` (when cap > 0) or clamped to [minCount, maxCount].
struct ArcDivision {
    double step = 1.0;
    double minStep = 0.2;
    int cap = 100;
    int minCount = 0, maxCount = 0;
    int parts(double length) const;
};

// The polyline's vertex 0, then per segment its end vertex (lines) or the points at L*k/n,
// k = 1..n (arcs); coincident and empty segments give nothing. False, out untouched, when no
// segment gave a point.
bool expandPline(const AcDbPolyline& pl, const ArcDivision& div, AcArray<AcGePoint2d>& out);

// Length of the segment from a to b with the bulge: the chord or the circular arc.
double bulgedLength(const AcGePoint2d& a, const AcGePoint2d& b, double bulge);

// Length of a run of vertices and bulges (bulge i on the segment from vertex i to i+1).
double runLength(const AcArray<AcGePoint2d>& pts, const AcArray<double>& bulges, int from, int to);

// Appends a new entity to a block of its database (opened for write for the purpose); on
// success the entity is closed and id set, on failure it is left to the caller to delete.
bool appendToBlock(AcDbObjectId blockId, AcDbEntity* ent, AcDbObjectId& id);

} // namespace qor::curves
