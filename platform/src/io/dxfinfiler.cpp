// Replaying a record's groups to dxfInFields.
#include "io/dxfinfiler.h"

#include "dbmain.h"
#include "io/dxfoutfiler.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qor::dxf {

namespace {

constexpr double kPi = 3.14159265358979323846;

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::wstring hexText(std::uint64_t v) {
    static const wchar_t digits[] = L"0123456789ABCDEF";
    std::wstring s;
    do {
        s.insert(s.begin(), digits[v & 0xF]);
        v >>= 4;
    } while (v);
    return s;
}

} // namespace

int InFiler::line() const {
    if (mGroups.empty()) return 0;
    return mGroups[std::min(mLastStart, mGroups.size() - 1)]->line;
}

Acad::ErrorStatus InFiler::fail(Acad::ErrorStatus es) {
    mStatus = es;
    mCanPushBack = false;
    return es;
}

Acad::ErrorStatus InFiler::readItem(resbuf* rb) {
    if (!rb) return Acad::eInvalidInput;
    rb->rbnext = nullptr;
    rb->restype = RTNONE;
    std::memset(static_cast<void*>(&rb->resval), 0, sizeof rb->resval);
    if (mStatus != Acad::eOk) return mStatus;
    if (mPos >= mGroups.size()) return fail(Acad::eEndOfFile);

    mLastStart = mPos;
    const Group& g = *mGroups[mPos++];
    ads_u_val& v = rb->resval;
    const int type = acdbGroupCodeToType(g.code);
    switch (g.kind) {
    case Kind::kReal:
        if (isPointStart(g.code)) {
            v.rpoint[0] = g.real;
            if (mPos < mGroups.size() && mGroups[mPos]->code == g.code + 10) {
                v.rpoint[1] = mGroups[mPos++]->real;
                if (mPos < mGroups.size() && mGroups[mPos]->code == g.code + 20)
                    v.rpoint[2] = mGroups[mPos++]->real;
            }
        } else {
            v.rreal = isAngleCode(g.code) ? g.real * kPi / 180.0 : g.real;
        }
        break;
    case Kind::kInteger:
        if (type == RTSHORT) {
            if (g.integer < std::numeric_limits<short>::min() ||
                g.integer > std::numeric_limits<unsigned short>::max())
                return fail(Acad::eInvalidResBuf);
            v.rint = static_cast<short>(g.integer);
        } else if (type == RTINT64) {
            v.mnInt64 = g.integer;
        } else {
            if (g.integer < std::numeric_limits<Adesk::Int32>::min() ||
                g.integer > std::numeric_limits<Adesk::UInt32>::max())
                return fail(Acad::eInvalidResBuf);
            v.rlong = static_cast<Adesk::Int32>(g.integer);
        }
        break;
    case Kind::kHandle: {
        const AcDbObjectId id = g.handle() && mResolve ? mResolve(g.handle()) : AcDbObjectId();
        if (type == RTENAME) {
            acdbGetAdsName(v.rlname, id);
        } else {
            // Handles kept as text name the objects as this database numbers them.
            mString = id.isNull() ? mText(g.trimmed()) : hexText(id.handle().value());
            v.rstring = mString.data();
        }
        break;
    }
    case Kind::kBinary: {
        const std::string_view hex = g.trimmed();
        if (hex.size() % 2 != 0 ||
            hex.size() / 2 > static_cast<size_t>(std::numeric_limits<short>::max()))
            return fail(Acad::eInvalidResBuf);
        mChunk.assign(hex.size() / 2, 0);
        for (size_t i = 0; i < mChunk.size(); ++i) {
            const int hi = hexValue(hex[2 * i]), lo = hexValue(hex[2 * i + 1]);
            if (hi < 0 || lo < 0) return fail(Acad::eInvalidResBuf);
            mChunk[i] = static_cast<char>(hi * 16 + lo);
        }
        v.rbinary.clen = static_cast<short>(mChunk.size());
        v.rbinary.buf = mChunk.empty() ? nullptr : mChunk.data();
        break;
    }
    case Kind::kText:
        mString = mText(g.raw);
        v.rstring = mString.data();
        break;
    }
    rb->restype = g.code;
    mCanPushBack = true;
    return Acad::eOk;
}

Acad::ErrorStatus InFiler::pushBackItem() {
    if (!mCanPushBack) return Acad::eInvalidInput;
    mPos = mLastStart;
    mCanPushBack = false;
    return Acad::eOk;
}

bool InFiler::atSubclassData(const ACHAR* subClassName) {
    if (mStatus != Acad::eOk || !subClassName || mPos >= mGroups.size()) return false;
    const Group& g = *mGroups[mPos];
    if (g.code != AcDb::kDxfSubclass || mText(g.trimmed()) != subClassName) return false;
    mLastStart = mPos++;
    mCanPushBack = true;
    return true;
}

} // namespace qor::dxf
