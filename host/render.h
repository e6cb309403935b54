// `qor render FILE.qdb -o OUT.png|OUT.svg|OUT.pdf [--window x1,y1,x2,y2] [--width N]
// [--paper a4[,landscape]] [--background white|black]`: draws the model space of a drawing
// into a picture, every entity through its own worldDraw.
#pragma once

#include "host/drawings.h"

#include <CLI/CLI.hpp>

void addRenderCommand(CLI::App& app, QorAction& action);
