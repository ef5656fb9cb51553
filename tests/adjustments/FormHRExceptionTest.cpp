// The adjustment window: modes, the save's checks, the questions, editing and the schedule.
// (A write the database refuses is tested for every command in tests/reliability.)

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "AdjustmentFixture.h"
#include "adjustments/BalanceChartView.h"
#include "support/PdfText.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {
const QString kReversed = u"تاريخ شروع تعديل وام,از پايان آن بزرگتر انتخاب شده است."_s;
const QString kOutside = u"بازه تعديل با توجه به بازه پرداخت وام به درستي تعيين نشده است."_s;
const QString kAbove = u"مقدار قسط بايد كمتر از مبلغ باشد."_s;
}  // namespace

TEST_F(AdjustmentTest, ModeTableAndCaptions) {
    // Per mode (0 view, 1 edit, 2 new, 3 empty): enabled ('E'), locked and never greyed
    // ('L'), or read-only ('R').
    struct Cell {
        const char* control;
        char what;
        const char* byMode;
    };
    const Cell table[] = {
        {"cmdNew", 'E', "1001"},      {"cmdEdit", 'E', "1000"},      {"cmdDelete", 'E', "1000"},
        {"cmdSave", 'E', "0110"},     {"cmdCancel", 'E', "0110"},    {"cmdExit", 'E', "1111"},
        {"cmdList", 'E', "1111"},     {"gdcBalancePF", 'L', "1001"}, {"gdcBalancePT", 'L', "1001"},
        {"gmpEmployee", 'L', "1001"}, {"TxtPerMonth", 'R', "1000"},
    };
    auto& w = open();
    for (const qint32 mode : {3, 0, 1, 2, 3, 2, 0, 1, 0}) {
        setMode(mode);
        for (const Cell& c : table) {
            SCOPED_TRACE(std::string(c.control) + " mode " + std::to_string(mode));
            QWidget* control = w.findChild<QWidget*>(QString::fromLatin1(c.control));
            ASSERT_NE(control, nullptr);
            const bool want = c.byMode[mode] == '1';
            const char* property = c.what == 'E'   ? "enabled"
                                   : c.what == 'L' ? "locked"
                                                   : "readOnly";
            EXPECT_EQ(control->property(property).toBool(), want);
            if (c.what == 'L') EXPECT_TRUE(control->isEnabled());
        }
    }
    EXPECT_EQ(w.windowTitle(), u"تعديل وام"_s);
    QStringList captions;
    for (const QPushButton* b :
         {w.cmdNew, w.cmdEdit, w.cmdDelete, w.cmdSave, w.cmdCancel, w.cmdList, w.cmdExit})
        captions << b->text();
    EXPECT_EQ(captions.join(u' '), u"جديد اصلاح حذف ثبت انصراف جستجو خروج"_s);
}

TEST_F(AdjustmentTest, SaveChecksRunInTheirOrder) {
    auto& w = open();
    const std::tuple<QString, QString, QString, QString> refused[] = {
        {u"1403/05/01"_s, u"1401/01/01"_s, u"99000000"_s, kReversed},  // also outside, above
        {u"1402/01/01"_s, u"1402/05/31"_s, u"1000"_s, kOutside},       // before the first month
        {u"1402/03/01"_s, u"1403/01/31"_s, u"70000000"_s, kOutside},   // after the end, above
        {u"1402/03/01"_s, u"1402/04/31"_s, u"60000001"_s, kAbove},     // one rial above the amount
        {u"1402/03/01"_s, u"1402/04/31"_s, u"60/000/001"_s, kAbove},
    };
    for (const auto& [from, to, perMonth, warning] : refused) {
        SCOPED_TRACE(perMonth.toStdString());
        enterNew(from, to, perMonth);
        expectLast(u"هشدار"_s, warning);
        EXPECT_EQ(status(), u"mode 2, 2 stored"_s);
        EXPECT_EQ(w.gdcBalancePF->farsidate(), from);
        EXPECT_EQ(w.TxtPerMonth->text().isEmpty(), warning == kAbove);  // only this empties it
    }
    // Equal to the loan amount passes, although the warning speaks of a smaller one.
    enterNew(u"1402/03/01"_s, u"1402/04/31"_s, u"60000000"_s);
    EXPECT_TRUE(quiet());
    EXPECT_EQ(mode(), 0);
    EXPECT_TRUE(stored(w.txtID->text().toInt()).endsWith(u"|60000000"_s));
    // Equal dates pass; Persian digits and grouping read as the amount they are.
    enterNew(u"1402/06/15"_s, u"1402/06/15"_s, u"۲/۵۰۰/۰۰۰"_s);
    EXPECT_EQ(stored(w.txtID->text().toInt()),
              u"1|1|2023-09-06|1402/06/15|2023-09-06|1402/06/15|2500000"_s);
}

TEST_F(AdjustmentTest, TheUncheckedPathsAreKept) {
    auto& w = open();
    // An employee who is not a member: no loan row, nothing checked, stored as typed.
    enterNew(u"1401/01/01"_s, u"1405/01/01"_s, u"99000000"_s, 3);
    EXPECT_TRUE(quiet());
    EXPECT_EQ(status(), u"mode 0, 3 stored"_s);
    // In edit mode an empty date skips the period and amount checks and stores the empty
    // text with 1900-01-01; an empty instalment stores -1.
    w.ShowFormToEdit(1);
    w.cmdEdit_Click();
    w.gdcBalancePT->Clear();
    w.TxtPerMonth->setText(u"99000000"_s);
    w.cmdSave_Click();
    EXPECT_TRUE(quiet());
    EXPECT_EQ(stored(1), u"1|1|2023-05-22|1402/03/01|1900-01-01||99000000"_s);
    w.cmdEdit_Click();
    w.gdcBalancePF->Clear();
    w.TxtPerMonth->clear();
    w.cmdSave_Click();
    EXPECT_EQ(stored(1), u"1|1|1900-01-01||1900-01-01||-1"_s);
    // Text that is no amount is refused with a clear warning on the unchecked path too.
    enterNew(QString(), u"1402/04/31"_s, u"12abc"_s);
    expectLast(u"هشدار"_s,
               u"مقدار «12abc» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
    EXPECT_EQ(mode(), 2);
    // The editor shows no stored loan: nothing is checked or stored, the window goes to view.
    editor.state = 0;
    enterNew(u"1402/05/01"_s, u"1402/04/01"_s, u"1000"_s);
    EXPECT_TRUE(quiet());
    EXPECT_EQ(status(), u"mode 0, 3 stored"_s);
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
        EXPECT_EQ(status(), u"mode 0, 2 stored"_s);
        w.cmdEdit_Click();
        EXPECT_EQ(session().LoanEditStarted, 1);
        w.TxtPerMonth->setText(u"7"_s);
        t.messages->answers = {answer};
        w.cmdCancel_Click();
        expectLast(u"انصراف از ثبت وام کارمندان"_s, u"آيا مطمئن هستيد؟"_s);
        EXPECT_EQ(w.TxtPerMonth->text(), u"7"_s);
        EXPECT_EQ(mode(), 1);
    }
    t.messages->defaultAnswer = 1;  // yes from here on
    w.cmdCancel_Click();            // the stored record comes back, in view mode
    EXPECT_EQ(w.TxtPerMonth->text(), u"2000000"_s);
    EXPECT_EQ(mode() + session().LoanEditStarted, 0);
    w.cmdDelete_Click();  // gone, the window empty
    EXPECT_EQ(status(), u"mode 3, 1 stored"_s);
    EXPECT_EQ(w.txtID->text() + w.gdcBalancePF->farsidate() + w.TxtPerMonth->text(), u""_s);
    w.cmdNew_Click();  // a new record never saved is emptied
    w.TxtPerMonth->setText(u"5"_s);
    w.cmdCancel_Click();
    EXPECT_TRUE(w.TxtPerMonth->text().isEmpty());
    EXPECT_EQ(mode(), 3);
}

TEST_F(AdjustmentTest, EditingRoundTripsTheStoredValues) {
    auto& w = open();
    w.ShowFormToEdit(1);
    const auto shown = [&] {
        return QStringList{w.txtID->text(), w.gdcBalancePF->farsidate(),
                           w.gdcBalancePT->farsidate(), w.TxtPerMonth->text()}
            .join(u' ');
    };
    EXPECT_EQ(shown(), u"1 1402/03/01 1402/04/31 2000000"_s);
    EXPECT_EQ(mode(), 0);
    w.cmdEdit_Click();
    EXPECT_EQ(w.TxtPerMonth->text(), u"2/000/000"_s);
    EXPECT_EQ(w.lblMessage->text(), u"اصلاح وام کارمندان"_s);
    w.gmpEmployee->setValue(2);
    w.gdcBalancePF->setFarsidate(u"1402/05/01"_s);
    w.gdcBalancePT->setFarsidate(u"1402/07/30"_s);
    w.TxtPerMonth->setText(u"3/500/000"_s);
    w.cmdSave_Click();
    EXPECT_TRUE(quiet() && w.lblMessage->text().isEmpty());
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_EQ(stored(1), u"1|2|2023-07-23|1402/05/01|2023-10-22|1402/07/30|3500000"_s);
    EXPECT_EQ(adjustmentCount(), 2);
}

TEST_F(AdjustmentTest, TheMembersScheduleFollowsTheMemberAndTheAdjustments) {
    auto& w = open(u"1"_s, 1);
    // 60,000,000 at 5,000,000 from 1402/01, two payslips, 1402/03-04 at 2,000,000: the
    // shortfall runs two months past the settlement in 1402/12.
    const controls::FlexGrid& g = *w.FlexBalance;
    ASSERT_EQ(g.Rows(), 1 + 14 + 1);
    QStringList third;
    for (int c = 0; c < 8; ++c) third << g.TextMatrix(3, c);
    EXPECT_EQ(third.join(u'|'), u"3|1402/03|5/000/000|2/000/000||2/000/000|48/000/000|"_s);
    EXPECT_EQ(g.TextMatrix(14, 7), u"پس از تاريخ تسويه"_s);
    EXPECT_EQ(g.TextMatrix(15, 1) + g.TextMatrix(15, 4) + u" "_s + g.TextMatrix(15, 5),
              u"جمع10/000/000 60/000/000"_s);
    EXPECT_EQ(g.Row(), 3);  // the first month without a payslip
    EXPECT_EQ(mode(), 3);   // opened empty
    QStringList info;
    for (const char* label :
         {"lblLoanCode", "lblLoanValue", "lblRemainder", "lblDebt", "lblLastMonth"})
        info << w.findChild<QLabel*>(QString::fromLatin1(label))->text();
    EXPECT_EQ(info.join(u' '), u"4 60/000/000 ماه آخر 50/000/000 1403/02"_s);
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
    QSettings().remove(u"Files/LastSaveFolder"_s);  // the first export of all
    QStringList asked;
    QString answer = dir.filePath(u"member"_s);
    t.module.SetSaveFileQuestion(
        [&](QWidget*, const QString& caption, const QString& proposed, const QString& filter) {
            asked << caption + u'|' + QFileInfo(proposed).fileName() + u'|' + filter
                  << QFileInfo(proposed).absolutePath();
            return answer;
        });
    w.cmdExportCsv->click();
    // The loan by its number and the member by his code, then today's Jalali date; the
    // Documents folder the first time, the folder chosen last after that.
    const QRegularExpression named(
        u"^ذخيره برنامه بازپرداخت\\|برنامه-بازپرداخت-وام-4-1001-1[34][0-9]{2}-[01][0-9]-[0-3][0-9]\\.csv\\|CSV \\(\\*\\.csv\\)$"_s);
    ASSERT_EQ(asked.size(), 2);
    EXPECT_TRUE(named.match(asked[0]).hasMatch()) << asked[0].toStdString();
    EXPECT_EQ(asked[1], QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    QFile csv(answer + u".csv"_s);
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(csv.readAll()).split(u"\r\n"_s);
    EXPECT_EQ(lines.value(15), u"جمع,,,10000000,60000000,0,"_s);  // the member's
    answer = dir.filePath(u"member.pdf"_s);
    w.cmdExportPdf->click();
    EXPECT_EQ(asked.value(3), QDir(dir.path()).absolutePath());
    answer.clear();  // the clerk cancels the dialog: nothing written
    w.cmdExportCsv->click();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).join(u' '), u"member.csv member.pdf"_s);
    EXPECT_TRUE(quiet());
}

// Printed, the schedule's pages: the months with their totals, then the chart the window shows
// under its grid; a member who holds no schedule leaves no chart and nothing to print.
TEST_F(AdjustmentTest, TheScheduleIsPrintedWithItsChart) {
    auto& w = open(u"1"_s, 1);
    ASSERT_TRUE(w.chrBalance->chart());
    EXPECT_EQ(w.chrBalance->chart()->loanValue.toString() + u' ' +
                  QString::number(w.chrBalance->chart()->deductedMonths) + u' ' +
                  w.chrBalance->chart()->monthText(0) + u' ' +
                  QString::number(w.chrBalance->chart()->settlement.value_or(-1)),
              u"60000000 2 1402/01 11"_s);  // first instalment 1402/01/31, settled 1402/12/29
    const QList<QStringList> pages = PrintedRows(t.module, [&] { w.cmdPrint->click(); });
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(Plain(u"جمع|10/000/000|60/000/000|0"_s)))
        << pages[0].join(u'\n').toStdString();
    const QString chart = pages[1].join(u'|');
    for (const QString& text : {u"مانده طبق برنامه"_s, u"مانده پس از کسر در فيش"_s, u"تسويه"_s})
        EXPECT_TRUE(chart.contains(Plain(text))) << text.toStdString();
    w.gmpEmployee->setValue(3);
    emit w.gmpEmployee->Changed();
    EXPECT_FALSE(w.chrBalance->chart());
    EXPECT_FALSE(w.cmdPrint->isEnabled());
    EXPECT_TRUE(quiet());
}

// The payslip table's employee, month and amount columns are the suite's to name, and may be
// missing: named otherwise in the settings they are read so; missing, the schedule is the plan
// alone and says so, and the window's own writes go on.
TEST_F(AdjustmentTest, PayslipColumnsNamedOtherwiseOrMissing) {
    t.db.exec({u"drop table tblHRMonthlyPaiedLoan"_s,
               u"create table tblHRMonthlyPaiedLoan (ID integer primary key, LoanID integer, "
               "PersonID integer, Month integer, Amount numeric)"_s,
               u"insert into tblHRMonthlyPaiedLoan (LoanID, PersonID, Month, Amount) values "
               "(1, 1, 140201, 5000000), (1, 1, 140202, 4000000), (1, 2, 140203, 7)"_s});
    session().PayslipColumns = {u"PersonID"_s, u"Month"_s, u"yyyymm"_s, u"Amount"_s};
    t.module.OpenSessionConnection();
    auto& w = open(u"1"_s, 1);
    const controls::FlexGrid& g = *w.FlexBalance;
    EXPECT_EQ(g.TextMatrix(2, 1) + u' ' + g.TextMatrix(2, 4), u"1402/02 4/000/000"_s);
    EXPECT_EQ(g.TextMatrix(g.Rows() - 1, 4), u"9/000/000"_s);
    EXPECT_TRUE(w.lblBalanceProblem->isHidden());

    t.db.exec({u"drop table tblHRMonthlyPaiedLoan"_s,
               u"create table tblHRMonthlyPaiedLoan (ID integer primary key, LoanID integer)"_s,
               u"insert into tblHRMonthlyPaiedLoan (LoanID) values (1)"_s});
    session().PayslipColumns = {};
    t.module.OpenSessionConnection();
    auto& plain = open(u"1"_s, 1);
    EXPECT_EQ(
        plain.lblBalanceProblem->text(),
        u"ستون‌هاي کارمند، ماه و مبلغ فيش حقوقي (EmployeeID، PayMonth، PaidValue) در جدول "
        "tblHRMonthlyPaiedLoan نيست؛ فقط مبالغ برنامه‌ريزي شده نشان داده مي‌شود."_s);
    // The plan with its adjustment, two months past the settlement; no payslip amounts.
    EXPECT_EQ(plain.FlexBalance->Rows(), 1 + 14 + 1);
    EXPECT_EQ(plain.FlexBalance->TextMatrix(2, 4), QString());
    enterNew(u"1402/05/01"_s, u"1402/06/31"_s, u"1000000"_s);
    EXPECT_EQ(status(), u"mode 0, 3 stored"_s);
    EXPECT_TRUE(quiet()) << t.messages->texts().join(u'\n').toStdString();
}
