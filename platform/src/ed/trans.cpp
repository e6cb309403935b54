// Coordinate-system conversion of prompt points, and the host's current user system.
#include "acedads.h"
#include "dbents.h"
#include "dbmain.h"

namespace {

// A right-handed orthonormal system: world = origin + x * px + y * py + z * pz.
struct Frame {
    AcGePoint3d origin;
    AcGeVector3d x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
};

Frame& currentUcs() {
    static Frame ucs;
    return ucs;
}

// The arbitrary-axis system of a normal, the one entities use for their own coordinates.
bool normalFrame(const AcGeVector3d& normal, Frame& f) {
    if (normal.isZeroLength()) return false;
    AcGeMatrix3d m = AcGeMatrix3d::planeToWorld(normal);
    AcGePoint3d origin;
    m.getCoordSystem(origin, f.x, f.y, f.z);
    f.origin = AcGePoint3d::kOrigin;
    return true;
}

// The entity system of a drawing entity: planar entities keep their points in the system of
// their normal, every other entity in world coordinates.
bool entityFrame(const ads_name name, Frame& f) {
    AcDbObjectId id;
    if (acdbGetObjectId(id, name) != Acad::eOk || id.isNull()) return false;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk || !ent) return false;
    AcGeVector3d normal(0, 0, 1);
    bool planar = true;
    if (auto* a = AcDbArc::cast(ent))
        normal = a->normal();
    else if (auto* c = AcDbCircle::cast(ent))
        normal = c->normal();
    else if (auto* pl = AcDbPolyline::cast(ent))
        normal = pl->normal();
    else if (auto* t = AcDbText::cast(ent))
        normal = t->normal();
    else if (auto* br = AcDbBlockReference::cast(ent))
        normal = br->normal();
    else
        planar = false;
    ent->close();
    if (!planar) {
        f = Frame();
        return true;
    }
    return normalFrame(normal, f);
}

enum class Kind { Frame, Paper, Display };

bool frameOf(const resbuf* rb, Frame& f, Kind& kind) {
    kind = Kind::Frame;
    switch (rb->restype) {
    case RTSHORT:
        switch (rb->resval.rint) {
        case 0:
            f = Frame();
            return true;
        case 1:
            f = currentUcs();
            return true;
        case 2:
            // No views here: the display system is the user system.
            kind = Kind::Display;
            f = currentUcs();
            return true;
        case 3:
            kind = Kind::Paper;
            f = currentUcs();
            return true;
        default:
            return false;
        }
    case RTENAME:
        return entityFrame(rb->resval.rlname, f);
    case RT3DPOINT: {
        const double* v = rb->resval.rpoint;
        return normalFrame(AcGeVector3d(v[0], v[1], v[2]), f);
    }
    default:
        return false;
    }
}

AcGeVector3d column(const AcGeMatrix3d& m, int c) {
    return {m.entry[0][c], m.entry[1][c], m.entry[2][c]};
}

} // namespace

int acedTrans(const ads_point pt, const resbuf* from, const resbuf* to, int disp,
              ads_point result) {
    if (!pt || !from || !to || !result) return RTERROR;
    Frame src, dst;
    Kind srcKind, dstKind;
    if (!frameOf(from, src, srcKind) || !frameOf(to, dst, dstKind)) return RTERROR;
    // Paper-space display coordinates relate to the display only.
    if ((srcKind == Kind::Paper && dstKind != Kind::Display) ||
        (dstKind == Kind::Paper && srcKind != Kind::Display))
        return RTERROR;

    AcGeVector3d w = src.x * pt[0] + src.y * pt[1] + src.z * pt[2];
    if (!disp) w += src.origin.asVector() - dst.origin.asVector();
    // Both systems are orthonormal, so projecting onto the axes inverts them.
    result[0] = w.dotProduct(dst.x);
    result[1] = w.dotProduct(dst.y);
    result[2] = w.dotProduct(dst.z);
    return RTNORM;
}

bool qorSetUcs(const AcGePoint3d& origin, const AcGeVector3d& xAxis, const AcGeVector3d& yAxis) {
    const double tol = AcGeContext::gTol.equalVector();
    const double lx = xAxis.length(), ly = yAxis.length();
    if (!(lx > tol) || !(ly > tol)) return false;
    const AcGeVector3d x = xAxis / lx;
    // Keep the y axis in the plane of the two, square to x.
    const AcGeVector3d yPerp = yAxis - x * yAxis.dotProduct(x);
    const double lp = yPerp.length();
    if (!(lp > tol * ly)) return false;
    Frame& ucs = currentUcs();
    ucs.origin = origin;
    ucs.x = x;
    ucs.y = yPerp / lp;
    ucs.z = ucs.x.crossProduct(ucs.y);
    return true;
}

void qorGetUcs(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis, AcGeVector3d& zAxis) {
    const Frame& ucs = currentUcs();
    origin = ucs.origin;
    xAxis = ucs.x;
    yAxis = ucs.y;
    zAxis = ucs.z;
}

void qorResetUcs() {
    currentUcs() = Frame();
}

Acad::ErrorStatus acedGetCurrentUCS(AcGeMatrix3d& mat) {
    const Frame& ucs = currentUcs();
    mat.setCoordSystem(ucs.origin, ucs.x, ucs.y, ucs.z);
    return Acad::eOk;
}

Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& mat) {
    const AcGeVector3d o = column(mat, 3);
    return qorSetUcs(AcGePoint3d(o.x, o.y, o.z), column(mat, 0), column(mat, 1))
               ? Acad::eOk
               : Acad::eInvalidInput;
}
