// The spline's filing, listing, drawing, grips, snaps and transforms.
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "ge/nurbscore.h"

#include <algorithm>
#include <cmath>

using namespace ents_detail;
using geimpl::Nurbs;

namespace {

bool finitePoint(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Reads a count and then that many items, each as it arrives, so a count in the data never
// makes the reader allocate more than the data holds.
template <class T, class Read> void readList(AcDbDwgFiler* filer, std::vector<T>& out, Read read) {
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        T v{};
        read(&v);
        if (filer->filerStatus() == Acad::eOk) out.push_back(v);
    }
}

} // namespace

Acad::ErrorStatus AcDbSpline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeInt16(static_cast<Adesk::Int16>(mN->degree));
    filer->writeBool(mPeriodic);
    filer->writeDouble(mCtrlTol);
    filer->writeDouble(mKnotTol);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mN->knots.size()));
    for (double k : mN->knots)
        filer->writeDouble(k);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mN->pts.size()));
    for (const auto& p : mN->pts)
        filer->writePoint3d(p);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mN->weights.size()));
    for (double w : mN->weights)
        filer->writeDouble(w);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mFit.size()));
    for (const auto& p : mFit)
        filer->writePoint3d(p);
    filer->writeVector3d(mStartTan);
    filer->writeVector3d(mEndTan);
    filer->writeInt16(static_cast<Adesk::Int16>(mFitDegree));
    filer->writeDouble(mFitTol);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    Adesk::Int16 degree = 0, fitDegree = 3;
    bool periodic = false;
    double ctrlTol = 0.0, knotTol = 0.0, fitTol = 0.0;
    Nurbs n;
    std::vector<AcGePoint3d> fit;
    AcGeVector3d st, et;
    filer->readInt16(&degree);
    filer->readBool(&periodic);
    filer->readDouble(&ctrlTol);
    filer->readDouble(&knotTol);
    readList(filer, n.knots, [&](double* v) { filer->readDouble(v); });
    readList(filer, n.pts, [&](AcGePoint3d* v) { filer->readPoint3d(v); });
    readList(filer, n.weights, [&](double* v) { filer->readDouble(v); });
    readList(filer, fit, [&](AcGePoint3d* v) { filer->readPoint3d(v); });
    filer->readVector3d(&st);
    filer->readVector3d(&et);
    filer->readInt16(&fitDegree);
    filer->readDouble(&fitTol);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    n.degree = degree;
    const bool badFit =
        std::any_of(fit.begin(), fit.end(), [](const AcGePoint3d& p) { return !finitePoint(p); });
    // Control data, when there is any, must make a curve; fit data alone rebuilds it.
    const bool control = !n.pts.empty() || !n.knots.empty();
    if (badFit || (control && !n.valid()) || fitDegree < 1 || fitDegree > 25) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    *mN = control ? std::move(n) : Nurbs();
    mPeriodic = periodic && control;
    mCtrlTol = ctrlTol;
    mKnotTol = knotTol;
    mFit = std::move(fit);
    mStartTan = st;
    mEndTan = et;
    mFitDegree = fitDegree;
    mFitTol = fitTol;
    if (!control) rebuild();
    return Acad::eOk;
}

// ---------------------------------------------------------------- DXF

Acad::ErrorStatus AcDbSpline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbSpline");
    PathGeom g;
    AcGePoint3d origin;
    AcGeVector3d normal(0, 0, 1);
    AcDb::Planarity type = AcDb::kNonPlanar;
    const bool planar = AcDbSplineImpl::path(*this, g) && g.plane(origin, normal, type);
    if (planar) filer->writeVector3d(AcDb::kDxfNormalX, normal);
    Adesk::Int16 flags = 0;
    if (isClosed()) flags |= 1;
    if (isPeriodic()) flags |= 2;
    if (mN->rational()) flags |= 4;
    if (planar) flags |= 8;
    if (planar && type == AcDb::kLinear) flags |= 16;
    filer->writeInt16(AcDb::kDxfInt16, flags);
    filer->writeInt16(static_cast<AcDb::DxfCode>(71), static_cast<Adesk::Int16>(mN->degree));
    filer->writeInt16(static_cast<AcDb::DxfCode>(72), static_cast<Adesk::Int16>(mN->knots.size()));
    filer->writeInt16(static_cast<AcDb::DxfCode>(73), static_cast<Adesk::Int16>(mN->pts.size()));
    filer->writeInt16(static_cast<AcDb::DxfCode>(74), static_cast<Adesk::Int16>(mFit.size()));
    filer->writeDouble(static_cast<AcDb::DxfCode>(42), mKnotTol);
    filer->writeDouble(static_cast<AcDb::DxfCode>(43), mCtrlTol);
    filer->writeDouble(static_cast<AcDb::DxfCode>(44), mFitTol);
    if (!mFit.empty()) {
        if (mStartTan.length() > 0.0)
            filer->writeVector3d(static_cast<AcDb::DxfCode>(12), mStartTan);
        if (mEndTan.length() > 0.0) filer->writeVector3d(static_cast<AcDb::DxfCode>(13), mEndTan);
    }
    for (double k : mN->knots)
        filer->writeDouble(AcDb::kDxfReal, k);
    for (double w : mN->weights)
        filer->writeDouble(static_cast<AcDb::DxfCode>(41), w);
    for (const auto& p : mN->pts)
        filer->writePoint3d(AcDb::kDxfXCoord, p);
    for (const auto& p : mFit)
        filer->writePoint3d(static_cast<AcDb::DxfCode>(11), p);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbSpline")) return Acad::eBadDxfSequence;
    Nurbs n;
    std::vector<AcGePoint3d> fit;
    AcGeVector3d st, et;
    int flags = 0, degree = 3;
    double ctrlTol = 0.0, knotTol = 0.0, fitTol = 0.0;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        bool mine = true;
        switch (rb.restype) {
        case AcDb::kDxfNormalX:
            break; // the plane follows from the points
        case 70:
            flags = rb.resval.rint;
            break;
        case 71:
            degree = rb.resval.rint;
            break;
        case 72:
        case 73:
        case 74:
            break; // counts are implied by the items that follow
        case 42:
            knotTol = rb.resval.rreal;
            break;
        case 43:
            ctrlTol = rb.resval.rreal;
            break;
        case 44:
            fitTol = rb.resval.rreal;
            break;
        case 12:
            st = rbVector(rb);
            break;
        case 13:
            et = rbVector(rb);
            break;
        case 40:
            n.knots.push_back(rb.resval.rreal);
            break;
        case 41:
            n.weights.push_back(rb.resval.rreal);
            break;
        case 10:
            n.pts.push_back(rbPoint(rb));
            break;
        case 11:
            fit.push_back(rbPoint(rb));
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
    n.degree = degree;
    for (const auto& p : fit)
        if (!finitePoint(p)) return Acad::eInvalidInput;
    const bool control = !n.pts.empty();
    if (control && !n.valid()) return Acad::eInvalidInput;
    if (!control && fit.empty()) return Acad::eInvalidInput;
    n.dropUnitWeights();
    *mN = control ? std::move(n) : Nurbs();
    mPeriodic = control && (flags & 2) != 0;
    mCtrlTol = std::isfinite(ctrlTol) ? ctrlTol : 0.0;
    mKnotTol = std::isfinite(knotTol) ? knotTol : 0.0;
    mFitTol = std::isfinite(fitTol) ? fitTol : 0.0;
    mFit = std::move(fit);
    mStartTan = st;
    mEndTan = et;
    mFitDegree = degree >= 1 && degree <= 25 ? degree : 3;
    if (!control) rebuild();
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing and drawing

void AcDbSpline::subList() const {
    AcDbCurve::subList();
    PathGeom g;
    const bool curve = AcDbSplineImpl::path(*this, g);
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcDb::Planarity type = AcDb::kNonPlanar;
    const bool planar = curve && g.plane(origin, normal, type);
    acutPrintf(L"\n%18s %s, %s, %s", L"Properties:", planar ? L"Planar" : L"Non-Planar",
               mN->rational() ? L"Rational" : L"Non-Rational",
               isPeriodic() ? L"Periodic" : L"Non-Periodic");
    acutPrintf(L"\n%18s %d", L"Degree:", degree());
    if (curve) {
        listValue(L"Start parameter:", g.t0);
        listValue(L"End parameter:", g.t1);
        listValue(L"Length:", g.length());
    }
    acutPrintf(L"\n%18s %d", L"Control points:", numControlPoints());
    for (const auto& p : mN->pts)
        listPoint(L"", p);
    acutPrintf(L"\n%18s %d", L"Fit points:", numFitPoints());
    for (const auto& p : mFit)
        listPoint(L"", p);
    if (!mFit.empty()) {
        listValue(L"Fit tolerance:", mFitTol);
        if (mStartTan.length() > 0.0) listVector(L"Start tangent:", mStartTan);
        if (mEndTan.length() > 0.0) listVector(L"End tangent:", mEndTan);
    }
    double area = 0.0;
    if (curve && isClosed() && getArea(area) == Acad::eOk) listValue(L"Area:", area);
}

Adesk::Boolean AcDbSpline::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    PathGeom g;
    if (wd && AcDbSplineImpl::path(*this, g)) drawPath(g, wd);
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbSpline::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                               AcDbIntArray&) const {
    assertReadEnabled();
    for (const auto& p : mFit.empty() ? mN->pts : mFit)
        grips.append(p);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<AcGePoint3d>& pts = mFit.empty() ? mN->pts : mFit;
    std::vector<bool> moved(pts.size(), false);
    for (int i : indices)
        if (i >= 0 && static_cast<size_t>(i) < pts.size() && !moved[static_cast<size_t>(i)]) {
            moved[static_cast<size_t>(i)] = true;
            pts[static_cast<size_t>(i)] += offset;
        }
    if (!mFit.empty()) rebuild();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                const AcGePoint3d& pickPoint,
                                                const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                                AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    assertReadEnabled();
    PathGeom g;
    if (AcDbSplineImpl::path(*this, g)) pathSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    // Affine maps move a NURBS curve by its control points; the fit data follows.
    mN->transformBy(xform);
    for (auto& p : mFit)
        p.transformBy(xform);
    mStartTan.transformBy(xform);
    mEndTan.transformBy(xform);
    return Acad::eOk;
}
