#pragma once

// A grid on screen as a table to print or save (session/TableDocument.h): its visible columns
// in the order shown, right to left, each as wide on paper as on screen in proportion, the
// header's texts as the column titles and its rows as shown (sorted, if the clerk sorted).
// A grid wider than an upright A4 page is printed across, and one wider than the page in
// smaller type.

#include <QString>
#include <QStringList>

#include "session/TableDocument.h"

class QTableView;

namespace kav::controls {

class FlexGrid;

// A flex grid's data rows, one line each (a long cell is cut short); centred columns stay
// centred, the others start at their right edge.
TableDocument GridDocument(const FlexGrid& grid, const QString& title, const QStringList& facts);

// A table view's rows; a cell keeps every line of its text, wrapped at its column's width.
// A column whose first cell is centred stays centred.
TableDocument GridDocument(const QTableView& table, const QString& title, const QStringList& facts);

}  // namespace kav::controls
