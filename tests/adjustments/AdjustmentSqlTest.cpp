// The adjustment window's and the list's statements: the SQL Server texts exactly as the
// suite's. (The SQLite texts run on the embedded schema in the window tests.)

#include <gtest/gtest.h>

#include "adjustments/AdjustmentSql.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using kav::test::CheckedTsql;
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
