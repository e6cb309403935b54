// Intervals and the plane curves: lines, segments and circular arcs.
#include "gecurves.h"

#include "geangles.h"

#include <algorithm>
#include <limits>
#include <utility>

using geimpl::cross2d;
using geimpl::kAngleTol;
using geimpl::kTwoPi;
using geimpl::sweepOf;
using geimpl::wrapAngle;

// ---------------------------------------------------------------- interval

AcGeInterval& AcGeInterval::set(double lower, double upper) {
    if (lower > upper) std::swap(lower, upper);
    mLower = lower;
    mUpper = upper;
    mBoundedBelow = mBoundedAbove = true;
    return *this;
}

AcGeInterval& AcGeInterval::set() {
    mLower = mUpper = 0.0;
    mBoundedBelow = mBoundedAbove = false;
    return *this;
}

AcGeInterval& AcGeInterval::setLower(double lower) {
    mLower = lower;
    mBoundedBelow = true;
    return *this;
}

AcGeInterval& AcGeInterval::setUpper(double upper) {
    mUpper = upper;
    mBoundedAbove = true;
    return *this;
}

double AcGeInterval::length() const {
    return isBounded() ? mUpper - mLower : std::numeric_limits<double>::infinity();
}

bool AcGeInterval::contains(double val) const {
    return (!mBoundedBelow || val >= mLower - mTol) && (!mBoundedAbove || val <= mUpper + mTol);
}

// ---------------------------------------------------------------- linear entities

AcGeVector2d AcGeLinearEnt2d::direction() const {
    return geimpl::unitOr(mVec, AcGeVector2d(0.0, 0.0));
}

void AcGeLinearEnt2d::getLine(AcGeLine2d& line) const {
    line.set(mPoint, mVec);
}

void AcGeLinearEnt2d::bounds(double& lo, double& hi) const {
    AcGeInterval range;
    getInterval(range);
    constexpr double kInf = std::numeric_limits<double>::infinity();
    lo = range.isBoundedBelow() ? range.lowerBound() : -kInf;
    hi = range.isBoundedAbove() ? range.upperBound() : kInf;
}

bool AcGeLinearEnt2d::isParallelTo(const AcGeLinearEnt2d& other, const AcGeTol& tol) const {
    return mVec.isParallelTo(other.mVec, tol);
}

bool AcGeLinearEnt2d::isPerpendicularTo(const AcGeLinearEnt2d& other, const AcGeTol& tol) const {
    return mVec.isPerpendicularTo(other.mVec, tol);
}

bool AcGeLinearEnt2d::isColinearTo(const AcGeLinearEnt2d& other, const AcGeTol& tol) const {
    if (!isParallelTo(other, tol)) return false;
    // The other's point must lie on this entity's unbounded line.
    return std::fabs(cross2d(direction(), other.mPoint - mPoint)) <= tol.equalPoint();
}

bool AcGeLinearEnt2d::intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& pt,
                                    const AcGeTol& tol) const {
    const double lu = mVec.length(), lv = other.mVec.length();
    const double denom = cross2d(mVec, other.mVec);
    // Parallel and degenerate entities have no single common point.
    if (lu == 0.0 || lv == 0.0 || std::fabs(denom) <= tol.equalVector() * lu * lv) return false;
    const double t = cross2d(other.mPoint - mPoint, other.mVec) / denom;
    const AcGePoint2d p = evalPoint(t);
    if (!isOn(p, tol) || !other.isOn(p, tol)) return false;
    pt = p;
    return true;
}

double AcGeLinearEnt2d::paramOf(const AcGePoint2d& pt, const AcGeTol&) const {
    const double l2 = mVec.lengthSqrd();
    if (l2 == 0.0) return 0.0;
    double lo, hi;
    bounds(lo, hi);
    return std::clamp((pt - mPoint).dotProduct(mVec) / l2, lo, hi);
}

AcGePoint2d AcGeLinearEnt2d::closestPointTo(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

double AcGeLinearEnt2d::length(double fromParam, double toParam) const {
    return std::fabs(toParam - fromParam) * mVec.length();
}

AcGeLinearEnt2d& AcGeLinearEnt2d::transformBy(const AcGeMatrix2d& m) {
    AcGePoint2d end = mPoint + mVec;
    end.transformBy(m);
    mPoint.transformBy(m);
    mVec = end - mPoint;
    return *this;
}

const AcGeLine2d AcGeLine2d::kXAxis(AcGePoint2d(0.0, 0.0), AcGeVector2d(1.0, 0.0));
const AcGeLine2d AcGeLine2d::kYAxis(AcGePoint2d(0.0, 0.0), AcGeVector2d(0.0, 1.0));

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& pnt, const AcGeVector2d& vec) {
    mPoint = pnt;
    mVec = vec;
    return *this;
}

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& p1, const AcGePoint2d& p2) {
    return set(p1, p2 - p1);
}

AcGeLine2d& AcGeLine2d::reverseParam() {
    mVec.negate();
    return *this;
}

AcGeLineSeg2d& AcGeLineSeg2d::set(const AcGePoint2d& p1, const AcGePoint2d& p2) {
    mPoint = p1;
    mVec = p2 - p1;
    return *this;
}

bool AcGeLineSeg2d::hasStartPoint(AcGePoint2d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeLineSeg2d::hasEndPoint(AcGePoint2d& pt) const {
    pt = endPoint();
    return true;
}

AcGeLineSeg2d& AcGeLineSeg2d::reverseParam() {
    mPoint = endPoint();
    mVec.negate();
    return *this;
}

// ---------------------------------------------------------------- arcs

namespace {

// Keeps the first two candidates that pass the filter, in order.
template <class P, class F>
bool collect(const P* cands, int count, F&& keep, int& numInt, P& p1, P& p2) {
    numInt = 0;
    for (int i = 0; i < count; ++i) {
        if (!keep(cands[i])) continue;
        (numInt == 0 ? p1 : p2) = cands[i];
        ++numInt;
    }
    return numInt > 0;
}

} // namespace

double AcGeCircArc2d::angleOf(const AcGeVector2d& v) const {
    const double a = std::atan2(cross2d(mRef, v), mRef.dotProduct(v));
    return wrapAngle(mClockWise ? -a : a);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& center, double radius) {
    return set(center, radius, 0.0, kTwoPi, AcGeVector2d(1.0, 0.0), false);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& center, double radius, double startAng,
                                  double endAng, const AcGeVector2d& refVec, bool isClockWise) {
    mCenter = center;
    mRadius = std::fabs(radius);
    mRef = geimpl::unitOr(refVec, AcGeVector2d(1.0, 0.0));
    mClockWise = isClockWise;
    return setAngles(startAng, endAng);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& startPoint, const AcGePoint2d& pnt,
                                  const AcGePoint2d& endPoint) {
    const AcGeVector2d ba = pnt - startPoint, ca = endPoint - startPoint;
    const double d = 2.0 * cross2d(ba, ca);
    const AcGeTol& tol = AcGeContext::gTol;
    if (d == 0.0 || std::fabs(d) <= 2.0 * tol.equalVector() * ba.length() * ca.length())
        return *this;
    const double b2 = ba.lengthSqrd(), c2 = ca.lengthSqrd();
    const AcGeVector2d u((b2 * ca.y - c2 * ba.y) / d, (c2 * ba.x - b2 * ca.x) / d);
    mCenter = startPoint + u;
    mRadius = u.length();
    mRef.set(1.0, 0.0);
    // Counter-clockwise when the middle point lies to the right of the chord.
    mClockWise = d < 0.0;
    mStart = angleOf(startPoint - mCenter);
    mEnd = mStart + sweepOf(mStart, angleOf(endPoint - mCenter));
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint,
                                  double bulge, bool) {
    const AcGeVector2d chord = endPoint - startPoint;
    const double len = chord.length();
    if (bulge == 0.0 || len == 0.0) return *this;
    // With the included angle q = 4 atan(bulge), the centre lies off the chord's midpoint by
    // len/2 * cot(q/2) to the left of the travel; cot(q/2) = (1 - b^2) / (2b) keeps the sign.
    const AcGeVector2d left = chord.perpVector() / len;
    const double b2 = bulge * bulge;
    mCenter = startPoint + chord * 0.5 + left * (0.5 * len * (1.0 - b2) / (2.0 * bulge));
    mRadius = 0.5 * len * (1.0 + b2) / (2.0 * std::fabs(bulge));
    mRef.set(1.0, 0.0);
    mClockWise = bulge < 0.0;
    mStart = angleOf(startPoint - mCenter);
    mEnd = mStart + 4.0 * std::atan(std::fabs(bulge));
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setCenter(const AcGePoint2d& center) {
    mCenter = center;
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setRadius(double radius) {
    mRadius = std::fabs(radius);
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setAngles(double startAng, double endAng) {
    mStart = startAng;
    mEnd = startAng + sweepOf(startAng, endAng);
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setRefVec(const AcGeVector2d& vec) {
    mRef = geimpl::unitOr(vec, mRef);
    return *this;
}

AcGePoint2d AcGeCircArc2d::evalPoint(double param) const {
    const double a = mClockWise ? -param : param;
    const double c = std::cos(a), s = std::sin(a);
    const AcGeVector2d dir(mRef.x * c - mRef.y * s, mRef.x * s + mRef.y * c);
    return mCenter + dir * mRadius;
}

double AcGeCircArc2d::paramOf(const AcGePoint2d& pt, const AcGeTol&) const {
    const AcGeVector2d v = pt - mCenter;
    // Every point of the arc is equally near the centre.
    if (v.x == 0.0 && v.y == 0.0) return mStart;
    const double sweep = mEnd - mStart;
    const double d = wrapAngle(angleOf(v) - mStart);
    if (d <= sweep) return mStart + d;
    // Past the end: the distance to an end point grows with the angle to it.
    return d - sweep <= kTwoPi - d ? mEnd : mStart;
}

AcGePoint2d AcGeCircArc2d::closestPointTo(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

bool AcGeCircArc2d::hasStartPoint(AcGePoint2d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeCircArc2d::hasEndPoint(AcGePoint2d& pt) const {
    pt = endPoint();
    return true;
}

double AcGeCircArc2d::length(double fromParam, double toParam) const {
    return mRadius * std::fabs(toParam - fromParam);
}

bool AcGeCircArc2d::isClosed(const AcGeTol&) const {
    return mEnd - mStart >= kTwoPi - kAngleTol;
}

AcGeCircArc2d& AcGeCircArc2d::reverseParam() {
    // An angle a in one sense is -a in the other, so the span [s, e] becomes [-e, -s].
    const double start = wrapAngle(-mEnd);
    const double sweep = mEnd - mStart;
    mClockWise = !mClockWise;
    mStart = start;
    mEnd = start + sweep;
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::transformBy(const AcGeMatrix2d& m) {
    const AcGeVector2d col1(m.entry[0][0], m.entry[1][0]), col2(m.entry[0][1], m.entry[1][1]);
    const double s = col1.length();
    const double rel = AcGeContext::gTol.equalVector() * s;
    const bool similar = s > 0.0 && std::fabs(col2.length() - s) <= rel &&
                         std::fabs(col1.dotProduct(col2)) <= rel * s;
    if (similar) {
        AcGeVector2d ref = mRef;
        ref.transformBy(m);
        mCenter.transformBy(m);
        mRef = ref / s;
        mRadius *= s;
        // A mirror turns the sense of travel; the angles, measured in the new sense, stay.
        if (cross2d(col1, col2) < 0.0) mClockWise = !mClockWise;
        return *this;
    }
    const bool closed = isClosed();
    const double sweep = mEnd - mStart;
    AcGePoint2d p1 = evalPoint(mStart);
    AcGePoint2d p2 = evalPoint(mStart + sweep / (closed ? 3.0 : 2.0));
    AcGePoint2d p3 = evalPoint(mStart + (closed ? 2.0 * sweep / 3.0 : sweep));
    p1.transformBy(m);
    p2.transformBy(m);
    p3.transformBy(m);
    set(p1, p2, p3);
    if (closed) setAngles(mStart, mStart);
    return *this;
}

bool AcGeCircArc2d::intersectWith(const AcGeLinearEnt2d& line, int& numInt, AcGePoint2d& p1,
                                  AcGePoint2d& p2, const AcGeTol& tol) const {
    numInt = 0;
    const AcGeVector2d u = line.direction();
    if (u.x == 0.0 && u.y == 0.0) return false;
    const AcGePoint2d p0 = line.pointOnLine();
    const AcGePoint2d foot = p0 + u * (mCenter - p0).dotProduct(u);
    const AcGeVector2d off = foot - mCenter;
    const double h = off.length();
    if (h > mRadius + tol.equalPoint()) return false;
    AcGePoint2d cands[2];
    int count = 0;
    if (std::fabs(h - mRadius) <= tol.equalPoint()) {
        // Tangent: the one point of the circle nearest the line.
        cands[count++] = h > 0.0 ? mCenter + off * (mRadius / h) : foot;
    } else {
        const double half = std::sqrt(mRadius * mRadius - h * h);
        cands[count++] = foot - u * half;
        cands[count++] = foot + u * half;
    }
    auto onBoth = [&](const AcGePoint2d& p) { return line.isOn(p, tol) && isOn(p, tol); };
    return collect(cands, count, onBoth, numInt, p1, p2);
}

bool AcGeCircArc2d::intersectWith(const AcGeCircArc2d& arc, int& numInt, AcGePoint2d& p1,
                                  AcGePoint2d& p2, const AcGeTol& tol) const {
    numInt = 0;
    const AcGeVector2d between = arc.mCenter - mCenter;
    const double d = between.length();
    const double r1 = mRadius, r2 = arc.mRadius;
    const double eps = tol.equalPoint();
    // Concentric circles share all points or none: no finite answer either way.
    if (d <= eps) return false;
    if (d > r1 + r2 + eps || d < std::fabs(r1 - r2) - eps) return false;
    const AcGeVector2d e = between / d;
    // Distance from this centre, along the line of centres, to the chord through the crossings.
    const double a = (d * d + r1 * r1 - r2 * r2) / (2.0 * d);
    AcGePoint2d cands[2];
    int count = 0;
    if (std::fabs(d - (r1 + r2)) <= eps || std::fabs(d - std::fabs(r1 - r2)) <= eps) {
        cands[count++] = mCenter + e * a;
    } else {
        const double h = std::sqrt(std::max(0.0, r1 * r1 - a * a));
        const AcGePoint2d base = mCenter + e * a;
        cands[count++] = base - e.perpVector() * h;
        cands[count++] = base + e.perpVector() * h;
    }
    auto onBoth = [&](const AcGePoint2d& p) { return isOn(p, tol) && arc.isOn(p, tol); };
    return collect(cands, count, onBoth, numInt, p1, p2);
}
