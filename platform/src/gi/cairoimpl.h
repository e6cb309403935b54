// The renderer's private state, shared by the files that implement its primitives.
#pragma once

#include "cairocanvas.h"
#include "girender.h"
#include "gishapes.h"
#include "renderclip.h"
#include "renderstyle.h"

#include <memory>
#include <vector>

namespace qorrender {

// Model coordinates to device coordinates: the model-to-world transform, then the plan view.
struct Affine {
    double xx = 1.0, xy = 0.0, xz = 0.0, x0 = 0.0;
    double yx = 0.0, yy = 1.0, yz = 0.0, y0 = 0.0;

    AcGePoint2d point(const AcGePoint3d& p) const {
        return {xx * p.x + xy * p.y + xz * p.z + x0, yx * p.x + yy * p.y + yz * p.z + y0};
    }
    AcGeVector2d vector(const AcGeVector3d& v) const {
        return {xx * v.x + xy * v.y + xz * v.z, yx * v.x + yy * v.y + yz * v.z};
    }
};

struct TraitValues {
    Adesk::UInt16 color = 256;
    AcCmEntityColor trueColor; // by layer
    AcDbObjectId layer, lineType, material;
    double lineTypeScale = 1.0;
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
    AcGiFillType fillType = kAcGiFillNever;
    Adesk::GsMarker marker = 0;
    double thickness = 0.0;
};

class Traits : public AcGiDrawableTraits {
public:
    TraitValues t;

    AcRxClass* isA() const override { return AcGiDrawableTraits::desc(); }
    void setColor(Adesk::UInt16 color) override;
    void setTrueColor(const AcCmEntityColor& color) override;
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

// What "by block" means inside a nested drawable: the enclosing one's resolved properties,
// and the layer that its entities on layer 0 take.
struct Enclosing {
    AcCmEntityColor color;
    AcDb::LineWeight weight = AcDb::kLnWtByLwDefault;
    AcDbObjectId linetype;
    AcDbObjectId layer;
};

// How the next primitive looks on the page.
struct Pen {
    double r = 0.0, g = 0.0, b = 0.0;
    double width = 1.0; // device units
    const DashPattern* dashes = nullptr;
    double dashScale = 1.0; // device units per pattern unit
};

using qorgi::circleThrough;
using qorgi::finite;

// Two unit vectors spanning the plane of a normal, right-handed with it.
void planeAxes(const AcGeVector3d& normal, AcGeVector3d& u, AcGeVector3d& v);

} // namespace qorrender

struct AcGiRenderer::Impl {
    class Viewport;
    class Context;

    Impl(AcGiRenderer* owner, const AcGiRenderSetup& setup);
    ~Impl();

    // ---- state
    AcGiRenderer* owner;
    AcGiRenderSetup setup;
    qorrender::Canvas canvas;
    bool ok = false;
    bool finished = false; // the page is written: nothing more is drawn
    std::wstring error;
    qorrender::Traits traits;
    std::unique_ptr<Viewport> viewport;
    std::unique_ptr<Context> context;
    mutable qorrender::DrawingStyles styles;
    std::vector<AcGeMatrix3d> transforms; // model to world, innermost last
    qorrender::Affine toDevice;           // of the innermost transform
    std::vector<qorrender::Enclosing> enclosing;
    int depth = 0;
    int clipDepth = 0;
    int rejected = 0;
    qorrender::Box page, safe;
    double background = 1.0; // grey level of the page
    double minWidth = 1.0;   // the thinnest line, one pixel

    // ---- transforms
    const AcGeMatrix3d& modelToWorld() const;
    void updateDevice();
    AcGePoint2d dev(const AcGePoint3d& model) const { return toDevice.point(model); }

    // ---- traits
    AcDbObjectId effectiveLayer() const;
    bool layerVisible() const;
    AcCmEntityColor resolvedColor(const AcCmEntityColor& c) const;
    AcDb::LineWeight resolvedWeight() const;
    AcDbObjectId resolvedLinetype() const;
    void rgbOf(const AcCmEntityColor& resolved, double& r, double& g, double& b) const;
    // False when what follows is not to be drawn (its layer is off or frozen).
    bool pen(qorrender::Pen& p) const;
    // The pen with another colour (an edge or face colour of a mesh or shell).
    void recolor(qorrender::Pen& p, const AcCmEntityColor& color) const;
    qorrender::Enclosing enclosingNow() const;

    // ---- drawing in device coordinates
    Adesk::Boolean reject();
    void stroke(const qorrender::Points& pts, bool closed, const qorrender::Pen& p);
    // Loops filled together by the even-odd rule (a face and its holes).
    void fill(const std::vector<qorrender::Points>& loops, const qorrender::Pen& p);
    // c + u cos t + v sin t for t from 0 to sweep, as an arc (or sector or chord), stroked or
    // filled.
    void ellipse(const AcGePoint2d& c, const AcGeVector2d& u, const AcGeVector2d& v, double sweep,
                 AcGiArcType type, bool filled, const qorrender::Pen& p);
    void applyStroke(const qorrender::Pen& p);
    void applyColor(const qorrender::Pen& p);
    // A model-space arc: center, radius, plane normal, start vector and sweep.
    void arc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
             const AcGeVector3d& start, double sweep, AcGiArcType type, bool filled,
             const qorrender::Pen& p);
};
