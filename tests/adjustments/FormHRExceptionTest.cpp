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
const QString kReversed = u"تاريخ شروع تعديل وام,از پايان آن بزرگتر انتخاب شده است."_s;
const QString kOutside = u"بازه تعديل با توجه به بازه پرداخت وام به درستي تعيين نشده است."_s;
const QString kAbove = u"مقدار قسط بايد كمتر از مبلغ باشد."_s;
}  // namespace

TEST_F(AdjustmentTest, ModeTableAndCaptions) {
    enum What { Enabled, Locked, ReadOnly };
    struct Cell {
        const char* control;
        What what;
        std::array<bool, 4> byMode;  // modes 0 view, 1 edit, 2 new, 3 empty
    };
    const Cell table[] = {
        {"cmdNew", Enabled, {1, 0, 0, 1}},       {"cmdEdit", Enabled, {1, 0, 0, 0}},
        {"cmdDelete", Enabled, {1, 0, 0, 0}},    {"cmdSave", Enabled, {0, 1, 1, 0}},
        {"cmdCancel", Enabled, {0, 1, 1, 0}},    {"cmdExit", Enabled, {1, 1, 1, 1}},
        {"cmdList", Enabled, {1, 1, 1, 1}},      {"gdcBalancePF", Locked, {1, 0, 0, 1}},
        {"gdcBalancePT", Locked, {1, 0, 0, 1}},  {"gmpEmployee", Locked, {1, 0, 0, 1}},
        {"TxtPerMonth", ReadOnly, {1, 0, 0, 0}},
    };
    auto& w = open();
    for (const qint32 mode : {3, 0, 1, 2, 3, 2, 0, 1, 0}) {
        setMode(mode);
        for (const Cell& c : table) {
            QWidget* control = w.findChild<QWidget*>(QString::fromLatin1(c.control));
            ASSERT_NE(control, nullptr) << c.control;
            const bool want = c.byMode[std::size_t(mode)];
            SCOPED_TRACE(std::string(c.control) + " mode " + std::to_string(mode));
            switch (c.what) {
            case Enabled: EXPECT_EQ(control->isEnabled(), want); break;
            case Locked:
                EXPECT_EQ(control->property("locked").toBool(), want);
                EXPECT_TRUE(control->isEnabled());  // locked, never greyed
                break;
            case ReadOnly: EXPECT_EQ(qobject_cast<QLineEdit*>(control)->isReadOnly(), want); break;
            }
        }
    }
    EXPECT_EQ(w.windowTitle(), u"تعديل وام"_s);
    const QString captions[] = {u"جديد"_s,   u"اصلاح"_s, u"حذف"_s, u"ثبت"_s,
                                u"انصراف"_s, u"جستجو"_s, u"خروج"_s};
    const QPushButton* buttons[] = {w.cmdNew,    w.cmdEdit, w.cmdDelete, w.cmdSave,
                                    w.cmdCancel, w.cmdList, w.cmdExit};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(buttons[i]->text(), captions[i]);
}

TEST_F(AdjustmentTest, OpensEmptyOnTheEditorsLoanAndMember) {
    session().LoanFormMode = 0;  // the editor's view mode
    auto& w = open(u"1"_s, 2);
    EXPECT_EQ(t.modalShown, 1);
    EXPECT_EQ(session().LoanFormMode, 3);
    EXPECT_EQ(w.txtPaidID->text(), u"1"_s);
    EXPECT_EQ(w.gmpEmployee->Value(), 2);
    // Without a current member in the editor's grid the selector stays empty.
    EXPECT_EQ(open(u"1"_s, -1).gmpEmployee->Value(), -1);
    EXPECT_EQ(window().lblBalanceProblem->text(), u"کارمندي انتخاب نشده است."_s);
}

TEST_F(AdjustmentTest, SaveChecksRunInTheirOrder) {
    auto& w = open();
    struct Case {
        const char16_t *from, *to, *perMonth;
        const QString& warning;
    };
    const Case refused[] = {
        {u"1402/05/01", u"1402/04/01", u"1000", kReversed},
        {u"1403/05/01", u"1401/01/01", u"99000000", kReversed},  // also outside and above
        {u"1402/01/01", u"1402/05/31", u"1000", kOutside},       // before the first month
        {u"1402/03/01", u"1403/01/31", u"70000000", kOutside},   // after the settlement, above
        {u"1402/03/01", u"1402/04/31", u"60000001", kAbove},     // one rial above the amount
        {u"1402/03/01", u"1402/04/31", u"60/000/001", kAbove},
    };
    for (const Case& c : refused) {
        SCOPED_TRACE(QString::fromUtf16(c.perMonth).toStdString());
        enterNew(QString::fromUtf16(c.from), QString::fromUtf16(c.to),
                 QString::fromUtf16(c.perMonth));
        expectLast(u"هشدار"_s, c.warning);
        EXPECT_EQ(session().LoanFormMode, 2);
        EXPECT_EQ(adjustmentCount(), 2);
        EXPECT_EQ(w.gdcBalancePF->farsidate(), QString::fromUtf16(c.from));
        EXPECT_EQ(w.TxtPerMonth->text().isEmpty(), &c.warning == &kAbove);  // only this empties it
    }
    // Equal to the loan amount passes, although the warning speaks of a smaller one.
    enterNew(u"1402/03/01"_s, u"1402/04/31"_s, u"60000000"_s);
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(stored(w.txtID->text().toInt())[u"monthlydebit"_s].toLongLong(), 60000000);
    // Equal dates pass; Persian digits and grouping read as the amount they are.
    enterNew(u"1402/06/15"_s, u"1402/06/15"_s, u"۲/۵۰۰/۰۰۰"_s);
    const Row row = stored(w.txtID->text().toInt());
    EXPECT_EQ(row[u"monthlydebit"_s].toLongLong(), 2500000);
    EXPECT_EQ(row[u"loanid"_s].toInt(), 1);
    EXPECT_EQ(row[u"begindate"_s].toString(), u"2023-09-06"_s);
    EXPECT_EQ(row[u"farsienddate"_s].toString(), u"1402/06/15"_s);
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
    EXPECT_EQ(stored(1)[u"farsienddate"_s].toString(), u""_s);
    EXPECT_EQ(stored(1)[u"enddate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(stored(1)[u"monthlydebit"_s].toLongLong(), 99000000);
    w.cmdEdit_Click();
    w.gdcBalancePF->Clear();
    w.TxtPerMonth->clear();
    w.cmdSave_Click();
    EXPECT_EQ(stored(1)[u"begindate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(stored(1)[u"monthlydebit"_s].toLongLong(), -1);
    w.ShowFormToEdit(1);
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());  // -1 reads back as no amount

    // Text that is no amount is refused with a clear warning, checked or not.
    for (const QString& from : {u"1402/03/01"_s, QString()}) {
        enterNew(from, u"1402/04/31"_s, u"12abc"_s);
        expectLast(u"هشدار"_s,
                   u"مقدار «12abc» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
        EXPECT_EQ(session().LoanFormMode, 2);
    }
    // The editor shows no stored loan: nothing is checked or stored, the window goes to view.
    editor.state = 0;
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
    setMode(1);  // in edit mode the timer leaves Save as the mode made it
    EXPECT_TRUE(tick());
}

TEST_F(AdjustmentTest, DeleteAndCancelGoOnOnlyOnYes) {
    auto& w = open();
    for (const QVariant answer : {0, 2}) {  // Resualt 0 is no; 2 gives no answer (0)
        w.ShowFormToEdit(1);
        t.messages->answers = {answer};
        w.cmdDelete_Click();
        EXPECT_EQ(t.messages->last().type, 1);  // a yes/no question
        expectLast(u"حذف  وام کارمندان"_s, u"آيا مطمئن هستيد؟"_s);
        EXPECT_EQ(w.lblMessage->text(), u"حذف وام کارمندان"_s);
        EXPECT_EQ(session().LoanFormMode, 0);
        EXPECT_EQ(adjustmentCount(), 2);
        w.cmdEdit_Click();
        EXPECT_EQ(session().LoanEditStarted, 1);
        w.TxtPerMonth->setText(u"7"_s);
        t.messages->answers = {answer};
        w.cmdCancel_Click();
        expectLast(u"انصراف از ثبت وام کارمندان"_s, u"آيا مطمئن هستيد؟"_s);
        EXPECT_EQ(w.TxtPerMonth->text(), u"7"_s);
        EXPECT_EQ(session().LoanFormMode, 1);
    }
    t.messages->defaultAnswer = 1;  // yes from here on
    w.cmdCancel_Click();            // the stored record comes back, in view mode
    EXPECT_EQ(w.TxtPerMonth->text(), u"2000000"_s);
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(session().LoanEditStarted, 0);
    w.cmdDelete_Click();  // gone, the window empty
    EXPECT_EQ(adjustmentCount(), 1);
    EXPECT_EQ(session().LoanFormMode, 3);
    EXPECT_TRUE(w.txtID->text().isEmpty() && w.gdcBalancePF->IsEmpty() &&
                w.TxtPerMonth->text().isEmpty());
    w.cmdNew_Click();  // a new record never saved is emptied
    w.TxtPerMonth->setText(u"5"_s);
    w.cmdCancel_Click();
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());
    EXPECT_EQ(session().LoanFormMode, 3);
}

TEST_F(AdjustmentTest, ADatabaseErrorIsShownAndLeavesModeContentsAndData) {
    for (const QString& event : {u"insert"_s, u"update"_s, u"delete"_s})
        t.db.exec(
            u"create trigger frozen_%1 before %1 on tblHRLoanException begin "
            u"select raise(abort, 'adjustments are frozen'); end"_s.arg(event));
    auto& w = open();
    auto expectError = [&](qint32 mode) {
        ASSERT_FALSE(t.messages->shown.isEmpty());
        EXPECT_EQ(t.messages->last().title, u"خطا"_s);
        EXPECT_TRUE(t.messages->last().text.contains(u"adjustments are frozen"_s));
        EXPECT_EQ(session().LoanFormMode, mode);
        EXPECT_EQ(adjustmentCount(), 2);
    };
    enterNew(u"1402/03/01"_s, u"1402/04/31"_s, u"1000"_s);
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
    setMode(0);
    w.cmdDelete->click();
    expectError(0);
    EXPECT_EQ(w.txtID->text(), u"1"_s);

    // Nothing was left open: once the database accepts writes, saving again works.
    t.db.exec(u"drop trigger frozen_update"_s);
    setMode(1);
    t.messages->shown.clear();
    w.cmdSave->click();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(stored(1)[u"monthlydebit"_s].toInt(), 3000);
}

TEST_F(AdjustmentTest, EditingRoundTripsTheStoredValues) {
    auto& w = open();
    w.ShowFormToEdit(1);
    EXPECT_EQ((QStringList{w.txtID->text(), w.gdcBalancePF->farsidate(),
                           w.gdcBalancePT->farsidate(), w.TxtPerMonth->text()}),
              (QStringList{u"1"_s, u"1402/03/01"_s, u"1402/04/31"_s, u"2000000"_s}));
    EXPECT_EQ(session().LoanFormMode, 0);
    w.cmdEdit_Click();
    EXPECT_EQ(w.TxtPerMonth->text(), u"2/000/000"_s);
    EXPECT_EQ(w.lblMessage->text(), u"اصلاح وام کارمندان"_s);
    w.gmpEmployee->setValue(2);
    w.gdcBalancePF->setFarsidate(u"1402/05/01"_s);
    w.gdcBalancePT->setFarsidate(u"1402/07/30"_s);
    w.TxtPerMonth->setText(u"3/500/000"_s);
    w.cmdSave_Click();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_TRUE(w.lblMessage->text().isEmpty());
    const Row row = stored(1);
    EXPECT_EQ(row[u"employeeid"_s].toInt(), 2);
    EXPECT_EQ(row[u"farsibegindate"_s].toString(), u"1402/05/01"_s);
    EXPECT_EQ(row[u"enddate"_s].toString(), u"2023-10-22"_s);
    EXPECT_EQ(row[u"monthlydebit"_s].toLongLong(), 3500000);
    EXPECT_EQ(adjustmentCount(), 2);
    // An adjustment of another loan opened from the list keeps its own loan and is checked
    // against that loan's amount (9,000,000), not the editor's.
    w.ShowFormToEdit(2);
    EXPECT_EQ(w.txtPaidID->text(), u"2"_s);
    w.cmdEdit_Click();
    w.gdcBalancePT->setFarsidate(u"1402/09/30"_s);
    w.TxtPerMonth->setText(u"9000001"_s);
    w.cmdSave_Click();
    expectLast(u"هشدار"_s, kAbove);
    w.TxtPerMonth->setText(u"9000000"_s);
    w.cmdSave_Click();
    EXPECT_EQ(stored(2)[u"loanid"_s].toInt(), 2);
}

TEST_F(AdjustmentTest, TheListIsForLookingOnlyWhileANewRecordIsEntered) {
    auto& w = open();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_EQ(t.modalShown, 2);
    t.module.Window<FormList>().cmdSearch_Click();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 2);  // the list holds a current row
    w.cmdNew_Click();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 1);
}

TEST_F(AdjustmentTest, TheMembersScheduleFollowsTheMemberAndTheAdjustments) {
    auto& w = open(u"1"_s, 1);
    // 60,000,000 at 5,000,000 from 1402/01, two payslips, 1402/03-04 at 2,000,000: the
    // shortfall runs two months past the settlement in 1402/12.
    const controls::FlexGrid& g = *w.FlexBalance;
    ASSERT_EQ(g.Rows(), 1 + 14 + 1);
    QStringList third;
    for (int c = 0; c < 7; ++c) third << g.TextMatrix(3, c);
    EXPECT_EQ(third, (QStringList{u"3"_s, u"1402/03"_s, u"5/000/000"_s, u"2/000/000"_s, u""_s,
                                  u"48/000/000"_s, u""_s}));
    EXPECT_EQ(g.TextMatrix(14, 6), u"پس از تاريخ تسويه"_s);
    EXPECT_EQ(g.TextMatrix(15, 1) + g.TextMatrix(15, 4), u"جمع10/000/000"_s);
    EXPECT_EQ(g.Row(), 3);  // the first month without a payslip
    auto info = [&](const char* name) {
        return w.findChild<QLabel*>(QString::fromLatin1(name))->text();
    };
    EXPECT_EQ(info("lblLoanCode") + u' ' + info("lblLoanValue") + u' ' + info("lblRemainder"),
              u"4 60/000/000 ماه آخر"_s);
    EXPECT_EQ(info("lblDebt") + u' ' + info("lblLastMonth"), u"50/000/000 1403/02"_s);
    EXPECT_TRUE(w.lblBalanceProblem->isHidden());

    enterNew(u"1402/05/01"_s, u"1402/12/29"_s, u"4000000"_s);  // changes it at once
    EXPECT_EQ(w.FlexBalance->Rows(), 1 + 15 + 1);
    w.gmpEmployee->setValue(3);
    emit w.gmpEmployee->Changed();
    EXPECT_EQ(w.lblBalanceProblem->text(), u"کارمند انتخاب شده عضو اين وام نيست."_s);
    EXPECT_EQ(w.FlexBalance->Rows(), 1);
    EXPECT_FALSE(w.cmdExportPdf->isEnabled());
    EXPECT_EQ(
        open(u"2"_s, 2).lblBalanceProblem->text(),
        u"قسط ماهيانه وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s);
}

TEST_F(AdjustmentTest, TheScheduleIsSavedThroughTheFileDialog) {
    auto& w = open(u"1"_s, 1);
    QTemporaryDir dir;
    QStringList asked;
    QString answer = dir.filePath(u"member"_s);
    w.saveFileDialog = [&](QWidget*, const QString& caption, const QString& name,
                           const QString& filter) {
        asked << caption << name << filter;
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
    EXPECT_EQ(lines[3], u"1402/03,5000000,2000000,,48000000,"_s);
    EXPECT_EQ(lines[15], u"جمع,66000000,4000000,10000000,0,"_s);
    answer = dir.filePath(u"member.pdf"_s);
    w.cmdExportPdf->click();
    QFile pdf(answer);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(4) == "%PDF");
    answer.clear();  // the clerk cancels the dialog: nothing written
    w.cmdExportCsv->click();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    EXPECT_TRUE(t.messages->shown.isEmpty());
}
