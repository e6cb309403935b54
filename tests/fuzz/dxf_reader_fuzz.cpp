// Feeds arbitrary bytes to the DXF reader, each time into a fresh drawing. The first byte
// chooses whether the rest is the whole file or the inside of one section, so that the runs
// reach the tables, blocks, entities and objects and not only the splitter. A registered
// class reads whatever its records hold through dxfInFields. Any status is fine; reading out
// of bounds, leaking or crashing is not.
#include "dbdxf.h"
#include "dbmain.h"

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string>

namespace {

// Reads every group it is handed, as a module's class would, whatever their kinds.
class FuzzMark : public AcDbEntity {
public:
    static AcRxClass* sDesc;
    AcRxClass* isA() const override { return sDesc; }

    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* f) override {
        if (Acad::ErrorStatus es = AcDbEntity::dxfInFields(f); es != Acad::eOk) return es;
        f->atSubclassData(L"FuzzMark");
        resbuf rb{};
        bool lookedAhead = false;
        while (f->readItem(&rb) == Acad::eOk) {
            // Strings and chunks are read to their ends, so that a short one shows.
            if (rb.restype >= 1 && rb.restype < 10 && rb.resval.rstring)
                seen += std::wcslen(rb.resval.rstring);
            if (rb.restype == 310 && rb.resval.rbinary.clen > 0)
                seen +=
                    static_cast<unsigned char>(rb.resval.rbinary.buf[rb.resval.rbinary.clen - 1]);
            // The first real is read twice, as readers that look ahead do.
            if (rb.restype == 40 && !lookedAhead) {
                lookedAhead = true;
                f->pushBackItem();
            }
        }
        return Acad::eOk;
    }

    size_t seen = 0;
};
AcRxClass* FuzzMark::sDesc = nullptr;

const char* const kSections[] = {"HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    if (!FuzzMark::sDesc)
        FuzzMark::sDesc = newAcRxClass(
            L"FuzzMark", L"AcDbEntity", 29, 63, 0,
            [] { return static_cast<AcRxObject*>(new FuzzMark()); }, L"FUZZMARK", L"FUZZ");
    if (size < 1) return 0;
    const std::string rest(reinterpret_cast<const char*>(data + 1), size - 1);
    const unsigned choice = data[0] % 7;
    std::string text;
    if (choice == 6)
        text = rest;
    else
        text = std::string("  0\nSECTION\n  2\n") + kSections[choice] + "\n" + rest +
               "\n  0\nENDSEC\n  0\nEOF\n";
    AcDbDatabase db;
    QorDxfReport report;
    qorReadDxfBytes(&db, text, &report);
    return 0;
}
