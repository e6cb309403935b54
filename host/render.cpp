// qor render: the options checked, the drawing opened, the picture drawn.
#include "host/render.h"

#include "girender.h"
#include "winstr.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

struct RenderArgs {
    std::string file, output, window, width, paper, background;
};

int failWith(const std::string& message) {
    return fail(qorFromUtf8(message));
}

std::string lowered(std::string s) {
    for (char& c : s)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return s;
}

bool endsWith(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// A finite number and nothing after it but blanks.
bool parseNumber(const std::string& text, double& value) {
    const char* begin = text.c_str();
    char* end = nullptr;
    value = std::strtod(begin, &end);
    while (end && (*end == ' ' || *end == '\t'))
        ++end;
    return end != begin && end && *end == '\0' && std::isfinite(value);
}

bool parseWindow(const std::string& text, AcGiRenderOptions& options) {
    std::vector<double> values;
    size_t start = 0;
    for (;;) {
        const size_t comma = text.find(',', start);
        double v = 0.0;
        if (!parseNumber(text.substr(start, comma - start), v)) return false;
        values.push_back(v);
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    if (values.size() != 4) return false;
    options.hasWindow = true;
    options.windowMin.set(std::min(values[0], values[2]), std::min(values[1], values[3]));
    options.windowMax.set(std::max(values[0], values[2]), std::max(values[1], values[3]));
    return true;
}

int render(const RenderArgs& args) {
    AcGiRenderOptions options;
    const std::string ext = lowered(args.output);
    if (endsWith(ext, ".png"))
        options.format = AcGiRenderFormat::kPng;
    else if (endsWith(ext, ".svg"))
        options.format = AcGiRenderFormat::kSvg;
    else if (endsWith(ext, ".pdf"))
        options.format = AcGiRenderFormat::kPdf;
    else
        return failWith("cannot tell the picture format of " + args.output +
                        ": name it .png, .svg or .pdf");
    if (!args.window.empty()) {
        if (!parseWindow(args.window, options))
            return failWith("--window wants four numbers x1,y1,x2,y2, not \"" + args.window + "\"");
        if (options.windowMin.x == options.windowMax.x ||
            options.windowMin.y == options.windowMax.y)
            return failWith("the window " + args.window + " has no area");
    }
    if (!args.width.empty()) {
        double w = 0.0;
        const int most =
            options.format == AcGiRenderFormat::kPng ? kAcGiRenderMaxPixels : kAcGiRenderMaxPoints;
        if (!parseNumber(args.width, w) || w != std::floor(w) || w < 1 || w > most)
            return failWith("--width wants a whole number from 1 to " + std::to_string(most) +
                            ", not \"" + args.width + "\"");
        options.width = static_cast<int>(w);
    }
    if (!args.paper.empty() && !acgiPaperSize(qorFromUtf8(args.paper).c_str(), options.paperWidthMm,
                                              options.paperHeightMm))
        return failWith("unknown paper \"" + args.paper +
                        "\": a0 to a6, letter, legal or tabloid, with \",landscape\" to turn it");
    const std::string background = lowered(args.background);
    if (background == "black")
        options.blackBackground = true;
    else if (!background.empty() && background != "white")
        return failWith("--background is white or black, not \"" + args.background + "\"");

    std::wstring error;
    auto db = openDrawing(args.file, error);
    if (!db) return fail(error);
    QorWorkingDatabase working(db.get());
    if (!acgiRenderModelSpace(db.get(), options, qorFromUtf8(args.output).c_str(), error))
        return fail(error);
    return 0;
}

} // namespace

void addRenderCommand(CLI::App& app, QorAction& action) {
    auto args = std::make_shared<RenderArgs>();
    auto* sub = app.add_subcommand(
        "render", "draw the model space of a drawing into a PNG, SVG or PDF picture");
    sub->add_option("file", args->file, "drawing file (.qdb)")->required();
    sub->add_option("-o,--output", args->output, "picture to write: a .png, .svg or .pdf file")
        ->required();
    sub->add_option("--window", args->window,
                    "x1,y1,x2,y2: the part of the drawing to show (default: all of it)");
    sub->add_option("--width", args->width,
                    "pixels across a PNG (default 1600), points across an SVG or PDF page "
                    "(default 842) when no paper is given");
    sub->add_option("--paper", args->paper,
                    "page of a paper's shape (and, for SVG and PDF, size): a0 to a6, letter, "
                    "legal, tabloid; add \",landscape\" to turn it");
    sub->add_option("--background", args->background, "white (default) or black");
    sub->callback([&action, args] { action = [args] { return render(*args); }; });
}
