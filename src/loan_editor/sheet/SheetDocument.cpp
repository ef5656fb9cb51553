#include "loan_editor/sheet/SheetDocument.h"

#include <QFontMetricsF>
#include <QPainter>
#include <memory>

#include "loan_editor/sheet/SheetTexts.h"
#include "session/TableDocument.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav::sheet {

namespace {

// A borrower's page: the heading, his guarantors, the sentence and the signature boxes, two
// boxes a row, the borrower's first.
void paintBorrower(QPainter& p, QPaintDevice& device, const QSizeF& area, const Content& content,
                   const BorrowerPage& page) {
    TableDocument guarantors;
    guarantors.title = page.guarantorsTitle;
    guarantors.columnTitles = page.guarantorColumns;
    guarantors.columnShares = {0.1, 0.25, 0.65};
    guarantors.textColumns = {2};
    for (const QStringList& row : page.guarantorRows) guarantors.lines << TableDocument::Line{row};

    double y = PaintDocumentHeading(p, device, area, content.title, content.notice, page.facts);
    p.save();
    p.translate(0, y);
    const QSizeF rest(area.width(), area.height() - y);
    y += page.guarantorRows.isEmpty()
             ? PaintDocumentHeading(p, device, rest, page.guarantorsTitle, QString(),
                                    {page.noGuarantor})
             : PaintTableDocument(p, device, rest, guarantors, [] { return false; });
    p.restore();

    p.save();
    p.setLayoutDirection(Qt::RightToLeft);
    const QFont font = PersianFont(10);
    p.setFont(font);
    const double line = QFontMetricsF(font, &device).height() * 1.5;
    const double mm = device.logicalDpiY() / 25.4;
    const Qt::Alignment right = Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter;
    y += line;
    DrawDocumentText(p, QRectF(0, y, area.width(), line), right, page.pledge);
    y += line * 1.5;
    const double gap = 8 * mm, boxHeight = 32 * mm, boxWidth = (area.width() - gap) / 2;
    p.setPen(QPen(Qt::black, 0.3 * mm));
    for (qsizetype i = 0; i < page.signatures.size(); ++i) {
        const double top = y + (i / 2) * (boxHeight + gap);
        const QRectF box(i % 2 == 0 ? area.width() - boxWidth : 0, top, boxWidth, boxHeight);
        p.drawRect(box);
        const QRectF inside = box.adjusted(3 * mm, 2 * mm, -3 * mm, -2 * mm);
        DrawDocumentText(p, QRectF(inside.left(), inside.top(), inside.width(), line), right,
                         page.signatures[i]);
        DrawDocumentText(p, QRectF(inside.left(), inside.bottom() - line, inside.width(), line),
                         right, texts::SignDate);
    }
    p.restore();
}

}  // namespace

PagedDocument SheetDocument(const Content& content) {
    TableDocument members;
    members.title = content.title;
    members.notice = content.notice;
    members.facts = content.facts;
    members.columnTitles = content.memberColumns;
    members.columnShares = {0.06, 0.1, 0.24, 0.2, 0.2, 0.2};
    members.textColumns = {2, 3, 4, 5};
    for (const QStringList& row : content.memberRows) members.lines << TableDocument::Line{row};
    PagedDocument first = TablePages(members);
    if (content.borrowers.isEmpty()) return first;

    const auto shared = std::make_shared<const Content>(content);
    PagedDocument borrowers;
    borrowers.pageCount = [shared](QPaintDevice&, const QSizeF&) {
        return int(shared->borrowers.size());
    };
    borrowers.paint = [shared](QPainter& p, QPaintDevice& device, const QSizeF& area,
                               const NewPage& newPage) {
        for (qsizetype i = 0; i < shared->borrowers.size(); ++i) {
            if (i > 0 && !newPage()) return;
            paintBorrower(p, device, area, *shared, shared->borrowers[i]);
        }
    };
    return Followed(first, borrowers);
}

}  // namespace kav::sheet
