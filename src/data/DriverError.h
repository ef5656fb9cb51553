#pragma once

// The error to raise for a statement or connection the database driver refused. A database
// that another client holds (SQLite busy or locked, a SQL Server lock timeout or deadlock, an
// application lock not granted) is a Busy error with its own message; anything else is a
// Database error. Either way the driver's own text follows on a line of its own, isolated left
// to right, so its brackets and colons stay where the driver put them.

#include <QSqlError>
#include <QString>

#include "base/Errors.h"

namespace kav::data {

// True when the driver's error says another client holds the database.
bool IsBusyError(const QSqlError& error);

// "The database is in use by another user ..." with the driver's text on its own line.
KavError BusyError(const QString& driverText);

// Busy or Database, as the error is, with the driver's text on its own line.
KavError DriverError(const QSqlError& error);

// The driver's text of an error: the database's own message, else Qt's.
QString DriverText(const QSqlError& error);

}  // namespace kav::data
