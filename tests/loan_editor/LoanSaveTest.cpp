// Saving a loan temporary or final, deleting it and returning it to temporary: the statements
// exactly as the suite sends them, the loan numbers, the overlap question, and every write
// all or nothing, also with two clients saving at once.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <atomic>
#include <thread>

#include "EditorFixture.h"
#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "controls/QtPrinters.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/LoanSave.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using loan_save::LoanRecord;

namespace {

const data::SqlDialect kServer(data::DatabaseKind::SqlServer);

LoanRecord sampleLoan() {
    LoanRecord loan;
    loan.isFinal = true;
    loan.typeId = 3;
    loan.payDate = QDate(2024, 3, 25);
    loan.farsiPayDate = u"1403/01/06"_s;
    loan.beginDate = QDate(2024, 4, 19);
    loan.farsiBeginDate = u"1403/01/31"_s;
    loan.endDate = QDate(2025, 3, 20);
    loan.farsiEndDate = u"1403/12/30"_s;
    loan.loanValue = u"1000000"_s;
    loan.originalValue = u"1200000"_s;
    loan.monthlyValue = u"83333"_s;
    loan.payBackNumber = u"12"_s;
    loan.remainderOption = 1;
    loan.notes = u"وام مسکن"_s;
    loan.members = {{u"12"_s, {u"40"_s, u"null"_s, u"null"_s}},
                    {u"40"_s, {u"null"_s, u"null"_s, u"null"_s}}};
    return loan;
}

}  // namespace

TEST(LoanSaveSql, SqlServerTextsOfSavingDeletingAndBackToTemporary) {
    const LoanRecord loan = sampleLoan();
    EXPECT_EQ(
        CheckedTsql(loan_save::OverlapQuery(kServer, loan, 57)),
        u"Select distinct EmployeeID from tblHRLoanDetail Where EmployeeID in (12,40) and LoanID <> 57 and LoanID in (Select x.ID from tblHRLoan x Where Not (x.BeginDate>'20250320' Or x.EndDate < '20240419') and TypeID=3)"_s);
    EXPECT_TRUE(loan_save::OverlapQuery(kServer, loan, -1).contains(u" and LoanID <> -1 and "_s));
    EXPECT_EQ(
        CheckedTsql(loan_save::InsertHeader(kServer, loan)),
        u"insert into tblHRLoan (TypeID, PaymentDate, FarsiPaymentDate, BeginDate, FarsiBeginDate, EndDate, FarsiEndDate, LoanValue) Values (3, '20240325', '1403/01/06', '20240419', '1403/12/30', '20250320', '20250320', 1000000)"_s);
    EXPECT_EQ(CheckedTsql(loan_save::MaxId()), u"Select MAX(ID) as MAXID from tblHRLoan"_s);

    const QStringList final = loan_save::Writes(kServer, loan, 57);
    ASSERT_EQ(final.size(), 4);
    for (const QString& sql : final) CheckedTsql(sql);
    EXPECT_EQ(
        final[0],
        u"Update tblHRLoan Set TypeID = 3, Code =  IsNull((Select MAX(x.CODE) from tblHRLoan x Where x.Code is not null), 0)+1, PaymentDate = '20240325', FarsiPaymentDate = '1403/01/06', BeginDate = '20240419', FarsiBeginDate = '1403/01/31', EndDate = '20250320', FarsiEndDate = '1403/12/30', OriginalLoanValue=1200000, MonthlyValue=83333, LoanValue=1000000, PayBackNumber=12, UseRemainedValueInFirstMonth=1, Notes='وام مسکن' Where ID= 57"_s);
    EXPECT_EQ(final[1], u"delete tblHRLoanDetail Where LoanID=57"_s);
    EXPECT_EQ(
        final[2],
        u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3) Values (57, 12, 40, null, null)"_s);
    EXPECT_EQ(
        final[3],
        u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3) Values (57, 40, null, null, null)"_s);

    // A temporary save of empty boxes: the empty Jalali text with 1900-01-01, Null count
    // and notes, 0 amounts; a quote in the notes is doubled.
    LoanRecord sparse = sampleLoan();
    sparse.isFinal = false;
    sparse.payDate = QDate();
    sparse.farsiPayDate.clear();
    sparse.originalValue.clear();
    sparse.monthlyValue = u"  "_s;
    sparse.payBackNumber.clear();
    sparse.remainderOption = 0;
    sparse.notes = u"   "_s;
    sparse.members.clear();
    const QStringList temporary = loan_save::Writes(kServer, sparse, 57);
    ASSERT_EQ(temporary.size(), 2);
    EXPECT_EQ(
        CheckedTsql(temporary[0]),
        u"Update tblHRLoan Set TypeID = 3, Code = NULL, PaymentDate = '19000101', FarsiPaymentDate = '', BeginDate = '20240419', FarsiBeginDate = '1403/01/31', EndDate = '20250320', FarsiEndDate = '1403/12/30', OriginalLoanValue=0, MonthlyValue=0, LoanValue=1000000, PayBackNumber=Null, UseRemainedValueInFirstMonth=0, Notes=Null Where ID= 57"_s);
    sparse.notes = u"O'Brien's"_s;
    EXPECT_TRUE(CheckedTsql(loan_save::Writes(kServer, sparse, 57)[0])
                    .endsWith(u", Notes='O''Brien''s' Where ID= 57"_s));

    const QStringList deletion = loan_save::DeleteLoan(kServer, 57);
    EXPECT_EQ(deletion, (QStringList{u"delete tblHRLoanDetail where LoanID=57 "_s,
                                     u"delete tblHRLoan where ID=57 "_s}));
    for (const QString& sql : deletion) CheckedTsql(sql);
    EXPECT_EQ(CheckedTsql(loan_save::BackToTemporary(57)),
              u"Update tblHRLoan Set Code = Null where ID=57"_s);
}

TEST(LoanSaveSql, TheCountIsWrittenOnlyAsAWholeNumber) {
    const std::pair<QString, std::optional<QString>> cases[] = {
        {u""_s, u"Null"_s},
        {u"  "_s, u"Null"_s},
        {u"12"_s, u"12"_s},
        {u" 012 "_s, u"12"_s},
        {u"۱۲"_s, u"12"_s},
        {u"١٢"_s, u"12"_s},
        {u"2147483647"_s, u"2147483647"_s},
        {u"2147483648"_s, std::nullopt},
        {u"12.5"_s, std::nullopt},
        {u"12.0"_s, std::nullopt},
        {u"1e3"_s, std::nullopt},
        {u"-3"_s, std::nullopt},
        {u"1 2"_s, std::nullopt},
        {u"12abc"_s, std::nullopt},
        {u"3; drop table tblHRLoan"_s, std::nullopt},
    };
    for (const auto& [typed, written] : cases)
        EXPECT_EQ(loan_save::CountSql(typed), written) << typed.toStdString();
    LoanRecord loan = sampleLoan();
    loan.payBackNumber = u"12.5"_s;
    EXPECT_THROW(loan_save::Writes(kServer, loan, 57), KavError);
}

namespace {

class SaveTest : public EditorTest {
protected:
    // Everything the saves may write, as text.
    QString snapshot() {
        QString text;
        for (const QString& sql : {u"select * from tblHRLoan order by ID"_s,
                                   u"select * from tblHRLoanDetail order by ID"_s,
                                   u"select * from sqlite_sequence order by name"_s})
            for (const Row& r : t.db.rows(sql)) {
                for (auto it = r.begin(); it != r.end(); ++it)
                    text +=
                        it.key() + u"="_s + (it->isNull() ? u"<null>"_s : it->toString()) + u";"_s;
                text += u"\n"_s;
            }
        return text;
    }
    int loans() { return t.db.scalar(u"select count(*) from tblHRLoan"_s).toInt(); }
    QVariant code(int loan) {
        return t.db.scalar(u"select Code from tblHRLoan where ID=%1"_s.arg(loan));
    }
    void edit(qint16 loan) {
        editor().ViewPRSLoansInfo(loan);
        editor().cmdEdit_Click();
        ASSERT_EQ(session().LoanFormMode, ModeEdit);
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

}  // namespace

TEST_F(SaveTest, ATemporarySaveStoresTheLoanAsTypedAndAFinalOneNeedsMembers) {
    auto& w = editor();
    fillNewLoan();
    w.cmdFinSave_Click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text, u"هيچ کارمندي مشخص نشده است."_s);
    EXPECT_EQ(loans(), 5);
    EXPECT_EQ(session().LoanFormMode, ModeNew);

    session().LoanEditStarted = 1;
    w.lblMessage->setText(u"x"_s);
    w.cmdRegSave_Click();
    EXPECT_EQ(t.messages->shown.size(), 1);
    ASSERT_EQ(loans(), 6);
    EXPECT_EQ(w.txtID->text(), u"6"_s);
    EXPECT_EQ(session().LoanFormMode, ModeView);
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_TRUE(w.lblMessage->text().isEmpty());
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان (مشاهده)"_s);
    const Row stored = t.db.rows(u"select * from tblHRLoan where ID=6"_s).value(0);
    EXPECT_EQ(stored[u"typeid"_s].toInt(), 1);
    EXPECT_TRUE(stored[u"code"_s].isNull());
    EXPECT_EQ(stored[u"paymentdate"_s].toString(), u"2024-08-10"_s);
    EXPECT_EQ(stored[u"farsipaymentdate"_s].toString(), u"1403/05/20"_s);
    EXPECT_EQ(stored[u"begindate"_s].toString(), u"2024-08-21"_s);
    EXPECT_EQ(stored[u"farsibegindate"_s].toString(), u"1403/05/31"_s);
    EXPECT_EQ(stored[u"enddate"_s].toString(), u"2024-12-20"_s);
    EXPECT_EQ(stored[u"farsienddate"_s].toString(), u"1403/09/30"_s);
    EXPECT_EQ(stored[u"loanvalue"_s].toLongLong(), 2000);
    EXPECT_EQ(stored[u"originalloanvalue"_s].toLongLong(), 2500);
    EXPECT_EQ(stored[u"monthlyvalue"_s].toLongLong(), 0);
    EXPECT_EQ(stored[u"paybacknumber"_s].toInt(), 4);
    EXPECT_EQ(stored[u"useremainedvalueinfirstmonth"_s].toInt(), 1);
    EXPECT_EQ(stored[u"notes"_s].toString(), u" قرض 'ويژه' O'Brien "_s);
    EXPECT_EQ(w.txtNotes->text(), u" قرض 'ويژه' O'Brien "_s);  // read back
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblHRLoanDetail where LoanID=6"_s).toInt(), 0);
}

TEST_F(SaveTest, ACountThatIsNotAWholeNumberIsRefusedBeforeAnythingIsWritten) {
    auto& w = editor();
    fillNewLoan();
    w.txtPayBackNumber->setText(u"12.5"_s);
    const QString before = snapshot();
    w.cmdRegSave_Click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text, u"تعداد اقساط «12.5» عدد صحيح نيست؛ وام ثبت نشد."_s);
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(session().LoanFormMode, ModeNew);
}

TEST_F(SaveTest, FinalCodesAreOneMoreThanTheGreatestOfAnyType) {
    auto& w = editor();
    t.db.exec(u"update tblHRLoan set Code = NULL"_s);
    edit(SeparateLoan);
    AddMembers({2});
    w.cmdFinSave->setEnabled(true);
    w.cmdFinSave->click();
    EXPECT_EQ(code(SeparateLoan).toInt(), 1);
    EXPECT_EQ(w.txtCode->text(), u"1"_s);
    EXPECT_FALSE(w.cmdEdit->isEnabled());
    EXPECT_TRUE(w.cmdBacktoTemp->isEnabled());

    t.db.exec(u"update tblHRLoan set Code = 41 where ID=2"_s);  // another type
    edit(TemporaryLoan);
    w.cmdFinSave_Click();
    EXPECT_EQ(code(TemporaryLoan).toInt(), 42);

    // A temporary save clears the code of a loan that had one.
    w.ShowFormToEdit();
    w.cmdRegSave_Click();
    EXPECT_TRUE(code(TemporaryLoan).isNull());
    EXPECT_TRUE(w.txtCode->text().isEmpty());
    EXPECT_TRUE(w.cmdEdit->isEnabled());
    EXPECT_EQ(code(FinalLoan).toInt(), 41);  // other loans keep theirs
}

TEST_F(SaveTest, BackToTemporaryThenFinalGivesANewCode) {
    auto& w = editor();
    t.db.exec(u"update tblHRLoan set Code = 9 where ID=4"_s);
    w.ViewPRSLoansInfo(FinalLoan);  // code 7, not the greatest
    for (const QVariant& answer : {QVariant(0), QVariant(5)}) {
        t.messages->answers = {answer};
        w.cmdBacktoTemp->click();
        EXPECT_EQ(code(FinalLoan).toInt(), 7) << answer.toInt();
        EXPECT_EQ(w.txtCode->text(), u"7"_s);
    }
    EXPECT_EQ(t.messages->last().title, u"پرسش"_s);
    EXPECT_EQ(t.messages->last().text, u"آيا قصد بازگشت به حالت موقت داريد؟"_s);
    t.messages->answers = {1};
    w.cmdBacktoTemp->click();
    EXPECT_TRUE(code(FinalLoan).isNull());
    EXPECT_TRUE(w.txtCode->text().isEmpty());
    EXPECT_EQ(session().LoanFormMode, ModeView);
    EXPECT_TRUE(w.cmdEdit->isEnabled());
    EXPECT_TRUE(w.cmdDelete->isEnabled());
    EXPECT_FALSE(w.cmdBacktoTemp->isEnabled());

    w.cmdEdit->click();
    w.cmdFinSave_Click();
    EXPECT_EQ(code(FinalLoan).toInt(), 10);
    EXPECT_EQ(w.txtCode->text(), u"10"_s);
}

TEST_F(SaveTest, PayslipRowsRefuseDeleteAndBackToTemporaryWithTheirCount) {
    auto& w = editor();
    w.ViewPRSLoansInfo(PaidLoan);
    w.cmdDelete->click();
    EXPECT_EQ(t.messages->last().title, u"اشکال"_s);
    EXPECT_EQ(t.messages->last().text,
              u"به دليل محاسبه در فيش هاي حقوقي (2 عدد)، امکان حذف وجود ندارد!"_s);
    EXPECT_EQ(loans(), 5);

    t.db.exec({u"update tblHRLoan set Code = 3 where ID=5"_s,
               u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID) values (5, 3)"_s});
    w.ViewPRSLoansInfo(PaidLoan);
    w.cmdBacktoTemp->click();
    EXPECT_EQ(t.messages->last().title, u"اشکال"_s);
    EXPECT_EQ(t.messages->last().text,
              u"به دليل محاسبه در فيش هاي حقوقي (3 عدد)، امکان بازگشت وجود ندارد!"_s);
    EXPECT_EQ(code(PaidLoan).toInt(), 3);
}

TEST_F(SaveTest, DeleteAsksThenRemovesTheLoanWithItsMembers) {
    auto& w = editor();
    const QString before = snapshot();
    for (const QVariant& answer : {QVariant(0), QVariant(5)}) {
        w.ViewPRSLoansInfo(TemporaryLoan);
        t.messages->answers = {answer};
        w.mnuDelete->trigger();
        EXPECT_EQ(snapshot(), before) << answer.toInt();
        EXPECT_EQ(session().LoanFormMode, ModeView);
    }
    EXPECT_EQ(t.messages->last().title, u"حذف  وام کارمندان"_s);
    EXPECT_EQ(t.messages->last().text, u"آيا مطمئن هستيد؟"_s);
    EXPECT_EQ(w.lblMessage->text(), u"حذف وام کارمندان"_s);

    t.messages->answers = {1};
    w.mnuDelete->trigger();
    EXPECT_EQ(loans(), 4);
    EXPECT_TRUE(t.db.rows(u"select * from tblHRLoanDetail where LoanID=1"_s).isEmpty());
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblHRLoanDetail"_s).toInt(), 2);
    EXPECT_EQ(session().LoanFormMode, ModeEmpty);
    EXPECT_EQ(w.windowTitle(), u"وام کارمندان"_s);
    EXPECT_EQ(w.lblMessage->text(), u" "_s);
    EXPECT_TRUE(w.txtID->text().isEmpty());
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
    EXPECT_EQ(w.FlexEmployee->Rows(), 1);

    // Without a loan id nothing is deleted, but the window empties all the same.
    w.ViewPRSLoansInfo(SeparateLoan);
    w.txtID->clear();
    t.messages->answers = {1};
    w.cmdDelete_Click();
    EXPECT_EQ(loans(), 4);
    EXPECT_EQ(session().LoanFormMode, ModeEmpty);
    EXPECT_TRUE(w.txtLoanValue->Text().isEmpty());
}

TEST_F(SaveTest, OverlapQuestionForSameTypeMembersInTouchingOrOverlappingPeriods) {
    auto& w = editor();
    t.db.exec({
        u"insert into tblHRLoan (ID, TypeID, BeginDate, EndDate, LoanValue) values "
        "(10, 1, '2024-01-01', '2024-04-19', 100), "  // ends the day loan 4 begins
        "(11, 2, '2024-04-19', '2024-06-20', 100), "  // another type
        "(12, 1, NULL, NULL, 100)"_s,                 // no period
        u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (10, 2), (11, 1), (12, 4)"_s,
    });
    // Loan 1 holds 1 and 4 itself: left out in edit mode, so nobody overlaps.
    edit(TemporaryLoan);
    w.cmdFinSave_Click();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(code(TemporaryLoan).toInt(), 8);

    // 6 holds no loan, 2 one of the same type ending the day this one begins: no stops the
    // save and marks 2.
    t.db.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values (6, '6', 'x', 'y')"_s);
    edit(SeparateLoan);  // 2024-04-19 .. 2024-06-20
    AddMembers({6, 2});
    const QString before = snapshot();
    t.messages->answers = {0};
    w.cmdFinSave_Click();
    ASSERT_EQ(t.messages->shown.size(), 2);
    EXPECT_EQ(t.messages->shown[0].title, u"هشدار"_s);
    EXPECT_EQ(
        t.messages->shown[0].text,
        u"تعداد «1» کارمند قبلا در صندوقي با زمان متداخل وجود دارد، آيا از ثبت مطمئن هستيد؟"_s);
    EXPECT_EQ(t.messages->shown[1].title, u"اطلاع"_s);
    EXPECT_EQ(t.messages->shown[1].text, u"کاربر تکراري در جدول مشخص شده است."_s);
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(session().LoanFormMode, ModeEdit);
    EXPECT_EQ(w.FlexEmployee->Row(), 2);
    EXPECT_EQ(w.FlexEmployee->Col(), 1);
    EXPECT_EQ(w.FlexEmployee->RowSel(), 2);
    EXPECT_EQ(w.FlexEmployee->ColSel(), 9);

    // With 4 (loan 1) and 3 (loan 5) three overlap; no answer lets the save go on.
    AddMembers({4, 3});
    t.messages->shown.clear();
    t.messages->answers = {5};
    w.cmdFinSave_Click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(
        t.messages->shown[0].text,
        u"تعداد «3» کارمند قبلا در صندوقي با زمان متداخل وجود دارد، آيا از ثبت مطمئن هستيد؟"_s);
    EXPECT_EQ(code(SeparateLoan).toInt(), 9);

    // In new mode nothing is left out; yes goes on.
    fillNewLoan();
    w.datEndDate->setFarsidate(u"1404/12/29"_s);
    AddMembers({1});
    t.messages->shown.clear();
    t.messages->answers = {1};
    w.cmdRegSave_Click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(
        t.messages->shown[0].text,
        u"تعداد «1» کارمند قبلا در صندوقي با زمان متداخل وجود دارد، آيا از ثبت مطمئن هستيد؟"_s);
    EXPECT_EQ(loans(), 9);
}

TEST_F(SaveTest, AFailureHalfWayWritesNothingAndSavingAgainIsSafe) {
    auto& w = editor();
    const QString trigger =
        u"create trigger boom before insert on tblHRLoanDetail when NEW.EmployeeID = %1 "
        "begin select raise(abort, 'member insert refused'); end"_s;
    edit(TemporaryLoan);
    AddMembers({3});  // members 1, 4, 3: the insert of 4 fails after 1 went in
    t.db.exec(trigger.arg(4));
    w.txtNotes->setText(u"changed"_s);
    const QString before = snapshot();
    w.cmdFinSave->click();
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_TRUE(t.messages->last().text.contains(u"member insert refused"_s));
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(session().LoanFormMode, ModeEdit);
    EXPECT_EQ(w.txtNotes->text(), u"changed"_s);
    EXPECT_EQ(w.FlexEmployee->Rows(), 4);
    EXPECT_TRUE(w.txtCode->text().isEmpty());
    t.db.exec(u"drop trigger boom"_s);
    w.cmdFinSave->click();
    EXPECT_EQ(code(TemporaryLoan).toInt(), 8);
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblHRLoanDetail where LoanID=1"_s).toInt(), 3);

    // New mode: the header insert is undone too, and the second save makes one header.
    fillNewLoan();
    AddMembers({2});
    t.db.exec(trigger.arg(2));
    const QString beforeNew = snapshot();
    w.cmdRegSave->click();
    EXPECT_EQ(snapshot(), beforeNew);
    EXPECT_EQ(session().LoanFormMode, ModeNew);
    EXPECT_EQ(w.txtID->text(), u"1"_s);  // still the loan shown before New
    t.db.exec(u"drop trigger boom"_s);
    w.cmdRegSave->click();
    EXPECT_EQ(loans(), 6);
    EXPECT_EQ(w.txtID->text(), u"6"_s);
    EXPECT_EQ(t.db.scalar(u"select EmployeeID from tblHRLoanDetail where LoanID=6"_s).toInt(), 2);
}

TEST(LoanSaveConcurrency, TwoClientsSavingAtOnceGetDistinctGapFreeCodesAndTheirOwnMembers) {
    TestDatabase db;
    db.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values "
        "(1, '1', 'a', 'b'), (2, '2', 'c', 'd')"_s);
    constexpr int kSaves = 50;
    std::atomic<int> failures = 0;
    auto client = [&](qint32 employee) {
        Module module;  // its own connection, opened on this thread
        module.session.SessionConnectionString = db.connectionString();
        module.OpenSessionConnection();
        for (int i = 0; i < kSaves; ++i) {
            LoanRecord loan;
            loan.isFinal = true;
            loan.typeId = employee;
            loan.loanValue = QString::number(i + 1);
            loan.notes = QString::number(employee);
            const QString id = QString::number(employee);
            loan.members = {{id, {u"null"_s, u"null"_s, u"null"_s}}};
            try {
                loan_save::WriteLoan(module.DtEn().cnt(), loan, std::nullopt);
            } catch (const KavError& e) {
                ADD_FAILURE() << e.message().toStdString();
                ++failures;
            }
        }
    };
    std::thread a(client, 1), b(client, 2);
    a.join();
    b.join();
    ASSERT_EQ(failures, 0);
    QList<int> codes;
    for (const Row& r : db.rows(u"select Code from tblHRLoan order by Code"_s))
        codes << r[u"code"_s].toInt();
    QList<int> expected;
    for (int c = 1; c <= 2 * kSaves; ++c) expected << c;
    EXPECT_EQ(codes, expected);
    // Each loan has exactly one member row: the member of the client that saved it.
    EXPECT_EQ(db.scalar(u"select count(*) from tblHRLoan l where (select count(*) from "
                        "tblHRLoanDetail d where d.LoanID = l.ID and d.EmployeeID = "
                        "cast(l.Notes as integer)) <> 1"_s)
                  .toInt(),
              0);
    EXPECT_EQ(db.scalar(u"select count(*) from tblHRLoanDetail"_s).toInt(), 2 * kSaves);
}
