#pragma once

// The member's balance chart in the adjustment window: it paints the chart it is given
// (BalanceChartPaint.h) and nothing else; empty, it paints nothing.

#include <QWidget>
#include <optional>

#include "adjustments/BalanceChart.h"

namespace kav::schedule {

class BalanceChartView : public QWidget {
    Q_OBJECT
public:
    explicit BalanceChartView(QWidget* parent = nullptr);

    void setChart(std::optional<BalanceChart> chart);
    const std::optional<BalanceChart>& chart() const { return chart_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<BalanceChart> chart_;
};

}  // namespace kav::schedule
