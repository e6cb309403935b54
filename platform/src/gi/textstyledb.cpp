// Drawing text styles from the text style records of a database.
#include "dbsymtb.h"
#include "gi.h"

Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& styleId) {
    AcDbTextStyleTableRecord* rec = nullptr;
    const Acad::ErrorStatus es = acdbOpenObject(rec, styleId, AcDb::kForRead);
    if (es != Acad::eOk) return es;
    style.setFileName(rec->fileName());
    style.setBigFontFileName(rec->bigFontFileName());
    style.setTextSize(rec->textSize());
    style.setXScale(rec->xScale());
    style.setObliquingAngle(rec->obliquingAngle());
    style.setStyleName(rec->name());
    ACHAR* typeface = nullptr;
    bool bold = false, italic = false;
    int charset = 0, pitchAndFamily = 0;
    if (rec->font(typeface, bold, italic, charset, pitchAndFamily) == Acad::eOk)
        style.setFont(typeface, bold, italic, charset, pitchAndFamily);
    delete[] typeface;
    rec->close();
    return Acad::eOk;
}
