// The 2D polyline: its vertices, fitted forms and curve operations. Its curve is the
// lightweight polyline of the vertices that are not spline control vertices, so the operations
// that change nothing about vertices work on that.
#include "db/ents/entsimpl.h"
#include "db/ents/polyfit.h"

#include <algorithm>
#include <cmath>
#include <memory>

ACRX_CONS_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, L"POLYLINE")

using namespace ents_detail;

namespace {

Frame planeFrame(const AcGeVector3d& normal, double elevation) {
    const AcGeVector3d n = unitNormal(normal);
    return Frame::ocs(n, AcGePoint3d::kOrigin + n * elevation);
}

bool onCurve(const AcDb2dVertex& v) {
    return v.vertexType() != AcDb::k2dSplineCtlVertex;
}

bool generated(const AcDb2dVertex& v) {
    return v.vertexType() == AcDb::k2dCurveFitVertex || v.vertexType() == AcDb::k2dSplineFitVertex;
}

} // namespace

void AcDb2dPolylineImpl::geom(const AcDb2dPolyline& e, CurveGeom& g) {
    g.frame = planeFrame(e.mNormal, e.mElevation);
    std::vector<const AcDb2dVertex*> v;
    for (const auto& p : e.mVerts)
        if (onCurve(*p)) v.push_back(p.get());
    const size_t n = v.size();
    if (n == 0) return;
    if (n == 1) {
        const AcGePoint2d p = v[0]->mPos.convert2d();
        g.add(Piece::line(p, p), 0.0, 0.0);
        return;
    }
    g.closed = e.mClosed;
    const size_t segs = e.mClosed ? n : n - 1;
    for (size_t i = 0; i < segs; ++i)
        g.add(Piece::bulged(v[i]->mPos.convert2d(), v[(i + 1) % n]->mPos.convert2d(), v[i]->mBulge),
              static_cast<double>(i), 1.0);
}

AcDbPolyline* AcDb2dPolylineImpl::toLw(const AcDb2dPolyline& e, bool curveOnly) {
    auto* lw = new AcDbPolyline();
    lw->setPropertiesFrom(&e);
    unsigned i = 0;
    for (const auto& v : e.mVerts)
        if (!curveOnly || onCurve(*v))
            lw->addVertexAt(i++, v->mPos.convert2d(), v->mBulge, v->mStartWidth, v->mEndWidth);
    lw->setNormal(e.mNormal);
    lw->setElevation(e.mElevation);
    lw->setThickness(e.mThickness);
    lw->setClosed(e.mClosed);
    lw->setPlinegen(e.mPlinegen);
    return lw;
}

AcDb2dPolyline* AcDb2dPolylineImpl::fromLw(const AcDbPolyline& lw, const AcDbEntity& like) {
    auto* p = new AcDb2dPolyline();
    p->setPropertiesFrom(&like);
    p->mNormal = lw.normal();
    p->mElevation = lw.elevation();
    p->mThickness = lw.thickness();
    p->mClosed = lw.isClosed();
    p->mPlinegen = lw.hasPlinegen();
    for (unsigned i = 0; i < lw.numVerts(); ++i) {
        AcGePoint2d pt;
        double b = 0.0, sw = 0.0, ew = 0.0;
        lw.getPointAt(i, pt);
        lw.getBulgeAt(i, b);
        lw.getWidthsAt(i, sw, ew);
        p->mVerts.push_back(
            std::make_unique<AcDb2dVertex>(AcGePoint3d(pt.x, pt.y, p->mElevation), b, sw, ew));
    }
    return p;
}

AcDbCurve* AcDb2dPolylineImpl::sub(const AcDb2dPolyline& e, double from, double to) {
    std::unique_ptr<AcDbPolyline> lw(toLw(e, true));
    std::unique_ptr<AcDbCurve> piece(AcDbPolylineImpl::sub(*lw, from, to));
    const AcDbPolyline* pl = AcDbPolyline::cast(piece.get());
    return pl ? fromLw(*pl, e) : nullptr;
}

// ---------------------------------------------------------------- construction and vertices

AcDb2dPolyline::AcDb2dPolyline() = default;

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices,
                               double elevation, Adesk::Boolean closed, double defStartWidth,
                               double defEndWidth, const AcGeDoubleArray* bulges)
    : mElevation(std::isfinite(elevation) ? elevation : 0.0),
      mDefStart(std::isfinite(defStartWidth) ? std::fabs(defStartWidth) : 0.0),
      mDefEnd(std::isfinite(defEndWidth) ? std::fabs(defEndWidth) : 0.0), mClosed(closed) {
    for (int i = 0; i < vertices.length(); ++i) {
        const double b = bulges && i < bulges->length() ? (*bulges)[i] : 0.0;
        const AcGePoint3d p(vertices[i].x, vertices[i].y, mElevation);
        mVerts.push_back(std::make_unique<AcDb2dVertex>(p, b, mDefStart, mDefEnd));
    }
    setPolyType(type);
}

AcDb2dPolyline::~AcDb2dPolyline() = default;

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* vertex) {
    return insertVertexAt(mVerts.empty() ? nullptr : mVerts.back().get(), vertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& newVertId, AcDb2dVertex* vertex) {
    newVertId = AcDbObjectId();
    return appendVertex(vertex);
}

Acad::ErrorStatus AcDb2dPolyline::insertVertexAt(const AcDb2dVertex* indexVert,
                                                 AcDb2dVertex* newVertex) {
    if (!newVertex) return Acad::eNullObjectPointer;
    if (!newVertex->objectId().isNull()) return Acad::eAlreadyInDb;
    size_t at = 0;
    for (size_t k = 0; k < mVerts.size(); ++k) {
        if (mVerts[k].get() == newVertex) return Acad::eInvalidInput;
        if (mVerts[k].get() == indexVert) at = k + 1;
    }
    if (indexVert && at == 0) return Acad::eInvalidInput;
    assertWriteEnabled();
    newVertex->mPos.z = mElevation;
    mVerts.insert(mVerts.begin() + static_cast<std::ptrdiff_t>(at),
                  std::unique_ptr<AcDb2dVertex>(newVertex));
    newVertex->setOwnerId(objectId());
    return Acad::eOk;
}

AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const {
    assertReadEnabled();
    std::vector<AcDbEntity*> items;
    for (const auto& v : mVerts)
        items.push_back(v.get());
    return new AcDbObjectIterator(std::move(items));
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vert) const {
    assertReadEnabled();
    return planeFrame(mNormal, mElevation).toWorld(vert.mPos.convert2d());
}

// ---------------------------------------------------------------- properties

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
    assertReadEnabled();
    return mType;
}

Acad::ErrorStatus AcDb2dPolyline::setPolyType(AcDb::Poly2dType type) {
    switch (type) {
    case AcDb::k2dSimplePoly:
        return straighten();
    case AcDb::k2dFitCurvePoly:
        return curveFit();
    case AcDb::k2dQuadSplinePoly:
    case AcDb::k2dCubicSplinePoly:
        return splineFit(type, 8);
    }
    return Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
    assertWriteEnabled();
    mClosed = true;
    return mType == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(mType);
}

Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
    assertWriteEnabled();
    mClosed = false;
    return mType == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(mType);
}

bool AcDb2dPolyline::isClosed() const {
    assertReadEnabled();
    return mClosed;
}

double AcDb2dPolyline::defaultStartWidth() const {
    assertReadEnabled();
    return mDefStart;
}

Acad::ErrorStatus AcDb2dPolyline::setDefaultStartWidth(double w) {
    if (!std::isfinite(w) || w < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mDefStart = w;
    return Acad::eOk;
}

double AcDb2dPolyline::defaultEndWidth() const {
    assertReadEnabled();
    return mDefEnd;
}

Acad::ErrorStatus AcDb2dPolyline::setDefaultEndWidth(double w) {
    if (!std::isfinite(w) || w < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mDefEnd = w;
    return Acad::eOk;
}

double AcDb2dPolyline::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDb2dPolyline::setThickness(double t) {
    if (!std::isfinite(t)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

AcGeVector3d AcDb2dPolyline::normal() const {
    assertReadEnabled();
    return mNormal;
}

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& n) {
    if (!(n.length() > 1e-300) || !std::isfinite(n.length())) return Acad::eInvalidInput;
    assertWriteEnabled();
    mNormal = unitNormal(n);
    return Acad::eOk;
}

double AcDb2dPolyline::elevation() const {
    assertReadEnabled();
    return mElevation;
}

Acad::ErrorStatus AcDb2dPolyline::setElevation(double e) {
    if (!std::isfinite(e)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mElevation = e;
    for (auto& v : mVerts)
        v->mPos.z = e;
    return Acad::eOk;
}

bool AcDb2dPolyline::isLinetypeGenerationOn() const {
    assertReadEnabled();
    return mPlinegen;
}

Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOn() {
    assertWriteEnabled();
    mPlinegen = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOff() {
    assertWriteEnabled();
    mPlinegen = false;
    return Acad::eOk;
}

// ---------------------------------------------------------------- fitting

Acad::ErrorStatus AcDb2dPolyline::straighten() {
    assertWriteEnabled();
    const bool fitted = mType != AcDb::k2dSimplePoly ||
                        std::any_of(mVerts.begin(), mVerts.end(),
                                    [](const auto& v) { return v->mType != AcDb::k2dVertex; });
    std::erase_if(mVerts, [](const auto& v) { return generated(*v); });
    for (auto& v : mVerts) {
        v->mType = AcDb::k2dVertex;
        // The arcs a fit made go with it.
        if (fitted) v->mBulge = 0.0;
    }
    mType = AcDb::k2dSimplePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::curveFit() {
    straighten();
    std::vector<AcGePoint2d> pts;
    for (const auto& v : mVerts)
        pts.push_back(v->mPos.convert2d());
    const std::vector<FitVertex> fit = curveFitVertices(pts, mClosed);
    std::vector<std::unique_ptr<AcDb2dVertex>> old = std::move(mVerts);
    mVerts.clear();
    for (const FitVertex& f : fit) {
        if (!f.added) {
            old[f.source]->mBulge = f.bulge;
            mVerts.push_back(std::move(old[f.source]));
            continue;
        }
        auto v =
            std::make_unique<AcDb2dVertex>(AcGePoint3d(f.pt.x, f.pt.y, mElevation), f.bulge,
                                           mVerts.back()->mStartWidth, mVerts.back()->mEndWidth);
        v->mType = AcDb::k2dCurveFitVertex;
        mVerts.push_back(std::move(v));
    }
    mType = AcDb::k2dFitCurvePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::splineFit() {
    return splineFit(AcDb::k2dCubicSplinePoly, 8);
}

Acad::ErrorStatus AcDb2dPolyline::splineFit(AcDb::Poly2dType splineType, Adesk::Int16 splineSegs) {
    if (splineType != AcDb::k2dQuadSplinePoly && splineType != AcDb::k2dCubicSplinePoly)
        return Acad::eInvalidInput;
    if (splineSegs < 1) return Acad::eInvalidInput;
    straighten();
    std::vector<AcGePoint3d> frame;
    for (const auto& v : mVerts)
        frame.push_back(v->mPos);
    const int degree = splineType == AcDb::k2dQuadSplinePoly ? 2 : 3;
    const std::vector<AcGePoint3d> pts = splineFitPoints(frame, degree, mClosed, splineSegs);
    if (pts.empty()) return Acad::eOk;
    for (auto& v : mVerts)
        v->mType = AcDb::k2dSplineCtlVertex;
    for (const auto& p : pts) {
        auto v = std::make_unique<AcDb2dVertex>(AcGePoint3d(p.x, p.y, mElevation), 0.0, mDefStart,
                                                mDefEnd);
        v->mType = AcDb::k2dSplineFitVertex;
        mVerts.push_back(std::move(v));
    }
    mType = splineType;
    return Acad::eOk;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDb2dPolyline::extend(double newParam) {
    assertWriteEnabled();
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, true));
    if (Acad::ErrorStatus es = lw->extend(newParam); es != Acad::eOk) return es;
    std::vector<AcDb2dVertex*> kept;
    for (auto& v : mVerts)
        if (onCurve(*v)) kept.push_back(v.get());
    // The lightweight form moved its first or last vertex and set that segment's bulge.
    for (unsigned i = 0; i < kept.size(); ++i) {
        AcGePoint2d p;
        double b = 0.0;
        lw->getPointAt(i, p);
        lw->getBulgeAt(i, b);
        kept[i]->mPos.x = p.x;
        kept[i]->mPos.y = p.y;
        kept[i]->mBulge = b;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getArea(double& area) const {
    assertReadEnabled();
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, true));
    return lw->getArea(area);
}

Acad::ErrorStatus AcDb2dPolyline::reverseCurve() {
    assertWriteEnabled();
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, false));
    if (Acad::ErrorStatus es = lw->reverseCurve(); es != Acad::eOk) return es;
    std::reverse(mVerts.begin(), mVerts.end());
    for (unsigned i = 0; i < mVerts.size(); ++i) {
        lw->getBulgeAt(i, mVerts[i]->mBulge);
        lw->getWidthsAt(i, mVerts[i]->mStartWidth, mVerts[i]->mEndWidth);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getOffsetCurves(double offsetDist,
                                                  AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    std::unique_ptr<AcDbPolyline> lw(AcDb2dPolylineImpl::toLw(*this, true));
    AcDbVoidPtrArray made;
    if (Acad::ErrorStatus es = lw->getOffsetCurves(offsetDist, made); es != Acad::eOk) return es;
    for (void* p : made) {
        std::unique_ptr<AcDbPolyline> piece(static_cast<AcDbPolyline*>(p));
        offsetCurves.append(AcDb2dPolylineImpl::fromLw(*piece, *this));
    }
    return Acad::eOk;
}
