#pragma once

// A fresh embedded database for one test: a temporary file with the loan schema, and a
// module whose session points at it with a scripted message component.

#include <QTemporaryDir>
#include <memory>

#include "ScriptedMessages.h"
#include "session/Module.h"

namespace kav::test {

class TestDatabase {
public:
    // Creates the file and the schema (no rows).
    TestDatabase();
    QString file() const { return file_; }
    QString connectionString() const;
    // Runs statements on the database directly (not through a module); raises on failure.
    void exec(const QString& sql) const;
    void exec(const QStringList& statements) const;
    // The first column of the first row of a query, or a null QVariant.
    QVariant scalar(const QString& sql) const;

private:
    QTemporaryDir dir_;
    QString file_;
};

// A module on a fresh test database, with the scripted messages installed and modal
// windows not shown (the runner records nothing and returns 0).
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
