// The engine's preparation, its two passes per operation and the pass rules.
#include "toolkit/booleanengine.h"

#include "toolkit/booleanedges.h"
#include "toolkit/booleangrid.h"
#include "toolkit/booleanlocate.h"
#include "toolkit/booleanpieces.h"

#include <cmath>
#include <memory>
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
    std::unique_ptr<EdgeGrid> grid;

    void prepare(bool indexed) {
        edges = edgeTable(polygon);
        if (!indexed) return;
        grid = std::make_unique<EdgeGrid>();
        grid->build(edges);
    }
};

class Engine {
public:
    Engine(Operand& a, Operand& b, bool indexed) : mA(a), mB(b), mPieces(indexed) {
        // Most edges give one piece or none; crossings add a few.
        mPieces.reserve(a.polygon.length() + b.polygon.length() + 16);
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

    const PieceList& pieces() const { return mPieces; }

private:
    // The edges of `own` against `other`, keeping pieces by `rule` and switch `sw`.
    void pass(const Operand& own, Operand& other, Rule rule, int sw, int passNo) {
        PolygonLocator locator(other.polygon, other.edges, other.grid.get());
        const int n = own.polygon.length();
        const int m = static_cast<int>(other.edges.size());
        std::vector<int> all;
        if (!other.grid)
            for (int k = 0; k < m; ++k)
                all.push_back(k);
        std::vector<int> candidates;
        std::vector<std::int32_t> vertexClass(static_cast<size_t>(n));
        vertexClass[0] = classOf(locator.locate(own.polygon[0]));
        for (int i = 0; i < n; ++i) {
            const Edge& e = own.edges[static_cast<size_t>(i)];
            if (other.grid) other.grid->alongSegment(e, candidates);
            // Each vertex ends one edge and starts the next. No edge of the other polygon
            // comes within its margin of this edge, so the edge crosses none and its end is
            // near none: the end lies on the same side as the start.
            const size_t next = static_cast<size_t>((i + 1) % n);
            if (next != 0) {
                const std::int32_t start = vertexClass[static_cast<size_t>(i)];
                vertexClass[next] =
                    other.grid && candidates.empty() && !isBoundary(start)
                        ? start
                        : classOf(locator.locate(own.polygon[static_cast<int>(next)]));
            }
            mSplit.clear();
            mSplit.push_back({e.x1, e.y1, vertexClass[static_cast<size_t>(i)]});
            mSplit.push_back({e.x2, e.y2, vertexClass[next]});
            for (int k : other.grid ? candidates : all)
                addMeetings(e, other.edges[static_cast<size_t>(k)], mSplit);
            sortAlong(e, mSplit);
            for (size_t s = 0; s + 1 < mSplit.size(); ++s) {
                const SplitPoint& p = mSplit[s];
                const SplitPoint& q = mSplit[s + 1];
                if (keeps(rule, sw, p, q, locator))
                    mPieces.add(AcGePoint2d(p.x, p.y), AcGePoint2d(q.x, q.y), passNo);
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
    PieceList mPieces;
    std::vector<SplitPoint> mSplit;
};

} // namespace

void cleanPolygon(AcArray<AcGePoint2d>& pts) {
    // A vertex goes when it is close to the vertex after it; until the walk reaches the last
    // vertex nothing after the current one has gone, so the successor is the original one. The
    // last vertex is compared with the first that stayed.
    const int n = pts.length();
    if (n == 0) return;
    std::vector<char> gone(static_cast<size_t>(n), 0);
    for (int i = 0; i + 1 < n; ++i)
        gone[static_cast<size_t>(i)] = closerThan(pts[i], pts[i + 1], kCleanTol);
    int first = 0;
    while (first < n - 1 && gone[static_cast<size_t>(first)])
        ++first;
    gone[static_cast<size_t>(n - 1)] = closerThan(pts[n - 1], pts[first], kCleanTol);
    AcArray<AcGePoint2d> kept(n);
    for (int i = 0; i < n; ++i)
        if (!gone[static_cast<size_t>(i)]) kept.append(pts[i]);
    pts = kept;
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
    Operand opA{std::move(a), {}, nullptr}, opB{std::move(b), {}, nullptr};
    opA.prepare(indexed);
    opB.prepare(indexed);
    Engine engine(opA, opB, indexed);
    engine.run(op);
    return assembleLoops(engine.pieces(), counts, pts) > 0 ? 1 : 0;
}

} // namespace qor::boolean
