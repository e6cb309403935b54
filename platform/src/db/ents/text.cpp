// Single-line text: a position and alignment point in world coordinates, a rotation in the
// plane system of the normal, and a text style.
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "dbsymtb.h"

#include <cmath>
#include <cstring>
#include <cwchar>

ACRX_CONS_DEFINE_MEMBERS(AcDbText, AcDbEntity, L"TEXT")

using namespace ents_detail;

namespace {

AcDbDatabase* lookupDatabase(const AcDbObject* obj, AcDbDatabase* filerDb) {
    if (filerDb) return filerDb;
    if (AcDbDatabase* db = obj->database()) return db;
    return acdbHostApplicationServices()->workingDatabase();
}

std::wstring styleName(AcDbObjectId id) {
    AcDbTextStyleTableRecord* rec = nullptr;
    if (acdbOpenObject(rec, id, AcDb::kForRead) != Acad::eOk) return L"STANDARD";
    std::wstring name = rec->name();
    rec->close();
    return name;
}

AcDbObjectId styleNamed(AcDbDatabase* db, const ACHAR* name) {
    AcDbObjectId id;
    if (!db || !name) return id;
    AcDbTextStyleTable* table = nullptr;
    if (db->getTextStyleTable(table, AcDb::kForRead) != Acad::eOk) return id;
    table->getAt(name, id);
    table->close();
    return id;
}

} // namespace

struct AcDbTextImpl {
    // Where the text's baseline starts, its direction and up vectors (scaled by height and width
    // factor) and its drawn width, after the justification is applied.
    struct Placement {
        AcGePoint3d origin;
        AcGeVector3d dir, up, normal;
        double height = 0.0, width = 0.0, widthFactor = 1.0;
    };

    static AcGiTextStyle style(const AcDbText& t) {
        AcGiTextStyle s;
        if (!t.mStyle.isNull()) fromAcDbTextStyle(s, t.mStyle);
        s.setTextSize(t.mHeight);
        s.setXScale(t.mWidthFactor);
        s.setObliquingAngle(t.mOblique);
        s.setBackward(t.mMirrorX);
        s.setUpsideDown(t.mMirrorY);
        return s;
    }

    static Placement place(const AcDbText& t) {
        Placement p;
        const Frame f = Frame::ocs(t.mNormal, AcGePoint3d::kOrigin);
        p.normal = f.z;
        p.dir = f.x * std::cos(t.mRotation) + f.y * std::sin(t.mRotation);
        p.up = f.z.crossProduct(p.dir);
        p.height = t.mHeight;
        p.widthFactor = t.mWidthFactor;
        const AcGiTextStyle s = style(t);
        p.width = s.extents(t.mText.c_str(), Adesk::kFalse, -1, Adesk::kFalse).x;
        p.origin = t.mPosition;
        if (t.mHorz == AcDb::kTextLeft && t.mVert == AcDb::kTextBase) return p;
        const AcGePoint3d al = t.mAlignment;
        if (t.mHorz == AcDb::kTextAlign || t.mHorz == AcDb::kTextFit) {
            // Stretched between the position and the alignment point.
            const AcGeVector3d span = al - t.mPosition;
            const double len = span.length();
            if (len > 0.0 && p.width > 0.0) {
                p.dir = span / len;
                p.up = f.z.crossProduct(p.dir);
                const double k = len / p.width;
                if (t.mHorz == AcDb::kTextAlign)
                    p.height *= k;
                else
                    p.widthFactor *= k;
                p.width = len;
            }
            return p;
        }
        double along = 0.0, above = 0.0;
        if (t.mHorz == AcDb::kTextCenter || t.mHorz == AcDb::kTextMid)
            along = p.width / 2;
        else if (t.mHorz == AcDb::kTextRight)
            along = p.width;
        if (t.mHorz == AcDb::kTextMid || t.mVert == AcDb::kTextVertMid)
            above = p.height / 2;
        else if (t.mVert == AcDb::kTextTop)
            above = p.height;
        p.origin = al - p.dir * along - p.up * above;
        return p;
    }
};

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style,
                   double height, double rotation)
    : mPosition(position), mText(text ? text : L""), mStyle(style), mHeight(height),
      mRotation(rotation) {}

// ---------------------------------------------------------------- properties

AcGePoint3d AcDbText::position() const {
    assertReadEnabled();
    return mPosition;
}

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& p) {
    assertWriteEnabled();
    mPosition = p;
    return Acad::eOk;
}

AcGePoint3d AcDbText::alignmentPoint() const {
    assertReadEnabled();
    return mAlignment;
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& p) {
    assertWriteEnabled();
    mAlignment = p;
    return Acad::eOk;
}

bool AcDbText::isDefaultAlignment() const {
    assertReadEnabled();
    return mHorz == AcDb::kTextLeft && mVert == AcDb::kTextBase;
}

double AcDbText::height() const {
    assertReadEnabled();
    return mHeight;
}

Acad::ErrorStatus AcDbText::setHeight(double h) {
    if (!(h > 0.0) || !std::isfinite(h)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mHeight = h;
    return Acad::eOk;
}

double AcDbText::widthFactor() const {
    assertReadEnabled();
    return mWidthFactor;
}

Acad::ErrorStatus AcDbText::setWidthFactor(double w) {
    if (!(w > 0.0) || !std::isfinite(w)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mWidthFactor = w;
    return Acad::eOk;
}

double AcDbText::rotation() const {
    assertReadEnabled();
    return mRotation;
}

Acad::ErrorStatus AcDbText::setRotation(double a) {
    if (!std::isfinite(a)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mRotation = a;
    return Acad::eOk;
}

double AcDbText::oblique() const {
    assertReadEnabled();
    return mOblique;
}

Acad::ErrorStatus AcDbText::setOblique(double a) {
    if (!std::isfinite(a)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mOblique = a;
    return Acad::eOk;
}

double AcDbText::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDbText::setThickness(double t) {
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

AcGeVector3d AcDbText::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

ACHAR* AcDbText::textString() const {
    assertReadEnabled();
    auto* s = new ACHAR[mText.size() + 1];
    std::wmemcpy(s, mText.c_str(), mText.size() + 1);
    return s;
}

const ACHAR* AcDbText::textStringConst() const {
    assertReadEnabled();
    return mText.c_str();
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* s) {
    if (!s) return Acad::eInvalidInput;
    assertWriteEnabled();
    mText = s;
    return Acad::eOk;
}

AcDbObjectId AcDbText::textStyle() const {
    assertReadEnabled();
    return mStyle;
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId id) {
    assertWriteEnabled();
    mStyle = id;
    return Acad::eOk;
}

AcDb::TextHorzMode AcDbText::horizontalMode() const {
    assertReadEnabled();
    return mHorz;
}

Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode m) {
    if (m < AcDb::kTextLeft || m > AcDb::kTextFit) return Acad::eInvalidInput;
    assertWriteEnabled();
    mHorz = m;
    return Acad::eOk;
}

AcDb::TextVertMode AcDbText::verticalMode() const {
    assertReadEnabled();
    return mVert;
}

Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode m) {
    if (m < AcDb::kTextBase || m > AcDb::kTextTop) return Acad::eInvalidInput;
    assertWriteEnabled();
    mVert = m;
    return Acad::eOk;
}

bool AcDbText::isMirroredInX() const {
    assertReadEnabled();
    return mMirrorX;
}

Acad::ErrorStatus AcDbText::mirrorInX(bool on) {
    assertWriteEnabled();
    mMirrorX = on;
    return Acad::eOk;
}

bool AcDbText::isMirroredInY() const {
    assertReadEnabled();
    return mMirrorY;
}

Acad::ErrorStatus AcDbText::mirrorInY(bool on) {
    assertWriteEnabled();
    mMirrorY = on;
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writePoint3d(mPosition);
    filer->writePoint3d(mAlignment);
    filer->writeVector3d(mNormal);
    filer->writeString(mText.c_str());
    filer->writeHardPointerId(mStyle);
    filer->writeDouble(mHeight);
    filer->writeDouble(mWidthFactor);
    filer->writeDouble(mRotation);
    filer->writeDouble(mOblique);
    filer->writeDouble(mThickness);
    filer->writeInt16(static_cast<Adesk::Int16>(mHorz));
    filer->writeInt16(static_cast<Adesk::Int16>(mVert));
    filer->writeBool(mMirrorX);
    filer->writeBool(mMirrorY);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dwgInFields(filer); es != Acad::eOk) return es;
    AcGePoint3d pos, al;
    AcGeVector3d n;
    ACHAR* s = nullptr;
    AcDbHardPointerId style;
    double h = 0.0, w = 1.0, rot = 0.0, obl = 0.0, th = 0.0;
    Adesk::Int16 horz = 0, vert = 0;
    bool mx = false, my = false;
    filer->readPoint3d(&pos);
    filer->readPoint3d(&al);
    filer->readVector3d(&n);
    filer->readString(&s);
    filer->readHardPointerId(&style);
    filer->readDouble(&h);
    filer->readDouble(&w);
    filer->readDouble(&rot);
    filer->readDouble(&obl);
    filer->readDouble(&th);
    filer->readInt16(&horz);
    filer->readInt16(&vert);
    filer->readBool(&mx);
    filer->readBool(&my);
    std::wstring text = s ? s : L"";
    acdbFree(s);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mPosition = pos;
    mAlignment = al;
    mNormal = unitNormal(n);
    mText = std::move(text);
    mStyle = style;
    mHeight = h;
    mWidthFactor = w;
    mRotation = rot;
    mOblique = obl;
    mThickness = th;
    mHorz = horz >= AcDb::kTextLeft && horz <= AcDb::kTextFit
                ? static_cast<AcDb::TextHorzMode>(horz)
                : AcDb::kTextLeft;
    mVert = vert >= AcDb::kTextBase && vert <= AcDb::kTextTop
                ? static_cast<AcDb::TextVertMode>(vert)
                : AcDb::kTextBase;
    mMirrorX = mx;
    mMirrorY = my;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbText");
    filer->writeDouble(AcDb::kDxfThickness, mThickness);
    filer->writePoint3d(AcDb::kDxfXCoord, worldToOcs(mPosition, mNormal));
    filer->writeDouble(AcDb::kDxfTxtSize, mHeight);
    filer->writeString(AcDb::kDxfText, mText.c_str());
    filer->writeAngle(AcDb::kDxfAngle, mRotation);
    filer->writeDouble(AcDb::kDxfTxtStyleXScale, mWidthFactor);
    filer->writeAngle(AcDb::kDxfViewportTwist, mOblique);
    filer->writeString(AcDb::kDxfTextStyleName, styleName(mStyle).c_str());
    filer->writeInt16(AcDb::kDxfTxtStyleFlags,
                      static_cast<Adesk::Int16>((mMirrorX ? 2 : 0) | (mMirrorY ? 4 : 0)));
    filer->writeInt16(AcDb::kDxfCircleSides, static_cast<Adesk::Int16>(mHorz));
    filer->writePoint3d(static_cast<AcDb::DxfCode>(AcDb::kDxfXCoord + 1),
                        worldToOcs(mAlignment, mNormal));
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    filer->writeString(AcDb::kDxfSubclass, L"AcDbText");
    filer->writeInt16(AcDb::kDxfViewportZoom, static_cast<Adesk::Int16>(mVert));
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbText")) return Acad::eBadDxfSequence;
    AcGePoint3d pos, al;
    bool haveAlignment = false;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        switch (rb.restype) {
        case AcDb::kDxfThickness:
            mThickness = rb.resval.rreal;
            continue;
        case AcDb::kDxfXCoord:
            pos = rbPoint(rb);
            continue;
        case AcDb::kDxfXCoord + 1:
            al = rbPoint(rb);
            haveAlignment = true;
            continue;
        case AcDb::kDxfTxtSize:
            mHeight = rb.resval.rreal;
            continue;
        case AcDb::kDxfText:
            mText = rb.resval.rstring ? rb.resval.rstring : L"";
            continue;
        case AcDb::kDxfAngle:
            mRotation = rb.resval.rreal;
            continue;
        case AcDb::kDxfTxtStyleXScale:
            mWidthFactor = rb.resval.rreal;
            continue;
        case AcDb::kDxfViewportTwist:
            mOblique = rb.resval.rreal;
            continue;
        case AcDb::kDxfTextStyleName:
            mStyle = styleNamed(lookupDatabase(this, filer->database()), rb.resval.rstring);
            continue;
        case AcDb::kDxfTxtStyleFlags:
            mMirrorX = (rb.resval.rint & 2) != 0;
            mMirrorY = (rb.resval.rint & 4) != 0;
            continue;
        case AcDb::kDxfCircleSides:
            mHorz = rb.resval.rint >= 0 && rb.resval.rint <= 5
                        ? static_cast<AcDb::TextHorzMode>(rb.resval.rint)
                        : AcDb::kTextLeft;
            continue;
        case AcDb::kDxfViewportZoom:
            mVert = rb.resval.rint >= 0 && rb.resval.rint <= 3
                        ? static_cast<AcDb::TextVertMode>(rb.resval.rint)
                        : AcDb::kTextBase;
            continue;
        case AcDb::kDxfNormalX:
            mNormal = unitNormal(rbVector(rb));
            continue;
        case AcDb::kDxfSubclass:
            if (rb.resval.rstring && std::wcscmp(rb.resval.rstring, L"AcDbText") == 0) continue;
            filer->pushBackItem();
            break;
        default:
            filer->pushBackItem();
            break;
        }
        break;
    }
    mPosition = ocsToWorld(pos, mNormal);
    mAlignment = haveAlignment ? ocsToWorld(al, mNormal) : mPosition;
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbText::subList() const {
    AcDbEntity::subList();
    acutPrintf(L"\n%18s %s", L"Style =", styleName(mStyle).c_str());
    acutPrintf(L"\n%18s %s", L"Value =", mText.c_str());
    static const wchar_t* const horz[] = {L"left",    L"center", L"right",
                                          L"aligned", L"middle", L"fit"};
    static const wchar_t* const vert[] = {L"baseline", L"bottom", L"middle", L"top"};
    acutPrintf(L"\n%18s %s %s", L"Justify =", vert[mVert], horz[mHorz]);
    listPoint(L"start point,", mPosition);
    if (!isDefaultAlignment()) listPoint(L"align point,", mAlignment);
    listValue(L"height", mHeight);
    listAngle(L"rotation angle", mRotation);
    listValue(L"width scale factor", mWidthFactor);
    listAngle(L"obliquing angle", mOblique);
    if (mMirrorX || mMirrorY)
        acutPrintf(L"\n%18s %s%s", L"Generation", mMirrorX ? L"Backward " : L"",
                   mMirrorY ? L"Upside-down" : L"");
    if (mThickness != 0.0) listValue(L"thickness", mThickness);
}

Adesk::Boolean AcDbText::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd || mText.empty()) return Adesk::kTrue;
    const AcDbTextImpl::Placement p = AcDbTextImpl::place(*this);
    AcGiTextStyle s = AcDbTextImpl::style(*this);
    s.setTextSize(p.height);
    s.setXScale(p.widthFactor);
    if (mThickness != 0.0) wd->subEntityTraits().setThickness(mThickness);
    wd->geometry().text(p.origin, p.normal, p.dir, mText.c_str(), -1, Adesk::kFalse, s);
    return Adesk::kTrue;
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const AcDbTextImpl::Placement p = AcDbTextImpl::place(*this);
    extents = AcDbExtents();
    const AcGeVector3d along = p.dir * p.width, up = p.up * p.height;
    extents.addPoint(p.origin);
    extents.addPoint(p.origin + along);
    extents.addPoint(p.origin + up);
    extents.addPoint(p.origin + along + up);
    return Acad::eOk;
}

// ---------------------------------------------------------------- grips, snaps, transforms

Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    grips.append(mPosition);
    if (!isDefaultAlignment()) grips.append(mAlignment);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    assertWriteEnabled();
    bool pos = false, al = false;
    for (int i : indices) {
        pos = pos || i == 0;
        al = al || i == 1;
    }
    // The justified point carries the text; the start point follows unless the text spans two
    // points.
    const bool spans = mHorz == AcDb::kTextAlign || mHorz == AcDb::kTextFit;
    if (pos) {
        mPosition += offset;
        if (!spans && !isDefaultAlignment()) mAlignment += offset;
    }
    if (al && !isDefaultAlignment()) {
        mAlignment += offset;
        if (!spans) mPosition += offset;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                              const AcGePoint3d&, const AcGePoint3d&,
                                              const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) snapPoints.append(isDefaultAlignment() ? mPosition : mAlignment);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    const Frame f = Frame::ocs(mNormal, AcGePoint3d::kOrigin);
    AcGeVector3d dir = f.x * std::cos(mRotation) + f.y * std::sin(mRotation);
    AcGeVector3d up = f.z.crossProduct(dir), n = f.z;
    dir.transformBy(xform);
    up.transformBy(xform);
    n.transformBy(xform);
    const double ld = dir.length(), lu = up.length();
    if (!(ld > 1e-300) || !(lu > 1e-300)) return Acad::eInvalidInput;
    const AcGeVector3d planeNormal = unitNormal(dir.crossProduct(up));
    // Turned over, the text keeps its normal's side and reads backwards.
    const bool flip = n.length() > 1e-300 && planeNormal.dotProduct(n) < 0.0;
    const AcGeVector3d newNormal = flip ? -planeNormal : planeNormal;
    const Frame nf = Frame::ocs(newNormal, AcGePoint3d::kOrigin);
    mPosition.transformBy(xform);
    mAlignment.transformBy(xform);
    mNormal = newNormal;
    mRotation = normAngle(std::atan2(dir.dotProduct(nf.y), dir.dotProduct(nf.x)));
    mHeight *= lu;
    mWidthFactor *= ld / lu;
    if (flip) mMirrorX = !mMirrorX;
    const double along = n.dotProduct(newNormal);
    if (std::isfinite(along)) mThickness *= along;
    return Acad::eOk;
}
