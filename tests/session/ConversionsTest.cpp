#include <gtest/gtest.h>

#include <limits>

#include "base/Errors.h"
#include "session/TextProcs.h"
#include "session/Vb.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::vb;

TEST(Conversions, ValReadsTheLeadingNumber) {
    EXPECT_EQ(Val(u"12abc"_s), 12);
    EXPECT_EQ(Val(u"  -3.5 rials"_s), -3.5);
    EXPECT_EQ(Val(u"abc"_s), 0);
    EXPECT_EQ(Val(QString()), 0);
    EXPECT_EQ(Val(u".25"_s), 0.25);
    EXPECT_EQ(Val(u"1 000"_s), 1000);  // blanks between digits are skipped
    EXPECT_EQ(Val(u"1e3x"_s), 1000);
    EXPECT_EQ(Val(u"1403/05/12"_s), 1403);
    EXPECT_EQ(Val(u"1e-999"_s), 0);  // too small: nothing left
    EXPECT_EQ(test::RaisedKind([] { Val(u"1e999"_s); }), KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { CDbl(u"-2E+400"_s); }), KavError::Kind::Overflow);
}

TEST(Conversions, WholeNumbersRoundHalfToEvenAndOverflow) {
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(3.5), 4);
    EXPECT_EQ(CInt(-2.5), -2);
    EXPECT_EQ(CInt(2.500001), 3);
    EXPECT_EQ(CInt(32767.4), 32767);
    EXPECT_EQ(CInt(-32768.0), -32768);
    EXPECT_EQ(test::RaisedKind([] { CInt(32767.5); }), KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { CInt(-32769.0); }), KavError::Kind::Overflow);
    EXPECT_EQ(CLng(2147483647.0), 2147483647);
    EXPECT_EQ(test::RaisedKind([] { CLng(2147483648.0); }), KavError::Kind::Overflow);
    EXPECT_EQ(CInt(u" 12 "_s), 12);
    EXPECT_EQ(test::RaisedKind([] { CInt(u"12a"_s); }), KavError::Kind::TypeMismatch);
    EXPECT_EQ(test::RaisedKind([] { CLng(QString()); }), KavError::Kind::TypeMismatch);
}

TEST(Conversions, IntGoesTowardsMinusInfinityAndStrPutsABlank) {
    EXPECT_EQ(Int(3.99), 3);
    EXPECT_EQ(Int(-3.01), -4);
    EXPECT_EQ(Str(1404), u" 1404"_s);
    EXPECT_EQ(Str(0), u" 0"_s);
    EXPECT_EQ(Str(-5), u"-5"_s);
    EXPECT_EQ(Str(0.5), u" .5"_s);
    EXPECT_EQ(CStr(333333), u"333333"_s);
    EXPECT_EQ(CStr(1234.5), u"1234.5"_s);
}

TEST(Conversions, CurrencyKeepsFourDecimalsExactly) {
    EXPECT_EQ(CCur(u"1234567890123.4567"_s).toString(), u"1234567890123.4567"_s);
    EXPECT_EQ(CCur(u"0.00005"_s).raw(), 0);  // half to even
    EXPECT_EQ(CCur(u"0.00015"_s).raw(), 2);
    EXPECT_EQ(CCur(u"-12.5"_s).toString(), u"-12.5"_s);
    EXPECT_EQ(CCur(1.0 / 3.0).toString(), u"0.3333"_s);
    EXPECT_EQ(test::RaisedKind([] { CCur(u"12/345"_s); }), KavError::Kind::TypeMismatch);
    EXPECT_EQ(test::RaisedKind([] { CCur(u"abc"_s); }), KavError::Kind::TypeMismatch);
    EXPECT_EQ(test::RaisedKind([] { CCur(1e300); }), KavError::Kind::Overflow);
    EXPECT_LT(CCur(u"999"_s), CCur(u"1000"_s));
    EXPECT_EQ(CCur(u"1000"_s), CCur(1000.0));
}

// The ends of the currency range: 922337203685477.5807 and -922337203685477.5808. Past them
// every way of making or adding an amount is the overflow error, never a wrapped amount.
TEST(Conversions, CurrencyOverflowsAtTheEndsOfItsRange) {
    EXPECT_EQ(CCur(u"922337203685477.5807"_s).raw(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(CCur(u"-922337203685477.5808"_s).raw(), std::numeric_limits<qint64>::min());
    EXPECT_EQ(CCur(u"-922337203685477.5808"_s).toString(), u"-922337203685477.5808"_s);
    EXPECT_EQ(CCur(922337203685477.0).toString(), u"922337203685477"_s);
    for (const QString& text :
         {u"922337203685477.5808"_s, u"922337203685477.9"_s, u"922337203685477.58075"_s,
          u"922337203685478"_s, u"-922337203685477.5809"_s, u"99999999999999999999"_s})
        EXPECT_EQ(test::RaisedKind([&] { CCur(text); }), KavError::Kind::Overflow)
            << text.toStdString();
    EXPECT_EQ(test::RaisedKind([] { CCur(922337203685478.0); }), KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { CCur(-922337203685478.0); }), KavError::Kind::Overflow);
    const Currency top = CCur(u"922337203685477"_s);
    EXPECT_EQ(test::RaisedKind([&] { (void)(top + CCur(u"1"_s)); }), KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([&] { (void)(CCur(u"-922337203685477"_s) - CCur(u"1"_s)); }),
              KavError::Kind::Overflow);
    EXPECT_EQ((top - CCur(u"1"_s)).toString(), u"922337203685476"_s);
}

TEST(TextProcedures, QuotingDateDigitsAndGrouping) {
    EXPECT_EQ(SqlQuote(u"O'Neil ''"_s), u"O''Neil ''''"_s);
    EXPECT_EQ(DateDigits(u"1402/05/12"_s), CCur(14020512.0));
    // Only the whole-number digits are grouped; the sign and the fraction stay.
    struct Case {
        QString grouped, expected;
    };
    for (const Case& c :
         {Case{GroupDigits(1234), u"1234"_s}, Case{GroupDigits(12345), u"12/345"_s},
          Case{GroupDigits(1000000.0), u"1/000/000"_s},
          Case{GroupDigits(u"123456789012"_s), u"123/456/789/012"_s},
          Case{GroupDigits(-150000), u"-150/000"_s}, Case{GroupDigits(12345.5), u"12/345.5"_s},
          Case{GroupDigits(u"-1234567.25"_s), u"-1/234/567.25"_s},
          Case{GroupDigits(u"+12345"_s), u"+12/345"_s},
          Case{GroupDigits(u"abcdefg"_s), u"abcdefg"_s}})
        EXPECT_EQ(c.grouped, c.expected);
}

TEST(TextProcedures, CellNumbersAndAmountsNeverMisread) {
    EXPECT_EQ(CellNumber(u"   "_s), QVariant::fromValue<qint16>(-1));
    EXPECT_EQ(CellNumber(u"True"_s), QVariant::fromValue<qint16>(1));
    EXPECT_EQ(CellNumber(u"true"_s).toDouble(), 0);
    EXPECT_EQ(CellNumber(u"1402/05/12"_s).toDouble(), 14020512);
    EXPECT_EQ(CellNumber(u"12/345"_s).toDouble(), 12345);
    EXPECT_EQ(CellNumber(u"null"_s).toDouble(), 0);
    EXPECT_EQ(AmountValue(u"1/234/567"_s), 1234567);
    EXPECT_EQ(AmountCurrency(u"12/345/678/901"_s), CCur(u"12345678901"_s));
    EXPECT_EQ(test::RaisedKind([] { AmountCurrency(u"x"_s); }), KavError::Kind::TypeMismatch);
}
