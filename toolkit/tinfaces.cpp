// Triangulation entry points: the network's triangles as point triples or face records.
#include "toolkit/geometry.h"
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"

#include <algorithm>
#include <vector>

namespace {

using qor::tin::Network;
using qor::tin::outOfMemory;
using qor::tin::planFinite;
using qor::tin::twin;

// Walks the rings of the points at places first..last-1 in turn, counter-clockwise from each
// one's entry, and collects the pair v, w of each face reported from the point: each face once,
// from its corner first in input order, the other two in input order. It moves one half-edge a
// step, so that several walks can take turns and the reads of one overlap the others' waits.
class RingWalk {
public:
    RingWalk(const Network& net, int first, int last, size_t* runEnd)
        : mNet(net), mS(first), mLast(last), mRunEnd(runEnd) {
        // Fewer than two faces a point, two numbers each.
        mPairs.reserve(static_cast<size_t>(last - first) * 4 + 64);
        openPoint();
    }

    bool done() const { return mS >= mLast; }
    const std::vector<int>& pairs() const { return mPairs; }

    void step() {
        const int pv = mNet.dest(mE), v = mNet.id(pv);
        const int nx = mNet.next(mE);
        if (mU < v) {
            const int pw = mNet.dest(nx), w = mNet.id(pw);
            // v-w closes the turn from u-v to u-w when it is the edge after w-u around w and
            // before u-v around v, met from each of its ends. A point with one edge sees that
            // edge again: v == w is no triangle.
            if (mU < w && v != w && mNet.next(twin(nx)) == twin(mNet.prev(twin(mE))) &&
                !mNet.isOuterFace(mS, pv, pw)) {
                mPairs.push_back(std::min(v, w));
                mPairs.push_back(std::max(v, w));
            }
        }
        mE = nx;
        if (mE != mStart) return;
        mRunEnd[mS] = mPairs.size();
        ++mS;
        openPoint();
    }

private:
    const Network& mNet;
    int mS, mLast, mStart = -1, mE = -1, mU = -1;
    size_t* mRunEnd; // where each point's run ends in pairs(), by place
    std::vector<int> mPairs;

    // Moves on from mS to the first point with edges, closing the empty runs of those without.
    void openPoint() {
        for (; mS < mLast; ++mS) {
            mStart = mE = mNet.entry(mS);
            if (mStart >= 0) {
                mU = mNet.id(mS);
                return;
            }
            mRunEnd[mS] = mPairs.size();
        }
    }
};

// Every triangle of the network, gathered by walking the rings in sorted order, where they lie
// close together in memory, and handed out ordered by the input number of the point each is
// reported from.
class Triangles {
public:
    explicit Triangles(const Network& net)
        : mNet(net), mRunStart(static_cast<size_t>(net.size()) + 1),
          mPlace(static_cast<size_t>(net.size())) {
        const int n = net.size();
        for (int s = 0; s < n; ++s)
            mPlace[static_cast<size_t>(net.id(s))] = s;
        std::vector<RingWalk> walks;
        walks.reserve(kWalks);
        for (int k = 0; k < kWalks; ++k)
            walks.emplace_back(net, stretchEnd(k - 1), stretchEnd(k), mRunStart.data() + 1);
        walkSideBySide(walks);
        join(walks);
    }

    size_t count() const { return mPairs.size() / 2; }

    // put(u, v, w) for every triangle, in the reported order.
    template <class Put> void forEach(Put&& put) const {
        const int n = mNet.size();
        for (int u = 0; u < n; ++u) {
            const size_t s = static_cast<size_t>(mPlace[static_cast<size_t>(u)]);
            for (size_t k = mRunStart[s]; k < mRunStart[s + 1]; k += 2)
                put(u, mPairs[k], mPairs[k + 1]);
        }
    }

private:
    // Each walk is a chain of reads, each waiting on the one before: four stretches of the
    // points walked side by side keep four reads in flight.
    static constexpr int kWalks = 4;

    // Where the k-th stretch of places ends; -1 for the one before the first.
    int stretchEnd(int k) const {
        return static_cast<int>(static_cast<long long>(mNet.size()) * (k + 1) / kWalks);
    }

    static void walkSideBySide(std::vector<RingWalk>& walks) {
        for (bool busy = true; busy;) {
            busy = false;
            for (RingWalk& w : walks)
                if (!w.done()) {
                    w.step();
                    busy = true;
                }
        }
    }

    // The stretches follow one another: their runs, joined, are in sorted order.
    void join(const std::vector<RingWalk>& walks) {
        size_t total = 0;
        for (const RingWalk& w : walks)
            total += w.pairs().size();
        mPairs.reserve(total);
        for (int k = 0; k < kWalks; ++k) {
            const size_t base = mPairs.size();
            for (int s = stretchEnd(k - 1); s < stretchEnd(k); ++s)
                mRunStart[static_cast<size_t>(s) + 1] += base;
            const std::vector<int>& pairs = walks[static_cast<size_t>(k)].pairs();
            mPairs.insert(mPairs.end(), pairs.begin(), pairs.end());
        }
    }

    const Network& mNet;
    std::vector<int> mPairs;       // v, w per triangle, run after run in sorted order
    std::vector<size_t> mRunStart; // where the run of the point at place s starts in mPairs
    std::vector<int> mPlace;       // the place of each input point in the sorted order
};

template <class T> void reserveMore(AcArray<T>& out, size_t more) {
    const size_t want = static_cast<size_t>(out.length()) + more;
    if (want <= 0x7fffffff && static_cast<size_t>(out.physicalLength()) < want)
        out.setPhysicalLength(static_cast<int>(want));
}

int appendTriples(const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& tris) {
    Network net;
    if (!net.build(pts.asArrayPtr(), pts.length())) return 0;
    const Triangles tri(net);
    reserveMore(tris, 3 * tri.count());
    tri.forEach([&](int u, int v, int w) {
        tris.append(pts[u]);
        tris.append(pts[v]);
        tris.append(pts[w]);
    });
    return tri.count() == 0 ? 0 : 1;
}

int appendFaces(const AcArray<AcGePoint3d>& pts, AcArray<int>& faces) {
    Network net;
    if (!net.build(pts.asArrayPtr(), pts.length())) return 0;
    const Triangles tri(net);
    const size_t old = static_cast<size_t>(faces.length());
    const size_t want = old + 4 * tri.count();
    if (want > 0x7fffffff) outOfMemory();
    faces.setLogicalLength(static_cast<int>(want));
    // Written in place: appending one index at a time costs as much as finding the faces.
    int* at = faces.asArrayPtr() + old;
    tri.forEach([&](int u, int v, int w) {
        at[0] = 3;
        at[1] = u;
        at[2] = v;
        at[3] = w;
        at += 4;
    });
    return tri.count() == 0 ? 0 : 1;
}

} // namespace

int M_GetTrianglePts(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& tris) {
    if (!planFinite(pts)) return 0;
    M_DelMultPts(pts);
    if (pts.length() <= 2) return 0;
    return appendTriples(pts, tris);
}

int M_GetTrianglePts(AcArray<AcGePoint3d>& pts, AcArray<int>& faces) {
    if (!planFinite(pts)) return 0;
    M_DelMultPts(pts);
    if (pts.length() <= 2) return 0;
    return appendFaces(pts, faces);
}

int M_GetTriangleFaces(AcArray<AcGePoint3d> pts, AcArray<int>& faces) {
    if (pts.length() <= 2) return 0;
    return appendFaces(pts, faces);
}
