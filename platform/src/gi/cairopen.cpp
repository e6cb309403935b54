// How the traits in force resolve into a colour, a line width and a dash pattern: by layer, by
// block, by index or by value, with colour 7 as the opposite of the background.
#include "cairoimpl.h"

#include <algorithm>
#include <cmath>

using namespace qorrender;

namespace {

// The platform's default lineweight, 0.25 mm.
constexpr int kDefaultWeight = 25;

// Dash patterns shorter than this on the page read as a solid line anyway.
constexpr double kShortestPattern = 3.0;

AcCmEntityColor foreground() {
    return AcCmEntityColor(AcCmEntityColor::kForeground);
}

} // namespace

AcDbObjectId AcGiRenderer::Impl::effectiveLayer() const {
    // Inside a block, what is on layer 0 takes the layer of the block's reference.
    const AcDbObjectId layer = traits.t.layer;
    if (!enclosing.empty() && (layer.isNull() || layer == styles.layerZero()))
        return enclosing.back().layer;
    return layer;
}

bool AcGiRenderer::Impl::layerVisible() const {
    return styles.layer(effectiveLayer()).visible;
}

AcCmEntityColor AcGiRenderer::Impl::resolvedColor(const AcCmEntityColor& c) const {
    AcCmEntityColor color = c;
    if (color.isByLayer()) {
        color = styles.layer(effectiveLayer()).color;
        if (color.isByLayer() || color.isByBlock()) return foreground();
    }
    if (color.isByBlock()) return enclosing.empty() ? foreground() : enclosing.back().color;
    return color;
}

AcDb::LineWeight AcGiRenderer::Impl::resolvedWeight() const {
    AcDb::LineWeight w = traits.t.lineWeight;
    if (w == AcDb::kLnWtByLayer) w = styles.layer(effectiveLayer()).weight;
    if (w == AcDb::kLnWtByBlock)
        w = enclosing.empty() ? AcDb::kLnWtByLwDefault : enclosing.back().weight;
    if (w < 0) w = static_cast<AcDb::LineWeight>(kDefaultWeight);
    return w;
}

AcDbObjectId AcGiRenderer::Impl::resolvedLinetype() const {
    AcDbObjectId lt = traits.t.lineType;
    if (!lt.isNull() && lt == styles.byLayerLinetype())
        lt = styles.layer(effectiveLayer()).linetype;
    if (!lt.isNull() && lt == styles.byBlockLinetype())
        lt = enclosing.empty() ? AcDbObjectId() : enclosing.back().linetype;
    return lt;
}

Enclosing AcGiRenderer::Impl::enclosingNow() const {
    return {resolvedColor(traits.t.trueColor), resolvedWeight(), resolvedLinetype(),
            effectiveLayer()};
}

void AcGiRenderer::Impl::rgbOf(const AcCmEntityColor& c, double& r, double& g, double& b) const {
    Adesk::UInt32 rgb = 0;
    bool opposite = false;
    if (c.isByColor()) {
        rgb = (static_cast<Adesk::UInt32>(c.red()) << 16) |
              (static_cast<Adesk::UInt32>(c.green()) << 8) | c.blue();
    } else if (c.isByACI()) {
        const Adesk::UInt16 index = c.colorIndex();
        if (index == AcCmEntityColor::kACIforeground || index == 0 || index > 255)
            opposite = true;
        else
            rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index));
    } else {
        opposite = true;
    }
    if (opposite) {
        r = g = b = 1.0 - background;
        return;
    }
    r = ((rgb >> 16) & 0xFF) / 255.0;
    g = ((rgb >> 8) & 0xFF) / 255.0;
    b = (rgb & 0xFF) / 255.0;
}

bool AcGiRenderer::Impl::pen(Pen& p) const {
    if (!ok || finished || !layerVisible()) return false;
    rgbOf(resolvedColor(traits.t.trueColor), p.r, p.g, p.b);
    const double mm = static_cast<int>(resolvedWeight()) / 100.0;
    p.width = std::max(minWidth, mm * setup.unitsPerMm);
    p.dashes = nullptr;
    const AcDbObjectId lt = resolvedLinetype();
    if (!lt.isNull()) {
        const DashPattern& pattern = styles.dashes(lt);
        const double ltscale = std::isfinite(traits.t.lineTypeScale) && traits.t.lineTypeScale > 0.0
                                   ? traits.t.lineTypeScale
                                   : 1.0;
        const double scale = ltscale * styles.linetypeScale() * setup.view.scale();
        if (!pattern.lengths.empty() && std::isfinite(scale) &&
            pattern.total * scale >= kShortestPattern) {
            p.dashes = &pattern;
            p.dashScale = scale;
        }
    }
    return true;
}

void AcGiRenderer::Impl::recolor(Pen& p, const AcCmEntityColor& color) const {
    rgbOf(resolvedColor(color), p.r, p.g, p.b);
}
