#pragma once

// The shared text and number procedures every window uses.

#include <QByteArrayView>
#include <QString>
#include <QVariant>
#include <array>

#include "session/Vb.h"

namespace kav {

// Persian (U+06F0..U+06F9) and Arabic-Indic (U+0660..U+0669) digits as Latin digits; every
// other character is kept. Every box where a number or a date is typed reads through it.
QString LatinDigits(const QString& text);

// A database field as a window shows it: Null is the empty text, a floating-point number its
// plain decimal text (CStr), anything else its text.
QString FieldText(const QVariant& value);

// Doubles every apostrophe so the text can stand between single quotes in SQL.
QString SqlQuote(const QString& text);

// A Persian date text as a number: "1402/05/12" -> 14020512 (currency, four decimals).
// A text that is no number after removing the slashes raises the type-mismatch error.
vb::Currency DateDigits(const QString& text);

// Groups the whole-number digits of a value by threes with "/": up to four digits stay as
// they are; 12345 -> 12/345, 1234567 -> 1/234/567. A sign and a fraction are kept:
// -150000 -> -150/000, 1500.5 -> 1500.5, 12345.5 -> 12/345.5. A text that does not start
// with a number comes back as given.
QString GroupDigits(const QVariant& value);
// The same of an amount's plain text (GroupDigits(amount.toString())) written as UTF-8 into
// the buffer, for filling large grids without a text per cell. Returns the text in the buffer.
QByteArrayView GroupedAmountUtf8(vb::Currency amount, std::array<char, 40>& buffer);

// A grid cell, check mark or Persian date as a comparable number. Never fails: blanks give
// the 16-bit -1, the exact text "True" the 16-bit 1, anything else the leading number of the
// text with every "/" removed, as a double.
QVariant CellNumber(const QString& text);

// Reads an amount as a number: the group separators are removed first, so the grouped
// display text and the plain value text read the same. The leading number, 0 for none.
double AmountValue(const QString& text);
// The same as currency; a text that is not a number (after removing separators) raises the
// type-mismatch error. An empty text is the type-mismatch error too.
vb::Currency AmountCurrency(const QString& text);

// What a box says of an amount typed beyond the largest the module keeps (the currency
// range): the amount as typed, the box by its caption and the largest amount allowed.
QString AmountBeyondRangeText(const QString& typed, const QString& boxCaption);

}  // namespace kav
