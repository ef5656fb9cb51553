#pragma once

// Window sizes and grid column widths kept between runs, in the application's settings (a
// host that embeds the module: its own settings) under one group, each window under its
// object name. Only the widths of columns that are shown are kept and given back, so a column
// the window hides never shows through a remembered width. Where a window opens stays the
// window's own affair (the module's windows open centred).

#include <QSize>
#include <QString>

class QSettings;
class QWidget;

namespace kav::window_memory {

// The settings group that holds everything remembered here.
QString Group();

// The largest size a window opens at the first time: it fits a 1366x768 laptop screen with
// its panel.
inline constexpr QSize LargestFirstSize{1366, 700};

// Gives the window its remembered size, no larger than its screen's free area, and the shown
// columns of its grids their remembered widths. With nothing remembered the window keeps the
// size it has.
void Restore(QWidget& window, QSettings& settings);
// Keeps the window's size and the widths of its grids' shown columns.
void Remember(const QWidget& window, QSettings& settings);
// Forgets every window's size and columns.
void Forget(QSettings& settings);

}  // namespace kav::window_memory
