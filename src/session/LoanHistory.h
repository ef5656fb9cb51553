#pragma once

// Every write on record. Each command that writes (the two saves, Delete, Back to temporary,
// the member removal, the adjustment window's save and delete, and the restore of a deleted
// loan) adds one row to the module's history table, tblHRLoanHistory, inside its own
// transaction, after its statements: who, when (UTC) and the loan before and after as
// snapshot texts (data/LoanSnapshot.h), both read from the database inside that transaction.
// A write that rolls back leaves no row; a command that changed nothing adds none. The module
// only ever adds rows to the table.
//
// The table is the module's own: where the database lacks it, writes go on as before and no
// history is kept (found out once per connection).
//
//   history::Recorder record(cnt, history::Command::Delete, history::ActorOf(session));
//   WriteTransaction tx(cnt, lockName);      // the recorder asks for the table before this
//   record.Before(loanId);
//   ... the command's statements ...
//   record.After(loanId);
//   tx.Commit();

#include <QString>
#include <QStringList>
#include <optional>

#include "data/LoanSnapshot.h"
#include "data/SqlDialect.h"

namespace kav {
class Connection;
struct Session;
}  // namespace kav

namespace kav::history {

// The table, its columns and the commands, as data/LoanSnapshot.h defines them.
using data::snapshot::Command;
using data::snapshot::CommandCode;
using data::snapshot::CommandFromCode;
using data::snapshot::IsAdjustmentCommand;

// Who wrote: the session's user, position and employee.
struct Actor {
    qint32 userId = 0;
    qint32 positionId = 0;
    qint32 employeeId = 0;
};
Actor ActorOf(const Session& session);

// True when the database has the history table with every column; found out once per
// connection. Not to be asked inside a write transaction.
bool IsKept(Connection& cnt);

// One history row.
struct Row {
    qint32 loanId = -1;
    std::optional<qint32> restoredFrom;
    std::optional<qint64> code;  // the loan's number at that moment
    Command command = Command::TemporarySave;
    Actor actor;
    QString before, after;  // snapshot texts; null for "no loan"
};
// The insert, the moment taken from the database's clock in UTC (SQL Server GETUTCDATE(),
// SQLite strftime(..., 'now')); the snapshots are typed text (N'...' on SQL Server).
QString InsertRow(const data::SqlDialect& dialect, const Row& row);

// A snapshot read on the connection, with what the history row takes from it.
struct Snapshot {
    QString text;                // null when there is neither loan nor adjustment
    qint32 loanId = -1;          // the loan it is of
    std::optional<qint64> code;  // the loan's number, if it has one
};
// The loan's header and members; loanId -1 reads nothing.
Snapshot ReadLoan(Connection& cnt, qint32 loanId);
// The same with the adjustment row (adjustmentId -1: none). The loan is the adjustment's own
// when the row is there, else `loanId`.
Snapshot ReadAdjustment(Connection& cnt, qint32 loanId, qint32 adjustmentId);

// One write's history row: the snapshot before the command's statements, the snapshot after
// them, and the row when they differ. Made before the write's transaction begins (it finds
// out whether the table is there); does nothing at all when it is not.
class Recorder {
public:
    Recorder(Connection& cnt, Command command, const Actor& actor);
    bool Kept() const { return kept_; }
    // Inside the transaction, before the statements. For the adjustment commands
    // `adjustmentId` is the adjustment's ID (-1 for a new one).
    void Before(qint32 loanId, qint32 adjustmentId = -1);
    // Inside the transaction, after the statements: adds the row when anything changed and
    // says whether it did.
    bool After(qint32 loanId, qint32 adjustmentId = -1);

private:
    Snapshot read(qint32 loanId, qint32 adjustmentId);

    Connection& cnt_;
    Command command_;
    Actor actor_;
    bool kept_ = false;
    Snapshot before_;
};

}  // namespace kav::history
