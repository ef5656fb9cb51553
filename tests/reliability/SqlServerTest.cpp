// SQL Server, when KAVHRLOAN_TEST_SQLSERVER holds an OLE DB connection string for a login that
// may create databases: the data layer, saving, deleting and searching on a scratch database
// made from the module's script. Without a server they are skipped with one line.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <atomic>
#include <iostream>
#include <thread>

#include "AppRun.h"
#include "LoanVersions.h"
#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DriverError.h"
#include "data/EmbeddedSchema.h"
#include "search/SearchSql.h"
#include "session/Module.h"
#include "support/QtPrinters.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using kav::reliability::TaggedLoan;

namespace {

QString serverConnection() { return qEnvironmentVariable("KAVHRLOAN_TEST_SQLSERVER").trimmed(); }

// The batches of the module's script: the text between the lines GO.
QStringList ModuleScript() {
    QFile file(data::SqlServerSchemaScriptPath());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    const QString script = QString::fromUtf8(file.readAll());
    QStringList batches;
    for (const QString& batch :
         script.split(QRegularExpression(u"^GO\\s*$"_s, QRegularExpression::MultilineOption)))
        if (!batch.trimmed().isEmpty()) batches << batch.trimmed();
    return batches;
}

// Runs the batches in order on the database an OLE DB string names; the first one refused
// stops the run with KavError naming it.
void RunBatches(const QString& oleDb, const QStringList& batches) {
    const data::ConnectionTarget target = data::MapConnectionString(oleDb);
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(target.qtDriver, u"scratch"_s);
        db.setDatabaseName(target.qtDriver == u"QODBC"
                               ? data::QodbcDatabaseName(target.databaseName)
                               : target.databaseName);
        if (!db.open())
            error = data::MaskPasswords(u"SQL Server: "_s + db.lastError().text(), oleDb);
        for (qsizetype i = 0; error.isEmpty() && i < batches.size(); ++i) {
            QSqlQuery q(db);
            if (!q.exec(batches[i]))
                error = u"batch %1 («%2») was refused: %3"_s.arg(i + 1).arg(
                    batches[i].section(u'\n', 0, 0), data::DriverText(q.lastError()));
        }
    }
    QSqlDatabase::removeDatabase(u"scratch"_s);
    if (!error.isEmpty()) throw KavError(KavError::Kind::Connection, error);
}

const QString kSkipLine =
    u"KAVHRLOAN_TEST_SQLSERVER is not set: the SQL Server tests are skipped"_s;

class SqlServer : public ::testing::Test {
protected:
    // A database made on the server for these tests, with a Persian site's collation and the
    // module's script run in it; dropped at the end (a name left behind says it is a test's).
    static void SetUpTestSuite() {
        if (serverConnection().isEmpty()) {
            std::cout << "[ skipped  ] " << kSkipLine.toStdString() << "\n";
            return;
        }
        scratch_ = u"KAVHRLoanTest_"_s + QUuid::createUuid().toString(QUuid::Id128).left(12);
        try {
            RunBatches(serverConnection(),
                       {u"CREATE DATABASE "_s + scratch_ + u" COLLATE Persian_100_CI_AI"_s});
            RunBatches(scratchConnection(), ModuleScript());
        } catch (const KavError& e) {
            setupError_ = e.message();
        }
    }
    static void TearDownTestSuite() try {
        if (!scratch_.isEmpty())
            RunBatches(serverConnection(), {u"ALTER DATABASE "_s + scratch_ +
                                                u" SET SINGLE_USER WITH ROLLBACK IMMEDIATE"_s,
                                            u"DROP DATABASE "_s + scratch_});
    } catch (const KavError&) {
    }
    // The last Initial Catalog of a connection string wins.
    static QString scratchConnection() {
        return serverConnection() + u";Initial Catalog="_s + scratch_;
    }

    void SetUp() override {
        if (serverConnection().isEmpty()) GTEST_SKIP();
        ASSERT_TRUE(setupError_.isEmpty())
            << "the scratch database could not be set up: " << setupError_.toStdString();
        module_.session.SessionConnectionString = scratchConnection();
        module_.OpenSessionConnection();
        for (const QString& table :
             {u"tblHRLoanDetail"_s, u"tblHRLoan"_s, u"tblHRLoanException"_s, u"tblEmployee"_s,
              u"tblHRLoanType"_s, u"tblVarekUserPermission"_s, u"tblHRLoanHistory"_s})
            cnt().Execute(u"delete "_s + table);
    }

    Connection& cnt() { return module_.DtEn().cnt(); }
    // The column v of every row.
    QStringList column(const QString& sql) {
        Recordset rs(cnt());
        rs.Open(sql);
        QStringList values;
        for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
            values << (rs.IsNull(u"v"_s) ? u"<null>"_s : rs.Fields(u"v"_s).toString());
        return values;
    }
    static inline QString scratch_, setupError_;
    Module module_;
};

}  // namespace

TEST_F(SqlServer, TheDataLayerReadsWritesCallsTheProceduresAndSearches) {
    cnt().Execute(
        u"insert into tblEmployee (Code, FirstName, SureName, WorkStatusID) values "
        "(N'1001', N'علي', N'رضايي', 1), (N'1002', N'', N'احمدي', 1), "
        "(N'1003', NULL, N'کريمي', 3)"_s);
    EXPECT_EQ(column(u"select FirstName as V from tblEmployee order by ID"_s),
              (QStringList{u"علي"_s, u""_s, u"<null>"_s}));
    try {
        cnt().Execute(u"insert into tblNoSuchTable values (1)"_s);
        ADD_FAILURE() << "no error";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_TRUE(e.message().contains(u"tblNoSuchTable"_s)) << e.message().toStdString();
    }
    cnt().Execute(
        u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (7, 111801)"_s);
    module_.session.SessionUserID = 7;
    EXPECT_TRUE(module_.HasPermission(111801));
    EXPECT_FALSE(module_.HasPermission(111802));
    DataEnvironment& env = module_.DtEn();
    const int id = env.spHRLoanExceptionNew(5, 1, 1500, QDate(2024, 3, 20), u"1403/01/01"_s,
                                            QDate(), QString());
    env.spHRLoanExceptionUpdate(id, 5, 1, QDate(2024, 4, 20), u"1403/02/01"_s, QDate(2024, 5, 21),
                                u"1403/02/31"_s, 1750);
    EXPECT_EQ(column(u"select MonthlyDebit as v from tblHRLoanException where ID=%1"_s.arg(id)),
              QStringList{u"1750"_s});

    const QStringList ids = column(u"select ID as v from tblEmployee order by ID"_s);
    loan_save::LoanRecord quoted = TaggedLoan(1, 1, 0), other = TaggedLoan(1, 2, 0);
    // Typed on a Persian keyboard: the Farsi yeh, Persian and Arabic-Indic digits, a quote.
    quoted.notes = u"وام 'ويژه' \u06A9\u0627\u0631\u0645\u0646\u062F\u06CC \u06F1\u06F4\u06F0\u06F3 \u0663\u0662"_s;
    quoted.loanValue = u"12500000"_s;
    quoted.members = {{ids[0], {ids[1], u"null"_s, u"null"_s}}};
    other.isFinal = false;
    other.members = {{ids[1], {u"null"_s, u"null"_s, u"null"_s}}};
    const qint32 found = loan_save::WriteLoan(cnt(), quoted, {});
    loan_save::WriteLoan(cnt(), other, {});

    EXPECT_EQ(column(u"select Notes as v from tblHRLoan where ID=%1"_s.arg(found)),
              QStringList{quoted.notes});

    search::SearchCriteria c;
    c.notes = u"'ويژه' \u06A9\u0627\u0631\u0645\u0646\u062F\u06CC \u06F1\u06F4"_s;
    c.loanValueFrom = u"۱۰۰۰"_s;
    c.tempSave = false;
    c.supporterId = ids[1].toInt();
    c.beginDateFrom = u"1403/01/31"_s;
    QString sql =
        CheckedTsql(search::SearchQuery(data::SqlDialect(data::DatabaseKind::SqlServer), c));
    EXPECT_EQ(column(sql.replace(u"Select *,"_s, u"Select ID as v,"_s)),
              QStringList{QString::number(found)});
}

TEST_F(SqlServer, SavingAndDeletingWriteAllOrNothingAndNumberInOrder) {
    loan_save::LoanRecord quoted = TaggedLoan(1, 1, 2);  // members 1000 and 1001
    quoted.notes = u"O'Brien وام"_s;
    const qint32 first = loan_save::WriteLoan(cnt(), quoted, {});
    const qint32 second = loan_save::WriteLoan(cnt(), TaggedLoan(2, 1, 1), {});
    EXPECT_EQ(
        column(u"select cast(Code as nvarchar) + ' ' + Notes as v from tblHRLoan order by ID"_s),
        (QStringList{u"1 O'Brien وام"_s, u"2 2:1"_s}));
    EXPECT_EQ(
        column(u"select EmployeeID as v from tblHRLoanDetail where LoanID=%1 order by ID"_s.arg(
            first)),
        (QStringList{u"1000"_s, u"1001"_s}));
    quoted.isFinal = false;
    loan_save::WriteLoan(cnt(), quoted, stored_loan::Expected{first, std::nullopt, true});
    EXPECT_EQ(column(u"select Code as v from tblHRLoan where ID=%1"_s.arg(first)),
              QStringList{u"<null>"_s});

    // Another program inserting a loan row at the same moment (a trigger here) never hands
    // the save its row.
    cnt().Execute(
        u"CREATE TRIGGER twin ON tblHRLoan AFTER INSERT AS IF NOT EXISTS (SELECT 1 FROM inserted "
        "WHERE Notes = N'other') INSERT INTO tblHRLoan (TypeID, Notes) VALUES (1, N'other');"_s);
    const qint32 third = loan_save::WriteLoan(cnt(), TaggedLoan(4, 1, 1), {});
    EXPECT_EQ(column(u"select Notes as v from tblHRLoan where ID=%1"_s.arg(third)),
              QStringList{u"4:1"_s});
    cnt().Execute(u"DROP TRIGGER twin"_s);
    loan_save::RunWrites(cnt(), {u"delete tblHRLoanDetail where LoanID=%1"_s.arg(third),
                                 u"delete tblHRLoan where ID >= %1"_s.arg(third)});

    // A member insert the server refuses: the new header goes too.
    cnt().Execute(
        u"CREATE TRIGGER refuse ON tblHRLoanDetail AFTER INSERT AS "
        "THROW 50000, 'member insert refused', 1;"_s);
    try {
        loan_save::WriteLoan(cnt(), TaggedLoan(3, 1, 1), std::nullopt);
        ADD_FAILURE() << "saved";
    } catch (const KavError& e) {
        EXPECT_TRUE(e.message().contains(u"member insert refused"_s)) << e.message().toStdString();
    }
    cnt().Execute(u"DROP TRIGGER refuse"_s);
    EXPECT_EQ(column(u"select count(*) as v from tblHRLoan"_s), QStringList{u"2"_s});

    loan_save::RunWrites(cnt(), {loan_save::BackToTemporary(second)});
    EXPECT_EQ(column(u"select Code as v from tblHRLoan where ID=%1"_s.arg(second)),
              QStringList{u"<null>"_s});
    loan_save::RunWrites(
        cnt(), loan_save::DeleteLoan(data::SqlDialect(data::DatabaseKind::SqlServer), first));
    EXPECT_EQ(column(u"select count(*) as v from tblHRLoanDetail where LoanID=%1"_s.arg(first)),
              QStringList{u"0"_s});
    EXPECT_EQ(column(u"select ID as v from tblHRLoan"_s), QStringList{QString::number(second)});
}

TEST_F(SqlServer, TwoClientsSavingAtOnceGetDistinctGapFreeCodes) {
    constexpr int kSaves = 20;
    std::atomic<int> failures = 0;
    auto client = [&](int tag) {
        Connection own;  // opened on this thread
        own.SetConnectionString(scratchConnection());
        for (int i = 1; i <= kSaves; ++i) {
            try {
                loan_save::WriteLoan(own, TaggedLoan(tag, i, 1), std::nullopt);
            } catch (const KavError& e) {
                ++failures;
                std::cerr << e.message().toStdString() << "\n";
            }
        }
    };
    std::thread a(client, 1), b(client, 2);
    a.join();
    b.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(column(u"select cast(count(distinct Code) as nvarchar) + ' ' + cast(min(Code) as "
                     "nvarchar) + ' ' + cast(max(Code) as nvarchar) as v from tblHRLoan"_s),
              QStringList{u"40 1 40"_s});
    EXPECT_EQ(
        column(u"select count(*) as v from tblHRLoan l join tblHRLoanDetail d on d.LoanID "
               "= l.ID where l.Notes like cast(d.EmployeeID / 1000 as nvarchar(10)) + ':%'"_s),
        QStringList{QString::number(2 * kSaves)});
}

// The database the module's script made has everything the module uses; only the working
// date, which the script does not set, is reduced.
TEST_F(SqlServer, TheDatabaseCheckFindsWhatTheScriptMade) {
    cnt().Execute(
        u"insert into tblVarekUserPermission (UserID, FormPermissionID) values "
        "(1, 111801), (1, 111802), (1, 111803)"_s);
    const AppOutcome o = AppHome().run(
        {u"--check-database"_s, u"--connection"_s, scratchConnection(), u"--user"_s, u"1"_s});
    EXPECT_EQ(o.code, 0) << o.err.toStdString();
    QStringList notPresent;
    for (const QString& line : o.out.split(u'\n', Qt::SkipEmptyParts))
        if (!line.startsWith(u"موجود: "_s) && !line.startsWith(u"پايگاه داده: "_s))
            notPresent << line;
    EXPECT_EQ(
        notPresent,
        (QStringList{
            u"محدود: پارامتر 3450 (تاريخ کاري سيستم) در tblVarekSystemParameters "
            u"نيست: پنجره وام تاريخ امروز را به کار مي‌برد"_s,
            u"اين پايگاه داده همه آنچه ماژول وام کارمندان نياز دارد را دارد؛ 1 مورد "
            u"محدود."_s}));
}

TEST(SqlServerSetup, TheModulesScriptHasItsObjectsInOrderAndEachBatchParses) {
    // Every object in a batch of its own, tables before the views that read them, the
    // procedures last.
    const QStringList batches = ModuleScript();
    ASSERT_EQ(batches.size(), 20);
    auto batchOf = [&](const QString& object) {
        for (qsizetype i = 0; i < batches.size(); ++i)
            if (batches[i].contains(u"OBJECT_ID(N'dbo."_s + object + u"'"_s)) return int(i);
        return -1;
    };
    EXPECT_EQ(batchOf(u"tblHRLoanType"_s), 1);
    EXPECT_EQ(batchOf(u"tblHRLoan"_s), 2);
    EXPECT_LT(batchOf(u"tblEmployee"_s), batchOf(u"vwHRLoanData"_s));
    EXPECT_LT(batchOf(u"vwHRLoanData"_s), batchOf(u"spHRLoanExceptionNew"_s));
    for (const QString& batch : batches) CheckedTsql(batch);
}

// This program again, only the SQL Server tests: without the variable they are skipped with
// one line; naming a server that is not there they fail (they do not pass by skipping),
// saying that the connection failed, without the password.
TEST(SqlServerSetup, WithoutAServerTheTestsSkipAndWithOneThatIsNotThereTheyFail) {
    for (const QString& server :
         {QString(),
          u"Provider=SQLOLEDB;Data Source=127.0.0.1,%1;Initial Catalog=master;"
          "User ID=sa;Password=Secr3t-Value"_s.arg(UnusedPort())}) {
        SCOPED_TRACE(server.toStdString());
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"KAVHRLOAN_TEST_SQLSERVER"_s, server);
        env.insert(u"KAV_TSQL_CHECK"_s, u"/nonexistent"_s);  // this run checks no T-SQL
        QProcess p;
        p.setProcessEnvironment(env);
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(QCoreApplication::applicationFilePath(), {u"--gtest_filter=SqlServer.*"_s});
        ASSERT_TRUE(p.waitForFinished(120000));
        const QString out = QString::fromUtf8(p.readAll());
        SCOPED_TRACE(out.toStdString());
        EXPECT_EQ(p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0, server.isEmpty());
        EXPECT_EQ(out.count(kSkipLine), server.isEmpty() ? 1 : 0);
        EXPECT_EQ(out.contains(u"[  SKIPPED ] 4 tests"_s), server.isEmpty());
        EXPECT_EQ(out.contains(u"the scratch database could not be set up: SQL Server: "_s),
                  !server.isEmpty());
        EXPECT_FALSE(out.contains(u"Secr3t-Value"_s));
    }
}
