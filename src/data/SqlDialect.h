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

private:
    DatabaseKind kind_;
};

}  // namespace kav::data
