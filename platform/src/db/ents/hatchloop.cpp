// Geometry of hatch loops: edge copies, rings of points, areas and plane maps.
#include "db/ents/hatchloop.h"

#include "genurbs.h"

#include <algorithm>
#include <cmath>

namespace ents_detail {

namespace {

AcGe::EntityId classOf(int edgeType) {
    switch (edgeType) {
    case AcDbHatch::kLine:
        return AcGe::kLineSeg2d;
    case AcDbHatch::kCirArc:
        return AcGe::kCircArc2d;
    case AcDbHatch::kEllArc:
        return AcGe::kEllipArc2d;
    case AcDbHatch::kSpline:
        return AcGe::kNurbCurve2d;
    default:
        return AcGe::kEntity2d;
    }
}

double cross(const AcGePoint2d& a, const AcGePoint2d& b) {
    return a.x * b.y - b.x * a.y;
}

// Twice the signed area between a chord's origin sweep and the curve, for an edge: the
// integral of x dy - y dx along it.
double edgeTwiceArea(const AcGeCurve2d& c, double eps) {
    AcGeInterval range;
    c.getInterval(range);
    if (c.type() == AcGe::kLineSeg2d) {
        const auto& s = static_cast<const AcGeLineSeg2d&>(c);
        return cross(s.startPoint(), s.endPoint());
    }
    if (c.type() == AcGe::kCircArc2d) {
        // The chord's term plus the segment between the chord and the arc.
        const auto& a = static_cast<const AcGeCircArc2d&>(c);
        const double sweep = (a.endAng() - a.startAng()) * (a.isClockWise() ? -1.0 : 1.0);
        const double seg = a.radius() * a.radius() * (sweep - std::sin(sweep));
        return cross(a.startPoint(), a.endPoint()) + seg;
    }
    if (c.type() == AcGe::kEllipArc2d) {
        // For c + M cos t + m sin t the integrand is c x P' + M x m.
        const auto& e = static_cast<const AcGeEllipArc2d&>(c);
        const AcGeVector2d M = e.majorAxis() * e.majorRadius(), m = e.minorAxis() * e.minorRadius();
        const double t0 = e.startAng(), t1 = e.endAng();
        const AcGeVector2d chord =
            M * (std::cos(t1) - std::cos(t0)) + m * (std::sin(t1) - std::sin(t0));
        const AcGePoint2d ctr = e.center();
        return ctr.x * chord.y - ctr.y * chord.x + (M.x * m.y - M.y * m.x) * (t1 - t0);
    }
    AcGePoint2dArray pts;
    AcGeDoubleArray params;
    c.getSamplePoints(range.lowerBound(), range.upperBound(), eps, pts, params);
    double s = 0.0;
    for (int i = 0; i + 1 < pts.length(); ++i)
        s += cross(pts[i], pts[i + 1]);
    return s;
}

} // namespace

std::unique_ptr<AcGeCurve2d> copyEdge(const AcGeCurve2d* edge, int edgeType) {
    if (!edge || edge->type() != classOf(edgeType)) return nullptr;
    return std::unique_ptr<AcGeCurve2d>(edge->copy());
}

void polylineEdges(const AcDbHatch::Loop& loop, std::vector<std::unique_ptr<AcGeCurve2d>>& edges,
                   std::vector<int>& types) {
    const size_t n = loop.verts.size();
    for (size_t i = 0; i < n && n > 1; ++i) {
        const AcGePoint2d& a = loop.verts[i];
        const AcGePoint2d& b = loop.verts[(i + 1) % n];
        if (a.isEqualTo(b)) continue; // the repeated start of a closed list
        if (loop.bulge(i) == 0.0) {
            edges.push_back(std::make_unique<AcGeLineSeg2d>(a, b));
            types.push_back(AcDbHatch::kLine);
        } else {
            edges.push_back(std::make_unique<AcGeCircArc2d>(a, b, loop.bulge(i), false));
            types.push_back(AcDbHatch::kCirArc);
        }
    }
}

std::vector<AcGePoint2d> loopRing(const AcDbHatch::Loop& loop, double eps) {
    std::vector<AcGePoint2d> ring;
    auto add = [&](const AcGePoint2d& p) {
        if (ring.empty() || !ring.back().isEqualTo(p)) ring.push_back(p);
    };
    std::vector<std::unique_ptr<AcGeCurve2d>> local;
    std::vector<int> types;
    const std::vector<std::unique_ptr<AcGeCurve2d>>* edges = &loop.edges;
    if (loop.isPolyline()) {
        polylineEdges(loop, local, types);
        edges = &local;
        if (local.empty())
            for (const auto& p : loop.verts)
                add(p);
    }
    for (const auto& e : *edges) {
        if (e->type() == AcGe::kLineSeg2d) {
            const auto& s = static_cast<const AcGeLineSeg2d&>(*e);
            add(s.startPoint());
            add(s.endPoint());
            continue;
        }
        AcGeInterval range;
        e->getInterval(range);
        AcGePoint2dArray pts;
        AcGeDoubleArray params;
        e->getSamplePoints(range.lowerBound(), range.upperBound(), eps, pts, params);
        for (const auto& p : pts)
            add(p);
    }
    if (ring.size() > 1 && ring.front().isEqualTo(ring.back())) ring.pop_back();
    return ring;
}

double loopArea(const AcDbHatch::Loop& loop) {
    std::vector<std::unique_ptr<AcGeCurve2d>> local;
    std::vector<int> types;
    const std::vector<std::unique_ptr<AcGeCurve2d>>* edges = &loop.edges;
    if (loop.isPolyline()) {
        polylineEdges(loop, local, types);
        edges = &local;
    }
    double size = 1.0;
    for (const auto& e : *edges) {
        AcGeInterval range;
        e->getInterval(range);
        size = std::max(size, e->length(range.lowerBound(), range.upperBound()));
    }
    double twice = 0.0;
    AcGePoint2d first, last;
    bool any = false;
    for (const auto& e : *edges) {
        AcGePoint2d s, t;
        e->hasStartPoint(s);
        e->hasEndPoint(t);
        // Gaps between edges are closed straight.
        if (any) twice += cross(last, s);
        if (!any) first = s;
        any = true;
        twice += edgeTwiceArea(*e, 1e-8 * size);
        last = t;
    }
    if (any) twice += cross(last, first);
    return 0.5 * std::fabs(twice);
}

double loopsSize(const std::vector<std::unique_ptr<AcDbHatch::Loop>>& loops) {
    double lo[2] = {1e300, 1e300}, hi[2] = {-1e300, -1e300};
    auto add = [&](const AcGePoint2d& p) {
        for (unsigned k = 0; k < 2; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    };
    for (const auto& l : loops) {
        for (const auto& p : l->verts)
            add(p);
        for (const auto& e : l->edges) {
            AcGePoint2d p;
            if (e->hasStartPoint(p)) add(p);
            if (e->hasEndPoint(p)) add(p);
        }
    }
    const double d = std::hypot(hi[0] - lo[0], hi[1] - lo[1]);
    return std::isfinite(d) ? std::max(1.0, d) : 1.0;
}

bool planeMap(const Frame& from, const AcGeMatrix3d& xform, const Frame& to, AcGeMatrix2d& m) {
    auto image = [&](const AcGePoint2d& p) {
        AcGePoint3d w = from.toWorld(p);
        w.transformBy(xform);
        return to.toLocal(w);
    };
    const AcGePoint2d o = image(AcGePoint2d(0, 0)), ex = image(AcGePoint2d(1, 0)),
                      ey = image(AcGePoint2d(0, 1));
    m = AcGeMatrix2d();
    m.entry[0][0] = ex.x - o.x;
    m.entry[1][0] = ex.y - o.y;
    m.entry[0][1] = ey.x - o.x;
    m.entry[1][1] = ey.y - o.y;
    m.entry[0][2] = o.x;
    m.entry[1][2] = o.y;
    const double det = m.entry[0][0] * m.entry[1][1] - m.entry[0][1] * m.entry[1][0];
    return std::isfinite(det) && std::fabs(det) > 1e-300;
}

} // namespace ents_detail
