// Run-time classes, the system registry and module loading.
#pragma once

#include "acstatus.h"
#include "adesk.h"

#include <string>
#include <unordered_map>
#include <vector>

class AcRxClass;

namespace AcRx {
enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15,
    kSuspendMsg = 16,
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
enum Ordering { kLessThan = -1, kEqual = 0, kGreaterThan = 1, kNotOrderable = 2 };
} // namespace AcRx

// Release of the interfaces a module is built for.
constexpr unsigned int kQorApiVersion = 0x00120000;

// Declares the run-time identity of a platform class.
#define ACRX_DECLARE_MEMBERS(CLASS)                                                                \
    static AcRxClass* desc();                                                                      \
    static CLASS* cast(const AcRxObject* p);                                                       \
    AcRxClass* isA() const override

class AcRxObject {
public:
    virtual ~AcRxObject() = default;

    static AcRxClass* desc();
    static AcRxObject* cast(const AcRxObject* p) { return const_cast<AcRxObject*>(p); }
    virtual AcRxClass* isA() const;

    bool isKindOf(const AcRxClass* c) const;
    virtual AcRxObject* clone() const { return nullptr; }
    virtual Acad::ErrorStatus copyFrom(const AcRxObject*) { return Acad::eNotApplicable; }
    virtual bool isEqualTo(const AcRxObject* other) const { return other == this; }
};

using AppNameChangeFuncPtr = void (*)(const AcRxClass* classObj, ACHAR*& newAppName, int saveVer);
using AcRxPseudoConstructor = AcRxObject* (*)();

class AcRxClass : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxClass);

    const ACHAR* name() const { return mName.c_str(); }
    const ACHAR* dxfName() const { return mDxfName.c_str(); }
    const ACHAR* appName() const { return mAppName.c_str(); }
    const ACHAR* parentName() const { return mParentName.c_str(); }
    AcRxClass* myParent() const { return mParent; }
    int proxyFlags() const { return mProxyFlags; }
    int dwgVersion(int& maintVer) const {
        maintVer = mMaintVer;
        return mDwgVer;
    }
    AcRxPseudoConstructor constructor() const { return mConstructor; }
    AppNameChangeFuncPtr appNameCallbackPtr() const { return mAppNameChange; }
    // The module that registered the class; empty for the platform's own classes.
    const std::wstring& moduleName() const { return mModule; }

    bool isDerivedFrom(const AcRxClass* other) const;
    AcRxObject* create() const { return mConstructor ? mConstructor() : nullptr; }

private:
    friend AcRxClass* newAcRxClass(const ACHAR*, const ACHAR*, int, int, int, AcRxPseudoConstructor,
                                   const ACHAR*, const ACHAR*, AppNameChangeFuncPtr);
    friend void acrxBuildClassHierarchy();
    friend AcRxClass* acrxRegisterPlatformClass(const ACHAR*, AcRxClass*, AcRxPseudoConstructor,
                                                const ACHAR*);

    std::wstring mName, mParentName, mDxfName, mAppName, mModule;
    AcRxClass* mParent = nullptr;
    int mDwgVer = 0, mMaintVer = 0, mProxyFlags = 0;
    AcRxPseudoConstructor mConstructor = nullptr;
    AppNameChangeFuncPtr mAppNameChange = nullptr;
};

class AcRxDictionaryIterator;

// A dictionary of named run-time objects. Iteration follows insertion order.
// It does not own its entries: whoever removes an entry deletes it.
class AcRxDictionary : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxDictionary);

    AcRxObject* at(const ACHAR* key) const;
    // Returns the entry the key held before, or null.
    AcRxObject* atPut(const ACHAR* key, AcRxObject* obj);
    // Returns the removed entry, or null when the key was absent.
    AcRxObject* remove(const ACHAR* key);
    bool has(const ACHAR* key) const { return at(key) != nullptr; }
    Adesk::UInt32 numEntries() const { return static_cast<Adesk::UInt32>(mKeys.size()); }
    AcRxDictionaryIterator* newIterator() const;

private:
    friend class AcRxDictionaryIterator;
    std::vector<std::wstring> mKeys;
    std::unordered_map<std::wstring, AcRxObject*> mMap;
};

class AcRxDictionaryIterator {
public:
    explicit AcRxDictionaryIterator(const AcRxDictionary* d);
    bool done() const { return mIndex >= mKeys.size(); }
    bool next() {
        ++mIndex;
        return !done();
    }
    const ACHAR* key() const { return mKeys[mIndex].c_str(); }
    AcRxObject* object() const;

private:
    const AcRxDictionary* mDict;
    std::vector<std::wstring> mKeys;
    size_t mIndex = 0;
};

// A named marker by which modules tell each other they are present.
class AcRxService : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxService);
};

#define ACRX_CLASS_DICTIONARY L"ClassDictionary"
#define ACRX_SERVICE_DICTIONARY L"ServiceDictionary"

AcRxDictionary* acrxSysRegistry();
inline AcRxDictionary* acrxClassDictionary() {
    return static_cast<AcRxDictionary*>(acrxSysRegistry()->at(ACRX_CLASS_DICTIONARY));
}
inline AcRxDictionary* acrxServiceDictionary() {
    return static_cast<AcRxDictionary*>(acrxSysRegistry()->at(ACRX_SERVICE_DICTIONARY));
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVer,
                        int maintVer, int proxyFlags = 0,
                        AcRxPseudoConstructor pseudoConstructor = nullptr,
                        const ACHAR* dxfName = nullptr, const ACHAR* appName = nullptr,
                        AppNameChangeFuncPtr func = nullptr);
AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int proxyFlags = 0,
                        AcRxPseudoConstructor pseudoConstructor = nullptr,
                        const ACHAR* dxfName = nullptr, const ACHAR* appName = nullptr);
// Removes a class from the class dictionary and deletes it.
void deleteAcRxClass(AcRxClass* pClassObj);
// Resolves every class's parent by name.
void acrxBuildClassHierarchy();
// Registers one of the platform's own classes (used by the platform's class definitions).
AcRxClass* acrxRegisterPlatformClass(const ACHAR* name, AcRxClass* parent,
                                     AcRxPseudoConstructor ctor, const ACHAR* dxfName);

AcRxObject* acrxRegisterService(const ACHAR* serviceName);
bool acrxServiceIsRegistered(const ACHAR* serviceName);

// Known platform module names load as built-ins; other names are shared libraries whose
// acrxEntryPoint receives the initialisation message.
bool acrxLoadModule(const ACHAR* moduleName, bool printit, bool asCmd = false);
bool acrxUnloadModule(const ACHAR* moduleName, bool asCmd = false);
// Names of the modules loaded as shared libraries, in load order.
std::vector<std::wstring> acrxLoadedModules();
// The module whose entry point is running, for class bookkeeping; empty outside one.
const std::wstring& acrxCurrentModule();
// Why the last acrxLoadModule of a shared library failed.
const std::wstring& acrxLastModuleError();

bool acrxUnlockApplication(void* appId);
bool acrxApplicationIsLocked(const ACHAR* modulename);
bool acrxRegisterAppMDIAware(void* appId);
// Ends the process after printing the message, as the platform does.
[[noreturn]] void acrx_abort(const ACHAR* format, ...);

template <class T> inline T* AcRxCast(const AcRxObject* p) {
    return T::cast(p);
}

// Defines the identity of a platform class: lazy registration in the class dictionary.
#define ACRX_DEFINE_MEMBERS_IMPL(CLASS, PARENT, CTOR, DXF)                                         \
    AcRxClass* CLASS::desc() {                                                                     \
        static AcRxClass* s = acrxRegisterPlatformClass(L## #CLASS, PARENT::desc(), CTOR, DXF);    \
        return s;                                                                                  \
    }                                                                                              \
    CLASS* CLASS::cast(const AcRxObject* p) {                                                      \
        return (p && p->isKindOf(CLASS::desc())) ? static_cast<CLASS*>(const_cast<AcRxObject*>(p)) \
                                                 : nullptr;                                        \
    }                                                                                              \
    AcRxClass* CLASS::isA() const {                                                                \
        return CLASS::desc();                                                                      \
    }

#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)                                                 \
    ACRX_DEFINE_MEMBERS_IMPL(CLASS, PARENT, nullptr, nullptr)
#define ACRX_CONS_DEFINE_MEMBERS(CLASS, PARENT, DXF)                                               \
    static AcRxObject* make##CLASS() {                                                             \
        return new CLASS();                                                                        \
    }                                                                                              \
    ACRX_DEFINE_MEMBERS_IMPL(CLASS, PARENT, make##CLASS, DXF)
