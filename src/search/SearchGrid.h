#pragma once

// The search's result grid: its 17 columns, filling it from the search text, and its rows
// as CSV. Filling reads each result row once, forward only, through the data environment's
// RowReader and puts the texts the grid shows straight into it as UTF-8, so a search of
// 100,000 rows stays quick and small; the grid shares the text of a cell that repeats the row
// above (the loan's own columns for each of its members).
//
//   Connection& cnt = module.DtEn().cnt();
//   const int found = search::FillSearchGrid(cnt, search::SearchQuery(cnt.Dialect(), {}), grid);

#include <QList>
#include <QString>
#include <QStringList>

namespace kav {
class Connection;
namespace controls {
class FlexGrid;
}
}  // namespace kav

namespace kav::search {

// Columns of the grid with a meaning of their own.
enum GridColumn : int {
    ColRowNumber = 0,
    ColEmployeeCode = 1,
    ColLoanValue = 6,
    ColMonthlyValue = 9,
    ColBalanceStart = 10,
    ColBalanceEnd = 11,
    ColStatus = 12,
    ColId = 16,
    GridColumns = 17,
};

// The fields of a result row the grid reads, each once.
const QStringList& ResultFields();

// The grid with its header row only: 17 columns, header texts and widths.
void InitializeGrid(controls::FlexGrid& grid);

// Runs the search text and puts one grid row per result row under the header (the rows the
// grid held before go): the row number, the member's code and names, the loan's type, dates
// and amounts (grouped; no instalment gives an empty cell; both balance columns are the loan
// amount), the status text, the guarantors' names and the row's ID in the hidden last column.
// The amount columns widen to the widest amount found (never narrower than at the start), so
// no amount is cut short. Returns the number of rows found. A database error raises KavError (Database); the grid is
// then left with its header only.
int FillSearchGrid(Connection& cnt, const QString& sql, controls::FlexGrid& grid);

// The rows the grid shows, in the order shown, as CSV rows: the header texts, then every
// data row; hidden columns left out, amounts as plain numbers (without "/").
QList<QStringList> CsvRows(const controls::FlexGrid& grid);

}  // namespace kav::search
