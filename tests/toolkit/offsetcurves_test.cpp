// The exported offset function: its guards, the move to the origin, and the accuracy of the
// polyline offset behind it on a long curve of mixed lines and arcs.
#include "gecurves.h"
#include "toolkit/offsetcurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

std::vector<std::unique_ptr<AcDbCurve>> offsets(const AcDbCurve& c, double d, int& result) {
    AcArray<void*> out;
    result = M_GetOffsetCurves(&c, d, out);
    std::vector<std::unique_ptr<AcDbCurve>> owned;
    for (void* p : out)
        owned.emplace_back(static_cast<AcDbCurve*>(p));
    return owned;
}

// A wave of 1,000 vertices along x: every third segment an arc, bending either way.
std::unique_ptr<AcDbPolyline> wave(const AcGePoint2d& origin) {
    auto pl = std::make_unique<AcDbPolyline>();
    for (unsigned i = 0; i < 1000; ++i) {
        const double bulge = i % 3 == 1 ? (i % 2 ? 0.05 : -0.05) : 0.0;
        pl->addVertexAt(i, origin + AcGeVector2d(i * 1.0, 5.0 * std::sin(2.0 * kPi * i / 40.0)),
                        bulge);
    }
    return pl;
}

// The segments of an open polyline as geometric curves.
std::vector<std::unique_ptr<AcGeCurve2d>> segmentsOf(const AcDbPolyline& pl) {
    std::vector<std::unique_ptr<AcGeCurve2d>> out;
    for (unsigned i = 0; i + 1 < pl.numVerts(); ++i) {
        if (pl.segType(i) == AcDbPolyline::kArc) {
            auto arc = std::make_unique<AcGeCircArc2d>();
            pl.getArcSegAt(i, *arc);
            out.push_back(std::move(arc));
        } else {
            auto seg = std::make_unique<AcGeLineSeg2d>();
            pl.getLineSegAt(i, *seg);
            out.push_back(std::move(seg));
        }
    }
    return out;
}

} // namespace

TEST(OffsetCurves, GuardsAndTheZeroDistance) {
    int result = -1;
    AcDbLine tiny(AcGePoint3d(1, 1, 0), AcGePoint3d(1.0005, 1, 0));
    EXPECT_EQ(M_IsNotZeroLength(&tiny), 0);
    EXPECT_TRUE(offsets(tiny, 1.0, result).empty());
    EXPECT_EQ(result, 0);
    EXPECT_EQ(M_IsNotZeroLength(nullptr), 0);
    AcDbPolyline empty;
    EXPECT_EQ(M_IsNotZeroLength(&empty), 0);

    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
    EXPECT_EQ(M_IsNotZeroLength(&line), 1);
    auto zero = offsets(line, 0.0, result);
    ASSERT_EQ(result, 1);
    ASSERT_EQ(zero.size(), 1u);
    AcGePoint3d start;
    zero[0]->getStartPoint(start);
    EXPECT_NEAR(start.y, -0.0001, 1e-15) << "distance 0 offsets by 0.0001";

    // A failing offset (an arc shrunk past its centre) appends nothing.
    AcDbArc arc(AcGePoint3d(0, 0, 0), 1.0, 0.0, kPi);
    EXPECT_TRUE(offsets(arc, -2.0, result).empty());
    EXPECT_EQ(result, 0);
}

TEST(OffsetCurves, CurvesFarFromTheOriginComeBackInPlace) {
    int result = 0;
    AcDbCircle circle(AcGePoint3d(1e6, -2e6, 5), AcGeVector3d(0, 0, 1), 2.0);
    auto out = offsets(circle, 0.5, result);
    ASSERT_EQ(out.size(), 1u);
    auto* grown = AcDbCircle::cast(out[0].get());
    ASSERT_NE(grown, nullptr);
    EXPECT_EQ(grown->center(), AcGePoint3d(1e6, -2e6, 5));
    EXPECT_DOUBLE_EQ(grown->radius(), 2.5);

    auto pl = wave(AcGePoint2d(3e5, 7e5));
    out = offsets(*pl, 1.0, result);
    ASSERT_EQ(out.size(), 1u);
    AcGePoint3d s;
    out[0]->getStartPoint(s);
    // The first segment rises; its right side is below and ahead of the start.
    const AcGeVector2d dir =
        (AcGePoint2d(3e5 + 1, 7e5 + 5 * std::sin(2 * kPi / 40)) - AcGePoint2d(3e5, 7e5)).normal();
    EXPECT_NEAR(s.x, 3e5 + dir.y, 1e-9);
    EXPECT_NEAR(s.y, 7e5 - dir.x, 1e-9);
}

// Every sampled point of the offset lies at the offset distance from the original where its
// nearest original point is inside a segment, and never nearer anywhere (corners are mitred).
TEST(OffsetCurves, LongMixedPolylineIsOffsetExactlyAtTenDistances) {
    auto pl = wave(AcGePoint2d(0, 0));
    const auto source = segmentsOf(*pl);
    ASSERT_EQ(source.size(), 999u);
    for (double d : {0.1, -0.1, 0.5, -0.5, 1.0, -1.0, 2.0, -2.0, 3.0, -3.0}) {
        int result = 0;
        auto out = offsets(*pl, d, result);
        ASSERT_EQ(out.size(), 1u) << d;
        const auto* off = AcDbPolyline::cast(out[0].get());
        ASSERT_NE(off, nullptr);
        const auto sides = segmentsOf(*off);
        ASSERT_EQ(sides.size(), off->numVerts() - 1);
        const double tol = 1e-9 * std::max(1.0, std::fabs(d));
        int exact = 0, samples = 0;
        for (unsigned k = 0; k + 1 < off->numVerts(); ++k) {
            AcGeInterval span;
            sides[k]->getInterval(span);
            for (double f : {0.25, 0.5, 0.75}) {
                const AcGePoint2d p = sides[k]->evalPoint(span.lowerBound() + f * span.length());
                // The wave runs along x: only segments a few units away can be nearest.
                const int near = static_cast<int>(std::lround(p.x));
                double best = 1e300;
                AcGePoint2d foot;
                for (int i = std::max(0, near - 6); i < std::min<int>(source.size(), near + 6);
                     ++i) {
                    const AcGePoint2d q = source[i]->closestPointTo(p);
                    if (q.distanceTo(p) < best) best = q.distanceTo(p), foot = q;
                }
                ++samples;
                ASSERT_GE(best, std::fabs(d) - tol) << "d " << d << " at " << k + f;
                AcGePoint2d vertex;
                pl->getPointAt(static_cast<unsigned>(std::lround(foot.x)), vertex);
                if (foot.distanceTo(vertex) > 1e-6) {
                    EXPECT_NEAR(best, std::fabs(d), tol) << "d " << d << " at " << k + f;
                    ++exact;
                }
            }
        }
        EXPECT_GT(exact, samples * 9 / 10) << d;
    }
}
