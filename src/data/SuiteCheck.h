#pragma once

// The check of a database before the module is pointed at it: one line per object the module
// uses (tables, views and their columns, the stored procedures and their parameters, the
// working date, the module's own objects, the payslip columns of the settings, the rights of
// the login, the user's permissions), each present, missing (and what stops working) or
// reduced (and what). Widget-free and database-free: the metadata queries are built here in
// each dialect, their rows are read into SuiteFacts, and the lines are decided from the facts.
// Running the queries is the caller's (kavhrloan --check-database), and nothing is written.

#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

#include "data/ConnectionString.h"
#include "data/PayslipColumns.h"

namespace kav::data::suite_check {

enum class ObjectKind { Table, View, Procedure, Index };

// One object the module uses. The list is data: an object the module comes to use is one
// more entry.
struct CheckedObject {
    QString name;
    ObjectKind kind;
    // Tables and views: the columns the module reads or writes. Procedures: the columns of
    // `table` that the embedded database's emulation of the procedure uses.
    QStringList columns{};
    // What stops working, or works less, without it (or without one of its columns).
    QString withoutIt{};
    // Looked for whenever the module opens: without it the module does not open at all.
    bool neededToOpen = false;
    // Without it what the Parts need does not work (missing, exit 2); otherwise less works
    // (reduced).
    bool essential = true;
    // Created by the module's own script (src/data/sqlserver/KAVHRLoan.sql) for the module,
    // never by the suite.
    bool moduleOwn = false;
    // On SQL Server, the rights the login needs on it (tables the module writes, procedures),
    // and what uses them, as a line says when one is missing.
    QStringList rights{};
    QString writtenBy{};
    // A right refused on it stops the Parts' writes even though the object itself is not
    // essential (the history table: its row is part of every write's transaction).
    bool rightsEssential = false;
    // Indexes: the table they index. Procedures: the table their embedded emulation uses.
    QString table{};
};

const QList<CheckedObject>& CheckedObjects();

// Columns whose text a person types: they must hold Unicode.
struct TypedTextColumn {
    QString table, column;
};
const QList<TypedTextColumn>& TypedTextColumns();

// The rows of one query, its column names as the driver gave them.
struct ResultSet {
    QStringList columns;
    QList<QVariantList> rows;
};

// What the queries found. A field left empty was not read (the query failed or does not apply
// to the engine); its lines say they could not check.
struct SuiteFacts {
    DatabaseKind kind = DatabaseKind::SqlServer;
    // True when the statements run through Qt's embedded SQLite driver on a file.
    std::optional<QString> embeddedFile;
    std::optional<bool> fileWritable;  // the file and its folder, for this user
    // Lower-case object name -> its type as the catalogue names it ("U", "V", "P", "table"...).
    std::optional<QHash<QString, QString>> objects;
    // Table or view (as in CheckedObjects) -> its columns, from the connection's own look-up;
    // nothing when it could not be read.
    QHash<QString, std::optional<QStringList>> columns;
    // Lower-case "table.index" names found.
    std::optional<QSet<QString>> indexes;
    // Lower-case procedure name -> its parameters in order.
    std::optional<QHash<QString, QStringList>> parameters;
    // Lower-case object name -> right -> granted (nothing: the object is not there).
    std::optional<QHash<QString, QMap<QString, std::optional<bool>>>> rights;
    // Lower-case "table.column" -> type name.
    std::optional<QHash<QString, QString>> columnTypes;
    // The working date's row: read, and its Value when the row is there.
    bool workingDateRead = false;
    std::optional<QString> workingDate;
    // The user whose permissions were checked, and each permission's answer (1 granted) or
    // the error of the role procedure.
    std::optional<qint16> user;
    QMap<int, int> permissions;
    QString permissionError;
    // Queries that failed: what they read, and the driver's text.
    QStringList failures;
};

// The metadata queries. Each has a builder per dialect where the engine can answer it (an
// empty text where it cannot) and a reader that adds its rows to the facts.
struct MetadataQuery {
    QString what;  // what it reads, as a line names it when it fails
    QString sql;
    void (*read)(SuiteFacts&, const ResultSet&);
};
QList<MetadataQuery> MetadataQueries(DatabaseKind kind);

// The builders, one per query. SQL Server: the catalogue views; SQLite: sqlite_master.
QString ObjectsQuery(DatabaseKind kind);
QString IndexesQuery(DatabaseKind kind);
QString ParametersQuery();   // SQL Server only
QString RightsQuery();       // SQL Server only
QString ColumnTypesQuery();  // SQL Server only
QString WorkingDateQuery();  // the loan window's own text, on both

void ReadObjects(SuiteFacts& facts, const ResultSet& rs);
void ReadIndexes(SuiteFacts& facts, const ResultSet& rs);
void ReadParameters(SuiteFacts& facts, const ResultSet& rs);
void ReadRights(SuiteFacts& facts, const ResultSet& rs);
void ReadColumnTypes(SuiteFacts& facts, const ResultSet& rs);
void ReadWorkingDate(SuiteFacts& facts, const ResultSet& rs);

enum class Status { Present, Reduced, Missing, NotChecked };

struct Line {
    Status status;
    QString text;
};

// The lines, in a fixed order: tables, views, procedures, typed text, the working date, the
// payslip columns, the module's own objects, rights, the user's permissions.
QList<Line> Decide(const SuiteFacts& facts, const PayslipColumns& payslip);

// A line as printed: its status word, then its text.
QString LineText(const Line& line);
// The closing line and the exit code: 0 when nothing is missing, else 2.
QString Summary(const QList<Line>& lines);
int ExitCode(const QList<Line>& lines);

}  // namespace kav::data::suite_check
