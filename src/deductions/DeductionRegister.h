#pragma once

// The payroll's monthly deduction register: for one Jalali month, one row per member of every
// final loan whose schedule has that month, with that month's row of the member's schedule
// (what the adjustment window shows for him), the totals per employee (one payslip carries all
// of an employee's loans), per loan type and overall, and the register as CSV rows and as a
// table document.
//
// Each member's month is computed by the schedule's own computation (schedule::MonthRow) from
// three texts read once for the whole register (DeductionsSql.h), never by a second one.
//
// No widget here: the window, the command line and the tests use it alike.
//
//   const deductions::Register r = deductions::ReadRegister(cnt, columns,
//   *ParseMonth(u"1403/07"_s)); SaveCsv(path, deductions::CsvRows(r,
//   deductions::ComputeTotals(r.rows)), {deductions::ColCode});

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

#include "adjustments/RepaymentSchedule.h"
#include "data/PayslipColumns.h"
#include "deductions/DeductionsSql.h"
#include "session/TableDocument.h"
#include "session/Vb.h"

namespace kav {
class Connection;
}

namespace kav::deductions {

// The register's columns, in their order on screen and in the files.
enum Column : int {
    ColCode,        // personnel code
    ColName,        // first name and surname
    ColLoanCode,    // the loan's number
    ColLoanType,    // the loan type's name
    ColInstalment,  // the loan's monthly instalment
    ColAdjustment,  // the adjustment in force (none, or -1: empty)
    ColToDeduct,    // the amount to deduct this month: the adjustment's, else the plan's
    ColDeducted,    // what payslips already deducted this month
    ColBalance,     // the balance after the month
    ColNote,        // marks
    ColumnCount
};

struct RegisterRow {
    qint32 loanId = 0;
    qint32 employeeId = 0;
    std::optional<qint32> loanTypeId;
    QString employeeCode;
    QString employeeName;
    QString loanCode;
    QString loanType;
    bool left = false;  // the member has left (WorkStatusID 3)
    std::optional<vb::Currency> instalment;
    schedule::Row month;  // the month's row of the member's schedule

    // What the plan deducts this month: the adjustment in force, else the planned amount.
    vb::Currency ToDeduct() const { return month.adjustment.value_or(month.planned); }
    // A payslip deducted something in a month that plans nothing.
    bool PaidWithoutPlan() const;
};

struct Register {
    int month = 0;  // schedule::MonthNumber
    Filter filter;
    QVector<RegisterRow> rows;  // by employee (ID), then loan (ID)
    // False when the payslip table lacks the settings' columns: no payslip amounts then.
    bool payslipsKnown = true;
};

// The register of a month (a month number). A database error raises KavError.
Register ReadRegister(Connection& cnt, const data::PayslipColumns& columns, int month,
                      const Filter& filter = {});

// A month typed as "yyyy/mm" (Persian digits too; "1403/7" as well) as a month number;
// nothing when it is not a Jalali month of a four-digit year.
std::optional<int> ParseMonth(const QString& text);
// What the window and the command line say of such a text.
QString NotAMonthText(const QString& text);

struct Total {
    qint32 id = 0;  // the employee's or the loan type's; -1 for a loan without a type
    QString code;   // the employee's personnel code
    QString name;   // the employee's or the loan type's
    int rows = 0;
    vb::Currency toDeduct;
    vb::Currency deducted;
    vb::Currency balance;
};
struct Totals {
    QVector<Total> employees;  // in the order the employees first come
    QVector<Total> loanTypes;  // by name
    Total overall;
};
Totals ComputeTotals(const QVector<RegisterRow>& rows);

// The column titles, and the cells of a row, amounts grouped by threes (the window, the PDF)
// or plain (CSV: the fraction kept, nothing rounded).
QStringList ColumnTitles();
QStringList RowCells(const RegisterRow& row, bool grouped);
QString RowNote(const RegisterRow& row);
// The totals as lines under the same columns, the kind of total in the note column: each
// employee, each loan type, then the overall. Without the payslip columns the payslip totals
// are empty, not 0.
QList<QStringList> TotalLines(const Totals& totals, bool grouped, bool payslipsKnown);

// The CSV file's rows: the titles, one row per member, a blank line, the totals. The personnel
// code column is written quoted (SaveCsv(path, rows, {ColCode})).
QList<QStringList> CsvRows(const Register& reg, const Totals& totals);

// The register as a document (landscape): the title, the facts (the month and the filters,
// as the caller words them) on one line, the rows, then after a blank line the totals in bold.
TableDocument Document(const Register& reg, const Totals& totals, const QStringList& facts);

// Sorts the rows by a column (Column), ascending or descending: amounts as numbers (an empty
// cell lowest), codes and numbers as numbers when both are, texts in Persian order. Stable.
void SortRows(QVector<RegisterRow>& rows, int column, bool descending);

}  // namespace kav::deductions
