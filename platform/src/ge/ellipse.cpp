// Elliptical arcs: evaluation, nearest points, lengths, line crossings and affine images.
#include "geellip.h"

#include "ge/curvenum.h"
#include "ge/evaluators.h"
#include "ge/ge2d.h"
#include "geangles.h"

#include <algorithm>
#include <cmath>

using geimpl::kTwoPi;

namespace {

geimpl::EllipseEval evaluator(const AcGeEllipArc3d& e) {
    return geimpl::EllipseEval(e.center(), e.majorAxis() * e.majorRadius(),
                               e.minorAxis() * e.minorRadius());
}

} // namespace

AcGeEllipArc3d::AcGeEllipArc3d(const AcGeCircArc3d& arc) {
    set(arc);
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                    const AcGeVector3d& minorAxis, double majorRadius,
                                    double minorRadius) {
    return set(center, majorAxis, minorAxis, majorRadius, minorRadius, 0.0, kTwoPi);
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                    const AcGeVector3d& minorAxis, double majorRadius,
                                    double minorRadius, double startAngle, double endAngle) {
    mCenter = center;
    setAxes(majorAxis, minorAxis);
    mA = std::fabs(majorRadius);
    mB = std::fabs(minorRadius);
    return setAngles(startAngle, endAngle);
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGeCircArc3d& arc) {
    const AcGeVector3d x = arc.refVec();
    return set(arc.center(), x, arc.normal().crossProduct(x), arc.radius(), arc.radius(),
               arc.startAng(), arc.endAng());
}

AcGeEllipArc3d& AcGeEllipArc3d::setCenter(const AcGePoint3d& center) {
    mCenter = center;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setMajorRadius(double r) {
    mA = std::fabs(r);
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setMinorRadius(double r) {
    mB = std::fabs(r);
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setAxes(const AcGeVector3d& majorAxis,
                                        const AcGeVector3d& minorAxis) {
    const AcGeVector3d x = geimpl::unitOr(majorAxis, AcGeVector3d());
    if (x.isZeroLength()) return *this;
    AcGeVector3d y = minorAxis - x * minorAxis.dotProduct(x);
    y = geimpl::unitOr(y, AcGeVector3d());
    if (y.isZeroLength()) y = geimpl::unitOr(x.perpVector(), AcGeVector3d(0, 1, 0));
    mX = x;
    mY = y;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setAngles(double startAngle, double endAngle) {
    if (!std::isfinite(startAngle) || !std::isfinite(endAngle)) return *this;
    mStart = startAngle;
    mEnd = startAngle + geimpl::sweepOf(startAngle, endAngle);
    return *this;
}

bool AcGeEllipArc3d::isCircular(const AcGeTol& tol) const {
    return std::fabs(mA - mB) <= tol.equalPoint();
}

bool AcGeEllipArc3d::isInside(const AcGePoint3d& pt, const AcGeTol& tol) const {
    const AcGeVector3d v = pt - mCenter;
    if (std::fabs(v.dotProduct(normal())) > tol.equalPoint()) return false;
    if (!(mA > 0.0) || !(mB > 0.0)) return false;
    const double x = v.dotProduct(mX) / mA, y = v.dotProduct(mY) / mB;
    return x * x + y * y <= 1.0 + tol.equalPoint() / std::min(mA, mB);
}

AcGePoint3d AcGeEllipArc3d::evalPoint(double param) const {
    return mCenter + mX * (mA * std::cos(param)) + mY * (mB * std::sin(param));
}

AcGePoint3d AcGeEllipArc3d::evalPoint(double param, int numDeriv,
                                      AcGeVector3dArray& derivArray) const {
    derivArray.removeAll();
    const AcGeVector3d M = mX * mA, m = mY * mB;
    // Each derivative turns the parameter a quarter further.
    for (int k = 1; k <= std::min(numDeriv, 3); ++k) {
        const double t = param + k * 1.5707963267948966;
        derivArray.append(M * std::cos(t) + m * std::sin(t));
    }
    return evalPoint(param);
}

double AcGeEllipArc3d::paramOf(const AcGePoint3d& pt, const AcGeTol&) const {
    const geimpl::EllipseEval ev = evaluator(*this);
    return geimpl::SampledCurve(ev, mStart, mEnd).closestParam(pt);
}

AcGePoint3d AcGeEllipArc3d::closestPointTo(const AcGePoint3d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

bool AcGeEllipArc3d::hasStartPoint(AcGePoint3d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeEllipArc3d::hasEndPoint(AcGePoint3d& pt) const {
    pt = endPoint();
    return true;
}

double AcGeEllipArc3d::length(double fromParam, double toParam) const {
    if (fromParam > toParam) std::swap(fromParam, toParam);
    if (!(toParam > fromParam)) return 0.0;
    const geimpl::EllipseEval ev = evaluator(*this);
    return geimpl::SampledCurve(ev, fromParam, toParam).length();
}

bool AcGeEllipArc3d::isClosed(const AcGeTol& tol) const {
    return mEnd - mStart >= kTwoPi - geimpl::kAngleTol || startPoint().isEqualTo(endPoint(), tol);
}

AcGeEllipArc3d& AcGeEllipArc3d::reverseParam() {
    // The minor axis turned over: the point at t is the old point at -t.
    mY = -mY;
    const double sweep = mEnd - mStart;
    mStart = geimpl::wrapAngle(-mEnd);
    mEnd = mStart + sweep;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::transformBy(const AcGeMatrix3d& m) {
    AcGePoint3d c = mCenter;
    c.transformBy(m);
    AcGeVector3d P = mX * mA, Q = mY * mB;
    P.transformBy(m);
    Q.transformBy(m);
    if (P.crossProduct(Q).length() <= 1e-300) return *this;
    // The images are conjugate semi-diameters; the axes lie where the point's distance from
    // the centre is stationary: tan 2s = 2 P.Q / (P.P - Q.Q).
    const double s = 0.5 * std::atan2(2.0 * P.dotProduct(Q), P.lengthSqrd() - Q.lengthSqrd());
    AcGeVector3d U = P * std::cos(s) + Q * std::sin(s);
    AcGeVector3d V = Q * std::cos(s) - P * std::sin(s);
    double shift = s;
    if (V.length() > U.length()) {
        const AcGeVector3d u = U;
        U = V;
        V = -u;
        shift += 1.5707963267948966;
    }
    mCenter = c;
    mA = U.length();
    mB = V.length();
    mX = U / mA;
    mY = mB > 0.0 ? V / mB : geimpl::unitOr(normal().crossProduct(mX), mY);
    const double sweep = mEnd - mStart;
    mStart = geimpl::wrapAngle(mStart - shift);
    mEnd = mStart + sweep;
    return *this;
}

bool AcGeEllipArc3d::intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1,
                                   AcGePoint3d& p2, const AcGeTol& tol) const {
    numInt = 0;
    const AcGeVector3d n = normal();
    const AcGeVector3d d = line.direction();
    const AcGePoint3d q = line.pointOnLine();
    AcGePoint3d cand[2];
    int count = 0;
    if (!(mA > 0.0) || !(mB > 0.0) || d.isZeroLength()) return false;
    if (std::fabs(d.dotProduct(n)) > 1e-12) {
        // Crossing the plane: at most the piercing point.
        const double s = (mCenter - q).dotProduct(n) / d.dotProduct(n);
        cand[count++] = q + d * s;
    } else {
        if (std::fabs((q - mCenter).dotProduct(n)) > tol.equalPoint()) return false;
        // ((qx + s dx)/a)^2 + ((qy + s dy)/b)^2 = 1
        const double qx = (q - mCenter).dotProduct(mX) / mA, qy = (q - mCenter).dotProduct(mY) / mB;
        const double dx = d.dotProduct(mX) / mA, dy = d.dotProduct(mY) / mB;
        const double A = dx * dx + dy * dy, B = 2.0 * (qx * dx + qy * dy),
                     C = qx * qx + qy * qy - 1.0;
        const double disc = B * B - 4.0 * A * C;
        if (disc < -1e-12 * B * B - 1e-15) return false;
        const double r = std::sqrt(std::max(0.0, disc));
        cand[count++] = q + d * ((-B - r) / (2.0 * A));
        if (r > 0.0) cand[count++] = q + d * ((-B + r) / (2.0 * A));
    }
    for (int k = 0; k < count; ++k) {
        const AcGePoint3d& p = cand[k];
        if (!line.isOn(p, tol)) continue;
        const AcGeVector3d v = p - mCenter;
        const double x = v.dotProduct(mX) / mA, y = v.dotProduct(mY) / mB;
        if (std::fabs(std::hypot(x, y) - 1.0) * std::min(mA, mB) > std::max(tol.equalPoint(), 1e-9))
            continue;
        const double t = mStart + geimpl::wrapAngle(std::atan2(y, x) - mStart);
        const bool inside = t <= mEnd + 1e-12 || t - kTwoPi >= mStart - 1e-12;
        if (!inside && evalPoint(mEnd).distanceTo(p) > tol.equalPoint()) continue;
        (numInt == 0 ? p1 : p2) = p;
        ++numInt;
    }
    return numInt > 0;
}

// ---------------------------------------------------------------- the plane ellipse

AcGeEllipArc2d::AcGeEllipArc2d(const AcGeCircArc2d& arc) {
    set(arc);
}

AcGeEllipArc2d& AcGeEllipArc2d::set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                                    const AcGeVector2d& minorAxis, double majorRadius,
                                    double minorRadius) {
    return set(center, majorAxis, minorAxis, majorRadius, minorRadius, 0.0, kTwoPi);
}

AcGeEllipArc2d& AcGeEllipArc2d::set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                                    const AcGeVector2d& minorAxis, double majorRadius,
                                    double minorRadius, double startAngle, double endAngle) {
    const AcGeVector3d x = geimpl::lift(majorAxis);
    // Only the side of the minor axis matters: it decides the sense.
    const double side = majorAxis.x * minorAxis.y - majorAxis.y * minorAxis.x;
    const AcGeVector3d y = AcGeVector3d(0, 0, side < 0.0 ? -1.0 : 1.0).crossProduct(x);
    m3.set(geimpl::lift(center), x, y, majorRadius, minorRadius, startAngle, endAngle);
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::set(const AcGeCircArc2d& arc) {
    const AcGeVector2d x = arc.refVec();
    const AcGeVector2d y = arc.isClockWise() ? AcGeVector2d(x.y, -x.x) : x.perpVector();
    return set(arc.center(), x, y, arc.radius(), arc.radius(), arc.startAng(), arc.endAng());
}

AcGeEllipArc2d& AcGeEllipArc2d::setCenter(const AcGePoint2d& center) {
    m3.setCenter(geimpl::lift(center));
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::setMajorRadius(double r) {
    m3.setMajorRadius(r);
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::setMinorRadius(double r) {
    m3.setMinorRadius(r);
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::setAxes(const AcGeVector2d& majorAxis,
                                        const AcGeVector2d& minorAxis) {
    return set(center(), majorAxis, minorAxis, majorRadius(), minorRadius(), startAng(), endAng());
}

AcGeEllipArc2d& AcGeEllipArc2d::setAngles(double startAngle, double endAngle) {
    m3.setAngles(startAngle, endAngle);
    return *this;
}

AcGePoint2d AcGeEllipArc2d::center() const {
    return m3.center().convert2d();
}

bool AcGeEllipArc2d::isInside(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return m3.isInside(geimpl::lift(pt), tol);
}

bool AcGeEllipArc2d::intersectWith(const AcGeLinearEnt2d& line, int& numInt, AcGePoint2d& p1,
                                   AcGePoint2d& p2, const AcGeTol& tol) const {
    numInt = 0;
    AcGeInterval range;
    line.getInterval(range);
    const AcGePoint3d a = geimpl::lift(line.pointOnLine());
    const AcGeVector3d d = geimpl::lift(line.evalPoint(1.0) - line.evalPoint(0.0));
    AcGePoint3d q1, q2;
    int n = 0;
    bool ok = false;
    if (range.isBounded()) {
        const AcGeLineSeg3d seg(a + d * range.lowerBound(), a + d * range.upperBound());
        ok = m3.intersectWith(seg, n, q1, q2, tol);
    } else {
        ok = m3.intersectWith(AcGeLine3d(a, d), n, q1, q2, tol);
    }
    if (!ok) return false;
    numInt = n;
    p1 = q1.convert2d();
    p2 = q2.convert2d();
    return true;
}

AcGePoint2d AcGeEllipArc2d::evalPoint(double param) const {
    return m3.evalPoint(param).convert2d();
}

AcGePoint2d AcGeEllipArc2d::evalPoint(double param, int numDeriv,
                                      AcGeVector2dArray& derivArray) const {
    AcGeVector3dArray d3;
    const AcGePoint3d p = m3.evalPoint(param, numDeriv, d3);
    derivArray.removeAll();
    for (const auto& v : d3)
        derivArray.append(v.convert2d());
    return p.convert2d();
}

double AcGeEllipArc2d::paramOf(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return m3.paramOf(geimpl::lift(pt), tol);
}

AcGePoint2d AcGeEllipArc2d::closestPointTo(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return m3.closestPointTo(geimpl::lift(pt), tol).convert2d();
}

bool AcGeEllipArc2d::hasStartPoint(AcGePoint2d& pt) const {
    pt = startPoint();
    return true;
}

bool AcGeEllipArc2d::hasEndPoint(AcGePoint2d& pt) const {
    pt = endPoint();
    return true;
}

AcGeEllipArc2d& AcGeEllipArc2d::reverseParam() {
    m3.reverseParam();
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::transformBy(const AcGeMatrix2d& m) {
    m3.transformBy(geimpl::lift(m));
    return *this;
}
