#include "session/TableDocument.h"

#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "base/Errors.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

constexpr double kMarginMm = 12;

class Pages {
public:
    Pages(QPainter& p, QPaintDevice& device, const QSizeF& area, const TableDocument& doc)
        : p_(p), device_(device), page_(QPointF(0, 0), area), doc_(doc) {
        font_ = PersianFont(9);
        titleFont_ = PersianFont(13);
        titleFont_.setBold(true);
        bold_ = font_;
        bold_.setBold(true);
        lineHeight_ = QFontMetricsF(font_, &device_).height() * 1.5;
        titleHeight_ = QFontMetricsF(titleFont_, &device_).height() * 1.6;
        double total = 0;
        for (double share : doc_.columnShares) total += share;
        for (double share : doc_.columnShares)
            widths_ << (total > 0 ? page_.width() * share / total : 0);
    }

    void paint(const std::function<bool()>& newPage) {
        p_.setLayoutDirection(Qt::RightToLeft);
        const double headingHeight = titleHeight_ + lineHeight_ * (doc_.facts.size() + 1.5);
        const int perPage = qMax(1, int((page_.height() - headingHeight) / lineHeight_) - 1);
        const qsizetype lines = doc_.lines.size();
        const int pages = qMax(1, int((lines + perPage - 1) / perPage));
        for (int n = 0; n < pages; ++n) {
            if (n > 0 && !newPage()) break;
            double y = heading(n + 1, pages);
            y = row(y, doc_.columnTitles, true, true);
            for (qsizetype i = qsizetype(n) * perPage; i < lines && i < qsizetype(n + 1) * perPage;
                 ++i)
                y = row(y, doc_.lines[i].cells, doc_.lines[i].bold, false);
        }
    }

private:
    double heading(int number, int pages) {
        const QRectF top(page_.left(), page_.top(), page_.width(), titleHeight_);
        p_.setFont(titleFont_);
        // The painter lays out right to left, so these alignments name the physical sides.
        p_.drawText(top, Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter, doc_.title);
        p_.setFont(font_);
        p_.drawText(top, Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
                    u"صفحه %1 از %2"_s.arg(number).arg(pages));
        double y = page_.top() + titleHeight_;
        for (const QString& fact : doc_.facts) {
            p_.drawText(QRectF(page_.left(), y, page_.width(), lineHeight_),
                        Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter, fact);
            y += lineHeight_;
        }
        return y + lineHeight_ * 0.5;
    }

    // One line of the table, its first cell at the right edge.
    double row(double y, const QStringList& cells, bool bold, bool titles) {
        const QFont& font = bold || titles ? bold_ : font_;
        p_.setFont(font);
        const QFontMetricsF metrics(font, &device_);
        if (titles)
            p_.fillRect(QRectF(page_.left(), y, page_.width(), lineHeight_), QColor(225, 232, 240));
        double right = page_.right();
        const double pad = lineHeight_ * 0.2;
        for (int c = 0; c < cells.size() && c < widths_.size(); ++c) {
            const QRectF cell =
                QRectF(right - widths_[c], y, widths_[c], lineHeight_).adjusted(pad, 0, -pad, 0);
            const Qt::Alignment align = (!titles && doc_.textColumns.contains(c))
                                            ? Qt::Alignment(Qt::AlignAbsolute | Qt::AlignRight)
                                            : Qt::Alignment(Qt::AlignHCenter);
            p_.drawText(cell, align | Qt::AlignVCenter,
                        metrics.elidedText(cells[c], Qt::ElideRight, cell.width()));
            right -= widths_[c];
        }
        p_.setPen(QColor(160, 160, 160));
        p_.drawLine(QPointF(page_.left(), y + lineHeight_),
                    QPointF(page_.right(), y + lineHeight_));
        p_.setPen(Qt::black);
        return y + lineHeight_;
    }

    QPainter& p_;
    QPaintDevice& device_;
    QRectF page_;
    const TableDocument& doc_;
    QFont font_, titleFont_, bold_;
    double lineHeight_ = 0, titleHeight_ = 0;
    QVector<double> widths_;
};

}  // namespace

void PaintTableDocument(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                        const TableDocument& document, const std::function<bool()>& newPage) {
    Pages(painter, device, area, document).paint(newPage);
}

QImage TableFirstPage(const TableDocument& document, int width) {
    const double ratio = document.landscape ? 210.0 / 297.0 : 297.0 / 210.0;
    const double dpi = width / ((document.landscape ? 297.0 : 210.0) / 25.4);
    QImage image(width, qRound(width * ratio), QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(dpi / 0.0254));
    image.setDotsPerMeterY(qRound(dpi / 0.0254));
    image.fill(Qt::white);
    const double margin = kMarginMm / 25.4 * dpi;
    QPainter p(&image);
    p.translate(margin, margin);
    PaintTableDocument(p, image, QSizeF(image.width() - 2 * margin, image.height() - 2 * margin),
                       document, [] { return false; });
    return image;
}

void SaveTablePdf(const QString& path, const TableDocument& document) {
    QSaveFile file(path);
    auto fail = [&](const QString& why) {
        file.cancelWriting();
        throw KavError(KavError::Kind::Usage, u"فايل «%1» ذخيره نشد: %2"_s.arg(path, why));
    };
    if (!file.open(QIODevice::WriteOnly)) fail(file.errorString());
    {
        QPdfWriter writer(&file);
        writer.setTitle(document.title);
        writer.setCreator(u"KAVHRLoan"_s);
        writer.setResolution(300);
        writer.setPageLayout(QPageLayout(
            QPageSize(QPageSize::A4),
            document.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
            QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter));
        QPainter p;
        if (!p.begin(&writer)) fail(u"PDF"_s);
        PaintTableDocument(p, writer, QSizeF(writer.width(), writer.height()), document,
                           [&] { return writer.newPage(); });
        p.end();
    }
    if (file.error() != QFileDevice::NoError) fail(file.errorString());
    if (!file.commit()) fail(file.errorString());
}

}  // namespace kav
