// The editor's SQL Server texts; saving, deleting and back to temporary, all or nothing, also
// with two clients at once; and a clerk's day on the demo database.

#include <gtest/gtest.h>

#include <QTemporaryDir>
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
            u"Update tblHRLoan Set TypeID = 3, Code =  IsNull((Select MAX(x.CODE) from tblHRLoan x Where x.Code is not null), 0)+1, PaymentDate = '20240325', FarsiPaymentDate = '1403/01/06', BeginDate = '20240419', FarsiBeginDate = '1403/01/31', EndDate = '20250320', FarsiEndDate = '1403/12/30', OriginalLoanValue=1200000, MonthlyValue=83333, LoanValue=1000000, PayBackNumber=12, UseRemainedValueInFirstMonth=1, Notes='وام مسکن' Where ID= 57"_s,
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

TEST_F(SaveTest, SavingALoanDeletedMeanwhileIsRefusedAndWritesNothing) {
    auto& w = editor();
    Edit(TemporaryLoan);
    t.db.exec(
        {u"delete from tblHRLoanDetail where LoanID=1"_s, u"delete from tblHRLoan where ID=1"_s});
    const QString before = Snapshot();
    w.cmdFinSave->click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: اين وام را کاربر ديگري حذف کرده است؛ وام ثبت نشد."_s});
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(mode(), ModeEdit);
}

TEST(LoanSaveConcurrency, TwoClientsSavingAtOnceGetDistinctGapFreeCodesAndTheirOwnMembers) {
    TestDatabase db;
    db.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values "
        "(1, '1', 'a', 'b'), (2, '2', 'c', 'd')"_s);
    auto client = [&](qint32 employee) {
        Module module;  // its own connection, opened on this thread
        module.session.SessionConnectionString = db.connectionString();
        module.OpenSessionConnection();
        for (int i = 0; i < 20; ++i) {
            LoanRecord loan;
            loan.isFinal = true;
            loan.typeId = employee;
            loan.loanValue = QString::number(i + 1);
            loan.notes = QString::number(employee);
            loan.members = {{QString::number(employee), {u"null"_s, u"null"_s, u"null"_s}}};
            try {
                loan_save::WriteLoan(module.DtEn().cnt(), loan, std::nullopt);
            } catch (const KavError& e) {
                ADD_FAILURE() << e.message().toStdString();
            }
        }
    };
    std::thread a(client, 1), b(client, 2);
    a.join();
    b.join();
    // Distinct codes 1..40, 40 member rows, each loan with its own client's member only.
    EXPECT_EQ(db.scalar(u"select count(distinct Code)||' '||min(Code)||' '||max(Code)||' '||"
                        "count(*)||' '||(select count(*) from tblHRLoanDetail)||' '||(select "
                        "count(*) from tblHRLoan l where (select count(*) from tblHRLoanDetail d "
                        "where d.LoanID = l.ID and d.EmployeeID = cast(l.Notes as integer)) <> 1) "
                        "from tblHRLoan"_s)
                  .toString(),
              u"40 1 40 40 40 0"_s);
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
