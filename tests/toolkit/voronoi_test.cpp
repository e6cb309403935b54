// Voronoi diagrams: small layouts with known edges and cells, the defining properties on random
// sites (cells hold their sites and tile the box, corners and edges are equidistant from the
// sites they divide, every cell side is an edge), and input with nothing or too little to
// divide.
#include "toolkit/geometry.h"
#include "toolkit/voronoi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Pts = AcArray<AcGePoint3d>;
using Segment = std::pair<AcGePoint2d, AcGePoint2d>;

std::vector<Segment> edgesOf(const Pts& out) {
    std::vector<Segment> edges;
    for (int i = 0; i + 1 < out.length(); i += 2)
        edges.emplace_back(AcGePoint2d(out[i].x, out[i].y),
                           AcGePoint2d(out[i + 1].x, out[i + 1].y));
    return edges;
}

std::vector<std::vector<AcGePoint2d>> cellsOf(const Pts& out, const AcArray<int>& counts) {
    std::vector<std::vector<AcGePoint2d>> cells;
    int at = 0;
    for (int c : counts) {
        std::vector<AcGePoint2d> cell;
        for (int k = 0; k < c && at < out.length(); ++k, ++at)
            cell.emplace_back(out[at].x, out[at].y);
        cells.push_back(cell);
    }
    return cells;
}

bool near(AcGePoint2d a, AcGePoint2d b, double tol) {
    return std::hypot(a.x - b.x, a.y - b.y) <= tol;
}

bool sameSegment(const Segment& s, AcGePoint2d a, AcGePoint2d b, double tol) {
    return (near(s.first, a, tol) && near(s.second, b, tol)) ||
           (near(s.first, b, tol) && near(s.second, a, tol));
}

bool hasSegment(const std::vector<Segment>& edges, AcGePoint2d a, AcGePoint2d b, double tol) {
    return std::any_of(edges.begin(), edges.end(),
                       [&](const Segment& s) { return sameSegment(s, a, b, tol); });
}

double signedArea(const std::vector<AcGePoint2d>& poly) {
    double a = 0.0;
    for (size_t i = 0; i < poly.size(); ++i) {
        const AcGePoint2d &p = poly[i], &q = poly[(i + 1) % poly.size()];
        a += p.x * q.y - q.x * p.y;
    }
    return a / 2.0;
}

// Strictly inside a counter-clockwise convex polygon.
bool insideConvex(const std::vector<AcGePoint2d>& poly, AcGePoint2d p) {
    for (size_t i = 0; i < poly.size(); ++i) {
        const AcGePoint2d &a = poly[i], &b = poly[(i + 1) % poly.size()];
        if ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) <= 0.0) return false;
    }
    return true;
}

void expectCorners(const std::vector<AcGePoint2d>& cell, const std::vector<AcGePoint2d>& want) {
    ASSERT_EQ(cell.size(), want.size());
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_NEAR(cell[i].x, want[i].x, 1e-9) << "corner " << i;
        EXPECT_NEAR(cell[i].y, want[i].y, 1e-9) << "corner " << i;
    }
}

// ---------------------------------------------------------------- known layouts

TEST(Voronoi, SquareDividesAlongItsAxes) {
    const Pts square = {{0, 0, 5}, {10, 0, 6}, {10, 10, 7}, {0, 10, 8}};
    Pts out = {{1, 2, 3}};
    AcArray<int> counts = {99};
    ASSERT_EQ(M_GetVoronoi(0, square, out, counts), 1);
    EXPECT_EQ(counts.length(), 1) << "mode 0 leaves counts alone";
    // The diagonal's two triangles share their circumcentre: that edge has no length but is
    // recorded, the diagram's vertex. The box is [-10, 20] in both directions.
    const auto edges = edgesOf(out);
    ASSERT_EQ(edges.size(), 5u);
    const AcGePoint2d c(5, 5);
    EXPECT_TRUE(hasSegment(edges, c, c, 1e-9));
    for (AcGePoint2d end :
         {AcGePoint2d(5, -10), AcGePoint2d(20, 5), AcGePoint2d(5, 20), AcGePoint2d(-10, 5)})
        EXPECT_TRUE(hasSegment(edges, c, end, 1e-9)) << end.x << "," << end.y;
    for (const AcGePoint3d& p : out)
        EXPECT_EQ(p.z, 0.0);

    ASSERT_EQ(M_GetVoronoi(1, square, out, counts), 1);
    ASSERT_EQ(counts.length(), 4);
    const auto cells = cellsOf(out, counts);
    // Sites by x, then y: (0,0), (0,10), (10,0), (10,10). Each cell starts at the corner seen
    // at the smallest angle from the x axis and runs counter-clockwise.
    expectCorners(cells[0], {{5, 5}, {-10, 5}, {-10, -10}, {5, -10}});
    expectCorners(cells[1], {{5, 20}, {-10, 20}, {-10, 5}, {5, 5}});
    expectCorners(cells[2], {{20, 5}, {5, 5}, {5, -10}, {20, -10}});
    expectCorners(cells[3], {{20, 20}, {5, 20}, {5, 5}, {20, 5}});
}

TEST(Voronoi, RightTriangleMeetsAtTheHypotenuseMidpoint) {
    const Pts sites = {{0, 0, 0}, {6, 0, 0}, {0, 8, 0}};
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(0, sites, out, counts), 1);
    // Box [-10, 16] x [-10, 18]; the rays leave (3, 4) square to each side.
    const auto edges = edgesOf(out);
    ASSERT_EQ(edges.size(), 3u);
    const AcGePoint2d c(3, 4);
    EXPECT_TRUE(hasSegment(edges, c, {3, -10}, 1e-9));
    EXPECT_TRUE(hasSegment(edges, c, {-10, 4}, 1e-9));
    EXPECT_TRUE(hasSegment(edges, c, {16, 13.75}, 1e-9));
    // Rays start at the circumcentre.
    for (const Segment& s : edges)
        EXPECT_TRUE(near(s.first, c, 1e-12));

    ASSERT_EQ(M_GetVoronoi(1, sites, out, counts), 1);
    const auto cells = cellsOf(out, counts);
    ASSERT_EQ(cells.size(), 3u);
    // Sites in order (0,0), (0,8), (6,0); the cells close through the box's corners.
    expectCorners(cells[0], {{3, 4}, {-10, 4}, {-10, -10}, {3, -10}});
    expectCorners(cells[1], {{16, 13.75}, {16, 18}, {-10, 18}, {-10, 4}, {3, 4}});
    expectCorners(cells[2], {{16, 13.75}, {3, 4}, {3, -10}, {16, -10}});
}

TEST(Voronoi, SurveyedCoordinatesFarFromTheOrigin) {
    // Survey grids put sites millions of units from the origin; the square's centre must still
    // come out as one corner, not two a rounding apart, and its diagonal edge of no length.
    const double x0 = 512345.678, y0 = 3123456.789;
    const Pts square = {{x0, y0, 0}, {x0 + 10, y0, 0}, {x0 + 10, y0 + 10, 0}, {x0, y0 + 10, 0}};
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(0, square, out, counts), 1);
    ASSERT_EQ(out.length(), 10);
    const auto edges = edgesOf(out);
    EXPECT_EQ(std::count_if(edges.begin(), edges.end(),
                            [](const Segment& e) { return e.first == e.second; }),
              1);
    ASSERT_EQ(M_GetVoronoi(1, square, out, counts), 1);
    ASSERT_EQ(counts.length(), 4);
    for (int c : counts)
        EXPECT_EQ(c, 4);
}

TEST(Voronoi, GridSitesMeetFourAtACorner) {
    // A 5 x 5 grid of spacing 10: every Voronoi vertex is shared by four sites, so each of the
    // 16 diagonals of the triangulation adds an edge of no length there. Four bisectors each
    // way, each cut into five by the others and the box [-10, 50].
    Pts grid;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
            grid.append(AcGePoint3d(10.0 * i, 10.0 * j, 0));
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(0, grid, out, counts), 1);
    const auto edges = edgesOf(out);
    EXPECT_EQ(edges.size(), 56u);
    for (const Segment& e : edges) {
        if (e.first == e.second) {
            // At a vertex: both coordinates at 5 + 10k.
            EXPECT_NEAR(std::fmod(e.first.x - 5, 10), 0, 1e-9);
            EXPECT_NEAR(std::fmod(e.first.y - 5, 10), 0, 1e-9);
            continue;
        }
        const bool vertical = std::fabs(e.first.x - e.second.x) < 1e-9;
        EXPECT_TRUE(vertical || std::fabs(e.first.y - e.second.y) < 1e-9);
        // Between two vertices, or from the outer ones to the box.
        const double length = std::hypot(e.first.x - e.second.x, e.first.y - e.second.y);
        EXPECT_TRUE(std::fabs(length - 10) < 1e-9 || std::fabs(length - 15) < 1e-9) << length;
    }
    EXPECT_TRUE(hasSegment(edges, {5, -10}, {5, 5}, 1e-9));
    EXPECT_TRUE(hasSegment(edges, {15, 25}, {25, 25}, 1e-9));

    ASSERT_EQ(M_GetVoronoi(1, grid, out, counts), 1);
    ASSERT_EQ(counts.length(), 25);
    for (int c : counts)
        EXPECT_EQ(c, 4);
    // The middle site's cell is the 10 x 10 square round it.
    expectCorners(cellsOf(out, counts)[12], {{25, 25}, {15, 25}, {15, 15}, {25, 15}});
}

// ---------------------------------------------------------------- properties

struct Layout {
    Pts sites;   // as given
    Pts cleaned; // in the order the cells come out
};

Layout randomSites(int n, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> d(0.0, 100.0);
    Layout l;
    for (int i = 0; i < n; ++i)
        l.sites.append(AcGePoint3d(d(rng), d(rng), d(rng)));
    // A few repeats, which the cleaning removes.
    for (int i = 0; i < 5; ++i)
        l.sites.append(l.sites[i * 3]);
    for (const AcGePoint3d& p : l.sites)
        l.cleaned.append(AcGePoint3d(p.x, p.y, 0));
    M_DelMultPts(l.cleaned);
    return l;
}

double distance(AcGePoint2d p, const AcGePoint3d& s) {
    return std::hypot(p.x - s.x, p.y - s.y);
}

// The two sites nearest p, as indices into sites.
std::pair<int, int> twoNearest(AcGePoint2d p, const Pts& sites) {
    int a = -1, b = -1;
    for (int i = 0; i < sites.length(); ++i) {
        const double di = distance(p, sites[i]);
        if (a < 0 || di < distance(p, sites[a])) {
            b = a;
            a = i;
        } else if (b < 0 || di < distance(p, sites[b])) {
            b = i;
        }
    }
    return {a, b};
}

class VoronoiRandom : public ::testing::TestWithParam<unsigned> {};

TEST_P(VoronoiRandom, CellsHoldTheirSitesAndTileTheBox) {
    const Layout l = randomSites(300, GetParam());
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(1, l.sites, out, counts), 1);
    ASSERT_EQ(counts.length(), l.cleaned.length());
    const auto cells = cellsOf(out, counts);
    int corners = 0;
    for (int c : counts)
        corners += c;
    ASSERT_EQ(corners, out.length());

    double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
    for (const AcGePoint3d& s : l.cleaned) {
        x0 = std::min(x0, s.x), y0 = std::min(y0, s.y);
        x1 = std::max(x1, s.x), y1 = std::max(y1, s.y);
    }
    const double boxArea = (x1 - x0 + 20) * (y1 - y0 + 20);

    double total = 0.0;
    for (size_t i = 0; i < cells.size(); ++i) {
        SCOPED_TRACE("cell " + std::to_string(i));
        const auto& cell = cells[i];
        const AcGePoint2d site(l.cleaned[static_cast<int>(i)].x, l.cleaned[static_cast<int>(i)].y);
        ASSERT_GE(cell.size(), 3u);
        EXPECT_GT(signedArea(cell), 0.0) << "counter-clockwise";
        EXPECT_TRUE(insideConvex(cell, site));
        total += signedArea(cell);
        // Every corner is at least as near its own site as any other.
        for (const AcGePoint2d& p : cell) {
            EXPECT_GE(p.x, x0 - 10 - 1e-9);
            EXPECT_LE(p.x, x1 + 10 + 1e-9);
            EXPECT_GE(p.y, y0 - 10 - 1e-9);
            EXPECT_LE(p.y, y1 + 10 + 1e-9);
            const double own = distance(p, l.cleaned[static_cast<int>(i)]);
            for (const AcGePoint3d& other : l.cleaned)
                ASSERT_LE(own, distance(p, other) + 1e-7);
        }
        // It starts at the corner first met turning counter-clockwise from the x axis.
        for (size_t k = 1; k < cell.size(); ++k)
            EXPECT_LT(M_Angle(site, cell[0]), M_Angle(site, cell[k]));
    }
    EXPECT_NEAR(total, boxArea, 1e-9 * boxArea);
}

TEST_P(VoronoiRandom, EdgesDivideTwoSitesAndBoundTheCells) {
    const Layout l = randomSites(300, GetParam());
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(0, l.sites, out, counts), 1);
    ASSERT_EQ(out.length() % 2, 0);
    const auto edges = edgesOf(out);
    // A planar subdivision of n sites has at most 3n - 3 Delaunay sides.
    EXPECT_LE(edges.size(), static_cast<size_t>(3 * l.cleaned.length() - 3));
    for (const Segment& e : edges) {
        const AcGePoint2d mid((e.first.x + e.second.x) / 2, (e.first.y + e.second.y) / 2);
        const auto [a, b] = twoNearest(mid, l.cleaned);
        // Both ends and the middle are as far from the two sites the edge divides, and no
        // other site is nearer.
        for (AcGePoint2d p : {e.first, mid, e.second}) {
            const double da = distance(p, l.cleaned[a]), db = distance(p, l.cleaned[b]);
            EXPECT_NEAR(da, db, 1e-7);
            for (const AcGePoint3d& other : l.cleaned)
                ASSERT_LE(std::min(da, db), distance(p, other) + 1e-7);
        }
    }
    // Every side of a cell that is not on the box is one recorded edge.
    ASSERT_EQ(M_GetVoronoi(1, l.sites, out, counts), 1);
    const auto cells = cellsOf(out, counts);
    double x0 = 1e300, x1 = -1e300, y0 = 1e300, y1 = -1e300;
    for (const auto& cell : cells)
        for (const AcGePoint2d& p : cell)
            x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y),
            y1 = std::max(y1, p.y);
    const auto onBox = [&](AcGePoint2d p, AcGePoint2d q) {
        return (p.x == x0 && q.x == x0) || (p.x == x1 && q.x == x1) || (p.y == y0 && q.y == y0) ||
               (p.y == y1 && q.y == y1);
    };
    size_t inner = 0;
    for (const auto& cell : cells)
        for (size_t k = 0; k < cell.size(); ++k) {
            const AcGePoint2d p = cell[k], q = cell[(k + 1) % cell.size()];
            if (onBox(p, q)) continue;
            ++inner;
            ASSERT_TRUE(hasSegment(edges, p, q, 1e-7))
                << p.x << "," << p.y << " " << q.x << "," << q.y;
        }
    // Each inner side belongs to two cells.
    EXPECT_EQ(inner, 2 * edges.size());
}

INSTANTIATE_TEST_SUITE_P(Seeds, VoronoiRandom, ::testing::Values(1u, 2u, 3u));

// ---------------------------------------------------------------- little or nothing to divide

TEST(Voronoi, NothingToDivide) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const Pts none;
    const Pts notNumbers[] = {{{0, 0, 0}, {nan, 1, 0}, {2, 2, 0}},
                              {{0, 0, 0}, {1, inf, 0}, {2, 0, 0}}};
    for (int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        Pts out = {{1, 1, 1}};
        AcArray<int> counts = {3};
        EXPECT_EQ(M_GetVoronoi(mode, none, out, counts), 0);
        EXPECT_TRUE(out.isEmpty());
        for (const Pts& bad : notNumbers) {
            out.append(AcGePoint3d(1, 1, 1));
            EXPECT_EQ(M_GetVoronoi(mode, bad, out, counts), 0);
            EXPECT_TRUE(out.isEmpty());
            EXPECT_TRUE(counts.isEmpty() || mode == 0);
        }
    }
    // Another mode: nothing, but out is still cleared.
    const Pts square = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
    Pts out = {{1, 1, 1}};
    AcArray<int> counts = {3};
    EXPECT_EQ(M_GetVoronoi(2, square, out, counts), 0);
    EXPECT_EQ(M_GetVoronoi(-1, square, out, counts), 0);
    EXPECT_TRUE(out.isEmpty());
    EXPECT_EQ(counts.length(), 1);
}

TEST(Voronoi, OneSiteHasTheWholeBox) {
    const Pts one = {{3, 4, 9}};
    Pts out;
    AcArray<int> counts;
    EXPECT_EQ(M_GetVoronoi(0, one, out, counts), 0);
    EXPECT_TRUE(out.isEmpty());
    ASSERT_EQ(M_GetVoronoi(1, one, out, counts), 1);
    ASSERT_EQ(counts.length(), 1);
    expectCorners(cellsOf(out, counts)[0], {{13, 14}, {-7, 14}, {-7, -6}, {13, -6}});
}

TEST(Voronoi, RepeatedSitesCountOnce) {
    // Four copies of three sites, one of them a hair off: three cells, as for the three.
    const Pts sites = {{0, 0, 0}, {6, 0, 0}, {0, 8, 0},       {0, 0, 1},
                       {6, 0, 2}, {0, 8, 3}, {0.00005, 0, 0}, {6, 0.00003, 0},
                       {0, 8, 0}, {0, 0, 0}, {6, 0, 0},       {0, 8, 0}};
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(1, sites, out, counts), 1);
    EXPECT_EQ(counts.length(), 3);
    ASSERT_EQ(M_GetVoronoi(0, sites, out, counts), 1);
    EXPECT_EQ(out.length(), 6);
    // The sites are read, not changed, and may be the output array itself.
    Pts same = sites;
    ASSERT_EQ(M_GetVoronoi(0, same, same, counts), 1);
    EXPECT_EQ(same.length(), 6);
}

TEST(Voronoi, SitesOnOneLineAreDividedByParallelBisectors) {
    // No triangle: the bisectors between neighbours run across the box [-10, 30] x [-10, 10].
    const Pts row = {{20, 0, 0}, {0, 0, 0}, {10, 0, 0}};
    Pts out;
    AcArray<int> counts;
    ASSERT_EQ(M_GetVoronoi(0, row, out, counts), 1);
    const auto edges = edgesOf(out);
    ASSERT_EQ(edges.size(), 2u);
    EXPECT_TRUE(hasSegment(edges, {5, -10}, {5, 10}, 1e-12));
    EXPECT_TRUE(hasSegment(edges, {15, -10}, {15, 10}, 1e-12));

    ASSERT_EQ(M_GetVoronoi(1, row, out, counts), 1);
    const auto cells = cellsOf(out, counts);
    ASSERT_EQ(cells.size(), 3u);
    expectCorners(cells[0], {{5, 10}, {-10, 10}, {-10, -10}, {5, -10}});
    expectCorners(cells[1], {{15, 10}, {5, 10}, {5, -10}, {15, -10}});
    expectCorners(cells[2], {{30, 10}, {15, 10}, {15, -10}, {30, -10}});

    // A slanted pair: one bisector, square to the pair, and two cells splitting the box.
    const Pts pair = {{0, 0, 0}, {10, 10, 0}};
    ASSERT_EQ(M_GetVoronoi(0, pair, out, counts), 1);
    ASSERT_EQ(out.length(), 2);
    EXPECT_NEAR(out[0].x + out[0].y, 10, 1e-12);
    EXPECT_NEAR(out[1].x + out[1].y, 10, 1e-12);
    EXPECT_TRUE(near({out[0].x, out[0].y}, {20, -10}, 1e-12) ||
                near({out[0].x, out[0].y}, {-10, 20}, 1e-12));
    ASSERT_EQ(M_GetVoronoi(1, pair, out, counts), 1);
    const auto halves = cellsOf(out, counts);
    ASSERT_EQ(halves.size(), 2u);
    EXPECT_NEAR(signedArea(halves[0]), 450, 1e-9);
    EXPECT_NEAR(signedArea(halves[1]), 450, 1e-9);
}

} // namespace
