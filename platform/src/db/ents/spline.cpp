// The spline: control data, fit data and the curve operations on them.
#include "db/ents/entsimpl.h"
#include "ge/evaluators.h"
#include "ge/nurbscore.h"

#include <algorithm>
#include <cmath>

ACRX_CONS_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, L"SPLINE")

using namespace ents_detail;
using geimpl::Nurbs;

namespace {

bool finitePoint(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool hasLength(const AcGeVector3d& v) {
    return v.length() > 1e-300 && std::isfinite(v.length());
}

} // namespace

bool AcDbSplineImpl::path(const AcDbSpline& e, PathGeom& g) {
    if (!e.mN->valid()) return false;
    const auto ev = std::make_shared<geimpl::NurbsEval>(*e.mN);
    g.ev = ev;
    g.t0 = e.mN->lo();
    g.t1 = e.mN->hi();
    g.breaks = e.mN->breaks();
    g.closed = e.isClosed();
    g.hull = e.mN->pts;
    return true;
}

void AcDbSplineImpl::key(const AcDbSpline& e, std::vector<double>& k) {
    const Nurbs& n = *e.mN;
    k.assign({static_cast<double>(n.degree), n.pts.size() * 1.0, n.weights.size() * 1.0});
    k.insert(k.end(), n.knots.begin(), n.knots.end());
    for (const auto& p : n.pts)
        k.insert(k.end(), {p.x, p.y, p.z});
    k.insert(k.end(), n.weights.begin(), n.weights.end());
}

const Nurbs* AcDbSplineImpl::nurbs(const AcDbSpline& e) {
    return e.mN.get();
}

AcDbCurve* AcDbSplineImpl::sub(const AcDbSpline& e, double from, double to) {
    const Nurbs& n = *e.mN;
    if (!n.valid() || !(to > from)) return nullptr;
    Nurbs piece;
    const double lo = n.lo(), hi = n.hi();
    if (to <= hi + 1e-12 * std::max(1.0, std::fabs(hi))) {
        piece = n.trimmed(from, std::min(to, hi));
    } else {
        // Round the seam of a closed spline: the end of one period, then the start of the next.
        piece = n.trimmed(from, hi);
        const Nurbs rest = n.trimmed(lo, std::min(hi, lo + (to - hi)));
        if (!piece.append(rest)) return nullptr;
    }
    auto* s = new AcDbSpline();
    s->setPropertiesFrom(&e);
    *s->mN = std::move(piece);
    s->mN->dropUnitWeights();
    s->mCtrlTol = e.mCtrlTol;
    s->mKnotTol = e.mKnotTol;
    return s;
}

AcDbSpline::AcDbSpline() : mN(std::make_unique<Nurbs>()) {}

AcDbSpline::~AcDbSpline() = default;

AcDbSpline::AcDbSpline(const AcDbSpline& other)
    : AcDbCurve(other), mN(std::make_unique<Nurbs>(*other.mN)), mPeriodic(other.mPeriodic),
      mCtrlTol(other.mCtrlTol), mKnotTol(other.mKnotTol), mFit(other.mFit),
      mStartTan(other.mStartTan), mEndTan(other.mEndTan), mFitDegree(other.mFitDegree),
      mFitTol(other.mFitTol) {}

AcDbSpline& AcDbSpline::operator=(const AcDbSpline& other) {
    if (this != &other) {
        AcDbCurve::operator=(other);
        *mN = *other.mN;
        mPeriodic = other.mPeriodic;
        mCtrlTol = other.mCtrlTol;
        mKnotTol = other.mKnotTol;
        mFit = other.mFit;
        mStartTan = other.mStartTan;
        mEndTan = other.mEndTan;
        mFitDegree = other.mFitDegree;
        mFitTol = other.mFitTol;
    }
    return *this;
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, int order, double fitTolerance)
    : AcDbSpline() {
    setFitData(fitPoints, order - 1, fitTolerance, AcGeVector3d(), AcGeVector3d());
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                       const AcGeVector3d& endTangent, int order, double fitTolerance)
    : AcDbSpline() {
    setFitData(fitPoints, order - 1, fitTolerance, startTangent, endTangent);
}

AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic,
                       const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                       const AcGeDoubleArray& weights, double controlPtTol, double knotTol)
    : AcDbSpline() {
    setNurbsData(degree, rational, closed, periodic, controlPoints, knots, weights, controlPtTol,
                 knotTol);
}

void AcDbSpline::rebuild() {
    Nurbs n;
    const AcGeVector3d* s = hasLength(mStartTan) ? &mStartTan : nullptr;
    const AcGeVector3d* e = hasLength(mEndTan) ? &mEndTan : nullptr;
    if (geimpl::interpolate(mFit, mFitDegree, s, e, n))
        *mN = std::move(n);
    else
        *mN = Nurbs();
    mPeriodic = false;
}

// ---------------------------------------------------------------- properties

bool AcDbSpline::isNull() const {
    assertReadEnabled();
    return !mN->valid();
}

bool AcDbSpline::isRational() const {
    assertReadEnabled();
    return mN->rational();
}

int AcDbSpline::degree() const {
    assertReadEnabled();
    return mN->valid() ? mN->degree : mFitDegree;
}

bool AcDbSpline::isClosed() const {
    assertReadEnabled();
    if (!mN->valid()) return false;
    const AcGePoint3d a = mN->eval(mN->lo()), b = mN->eval(mN->hi());
    double size = 0.0;
    for (const auto& p : mN->pts)
        size = std::max(size, p.distanceTo(mN->pts.front()));
    return a.distanceTo(b) <= 1e-10 * std::max(1.0, size);
}

bool AcDbSpline::isPeriodic() const {
    assertReadEnabled();
    return mPeriodic && mN->valid();
}

bool AcDbSpline::isPlanar() const {
    PathGeom g;
    if (!AcDbSplineImpl::path(*this, g)) return false;
    AcGePoint3d o;
    AcGeVector3d n;
    AcDb::Planarity t;
    return g.plane(o, n, t);
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int& degree, Adesk::Boolean& rational,
                                           Adesk::Boolean& closed, Adesk::Boolean& periodic,
                                           AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                           AcGeDoubleArray& weights, double& controlPtTol,
                                           double& knotTol) const {
    assertReadEnabled();
    degree = mN->degree;
    rational = mN->rational();
    closed = isClosed();
    periodic = isPeriodic();
    controlPoints.removeAll();
    for (const auto& p : mN->pts)
        controlPoints.append(p);
    knots.removeAll();
    for (double k : mN->knots)
        knots.append(k);
    weights.removeAll();
    for (double w : mN->weights)
        weights.append(w);
    controlPtTol = mCtrlTol;
    knotTol = mKnotTol;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, Adesk::Boolean rational, Adesk::Boolean,
                                           Adesk::Boolean periodic,
                                           const AcGePoint3dArray& controlPoints,
                                           const AcGeDoubleArray& knots,
                                           const AcGeDoubleArray& weights, double controlPtTol,
                                           double knotTol) {
    Nurbs n;
    n.degree = degree;
    n.pts = controlPoints.std();
    n.knots = knots.std();
    if (rational) {
        if (weights.length() != controlPoints.length()) return Acad::eInvalidInput;
        n.weights = weights.std();
    }
    if (periodic) geimpl::unwrapPeriodic(n);
    if (!n.valid()) return Acad::eInvalidInput;
    n.dropUnitWeights();
    assertWriteEnabled();
    *mN = std::move(n);
    mPeriodic = periodic;
    mCtrlTol = std::isfinite(controlPtTol) ? std::fabs(controlPtTol) : 0.0;
    mKnotTol = std::isfinite(knotTol) ? std::fabs(knotTol) : 0.0;
    mFit.clear();
    mStartTan = mEndTan = AcGeVector3d();
    return Acad::eOk;
}

int AcDbSpline::numControlPoints() const {
    assertReadEnabled();
    return mN->numCtrl();
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || index >= mN->numCtrl()) return Acad::eInvalidIndex;
    point = mN->pts[static_cast<size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= mN->numCtrl()) return Acad::eInvalidIndex;
    if (!finitePoint(point)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mN->pts[static_cast<size_t>(index)] = point;
    // The curve no longer passes through the fit points.
    mFit.clear();
    return Acad::eOk;
}

double AcDbSpline::weightAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < mN->numCtrl() ? mN->weight(index) : 1.0;
}

Acad::ErrorStatus AcDbSpline::setWeightAt(int index, double weight) {
    if (index < 0 || index >= mN->numCtrl()) return Acad::eInvalidIndex;
    if (!(weight > 0.0) || !std::isfinite(weight)) return Acad::eInvalidInput;
    assertWriteEnabled();
    if (mN->weights.empty()) mN->weights.assign(mN->pts.size(), 1.0);
    mN->weights[static_cast<size_t>(index)] = weight;
    mFit.clear();
    return Acad::eOk;
}

int AcDbSpline::numKnots() const {
    assertReadEnabled();
    return static_cast<int>(mN->knots.size());
}

Acad::ErrorStatus AcDbSpline::insertKnot(double param) {
    if (!mN->valid() || !std::isfinite(param) || !(param > mN->lo() && param < mN->hi()))
        return Acad::eInvalidInput;
    if (mN->multiplicity(param, 0.0) >= mN->degree) return Acad::eInvalidInput;
    assertWriteEnabled();
    mN->insertKnot(param);
    return Acad::eOk;
}

// ---------------------------------------------------------------- fit data

bool AcDbSpline::hasFitData() const {
    assertReadEnabled();
    return !mFit.empty();
}

int AcDbSpline::numFitPoints() const {
    assertReadEnabled();
    return static_cast<int>(mFit.size());
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || static_cast<size_t>(index) >= mFit.size()) return Acad::eInvalidIndex;
    point = mFit[static_cast<size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || static_cast<size_t>(index) >= mFit.size()) return Acad::eInvalidIndex;
    if (!finitePoint(point)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mFit[static_cast<size_t>(index)] = point;
    rebuild();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::insertFitPointAt(int index, const AcGePoint3d& point) {
    // A spline made from control data has no fit points to add to.
    if (mFit.empty() && mN->valid()) return Acad::eNotApplicable;
    if (index < 0 || static_cast<size_t>(index) > mFit.size()) return Acad::eInvalidIndex;
    if (!finitePoint(point)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mFit.insert(mFit.begin() + index, point);
    rebuild();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::removeFitPointAt(int index) {
    if (index < 0 || static_cast<size_t>(index) >= mFit.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mFit.erase(mFit.begin() + index);
    rebuild();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitData(AcGePoint3dArray& fitPoints, int& degree,
                                         double& fitTolerance, Adesk::Boolean& tangentsExist,
                                         AcGeVector3d& startTangent,
                                         AcGeVector3d& endTangent) const {
    assertReadEnabled();
    if (mFit.empty()) return Acad::eNotApplicable;
    fitPoints.removeAll();
    for (const auto& p : mFit)
        fitPoints.append(p);
    degree = mFitDegree;
    fitTolerance = mFitTol;
    tangentsExist = hasLength(mStartTan) || hasLength(mEndTan);
    startTangent = mStartTan;
    endTangent = mEndTan;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitData(const AcGePoint3dArray& fitPoints, int degree,
                                         double fitTolerance, const AcGeVector3d& startTangent,
                                         const AcGeVector3d& endTangent) {
    if (degree < 1 || degree > 25 || !std::isfinite(fitTolerance) || fitTolerance < 0.0)
        return Acad::eInvalidInput;
    for (const auto& p : fitPoints)
        if (!finitePoint(p)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mFit = fitPoints.std();
    mFitDegree = degree;
    mFitTol = fitTolerance;
    mStartTan = hasLength(startTangent) ? startTangent : AcGeVector3d();
    mEndTan = hasLength(endTangent) ? endTangent : AcGeVector3d();
    rebuild();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitTangents(AcGeVector3d& startTangent,
                                             AcGeVector3d& endTangent) const {
    assertReadEnabled();
    if (mFit.empty()) return Acad::eNotApplicable;
    startTangent = mStartTan;
    endTangent = mEndTan;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitTangents(const AcGeVector3d& startTangent,
                                             const AcGeVector3d& endTangent) {
    if (mFit.empty() && mN->valid()) return Acad::eNotApplicable;
    assertWriteEnabled();
    mStartTan = hasLength(startTangent) ? startTangent : AcGeVector3d();
    mEndTan = hasLength(endTangent) ? endTangent : AcGeVector3d();
    rebuild();
    return Acad::eOk;
}

double AcDbSpline::fitTolerance() const {
    assertReadEnabled();
    return mFitTol;
}

Acad::ErrorStatus AcDbSpline::setFitTol(double tol) {
    if (!std::isfinite(tol) || tol < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mFitTol = tol;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
    assertWriteEnabled();
    mFit.clear();
    mStartTan = mEndTan = AcGeVector3d();
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbSpline::getArea(double& area) const {
    PathGeom g;
    if (!AcDbSplineImpl::path(*this, g)) return Acad::eInvalidInput;
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcDb::Planarity type;
    if (!g.plane(origin, normal, type)) return Acad::eNotApplicable;
    area = type == AcDb::kLinear ? 0.0 : planarArea(g, normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::reverseCurve() {
    assertWriteEnabled();
    if (mN->valid()) mN->reverse();
    std::reverse(mFit.begin(), mFit.end());
    const AcGeVector3d s = mStartTan;
    mStartTan = -mEndTan;
    mEndTan = -s;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getOffsetCurves(double offsetDist,
                                              AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDbSplineImpl::path(*this, g) || !std::isfinite(offsetDist)) return Acad::eInvalidInput;
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcDb::Planarity type;
    if (!g.plane(origin, normal, type) || type != AcDb::kPlanar) return Acad::eNotApplicable;
    AcDbCurve* c = offsetSmooth(g, normal, offsetDist);
    if (!c) return Acad::eInvalidInput;
    c->setPropertiesFrom(this);
    offsetCurves.append(c);
    return Acad::eOk;
}
