// The exported Voronoi function: prepares the diagram and hands it to the edge or cell form.
#include "toolkit/voronoi.h"
#include "toolkit/voronoidiagram.h"

int M_GetVoronoi(int mode, const AcArray<AcGePoint3d>& pts, AcArray<AcGePoint3d>& out,
                 AcArray<int>& counts) {
    qor::voronoi::Diagram d;
    // The sites are copied before out is cleared: a caller may pass one array as both.
    const bool built = (mode == 0 || mode == 1) && qor::voronoi::buildDiagram(pts, d);
    out.removeAll();
    if (mode == 1) counts.removeAll();
    if (!built) return 0;
    if (mode == 0)
        qor::voronoi::appendEdges(d, out);
    else
        qor::voronoi::appendCells(d, out, counts);
    return out.isEmpty() ? 0 : 1;
}
