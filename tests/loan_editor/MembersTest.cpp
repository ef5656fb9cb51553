// The loan's members: the picker, adding members with guarantors, the employees with an
// ordinance in the period, removing a saved member, and sorting the member grid.

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "EditorFixture.h"
#include "controls/FlexGrid.h"
#include "controls/QtPrinters.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

class MembersTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        t.db.exec({
            // 5 has left (work status 3); 6 and 7 have five- and three-digit codes.
            u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
            "(5, '20345', 'ناصر', 'کاظمي', 3), (6, '12345', 'سارا', 'نوري', 1), "
            "(7, '203', 'رضا', 'اميني', 1)"_s,
            // Against the period 2024-04-19 .. 2024-06-20 of SeparateLoan: 1 before it, 2
            // inside it twice, 3 from its last day, 7 up to its first day, 6 long before.
            u"insert into tblHROrdinance (EmployeeID, BeginDate, EndDate) values "
            "(1, '2023-01-01', '2023-12-31'), (2, '2024-03-20', '2025-03-20'), "
            "(2, '2024-05-01', '2024-05-31'), (3, '2024-06-20', '2024-12-31'), "
            "(7, '2024-01-01', '2024-04-19'), (6, '2020-01-01', '2020-12-31')"_s,
        });
    }

    QStringList row(int r) {
        QStringList cells;
        for (int c = 0; c < 10; ++c) cells << editor().FlexEmployee->TextMatrix(r, c);
        return cells;
    }
    QStringList column(int c) {
        QStringList cells;
        for (int r = 1; r < editor().FlexEmployee->Rows(); ++r)
            cells << editor().FlexEmployee->TextMatrix(r, c);
        return cells;
    }
    void edit(qint16 loan) {
        editor().ViewPRSLoansInfo(loan);
        editor().cmdEdit_Click();
        ASSERT_EQ(session().LoanFormMode, ModeEdit);
    }
};

QList<qint32> ids(const controls::VarekSelector& s) {
    QList<qint32> list;
    for (const auto& e : s.employees()) list << e.id;
    std::sort(list.begin(), list.end());
    return list;
}

}  // namespace

TEST_F(MembersTest, PickerOffersOnlyActiveBorrowersAndEveryGuarantor) {
    auto& p = t.module.Window<FormHREmployee>();
    EXPECT_EQ(p.windowTitle(), u"تعيين کارمند"_s);
    QStringList labels;
    for (const QLabel* l : p.findChildren<QLabel*>()) labels << l->text();
    EXPECT_EQ(labels, (QStringList{u"كارمند:"_s, u"ضامن 1:"_s, u"ضامن 2:"_s, u"ضامن 3:"_s}));
    EXPECT_EQ(p.cmdOK->text(), u"تاييد"_s);
    EXPECT_EQ(p.cmdExit->text(), u"خروج"_s);

    EXPECT_EQ(p.sltEmployeeID->Filter1(),
              u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s);
    EXPECT_EQ(p.sltEmployeeID->Filter2(),
              u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s);
    EXPECT_EQ(ids(*p.sltEmployeeID), (QList<qint32>{1, 2, 3, 4, 6, 7}));
    for (auto* g : {p.sltSupportEmployeeID1, p.sltSupportEmployeeID2, p.sltSupportEmployeeID3}) {
        EXPECT_TRUE(g->Filter1().isEmpty());
        EXPECT_TRUE(g->Filter2().isEmpty());
        EXPECT_EQ(ids(*g), (QList<qint32>{1, 2, 3, 4, 5, 6, 7}));
    }
    for (auto* s : p.findChildren<controls::VarekSelector*>()) {
        EXPECT_EQ(s->MajorView(), u"vwEmployeeMajor"_s);
        EXPECT_EQ(s->MinorView(), u"vwEmployeeMinor"_s);
    }
}

TEST_F(MembersTest, PickerRefusesDuplicatesAndNobodyAndExitGivesNothing) {
    edit(TemporaryLoan);  // members 1 and 4
    auto& w = editor();
    OnPicker([&](FormHREmployee& p) {
        EXPECT_EQ(p.Existing(), u"(1)(4)"_s);
        Choose(*p.sltEmployeeID, 4);  // warned on the change
        p.cmdOK->click();             // and again on OK
        EXPECT_FALSE(p.IsUnloaded());
        p.sltEmployeeID->Clear();
        p.cmdOK->click();
        EXPECT_FALSE(p.IsUnloaded());
        Choose(*p.sltEmployeeID, 2);
        Choose(*p.sltSupportEmployeeID1, 3);
        p.cmdExit->click();
        EXPECT_TRUE(p.IsUnloaded());
    });
    w.cmdAddEmp->click();
    ASSERT_EQ(t.messages->shown.size(), 3);
    EXPECT_EQ(t.messages->shown[0].title, u"هشدار"_s);
    EXPECT_EQ(t.messages->shown[0].text, u"کارمند موردنظر تکراري است."_s);
    EXPECT_EQ(t.messages->shown[1].title, u"هشدار"_s);
    EXPECT_EQ(t.messages->shown[1].text, u"کارمند موردنظر تکراري است."_s);
    EXPECT_EQ(t.messages->shown[2].title, u"خطا"_s);
    EXPECT_EQ(t.messages->shown[2].text, u"کارمند مشخص نشده است!"_s);
    EXPECT_EQ(w.FlexEmployee->Rows(), 3);
    EXPECT_FALSE(t.module.HasWindow<FormHREmployee>());  // unloaded: the next use starts afresh

    qint32 g1 = 9, g2 = 9, g3 = 9;
    // Closed without a button: nothing chosen.
    OnPicker([](FormHREmployee& p) { Choose(*p.sltEmployeeID, 2); });
    EXPECT_EQ(FormHREmployee::getNewEmployee(t.module, u"(1)"_s, g1, g2, g3), -1);
    EXPECT_EQ((std::array<qint32, 3>{g1, g2, g3}), (std::array<qint32, 3>{-1, -1, -1}));
    // (1) is not part of (12): employee 1 joins a loan holding 12 and 40.
    OnPicker(Pick(1, {-1, 3, -1}));
    EXPECT_EQ(FormHREmployee::getNewEmployee(t.module, u"(12)(40)"_s, g1, g2, g3), 1);
    EXPECT_EQ((std::array<qint32, 3>{g1, g2, g3}), (std::array<qint32, 3>{-1, 3, -1}));
    EXPECT_EQ(t.messages->shown.size(), 3);
}

TEST_F(MembersTest, AddedMembersCarryGuarantorIdsOrNullIntoTheSave) {
    edit(SeparateLoan);
    auto& w = editor();
    const std::pair<qint32, std::array<qint32, 3>> picks[] = {
        {2, {-1, -1, -1}}, {3, {-1, 1, -1}}, {6, {1, 4, -1}}, {7, {1, 2, 3}}};
    for (const auto& [employee, guarantors] : picks) {
        OnPicker(Pick(employee, guarantors));
        w.cmdAddEmp->click();
    }
    ASSERT_EQ(w.FlexEmployee->Rows(), 5);
    EXPECT_EQ(row(1), (QStringList{u"1"_s,
                                   u"2"_s,
                                   u"1002"_s,
                                   u"مريم احمدي"_s,
                                   {},
                                   {},
                                   {},
                                   u"null"_s,
                                   u"null"_s,
                                   u"null"_s}));
    EXPECT_EQ(row(2), (QStringList{u"2"_s,
                                   u"3"_s,
                                   u"1003"_s,
                                   u"حسن کريمي"_s,
                                   {},
                                   u"علي رضايي"_s,
                                   {},
                                   u"null"_s,
                                   u"1"_s,
                                   u"null"_s}));
    EXPECT_EQ(row(3), (QStringList{u"3"_s,
                                   u"6"_s,
                                   u"12345"_s,
                                   u"سارا نوري"_s,
                                   u"علي رضايي"_s,
                                   u"زهرا موسوي"_s,
                                   {},
                                   u"1"_s,
                                   u"4"_s,
                                   u"null"_s}));
    EXPECT_EQ(row(4), (QStringList{u"4"_s, u"7"_s, u"203"_s, u"رضا اميني"_s, u"علي رضايي"_s,
                                   u"مريم احمدي"_s, u"حسن کريمي"_s, u"1"_s, u"2"_s, u"3"_s}));

    w.cmdRegSave_Click();
    ASSERT_EQ(session().LoanFormMode, ModeView);
    const auto stored = t.db.rows(
        u"select EmployeeID, SupporterEmployeeID1 as g1, SupporterEmployeeID2 as g2, "
        "SupporterEmployeeID3 as g3 from tblHRLoanDetail where LoanID=4 order by ID"_s);
    QStringList text;
    for (const Row& r : stored)
        text << u"%1:%2,%3,%4"_s.arg(r[u"employeeid"_s].toString(),
                                     r[u"g1"_s].isNull() ? u"-"_s : r[u"g1"_s].toString(),
                                     r[u"g2"_s].isNull() ? u"-"_s : r[u"g2"_s].toString(),
                                     r[u"g3"_s].isNull() ? u"-"_s : r[u"g3"_s].toString());
    EXPECT_EQ(text, (QStringList{u"2:-,-,-"_s, u"3:-,1,-"_s, u"6:1,4,-"_s, u"7:1,2,3"_s}));
    // Reloaded from the database: the same ids, names with two blanks.
    EXPECT_EQ(row(2), (QStringList{u"2"_s,
                                   u"3"_s,
                                   u"1003"_s,
                                   u"حسن  کريمي"_s,
                                   {},
                                   u"علي رضايي"_s,
                                   {},
                                   u"null"_s,
                                   u"1"_s,
                                   u"null"_s}));
}

TEST_F(MembersTest, AnEmployeeGoneMeanwhileAddsNothingAndSaysNothing) {
    edit(SeparateLoan);
    OnPicker([&](FormHREmployee& p) {
        Pick(2)(p);
        t.db.exec(u"delete from tblEmployee where ID=2"_s);
    });
    editor().cmdAddEmp->click();
    EXPECT_EQ(editor().FlexEmployee->Rows(), 1);
    EXPECT_TRUE(t.messages->shown.isEmpty());
}

TEST_F(MembersTest, OrdinanceEmployeesOfThePeriodWhoAreNotYetMembers) {
    auto& w = editor();
    auto sorted = [](QStringList l) {
        l.sort();
        return l;
    };
    edit(SeparateLoan);  // 2024-04-19 .. 2024-06-20, no members
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(sorted(column(1)), (QStringList{u"2"_s, u"3"_s, u"7"_s}));
    EXPECT_EQ(column(0), (QStringList{u"1"_s, u"2"_s, u"3"_s}));
    for (int r = 1; r < w.FlexEmployee->Rows(); ++r) {
        const QStringList cells = row(r);
        EXPECT_EQ(cells.mid(4), (QStringList{{}, {}, {}, u"null"_s, u"null"_s, u"null"_s}));
        if (cells[1] == u"3") {
            EXPECT_EQ(cells.mid(2, 2), (QStringList{u"1003"_s, u"حسن کريمي"_s}));
        }
    }

    // Without dates the period runs from 1900-01-01 to 2050-01-01.
    edit(SeparateLoan);
    w.datBeginDate->Clear();
    w.datEndDate->Clear();
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(sorted(column(1)), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"6"_s, u"7"_s}));

    // Members already present are left out; a second click adds nobody.
    edit(TemporaryLoan);  // 2024-04-19 .. 2025-03-20, members 1 and 4
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(column(1).mid(0, 2), (QStringList{u"1"_s, u"4"_s}));
    EXPECT_EQ(sorted(column(1).mid(2)), (QStringList{u"2"_s, u"3"_s, u"7"_s}));
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(w.FlexEmployee->Rows(), 6);
}

TEST_F(MembersTest, RemovingASavedMemberDeletesItAtOnceAndReloads) {
    auto& w = editor();
    w.ViewPRSLoansInfo(TemporaryLoan);
    w.FlexEmployee->setRow(2);
    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());  // only while editing
    w.cmdEdit_Click();
    AddMembers({3});            // not saved
    w.FlexEmployee->setRow(2);  // member 4, clicked
    emit w.FlexEmployee->Click();
    ASSERT_TRUE(w.cmdDeleteEmp->isEnabled());
    w.cmdDeleteEmp->click();
    EXPECT_TRUE(t.messages->shown.isEmpty());
    EXPECT_EQ(t.db.rows(u"select * from tblHRLoanDetail where LoanID=1"_s).size(), 1);
    EXPECT_EQ(t.db.scalar(u"select EmployeeID from tblHRLoanDetail where LoanID=1"_s).toInt(), 1);
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblHRLoanDetail"_s).toInt(), 3);  // loans 2, 5
    // The grid shows what the database holds: the unsaved member went with the reload.
    EXPECT_EQ(column(1), (QStringList{u"1"_s}));
    EXPECT_EQ(session().LoanFormMode, ModeEdit);

    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());  // until the clerk clicks a member again
    w.FlexEmployee->setRow(1);
    emit w.FlexEmployee->Click();
    w.cmdDeleteEmp->click();
    EXPECT_EQ(w.FlexEmployee->Rows(), 1);
    w.FlexEmployee_Click();
    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());  // no member row left
}

TEST_F(MembersTest, HeaderClicksSortAlternatelyAndRenumber) {
    t.db.exec(u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (4, 7), (4, 6), (4, 2)"_s);
    auto& w = editor();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    w.ViewPRSLoansInfo(SeparateLoan);
    QHeaderView* header = w.FlexEmployee->view()->horizontalHeader();
    auto clickHeader = [&](int col) {
        const int x = header->sectionViewportPosition(col) + header->sectionSize(col) / 2;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
        QTest::qWait(QApplication::doubleClickInterval() + 50);  // two clicks, not a double-click
    };
    const QStringList numbers{u"1"_s, u"2"_s, u"3"_s};
    clickHeader(2);  // codes, numerically, five digits grouped on the way back
    EXPECT_EQ(column(2), (QStringList{u"203"_s, u"1002"_s, u"12/345"_s}));
    EXPECT_EQ(column(1), (QStringList{u"7"_s, u"2"_s, u"6"_s}));
    EXPECT_EQ(column(0), numbers);
    clickHeader(2);  // descending: the grouped code reads as 12345, not 12
    EXPECT_EQ(column(2), (QStringList{u"12/345"_s, u"1002"_s, u"203"_s}));
    EXPECT_EQ(column(0), numbers);
    clickHeader(3);  // names: ascending first, whatever column 2 did
    EXPECT_EQ(column(1), (QStringList{u"7"_s, u"6"_s, u"2"_s}));
    clickHeader(3);
    EXPECT_EQ(column(1), (QStringList{u"2"_s, u"6"_s, u"7"_s}));
    EXPECT_EQ(column(0), numbers);
    EXPECT_EQ(column(2), (QStringList{u"1002"_s, u"12/345"_s, u"203"_s}));
}
