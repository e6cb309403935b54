// Painting in device coordinates: strokes, fills and elliptic arcs, culled against the page
// and cut down to it where cairo's coordinates would not reach.
#include "cairoimpl.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace qorrender;

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
// Most pieces one tessellated arc may have; beyond it the arc is far larger than the page.
constexpr int kMaxArcPieces = 1 << 16;

void addPath(cairo_t* cr, const Points& pts, bool closed) {
    cairo_move_to(cr, pts[0].x, pts[0].y);
    for (size_t i = 1; i < pts.size(); ++i)
        cairo_line_to(cr, pts[i].x, pts[i].y);
    // A lone point still shows, as a dot of the line's width.
    if (pts.size() == 1) cairo_line_to(cr, pts[0].x, pts[0].y);
    if (closed) cairo_close_path(cr);
}

// Points of c + u cos t + v sin t for t from t0 to t1, close enough for a radius r.
void arcPoints(const AcGePoint2d& c, const AcGeVector2d& u, const AcGeVector2d& v, double t0,
               double t1, double r, Points& out) {
    const double tolerance = 0.25;
    const double step =
        r > tolerance ? 2.0 * std::acos(1.0 - tolerance / r) : std::numbers::pi / 4.0;
    const int n =
        std::clamp(static_cast<int>(std::ceil(std::fabs(t1 - t0) / step)), 1, kMaxArcPieces);
    for (int i = 0; i <= n; ++i) {
        const double t = t0 + (t1 - t0) * i / n;
        out.emplace_back(c.x + u.x * std::cos(t) + v.x * std::sin(t),
                         c.y + u.y * std::cos(t) + v.y * std::sin(t));
    }
}

} // namespace

void AcGiRenderer::Impl::applyColor(const Pen& p) {
    cairo_set_source_rgb(canvas.cr(), p.r, p.g, p.b);
}

void AcGiRenderer::Impl::applyStroke(const Pen& p) {
    cairo_t* cr = canvas.cr();
    applyColor(p);
    cairo_set_line_width(cr, p.width);
    if (!p.dashes) {
        cairo_set_dash(cr, nullptr, 0, 0.0);
        return;
    }
    std::vector<double> lengths = p.dashes->lengths;
    for (double& l : lengths)
        l *= p.dashScale;
    cairo_set_dash(cr, lengths.data(), static_cast<int>(lengths.size()),
                   p.dashes->offset * p.dashScale);
}

void AcGiRenderer::Impl::stroke(const Points& pts, bool closed, const Pen& p) {
    if (pts.empty()) return;
    const Box box = Box::around(pts.data(), pts.size());
    const Box reach = page.grownBy(p.width + 2.0);
    if (!reach.meets(box)) return;
    cairo_t* cr = canvas.cr();
    cairo_new_path(cr);
    if (safe.holds(box)) {
        addPath(cr, pts, closed && pts.size() > 2);
    } else {
        for (const Points& run : clipPolyline(pts, closed, reach))
            addPath(cr, run, false);
    }
    applyStroke(p);
    cairo_stroke(cr);
}

void AcGiRenderer::Impl::fill(const std::vector<Points>& loops, const Pen& p) {
    Box box;
    for (const Points& loop : loops) {
        if (loop.size() < 3) continue;
        const Box b = Box::around(loop.data(), loop.size());
        box = box.isEmpty() ? b
                            : Box{std::min(box.x0, b.x0), std::min(box.y0, b.y0),
                                  std::max(box.x1, b.x1), std::max(box.y1, b.y1)};
    }
    const Box reach = page.grownBy(2.0);
    if (!reach.meets(box)) return;
    cairo_t* cr = canvas.cr();
    cairo_new_path(cr);
    const bool direct = safe.holds(box);
    for (const Points& loop : loops) {
        if (loop.size() < 3) continue;
        if (direct) {
            addPath(cr, loop, true);
        } else {
            const Points cut = clipPolygon(loop, reach);
            if (!cut.empty()) addPath(cr, cut, true);
        }
    }
    applyColor(p);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cr);
}

void AcGiRenderer::Impl::ellipse(const AcGePoint2d& c, const AcGeVector2d& u, const AcGeVector2d& v,
                                 double sweep, AcGiArcType type, bool filled, const Pen& p) {
    sweep = std::clamp(sweep, -kTwoPi, kTwoPi);
    const bool whole = std::fabs(sweep) >= kTwoPi;
    const double ex = std::hypot(u.x, v.x), ey = std::hypot(u.y, v.y);
    const Box box{c.x - ex, c.y - ey, c.x + ex, c.y + ey};
    if (!page.grownBy(p.width + 2.0).meets(box)) return;
    const bool closedShape = whole || type != kAcGiArcSimple;
    filled = filled && closedShape;
    const double r = std::max(u.length(), v.length());
    const double det = u.x * v.y - u.y * v.x;
    cairo_t* cr = canvas.cr();
    if (safe.holds(box) && std::fabs(det) > 1e-9 * r * r) {
        // cairo draws the unit circle through the ellipse's own frame: an exact curve.
        cairo_new_path(cr);
        if (type == kAcGiArcSector && !whole) cairo_move_to(cr, c.x, c.y);
        cairo_matrix_t frame;
        cairo_matrix_init(&frame, u.x, u.y, v.x, v.y, c.x, c.y);
        cairo_save(cr);
        cairo_transform(cr, &frame);
        if (sweep >= 0.0)
            cairo_arc(cr, 0.0, 0.0, 1.0, 0.0, sweep);
        else
            cairo_arc_negative(cr, 0.0, 0.0, 1.0, 0.0, sweep);
        cairo_restore(cr);
        if (closedShape) cairo_close_path(cr);
        if (filled) {
            applyColor(p);
            cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
            cairo_fill(cr);
        } else {
            applyStroke(p);
            cairo_stroke(cr);
        }
        return;
    }
    // Seen edge-on, or far larger than the page: straight pieces, and only those in sight
    // unless a fill needs the whole outline.
    if (filled) {
        Points outline;
        if (type == kAcGiArcSector && !whole) outline.push_back(c);
        arcPoints(c, u, v, 0.0, sweep, r, outline);
        fill({outline}, p);
        return;
    }
    if (closedShape && !whole) {
        Points outline;
        if (type == kAcGiArcSector) outline.push_back(c);
        arcPoints(c, u, v, 0.0, sweep, r, outline);
        stroke(outline, true, p);
        return;
    }
    const Box reach = page.grownBy(p.width + 2.0);
    for (const auto& [t0, t1] : ellipseIntervals(c, u, v, sweep, reach)) {
        Points piece;
        arcPoints(c, u, v, t0, t1, r, piece);
        stroke(piece, false, p);
    }
}

void AcGiRenderer::Impl::arc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                             const AcGeVector3d& start, double sweep, AcGiArcType type, bool filled,
                             const Pen& p) {
    // The arc's own frame: u along the start, v a quarter turn on about the normal.
    const AcGeVector3d n = normal.normal();
    const AcGeVector3d s = (start - n * start.dotProduct(n)).normal();
    const AcGeVector3d u = s * radius;
    const AcGeVector3d v = n.crossProduct(s) * radius;
    ellipse(dev(center), toDevice.vector(u), toDevice.vector(v), sweep, type, filled, p);
}
