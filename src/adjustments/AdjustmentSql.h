#pragma once

// Every SQL text the adjustment window and the adjustment list send, built from their fixed
// fragments and the values, in the dialect of the database they talk to. SQL Server gets the
// suite's texts exactly; SQLite differs only where it cannot run them (DELETE without FROM).

#include <QString>
#include <QtGlobal>

#include "data/SqlDialect.h"

namespace kav::adjustment_sql {

// ShowFormToEdit: one adjustment with its employee's name.
QString AdjustmentById(qint32 id);
// The reload of Cancel: the stored row of the adjustment shown.
QString StoredAdjustment(qint32 id);
// The save's period and amount check: the member's row of the loan.
QString MemberLoanRows(qint32 loanId, qint32 employeeId);
// The delete command.
QString DeleteAdjustment(const data::SqlDialect& dialect, qint32 id, qint32 employeeId);

// The list's query. employeeId -1 leaves the employee out; an empty date text leaves its
// bound out. The dates are Persian texts "yyyy/mm/dd".
QString ListQuery(qint32 employeeId, const QString& farsiBeginDate, const QString& farsiEndDate);

// The member's schedule: the loan's header and the member's adjustments (his payslip rows:
// schedule::MemberPayslipsQuery, with the office's column names).
QString LoanHeader(qint32 loanId);
QString MemberAdjustments(qint32 loanId, qint32 employeeId);

}  // namespace kav::adjustment_sql
