// Writes refused by the database (read-only, full, or a trigger half-way) for every command that
// writes, and by the windows' own checks for what a clerk pastes.

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>

#include "adjustments/AdjustmentFixture.h"
#include "adjustments/AdjustmentOpener.h"
#include "loan_editor/EditorFixture.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// One database and the windows, seeded as the windows' own tests seed them.
struct Bench {
    explicit Bench(bool adjustments) {
        if (adjustments) {
            SeedAdjustments(t.db);
            // An adjustment still without its dates, for the edit command to fill.
            t.db.exec(
                u"insert into tblHRLoanException (ID, LoanID, EmployeeID, BeginDate, "
                "FarsiBeginDate, EndDate, FarsiEndDate, MonthlyDebit) values "
                "(3, 1, 2, '1900-01-01', '', '1900-01-01', '', -1)"_s);
            t.module.ProvidePort<LoanEditorPort>(
                [this](Module&) -> LoanEditorPort& { return fakeEditor; });
            t.module.ProvidePort<AdjustmentPort>(
                [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
        } else {
            SeedLoans(t.db);
            t.grant(1, {111801, 111802, 111803});
        }
        t.module.session.SessionUserID = 1;
        t.messages->defaultAnswer = 1;  // every question answered yes
    }
    FormHRLoan& editor() { return t.module.Window<FormHRLoan>(); }
    FormHRException& adjustment() { return t.module.Window<FormHRException>(); }
    // Everything a write may touch, and the window, as text.
    QString snapshot() const {
        QString text;
        for (const QString& table :
             {u"tblHRLoan"_s, u"tblHRLoanDetail"_s, u"tblHRLoanException"_s,
              u"tblHRLoanHistory"_s, u"sqlite_sequence"_s})
            for (const Row& r : t.db.rows(u"select * from "_s + table))
                for (auto it = r.begin(); it != r.end(); ++it)
                    text += it.key() + u'=' + (it->isNull() ? u"<null>"_s : it->toString()) + u';';
        return text;
    }
    QStringList window(bool adjustments) {
        QStringList s{QString::number(t.module.session.LoanFormMode)};
        if (adjustments) {
            FormHRException& w = adjustment();
            return s << w.txtID->text() << QString::number(w.gmpEmployee->Value())
                     << w.gdcBalancePF->farsidate() << w.gdcBalancePT->farsidate()
                     << w.TxtPerMonth->text();
        }
        FormHRLoan& w = editor();
        s << w.windowTitle() << w.txtID->text() << w.txtCode->text() << w.txtNotes->text()
          << w.txtLoanValue->Text() << w.txtPayBackNumber->text();
        for (int r = 0; r < w.FlexEmployee->Rows(); ++r)
            for (int c = 0; c < w.FlexEmployee->Cols(); ++c) s << w.FlexEmployee->TextMatrix(r, c);
        return s;
    }
    // Messages shown, the questions (answered yes) left out.
    QStringList shown() const {
        QStringList texts;
        for (const ShownMessage& m : t.messages->shown)
            if (m.type == 0) texts << m.title + u": "_s + m.text;
        return texts;
    }
    TestModule t;
    FakeEditor fakeEditor;
};

struct Command {
    const char* name;
    bool adjustments;
    std::function<void(Bench&)> prepare, click;
    // Refused also half-way (a trigger on the loan; the saves' are tested beside the editor)
    // and by a full database (the saves, given notes longer than a page).
    bool halfWay = false, needsSpace = false;
};

const Command kCommands[] = {
    {"final save of a new loan", false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.cmdNew_Click();
         w.cmbLoanType->setCurrentIndex(0);
         w.txtLoanValue->setText(u"2000"_s);
         w.txtPayBackNumber->setText(u"4"_s);
         w.datEndDate->setFarsidate(u"1403/09/30"_s);
         b.t.module.SetModalRunner([](QDialog& d) {
             if (auto* picker = qobject_cast<FormHREmployee*>(&d)) Pick(2)(*picker);
             return 0;
         });
         w.cmdAddEmp_Click();
     },
     [](Bench& b) { b.editor().cmdFinSave->click(); }, false, true},
    {"final save of an edited loan", false,
     [](Bench& b) {
         b.editor().ViewPRSLoansInfo(TemporaryLoan);
         b.editor().cmdEdit_Click();
         b.editor().txtNotes->setText(u"changed"_s);
     },
     [](Bench& b) { b.editor().cmdFinSave->click(); }, false, true},
    {"delete a loan", false, [](Bench& b) { b.editor().ViewPRSLoansInfo(TemporaryLoan); },
     [](Bench& b) { b.editor().cmdDelete->click(); }, true},
    {"back to temporary", false, [](Bench& b) { b.editor().ViewPRSLoansInfo(FinalLoan); },
     [](Bench& b) { b.editor().cmdBacktoTemp->click(); }},
    {"remove a member", false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.ViewPRSLoansInfo(TemporaryLoan);
         w.cmdEdit_Click();
         w.FlexEmployee->setRow(2);
         w.FlexEmployee_RowColChange();
     },
     [](Bench& b) { b.editor().cmdDeleteEmp->click(); }},
    {"save a new adjustment", true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 1);
         FormHRException& w = b.adjustment();
         w.cmdNew_Click();
         w.gmpEmployee->setValue(1);
         w.gdcBalancePF->setFarsidate(u"1402/05/01"_s);
         w.gdcBalancePT->setFarsidate(u"1402/06/31"_s);
         w.TxtPerMonth->setText(u"1000"_s);
     },
     [](Bench& b) { b.adjustment().cmdSave->click(); }},
    {"save an edited adjustment", true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 2);
         FormHRException& w = b.adjustment();
         w.ShowFormToEdit(3);
         w.cmdEdit_Click();
         w.gdcBalancePF->setFarsidate(u"1402/02/01"_s);
         w.gdcBalancePT->setFarsidate(u"1402/11/30"_s);
         w.TxtPerMonth->setText(u"4000000"_s);
     },
     [](Bench& b) { b.adjustment().cmdSave->click(); }},
    {"delete an adjustment", true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 1);
         b.adjustment().ShowFormToEdit(1);
     },
     [](Bench& b) { b.adjustment().cmdDelete->click(); }},
};

void paste(QWidget* box, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
}

}  // namespace

TEST(WriteFaults, AFailedWriteLeavesTheDatabaseTheWindowAndSavingAgainIntact) {
    enum Fault { ReadOnly, HalfWay, Full };
    int injected = 0;
    for (const Command& command : kCommands) {
        for (const Fault fault : {ReadOnly, HalfWay, Full}) {
            if ((fault == HalfWay && !command.halfWay) || (fault == Full && !command.needsSpace))
                continue;
            SCOPED_TRACE(std::string(command.name) + " fault " + std::to_string(fault));
            Bench b(command.adjustments);
            command.prepare(b);
            Connection& cnt = b.t.module.DtEn().cnt();
            const auto refuse = [&](bool on) {
                switch (fault) {
                    case ReadOnly:
                        cnt.Execute(u"PRAGMA query_only = "_s + (on ? u"ON"_s : u"OFF"_s));
                        break;
                    case HalfWay:
                        b.t.db.exec(on ? u"create trigger refuse before delete on tblHRLoan begin "
                                         "select raise(abort, 'writes refused here'); end"_s
                                       : u"drop trigger refuse"_s);
                        break;
                    case Full:
                        // Not one page more than the file has: notes longer than a page need one.
                        if (on) b.editor().txtNotes->setText(QString(3000, QChar(0x06CC)));
                        cnt.Execute(u"PRAGMA max_page_count = "_s +
                                    (on ? b.t.db.scalar(u"PRAGMA page_count"_s).toString()
                                        : u"1073741823"_s));
                        break;
                }
            };
            refuse(true);
            const QString before = b.snapshot();
            const QStringList window = b.window(command.adjustments);
            b.t.messages->shown.clear();
            command.click(b);
            ++injected;
            const QStringList shown = b.shown();
            ASSERT_EQ(shown.size(), 1) << shown.join(u'\n').toStdString();
            EXPECT_TRUE(shown[0].startsWith(u"خطا: "_s));
            const QString cause[] = {u"readonly"_s, u"writes refused here"_s, u"full"_s};
            EXPECT_TRUE(shown[0].contains(cause[fault])) << shown[0].toStdString();
            EXPECT_EQ(b.snapshot(), before);
            EXPECT_EQ(b.window(command.adjustments), window);

            // The cause gone, the same click goes through: nothing was left open.
            refuse(false);
            b.t.messages->shown.clear();
            command.click(b);
            EXPECT_EQ(b.shown(), QStringList());
            EXPECT_NE(b.snapshot(), before);
        }
    }
    EXPECT_EQ(injected, 11);
}

// The monthly debit is the one typed amount that reaches the adjustments' stored procedures:
// text that looks like SQL, a sign or an exponent is refused by name.
TEST_F(AdjustmentTest, AMonthlyDebitThatIsNoAmountIsRefusedByNameAndWritesNothing) {
    open();
    const QList<Row> before = t.db.rows(u"select * from tblHRLoanException"_s);
    for (const QString& typed :
         {u"1; delete tblHRLoanException"_s, u"1e3"_s, u"-500"_s, u"۱۰۰۰' --"_s}) {
        SCOPED_TRACE(typed.toStdString());
        enterNew(u"1402/03/01"_s, u"1402/04/31"_s, typed);
        expectLast(u"هشدار"_s, u"مقدار «"_s + typed +
                                   u"» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
        EXPECT_EQ(session().LoanFormMode, 2);
        EXPECT_EQ(t.db.rows(u"select * from tblHRLoanException"_s), before);
    }
    // Digits past the currency range: the box and the largest amount are named, in Persian.
    enterNew(u"1402/03/01"_s, u"1402/04/31"_s, u"99999999999999999999"_s);
    expectLast(u"هشدار"_s, u"مبلغ «99999999999999999999» در «اقساط ماهيانه» از بزرگ\u200Cترين "
                           u"مبلغ ممکن (922/337/203/685/477) بيشتر است."_s);
    EXPECT_EQ(t.db.rows(u"select * from tblHRLoanException"_s), before);
}

// Pasted past the key filters (which the amount box's own tests cover): the count.
TEST_F(EditorTest, ThePastedCountTakesDigitsOfEveryScriptAndRefusesTheRestAsDoesAnOverflow) {
    auto& w = editor();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    const QString before = Snapshot();
    w.cmdNew_Click();
    w.cmbLoanType->setCurrentIndex(0);
    w.datEndDate->setFarsidate(u"1403/09/30"_s);
    paste(w.txtLoanValue->lineEdit(), u"۲۵۰۰"_s);
    w.txtOriginalValue->lineEdit()->selectAll();
    paste(w.txtOriginalValue->lineEdit(), u"٣٬٠٠٠"_s);  // Arabic-Indic, grouped
    paste(w.txtPayBackNumber, u"3; drop table tblHRLoan"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: تعداد اقساط «3; drop table tblHRLoan» عدد صحيح نيست؛ "
                                   "وام ثبت نشد."_s});
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(mode(), ModeNew);
    w.txtPayBackNumber->clear();
    paste(w.txtPayBackNumber, u"-۱۲"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: تعداد اقساط «-۱۲» منفي است؛ وام ثبت نشد."_s});
    w.txtPayBackNumber->clear();
    paste(w.txtPayBackNumber, u"۱۲"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(Scalar(u"select LoanValue || ' ' || OriginalLoanValue || ' ' || PayBackNumber from "
                     "tblHRLoan where ID="_s +
                     w.txtID->text()),
              u"2500 3000 12"_s);

    // An amount past the largest the currency holds: the box and the largest amount named,
    // nothing written.
    const QString saved = Snapshot();
    w.cmdEdit_Click();
    w.txtLoanValue->lineEdit()->selectAll();
    paste(w.txtLoanValue->lineEdit(), u"99999999999999999999"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: مبلغ «99999999999999999999» در «مانده اول ماه» از "
                                   "بزرگ\u200Cترين مبلغ ممکن (922/337/203/685/477) بيشتر است."_s});
    EXPECT_EQ(Snapshot(), saved);
    EXPECT_EQ(mode(), ModeEdit);
}
