#pragma once

// What a member's schedule is computed from, read from the database: the member's
// adjustments of the loan and his payslip rows. The payslip table's employee, month and amount
// columns are named by the settings (data::PayslipColumns) and may be missing from a suite's
// database: then the schedule has no payslip rows and `payslipsKnown` is false, so it shows
// the planned amounts only and says so.

#include <QString>
#include <QVector>

#include "adjustments/RepaymentSchedule.h"
#include "data/PayslipColumns.h"

namespace kav {
class Connection;
}

namespace kav::schedule {

struct MemberInputs {
    QVector<Adjustment> adjustments;
    QVector<Payslip> payslips;
    bool payslipsKnown = true;
};

// True when the payslip table has the three columns; found out once per connection.
bool HasPayslipColumns(Connection& cnt, const data::PayslipColumns& columns);

// The member's payslip rows of the loan, with the office's column names.
QString MemberPayslipsQuery(const data::PayslipColumns& columns, qint32 loanId,
                            qint32 employeeId);

MemberInputs ReadMemberInputs(Connection& cnt, const data::PayslipColumns& columns,
                              qint32 loanId, qint32 employeeId);

// The one line shown when the payslip columns are missing (names them as configured).
QString PayslipColumnsMissingText(const data::PayslipColumns& columns);

}  // namespace kav::schedule
