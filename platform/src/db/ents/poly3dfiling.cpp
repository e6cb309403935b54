// The 3D polyline's filing, listing, drawing, grips, snaps, transforms and explode.
#include "cmdline.h"
#include "db/ents/entsimpl.h"

#include <cmath>
#include <memory>

using namespace ents_detail;

namespace {

// Exchange-format polyline flags and curve types.
constexpr int kClosed = 1, kSplineFit = 4, k3dPolyline = 8;
constexpr int kQuadSurface = 5, kCubicSurface = 6;

} // namespace

Acad::ErrorStatus AcDb3dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeInt16(static_cast<Adesk::Int16>(mType));
    filer->writeBool(mClosed);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mVerts.size()));
    for (const auto& v : mVerts)
        if (v->dwgOutFields(filer) != Acad::eOk) break;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    Adesk::Int16 type = 0;
    bool closed = false;
    Adesk::UInt32 n = 0;
    filer->readInt16(&type);
    filer->readBool(&closed);
    filer->readUInt32(&n);
    std::vector<std::unique_ptr<AcDb3dPolylineVertex>> verts;
    // Vertices are made as their data arrives, never from the count alone.
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        auto v = std::make_unique<AcDb3dPolylineVertex>();
        if (v->dwgInFields(filer) != Acad::eOk) break;
        verts.push_back(std::move(v));
    }
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    if (type < AcDb::k3dSimplePoly || type > AcDb::k3dCubicSplinePoly) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mType = static_cast<AcDb::Poly3dType>(type);
    mClosed = closed;
    mVerts = std::move(verts);
    for (auto& v : mVerts)
        v->setOwnerId(objectId());
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDb3dPolyline");
    filer->writePoint3d(AcDb::kDxfXCoord, AcGePoint3d(0, 0, 0));
    int flags = k3dPolyline | (mClosed ? kClosed : 0);
    if (mType != AcDb::k3dSimplePoly) flags |= kSplineFit;
    filer->writeInt16(AcDb::kDxfInt16, static_cast<Adesk::Int16>(flags));
    if (mType != AcDb::k3dSimplePoly)
        filer->writeInt16(static_cast<AcDb::DxfCode>(75),
                          mType == AcDb::k3dQuadSplinePoly ? kQuadSurface : kCubicSurface);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDb3dPolyline")) return Acad::eBadDxfSequence;
    resbuf rb{};
    int flags = 0, curve = 0;
    while (nextItem(filer, rb)) {
        if (rb.restype == AcDb::kDxfInt16)
            flags = rb.resval.rint;
        else if (rb.restype == 75)
            curve = rb.resval.rint;
        else if (rb.restype != AcDb::kDxfXCoord && rb.restype != AcDb::kDxfHasSubentities) {
            filer->pushBackItem();
            break;
        }
    }
    if (filer->filerStatus() != Acad::eOk && filer->filerStatus() != Acad::eEndOfFile)
        return filer->filerStatus();
    mClosed = (flags & kClosed) != 0;
    mType = !(flags & kSplineFit)   ? AcDb::k3dSimplePoly
            : curve == kQuadSurface ? AcDb::k3dQuadSplinePoly
                                    : AcDb::k3dCubicSplinePoly;
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing and drawing

void AcDb3dPolyline::subList() const {
    AcDbCurve::subList();
    static const wchar_t* const kTypes[] = {L"Simple", L"Quadratic spline", L"Cubic spline"};
    acutPrintf(L"\n%18s %s", mClosed ? L"Closed" : L"Open", kTypes[mType]);
    PathGeom g;
    if (AcDb3dPolylineImpl::path(*this, g))
        listValue(mClosed ? L"perimeter" : L"length", g.length());
    double area = 0.0;
    if (getArea(area) == Acad::eOk) listValue(L"area", area);
    for (const auto& v : mVerts)
        listPoint(v->mType == AcDb::k3dControlVertex ? L"control point" : L"at point", v->mPos);
}

Adesk::Boolean AcDb3dPolyline::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    PathGeom g;
    if (wd && AcDb3dPolylineImpl::path(*this, g)) drawPath(g, wd);
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDb3dPolyline::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    assertReadEnabled();
    for (const auto& v : mVerts)
        if (v->mType != AcDb::k3dFitVertex) grips.append(v->mPos);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<AcDb3dPolylineVertex*> frame;
    for (auto& v : mVerts)
        if (v->mType != AcDb::k3dFitVertex) frame.push_back(v.get());
    std::vector<bool> moved(frame.size(), false);
    for (int i : indices)
        if (i >= 0 && static_cast<size_t>(i) < frame.size() && !moved[static_cast<size_t>(i)]) {
            moved[static_cast<size_t>(i)] = true;
            frame[static_cast<size_t>(i)]->mPos += offset;
        }
    return mType == AcDb::k3dSimplePoly ? Acad::eOk : setPolyType(mType);
}

Acad::ErrorStatus AcDb3dPolyline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                    const AcGePoint3d& pickPoint,
                                                    const AcGePoint3d& lastPoint,
                                                    const AcGeMatrix3d&,
                                                    AcGePoint3dArray& snapPoints,
                                                    AcDbIntArray&) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDb3dPolylineImpl::path(*this, g)) return Acad::eOk;
    const double tol = g.tolerance(1e-9);
    if (mode == AcDb::kOsModeEnd || mode == AcDb::kOsModeMid) {
        // Every segment's ends and middle.
        for (double t = g.t0; t < g.t1; t += 1.0) {
            if (mode == AcDb::kOsModeEnd) {
                addUnique(snapPoints, g.ev->eval(t), tol);
                addUnique(snapPoints, g.ev->eval(t + 1.0), tol);
            } else {
                addUnique(snapPoints, g.ev->eval(t + 0.5), tol);
            }
        }
        return Acad::eOk;
    }
    pathSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    for (auto& v : mVerts)
        v->mPos.transformBy(xform);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDb3dPolylineImpl::path(*this, g)) return Acad::eOk;
    for (double t = g.t0; t < g.t1; t += 1.0) {
        const AcGePoint3d a = g.ev->eval(t), b = g.ev->eval(t + 1.0);
        if (a.isEqualTo(b)) continue; // repeated vertices make nothing
        auto* l = new AcDbLine(a, b);
        l->setPropertiesFrom(this);
        entities.append(l);
    }
    return Acad::eOk;
}
