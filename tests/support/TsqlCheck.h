#pragma once

// The T-SQL syntax check of the statements the tests build. A test hands every SQL Server
// text it builds to CheckedTsql; when the test program ends, all of them go to the syntax
// check (tsql-check, run by Node.js) in one call, and a text that does not parse fails the
// program. The check is found at $KAV_TSQL_CHECK or beside the project at
// ../shared/tools/tsql-check/check.js; without it (or without Node.js) the program says so
// in one line and the texts stay unchecked.

#include <QString>
#include <QStringList>

namespace kav::test {

// Records the text for the check and returns it.
const QString& CheckedTsql(const QString& text);

// The check itself: the texts that do not parse, with the grammar's message, or an empty
// text when all parse. `available` tells whether the check could run at all.
struct TsqlResult {
    bool available = false;
    bool passed = false;
    QString output;
};

TsqlResult RunTsqlCheck(const QStringList& texts);

}  // namespace kav::test
