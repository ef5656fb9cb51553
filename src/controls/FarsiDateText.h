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
// trimming its blanks, so "1403/1/5", "1403/010/01" and " 1404/ 1/ 31" are all readable;
// Persian and Arabic-Indic digits read as the digits they are. A text that is not readable,
// or names a day its month does not have (1404/12/30 in a common year, 1403/07/31, month 13),
// gives an invalid QDate: what the clerk types is taken exactly or not at all.
QDate ParseFarsiDate(const QString& text);

// The same for a date text a program hands in (a stored value): a day past the end of its
// month, as older data may hold (Esfand 30 of a common year), is read as the month's last day
// (1404/12/30 -> 1404/12/29, 1403/07/31 -> 1403/07/30). Month and day must still be at least 1
// and the month at most 12.
QDate ParseStoredFarsiDate(const QString& text);

// The zero-padded text "yyyy/mm/dd" of a date; the empty text for an invalid date.
QString FarsiDateText(const QDate& date);

}  // namespace kav::controls
