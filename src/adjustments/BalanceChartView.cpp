#include "adjustments/BalanceChartView.h"

#include <QPainter>

#include "adjustments/BalanceChartPaint.h"

namespace kav::schedule {

BalanceChartView::BalanceChartView(QWidget* parent) : QWidget(parent) {
    setMinimumHeight(150);
    setAutoFillBackground(true);
    QPalette white = palette();
    white.setColor(QPalette::Window, Qt::white);
    setPalette(white);
}

void BalanceChartView::setChart(std::optional<BalanceChart> chart) {
    chart_ = std::move(chart);
    update();
}

void BalanceChartView::paintEvent(QPaintEvent*) {
    if (!chart_) return;
    QPainter p(this);
    PaintBalanceChart(p, QRectF(rect()).adjusted(8, 6, -8, -4), *chart_);
}

}  // namespace kav::schedule
