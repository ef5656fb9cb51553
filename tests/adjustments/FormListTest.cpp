// The adjustment list: its grid, the filters, sorting and opening an adjustment.

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include "AdjustmentFixture.h"
#include "adjustments/FormList.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

class ListTest : public AdjustmentTest {
protected:
    void SetUp() override {
        AdjustmentTest::SetUp();
        t.db.exec(
            {u"insert into tblHRLoanException (ID, LoanID, EmployeeID, BeginDate, "
             u"FarsiBeginDate, EndDate, FarsiEndDate, MonthlyDebit) values "
             u"(3, 1, 2, '2023-04-21', '1402/02/01', '2023-12-21', '1402/09/30', 10000000),"
             u"(4, 1, 1, '2023-10-23', '1402/08/01', '2023-11-21', '1402/08/30', 900000)"_s});
    }
    FormList& list() { return t.module.Window<FormList>(); }
    // Column c of every data row.
    QStringList column(int c) {
        QStringList out;
        for (int r = 1; r < list().FlexEmployee->Rows(); ++r)
            out << list().FlexEmployee->TextMatrix(r, c);
        return out;
    }
    QStringList search(qint32 employee, const QString& begin, const QString& end) {
        list().sltEmployee->setValue(employee);
        list().datBeginDate->setFarsidate(begin);
        list().datEndDate->setFarsidate(end);
        list().cmdSearch_Click();
        return column(5);
    }
};

}  // namespace

TEST_F(ListTest, FiltersNarrowTheListToWholePeriodsInTheRange) {
    auto& g = *list().FlexEmployee;
    EXPECT_EQ(
        g.FormatString(),
        u"رديف |^کارمند |^تاريخ شروع بازه|^تاريخ پايان بازه|^مقدار قسط |^شماره رايانه |^شماره رايانه وام "_s);
    EXPECT_EQ(g.Cols(), 7);
    EXPECT_EQ(g.Rows(), 1);
    EXPECT_EQ(search(-1, {}, {}), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    EXPECT_EQ(
        (QStringList{g.TextMatrix(3, 0), g.TextMatrix(3, 1), g.TextMatrix(3, 2), g.TextMatrix(3, 3),
                     g.TextMatrix(3, 4), g.TextMatrix(3, 5), g.TextMatrix(3, 6)}),
        (QStringList{u"3"_s, u"مريم احمدي"_s, u"1402/02/01"_s, u"1402/09/30"_s, u"10000000"_s,
                     u"3"_s, u"1"_s}));
    EXPECT_EQ(search(1, {}, {}), (QStringList{u"1"_s, u"4"_s}));
    EXPECT_EQ(search(-1, u"1402/03/01"_s, {}), (QStringList{u"1"_s, u"2"_s, u"4"_s}));
    EXPECT_EQ(search(-1, {}, u"1402/08/30"_s),
              (QStringList{u"1"_s, u"2"_s, u"4"_s}));  // '' is open
    EXPECT_EQ(search(1, u"1402/03/01"_s, u"1402/06/31"_s), (QStringList{u"1"_s}));
    EXPECT_EQ(search(2, u"1402/10/01"_s, u"1402/12/29"_s), QStringList());
    EXPECT_EQ(g.Rows(), 1);  // an empty result leaves the header

    list().cmdNew_Click();
    EXPECT_EQ(list().sltEmployee->Value(), -1);
    EXPECT_TRUE(list().datBeginDate->IsEmpty());
    EXPECT_TRUE(list().datEndDate->IsEmpty());
    search(-1, {}, {});
    list().cmdNew_Click();
    EXPECT_EQ(g.Rows(), 1);
}

TEST_F(ListTest, SortingAlternatesRenumbersAndRefusesColumnsBeyondItsSlots) {
    search(-1, {}, {});
    list().DoSort(4);  // amounts compare as numbers
    EXPECT_EQ(column(4), (QStringList{u"500000"_s, u"900000"_s, u"2000000"_s, u"10000000"_s}));
    EXPECT_EQ(column(0), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    EXPECT_EQ(list().SortDirection(4), 1);
    list().DoSort(4);
    EXPECT_EQ(column(4), (QStringList{u"10000000"_s, u"2000000"_s, u"900000"_s, u"500000"_s}));
    EXPECT_EQ(list().SortDirection(4), 2);
    list().DoSort(2);  // another column starts ascending
    EXPECT_EQ(column(2).first(), u"1402/02/01"_s);
    EXPECT_EQ(list().FlexEmployee->Col(), 1);
    list().DoSort(4);
    EXPECT_EQ(column(4).first(), u"500000"_s);

    EXPECT_FALSE(list().Guard([&] { list().DoSort(31); }));
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(t.messages->last().text, u"ستون 31 براي مرتب سازي وجود ندارد."_s);
    EXPECT_FALSE(list().Guard([&] { list().DoSort(-1); }));
    EXPECT_FALSE(list().Guard([&] { list().DoSort(30); }));  // a slot, but no such column
    EXPECT_EQ(column(5).size(), 4);
}

TEST_F(ListTest, AHeaderClickSortsADataClickDoesNot) {
    auto& w = list();
    search(-1, {}, {});
    w.show();
    w.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
    QTableView* view = w.FlexEmployee->view();
    QHeaderView* header = view->horizontalHeader();
    const int x = header->sectionViewportPosition(4) + header->sectionSize(4) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    EXPECT_EQ(column(4), (QStringList{u"500000"_s, u"900000"_s, u"2000000"_s, u"10000000"_s}));
    const QRect cell = view->visualRect(view->model()->index(0, 1));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(w.SortDirection(1), 0);
    EXPECT_EQ(column(4).first(), u"500000"_s);
    w.hide();
}

TEST_F(ListTest, ADoubleClickOpensTheAdjustmentUnlessOnlyLooking) {
    auto& w = open();
    auto& l = list();
    l.FlexEmployee_DblClick();  // the header only: nothing
    EXPECT_TRUE(w.txtID->text().isEmpty());

    search(-1, {}, {});
    l.FlexEmployee->setRow(3);
    session().LoanEditStarted = 1;  // opened from a new record: for looking only
    l.FlexEmployee_DblClick();
    EXPECT_TRUE(w.txtID->text().isEmpty());

    session().LoanEditStarted = 2;
    l.FlexEmployee_DblClick();
    EXPECT_EQ(w.txtID->text(), u"3"_s);
    EXPECT_EQ(w.gmpEmployee->Value(), 2);
    EXPECT_EQ(w.TxtPerMonth->text(), u"10000000"_s);
    EXPECT_EQ(session().LoanFormMode, 0);
    EXPECT_EQ(l.result(), int(QDialog::Accepted));
    EXPECT_FALSE(l.IsUnloaded());  // its rows wait for the next look
}
