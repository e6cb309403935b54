// The label point of an outline: the centre methods tried in turn, the start point last.
#include "toolkit/labelcentre.h"
#include "dbents.h"
#include "toolkit/labelcentreinternal.h"

using namespace qor::labels;

namespace {

int startPoint(AcDbCurve* c, AcGePoint2d& pt) {
    AcGePoint3d p;
    if (!c || c->getStartPoint(p) != Acad::eOk) return 0;
    pt = p.convert2d();
    return 1;
}

} // namespace

int M_FindInCircle(AcDbCurve* c, int precision, AcGePoint2d& pt) {
    AcGePoint2d found;
    double radius = 0.0;
    if (M_GetCenPtVoron(c, precision, found, radius) ||
        M_GetCenPtNet(c, precision, found, radius) || chordCentre(c, found)) {
        pt = found;
        return 1;
    }
    return startPoint(c, pt);
}

int M_FindCenPoint(AcDbCurve* c, int precision, AcGePoint2d& pt) {
    AcGePoint2d found;
    double radius = 0.0;
    if (chordCentre(c, found) || M_GetCenPtVoron(c, precision, found, radius) ||
        M_GetCenPtNet(c, precision, found, radius)) {
        pt = found;
        return 1;
    }
    return startPoint(c, pt);
}
