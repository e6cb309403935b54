// The engine's preparation, its two passes per operation and the pass rules.
#include "toolkit/booleanengine.h"

#include "toolkit/booleanedges.h"
#include "toolkit/booleangrid.h"
#include "toolkit/booleanlocate.h"
#include "toolkit/booleanpieces.h"

#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

namespace qor::boolean {

namespace {

constexpr double kCleanTol = 0.0001;
// Beyond this the point hash's cells lose their width to rounding; such drawings take the
// plain searches.
constexpr double kIndexedLimit = 1e9;

enum class Rule { kOutside, kInside, kDifferenceInside };

bool finite(const AcArray<AcGePoint2d>& pts) {
    for (const AcGePoint2d& p : pts)
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    return true;
}

bool modest(const AcArray<AcGePoint2d>& pts) {
    for (const AcGePoint2d& p : pts)
        if (std::fabs(p.x) > kIndexedLimit || std::fabs(p.y) > kIndexedLimit) return false;
    return true;
}

// One operand: its cleaned outline, its edges and, when indexed, the grid over them.
struct Operand {
    AcArray<AcGePoint2d> polygon;
    std::vector<Edge> edges;
    EdgeGrid grid;
    bool indexed = false;

    void prepare(bool withGrid) {
        edges = edgeTable(polygon);
        indexed = withGrid;
        if (indexed) grid.build(edges);
    }
    // Null when not indexed.
    EdgeGrid* index() { return indexed ? &grid : nullptr; }
};

class Engine {
public:
    Engine(Operand& a, Operand& b) : mA(a), mB(b) {
        // Most edges give one piece or none; crossings add a few.
        mPieces.reserve(static_cast<size_t>(a.polygon.length() + b.polygon.length() + 16));
    }

    void run(int op) {
        switch (op) {
        case kUnion:
            pass(mA, mB, Rule::kOutside, 0, 0);
            pass(mB, mA, Rule::kOutside, 1, 1);
            break;
        case kIntersection:
            pass(mA, mB, Rule::kInside, 0, 0);
            pass(mB, mA, Rule::kInside, 1, 1);
            break;
        default:
            pass(mA, mB, Rule::kOutside, 1, 0);
            pass(mB, mA, Rule::kDifferenceInside, 0, 1);
            break;
        }
    }

    // The pieces the pass rules kept, in order, repeats included.
    const std::vector<Piece>& pieces() const { return mPieces; }

private:
    // The edges of `own` against `other`, keeping pieces by `rule` and switch `sw`.
    void pass(const Operand& own, Operand& other, Rule rule, int sw, int passNo) {
        EdgeGrid* grid = other.index();
        PolygonLocator locator(other.polygon, other.edges, grid);
        const int n = own.polygon.length();
        if (!grid) {
            mCandidates.resize(other.edges.size());
            std::iota(mCandidates.begin(), mCandidates.end(), 0);
        }
        const std::int32_t firstClass = classOf(locator.locate(own.polygon[0]));
        std::int32_t startClass = firstClass;
        for (int i = 0; i < n; ++i) {
            const Edge& e = own.edges[static_cast<size_t>(i)];
            if (grid) grid->alongSegment(e, mCandidates);
            // Each vertex ends one edge and starts the next. No edge of the other polygon
            // comes within its margin of this edge, so the edge crosses none and its end is
            // near none: the end lies on the same side as the start.
            const int next = (i + 1) % n;
            std::int32_t endClass = firstClass;
            if (next != 0)
                endClass = grid && mCandidates.empty() && !isBoundary(startClass)
                               ? startClass
                               : classOf(locator.locate(own.polygon[next]));
            mSplit.resize(2);
            mSplit[0] = {e.x1, e.y1, startClass};
            mSplit[1] = {e.x2, e.y2, endClass};
            startClass = endClass;
            for (int k : mCandidates)
                addMeetings(e, other.edges[static_cast<size_t>(k)], mSplit);
            sortAlong(e, mSplit);
            for (size_t s = 0; s + 1 < mSplit.size(); ++s) {
                const SplitPoint& p = mSplit[s];
                const SplitPoint& q = mSplit[s + 1];
                if (keeps(rule, sw, p, q, locator))
                    mPieces.push_back({AcGePoint2d(p.x, p.y), AcGePoint2d(q.x, q.y), passNo});
            }
        }
    }

    static bool keeps(Rule rule, int sw, const SplitPoint& p, const SplitPoint& q,
                      PolygonLocator& locator) {
        const std::int32_t cp = p.type, cq = q.type;
        const bool bp = isBoundary(cp), bq = isBoundary(cq);
        // Both ends on the other boundary: the middle decides.
        const auto middle = [&] {
            return classOf(locator.locate(AcGePoint2d((p.x + q.x) / 2.0, (p.y + q.y) / 2.0)));
        };
        switch (rule) {
        case Rule::kOutside:
            if (cp == kOutside || (bp && cq == kOutside)) return true;
            if (bp && bq) {
                const std::int32_t cm = middle();
                return sw == 0 ? cm != kInside : cm == kOutside;
            }
            return false;
        case Rule::kInside:
            if ((cp == kInside && cq == kInside) || (bp && cq == kInside) || (cp == kInside && bq))
                return true;
            if (bp && bq) {
                const std::int32_t cm = middle();
                return sw == 0 ? (cm == kInside || cm == kOnBoundary) : cm == kInside;
            }
            return false;
        case Rule::kDifferenceInside:
            if (bp && cq == kInside) return true;
            if (bp && bq) return middle() == kInside;
            return cp == kInside && (cq == kInside || bq);
        }
        return false;
    }

    Operand& mA;
    Operand& mB;
    std::vector<Piece> mPieces;
    std::vector<SplitPoint> mSplit;
    std::vector<int> mCandidates; // the edges of the other polygon that can meet the current one
};

} // namespace

void cleanPolygon(AcArray<AcGePoint2d>& pts) {
    // A vertex goes when it is close to the vertex after it; until the walk reaches the last
    // vertex nothing after the current one has moved, so the successor is the original one. The
    // last vertex is compared with the first that stayed, by then moved to the front (or with
    // itself when none did). The vertices that stay move down in place.
    const int n = pts.length();
    if (n == 0) return;
    int kept = 0;
    for (int i = 0; i + 1 < n; ++i)
        if (!closerThan(pts[i], pts[i + 1], kCleanTol)) pts[kept++] = pts[i];
    const AcGePoint2d& first = kept > 0 ? pts[0] : pts[n - 1];
    if (!closerThan(pts[n - 1], first, kCleanTol)) pts[kept++] = pts[n - 1];
    pts.setLogicalLength(kept);
}

int booleanLoops(AcArray<AcGePoint2d> a, AcArray<AcGePoint2d> b, int op, AcArray<int>& counts,
                 AcArray<AcGePoint2d>& pts, const EngineOptions& options) {
    counts.removeAll();
    pts.removeAll();
    if (op < kUnion || op > kDifference) return 0;
    if (a.length() < 3 || b.length() < 3) return 0;
    if (!finite(a) || !finite(b)) return 0;
    cleanPolygon(a);
    cleanPolygon(b);
    if (a.length() < 3 || b.length() < 3) return 0;

    const bool indexed = options.indexed && modest(a) && modest(b);
    Operand opA{std::move(a), {}, {}, false}, opB{std::move(b), {}, {}, false};
    opA.prepare(indexed);
    opB.prepare(indexed);
    Engine engine(opA, opB);
    engine.run(op);
    return assembleLoops(engine.pieces(), indexed, counts, pts) > 0 ? 1 : 0;
}

} // namespace qor::boolean
