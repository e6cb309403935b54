// The batch height functions and their meter.
#include "toolkit/tinbatch.h"
#include "toolkit/geometry.h"
#include "toolkit/tin.h"
#include "toolkit/tinengine.h"
#include "toolkit/tinwalk.h"

#include "aced.h"
#include "acedprogress.h"

#include <cmath>

namespace qor::tin {

namespace {

// The host's status-bar meter and its user-break test.
class StatusBarMeter : public Progress {
public:
    void start(const ACHAR* title, int count) override {
        acedSetStatusBarProgressMeter(title, 0, count);
    }
    void advance(int done) override { acedSetStatusBarProgressMeterPos(done); }
    bool userBreak() override { return acedUsrBrk() != 0; }
    void finish() override { acedRestoreStatusBar(); }
};

StatusBarMeter gStatusBar;
Progress* gProgress = &gStatusBar;

} // namespace

Progress* setBatchProgress(Progress* progress) {
    Progress* old = gProgress;
    gProgress = progress;
    return old;
}

Progress* batchProgress() {
    return gProgress;
}

int batchHeights(const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query, Progress* progress) {
    if (pts.length() < 3) return 0;
    Network net;
    if (!net.build(pts.asArrayPtr(), pts.length())) return 0;
    Walker walker(net, pts);

    const int count = query.length();
    Progress* meter = count > kMeterThreshold ? progress : nullptr;
    const int every = std::max(count / 200, 2);
    if (meter) meter->start(L"正在处理", count);
    int any = 0;
    for (int i = 0; i < count; ++i) {
        if (meter && i > 0 && i % every == 0) {
            meter->advance(i);
            if (meter->userBreak()) break;
        }
        AcGePoint3d& q = query[i];
        q.z = -1.0;
        double h = 0.0;
        // A point that is nowhere in plan is near nothing either.
        if (!std::isfinite(q.x) || !std::isfinite(q.y)) continue;
        if (walker.locate(q, h) || walker.nearest(q, h)) {
            q.z = h;
            any = 1;
        }
    }
    if (meter) meter->finish();
    return any;
}

} // namespace qor::tin

int M_CalHgtByPt(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query) {
    if (!qor::tin::planFinite(pts)) return 0;
    M_DelMultPts(pts);
    return qor::tin::batchHeights(pts, query, qor::tin::batchProgress());
}

int M_CalHgtByPtNoBar(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query) {
    if (!qor::tin::planFinite(pts)) return 0;
    M_DelMultPts(pts);
    return qor::tin::batchHeights(pts, query, nullptr);
}

int M_GetHgtByLsd(AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& query) {
    return qor::tin::batchHeights(pts, query, nullptr);
}
