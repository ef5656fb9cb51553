// Filling the search window's result grid: 100,000 rows of 17 columns, the way the window
// does it (a row added, then its cells written), and the other way (all rows at once, then
// the cells). Reports the time and the growth of the resident memory.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>
#include <charconv>
#include <memory>

#include "controls/FlexGrid.h"

using namespace Qt::StringLiterals;
using kav::controls::FlexGrid;

namespace {

constexpr int kRows = 100000;
constexpr int kCols = 17;

// Resident memory of this process in kB (VmRSS of /proc/self/status).
long residentKb() {
    QFile f(u"/proc/self/status"_s);
    if (!f.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
}

std::unique_ptr<FlexGrid> searchGrid() {
    auto grid = std::make_unique<FlexGrid>();
    grid->resize(1000, 600);
    grid->setRows(1);
    grid->setCols(kCols);
    const QStringList headers = {u"رديف"_s,         u"کد پرسنلي"_s,      u"نام"_s,
                                 u"نام خانوادگي"_s, u"نوع وام"_s,        u"تاريخ دريافت وام"_s,
                                 u"مبلغ وام"_s,     u"تاريخ شروع"_s,     u"تاريخ پايان"_s,
                                 u"مبلغ قسط"_s,     u"مانده اول ماه"_s,  u"مانده آخر ماه"_s,
                                 u"وضعيت وام"_s,    u"ضامن 1"_s,         u"ضامن 2"_s,
                                 u"ضامن 3"_s,       u"شماره رايانه اي"_s};
    const int widths[] = {600,  1200, 1200, 1500, 2400, 1200, 1200, 1200, 1200,
                          1200, 1200, 1200, 1200, 1800, 1800, 1800, 0};
    for (int c = 0; c < kCols; ++c) {
        grid->setTextMatrix(0, c, headers[c]);
        grid->setColWidth(c, widths[c]);
    }
    grid->show();
    QApplication::processEvents();
    return grid;
}

// One result row's cells, made fresh as the window makes them from a recordset.
void writeRow(FlexGrid& grid, int r) {
    grid.setTextMatrix(r, 0, QString::number(r));
    grid.setTextMatrix(r, 1, QString::number(10000 + r % 5000));
    grid.setTextMatrix(r, 2, u"علي"_s + QString::number(r % 97));
    grid.setTextMatrix(r, 3, u"رضايي"_s + QString::number(r % 89));
    grid.setTextMatrix(r, 4, u"وام ضروري"_s);
    grid.setTextMatrix(r, 5, u"1403/%1/01"_s.arg(1 + r % 12, 2, 10, QChar(u'0')));
    grid.setTextMatrix(r, 6, u"12/500/000"_s);
    grid.setTextMatrix(r, 7, u"1403/02/01"_s);
    grid.setTextMatrix(r, 8, u"1404/01/31"_s);
    grid.setTextMatrix(r, 9, QString::number(1041666 + r % 7));
    grid.setTextMatrix(r, 10, u"12/500/000"_s);
    grid.setTextMatrix(r, 11, u"12/500/000"_s);
    grid.setTextMatrix(r, 12, r % 3 ? u"ثبت قطعي"_s : u"ثبت موقت"_s);
    grid.setTextMatrix(r, 13, u"مريم احمدي"_s);
    grid.setTextMatrix(r, 14, QString());
    grid.setTextMatrix(r, 15, QString());
    grid.setTextMatrix(r, 16, QString::number(r));
}

// The same row's cells as UTF-8 bytes, the way the data environment's reader hands them over:
// nothing is made per cell but the row's number.
void writeRowUtf8(FlexGrid& grid, int r) {
    static const QByteArray texts[] = {u"علي"_s.toUtf8(),        u"رضايي"_s.toUtf8(),
                                       u"وام ضروري"_s.toUtf8(),  u"1403/02/01"_s.toUtf8(),
                                       u"12/500/000"_s.toUtf8(), u"1404/01/31"_s.toUtf8(),
                                       u"ثبت قطعي"_s.toUtf8(),   u"مريم احمدي"_s.toUtf8()};
    char number[16];
    const QByteArrayView id(number, std::to_chars(number, number + sizeof number, r).ptr);
    grid.setTextMatrixUtf8(r, 0, id);
    grid.setTextMatrixUtf8(r, 1, id);
    grid.setTextMatrixUtf8(r, 2, texts[0]);
    grid.setTextMatrixUtf8(r, 3, texts[1]);
    grid.setTextMatrixUtf8(r, 4, texts[2]);
    grid.setTextMatrixUtf8(r, 5, texts[3]);
    grid.setTextMatrixUtf8(r, 6, texts[4]);
    grid.setTextMatrixUtf8(r, 7, texts[3]);
    grid.setTextMatrixUtf8(r, 8, texts[5]);
    grid.setTextMatrixUtf8(r, 9, id);
    grid.setTextMatrixUtf8(r, 10, texts[4]);
    grid.setTextMatrixUtf8(r, 11, texts[4]);
    grid.setTextMatrixUtf8(r, 12, texts[6]);
    grid.setTextMatrixUtf8(r, 13, texts[7]);
    grid.setTextMatrixUtf8(r, 16, id);
}

// Bytes the heap has handed out and not yet taken back.
double heapInUseMb() {
    const struct mallinfo2 m = mallinfo2();
    return double(m.uordblks + m.hblkhd) / (1024.0 * 1024.0);
}

// The growth of the resident set is only seen on the first fill (later fills reuse the
// freed pages), so the largest growth is kept; the heap growth is exact on every fill.
void report(benchmark::State& state, long rssBefore, double heapBefore) {
    static double maxRss = 0;
    maxRss = std::max(maxRss, double(residentKb() - rssBefore) / 1024.0);
    state.counters["rss_growth_MB"] = maxRss;
    state.counters["heap_growth_MB"] = heapInUseMb() - heapBefore;
}

// One fill of a new grid per iteration, timed, with the memory it took.
template <class Fill>
void measureFill(benchmark::State& state, Fill fill) {
    for (auto _ : state) {
        state.PauseTiming();
        const long before = residentKb();
        const double heapBefore = heapInUseMb();
        auto grid = searchGrid();
        state.ResumeTiming();
        fill(*grid);
        QApplication::processEvents();  // the view catches up and paints
        state.PauseTiming();
        report(state, before, heapBefore);
        grid.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

// The search window's way: a row added, then its 17 cells.
void BM_FillByAddItem(benchmark::State& state) {
    measureFill(state, [](FlexGrid& grid) {
        for (int r = 1; r <= kRows; ++r) {
            grid.AddItem();
            writeRow(grid, r);
        }
        grid.setCol(1);
        grid.setColSel(kCols - 1);
    });
}
BENCHMARK(BM_FillByAddItem)->Unit(benchmark::kMillisecond)->Iterations(3);

// All rows at once, then the cells.
void BM_FillBySetRows(benchmark::State& state) {
    measureFill(state, [](FlexGrid& grid) {
        grid.setRows(kRows + 1);
        for (int r = 1; r <= kRows; ++r) writeRow(grid, r);
    });
}
BENCHMARK(BM_FillBySetRows)->Unit(benchmark::kMillisecond)->Iterations(3);

// All rows at once, then the cells as UTF-8.
void BM_FillUtf8BySetRows(benchmark::State& state) {
    measureFill(state, [](FlexGrid& grid) {
        grid.setRows(kRows + 1);
        for (int r = 1; r <= kRows; ++r) writeRowUtf8(grid, r);
    });
}
BENCHMARK(BM_FillUtf8BySetRows)->Unit(benchmark::kMillisecond)->Iterations(3);

// A header click on a filled grid: the generic sort of 100,000 rows on a text column.
void BM_SortGeneric(benchmark::State& state) {
    auto grid = searchGrid();
    grid->setRows(kRows + 1);
    for (int r = 1; r <= kRows; ++r) writeRow(*grid, r);
    QApplication::processEvents();
    int code = 1;
    for (auto _ : state) {
        grid->setCol(3);
        grid->Sort(code);
        code = 3 - code;
        QApplication::processEvents();
    }
}
BENCHMARK(BM_SortGeneric)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
