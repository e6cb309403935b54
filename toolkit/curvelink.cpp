// Curves joined into one outline: each cut where it meets its neighbours.
#include "dbsymtb.h"
#include "toolkit/curves.h"
#include "toolkit/curvesinternal.h"
#include "toolkit/geometry.h"

#include <memory>
#include <vector>

namespace qor::curves {

bool appendToBlock(AcDbObjectId blockId, AcDbEntity* ent, AcDbObjectId& id) {
    if (!ent) return false;
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, blockId, AcDb::kForWrite) != Acad::eOk || !block) return false;
    const bool ok = block->appendAcDbEntity(id, ent) == Acad::eOk;
    block->close();
    if (ok) ent->close();
    return ok;
}

} // namespace qor::curves

using namespace qor::curves;

namespace {

// Curves opened for read by id, each once however often it is asked for, closed together.
class OpenCurves {
public:
    ~OpenCurves() {
        for (auto& [id, c] : mOpen)
            c->close();
    }
    AcDbCurve* get(AcDbObjectId id) {
        for (auto& [known, c] : mOpen)
            if (known == id) return c;
        AcDbCurve* c = nullptr;
        if (acdbOpenObject(c, id, AcDb::kForRead) != Acad::eOk || !c) return nullptr;
        mOpen.emplace_back(id, c);
        return c;
    }

private:
    std::vector<std::pair<AcDbObjectId, AcDbCurve*>> mOpen;
};

// Where the current curve meets a neighbour: their first crossing, or else the nearest of the
// current curve's ends to the neighbour and of its points nearest the neighbour's ends.
bool joint(const AcDbCurve& cur, const AcDbCurve& nb, AcGePoint3d& out) {
    AcArray<AcGePoint3d> crossings;
    if (M_IntersectWith(&cur, &nb, AcDb::kOnBothOperands, crossings) && !crossings.isEmpty()) {
        out = crossings.first();
        out.z = 0.0;
        return true;
    }
    bool found = false;
    double best = 0.0;
    const auto consider = [&](const AcGePoint3d& p, double d) {
        if (!found || d < best) {
            out = p;
            best = d;
            found = true;
        }
    };
    AcGePoint3d s, e, on;
    const bool haveS = cur.getStartPoint(s) == Acad::eOk;
    const bool haveE = cur.getEndPoint(e) == Acad::eOk;
    if (haveS && nb.getClosestPointTo(s, on) == Acad::eOk) consider(s, s.distanceTo(on));
    if (haveE && nb.getClosestPointTo(e, on) == Acad::eOk) consider(e, e.distanceTo(on));
    AcGePoint3d ns, ne;
    if (nb.getStartPoint(ns) == Acad::eOk && cur.getClosestPointTo(ns, on) == Acad::eOk)
        consider(on, on.distanceTo(ns));
    if (nb.getEndPoint(ne) == Acad::eOk && cur.getClosestPointTo(ne, on) == Acad::eOk)
        consider(on, on.distanceTo(ne));
    out.z = 0.0;
    return found;
}

std::unique_ptr<AcDbPolyline> plineOf(const AcArray<AcGePoint2d>& pts,
                                      const AcArray<double>& bulges) {
    auto pl = std::make_unique<AcDbPolyline>();
    for (int i = 0; i < pts.length(); ++i)
        pl->addVertexAt(static_cast<unsigned>(i), pts[i], bulges[i]);
    return pl;
}

} // namespace

int M_GetLinkPlinePts(AcArray<AcGePoint2d>& pts, AcArray<double>& bulges) {
    if (pts.length() < 2 || pts.length() != bulges.length()) return 0;
    AcArray<AcGePoint2d> joined = pts;
    AcArray<double> joinedBulges = bulges;
    // Where one piece ends the next begins: the end vertex goes, the next one keeps its bulge.
    M_DelPlineMultPts(joined, joinedBulges);
    if (joined.length() < 2) return 0;
    if (joined.last().distanceTo(joined.first()) > 0.001) {
        joined.append(joined.first());
        joinedBulges.append(0.0);
    }
    pts = joined;
    bulges = joinedBulges;
    return 1;
}

int M_OpenMyObj(AcDbObjectId prev, AcDbObjectId cur, AcDbObjectId next, AcArray<AcGePoint2d>& pts,
                AcArray<double>& bulges, double& len, int mode) {
    len = 0.0;
    OpenCurves open;
    AcDbCurve* c = open.get(cur);
    AcDbCurve* p = open.get(prev);
    AcDbCurve* n = open.get(next);
    if (!c || !p || !n) return 0;
    AcGePoint3d fromPrev, toNext;
    if (!joint(*c, *p, fromPrev) || !joint(*c, *n, toNext)) return 0;

    AcArray<AcGePoint2d> verts;
    AcArray<double> vertBulges;
    if (!M_GetCurve2dPts(c, verts, vertBulges) || verts.length() < 2) return 0;
    const auto pl = plineOf(verts, vertBulges);
    AcGePoint3d a, b;
    if (pl->getClosestPointTo(fromPrev, a) != Acad::eOk ||
        pl->getClosestPointTo(toNext, b) != Acad::eOk)
        return 0;
    AcArray<AcGePoint2d> part;
    AcArray<double> partBulges;
    if (!M_AddPtArrayByPline(pl.get(), a, b, part, partBulges)) return 0;
    if (mode == 1) len = runLength(part, partBulges, 0, part.length() - 1);
    pts.append(part);
    bulges.append(partBulges);
    return 1;
}

int M_GetLinkPline(AcArray<AcDbObjectId> ids, int mode, ads_name& name, double& length) {
    const int n = ids.length();
    AcDbDatabase* db = acdbCurDwg();
    if (n == 0 || !db) return 0;
    AcArray<AcGePoint2d> pts;
    AcArray<double> bulges;
    double total = 0.0;
    for (int k = 0; k < n; ++k) {
        double part = 0.0;
        if (M_OpenMyObj(ids[(k + n - 1) % n], ids[k], ids[(k + 1) % n], pts, bulges, part, mode))
            total += part;
    }
    if (!M_GetLinkPlinePts(pts, bulges)) return 0;

    auto pl = plineOf(pts, bulges);
    pl->setDatabaseDefaults(db);
    pl->setElevation(0.0);
    pl->setConstantWidth(0.0);
    pl->setColorIndex(3);
    AcDbObjectId id;
    if (!appendToBlock(db->currentSpaceId(), pl.get(), id)) return 0;
    pl.release();
    acdbGetAdsName(name, id);
    length = total;
    return 1;
}
