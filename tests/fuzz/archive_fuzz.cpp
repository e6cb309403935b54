// Feeds arbitrary bytes to the archive reader. The first byte chooses how many kind bytes
// follow; each kind picks the next value to read from the rest, the archive data. Any result
// is fine; reading out of bounds, leaking or allocating past the data is not.
#include "archive.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

void readOne(CArchive& ar, std::uint8_t kind) {
    switch (kind % 9) {
    case 0: {
        int v;
        ar >> v;
        break;
    }
    case 1: {
        double v;
        ar >> v;
        break;
    }
    case 2: {
        CString s;
        ar >> s;
        break;
    }
    case 3: {
        BYTE v;
        ar >> v;
        break;
    }
    case 4: {
        WORD v;
        ar >> v;
        break;
    }
    case 5: {
        LONGLONG v;
        ar >> v;
        break;
    }
    case 6: {
        float v;
        ar >> v;
        break;
    }
    case 7: {
        bool v;
        ar >> v;
        break;
    }
    default: {
        std::vector<BYTE> buf(kind / 9);
        ar.Read(buf.data(), static_cast<UINT>(buf.size()));
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const size_t count = data[0] % 33;
    if (size < 1 + count) return 0;
    // A heap copy of exactly the archive's size, so any over-read is caught.
    std::vector<BYTE> bytes(data + 1 + count, data + size);
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    for (size_t i = 0; i < count; ++i)
        readOne(ar, data[1 + i]);
    return 0;
}
