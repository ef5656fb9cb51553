#pragma once

// A member's repayment schedule: for one member of one loan (each member owes the whole
// loan amount), one row per Jalali month from the month of the first instalment, with the
// planned deduction, the adjustment in force, what the payslips deducted and the balance
// after the month.
//
// The planned deduction is the loan's monthly instalment; the remainder (amount less
// instalment times count, when above 0) goes with the first instalment (option 1), with the
// last (option 0) or into a month of its own after the last (option 2). An adjustment whose
// period covers the month replaces the planned amount by its monthly debit (-1 replaces
// nothing); of overlapping adjustments the one with the highest ID holds. A payslip row of
// the month is what was actually deducted. The balance after a month is the amount less the
// sum, up to that month, of the deducted amount where a payslip row exists and the planned
// (or adjusted) amount otherwise; no month plans more than the balance before it. While a
// balance is left after the planned months, further months at the monthly instalment follow.
//
// The totals sum only what adds up: what the months took from the balance and what the
// payslips deducted. What they took plus the balance left is the loan amount; the planned
// instalments and the adjustments have no total.
//
// No widget here: the window and the exports show what Compute returns.

#include <QByteArrayView>
#include <QString>
#include <QVariant>
#include <QVector>
#include <optional>
#include <span>

#include "session/Vb.h"

namespace kav::schedule {

struct LoanTerms {
    vb::Currency loanValue;
    std::optional<vb::Currency> monthlyValue;  // none: no schedule
    std::optional<qint32> payBackNumber;       // none: months at the instalment until paid
    int remainderOption = 0;                   // 1 first month, 0 last month, 2 separate month
    QString farsiBeginDate;                    // first instalment, "yyyy/mm/dd"
    QString farsiEndDate;                      // settlement date; may be empty
};

struct Adjustment {
    qint32 id = 0;
    QString farsiBeginDate;  // empty: from the start
    QString farsiEndDate;    // empty: open-ended
    vb::Currency monthlyDebit;
};

struct Payslip {
    QString payMonth;  // "yyyy/mm" (a day after it is ignored)
    vb::Currency paidValue;
};

struct Row {
    QString month;  // "yyyy/mm"
    vb::Currency planned;
    std::optional<vb::Currency> adjustment;  // the adjusted amount, when one is in force
    qint32 adjustmentId = -1;
    std::optional<vb::Currency> deducted;  // the payslips' amount, when the month has one
    vb::Currency taken;    // what the month takes from the balance: deducted, else in force
    vb::Currency balance;  // after the month
    bool remainderMonth = false;           // the plan holds the remainder
    bool afterSettlement = false;          // later than the loan's settlement month
};

struct Schedule {
    QVector<Row> rows;
    vb::Currency totalTaken;     // the months' taken: with balance, the loan amount
    vb::Currency totalDeducted;  // the payslips' deductions
    vb::Currency balance;        // after the last row (the loan amount when there is none)
    // Why there is no schedule, or why it stops before the balance reaches 0; empty when the
    // schedule is whole.
    QString problem;
};

// The longest schedule computed: a hundred years of months.
constexpr int MaxMonths = 1200;

Schedule Compute(const LoanTerms& terms, const QVector<Adjustment>& adjustments,
                 const QVector<Payslip>& payslips, int maxMonths = MaxMonths);

// ---- The same computation on months as numbers ----
//
// The monthly register reads the inputs of many members at once and wants one month of each
// schedule: these are Compute's inputs with their dates as month numbers (MonthNumber), and
// MonthRow is Compute stopped at that month.

// The terms with the first-instalment and settlement months as numbers (nothing where the
// date is empty or no date).
struct MonthTerms {
    vb::Currency loanValue;
    std::optional<vb::Currency> monthlyValue;
    std::optional<qint32> payBackNumber;
    int remainderOption = 0;
    std::optional<int> beginMonth;
    std::optional<int> settlementMonth;
};
MonthTerms TermsInMonths(const LoanTerms& terms);

// An adjustment's period as month numbers; an open bound is INT_MIN or INT_MAX.
struct AdjustmentPeriod {
    qint32 id = 0;
    int from = 0;
    int to = 0;
    vb::Currency monthlyDebit;
};
// Nothing when a bound is a text that is no date: such a period covers no month.
std::optional<AdjustmentPeriod> PeriodOf(const Adjustment& adjustment);

// What the payslips deducted in a month.
struct PaidMonth {
    int month = 0;
    vb::Currency paid;
};

// The row of `month` in the member's schedule, computed from the first month only as far as
// that one; nothing when the schedule has no such month (or there is no schedule). The
// periods may come in any order; the payslip months must be in ascending order (two entries
// of one month add up). The row's month text is MonthText(month).
std::optional<Row> MonthRow(const MonthTerms& terms, std::span<const AdjustmentPeriod> periods,
                            std::span<const PaidMonth> paid, int month, int maxMonths = MaxMonths);

// A Jalali date or month text ("yyyy/mm/dd", "yyyy/mm", Persian digits too) as a month
// number (year * 12 + month - 1); nullopt when it is not one.
std::optional<int> MonthNumber(const QString& text);
// The same of a UTF-8 text as the database hands it over; a plain "yyyy/mm..." is read
// without decoding it.
std::optional<int> MonthNumber(QByteArrayView utf8);
// "yyyy/mm" of a month number.
QString MonthText(int monthNumber);

// A database amount (integer, floating or text) as currency; Null is nullopt. A text that
// is not a number raises the type-mismatch error.
std::optional<vb::Currency> AmountOf(const QVariant& value);

}  // namespace kav::schedule
