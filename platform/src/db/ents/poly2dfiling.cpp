// The 2D polyline's filing, listing, drawing, grips, snaps, transforms and explode.
#include "cmdline.h"
#include "db/ents/entsimpl.h"

#include <cmath>
#include <memory>

using namespace ents_detail;

namespace {

// Exchange-format polyline flags and curve types.
constexpr int kClosed = 1, kCurveFit = 2, kSplineFit = 4, kPlinegen = 128;
constexpr int kQuadSurface = 5, kCubicSurface = 6;

bool validPolyType(int t) {
    return t >= AcDb::k2dSimplePoly && t <= AcDb::k2dCubicSplinePoly;
}

} // namespace

Acad::ErrorStatus AcDb2dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeInt16(static_cast<Adesk::Int16>(mType));
    filer->writeBool(mClosed);
    filer->writeBool(mPlinegen);
    filer->writeDouble(mElevation);
    filer->writeDouble(mThickness);
    filer->writeDouble(mDefStart);
    filer->writeDouble(mDefEnd);
    filer->writeVector3d(mNormal);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mVerts.size()));
    for (const auto& v : mVerts)
        if (v->dwgOutFields(filer) != Acad::eOk) break;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    Adesk::Int16 type = 0;
    bool closed = false, plinegen = false;
    double elevation = 0.0, thickness = 0.0, ds = 0.0, de = 0.0;
    AcGeVector3d normal;
    Adesk::UInt32 n = 0;
    filer->readInt16(&type);
    filer->readBool(&closed);
    filer->readBool(&plinegen);
    filer->readDouble(&elevation);
    filer->readDouble(&thickness);
    filer->readDouble(&ds);
    filer->readDouble(&de);
    filer->readVector3d(&normal);
    filer->readUInt32(&n);
    std::vector<std::unique_ptr<AcDb2dVertex>> verts;
    // Vertices are made as their data arrives, never from the count alone.
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        auto v = std::make_unique<AcDb2dVertex>();
        if (v->dwgInFields(filer) != Acad::eOk) break;
        verts.push_back(std::move(v));
    }
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    if (!validPolyType(type) || !std::isfinite(elevation)) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mType = static_cast<AcDb::Poly2dType>(type);
    mClosed = closed;
    mPlinegen = plinegen;
    mElevation = elevation;
    mThickness = std::isfinite(thickness) ? thickness : 0.0;
    mDefStart = std::isfinite(ds) ? ds : 0.0;
    mDefEnd = std::isfinite(de) ? de : 0.0;
    mNormal = unitNormal(normal);
    mVerts = std::move(verts);
    for (auto& v : mVerts)
        v->setOwnerId(objectId());
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDb2dPolyline");
    filer->writePoint3d(AcDb::kDxfXCoord, AcGePoint3d(0, 0, mElevation));
    if (mThickness != 0.0) filer->writeDouble(AcDb::kDxfThickness, mThickness);
    int flags = mClosed ? kClosed : 0;
    if (mType == AcDb::k2dFitCurvePoly) flags |= kCurveFit;
    if (mType == AcDb::k2dQuadSplinePoly || mType == AcDb::k2dCubicSplinePoly) flags |= kSplineFit;
    if (mPlinegen) flags |= kPlinegen;
    filer->writeInt16(AcDb::kDxfInt16, static_cast<Adesk::Int16>(flags));
    if (mDefStart != 0.0) filer->writeDouble(AcDb::kDxfReal, mDefStart);
    if (mDefEnd != 0.0) filer->writeDouble(AcDb::kDxfTxtStyleXScale, mDefEnd);
    const int curve = mType == AcDb::k2dQuadSplinePoly    ? kQuadSurface
                      : mType == AcDb::k2dCubicSplinePoly ? kCubicSurface
                                                          : 0;
    if (curve != 0)
        filer->writeInt16(static_cast<AcDb::DxfCode>(75), static_cast<Adesk::Int16>(curve));
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDb2dPolyline")) return Acad::eBadDxfSequence;
    resbuf rb{};
    int flags = 0, curve = 0;
    double elevation = 0.0, thickness = 0.0, ds = 0.0, de = 0.0;
    AcGeVector3d normal(0, 0, 1);
    while (nextItem(filer, rb)) {
        bool mine = true;
        switch (rb.restype) {
        case AcDb::kDxfXCoord:
            elevation = rb.resval.rpoint[2];
            break;
        case AcDb::kDxfThickness:
            thickness = rb.resval.rreal;
            break;
        case AcDb::kDxfInt16:
            flags = rb.resval.rint;
            break;
        case AcDb::kDxfReal:
            ds = rb.resval.rreal;
            break;
        case AcDb::kDxfTxtStyleXScale:
            de = rb.resval.rreal;
            break;
        case 75:
            curve = rb.resval.rint;
            break;
        case AcDb::kDxfHasSubentities:
            break; // the vertices follow as their own records
        case AcDb::kDxfNormalX:
            normal = rbVector(rb);
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
    if (!std::isfinite(elevation) || !std::isfinite(thickness) || !std::isfinite(ds) ||
        !std::isfinite(de) || !(normal.length() > 0.0))
        return Acad::eInvalidInput;
    mElevation = elevation;
    mThickness = thickness;
    mDefStart = std::fabs(ds);
    mDefEnd = std::fabs(de);
    mNormal = unitNormal(normal);
    mClosed = (flags & kClosed) != 0;
    mPlinegen = (flags & kPlinegen) != 0;
    mType = (flags & kSplineFit)
                ? (curve == kQuadSurface ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly)
            : (flags & kCurveFit) ? AcDb::k2dFitCurvePoly
                                  : AcDb::k2dSimplePoly;
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing and drawing

void AcDb2dPolyline::subList() const {
    AcDbCurve::subList();
    static const wchar_t* const kTypes[] = {L"Simple", L"Curve fit", L"Quadratic spline",
                                            L"Cubic spline"};
    acutPrintf(L"\n%18s %s  %s", mClosed ? L"Closed" : L"Open", kTypes[mType],
               mPlinegen ? L"(linetype generation on)" : L"");
    if (mElevation != 0.0) listValue(L"elevation", mElevation);
    if (mThickness != 0.0) listValue(L"thickness", mThickness);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
    double area = 0.0;
    if (getArea(area) == Acad::eOk) listValue(L"area", area);
    CurveGeom g;
    AcDb2dPolylineImpl::geom(*this, g);
    listValue(mClosed ? L"perimeter" : L"length", g.length());
    for (const auto& v : mVerts) {
        listPoint(v->mType == AcDb::k2dSplineCtlVertex ? L"control point" : L"at point",
                  vertexPosition(*v));
        if (v->mBulge != 0.0) listValue(L"bulge", v->mBulge);
    }
}

Adesk::Boolean AcDb2dPolyline::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd) return Adesk::kTrue;
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, true));
    return lw->subWorldDraw(wd);
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDb2dPolyline::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    assertReadEnabled();
    // The frame: the vertices a fit did not add.
    for (const auto& v : mVerts)
        if (v->mType == AcDb::k2dVertex || v->mType == AcDb::k2dSplineCtlVertex)
            grips.append(vertexPosition(*v));
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    const Frame f = Frame::ocs(mNormal, AcGePoint3d::kOrigin);
    const AcGeVector2d d(offset.dotProduct(f.x), offset.dotProduct(f.y));
    std::vector<AcDb2dVertex*> frame;
    for (auto& v : mVerts)
        if (v->mType == AcDb::k2dVertex || v->mType == AcDb::k2dSplineCtlVertex)
            frame.push_back(v.get());
    std::vector<bool> moved(frame.size(), false);
    for (int i : indices)
        if (i >= 0 && static_cast<size_t>(i) < frame.size() && !moved[static_cast<size_t>(i)]) {
            moved[static_cast<size_t>(i)] = true;
            frame[static_cast<size_t>(i)]->mPos.x += d.x;
            frame[static_cast<size_t>(i)]->mPos.y += d.y;
        }
    // A fitted polyline follows its frame.
    return mType == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(mType);
}

Acad::ErrorStatus AcDb2dPolyline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                    const AcGePoint3d& pickPoint,
                                                    const AcGePoint3d& lastPoint,
                                                    const AcGeMatrix3d&,
                                                    AcGePoint3dArray& snapPoints,
                                                    AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDb2dPolylineImpl::geom(*this, g);
    if (!g.empty()) curveSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    // The lightweight form of every vertex knows how its plane, bulges and widths move.
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, false));
    if (Acad::ErrorStatus es = lw->transformBy(xform); es != Acad::eOk) return es;
    mNormal = lw->normal();
    mElevation = lw->elevation();
    mThickness = lw->thickness();
    for (unsigned i = 0; i < mVerts.size(); ++i) {
        AcGePoint2d p;
        lw->getPointAt(i, p);
        mVerts[i]->mPos.set(p.x, p.y, mElevation);
        lw->getBulgeAt(i, mVerts[i]->mBulge);
        lw->getWidthsAt(i, mVerts[i]->mStartWidth, mVerts[i]->mEndWidth);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, true));
    return lw->explode(entities);
}
