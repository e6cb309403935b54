// The hatch's loops and the geometry the hatch code shares about them: copying edges,
// outlines as point rings, areas, and the plane-to-plane map of a transform.
#pragma once

#include "db/ents/curvegeom.h"
#include "dbhatch.h"
#include "gecurves.h"

#include <memory>
#include <vector>

struct AcDbHatch::Loop {
    Adesk::Int32 type = 0;
    // A polyline loop: vertices and bulges (empty, or one per vertex); the last vertex joins
    // the first.
    std::vector<AcGePoint2d> verts;
    std::vector<double> bulges;
    // An edge loop.
    std::vector<int> edgeTypes;
    std::vector<std::unique_ptr<AcGeCurve2d>> edges;
    std::vector<AcDbObjectId> ids;
    // The edges a polyline loop was last handed out as.
    mutable std::vector<std::unique_ptr<AcGeCurve2d>> handedOut;

    bool isPolyline() const { return (type & AcDbHatch::kPolyline) != 0; }
    double bulge(size_t i) const { return i < bulges.size() ? bulges[i] : 0.0; }
};

namespace ents_detail {

// A copy of an edge whose class matches its hatch edge type; null otherwise.
std::unique_ptr<AcGeCurve2d> copyEdge(const AcGeCurve2d* edge, int edgeType);
// A polyline loop's segments as line and arc edges, with their types.
void polylineEdges(const AcDbHatch::Loop& loop, std::vector<std::unique_ptr<AcGeCurve2d>>& edges,
                   std::vector<int>& types);
// The loop as a ring of points whose chords stay within eps of it (not repeating its start).
std::vector<AcGePoint2d> loopRing(const AcDbHatch::Loop& loop, double eps);
// The area the loop encloses.
double loopArea(const AcDbHatch::Loop& loop);
// Diagonal of the box of the loops' vertices and edge ends, at least 1.
double loopsSize(const std::vector<std::unique_ptr<AcDbHatch::Loop>>& loops);

// The 2D map m (in the entry[i][j] layout, translation in column 2) taking plane coordinates of
// the frame `from` to those of `to` after xform; false when the plane collapses.
bool planeMap(const Frame& from, const AcGeMatrix3d& xform, const Frame& to, AcGeMatrix2d& m);

} // namespace ents_detail
