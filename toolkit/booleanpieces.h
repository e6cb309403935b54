// The engine's kept pieces, and their joining into loops.
#pragma once

#include "acarray.h"
#include "gebasic.h"

#include <cstdint>
#include <vector>

namespace qor::boolean {

// Ends closer than this are one point when pieces are compared and joined.
constexpr double kJoinTol = 0.0001;

struct Piece {
    AcGePoint2d start, end;
    std::int64_t type; // the pass that kept it
};

// Drops each piece whose ends match those of an earlier piece that stayed, either way round;
// then joins the rest into chains, attaching pieces either way round at either end in repeated
// passes over the list, and appends each chain to `counts` (its point count, then the indices
// of its points) and its points to `pts`. A chain that closes ends with its first point again.
// Indexed, both steps look only at pieces whose ends lie near, found once for all; the pieces
// and chains are the same. Returns the number of chains.
int assembleLoops(const std::vector<Piece>& found, bool indexed, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts);

} // namespace qor::boolean
