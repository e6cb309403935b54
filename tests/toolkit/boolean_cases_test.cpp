// Polygon booleans as "A, B, op, expected loops": one small case each.
//
// Loops are written as point lists separated by '|'. A closed loop repeats its first point at
// the end, as the engine emits it; it is compared regardless of where it starts and which way
// it runs. An open chain is compared either way round. An empty expectation means the result
// is 0 with nothing emitted.
#include "toolkit/boolean.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Pts2 = AcArray<AcGePoint2d>;
using Key = std::vector<std::pair<long long, long long>>;

Pts2 parsePoints(const std::string& text) {
    Pts2 pts;
    std::stringstream items(text);
    std::string item;
    while (std::getline(items, item, ',')) {
        std::stringstream xy(item);
        double x = 0, y = 0;
        if (xy >> x >> y) pts.append(AcGePoint2d(x, y));
    }
    return pts;
}

// A loop as integers in micro-units, in a form that does not depend on where a closed loop
// starts or which way either kind runs.
Key canonical(std::vector<AcGePoint2d> pts) {
    const bool closed = pts.size() > 2 && pts.front().distanceTo(pts.back()) < 1e-9;
    if (closed) pts.pop_back();
    Key key;
    for (const AcGePoint2d& p : pts)
        key.emplace_back(std::llround(p.x * 1e6), std::llround(p.y * 1e6));
    Key best;
    const auto consider = [&](const Key& k) {
        if (best.empty() || k < best) best = k;
    };
    for (int dir = 0; dir < 2; ++dir) {
        if (closed)
            for (size_t r = 0; r < key.size(); ++r) {
                Key k(key.begin() + static_cast<std::ptrdiff_t>(r), key.end());
                k.insert(k.end(), key.begin(), key.begin() + static_cast<std::ptrdiff_t>(r));
                consider(k);
            }
        else
            consider(key);
        std::reverse(key.begin(), key.end());
    }
    // Mark the kind so that a closed loop never equals an open chain.
    best.emplace_back(closed ? 1 : 0, -1);
    return best;
}

std::vector<Key> expectedLoops(const std::string& text) {
    std::vector<Key> loops;
    std::stringstream parts(text);
    std::string part;
    while (std::getline(parts, part, '|')) {
        const Pts2 pts = parsePoints(part);
        if (pts.length() > 0) loops.push_back(canonical(pts.std()));
    }
    std::sort(loops.begin(), loops.end());
    return loops;
}

std::vector<Key> resultLoops(const AcArray<int>& counts, const Pts2& pts) {
    std::vector<Key> loops;
    for (int at = 0; at < counts.length(); at += counts[at] + 1) {
        std::vector<AcGePoint2d> loop;
        for (int k = 1; k <= counts[at]; ++k)
            loop.push_back(pts[counts[at + k]]);
        loops.push_back(canonical(loop));
    }
    std::sort(loops.begin(), loops.end());
    return loops;
}

std::string show(const std::vector<Key>& loops) {
    std::string out;
    for (const Key& k : loops) {
        out += k.back().first ? "closed:" : "open:";
        for (size_t i = 0; i + 1 < k.size(); ++i)
            out += " " + std::to_string(k[i].first / 1e6) + " " + std::to_string(k[i].second / 1e6);
        out += "\n";
    }
    return out;
}

struct Case {
    const char* name;
    const char* a;
    const char* b;
    int op;
    const char* expected;
};

constexpr int kUnion = 0, kIntersection = 1, kDifference = 2;

const char* const kSquare4 = "0 0, 4 0, 4 4, 0 4";
const char* const kSquare2 = "0 0, 2 0, 2 2, 0 2";
const char* const kDiamond = "1 -0.5, 2.5 1, 1 2.5, -0.5 1";
// Touches the square's corner (4, 4) with its long side.
const char* const kTriangle = "2 2, 6 2, 2 6";

const Case kCases[] = {
    // Overlapping corners.
    {"corners, union", kSquare2, "1 1, 3 1, 3 3, 1 3", kUnion,
     "0 0, 2 0, 2 1, 3 1, 3 3, 1 3, 1 2, 0 2, 0 0"},
    {"corners, intersection", kSquare2, "1 1, 3 1, 3 3, 1 3", kIntersection,
     "1 1, 2 1, 2 2, 1 2, 1 1"},
    {"corners, difference", kSquare2, "1 1, 3 1, 3 3, 1 3", kDifference,
     "0 0, 2 0, 2 1, 1 1, 1 2, 0 2, 0 0"},
    {"corners, clockwise operands", "0 2, 2 2, 2 0, 0 0", "1 3, 3 3, 3 1, 1 1", kDifference,
     "0 0, 2 0, 2 1, 1 1, 1 2, 0 2, 0 0"},
    {"corners, doubled vertex", "0 0, 2 0, 2 0.00005, 2 2, 0 2", "1 1, 3 1, 3 3, 1 3",
     kIntersection, "1 1, 2 1, 2 2, 1 2, 1 1"},

    // Every side of the square crosses the diamond twice.
    {"diamond, union", kSquare2, kDiamond, kUnion,
     "0 0, 0.5 0, 1 -0.5, 1.5 0, 2 0, 2 0.5, 2.5 1, 2 1.5, 2 2, 1.5 2, 1 2.5, 0.5 2, 0 2, "
     "0 1.5, -0.5 1, 0 0.5, 0 0"},
    {"diamond, intersection", kSquare2, kDiamond, kIntersection,
     "0.5 0, 1.5 0, 2 0.5, 2 1.5, 1.5 2, 0.5 2, 0 1.5, 0 0.5, 0.5 0"},
    {"diamond, difference leaves the corners", kSquare2, kDiamond, kDifference,
     "0 0, 0.5 0, 0 0.5, 0 0 | 2 0, 2 0.5, 1.5 0, 2 0 | 2 2, 1.5 2, 2 1.5, 2 2 | "
     "0 2, 0 1.5, 0.5 2, 0 2"},
    {"diamond, reversed difference leaves the tips", kDiamond, kSquare2, kDifference,
     "1 -0.5, 1.5 0, 0.5 0, 1 -0.5 | 2.5 1, 2 1.5, 2 0.5, 2.5 1 | 1 2.5, 0.5 2, 1.5 2, 1 2.5 | "
     "-0.5 1, 0 0.5, 0 1.5, -0.5 1"},

    // A side through a vertex of the other polygon.
    {"corner on a side, union", kSquare4, kTriangle, kUnion,
     "0 0, 4 0, 4 2, 6 2, 4 4, 2 6, 2 4, 0 4, 0 0"},
    {"corner on a side, intersection", kSquare4, kTriangle, kIntersection,
     "2 2, 4 2, 4 4, 2 4, 2 2"},
    {"corner on a side, difference", kSquare4, kTriangle, kDifference,
     "0 0, 4 0, 4 2, 2 2, 2 4, 0 4, 0 0"},
    // Two triangles meeting at (4, 4) come out as one loop through that point twice.
    {"corner on a side, reversed difference", kTriangle, kSquare4, kDifference,
     "4 4, 4 2, 6 2, 4 4, 2 6, 2 4, 4 4"},

    // A bar across a bar.
    {"cross, union", "0 0, 4 0, 4 1, 0 1", "1 -1, 2 -1, 2 2, 1 2", kUnion,
     "0 0, 1 0, 1 -1, 2 -1, 2 0, 4 0, 4 1, 2 1, 2 2, 1 2, 1 1, 0 1, 0 0"},
    {"cross, intersection", "0 0, 4 0, 4 1, 0 1", "1 -1, 2 -1, 2 2, 1 2", kIntersection,
     "1 0, 2 0, 2 1, 1 1, 1 0"},
    {"cross, difference cuts in two", "0 0, 4 0, 4 1, 0 1", "1 -1, 2 -1, 2 2, 1 2", kDifference,
     "0 0, 1 0, 1 1, 0 1, 0 0 | 2 0, 4 0, 4 1, 2 1, 2 0"},

    // One inside the other (the intersection and the apart cases are checked point by point
    // elsewhere).
    {"inner, union", kSquare4, "1 1, 2 1, 2 2, 1 2", kUnion, "0 0, 4 0, 4 4, 0 4, 0 0"},
    {"inner, difference keeps the hole as a loop", kSquare4, "1 1, 2 1, 2 2, 1 2", kDifference,
     "0 0, 4 0, 4 4, 0 4, 0 0 | 1 1, 2 1, 2 2, 1 2, 1 1"},
    {"outer minus nothing of it", "1 1, 2 1, 2 2, 1 2", kSquare4, kDifference, ""},

    // Equal polygons: every side is shared.
    {"equal, union", kSquare2, kSquare2, kUnion, "0 0, 2 0, 2 2, 0 2, 0 0"},
    {"equal, intersection", kSquare2, "2 0, 2 2, 0 2, 0 0", kIntersection,
     "0 0, 2 0, 2 2, 0 2, 0 0"},
    {"equal, difference", kSquare2, kSquare2, kDifference, ""},

    // Shared stretches of boundary: kept once, from the pass over A, in a union or an
    // intersection; kept by neither pass in a difference, which leaves the chain open.
    {"touching squares, intersection is the shared side", kSquare2, "2 0, 4 0, 4 2, 2 2",
     kIntersection, "2 0, 2 2"},
    {"half a side shared, union", kSquare2, "2 1, 4 1, 4 3, 2 3", kUnion,
     "0 0, 2 0, 2 1, 2 2, 0 2, 0 0 | 2 1, 4 1, 4 3, 2 3, 2 2"},
    {"half a side shared, intersection", kSquare2, "2 1, 4 1, 4 3, 2 3", kIntersection, "2 1, 2 2"},
    {"half a side shared, difference", kSquare2, "2 1, 4 1, 4 3, 2 3", kDifference,
     "2 2, 0 2, 0 0, 2 0, 2 1"},
    {"square in the notch of an L, union", "0 0, 2 0, 2 1, 1 1, 1 2, 0 2", "1 1, 2 1, 2 2, 1 2",
     kUnion, "0 0, 2 0, 2 1, 1 1, 1 2, 0 2, 0 0 | 2 1, 2 2, 1 2"},
    {"square in the notch of an L, difference", "0 0, 2 0, 2 1, 1 1, 1 2, 0 2",
     "1 1, 2 1, 2 2, 1 2", kDifference, "2 1, 2 0, 0 0, 0 2, 1 2"},

    // B's side from A's corner (0, 0) to a point on A's right side runs inside A's boundary
    // band (its middle subtends within 1e-4 of a half turn) without being collinear: the pass
    // over B in a union keeps such a piece only when its middle is outside, so it is dropped,
    // and B's remaining sides hang off A's outline as one chain.
    {"side inside the boundary band, union", "0 0, 10 0, 10 10, 0 10", "0 0, 10 0.0003, 5 -5",
     kUnion, "0 0, 9.9997 0, 10 0, 10 0.0003, 10 10, 0 10, 0 0, 5 -5, 9.9997 0"},
    // The same piece is not kept by the intersection's pass over B either, nor by the
    // difference's, whose sliver then stays open at (0, 0).
    {"side inside the boundary band, intersection", "0 0, 10 0, 10 10, 0 10",
     "0 0, 10 0.0003, 5 -5", kIntersection, "0 0, 9.9997 0, 10 0.0003"},
    {"side inside the boundary band, difference", "0 0, 10 0, 10 10, 0 10", "0 0, 10 0.0003, 5 -5",
     kDifference, "10 0.0003, 9.9997 0, 10 0, 10 0.0003, 10 10, 0 10, 0 0"},

    // A polygon without area, along the bottom of a square and beyond it.
    {"flat polygon, union", "0 0, 4 0, 2 0", "0 0, 1 0, 1 1, 0 1", kUnion,
     "0 0, 1 0, 4 0, 2 0, 1 0, 1 1, 0 1, 0 0"},
    {"flat polygon, intersection", "0 0, 4 0, 2 0", "0 0, 1 0, 1 1, 0 1", kIntersection,
     "0 0, 1 0"},
    {"flat polygon, difference", "0 0, 4 0, 2 0", "0 0, 1 0, 1 1, 0 1", kDifference,
     "1 0, 4 0, 2 0, 1 0"},
};

TEST(BooleanCases, AopBGivesTheExpectedLoops) {
    for (const Case& c : kCases) {
        AcArray<int> counts;
        Pts2 pts;
        const int result = M_BooleanOper(parsePoints(c.a), parsePoints(c.b), c.op, counts, pts);
        const std::vector<Key> expected = expectedLoops(c.expected);
        EXPECT_EQ(result, expected.empty() ? 0 : 1) << c.name;
        const std::vector<Key> got = resultLoops(counts, pts);
        EXPECT_EQ(got, expected) << c.name << "\ngot:\n"
                                 << show(got) << "expected:\n"
                                 << show(expected);
    }
}

} // namespace
