// Writing a drawing of 100,000 plain entities as DXF and reading it back, beside saving and
// reopening the same drawing in the drawing store as the reference of the same run.
#include "dbdxf.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "support/tempdir.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int kEntities = 100000;

// Lines, arcs, circles, polylines with a bulge and Chinese texts, in turn.
void fill(AcDbDatabase& db, int count) {
    AcDbBlockTableRecord* ms = nullptr;
    acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite);
    for (int i = 0; i < count; ++i) {
        const double x = (i % 1000) * 20.0, y = (i / 1000) * 20.0;
        AcDbEntity* ent = nullptr;
        switch (i % 5) {
        case 0:
            ent = new AcDbLine(AcGePoint3d(x, y, 0), AcGePoint3d(x + 10, y + 5, 0));
            break;
        case 1:
            ent = new AcDbArc(AcGePoint3d(x, y, 0), 5.0, 0.25, 2.5);
            break;
        case 2:
            ent = new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d(0, 0, 1), 4.0);
            break;
        case 3: {
            auto* pline = new AcDbPolyline();
            pline->addVertexAt(0, AcGePoint2d(x, y));
            pline->addVertexAt(1, AcGePoint2d(x + 10, y), 0.5);
            pline->addVertexAt(2, AcGePoint2d(x + 10, y + 10));
            pline->addVertexAt(3, AcGePoint2d(x, y + 10));
            pline->setClosed(true);
            ent = pline;
            break;
        }
        default:
            ent = new AcDbText(AcGePoint3d(x, y, 0), L"道路中心线", db.textstyle(), 2.5, 0.0);
            break;
        }
        ms->appendAcDbEntity(ent);
        ent->close();
    }
    ms->close();
}

void BM_Ours_DxfWrite(benchmark::State& state) {
    AcDbDatabase db;
    fill(db, static_cast<int>(state.range(0)));
    std::string text;
    for (auto _ : state) {
        qorWriteDxfString(&db, text, QorDxfOptions());
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void BM_Ours_DxfRead(benchmark::State& state) {
    std::string text;
    {
        AcDbDatabase db;
        fill(db, static_cast<int>(state.range(0)));
        qorWriteDxfString(&db, text, QorDxfOptions());
    }
    for (auto _ : state) {
        AcDbDatabase db;
        QorDxfReport report;
        benchmark::DoNotOptimize(qorReadDxfBytes(&db, text, &report));
        if (report.entities != static_cast<size_t>(state.range(0)))
            state.SkipWithError("not every entity was read");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

// The same drawing through the drawing store, for the ratio.
void BM_Store_DxfWrite(benchmark::State& state) {
    TempDir dir;
    AcDbDatabase db;
    fill(db, static_cast<int>(state.range(0)));
    const std::wstring file = dir.file("same.qdb");
    for (auto _ : state)
        benchmark::DoNotOptimize(db.saveAs(file.c_str()));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Store_DxfRead(benchmark::State& state) {
    TempDir dir;
    const std::wstring file = dir.file("same.qdb");
    {
        AcDbDatabase db;
        fill(db, static_cast<int>(state.range(0)));
        db.saveAs(file.c_str());
    }
    for (auto _ : state) {
        AcDbDatabase db(false, true);
        benchmark::DoNotOptimize(db.readDwgFile(file.c_str()));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Ours_DxfWrite)->Arg(kEntities)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ours_DxfRead)->Arg(kEntities)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Store_DxfWrite)->Arg(kEntities)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Store_DxfRead)->Arg(kEntities)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
