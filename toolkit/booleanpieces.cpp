// Kept pieces without repeats, and the chains they join into.
#include "toolkit/booleanpieces.h"

#include "toolkit/booleanedges.h"

#include <algorithm>
#include <deque>

namespace qor::boolean {

namespace {

bool near(const AcGePoint2d& a, const AcGePoint2d& b) {
    return closerThan(a, b, kJoinTol);
}

bool samePiece(const Piece& k, const AcGePoint2d& p, const AcGePoint2d& q) {
    return (near(k.start, p) && near(k.end, q)) || (near(k.start, q) && near(k.end, p));
}

// One chain being joined: its points from head to tail.
struct Chain {
    std::deque<AcGePoint2d> points;

    // Where a piece went on: 0 nowhere, 1 its end after the tail, 2 its start after the tail,
    // 3 its end before the head, 4 its start before the head.
    int attach(const Piece& k) {
        const AcGePoint2d tail = points.back(), head = points.front();
        if (near(tail, k.start)) {
            points.push_back(k.end);
            return 1;
        }
        if (near(tail, k.end)) {
            points.push_back(k.start);
            return 2;
        }
        if (near(head, k.start)) {
            points.push_front(k.end);
            return 3;
        }
        if (near(head, k.end)) {
            points.push_front(k.start);
            return 4;
        }
        return 0;
    }
};

void emit(const Chain& chain, AcArray<int>& counts, AcArray<AcGePoint2d>& pts) {
    counts.append(static_cast<int>(chain.points.size()));
    for (const AcGePoint2d& p : chain.points)
        counts.append(pts.append(p));
}

// Every piece that has an end near point u: the only pieces that can attach at u.
class Neighbours {
public:
    Neighbours(const std::vector<Piece>& pieces, const PointHash& hash) {
        const int n = static_cast<int>(pieces.size());
        mStart.reserve(static_cast<size_t>(2 * n) + 1);
        mStart.push_back(0);
        for (int u = 0; u < 2 * n; ++u) {
            const AcGePoint2d& p = end(pieces, u);
            const size_t first = mPieces.size();
            hash.forEachNear(p, [&](int v) {
                if (near(p, end(pieces, v))) mPieces.push_back(v / 2);
            });
            std::sort(mPieces.begin() + static_cast<std::ptrdiff_t>(first), mPieces.end());
            mPieces.erase(
                std::unique(mPieces.begin() + static_cast<std::ptrdiff_t>(first), mPieces.end()),
                mPieces.end());
            mStart.push_back(static_cast<int>(mPieces.size()));
        }
    }

    static const AcGePoint2d& end(const std::vector<Piece>& pieces, int u) {
        const Piece& k = pieces[static_cast<size_t>(u / 2)];
        return u % 2 == 0 ? k.start : k.end;
    }

    // The lowest unused piece from `from` on among those near end u; n when none.
    int firstFrom(int u, int from, const std::vector<char>& used, int n) const {
        for (int i = mStart[static_cast<size_t>(u)]; i < mStart[static_cast<size_t>(u) + 1]; ++i) {
            const int k = mPieces[static_cast<size_t>(i)];
            if (k >= from && !used[static_cast<size_t>(k)]) return k;
        }
        return n;
    }

private:
    std::vector<int> mStart, mPieces;
};

int assemblePlain(const std::vector<Piece>& pieces, AcArray<int>& counts,
                  AcArray<AcGePoint2d>& pts) {
    const size_t n = pieces.size();
    std::vector<char> used(n, 0);
    int chains = 0;
    for (size_t i = 0; i < n; ++i) {
        if (used[i]) continue;
        used[i] = 1;
        Chain chain{{pieces[i].start, pieces[i].end}};
        for (bool grew = true; grew;) {
            grew = false;
            for (size_t j = 0; j < n; ++j)
                if (!used[j] && chain.attach(pieces[j]) != 0) {
                    used[j] = 1;
                    grew = true;
                }
        }
        emit(chain, counts, pts);
        ++chains;
    }
    return chains;
}

// The same passes, each step jumping to the lowest unused piece at or after the scan position
// that has an end near the head or the tail: the pieces skipped would not have attached.
int assembleIndexed(const std::vector<Piece>& pieces, const PointHash& ends, AcArray<int>& counts,
                    AcArray<AcGePoint2d>& pts) {
    const int n = static_cast<int>(pieces.size());
    const Neighbours neighbours(pieces, ends);
    std::vector<char> used(static_cast<size_t>(n), 0);
    int chains = 0;
    for (int i = 0; i < n; ++i) {
        if (used[static_cast<size_t>(i)]) continue;
        used[static_cast<size_t>(i)] = 1;
        Chain chain{{pieces[static_cast<size_t>(i)].start, pieces[static_cast<size_t>(i)].end}};
        // The piece ends that head and tail are copies of.
        int head = 2 * i, tail = 2 * i + 1;
        bool grew = false;
        for (int from = 0;;) {
            const int j = std::min(neighbours.firstFrom(tail, from, used, n),
                                   neighbours.firstFrom(head, from, used, n));
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
        emit(chain, counts, pts);
        ++chains;
    }
    return chains;
}

} // namespace

void PieceList::add(const AcGePoint2d& p, const AcGePoint2d& q, std::int64_t type) {
    if (contains(p, q)) return;
    if (mIndexed) {
        const int k = static_cast<int>(mPieces.size());
        mEnds.insert(p, 2 * k);
        mEnds.insert(q, 2 * k + 1);
    }
    mPieces.push_back({p, q, type});
}

bool PieceList::contains(const AcGePoint2d& p, const AcGePoint2d& q) const {
    if (!mIndexed) {
        for (const Piece& k : mPieces)
            if (samePiece(k, p, q)) return true;
        return false;
    }
    // An equal piece has an end near p.
    bool found = false;
    mEnds.forEachNear(p, [&](int end) {
        found = found || samePiece(mPieces[static_cast<size_t>(end / 2)], p, q);
    });
    return found;
}

int assembleLoops(const PieceList& pieces, AcArray<int>& counts, AcArray<AcGePoint2d>& pts) {
    return pieces.ends() ? assembleIndexed(pieces.pieces(), *pieces.ends(), counts, pts)
                         : assemblePlain(pieces.pieces(), counts, pts);
}

} // namespace qor::boolean
