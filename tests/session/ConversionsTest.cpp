#include <gtest/gtest.h>

#include <functional>

#include "base/Errors.h"
#include "session/TextProcs.h"
#include "session/Vb.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::vb;
using Kind = KavError::Kind;

namespace {

// Each value as text, joined by blanks.
template <class T, class F>
QString each(std::initializer_list<T> values, F convert) {
    QStringList out;
    for (const T& v : values) out << QVariant::fromValue(convert(v)).toString();
    return out.join(u' ');
}

}  // namespace

// Val reads the leading number (blanks between digits skipped); Int goes towards minus
// infinity; Str puts a blank before a positive number. (Rounding: the property tests.)
TEST(Conversions, NumbersReadAndWrittenAsTheWindowsExpect) {
    EXPECT_EQ(each({u"12abc"_s, u"  -3.5 rials"_s, u"abc"_s, QString(), u".25"_s, u"1 000"_s,
                    u"1e3x"_s, u"1403/05/12"_s, u"1e-999"_s},
                   [](const QString& t) { return Val(t); }),
              u"12 -3.5 0 0 0.25 1000 1000 1403 0"_s);
    EXPECT_EQ(CInt(u" 12 "_s), 12);
    EXPECT_EQ(each({3.99, -3.01}, [](double d) { return Int(d); }), u"3 -4"_s);
    EXPECT_EQ(Str(1404) + u'|' + Str(0) + u'|' + Str(-5) + u'|' + Str(0.5), u" 1404| 0|-5| .5"_s);
    EXPECT_EQ(CStr(333333) + u'|' + CStr(1234.5), u"333333|1234.5"_s);
    const std::pair<std::function<void()>, Kind> refused[] = {
        {[] { Val(u"1e999"_s); }, Kind::Overflow},
        {[] { CDbl(u"-2E+400"_s); }, Kind::Overflow},
        {[] { CInt(u"12a"_s); }, Kind::TypeMismatch},
        {[] { CLng(QString()); }, Kind::TypeMismatch},
    };
    for (const auto& [call, kind] : refused) EXPECT_EQ(test::RaisedKind(call), kind);
}

// An amount keeps four decimals exactly, rounding half to even; past the ends of its range
// every way of making or adding one is the overflow error, never a wrapped amount.
TEST(Conversions, CurrencyKeepsFourDecimalsExactlyWithinItsRange) {
    EXPECT_EQ(each({u"1234567890123.4567"_s, u"-12.5"_s, u"0.00005"_s, u"0.00015"_s,
                    u"922337203685477.5807"_s, u"-922337203685477.5808"_s},
                   [](const QString& t) { return CCur(t).toString(); }),
              u"1234567890123.4567 -12.5 0 0.0002 922337203685477.5807 -922337203685477.5808"_s);
    EXPECT_EQ(CCur(1.0 / 3.0).toString(), u"0.3333"_s);
    EXPECT_EQ(CCur(922337203685477.0).toString(), u"922337203685477"_s);
    EXPECT_LT(CCur(u"999"_s), CCur(u"1000"_s));
    EXPECT_EQ(CCur(u"1000"_s), CCur(1000.0));
    const Currency top = CCur(u"922337203685477"_s);
    EXPECT_EQ((top - CCur(u"1"_s)).toString(), u"922337203685476"_s);
    const std::pair<std::function<void()>, Kind> refused[] = {
        {[] { CCur(u"12/345"_s); }, Kind::TypeMismatch},
        {[] { CCur(u"abc"_s); }, Kind::TypeMismatch},
        {[] { CCur(1e300); }, Kind::Overflow},
        {[] { CCur(922337203685478.0); }, Kind::Overflow},
        {[] { CCur(-922337203685478.0); }, Kind::Overflow},
        {[&] { (void)(top + CCur(u"1"_s)); }, Kind::Overflow},
        {[] { (void)(CCur(u"-922337203685477"_s) - CCur(u"1"_s)); }, Kind::Overflow},
    };
    for (const auto& [call, kind] : refused) EXPECT_EQ(test::RaisedKind(call), kind);
    for (const QString& text :
         {u"922337203685477.5808"_s, u"922337203685477.9"_s, u"922337203685477.58075"_s,
          u"922337203685478"_s, u"-922337203685477.5809"_s, u"99999999999999999999"_s})
        EXPECT_EQ(test::RaisedKind([&] { CCur(text); }), Kind::Overflow) << text.toStdString();
}

TEST(TextProcedures, QuotingDateDigitsAndGrouping) {
    EXPECT_EQ(SqlQuote(u"O'Neil ''"_s), u"O''Neil ''''"_s);
    EXPECT_EQ(DateDigits(u"1402/05/12"_s), CCur(14020512.0));
    // Only the whole-number digits are grouped; the sign and the fraction stay.
    EXPECT_EQ(each({1234.0, 12345.0, 1000000.0, -150000.0, 12345.5},
                   [](double d) { return GroupDigits(d); }),
              u"1234 12/345 1/000/000 -150/000 12/345.5"_s);
    EXPECT_EQ(each({u"123456789012"_s, u"-1234567.25"_s, u"+12345"_s, u"abcdefg"_s},
                   [](const QString& t) { return GroupDigits(t); }),
              u"123/456/789/012 -1/234/567.25 +12/345 abcdefg"_s);
}

TEST(TextProcedures, CellNumbersAndAmountsNeverMisread) {
    EXPECT_EQ(CellNumber(u"   "_s), QVariant::fromValue<qint16>(-1));
    EXPECT_EQ(CellNumber(u"True"_s), QVariant::fromValue<qint16>(1));
    EXPECT_EQ(CellNumber(u"true"_s).toDouble(), 0);
    EXPECT_EQ(CellNumber(u"null"_s).toDouble(), 0);
    EXPECT_EQ(AmountValue(u"1/234/567"_s), 1234567);
    EXPECT_EQ(AmountCurrency(u"12/345/678/901"_s), CCur(u"12345678901"_s));
    EXPECT_EQ(test::RaisedKind([] { AmountCurrency(u"x"_s); }), Kind::TypeMismatch);
}
