// NURBS curves in space: definition data, fit points, evaluation, trimming and joining.
#include "genurbs.h"

#include "ge/curvenum.h"
#include "ge/evaluators.h"
#include "ge/nurbscore.h"

#include <algorithm>
#include <cmath>

using geimpl::Nurbs;

AcGeNurbCurve3d::AcGeNurbCurve3d() : mN(std::make_unique<Nurbs>()) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeNurbCurve3d& src)
    : AcGeCurve3d(src), mN(std::make_unique<Nurbs>(*src.mN)), mValid(src.mValid),
      mPeriodic(src.mPeriodic), mFit(src.mFit), mStartTan(src.mStartTan), mEndTan(src.mEndTan),
      mTangents(src.mTangents), mFitTol(src.mFitTol) {}

AcGeNurbCurve3d& AcGeNurbCurve3d::operator=(const AcGeNurbCurve3d& src) {
    if (this != &src) {
        AcGeCurve3d::operator=(src);
        *mN = *src.mN;
        mValid = src.mValid;
        mPeriodic = src.mPeriodic;
        mFit = src.mFit;
        mStartTan = src.mStartTan;
        mEndTan = src.mEndTan;
        mTangents = src.mTangents;
        mFitTol = src.mFitTol;
    }
    return *this;
}

AcGeNurbCurve3d::~AcGeNurbCurve3d() = default;

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint3dArray& cntrlPnts, bool isPeriodic)
    : AcGeNurbCurve3d() {
    set(degree, knots, cntrlPnts, AcGeDoubleArray(), isPeriodic);
}

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint3dArray& cntrlPnts, const AcGeDoubleArray& weights,
                                 bool isPeriodic)
    : AcGeNurbCurve3d() {
    set(degree, knots, cntrlPnts, weights, isPeriodic);
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints,
                                 const AcGeVector3d& startTangent, const AcGeVector3d& endTangent,
                                 bool startTangentDefined, bool endTangentDefined,
                                 const AcGeTol& fitTolerance)
    : AcGeNurbCurve3d() {
    setFit(fitPoints, startTangentDefined ? &startTangent : nullptr,
           endTangentDefined ? &endTangent : nullptr, fitTolerance.equalPoint());
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeTol& fitTolerance)
    : AcGeNurbCurve3d() {
    setFit(fitPoints, nullptr, nullptr, fitTolerance.equalPoint());
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeEllipArc3d& ellipse, int) : AcGeNurbCurve3d() {
    *mN = geimpl::ellipseArc(ellipse.center(), ellipse.majorAxis() * ellipse.majorRadius(),
                             ellipse.minorAxis() * ellipse.minorRadius(), ellipse.startAng(),
                             ellipse.endAng());
    mValid = -1;
}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeLineSeg3d& lineSeg) : AcGeNurbCurve3d() {
    *mN = geimpl::segment(lineSeg.startPoint(), lineSeg.endPoint(), 1);
    mValid = -1;
}

void AcGeNurbCurve3d::setFit(const AcGePoint3dArray& fitPoints, const AcGeVector3d* startTan,
                             const AcGeVector3d* endTan, double tol) {
    mFit = fitPoints;
    mTangents = startTan || endTan;
    mStartTan = startTan ? *startTan : AcGeVector3d();
    mEndTan = endTan ? *endTan : AcGeVector3d();
    mFitTol = tol;
    mPeriodic = false;
    Nurbs n;
    if (geimpl::interpolate(fitPoints.std(), 3, startTan, endTan, n))
        *mN = std::move(n);
    else
        *mN = Nurbs();
    mValid = -1;
}

void AcGeNurbCurve3d::setNurbs(const Nurbs& n, bool periodic) {
    *mN = n;
    mValid = -1;
    mPeriodic = periodic;
    purgeFitData();
}

bool AcGeNurbCurve3d::isValid() const {
    if (mValid < 0) mValid = mN->valid() ? 1 : 0;
    return mValid == 1;
}

int AcGeNurbCurve3d::degree() const {
    return mN->degree;
}

int AcGeNurbCurve3d::numKnots() const {
    return static_cast<int>(mN->knots.size());
}

AcGeKnotVector AcGeNurbCurve3d::knots() const {
    AcGeKnotVector k;
    for (double v : mN->knots)
        k.append(v);
    return k;
}

double AcGeNurbCurve3d::knotAt(int i) const {
    return i >= 0 && i < numKnots() ? mN->knots[static_cast<size_t>(i)] : 0.0;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::setKnotAt(int i, double val) {
    if (i >= 0 && i < numKnots()) mN->knots[static_cast<size_t>(i)] = val;
    mValid = -1;
    purgeFitData();
    return *this;
}

int AcGeNurbCurve3d::numControlPoints() const {
    return mN->numCtrl();
}

AcGePoint3d AcGeNurbCurve3d::controlPointAt(int i) const {
    return i >= 0 && i < numControlPoints() ? mN->pts[static_cast<size_t>(i)] : AcGePoint3d();
}

AcGeNurbCurve3d& AcGeNurbCurve3d::setControlPointAt(int i, const AcGePoint3d& pt) {
    if (i >= 0 && i < numControlPoints()) mN->pts[static_cast<size_t>(i)] = pt;
    mValid = -1;
    purgeFitData();
    return *this;
}

double AcGeNurbCurve3d::weightAt(int i) const {
    return i >= 0 && i < numControlPoints() ? mN->weight(i) : 1.0;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::setWeightAt(int i, double weight) {
    if (i < 0 || i >= numControlPoints()) return *this;
    if (mN->weights.empty()) mN->weights.assign(mN->pts.size(), 1.0);
    mN->weights[static_cast<size_t>(i)] = weight;
    mValid = -1;
    purgeFitData();
    return *this;
}

bool AcGeNurbCurve3d::isRational() const {
    return mN->rational();
}

bool AcGeNurbCurve3d::isPeriodic(double& period) const {
    if (!mPeriodic || !isValid()) return false;
    period = mN->hi() - mN->lo();
    return true;
}

AcGePoint3d AcGeNurbCurve3d::startPoint() const {
    return isValid() ? mN->eval(mN->lo()) : AcGePoint3d();
}

AcGePoint3d AcGeNurbCurve3d::endPoint() const {
    return isValid() ? mN->eval(mN->hi()) : AcGePoint3d();
}

void AcGeNurbCurve3d::getDefinitionData(int& degree, bool& rational, bool& periodic,
                                        AcGeKnotVector& knots, AcGePoint3dArray& controlPoints,
                                        AcGeDoubleArray& weights) const {
    degree = mN->degree;
    rational = mN->rational();
    periodic = mPeriodic;
    knots = this->knots();
    controlPoints.removeAll();
    for (const auto& p : mN->pts)
        controlPoints.append(p);
    weights.removeAll();
    for (double w : mN->weights)
        weights.append(w);
}

AcGeNurbCurve3d& AcGeNurbCurve3d::set(int degree, const AcGeKnotVector& knots,
                                      const AcGePoint3dArray& cntrlPnts,
                                      const AcGeDoubleArray& weights, bool isPeriodic) {
    Nurbs n;
    n.degree = degree;
    n.knots = knots.asArray().std();
    n.pts = cntrlPnts.std();
    if (!weights.isEmpty()) n.weights = weights.std();
    if (isPeriodic && degree >= 1) geimpl::unwrapPeriodic(n);
    n.dropUnitWeights();
    setNurbs(n, isPeriodic);
    return *this;
}

int AcGeNurbCurve3d::numFitPoints() const {
    return mFit.length();
}

bool AcGeNurbCurve3d::getFitPointAt(int index, AcGePoint3d& point) const {
    if (index < 0 || index >= mFit.length()) return false;
    point = mFit[index];
    return true;
}

bool AcGeNurbCurve3d::getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const {
    if (mFit.isEmpty() || !mTangents) return false;
    startTangent = mStartTan;
    endTangent = mEndTan;
    return true;
}

bool AcGeNurbCurve3d::getFitData(AcGePoint3dArray& fitPoints, AcGeTol& fitTolerance,
                                 bool& tangentsExist, AcGeVector3d& startTangent,
                                 AcGeVector3d& endTangent) const {
    if (mFit.isEmpty()) return false;
    fitPoints = mFit;
    fitTolerance.setEqualPoint(mFitTol);
    tangentsExist = mTangents;
    startTangent = mStartTan;
    endTangent = mEndTan;
    return true;
}

void AcGeNurbCurve3d::purgeFitData() {
    mFit.removeAll();
    mTangents = false;
    mStartTan = mEndTan = AcGeVector3d();
    mFitTol = 0.0;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::insertKnot(double newKnot) {
    if (isValid() && newKnot > mN->lo() && newKnot < mN->hi() &&
        mN->multiplicity(newKnot, 0.0) < mN->degree)
        mN->insertKnot(newKnot);
    mValid = -1;
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::hardTrimByParams(double newStartParam, double newEndParam) {
    if (!isValid() || !std::isfinite(newStartParam) || !std::isfinite(newEndParam)) return *this;
    if (newStartParam > newEndParam) std::swap(newStartParam, newEndParam);
    newStartParam = std::max(newStartParam, mN->lo());
    newEndParam = std::min(newEndParam, mN->hi());
    if (!(newEndParam > newStartParam)) return *this;
    setNurbs(mN->trimmed(newStartParam, newEndParam));
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::makeClosed() {
    if (!isValid() || isClosed()) return *this;
    Nurbs c = mN->trimmed(mN->lo(), mN->hi());
    Nurbs bridge = geimpl::segment(c.pts.back(), c.pts.front(), c.degree);
    if (c.append(bridge)) setNurbs(c);
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::joinWith(const AcGeNurbCurve3d& curve) {
    if (!isValid() || !curve.isValid() || curve.degree() != degree()) return *this;
    Nurbs c = mN->trimmed(mN->lo(), mN->hi());
    const Nurbs other = curve.mN->trimmed(curve.mN->lo(), curve.mN->hi());
    if (!c.pts.back().isEqualTo(other.pts.front()))
        c.append(geimpl::segment(c.pts.back(), other.pts.front(), c.degree));
    c.append(other);
    setNurbs(c);
    return *this;
}

AcGePoint3d AcGeNurbCurve3d::evalPoint(double param) const {
    return isValid() ? mN->eval(param) : AcGePoint3d();
}

AcGePoint3d AcGeNurbCurve3d::evalPoint(double param, int numDeriv,
                                       AcGeVector3dArray& derivArray) const {
    derivArray.removeAll();
    if (!isValid()) return AcGePoint3d();
    const int nd = std::clamp(numDeriv, 0, 3);
    AcGeVector3d d[3];
    const AcGePoint3d p = mN->eval(param, nd, d);
    for (int k = 0; k < nd; ++k)
        derivArray.append(d[k]);
    return p;
}

double AcGeNurbCurve3d::paramOf(const AcGePoint3d& pt, const AcGeTol&) const {
    if (!isValid()) return 0.0;
    const geimpl::NurbsEval ev(*mN);
    return geimpl::SampledCurve(ev, mN->lo(), mN->hi(), mN->breaks()).closestParam(pt);
}

AcGePoint3d AcGeNurbCurve3d::closestPointTo(const AcGePoint3d& pt, const AcGeTol& tol) const {
    return evalPoint(paramOf(pt, tol));
}

void AcGeNurbCurve3d::getInterval(AcGeInterval& range) const {
    if (isValid())
        range.set(mN->lo(), mN->hi());
    else
        range.set(0.0, 0.0);
}

bool AcGeNurbCurve3d::hasStartPoint(AcGePoint3d& pt) const {
    if (!isValid()) return false;
    pt = startPoint();
    return true;
}

bool AcGeNurbCurve3d::hasEndPoint(AcGePoint3d& pt) const {
    if (!isValid()) return false;
    pt = endPoint();
    return true;
}

double AcGeNurbCurve3d::length(double fromParam, double toParam) const {
    if (!isValid()) return 0.0;
    if (fromParam > toParam) std::swap(fromParam, toParam);
    fromParam = std::max(fromParam, mN->lo());
    toParam = std::min(toParam, mN->hi());
    if (!(toParam > fromParam)) return 0.0;
    const geimpl::NurbsEval ev(*mN);
    return geimpl::SampledCurve(ev, fromParam, toParam, mN->breaks()).length();
}

bool AcGeNurbCurve3d::isClosed(const AcGeTol& tol) const {
    return isValid() && startPoint().isEqualTo(endPoint(), tol);
}

AcGeNurbCurve3d& AcGeNurbCurve3d::reverseParam() {
    if (isValid()) mN->reverse();
    mFit.reverse();
    const AcGeVector3d s = mStartTan;
    mStartTan = -mEndTan;
    mEndTan = -s;
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::transformBy(const AcGeMatrix3d& m) {
    mN->transformBy(m);
    mValid = -1;
    for (auto& p : mFit)
        p.transformBy(m);
    mStartTan.transformBy(m);
    mEndTan.transformBy(m);
    return *this;
}
