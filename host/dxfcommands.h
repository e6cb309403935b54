// `qor dxf FILE.qdb -o OUT.dxf [--explode]` writes a drawing as DXF for other programs;
// `qor import IN.dxf -o OUT.qdb` reads a DXF file into a new drawing.
#pragma once

#include "host/drawings.h"

#include <CLI/CLI.hpp>

void addDxfCommands(CLI::App& app, QorAction& action);
