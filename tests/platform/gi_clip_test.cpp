// Clip outlines: what the drawing back-ends accept as a clip boundary.
#include "gi.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

struct ClipCase {
    std::string name;
    std::vector<AcGePoint2d> points;
    bool valid;
};

void PrintTo(const ClipCase& c, std::ostream* os) {
    *os << c.name;
}

class GiClipBoundary : public testing::TestWithParam<ClipCase> {};

TEST_P(GiClipBoundary, IsJudged) {
    AcGePoint2dArray pts;
    for (const AcGePoint2d& p : GetParam().points)
        pts.append(p);
    EXPECT_EQ(acgiIsValidClipBoundary(pts), GetParam().valid);
    // The verdict does not depend on the direction the outline runs.
    pts.reverse();
    EXPECT_EQ(acgiIsValidClipBoundary(pts), GetParam().valid);
}

const double kNaN = std::nan("");

INSTANTIATE_TEST_SUITE_P(
    Outlines, GiClipBoundary,
    testing::Values(ClipCase{"square", {{0, 0}, {4, 0}, {4, 4}, {0, 4}}, true},
                    ClipCase{"square_closed_by_repeating_the_first_point",
                             {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}},
                             true},
                    ClipCase{"triangle", {{0, 0}, {4, 0}, {2, 3}}, true},
                    ClipCase{"concave_outline", {{0, 0}, {6, 0}, {6, 6}, {3, 2}, {0, 6}}, true},
                    ClipCase{
                        "straight_through_vertex", {{0, 0}, {2, 0}, {4, 0}, {4, 4}, {0, 4}}, true},
                    ClipCase{"bow_tie", {{0, 0}, {4, 4}, {4, 0}, {0, 4}}, false},
                    ClipCase{"repeated_point", {{0, 0}, {4, 0}, {4, 0}, {4, 4}, {0, 4}}, false},
                    ClipCase{"figure_eight_through_one_point",
                             {{0, 0}, {2, 2}, {4, 0}, {4, 4}, {2, 2}, {0, 4}},
                             false},
                    ClipCase{"collinear_spike", {{0, 0}, {6, 0}, {4, 0}, {4, 4}, {0, 4}}, false},
                    ClipCase{"spike_out_and_back",
                             {{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 7}, {2, 4.5}, {0, 4}},
                             false},
                    ClipCase{"vertex_touching_a_far_edge",
                             {{0, 0}, {4, 0}, {4, 4}, {3, 4}, {2, 0}, {1, 4}, {0, 4}},
                             false},
                    ClipCase{"vertex_just_clear_of_a_far_edge",
                             {{0, 0}, {4, 0}, {4, 4}, {3, 4}, {2, 0.5}, {1, 4}, {0, 4}},
                             true},
                    ClipCase{"all_on_one_line", {{0, 0}, {1, 0}, {2, 0}}, false},
                    ClipCase{"two_points", {{0, 0}, {4, 4}}, false},
                    ClipCase{"two_points_closed", {{0, 0}, {4, 4}, {0, 0}}, false},
                    ClipCase{"nothing", {}, false},
                    ClipCase{"not_a_number", {{0, 0}, {4, 0}, {kNaN, 4}, {0, 4}}, false}),
    [](const testing::TestParamInfo<ClipCase>& info) { return info.param.name; });

} // namespace
