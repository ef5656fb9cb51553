// The adjustment window's and the list's statements: the SQL Server texts exactly as the
// suite's, the SQLite texts run on the embedded schema.

#include <gtest/gtest.h>

#include "AdjustmentFixture.h"
#include "adjustments/AdjustmentSql.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
namespace S = kav::adjustment_sql;

namespace {
const data::SqlDialect kServer(data::DatabaseKind::SqlServer);
const data::SqlDialect kLite(data::DatabaseKind::SQLite);
}  // namespace

TEST(AdjustmentSql, SqlServerTextsAreTheSuitesTexts) {
    EXPECT_EQ(CheckedTsql(S::AdjustmentById(40000)),
              u"select * from vwHRLoanException where ID =40000"_s);
    EXPECT_EQ(CheckedTsql(S::StoredAdjustment(7)),
              u"Select * from tblHRLoanException where Id=7"_s);
    EXPECT_EQ(CheckedTsql(S::MemberLoanRows(40000, 12)),
              u"Select * from vwHRLoanData where  LoanID=40000 And EmployeeId=12"_s);
    EXPECT_EQ(CheckedTsql(S::DeleteAdjustment(kServer, 7, 12)),
              u"delete tblHRLoanException where ID=7 and EmployeeID=12"_s);
    EXPECT_EQ(S::DeleteAdjustment(kLite, 7, 12),
              u"delete from tblHRLoanException where ID=7 and EmployeeID=12"_s);
    // The schedule's own reads parse as T-SQL too.
    CheckedTsql(S::LoanHeader(3));
    CheckedTsql(S::MemberAdjustments(3, 12));
    CheckedTsql(S::MemberPayslips(3, 12));
}

TEST(AdjustmentSql, ListQueryForEveryFilterCombination) {
    // Employee, earliest start, latest end: each present or not.
    const QString base = u"Select * from vwHRLoanException Where ID>=0 "_s;
    struct Case {
        qint32 employee;
        const char16_t* begin;
        const char16_t* end;
        const char16_t* tail;
    };
    const Case cases[] = {
        {-1, u"", u"", u""},
        {12, u"", u"", u" and EmployeeID=12"},
        {-1, u"1402/01/01", u"", u" and FarsiBeginDate>= '1402/01/01'"},
        {-1, u"", u"1402/12/29", u" and FarsiEndDate<= '1402/12/29'"},
        {12, u"1402/01/01", u"", u" and EmployeeID=12 and FarsiBeginDate>= '1402/01/01'"},
        {12, u"", u"1402/12/29", u" and EmployeeID=12 and FarsiEndDate<= '1402/12/29'"},
        {-1, u"1402/01/01", u"1402/12/29",
         u" and FarsiEndDate<= '1402/12/29' and FarsiBeginDate>= '1402/01/01'"},
        {12, u"1402/01/01", u"1402/12/29",
         u" and EmployeeID=12 and FarsiEndDate<= '1402/12/29' and FarsiBeginDate>= '1402/01/01'"},
    };
    for (const Case& c : cases) {
        const QString sql =
            S::ListQuery(c.employee, QString::fromUtf16(c.begin), QString::fromUtf16(c.end));
        EXPECT_EQ(CheckedTsql(sql), base + QString::fromUtf16(c.tail));
    }
}

TEST(AdjustmentSql, SqliteTextsReadTheSeededRows) {
    TestDatabase db;
    SeedAdjustments(db);
    EXPECT_EQ(db.rows(S::AdjustmentById(1)).value(0).value(u"employeename"_s).toString(),
              u"علي رضايي"_s);
    EXPECT_EQ(db.rows(S::StoredAdjustment(2)).value(0).value(u"farsienddate"_s).toString(), u""_s);
    EXPECT_EQ(db.rows(S::MemberLoanRows(1, 2)).size(), 1);
    EXPECT_EQ(db.rows(S::MemberLoanRows(1, 3)).size(), 0);
    EXPECT_EQ(db.rows(S::LoanHeader(1)).size(), 2);  // one row per member
    EXPECT_EQ(db.rows(S::MemberAdjustments(1, 1)).size(), 1);
    EXPECT_EQ(db.rows(S::MemberPayslips(1, 1)).size(), 2);
    EXPECT_EQ(db.rows(S::ListQuery(-1, u"1402/07/01"_s, QString())).size(), 1);
    // An open end ('') passes an end bound, as a text comparison has it.
    EXPECT_EQ(db.rows(S::ListQuery(-1, QString(), u"1402/05/01"_s)).size(), 2);
    ASSERT_TRUE(db.exec(S::DeleteAdjustment(kLite, 1, 2)));  // the wrong employee: nothing
    ASSERT_TRUE(db.exec(S::DeleteAdjustment(kLite, 1, 1)));
    EXPECT_EQ(db.scalar(u"select count(*) from tblHRLoanException"_s).toInt(), 1);
}
