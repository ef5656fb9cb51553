#pragma once

// The two SQL dialects. SQL Server produces the module's T-SQL texts exactly; SQLite
// differs only where it cannot run them: DELETE needs FROM, strings join with ||, IsNull is
// IfNull, and a date literal is written 'yyyy-MM-dd'.

#include <QDate>
#include <QString>

#include "data/ConnectionString.h"

namespace kav::data {

class SqlDialect {
public:
    explicit SqlDialect(DatabaseKind kind) : kind_(kind) {}

    DatabaseKind kind() const { return kind_; }

    // A Gregorian date as it stands between the quotes of a statement: SQL Server
    // "yyyyMMdd" (read the same under every DATEFORMAT), SQLite "yyyy-MM-dd". An invalid
    // (empty) date is 1900-01-01.
    QString dateText(const QDate& date) const;
    // The same, read back from a column value (a QDate, QDateTime or text).
    static QDate readDate(const QVariant& value);

    // "delete tblX" on SQL Server, "delete from tblX" on SQLite.
    QString deleteFrom(const QString& table) const;
    // The operator that joins texts: "+" on SQL Server, "||" on SQLite.
    QString concatOperator() const;
    // "IsNull" on SQL Server, "IfNull" on SQLite.
    QString isNullFunction() const;
    // A literal of text a person typed, each single quote doubled: N'...' on SQL Server, so
    // that a database in a Persian collation keeps every letter and digit (a varchar literal
    // would pass through code page 1256, which has no Farsi yeh and no Persian digits);
    // '...' on SQLite.
    QString typedText(const QString& text) const;

    // A write transaction serialised among clients. SQLite: "BEGIN IMMEDIATE", which waits
    // for the busy timeout (LockWaitMilliseconds) while another client writes. SQL Server:
    // an explicit BEGIN TRANSACTION (under ODBC's manual commit an EXEC alone opens none) and
    // an exclusive application lock on lockName owned by the transaction, waiting as long;
    // the text returns one row, the lock's return code (LockResultColumn), negative when
    // the lock was not granted.
    QString beginSerialised(const QString& lockName) const;
    // True when beginSerialised's text returns the lock's return code.
    bool beginReturnsLockResult() const { return kind_ == DatabaseKind::SqlServer; }
    // "COMMIT TRANSACTION" / "COMMIT".
    QString commitTransaction() const;
    // Rolls back what is open, and nothing when the server already rolled back:
    // "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION" / "ROLLBACK".
    QString rollbackTransaction() const;

    // SQL Server: "SET LOCK_TIMEOUT 5000", run once per connection, so a statement that meets
    // another client's lock waits LockWaitMilliseconds like the serialised begin; SQLite: empty
    // (its busy wait is set on the connection).
    QString lockTimeout() const;

    static constexpr int LockWaitMilliseconds = 5000;

private:
    DatabaseKind kind_;
};

}  // namespace kav::data
