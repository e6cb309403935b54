// Rendering a whole drawing: the extents of model space, then every entity through its own
// worldDraw, with the progress meter running.
#include "ed/meterscope.h"
#include "dbsymtb.h"
#include "girecorder.h"
#include "girender.h"
#include "renderbounds.h"
#include "renderstyle.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// An entity open for read, closed when the scope ends however it ends.
class ReadEntity {
public:
    explicit ReadEntity(AcDbObjectId id) {
        if (acdbOpenObject(mEntity, id, AcDb::kForRead) != Acad::eOk) mEntity = nullptr;
    }
    ~ReadEntity() {
        if (mEntity) mEntity->close();
    }
    ReadEntity(const ReadEntity&) = delete;
    ReadEntity& operator=(const ReadEntity&) = delete;
    AcDbEntity* get() const { return mEntity; }

private:
    AcDbEntity* mEntity = nullptr;
};

std::vector<AcDbObjectId> modelSpace(AcDbDatabase* db) {
    AcDbBlockTableRecord* ms = nullptr;
    if (acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead) != Acad::eOk) return {};
    std::vector<AcDbObjectId> ids = ms->entityIds();
    ms->close();
    return ids;
}

bool finiteBox(const AcDbExtents& e) {
    const AcGePoint3d& a = e.minPoint();
    const AcGePoint3d& b = e.maxPoint();
    return e.isValid() && std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(b.x) &&
           std::isfinite(b.y);
}

} // namespace

bool acgiRenderModelSpace(AcDbDatabase* db, const AcGiRenderOptions& options, const ACHAR* path,
                          std::wstring& error, AcGiRenderImage* image) {
    if (!db) {
        error = L"no drawing to render";
        return false;
    }
    const std::vector<AcDbObjectId> ids = modelSpace(db);
    qor::MeterScope meter(L"Rendering", options.hasWindow ? ids.size() : 2 * ids.size());

    // The extents of what is shown (visible entities on layers that are on and thawed): their
    // own, and those of what they draw, which may reach further.
    qorrender::DrawingStyles styles(db);
    AcDbExtents extents;
    bool any = false;
    if (!options.hasWindow) {
        AcGiRecorder recorder;
        recorder.setDatabase(db);
        for (AcDbObjectId id : ids) {
            meter.step();
            ReadEntity ent(id);
            if (!ent.get() || ent.get()->visibility() != AcDb::kVisible ||
                !styles.layer(ent.get()->layerId()).visible)
                continue;
            AcDbExtents own, drawn;
            if (ent.get()->getGeomExtents(own) == Acad::eOk && finiteBox(own)) {
                extents.addExt(own);
                any = true;
            }
            recorder.clear();
            recorder.geometry().draw(ent.get());
            qorrender::addDrawnBounds(recorder, styles, drawn);
            if (finiteBox(drawn)) {
                extents.addExt(drawn);
                any = true;
            }
        }
    }
    const AcGePoint2d emin(extents.minPoint().x, extents.minPoint().y);
    const AcGePoint2d emax(extents.maxPoint().x, extents.maxPoint().y);
    AcGiRenderSetup setup;
    if (!acgiRenderSetupFor(options, any ? &emin : nullptr, any ? &emax : nullptr, setup, error))
        return false;
    setup.path = path ? path : L"";
    setup.database = db;

    AcGiRenderer renderer(setup);
    if (!renderer.isOk()) {
        error = renderer.error();
        return false;
    }
    for (AcDbObjectId id : ids) {
        meter.step();
        ReadEntity ent(id);
        if (ent.get() && ent.get()->visibility() == AcDb::kVisible) renderer.drawTop(ent.get());
    }
    if (image && !renderer.snapshot(*image)) image->reset(0, 0);
    if (!renderer.finish()) {
        error = renderer.error();
        return false;
    }
    return true;
}
