#pragma once

// Every SQL text the loan editor sends, built from its fixed fragments and the values, in
// the dialect of the database it talks to. SQL Server gets the suite's texts exactly; the
// SQLite dialect differs only where SQLite cannot run them (see data/SqlDialect.h).

#include <QDate>
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

// One employee with his name (adding a member or naming a guarantor).
QString EmployeeRow(const data::SqlDialect& dialect, qint32 employeeId);
// The employees with an ordinance overlapping the period from `begin` to `end` (Gregorian;
// an invalid date stands for 1900-01-01 and 2050-01-01) who are not among `idList` (IDs
// joined with ",", "-1" for none).
QString OrdinanceEmployees(const data::SqlDialect& dialect, const QString& idList,
                           const QDate& begin, const QDate& end);
// Removing one member of a saved loan.
QString DeleteMember(const data::SqlDialect& dialect, qint32 loanId, qint32 employeeId);

}  // namespace kav::loan_sql
