// The platform's growable array. Indices are int; out-of-range access is the caller's fault,
// as on the platform, but growth operations never leave uninitialised elements behind.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

template <class T> class AcArray {
public:
    AcArray() = default;
    explicit AcArray(int physicalLength, int growLength = 8) : mGrow(growLength) {
        mData.reserve(std::max(0, physicalLength));
    }
    AcArray(std::initializer_list<T> init) : mData(init) {}

    // Sizes
    int length() const { return static_cast<int>(mData.size()); }
    int logicalLength() const { return length(); }
    int physicalLength() const { return static_cast<int>(mData.capacity()); }
    int growLength() const { return mGrow; }
    bool isEmpty() const { return mData.empty(); }
    AcArray& setLogicalLength(int n) {
        mData.resize(static_cast<size_t>(std::max(0, n)));
        return *this;
    }
    AcArray& setPhysicalLength(int n) {
        n = std::max(0, n);
        if (n < length()) mData.resize(static_cast<size_t>(n));
        mData.shrink_to_fit();
        mData.reserve(static_cast<size_t>(n));
        return *this;
    }
    AcArray& setGrowLength(int n) {
        mGrow = n;
        return *this;
    }

    // Access
    T& operator[](int i) { return mData[static_cast<size_t>(i)]; }
    const T& operator[](int i) const { return mData[static_cast<size_t>(i)]; }
    T& at(int i) { return mData[static_cast<size_t>(i)]; }
    const T& at(int i) const { return mData[static_cast<size_t>(i)]; }
    AcArray& setAt(int i, const T& v) {
        mData[static_cast<size_t>(i)] = v;
        return *this;
    }
    T& first() { return mData.front(); }
    const T& first() const { return mData.front(); }
    T& last() { return mData.back(); }
    const T& last() const { return mData.back(); }
    T* asArrayPtr() { return mData.data(); }
    const T* asArrayPtr() const { return mData.data(); }

    // Growth. Returns the index of the new element.
    int append(const T& v) {
        mData.push_back(v);
        return length() - 1;
    }
    AcArray& append(const AcArray& other) {
        mData.insert(mData.end(), other.mData.begin(), other.mData.end());
        return *this;
    }
    // An index past the end grows the array with default values up to it.
    AcArray& insertAt(int index, const T& v) {
        if (index < 0) index = 0;
        if (index > length()) mData.resize(static_cast<size_t>(index));
        mData.insert(mData.begin() + index, v);
        return *this;
    }
    AcArray& removeAt(int index) {
        if (index >= 0 && index < length()) mData.erase(mData.begin() + index);
        return *this;
    }
    bool remove(const T& v, int start = 0) {
        int i = 0;
        if (!find(v, i, start)) return false;
        removeAt(i);
        return true;
    }
    AcArray& removeFirst() { return removeAt(0); }
    AcArray& removeLast() {
        if (!mData.empty()) mData.pop_back();
        return *this;
    }
    AcArray& removeAll() {
        mData.clear();
        return *this;
    }
    AcArray& removeSubArray(int start, int end) {
        start = std::max(0, start);
        end = std::min(end, length() - 1);
        if (start <= end) mData.erase(mData.begin() + start, mData.begin() + end + 1);
        return *this;
    }
    AcArray& setAll(const T& v) {
        std::fill(mData.begin(), mData.end(), v);
        return *this;
    }
    AcArray& reverse() {
        std::reverse(mData.begin(), mData.end());
        return *this;
    }
    AcArray& swap(int i, int j) {
        std::swap(mData[static_cast<size_t>(i)], mData[static_cast<size_t>(j)]);
        return *this;
    }

    // Search
    bool contains(const T& v, int start = 0) const {
        int i;
        return find(v, i, start);
    }
    bool find(const T& v, int& foundAt, int start = 0) const {
        for (int i = std::max(0, start); i < length(); ++i)
            if (mData[static_cast<size_t>(i)] == v) {
                foundAt = i;
                return true;
            }
        return false;
    }
    int find(const T& v) const {
        int i = -1;
        return find(v, i) ? i : -1;
    }

    bool operator==(const AcArray& o) const { return mData == o.mData; }
    bool operator!=(const AcArray& o) const { return !(*this == o); }

    // Iteration for range-for and standard algorithms.
    auto begin() { return mData.begin(); }
    auto end() { return mData.end(); }
    auto begin() const { return mData.begin(); }
    auto end() const { return mData.end(); }

    std::vector<T>& std() { return mData; }
    const std::vector<T>& std() const { return mData; }

private:
    std::vector<T> mData;
    int mGrow = 8;
};

#include "gebasic.h"
using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector2dArray = AcArray<AcGeVector2d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGeDoubleArray = AcArray<double>;
using AcGeIntArray = AcArray<int>;
