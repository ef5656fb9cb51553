// The adjustment window: its mode table, the save's checks in their order, the questions,
// database failures, editing round trips and the member's schedule on screen.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "AdjustmentFixture.h"
#include "adjustments/FormList.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

const QString kWarning = u"هشدار"_s;
const QString kReversed = u"تاريخ شروع تعديل وام,از پايان آن بزرگتر انتخاب شده است."_s;
const QString kOutside = u"بازه تعديل با توجه به بازه پرداخت وام به درستي تعيين نشده است."_s;
const QString kAbove = u"مقدار قسط بايد كمتر از مبلغ باشد."_s;

void setMode(FormHRException& w, Session& s, qint32 mode) {
    s.LoanFormMode = mode;
    w.DisableLockComponent();
}

}  // namespace

TEST_F(AdjustmentTest, ModeTableAppliedCellByCell) {
    enum What { Enabled, Locked, ReadOnly };
    struct Cell {
        const char* control;
        What what;
        std::array<bool, 4> byMode;  // modes 0 view, 1 edit, 2 new, 3 empty
    };
    const Cell table[] = {
        {"cmdNew", Enabled, {true, false, false, true}},
        {"cmdEdit", Enabled, {true, false, false, false}},
        {"cmdDelete", Enabled, {true, false, false, false}},
        {"cmdSave", Enabled, {false, true, true, false}},
        {"cmdCancel", Enabled, {false, true, true, false}},
        {"cmdExit", Enabled, {true, true, true, true}},
        {"cmdList", Enabled, {true, true, true, true}},
        {"gdcBalancePF", Locked, {true, false, false, true}},
        {"gdcBalancePT", Locked, {true, false, false, true}},
        {"gmpEmployee", Locked, {true, false, false, true}},
        {"TxtPerMonth", ReadOnly, {true, false, false, false}},
    };
    auto& w = open();
    for (const qint32 mode : {3, 0, 1, 2, 3, 2, 0, 1, 0}) {
        setMode(w, session(), mode);
        for (const Cell& c : table) {
            QWidget* control = w.findChild<QWidget*>(QString::fromLatin1(c.control));
            ASSERT_NE(control, nullptr) << c.control;
            const bool want = c.byMode[std::size_t(mode)];
            switch (c.what) {
                case Enabled:
                    EXPECT_EQ(control->isEnabled(), want) << c.control << " mode " << mode;
                    break;
                case Locked:
                    EXPECT_EQ(control->property("locked").toBool(), want)
                        << c.control << " mode " << mode;
                    EXPECT_TRUE(control->isEnabled()) << c.control << " is locked, never greyed";
                    break;
                case ReadOnly:
                    EXPECT_EQ(qobject_cast<QLineEdit*>(control)->isReadOnly(), want)
                        << c.control << " mode " << mode;
                    break;
            }
        }
    }
}

TEST_F(AdjustmentTest, OpensEmptyOnTheEditorsLoanAndMemberWithItsCaptions) {
    session().LoanFormMode = 0;  // the editor's view mode
    auto& w = open(u"1"_s, 2);
    EXPECT_EQ(t.modalShown, 1);
    EXPECT_EQ(session().LoanFormMode, 3);
    EXPECT_EQ(w.windowTitle(), u"تعديل وام"_s);
    EXPECT_EQ(w.txtPaidID->text(), u"1"_s);
    EXPECT_EQ(w.gmpEmployee->Value(), 2);
    EXPECT_TRUE(w.txtID->text().isEmpty());
    const std::pair<QPushButton*, QString> captions[] = {
        {w.cmdNew, u"جديد"_s}, {w.cmdEdit, u"اصلاح"_s},    {w.cmdDelete, u"حذف"_s},
        {w.cmdSave, u"ثبت"_s}, {w.cmdCancel, u"انصراف"_s}, {w.cmdList, u"جستجو"_s},
        {w.cmdExit, u"خروج"_s}};
    for (const auto& [button, caption] : captions) EXPECT_EQ(button->text(), caption);
    QStringList labels;
    for (const QLabel* l : w.findChildren<QLabel*>()) labels << l->text();
    for (const QString& label : {u"كارمند:"_s, u"از تاريخ:"_s, u"تا تاريخ:"_s, u"اقساط ماهيانه:"_s})
        EXPECT_TRUE(labels.contains(label)) << label.toStdString();

    // Without a member of the editor's grid the selector stays empty and the schedule says so.
    auto& empty = open(u"1"_s, -1);
    EXPECT_EQ(empty.gmpEmployee->Value(), -1);
    EXPECT_EQ(empty.lblBalanceProblem->text(), u"کارمندي انتخاب نشده است."_s);
}

TEST_F(AdjustmentTest, SaveChecksRunInTheirOrder) {
    auto& w = open();
    struct Case {
        const char16_t *from, *to, *perMonth;
        const QString* warning;  // nullptr: stored
    };
    const Case refused[] = {
        {u"1402/05/01", u"1402/04/01", u"1000", &kReversed},
        // Reversed, outside the loan and above the amount: the first check speaks.
        {u"1403/05/01", u"1401/01/01", u"99000000", &kReversed},
        {u"1402/01/01", u"1402/05/31", u"1000", &kOutside},  // starts before the loan's first month
        // Ends after the loan's settlement and is above the amount: the period speaks.
        {u"1402/03/01", u"1403/01/31", u"70000000", &kOutside},
        {u"1402/03/01", u"1402/04/31", u"60000001", &kAbove},
        {u"1402/03/01", u"1402/04/31", u"60/000/001", &kAbove},
    };
    for (const Case& c : refused) {
        enterNew(QString::fromUtf16(c.from), QString::fromUtf16(c.to),
                 QString::fromUtf16(c.perMonth));
        SCOPED_TRACE(QString::fromUtf16(c.from).toStdString());
        ASSERT_FALSE(t.messages->shown.isEmpty());
        EXPECT_EQ(t.messages->last().title, kWarning);
        EXPECT_EQ(t.messages->last().text, *c.warning);
        EXPECT_EQ(session().LoanFormMode, 2);
        EXPECT_EQ(adjustmentCount(), 2);
        EXPECT_EQ(w.gdcBalancePF->farsidate(), QString::fromUtf16(c.from));
        // Only the instalment warning empties the instalment.
        EXPECT_EQ(w.TxtPerMonth->text().isEmpty(), c.warning == &kAbove);
        t.messages->shown.clear();
    }

    // Equal to the loan amount passes, although the warning speaks of a smaller one.
    enterNew(u"1402/03/01"_s, u"1402/04/31"_s, u"60000000"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty()) << t.messages->texts().join(u'\n').toStdString();
    EXPECT_EQ(session().LoanFormMode, 0);
    const QString id = w.txtID->text();
    EXPECT_EQ(
        t.db.scalar(u"select MonthlyDebit from tblHRLoanException where ID="_s + id).toLongLong(),
        60000000);
    // Equal dates pass; Persian digits and grouping read as the amount they are.
    enterNew(u"1402/06/15"_s, u"1402/06/15"_s, u"۲/۵۰۰/۰۰۰"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
    const auto row = t.db.rows(u"select * from tblHRLoanException where ID="_s + w.txtID->text());
    ASSERT_EQ(row.size(), 1);
    EXPECT_EQ(row[0][u"monthlydebit"_s].toLongLong(), 2500000);
    EXPECT_EQ(row[0][u"loanid"_s].toInt(), 1);
    EXPECT_EQ(row[0][u"begindate"_s].toString(), u"2023-09-06"_s);
    EXPECT_EQ(row[0][u"farsienddate"_s].toString(), u"1402/06/15"_s);
}

TEST_F(AdjustmentTest, TheUncheckedPathsAreKept) {
    auto& w = open();
    // An employee who is not a member: no loan row, nothing checked, stored as typed.
    enterNew(u"1401/01/01"_s, u"1405/01/01"_s, u"99000000"_s, 3);
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(adjustmentCount(), 3);

    // The deliberate gap: in edit mode an empty date skips the period and amount checks and
    // stores the empty text with 1900-01-01; an empty instalment stores -1.
    w.ShowFormToEdit(1);
    w.cmdEdit_Click();
    w.gdcBalancePT->Clear();
    w.TxtPerMonth->setText(u"99000000"_s);
    w.cmdSave_Click();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    auto row = t.db.rows(u"select * from tblHRLoanException where ID=1"_s);
    EXPECT_EQ(row[0][u"farsienddate"_s].toString(), u""_s);
    EXPECT_EQ(row[0][u"enddate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(row[0][u"monthlydebit"_s].toLongLong(), 99000000);
    w.cmdEdit_Click();
    w.gdcBalancePF->Clear();
    w.TxtPerMonth->clear();
    w.cmdSave_Click();
    row = t.db.rows(u"select * from tblHRLoanException where ID=1"_s);
    EXPECT_EQ(row[0][u"begindate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(row[0][u"monthlydebit"_s].toLongLong(), -1);
    w.ShowFormToEdit(1);
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());  // -1 reads back as no amount

    // Text that is no amount is refused with a clear warning, in either path.
    for (const QString& from : {u"1402/03/01"_s, QString()}) {
        w.cmdNew_Click();
        w.gdcBalancePF->setFarsidate(from);
        w.gdcBalancePT->setFarsidate(u"1402/04/31"_s);
        w.TxtPerMonth->setText(u"12abc"_s);
        w.cmdSave_Click();
        EXPECT_EQ(t.messages->last().title, kWarning);
        EXPECT_EQ(t.messages->last().text,
                  u"مقدار «12abc» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
        EXPECT_EQ(session().LoanFormMode, 2);
    }
    EXPECT_EQ(adjustmentCount(), 3);

    // The editor shows no stored loan: nothing is checked or stored, the window goes to view.
    editor.state = 0;
    t.messages->shown.clear();
    enterNew(u"1402/05/01"_s, u"1402/04/01"_s, u"1000"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(adjustmentCount(), 3);
}

TEST_F(AdjustmentTest, TheTimerEnablesSaveOnlyForACompleteNewRecord) {
    auto& w = open();
    w.cmdNew_Click();
    w.gmpEmployee->Clear();
    auto tick = [&] {
        w.Timer1_Timer();
        return w.cmdSave->isEnabled();
    };
    EXPECT_FALSE(tick());
    w.gmpEmployee->setValue(1);
    w.gdcBalancePF->setFarsidate(u"1402/03/01"_s);
    w.gdcBalancePT->setFarsidate(u"1402/04/31"_s);
    w.TxtPerMonth->setText(u"   "_s);
    EXPECT_FALSE(tick());
    w.TxtPerMonth->setText(u"1000"_s);
    EXPECT_TRUE(tick());
    w.gdcBalancePT->Clear();
    EXPECT_FALSE(tick());
    // In edit mode the timer leaves Save as the mode made it.
    setMode(w, session(), 1);
    EXPECT_TRUE(tick());
}

TEST_F(AdjustmentTest, DeleteAndCancelGoOnOnlyOnYes) {
    auto& w = open();
    const QVariant yes = 1, no = 0, none = 2;  // Resualt values; 2 gives the answer 0
    for (const QVariant& answer : {no, none}) {
        w.ShowFormToEdit(1);
        t.messages->answers = {answer};
        w.cmdDelete_Click();
        EXPECT_EQ(t.messages->last().title, u"حذف  وام کارمندان"_s);
        EXPECT_EQ(t.messages->last().text, u"آيا مطمئن هستيد؟"_s);
        EXPECT_EQ(t.messages->last().type, 1);
        EXPECT_EQ(w.lblMessage->text(), u"حذف وام کارمندان"_s);
        EXPECT_EQ(session().LoanFormMode, 0);
        EXPECT_EQ(adjustmentCount(), 2);

        w.cmdEdit_Click();
        EXPECT_EQ(session().LoanEditStarted, 1);
        w.TxtPerMonth->setText(u"7"_s);
        t.messages->answers = {answer};
        w.cmdCancel_Click();
        EXPECT_EQ(t.messages->last().title, u"انصراف از ثبت وام کارمندان"_s);
        EXPECT_EQ(w.TxtPerMonth->text(), u"7"_s);
        EXPECT_EQ(session().LoanFormMode, 1);
        EXPECT_EQ(session().LoanEditStarted, 1);
    }
    // Yes to cancel: the stored record comes back, in view mode.
    t.messages->answers = {yes};
    w.cmdCancel_Click();
    EXPECT_EQ(w.TxtPerMonth->text(), u"2000000"_s);
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(session().LoanEditStarted, 0);
    // Yes to delete: gone, the window empty.
    t.messages->answers = {yes};
    w.cmdDelete_Click();
    EXPECT_EQ(adjustmentCount(), 1);
    EXPECT_EQ(session().LoanFormMode, 3);
    EXPECT_TRUE(w.txtID->text().isEmpty());
    EXPECT_TRUE(w.gdcBalancePF->IsEmpty());
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());
    // Yes to cancel a new record never saved: emptied, empty mode.
    w.cmdNew_Click();
    w.TxtPerMonth->setText(u"5"_s);
    t.messages->answers = {yes};
    w.cmdCancel_Click();
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());
    EXPECT_EQ(session().LoanFormMode, 3);
}

TEST_F(AdjustmentTest, ADatabaseErrorIsShownAndLeavesModeContentsAndData) {
    t.db.exec(
        {u"create trigger frozen_insert before insert on tblHRLoanException begin "
         u"select raise(abort, 'adjustments are frozen'); end"_s,
         u"create trigger frozen_update before update on tblHRLoanException begin "
         u"select raise(abort, 'adjustments are frozen'); end"_s,
         u"create trigger frozen_delete before delete on tblHRLoanException begin "
         u"select raise(abort, 'adjustments are frozen'); end"_s});
    auto& w = open();
    auto expectError = [&](qint32 mode) {
        ASSERT_FALSE(t.messages->shown.isEmpty());
        EXPECT_EQ(t.messages->last().title, u"خطا"_s);
        EXPECT_TRUE(t.messages->last().text.contains(u"adjustments are frozen"_s))
            << t.messages->last().text.toStdString();
        EXPECT_EQ(session().LoanFormMode, mode);
        EXPECT_EQ(adjustmentCount(), 2);
        t.messages->shown.clear();
    };
    w.cmdNew_Click();
    w.gdcBalancePF->setFarsidate(u"1402/03/01"_s);
    w.gdcBalancePT->setFarsidate(u"1402/04/31"_s);
    w.TxtPerMonth->setText(u"1000"_s);
    w.cmdSave->click();  // through the handler boundary, as a click
    expectError(2);
    EXPECT_TRUE(w.txtID->text().isEmpty());
    EXPECT_EQ(w.TxtPerMonth->text(), u"1000"_s);
    EXPECT_EQ(w.gdcBalancePT->farsidate(), u"1402/04/31"_s);

    w.ShowFormToEdit(1);
    w.cmdEdit_Click();
    w.TxtPerMonth->setText(u"3000"_s);
    w.cmdSave->click();
    expectError(1);
    EXPECT_EQ(w.TxtPerMonth->text(), u"3000"_s);

    setMode(w, session(), 0);
    t.messages->answers = {1};
    w.cmdDelete->click();
    ASSERT_GE(t.messages->shown.size(), 2);
    t.messages->shown.removeFirst();  // the question
    expectError(0);
    EXPECT_EQ(w.txtID->text(), u"1"_s);

    // Nothing was left open: once the database accepts writes, saving again works.
    t.db.exec({u"drop trigger frozen_update"_s});
    setMode(w, session(), 1);
    w.cmdSave->click();
    EXPECT_TRUE(t.messages->shown.isEmpty()) << t.messages->texts().join(u'\n').toStdString();
    EXPECT_EQ(t.db.scalar(u"select MonthlyDebit from tblHRLoanException where ID=1"_s).toInt(),
              3000);
}

TEST_F(AdjustmentTest, EditingRoundTripsTheStoredValues) {
    auto& w = open();
    w.ShowFormToEdit(1);
    EXPECT_EQ(w.txtID->text(), u"1"_s);
    EXPECT_EQ(w.gmpEmployee->Value(), 1);
    EXPECT_EQ(w.gdcBalancePF->farsidate(), u"1402/03/01"_s);
    EXPECT_EQ(w.gdcBalancePT->farsidate(), u"1402/04/31"_s);
    EXPECT_EQ(w.TxtPerMonth->text(), u"2000000"_s);
    EXPECT_EQ(session().LoanFormMode, 0);
    w.cmdEdit_Click();
    EXPECT_EQ(w.TxtPerMonth->text(), u"2/000/000"_s);
    EXPECT_EQ(w.lblMessage->text(), u"اصلاح وام کارمندان"_s);
    w.gmpEmployee->setValue(2);
    w.gdcBalancePF->setFarsidate(u"1402/05/01"_s);
    w.gdcBalancePT->setFarsidate(u"1402/07/30"_s);
    w.TxtPerMonth->setText(u"3/500/000"_s);
    w.cmdSave_Click();
    EXPECT_TRUE(t.messages->shown.isEmpty()) << t.messages->texts().join(u'\n').toStdString();
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_TRUE(w.lblMessage->text().isEmpty());
    const auto row = t.db.rows(u"select * from tblHRLoanException where ID=1"_s);
    EXPECT_EQ(row[0][u"employeeid"_s].toInt(), 2);
    EXPECT_EQ(row[0][u"farsibegindate"_s].toString(), u"1402/05/01"_s);
    EXPECT_EQ(row[0][u"enddate"_s].toString(), u"2023-10-22"_s);
    EXPECT_EQ(row[0][u"monthlydebit"_s].toLongLong(), 3500000);
    EXPECT_EQ(adjustmentCount(), 2);

    // An adjustment of another loan opened from the list keeps its own loan when saved, and is
    // checked against that loan's amount (9,000,000), not the editor's.
    w.ShowFormToEdit(2);
    EXPECT_EQ(w.txtPaidID->text(), u"2"_s);
    w.cmdEdit_Click();
    w.gdcBalancePT->setFarsidate(u"1402/09/30"_s);
    w.TxtPerMonth->setText(u"9000001"_s);
    w.cmdSave_Click();
    EXPECT_EQ(t.messages->last().text, kAbove);
    w.TxtPerMonth->setText(u"9000000"_s);
    w.cmdSave_Click();
    EXPECT_EQ(t.db.scalar(u"select LoanID from tblHRLoanException where ID=2"_s).toInt(), 2);
}

TEST_F(AdjustmentTest, TheListIsForLookingOnlyWhileANewRecordIsEntered) {
    auto& w = open();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_EQ(t.modalShown, 2);
    auto& list = t.module.Window<FormList>();
    list.cmdSearch_Click();
    ASSERT_EQ(list.FlexEmployee->Rows(), 3);
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 2);  // the list holds a current row
    w.cmdNew_Click();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 1);
}

TEST_F(AdjustmentTest, TheMembersScheduleFollowsTheMemberAndTheAdjustments) {
    auto& w = open(u"1"_s, 1);
    // 60,000,000 at 5,000,000 from 1402/01, two payslips, 1402/03-04 at 2,000,000: the two
    // months' shortfall runs two months past the settlement in 1402/12.
    const controls::FlexGrid& g = *w.FlexBalance;
    ASSERT_EQ(g.Rows(), 1 + 14 + 1);
    const QStringList third = {g.TextMatrix(3, 0), g.TextMatrix(3, 1), g.TextMatrix(3, 2),
                               g.TextMatrix(3, 3), g.TextMatrix(3, 4), g.TextMatrix(3, 5)};
    EXPECT_EQ(third, (QStringList{u"3"_s, u"1402/03"_s, u"5/000/000"_s, u"2/000/000"_s, u""_s,
                                  u"48/000/000"_s}));
    EXPECT_EQ(g.TextMatrix(14, 1), u"1403/02"_s);
    EXPECT_EQ(g.TextMatrix(14, 6), u"پس از تاريخ تسويه"_s);
    EXPECT_EQ(g.TextMatrix(15, 1), u"جمع"_s);
    EXPECT_EQ(g.TextMatrix(15, 4), u"10/000/000"_s);
    auto info = [&](const char* name) {
        return w.findChild<QLabel*>(QString::fromLatin1(name))->text();
    };
    EXPECT_EQ(info("lblLoanCode"), u"4"_s);
    EXPECT_EQ(info("lblLoanValue"), u"60/000/000"_s);
    EXPECT_EQ(info("lblRemainder"), u"ماه آخر"_s);
    EXPECT_EQ(info("lblDebt"), u"50/000/000"_s);
    EXPECT_EQ(info("lblLastMonth"), u"1403/02"_s);
    EXPECT_TRUE(w.lblBalanceProblem->isHidden());
    EXPECT_TRUE(w.cmdExportCsv->isEnabled());

    // A new adjustment changes the schedule at once.
    enterNew(u"1402/05/01"_s, u"1402/12/29"_s, u"4000000"_s);
    EXPECT_EQ(w.FlexBalance->Rows(), 1 + 15 + 1);

    // Another member: not on the loan.
    w.gmpEmployee->setValue(3);
    emit w.gmpEmployee->Changed();
    EXPECT_EQ(w.lblBalanceProblem->text(), u"کارمند انتخاب شده عضو اين وام نيست."_s);
    EXPECT_EQ(w.FlexBalance->Rows(), 1);
    EXPECT_FALSE(w.cmdExportPdf->isEnabled());
    // A loan without an instalment has no schedule and says why.
    auto& other = open(u"2"_s, 2);
    EXPECT_EQ(
        other.lblBalanceProblem->text(),
        u"قسط ماهيانه وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s);
    EXPECT_EQ(other.FlexBalance->Rows(), 1);
}

TEST_F(AdjustmentTest, TheScheduleIsSavedThroughTheFileDialog) {
    auto& w = open(u"1"_s, 1);
    QTemporaryDir dir;
    QStringList asked;
    QString answer = dir.filePath(u"member"_s);
    w.saveFileDialog = [&](QWidget*, const QString& caption, const QString& suggested,
                           const QString& filter) {
        asked << caption << suggested << filter;
        return answer;
    };
    w.cmdExportCsv->click();
    EXPECT_EQ(asked, (QStringList{u"ذخيره برنامه بازپرداخت"_s, u"schedule-1-1001.csv"_s,
                                  u"CSV (*.csv)"_s}));
    QFile csv(answer + u".csv"_s);
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    const QByteArray bytes = csv.readAll();
    ASSERT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
    const QStringList lines = QString::fromUtf8(bytes.mid(3)).split(u"\r\n"_s);
    ASSERT_EQ(lines.size(), 1 + 14 + 1 + 1);  // the last line break ends an empty line
    EXPECT_EQ(lines[0], u"ماه,قسط برنامه,تعديل,کسر شده در فيش,مانده پس از ماه,توضيح"_s);
    EXPECT_EQ(lines[3], u"1402/03,5000000,2000000,,48000000,"_s);
    EXPECT_EQ(lines[15], u"جمع,66000000,4000000,10000000,0,"_s);

    answer = dir.filePath(u"member.pdf"_s);
    w.cmdExportPdf->click();
    QFile pdf(answer);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(4) == "%PDF");

    answer.clear();  // the clerk cancels the dialog
    asked.clear();
    w.cmdExportCsv->click();
    EXPECT_EQ(asked.size(), 3);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    EXPECT_TRUE(t.messages->shown.isEmpty()) << t.messages->texts().join(u'\n').toStdString();
}
