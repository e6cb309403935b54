// Reading data files in the MFC archive layout: little-endian numbers and length-prefixed
// strings. The platform only reads such files; the suite's commands write them.
//
// A read that would go past the end of the data, or a string whose length the data cannot
// hold, fails: the value read is zero (an empty string), the archive remembers the failure
// and every later read fails too, so a caller can read a whole record and check once.
#pragma once

#include "winstr.h"

#include <cstdio>

using LONGLONG = long long;
using ULONGLONG = unsigned long long;

// A file opened for reading. Paths may use '\' or '/' separators.
class CFile {
public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };

    CFile() = default;
    virtual ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // FALSE when the file cannot be opened, or when any write or create mode is asked for.
    virtual BOOL Open(LPCTSTR fileName, UINT openFlags);
    virtual void Close();
    // Up to count bytes; fewer at the end of the file, 0 when nothing is open.
    virtual UINT Read(void* buffer, UINT count);
    virtual ULONGLONG GetLength() const;
    virtual ULONGLONG GetPosition() const;

private:
    std::FILE* mFile = nullptr;
};

// Reads from bytes in memory, which must outlive it.
class CMemFile : public CFile {
public:
    CMemFile(const BYTE* buffer, UINT size) : mData(buffer), mSize(buffer ? size : 0) {}

    BOOL Open(LPCTSTR, UINT) override { return FALSE; }
    void Close() override { mPos = mSize; }
    UINT Read(void* buffer, UINT count) override;
    ULONGLONG GetLength() const override { return mSize; }
    ULONGLONG GetPosition() const override { return mPos; }

private:
    const BYTE* mData;
    UINT mSize;
    UINT mPos = 0;
};

class CArchive {
public:
    enum Mode { load = 1 };

    // The file stays the caller's; a null file makes every read fail.
    CArchive(CFile* file, UINT mode);

    BOOL IsLoading() const { return TRUE; }
    BOOL IsStoring() const { return FALSE; }
    CFile* GetFile() const { return mFile; }
    // Detaches the file; later reads fail.
    void Close() { mFile = nullptr; }

    // True once any read has failed.
    bool Failed() const { return mFailed; }

    // Raw bytes: the number read. A short read marks the archive failed, and the bytes not
    // read are zero.
    UINT Read(void* buffer, UINT count);

    CArchive& operator>>(BYTE& v);
    CArchive& operator>>(char& v);
    CArchive& operator>>(bool& v);
    CArchive& operator>>(WORD& v);
    CArchive& operator>>(short& v);
    CArchive& operator>>(Adesk::Int32& v); // int, LONG
    CArchive& operator>>(DWORD& v);        // UINT
    CArchive& operator>>(LONGLONG& v);
    CArchive& operator>>(ULONGLONG& v);
    CArchive& operator>>(float& v);
    CArchive& operator>>(double& v);
    // The MFC string encoding: a one-byte length, or 0xFF and a 16-bit length, or 0xFF 0xFFFF
    // and a 32-bit length (and 0xFFFFFFFF and a 64-bit one); the prefix 0xFF 0xFFFE before the
    // length marks UTF-16 text, otherwise the characters are bytes in code page 936.
    CArchive& operator>>(CString& v);

    // A filed `long` is 32 bits on the system that wrote the file but 64 here: read an int,
    // LONG or DWORD instead.
    CArchive& operator>>(long& v) = delete;
    CArchive& operator>>(unsigned long& v) = delete;

private:
    template <class T> CArchive& readLittleEndian(T& v);
    bool readLength(ULONGLONG& length, bool& wide);

    CFile* mFile;
    bool mFailed = false;
};
