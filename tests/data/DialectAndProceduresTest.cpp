#include <gtest/gtest.h>

#include <QDateTime>
#include <QSettings>
#include <QTemporaryDir>

#include "base/Errors.h"
#include "data/PayslipColumns.h"
#include "data/Procedures.h"
#include "data/SqlDialect.h"
#include "support/Raises.h"
#include "support/TestDatabase.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using kav::test::CheckedTsql;
using kav::test::RaisedKind;
using namespace kav::data;
using ScratchDb = kav::test::TestDatabase;

namespace {

const SqlDialect kServer(DatabaseKind::SqlServer);
const SqlDialect kLite(DatabaseKind::SQLite);

TEST(SqlDialect, DiffersOnlyWhereSqliteCannotRunTheTsql) {
    const QDate d(2024, 3, 20);
    EXPECT_EQ(kServer.dateText(d) + u' ' + kLite.dateText(d), u"20240320 2024-03-20"_s);
    EXPECT_EQ(kServer.dateText({}) + u' ' + kLite.dateText({}), u"19000101 1900-01-01"_s);
    EXPECT_EQ(kLite.dateText(QDate(987, 1, 2)), u"0987-01-02"_s);
    EXPECT_EQ(kServer.deleteFrom(u"tblHRLoan"_s) + u'/' + kLite.deleteFrom(u"tblHRLoan"_s),
              u"delete tblHRLoan/delete from tblHRLoan"_s);
    EXPECT_EQ(kServer.concatOperator() + kServer.isNullFunction(), u"+IsNull"_s);
    EXPECT_EQ(kLite.concatOperator() + kLite.isNullFunction(), u"||IfNull"_s);
    EXPECT_EQ(kServer.typedText(u"O'B \u06CC"_s) + u' ' + kLite.typedText(u"O'B \u06CC"_s),
              u"N'O''B \u06CC' 'O''B \u06CC'"_s);
}

TEST(PayslipColumns, NamesRoundTripThroughTheSettingsAndMonthsReadInTheirForm) {
    QTemporaryDir dir;
    QSettings settings(dir.filePath(u"s.conf"_s), QSettings::IniFormat);
    const PayslipColumns named{u"PersonID"_s, u"Month"_s, u"yyyy-mm"_s, u"Amount"_s};
    named.Store(settings);
    EXPECT_EQ(PayslipColumns::FromSettings(settings), named);
    PayslipColumns{}.Store(settings);  // the defaults keep nothing
    EXPECT_EQ(settings.allKeys(), QStringList());
    for (const auto& [key, value] : {std::pair{u"MonthForm"_s, u"mm/yy"_s},
                                     std::pair{u"PaidColumn"_s, u"Paid; drop table x"_s}}) {
        settings.setValue(u"Payslip/"_s + key, value);
        EXPECT_EQ(kav::test::RaisedKind([&] { PayslipColumns::FromSettings(settings); }),
                  KavError::Kind::Usage);
        settings.remove(u"Payslip/"_s + key);
    }

    const int mehr1403 = 1403 * 12 + 6;
    const PayslipColumns slash, number{{}, {}, u"yyyymm"_s, {}};
    for (const QVariant& v : {QVariant(u"1403/07"_s), QVariant(u"۱۴۰۳/۰۷"_s),
                              QVariant(u"1403/07/15"_s)})
        EXPECT_EQ(slash.MonthNumber(v), mehr1403) << v.toString().toStdString();
    EXPECT_EQ(number.MonthNumber(140307), mehr1403);
    for (const QVariant& v : {QVariant(u"1403/13"_s), QVariant(u"140307"_s), QVariant()})
        EXPECT_EQ(slash.MonthNumber(v), std::nullopt) << v.toString().toStdString();
    EXPECT_EQ(number.MonthText(mehr1403) + u' ' + named.MonthText(mehr1403), u"140307 1403-07"_s);
}

TEST(SqlDialect, ReadsDatesBackFromEveryDriverShape) {
    const QDate d(2024, 3, 20);
    for (const QVariant& v : {QVariant(QDateTime(d, QTime(13, 5))), QVariant(u"2024-03-20"_s),
                              QVariant(u"2024-03-20 00:00:00.000"_s), QVariant(u"20240320"_s)})
        EXPECT_EQ(SqlDialect::readDate(v), d) << v.toString().toStdString();
    // Nothing, and a Persian date text, are no Gregorian date.
    for (const QVariant& v : {QVariant(), QVariant(u""_s), QVariant(u"1403/01/01"_s)})
        EXPECT_FALSE(SqlDialect::readDate(v).isValid()) << v.toString().toStdString();
}

// A write is serialised among clients: an explicit transaction, then an application lock
// owned by it whose return code comes back as the one row of the text.
TEST(SqlDialect, SerialisedTransactionTexts) {
    EXPECT_EQ(CheckedTsql(kServer.beginSerialised(u"KAVHRLoan"_s)),
              u"SET NOCOUNT ON; BEGIN TRANSACTION; DECLARE @LockResult int; EXEC @LockResult = "
              u"sp_getapplock @Resource = N'KAVHRLoan', @LockMode = 'Exclusive', @LockOwner = "
              u"'Transaction', @LockTimeout = 5000; SELECT @LockResult AS LockResult"_s);
    EXPECT_TRUE(
        CheckedTsql(kServer.beginSerialised(u"O'Loan"_s)).contains(u"@Resource = N'O''Loan'"_s));
    EXPECT_EQ(CheckedTsql(kServer.commitTransaction()), u"COMMIT TRANSACTION"_s);
    EXPECT_EQ(CheckedTsql(kServer.rollbackTransaction()),
              u"IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"_s);
    EXPECT_TRUE(kServer.beginReturnsLockResult());
    EXPECT_EQ(kLite.beginSerialised(u"KAVHRLoan"_s), u"BEGIN IMMEDIATE"_s);
    EXPECT_EQ(kLite.commitTransaction(), u"COMMIT"_s);
    EXPECT_EQ(kLite.rollbackTransaction(), u"ROLLBACK"_s);
    EXPECT_FALSE(kLite.beginReturnsLockResult());
    // Any other statement that meets a lock on SQL Server waits as long, then fails as busy.
    EXPECT_EQ(CheckedTsql(kServer.lockTimeout()), u"SET LOCK_TIMEOUT 5000"_s);
    EXPECT_EQ(kLite.lockTimeout(), QString());
}

// The parameters in calling order (the script is compared with them) and the call texts.
TEST(Procedures, AreDeclaredWithTheirParametersInCallingOrder) {
    EXPECT_EQ(LoanExceptionNewProcedure().parameters.join(u' '),
              u"@LoanID @EmployeeID @MonthlyDebit @BeginDate @FarsiBeginDate @EndDate "
              u"@FarsiEndDate"_s);
    EXPECT_EQ(LoanExceptionUpdateProcedure().parameters.join(u' '),
              u"@ID @LoanID @EmployeeID @BeginDate @FarsiBeginDate @EndDate @FarsiEndDate "
              u"@MonthlyDebit"_s);
    EXPECT_EQ(OdbcCallText(HasPermissionProcedure()),
              u"{? = CALL dbo.spVarekHasPermission( ?, ?) }"_s);
    EXPECT_EQ(OdbcCallText(LoanExceptionNewProcedure()),
              u"{? = CALL dbo.spHRLoanExceptionNew( ?, ?, ?, ?, ?, ?, ?) }"_s);
}

class Emulated : public ::testing::Test {
protected:
    int run(const QString& procedure, const QVariantList& params) {
        return RunEmulatedProcedure(s.db(), procedure, params);
    }
    int insert(const QVariantList& params) { return run(u"spHRLoanExceptionNew"_s, params); }
    QStringList row(int id) {
        return s.table(
            u"select LoanID, EmployeeID, MonthlyDebit, BeginDate, FarsiBeginDate, "
            u"EndDate, FarsiEndDate from tblHRLoanException where ID=%1"_s.arg(id));
    }
    ScratchDb s;
    const QDate day{2024, 3, 20};
};

// Each value is taken as SQL Server takes it for the parameter's type: what SQL Server
// refuses is refused, and Null is stored where the suite's procedures store it.
TEST_F(Emulated, ParametersConvertAsOnSqlServer) {
    using Kind = KavError::Kind;
    const QVariant null;
    const std::pair<QVariantList, Kind> refused[] = {
        {{1, 1, 5.0, u"abc"_s, u""_s, day, u""_s}, Kind::TypeMismatch},
        {{1, 1, 5.0, u"1403/01/01"_s, u""_s, day, u""_s}, Kind::TypeMismatch},
        {{1, 1, 5.0, 7, u""_s, day, u""_s}, Kind::TypeMismatch},
        {{1, 1, u"12x"_s, day, u""_s, day, u""_s}, Kind::TypeMismatch},
        {{u"1.5"_s, 1, 5.0, day, u""_s, day, u""_s}, Kind::TypeMismatch},
        {{1, 1, 1e16, day, u""_s, day, u""_s}, Kind::Overflow},
        {{null, 1, 5.0, day, u""_s, day, u""_s}, Kind::Database},  // the table refuses it
    };
    for (const auto& [params, kind] : refused)
        EXPECT_EQ(RaisedKind([&] { insert(params); }), kind) << params[3].toString().toStdString();
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanException"_s).toInt(), 0);
    // A fraction is cut, as int takes it; a Persian date text is cut to nvarchar(10).
    const int id = insert({u"7"_s, 8.9, null, null, null, u"2024-06-20"_s, u"1403/03/31 extra"_s});
    EXPECT_EQ(row(id), QStringList{u"7|8|NULL|1900-01-01||2024-06-20|1403/03/31"_s});
    // Empty texts are what SQL Server makes of them: 1900-01-01 and 0.
    EXPECT_EQ(
        run(u"spHRLoanExceptionUpdate"_s, {id, 7, 8, u""_s, u"1403/01/01"_s, day, u"x"_s, u""_s}),
        0);
    EXPECT_EQ(row(id), QStringList{u"7|8|0|1900-01-01|1403/01/01|2024-03-20|x"_s});
    // A Null key updates nothing.
    EXPECT_EQ(run(u"spHRLoanExceptionUpdate"_s, {null, 1, 1, day, u""_s, day, u""_s, 1.0}), 0);
    EXPECT_EQ(row(id), QStringList{u"7|8|0|1900-01-01|1403/01/01|2024-03-20|x"_s});
}

// The name may carry its schema and any case, as on SQL Server; a Null user holds nothing.
TEST_F(Emulated, NamesWrongCallsAndFailingStatements) {
    s.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s);
    EXPECT_EQ(run(u"dbo.SPVAREKHASPERMISSION"_s, {1, 111801}), 1);
    EXPECT_EQ(run(u"spVarekHasPermission"_s, {QVariant(), 111801}), 0);
    EXPECT_THROW(run(u"spVarekHasPermission"_s, {1}), KavError);
    EXPECT_THROW(run(u"spNoSuch"_s, {}), KavError);
    EXPECT_THROW(run(u"spVarekHasPermission"_s, {u"x"_s, 1}), KavError);
    s.exec(u"drop table tblHRLoanException"_s);
    try {
        insert({1, 1, 1.0, QDate(), u""_s, QDate(), u""_s});
        ADD_FAILURE() << "insert into a missing table succeeded";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_TRUE(e.message().contains(u"tblHRLoanException"_s)) << e.message().toStdString();
    }
}

}  // namespace
