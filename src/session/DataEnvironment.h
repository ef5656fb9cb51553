#pragma once

// The shared data environment DtEn: one connection cnt through which every query,
// statement and stored procedure of the module runs, and recordsets used as cursors.
//
// The embedded database (QSQLITE) is opened through Qt SQL, and its statements then run
// through the sqlite3 C library on that same connection's handle: one connection, one
// handle, so nothing the module writes can meet a second writer of its own. Every other
// database (ODBC) is reached through Qt SQL alone.

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/ConnectionString.h"
#include "data/SqlDialect.h"
#include "session/BusyPointer.h"

class QSqlQuery;
struct sqlite3;
struct sqlite3_stmt;

namespace kav {

class Connection;

// The columns of a result by name: a lookup is case-insensitive, as on SQL Server, and of
// two columns with one name the first wins. A name asked for again is found without folding
// its case a second time.
class ColumnNames {
public:
    void assign(const QStringList& names);
    void clear();
    int count() const { return int(names_.size()); }
    // The position of the column, or -1.
    int find(const QString& name) const;
    // The position; an unknown column raises KavError (Database) naming it.
    int require(const QString& name) const;

private:
    QStringList names_;
    QHash<QString, int> folded_;         // lower-case name -> position
    mutable QHash<QString, int> asked_;  // a name as asked -> position or -1
};

// A cursor over the rows of one SELECT text. The rows are read when it opens, so the row
// count is known on every driver. Fields are read by column name, case-insensitively, or by
// position (FieldIndex once, then Fields(int) for every row); a Null stays a null QVariant,
// distinct from an empty text; numbers come as numbers (qlonglong or double).
//
// On the embedded database the rows are kept compactly (a number or the place of a UTF-8
// text per cell) and made QVariants only when read; on ODBC they are QVariants.
class Recordset {
public:
    explicit Recordset(Connection& cnt);
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // Opens the cursor on the text (closing it first if open). Raises KavError (Database)
    // with the driver's text when the statement fails, (Busy) when another client holds the
    // database past the wait.
    void Open(const QString& sql);
    void Close();
    bool IsOpen() const { return open_; }

    int RecordCount() const { return int(rows_); }
    bool EOF_() const { return !open_ || pos_ >= rows_; }
    void MoveFirst() { pos_ = 0; }
    void MoveNext() {
        if (pos_ < rows_) ++pos_;
    }

    // The current row's field; raises KavError (Database) for an unknown column or when
    // there is no current row.
    QVariant Fields(const QString& column) const;
    bool IsNull(const QString& column) const { return Fields(column).isNull(); }
    bool HasField(const QString& column) const;

    // The position of a column, for reading it row after row without looking its name up
    // again; raises KavError (Database) for an unknown column.
    int FieldIndex(const QString& column) const;
    int FieldCount() const { return names_.count(); }
    QVariant Fields(int index) const;
    bool IsNull(int index) const;

private:
    // A cell of the embedded database's rows.
    struct Cell {
        qint64 value = 0;  // an integer, a double's bits, or where a text starts in texts_
        qint32 size = 0;   // a text's length in bytes
        qint8 type = 5;    // SQLITE_INTEGER 1, SQLITE_FLOAT 2, SQLITE_TEXT 3, SQLITE_BLOB 4, NULL 5
    };

    void checkCurrent(int index, const QString& column) const;

    Connection* cnt_;
    bool open_ = false;
    bool compact_ = false;  // the embedded database's rows, kept as cells_ and texts_
    qsizetype pos_ = 0;
    qsizetype rows_ = 0;
    ColumnNames names_;
    std::vector<Cell> cells_;       // embedded: rows x columns
    std::string texts_;             // embedded: the UTF-8 texts and blobs one after another
    std::vector<QVariant> values_;  // ODBC: rows x columns
};

// A forward-only read of one SELECT text, for filling grids: each row is read once, as it
// arrives, and none is kept, so a result of any size costs the memory of one row. Columns are
// found by name once and read by position. It counts the rows it has read; it cannot know
// how many are left.
//
//   RowReader rows(cnt, sql);
//   const int name = rows.FieldIndex(u"EmployeeName"_s);
//   while (rows.Next()) grid.setTextMatrixUtf8(r++, 1, rows.Text(name));
class RowReader {
public:
    // Runs the text; raises as Recordset::Open does. The busy pointer shows while it lives.
    RowReader(Connection& cnt, const QString& sql);
    ~RowReader();
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    int FieldCount() const { return names_.count(); }
    int FieldIndex(const QString& column) const { return names_.require(column); }
    bool HasField(const QString& column) const { return names_.find(column) >= 0; }

    // Moves to the next row; false after the last. A failure raises as Recordset::Open does.
    bool Next();
    // Rows read so far.
    qint64 RowsRead() const { return rowsRead_; }

    bool IsNull(int index) const;
    // The value as Recordset::Fields gives it.
    QVariant Fields(int index) const;
    // The value as the windows show it in a cell, in UTF-8: Null the empty text, a whole
    // number in decimal, a fraction as CStr writes it, a text as stored. Valid until Next.
    QByteArrayView Text(int index);

private:
    friend class Connection;
    void checkCurrent(int index) const;
    void finish() noexcept;  // the statement finalised (also when the connection closes)

    Connection* cnt_;
    BusyPointer busy_;
    QString sql_;
    ColumnNames names_;
    sqlite3_stmt* stmt_ = nullptr;      // embedded
    std::unique_ptr<QSqlQuery> query_;  // ODBC
    bool onRow_ = false;
    bool registered_ = false;  // among the connection's open readers
    qint64 rowsRead_ = 0;
    static constexpr int NumberSize = 24;
    std::vector<QByteArray> scratch_;                    // texts made for Text() on this row
    std::vector<std::array<char, NumberSize>> numbers_;  // whole numbers written for Text()
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

    // True when the statements run through the sqlite3 C library (an embedded database
    // opened with QSQLITE); opens the connection first.
    bool RunsOnSqlite();

    // Called when a statement on the embedded database starts to wait for another client's
    // lock, and about every tenth of a second while it waits (up to the wait's end); so a
    // window can say why nothing happens. It runs inside the statement: it must not throw or
    // touch this connection.
    void SetLockWaitHook(std::function<void()> hook) { lockWaitHook_ = std::move(hook); }

    // The columns of a table or view as the database names them, found out once per
    // connection; nothing when the database has no such table. Not to be asked inside a
    // write transaction (a failed read may end it on SQL Server).
    std::optional<QStringList> ColumnsOf(const QString& table);
    // True when the table has every one of the columns (compared without case).
    bool HasColumns(const QString& table, const QStringList& columns);

private:
    friend class Recordset;
    friend class RowReader;

    // The open embedded database's handle, or nullptr (ODBC); opens the connection first.
    sqlite3* sqliteHandle();
    // A statement prepared on the handle; raises as a refused statement does.
    sqlite3_stmt* prepare(const QString& sql);
    // The embedded database's wait for another client's lock (an sqlite3 busy handler).
    static int waitForLock(void* connection, int tries);

    QString connectionString_;
    QString qtName_;  // the QSqlDatabase connection name, unique per Connection
    std::unique_ptr<data::SqlDialect> dialect_;
    sqlite3* sqlite_ = nullptr;
    bool utf8_ = false;  // the embedded database keeps its texts as UTF-8
    std::chrono::steady_clock::time_point waitStart_;  // of the current wait for a lock
    std::chrono::steady_clock::time_point waitHooked_;  // the hook's last call in that wait
    std::function<void()> lockWaitHook_;
    std::vector<RowReader*> readers_;  // open readers, finished when the connection closes
    QHash<QString, std::optional<QStringList>> columns_;  // ColumnsOf, by lower-case table
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
