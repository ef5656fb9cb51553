// The loan window: modes, permissions, loading, new, edit, cancel, closing and its terms.

#include "EditorFixture.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// Kind 'E': enabled; 'L': locked (read-only for a line edit). Per mode (view, edit, new,
// empty): '1' on, '0' off, 'T' on for a temporary loan only, 'F' on for a final loan only,
// '-' left as it was.
struct ModeRow {
    const char* control;
    char kind;
    const char* modes;
};
// clang-format off
const ModeRow kModeTable[] = {
    {"cmdNew", 'E', "1001"}, {"mnuNew", 'E', "1001"}, {"cmdEdit", 'E', "T000"},
    {"mnuEdit", 'E', "T000"}, {"cmdDelete", 'E', "T000"}, {"mnuDelete", 'E', "T000"},
    {"cmdRegSave", 'E', "0110"}, {"cmdFinSave", 'E', "0110"}, {"mnuRegSave", 'E', "0110"},
    {"mnuFinSave", 'E', "0110"}, {"cmdCancel", 'E', "0110"}, {"mnuCancel", 'E', "0110"},
    {"cmdExit", 'E', "1001"}, {"mnuExit", 'E', "1001"}, {"cmdSearch", 'E', "1001"},
    {"mnusearch", 'E', "1101"}, {"cmdBacktoTemp", 'E', "FF00"}, {"cmdBalance", 'E', "1000"},
    {"cmdAddEmp", 'E', "0100"}, {"cmdAddOrdinanceEmployees", 'E', "0100"},
    {"cmdDeleteEmp", 'E', "0000"}, {"cmdDefineAccount", 'E', "1000"}, {"cmbLoanType", 'E', "0110"},
    {"datLoanPayDate", 'E', "0110"}, {"datBeginDate", 'E', "0110"}, {"datEndDate", 'E', "0110"},
    {"txtLoanValue", 'L', "1001"}, {"TxtPerMonth", 'L', "1001"}, {"txtOriginalValue", 'L', "-001"},
    {"txtNotes", 'L', "1001"}, {"txtPayBackNumber", 'L', "1001"},
    {"UseRemainedValueInFirstMonthF", 'E', "0110"}, {"UseRemainedValueInFirstMonthL", 'E', "0110"},
    {"UseRemainedValueInSeparatedLastMonth", 'E', "0110"}, {"chkISValid", 'E', "01--"},
};
// clang-format on

// The row's state ("enabled", "readOnly" or "locked"), set to `set` first when given.
bool state(FormHRLoan& w, const ModeRow& row, std::optional<bool> set = {}) {
    const QString name = QString::fromLatin1(row.control);
    QObject* o = w.findChild<QAction*>(name);
    if (!o) o = w.findChild<QWidget*>(name);
    const char* property = row.kind == 'E'               ? "enabled"
                           : qobject_cast<QLineEdit*>(o) ? "readOnly"
                                                         : "locked";
    if (set) o->setProperty(property, *set);
    return o->property(property).toBool();
}

// The loan's fields as the clerk reads them, joined by '|', ending with the remainder option.
QString Fields(FormHRLoan& w) {
    QStringList f;
    f << w.txtID->text() << w.txtCode->text() << w.cmbLoanType->currentText()
      << w.txtLoanValue->Text() << w.txtOriginalValue->Text() << w.TxtPerMonth->Text()
      << w.txtPayBackNumber->text() << w.txtRem->Text() << w.datLoanPayDate->farsidate()
      << w.datBeginDate->farsidate() << w.datEndDate->farsidate() << w.txtNotes->text();
    f << (w.UseRemainedValueInFirstMonthF->isChecked()          ? u"first"_s
          : w.UseRemainedValueInFirstMonthL->isChecked()        ? u"last"_s
          : w.UseRemainedValueInSeparatedLastMonth->isChecked() ? u"separate"_s
                                                                : u"none"_s);
    return f.join(u'|');
}

}  // namespace

TEST_F(EditorTest, EveryControlInEveryModeForTemporaryAndFinalLoans) {
    auto& w = editor();
    const QString titles[] = {u"وام کارمندان (مشاهده)"_s, u"وام کارمندان (ويرايش)"_s,
                              u"وام کارمندان (جديد)"_s, u"وام کارمندان"_s};
    for (const bool final : {false, true}) {
        w.txtCode->setText(final ? u"7"_s : QString());
        for (qint32 mode = 0; mode <= 3; ++mode) {
            // Every control starts both ways, so "left as it was" shows as well.
            for (const bool before : {false, true}) {
                for (const ModeRow& row : kModeTable) state(w, row, before);
                session().LoanFormMode = mode;
                w.DisableLockComponent();
                EXPECT_EQ(w.windowTitle(), titles[mode]);
                for (const ModeRow& row : kModeTable) {
                    const char cell = row.modes[mode];
                    const bool want = cell == '-'   ? before
                                      : cell == 'T' ? !final
                                      : cell == 'F' ? final
                                                    : cell == '1';
                    EXPECT_EQ(state(w, row), want)
                        << row.control << " mode " << mode << (final ? " final" : " temporary")
                        << " was " << before;
                }
            }
        }
    }
    // The application running on the demo database says so after the mode's title.
    t.module.SetCaptionNote(u" - پايگاه داده نمايشي"_s);
    w.DisableLockComponent();
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان - پايگاه داده نمايشي"_s);
}

TEST_F(EditorTest, EachCommandNeedsItsOwnPermission) {
    auto& w = editor();
    const QString refusal = u"خطا: شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s;
    // Revoked one at a time: New and Delete need 111802, Edit 111803.
    for (const qint32 revoked : {0, 111802, 111803}) {
        SCOPED_TRACE(revoked);
        t.db.exec(u"delete from tblVarekUserPermission"_s);
        for (const qint32 p : {111801, 111802, 111803})
            if (p != revoked) t.grant(1, {p});
        w.ViewPRSLoansInfo(TemporaryLoan);
        w.cmdNew_Click();
        EXPECT_EQ(mode(), revoked == 111802 ? ModeView : ModeNew);
        EXPECT_EQ(Shown(), revoked == 111802 ? QStringList{refusal} : QStringList());
        w.ViewPRSLoansInfo(TemporaryLoan);
        w.cmdEdit_Click();
        EXPECT_EQ(mode(), revoked == 111803 ? ModeView : ModeEdit);
        EXPECT_EQ(Shown(), revoked == 111803 ? QStringList{refusal} : QStringList());
        w.ViewPRSLoansInfo(TemporaryLoan);
        t.messages->answers = {0};  // allowed: the delete is asked and declined
        w.cmdDelete_Click();
        EXPECT_EQ(
            Shown(),
            QStringList{revoked == 111802 ? refusal : u"? حذف  وام کارمندان: آيا مطمئن هستيد؟"_s});
        EXPECT_EQ(Scalar(u"select count(*) from tblHRLoan where ID=1"_s).toInt(), 1);
    }
}

TEST_F(EditorTest, LoadsEachKindOfLoanAndNewClearsAndProposesTheDefaultDates) {
    auto& w = editor();
    const std::pair<SeedLoan, QString> loans[] = {
        {TemporaryLoan,
         u"1||قرض الحسنه|1/000/000|1/200/000|83/333|12|4|1403/01/06|1403/01/31|1403/12/30|وام مسکن|first"_s},
        {FinalLoan, u"2|7|ضروري|900|900|300|3|0|1403/01/06|1403/01/31|1403/03/31||last"_s},
        {SeparateLoan,
         u"4||قرض الحسنه|1000|1000|300|3|100|1403/01/06|1403/01/31|1403/03/31||separate"_s},
        // Begin and end dates show only when their Gregorian dates are stored.
        {SparseLoan, u"3||ضروري|500|||||||||none"_s},
    };
    for (const auto& [loan, fields] : loans) {
        SCOPED_TRACE(loan);
        EXPECT_TRUE(w.ViewPRSLoansInfo(loan));
        EXPECT_EQ(Fields(w), fields);
        EXPECT_EQ(session().CurrentLoanID, loan);
        EXPECT_EQ(mode(), ModeView);
        EXPECT_EQ(w.FlexEmployee->Rows(), loan == TemporaryLoan ? 3 : loan == FinalLoan ? 2 : 1);
    }
    w.ViewPRSLoansInfo(TemporaryLoan);
    EXPECT_EQ(MemberRow(0).section(u'|', 2, 2), u"کد   کارمند"_s);
    EXPECT_EQ(MemberRow(1), u"1|1|1001|علي  رضايي|مريم احمدي|حسن کريمي||2|3|null"_s);
    EXPECT_EQ(MemberRow(2), u"2|4|1004|زهرا  موسوي||||null|null|null"_s);
    const auto* g = w.FlexEmployee;
    EXPECT_EQ((QList<int>{g->ColWidth(1), g->ColWidth(7), g->ColWidth(8)}),
              (QList<int>{0, 2000, 0}));
    w.cmdNew_Click();
    EXPECT_EQ(mode(), ModeNew);
    EXPECT_EQ(w.lblMessage->text(), u"وام کارمندان جديد"_s);
    // The id stays; paid on the working date (parameter 3450), the first instalment on the last
    // day of its month; no members.
    EXPECT_EQ(Fields(w) + QString::number(w.FlexEmployee->Rows()),
              u"1||||||||1403/05/20|1403/05/31|||separate1"_s);
    EXPECT_EQ(Shown(), QStringList());
}

TEST_F(EditorTest, CancelReloadsOnlyOnYesAndTheTimerAndMenusKeepTheCommandsInStep) {
    auto& w = editor();
    Edit(TemporaryLoan);
    EXPECT_EQ(session().LoanEditStarted, 1);
    EXPECT_EQ(w.lblMessage->text(), u"اصلاح وام کارمندان"_s);
    w.txtLoanValue->setText(u"5"_s);
    w.txtNotes->setText(u"changed"_s);
    for (const int answer : {0, 5}) {  // no, and no answer
        t.messages->answers = {answer};
        w.cmdCancel_Click();
        EXPECT_EQ(Shown(), QStringList{u"? انصراف از ثبت وام کارمندان: آيا مطمئن هستيد؟"_s});
        EXPECT_EQ(mode(), ModeEdit);
        EXPECT_EQ(w.txtNotes->text(), u"changed"_s);
    }
    t.messages->answers = {1};
    w.cmdCancel_Click();
    EXPECT_EQ(mode() + session().LoanEditStarted, ModeView);
    EXPECT_EQ(w.txtLoanValue->Value() + w.txtNotes->text() + w.lblMessage->text(),
              u"1000000وام مسکن"_s);
    auto saves = [&] {
        w.Timer1_Timer();
        return w.cmdRegSave->isEnabled() && w.cmdFinSave->isEnabled();
    };
    w.cmdNew_Click();
    w.txtLoanValue->setText(u"1000"_s);
    w.cmbLoanType->setCurrentIndex(0);
    EXPECT_FALSE(saves());  // no end date yet
    w.datEndDate->setFarsidate(u"1403/12/29"_s);
    EXPECT_TRUE(saves());
    EXPECT_FALSE(w.cmdAddEmp->isEnabled());  // members only while editing
    Edit(TemporaryLoan);
    EXPECT_TRUE(saves() && w.cmdAddEmp->isEnabled() && w.cmdAddOrdinanceEmployees->isEnabled());
    w.cmdNew->setEnabled(false);
    w.mnuNew->setEnabled(true);
    w.mnuNew->trigger();
    EXPECT_EQ(mode(), ModeEdit);
    w.cmdNew->setEnabled(true);
    w.mnuNew->trigger();
    EXPECT_EQ(mode(), ModeNew);
    // Cancelling a new loan shows again the loan shown before New, or, when there was none,
    // empties the window.
    for (const bool loanBefore : {true, false}) {
        if (!loanBefore) {
            w.mnuNew->trigger();
            w.txtID->clear();
        }
        w.txtLoanValue->setText(u"777"_s);
        t.messages->answers = {1};
        w.cmdCancel_Click();
        EXPECT_EQ(mode(), loanBefore ? ModeView : ModeEmpty);
        EXPECT_EQ(w.txtID->text() + w.txtLoanValue->Text(),
                  loanBefore ? u"11/000/000"_s : QString());
    }
}

TEST_F(EditorTest, UnloadAsksByModeAndOnlyNoKeepsTheWindow) {
    auto& w = editor();
    const QString temporary =
        u"? هشدار: در صورتي که اطلاعات را ثبت قطعي نکنيد، در محاسبات فيش حقوقي لحاظ نخواهد شد، آيا قصد خروج داريد؟"_s;
    const QString editing =
        u"? هشدار: اطلاعات ممکن است تغيير کرده باشد، آيا قصد خروج بدون ثبت تغييرات داريد؟"_s;
    for (const qint32 mode : {0, 1, 2, 3}) {
        for (const bool final : {false, true}) {
            w.ViewPRSLoansInfo(final ? FinalLoan : TemporaryLoan);
            session().LoanFormMode = mode;
            for (const int answer : {1, 0, 5}) {
                SCOPED_TRACE(testing::Message() << mode << final << answer);
                t.messages->answers = {answer};
                const bool closes = w.Form_Unload();
                const bool asks = (mode == 0 && !final) || mode == 1 || mode == 2;
                EXPECT_EQ(Shown(),
                          asks ? QStringList{mode == 0 ? temporary : editing} : QStringList());
                EXPECT_EQ(closes, !asks || answer != 0);
            }
        }
    }
    w.show();  // the exit button goes through the same questions
    w.ViewPRSLoansInfo(TemporaryLoan);
    t.messages->answers = {0};
    w.cmdExit_Click();
    EXPECT_TRUE(w.isVisible() && !w.IsUnloaded());
    t.messages->answers = {1};
    w.cmdExit_Click();
    EXPECT_TRUE(!w.isVisible() && w.IsUnloaded());
}

namespace {

class TermsTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        editor().cmdNew_Click();
        Shown();
    }
    void chooseType(int index) {
        editor().cmbLoanType->setCurrentIndex(index);
        editor().cmbLoanType_Click();
    }
};

}  // namespace

TEST_F(TermsTest, TheTypeShowsItsCeilingAndTheCountSetsTheRemainderOptions) {
    auto& w = editor();
    chooseType(0);
    EXPECT_EQ(w.txtMaxLoanValue->Value() + w.cmbLoanType->toolTip(), u"50000000قرض الحسنه"_s);
    w.txtLoanValue->setText(u"50000001"_s);  // warned, but kept
    w.txtLoanValue_LostFocus();
    EXPECT_EQ(Shown(),
              QStringList{u"هشدار: مبلغ درخواستي شما از سقف  وام (50000000) بيشتر شده است."_s});
    for (const auto& [amount, options] :
         {std::pair{u"1000000"_s, u"1111"_s}, {u"900"_s, u"0001"_s}}) {
        w.txtLoanValue->setText(amount);  // 12 of 1000000 leave a remainder, 3 of 900 none
        w.txtPayBackNumber_GotFocus();
        w.txtPayBackNumber->setText(amount == u"900" ? u"3"_s : u"12"_s);
        w.txtPayBackNumber_LostFocus();
        QString on;  // first month, last month, their label, a separate month
        for (const QWidget* b : {static_cast<QWidget*>(w.UseRemainedValueInFirstMonthF),
                                 static_cast<QWidget*>(w.UseRemainedValueInFirstMonthL),
                                 static_cast<QWidget*>(w.UseRemainedValueInFirstMonth),
                                 static_cast<QWidget*>(w.UseRemainedValueInSeparatedLastMonth)})
            on += b->isEnabled() ? u'1' : u'0';
        EXPECT_EQ(on, options);
    }
    w.cmbLoanType_KeyDown(46);  // Delete empties the type and its ceiling
    EXPECT_EQ(w.cmbLoanType->currentIndex(), -1);
    EXPECT_TRUE(w.txtMaxLoanValue->Text().isEmpty());
}

TEST_F(TermsTest, KeysAndArithmeticErrorsAreHandledInTheWindow) {
    auto& w = editor();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    w.txtLoanValue->SetFocus();  // an amount typed before the type: warned, nothing lands
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_5, Qt::NoModifier);
    EXPECT_EQ(Shown(), QStringList{u"هشدار: ابتدا نوع وام را مشخص كنيد."_s});
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
    EXPECT_TRUE(w.cmbLoanType->hasFocus());
    chooseType(0);
    w.txtLoanValue->SetFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_7, Qt::NoModifier);
    EXPECT_EQ(w.txtLoanValue->Value(), u"7"_s);
    w.txtLoanValue->setText(u"1000"_s);
    w.datBeginDate->setFarsidate(u"1403/02/15"_s);
    // A count that rounds to 0 fails only the modulo of the last step, after the box's own
    // focus change: what was computed before it stays written.
    w.txtPayBackNumber->setFocus();
    QApplication::processEvents();
    w.txtPayBackNumber->setText(u"0.4"_s);
    w.txtNotes->setFocus();
    QApplication::processEvents();
    EXPECT_TRUE(Shown().value(0).startsWith(u"خطا: "_s));
    EXPECT_EQ(w.TxtPerMonth->Value() + w.datEndDate->farsidate(), u"25001403/01/31"_s);
    EXPECT_EQ(mode(), ModeNew);
}
