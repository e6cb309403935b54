// Triangulation entry points: the network's triangles as point triples or face records.
#include "toolkit/geometry.h"
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"

#include <algorithm>
#include <vector>

namespace {

using qor::tin::Network;
using qor::tin::planFinite;

// The faces reported from the point at place s, in turn counter-clockwise from its entry edge:
// each face once, from its corner first in input order, the other two in input order.
template <class Emit> void facesFrom(const Network& net, int s, Emit&& emit) {
    const int start = net.entry(s);
    if (start < 0) return;
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
                !net.isOuterFace(s, pv, pw))
                emit(std::min(v, w), std::max(v, w));
        }
        e = net.next(e, s);
    } while (e != start);
}

// Every triangle as three input numbers, ordered by the input number of the point it is
// reported from. The rings are walked in sorted order, where they lie close together in
// memory, and each point's triangles are written straight to their place in the result.
std::vector<int> triangles(const Network& net) {
    const int n = net.size();
    std::vector<int> first(static_cast<size_t>(n) + 1, 0);
    for (int s = 0; s < n; ++s) {
        int& count = first[static_cast<size_t>(net.id(s)) + 1];
        facesFrom(net, s, [&](int, int) { ++count; });
    }
    for (int u = 0; u < n; ++u)
        first[static_cast<size_t>(u) + 1] += first[static_cast<size_t>(u)];
    std::vector<int> out(3 * static_cast<size_t>(first[static_cast<size_t>(n)]));
    for (int s = 0; s < n; ++s) {
        const int u = net.id(s);
        size_t at = 3 * static_cast<size_t>(first[static_cast<size_t>(u)]);
        facesFrom(net, s, [&](int v, int w) {
            out[at] = u;
            out[at + 1] = v;
            out[at + 2] = w;
            at += 3;
        });
    }
    return out;
}

template <class T> void reserveMore(AcArray<T>& out, size_t more) {
    const size_t want = static_cast<size_t>(out.length()) + more;
    if (want <= 0x7fffffff && static_cast<size_t>(out.physicalLength()) < want)
        out.setPhysicalLength(static_cast<int>(want));
}

int appendTriples(const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& tris) {
    Network net;
    if (!net.build(pts.asArrayPtr(), pts.length())) return 0;
    const std::vector<int> tri = triangles(net);
    reserveMore(tris, tri.size());
    for (int i : tri)
        tris.append(pts[i]);
    return tri.empty() ? 0 : 1;
}

int appendFaces(const AcArray<AcGePoint3d>& pts, AcArray<int>& faces) {
    Network net;
    if (!net.build(pts.asArrayPtr(), pts.length())) return 0;
    const std::vector<int> tri = triangles(net);
    reserveMore(faces, tri.size() / 3 * 4);
    for (size_t t = 0; t < tri.size(); t += 3) {
        faces.append(3);
        faces.append(tri[t]);
        faces.append(tri[t + 1]);
        faces.append(tri[t + 2]);
    }
    return tri.empty() ? 0 : 1;
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
