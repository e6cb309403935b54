// The hatch: loops, pattern settings, associated objects, area, transforms and extents.
#include "db/ents/entsimpl.h"
#include "db/ents/hatchloop.h"
#include "ge/nurbscore.h"
#include "genurbs.h"

#include <algorithm>
#include <cmath>
#include <cwctype>

ACRX_CONS_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, L"HATCH")

using namespace ents_detail;
using Loop = AcDbHatch::Loop;

namespace {

Frame hatchFrame(const AcGeVector3d& normal, double elevation) {
    const AcGeVector3d n = unitNormal(normal);
    return Frame::ocs(n, AcGePoint3d::kOrigin + n * elevation);
}

bool finite2(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

std::unique_ptr<Loop> polylineLoop(Adesk::Int32 type, const AcGePoint2dArray& vertices,
                                   const AcGeDoubleArray& bulges) {
    if (vertices.isEmpty()) return nullptr;
    if (!bulges.isEmpty() && bulges.length() != vertices.length()) return nullptr;
    for (const auto& p : vertices)
        if (!finite2(p)) return nullptr;
    for (double b : bulges)
        if (!std::isfinite(b)) return nullptr;
    auto loop = std::make_unique<Loop>();
    loop->type = type | AcDbHatch::kPolyline;
    loop->verts = vertices.std();
    if (std::any_of(bulges.begin(), bulges.end(), [](double b) { return b != 0.0; }))
        loop->bulges = bulges.std();
    return loop;
}

std::unique_ptr<Loop> edgeLoop(Adesk::Int32 type, const AcGeVoidPointerArray& edgePtrs,
                               const AcGeIntArray& edgeTypes) {
    if (edgePtrs.isEmpty() || edgePtrs.length() != edgeTypes.length()) return nullptr;
    auto loop = std::make_unique<Loop>();
    loop->type = type & ~AcDbHatch::kPolyline;
    for (int i = 0; i < edgePtrs.length(); ++i) {
        std::unique_ptr<AcGeCurve2d> e =
            copyEdge(static_cast<const AcGeCurve2d*>(edgePtrs[i]), edgeTypes[i]);
        if (!e) return nullptr;
        loop->edges.push_back(std::move(e));
        loop->edgeTypes.push_back(edgeTypes[i]);
    }
    return loop;
}

// The edges of a database curve in the hatch's plane frame; false for curves out of the plane.
bool curveEdges(const AcDbCurve* c, const Frame& f, double tol, Loop& loop) {
    auto local = [&](const AcGePoint3d& p) { return f.toLocal(p); };
    auto inPlane = [&](const AcGePoint3d& p) { return std::fabs(f.height(p)) <= tol; };
    CurveGeom g;
    if (curveGeom(c, g)) {
        for (const auto& pc : g.pieces) {
            const AcGePoint3d a = g.frame.toWorld(pc.a), b = g.frame.toWorld(pc.b);
            if (!inPlane(a) || !inPlane(b)) return false;
            if (!pc.arc) {
                if (a.isEqualTo(b)) continue;
                loop.edges.push_back(std::make_unique<AcGeLineSeg2d>(local(a), local(b)));
                loop.edgeTypes.push_back(AcDbHatch::kLine);
                continue;
            }
            if (g.frame.z.crossProduct(f.z).length() > 1e-9) return false;
            // Counter-clockwise in the hatch's plane unless the curve faces the other way.
            const bool ccw = (pc.sweep >= 0.0) == (g.frame.z.dotProduct(f.z) > 0.0);
            const AcGePoint2d c2 = local(g.frame.toWorld(pc.c)), a2 = local(a);
            const double start = std::atan2(a2.y - c2.y, a2.x - c2.x);
            const double ang = ccw ? start : -start;
            loop.edges.push_back(std::make_unique<AcGeCircArc2d>(
                c2, pc.r, ang, ang + std::fabs(pc.sweep), AcGeVector2d(1, 0), !ccw));
            loop.edgeTypes.push_back(AcDbHatch::kCirArc);
        }
        return true;
    }
    if (const AcDbEllipse* e = AcDbEllipse::cast(c)) {
        if (e->normal().crossProduct(f.z).length() > 1e-9 || !inPlane(e->center())) return false;
        const AcGeVector3d M = e->majorAxis(), m = e->minorAxis();
        const AcGeVector2d M2(M.dotProduct(f.x), M.dotProduct(f.y)),
            m2(m.dotProduct(f.x), m.dotProduct(f.y));
        double s = 0.0, t = 0.0;
        e->getStartParam(s);
        e->getEndParam(t);
        loop.edges.push_back(std::make_unique<AcGeEllipArc2d>(
            local(e->center()), M2, m2, e->majorRadius(), e->minorRadius(), s, t));
        loop.edgeTypes.push_back(AcDbHatch::kEllArc);
        return true;
    }
    if (const AcDbSpline* s = AcDbSpline::cast(c)) {
        const geimpl::Nurbs* n = AcDbSplineImpl::nurbs(*s);
        if (!n || !n->valid()) return false;
        AcGePoint2dArray pts;
        for (const auto& p : n->pts) {
            if (!inPlane(p)) return false;
            pts.append(local(p));
        }
        AcGeDoubleArray knots, weights;
        for (double k : n->knots)
            knots.append(k);
        for (double w : n->weights)
            weights.append(w);
        loop.edges.push_back(
            std::make_unique<AcGeNurbCurve2d>(n->degree, AcGeKnotVector(knots), pts, weights));
        loop.edgeTypes.push_back(AcDbHatch::kSpline);
        return true;
    }
    PathGeom p;
    if (pathGeom(c, p) != Acad::eOk || !p.straight) return false;
    // A 3D polyline in the plane: its segments.
    for (double t = p.t0; t < p.t1; t += 1.0) {
        const AcGePoint3d a = p.ev->eval(t), b = p.ev->eval(t + 1.0);
        if (!inPlane(a) || !inPlane(b)) return false;
        if (a.isEqualTo(b)) continue;
        loop.edges.push_back(std::make_unique<AcGeLineSeg2d>(local(a), local(b)));
        loop.edgeTypes.push_back(AcDbHatch::kLine);
    }
    return true;
}

// An arc that an affine map would not keep circular, as the elliptical arc it becomes.
std::unique_ptr<AcGeCurve2d> mapEdge(const AcGeCurve2d& e, const AcGeMatrix2d& m, bool similar,
                                     int& type) {
    if (type == AcDbHatch::kCirArc && !similar) {
        auto ell = std::make_unique<AcGeEllipArc2d>(static_cast<const AcGeCircArc2d&>(e));
        ell->transformBy(m);
        type = AcDbHatch::kEllArc;
        return ell;
    }
    std::unique_ptr<AcGeCurve2d> c(e.copy());
    c->transformBy(m);
    return c;
}

} // namespace

AcDbHatch::AcDbHatch() = default;
AcDbHatch::~AcDbHatch() = default;

// ---------------------------------------------------------------- plane

double AcDbHatch::elevation() const {
    assertReadEnabled();
    return mElevation;
}

Acad::ErrorStatus AcDbHatch::setElevation(double e) {
    if (!std::isfinite(e)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mElevation = e;
    return Acad::eOk;
}

AcGeVector3d AcDbHatch::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& n) {
    if (!(n.length() > 1e-300) || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

// ---------------------------------------------------------------- loops

int AcDbHatch::numLoops() const {
    assertReadEnabled();
    return static_cast<int>(mLoops.size());
}

Adesk::Int32 AcDbHatch::loopTypeAt(int loopIndex) const {
    assertReadEnabled();
    if (loopIndex < 0 || loopIndex >= numLoops()) return 0;
    return mLoops[static_cast<size_t>(loopIndex)]->type;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int loopIndex, Adesk::Int32& loopType,
                                       AcGePoint2dArray& vertices, AcGeDoubleArray& bulges) const {
    assertReadEnabled();
    if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
    const Loop& l = *mLoops[static_cast<size_t>(loopIndex)];
    if (!l.isPolyline()) return Acad::eInvalidInput;
    loopType = l.type;
    vertices.removeAll();
    bulges.removeAll();
    for (const auto& p : l.verts)
        vertices.append(p);
    for (double b : l.bulges)
        bulges.append(b);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int loopIndex, Adesk::Int32& loopType,
                                       AcGeVoidPointerArray& edgePtrs,
                                       AcGeIntArray& edgeTypes) const {
    assertReadEnabled();
    if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
    const Loop& l = *mLoops[static_cast<size_t>(loopIndex)];
    loopType = l.type;
    edgePtrs.removeAll();
    edgeTypes.removeAll();
    if (l.isPolyline()) {
        l.handedOut.clear();
        std::vector<int> types;
        polylineEdges(l, l.handedOut, types);
        for (size_t i = 0; i < types.size(); ++i) {
            edgePtrs.append(l.handedOut[i].get());
            edgeTypes.append(types[i]);
        }
        return Acad::eOk;
    }
    for (size_t i = 0; i < l.edges.size(); ++i) {
        edgePtrs.append(l.edges[i].get());
        edgeTypes.append(l.edgeTypes[i]);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                        const AcGeDoubleArray& bulges) {
    return insertLoopAt(numLoops(), loopType, vertices, bulges);
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcGeVoidPointerArray& edgePtrs,
                                        const AcGeIntArray& edgeTypes) {
    return insertLoopAt(numLoops(), loopType, edgePtrs, edgeTypes);
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& dbObjIds) {
    if (dbObjIds.isEmpty()) return Acad::eInvalidInput;
    const Frame f = hatchFrame(mNormal, mElevation);
    auto loop = std::make_unique<Loop>();
    loop->type = loopType & ~kPolyline;
    for (const AcDbObjectId& id : dbObjIds) {
        AcDbCurve* c = nullptr;
        if (acdbOpenObject(c, id, AcDb::kForRead) != Acad::eOk) return Acad::eInvalidInput;
        AcDbExtents ext;
        c->getGeomExtents(ext);
        const double tol = 1e-9 * std::max(1.0, (ext.maxPoint() - ext.minPoint()).length());
        const bool ok = curveEdges(c, f, tol, *loop);
        c->close();
        if (!ok) return Acad::eInvalidInput;
        loop->ids.push_back(id);
    }
    if (loop->edges.empty()) return Acad::eInvalidInput;
    assertWriteEnabled();
    mLoops.push_back(std::move(loop));
    mEvaluated = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::insertLoopAt(int loopIndex, Adesk::Int32 loopType,
                                          const AcGePoint2dArray& vertices,
                                          const AcGeDoubleArray& bulges) {
    if (loopIndex < 0 || loopIndex > numLoops()) return Acad::eInvalidIndex;
    std::unique_ptr<Loop> loop = polylineLoop(loopType, vertices, bulges);
    if (!loop) return Acad::eInvalidInput;
    assertWriteEnabled();
    mLoops.insert(mLoops.begin() + loopIndex, std::move(loop));
    mEvaluated = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::insertLoopAt(int loopIndex, Adesk::Int32 loopType,
                                          const AcGeVoidPointerArray& edgePtrs,
                                          const AcGeIntArray& edgeTypes) {
    if (loopIndex < 0 || loopIndex > numLoops()) return Acad::eInvalidIndex;
    std::unique_ptr<Loop> loop = edgeLoop(loopType, edgePtrs, edgeTypes);
    if (!loop) return Acad::eInvalidInput;
    assertWriteEnabled();
    mLoops.insert(mLoops.begin() + loopIndex, std::move(loop));
    mEvaluated = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeLoopAt(int loopIndex) {
    if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mLoops.erase(mLoops.begin() + loopIndex);
    mEvaluated = false;
    return Acad::eOk;
}

// ---------------------------------------------------------------- associativity

bool AcDbHatch::associative() const {
    assertReadEnabled();
    return mAssociative;
}

Acad::ErrorStatus AcDbHatch::setAssociative(bool isAssociative) {
    assertWriteEnabled();
    mAssociative = isAssociative;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getAssocObjIds(AcDbObjectIdArray& dbObjIds) const {
    assertReadEnabled();
    dbObjIds.removeAll();
    for (const auto& l : mLoops)
        for (const auto& id : l->ids)
            dbObjIds.append(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getAssocObjIdsAt(int loopIndex, AcDbObjectIdArray& dbObjIds) const {
    assertReadEnabled();
    if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
    dbObjIds.removeAll();
    for (const auto& id : mLoops[static_cast<size_t>(loopIndex)]->ids)
        dbObjIds.append(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setAssocObjIdsAt(int loopIndex, const AcDbObjectIdArray& dbObjIds) {
    if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mLoops[static_cast<size_t>(loopIndex)]->ids = dbObjIds.std();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeAssocObjIds() {
    assertWriteEnabled();
    for (auto& l : mLoops)
        l->ids.clear();
    return Acad::eOk;
}

// ---------------------------------------------------------------- pattern

AcDbHatch::HatchPatternType AcDbHatch::patternType() const {
    assertReadEnabled();
    return mPatternType;
}

const ACHAR* AcDbHatch::patternName() const {
    assertReadEnabled();
    return mPatternName.c_str();
}

Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType patType, const ACHAR* patName) {
    if (!patName || patType < kUserDefined || patType > kCustomDefined) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPatternType = patType;
    mPatternName = patName;
    mEvaluated = false;
    return Acad::eOk;
}

double AcDbHatch::patternAngle() const {
    assertReadEnabled();
    return mPatternAngle;
}

Acad::ErrorStatus AcDbHatch::setPatternAngle(double angle) {
    if (!std::isfinite(angle)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPatternAngle = normAngle(angle);
    mEvaluated = false;
    return Acad::eOk;
}

double AcDbHatch::patternSpace() const {
    assertReadEnabled();
    return mPatternSpace;
}

Acad::ErrorStatus AcDbHatch::setPatternSpace(double space) {
    if (!(space > 0.0) || !std::isfinite(space)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPatternSpace = space;
    mEvaluated = false;
    return Acad::eOk;
}

double AcDbHatch::patternScale() const {
    assertReadEnabled();
    return mPatternScale;
}

Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
    if (!(scale > 0.0) || !std::isfinite(scale)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mPatternScale = scale;
    mEvaluated = false;
    return Acad::eOk;
}

bool AcDbHatch::patternDouble() const {
    assertReadEnabled();
    return mPatternDouble;
}

Acad::ErrorStatus AcDbHatch::setPatternDouble(bool isDouble) {
    assertWriteEnabled();
    mPatternDouble = isDouble;
    mEvaluated = false;
    return Acad::eOk;
}

bool AcDbHatch::isSolidFill() const {
    assertReadEnabled();
    std::wstring upper = mPatternName;
    for (auto& ch : upper)
        ch = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(ch)));
    return mPatternType == kPreDefined && upper == L"SOLID";
}

AcDbHatch::HatchStyle AcDbHatch::hatchStyle() const {
    assertReadEnabled();
    return mStyle;
}

Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
    if (style < kNormal || style > kIgnore) return Acad::eInvalidInput;
    assertWriteEnabled();
    mStyle = style;
    mEvaluated = false;
    return Acad::eOk;
}

AcDbHatch::HatchObjectType AcDbHatch::hatchObjectType() const {
    assertReadEnabled();
    return mObjectType;
}

Acad::ErrorStatus AcDbHatch::setHatchObjectType(HatchObjectType type) {
    if (type != kHatchObject && type != kGradientObject) return Acad::eInvalidInput;
    assertWriteEnabled();
    mObjectType = type;
    return Acad::eOk;
}

bool AcDbHatch::isGradient() const {
    assertReadEnabled();
    return mObjectType == kGradientObject;
}

int AcDbHatch::numSeedPoints() const {
    assertReadEnabled();
    return static_cast<int>(mSeeds.size());
}

AcGePoint2d AcDbHatch::getSeedPointAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < numSeedPoints() ? mSeeds[static_cast<size_t>(index)]
                                                 : AcGePoint2d();
}

Acad::ErrorStatus AcDbHatch::appendSeedPoint(const AcGePoint2d& pt) {
    if (!finite2(pt)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mSeeds.push_back(pt);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeSeedPointAt(int index) {
    if (index < 0 || index >= numSeedPoints()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mSeeds.erase(mSeeds.begin() + index);
    return Acad::eOk;
}

// ---------------------------------------------------------------- area, transforms, extents

Acad::ErrorStatus AcDbHatch::getArea(double& area) const {
    assertReadEnabled();
    if (mLoops.empty()) return Acad::eInvalidInput;
    double total = 0.0;
    for (size_t i = 0; i < mLoops.size(); ++i) {
        const double a = loopArea(*mLoops[i]);
        total += (i == 0 || (mLoops[i]->type & kExternal)) ? a : -a;
    }
    area = std::fabs(total);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    const Frame f = hatchFrame(mNormal, mElevation);
    AcGeVector3d xi = f.x, yi = f.y, ni = f.z;
    xi.transformBy(xform);
    yi.transformBy(xform);
    ni.transformBy(xform);
    const AcGeVector3d cr = xi.crossProduct(yi);
    if (!(cr.length() > 1e-300)) return Acad::eInvalidInput;
    // As for polylines: the normal keeps its side, the plane's own sense may turn over.
    const AcGeVector3d planeNormal = unitNormal(cr);
    const bool flip = ni.length() > 1e-300 && planeNormal.dotProduct(ni) < 0.0;
    const AcGeVector3d newNormal = flip ? -planeNormal : planeNormal;
    AcGePoint3d origin = f.origin;
    origin.transformBy(xform);
    const double elevation = Frame::ocs(newNormal, AcGePoint3d::kOrigin).height(origin);
    const Frame nf = hatchFrame(newNormal, elevation);
    AcGeMatrix2d m;
    if (!planeMap(f, xform, nf, m)) return Acad::eInvalidInput;
    const bool similar = keepsCircles(xform, f.x, f.y);
    const bool mirrored = m.entry[0][0] * m.entry[1][1] - m.entry[0][1] * m.entry[1][0] < 0.0;
    for (auto& l : mLoops) {
        if (l->isPolyline() && !similar) {
            // Arcs will not stay circular: the loop goes over to edges.
            std::vector<int> types;
            polylineEdges(*l, l->edges, types);
            l->edgeTypes = types;
            l->verts.clear();
            l->bulges.clear();
            l->type &= ~kPolyline;
        }
        if (l->isPolyline()) {
            for (auto& p : l->verts)
                p.transformBy(m);
            if (mirrored)
                for (double& b : l->bulges)
                    b = -b;
            continue;
        }
        for (size_t i = 0; i < l->edges.size(); ++i)
            l->edges[i] = mapEdge(*l->edges[i], m, similar, l->edgeTypes[i]);
        l->handedOut.clear();
    }
    for (auto& s : mSeeds)
        s.transformBy(m);
    if (similar) {
        const double scale = std::hypot(m.entry[0][0], m.entry[1][0]);
        mPatternAngle = normAngle(mPatternAngle + std::atan2(m.entry[1][0], m.entry[0][0]));
        mPatternScale *= scale;
        mPatternSpace *= scale;
    }
    mNormal = newNormal;
    mElevation = elevation;
    mEvaluated = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    const Frame f = hatchFrame(mNormal, mElevation);
    const double eps = 1e-4 * loopsSize(mLoops);
    for (const auto& l : mLoops)
        for (const auto& p : loopRing(*l, eps))
            extents.addPoint(f.toWorld(p));
    return extents.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

Acad::ErrorStatus AcDbHatch::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                              AcDbIntArray&) const {
    assertReadEnabled();
    // One grip at the middle of the extents moves the whole hatch.
    AcDbExtents ext;
    if (subGetGeomExtents(ext) != Acad::eOk) return Acad::eOk;
    grips.append(ext.minPoint() + (ext.maxPoint() - ext.minPoint()) * 0.5);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
    if (std::find(indices.begin(), indices.end(), 0) == indices.end()) return Acad::eOk;
    return subTransformBy(AcGeMatrix3d::translation(offset));
}
