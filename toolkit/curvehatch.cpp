#include "geellip.h"
#include "genurbs.h"
#include "toolkit/curves.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace {

constexpr double kPi = std::numbers::pi;
// Edges of a loop meet within this.
constexpr double kJoin = 0.0001;

// One edge as vertices with the bulges of the segments between them; the last point is the
// edge's end.
struct Run {
    std::vector<AcGePoint2d> pts;
    std::vector<double> bulges;

    void reverse() {
        std::reverse(pts.begin(), pts.end());
        std::reverse(bulges.begin(), bulges.end());
        for (double& b : bulges)
            b = -b;
    }
};

void sampled(const AcGeCurve2d& c, int minCount, int maxCount, Run& run) {
    AcGeInterval range;
    c.getInterval(range);
    const double lo = range.lowerBound(), hi = range.upperBound();
    const double ratio = std::floor(c.length(lo, hi));
    const int n = std::max(minCount, ratio >= maxCount ? maxCount : static_cast<int>(ratio));
    for (int k = 0; k <= n; ++k) {
        run.pts.push_back(c.evalPoint(k == n ? hi : lo + (hi - lo) * k / n));
        if (k < n) run.bulges.push_back(0.0);
    }
}

bool edgeRun(const void* edge, int type, Run& run) {
    if (!edge) return false;
    switch (type) {
    case AcDbHatch::kLine: {
        const auto* seg = static_cast<const AcGeLineSeg2d*>(edge);
        run.pts = {seg->startPoint(), seg->endPoint()};
        run.bulges = {0.0};
        return true;
    }
    case AcDbHatch::kCirArc: {
        const auto* arc = static_cast<const AcGeCircArc2d*>(edge);
        const double sweep = arc->endAng() - arc->startAng();
        const double sign = arc->isClockWise() ? -1.0 : 1.0;
        // A bulge cannot describe a whole circle: a near-full one goes in quarters, like the
        // equivalent polyline of a circle.
        const int parts = sweep > 1.5 * kPi ? 4 : 1;
        for (int k = 0; k <= parts; ++k) {
            run.pts.push_back(arc->evalPoint(arc->startAng() + sweep * k / parts));
            if (k < parts) run.bulges.push_back(sign * std::tan(sweep / parts / 4.0));
        }
        return true;
    }
    case AcDbHatch::kEllArc:
        sampled(*static_cast<const AcGeEllipArc2d*>(edge), 20, 200, run);
        return true;
    case AcDbHatch::kSpline:
        sampled(*static_cast<const AcGeNurbCurve2d*>(edge), 50, 500, run);
        return true;
    default:
        return false;
    }
}

// The edges of one loop in order, each turned to follow on from the one before, as a polyline;
// closed when the last edge ends where the first began.
void edgesToPline(const AcGeVoidPointerArray& edges, const AcGeIntArray& types, AcDbPolyline& pl) {
    std::vector<AcGePoint2d> pts;
    std::vector<double> bulges;
    bool haveEnd = false;
    AcGePoint2d end;
    for (int i = 0; i < edges.length() && i < types.length(); ++i) {
        Run run;
        if (!edgeRun(edges[i], types[i], run) || run.pts.size() < 2) continue;
        if (haveEnd && run.pts.front().distanceTo(end) > kJoin &&
            run.pts.back().distanceTo(end) <= kJoin)
            run.reverse();
        for (size_t k = 0; k + 1 < run.pts.size(); ++k) {
            pts.push_back(run.pts[k]);
            bulges.push_back(run.bulges[k]);
        }
        end = run.pts.back();
        haveEnd = true;
    }
    if (!haveEnd) return;
    const bool closed = pts.front().distanceTo(end) <= kJoin;
    if (!closed) {
        pts.push_back(end);
        bulges.push_back(0.0);
    }
    for (size_t k = 0; k < pts.size(); ++k)
        pl.addVertexAt(static_cast<unsigned>(k), pts[k], bulges[k]);
    pl.setClosed(closed);
}

std::unique_ptr<AcDbPolyline> loopPline(const AcDbHatch& h, int i, Adesk::Int32& type) {
    auto pl = std::make_unique<AcDbPolyline>();
    type = h.loopTypeAt(i);
    if (type & AcDbHatch::kPolyline) {
        AcGePoint2dArray verts;
        AcGeDoubleArray bulges;
        if (h.getLoopAt(i, type, verts, bulges) != Acad::eOk) return nullptr;
        const bool withBulges = bulges.length() == verts.length();
        for (int k = 0; k < verts.length(); ++k)
            pl->addVertexAt(static_cast<unsigned>(k), verts[k], withBulges ? bulges[k] : 0.0);
        // The repeated last vertex stays where it is.
        if (verts.length() > 1 && verts.first().isEqualTo(verts.last())) pl->setClosed(true);
    } else {
        AcGeVoidPointerArray edges;
        AcGeIntArray types;
        if (h.getLoopAt(i, type, edges, types) != Acad::eOk) return nullptr;
        edgesToPline(edges, types, *pl);
    }
    pl->setElevation(0.0);
    pl->setConstantWidth(0.0);
    return pl;
}

} // namespace

int M_GetHatchPline(AcDbHatch* h, AcArray<void*>& plines, AcArray<int>& loopTypes) {
    if (!h) return 0;
    plines.removeAll();
    loopTypes.removeAll();
    for (int i = 0; i < h->numLoops(); ++i) {
        Adesk::Int32 type = 0;
        std::unique_ptr<AcDbPolyline> pl = loopPline(*h, i, type);
        if (!pl || pl->numVerts() <= 2) continue;
        plines.append(pl.release());
        loopTypes.append(type);
    }
    return plines.isEmpty() ? 0 : 1;
}

int M_GetHatchPline(AcDbHatch* h, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges,
                    AcArray<int>& faces) {
    if (!h) return 0;
    pts.removeAll();
    bulges.removeAll();
    faces.removeAll();
    AcArray<void*> plines;
    AcArray<int> types;
    M_GetHatchPline(h, plines, types);
    for (int i = 0; i < plines.length(); ++i) {
        const std::unique_ptr<AcDbPolyline> pl(static_cast<AcDbPolyline*>(plines[i]));
        const int nv = static_cast<int>(pl->numVerts());
        const int n = nv + (pl->isClosed() ? 1 : 0);
        // Holes are told apart by their negative count.
        faces.append((types[i] & AcDbHatch::kExternal) ? n : -n);
        const int base = pts.length();
        for (int k = 0; k < nv; ++k) {
            AcGePoint2d p;
            double b = 0.0;
            pl->getPointAt(static_cast<unsigned>(k), p);
            pl->getBulgeAt(static_cast<unsigned>(k), b);
            pts.append(p);
            bulges.append(b);
        }
        if (pl->isClosed()) {
            pts.append(pts[base]);
            bulges.append(0.0);
        }
        for (int k = 0; k < n; ++k)
            faces.append(base + k);
    }
    return pts.isEmpty() ? 0 : 1;
}

int M_GetHatchBoundId(AcDbHatch* h, AcArray<AcDbObjectId>& ids, AcArray<long>& loopTypes) {
    if (!h) return 0;
    ids.removeAll();
    loopTypes.removeAll();
    for (int i = 0; i < h->numLoops(); ++i) {
        AcDbObjectIdArray loopIds;
        if (h->getAssocObjIdsAt(i, loopIds) != Acad::eOk) continue;
        for (const AcDbObjectId& id : loopIds) {
            ids.append(id);
            loopTypes.append(h->loopTypeAt(i));
        }
    }
    return ids.isEmpty() ? 0 : 1;
}
