// Locating query points on a live network by walking from point to point.
#include "toolkit/tinwalk.h"
#include "toolkit/geometry.h"
#include "toolkit/tinheight.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <numbers>
#include <utility>

namespace qor::tin {

namespace {

constexpr double kCoincident = 0.0001;
constexpr double kTwoPi = 2.0 * std::numbers::pi;

int degree(const Network& net, int v) {
    const int first = net.entry(v);
    if (first < 0) return 0;
    int count = 0, e = first;
    do {
        ++count;
        e = net.next(e);
    } while (e != first);
    return count;
}

// Beyond this plan distance from a point, a query is outside every triangle around it by more
// than the margin classify needs (a thousandth of twice the longest spoke, and 0.001), so the
// angle-sum test would put it outside each of them: the step can skip them.
double reachOf(const Network& net, int v) {
    const int first = net.entry(v);
    if (first < 0) return 0.0;
    double longest = 0.0;
    int e = first;
    do {
        const AcGePoint3d &a = net.point(v), &b = net.point(net.dest(e));
        longest =
            std::max(longest, std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y)));
        e = net.next(e);
    } while (e != first);
    return 1.01 * longest + 0.002;
}

bool near(const AcGePoint3d& a, const AcGePoint3d& b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    // Most points are far apart in x or y; the root is for the close ones.
    if (std::fabs(dx) > 2.0 * kCoincident || std::fabs(dy) > 2.0 * kCoincident) return false;
    return std::sqrt(dx * dx + dy * dy) < kCoincident;
}

double cross(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Place along a Hilbert curve over a 65536 x 65536 grid: points close on the curve are close
// in the plane.
uint64_t hilbertKey(uint32_t x, uint32_t y) {
    constexpr uint32_t side = 1u << 16;
    uint64_t d = 0;
    for (uint32_t s = side / 2; s > 0; s /= 2) {
        const uint32_t rx = (x & s) ? 1 : 0, ry = (y & s) ? 1 : 0;
        d += static_cast<uint64_t>(s) * s * ((3 * rx) ^ ry);
        if (ry == 0) {
            if (rx == 1) {
                x = side - 1 - x;
                y = side - 1 - y;
            }
            std::swap(x, y);
        }
    }
    return d;
}

} // namespace

Walker::Walker(const Network& net, const AcArray<AcGePoint3d>& input)
    : mInput(input), mCount(net.size()) {
    const size_t n = static_cast<size_t>(mCount);
    double x0 = net.point(0).x, x1 = x0, y0 = net.point(0).y, y1 = y0;
    for (int v = 1; v < mCount; ++v) {
        x0 = std::min(x0, net.point(v).x);
        x1 = std::max(x1, net.point(v).x);
        y0 = std::min(y0, net.point(v).y);
        y1 = std::max(y1, net.point(v).y);
    }
    const double sx = x1 > x0 ? 65535.0 / (x1 - x0) : 0.0;
    const double sy = y1 > y0 ? 65535.0 / (y1 - y0) : 0.0;
    std::vector<std::pair<uint64_t, int>> curve(n);
    for (int v = 0; v < mCount; ++v) {
        const auto gx = static_cast<uint32_t>((net.point(v).x - x0) * sx);
        const auto gy = static_cast<uint32_t>((net.point(v).y - y0) * sy);
        curve[static_cast<size_t>(v)] = {hilbertKey(gx, gy), v};
    }
    std::sort(curve.begin(), curve.end());

    std::vector<int> block(n);
    int at = 0;
    for (const auto& [key, v] : curve) {
        block[static_cast<size_t>(v)] = at;
        at += 1 + degree(net, v);
    }
    mCells.resize(static_cast<size_t>(at));
    for (const auto& [key, v] : curve) {
        Cell* c = &mCells[static_cast<size_t>(block[static_cast<size_t>(v)])];
        if (net.id(v) == 0) mFirst = block[static_cast<size_t>(v)];
        *c++ = {net.point(v), reachOf(net, v), degree(net, v), 0};
        const int first = net.entry(v);
        if (first < 0) continue;
        int e = first;
        do {
            const int w = net.dest(e);
            *c++ = {net.point(w), M_Angle(net.point(v), net.point(w)),
                    block[static_cast<size_t>(w)], 0};
            e = net.next(e);
        } while (e != first);
    }
}

bool Walker::locate(const AcGePoint3d& q, double& h) {
    if (mStamp == INT_MAX) {
        for (Cell& c : mCells)
            c.seen = 0;
        mStamp = 0;
    }
    ++mStamp;
    int v = mFirst;
    for (long long steps = 0; steps < 3LL * mCount; ++steps) {
        Cell& hub = mCells[static_cast<size_t>(v)];
        // Back at a point already passed: the walk goes round in circles and would spend its
        // 3n steps for nothing.
        if (hub.seen == mStamp) return false;
        hub.seen = mStamp;
        const Cell* ring = &hub + 1;
        const int deg = hub.link;
        // A block is a hub and about six spokes, some 280 bytes.
        for (int k = 0; k < deg; ++k) {
            const size_t next = static_cast<size_t>(ring[k].link);
            for (size_t c = next; c < next + 6 && c < mCells.size(); c += 2)
                __builtin_prefetch(&mCells[c]);
        }
        const AcGePoint3d& pv = hub.p;
        const bool atV = near(q, pv);
        const double dx = q.x - pv.x, dy = q.y - pv.y;
        const bool inReach = dx * dx + dy * dy <= hub.value * hub.value;
        for (int k = 0; inReach && k < deg; ++k) {
            const AcGePoint3d& pw = ring[k].p;
            const AcGePoint3d& pu = ring[k + 1 < deg ? k + 1 : 0].p;
            int cls;
            if (atV || near(q, pw)) {
                cls = classify(pv, pw, pu, q);
            } else {
                // Only a real face: the turn across the outside at a hull point is not one.
                if (!(cross(pv, pw, pu) > 0.0)) continue;
                cls = classify(pv, pw, pu, q);
                if (cls < 0) continue;
            }
            return heightInTriangle(cls, pv, pw, pu, q, h);
        }
        const double toQ = M_Angle(pv, q);
        int best = -1;
        double bestTurn = 0.0;
        for (int k = 0; k < deg; ++k) {
            double turn = ring[k].value - toQ;
            if (turn < 0.0) turn += kTwoPi;
            if (best < 0 || turn < bestTurn) {
                best = k;
                bestTurn = turn;
            }
        }
        if (best < 0) return false;
        v = ring[best].link;
    }
    return false;
}

bool Walker::nearest(const AcGePoint3d& q, double& h) const {
    int best = -1;
    double bestD = 0.0;
    for (int i = 0; i < mInput.length(); ++i) {
        const double dx = mInput[i].x - q.x, dy = mInput[i].y - q.y;
        const double d = dx * dx + dy * dy;
        if (best < 0 || d < bestD) {
            best = i;
            bestD = d;
        }
    }
    if (best < 0) return false;
    h = mInput[best].z;
    return true;
}

} // namespace qor::tin
