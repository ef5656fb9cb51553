#include "adjustments/ScheduleExport.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextOption>
#include <functional>

#include "base/Errors.h"
#include "session/TextProcs.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

using vb::Currency;

QStringList ColumnTitles() {
    return {u"ماه"_s,        u"قسط برنامه"_s,      u"تعديل"_s, u"کسر شده در فيش"_s,
            u"کاهش مانده"_s, u"مانده پس از ماه"_s, u"توضيح"_s};
}

QString RowNote(const Row& row) {
    QStringList notes;
    if (row.remainderMonth) notes << u"باقيمانده وام"_s;
    if (row.afterSettlement) notes << u"پس از تاريخ تسويه"_s;
    return notes.join(u"، "_s);
}

QString AmountText(Currency amount) { return GroupDigits(amount.toString()); }

namespace {

QString amountCell(const std::optional<Currency>& amount, bool grouped) {
    if (!amount) return {};
    return grouped ? AmountText(*amount) : amount->toString();
}

}  // namespace

QStringList RowCells(const Row& r, bool grouped) {
    return {r.month,
            amountCell(r.planned, grouped),
            amountCell(r.adjustment, grouped),
            amountCell(r.deducted, grouped),
            amountCell(r.taken, grouped),
            amountCell(r.balance, grouped),
            RowNote(r)};
}

QStringList TotalCells(const Schedule& s, bool grouped) {
    return {u"جمع"_s,
            QString(),
            QString(),
            amountCell(s.totalDeducted, grouped),
            amountCell(s.totalTaken, grouped),
            amountCell(s.balance, grouped),
            QString()};
}

QList<QStringList> CsvRows(const Schedule& s) {
    QList<QStringList> rows;
    rows.reserve(s.rows.size() + 2);
    rows << ColumnTitles();
    for (const Row& r : s.rows) rows << RowCells(r, false);
    rows << TotalCells(s, false);
    return rows;
}

namespace {

// The widths of the columns, right to left, as parts of the line.
constexpr double kColumnShares[] = {0.10, 0.14, 0.13, 0.14, 0.14, 0.15, 0.20};
constexpr int kNoteColumn = 6;

struct Line {
    QStringList cells;
    bool bold = false;
};

// The pages of the schedule painted on a device (the PDF, or an image to look at): the
// paintable area starts at the origin; newPage is asked before each page after the first and
// stops the painting by answering false.
class SchedulePages {
public:
    SchedulePages(QPaintDevice& device, const QString& title, const QStringList& facts)
        : device_(device), title_(title), facts_(facts) {}

    bool print(QPainter& p, const QSizeF& area, const QList<Line>& lines,
               const std::function<bool()>& newPage) {
        p.setLayoutDirection(Qt::RightToLeft);
        const QRectF page(QPointF(0, 0), area);
        font_ = PersianFont(9);
        titleFont_ = PersianFont(13);
        titleFont_.setBold(true);
        bold_ = font_;
        bold_.setBold(true);
        p.setFont(font_);
        const double lineHeight = QFontMetricsF(font_, &device_).height() * 1.5;
        const double titleHeight = QFontMetricsF(titleFont_, &device_).height() * 1.6;
        const double headingHeight = titleHeight + lineHeight * (facts_.size() + 1.5);
        const int perPage = qMax(1, int((page.height() - headingHeight) / lineHeight) - 1);
        const int pages = qMax(1, int((lines.size() + perPage - 1) / perPage));
        for (int n = 0; n < pages; ++n) {
            if (n > 0 && !newPage()) break;
            double y = heading(p, page, n + 1, pages, lineHeight, titleHeight);
            y = row(p, page, y, lineHeight, ColumnTitles(), true, true);
            for (qsizetype i = qsizetype(n) * perPage;
                 i < lines.size() && i < qsizetype(n + 1) * perPage; ++i)
                y = row(p, page, y, lineHeight, lines[i].cells, lines[i].bold, false);
        }
        return true;
    }

private:
    double heading(QPainter& p, const QRectF& page, int number, int pages, double lineHeight,
                   double titleHeight) {
        p.setFont(titleFont_);
        // The painter lays out right to left, so these alignments name the physical sides.
        p.drawText(QRectF(page.left(), page.top(), page.width(), titleHeight),
                   Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter, title_);
        p.setFont(font_);
        p.drawText(QRectF(page.left(), page.top(), page.width(), titleHeight),
                   Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
                   u"صفحه %1 از %2"_s.arg(number).arg(pages));
        double y = page.top() + titleHeight;
        for (const QString& fact : facts_) {
            p.drawText(QRectF(page.left(), y, page.width(), lineHeight),
                       Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter, fact);
            y += lineHeight;
        }
        return y + lineHeight * 0.5;
    }

    // One line of the table, its first cell at the right edge.
    double row(QPainter& p, const QRectF& page, double y, double height, const QStringList& cells,
               bool bold, bool titles) {
        p.setFont(bold ? bold_ : font_);
        if (titles) p.fillRect(QRectF(page.left(), y, page.width(), height), QColor(225, 232, 240));
        double right = page.right();
        const double pad = height * 0.2;
        for (int c = 0; c < cells.size() && c < int(std::size(kColumnShares)); ++c) {
            const double width = page.width() * kColumnShares[c];
            const QRectF cell(right - width, y, width, height);
            // Centred like the window's grid; the note starts at the cell's right edge.
            const Qt::Alignment align = (c == kNoteColumn && !titles)
                                            ? Qt::Alignment(Qt::AlignAbsolute | Qt::AlignRight)
                                            : Qt::Alignment(Qt::AlignHCenter);
            p.drawText(cell.adjusted(pad, 0, -pad, 0), align | Qt::AlignVCenter, cells[c]);
            right -= width;
        }
        p.setPen(QColor(160, 160, 160));
        p.drawLine(QPointF(page.left(), y + height), QPointF(page.right(), y + height));
        p.setPen(Qt::black);
        return y + height;
    }

    QPaintDevice& device_;
    QString title_;
    QStringList facts_;
    QFont font_, titleFont_, bold_;
};

QList<Line> lines(const Schedule& s) {
    QList<Line> out;
    out.reserve(s.rows.size() + 1);
    for (const Row& r : s.rows) out << Line{RowCells(r, true)};
    out << Line{TotalCells(s, true), true};
    return out;
}

constexpr double kMarginMm = 12;

}  // namespace

QImage PdfFirstPage(const QString& title, const QStringList& facts, const Schedule& s, int width) {
    const double dpi = width / (210.0 / 25.4);
    QImage image(width, qRound(width * 297.0 / 210.0), QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(dpi / 0.0254));
    image.setDotsPerMeterY(qRound(dpi / 0.0254));
    image.fill(Qt::white);
    const double margin = kMarginMm / 25.4 * dpi;
    QPainter p(&image);
    p.translate(margin, margin);
    SchedulePages(image, title, facts)
        .print(p, QSizeF(image.width() - 2 * margin, image.height() - 2 * margin), lines(s),
               [] { return false; });
    return image;
}

void SavePdf(const QString& path, const QString& title, const QStringList& facts,
             const Schedule& s) {
    QSaveFile file(path);
    auto fail = [&](const QString& why) {
        file.cancelWriting();
        throw KavError(KavError::Kind::Usage, u"فايل «%1» ذخيره نشد: %2"_s.arg(path, why));
    };
    if (!file.open(QIODevice::WriteOnly)) fail(file.errorString());
    {
        QPdfWriter writer(&file);
        writer.setTitle(title);
        writer.setCreator(u"KAVHRLoan"_s);
        writer.setResolution(300);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm),
                                         QPageLayout::Millimeter));
        QPainter p;
        if (!p.begin(&writer)) fail(u"PDF"_s);
        SchedulePages(writer, title, facts)
            .print(p, QSizeF(writer.width(), writer.height()), lines(s),
                   [&] { return writer.newPage(); });
        p.end();
    }
    if (file.error() != QFileDevice::NoError) fail(file.errorString());
    if (!file.commit()) fail(file.errorString());
}

}  // namespace kav::schedule
