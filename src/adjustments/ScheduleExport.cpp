#include "adjustments/ScheduleExport.h"

#include <QPainter>

#include "adjustments/BalanceChartPaint.h"
#include "session/TableDocument.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

using vb::Currency;

QStringList ColumnTitles() {
    return {u"ماه"_s,        u"قسط برنامه"_s,      u"تعديل"_s, u"کسر شده در فيش"_s,
            u"کاهش مانده"_s, u"مانده پس از ماه"_s, u"توضيح"_s};
}

QString RowNote(const Row& row) {
    QStringList notes;
    if (row.remainderMonth) notes << u"باقيمانده وام"_s;
    if (row.afterSettlement) notes << u"پس از تاريخ تسويه"_s;
    return notes.join(u"، "_s);
}

QString AmountText(Currency amount) { return GroupDigits(amount.toString()); }

namespace {

QString amountCell(const std::optional<Currency>& amount, bool grouped) {
    if (!amount) return {};
    return grouped ? AmountText(*amount) : amount->toString();
}

}  // namespace

QStringList RowCells(const Row& r, bool grouped) {
    return {r.month,
            amountCell(r.planned, grouped),
            amountCell(r.adjustment, grouped),
            amountCell(r.deducted, grouped),
            amountCell(r.taken, grouped),
            amountCell(r.balance, grouped),
            RowNote(r)};
}

QStringList TotalCells(const Schedule& s, bool grouped) {
    return {u"جمع"_s,
            QString(),
            QString(),
            amountCell(s.totalDeducted, grouped),
            amountCell(s.totalTaken, grouped),
            amountCell(s.balance, grouped),
            QString()};
}

QList<QStringList> CsvRows(const Schedule& s) {
    QList<QStringList> rows;
    rows.reserve(s.rows.size() + 2);
    rows << ColumnTitles();
    for (const Row& r : s.rows) rows << RowCells(r, false);
    rows << TotalCells(s, false);
    return rows;
}

namespace {

// The table: the widths of the columns, right to left, as parts of the line; the note starts
// at its cell's right edge.
TableDocument table(const QString& title, const QStringList& facts, const Schedule& s) {
    TableDocument doc;
    doc.title = title;
    doc.facts = facts;
    doc.columnTitles = ColumnTitles();
    doc.columnShares = {0.10, 0.14, 0.13, 0.14, 0.14, 0.15, 0.20};
    doc.textColumns = {6};
    doc.lines.reserve(s.rows.size() + 1);
    for (const Row& r : s.rows) doc.lines << TableDocument::Line{RowCells(r, true)};
    doc.lines << TableDocument::Line{TotalCells(s, true), true};
    return doc;
}

}  // namespace

PagedDocument Document(const QString& title, const QStringList& facts, const Schedule& s,
                       const std::optional<BalanceChart>& chart) {
    const PagedDocument pages = TablePages(table(title, facts, s));
    if (!chart) return pages;
    PagedDocument chartPage;
    chartPage.pageCount = [](QPaintDevice&, const QSizeF&) { return 1; };
    chartPage.paint = [title, facts, chart = *chart](QPainter& p, QPaintDevice& device,
                                                     const QSizeF& area, const NewPage&) {
        const double top = PaintDocumentHeading(p, device, area, title, QString(), facts);
        // The chart takes the page's width and two thirds of it in height.
        const double height = qMin(area.height() - top, area.width() * 2 / 3);
        PaintBalanceChart(p, QRectF(0, top, area.width(), height), chart);
    };
    return Followed(pages, chartPage);
}

}  // namespace kav::schedule
