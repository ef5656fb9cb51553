#pragma once

// Rows of texts as a CSV file a spreadsheet opens correctly: UTF-8 with a byte-order mark,
// fields separated by commas, a field holding a comma, a quote or a line break between double
// quotes with its quotes doubled, lines ended by CR LF. A text that begins with =, +, -, @, a
// tab or a carriage return gets an apostrophe in front, so that no spreadsheet takes it for a
// formula; a number (digits, an optional minus and fraction) stays as it is.

#include <QList>
#include <QString>
#include <QStringList>

namespace kav {

// The CSV text of the rows (without the byte-order mark). A field of the quoted columns that is
// not empty is always written between double quotes, so that a spreadsheet takes it as text
// (a personnel code keeps its leading zeros). An empty row is an empty line.
QString CsvText(const QList<QStringList>& rows, const QList<int>& quotedColumns = {});

// Writes the rows to the file, whole or not at all (a failure leaves an existing file as it
// was). Raises KavError (Usage) naming the file when it cannot be written.
void SaveCsv(const QString& path, const QList<QStringList>& rows,
             const QList<int>& quotedColumns = {});

}  // namespace kav
