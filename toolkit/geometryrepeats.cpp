// Removing repeated vertices and vertices in the middle of straight runs from outlines.
#include "gecurves.h"
#include "toolkit/geometry.h"

namespace {

bool onSegment(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& p) {
    return AcGeLineSeg2d(a, b).isOn(p);
}

bool onSegment(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& p) {
    return AcGeLineSeg3d(a, b).isOn(p);
}

// Equality and the on-segment test use the platform's default tolerance. With bulges, a
// vertex between two arcs or an arc and a line shapes the outline and stays.
template <class Point> void delRepeats(AcArray<Point>& pts, AcArray<double>* bulges) {
    if (pts.length() < 2) return;
    auto straight = [&](int a, int b) {
        return !bulges || ((*bulges)[a] == 0.0 && (*bulges)[b] == 0.0);
    };
    auto removeDuplicate = [&](int i) {
        pts.removeAt(i);
        if (bulges) bulges->removeAt(i - 1);
    };
    auto removeMiddle = [&](int i) {
        pts.removeAt(i);
        if (bulges) bulges->removeAt(i);
    };

    if (!pts.first().isEqualTo(pts.last())) {
        for (int i = 1; i <= pts.length() - 2;) {
            if (pts[i].isEqualTo(pts[i - 1]))
                removeDuplicate(i);
            else if (straight(i - 1, i) && onSegment(pts[i - 1], pts[i + 1], pts[i]))
                removeMiddle(i);
            else
                ++i;
        }
        return;
    }

    for (int i = 1; i <= pts.length() - 1;) {
        if (pts[i].isEqualTo(pts[i - 1])) {
            removeDuplicate(i);
            continue;
        }
        const bool closing = i == pts.length() - 1;
        // The closing vertex is the first one again: its neighbours are i-1 and 1.
        if (straight(i - 1, closing ? 0 : i) &&
            onSegment(pts[i - 1], pts[closing ? 1 : i + 1], pts[i])) {
            if (!closing) {
                removeMiddle(i);
                continue;
            }
            // Start the outline at the vertex before instead, so that it stays closed.
            pts.removeLast();
            pts[0] = pts.last();
            if (bulges) {
                bulges->removeLast();
                (*bulges)[0] = bulges->last();
            }
            return;
        }
        ++i;
    }
}

} // namespace

void M_DelPLineRepeatPts(AcArray<AcGePoint2d>& pts) {
    delRepeats(pts, nullptr);
}

void M_DelPLineRepeatPts(AcArray<AcGePoint3d>& pts) {
    delRepeats(pts, nullptr);
}

void M_DelPLineRepeatPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    if (pts.length() != bulges.length()) return;
    delRepeats(pts, &bulges);
}
