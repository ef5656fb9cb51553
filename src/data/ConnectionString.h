#pragma once

// Turns the OLE DB connection string a host hands in into what Qt SQL opens.

#include <QHash>
#include <QString>
#include <QStringList>

namespace kav::data {

// The database the module talks to; it decides the SQL dialect, not the driver.
enum class DatabaseKind { SqlServer, SQLite };

struct ConnectionTarget {
    QString qtDriver;      // "QSQLITE" or "QODBC"
    // The file for QSQLITE; for QODBC the connection string the driver manager receives (what
    // QSqlDatabase is given is QodbcDatabaseName of it).
    QString databaseName;
    DatabaseKind kind = DatabaseKind::SqlServer;
};

// Which ODBC driver serves SQL Server: the override when given (a setting or the
// environment variable KAVHRLOAN_ODBC_DRIVER), else Microsoft's driver when installed
// ("ODBC Driver 18 for SQL Server", then 17), else FreeTDS.
QString ChooseSqlServerOdbcDriver(const QStringList& installedDrivers, const QString& override);

// The ODBC drivers unixODBC knows (the sections of odbcinst.ini).
QStringList InstalledOdbcDrivers();

// The ODBC data sources unixODBC knows (the sections of the system's odbc.ini, then the
// user's: ODBCINI or ~/.odbc.ini), each with the driver it names.
QHash<QString, QString> OdbcDataSources();

// Maps the OLE DB string:
//  - SQL Server providers (SQLOLEDB, SQLNCLI*, MSOLEDBSQL*) with Data Source, Initial
//    Catalog, User ID, Password, Integrated Security: an ODBC string for QODBC with the
//    chosen driver; FreeTDS also gets ClientCharset=UTF-8. "." and "(local)" mean this
//    machine. Encryption reaches each driver in its own words: "Use Encryption for Data" or
//    "Encrypt" (True/False, yes/no, Optional/Mandatory/Strict) is Encrypt=yes/no/strict for
//    Microsoft's driver (strict from version 18) and Encryption=require/request/off for
//    FreeTDS, which cannot do strict; "Trust Server Certificate" is TrustServerCertificate. A
//    request for encryption that the driver cannot honour is refused, never connected in clear.
//  - "Provider=SQLite;Data Source=FILE": the embedded database through QSQLITE.
//  - "Provider=MSDASQL;Data Source=DSN;...", "DSN=...;..." or a bare "Driver=...;...": the
//    ODBC string through QODBC; the dialect is SQLite when the driver (a data source's: its
//    section in `dataSources`) is an SQLite driver, else SQL Server. The SQLite driver waits
//    for a busy database as long as the embedded path does and makes no missing file; FreeTDS
//    gets ClientCharset=UTF-8 unless the string sets it.
// The control's initial value "0", an empty text or an unknown provider raise a
// connection error (KavError::Kind::Connection) that names the problem.
ConnectionTarget MapConnectionString(const QString& oleDb, const QStringList& installedDrivers,
                                     const QString& driverOverride,
                                     const QHash<QString, QString>& dataSources = {});
// The same with the drivers and data sources of this machine and the environment's override.
ConnectionTarget MapConnectionString(const QString& oleDb);

// What QSqlDatabase::setDatabaseName is given so that the driver manager receives the ODBC
// string: Qt's ODBC driver puts "DSN=" in front of a string that names no driver and no
// server, so such a string is handed over without its leading "DSN=".
QString QodbcDatabaseName(const QString& odbcString);

// A text fit to show or log: the value of every Password or PWD attribute written in it
// ("Password=...", "PWD={...}", quoted or not) becomes "***", and so does every occurrence of
// a password that `connectionString` holds (of three characters or more), wherever a driver
// may have echoed it.
QString MaskPasswords(const QString& text, const QString& connectionString = QString());

}  // namespace kav::data
