// Result-buffer chains: allocation, release, building from argument lists, and the storage
// kind of each DXF group code.
#include "dbfilers.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

// Types that stand for themselves in a list and carry no value.
bool carriesNoValue(int type) {
    switch (type) {
    case RTLB:
    case RTLE:
    case RTDOTE:
    case RTNIL:
    case RTT:
    case RTVOID:
    case AcDb::kDxfXDataStart:
        return true;
    default:
        return false;
    }
}

ACHAR* copyString(const ACHAR* s) {
    if (!s) return nullptr;
    const size_t n = std::wcslen(s) + 1;
    auto* out = static_cast<ACHAR*>(std::malloc(n * sizeof(ACHAR)));
    if (out) std::wmemcpy(out, s, n);
    return out;
}

} // namespace

int acdbGroupCodeToType(int code) {
    // The result codes of the host interface name their own storage.
    switch (code) {
    case RTREAL:
        return RTREAL;
    case RTANG:
    case RTORINT:
        return RTANG;
    case RTPOINT:
        return RTPOINT;
    case RT3DPOINT:
        return RT3DPOINT;
    case RTSHORT:
        return RTSHORT;
    case RTLONG:
        return RTLONG;
    case RTINT64:
        return RTINT64;
    case RTSTR:
    case RTDXF0:
        return RTSTR;
    case RTENAME:
    case RTPICKS:
        return RTENAME;
    case AcDb::kDxfEnd:      // entity name
    case AcDb::kDxfHeaderId: // entity name of the header or owner
        return RTENAME;
    case AcDb::kDxfOperator: // filter operators such as "<and"
        return RTSTR;
    default:
        break;
    }

    if (code >= 0 && code <= 9) return RTSTR; // 5 is the handle, as text
    if (code >= 10 && code <= 39) return RT3DPOINT;
    if (code >= 40 && code <= 59) return RTREAL;
    if (code >= 60 && code <= 79) return RTSHORT;
    if (code >= 90 && code <= 99) return RTLONG;
    if (code >= 100 && code <= 102) return RTSTR;
    if (code == 105) return RTSTR;
    if (code >= 110 && code <= 139) return RT3DPOINT;
    if (code >= 140 && code <= 149) return RTREAL;
    if (code >= 160 && code <= 169) return RTINT64;
    if (code >= 170 && code <= 179) return RTSHORT;
    if (code >= 210 && code <= 239) return RT3DPOINT;
    if (code >= 270 && code <= 289) return RTSHORT; // 280-289 are 8-bit values
    if (code >= 290 && code <= 299) return RTSHORT; // booleans
    if (code >= 300 && code <= 309) return RTSTR;
    if (code >= 310 && code <= 319) return RTRESBUF; // binary chunks
    if (code >= 320 && code <= 329) return RTSTR;    // arbitrary handles, as text
    if (code >= 330 && code <= 369) return RTENAME;
    if (code >= 370 && code <= 389) return RTSHORT;
    if (code >= 390 && code <= 399) return RTENAME;
    if (code >= 400 && code <= 409) return RTSHORT;
    if (code >= 410 && code <= 419) return RTSTR;
    if (code >= 420 && code <= 429) return RTLONG;
    if (code >= 430 && code <= 439) return RTSTR;
    if (code >= 440 && code <= 459) return RTLONG;
    if (code >= 460 && code <= 469) return RTREAL;
    if (code >= 470 && code <= 479) return RTSTR;
    if (code >= 480 && code <= 481) return RTENAME;
    if (code == 999) return RTSTR;
    if (code == 1004) return RTRESBUF;
    if (code >= 1000 && code <= 1009) return RTSTR; // 1002 is "{" or "}", 1005 a handle
    if (code >= 1010 && code <= 1039) return RT3DPOINT;
    if (code >= 1040 && code <= 1059) return RTREAL;
    if (code >= 1060 && code <= 1070) return RTSHORT;
    if (code == 1071) return RTLONG;
    return RTNONE;
}

resbuf* acutNewRb(int type) {
    // Zeroed storage: null link, strings and chunks. A resbuf is a plain aggregate, so
    // calloc gives a live one.
    auto* rb = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
    if (rb) rb->restype = static_cast<short>(type);
    return rb;
}

int acutRelRb(resbuf* rb) {
    while (rb) {
        resbuf* next = rb->rbnext;
        switch (acdbGroupCodeToType(rb->restype)) {
        case RTSTR:
            std::free(rb->resval.rstring);
            break;
        case RTRESBUF:
            std::free(rb->resval.rbinary.buf);
            break;
        default:
            break;
        }
        std::free(rb);
        rb = next;
    }
    return RTNORM;
}

// Values are read by the storage kind of their type: reals as double, points as a pointer
// to three doubles, shorts and 32-bit integers as int, 64-bit integers as Adesk::Int64,
// strings as const ACHAR* (copied), entity names as ads_name, binary chunks as a pointer to
// an ads_binary (copied). A type with no known storage ends the build with no list, since
// its value cannot be skipped.
resbuf* acutBuildList(int type, ...) {
    va_list ap;
    va_start(ap, type);
    resbuf* head = nullptr;
    resbuf** tail = &head;
    bool ok = true;
    for (int t = type; t != 0 && t != RTNONE; t = va_arg(ap, int)) {
        const int kind = acdbGroupCodeToType(t);
        if (kind == RTNONE && !carriesNoValue(t)) {
            ok = false;
            break;
        }
        resbuf* rb = acutNewRb(t);
        if (!rb) {
            ok = false;
            break;
        }
        *tail = rb;
        tail = &rb->rbnext;
        ads_u_val& v = rb->resval;
        switch (kind) {
        case RTREAL:
        case RTANG:
            v.rreal = va_arg(ap, double);
            break;
        case RTPOINT:
        case RT3DPOINT:
            if (const double* p = va_arg(ap, const double*))
                std::memcpy(v.rpoint, p, sizeof v.rpoint);
            break;
        case RTSHORT:
            v.rint = static_cast<short>(va_arg(ap, int));
            break;
        case RTLONG:
            v.rlong = static_cast<Adesk::Int32>(va_arg(ap, int));
            break;
        case RTINT64:
            v.mnInt64 = va_arg(ap, Adesk::Int64);
            break;
        case RTSTR:
            if (const ACHAR* s = va_arg(ap, const ACHAR*)) {
                v.rstring = copyString(s);
                ok = v.rstring != nullptr;
            }
            break;
        case RTENAME:
            if (const Adesk::IntPtr* name = va_arg(ap, const Adesk::IntPtr*)) {
                v.rlname[0] = name[0];
                v.rlname[1] = name[1];
            }
            break;
        case RTRESBUF: {
            const ads_binary* chunk = va_arg(ap, const ads_binary*);
            if (chunk && chunk->buf && chunk->clen > 0) {
                v.rbinary.buf = static_cast<char*>(std::malloc(static_cast<size_t>(chunk->clen)));
                ok = v.rbinary.buf != nullptr;
                if (ok) {
                    std::memcpy(v.rbinary.buf, chunk->buf, static_cast<size_t>(chunk->clen));
                    v.rbinary.clen = chunk->clen;
                }
            }
            break;
        }
        default:
            break;
        }
        if (!ok) break;
    }
    va_end(ap);
    if (!ok) {
        acutRelRb(head);
        return nullptr;
    }
    return head;
}
