// Checks and constructions the drawing back-ends share when they take primitives apart.
#pragma once

#include "gebasic.h"

namespace qorgi {

bool finite(const AcGePoint3d& p);
bool finite(const AcGeVector3d& v);

// The circle through three points; false when they are (nearly) on one line or not finite.
bool circleThrough(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                   AcGePoint3d& center, double& radius, AcGeVector3d& normal);

} // namespace qorgi
