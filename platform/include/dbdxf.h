// Drawing exchange files (ASCII DXF): a database written out for other programs, and DXF
// files from other programs read into a database.
#pragma once

#include "dbmain.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

struct QorDxfOptions {
    // Writes each entity of a module's class as the plain entities of its explode, so that
    // programs without the module show it.
    bool explode = false;
};

// What a write or a read did besides succeeding or failing.
struct QorDxfReport {
    // Entities written, or read into the database.
    size_t entities = 0;
    // Entities left out, by DXF type (or class name when it has none).
    std::map<std::wstring, int> skipped;
    // Why the call failed; for a read it starts with the file's line.
    std::wstring error;
    // The line of the file at which a read stopped, or 0.
    int errorLine = 0;

    int skippedCount() const;
    // "3DFACE 1, POINT 2", in name order; empty when nothing was left out.
    std::wstring skippedSummary() const;
};

// Writes ASCII DXF of release AC1024 in UTF-8. Entities of classes that cannot be written
// (proxies of classes not loaded) are left out and counted in the report; without a report
// the count goes to standard error.
Acad::ErrorStatus qorWriteDxf(AcDbDatabase* db, const ACHAR* fileName, const QorDxfOptions& options,
                              QorDxfReport* report = nullptr);
// The same into a string instead of a file.
Acad::ErrorStatus qorWriteDxfString(AcDbDatabase* db, std::string& out,
                                    const QorDxfOptions& options, QorDxfReport* report = nullptr);

// Reads an ASCII DXF file into a database made with its default drawing: layers, linetypes,
// text styles, blocks, the plain entities the platform has classes for, and the objects of
// registered classes through their dxfInFields. Entities of other types are skipped and
// counted. A damaged or truncated file fails with eBadDxfSequence (or eInvalidDxfCode) and
// the report names the line; what was read before stays in the database.
Acad::ErrorStatus qorReadDxf(AcDbDatabase* db, const ACHAR* fileName,
                             QorDxfReport* report = nullptr);
// The same from bytes in memory.
Acad::ErrorStatus qorReadDxfBytes(AcDbDatabase* db, std::string_view bytes,
                                  QorDxfReport* report = nullptr);
