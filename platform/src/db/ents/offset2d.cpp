#include "db/ents/offset2d.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ents_detail {
namespace {

constexpr double kPi = std::numbers::pi;

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}
AcGeVector2d dirOf(double angle) {
    return {std::cos(angle), std::sin(angle)};
}
double angleOf(const AcGeVector2d& v) {
    return std::atan2(v.y, v.x);
}
// Into (-pi, pi].
double wrapPi(double a) {
    a = std::remainder(a, 2.0 * kPi);
    return a <= -kPi ? a + 2.0 * kPi : a;
}

// A line segment, or an arc by centre, radius, start angle and signed sweep.
struct Piece {
    bool arc = false;
    AcGePoint2d a, b;
    AcGePoint2d c;
    double r = 0.0, start = 0.0, sweep = 0.0;
    // The original vertices at either end: joints of neighbours that were neighbours before
    // offsetting turn round these.
    AcGePoint2d fromVertex, toVertex;

    AcGePoint2d startPt() const { return arc ? c + dirOf(start) * r : a; }
    AcGePoint2d endPt() const { return arc ? c + dirOf(start + sweep) * r : b; }
    AcGeVector2d endTangent() const {
        if (!arc) return (b - a).normal();
        const AcGeVector2d radial = dirOf(start + sweep);
        return sweep > 0 ? radial.perpVector() : -radial.perpVector();
    }
};

// How two neighbours meet: at a common point, or through a connecting piece.
struct Joint {
    AcGePoint2d at;
    bool bridged = false;
    Piece bridge;
};

struct Solver {
    double tol;

    // Crossings of the carriers (whole lines and circles) of two pieces.
    int carriersMeet(const Piece& p, const Piece& q, AcGePoint2d out[2]) const {
        if (!p.arc && !q.arc) return lineLine(p, q, out);
        if (p.arc && q.arc) return circleCircle(p, q, out);
        return p.arc ? lineCircle(q, p, out) : lineCircle(p, q, out);
    }

    int lineLine(const Piece& p, const Piece& q, AcGePoint2d out[1]) const {
        const AcGeVector2d u = (p.b - p.a).normal(), v = (q.b - q.a).normal();
        const double den = cross(u, v);
        if (std::fabs(den) <= 1e-12) return 0;
        const double t = cross(q.a - p.a, v) / den;
        out[0] = p.a + u * t;
        return 1;
    }

    int lineCircle(const Piece& l, const Piece& k, AcGePoint2d out[2]) const {
        const AcGeVector2d u = (l.b - l.a).normal();
        const AcGeVector2d w = l.a - k.c;
        const double bHalf = u.dotProduct(w);
        double disc = bHalf * bHalf - (w.lengthSqrd() - k.r * k.r);
        // A near-tangent line still touches: the joint must not open up for rounding noise.
        if (disc < 0.0) {
            if (disc < -2.0 * k.r * tol) return 0;
            disc = 0.0;
        }
        const double root = std::sqrt(disc);
        out[0] = l.a + u * (-bHalf - root);
        if (root <= tol) return 1;
        out[1] = l.a + u * (-bHalf + root);
        return 2;
    }

    int circleCircle(const Piece& p, const Piece& q, AcGePoint2d out[2]) const {
        const AcGeVector2d d = q.c - p.c;
        const double dist = d.length();
        if (dist <= tol) return 0; // concentric: never meet, or coincide
        const double x = (dist * dist + p.r * p.r - q.r * q.r) / (2.0 * dist);
        double h2 = p.r * p.r - x * x;
        if (h2 < 0.0) {
            if (h2 < -2.0 * std::max(p.r, q.r) * tol) return 0;
            h2 = 0.0;
        }
        const AcGeVector2d ux = d / dist;
        const AcGePoint2d m = p.c + ux * x;
        const double h = std::sqrt(h2);
        out[0] = m + ux.perpVector() * h;
        if (h <= tol) return 1;
        out[1] = m - ux.perpVector() * h;
        return 2;
    }

    Joint join(const Piece& p, const Piece& q) const {
        Joint j;
        const AcGePoint2d e = p.endPt(), s = q.startPt();
        if (e.distanceTo(s) <= tol) {
            j.at = e + (s - e) * 0.5;
            return j;
        }
        const AcGePoint2d ref = e + (s - e) * 0.5;
        AcGePoint2d cand[2];
        const int n = carriersMeet(p, q, cand);
        if (n > 0) {
            j.at =
                (n == 2 && cand[1].distanceTo(ref) < cand[0].distanceTo(ref)) ? cand[1] : cand[0];
            return j;
        }
        // The carriers part: go round the original corner, or straight across after a
        // dropped segment.
        j.bridged = true;
        Piece& br = j.bridge;
        if (p.toVertex.distanceTo(q.fromVertex) <= tol) {
            const AcGePoint2d v = p.toVertex;
            br.arc = true;
            br.c = v;
            br.r = e.distanceTo(v);
            br.start = angleOf(e - v);
            double sweep = std::remainder(angleOf(s - v) - br.start, 2.0 * kPi);
            if (sweep < 0.0) sweep += 2.0 * kPi;
            // The round corner bulges the way p was heading.
            if (dirOf(br.start + sweep / 2.0).dotProduct(p.endTangent()) < 0.0) sweep -= 2.0 * kPi;
            br.sweep = sweep;
            if (br.r > tol) return j;
        }
        br = Piece{};
        br.a = e;
        br.b = s;
        return j;
    }

    // The piece cut or extended to run from x0 to x1; false when that reverses it.
    bool trim(const Piece& p, const AcGePoint2d& x0, const AcGePoint2d& x1, Piece& out,
              double& signedLen) const {
        out = p;
        if (!p.arc) {
            out.a = x0;
            out.b = x1;
            signedLen = (x1 - x0).dotProduct((p.b - p.a).normal());
            return signedLen > tol;
        }
        const double sense = p.sweep > 0 ? 1.0 : -1.0;
        const double t0 = wrapPi(sense * (angleOf(x0 - p.c) - p.start));
        const double t1 =
            std::fabs(p.sweep) + wrapPi(sense * (angleOf(x1 - p.c) - (p.start + p.sweep)));
        signedLen = (t1 - t0) * p.r;
        if (signedLen <= tol || t1 - t0 >= 2.0 * kPi) return false;
        out.start = p.start + sense * t0;
        out.sweep = sense * (t1 - t0);
        return true;
    }
};

std::vector<Piece> piecesOf(const BulgePath& path, double tol) {
    std::vector<Piece> out;
    const size_t n = path.verts.size();
    const size_t count = n < 2 ? 0 : (path.closed ? n : n - 1);
    for (size_t i = 0; i < count; ++i) {
        const AcGePoint2d a = path.verts[i].pt, b = path.verts[(i + 1) % n].pt;
        const double chord = a.distanceTo(b);
        if (chord <= tol) continue; // a repeated vertex is no segment
        Piece p;
        p.fromVertex = a;
        p.toVertex = b;
        const double bulge = path.verts[i].bulge;
        if (bulge == 0.0 || !std::isfinite(bulge)) {
            p.a = a;
            p.b = b;
        } else {
            p.arc = true;
            p.sweep = 4.0 * std::atan(bulge);
            const double half = chord / 2.0;
            const AcGeVector2d u = (b - a) / chord;
            p.c = a + u * half + u.perpVector() * (half * (1.0 - bulge * bulge) / (2.0 * bulge));
            p.r = half * (1.0 + bulge * bulge) / (2.0 * std::fabs(bulge));
            p.start = angleOf(a - p.c);
        }
        out.push_back(p);
    }
    return out;
}

double signedArea(const BulgePath& path) {
    const size_t n = path.verts.size();
    double area = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const AcGePoint2d a = path.verts[i].pt, b = path.verts[(i + 1) % n].pt;
        area += cross(a.asVector(), b.asVector()) / 2.0;
        const double bulge = path.verts[i].bulge;
        const double chord = a.distanceTo(b);
        if (bulge != 0.0 && chord > 0.0) {
            const double theta = 4.0 * std::atan(bulge);
            const double r = chord * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
            area += r * r * (theta - std::sin(theta)) / 2.0;
        }
    }
    return area;
}

void emit(const Piece& p, BulgePath& out) {
    out.verts.push_back({p.startPt(), p.arc ? std::tan(p.sweep / 4.0) : 0.0});
}

} // namespace

std::optional<BulgePath> offsetPath(const BulgePath& path, double dist) {
    if (!std::isfinite(dist)) return std::nullopt;
    double size = std::fabs(dist);
    for (const BulgeVertex& v : path.verts)
        size = std::max({size, std::fabs(v.pt.x), std::fabs(v.pt.y)});
    const Solver solver{1e-9 * std::max(1.0, size)};
    const double tol = solver.tol;

    std::vector<Piece> pieces;
    for (Piece p : piecesOf(path, tol)) {
        if (p.arc) {
            // Right of travel is outward for a counter-clockwise arc.
            p.r += p.sweep > 0 ? dist : -dist;
            if (p.r <= tol) continue; // shrunk to its centre
        } else {
            const AcGeVector2d right = -(p.b - p.a).normal().perpVector();
            p.a += right * dist;
            p.b += right * dist;
        }
        pieces.push_back(p);
    }

    const bool closed = path.closed;
    // Each round drops the segments that offsetting turned back on themselves, one per run
    // of such neighbours, and joins again; every round removes a segment, so this ends.
    while (!pieces.empty()) {
        const size_t m = pieces.size();
        if (closed && m < 2) return std::nullopt;
        const size_t joints = closed ? m : m - 1;
        std::vector<Joint> joint(joints);
        for (size_t k = 0; k < joints; ++k)
            joint[k] = solver.join(pieces[k], pieces[(k + 1) % m]);

        std::vector<Piece> trimmed(m);
        std::vector<double> len(m);
        std::vector<bool> reversed(m);
        bool anyReversed = false;
        for (size_t k = 0; k < m; ++k) {
            const Piece& p = pieces[k];
            const Joint* before = (k > 0) ? &joint[k - 1] : (closed ? &joint[m - 1] : nullptr);
            const Joint* after = (k + 1 < m || closed) ? &joint[k] : nullptr;
            const AcGePoint2d x0 =
                !before ? p.startPt() : (before->bridged ? p.startPt() : before->at);
            const AcGePoint2d x1 = !after ? p.endPt() : (after->bridged ? p.endPt() : after->at);
            reversed[k] = !solver.trim(p, x0, x1, trimmed[k], len[k]);
            anyReversed = anyReversed || reversed[k];
        }

        if (!anyReversed) {
            BulgePath out;
            out.closed = closed;
            for (size_t k = 0; k < m; ++k) {
                emit(trimmed[k], out);
                if (k < joints && joint[k].bridged) emit(joint[k].bridge, out);
            }
            if (!closed) out.verts.push_back({trimmed.back().endPt(), 0.0});
            if (out.verts.size() < 2) return std::nullopt;
            if (closed && (signedArea(out) > 0.0) != (signedArea(path) > 0.0)) return std::nullopt;
            return out;
        }

        // In each run of reversed neighbours drop only the worst: its neighbours' new joint
        // may well put the others right.
        std::vector<bool> drop(m, false);
        size_t k = 0;
        if (closed && reversed[0]) {
            // Start the scan after a kept piece so that a run is never split at the seam.
            size_t first = 0;
            while (first < m && reversed[first])
                ++first;
            if (first == m) return std::nullopt;
            k = first;
        }
        for (size_t seen = 0; seen < m;) {
            const size_t i = k % m;
            if (!reversed[i]) {
                ++k;
                ++seen;
                continue;
            }
            size_t worst = i;
            while (seen < m && reversed[k % m]) {
                if (len[k % m] < len[worst]) worst = k % m;
                ++k;
                ++seen;
            }
            drop[worst] = true;
        }
        std::vector<Piece> kept;
        for (size_t i = 0; i < m; ++i)
            if (!drop[i]) kept.push_back(pieces[i]);
        pieces.swap(kept);
    }
    return std::nullopt;
}

} // namespace ents_detail
