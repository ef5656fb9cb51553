#pragma once

// What the module puts on paper: a document painted page by page, the same routine for every
// way it leaves the module (a PDF file, a printer, a picture of one page), so the printed page
// and the PDF are the same page. The foot of every page says who printed it and when, and the
// page's number ("page n of m").
//
//   PagedDocument doc = TablePages(table);            // or the loan sheet's pages
//   SavePdf(path, doc, PrintedText(who, QDateTime::currentDateTime()));

#include <QDateTime>
#include <QImage>
#include <QString>
#include <functional>

class QPagedPaintDevice;
class QPaintDevice;
class QPainter;
class QRectF;
class QSizeF;

namespace kav {

// Asked before each page after the first; false stops the painting.
using NewPage = std::function<bool()>;

struct PagedDocument {
    QString title;  // the PDF's title, the print job's name
    bool landscape = false;
    // The pages the document takes on a device where a page's area above its foot has the
    // given size.
    std::function<int(QPaintDevice& device, const QSizeF& area)> pageCount;
    // Paints the pages on a painter whose area (of the given size) starts at the origin.
    std::function<void(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                       const NewPage& newPage)>
        paint;
};

// The document `first` with the pages of `then` after its own: the title and orientation of
// `first`, the pages counted on together.
PagedDocument Followed(const PagedDocument& first, const PagedDocument& then);

// Text on a document's page, as QPainter::drawText in the rectangle with the flags (one line,
// the painter's layout direction). Qt's print preview records a line's text runs and plays
// each back left to right, which turns a right-to-left line's punctuation and blanks around;
// there the text is painted as its glyphs' outlines, laid out as on paper.
void DrawDocumentText(QPainter& painter, const QRectF& rect, int flags, const QString& text);

// The foot's line: who printed the document (as SessionPrinterName says it) and when, with the
// Jalali date: "چاپ توسط علي رضايي (کاربر 3)، 1403/07/15 ساعت 14:05".
QString PrintedText(const QString& who, const QDateTime& when);

// A4 in the document's orientation with the module's margins.
void SetDocumentLayout(QPagedPaintDevice& device, const PagedDocument& document);

// Paints every page on a painter over a page of the given size (the device's paintable area,
// starting at the origin): the document above the foot, the foot with `printed` and the page
// number below it. newPage moves to the next page.
void PaintPages(QPainter& painter, QPaintDevice& device, const QSizeF& page,
                const PagedDocument& document, const QString& printed, const NewPage& newPage);
// The same on a PDF writer or a printer that is set up already (SetDocumentLayout).
void PaintPages(QPagedPaintDevice& device, const PagedDocument& document, const QString& printed);

// Writes the document as an A4 PDF, whole or not at all. Raises KavError (Usage) naming the
// file when it cannot be written.
void SavePdf(const QString& path, const PagedDocument& document, const QString& printed);

// Page `page` (from 0) as an image of the given width, to look at without a PDF reader; a null
// image when the document has fewer pages.
QImage PageImage(const PagedDocument& document, const QString& printed, int page = 0,
                 int width = 1240);

}  // namespace kav
