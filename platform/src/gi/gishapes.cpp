#include "gishapes.h"

#include <algorithm>
#include <cmath>

namespace qorgi {

bool finite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool finite(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool circleThrough(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                   AcGePoint3d& center, double& radius, AcGeVector3d& normal) {
    if (!finite(p1) || !finite(p2) || !finite(p3)) return false;
    const AcGeVector3d a = p2 - p1, b = p3 - p1;
    const AcGeVector3d n = a.crossProduct(b);
    const double n2 = n.lengthSqrd();
    const double scale2 = std::max(a.lengthSqrd(), b.lengthSqrd());
    if (!(n2 > 1e-24 * scale2 * scale2)) return false;
    const AcGeVector3d offset =
        (b.crossProduct(n) * a.lengthSqrd() + n.crossProduct(a) * b.lengthSqrd()) / (2.0 * n2);
    center = p1 + offset;
    radius = offset.length();
    normal = n / std::sqrt(n2);
    return true;
}

} // namespace qorgi
