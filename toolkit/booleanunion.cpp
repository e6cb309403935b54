// The union of drawing outlines: their points, where they cross one another, and the extra
// points along their sides, through the union by triangulation.
#include "toolkit/booleanunion.h"

#include "dbents.h"
#include "dbmain.h"
#include "toolkit/curves.h"

#include <vector>

namespace {

// The polylines opened for the union, closed again however the union ends.
struct OpenPolylines {
    std::vector<AcDbPolyline*> items;
    ~OpenPolylines() {
        for (AcDbPolyline* pl : items)
            pl->close();
    }
};

} // namespace

int M_PolygonUnion(AcArray<AcDbObjectId> ids, AcArray<AcGePoint2d>& pts, AcArray<int>& ranges) {
    pts.removeAll();
    ranges.removeAll();
    OpenPolylines open;
    AcArray<AcGePoint2d> points;
    AcArray<int> loops;
    for (const AcDbObjectId& id : ids) {
        AcDbPolyline* pl = nullptr;
        if (acdbOpenObject(pl, id, AcDb::kForRead) != Acad::eOk || !pl) continue;
        open.items.push_back(pl);
        AcArray<AcGePoint2d> outline;
        if (!M_GetArcPlineVertex(pl, 1.0, outline)) continue;
        loops.append(points.length());
        points.append(outline);
        loops.append(points.length());
    }
    // Where outlines cross, both must have a point for the triangulation to join them there.
    for (size_t i = 0; i < open.items.size(); ++i)
        for (size_t j = i + 1; j < open.items.size(); ++j) {
            AcGePoint3dArray crossings;
            open.items[i]->intersectWith(open.items[j], AcDb::kOnBothOperands, crossings);
            for (const AcGePoint3d& p : crossings)
                points.append(p.convert2d());
        }
    AcArray<AcGePoint3d> extra;
    M_GetInterPolygonPt(points, loops, extra);
    for (const AcGePoint3d& p : extra)
        points.append(p.convert2d());
    return M_PolygonTriangle(points, loops, pts, ranges);
}
