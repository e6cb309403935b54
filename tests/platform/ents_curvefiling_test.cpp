// Filing of the ellipse, spline and heavy polylines: round trips through the typed stream and
// the recording filers, DXF groups, and records that are cut short or lie about their counts.
#include "dbents.h"
#include "dbfilers.h"
#include "girecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

AcDbObjectId noIds(AcDbHandle) {
    return AcDbObjectId();
}

template <class T> std::unique_ptr<T> streamTrip(const T& e) {
    AcDbStreamDwgFiler out;
    EXPECT_EQ(e.dwgOutFields(&out), Acad::eOk);
    auto back = std::make_unique<T>();
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), noIds, nullptr);
    EXPECT_EQ(back->dwgInFields(&in), Acad::eOk);
    EXPECT_TRUE(in.atEnd());
    return back;
}

template <class T> std::unique_ptr<T> recordingTrip(const T& e) {
    AcDbRecordingDwgFiler f;
    EXPECT_EQ(e.dwgOutFields(&f), Acad::eOk);
    f.rewind();
    auto back = std::make_unique<T>();
    EXPECT_EQ(back->dwgInFields(&f), Acad::eOk);
    EXPECT_TRUE(f.atEnd());
    return back;
}

template <class T> std::unique_ptr<T> dxfTrip(const T& e) {
    AcDbRecordingDxfFiler f;
    EXPECT_EQ(e.dxfOutFields(&f), Acad::eOk);
    f.rewind();
    auto back = std::make_unique<T>();
    EXPECT_EQ(back->dxfInFields(&f), Acad::eOk);
    EXPECT_TRUE(f.atEOF()) << "groups left unread";
    return back;
}

// Every shorter prefix of a valid record fails cleanly.
template <class T> void truncationsFail(const T& e) {
    AcDbStreamDwgFiler out;
    ASSERT_EQ(e.dwgOutFields(&out), Acad::eOk);
    const std::vector<std::uint8_t> bytes = out.bytes();
    for (size_t n = 0; n < bytes.size(); ++n) {
        T back;
        AcDbStreamDwgFiler in(bytes.data(), n, noIds, nullptr);
        EXPECT_NE(back.dwgInFields(&in), Acad::eOk) << "prefix " << n;
    }
}

// The items a class files after its curve part.
std::string ownLayout(const AcDbCurve& c) {
    AcDbRecordingDwgFiler all, base;
    c.dwgOutFields(&all);
    c.AcDbCurve::dwgOutFields(&base);
    return all.dump().substr(base.dump().size());
}

// The same curve: equal points at equal fractions of the length.
void expectSameCurve(const AcDbCurve& a, const AcDbCurve& b, double tol = 1e-12) {
    double ea = 0.0, eb = 0.0, la = 0.0, lb = 0.0;
    ASSERT_EQ(a.getEndParam(ea), Acad::eOk);
    ASSERT_EQ(b.getEndParam(eb), Acad::eOk);
    a.getDistAtParam(ea, la);
    b.getDistAtParam(eb, lb);
    EXPECT_NEAR(la, lb, tol * std::max(1.0, la));
    for (int k = 0; k <= 10; ++k) {
        AcGePoint3d pa, pb;
        a.getPointAtDist(la * k / 10, pa);
        b.getPointAtDist(lb * k / 10, pb);
        EXPECT_LT(pa.distanceTo(pb), 1e-9 * std::max(1.0, la)) << k;
    }
}

AcDbSpline fitSpline() {
    AcGePoint3dArray fit;
    for (const auto& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(2, 1, 0.5), AcGePoint3d(4, -1, 0),
                          AcGePoint3d(6, 2, 1)})
        fit.append(p);
    AcDbSpline s(fit, AcGeVector3d(1, 1, 0), AcGeVector3d(1, -1, 0));
    s.setColorIndex(5);
    return s;
}

} // namespace

TEST(EntsCurveFiling, EllipseRoundTripsAndLayout) {
    AcDbEllipse e(AcGePoint3d(1, 2, 3), AcGeVector3d(0, 0.6, 0.8), AcGeVector3d(2, 0, 0), 0.25, 0.5,
                  2.0);
    e.setColorIndex(3);
    for (const auto& back : {streamTrip(e), recordingTrip(e)}) {
        EXPECT_TRUE(back->center().isEqualTo(e.center()));
        EXPECT_TRUE(back->normal().isEqualTo(e.normal()));
        EXPECT_TRUE(back->majorAxis().isEqualTo(e.majorAxis()));
        EXPECT_EQ(back->radiusRatio(), 0.25);
        EXPECT_NEAR(back->startAngle(), 0.5, 1e-12);
        EXPECT_NEAR(back->endAngle(), 2.0, 1e-12);
        EXPECT_EQ(back->colorIndex(), 3);
    }
    double s = 0.0, t = 0.0;
    e.getStartParam(s);
    e.getEndParam(t);
    EXPECT_EQ(ownLayout(e), "Point3d 1,2,3\nVector3d 0,0.6,0.8\nVector3d 2,0,0\nDouble 0.25\n"
                            "Double " +
                                AcDbFilerDetail::formatDouble(s) + "\nDouble " +
                                AcDbFilerDetail::formatDouble(t) + "\n");
    truncationsFail(e);

    AcDbRecordingDxfFiler f;
    ASSERT_EQ(e.dxfOutFields(&f), Acad::eOk);
    const std::string dump = f.dump();
    EXPECT_NE(dump.find("100 \"AcDbEllipse\"\n10 1,2,3\n11 2,0,0\n210 0,0.6,0.8\n40 0.25\n41 "),
              std::string::npos)
        << dump;
    auto d = dxfTrip(e);
    expectSameCurve(e, *d);
}

TEST(EntsCurveFiling, EllipseRefusesNonsense) {
    AcDbEllipse e(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 0.5);
    // A ratio above one and a NaN centre in hand-made DXF groups.
    std::vector<AcDbDxfItem> bad = {
        AcDbDxfItem(100, L"AcDbEntity"),       AcDbDxfItem(8, L"0"),
        AcDbDxfItem(100, L"AcDbEllipse"),      AcDbDxfItem(10, AcGePoint3d(0, 0, 0)),
        AcDbDxfItem(11, AcGePoint3d(1, 0, 0)), AcDbDxfItem(40, 2.0)};
    AcDbRecordingDxfFiler f(bad);
    EXPECT_NE(e.dxfInFields(&f), Acad::eOk);
    bad[3] = AcDbDxfItem(10, AcGePoint3d(std::nan(""), 0, 0));
    bad[5] = AcDbDxfItem(40, 0.5);
    AcDbRecordingDxfFiler g(bad);
    EXPECT_NE(e.dxfInFields(&g), Acad::eOk);
    EXPECT_TRUE(e.center().isEqualTo(AcGePoint3d(0, 0, 0)));
    EXPECT_EQ(e.radiusRatio(), 0.5);
}

TEST(EntsCurveFiling, SplineFitAndControlDataRoundTrip) {
    const AcDbSpline fit = fitSpline();
    for (const auto& back : {streamTrip(fit), recordingTrip(fit), dxfTrip(fit)}) {
        ASSERT_EQ(back->numFitPoints(), 4);
        AcGePoint3d p;
        back->getFitPointAt(2, p);
        EXPECT_TRUE(p.isEqualTo(AcGePoint3d(4, -1, 0)));
        AcGeVector3d st, et;
        ASSERT_EQ(back->getFitTangents(st, et), Acad::eOk);
        EXPECT_TRUE(st.isEqualTo(AcGeVector3d(1, 1, 0)));
        expectSameCurve(fit, *back);
    }
    truncationsFail(fit);

    AcGePoint3dArray ctrl;
    for (const auto& p :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(1, 2, 0), AcGePoint3d(3, 2, 0), AcGePoint3d(4, 0, 0)})
        ctrl.append(p);
    AcDbSpline rational(2, true, false, false, ctrl, AcGeDoubleArray{0, 0, 0, 0.4, 1, 1, 1},
                        AcGeDoubleArray{1, 0.5, 2, 1});
    for (const auto& back : {streamTrip(rational), recordingTrip(rational), dxfTrip(rational)}) {
        EXPECT_FALSE(back->hasFitData());
        EXPECT_TRUE(back->isRational());
        EXPECT_EQ(back->weightAt(2), 2.0);
        expectSameCurve(rational, *back);
    }
    truncationsFail(rational);

    AcDbRecordingDxfFiler f;
    ASSERT_EQ(rational.dxfOutFields(&f), Acad::eOk);
    const std::string dump = f.dump();
    // Planar (8) and rational (4); degree, then the knot, control and fit counts.
    EXPECT_NE(dump.find("70 12\n71 2\n72 7\n73 4\n74 0\n"), std::string::npos) << dump;
}

TEST(EntsCurveFiling, SplineRejectsBrokenControlData) {
    // Knots that go backwards, written through the spline's own layout.
    AcDbSpline s = fitSpline();
    AcDbRecordingDwgFiler f;
    ASSERT_EQ(s.dwgOutFields(&f), Acad::eOk);
    std::vector<AcDbFiledItem> items = f.items();
    // After the curve part: degree, periodic flag, two tolerances, then the knot count.
    AcDbRecordingDwgFiler base;
    s.AcDbCurve::dwgOutFields(&base);
    const size_t at = base.items().size() + 4;
    ASSERT_EQ(items[at].kind, AcDbFilerKind::kUInt32);
    std::swap(items[at + 3].value, items[at + 6].value);
    AcDbRecordingDwgFiler bad(items);
    AcDbSpline back;
    EXPECT_NE(back.dwgInFields(&bad), Acad::eOk);

    // A count of two billion control points followed by nothing.
    AcDbStreamDwgFiler out;
    ASSERT_EQ(s.AcDbCurve::dwgOutFields(&out), Acad::eOk);
    out.writeInt16(3);
    out.writeBool(false);
    out.writeDouble(0.0);
    out.writeDouble(0.0);
    out.writeUInt32(0x7FFFFFFFu);
    AcDbStreamDwgFiler in(out.bytes().data(), out.bytes().size(), noIds, nullptr);
    EXPECT_NE(back.dwgInFields(&in), Acad::eOk);
}

TEST(EntsCurveFiling, HeavyPolylinesKeepTheirVertices) {
    AcGePoint3dArray pts;
    for (const auto& p :
         {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0), AcGePoint3d(4, 3, 0), AcGePoint3d(0, 5, 0)})
        pts.append(p);
    AcGeDoubleArray bulges{0.5, 0.0, -0.25, 0.0};
    AcDb2dPolyline p2(AcDb::k2dSimplePoly, pts, 1.5, true, 0.1, 0.2, &bulges);
    p2.setNormal(AcGeVector3d(0, 0.6, 0.8));
    p2.setThickness(2.0);
    p2.setLinetypeGenerationOn();
    AcDb2dPolyline fitted(AcDb::k2dCubicSplinePoly, pts);
    for (const AcDb2dPolyline* src : {&p2, &fitted}) {
        for (const auto& back : {streamTrip(*src), recordingTrip(*src)}) {
            EXPECT_EQ(back->polyType(), src->polyType());
            EXPECT_EQ(back->isClosed(), src->isClosed());
            EXPECT_EQ(back->elevation(), src->elevation());
            EXPECT_EQ(back->thickness(), src->thickness());
            EXPECT_EQ(back->isLinetypeGenerationOn(), src->isLinetypeGenerationOn());
            std::unique_ptr<AcDbObjectIterator> a(src->vertexIterator()), b(back->vertexIterator());
            for (; !a->done() && !b->done(); a->step(), b->step()) {
                auto* va = AcDb2dVertex::cast(a->entity());
                auto* vb = AcDb2dVertex::cast(b->entity());
                ASSERT_TRUE(va && vb);
                EXPECT_TRUE(va->position().isEqualTo(vb->position()));
                EXPECT_EQ(va->bulge(), vb->bulge());
                EXPECT_EQ(va->startWidth(), vb->startWidth());
                EXPECT_EQ(va->vertexType(), vb->vertexType());
            }
            EXPECT_TRUE(a->done() && b->done());
            expectSameCurve(*src, *back);
        }
        truncationsFail(*src);
    }

    AcDb3dPolyline p3(AcDb::k3dQuadSplinePoly, pts, false);
    for (const auto& back : {streamTrip(p3), recordingTrip(p3)}) {
        EXPECT_EQ(back->polyType(), AcDb::k3dQuadSplinePoly);
        expectSameCurve(p3, *back);
    }
    truncationsFail(p3);
}

TEST(EntsCurveFiling, PolylineAndVertexDxfGroups) {
    AcGePoint3dArray pts;
    for (const auto& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0), AcGePoint3d(4, 3, 0)})
        pts.append(p);
    AcDb2dPolyline p2(AcDb::k2dQuadSplinePoly, pts, 2.0, true);
    AcDbRecordingDxfFiler f;
    ASSERT_EQ(p2.dxfOutFields(&f), Acad::eOk);
    EXPECT_NE(f.dump().find("100 \"AcDb2dPolyline\"\n10 0,0,2\n70 5\n75 5\n210 0,0,1\n"),
              std::string::npos)
        << f.dump();
    auto back = dxfTrip(p2);
    EXPECT_EQ(back->polyType(), AcDb::k2dQuadSplinePoly);
    EXPECT_TRUE(back->isClosed());
    EXPECT_EQ(back->elevation(), 2.0);

    // Vertices file themselves: position, widths, bulge and the fit flags.
    std::unique_ptr<AcDbObjectIterator> it(p2.vertexIterator());
    int control = 0, generated = 0;
    for (; !it->done(); it->step()) {
        const auto* v = AcDb2dVertex::cast(it->entity());
        ASSERT_NE(v, nullptr);
        auto vb = dxfTrip(*v);
        EXPECT_EQ(vb->vertexType(), v->vertexType());
        EXPECT_TRUE(vb->position().isEqualTo(v->position()));
        (v->vertexType() == AcDb::k2dSplineCtlVertex ? control : generated)++;
    }
    EXPECT_EQ(control, 3);
    EXPECT_EQ(generated, 3 * 8); // closed: eight per span, three spans

    AcDb2dVertex curveFit(AcGePoint3d(1, 2, 0), 0.3, 0.5, 0.25);
    curveFit.setVertexType(AcDb::k2dCurveFitVertex);
    curveFit.setTangent(kPi / 3);
    AcDbRecordingDxfFiler fv;
    ASSERT_EQ(curveFit.dxfOutFields(&fv), Acad::eOk);
    EXPECT_NE(fv.dump().find("100 \"AcDb2dVertex\"\n10 1,2,0\n40 0.5\n41 0.25\n42 0.3\n70 3\n50 "),
              std::string::npos)
        << fv.dump();
    auto cb = dxfTrip(curveFit);
    EXPECT_EQ(cb->vertexType(), AcDb::k2dCurveFitVertex);
    EXPECT_NEAR(cb->tangent(), kPi / 3, 1e-12);

    AcDb3dPolyline p3(AcDb::k3dSimplePoly, pts, true);
    AcDbRecordingDxfFiler f3;
    ASSERT_EQ(p3.dxfOutFields(&f3), Acad::eOk);
    EXPECT_NE(f3.dump().find("100 \"AcDb3dPolyline\"\n10 0,0,0\n70 9\n"), std::string::npos);
    EXPECT_TRUE(dxfTrip(p3)->isClosed());
    AcDb3dPolylineVertex v3(AcGePoint3d(1, 2, 3));
    v3.setVertexType(AcDb::k3dControlVertex);
    auto vb3 = dxfTrip(v3);
    EXPECT_EQ(vb3->vertexType(), AcDb::k3dControlVertex);
    EXPECT_TRUE(vb3->position().isEqualTo(AcGePoint3d(1, 2, 3)));
}

TEST(EntsCurveFiling, NewClassesAreRegistered) {
    for (const wchar_t* name : {L"AcDbEllipse", L"AcDbSpline", L"AcDb2dPolyline", L"AcDb3dPolyline",
                                L"AcDb2dVertex", L"AcDb3dPolylineVertex", L"AcDbHatch"}) {
        AcRxClass* c = AcRxClass::cast(acrxClassDictionary()->at(name));
        ASSERT_NE(c, nullptr) << std::wstring(name).size();
        std::unique_ptr<AcRxObject> made(c->create());
        ASSERT_NE(made, nullptr);
        EXPECT_TRUE(made->isKindOf(AcDbEntity::desc()));
    }
    EXPECT_STREQ(AcDbEllipse::desc()->dxfName(), L"ELLIPSE");
    EXPECT_STREQ(AcDbHatch::desc()->dxfName(), L"HATCH");
    EXPECT_TRUE(AcDbEllipse::desc()->isDerivedFrom(AcDbCurve::desc()));
}

namespace {

// Reads damaged copies of a valid record; whatever is accepted must then behave as a curve.
template <class T> void survivesDamage(const T& e, unsigned seed) {
    AcDbStreamDwgFiler out;
    ASSERT_EQ(e.dwgOutFields(&out), Acad::eOk);
    const std::vector<std::uint8_t> good = out.bytes();
    std::mt19937 rng(seed);
    std::uniform_int_distribution<size_t> at(0, good.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255);
    int accepted = 0;
    for (int trial = 0; trial < 120; ++trial) {
        std::vector<std::uint8_t> bytes = good;
        for (int k = 0; k < 1 + trial % 4; ++k)
            bytes[at(rng)] = static_cast<std::uint8_t>(byte(rng));
        T back;
        AcDbStreamDwgFiler in(bytes.data(), bytes.size(), noIds, nullptr);
        if (back.dwgInFields(&in) != Acad::eOk) continue;
        ++accepted;
        AcGiRecorder rec;
        back.worldDraw(rec.worldDraw());
        AcDbExtents ext;
        back.getGeomExtents(ext);
        if (const AcDbCurve* c = AcDbCurve::cast(&back)) {
            double end = 0.0, len = 0.0;
            AcGePoint3d p;
            if (c->getEndParam(end) == Acad::eOk && c->getDistAtParam(end, len) == Acad::eOk)
                c->getPointAtDist(0.5 * len, p);
            c->getClosestPointTo(AcGePoint3d(1, 2, 3), p);
        }
    }
    EXPECT_GT(accepted, 0); // some damage only changes values
}

} // namespace

TEST(EntsCurveFiling, DamagedRecordsNeverCrash) {
    survivesDamage(AcDbEllipse(AcGePoint3d(1, 2, 3), AcGeVector3d(0, 0, 1), AcGeVector3d(2, 0, 0),
                               0.5, 0.5, 2.0),
                   1);
    survivesDamage(fitSpline(), 2);
    AcGePoint3dArray ctrl{{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}};
    survivesDamage(AcDbSpline(2, true, false, false, ctrl, AcGeDoubleArray{0, 0, 0, 0.4, 1, 1, 1},
                              AcGeDoubleArray{1, 0.5, 2, 1}),
                   3);
    AcGeDoubleArray bulges{0.5, 0.0, -0.25, 0.0};
    survivesDamage(AcDb2dPolyline(AcDb::k2dSimplePoly,
                                  AcGePoint3dArray{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 5, 0}}, 1.0,
                                  true, 0.0, 0.0, &bulges),
                   4);
    survivesDamage(AcDb3dPolyline(AcDb::k3dCubicSplinePoly, ctrl), 5);
}
