// NURBS curves in the plane, run as the same curves in the XY plane of space.
#include "genurbs.h"

#include "ge/ge2d.h"

namespace {

AcGePoint3dArray lifted(const AcGePoint2dArray& pts) {
    AcGePoint3dArray out;
    for (const auto& p : pts)
        out.append(geimpl::lift(p));
    return out;
}

} // namespace

AcGeNurbCurve2d::AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint2dArray& cntrlPnts, bool isPeriodic)
    : m3(degree, knots, lifted(cntrlPnts), isPeriodic) {}

AcGeNurbCurve2d::AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint2dArray& cntrlPnts, const AcGeDoubleArray& weights,
                                 bool isPeriodic)
    : m3(degree, knots, lifted(cntrlPnts), weights, isPeriodic) {}

AcGeNurbCurve2d::AcGeNurbCurve2d(const AcGePoint2dArray& fitPoints,
                                 const AcGeVector2d& startTangent, const AcGeVector2d& endTangent,
                                 bool startTangentDefined, bool endTangentDefined,
                                 const AcGeTol& fitTolerance)
    : m3(lifted(fitPoints), geimpl::lift(startTangent), geimpl::lift(endTangent),
         startTangentDefined, endTangentDefined, fitTolerance) {}

AcGeNurbCurve2d::AcGeNurbCurve2d(const AcGePoint2dArray& fitPoints, const AcGeTol& fitTolerance)
    : m3(lifted(fitPoints), fitTolerance) {}

AcGeNurbCurve2d::AcGeNurbCurve2d(const AcGeEllipArc2d& ellipse) : m3(ellipse.asEllipArc3d()) {}

AcGeNurbCurve2d::AcGeNurbCurve2d(const AcGeLineSeg2d& lineSeg)
    : m3(AcGeLineSeg3d(geimpl::lift(lineSeg.startPoint()), geimpl::lift(lineSeg.endPoint()))) {}

AcGeNurbCurve2d& AcGeNurbCurve2d::setKnotAt(int i, double val) {
    m3.setKnotAt(i, val);
    return *this;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::setControlPointAt(int i, const AcGePoint2d& pt) {
    m3.setControlPointAt(i, geimpl::lift(pt));
    return *this;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::setWeightAt(int i, double weight) {
    m3.setWeightAt(i, weight);
    return *this;
}

void AcGeNurbCurve2d::getDefinitionData(int& degree, bool& rational, bool& periodic,
                                        AcGeKnotVector& knots, AcGePoint2dArray& controlPoints,
                                        AcGeDoubleArray& weights) const {
    AcGePoint3dArray pts;
    m3.getDefinitionData(degree, rational, periodic, knots, pts, weights);
    controlPoints.removeAll();
    for (const auto& p : pts)
        controlPoints.append(p.convert2d());
}

AcGeNurbCurve2d& AcGeNurbCurve2d::set(int degree, const AcGeKnotVector& knots,
                                      const AcGePoint2dArray& cntrlPnts,
                                      const AcGeDoubleArray& weights, bool isPeriodic) {
    m3.set(degree, knots, lifted(cntrlPnts), weights, isPeriodic);
    return *this;
}

bool AcGeNurbCurve2d::getFitPointAt(int index, AcGePoint2d& point) const {
    AcGePoint3d p;
    if (!m3.getFitPointAt(index, p)) return false;
    point = p.convert2d();
    return true;
}

bool AcGeNurbCurve2d::getFitData(AcGePoint2dArray& fitPoints, AcGeTol& fitTolerance,
                                 bool& tangentsExist, AcGeVector2d& startTangent,
                                 AcGeVector2d& endTangent) const {
    AcGePoint3dArray pts;
    AcGeVector3d s, e;
    if (!m3.getFitData(pts, fitTolerance, tangentsExist, s, e)) return false;
    fitPoints.removeAll();
    for (const auto& p : pts)
        fitPoints.append(p.convert2d());
    startTangent = s.convert2d();
    endTangent = e.convert2d();
    return true;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::insertKnot(double newKnot) {
    m3.insertKnot(newKnot);
    return *this;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::hardTrimByParams(double newStartParam, double newEndParam) {
    m3.hardTrimByParams(newStartParam, newEndParam);
    return *this;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::makeClosed() {
    m3.makeClosed();
    return *this;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::joinWith(const AcGeNurbCurve2d& curve) {
    m3.joinWith(curve.m3);
    return *this;
}

AcGePoint2d AcGeNurbCurve2d::evalPoint(double param, int numDeriv,
                                       AcGeVector2dArray& derivArray) const {
    AcGeVector3dArray d3;
    const AcGePoint3d p = m3.evalPoint(param, numDeriv, d3);
    derivArray.removeAll();
    for (const auto& v : d3)
        derivArray.append(v.convert2d());
    return p.convert2d();
}

AcGeNurbCurve2d& AcGeNurbCurve2d::transformBy(const AcGeMatrix2d& m) {
    m3.transformBy(geimpl::lift(m));
    return *this;
}

double AcGeNurbCurve2d::paramOf(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return m3.paramOf(geimpl::lift(pt), tol);
}

AcGePoint2d AcGeNurbCurve2d::closestPointTo(const AcGePoint2d& pt, const AcGeTol& tol) const {
    return m3.closestPointTo(geimpl::lift(pt), tol).convert2d();
}

bool AcGeNurbCurve2d::hasStartPoint(AcGePoint2d& pt) const {
    AcGePoint3d p;
    if (!m3.hasStartPoint(p)) return false;
    pt = p.convert2d();
    return true;
}

bool AcGeNurbCurve2d::hasEndPoint(AcGePoint2d& pt) const {
    AcGePoint3d p;
    if (!m3.hasEndPoint(p)) return false;
    pt = p.convert2d();
    return true;
}

AcGeNurbCurve2d& AcGeNurbCurve2d::reverseParam() {
    m3.reverseParam();
    return *this;
}
