#include "module/framework.h"

#include "cmdline.h"

void M_WriteStr(AcDbDwgFiler* filer, CString s) {
    filer->writeString(static_cast<const ACHAR*>(s));
}

void M_ReadStr(AcDbDwgFiler* filer, CString& s) {
    ACHAR* buffer = nullptr;
    filer->readString(&buffer);
    s = buffer ? buffer : L"";
    acdbFree(buffer);
}

void M_WriteHardId(AcDbDwgFiler* filer, AcDbHardPointerId id) {
    filer->writeHardPointerId(id.isEffectivelyErased() ? AcDbHardPointerId() : id);
}

Acad::ErrorStatus qorReadVersion(AcDbDwgFiler* filer, Adesk::UInt16 highest,
                                 Adesk::UInt16& version) {
    version = 0;
    filer->readUInt16(&version);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    return version > highest ? Acad::eMakeMeProxy : Acad::eOk;
}

void qorDxfOutHeader(AcDbDxfFiler* filer, const ACHAR* className, Adesk::UInt16 version,
                     QorDxfOrder order) {
    if (order == QorDxfOrder::kVersionFirst) filer->writeUInt16(AcDb::kDxfInt16, version);
    filer->writeString(AcDb::kDxfSubclass, className);
    if (order == QorDxfOrder::kMarkerFirst) filer->writeUInt16(AcDb::kDxfInt16, version);
}

Acad::ErrorStatus qorDxfInHeader(AcDbDxfFiler* filer, const ACHAR* className, Adesk::UInt16 current,
                                 bool& proceed) {
    proceed = false;
    if (!filer->atSubclassData(className)) return filer->filerStatus();
    resbuf rb{};
    filer->readItem(&rb);
    if (rb.restype != AcDb::kDxfInt16) {
        filer->pushBackItem();
        return filer->filerStatus();
    }
    if (static_cast<Adesk::UInt16>(rb.resval.rint) > current) return Acad::eMakeMeProxy;
    proceed = true;
    return filer->filerStatus();
}

int M_ExplodeOut(AcDbEntity* ent, AcArray<void*>& ents, void* btr) {
    if (!ent) return 0;
    if (!btr) {
        ents.append(ent);
        return 1;
    }
    if (static_cast<AcDbBlockTableRecord*>(btr)->appendAcDbEntity(ent) == Acad::eOk) {
        ent->close();
        return 1;
    }
    delete ent;
    return 0;
}

void qorSaveAsProxyGraphics(AcDbEntity* self, AcGiWorldDraw* mode, AcDb::SaveType saveType) {
    mode->regenType(); // asked, as the platform's own objects do; the answer is not needed
    if (saveType == 1)
        mode->subEntityTraits().setFillType(kAcGiFillNever);
    else if (saveType == 2)
        mode->subEntityTraits().setFillType(kAcGiFillAlways);
    self->worldDraw(mode);
}

namespace {

void printTwoColumns(const wchar_t* leftFormat, const wchar_t* rightFormat,
                     const wchar_t* lineFormat, const CString& label1, const CString& value1,
                     const CString& label2, const CString& value2) {
    CString left, right;
    left.Format(leftFormat, static_cast<const ACHAR*>(label1), static_cast<const ACHAR*>(value1),
                L"                   ");
    if (!label2.IsEmpty())
        right.Format(rightFormat, static_cast<const ACHAR*>(label2),
                     static_cast<const ACHAR*>(value2));
    acutPrintf(lineFormat, static_cast<const ACHAR*>(left), static_cast<const ACHAR*>(right));
}

} // namespace

void M_PrintList(CString label1, CString value1, CString label2, CString value2) {
    printTwoColumns(L"%10s:  %s%s", L"%10s:  %s", L"\n%.40s %s", label1, value1, label2, value2);
}

void M_PrintList15(CString label1, CString value1, CString label2, CString value2) {
    printTwoColumns(L"%15s:  %s%s", L"%15s:  %s", L"\n%.30s %s", label1, value1, label2, value2);
}

void M_AddArray(CString label, CString value, CStringArray& pairs) {
    pairs.Add(label);
    pairs.Add(value);
}

void M_PrintPairs(const CStringArray& pairs) {
    for (int i = 0; i + 1 < pairs.GetSize(); i += 4) {
        const bool right = i + 3 < pairs.GetSize();
        M_PrintList(pairs[i], pairs[i + 1], right ? pairs[i + 2] : CString(),
                    right ? pairs[i + 3] : CString());
    }
}
