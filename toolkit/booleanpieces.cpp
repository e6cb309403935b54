// Kept pieces without repeats, and the chains they join into.
#include "toolkit/booleanpieces.h"

#include "toolkit/booleanedges.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qor::boolean {

namespace {

bool near(const AcGePoint2d& a, const AcGePoint2d& b) {
    return closerThan(a, b, kJoinTol);
}

bool samePiece(const Piece& k, const AcGePoint2d& p, const AcGePoint2d& q) {
    return (near(k.start, p) && near(k.end, q)) || (near(k.start, q) && near(k.end, p));
}

// Piece k's start is end 2k, its end 2k + 1.
const AcGePoint2d& endOf(const std::vector<Piece>& pieces, int u) {
    const Piece& k = pieces[static_cast<size_t>(u / 2)];
    return u % 2 == 0 ? k.start : k.end;
}

// One chain being joined: its points from head to tail, the ones put before the head kept
// apart in the order they came, so that neither end ever moves the others.
class Chain {
public:
    void start(const Piece& k) {
        mFront.clear();
        mBack.assign({k.start, k.end});
    }

    // Where a piece went on: 0 nowhere, 1 its end after the tail, 2 its start after the tail,
    // 3 its end before the head, 4 its start before the head.
    int attach(const Piece& k) {
        const AcGePoint2d tail = mBack.back(), head = mFront.empty() ? mBack[0] : mFront.back();
        if (near(tail, k.start)) {
            mBack.push_back(k.end);
            return 1;
        }
        if (near(tail, k.end)) {
            mBack.push_back(k.start);
            return 2;
        }
        if (near(head, k.start)) {
            mFront.push_back(k.end);
            return 3;
        }
        if (near(head, k.end)) {
            mFront.push_back(k.start);
            return 4;
        }
        return 0;
    }

    void emit(AcArray<int>& counts, AcArray<AcGePoint2d>& pts) const {
        counts.append(static_cast<int>(mFront.size() + mBack.size()));
        for (auto p = mFront.rbegin(); p != mFront.rend(); ++p)
            counts.append(pts.append(*p));
        for (const AcGePoint2d& p : mBack)
            counts.append(pts.append(p));
    }

private:
    std::vector<AcGePoint2d> mFront, mBack;
};

// Room for the usual outcome, one chain through every piece, so that appending rarely grows.
void reserveOutput(size_t pieces, AcArray<int>& counts, AcArray<AcGePoint2d>& pts) {
    const int points = static_cast<int>(pieces) + 1;
    if (pts.physicalLength() < points) pts.setPhysicalLength(points);
    if (counts.physicalLength() < points + 1) counts.setPhysicalLength(points + 1);
}

std::vector<Piece> withoutRepeatsPlain(const std::vector<Piece>& found) {
    std::vector<Piece> kept;
    kept.reserve(found.size());
    for (const Piece& k : found)
        if (std::none_of(kept.begin(), kept.end(),
                         [&](const Piece& earlier) { return samePiece(earlier, k.start, k.end); }))
            kept.push_back(k);
    return kept;
}

int assemblePlain(const std::vector<Piece>& found, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts) {
    const std::vector<Piece> pieces = withoutRepeatsPlain(found);
    const size_t n = pieces.size();
    reserveOutput(n, counts, pts);
    std::vector<char> used(n, 0);
    Chain chain;
    int chains = 0;
    for (size_t i = 0; i < n; ++i) {
        if (used[i]) continue;
        used[i] = 1;
        chain.start(pieces[i]);
        for (bool grew = true; grew;) {
            grew = false;
            for (size_t j = 0; j < n; ++j)
                if (!used[j] && chain.attach(pieces[j]) != 0) {
                    used[j] = 1;
                    grew = true;
                }
        }
        chain.emit(counts, pts);
        ++chains;
    }
    return chains;
}

// For every piece end, the ends near it, itself included. Ends that follow one another at the
// same place, the end of a piece and the start of the next, are one point. The points are
// sorted by columns two tolerances wide and by y within a column: near points share a column
// or lie in neighbouring ones, less than the tolerance apart in y, so a sweep of each column
// and the next finds every near pair once. Points that are not finite are near nothing.
class NearEnds {
public:
    explicit NearEnds(const std::vector<Piece>& pieces) : mPieces(pieces) {
        gatherPoints();
        const std::vector<Sorted> sorted = sortedPoints();
        std::vector<std::pair<int, int>> pairs;
        for (size_t r = 0; r < sorted.size();) {
            const size_t next = runEnd(sorted, r);
            const size_t after = next < sorted.size() && sorted[next].column == sorted[r].column + 1
                                     ? runEnd(sorted, next)
                                     : next;
            pairColumns(sorted, r, next, after, pairs);
            r = next;
        }
        index(sorted, pairs);
    }

    // Calls fn(v) for every end v near end u.
    template <class Fn> void forEach(int u, Fn&& fn) const {
        const size_t point = static_cast<size_t>(mPointOf[static_cast<size_t>(u)]);
        for (int i = mStart[point]; i < mStart[point + 1]; ++i) {
            const Point& other = mPoints[static_cast<size_t>(mNear[static_cast<size_t>(i)])];
            fn(other.first);
            if (other.second >= 0) fn(other.second);
        }
    }

private:
    // One or two ends at one place.
    struct Point {
        int first, second;
    };
    struct Sorted {
        std::int64_t column;
        double y;
        int point;
    };

    const AcGePoint2d& at(int point) const {
        return endOf(mPieces, mPoints[static_cast<size_t>(point)].first);
    }

    void gatherPoints() {
        const int ends = 2 * static_cast<int>(mPieces.size());
        mPointOf.resize(static_cast<size_t>(ends));
        mPoints.reserve(static_cast<size_t>(ends));
        for (int u = 0; u < ends; ++u) {
            const AcGePoint2d& p = endOf(mPieces, u);
            const AcGePoint2d* before = u % 2 == 0 && u > 0 ? &endOf(mPieces, u - 1) : nullptr;
            if (before && before->x == p.x && before->y == p.y) {
                mPoints.back().second = u;
            } else {
                mPoints.push_back({u, -1});
            }
            mPointOf[static_cast<size_t>(u)] = static_cast<int>(mPoints.size()) - 1;
        }
    }

    std::vector<Sorted> sortedPoints() const {
        std::vector<Sorted> sorted;
        sorted.reserve(mPoints.size());
        double x0 = HUGE_VAL;
        for (int k = 0; k < static_cast<int>(mPoints.size()); ++k) {
            const AcGePoint2d& p = at(k);
            if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
            x0 = std::min(x0, p.x);
            sorted.push_back({0, p.y, k});
        }
        const double inverse = 1.0 / (2.0 * kJoinTol);
        for (Sorted& s : sorted)
            s.column = static_cast<std::int64_t>((at(s.point).x - x0) * inverse);
        std::sort(sorted.begin(), sorted.end(), [](const Sorted& a, const Sorted& b) {
            return a.column != b.column ? a.column < b.column : a.y < b.y;
        });
        return sorted;
    }

    static size_t runEnd(const std::vector<Sorted>& sorted, size_t r) {
        size_t e = r + 1;
        while (e < sorted.size() && sorted[e].column == sorted[r].column)
            ++e;
        return e;
    }

    // The near pairs with a first point in [r, next): later ones of that column, and those of
    // the column after it, [next, after).
    void pairColumns(const std::vector<Sorted>& sorted, size_t r, size_t next, size_t after,
                     std::vector<std::pair<int, int>>& pairs) const {
        const auto test = [&](const Sorted& a, const Sorted& b) {
            if (near(at(a.point), at(b.point))) pairs.push_back({a.point, b.point});
        };
        size_t low = next;
        for (size_t i = r; i < next; ++i) {
            const Sorted& a = sorted[i];
            for (size_t j = i + 1; j < next && sorted[j].y - a.y < kJoinTol; ++j)
                test(a, sorted[j]);
            while (low < after && a.y - sorted[low].y >= kJoinTol)
                ++low;
            for (size_t j = low; j < after && sorted[j].y - a.y < kJoinTol; ++j)
                test(a, sorted[j]);
        }
    }

    void index(const std::vector<Sorted>& sorted, const std::vector<std::pair<int, int>>& pairs) {
        const size_t points = mPoints.size();
        mStart.assign(points + 1, 0);
        for (const Sorted& s : sorted)
            ++mStart[static_cast<size_t>(s.point) + 1];
        for (const auto& [a, b] : pairs) {
            ++mStart[static_cast<size_t>(a) + 1];
            ++mStart[static_cast<size_t>(b) + 1];
        }
        for (size_t k = 0; k < points; ++k)
            mStart[k + 1] += mStart[k];
        mNear.resize(static_cast<size_t>(mStart[points]));
        std::vector<int> fill(mStart.begin(), mStart.end() - 1);
        const auto put = [&](int a, int b) {
            mNear[static_cast<size_t>(fill[static_cast<size_t>(a)]++)] = b;
        };
        for (const Sorted& s : sorted)
            put(s.point, s.point);
        for (const auto& [a, b] : pairs) {
            put(a, b);
            put(b, a);
        }
    }

    const std::vector<Piece>& mPieces;
    std::vector<Point> mPoints;
    std::vector<int> mPointOf;      // of each end
    std::vector<int> mStart, mNear; // point k is near mNear[mStart[k] .. mStart[k + 1])
};

// Marks each piece whose ends match those of an earlier piece that was not marked: such a piece
// has an end near the first end of the new one.
std::vector<char> repeats(const std::vector<Piece>& found, const NearEnds& nearEnds) {
    std::vector<char> repeat(found.size(), 0);
    for (size_t i = 0; i < found.size(); ++i) {
        const AcGePoint2d& q = found[i].end;
        nearEnds.forEach(2 * static_cast<int>(i), [&](int v) {
            const size_t j = static_cast<size_t>(v / 2);
            if (repeat[i] || j >= i || repeat[j]) return;
            repeat[i] = near(v % 2 == 0 ? found[j].end : found[j].start, q);
        });
    }
    return repeat;
}

// The lowest unused piece from `from` on with an end near end u; n when none. Only such pieces
// can attach at u.
int firstNear(const NearEnds& nearEnds, int u, int from, const std::vector<char>& used, int n) {
    int first = n;
    nearEnds.forEach(u, [&](int v) {
        const int k = v / 2;
        if (k >= from && k < first && !used[static_cast<size_t>(k)]) first = k;
    });
    return first;
}

// The same passes, each step jumping to the lowest unused piece at or after the scan position
// that has an end near the head or the tail: the pieces skipped would not have attached.
// Repeats count as used from the start, so no chain takes them.
int assembleIndexed(const std::vector<Piece>& pieces, AcArray<int>& counts,
                    AcArray<AcGePoint2d>& pts) {
    const NearEnds nearEnds(pieces);
    std::vector<char> used = repeats(pieces, nearEnds);
    const int n = static_cast<int>(pieces.size());
    reserveOutput(static_cast<size_t>(std::count(used.begin(), used.end(), 0)), counts, pts);
    Chain chain;
    int chains = 0;
    for (int i = 0; i < n; ++i) {
        if (used[static_cast<size_t>(i)]) continue;
        used[static_cast<size_t>(i)] = 1;
        chain.start(pieces[static_cast<size_t>(i)]);
        // The piece ends that head and tail are copies of.
        int head = 2 * i, tail = 2 * i + 1;
        bool grew = false;
        for (int from = 0;;) {
            const int j = std::min(firstNear(nearEnds, tail, from, used, n),
                                   firstNear(nearEnds, head, from, used, n));
            if (j == n) {
                if (!grew) break;
                grew = false;
                from = 0;
                continue;
            }
            // j has an end near the head or the tail, so it attaches.
            switch (chain.attach(pieces[static_cast<size_t>(j)])) {
            case 1:
                tail = 2 * j + 1;
                break;
            case 2:
                tail = 2 * j;
                break;
            case 3:
                head = 2 * j + 1;
                break;
            default:
                head = 2 * j;
                break;
            }
            used[static_cast<size_t>(j)] = 1;
            grew = true;
            from = j + 1;
        }
        chain.emit(counts, pts);
        ++chains;
    }
    return chains;
}

} // namespace

int assembleLoops(const std::vector<Piece>& found, bool indexed, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts) {
    return indexed ? assembleIndexed(found, counts, pts) : assemblePlain(found, counts, pts);
}

} // namespace qor::boolean
