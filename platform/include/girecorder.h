// A drawing back-end that keeps every primitive it is given, with the traits in force, so that
// tests can check what an object draws. It serves both world and viewport drawing, with a plain
// top view (eye coordinates equal world coordinates).
#pragma once

#include "gi.h"

#include <memory>
#include <string>
#include <vector>

enum class AcGiRecordedKind {
    kPolyline,
    kPolygon,
    kCircle,
    kCircularArc,
    kText,
    kMesh,
    kShell,
    kXline,
    kRay,
    kPline,
    kPolylineEye,
    kPolygonEye,
    kPolylineDc,
    kPolygonDc,
    kClipPush,
    kClipPop,
};

// The sub-entity traits as they were when a primitive was drawn.
struct AcGiRecordedTraits {
    Adesk::UInt16 color = 256;
    AcCmEntityColor trueColor; // by layer
    AcDbObjectId layer;
    AcDbObjectId lineType;
    AcDbObjectId material;
    double lineTypeScale = 1.0;
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
    AcGiFillType fillType = kAcGiFillNever;
    Adesk::GsMarker marker = 0;
    double thickness = 0.0;
};

// Edge, face and vertex data of a mesh or shell, copied for exactly the edges, faces and
// vertices the primitive has. An array stays empty when the caller gave none.
struct AcGiRecordedEdgeData {
    AcArray<short> colors;
    AcArray<AcCmEntityColor> trueColors;
    AcDbObjectIdArray layers;
    AcDbObjectIdArray lineTypes;
    AcArray<Adesk::GsMarker> markers;
    AcArray<Adesk::UInt8> visibility;
};
struct AcGiRecordedFaceData {
    AcArray<short> colors;
    AcArray<AcCmEntityColor> trueColors;
    AcDbObjectIdArray layers;
    AcArray<Adesk::GsMarker> markers;
    AcGeVector3dArray normals; // in world coordinates
    AcArray<Adesk::UInt8> visibility;
    AcDbObjectIdArray materials;
};
struct AcGiRecordedVertexData {
    AcGeVector3dArray normals; // in world coordinates
    AcArray<AcCmEntityColor> trueColors;
    AcGiOrientationType orientation = kAcGiNoOrientation;
};

// One primitive. Points and vectors are in world coordinates (the model transforms applied),
// except for eye, display and clip primitives, which keep their own coordinates. What the
// numbers and integers hold depends on the kind:
//   Polyline      points; vectors [normal] when given; ints [base marker]
//   Polygon       points
//   Circle        points [center]; vectors [normal]; numbers [radius]
//   CircularArc   points [center]; vectors [normal, start vector]; numbers [radius, sweep];
//                 ints [arc type]
//   Text          points [position]; vectors [normal, direction];
//                 numbers [height, width factor, oblique, advance width]; text; font (styled
//                 form: the style's file name); ints [raw] for the styled form
//   Mesh          points (row by row); ints [rows, columns]; edges, faces, vertices
//   Shell         points; ints (the face list); edges, faces, vertices
//   Xline, Ray    points [first, second]
//   Pline         points (vertices of the drawn segments, the first again when the last
//                 segment closes); numbers [bulge, start width, end width] per point;
//                 vectors [normal]; ints [from index, segments]
//   ...Eye, ...Dc points as given
//   ClipPush      points (the outline, z 0); vectors [normal]; numbers [front z, back z];
//                 ints [clip front, clip back, draw boundary]
struct AcGiRecordedItem {
    AcGiRecordedKind kind = AcGiRecordedKind::kPolyline;
    AcGePoint3dArray points;
    AcGeVector3dArray vectors;
    AcGeDoubleArray numbers;
    AcArray<Adesk::Int32> ints;
    std::wstring text;
    std::wstring font;
    AcGiRecordedTraits traits;
    int depth = 0; // how many nested draw() calls were active
    AcGiRecordedEdgeData edges;
    AcGiRecordedFaceData faces;
    AcGiRecordedVertexData vertices;
};

class AcGiRecorder;

// The recorder's geometry: one object serving as both world and viewport geometry.
class AcGiRecorderGeometry : public AcGiWorldGeometry, public AcGiViewportGeometry {
public:
    explicit AcGiRecorderGeometry(AcGiRecorder* owner) : mOwner(owner) {}
    AcRxClass* isA() const override;

    void getModelToWorldTransform(AcGeMatrix3d& m) const override;
    void getWorldToModelTransform(AcGeMatrix3d& m) const override;
    Adesk::Boolean pushModelTransform(const AcGeVector3d& normal) override;
    Adesk::Boolean pushModelTransform(const AcGeMatrix3d& xform) override;
    Adesk::Boolean popModelTransform() override;

    Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                          const AcGeVector3d& normal) const override;
    Adesk::Boolean circle(const AcGePoint3d& p1, const AcGePoint3d& p2,
                          const AcGePoint3d& p3) const override;
    Adesk::Boolean circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                               const AcGeVector3d& startVector, double sweepAngle,
                               AcGiArcType arcType = kAcGiArcSimple) const override;
    Adesk::Boolean circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                               const AcGePoint3d& end,
                               AcGiArcType arcType = kAcGiArcSimple) const override;
    Adesk::Boolean polyline(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList,
                            const AcGeVector3d* pNormal = nullptr,
                            Adesk::GsMarker lBaseSubEntMarker = -1) const override;
    Adesk::Boolean polygon(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList) const override;
    Adesk::Boolean mesh(Adesk::UInt32 rows, Adesk::UInt32 columns, const AcGePoint3d* pVertexList,
                        const AcGiEdgeData* pEdgeData = nullptr,
                        const AcGiFaceData* pFaceData = nullptr,
                        const AcGiVertexData* pVertexData = nullptr,
                        bool bAutoGenerateNormals = true) const override;
    Adesk::Boolean
    shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pVertexList, Adesk::UInt32 faceListSize,
          const Adesk::Int32* pFaceList, const AcGiEdgeData* pEdgeData = nullptr,
          const AcGiFaceData* pFaceData = nullptr, const AcGiVertexData* pVertexData = nullptr,
          const resbuf* pResBuf = nullptr, bool bAutoGenerateNormals = true) const override;
    Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                        const AcGeVector3d& direction, double height, double width, double oblique,
                        const ACHAR* pMsg) const override;
    Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                        const AcGeVector3d& direction, const ACHAR* pMsg, Adesk::Int32 length,
                        Adesk::Boolean raw, const AcGiTextStyle& textStyle) const override;
    Adesk::Boolean xline(const AcGePoint3d& p1, const AcGePoint3d& p2) const override;
    Adesk::Boolean ray(const AcGePoint3d& basePoint,
                       const AcGePoint3d& throughPoint) const override;
    Adesk::Boolean pline(const AcDbPolyline& lwBuf, Adesk::UInt32 fromIndex = 0,
                         Adesk::UInt32 numSegs = 0) const override;
    Adesk::Boolean draw(AcGiDrawable* pDrawable) const override;
    Adesk::Boolean pushClipBoundary(AcGiClipBoundary* pBoundary) override;
    void popClipBoundary() override;

    void setExtents(AcGePoint3d* newExtents) const override;

    Adesk::Boolean polylineEye(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const override;
    Adesk::Boolean polygonEye(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const override;
    Adesk::Boolean polylineDc(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const override;
    Adesk::Boolean polygonDc(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const override;

private:
    AcGiRecorder* mOwner;
};

class AcGiRecorder : public AcGiWorldDraw, public AcGiViewportDraw {
public:
    AcGiRecorder();
    ~AcGiRecorder() override;
    AcGiRecorder(const AcGiRecorder&) = delete;
    AcGiRecorder& operator=(const AcGiRecorder&) = delete;

    static AcRxClass* desc();
    AcRxClass* isA() const override;

    // The two faces of the recorder, for arguments whose type would otherwise be ambiguous
    // (an AcGiCommonDraw*, for instance).
    AcGiWorldDraw* worldDraw() { return this; }
    AcGiViewportDraw* viewportDraw() { return this; }

    // Drawing context
    AcGiRegenType regenType() const override { return mRegenType; }
    Adesk::Boolean regenAbort() const override { return mRegenAbort; }
    AcGiSubEntityTraits& subEntityTraits() const override;
    AcGiGeometry* rawGeometry() const override;
    Adesk::Boolean isDragging() const override { return mDragging; }
    AcGiContext* context() override;
    double deviation(AcGiDeviationType type, const AcGePoint3d& pt) const override;
    Adesk::UInt32 numberOfIsolines() const override { return mIsolines; }
    AcGiRecorderGeometry& geometry() const override;
    AcGiViewport& viewport() const override;
    Adesk::UInt32 sequenceNumber() const override { return 1; }
    Adesk::Boolean isValidId(Adesk::UIntPtr acgiId) const override;
    AcDbObjectId viewportObjectId() const override { return AcDbObjectId::kNull; }

    // Set-up
    void setRegenType(AcGiRegenType type) { mRegenType = type; }
    void setRegenAbort(bool abort) { mRegenAbort = abort; }
    void setDragging(bool dragging) { mDragging = dragging; }
    void setDeviation(double deviation) { mDeviation = deviation; }
    void setNumberOfIsolines(Adesk::UInt32 n) { mIsolines = n; }
    void setDatabase(AcDbDatabase* db);
    // Starting traits of every drawing (and after clear()).
    void resetTraits(const AcGiRecordedTraits& traits = AcGiRecordedTraits());

    // Results
    const std::vector<AcGiRecordedItem>& items() const { return mItems; }
    int count(AcGiRecordedKind kind) const;
    // Primitives refused for bad input (nothing recorded for them).
    int rejectedCount() const { return mRejected; }
    // Forgets the items, the rejections, the transform and clip stacks, and resets the traits.
    void clear();
    // One line per item, numbers in fixed notation with the given decimals, UTF-8.
    std::string dump(int decimals = 3) const;
    static const char* kindName(AcGiRecordedKind kind);

    // Nesting beyond this many draw() levels is refused, so that a drawable that draws itself
    // cannot exhaust the stack.
    static constexpr int kMaxDrawDepth = 64;

private:
    friend class AcGiRecorderGeometry;
    class Traits;
    class Viewport;
    class Context;

    AcGiRecordedItem& add(AcGiRecordedKind kind) const;
    Adesk::Boolean reject() const;
    const AcGeMatrix3d& modelToWorld() const;

    AcGiRegenType mRegenType = kAcGiStandardDisplay;
    bool mRegenAbort = false;
    bool mDragging = false;
    double mDeviation = 0.0;
    Adesk::UInt32 mIsolines = 4;
    std::unique_ptr<Traits> mTraits;
    std::unique_ptr<Viewport> mViewport;
    std::unique_ptr<Context> mContext;
    mutable AcGiRecorderGeometry mGeometry{this};
    AcGiRecordedTraits mStartTraits;
    std::vector<AcGeMatrix3d> mTransforms;
    // Recording happens through const primitives, as the interface wants them const.
    mutable std::vector<AcGiRecordedItem> mItems;
    mutable int mRejected = 0;
    mutable int mDepth = 0;
    int mClipDepth = 0;
};
