#include <gtest/gtest.h>

#include <QCalendar>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include "DataTestSupport.h"
#include "data/ConnectionString.h"
#include "data/DemoData.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using kav::data::test::ScratchDb;

namespace {

class DemoDatabase : public ::testing::Test {
protected:
    void SetUp() override { CreateDemoDatabase(s.file()); }
    ScratchDb s{false};
};

TEST_F(DemoDatabase, HasSixtyEmployeesSomeOfWhomLeft) {
    EXPECT_EQ(s.scalar(u"select count(*) from tblEmployee"_s).toInt(), 60);
    const int left = s.scalar(u"select count(*) from tblEmployee where WorkStatusID=3"_s).toInt();
    EXPECT_GE(left, 2);
    EXPECT_LE(left, 8);
    EXPECT_GE(s.scalar(u"select count(*) from tblEmployee where length(Code) >= 5"_s).toInt(), 5);
    EXPECT_EQ(
        s.scalar(u"select count(distinct FirstName || ' ' || SureName) from tblEmployee"_s).toInt(),
        60);
    // Names are Persian text.
    const QString name = s.scalar(u"select FirstName from tblEmployee where ID=1"_s).toString();
    ASSERT_FALSE(name.isEmpty());
    EXPECT_GE(name[0].unicode(), 0x0600);
    EXPECT_LE(name[0].unicode(), 0x06FF);
    // Nobody who has left is a borrower.
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanDetail d join tblEmployee e on e.ID = "
                       u"d.EmployeeID where e.WorkStatusID=3"_s)
                  .toInt(),
              0);
}

TEST_F(DemoDatabase, HasLoanTypesWithCeilingsOneWithout) {
    EXPECT_GE(s.scalar(u"select count(*) from tblHRLoanType"_s).toInt(), 5);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanType where MaxValue is null"_s).toInt(), 1);
    // No loan exceeds its type's ceiling.
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan l join tblHRLoanType t on t.ID = l.TypeID "
                       u"where t.MaxValue is not null and l.LoanValue > t.MaxValue"_s)
                  .toInt(),
              0);
}

TEST_F(DemoDatabase, LoansAreCoherent) {
    const auto loans = s.rows(u"select * from tblHRLoan order by ID"_s);
    ASSERT_GE(loans.size(), 8);
    const QCalendar jalali(QCalendar::System::Jalali);
    int finals = 0, temporaries = 0;
    QList<int> codes;
    for (const auto& l : loans) {
        SCOPED_TRACE(l[u"id"_s].toInt());
        const qint64 value = l[u"loanvalue"_s].toLongLong();
        const qint64 monthly = l[u"monthlyvalue"_s].toLongLong();
        const int n = l[u"paybacknumber"_s].toInt();
        ASSERT_GT(n, 0);
        const qint64 rem = value - monthly * n;
        EXPECT_GE(rem, 0);
        EXPECT_LT(rem, monthly);
        // Each Gregorian date is its Persian text's day.
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
        if (l[u"code"_s].isNull())
            ++temporaries;
        else {
            ++finals;
            codes << l[u"code"_s].toInt();
        }
    }
    EXPECT_GE(temporaries, 2);
    EXPECT_GE(finals, 3);
    std::sort(codes.begin(), codes.end());
    for (int i = 0; i < codes.size(); ++i) EXPECT_EQ(codes[i], i + 1);

    // Members: every final loan has some; one temporary loan has none; up to three guarantors.
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan l where Code is not null and not exists "
                       u"(select 1 from tblHRLoanDetail d where d.LoanID = l.ID)"_s)
                  .toInt(),
              0);
    EXPECT_GE(s.scalar(u"select count(*) from tblHRLoan l where Code is null and not exists "
                       u"(select 1 from tblHRLoanDetail d where d.LoanID = l.ID)"_s)
                  .toInt(),
              1);
    EXPECT_GE(s.scalar(u"select count(*) from tblHRLoanDetail where SupporterEmployeeID3 is not "
                       u"null"_s)
                  .toInt(),
              1);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanDetail where EmployeeID in "
                       u"(SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3)"_s)
                  .toInt(),
              0);
}

TEST_F(DemoDatabase, PayrollHasDeductedOneFinalLoanAndAdjustmentsLieInTheirLoans) {
    const auto paid = s.rows(
        u"select distinct p.LoanID, l.Code from tblHRMonthlyPaiedLoan p join "
        u"tblHRLoan l on l.ID = p.LoanID"_s);
    ASSERT_GE(paid.size(), 3);
    // The payroll deducts final loans only.
    for (const auto& p : paid) EXPECT_FALSE(p[u"code"_s].isNull());
    // What was deducted never exceeds a member's share.
    EXPECT_EQ(s.scalar(u"select count(*) from (select p.EmployeeID, sum(p.PaidValue) s, "
                       u"max(l.LoanValue) v from tblHRMonthlyPaiedLoan p join tblHRLoan l on l.ID "
                       u"= p.LoanID group by p.EmployeeID) where s > v"_s)
                  .toInt(),
              0);

    EXPECT_GE(s.scalar(u"select count(*) from vwHRLoanException"_s).toInt(), 3);
    EXPECT_EQ(
        s.scalar(u"select count(*) from vwHRLoanException where EmployeeName is null"_s).toInt(),
        0);
    // Each adjustment belongs to a member of its loan and starts within the loan's period.
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanException x where not exists (select 1 "
                       u"from vwHRLoanData v where v.LoanID = x.LoanID and v.EmployeeID = "
                       u"x.EmployeeID and x.FarsiBeginDate >= v.FarsiBeginDate and "
                       u"(x.FarsiEndDate = '' or x.FarsiEndDate <= v.FarsiEndDate))"_s)
                  .toInt(),
              0);
    EXPECT_GE(s.scalar(u"select count(distinct EmployeeID) from tblHROrdinance"_s).toInt(), 50);
}

TEST_F(DemoDatabase, HasTheWorkingDateAndTheTwoUsers) {
    const QString date =
        s.scalar(u"select Value from tblVarekSystemParameters where ID=3450"_s).toString();
    EXPECT_TRUE(QRegularExpression(u"^1[34]\\d\\d/(0[1-9]|1[0-2])/(0[1-9]|[12]\\d|3[01])$"_s)
                    .match(date)
                    .hasMatch())
        << date.toStdString();
    auto permissions = [&](int user) {
        QList<int> p;
        for (const auto& r : s.rows(u"select FormPermissionID from tblVarekUserPermission where "
                                    u"UserID=%1 order by 1"_s.arg(user)))
            p << r[u"formpermissionid"_s].toInt();
        return p;
    };
    EXPECT_EQ(permissions(DemoUserWithPermissions), (QList<int>{111801, 111802, 111803}));
    EXPECT_TRUE(permissions(DemoUserWithoutPermissions).isEmpty());
}

TEST_F(DemoDatabase, IsLeftAloneWhenCreatedAgain) {
    s.exec(u"delete from tblHRLoanType where ID=1"_s);
    CreateDemoDatabase(s.file());
    EXPECT_EQ(s.scalar(u"select count(*) from tblEmployee"_s).toInt(), 60);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanType where ID=1"_s).toInt(), 0);
}

TEST_F(DemoDatabase, OpensThroughItsConnectionStringAndInTheSqliteShell) {
    const ConnectionTarget t = MapConnectionString(EmbeddedConnectionString(s.file()), {}, {});
    EXPECT_EQ(t.qtDriver, u"QSQLITE"_s);
    EXPECT_EQ(t.databaseName, s.file());

    const QString shell = QStandardPaths::findExecutable(u"sqlite3"_s);
    if (shell.isEmpty()) GTEST_SKIP() << "sqlite3 is not installed";
    QProcess p;
    p.start(shell, {s.file(), u"select count(*) from vwHRLoanData; pragma integrity_check;"_s});
    ASSERT_TRUE(p.waitForFinished(30000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    const QStringList lines =
        QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_GT(lines[0].toInt(), 20);
    EXPECT_EQ(lines[1], u"ok"_s);
}

TEST(DemoDatabaseFile, CannotBeWrittenIntoAMissingFolder) {
    EXPECT_THROW(CreateDemoDatabase(u"/nonexistent-folder/x/demo.db"_s), kav::KavError);
}

}  // namespace
