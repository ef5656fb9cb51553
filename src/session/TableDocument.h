#pragma once

// A table as a document the clerk takes away: a title, facts under it ("label: value"),
// column titles and lines, laid out right to left on A4 pages, with the title, the page number
// ("page n of m"), the facts and the column titles on every page. Every table the module
// writes as a PDF (the member's schedule, the monthly register) goes through here, and so does
// anything else that paints such a table on pages.

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

class QPainter;
class QPaintDevice;
class QSizeF;

namespace kav {

struct TableDocument {
    QString title;
    QStringList facts;
    QStringList columnTitles;
    // Each column's part of the line's width, the first column at the right edge.
    QVector<double> columnShares;
    // Columns whose cells start at their right edge (names, notes); the others are centred.
    QVector<int> textColumns;
    bool landscape = false;

    struct Line {
        QStringList cells;
        bool bold = false;  // totals
    };
    QList<Line> lines;
};

// Paints the pages on a painter whose paintable area (of the given size) starts at the origin
// of the device: newPage is asked before each page after the first, and answering false stops
// the painting. A cell too long for its column is cut short with an ellipsis.
void PaintTableDocument(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                        const TableDocument& document, const std::function<bool()>& newPage);

// Writes the document as an A4 PDF, whole or not at all. Raises KavError (Usage) naming the
// file when it cannot be written.
void SaveTablePdf(const QString& path, const TableDocument& document);

// The first page as an image of the given width, to look at without a PDF reader.
QImage TableFirstPage(const TableDocument& document, int width = 1240);

}  // namespace kav
