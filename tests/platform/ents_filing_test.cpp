// Filing, listing and drawing of the plain entities, and block references in a database.
#include "cmdline.h"
#include "dbents.h"
#include "dbfilers.h"
#include "dbsymtb.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

AcDbObjectId resolveNothing(AcDbHandle) {
    return AcDbObjectId();
}

// Files e out and into a fresh object of its class through the typed stream.
template <class T> std::unique_ptr<T> roundTrip(const T& e, AcDbDatabase* db = nullptr) {
    AcDbStreamDwgFiler out;
    EXPECT_EQ(e.dwgOutFields(&out), Acad::eOk);
    auto back = std::make_unique<T>();
    auto resolve = [db](AcDbHandle h) {
        AcDbObjectId id;
        if (db && !h.isNull()) db->getAcDbObjectId(id, false, h);
        return id;
    };
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), resolve, db);
    EXPECT_EQ(back->dwgInFields(&in), Acad::eOk);
    return back;
}

// Every shorter prefix of a valid record must fail cleanly.
template <class T> void truncationsFail(const T& e) {
    AcDbStreamDwgFiler out;
    ASSERT_EQ(e.dwgOutFields(&out), Acad::eOk);
    const std::vector<std::uint8_t> bytes = out.bytes();
    for (size_t n = 0; n < bytes.size(); ++n) {
        T back;
        AcDbStreamDwgFiler in(bytes.data(), n, resolveNothing, nullptr);
        EXPECT_NE(back.dwgInFields(&in), Acad::eOk) << "prefix " << n;
    }
}

// A DXF filer over a list of groups, as the exchange reader and writer present them.
class GroupFiler : public AcDbDxfFiler {
public:
    struct Group {
        explicit Group(int c) : code(c) {}
        int code;
        double v[3] = {0, 0, 0};
        long long i = 0;
        std::wstring s;
        bool isString = false, isAngle = false;
    };
    std::vector<Group> groups;
    size_t pos = 0;

    Acad::ErrorStatus filerStatus() const override { return mStatus; }
    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    void setFilerStatus(Acad::ErrorStatus es) override { mStatus = es; }
    void resetFilerStatus() override { mStatus = Acad::eOk; }

    Acad::ErrorStatus readItem(resbuf* rb) override {
        if (pos >= groups.size()) return Acad::eEndOfFile;
        Group& g = groups[pos++];
        *rb = resbuf{};
        rb->restype = static_cast<short>(g.code);
        if (g.isString)
            rb->resval.rstring = g.s.data();
        else if (g.code >= 10 && g.code < 40) {
            for (int k = 0; k < 3; ++k)
                rb->resval.rpoint[k] = g.v[k];
        } else if (g.code >= 210 && g.code < 240) {
            for (int k = 0; k < 3; ++k)
                rb->resval.rpoint[k] = g.v[k];
        } else if (g.code >= 60 && g.code < 80)
            rb->resval.rint = static_cast<short>(g.i);
        else if (g.code >= 90 && g.code < 100)
            rb->resval.rlong = static_cast<Adesk::Int32>(g.i);
        else
            rb->resval.rreal = g.isAngle ? g.v[0] * kPi / 180.0 : g.v[0];
        return Acad::eOk;
    }
    Acad::ErrorStatus pushBackItem() override {
        if (pos > 0) --pos;
        return Acad::eOk;
    }
    bool atEOF() override { return pos >= groups.size(); }
    bool atSubclassData(const ACHAR* name) override {
        if (pos < groups.size() && groups[pos].code == 100 && groups[pos].s == name) {
            ++pos;
            return true;
        }
        return false;
    }
    bool atExtendedData() override { return false; }
    bool atEndOfObject() override { return atEOF(); }

    Acad::ErrorStatus writeItem(const resbuf&) override { return Acad::eOk; }
    Acad::ErrorStatus writeObjectId(AcDb::DxfCode c, const AcDbObjectId&) override {
        return add(c, 0.0);
    }
    Acad::ErrorStatus writeString(AcDb::DxfCode c, const ACHAR* s) override {
        Group g(c);
        g.s = s ? s : L"";
        g.isString = true;
        groups.push_back(g);
        return Acad::eOk;
    }
    Acad::ErrorStatus writeBool(AcDb::DxfCode c, bool v) override { return addInt(c, v); }
    Acad::ErrorStatus writeInt8(AcDb::DxfCode c, Adesk::Int8 v) override { return addInt(c, v); }
    Acad::ErrorStatus writeInt16(AcDb::DxfCode c, Adesk::Int16 v) override { return addInt(c, v); }
    Acad::ErrorStatus writeInt32(AcDb::DxfCode c, Adesk::Int32 v) override { return addInt(c, v); }
    Acad::ErrorStatus writeUInt8(AcDb::DxfCode c, Adesk::UInt8 v) override { return addInt(c, v); }
    Acad::ErrorStatus writeUInt16(AcDb::DxfCode c, Adesk::UInt16 v) override {
        return addInt(c, v);
    }
    Acad::ErrorStatus writeUInt32(AcDb::DxfCode c, Adesk::UInt32 v) override {
        return addInt(c, v);
    }
    Acad::ErrorStatus writeInt64(AcDb::DxfCode c, Adesk::Int64 v) override { return addInt(c, v); }
    Acad::ErrorStatus writeHandle(AcDb::DxfCode c, const AcDbHandle&) override {
        return addInt(c, 0);
    }
    Acad::ErrorStatus writeDouble(AcDb::DxfCode c, double v, int) override { return add(c, v); }
    Acad::ErrorStatus writeAngle(AcDb::DxfCode c, double v, int) override {
        // Angles are degrees in the file.
        add(c, v * 180.0 / kPi);
        groups.back().isAngle = true;
        return Acad::eOk;
    }
    Acad::ErrorStatus writePoint2d(AcDb::DxfCode c, const AcGePoint2d& p, int) override {
        return add(c, p.x, p.y);
    }
    Acad::ErrorStatus writePoint3d(AcDb::DxfCode c, const AcGePoint3d& p, int) override {
        return add(c, p.x, p.y, p.z);
    }
    Acad::ErrorStatus writeVector2d(AcDb::DxfCode c, const AcGeVector2d& v, int) override {
        return add(c, v.x, v.y);
    }
    Acad::ErrorStatus writeVector3d(AcDb::DxfCode c, const AcGeVector3d& v, int) override {
        return add(c, v.x, v.y, v.z);
    }
    Acad::ErrorStatus writeScale3d(AcDb::DxfCode c, const AcGeScale3d& v, int) override {
        return add(c, v.sx, v.sy, v.sz);
    }
    Acad::ErrorStatus writeBChunk(AcDb::DxfCode c, const ads_binary&) override {
        return addInt(c, 0);
    }

    // The group codes after the entity's common data, from the first subclass marker past
    // AcDbEntity.
    std::vector<int> codesAfter(const wchar_t* marker) const {
        std::vector<int> out;
        bool on = false;
        for (const auto& g : groups) {
            if (g.code == 100 && g.s == marker) on = true;
            if (on) out.push_back(g.code);
        }
        return out;
    }
    const Group* find(int code, size_t nth = 0) const {
        for (const auto& g : groups)
            if (g.code == code && nth-- == 0) return &g;
        return nullptr;
    }

private:
    Acad::ErrorStatus add(int c, double x, double y = 0, double z = 0) {
        Group g(c);
        g.v[0] = x;
        g.v[1] = y;
        g.v[2] = z;
        groups.push_back(g);
        return Acad::eOk;
    }
    Acad::ErrorStatus addInt(int c, long long v) {
        Group g(c);
        g.i = v;
        groups.push_back(g);
        return Acad::eOk;
    }
    Acad::ErrorStatus mStatus = Acad::eOk;
};

template <class T> std::unique_ptr<T> dxfRoundTrip(const T& e) {
    GroupFiler f;
    EXPECT_EQ(e.dxfOutFields(&f), Acad::eOk);
    auto back = std::make_unique<T>();
    EXPECT_EQ(back->dxfInFields(&f), Acad::eOk);
    EXPECT_TRUE(f.atEOF()) << "groups left unread";
    return back;
}

AcDbPolyline* samplePline() {
    auto* p = new AcDbPolyline();
    p->addVertexAt(0, AcGePoint2d(0, 0), 0.5, 0.1, 0.2);
    p->addVertexAt(1, AcGePoint2d(4, 0), 0.0, 0.2, 0.0);
    p->addVertexAt(2, AcGePoint2d(4, 3), -1.0);
    p->setClosed(true);
    p->setPlinegen(true);
    p->setElevation(1.25);
    p->setThickness(0.5);
    p->setNormal(AcGeVector3d(0, 0.6, 0.8));
    return p;
}

void expectSamePline(const AcDbPolyline& a, const AcDbPolyline& b) {
    ASSERT_EQ(a.numVerts(), b.numVerts());
    for (unsigned i = 0; i < a.numVerts(); ++i) {
        AcGePoint2d pa, pb;
        double ba = 0, bb = 0, sa = 0, sb = 0, ea = 0, eb = 0;
        a.getPointAt(i, pa);
        b.getPointAt(i, pb);
        a.getBulgeAt(i, ba);
        b.getBulgeAt(i, bb);
        a.getWidthsAt(i, sa, ea);
        b.getWidthsAt(i, sb, eb);
        EXPECT_TRUE(pa.isEqualTo(pb));
        EXPECT_EQ(ba, bb);
        EXPECT_EQ(sa, sb);
        EXPECT_EQ(ea, eb);
    }
    EXPECT_EQ(a.isClosed(), b.isClosed());
    EXPECT_EQ(a.hasPlinegen(), b.hasPlinegen());
    EXPECT_EQ(a.elevation(), b.elevation());
    EXPECT_EQ(a.thickness(), b.thickness());
    EXPECT_TRUE(a.normal().isEqualTo(b.normal()));
}

} // namespace

TEST(EntsFiling, CurvesRoundTripThroughTheStream) {
    AcDbLine line(AcGePoint3d(1, 2, 3), AcGePoint3d(-4, 5, 6));
    line.setThickness(2.5);
    line.setNormal(AcGeVector3d(0, 1, 0));
    line.setColorIndex(4);
    auto l = roundTrip(line);
    EXPECT_TRUE(l->startPoint().isEqualTo(line.startPoint()));
    EXPECT_TRUE(l->endPoint().isEqualTo(line.endPoint()));
    EXPECT_EQ(l->thickness(), 2.5);
    EXPECT_TRUE(l->normal().isEqualTo(AcGeVector3d(0, 1, 0)));
    EXPECT_EQ(l->colorIndex(), 4);

    AcDbArc arc(AcGePoint3d(1, 1, 0), AcGeVector3d(1, 0, 0), 2.5, 0.25, 4.0);
    arc.setThickness(-1.0);
    auto a = roundTrip(arc);
    EXPECT_TRUE(a->center().isEqualTo(arc.center()));
    EXPECT_TRUE(a->normal().isEqualTo(arc.normal()));
    EXPECT_EQ(a->radius(), 2.5);
    EXPECT_EQ(a->startAngle(), 0.25);
    EXPECT_EQ(a->endAngle(), 4.0);
    EXPECT_EQ(a->thickness(), -1.0);

    AcDbCircle circle(AcGePoint3d(7, 8, 9), AcGeVector3d(0, 0, -1), 3.0);
    auto c = roundTrip(circle);
    EXPECT_TRUE(c->center().isEqualTo(circle.center()));
    EXPECT_TRUE(c->normal().isEqualTo(AcGeVector3d(0, 0, -1)));
    EXPECT_EQ(c->radius(), 3.0);

    std::unique_ptr<AcDbPolyline> pl(samplePline());
    auto p = roundTrip(*pl);
    expectSamePline(*pl, *p);

    truncationsFail(line);
    truncationsFail(arc);
    truncationsFail(circle);
    truncationsFail(*pl);
}

TEST(EntsFiling, PolylineCountIsNotTrusted) {
    // A record that claims two billion vertices and then ends.
    AcDbPolyline src;
    AcDbStreamDwgFiler out;
    ASSERT_EQ(src.AcDbCurve::dwgOutFields(&out), Acad::eOk);
    out.writeUInt32(0x7FFFFFFFu);
    out.writePoint2d(AcGePoint2d(1, 1));
    AcDbPolyline back;
    back.addVertexAt(0, AcGePoint2d(5, 5));
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), resolveNothing, nullptr);
    EXPECT_NE(back.dwgInFields(&in), Acad::eOk);
    EXPECT_LE(back.numVerts(), 1u);
}

TEST(EntsFiling, TextAndBlockReferenceRoundTripWithIds) {
    AcDbDatabase db;
    AcDbObjectId style = db.textstyle();
    ASSERT_FALSE(style.isNull());
    AcDbText text(AcGePoint3d(1, 2, 0), L"宗地 12", style, 2.5, 0.3);
    text.setHorizontalMode(AcDb::kTextCenter);
    text.setVerticalMode(AcDb::kTextTop);
    text.setAlignmentPoint(AcGePoint3d(3, 2, 0));
    text.setWidthFactor(0.8);
    text.setOblique(0.1);
    text.mirrorInX(true);
    auto t = roundTrip(text, &db);
    EXPECT_STREQ(t->textStringConst(), L"宗地 12");
    EXPECT_EQ(t->textStyle(), style);
    EXPECT_TRUE(t->position().isEqualTo(text.position()));
    EXPECT_TRUE(t->alignmentPoint().isEqualTo(text.alignmentPoint()));
    EXPECT_EQ(t->height(), 2.5);
    EXPECT_EQ(t->rotation(), 0.3);
    EXPECT_EQ(t->widthFactor(), 0.8);
    EXPECT_EQ(t->oblique(), 0.1);
    EXPECT_EQ(t->horizontalMode(), AcDb::kTextCenter);
    EXPECT_EQ(t->verticalMode(), AcDb::kTextTop);
    EXPECT_TRUE(t->isMirroredInX());
    EXPECT_FALSE(t->isMirroredInY());

    AcDbBlockReference ref(AcGePoint3d(10, 20, 0), db.modelSpaceId());
    ref.setScaleFactors(AcGeScale3d(2, 3, 4));
    ref.setRotation(1.0);
    auto r = roundTrip(ref, &db);
    EXPECT_EQ(r->blockTableRecord(), db.modelSpaceId());
    EXPECT_TRUE(r->position().isEqualTo(ref.position()));
    EXPECT_EQ(r->scaleFactors(), AcGeScale3d(2, 3, 4));
    EXPECT_EQ(r->rotation(), 1.0);

    truncationsFail(text);
    truncationsFail(ref);
}

TEST(EntsFiling, DxfGroupsInOrderAndBack) {
    AcDbLine line(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
    GroupFiler f;
    ASSERT_EQ(line.dxfOutFields(&f), Acad::eOk);
    EXPECT_EQ(f.codesAfter(L"AcDbLine"), (std::vector<int>{100, 39, 10, 11, 210}));
    auto l = dxfRoundTrip(line);
    EXPECT_TRUE(l->endPoint().isEqualTo(AcGePoint3d(4, 5, 6)));

    AcDbArc arc(AcGePoint3d(1, 2, 3), AcGeVector3d(0, 0.6, 0.8), 2.0, kPi / 2, kPi);
    GroupFiler fa;
    ASSERT_EQ(arc.dxfOutFields(&fa), Acad::eOk);
    EXPECT_EQ(fa.codesAfter(L"AcDbCircle"), (std::vector<int>{100, 39, 10, 40, 210, 100, 50, 51}));
    EXPECT_DOUBLE_EQ(fa.find(50)->v[0], 90.0);
    // The centre is filed in the arc's plane system: its height is the distance along the normal.
    EXPECT_NEAR(fa.find(10)->v[2], 0.6 * 2 + 0.8 * 3, 1e-12);
    auto a = dxfRoundTrip(arc);
    EXPECT_LT(a->center().distanceTo(arc.center()), 1e-12);
    EXPECT_NEAR(a->endAngle(), kPi, 1e-12);

    std::unique_ptr<AcDbPolyline> pl(samplePline());
    GroupFiler fp;
    ASSERT_EQ(pl->dxfOutFields(&fp), Acad::eOk);
    EXPECT_EQ(fp.codesAfter(L"AcDbPolyline"),
              (std::vector<int>{100, 90, 70, 38, 39, 10, 40, 41, 42, 10, 40, 41, 42, 10, 40, 41, 42,
                                210}));
    EXPECT_EQ(fp.find(70)->i, 129);
    auto p = dxfRoundTrip(*pl);
    expectSamePline(*pl, *p);
    pl->setConstantWidth(0.75);
    GroupFiler fw;
    pl->dxfOutFields(&fw);
    ASSERT_NE(fw.find(43), nullptr);
    EXPECT_EQ(fw.find(43)->v[0], 0.75);

    AcDbText text(AcGePoint3d(1, 2, 0), L"abc", AcDbObjectId(), 2.0, kPi / 6);
    GroupFiler ft;
    ASSERT_EQ(text.dxfOutFields(&ft), Acad::eOk);
    EXPECT_EQ(ft.codesAfter(L"AcDbText"),
              (std::vector<int>{100, 39, 10, 40, 1, 50, 41, 51, 7, 71, 72, 11, 210, 100, 73}));
    EXPECT_NEAR(ft.find(50)->v[0], 30.0, 1e-12);
    auto t = dxfRoundTrip(text);
    EXPECT_STREQ(t->textStringConst(), L"abc");
    EXPECT_NEAR(t->rotation(), kPi / 6, 1e-12);

    // Data without the subclass marker is refused rather than misread.
    GroupFiler bad;
    bad.groups.emplace_back(10);
    AcDbLine back;
    EXPECT_NE(back.dxfInFields(&bad), Acad::eOk);
}

TEST(EntsFiling, ListingsShowTheGeometry) {
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(3, 4, 0));
    {
        AcutCapture capture;
        line.list();
        const std::wstring s = capture.text();
        EXPECT_NE(s.find(L"from point, X=    0.0000  Y=    0.0000  Z=    0.0000"),
                  std::wstring::npos)
            << s.size();
        EXPECT_NE(s.find(L"to   point, X=    3.0000  Y=    4.0000"), std::wstring::npos);
        EXPECT_NE(s.find(L"Length =     5.0000"), std::wstring::npos);
        EXPECT_NE(s.find(L"Angle in XY Plane =  53.1301"), std::wstring::npos);
    }
    std::unique_ptr<AcDbPolyline> pl(samplePline());
    pl->setNormal(AcGeVector3d(0, 0, 1));
    {
        AcutCapture capture;
        pl->list();
        const std::wstring s = capture.text();
        EXPECT_NE(s.find(L"AcDbPolyline"), std::wstring::npos);
        EXPECT_NE(s.find(L"area"), std::wstring::npos);
        EXPECT_NE(s.find(L"perimeter"), std::wstring::npos);
        EXPECT_NE(s.find(L"at point X=    4.0000  Y=    3.0000  Z=    1.2500"), std::wstring::npos);
    }
    AcDbCircle circle(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1), 2.0);
    {
        AcutCapture capture;
        circle.list();
        EXPECT_NE(capture.text().find(L"radius     2.0000"), std::wstring::npos);
    }
}

TEST(EntsFiling, DrawingUsesThePrimitives) {
    AcGiRecorder rec;
    AcDbLine line(AcGePoint3d(0, 0, 0), AcGePoint3d(3, 4, 0));
    line.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);
    EXPECT_EQ(rec.items()[0].points.length(), 2);

    rec.clear();
    AcDbArc arc(AcGePoint3d(1, 1, 0), 2.0, 0.5, 2.0);
    arc.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kCircularArc), 1);
    EXPECT_NEAR(rec.items()[0].numbers[1], 1.5, 1e-12);

    rec.clear();
    AcDbCircle circle(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1), 2.0);
    circle.worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.count(AcGiRecordedKind::kCircle), 1);

    // Straight runs as polylines, each arc segment as an arc.
    rec.clear();
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0));
    pl.addVertexAt(1, AcGePoint2d(2, 0));
    pl.addVertexAt(2, AcGePoint2d(2, 2), -1.0);
    pl.addVertexAt(3, AcGePoint2d(2, 4));
    pl.addVertexAt(4, AcGePoint2d(0, 4));
    pl.worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.count(AcGiRecordedKind::kPolyline), 2);
    ASSERT_EQ(rec.count(AcGiRecordedKind::kCircularArc), 1);
    for (const auto& item : rec.items())
        if (item.kind == AcGiRecordedKind::kCircularArc) {
            EXPECT_NEAR(item.numbers[0], 1.0, 1e-12);
            EXPECT_NEAR(item.numbers[1], kPi, 1e-12);
        }

    // Widths become filled outlines.
    rec.clear();
    pl.setConstantWidth(0.5);
    pl.worldDraw(rec.worldDraw());
    EXPECT_EQ(rec.count(AcGiRecordedKind::kPolygon), 4);
    for (const auto& item : rec.items())
        EXPECT_EQ(item.traits.fillType, kAcGiFillAlways);

    rec.clear();
    AcDbText text(AcGePoint3d(1, 2, 0), L"abc", AcDbObjectId(), 2.0, 0.0);
    text.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kText), 1);
    EXPECT_EQ(rec.items()[0].text, L"abc");
    EXPECT_TRUE(rec.items()[0].points[0].isEqualTo(AcGePoint3d(1, 2, 0)));
}

TEST(EntsFiling, BlockReferenceDrawsExplodesAndBounds) {
    AcDbDatabase db;
    AcDbBlockTable* table = nullptr;
    ASSERT_EQ(db.getBlockTable(table, AcDb::kForWrite), Acad::eOk);
    auto* btr = new AcDbBlockTableRecord();
    btr->setName(L"MARK");
    AcDbObjectId blockId;
    ASSERT_EQ(table->add(blockId, btr), Acad::eOk);
    table->close();
    auto* l = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    auto* c = new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), 0.5);
    ASSERT_EQ(btr->appendAcDbEntity(l), Acad::eOk);
    ASSERT_EQ(btr->appendAcDbEntity(c), Acad::eOk);
    l->close();
    c->close();
    btr->close();

    AcDbBlockReference ref(AcGePoint3d(10, 5, 0), blockId);
    ref.setScaleFactors(AcGeScale3d(2, 2, 2));
    ref.setRotation(kPi / 2);

    AcGiRecorder rec;
    ref.worldDraw(rec.worldDraw());
    ASSERT_EQ(rec.count(AcGiRecordedKind::kPolyline), 1);
    for (const auto& item : rec.items())
        if (item.kind == AcGiRecordedKind::kPolyline) {
            EXPECT_LT(item.points[1].distanceTo(AcGePoint3d(10, 7, 0)), 1e-12);
        }

    AcDbVoidPtrArray parts;
    ASSERT_EQ(ref.explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 2);
    std::unique_ptr<AcDbLine> el(AcDbLine::cast(static_cast<AcRxObject*>(parts[0])));
    std::unique_ptr<AcDbCircle> ec(AcDbCircle::cast(static_cast<AcRxObject*>(parts[1])));
    ASSERT_TRUE(el && ec);
    EXPECT_LT(el->endPoint().distanceTo(AcGePoint3d(10, 7, 0)), 1e-12);
    EXPECT_DOUBLE_EQ(ec->radius(), 1.0);

    AcDbExtents ext;
    ASSERT_EQ(ref.getGeomExtents(ext), Acad::eOk);
    EXPECT_LT(ext.minPoint().distanceTo(AcGePoint3d(9, 4, 0)), 1e-12);
    EXPECT_LT(ext.maxPoint().distanceTo(AcGePoint3d(11, 7, 0)), 1e-12);

    // Transforming the reference composes with its placement.
    AcGeMatrix3d shift;
    shift.entry[0][3] = 1.0;
    shift.entry[0][0] = -1.0; // mirrored
    ASSERT_EQ(ref.transformBy(shift), Acad::eOk);
    AcGePoint3d p(1, 0, 0);
    p.transformBy(ref.blockTransform());
    EXPECT_LT(p.distanceTo(AcGePoint3d(-9, 7, 0)), 1e-12);
    EXPECT_LT(ref.scaleFactors().sx, 0.0);
}
