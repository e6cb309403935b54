// The TABLES section. The platform's table records have no DXF filing of their own, so their
// groups are written here; the tables the platform does not keep (viewports, views, user
// coordinate systems, dimension styles) get the records a strict reader needs.
#include "io/dxfwriter.h"

#include "dbsymtb.h"

#include <algorithm>

namespace qor::dxf {

namespace {

void tableHead(OutFiler& f, const char* name, std::uint64_t handle, int count) {
    f.ascii(0, "TABLE");
    f.ascii(2, name);
    f.handle(5, handle);
    f.handle(330, 0);
    f.ascii(100, "AcDbSymbolTable");
    f.integer(70, count);
}

void markers(OutFiler& f, const char* subclass) {
    f.ascii(100, "AcDbSymbolTableRecord");
    f.ascii(100, subclass);
}

std::vector<AcDbObjectId> recordsOf(AcDbObjectId tableId) {
    std::vector<AcDbObjectId> ids;
    ReadOpen<AcDbSymbolTable> table(tableId);
    if (!table) return ids;
    for (AcDbObjectId id : table->recordIds())
        if (!id.isErased()) ids.push_back(id);
    return ids;
}

int layerAci(const AcCmColor& c) {
    int aci =
        c.isByColor() ? AcCmEntityColor::lookUpACI(c.red(), c.green(), c.blue()) : c.colorIndex();
    return aci >= 1 && aci <= 255 ? aci : 7;
}

} // namespace

void Writer::tables(OutFiler& f) {
    const auto handleOfTable = [](AcDbObjectId id) { return handleOf(id); };

    // ------------------------------------------------ VPORT: the view that opens the drawing
    tableHead(f, "VPORT", mVportTable, 1);
    {
        AcGePoint3d lo(0, 0, 0), hi(100, 100, 0);
        if (mExtents.isValid()) {
            lo = mExtents.minPoint();
            hi = mExtents.maxPoint();
        }
        constexpr double kAspect = 1.5;
        const double height = std::max({(hi.y - lo.y) * 1.1, (hi.x - lo.x) * 1.1 / kAspect, 1.0});
        head(f, L"VPORT", mActiveVport, mVportTable);
        markers(f, "AcDbViewportTableRecord");
        f.ascii(2, "*Active");
        f.integer(70, 0);
        f.point(10, 0.0, 0.0);
        f.point(11, 1.0, 1.0);
        f.point(12, (lo.x + hi.x) / 2, (lo.y + hi.y) / 2);
        f.point(13, 0.0, 0.0);
        f.point(14, 10.0, 10.0);
        f.point(15, 10.0, 10.0);
        f.point(16, 0.0, 0.0, 1.0);
        f.point(17, 0.0, 0.0, 0.0);
        f.real(40, height);
        f.real(41, kAspect);
        f.real(42, 50.0);
        f.real(43, 0.0);
        f.real(44, 0.0);
        f.real(50, 0.0);
        f.real(51, 0.0);
        f.integer(71, 0);
        f.integer(72, 1000);
        f.integer(73, 1);
        f.integer(74, 3);
        f.integer(75, 0);
        f.integer(76, 0);
        f.integer(77, 0);
        f.integer(78, 0);
        f.integer(281, 0);
        f.integer(65, 1);
        f.point(110, 0.0, 0.0, 0.0);
        f.point(111, 1.0, 0.0, 0.0);
        f.point(112, 0.0, 1.0, 0.0);
        f.integer(79, 0);
        f.real(146, 0.0);
    }
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ LTYPE
    const AcDbObjectId ltypeTable = mDb->linetypeTableId();
    const auto ltypes = recordsOf(ltypeTable);
    tableHead(f, "LTYPE", handleOfTable(ltypeTable), static_cast<int>(ltypes.size()));
    for (AcDbObjectId id : ltypes) {
        ReadOpen<AcDbLinetypeTableRecord> rec(id);
        if (!rec) continue;
        head(f, L"LTYPE", handleOf(id), handleOf(ltypeTable), rec.get());
        markers(f, "AcDbLinetypeTableRecord");
        f.text(2, rec->name());
        f.integer(70, 0);
        f.text(3, rec->comments());
        f.integer(72, 65);
        f.integer(73, rec->numDashes());
        f.real(40, rec->patternLength());
        for (int i = 0; i < rec->numDashes(); ++i) {
            f.real(49, rec->dashLengthAt(i));
            f.integer(74, 0);
        }
        xdata(f, rec.get());
    }
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ LAYER
    const AcDbObjectId layerTable = mDb->layerTableId();
    const auto layers = recordsOf(layerTable);
    tableHead(f, "LAYER", handleOfTable(layerTable), static_cast<int>(layers.size()));
    for (AcDbObjectId id : layers) {
        ReadOpen<AcDbLayerTableRecord> rec(id);
        if (!rec) continue;
        head(f, L"LAYER", handleOf(id), handleOf(layerTable), rec.get());
        markers(f, "AcDbLayerTableRecord");
        f.text(2, rec->name());
        f.integer(70, (rec->isFrozen() ? 1 : 0) | (rec->isLocked() ? 4 : 0));
        const AcCmColor color = rec->color();
        const int aci = layerAci(color);
        // A layer that is off has its colour negated.
        f.integer(62, rec->isOff() ? -aci : aci);
        if (color.isByColor())
            f.integer(420, (color.red() << 16) | (color.green() << 8) | color.blue());
        f.text(6, recordNameOf(rec->linetypeObjectId(), L"Continuous"));
        if (!rec->isPlottable()) f.integer(290, 0);
        f.integer(370, static_cast<int>(rec->lineWeight()));
        xdata(f, rec.get());
    }
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ STYLE
    const AcDbObjectId styleTable = mDb->textStyleTableId();
    const auto styles = recordsOf(styleTable);
    tableHead(f, "STYLE", handleOfTable(styleTable), static_cast<int>(styles.size()));
    for (AcDbObjectId id : styles) {
        ReadOpen<AcDbTextStyleTableRecord> rec(id);
        if (!rec) continue;
        head(f, L"STYLE", handleOf(id), handleOf(styleTable), rec.get());
        markers(f, "AcDbTextStyleTableRecord");
        f.text(2, rec->name());
        f.integer(70, 0);
        f.real(40, rec->textSize());
        f.real(41, rec->xScale());
        f.real(50, rec->obliquingAngle());
        f.integer(71, 0);
        f.real(42, rec->textSize() > 0.0 ? rec->textSize() : mDb->textsize());
        f.text(3, rec->fileName());
        f.text(4, rec->bigFontFileName());
        resbuf* own = rec->xData(L"ACAD");
        xdata(f, rec.get());
        // A TrueType face travels as the ACAD application's data, as other programs expect.
        ACHAR* face = nullptr;
        bool bold = false, italic = false;
        int charset = 0, pitch = 0;
        if (!own && rec->font(face, bold, italic, charset, pitch) == Acad::eOk && face && *face) {
            mApps.insert(L"ACAD");
            f.ascii(1001, "ACAD");
            f.text(1000, face);
            f.integer(1071, ((charset & 0xFF) << 8) | (pitch & 0xFF) | (italic ? 0x1000000 : 0) |
                                (bold ? 0x2000000 : 0));
        }
        delete[] face;
        acutRelRb(own);
    }
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ VIEW and UCS: none kept
    tableHead(f, "VIEW", mViewTable, 0);
    f.ascii(0, "ENDTAB");
    tableHead(f, "UCS", mUcsTable, 0);
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ APPID: the database's and any named by
    // extended data without a record
    const AcDbObjectId appTable = mDb->regAppTableId();
    const auto apps = recordsOf(appTable);
    std::vector<std::wstring> extra;
    {
        std::set<std::wstring> known;
        for (AcDbObjectId id : apps)
            known.insert(upperCase(recordNameOf(id, L"")));
        for (const std::wstring& app : mApps)
            if (!known.count(app)) extra.push_back(app);
    }
    tableHead(f, "APPID", handleOfTable(appTable), static_cast<int>(apps.size() + extra.size()));
    for (AcDbObjectId id : apps) {
        ReadOpen<AcDbRegAppTableRecord> rec(id);
        if (!rec) continue;
        head(f, L"APPID", handleOf(id), handleOf(appTable), rec.get());
        markers(f, "AcDbRegAppTableRecord");
        f.text(2, rec->name());
        f.integer(70, 0);
    }
    for (const std::wstring& app : extra) {
        head(f, L"APPID", newHandle(), handleOf(appTable));
        markers(f, "AcDbRegAppTableRecord");
        f.text(2, app);
        f.integer(70, 0);
    }
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ DIMSTYLE: the standard one
    tableHead(f, "DIMSTYLE", mDimStyleTable, 1);
    f.ascii(100, "AcDbDimStyleTable");
    f.integer(71, 1);
    f.handle(340, mStandardDimStyle);
    head(f, L"DIMSTYLE", mStandardDimStyle, mDimStyleTable, nullptr, 105);
    markers(f, "AcDbDimStyleTableRecord");
    f.ascii(2, "Standard");
    f.integer(70, 0);
    if (!mDb->textstyle().isNull()) f.handle(340, handleOf(mDb->textstyle()));
    f.ascii(0, "ENDTAB");

    // ------------------------------------------------ BLOCK_RECORD
    const AcDbObjectId blockTable = mDb->blockTableId();
    tableHead(f, "BLOCK_RECORD", handleOfTable(blockTable), static_cast<int>(mBlocks.size()));
    for (const Block& b : mBlocks) {
        ReadOpen<AcDbBlockTableRecord> rec(b.id);
        if (!rec) continue;
        head(f, L"BLOCK_RECORD", handleOf(b.id), handleOf(blockTable), rec.get());
        markers(f, "AcDbBlockTableRecord");
        f.text(2, rec->name());
        const std::uint64_t layout = b.id == mModelSpace   ? mModelLayout
                                     : b.id == mPaperSpace ? mPaperLayout
                                                           : 0;
        f.handle(340, layout);
        f.integer(70, 0);
        f.integer(280, 1);
        f.integer(281, 0);
        xdata(f, rec.get());
    }
    f.ascii(0, "ENDTAB");
}

} // namespace qor::dxf
