#include <gtest/gtest.h>

#include <QCalendar>

#include "base/Errors.h"
#include "data/DemoData.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using ScratchDb = kav::test::TestDatabase;

namespace {

class DemoDatabase : public ::testing::Test {
protected:
    void SetUp() override { CreateDemoDatabase(s.file()); }
    ScratchDb s{false};
};

// The demo data holds together the way the windows assume: each query counts what would
// break it and must find nothing.
TEST_F(DemoDatabase, BreaksNoRuleTheWindowsRelyOn) {
    const QString violations[] = {
        // nobody who has left is a borrower
        u"select count(*) from tblHRLoanDetail d join tblEmployee e on e.ID = d.EmployeeID "
        u"where e.WorkStatusID=3"_s,
        // no loan exceeds its type's ceiling
        u"select count(*) from tblHRLoan l join tblHRLoanType t on t.ID = l.TypeID "
        u"where t.MaxValue is not null and l.LoanValue > t.MaxValue"_s,
        // every final loan has members; nobody guarantees his own loan
        u"select count(*) from tblHRLoan l where Code is not null and not exists "
        u"(select 1 from tblHRLoanDetail d where d.LoanID = l.ID)"_s,
        u"select count(*) from tblHRLoanDetail where EmployeeID in "
        u"(SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3)"_s,
        // the payroll deducts final loans only, and never more than a member's share
        u"select count(*) from tblHRMonthlyPaiedLoan p join tblHRLoan l on l.ID = p.LoanID "
        u"where l.Code is null"_s,
        u"select count(*) from (select p.EmployeeID, sum(p.PaidValue) s, max(l.LoanValue) v "
        u"from tblHRMonthlyPaiedLoan p join tblHRLoan l on l.ID = p.LoanID group by "
        u"p.EmployeeID) where s > v"_s,
        // each adjustment belongs to a member of its loan and lies within the loan's period
        u"select count(*) from tblHRLoanException x where not exists (select 1 from vwHRLoanData "
        u"v where v.LoanID = x.LoanID and v.EmployeeID = x.EmployeeID and x.FarsiBeginDate >= "
        u"v.FarsiBeginDate and (x.FarsiEndDate = '' or x.FarsiEndDate <= v.FarsiEndDate))"_s,
        u"select count(*) from vwHRLoanException where EmployeeName is null"_s,
    };
    for (const QString& sql : violations) EXPECT_EQ(s.scalar(sql).toInt(), 0) << sql.toStdString();
}

// Each loan's instalments add up, each Gregorian date is its Persian text's day, the
// instalments span as many months as there are, and final loans are numbered 1, 2, 3...
TEST_F(DemoDatabase, LoansAreCoherent) {
    const auto loans = s.rows(u"select * from tblHRLoan order by ID"_s);
    ASSERT_GE(loans.size(), 8);
    const QCalendar jalali(QCalendar::System::Jalali);
    QList<int> codes;
    for (const auto& l : loans) {
        SCOPED_TRACE(l[u"id"_s].toInt());
        const qint64 value = l[u"loanvalue"_s].toLongLong();
        const qint64 monthly = l[u"monthlyvalue"_s].toLongLong();
        const int n = l[u"paybacknumber"_s].toInt();
        ASSERT_GT(n, 0);
        EXPECT_GE(value - monthly * n, 0);
        EXPECT_LT(value - monthly * n, monthly);
        for (const QString& c : {u"payment"_s, u"begin"_s, u"end"_s}) {
            const QString farsi = l[u"farsi"_s + c + u"date"_s].toString();
            ASSERT_EQ(farsi.size(), 10) << farsi.toStdString();
            const QDate g = QDate(farsi.left(4).toInt(), farsi.mid(5, 2).toInt(),
                                  farsi.mid(8, 2).toInt(), jalali);
            EXPECT_EQ(l[c + u"date"_s].toString(), g.toString(u"yyyy-MM-dd"_s))
                << farsi.toStdString();
        }
        const QString b = l[u"farsibegindate"_s].toString(), e = l[u"farsienddate"_s].toString();
        const int months = (e.left(4).toInt() - b.left(4).toInt()) * 12 + e.mid(5, 2).toInt() -
                           b.mid(5, 2).toInt();
        EXPECT_EQ(months, n - 1) << b.toStdString() << " .. " << e.toStdString();
        EXPECT_LE(l[u"farsipaymentdate"_s].toString(), b);
        if (!l[u"code"_s].isNull()) codes << l[u"code"_s].toInt();
    }
    ASSERT_FALSE(codes.isEmpty());
    std::sort(codes.begin(), codes.end());
    for (int i = 0; i < codes.size(); ++i) EXPECT_EQ(codes[i], i + 1);
}

TEST_F(DemoDatabase, HasAWorkingDateAndAUserWithAndOneWithoutPermissions) {
    EXPECT_EQ(s.scalar(u"select length(Value) from tblVarekSystemParameters where ID=3450"_s), 10);
    const QString permissions =
        u"select FormPermissionID from tblVarekUserPermission where UserID=%1 order by 1"_s;
    EXPECT_EQ(s.table(permissions.arg(DemoUserWithPermissions)),
              (QStringList{u"111801"_s, u"111802"_s, u"111803"_s}));
    EXPECT_EQ(s.table(permissions.arg(DemoUserWithoutPermissions)), QStringList());
}

TEST_F(DemoDatabase, IsLeftAloneWhenCreatedAgain) {
    s.exec(u"delete from tblHRLoanType where ID=1"_s);
    CreateDemoDatabase(s.file());
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanType where ID=1"_s).toInt(), 0);
    EXPECT_THROW(CreateDemoDatabase(u"/nonexistent-folder/x/demo.db"_s), kav::KavError);
}

}  // namespace
