// The platform's own run-time classes, present in the class dictionary from the start.
#include "dbdict.h"
#include "dbents.h"
#include "dbproxy.h"
#include "dbsymtb.h"
#include "rx/rxinternal.h"

void acdbRegisterPlatformClasses() {
    for (AcRxClass* c : {
             AcGiDrawable::desc(),
             AcDbObject::desc(),
             AcDbEntity::desc(),
             AcDbDatabase::desc(),
             AcDbSymbolTable::desc(),
             AcDbSymbolTableRecord::desc(),
             AcDbBlockTable::desc(),
             AcDbBlockTableRecord::desc(),
             AcDbLayerTable::desc(),
             AcDbLayerTableRecord::desc(),
             AcDbLinetypeTable::desc(),
             AcDbLinetypeTableRecord::desc(),
             AcDbTextStyleTable::desc(),
             AcDbTextStyleTableRecord::desc(),
             AcDbRegAppTable::desc(),
             AcDbRegAppTableRecord::desc(),
             AcDbDictionary::desc(),
             AcDbXrecord::desc(),
             AcDbProxyObject::desc(),
             AcDbProxyEntity::desc(),
             AcDbCurve::desc(),
             AcDbLine::desc(),
             AcDbArc::desc(),
             AcDbCircle::desc(),
             AcDbPolyline::desc(),
             AcDb2dPolyline::desc(),
             AcDb3dPolyline::desc(),
             AcDbVertex::desc(),
             AcDb2dVertex::desc(),
             AcDb3dPolylineVertex::desc(),
             AcDbEllipse::desc(),
             AcDbSpline::desc(),
             AcDbHatch::desc(),
             AcDbText::desc(),
             AcDbBlockReference::desc(),
             AcDbObjectIterator::desc(),
         })
        acrxAddPlatformClass(c);
}
