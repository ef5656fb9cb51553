#include "session/PagedDocument.h"

#include <QCalendar>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPageLayout>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <QRawFont>
#include <QSaveFile>
#include <QTextLayout>

#include "base/Errors.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

constexpr double kMarginMm = 12;

}  // namespace

PagedDocument Followed(const PagedDocument& first, const PagedDocument& then) {
    PagedDocument doc = first;
    doc.pageCount = [first, then](QPaintDevice& device, const QSizeF& area) {
        const auto count = [&](const PagedDocument& d) {
            return d.pageCount ? d.pageCount(device, area) : 1;
        };
        return count(first) + count(then);
    };
    doc.paint = [first, then](QPainter& p, QPaintDevice& device, const QSizeF& area,
                              const NewPage& newPage) {
        bool more = true;
        if (first.paint) first.paint(p, device, area, [&] { return more = newPage(); });
        if (more && then.paint && newPage()) then.paint(p, device, area, newPage);
    };
    return doc;
}

void DrawDocumentText(QPainter& p, const QRectF& rect, int flags, const QString& text) {
    if (!p.paintEngine() || p.paintEngine()->type() != QPaintEngine::Picture)
        return p.drawText(rect, flags, text);
    QTextLayout layout(text, p.font(), p.device());
    QTextOption option(Qt::Alignment(flags) & Qt::AlignHorizontal_Mask);
    option.setTextDirection(p.layoutDirection());
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid()) return layout.endLayout();
    line.setLineWidth(rect.width());
    layout.endLayout();
    double top = rect.top();
    if (flags & Qt::AlignVCenter) top += (rect.height() - line.height()) / 2;
    if (flags & Qt::AlignBottom) top += rect.height() - line.height();
    QPainterPath path;
    for (const QGlyphRun& run : line.glyphRuns()) {
        const QRawFont font = run.rawFont();
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i)
            path.addPath(font.pathForGlyph(glyphs[i]).translated(positions[i]));
    }
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.fillPath(path.translated(rect.left(), top), p.pen().color());
    p.restore();
}

QString PrintedText(const QString& who, const QDateTime& when) {
    const QCalendar::YearMonthDay day =
        QCalendar(QCalendar::System::Jalali).partsFromDate(when.date());
    const QString date = u"%1/%2/%3"_s.arg(day.year, 4, 10, QChar(u'0'))
                             .arg(day.month, 2, 10, QChar(u'0'))
                             .arg(day.day, 2, 10, QChar(u'0'));
    return u"چاپ توسط %1، %2 ساعت %3"_s.arg(who, date, when.time().toString(u"HH:mm"_s));
}

void SetDocumentLayout(QPagedPaintDevice& device, const PagedDocument& document) {
    device.setPageLayout(QPageLayout(
        QPageSize(QPageSize::A4),
        document.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
        QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter));
}

void PaintPages(QPainter& p, QPaintDevice& device, const QSizeF& page,
                const PagedDocument& document, const QString& printed, const NewPage& newPage) {
    const QFont font = PersianFont(8);
    const double lineHeight = QFontMetricsF(font, &device).height();
    const double footHeight = lineHeight * 2;
    const QSizeF area(page.width(), page.height() - footHeight);
    const int pages = document.pageCount ? qMax(1, document.pageCount(device, area)) : 1;
    int number = 1;
    // The foot: a rule, who printed and when at the right, the page's number at the left.
    const auto foot = [&] {
        p.save();
        p.setLayoutDirection(Qt::RightToLeft);
        p.setFont(font);
        p.setPen(QColor(120, 120, 120));
        const double top = area.height() + lineHeight * 0.6;
        p.drawLine(QPointF(0, top), QPointF(area.width(), top));
        const QRectF line(0, top + lineHeight * 0.2, area.width(), lineHeight);
        p.setPen(Qt::black);
        DrawDocumentText(p, line, Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter, printed);
        DrawDocumentText(p, line, Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
                         u"صفحه %1 از %2"_s.arg(number).arg(qMax(number, pages)));
        p.restore();
    };
    foot();
    if (!document.paint) return;
    document.paint(p, device, area, [&] {
        if (!newPage()) return false;
        ++number;
        foot();
        return true;
    });
}

void PaintPages(QPagedPaintDevice& device, const PagedDocument& document, const QString& printed) {
    QPainter p;
    if (!p.begin(&device)) throw KavError(KavError::Kind::Usage, u"صفحه براي چاپ آماده نشد."_s);
    PaintPages(p, device, QSizeF(device.width(), device.height()), document, printed,
               [&] { return device.newPage(); });
    p.end();
}

void SavePdf(const QString& path, const PagedDocument& document, const QString& printed) {
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
        SetDocumentLayout(writer, document);
        QPainter p;
        if (!p.begin(&writer)) fail(u"PDF"_s);
        PaintPages(p, writer, QSizeF(writer.width(), writer.height()), document, printed,
                   [&] { return writer.newPage(); });
        p.end();
    }
    if (file.error() != QFileDevice::NoError) fail(file.errorString());
    if (!file.commit()) fail(file.errorString());
}

QImage PageImage(const PagedDocument& document, const QString& printed, int page, int width) {
    const double across = document.landscape ? 297.0 : 210.0;
    const double down = document.landscape ? 210.0 : 297.0;
    const double dpi = width / (across / 25.4);
    QImage image(width, qRound(width * down / across), QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(dpi / 0.0254));
    image.setDotsPerMeterY(qRound(dpi / 0.0254));
    image.fill(Qt::white);
    const double margin = kMarginMm / 25.4 * dpi;
    int at = 0;
    {
        QPainter p(&image);
        p.translate(margin, margin);
        // The pages before the one asked for are painted and wiped; the painting stops after it.
        PaintPages(p, image, QSizeF(image.width() - 2 * margin, image.height() - 2 * margin),
                   document, printed, [&] {
                       if (at == page) return false;
                       ++at;
                       p.save();
                       p.resetTransform();
                       p.fillRect(image.rect(), Qt::white);
                       p.restore();
                       return true;
                   });
    }
    return at == page ? image : QImage();
}

}  // namespace kav
