// The Voronoi edges of 10^5 random sites, beside the sweep-line Voronoi diagram of
// Boost.Polygon. The peer takes integer input, so the sites are drawn on a grid of 10^-4 units
// in a 1000 x 1000 square and both sides get exactly the same sites.
//
// Ours hands back every edge as a pair of points, cut at the box round the sites (rays end on
// it; the few hundred edges between far-off circumcentres of thin hull triangles lie wholly
// outside it and are left out); the peer builds its whole diagram (cells, edges and vertices)
// and the end points of its finite edges are collected once per edge.
#include "toolkit/voronoi.h"

#include <benchmark/benchmark.h>
#include <boost/polygon/voronoi.hpp>

#include <random>
#include <vector>

namespace {

constexpr double kGrid = 1e4;

std::vector<boost::polygon::point_data<int>> gridSites(int n) {
    std::mt19937_64 rng(1);
    std::uniform_int_distribution<int> d(0, static_cast<int>(1000 * kGrid));
    std::vector<boost::polygon::point_data<int>> sites;
    sites.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        sites.emplace_back(d(rng), d(rng));
    return sites;
}

void BM_Ours_Voronoi(benchmark::State& state) {
    const auto grid = gridSites(static_cast<int>(state.range(0)));
    AcArray<AcGePoint3d> sites;
    for (const auto& p : grid)
        sites.append(AcGePoint3d(p.x() / kGrid, p.y() / kGrid, 0.0));
    size_t edges = 0;
    for (auto _ : state) {
        AcArray<AcGePoint3d> out;
        AcArray<int> counts;
        M_GetVoronoi(0, sites, out, counts);
        edges = static_cast<size_t>(out.length()) / 2;
        benchmark::DoNotOptimize(out.asArrayPtr());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["edges"] = static_cast<double>(edges);
}

void BM_Boost_Voronoi(benchmark::State& state) {
    const auto grid = gridSites(static_cast<int>(state.range(0)));
    size_t edges = 0;
    for (auto _ : state) {
        boost::polygon::voronoi_diagram<double> vd;
        boost::polygon::construct_voronoi(grid.begin(), grid.end(), &vd);
        std::vector<double> out;
        out.reserve(4 * vd.num_edges() / 2);
        for (const auto& e : vd.edges()) {
            if (!e.is_primary() || !e.is_finite() || &e > e.twin()) continue;
            out.insert(out.end(), {e.vertex0()->x() / kGrid, e.vertex0()->y() / kGrid,
                                   e.vertex1()->x() / kGrid, e.vertex1()->y() / kGrid});
        }
        edges = out.size() / 4;
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["edges"] = static_cast<double>(edges);
}

BENCHMARK(BM_Ours_Voronoi)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Boost_Voronoi)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
