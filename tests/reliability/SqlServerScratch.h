#pragma once

// SQL Server for the tests, when one is at hand: KAVHRLOAN_TEST_SQLSERVER holds an OLE DB
// connection string (as the host hands the control one) for a login that may create
// databases. Each test gets a scratch database made on that server, set up from the module's
// T-SQL script, batch by batch, and dropped afterwards.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace kav::test {

// The server's connection string, or the empty text when none is given.
QString SqlServerConnection();

// The batches of a T-SQL script, in order: split at the lines that hold only GO (any case,
// blanks around it), never inside a comment or a quoted text or name. "GO n" repeats its
// batch n times. Batches of nothing but blanks and comments are left out.
QStringList SplitBatches(const QString& script);

// Runs the batches in order, each as one statement text. A batch the server refuses stops the
// run: KavError (Database) naming the batch's number and first line, with the driver's text;
// the batches after it are not run.
void RunBatches(QSqlDatabase db, const QStringList& batches);

class ScratchDatabase {
public:
    // Creates the database on the server named by `serverConnection` (with the collation a
    // Persian site's database has, so texts written without N'' keep their letters) and runs
    // the module's script in it. Raises KavError when the server refuses.
    explicit ScratchDatabase(const QString& serverConnection);
    // Drops the database.
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;

    const QString& name() const { return name_; }
    // The server's connection string pointed at the scratch database.
    QString connectionString() const;

private:
    QString server_;
    QString name_;
    QString qtName_;
};

}  // namespace kav::test
