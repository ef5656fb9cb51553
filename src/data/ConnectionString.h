#pragma once

// Turns the OLE DB connection string a host hands in into what Qt SQL opens.

#include <QString>
#include <QStringList>

namespace kav::data {

// The database the module talks to; it decides the SQL dialect, not the driver.
enum class DatabaseKind { SqlServer, SQLite };

struct ConnectionTarget {
    QString qtDriver;      // "QSQLITE" or "QODBC"
    QString databaseName;  // the file for QSQLITE, the ODBC connection string for QODBC
    DatabaseKind kind = DatabaseKind::SqlServer;
};

// Which ODBC driver serves SQL Server: the override when given (a setting or the
// environment variable KAVHRLOAN_ODBC_DRIVER), else Microsoft's driver when installed
// ("ODBC Driver 18 for SQL Server", then 17), else FreeTDS.
QString ChooseSqlServerOdbcDriver(const QStringList& installedDrivers, const QString& override);

// The ODBC drivers unixODBC knows (the sections of odbcinst.ini).
QStringList InstalledOdbcDrivers();

// Maps the OLE DB string:
//  - SQL Server providers (SQLOLEDB, SQLNCLI*, MSOLEDBSQL*) with Data Source, Initial
//    Catalog, User ID, Password, Integrated Security: an ODBC string for QODBC with the
//    chosen driver; FreeTDS also gets ClientCharset=UTF-8. "." and "(local)" mean this
//    machine.
//  - "Provider=SQLite;Data Source=FILE": the embedded database through QSQLITE.
//  - "Provider=MSDASQL;..." or a bare "Driver=...;...": the ODBC string through QODBC;
//    the dialect is SQLite when the driver is an SQLite driver, else SQL Server.
// The control's initial value "0", an empty text or an unknown provider raise a
// connection error (KavError::Kind::Connection) that names the problem.
ConnectionTarget MapConnectionString(const QString& oleDb, const QStringList& installedDrivers,
                                     const QString& driverOverride);
// The same with the drivers installed on this machine and the environment's override.
ConnectionTarget MapConnectionString(const QString& oleDb);

// A text fit to show or log: the value of every Password or PWD attribute written in it
// ("Password=...", "PWD={...}", quoted or not) becomes "***", and so does every occurrence of
// a password that `connectionString` holds (of three characters or more), wherever a driver
// may have echoed it.
QString MaskPasswords(const QString& text, const QString& connectionString = QString());

}  // namespace kav::data
