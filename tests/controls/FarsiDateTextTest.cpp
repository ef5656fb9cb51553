#include <gtest/gtest.h>

#include "controls/FarsiDateText.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

// Each field is read as a number: unpadded, three digits, a blank before it, Persian digits.
TEST(FarsiDateText, ReadsEachFieldAsANumber) {
    struct Case {
        QString text, date;
    };
    for (const Case& c :
         {Case{u"1403/6/1"_s, u"1403/06/01"_s}, Case{u"1403/010/01"_s, u"1403/10/01"_s},
          Case{u" 1404/ 1/ 31"_s, u"1404/01/31"_s}, Case{u"۱۴۰۳/۰۲/۱۵"_s, u"1403/02/15"_s},
          Case{u"1403/06/31"_s, u"1403/06/31"_s}})
        EXPECT_EQ(FarsiDateText(ParseFarsiDate(c.text)), c.date) << qPrintable(c.text);
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
        bool typed;
    };
    for (const Case& c :
         {Case{u"1404/12/30"_s, u"1404/12/29"_s, false},
          Case{u"1403/07/31"_s, u"1403/07/30"_s, false},
          Case{u"1403/01/99"_s, u"1403/01/31"_s, false},
          Case{u" 1408/ 12/ 30"_s, u"1408/12/30"_s, true}, Case{u"1403/13/01"_s, QString(), false},
          Case{u"1403/00/10"_s, QString(), false}}) {
        EXPECT_EQ(ParseFarsiDate(c.text).isValid(), c.typed) << qPrintable(c.text);
        EXPECT_EQ(FarsiDateText(ParseStoredFarsiDate(c.text)), c.stored);
    }
}
