// Cutting the loops off a closed outline with arcs where it crosses itself.
#include "gecurves.h"
#include "toolkit/geometry.h"

#include <cmath>

namespace {

constexpr double kTol = 0.0001;
constexpr double kShortest = 0.00001;

// One segment of the outline: a line when the bulge is 0, else a circular arc.
struct Segment {
    AcGePoint2d start, end;
    double bulge = 0.0;

    bool isArc() const { return bulge != 0.0; }
    AcGeCircArc2d arc() const { return AcGeCircArc2d(start, end, bulge, true); }
    AcGeLineSeg2d line() const { return AcGeLineSeg2d(start, end); }
    double length() const {
        const double chord = start.distanceTo(end);
        if (!isArc() || chord == 0.0) return chord;
        const double angle = 4.0 * std::atan(std::fabs(bulge));
        return chord / (2.0 * std::sin(angle / 2.0)) * angle;
    }
    // Bulge of the part of the arc from start to p, or from p to end, p being on the arc.
    double bulgeBefore(const AcGePoint2d& p) const { return isArc() ? partBulge(p, true) : 0.0; }
    double bulgeAfter(const AcGePoint2d& p) const { return isArc() ? partBulge(p, false) : 0.0; }

private:
    double partBulge(const AcGePoint2d& p, bool before) const {
        const AcGeCircArc2d a = arc();
        const double sweep = a.endAng() - a.startAng();
        const double swept = a.paramOf(p) - a.startAng();
        const double part = before ? swept : sweep - swept;
        return std::copysign(std::tan(part / 4.0), bulge);
    }
};

// Where segment b first crosses segment a, ignoring a's own end point (where the next segment
// starts); for an arc crossing twice the second point then serves.
bool crossing(const Segment& a, const Segment& b, AcGePoint2d& at) {
    if (a.length() < kShortest || b.length() < kShortest) return false;
    AcGeTol tol;
    tol.setEqualPoint(kTol);
    tol.setEqualVector(kTol);
    int count = 0;
    AcGePoint2d p[2];
    if (!a.isArc() && !b.isArc()) {
        count = a.line().intersectWith(b.line(), p[0], tol) ? 1 : 0;
    } else if (a.isArc() && b.isArc()) {
        if (!a.arc().intersectWith(b.arc(), count, p[0], p[1], tol)) count = 0;
    } else {
        const Segment& arc = a.isArc() ? a : b;
        const Segment& line = a.isArc() ? b : a;
        if (!arc.arc().intersectWith(line.line(), count, p[0], p[1], tol)) count = 0;
    }
    if (count == 0) return false;
    if (p[0].distanceTo(a.end) >= kTol) {
        at = p[0];
        return true;
    }
    if (count == 2 && p[1].distanceTo(a.end) > kTol) {
        at = p[1];
        return true;
    }
    return false;
}

} // namespace

void M_DelSelfInterPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    const int n = pts.length();
    if (n < 2 || bulges.length() != n) return;
    auto segmentAt = [&](int k) { return Segment{pts[k], pts[(k + 1) % n], bulges[k]}; };

    AcArray<AcGePoint2d> keptPts;
    AcArray<double> keptBulges;
    int i = 0;
    Segment cur = segmentAt(0);
    while (i < n) {
        // The first segment skips the last two: with the first vertex repeated at the end they
        // are the empty closing segment and the one that meets the first at its start.
        const int m = i == 0 ? n - 2 : n;
        bool cut = false;
        for (int j = i + 1; j < m; ++j) {
            const Segment other = segmentAt(j);
            AcGePoint2d x;
            if (!crossing(cur, other, x)) continue;
            // Keep cur up to the crossing, drop the loop, and go on along j from there.
            keptPts.append(cur.start);
            keptBulges.append(cur.bulgeBefore(x));
            cur = Segment{x, other.end, other.bulgeAfter(x)};
            i = j;
            cut = true;
            break;
        }
        if (cut) continue;
        keptPts.append(cur.start);
        keptBulges.append(cur.bulge);
        if (++i < n) cur = segmentAt(i);
    }
    pts = keptPts;
    bulges = keptBulges;
}
