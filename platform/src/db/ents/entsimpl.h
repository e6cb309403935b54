// Private access to the plain entities' data for the shared curve code.
#pragma once

#include "db/ents/curvegeom.h"
#include "db/ents/pathgeom.h"
#include "dbents.h"

struct AcDbLineImpl {
    static void geom(const AcDbLine& e, ents_detail::CurveGeom& g);
    static AcDbCurve* sub(const AcDbLine& e, double from, double to);
};

struct AcDbArcImpl {
    static void geom(const AcDbArc& e, ents_detail::CurveGeom& g);
    static AcDbCurve* sub(const AcDbArc& e, double from, double to);
};

struct AcDbCircleImpl {
    static void geom(const AcDbCircle& e, ents_detail::CurveGeom& g);
    // An arc from one angle round to another (to may pass 2*pi).
    static AcDbCurve* sub(const AcDbCircle& e, double from, double to);
};

struct AcDbPolylineImpl {
    static void geom(const AcDbPolyline& e, ents_detail::CurveGeom& g);
    // The open polyline between two parameters; on a closed one, to may pass the end and wrap.
    static AcDbCurve* sub(const AcDbPolyline& e, double from, double to);
};

struct AcDb2dPolylineImpl {
    // The run through the vertices that are not spline control vertices.
    static void geom(const AcDb2dPolyline& e, ents_detail::CurveGeom& g);
    static AcDbCurve* sub(const AcDb2dPolyline& e, double from, double to);
    // The same vertices (only those of the curve, or all) as a lightweight polyline with the
    // same plane, widths and properties, owned by the caller.
    static AcDbPolyline* toLw(const AcDb2dPolyline& e, bool curveOnly);
    // A simple 2D polyline of a lightweight one's vertices, with like's properties.
    static AcDb2dPolyline* fromLw(const AcDbPolyline& lw, const AcDbEntity& like);
};

struct AcDb3dPolylineImpl {
    static bool path(const AcDb3dPolyline& e, ents_detail::PathGeom& g);
    // Everything the path depends on, to tell when a remembered one still holds.
    static void key(const AcDb3dPolyline& e, std::vector<double>& k);
    static AcDbCurve* sub(const AcDb3dPolyline& e, double from, double to);
};

struct AcDbEllipseImpl {
    static bool path(const AcDbEllipse& e, ents_detail::PathGeom& g);
    static void key(const AcDbEllipse& e, std::vector<double>& k);
    // An elliptical arc between two parameters (to may pass a full turn past from's).
    static AcDbCurve* sub(const AcDbEllipse& e, double from, double to);
};

struct AcDbSplineImpl {
    static bool path(const AcDbSpline& e, ents_detail::PathGeom& g);
    static void key(const AcDbSpline& e, std::vector<double>& k);
    // On a closed spline, to may pass the end and wrap.
    static AcDbCurve* sub(const AcDbSpline& e, double from, double to);
    static const geimpl::Nurbs* nurbs(const AcDbSpline& e);
};

namespace ents_detail {

// Thickness and normal of the curves that have them; 0 and the z axis otherwise.
double thicknessOf(const AcDbCurve* c);
AcGeVector3d normalOf(const AcDbCurve* c);

// A new curve between two parameters of c with c's properties; null for other classes.
AcDbCurve* subCurve(const AcDbCurve* c, double from, double to);

// Reads a DXF group of the expected kind; false at the end of the entity's data.
bool nextItem(AcDbDxfFiler* filer, resbuf& rb);
AcGePoint3d rbPoint(const resbuf& rb);
AcGeVector3d rbVector(const resbuf& rb);

// Grip and snap helpers: the osnap point list of a curve for the common modes.
void curveSnaps(const CurveGeom& g, AcDb::OsnapMode mode, const AcGePoint3d& pick,
                const AcGePoint3d& last, AcGePoint3dArray& pts);

} // namespace ents_detail

namespace ents_detail {

// Transforms a circle or arc (start and end angles optional) by m. Fails with the platform's
// status when the image would not be circular. A transform that reverses the plane's sense
// keeps the normal's side and swaps the angles, so the same points are covered.
Acad::ErrorStatus transformCircular(const AcGeMatrix3d& m, AcGePoint3d& center,
                                    AcGeVector3d& normal, double& radius, double* startAngle,
                                    double* endAngle, double& thickness);

// The status for a transform that would make a circle an ellipse.
constexpr Acad::ErrorStatus kCannotScaleNonUniformly = Acad::eNotApplicable;

// Circle through three points in a plane; false when they are (nearly) collinear.
bool circleThrough(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c,
                   AcGePoint2d& center, double& radius);

} // namespace ents_detail
