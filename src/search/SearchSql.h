#pragma once

// The loan search's statements and the rules that need no window: the criteria as the clerk
// left them in, the SELECT text built from them, the amount bounds read as numbers, the
// linked from/to dates and the order each header click sorts by.

#include <QString>
#include <QtGlobal>
#include <optional>

#include "data/SqlDialect.h"

namespace kav::search {

// The criteria as the window's controls hold them. Texts are as typed; an empty text (or an
// id of -1, or no type) is no criterion.
struct SearchCriteria {
    bool tempSave = true;   // chkTempSave: temporary loans
    bool finalSave = true;  // chkFinalSave: final loans
    QString notes;
    QString loanValueFrom, loanValueTo;
    std::optional<qint64> loanTypeId;
    qint32 employeeId = -1;
    qint32 supporterId = -1;
    QString paymentDateFrom, paymentDateTo;  // Jalali "yyyy/mm/dd"
    QString beginDateFrom, beginDateTo;
    QString endDateFrom, endDateTo;
    QString perMonthFrom, perMonthTo;
};

// The search text: the base SELECT over vwHRLoanData, then the fragment of every given
// criterion in a fixed order (status, notes, amount, type, employee, guarantor, the three
// date pairs, instalment). An amount bound that is not a number raises KavError
// (TypeMismatch) naming the box; nothing is built. Both dialects get the same text.
QString SearchQuery(const data::SqlDialect& dialect, const SearchCriteria& criteria);

// An amount bound as the statement writes it: the typed text (Persian digits read as digits,
// group separators dropped, the Persian decimal sign read as a point) converted to currency
// and back to text. `box` names the box in the message when the text is not a number.
QString AmountBound(const QString& text, const QString& box);

// The types of loans: the window's type list.
QString LoanTypesQuery();

// A from/to date pair after either box changed: true when both hold a date and the from-date
// is the same as or later than the to-date (compared as Jalali texts), so the to-date is
// cleared.
bool ClearsToDate(const QString& fromDate, const QString& toDate);

// Sorting by a header click. The module remembers the last order of each of 31 columns
// (0-30); columns 1, 4, 6, 9, 10 and 11 sort as numbers (their "/" removed first), the others
// as generic text. Returns the grid's sort code for the click: the column's group ascending,
// or descending when the last order was that group's ascending. A column outside 0-30 raises
// KavError (Usage).
inline constexpr int SortSlots = 31;
bool IsNumericSortColumn(int column);
int NextSortCode(int column, int lastCode);

}  // namespace kav::search
