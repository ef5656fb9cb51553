#pragma once

// Jalali dates as the suite's texts: "yyyy/mm/dd", zero-padded, Latin digits. No widgets here,
// so the parsing rules can be checked without a window.

#include <QCalendar>
#include <QDate>
#include <QString>

#include "session/TextProcs.h"

namespace kav::controls {

// The Jalali (Persian solar) calendar every date box uses.
QCalendar JalaliCalendar();

// Reads a Jalali date text "y/m/d". Each of the three fields is read as a whole number after
// trimming its blanks, so "1403/1/5", "1403/010/01" and " 1404/ 1/ 31" are all readable. The
// month must be 1 to 12 and the day at least 1; a day past the end of the month is clamped to
// the month's last day (1404/12/30 reads as 1404/12/29, 1403/07/31 as 1403/07/30). A text that
// is not readable gives an invalid QDate.
QDate ParseFarsiDate(const QString& text);

// True when the text names a day exactly as written: readable, and the day not clamped.
bool IsExactFarsiDate(const QString& text);

// The zero-padded text "yyyy/mm/dd" of a date; the empty text for an invalid date.
QString FarsiDateText(const QDate& date);

}  // namespace kav::controls
