#include "stub.h"

#include "dbmain.h"

#include <cwchar>
#include <cwctype>

const AcDbObjectId AcDbObjectId::kNull;

AcDbHandle::AcDbHandle(const ACHAR* hex) {
    if (!hex || !*hex) return;
    Adesk::UInt64 v = 0;
    int digits = 0;
    for (const ACHAR* p = hex; *p; ++p, ++digits) {
        ACHAR c = static_cast<ACHAR>(std::towupper(static_cast<wint_t>(*p)));
        int d;
        if (c >= L'0' && c <= L'9')
            d = c - L'0';
        else if (c >= L'A' && c <= L'F')
            d = c - L'A' + 10;
        else
            return;
        if (digits >= 16) return;
        v = (v << 4) | static_cast<Adesk::UInt64>(d);
    }
    mValue = v;
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, size_t bufferLength) const {
    if (!buffer || bufferLength == 0) return false;
    int n = std::swprintf(buffer, bufferLength, L"%llX", static_cast<unsigned long long>(mValue));
    return n > 0 && static_cast<size_t>(n) < bufferLength;
}

bool AcDbObjectId::isValid() const {
    return mStub && mStub->database;
}
bool AcDbObjectId::isErased() const {
    return mStub && mStub->erased;
}
bool AcDbObjectId::isResident() const {
    return mStub && mStub->object;
}
AcDbHandle AcDbObjectId::handle() const {
    return mStub ? AcDbHandle(mStub->handle) : AcDbHandle();
}
AcDbDatabase* AcDbObjectId::database() const {
    return mStub ? mStub->database : nullptr;
}

bool AcDbObjectId::isEffectivelyErased() const {
    // An object is effectively erased when it or any of its owners is erased.
    // The depth limit guards against ownership cycles in a damaged drawing.
    const AcDbStub* s = mStub;
    for (int depth = 0; s && depth < 64; ++depth) {
        if (s->erased) return true;
        if (!s->object) return false;
        s = s->object->ownerId().stub();
    }
    return false;
}

AcRxClass* AcDbObjectId::objectClass() const {
    return (mStub && mStub->object) ? mStub->object->isA() : nullptr;
}

bool AcDbObjectId::operator<(const AcDbObjectId& o) const {
    if (database() == o.database()) return handle() < o.handle();
    return std::less<const AcDbStub*>()(mStub, o.mStub);
}
