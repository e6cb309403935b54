// Drawing interfaces: what a drawable object sees while it draws itself. Everything here is
// abstract except the small data carriers (edge, face and vertex data, clip boundaries, text
// styles); back-ends such as the recorder and the renderer implement the contexts.
#pragma once

#include "acarray.h"
#include "accolor.h"
#include "acdb.h"
#include "adesk.h"
#include "dbid.h"
#include "gebasic.h"
#include "rx.h"

#include <string>

class AcDbDatabase;
class AcDbPolyline;
class AcGiDrawableTraits;
class AcGiTextStyle;
class AcGiViewportDraw;
class AcGiWorldDraw;
struct resbuf;

// ---------------------------------------------------------------- enumerations

// Why a drawable is being asked to draw.
enum AcGiRegenType {
    eAcGiRegenTypeInvalid = 0,
    kAcGiStandardDisplay = 2,
    kAcGiHideOrShadeCommand = 3,
    kAcGiRenderCommand = 4,
    kAcGiShadedDisplay = kAcGiRenderCommand,
    kAcGiForExplode = 5,
    kAcGiSaveWorldDrawForProxy = 6,
    kAcGiForExtents = 7,
    kAcGiMaxRegenType
};

enum AcGiFillType { kAcGiFillAlways = 1, kAcGiFillNever = 2 };

enum AcGiArcType { kAcGiArcSimple = 0, kAcGiArcSector = 1, kAcGiArcChord = 2 };

enum AcGiVisibility { kAcGiInvisible = 0, kAcGiVisible = 1, kAcGiSilhouette = 2 };

enum AcGiOrientationType { kAcGiCounterClockwise = -1, kAcGiNoOrientation = 0, kAcGiClockwise = 1 };

enum AcGiDeviationType {
    kAcGiMaxDevForCircle = 0,
    kAcGiMaxDevForCurve = 1,
    kAcGiMaxDevForBoundary = 2,
    kAcGiMaxDevForIsoline = 3,
    kAcGiMaxDevForFacet = 4
};

// ---------------------------------------------------------------- drawables

class AcGiDrawable : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiDrawable);

    // Bits returned by setAttributes.
    enum SetAttributesFlags {
        kDrawableNone = 0,
        kDrawableIsAnEntity = 1,
        kDrawableUsesNesting = 2,
        kDrawableIsCompoundObject = 4,
        kDrawableViewIndependentViewportDraw = 8,
        kDrawableIsInvisible = 16,
        kDrawableHasAttributes = 32,
        kDrawableRegenTypeDependantGeometry = 64,
    };

    // True when the drawing is complete; false asks for viewportDraw as well.
    virtual Adesk::Boolean worldDraw(AcGiWorldDraw* wd) = 0;
    virtual void viewportDraw(AcGiViewportDraw* vd) = 0;
    virtual Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) = 0;
    virtual bool isPersistent() const = 0;
    virtual AcDbObjectId id() const = 0;
};

// ---------------------------------------------------------------- traits

// The properties applied to the primitives that follow.
class AcGiSubEntityTraits : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiSubEntityTraits);

    // Colour index: 0 by block, 256 by layer, 1..255 the palette.
    virtual void setColor(Adesk::UInt16 color) = 0;
    virtual void setTrueColor(const AcCmEntityColor& color) = 0;
    virtual void setLayer(AcDbObjectId layerId) = 0;
    virtual void setLineType(AcDbObjectId lineTypeId) = 0;
    virtual void setSelectionMarker(Adesk::GsMarker marker) = 0;
    virtual void setFillType(AcGiFillType fillType) = 0;
    virtual void setLineWeight(AcDb::LineWeight lineWeight) = 0;
    virtual void setLineTypeScale(double scale = 1.0) = 0;
    virtual void setThickness(double thickness) = 0;
    virtual void setMaterial(AcDbObjectId materialId) = 0;

    virtual Adesk::UInt16 color() const = 0;
    virtual AcCmEntityColor trueColor() const = 0;
    virtual AcDbObjectId layerId() const = 0;
    virtual AcDbObjectId lineTypeId() const = 0;
    virtual Adesk::GsMarker selectionMarker() const = 0;
    virtual AcGiFillType fillType() const = 0;
    virtual AcDb::LineWeight lineWeight() const = 0;
    virtual double lineTypeScale() const = 0;
    virtual double thickness() const = 0;
    virtual AcDbObjectId materialId() const = 0;
};

// The traits a drawable sets up for itself before it draws (setAttributes).
class AcGiDrawableTraits : public AcGiSubEntityTraits {
public:
    ACRX_DECLARE_MEMBERS(AcGiDrawableTraits);
};

// ---------------------------------------------------------------- per-primitive data

// Properties of the edges of a mesh or shell, one entry per edge. The arrays stay the
// caller's; they must live until the primitive has been drawn.
class AcGiEdgeData {
public:
    void setColors(const short* colors) { mColors = colors; }
    void setTrueColors(const AcCmEntityColor* colors) { mTrueColors = colors; }
    void setLayers(const AcDbObjectId* layers) { mLayers = layers; }
    void setLineTypes(const AcDbObjectId* lineTypes) { mLineTypes = lineTypes; }
    void setSelectionMarkers(const Adesk::GsMarker* markers) { mMarkers = markers; }
    // One AcGiVisibility value per edge.
    void setVisibility(const Adesk::UInt8* visibility) { mVisibility = visibility; }

    const short* colors() const { return mColors; }
    const AcCmEntityColor* trueColors() const { return mTrueColors; }
    const AcDbObjectId* layerIds() const { return mLayers; }
    const AcDbObjectId* lineTypeIds() const { return mLineTypes; }
    const Adesk::GsMarker* selectionMarkers() const { return mMarkers; }
    const Adesk::UInt8* visibility() const { return mVisibility; }

private:
    const short* mColors = nullptr;
    const AcCmEntityColor* mTrueColors = nullptr;
    const AcDbObjectId* mLayers = nullptr;
    const AcDbObjectId* mLineTypes = nullptr;
    const Adesk::GsMarker* mMarkers = nullptr;
    const Adesk::UInt8* mVisibility = nullptr;
};

// Properties of the faces of a mesh or shell, one entry per face (a face with its holes).
class AcGiFaceData {
public:
    void setColors(const short* colors) { mColors = colors; }
    void setTrueColors(const AcCmEntityColor* colors) { mTrueColors = colors; }
    void setLayers(const AcDbObjectId* layers) { mLayers = layers; }
    void setSelectionMarkers(const Adesk::GsMarker* markers) { mMarkers = markers; }
    void setNormals(const AcGeVector3d* normals) { mNormals = normals; }
    void setVisibility(const Adesk::UInt8* visibility) { mVisibility = visibility; }
    void setMaterials(const AcDbObjectId* materials) { mMaterials = materials; }

    const short* colors() const { return mColors; }
    const AcCmEntityColor* trueColors() const { return mTrueColors; }
    const AcDbObjectId* layerIds() const { return mLayers; }
    const Adesk::GsMarker* selectionMarkers() const { return mMarkers; }
    const AcGeVector3d* normals() const { return mNormals; }
    const Adesk::UInt8* visibility() const { return mVisibility; }
    const AcDbObjectId* materials() const { return mMaterials; }

private:
    const short* mColors = nullptr;
    const AcCmEntityColor* mTrueColors = nullptr;
    const AcDbObjectId* mLayers = nullptr;
    const Adesk::GsMarker* mMarkers = nullptr;
    const AcGeVector3d* mNormals = nullptr;
    const Adesk::UInt8* mVisibility = nullptr;
    const AcDbObjectId* mMaterials = nullptr;
};

// Properties of the vertices of a mesh or shell, one entry per vertex.
class AcGiVertexData {
public:
    void setNormals(const AcGeVector3d* normals) { mNormals = normals; }
    void setOrientationFlag(AcGiOrientationType flag) { mOrientation = flag; }
    void setTrueColors(const AcCmEntityColor* colors) { mTrueColors = colors; }

    const AcGeVector3d* normals() const { return mNormals; }
    AcGiOrientationType orientationFlag() const { return mOrientation; }
    const AcCmEntityColor* trueColors() const { return mTrueColors; }

private:
    const AcGeVector3d* mNormals = nullptr;
    AcGiOrientationType mOrientation = kAcGiNoOrientation;
    const AcCmEntityColor* mTrueColors = nullptr;
};

// A clipping outline in the plane given by normal and point; front and back planes optional.
struct AcGiClipBoundary {
    AcGeVector3d m_vNormal{0, 0, 1};
    AcGePoint3d m_ptPoint;
    AcGePoint2dArray m_aptPoints;
    AcGeMatrix3d m_xToClipSpace;
    AcGeMatrix3d m_xInverseBlockRefXForm;
    Adesk::Boolean m_bClippingFront = false;
    Adesk::Boolean m_bClippingBack = false;
    double m_dFrontClipZ = 0.0;
    double m_dBackClipZ = 0.0;
    Adesk::Boolean m_bDrawBoundary = false;
};

// A closed outline of at least three distinct points whose edges have length and meet only
// where consecutive edges share a vertex. A last point equal to the first closes the outline
// and is not counted.
bool acgiIsValidClipBoundary(const AcGePoint2dArray& pts);

// ---------------------------------------------------------------- text styles

// The house text metric, shared by every measurer: a full-width (CJK) character advances one
// text height, any other character half of it.
bool qorIsFullWidthChar(wchar_t c);
// Advance of a string in text heights, before width factor and tracking. len < 0 reads to the
// terminator, and a terminator ends the string early. Unless raw, the %% control codes are
// decoded first (%%d, %%p, %%c, %%%, %%nnn as one character each; %%o, %%u as nothing).
double qorTextAdvance(const ACHAR* text, int len, bool raw);

class AcGiTextStyle {
public:
    explicit AcGiTextStyle(AcDbDatabase* db = nullptr);
    AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, double textSize, double xScale,
                  double obliqueAngle, double trackPercent, Adesk::Boolean isBackward,
                  Adesk::Boolean isUpsideDown, Adesk::Boolean isVertical,
                  Adesk::Boolean isOverlined, Adesk::Boolean isUnderlined,
                  const ACHAR* styleName = nullptr);

    // Bit 0: the font is available; bit 1: the big font is. Any named font counts: the
    // measurement needs no font file and the renderer maps names onto installed faces.
    int loadStyleRec(AcDbDatabase* db = nullptr) const;

    void setTextSize(double size) { mTextSize = size; }
    void setXScale(double xScale) { mXScale = xScale; }
    void setObliquingAngle(double angle) { mOblique = angle; }
    void setTrackingPercent(double percent) { mTracking = percent; }
    void setBackward(Adesk::Boolean on) { mBackward = on; }
    void setUpsideDown(Adesk::Boolean on) { mUpsideDown = on; }
    void setVertical(Adesk::Boolean on) { mVertical = on; }
    void setUnderlined(Adesk::Boolean on) { mUnderlined = on; }
    void setOverlined(Adesk::Boolean on) { mOverlined = on; }
    void setFileName(const ACHAR* name) { mFileName = name ? name : L""; }
    void setBigFontFileName(const ACHAR* name) { mBigFont = name ? name : L""; }
    void setStyleName(const ACHAR* name) { mStyleName = name ? name : L""; }
    Acad::ErrorStatus setFont(const ACHAR* typeface, bool bold, bool italic, int charset,
                              int pitchAndFamily);
    // The typeface is a fresh copy (new[]) that the caller deletes.
    Acad::ErrorStatus font(ACHAR*& typeface, bool& bold, bool& italic, int& charset,
                           int& pitchAndFamily) const;

    double textSize() const { return mTextSize; }
    double xScale() const { return mXScale; }
    double obliquingAngle() const { return mOblique; }
    double trackingPercent() const { return mTracking; }
    Adesk::Boolean isBackward() const { return mBackward; }
    Adesk::Boolean isUpsideDown() const { return mUpsideDown; }
    Adesk::Boolean isVertical() const { return mVertical; }
    Adesk::Boolean isUnderlined() const { return mUnderlined; }
    Adesk::Boolean isOverlined() const { return mOverlined; }
    const ACHAR* fileName() const { return mFileName.c_str(); }
    const ACHAR* bigFontFileName() const { return mBigFont.c_str(); }
    const ACHAR* styleName() const { return mStyleName.c_str(); }
    const ACHAR* typeface() const { return mTypeface.c_str(); }

    // Width and height of the string by the house metric: x is the advance times text size,
    // x scale and tracking; y is the text size. Vertical text stacks its characters one text
    // size apart in a column one character wide. Every character advances, pen-up or not.
    AcGePoint2d extents(const ACHAR* text, Adesk::Boolean penups, int len, Adesk::Boolean raw,
                        AcGiWorldDraw* ctx = nullptr) const;

private:
    std::wstring mFileName, mBigFont, mStyleName, mTypeface;
    double mTextSize = 1.0, mXScale = 1.0, mOblique = 0.0, mTracking = 1.0;
    bool mBackward = false, mUpsideDown = false, mVertical = false;
    bool mUnderlined = false, mOverlined = false;
    bool mBold = false, mItalic = false;
    int mCharset = 0, mPitchAndFamily = 0;
};

// Fills a drawing text style from a text style record of a database.
Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& styleId);

// ---------------------------------------------------------------- geometry

// Primitives. Each returns true when the caller should stop drawing (the regeneration is being
// aborted). Points are in model coordinates: the pushed model transforms take them to world.
class AcGiGeometry : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiGeometry);

    virtual void getModelToWorldTransform(AcGeMatrix3d& m) const = 0;
    virtual void getWorldToModelTransform(AcGeMatrix3d& m) const = 0;
    // Push and pop return whether the transform stack changed.
    virtual Adesk::Boolean pushModelTransform(const AcGeVector3d& normal) = 0;
    virtual Adesk::Boolean pushModelTransform(const AcGeMatrix3d& xform) = 0;
    virtual Adesk::Boolean popModelTransform() = 0;

    virtual Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                                  const AcGeVector3d& normal) const = 0;
    virtual Adesk::Boolean circle(const AcGePoint3d& p1, const AcGePoint3d& p2,
                                  const AcGePoint3d& p3) const = 0;
    virtual Adesk::Boolean circularArc(const AcGePoint3d& center, double radius,
                                       const AcGeVector3d& normal, const AcGeVector3d& startVector,
                                       double sweepAngle,
                                       AcGiArcType arcType = kAcGiArcSimple) const = 0;
    virtual Adesk::Boolean circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                                       const AcGePoint3d& end,
                                       AcGiArcType arcType = kAcGiArcSimple) const = 0;
    virtual Adesk::Boolean polyline(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList,
                                    const AcGeVector3d* pNormal = nullptr,
                                    Adesk::GsMarker lBaseSubEntMarker = -1) const = 0;
    virtual Adesk::Boolean polygon(Adesk::UInt32 nbPoints,
                                   const AcGePoint3d* pVertexList) const = 0;
    virtual Adesk::Boolean
    mesh(Adesk::UInt32 rows, Adesk::UInt32 columns, const AcGePoint3d* pVertexList,
         const AcGiEdgeData* pEdgeData = nullptr, const AcGiFaceData* pFaceData = nullptr,
         const AcGiVertexData* pVertexData = nullptr, bool bAutoGenerateNormals = true) const = 0;
    // The face list holds loops: a vertex count then as many vertex indices; a negative count
    // makes the loop a hole of the face before it.
    virtual Adesk::Boolean
    shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pVertexList, Adesk::UInt32 faceListSize,
          const Adesk::Int32* pFaceList, const AcGiEdgeData* pEdgeData = nullptr,
          const AcGiFaceData* pFaceData = nullptr, const AcGiVertexData* pVertexData = nullptr,
          const resbuf* pResBuf = nullptr, bool bAutoGenerateNormals = true) const = 0;
    virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                const AcGeVector3d& direction, double height, double width,
                                double oblique, const ACHAR* pMsg) const = 0;
    virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                const AcGeVector3d& direction, const ACHAR* pMsg,
                                Adesk::Int32 length, Adesk::Boolean raw,
                                const AcGiTextStyle& textStyle) const = 0;
    virtual Adesk::Boolean xline(const AcGePoint3d& p1, const AcGePoint3d& p2) const = 0;
    virtual Adesk::Boolean ray(const AcGePoint3d& basePoint,
                               const AcGePoint3d& throughPoint) const = 0;
    // Segments fromIndex.. of a lightweight polyline, all of them when numSegs is 0.
    virtual Adesk::Boolean pline(const AcDbPolyline& lwBuf, Adesk::UInt32 fromIndex = 0,
                                 Adesk::UInt32 numSegs = 0) const = 0;
    // Draws a nested drawable with its own attributes.
    virtual Adesk::Boolean draw(AcGiDrawable* pDrawable) const = 0;

    virtual Adesk::Boolean pushClipBoundary(AcGiClipBoundary* pBoundary) = 0;
    virtual void popClipBoundary() = 0;

    // A line between two world points, whatever model transform is in force.
    virtual Adesk::Boolean worldLine(const AcGePoint3d pnts[2]);
};

class AcGiWorldGeometry : public AcGiGeometry {
public:
    ACRX_DECLARE_MEMBERS(AcGiWorldGeometry);
    // Extents a drawable reports instead of those of its primitives.
    virtual void setExtents(AcGePoint3d* newExtents) const = 0;
};

class AcGiViewportGeometry : public AcGiGeometry {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewportGeometry);
    // Eye coordinates.
    virtual Adesk::Boolean polylineEye(Adesk::UInt32 nbPoints,
                                       const AcGePoint3d* pPoints) const = 0;
    virtual Adesk::Boolean polygonEye(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const = 0;
    // Display coordinates: x and y in [0, 1] across the viewport.
    virtual Adesk::Boolean polylineDc(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const = 0;
    virtual Adesk::Boolean polygonDc(Adesk::UInt32 nbPoints, const AcGePoint3d* pPoints) const = 0;
};

// ---------------------------------------------------------------- contexts

class AcGiContext : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiContext);
    virtual Adesk::Boolean isPsOut() const = 0;
    virtual Adesk::Boolean isPlotGeneration() const = 0;
    virtual AcDbDatabase* database() const = 0;
    virtual bool isBoundaryClipping() const = 0;
};

// A view onto the drawing, for view-dependent drawing.
class AcGiViewport : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewport);

    virtual void getModelToEyeTransform(AcGeMatrix3d& m) const = 0;
    virtual void getEyeToModelTransform(AcGeMatrix3d& m) const = 0;
    virtual void getWorldToEyeTransform(AcGeMatrix3d& m) const = 0;
    virtual void getEyeToWorldTransform(AcGeMatrix3d& m) const = 0;
    virtual Adesk::Boolean isPerspective() const = 0;
    virtual Adesk::Boolean doPerspective(AcGePoint3d& p) const = 0;
    virtual Adesk::Boolean doInversePerspective(AcGePoint3d& p) const = 0;
    // Pixels covered by one drawing unit in x and y at the given world point.
    virtual void getNumPixelsInUnitSquare(const AcGePoint3d& givenWorldPt, AcGePoint2d& pixelArea,
                                          bool includePerspective = true) const = 0;
    virtual void getCameraLocation(AcGePoint3d& location) const = 0;
    virtual void getCameraTarget(AcGePoint3d& target) const = 0;
    virtual void getCameraUpVector(AcGeVector3d& up) const = 0;
    virtual Adesk::UIntPtr viewportId() const = 0;
    virtual Adesk::Int16 acadWindowId() const = 0;
    virtual void getViewportDcCorners(AcGePoint2d& lowerLeft, AcGePoint2d& upperRight) const = 0;
    virtual Adesk::Boolean getFrontAndBackClipValues(Adesk::Boolean& clipFront,
                                                     Adesk::Boolean& clipBack, double& front,
                                                     double& back) const = 0;
    virtual double linetypeScaleMultiplier() const = 0;
    virtual double linetypeGenerationCriteria() const = 0;
    virtual Adesk::Boolean layerVisible(const AcDbObjectId&) const { return Adesk::kTrue; }
    // Unit vector from the target towards the camera.
    virtual AcGeVector3d viewDir() const;
};

class AcGiCommonDraw : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiCommonDraw);

    virtual AcGiRegenType regenType() const = 0;
    virtual Adesk::Boolean regenAbort() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
    virtual AcGiGeometry* rawGeometry() const = 0;
    virtual Adesk::Boolean isDragging() const = 0;
    virtual AcGiContext* context() = 0;
    // Largest distance allowed between a curve and the segments that stand for it.
    virtual double deviation(AcGiDeviationType type, const AcGePoint3d& pt) const = 0;
    virtual Adesk::UInt32 numberOfIsolines() const = 0;
};

class AcGiWorldDraw : public AcGiCommonDraw {
public:
    ACRX_DECLARE_MEMBERS(AcGiWorldDraw);
    virtual AcGiWorldGeometry& geometry() const = 0;
};

class AcGiViewportDraw : public AcGiCommonDraw {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewportDraw);
    virtual AcGiViewportGeometry& geometry() const = 0;
    virtual AcGiViewport& viewport() const = 0;
    virtual Adesk::UInt32 sequenceNumber() const = 0;
    virtual Adesk::Boolean isValidId(Adesk::UIntPtr acgiId) const = 0;
    virtual AcDbObjectId viewportObjectId() const = 0;
};
