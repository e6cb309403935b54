// Rendering a drawing of 100,000 entities (lines, polylines with arcs, circles and texts) to
// PNG, beside cairo drawing the same geometry straight from arrays: the peer shows what the
// drawing interfaces, the traits and the database add to the painting itself.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "girender.h"
#include "support/tempdir.h"
#include "winstr.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

namespace {

// 25,000 cells of 10 x 10 units, 250 across, each with one entity of every kind.
constexpr int kCellsAcross = 250;
constexpr int kCells = 25000;
constexpr double kCell = 10.0;
// Wide enough for the texts (1.6 units high) to be legible: about 6 pixels.
constexpr int kWidth = 4000;

const wchar_t* const kTexts[] = {L"道路12", L"R=150", L"绿地", L"B-7 楼"};

struct Scene {
    struct Line {
        AcGePoint3d a, b;
    };
    struct Pline {
        AcGePoint2d pts[4];
        double bulges[4];
    };
    struct Circle {
        AcGePoint3d c;
        double r;
    };
    struct Text {
        AcGePoint3d at;
        const wchar_t* text;
        double rotation;
    };
    std::vector<Line> lines;
    std::vector<Pline> plines;
    std::vector<Circle> circles;
    std::vector<Text> texts;
};

const Scene& scene() {
    static const Scene s = [] {
        Scene s;
        for (int i = 0; i < kCells; ++i) {
            const double x = (i % kCellsAcross) * kCell, y = (i / kCellsAcross) * kCell;
            s.lines.push_back({{x + 0.5, y + 0.5, 0}, {x + 9.5, y + 0.5 + (i % 7), 0}});
            Scene::Pline p{{{x + 1, y + 5}, {x + 4, y + 5}, {x + 4, y + 8}, {x + 1, y + 8}},
                           {i % 3 ? 0.0 : 0.4, 0.0, i % 2 ? -0.6 : 0.0, 0.0}};
            s.plines.push_back(p);
            s.circles.push_back({{x + 7, y + 6.5, 0}, 1.0 + (i % 5) * 0.3});
            s.texts.push_back({{x + 0.8, y + 2.2, 0}, kTexts[i % 4], (i % 9 == 0) ? 0.5 : 0.0});
        }
        return s;
    }();
    return s;
}

void fill(AcDbDatabase& db) {
    const Scene& s = scene();
    AcDbBlockTableRecord* ms = nullptr;
    acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite);
    auto add = [&](AcDbEntity* e, Adesk::UInt16 color) {
        e->setColorIndex(color);
        ms->appendAcDbEntity(e);
        e->close();
    };
    for (int i = 0; i < kCells; ++i) {
        add(new AcDbLine(s.lines[i].a, s.lines[i].b), 1);
        auto* pl = new AcDbPolyline();
        for (unsigned k = 0; k < 4; ++k)
            pl->addVertexAt(k, s.plines[i].pts[k], s.plines[i].bulges[k]);
        pl->setClosed(true);
        add(pl, 3);
        add(new AcDbCircle(s.circles[i].c, AcGeVector3d(0, 0, 1), s.circles[i].r), 5);
        add(new AcDbText(s.texts[i].at, s.texts[i].text, AcDbObjectId(), 1.6, s.texts[i].rotation),
            7);
    }
    ms->close();
}

AcDbDatabase& drawing() {
    static AcDbDatabase* db = [] {
        auto* d = new AcDbDatabase();
        fill(*d);
        return d;
    }();
    return *db;
}

void BM_Ours_RenderPng(benchmark::State& state) {
    TempDir dir;
    const std::wstring file = dir.file("scene.png");
    AcGiRenderOptions options;
    options.width = kWidth;
    AcDbDatabase& db = drawing();
    for (auto _ : state) {
        std::wstring error;
        if (!acgiRenderModelSpace(&db, options, file.c_str(), error))
            state.SkipWithError(qorToUtf8(error).c_str());
    }
    state.SetItemsProcessed(state.iterations() * 4 * kCells);
    state.SetLabel("items = entities");
}

// The peer: the same geometry, colours and view, painted with cairo directly.
void BM_Cairo_RenderPng(benchmark::State& state) {
    const Scene& s = scene();
    TempDir dir;
    const std::string file = dir.path() / "direct.png";
    // The view of the renderer: the extents with a 3% margin, y up.
    const double x0 = -0.03 * kCellsAcross * kCell, y0 = -0.03 * kCellsAcross * kCell;
    const double wx = 1.06 * kCellsAcross * kCell,
                 wy = kCells / kCellsAcross * kCell + 0.06 * kCellsAcross * kCell;
    const double scale = kWidth / wx;
    const int height = static_cast<int>(std::lround(wy * scale));
    auto X = [&](double x) { return (x - x0) * scale; };
    auto Y = [&](double y) { return height - (y - y0) * scale; };
    std::vector<std::string> utf8;
    for (const auto& t : s.texts)
        utf8.push_back(qorToUtf8(t.text));
    for (auto _ : state) {
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, height);
        cairo_t* cr = cairo_create(surface);
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_paint(cr);
        cairo_set_line_width(cr, 1.0);
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        cairo_select_font_face(cr, "WenQuanYi Micro Hei Mono", CAIRO_FONT_SLANT_NORMAL,
                               CAIRO_FONT_WEIGHT_NORMAL);
        for (int i = 0; i < kCells; ++i) {
            const auto& l = s.lines[i];
            cairo_set_source_rgb(cr, 1, 0, 0);
            cairo_move_to(cr, X(l.a.x), Y(l.a.y));
            cairo_line_to(cr, X(l.b.x), Y(l.b.y));
            cairo_stroke(cr);

            const auto& p = s.plines[i];
            cairo_set_source_rgb(cr, 0, 1, 0);
            for (int k = 0; k < 4; ++k) {
                const AcGePoint2d& a = p.pts[k];
                const AcGePoint2d& b = p.pts[(k + 1) % 4];
                if (p.bulges[k] == 0.0) {
                    cairo_move_to(cr, X(a.x), Y(a.y));
                    cairo_line_to(cr, X(b.x), Y(b.y));
                    cairo_stroke(cr);
                    continue;
                }
                const double bulge = p.bulges[k], len = (b - a).length();
                const AcGeVector2d left = AcGeVector2d(-(b.y - a.y), b.x - a.x) / len;
                const AcGePoint2d c =
                    a + (b - a) / 2.0 + left * (len * (1.0 - bulge * bulge) / (4.0 * bulge));
                const double r = len * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
                // Device y runs down: angles turn the other way.
                const double start = -std::atan2(a.y - c.y, a.x - c.x);
                const double sweep = -4.0 * std::atan(bulge);
                if (sweep < 0)
                    cairo_arc_negative(cr, X(c.x), Y(c.y), r * scale, start, start + sweep);
                else
                    cairo_arc(cr, X(c.x), Y(c.y), r * scale, start, start + sweep);
                cairo_stroke(cr);
            }

            const auto& c = s.circles[i];
            cairo_set_source_rgb(cr, 0, 0, 1);
            cairo_arc(cr, X(c.c.x), Y(c.c.y), c.r * scale, 0, 2 * std::numbers::pi);
            cairo_stroke(cr);

            const auto& t = s.texts[i];
            cairo_set_source_rgb(cr, 0, 0, 0);
            cairo_matrix_t m;
            cairo_matrix_init_scale(&m, 1.6 * scale, 1.6 * scale);
            cairo_matrix_rotate(&m, -t.rotation);
            cairo_set_font_matrix(cr, &m);
            cairo_move_to(cr, X(t.at.x), Y(t.at.y));
            cairo_show_text(cr, utf8[i].c_str());
        }
        cairo_surface_write_to_png(surface, file.c_str());
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    state.SetItemsProcessed(state.iterations() * 4 * kCells);
    state.SetLabel("items = entities");
}

BENCHMARK(BM_Ours_RenderPng)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Cairo_RenderPng)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
