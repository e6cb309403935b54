// What the renderer reads from the drawing's tables: each layer's colour, lineweight, linetype
// and visibility, and each linetype's dash pattern, looked up once per drawing.
#pragma once

#include "accolor.h"
#include "acdb.h"
#include "dbid.h"

#include <unordered_map>
#include <vector>

class AcDbDatabase;

namespace qorrender {

struct LayerLook {
    AcCmEntityColor color{AcCmEntityColor::kForeground};
    AcDb::LineWeight weight = AcDb::kLnWtByLwDefault;
    AcDbObjectId linetype;
    bool visible = true;
};

// A dash pattern ready for cairo, in drawing units: dash and gap lengths alternating, starting
// with a dash, and the offset at which the pattern starts. Empty for a continuous line.
struct DashPattern {
    std::vector<double> lengths;
    double offset = 0.0;
    double total = 0.0;
};

// Turns a linetype's dashes (positive: dash, negative: gap, zero: dot) into a pattern.
DashPattern dashPatternOf(const std::vector<double>& dashes);

class DrawingStyles {
public:
    explicit DrawingStyles(AcDbDatabase* db);

    // Unknown and null layers look like a plain layer in the foreground colour.
    const LayerLook& layer(AcDbObjectId id);
    const DashPattern& dashes(AcDbObjectId linetype);
    AcDbObjectId layerZero() const { return mLayerZero; }
    AcDbObjectId byLayerLinetype() const { return mByLayer; }
    AcDbObjectId byBlockLinetype() const { return mByBlock; }
    // The drawing's global linetype scale.
    double linetypeScale() const { return mLtscale; }

private:
    std::unordered_map<AcDbObjectId, LayerLook> mLayers;
    std::unordered_map<AcDbObjectId, DashPattern> mDashes;
    AcDbObjectId mLastLayerId;
    const LayerLook* mLastLayer = nullptr;
    AcDbObjectId mLayerZero, mByLayer, mByBlock;
    double mLtscale = 1.0;
};

} // namespace qorrender
