// The space curves: lines, segments and circular arcs.
#include "gecurves.h"

#include "geangles.h"

#include <algorithm>
#include <limits>

using geimpl::kAngleTol;
using geimpl::kTwoPi;
using geimpl::sweepOf;
using geimpl::unitOr;
using geimpl::wrapAngle;

// ---------------------------------------------------------------- linear entities

AcGeVector3d AcGeLinearEnt3d::direction() const {
    return unitOr(mVec, AcGeVector3d(0.0, 0.0, 0.0));
}

void AcGeLinearEnt3d::getLine(AcGeLine3d& line) const {
    line.set(mPoint, mVec);
}

void AcGeLinearEnt3d::bounds(double& lo, double& hi) const {
    AcGeInterval range;
    getInterval(range);
    constexpr double kInf = std::numeric_limits<double>::infinity();
    lo = range.isBoundedBelow() ? range.lowerBound() : -kInf;
    hi = range.isBoundedAbove() ? range.upperBound() : kInf;
}

bool AcGeLinearEnt3d::isParallelTo(const AcGeLinearEnt3d& other, const AcGeTol& tol) const {
    return mVec.isParallelTo(other.mVec, tol);
}

bool AcGeLinearEnt3d::isPerpendicularTo(const AcGeLinearEnt3d& other, const AcGeTol& tol) const {
    return mVec.isPerpendicularTo(other.mVec, tol);
}

bool AcGeLinearEnt3d::isColinearTo(const AcGeLinearEnt3d& other, const AcGeTol& tol) const {
    if (!isParallelTo(other, tol)) return false;
    return direction().crossProduct(other.mPoint - mPoint).length() <= tol.equalPoint();
}

bool AcGeLinearEnt3d::intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& pt,
                                    const AcGeTol& tol) const {
    const AcGeVector3d& u = mVec;
    const AcGeVector3d& v = other.mVec;
    const double lu = u.length(), lv = v.length();
    const AcGeVector3d n = u.crossProduct(v);
    if (lu == 0.0 || lv == 0.0 || n.length() <= tol.equalVector() * lu * lv) return false;
    // This line's point nearest the other line; skew lines fail the test of lying on both.
    const AcGeVector3d w = mPoint - other.mPoint;
    const double a = u.dotProduct(u), b = u.dotProduct(v), c = v.dotProduct(v);
    const double d = u.dotProduct(w), e = v.dotProduct(w);
    const AcGePoint3d p = evalPoint((b * e - c * d) / (a * c - b * b));
    if (!isOn(p, tol) || !other.isOn(p, tol)) return false;
    pt = p;
    return true;
}

bool AcGeLinearEnt3d::intersectWith(const AcGePlane& plane, AcGePoint3d& pt,
                                    const AcGeTol& tol) const {
    return plane.intersectWith(*this, pt, tol);
}

AcGePoint3d AcGeLinearEnt3d::projClosestPointTo(const AcGePoint3d& pt, const AcGeVector3d& projDir,
                                                const AcGeTol& tol) const {
    const AcGeVector3d k = unitOr(projDir, AcGeVector3d(0.0, 0.0, 0.0));
    // Flatten the entity and the point onto a plane across the view and work there.
    const AcGeVector3d u = mVec - k * mVec.dotProduct(k);
    const AcGeVector3d w0 = pt - mPoint;
    const AcGeVector3d w = w0 - k * w0.dotProduct(k);
    const double l2 = u.lengthSqrd();
    // Seen end on, every point of the entity is equally near: keep the true nearest one.
    if (l2 <= tol.equalVector() * tol.equalVector() * mVec.lengthSqrd())
        return closestPointTo(pt, tol);
    double lo, hi;
    bounds(lo, hi);
    return evalPoint(std::clamp(w.dotProduct(u) / l2, lo, hi));
}

double AcGeLinearEnt3d::paramOf(const AcGePoint3d& pt, const AcGeTol&) const {
    const double l2 = mVec.lengthSqrd();
    if (l2 == 0.0) return 0.0;
    double lo, hi;
    bounds(lo, hi);
    return std::clamp((pt - mPoint).dotProduct(mVec) / l2, lo, hi);
}

AcGePoint3d AcGeLinearEnt3d::closestPointTo(const AcGePoint3d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

double AcGeLinearEnt3d::length(double fromParam, double toParam) const {
    return std::fabs(toParam - fromParam) * mVec.length();
}

AcGeLinearEnt3d& AcGeLinearEnt3d::transformBy(const AcGeMatrix3d& m) {
    AcGePoint3d end = mPoint + mVec;
    end.transformBy(m);
    mPoint.transformBy(m);
    mVec = end - mPoint;
    return *this;
}

const AcGeLine3d AcGeLine3d::kXAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(1.0, 0.0, 0.0));
const AcGeLine3d AcGeLine3d::kYAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 1.0, 0.0));
const AcGeLine3d AcGeLine3d::kZAxis(AcGePoint3d(0.0, 0.0, 0.0), AcGeVector3d(0.0, 0.0, 1.0));

AcGeLine3d& AcGeLine3d::set(const AcGePoint3d& pnt, const AcGeVector3d& vec) {
    mPoint = pnt;
    mVec = vec;
    return *this;
}

AcGeLine3d& AcGeLine3d::set(const AcGePoint3d& p1, const AcGePoint3d& p2) {
    return set(p1, p2 - p1);
}

AcGeLine3d& AcGeLine3d::reverseParam() {
    mVec.negate();
    return *this;
}

AcGeLineSeg3d& AcGeLineSeg3d::set(const AcGePoint3d& p1, const AcGePoint3d& p2) {
    mPoint = p1;
    mVec = p2 - p1;
    return *this;
}

bool AcGeLineSeg3d::hasStartPoint(AcGePoint3d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeLineSeg3d::hasEndPoint(AcGePoint3d& pt) const {
    pt = endPoint();
    return true;
}

AcGeLineSeg3d& AcGeLineSeg3d::reverseParam() {
    mPoint = endPoint();
    mVec.negate();
    return *this;
}

// ---------------------------------------------------------------- arcs

bool AcGeCircArc3d::angleOf(const AcGeVector3d& v, double& ang) const {
    const double x = v.dotProduct(mRef), y = v.dotProduct(perpRef());
    if (x == 0.0 && y == 0.0) return false;
    ang = wrapAngle(std::atan2(y, x));
    return true;
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                  double radius) {
    const AcGeVector3d n = unitOr(normal, AcGeVector3d(0.0, 0.0, 1.0));
    return set(center, n, geimpl::arbitraryAxis(n), radius, 0.0, kTwoPi);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                  const AcGeVector3d& refVec, double radius, double startAng,
                                  double endAng) {
    mCenter = center;
    mRadius = std::fabs(radius);
    setAxes(normal, refVec);
    return setAngles(startAng, endAng);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& p1, const AcGePoint3d& p2,
                                  const AcGePoint3d& p3) {
    const AcGeVector3d ab = p2 - p1, ac = p3 - p1;
    const AcGeVector3d n = ab.crossProduct(ac);
    const double n2 = n.lengthSqrd();
    if (n2 == 0.0 || std::sqrt(n2) <= AcGeContext::gTol.equalVector() * ab.length() * ac.length())
        return *this;
    // The circumcentre, from p1.
    const AcGeVector3d u =
        (n.crossProduct(ab) * ac.lengthSqrd() + ac.crossProduct(n) * ab.lengthSqrd()) / (2.0 * n2);
    mCenter = p1 + u;
    mRadius = u.length();
    mNormal = n / std::sqrt(n2);
    mRef = -u / mRadius;
    mStart = 0.0;
    double end = 0.0;
    angleOf(p3 - mCenter, end);
    mEnd = sweepOf(0.0, end);
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setCenter(const AcGePoint3d& center) {
    mCenter = center;
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setRadius(double radius) {
    mRadius = std::fabs(radius);
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setAngles(double startAng, double endAng) {
    mStart = startAng;
    mEnd = startAng + sweepOf(startAng, endAng);
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setAxes(const AcGeVector3d& normal, const AcGeVector3d& refVec) {
    mNormal = unitOr(normal, mNormal);
    const AcGeVector3d flat = refVec - mNormal * refVec.dotProduct(mNormal);
    // A reference along the normal has no direction in the plane; the plane's axis stands in.
    mRef = flat.length() <= AcGeContext::gTol.equalVector() * refVec.length()
               ? geimpl::arbitraryAxis(mNormal)
               : unitOr(flat, geimpl::arbitraryAxis(mNormal));
    return *this;
}

AcGePoint3d AcGeCircArc3d::evalPoint(double param) const {
    return mCenter + (mRef * std::cos(param) + perpRef() * std::sin(param)) * mRadius;
}

double AcGeCircArc3d::paramOf(const AcGePoint3d& pt, const AcGeTol&) const {
    double ang = 0.0;
    // Over the centre every point of the arc is equally near.
    if (!angleOf(pt - mCenter, ang)) return mStart;
    const double sweep = mEnd - mStart;
    const double d = wrapAngle(ang - mStart);
    if (d <= sweep) return mStart + d;
    return d - sweep <= kTwoPi - d ? mEnd : mStart;
}

AcGePoint3d AcGeCircArc3d::closestPointTo(const AcGePoint3d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

bool AcGeCircArc3d::hasStartPoint(AcGePoint3d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeCircArc3d::hasEndPoint(AcGePoint3d& pt) const {
    pt = endPoint();
    return true;
}

double AcGeCircArc3d::length(double fromParam, double toParam) const {
    return mRadius * std::fabs(toParam - fromParam);
}

bool AcGeCircArc3d::isClosed(const AcGeTol&) const {
    return mEnd - mStart >= kTwoPi - kAngleTol;
}

AcGeCircArc3d& AcGeCircArc3d::reverseParam() {
    // About the opposite normal an angle a becomes -a, so the span [s, e] becomes [-e, -s].
    const double start = wrapAngle(-mEnd);
    const double sweep = mEnd - mStart;
    mNormal.negate();
    mStart = start;
    mEnd = start + sweep;
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::transformBy(const AcGeMatrix3d& m) {
    if (m.isUniScaledOrtho()) {
        AcGeVector3d n = mNormal, ref = mRef;
        n.transformBy(m);
        ref.transformBy(m);
        const double s = ref.length();
        mCenter.transformBy(m);
        // A mirror maps n x ref to -(n' x ref'): turning the normal over keeps every angle.
        mNormal = unitOr(m.det() < 0.0 ? -n : n, mNormal);
        mRef = ref / s;
        mRadius *= s;
        return *this;
    }
    const bool closed = isClosed();
    const double sweep = mEnd - mStart;
    AcGePoint3d p1 = evalPoint(mStart);
    AcGePoint3d p2 = evalPoint(mStart + sweep / (closed ? 3.0 : 2.0));
    AcGePoint3d p3 = evalPoint(mStart + (closed ? 2.0 * sweep / 3.0 : sweep));
    p1.transformBy(m);
    p2.transformBy(m);
    p3.transformBy(m);
    set(p1, p2, p3);
    if (closed) setAngles(mStart, mStart);
    return *this;
}

bool AcGeCircArc3d::intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1,
                                  AcGePoint3d& p2, const AcGeTol& tol) const {
    numInt = 0;
    const AcGeVector3d u = line.direction();
    if (u.isZeroLength()) return false;
    const AcGePoint3d p0 = line.pointOnLine();
    const double height = (p0 - mCenter).dotProduct(mNormal);
    const double slope = u.dotProduct(mNormal);
    AcGePoint3d cands[2];
    int count = 0;
    if (std::fabs(slope) > tol.equalVector()) {
        // Crossing the plane: at most the one point where it pierces.
        cands[count++] = p0 - u * (height / slope);
    } else {
        if (std::fabs(height) > tol.equalPoint()) return false;
        const AcGePoint3d foot = p0 + u * (mCenter - p0).dotProduct(u);
        const AcGeVector3d off = foot - mCenter;
        const double h = off.length();
        if (h > mRadius + tol.equalPoint()) return false;
        if (std::fabs(h - mRadius) <= tol.equalPoint()) {
            cands[count++] = h > 0.0 ? mCenter + off * (mRadius / h) : foot;
        } else {
            const double half = std::sqrt(mRadius * mRadius - h * h);
            cands[count++] = foot - u * half;
            cands[count++] = foot + u * half;
        }
    }
    for (int i = 0; i < count; ++i) {
        if (!line.isOn(cands[i], tol) || !isOn(cands[i], tol)) continue;
        (numInt == 0 ? p1 : p2) = cands[i];
        ++numInt;
    }
    return numInt > 0;
}
