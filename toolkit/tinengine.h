// The triangulation engine: a Delaunay triangulation of plan points built by divide and
// conquer over pairs of half-edges linked round their origins, the merges decided by comparing the
// cotangents of the angles the candidates see the base edge under.
//
// One network lives for one call of the toolkit's triangulation functions; nothing is kept
// between calls. Running out of memory ends the process after telling the user: the engine has
// no way back.
#pragma once

#include "acarray.h"
#include "gebasic.h"

#include <memory>

namespace qor::tin {

// One direction of an edge: where it goes, and the next and previous half-edges leaving its
// origin counter-clockwise. An edge's two halves sit side by side, h and h ^ 1, so the way back
// is one bit away and a walk round a point never has to ask which end it stands at.
struct HalfEdge {
    int dest;
    int next;
    int prev;
};

inline int twin(int h) {
    return h ^ 1;
}

class Network {
public:
    Network() = default;
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    // Triangulates pts[0..n-1], which must stay alive and unchanged while the network is used.
    // False, leaving the network empty, for fewer than 2 points, a coordinate that is not
    // finite, or two points at the same plan position (the engine's arithmetic needs distinct
    // points; callers clean their lists first).
    bool build(const AcGePoint3d* pts, int n);

    // Points are numbered by their place in the order by x, then y, so that neighbours in the
    // network are mostly neighbours in memory; id gives a place's number in the input.
    int size() const { return mCount; }
    int id(int v) const { return mOrder[v]; }
    const AcGePoint3d& point(int v) const { return mPts[mOrder[v]]; }
    // One half-edge leaving v, or -1 when v has none.
    int entry(int v) const { return mEntry[v]; }
    int dest(int h) const { return mHalves[h].dest; }
    // The half-edges leaving h's origin, counter-clockwise.
    int next(int h) const { return mHalves[h].next; }
    int prev(int h) const { return mHalves[h].prev; }

    // The rotation around u passing from u-v to u-w closes a triangle u, v, w both for a face
    // and, when the hull has three corners, for the outside. True for the outside.
    bool isOuterFace(int u, int v, int w) const {
        // The outside is the face on the left of the hull edge's reverse.
        const int a = mHullTo, b = mHullFrom;
        return (u == a && v == b) || (v == a && w == b) || (w == a && u == b);
    }

    // Every ring of half-edges closes on itself with matching forward and backward links, and
    // every half-edge of a point's ring leaves that point.
    bool isValid() const;

private:
    const AcGePoint3d* mPts = nullptr;
    int mCount = 0;
    int mHalfCount = 0;
    std::unique_ptr<int[]> mEntry;
    std::unique_ptr<int[]> mOrder;
    std::unique_ptr<HalfEdge[]> mHalves;
    // The hull edge leaving the leftmost point counter-clockwise: the outside lies on the left
    // of its reverse.
    int mHullFrom = -1, mHullTo = -1;
};

// Whether every point has finite x and y: the clean-up sorts by plan position, which means
// nothing for a coordinate that is not a number.
bool planFinite(const AcArray<AcGePoint3d>& pts);

// Prints the engine's out-of-memory message and ends the process with exit code 1.
[[noreturn]] void outOfMemory();

} // namespace qor::tin
