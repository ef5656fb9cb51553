#pragma once

// The loan's members as the member grid FlexEmployee holds them, without a widget. The grid
// has 10 columns: 0 the row number, 1 the member's employee ID, 2 his personnel code, 3 his
// name, 4-6 the guarantors' names, 7-9 the guarantors' IDs or the text "null". The save
// reads columns 1 and 7-9, so every path that fills a row fills them the same way.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>

namespace kav {
class Recordset;
class RowReader;
}  // namespace kav

namespace kav::members {

constexpr int GridColumns = 10;
// The columns the save reads.
constexpr int EmployeeIdColumn = 1;
constexpr int CodeColumn = 2;
constexpr int FirstGuarantorIdColumn = 7;

// The text a guarantor's ID cell holds when there is no guarantor.
QString NullCell();
// A guarantor ID as its cell: "null" for a Null or empty field.
QString GuarantorCell(const QVariant& id);
// A guarantor chosen in the picker as its cell: "null" for -1.
QString GuarantorCell(qint32 id);

// The rows of the member query (FillLoanDetail) as the grid's cells, in UTF-8: the number,
// EmployeeID, Code, FirstName and SureName joined by two blanks, the guarantors' names and
// their IDs. The columns are found once, when it is made.
class LoadedRows {
public:
    explicit LoadedRows(const RowReader& rs);
    // The 10 cells of the reader's current row; valid until the next call or the next row.
    const std::array<QByteArrayView, GridColumns>& Cells(RowReader& rs, int rowNumber);

private:
    int employeeId_, code_, firstName_, sureName_;
    std::array<int, 3> supporter_, supporterId_;
    std::array<char, 16> number_{};
    QByteArray name_;
    std::array<QByteArrayView, GridColumns> cells_;
};

// The guarantors chosen with a member: their IDs (-1 for none) and, where found, names.
struct Guarantors {
    std::array<qint32, 3> ids{-1, -1, -1};
    std::array<QString, 3> names;
};
// The 10 cells of a member picked by the clerk, from the current row of the one-employee
// query (ID, Code, EmployeeName: the name with one blank).
QStringList PickedRow(const Recordset& employee, const Guarantors& guarantors, int rowNumber);
// The 10 cells of an employee found by the ordinance query (EmployeeID, Code,
// EmployeeName), without guarantors.
QStringList OrdinanceRow(const Recordset& rs, int rowNumber);

// The members already on the loan as the picker reads them: "(" + ID + ")" for each ID, in
// order, so (12)(40) for 12 and 40.
QString ExistingText(const QStringList& memberIds);
// The IDs joined with "," for an "in (...)" list, empty cells skipped; "-1" for none.
QString IdList(const QStringList& memberIds);

// The per-column sort directions of the member grid's header clicks (columns 0-10, all 0
// at first). Column 2, the personnel code, sorts numerically: 3 ascending, then 4
// descending, alternating; every other column generically: 1 ascending, then 2.
class SortCodes {
public:
    // The code of the next sort of a column; a column outside 0-10 raises KavError (Usage).
    int Next(int column);

private:
    std::array<int, 11> codes_{};
};

}  // namespace kav::members
