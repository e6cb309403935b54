// The recording drawing back-end: traits, transforms, nesting, primitives and the dump.
#include "girecorder.h"

#include "db/stub.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <numbers>

namespace {

constexpr double kTol = 1e-9;

void expectPoint(const AcGePoint3d& p, double x, double y, double z) {
    EXPECT_NEAR(p.x, x, kTol);
    EXPECT_NEAR(p.y, y, kTol);
    EXPECT_NEAR(p.z, z, kTol);
}

void expectVector(const AcGeVector3d& v, double x, double y, double z) {
    EXPECT_NEAR(v.x, x, kTol);
    EXPECT_NEAR(v.y, y, kTol);
    EXPECT_NEAR(v.z, z, kTol);
}

AcGeMatrix3d translation(double x, double y, double z) {
    AcGeMatrix3d m;
    m.entry[0][3] = x;
    m.entry[1][3] = y;
    m.entry[2][3] = z;
    return m;
}

AcGeMatrix3d scaling(double s) {
    AcGeMatrix3d m;
    m.entry[0][0] = m.entry[1][1] = m.entry[2][2] = s;
    return m;
}

// Ids with known handles, without a database behind them.
struct FakeIds {
    AcDbStub layerStub{nullptr, 0x2A, nullptr, false};
    AcDbStub lineTypeStub{nullptr, 0x2B, nullptr, false};
    AcDbStub materialStub{nullptr, 0x2C, nullptr, false};
    AcDbObjectId layer{&layerStub};
    AcDbObjectId lineType{&lineTypeStub};
    AcDbObjectId material{&materialStub};
};

// ---------------------------------------------------------------- traits

TEST(GiRecorder, TraitsSnapshotsFollowChangesBetweenPrimitives) {
    FakeIds ids;
    AcGiRecorder rec;
    AcGiWorldDraw* wd = &rec;
    const AcGePoint3d line[2] = {{0, 0, 0}, {1, 0, 0}};

    wd->geometry().polyline(2, line);
    AcGiSubEntityTraits& traits = wd->subEntityTraits();
    traits.setColor(1);
    traits.setLayer(ids.layer);
    traits.setLineType(ids.lineType);
    traits.setLineWeight(AcDb::kLnWt030);
    traits.setSelectionMarker(3);
    traits.setFillType(kAcGiFillAlways);
    traits.setThickness(2.5);
    traits.setLineTypeScale(0.5);
    traits.setMaterial(ids.material);
    wd->geometry().polygon(2, line);
    traits.setTrueColor(AcCmEntityColor(255, 0, 0));
    traits.setSelectionMarker(4);
    wd->geometry().polyline(2, line);

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 3u);
    // Untouched traits: by layer, nothing filled, marker 0.
    EXPECT_EQ(items[0].traits.color, 256);
    EXPECT_TRUE(items[0].traits.trueColor.isByLayer());
    EXPECT_TRUE(items[0].traits.layer.isNull());
    EXPECT_EQ(items[0].traits.fillType, kAcGiFillNever);
    EXPECT_EQ(items[0].traits.lineWeight, AcDb::kLnWtByLayer);

    const AcGiRecordedTraits& second = items[1].traits;
    EXPECT_EQ(second.color, 1);
    EXPECT_TRUE(second.trueColor.isByACI());
    EXPECT_EQ(second.trueColor.colorIndex(), 1);
    EXPECT_EQ(second.layer, ids.layer);
    EXPECT_EQ(second.lineType, ids.lineType);
    EXPECT_EQ(second.material, ids.material);
    EXPECT_EQ(second.lineWeight, AcDb::kLnWt030);
    EXPECT_EQ(second.marker, 3);
    EXPECT_EQ(second.fillType, kAcGiFillAlways);
    EXPECT_DOUBLE_EQ(second.thickness, 2.5);
    EXPECT_DOUBLE_EQ(second.lineTypeScale, 0.5);

    // A true colour keeps its RGB and brings the nearest index along; the rest stays.
    const AcGiRecordedTraits& third = items[2].traits;
    EXPECT_TRUE(third.trueColor.isByColor());
    EXPECT_EQ(third.trueColor.red(), 255);
    EXPECT_EQ(third.color, 1);
    EXPECT_EQ(third.marker, 4);
    EXPECT_EQ(third.layer, ids.layer);

    // clear() forgets the items and starts the traits afresh.
    rec.clear();
    EXPECT_TRUE(rec.items().empty());
    EXPECT_EQ(rec.subEntityTraits().color(), 256);
    EXPECT_EQ(rec.subEntityTraits().selectionMarker(), 0);
}

// ---------------------------------------------------------------- transforms

TEST(GiRecorder, ModelTransformsNestAndPopInOrder) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.worldDraw()->geometry();
    const AcGePoint3d one[1] = {{1, 0, 0}};

    ASSERT_TRUE(g.pushModelTransform(translation(10, 0, 0)));
    g.circle(AcGePoint3d(0, 0, 0), 1.0, AcGeVector3d(0, 0, 1));
    ASSERT_TRUE(g.pushModelTransform(scaling(2)));
    // The inner transform acts first: scale, then move.
    g.circle(AcGePoint3d(1, 0, 0), 1.0, AcGeVector3d(0, 0, 1));
    AcGeMatrix3d toWorld, toModel;
    g.getModelToWorldTransform(toWorld);
    g.getWorldToModelTransform(toModel);
    // A world line ignores the transforms in force.
    const AcGePoint3d worldPts[2] = {{0, 0, 0}, {0, 5, 0}};
    g.worldLine(worldPts);
    EXPECT_TRUE(g.popModelTransform());
    g.polyline(1, one);
    EXPECT_TRUE(g.popModelTransform());
    g.polyline(1, one);
    // Popping an empty stack changes nothing.
    EXPECT_FALSE(g.popModelTransform());
    g.polyline(1, one);

    EXPECT_DOUBLE_EQ(toWorld.entry[0][0], 2.0);
    EXPECT_DOUBLE_EQ(toWorld.entry[0][3], 10.0);
    EXPECT_NEAR(toModel.entry[0][0], 0.5, kTol);
    EXPECT_NEAR(toModel.entry[0][3], -5.0, kTol);

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 6u);
    expectPoint(items[0].points[0], 10, 0, 0);
    EXPECT_NEAR(items[0].numbers[0], 1.0, kTol);
    expectPoint(items[1].points[0], 12, 0, 0);
    EXPECT_NEAR(items[1].numbers[0], 2.0, kTol);
    expectPoint(items[2].points[0], 0, 0, 0);
    expectPoint(items[2].points[1], 0, 5, 0);
    expectPoint(items[3].points[0], 11, 0, 0);
    expectPoint(items[4].points[0], 1, 0, 0);
    expectPoint(items[5].points[0], 1, 0, 0);
}

TEST(GiRecorder, TransformsCarryNormalsAndKeepTheSenseOfMirroredArcs) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();

    // A plane normal pushes the plane's own axes: for -z the x axis turns round.
    ASSERT_TRUE(g.pushModelTransform(AcGeVector3d(0, 0, -1)));
    g.circle(AcGePoint3d(1, 0, 0), 1.0, AcGeVector3d(0, 0, 1));
    g.popModelTransform();

    AcGeMatrix3d mirrorX;
    mirrorX.entry[0][0] = -1;
    ASSERT_TRUE(g.pushModelTransform(mirrorX));
    g.circularArc(AcGePoint3d(0, 0, 0), 2.0, AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0),
                  std::numbers::pi / 2);
    g.popModelTransform();

    // A transform with a non-finite entry is refused rather than poisoning what follows.
    AcGeMatrix3d bad;
    bad.entry[1][1] = std::nan("");
    EXPECT_FALSE(g.pushModelTransform(bad));
    EXPECT_FALSE(g.pushModelTransform(AcGeVector3d(0, 0, 0)));

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 2u);
    expectPoint(items[0].points[0], -1, 0, 0);
    expectVector(items[0].vectors[0], 0, 0, -1);

    // The mirrored quarter arc still runs from the image of its start to the image of its end.
    const AcGiRecordedItem& arc = items[1];
    const AcGeVector3d n = arc.vectors[0], s = arc.vectors[1];
    const double r = arc.numbers[0], sweep = arc.numbers[1];
    const AcGePoint3d end =
        arc.points[0] + (s * std::cos(sweep) + n.crossProduct(s) * std::sin(sweep)) * r;
    expectPoint(arc.points[0] + s * r, -2, 0, 0);
    expectPoint(end, 0, 2, 0);
}

// ---------------------------------------------------------------- nesting

class Child : public AcGiDrawable {
public:
    Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override {
        wd->geometry().circle(AcGePoint3d(0, 0, 0), 1.0, AcGeVector3d(0, 0, 1));
        return Adesk::kTrue;
    }
    void viewportDraw(AcGiViewportDraw*) override { ADD_FAILURE() << "the child draws in world"; }
    Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) override {
        traits->setColor(5);
        traits->setSelectionMarker(9);
        return kDrawableIsAnEntity;
    }
    bool isPersistent() const override { return false; }
    AcDbObjectId id() const override { return AcDbObjectId::kNull; }
};

// Draws a line, its child (moved by a transform), another line, and asks for viewport drawing.
class Parent : public AcGiDrawable {
public:
    Child child;
    Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override {
        const AcGePoint3d pts[2] = {{0, 0, 0}, {1, 1, 0}};
        wd->geometry().polyline(2, pts);
        wd->geometry().pushModelTransform(translation(0, 0, 7));
        wd->geometry().draw(&child);
        wd->geometry().popModelTransform();
        wd->geometry().polyline(2, pts);
        return Adesk::kFalse;
    }
    void viewportDraw(AcGiViewportDraw* vd) override {
        const AcGePoint3d eye[2] = {{0, 0, 0}, {0.5, 0.5, 0}};
        vd->geometry().polylineEye(2, eye);
    }
    Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) override {
        traits->setColor(3);
        return kDrawableIsAnEntity;
    }
    bool isPersistent() const override { return false; }
    AcDbObjectId id() const override { return AcDbObjectId::kNull; }
};

// Draws itself through draw(), for ever unless something stops it.
class SelfDrawer : public Child {
public:
    int calls = 0;
    Adesk::Boolean worldDraw(AcGiWorldDraw* wd) override {
        ++calls;
        wd->geometry().draw(this);
        return Adesk::kTrue;
    }
};

class Invisible : public Child {
public:
    Adesk::UInt32 setAttributes(AcGiDrawableTraits*) override { return kDrawableIsInvisible; }
};

TEST(GiRecorder, DrawRecursesIntoNestedDrawablesWithTheirOwnAttributes) {
    AcGiRecorder rec;
    rec.subEntityTraits().setSelectionMarker(1);
    Parent parent;
    EXPECT_FALSE(rec.geometry().draw(&parent));

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 4u);
    EXPECT_EQ(items[0].kind, AcGiRecordedKind::kPolyline);
    EXPECT_EQ(items[0].depth, 1);
    EXPECT_EQ(items[0].traits.color, 3);
    EXPECT_EQ(items[0].traits.marker, 1);

    EXPECT_EQ(items[1].kind, AcGiRecordedKind::kCircle);
    EXPECT_EQ(items[1].depth, 2);
    EXPECT_EQ(items[1].traits.color, 5);
    EXPECT_EQ(items[1].traits.marker, 9);
    expectPoint(items[1].points[0], 0, 0, 7);

    // After the child the parent's traits are back.
    EXPECT_EQ(items[2].kind, AcGiRecordedKind::kPolyline);
    EXPECT_EQ(items[2].traits.color, 3);
    EXPECT_EQ(items[2].traits.marker, 1);

    // worldDraw said false, so the viewport drawing followed.
    EXPECT_EQ(items[3].kind, AcGiRecordedKind::kPolylineEye);
    EXPECT_EQ(items[3].depth, 1);
    // And the caller's traits are untouched by the whole affair.
    EXPECT_EQ(rec.subEntityTraits().color(), 256);
    EXPECT_EQ(rec.subEntityTraits().selectionMarker(), 1);
}

TEST(GiRecorder, DrawRefusesRunawayNestingNullAndSkipsInvisibleDrawables) {
    AcGiRecorder rec;
    SelfDrawer self;
    rec.geometry().draw(&self);
    EXPECT_EQ(self.calls, AcGiRecorder::kMaxDrawDepth);
    EXPECT_EQ(rec.rejectedCount(), 1);

    Invisible hidden;
    rec.geometry().draw(&hidden);
    rec.geometry().draw(nullptr);
    EXPECT_TRUE(rec.items().empty());
    EXPECT_EQ(rec.rejectedCount(), 2);
}

// ---------------------------------------------------------------- primitives

TEST(GiRecorder, PrimitivesReportAnAbortedRegeneration) {
    AcGiRecorder rec;
    EXPECT_EQ(rec.regenType(), kAcGiStandardDisplay);
    const AcGePoint3d pts[2] = {{0, 0, 0}, {1, 0, 0}};
    EXPECT_FALSE(rec.geometry().polyline(2, pts));
    rec.setRegenAbort(true);
    EXPECT_TRUE(rec.regenAbort());
    EXPECT_TRUE(rec.geometry().polyline(2, pts));
    EXPECT_TRUE(rec.geometry().circle(AcGePoint3d(), 1.0, AcGeVector3d(0, 0, 1)));
    // Still recorded: the recorder shows what was asked of it.
    EXPECT_EQ(rec.items().size(), 3u);
}

TEST(GiRecorder, ThreePointFormsAreRecordedAsCentreRadiusAndSweep) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    g.circle(AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0), AcGePoint3d(-1, 0, 0));
    g.circle(AcGePoint3d(3, 0, 0), AcGePoint3d(2, -1, 0), AcGePoint3d(1, 0, 0)); // clockwise
    g.circularArc(AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0), AcGePoint3d(0, -1, 0), kAcGiArcChord);
    g.circularArc(AcGePoint3d(1, 0, 0), AcGePoint3d(0, -1, 0), AcGePoint3d(-1, 0, 0));
    // On one line, or coincident: no circle at all.
    g.circle(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(2, 0, 0));
    g.circularArc(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
    g.circle(AcGePoint3d(0, 0, 0), -1.0, AcGeVector3d(0, 0, 1));
    g.circularArc(AcGePoint3d(), 1.0, AcGeVector3d(0, 0, 1), AcGeVector3d(0, 0, 3), 1.0);

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 4u);
    EXPECT_EQ(rec.rejectedCount(), 4);

    expectPoint(items[0].points[0], 0, 0, 0);
    EXPECT_NEAR(items[0].numbers[0], 1.0, kTol);
    expectVector(items[0].vectors[0], 0, 0, 1);
    expectPoint(items[1].points[0], 2, 0, 0);
    expectVector(items[1].vectors[0], 0, 0, -1);

    // Through (0,1) to (0,-1): three quarters of a turn, counter-clockwise.
    EXPECT_EQ(items[2].kind, AcGiRecordedKind::kCircularArc);
    expectVector(items[2].vectors[0], 0, 0, 1);
    expectVector(items[2].vectors[1], 1, 0, 0);
    EXPECT_NEAR(items[2].numbers[1], 1.5 * std::numbers::pi, kTol);
    EXPECT_EQ(items[2].ints[0], kAcGiArcChord);
    // Through (0,-1): half a turn about -z.
    expectVector(items[3].vectors[0], 0, 0, -1);
    EXPECT_NEAR(items[3].numbers[1], std::numbers::pi, kTol);
}

TEST(GiRecorder, ShellsAndMeshesCopyTheirDataAndRefuseBadFaceLists) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    // A square with a square hole: one face, two loops, eight edges.
    const AcGePoint3d pts[8] = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0},
                                {1, 1, 0}, {1, 2, 0}, {2, 2, 0}, {2, 1, 0}};
    const Adesk::Int32 faces[10] = {4, 0, 1, 2, 3, -4, 4, 5, 6, 7};
    const Adesk::UInt8 edgeVis[8] = {kAcGiInvisible, kAcGiVisible, kAcGiInvisible, kAcGiVisible,
                                     kAcGiVisible,   kAcGiVisible, kAcGiVisible,   kAcGiSilhouette};
    FakeIds ids;
    const AcDbObjectId materials[1] = {ids.material};
    AcGiEdgeData edges;
    edges.setVisibility(edgeVis);
    AcGiFaceData faceData;
    faceData.setMaterials(materials);
    EXPECT_FALSE(g.shell(8, pts, 10, faces, &edges, &faceData));

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 1u);
    const AcGiRecordedItem& shell = items[0];
    EXPECT_EQ(shell.points.length(), 8);
    EXPECT_EQ(shell.ints.length(), 10);
    EXPECT_EQ(shell.ints[5], -4);
    ASSERT_EQ(shell.edges.visibility.length(), 8);
    EXPECT_EQ(shell.edges.visibility[7], kAcGiSilhouette);
    ASSERT_EQ(shell.faces.materials.length(), 1);
    EXPECT_EQ(shell.faces.materials[0], ids.material);
    EXPECT_TRUE(shell.faces.colors.isEmpty());

    // Each of these lists is malformed and nothing may be read past its end.
    const Adesk::Int32 badIndex[4] = {3, 0, 1, 8};
    const Adesk::Int32 tooLong[4] = {4, 0, 1, 2};
    const Adesk::Int32 holeFirst[4] = {-3, 0, 1, 2};
    const Adesk::Int32 zeroCount[4] = {0, 3, 0, 1};
    const Adesk::Int32 hugeCount[4] = {INT_MIN, 0, 1, 2};
    for (const Adesk::Int32* list : {badIndex, tooLong, holeFirst, zeroCount, hugeCount})
        g.shell(8, pts, 4, list);
    g.shell(8, pts, 0, faces);
    g.shell(0, pts, 10, faces);
    EXPECT_EQ(rec.items().size(), 1u);
    EXPECT_EQ(rec.rejectedCount(), 7);

    // A 2 x 3 mesh: seven edges, two faces, six vertices.
    const AcGePoint3d grid[6] = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}};
    const Adesk::UInt8 meshVis[7] = {1, 1, 0, 0, 0, 1, 1};
    const short faceColors[2] = {1, 2};
    const AcGeVector3d normals[6] = {{0, 0, 2}, {0, 0, 2}, {0, 0, 2},
                                     {0, 0, 2}, {0, 0, 2}, {0, 0, 2}};
    AcGiEdgeData meshEdges;
    meshEdges.setVisibility(meshVis);
    AcGiFaceData meshFaces;
    meshFaces.setColors(faceColors);
    AcGiVertexData meshVertices;
    meshVertices.setNormals(normals);
    g.pushModelTransform(translation(0, 0, 3));
    g.mesh(2, 3, grid, &meshEdges, &meshFaces, &meshVertices);
    g.popModelTransform();
    g.mesh(1, 1, grid);
    g.mesh(70000, 70000, grid); // far more vertices than any array could hold

    ASSERT_EQ(rec.items().size(), 2u);
    const AcGiRecordedItem& mesh = rec.items()[1];
    EXPECT_EQ(mesh.kind, AcGiRecordedKind::kMesh);
    expectPoint(mesh.points[5], 2, 1, 3);
    EXPECT_EQ(mesh.edges.visibility.length(), 7);
    EXPECT_EQ(mesh.faces.colors.length(), 2);
    EXPECT_EQ(mesh.faces.colors[1], 2);
    ASSERT_EQ(mesh.vertices.normals.length(), 6);
    expectVector(mesh.vertices.normals[0], 0, 0, 1);
    EXPECT_EQ(rec.rejectedCount(), 9);
}

TEST(GiRecorder, TextsKeepTheirFrameMessageAndMeasuredWidth) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    AcGiTextStyle style(L"simsun.shx", L"", 2.0, 0.8, 0.0, 1.0, false, false, false, false, false);

    g.pushModelTransform(scaling(2));
    // Only the first four characters of the message are the text.
    g.text(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), L"标高ab不要", 4,
           false, style);
    g.popModelTransform();
    g.text(AcGePoint3d(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 1, 0), 3.0, 1.0, 0.0,
           L"%%c20");
    // A direction along the normal gives no text frame.
    g.text(AcGePoint3d(), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 0, 5), 1.0, 1.0, 0.0, L"x");

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(rec.rejectedCount(), 1);
    const AcGiRecordedItem& styled = items[0];
    EXPECT_EQ(styled.text, L"标高ab");
    EXPECT_EQ(styled.font, L"simsun.shx");
    expectPoint(styled.points[0], 2, 2, 0);
    EXPECT_NEAR(styled.numbers[0], 4.0, kTol);           // height, scaled with the drawing
    EXPECT_NEAR(styled.numbers[1], 0.8, kTol);           // width factor
    EXPECT_NEAR(styled.numbers[3], 3 * 4.0 * 0.8, kTol); // two full and two half widths

    const AcGiRecordedItem& plain = items[1];
    expectVector(plain.vectors[1], 0, 1, 0);
    EXPECT_NEAR(plain.numbers[3], 1.5 * 3.0, kTol); // the diameter sign and two digits
}

TEST(GiRecorder, ClipBoundariesPushOnlyWhenValidAndPopOnlyWhatWasPushed) {
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    AcGiClipBoundary box;
    box.m_aptPoints = {{0, 0}, {5, 0}, {5, 5}, {0, 5}};
    AcGiClipBoundary bowTie;
    bowTie.m_aptPoints = {{0, 0}, {5, 5}, {5, 0}, {0, 5}};

    EXPECT_TRUE(g.pushClipBoundary(&box));
    EXPECT_FALSE(g.pushClipBoundary(&bowTie));
    EXPECT_FALSE(g.pushClipBoundary(nullptr));
    g.popClipBoundary();
    g.popClipBoundary();

    EXPECT_EQ(rec.count(AcGiRecordedKind::kClipPush), 1);
    EXPECT_EQ(rec.count(AcGiRecordedKind::kClipPop), 1);
    EXPECT_EQ(rec.rejectedCount(), 3);
}

// ---------------------------------------------------------------- dump

TEST(GiRecorder, DumpPrintsOneFixedFormatLinePerItem) {
    FakeIds ids;
    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    const AcGePoint3d pts[2] = {{-0.0001, 0, 0}, {1.25, 2, 0}};
    g.polyline(2, pts);
    rec.subEntityTraits().setColor(7);
    rec.subEntityTraits().setLayer(ids.layer);
    rec.subEntityTraits().setSelectionMarker(3);
    g.text(AcGePoint3d(1, 2, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 2.5, 1.0, 0.0,
           L"树A");
    g.circle(AcGePoint3d(0, 0, 0), 1.5, AcGeVector3d(0, 0, 1));

    const std::string expected =
        "Polyline pts=[(0.000,0.000,0.000) (1.250,2.000,0.000)] int=[-1] | color=256 tc=C0000000 "
        "layer=0 ltype=0 ltscale=1.000 lw=-1 fill=never marker=0 thick=0.000 mat=0\n"
        "Text pts=[(1.000,2.000,0.000)] vec=[(0.000,0.000,1.000) (1.000,0.000,0.000)] "
        "num=[2.500 1.000 0.000 3.750] text=\"树A\" | color=7 tc=C3000007 layer=2A ltype=0 "
        "ltscale=1.000 lw=-1 fill=never marker=3 thick=0.000 mat=0\n"
        "Circle pts=[(0.000,0.000,0.000)] vec=[(0.000,0.000,1.000)] num=[1.500] | color=7 "
        "tc=C3000007 layer=2A ltype=0 ltscale=1.000 lw=-1 fill=never marker=3 thick=0.000 mat=0\n";
    EXPECT_EQ(rec.dump(), expected);
    EXPECT_EQ(rec.count(AcGiRecordedKind::kText), 1);
}

} // namespace
