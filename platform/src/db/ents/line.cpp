// The line: two world points, parameterised by the distance from the start.
#include "cmdline.h"
#include "db/ents/entsimpl.h"

#include <cmath>

ACRX_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE")

using namespace ents_detail;

void AcDbLineImpl::geom(const AcDbLine& e, CurveGeom& g) {
    const AcGeVector3d d = e.mEnd - e.mStart;
    const double len = d.length();
    Frame f;
    f.origin = e.mStart;
    if (len > 0.0 && std::isfinite(len)) {
        f.x = d / len;
        // A plane through the line as close to the line's normal plane as it can be.
        AcGeVector3d z = unitNormal(e.mNormal);
        z -= f.x * z.dotProduct(f.x);
        if (z.length() < 1e-9) z = f.x.perpVector();
        f.z = unitNormal(z);
        f.y = unitNormal(f.z.crossProduct(f.x));
    } else {
        f = Frame::ocs(e.mNormal, e.mStart);
    }
    g.frame = f;
    g.linear = true;
    g.add(Piece::line(AcGePoint2d(0, 0), AcGePoint2d(std::isfinite(len) ? len : 0.0, 0)), 0.0,
          std::isfinite(len) ? len : 0.0);
}

AcDbCurve* AcDbLineImpl::sub(const AcDbLine& e, double from, double to) {
    CurveGeom g;
    geom(e, g);
    AcGePoint3d a, b;
    if (g.pointAtParam(from, a) != Acad::eOk || g.pointAtParam(to, b) != Acad::eOk) return nullptr;
    auto* l = new AcDbLine(a, b);
    l->setPropertiesFrom(&e);
    l->mNormal = e.mNormal;
    l->mThickness = e.mThickness;
    return l;
}

// ---------------------------------------------------------------- properties

AcGePoint3d AcDbLine::startPoint() const {
    assertReadEnabled();
    return mStart;
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& p) {
    assertWriteEnabled();
    mStart = p;
    return Acad::eOk;
}

AcGePoint3d AcDbLine::endPoint() const {
    assertReadEnabled();
    return mEnd;
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& p) {
    assertWriteEnabled();
    mEnd = p;
    return Acad::eOk;
}

double AcDbLine::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDbLine::setThickness(double t) {
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

AcGeVector3d AcDbLine::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbLine::getOffsetCurves(double offsetDist,
                                            AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    const AcGeVector3d d = mEnd - mStart;
    // Positive distances go to the right of the direction of travel, as they do outwards for arcs.
    AcGeVector3d side = d.crossProduct(unitNormal(mNormal));
    if (side.length() <= 1e-12 * std::max(1.0, d.length())) return Acad::eInvalidInput;
    side = unitNormal(side) * offsetDist;
    auto* l = new AcDbLine(mStart + side, mEnd + side);
    l->setPropertiesFrom(this);
    l->mNormal = mNormal;
    l->mThickness = mThickness;
    offsetCurves.append(l);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::extend(double newParam) {
    assertWriteEnabled();
    const AcGeVector3d d = mEnd - mStart;
    const double len = d.length();
    if (!(len > 0.0) || !std::isfinite(newParam)) return Acad::eInvalidInput;
    const AcGePoint3d p = mStart + d * (newParam / len);
    if (newParam < 0.0)
        mStart = p;
    else if (newParam > len)
        mEnd = p;
    else
        return Acad::eInvalidInput;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getArea(double& area) const {
    assertReadEnabled();
    area = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::reverseCurve() {
    assertWriteEnabled();
    std::swap(mStart, mEnd);
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbLine::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mStart);
    filer->writePoint3d(mEnd);
    filer->writeVector3d(mNormal);
    filer->writeDouble(mThickness);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d s, e;
    AcGeVector3d n;
    double t = 0.0;
    filer->readPoint3d(&s);
    filer->readPoint3d(&e);
    filer->readVector3d(&n);
    filer->readDouble(&t);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mStart = s;
    mEnd = e;
    mNormal = unitNormal(n);
    mThickness = t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbLine");
    filer->writeDouble(AcDb::kDxfThickness, mThickness);
    filer->writePoint3d(AcDb::kDxfXCoord, mStart);
    filer->writePoint3d(static_cast<AcDb::DxfCode>(AcDb::kDxfXCoord + 1), mEnd);
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbLine")) return Acad::eBadDxfSequence;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        switch (rb.restype) {
        case AcDb::kDxfThickness:
            mThickness = rb.resval.rreal;
            continue;
        case AcDb::kDxfXCoord:
            mStart = rbPoint(rb);
            continue;
        case AcDb::kDxfXCoord + 1:
            mEnd = rbPoint(rb);
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
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbLine::subList() const {
    AcDbCurve::subList();
    const AcGeVector3d d = mEnd - mStart;
    listPoint(L"from point,", mStart);
    listPoint(L"to   point,", mEnd);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
    acutPrintf(L"\n%18s %10.4f,  Angle in XY Plane = %8.4f", L"Length =", d.length(),
               normAngle(std::atan2(d.y, d.x)) * 180.0 / kPi);
    acutPrintf(L"\n%18s %10.4f,  Delta Y = %10.4f,  Delta Z = %10.4f", L"Delta X =", d.x, d.y, d.z);
    if (mThickness != 0.0) listValue(L"Thickness =", mThickness);
}

Adesk::Boolean AcDbLine::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd) return Adesk::kTrue;
    const AcGePoint3d pts[2] = {mStart, mEnd};
    if (mThickness != 0.0) wd->subEntityTraits().setThickness(mThickness);
    wd->geometry().polyline(2, pts, &mNormal);
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    grips.append(mStart);
    grips.append(mEnd);
    grips.append(mStart + (mEnd - mStart) * 0.5);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    assertWriteEnabled();
    bool start = false, end = false;
    for (int i : indices) {
        if (i == 0 || i == 2) start = true;
        if (i == 1 || i == 2) end = true;
    }
    if (start) mStart += offset;
    if (end) mEnd += offset;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetStretchPoints(AcGePoint3dArray& pts) const {
    assertReadEnabled();
    pts.append(mStart);
    pts.append(mEnd);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled();
    bool start = false, end = false;
    for (int i : indices) {
        start = start || i == 0;
        end = end || i == 1;
    }
    if (start) mStart += offset;
    if (end) mEnd += offset;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                              const AcGePoint3d& pickPoint,
                                              const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                              AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbLineImpl::geom(*this, g);
    curveSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    AcGeVector3d n = unitNormal(mNormal);
    n.transformBy(xform);
    mStart.transformBy(xform);
    mEnd.transformBy(xform);
    const double scale = n.length();
    if (scale > 1e-300 && std::isfinite(scale)) {
        mNormal = n / scale;
        mThickness *= scale;
    }
    return Acad::eOk;
}
