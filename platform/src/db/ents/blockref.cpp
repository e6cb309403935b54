// The block reference: a block's entities placed at a position, scaled and rotated in the plane
// system of a normal.
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "dbsymtb.h"

#include <cmath>

ACRX_CONS_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, L"INSERT")

using namespace ents_detail;

namespace {

// The block's entities, each opened for read in turn; stops early when fn returns false.
template <class Fn> Acad::ErrorStatus forEachEntity(AcDbObjectId block, Fn fn) {
    AcDbBlockTableRecord* btr = nullptr;
    if (Acad::ErrorStatus es = acdbOpenObject(btr, block, AcDb::kForRead); es != Acad::eOk)
        return es;
    const std::vector<AcDbObjectId> ids = btr->entityIds();
    btr->close();
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* ent = nullptr;
        if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) continue;
        const bool more = fn(ent);
        ent->close();
        if (!more) break;
    }
    return Acad::eOk;
}

std::wstring blockName(AcDbObjectId id) {
    AcDbBlockTableRecord* btr = nullptr;
    if (acdbOpenObject(btr, id, AcDb::kForRead) != Acad::eOk) return L"";
    std::wstring name = btr->name();
    btr->close();
    return name;
}

AcGePoint3d blockOrigin(AcDbObjectId id) {
    AcDbBlockTableRecord* btr = nullptr;
    if (acdbOpenObject(btr, id, AcDb::kForRead) != Acad::eOk) return AcGePoint3d::kOrigin;
    const AcGePoint3d o = btr->origin();
    btr->close();
    return o;
}

} // namespace

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord)
    : mBlock(blockTableRecord), mPosition(position) {}

// ---------------------------------------------------------------- properties

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
    assertReadEnabled();
    return mBlock;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId id) {
    assertWriteEnabled();
    mBlock = id;
    return Acad::eOk;
}

AcGePoint3d AcDbBlockReference::position() const {
    assertReadEnabled();
    return mPosition;
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& p) {
    assertWriteEnabled();
    mPosition = p;
    return Acad::eOk;
}

AcGeScale3d AcDbBlockReference::scaleFactors() const {
    assertReadEnabled();
    return mScale;
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& s) {
    for (unsigned k = 0; k < 3; ++k)
        if (!std::isfinite(s[k]) || s[k] == 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mScale = s;
    return Acad::eOk;
}

double AcDbBlockReference::rotation() const {
    assertReadEnabled();
    return mRotation;
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double a) {
    if (!std::isfinite(a)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mRotation = normAngle(a);
    return Acad::eOk;
}

AcGeVector3d AcDbBlockReference::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
    assertReadEnabled();
    const Frame f = Frame::ocs(mNormal, AcGePoint3d::kOrigin);
    const double c = std::cos(mRotation), s = std::sin(mRotation);
    const AcGeVector3d cols[3] = {(f.x * c + f.y * s) * mScale.sx, (f.y * c - f.x * s) * mScale.sy,
                                  f.z * mScale.sz};
    const AcGePoint3d o = blockOrigin(mBlock);
    const AcGeVector3d t = mPosition.asVector() - cols[0] * o.x - cols[1] * o.y - cols[2] * o.z;
    AcGeMatrix3d m;
    for (unsigned r = 0; r < 3; ++r) {
        for (unsigned k = 0; k < 3; ++k)
            m.entry[r][k] = cols[k][r];
        m.entry[r][3] = t[r];
    }
    return m;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTransform(const AcGeMatrix3d& m) {
    AcGeVector3d cols[3];
    for (unsigned k = 0; k < 3; ++k)
        cols[k] = AcGeVector3d(m.entry[0][k], m.entry[1][k], m.entry[2][k]);
    double len[3];
    for (unsigned k = 0; k < 3; ++k) {
        len[k] = cols[k].length();
        if (!(len[k] > 1e-300) || !std::isfinite(len[k])) return Acad::eInvalidInput;
    }
    // Only scaling along the block's own axes can be kept: the axes must stay perpendicular.
    for (unsigned a = 0; a < 3; ++a)
        for (unsigned b = a + 1; b < 3; ++b)
            if (std::fabs(cols[a].dotProduct(cols[b])) > 1e-9 * len[a] * len[b])
                return kCannotScaleNonUniformly;
    const double det = cols[0].crossProduct(cols[1]).dotProduct(cols[2]);
    AcGeVector3d xdir = cols[0] / len[0];
    double sx = len[0];
    if (det < 0.0) {
        // A mirrored placement: a negative x scale.
        xdir = -xdir;
        sx = -sx;
    }
    const AcGeVector3d n = cols[2] / len[2];
    const Frame f = Frame::ocs(n, AcGePoint3d::kOrigin);
    assertWriteEnabled();
    mNormal = n;
    mScale = AcGeScale3d(sx, len[1], len[2]);
    mRotation = normAngle(std::atan2(xdir.dotProduct(f.y), xdir.dotProduct(f.x)));
    AcGePoint3d o = blockOrigin(mBlock);
    mPosition = o.transformBy(m);
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeHardPointerId(mBlock);
    filer->writePoint3d(mPosition);
    filer->writeScale3d(mScale);
    filer->writeDouble(mRotation);
    filer->writeVector3d(mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dwgInFields(filer); es != Acad::eOk) return es;
    AcDbHardPointerId block;
    AcGePoint3d pos;
    AcGeScale3d scale;
    double rot = 0.0;
    AcGeVector3d n;
    filer->readHardPointerId(&block);
    filer->readPoint3d(&pos);
    filer->readScale3d(&scale);
    filer->readDouble(&rot);
    filer->readVector3d(&n);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mBlock = block;
    mPosition = pos;
    mScale = scale;
    mRotation = rot;
    mNormal = unitNormal(n);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbBlockReference");
    filer->writeString(AcDb::kDxfBlockName, blockName(mBlock).c_str());
    filer->writePoint3d(AcDb::kDxfXCoord, worldToOcs(mPosition, mNormal));
    filer->writeDouble(AcDb::kDxfTxtStyleXScale, mScale.sx);
    filer->writeDouble(AcDb::kDxfTxtStylePSize, mScale.sy);
    filer->writeDouble(AcDb::kDxfViewFrontClip, mScale.sz);
    filer->writeAngle(AcDb::kDxfAngle, mRotation);
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockReference::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbBlockReference")) return Acad::eBadDxfSequence;
    AcGePoint3d pos;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        switch (rb.restype) {
        case AcDb::kDxfBlockName: {
            AcDbDatabase* db = filer->database() ? filer->database() : database();
            if (!db) db = acdbHostApplicationServices()->workingDatabase();
            AcDbBlockTable* table = nullptr;
            if (db && rb.resval.rstring && db->getBlockTable(table, AcDb::kForRead) == Acad::eOk) {
                AcDbObjectId id;
                if (table->getAt(rb.resval.rstring, id) == Acad::eOk) mBlock = id;
                table->close();
            }
            continue;
        }
        case AcDb::kDxfXCoord:
            pos = rbPoint(rb);
            continue;
        case AcDb::kDxfTxtStyleXScale:
            if (std::isfinite(rb.resval.rreal) && rb.resval.rreal != 0.0)
                mScale.sx = rb.resval.rreal;
            continue;
        case AcDb::kDxfTxtStylePSize:
            if (std::isfinite(rb.resval.rreal) && rb.resval.rreal != 0.0)
                mScale.sy = rb.resval.rreal;
            continue;
        case AcDb::kDxfViewFrontClip:
            if (std::isfinite(rb.resval.rreal) && rb.resval.rreal != 0.0)
                mScale.sz = rb.resval.rreal;
            continue;
        case AcDb::kDxfAngle:
            mRotation = normAngle(rb.resval.rreal);
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
    mPosition = ocsToWorld(pos, mNormal);
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbBlockReference::subList() const {
    AcDbEntity::subList();
    acutPrintf(L"\n%18s %s", L"Block Name:", blockName(mBlock).c_str());
    listPoint(L"at point,", mPosition);
    listValue(L"X scale factor:", mScale.sx);
    listValue(L"Y scale factor:", mScale.sy);
    listValue(L"Z scale factor:", mScale.sz);
    listAngle(L"rotation angle:", mRotation);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
}

Adesk::Boolean AcDbBlockReference::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd) return Adesk::kTrue;
    AcGiWorldGeometry& geo = wd->geometry();
    geo.pushModelTransform(blockTransform());
    forEachEntity(mBlock, [&](AcDbEntity* ent) { return !geo.draw(ent); });
    geo.popModelTransform();
    return Adesk::kTrue;
}

Acad::ErrorStatus AcDbBlockReference::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const AcGeMatrix3d m = blockTransform();
    extents = AcDbExtents();
    Acad::ErrorStatus es = forEachEntity(mBlock, [&](AcDbEntity* ent) {
        AcDbExtents e;
        if (ent->getGeomExtents(e) == Acad::eOk) {
            e.transformBy(m);
            extents.addExt(e);
        }
        return true;
    });
    if (es != Acad::eOk) return es;
    return extents.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

// ---------------------------------------------------------------- grips, snaps, transforms,
// explode

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                       AcDbIntArray&) const {
    assertReadEnabled();
    grips.append(mPosition);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                          const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i : indices)
        if (i == 0) {
            mPosition += offset;
            break;
        }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                        const AcGePoint3d&, const AcGePoint3d&,
                                                        const AcGeMatrix3d&,
                                                        AcGePoint3dArray& snapPoints,
                                                        AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) snapPoints.append(mPosition);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    return setBlockTransform(xform * blockTransform());
}

Acad::ErrorStatus AcDbBlockReference::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    const AcGeMatrix3d m = blockTransform();
    AcDbVoidPtrArray made;
    Acad::ErrorStatus failed = Acad::eOk;
    Acad::ErrorStatus es = forEachEntity(mBlock, [&](AcDbEntity* ent) {
        AcDbEntity* copy = nullptr;
        failed = ent->getTransformedCopy(m, copy);
        if (failed != Acad::eOk || !copy) {
            if (failed == Acad::eOk) failed = Acad::eNotApplicable;
            return false;
        }
        made.append(copy);
        return true;
    });
    if (es == Acad::eOk) es = failed;
    if (es != Acad::eOk) {
        for (void* p : made)
            delete static_cast<AcDbEntity*>(p);
        return es;
    }
    entities.append(made);
    return Acad::eOk;
}
