// The hatch's DWG and DXF filing and its listing. Edges are filed by type: a line by its ends,
// an arc by centre, radius, angles and sense, an elliptical arc by centre, axes, radii and
// parameters, a NURBS edge by degree, knots, control points and weights.
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "db/ents/hatchloop.h"
#include "genurbs.h"

#include <cmath>

using namespace ents_detail;
using Loop = AcDbHatch::Loop;

namespace {

bool finite2(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// ---------------------------------------------------------------- DWG edges

void writeEdge(AcDbDwgFiler* f, int type, const AcGeCurve2d& e) {
    f->writeInt16(static_cast<Adesk::Int16>(type));
    switch (type) {
    case AcDbHatch::kLine: {
        const auto& s = static_cast<const AcGeLineSeg2d&>(e);
        f->writePoint2d(s.startPoint());
        f->writePoint2d(s.endPoint());
        break;
    }
    case AcDbHatch::kCirArc: {
        const auto& a = static_cast<const AcGeCircArc2d&>(e);
        f->writePoint2d(a.center());
        f->writeDouble(a.radius());
        f->writeDouble(a.startAng());
        f->writeDouble(a.endAng());
        f->writeVector2d(a.refVec());
        f->writeBool(a.isClockWise());
        break;
    }
    case AcDbHatch::kEllArc: {
        const auto& a = static_cast<const AcGeEllipArc2d&>(e);
        f->writePoint2d(a.center());
        f->writeVector2d(a.majorAxis());
        f->writeVector2d(a.minorAxis());
        f->writeDouble(a.majorRadius());
        f->writeDouble(a.minorRadius());
        f->writeDouble(a.startAng());
        f->writeDouble(a.endAng());
        break;
    }
    case AcDbHatch::kSpline: {
        const auto& n = static_cast<const AcGeNurbCurve2d&>(e);
        int degree = 0;
        bool rational = false, periodic = false;
        AcGeKnotVector knots;
        AcGePoint2dArray pts;
        AcGeDoubleArray weights;
        n.getDefinitionData(degree, rational, periodic, knots, pts, weights);
        f->writeInt16(static_cast<Adesk::Int16>(degree));
        f->writeUInt32(static_cast<Adesk::UInt32>(knots.length()));
        for (int i = 0; i < knots.length(); ++i)
            f->writeDouble(knots[i]);
        f->writeUInt32(static_cast<Adesk::UInt32>(pts.length()));
        for (const auto& p : pts)
            f->writePoint2d(p);
        f->writeUInt32(static_cast<Adesk::UInt32>(weights.length()));
        for (double w : weights)
            f->writeDouble(w);
        break;
    }
    default:
        break;
    }
}

template <class T, class Read> void readList(AcDbDwgFiler* f, AcArray<T>& out, Read read) {
    Adesk::UInt32 n = 0;
    f->readUInt32(&n);
    for (Adesk::UInt32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
        T v{};
        read(&v);
        if (f->filerStatus() == Acad::eOk) out.append(v);
    }
}

// The next edge, or null with the filer's status set.
std::unique_ptr<AcGeCurve2d> readEdge(AcDbDwgFiler* f, int& type) {
    Adesk::Int16 t = 0;
    f->readInt16(&t);
    type = t;
    std::unique_ptr<AcGeCurve2d> e;
    switch (t) {
    case AcDbHatch::kLine: {
        AcGePoint2d a, b;
        f->readPoint2d(&a);
        f->readPoint2d(&b);
        if (finite2(a) && finite2(b)) e = std::make_unique<AcGeLineSeg2d>(a, b);
        break;
    }
    case AcDbHatch::kCirArc: {
        AcGePoint2d c;
        AcGeVector2d ref;
        double r = 0.0, s = 0.0, en = 0.0;
        bool cw = false;
        f->readPoint2d(&c);
        f->readDouble(&r);
        f->readDouble(&s);
        f->readDouble(&en);
        f->readVector2d(&ref);
        f->readBool(&cw);
        if (finite2(c) && std::isfinite(r) && r > 0.0 && std::isfinite(s) && std::isfinite(en) &&
            ref.length() > 0.0)
            e = std::make_unique<AcGeCircArc2d>(c, r, s, en, ref, cw);
        break;
    }
    case AcDbHatch::kEllArc: {
        AcGePoint2d c;
        AcGeVector2d major, minor;
        double a = 0.0, b = 0.0, s = 0.0, en = 0.0;
        f->readPoint2d(&c);
        f->readVector2d(&major);
        f->readVector2d(&minor);
        f->readDouble(&a);
        f->readDouble(&b);
        f->readDouble(&s);
        f->readDouble(&en);
        if (finite2(c) && major.length() > 0.0 && std::isfinite(a) && std::isfinite(b) &&
            std::isfinite(s) && std::isfinite(en))
            e = std::make_unique<AcGeEllipArc2d>(c, major, minor, a, b, s, en);
        break;
    }
    case AcDbHatch::kSpline: {
        Adesk::Int16 degree = 0;
        AcGeDoubleArray knots, weights;
        AcGePoint2dArray pts;
        f->readInt16(&degree);
        readList(f, knots, [&](double* v) { f->readDouble(v); });
        readList(f, pts, [&](AcGePoint2d* v) { f->readPoint2d(v); });
        readList(f, weights, [&](double* v) { f->readDouble(v); });
        if (f->filerStatus() != Acad::eOk) return nullptr;
        auto n = std::make_unique<AcGeNurbCurve2d>(degree, AcGeKnotVector(knots), pts, weights);
        if (n->isValid()) e = std::move(n);
        break;
    }
    default:
        break;
    }
    if (f->filerStatus() != Acad::eOk) return nullptr;
    if (!e) f->setFilerStatus(Acad::eInvalidInput);
    return e;
}

// ---------------------------------------------------------------- DXF groups

struct Groups {
    AcDbDxfFiler* f;
    resbuf rb{};
    bool ok = true;
    // The next group, which must have the code.
    bool take(int code) {
        if (!ok) return false;
        if (!nextItem(f, rb) || rb.restype != code) ok = false;
        return ok;
    }
    // The next group when it has the code; otherwise it stays for the next reader.
    bool takeIf(int code) {
        if (!ok) return false;
        if (!nextItem(f, rb)) return false;
        if (rb.restype == code) return true;
        f->pushBackItem();
        return false;
    }
    double real() const { return rb.resval.rreal; }
    int int16() const { return rb.resval.rint; }
    Adesk::Int32 int32() const { return rb.resval.rlong; }
    AcGePoint2d point() const { return {rb.resval.rpoint[0], rb.resval.rpoint[1]}; }
};

AcDb::DxfCode code(int c) {
    return static_cast<AcDb::DxfCode>(c);
}

// An arc's angles from the x axis, in its own sense, as the exchange format keeps them.
void arcAngles(const AcGeCircArc2d& a, double& start, double& end) {
    const AcGeVector2d r = a.refVec();
    const double off = a.isClockWise() ? -std::atan2(r.y, r.x) : std::atan2(r.y, r.x);
    start = normAngle(a.startAng() + off);
    end = start + (a.endAng() - a.startAng());
}

void dxfEdge(AcDbDxfFiler* f, int type, const AcGeCurve2d& e) {
    f->writeInt16(code(72), static_cast<Adesk::Int16>(type));
    switch (type) {
    case AcDbHatch::kLine: {
        const auto& s = static_cast<const AcGeLineSeg2d&>(e);
        f->writePoint2d(code(10), s.startPoint());
        f->writePoint2d(code(11), s.endPoint());
        break;
    }
    case AcDbHatch::kCirArc: {
        const auto& a = static_cast<const AcGeCircArc2d&>(e);
        double s = 0.0, en = 0.0;
        arcAngles(a, s, en);
        f->writePoint2d(code(10), a.center());
        f->writeDouble(code(40), a.radius());
        f->writeAngle(code(50), s);
        f->writeAngle(code(51), en);
        f->writeInt16(code(73), a.isClockWise() ? 0 : 1);
        break;
    }
    case AcDbHatch::kEllArc: {
        const auto& a = static_cast<const AcGeEllipArc2d&>(e);
        f->writePoint2d(code(10), a.center());
        f->writePoint2d(code(11), AcGePoint2d::kOrigin + a.majorAxis() * a.majorRadius());
        f->writeDouble(code(40), a.majorRadius() > 0.0 ? a.minorRadius() / a.majorRadius() : 0.0);
        f->writeAngle(code(50), a.startAng());
        f->writeAngle(code(51), a.endAng());
        f->writeInt16(code(73), a.isClockWise() ? 0 : 1);
        break;
    }
    case AcDbHatch::kSpline: {
        const auto& n = static_cast<const AcGeNurbCurve2d&>(e);
        int degree = 0;
        bool rational = false, periodic = false;
        AcGeKnotVector knots;
        AcGePoint2dArray pts;
        AcGeDoubleArray weights;
        n.getDefinitionData(degree, rational, periodic, knots, pts, weights);
        f->writeInt32(code(94), degree);
        f->writeInt16(code(73), rational ? 1 : 0);
        f->writeInt16(code(74), periodic ? 1 : 0);
        f->writeInt32(code(95), knots.length());
        f->writeInt32(code(96), pts.length());
        for (int i = 0; i < knots.length(); ++i)
            f->writeDouble(code(40), knots[i]);
        for (const auto& p : pts)
            f->writePoint2d(code(10), p);
        for (double w : weights)
            f->writeDouble(code(42), w);
        break;
    }
    default:
        break;
    }
}

std::unique_ptr<AcGeCurve2d> dxfReadEdge(Groups& g, int& type) {
    if (!g.take(72)) return nullptr;
    type = g.int16();
    switch (type) {
    case AcDbHatch::kLine: {
        if (!g.take(10)) return nullptr;
        const AcGePoint2d a = g.point();
        if (!g.take(11)) return nullptr;
        return std::make_unique<AcGeLineSeg2d>(a, g.point());
    }
    case AcDbHatch::kCirArc: {
        if (!g.take(10)) return nullptr;
        const AcGePoint2d c = g.point();
        if (!g.take(40)) return nullptr;
        const double r = g.real();
        if (!g.take(50)) return nullptr;
        const double s = g.real();
        if (!g.take(51)) return nullptr;
        const double e = g.real();
        if (!g.take(73)) return nullptr;
        if (!finite2(c) || !(r > 0.0) || !std::isfinite(r) || !std::isfinite(s + e)) return nullptr;
        return std::make_unique<AcGeCircArc2d>(c, r, s, e, AcGeVector2d(1, 0), g.int16() == 0);
    }
    case AcDbHatch::kEllArc: {
        if (!g.take(10)) return nullptr;
        const AcGePoint2d c = g.point();
        if (!g.take(11)) return nullptr;
        const AcGeVector2d major = g.point().asVector();
        if (!g.take(40)) return nullptr;
        const double ratio = g.real();
        if (!g.take(50)) return nullptr;
        const double s = g.real();
        if (!g.take(51)) return nullptr;
        const double e = g.real();
        if (!g.take(73)) return nullptr;
        const double a = major.length();
        if (!finite2(c) || !(a > 0.0) || !std::isfinite(a) || !std::isfinite(ratio + s + e))
            return nullptr;
        const AcGeVector2d x = major / a;
        const AcGeVector2d y = g.int16() != 0 ? x.perpVector() : -x.perpVector();
        return std::make_unique<AcGeEllipArc2d>(c, x, y, a, a * ratio, s, e);
    }
    case AcDbHatch::kSpline: {
        if (!g.take(94)) return nullptr;
        const int degree = g.int32();
        if (!g.take(73) || !g.take(74) || !g.take(95)) return nullptr;
        const Adesk::Int32 nk = g.int32();
        if (!g.take(96)) return nullptr;
        const Adesk::Int32 nc = g.int32();
        AcGeDoubleArray knots, weights;
        AcGePoint2dArray pts;
        // The counts bound the loops; items are kept only as they arrive.
        for (Adesk::Int32 i = 0; i < nk && g.take(40); ++i)
            knots.append(g.real());
        for (Adesk::Int32 i = 0; i < nc && g.take(10); ++i)
            pts.append(g.point());
        while (g.takeIf(42))
            weights.append(g.real());
        if (!g.ok) return nullptr;
        auto n = std::make_unique<AcGeNurbCurve2d>(degree, AcGeKnotVector(knots), pts, weights);
        if (!n->isValid()) return nullptr;
        return n;
    }
    default:
        return nullptr;
    }
}

} // namespace

// ---------------------------------------------------------------- DWG

Acad::ErrorStatus AcDbHatch::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeDouble(mElevation);
    filer->writeVector3d(mNormal);
    filer->writeInt16(static_cast<Adesk::Int16>(mPatternType));
    filer->writeString(mPatternName.c_str());
    filer->writeDouble(mPatternAngle);
    filer->writeDouble(mPatternSpace);
    filer->writeDouble(mPatternScale);
    filer->writeBool(mPatternDouble);
    filer->writeInt16(static_cast<Adesk::Int16>(mStyle));
    filer->writeInt16(static_cast<Adesk::Int16>(mObjectType));
    filer->writeBool(mAssociative);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mLoops.size()));
    for (const auto& l : mLoops) {
        filer->writeInt32(l->type);
        if (l->isPolyline()) {
            filer->writeUInt32(static_cast<Adesk::UInt32>(l->verts.size()));
            filer->writeBool(!l->bulges.empty());
            for (size_t i = 0; i < l->verts.size(); ++i) {
                filer->writePoint2d(l->verts[i]);
                if (!l->bulges.empty()) filer->writeDouble(l->bulges[i]);
            }
        } else {
            filer->writeUInt32(static_cast<Adesk::UInt32>(l->edges.size()));
            for (size_t i = 0; i < l->edges.size(); ++i)
                writeEdge(filer, l->edgeTypes[i], *l->edges[i]);
        }
        filer->writeUInt32(static_cast<Adesk::UInt32>(l->ids.size()));
        for (const auto& id : l->ids)
            filer->writeSoftPointerId(id);
    }
    filer->writeUInt32(static_cast<Adesk::UInt32>(mSeeds.size()));
    for (const auto& s : mSeeds)
        filer->writePoint2d(s);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbHatch::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dwgInFields(filer); es != Acad::eOk) return es;
    double elevation = 0.0, angle = 0.0, space = 1.0, scale = 1.0;
    AcGeVector3d normal;
    Adesk::Int16 patType = 0, style = 0, objType = 0;
    ACHAR* name = nullptr;
    bool dbl = false, assoc = false;
    filer->readDouble(&elevation);
    filer->readVector3d(&normal);
    filer->readInt16(&patType);
    filer->readString(&name);
    const std::wstring patName = name ? name : L"";
    acdbFree(name);
    filer->readDouble(&angle);
    filer->readDouble(&space);
    filer->readDouble(&scale);
    filer->readBool(&dbl);
    filer->readInt16(&style);
    filer->readInt16(&objType);
    filer->readBool(&assoc);
    Adesk::UInt32 nloops = 0;
    filer->readUInt32(&nloops);
    std::vector<std::unique_ptr<Loop>> loops;
    // Loops, vertices and edges are made as their data arrives, never from a count alone.
    for (Adesk::UInt32 k = 0; k < nloops && filer->filerStatus() == Acad::eOk; ++k) {
        auto l = std::make_unique<Loop>();
        filer->readInt32(&l->type);
        Adesk::UInt32 n = 0;
        filer->readUInt32(&n);
        if (l->isPolyline()) {
            bool bulges = false;
            filer->readBool(&bulges);
            for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
                AcGePoint2d p;
                double b = 0.0;
                filer->readPoint2d(&p);
                if (bulges) filer->readDouble(&b);
                if (filer->filerStatus() != Acad::eOk) break;
                l->verts.push_back(p);
                if (bulges) l->bulges.push_back(b);
            }
        } else {
            for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
                int type = 0;
                std::unique_ptr<AcGeCurve2d> e = readEdge(filer, type);
                if (!e) break;
                l->edges.push_back(std::move(e));
                l->edgeTypes.push_back(type);
            }
        }
        Adesk::UInt32 nids = 0;
        filer->readUInt32(&nids);
        for (Adesk::UInt32 i = 0; i < nids && filer->filerStatus() == Acad::eOk; ++i) {
            AcDbSoftPointerId id;
            filer->readSoftPointerId(&id);
            if (filer->filerStatus() == Acad::eOk) l->ids.push_back(id);
        }
        loops.push_back(std::move(l));
    }
    std::vector<AcGePoint2d> seeds;
    Adesk::UInt32 nseeds = 0;
    filer->readUInt32(&nseeds);
    for (Adesk::UInt32 i = 0; i < nseeds && filer->filerStatus() == Acad::eOk; ++i) {
        AcGePoint2d p;
        filer->readPoint2d(&p);
        if (filer->filerStatus() == Acad::eOk) seeds.push_back(p);
    }
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    const bool sane = std::isfinite(elevation) && std::isfinite(angle) && space > 0.0 &&
                      std::isfinite(space) && scale > 0.0 && std::isfinite(scale) &&
                      patType >= kUserDefined && patType <= kCustomDefined && style >= kNormal &&
                      style <= kIgnore && (objType == kHatchObject || objType == kGradientObject);
    if (!sane) {
        filer->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
    mElevation = elevation;
    mNormal = unitNormal(normal);
    mPatternType = static_cast<HatchPatternType>(patType);
    mPatternName = patName;
    mPatternAngle = angle;
    mPatternSpace = space;
    mPatternScale = scale;
    mPatternDouble = dbl;
    mStyle = static_cast<HatchStyle>(style);
    mObjectType = static_cast<HatchObjectType>(objType);
    mAssociative = assoc;
    mLoops = std::move(loops);
    mSeeds = std::move(seeds);
    mLines.clear();
    mEvaluated = false;
    return Acad::eOk;
}

// ---------------------------------------------------------------- DXF

Acad::ErrorStatus AcDbHatch::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbEntity::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbHatch");
    filer->writePoint3d(code(10), AcGePoint3d(0, 0, mElevation));
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    filer->writeString(code(2), mPatternName.c_str());
    filer->writeInt16(code(70), isSolidFill() ? 1 : 0);
    filer->writeInt16(code(71), mAssociative ? 1 : 0);
    filer->writeInt32(code(91), static_cast<Adesk::Int32>(mLoops.size()));
    for (const auto& l : mLoops) {
        filer->writeInt32(code(92), l->type);
        if (l->isPolyline()) {
            filer->writeInt16(code(72), l->bulges.empty() ? 0 : 1);
            filer->writeInt16(code(73), 1);
            filer->writeInt32(code(93), static_cast<Adesk::Int32>(l->verts.size()));
            for (size_t i = 0; i < l->verts.size(); ++i) {
                filer->writePoint2d(code(10), l->verts[i]);
                if (!l->bulges.empty()) filer->writeDouble(code(42), l->bulges[i]);
            }
        } else {
            filer->writeInt32(code(93), static_cast<Adesk::Int32>(l->edges.size()));
            for (size_t i = 0; i < l->edges.size(); ++i)
                dxfEdge(filer, l->edgeTypes[i], *l->edges[i]);
        }
        filer->writeInt32(code(97), static_cast<Adesk::Int32>(l->ids.size()));
        for (const auto& id : l->ids)
            filer->writeObjectId(code(330), id);
    }
    filer->writeInt16(code(75), static_cast<Adesk::Int16>(mStyle));
    filer->writeInt16(code(76), static_cast<Adesk::Int16>(mPatternType));
    if (!isSolidFill()) {
        filer->writeAngle(code(52), mPatternAngle);
        filer->writeDouble(code(41), mPatternType == kUserDefined ? mPatternSpace : mPatternScale);
        filer->writeInt16(code(77), mPatternDouble ? 1 : 0);
    }
    filer->writeInt32(code(98), static_cast<Adesk::Int32>(mSeeds.size()));
    for (const auto& s : mSeeds)
        filer->writePoint2d(code(10), s);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbHatch::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbHatch")) return Acad::eBadDxfSequence;
    Groups g{filer};
    if (!g.take(10)) return Acad::eBadDxfSequence;
    const double elevation = g.rb.resval.rpoint[2];
    if (!g.take(210)) return Acad::eBadDxfSequence;
    const AcGeVector3d normal = rbVector(g.rb);
    if (!g.take(2)) return Acad::eBadDxfSequence;
    const std::wstring name = g.rb.resval.rstring ? g.rb.resval.rstring : L"";
    if (!g.take(70) || !g.take(71)) return Acad::eBadDxfSequence;
    const bool assoc = g.int16() != 0;
    if (!g.take(91)) return Acad::eBadDxfSequence;
    const Adesk::Int32 nloops = g.int32();
    std::vector<std::unique_ptr<Loop>> loops;
    for (Adesk::Int32 k = 0; k < nloops && g.take(92); ++k) {
        auto l = std::make_unique<Loop>();
        l->type = g.int32();
        if (l->isPolyline()) {
            if (!g.take(72)) break;
            const bool bulges = g.int16() != 0;
            if (!g.take(73) || !g.take(93)) break;
            const Adesk::Int32 n = g.int32();
            for (Adesk::Int32 i = 0; i < n && g.take(10); ++i) {
                l->verts.push_back(g.point());
                if (bulges && g.take(42)) l->bulges.push_back(g.real());
            }
        } else {
            if (!g.take(93)) break;
            const Adesk::Int32 n = g.int32();
            for (Adesk::Int32 i = 0; i < n && g.ok; ++i) {
                int type = 0;
                std::unique_ptr<AcGeCurve2d> e = dxfReadEdge(g, type);
                if (!e) {
                    g.ok = false;
                    break;
                }
                l->edges.push_back(std::move(e));
                l->edgeTypes.push_back(type);
            }
        }
        if (!g.take(97)) break;
        const Adesk::Int32 nids = g.int32();
        for (Adesk::Int32 i = 0; i < nids && g.take(330); ++i) {
            AcDbObjectId id;
            acdbGetObjectId(id, g.rb.resval.rlname);
            l->ids.push_back(id);
        }
        loops.push_back(std::move(l));
    }
    if (!g.ok || static_cast<Adesk::Int32>(loops.size()) != nloops) return Acad::eBadDxfSequence;
    if (!g.take(75)) return Acad::eBadDxfSequence;
    const int style = g.int16();
    if (!g.take(76)) return Acad::eBadDxfSequence;
    const int patType = g.int16();
    double angle = 0.0, spaceOrScale = 1.0;
    bool dbl = false;
    if (g.takeIf(52)) angle = g.real();
    if (g.takeIf(41)) spaceOrScale = g.real();
    if (g.takeIf(77)) dbl = g.int16() != 0;
    std::vector<AcGePoint2d> seeds;
    if (g.takeIf(98)) {
        const Adesk::Int32 n = g.int32();
        for (Adesk::Int32 i = 0; i < n && g.take(10); ++i)
            seeds.push_back(g.point());
    }
    if (!g.ok) return Acad::eBadDxfSequence;
    if (!std::isfinite(elevation) || !(normal.length() > 0.0) || !std::isfinite(angle) ||
        !(spaceOrScale > 0.0) || !std::isfinite(spaceOrScale) || style < kNormal ||
        style > kIgnore || patType < kUserDefined || patType > kCustomDefined)
        return Acad::eInvalidInput;
    for (const auto& l : loops)
        for (const auto& p : l->verts)
            if (!finite2(p)) return Acad::eInvalidInput;
    mElevation = elevation;
    mNormal = unitNormal(normal);
    mPatternName = name;
    mPatternType = static_cast<HatchPatternType>(patType);
    mAssociative = assoc;
    mLoops = std::move(loops);
    mStyle = static_cast<HatchStyle>(style);
    mPatternAngle = normAngle(angle);
    if (mPatternType == kUserDefined)
        mPatternSpace = spaceOrScale;
    else
        mPatternScale = spaceOrScale;
    mPatternDouble = dbl;
    mSeeds = std::move(seeds);
    mLines.clear();
    mEvaluated = false;
    return Acad::eOk;
}

// ---------------------------------------------------------------- listing

void AcDbHatch::subList() const {
    AcDbEntity::subList();
    static const wchar_t* const kTypes[] = {L"User-defined", L"Predefined", L"Custom"};
    acutPrintf(L"\n%18s %s", L"Pattern:", mPatternName.c_str());
    acutPrintf(L"\n%18s %s", L"Pattern type:", kTypes[mPatternType]);
    if (!isSolidFill()) {
        listAngle(L"Angle:", mPatternAngle);
        listValue(mPatternType == kUserDefined ? L"Spacing:" : L"Scale:",
                  mPatternType == kUserDefined ? mPatternSpace : mPatternScale);
    }
    acutPrintf(L"\n%18s %s", L"Associative:", mAssociative ? L"Yes" : L"No");
    acutPrintf(L"\n%18s %d", L"Loops:", numLoops());
    for (const auto& l : mLoops)
        acutPrintf(L"\n%18s %s%s", L"", l->isPolyline() ? L"polyline" : L"edges",
                   (l->type & kExternal) ? L", external" : L"");
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1))) listVector(L"Normal:", mNormal);
    if (mElevation != 0.0) listValue(L"Elevation:", mElevation);
    double area = 0.0;
    if (getArea(area) == Acad::eOk) listValue(L"Area:", area);
}
