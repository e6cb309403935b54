// The renderer as a drawing context: set-up, traits, viewport, nesting and the transform stack.
#include "cairoimpl.h"

#include "dbmain.h"

#include <cmath>

using namespace qorrender;

// ---------------------------------------------------------------- traits

void Traits::setColor(Adesk::UInt16 color) {
    t.color = color;
    t.trueColor.setColorIndex(color);
}

void Traits::setTrueColor(const AcCmEntityColor& color) {
    t.trueColor = color;
    t.color = color.isByColor()
                  ? AcCmEntityColor::lookUpACI(color.red(), color.green(), color.blue())
                  : color.colorIndex();
}

// ---------------------------------------------------------------- viewport and context

// A plan view: eye coordinates are world coordinates, the camera looks down on the centre of
// the page.
class AcGiRenderer::Impl::Viewport : public AcGiViewport {
public:
    explicit Viewport(const AcGiRenderer::Impl* owner) : mOwner(owner) {}
    AcRxClass* isA() const override { return AcGiViewport::desc(); }

    void getModelToEyeTransform(AcGeMatrix3d& m) const override { m = mOwner->modelToWorld(); }
    void getEyeToModelTransform(AcGeMatrix3d& m) const override {
        const AcGeMatrix3d& toWorld = mOwner->modelToWorld();
        m = toWorld.isSingular() ? AcGeMatrix3d() : toWorld.inverse();
    }
    void getWorldToEyeTransform(AcGeMatrix3d& m) const override { m = AcGeMatrix3d(); }
    void getEyeToWorldTransform(AcGeMatrix3d& m) const override { m = AcGeMatrix3d(); }
    Adesk::Boolean isPerspective() const override { return Adesk::kFalse; }
    Adesk::Boolean doPerspective(AcGePoint3d&) const override { return Adesk::kFalse; }
    Adesk::Boolean doInversePerspective(AcGePoint3d&) const override { return Adesk::kFalse; }
    void getNumPixelsInUnitSquare(const AcGePoint3d&, AcGePoint2d& pixelArea, bool) const override {
        const double s = mOwner->setup.view.scale();
        pixelArea.set(s, s);
    }
    void getCameraLocation(AcGePoint3d& p) const override {
        getCameraTarget(p);
        p.z = 1.0;
    }
    void getCameraTarget(AcGePoint3d& p) const override {
        const AcGiRenderView& v = mOwner->setup.view;
        const AcGePoint2d c = v.toWorld(v.pageWidth() / 2.0, v.pageHeight() / 2.0);
        p.set(c.x, c.y, 0.0);
    }
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
    Adesk::Boolean layerVisible(const AcDbObjectId& id) const override {
        return mOwner->styles.layer(id).visible;
    }

private:
    const AcGiRenderer::Impl* mOwner;
};

class AcGiRenderer::Impl::Context : public AcGiContext {
public:
    explicit Context(AcDbDatabase* db) : mDb(db) {}
    AcRxClass* isA() const override { return AcGiContext::desc(); }
    Adesk::Boolean isPsOut() const override { return Adesk::kFalse; }
    Adesk::Boolean isPlotGeneration() const override { return Adesk::kFalse; }
    AcDbDatabase* database() const override { return mDb; }
    bool isBoundaryClipping() const override { return false; }

private:
    AcDbDatabase* mDb;
};

// ---------------------------------------------------------------- set-up

namespace {

AcDbDatabase* databaseOf(const AcGiRenderSetup& setup) {
    return setup.database ? setup.database : acdbCurDwg();
}

// Far enough beyond the page for any line end or join to be out of sight, near enough for
// cairo: its rasteriser misplaces lines whose ends lie some 150,000 units out.
constexpr double kSafeMargin = 3.0e4;

} // namespace

AcGiRenderer::Impl::Impl(AcGiRenderer* o, const AcGiRenderSetup& s)
    : owner(o), setup(s), viewport(std::make_unique<Viewport>(this)),
      context(std::make_unique<Context>(databaseOf(s))), styles(databaseOf(s)) {
    ok = canvas.open(setup, error);
    page = {0.0, 0.0, setup.view.pageWidth(), setup.view.pageHeight()};
    safe = page.grownBy(kSafeMargin);
    background = setup.blackBackground ? 0.0 : 1.0;
    // One pixel: a pixel of an image, a CSS pixel (0.75 pt) of a document.
    const bool raster =
        setup.format == AcGiRenderFormat::kPng || setup.format == AcGiRenderFormat::kImage;
    minWidth = raster ? 1.0 : 0.75;
    updateDevice();
}

AcGiRenderer::Impl::~Impl() = default;

const AcGeMatrix3d& AcGiRenderer::Impl::modelToWorld() const {
    return transforms.empty() ? AcGeMatrix3d::kIdentity : transforms.back();
}

void AcGiRenderer::Impl::updateDevice() {
    const AcGeMatrix3d& m = modelToWorld();
    const AcGiRenderView& v = setup.view;
    const double s = v.scale();
    const AcGePoint2d o = v.toDevice(AcGePoint3d(0, 0, 0));
    toDevice.xx = s * m(0, 0);
    toDevice.xy = s * m(0, 1);
    toDevice.xz = s * m(0, 2);
    toDevice.x0 = s * m(0, 3) + o.x;
    toDevice.yx = -s * m(1, 0);
    toDevice.yy = -s * m(1, 1);
    toDevice.yz = -s * m(1, 2);
    toDevice.y0 = -s * m(1, 3) + o.y;
}

Adesk::Boolean AcGiRenderer::Impl::reject() {
    ++rejected;
    return Adesk::kFalse;
}

// ---------------------------------------------------------------- the renderer

AcGiRenderer::AcGiRenderer(const AcGiRenderSetup& setup)
    : mImpl(std::make_unique<Impl>(this, setup)) {}

AcGiRenderer::~AcGiRenderer() = default;

AcRxClass* AcGiRenderer::desc() {
    static AcRxClass* s =
        acrxRegisterPlatformClass(L"AcGiRenderer", AcGiWorldDraw::desc(), nullptr, nullptr);
    return s;
}

AcRxClass* AcGiRenderer::isA() const {
    return desc();
}

bool AcGiRenderer::isOk() const {
    return mImpl->ok;
}

const std::wstring& AcGiRenderer::error() const {
    return mImpl->error;
}

AcGiSubEntityTraits& AcGiRenderer::subEntityTraits() const {
    return mImpl->traits;
}

AcGiGeometry* AcGiRenderer::rawGeometry() const {
    return static_cast<AcGiWorldGeometry*>(&mGeometry);
}

AcGiContext* AcGiRenderer::context() {
    return mImpl->context.get();
}

double AcGiRenderer::deviation(AcGiDeviationType, const AcGePoint3d&) const {
    return 0.5 / mImpl->setup.view.scale();
}

AcGiRenderGeometry& AcGiRenderer::geometry() const {
    return mGeometry;
}

AcGiViewport& AcGiRenderer::viewport() const {
    return *mImpl->viewport;
}

const AcGiRenderView& AcGiRenderer::view() const {
    return mImpl->setup.view;
}

void AcGiRenderer::drawTop(AcGiDrawable* drawable) {
    if (!mImpl->ok || mImpl->finished || !drawable) return;
    // Every top-level drawable starts from plain traits and no transform.
    mImpl->traits.t = TraitValues();
    mImpl->transforms.clear();
    mImpl->enclosing.clear();
    mImpl->depth = 0;
    mImpl->updateDevice();
    const Adesk::UInt32 flags = drawable->setAttributes(&mImpl->traits);
    if (flags & AcGiDrawable::kDrawableIsInvisible) return;
    if (!drawable->worldDraw(worldDraw())) drawable->viewportDraw(viewportDraw());
    // A drawable that left clip boundaries pushed does not clip the next one.
    while (mImpl->clipDepth > 0)
        mGeometry.popClipBoundary();
}

int AcGiRenderer::rejectedCount() const {
    return mImpl->rejected;
}

bool AcGiRenderer::snapshot(AcGiRenderImage& image) const {
    return mImpl->ok && !mImpl->finished && mImpl->canvas.snapshot(image);
}

bool AcGiRenderer::finish() {
    if (!mImpl->ok || mImpl->finished) return mImpl->ok;
    while (mImpl->clipDepth > 0)
        mGeometry.popClipBoundary();
    mImpl->finished = true;
    mImpl->ok = mImpl->canvas.finish(mImpl->error);
    return mImpl->ok;
}

// ---------------------------------------------------------------- transforms and nesting

AcRxClass* AcGiRenderGeometry::isA() const {
    return AcGiWorldGeometry::desc();
}

void AcGiRenderGeometry::getModelToWorldTransform(AcGeMatrix3d& m) const {
    m = mOwner->mImpl->modelToWorld();
}

void AcGiRenderGeometry::getWorldToModelTransform(AcGeMatrix3d& m) const {
    const AcGeMatrix3d& toWorld = mOwner->mImpl->modelToWorld();
    m = toWorld.isSingular() ? AcGeMatrix3d() : toWorld.inverse();
}

Adesk::Boolean AcGiRenderGeometry::pushModelTransform(const AcGeVector3d& normal) {
    if (!finite(normal) || normal.isZeroLength()) return Adesk::kFalse;
    return pushModelTransform(AcGeMatrix3d::planeToWorld(normal));
}

Adesk::Boolean AcGiRenderGeometry::pushModelTransform(const AcGeMatrix3d& xform) {
    for (const auto& row : xform.entry)
        for (double e : row)
            if (!std::isfinite(e)) return Adesk::kFalse;
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    // The new transform acts first, in the model coordinates of the one outside it.
    d.transforms.push_back(d.modelToWorld() * xform);
    d.updateDevice();
    return Adesk::kTrue;
}

Adesk::Boolean AcGiRenderGeometry::popModelTransform() {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (d.transforms.empty()) return Adesk::kFalse;
    d.transforms.pop_back();
    d.updateDevice();
    return Adesk::kTrue;
}

Adesk::Boolean AcGiRenderGeometry::draw(AcGiDrawable* pDrawable) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!pDrawable || d.depth >= AcGiRenderer::kMaxDrawDepth) return d.reject();
    // The nested drawable sets its own attributes; ours come back when it is done, and its
    // "by block" properties are ours.
    const TraitValues saved = d.traits.t;
    d.enclosing.push_back(d.enclosingNow());
    const Adesk::UInt32 flags = pDrawable->setAttributes(&d.traits);
    if (!(flags & AcGiDrawable::kDrawableIsInvisible)) {
        ++d.depth;
        if (!pDrawable->worldDraw(mOwner->worldDraw()))
            pDrawable->viewportDraw(mOwner->viewportDraw());
        --d.depth;
    }
    d.enclosing.pop_back();
    d.traits.t = saved;
    return Adesk::kFalse;
}

void AcGiRenderGeometry::setExtents(AcGePoint3d*) const {}
