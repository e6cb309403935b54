// Sorting point lists and removing near-coincident and consecutive duplicate points.
#include "toolkit/geometry.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double kCoincident = 0.0001;

template <class Point> int delConsecutive(AcArray<Point>& pts, AcArray<double>* bulges) {
    int removed = 0;
    for (int i = 1; i < pts.length();) {
        if (std::hypot(pts[i].x - pts[i - 1].x, pts[i].y - pts[i - 1].y) < kCoincident) {
            pts.removeAt(i - 1);
            if (bulges) bulges->removeAt(i - 1);
            removed = 1;
        } else {
            ++i;
        }
    }
    return removed;
}

} // namespace

void M_SortPts(AcArray<AcGePoint3d>& pts) {
    if (pts.length() <= 2) return;
    std::stable_sort(pts.begin(), pts.end(), [](const AcGePoint3d& a, const AcGePoint3d& b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
}

int M_DelMultPts(int sort, double tol, AcArray<AcGePoint3d>& pts) {
    if (sort == 1) M_SortPts(pts);
    const int n = pts.length();
    std::vector<int> marked;
    for (int i = 0; i < n; ++i) {
        // The walk ends at the first point too far off in x: it expects the list sorted by x.
        for (int j = i + 1; j < n && std::fabs(pts[j].x - pts[i].x) < tol; ++j) {
            if (std::fabs(pts[j].y - pts[i].y) < tol) {
                marked.push_back(i);
                break;
            }
        }
    }
    // Removing the earlier point of each close pair keeps the last of a cluster.
    for (auto it = marked.rbegin(); it != marked.rend(); ++it)
        pts.removeAt(*it);
    return 0;
}

int M_DelMultPts(int sort, AcArray<AcGePoint3d>& pts) {
    return M_DelMultPts(sort, kCoincident, pts);
}

int M_DelMultPts(AcArray<AcGePoint3d>& pts) {
    return M_DelMultPts(1, kCoincident, pts);
}

int M_DelMultPts(int sort, AcArray<AcGePoint2d>& pts) {
    // Cleans a copy only; callers clean 2D lists with the other forms.
    AcArray<AcGePoint3d> copy;
    for (const AcGePoint2d& p : pts)
        copy.append(AcGePoint3d(p.x, p.y, 0.0));
    return M_DelMultPts(sort, kCoincident, copy);
}

int M_DelPlineMultPts(AcArray<AcGePoint3d>& pts) {
    return delConsecutive(pts, nullptr);
}

int M_DelPlineMultPts(AcArray<AcGePoint2d>& pts) {
    return delConsecutive(pts, nullptr);
}

int M_DelPlineMultPts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    if (pts.length() != bulges.length()) return 0;
    return delConsecutive(pts, &bulges);
}
