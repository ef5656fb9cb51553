#pragma once

// The loan's three Jalali dates: the order rules between the payment, first-instalment and
// settlement dates, the settlement date derived from the first instalment and the count, and
// the month stepping that proposes a first-instalment date. No widget here: the editor hands
// in the texts of its controls and applies what comes back.
//
// Dates are the controls' farsidate texts, zero-padded "yyyy/mm/dd", empty when no date is
// set; two dates are ordered by comparing these texts as strings.

#include <QDate>
#include <QString>
#include <QtGlobal>
#include <optional>

namespace kav::loan {

// A message to show, as data: the editor passes it to ShowMessage.
struct Message {
    QString title;
    QString text;
    friend bool operator==(const Message&, const Message&) = default;
};

// The first day of the month after the month of `date`, with the padding the date control
// reads back correctly: "1403/05/20" -> "1403/6/01", "1403/09/20" -> "1403/010/01",
// Esfand -> "1404/01/01". After month 11 the month is read from `defaultPayDate` (at the only
// call both are DefaultPayDate); a month that is not 12 there, or a month below 1, gives "".
QString getNextMonth(const QString& date, const QString& defaultPayDate);

// How a handler rounds the instalment count before deriving the settlement date: the
// instalment-count and settlement-date handlers as a 16-bit number, the monthly-instalment and
// first-instalment handlers as a 32-bit number.
enum class CountWidth { Int16, Int32 };

// The count in `countText` rounded to a whole number, halves to even; Persian and
// Arabic-Indic digits read as the digits they are. A text that is not a number raises the
// type-mismatch error; a count out of the width's range the overflow error.
qint32 RoundCount(const QString& countText, CountWidth width);

// The settlement date for n instalments whose first falls in month m of year y on day d:
// the month n - 1 months later; day 31 in months 1-5, 30 in months 7-11, day d kept in month 6,
// and in Esfand its last day in the Jalali calendar (30 in a leap year such as 1403 or 1408,
// else 29). Each part is written with a blank
// before a non-negative number and no padding: (12, 1403, 2, 15) -> " 1404/ 1/ 31".
// The parts of a date are 16-bit numbers: leaving that range raises the overflow error.
QString EndDateText(qint32 n, int y, int m, int d);

// EndDateText from the count text (rounded by `width`) and a first-instalment farsidate.
QString EndDateFromCount(const QString& countText, CountWidth width, const QString& beginDate);

// What the date handlers read.
struct DateFields {
    QString loanPayDate;    // datLoanPayDate farsidate ("" when empty)
    QString beginDate;      // datBeginDate farsidate
    QString endDate;        // datEndDate farsidate
    QString payBackNumber;  // txtPayBackNumber text
    QString loanValueText;  // txtLoanValue displayed text (read when the settlement date is left)
    QString perMonthText;   // TxtPerMonth displayed text (idem)
};

// The payment date was changed.
struct PayDateChange {
    bool clearBeginDate = false;
    bool focusLoanType = false;  // after clearing the first-instalment date
    bool clearEndDate = false;
};
PayDateChange LoanPayDateChanged(const DateFields& f);

// The first-instalment date was changed.
struct BeginDateChange {
    std::optional<Message> warning;  // with the fault title
    bool clearBeginDate = false;
    bool focusBeginDate = false;
    bool clearEndDate = false;
    std::optional<QString> endDate;  // the derived settlement date to write
};
BeginDateChange BeginDateChanged(const DateFields& f);

// The first-instalment date lost the focus; `atFocus` is its englishdate at got-focus.
// Returns the derived settlement date to write, if any.
std::optional<QString> BeginDateLeft(const QDate& englishDate, const QDate& atFocus,
                                     const DateFields& f);

// The settlement date was changed: clear it when it is not after the payment or first-instalment
// date, then replace it by the derived date when a count and a first-instalment date exist.
struct EndDateChange {
    bool clearEndDate = false;
    std::optional<QString> endDate;
};
EndDateChange EndDateChanged(const DateFields& f);

// The settlement date lost the focus; `atFocus` is its englishdate at got-focus.
struct EndDateLeave {
    // Run the instalment-count lost-focus handler, exactly as it is (its own guard included).
    bool runPayBackNumberLeft = false;
    // Then write this derived settlement date.
    std::optional<QString> endDate;
};
EndDateLeave EndDateLeft(const QDate& englishDate, const QDate& atFocus, const DateFields& f);

}  // namespace kav::loan
