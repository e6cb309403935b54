// Divide and conquer: split the x-sorted points in halves, triangulate each, and stitch the
// halves together upwards from their lower common tangent.
#include "toolkit/tinengine.h"
#include "toolkit/tinsort.h"

#include "cmdline.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <new>

namespace qor::tin {

namespace {

template <class T> std::unique_ptr<T[]> allocate(long long count) {
    if (count <= 0 || count > INT_MAX) outOfMemory();
    std::unique_ptr<T[]> p(new (std::nothrow) T[static_cast<size_t>(count)]);
    if (!p) outOfMemory();
    return p;
}

enum class Side { left, right };

struct Xy {
    double x, y;
};

// Works on points numbered by their place in the sorted order, so that each half of the
// recursion reads a contiguous stretch of memory.
class Builder {
public:
    Builder(const Xy* pts, int n)
        : mPts(pts), mCap(static_cast<int>(std::min(3LL * n, static_cast<long long>(INT_MAX)))),
          mEdges(allocate<Edge>(3LL * n)), mFree(allocate<int>(3LL * n)), mEntry(allocate<int>(n)) {
        for (int i = 0; i < n; ++i)
            mEntry[i] = -1;
    }

    // False when the arithmetic led a walk astray; the structure is then of no use.
    bool run(int n, int& hullEdge) {
        int rcw = -1;
        divide(0, n - 1, hullEdge, rcw);
        return !mFailed;
    }

    int edgeRecords() const { return mFresh; }
    std::unique_ptr<Edge[]> takeEdges() { return std::move(mEdges); }
    std::unique_ptr<int[]> takeEntry() { return std::move(mEntry); }

private:
    const Xy* mPts;
    int mCap;
    std::unique_ptr<Edge[]> mEdges;
    std::unique_ptr<int[]> mFree; // freed records, reused first
    std::unique_ptr<int[]> mEntry;
    int mFresh = 0, mFreeTop = 0;
    bool mFailed = false;

    int other(int e, int v) const { return mEdges[e].end[1 - endOf(mEdges[e], v)]; }
    int next(int e, int v) const { return mEdges[e].next[endOf(mEdges[e], v)]; }
    int prev(int e, int v) const { return mEdges[e].prev[endOf(mEdges[e], v)]; }

    double cross(int a, int b, int c) const {
        const Xy &pa = mPts[a], &pb = mPts[b], &pc = mPts[c];
        return (pb.x - pa.x) * (pc.y - pa.y) - (pb.y - pa.y) * (pc.x - pa.x);
    }
    // Of the vectors from `far` to the base's ends o and d.
    double crossFrom(int far, int o, int d) const {
        const Xy &f = mPts[far], &po = mPts[o], &pd = mPts[d];
        return (po.x - f.x) * (pd.y - f.y) - (po.y - f.y) * (pd.x - f.x);
    }
    double dotFrom(int far, int o, int d) const {
        const Xy &f = mPts[far], &po = mPts[o], &pd = mPts[d];
        return (po.x - f.x) * (pd.x - f.x) + (po.y - f.y) * (pd.y - f.y);
    }

    int getEdge() {
        if (mFreeTop > 0) return mFree[--mFreeTop];
        if (mFresh < mCap) return mFresh++;
        outOfMemory();
    }

    int makeEdge(int u, int v) {
        const int e = getEdge();
        mEdges[e] = {{u, v}, {e, e}, {e, e}};
        if (mEntry[u] < 0) mEntry[u] = e;
        if (mEntry[v] < 0) mEntry[v] = e;
        return e;
    }

    // Puts the unattached edge b into the ring around v just after a.
    void splice(int a, int b, int v) {
        Edge& da = mEdges[a];
        const int ea = endOf(da, v);
        const int after = da.next[ea];
        da.next[ea] = b;
        Edge& df = mEdges[after];
        df.prev[endOf(df, v)] = b;
        Edge& db = mEdges[b];
        const int eb = endOf(db, v);
        db.next[eb] = after;
        db.prev[eb] = a;
    }

    // A new edge u-v; a has u as an end and b has v. On the right side it goes after a around
    // u and before b around v; on the left side before a and after b.
    int join(int a, int u, int b, int v, Side side) {
        const int e = makeEdge(u, v);
        if (side == Side::left) {
            splice(prev(a, u), e, u);
            splice(b, e, v);
        } else {
            splice(a, e, u);
            splice(prev(b, v), e, v);
        }
        return e;
    }

    void deleteEdge(int e) {
        const Edge d = mEdges[e];
        for (int k = 0; k < 2; ++k)
            if (mEntry[d.end[k]] == e) mEntry[d.end[k]] = d.next[k];
        for (int k = 0; k < 2; ++k) {
            const int v = d.end[k];
            Edge& dn = mEdges[d.next[k]];
            dn.prev[endOf(dn, v)] = d.prev[k];
            Edge& dp = mEdges[d.prev[k]];
            dp.next[endOf(dp, v)] = d.next[k];
        }
        mFree[mFreeTop++] = e;
    }

    // Returns the counter-clockwise hull edge leaving the leftmost point and the clockwise hull
    // edge leaving the rightmost point.
    void divide(int l, int r, int& lccw, int& rcw) {
        const int n = r - l + 1;
        if (n == 2) {
            lccw = rcw = makeEdge(l, r);
            return;
        }
        if (n == 3) {
            const int a = makeEdge(l, l + 1), b = makeEdge(l + 1, r);
            splice(a, b, l + 1);
            const double c = cross(l, l + 1, r);
            if (c > 0.0) {
                join(a, l, b, r, Side::right);
                lccw = a;
                rcw = b;
            } else if (c < 0.0) {
                lccw = rcw = join(a, l, b, r, Side::left);
            } else {
                // Collinear: the chain stays open.
                lccw = a;
                rcw = b;
            }
            return;
        }
        const int m = l + (r - l) / 2;
        int lccwL = -1, rcwL = -1, lccwR = -1, rcwR = -1;
        divide(l, m, lccwL, rcwL);
        if (mFailed) return;
        divide(m + 1, r, lccwR, rcwR);
        if (mFailed) return;
        const int base = merge(rcwL, m, lccwR, m + 1, n);
        if (mFailed) return;
        if (mEdges[base].end[0] == l) lccwL = base;
        if (mEdges[base].end[1] == r) rcwR = base;
        lccw = lccwL;
        rcw = rcwR;
    }

    // Walks down both hulls from their facing points until the line between them has every
    // point on or above it. Each hull is walked one way only, so there are fewer moves than
    // points; more means rounding has sent the walk round in circles.
    void lowerTangent(int rcwL, int s, int lccwR, int u, int points, int& l, int& ol, int& r,
                      int& orr) {
        l = rcwL;
        r = lccwR;
        ol = s;
        orr = u;
        int dl = other(l, ol), dr = other(r, orr);
        for (int moves = 0;; ++moves) {
            if (moves > points) {
                mFailed = true;
                return;
            }
            if (cross(ol, dl, orr) > 0.0) {
                l = prev(l, dl);
                ol = dl;
                dl = other(l, ol);
            } else if (cross(orr, dr, ol) < 0.0) {
                r = next(r, dr);
                orr = dr;
                dr = other(r, orr);
            } else {
                return;
            }
        }
    }

    // Stitches the halves upwards from the lower tangent and returns that first base edge.
    int merge(int rcwL, int s, int lccwR, int u, int points) {
        int l, ol, r, orr;
        lowerTangent(rcwL, s, lccwR, u, points, l, ol, r, orr);
        if (mFailed) return -1;
        int base = join(l, ol, r, orr, Side::right);
        const int tangent = base;
        int orgB = ol, destB = orr;
        // Every join adds an edge between the halves that stays, and a planar network of
        // `points` points has fewer than 3 * points edges.
        for (int joins = 0;; ++joins) {
            if (joins > 3 * points) {
                mFailed = true;
                return tangent;
            }
            // The candidates' far ends are kept beside them: the deletions write to the edge
            // records, so the compiler would read them again each time they are asked for.
            int lc = next(base, orgB), rc = prev(base, destB);
            int farL = other(lc, orgB), farR = other(rc, destB);
            const double crossL = crossFrom(farL, orgB, destB);
            const double crossR = crossFrom(farR, orgB, destB);
            const bool validL = crossL > 0.0, validR = crossR > 0.0;
            if (!validL && !validR) break;

            // A following candidate that sees the base under an angle at least as wide lies
            // inside the current one's circle: the current edge cannot stay.
            double cotL = 0.0, cotR = 0.0;
            if (validL) {
                cotL = dotFrom(farL, orgB, destB) / crossL;
                for (;;) {
                    const int nx = next(lc, orgB);
                    const int far = other(nx, orgB);
                    const double c = crossFrom(far, orgB, destB);
                    if (!(c > 0.0)) break;
                    const double cot = dotFrom(far, orgB, destB) / c;
                    if (cot > cotL) break;
                    deleteEdge(lc);
                    lc = nx;
                    farL = far;
                    cotL = cot;
                }
            }
            if (validR) {
                cotR = dotFrom(farR, orgB, destB) / crossR;
                for (;;) {
                    const int nx = prev(rc, destB);
                    const int far = other(nx, destB);
                    const double c = crossFrom(far, orgB, destB);
                    if (!(c > 0.0)) break;
                    const double cot = dotFrom(far, orgB, destB) / c;
                    if (cot > cotR) break;
                    deleteEdge(rc);
                    rc = nx;
                    farR = far;
                    cotR = cot;
                }
            }

            // A tie goes to the left candidate.
            if (validL && (!validR || cotL <= cotR)) {
                base = join(lc, farL, base, destB, Side::right);
                orgB = farL;
            } else {
                base = join(base, orgB, rc, farR, Side::right);
                destB = farR;
            }
        }
        return tangent;
    }
};

} // namespace

void outOfMemory() {
    acutPrintf(L"\n内存不够!");
    std::exit(1);
}

bool planFinite(const AcArray<AcGePoint3d>& pts) {
    for (const AcGePoint3d& p : pts)
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    return true;
}

bool Network::build(const AcGePoint3d* pts, int n) {
    mPts = nullptr;
    mCount = mEdgeRecords = 0;
    mEntry.reset();
    mEdges.reset();
    mOrder.reset();
    mHullFrom = mHullTo = -1;
    if (!pts || n < 2) return false;
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(pts[i].x) || !std::isfinite(pts[i].y)) return false;

    // The engine works on the sorted points packed together, each half of the recursion in one
    // stretch of memory.
    auto xy = allocate<Xy>(n);
    mOrder = allocate<int>(n);
    {
        auto keys = allocate<SortKey>(n);
        for (int i = 0; i < n; ++i)
            keys[i] = {pts[i].x, pts[i].y, i};
        {
            auto scratch = allocate<SortKey>(n);
            mergeSortKeys(keys.get(), scratch.get(), 0, n - 1);
        }
        for (int s = 0; s < n; ++s) {
            if (s > 0 && keys[s].x == keys[s - 1].x && keys[s].y == keys[s - 1].y) {
                mOrder.reset();
                return false;
            }
            xy[s] = {keys[s].x, keys[s].y};
            mOrder[s] = keys[s].id;
        }
    }

    Builder builder(xy.get(), n);
    int hull = -1;
    if (!builder.run(n, hull)) {
        mOrder.reset();
        return false;
    }

    mEdgeRecords = builder.edgeRecords();
    mEdges = builder.takeEdges();
    mEntry = builder.takeEntry();
    mHullFrom = 0;
    mHullTo = other(hull, 0);
    mPts = pts;
    mCount = n;
    assert(isValid());
    return true;
}

bool Network::isValid() const {
    for (int v = 0; v < mCount; ++v) {
        const int start = mEntry[v];
        if (start < 0) continue;
        if (start >= mEdgeRecords) return false;
        int e = start, steps = 0;
        do {
            const Edge& d = mEdges[e];
            if (d.end[0] != v && d.end[1] != v) return false;
            const int nx = next(e, v);
            if (nx < 0 || nx >= mEdgeRecords || prev(nx, v) != e) return false;
            if (++steps > mEdgeRecords) return false;
            e = nx;
        } while (e != start);
    }
    return true;
}

} // namespace qor::tin
