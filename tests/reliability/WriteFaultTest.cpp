// Every command that writes, failing for each reason a database refuses a write: a trigger
// that raises, a database made read-only, a database that is full. Whatever the reason, the
// database is left exactly as it was, the window keeps its mode and what the clerk entered,
// the message titled "خطا" names the cause, and once the cause is gone the same click works.
// (A trigger in the saves and in the adjustment window is tested beside those windows; a
// delete frees space, so a full database does not stop it.)

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <iostream>

#include "adjustments/AdjustmentFixture.h"
#include "adjustments/AdjustmentOpener.h"
#include "adjustments/FormHRException.h"
#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "loan_editor/EditorFixture.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

enum class Fault { Trigger, ReadOnly, Full };

// One database and the window of one command, seeded as the windows' own tests seed them.
struct Bench {
    explicit Bench(bool adjustments) {
        if (adjustments) {
            SeedAdjustments(t.db);
            // An adjustment whose dates are still empty, so that editing it makes it longer.
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
        t.module.session.SessionTitle = u"وام کارمندان"_s;
        t.messages->defaultAnswer = 1;  // every question answered yes
    }
    FormHRLoan& editor() { return t.module.Window<FormHRLoan>(); }
    FormHRException& adjustment() { return t.module.Window<FormHRException>(); }
    void pickOnAdd(qint32 employee) {
        t.module.SetModalRunner([employee](QDialog& d) {
            if (auto* picker = qobject_cast<FormHREmployee*>(&d)) Pick(employee)(*picker);
            return 0;
        });
    }
    // Everything a write may touch, as text.
    QString snapshot() const {
        QString text;
        for (const QString& table :
             {u"tblHRLoan"_s, u"tblHRLoanDetail"_s, u"tblHRLoanException"_s, u"sqlite_sequence"_s})
            for (const Row& r : t.db.rows(u"select * from "_s + table)) {
                for (auto it = r.begin(); it != r.end(); ++it)
                    text += it.key() + u'=' + (it->isNull() ? u"<null>"_s : it->toString()) + u';';
                text += u'\n';
            }
        return text;
    }
    QStringList editorState() {
        FormHRLoan& w = editor();
        QStringList s = {QString::number(t.module.session.LoanFormMode),
                         w.windowTitle(),
                         w.txtID->text(),
                         w.txtCode->text(),
                         w.txtNotes->text(),
                         w.txtLoanValue->Text(),
                         w.txtPayBackNumber->text()};
        for (int r = 0; r < w.FlexEmployee->Rows(); ++r)
            for (int c = 0; c < w.FlexEmployee->Cols(); ++c) s << w.FlexEmployee->TextMatrix(r, c);
        return s;
    }
    QStringList adjustmentState() {
        FormHRException& w = adjustment();
        return {QString::number(t.module.session.LoanFormMode),
                w.txtID->text(),
                QString::number(w.gmpEmployee->Value()),
                w.gdcBalancePF->farsidate(),
                w.gdcBalancePT->farsidate(),
                w.TxtPerMonth->text()};
    }
    // Messages shown, the questions (answered yes) left out.
    int messagesShown() const {
        int n = 0;
        for (const ShownMessage& m : t.messages->shown) n += m.type == 0;
        return n;
    }
    int pageCount() const { return t.db.scalar(u"PRAGMA page_count"_s).toInt(); }
    // Fills the adjustments' page until a row a few bytes longer needs a page of its own.
    void fillAdjustmentPage() {
        for (const int size : {1024, 256, 64, 16, 4, 1}) {
            for (;;) {
                const int pages = pageCount();
                t.db.exec(u"BEGIN"_s);
                t.db.exec(
                    u"insert into tblHRLoanException (LoanID, EmployeeID, FarsiBeginDate) "
                    "values (999, 999, '%1')"_s.arg(QString(size, u'x')));
                const bool grew = pageCount() > pages;
                t.db.exec(grew ? u"ROLLBACK"_s : u"COMMIT"_s);
                if (grew) break;
            }
        }
    }

    TestModule t;
    FakeEditor fakeEditor;
};

// A text that takes more than a page, so storing it needs new pages.
const QString kLongNotes = QString(3000, QChar(0x06CC));

struct Command {
    const char* name;
    bool adjustments;
    std::function<void(Bench&)> prepare;
    std::function<void(Bench&)> click;
    // The trigger that refuses the command's last statement ("" when tested elsewhere), and
    // whether the command needs new space (a full database stops it).
    QString trigger;
    bool needsSpace;
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
         w.txtNotes->setText(kLongNotes);
         b.pickOnAdd(2);
         w.cmdAddEmp_Click();
     },
     [](Bench& b) { b.editor().cmdFinSave->click(); }, QString(), true},
    {"final save of an edited loan", false,
     [](Bench& b) {
         b.editor().ViewPRSLoansInfo(TemporaryLoan);
         b.editor().cmdEdit_Click();
         b.editor().txtNotes->setText(kLongNotes);
     },
     [](Bench& b) { b.editor().cmdFinSave->click(); }, QString(), true},
    {"delete a loan", false, [](Bench& b) { b.editor().ViewPRSLoansInfo(TemporaryLoan); },
     [](Bench& b) { b.editor().cmdDelete->click(); },
     u"create trigger refuse before delete on tblHRLoan begin "
     "select raise(abort, 'writes refused here'); end"_s,
     false},
    {"back to temporary", false, [](Bench& b) { b.editor().ViewPRSLoansInfo(FinalLoan); },
     [](Bench& b) { b.editor().cmdBacktoTemp->click(); },
     u"create trigger refuse before update on tblHRLoan begin "
     "select raise(abort, 'writes refused here'); end"_s,
     false},
    {"remove a member", false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.ViewPRSLoansInfo(TemporaryLoan);
         w.cmdEdit_Click();
         w.FlexEmployee->setRow(2);
         w.FlexEmployee_RowColChange();
         ASSERT_TRUE(w.cmdDeleteEmp->isEnabled());
     },
     [](Bench& b) { b.editor().cmdDeleteEmp->click(); },
     u"create trigger refuse before delete on tblHRLoanDetail begin "
     "select raise(abort, 'writes refused here'); end"_s,
     false},
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
     [](Bench& b) { b.adjustment().cmdSave->click(); }, QString(), true},
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
     [](Bench& b) { b.adjustment().cmdSave->click(); }, QString(), true},
    {"delete an adjustment", true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 1);
         b.adjustment().ShowFormToEdit(1);
     },
     [](Bench& b) { b.adjustment().cmdDelete->click(); }, QString(), false},
};

}  // namespace

TEST(WriteFaults, AFailedWriteLeavesTheDatabaseTheWindowAndSavingAgainIntact) {
    int injected = 0;
    for (const Command& command : kCommands) {
        for (const Fault fault : {Fault::Trigger, Fault::ReadOnly, Fault::Full}) {
            if ((fault == Fault::Trigger && command.trigger.isEmpty()) ||
                (fault == Fault::Full && !command.needsSpace))
                continue;
            const char* faultName = fault == Fault::Trigger    ? "a trigger"
                                    : fault == Fault::ReadOnly ? "a read-only database"
                                                               : "a full database";
            SCOPED_TRACE(std::string(command.name) + " refused by " + faultName);
            Bench b(command.adjustments);
            command.prepare(b);
            if (::testing::Test::HasFatalFailure()) return;
            auto state = [&] {
                return command.adjustments ? b.adjustmentState() : b.editorState();
            };
            Connection& cnt = b.t.module.DtEn().cnt();
            QString cause;
            switch (fault) {
                case Fault::Trigger:
                    b.t.db.exec(command.trigger);
                    cause = u"writes refused here"_s;
                    break;
                case Fault::ReadOnly:
                    cnt.Execute(u"PRAGMA query_only = ON"_s);
                    cause = u"readonly"_s;
                    break;
                case Fault::Full:
                    if (command.adjustments) b.fillAdjustmentPage();
                    cnt.Execute(u"PRAGMA max_page_count = %1"_s.arg(b.pageCount()));
                    cause = u"full"_s;
                    break;
            }
            const QString before = b.snapshot();
            const QStringList window = state();
            b.t.messages->shown.clear();

            command.click(b);
            ++injected;
            ASSERT_EQ(b.messagesShown(), 1) << b.t.messages->texts().join(u'\n').toStdString();
            EXPECT_EQ(b.t.messages->last().title, u"خطا"_s);
            EXPECT_TRUE(b.t.messages->last().text.contains(cause))
                << b.t.messages->last().text.toStdString();
            EXPECT_EQ(b.snapshot(), before);
            EXPECT_EQ(state(), window);

            // The cause gone, the same click goes through: nothing was left open.
            switch (fault) {
                case Fault::Trigger:
                    b.t.db.exec(u"drop trigger refuse"_s);
                    break;
                case Fault::ReadOnly:
                    cnt.Execute(u"PRAGMA query_only = OFF"_s);
                    break;
                case Fault::Full:
                    cnt.Execute(u"PRAGMA max_page_count = 1073741823"_s);
                    break;
            }
            b.t.messages->shown.clear();
            command.click(b);
            EXPECT_EQ(b.messagesShown(), 0) << b.t.messages->texts().join(u'\n').toStdString();
            EXPECT_NE(b.snapshot(), before);
        }
    }
    EXPECT_EQ(injected, 15);
    std::cout << "[ figures  ] " << injected
              << " write faults injected (trigger, read-only, full) in 8 commands; the database "
                 "unchanged and the window kept every time\n";
}
