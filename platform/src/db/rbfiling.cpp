#include "rbfiling.h"

#include "dbdict.h"
#include "dbmain.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

void writeXDataItem(AcDbDwgFiler* f, const resbuf* rb) {
    f->writeInt16(rb->restype);
    switch (acdbGroupCodeToType(rb->restype)) {
    case RTREAL:
    case RTANG:
        f->writeDouble(rb->resval.rreal);
        break;
    case RTPOINT:
    case RT3DPOINT:
        f->writePoint3d(
            AcGePoint3d(rb->resval.rpoint[0], rb->resval.rpoint[1], rb->resval.rpoint[2]));
        break;
    case RTSHORT:
        f->writeInt16(rb->resval.rint);
        break;
    case RTLONG:
        f->writeInt32(rb->resval.rlong);
        break;
    case RTINT64:
        f->writeInt64(rb->resval.mnInt64);
        break;
    case RTSTR:
        f->writeString(rb->resval.rstring ? rb->resval.rstring : L"");
        break;
    case RTENAME: {
        AcDbObjectId id;
        acdbGetObjectId(id, rb->resval.rlname);
        f->writeAcDbHandle(id.handle());
        break;
    }
    default: { // binary chunks and anything without a value kind
        f->writeBChunk(rb->resval.rbinary);
        break;
    }
    }
}

resbuf* readXDataItem(AcDbDwgFiler* f) {
    Adesk::Int16 code = 0;
    if (f->readInt16(&code) != Acad::eOk) return nullptr;
    resbuf* rb = acutNewRb(code);
    switch (acdbGroupCodeToType(code)) {
    case RTREAL:
    case RTANG:
        f->readDouble(&rb->resval.rreal);
        break;
    case RTPOINT:
    case RT3DPOINT: {
        AcGePoint3d p;
        f->readPoint3d(&p);
        rb->resval.rpoint[0] = p.x, rb->resval.rpoint[1] = p.y, rb->resval.rpoint[2] = p.z;
        break;
    }
    case RTSHORT:
        f->readInt16(&rb->resval.rint);
        break;
    case RTLONG:
        f->readInt32(&rb->resval.rlong);
        break;
    case RTINT64:
        f->readInt64(&rb->resval.mnInt64);
        break;
    case RTSTR: {
        ACHAR* s = nullptr;
        f->readString(&s);
        rb->resval.rstring = s;
        break;
    }
    case RTENAME: {
        AcDbHandle h;
        f->readAcDbHandle(&h);
        AcDbObjectId id;
        if (AcDbDatabase* db = f->database(); db && !h.isNull()) db->getAcDbObjectId(id, true, h);
        acdbGetAdsName(rb->resval.rlname, id);
        break;
    }
    default:
        f->readBChunk(&rb->resval.rbinary);
        break;
    }
    return rb;
}

} // namespace

Acad::ErrorStatus acdbWriteRbChain(AcDbDwgFiler* filer, const resbuf* chain) {
    Adesk::UInt32 n = 0;
    for (const resbuf* rb = chain; rb; rb = rb->rbnext)
        ++n;
    filer->writeUInt32(n);
    for (const resbuf* rb = chain; rb; rb = rb->rbnext)
        writeXDataItem(filer, rb);
    return filer->filerStatus();
}

Acad::ErrorStatus acdbReadRbChain(AcDbDwgFiler* filer, resbuf*& chain) {
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    resbuf** tail = &chain;
    while (*tail)
        tail = &(*tail)->rbnext;
    // Stops at the first filer error, so a damaged count cannot run away.
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        resbuf* rb = readXDataItem(filer);
        if (!rb) break;
        *tail = rb;
        tail = &rb->rbnext;
    }
    return filer->filerStatus();
}

resbuf* acutCopyRbChain(const resbuf* chain) {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    for (const resbuf* rb = chain; rb; rb = rb->rbnext) {
        resbuf* copy = acutNewRb(rb->restype);
        copy->resval = rb->resval;
        const int kind = acdbGroupCodeToType(rb->restype);
        if ((kind == RTSTR || rb->restype == RTSTR) && rb->resval.rstring) {
            size_t len = std::wcslen(rb->resval.rstring) + 1;
            copy->resval.rstring = static_cast<ACHAR*>(std::malloc(len * sizeof(ACHAR)));
            std::wmemcpy(copy->resval.rstring, rb->resval.rstring, len);
        } else if (kind == RTRESBUF || rb->restype == AcDb::kDxfXdBinaryChunk ||
                   (rb->restype >= 310 && rb->restype <= 319)) {
            copy->resval.rbinary.buf = nullptr;
            if (rb->resval.rbinary.buf && rb->resval.rbinary.clen > 0) {
                copy->resval.rbinary.buf =
                    static_cast<char*>(std::malloc(static_cast<size_t>(rb->resval.rbinary.clen)));
                std::memcpy(copy->resval.rbinary.buf, rb->resval.rbinary.buf,
                            static_cast<size_t>(rb->resval.rbinary.clen));
            }
        }
        copy->rbnext = nullptr;
        *tail = copy;
        tail = &copy->rbnext;
    }
    return head;
}
