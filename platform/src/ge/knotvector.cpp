// Knot vectors: a non-decreasing list of parameters with a tolerance for telling them apart.
#include "genurbs.h"

#include <algorithm>
#include <cmath>

AcGeKnotVector::AcGeKnotVector(int size, const double knots[], double tol) : mTol(tol) {
    set(size, knots, tol);
}

AcGeKnotVector::AcGeKnotVector(const AcGeDoubleArray& knots, double tol)
    : mKnots(knots), mTol(tol) {}

AcGeKnotVector& AcGeKnotVector::set(int size, const double knots[], double tol) {
    mTol = tol;
    mKnots.removeAll();
    for (int i = 0; knots && i < size; ++i)
        mKnots.append(knots[i]);
    return *this;
}

bool AcGeKnotVector::isEqualTo(const AcGeKnotVector& other) const {
    if (other.length() != length()) return false;
    for (int i = 0; i < length(); ++i)
        if (std::fabs(mKnots[i] - other.mKnots[i]) > mTol) return false;
    return true;
}

int AcGeKnotVector::multiplicityAt(int i) const {
    if (i < 0 || i >= length()) return 0;
    return multiplicityAt(mKnots[i]);
}

int AcGeKnotVector::multiplicityAt(double param) const {
    return static_cast<int>(std::count_if(mKnots.begin(), mKnots.end(),
                                          [&](double k) { return std::fabs(k - param) <= mTol; }));
}

int AcGeKnotVector::numIntervals() const {
    AcGeDoubleArray d;
    getDistinctKnots(d);
    return std::max(0, d.length() - 1);
}

AcGeKnotVector& AcGeKnotVector::setTolerance(double tol) {
    mTol = tol;
    return *this;
}

bool AcGeKnotVector::contains(double param) const {
    return !isEmpty() && param >= startParam() - mTol && param <= endParam() + mTol;
}

bool AcGeKnotVector::isOn(double knot) const {
    return multiplicityAt(knot) > 0;
}

int AcGeKnotVector::getIndex(double param) const {
    int found = -1;
    for (int i = 0; i < length(); ++i)
        if (mKnots[i] <= param + mTol) found = i;
    return found;
}

void AcGeKnotVector::getDistinctKnots(AcGeDoubleArray& knots) const {
    knots.removeAll();
    for (double k : mKnots)
        if (knots.isEmpty() || k - knots.last() > mTol) knots.append(k);
}

AcGeKnotVector& AcGeKnotVector::setLogicalLength(int n) {
    mKnots.setLogicalLength(n);
    return *this;
}

AcGeKnotVector& AcGeKnotVector::append(double knot) {
    mKnots.append(knot);
    return *this;
}

AcGeKnotVector& AcGeKnotVector::insertAt(int i, double knot, int multiplicity) {
    i = std::clamp(i, 0, length());
    for (int k = 0; k < multiplicity; ++k)
        mKnots.insertAt(i, knot);
    return *this;
}

AcGeKnotVector& AcGeKnotVector::removeAt(int i) {
    mKnots.removeAt(i);
    return *this;
}

AcGeKnotVector& AcGeKnotVector::removeSubVector(int startIndex, int endIndex) {
    mKnots.removeSubArray(startIndex, endIndex);
    return *this;
}

AcGeKnotVector& AcGeKnotVector::reverse() {
    // Mirrored within the same range, so that the vector stays non-decreasing.
    const double sum = startParam() + endParam();
    mKnots.reverse();
    for (double& k : mKnots)
        k = sum - k;
    return *this;
}

AcGeKnotVector& AcGeKnotVector::setRange(double lower, double upper) {
    const double a = startParam(), b = endParam();
    if (isEmpty() || !(b > a) || !(upper > lower)) return *this;
    for (double& k : mKnots)
        k = lower + (k - a) * (upper - lower) / (b - a);
    mKnots.first() = lower;
    mKnots.last() = upper;
    return *this;
}
