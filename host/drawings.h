// What the host's subcommands share: error messages, opening and listing drawings, and the
// working database.
#pragma once

#include "dbmain.h"

#include <functional>
#include <memory>
#include <string>

// A subcommand's work, set while the command line is parsed and run once the object module
// is loaded; its result is the exit code.
using QorAction = std::function<int()>;

// Prints "qor: message" on standard error; 1, the exit code of a failure.
int fail(const std::wstring& message);

// The drawing, or null with the reason in error.
std::unique_ptr<AcDbDatabase> openDrawing(const std::string& file, std::wstring& error);

// Prints the listing of every entity of model and paper space, and their count.
int listDrawing(const std::string& file);
