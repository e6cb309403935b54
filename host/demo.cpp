#include "host/demo.h"

#include "aced.h"
#include "cmdline.h"
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
        WorkingDatabase working(&db);
        if (!qorRunCommand(L"QORDEMO"))
            return fail(L"the demonstration module registered no QORDEMO command");
        acutPrintf(L"\n");
        if (db.saveAs(qorFromUtf8(site).c_str()) != Acad::eOk) return fail(db.lastError());
    }
    acutPrintf(L"Saved %s; reopened, it lists as:\n", qorFromUtf8(site).c_str());
    return listDrawing(site);
}

} // namespace

void addDemoCommand(CLI::App& app, QorAction& action) {
    auto* demo =
        app.add_subcommand("demo", "build the demonstration site, save, reopen and list it");
    auto outDir = std::make_shared<std::string>();
    demo->add_option("outdir", *outDir, "folder for the drawing and its pictures")->required();
    demo->callback([&action, outDir] { action = [outDir] { return runDemo(*outDir); }; });
}
