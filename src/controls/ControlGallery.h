#pragma once

// Renders every control of the library, filled and empty, right to left, to PNG files, so
// anyone can look at them without a display (the offscreen platform will do).

#include <QString>

namespace kav::controls {

// Writes into dir (created if missing): date_empty.png, date_filled.png, date_calendar.png,
// currency_empty.png, currency_filled.png, selector_empty.png, selector_filled.png,
// selector_list.png, flexgrid_empty.png, flexgrid_filled.png. Returns how many of them could
// not be written (0 when all were).
int RenderControlGallery(const QString& dir);
constexpr int GalleryPictures = 10;

}  // namespace kav::controls
