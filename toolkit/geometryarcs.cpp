#include "toolkit/geometryarcs.h"

#include <algorithm>

namespace qor::geometry {

std::unique_ptr<AcDbPolyline> bulgedPline(const AcArray<AcGePoint2d>& pts,
                                          const AcArray<double>& bulges) {
    auto pl = std::make_unique<AcDbPolyline>();
    const int n = std::min(pts.length(), bulges.length());
    for (int i = 0; i < n; ++i)
        pl->addVertexAt(static_cast<unsigned>(i), pts[i], bulges[i], -1.0, -1.0);
    pl->setConstantWidth(0.0);
    return pl;
}

} // namespace qor::geometry
