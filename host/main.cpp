// qor: the command-line host. Loads the object module as a CAD host does and works on drawings.
#include "aced.h"
#include "cmdline.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "host/demo.h"
#include "host/drawings.h"
#include "host/dxfcommands.h"
#include "host/regcommand.h"
#include "host/render.h"
#include "winstr.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

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

// Command modules named with --load, unloaded in reverse order when the script is done.
class CommandModules {
public:
    CommandModules() = default;
    CommandModules(const CommandModules&) = delete;
    CommandModules& operator=(const CommandModules&) = delete;
    ~CommandModules() {
        for (auto it = mLoaded.rbegin(); it != mLoaded.rend(); ++it)
            acrxUnloadModule(it->c_str());
    }
    bool load(const std::string& path) {
        // A file in the current folder, not a library searched for by name.
        std::error_code ec;
        const fs::path file = fs::exists(path, ec) ? fs::absolute(path, ec) : fs::path(path);
        std::wstring name = qorFromUtf8(file.string());
        // A module already loaded (the object module, or one named twice) stays its owner's.
        const std::vector<std::wstring> before = acrxLoadedModules();
        if (std::find(before.begin(), before.end(), name) != before.end()) return true;
        if (!acrxLoadModule(name.c_str(), false)) return false;
        mLoaded.push_back(std::move(name));
        return true;
    }

private:
    std::vector<std::wstring> mLoaded;
};

// Points the prompts at the script for the life of the run.
class PromptInput {
public:
    explicit PromptInput(std::istream* in) { qorSetPromptInput(in); }
    ~PromptInput() {
        qorSetPromptInput(nullptr);
        qorSetPromptEcho(true);
    }
    PromptInput(const PromptInput&) = delete;
    PromptInput& operator=(const PromptInput&) = delete;
};

struct RunOptions {
    std::string script, open, save;
    std::vector<std::string> load;
};

std::wstring trimmed(const std::wstring& s) {
    size_t b = 0, e = s.size();
    while (b < e && std::iswspace(s[b]))
        ++b;
    while (e > b && std::iswspace(s[e - 1]))
        --e;
    return s.substr(b, e - b);
}

// Runs the script's commands on the working database. At the top level a line names a
// command; blank lines and lines starting with ';' are skipped. The lines after a command
// are its answers, read by its prompts.
int runScript(const RunOptions& options) {
    std::ifstream file;
    std::istream* in = &std::cin;
    if (options.script != "-") {
        file.open(options.script, std::ios::binary);
        if (!file) return fail(L"cannot open script " + qorFromUtf8(options.script));
        in = &file;
    }
    // The drawing goes before the modules whose objects it may hold.
    CommandModules modules;
    std::unique_ptr<AcDbDatabase> db;
    for (const std::string& path : options.load)
        if (!modules.load(path)) return fail(acrxLastModuleError());
    if (options.open.empty()) {
        db = std::make_unique<AcDbDatabase>();
    } else {
        std::wstring error;
        db = openDrawing(options.open, error);
        if (!db) return fail(error);
    }
    QorWorkingDatabase working(db.get());
    PromptInput input(in);
    // Ctrl+C stops a command's long loop (its user-break test) rather than the whole session.
    qorInstallBreakHandler();
    // A person typing sees the answer already.
    if (in == &std::cin && isatty(STDIN_FILENO)) qorSetPromptEcho(false);

    std::wstring line;
    while (qorReadInputLine(line)) {
        const std::wstring name = trimmed(line);
        if (name.empty() || name[0] == L';') continue;
        const std::wstring where = L" (line " + std::to_wstring(qorInputLineNumber()) + L")";
        acutPrintf(L"\nCommand: %s", name.c_str());
        try {
            if (!qorRunCommand(name.c_str())) {
                acutPrintf(L"\n");
                return fail(L"unknown command " + name + where);
            }
        } catch (const std::exception& e) {
            acutPrintf(L"\n");
            return fail(L"command " + name + L" failed: " + qorFromUtf8(e.what()) + where);
        }
    }
    acutPrintf(L"\n");
    if (!options.save.empty() && db->saveAs(qorFromUtf8(options.save).c_str()) != Acad::eOk)
        return fail(db->lastError());
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

    RunOptions runOptions;
    auto* run = app.add_subcommand(
        "run", "run a script of commands on a drawing (a new one unless --open is given)");
    run->add_option("script", runOptions.script, "script file, or - for standard input")
        ->required();
    run->add_option("--open", runOptions.open, "drawing to open first (.qdb)");
    run->add_option("--save", runOptions.save, "file to save the drawing to after the script");
    run->add_option("--load", runOptions.load, "command module to load (repeatable)")
        ->allow_extra_args(false);

    QorAction action;
    addDemoCommand(app, action);
    addRenderCommand(app, action);
    addRegCommand(app, action);
    addDxfCommands(app, action);

    CLI11_PARSE(app, argc, argv);

    ModuleSession module(!noModule, modulePath);
    if (!module.ok(!noModule)) return fail(acrxLastModuleError());
    if (*classes) return printClasses();
    if (*list) return listDrawing(listFile);
    if (*run) return runScript(runOptions);
    if (action) return action();
    return 0;
}
