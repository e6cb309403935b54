// NURBS evaluation (basis functions and their derivatives), knot insertion, trimming, joining
// and interpolation, after the classic algorithms on homogeneous control points.
#include "ge/nurbscore.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace geimpl {

namespace {

constexpr int kMaxDegree = 25;
constexpr int kMaxDeriv = 3;

struct HPoint {
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
};

HPoint lift(const AcGePoint3d& p, double w) {
    return {p.x * w, p.y * w, p.z * w, w};
}

AcGePoint3d drop(const HPoint& h) {
    return {h.x / h.w, h.y / h.w, h.z / h.w};
}

HPoint mix(const HPoint& a, const HPoint& b, double t) {
    return {a.x * (1.0 - t) + b.x * t, a.y * (1.0 - t) + b.y * t, a.z * (1.0 - t) + b.z * t,
            a.w * (1.0 - t) + b.w * t};
}

bool finite3(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Basis functions of span i at u and their derivatives up to nd (nd <= p): ders[k][j] is the
// k-th derivative of N_{i-p+j}.
void basisDerivs(int i, double u, int p, int nd, const std::vector<double>& U,
                 double ders[kMaxDeriv + 1][kMaxDegree + 1]) {
    double ndu[kMaxDegree + 1][kMaxDegree + 1];
    double left[kMaxDegree + 1], right[kMaxDegree + 1];
    ndu[0][0] = 1.0;
    for (int j = 1; j <= p; ++j) {
        left[j] = u - U[static_cast<size_t>(i + 1 - j)];
        right[j] = U[static_cast<size_t>(i + j)] - u;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            ndu[j][r] = right[r + 1] + left[j - r];
            const double temp = ndu[r][j - 1] / ndu[j][r];
            ndu[r][j] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        ndu[j][j] = saved;
    }
    for (int j = 0; j <= p; ++j)
        ders[0][j] = ndu[j][p];
    double a[2][kMaxDegree + 1];
    for (int r = 0; r <= p; ++r) {
        int s1 = 0, s2 = 1;
        a[0][0] = 1.0;
        for (int k = 1; k <= nd; ++k) {
            double d = 0.0;
            const int rk = r - k, pk = p - k;
            if (r >= k) {
                a[s2][0] = a[s1][0] / ndu[pk + 1][rk];
                d = a[s2][0] * ndu[rk][pk];
            }
            const int j1 = rk >= -1 ? 1 : -rk;
            const int j2 = (r - 1 <= pk) ? k - 1 : p - r;
            for (int j = j1; j <= j2; ++j) {
                a[s2][j] = (a[s1][j] - a[s1][j - 1]) / ndu[pk + 1][rk + j];
                d += a[s2][j] * ndu[rk + j][pk];
            }
            if (r <= pk) {
                a[s2][k] = -a[s1][k - 1] / ndu[pk + 1][r];
                d += a[s2][k] * ndu[r][pk];
            }
            ders[k][r] = d;
            std::swap(s1, s2);
        }
    }
    double f = p;
    for (int k = 1; k <= nd; ++k) {
        for (int j = 0; j <= p; ++j)
            ders[k][j] *= f;
        f *= p - k;
    }
}

} // namespace

bool Nurbs::valid() const {
    const int n = numCtrl();
    if (degree < 1 || degree > kMaxDegree || n < degree + 1) return false;
    if (knots.size() != static_cast<size_t>(n + degree + 1)) return false;
    if (!weights.empty() && weights.size() != pts.size()) return false;
    for (size_t k = 0; k < knots.size(); ++k) {
        if (!std::isfinite(knots[k])) return false;
        if (k > 0 && knots[k] < knots[k - 1]) return false;
    }
    for (const auto& p : pts)
        if (!finite3(p)) return false;
    for (double w : weights)
        if (!(w > 0.0) || !std::isfinite(w)) return false;
    if (!(hi() > lo())) return false;
    // Interior knots repeated more than the degree would tear the curve apart.
    for (size_t k = static_cast<size_t>(degree) + 1; k < pts.size();) {
        size_t e = k;
        while (e < pts.size() && knots[e] == knots[k])
            ++e;
        if (knots[k] > lo() && knots[k] < hi() && e - k > static_cast<size_t>(degree)) return false;
        k = e;
    }
    return true;
}

int Nurbs::span(double u) const {
    const int n = numCtrl(), p = degree;
    const auto U = [&](int i) { return knots[static_cast<size_t>(i)]; };
    if (u >= U(n)) {
        int k = n - 1;
        while (k > p && U(k) >= U(k + 1))
            --k;
        return k;
    }
    if (u <= U(p)) {
        int k = p;
        while (k < n - 1 && U(k + 1) <= U(k))
            ++k;
        return k;
    }
    int low = p, high = n;
    int mid = (low + high) / 2;
    while (u < U(mid) || u >= U(mid + 1)) {
        if (u < U(mid))
            high = mid;
        else
            low = mid;
        mid = (low + high) / 2;
    }
    return mid;
}

AcGePoint3d Nurbs::eval(double u, int nd, AcGeVector3d* ders) const {
    const int p = degree;
    u = std::clamp(u, lo(), hi());
    const int k = span(u);
    const int m = std::clamp(nd, 0, kMaxDeriv);
    const int mb = std::min(m, p);
    double N[kMaxDeriv + 1][kMaxDegree + 1];
    basisDerivs(k, u, p, mb, knots, N);
    HPoint A[kMaxDeriv + 1];
    for (int d = 0; d <= mb; ++d)
        for (int j = 0; j <= p; ++j) {
            const int idx = k - p + j;
            const HPoint h = lift(pts[static_cast<size_t>(idx)], weight(idx));
            A[d].x += N[d][j] * h.x;
            A[d].y += N[d][j] * h.y;
            A[d].z += N[d][j] * h.z;
            A[d].w += N[d][j] * h.w;
        }
    const AcGePoint3d c0 = drop(A[0]);
    if (!ders || m == 0) return c0;
    // Derivatives of the rational curve from those of its homogeneous form.
    AcGeVector3d C[kMaxDeriv + 1];
    C[0] = c0.asVector();
    static constexpr double kBinom[4][4] = {{1, 0, 0, 0}, {1, 1, 0, 0}, {1, 2, 1, 0}, {1, 3, 3, 1}};
    for (int d = 1; d <= m; ++d) {
        AcGeVector3d v(A[d].x, A[d].y, A[d].z);
        for (int i = 1; i <= d; ++i)
            v -= C[d - i] * (kBinom[d][i] * A[i].w);
        C[d] = v / A[0].w;
        ders[d - 1] = C[d];
    }
    return c0;
}

std::vector<double> Nurbs::breaks() const {
    std::vector<double> out;
    for (double k : knots)
        if (k > lo() && k < hi() && (out.empty() || out.back() != k)) out.push_back(k);
    return out;
}

void Nurbs::dropUnitWeights() {
    if (std::all_of(weights.begin(), weights.end(), [](double w) { return w == 1.0; }))
        weights.clear();
}

int Nurbs::multiplicity(double u, double tol) const {
    return static_cast<int>(std::count_if(knots.begin(), knots.end(),
                                          [&](double k) { return std::fabs(k - u) <= tol; }));
}

double Nurbs::snap(double u, double tol) const {
    for (double k : knots)
        if (std::fabs(k - u) <= tol) return k;
    return u;
}

void Nurbs::insertKnot(double u, int times) {
    const int p = degree;
    for (int t = 0; t < times; ++t) {
        const int n = numCtrl();
        const int k = span(u);
        std::vector<HPoint> P(pts.size());
        for (int i = 0; i < n; ++i)
            P[static_cast<size_t>(i)] = lift(pts[static_cast<size_t>(i)], weight(i));
        std::vector<HPoint> Q(static_cast<size_t>(n + 1));
        for (int i = 0; i <= k - p; ++i)
            Q[static_cast<size_t>(i)] = P[static_cast<size_t>(i)];
        for (int i = std::max(k - p + 1, 0); i <= k; ++i) {
            const double ui = knots[static_cast<size_t>(i)];
            const double a = (u - ui) / (knots[static_cast<size_t>(i + p)] - ui);
            Q[static_cast<size_t>(i)] =
                mix(P[static_cast<size_t>(i - 1)], P[static_cast<size_t>(i)], a);
        }
        for (int i = k + 1; i <= n; ++i)
            Q[static_cast<size_t>(i)] = P[static_cast<size_t>(i - 1)];
        knots.insert(knots.begin() + k + 1, u);
        const bool rat = rational();
        pts.resize(Q.size());
        if (rat) weights.resize(Q.size());
        for (size_t i = 0; i < Q.size(); ++i) {
            pts[i] = drop(Q[i]);
            if (rat) weights[i] = Q[i].w;
        }
    }
}

Nurbs Nurbs::trimmed(double a, double b) const {
    Nurbs c = *this;
    const int p = degree;
    const double tol = 1e-12 * std::max(1.0, std::fabs(hi()) + std::fabs(lo()));
    a = std::clamp(snap(a, tol), lo(), hi());
    b = std::clamp(snap(b, tol), lo(), hi());
    for (double u : {a, b}) {
        const int s = c.multiplicity(u, 0.0);
        if (s < p) c.insertKnot(u, p - s);
    }
    size_t lastA = 0, firstB = c.knots.size();
    for (size_t k = 0; k < c.knots.size(); ++k) {
        if (c.knots[k] == a) lastA = k;
        if (c.knots[k] == b && firstB == c.knots.size()) firstB = k;
    }
    Nurbs out;
    out.degree = p;
    const size_t start = lastA - static_cast<size_t>(p);
    for (size_t i = start; i < firstB; ++i) {
        out.pts.push_back(c.pts[i]);
        if (c.rational()) out.weights.push_back(c.weights[i]);
    }
    out.knots.assign(static_cast<size_t>(p + 1), a);
    for (size_t k = lastA + 1; k < firstB; ++k)
        out.knots.push_back(c.knots[k]);
    out.knots.insert(out.knots.end(), static_cast<size_t>(p + 1), b);
    return out;
}

void Nurbs::reverse() {
    const double sum = lo() + hi();
    std::vector<double> r(knots.size());
    for (size_t i = 0; i < knots.size(); ++i)
        r[i] = sum - knots[knots.size() - 1 - i];
    knots = std::move(r);
    std::reverse(pts.begin(), pts.end());
    std::reverse(weights.begin(), weights.end());
}

bool Nurbs::append(const Nurbs& other) {
    const int p = degree;
    if (other.degree != p || pts.empty() || other.pts.empty()) return false;
    const size_t k1 = static_cast<size_t>(p + 1);
    if (knots.size() < 2 * k1 || other.knots.size() < 2 * k1) return false;
    const double end = knots.back(), shift = end - other.knots.front();
    if (rational() || other.rational()) {
        // Scale the other's weights so that the shared control point keeps one weight.
        if (weights.empty()) weights.assign(pts.size(), 1.0);
        const double f = weights.back() / other.weight(0);
        for (int i = 1; i < other.numCtrl(); ++i)
            weights.push_back(other.weight(i) * f);
    }
    knots.resize(knots.size() - k1);
    knots.insert(knots.end(), static_cast<size_t>(p), end);
    for (size_t k = k1; k + k1 < other.knots.size(); ++k)
        knots.push_back(other.knots[k] + shift);
    knots.insert(knots.end(), k1, other.knots.back() + shift);
    pts.insert(pts.end(), other.pts.begin() + 1, other.pts.end());
    return true;
}

void Nurbs::transformBy(const AcGeMatrix3d& m) {
    for (auto& p : pts)
        p.transformBy(m);
}

std::vector<double> clampedUniformKnots(int n, int p) {
    std::vector<double> k(static_cast<size_t>(p + 1), 0.0);
    const int inner = n - p - 1;
    for (int i = 1; i <= inner; ++i)
        k.push_back(static_cast<double>(i) / (inner + 1));
    k.insert(k.end(), static_cast<size_t>(p + 1), 1.0);
    return k;
}

// ---------------------------------------------------------------- interpolation

namespace {

// A banded system solved by elimination without pivoting: collocation matrices of B-splines
// are totally positive, so the diagonal carries them.
struct BandSystem {
    int n = 0, bw = 0;
    std::vector<double> a;                // n rows of 2*bw+1 entries
    std::vector<std::array<double, 3>> b; // right-hand sides

    double& at(int r, int c) { return a[static_cast<size_t>(r * (2 * bw + 1) + (c - r + bw))]; }

    bool solve() {
        for (int k = 0; k < n; ++k) {
            const double piv = at(k, k);
            double scale = 0.0;
            for (int c = std::max(0, k - bw); c <= std::min(n - 1, k + bw); ++c)
                scale = std::max(scale, std::fabs(at(k, c)));
            if (!(std::fabs(piv) > 1e-13 * scale)) return false;
            for (int r = k + 1; r <= std::min(n - 1, k + bw); ++r) {
                const double f = at(r, k) / piv;
                if (f == 0.0) continue;
                for (int c = k; c <= std::min(n - 1, k + bw); ++c)
                    at(r, c) -= f * at(k, c);
                for (int d = 0; d < 3; ++d)
                    b[static_cast<size_t>(r)][static_cast<size_t>(d)] -=
                        f * b[static_cast<size_t>(k)][static_cast<size_t>(d)];
            }
        }
        for (int k = n - 1; k >= 0; --k) {
            for (int c = k + 1; c <= std::min(n - 1, k + bw); ++c)
                for (int d = 0; d < 3; ++d)
                    b[static_cast<size_t>(k)][static_cast<size_t>(d)] -=
                        at(k, c) * b[static_cast<size_t>(c)][static_cast<size_t>(d)];
            for (int d = 0; d < 3; ++d)
                b[static_cast<size_t>(k)][static_cast<size_t>(d)] /= at(k, k);
        }
        for (const auto& row : b)
            for (double v : row)
                if (!std::isfinite(v)) return false;
        return true;
    }
};

} // namespace

bool interpolate(const std::vector<AcGePoint3d>& points, int degree, const AcGeVector3d* startTan,
                 const AcGeVector3d* endTan, Nurbs& out) {
    double size = 0.0;
    for (const auto& p : points) {
        if (!finite3(p)) return false;
        size = std::max({size, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    }
    const double same = 1e-12 * std::max(1.0, size);
    std::vector<AcGePoint3d> q;
    for (const auto& p : points)
        if (q.empty() || q.back().distanceTo(p) > same) q.push_back(p);
    if (q.size() < 2) return false;
    const int N = static_cast<int>(q.size()) - 1;

    std::vector<double> ub(q.size(), 0.0);
    for (int k = 1; k <= N; ++k)
        ub[static_cast<size_t>(k)] =
            ub[static_cast<size_t>(k - 1)] +
            q[static_cast<size_t>(k)].distanceTo(q[static_cast<size_t>(k - 1)]);
    const double total = ub.back();
    if (!(total > 0.0) || !std::isfinite(total)) return false;
    for (double& u : ub)
        u /= total;
    ub.back() = 1.0;

    auto usable = [](const AcGeVector3d* t) {
        return t && std::isfinite(t->length()) && t->length() > 1e-300;
    };
    AcGeVector3d d0, dn;
    bool has0 = usable(startTan), hasN = usable(endTan);
    if (has0) d0 = *startTan / startTan->length() * total;
    if (hasN) dn = *endTan / endTan->length() * total;
    if (!has0 && !hasN && N >= 3 && q.front().distanceTo(q.back()) <= same * 1e3) {
        // A closed list: one tangent at the seam, from the neighbours on either side.
        const AcGeVector3d t = q[1] - q[static_cast<size_t>(N - 1)];
        if (t.length() > 0.0) {
            d0 = dn = t / t.length() * total;
            has0 = hasN = true;
        }
    }
    if (degree < 2) has0 = hasN = false;
    const int nCtrl = N + 1 + (has0 ? 1 : 0) + (hasN ? 1 : 0);
    const int p = std::clamp(degree, 1, std::min(kMaxDegree, nCtrl - 1));

    std::vector<double> t;
    if (has0) t.push_back(0.0);
    t.insert(t.end(), ub.begin(), ub.end());
    if (hasN) t.push_back(1.0);
    Nurbs c;
    c.degree = p;
    c.knots.assign(static_cast<size_t>(p + 1), 0.0);
    for (int j = 1; j <= nCtrl - p - 1; ++j) {
        double s = 0.0;
        for (int i = j; i <= j + p - 1; ++i)
            s += t[static_cast<size_t>(i)];
        c.knots.push_back(s / p);
    }
    c.knots.insert(c.knots.end(), static_cast<size_t>(p + 1), 1.0);
    c.pts.assign(static_cast<size_t>(nCtrl), AcGePoint3d());

    // Equations in the order of the unknowns they mostly touch.
    struct Eq {
        double u;
        int order;
        AcGeVector3d rhs;
    };
    std::vector<Eq> eqs;
    eqs.push_back({0.0, 0, q[0].asVector()});
    if (has0) eqs.push_back({0.0, 1, d0});
    for (int k = 1; k < N; ++k)
        eqs.push_back({ub[static_cast<size_t>(k)], 0, q[static_cast<size_t>(k)].asVector()});
    if (hasN) eqs.push_back({1.0, 1, dn});
    eqs.push_back({1.0, 0, q.back().asVector()});

    std::vector<std::array<double, kMaxDegree + 1>> rows(eqs.size());
    std::vector<int> first(eqs.size());
    int bw = 0;
    for (size_t r = 0; r < eqs.size(); ++r) {
        const int k = c.span(eqs[r].u);
        double N2[kMaxDeriv + 1][kMaxDegree + 1];
        basisDerivs(k, eqs[r].u, p, std::min(eqs[r].order, p), c.knots, N2);
        for (int j = 0; j <= p; ++j)
            rows[r][static_cast<size_t>(j)] = N2[eqs[r].order][j];
        first[r] = k - p;
        bw = std::max(
            {bw, std::abs(k - p - static_cast<int>(r)), std::abs(k - static_cast<int>(r))});
    }
    BandSystem sys;
    sys.n = nCtrl;
    sys.bw = bw;
    sys.a.assign(static_cast<size_t>(nCtrl * (2 * bw + 1)), 0.0);
    sys.b.resize(static_cast<size_t>(nCtrl));
    for (size_t r = 0; r < eqs.size(); ++r) {
        for (int j = 0; j <= p; ++j)
            sys.at(static_cast<int>(r), first[r] + j) = rows[r][static_cast<size_t>(j)];
        sys.b[r] = {eqs[r].rhs.x, eqs[r].rhs.y, eqs[r].rhs.z};
    }
    if (!sys.solve()) return false;
    for (int i = 0; i < nCtrl; ++i) {
        const auto& v = sys.b[static_cast<size_t>(i)];
        c.pts[static_cast<size_t>(i)].set(v[0], v[1], v[2]);
    }
    // The ends are the given points exactly.
    c.pts.front() = q.front();
    c.pts.back() = q.back();
    out = std::move(c);
    return true;
}

Nurbs ellipseArc(const AcGePoint3d& c, const AcGeVector3d& major, const AcGeVector3d& minor,
                 double t0, double t1) {
    const double sweep = t1 - t0;
    const int nseg =
        std::max(1, static_cast<int>(std::ceil(sweep / (std::numbers::pi / 2) - 1e-9)));
    const double dt = sweep / nseg, w = std::cos(dt / 2.0);
    auto at = [&](double t, double scale) {
        return c + (major * std::cos(t) + minor * std::sin(t)) * scale;
    };
    Nurbs n;
    n.degree = 2;
    n.knots.assign(3, t0);
    for (int s = 0; s < nseg; ++s) {
        const double a = t0 + s * dt;
        n.pts.push_back(at(a, 1.0));
        n.weights.push_back(1.0);
        n.pts.push_back(at(a + dt / 2.0, 1.0 / w));
        n.weights.push_back(w);
        if (s + 1 < nseg) n.knots.insert(n.knots.end(), 2, a + dt);
    }
    n.pts.push_back(at(t1, 1.0));
    n.weights.push_back(1.0);
    n.knots.insert(n.knots.end(), 3, t1);
    return n;
}

Nurbs segment(const AcGePoint3d& a, const AcGePoint3d& b, int degree) {
    Nurbs n;
    n.degree = std::max(1, degree);
    for (int i = 0; i <= n.degree; ++i)
        n.pts.push_back(a + (b - a) * (static_cast<double>(i) / n.degree));
    n.knots = clampedUniformKnots(n.degree + 1, n.degree);
    return n;
}

void unwrapPeriodic(Nurbs& n) {
    const int p = n.degree, cp = n.numCtrl();
    if (cp < 1 || n.knots.size() != static_cast<size_t>(cp + 1)) return;
    const double period = n.knots.back() - n.knots.front();
    auto ext = [&](int j) {
        const int q = j >= 0 ? j / cp : -((-j + cp - 1) / cp);
        return n.knots[static_cast<size_t>(j - q * cp)] + q * period;
    };
    std::vector<double> k;
    for (int i = 0; i <= cp + 2 * p; ++i)
        k.push_back(ext(i - p));
    for (int i = 0; i < p; ++i) {
        n.pts.push_back(n.pts[static_cast<size_t>(i % cp)]);
        if (n.rational()) n.weights.push_back(n.weights[static_cast<size_t>(i % cp)]);
    }
    n.knots = std::move(k);
}

} // namespace geimpl
