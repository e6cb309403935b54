// Saving and reopening a drawing of many polylines.
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "support/tempdir.h"

#include <benchmark/benchmark.h>

namespace {

void fill(AcDbDatabase& db, int count) {
    AcDbBlockTableRecord* ms = nullptr;
    acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite);
    for (int i = 0; i < count; ++i) {
        auto* pline = new AcDbPolyline();
        const double x = (i % 1000) * 20.0, y = (i / 1000) * 20.0;
        pline->addVertexAt(0, AcGePoint2d(x, y));
        pline->addVertexAt(1, AcGePoint2d(x + 10, y), 0.5);
        pline->addVertexAt(2, AcGePoint2d(x + 10, y + 10));
        pline->addVertexAt(3, AcGePoint2d(x, y + 10));
        pline->setClosed(true);
        ms->appendAcDbEntity(pline);
        pline->close();
    }
    ms->close();
}

void BM_SavePolylines(benchmark::State& state) {
    TempDir dir;
    AcDbDatabase db;
    fill(db, static_cast<int>(state.range(0)));
    const std::wstring file = dir.file("many.qdb");
    for (auto _ : state)
        benchmark::DoNotOptimize(db.saveAs(file.c_str()));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_ReopenPolylines(benchmark::State& state) {
    TempDir dir;
    const std::wstring file = dir.file("many.qdb");
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

BENCHMARK(BM_SavePolylines)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReopenPolylines)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
