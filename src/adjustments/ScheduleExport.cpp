#include "adjustments/ScheduleExport.h"

#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextOption>

#include "base/Errors.h"
#include "session/TextProcs.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

using vb::Currency;

QStringList ColumnTitles() {
    return {u"ماه"_s,  u"قسط برنامه"_s, u"تعديل"_s, u"کسر شده در فيش"_s, u"مانده پس از ماه"_s,
            u"توضيح"_s};
}

QString RowNote(const Row& row) {
    QStringList notes;
    if (row.remainderMonth) notes << u"باقيمانده وام"_s;
    if (row.afterSettlement) notes << u"پس از تاريخ تسويه"_s;
    return notes.join(u"، "_s);
}

QString AmountText(Currency amount) { return GroupDigits(amount.toString()); }

QList<QStringList> CsvRows(const Schedule& s) {
    QList<QStringList> rows;
    rows.reserve(s.rows.size() + 2);
    rows << ColumnTitles();
    for (const Row& r : s.rows)
        rows << QStringList{r.month,
                            r.planned.toString(),
                            r.adjustment ? r.adjustment->toString() : QString(),
                            r.deducted ? r.deducted->toString() : QString(),
                            r.balance.toString(),
                            RowNote(r)};
    rows << QStringList{u"جمع"_s,
                        s.totalPlanned.toString(),
                        s.totalAdjustment.toString(),
                        s.totalDeducted.toString(),
                        s.balance.toString(),
                        QString()};
    return rows;
}

namespace {

// The widths of the columns, right to left, as parts of the line.
constexpr double kColumnShares[] = {0.11, 0.17, 0.15, 0.17, 0.17, 0.23};

struct Line {
    QStringList cells;
    bool bold = false;
};

class PdfPages {
public:
    PdfPages(QPdfWriter& writer, const QString& title, const QStringList& facts)
        : writer_(writer), title_(title), facts_(facts) {}

    void print(const QList<Line>& lines) {
        QPainter p;
        if (!p.begin(&writer_)) return;
        p.setLayoutDirection(Qt::RightToLeft);
        const QRectF page(QPointF(0, 0), QSizeF(writer_.width(), writer_.height()));
        font_ = PersianFont(9);
        titleFont_ = PersianFont(13);
        titleFont_.setBold(true);
        bold_ = font_;
        bold_.setBold(true);
        p.setFont(font_);
        const double lineHeight = QFontMetricsF(font_, &writer_).height() * 1.5;
        const double titleHeight = QFontMetricsF(titleFont_, &writer_).height() * 1.6;
        const double headingHeight = titleHeight + lineHeight * (facts_.size() + 1.5);
        const int perPage = qMax(1, int((page.height() - headingHeight) / lineHeight) - 1);
        const int pages = qMax(1, int((lines.size() + perPage - 1) / perPage));
        for (int n = 0; n < pages; ++n) {
            if (n > 0) writer_.newPage();
            double y = heading(p, page, n + 1, pages, lineHeight, titleHeight);
            y = row(p, page, y, lineHeight, ColumnTitles(), true, true);
            for (qsizetype i = qsizetype(n) * perPage;
                 i < lines.size() && i < qsizetype(n + 1) * perPage; ++i)
                y = row(p, page, y, lineHeight, lines[i].cells, lines[i].bold, false);
        }
        p.end();
    }

private:
    double heading(QPainter& p, const QRectF& page, int number, int pages, double lineHeight,
                   double titleHeight) {
        p.setFont(titleFont_);
        p.drawText(QRectF(page.left(), page.top(), page.width(), titleHeight),
                   Qt::AlignRight | Qt::AlignVCenter, title_);
        p.setFont(font_);
        p.drawText(QRectF(page.left(), page.top(), page.width(), titleHeight),
                   Qt::AlignLeft | Qt::AlignVCenter, u"صفحه %1 از %2"_s.arg(number).arg(pages));
        double y = page.top() + titleHeight;
        for (const QString& fact : facts_) {
            p.drawText(QRectF(page.left(), y, page.width(), lineHeight),
                       Qt::AlignRight | Qt::AlignVCenter, fact);
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
            // The month and the amounts are centred and right-aligned like the grid; the note
            // starts at the right.
            const Qt::Alignment align =
                (titles || c == 0) ? Qt::AlignHCenter : (c == 5 ? Qt::AlignRight : Qt::AlignLeft);
            p.drawText(cell.adjusted(pad, 0, -pad, 0), align | Qt::AlignVCenter, cells[c]);
            right -= width;
        }
        p.setPen(QColor(160, 160, 160));
        p.drawLine(QPointF(page.left(), y + height), QPointF(page.right(), y + height));
        p.setPen(Qt::black);
        return y + height;
    }

    QPdfWriter& writer_;
    QString title_;
    QStringList facts_;
    QFont font_, titleFont_, bold_;
};

}  // namespace

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
                                         QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter));
        QList<Line> lines;
        lines.reserve(s.rows.size() + 1);
        for (const Row& r : s.rows)
            lines << Line{{r.month, AmountText(r.planned),
                           r.adjustment ? AmountText(*r.adjustment) : QString(),
                           r.deducted ? AmountText(*r.deducted) : QString(), AmountText(r.balance),
                           RowNote(r)}};
        lines << Line{{u"جمع"_s, AmountText(s.totalPlanned), AmountText(s.totalAdjustment),
                       AmountText(s.totalDeducted), AmountText(s.balance), QString()},
                      true};
        PdfPages(writer, title, facts).print(lines);
    }
    if (file.error() != QFileDevice::NoError) fail(file.errorString());
    if (!file.commit()) fail(file.errorString());
}

}  // namespace kav::schedule
