// The adjustments' SQL Server texts; the adjustment list: filters, sorting and opening.

#include <gtest/gtest.h>

#include <algorithm>

#include "AdjustmentFixture.h"
#include "adjustments/AdjustmentSql.h"
#include "adjustments/ScheduleSource.h"
#include "support/PdfText.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
namespace S = kav::adjustment_sql;

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
    // Column c of every data row, joined by blanks.
    QString column(int c) {
        QStringList out;
        for (int r = 1; r < list().FlexEmployee->Rows(); ++r)
            out << list().FlexEmployee->TextMatrix(r, c);
        return out.join(u' ');
    }
    // The ids the list shows for the filters.
    QString search(qint32 employee, const QString& begin, const QString& end) {
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
    EXPECT_EQ(search(-1, {}, {}), u"1 2 3 4"_s);
    QStringList third;
    for (int c = 0; c < 7; ++c) third << g.TextMatrix(3, c);
    EXPECT_EQ(third.join(u'|'), u"3|مريم احمدي|1402/02/01|1402/09/30|10000000|3|1"_s);
    EXPECT_EQ(search(1, {}, {}), u"1 4"_s);
    EXPECT_EQ(search(-1, u"1402/03/01"_s, {}), u"1 2 4"_s);
    EXPECT_EQ(search(-1, {}, u"1402/08/30"_s), u"1 2 4"_s);  // '' is open
    EXPECT_EQ(search(1, u"1402/03/01"_s, u"1402/06/31"_s), u"1"_s);
    EXPECT_EQ(search(2, u"1402/10/01"_s, u"1402/12/29"_s), u""_s);
    EXPECT_EQ(g.Rows(), 1);  // an empty result leaves the header
    search(-1, {}, {});
    list().cmdNew_Click();  // clears the filters and the list
    EXPECT_EQ(list().sltEmployee->Value(), -1);
    EXPECT_TRUE(list().datBeginDate->IsEmpty() && list().datEndDate->IsEmpty());
    EXPECT_EQ(g.Rows(), 1);
}

TEST_F(ListTest, AHeaderClickSortsAsNumbersAndRenumbersAndAColumnBeyondTheSlotsIsRefused) {
    auto& w = list();
    search(-1, {}, {});
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    QHeaderView* header = w.FlexEmployee->view()->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(4) + 5, header->height() / 2));
    EXPECT_EQ(column(4) + u' ' + column(0), u"500000 900000 2000000 10000000 1 2 3 4"_s);
    w.hide();
    EXPECT_FALSE(w.Guard([&] { w.DoSort(31); }));
    expectLast(u"خطا"_s, u"ستون 31 براي مرتب سازي وجود ندارد."_s);
    EXPECT_FALSE(w.Guard([&] { w.DoSort(30); }));  // a slot, but no such column
}

TEST_F(ListTest, TheListOpensAnAdjustmentOnlyWhenNotOpenedForLooking) {
    auto& w = open();
    auto& l = list();
    l.FlexEmployee_DblClick();  // the header only: nothing
    w.cmdList_Click();          // nothing listed
    EXPECT_EQ(session().LoanEditStarted, 0);
    EXPECT_EQ(t.modalShown, 2);
    EXPECT_TRUE(w.txtID->text().isEmpty());
    l.cmdSearch_Click();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 2);  // the list holds a current row
    w.cmdNew_Click();
    w.cmdList_Click();
    EXPECT_EQ(session().LoanEditStarted, 1);  // for looking only while a new record is entered
    w.cmdCancel_Click();
    session().LoanEditStarted = 1;
    l.FlexEmployee->setRow(3);
    l.FlexEmployee_DblClick();
    EXPECT_TRUE(w.txtID->text().isEmpty());
    session().LoanEditStarted = 2;
    l.FlexEmployee_DblClick();
    EXPECT_EQ(w.txtID->text() + w.TxtPerMonth->text(), u"310000000"_s);
    EXPECT_EQ(w.gmpEmployee->Value(), 2);
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(l.result(), int(QDialog::Accepted));
    EXPECT_FALSE(l.IsUnloaded());  // its rows wait for the next look
}

// Printed: the rows found, under the filters they were found with.
TEST_F(ListTest, PrintsTheRowsUnderTheirFilters) {
    search(1, {}, {});
    const QList<QStringList> printed = PrintedRows(t.module, [&] { list().cmdPrint->click(); });
    ASSERT_EQ(printed.size(), 1);
    const QString all = printed[0].join(u'\n');
    EXPECT_TRUE(all.contains(Plain(u"ليست تعديل وام"_s)));
    // The filter's line: the employee box as it reads ("1001 - علي رضايي").
    EXPECT_TRUE(std::any_of(printed[0].begin(), printed[0].end(), [](const QString& row) {
        return row.startsWith(Plain(u"كارمند"_s)) && row.contains(u"1001"_s) &&
               row.contains(Plain(u"علي رضايي"_s));
    }));
    EXPECT_TRUE(printed[0].contains(Plain(u"2|علي رضايي|1402/08/01|1402/08/30|900000|4|1"_s)))
        << all.toStdString();
    list().cmdNew_Click();
    EXPECT_TRUE(PrintedRows(t.module, [&] { list().cmdPrint->click(); }).isEmpty());
}

TEST(AdjustmentSql, SqlServerTextsAreTheSuitesTexts) {
    const data::SqlDialect server(data::DatabaseKind::SqlServer);
    EXPECT_EQ(CheckedTsql(S::AdjustmentById(40000)),
              u"select * from vwHRLoanException where ID =40000"_s);
    EXPECT_EQ(CheckedTsql(S::StoredAdjustment(7)),
              u"Select * from tblHRLoanException where Id=7"_s);
    EXPECT_EQ(CheckedTsql(S::MemberLoanRows(40000, 12)),
              u"Select * from vwHRLoanData where  LoanID=40000 And EmployeeId=12"_s);
    EXPECT_EQ(CheckedTsql(S::DeleteAdjustment(server, 7, 12)),
              u"delete tblHRLoanException where ID=7 and EmployeeID=12"_s);
    CheckedTsql(S::LoanHeader(3));  // the schedule's own reads parse as T-SQL too
    CheckedTsql(S::MemberAdjustments(3, 12));
    // The payslip rows with the office's column names.
    data::PayslipColumns named;
    named.employee = u"PersonID"_s;
    EXPECT_EQ(CheckedTsql(schedule::MemberPayslipsQuery(named, 3, 12)),
              u"Select * from tblHRMonthlyPaiedLoan where LoanID=3 and PersonID=12"_s);
}

TEST(AdjustmentSql, ListQueryForEveryFilterCombination) {
    // Employee (-1: any), earliest start, latest end; what follows the base text.
    const std::tuple<qint32, QString, QString, QString> cases[] = {
        {-1, {}, {}, {}},
        {12, {}, {}, u" and EmployeeID=12"_s},
        {-1, u"1402/01/01"_s, {}, u" and FarsiBeginDate>= '1402/01/01'"_s},
        {-1, {}, u"1402/12/29"_s, u" and FarsiEndDate<= '1402/12/29'"_s},
        {12, u"1402/01/01"_s, u"1402/12/29"_s,
         u" and EmployeeID=12 and FarsiEndDate<= '1402/12/29' and FarsiBeginDate>= '1402/01/01'"_s},
    };
    for (const auto& [employee, begin, end, tail] : cases)
        EXPECT_EQ(CheckedTsql(S::ListQuery(employee, begin, end)),
                  u"Select * from vwHRLoanException Where ID>=0 "_s + tail);
}
