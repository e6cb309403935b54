// Properties every triangulation must have, on random and degenerate point sets: no input
// point inside any triangle's circumcircle, the triangles tiling the convex hull exactly once,
// and 2n - 2 - h of them for n points with h on the hull.
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using Pts = AcArray<AcGePoint3d>;

double cross(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The hull's corners counter-clockwise, keeping points on its edges: those are corners of the
// outside face too.
std::vector<AcGePoint3d> hullWithEdgePoints(const Pts& pts) {
    std::vector<AcGePoint3d> p(pts.begin(), pts.end());
    std::sort(p.begin(), p.end(), [](const AcGePoint3d& a, const AcGePoint3d& b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    std::vector<AcGePoint3d> h(2 * p.size());
    size_t k = 0;
    for (size_t i = 0; i < p.size(); ++i) {
        while (k >= 2 && cross(h[k - 2], h[k - 1], p[i]) < 0)
            --k;
        h[k++] = p[i];
    }
    for (size_t i = p.size() - 1, t = k + 1; i-- > 0;) {
        while (k >= t && cross(h[k - 2], h[k - 1], p[i]) < 0)
            --k;
        h[k++] = p[i];
    }
    h.resize(k - 1);
    return h;
}

// As a fan from the first corner, so that coordinates far from the origin cancel first.
double area(const std::vector<AcGePoint3d>& ring) {
    double a = 0;
    for (size_t i = 1; i + 1 < ring.size(); ++i)
        a += cross(ring[0], ring[i], ring[i + 1]);
    return a / 2;
}

// Positive when d lies inside the circle through the counter-clockwise a, b, c; also returns
// the size of the terms, against which rounding is judged.
double inCircle(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
                const AcGePoint3d& d, double& scale) {
    const double ax = a.x - d.x, ay = a.y - d.y, bx = b.x - d.x, by = b.y - d.y;
    const double cx = c.x - d.x, cy = c.y - d.y;
    const double al = ax * ax + ay * ay, bl = bx * bx + by * by, cl = cx * cx + cy * cy;
    scale = al * std::fabs(bx * cy - by * cx) + bl * std::fabs(ax * cy - ay * cx) +
            cl * std::fabs(ax * by - ay * bx);
    return al * (bx * cy - by * cx) - bl * (ax * cy - ay * cx) + cl * (ax * by - ay * bx);
}

void checkTriangulation(const Pts& pts, const std::string& name) {
    SCOPED_TRACE(name);
    AcArray<int> faces;
    ASSERT_EQ(M_GetTriangleFaces(pts, faces), 1);
    ASSERT_EQ(faces.length() % 4, 0);
    const int n = pts.length();

    std::set<std::array<int, 3>> seen;
    double sum = 0;
    int broken = 0;
    for (int f = 0; f < faces.length(); f += 4) {
        ASSERT_EQ(faces[f], 3);
        const int u = faces[f + 1], v = faces[f + 2], w = faces[f + 3];
        // Reported from the lowest-numbered corner, the others in input order.
        ASSERT_TRUE(0 <= u && u < v && v < w && w < n) << u << " " << v << " " << w;
        // Points take their turn in input order, whatever their place by x.
        if (f > 0) {
            ASSERT_LE(faces[f - 3], u) << "out of turn at record " << f / 4;
        }
        EXPECT_TRUE(seen.insert({u, v, w}).second) << "twice: " << u << " " << v << " " << w;
        AcGePoint3d a = pts[u], b = pts[v], c = pts[w];
        if (cross(a, b, c) < 0) std::swap(b, c);
        const double t = cross(a, b, c) / 2;
        EXPECT_GT(t, 0) << "flat triangle " << u << " " << v << " " << w;
        sum += t;
        for (int k = 0; k < n; ++k) {
            if (k == u || k == v || k == w) continue;
            double scale = 0;
            if (inCircle(a, b, c, pts[k], scale) > 1e-9 * scale) ++broken;
        }
    }
    EXPECT_EQ(broken, 0) << "points inside circumcircles";

    const std::vector<AcGePoint3d> hull = hullWithEdgePoints(pts);
    const double hullArea = area(hull);
    EXPECT_NEAR(sum, hullArea, 1e-9 * hullArea);
    EXPECT_EQ(static_cast<int>(seen.size()), 2 * n - 2 - static_cast<int>(hull.size()));

    qor::tin::Network net;
    ASSERT_TRUE(net.build(pts.asArrayPtr(), n));
    EXPECT_TRUE(net.isValid());
}

Pts uniform(int n, unsigned seed, double size) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> d(0.0, size);
    Pts pts;
    for (int i = 0; i < n; ++i)
        pts.append(AcGePoint3d(d(rng), d(rng), d(rng)));
    return pts;
}

TEST(TinProperties, UniformRandomPoints) {
    for (unsigned seed = 1; seed <= 6; ++seed)
        checkTriangulation(uniform(40 + 300 * static_cast<int>(seed), seed, 100.0),
                           "uniform seed " + std::to_string(seed));
}

TEST(TinProperties, FarFromTheOriginAndTiny) {
    // Survey coordinates: large offsets with metre spacing, and a millimetre patch.
    Pts far = uniform(500, 11, 50.0), tiny = uniform(500, 12, 0.01);
    for (AcGePoint3d& p : far)
        p += AcGeVector3d(500000.0, 3000000.0, 0.0);
    checkTriangulation(far, "far from the origin");
    checkTriangulation(tiny, "tiny");
}

TEST(TinProperties, ClusteredPoints) {
    std::mt19937_64 rng(21);
    std::normal_distribution<double> d(0.0, 1.0);
    Pts pts;
    for (int c = 0; c < 8; ++c) {
        const double cx = 40.0 * (c % 3), cy = 25.0 * (c / 3);
        for (int i = 0; i < 80; ++i)
            pts.append(AcGePoint3d(cx + d(rng), cy + 0.2 * d(rng), 0.0));
    }
    checkTriangulation(pts, "clusters");
}

TEST(TinProperties, LatticeSubsetsWithCocircularAndCollinearPoints) {
    // Integer points: exact arithmetic, many ties in the merge and long collinear runs.
    for (unsigned seed = 1; seed <= 4; ++seed) {
        std::mt19937 rng(seed);
        Pts pts;
        for (int x = 0; x < 30; ++x)
            for (int y = 0; y < 30; ++y)
                if (rng() % 3 == 0) pts.append(AcGePoint3d(x, y, 0));
        checkTriangulation(pts, "lattice seed " + std::to_string(seed));
    }
    Pts full;
    for (int x = 0; x < 25; ++x)
        for (int y = 0; y < 17; ++y)
            full.append(AcGePoint3d(x * 0.5, y * 0.25, 0));
    checkTriangulation(full, "full grid");
}

TEST(TinProperties, PointsOnACircleAndItsCentre) {
    // All cocircular but the centre: every merge ties.
    Pts pts = {{0, 0, 0}};
    for (int i = 0; i < 24; ++i) {
        const double a = i * 2.0 * 3.14159265358979323846 / 24;
        pts.append(AcGePoint3d(10.0 * std::cos(a), 10.0 * std::sin(a), 0));
    }
    checkTriangulation(pts, "circle");
}

TEST(TinProperties, CollinearRunsWithOneApex) {
    // Every half below the top merge is a collinear chain; the apex closes a fan.
    Pts row, column;
    for (int i = 0; i < 200; ++i) {
        row.append(AcGePoint3d((i * 37) % 200, 0, 0)); // shuffled along the line
        column.append(AcGePoint3d(5, (i * 53) % 200, 0));
    }
    row.append(AcGePoint3d(77.5, 3, 0));
    column.append(AcGePoint3d(-1, 150.5, 0));
    checkTriangulation(row, "row and apex");
    checkTriangulation(column, "column and apex");
}

} // namespace
