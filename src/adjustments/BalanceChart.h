#pragma once

// The member's balance month by month, as a chart shows it: the balance the plan leaves after
// each month (the schedule without a payslip row) beside the balance of the member's schedule
// (what the payslips deducted where they did, the plan after the last of them), with the
// loan's settlement month marked. No widget and no painting here: the window and the PDF paint
// what ChartOf returns (BalanceChartPaint.h).
//
//   const Schedule plan = Compute(terms, adjustments, {});
//   const BalanceChart chart = ChartOf(terms, Compute(terms, adjustments, payslips), plan);

#include <QString>
#include <QVector>
#include <optional>

#include "adjustments/RepaymentSchedule.h"

namespace kav::schedule {

struct BalanceChart {
    int firstMonth = 0;  // the month number of the first month
    vb::Currency loanValue;
    QVector<vb::Currency> planned;  // the balance after each month as planned
    QVector<vb::Currency> actual;   // the balance after each month of the member's schedule
    // The first months of `actual` up to the last month a payslip deducted something from:
    // what was deducted; the months after it are still to come.
    int deductedMonths = 0;
    // The loan's settlement month, counted from the first month; none without a settlement
    // date or with one before the first month.
    std::optional<int> settlement;

    // The months the chart spans: both curves and the settlement month.
    int months() const;
    // "yyyy/mm" of a month counted from the first.
    QString monthText(int index) const;
};

// The chart of a member's schedule and the plan (the same terms and adjustments without the
// payslips); nothing when neither has a month.
std::optional<BalanceChart> ChartOf(const LoanTerms& terms, const Schedule& schedule,
                                    const Schedule& plan);

}  // namespace kav::schedule
