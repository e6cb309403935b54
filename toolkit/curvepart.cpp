// The part of a lightweight polyline between two points, as vertices and bulges.
#include "gecurves.h"
#include "toolkit/curves.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSnap = 1e-9;

// Walks a polyline's segments by parameter: vertex i is parameter i, and within a segment the
// parameter runs evenly along it (by angle on an arc).
class Segments {
public:
    explicit Segments(const AcDbPolyline& pl)
        : mPl(pl), mNv(pl.numVerts()), mCount(mNv == 0 ? 0 : mNv - 1 + (pl.isClosed() ? 1 : 0)) {}

    unsigned count() const { return mCount; }

    AcGePoint2d vertex(unsigned i) const {
        AcGePoint2d p;
        mPl.getPointAt(i % mNv, p);
        return p;
    }
    double bulge(unsigned i) const {
        double b = 0.0;
        mPl.getBulgeAt(i % mNv, b);
        return b;
    }
    // The point at u in [0, 1] along segment i (taken round a closed polyline).
    AcGePoint2d at(unsigned i, double u) const {
        const AcGePoint2d a = vertex(i), b = vertex(i + 1);
        if (u <= 0.0) return a;
        if (u >= 1.0) return b;
        const double bg = bulge(i);
        if (bg == 0.0 || a.isEqualTo(b)) return a + (b - a) * u;
        const AcGeCircArc2d arc(a, b, bg, true);
        return arc.evalPoint(arc.startAng() + (arc.endAng() - arc.startAng()) * u);
    }
    // The bulge of the stretch from u0 to u1 of segment i: the same circle, a share of its angle.
    double subBulge(unsigned i, double u0, double u1) const {
        const double bg = bulge(i);
        if (bg == 0.0) return 0.0;
        return std::tan(std::atan(bg) * (u1 - u0));
    }

    // Vertices and bulges from parameter t0 to t1 > t0 (t1 may pass the end of a closed one).
    void piece(double t0, double t1, AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) const {
        unsigned i = static_cast<unsigned>(std::max(0.0, std::floor(t0)));
        if (t0 - i > 1.0 - kSnap) ++i;
        double u0 = std::max(0.0, t0 - i), u1 = u0;
        for (;;) {
            const double tEnd = std::min(t1, i + 1.0);
            u1 = tEnd - i;
            if (u1 - u0 > kSnap) {
                pts.append(at(i, u0));
                bulges.append(subBulge(i, u0, u1));
            }
            if (tEnd >= t1 - kSnap) break;
            ++i;
            u0 = 0.0;
        }
        pts.append(at(i, u1));
        bulges.append(0.0);
    }

private:
    const AcDbPolyline& mPl;
    unsigned mNv, mCount;
};

bool paramNear(const AcDbPolyline& pl, const AcGePoint3d& p, AcGePoint3d& on, double& t) {
    return pl.getClosestPointTo(p, on) == Acad::eOk && pl.getParamAtPoint(on, t) == Acad::eOk;
}

} // namespace

int M_AddPtArrayByPline(AcDbPolyline* pl, AcGePoint3d from, AcGePoint3d to,
                        AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    if (!pl || from.distanceTo(to) < 0.0001) return 0;
    const Segments segs(*pl);
    if (segs.count() == 0) return 0;
    double tf = 0.0, tt = 0.0;
    AcGePoint3d onFrom, onTo;
    if (!paramNear(*pl, from, onFrom, tf) || !paramNear(*pl, to, onTo, tt)) return 0;
    // Both points fall on the same place of the polyline: there is no part between them.
    if (onFrom.distanceTo(onTo) < 0.0001) return 0;

    AcArray<AcGePoint2d> piece;
    AcArray<double> pieceBulges;
    bool reversed = false;
    if (pl->isClosed()) {
        // Round the way the polyline runs, across its start when need be.
        const double n = segs.count();
        if (tf >= n - kSnap) tf = 0.0;
        if (tt >= n - kSnap) tt = 0.0;
        if (tt <= tf + kSnap) tt += n;
        segs.piece(tf, tt, piece, pieceBulges);
    } else {
        reversed = tf > tt;
        segs.piece(std::min(tf, tt), std::max(tf, tt), piece, pieceBulges);
    }
    if (piece.length() < 2) return 0;
    if (!reversed) {
        pts.append(piece);
        bulges.append(pieceBulges);
        return 1;
    }
    // Each segment now runs the other way: its bulge changes sign and moves to the vertex that
    // now starts it.
    const int m = piece.length();
    for (int k = m - 1; k >= 0; --k) {
        pts.append(piece[k]);
        bulges.append(k > 0 ? -pieceBulges[k - 1] : 0.0);
    }
    return 1;
}
