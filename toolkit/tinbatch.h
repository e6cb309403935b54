// Heights of many plan points on a live triangulation, each located by a walk over the
// network from its first point.
#pragma once

#include "acarray.h"
#include "adesk.h"
#include "gebasic.h"

namespace qor::tin {

// What a long batch reports to: a meter for the user and the user's request to stop.
class Progress {
public:
    virtual ~Progress() = default;
    virtual void start(const ACHAR* title, int count) = 0;
    virtual void advance(int done) = 0;
    virtual bool userBreak() = 0;
    virtual void finish() = 0;
};

// Installs the meter the metered batch reports to and returns the one it replaces: the host's
// status-bar meter unless something else was installed; with none, the metered batch runs
// like the plain one.
Progress* setBatchProgress(Progress* progress);
Progress* batchProgress();

// Meter rules: only for more than 5,000 query points; title "正在处理", range 0 to the count;
// every max(count / 200, 2) points the meter advances and the break test is made.
inline constexpr int kMeterThreshold = 5000;

// The batch on pts as they are; progress may be null. Returns as the exported batch
// functions do.
int batchHeights(const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query, Progress* progress);

} // namespace qor::tin
