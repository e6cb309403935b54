// The demonstration site: a command module that lays out a small planning site with the
// objects that exist so far. Each object family adds its part of the site here.
//
//   QORDEMO   Builds the site in the model space of the working drawing.
#include "aced.h"
#include "cmdline.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "module/dubline.h"

#include <cmath>
#include <initializer_list>

namespace {

constexpr const ACHAR* kGroup = L"QORDEMO";

struct Vertex {
    double x, y, bulge;
};

// The layer of that name, made with the colour when the drawing lacks it.
AcDbObjectId layer(AcDbDatabase* db, const ACHAR* name, Adesk::UInt16 colorIndex) {
    AcDbLayerTable* table = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(table, db->layerTableId(), AcDb::kForWrite) != Acad::eOk) return id;
    if (table->getAt(name, id) != Acad::eOk) {
        auto* rec = new AcDbLayerTableRecord;
        rec->setName(name);
        AcCmColor color;
        color.setColorIndex(colorIndex);
        rec->setColor(color);
        if (table->add(id, rec) == Acad::eOk)
            rec->close();
        else
            delete rec;
    }
    table->close();
    return id;
}

class SiteBuilder {
public:
    explicit SiteBuilder(AcDbDatabase* db) : mDb(db) {
        acdbOpenObject(mSpace, db->modelSpaceId(), AcDb::kForWrite);
    }
    ~SiteBuilder() {
        if (mSpace) mSpace->close();
    }
    SiteBuilder(const SiteBuilder&) = delete;
    SiteBuilder& operator=(const SiteBuilder&) = delete;

    bool ok() const { return mSpace != nullptr; }
    int count() const { return mCount; }

    void add(AcDbEntity* ent, AcDbObjectId onLayer) {
        ent->setDatabaseDefaults(mDb);
        ent->setLayer(onLayer);
        if (mSpace->appendAcDbEntity(ent) == Acad::eOk) {
            ent->close();
            ++mCount;
        } else {
            delete ent;
        }
    }

    void dubLine(double width, std::initializer_list<Vertex> verts, AcDbObjectId onLayer) {
        auto* d = new AcdbQorDubLine;
        d->setWidth(width);
        unsigned i = 0;
        for (const Vertex& v : verts)
            d->setVertexAt(i++, AcGePoint3d(v.x, v.y, 0), v.bulge);
        add(d, onLayer);
    }

    void outline(std::initializer_list<Vertex> verts, AcDbObjectId onLayer) {
        auto* pl = new AcDbPolyline;
        unsigned i = 0;
        for (const Vertex& v : verts)
            pl->addVertexAt(i++, AcGePoint2d(v.x, v.y), v.bulge);
        pl->setClosed(true);
        add(pl, onLayer);
    }

    void text(double x, double y, double height, const ACHAR* s, AcDbObjectId onLayer) {
        auto* t = new AcDbText(AcGePoint3d(x, y, 0), s, AcDbObjectId(), height);
        add(t, onLayer);
    }

private:
    AcDbDatabase* mDb;
    AcDbBlockTableRecord* mSpace = nullptr;
    int mCount = 0;
};

void buildSite() {
    AcDbDatabase* db = acdbCurDwg();
    if (!db) {
        acutPrintf(L"\nNo working drawing.");
        return;
    }
    const AcDbObjectId redLine = layer(db, L"用地红线", 1);
    const AcDbObjectId roads = layer(db, L"道路", 8);
    const AcDbObjectId water = layer(db, L"水系", 5);
    const AcDbObjectId green = layer(db, L"绿化", 3);
    const AcDbObjectId labels = layer(db, L"文字", 7);
    const AcDbObjectId parcels = layer(db, L"地块", 30);

    SiteBuilder site(db);
    if (!site.ok()) return;
    // The site boundary, and two parcels either side of the spine road.
    site.outline({{0, 0, 0}, {240, 0, 0}, {240, 150, 0}, {0, 150, 0}}, redLine);
    site.outline({{12, 12, 0}, {108, 12, 0}, {108, 62, 0}, {12, 62, 0}}, parcels);
    site.outline({{132, 12, 0}, {228, 12, 0}, {228, 62, 0.2}, {132, 62, 0}}, parcels);

    // Roads: the spine along the site, a cross street, and a curved lane to the water.
    site.dubLine(16.0, {{-20, 75, 0}, {260, 75, 0}}, roads);
    site.dubLine(12.0, {{120, -20, 0}, {120, 75, 0}}, roads);
    site.dubLine(7.0, {{60, 75, 0}, {60, 100, 0.35}, {95, 128, 0}, {150, 128, 0}}, roads);

    // A winding channel near the north edge.
    site.dubLine(
        5.0, {{-10, 112, 0}, {40, 118, 0.25}, {110, 108, -0.25}, {180, 116, 0.2}, {250, 110, 0}},
        water);

    // Street trees along the spine, on both verges.
    for (double x = 10; x <= 230; x += 20) {
        site.add(new AcDbCircle(AcGePoint3d(x, 64, 0), AcGeVector3d::kZAxis, 2.5), green);
        site.add(new AcDbCircle(AcGePoint3d(x, 86, 0), AcGeVector3d::kZAxis, 2.5), green);
    }

    site.text(20, 36, 6.0, L"居住用地 R2", labels);
    site.text(140, 36, 6.0, L"商业用地 B1", labels);
    site.text(180, 78, 4.0, L"规划主干路", labels);
    site.text(170, 120, 4.0, L"景观水系", labels);
    acutPrintf(L"\nThe demonstration site: %d entities.", site.count());
}

} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
    switch (msg) {
    case AcRx::kInitAppMsg:
        acrxUnlockApplication(pkt);
        acrxRegisterAppMDIAware(pkt);
        // The site's objects come from the object module, which must be loaded first.
        if (!acrxServiceIsRegistered(L"QOROBJ_DBXSERVICE")) {
            acutPrintf(L"\nThe demonstration needs the object module; none registered.");
            return AcRx::kRetError;
        }
        acedRegCmds->addCommand(kGroup, L"QORDEMO", L"QORDEMO", ACRX_CMD_MODAL, buildSite);
        break;
    case AcRx::kUnloadAppMsg:
        acedRegCmds->removeGroup(kGroup);
        break;
    default:
        break;
    }
    return AcRx::kRetOK;
}

extern "C" unsigned int acrxGetApiVersion() {
    return kQorApiVersion;
}
