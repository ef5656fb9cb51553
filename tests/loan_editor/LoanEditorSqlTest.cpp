// The loan editor's statements: the SQL Server texts exactly as the suite's, the SQLite texts
// run on the embedded schema.

#include <gtest/gtest.h>

#include "EditorFixture.h"
#include "loan_editor/LoanEditorSql.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {
const data::SqlDialect kServer(data::DatabaseKind::SqlServer);
const data::SqlDialect kLite(data::DatabaseKind::SQLite);
}  // namespace

TEST(LoanEditorSql, SqlServerTextsAreTheSuitesTexts) {
    EXPECT_EQ(CheckedTsql(loan_sql::FillLoan(40000)),
              u"select * from vwHRLoanData where ID =40000"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypes()), u"select * from tblHRLoanType"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypeMaxValue(3)),
              u"Select MaxValue from tblHRLoanType where ID=3"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::LoanTypeRow(3)), u"select * from tblHRLoanType where ID=3"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::PaidInstalments(12)),
              u"Select * from tblHRMonthlyPaiedLoan Where LoanID=12"_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::EmployeeRow(kServer, 40)),
        u"select e.ID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e Where e.ID=40"_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::OrdinanceEmployees(kServer, u"12,40"_s, QDate(2024, 4, 19),
                                                 QDate(2025, 3, 20))),
        u"select distinct x.EmployeeID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e inner join tblHROrdinance x on x.EmployeeID=e.ID Where e.ID not in (12,40) and Not (x.BeginDate>'20250320' or x.EndDate<'20240419')"_s);
    // Empty dates: the whole range from 1900-01-01 to 2050-01-01.
    EXPECT_EQ(
        CheckedTsql(loan_sql::OrdinanceEmployees(kServer, u"-1"_s, QDate(), QDate())),
        u"select distinct x.EmployeeID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e inner join tblHROrdinance x on x.EmployeeID=e.ID Where e.ID not in (-1) and Not (x.BeginDate>'20500101' or x.EndDate<'19000101')"_s);
    EXPECT_EQ(CheckedTsql(loan_sql::DeleteMember(kServer, 12, 40)),
              u"delete tblHRLoanDetail where LoanID=12 and EmployeeID=40 "_s);
    EXPECT_EQ(
        CheckedTsql(loan_sql::MemberGrid(kServer, 12)),
        u"select vw.*, e1.FirstName +' '+e1.SureName as 'Supporter1', e2.FirstName +' '+e2.SureName as 'Supporter2', e3.FirstName +' '+e3.SureName as 'Supporter3' from vwHRLoanEmployees vw left outer join tblemployee e1 on supporterEmployeeid1=e1.id left outer join tblemployee e2 on supporteremployeeid2=e2.id left outer join tblemployee e3 on supporteremployeeid3=e3.id where vw.LoanID=12"_s);
}

TEST(LoanEditorSql, SqliteTextsReadTheSeededLoan) {
    TestDatabase db;
    SeedLoans(db);
    EXPECT_EQ(db.rows(loan_sql::FillLoan(TemporaryLoan)).size(), 2);  // one row per member
    EXPECT_EQ(db.rows(loan_sql::LoanTypes()).size(), 2);
    EXPECT_TRUE(db.scalar(loan_sql::LoanTypeMaxValue(2)).isNull());
    EXPECT_EQ(db.scalar(loan_sql::LoanTypeMaxValue(1)).toLongLong(), 50000000);
    EXPECT_EQ(db.rows(loan_sql::LoanTypeRow(1)).size(), 1);
    EXPECT_EQ(db.rows(loan_sql::PaidInstalments(PaidLoan)).size(), 2);
    const auto members = db.rows(loan_sql::MemberGrid(kLite, TemporaryLoan));
    ASSERT_EQ(members.size(), 2);
    EXPECT_EQ(members[0][u"supporter1"_s].toString(), u"مريم احمدي"_s);
    EXPECT_TRUE(members[0][u"supporter3"_s].isNull());
    EXPECT_TRUE(members[1][u"supporteremployeeid1"_s].isNull());
}
