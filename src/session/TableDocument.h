#pragma once

// A table as a document the clerk takes away or prints: a title, a notice in large type when
// there is one, facts under it ("label: value"), column titles and lines, laid out right to
// left, with the title, the notice, the facts and the column titles repeated on every page.
// Every table the module writes as a PDF or prints (the member's schedule, the monthly
// register, the search results, the adjustment list, the history) goes through here, and so
// does the members' list of the loan sheet.

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include "session/PagedDocument.h"

class QPainter;
class QPaintDevice;
class QSizeF;

namespace kav {

struct TableDocument {
    QString title;
    // A line in large type under the title (a loan not yet in the payroll); empty: none.
    QString notice;
    QStringList facts;
    QStringList columnTitles;
    // Each column's part of the line's width, the first column at the right edge.
    QVector<double> columnShares;
    // Columns whose cells start at their right edge (names, notes); the others are centred.
    QVector<int> textColumns;
    // Columns whose cells keep every line of their text and wrap at the column's width, the
    // line growing as tall as needed (the history's differences); the other cells keep one
    // line, cut short with an ellipsis.
    QVector<int> wrapColumns;
    bool landscape = false;
    // The size of the lines' type (the title and the notice keep theirs): smaller for a table
    // of many columns.
    double pointSize = 9;

    struct Line {
        QStringList cells;
        bool bold = false;  // totals
    };
    QList<Line> lines;
};

// The pages the table takes in an area of the given size on the device.
int TablePageCount(QPaintDevice& device, const QSizeF& area, const TableDocument& document);

// Paints the pages on a painter whose paintable area (of the given size) starts at the origin
// of the device: newPage is asked before each page after the first, and answering false stops
// the painting. A line taller than the room left on a page starts the next page. Returns where
// the last page's table ends.
double PaintTableDocument(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                          const TableDocument& document, const NewPage& newPage);

// The heading the table's pages start with (title, notice, facts), painted at the top of the
// area; returns where it ends. Other documents start their pages with it too.
double PaintDocumentHeading(QPainter& painter, QPaintDevice& device, const QSizeF& area,
                            const QString& title, const QString& notice, const QStringList& facts);

// The table as pages to save or print.
PagedDocument TablePages(const TableDocument& document);

}  // namespace kav
