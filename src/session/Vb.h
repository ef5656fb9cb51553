#pragma once

// The conversions of the classic runtime the suite was written for, each written once:
// every window reads numbers from texts and rounds them exactly this way.

#include <QString>
#include <QtGlobal>
#include <compare>

namespace kav::vb {

// The leading number of a text: blanks are skipped, an optional sign, digits, a point and
// digits, an optional exponent. "12abc" is 12, "abc" is 0, "" is 0.
double Val(const QString& text);

// True when the whole text (after trimming) is a number that CDbl/CCur would accept.
bool IsNumeric(const QString& text);

// Whole-number conversions: to nearest, halves to even (2.5 -> 2, 3.5 -> 4); a value out of
// range raises the overflow error.
qint16 CInt(double value);
qint32 CLng(double value);
// The same from a text; a text that is not a number raises the type-mismatch error.
qint16 CInt(const QString& text);
qint32 CLng(const QString& text);

// Int: the greatest whole number not above the value (towards minus infinity).
double Int(double value);

// Str: a number as text with a blank before a non-negative number ("5" -> " 5", -5 -> "-5").
QString Str(double value);
// CStr of a number: the plain decimal text without a leading blank (1234.5 -> "1234.5").
QString CStr(double value);

// The 64-bit fixed-point currency type with four decimal places.
class Currency {
public:
    static constexpr qint64 Scale = 10000;

    constexpr Currency() = default;
    static constexpr Currency fromRaw(qint64 raw) {
        Currency c;
        c.raw_ = raw;
        return c;
    }
    // Rounds to four decimals, halves to even; out of range raises the overflow error.
    static Currency fromDouble(double value);

    constexpr qint64 raw() const { return raw_; }
    double toDouble() const { return double(raw_) / double(Scale); }
    // Plain decimal text without grouping or trailing zeros: "333333", "12.5", "-0.25".
    QString toString() const;

    friend constexpr auto operator<=>(Currency, Currency) = default;
    friend Currency operator+(Currency a, Currency b);
    friend Currency operator-(Currency a, Currency b);

private:
    qint64 raw_ = 0;
};

// CCur: a number as currency. From a text: the text must be a number (after trimming),
// otherwise the type-mismatch error.
Currency CCur(double value);
Currency CCur(const QString& text);

// CDbl of a text: the type-mismatch error for a text that is not a number.
double CDbl(const QString& text);

}  // namespace kav::vb
