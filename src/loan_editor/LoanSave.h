#pragma once

// Saving a loan, deleting it and returning it to temporary, without a widget: the loan as
// the editor's controls hold it comes in, the statements come out in the order they run, in
// the dialect of the database (SQL Server gets the suite's texts exactly). Each command's
// writes run as one transaction serialised among clients, so two clerks saving at once never
// get the same loan number or each other's new loan, and a failure half-way writes nothing.

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>
#include <array>
#include <optional>

#include "data/SqlDialect.h"
#include "loan_editor/StoredLoanCheck.h"
#include "session/LoanHistory.h"

namespace kav {
class Connection;
}

namespace kav::loan_save {

// One row of the member grid as the save reads it: column 1 and columns 7-9, as they stand.
struct MemberRow {
    QString employeeId;
    std::array<QString, 3> guarantors;  // an ID, or "null" where there is no guarantor
};

// The loan as the editor holds it.
struct LoanRecord {
    bool isFinal = false;
    qint64 typeId = -1;
    // Gregorian dates (invalid when the box is empty) and their Jalali texts ("" when empty).
    QDate payDate, beginDate, endDate;
    QString farsiPayDate, farsiBeginDate, farsiEndDate;
    // The amount boxes' value texts; an empty box is 0.
    QString loanValue, originalValue, monthlyValue;
    QString payBackNumber;    // as typed
    int remainderOption = 0;  // 1 first month, 0 last month, 2 a separate month
    QString notes;            // as typed
    QVector<MemberRow> members;
};

// The count of instalments as it is written: Null for an empty box, otherwise the whole
// number it reads as (Persian and Arabic-Indic digits are digits). Nothing when it is not a
// whole number from 0 to 2147483647: such a count is refused before anything is written.
std::optional<QString> CountSql(const QString& payBackNumber);
// Why CountSql refuses a count (a negative count as negative), or "" when it does not.
QString CountProblem(const QString& payBackNumber);

// The members' IDs joined with "," in grid order.
QString MemberList(const LoanRecord& loan);
// The members who already belong to another loan of the same type whose period overlaps
// this one's, both ends included; `excludedLoanId` is this loan's ID, -1 in new mode.
QString OverlapQuery(const data::SqlDialect& dialect, const LoanRecord& loan,
                     qint32 excludedLoanId);
// New mode: the header row, then the read of its ID.
QString InsertHeader(const data::SqlDialect& dialect, const LoanRecord& loan);
// The insert that also gives the new row's ID (NewID): on SQL Server the insert and
// SCOPE_IDENTITY() in one batch; on SQLite the insert alone, then InsertedId on the same
// connection. Another program's insert at the same moment, or a trigger's, is never taken for
// this loan.
QString InsertHeaderReturningId(const data::SqlDialect& dialect, const LoanRecord& loan);
QString InsertedId();
// Read only when the database gave no ID (a key that is not an identity).
QString MaxId();
// Every mode, in order: the header update (a final save takes one more than the greatest
// code of any loan, a temporary save clears the code), the members' delete and one insert
// per member. Raises KavError (TypeMismatch) for a count CountSql refuses.
QStringList Writes(const data::SqlDialect& dialect, const LoanRecord& loan, qint32 loanId);

// Deleting a loan: its members first, then the header.
QStringList DeleteLoan(const data::SqlDialect& dialect, qint32 loanId);
// Returning a final loan to temporary.
QString BackToTemporary(qint32 loanId);

// The lock that serialises the module's writes among clients.
QString LockName();

// Runs the statements as one serialised transaction: all of them or, when one fails,
// none (the error is raised). Keeps no history: the module's commands use the writes below.
void RunWrites(Connection& cnt, const QStringList& statements);
// The same, once the stored loan is found as the window shows it (stored_loan::Require,
// inside the transaction): otherwise nothing is written and LoanChangedError is raised. The
// command's history row (by `actor`) is added in the same transaction.
void RunCheckedWrites(Connection& cnt, const stored_loan::Expected& stored,
                      stored_loan::Command command, const QStringList& statements,
                      const history::Actor& actor = {});

// Writes a loan as one serialised transaction and returns its ID. Without `stored` (new
// mode) the header is inserted and its ID read back inside the same transaction. With it, the
// stored loan must still be as the window shows it (LoanChangedError otherwise, nothing
// written). The save's history row (by `actor`) is added in the same transaction.
qint32 WriteLoan(Connection& cnt, const LoanRecord& loan,
                 const std::optional<stored_loan::Expected>& stored,
                 const history::Actor& actor = {});

// Inside a write's transaction: inserts the header of a new loan (InsertHeaderReturningId)
// and returns the ID the database gave it (MAX(ID) only when the insert gives none).
qint32 InsertNewHeader(Connection& cnt, const LoanRecord& loan);

}  // namespace kav::loan_save
