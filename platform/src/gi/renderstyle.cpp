// Layer and linetype lookups for the renderer.
#include "renderstyle.h"

#include "dbsymtb.h"

#include <cmath>

namespace qorrender {

DashPattern dashPatternOf(const std::vector<double>& dashes) {
    // Runs of one kind: on (dash or dot) or off (gap), merged.
    struct Run {
        bool on;
        double length;
    };
    std::vector<Run> runs;
    for (double d : dashes) {
        if (!std::isfinite(d)) return {};
        const bool on = d >= 0.0;
        if (!runs.empty() && runs.back().on == on)
            runs.back().length += std::fabs(d);
        else
            runs.push_back({on, std::fabs(d)});
    }
    DashPattern p;
    for (const Run& r : runs)
        p.total += r.length;
    if (runs.size() < 2 || !(p.total > 0.0)) return {}; // all dash, all gap or all dots
    // Rotate so that the pattern starts with a dash and ends with a gap; the offset brings the
    // line's start back to where the linetype has it.
    double start = 0.0;
    if (runs.front().on == runs.back().on) {
        start = p.total - runs.back().length;
        runs.front().length += runs.back().length;
        runs.pop_back();
    }
    if (!runs.front().on) {
        start += runs.front().length;
        runs.push_back(runs.front());
        runs.erase(runs.begin());
    }
    start = std::fmod(start, p.total);
    p.offset = start > 0.0 ? p.total - start : 0.0;
    for (const Run& r : runs)
        p.lengths.push_back(r.length);
    return p;
}

DrawingStyles::DrawingStyles(AcDbDatabase* db) {
    if (!db) return;
    mLayerZero = db->layerZero();
    mByLayer = db->byLayerLinetype();
    mByBlock = db->byBlockLinetype();
    if (std::isfinite(db->ltscale()) && db->ltscale() > 0.0) mLtscale = db->ltscale();
}

const LayerLook& DrawingStyles::layer(AcDbObjectId id) {
    if (mLastLayer && id == mLastLayerId) return *mLastLayer;
    auto it = mLayers.find(id);
    if (it == mLayers.end()) {
        LayerLook look;
        AcDbLayerTableRecord* rec = nullptr;
        if (!id.isNull() && acdbOpenObject(rec, id, AcDb::kForRead) == Acad::eOk) {
            look.color = rec->color();
            look.weight = rec->lineWeight();
            look.linetype = rec->linetypeObjectId();
            look.visible = !rec->isOff() && !rec->isFrozen();
            rec->close();
        }
        it = mLayers.emplace(id, look).first;
    }
    mLastLayerId = id;
    mLastLayer = &it->second;
    return it->second;
}

const DashPattern& DrawingStyles::dashes(AcDbObjectId linetype) {
    auto it = mDashes.find(linetype);
    if (it != mDashes.end()) return it->second;
    std::vector<double> lengths;
    AcDbLinetypeTableRecord* rec = nullptr;
    if (!linetype.isNull() && acdbOpenObject(rec, linetype, AcDb::kForRead) == Acad::eOk) {
        for (int i = 0; i < rec->numDashes(); ++i)
            lengths.push_back(rec->dashLengthAt(i));
        rec->close();
    }
    return mDashes.emplace(linetype, dashPatternOf(lengths)).first->second;
}

} // namespace qorrender
