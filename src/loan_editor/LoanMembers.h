#pragma once

// The loan's members as the member grid FlexEmployee holds them, without a widget. The grid
// has 10 columns: 0 the row number, 1 the member's employee ID, 2 his personnel code, 3 his
// name, 4-6 the guarantors' names, 7-9 the guarantors' IDs or the text "null". The save
// reads columns 1 and 7-9, so every path that fills a row fills them the same way.

#include <QString>
#include <QStringList>
#include <QVariant>

namespace kav {
class Recordset;
}

namespace kav::members {

constexpr int GridColumns = 10;

// The text a guarantor's ID cell holds when there is no guarantor.
QString NullCell();
// A guarantor ID as its cell: "null" for a Null or empty field.
QString GuarantorCell(const QVariant& id);

// The 10 cells of a row of the member query (FillLoanDetail) at the recordset's current
// row: the number, EmployeeID, Code, FirstName and SureName joined by two blanks, the
// guarantors' names and their IDs.
QStringList LoadedRow(const Recordset& rs, int rowNumber);

}  // namespace kav::members
