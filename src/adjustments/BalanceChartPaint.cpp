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

}  // namespace

void PaintBalanceChart(QPainter& p, const QRectF& rect, const BalanceChart& chart) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setLayoutDirection(Qt::RightToLeft);
    const QFont font = PersianFont(8);
    p.setFont(font);
    const QFontMetricsF fm(font, p.device());
    const double line = fm.height();
    const double pen = qMax(1.0, line / 8);
    const int n = qMax(1, chart.months());

    // The amounts the curves span: from 0 (or below) to the loan amount (or above).
    double low = 0, high = chart.loanValue.toDouble();
    for (const QVector<vb::Currency>* curve : {&chart.planned, &chart.actual})
        for (vb::Currency v : *curve) {
            low = qMin(low, v.toDouble());
            high = qMax(high, v.toDouble());
        }
    if (high <= low) high = low + 1;

    const double labels = fm.horizontalAdvance(AmountText(chart.loanValue)) + line;
    const QRectF plot(rect.left() + line * 0.5, rect.top() + line * 2.2,
                      rect.width() - labels - line * 0.5, rect.height() - line * 4.2);
    if (plot.width() <= 0 || plot.height() <= 0) return p.restore();
    const double step = plot.width() / n;
    const auto x = [&](int month) { return plot.right() - step * (month + 1); };
    const auto y = [&](double v) {
        return plot.bottom() - plot.height() * (v - low) / (high - low);
    };
    const Qt::Alignment centre = Qt::AlignHCenter | Qt::AlignVCenter;

    // The amounts: five rules with their amounts at the right.
    for (int i = 0; i <= 4; ++i) {
        const double v = low + (high - low) * i / 4;
        p.setPen(QPen(QColor(215, 215, 215), pen / 2));
        p.drawLine(QPointF(plot.left(), y(v)), QPointF(plot.right(), y(v)));
        p.setPen(Qt::black);
        DrawDocumentText(
            p, QRectF(plot.right() + line * 0.3, y(v) - line / 2, labels - line * 0.3, line),
            Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
            AmountText(vb::Currency::fromDouble(std::round(v))));
    }
    p.setPen(QPen(QColor(90, 90, 90), pen / 2));
    p.drawLine(plot.bottomLeft(), plot.bottomRight());
    p.drawLine(plot.topRight(), plot.bottomRight());

    // The months, as many as have room, the first at the right.
    const double monthWidth = fm.horizontalAdvance(u"0000/00"_s) + line;
    const int every = qMax(1, int(std::ceil(monthWidth / step)));
    p.setPen(Qt::black);
    for (int i = 0; i < n; i += every)
        DrawDocumentText(
            p, QRectF(x(i) - monthWidth / 2, plot.bottom() + line * 0.3, monthWidth, line), centre,
            chart.monthText(i));

    // The curves, from the loan amount before the first month.
    const auto polyline = [&](const QVector<vb::Currency>& points, int from, int to) {
        QPainterPath path(from == 0 ? QPointF(plot.right(), y(chart.loanValue.toDouble()))
                                    : QPointF(x(from - 1), y(points[from - 1].toDouble())));
        for (int i = from; i < to; ++i) path.lineTo(x(i), y(points[i].toDouble()));
        p.drawPath(path);
    };
    // The plan over the schedule, so that it shows where they are the same.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(kActual, pen * 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    polyline(chart.actual, 0, chart.deductedMonths);
    p.setPen(QPen(kActual, pen * 1.6, Qt::DotLine, Qt::RoundCap, Qt::RoundJoin));
    if (chart.deductedMonths < chart.actual.size())
        polyline(chart.actual, chart.deductedMonths, int(chart.actual.size()));
    p.setPen(QPen(kPlanned, pen, Qt::DashLine));
    polyline(chart.planned, 0, int(chart.planned.size()));

    // The settlement month.
    if (chart.settlement) {
        const double at = x(*chart.settlement);
        p.setPen(QPen(kSettlement, pen, Qt::DashDotLine));
        p.drawLine(QPointF(at, plot.top()), QPointF(at, plot.bottom()));
        const QString text = ChartSettlementText() + u' ' + chart.monthText(*chart.settlement);
        const double w = fm.horizontalAdvance(text) + line;
        const double left = qBound(rect.left(), at - w / 2, rect.right() - w);
        p.setPen(kSettlement);
        DrawDocumentText(p, QRectF(left, plot.top() - line * 1.1, w, line), centre, text);
    }

    // The legend, from the right edge.
    struct Entry {
        QPen pen;
        QString text;
    };
    QList<Entry> legend{{QPen(kPlanned, pen, Qt::DashLine), ChartPlannedText()},
                        {QPen(kActual, pen * 1.6), ChartDeductedText()}};
    if (chart.deductedMonths < chart.actual.size())
        legend << Entry{QPen(kActual, pen * 1.6, Qt::DotLine), ChartToComeText()};
    double right = rect.right();
    const double top = rect.top() + line * 0.1;
    for (const Entry& e : legend) {
        p.setPen(e.pen);
        p.drawLine(QPointF(right - line * 2, top + line / 2), QPointF(right, top + line / 2));
        const double w = fm.horizontalAdvance(e.text) + line * 0.2;
        p.setPen(Qt::black);
        DrawDocumentText(p, QRectF(right - line * 2.4 - w, top, w, line), centre, e.text);
        right -= line * 2.4 + w + line * 1.2;
    }
    p.restore();
}

}  // namespace kav::schedule
