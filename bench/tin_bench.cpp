// Triangulating random and gridded points, and heights of many points on a network, beside the
// Delaunay triangulation of the CGAL library. Both sides hand back the same thing: a face list
// of point indices, or one height per query point.
//
// The 10^6 cases run once each: the machine is shared.
#include "toolkit/tin.h"

#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace {

using K = CGAL::Exact_predicates_inexact_constructions_kernel;
using Vb = CGAL::Triangulation_vertex_base_with_info_2<int, K>;
using Tds = CGAL::Triangulation_data_structure_2<Vb>;
using Dt = CGAL::Delaunay_triangulation_2<K, Tds>;

enum Layout { kRandom = 0, kGrid = 1 };

// n uniform points in a 1000 x 1000 square, or the nearest square grid of unit spacing.
AcArray<AcGePoint3d> points(int n, Layout layout, unsigned seed = 1) {
    AcArray<AcGePoint3d> pts;
    if (layout == kGrid) {
        const int side = static_cast<int>(std::lround(std::sqrt(double(n))));
        for (int i = 0; i < side; ++i)
            for (int j = 0; j < side; ++j)
                pts.append(AcGePoint3d(j, i, 0.01 * ((i * 7 + j * 13) % 100)));
        return pts;
    }
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> d(0.0, 1000.0);
    for (int i = 0; i < n; ++i) {
        const double x = d(rng), y = d(rng);
        pts.append(AcGePoint3d(x, y, 0.1 * x + 0.05 * y));
    }
    return pts;
}

std::vector<std::pair<K::Point_2, int>> cgalInput(const AcArray<AcGePoint3d>& pts) {
    std::vector<std::pair<K::Point_2, int>> in;
    in.reserve(static_cast<size_t>(pts.length()));
    for (int i = 0; i < pts.length(); ++i)
        in.emplace_back(K::Point_2(pts[i].x, pts[i].y), i);
    return in;
}

void BM_Ours_Triangulate(benchmark::State& state) {
    const auto pts = points(static_cast<int>(state.range(0)), Layout(state.range(1)));
    int triangles = 0;
    for (auto _ : state) {
        AcArray<int> faces;
        M_GetTriangleFaces(pts, faces);
        triangles = faces.length() / 4;
        benchmark::DoNotOptimize(faces.asArrayPtr());
    }
    state.SetItemsProcessed(state.iterations() * pts.length());
    state.counters["triangles"] = triangles;
}

void BM_Cgal_Triangulate(benchmark::State& state) {
    const auto pts = points(static_cast<int>(state.range(0)), Layout(state.range(1)));
    const auto in = cgalInput(pts);
    int triangles = 0;
    for (auto _ : state) {
        Dt dt(in.begin(), in.end()); // spatially sorted insertion
        std::vector<int> faces;
        faces.reserve(4 * 2 * in.size());
        for (auto f = dt.finite_faces_begin(); f != dt.finite_faces_end(); ++f) {
            faces.push_back(3);
            for (int k = 0; k < 3; ++k)
                faces.push_back(f->vertex(k)->info());
        }
        triangles = static_cast<int>(faces.size() / 4);
        benchmark::DoNotOptimize(faces.data());
    }
    state.SetItemsProcessed(state.iterations() * pts.length());
    state.counters["triangles"] = triangles;
}

void triangulationSizes(benchmark::internal::Benchmark* b) {
    for (int layout : {kRandom, kGrid}) {
        b->Args({10000, layout});
        b->Args({100000, layout});
    }
}

void millionPoints(benchmark::internal::Benchmark* b) {
    b->Args({1000000, kRandom})->Args({1000000, kGrid})->Iterations(1);
}

// 10^5 query points on a network of 10^5 points, both uniform in the same square.
constexpr int kNetwork = 100000, kQueries = 100000;

AcArray<AcGePoint3d> queries() {
    return points(kQueries, kRandom, 2);
}

void BM_Ours_Heights(benchmark::State& state) {
    const auto network = points(kNetwork, kRandom);
    const auto query = queries();
    for (auto _ : state) {
        AcArray<AcGePoint3d> pts = network, q = query;
        M_GetHgtByLsd(pts, q);
        benchmark::DoNotOptimize(q.asArrayPtr());
    }
    state.SetItemsProcessed(state.iterations() * kQueries);
}

// The peer builds its network, then locates each point from the face of the one before and
// interpolates on the face's plane.
void BM_Cgal_Heights(benchmark::State& state) {
    const auto network = points(kNetwork, kRandom);
    const auto in = cgalInput(network);
    const auto query = queries();
    for (auto _ : state) {
        Dt dt(in.begin(), in.end());
        std::vector<double> h(static_cast<size_t>(query.length()), -1.0);
        Dt::Face_handle hint;
        for (int i = 0; i < query.length(); ++i) {
            const K::Point_2 p(query[i].x, query[i].y);
            const Dt::Face_handle f = dt.locate(p, hint);
            hint = f;
            if (dt.is_infinite(f)) continue;
            const AcGePoint3d &a = network[f->vertex(0)->info()],
                              &b = network[f->vertex(1)->info()],
                              &c = network[f->vertex(2)->info()];
            const double det = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
            const double u = ((b.x - p.x()) * (c.y - p.y()) - (c.x - p.x()) * (b.y - p.y())) / det;
            const double v = ((c.x - p.x()) * (a.y - p.y()) - (a.x - p.x()) * (c.y - p.y())) / det;
            h[static_cast<size_t>(i)] = u * a.z + v * b.z + (1.0 - u - v) * c.z;
        }
        benchmark::DoNotOptimize(h.data());
    }
    state.SetItemsProcessed(state.iterations() * kQueries);
}

} // namespace

BENCHMARK(BM_Ours_Triangulate)->Apply(triangulationSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Cgal_Triangulate)->Apply(triangulationSizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ours_Triangulate)->Apply(millionPoints)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Cgal_Triangulate)->Apply(millionPoints)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ours_Heights)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Cgal_Heights)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
