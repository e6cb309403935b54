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
// recursion reads a contiguous stretch of memory. Edges are numbered e and stored as the
// half-edges 2e (made from u to v) and 2e + 1.
class Builder {
public:
    Builder(const Xy* pts, int n)
        // Half-edge numbers, twice the edge numbers, must fit in an int.
        : mPts(pts), mCap(static_cast<int>(std::min(3LL * n, static_cast<long long>(INT_MAX / 2)))),
          mHalves(allocate<HalfEdge>(6LL * n)), mFree(allocate<int>(3LL * n)),
          mEntry(allocate<int>(n)) {
        for (int i = 0; i < n; ++i)
            mEntry[i] = -1;
    }

    // False when the arithmetic led a walk astray; the structure is then of no use.
    // hull is the counter-clockwise hull half-edge leaving point 0.
    bool run(int n, int& hull) {
        int rcw = -1;
        divide(0, n - 1, hull, rcw);
        return !mFailed;
    }

    int halfCount() const { return 2 * mFresh; }
    std::unique_ptr<HalfEdge[]> takeHalves() { return std::move(mHalves); }
    std::unique_ptr<int[]> takeEntry() { return std::move(mEntry); }

private:
    const Xy* mPts;
    int mCap;
    std::unique_ptr<HalfEdge[]> mHalves;
    std::unique_ptr<int[]> mFree; // freed edges, reused first
    std::unique_ptr<int[]> mEntry;
    int mFresh = 0, mFreeTop = 0;
    bool mFailed = false;

    int dest(int h) const { return mHalves[h].dest; }
    int next(int h) const { return mHalves[h].next; }
    int prev(int h) const { return mHalves[h].prev; }

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

    // The half-edge from u to v of a new edge alone in both rings.
    int makeEdge(int u, int v) {
        const int h = 2 * getEdge(), t = twin(h);
        mHalves[h] = {v, h, h};
        mHalves[t] = {u, t, t};
        if (mEntry[u] < 0) mEntry[u] = h;
        if (mEntry[v] < 0) mEntry[v] = t;
        return h;
    }

    // Puts the unattached b into the ring round their common origin just after a.
    void splice(int a, int b) {
        const int after = next(a);
        mHalves[a].next = b;
        mHalves[after].prev = b;
        mHalves[b].next = after;
        mHalves[b].prev = a;
    }

    // A new edge from a's origin u to b's origin v, returned as its half from u. On the right
    // side it goes after a around u and before b around v; on the left side before a and after
    // b.
    int join(int a, int u, int b, int v, Side side) {
        const int h = makeEdge(u, v);
        if (side == Side::left) {
            splice(prev(a), h);
            splice(b, twin(h));
        } else {
            splice(a, h);
            splice(prev(b), twin(h));
        }
        return h;
    }

    void deleteEdge(int h) {
        const int t = twin(h);
        const HalfEdge dh = mHalves[h], dt = mHalves[t];
        // A point whose entry goes moves it on to the next half-edge round it.
        if (mEntry[dt.dest] == h) mEntry[dt.dest] = dh.next;
        if (mEntry[dh.dest] == t) mEntry[dh.dest] = dt.next;
        mHalves[dh.next].prev = dh.prev;
        mHalves[dh.prev].next = dh.next;
        mHalves[dt.next].prev = dt.prev;
        mHalves[dt.prev].next = dt.next;
        mFree[mFreeTop++] = h / 2;
    }

    // Returns the counter-clockwise hull half-edge leaving the leftmost point and the clockwise
    // hull half-edge leaving the rightmost point.
    void divide(int l, int r, int& lccw, int& rcw) {
        const int n = r - l + 1;
        if (n == 2) {
            lccw = makeEdge(l, r);
            rcw = twin(lccw);
            return;
        }
        if (n == 3) {
            const int a = makeEdge(l, l + 1), b = makeEdge(l + 1, r);
            splice(twin(a), b);
            const double c = cross(l, l + 1, r);
            if (c > 0.0) {
                join(a, l, twin(b), r, Side::right);
                lccw = a;
                rcw = twin(b);
            } else if (c < 0.0) {
                lccw = join(a, l, twin(b), r, Side::left);
                rcw = twin(lccw);
            } else {
                // Collinear: the chain stays open.
                lccw = a;
                rcw = twin(b);
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
        if (dest(twin(base)) == l) lccwL = base;
        if (dest(base) == r) rcwR = twin(base);
        lccw = lccwL;
        rcw = rcwR;
    }

    // Walks down both hulls from their facing points until the line between them has every
    // point on or above it. Each hull is walked one way only, so there are fewer moves than
    // points; more means rounding has sent the walk round in circles. l and r come back as the
    // tangent's hull half-edges leaving its ends ol and orr.
    void lowerTangent(int rcwL, int s, int lccwR, int u, int points, int& l, int& ol, int& r,
                      int& orr) {
        l = rcwL;
        r = lccwR;
        ol = s;
        orr = u;
        int dl = dest(l), dr = dest(r);
        for (int moves = 0;; ++moves) {
            if (moves > points) {
                mFailed = true;
                return;
            }
            if (cross(ol, dl, orr) > 0.0) {
                l = prev(twin(l));
                ol = dl;
                dl = dest(l);
            } else if (cross(orr, dr, ol) < 0.0) {
                r = next(twin(r));
                orr = dr;
                dr = dest(r);
            } else {
                return;
            }
        }
    }

    // Stitches the halves upwards from the lower tangent and returns that first base edge, as
    // its half leaving the left half.
    int merge(int rcwL, int s, int lccwR, int u, int points) {
        int l, ol, r, orr;
        lowerTangent(rcwL, s, lccwR, u, points, l, ol, r, orr);
        if (mFailed) return -1;
        // base runs from orgB on the left to destB on the right.
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
            // The candidates leave orgB and destB; their far ends are kept beside them: the
            // deletions write to the half-edge records, so the compiler would read them again
            // each time they are asked for.
            int lc = next(base), rc = prev(twin(base));
            int farL = dest(lc), farR = dest(rc);
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
                    const int nx = next(lc);
                    const int far = dest(nx);
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
                    const int nx = prev(rc);
                    const int far = dest(nx);
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
                base = join(twin(lc), farL, twin(base), destB, Side::right);
                orgB = farL;
            } else {
                base = join(base, orgB, twin(rc), farR, Side::right);
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
    mCount = mHalfCount = 0;
    mEntry.reset();
    mHalves.reset();
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
            sortKeys(keys.get(), scratch.get(), n);
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

    mHalfCount = builder.halfCount();
    mHalves = builder.takeHalves();
    mEntry = builder.takeEntry();
    mHullFrom = 0;
    mHullTo = dest(hull);
    mPts = pts;
    mCount = n;
    assert(isValid());
    return true;
}

bool Network::isValid() const {
    for (int v = 0; v < mCount; ++v) {
        const int start = mEntry[v];
        if (start < 0) continue;
        if (start >= mHalfCount) return false;
        int h = start, steps = 0;
        do {
            const int nx = next(h);
            if (dest(twin(h)) != v) return false;
            if (nx < 0 || nx >= mHalfCount || prev(nx) != h) return false;
            if (++steps > mHalfCount) return false;
            h = nx;
        } while (h != start);
    }
    return true;
}

} // namespace qor::tin
