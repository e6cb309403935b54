// Private access to the plain entities' data for the shared curve code.
#pragma once

#include "db/ents/curvegeom.h"
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

namespace ents_detail {

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
