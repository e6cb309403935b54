// Heights on a terrain network: in one triangle, and the estimate outside a stored triangle
// list from the nearest corners around the point.
#pragma once

#include "acarray.h"
#include "gebasic.h"

namespace qor::tin {

// Where q lies against the triangle p1 p2 p3 in plan by the toolkit's angle-sum test: 1
// inside, 0 on the boundary (within 0.0001), -1 outside. A point well clear of the triangle is
// answered without the trigonometry, with the same answer.
int classify(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
             const AcGePoint3d& q);

// The height of q in the triangle, given its class from classify: on the boundary along the
// edge q lies on, inside along the ray from p1 through q to the opposite edge. False when q is
// outside or its position gives no height.
//
// The boundary rules are those the stored terrains were computed with: the second and third
// edges fall back to a corner height when d12 (not their own length) is not positive, and the
// third edge (p3-p1) divides by d12, not by its own length.
bool heightInTriangle(int cls, const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                      const AcGePoint3d& q, double& h);

// From P, the point nearest q, through q to the line A-B: the height where that line crosses
// the segment A-B, mixed with P's by the distances. False when the crossing misses the
// segment or the lines are parallel.
bool pairHeight(const AcGePoint3d& q, const AcGePoint3d& P, const AcGePoint3d& A,
                const AcGePoint3d& B, double& h);

// The estimate for a point no triangle of the list holds: the first corner of each triangle,
// the nearest per 45-degree sector around q, the nearest of all as P and every pair of the
// other sectors through pairHeight, averaged. False, h untouched, when no pair gives a value.
bool sectorHeight(const AcArray<AcGePoint3d>& tris, const AcGePoint3d& q, double& h);

} // namespace qor::tin
