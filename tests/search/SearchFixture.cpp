#include "SearchFixture.h"

#include "controls/FlexGrid.h"

using namespace Qt::StringLiterals;

namespace kav::test {

void SeedSearchLoans(const TestDatabase& db) {
    db.exec({
        u"insert into tblHRLoanType (ID, Name, MaxValue) values (1, 'قرض الحسنه', NULL), "
        "(2, 'ضروري', NULL), (3, 'مسکن', NULL)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        "(1, '1001', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 1), "
        "(3, '1003', 'حسن', 'کريمي', 1), (4, '1004', 'زهرا', 'موسوي', 1), "
        "(5, '1005', 'رضا', 'نوري', 1)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
        "FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, "
        "PayBackNumber, UseRemainedValueInFirstMonth, Notes) values "
        "(1, NULL, 1, '2023-04-04', '1402/01/15', '2023-05-21', '1402/02/31', '2024-03-19', "
        "'1402/12/29', 12500000, 12500000, 1041666, 12, 1, 'خريد خانه'),"
        "(2, 7, 2, '2024-07-22', '1403/05/01', '2024-09-21', '1403/06/31', '2025-08-22', "
        "'1404/05/31', 900000, 900000, NULL, NULL, 0, 'وام ''ويژه'' مدير'),"
        "(3, 8, 1, '2022-12-31', '1401/10/10', '2023-01-20', '1401/10/30', '2023-12-21', "
        "'1402/09/30', 50000000, 50000000, 5000000, 10, 0, NULL),"
        "(40000, NULL, 3, '2024-03-20', '1403/01/01', '2024-04-19', '1403/01/31', '2025-03-20', "
        "'1403/12/30', 3000, 3000, 250, 12, 0, NULL)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID, SupporterEmployeeID1, "
        "SupporterEmployeeID2, SupporterEmployeeID3) values "
        "(1, 1, 2, 3, NULL), (1, 4, NULL, NULL, NULL), (2, 2, 1, NULL, NULL), (3, 3, NULL, NULL, 5)"_s,
    });
}

void SearchTest::SetUp() {
    SeedSearchLoans(t.db);
    t.module.session.SessionSearchTitle = u"وام کارمندان"_s;
    t.module.ProvidePort<LoanEditorPort>(
        [](Module& m) -> LoanEditorPort& { return m.Window<FakeEditor>(); });
}

QList<QStringList> SearchTest::gridRows() {
    const controls::FlexGrid& g = *form().Flexsearchresult;
    QList<QStringList> rows;
    for (int r = 1; r < g.Rows(); ++r) {
        QStringList cells;
        for (int c = 0; c < g.Cols(); ++c) cells << g.TextMatrix(r, c);
        rows << cells;
    }
    return rows;
}

QStringList SearchTest::Shown() {
    QStringList out;
    for (const ShownMessage& m : t.messages->shown) out << m.title + u": "_s + m.text;
    t.messages->shown.clear();
    return out;
}

}  // namespace kav::test
