#pragma once

// Paints the member's balance chart with a plain QPainter, the same on screen and in the
// schedule's PDF: the legend at the top, the amounts from 0 to the loan amount at the right,
// the months under the curves. The months run right to left from the first month, as the page
// reads; each curve starts at the loan amount at the right edge. The plan is a blue dashed
// line, the schedule a green line, solid over the months the payslips deducted and dotted over
// the months still to come; the settlement month is a red upright line with its month.

#include <QString>

#include "adjustments/BalanceChart.h"

class QPainter;
class QRectF;

namespace kav::schedule {

// The legend's and the marker's words.
QString ChartPlannedText();     // "مانده طبق برنامه"
QString ChartDeductedText();    // "مانده پس از کسر در فيش"
QString ChartToComeText();      // "مانده ماه هاي آينده"
QString ChartSettlementText();  // "تسويه"

void PaintBalanceChart(QPainter& painter, const QRectF& rect, const BalanceChart& chart);

}  // namespace kav::schedule
