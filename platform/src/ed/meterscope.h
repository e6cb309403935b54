// A status-bar progress meter that runs for the length of a scope, for the platform's own long
// jobs (drawing a picture, writing or reading an exchange file).
#pragma once

#include "acedprogress.h"

#include <algorithm>
#include <cstddef>

namespace qor {

class MeterScope {
public:
    MeterScope(const ACHAR* label, std::size_t count) {
        acedSetStatusBarProgressMeter(label, 0,
                                      static_cast<int>(std::min<std::size_t>(count, 0x3FFFFFFF)));
    }
    ~MeterScope() { acedRestoreStatusBar(); }
    MeterScope(const MeterScope&) = delete;
    MeterScope& operator=(const MeterScope&) = delete;

    void step() { acedSetStatusBarProgressMeterPos(-1); }
};

} // namespace qor
