// Edge tables, edge meetings and the ordering of split points.
#include "toolkit/booleanedges.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qor::boolean {

namespace {

// Whether (px, py) lies closer than tol to the segment s.
bool nearSegment(double px, double py, const Edge& s, double tol) {
    const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0.0 ? ((px - s.x1) * dx + (py - s.y1) * dy) / len2 : 0.0;
    t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
    return closerThan(AcGePoint2d(px, py), AcGePoint2d(s.x1 + t * dx, s.y1 + t * dy), tol);
}

// From the infinite line through s; from its start when s has no length.
double distanceToLine(double px, double py, const Edge& s) {
    const double a = s.y2 - s.y1, b = s.x1 - s.x2;
    const double norm = std::hypot(a, b);
    if (!(norm > 0.0)) return std::hypot(px - s.x1, py - s.y1);
    return std::fabs(a * (px - s.x1) + b * (py - s.y1)) / norm;
}

void addPoint(std::vector<SplitPoint>& split, double x, double y) {
    const AcGePoint2d p(x, y);
    for (SplitPoint& s : split)
        if (closerThan(AcGePoint2d(s.x, s.y), p, kSplitTol)) {
            s.type = kCrossing;
            return;
        }
    split.push_back({x, y, kCrossing});
}

} // namespace

std::vector<Edge> edgeTable(const AcArray<AcGePoint2d>& polygon) {
    const int n = polygon.length();
    std::vector<Edge> edges(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        const AcGePoint2d& a = polygon[i];
        const AcGePoint2d& b = polygon[(i + 1) % n];
        edges[static_cast<size_t>(i)] = {a.x, a.y, b.x, b.y};
    }
    return edges;
}

void addMeetings(const Edge& e, const Edge& f, std::vector<SplitPoint>& split) {
    // Whatever is added lies within kSplitTol of both edges, so within both their boxes
    // widened by that: boxes further apart than twice it give nothing.
    constexpr double kGap = 2.5 * kSplitTol;
    if (std::max(e.x1, e.x2) + kGap < std::min(f.x1, f.x2) ||
        std::max(f.x1, f.x2) + kGap < std::min(e.x1, e.x2) ||
        std::max(e.y1, e.y2) + kGap < std::min(f.y1, f.y2) ||
        std::max(f.y1, f.y2) + kGap < std::min(e.y1, e.y2))
        return;
    // Each line as a*x + b*y = c.
    const double a1 = e.y2 - e.y1, b1 = e.x1 - e.x2;
    const double a2 = f.y2 - f.y1, b2 = f.x1 - f.x2;
    const double det = a1 * b2 - a2 * b1;
    if (std::fabs(det) < kParallelDet) {
        const bool collinear = (distanceToLine(f.x1, f.y1, e) < kSplitTol &&
                                distanceToLine(f.x2, f.y2, e) < kSplitTol) ||
                               (distanceToLine(e.x1, e.y1, f) < kSplitTol &&
                                distanceToLine(e.x2, e.y2, f) < kSplitTol);
        if (!collinear) return;
        if (nearSegment(f.x1, f.y1, e, kSplitTol)) addPoint(split, f.x1, f.y1);
        if (nearSegment(f.x2, f.y2, e, kSplitTol)) addPoint(split, f.x2, f.y2);
        return;
    }
    // The lines are taken about e's start, so that survey-sized coordinates keep their digits:
    // there c1 is 0.
    const double c2 = a2 * (f.x1 - e.x1) + b2 * (f.y1 - e.y1);
    const double x = e.x1 + (-c2 * b1) / det;
    const double y = e.y1 + (a1 * c2) / det;
    if (nearSegment(x, y, e, kSplitTol) && nearSegment(x, y, f, kSplitTol)) addPoint(split, x, y);
}

void sortAlong(const Edge& e, std::vector<SplitPoint>& split) {
    // The start itself is at distance 0, the least there is: two points are in order.
    const size_t n = split.size();
    if (n < 3) return;
    // A distance that is not a number sorts last, so the order stays strict.
    const auto distance = [&](const SplitPoint& p) {
        const double d = std::hypot(p.x - e.x1, p.y - e.y1);
        return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
    };
    // Equal distances keep their order either way. An edge rarely meets more than a few: their
    // keys fit on the stack and an insertion sort orders them.
    constexpr size_t kFew = 16;
    if (n > kFew) {
        struct Keyed {
            double key;
            SplitPoint point;
        };
        std::vector<Keyed> keyed(n);
        for (size_t i = 0; i < n; ++i)
            keyed[i] = {distance(split[i]), split[i]};
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const Keyed& p, const Keyed& q) { return p.key < q.key; });
        for (size_t i = 0; i < n; ++i)
            split[i] = keyed[i].point;
        return;
    }
    double key[kFew];
    for (size_t i = 0; i < n; ++i)
        key[i] = distance(split[i]);
    for (size_t i = 1; i < n; ++i)
        for (size_t j = i; j > 0 && key[j] < key[j - 1]; --j) {
            std::swap(key[j], key[j - 1]);
            std::swap(split[j], split[j - 1]);
        }
}

} // namespace qor::boolean
