// The loan's members: the picker, guarantors, ordinance employees, removing, sorting.

#include <QHeaderView>
#include <QTableView>

#include "EditorFixture.h"

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
    QStringList texts{p.windowTitle()};
    for (const QLabel* l : p.findChildren<QLabel*>()) texts << l->text();
    texts << p.cmdOK->text() << p.cmdExit->text();
    EXPECT_EQ(texts.join(u' '), u"تعيين کارمند كارمند: ضامن 1: ضامن 2: ضامن 3: تاييد خروج"_s);
    const QString active = u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s;
    EXPECT_EQ(p.sltEmployeeID->Filter1() + p.sltEmployeeID->Filter2(), active + active);
    EXPECT_EQ(ids(*p.sltEmployeeID), (QList<qint32>{1, 2, 3, 4, 6, 7}));
    EXPECT_EQ(ids(*p.sltSupportEmployeeID3), (QList<qint32>{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(MembersTest, PickerRefusesDuplicatesAndNobodyAndExitGivesNothing) {
    Edit(TemporaryLoan);  // members 1 and 4
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
    EXPECT_EQ(Shown(), (QStringList{u"هشدار: کارمند موردنظر تکراري است."_s,
                                    u"هشدار: کارمند موردنظر تکراري است."_s,
                                    u"خطا: کارمند مشخص نشده است!"_s}));
    EXPECT_EQ(w.FlexEmployee->Rows(), 3);
    EXPECT_FALSE(t.module.HasWindow<FormHREmployee>());  // unloaded: the next use starts afresh
    qint32 g1 = 9, g2 = 9, g3 = 9;
    // (1) is not part of (12): employee 1 joins a loan holding 12 and 40.
    OnPicker(Pick(1, {-1, 3, -1}));
    EXPECT_EQ(FormHREmployee::getNewEmployee(t.module, u"(12)(40)"_s, g1, g2, g3), 1);
    EXPECT_EQ((std::array<qint32, 3>{g1, g2, g3}), (std::array<qint32, 3>{-1, 3, -1}));
    EXPECT_EQ(Shown(), QStringList());
}

TEST_F(MembersTest, AddedMembersCarryGuarantorsIntoTheSaveAndARemovedOneGoesAtOnce) {
    Edit(SeparateLoan);
    auto& w = editor();
    const std::pair<qint32, std::array<qint32, 3>> picks[] = {
        {2, {-1, -1, -1}}, {3, {-1, 1, -1}}, {6, {1, 4, -1}}, {7, {1, 2, 3}}};
    for (const auto& [employee, guarantors] : picks) {
        OnPicker(Pick(employee, guarantors));
        w.cmdAddEmp->click();
    }
    ASSERT_EQ(w.FlexEmployee->Rows(), 5);
    EXPECT_EQ(QStringList({MemberRow(1), MemberRow(2), MemberRow(3), MemberRow(4)}),
              (QStringList{u"1|2|1002|مريم احمدي||||null|null|null"_s,
                           u"2|3|1003|حسن کريمي||علي رضايي||null|1|null"_s,
                           u"3|6|12345|سارا نوري|علي رضايي|زهرا موسوي||1|4|null"_s,
                           u"4|7|203|رضا اميني|علي رضايي|مريم احمدي|حسن کريمي|1|2|3"_s}));
    w.cmdRegSave_Click();
    ASSERT_EQ(mode(), ModeView);
    EXPECT_EQ(
        Scalar(u"select group_concat(EmployeeID||':'||ifnull(SupporterEmployeeID1,'-')||','||"
               "ifnull(SupporterEmployeeID2,'-')||','||ifnull(SupporterEmployeeID3,'-'), ' ') "
               "from (select * from tblHRLoanDetail where LoanID=4 order by ID)"_s)
            .toString(),
        u"2:-,-,- 3:-,1,- 6:1,4,- 7:1,2,3"_s);
    EXPECT_EQ(Shown().size(), 1);  // the overlap question of 3 (loan 5), answered yes
    Edit(TemporaryLoan);
    AddMembers({3});            // not saved
    w.FlexEmployee->setRow(2);  // member 4, clicked
    emit w.FlexEmployee->Click();
    w.cmdDeleteEmp->click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(
        Scalar(
            u"select group_concat(LoanID||':'||EmployeeID) from tblHRLoanDetail where LoanID<>4"_s)
            .toString(),
        u"1:1,2:2,5:3"_s);
    // The grid shows what the database holds: the unsaved member went with the reload.
    EXPECT_EQ(MemberColumn(1).join(u' '), u"1"_s);
    EXPECT_EQ(mode(), ModeEdit);
    EXPECT_FALSE(w.cmdDeleteEmp->isEnabled());  // until the clerk clicks a member again
}

TEST_F(MembersTest, OrdinanceEmployeesOfThePeriodWhoAreNotYetMembers) {
    auto& w = editor();
    auto sorted = [](QStringList l) {
        l.sort();
        return l;
    };
    Edit(SeparateLoan);  // 2024-04-19 .. 2024-06-20, no members
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(MemberColumn(0).join(u' '), u"1 2 3"_s);
    QStringList rows;
    for (int r = 1; r < w.FlexEmployee->Rows(); ++r) rows << MemberRow(r).section(u'|', 1);
    EXPECT_EQ(sorted(rows), (QStringList{u"2|1002|مريم احمدي||||null|null|null"_s,
                                         u"3|1003|حسن کريمي||||null|null|null"_s,
                                         u"7|203|رضا اميني||||null|null|null"_s}));
    Edit(SeparateLoan);  // without dates the period runs from 1900-01-01 to 2050-01-01
    w.datBeginDate->Clear();
    w.datEndDate->Clear();
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(sorted(MemberColumn(1)).join(u' '), u"1 2 3 6 7"_s);
    // Members already present are left out.
    Edit(TemporaryLoan);  // 2024-04-19 .. 2025-03-20, members 1 and 4
    w.cmdAddOrdinanceEmployees->click();
    EXPECT_EQ(MemberColumn(1).mid(0, 2).join(u' '), u"1 4"_s);
    EXPECT_EQ(sorted(MemberColumn(1).mid(2)).join(u' '), u"2 3 7"_s);
}

// A header click sorts by its column, alternating directions (codes as numbers, "/" and all),
// and the rows are numbered again.
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
    clickHeader(2);  // codes, numerically, five digits grouped on the way back
    EXPECT_EQ(MemberColumn(2).join(u' '), u"203 1002 12/345"_s);
    EXPECT_EQ(MemberColumn(1).join(u' '), u"7 2 6"_s);
    clickHeader(2);  // descending: the grouped code reads as 12345, not 12
    EXPECT_EQ(MemberColumn(2).join(u' '), u"12/345 1002 203"_s);
    EXPECT_EQ(MemberColumn(0).join(u' '), u"1 2 3"_s);
    clickHeader(3);  // names: ascending first, whatever column 2 did
    EXPECT_EQ(MemberColumn(1).join(u' '), u"7 6 2"_s);
    clickHeader(3);
    EXPECT_EQ(MemberColumn(1).join(u' '), u"2 6 7"_s);
    EXPECT_EQ(MemberColumn(0).join(u' '), u"1 2 3"_s);
}
