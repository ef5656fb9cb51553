#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace kav::data {

// Creates every table, view and index of the loan database on an embedded (SQLite)
// database, leaving what already exists. Raises KavError (Database) on failure.
void CreateEmbeddedSchema(QSqlDatabase& db);

// The statements CreateEmbeddedSchema runs, in order (CREATE ... IF NOT EXISTS).
QStringList EmbeddedSchemaStatements();

// True when the database already holds the loan tables.
bool HasEmbeddedSchema(QSqlDatabase& db);

// The path of the T-SQL script that sets up the same schema on SQL Server, as installed
// beside the sources (for tests and tools).
QString SqlServerSchemaScriptPath();

}  // namespace kav::data
