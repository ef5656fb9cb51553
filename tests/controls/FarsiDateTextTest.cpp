#include <gtest/gtest.h>

#include "controls/FarsiDateText.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

QString normalised(const QString& text) { return FarsiDateText(ParseFarsiDate(text)); }

}  // namespace

TEST(FarsiDateText, ReadsEachFieldAsANumber) {
    EXPECT_EQ(normalised(u"1403/05/09"_s), u"1403/05/09"_s);
    EXPECT_EQ(normalised(u"1403/6/1"_s), u"1403/06/01"_s);     // unpadded
    EXPECT_EQ(normalised(u"1403/010/01"_s), u"1403/10/01"_s);  // three digits
    EXPECT_EQ(normalised(u"1403/012/01"_s), u"1403/12/01"_s);
    EXPECT_EQ(normalised(u" 1404/ 1/ 31"_s), u"1404/01/31"_s);  // a blank before each number
    EXPECT_EQ(normalised(u"۱۴۰۳/۰۲/۱۵"_s), u"1403/02/15"_s);    // Persian digits
}

TEST(FarsiDateText, UnreadableTextsGiveNoDate) {
    for (const QString& text :
         {u""_s, u"1403/13/01"_s, u"1403/00/10"_s, u"1403/01/00"_s, u"1403/01"_s, u"1403-01-01"_s,
          u"abcd/01/01"_s, u"1403/1 2/01"_s, u"1403/01/01/01"_s})
        EXPECT_FALSE(ParseFarsiDate(text).isValid()) << qPrintable(text);
    EXPECT_EQ(FarsiDateText(QDate()), QString());
}

TEST(FarsiDateText, AgreesWithTheGregorianCalendar) {
    EXPECT_EQ(ParseFarsiDate(u"1403/01/01"_s), QDate(2024, 3, 20));
    EXPECT_EQ(ParseFarsiDate(u"1404/01/01"_s), QDate(2025, 3, 21));
    EXPECT_EQ(ParseFarsiDate(u"1403/12/30"_s), QDate(2025, 3, 20));  // 1403 is a leap year
    EXPECT_EQ(FarsiDateText(QDate(2024, 3, 19)), u"1402/12/29"_s);
    EXPECT_EQ(FarsiDateText(QDate(2024, 9, 22)), u"1403/07/01"_s);
}

// A typed date is taken exactly or not at all; a stored one past its month's end reads as
// the month's last day.
TEST(FarsiDateText, ADayPastTheMonthsEndIsNoDateUnlessStored) {
    struct Case {
        QString text, stored;
    };
    for (const Case& c :
         {Case{u"1404/12/30"_s, u"1404/12/29"_s}, Case{u"1403/07/31"_s, u"1403/07/30"_s},
          Case{u"1403/01/99"_s, u"1403/01/31"_s}}) {
        EXPECT_FALSE(ParseFarsiDate(c.text).isValid()) << qPrintable(c.text);
        EXPECT_EQ(FarsiDateText(ParseStoredFarsiDate(c.text)), c.stored);
    }
    EXPECT_EQ(normalised(u"1403/06/31"_s), u"1403/06/31"_s);  // the first half has 31 days
    EXPECT_EQ(FarsiDateText(ParseStoredFarsiDate(u" 1408/ 12/ 30"_s)), u"1408/12/30"_s);
    for (const QString& text : {u"1403/13/01"_s, u"1403/00/10"_s, u"1403/01/00"_s})
        EXPECT_FALSE(ParseStoredFarsiDate(text).isValid()) << qPrintable(text);
}
