// What every object class shares: filing primitives, the regen-type rule, explode and export
// output, proxy graphics and the listing layout. Free functions, so that no class derives
// from another class of the module.
#pragma once

#include "acarray.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "gi.h"
#include "winstr.h"

// ---------------------------------------------------------------- filing primitives

void M_WriteStr(AcDbDwgFiler* filer, CString s);
void M_ReadStr(AcDbDwgFiler* filer, CString& s);
// An id whose object is effectively erased is written as a null id.
void M_WriteHardId(AcDbDwgFiler* filer, AcDbHardPointerId id);

// Reads a version tag; a tag newer than the class knows asks for a proxy (301).
Acad::ErrorStatus qorReadVersion(AcDbDwgFiler* filer, Adesk::UInt16 highest,
                                 Adesk::UInt16& version);

// The DXF subclass marker (100, the class name) and version (70): most classes write the
// marker first, some the version first, and drawings already hold both orders.
enum class QorDxfOrder { kMarkerFirst, kVersionFirst };
void qorDxfOutHeader(AcDbDxfFiler* filer, const ACHAR* className, Adesk::UInt16 version,
                     QorDxfOrder order = QorDxfOrder::kMarkerFirst);
// Finds the marker and reads the version. eOk with proceed true when the class's own groups
// follow; eOk with proceed false when they do not (no marker, or no version group, which is
// pushed back); 301 for a version newer than current; otherwise the filer's status.
Acad::ErrorStatus qorDxfInHeader(AcDbDxfFiler* filer, const ACHAR* className, Adesk::UInt16 current,
                                 bool& proceed);

// ---------------------------------------------------------------- explode and export

// Null ent: 0. Null btr: ent goes to ents (1). Otherwise ent is appended to btr and closed (1),
// or deleted when the block refuses it (0).
int M_ExplodeOut(AcDbEntity* ent, AcArray<void*>& ents, void* btr);

// The regen-type rule: nothing while the regeneration is being aborted; draw in standard
// display, for explode and for proxy graphics; nothing (false) for hide/shade and render.
template <class DrawFn> Adesk::Boolean qorWorldDrawByRegenType(AcGiWorldDraw* wd, DrawFn draw) {
    if (wd->regenAbort()) return Adesk::kTrue;
    switch (wd->regenType()) {
    case kAcGiStandardDisplay:
    case kAcGiForExplode:
    case kAcGiSaveWorldDrawForProxy:
        draw();
        return Adesk::kTrue;
    case kAcGiHideOrShadeCommand:
    case kAcGiRenderCommand:
        return Adesk::kFalse;
    default:
        return Adesk::kTrue;
    }
}

// Proxy graphics: save type 1 never fills, 2 always fills, then the object draws itself.
void qorSaveAsProxyGraphics(AcDbEntity* self, AcGiWorldDraw* mode, AcDb::SaveType saveType);

// Export to a block: draw in append mode, delete whatever is left in the array; always 1.
template <class Object> int qorOutPlotFile(const Object* self, AcDbBlockTableRecord* btr) {
    self->assertReadEnabled();
    AcArray<void*> ents;
    self->M_DrawQorEnt(nullptr, ents, btr);
    for (void* p : ents)
        delete static_cast<AcDbEntity*>(p);
    return 1;
}

// ---------------------------------------------------------------- listing

// Two label/value pairs on one line: "%10s:  %s" columns, the left one cut or padded to 40.
void M_PrintList(CString label1, CString value1, CString label2, CString value2);
// Appends the label, then the value.
void M_AddArray(CString label, CString value, CStringArray& pairs);
// Prints collected pairs two to a line (a lone last pair alone).
void M_PrintPairs(const CStringArray& pairs);
// The 15-wide form: "%15s:  %s" columns, the left one cut or padded to 30.
void M_PrintList15(CString label1, CString value1, CString label2, CString value2);
