// The engine's indexed searches against the plain ones: the spatial indexes may only make the
// engine faster, never change a point of its output. Random star-shaped polygons give general
// positions; polygons on a coarse lattice give shared vertices, overlapping sides and vertices
// on sides.
#include "toolkit/booleanedges.h"
#include "toolkit/booleanengine.h"
#include "toolkit/booleangrid.h"
#include "toolkit/booleanlocate.h"
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

using Pts2 = AcArray<AcGePoint2d>;

// A simple polygon: vertices at increasing angles round a centre, each at its own radius.
// With `lattice` the vertices snap to multiples of it, which makes sides meet and overlap.
Pts2 star(std::mt19937& rng, int n, double cx, double cy, double r, double lattice) {
    std::uniform_real_distribution<double> radius(0.3 * r, r), jitter(0.0, 0.9);
    Pts2 pts;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * std::numbers::pi * (i + jitter(rng)) / n;
        const double d = radius(rng);
        double x = cx + d * std::cos(a), y = cy + d * std::sin(a);
        if (lattice > 0) {
            x = std::round(x / lattice) * lattice;
            y = std::round(y / lattice) * lattice;
        }
        if (pts.isEmpty() || pts.last().distanceTo(AcGePoint2d(x, y)) > 0)
            pts.append(AcGePoint2d(x, y));
    }
    return pts;
}

void expectSameOutput(const Pts2& a, const Pts2& b, int op, const std::string& what) {
    AcArray<int> c1, c2;
    Pts2 p1, p2;
    const int r1 = qor::boolean::booleanLoops(a, b, op, c1, p1, {true});
    const int r2 = qor::boolean::booleanLoops(a, b, op, c2, p2, {false});
    ASSERT_EQ(r1, r2) << what;
    ASSERT_EQ(c1, c2) << what;
    ASSERT_EQ(p1.length(), p2.length()) << what;
    for (int i = 0; i < p1.length(); ++i) {
        // Bit for bit: the same arithmetic on the same points.
        ASSERT_EQ(p1[i].x, p2[i].x) << what << " point " << i;
        ASSERT_EQ(p1[i].y, p2[i].y) << what << " point " << i;
    }
}

TEST(BooleanIndexed, SameLoopsAsThePlainSearches) {
    std::mt19937 rng(20240611);
    std::uniform_int_distribution<int> count(3, 60);
    std::uniform_real_distribution<double> shift(-6.0, 6.0);
    for (int trial = 0; trial < 150; ++trial) {
        const double lattice = trial % 3 == 0 ? 0.0 : (trial % 3 == 1 ? 1.0 : 0.5);
        const Pts2 a = star(rng, count(rng), 0, 0, 10, lattice);
        const Pts2 b = star(rng, count(rng), shift(rng), shift(rng), 8, lattice);
        for (int op = 0; op < 3; ++op)
            expectSameOutput(a, b, op,
                             "trial " + std::to_string(trial) + " op " + std::to_string(op));
    }
}

TEST(BooleanIndexed, SameLoopsForSelfCrossingOperands) {
    // Vertices anywhere in a box: the outlines cross themselves many times.
    std::mt19937 rng(4242);
    std::uniform_int_distribution<int> count(3, 25);
    std::uniform_real_distribution<double> coord(0.0, 10.0);
    for (int trial = 0; trial < 60; ++trial) {
        Pts2 a, b;
        for (int i = count(rng); i > 0; --i)
            a.append(AcGePoint2d(coord(rng), coord(rng)));
        for (int i = count(rng); i > 0; --i)
            b.append(AcGePoint2d(std::round(coord(rng)), std::round(coord(rng))));
        for (int op = 0; op < 3; ++op)
            expectSameOutput(a, b, op,
                             "trial " + std::to_string(trial) + " op " + std::to_string(op));
    }
}

TEST(BooleanIndexed, SameLoopsForLongCrowdedAndFarAwayOperands) {
    std::mt19937 rng(7);
    // A long thin comb across a star: edges far longer than the grid's cells.
    Pts2 comb;
    for (int i = 0; i < 40; ++i) {
        comb.append(AcGePoint2d(i * 0.5, 0.0));
        comb.append(AcGePoint2d(i * 0.5, i % 2 ? 9.0 : 7.0));
    }
    comb.append(AcGePoint2d(20.0, -1.0));
    comb.append(AcGePoint2d(-1.0, -1.0));
    const Pts2 round = star(rng, 50, 10, 4, 6, 0.0);
    // Survey-sized coordinates.
    Pts2 east = round, eastComb = comb;
    for (AcGePoint2d& p : east)
        p += AcGeVector2d(512345.125, 3401234.5);
    for (AcGePoint2d& p : eastComb)
        p += AcGeVector2d(512345.125, 3401234.5);
    // Spikes from a ring of radius 1 out to 100, against a copy turned by a hair: the cells at
    // the ring hold most of the edges.
    Pts2 spikes, turned;
    for (int i = 0; i < 400; ++i) {
        const double a = 2.0 * std::numbers::pi * i / 400, r = i % 2 ? 100.0 : 1.0;
        spikes.append(AcGePoint2d(r * std::cos(a), r * std::sin(a)));
        turned.append(AcGePoint2d(r * std::cos(a + 0.001), r * std::sin(a + 0.001)));
    }
    for (int op = 0; op < 3; ++op) {
        expectSameOutput(spikes, turned, op, "spikes op " + std::to_string(op));
        expectSameOutput(comb, round, op, "comb op " + std::to_string(op));
        expectSameOutput(round, comb, op, "star op " + std::to_string(op));
        expectSameOutput(eastComb, east, op, "survey op " + std::to_string(op));
    }
}

TEST(BooleanIndexed, SameLoopsWhenPieceEndsNearlyMeet) {
    // Two blocks side by side whose shared side has many vertices on one vertical line, or
    // vertices a hair off it (closer than the join tolerance, not equal): many piece ends in
    // a narrow strip, near ones that differ, and repeats of the shared pieces.
    std::mt19937 rng(31);
    std::uniform_real_distribution<double> hair(-4e-5, 4e-5);
    for (int trial = 0; trial < 12; ++trial) {
        const bool jitter = trial % 2 == 1;
        const auto side = [&](double y) {
            return AcGePoint2d(1.0 + (jitter ? hair(rng) : 0.0), y);
        };
        Pts2 left = {{-5, 0}}, right = {{7, 10}};
        for (int i = 0; i <= 100; ++i)
            left.append(side(0.1 * i));
        left.append(AcGePoint2d(-5, 10));
        // The right block's side vertices fall between the left block's, or on them.
        const double offset = trial % 4 < 2 ? 0.05 : 0.0;
        for (int i = 100; i >= 0; --i)
            right.append(side(std::min(10.0, 0.1 * i + offset)));
        right.append(AcGePoint2d(7, 0));
        for (int op = 0; op < 3; ++op) {
            const std::string what = "trial " + std::to_string(trial) + " op " + std::to_string(op);
            expectSameOutput(left, right, op, what);
            expectSameOutput(right, left, op, what + " swapped");
            expectSameOutput(left, left, op, what + " itself");
        }
    }
}

TEST(BooleanLocator, AgreesWithTheAngleSumTest) {
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> unit(0.0, 1.0), spread(-14.0, 14.0);
    // Near a boundary the test's 1e-4 tolerances decide: probe on both sides of them.
    const double offsets[] = {0.0, 1e-9, 2e-5, 5e-5, 9.9e-5, 1.01e-4, 3e-4, 1e-3, 0.1};
    for (int trial = 0; trial < 24; ++trial) {
        const Pts2 polygon = star(rng, 5 + trial * 4, 0, 0, 10, trial % 2 ? 0.5 : 0.0);
        const std::vector<qor::boolean::Edge> edges = qor::boolean::edgeTable(polygon);
        qor::boolean::EdgeGrid grid;
        grid.build(edges);
        qor::boolean::PolygonLocator locator(polygon, edges, &grid);
        std::vector<AcGePoint2d> probes;
        for (int k = 0; k < 200; ++k)
            probes.emplace_back(spread(rng), spread(rng));
        for (const qor::boolean::Edge& e : edges) {
            const double t = unit(rng), len = std::hypot(e.x2 - e.x1, e.y2 - e.y1);
            const double nx = -(e.y2 - e.y1) / len, ny = (e.x2 - e.x1) / len;
            const AcGePoint2d on(e.x1 + t * (e.x2 - e.x1), e.y1 + t * (e.y2 - e.y1));
            for (double d : offsets) {
                probes.emplace_back(on.x + d * nx, on.y + d * ny);
                probes.emplace_back(on.x - d * nx, on.y - d * ny);
                probes.emplace_back(e.x1 + d, e.y1 - d);
                // On the line y = y1, where the directions wrap from a full turn to 0.
                probes.emplace_back(e.x1 - 1.0 - d, e.y1);
            }
        }
        for (const AcGePoint2d& p : probes)
            ASSERT_EQ(locator.locate(p), M_PtInPolygon(p, polygon))
                << "trial " << trial << " at " << p.x << ", " << p.y;
    }
}

TEST(BooleanLocator, DirectionJustBelowTheRayReadsAsOnIt) {
    // Seen from the origin, (10, -1e-15) lies a hair below +x; its angle rounds up to a full
    // turn and reads 0. So the side arriving there from (20, -5), wholly below the origin and
    // away from it, is the one the angle sum counts as crossing +x.
    const Pts2 notched = {{10, -1e-15}, {20, 5}, {-5, 5}, {-5, -5}, {20, -5}};
    const std::vector<qor::boolean::Edge> edges = qor::boolean::edgeTable(notched);
    qor::boolean::EdgeGrid grid;
    grid.build(edges);
    qor::boolean::PolygonLocator locator(notched, edges, &grid);
    const AcGePoint2d origin(0, 0);
    ASSERT_EQ(M_Angle(origin, notched[0]), 0.0);
    EXPECT_EQ(M_PtInPolygon(origin, notched), 1);
    EXPECT_EQ(locator.locate(origin), 1);
}

} // namespace
