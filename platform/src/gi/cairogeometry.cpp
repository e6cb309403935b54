// The renderer's curve primitives: polylines, polygons, circles, arcs, lightweight polylines,
// construction lines, eye and display coordinates, and clip boundaries.
#include "cairoimpl.h"

#include "dbents.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace qorrender;

namespace qorrender {

void planeAxes(const AcGeVector3d& normal, AcGeVector3d& u, AcGeVector3d& v) {
    const AcGeVector3d n = normal.normal();
    u = n.perpVector().normal();
    v = n.crossProduct(u);
}

} // namespace qorrender

namespace {

bool allFinite(const AcGePoint3d* pts, Adesk::UInt32 n) {
    for (Adesk::UInt32 i = 0; i < n; ++i)
        if (!finite(pts[i])) return false;
    return true;
}

Points toDevice(const AcGiRenderer::Impl& d, const AcGePoint3d* pts, Adesk::UInt32 n) {
    Points out;
    out.reserve(n);
    for (Adesk::UInt32 i = 0; i < n; ++i)
        out.push_back(d.dev(pts[i]));
    return out;
}

bool arcInputOk(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                const AcGeVector3d& start, double sweep) {
    if (!finite(center) || !finite(normal) || !finite(start) || normal.isZeroLength() ||
        !(radius > 0.0) || !std::isfinite(radius) || !std::isfinite(sweep))
        return false;
    // Only the part of the start vector in the arc's plane says where the arc starts.
    const AcGeVector3d n = normal.normal();
    const AcGeVector3d inPlane = start - n * start.dotProduct(n);
    return inPlane.length() > 1e-12 * start.length();
}

} // namespace

Adesk::Boolean AcGiRenderGeometry::polyline(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList,
                                            const AcGeVector3d*, Adesk::GsMarker) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (nbPoints == 0 || !pVertexList || !allFinite(pVertexList, nbPoints)) return d.reject();
    Pen p;
    if (d.pen(p)) d.stroke(toDevice(d, pVertexList, nbPoints), false, p);
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::polygon(Adesk::UInt32 nbPoints,
                                           const AcGePoint3d* pVertexList) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (nbPoints == 0 || !pVertexList || !allFinite(pVertexList, nbPoints)) return d.reject();
    Pen p;
    if (!d.pen(p)) return Adesk::kFalse;
    Points pts = toDevice(d, pVertexList, nbPoints);
    if (d.traits.t.fillType == kAcGiFillAlways && pts.size() >= 3)
        d.fill({pts}, p);
    else
        d.stroke(pts, true, p);
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::circle(const AcGePoint3d& center, double radius,
                                          const AcGeVector3d& normal) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!finite(center) || !finite(normal) || normal.isZeroLength() || !(radius > 0.0) ||
        !std::isfinite(radius))
        return d.reject();
    Pen p;
    if (!d.pen(p)) return Adesk::kFalse;
    AcGeVector3d u, v;
    planeAxes(normal, u, v);
    d.arc(center, radius, normal, u, 2.0 * std::numbers::pi, kAcGiArcSimple,
          d.traits.t.fillType == kAcGiFillAlways, p);
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::circle(const AcGePoint3d& p1, const AcGePoint3d& p2,
                                          const AcGePoint3d& p3) const {
    AcGePoint3d center;
    double radius = 0.0;
    AcGeVector3d normal;
    if (!circleThrough(p1, p2, p3, center, radius, normal)) return mOwner->mImpl->reject();
    return circle(center, radius, normal);
}

Adesk::Boolean AcGiRenderGeometry::circularArc(const AcGePoint3d& center, double radius,
                                               const AcGeVector3d& normal,
                                               const AcGeVector3d& startVector, double sweepAngle,
                                               AcGiArcType arcType) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!arcInputOk(center, radius, normal, startVector, sweepAngle)) return d.reject();
    Pen p;
    if (!d.pen(p)) return Adesk::kFalse;
    d.arc(center, radius, normal, startVector, sweepAngle, arcType,
          d.traits.t.fillType == kAcGiFillAlways, p);
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                                               const AcGePoint3d& end, AcGiArcType arcType) const {
    AcGePoint3d center;
    double radius = 0.0;
    AcGeVector3d normal;
    if (!circleThrough(start, point, end, center, radius, normal)) return mOwner->mImpl->reject();
    // With the normal from (point - start) x (end - start) the three points run
    // counter-clockwise, so the sweep is the counter-clockwise angle from start to end.
    const AcGeVector3d s = start - center, e = end - center;
    double sweep = std::atan2(s.crossProduct(e).dotProduct(normal), s.dotProduct(e));
    if (sweep <= 0.0) sweep += 2.0 * std::numbers::pi;
    return circularArc(center, radius, normal, s, sweep, arcType);
}

// ---------------------------------------------------------------- lightweight polylines

namespace {

// A bulged segment from a to b about the normal: center, start vector and signed sweep.
bool bulgeArc(const AcGePoint3d& a, const AcGePoint3d& b, double bulge, const AcGeVector3d& n,
              AcGePoint3d& center, double& radius, AcGeVector3d& start, double& sweep) {
    const AcGeVector3d chord = b - a;
    const double len = chord.length();
    if (!(len > 0.0) || !std::isfinite(bulge)) return false;
    sweep = 4.0 * std::atan(bulge);
    const AcGeVector3d left = n.crossProduct(chord / len);
    center = a + chord / 2.0 + left * (len * (1.0 - bulge * bulge) / (4.0 * bulge));
    radius = len * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
    start = a - center;
    return std::isfinite(radius) && radius > 0.0;
}

// The outline of a segment drawn with widths: a quadrilateral for a line, a band for an arc.
Points bandOutline(const AcGiRenderer::Impl& d, const AcGePoint3d& a, const AcGePoint3d& b,
                   double bulge, double w0, double w1, const AcGeVector3d& n) {
    Points out;
    AcGePoint3d c;
    double r = 0.0, sweep = 0.0;
    AcGeVector3d s;
    if (bulge == 0.0 || !bulgeArc(a, b, bulge, n, c, r, s, sweep)) {
        const AcGeVector3d along = b - a;
        if (along.isZeroLength()) return out;
        const AcGeVector3d side = n.crossProduct(along.normal());
        for (const AcGePoint3d& p :
             {a + side * (w0 / 2), b + side * (w1 / 2), b - side * (w1 / 2), a - side * (w0 / 2)})
            out.push_back(d.dev(p));
        return out;
    }
    const AcGeVector3d u = s.normal(), v = n.crossProduct(u);
    const double rDevice = (r + std::max(w0, w1) / 2) * d.setup.view.scale();
    const double step = rDevice > 0.25 ? 2.0 * std::acos(1.0 - 0.25 / rDevice) : 0.5;
    const int pieces = std::clamp(static_cast<int>(std::ceil(std::fabs(sweep) / step)), 1, 4096);
    Points inner;
    for (int i = 0; i <= pieces; ++i) {
        const double f = static_cast<double>(i) / pieces, t = sweep * f;
        const double half = (w0 + (w1 - w0) * f) / 2;
        const AcGeVector3d dir = u * std::cos(t) + v * std::sin(t);
        out.push_back(d.dev(c + dir * (r + half)));
        inner.push_back(d.dev(c + dir * std::max(0.0, r - half)));
    }
    out.insert(out.end(), inner.rbegin(), inner.rend());
    return out;
}

} // namespace

Adesk::Boolean AcGiRenderGeometry::pline(const AcDbPolyline& lwBuf, Adesk::UInt32 fromIndex,
                                         Adesk::UInt32 numSegs) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    const unsigned int verts = lwBuf.numVerts();
    const unsigned int segments = lwBuf.isClosed() ? verts : (verts > 0 ? verts - 1 : 0);
    if (verts < 2 || fromIndex >= segments) return d.reject();
    const unsigned int drawn =
        (numSegs == 0 || numSegs > segments - fromIndex) ? segments - fromIndex : numSegs;
    Pen p;
    if (!d.pen(p)) return Adesk::kFalse;
    const AcGeVector3d n = lwBuf.normal().normal();
    // Straight runs are stroked together so that their corners join.
    Points run;
    auto flush = [&] {
        if (run.size() >= 2) d.stroke(run, false, p);
        run.clear();
    };
    for (unsigned int k = 0; k < drawn; ++k) {
        const unsigned int i = (fromIndex + k) % verts, j = (i + 1) % verts;
        AcGePoint3d a, b;
        double bulge = 0.0, w0 = 0.0, w1 = 0.0;
        lwBuf.getPointAt(i, a);
        lwBuf.getPointAt(j, b);
        lwBuf.getBulgeAt(i, bulge);
        lwBuf.getWidthsAt(i, w0, w1);
        if (!finite(a) || !finite(b)) continue;
        if (w0 > 0.0 || w1 > 0.0) {
            flush();
            const Points band = bandOutline(d, a, b, bulge, w0, w1, n);
            if (band.size() >= 3) d.fill({band}, p);
            continue;
        }
        AcGePoint3d c;
        double r = 0.0, sweep = 0.0;
        AcGeVector3d s;
        if (bulge != 0.0 && bulgeArc(a, b, bulge, n, c, r, s, sweep)) {
            flush();
            d.arc(c, r, n, s, sweep, kAcGiArcSimple, false, p);
            continue;
        }
        if (run.empty()) run.push_back(d.dev(a));
        run.push_back(d.dev(b));
    }
    flush();
    return Adesk::kFalse;
}

// ---------------------------------------------------------------- construction lines

Adesk::Boolean AcGiRenderGeometry::xline(const AcGePoint3d& p1, const AcGePoint3d& p2) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!finite(p1) || !finite(p2) || p1.isEqualTo(p2)) return d.reject();
    Pen p;
    AcGePoint2d a, b;
    if (d.pen(p) && clipLine(d.dev(p1), d.dev(p2), false, d.page.grownBy(p.width + 2), a, b))
        d.stroke({a, b}, false, p);
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::ray(const AcGePoint3d& basePoint,
                                       const AcGePoint3d& throughPoint) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!finite(basePoint) || !finite(throughPoint) || basePoint.isEqualTo(throughPoint))
        return d.reject();
    Pen p;
    AcGePoint2d a, b;
    if (d.pen(p) &&
        clipLine(d.dev(basePoint), d.dev(throughPoint), true, d.page.grownBy(p.width + 2), a, b))
        d.stroke({a, b}, false, p);
    return Adesk::kFalse;
}

// ---------------------------------------------------------------- eye and display coordinates

namespace {

// Eye coordinates are world coordinates in the plan view; display coordinates run from 0 to 1
// across the page, y up.
Points eyeToDevice(const AcGiRenderer::Impl& d, const AcGePoint3d* pts, Adesk::UInt32 n) {
    Points out;
    for (Adesk::UInt32 i = 0; i < n; ++i)
        out.push_back(d.setup.view.toDevice(pts[i]));
    return out;
}

Points dcToDevice(const AcGiRenderer::Impl& d, const AcGePoint3d* pts, Adesk::UInt32 n) {
    Points out;
    const double w = d.setup.view.pageWidth(), h = d.setup.view.pageHeight();
    for (Adesk::UInt32 i = 0; i < n; ++i)
        out.emplace_back(pts[i].x * w, (1.0 - pts[i].y) * h);
    return out;
}

Adesk::Boolean drawRaw(AcGiRenderer::Impl& d, const Points& pts, bool polygon) {
    Pen p;
    if (!d.pen(p)) return Adesk::kFalse;
    if (polygon && d.traits.t.fillType == kAcGiFillAlways && pts.size() >= 3)
        d.fill({pts}, p);
    else
        d.stroke(pts, polygon, p);
    return Adesk::kFalse;
}

} // namespace

Adesk::Boolean AcGiRenderGeometry::polylineEye(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (n == 0 || !pts || !allFinite(pts, n)) return d.reject();
    return drawRaw(d, eyeToDevice(d, pts, n), false);
}

Adesk::Boolean AcGiRenderGeometry::polygonEye(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (n == 0 || !pts || !allFinite(pts, n)) return d.reject();
    return drawRaw(d, eyeToDevice(d, pts, n), true);
}

Adesk::Boolean AcGiRenderGeometry::polylineDc(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (n == 0 || !pts || !allFinite(pts, n)) return d.reject();
    return drawRaw(d, dcToDevice(d, pts, n), false);
}

Adesk::Boolean AcGiRenderGeometry::polygonDc(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (n == 0 || !pts || !allFinite(pts, n)) return d.reject();
    return drawRaw(d, dcToDevice(d, pts, n), true);
}

// ---------------------------------------------------------------- clip boundaries

Adesk::Boolean AcGiRenderGeometry::pushClipBoundary(AcGiClipBoundary* pBoundary) {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!d.ok || d.finished || !pBoundary || !acgiIsValidClipBoundary(pBoundary->m_aptPoints) ||
        pBoundary->m_xToClipSpace.isSingular()) {
        d.reject();
        return Adesk::kFalse;
    }
    // The outline is in clip space; its transform's inverse takes it to model coordinates.
    const AcGeMatrix3d toModel = pBoundary->m_xToClipSpace.inverse();
    Points outline;
    for (const AcGePoint2d& q : pBoundary->m_aptPoints) {
        AcGePoint3d p(q.x, q.y, 0.0);
        outline.push_back(d.dev(p.transformBy(toModel)));
    }
    cairo_t* cr = d.canvas.cr();
    if (pBoundary->m_bDrawBoundary) {
        Pen p;
        if (d.pen(p)) d.stroke(outline, true, p);
    }
    cairo_save(cr);
    cairo_new_path(cr);
    // The outline is cut down to the page first, as any path is.
    const Points cut = clipPolygon(outline, d.page.grownBy(2.0));
    if (!cut.empty()) {
        cairo_move_to(cr, cut[0].x, cut[0].y);
        for (size_t i = 1; i < cut.size(); ++i)
            cairo_line_to(cr, cut[i].x, cut[i].y);
        cairo_close_path(cr);
    }
    // An outline entirely off the page clips everything away.
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(cr);
    ++d.clipDepth;
    return Adesk::kTrue;
}

void AcGiRenderGeometry::popClipBoundary() {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (d.clipDepth == 0) {
        d.reject();
        return;
    }
    --d.clipDepth;
    cairo_restore(d.canvas.cr());
}
