#pragma once

// What each mode of the loan window enables, locks or leaves alone, as a table.

#include <QString>

#include "session/WindowSupport.h"

namespace kav::loan_modes {

const modes::Table& EditorTable();

// The window caption of a mode; empty for a mode outside 0-3.
QString EditorTitle(qint32 mode);

}  // namespace kav::loan_modes
