// The 3D polyline: vertices, spline fitting and curve operations. Its curve is the straight
// run through the vertices that are not spline control vertices.
#include "db/ents/entsimpl.h"
#include "db/ents/offset2d.h"
#include "db/ents/polyfit.h"
#include "ge/evaluators.h"

#include <algorithm>
#include <cmath>
#include <memory>

ACRX_CONS_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, L"POLYLINE")

using namespace ents_detail;

namespace {

bool onCurve(const AcDb3dPolylineVertex& v) {
    return v.vertexType() != AcDb::k3dControlVertex;
}

std::vector<AcGePoint3d> curvePoints(const std::vector<std::unique_ptr<AcDb3dPolylineVertex>>& vs) {
    std::vector<AcGePoint3d> pts;
    for (const auto& v : vs)
        if (onCurve(*v)) pts.push_back(v->position());
    return pts;
}

} // namespace

bool AcDb3dPolylineImpl::path(const AcDb3dPolyline& e, PathGeom& g) {
    const std::vector<AcGePoint3d> pts = curvePoints(e.mVerts);
    if (pts.size() < 2) return false;
    auto ev = std::make_shared<geimpl::PolylineEval>(pts, e.mClosed);
    g.ev = ev;
    g.t0 = 0.0;
    g.t1 = ev->endParam();
    for (int i = 1; i < static_cast<int>(g.t1); ++i)
        g.breaks.push_back(i);
    g.straight = true;
    g.closed = e.mClosed;
    g.hull = pts;
    if (!e.mClosed) {
        // Extended, the end segments go straight on.
        const AcGeVector3d d0 = pts[0] - pts[1], d1 = pts.back() - pts[pts.size() - 2];
        if (d0.length() > 0.0) {
            ExtPart r;
            r.ray = true;
            r.atStart = true;
            r.origin = pts[0];
            r.dir = d0 / d0.length();
            g.ext.push_back(r);
        }
        if (d1.length() > 0.0) {
            ExtPart r;
            r.ray = true;
            r.origin = pts.back();
            r.dir = d1 / d1.length();
            g.ext.push_back(r);
        }
    }
    return true;
}

void AcDb3dPolylineImpl::key(const AcDb3dPolyline& e, std::vector<double>& k) {
    k.assign({e.mClosed ? 1.0 : 0.0});
    for (const auto& v : e.mVerts)
        k.insert(k.end(), {v->mPos.x, v->mPos.y, v->mPos.z, static_cast<double>(v->mType)});
}

AcDbCurve* AcDb3dPolylineImpl::sub(const AcDb3dPolyline& e, double from, double to) {
    PathGeom g;
    if (!path(e, g) || !(to > from)) return nullptr;
    const double n = g.t1;
    // Parameters past the end of a closed polyline come round again.
    auto at = [&](double t) { return g.ev->eval(e.mClosed && t > n ? t - n : t); };
    AcGePoint3dArray pts;
    pts.append(at(from));
    for (double k = std::floor(from) + 1.0; k < to - 1e-12 * std::max(1.0, to); k += 1.0)
        pts.append(at(k));
    pts.append(at(to));
    auto* out = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, false);
    out->setPropertiesFrom(&e);
    return out;
}

// ---------------------------------------------------------------- construction and vertices

AcDb3dPolyline::AcDb3dPolyline() = default;

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices,
                               Adesk::Boolean closed)
    : mClosed(closed) {
    for (const auto& p : vertices)
        mVerts.push_back(std::make_unique<AcDb3dPolylineVertex>(p));
    setPolyType(type);
}

AcDb3dPolyline::~AcDb3dPolyline() = default;

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex* vertex) {
    return insertVertexAt(mVerts.empty() ? nullptr : mVerts.back().get(), vertex);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& newVertId,
                                               AcDb3dPolylineVertex* vertex) {
    newVertId = AcDbObjectId();
    return appendVertex(vertex);
}

Acad::ErrorStatus AcDb3dPolyline::insertVertexAt(const AcDb3dPolylineVertex* indexVert,
                                                 AcDb3dPolylineVertex* newVertex) {
    if (!newVertex) return Acad::eNullObjectPointer;
    if (!newVertex->objectId().isNull()) return Acad::eAlreadyInDb;
    size_t at = 0;
    for (size_t k = 0; k < mVerts.size(); ++k) {
        if (mVerts[k].get() == newVertex) return Acad::eInvalidInput;
        if (mVerts[k].get() == indexVert) at = k + 1;
    }
    if (indexVert && at == 0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mVerts.insert(mVerts.begin() + static_cast<std::ptrdiff_t>(at),
                  std::unique_ptr<AcDb3dPolylineVertex>(newVertex));
    newVertex->setOwnerId(objectId());
    return Acad::eOk;
}

AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const {
    assertReadEnabled();
    std::vector<AcDbEntity*> items;
    for (const auto& v : mVerts)
        items.push_back(v.get());
    return new AcDbObjectIterator(std::move(items));
}

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
    assertReadEnabled();
    return mType;
}

Acad::ErrorStatus AcDb3dPolyline::setPolyType(AcDb::Poly3dType type) {
    switch (type) {
    case AcDb::k3dSimplePoly:
        return straighten();
    case AcDb::k3dQuadSplinePoly:
    case AcDb::k3dCubicSplinePoly:
        return splineFit(type, 8);
    }
    return Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb3dPolyline::makeClosed() {
    assertWriteEnabled();
    mClosed = true;
    return mType == AcDb::k3dSimplePoly ? Acad::eOk : setPolyType(mType);
}

Acad::ErrorStatus AcDb3dPolyline::makeOpen() {
    assertWriteEnabled();
    mClosed = false;
    return mType == AcDb::k3dSimplePoly ? Acad::eOk : setPolyType(mType);
}

bool AcDb3dPolyline::isClosed() const {
    assertReadEnabled();
    return mClosed;
}

Acad::ErrorStatus AcDb3dPolyline::straighten() {
    assertWriteEnabled();
    std::erase_if(mVerts, [](const auto& v) { return v->mType == AcDb::k3dFitVertex; });
    for (auto& v : mVerts)
        v->mType = AcDb::k3dSimpleVertex;
    mType = AcDb::k3dSimplePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::splineFit() {
    return splineFit(AcDb::k3dCubicSplinePoly, 8);
}

Acad::ErrorStatus AcDb3dPolyline::splineFit(AcDb::Poly3dType splineType, Adesk::Int16 splineSegs) {
    if (splineType != AcDb::k3dQuadSplinePoly && splineType != AcDb::k3dCubicSplinePoly)
        return Acad::eInvalidInput;
    if (splineSegs < 1) return Acad::eInvalidInput;
    straighten();
    std::vector<AcGePoint3d> frame;
    for (const auto& v : mVerts)
        frame.push_back(v->mPos);
    const int degree = splineType == AcDb::k3dQuadSplinePoly ? 2 : 3;
    const std::vector<AcGePoint3d> pts = splineFitPoints(frame, degree, mClosed, splineSegs);
    if (pts.empty()) return Acad::eOk;
    for (auto& v : mVerts)
        v->mType = AcDb::k3dControlVertex;
    for (const auto& p : pts) {
        auto v = std::make_unique<AcDb3dPolylineVertex>(p);
        v->mType = AcDb::k3dFitVertex;
        mVerts.push_back(std::move(v));
    }
    mType = splineType;
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDb3dPolyline::extend(double newParam) {
    assertWriteEnabled();
    PathGeom g;
    if (!AcDb3dPolylineImpl::path(*this, g) || mClosed || !std::isfinite(newParam))
        return Acad::eInvalidInput;
    if (newParam >= g.t0 && newParam <= g.t1) return Acad::eInvalidInput;
    // The end segments run on along their own lines.
    const AcGePoint3d p = g.ev->eval(newParam);
    AcDb3dPolylineVertex* end = nullptr;
    for (auto& v : mVerts)
        if (onCurve(*v)) {
            if (newParam < g.t0 && !end) end = v.get();
            if (newParam > g.t1) end = v.get();
        }
    end->mPos = p;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::getArea(double& area) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDb3dPolylineImpl::path(*this, g)) return Acad::eInvalidInput;
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcDb::Planarity type;
    if (!g.plane(origin, normal, type)) return Acad::eNotApplicable;
    if (type == AcDb::kLinear) {
        area = 0.0;
        return Acad::eOk;
    }
    const Frame f = Frame::ocs(normal, origin);
    const std::vector<AcGePoint3d> pts = curvePoints(mVerts);
    double twice = 0.0;
    for (size_t i = 0; i < pts.size(); ++i) {
        const AcGePoint2d a = f.toLocal(pts[i]), b = f.toLocal(pts[(i + 1) % pts.size()]);
        twice += a.x * b.y - b.x * a.y;
    }
    area = 0.5 * std::fabs(twice);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::reverseCurve() {
    assertWriteEnabled();
    std::reverse(mVerts.begin(), mVerts.end());
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::getOffsetCurves(double offsetDist,
                                                  AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    PathGeom g;
    if (!AcDb3dPolylineImpl::path(*this, g)) return Acad::eInvalidInput;
    AcGePoint3d origin;
    AcGeVector3d normal;
    AcDb::Planarity type;
    if (!g.plane(origin, normal, type) || type != AcDb::kPlanar) return Acad::eNotApplicable;
    // Offset in the plane as a run of straight segments, then back into space.
    const Frame f = Frame::ocs(normal, origin);
    BulgePath path;
    path.closed = mClosed;
    for (const auto& p : curvePoints(mVerts))
        path.verts.push_back({f.toLocal(p), 0.0});
    const std::optional<BulgePath> result = offsetPath(path, offsetDist);
    if (!result) return Acad::eInvalidInput;
    AcGePoint3dArray pts;
    const size_t nv = result->verts.size();
    for (size_t i = 0; i < nv; ++i) {
        const BulgeVertex& v = result->verts[i];
        pts.append(f.toWorld(v.pt));
        // Round joints come back as arcs: a 3D polyline follows them in short chords.
        const bool last = !result->closed && i + 1 == nv;
        if (v.bulge == 0.0 || last) continue;
        const Piece arc = Piece::bulged(v.pt, result->verts[(i + 1) % nv].pt, v.bulge);
        for (int k = 1; k < 8; ++k)
            pts.append(f.toWorld(arc.at(k / 8.0)));
    }
    auto* out = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, result->closed);
    out->setPropertiesFrom(this);
    offsetCurves.append(out);
    return Acad::eOk;
}
