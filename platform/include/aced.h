// Host services for commands: the command stack that command modules register with, and the
// prompts by which a running command asks its user for values.
//
// Prompts read their answers, one line each, from an input source the host sets (a script or
// standard input). An empty line is the Enter answer and the line "*cancel*" a cancel; the end
// of the input also cancels. Each prompt prints its text and the answer through acutPrintf, so
// that what a script did reads back as a transcript.
#pragma once

#include "acstatus.h"
#include "adsdef.h"
#include "rx.h"

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

using AcRxFunctionPtr = void (*)();

class AcEdUIContext;

// ---------------------------------------------------------------- command flags

#define ACRX_CMD_MODAL 0x00000000
#define ACRX_CMD_TRANSPARENT 0x00000001
#define ACRX_CMD_USEPICKSET 0x00000002
#define ACRX_CMD_REDRAW 0x00000004
#define ACRX_CMD_NOPERSPECTIVE 0x00000008
#define ACRX_CMD_NOMULTIPLE 0x00000010
#define ACRX_CMD_NOTILEMODE 0x00000020
#define ACRX_CMD_NOPAPERSPACE 0x00000040

// ---------------------------------------------------------------- the command stack

class AcEdCommand : public AcRxObject {
public:
    AcEdCommand(std::wstring globalName, std::wstring localName, Adesk::Int32 flags,
                AcRxFunctionPtr function, AcEdUIContext* context, int functionCode);

    AcRxFunctionPtr functionAddr() const { return mFunction; }
    Adesk::Int32 commandFlags() const { return mFlags; }
    const ACHAR* globalName() const { return mGlobal.c_str(); }
    const ACHAR* localName() const { return mLocal.c_str(); }
    AcEdUIContext* UIContext() const { return mContext; }
    int functionCode() const { return mFunctionCode; }

private:
    std::wstring mGlobal, mLocal;
    Adesk::Int32 mFlags;
    AcRxFunctionPtr mFunction;
    AcEdUIContext* mContext;
    int mFunctionCode;
};

class AcEdCommandIterator;

// Commands in named groups. Lookups search the groups from the top, which is the group added
// (or popped to the top) last, so a newer module can override a name. Command and group names
// compare without regard to case.
class AcEdCommandStack : public AcRxObject {
public:
    AcEdCommandStack();
    ~AcEdCommandStack() override;
    AcEdCommandStack(const AcEdCommandStack&) = delete;
    AcEdCommandStack& operator=(const AcEdCommandStack&) = delete;

    // eInvalidInput for a missing group or global name, a name with white space or starting
    // with one of the prefixes '_', '.', '\'', or no function; eDuplicateKey when the group
    // already has a command of that global or local name. A null local name is the global one.
    Acad::ErrorStatus addCommand(const ACHAR* cmdGroupName, const ACHAR* cmdGlobalName,
                                 const ACHAR* cmdLocalName, Adesk::Int32 commandFlags,
                                 AcRxFunctionPtr funcAddr, AcEdUIContext* UIContext = nullptr,
                                 int fcode = -1, void* hResourceHandle = nullptr,
                                 AcEdCommand** cmdPtrRet = nullptr);
    AcEdCommand* lookupGlobalCmd(const ACHAR* cmdName) const;
    AcEdCommand* lookupLocalCmd(const ACHAR* cmdName) const;
    AcEdCommand* lookupCmd(const ACHAR* cmdName, bool globalFlag) const;
    Acad::ErrorStatus popGroupToTop(const ACHAR* groupName);
    // eKeyNotFound when the group or the command is not there. A group left empty goes.
    Acad::ErrorStatus removeCmd(const ACHAR* cmdGroupName, const ACHAR* cmdGlobalName);
    Acad::ErrorStatus removeGroup(const ACHAR* groupName);
    // A new iterator, owned by the caller, over every command from the top group down. The
    // stack must not change while it is in use.
    AcEdCommandIterator* iterator() const;

private:
    struct Group;
    std::vector<std::unique_ptr<Group>> mGroups; // the top group first
};

class AcEdCommandIterator : public AcRxObject {
public:
    struct Entry {
        const AcEdCommand* command;
        const ACHAR* group;
    };
    explicit AcEdCommandIterator(std::vector<Entry> entries) : mEntries(std::move(entries)) {}

    bool done() const { return mIndex >= mEntries.size(); }
    bool next() {
        if (!done()) ++mIndex;
        return !done();
    }
    const AcEdCommand* command() const { return done() ? nullptr : mEntries[mIndex].command; }
    const ACHAR* commandGroup() const { return done() ? nullptr : mEntries[mIndex].group; }

private:
    std::vector<Entry> mEntries;
    size_t mIndex = 0;
};

// The host's one command stack.
AcEdCommandStack* qorCommandStack();
#define acedRegCmds qorCommandStack()

// Runs a registered command as the user would by typing its name: a leading '_' asks for the
// global name, otherwise local names are tried before global ones; a leading '.' is ignored.
// False when no command has the name. A cancel inside the command ends that command only.
bool qorRunCommand(const ACHAR* name);

// ---------------------------------------------------------------- prompts

// acedInitGet flags.
#define RSG_NONULL 0x0001 // Enter is refused: the prompt asks again
#define RSG_NOZERO 0x0002 // zero is refused
#define RSG_NONEG 0x0004  // negative values are refused
#define RSG_NOLIM 0x0008
#define RSG_GETZ 0x0010
#define RSG_DASH 0x0020
#define RSG_2D 0x0040
#define RSG_OTHER 0x0080 // any answer that is not a value comes back as a keyword

// Answers of the bufferless forms are cut to this many characters.
constexpr size_t kQorPromptAnswerMax = 132;

// Sets the flags and the keyword list (blank-separated; the capitals of a keyword are its
// shortest abbreviation; keywords after a lone "_" are the global names of those before it) for
// the next prompt only.
int acedInitGet(int val, const ACHAR* kwl);

// The whole line (cronly != 0) or the line without surrounding blanks. Enter answers an empty
// string with RTNORM. RTINPUTTRUNCATED when the answer did not fit and was cut.
int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result);
int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t bufLen);
int acedGetReal(const ACHAR* prompt, ads_real* result);
int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result);
// A whole number from -32768 to 32767.
int acedGetInt(const ACHAR* prompt, int* result);
// "x,y" or "x,y,z" (z 0 when left out); "@dx,dy[,dz]" is relative to the base point, or to the
// last point entered when there is no base.
int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);
// One of the keywords of the last acedInitGet, as its global name.
int acedGetKword(const ACHAR* prompt, ACHAR* result);
int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t bufLen);
// The keyword (or, with RSG_OTHER, the arbitrary answer) of the last RTKWORD result.
int acedGetInput(ACHAR* str);
int acedGetInput(ACHAR* str, size_t bufLen);

// Sets where prompts read their answers (UTF-8 lines) and returns the source it replaces. A
// new source starts at line 0; with none, every prompt is cancelled.
std::istream* qorSetPromptInput(std::istream* in);
// Whether answers are printed after their prompts (not wanted when a person types them).
void qorSetPromptEcho(bool echo);
// The next line of the input source without its line end, for a host that reads its commands
// from the same source as the prompts. False at the end of the input.
bool qorReadInputLine(std::wstring& line);
// How many lines have been read from the input source.
int qorInputLineNumber();

// ---------------------------------------------------------------- user break

// 1 when the user asked to stop since the last test, else 0. The request is cleared by the
// answer, so a request stops one loop only.
int acedUsrBrk();
// Asks for a break as the user would (for tests and for hosts with their own break key).
// Safe to call from a signal handler.
void qorRequestUserBreak();
// Makes SIGINT (Ctrl+C) a break request instead of the end of the process, for a host that
// runs commands; a second SIGINT while the first is still unanswered ends the process. False
// when the handler could not be installed.
bool qorInstallBreakHandler();
// Puts back what SIGINT did before qorInstallBreakHandler; nothing when it was not installed.
void qorRemoveBreakHandler();

namespace qor::detail {
// Brackets one command's prompts (qorRunCommand does it): inside, a cancel is final and every
// later prompt of the command answers RTCAN without reading. begin returns the enclosing
// command's state, which end puts back.
bool beginCommandPrompts();
void endCommandPrompts(bool outer);
} // namespace qor::detail
