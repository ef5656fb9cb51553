#pragma once

// Tab moves through a window in reading order: line by line from the top, and along each line
// from right to left (left to right in a left-to-right window), as the window is laid out.

#include <QList>

class QWidget;

namespace kav {

// The fields Tab stops at, in reading order. A field made of parts (a date box, an amount
// box, a grid) counts once; a tab page that is not shown counts where its tab widget stands.
// Hidden fields and fields Tab never stops at (click focus only) are left out.
QList<QWidget*> ReadingOrder(QWidget& window);

// Puts the window's fields in reading order in its tab chain. Tab leaves a grid for the next
// field rather than moving between its cells.
void ApplyReadingOrder(QWidget& window);

}  // namespace kav
