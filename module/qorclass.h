// Run-time identity of the module's classes: a lazily looked-up descriptor per class and
// registration from one row of the class table.
#pragma once

#include "rx.h"

// Registers one class unless its descriptor is already the registered one; a different
// class already registered under the name ends the host ("Class mismatch").
void qorRxInit(AcRxClass*& desc, const ACHAR* name, const ACHAR* parent, int proxyFlags,
               AcRxPseudoConstructor ctor, const ACHAR* dxfName, const ACHAR* appName,
               AppNameChangeFuncPtr callback);
// The class dictionary's entry for the name, stored in desc when desc is still null.
AcRxClass* qorLookUpDesc(AcRxClass*& desc, const ACHAR* name);

#define QOR_DECLARE_MEMBERS(CLASS)                                                                 \
public:                                                                                            \
    static AcRxClass* desc();                                                                      \
    static CLASS* cast(const AcRxObject* p);                                                       \
    AcRxClass* isA() const override;                                                               \
    static void rxInit();                                                                          \
    static void rxInit(AppNameChangeFuncPtr callback);                                             \
                                                                                                   \
private:                                                                                           \
    static AcRxClass* gpDesc

#define QOR_DEFINE_MEMBERS(CLASS, PARENT, DXFNAME, APPNAME, PROXYFLAGS)                            \
    AcRxClass* CLASS::gpDesc = nullptr;                                                            \
    static AcRxObject* make##CLASS() {                                                             \
        return new (std::nothrow) CLASS();                                                         \
    }                                                                                              \
    AcRxClass* CLASS::desc() {                                                                     \
        return qorLookUpDesc(gpDesc, L## #CLASS);                                                  \
    }                                                                                              \
    AcRxClass* CLASS::isA() const {                                                                \
        return qorLookUpDesc(gpDesc, L## #CLASS);                                                  \
    }                                                                                              \
    CLASS* CLASS::cast(const AcRxObject* p) {                                                      \
        return (p && p->isKindOf(CLASS::desc())) ? static_cast<CLASS*>(const_cast<AcRxObject*>(p)) \
                                                 : nullptr;                                        \
    }                                                                                              \
    void CLASS::rxInit(AppNameChangeFuncPtr callback) {                                            \
        static_assert(std::is_base_of_v<PARENT, CLASS>, #CLASS " must derive from " #PARENT);      \
        qorRxInit(gpDesc, L## #CLASS, L## #PARENT, PROXYFLAGS, make##CLASS, DXFNAME, APPNAME,      \
                  callback);                                                                       \
    }                                                                                              \
    void CLASS::rxInit() {                                                                         \
        CLASS::rxInit(nullptr);                                                                    \
    }

// One row of the registration table.
struct QorClassRow {
    void (*rxInit)();
    AcRxClass* (*desc)();
};

#define QOR_CLASS_ROW(CLASS)                                                                       \
    QorClassRow {                                                                                  \
        &CLASS::rxInit, &CLASS::desc                                                               \
    }

#include <new>
#include <type_traits>
