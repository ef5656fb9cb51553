#include "adjustments/BalanceChartPaint.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "adjustments/ScheduleExport.h"
#include "session/PagedDocument.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

QString ChartPlannedText() { return u"مانده طبق برنامه"_s; }
QString ChartDeductedText() { return u"مانده پس از کسر در فيش"_s; }
QString ChartToComeText() { return u"مانده ماه هاي آينده"_s; }
QString ChartSettlementText() { return u"تسويه"_s; }

namespace {

const QColor kPlanned(40, 90, 200);
const QColor kActual(20, 130, 60);
const QColor kSettlement(190, 30, 30);
const Qt::Alignment kCentre = Qt::AlignHCenter | Qt::AlignVCenter;

// Where the chart is painted: the plot's rectangle, the amounts it spans and the line height,
// with a month's x (the first at the right) and an amount's y.
struct Frame {
    Frame(const QPainter& p, const QRectF& rect, const BalanceChart& chart);
    double x(int month) const { return plot.right() - step * (month + 1); }
    double y(double v) const { return plot.bottom() - plot.height() * (v - low) / (high - low); }

    QFontMetricsF fm;
    double line, pen, low = 0, high, labels, step;
    int months;
    QRectF plot;
};

Frame::Frame(const QPainter& p, const QRectF& rect, const BalanceChart& chart)
    : fm(p.font(), p.device()),
      line(fm.height()),
      pen(qMax(1.0, line / 8)),
      high(chart.loanValue.toDouble()),
      labels(fm.horizontalAdvance(AmountText(chart.loanValue)) + line),
      months(qMax(1, chart.months())) {
    // The amounts the curves span: from 0 (or below) to the loan amount (or above).
    for (const QVector<vb::Currency>* curve : {&chart.planned, &chart.actual})
        for (vb::Currency v : *curve) {
            low = qMin(low, v.toDouble());
            high = qMax(high, v.toDouble());
        }
    if (high <= low) high = low + 1;
    plot = QRectF(rect.left() + line * 0.5, rect.top() + line * 2.2,
                  rect.width() - labels - line * 0.5, rect.height() - line * 4.2);
    step = plot.width() / months;
}

// Five rules with their amounts at the right, the axes, and the months (as many as have room).
void paintAxes(QPainter& p, const Frame& f, const BalanceChart& chart) {
    for (int i = 0; i <= 4; ++i) {
        const double v = f.low + (f.high - f.low) * i / 4;
        p.setPen(QPen(QColor(215, 215, 215), f.pen / 2));
        p.drawLine(QPointF(f.plot.left(), f.y(v)), QPointF(f.plot.right(), f.y(v)));
        p.setPen(Qt::black);
        DrawDocumentText(p,
                         QRectF(f.plot.right() + f.line * 0.3, f.y(v) - f.line / 2,
                                f.labels - f.line * 0.3, f.line),
                         Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
                         AmountText(vb::Currency::fromDouble(std::round(v))));
    }
    p.setPen(QPen(QColor(90, 90, 90), f.pen / 2));
    p.drawLine(f.plot.bottomLeft(), f.plot.bottomRight());
    p.drawLine(f.plot.topRight(), f.plot.bottomRight());

    const double monthWidth = f.fm.horizontalAdvance(u"0000/00"_s) + f.line;
    const int every = qMax(1, int(std::ceil(monthWidth / f.step)));
    p.setPen(Qt::black);
    for (int i = 0; i < f.months; i += every)
        DrawDocumentText(
            p, QRectF(f.x(i) - monthWidth / 2, f.plot.bottom() + f.line * 0.3, monthWidth, f.line),
            kCentre, chart.monthText(i));
}

// The curves, from the loan amount before the first month; the plan over the schedule, so
// that it shows where they are the same.
void paintCurves(QPainter& p, const Frame& f, const BalanceChart& chart) {
    const auto polyline = [&](const QVector<vb::Currency>& points, int from, int to) {
        QPainterPath path(from == 0 ? QPointF(f.plot.right(), f.y(chart.loanValue.toDouble()))
                                    : QPointF(f.x(from - 1), f.y(points[from - 1].toDouble())));
        for (int i = from; i < to; ++i) path.lineTo(f.x(i), f.y(points[i].toDouble()));
        p.drawPath(path);
    };
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(kActual, f.pen * 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    polyline(chart.actual, 0, chart.deductedMonths);
    p.setPen(QPen(kActual, f.pen * 1.6, Qt::DotLine, Qt::RoundCap, Qt::RoundJoin));
    if (chart.deductedMonths < chart.actual.size())
        polyline(chart.actual, chart.deductedMonths, int(chart.actual.size()));
    p.setPen(QPen(kPlanned, f.pen, Qt::DashLine));
    polyline(chart.planned, 0, int(chart.planned.size()));
}

// The settlement month: a line across the plot, named above it.
void paintSettlement(QPainter& p, const Frame& f, const QRectF& rect, const BalanceChart& chart) {
    if (!chart.settlement) return;
    const double at = f.x(*chart.settlement);
    p.setPen(QPen(kSettlement, f.pen, Qt::DashDotLine));
    p.drawLine(QPointF(at, f.plot.top()), QPointF(at, f.plot.bottom()));
    const QString text = ChartSettlementText() + u' ' + chart.monthText(*chart.settlement);
    const double w = f.fm.horizontalAdvance(text) + f.line;
    const double left = qBound(rect.left(), at - w / 2, rect.right() - w);
    p.setPen(kSettlement);
    DrawDocumentText(p, QRectF(left, f.plot.top() - f.line * 1.1, w, f.line), kCentre, text);
}

// The legend, from the right edge.
void paintLegend(QPainter& p, const Frame& f, const QRectF& rect, const BalanceChart& chart) {
    struct Entry {
        QPen pen;
        QString text;
    };
    QList<Entry> legend{{QPen(kPlanned, f.pen, Qt::DashLine), ChartPlannedText()},
                        {QPen(kActual, f.pen * 1.6), ChartDeductedText()}};
    if (chart.deductedMonths < chart.actual.size())
        legend << Entry{QPen(kActual, f.pen * 1.6, Qt::DotLine), ChartToComeText()};
    double right = rect.right();
    const double top = rect.top() + f.line * 0.1;
    for (const Entry& e : legend) {
        p.setPen(e.pen);
        p.drawLine(QPointF(right - f.line * 2, top + f.line / 2), QPointF(right, top + f.line / 2));
        const double w = f.fm.horizontalAdvance(e.text) + f.line * 0.2;
        p.setPen(Qt::black);
        DrawDocumentText(p, QRectF(right - f.line * 2.4 - w, top, w, f.line), kCentre, e.text);
        right -= f.line * 2.4 + w + f.line * 1.2;
    }
}

}  // namespace

void PaintBalanceChart(QPainter& p, const QRectF& rect, const BalanceChart& chart) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setLayoutDirection(Qt::RightToLeft);
    p.setFont(PersianFont(8));
    const Frame frame(p, rect, chart);
    if (frame.plot.width() > 0 && frame.plot.height() > 0) {
        paintAxes(p, frame, chart);
        paintCurves(p, frame, chart);
        paintSettlement(p, frame, rect, chart);
        paintLegend(p, frame, rect, chart);
    }
    p.restore();
}

}  // namespace kav::schedule
