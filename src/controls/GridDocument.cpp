#include "controls/GridDocument.h"

#include <QHeaderView>
#include <QTableView>

#include "controls/FlexGrid.h"

namespace kav::controls {

namespace {

// Wider than this on screen (pixels at 96 dpi, about 18 cm) the page turns across.
constexpr double kUprightWidth = 700;

// The page's width for the columns and the type that fits on it what the screen shows in its
// width (the screen's type is of 10 points; on paper 9 at most, and 6 at the least).
void fit(TableDocument& doc, double screenPixels) {
    doc.landscape = screenPixels > kUprightWidth;
    const double paperMm = doc.landscape ? 297 - 24 : 210 - 24;
    const double screenMm = screenPixels / 96 * 25.4;
    doc.pointSize = qBound(6.0, 10 * paperMm / qMax(1.0, screenMm), 9.0);
}

}  // namespace

TableDocument GridDocument(const FlexGrid& grid, const QString& title, const QStringList& facts) {
    TableDocument doc;
    doc.title = title;
    doc.facts = facts;
    QList<int> shown;
    double width = 0;
    for (int c = 0; c < grid.Cols(); ++c) {
        const int twips = grid.ColWidth(c);
        if (twips <= 0) continue;
        const int align = grid.ColAlignment(c);
        if (align < FlexGrid::flexAlignCenterTop || align > FlexGrid::flexAlignCenterBottom)
            doc.textColumns << int(shown.size());
        shown << c;
        doc.columnTitles << grid.TextMatrix(0, c).trimmed();
        doc.columnShares << twips;
        width += twips / 15.0;
    }
    fit(doc, width);
    doc.lines.reserve(grid.Rows() - 1);
    for (int r = 1; r < grid.Rows(); ++r) {
        TableDocument::Line line;
        line.cells.reserve(shown.size());
        for (int c : shown) line.cells << grid.TextMatrix(r, c);
        doc.lines << line;
    }
    return doc;
}

TableDocument GridDocument(const QTableView& table, const QString& title,
                           const QStringList& facts) {
    TableDocument doc;
    doc.title = title;
    doc.facts = facts;
    const QAbstractItemModel* model = table.model();
    if (!model) return doc;
    QList<int> shown;
    double width = 0;
    // The header's visual order, which a right-to-left view lays out from the right.
    for (int v = 0; v < table.horizontalHeader()->count(); ++v) {
        const int c = table.horizontalHeader()->logicalIndex(v);
        if (table.isColumnHidden(c) || table.columnWidth(c) <= 0) continue;
        const QVariant align = model->index(0, c).data(Qt::TextAlignmentRole);
        if (!align.isValid() || !(align.toInt() & Qt::AlignHCenter))
            doc.textColumns << int(shown.size());
        doc.wrapColumns << int(shown.size());
        shown << c;
        doc.columnTitles << model->headerData(c, Qt::Horizontal).toString();
        doc.columnShares << table.columnWidth(c);
        width += table.columnWidth(c);
    }
    fit(doc, width);
    for (int r = 0; r < model->rowCount(); ++r) {
        if (table.isRowHidden(r)) continue;
        TableDocument::Line line;
        for (int c : shown) line.cells << model->index(r, c).data().toString();
        doc.lines << line;
    }
    return doc;
}

}  // namespace kav::controls
