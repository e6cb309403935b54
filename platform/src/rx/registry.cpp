// The system registry: the class and service dictionaries, and class registration.
#include "rxinternal.h"

#include "acdb.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

void acdbRegisterPlatformClasses(); // defined with the database classes

namespace {

AcRxDictionary* gSysRegistry = nullptr;

std::wstring gCurrentModule;

AcRxDictionary* makeSysRegistry() {
    gSysRegistry = new AcRxDictionary();
    gSysRegistry->atPut(ACRX_CLASS_DICTIONARY, new AcRxDictionary());
    gSysRegistry->atPut(ACRX_SERVICE_DICTIONARY, new AcRxDictionary());
    // The platform's own classes are present before any module loads.
    acrxAddPlatformClass(AcRxObject::desc());
    acrxAddPlatformClass(AcRxClass::desc());
    acrxAddPlatformClass(AcRxDictionary::desc());
    acrxAddPlatformClass(AcRxService::desc());
    acdbRegisterPlatformClasses();
    return gSysRegistry;
}

} // namespace

AcRxDictionary* acrxSysRegistry() {
    static AcRxDictionary* registry = makeSysRegistry();
    return registry;
}

const std::wstring& acrxCurrentModule() {
    return gCurrentModule;
}

// Used by module loading to attribute classes to the module being initialised.
void acrxSetCurrentModule(const std::wstring& name) {
    gCurrentModule = name;
}

// ---------------------------------------------------------------- AcRxObject

AcRxClass* AcRxObject::desc() {
    static AcRxClass* s = acrxRegisterPlatformClass(L"AcRxObject", nullptr, nullptr, nullptr);
    return s;
}

AcRxClass* AcRxObject::isA() const {
    return AcRxObject::desc();
}

bool AcRxObject::isKindOf(const AcRxClass* c) const {
    const AcRxClass* mine = isA();
    return mine && c && mine->isDerivedFrom(c);
}

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxClass, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDictionary, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcRxService, AcRxObject)

bool AcRxClass::isDerivedFrom(const AcRxClass* other) const {
    // The depth limit keeps a damaged hierarchy from looping.
    const AcRxClass* c = this;
    for (int depth = 0; c && depth < 256; ++depth, c = c->mParent)
        if (c == other) return true;
    return false;
}

// ---------------------------------------------------------------- dictionaries

AcRxObject* AcRxDictionary::at(const ACHAR* key) const {
    if (!key) return nullptr;
    auto it = mMap.find(key);
    return it == mMap.end() ? nullptr : it->second;
}

AcRxObject* AcRxDictionary::atPut(const ACHAR* key, AcRxObject* obj) {
    if (!key) return nullptr;
    auto [it, inserted] = mMap.try_emplace(key, obj);
    if (inserted) {
        mKeys.emplace_back(key);
        return nullptr;
    }
    AcRxObject* previous = it->second;
    it->second = obj;
    return previous;
}

AcRxObject* AcRxDictionary::remove(const ACHAR* key) {
    if (!key) return nullptr;
    auto it = mMap.find(key);
    if (it == mMap.end()) return nullptr;
    AcRxObject* obj = it->second;
    mMap.erase(it);
    for (auto k = mKeys.begin(); k != mKeys.end(); ++k)
        if (*k == key) {
            mKeys.erase(k);
            break;
        }
    return obj;
}

AcRxDictionaryIterator* AcRxDictionary::newIterator() const {
    return new AcRxDictionaryIterator(this);
}

// The iterator works on a snapshot of the keys so entries may be removed while iterating.
AcRxDictionaryIterator::AcRxDictionaryIterator(const AcRxDictionary* d)
    : mDict(d), mKeys(d->mKeys) {}

AcRxObject* AcRxDictionaryIterator::object() const {
    return done() ? nullptr : mDict->at(mKeys[mIndex].c_str());
}

// ---------------------------------------------------------------- classes

AcRxClass* acrxRegisterPlatformClass(const ACHAR* name, AcRxClass* parent,
                                     AcRxPseudoConstructor ctor, const ACHAR* dxfName) {
    auto* c = new AcRxClass();
    c->mName = name;
    c->mParent = parent;
    c->mParentName = parent ? parent->name() : L"";
    c->mConstructor = ctor;
    c->mDxfName = dxfName ? dxfName : L"";
    c->mDwgVer = AcDb::kDHL_CURRENT;
    c->mMaintVer = AcDb::kMReleaseCurrent;
    return c;
}

void acrxAddPlatformClass(AcRxClass* c) {
    auto* classes = static_cast<AcRxDictionary*>(gSysRegistry->at(ACRX_CLASS_DICTIONARY));
    if (c && !classes->has(c->name())) classes->atPut(c->name(), c);
}

void acrxRemovePlatformClass(AcRxClass* c) {
    AcRxDictionary* classes = acrxClassDictionary();
    if (c && classes->at(c->name()) == c) classes->remove(c->name());
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int dwgVer,
                        int maintVer, int proxyFlags, AcRxPseudoConstructor pseudoConstructor,
                        const ACHAR* dxfName, const ACHAR* appName, AppNameChangeFuncPtr func) {
    if (!className || !*className) return nullptr;
    auto* c = new AcRxClass();
    c->mName = className;
    c->mParentName = parentClassName ? parentClassName : L"";
    c->mDwgVer = dwgVer;
    c->mMaintVer = maintVer;
    c->mProxyFlags = proxyFlags;
    c->mConstructor = pseudoConstructor;
    c->mDxfName = dxfName ? dxfName : L"";
    c->mAppName = appName ? appName : L"";
    c->mAppNameChange = func;
    c->mModule = gCurrentModule;
    AcRxDictionary* classes = acrxClassDictionary();
    if (AcRxClass* parent = AcRxClass::cast(classes->at(c->mParentName.c_str())))
        c->mParent = parent;
    if (AcRxObject* old = classes->atPut(className, c); old && old != c) {
        // A second definition under one name would leave dangling descriptors everywhere.
        acrx_abort(L"Class mismatch");
    }
    return c;
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int proxyFlags,
                        AcRxPseudoConstructor pseudoConstructor, const ACHAR* dxfName,
                        const ACHAR* appName) {
    return newAcRxClass(className, parentClassName, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        proxyFlags, pseudoConstructor, dxfName, appName, nullptr);
}

void deleteAcRxClass(AcRxClass* pClassObj) {
    if (!pClassObj) return;
    AcRxDictionary* classes = acrxClassDictionary();
    if (classes->at(pClassObj->name()) == pClassObj) classes->remove(pClassObj->name());
    delete pClassObj;
}

void acrxBuildClassHierarchy() {
    AcRxDictionary* classes = acrxClassDictionary();
    for (AcRxDictionaryIterator it(classes); !it.done(); it.next()) {
        auto* c = static_cast<AcRxClass*>(it.object());
        if (!c || c->mParentName.empty()) continue;
        c->mParent = AcRxClass::cast(classes->at(c->mParentName.c_str()));
    }
}

// ---------------------------------------------------------------- services

AcRxObject* acrxRegisterService(const ACHAR* serviceName) {
    if (!serviceName) return nullptr;
    AcRxDictionary* services = acrxServiceDictionary();
    if (AcRxObject* existing = services->at(serviceName)) return existing;
    auto* service = new AcRxService();
    services->atPut(serviceName, service);
    return service;
}

bool acrxServiceIsRegistered(const ACHAR* serviceName) {
    return acrxServiceDictionary()->has(serviceName);
}

// ---------------------------------------------------------------- application state

bool acrxUnlockApplication(void*) {
    return true;
}
bool acrxApplicationIsLocked(const ACHAR*) {
    return false;
}
bool acrxRegisterAppMDIAware(void*) {
    return true;
}

void acrx_abort(const ACHAR* format, ...) {
    wchar_t buf[1024];
    va_list ap;
    va_start(ap, format);
    std::vswprintf(buf, sizeof buf / sizeof buf[0], format, ap);
    va_end(ap);
    std::fflush(stdout);
    std::fprintf(stderr, "fatal: %ls\n", buf);
    std::abort();
}
