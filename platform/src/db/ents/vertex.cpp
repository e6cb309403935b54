// Polyline vertices and the iterator over a container's entities.
#include "db/ents/entsimpl.h"

#include <algorithm>
#include <cmath>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbVertex, AcDbEntity)
ACRX_CONS_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex, L"VERTEX")
ACRX_CONS_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex, L"VERTEX")
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObjectIterator, AcRxObject)

using namespace ents_detail;

namespace {

// Exchange-format vertex flags.
constexpr int kFlagCurveFit = 1, kFlagTangent = 2, kFlagSplineFit = 8, kFlagSplineFrame = 16,
              kFlag3d = 32;

bool finitePoint(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool validType2d(int t) {
    return t == AcDb::k2dVertex || t == AcDb::k2dCurveFitVertex || t == AcDb::k2dSplineFitVertex ||
           t == AcDb::k2dSplineCtlVertex;
}

} // namespace

// ---------------------------------------------------------------- iterator

void AcDbObjectIterator::start(bool atEnd) {
    mPos = atEnd && !mItems.empty() ? mItems.size() - 1 : 0;
}

void AcDbObjectIterator::step(bool backwards, bool) {
    if (done()) return;
    if (backwards)
        mPos = mPos == 0 ? mItems.size() : mPos - 1;
    else
        ++mPos;
}

void AcDbObjectIterator::setPosition(AcDbEntity* ent) {
    const auto it = std::find(mItems.begin(), mItems.end(), ent);
    mPos = static_cast<size_t>(it - mItems.begin());
}

void AcDbObjectIterator::setPosition(AcDbObjectId id) {
    mPos = mItems.size();
    for (size_t k = 0; k < mItems.size(); ++k)
        if (!id.isNull() && mItems[k]->objectId() == id) mPos = k;
}

AcDbEntity* AcDbObjectIterator::entity() {
    return done() ? nullptr : mItems[mPos];
}

AcDbObjectId AcDbObjectIterator::objectId() {
    return done() ? AcDbObjectId() : mItems[mPos]->objectId();
}

// ---------------------------------------------------------------- vertex base

Acad::ErrorStatus AcDbVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbVertex");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbVertex::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer); es != Acad::eOk) return es;
    return filer->atSubclassData(L"AcDbVertex") ? Acad::eOk : Acad::eBadDxfSequence;
}

// ---------------------------------------------------------------- 2D vertex

AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth,
                           double endWidth, double tangent, Adesk::Int32 vertexIdentifier)
    : mPos(position), mBulge(std::isfinite(bulge) ? bulge : 0.0),
      mStartWidth(std::isfinite(startWidth) ? std::fabs(startWidth) : 0.0),
      mEndWidth(std::isfinite(endWidth) ? std::fabs(endWidth) : 0.0),
      mTangent(std::isfinite(tangent) ? tangent : 0.0), mId(vertexIdentifier) {}

AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
    assertReadEnabled();
    return mType;
}

Acad::ErrorStatus AcDb2dVertex::setVertexType(AcDb::Vertex2dType type) {
    if (!validType2d(type)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mType = type;
    return Acad::eOk;
}

AcGePoint3d AcDb2dVertex::position() const {
    assertReadEnabled();
    return mPos;
}

Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d& p) {
    if (!finitePoint(p)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPos = p;
    return Acad::eOk;
}

double AcDb2dVertex::startWidth() const {
    assertReadEnabled();
    return mStartWidth;
}

Acad::ErrorStatus AcDb2dVertex::setStartWidth(double w) {
    if (!std::isfinite(w) || w < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mStartWidth = w;
    return Acad::eOk;
}

double AcDb2dVertex::endWidth() const {
    assertReadEnabled();
    return mEndWidth;
}

Acad::ErrorStatus AcDb2dVertex::setEndWidth(double w) {
    if (!std::isfinite(w) || w < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mEndWidth = w;
    return Acad::eOk;
}

double AcDb2dVertex::bulge() const {
    assertReadEnabled();
    return mBulge;
}

Acad::ErrorStatus AcDb2dVertex::setBulge(double b) {
    if (!std::isfinite(b)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mBulge = b;
    return Acad::eOk;
}

bool AcDb2dVertex::isTangentUsed() const {
    assertReadEnabled();
    return mTangentUsed;
}

Acad::ErrorStatus AcDb2dVertex::useTangent() {
    assertWriteEnabled();
    mTangentUsed = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dVertex::ignoreTangent() {
    assertWriteEnabled();
    mTangentUsed = false;
    return Acad::eOk;
}

double AcDb2dVertex::tangent() const {
    assertReadEnabled();
    return mTangent;
}

Acad::ErrorStatus AcDb2dVertex::setTangent(double angle) {
    if (!std::isfinite(angle)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mTangent = angle;
    mTangentUsed = true;
    return Acad::eOk;
}

Adesk::Int32 AcDb2dVertex::vertexIdentifier() const {
    assertReadEnabled();
    return mId;
}

Acad::ErrorStatus AcDb2dVertex::setVertexIdentifier(Adesk::Int32 id) {
    assertWriteEnabled();
    mId = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbVertex::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mPos);
    filer->writeDouble(mBulge);
    filer->writeDouble(mStartWidth);
    filer->writeDouble(mEndWidth);
    filer->writeDouble(mTangent);
    filer->writeBool(mTangentUsed);
    filer->writeInt32(mId);
    filer->writeInt16(static_cast<Adesk::Int16>(mType));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dVertex::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbVertex::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d p;
    double b = 0.0, sw = 0.0, ew = 0.0, t = 0.0;
    bool used = false;
    Adesk::Int32 id = 0;
    Adesk::Int16 type = 0;
    filer->readPoint3d(&p);
    filer->readDouble(&b);
    filer->readDouble(&sw);
    filer->readDouble(&ew);
    filer->readDouble(&t);
    filer->readBool(&used);
    filer->readInt32(&id);
    filer->readInt16(&type);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    if (!finitePoint(p) || !std::isfinite(b) || !validType2d(type)) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mPos = p;
    mBulge = b;
    mStartWidth = std::isfinite(sw) ? std::fabs(sw) : 0.0;
    mEndWidth = std::isfinite(ew) ? std::fabs(ew) : 0.0;
    mTangent = std::isfinite(t) ? t : 0.0;
    mTangentUsed = used;
    mId = id;
    mType = static_cast<AcDb::Vertex2dType>(type);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbVertex::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDb2dVertex");
    filer->writePoint3d(AcDb::kDxfXCoord, mPos);
    if (mStartWidth != 0.0) filer->writeDouble(AcDb::kDxfReal, mStartWidth);
    if (mEndWidth != 0.0) filer->writeDouble(AcDb::kDxfTxtStyleXScale, mEndWidth);
    if (mBulge != 0.0) filer->writeDouble(AcDb::kDxfTxtStylePSize, mBulge);
    int flags = 0;
    if (mType == AcDb::k2dCurveFitVertex) flags |= kFlagCurveFit;
    if (mType == AcDb::k2dSplineFitVertex) flags |= kFlagSplineFit;
    if (mType == AcDb::k2dSplineCtlVertex) flags |= kFlagSplineFrame;
    if (mTangentUsed) flags |= kFlagTangent;
    filer->writeInt16(AcDb::kDxfInt16, static_cast<Adesk::Int16>(flags));
    if (mTangentUsed) filer->writeAngle(AcDb::kDxfAngle, mTangent);
    if (mId != 0) filer->writeInt32(AcDb::kDxfVertexIdentifier, mId);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dVertex::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbVertex::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDb2dVertex")) return Acad::eBadDxfSequence;
    resbuf rb{};
    AcGePoint3d p;
    double b = 0.0, sw = 0.0, ew = 0.0, t = 0.0;
    int flags = 0;
    Adesk::Int32 id = 0;
    while (nextItem(filer, rb)) {
        bool mine = true;
        switch (rb.restype) {
        case AcDb::kDxfXCoord:
            p = rbPoint(rb);
            break;
        case AcDb::kDxfReal:
            sw = rb.resval.rreal;
            break;
        case AcDb::kDxfTxtStyleXScale:
            ew = rb.resval.rreal;
            break;
        case AcDb::kDxfTxtStylePSize:
            b = rb.resval.rreal;
            break;
        case AcDb::kDxfInt16:
            flags = rb.resval.rint;
            break;
        case AcDb::kDxfAngle:
            t = rb.resval.rreal;
            break;
        case AcDb::kDxfVertexIdentifier:
            id = rb.resval.rlong;
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
    if (!finitePoint(p) || !std::isfinite(b) || !std::isfinite(sw) || !std::isfinite(ew))
        return Acad::eInvalidInput;
    mPos = p;
    mBulge = b;
    mStartWidth = std::fabs(sw);
    mEndWidth = std::fabs(ew);
    mTangentUsed = (flags & kFlagTangent) != 0;
    mTangent = std::isfinite(t) ? t : 0.0;
    mId = id;
    mType = (flags & kFlagSplineFrame) ? AcDb::k2dSplineCtlVertex
            : (flags & kFlagSplineFit) ? AcDb::k2dSplineFitVertex
            : (flags & kFlagCurveFit)  ? AcDb::k2dCurveFitVertex
                                       : AcDb::k2dVertex;
    return Acad::eOk;
}

// ---------------------------------------------------------------- 3D vertex

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
    assertReadEnabled();
    return mType;
}

Acad::ErrorStatus AcDb3dPolylineVertex::setVertexType(AcDb::Vertex3dType type) {
    if (type < AcDb::k3dSimpleVertex || type > AcDb::k3dFitVertex) return Acad::eInvalidInput;
    assertWriteEnabled();
    mType = type;
    return Acad::eOk;
}

AcGePoint3d AcDb3dPolylineVertex::position() const {
    assertReadEnabled();
    return mPos;
}

Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& p) {
    if (!finitePoint(p)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPos = p;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbVertex::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mPos);
    filer->writeInt16(static_cast<Adesk::Int16>(mType));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbVertex::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d p;
    Adesk::Int16 type = 0;
    filer->readPoint3d(&p);
    filer->readInt16(&type);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    if (!finitePoint(p) || type < AcDb::k3dSimpleVertex || type > AcDb::k3dFitVertex) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mPos = p;
    mType = static_cast<AcDb::Vertex3dType>(type);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbVertex::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDb3dPolylineVertex");
    filer->writePoint3d(AcDb::kDxfXCoord, mPos);
    int flags = kFlag3d;
    if (mType == AcDb::k3dFitVertex) flags |= kFlagSplineFit;
    if (mType == AcDb::k3dControlVertex) flags |= kFlagSplineFrame;
    filer->writeInt16(AcDb::kDxfInt16, static_cast<Adesk::Int16>(flags));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolylineVertex::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbVertex::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDb3dPolylineVertex")) return Acad::eBadDxfSequence;
    resbuf rb{};
    AcGePoint3d p;
    int flags = 0;
    while (nextItem(filer, rb)) {
        if (rb.restype == AcDb::kDxfXCoord)
            p = rbPoint(rb);
        else if (rb.restype == AcDb::kDxfInt16)
            flags = rb.resval.rint;
        else {
            filer->pushBackItem();
            break;
        }
    }
    if (filer->filerStatus() != Acad::eOk && filer->filerStatus() != Acad::eEndOfFile)
        return filer->filerStatus();
    if (!finitePoint(p)) return Acad::eInvalidInput;
    mPos = p;
    mType = (flags & kFlagSplineFrame) ? AcDb::k3dControlVertex
            : (flags & kFlagSplineFit) ? AcDb::k3dFitVertex
                                       : AcDb::k3dSimpleVertex;
    return Acad::eOk;
}
