// The plane classes of the geometry library are run as their counterparts in the XY plane of
// space; these lift their values up and bring them back down.
#pragma once

#include "gebasic.h"

namespace geimpl {

inline AcGePoint3d lift(const AcGePoint2d& p) {
    return {p.x, p.y, 0.0};
}

inline AcGeVector3d lift(const AcGeVector2d& v) {
    return {v.x, v.y, 0.0};
}

inline AcGeMatrix3d lift(const AcGeMatrix2d& m) {
    AcGeMatrix3d r;
    for (int i = 0; i < 2; ++i) {
        r.entry[i][0] = m.entry[i][0];
        r.entry[i][1] = m.entry[i][1];
        r.entry[i][3] = m.entry[i][2];
    }
    return r;
}

} // namespace geimpl
