// Bounds of recorded primitives.
#include "renderbounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qorrender {

namespace {

bool finite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

void add(AcDbExtents& e, const AcGePoint3d& p) {
    if (finite(p)) e.addPoint(p);
}

// The arc c + r (u cos t + v sin t), t from 0 to sweep: its ends and the turning points in x,
// y and z that it passes.
void addArc(AcDbExtents& e, const AcGePoint3d& c, double r, const AcGeVector3d& u,
            const AcGeVector3d& v, double sweep) {
    constexpr double kTwoPi = 2.0 * std::numbers::pi;
    sweep = std::clamp(sweep, -kTwoPi, kTwoPi);
    auto at = [&](double t) { return c + (u * std::cos(t) + v * std::sin(t)) * r; };
    add(e, at(0.0));
    add(e, at(sweep));
    const double turns[3][2] = {{u.x, v.x}, {u.y, v.y}, {u.z, v.z}};
    for (const auto& axis : turns) {
        if (axis[0] == 0.0 && axis[1] == 0.0) continue;
        const double t0 = std::atan2(axis[1], axis[0]);
        for (double t : {t0, t0 + std::numbers::pi}) {
            // Into the sweep's direction, within one turn of its start.
            double s = std::fmod(sweep >= 0.0 ? t : -t, kTwoPi);
            if (s < 0.0) s += kTwoPi;
            if (s <= std::fabs(sweep)) add(e, at(sweep >= 0.0 ? s : -s));
        }
    }
}

void addBulge(AcDbExtents& e, const AcGePoint3d& a, const AcGePoint3d& b, double bulge,
              const AcGeVector3d& n) {
    const AcGeVector3d chord = b - a;
    const double len = chord.length();
    if (bulge == 0.0 || !(len > 0.0) || !std::isfinite(bulge)) return;
    const AcGeVector3d left = n.crossProduct(chord / len);
    const AcGePoint3d c = a + chord / 2.0 + left * (len * (1.0 - bulge * bulge) / (4.0 * bulge));
    const double r = len * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
    const AcGeVector3d u = (a - c).normal();
    addArc(e, c, r, u, n.crossProduct(u), 4.0 * std::atan(bulge));
}

} // namespace

void addDrawnBounds(const AcGiRecorder& recorder, DrawingStyles& styles, AcDbExtents& extents) {
    for (const AcGiRecordedItem& item : recorder.items()) {
        if (!styles.layer(item.traits.layer).visible) continue;
        AcDbExtents e;
        switch (item.kind) {
        case AcGiRecordedKind::kCircle: {
            const AcGeVector3d n = item.vectors[0].normal();
            const AcGeVector3d u = n.perpVector().normal();
            addArc(e, item.points[0], item.numbers[0], u, n.crossProduct(u),
                   2.0 * std::numbers::pi);
            break;
        }
        case AcGiRecordedKind::kCircularArc: {
            const AcGeVector3d n = item.vectors[0].normal(), u = item.vectors[1].normal();
            addArc(e, item.points[0], item.numbers[0], u, n.crossProduct(u), item.numbers[1]);
            break;
        }
        case AcGiRecordedKind::kText: {
            // The box the metric gives it, with room for descenders.
            const AcGeVector3d n = item.vectors[0].normal(), x = item.vectors[1].normal();
            const AcGeVector3d y = n.crossProduct(x);
            const double h = item.numbers[0], advance = item.numbers[3];
            for (double dx : {0.0, advance})
                for (double dy : {-0.25 * h, h})
                    add(e, item.points[0] + x * dx + y * dy);
            break;
        }
        case AcGiRecordedKind::kPline: {
            const AcGeVector3d n = item.vectors.isEmpty() ? AcGeVector3d(0, 0, 1) : item.vectors[0];
            double widest = 0.0;
            for (int i = 0; i < item.points.length(); ++i) {
                add(e, item.points[i]);
                widest = std::max({widest, item.numbers[3 * i + 1], item.numbers[3 * i + 2]});
                if (i + 1 < item.points.length())
                    addBulge(e, item.points[i], item.points[i + 1], item.numbers[3 * i], n);
            }
            if (e.isValid() && widest > 0.0) {
                const AcGeVector3d grow(widest / 2, widest / 2, 0);
                const AcGePoint3d lo = e.minPoint() - grow, hi = e.maxPoint() + grow;
                e.addPoint(lo);
                e.addPoint(hi);
            }
            break;
        }
        case AcGiRecordedKind::kPolyline:
        case AcGiRecordedKind::kPolygon:
        case AcGiRecordedKind::kMesh:
        case AcGiRecordedKind::kShell:
        case AcGiRecordedKind::kPolylineEye:
        case AcGiRecordedKind::kPolygonEye:
            for (const AcGePoint3d& p : item.points)
                add(e, p);
            break;
        default: // construction lines, display coordinates and clip outlines
            break;
        }
        if (e.isValid()) extents.addExt(e);
    }
}

} // namespace qorrender
