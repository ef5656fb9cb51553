#include <gtest/gtest.h>

#include <QDateTime>
#include <QSqlError>

#include "DataTestSupport.h"
#include "base/Errors.h"
#include "data/Procedures.h"
#include "data/SqlDialect.h"
#include "support/Raises.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using namespace kav::data;
using kav::data::test::ScratchDb;

namespace {

const SqlDialect kServer(DatabaseKind::SqlServer);
const SqlDialect kLite(DatabaseKind::SQLite);

TEST(SqlDialect, WritesDateLiteralsEachDatabaseReadsTheSameEverywhere) {
    const QDate d(2024, 3, 20);
    EXPECT_EQ(kServer.dateText(d), u"20240320"_s);
    EXPECT_EQ(kLite.dateText(d), u"2024-03-20"_s);
    EXPECT_EQ(kServer.dateText(QDate()), u"19000101"_s);
    EXPECT_EQ(kLite.dateText(QDate()), u"1900-01-01"_s);
    EXPECT_EQ(kLite.dateText(QDate(987, 1, 2)), u"0987-01-02"_s);
}

TEST(SqlDialect, ReadsDatesBackFromEveryDriverShape) {
    const QDate d(2024, 3, 20);
    EXPECT_EQ(SqlDialect::readDate(QVariant(d)), d);
    EXPECT_EQ(SqlDialect::readDate(QVariant(QDateTime(d, QTime(13, 5)))), d);  // ODBC datetime
    EXPECT_EQ(SqlDialect::readDate(u"2024-03-20"_s), d);
    EXPECT_EQ(SqlDialect::readDate(u"2024-03-20 00:00:00.000"_s), d);
    EXPECT_EQ(SqlDialect::readDate(u"2024-03-20T00:00:00"_s), d);
    EXPECT_EQ(SqlDialect::readDate(u"20240320"_s), d);
    EXPECT_FALSE(SqlDialect::readDate(QVariant()).isValid());
    EXPECT_FALSE(SqlDialect::readDate(u""_s).isValid());
    // A Persian date text is not a Gregorian date.
    EXPECT_FALSE(SqlDialect::readDate(u"1403/01/01"_s).isValid());
}

TEST(SqlDialect, DiffersOnlyWhereSqliteCannotRunTheTsql) {
    EXPECT_EQ(kServer.deleteFrom(u"tblHRLoan"_s) + u" where ID=5"_s,
              u"delete tblHRLoan where ID=5"_s);
    EXPECT_EQ(kLite.deleteFrom(u"tblHRLoan"_s) + u" where ID=5"_s,
              u"delete from tblHRLoan where ID=5"_s);
    EXPECT_EQ(kServer.concatOperator(), u"+"_s);
    EXPECT_EQ(kLite.concatOperator(), u"||"_s);
    EXPECT_EQ(kServer.isNullFunction(), u"IsNull"_s);
    EXPECT_EQ(kLite.isNullFunction(), u"IfNull"_s);
}

// A write is serialised among clients: an explicit transaction, then an application lock
// owned by it whose return code comes back as the one row of the text.
TEST(SqlDialect, SerialisedTransactionTexts) {
    EXPECT_EQ(kav::test::CheckedTsql(kServer.beginSerialised(u"KAVHRLoan"_s)),
              u"SET NOCOUNT ON; BEGIN TRANSACTION; DECLARE @LockResult int; EXEC @LockResult = "
              u"sp_getapplock @Resource = N'KAVHRLoan', @LockMode = 'Exclusive', @LockOwner = "
              u"'Transaction', @LockTimeout = 5000; SELECT @LockResult AS LockResult"_s);
    EXPECT_TRUE(kav::test::CheckedTsql(kServer.beginSerialised(u"O'Loan"_s))
                    .contains(u"@Resource = N'O''Loan'"_s));
    EXPECT_EQ(kav::test::CheckedTsql(kServer.commitTransaction()), u"COMMIT TRANSACTION"_s);
    EXPECT_EQ(kav::test::CheckedTsql(kServer.rollbackTransaction()),
              u"IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"_s);
    EXPECT_TRUE(kServer.beginReturnsLockResult());
    EXPECT_EQ(kLite.beginSerialised(u"KAVHRLoan"_s), u"BEGIN IMMEDIATE"_s);
    EXPECT_EQ(kLite.commitTransaction(), u"COMMIT"_s);
    EXPECT_EQ(kLite.rollbackTransaction(), u"ROLLBACK"_s);
    EXPECT_FALSE(kLite.beginReturnsLockResult());
}

TEST(SqlDialect, SqliteTextsRunOnTheEmbeddedDatabase) {
    ScratchDb s;
    s.exec(u"insert into tblHRLoan (ID, BeginDate) values (1, '"_s +
           kLite.dateText(QDate(2024, 3, 20)) + u"')"_s);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan where BeginDate > '"_s +
                       kLite.dateText(QDate(2024, 3, 19)) + u"'"_s)
                  .toInt(),
              1);
    EXPECT_EQ(
        s.scalar(u"select "_s + kLite.isNullFunction() + u"(max(Code), 0) + 1 from tblHRLoan"_s)
            .toInt(),
        1);
    EXPECT_EQ(s.scalar(u"select 'a' "_s + kLite.concatOperator() + u" 'b'"_s).toString(), u"ab"_s);
    s.exec(kLite.deleteFrom(u"tblHRLoan"_s) + u" where ID=1"_s);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan"_s).toInt(), 0);
}

TEST(Procedures, AreDeclaredWithTheirParametersInCallingOrder) {
    EXPECT_EQ(HasPermissionProcedure().name, u"spVarekHasPermission"_s);
    EXPECT_EQ(HasPermissionProcedure().parameters,
              (QStringList{u"@UserID"_s, u"@FormPermissionID"_s}));
    EXPECT_EQ(LoanExceptionNewProcedure().parameters,
              (QStringList{u"@LoanID"_s, u"@EmployeeID"_s, u"@MonthlyDebit"_s, u"@BeginDate"_s,
                           u"@FarsiBeginDate"_s, u"@EndDate"_s, u"@FarsiEndDate"_s}));
    EXPECT_EQ(
        LoanExceptionUpdateProcedure().parameters,
        (QStringList{u"@ID"_s, u"@LoanID"_s, u"@EmployeeID"_s, u"@BeginDate"_s,
                     u"@FarsiBeginDate"_s, u"@EndDate"_s, u"@FarsiEndDate"_s, u"@MonthlyDebit"_s}));
    EXPECT_EQ(OdbcCallText(HasPermissionProcedure()),
              u"{? = CALL dbo.spVarekHasPermission( ?, ?) }"_s);
    EXPECT_EQ(OdbcCallText(LoanExceptionNewProcedure()),
              u"{? = CALL dbo.spHRLoanExceptionNew( ?, ?, ?, ?, ?, ?, ?) }"_s);
}

TEST(Procedures, PermissionIsGrantedOnlyForAnExistingRow) {
    ScratchDb s;
    s.exec({u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s,
            u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (2, 111803)"_s});
    auto has = [&](int user, int permission) {
        return RunEmulatedProcedure(s.db(), u"spVarekHasPermission"_s, {user, permission});
    };
    EXPECT_EQ(has(1, 111801), 1);
    EXPECT_EQ(has(1, 111802), 0);  // another permission of the same user
    EXPECT_EQ(has(2, 111801), 0);  // the same permission of another user
    EXPECT_EQ(has(2, 111803), 1);
    EXPECT_EQ(has(3, 111801), 0);
    // The procedure name may carry its schema and any case, as on SQL Server.
    EXPECT_EQ(RunEmulatedProcedure(s.db(), u"dbo.SPVAREKHASPERMISSION"_s, {1, 111801}), 1);
}

TEST(Procedures, NewAdjustmentWritesEveryColumnAndReturnsIncreasingIds) {
    ScratchDb s;
    const QVariantList first{
        7, 12, 1500000.0, QDate(2024, 3, 20), u"1403/01/01"_s, QDate(2024, 6, 20), u"1403/03/31"_s};
    const int id1 = RunEmulatedProcedure(s.db(), u"spHRLoanExceptionNew"_s, first);
    const int id2 = RunEmulatedProcedure(s.db(), u"spHRLoanExceptionNew"_s,
                                         {7, 13, -1.0, QDate(), u""_s, QDate(), u""_s});
    EXPECT_GT(id1, 0);
    EXPECT_GT(id2, id1);
    // Empty dates are stored as 1900-01-01 with an empty (not Null) Persian text.
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanException where BeginDate='1900-01-01' and "
                       u"FarsiBeginDate='' and EndDate='1900-01-01' and FarsiEndDate='' and "
                       u"MonthlyDebit=-1 and ID="_s +
                       QString::number(id2))
                  .toInt(),
              1);
    // A deleted last row's key is not handed out again.
    s.exec(u"delete from tblHRLoanException where ID="_s + QString::number(id2));
    const int id3 = RunEmulatedProcedure(s.db(), u"spHRLoanExceptionNew"_s, first);
    EXPECT_GT(id3, id2);

    const auto rows =
        s.rows(u"select * from tblHRLoanException where ID="_s + QString::number(id1));
    ASSERT_EQ(rows.size(), 1);
    const auto& r = rows[0];
    EXPECT_EQ(r[u"loanid"_s].toInt(), 7);
    EXPECT_EQ(r[u"employeeid"_s].toInt(), 12);
    EXPECT_EQ(r[u"monthlydebit"_s].toDouble(), 1500000.0);
    EXPECT_EQ(r[u"begindate"_s].toString(), u"2024-03-20"_s);
    EXPECT_EQ(r[u"farsibegindate"_s].toString(), u"1403/01/01"_s);
    EXPECT_EQ(r[u"enddate"_s].toString(), u"2024-06-20"_s);
    EXPECT_EQ(r[u"farsienddate"_s].toString(), u"1403/03/31"_s);
}

TEST(Procedures, UpdateRewritesTheRowByIdAndReturnsZero) {
    ScratchDb s;
    const int id = RunEmulatedProcedure(
        s.db(), u"spHRLoanExceptionNew"_s,
        {7, 12, 100.0, QDate(2024, 3, 20), u"1403/01/01"_s, QDate(2024, 6, 20), u"1403/03/31"_s});
    const int other = RunEmulatedProcedure(
        s.db(), u"spHRLoanExceptionNew"_s,
        {7, 12, 100.0, QDate(2024, 3, 20), u"1403/01/01"_s, QDate(2024, 6, 20), u"1403/03/31"_s});
    EXPECT_EQ(RunEmulatedProcedure(
                  s.db(), u"spHRLoanExceptionUpdate"_s,
                  {id, 8, 14, QDate(2024, 4, 20), u"1403/02/01"_s, QDate(), u""_s, 2500.5}),
              0);
    const auto r = s.rows(u"select * from tblHRLoanException where ID="_s + QString::number(id))[0];
    EXPECT_EQ(r[u"loanid"_s].toInt(), 8);
    EXPECT_EQ(r[u"employeeid"_s].toInt(), 14);
    EXPECT_EQ(r[u"begindate"_s].toString(), u"2024-04-20"_s);
    EXPECT_EQ(r[u"farsibegindate"_s].toString(), u"1403/02/01"_s);
    EXPECT_EQ(r[u"enddate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(r[u"farsienddate"_s].toString(), u""_s);
    EXPECT_DOUBLE_EQ(r[u"monthlydebit"_s].toDouble(), 2500.5);
    // The other row is untouched.
    EXPECT_EQ(s.scalar(u"select MonthlyDebit from tblHRLoanException where ID="_s +
                       QString::number(other))
                  .toDouble(),
              100.0);
}

// The emulation takes each value as SQL Server takes it for the parameter's type: it
// refuses what SQL Server refuses and stores Null where the suite's procedures do.
TEST(Procedures, ParametersConvertAsOnSqlServer) {
    ScratchDb s;
    auto insert = [&](const QVariantList& p) {
        return RunEmulatedProcedure(s.db(), u"spHRLoanExceptionNew"_s, p);
    };
    auto row = [&](int id) {
        return s.rows(u"select * from tblHRLoanException where ID="_s + QString::number(id))[0];
    };
    const QDate day(2024, 3, 20);
    using kav::test::RaisedKind;
    for (const QVariant& notADate : {QVariant(u"abc"_s), QVariant(u"1403/01/01"_s), QVariant(7)})
        EXPECT_EQ(RaisedKind([&] {
                      insert({1, 1, 5.0, notADate, u""_s, day, u""_s});
                  }),
                  KavError::Kind::TypeMismatch)
            << notADate.toString().toStdString();
    for (const QVariant& notANumber : {QVariant(u"12x"_s), QVariant(u"abc"_s)})
        EXPECT_EQ(RaisedKind([&] {
                      insert({1, 1, notANumber, day, u""_s, day, u""_s});
                  }),
                  KavError::Kind::TypeMismatch);
    EXPECT_EQ(RaisedKind([&] {
                  insert({u"1.5"_s, 1, 5.0, day, u""_s, day, u""_s});
              }),
              KavError::Kind::TypeMismatch);
    EXPECT_EQ(RaisedKind([&] {
                  insert({1, 1, 1e16, day, u""_s, day, u""_s});
              }),
              KavError::Kind::Overflow);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanException"_s).toInt(), 0);

    // Null dates become 1900-01-01 and empty texts; a Null amount stays Null.
    const QVariant null;
    const int id = insert({u"7"_s, 8.9, null, null, null, u"2024-06-20"_s, u"1403/03/31 extra"_s});
    auto r = row(id);
    EXPECT_EQ(r[u"loanid"_s].toInt(), 7);
    EXPECT_EQ(r[u"employeeid"_s].toInt(), 8);  // a fraction is cut, as int takes it
    EXPECT_TRUE(r[u"monthlydebit"_s].isNull());
    EXPECT_EQ(r[u"begindate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(r[u"farsibegindate"_s].toString(), u""_s);
    EXPECT_FALSE(r[u"farsibegindate"_s].isNull());
    EXPECT_EQ(r[u"enddate"_s].toString(), u"2024-06-20"_s);
    EXPECT_EQ(r[u"farsienddate"_s].toString(), u"1403/03/31"_s);  // cut to nvarchar(10)

    // Empty texts are what SQL Server makes of them: 1900-01-01 and 0.
    EXPECT_EQ(RunEmulatedProcedure(s.db(), u"spHRLoanExceptionUpdate"_s,
                                   {id, 7, 8, u""_s, u"1403/01/01"_s, day, u"x"_s, u""_s}),
              0);
    r = row(id);
    EXPECT_EQ(r[u"begindate"_s].toString(), u"1900-01-01"_s);
    EXPECT_EQ(r[u"monthlydebit"_s].toDouble(), 0.0);
    EXPECT_FALSE(r[u"monthlydebit"_s].isNull());

    // A Null loan is refused by the table; a Null key updates nothing; a Null user holds
    // no permission.
    EXPECT_EQ(RaisedKind([&] {
                  insert({null, 1, 5.0, day, u""_s, day, u""_s});
              }),
              KavError::Kind::Database);
    EXPECT_EQ(RunEmulatedProcedure(s.db(), u"spHRLoanExceptionUpdate"_s,
                                   {null, 1, 1, day, u""_s, day, u""_s, 1.0}),
              0);
    EXPECT_EQ(row(id)[u"loanid"_s].toInt(), 7);
    EXPECT_EQ(RunEmulatedProcedure(s.db(), u"spVarekHasPermission"_s, {null, 111801}), 0);
}

TEST(Procedures, WrongCallsAndFailingStatementsRaise) {
    ScratchDb s;
    EXPECT_THROW(RunEmulatedProcedure(s.db(), u"spVarekHasPermission"_s, {1}), KavError);
    EXPECT_THROW(RunEmulatedProcedure(s.db(), u"spNoSuch"_s, {}), KavError);
    EXPECT_THROW(RunEmulatedProcedure(s.db(), u"spVarekHasPermission"_s, {u"x"_s, 1}), KavError);
    s.exec(u"drop table tblHRLoanException"_s);
    try {
        RunEmulatedProcedure(s.db(), u"spHRLoanExceptionNew"_s,
                             {1, 1, 1.0, QDate(), u""_s, QDate(), u""_s});
        FAIL() << "insert into a missing table succeeded";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_TRUE(e.message().contains(u"tblHRLoanException"_s)) << e.message().toStdString();
    }
}

}  // namespace

namespace {

// The same emulation through Qt's ODBC driver and the SQLite ODBC driver, the path a
// site without SQL Server takes when it names an ODBC driver.
TEST(Procedures, RunOverTheSqliteOdbcDriver) {
    if (!QSqlDatabase::isDriverAvailable(u"QODBC"_s)) GTEST_SKIP() << "no QODBC plugin";
    if (!kav::data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    ScratchDb s;  // creates the file and the schema
    const ConnectionTarget t = MapConnectionString(
        u"Provider=MSDASQL;Driver={SQLite3};Database="_s + s.file(), {u"SQLite3"_s}, {});
    ASSERT_EQ(t.kind, DatabaseKind::SQLite);
    {
        QSqlDatabase odbc = QSqlDatabase::addDatabase(t.qtDriver, u"odbc-procedures"_s);
        odbc.setDatabaseName(t.databaseName);
        ASSERT_TRUE(odbc.open()) << odbc.lastError().text().toStdString();
        const int id = RunEmulatedProcedure(
            odbc, u"spHRLoanExceptionNew"_s,
            {3, 4, 250000.0, QDate(2024, 3, 20), u"1403/01/01"_s, QDate(), u""_s});
        EXPECT_GT(id, 0);
        EXPECT_EQ(RunEmulatedProcedure(
                      odbc, u"spHRLoanExceptionUpdate"_s,
                      {id, 3, 4, QDate(2024, 3, 21), u"1403/01/02"_s, QDate(), u""_s, 1.0}),
                  0);
        EXPECT_EQ(RunEmulatedProcedure(odbc, u"spVarekHasPermission"_s, {1, 111801}), 0);
        odbc.close();
    }
    QSqlDatabase::removeDatabase(u"odbc-procedures"_s);
    EXPECT_EQ(
        s.scalar(u"select FarsiBeginDate || ' ' || BeginDate from tblHRLoanException"_s).toString(),
        u"1403/01/02 2024-03-21"_s);
}

}  // namespace
