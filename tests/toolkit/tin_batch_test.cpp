// Batch heights on a live network: planes come back exactly inside the hull, points outside
// take the nearest network point's height, the wrappers clean or keep their input, and the
// metered form's meter and break.
#include "toolkit/tin.h"
#include "toolkit/tinbatch.h"

#include "aced.h"
#include "acedprogress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Pts = AcArray<AcGePoint3d>;

double plane(double x, double y) {
    return 2.0 * x - 3.0 * y + 1.0;
}

Pts planePoints(int n, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> d(0.0, 100.0);
    Pts pts;
    for (int i = 0; i < n; ++i) {
        const double x = d(rng), y = d(rng);
        pts.append(AcGePoint3d(x, y, plane(x, y)));
    }
    return pts;
}

int nearestIndex(const Pts& pts, const AcGePoint3d& q) {
    int best = 0;
    for (int i = 1; i < pts.length(); ++i)
        if (std::hypot(pts[i].x - q.x, pts[i].y - q.y) <
            std::hypot(pts[best].x - q.x, pts[best].y - q.y))
            best = i;
    return best;
}

// Near a network edge the boundary rules may apply (the angle test's tolerance grows with the
// edge's length), and on some edges they do not follow the plane; such points are left out of
// the plane check.
bool nearAnEdge(const AcGePoint3d& q, const Pts& pts, const AcArray<int>& faces) {
    for (int f = 0; f < faces.length(); f += 4) {
        for (int k = 0; k < 3; ++k) {
            const AcGePoint3d& a = pts[faces[f + 1 + k]];
            const AcGePoint3d& b = pts[faces[f + 1 + (k + 1) % 3]];
            const double dx = b.x - a.x, dy = b.y - a.y;
            const double t =
                std::clamp(((q.x - a.x) * dx + (q.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
            const double tolerance = 0.001 + 0.0001 * std::sqrt(dx * dx + dy * dy);
            if (std::hypot(a.x + t * dx - q.x, a.y + t * dy - q.y) < tolerance) return true;
        }
    }
    return false;
}

TEST(TinBatch, PlaneIsReproducedInsideTheNetwork) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Pts pts = planePoints(1000, seed);
        // The square's corners make the hull the square, so every query inside is covered.
        for (const auto& [x, y] : {std::pair{0.0, 0.0}, {100.0, 0.0}, {100.0, 100.0}, {0.0, 100.0}})
            pts.append(AcGePoint3d(x, y, plane(x, y)));
        std::mt19937_64 rng(seed + 100);
        std::uniform_real_distribution<double> d(0.0, 100.0);
        Pts query;
        for (int i = 0; i < 2000; ++i)
            query.append(AcGePoint3d(d(rng), d(rng), 1234.0));
        // Network points themselves: the corner rules give their own heights.
        for (int i = 0; i < 50; ++i)
            query.append(AcGePoint3d(pts[i * 7].x, pts[i * 7].y, 0.0));

        ASSERT_EQ(M_GetHgtByLsd(pts, query), 1);
        AcArray<int> faces;
        ASSERT_EQ(M_GetTriangleFaces(pts, faces), 1);
        int off = 0, checked = 0;
        for (int i = 0; i < query.length(); ++i) {
            const AcGePoint3d& q = query[i];
            if (i < 2000 && nearAnEdge(q, pts, faces)) continue;
            ++checked;
            if (std::fabs(q.z - plane(q.x, q.y)) > 1e-7) ++off;
        }
        EXPECT_GT(checked, 1950);
        EXPECT_EQ(off, 0) << "heights off the plane";
    }
}

TEST(TinBatch, OutsideTheHullTheNearestPointDecides) {
    Pts pts = planePoints(300, 7);
    const AcGePoint3d outside[] = {{-10, 50, 0}, {150, 150, 0}, {50, -0.5, 0}, {-1e6, 3e6, 0}};
    Pts query;
    for (const AcGePoint3d& p : outside)
        query.append(p);
    ASSERT_EQ(M_GetHgtByLsd(pts, query), 1);
    for (int i = 0; i < query.length(); ++i)
        EXPECT_EQ(query[i].z, pts[nearestIndex(pts, outside[i])].z) << i;
}

TEST(TinBatch, CollinearNetworkHasOnlyItsPoints) {
    Pts pts = {{0, 0, 1}, {10, 0, 2}, {20, 0, 3}, {30, 0, 4}};
    Pts query = {{10, 0, 0}, {10.00005, 0, 0}, {14, 0, 0}, {26, 5, 0}};
    ASSERT_EQ(M_GetHgtByLsd(pts, query), 1);
    EXPECT_NEAR(query[0].z, 2, 1e-9);
    EXPECT_NEAR(query[1].z, 2, 1e-4);
    EXPECT_EQ(query[2].z, 2); // no triangle: the nearest point
    EXPECT_EQ(query[3].z, 4);
}

TEST(TinBatch, WrappersCleanOrKeepTheirInput) {
    const Pts given = {{10, 0, 3}, {0, 0, 1}, {0, 10, 2}, {0.00002, 0.00002, 9}, {10, 10, 4}};
    Pts query = {{5, 5, 0}};

    Pts kept = given;
    Pts unclean = query;
    // The close pair reaches the engine unchanged; two points closer than 0.0001 but not at one
    // position are still triangulated.
    ASSERT_EQ(M_GetHgtByLsd(kept, unclean), 1);
    EXPECT_EQ(kept.length(), 5);
    EXPECT_EQ(kept[0], given[0]);

    Pts cleaned = given;
    ASSERT_EQ(M_CalHgtByPtNoBar(cleaned, query), 1);
    ASSERT_EQ(cleaned.length(), 4);
    // Sorted, and of the close pair the later in sorted order kept.
    EXPECT_EQ(cleaned[0], AcGePoint3d(0, 10, 2));
    EXPECT_EQ(cleaned[1], AcGePoint3d(0.00002, 0.00002, 9));
    Pts metered = given;
    Pts query2 = {{5, 5, 0}};
    ASSERT_EQ(M_CalHgtByPt(metered, query2), 1);
    EXPECT_EQ(metered.length(), 4);
    EXPECT_EQ(query2[0].z, query[0].z);
}

TEST(TinBatch, NothingToWorkOn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Network {
        Pts pts;
        int asGiven, cleaned;
    };
    const Network networks[] = {
        {{}, 0, 0},
        {{{0, 0, 1}, {1, 1, 2}}, 0, 0},
        // One plan position twice: refused as given; cleaning removes the repeat.
        {{{0, 0, 1}, {1, 0, 2}, {0, 1, 3}, {1, 0, 4}}, 0, 1},
        {{{0, 0, 1}, {1, 0, 2}, {nan, 1, 3}}, 0, 0},
    };
    for (const Network& network : networks) {
        Pts pts = network.pts;
        Pts query = {{0.2, 0.2, 55}};
        EXPECT_EQ(M_GetHgtByLsd(pts, query), network.asGiven) << network.pts.length();
        EXPECT_EQ(query[0].z, 55);
        EXPECT_EQ(M_CalHgtByPtNoBar(pts, query), network.cleaned) << network.pts.length();
    }
    // No query points: nothing received a height.
    Pts pts = planePoints(10, 3);
    Pts none;
    EXPECT_EQ(M_GetHgtByLsd(pts, none), 0);
    // A query point that is not a number keeps the no-height mark.
    Pts query = {{nan, 5, 0}, {5, 5, 0}};
    EXPECT_EQ(M_GetHgtByLsd(pts, query), 1);
    EXPECT_EQ(query[0].z, -1);
}

// ---------------------------------------------------------------- meter

struct FakeProgress : qor::tin::Progress {
    std::wstring title;
    int count = -1, starts = 0, finishes = 0, breakAfter = -1;
    std::vector<int> positions;
    void start(const ACHAR* t, int c) override {
        title = t;
        count = c;
        ++starts;
    }
    void advance(int done) override { positions.push_back(done); }
    bool userBreak() override { return breakAfter >= 0 && int(positions.size()) >= breakAfter; }
    void finish() override { ++finishes; }
};

class TinMeter : public ::testing::Test {
protected:
    void SetUp() override { mOld = qor::tin::setBatchProgress(&meter); }
    void TearDown() override { qor::tin::setBatchProgress(mOld); }
    Pts grid(int n) {
        Pts q;
        for (int i = 0; i < n; ++i)
            q.append(AcGePoint3d(i % 97, (i / 97) % 97, 777));
        return q;
    }
    FakeProgress meter;

private:
    qor::tin::Progress* mOld = nullptr;
};

TEST_F(TinMeter, ShownAbove5000Points) {
    Pts pts = planePoints(200, 9);
    Pts query = grid(6000);
    ASSERT_EQ(M_CalHgtByPt(pts, query), 1);
    EXPECT_EQ(meter.title, L"正在处理");
    EXPECT_EQ(meter.count, 6000);
    EXPECT_EQ(meter.starts, 1);
    EXPECT_EQ(meter.finishes, 1);
    // Every 6000 / 200 = 30 points.
    ASSERT_EQ(meter.positions.size(), 199u);
    EXPECT_EQ(meter.positions.front(), 30);
    EXPECT_EQ(meter.positions.back(), 5970);
    EXPECT_NE(query.last().z, 777);
}

TEST_F(TinMeter, NotShownFor5000OrFewer) {
    Pts pts = planePoints(200, 9);
    Pts query = grid(4000);
    ASSERT_EQ(M_CalHgtByPt(pts, query), 1);
    Pts exactly = grid(5000);
    ASSERT_EQ(M_CalHgtByPt(pts, exactly), 1);
    EXPECT_EQ(meter.starts, 0);
    EXPECT_TRUE(meter.positions.empty());
    // The unmetered forms never report, whatever the count.
    Pts many = grid(6000);
    ASSERT_EQ(M_CalHgtByPtNoBar(pts, many), 1);
    EXPECT_EQ(meter.starts, 0);
}

TEST_F(TinMeter, BreakLeavesTheRestAsItWas) {
    Pts pts = planePoints(200, 9);
    Pts query = grid(6000);
    meter.breakAfter = 3;
    ASSERT_EQ(M_CalHgtByPt(pts, query), 1);
    ASSERT_EQ(meter.positions.size(), 3u);
    EXPECT_EQ(meter.finishes, 1);
    // Stopped at the third test, before point 90.
    EXPECT_NE(query[89].z, 777);
    EXPECT_NE(query[89].z, -1);
    for (int i = 90; i < query.length(); ++i)
        ASSERT_EQ(query[i].z, 777) << i;
}

// The default meter is the host's status bar, drawn here into a file instead of a terminal.
std::string statusBarOutput(int count) {
    std::FILE* out = std::tmpfile();
    qorSetProgressOutput(out, 80);
    Pts pts = planePoints(100, 5);
    Pts query;
    for (int i = 0; i < count; ++i)
        query.append(AcGePoint3d(i % 100, 50, 0));
    EXPECT_EQ(M_CalHgtByPt(pts, query), 1);
    qorSetProgressOutput(nullptr);
    std::string text(static_cast<size_t>(std::ftell(out)), '\0');
    std::rewind(out);
    text.resize(std::fread(text.data(), 1, text.size(), out));
    std::fclose(out);
    return text;
}

TEST(TinStatusBar, DrawsTheTitleAbove5000Points) {
    ASSERT_NE(qor::tin::batchProgress(), nullptr);
    const std::string shown = statusBarOutput(6000);
    EXPECT_EQ(shown.rfind("\r正在处理 [", 0), 0u) << shown.substr(0, 100);
    // The last advance is at 5,970 of 6,000; then the bar is taken down.
    const std::string end = " 99%\r\033[K";
    ASSERT_GE(shown.size(), end.size());
    EXPECT_EQ(shown.substr(shown.size() - end.size()), end);
    EXPECT_EQ(statusBarOutput(4000), "");
}

// The status bar's break test is the host's: a request made before the run stops it at the
// first test, after the first advance.
TEST(TinStatusBar, UserBreakStopsAtTheFirstTest) {
    ASSERT_NE(qor::tin::batchProgress(), nullptr);
    acedUsrBrk(); // nothing left over
    std::FILE* out = std::tmpfile();
    qorSetProgressOutput(out, 80);
    Pts pts = planePoints(100, 5);
    Pts query;
    for (int i = 0; i < 6000; ++i)
        query.append(AcGePoint3d(i % 100, 50, 777));
    qorRequestUserBreak();
    EXPECT_EQ(M_CalHgtByPt(pts, query), 1);
    qorSetProgressOutput(nullptr);
    std::fclose(out);
    // The first test comes at point 30 of 6,000.
    for (int i = 0; i < 30; ++i)
        EXPECT_NE(query[i].z, 777) << i;
    for (int i = 30; i < query.length(); ++i)
        ASSERT_EQ(query[i].z, 777) << i;
    // The run took the request.
    EXPECT_EQ(acedUsrBrk(), 0);
}

TEST(TinStatusBar, UnmeteredRunsLeaveABreakRequestPending) {
    acedUsrBrk();
    Pts pts = planePoints(100, 5);
    Pts query;
    for (int i = 0; i < 4000; ++i)
        query.append(AcGePoint3d(i % 100, 50, 777));
    qorRequestUserBreak();
    EXPECT_EQ(M_CalHgtByPt(pts, query), 1);
    EXPECT_NE(query.last().z, 777);
    Pts many = query;
    EXPECT_EQ(M_CalHgtByPtNoBar(pts, many), 1);
    EXPECT_EQ(acedUsrBrk(), 1);
}

} // namespace
