// CFile, CMemFile and the archive reader.
#include "archive.h"

#include "win/nativepath.h"
#include "wincodepage.h"

#include <bit>
#include <cstring>
#include <sys/stat.h>

static_assert(std::endian::native == std::endian::little, "archives are little-endian");

// ---------------------------------------------------------------- CFile

CFile::~CFile() {
    if (mFile) std::fclose(mFile);
}

BOOL CFile::Open(LPCTSTR fileName, UINT openFlags) {
    Close();
    if (!fileName || (openFlags & (modeWrite | modeReadWrite | modeCreate))) return FALSE;
    mFile = std::fopen(qorNativePath(fileName).c_str(), "rb");
    if (!mFile) return FALSE;
    // A folder opens on Linux but reads nothing; it is not a data file.
    struct stat st;
    if (fstat(fileno(mFile), &st) != 0 || !S_ISREG(st.st_mode)) {
        Close();
        return FALSE;
    }
    return TRUE;
}

void CFile::Close() {
    if (mFile) std::fclose(mFile);
    mFile = nullptr;
}

UINT CFile::Read(void* buffer, UINT count) {
    if (!mFile || !buffer) return 0;
    return static_cast<UINT>(std::fread(buffer, 1, count, mFile));
}

ULONGLONG CFile::GetLength() const {
    struct stat st;
    if (!mFile || fstat(fileno(mFile), &st) != 0) return 0;
    return static_cast<ULONGLONG>(st.st_size);
}

ULONGLONG CFile::GetPosition() const {
    if (!mFile) return 0;
    const long pos = std::ftell(mFile);
    return pos < 0 ? 0 : static_cast<ULONGLONG>(pos);
}

// ---------------------------------------------------------------- CMemFile

UINT CMemFile::Read(void* buffer, UINT count) {
    if (!buffer || mPos >= mSize) return 0;
    const UINT n = count < mSize - mPos ? count : mSize - mPos;
    std::memcpy(buffer, mData + mPos, n);
    mPos += n;
    return n;
}

// ---------------------------------------------------------------- CArchive

CArchive::CArchive(CFile* file, UINT mode) : mFile(file), mFailed(file == nullptr) {
    (void)mode; // loading is the only mode
}

UINT CArchive::Read(void* buffer, UINT count) {
    if (!buffer) return 0;
    UINT got = 0;
    if (!mFailed && mFile) got = mFile->Read(buffer, count);
    if (got < count) {
        mFailed = true;
        std::memset(static_cast<BYTE*>(buffer) + got, 0, count - got);
    }
    return got;
}

template <class T> CArchive& CArchive::readLittleEndian(T& v) {
    BYTE bytes[sizeof(T)];
    if (Read(bytes, sizeof bytes) == sizeof bytes)
        std::memcpy(&v, bytes, sizeof v);
    else
        v = T();
    return *this;
}

CArchive& CArchive::operator>>(BYTE& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(char& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(bool& v) {
    BYTE b = 0;
    *this >> b;
    v = b != 0;
    return *this;
}
CArchive& CArchive::operator>>(WORD& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(short& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(Adesk::Int32& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(DWORD& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(LONGLONG& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(ULONGLONG& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(float& v) {
    return readLittleEndian(v);
}
CArchive& CArchive::operator>>(double& v) {
    return readLittleEndian(v);
}

// Each wider length is announced by the narrower one holding all ones; the UTF-16 marker
// 0xFFFE in the 16-bit slot starts the chain again.
bool CArchive::readLength(ULONGLONG& length, bool& wide) {
    wide = false;
    BYTE b = 0;
    *this >> b;
    if (b < 0xFF) {
        length = b;
        return !mFailed;
    }
    WORD w = 0;
    *this >> w;
    if (w == 0xFFFE) {
        wide = true;
        *this >> b;
        if (b < 0xFF) {
            length = b;
            return !mFailed;
        }
        *this >> w;
    }
    if (w < 0xFFFF) {
        length = w;
        return !mFailed;
    }
    DWORD d = 0;
    *this >> d;
    if (d < 0xFFFFFFFF) {
        length = d;
        return !mFailed;
    }
    *this >> length;
    return !mFailed;
}

CArchive& CArchive::operator>>(CString& v) {
    v.Empty();
    ULONGLONG length = 0;
    bool wide = false;
    if (!readLength(length, wide)) return *this;
    // The length must fit in what is left, so a forged one never makes us allocate.
    const ULONGLONG size = mFile->GetLength(), pos = mFile->GetPosition();
    const ULONGLONG left = size > pos ? size - pos : 0;
    const ULONGLONG charSize = wide ? 2 : 1;
    if (length > left / charSize || length * charSize > 0xFFFFFFFFull) {
        mFailed = true;
        return *this;
    }
    std::string bytes(static_cast<size_t>(length * charSize), '\0');
    if (Read(bytes.data(), static_cast<UINT>(bytes.size())) != bytes.size()) return *this;
    if (!wide) {
        v = qorFromCodePage(936, bytes);
        return *this;
    }
    std::wstring units(static_cast<size_t>(length), L'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<wchar_t>(static_cast<BYTE>(bytes[2 * i]) |
                                        static_cast<BYTE>(bytes[2 * i + 1]) << 8);
    // Join surrogate pairs; a lone surrogate is kept as it was filed.
    std::wstring text;
    text.reserve(units.size());
    for (size_t i = 0; i < units.size(); ++i) {
        const wchar_t c = units[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
            units[i + 1] <= 0xDFFF) {
            text += static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00));
            ++i;
        } else {
            text += c;
        }
    }
    v = std::move(text);
    return *this;
}
