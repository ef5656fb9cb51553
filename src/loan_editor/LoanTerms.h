#pragma once

// The arithmetic between the loan amount, the instalment count, the monthly instalment and the
// remainder, the loan type's ceiling and the key filters of the amount boxes. No widget here:
// the editor hands in the texts of its controls as they stand and writes back what comes out.
//
// Amount boxes offer two texts, the displayed text (possibly grouped with "/") and the numeric
// value text; each computation reads the one named on its field. Amounts read as the leading
// number of the text with the group separators removed (0 when there is none).
//
// The steps of a handler run in their order. When a step raises (a count that is not a
// number, an overflow, a count that rounds to 0 in the modulo), what the steps before it
// computed is still written and the error comes after it (TermsUpdate::error); the editor's
// handler boundary shows it. An error in the first step writes nothing.

#include <QString>
#include <QVariant>
#include <exception>
#include <optional>

#include "loan_editor/LoanDates.h"
#include "session/Vb.h"

namespace kav::loan {

// The loan-term fields of the editor, as the controls give them.
struct TermsFields {
    QString originalValueValue;  // txtOriginalValue numeric value text
    QString loanValueText;       // txtLoanValue displayed text
    QString loanValueValue;      // txtLoanValue numeric value text
    QString payBackNumber;       // txtPayBackNumber text
    QString perMonthText;        // TxtPerMonth displayed text
    QString perMonthValue;       // TxtPerMonth numeric value text
    QString beginDate;           // datBeginDate farsidate, "" when no date is set
};

// An amount box beyond the currency range stops a rule before it computes: the error names the
// first such box (original amount, amount, instalment) and the largest amount allowed.
void RequireAmountsInRange(const TermsFields& f);

// What a handler writes back; an empty member leaves its control alone.
struct TermsUpdate {
    std::optional<Message> warning;        // shown before the writes
    std::optional<QString> loanValue;      // txtLoanValue
    std::optional<QString> payBackNumber;  // txtPayBackNumber
    std::optional<QString> perMonth;       // TxtPerMonth
    std::optional<QString> rem;            // txtRem
    std::optional<QString> endDate;        // datEndDate farsidate
    // Enables (true) or disables (false) the first-month and last-month options and their
    // heading label. The separate-month option is never enabled or disabled here.
    std::optional<bool> remainderOptionsEnabled;
    // An error raised by a later step: what the earlier steps computed is written first,
    // then the editor raises it.
    std::exception_ptr error;

    bool isEmpty() const {
        return !warning && !loanValue && !payBackNumber && !perMonth && !rem && !endDate &&
               !remainderOptionsEnabled && !error;
    }
};

// The ceiling shown in txtMaxLoanValue for the MaxValue of the chosen type: "" for Null,
// otherwise the value as plain currency text.
QString CeilingText(const QVariant& maxValue);

// The warning for an amount (displayed text) above the ceiling; an amount equal to it passes,
// a Null ceiling never warns. A ceiling that is not a number raises the type-mismatch error.
std::optional<Message> CeilingWarning(const QString& amountText, const QVariant& maxValue);

// Key press in txtLoanValue.
struct LoanValueKey {
    int keyAscii = 0;  // the key to let through; 0 cancels it
    std::optional<Message> warning;
    // Empty txtLoanValue and txtMaxLoanValue, then move the focus to cmbLoanType (ignoring a
    // failure of the focus move).
    bool clearAmountAndFocusType = false;
};
// `mode` is LoanFormMode; outside edit (1) and new (2) every key passes untouched. With no type
// chosen the key is cancelled after the warning, so the box ends empty.
LoanValueKey LoanValueKeyPress(qint32 mode, bool typeSelected, int keyAscii);

// Key press in TxtPerMonth (in every mode): the digits, "." and backspace pass, any other key
// comes back as 0.
int PerMonthKeyPress(int keyAscii);

// Leaving txtOriginalValue: the text to copy into txtLoanValue when that is blank.
std::optional<QString> OriginalValueLeft(const TermsFields& f);

// Got focus: the values the lost-focus handlers compare against.
// payBackNumberAtFocus: the number in txtPayBackNumber (its text).
vb::Currency PayBackNumberGotFocus(const QString& payBackNumber);
// perMonthAtFocus: the numeric value of TxtPerMonth (its value text).
vb::Currency PerMonthGotFocus(const QString& perMonthValue);

// Leaving txtLoanValue: the ceiling warning (`maxValue` is the MaxValue of the chosen type;
// pass a null QVariant when no type is chosen or the type has no row), the count and remainder
// from the monthly instalment, and the refill from txtOriginalValue when the amount is blank.
// The settlement date and the remainder options stay as they are.
TermsUpdate LoanValueLeft(const TermsFields& f, const QVariant& maxValue);

// Leaving txtPayBackNumber: nothing when the number equals payBackNumberAtFocus; otherwise the
// settlement date, the monthly instalment, the remainder and the remainder options.
TermsUpdate PayBackNumberLeft(const TermsFields& f, vb::Currency payBackNumberAtFocus);

// Leaving TxtPerMonth: nothing when the number in its displayed text equals perMonthAtFocus;
// otherwise the count, the remainder and the settlement date.
TermsUpdate PerMonthLeft(const TermsFields& f, vb::Currency perMonthAtFocus);

// txtRem of a loan read from the database: LoanValue - MonthlyValue x PayBackNumber as plain
// decimal text when all three are present, else "".
QString txtRemOnLoad(const QVariant& loanValue, const QVariant& monthlyValue,
                     const QVariant& payBackNumber);

}  // namespace kav::loan
