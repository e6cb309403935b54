// The command stack and running a command by name.
#include "aced.h"

#include <algorithm>
#include <cwctype>

namespace {

bool sameName(const std::wstring& a, const ACHAR* b) {
    const size_t n = std::char_traits<wchar_t>::length(b);
    if (a.size() != n) return false;
    for (size_t i = 0; i < n; ++i)
        if (std::towupper(a[i]) != std::towupper(b[i])) return false;
    return true;
}

bool validName(const ACHAR* name) {
    if (!name || !*name || *name == L'_' || *name == L'.' || *name == L'\'') return false;
    for (const ACHAR* p = name; *p; ++p)
        if (std::iswspace(*p) || std::iswcntrl(*p)) return false;
    return true;
}

} // namespace

AcEdCommand::AcEdCommand(std::wstring globalName, std::wstring localName, Adesk::Int32 flags,
                         AcRxFunctionPtr function, AcEdUIContext* context, int functionCode)
    : mGlobal(std::move(globalName)), mLocal(std::move(localName)), mFlags(flags),
      mFunction(function), mContext(context), mFunctionCode(functionCode) {}

struct AcEdCommandStack::Group {
    std::wstring name;
    std::vector<std::unique_ptr<AcEdCommand>> commands;
};

AcEdCommandStack::AcEdCommandStack() = default;
AcEdCommandStack::~AcEdCommandStack() = default;

Acad::ErrorStatus AcEdCommandStack::addCommand(const ACHAR* cmdGroupName,
                                               const ACHAR* cmdGlobalName,
                                               const ACHAR* cmdLocalName, Adesk::Int32 commandFlags,
                                               AcRxFunctionPtr funcAddr, AcEdUIContext* UIContext,
                                               int fcode, void* /*hResourceHandle*/,
                                               AcEdCommand** cmdPtrRet) {
    if (cmdPtrRet) *cmdPtrRet = nullptr;
    if (!cmdLocalName) cmdLocalName = cmdGlobalName;
    if (!cmdGroupName || !*cmdGroupName || !validName(cmdGlobalName) || !validName(cmdLocalName) ||
        !funcAddr)
        return Acad::eInvalidInput;
    auto it = std::find_if(mGroups.begin(), mGroups.end(),
                           [&](const auto& g) { return sameName(g->name, cmdGroupName); });
    if (it == mGroups.end()) {
        // A new group goes on top.
        auto group = std::make_unique<Group>();
        group->name = cmdGroupName;
        it = mGroups.insert(mGroups.begin(), std::move(group));
    }
    for (const auto& c : (*it)->commands)
        if (sameName(c->globalName(), cmdGlobalName) || sameName(c->localName(), cmdLocalName))
            return Acad::eDuplicateKey;
    (*it)->commands.push_back(std::make_unique<AcEdCommand>(
        cmdGlobalName, cmdLocalName, commandFlags, funcAddr, UIContext, fcode));
    if (cmdPtrRet) *cmdPtrRet = (*it)->commands.back().get();
    return Acad::eOk;
}

AcEdCommand* AcEdCommandStack::lookupCmd(const ACHAR* cmdName, bool globalFlag) const {
    if (!cmdName || !*cmdName) return nullptr;
    for (const auto& g : mGroups)
        for (const auto& c : g->commands)
            if (sameName(globalFlag ? c->globalName() : c->localName(), cmdName)) return c.get();
    return nullptr;
}

AcEdCommand* AcEdCommandStack::lookupGlobalCmd(const ACHAR* cmdName) const {
    return lookupCmd(cmdName, true);
}

AcEdCommand* AcEdCommandStack::lookupLocalCmd(const ACHAR* cmdName) const {
    return lookupCmd(cmdName, false);
}

Acad::ErrorStatus AcEdCommandStack::popGroupToTop(const ACHAR* groupName) {
    if (!groupName) return Acad::eInvalidInput;
    auto it = std::find_if(mGroups.begin(), mGroups.end(),
                           [&](const auto& g) { return sameName(g->name, groupName); });
    if (it == mGroups.end()) return Acad::eKeyNotFound;
    std::rotate(mGroups.begin(), it, it + 1);
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::removeCmd(const ACHAR* cmdGroupName,
                                              const ACHAR* cmdGlobalName) {
    if (!cmdGroupName || !cmdGlobalName) return Acad::eInvalidInput;
    auto g = std::find_if(mGroups.begin(), mGroups.end(),
                          [&](const auto& gr) { return sameName(gr->name, cmdGroupName); });
    if (g == mGroups.end()) return Acad::eKeyNotFound;
    auto& cmds = (*g)->commands;
    auto c = std::find_if(cmds.begin(), cmds.end(), [&](const auto& cmd) {
        return sameName(cmd->globalName(), cmdGlobalName);
    });
    if (c == cmds.end()) return Acad::eKeyNotFound;
    cmds.erase(c);
    if (cmds.empty()) mGroups.erase(g);
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::removeGroup(const ACHAR* groupName) {
    if (!groupName) return Acad::eInvalidInput;
    auto it = std::find_if(mGroups.begin(), mGroups.end(),
                           [&](const auto& g) { return sameName(g->name, groupName); });
    if (it == mGroups.end()) return Acad::eKeyNotFound;
    mGroups.erase(it);
    return Acad::eOk;
}

AcEdCommandIterator* AcEdCommandStack::iterator() const {
    std::vector<AcEdCommandIterator::Entry> entries;
    for (const auto& g : mGroups)
        for (const auto& c : g->commands)
            entries.push_back({c.get(), g->name.c_str()});
    return new AcEdCommandIterator(std::move(entries));
}

AcEdCommandStack* qorCommandStack() {
    static AcEdCommandStack stack;
    return &stack;
}

bool qorRunCommand(const ACHAR* name) {
    if (!name) return false;
    if (*name == L'.') ++name;
    AcEdCommand* cmd = nullptr;
    if (*name == L'_')
        cmd = acedRegCmds->lookupGlobalCmd(name + 1);
    else if (!(cmd = acedRegCmds->lookupLocalCmd(name)))
        cmd = acedRegCmds->lookupGlobalCmd(name);
    if (!cmd) return false;
    // The command may remove itself (a module unloading from inside a command), so the
    // function is taken before the call.
    const AcRxFunctionPtr function = cmd->functionAddr();
    // Ends the command's prompt session even when the command throws.
    struct Session {
        bool outer = qor::detail::beginCommandPrompts();
        ~Session() { qor::detail::endCommandPrompts(outer); }
    } session;
    function();
    return true;
}
