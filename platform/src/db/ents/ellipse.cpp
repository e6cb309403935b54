// The ellipse: centre, normal, major axis and radius ratio, with start and end parameters.
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "ge/evaluators.h"
#include "geellip.h"

#include <cmath>
#include <cwchar>

ACRX_CONS_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, L"ELLIPSE")

using namespace ents_detail;

namespace {

bool finiteVec(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

// The sweep from start to end in (0, 2*pi]; equal values make a full turn.
double sweepBetween(double start, double end) {
    const double s = ccwSweep(start, end);
    return s <= 1e-12 ? kTwoPi : s;
}

} // namespace

bool AcDbEllipseImpl::path(const AcDbEllipse& e, PathGeom& g) {
    if (e.isNull()) return false;
    const AcGeVector3d minor = e.mNormal.crossProduct(e.mMajor) * e.mRatio;
    auto ev = std::make_shared<geimpl::EllipseEval>(e.mCenter, e.mMajor, minor);
    g.ev = ev;
    g.t0 = e.mStartParam;
    g.t1 = e.mEndParam;
    g.closed = e.isClosed();
    g.hull = {e.mCenter + e.mMajor, e.mCenter - e.mMajor, e.mCenter + minor, e.mCenter - minor};
    if (!g.closed) {
        // Extended, an elliptical arc is its whole ellipse.
        ExtPart rest;
        rest.ev = ev;
        rest.a = g.t1;
        rest.b = g.t0 + kTwoPi;
        g.ext.push_back(rest);
    }
    return true;
}

void AcDbEllipseImpl::key(const AcDbEllipse& e, std::vector<double>& k) {
    k = {e.mCenter.x, e.mCenter.y, e.mCenter.z, e.mNormal.x, e.mNormal.y,   e.mNormal.z,
         e.mMajor.x,  e.mMajor.y,  e.mMajor.z,  e.mRatio,    e.mStartParam, e.mEndParam};
}

AcDbCurve* AcDbEllipseImpl::sub(const AcDbEllipse& e, double from, double to) {
    auto* out = new AcDbEllipse();
    out->setPropertiesFrom(&e);
    out->mCenter = e.mCenter;
    out->mNormal = e.mNormal;
    out->mMajor = e.mMajor;
    out->mRatio = e.mRatio;
    out->mStartParam = normAngle(from);
    out->mEndParam = out->mStartParam + std::min(to - from, kTwoPi);
    return out;
}

AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
    if (set(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle) != Acad::eOk)
        mMajor = AcGeVector3d(); // no curve
}

// ---------------------------------------------------------------- properties

AcGePoint3d AcDbEllipse::center() const {
    assertReadEnabled();
    return mCenter;
}

Acad::ErrorStatus AcDbEllipse::setCenter(const AcGePoint3d& c) {
    if (!std::isfinite(c.x) || !std::isfinite(c.y) || !std::isfinite(c.z))
        return Acad::eInvalidInput;
    assertWriteEnabled();
    mCenter = c;
    return Acad::eOk;
}

AcGeVector3d AcDbEllipse::normal() const {
    assertReadEnabled();
    return mNormal;
}

AcGeVector3d AcDbEllipse::majorAxis() const {
    assertReadEnabled();
    return mMajor;
}

AcGeVector3d AcDbEllipse::minorAxis() const {
    assertReadEnabled();
    return mNormal.crossProduct(mMajor) * mRatio;
}

double AcDbEllipse::majorRadius() const {
    assertReadEnabled();
    return mMajor.length();
}

double AcDbEllipse::minorRadius() const {
    return majorRadius() * radiusRatio();
}

double AcDbEllipse::radiusRatio() const {
    assertReadEnabled();
    return mRatio;
}

Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
    if (!(ratio > 0.0 && ratio <= 1.0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mRatio = ratio;
    return Acad::eOk;
}

double AcDbEllipse::paramAtAngle(double angle) const {
    assertReadEnabled();
    return normAngle(std::atan2(std::sin(angle), mRatio * std::cos(angle)));
}

double AcDbEllipse::angleAtParam(double param) const {
    assertReadEnabled();
    return normAngle(std::atan2(mRatio * std::sin(param), std::cos(param)));
}

double AcDbEllipse::startAngle() const {
    return angleAtParam(mStartParam);
}

double AcDbEllipse::endAngle() const {
    return angleAtParam(mEndParam);
}

Acad::ErrorStatus AcDbEllipse::setStartParam(double param) {
    if (!std::isfinite(param)) return Acad::eInvalidInput;
    assertWriteEnabled();
    const double end = normAngle(mEndParam);
    mStartParam = normAngle(param);
    mEndParam = mStartParam + sweepBetween(mStartParam, end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setEndParam(double param) {
    if (!std::isfinite(param)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mEndParam = mStartParam + sweepBetween(mStartParam, normAngle(param));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setStartAngle(double angle) {
    if (!std::isfinite(angle)) return Acad::eInvalidInput;
    return setStartParam(paramAtAngle(angle));
}

Acad::ErrorStatus AcDbEllipse::setEndAngle(double angle) {
    if (!std::isfinite(angle)) return Acad::eInvalidInput;
    return setEndParam(paramAtAngle(angle));
}

Acad::ErrorStatus AcDbEllipse::get(AcGePoint3d& center, AcGeVector3d& unitNormal,
                                   AcGeVector3d& majorAxis, double& radiusRatio, double& startAngle,
                                   double& endAngle) const {
    assertReadEnabled();
    center = mCenter;
    unitNormal = mNormal;
    majorAxis = mMajor;
    radiusRatio = mRatio;
    startAngle = this->startAngle();
    endAngle = this->endAngle();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startAngle, double endAngle) {
    if (!finiteVec(center.asVector()) || !finiteVec(unitNormal) || !finiteVec(majorAxis) ||
        !std::isfinite(startAngle) || !std::isfinite(endAngle))
        return Acad::eInvalidInput;
    const double nl = unitNormal.length(), ml = majorAxis.length();
    if (!(nl > 1e-300) || !(ml > 1e-300)) return Acad::eInvalidInput;
    if (!(radiusRatio > 0.0 && radiusRatio <= 1.0 + 1e-12)) return Acad::eInvalidInput;
    const AcGeVector3d n = unitNormal / nl;
    if (std::fabs(n.dotProduct(majorAxis)) > 1e-9 * ml) return Acad::eInvalidInput;
    assertWriteEnabled();
    mCenter = center;
    mNormal = n;
    mMajor = majorAxis - n * n.dotProduct(majorAxis);
    mRatio = std::min(radiusRatio, 1.0);
    mStartParam = paramAtAngle(startAngle);
    const double end = paramAtAngle(endAngle);
    mEndParam =
        mStartParam +
        (normAngle(startAngle) == normAngle(endAngle) ? kTwoPi : sweepBetween(mStartParam, end));
    return Acad::eOk;
}

bool AcDbEllipse::isNull() const {
    assertReadEnabled();
    return !(mMajor.length() > 1e-300) || !(mRatio > 0.0) || !finiteVec(mMajor);
}

bool AcDbEllipse::isClosed() const {
    assertReadEnabled();
    return mEndParam - mStartParam >= kTwoPi - 1e-12;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbEllipse::extend(double newParam) {
    assertWriteEnabled();
    if (!std::isfinite(newParam) || isClosed()) return Acad::eInvalidInput;
    double sweep = 0.0;
    if (newParam < mStartParam)
        sweep = mEndParam - newParam;
    else if (newParam > mEndParam)
        sweep = newParam - mStartParam;
    else
        return Acad::eInvalidInput;
    if (sweep > kTwoPi + 1e-12) return Acad::eInvalidInput;
    if (newParam < mStartParam) {
        mStartParam = normAngle(newParam);
        mEndParam = mStartParam + std::min(sweep, kTwoPi);
    } else {
        mEndParam = mStartParam + std::min(sweep, kTwoPi);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getArea(double& area) const {
    assertReadEnabled();
    if (isNull()) return Acad::eInvalidInput;
    // An affine image of a circle's segment between the arc and its chord.
    const double ab = mMajor.length() * mMajor.length() * mRatio;
    const double t = mEndParam - mStartParam;
    area = isClosed() ? kPi * ab : 0.5 * ab * (t - std::sin(t));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::reverseCurve() {
    assertWriteEnabled();
    // About the opposite normal the minor axis turns over: the point at t is the old one at -t.
    mNormal = -mNormal;
    const double sweep = mEndParam - mStartParam;
    mStartParam = normAngle(-mEndParam);
    mEndParam = mStartParam + sweep;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getOffsetCurves(double offsetDist,
                                               AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDbEllipseImpl::path(*this, g) || !std::isfinite(offsetDist)) return Acad::eInvalidInput;
    AcDbCurve* c = offsetSmooth(g, mNormal, offsetDist);
    if (!c) return Acad::eInvalidInput;
    c->setPropertiesFrom(this);
    offsetCurves.append(c);
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbEllipse::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mCenter);
    filer->writeVector3d(mNormal);
    filer->writeVector3d(mMajor);
    filer->writeDouble(mRatio);
    filer->writeDouble(mStartParam);
    filer->writeDouble(mEndParam);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d c;
    AcGeVector3d n, m;
    double r = 0.0, s = 0.0, e = 0.0;
    filer->readPoint3d(&c);
    filer->readVector3d(&n);
    filer->readVector3d(&m);
    filer->readDouble(&r);
    filer->readDouble(&s);
    filer->readDouble(&e);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    if (!finiteVec(c.asVector()) || !finiteVec(m) || !std::isfinite(r) || !std::isfinite(s) ||
        !std::isfinite(e)) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mCenter = c;
    mNormal = unitNormal(n);
    mMajor = m - mNormal * mNormal.dotProduct(m);
    mRatio = std::clamp(r, 0.0, 1.0);
    mStartParam = normAngle(s);
    const double sweep = e - s;
    mEndParam = mStartParam + (sweep > 0.0 && sweep < kTwoPi ? sweep : kTwoPi);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbEllipse");
    filer->writePoint3d(AcDb::kDxfXCoord, mCenter);
    filer->writeVector3d(static_cast<AcDb::DxfCode>(11), mMajor);
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    filer->writeDouble(AcDb::kDxfReal, mRatio);
    filer->writeDouble(AcDb::kDxfTxtStyleXScale, mStartParam);
    filer->writeDouble(AcDb::kDxfTxtStylePSize, mEndParam);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbEllipse")) return Acad::eBadDxfSequence;
    AcGePoint3d c;
    AcGeVector3d n(0, 0, 1), m(1, 0, 0);
    double r = 1.0, s = 0.0, e = kTwoPi;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        bool mine = true;
        switch (rb.restype) {
        case AcDb::kDxfXCoord:
            c = rbPoint(rb);
            break;
        case 11:
            m = rbVector(rb);
            break;
        case AcDb::kDxfNormalX:
            n = rbVector(rb);
            break;
        case AcDb::kDxfReal:
            r = rb.resval.rreal;
            break;
        case AcDb::kDxfTxtStyleXScale:
            s = rb.resval.rreal;
            break;
        case AcDb::kDxfTxtStylePSize:
            e = rb.resval.rreal;
            break;
        default:
            mine = false;
        }
        if (!mine) {
            filer->pushBackItem();
            break;
        }
    }
    if (filer->filerStatus() != Acad::eOk && filer->filerStatus() != Acad::eEndOfFile)
        return filer->filerStatus();
    if (!finiteVec(c.asVector()) || !finiteVec(n) || !finiteVec(m) || !std::isfinite(r) ||
        !std::isfinite(s) || !std::isfinite(e) || !(r > 0.0 && r <= 1.0) || !(m.length() > 0.0) ||
        !(n.length() > 0.0))
        return Acad::eInvalidInput;
    mCenter = c;
    mNormal = unitNormal(n);
    mMajor = m - mNormal * mNormal.dotProduct(m);
    mRatio = r;
    mStartParam = normAngle(s);
    const double sweep = e - s;
    mEndParam = mStartParam + (sweep > 0.0 && sweep < kTwoPi - 1e-12 ? sweep : kTwoPi);
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing and drawing

void AcDbEllipse::subList() const {
    AcDbCurve::subList();
    listPoint(L"Center:", mCenter);
    listVector(L"Major Axis:", mMajor);
    listVector(L"Minor Axis:", minorAxis());
    if (!mNormal.isEqualTo(AcGeVector3d(0, 0, 1))) listVector(L"Normal:", mNormal);
    listValue(L"Radius Ratio:", mRatio);
    if (!isClosed()) {
        listAngle(L"Start Angle:", startAngle());
        listAngle(L"End Angle:", endAngle());
    }
    PathGeom g;
    if (AcDbEllipseImpl::path(*this, g))
        listValue(isClosed() ? L"Circumference:" : L"Length:", g.length());
    double area = 0.0;
    if (getArea(area) == Acad::eOk) listValue(L"Area:", area);
}

Adesk::Boolean AcDbEllipse::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    PathGeom g;
    if (wd && AcDbEllipseImpl::path(*this, g)) drawPath(g, wd);
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbEllipse::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                AcDbIntArray&) const {
    assertReadEnabled();
    const AcGeVector3d minor = minorAxis();
    grips.append(mCenter);
    grips.append(mCenter + mMajor);
    grips.append(mCenter + minor);
    grips.append(mCenter - mMajor);
    grips.append(mCenter - minor);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i : indices) {
        if (i == 0) {
            mCenter += offset;
            return Acad::eOk;
        }
    }
    for (int i : indices) {
        if (i < 1 || i > 4) continue;
        // An axis end pulls its axis along itself; the other axis keeps its length.
        const AcGeVector3d inPlane = offset - mNormal * mNormal.dotProduct(offset);
        const double a = mMajor.length(), b = a * mRatio;
        if (i == 1 || i == 3) {
            const AcGeVector3d end = (i == 1 ? mMajor : -mMajor) + inPlane;
            const double len = std::fabs(end.dotProduct(mMajor / a));
            if (!(len >= b) || !(len > 0.0)) return Acad::eInvalidInput;
            mMajor = mMajor / a * len;
            mRatio = b / len;
        } else {
            const AcGeVector3d dir = mNormal.crossProduct(mMajor) / a;
            const AcGeVector3d end = (i == 2 ? dir * b : -dir * b) + inPlane;
            const double len = std::fabs(end.dotProduct(dir));
            if (!(len > 0.0) || !(len <= a)) return Acad::eInvalidInput;
            mRatio = len / a;
        }
        return Acad::eOk;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                 const AcGePoint3d& pickPoint,
                                                 const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                                 AcGePoint3dArray& snapPoints,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDbEllipseImpl::path(*this, g)) return Acad::eOk;
    if (mode == AcDb::kOsModeCen) {
        snapPoints.append(mCenter);
    } else if (mode == AcDb::kOsModeQuad) {
        for (int q = 0; q < 4; ++q) {
            const double t = q * kPi / 2.0;
            if (isClosed() || mStartParam + ccwSweep(mStartParam, t) <= mEndParam + 1e-12)
                snapPoints.append(g.ev->eval(t));
        }
    } else {
        pathSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    if (isNull()) return Acad::eInvalidInput;
    const double a = mMajor.length();
    const AcGeVector3d x = mMajor / a;
    AcGeEllipArc3d e(mCenter, x, mNormal.crossProduct(x), a, a * mRatio, mStartParam, mEndParam);
    AcGeVector3d p = x * a, q = mNormal.crossProduct(x) * (a * mRatio);
    p.transformBy(xform);
    q.transformBy(xform);
    if (!(p.crossProduct(q).length() > 1e-300 * std::max(1.0, p.lengthSqrd())))
        return Acad::eInvalidInput; // the plane collapses to a line
    const bool full = isClosed();
    e.transformBy(xform);
    if (!(e.majorRadius() > 0.0) || !(e.minorRadius() > 0.0)) return Acad::eInvalidInput;
    mCenter = e.center();
    mNormal = unitNormal(e.normal());
    mMajor = e.majorAxis() * e.majorRadius();
    mRatio = std::min(1.0, e.minorRadius() / e.majorRadius());
    mStartParam = normAngle(e.startAng());
    mEndParam = mStartParam + (full ? kTwoPi : e.endAng() - e.startAng());
    return Acad::eOk;
}
