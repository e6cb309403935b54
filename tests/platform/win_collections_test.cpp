// The MFC arrays: growth, insertion past the end, counted removal and index errors.
#include "winstr.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::wstring> items(const CStringArray& a) {
    std::vector<std::wstring> v;
    for (INT_PTR i = 0; i < a.GetSize(); ++i)
        v.push_back(a[i].str());
    return v;
}

using Texts = std::vector<std::wstring>;

TEST(WinCollections, AddAppendAndCopy) {
    CStringArray a;
    EXPECT_TRUE(a.IsEmpty());
    EXPECT_EQ(a.GetUpperBound(), -1);
    EXPECT_EQ(a.Add(L"甲"), 0);
    EXPECT_EQ(a.Add(CString(L"乙")), 1);
    EXPECT_EQ(a.GetCount(), 2);
    EXPECT_EQ(a.GetUpperBound(), 1);

    CStringArray b;
    b.Add(L"丙");
    EXPECT_EQ(a.Append(b), 2); // index of the first appended element
    EXPECT_EQ(items(a), (Texts{L"甲", L"乙", L"丙"}));
    EXPECT_EQ(a.Append(a), 3); // appending to itself doubles
    EXPECT_EQ(items(a), (Texts{L"甲", L"乙", L"丙", L"甲", L"乙", L"丙"}));

    b.Copy(a);
    EXPECT_EQ(items(b), items(a));
    b.Copy(b);
    EXPECT_EQ(b.GetSize(), 6);
    a.RemoveAll();
    EXPECT_TRUE(a.IsEmpty());
    EXPECT_EQ(b.GetSize(), 6);
}

TEST(WinCollections, InsertAtPastTheEndGrowsWithDefaults) {
    CStringArray a;
    a.Add(L"a");
    a.Add(L"b");
    a.InsertAt(5, L"x");
    EXPECT_EQ(items(a), (Texts{L"a", L"b", L"", L"", L"", L"x"}));
    a.InsertAt(1, L"y", 2);
    EXPECT_EQ(items(a), (Texts{L"a", L"y", L"y", L"b", L"", L"", L"", L"x"}));
    a.InsertAt(a.GetSize(), L"z", 2); // at the end: appended
    EXPECT_EQ(a.GetSize(), 10);
    EXPECT_EQ(a[9], L"z");
    // Invalid requests leave the array as it was.
    a.InsertAt(-1, L"bad");
    a.InsertAt(0, L"bad", 0);
    EXPECT_EQ(a.GetSize(), 10);

    CDWordArray n;
    n.InsertAt(3, 7u, 2);
    EXPECT_EQ(n.GetSize(), 5);
    EXPECT_EQ(n[0] + n[1] + n[2], 0u);
    EXPECT_EQ(n[3], 7u);
    EXPECT_EQ(n[4], 7u);

    CStringArray whole;
    whole.Add(L"p");
    whole.Add(L"q");
    CStringArray target;
    target.Add(L"1");
    target.Add(L"2");
    target.InsertAt(1, &whole);
    EXPECT_EQ(items(target), (Texts{L"1", L"p", L"q", L"2"}));
    target.InsertAt(0, &target);
    EXPECT_EQ(items(target), (Texts{L"1", L"p", L"q", L"2", L"1", L"p", L"q", L"2"}));
}

TEST(WinCollections, RemoveAtTakesACountAndRefusesARangePastTheEnd) {
    CUIntArray a;
    for (UINT i = 0; i < 6; ++i)
        a.Add(i);
    a.RemoveAt(1, 3);
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_EQ(a[0], 0u);
    EXPECT_EQ(a[1], 4u);
    EXPECT_EQ(a[2], 5u);
    a.RemoveAt(2);
    EXPECT_EQ(a.GetSize(), 2);
    a.RemoveAt(1, 2); // past the end: nothing removed
    a.RemoveAt(-1);
    a.RemoveAt(5);
    a.RemoveAt(0, -1);
    EXPECT_EQ(a.GetSize(), 2);
    a.RemoveAt(0, 0);
    EXPECT_EQ(a.GetSize(), 2);
    a.RemoveAt(0, 2);
    EXPECT_TRUE(a.IsEmpty());
}

TEST(WinCollections, SetAtGrowAndSetSizeFillWithZeros) {
    CByteArray bytes;
    bytes.SetAtGrow(3, 9);
    ASSERT_EQ(bytes.GetSize(), 4);
    EXPECT_EQ(bytes[0] | bytes[1] | bytes[2], 0);
    EXPECT_EQ(bytes[3], 9);
    bytes.SetAtGrow(1, 5);
    EXPECT_EQ(bytes.GetSize(), 4);
    EXPECT_EQ(bytes[1], 5);
    bytes.SetAtGrow(-1, 5);
    EXPECT_EQ(bytes.GetSize(), 4);

    CPtrArray ptrs;
    ptrs.SetSize(3);
    EXPECT_EQ(ptrs[0], nullptr);
    EXPECT_EQ(ptrs[2], nullptr);
    int x = 0;
    ptrs.SetAt(1, &x);
    ptrs.SetAt(3, &x); // out of range: ignored
    EXPECT_EQ(ptrs.GetAt(1), &x);
    EXPECT_EQ(ptrs.GetSize(), 3);
    ptrs.SetSize(1);
    EXPECT_EQ(ptrs.GetSize(), 1);
    ptrs.SetSize(-1);
    EXPECT_EQ(ptrs.GetSize(), 1);

    CDWordArray d;
    d.SetSize(2);
    d.SetSize(4, 16);
    EXPECT_EQ(d[3], 0u);
}

TEST(WinCollections, OutOfRangeAccessNeverTouchesMemoryOutsideTheArray) {
    CStringArray a;
    a.Add(L"only");
    const CStringArray& ca = a;
    EXPECT_TRUE(ca[5].IsEmpty());
    EXPECT_TRUE(ca.GetAt(-1).IsEmpty());
    a[7] = L"lost"; // goes nowhere
    a.ElementAt(-2) = L"lost";
    EXPECT_EQ(a.GetSize(), 1);
    EXPECT_TRUE(a[7].IsEmpty());
    EXPECT_TRUE(ca[7].IsEmpty());
    a.ElementAt(0) += L"!";
    EXPECT_EQ(a[0], L"only!");
}

TEST(WinCollections, ElementsOfTheArrayCanBeAddedToIt) {
    // The element is copied before the array grows and moves it.
    CStringArray a;
    a.Add(L"first element, long enough to live on the heap");
    for (int i = 0; i < 40; ++i)
        a.Add(a[0]);
    a.SetAtGrow(100, a[0]);
    a.InsertAt(200, a[0], 3);
    a.InsertAt(0, a[0], 50);
    EXPECT_EQ(a.GetSize(), 253);
    EXPECT_EQ(a[252], a[0]);
    EXPECT_EQ(a[90], a[0]);
    EXPECT_TRUE(a[140].IsEmpty());
}

} // namespace
