#include <gtest/gtest.h>

#include <QCalendar>
#include <map>

#include "base/Errors.h"
#include "loan_editor/LoanDates.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::loan;

namespace {

const QString FaultTitle = u"اشکال"_s;

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
    EXPECT_EQ(getNextMonth(esfand, esfand), u"1404/01/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/11/10"_s, esfand), u"1403/012/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/09/20"_s, esfand), u"1403/010/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/08/10"_s, esfand), u"1403/9/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/05/20"_s, esfand), u"1403/6/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/01/10"_s, esfand), u"1403/2/01"_s);
    EXPECT_EQ(getNextMonth(u"1403/13/10"_s, u"1403/13/10"_s), QString());
    EXPECT_EQ(getNextMonth(QString(), QString()), QString());
}

// The last instalment is n - 1 calendar months after the first; its day follows the fixed
// month lengths, month 6 keeping the first instalment's day, Esfand its last day.
TEST(SettlementDate, FollowsTheCalendarForEveryCountAndMonth) {
    // The length of Esfand: 1403 and 1408 are leap years, 1407 is not although 1407 mod 4 = 3.
    const std::map<int, int> esfand{{1402, 29}, {1403, 30}, {1404, 29}, {1405, 29}, {1406, 29},
                                    {1407, 29}, {1408, 30}, {1409, 29}, {1410, 29}};
    const QCalendar jalali(QCalendar::System::Jalali);
    for (int year : {1402, 1403, 1406, 1407}) {
        for (int first = 1; first <= 12; ++first) {
            for (int day : {10, 29}) {
                for (int n = 1; n <= 36; ++n) {
                    const QDate last =
                        jalali.dateFromParts(year, first, 1).addMonths(n - 1, jalali);
                    const QCalendar::YearMonthDay p = jalali.partsFromDate(last);
                    const int expectedDay = p.month == 6    ? day
                                            : p.month == 12 ? esfand.at(p.year)
                                            : p.month > 6   ? 30
                                                            : 31;
                    EXPECT_EQ(EndDateText(n, year, first, day),
                              u" %1/ %2/ %3"_s.arg(p.year).arg(p.month).arg(expectedDay))
                        << year << '/' << first << '/' << day << " x" << n;
                }
            }
        }
    }
    EXPECT_EQ(EndDateText(12, 1408, 1, 10), u" 1408/ 12/ 30"_s);
    EXPECT_EQ(EndDateText(12, 1407, 1, 10), u" 1407/ 12/ 29"_s);
}

TEST(SettlementDate, RoundsTheCountByCaller) {
    EXPECT_EQ(RoundCount(u"2.5"_s, CountWidth::Int16), 2);
    EXPECT_EQ(RoundCount(u"3.5"_s, CountWidth::Int16), 4);
    EXPECT_EQ(RoundCount(u"32768"_s, CountWidth::Int32), 32768);
    EXPECT_EQ(test::RaisedKind([] { RoundCount(u"32768"_s, CountWidth::Int16); }),
              KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { RoundCount(u"abc"_s, CountWidth::Int32); }),
              KavError::Kind::TypeMismatch);
    EXPECT_EQ(test::RaisedKind([] { EndDateText(40000, 1403, 1, 1); }), KavError::Kind::Overflow);
    EXPECT_EQ(EndDateFromCount(u"12"_s, CountWidth::Int32, u"1403/02/15"_s), u" 1404/ 1/ 31"_s);
    // Persian and Arabic-Indic digits count as the digits they are.
    EXPECT_EQ(RoundCount(u"\u06F1\u06F2"_s, CountWidth::Int16), 12);
    EXPECT_EQ(RoundCount(u"\u0661\u0662"_s, CountWidth::Int32), 12);
    const DateFields persian = dates(QString(), u"1403/02/15"_s, QString(), u"\u06F1\u06F2"_s);
    EXPECT_EQ(EndDateChanged(persian).endDate, u" 1404/ 1/ 31"_s);
    EXPECT_EQ(BeginDateChanged(persian).endDate, u" 1404/ 1/ 31"_s);
}

TEST(DateOrder, PayDateClearsLaterDatesSilently) {
    PayDateChange r = LoanPayDateChanged(dates(u"1403/05/10"_s, u"1403/05/09"_s, u"1403/05/10"_s));
    EXPECT_TRUE(r.clearBeginDate);
    EXPECT_TRUE(r.focusLoanType);
    EXPECT_TRUE(r.clearEndDate);  // not after the payment date
    r = LoanPayDateChanged(dates(u"1403/05/10"_s, u"1403/05/10"_s, u"1403/05/11"_s));
    EXPECT_FALSE(r.clearBeginDate || r.focusLoanType || r.clearEndDate);
    r = LoanPayDateChanged(dates(u"1403/09/30"_s, QString(), u"1403/10/01"_s));
    EXPECT_FALSE(r.clearBeginDate || r.clearEndDate);
}

TEST(DateOrder, FirstInstalmentWarnsAndStopsOrDerivesTheSettlement) {
    BeginDateChange r =
        BeginDateChanged(dates(u"1403/05/10"_s, u"1403/05/09"_s, QString(), u"12"_s));
    EXPECT_EQ(r.warning,
              (Message{FaultTitle, u"تاريخ شروع قسط نبايد قبل از تاريخ پرداخت باشد."_s}));
    EXPECT_TRUE(r.clearBeginDate && r.focusBeginDate);
    EXPECT_FALSE(r.clearEndDate || r.endDate);

    r = BeginDateChanged(dates(u"1403/05/10"_s, u"1403/07/01"_s, u"1403/07/01"_s, u"12"_s));
    EXPECT_EQ(r.warning,
              (Message{FaultTitle, u"تاريخ شروع قسط نبايد بعد از تاريخ پرداخت باشد."_s}));
    EXPECT_TRUE(r.clearEndDate);
    EXPECT_FALSE(r.clearBeginDate || r.focusBeginDate || r.endDate);

    r = BeginDateChanged(dates(u"1403/05/10"_s, u"1403/05/10"_s, u"1403/07/01"_s, u"3"_s));
    EXPECT_FALSE(r.warning);
    EXPECT_EQ(r.endDate, u" 1403/ 7/ 30"_s);
    EXPECT_FALSE(BeginDateChanged(dates(u"1403/05/10"_s, QString(), QString(), u"3"_s)).warning);

    const QDate at(2024, 8, 1);
    const DateFields f = dates(QString(), u"1403/01/10"_s, QString(), u"40000"_s);
    EXPECT_FALSE(BeginDateLeft(at, at, f));
    EXPECT_EQ(test::RaisedKind([&] { BeginDateLeft(at.addDays(1), at, f); }),
              KavError::Kind::Overflow);
}

TEST(DateOrder, SettlementIsReplacedByTheDerivedDate) {
    EndDateChange r = EndDateChanged(dates(u"1403/05/10"_s, u"1403/06/10"_s, u"1403/06/10"_s));
    EXPECT_TRUE(r.clearEndDate);
    EXPECT_FALSE(r.endDate);
    r = EndDateChanged(dates(u"1403/05/10"_s, u"1403/06/10"_s, u"1404/01/01"_s, u"2.5"_s));
    EXPECT_FALSE(r.clearEndDate);
    EXPECT_EQ(r.endDate, u" 1403/ 7/ 30"_s);

    const QDate at(2024, 8, 1);
    DateFields f = dates(QString(), u"1403/06/10"_s, u"1403/09/01"_s, u"4"_s);
    f.loanValueText = u"1/000"_s;
    f.perMonthText = u"250"_s;
    EXPECT_FALSE(EndDateLeft(at, at, f).runPayBackNumberLeft);
    EndDateLeave left = EndDateLeft(at.addDays(3), at, f);
    EXPECT_TRUE(left.runPayBackNumberLeft);
    EXPECT_EQ(left.endDate, u" 1403/ 9/ 30"_s);
    f.perMonthText = u"0"_s;
    EXPECT_FALSE(EndDateLeft(at.addDays(3), at, f).runPayBackNumberLeft);
}
