// The `dxf` and `import` commands.
#include "host/dxfcommands.h"

#include "dbdxf.h"
#include "winstr.h"

#include <cstdio>
#include <memory>
#include <string>

namespace {

struct Files {
    std::string in, out;
    bool explode = false;
};

// What was left out goes to standard error, so that standard output is the result alone.
void reportSkipped(const QorDxfReport& report, const char* what) {
    if (report.skippedCount() > 0)
        std::fprintf(stderr, "qor: %s %d entities: %s\n", what, report.skippedCount(),
                     qorToUtf8(report.skippedSummary()).c_str());
}

int writeDxf(const Files& files) {
    std::wstring error;
    auto db = openDrawing(files.in, error);
    if (!db) return fail(error);
    QorDxfOptions options;
    options.explode = files.explode;
    QorDxfReport report;
    if (qorWriteDxf(db.get(), qorFromUtf8(files.out).c_str(), options, &report) != Acad::eOk)
        return fail(qorFromUtf8(files.out) + L": " + report.error);
    reportSkipped(report, "left out");
    std::printf("%s: %zu entities\n", files.out.c_str(), report.entities);
    return 0;
}

int importDxf(const Files& files) {
    auto db = std::make_unique<AcDbDatabase>();
    QorDxfReport report;
    if (qorReadDxf(db.get(), qorFromUtf8(files.in).c_str(), &report) != Acad::eOk)
        return fail(qorFromUtf8(files.in) + L": " + report.error);
    reportSkipped(report, "skipped");
    if (db->saveAs(qorFromUtf8(files.out).c_str()) != Acad::eOk) return fail(db->lastError());
    std::printf("%s: %zu entities\n", files.out.c_str(), report.entities);
    return 0;
}

} // namespace

void addDxfCommands(CLI::App& app, QorAction& action) {
    auto out = std::make_shared<Files>();
    auto* dxf = app.add_subcommand("dxf", "write a drawing as DXF (AC1024, UTF-8)");
    dxf->add_option("file", out->in, "drawing file (.qdb)")->required();
    dxf->add_option("-o,--output", out->out, "DXF file to write")->required();
    dxf->add_flag("--explode", out->explode,
                  "write the module's objects as the plain entities they explode to");
    dxf->callback([&action, out] { action = [out] { return writeDxf(*out); }; });

    auto in = std::make_shared<Files>();
    auto* import = app.add_subcommand("import", "read a DXF file into a new drawing");
    import->add_option("file", in->in, "DXF file")->required();
    import->add_option("-o,--output", in->out, "drawing file to write (.qdb)")->required();
    import->callback([&action, in] { action = [in] { return importDxf(*in);
};
});
}
