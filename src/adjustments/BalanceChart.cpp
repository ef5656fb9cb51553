#include "adjustments/BalanceChart.h"

namespace kav::schedule {

int BalanceChart::months() const {
    const int curves = int(qMax(planned.size(), actual.size()));
    return settlement ? qMax(curves, *settlement + 1) : curves;
}

QString BalanceChart::monthText(int index) const { return MonthText(firstMonth + index); }

std::optional<BalanceChart> ChartOf(const LoanTerms& terms, const Schedule& schedule,
                                    const Schedule& plan) {
    // Both run from the month of the first instalment; the earlier first month holds if not.
    std::optional<int> first;
    for (const Schedule* s : {&schedule, &plan}) {
        if (s->rows.isEmpty()) continue;
        const std::optional<int> month = MonthNumber(s->rows.first().month);
        if (month && (!first || *month < *first)) first = month;
    }
    if (!first) return std::nullopt;

    BalanceChart chart;
    chart.firstMonth = *first;
    chart.loanValue = terms.loanValue;
    // A curve holds the balance before its first month in the months before it.
    const auto curve = [&](const Schedule& s, QVector<vb::Currency>& points) {
        if (s.rows.isEmpty()) return;
        const int offset = MonthNumber(s.rows.first().month).value_or(*first) - *first;
        points.fill(terms.loanValue, offset);
        for (const Row& r : s.rows) points << r.balance;
    };
    curve(plan, chart.planned);
    curve(schedule, chart.actual);
    const int offset = int(chart.actual.size() - schedule.rows.size());
    for (int i = int(schedule.rows.size()); i > 0; --i)
        if (schedule.rows[i - 1].deducted) {
            chart.deductedMonths = offset + i;
            break;
        }
    if (const std::optional<int> end = MonthNumber(terms.farsiEndDate); end && *end >= *first)
        chart.settlement = *end - *first;
    return chart;
}

}  // namespace kav::schedule
