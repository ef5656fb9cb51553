#include "EditorFixture.h"

#include <QPushButton>

#include "controls/FlexGrid.h"
#include "controls/VarekSelector.h"

using namespace Qt::StringLiterals;

namespace kav::test {

void SeedLoans(const TestDatabase& db) {
    db.exec({
        u"insert into tblHRLoanType (ID, Name, MaxValue) values (1, 'قرض الحسنه', 50000000)"_s,
        u"insert into tblHRLoanType (ID, Name, MaxValue) values (2, 'ضروري', NULL)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        "(1, '1001', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 1), "
        "(3, '1003', 'حسن', 'کريمي', 1), (4, '1004', 'زهرا', 'موسوي', 1)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
        "FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, "
        "PayBackNumber, UseRemainedValueInFirstMonth, Notes) values "
        "(1, NULL, 1, '2024-03-25', '1403/01/06', '2024-04-19', '1403/01/31', '2025-03-20', "
        "'1403/12/30', 1000000, 1200000, 83333, 12, 1, 'وام مسکن'),"
        "(2, 7, 2, '2024-03-25', '1403/01/06', '2024-04-19', '1403/01/31', '2024-06-20', "
        "'1403/03/31', 900, 900, 300, 3, 0, NULL),"
        "(3, NULL, 2, NULL, NULL, NULL, '1403/01/31', NULL, '1403/03/31', 500, NULL, NULL, "
        "NULL, NULL, NULL),"
        "(4, NULL, 1, '2024-03-25', '1403/01/06', '2024-04-19', '1403/01/31', '2024-06-20', "
        "'1403/03/31', 1000, 1000, 300, 3, 2, NULL),"
        "(5, NULL, 1, '2024-03-25', '1403/01/06', '2024-04-19', '1403/01/31', '2024-06-20', "
        "'1403/03/31', 1000, 1000, 300, 3, 2, NULL)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID, SupporterEmployeeID1, "
        "SupporterEmployeeID2, SupporterEmployeeID3) values "
        "(1, 1, 2, 3, NULL), (1, 4, NULL, NULL, NULL), (2, 2, 1, NULL, NULL), (5, 3, NULL, NULL, NULL)"_s,
        u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) values "
        "(5, 3, '1403/02', 300), (5, 3, '1403/03', 300)"_s,
        u"insert into tblVarekSystemParameters (ID, Value) values (3450, '1403/05/20')"_s,
    });
}

void EditorTest::SetUp() {
    SeedLoans(t.db);
    t.grant(1, {111801, 111802, 111803});
    session().SessionUserID = 1;
    session().SessionTitle = u"وام کارمندان"_s;
}

void Choose(controls::VarekSelector& selector, qint32 employeeId) {
    selector.setValue(employeeId);
    emit selector.Changed();
}

PickerSteps Pick(qint32 employee, std::array<qint32, 3> guarantors) {
    return [=](FormHREmployee& p) {
        Choose(*p.sltEmployeeID, employee);
        controls::VarekSelector* boxes[] = {p.sltSupportEmployeeID1, p.sltSupportEmployeeID2,
                                            p.sltSupportEmployeeID3};
        for (std::size_t i = 0; i < 3; ++i)
            if (guarantors[i] != -1) Choose(*boxes[i], guarantors[i]);
        p.cmdOK->click();
    };
}

void EditorTest::OnPicker(PickerSteps steps) {
    t.module.SetModalRunner([this, steps](QDialog& d) {
        ++t.modalShown;
        if (auto* picker = qobject_cast<FormHREmployee*>(&d)) steps(*picker);
        return 0;
    });
}

QStringList EditorTest::Shown() {
    QStringList out;
    for (const ShownMessage& m : t.messages->shown)
        out << (m.type == 1 ? u"? "_s : QString()) + m.title + u": "_s + m.text;
    t.messages->shown.clear();
    return out;
}

QString EditorTest::Snapshot() {
    QString text;
    for (const QString& sql :
         {u"select * from tblHRLoan order by ID"_s, u"select * from tblHRLoanDetail order by ID"_s,
          u"select * from sqlite_sequence order by name"_s})
        for (const Row& r : t.db.rows(sql)) {
            for (auto it = r.begin(); it != r.end(); ++it)
                text += it.key() + u"="_s + (it->isNull() ? u"<null>"_s : it->toString()) + u";"_s;
            text += u"\n"_s;
        }
    return text;
}

QString EditorTest::MemberRow(int row) {
    QStringList cells;
    for (int c = 0; c < editor().FlexEmployee->Cols(); ++c)
        cells << editor().FlexEmployee->TextMatrix(row, c);
    return cells.join(u'|');
}

QStringList EditorTest::MemberColumn(int col) {
    QStringList cells;
    for (int r = 1; r < editor().FlexEmployee->Rows(); ++r)
        cells << editor().FlexEmployee->TextMatrix(r, col);
    return cells;
}

}  // namespace kav::test
