// A command module for the end-to-end tests: double lines made, edited, drawn, exploded and
// exported from scripts. Every command works on the model space of the working database.
//
//   DUBLINE    Width (a number, not negative), then points until Enter. "@dx,dy" is relative
//              to the previous point. The keyword A (Arc) instead of a point asks for the
//              bulge of the segment that starts at the previous point. Prints the handle.
//   DLLIST     Lists every double line.
//   DLDRAW     Draws every double line into a recorder and prints the recording.
//   DLGRIP     Grip index, then an offset "dx,dy": moves that grip of every double line.
//   DLSTRETCH  The same with stretch points.
//   DLMOVE     Displacement "dx,dy".
//   DLSCALE    Base point, then a factor (positive).
//   DLMIRROR   Two points of the mirror line.
//   DLEXPLODE  Replaces every double line by its side curves.
//   DLBLOCK    Block name: a new block that receives every double line's export.
#include "aced.h"
#include "cmdline.h"
#include "dbsymtb.h"
#include "gecurves.h"
#include "girecorder.h"
#include "module/dubline.h"

#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr const ACHAR* kGroup = L"QORTEST";

AcGePoint3d asPoint(const ads_point p) {
    return AcGePoint3d(p[0], p[1], p[2]);
}

std::wstring handleText(const AcDbObject* obj) {
    ACHAR text[17] = L"0";
    obj->handle().getIntoAsciiBuffer(text);
    return text;
}

std::vector<AcDbObjectId> modelSpaceEntities(AcDbDatabase* db) {
    AcDbBlockTableRecord* ms = nullptr;
    if (!db || acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead) != Acad::eOk) return {};
    std::vector<AcDbObjectId> ids = ms->entityIds();
    ms->close();
    return ids;
}

// Calls fn with every double line of model space, opened in the mode; the count it visited.
int forEachDubLine(AcDb::OpenMode mode, const std::function<void(AcdbQorDubLine*)>& fn) {
    AcDbDatabase* db = acdbCurDwg();
    if (!db) {
        acutPrintf(L"\nNo working drawing.");
        return 0;
    }
    int count = 0;
    for (AcDbObjectId id : modelSpaceEntities(db)) {
        AcdbQorDubLine* line = nullptr;
        if (acdbOpenObject(line, id, mode) != Acad::eOk) continue;
        fn(line);
        line->close();
        ++count;
    }
    return count;
}

Acad::ErrorStatus appendToModelSpace(AcDbEntity* ent) {
    AcDbBlockTableRecord* ms = nullptr;
    Acad::ErrorStatus es = acdbOpenObject(ms, acdbCurDwg()->modelSpaceId(), AcDb::kForWrite);
    if (es != Acad::eOk) return es;
    es = ms->appendAcDbEntity(ent);
    ms->close();
    return es;
}

// ---------------------------------------------------------------- making and listing

void dubline() {
    AcDbDatabase* db = acdbCurDwg();
    if (!db) return;
    double width = 0.0;
    acedInitGet(RSG_NONULL | RSG_NONEG, nullptr);
    if (acedGetReal(L"\nWidth: ", &width) != RTNORM) return;

    std::vector<AcGePoint3d> points;
    std::vector<double> bulges;
    for (;;) {
        ads_point previous = {0, 0, 0}, pt;
        if (!points.empty()) {
            previous[0] = points.back().x;
            previous[1] = points.back().y;
            previous[2] = points.back().z;
        }
        int rc = RTNORM;
        if (points.empty()) {
            rc = acedGetPoint(nullptr, L"\nStart point: ", pt);
        } else {
            acedInitGet(0, L"Arc");
            rc = acedGetPoint(previous, L"\nNext point or [Arc]: ", pt);
        }
        if (rc == RTNONE) break;
        if (rc == RTKWORD) {
            double bulge = 0.0;
            if (acedGetReal(L"\nBulge: ", &bulge) != RTNORM) return;
            bulges.back() = bulge;
            continue;
        }
        if (rc != RTNORM) return;
        points.push_back(asPoint(pt));
        bulges.push_back(0.0);
    }
    if (points.size() < 2) {
        acutPrintf(L"\nA double line needs two points; none made.");
        return;
    }
    auto* line = new AcdbQorDubLine();
    line->setDatabaseDefaults(db);
    line->setWidth(width);
    for (size_t i = 0; i < points.size(); ++i)
        line->setVertexAt(static_cast<unsigned int>(i), points[i], bulges[i]);
    if (appendToModelSpace(line) != Acad::eOk) {
        delete line;
        acutPrintf(L"\nThe double line could not be added.");
        return;
    }
    acutPrintf(L"\nDouble line %s", handleText(line).c_str());
    line->close();
}

void dllist() {
    const int n = forEachDubLine(AcDb::kForRead, [](AcdbQorDubLine* line) {
        line->list();
        acutPrintf(L"\n");
    });
    acutPrintf(L"\n%d double lines", n);
}

void dldraw() {
    forEachDubLine(AcDb::kForRead, [](AcdbQorDubLine* line) {
        AcGiRecorder recorder;
        recorder.setDatabase(line->database());
        recorder.geometry().draw(line);
        acutPrintf(L"\nDouble line %s: %d items\n%s", handleText(line).c_str(),
                   static_cast<int>(recorder.items().size()), qorFromUtf8(recorder.dump()).c_str());
    });
}

// ---------------------------------------------------------------- edits

// Asks for a point index and an offset and moves that point of every double line.
template <class Move> void movePoints(const ACHAR* what, Move move) {
    int index = 0;
    ads_point offset;
    acedInitGet(RSG_NONULL | RSG_NONEG, nullptr);
    if (acedGetInt(L"\nIndex: ", &index) != RTNORM) return;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\nOffset (dx,dy): ", offset) != RTNORM) return;
    int moved = 0;
    forEachDubLine(AcDb::kForWrite, [&](AcdbQorDubLine* line) {
        AcDbIntArray indices;
        indices.append(index);
        const int available = move(line, indices, AcGeVector3d(offset[0], offset[1], offset[2]));
        if (available <= index)
            acutPrintf(L"\nDouble line %s has only %d %s points.", handleText(line).c_str(),
                       available, what);
        else
            ++moved;
    });
    acutPrintf(L"\nMoved %s point %d of %d double lines.", what, index, moved);
}

void dlgrip() {
    movePoints(L"grip",
               [](AcdbQorDubLine* line, const AcDbIntArray& indices, const AcGeVector3d& offset) {
                   AcGePoint3dArray grips;
                   AcDbIntArray modes, ids;
                   line->getGripPoints(grips, modes, ids);
                   if (indices[0] < grips.length()) line->moveGripPointsAt(indices, offset);
                   return grips.length();
               });
}

void dlstretch() {
    movePoints(L"stretch",
               [](AcdbQorDubLine* line, const AcDbIntArray& indices, const AcGeVector3d& offset) {
                   AcGePoint3dArray points;
                   line->getStretchPoints(points);
                   if (indices[0] < points.length()) line->moveStretchPointsAt(indices, offset);
                   return points.length();
               });
}

void transformAll(const AcGeMatrix3d& xform, const ACHAR* verb) {
    const int n =
        forEachDubLine(AcDb::kForWrite, [&](AcdbQorDubLine* line) { line->transformBy(xform); });
    acutPrintf(L"\n%s %d double lines.", verb, n);
}

void dlmove() {
    ads_point d;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\nDisplacement (dx,dy): ", d) != RTNORM) return;
    transformAll(AcGeMatrix3d::translation(AcGeVector3d(d[0], d[1], d[2])), L"Moved");
}

void dlscale() {
    ads_point base;
    double factor = 0.0;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\nBase point: ", base) != RTNORM) return;
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, nullptr);
    if (acedGetReal(L"\nScale factor: ", &factor) != RTNORM) return;
    transformAll(AcGeMatrix3d::scaling(factor, asPoint(base)), L"Scaled");
}

void dlmirror() {
    ads_point first, second;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\nFirst point of the mirror line: ", first) != RTNORM) return;
    for (;;) {
        acedInitGet(RSG_NONULL, nullptr);
        if (acedGetPoint(first, L"\nSecond point: ", second) != RTNORM) return;
        const AcGeVector3d along = asPoint(second) - asPoint(first);
        const AcGeVector3d normal = along.crossProduct(AcGeVector3d::kZAxis);
        if (!normal.isZeroLength()) {
            transformAll(AcGeMatrix3d::mirroring(AcGePlane(asPoint(first), normal.normal())),
                         L"Mirrored");
            return;
        }
        acutPrintf(L"\nThe two points must differ in plan.");
    }
}

// ---------------------------------------------------------------- explode and export

void dlexplode() {
    AcDbDatabase* db = acdbCurDwg();
    if (!db) return;
    int lines = 0, made = 0;
    for (AcDbObjectId id : modelSpaceEntities(db)) {
        AcdbQorDubLine* line = nullptr;
        if (acdbOpenObject(line, id, AcDb::kForWrite) != Acad::eOk) continue;
        AcDbVoidPtrArray pieces;
        if (line->explode(pieces) == Acad::eOk) {
            for (void* p : pieces) {
                auto* ent = static_cast<AcDbEntity*>(p);
                if (appendToModelSpace(ent) == Acad::eOk) {
                    ent->close();
                    ++made;
                } else {
                    delete ent;
                }
            }
            line->erase();
            ++lines;
        }
        line->close();
    }
    acutPrintf(L"\nExploded %d double lines into %d entities.", lines, made);
}

void dlblock() {
    AcDbDatabase* db = acdbCurDwg();
    if (!db) return;
    ACHAR name[256];
    if (acedGetString(0, L"\nBlock name: ", name, 256) != RTNORM || !*name) return;
    AcDbBlockTable* table = nullptr;
    if (db->getBlockTable(table, AcDb::kForWrite) != Acad::eOk) return;
    if (table->has(name)) {
        table->close();
        acutPrintf(L"\nBlock %s already exists.", name);
        return;
    }
    auto* block = new AcDbBlockTableRecord();
    if (block->setName(name) != Acad::eOk || table->add(block) != Acad::eOk) {
        table->close();
        delete block;
        acutPrintf(L"\n%s cannot name a block.", name);
        return;
    }
    table->close();
    const int exported =
        forEachDubLine(AcDb::kForRead, [&](AcdbQorDubLine* line) { line->M_OutPlotFile(block); });
    acutPrintf(L"\nBlock %s: %d double lines, %d entities.", name, exported,
               static_cast<int>(block->entityIds().size()));
    block->close();
}

struct CommandRow {
    const ACHAR* name;
    AcRxFunctionPtr function;
};

constexpr CommandRow kCommands[] = {
    {L"DUBLINE", dubline}, {L"DLLIST", dllist},       {L"DLDRAW", dldraw},
    {L"DLGRIP", dlgrip},   {L"DLSTRETCH", dlstretch}, {L"DLMOVE", dlmove},
    {L"DLSCALE", dlscale}, {L"DLMIRROR", dlmirror},   {L"DLEXPLODE", dlexplode},
    {L"DLBLOCK", dlblock},
};

} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
    switch (msg) {
    case AcRx::kInitAppMsg:
        acrxUnlockApplication(pkt);
        acrxRegisterAppMDIAware(pkt);
        // The double line's class comes from the object module, which must be loaded first.
        if (!acrxServiceIsRegistered(L"QOROBJ_DBXSERVICE")) {
            acutPrintf(L"\nThe test commands need the object module; none registered.");
            return AcRx::kRetError;
        }
        for (const CommandRow& row : kCommands)
            acedRegCmds->addCommand(kGroup, row.name, row.name, ACRX_CMD_MODAL, row.function);
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
