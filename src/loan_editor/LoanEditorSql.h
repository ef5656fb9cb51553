#pragma once

// Every SQL text the loan editor sends, built from its fixed fragments and the values, in
// the dialect of the database it talks to. SQL Server gets the suite's texts exactly; the
// SQLite dialect differs only where SQLite cannot run them (see data/SqlDialect.h).

#include <QString>
#include <QtGlobal>

#include "data/SqlDialect.h"

namespace kav::loan_sql {

// FillLoan: the loan's header (one row per member) from vwHRLoanData.
QString FillLoan(qint32 loanId);
// FillLoanTypes: every loan type.
QString LoanTypes();
// The ceiling of one type (clicking the type list).
QString LoanTypeMaxValue(qint64 typeId);
// The row of one type (the ceiling check on leaving the amount).
QString LoanTypeRow(qint64 typeId);
// FillLoanDetail: the members of a loan with their guarantors' names.
QString MemberGrid(const data::SqlDialect& dialect, qint32 loanId);
// The payslip check of Edit, Delete and Back to temporary.
QString PaidInstalments(qint32 loanId);

}  // namespace kav::loan_sql
