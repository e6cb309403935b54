// qor: the command-line host. Loads the object module as a CAD host does and works on drawings.
#include "cmdline.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "winstr.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// The module beside the program (installed layout), else the one of the build tree.
std::string defaultModulePath() {
    if (const char* env = std::getenv("QOR_MODULE"); env && *env) return env;
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        fs::path beside = exe.parent_path().parent_path() / "lib" / "libqorobj.so";
        if (fs::exists(beside, ec)) return beside.string();
    }
    return QOR_DEFAULT_MODULE;
}

int fail(const std::wstring& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "qor: %s\n", qorToUtf8(message).c_str());
    return 1;
}

// Loads the module for the life of the command and unloads it after every drawing is gone.
class ModuleSession {
public:
    ModuleSession(bool enabled, const std::string& path) : mPath(qorFromUtf8(path)) {
        acrxSysRegistry();
        if (enabled) mLoaded = acrxLoadModule(mPath.c_str(), false);
    }
    ~ModuleSession() {
        if (mLoaded) acrxUnloadModule(mPath.c_str());
    }
    bool ok(bool enabled) const { return !enabled || mLoaded; }

private:
    std::wstring mPath;
    bool mLoaded = false;
};

int printClasses() {
    int count = 0;
    std::printf("%-22s %-20s %-16s %-10s %s\n", "class", "parent", "DXF name", "application",
                "proxy flags");
    for (AcRxDictionaryIterator it(acrxClassDictionary()); !it.done(); it.next()) {
        auto* c = AcRxClass::cast(it.object());
        if (!c || c->moduleName().empty()) continue;
        std::printf("%-22s %-20s %-16s %-10s %d\n", qorToUtf8(c->name()).c_str(),
                    qorToUtf8(c->parentName()).c_str(), qorToUtf8(c->dxfName()).c_str(),
                    qorToUtf8(c->appName()).c_str(), c->proxyFlags());
        ++count;
    }
    std::printf("%d classes\n", count);
    return 0;
}

std::unique_ptr<AcDbDatabase> openDrawing(const std::string& file, std::wstring& error) {
    auto db = std::make_unique<AcDbDatabase>(false, true);
    if (db->readDwgFile(qorFromUtf8(file).c_str()) != Acad::eOk) {
        error = db->lastError();
        return nullptr;
    }
    return db;
}

int listDrawing(const std::string& file) {
    std::wstring error;
    auto db = openDrawing(file, error);
    if (!db) return fail(error);
    acdbHostApplicationServices()->setWorkingDatabase(db.get());
    int count = 0;
    for (AcDbObjectId spaceId : {db->modelSpaceId(), db->paperSpaceId()}) {
        AcDbBlockTableRecord* space = nullptr;
        if (acdbOpenObject(space, spaceId, AcDb::kForRead) != Acad::eOk) continue;
        std::vector<AcDbObjectId> ids = space->entityIds();
        space->close();
        for (AcDbObjectId id : ids) {
            AcDbEntity* ent = nullptr;
            if (acdbOpenObject(ent, id, AcDb::kForRead) != Acad::eOk) continue;
            ent->list();
            acutPrintf(L"\n");
            ent->close();
            ++count;
        }
    }
    acutPrintf(L"%d entities\n", count);
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"qor: open, list and convert drawings with the planning object module"};
    app.require_subcommand(1);
    bool noModule = false;
    std::string modulePath = defaultModulePath();
    app.add_flag("--no-module", noModule,
                 "open drawings without the object module (its objects become proxies)");
    app.add_option("--module", modulePath, "object module to load")->capture_default_str();

    auto* classes = app.add_subcommand("classes", "print the classes the loaded modules register");
    std::string listFile;
    auto* list = app.add_subcommand("list", "print the listing of every entity of a drawing");
    list->add_option("file", listFile, "drawing file (.qdb)")->required();

    CLI11_PARSE(app, argc, argv);

    ModuleSession module(!noModule, modulePath);
    if (!module.ok(!noModule)) return fail(acrxLastModuleError());
    if (*classes) return printClasses();
    if (*list) return listDrawing(listFile);
    return 0;
}
