// Sorting and searching integer lists; reversing and counting face lists.
#include "toolkit/geometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Ints = AcArray<int>;

TEST(GeometryQuickSort, SortsAscending) {
    std::mt19937 rng(42);
    std::uniform_int_distribution<int> small(0, 50);
    Ints random, organPipe;
    for (int i = 0; i < 20000; ++i)
        random.append(small(rng));
    // Rising then falling: a bad case for middle pivots, which must not run out of stack.
    for (int i = 0; i < 100000; ++i)
        organPipe.append(i < 50000 ? i : 100000 - i);
    for (Ints a : {Ints{}, Ints{4}, Ints{2, 1}, Ints{3, 3, 3}, Ints{0, -5, 7, -5, 2, -100}, random,
                   organPipe}) {
        std::vector<int> expected = a.std();
        std::sort(expected.begin(), expected.end());
        M_QuickSort(a);
        EXPECT_EQ(a.std(), expected);
    }
}

TEST(GeometryQuickSearch, FindsKeysInAscendingLists) {
    const Ints a = {-4, 0, 3, 8, 8, 8, 15, 21};
    EXPECT_EQ(M_QuickSearch(Ints{}, 3), -1);
    EXPECT_EQ(M_QuickSearch(a, -4), 0);
    EXPECT_EQ(M_QuickSearch(a, 21), 7);
    EXPECT_EQ(M_QuickSearch(a, 3), 2);
    EXPECT_EQ(M_QuickSearch(a, 15), 6);
    EXPECT_EQ(M_QuickSearch(a, 9), -1);
    EXPECT_EQ(M_QuickSearch(a, -10), -1);
    EXPECT_EQ(M_QuickSearch(a, 99), -1);
    const int dup = M_QuickSearch(a, 8);
    ASSERT_GE(dup, 3);
    ASSERT_LE(dup, 5);
    // Index 0 is looked at first, so an unsorted head can still be found.
    EXPECT_EQ(M_QuickSearch(Ints{9, 1, 2}, 9), 0);
}

TEST(GeometryFaces, ReverseEveryRecord) {
    const struct {
        const char* name;
        Ints faces, expected;
    } cases[] = {
        {"two faces", {3, 0, 1, 2, 4, 5, 6, 7, 8}, {3, 2, 1, 0, 4, 8, 7, 6, 5}},
        {"empty face kept", {0, 3, 1, 2, 3}, {0, 3, 3, 2, 1}},
        {"nothing", {}, {}},
        // A hole's negative count stops the walk: it cannot be stepped over as stored.
        {"stops at a hole",
         {3, 0, 1, 2, -3, 3, 4, 5, 3, 6, 7, 8},
         {3, 2, 1, 0, -3, 3, 4, 5, 3, 6, 7, 8}},
        // A record running past the end is left alone.
        {"truncated record", {2, 0, 1, 5, 2, 3}, {2, 1, 0, 5, 2, 3}},
    };
    for (const auto& c : cases) {
        Ints faces = c.faces;
        M_ReverseFaces(faces);
        EXPECT_EQ(faces.std(), c.expected.std()) << c.name;
    }
}

TEST(GeometryFaces, EdgeCountAddsTheAbsoluteCounts) {
    EXPECT_EQ(M_GetEdgeCount(Ints{}), 0);
    EXPECT_EQ(M_GetEdgeCount(Ints{3, 0, 1, 2}), 3);
    // A square face with a triangular hole.
    EXPECT_EQ(M_GetEdgeCount(Ints{4, 0, 1, 2, 3, -3, 4, 5, 6}), 7);
    EXPECT_EQ(M_GetEdgeCount(Ints{3, 0, 1, 2, 4, 3, 4, 5, 6}), 7);
}

} // namespace
