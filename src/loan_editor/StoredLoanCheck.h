#pragma once

// A write's decision re-checked inside its own transaction. The window decided from the loan
// as it loaded it; another clerk, or the payroll, may have changed it since. Before an edit
// save, a delete, a return to temporary or a member removal writes, the stored loan is read
// again under the write's lock: when it no longer matches what the window shows, nothing is
// written and the command is refused with a LoanChangedError saying what changed.

#include <QString>
#include <optional>

#include "base/Errors.h"
#include "data/SqlDialect.h"

namespace kav {
class Connection;
}

namespace kav::stored_loan {

// What the window shows of the stored loan, and what the command needs of it.
struct Expected {
    qint32 loanId = -1;
    std::optional<bool> isFinal;  // the loan shows a code; nothing: either will do
    bool noPayslips = true;       // the command needs a loan without payslip rows
};

enum class Change { None, Gone, BecameFinal, BecameTemporary, Paid };

struct Finding {
    Change change = Change::None;
    int payslipRows = 0;
};

// The commands that re-check, for the message's second half.
enum class Command { Save, Delete, BackToTemporary, RemoveMember };

// The stored loan's code and payslip row count, under the write's lock: on SQL Server the
// row and the payslip rows stay locked until the transaction ends, so the payroll cannot
// add one between this read and the write.
QString StateQuery(const data::SqlDialect& dialect, qint32 loanId);

// What changed, from the query's result: `exists` false when it returned no row.
Finding Compare(const Expected& expected, bool exists, bool storedIsFinal, int payslipRows);

// Runs the query on the connection (inside the caller's transaction) and compares.
Finding Check(Connection& cnt, const Expected& expected);

// The refusal shown to the clerk: what changed and what was not done.
QString RefusalText(const Finding& finding, Command command);

// Raised inside a write's transaction, which then rolls back; the window shows the text and
// the stored loan (or empties when it is gone).
class LoanChangedError : public KavError {
public:
    LoanChangedError(const Finding& finding, Command command)
        : KavError(Kind::Database, RefusalText(finding, command)), finding_(finding) {}
    const Finding& finding() const { return finding_; }

private:
    Finding finding_;
};

// Check, raising LoanChangedError when something changed.
void Require(Connection& cnt, const Expected& expected, Command command);

}  // namespace kav::stored_loan
