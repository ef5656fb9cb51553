// The arithmetic of the loan terms and dates without a window.

#include <gtest/gtest.h>

#include "base/Errors.h"
#include "loan_editor/LoanDates.h"
#include "loan_editor/LoanTerms.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::loan;

namespace {

// The amount as displayed (its value: without the "/"), the count, the first-instalment date
// and the monthly instalment.
TermsFields fields(const QString& amount, const QString& count, const QString& begin = {},
                   const QString& perMonth = {}) {
    TermsFields f;
    f.loanValueText = amount;
    f.loanValueValue = QString(amount).remove(u'/');
    f.payBackNumber = count;
    f.beginDate = begin;
    f.perMonthText = f.perMonthValue = perMonth;
    return f;
}

// An update as "instalment|remainder|options|settlement|count", "-" for what it leaves alone.
QString Text(const TermsUpdate& u) {
    const auto text = [](const std::optional<QString>& s) { return s.value_or(u"-"_s); };
    const auto& on = u.remainderOptionsEnabled;
    return QStringList{text(u.perMonth), text(u.rem),
                       !on   ? u"-"_s
                       : *on ? u"on"_s
                             : u"off"_s,
                       text(u.endDate), text(u.payBackNumber)}
        .join(u'|');
}

// Leaving the count after entering the box empty.
TermsUpdate leaveCount(const TermsFields& f) {
    return PayBackNumberLeft(f, PayBackNumberGotFocus({}));
}

KavError::Kind kindOf(const TermsUpdate& u) {
    return test::RaisedKind([&] {
        if (u.error) std::rethrow_exception(u.error);
    });
}

}  // namespace

TEST(LeavingCount, GivesInstalmentRemainderOptionsAndSettlement) {
    struct Case {
        QString amount, count, begin, update;
    };
    const Case cases[] = {
        {u"1/000/000"_s, u"3"_s, {}, u"333333|1|on|-|-"_s},
        {u"900"_s, u"3"_s, {}, u"300|0|off|-|-"_s},
        {u"1000"_s, u"12"_s, u"1403/02/15"_s, u"83|4|on| 1404/ 1/ 31|-"_s},
        // Halves round to even in the modulo and the settlement date: 2.5 -> 2, 3.5 -> 4,
        // 10.5 -> 10, 11.5 -> 12; the instalment is Int(amount / count).
        {u"9"_s, u"2.5"_s, u"1403/01/10"_s, u"3|1.5|on| 1403/ 2/ 31|-"_s},
        {u"8"_s, u"3.5"_s, u"1403/01/10"_s, u"2|1|off| 1403/ 4/ 31|-"_s},
        {u"10.5"_s, u"5"_s, {}, u"2|0.5|off|-|-"_s},
        {u"11.5"_s, u"4"_s, {}, u"2|3.5|off|-|-"_s},
        {u"-9"_s, u"4.5"_s, {}, u"-2|0|on|-|-"_s},
        // Any amount the currency holds, in 64 bits; Persian digits as the digits they are.
        {u"922/337/203/685/476"_s, u"7"_s, {}, u"131762457669353|5|on|-|-"_s},
        {u"1000000"_s, u"۳"_s, u"1403/01/10"_s, u"333333|1|on| 1403/ 3/ 31|-"_s},
        // Without a first-instalment date there is no settlement date to overflow.
        {u"1000"_s, u"40000"_s, {}, u"0|1000|on|-|-"_s},
    };
    for (const Case& c : cases) {
        const TermsUpdate u = leaveCount(fields(c.amount, c.count, c.begin));
        EXPECT_EQ(Text(u), c.update) << c.amount.toStdString() << " / " << c.count.toStdString();
        EXPECT_FALSE(u.error);
    }
}

TEST(LeavingCount, AnUnchangedNumberRecomputesNothing) {
    // The amount changed meanwhile; the count did not (3.00 and ۳ are the same number).
    for (const QString& same : {u"3.00"_s, u"۳"_s})
        EXPECT_TRUE(PayBackNumberLeft(fields(u"5000"_s, same, u"1403/01/10"_s),
                                      PayBackNumberGotFocus(u"3"_s))
                        .isEmpty());
    EXPECT_FALSE(
        PayBackNumberLeft(fields(u"5000"_s, u"4"_s), PayBackNumberGotFocus(u"3"_s)).isEmpty());
}

TEST(LeavingCount, AnErrorComesAfterWhatTheStepsBeforeItComputed) {
    // Reads as 0.4 but rounds to 0 in the modulo, the last step: the settlement date, the
    // instalment and the remainder are computed before it.
    const TermsUpdate zero = leaveCount(fields(u"1000"_s, u"0.4"_s, u"1403/01/10"_s));
    EXPECT_EQ(kindOf(zero), KavError::Kind::DivisionByZero);
    EXPECT_EQ(Text(zero), u"2500|0|-| 1402/ 12/ 29|-"_s);  // Esfand before the first month
    // "12abc" reads as 12 but is no number for the modulo.
    const TermsUpdate letters = leaveCount(fields(u"1000"_s, u"12abc"_s));
    EXPECT_EQ(kindOf(letters), KavError::Kind::TypeMismatch);
    EXPECT_EQ(letters.perMonth, u"83"_s);
    // The settlement date, the first step, rounds the count to 16 bits: nothing is computed.
    EXPECT_EQ(test::RaisedKind([] { leaveCount(fields(u"1000"_s, u"40000"_s, u"1403/01/10"_s)); }),
              KavError::Kind::Overflow);
}

TEST(LeavingPerMonth, GivesTheCountRemainderAndSettlementDate) {
    const TermsFields f = fields(u"1000"_s, {}, u"1403/01/10"_s, u"300"_s);
    EXPECT_EQ(Text(PerMonthLeft(f, PerMonthGotFocus({}))), u"-|100|-| 1403/ 3/ 31|3"_s);
    EXPECT_TRUE(PerMonthLeft(f, PerMonthGotFocus(u"300"_s)).isEmpty());
    // Int goes towards minus infinity.
    EXPECT_EQ(Text(PerMonthLeft(fields(u"-1000"_s, {}, {}, u"300"_s), {})), u"-|200|-|-|-4"_s);
    // A zero instalment computes no count, but the count already there dates the settlement.
    EXPECT_EQ(Text(PerMonthLeft(fields(u"1000"_s, u"2"_s, u"1403/01/10"_s, u"0"_s),
                                PerMonthGotFocus(u"300"_s))),
              u"-|-|-| 1403/ 2/ 31|-"_s);
}

TEST(LeavingAmount, WarnsAboveTheCeilingCountsFromTheInstalmentAndRefillsWhenBlank) {
    const Message above{u"هشدار"_s, u"مبلغ درخواستي شما از سقف  وام (1000000) بيشتر شده است."_s};
    EXPECT_FALSE(CeilingWarning(u"1/000/000"_s, 1000000.0));
    EXPECT_EQ(CeilingWarning(u"1/000/001"_s, 1000000.0), above);
    EXPECT_EQ(CeilingWarning(u"1000001"_s, u"1000000.0000"_s), above);
    EXPECT_FALSE(CeilingWarning(u"999999999"_s, QVariant()));
    EXPECT_EQ(test::RaisedKind([] { CeilingWarning(u"1"_s, u"abc"_s); }),
              KavError::Kind::TypeMismatch);
    EXPECT_EQ(CeilingText(QVariant()) + u' ' + CeilingText(2500000.5), u" 2500000.5"_s);
    const TermsUpdate u = LoanValueLeft(fields(u"1/000"_s, {}, {}, u"300"_s), 900.0);
    EXPECT_EQ(Text(u), u"-|100|-|-|3"_s);
    EXPECT_TRUE(u.warning);
    EXPECT_FALSE(u.loanValue);
    TermsFields blank = fields(u"  "_s, {}, {}, u"300"_s);
    blank.originalValueValue = u"5000"_s;
    const TermsUpdate refill = LoanValueLeft(blank, 900.0);
    EXPECT_EQ(refill.loanValue, u"5000"_s);
    EXPECT_EQ(Text(refill), u"-|-|-|-|-"_s);
    EXPECT_FALSE(refill.warning);
    EXPECT_EQ(OriginalValueLeft(blank), u"5000"_s);
}

namespace {

// Flags as '1' and '0' in the order given.
QString flags(std::initializer_list<bool> list) {
    QString s;
    for (const bool b : list) s += b ? u'1' : u'0';
    return s;
}

DateFields dates(const QString& pay, const QString& begin, const QString& end,
                 const QString& count = {}) {
    DateFields f;
    f.loanPayDate = pay;
    f.beginDate = begin;
    f.endDate = end;
    f.payBackNumber = count;
    return f;
}

}  // namespace

TEST(NextMonth, KeepsTheOddPadding) {
    const QString esfand = u"1403/12/10"_s;
    const std::pair<QString, QString> cases[] = {{esfand, u"1404/01/01"_s},
                                                 {u"1403/11/10"_s, u"1403/012/01"_s},
                                                 {u"1403/09/20"_s, u"1403/010/01"_s},
                                                 {u"1403/05/20"_s, u"1403/6/01"_s}};
    for (const auto& [date, next] : cases)
        EXPECT_EQ(getNextMonth(date, esfand), next) << date.toStdString();
    EXPECT_EQ(getNextMonth(u"1403/13/10"_s, u"1403/13/10"_s), QString());
    EXPECT_EQ(getNextMonth(QString(), QString()), QString());
}

// The last instalment is n - 1 months after the first; its day is 31 in the first half, the
// first instalment's own day in month 6, 30 after it and the last day in Esfand.
TEST(SettlementDate, FollowsTheCalendar) {
    const std::tuple<int, int, int, int, QString> cases[] = {
        {1, 1403, 1, 10, u" 1403/ 1/ 31"_s},
        {5, 1403, 2, 15, u" 1403/ 6/ 15"_s},
        {7, 1403, 1, 10, u" 1403/ 7/ 30"_s},
        {3, 1402, 11, 10, u" 1403/ 1/ 31"_s},
        {12, 1402, 12, 29, u" 1403/ 11/ 30"_s},
        {36, 1402, 12, 29, u" 1405/ 11/ 30"_s},
        // Esfand has 30 days in 1403 and 1408; 1407 is no leap year although 1407 mod 4 = 3.
        {12, 1402, 1, 10, u" 1402/ 12/ 29"_s},
        {12, 1403, 1, 10, u" 1403/ 12/ 30"_s},
        {24, 1406, 1, 10, u" 1407/ 12/ 29"_s},
        {12, 1408, 1, 10, u" 1408/ 12/ 30"_s}};
    for (const auto& [n, year, month, day, last] : cases)
        EXPECT_EQ(EndDateText(n, year, month, day), last) << year << '/' << month << " x" << n;
}

TEST(SettlementDate, RoundsTheCountByCaller) {
    EXPECT_EQ(RoundCount(u"32768"_s, CountWidth::Int32), 32768);
    EXPECT_EQ(RoundCount(u"\u0661\u0662"_s, CountWidth::Int32), 12);  // Arabic-Indic digits
    EXPECT_EQ(test::RaisedKind([] { RoundCount(u"32768"_s, CountWidth::Int16); }),
              KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { RoundCount(u"abc"_s, CountWidth::Int32); }),
              KavError::Kind::TypeMismatch);
    EXPECT_EQ(test::RaisedKind([] { EndDateText(40000, 1403, 1, 1); }), KavError::Kind::Overflow);
}

TEST(DateOrder, PayDateClearsLaterDatesSilentlyFirstInstalmentWarnsSettlementIsDerived) {
    const auto pay = [](const DateFields& f) {  // clear first instalment, focus type, clear end
        const PayDateChange r = LoanPayDateChanged(f);
        return flags({r.clearBeginDate, r.focusLoanType, r.clearEndDate});
    };
    EXPECT_EQ(pay(dates(u"1403/05/10"_s, u"1403/05/09"_s, u"1403/05/10"_s)), u"111"_s);
    EXPECT_EQ(pay(dates(u"1403/09/30"_s, QString(), u"1403/10/01"_s)), u"000"_s);
    // Warning, then clear and focus the first instalment, clear the end, and the derived end.
    const auto begin = [](const DateFields& f) {
        const BeginDateChange r = BeginDateChanged(f);
        return (r.warning ? r.warning->title + u": "_s + r.warning->text : u"-"_s) + u'|' +
               flags({r.clearBeginDate, r.focusBeginDate, r.clearEndDate}) + u'|' +
               r.endDate.value_or(u"-"_s);
    };
    EXPECT_EQ(begin(dates(u"1403/05/10"_s, u"1403/05/09"_s, QString(), u"12"_s)),
              u"اشکال: تاريخ شروع قسط نبايد قبل از تاريخ پرداخت باشد.|110|-"_s);
    EXPECT_EQ(begin(dates(u"1403/05/10"_s, u"1403/07/01"_s, u"1403/07/01"_s, u"12"_s)),
              u"اشکال: تاريخ شروع قسط نبايد بعد از تاريخ پرداخت باشد.|001|-"_s);
    EXPECT_EQ(begin(dates(u"1403/05/10"_s, u"1403/05/10"_s, u"1403/07/01"_s, u"3"_s)),
              u"-|000| 1403/ 7/ 30"_s);
    const auto end = [](const DateFields& f) {  // cleared, or the derived end
        const EndDateChange r = EndDateChanged(f);
        return flags({r.clearEndDate}) + u'|' + r.endDate.value_or(u"-"_s);
    };
    EXPECT_EQ(end(dates(u"1403/05/10"_s, u"1403/06/10"_s, u"1403/06/10"_s)), u"1|-"_s);
    EXPECT_EQ(end(dates(u"1403/05/10"_s, u"1403/06/10"_s, u"1404/01/01"_s, u"2.5"_s)),
              u"0| 1403/ 7/ 30"_s);
    // Leaving a date box recomputes only when its date changed since it got the focus.
    const QDate at(2024, 8, 1);
    const DateFields big = dates(QString(), u"1403/01/10"_s, QString(), u"40000"_s);
    EXPECT_FALSE(BeginDateLeft(at, at, big));
    EXPECT_EQ(test::RaisedKind([&] { BeginDateLeft(at.addDays(1), at, big); }),
              KavError::Kind::Overflow);
    DateFields f = dates(QString(), u"1403/06/10"_s, u"1403/09/01"_s, u"4"_s);
    f.loanValueText = u"1/000"_s;
    f.perMonthText = u"250"_s;
    EXPECT_FALSE(EndDateLeft(at, at, f).runPayBackNumberLeft);
    const EndDateLeave left = EndDateLeft(at.addDays(3), at, f);
    EXPECT_EQ(flags({left.runPayBackNumberLeft}) + left.endDate.value_or(u"-"_s),
              u"1 1403/ 9/ 30"_s);
}
