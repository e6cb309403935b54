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

// Writes the pair v, w of each face reported from the point at place s to `out`, in turn
// counter-clockwise from its entry edge, and returns the end of what it wrote: each face once,
// from its corner first in input order, the other two in input order.
int* facesFrom(const Network& net, int s, int* out) {
    const int start = net.entry(s);
    if (start < 0) return out;
    const int u = net.id(s);
    int e = start;
    do {
        const int pv = net.other(e, s), v = net.id(pv);
        if (u < v) {
            const int nx = net.next(e, s);
            const int pw = net.other(nx, s), w = net.id(pw);
            // v-w closes the turn from u-v to u-w when it is the edge after w-u around w and
            // before u-v around v. A point with one edge sees that edge again: v == w is no
            // triangle.
            if (u < w && v != w && net.next(nx, pw) == net.prev(e, pv) &&
                !net.isOuterFace(s, pv, pw)) {
                out[0] = std::min(v, w);
                out[1] = std::max(v, w);
                out += 2;
            }
        }
        e = net.next(e, s);
    } while (e != start);
    return out;
}

// Every triangle of the network, gathered in one walk over the rings in sorted order, where
// they lie close together in memory, and handed out ordered by the input number of the point
// each is reported from.
class Triangles {
public:
    explicit Triangles(const Network& net)
        : mNet(net), mRunStart(static_cast<size_t>(net.size()) + 1),
          mPlace(static_cast<size_t>(net.size())) {
        const int n = net.size();
        // A planar network has fewer than 2n faces.
        mPairs.resize(4 * static_cast<size_t>(n));
        int* const first = mPairs.data();
        int* out = first;
        for (int s = 0; s < n; ++s) {
            mPlace[static_cast<size_t>(net.id(s))] = s;
            out = facesFrom(net, s, out);
            mRunStart[static_cast<size_t>(s) + 1] = static_cast<size_t>(out - first);
        }
        mPairs.resize(static_cast<size_t>(out - first));
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
