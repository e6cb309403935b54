// The circle: parameterised by the angle from the x axis of its plane system, 0 to 2*pi.
#include "cmdline.h"
#include "db/ents/entsimpl.h"

#include <cmath>

ACRX_CONS_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, L"CIRCLE")

using namespace ents_detail;

void AcDbCircleImpl::geom(const AcDbCircle& e, CurveGeom& g) {
    g.frame = Frame::ocs(e.mNormal, e.mCenter);
    g.closed = true;
    g.add(Piece::arcOf(AcGePoint2d(0, 0), e.mRadius, 0.0, kTwoPi), 0.0, kTwoPi);
}

AcDbCurve* AcDbCircleImpl::sub(const AcDbCircle& e, double from, double to) {
    auto* a = new AcDbArc(e.mCenter, e.mNormal, e.mRadius, from, to);
    a->setPropertiesFrom(&e);
    a->setThickness(e.mThickness);
    return a;
}

// ---------------------------------------------------------------- properties

AcGePoint3d AcDbCircle::center() const {
    assertReadEnabled();
    return mCenter;
}

Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& c) {
    assertWriteEnabled();
    mCenter = c;
    return Acad::eOk;
}

double AcDbCircle::radius() const {
    assertReadEnabled();
    return mRadius;
}

Acad::ErrorStatus AcDbCircle::setRadius(double r) {
    if (!(r > 0.0) || !std::isfinite(r)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mRadius = r;
    return Acad::eOk;
}

double AcDbCircle::circumference() const {
    return kTwoPi * radius();
}

AcGeVector3d AcDbCircle::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

double AcDbCircle::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDbCircle::setThickness(double t) {
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbCircle::getOffsetCurves(double offsetDist,
                                              AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    // Positive distances make the circle larger.
    const double r = mRadius + offsetDist;
    if (!(r > 0.0) || !std::isfinite(r)) return Acad::eInvalidInput;
    auto* c = new AcDbCircle(mCenter, mNormal, r);
    c->setPropertiesFrom(this);
    c->mThickness = mThickness;
    offsetCurves.append(c);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::extend(double) {
    assertWriteEnabled();
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCircle::getArea(double& area) const {
    assertReadEnabled();
    area = kPi * mRadius * mRadius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::reverseCurve() {
    assertWriteEnabled();
    mNormal = -mNormal;
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbCircle::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mCenter);
    filer->writeVector3d(mNormal);
    filer->writeDouble(mRadius);
    filer->writeDouble(mThickness);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d c;
    AcGeVector3d n;
    double r = 0.0, t = 0.0;
    filer->readPoint3d(&c);
    filer->readVector3d(&n);
    filer->readDouble(&r);
    filer->readDouble(&t);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mCenter = c;
    mNormal = unitNormal(n);
    mRadius = std::isfinite(r) ? std::fabs(r) : 0.0;
    mThickness = t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbCircle");
    filer->writeDouble(AcDb::kDxfThickness, mThickness);
    filer->writePoint3d(AcDb::kDxfXCoord, worldToOcs(mCenter, mNormal));
    filer->writeDouble(AcDb::kDxfReal, mRadius);
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbCircle")) return Acad::eBadDxfSequence;
    AcGePoint3d ocsCenter;
    resbuf rb{};
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
        default:
            filer->pushBackItem();
            break;
        }
        break;
    }
    mCenter = ocsToWorld(ocsCenter, mNormal);
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbCircle::subList() const {
    AcDbCurve::subList();
    listPoint(L"center point,", mCenter);
    listValue(L"radius", mRadius);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
    listValue(L"circumference", kTwoPi * mRadius);
    listValue(L"area", kPi * mRadius * mRadius);
    if (mThickness != 0.0) listValue(L"thickness", mThickness);
}

Adesk::Boolean AcDbCircle::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd) return Adesk::kTrue;
    if (mThickness != 0.0) wd->subEntityTraits().setThickness(mThickness);
    wd->geometry().circle(mCenter, mRadius, unitNormal(mNormal));
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                               AcDbIntArray&) const {
    assertReadEnabled();
    const Frame f = Frame::ocs(mNormal, mCenter);
    grips.append(mCenter);
    grips.append(mCenter + f.x * mRadius);
    grips.append(mCenter + f.y * mRadius);
    grips.append(mCenter - f.x * mRadius);
    grips.append(mCenter - f.y * mRadius);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i : indices)
        if (i == 0) {
            mCenter += offset;
            return Acad::eOk;
        }
    AcGeVector3d dirs[4];
    const Frame f = Frame::ocs(mNormal, mCenter);
    dirs[0] = f.x;
    dirs[1] = f.y;
    dirs[2] = -f.x;
    dirs[3] = -f.y;
    for (int i : indices)
        if (i >= 1 && i <= 4) {
            // A quadrant grip sets the radius to its new distance from the centre, in the plane.
            const AcGePoint2d q = f.toLocal(mCenter + dirs[i - 1] * mRadius + offset);
            const double r = q.asVector().length();
            if (r > 0.0 && std::isfinite(r)) mRadius = r;
            break;
        }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                const AcGePoint3d& pickPoint,
                                                const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                                AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbCircleImpl::geom(*this, g);
    curveSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    AcGePoint3d c = mCenter;
    AcGeVector3d n = mNormal;
    double r = mRadius, t = mThickness;
    if (Acad::ErrorStatus es = transformCircular(xform, c, n, r, nullptr, nullptr, t);
        es != Acad::eOk)
        return es;
    mCenter = c;
    mNormal = n;
    mRadius = r;
    mThickness = t;
    return Acad::eOk;
}
