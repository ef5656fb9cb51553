#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "EditorFixture.h"
#include "controls/FlexGrid.h"
#include "controls/QtPrinters.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// The whole mode table of the window. Kind 'E': enabled or disabled; 'L': locked or open.
// Per mode (view, edit, new, empty): '1' on or locked, '0' off or open, 'T' on for a
// temporary loan only, 'F' on for a final loan only, '-' left as it was.
struct ModeRow {
    const char* control;
    char kind;
    const char* modes;
};
const ModeRow kModeTable[] = {
    {"cmdNew", 'E', "1001"},
    {"mnuNew", 'E', "1001"},
    {"cmdEdit", 'E', "T000"},
    {"mnuEdit", 'E', "T000"},
    {"cmdDelete", 'E', "T000"},
    {"mnuDelete", 'E', "T000"},
    {"cmdRegSave", 'E', "0110"},
    {"cmdFinSave", 'E', "0110"},
    {"mnuRegSave", 'E', "0110"},
    {"mnuFinSave", 'E', "0110"},
    {"cmdCancel", 'E', "0110"},
    {"mnuCancel", 'E', "0110"},
    {"cmdExit", 'E', "1001"},
    {"mnuExit", 'E', "1001"},
    {"cmdSearch", 'E', "1001"},
    {"mnusearch", 'E', "1101"},
    {"cmdBacktoTemp", 'E', "FF00"},
    {"cmdBalance", 'E', "1000"},
    {"cmdAddEmp", 'E', "0100"},
    {"cmdAddOrdinanceEmployees", 'E', "0100"},
    {"cmdDeleteEmp", 'E', "0000"},
    {"cmdDefineAccount", 'E', "1000"},
    {"cmbLoanType", 'E', "0110"},
    {"datLoanPayDate", 'E', "0110"},
    {"datBeginDate", 'E', "0110"},
    {"datEndDate", 'E', "0110"},
    {"txtLoanValue", 'L', "1001"},
    {"TxtPerMonth", 'L', "1001"},
    {"txtOriginalValue", 'L', "-001"},
    {"txtNotes", 'L', "1001"},
    {"txtPayBackNumber", 'L', "1001"},
    {"UseRemainedValueInFirstMonthF", 'E', "0110"},
    {"UseRemainedValueInFirstMonthL", 'E', "0110"},
    {"UseRemainedValueInSeparatedLastMonth", 'E', "0110"},
    {"chkISValid", 'E', "01--"},
};

// Enabled ('E') or locked ('L') as the clerk sees it.
bool stateOf(FormHRLoan& w, const ModeRow& row) {
    const QString name = QString::fromLatin1(row.control);
    if (auto* a = w.findChild<QAction*>(name)) return a->isEnabled();
    QWidget* widget = w.findChild<QWidget*>(name);
    if (row.kind == 'E') return widget->isEnabled();
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit->isReadOnly();
    return widget->property("locked").toBool();
}

void setState(FormHRLoan& w, const ModeRow& row, bool value) {
    const QString name = QString::fromLatin1(row.control);
    if (auto* a = w.findChild<QAction*>(name)) return a->setEnabled(value);
    QWidget* widget = w.findChild<QWidget*>(name);
    if (row.kind == 'E') return widget->setEnabled(value);
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit->setReadOnly(value);
    widget->setProperty("locked", value);
}

void setMode(FormHRLoan& w, Session& s, qint32 mode) {
    s.LoanFormMode = mode;
    w.DisableLockComponent();
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
                for (const ModeRow& row : kModeTable) setState(w, row, before);
                setMode(w, session(), mode);
                EXPECT_EQ(w.windowTitle(), titles[mode]);
                for (const ModeRow& row : kModeTable) {
                    const char cell = row.modes[mode];
                    const bool want = cell == '-'   ? before
                                      : cell == 'T' ? !final
                                      : cell == 'F' ? final
                                                    : cell == '1';
                    EXPECT_EQ(stateOf(w, row), want)
                        << row.control << " mode " << mode << (final ? " final" : " temporary")
                        << " was " << before;
                }
            }
        }
    }
}

TEST_F(EditorTest, EachCommandNeedsItsOwnPermission) {
    auto& w = editor();
    struct Case {
        qint32 revoked;
        bool mayCreate, mayEdit, mayDelete;
    };
    for (const Case& c : {Case{0, true, true, true}, Case{111802, false, true, false},
                          Case{111803, true, false, true}}) {
        t.db.exec(u"delete from tblVarekUserPermission"_s);
        for (const qint32 p : {111801, 111802, 111803})
            if (p != c.revoked) t.grant(1, {p});
        const QString why = QString::number(c.revoked);
        auto refused = [&] {
            return !t.messages->shown.isEmpty() && t.messages->last().title == u"خطا"_s &&
                   t.messages->last().text ==
                       u"شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s;
        };

        w.ViewPRSLoansInfo(TemporaryLoan);
        t.messages->shown.clear();
        w.cmdNew_Click();
        EXPECT_EQ(session().LoanFormMode, c.mayCreate ? ModeNew : ModeView) << why.toStdString();
        EXPECT_EQ(refused(), !c.mayCreate) << why.toStdString();

        w.ViewPRSLoansInfo(TemporaryLoan);
        t.messages->shown.clear();
        w.cmdEdit_Click();
        EXPECT_EQ(session().LoanFormMode, c.mayEdit ? ModeEdit : ModeView) << why.toStdString();
        EXPECT_EQ(refused(), !c.mayEdit) << why.toStdString();

        w.ViewPRSLoansInfo(TemporaryLoan);
        t.messages->shown.clear();
        t.messages->answers = {0};  // allowed, the delete is asked and then declined
        w.cmdDelete_Click();
        EXPECT_EQ(refused(), !c.mayDelete) << why.toStdString();
        EXPECT_EQ(t.messages->shown.size(), 1);
        EXPECT_EQ(t.db.scalar(u"select count(*) from tblHRLoan where ID=1"_s).toInt(), 1);
    }
}

TEST_F(EditorTest, OpeningAFinalAndATemporaryLoan) {
    auto& w = editor();
    EXPECT_TRUE(w.ViewPRSLoansInfo(FinalLoan));
    EXPECT_EQ(session().CurrentLoanID, FinalLoan);
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان (مشاهده)"_s);
    EXPECT_EQ(w.txtCode->text(), u"7"_s);
    EXPECT_FALSE(w.cmdEdit->isEnabled());
    EXPECT_FALSE(w.cmdDelete->isEnabled());
    EXPECT_TRUE(w.cmdBacktoTemp->isEnabled());
    EXPECT_TRUE(w.UseRemainedValueInFirstMonthL->isChecked());

    w.ViewPRSLoansInfo(TemporaryLoan);
    EXPECT_TRUE(w.cmdEdit->isEnabled());
    EXPECT_TRUE(w.cmdDelete->isEnabled());
    EXPECT_FALSE(w.cmdBacktoTemp->isEnabled());
    EXPECT_EQ(w.txtID->text(), u"1"_s);
    EXPECT_EQ(w.cmbLoanType->currentText(), u"قرض الحسنه"_s);
    EXPECT_EQ(w.txtLoanValue->Value(), u"1000000"_s);
    EXPECT_EQ(w.txtOriginalValue->Value(), u"1200000"_s);
    EXPECT_EQ(w.TxtPerMonth->Value(), u"83333"_s);
    EXPECT_EQ(w.txtPayBackNumber->text(), u"12"_s);
    EXPECT_EQ(w.txtRem->Value(), u"4"_s);  // 1000000 - 83333 x 12
    EXPECT_EQ(w.datLoanPayDate->farsidate(), u"1403/01/06"_s);
    EXPECT_EQ(w.datBeginDate->farsidate(), u"1403/01/31"_s);
    EXPECT_EQ(w.datEndDate->farsidate(), u"1403/12/30"_s);
    EXPECT_EQ(w.txtNotes->text(), u"وام مسکن"_s);
    EXPECT_TRUE(w.UseRemainedValueInFirstMonthF->isChecked());
    EXPECT_EQ(w.StateValue(), 1);
}

TEST_F(EditorTest, FillLoanWithNullsAndEachRemainderOption) {
    auto& w = editor();
    w.ViewPRSLoansInfo(SeparateLoan);
    EXPECT_TRUE(w.UseRemainedValueInSeparatedLastMonth->isChecked());
    w.ViewPRSLoansInfo(SparseLoan);
    EXPECT_FALSE(w.UseRemainedValueInFirstMonthF->isChecked());
    EXPECT_FALSE(w.UseRemainedValueInFirstMonthL->isChecked());
    EXPECT_FALSE(w.UseRemainedValueInSeparatedLastMonth->isChecked());
    EXPECT_EQ(w.cmbLoanType->currentText(), u"ضروري"_s);
    EXPECT_TRUE(w.datLoanPayDate->IsEmpty());
    // Begin and end dates show only when their Gregorian dates are stored.
    EXPECT_TRUE(w.datBeginDate->IsEmpty());
    EXPECT_TRUE(w.datEndDate->IsEmpty());
    EXPECT_TRUE(w.TxtPerMonth->Text().isEmpty());
    EXPECT_TRUE(w.txtPayBackNumber->text().isEmpty());
    EXPECT_TRUE(w.txtNotes->text().isEmpty());
    EXPECT_TRUE(w.txtOriginalValue->Text().isEmpty());
    EXPECT_TRUE(w.txtRem->Text().isEmpty());
    EXPECT_EQ(w.txtLoanValue->Value(), u"500"_s);
    EXPECT_EQ(w.FlexEmployee->Rows(), 1);
}

TEST_F(EditorTest, MembersShowWithGuarantorsAndNullMarkers) {
    auto& w = editor();
    w.ViewPRSLoansInfo(TemporaryLoan);
    const auto* g = w.FlexEmployee;
    ASSERT_EQ(g->Rows(), 3);
    EXPECT_EQ(g->Cols(), 10);
    EXPECT_EQ(g->TextMatrix(0, 2), u"کد   کارمند"_s);
    EXPECT_EQ(g->TextMatrix(1, 0), u"1"_s);
    EXPECT_EQ(g->TextMatrix(1, 1), u"1"_s);
    EXPECT_EQ(g->TextMatrix(1, 2), u"1001"_s);
    EXPECT_EQ(g->TextMatrix(1, 3), u"علي  رضايي"_s);  // two blanks when loaded
    EXPECT_EQ(g->TextMatrix(1, 4), u"مريم احمدي"_s);
    EXPECT_EQ(g->TextMatrix(1, 5), u"حسن کريمي"_s);
    EXPECT_EQ(g->TextMatrix(1, 7), u"2"_s);
    EXPECT_EQ(g->TextMatrix(1, 9), u"null"_s);
    EXPECT_EQ(g->TextMatrix(2, 7), u"null"_s);
    EXPECT_EQ(g->ColWidth(1), 0);
    EXPECT_EQ(g->ColWidth(7), 2000);
    EXPECT_EQ(g->ColWidth(8), 0);
    // Loading another loan shows only its members.
    w.ViewPRSLoansInfo(FinalLoan);
    EXPECT_EQ(g->Rows(), 2);
}

TEST_F(EditorTest, NewClearsAndProposesTheDefaultDates) {
    auto& w = editor();
    w.ViewPRSLoansInfo(TemporaryLoan);
    w.cmdNew_Click();
    EXPECT_EQ(session().LoanFormMode, ModeNew);
    EXPECT_EQ(w.lblMessage->text(), u"وام کارمندان جديد"_s);
    EXPECT_EQ(w.txtID->text(), u"1"_s);  // Clear leaves the id alone
    EXPECT_TRUE(w.txtCode->text().isEmpty());
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
    EXPECT_EQ(w.cmbLoanType->currentIndex(), -1);
    EXPECT_EQ(w.cmbLoanType->count(), 2);
    EXPECT_EQ(w.FlexEmployee->Rows(), 1);
    EXPECT_TRUE(w.UseRemainedValueInSeparatedLastMonth->isChecked());
    EXPECT_FALSE(w.chkISValid->isChecked());
    // Payment date from parameter 3450, first instalment the last day of its month.
    EXPECT_EQ(w.datLoanPayDate->farsidate(), u"1403/05/20"_s);
    EXPECT_EQ(w.datBeginDate->farsidate(), u"1403/05/31"_s);
    EXPECT_TRUE(w.datEndDate->IsEmpty());
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

TEST_F(EditorTest, DefaultPaymentDateIsTodayWithoutTheParameter) {
    t.db.exec(u"delete from tblVarekSystemParameters"_s);
    const QCalendar jalali(QCalendar::System::Jalali);
    const auto today = jalali.partsFromDate(QDate::currentDate());
    EXPECT_EQ(editor().DefaultPayDate(), u"%1/%2/%3"_s.arg(today.year)
                                             .arg(today.month, 2, 10, QChar(u'0'))
                                             .arg(today.day, 2, 10, QChar(u'0')));
}

TEST_F(EditorTest, EditStartsAnEditUnlessPayslipsHoldTheLoan) {
    auto& w = editor();
    w.ViewPRSLoansInfo(PaidLoan);
    w.cmdEdit_Click();
    EXPECT_EQ(session().LoanFormMode, ModeView);
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"اشکال"_s);
    EXPECT_EQ(t.messages->last().text,
              u"به دليل محاسبه در فيش هاي حقوقي (2 عدد)، امکان حذف وجود ندارد!"_s);

    w.ViewPRSLoansInfo(TemporaryLoan);
    w.cmdEdit_Click();
    EXPECT_EQ(session().LoanFormMode, ModeEdit);
    EXPECT_EQ(session().LoanEditStarted, 1);
    EXPECT_EQ(w.lblMessage->text(), u"اصلاح وام کارمندان"_s);
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان (ويرايش)"_s);
}

TEST_F(EditorTest, CancelReloadsAStoredLoanOrEmptiesTheWindow) {
    auto& w = editor();
    w.ViewPRSLoansInfo(TemporaryLoan);
    w.cmdEdit_Click();
    w.txtLoanValue->setText(u"5"_s);
    w.txtNotes->setText(u"changed"_s);

    for (const QVariant& answer : {QVariant(0), QVariant(5)}) {  // no, and no answer
        t.messages->answers = {answer};
        w.cmdCancel_Click();
        EXPECT_EQ(session().LoanFormMode, ModeEdit);
        EXPECT_EQ(w.txtNotes->text(), u"changed"_s);
    }
    EXPECT_EQ(t.messages->last().title, u"انصراف از ثبت وام کارمندان"_s);
    EXPECT_EQ(t.messages->last().text, u"آيا مطمئن هستيد؟"_s);

    t.messages->answers = {1};
    w.cmdCancel_Click();
    EXPECT_EQ(session().LoanFormMode, ModeView);
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_EQ(w.txtLoanValue->Value(), u"1000000"_s);
    EXPECT_EQ(w.txtNotes->text(), u"وام مسکن"_s);
    EXPECT_TRUE(w.lblMessage->text().isEmpty());

    w.cmdNew_Click();
    w.txtID->clear();
    w.txtLoanValue->setText(u"5"_s);
    t.messages->answers = {1};
    w.cmdCancel_Click();
    EXPECT_EQ(session().LoanFormMode, ModeEmpty);
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان"_s);
}

TEST_F(EditorTest, UnloadAsksByModeAndOnlyNoKeepsTheWindow) {
    auto& w = editor();
    struct Case {
        qint16 loan;
        qint32 mode;
        const char* question;  // nullptr: closes without asking
    };
    const QString temporary =
        u"در صورتي که اطلاعات را ثبت قطعي نکنيد، در محاسبات فيش حقوقي لحاظ نخواهد شد، آيا قصد خروج داريد؟"_s;
    const QString editing =
        u"اطلاعات ممکن است تغيير کرده باشد، آيا قصد خروج بدون ثبت تغييرات داريد؟"_s;
    for (const qint32 mode : {0, 1, 2, 3}) {
        for (const bool final : {false, true}) {
            w.ViewPRSLoansInfo(final ? FinalLoan : TemporaryLoan);
            session().LoanFormMode = mode;
            for (const QVariant& answer : {QVariant(1), QVariant(0), QVariant(5)}) {
                t.messages->shown.clear();
                t.messages->answers = {answer};
                const bool closes = w.Form_Unload();
                const bool asks = (mode == 0 && !final) || mode == 1 || mode == 2;
                ASSERT_EQ(t.messages->shown.size(), asks ? 1 : 0) << mode << final;
                if (!asks) {
                    EXPECT_TRUE(closes);
                    continue;
                }
                EXPECT_EQ(t.messages->last().title, u"هشدار"_s);
                EXPECT_EQ(t.messages->last().text, mode == 0 ? temporary : editing);
                EXPECT_EQ(closes, answer.toInt() != 0) << "answer " << answer.toInt();
            }
        }
    }
}

TEST_F(EditorTest, ClosingByTheExitButtonRunsTheQuestions) {
    auto& w = editor();
    w.show();
    w.ViewPRSLoansInfo(TemporaryLoan);
    t.messages->answers = {0};
    w.cmdExit_Click();
    EXPECT_TRUE(w.isVisible());
    EXPECT_FALSE(w.IsUnloaded());
    t.messages->answers = {1};
    w.cmdExit_Click();
    EXPECT_FALSE(w.isVisible());
    EXPECT_TRUE(w.IsUnloaded());
}

TEST_F(EditorTest, TimerKeepsSaveAndMemberButtonsInStep) {
    auto& w = editor();
    w.cmdNew_Click();
    w.Timer1_Timer();
    EXPECT_FALSE(w.cmdRegSave->isEnabled());
    EXPECT_FALSE(w.cmdFinSave->isEnabled());
    w.txtLoanValue->setText(u"1000"_s);
    w.cmbLoanType->setCurrentIndex(0);
    w.Timer1_Timer();
    EXPECT_FALSE(w.cmdRegSave->isEnabled());  // no end date yet
    w.datEndDate->setFarsidate(u"1403/12/29"_s);
    w.Timer1_Timer();
    EXPECT_TRUE(w.cmdRegSave->isEnabled());
    EXPECT_TRUE(w.cmdFinSave->isEnabled());
    EXPECT_FALSE(w.cmdAddEmp->isEnabled());  // members only while editing
    EXPECT_FALSE(w.cmdAddOrdinanceEmployees->isEnabled());

    w.ViewPRSLoansInfo(SparseLoan);  // no members
    w.cmdEdit_Click();
    w.cmdDeleteEmp->setEnabled(true);
    w.Timer1_Timer();
    EXPECT_TRUE(w.cmdAddEmp->isEnabled());
    EXPECT_TRUE(w.cmdAddOrdinanceEmployees->isEnabled());
    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());
    EXPECT_FALSE(w.cmdRegSave->isEnabled());  // no end date

    w.ViewPRSLoansInfo(TemporaryLoan);  // two members
    w.cmdEdit_Click();
    w.cmdDeleteEmp->setEnabled(true);
    w.Timer1_Timer();
    EXPECT_TRUE(w.cmdDeleteEmp->isEnabled());  // left to the grid's own clicks
    EXPECT_TRUE(w.cmdRegSave->isEnabled());

    session().LoanFormMode = ModeView;
    w.cmdRegSave->setEnabled(false);
    w.Timer1_Timer();
    EXPECT_FALSE(w.cmdAddEmp->isEnabled());
    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());
    EXPECT_FALSE(w.cmdRegSave->isEnabled());  // view mode leaves the saves alone
}

TEST_F(EditorTest, MenuItemsForwardOnlyToEnabledButtons) {
    auto& w = editor();
    w.ViewPRSLoansInfo(TemporaryLoan);
    w.cmdNew->setEnabled(false);
    w.mnuNew->setEnabled(true);
    w.mnuNew->trigger();
    EXPECT_EQ(session().LoanFormMode, ModeView);
    w.cmdNew->setEnabled(true);
    w.mnuNew->trigger();
    EXPECT_EQ(session().LoanFormMode, ModeNew);
}
