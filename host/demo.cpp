#include "host/demo.h"

#include "aced.h"
#include "cmdline.h"
#include "dbdxf.h"
#include "girender.h"
#include "rx.h"
#include "winstr.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// The demonstration module beside the object module (installed layout), else the build tree's.
std::string demoModulePath() {
    if (const char* env = std::getenv("QOR_DEMO_MODULE"); env && *env) return env;
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        const fs::path beside = exe.parent_path().parent_path() / "lib" / "libqordemo.so";
        if (fs::exists(beside, ec)) return beside.string();
    }
    return QOR_DEFAULT_DEMO_MODULE;
}

// Loaded for the demonstration only, unloaded before the object module goes.
class DemoModule {
public:
    explicit DemoModule(const std::string& path) : mPath(qorFromUtf8(path)) {
        mLoaded = acrxLoadModule(mPath.c_str(), false);
    }
    ~DemoModule() {
        if (mLoaded) acrxUnloadModule(mPath.c_str());
    }
    DemoModule(const DemoModule&) = delete;
    DemoModule& operator=(const DemoModule&) = delete;
    bool loaded() const { return mLoaded; }

private:
    std::wstring mPath;
    bool mLoaded = false;
};

// The site and a margin around it: the pictures frame the same ground every time.
AcGiRenderOptions pictureOptions(AcGiRenderFormat format) {
    AcGiRenderOptions options;
    options.format = format;
    options.hasWindow = true;
    options.windowMin.set(kQorDemoWindow[0], kQorDemoWindow[1]);
    options.windowMax.set(kQorDemoWindow[2], kQorDemoWindow[3]);
    if (format == AcGiRenderFormat::kPdf)
        acgiPaperSize(L"a3,landscape", options.paperWidthMm, options.paperHeightMm);
    return options;
}

// The pictures and the exchange files of the saved site, as a user would make them.
int exportSite(const std::string& site, const fs::path& outDir) {
    std::wstring error;
    auto db = openDrawing(site, error);
    if (!db) return fail(error);
    QorWorkingDatabase working(db.get());
    for (const auto& [name, format] : {std::pair{"site.png", AcGiRenderFormat::kPng},
                                       std::pair{"site.pdf", AcGiRenderFormat::kPdf}}) {
        const std::wstring path = qorFromUtf8((outDir / name).string());
        if (!acgiRenderModelSpace(db.get(), pictureOptions(format), path.c_str(), error))
            return fail(error);
        acutPrintf(L"Drew %s\n", path.c_str());
    }
    for (const bool explode : {false, true}) {
        const std::wstring path =
            qorFromUtf8((outDir / (explode ? "site-exploded.dxf" : "site.dxf")).string());
        QorDxfOptions options;
        options.explode = explode;
        QorDxfReport report;
        if (qorWriteDxf(db.get(), path.c_str(), options, &report) != Acad::eOk)
            return fail(path + L": " + report.error);
        acutPrintf(L"Wrote %s: %d entities%s\n", path.c_str(), static_cast<int>(report.entities),
                   explode ? L", the module's objects exploded" : L"");
    }
    return 0;
}

int runDemo(const std::string& outDir) {
    std::error_code ec;
    fs::create_directories(outDir, ec);
    if (ec)
        return fail(L"cannot make the folder " + qorFromUtf8(outDir) + L": " +
                    qorFromUtf8(ec.message()));
    const std::string site = (fs::path(outDir) / "site.qdb").string();

    DemoModule demo(demoModulePath());
    if (!demo.loaded()) return fail(acrxLastModuleError());
    {
        AcDbDatabase db;
        QorWorkingDatabase working(&db);
        if (!qorRunCommand(L"QORDEMO"))
            return fail(L"the demonstration module registered no QORDEMO command");
        acutPrintf(L"\n");
        if (db.saveAs(qorFromUtf8(site).c_str()) != Acad::eOk) return fail(db.lastError());
    }
    acutPrintf(L"Saved %s; reopened, it lists as:\n", qorFromUtf8(site).c_str());
    if (const int status = listDrawing(site)) return status;
    return exportSite(site, outDir);
}

} // namespace

void addDemoCommand(CLI::App& app, QorAction& action) {
    auto* demo = app.add_subcommand(
        "demo", "build the demonstration site, save, reopen, list, draw and export it");
    auto outDir = std::make_shared<std::string>();
    demo->add_option("outdir", *outDir, "folder for the drawing and its pictures")->required();
    demo->callback([&action, outDir] { action = [outDir] { return runDemo(*outDir); }; });
}
