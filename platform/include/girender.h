// The picture back-end of the drawing interfaces: drawables draw themselves, with their traits,
// into a PNG, SVG or PDF page (or an image in memory) through cairo. The view is a plan: world x
// to the right, world y up, z ignored. Colours follow the index palette, the layers and the
// enclosing blocks; colour 7 shows as the opposite of the background. Lineweights are sizes on
// the page. Texts advance by the house metric and show real glyphs from the installed CJK face.
#pragma once

#include "gi.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class AcDbDatabase;

enum class AcGiRenderFormat { kPng, kSvg, kPdf, kImage };

// A picture in memory: opaque 0xAARRGGBB pixels, row by row from the top.
class AcGiRenderImage {
public:
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    // 0 outside the picture.
    std::uint32_t pixel(int x, int y) const {
        if (x < 0 || y < 0 || x >= mWidth || y >= mHeight) return 0;
        return mPixels[static_cast<size_t>(y) * static_cast<size_t>(mWidth) + x];
    }
    void reset(int width, int height, std::uint32_t fill = 0xFFFFFFFFu);
    std::uint32_t* row(int y) { return mPixels.data() + static_cast<size_t>(y) * mWidth; }

private:
    int mWidth = 0, mHeight = 0;
    std::vector<std::uint32_t> mPixels;
};

// Reads a PNG file into an image; false with the reason when it cannot.
bool acgiReadPng(const ACHAR* path, AcGiRenderImage& image, std::wstring& error);

// A paper by name: "a0" to "a6", "letter", "legal", "tabloid", portrait unless followed by
// ",landscape". Sizes in millimetres; false for a name it does not know.
bool acgiPaperSize(const ACHAR* name, double& widthMm, double& heightMm);

// How world coordinates land on the page: a window fitted into the page, centred, its aspect
// kept. Device units are pixels for images and points for SVG and PDF; device y runs down.
class AcGiRenderView {
public:
    AcGiRenderView() = default;
    AcGiRenderView(const AcGePoint2d& windowMin, const AcGePoint2d& windowMax, double pageWidth,
                   double pageHeight);

    bool isValid() const { return mScale > 0.0 && mWidth > 0.0 && mHeight > 0.0; }
    double pageWidth() const { return mWidth; }
    double pageHeight() const { return mHeight; }
    // Device units per drawing unit.
    double scale() const { return mScale; }
    AcGePoint2d toDevice(const AcGePoint3d& world) const {
        return {mOriginX + world.x * mScale, mOriginY - world.y * mScale};
    }
    AcGePoint2d toWorld(double deviceX, double deviceY) const {
        return {(deviceX - mOriginX) / mScale, (mOriginY - deviceY) / mScale};
    }

private:
    double mWidth = 0.0, mHeight = 0.0, mScale = 0.0, mOriginX = 0.0, mOriginY = 0.0;
};

// What a renderer draws on and how.
struct AcGiRenderSetup {
    AcGiRenderFormat format = AcGiRenderFormat::kImage;
    std::wstring path; // the file written (not for kImage)
    AcGiRenderView view;
    double unitsPerMm = 96.0 / 25.4; // device units per millimetre of lineweight
    bool blackBackground = false;
    AcDbDatabase* database = nullptr; // where layers and linetypes resolve; else the working one
};

class AcGiRenderer;

// The renderer's geometry: one object serving as both world and viewport geometry.
class AcGiRenderGeometry : public AcGiWorldGeometry, public AcGiViewportGeometry {
public:
    explicit AcGiRenderGeometry(AcGiRenderer* owner) : mOwner(owner) {}
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
    AcGiRenderer* mOwner;
};

class AcGiRenderer : public AcGiWorldDraw, public AcGiViewportDraw {
public:
    // Opens the page; for a file format the file is created at once, so that a path that
    // cannot be written fails before any drawing. Check isOk().
    explicit AcGiRenderer(const AcGiRenderSetup& setup);
    ~AcGiRenderer() override;
    AcGiRenderer(const AcGiRenderer&) = delete;
    AcGiRenderer& operator=(const AcGiRenderer&) = delete;

    static AcRxClass* desc();
    AcRxClass* isA() const override;

    bool isOk() const;
    // Why the page could not be opened or written.
    const std::wstring& error() const;

    AcGiWorldDraw* worldDraw() { return this; }
    AcGiViewportDraw* viewportDraw() { return this; }

    // Drawing context
    AcGiRegenType regenType() const override { return kAcGiStandardDisplay; }
    Adesk::Boolean regenAbort() const override { return Adesk::kFalse; }
    AcGiSubEntityTraits& subEntityTraits() const override;
    AcGiGeometry* rawGeometry() const override;
    Adesk::Boolean isDragging() const override { return Adesk::kFalse; }
    AcGiContext* context() override;
    // Half a device unit, in drawing units.
    double deviation(AcGiDeviationType type, const AcGePoint3d& pt) const override;
    Adesk::UInt32 numberOfIsolines() const override { return 4; }
    AcGiRenderGeometry& geometry() const override;
    AcGiViewport& viewport() const override;
    Adesk::UInt32 sequenceNumber() const override { return 1; }
    Adesk::Boolean isValidId(Adesk::UIntPtr acgiId) const override { return acgiId == 1; }
    AcDbObjectId viewportObjectId() const override { return AcDbObjectId::kNull; }

    const AcGiRenderView& view() const;
    // Draws one drawable of the drawing with its own attributes: setAttributes, worldDraw, and
    // viewportDraw when world drawing leaves the job unfinished.
    void drawTop(AcGiDrawable* drawable);
    // Primitives refused for bad input (nothing drawn for them).
    int rejectedCount() const;
    // The picture so far, for the raster formats; false for SVG and PDF.
    bool snapshot(AcGiRenderImage& image) const;
    // Writes the PNG, or completes the SVG or PDF document. False with error() set when the
    // file cannot be written; a failed file is removed.
    bool finish();

    // Nesting beyond this many draw() levels is refused, so that a drawable that draws itself
    // cannot exhaust the stack.
    static constexpr int kMaxDrawDepth = 64;

    // The state behind the renderer, known only inside the platform.
    struct Impl;

private:
    friend class AcGiRenderGeometry;
    std::unique_ptr<Impl> mImpl;
    mutable AcGiRenderGeometry mGeometry{this};
};

// ---------------------------------------------------------------- whole drawings

// The largest page: pixels for images, points (200 inches) for SVG and PDF.
constexpr int kAcGiRenderMaxPixels = 16384;
constexpr int kAcGiRenderMaxPoints = 14400;

struct AcGiRenderOptions {
    AcGiRenderFormat format = AcGiRenderFormat::kPng;
    // Device units across the page when no paper is given; 0 for 1600 pixels (images) or 842
    // points (SVG, PDF). With a paper, images are this many pixels across it.
    int width = 0;
    // Both positive: the page has the paper's shape (and, for SVG and PDF, its size).
    double paperWidthMm = 0.0, paperHeightMm = 0.0;
    bool blackBackground = false;
    // Without a window the view fits the extents of what is drawn, with a small margin.
    bool hasWindow = false;
    AcGePoint2d windowMin, windowMax;
};

// The page and view for the options, around the given world extents (ignored with a window; a
// null or empty box gives a blank page). False with the reason for options that make no page.
bool acgiRenderSetupFor(const AcGiRenderOptions& options, const AcGePoint2d* extentsMin,
                        const AcGePoint2d* extentsMax, AcGiRenderSetup& setup, std::wstring& error);

// Draws every visible entity of the database's model space through its own worldDraw into
// path (or, for kImage, into image), with a progress meter for long runs. False with the reason
// when the page cannot be made or written.
bool acgiRenderModelSpace(AcDbDatabase* db, const AcGiRenderOptions& options, const ACHAR* path,
                          std::wstring& error, AcGiRenderImage* image = nullptr);
