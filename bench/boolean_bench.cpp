// Union, intersection and difference of two overlapping polygons of 100, 1,000 and 10,000
// vertices each, beside the Clipper library on the same outlines in micro-units. Before
// timing, each case checks that the areas of the two results agree.
//
// Two kinds of outline: "rough", whose radii jitter by 2% so that the two boundaries zigzag
// through each other thousands of times at 10,000 vertices, and "smooth", jittered by a third
// of the vertex spacing, where they cross a few dozen times.
#include "toolkit/boolean.h"

#include <benchmark/benchmark.h>
#include <polyclipping/clipper.hpp>

#include <cmath>
#include <random>
#include <string>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kScale = 1e6;
const char* const kOpNames[] = {"union", "intersection", "difference"};
const char* const kKinds[] = {"rough", "smooth"};

// A wavy star round (cx, cy) with noise on every radius: simple, and its boundary crosses a
// shifted copy many times.
AcArray<AcGePoint2d> star(int n, double cx, double cy, double phase, unsigned seed, int kind) {
    std::mt19937 rng(seed);
    const double jitter = kind == 0 ? 0.02 : (2.0 * kPi / n) / 3.0;
    std::uniform_real_distribution<double> noise(-jitter, jitter);
    AcArray<AcGePoint2d> pts(n);
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * kPi * i / n;
        const double r = 100.0 * (1.0 + 0.2 * std::sin(5.0 * a + phase) + noise(rng));
        pts.append(AcGePoint2d(cx + r * std::cos(a), cy + r * std::sin(a)));
    }
    return pts;
}

struct Operands {
    AcArray<AcGePoint2d> a, b;
    ClipperLib::Path pa, pb;
};

Operands operands(int n, int kind) {
    Operands o{star(n, 0, 0, 0.0, 1, kind), star(n, 30, 20, 1.0, 2, kind), {}, {}};
    for (const AcGePoint2d& p : o.a)
        o.pa.emplace_back(std::llround(p.x * kScale), std::llround(p.y * kScale));
    for (const AcGePoint2d& p : o.b)
        o.pb.emplace_back(std::llround(p.x * kScale), std::llround(p.y * kScale));
    return o;
}

ClipperLib::Paths clip(const Operands& o, int op) {
    static const ClipperLib::ClipType types[] = {ClipperLib::ctUnion, ClipperLib::ctIntersection,
                                                 ClipperLib::ctDifference};
    ClipperLib::Clipper c;
    c.AddPath(o.pa, ClipperLib::ptSubject, true);
    c.AddPath(o.pb, ClipperLib::ptClip, true);
    ClipperLib::Paths out;
    c.Execute(types[op], out, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
    return out;
}

// The area the loops enclose, holes taken away: the loops' signed areas in the orientation
// that makes the largest one positive. Open chains count as closed.
double loopArea(const AcArray<int>& counts, const AcArray<AcGePoint2d>& pts) {
    double sum = 0, largest = 0;
    for (int at = 0; at < counts.length(); at += counts[at] + 1) {
        double s = 0;
        for (int k = 1; k <= counts[at]; ++k) {
            const AcGePoint2d& p = pts[counts[at + k]];
            const AcGePoint2d& q = pts[counts[at + (k % counts[at]) + 1]];
            s += p.x * q.y - q.x * p.y;
        }
        sum += s / 2;
        if (std::fabs(s / 2) > std::fabs(largest)) largest = s / 2;
    }
    return largest < 0 ? -sum : sum;
}

double clipperArea(const ClipperLib::Paths& paths) {
    double sum = 0;
    for (const ClipperLib::Path& p : paths)
        sum += ClipperLib::Area(p);
    return sum / (kScale * kScale);
}

bool sameArea(const Operands& o, int op, std::string& why) {
    AcArray<int> counts;
    AcArray<AcGePoint2d> pts;
    M_BooleanOper(o.a, o.b, op, counts, pts);
    const double ours = loopArea(counts, pts), theirs = clipperArea(clip(o, op));
    if (std::fabs(ours - theirs) <= 1e-6 * std::fabs(theirs)) return true;
    why = std::string(kOpNames[op]) + ": area " + std::to_string(ours) + ", Clipper " +
          std::to_string(theirs);
    return false;
}

void BM_Ours_Boolean(benchmark::State& state) {
    const int op = static_cast<int>(state.range(0));
    const Operands o = operands(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    std::string why;
    if (!sameArea(o, op, why)) {
        state.SkipWithError(why.c_str());
        return;
    }
    for (auto _ : state) {
        AcArray<int> counts;
        AcArray<AcGePoint2d> pts;
        benchmark::DoNotOptimize(M_BooleanOper(o.a, o.b, op, counts, pts));
    }
    state.SetLabel(std::string(kKinds[state.range(2)]) + " " + kOpNames[op]);
}

void BM_Clipper_Boolean(benchmark::State& state) {
    const int op = static_cast<int>(state.range(0));
    const Operands o = operands(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    for (auto _ : state) {
        ClipperLib::Paths out = clip(o, op);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetLabel(std::string(kKinds[state.range(2)]) + " " + kOpNames[op]);
}

// Arguments: operation, vertices per polygon, kind of outline.
BENCHMARK(BM_Ours_Boolean)
    ->ArgsProduct({{0, 1, 2}, {100, 1000, 10000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Clipper_Boolean)
    ->ArgsProduct({{0, 1, 2}, {100, 1000, 10000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
