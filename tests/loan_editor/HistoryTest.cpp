// The loan's history: every write on record, the window's words, the deleted loans and their
// restore.

#include <gtest/gtest.h>

#include <QMenu>
#include <QTableWidget>

#include "adjustments/AdjustmentFixture.h"
#include "adjustments/AdjustmentOpener.h"
#include "data/ConnectionString.h"
#include "loan_editor/EditorFixture.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/history/FormDeletedLoans.h"
#include "loan_editor/history/FormLoanHistory.h"
#include "loan_editor/history/HistoryMenu.h"
#include "loan_editor/history/HistorySql.h"
#include "loan_editor/history/HistoryWords.h"
#include "loan_editor/history/LoanRestore.h"
#include "session/LoanHistory.h"
#include "support/PdfText.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// One database and the windows, seeded as the windows' own tests seed them, reached through
// the embedded database or through ODBC.
struct Bench {
    Bench(bool adjustments, bool odbc) {
        if (adjustments) {
            SeedAdjustments(t.db);
            t.module.ProvidePort<LoanEditorPort>(
                [this](Module&) -> LoanEditorPort& { return fakeEditor; });
            t.module.ProvidePort<AdjustmentPort>(
                [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
        } else {
            SeedLoans(t.db);
            t.grant(1, {111801, 111802, 111803});
        }
        Session& s = t.module.session;
        s.SessionUserID = 1;
        s.SessionPositionID = 7;
        s.SessionEmployeeID = 3;
        s.SessionTitle = u"وام کارمندان"_s;
        if (odbc) {
            s.SessionConnectionString = u"Driver=SQLite3;Database="_s + t.db.file();
            t.module.OpenSessionConnection();
        }
    }
    FormHRLoan& editor() { return t.module.Window<FormHRLoan>(); }
    FormHRException& adjustment() { return t.module.Window<FormHRException>(); }
    Connection& cnt() { return t.module.DtEn().cnt(); }
    QList<Row> history() const {
        return t.db.rows(u"select * from tblHRLoanHistory order by ID"_s);
    }
    TestModule t;
    FakeEditor fakeEditor;
};

struct WriteCase {
    const char* name;
    bool adjustments;
    std::function<void(Bench&)> prepare, click;
    qint32 loanId, adjustmentId;  // what the row is of; adjustmentId -1 for the loan commands
    QString command;
    QVariant code;  // the row's LoanCode
    QStringList words;
};

void pickOnModal(Bench& b, qint32 employee, std::array<qint32, 3> guarantors) {
    b.t.module.SetModalRunner([=](QDialog& d) {
        if (auto* picker = qobject_cast<FormHREmployee*>(&d)) Pick(employee, guarantors)(*picker);
        return 0;
    });
}

const WriteCase kWrites[] = {
    {"temporary save of a new loan",
     false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.cmdNew_Click();
         w.cmbLoanType->setCurrentIndex(1);
         w.txtLoanValue->setText(u"2000"_s);
         w.txtPayBackNumber->setText(u"4"_s);
         w.datEndDate->setFarsidate(u"1403/09/30"_s);
     },
     [](Bench& b) { b.editor().cmdRegSave->click(); },
     6,
     -1,
     u"temporary-save"_s,
     QVariant(),
     {u"نوع وام: ضروري"_s, u"تاريخ پرداخت: 1403/05/20"_s, u"تاريخ شروع قسط: 1403/05/31"_s,
      u"تاريخ تسويه: 1403/09/30"_s, u"مبلغ اوليه: 0"_s, u"مانده اول ماه: 2000"_s,
      u"تعداد اقساط: 4"_s, u"اقساط ماهيانه: 0"_s,
      u"پرداخت مانده اقساط در: ماه جداگانه در آخرين ماه"_s}},
    {"final save of an edited loan with a member added",
     false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.ViewPRSLoansInfo(TemporaryLoan);
         w.cmdEdit_Click();
         w.txtNotes->setText(u"وام مسکن، تمديد شده"_s);
         pickOnModal(b, 3, {2, -1, -1});
         w.cmdAddEmp_Click();
     },
     [](Bench& b) { b.editor().cmdFinSave->click(); },
     1,
     -1,
     u"final-save"_s,
     8,
     {u"شماره وام: خالي ← 8"_s, u"ملاحظات: وام مسکن ← وام مسکن، تمديد شده"_s,
      u"کارمند افزوده شد: حسن کريمي (ضامن: مريم احمدي)"_s}},
    {"delete",
     false,
     [](Bench& b) { b.editor().ViewPRSLoansInfo(SeparateLoan); },
     [](Bench& b) { b.editor().cmdDelete->click(); },
     4,
     -1,
     u"delete"_s,
     QVariant(),
     {u"نوع وام: قرض الحسنه"_s, u"تاريخ پرداخت: 1403/01/06"_s, u"تاريخ شروع قسط: 1403/01/31"_s,
      u"تاريخ تسويه: 1403/03/31"_s, u"مبلغ اوليه: 1000"_s, u"مانده اول ماه: 1000"_s,
      u"تعداد اقساط: 3"_s, u"اقساط ماهيانه: 300"_s,
      u"پرداخت مانده اقساط در: ماه جداگانه در آخرين ماه"_s}},
    {"back to temporary",
     false,
     [](Bench& b) { b.editor().ViewPRSLoansInfo(FinalLoan); },
     [](Bench& b) { b.editor().cmdBacktoTemp->click(); },
     2,
     -1,
     u"back-to-temporary"_s,
     7,
     {u"شماره وام: 7 ← خالي"_s}},
    {"member removal",
     false,
     [](Bench& b) {
         FormHRLoan& w = b.editor();
         w.ViewPRSLoansInfo(TemporaryLoan);
         w.cmdEdit_Click();
         w.FlexEmployee->setRow(2);
         w.FlexEmployee_RowColChange();
     },
     [](Bench& b) { b.editor().cmdDeleteEmp->click(); },
     1,
     -1,
     u"remove-member"_s,
     QVariant(),
     {u"کارمند حذف شد: زهرا موسوي"_s}},
    {"new adjustment",
     true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 2);
         FormHRException& w = b.adjustment();
         w.cmdNew_Click();
         w.gmpEmployee->setValue(2);
         w.gdcBalancePF->setFarsidate(u"1402/05/01"_s);
         w.gdcBalancePT->setFarsidate(u"1402/06/31"_s);
         w.TxtPerMonth->setText(u"1000"_s);
     },
     [](Bench& b) { b.adjustment().cmdSave->click(); },
     1,
     3,
     u"adjustment-new"_s,
     4,
     {u"تعديل جديد: «مريم احمدي» از 1402/05/01 تا 1402/06/31، اقساط ماهيانه 1000"_s}},
    {"edited adjustment",
     true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"1"_s, 1);
         FormHRException& w = b.adjustment();
         w.ShowFormToEdit(1);
         w.cmdEdit_Click();
         w.gdcBalancePT->setFarsidate(u"1402/05/31"_s);
         w.TxtPerMonth->setText(u"2500000"_s);
     },
     [](Bench& b) { b.adjustment().cmdSave->click(); },
     1,
     1,
     u"adjustment-edit"_s,
     4,
     {u"تعديل: «علي رضايي» از 1402/03/01 تا 1402/04/31، اقساط ماهيانه 2/000/000 ← «علي رضايي» "
      u"از 1402/03/01 تا 1402/05/31، اقساط ماهيانه 2/500/000"_s}},
    {"deleted adjustment",
     true,
     [](Bench& b) {
         b.t.module.port<AdjustmentPort>().ShowBalance(u"2"_s, 2);  // another loan shown
         b.adjustment().ShowFormToEdit(1);
     },
     [](Bench& b) { b.adjustment().cmdDelete->click(); },
     1,
     1,
     u"adjustment-delete"_s,
     4,
     {u"تعديل حذف شد: «علي رضايي» از 1402/03/01 تا 1402/04/31، اقساط ماهيانه 2/000/000"_s}},
};

// What the history row's before and after are compared with: the database's rows now.
history::Snapshot stored(Bench& b, const WriteCase& c) {
    return c.adjustments ? history::ReadAdjustment(b.cnt(), c.loanId, c.adjustmentId)
                         : history::ReadLoan(b.cnt(), c.loanId);
}

}  // namespace

// Each write adds exactly one row, inside its transaction, by the session's user, position and
// employee, at the database's moment in UTC, with the loan as the database held it before and
// after; the window words the change. On the embedded database and through ODBC.
TEST(History, EachWriteLeavesOneRowWithTheLoanAsStoredBeforeAndAfter) {
    const bool odbcAvailable = data::InstalledOdbcDrivers().contains(u"SQLite3"_s);
    if (!odbcAvailable) std::cout << "the SQLite3 ODBC driver is not installed: embedded only\n";
    for (const bool odbc : {false, true}) {
        if (odbc && !odbcAvailable) continue;
        for (const WriteCase& c : kWrites) {
            SCOPED_TRACE(std::string(c.name) + (odbc ? " through ODBC" : ""));
            Bench b(c.adjustments, odbc);
            c.prepare(b);
            const QString before = stored(b, c).text;
            ASSERT_TRUE(b.history().isEmpty());
            const QDateTime start = QDateTime::currentDateTimeUtc().addSecs(-2);
            b.t.messages->shown.clear();
            c.click(b);
            for (const ShownMessage& m : b.t.messages->shown)
                EXPECT_EQ(m.type, 1) << m.text.toStdString();  // questions only
            const QList<Row> rows = b.history();
            ASSERT_EQ(rows.size(), 1);
            const Row& r = rows[0];
            EXPECT_EQ(r[u"loanid"_s].toInt(), c.loanId);
            EXPECT_TRUE(r[u"restoredfromloanid"_s].isNull());
            EXPECT_EQ(r[u"loancode"_s].isNull() ? QVariant() : r[u"loancode"_s].toInt(), c.code);
            EXPECT_EQ(r[u"command"_s].toString(), c.command);
            EXPECT_EQ(r[u"userid"_s].toInt() * 100 + r[u"positionid"_s].toInt() * 10 +
                          r[u"employeeid"_s].toInt(),
                      173);
            const QDateTime at = history::MomentUtc(r[u"changedatutc"_s]);
            EXPECT_TRUE(at >= start && at <= QDateTime::currentDateTimeUtc().addSecs(2))
                << r[u"changedatutc"_s].toString().toStdString();
            EXPECT_EQ(r[u"loanbefore"_s].toString(), before);
            EXPECT_EQ(r[u"loanbefore"_s].isNull(), c.command == u"temporary-save"_s);
            EXPECT_EQ(r[u"loanafter"_s].toString(), stored(b, c).text);
            EXPECT_EQ(r[u"loanafter"_s].isNull(), c.command == u"delete"_s);

            const history::HistoryEntry entry = history::ReadHistory(b.cnt(), c.loanId).value(0);
            EXPECT_EQ(history::words::Differences(entry.before, entry.after,
                                                  history::ReadNames(b.cnt(), {entry})),
                      c.words);
            EXPECT_EQ(history::words::Who(entry.employeeName, entry.userId), u"حسن کريمي"_s);
        }
    }
}

// The snapshot's text, pinned once: the header's columns by name, the members with their
// guarantors, and for an adjustment command the adjustment row.
TEST(History, ASnapshotIsTheLoansRowsAsJson) {
    Bench b(true, false);
    EXPECT_EQ(history::ReadAdjustment(b.cnt(), 2, 2).text,
              u"{\"adjustment\":{\"BeginDate\":\"2023-09-23\",\"EmployeeID\":2,\"EndDate\":"
              "\"1900-01-01\",\"FarsiBeginDate\":\"1402/07/01\",\"FarsiEndDate\":\"\",\"ID\":2,"
              "\"LoanID\":2,\"MonthlyDebit\":500000},\"loan\":{\"BeginDate\":\"2023-09-22\","
              "\"Code\":null,\"EndDate\":\"2024-03-19\",\"FarsiBeginDate\":\"1402/06/31\","
              "\"FarsiEndDate\":\"1402/12/29\",\"FarsiPaymentDate\":\"1402/06/01\",\"ID\":2,"
              "\"LoanValue\":9000000,\"MonthlyValue\":null,\"Notes\":null,\"OriginalLoanValue\":"
              "9000000,\"PayBackNumber\":null,\"PaymentDate\":null,\"TypeID\":1,"
              "\"UseRemainedValueInFirstMonth\":null},\"members\":[{\"EmployeeID\":2,"
              "\"SupporterEmployeeID1\":null,\"SupporterEmployeeID2\":null,"
              "\"SupporterEmployeeID3\":null}]}"_s);
    EXPECT_TRUE(history::ReadLoan(b.cnt(), 99).text.isNull());
}

// A command that changes nothing adds no row; a write the database refuses (here the history
// row itself) writes nothing at all, and the window says why.
TEST_F(EditorTest, ANoOpAddsNoRowAndARefusedHistoryRowRefusesTheWrite) {
    Edit(SeparateLoan);
    const QString loans = Snapshot();
    editor().cmdRegSave->click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(Snapshot(), loans);
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoanHistory"_s).toInt(), 0);

    t.db.exec(
        u"create trigger refuse before insert on tblHRLoanHistory begin select "
        "raise(abort, 'history refused'); end"_s);
    editor().ViewPRSLoansInfo(FinalLoan);
    editor().cmdBacktoTemp->click();
    const QStringList shown = Shown();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_TRUE(shown[1].startsWith(u"خطا: "_s) && shown[1].contains(u"history refused"_s));
    EXPECT_EQ(Code(FinalLoan).toInt(), 7);
    EXPECT_EQ(editor().txtCode->text(), u"7"_s);
}

// Without the history table the writes go on as before, the status bar says once that no
// history is kept, and the Tools menu's entries stay off.
TEST(History, WithoutTheTableWritesGoOnAndTheStatusBarSaysSo) {
    Bench b(false, false);
    b.t.db.exec(u"drop table tblHRLoanHistory"_s);
    FormHRLoan& w = b.editor();
    EXPECT_EQ(w.stbLoan->MessageText(),
              u"تاريخچه تغييرات وام ها نگهداري نمي شود (جدول tblHRLoanHistory در پايگاه داده "
              "نيست)."_s);
    w.ViewPRSLoansInfo(FinalLoan);
    w.cmdBacktoTemp->click();
    EXPECT_TRUE(b.t.db.scalar(u"select Code from tblHRLoan where ID=2"_s).isNull());
    EXPECT_EQ(w.stbLoan->MessageText(), u"وام شماره 7 (شماره رايانه اي 2) به حالت موقت برگشت."_s);
    emit w.mnuTool->aboutToShow();
    for (const char* name : {"mnuHistory", "mnuDeletedLoans"})
        EXPECT_FALSE(w.mnuTool->findChild<QAction*>(QString::fromLatin1(name))->isEnabled());
}

// The Tools menu: the history while a stored loan is in view or edit mode, the deleted loans
// in view or empty mode.
TEST_F(EditorTest, TheHistoryEntriesFollowTheMode) {
    struct Expected {
        const char* how;
        std::function<void()> reach;
        bool history, deleted;
    };
    const Expected table[] = {
        {"empty", [&] {}, false, true},
        {"view", [&] { editor().ViewPRSLoansInfo(TemporaryLoan); }, true, true},
        {"edit", [&] { editor().cmdEdit_Click(); }, true, false},
        {"new", [&] { editor().cmdNew_Click(); }, false, false},
    };
    for (const Expected& e : table) {
        SCOPED_TRACE(e.how);
        e.reach();
        emit editor().mnuTool->aboutToShow();
        EXPECT_EQ(editor().mnuTool->findChild<QAction*>(u"mnuHistory"_s)->isEnabled(), e.history);
        EXPECT_EQ(editor().mnuTool->findChild<QAction*>(u"mnuDeletedLoans"_s)->isEnabled(),
                  e.deleted);
    }
}

// A deleted loan comes back as a temporary loan under a new ID with its terms, members,
// guarantors and the adjustments its delete left behind; the restore is on record, and the loan
// leaves the deleted loans. Only after "yes", and only for a user who may create loans.
TEST_F(EditorTest, ARestoredLoanComesBackWholeAndIsOnRecord) {
    t.db.exec(
        u"insert into tblHRLoanException (LoanID, EmployeeID, BeginDate, FarsiBeginDate, "
        "EndDate, FarsiEndDate, MonthlyDebit) values (1, 4, '2024-05-21', '1403/03/01', "
        "'2024-06-20', '1403/03/31', 50000)"_s);
    const auto header = [&](int id) {
        return t.db.table(
            u"select TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
            "FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, "
            "MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth, Notes, Code "
            "from tblHRLoan where ID=%1"_s.arg(id));
    };
    const QStringList terms = header(TemporaryLoan);
    session().SessionEmployeeID = 3;
    editor().ViewPRSLoansInfo(TemporaryLoan);
    editor().cmdDelete->click();
    ASSERT_EQ(Scalar(u"select count(*) from tblHRLoan where ID=1"_s).toInt(), 0);
    Shown();

    FormDeletedLoans* shown = nullptr;
    std::function<void(FormDeletedLoans&)> inWindow;
    t.module.SetModalRunner([&](QDialog& d) {
        if ((shown = qobject_cast<FormDeletedLoans*>(&d)) && inWindow) inWindow(*shown);
        return 0;
    });
    // Not restored: a user without 111802, then "no", then no answer.
    inWindow = [&](FormDeletedLoans& w) {
        ASSERT_EQ(w.grdDeleted->rowCount(), 1);
        const QStringList row = w.RowTexts(0);
        EXPECT_EQ(row.mid(0, 5),
                  (QStringList{u"1"_s, u""_s, u"قرض الحسنه"_s, u"2"_s, u"حسن کريمي"_s}));
        // Printed as shown.
        const QList<QStringList> printed = PrintedRows(t.module, [&] { w.cmdPrint->click(); });
        ASSERT_EQ(printed.size(), 1);
        EXPECT_TRUE(printed[0].join(u'|').contains(Plain(u"1|قرض الحسنه|2|حسن کريمي"_s)));
        session().SessionUserID = 2;
        w.cmdRestore_Click();
        session().SessionUserID = 1;
        for (const int answer : {0, -1}) {
            t.messages->answers = {answer == 0 ? QVariant(0) : QVariant()};
            w.cmdRestore_Click();
        }
    };
    history::ShowDeletedLoans(editor());
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(Shown(),
              (QStringList{u"خطا: شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s,
                           u"? بازگرداندن وام: وام حذف شده با شماره رايانه اي 1 و 2 کارمند به "
                           "صورت وام موقت بازگردانده شود؟"_s,
                           u"? بازگرداندن وام: وام حذف شده با شماره رايانه اي 1 و 2 کارمند به "
                           "صورت وام موقت بازگردانده شود؟"_s}));
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoan"_s).toInt(), 4);

    inWindow = [&](FormDeletedLoans& w) { w.cmdRestore_Click(); };
    history::ShowDeletedLoans(editor());
    const int id = 6;
    EXPECT_EQ(header(id), terms);
    EXPECT_EQ(t.db.table(u"select LoanID, EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, "
                         "SupporterEmployeeID3 from tblHRLoanDetail where LoanID=6 order by "
                         "EmployeeID"_s),
              (QStringList{u"6|1|2|3|NULL"_s, u"6|4|NULL|NULL|NULL"_s}));
    EXPECT_EQ(t.db.table(u"select LoanID, EmployeeID from tblHRLoanException"_s),
              QStringList{u"6|4"_s});
    EXPECT_EQ(t.db.table(u"select LoanID, RestoredFromLoanID, Command, EmployeeID, LoanBefore = "
                         "(select LoanBefore from tblHRLoanHistory where Command='delete') from "
                         "tblHRLoanHistory where ID = (select max(ID) from tblHRLoanHistory)"_s),
              QStringList{u"6|1|restore|3|1"_s});
    EXPECT_EQ(mode(), ModeView);
    EXPECT_EQ(editor().txtID->text(), u"6"_s);
    EXPECT_EQ(editor().stbLoan->MessageText(),
              u"وام حذف شده با شماره رايانه اي 1 به صورت موقت با شماره رايانه اي 6 بازگردانده "
              "شد."_s);
    // Gone from the deleted loans; its history goes on under the new ID.
    EXPECT_TRUE(history::ReadDeletedLoans(t.module.DtEn().cnt()).isEmpty());
    QStringList what;
    for (const history::HistoryEntry& e : history::ReadHistory(t.module.DtEn().cnt(), id))
        what << history::words::What(e);
    EXPECT_EQ(what, (QStringList{u"بازگرداندن وام حذف شده با شماره رايانه اي 1"_s, u"حذف وام"_s}));
    // Restoring it again, as a second clerk's window still offers it, is refused.
    EXPECT_THROW(history::RestoreLoan(t.module.DtEn().cnt(), 1, {}), history::RestoreRefused);
}

// A member removed by mistake is put back from the history while the loan is edited, as a grid
// row the next save writes; in view mode the history offers nothing to put back.
TEST_F(EditorTest, ARemovedMemberIsPutBackFromTheHistoryAndSavedWithTheLoan) {
    session().SessionEmployeeID = 3;
    Edit(TemporaryLoan);
    editor().FlexEmployee->setRow(1);
    editor().cmdDeleteEmp_Click();
    ASSERT_EQ(MemberColumn(1), QStringList{u"4"_s});
    std::function<void(FormLoanHistory&)> inWindow;
    t.module.SetModalRunner([&](QDialog& d) {
        if (auto* h = qobject_cast<FormLoanHistory*>(&d)) inWindow(*h);
        return 0;
    });
    inWindow = [&](FormLoanHistory& h) {
        ASSERT_EQ(h.grdHistory->rowCount(), 1);
        EXPECT_EQ(h.RowTexts(0).mid(1),
                  (QStringList{u"حسن کريمي"_s, u"حذف کارمند"_s, u"کارمند حذف شد: علي رضايي"_s}));
        EXPECT_TRUE(h.cmdPutBack->isEnabled());
        h.cmdPutBack->click();
        EXPECT_FALSE(h.cmdPutBack->isEnabled());
    };
    history::ShowHistory(editor());
    EXPECT_EQ(MemberRow(2), u"2|1|1001|علي رضايي|مريم احمدي|حسن کريمي||2|3|null"_s);
    EXPECT_EQ(editor().stbLoan->MessageText(),
              u"کارمند «علي رضايي» از تاريخچه به جدول برگشت؛ با ثبت وام ذخيره مي شود."_s);
    editor().cmdRegSave->click();
    EXPECT_EQ(t.db.table(u"select EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2 from "
                         "tblHRLoanDetail where LoanID=1 order by EmployeeID"_s),
              (QStringList{u"1|2|3"_s, u"4|NULL|NULL"_s}));
    inWindow = [&](FormLoanHistory& h) {
        EXPECT_EQ(h.grdHistory->rowCount(), 2);
        EXPECT_EQ(h.RowTexts(0).value(3),
                  u"کارمند افزوده شد: علي رضايي (ضامن: مريم احمدي، حسن کريمي)"_s);
        h.grdHistory->setCurrentCell(1, 0);
        EXPECT_FALSE(h.cmdPutBack->isEnabled());  // view mode
        // Printed, every row with its differences.
        const QStringList printed = PrintedPages(t.module, [&] { h.cmdPrint->click(); });
        ASSERT_EQ(printed.size(), 1);
        for (const QString& text :
             {u"تاريخچه وام"_s, u"کارمند افزوده شد"_s, u"کارمند حذف شد"_s, u"حسن کريمي"_s})
            EXPECT_TRUE(printed[0].contains(Plain(text))) << text.toStdString();
    };
    history::ShowHistory(editor());
}

// The words of the window: amounts grouped, the remainder's option by name, a guarantor
// changed, a Gregorian date only when its Jalali text stayed; who and when.
TEST(HistoryWords, SayWhatChangedWhoAndWhen) {
    const QString before =
        u"{\"loan\":{\"Code\":null,\"LoanValue\":12000000,\"PaymentDate\":\"2024-03-25\","
        "\"FarsiPaymentDate\":\"1403/01/06\",\"UseRemainedValueInFirstMonth\":1},"
        "\"members\":[{\"EmployeeID\":1,\"SupporterEmployeeID1\":2},{\"EmployeeID\":4}]}"_s;
    const QString after =
        u"{\"loan\":{\"Code\":null,\"LoanValue\":12500000.5,\"PaymentDate\":\"2024-03-26\","
        "\"FarsiPaymentDate\":\"1403/01/06\",\"UseRemainedValueInFirstMonth\":0},"
        "\"members\":[{\"EmployeeID\":1,\"SupporterEmployeeID1\":3,\"SupporterEmployeeID2\":2},"
        "{\"EmployeeID\":9}]}"_s;
    history::Names names;
    names.employees = {{1, u"علي رضايي"_s}, {2, u"مريم احمدي"_s}, {3, u"حسن کريمي"_s}};
    EXPECT_EQ(history::words::Differences(before, after, names),
              (QStringList{u"تاريخ پرداخت (ميلادي): 2024-03-25 ← 2024-03-26"_s,
                           u"مانده اول ماه: 12/000/000 ← 12/500/000.5"_s,
                           u"پرداخت مانده اقساط در: ماه اول ← ماه آخر"_s,
                           u"کارمند افزوده شد: کارمند 9"_s, u"کارمند حذف شد: کارمند 4"_s,
                           u"ضامنين علي رضايي: مريم احمدي ← حسن کريمي، مريم احمدي"_s}));
    EXPECT_EQ(history::words::Who(u" حسن  کريمي "_s, 4), u"حسن کريمي"_s);
    EXPECT_EQ(history::words::Who(QString(), 4), u"کاربر 4"_s);
    // Tehran is 3:30 ahead of UTC; the first day of Farvardin 1403 began at 20:30 UTC.
    EXPECT_EQ(history::words::When(QDateTime(QDate(2024, 3, 19), QTime(20, 45), Qt::UTC)),
              u"1403/01/01 00:15"_s);
    history::HistoryEntry final;
    final.command = u"final-save"_s;
    final.code = 9;
    EXPECT_EQ(history::words::What(final), u"ثبت قطعي با شماره 9"_s);
}

// The SQL Server texts: the history row's insert byte for byte, every text through the T-SQL
// check.
TEST(HistorySql, SqlServerTextsParse) {
    const data::SqlDialect server(data::DatabaseKind::SqlServer);
    history::Row row;
    row.loanId = 12;
    row.restoredFrom = 5;
    row.code = std::nullopt;
    row.command = history::Command::Restore;
    row.actor = {1, 2, 3};
    row.before = u"{\"loan\":{\"Notes\":\"O'Brien یادداشت\"}}"_s;
    EXPECT_EQ(CheckedTsql(history::InsertRow(server, row)),
              u"insert into tblHRLoanHistory (LoanID, RestoredFromLoanID, LoanCode, Command, "
              "UserID, PositionID, EmployeeID, ChangedAtUtc, LoanBefore, LoanAfter) Values (12, 5, "
              "Null, 'restore', 1, 2, 3, GETUTCDATE(), N'{\"loan\":{\"Notes\":\"O''Brien "
              "یادداشت\"}}', Null)"_s);
    for (const QString& sql :
         {history::sql::Entries(server, {12, 5}), history::sql::RestoredFrom(12),
          history::sql::DeletedLoans(server), history::sql::EmployeeNames(server, {1, 2}),
          history::sql::RestoreState(5), history::sql::DeletedSnapshot(5),
          history::sql::MoveAdjustments(5, 12), data::snapshot::LoanQuery(5),
          data::snapshot::MembersQuery(5), data::snapshot::AdjustmentQuery(5)})
        CheckedTsql(sql);
}
