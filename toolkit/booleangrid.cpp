// The edge grid: square cells over the polygon's box, each edge listed along its path.
#include "toolkit/booleangrid.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qor::boolean {

namespace {

constexpr double kInfinity = HUGE_VAL;

} // namespace

void EdgeGrid::build(const std::vector<Edge>& edges) {
    const size_t m = edges.size();
    mMargin.assign(m, 0.0);
    mStamp.assign(m, 0);
    mGeneration = 0;
    double xmin = kInfinity, xmax = -kInfinity, ymin = kInfinity, ymax = -kInfinity, big = 0.0;
    for (const Edge& e : edges) {
        xmin = std::min(std::min(xmin, e.x1), e.x2);
        xmax = std::max(std::max(xmax, e.x1), e.x2);
        ymin = std::min(std::min(ymin, e.y1), e.y2);
        ymax = std::max(std::max(ymax, e.y1), e.y2);
        big = std::max(std::max(big, std::fabs(e.x1)), std::fabs(e.y1));
    }
    if (m == 0) xmin = xmax = ymin = ymax = 0.0;
    const double extent = std::max(xmax - xmin, ymax - ymin);
    // The angle-sum test calls a point on an edge when the edge subtends within 1e-4 of a half
    // turn at it: a lens no thicker than a quarter of that times the length. Vertices count
    // within 1e-4. The last term keeps rounding in the angles of far points inside the margin.
    double widest = 0.0, spans = 0.0;
    for (size_t i = 0; i < m; ++i) {
        const Edge& e = edges[i];
        // |dx| + |dy| bounds the length from above: a wider margin only lists more.
        const double span = std::fabs(e.x2 - e.x1) + std::fabs(e.y2 - e.y1);
        mMargin[i] = 1.5e-4 + 1e-4 * span + 1e-10 * extent;
        widest = std::max(widest, mMargin[i]);
        spans += span + 2.0 * mMargin[i];
    }
    mXmin = xmin - widest;
    mXmax = xmax + widest;
    mYmin = ymin - widest;
    mYmax = ymax + widest;

    // About two cells per edge, square, shaped to the box.
    const double cells = std::max(1.0, 2.0 * static_cast<double>(m));
    const double w = mXmax - mXmin, h = mYmax - mYmin;
    double side = std::sqrt(w * h / cells);
    side = std::max(side, std::max(w, h) / cells);
    // An edge is listed in about span / side + 4 cells: outlines of many long edges get
    // wider cells, so the lists stay within a few dozen entries per edge.
    const double listed = spans / side + 4.0 * static_cast<double>(m);
    if (listed > 32.0 * cells) side *= listed / (32.0 * cells);
    if (!(side > 0.0) || !std::isfinite(side)) side = 1.0;
    mCell = side;
    mInverse = 1.0 / side;
    mNx = static_cast<int>(std::clamp(std::ceil(w / side), 1.0, cells));
    mNy = static_cast<int>(std::clamp(std::ceil(h / side), 1.0, cells));
    mX0 = mXmin;
    mY0 = mYmin;
    mSlack = 1e-7 * side + 1e-13 * (big + 1.0);

    // One walk over each edge's cells counts them and notes the visits; the counts, summed so
    // that mStart[c] is where cell c's list ends, then take the visits from the last, each list
    // filling from its end down to its start, in edge order.
    const size_t total = static_cast<size_t>(mNx) * static_cast<size_t>(mNy);
    mStart.assign(total + 1, 0);
    std::vector<std::pair<int, int>> visits; // cell, edge
    visits.reserve(4 * m + 16);
    for (size_t i = 0; i < m; ++i)
        forEachCell(edges[i], mMargin[i] + mSlack, [&](int c) {
            ++mStart[static_cast<size_t>(c)];
            visits.push_back({c, static_cast<int>(i)});
        });
    for (size_t c = 1; c <= total; ++c)
        mStart[c] += mStart[c - 1];
    mItems.resize(static_cast<size_t>(mStart[total]));
    for (auto v = visits.rbegin(); v != visits.rend(); ++v)
        mItems[static_cast<size_t>(--mStart[static_cast<size_t>(v->first)])] = v->second;
}

bool EdgeGrid::covers(double x, double y) const {
    return x >= mXmin && x <= mXmax && y >= mYmin && y <= mYmax;
}

// Every cell holding a point within `reach` of the segment. Row by row: the part of the
// segment whose y comes within reach of the row's band gives the columns, widened by reach.
// The outer rows and columns reach to infinity, as the clamped lookups do.
template <class Fn> void EdgeGrid::forEachCell(const Edge& s, double reach, Fn&& fn) const {
    const double xlo = std::min(s.x1, s.x2) - reach, xhi = std::max(s.x1, s.x2) + reach;
    const double ylo = std::min(s.y1, s.y2) - reach, yhi = std::max(s.y1, s.y2) + reach;
    const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
    const int r0 = row(ylo), r1 = row(yhi);
    // A short segment: every cell of its widened box, which holds all the others.
    if (r1 - r0 <= 1) {
        const int c0 = column(xlo), c1 = column(xhi);
        if (c1 - c0 <= 1) {
            for (int j = r0; j <= r1; ++j)
                for (int c = c0; c <= c1; ++c)
                    fn(j * mNx + c);
            return;
        }
    }
    for (int j = r0; j <= r1; ++j) {
        double xa = xlo, xb = xhi;
        if (dy != 0.0) {
            const double bandLo = j == 0 ? -kInfinity : mY0 + j * mCell - reach;
            const double bandHi = j == mNy - 1 ? kInfinity : mY0 + (j + 1) * mCell + reach;
            double ta = (bandLo - s.y1) / dy, tb = (bandHi - s.y1) / dy;
            if (ta > tb) std::swap(ta, tb);
            if (tb < 0.0 || ta > 1.0) continue;
            ta = std::max(ta, 0.0);
            tb = std::min(tb, 1.0);
            const double pa = s.x1 + ta * dx, pb = s.x1 + tb * dx;
            xa = std::max(xlo, std::min(pa, pb) - reach);
            xb = std::min(xhi, std::max(pa, pb) + reach);
        }
        const int c0 = column(xa), c1 = column(xb);
        for (int c = c0; c <= c1; ++c)
            fn(j * mNx + c);
    }
}

void EdgeGrid::nextStamp() {
    if (++mGeneration == 0) {
        std::fill(mStamp.begin(), mStamp.end(), 0);
        mGeneration = 1;
    }
}

void EdgeGrid::collect(int cell, std::vector<int>& out) {
    const int* it = mItems.data() + mStart[static_cast<size_t>(cell)];
    const int* end = mItems.data() + mStart[static_cast<size_t>(cell) + 1];
    for (; it != end; ++it) {
        std::uint32_t& stamp = mStamp[static_cast<size_t>(*it)];
        if (stamp == mGeneration) continue;
        stamp = mGeneration;
        out.push_back(*it);
    }
}

void EdgeGrid::alongSegment(const Edge& s, std::vector<int>& out) {
    out.clear();
    // Outside the box no point is near an edge: only the part of s inside it is searched,
    // which keeps far segments off the outer cells that stand for everything beyond them.
    const double lo[2] = {mXmin - mSlack, mYmin - mSlack}, hi[2] = {mXmax + mSlack, mYmax + mSlack};
    const double from[2] = {s.x1, s.y1}, delta[2] = {s.x2 - s.x1, s.y2 - s.y1};
    double t0 = 0.0, t1 = 1.0;
    for (int axis = 0; axis < 2; ++axis) {
        if (delta[axis] == 0.0) {
            if (from[axis] < lo[axis] || from[axis] > hi[axis]) return;
            continue;
        }
        double ta = (lo[axis] - from[axis]) / delta[axis],
               tb = (hi[axis] - from[axis]) / delta[axis];
        if (ta > tb) std::swap(ta, tb);
        t0 = std::max(t0, ta);
        t1 = std::min(t1, tb);
    }
    if (!(t0 <= t1)) return;
    const Edge inside{s.x1 + t0 * delta[0], s.y1 + t0 * delta[1], s.x1 + t1 * delta[0],
                      s.y1 + t1 * delta[1]};
    nextStamp();
    forEachCell(inside, mSlack, [&](int c) { collect(c, out); });
    // Where edges crowd together the list can hold a good part of them: reading the stamps
    // in order is then cheaper than sorting.
    if (out.size() > 64 && out.size() * 16 > mStamp.size()) {
        out.clear();
        for (size_t k = 0; k < mStamp.size(); ++k)
            if (mStamp[k] == mGeneration) out.push_back(static_cast<int>(k));
        return;
    }
    // Mostly a handful: an insertion sort saves the general sort's set-up.
    if (out.size() > 16) {
        std::sort(out.begin(), out.end());
        return;
    }
    for (size_t i = 1; i < out.size(); ++i)
        for (size_t j = i; j > 0 && out[j] < out[j - 1]; --j)
            std::swap(out[j], out[j - 1]);
}

} // namespace qor::boolean
