#pragma once

// The monthly register's three texts: the members of every final loan with their loans'
// terms, the adjustments and the payslip rows. Each is read once, whole, and every member's
// schedule is computed from them (no text per member). They name only the tables and columns
// of the loan database and the payslip columns of the settings, and are the same on SQL Server
// and SQLite.
//
// They ask for no order and join nothing they need not: the reader orders what it keeps, and
// the adjustments and payslip rows of loans that are not final are never looked up. Read that
// way a database steps them several times faster (a table read straight through, no sort).
// The payslip rows are read for every month, not only up to the register's: a member's
// schedule runs on through months that plan nothing (its balance repaid) as long as a later
// payslip row of his follows, and the register shows his month exactly as his schedule does.

#include <QString>
#include <QtGlobal>
#include <optional>

#include "data/PayslipColumns.h"

namespace kav::deductions {

// The register's filters; nothing leaves a filter out.
struct Filter {
    std::optional<qint32> loanTypeId;
    std::optional<qint32> employeeId;
};

namespace deductions_sql {

// The loan types of the type filter.
QString LoanTypesQuery();

// One row per member of a final loan: the loan's id, number, type and terms, the member's
// personnel code, names and work status.
QString MembersQuery(const Filter& filter);
// The adjustments (of the loans of the type, of the employee, when filtered).
QString AdjustmentsQuery(const Filter& filter);
// The payslip rows, with the office's column names (filtered as the adjustments).
QString PayslipsQuery(const data::PayslipColumns& columns, const Filter& filter);

}  // namespace deductions_sql

}  // namespace kav::deductions
