// Heights on a stored triangle list.
#include "toolkit/tin.h"
#include "toolkit/tinheight.h"

using qor::tin::classify;
using qor::tin::heightInTriangle;
using qor::tin::sectorHeight;

int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h,
                 AcArray<AcGePoint3d>& tri, int& index) {
    if (tris.length() < 3) return 0;
    // A triangle holds p when its rules give p a height: a point the angle-sum test puts on
    // the boundary but near no edge goes on to the next triangle.
    for (int t = 0; t + 2 < tris.length(); t += 3) {
        const AcGePoint3d &p1 = tris[t], &p2 = tris[t + 1], &p3 = tris[t + 2];
        double v = 0.0;
        if (heightInTriangle(classify(p1, p2, p3, p), p1, p2, p3, p, v)) {
            tri.append(p1);
            tri.append(p2);
            tri.append(p3);
            index = t / 3;
            h = v;
            return 1;
        }
    }
    index = -1;
    sectorHeight(tris, p, h);
    return 1;
}

int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h,
                 AcArray<AcGePoint3d>& tri) {
    int index = -1;
    return M_CalHgtByPt(tris, p, h, tri, index);
}

int M_CalHgtByPt(const AcArray<AcGePoint3d>& tris, AcGePoint3d p, double& h) {
    AcArray<AcGePoint3d> tri;
    int index = -1;
    return M_CalHgtByPt(tris, p, h, tri, index);
}
