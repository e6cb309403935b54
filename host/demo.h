// `qor demo OUTDIR`: builds the demonstration site and shows everything the host can do with it.
#pragma once

#include "host/demowindow.h"
#include "host/drawings.h"

#include <CLI/CLI.hpp>

void addDemoCommand(CLI::App& app, QorAction& action);
