#pragma once

// A fresh embedded database for one test: a temporary file, with the loan schema unless
// asked otherwise, an open connection of its own, and helpers to run statements and read
// rows. A failing statement fails the test and names the statement. TestModule adds a
// module whose session points at it, with scripted messages and no modal waits.

#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QVariantMap>
#include <memory>

#include "ScriptedMessages.h"
#include "session/Module.h"

namespace kav::test {

using Row = QVariantMap;  // column name (lower case) -> value

// True in a run of the tests through the production driver path (KAV_TEST_THROUGH_ODBC=1):
// the module reaches each test database through QODBC and the SQLite ODBC driver "SQLite3".
bool ThroughOdbc();

class TestDatabase {
public:
    explicit TestDatabase(bool withSchema = true);
    ~TestDatabase();
    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    const QString& file() const { return file_; }
    // What the module opens it with: the embedded database, or the same file through Qt's
    // ODBC driver and the SQLite ODBC driver when the run is one through ODBC.
    QString connectionString() const;
    QSqlDatabase& db() { return db_; }

    bool exec(const QString& sql) const;
    void exec(const QStringList& statements) const;
    QList<Row> rows(const QString& sql) const;
    // The first column of the first row, or a null QVariant.
    QVariant scalar(const QString& sql) const;
    // Each row as its values joined by '|' in column order, Null written as NULL.
    QStringList table(const QString& sql) const;

private:
    QTemporaryDir dir_;
    QString name_;
    QString file_;
    mutable QSqlDatabase db_;
};

class TestModule {
public:
    TestModule();
    TestDatabase db;
    std::shared_ptr<MessageScript> messages = std::make_shared<MessageScript>();
    Module module;
    int modalShown = 0;
    // Grants the user the permissions (rows of the permission table).
    void grant(qint16 user, std::initializer_list<qint32> permissions);
};

}  // namespace kav::test
