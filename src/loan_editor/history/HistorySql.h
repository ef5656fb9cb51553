#pragma once

// Every SQL text the history window, the deleted loans and the restore send, in the dialect of
// the database. The history rows themselves are added by session/LoanHistory.h.

#include <QList>
#include <QString>
#include <QtGlobal>

#include "data/SqlDialect.h"

namespace kav::history::sql {

// The history rows of the loans, newest first, with the name of the session's employee.
QString Entries(const data::SqlDialect& dialect, const QList<qint32>& loanIds);
// The loan a restored loan was brought back from (no row for a loan never restored).
QString RestoredFrom(qint32 loanId);
// The deleted loans not yet restored, newest first: the delete's row, the employee's name and
// the last number the loan had.
QString DeletedLoans(const data::SqlDialect& dialect);
// Employees by ID with their names.
QString EmployeeNames(const data::SqlDialect& dialect, const QList<qint64>& ids);

// The restore, inside its transaction: whether the loan was restored already or is stored,
// the loan as its delete found it, and the adjustments it left behind moved to the new ID.
QString RestoreState(qint32 loanId);
QString DeletedSnapshot(qint32 loanId);
QString MoveAdjustments(qint32 fromLoanId, qint32 toLoanId);

}  // namespace kav::history::sql
