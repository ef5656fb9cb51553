#include "AdjustmentFixture.h"

#include "adjustments/AdjustmentOpener.h"

using namespace Qt::StringLiterals;

namespace kav::test {

void SeedAdjustments(const TestDatabase& db) {
    db.exec({
        u"insert into tblHRLoanType (ID, Name, MaxValue) values (1, 'ضروري', NULL)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        "(1, '1001', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 1), "
        "(3, '1003', 'حسن', 'کريمي', 1)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, FarsiPaymentDate, BeginDate, FarsiBeginDate, "
        "EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, PayBackNumber, "
        "UseRemainedValueInFirstMonth) values "
        "(1, 4, 1, '1402/01/10', '2023-04-20', '1402/01/31', '2024-03-19', '1402/12/29', "
        "60000000, 60000000, 5000000, 12, 0),"
        "(2, NULL, 1, '1402/06/01', '2023-09-22', '1402/06/31', '2024-03-19', '1402/12/29', "
        "9000000, 9000000, NULL, NULL, NULL)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (1, 1), (1, 2), (2, 2)"_s,
        u"insert into tblHRLoanException (ID, LoanID, EmployeeID, BeginDate, FarsiBeginDate, "
        "EndDate, FarsiEndDate, MonthlyDebit) values "
        "(1, 1, 1, '2023-05-22', '1402/03/01', '2023-07-22', '1402/04/31', 2000000),"
        "(2, 2, 2, '2023-09-23', '1402/07/01', '1900-01-01', '', 500000)"_s,
        u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) values "
        "(1, 1, '1402/01', 5000000), (1, 1, '1402/02', 5000000)"_s,
    });
}

void AdjustmentTest::SetUp() {
    SeedAdjustments(t.db);
    session().SessionTitle = u"وام کارمندان"_s;
    t.module.ProvidePort<LoanEditorPort>([this](Module&) -> LoanEditorPort& { return editor; });
    t.module.ProvidePort<AdjustmentPort>(
        [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
}

void AdjustmentTest::enterNew(const QString& from, const QString& to, const QString& perMonth,
                              qint32 employee) {
    auto& w = window();
    w.cmdNew_Click();
    w.gmpEmployee->setValue(employee);
    w.gdcBalancePF->setFarsidate(from);
    w.gdcBalancePT->setFarsidate(to);
    w.TxtPerMonth->setText(perMonth);
    w.cmdSave->click();  // through the handler boundary
}

QString AdjustmentTest::stored(qint32 id) const {
    return t.db
        .scalar(
            u"select LoanID||'|'||EmployeeID||'|'||BeginDate||'|'||FarsiBeginDate||'|'||"
            "EndDate||'|'||FarsiEndDate||'|'||MonthlyDebit from tblHRLoanException "
            "where ID=%1"_s.arg(id))
        .toString();
}

void AdjustmentTest::expectLast(const QString& title, const QString& text) {
    ASSERT_FALSE(t.messages->shown.isEmpty());
    EXPECT_EQ(t.messages->last().title, title);
    EXPECT_EQ(t.messages->last().text, text);
    t.messages->shown.clear();
}

}  // namespace kav::test
