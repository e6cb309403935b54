// `qor reg get KEY VALUE | set KEY VALUE DATA | list [KEY]`: reads and writes the registry
// store from the command line.
#pragma once

#include "host/drawings.h"

#include <CLI/CLI.hpp>

void addRegCommand(CLI::App& app, QorAction& action);
