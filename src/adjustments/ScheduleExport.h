#pragma once

// The member's schedule as the clerk takes it away: the columns the window shows, the rows
// of a CSV file (amounts as plain numbers a spreadsheet reads) and right-to-left pages to print
// or save as PDF with the heading and the column titles on every page, and the balance chart.

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "adjustments/BalanceChart.h"
#include "adjustments/RepaymentSchedule.h"
#include "session/PagedDocument.h"

namespace kav::schedule {

// The column titles: month, planned, adjustment, deducted on payslips, taken from the balance,
// balance, note.
QStringList ColumnTitles();
// The cells of a month and of the totals row under those titles, amounts grouped by threes
// (the window, the PDF) or plain (CSV). The totals row sums only what adds up: the payslips'
// deductions and what the months took from the balance, beside the balance left.
QStringList RowCells(const Row& row, bool grouped);
QStringList TotalCells(const Schedule& schedule, bool grouped);
// The note of a row: the remainder month, a month after the settlement date.
QString RowNote(const Row& row);
// An amount as the window shows it, grouped by threes.
QString AmountText(vb::Currency amount);

// The title row, one row per month with plain amounts, and the totals row.
QList<QStringList> CsvRows(const Schedule& schedule);

// The schedule's pages: on every page the title, the facts (one "label: value" text each) and
// the column titles; the totals after the last month; then, with a chart, the balance chart on
// a page of its own under the same title and facts.
PagedDocument Document(const QString& title, const QStringList& facts, const Schedule& schedule,
                       const std::optional<BalanceChart>& chart);

}  // namespace kav::schedule
