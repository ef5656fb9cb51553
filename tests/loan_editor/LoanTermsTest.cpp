#include <gtest/gtest.h>

#include "base/Errors.h"
#include "loan_editor/LoanTerms.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::loan;

namespace {

const QString WarningTitle = u"هشدار"_s;

// The amount in both texts of its box: displayed grouped, value plain.
TermsFields withAmount(const QString& grouped, const QString& plain) {
    TermsFields f;
    f.loanValueText = grouped;
    f.loanValueValue = plain;
    return f;
}

TermsFields withCount(const QString& amount, const QString& count, const QString& begin = {}) {
    TermsFields f = withAmount(amount, amount);
    f.payBackNumber = count;
    f.beginDate = begin;
    return f;
}

TermsFields withPerMonth(const QString& amount, const QString& perMonth) {
    TermsFields f = withAmount(amount, amount);
    f.perMonthText = f.perMonthValue = perMonth;
    return f;
}

// Leaving the count after entering the box empty.
TermsUpdate leaveCount(const TermsFields& f) {
    return PayBackNumberLeft(f, PayBackNumberGotFocus({}));
}

}  // namespace

TEST(LeavingCount, SplitsTheGroupedAmountAndReportsTheRemainder) {
    TermsFields f = withAmount(u"1/000/000"_s, u"1000000"_s);
    f.payBackNumber = u"3"_s;
    const TermsUpdate u = leaveCount(f);
    EXPECT_EQ(u.perMonth, u"333333"_s);
    EXPECT_EQ(u.rem, u"1"_s);
    EXPECT_EQ(u.remainderOptionsEnabled, true);
    EXPECT_FALSE(u.endDate);  // no first-instalment date
    EXPECT_FALSE(u.payBackNumber);

    const TermsUpdate even = leaveCount(withCount(u"900"_s, u"3"_s));
    EXPECT_EQ(even.perMonth, u"300"_s);
    EXPECT_EQ(even.rem, u"0"_s);
    EXPECT_EQ(even.remainderOptionsEnabled, false);
    TermsFields grouped = withAmount(u"1/200"_s, u"1200"_s);
    grouped.payBackNumber = u"3"_s;
    EXPECT_EQ(leaveCount(grouped).remainderOptionsEnabled, false);
}

TEST(LeavingCount, RoundsHalvesToEvenInTheModuloAndTheSettlementDate) {
    // 9 mod 2 leaves 1 (2.5 -> 2); 8 mod 4 leaves 0 (3.5 -> 4); 10.5 -> 10 divides by 5.
    EXPECT_EQ(leaveCount(withCount(u"9"_s, u"2.5"_s)).remainderOptionsEnabled, true);
    EXPECT_EQ(leaveCount(withCount(u"8"_s, u"3.5"_s)).remainderOptionsEnabled, false);
    EXPECT_EQ(leaveCount(withCount(u"10.5"_s, u"5"_s)).remainderOptionsEnabled, false);
    const TermsUpdate u = leaveCount(withCount(u"9"_s, u"2.5"_s, u"1403/01/10"_s));
    EXPECT_EQ(u.perMonth, u"3"_s);  // Int(9 / 2.5)
    EXPECT_EQ(u.rem, u"1.5"_s);
    EXPECT_EQ(u.endDate, u" 1403/ 2/ 31"_s);
    EXPECT_EQ(leaveCount(withCount(u"8"_s, u"3.5"_s, u"1403/01/10"_s)).endDate, u" 1403/ 4/ 31"_s);
    EXPECT_EQ(leaveCount(withCount(u"1000"_s, u"12"_s, u"1403/02/15"_s)).endDate,
              u" 1404/ 1/ 31"_s);
}

TEST(LeavingCount, AnUnchangedNumberRecomputesNothing) {
    const vb::Currency atFocus = PayBackNumberGotFocus(u"3"_s);
    // The amount changed meanwhile; the count did not (3.00 is the same number).
    EXPECT_TRUE(
        PayBackNumberLeft(withCount(u"5000"_s, u"3.00"_s, u"1403/01/10"_s), atFocus).isEmpty());
    EXPECT_FALSE(PayBackNumberLeft(withCount(u"5000"_s, u"4"_s), atFocus).isEmpty());
}

TEST(LeavingCount, AnErrorComesAfterWhatTheStepsBeforeItComputed) {
    auto kindOf = [](const TermsUpdate& u) {
        return test::RaisedKind([&] {
            if (u.error) std::rethrow_exception(u.error);
        });
    };
    // Reads as 0.4 but rounds to 0 in the modulo, the last step: the settlement date, the
    // instalment and the remainder are computed before it.
    const TermsUpdate zero = leaveCount(withCount(u"1000"_s, u"0.4"_s, u"1403/01/10"_s));
    EXPECT_EQ(kindOf(zero), KavError::Kind::DivisionByZero);
    EXPECT_EQ(zero.endDate, u" 1402/ 12/ 29"_s);  // no instalment: Esfand before the first
    EXPECT_EQ(zero.perMonth, u"2500"_s);
    EXPECT_EQ(zero.rem, u"0"_s);
    EXPECT_FALSE(zero.remainderOptionsEnabled);
    // "12abc" reads as 12 but is no number for the modulo.
    const TermsUpdate letters = leaveCount(withCount(u"1000"_s, u"12abc"_s));
    EXPECT_EQ(kindOf(letters), KavError::Kind::TypeMismatch);
    EXPECT_EQ(letters.perMonth, u"83"_s);
    // The settlement date, the first step, rounds the count to 16 bits: nothing is computed.
    EXPECT_EQ(
        test::RaisedKind([] { leaveCount(withCount(u"1000"_s, u"40000"_s, u"1403/01/10"_s)); }),
        KavError::Kind::Overflow);
    EXPECT_EQ(test::RaisedKind([] { leaveCount(withCount(u"1000"_s, u"3x"_s, u"1403/01/10"_s)); }),
              KavError::Kind::TypeMismatch);
    // Without a first-instalment date there is no settlement date to overflow.
    EXPECT_EQ(leaveCount(withCount(u"1000"_s, u"40000"_s)).perMonth, u"0"_s);
}

// The remainder options test any amount the currency holds: amount and count are rounded to
// whole numbers (halves to even) in 64 bits.
TEST(LeavingCount, LargeAmountsTestTheRemainderOptions) {
    EXPECT_EQ(leaveCount(withCount(u"3000000000"_s, u"3"_s)).remainderOptionsEnabled, false);
    EXPECT_EQ(leaveCount(withCount(u"3000000001"_s, u"3"_s)).remainderOptionsEnabled, true);
    TermsFields top = withAmount(u"922/337/203/685/476"_s, u"922337203685476"_s);
    top.payBackNumber = u"4"_s;
    EXPECT_EQ(leaveCount(top).remainderOptionsEnabled, false);
    top.payBackNumber = u"7"_s;
    EXPECT_EQ(leaveCount(top).remainderOptionsEnabled, true);
    // 11.5 rounds to 12, which 4 divides; 11 would not.
    EXPECT_EQ(leaveCount(withCount(u"11.5"_s, u"4"_s)).remainderOptionsEnabled, false);
    EXPECT_EQ(leaveCount(withCount(u"-9"_s, u"4.5"_s)).remainderOptionsEnabled, true);
}

// Persian and Arabic-Indic digits in the count read as the digits they are.
TEST(LeavingCount, ReadsPersianAndArabicIndicDigits) {
    for (const QString& three : {u"\u06F3"_s, u"\u0663"_s}) {
        TermsFields f = withCount(u"1000000"_s, three, u"1403/01/10"_s);
        const TermsUpdate u = leaveCount(f);
        EXPECT_EQ(u.perMonth, u"333333"_s);
        EXPECT_EQ(u.rem, u"1"_s);
        EXPECT_EQ(u.remainderOptionsEnabled, true);
        EXPECT_EQ(u.endDate, u" 1403/ 3/ 31"_s);
        // Entered as 3 and left as 3: nothing to recompute.
        EXPECT_TRUE(PayBackNumberLeft(f, PayBackNumberGotFocus(u"3"_s)).isEmpty());
        EXPECT_EQ(PayBackNumberGotFocus(three), vb::CCur(3.0));
    }
    TermsFields twelve = withCount(u"1000"_s, u"\u06F1\u06F2"_s, u"1403/02/15"_s);
    EXPECT_EQ(leaveCount(twelve).endDate, u" 1404/ 1/ 31"_s);
}

TEST(LeavingPerMonth, GivesTheCountRemainderAndSettlementDate) {
    TermsFields f = withPerMonth(u"1000"_s, u"300"_s);
    f.beginDate = u"1403/01/10"_s;
    const TermsUpdate u = PerMonthLeft(f, PerMonthGotFocus({}));
    EXPECT_EQ(u.payBackNumber, u"3"_s);
    EXPECT_EQ(u.rem, u"100"_s);
    EXPECT_EQ(u.endDate, u" 1403/ 3/ 31"_s);
    EXPECT_FALSE(u.remainderOptionsEnabled);

    EXPECT_TRUE(PerMonthLeft(f, PerMonthGotFocus(u"300"_s)).isEmpty());
    // Int goes towards minus infinity.
    EXPECT_EQ(PerMonthLeft(withPerMonth(u"-1000"_s, u"300"_s), {}).payBackNumber, u"-4"_s);
    // A zero instalment computes no count, but the count already there dates the settlement.
    f.perMonthText = f.perMonthValue = u"0"_s;
    f.payBackNumber = u"2"_s;
    const TermsUpdate zero = PerMonthLeft(f, PerMonthGotFocus(u"300"_s));
    EXPECT_FALSE(zero.payBackNumber);
    EXPECT_EQ(zero.endDate, u" 1403/ 2/ 31"_s);
}

TEST(LeavingAmount, WarnsAboveTheCeilingOnly) {
    const QString above =
        u"مبلغ درخواستي شما از سقف  وام ("_s + u"1000000"_s + u") بيشتر شده است."_s;
    EXPECT_FALSE(CeilingWarning(u"1/000/000"_s, 1000000.0));
    EXPECT_EQ(CeilingWarning(u"1/000/001"_s, 1000000.0), (Message{WarningTitle, above}));
    EXPECT_EQ(CeilingWarning(u"1000001"_s, u"1000000.0000"_s), (Message{WarningTitle, above}));
    EXPECT_EQ(CeilingWarning(u"1000001"_s, qlonglong(1000000)), (Message{WarningTitle, above}));
    EXPECT_FALSE(CeilingWarning(u"999999999"_s, QVariant()));
    EXPECT_EQ(test::RaisedKind([] { CeilingWarning(u"1"_s, u"abc"_s); }),
              KavError::Kind::TypeMismatch);
    EXPECT_EQ(CeilingText(QVariant()), QString());
    EXPECT_EQ(CeilingText(2500000.5), u"2500000.5"_s);
}

TEST(LeavingAmount, CountsFromThePerMonthAndRefillsWhenBlank) {
    TermsFields f = withPerMonth(u"1/000"_s, u"300"_s);
    f.loanValueValue = u"1000"_s;
    const TermsUpdate u = LoanValueLeft(f, 900.0);
    ASSERT_TRUE(u.warning);
    EXPECT_EQ(u.payBackNumber, u"3"_s);
    EXPECT_EQ(u.rem, u"100"_s);
    EXPECT_FALSE(u.endDate);
    EXPECT_FALSE(u.remainderOptionsEnabled);
    EXPECT_FALSE(u.loanValue);

    f = withPerMonth(u"  "_s, u"300"_s);
    f.originalValueValue = u"5000"_s;
    const TermsUpdate refill = LoanValueLeft(f, 900.0);
    EXPECT_EQ(refill.loanValue, u"5000"_s);
    EXPECT_FALSE(refill.payBackNumber);
    EXPECT_FALSE(refill.warning);
    EXPECT_EQ(OriginalValueLeft(f), u"5000"_s);
}

TEST(AmountKeys, FilterDigitsAndRequireTheLoanType) {
    const LoanValueKey noType = LoanValueKeyPress(2, false, u'5');
    EXPECT_EQ(noType.keyAscii, 0);
    EXPECT_EQ(noType.warning, (Message{WarningTitle, u"ابتدا نوع وام را مشخص كنيد."_s}));
    EXPECT_TRUE(noType.clearAmountAndFocusType);
    const LoanValueKey viewing = LoanValueKeyPress(0, false, u'x');
    EXPECT_EQ(viewing.keyAscii, u'x');
    EXPECT_FALSE(viewing.warning);
    for (int key : {int(u'0'), int(u'9'), int(u'.'), 8}) {
        EXPECT_EQ(LoanValueKeyPress(1, true, key).keyAscii, key);
        EXPECT_EQ(PerMonthKeyPress(key), key);
    }
    for (int key : {int(u'a'), int(u'-'), int(u'/'), 0x06F5 /* Persian five */}) {
        EXPECT_EQ(LoanValueKeyPress(1, true, key).keyAscii, 0);
        EXPECT_EQ(PerMonthKeyPress(key), 0);
    }
}

TEST(LoadedRemainder, NeedsAllThreeValues) {
    EXPECT_EQ(txtRemOnLoad(1000000.0, 333333.0, 3), u"1"_s);
    EXPECT_EQ(txtRemOnLoad(1000.0, 300.0, QVariant()), QString());
    EXPECT_EQ(txtRemOnLoad(QVariant(), 300.0, 3), QString());
    EXPECT_EQ(test::RaisedKind([] { txtRemOnLoad(u"x"_s, 300.0, 3); }),
              KavError::Kind::TypeMismatch);
}
