// The recording back-end: every primitive becomes an item with copies of its data and of the
// traits in force.
#include "girecorder.h"
#include "gishapes.h"

#include "dbents.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

// ---------------------------------------------------------------- private parts

class AcGiRecorder::Traits : public AcGiDrawableTraits {
public:
    AcGiRecordedTraits t;

    AcRxClass* isA() const override { return AcGiDrawableTraits::desc(); }

    void setColor(Adesk::UInt16 color) override {
        t.color = color;
        t.trueColor.setColorIndex(color);
    }
    void setTrueColor(const AcCmEntityColor& color) override {
        t.trueColor = color;
        t.color = color.isByColor()
                      ? AcCmEntityColor::lookUpACI(color.red(), color.green(), color.blue())
                      : color.colorIndex();
    }
    void setLayer(AcDbObjectId id) override { t.layer = id; }
    void setLineType(AcDbObjectId id) override { t.lineType = id; }
    void setSelectionMarker(Adesk::GsMarker marker) override { t.marker = marker; }
    void setFillType(AcGiFillType fillType) override { t.fillType = fillType; }
    void setLineWeight(AcDb::LineWeight lineWeight) override { t.lineWeight = lineWeight; }
    void setLineTypeScale(double scale) override { t.lineTypeScale = scale; }
    void setThickness(double thickness) override { t.thickness = thickness; }
    void setMaterial(AcDbObjectId id) override { t.material = id; }

    Adesk::UInt16 color() const override { return t.color; }
    AcCmEntityColor trueColor() const override { return t.trueColor; }
    AcDbObjectId layerId() const override { return t.layer; }
    AcDbObjectId lineTypeId() const override { return t.lineType; }
    Adesk::GsMarker selectionMarker() const override { return t.marker; }
    AcGiFillType fillType() const override { return t.fillType; }
    AcDb::LineWeight lineWeight() const override { return t.lineWeight; }
    double lineTypeScale() const override { return t.lineTypeScale; }
    double thickness() const override { return t.thickness; }
    AcDbObjectId materialId() const override { return t.material; }
};

// A top view: eye coordinates are world coordinates, the camera looks down the z axis from
// one unit above the origin, one pixel per drawing unit.
class AcGiRecorder::Viewport : public AcGiViewport {
public:
    explicit Viewport(const AcGiRecorder* owner) : mOwner(owner) {}
    AcRxClass* isA() const override { return AcGiViewport::desc(); }

    void getModelToEyeTransform(AcGeMatrix3d& m) const override { m = mOwner->modelToWorld(); }
    void getEyeToModelTransform(AcGeMatrix3d& m) const override {
        mOwner->mGeometry.getWorldToModelTransform(m);
    }
    void getWorldToEyeTransform(AcGeMatrix3d& m) const override { m = AcGeMatrix3d(); }
    void getEyeToWorldTransform(AcGeMatrix3d& m) const override { m = AcGeMatrix3d(); }
    Adesk::Boolean isPerspective() const override { return Adesk::kFalse; }
    Adesk::Boolean doPerspective(AcGePoint3d&) const override { return Adesk::kFalse; }
    Adesk::Boolean doInversePerspective(AcGePoint3d&) const override { return Adesk::kFalse; }
    void getNumPixelsInUnitSquare(const AcGePoint3d&, AcGePoint2d& pixelArea, bool) const override {
        pixelArea.set(1.0, 1.0);
    }
    void getCameraLocation(AcGePoint3d& p) const override { p.set(0, 0, 1); }
    void getCameraTarget(AcGePoint3d& p) const override { p.set(0, 0, 0); }
    void getCameraUpVector(AcGeVector3d& v) const override { v.set(0, 1, 0); }
    Adesk::UIntPtr viewportId() const override { return 1; }
    Adesk::Int16 acadWindowId() const override { return 1; }
    void getViewportDcCorners(AcGePoint2d& lowerLeft, AcGePoint2d& upperRight) const override {
        lowerLeft.set(0, 0);
        upperRight.set(1, 1);
    }
    Adesk::Boolean getFrontAndBackClipValues(Adesk::Boolean& clipFront, Adesk::Boolean& clipBack,
                                             double& front, double& back) const override {
        clipFront = clipBack = Adesk::kFalse;
        front = back = 0.0;
        return Adesk::kFalse;
    }
    double linetypeScaleMultiplier() const override { return 1.0; }
    double linetypeGenerationCriteria() const override { return 1.0; }

private:
    const AcGiRecorder* mOwner;
};

class AcGiRecorder::Context : public AcGiContext {
public:
    AcDbDatabase* db = nullptr;
    AcRxClass* isA() const override { return AcGiContext::desc(); }
    Adesk::Boolean isPsOut() const override { return Adesk::kFalse; }
    Adesk::Boolean isPlotGeneration() const override { return Adesk::kFalse; }
    AcDbDatabase* database() const override { return db; }
    bool isBoundaryClipping() const override { return false; }
};

// ---------------------------------------------------------------- the recorder

AcGiRecorder::AcGiRecorder()
    : mTraits(std::make_unique<Traits>()), mViewport(std::make_unique<Viewport>(this)),
      mContext(std::make_unique<Context>()) {}

AcGiRecorder::~AcGiRecorder() = default;

AcRxClass* AcGiRecorder::desc() {
    static AcRxClass* s =
        acrxRegisterPlatformClass(L"AcGiRecorder", AcGiWorldDraw::desc(), nullptr, nullptr);
    return s;
}

AcRxClass* AcGiRecorder::isA() const {
    return desc();
}

AcGiSubEntityTraits& AcGiRecorder::subEntityTraits() const {
    return *mTraits;
}

AcGiGeometry* AcGiRecorder::rawGeometry() const {
    return static_cast<AcGiWorldGeometry*>(&mGeometry);
}

AcGiContext* AcGiRecorder::context() {
    return mContext.get();
}

double AcGiRecorder::deviation(AcGiDeviationType, const AcGePoint3d&) const {
    // Half a pixel of the top view unless a test asks for another figure.
    return mDeviation > 0.0 ? mDeviation : 0.5;
}

AcGiRecorderGeometry& AcGiRecorder::geometry() const {
    return mGeometry;
}

AcGiViewport& AcGiRecorder::viewport() const {
    return *mViewport;
}

Adesk::Boolean AcGiRecorder::isValidId(Adesk::UIntPtr acgiId) const {
    return acgiId == mViewport->viewportId();
}

void AcGiRecorder::setDatabase(AcDbDatabase* db) {
    mContext->db = db;
}

void AcGiRecorder::resetTraits(const AcGiRecordedTraits& traits) {
    mStartTraits = traits;
    mTraits->t = traits;
}

int AcGiRecorder::count(AcGiRecordedKind kind) const {
    int n = 0;
    for (const AcGiRecordedItem& item : mItems)
        if (item.kind == kind) ++n;
    return n;
}

void AcGiRecorder::clear() {
    mItems.clear();
    mRejected = 0;
    mDepth = 0;
    mTransforms.clear();
    mClipDepth = 0;
    mTraits->t = mStartTraits;
}

AcGiRecordedItem& AcGiRecorder::add(AcGiRecordedKind kind) const {
    AcGiRecordedItem& item = mItems.emplace_back();
    item.kind = kind;
    item.traits = mTraits->t;
    item.depth = mDepth;
    return item;
}

Adesk::Boolean AcGiRecorder::reject() const {
    ++mRejected;
    return mRegenAbort;
}

const AcGeMatrix3d& AcGiRecorder::modelToWorld() const {
    return mTransforms.empty() ? AcGeMatrix3d::kIdentity : mTransforms.back();
}

// ---------------------------------------------------------------- geometry helpers

namespace {

using qorgi::circleThrough;
using qorgi::finite;

AcGePoint3d xformPoint(const AcGeMatrix3d& m, AcGePoint3d p) {
    return p.transformBy(m);
}
AcGeVector3d xformVector(const AcGeMatrix3d& m, AcGeVector3d v) {
    return v.transformBy(m);
}

AcGeVector3d unit(const AcGeVector3d& v) {
    const double len = v.length();
    return len > 0.0 ? v / len : v;
}

// Two unit vectors spanning the plane of a normal, right-handed with it.
void planeAxes(const AcGeVector3d& normal, AcGeVector3d& u, AcGeVector3d& v) {
    const AcGeVector3d n = unit(normal);
    u = unit(n.perpVector());
    v = n.crossProduct(u);
}

// A circle or arc in the plane (center, normal) taken through m: the new center, normal and the
// factor by which the radius grows. The normal follows the images of the in-plane axes, so a
// mirror turns it over and the arc keeps its sense.
void xformPlane(const AcGeMatrix3d& m, const AcGePoint3d& center, const AcGeVector3d& normal,
                AcGePoint3d& newCenter, AcGeVector3d& newNormal, double& scale) {
    AcGeVector3d u, v;
    planeAxes(normal, u, v);
    const AcGeVector3d mu = xformVector(m, u), mv = xformVector(m, v);
    newCenter = xformPoint(m, center);
    newNormal = unit(mu.crossProduct(mv));
    scale = mu.length();
}

void copyPoints(AcGePoint3dArray& out, const AcGeMatrix3d* m, const AcGePoint3d* pts, size_t n) {
    out.setPhysicalLength(static_cast<int>(n));
    for (size_t i = 0; i < n; ++i)
        out.append(m ? xformPoint(*m, pts[i]) : pts[i]);
}

template <class T> void copyArray(AcArray<T>& out, const T* data, size_t n) {
    if (!data) return;
    out.setPhysicalLength(static_cast<int>(n));
    for (size_t i = 0; i < n; ++i)
        out.append(data[i]);
}

void copyNormals(AcGeVector3dArray& out, const AcGeMatrix3d& m, const AcGeVector3d* data,
                 size_t n) {
    if (!data) return;
    out.setPhysicalLength(static_cast<int>(n));
    for (size_t i = 0; i < n; ++i)
        out.append(unit(xformVector(m, data[i])));
}

void copyPrimitiveData(AcGiRecordedItem& item, const AcGeMatrix3d& m, size_t edges, size_t faces,
                       size_t vertices, const AcGiEdgeData* e, const AcGiFaceData* f,
                       const AcGiVertexData* v) {
    if (e) {
        copyArray(item.edges.colors, e->colors(), edges);
        copyArray(item.edges.trueColors, e->trueColors(), edges);
        copyArray(item.edges.layers, e->layerIds(), edges);
        copyArray(item.edges.lineTypes, e->lineTypeIds(), edges);
        copyArray(item.edges.markers, e->selectionMarkers(), edges);
        copyArray(item.edges.visibility, e->visibility(), edges);
    }
    if (f) {
        copyArray(item.faces.colors, f->colors(), faces);
        copyArray(item.faces.trueColors, f->trueColors(), faces);
        copyArray(item.faces.layers, f->layerIds(), faces);
        copyArray(item.faces.markers, f->selectionMarkers(), faces);
        copyNormals(item.faces.normals, m, f->normals(), faces);
        copyArray(item.faces.visibility, f->visibility(), faces);
        copyArray(item.faces.materials, f->materials(), faces);
    }
    if (v) {
        copyNormals(item.vertices.normals, m, v->normals(), vertices);
        copyArray(item.vertices.trueColors, v->trueColors(), vertices);
        item.vertices.orientation = v->orientationFlag();
    }
}

// Ceiling on the vertices of one mesh: more cannot come from a real array.
constexpr std::uint64_t kMaxMeshVertices = 1ull << 28;

} // namespace

// ---------------------------------------------------------------- geometry

AcRxClass* AcGiRecorderGeometry::isA() const {
    return AcGiWorldGeometry::desc();
}

void AcGiRecorderGeometry::getModelToWorldTransform(AcGeMatrix3d& m) const {
    m = mOwner->modelToWorld();
}

void AcGiRecorderGeometry::getWorldToModelTransform(AcGeMatrix3d& m) const {
    const AcGeMatrix3d& toWorld = mOwner->modelToWorld();
    m = toWorld.isSingular() ? AcGeMatrix3d() : toWorld.inverse();
}

Adesk::Boolean AcGiRecorderGeometry::pushModelTransform(const AcGeVector3d& normal) {
    if (!finite(normal) || normal.isZeroLength()) return Adesk::kFalse;
    return pushModelTransform(AcGeMatrix3d::planeToWorld(normal));
}

Adesk::Boolean AcGiRecorderGeometry::pushModelTransform(const AcGeMatrix3d& xform) {
    for (const auto& row : xform.entry)
        for (double e : row)
            if (!std::isfinite(e)) return Adesk::kFalse;
    // The new transform acts first, in the model coordinates of the one outside it.
    mOwner->mTransforms.push_back(mOwner->modelToWorld() * xform);
    return Adesk::kTrue;
}

Adesk::Boolean AcGiRecorderGeometry::popModelTransform() {
    if (mOwner->mTransforms.empty()) return Adesk::kFalse;
    mOwner->mTransforms.pop_back();
    return Adesk::kTrue;
}

Adesk::Boolean AcGiRecorderGeometry::circle(const AcGePoint3d& center, double radius,
                                            const AcGeVector3d& normal) const {
    if (!finite(center) || !finite(normal) || normal.isZeroLength() || !(radius > 0.0) ||
        !std::isfinite(radius))
        return mOwner->reject();
    AcGePoint3d c;
    AcGeVector3d n;
    double scale = 1.0;
    xformPlane(mOwner->modelToWorld(), center, normal, c, n, scale);
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kCircle);
    item.points.append(c);
    item.vectors.append(n);
    item.numbers.append(radius * scale);
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::circle(const AcGePoint3d& p1, const AcGePoint3d& p2,
                                            const AcGePoint3d& p3) const {
    AcGePoint3d center;
    double radius = 0.0;
    AcGeVector3d normal;
    if (!circleThrough(p1, p2, p3, center, radius, normal)) return mOwner->reject();
    return circle(center, radius, normal);
}

Adesk::Boolean AcGiRecorderGeometry::circularArc(const AcGePoint3d& center, double radius,
                                                 const AcGeVector3d& normal,
                                                 const AcGeVector3d& startVector, double sweepAngle,
                                                 AcGiArcType arcType) const {
    if (!finite(center) || !finite(normal) || !finite(startVector) || normal.isZeroLength() ||
        !(radius > 0.0) || !std::isfinite(radius) || !std::isfinite(sweepAngle))
        return mOwner->reject();
    // Only the part of the start vector in the arc's plane says where the arc starts.
    const AcGeVector3d n = unit(normal);
    const AcGeVector3d inPlane = startVector - n * startVector.dotProduct(n);
    if (!(inPlane.length() > 1e-12 * startVector.length())) return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGePoint3d c;
    AcGeVector3d newNormal;
    double scale = 1.0;
    xformPlane(m, center, normal, c, newNormal, scale);
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kCircularArc);
    item.points.append(c);
    item.vectors.append(newNormal);
    item.vectors.append(unit(xformVector(m, unit(inPlane))));
    item.numbers.append(radius * scale);
    item.numbers.append(sweepAngle);
    item.ints.append(static_cast<Adesk::Int32>(arcType));
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                                                 const AcGePoint3d& end,
                                                 AcGiArcType arcType) const {
    AcGePoint3d center;
    double radius = 0.0;
    AcGeVector3d normal;
    if (!circleThrough(start, point, end, center, radius, normal)) return mOwner->reject();
    // With the normal from (point - start) x (end - start) the three points run
    // counter-clockwise, so the sweep is the counter-clockwise angle from start to end.
    const AcGeVector3d s = start - center, e = end - center;
    double sweep = std::atan2(s.crossProduct(e).dotProduct(normal), s.dotProduct(e));
    if (sweep <= 0.0) sweep += 2.0 * std::numbers::pi;
    return circularArc(center, radius, normal, s, sweep, arcType);
}

Adesk::Boolean AcGiRecorderGeometry::polyline(Adesk::UInt32 nbPoints,
                                              const AcGePoint3d* pVertexList,
                                              const AcGeVector3d* pNormal,
                                              Adesk::GsMarker lBaseSubEntMarker) const {
    if (nbPoints == 0 || !pVertexList) return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kPolyline);
    copyPoints(item.points, &m, pVertexList, nbPoints);
    if (pNormal) item.vectors.append(unit(xformVector(m, *pNormal)));
    item.ints.append(static_cast<Adesk::Int32>(lBaseSubEntMarker));
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::polygon(Adesk::UInt32 nbPoints,
                                             const AcGePoint3d* pVertexList) const {
    if (nbPoints == 0 || !pVertexList) return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kPolygon);
    copyPoints(item.points, &m, pVertexList, nbPoints);
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::mesh(Adesk::UInt32 rows, Adesk::UInt32 columns,
                                          const AcGePoint3d* pVertexList,
                                          const AcGiEdgeData* pEdgeData,
                                          const AcGiFaceData* pFaceData,
                                          const AcGiVertexData* pVertexData, bool) const {
    const std::uint64_t r = rows, c = columns, vertices = r * c;
    if (!pVertexList || r == 0 || c == 0 || vertices < 2 || vertices > kMaxMeshVertices)
        return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kMesh);
    copyPoints(item.points, &m, pVertexList, vertices);
    item.ints.append(static_cast<Adesk::Int32>(rows));
    item.ints.append(static_cast<Adesk::Int32>(columns));
    // Edges run along the rows, then along the columns.
    const std::uint64_t edges = r * (c - 1) + (r - 1) * c;
    const std::uint64_t faces = (r - 1) * (c - 1);
    copyPrimitiveData(item, m, edges, faces, vertices, pEdgeData, pFaceData, pVertexData);
    return mOwner->regenAbort();
}

Adesk::Boolean
AcGiRecorderGeometry::shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pVertexList,
                            Adesk::UInt32 faceListSize, const Adesk::Int32* pFaceList,
                            const AcGiEdgeData* pEdgeData, const AcGiFaceData* pFaceData,
                            const AcGiVertexData* pVertexData, const resbuf*, bool) const {
    if (nbVertex == 0 || !pVertexList || faceListSize == 0 || !pFaceList) return mOwner->reject();
    // Every loop must fit in the list and name existing vertices; a hole needs a face before it.
    std::uint64_t edges = 0, faces = 0;
    for (std::uint64_t i = 0; i < faceListSize;) {
        const std::int64_t count = pFaceList[i];
        const std::uint64_t n = static_cast<std::uint64_t>(count < 0 ? -count : count);
        if (n == 0 || n > faceListSize - i - 1) return mOwner->reject();
        if (count < 0 && faces == 0) return mOwner->reject();
        for (std::uint64_t k = 1; k <= n; ++k) {
            const Adesk::Int32 index = pFaceList[i + k];
            if (index < 0 || static_cast<std::uint64_t>(index) >= nbVertex) return mOwner->reject();
        }
        edges += n;
        if (count > 0) ++faces;
        i += n + 1;
    }
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kShell);
    copyPoints(item.points, &m, pVertexList, nbVertex);
    copyArray(item.ints, pFaceList, faceListSize);
    copyPrimitiveData(item, m, edges, faces, nbVertex, pEdgeData, pFaceData, pVertexData);
    return mOwner->regenAbort();
}

namespace {

// Records a text frame taken through m: the height follows the image of the up direction,
// the width factor the ratio of the images of the two text axes.
void recordTextFrame(AcGiRecordedItem& item, const AcGeMatrix3d& m, const AcGePoint3d& position,
                     const AcGeVector3d& normal, const AcGeVector3d& direction, double height,
                     double widthFactor, double& heightScale, double& widthScale) {
    const AcGeVector3d n = unit(normal);
    const AcGeVector3d x = unit(direction - n * direction.dotProduct(n)), y = n.crossProduct(x);
    const AcGeVector3d mx = xformVector(m, x), my = xformVector(m, y);
    heightScale = my.length();
    widthScale = heightScale > 0.0 ? mx.length() / heightScale : 1.0;
    item.points.append(xformPoint(m, position));
    item.vectors.append(unit(mx.crossProduct(my)));
    item.vectors.append(unit(mx));
    item.numbers.append(height * heightScale);
    item.numbers.append(widthFactor * widthScale);
}

bool textInputOk(const AcGePoint3d& position, const AcGeVector3d& normal,
                 const AcGeVector3d& direction) {
    if (!finite(position) || !finite(normal) || !finite(direction)) return false;
    // The direction must have a part in the text's plane.
    const double across = normal.crossProduct(direction).length();
    return across > 1e-12 * normal.length() * direction.length();
}

} // namespace

Adesk::Boolean AcGiRecorderGeometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                          const AcGeVector3d& direction, double height,
                                          double width, double oblique, const ACHAR* pMsg) const {
    if (!textInputOk(position, normal, direction) || !std::isfinite(height) ||
        !std::isfinite(width) || !std::isfinite(oblique))
        return mOwner->reject();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kText);
    double heightScale = 1.0, widthScale = 1.0;
    recordTextFrame(item, mOwner->modelToWorld(), position, normal, direction, height, width,
                    heightScale, widthScale);
    item.numbers.append(oblique);
    item.numbers.append(qorTextAdvance(pMsg, -1, false) * height * heightScale * width *
                        widthScale);
    item.text = pMsg ? pMsg : L"";
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                          const AcGeVector3d& direction, const ACHAR* pMsg,
                                          Adesk::Int32 length, Adesk::Boolean raw,
                                          const AcGiTextStyle& style) const {
    if (!textInputOk(position, normal, direction)) return mOwner->reject();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kText);
    double heightScale = 1.0, widthScale = 1.0;
    recordTextFrame(item, mOwner->modelToWorld(), position, normal, direction, style.textSize(),
                    style.xScale(), heightScale, widthScale);
    item.numbers.append(style.obliquingAngle());
    item.numbers.append(style.extents(pMsg, Adesk::kTrue, length, raw).x * heightScale *
                        widthScale);
    if (pMsg) {
        // Copy no further than the length or the terminator, whichever comes first.
        for (Adesk::Int32 i = 0; (length < 0 || i < length) && pMsg[i] != L'\0'; ++i)
            item.text.push_back(pMsg[i]);
    }
    item.font = style.fileName();
    item.ints.append(raw ? 1 : 0);
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::xline(const AcGePoint3d& p1, const AcGePoint3d& p2) const {
    if (!finite(p1) || !finite(p2) || p1.isEqualTo(p2)) return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kXline);
    item.points.append(xformPoint(m, p1));
    item.points.append(xformPoint(m, p2));
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::ray(const AcGePoint3d& basePoint,
                                         const AcGePoint3d& throughPoint) const {
    if (!finite(basePoint) || !finite(throughPoint) || basePoint.isEqualTo(throughPoint))
        return mOwner->reject();
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kRay);
    item.points.append(xformPoint(m, basePoint));
    item.points.append(xformPoint(m, throughPoint));
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::pline(const AcDbPolyline& lwBuf, Adesk::UInt32 fromIndex,
                                           Adesk::UInt32 numSegs) const {
    const unsigned int verts = lwBuf.numVerts();
    const unsigned int segments = lwBuf.isClosed() ? verts : (verts > 0 ? verts - 1 : 0);
    if (verts < 2 || fromIndex >= segments) return mOwner->reject();
    const unsigned int drawn =
        (numSegs == 0 || numSegs > segments - fromIndex) ? segments - fromIndex : numSegs;
    const AcGeMatrix3d& m = mOwner->modelToWorld();
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kPline);
    for (unsigned int k = 0; k <= drawn; ++k) {
        const unsigned int index = (fromIndex + k) % verts;
        AcGePoint3d p;
        double bulge = 0.0, startWidth = 0.0, endWidth = 0.0;
        lwBuf.getPointAt(index, p);
        lwBuf.getBulgeAt(index, bulge);
        lwBuf.getWidthsAt(index, startWidth, endWidth);
        item.points.append(xformPoint(m, p));
        item.numbers.append(bulge);
        item.numbers.append(startWidth);
        item.numbers.append(endWidth);
    }
    item.vectors.append(unit(xformVector(m, lwBuf.normal())));
    item.ints.append(static_cast<Adesk::Int32>(fromIndex));
    item.ints.append(static_cast<Adesk::Int32>(drawn));
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::draw(AcGiDrawable* pDrawable) const {
    if (!pDrawable || mOwner->mDepth >= AcGiRecorder::kMaxDrawDepth) return mOwner->reject();
    // The nested drawable sets its own attributes; ours come back when it is done.
    const AcGiRecordedTraits saved = mOwner->mTraits->t;
    const Adesk::UInt32 flags = pDrawable->setAttributes(mOwner->mTraits.get());
    if (!(flags & AcGiDrawable::kDrawableIsInvisible)) {
        ++mOwner->mDepth;
        if (!pDrawable->worldDraw(mOwner->worldDraw()))
            pDrawable->viewportDraw(mOwner->viewportDraw());
        --mOwner->mDepth;
    }
    mOwner->mTraits->t = saved;
    return mOwner->regenAbort();
}

Adesk::Boolean AcGiRecorderGeometry::pushClipBoundary(AcGiClipBoundary* pBoundary) {
    if (!pBoundary || !acgiIsValidClipBoundary(pBoundary->m_aptPoints)) {
        mOwner->reject();
        return Adesk::kFalse;
    }
    AcGiRecordedItem& item = mOwner->add(AcGiRecordedKind::kClipPush);
    for (const AcGePoint2d& p : pBoundary->m_aptPoints)
        item.points.append(AcGePoint3d(p.x, p.y, 0));
    item.vectors.append(pBoundary->m_vNormal);
    item.numbers.append(pBoundary->m_dFrontClipZ);
    item.numbers.append(pBoundary->m_dBackClipZ);
    item.ints.append(pBoundary->m_bClippingFront ? 1 : 0);
    item.ints.append(pBoundary->m_bClippingBack ? 1 : 0);
    item.ints.append(pBoundary->m_bDrawBoundary ? 1 : 0);
    ++mOwner->mClipDepth;
    return Adesk::kTrue;
}

void AcGiRecorderGeometry::popClipBoundary() {
    if (mOwner->mClipDepth == 0) {
        mOwner->reject();
        return;
    }
    --mOwner->mClipDepth;
    mOwner->add(AcGiRecordedKind::kClipPop);
}

void AcGiRecorderGeometry::setExtents(AcGePoint3d*) const {}

namespace {

Adesk::Boolean recordRaw(AcGiRecorder* owner, AcGiRecordedItem& item, const AcGePoint3d* pts,
                         Adesk::UInt32 n) {
    copyPoints(item.points, nullptr, pts, n);
    return owner->regenAbort();
}

} // namespace

Adesk::Boolean AcGiRecorderGeometry::polylineEye(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    if (n == 0 || !pts) return mOwner->reject();
    return recordRaw(mOwner, mOwner->add(AcGiRecordedKind::kPolylineEye), pts, n);
}

Adesk::Boolean AcGiRecorderGeometry::polygonEye(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    if (n == 0 || !pts) return mOwner->reject();
    return recordRaw(mOwner, mOwner->add(AcGiRecordedKind::kPolygonEye), pts, n);
}

Adesk::Boolean AcGiRecorderGeometry::polylineDc(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    if (n == 0 || !pts) return mOwner->reject();
    return recordRaw(mOwner, mOwner->add(AcGiRecordedKind::kPolylineDc), pts, n);
}

Adesk::Boolean AcGiRecorderGeometry::polygonDc(Adesk::UInt32 n, const AcGePoint3d* pts) const {
    if (n == 0 || !pts) return mOwner->reject();
    return recordRaw(mOwner, mOwner->add(AcGiRecordedKind::kPolygonDc), pts, n);
}

// ---------------------------------------------------------------- dump

namespace {

void appendUtf8(std::string& out, const std::wstring& s) {
    for (wchar_t wc : s) {
        auto c = static_cast<std::uint32_t>(wc);
        if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (c >> 12)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (c >> 18)));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
}

class Writer {
public:
    explicit Writer(int decimals) : mDecimals(decimals < 0 ? 0 : (decimals > 12 ? 12 : decimals)) {}

    std::string number(double v) const {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%.*f", mDecimals, v);
        std::string s = buf;
        // A value that rounds to zero prints without a sign, so dumps do not differ by -0.
        if (s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos) s.erase(0, 1);
        return s;
    }
    std::string point(const AcGePoint3d& p) const {
        return "(" + number(p.x) + "," + number(p.y) + "," + number(p.z) + ")";
    }
    std::string vector(const AcGeVector3d& v) const {
        return "(" + number(v.x) + "," + number(v.y) + "," + number(v.z) + ")";
    }

private:
    int mDecimals;
};

std::string idText(const AcDbObjectId& id) {
    if (id.isNull()) return "0";
    char buf[32];
    std::snprintf(buf, sizeof buf, "%llX", static_cast<unsigned long long>(id.handle().value()));
    return buf;
}

template <class T, class F> std::string list(const AcArray<T>& a, F format) {
    std::string s = "[";
    for (int i = 0; i < a.length(); ++i)
        s += (i ? " " : "") + format(a[i]);
    return s + "]";
}

} // namespace

const char* AcGiRecorder::kindName(AcGiRecordedKind kind) {
    switch (kind) {
    case AcGiRecordedKind::kPolyline:
        return "Polyline";
    case AcGiRecordedKind::kPolygon:
        return "Polygon";
    case AcGiRecordedKind::kCircle:
        return "Circle";
    case AcGiRecordedKind::kCircularArc:
        return "CircularArc";
    case AcGiRecordedKind::kText:
        return "Text";
    case AcGiRecordedKind::kMesh:
        return "Mesh";
    case AcGiRecordedKind::kShell:
        return "Shell";
    case AcGiRecordedKind::kXline:
        return "Xline";
    case AcGiRecordedKind::kRay:
        return "Ray";
    case AcGiRecordedKind::kPline:
        return "Pline";
    case AcGiRecordedKind::kPolylineEye:
        return "PolylineEye";
    case AcGiRecordedKind::kPolygonEye:
        return "PolygonEye";
    case AcGiRecordedKind::kPolylineDc:
        return "PolylineDc";
    case AcGiRecordedKind::kPolygonDc:
        return "PolygonDc";
    case AcGiRecordedKind::kClipPush:
        return "ClipPush";
    case AcGiRecordedKind::kClipPop:
        return "ClipPop";
    }
    return "Unknown";
}

std::string AcGiRecorder::dump(int decimals) const {
    const Writer w(decimals);
    auto num = [&](double v) { return w.number(v); };
    auto integer = [](long long v) { return std::to_string(v); };
    std::string out;
    for (const AcGiRecordedItem& item : mItems) {
        out.append(static_cast<size_t>(item.depth) * 2, ' ');
        out += kindName(item.kind);
        if (!item.points.isEmpty())
            out += " pts=" + list(item.points, [&](const AcGePoint3d& p) { return w.point(p); });
        if (!item.vectors.isEmpty())
            out += " vec=" + list(item.vectors, [&](const AcGeVector3d& v) { return w.vector(v); });
        if (!item.numbers.isEmpty()) out += " num=" + list(item.numbers, num);
        if (!item.ints.isEmpty()) out += " int=" + list(item.ints, integer);
        if (!item.text.empty() || item.kind == AcGiRecordedKind::kText) {
            out += " text=\"";
            appendUtf8(out, item.text);
            out += "\"";
        }
        if (!item.font.empty()) {
            out += " font=\"";
            appendUtf8(out, item.font);
            out += "\"";
        }
        if (!item.edges.visibility.isEmpty())
            out += " edgeVis=" + list(item.edges.visibility, integer);
        if (!item.faces.colors.isEmpty()) out += " faceColor=" + list(item.faces.colors, integer);
        if (!item.faces.materials.isEmpty())
            out += " faceMat=" + list(item.faces.materials, idText);
        const AcGiRecordedTraits& t = item.traits;
        char tc[16];
        std::snprintf(tc, sizeof tc, "%08X", static_cast<unsigned>(t.trueColor.color()));
        out += " | color=" + std::to_string(t.color) + " tc=" + tc + " layer=" + idText(t.layer) +
               " ltype=" + idText(t.lineType) + " ltscale=" + num(t.lineTypeScale) +
               " lw=" + std::to_string(static_cast<int>(t.lineWeight)) +
               " fill=" + (t.fillType == kAcGiFillAlways ? "always" : "never") +
               " marker=" + std::to_string(static_cast<long long>(t.marker)) +
               " thick=" + num(t.thickness) + " mat=" + idText(t.material) + "\n";
    }
    return out;
}
