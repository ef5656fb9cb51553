#include "session/TableDocument.h"

#include <QFontMetricsF>
#include <QPainter>
#include <memory>

#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

// The document's type on a device: the text, its bold (totals, column titles), the title and
// the notice, and the heights of their lines.
struct Type {
    explicit Type(QPaintDevice& device, double pointSize = 9) : device(&device) {
        text = PersianFont(9);
        text.setPointSizeF(pointSize);
        bold = text;
        bold.setBold(true);
        title = PersianFont(13);
        title.setBold(true);
        notice = PersianFont(16);
        notice.setBold(true);
        lineHeight = QFontMetricsF(text, &device).height() * 1.5;
        titleHeight = QFontMetricsF(title, &device).height() * 1.6;
        noticeHeight = QFontMetricsF(notice, &device).height() * 1.6;
    }
    // The facts' lines within the width: a long fact (the notes) goes on over more lines.
    QStringList factLines(const QStringList& facts, double width) const;
    double headingHeight(const QString& notice, const QStringList& facts, double width) const {
        return titleHeight + (notice.isEmpty() ? 0 : noticeHeight + lineHeight * 0.4) +
               lineHeight * (factLines(facts, width).size() + 0.5);
    }

    QPaintDevice* device;
    QFont text, bold, title, notice;
    double lineHeight = 0, titleHeight = 0, noticeHeight = 0;
};

// The lines of a text within a width: its own lines, each broken between words.
QStringList wrapped(const QString& text, const QFontMetricsF& metrics, double width) {
    QStringList lines;
    for (const QString& paragraph : text.split(u'\n')) {
        QString line;
        for (const QString& word : paragraph.split(u' ', Qt::SkipEmptyParts)) {
            const QString longer = line.isEmpty() ? word : line + u' ' + word;
            if (line.isEmpty() || metrics.horizontalAdvance(longer) <= width) {
                line = longer;
            } else {
                lines << line;
                line = word;
            }
        }
        lines << line;
    }
    return lines;
}

QStringList Type::factLines(const QStringList& facts, double width) const {
    const QFontMetricsF metrics(text, device);
    QStringList lines;
    for (const QString& fact : facts) lines << wrapped(fact, metrics, width);
    return lines;
}

double heading(QPainter& p, const Type& type, const QSizeF& area, const QString& title,
               const QString& notice, const QStringList& facts) {
    p.save();
    p.setLayoutDirection(Qt::RightToLeft);
    p.setPen(Qt::black);
    // The painter lays out right to left, so these alignments name the physical sides.
    const Qt::Alignment right = Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter;
    p.setFont(type.title);
    DrawDocumentText(p, QRectF(0, 0, area.width(), type.titleHeight), right, title);
    double y = type.titleHeight;
    if (!notice.isEmpty()) {
        const QRectF box(0, y, area.width(), type.noticeHeight);
        p.setPen(QPen(QColor(150, 20, 20), type.lineHeight * 0.08));
        p.drawRect(box);
        p.setFont(type.notice);
        DrawDocumentText(p, box, Qt::AlignCenter, notice);
        p.setPen(Qt::black);
        y += type.noticeHeight + type.lineHeight * 0.4;
    }
    p.setFont(type.text);
    for (const QString& fact : type.factLines(facts, area.width())) {
        DrawDocumentText(p, QRectF(0, y, area.width(), type.lineHeight), right, fact);
        y += type.lineHeight;
    }
    p.restore();
    return y + type.lineHeight * 0.5;
}

class Pages {
public:
    Pages(QPaintDevice& device, const QSizeF& area, const TableDocument& doc)
        : device_(device), area_(area), doc_(doc), type_(device, doc.pointSize) {
        double total = 0;
        for (double share : doc_.columnShares) total += share;
        for (double share : doc_.columnShares)
            widths_ << (total > 0 ? area_.width() * share / total : 0);
        pad_ = type_.lineHeight * 0.2;
        // The column titles wrap at their columns' widths, every one of them.
        titles_ = layOut({doc_.columnTitles, true}, true);
        const int perPage = qMax(
            1, int((area_.height() - type_.headingHeight(doc_.notice, doc_.facts, area_.width())) /
                   type_.lineHeight) -
                   int(titles_.size()));
        pageStarts_ << 0;
        int used = 0;
        for (const TableDocument::Line& line : doc_.lines) {
            const int first = int(lines_.size());
            lines_ << layOut(line, false);
            const int k = int(lines_.size()) - first;
            if (used > 0 && used + k > perPage) {
                pageStarts_ << first;
                used = 0;
            }
            // A line taller than a page goes on over the next pages.
            used += k;
            while (used > perPage) {
                pageStarts_ << first + k - (used - perPage);
                used -= perPage;
            }
        }
    }

    int count() const { return int(pageStarts_.size()); }

    double paint(QPainter& p, const NewPage& newPage) {
        p.save();
        p.setLayoutDirection(Qt::RightToLeft);
        double y = 0;
        for (int n = 0; n < count(); ++n) {
            if (n > 0 && !newPage()) break;
            y = heading(p, type_, area_, doc_.title, doc_.notice, doc_.facts);
            p.fillRect(QRectF(0, y, area_.width(), type_.lineHeight * titles_.size()),
                       QColor(225, 232, 240));
            for (const Physical& titles : titles_) y = row(p, y, titles, true);
            const int end = n + 1 < count() ? pageStarts_[n + 1] : int(lines_.size());
            for (int i = pageStarts_[n]; i < end; ++i) y = row(p, y, lines_[i], false);
        }
        p.restore();
        return y;
    }

private:
    // One line of the table on paper: a line of the document, or one of the lines its wrapped
    // cells take; the rule goes under its last.
    struct Physical {
        QStringList cells;
        bool bold = false;
        bool last = true;
    };

    // The lines a line of the document takes on paper.
    QVector<Physical> layOut(const TableDocument::Line& line, bool wrapAll) const {
        const QFontMetricsF metrics(line.bold ? type_.bold : type_.text, &device_);
        QList<QStringList> parts;
        qsizetype k = 1;
        for (int c = 0; c < line.cells.size() && c < widths_.size(); ++c) {
            parts << (wrapAll || doc_.wrapColumns.contains(c)
                          ? wrapped(line.cells[c], metrics, widths_[c] - 2 * pad_)
                          : QStringList{line.cells[c]});
            k = qMax(k, parts.last().size());
        }
        QVector<Physical> lines;
        for (qsizetype j = 0; j < k; ++j) {
            Physical physical{{}, line.bold, j == k - 1};
            for (const QStringList& cell : parts) physical.cells << cell.value(j);
            lines << physical;
        }
        return lines;
    }

    // One line of the table, its first cell at the right edge.
    double row(QPainter& p, double y, const Physical& line, bool titles) {
        const QFont& font = line.bold ? type_.bold : type_.text;
        p.setFont(font);
        const QFontMetricsF metrics(font, &device_);
        const double h = type_.lineHeight;
        double right = area_.width();
        for (int c = 0; c < line.cells.size() && c < widths_.size(); ++c) {
            const QRectF cell =
                QRectF(right - widths_[c], y, widths_[c], h).adjusted(pad_, 0, -pad_, 0);
            const Qt::Alignment align = (!titles && doc_.textColumns.contains(c))
                                            ? Qt::Alignment(Qt::AlignAbsolute | Qt::AlignRight)
                                            : Qt::Alignment(Qt::AlignHCenter);
            DrawDocumentText(p, cell, align | Qt::AlignVCenter,
                             metrics.elidedText(line.cells[c], Qt::ElideRight, cell.width()));
            right -= widths_[c];
        }
        if (line.last) {
            p.setPen(QColor(160, 160, 160));
            p.drawLine(QPointF(0, y + h), QPointF(area_.width(), y + h));
            p.setPen(Qt::black);
        }
        return y + h;
    }

    QPaintDevice& device_;
    QSizeF area_;
    const TableDocument& doc_;
    Type type_;
    double pad_ = 0;
    QVector<double> widths_;
    QVector<Physical> titles_;
    QVector<Physical> lines_;
    QVector<int> pageStarts_;  // the first line of each page
};

}  // namespace

int TablePageCount(QPaintDevice& device, const QSizeF& area, const TableDocument& document) {
    return Pages(device, area, document).count();
}

double PaintTableDocument(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                          const TableDocument& document, const NewPage& newPage) {
    return Pages(device, area, document).paint(painter, newPage);
}

double PaintDocumentHeading(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                            const QString& title, const QString& notice, const QStringList& facts) {
    return heading(painter, Type(device), area, title, notice, facts);
}

PagedDocument TablePages(const TableDocument& document) {
    PagedDocument pages;
    pages.title = document.title;
    pages.landscape = document.landscape;
    const auto table = std::make_shared<const TableDocument>(document);
    pages.pageCount = [table](QPaintDevice& device, const QSizeF& area) {
        return TablePageCount(device, area, *table);
    };
    pages.paint = [table](QPainter& p, QPaintDevice& device, const QSizeF& area,
                          const NewPage& newPage) {
        PaintTableDocument(p, device, area, *table, newPage);
    };
    return pages;
}

}  // namespace kav
