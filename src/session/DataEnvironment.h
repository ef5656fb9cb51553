#pragma once

// The shared data environment DtEn: one connection cnt through which every query,
// statement and stored procedure of the module runs, and recordsets used as cursors.

#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>

#include "data/ConnectionString.h"
#include "data/SqlDialect.h"

namespace kav {

class Connection;

// A cursor over the rows of one SELECT text. The rows are read when it opens, so the row
// count is known on every driver. Fields are read by column name, case-insensitively;
// a Null stays a null QVariant, distinct from an empty text.
class Recordset {
public:
    explicit Recordset(Connection& cnt) : cnt_(&cnt) {}

    // Opens the cursor on the text (closing it first if open). Raises KavError (Database)
    // with the driver's text when the statement fails.
    void Open(const QString& sql);
    void Close();
    bool IsOpen() const { return open_; }

    int RecordCount() const { return int(rows_.size()); }
    bool EOF_() const { return !open_ || pos_ >= rows_.size(); }
    void MoveFirst() { pos_ = 0; }
    void MoveNext() {
        if (pos_ < rows_.size()) ++pos_;
    }

    // The current row's field; raises KavError (Database) for an unknown column or when
    // there is no current row.
    QVariant Fields(const QString& column) const;
    bool IsNull(const QString& column) const { return Fields(column).isNull(); }
    bool HasField(const QString& column) const;

private:
    Connection* cnt_;
    bool open_ = false;
    qsizetype pos_ = 0;
    QHash<QString, int> index_;  // lower-case name -> column
    QVector<QVector<QVariant>> rows_;
};

// The connection cnt. It opens itself on first use with the connection string it was
// given; an open failure raises KavError (Connection) naming the problem.
class Connection {
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void SetConnectionString(const QString& oleDb);
    const QString& ConnectionString() const { return connectionString_; }

    // Opens now if not yet open.
    void Open();
    void Close();
    bool IsOpen() const;

    // Runs a statement that returns no rows. A refused statement raises KavError: Busy when
    // another client holds the database, else Database; the driver's text on its own line.
    void Execute(const QString& sql);

    // Serialised transactions among clients for writes that must be all-or-nothing, with the
    // dialect's texts: SQLite BEGIN IMMEDIATE; SQL Server an explicit transaction holding an
    // exclusive application lock on lockName. Another client holding the database past the
    // wait raises KavError (Busy) and leaves no transaction open.
    void BeginSerialised(const QString& lockName);
    // Commits; when the COMMIT fails, what is open is rolled back and the error raised.
    void Commit();
    // Rolls back whatever is open; never fails (a failure is only logged).
    void Rollback() noexcept;

    QSqlDatabase Database();
    const data::SqlDialect& Dialect();
    data::DatabaseKind Kind();

private:
    QString connectionString_;
    QString qtName_;  // the QSqlDatabase connection name, unique per Connection
    std::unique_ptr<data::SqlDialect> dialect_;
};

// One write command's statements as one transaction serialised among clients: begun on
// construction, committed by Commit, rolled back when it ends uncommitted (a statement
// raised). A failed COMMIT rolls back too. Nothing is half-written.
//
//   WriteTransaction tx(module.DtEn().cnt(), u"KAVHRLoan"_s);
//   cnt.Execute(...); cnt.Execute(...);
//   tx.Commit();
class WriteTransaction {
public:
    WriteTransaction(Connection& cnt, const QString& lockName);
    ~WriteTransaction();
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;
    void Commit();

private:
    Connection& cnt_;
    bool open_ = true;
};

class DataEnvironment {
public:
    DataEnvironment();

    Connection& cnt() { return cnt_; }
    const data::SqlDialect& Dialect() { return cnt_.Dialect(); }

    // The shared recordset the windows use as their cursor, and a fresh one.
    Recordset& rs() { return rs_; }
    Recordset NewRecordset() { return Recordset(cnt_); }

    // The stored commands, parameters in their declared order; each returns the
    // procedure's return value.
    int spVarekHasPermission(qint16 userId, qint32 formPermissionId);
    int spHRLoanExceptionNew(qint32 loanId, qint32 employeeId, double monthlyDebit,
                             const QDate& beginDate, const QString& farsiBeginDate,
                             const QDate& endDate, const QString& farsiEndDate);
    int spHRLoanExceptionUpdate(qint32 id, qint32 loanId, qint32 employeeId, const QDate& beginDate,
                                const QString& farsiBeginDate, const QDate& endDate,
                                const QString& farsiEndDate, double monthlyDebit);

    // Runs a procedure by name with its parameters in order (SQL Server: the ODBC call
    // with a return value; SQLite: the emulation on the same tables).
    int CallProcedure(const QString& name, const QVariantList& params);

private:
    Connection cnt_;
    Recordset rs_;
};

}  // namespace kav
