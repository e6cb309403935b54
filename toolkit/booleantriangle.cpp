// The union of loops by triangulation: the triangles inside some loop are kept, and the edges
// that only one kept triangle has are walked into the outline.
#include "toolkit/booleanlocate.h"
#include "toolkit/booleanranges.h"
#include "toolkit/booleanunion.h"
#include "toolkit/geometry.h"
#include "toolkit/tin.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {

using qor::boolean::Edge;
using qor::boolean::EdgeGrid;
using qor::boolean::PolygonLocator;

constexpr double kMergeTol = 0.2;
// Beyond this the grids' slack no longer covers rounding; such loops take the plain test.
constexpr double kIndexedLimit = 1e9;

struct IndexEdge {
    int a, b;
};

// The input loops, each able to classify points as M_PtInPolygon does.
class LoopSet {
public:
    explicit LoopSet(const std::vector<AcArray<AcGePoint2d>>& loops) {
        for (const AcArray<AcGePoint2d>& pts : loops) {
            auto one = std::make_unique<Loop>();
            one->pts = pts;
            one->edges = qor::boolean::edgeTable(one->pts);
            bool modest = true;
            for (const AcGePoint2d& p : pts)
                modest =
                    modest && std::fabs(p.x) <= kIndexedLimit && std::fabs(p.y) <= kIndexedLimit;
            if (modest) one->grid.build(one->edges);
            one->locator = std::make_unique<PolygonLocator>(one->pts, one->edges,
                                                            modest ? &one->grid : nullptr);
            mLoops.push_back(std::move(one));
        }
    }

    bool strictlyInsideAny(const AcGePoint2d& p) {
        for (auto& loop : mLoops)
            if (loop->locator->locate(p) > 0) return true;
        return false;
    }

private:
    struct Loop {
        AcArray<AcGePoint2d> pts;
        std::vector<Edge> edges;
        EdgeGrid grid;
        std::unique_ptr<PolygonLocator> locator; // refers to the members above
    };
    std::vector<std::unique_ptr<Loop>> mLoops;
};

// The edges of the kept triangles that no other kept triangle has, in the triangles' order.
std::vector<IndexEdge> outerEdges(const std::vector<IndexEdge>& edges) {
    const auto key = [](const IndexEdge& e) {
        const auto lo = static_cast<std::uint32_t>(std::min(e.a, e.b));
        const auto hi = static_cast<std::uint32_t>(std::max(e.a, e.b));
        return static_cast<std::uint64_t>(lo) << 32 | hi;
    };
    std::unordered_map<std::uint64_t, int> uses;
    uses.reserve(edges.size());
    for (const IndexEdge& e : edges)
        ++uses[key(e)];
    std::vector<IndexEdge> outer;
    for (const IndexEdge& e : edges)
        if (uses[key(e)] == 1) outer.push_back(e);
    return outer;
}

// Puts after each edge the first later edge that starts where it ends, or that ends there
// (turned round). Moving an edge forward keeps the others in their order, so "the first later
// edge" is always the lowest-numbered edge not yet placed; a list per point finds it.
std::vector<IndexEdge> chained(const std::vector<IndexEdge>& edges, int points) {
    const int n = static_cast<int>(edges.size());
    std::vector<int> start(static_cast<size_t>(points) + 1, 0), at;
    for (const IndexEdge& e : edges) {
        ++start[static_cast<size_t>(e.a)];
        ++start[static_cast<size_t>(e.b)];
    }
    int sum = 0;
    for (int& s : start) {
        const int c = s;
        s = sum;
        sum += c;
    }
    at.assign(static_cast<size_t>(sum), 0);
    std::vector<int> fill(start.begin(), start.end() - 1);
    for (int k = 0; k < n; ++k) {
        at[static_cast<size_t>(fill[static_cast<size_t>(edges[static_cast<size_t>(k)].a)]++)] = k;
        at[static_cast<size_t>(fill[static_cast<size_t>(edges[static_cast<size_t>(k)].b)]++)] = k;
    }
    std::vector<int> cursor(start.begin(), start.end() - 1);
    std::vector<char> placed(static_cast<size_t>(n), 0);
    std::vector<IndexEdge> out;
    out.reserve(static_cast<size_t>(n));
    int firstFree = 0;
    while (static_cast<int>(out.size()) < n) {
        int next = -1;
        if (!out.empty()) {
            const int v = out.back().b;
            int& c = cursor[static_cast<size_t>(v)];
            while (c < start[static_cast<size_t>(v) + 1] &&
                   placed[static_cast<size_t>(at[static_cast<size_t>(c)])])
                ++c;
            if (c < start[static_cast<size_t>(v) + 1]) next = at[static_cast<size_t>(c)];
        }
        IndexEdge e;
        if (next >= 0) {
            e = edges[static_cast<size_t>(next)];
            if (e.a != out.back().b) std::swap(e.a, e.b);
        } else {
            while (placed[static_cast<size_t>(firstFree)])
                ++firstFree;
            next = firstFree;
            e = edges[static_cast<size_t>(next)];
        }
        placed[static_cast<size_t>(next)] = 1;
        out.push_back(e);
    }
    return out;
}

// Walks the chained edges into loops. A loop starts with both points of its first edge; each
// edge that goes on from the current end adds its end; the edge that returns to the start, or
// one that does not go on from the current end, closes the loop and is used up with it.
int writeLoops(const std::vector<IndexEdge>& edges, const AcArray<AcGePoint3d>& pts,
               AcArray<AcGePoint2d>& outPts, AcArray<int>& outRanges) {
    int loops = 0;
    const size_t n = edges.size();
    for (size_t i = 0; i < n;) {
        const int s = edges[i].a;
        int current = edges[i].b;
        outRanges.append(outPts.length());
        outPts.append(pts[s].convert2d());
        outPts.append(pts[current].convert2d());
        for (++i; i < n; ++i) {
            const IndexEdge& e = edges[i];
            if (e.a != current || e.b == s) {
                ++i;
                break;
            }
            current = e.b;
            outPts.append(pts[current].convert2d());
        }
        outRanges.append(outPts.length());
        ++loops;
    }
    return loops;
}

} // namespace

int M_PolygonTriangle(AcArray<AcGePoint2d> pts, AcArray<int> ranges, AcArray<AcGePoint2d>& outPts,
                      AcArray<int>& outRanges) {
    outPts.removeAll();
    outRanges.removeAll();
    if (!qor::boolean::allFinite(pts)) return 0;

    // The wide tolerance closes small gaps between neighbouring outlines.
    AcArray<AcGePoint3d> merged(pts.length());
    for (const AcGePoint2d& p : pts)
        merged.append(AcGePoint3d(p.x, p.y, 0.0));
    M_DelMultPts(1, kMergeTol, merged);
    if (merged.length() < 3) return 0;
    AcArray<int> faces;
    if (!M_GetTriangleFaces(merged, faces)) return 0;

    LoopSet loops(qor::boolean::loopsOf(pts, ranges));
    std::vector<IndexEdge> edges;
    for (int f = 0; f + 3 < faces.length(); f += faces[f] + 1) {
        const int a = faces[f + 1], b = faces[f + 2], c = faces[f + 3];
        const AcGePoint3d &pa = merged[a], &pb = merged[b], &pc = merged[c];
        const AcGePoint2d centroid((pa.x + pb.x + pc.x) / 3.0, (pa.y + pb.y + pc.y) / 3.0);
        // Holes are not special: a triangle inside any loop counts.
        if (!loops.strictlyInsideAny(centroid)) continue;
        edges.push_back({a, b});
        edges.push_back({b, c});
        edges.push_back({c, a});
    }
    const std::vector<IndexEdge> outline = chained(outerEdges(edges), merged.length());
    return writeLoops(outline, merged, outPts, outRanges) > 0 ? 1 : 0;
}
