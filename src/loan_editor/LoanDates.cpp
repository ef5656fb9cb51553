#include "loan_editor/LoanDates.h"

#include <QCalendar>
#include <QStringList>

#include "base/Errors.h"
#include "loan_editor/LoanEditorTexts.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::loan {

namespace {

QString faultTitle() { return editor_texts::TroubleTitle; }

// A date box holds a date when its farsidate text is not empty.
bool isSet(const QString& farsidate) { return !farsidate.trimmed().isEmpty(); }

// A part of a date is a 16-bit number; the conversion raises the overflow error outside it.
qint64 datePart(qint64 value) { return vb::CInt(double(value)); }

struct DayParts {
    int year = 0;
    int month = 0;
    int day = 0;
};

// The year, month and day of a farsidate text "yyyy/mm/dd".
DayParts parseFarsiDate(const QString& farsidate) {
    const QStringList parts = farsidate.trimmed().split(u'/');
    DayParts p;
    bool ok = parts.size() == 3;
    if (ok) p.year = parts[0].toInt(&ok);
    if (ok) p.month = parts[1].toInt(&ok);
    if (ok) p.day = parts[2].toInt(&ok);
    if (!ok)
        throw KavError(KavError::Kind::Usage,
                       u"تاريخ «%1» به صورت سال/ماه/روز نيست."_s.arg(farsidate));
    return p;
}

}  // namespace

QString getNextMonth(const QString& date, const QString& defaultPayDate) {
    // The month sits in the two characters after "yyyy/".
    const double month = vb::Val(date.mid(5, 2));
    if (month < 1) return {};
    if (month <= 8) return date.left(5) + vb::CStr(month + 1) + u"/01"_s;
    if (month <= 11) return date.left(5) + u'0' + vb::CStr(month + 1) + u"/01"_s;
    if (vb::Val(defaultPayDate.mid(5, 2)) == 12)
        return vb::CStr(vb::Val(date.left(4)) + 1) + u"/01/01"_s;
    return {};
}

qint32 RoundCount(const QString& countText, CountWidth width) {
    const QString count = LatinDigits(countText);
    if (width == CountWidth::Int16) return vb::CInt(count);
    return vb::CLng(count);
}

QString EndDateText(qint32 n, int y, int m, int d) {
    qint64 year = datePart(y);
    qint64 month = datePart(qint64(m) + n);
    qint64 day = datePart(d);
    if (month > 12) {
        if (month % 12 != 0) {
            year = datePart(year + month / 12);
            month = month % 12;
        } else {
            year = datePart(year + month / 12 - 1);
            month = 12;
        }
    }
    // The last instalment falls n - 1 months after the first.
    month = datePart(month - 1);
    if (month == 0) {
        month = 12;
        year = datePart(year - 1);
        // The last day of Esfand: 30 in the calendar's leap years, else 29.
        const int esfand = QCalendar(QCalendar::System::Jalali).daysInMonth(12, int(year));
        day = esfand > 0 ? esfand : 29;
    }
    // Month 6 keeps the first instalment's day; Esfand keeps the day chosen above.
    if (month > 6 && month != 12)
        day = 30;
    else if (month < 6)
        day = 31;
    return vb::Str(double(year)) + u'/' + vb::Str(double(month)) + u'/' + vb::Str(double(day));
}

QString EndDateFromCount(const QString& countText, CountWidth width, const QString& beginDate) {
    const qint32 n = RoundCount(countText, width);
    const DayParts begin = parseFarsiDate(beginDate);
    return EndDateText(n, begin.year, begin.month, begin.day);
}

PayDateChange LoanPayDateChanged(const DateFields& f) {
    PayDateChange r;
    if (isSet(f.beginDate) && f.beginDate < f.loanPayDate) {
        r.clearBeginDate = true;
        r.focusLoanType = true;
    }
    if (isSet(f.endDate) && f.endDate <= f.loanPayDate) r.clearEndDate = true;
    return r;
}

BeginDateChange BeginDateChanged(const DateFields& f) {
    BeginDateChange r;
    // A first-instalment date emptied by hand is before and after nothing.
    if (!isSet(f.beginDate)) return r;
    if (isSet(f.loanPayDate) && f.beginDate < f.loanPayDate) {
        r.warning = Message{faultTitle(), editor_texts::BeginBeforePayWarning};
        r.clearBeginDate = true;
        r.focusBeginDate = true;
        return r;
    }
    if (isSet(f.endDate) && f.beginDate >= f.endDate) {
        // Tested against the settlement date; the wording speaks of the payment date.
        r.warning = Message{faultTitle(), editor_texts::BeginAfterEndWarning};
        r.clearEndDate = true;
        return r;
    }
    if (!f.payBackNumber.isEmpty())
        r.endDate = EndDateFromCount(f.payBackNumber, CountWidth::Int32, f.beginDate);
    return r;
}

std::optional<QString> BeginDateLeft(const QDate& englishDate, const QDate& atFocus,
                                     const DateFields& f) {
    if (englishDate == atFocus || f.payBackNumber.isEmpty() || !isSet(f.beginDate)) return {};
    return EndDateFromCount(f.payBackNumber, CountWidth::Int32, f.beginDate);
}

EndDateChange EndDateChanged(const DateFields& f) {
    EndDateChange r;
    if (isSet(f.endDate)) {
        if (isSet(f.loanPayDate) && f.endDate <= f.loanPayDate) r.clearEndDate = true;
        if (isSet(f.beginDate) && f.endDate <= f.beginDate) r.clearEndDate = true;
    }
    // While a count and a first instalment exist, the settlement date is always the derived one.
    if (!f.payBackNumber.isEmpty() && isSet(f.beginDate))
        r.endDate = EndDateFromCount(f.payBackNumber, CountWidth::Int16, f.beginDate);
    return r;
}

EndDateLeave EndDateLeft(const QDate& englishDate, const QDate& atFocus, const DateFields& f) {
    EndDateLeave r;
    if (englishDate == atFocus) return r;
    const bool beginSet = isSet(f.beginDate);
    r.runPayBackNumberLeft = !f.loanValueText.trimmed().isEmpty() &&
                             !f.perMonthText.trimmed().isEmpty() &&
                             AmountValue(f.perMonthText) != 0 && beginSet;
    if (!f.payBackNumber.isEmpty() && beginSet)
        r.endDate = EndDateFromCount(f.payBackNumber, CountWidth::Int16, f.beginDate);
    return r;
}

}  // namespace kav::loan
