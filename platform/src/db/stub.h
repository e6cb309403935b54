// The record behind an object id: one per handle of a database, owned by the database.
#pragma once

#include "dbid.h"

class AcDbObject;

struct AcDbStub {
    AcDbDatabase* database = nullptr;
    Adesk::UInt64 handle = 0;
    AcDbObject* object = nullptr; // null for a handle referenced but not (yet) loaded
    bool erased = false;
};
