// The arc: a centre, radius and two angles counter-clockwise about the normal in the plane
// system of the normal. Its parameter is the angle, from the start angle up to the end angle
// taken above it.
#include "cmdline.h"
#include "db/ents/entsimpl.h"

#include <cmath>
#include <cwchar>

ACRX_CONS_DEFINE_MEMBERS(AcDbArc, AcDbCurve, L"ARC")

using namespace ents_detail;

namespace ents_detail {

Acad::ErrorStatus transformCircular(const AcGeMatrix3d& m, AcGePoint3d& center,
                                    AcGeVector3d& normal, double& radius, double* startAngle,
                                    double* endAngle, double& thickness) {
    const Frame f = Frame::ocs(normal, center);
    if (!keepsCircles(m, f.x, f.y)) return kCannotScaleNonUniformly;
    AcGeVector3d xi = f.x, yi = f.y, ni = f.z;
    xi.transformBy(m);
    yi.transformBy(m);
    ni.transformBy(m);
    const AcGeVector3d planeNormal = unitNormal(xi.crossProduct(yi));
    const bool flip = ni.length() > 1e-300 && planeNormal.dotProduct(ni) < 0.0;
    const AcGeVector3d newNormal = flip ? -planeNormal : planeNormal;
    AcGePoint3d newCenter = center;
    newCenter.transformBy(m);
    if (startAngle && endAngle) {
        AcGePoint3d ps =
            f.toWorld(AcGePoint2d(radius * std::cos(*startAngle), radius * std::sin(*startAngle)));
        AcGePoint3d pe =
            f.toWorld(AcGePoint2d(radius * std::cos(*endAngle), radius * std::sin(*endAngle)));
        ps.transformBy(m);
        pe.transformBy(m);
        const Frame nf = Frame::ocs(newNormal, newCenter);
        const AcGePoint2d s = nf.toLocal(ps), e = nf.toLocal(pe);
        double as = normAngle(std::atan2(s.y, s.x)), ae = normAngle(std::atan2(e.y, e.x));
        if (flip) std::swap(as, ae);
        *startAngle = as;
        *endAngle = ae;
    }
    center = newCenter;
    normal = newNormal;
    radius *= xi.length();
    const double along = ni.dotProduct(newNormal);
    if (std::isfinite(along)) thickness *= along;
    return Acad::eOk;
}

bool circleThrough(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c,
                   AcGePoint2d& center, double& radius) {
    const AcGeVector2d ab = b - a, ac = c - a;
    const double d = 2.0 * (ab.x * ac.y - ab.y * ac.x);
    const double scale = std::max(ab.lengthSqrd(), ac.lengthSqrd());
    if (!(std::fabs(d) > 1e-12 * scale)) return false;
    const double ux = (ac.y * ab.lengthSqrd() - ab.y * ac.lengthSqrd()) / d;
    const double uy = (ab.x * ac.lengthSqrd() - ac.x * ab.lengthSqrd()) / d;
    center = a + AcGeVector2d(ux, uy);
    radius = std::hypot(ux, uy);
    return std::isfinite(radius);
}

} // namespace ents_detail

void AcDbArcImpl::geom(const AcDbArc& e, CurveGeom& g) {
    g.frame = Frame::ocs(e.mNormal, e.mCenter);
    const double sweep = ccwSweep(e.mStartAngle, e.mEndAngle);
    g.add(Piece::arcOf(AcGePoint2d(0, 0), e.mRadius, e.mStartAngle, sweep), e.mStartAngle, sweep);
}

AcDbCurve* AcDbArcImpl::sub(const AcDbArc& e, double from, double to) {
    auto* a = new AcDbArc(e.mCenter, e.mNormal, e.mRadius, from, to);
    a->setPropertiesFrom(&e);
    a->mThickness = e.mThickness;
    return a;
}

AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : AcDbArc(center, AcGeVector3d(0, 0, 1), radius, startAngle, endAngle) {}

AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                 double startAngle, double endAngle)
    : mCenter(center), mNormal(unitNormal(normal)),
      mRadius(std::isfinite(radius) ? std::fabs(radius) : 0.0), mStartAngle(normAngle(startAngle)),
      mEndAngle(normAngle(endAngle)) {}

// ---------------------------------------------------------------- properties

AcGePoint3d AcDbArc::center() const {
    assertReadEnabled();
    return mCenter;
}

Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& c) {
    assertWriteEnabled();
    mCenter = c;
    return Acad::eOk;
}

double AcDbArc::radius() const {
    assertReadEnabled();
    return mRadius;
}

Acad::ErrorStatus AcDbArc::setRadius(double r) {
    if (!(r > 0.0) || !std::isfinite(r)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mRadius = r;
    return Acad::eOk;
}

double AcDbArc::startAngle() const {
    assertReadEnabled();
    return mStartAngle;
}

Acad::ErrorStatus AcDbArc::setStartAngle(double a) {
    assertWriteEnabled();
    mStartAngle = normAngle(a);
    return Acad::eOk;
}

double AcDbArc::endAngle() const {
    assertReadEnabled();
    return mEndAngle;
}

Acad::ErrorStatus AcDbArc::setEndAngle(double a) {
    assertWriteEnabled();
    mEndAngle = normAngle(a);
    return Acad::eOk;
}

double AcDbArc::totalAngle() const {
    assertReadEnabled();
    return ccwSweep(mStartAngle, mEndAngle);
}

double AcDbArc::length() const {
    return radius() * totalAngle();
}

AcGeVector3d AcDbArc::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

double AcDbArc::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDbArc::setThickness(double t) {
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbArc::getOffsetCurves(double offsetDist,
                                           AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    // Positive distances make the arc larger.
    const double r = mRadius + offsetDist;
    if (!(r > 0.0) || !std::isfinite(r)) return Acad::eInvalidInput;
    auto* a = new AcDbArc(mCenter, mNormal, r, mStartAngle, mEndAngle);
    a->setPropertiesFrom(this);
    a->mThickness = mThickness;
    offsetCurves.append(a);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::extend(double newParam) {
    assertWriteEnabled();
    if (!std::isfinite(newParam)) return Acad::eInvalidInput;
    const double sweep = ccwSweep(mStartAngle, mEndAngle);
    const double endParam = mStartAngle + sweep;
    double newSweep = 0.0;
    if (newParam < mStartAngle)
        newSweep = endParam - newParam;
    else if (newParam > endParam)
        newSweep = newParam - mStartAngle;
    else
        return Acad::eInvalidInput;
    if (newSweep >= kTwoPi) return Acad::eInvalidInput;
    if (newParam < mStartAngle)
        mStartAngle = normAngle(newParam);
    else
        mEndAngle = normAngle(newParam);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getArea(double& area) const {
    assertReadEnabled();
    // The region between the arc and its chord.
    const double t = ccwSweep(mStartAngle, mEndAngle);
    area = 0.5 * mRadius * mRadius * (t - std::sin(t));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::reverseCurve() {
    assertWriteEnabled();
    // The same points, travelled the other way round the opposite normal.
    const Frame f = Frame::ocs(mNormal, mCenter);
    const AcGePoint3d ps = f.toWorld(AcGePoint2d(std::cos(mStartAngle), std::sin(mStartAngle)));
    const AcGePoint3d pe = f.toWorld(AcGePoint2d(std::cos(mEndAngle), std::sin(mEndAngle)));
    mNormal = -mNormal;
    const Frame nf = Frame::ocs(mNormal, mCenter);
    const AcGePoint2d s = nf.toLocal(ps), e = nf.toLocal(pe);
    mStartAngle = normAngle(std::atan2(e.y, e.x));
    mEndAngle = normAngle(std::atan2(s.y, s.x));
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbArc::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mCenter);
    filer->writeVector3d(mNormal);
    filer->writeDouble(mRadius);
    filer->writeDouble(mStartAngle);
    filer->writeDouble(mEndAngle);
    filer->writeDouble(mThickness);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbArc::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d c;
    AcGeVector3d n;
    double r = 0.0, s = 0.0, e = 0.0, t = 0.0;
    filer->readPoint3d(&c);
    filer->readVector3d(&n);
    filer->readDouble(&r);
    filer->readDouble(&s);
    filer->readDouble(&e);
    filer->readDouble(&t);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mCenter = c;
    mNormal = unitNormal(n);
    mRadius = std::isfinite(r) ? std::fabs(r) : 0.0;
    mStartAngle = normAngle(s);
    mEndAngle = normAngle(e);
    mThickness = t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbCircle");
    filer->writeDouble(AcDb::kDxfThickness, mThickness);
    filer->writePoint3d(AcDb::kDxfXCoord, worldToOcs(mCenter, mNormal));
    filer->writeDouble(AcDb::kDxfReal, mRadius);
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    filer->writeString(AcDb::kDxfSubclass, L"AcDbArc");
    filer->writeAngle(AcDb::kDxfAngle, mStartAngle);
    filer->writeAngle(static_cast<AcDb::DxfCode>(AcDb::kDxfAngle + 1), mEndAngle);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbArc::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbCircle")) return Acad::eBadDxfSequence;
    AcGePoint3d ocsCenter;
    resbuf rb{};
    bool arcData = false;
    while (nextItem(filer, rb)) {
        switch (rb.restype) {
        case AcDb::kDxfThickness:
            mThickness = rb.resval.rreal;
            continue;
        case AcDb::kDxfXCoord:
            ocsCenter = rbPoint(rb);
            continue;
        case AcDb::kDxfReal:
            mRadius = std::fabs(rb.resval.rreal);
            continue;
        case AcDb::kDxfNormalX:
            mNormal = unitNormal(rbVector(rb));
            continue;
        case AcDb::kDxfSubclass:
            if (!arcData && rb.resval.rstring && std::wcscmp(rb.resval.rstring, L"AcDbArc") == 0) {
                arcData = true;
                continue;
            }
            filer->pushBackItem();
            break;
        case AcDb::kDxfAngle:
            mStartAngle = normAngle(rb.resval.rreal);
            continue;
        case AcDb::kDxfAngle + 1:
            mEndAngle = normAngle(rb.resval.rreal);
            continue;
        default:
            filer->pushBackItem();
            break;
        }
        break;
    }
    mCenter = ocsToWorld(ocsCenter, mNormal);
    if (!arcData) return Acad::eBadDxfSequence;
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbArc::subList() const {
    AcDbCurve::subList();
    listPoint(L"center point,", mCenter);
    listValue(L"radius", mRadius);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
    listAngle(L"start angle", mStartAngle);
    listAngle(L"end angle", mEndAngle);
    listValue(L"length", length());
    double area = 0.0;
    getArea(area);
    listValue(L"area", area);
    if (mThickness != 0.0) listValue(L"thickness", mThickness);
}

Adesk::Boolean AcDbArc::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd) return Adesk::kTrue;
    const Frame f = Frame::ocs(mNormal, mCenter);
    const AcGeVector3d startVector = f.x * std::cos(mStartAngle) + f.y * std::sin(mStartAngle);
    if (mThickness != 0.0) wd->subEntityTraits().setThickness(mThickness);
    wd->geometry().circularArc(mCenter, mRadius, f.z, startVector,
                               ccwSweep(mStartAngle, mEndAngle));
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                            AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbArcImpl::geom(*this, g);
    grips.append(g.worldAt(0, 0.0));
    grips.append(g.worldAt(0, 0.5));
    grips.append(g.worldAt(0, 1.0));
    grips.append(mCenter);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
    assertWriteEnabled();
    bool moved[4] = {false, false, false, false};
    for (int i : indices)
        if (i >= 0 && i < 4) moved[i] = true;
    if (moved[3]) {
        mCenter += offset;
        return Acad::eOk;
    }
    if (!moved[0] && !moved[1] && !moved[2]) return Acad::eOk;
    // The arc through the start, middle and end points with the chosen ones moved.
    CurveGeom g;
    AcDbArcImpl::geom(*this, g);
    const AcGeVector2d d = g.frame.toLocal(g.frame.origin + offset) - AcGePoint2d(0, 0);
    AcGePoint2d p[3] = {g.pieces[0].at(0.0), g.pieces[0].at(0.5), g.pieces[0].at(1.0)};
    for (int k = 0; k < 3; ++k)
        if (moved[k]) p[k] += d;
    AcGePoint2d c;
    double r = 0.0;
    if (!circleThrough(p[0], p[1], p[2], c, r)) return Acad::eInvalidInput;
    const bool clockwise =
        (p[1] - p[0]).x * (p[2] - p[0]).y - (p[1] - p[0]).y * (p[2] - p[0]).x < 0.0;
    double as = normAngle(std::atan2(p[0].y - c.y, p[0].x - c.x));
    double ae = normAngle(std::atan2(p[2].y - c.y, p[2].x - c.x));
    if (clockwise) std::swap(as, ae);
    mCenter = g.frame.toWorld(c);
    mRadius = r;
    mStartAngle = as;
    mEndAngle = ae;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                             const AcGePoint3d& pickPoint,
                                             const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                             AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbArcImpl::geom(*this, g);
    curveSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    AcGePoint3d c = mCenter;
    AcGeVector3d n = mNormal;
    double r = mRadius, s = mStartAngle, e = mEndAngle, t = mThickness;
    if (Acad::ErrorStatus es = transformCircular(xform, c, n, r, &s, &e, t); es != Acad::eOk)
        return es;
    mCenter = c;
    mNormal = n;
    mRadius = r;
    mStartAngle = s;
    mEndAngle = e;
    mThickness = t;
    return Acad::eOk;
}
