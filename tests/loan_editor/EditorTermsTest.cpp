// The loan window's terms and dates as a clerk drives them: handlers wired to the
// controls, database reads for the ceiling, messages shown instead of errors thrown.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "EditorFixture.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

class TermsTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        editor().cmdNew_Click();
        t.messages->shown.clear();
    }
    void chooseType(int index) {
        editor().cmbLoanType->setCurrentIndex(index);
        editor().cmbLoanType_Click();
    }
    // Enters a count as a clerk does: focus in, type, focus out.
    void enterCount(const QString& count) {
        auto& w = editor();
        w.txtPayBackNumber_GotFocus();
        w.txtPayBackNumber->setText(count);
        w.txtPayBackNumber_LostFocus();
    }
};

}  // namespace

TEST_F(TermsTest, TypeClickShowsTheCeilingAndDeleteClearsIt) {
    auto& w = editor();
    chooseType(0);
    EXPECT_EQ(w.txtMaxLoanValue->Value(), u"50000000"_s);
    EXPECT_EQ(w.cmbLoanType->toolTip(), u"قرض الحسنه"_s);
    chooseType(1);  // no ceiling
    EXPECT_TRUE(w.txtMaxLoanValue->Text().isEmpty());
    chooseType(0);
    w.cmbLoanType_KeyDown(46);
    EXPECT_EQ(w.cmbLoanType->currentIndex(), -1);
    EXPECT_TRUE(w.txtMaxLoanValue->Text().isEmpty());
}

TEST_F(TermsTest, AmountAboveTheCeilingWarnsButStays) {
    auto& w = editor();
    chooseType(0);
    w.txtLoanValue->setText(u"50000000"_s);
    w.txtLoanValue_LostFocus();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    w.txtLoanValue->setText(u"50000001"_s);
    w.txtLoanValue_LostFocus();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"هشدار"_s);
    EXPECT_EQ(t.messages->last().text,
              u"مبلغ درخواستي شما از سقف  وام (50000000) بيشتر شده است."_s);
    EXPECT_EQ(w.txtLoanValue->Value(), u"50000001"_s);
}

TEST_F(TermsTest, CountDrivesInstalmentRemainderAndSettlementDate) {
    auto& w = editor();
    chooseType(0);
    w.txtLoanValue->setText(u"1000000"_s);
    w.datBeginDate->setFarsidate(u"1403/02/15"_s);
    enterCount(u"12"_s);
    EXPECT_EQ(w.TxtPerMonth->Value(), u"83333"_s);
    EXPECT_EQ(w.txtRem->Value(), u"4"_s);
    EXPECT_EQ(w.datEndDate->farsidate(), u"1404/01/31"_s);
    EXPECT_TRUE(w.UseRemainedValueInFirstMonthF->isEnabled());

    w.txtLoanValue->setText(u"900"_s);
    enterCount(u"3"_s);
    EXPECT_EQ(w.TxtPerMonth->Value(), u"300"_s);
    EXPECT_EQ(w.txtRem->Value(), u"0"_s);
    EXPECT_FALSE(w.UseRemainedValueInFirstMonthF->isEnabled());
    EXPECT_FALSE(w.UseRemainedValueInFirstMonthL->isEnabled());
    EXPECT_FALSE(w.UseRemainedValueInFirstMonth->isEnabled());
    EXPECT_TRUE(w.UseRemainedValueInSeparatedLastMonth->isEnabled());

    // Left unchanged: nothing is recomputed, even though the amount changed meanwhile.
    w.txtLoanValue->setText(u"1000"_s);
    enterCount(u"3"_s);
    EXPECT_EQ(w.TxtPerMonth->Value(), u"300"_s);
}

TEST_F(TermsTest, MonthlyInstalmentDrivesCountAndRemainder) {
    auto& w = editor();
    chooseType(0);
    w.txtLoanValue->setText(u"1/000"_s);
    w.TxtPerMonth_GotFocus();
    w.TxtPerMonth->setText(u"300"_s);
    w.TxtPerMonth_LostFocus();
    EXPECT_EQ(w.txtPayBackNumber->text(), u"3"_s);
    EXPECT_EQ(w.txtRem->Value(), u"100"_s);
    EXPECT_FALSE(w.datEndDate->IsEmpty());  // a first-instalment date was proposed
}

TEST_F(TermsTest, UnguardedArithmeticErrorsAreShownNotThrown) {
    auto& w = editor();
    chooseType(0);
    w.txtLoanValue->setText(u"1000"_s);
    w.datBeginDate->setFarsidate(u"1403/02/15"_s);
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    // A count beyond 16 bits fails the settlement date, the first step: nothing is written.
    // A count that rounds to 0 fails only the modulo of the last step: the settlement date,
    // the instalment and the remainder computed before it stay written.
    for (const auto& [count, perMonth] : {std::pair{u"40000"_s, u"77"_s}, {u"0.4"_s, u"2500"_s}}) {
        t.messages->shown.clear();
        w.TxtPerMonth->setText(u"77"_s);
        w.datEndDate->Clear();
        // Through the box's own focus changes, as the event loop delivers them.
        w.txtPayBackNumber->setFocus();
        QApplication::processEvents();
        w.txtPayBackNumber->setText(count);
        w.txtNotes->setFocus();
        QApplication::processEvents();
        ASSERT_GE(t.messages->shown.size(), 1) << count.toStdString();
        EXPECT_EQ(t.messages->shown.first().title, u"خطا"_s);
        EXPECT_EQ(w.TxtPerMonth->Value(), perMonth);
        EXPECT_EQ(w.datEndDate->IsEmpty(), count == u"40000");
        EXPECT_EQ(session().LoanFormMode, ModeNew);
    }
}

TEST_F(TermsTest, TypingAnAmountWithoutATypeWarnsAndLandsNothing) {
    auto& w = editor();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    w.txtLoanValue->SetFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_5, Qt::NoModifier);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().text, u"ابتدا نوع وام را مشخص كنيد."_s);
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
    EXPECT_TRUE(w.cmbLoanType->hasFocus());

    chooseType(0);
    w.txtLoanValue->SetFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::NoModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_7, Qt::NoModifier);
    EXPECT_EQ(w.txtLoanValue->Value(), u"7"_s);
}

TEST_F(TermsTest, DateOrderRules) {
    auto& w = editor();
    w.datLoanPayDate->setFarsidate(u"1403/05/20"_s);
    w.datBeginDate->setFarsidate(u"1403/05/10"_s);
    w.datBeginDate_Change();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"اشکال"_s);
    EXPECT_EQ(t.messages->last().text, u"تاريخ شروع قسط نبايد قبل از تاريخ پرداخت باشد."_s);
    EXPECT_TRUE(w.datBeginDate->IsEmpty());

    w.datBeginDate->setFarsidate(u"1403/05/31"_s);
    w.datEndDate->setFarsidate(u"1403/12/29"_s);
    w.datLoanPayDate->setFarsidate(u"1403/06/01"_s);
    w.datLoanPayDate_Change();
    EXPECT_TRUE(w.datBeginDate->IsEmpty());
    EXPECT_FALSE(w.datEndDate->IsEmpty());
    EXPECT_EQ(t.messages->shown.size(), 1);  // silently

    w.datEndDate->setFarsidate(u"1403/05/01"_s);
    w.datEndDate_Change();
    EXPECT_TRUE(w.datEndDate->IsEmpty());
}
