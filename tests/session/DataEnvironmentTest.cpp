#include <gtest/gtest.h>

#include <QCalendar>
#include <QDate>
#include <QFile>

#include "data/DemoData.h"
#include "session/DataEnvironment.h"
#include "base/Errors.h"
#include "session/Module.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

void fillEmployees(const test::TestDatabase& db) {
    db.exec({
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values (1, '101', 'علي', 'رضايي', 1)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values (2, '102', '', 'احمدي', 1)"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values (3, '103', NULL, 'کريمي', 3)"_s,
    });
}

// Runs the shared checks of the data environment on a connection string.
void checkRecordsetNavigation(Module& module) {
    Recordset& rs = module.DtEn().rs();
    rs.Open(u"select ID, FirstName, SureName from tblEmployee order by ID"_s);
    ASSERT_EQ(rs.RecordCount(), 3);
    rs.MoveFirst();
    EXPECT_FALSE(rs.EOF_());
    EXPECT_EQ(rs.Fields(u"id"_s).toInt(), 1);
    EXPECT_EQ(rs.Fields(u"FIRSTNAME"_s).toString(), u"علي"_s);
    rs.MoveNext();
    EXPECT_FALSE(rs.IsNull(u"FirstName"_s));
    EXPECT_TRUE(rs.Fields(u"FirstName"_s).toString().isEmpty());
    rs.MoveNext();
    EXPECT_TRUE(rs.IsNull(u"FirstName"_s));
    rs.MoveNext();
    EXPECT_TRUE(rs.EOF_());
    EXPECT_THROW(rs.Fields(u"ID"_s), KavError);
    rs.Close();
    EXPECT_FALSE(rs.IsOpen());
}

}  // namespace

TEST(DataEnvironment, RecordsetNavigatesAndKeepsNullApartFromEmpty) {
    test::TestModule t;
    fillEmployees(t.db);
    checkRecordsetNavigation(t.module);

    Recordset& rs = t.module.DtEn().rs();
    rs.Open(u"select * from tblEmployee where ID = -5"_s);
    EXPECT_EQ(rs.RecordCount(), 0);
    EXPECT_TRUE(rs.EOF_());
    EXPECT_THROW(rs.Fields(u"NoSuchColumn"_s), KavError);
}

TEST(DataEnvironment, FailingStatementsCarryTheDriversText) {
    test::TestModule t;
    try {
        t.module.DtEn().cnt().Execute(u"insert into tblNoSuchTable values (1)"_s);
        FAIL() << "no error";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_TRUE(e.message().contains(u"tblNoSuchTable"_s)) << e.message().toStdString();
    }
    EXPECT_THROW(t.module.DtEn().rs().Open(u"select nonsense from"_s), KavError);
}

TEST(DataEnvironment, BadConnectionsNameTheProblem) {
    Module module;
    for (const QString& cs : {u"0"_s, QString(), u"Provider=Nonsense;Data Source=x"_s,
                              u"Provider=SQLite;Data Source=/no/such/dir/x.db"_s}) {
        module.session.SessionConnectionString = cs;
        module.OpenSessionConnection();
        try {
            module.DtEn().rs().Open(u"select 1"_s);
            ADD_FAILURE() << "opened " << cs.toStdString();
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Connection) << cs.toStdString();
            EXPECT_FALSE(e.message().isEmpty());
        }
    }
}

TEST(DataEnvironment, StoredCommandsAndTheRoleCheck) {
    test::TestModule t;
    t.module.session.SessionUserID = 7;
    t.grant(7, {111801, 111803});
    EXPECT_TRUE(t.module.HasPermission(111801));
    EXPECT_FALSE(t.module.HasPermission(111802));
    EXPECT_TRUE(t.module.HasPermission(111803));
    t.module.session.SessionUserID = 8;
    EXPECT_FALSE(t.module.HasPermission(111801));

    DataEnvironment& env = t.module.DtEn();
    const int first = env.spHRLoanExceptionNew(5, 1, 1500, QDate(2024, 3, 20), u"1403/01/01"_s,
                                               QDate(), QString());
    const int second = env.spHRLoanExceptionNew(5, 2, 2000, QDate(2024, 3, 20), u"1403/01/01"_s,
                                                QDate(2024, 9, 21), u"1403/06/31"_s);
    EXPECT_GT(second, first);
    env.spHRLoanExceptionUpdate(first, 5, 1, QDate(2024, 4, 20), u"1403/02/01"_s,
                                QDate(2024, 5, 21), u"1403/02/31"_s, 1750);
    Recordset rs = env.NewRecordset();
    rs.Open(u"select * from tblHRLoanException where ID=%1"_s.arg(first));
    ASSERT_EQ(rs.RecordCount(), 1);
    EXPECT_EQ(rs.Fields(u"MonthlyDebit"_s).toDouble(), 1750);
    EXPECT_EQ(rs.Fields(u"FarsiEndDate"_s).toString(), u"1403/02/31"_s);
    rs.Open(u"select * from tblHRLoanException where ID=%1"_s.arg(second));
    EXPECT_EQ(rs.Fields(u"EmployeeID"_s).toInt(), 2);
}

TEST(DataEnvironment, WorkingDateFromParameterElseToday) {
    test::TestModule t;
    const QCalendar jalali(QCalendar::System::Jalali);
    const auto today = jalali.partsFromDate(QDate::currentDate());
    const QString expected = u"%1/%2/%3"_s.arg(today.year)
                                 .arg(today.month, 2, 10, QChar(u'0'))
                                 .arg(today.day, 2, 10, QChar(u'0'));
    EXPECT_EQ(t.module.SystemWorkingDate(), expected);
    t.db.exec(u"insert into tblVarekSystemParameters (ID, Value) values (3450, '1403/07/01')"_s);
    EXPECT_EQ(t.module.SystemWorkingDate(), u"1403/07/01"_s);
}

TEST(DataEnvironment, SerialisedTransactionRollsBackAsAWhole) {
    test::TestModule t;
    fillEmployees(t.db);
    Connection& cnt = t.module.DtEn().cnt();
    cnt.BeginSerialised(u"loan"_s);
    cnt.Execute(u"delete from tblEmployee where ID=1"_s);
    cnt.Rollback();
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 3);
    cnt.BeginSerialised(u"loan"_s);
    cnt.Execute(u"delete from tblEmployee where ID=1"_s);
    cnt.Commit();
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 2);
}

// The ODBC path, with the SQLite ODBC driver standing in for the suite's server.
TEST(DataEnvironment, RunsThroughOdbcWithTheSqliteDriver) {
    if (!data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    test::TestDatabase db;
    fillEmployees(db);
    db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (4, 111801)"_s);
    Module module;
    module.session.SessionConnectionString = u"Driver=SQLite3;Database="_s + db.file();
    module.session.SessionUserID = 4;
    module.OpenSessionConnection();
    EXPECT_EQ(module.DtEn().cnt().Database().driverName(), u"QODBC"_s);
    EXPECT_EQ(module.DtEn().Dialect().kind(), data::DatabaseKind::SQLite);
    checkRecordsetNavigation(module);
    EXPECT_TRUE(module.HasPermission(111801));
    EXPECT_FALSE(module.HasPermission(111802));
    module.DtEn().cnt().Execute(u"delete from tblEmployee where ID=3"_s);
    EXPECT_EQ(db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 2);
    EXPECT_THROW(module.DtEn().cnt().Execute(u"delete from tblNoSuch"_s), KavError);
}
