// The editor's SQL Server texts; saving, deleting and back to temporary, all or nothing, also
// with two clients at once; and a clerk's day on the demo database.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <atomic>
#include <map>
#include <thread>

#include "EditorFixture.h"
#include "base/Errors.h"
#include "data/DemoData.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanSave.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using loan_save::LoanRecord;

namespace {

const data::SqlDialect kServer(data::DatabaseKind::SqlServer);

// A final loan with every value given, of members 12 (guarantor 40) and 40.
// clang-format off
const LoanRecord kLoan{
    .isFinal = true, .typeId = 3, .payDate = QDate(2024, 3, 25), .beginDate = QDate(2024, 4, 19),
    .endDate = QDate(2025, 3, 20), .farsiPayDate = u"1403/01/06"_s,
    .farsiBeginDate = u"1403/01/31"_s, .farsiEndDate = u"1403/12/30"_s,
    .loanValue = u"1000000"_s, .originalValue = u"1200000"_s, .monthlyValue = u"83333"_s,
    .payBackNumber = u"12"_s, .remainderOption = 1, .notes = u"وام مسکن"_s,
    .members = {{u"12"_s, {u"40"_s, u"null"_s, u"null"_s}},
                {u"40"_s, {u"null"_s, u"null"_s, u"null"_s}}}};
// clang-format on

}  // namespace

TEST(LoanSaveSql, SqlServerTextsOfSavingDeletingAndBackToTemporary) {
    EXPECT_EQ(
        CheckedTsql(loan_save::OverlapQuery(kServer, kLoan, 57)),
        u"Select distinct EmployeeID from tblHRLoanDetail Where EmployeeID in (12,40) and LoanID <> 57 and LoanID in (Select x.ID from tblHRLoan x Where Not (x.BeginDate>'20250320' Or x.EndDate < '20240419') and TypeID=3)"_s);
    EXPECT_EQ(
        CheckedTsql(loan_save::InsertHeader(kServer, kLoan)),
        u"insert into tblHRLoan (TypeID, PaymentDate, FarsiPaymentDate, BeginDate, FarsiBeginDate, EndDate, FarsiEndDate, LoanValue) Values (3, '20240325', '1403/01/06', '20240419', '1403/12/30', '20250320', '20250320', 1000000)"_s);
    EXPECT_EQ(CheckedTsql(loan_save::MaxId()), u"Select MAX(ID) as MAXID from tblHRLoan"_s);
    const QStringList final = loan_save::Writes(kServer, kLoan, 57);
    for (const QString& sql : final) CheckedTsql(sql);
    EXPECT_EQ(
        final,
        (QStringList{
            u"Update tblHRLoan Set TypeID = 3, Code =  IsNull((Select MAX(x.CODE) from tblHRLoan x Where x.Code is not null), 0)+1, PaymentDate = '20240325', FarsiPaymentDate = '1403/01/06', BeginDate = '20240419', FarsiBeginDate = '1403/01/31', EndDate = '20250320', FarsiEndDate = '1403/12/30', OriginalLoanValue=1200000, MonthlyValue=83333, LoanValue=1000000, PayBackNumber=12, UseRemainedValueInFirstMonth=1, Notes=N'وام مسکن' Where ID= 57"_s,
            u"delete tblHRLoanDetail Where LoanID=57"_s,
            u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3) Values (57, 12, 40, null, null)"_s,
            u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3) Values (57, 40, null, null, null)"_s}));
    // A temporary save of empty boxes: the empty Jalali text with 1900-01-01, Null count
    // and notes, 0 amounts. (Quotes in the notes round-trip in SaveTest.)
    LoanRecord sparse{.typeId = 3,
                      .beginDate = QDate(2024, 4, 19),
                      .endDate = QDate(2025, 3, 20),
                      .farsiBeginDate = u"1403/01/31"_s,
                      .farsiEndDate = u"1403/12/30"_s,
                      .loanValue = u"1000000"_s,
                      .monthlyValue = u"  "_s,
                      .notes = u"   "_s};
    const QStringList temporary = loan_save::Writes(kServer, sparse, 57);
    ASSERT_EQ(temporary.size(), 2);
    EXPECT_EQ(
        CheckedTsql(temporary[0]),
        u"Update tblHRLoan Set TypeID = 3, Code = NULL, PaymentDate = '19000101', FarsiPaymentDate = '', BeginDate = '20240419', FarsiBeginDate = '1403/01/31', EndDate = '20250320', FarsiEndDate = '1403/12/30', OriginalLoanValue=0, MonthlyValue=0, LoanValue=1000000, PayBackNumber=Null, UseRemainedValueInFirstMonth=0, Notes=Null Where ID= 57"_s);
    const QStringList deletion = loan_save::DeleteLoan(kServer, 57);
    EXPECT_EQ(deletion, (QStringList{u"delete tblHRLoanDetail where LoanID=57 "_s,
                                     u"delete tblHRLoan where ID=57 "_s}));
    for (const QString& sql : deletion) CheckedTsql(sql);
    EXPECT_EQ(CheckedTsql(loan_save::BackToTemporary(57)),
              u"Update tblHRLoan Set Code = Null where ID=57"_s);
    // Typed notes as Unicode text, the quote doubled; the new row's ID from its own insert;
    // the stored loan read again under the write's lock.
    LoanRecord typed = kLoan;
    typed.notes = u"O'Brien \u06CC\u06F1\u0663"_s;
    EXPECT_TRUE(loan_save::Writes(kServer, typed, 57)[0].endsWith(
        u", Notes=N'O''Brien \u06CC\u06F1\u0663' Where ID= 57"_s));
    EXPECT_EQ(
        CheckedTsql(loan_save::InsertHeaderReturningId(kServer, kLoan)),
        u"insert into tblHRLoan (TypeID, PaymentDate, FarsiPaymentDate, BeginDate, FarsiBeginDate, EndDate, FarsiEndDate, LoanValue) Values (3, '20240325', '1403/01/06', '20240419', '1403/12/30', '20250320', '20250320', 1000000); SELECT CAST(SCOPE_IDENTITY() AS int) AS NewID"_s);
    EXPECT_EQ(
        CheckedTsql(stored_loan::StateQuery(kServer, 57)),
        u"Select l.Code, (Select count(*) from tblHRMonthlyPaiedLoan p WITH (HOLDLOCK) Where p.LoanID=57) as PaidRows from tblHRLoan l WITH (UPDLOCK, HOLDLOCK) Where l.ID=57"_s);
}

TEST(LoanSaveSql, TheCountIsWrittenOnlyAsAWholeNumber) {
    // clang-format off
    const std::pair<QString, std::optional<QString>> cases[] = {
        {u""_s, u"Null"_s}, {u"  "_s, u"Null"_s}, {u"12"_s, u"12"_s}, {u" 012 "_s, u"12"_s},
        {u"۱۲"_s, u"12"_s}, {u"١٢"_s, u"12"_s}, {u"2147483647"_s, u"2147483647"_s},
        {u"2147483648"_s, {}}, {u"12.5"_s, {}}, {u"12.0"_s, {}}, {u"1e3"_s, {}}, {u"-3"_s, {}},
        {u"1 2"_s, {}}, {u"12abc"_s, {}}, {u"3; drop table tblHRLoan"_s, {}}};
    // clang-format on
    for (const auto& [typed, written] : cases)
        EXPECT_EQ(loan_save::CountSql(typed), written) << typed.toStdString();
}

namespace {

class SaveTest : public EditorTest {
protected:
    int loans() { return Scalar(u"select count(*) from tblHRLoan"_s).toInt(); }
    // The stored columns of a loan, joined by '|', a Null code as "-".
    QString stored(int loan) {
        return Scalar(
                   u"select TypeID||'|'||ifnull(Code,'-')||'|'||PaymentDate||'|'||"
                   "FarsiPaymentDate||'|'||BeginDate||'|'||FarsiBeginDate||'|'||EndDate||'|'||"
                   "FarsiEndDate||'|'||LoanValue||'|'||OriginalLoanValue||'|'||MonthlyValue||'|'||"
                   "PayBackNumber||'|'||UseRemainedValueInFirstMonth||'|'||Notes "
                   "from tblHRLoan where ID=%1"_s.arg(loan))
            .toString();
    }
    // A new loan of type 1 with values that differ from every default.
    void fillNewLoan() {
        auto& w = editor();
        w.cmdNew_Click();
        w.cmbLoanType->setCurrentIndex(0);
        w.txtLoanValue->setText(u"2000"_s);
        w.txtOriginalValue->setText(u"2500"_s);
        w.txtPayBackNumber->setText(u"۴"_s);
        w.datEndDate->setFarsidate(u"1403/09/30"_s);
        w.UseRemainedValueInFirstMonthF->setChecked(true);
        w.txtNotes->setText(u" قرض 'ويژه' O'Brien "_s);
    }
};

const QString kOverlap =
    u"? هشدار: تعداد «%1» کارمند قبلا در صندوقي با زمان متداخل وجود دارد، آيا از ثبت مطمئن هستيد؟"_s;

}  // namespace

TEST_F(SaveTest, ATemporarySaveStoresTheLoanAsTypedAndAFinalOneNeedsMembers) {
    auto& w = editor();
    fillNewLoan();
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: هيچ کارمندي مشخص نشده است."_s});
    EXPECT_EQ(loans(), 5);
    EXPECT_EQ(mode(), ModeNew);
    session().LoanEditStarted = 1;
    w.cmdRegSave_Click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(stored(6),
              u"1|-|2024-08-10|1403/05/20|2024-08-21|1403/05/31|2024-12-20|1403/09/30|"
              "2000|2500|0|4|1| قرض 'ويژه' O'Brien "_s);
    EXPECT_EQ(loans(), 6);
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoanDetail where LoanID=6"_s).toInt(), 0);
    EXPECT_EQ(w.txtID->text() + w.txtNotes->text(), u"6 قرض 'ويژه' O'Brien "_s);  // read back
    EXPECT_EQ(mode() + session().LoanEditStarted, ModeView);
}

TEST_F(SaveTest, FinalCodesAreOneMoreThanTheGreatestOfAnyTypeAndBackToTemporaryAsksFirst) {
    auto& w = editor();
    // Code in the box and in the database, and whether Edit and Back to temporary are enabled.
    const auto final = [&](int loan) {
        return w.txtCode->text() + u' ' + Code(loan).toString() + u' ' +
               QString::number(w.cmdEdit->isEnabled()) +
               QString::number(w.cmdBacktoTemp->isEnabled());
    };
    t.db.exec(u"update tblHRLoan set Code = NULL"_s);
    Edit(SeparateLoan);
    AddMembers({2});
    w.cmdFinSave->setEnabled(true);
    w.cmdFinSave->click();
    EXPECT_EQ(final(SeparateLoan), u"1 1 01"_s);
    t.db.exec(u"update tblHRLoan set Code = 41 where ID=2"_s);  // another type
    Edit(TemporaryLoan);
    w.cmdFinSave_Click();
    EXPECT_EQ(final(TemporaryLoan), u"42 42 01"_s);
    w.ShowFormToEdit();  // a temporary save clears the code of a loan that had one
    w.cmdRegSave_Click();
    EXPECT_EQ(final(TemporaryLoan), u"  10"_s);
    w.ViewPRSLoansInfo(FinalLoan);
    for (const int answer : {0, 5}) {
        t.messages->answers = {answer};
        w.cmdBacktoTemp->click();
        EXPECT_EQ(Shown(), QStringList{u"? پرسش: آيا قصد بازگشت به حالت موقت داريد؟"_s});
        EXPECT_EQ(final(FinalLoan), u"41 41 01"_s) << answer;
    }
    t.messages->answers = {1};
    w.cmdBacktoTemp->click();
    EXPECT_EQ(final(FinalLoan), u"  10"_s);
    w.cmdEdit->click();  // final again: one more than the greatest code left (1)
    w.cmdFinSave_Click();
    EXPECT_EQ(final(FinalLoan), u"2 2 01"_s);
}

TEST_F(SaveTest, DeleteAsksFirstAndPayslipRowsRefuseEditDeleteAndBackToTemporary) {
    auto& w = editor();
    const QString asked = u"? حذف  وام کارمندان: آيا مطمئن هستيد؟"_s;
    const QString before = Snapshot();
    w.ViewPRSLoansInfo(TemporaryLoan);
    t.messages->answers = {5};  // no answer keeps the loan ("no": the permission test)
    w.mnuDelete->trigger();
    EXPECT_EQ(Shown(), QStringList{asked});
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(w.lblMessage->text() + QString::number(mode()), u"حذف وام کارمندان0"_s);
    t.messages->answers = {1};
    w.mnuDelete->trigger();
    EXPECT_EQ(loans(), 4);
    EXPECT_EQ(Scalar(u"select group_concat(LoanID) from tblHRLoanDetail"_s).toString(), u"2,5"_s);
    EXPECT_EQ(mode(), ModeEmpty);
    EXPECT_EQ(w.txtID->text() + w.txtLoanValue->Text() + w.lblMessage->text(), u" "_s);
    const QString refused =
        u"اشکال: به دليل محاسبه در فيش هاي حقوقي (%1 عدد)، امکان %2 وجود ندارد!"_s;
    Shown();
    w.ViewPRSLoansInfo(PaidLoan);
    w.cmdEdit_Click();
    w.cmdDelete->click();  // asked first, then refused
    EXPECT_EQ(Shown(),
              (QStringList{refused.arg(2).arg(u"حذف"_s), asked, refused.arg(2).arg(u"حذف"_s)}));
    EXPECT_EQ(mode(), ModeView);
    t.db.exec({u"update tblHRLoan set Code = 3 where ID=5"_s,
               u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID) values (5, 3)"_s});
    w.ViewPRSLoansInfo(PaidLoan);
    w.cmdBacktoTemp->click();
    EXPECT_EQ(Shown(), (QStringList{u"? پرسش: آيا قصد بازگشت به حالت موقت داريد؟"_s,
                                    refused.arg(3).arg(u"بازگشت"_s)}));
    EXPECT_EQ(loans(), 4);
    EXPECT_EQ(Code(PaidLoan).toInt(), 3);
}

TEST_F(SaveTest, OverlapQuestionForSameTypeMembersInTouchingOrOverlappingPeriods) {
    auto& w = editor();
    t.db.exec({
        u"insert into tblHRLoan (ID, TypeID, BeginDate, EndDate, LoanValue) values "
        "(10, 1, '2024-01-01', '2024-04-19', 100), "  // ends the day loan 4 begins
        "(11, 2, '2024-04-19', '2024-06-20', 100), "  // another type
        "(12, 1, NULL, NULL, 100)"_s,                 // no period
        u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (10, 2), (11, 1), (12, 4)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values (6, '6', 'x', 'y')"_s,
    });
    // Loan 1 holds 1 and 4 itself: left out in edit mode, so nobody overlaps.
    Edit(TemporaryLoan);
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(Code(TemporaryLoan).toInt(), 8);
    // 6 holds no loan, 2 one of the same type ending the day this one begins: no stops the
    // save and marks 2.
    Edit(SeparateLoan);  // 2024-04-19 .. 2024-06-20
    AddMembers({6, 2});
    const QString before = Snapshot();
    t.messages->answers = {0};
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(),
              (QStringList{kOverlap.arg(1), u"اطلاع: کاربر تکراري در جدول مشخص شده است."_s}));
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(mode(), ModeEdit);
    const auto* g = w.FlexEmployee;
    EXPECT_EQ((QList<int>{g->Row(), g->Col(), g->RowSel(), g->ColSel()}), (QList<int>{2, 1, 2, 9}));
    // With 4 (loan 1) and 3 (loan 5) three overlap; no answer lets the save go on.
    AddMembers({4, 3});
    t.messages->answers = {5};
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(), QStringList{kOverlap.arg(3)});
    EXPECT_EQ(Code(SeparateLoan).toInt(), 9);
    // In new mode nothing is left out; yes goes on.
    fillNewLoan();
    w.datEndDate->setFarsidate(u"1404/12/29"_s);
    AddMembers({1});
    t.messages->answers = {1};
    w.cmdRegSave_Click();
    EXPECT_EQ(Shown(), QStringList{kOverlap.arg(1)});
    EXPECT_EQ(loans(), 9);
}

TEST_F(SaveTest, AFailureHalfWayWritesNothingAndSavingAgainIsSafe) {
    auto& w = editor();
    const QString trigger =
        u"create trigger boom before insert on tblHRLoanDetail when NEW.EmployeeID = %1 "
        "begin select raise(abort, 'member insert refused'); end"_s;
    Edit(TemporaryLoan);
    AddMembers({3});  // members 1, 4, 3: the insert of 4 fails after 1 went in
    t.db.exec(trigger.arg(4));
    w.txtNotes->setText(u"changed"_s);
    const QString before = Snapshot();
    w.cmdFinSave->click();
    const QStringList shown = Shown();
    EXPECT_TRUE(shown.last().startsWith(u"خطا: "_s) &&
                shown.last().contains(u"member insert refused"_s))
        << shown.join(u'\n').toStdString();
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(mode(), ModeEdit);
    EXPECT_EQ(w.txtNotes->text() + w.txtCode->text(), u"changed"_s);
    EXPECT_EQ(w.FlexEmployee->Rows(), 4);
    t.db.exec(u"drop trigger boom"_s);
    w.cmdFinSave->click();
    EXPECT_EQ(Code(TemporaryLoan).toInt(), 8);
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoanDetail where LoanID=1"_s).toInt(), 3);
    // New mode: the header insert is undone too, and the second save makes one header.
    fillNewLoan();
    AddMembers({2});
    t.db.exec(trigger.arg(2));
    const QString beforeNew = Snapshot();
    w.cmdRegSave->click();
    EXPECT_EQ(Snapshot(), beforeNew);
    EXPECT_EQ(mode(), ModeNew);
    EXPECT_EQ(w.txtID->text(), u"1"_s);  // still the loan shown before New
    t.db.exec(u"drop trigger boom"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(loans(), 6);
    EXPECT_EQ(w.txtID->text(), u"6"_s);
    EXPECT_EQ(Scalar(u"select EmployeeID from tblHRLoanDetail where LoanID=6"_s).toInt(), 2);
}

// Another clerk, or the payroll, changes the loan after this window showed it: the write
// is refused inside its transaction, nothing of it is written, one message says what
// changed, and the window shows the stored loan (or empties when it is gone).
TEST_F(SaveTest, AWriteOnALoanChangedMeanwhileWritesNothingAndShowsTheStoredLoan) {
    auto& w = editor();
    const QString final = u"Update tblHRLoan Set Code = 9 where ID=%1"_s,
                  temporary = u"Update tblHRLoan Set Code = Null where ID=%1"_s,
                  paid = u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, "
                         "PaidValue) values (%1, 2, '1403/02', 300)"_s,
                  deleted = u"delete from tblHRLoan where ID=%1"_s;
    const QString deleteAsked = u"? حذف  وام کارمندان: آيا مطمئن هستيد؟"_s,
                  backAsked = u"? پرسش: آيا قصد بازگشت به حالت موقت داريد؟"_s;
    struct Case {
        qint16 loan;
        bool edit;
        QString change;  // what the other client does, %1 the loan
        std::function<void()> command;
        QStringList shown;
        qint32 modeAfter;
        QString codeAfter;  // txtCode, or "-" when txtID is empty too
    };
    const Case cases[] = {
        {TemporaryLoan, false, final, [&] { w.cmdDelete_Click(); },
         {deleteAsked, u"هشدار: اين وام را کاربر ديگري ثبت قطعي کرده است؛ وام حذف نشد."_s},
         ModeView, u"9"_s},
        {FinalLoan, false, temporary, [&] { w.cmdBacktoTemp_Click(); },
         {backAsked,
          u"هشدار: اين وام را کاربر ديگري به حالت موقت برگردانده است؛ وام به حالت موقت برنگشت."_s},
         ModeView, u""_s},
        {FinalLoan, false, paid, [&] { w.cmdBacktoTemp_Click(); },
         {backAsked, u"اشکال: به دليل محاسبه در فيش هاي حقوقي (1 عدد)، امکان بازگشت وجود ندارد!"_s},
         ModeView, u"7"_s},
        {TemporaryLoan, true, paid, [&] { w.cmdRegSave_Click(); },
         {u"هشدار: براي اين وام در اين فاصله در فيش هاي حقوقي (1 عدد) کسر ثبت شده است؛ تغييرات شما ثبت نشد."_s},
         ModeView, u""_s},
        {TemporaryLoan, true, deleted, [&] { w.cmdRegSave_Click(); },
         {u"هشدار: اين وام را کاربر ديگري حذف کرده است؛ تغييرات شما ثبت نشد."_s}, ModeEmpty,
         u"-"_s},
        {TemporaryLoan, true, deleted,
         [&] {
             w.FlexEmployee->setRow(1);
             w.cmdDeleteEmp_Click();
         },
         {u"هشدار: اين وام را کاربر ديگري حذف کرده است؛ کارمند از وام حذف نشد."_s}, ModeEmpty,
         u"-"_s},
    };
    Connection other;  // the other clerk's own connection to the same database
    other.SetConnectionString(t.db.connectionString());
    t.db.exec(u"create table seeded as select * from tblHRLoan where ID in (1, 2)"_s);
    for (const Case& c : cases) {
        t.db.exec({u"delete from tblHRMonthlyPaiedLoan where LoanID <> 5"_s,
                   u"delete from tblHRLoan where ID in (1, 2)"_s,
                   u"insert into tblHRLoan select * from seeded"_s});
        w.ViewPRSLoansInfo(c.loan);
        if (c.edit) {
            w.cmdEdit_Click();
            w.txtNotes->setText(u"edited"_s);
        }
        Shown();
        loan_save::RunWrites(other, {c.change.arg(c.loan)});
        const QString before = Snapshot();
        c.command();
        EXPECT_EQ(Shown(), c.shown) << c.change.toStdString();
        EXPECT_EQ(Snapshot(), before) << c.change.toStdString();
        EXPECT_EQ(mode(), c.modeAfter) << c.change.toStdString();
        EXPECT_EQ(w.txtID->text().isEmpty() ? u"-"_s : w.txtCode->text(), c.codeAfter);
        EXPECT_EQ(session().LoanEditStarted, 0);
        if (c.modeAfter == ModeView)  // the stored loan, not the edits
            EXPECT_EQ(w.txtNotes->text(), c.loan == TemporaryLoan ? u"وام مسکن"_s : QString());
    }
}

// A new loan's ID is the one its own insert got, even when a trigger (another program of the
// suite inserting at the same moment) adds a loan row of its own.
TEST_F(SaveTest, ANewLoanIsTheRowItsInsertMadeNotTheNewestRow) {
    auto& w = editor();
    t.db.exec(
        u"create trigger twin after insert on tblHRLoan when new.TypeID <> 2 begin "
        "insert into tblHRLoan (TypeID, Notes) values (2, 'other program'); end"_s);
    fillNewLoan();
    w.cmdRegSave_Click();
    EXPECT_EQ(w.txtID->text(), u"6"_s);
    EXPECT_EQ(t.db.table(u"select ID, TypeID, LoanValue, Notes from tblHRLoan where ID > 5"_s),
              (QStringList{u"6|1|2000| قرض 'ويژه' O'Brien "_s, u"7|2|NULL|other program"_s}));
}

// Two clients rewrite the same loan's members with sets of their own, again and again, while
// a third reads it: every save succeeds (a transaction begun deferred makes the second writer
// fail) and the stored loan is always wholly one client's, header and members (without one
// transaction per save the reader sees a half-written set, and the writers mix theirs).
TEST(LoanSaveConcurrency, TwoClientsRewritingOneLoanLeaveItWhollyOneClientsAtEveryMoment) {
    TestDatabase db;
    db.exec({u"insert into tblEmployee (ID, Code, FirstName, SureName) values (1, '1', 'a', 'b'), "
             "(2, '2', 'c', 'd'), (3, '3', 'e', 'f'), (4, '4', 'g', 'h'), (5, '5', 'i', 'j')"_s,
             u"insert into tblHRLoan (ID, TypeID, LoanValue, Notes) values (1, 1, 100, 'A')"_s});
    const std::map<QString, QString> sets = {{u"A"_s, u"1,2,3"_s}, {u"B"_s, u"4,5"_s}};
    std::atomic<bool> done = false;
    auto client = [&](const QString& tag) {
        Connection cnt;  // opened on this thread
        cnt.SetConnectionString(db.connectionString());
        LoanRecord loan;
        loan.typeId = 1;
        loan.loanValue = u"100"_s;
        loan.notes = tag;
        for (const QString& id : sets.at(tag).split(u','))
            loan.members << loan_save::MemberRow{id, {u"null"_s, u"null"_s, u"null"_s}};
        for (int i = 0; i < 200; ++i) {
            try {
                loan_save::WriteLoan(cnt, loan, stored_loan::Expected{1, false, true});
            } catch (const KavError& e) {
                ADD_FAILURE() << tag.toStdString() << ": " << e.message().toStdString();
            }
        }
    };
    QStringList seen;
    auto reader = [&] {
        Connection cnt;
        cnt.SetConnectionString(db.connectionString());
        while (!done) {
            Recordset rs(cnt);
            rs.Open(u"select Notes || ':' || ifnull((select group_concat(EmployeeID) from "
                    "(select EmployeeID from tblHRLoanDetail where LoanID = 1 order by ID)), '') "
                    "as v from tblHRLoan where ID = 1"_s);
            const QString v = rs.Fields(u"v"_s).toString();
            if (!seen.contains(v)) seen << v;
        }
    };
    std::thread r(reader);
    std::thread a(client, u"A"_s), b(client, u"B"_s);
    a.join();
    b.join();
    done = true;
    r.join();
    seen.removeAll(u"A:"_s);  // the loan as seeded, before its first save
    for (const QString& v : seen)
        EXPECT_TRUE(v == u"A:1,2,3" || v == u"B:4,5") << "the reader saw " << v.toStdString();
}

TEST(LoanEditorSql, SqlServerTextsAreTheSuitesTexts) {
    EXPECT_EQ(CheckedTsql(loan_sql::FillLoan(40000)),
              u"select * from vwHRLoanData where ID =40000"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypes()), u"select * from tblHRLoanType"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypeMaxValue(3)),
              u"Select MaxValue from tblHRLoanType where ID=3"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypeRow(3)), u"select * from tblHRLoanType where ID=3"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::PaidInstalments(12)),
              u"Select * from tblHRMonthlyPaiedLoan Where LoanID=12"_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::EmployeeRow(kServer, 40)),
        u"select e.ID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e Where e.ID=40"_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::OrdinanceEmployees(kServer, u"12,40"_s, QDate(2024, 4, 19),
                                                 QDate(2025, 3, 20))),
        u"select distinct x.EmployeeID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e inner join tblHROrdinance x on x.EmployeeID=e.ID Where e.ID not in (12,40) and Not (x.BeginDate>'20250320' or x.EndDate<'20240419')"_s);
    // Empty dates: the whole range from 1900-01-01 to 2050-01-01.
    EXPECT_EQ(
        CheckedTsql(loan_sql::OrdinanceEmployees(kServer, u"-1"_s, QDate(), QDate())),
        u"select distinct x.EmployeeID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e inner join tblHROrdinance x on x.EmployeeID=e.ID Where e.ID not in (-1) and Not (x.BeginDate>'20500101' or x.EndDate<'19000101')"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::DeleteMember(kServer, 12, 40)),
              u"delete tblHRLoanDetail where LoanID=12 and EmployeeID=40 "_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::MemberGrid(kServer, 12)),
        u"select vw.*, e1.FirstName +' '+e1.SureName as 'Supporter1', e2.FirstName +' '+e2.SureName as 'Supporter2', e3.FirstName +' '+e3.SureName as 'Supporter3' from vwHRLoanEmployees vw left outer join tblemployee e1 on supporterEmployeeid1=e1.id left outer join tblemployee e2 on supporteremployeeid2=e2.id left outer join tblemployee e3 on supporteremployeeid3=e3.id where vw.LoanID=12"_s);
}

TEST(ClerkPath, NewLoanMembersFinalBackToTemporaryAndDeletedOnTheDemoDatabase) {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"demo.db"_s);
    data::CreateDemoDatabase(file);
    TestDatabase probe(false);  // a second connection to read what the window wrote
    probe.db().close();
    probe.db().setDatabaseName(file);
    ASSERT_TRUE(probe.db().open());
    auto messages = std::make_shared<MessageScript>();
    Module module;
    module.session.SessionConnectionString = data::EmbeddedConnectionString(file);
    module.session.SessionUserID = data::DemoUserWithPermissions;
    module.session.SessionTitle = u"وام کارمندان"_s;
    module.SetMessageFactory(ScriptedFactory(messages));
    module.OpenSessionConnection();
    const qint32 member =
        probe.scalar(u"select min(ID) from tblEmployee where WorkStatusID <> 3"_s).toInt();
    module.SetModalRunner([&](QDialog& d) {
        if (auto* p = qobject_cast<FormHREmployee*>(&d)) Pick(member)(*p);
        return 0;
    });
    auto& w = module.Window<FormHRLoan>();
    module.session.LoanFormMode = ModeEmpty;
    w.DisableLockComponent();
    w.show();
    w.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    QTest::mouseClick(w.cmdNew, Qt::LeftButton);  // a new loan, saved temporary
    w.cmbLoanType->setCurrentIndex(0);
    emit w.cmbLoanType->activated(0);
    w.txtLoanValue->SetFocus();
    QTest::keyClicks(w.txtLoanValue->lineEdit(), u"24000000"_s);
    w.txtPayBackNumber->setFocus();
    QTest::keyClicks(w.txtPayBackNumber, u"12"_s);
    w.TxtPerMonth->SetFocus();  // leaving the count computes the instalment and the end
    EXPECT_EQ(w.TxtPerMonth->Value(), u"2000000"_s);
    QTRY_VERIFY(w.cmdRegSave->isEnabled());
    QTest::mouseClick(w.cmdRegSave, Qt::LeftButton);
    ASSERT_EQ(module.session.LoanFormMode, ModeView) << messages->texts().join(u'\n').toStdString();
    const QString id = w.txtID->text();
    EXPECT_EQ(id, probe.scalar(u"select max(ID) from tblHRLoan"_s).toString());
    // Members: one picked, then everyone with an ordinance in the period; one clicked in the
    // grid and removed; then the final save.
    QTest::mouseClick(w.cmdEdit, Qt::LeftButton);
    QTRY_VERIFY(w.cmdAddEmp->isEnabled());
    QTest::mouseClick(w.cmdAddEmp, Qt::LeftButton);
    EXPECT_EQ(w.FlexEmployee->TextMatrix(1, 1), QString::number(member));
    QTest::mouseClick(w.cmdAddOrdinanceEmployees, Qt::LeftButton);
    const int members = w.FlexEmployee->Rows() - 1;
    QTest::mouseClick(w.cmdRegSave, Qt::LeftButton);
    QTest::mouseClick(w.cmdEdit, Qt::LeftButton);
    QTableView* view = w.FlexEmployee->view();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualRect(view->model()->index(1, 3)).center());
    QTest::mouseClick(w.cmdDeleteEmp, Qt::LeftButton);
    QTRY_VERIFY(w.cmdFinSave->isEnabled());
    QTest::mouseClick(w.cmdFinSave, Qt::LeftButton);
    const QString count = u"select count(*) from tblHRLoanDetail where LoanID="_s + id;
    const QString code = u"select Code from tblHRLoan where ID="_s + id;
    EXPECT_EQ(probe.scalar(count).toInt(), members - 1);
    EXPECT_FALSE(w.txtCode->text().isEmpty());
    EXPECT_EQ(w.txtCode->text(), probe.scalar(code).toString());
    QTest::mouseClick(w.cmdBacktoTemp, Qt::LeftButton);  // back to temporary
    EXPECT_TRUE(probe.scalar(code).isNull());
    QTest::mouseClick(w.cmdDelete, Qt::LeftButton);  // and deleted
    EXPECT_EQ(module.session.LoanFormMode, ModeEmpty);
    EXPECT_EQ(probe.scalar(u"select count(*) from tblHRLoan where ID="_s + id).toInt() +
                  probe.scalar(count).toInt(),
              0);
    for (const ShownMessage& m : messages->shown)
        EXPECT_NE(m.title, u"خطا"_s) << m.text.toStdString();
    w.hide();
}
