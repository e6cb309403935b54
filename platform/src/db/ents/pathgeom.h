// Curves without an exact line-and-arc form (ellipses, splines, 3D polylines): an evaluator in
// world space over the curve's parameter range, sampled for the numerical queries and refined
// on the exact curve. Intersections that involve such a curve treat both operands this way.
#pragma once

#include "acstatus.h"
#include "db/ents/curvegeom.h"
#include "dbmain.h"
#include "ge/curvenum.h"

#include <memory>
#include <vector>

class AcDbCurve;

namespace ents_detail {

// What a curve adds past its open ends when asked to extend: a ray straight on from an end
// (lines, straight end segments), or the rest of its carrier (the circle of an end arc, the
// ellipse of an elliptical arc) as a piece of an evaluator. Splines add nothing.
struct ExtPart {
    bool ray = false;
    bool atStart = false; // a ray from the start
    AcGePoint3d origin;
    AcGeVector3d dir; // unit
    std::shared_ptr<const geimpl::CurveEval> ev;
    double a = 0.0, b = 0.0;
};

struct PathGeom {
    std::shared_ptr<const geimpl::CurveEval> ev;
    double t0 = 0.0, t1 = 0.0;
    std::vector<double> breaks; // parameters where the curve may turn sharply
    bool straight = false;      // straight between breaks
    bool closed = false;
    std::vector<ExtPart> ext;
    // Points that fix the curve's plane (control points, vertices); empty means the samples.
    std::vector<AcGePoint3d> hull;

    const geimpl::SampledCurve& sampled() const;
    double tolerance(double rel = 1e-9) const;
    double length() const { return sampled().length(); }

    Acad::ErrorStatus pointAtParam(double param, AcGePoint3d& p) const;
    Acad::ErrorStatus distAtParam(double param, double& dist) const;
    Acad::ErrorStatus paramAtDist(double dist, double& param) const;
    Acad::ErrorStatus firstDeriv(double param, AcGeVector3d& d) const;
    Acad::ErrorStatus secondDeriv(double param, AcGeVector3d& d) const;
    Acad::ErrorStatus paramAtPoint(const AcGePoint3d& p, double& param) const;
    // Nearest point; with extend also on the continuations past the open ends.
    void closest(const AcGePoint3d& p, bool extend, AcGePoint3d& on) const;
    void addExtents(AcDbExtents& ext) const;
    // The plane of a planar curve (kPlanar or kLinear); false for a curve in space.
    bool plane(AcGePoint3d& origin, AcGeVector3d& normal, AcDb::Planarity& type) const;

private:
    mutable std::shared_ptr<geimpl::SampledCurve> mSampled;
};

// The path of an ellipse, spline or 3D polyline: eOk, eNotImplementedYet for other classes,
// eInvalidInput for one that makes no curve.
Acad::ErrorStatus pathGeom(const AcDbCurve* c, PathGeom& g);
// Any of the platform's curves as a path (line-and-arc curves too).
Acad::ErrorStatus anyPath(const AcDbCurve* c, PathGeom& g);
// The exact line-and-arc geometry as a path.
PathGeom pathOf(const CurveGeom& g);

// Intersection points of two curves as paths (extension flags per operand).
void intersectPaths(const PathGeom& a, bool extA, const PathGeom& b, bool extB,
                    AcGePoint3dArray& out);
// The same seen along a plane's normal: the points are on a.
Acad::ErrorStatus intersectPathsProjected(const PathGeom& a, bool extA, const PathGeom& b,
                                          bool extB, const AcGePoint3d& planeOrigin,
                                          const AcGeVector3d& planeNormal, AcGePoint3dArray& out);
// The point of a whose image along dir is nearest to the image of p.
AcGePoint3d projectedClosest(const PathGeom& a, const AcGePoint3d& p, const AcGeVector3d& dir,
                             bool extend);

// Drawing a path: its samples as one polyline.
void drawPath(const PathGeom& g, AcGiWorldDraw* wd);
// Snaps every path offers: its ends, the middle by length, the nearest point, and the foot of
// the perpendicular from the last point.
void pathSnaps(const PathGeom& g, AcDb::OsnapMode mode, const AcGePoint3d& pick,
               const AcGePoint3d& last, AcGePoint3dArray& pts);
// A spline through points at a distance from a planar path, positive to the right of travel
// about the normal; null when the offset would fold over (the distance reaches past a centre
// of curvature on the inner side).
AcDbCurve* offsetSmooth(const PathGeom& g, const AcGeVector3d& normal, double dist);
// The area a planar path encloses (closed by its chord when open), seen along the normal.
double planarArea(const PathGeom& g, const AcGeVector3d& normal);

} // namespace ents_detail
