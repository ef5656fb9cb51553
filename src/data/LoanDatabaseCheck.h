#pragma once

// Before the module works on a database it makes sure the database is one of its own: a file
// that is no database at all, or a database without the loan tables, is refused with a clear
// message and left exactly as it was (nothing is read from it but whether the tables exist,
// nothing is written to it).

#include <QSqlDatabase>
#include <QString>

namespace kav::data {

// Looks for the loan tables and views the windows read. Raises KavError (Connection) when the
// file is no database or the loan tables are missing, naming `shownName` (the file, or the
// empty text for a server's database); any other refusal of the driver is raised as the
// driver's error (Busy or Database).
void CheckLoanDatabase(QSqlDatabase db, const QString& shownName);

}  // namespace kav::data
