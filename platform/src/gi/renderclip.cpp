// Device-space clipping: segments (Liang-Barsky), polygons (Sutherland-Hodgman), lines and
// ellipse arcs against an axis-aligned box.
#include "renderclip.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qorrender {

Box Box::around(const AcGePoint2d* pts, size_t n) {
    Box b;
    if (n == 0) return b;
    b = {pts[0].x, pts[0].y, pts[0].x, pts[0].y};
    for (size_t i = 1; i < n; ++i) {
        b.x0 = std::min(b.x0, pts[i].x);
        b.y0 = std::min(b.y0, pts[i].y);
        b.x1 = std::max(b.x1, pts[i].x);
        b.y1 = std::max(b.y1, pts[i].y);
    }
    return b;
}

namespace {

// Liang-Barsky: the part [t0, t1] of a + t (b - a), t in [lo, hi], inside the box.
bool clipParams(const AcGePoint2d& a, const AcGePoint2d& b, const Box& box, double& t0,
                double& t1) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {a.x - box.x0, box.x1 - a.x, a.y - box.y0, box.y1 - a.y};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0) return false;
            continue;
        }
        const double r = q[i] / p[i];
        if (p[i] < 0.0)
            t0 = std::max(t0, r);
        else
            t1 = std::min(t1, r);
        if (t0 > t1) return false;
    }
    return true;
}

AcGePoint2d along(const AcGePoint2d& a, const AcGePoint2d& b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

} // namespace

std::vector<Points> clipPolyline(const Points& pts, bool closed, const Box& box) {
    std::vector<Points> runs;
    Points run;
    auto flush = [&] {
        if (run.size() >= 2) runs.push_back(std::move(run));
        run.clear();
    };
    const size_t n = pts.size();
    const size_t segments = closed && n > 2 ? n : (n > 0 ? n - 1 : 0);
    for (size_t i = 0; i < segments; ++i) {
        const AcGePoint2d& a = pts[i];
        const AcGePoint2d& b = pts[(i + 1) % n];
        double t0 = 0.0, t1 = 1.0;
        if (!clipParams(a, b, box, t0, t1)) {
            flush();
            continue;
        }
        if (t0 > 0.0 || run.empty()) {
            flush();
            run.push_back(along(a, b, t0));
        }
        run.push_back(along(a, b, t1));
        if (t1 < 1.0) flush();
    }
    flush();
    return runs;
}

Points clipPolygon(const Points& pts, const Box& box) {
    Points out = pts;
    // One pass per side: keep what is inside, add the crossing points.
    auto pass = [&](auto inside, auto cross) {
        Points in;
        in.swap(out);
        const size_t n = in.size();
        for (size_t i = 0; i < n; ++i) {
            const AcGePoint2d& cur = in[i];
            const AcGePoint2d& prev = in[(i + n - 1) % n];
            const bool curIn = inside(cur), prevIn = inside(prev);
            if (curIn != prevIn) out.push_back(cross(prev, cur));
            if (curIn) out.push_back(cur);
        }
    };
    auto atX = [](const AcGePoint2d& a, const AcGePoint2d& b, double x) {
        return AcGePoint2d(x, a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x));
    };
    auto atY = [](const AcGePoint2d& a, const AcGePoint2d& b, double y) {
        return AcGePoint2d(a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y), y);
    };
    pass([&](const AcGePoint2d& p) { return p.x >= box.x0; },
         [&](const AcGePoint2d& a, const AcGePoint2d& b) { return atX(a, b, box.x0); });
    pass([&](const AcGePoint2d& p) { return p.x <= box.x1; },
         [&](const AcGePoint2d& a, const AcGePoint2d& b) { return atX(a, b, box.x1); });
    pass([&](const AcGePoint2d& p) { return p.y >= box.y0; },
         [&](const AcGePoint2d& a, const AcGePoint2d& b) { return atY(a, b, box.y0); });
    pass([&](const AcGePoint2d& p) { return p.y <= box.y1; },
         [&](const AcGePoint2d& a, const AcGePoint2d& b) { return atY(a, b, box.y1); });
    if (out.size() < 3) out.clear();
    return out;
}

bool clipLine(const AcGePoint2d& a, const AcGePoint2d& b, bool ray, const Box& box,
              AcGePoint2d& from, AcGePoint2d& to) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double len = std::hypot(dx, dy);
    if (!(len > 0.0) || box.isEmpty()) return false;
    // Far enough either way to cross the whole box from anywhere near it.
    const double reach = (std::fabs(a.x) + std::fabs(a.y) + (box.x1 - box.x0) + (box.y1 - box.y0) +
                          std::fabs(box.x0) + std::fabs(box.y0)) /
                             len +
                         1.0;
    const AcGePoint2d start = ray ? a : along(a, b, -reach);
    const AcGePoint2d end = along(a, b, reach);
    double t0 = 0.0, t1 = 1.0;
    if (!clipParams(start, end, box, t0, t1)) return false;
    from = along(start, end, t0);
    to = along(start, end, t1);
    return true;
}

std::vector<std::pair<double, double>> ellipseIntervals(const AcGePoint2d& c, const AcGeVector2d& u,
                                                        const AcGeVector2d& v, double sweep,
                                                        const Box& box) {
    constexpr double kTwoPi = 2.0 * std::numbers::pi;
    const double sign = sweep < 0.0 ? -1.0 : 1.0;
    const double span = std::min(std::fabs(sweep), kTwoPi);
    // Work in s = sign * t, so that the arc runs over s in [0, span].
    std::vector<double> cuts{0.0, span};
    auto crossings = [&](double a, double b, double d) {
        const double r = std::hypot(a, b);
        if (!(r > 0.0) || std::fabs(d) > r) return;
        const double phi = std::atan2(b, a), delta = std::acos(std::clamp(d / r, -1.0, 1.0));
        for (double t : {phi + delta, phi - delta}) {
            double s = std::fmod(sign * t, kTwoPi);
            if (s < 0.0) s += kTwoPi;
            if (s < span) cuts.push_back(s);
        }
    };
    crossings(u.x, v.x, box.x0 - c.x);
    crossings(u.x, v.x, box.x1 - c.x);
    crossings(u.y, v.y, box.y0 - c.y);
    crossings(u.y, v.y, box.y1 - c.y);
    std::sort(cuts.begin(), cuts.end());
    std::vector<std::pair<double, double>> out;
    for (size_t i = 0; i + 1 < cuts.size(); ++i) {
        const double s0 = cuts[i], s1 = cuts[i + 1];
        if (!(s1 > s0)) continue;
        const double t = sign * (s0 + s1) / 2.0;
        const AcGePoint2d mid(c.x + u.x * std::cos(t) + v.x * std::sin(t),
                              c.y + u.y * std::cos(t) + v.y * std::sin(t));
        if (!box.holds(mid)) continue;
        if (!out.empty() && out.back().second == sign * s0)
            out.back().second = sign * s1;
        else
            out.emplace_back(sign * s0, sign * s1);
    }
    return out;
}

} // namespace qorrender
