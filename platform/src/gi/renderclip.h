// Device-space clipping for the renderer. cairo keeps path coordinates in 24.8 fixed point,
// so geometry reaching millions of units beyond the page (a window deep into a large drawing)
// must be cut down to the page before it is handed over.
#pragma once

#include "gebasic.h"

#include <utility>
#include <vector>

namespace qorrender {

using Points = std::vector<AcGePoint2d>;

struct Box {
    double x0 = 0.0, y0 = 0.0, x1 = -1.0, y1 = -1.0;

    static Box around(const AcGePoint2d* pts, size_t n);
    bool isEmpty() const { return !(x0 <= x1 && y0 <= y1); }
    Box grownBy(double d) const { return {x0 - d, y0 - d, x1 + d, y1 + d}; }
    bool meets(const Box& b) const {
        return !isEmpty() && !b.isEmpty() && x0 <= b.x1 && b.x0 <= x1 && y0 <= b.y1 && b.y0 <= y1;
    }
    bool holds(const Box& b) const {
        return !b.isEmpty() && x0 <= b.x0 && b.x1 <= x1 && y0 <= b.y0 && b.y1 <= y1;
    }
    bool holds(const AcGePoint2d& p) const {
        return x0 <= p.x && p.x <= x1 && y0 <= p.y && p.y <= y1;
    }
};

// The parts of a polyline (closed: with the edge back to its start) inside the box, as runs of
// at least two points.
std::vector<Points> clipPolyline(const Points& pts, bool closed, const Box& box);

// A polygon cut down to the box (Sutherland-Hodgman): inside the box every point keeps its
// even-odd parity, which is what a fill needs. Empty when nothing is left.
Points clipPolygon(const Points& pts, const Box& box);

// The segment of the line through a and b (a ray from a when ray is set) inside the box; false
// when it misses the box or a and b coincide.
bool clipLine(const AcGePoint2d& a, const AcGePoint2d& b, bool ray, const Box& box,
              AcGePoint2d& from, AcGePoint2d& to);

// An ellipse arc c + u cos t + v sin t, t from 0 to sweep (either sign): the parameter
// intervals (ascending within the sweep's direction) whose points lie in the box.
std::vector<std::pair<double, double>> ellipseIntervals(const AcGePoint2d& c, const AcGeVector2d& u,
                                                        const AcGeVector2d& v, double sweep,
                                                        const Box& box);

} // namespace qorrender
