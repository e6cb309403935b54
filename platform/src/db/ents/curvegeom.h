// Shared curve math of the plain entities: every curve is a run of 2D pieces (line or
// circular arc) in a plane frame, with a parameter span per piece. Queries, splitting and
// intersection work on that one representation.
#pragma once

#include "acarray.h"
#include "acstatus.h"
#include "gebasic.h"

#include <vector>

class AcDbCurve;
class AcDbEntity;

namespace ents_detail {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;

// Angle in [0, 2*pi).
double normAngle(double a);
// Counter-clockwise sweep from a to b in [0, 2*pi).
double ccwSweep(double a, double b);

// The arbitrary axis rule: the x and y axes of the plane system of a normal.
void ocsAxes(const AcGeVector3d& normal, AcGeVector3d& xAxis, AcGeVector3d& yAxis);
// A unit normal; (0,0,1) for a zero vector.
AcGeVector3d unitNormal(const AcGeVector3d& n);

// A right-handed orthonormal plane system.
struct Frame {
    AcGePoint3d origin;
    AcGeVector3d x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};

    static Frame ocs(const AcGeVector3d& normal, const AcGePoint3d& origin);
    AcGePoint3d toWorld(const AcGePoint2d& p, double h = 0.0) const {
        return origin + x * p.x + y * p.y + z * h;
    }
    AcGeVector3d toWorld(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
    AcGePoint2d toLocal(const AcGePoint3d& p) const;
    double height(const AcGePoint3d& p) const { return (p - origin).dotProduct(z); }
};

// World point <-> the plane system of a normal (origin at the world origin), as filed in DXF.
AcGePoint3d worldToOcs(const AcGePoint3d& p, const AcGeVector3d& normal);
AcGePoint3d ocsToWorld(const AcGePoint3d& p, const AcGeVector3d& normal);

// A line segment or circular arc in a frame, parameterised by u in [0, 1] from start to end.
struct Piece {
    bool arc = false;
    AcGePoint2d a, b; // ends (for arcs too)
    AcGePoint2d c;    // arc centre
    double r = 0.0, start = 0.0,
           sweep = 0.0; // arc: start angle, signed sweep (positive counter-clockwise)

    static Piece line(const AcGePoint2d& a, const AcGePoint2d& b);
    static Piece arcOf(const AcGePoint2d& c, double r, double start, double sweep);
    // The segment from a to b with a bulge (tan of a quarter of the signed included angle).
    static Piece bulged(const AcGePoint2d& a, const AcGePoint2d& b, double bulge);

    double length() const;
    bool isFullCircle() const { return arc && std::fabs(sweep) >= kTwoPi - 1e-12; }
    AcGePoint2d at(double u) const;
    AcGeVector2d d1(double u) const;
    AcGeVector2d d2(double u) const;
    // The u of the nearest point; u may leave [0, 1] where an end is extended (arcs extend to
    // their whole circle and then u is taken in [0, 2*pi/|sweep|)).
    double closestU(const AcGePoint2d& p, bool extStart, bool extEnd) const;
    // Whether u is on the piece within an absolute distance tol.
    bool onPiece(double u, double tol, bool extStart, bool extEnd) const;
    // The u of a point known to lie on the carrier line or circle.
    double uOf(const AcGePoint2d& p) const;
};

// The bulge of an arc piece between its ends.
double bulgeOf(double sweep);

struct CurveGeom {
    Frame frame;
    bool linear = false; // a straight line: any plane through it would do
    bool closed = false;
    std::vector<Piece> pieces;
    std::vector<double> p0, dp; // parameter at each piece start and its span

    void add(const Piece& pc, double param0, double span) {
        pieces.push_back(pc);
        p0.push_back(param0);
        dp.push_back(span);
    }
    bool empty() const { return pieces.empty(); }
    double startParam() const { return p0.empty() ? 0.0 : p0.front(); }
    double endParam() const { return p0.empty() ? 0.0 : p0.back() + dp.back(); }
    double length() const;
    // Absolute tolerance for "on the curve" tests, relative to the curve's size.
    double tolerance(double rel = 1e-9) const;
    AcGePoint3d worldAt(size_t i, double u) const { return frame.toWorld(pieces[i].at(u)); }

    // Piece and u of a parameter; false outside the range.
    bool locate(double param, size_t& i, double& u) const;
    Acad::ErrorStatus pointAtParam(double param, AcGePoint3d& p) const;
    Acad::ErrorStatus distAtParam(double param, double& dist) const;
    Acad::ErrorStatus paramAtDist(double dist, double& param) const;
    Acad::ErrorStatus firstDeriv(double param, AcGeVector3d& d) const;
    Acad::ErrorStatus secondDeriv(double param, AcGeVector3d& d) const;
    // Nearest point; with extend the open ends continue (lines endlessly, arcs round their circle).
    void closest(const AcGePoint3d& p, bool extend, size_t& piece, double& u,
                 AcGePoint3d& on) const;
    Acad::ErrorStatus paramAtPoint(const AcGePoint3d& p, double& param) const;
    void addExtents(AcGePoint3dArray& pts) const;
};

// The geometry of one of the platform's curves; false for other classes or degenerate data.
bool curveGeom(const AcDbCurve* c, CurveGeom& g);

// Intersection points of two curves (extension flags per operand).
void intersect(const CurveGeom& a, bool extA, const CurveGeom& b, bool extB, AcGePoint3dArray& out);
// The same after projecting both onto a plane along its normal; the points are taken back onto a.
Acad::ErrorStatus intersectProjected(const CurveGeom& a, bool extA, const CurveGeom& b, bool extB,
                                     const AcGePoint3d& planeOrigin,
                                     const AcGeVector3d& planeNormal, AcGePoint3dArray& out);

// Appends p unless a point within tol is there already.
void addUnique(AcGePoint3dArray& pts, const AcGePoint3d& p, double tol);

// Listing helpers: "X=   1.0000  Y=   2.0000  Z=   0.0000".
void listPoint(const wchar_t* label, const AcGePoint3d& p);
void listValue(const wchar_t* label, double v);
void listAngle(const wchar_t* label, double radians);
void listVector(const wchar_t* label, const AcGeVector3d& v);

// Whether the matrix maps the plane of (x, y) to a similar (uniformly scaled) image.
bool keepsCircles(const AcGeMatrix3d& m, const AcGeVector3d& x, const AcGeVector3d& y);

} // namespace ents_detail
