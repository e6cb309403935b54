// Pieces the label-centre methods share: the outline, distances to it, the best point so far,
// and the chord method.
#pragma once

#include "acarray.h"
#include "gebasic.h"

class AcDbCurve;

namespace qor::labels {

// Sampling and grid divisors for a precision: 1 medium, 2 fine, anything else coarse.
double sampleDivisor(int precision);
double gridDivisor(int precision);

// The curve's outline (M_GetCurvePts) in the XY plane; false, pts untouched, when it has none.
bool outlinePoints(AcDbCurve* c, AcArray<AcGePoint2d>& pts);

// The smallest distance from p to the segments joining consecutive points (to the point
// itself when there is one); a very large number for none.
double distanceToSegments(const AcGePoint2d& p, const AcArray<AcGePoint2d>& pts);

// The point inside or on the outline farthest from its segments among those offered; the
// first of equally distant points is kept.
class Farthest {
public:
    explicit Farthest(const AcArray<AcGePoint2d>& outline) : mOutline(outline) {}
    void offer(const AcGePoint2d& p);
    bool found() const { return mClearance >= 0.0; }
    const AcGePoint2d& point() const { return mPoint; }
    double clearance() const { return mClearance; }

private:
    const AcArray<AcGePoint2d>& mOutline;
    AcGePoint2d mPoint;
    double mClearance = -1.0;
};

// The chord method: through the mean of the outline points, a line every 10 degrees; of the
// chords it cuts from the curve (exactly two crossings), the midpoint not outside the outline
// and farthest from the curve, the earlier direction on ties. False when no midpoint
// qualifies, with pt set to the mean; false with pt untouched for a curve without outline.
bool chordCentre(AcDbCurve* c, AcGePoint2d& pt);

} // namespace qor::labels
