// Result-buffer chains in DWG filing, shared by extended data and extended records.
#pragma once

#include "dbfiler.h"

// Writes the item count, then each item's group code and value by its storage kind.
Acad::ErrorStatus acdbWriteRbChain(AcDbDwgFiler* filer, const resbuf* chain);
// Reads a chain written by acdbWriteRbChain; stops at the first filer error, keeping what was read.
Acad::ErrorStatus acdbReadRbChain(AcDbDwgFiler* filer, resbuf*& chain);
