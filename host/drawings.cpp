#include "host/drawings.h"

#include "cmdline.h"
#include "dbsymtb.h"
#include "winstr.h"

#include <cstdio>
#include <vector>

int fail(const std::wstring& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "qor: %s\n", qorToUtf8(message).c_str());
    return 1;
}

std::unique_ptr<AcDbDatabase> openDrawing(const std::string& file, std::wstring& error) {
    auto db = std::make_unique<AcDbDatabase>(false, true);
    if (db->readDwgFile(qorFromUtf8(file).c_str()) != Acad::eOk) {
        error = db->lastError();
        return nullptr;
    }
    return db;
}

int listDrawing(const std::string& file) {
    std::wstring error;
    auto db = openDrawing(file, error);
    if (!db) return fail(error);
    QorWorkingDatabase working(db.get());
    int count = 0;
    for (AcDbObjectId spaceId : {db->modelSpaceId(), db->paperSpaceId()}) {
        AcDbBlockTableRecord* space = nullptr;
        if (acdbOpenObject(space, spaceId, AcDb::kForRead) != Acad::eOk) continue;
        std::vector<AcDbObjectId> ids = space->entityIds();
        space->close();
        for (AcDbObjectId id : ids) {
            AcDbEntity* ent = nullptr;
            if (acdbOpenObject(ent, id, AcDb::kForRead) != Acad::eOk) continue;
            ent->list();
            acutPrintf(L"\n");
            ent->close();
            ++count;
        }
    }
    acutPrintf(L"%d entities\n", count);
    return 0;
}
