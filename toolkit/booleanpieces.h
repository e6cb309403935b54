// The engine's kept pieces, and their joining into loops.
#pragma once

#include "acarray.h"
#include "gebasic.h"
#include "toolkit/booleanhash.h"

#include <cstdint>
#include <vector>

namespace qor::boolean {

// Ends closer than this are one point when pieces are compared and joined.
constexpr double kJoinTol = 0.0001;

struct Piece {
    AcGePoint2d start, end;
    std::int64_t type; // the pass that kept it
};

class PieceList {
public:
    // Indexed, the pieces' ends go into a hash (end 2k is piece k's start, 2k + 1 its end),
    // through which the search for an equal piece goes instead of over the whole list; the
    // outcome is the same.
    explicit PieceList(bool indexed) : mIndexed(indexed), mEnds(kJoinTol) {}

    // Room for about this many pieces.
    void reserve(int pieces) {
        mPieces.reserve(static_cast<size_t>(pieces));
        if (mIndexed) mEnds.reserve(2 * pieces);
    }
    // Adds the piece p-q unless one with the same ends, either way round, is there already.
    void add(const AcGePoint2d& p, const AcGePoint2d& q, std::int64_t type);
    const std::vector<Piece>& pieces() const { return mPieces; }
    // The hash of the ends; null when not indexed.
    const PointHash* ends() const { return mIndexed ? &mEnds : nullptr; }

private:
    bool contains(const AcGePoint2d& p, const AcGePoint2d& q) const;

    bool mIndexed;
    std::vector<Piece> mPieces;
    PointHash mEnds;
};

// Joins the pieces into chains, attaching pieces either way round at either end in repeated
// passes over the list, and appends each chain to `counts` (its point count, then the indices
// of its points) and its points to `pts`. A chain that closes ends with its first point again.
// Indexed, each pass jumps straight to the next piece that attaches; the chains are the same.
// Returns the number of chains.
int assembleLoops(const PieceList& pieces, AcArray<int>& counts, AcArray<AcGePoint2d>& pts);

} // namespace qor::boolean
