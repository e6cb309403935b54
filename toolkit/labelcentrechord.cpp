// The chord method: midpoints of the chords that lines through the outline's mean point cut
// from the curve.
#include "dbents.h"
#include "toolkit/curves.h"
#include "toolkit/geometry.h"
#include "toolkit/labelcentreinternal.h"

#include <numbers>

namespace qor::labels {

namespace {

constexpr int kDirections = 36;
// Only the line's direction matters: it is extended both ways.
constexpr double kLineLength = 100.0;

} // namespace

bool chordCentre(AcDbCurve* c, AcGePoint2d& pt) {
    AcArray<AcGePoint3d> outline;
    if (!c || !M_GetCurvePts(c, outline) || outline.isEmpty()) return false;
    double sx = 0.0, sy = 0.0;
    for (const AcGePoint3d& p : outline) {
        sx += p.x;
        sy += p.y;
    }
    const AcGePoint2d mean(sx / outline.length(), sy / outline.length());
    // In the curve's own plane, so that a curve at an elevation is met.
    const double z = outline[0].z;

    bool accepted = false;
    double best = 0.0;
    AcGePoint2d bestPt;
    for (int k = 0; k < kDirections; ++k) {
        AcGePoint2d end;
        M_Polar(mean, k * std::numbers::pi / 18.0, kLineLength, end);
        const AcDbLine line(AcGePoint3d(mean.x, mean.y, z), AcGePoint3d(end.x, end.y, z));
        AcArray<AcGePoint3d> hits;
        M_IntersectWith(&line, c, AcDb::kExtendThis, hits);
        if (hits.length() != 2) continue;
        const AcGePoint3d m((hits[0].x + hits[1].x) / 2.0, (hits[0].y + hits[1].y) / 2.0,
                            (hits[0].z + hits[1].z) / 2.0);
        AcGePoint3d closest;
        if (c->getClosestPointTo(m, closest, false) != Acad::eOk) continue;
        const double clearance = m.distanceTo(closest);
        if (M_PtInPolygon(m.convert2d(), outline) < 0) continue;
        if (best == 0.0 || clearance > best) {
            accepted = true;
            best = clearance;
            bestPt = m.convert2d();
        }
    }
    pt = accepted ? bestPt : mean;
    return accepted;
}

} // namespace qor::labels
