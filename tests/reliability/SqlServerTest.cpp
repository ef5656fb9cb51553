// SQL Server, when KAVHRLOAN_TEST_SQLSERVER names one: the data layer, saving (the serialised
// save among two clients included), deleting and searching, on a scratch database set up from
// the module's T-SQL script. Without a server those tests are skipped with one line saying so.
// The setup itself is tested everywhere: the script splits into its batches, the batches run
// in order, the skip works and a server that is not there fails clearly.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUuid>
#include <atomic>
#include <iostream>
#include <memory>
#include <thread>

#include "SqlServerScratch.h"
#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/EmbeddedSchema.h"
#include "loan_editor/LoanSave.h"
#include "search/SearchSql.h"
#include "session/DataEnvironment.h"
#include "session/Module.h"
#include "support/QtPrinters.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

const QString kSkipLine =
    u"KAVHRLOAN_TEST_SQLSERVER is not set: the SQL Server tests are skipped"_s;

class SqlServer : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (SqlServerConnection().isEmpty()) {
            std::cout << "[ skipped  ] " << kSkipLine.toStdString() << "\n";
            return;
        }
        try {
            scratch_ = std::make_unique<ScratchDatabase>(SqlServerConnection());
        } catch (const KavError& e) {
            setupError_ = e.message();
        }
    }
    static void TearDownTestSuite() { scratch_.reset(); }

    void SetUp() override {
        if (SqlServerConnection().isEmpty()) GTEST_SKIP();
        ASSERT_TRUE(scratch_) << "the scratch database could not be set up: "
                              << setupError_.toStdString();
        module_ = std::make_unique<Module>();
        module_->session.SessionConnectionString = scratch_->connectionString();
        module_->OpenSessionConnection();
        for (const QString& table :
             {u"tblHRLoanDetail"_s, u"tblHRLoan"_s, u"tblHRLoanException"_s, u"tblEmployee"_s,
              u"tblHRLoanType"_s, u"tblVarekUserPermission"_s})
            cnt().Execute(u"delete "_s + table);
    }
    void TearDown() override { module_.reset(); }

    Connection& cnt() { return module_->DtEn().cnt(); }
    QStringList column(const QString& sql) {
        Recordset rs(cnt());
        rs.Open(sql);
        QStringList values;
        for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
            values << (rs.IsNull(u"v"_s) ? u"<null>"_s : rs.Fields(u"v"_s).toString());
        return values;
    }
    static loan_save::LoanRecord loan(bool isFinal, const QString& notes,
                                      std::initializer_list<const char16_t*> members) {
        loan_save::LoanRecord l;
        l.isFinal = isFinal;
        l.typeId = 1;
        l.payDate = QDate(2024, 3, 25);
        l.farsiPayDate = u"1403/01/06"_s;
        l.beginDate = QDate(2024, 4, 19);
        l.farsiBeginDate = u"1403/01/31"_s;
        l.endDate = QDate(2025, 3, 20);
        l.farsiEndDate = u"1403/12/30"_s;
        l.loanValue = u"12500000"_s;
        l.monthlyValue = u"1041666"_s;
        l.payBackNumber = u"12"_s;
        l.notes = notes;
        for (const char16_t* m : members)
            l.members.append({QString::fromUtf16(m), {u"null"_s, u"null"_s, u"null"_s}});
        return l;
    }

    static inline std::unique_ptr<ScratchDatabase> scratch_;
    static inline QString setupError_;
    std::unique_ptr<Module> module_;
};

}  // namespace

TEST_F(SqlServer, TheDataLayerReadsWritesAndCallsTheProcedures) {
    cnt().Execute(
        u"insert into tblEmployee (Code, FirstName, SureName, WorkStatusID) values "
        "(N'1001', N'علي', N'رضايي', 1), (N'1002', N'', N'احمدي', 1), "
        "(N'1003', NULL, N'کريمي', 3)"_s);
    Recordset rs(cnt());
    rs.Open(u"select ID, FirstName from tblEmployee order by ID"_s);
    ASSERT_EQ(rs.RecordCount(), 3);
    rs.MoveFirst();
    EXPECT_EQ(rs.Fields(u"FIRSTNAME"_s).toString(), u"علي"_s);
    rs.MoveNext();
    EXPECT_FALSE(rs.IsNull(u"firstname"_s));
    rs.MoveNext();
    EXPECT_TRUE(rs.IsNull(u"FirstName"_s));
    try {
        cnt().Execute(u"insert into tblNoSuchTable values (1)"_s);
        ADD_FAILURE() << "no error";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_TRUE(e.message().contains(u"tblNoSuchTable"_s)) << e.message().toStdString();
    }

    cnt().Execute(
        u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (7, 111801)"_s);
    module_->session.SessionUserID = 7;
    EXPECT_TRUE(module_->HasPermission(111801));
    EXPECT_FALSE(module_->HasPermission(111802));
    DataEnvironment& env = module_->DtEn();
    const int id = env.spHRLoanExceptionNew(5, 1, 1500, QDate(2024, 3, 20), u"1403/01/01"_s,
                                            QDate(), QString());
    EXPECT_GT(id, 0);
    env.spHRLoanExceptionUpdate(id, 5, 1, QDate(2024, 4, 20), u"1403/02/01"_s, QDate(2024, 5, 21),
                                u"1403/02/31"_s, 1750);
    EXPECT_EQ(column(u"select MonthlyDebit as v from tblHRLoanException where ID=%1"_s.arg(id)),
              QStringList{u"1750"_s});
}

TEST_F(SqlServer, SavingAndDeletingWriteAllOrNothingAndNumberInOrder) {
    const qint32 first =
        loan_save::WriteLoan(cnt(), loan(true, u"O'Brien وام"_s, {u"12", u"40"}), std::nullopt);
    const qint32 second = loan_save::WriteLoan(cnt(), loan(true, u"دوم"_s, {u"12"}), std::nullopt);
    EXPECT_EQ(column(u"select Code as v from tblHRLoan order by ID"_s),
              (QStringList{u"1"_s, u"2"_s}));
    EXPECT_EQ(column(u"select Notes as v from tblHRLoan where ID=%1"_s.arg(first)),
              QStringList{u"O'Brien وام"_s});
    EXPECT_EQ(
        column(u"select EmployeeID as v from tblHRLoanDetail where LoanID=%1 order by ID"_s.arg(
            first)),
        (QStringList{u"12"_s, u"40"_s}));
    loan_save::WriteLoan(cnt(), loan(false, u"موقت"_s, {u"12"}), first);
    EXPECT_EQ(column(u"select Code as v from tblHRLoan where ID=%1"_s.arg(first)),
              QStringList{u"<null>"_s});

    // A member insert the server refuses: the new header goes too.
    cnt().Execute(
        u"CREATE TRIGGER refuse ON tblHRLoanDetail AFTER INSERT AS "
        "THROW 50000, 'member insert refused', 1;"_s);
    try {
        loan_save::WriteLoan(cnt(), loan(true, u"x"_s, {u"3"}), std::nullopt);
        ADD_FAILURE() << "saved";
    } catch (const KavError& e) {
        EXPECT_TRUE(e.message().contains(u"member insert refused"_s)) << e.message().toStdString();
    }
    cnt().Execute(u"DROP TRIGGER refuse"_s);
    EXPECT_EQ(column(u"select count(*) as v from tblHRLoan"_s), QStringList{u"2"_s});

    const data::SqlDialect server(data::DatabaseKind::SqlServer);
    loan_save::RunWrites(cnt(), {loan_save::BackToTemporary(second)});
    EXPECT_EQ(column(u"select Code as v from tblHRLoan where ID=%1"_s.arg(second)),
              QStringList{u"<null>"_s});
    loan_save::RunWrites(cnt(), loan_save::DeleteLoan(server, first));
    EXPECT_EQ(column(u"select count(*) as v from tblHRLoanDetail where LoanID=%1"_s.arg(first)),
              QStringList{u"0"_s});
    EXPECT_EQ(column(u"select ID as v from tblHRLoan"_s), QStringList{QString::number(second)});
}

TEST_F(SqlServer, TwoClientsSavingAtOnceGetDistinctGapFreeCodes) {
    constexpr int kSaves = 20;
    std::atomic<int> failures = 0;
    auto client = [&](int tag) {
        Connection own;  // opened on this thread
        own.SetConnectionString(scratch_->connectionString());
        for (int i = 1; i <= kSaves; ++i) {
            try {
                const QString member = QString::number(tag);
                loan_save::LoanRecord l = loan(true, u"%1:%2"_s.arg(tag).arg(i), {});
                l.members.append({member, {u"null"_s, u"null"_s, u"null"_s}});
                loan_save::WriteLoan(own, l, std::nullopt);
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
    QStringList expected;
    for (int c = 1; c <= 2 * kSaves; ++c) expected << QString::number(c);
    EXPECT_EQ(column(u"select Code as v from tblHRLoan order by Code"_s), expected);
    EXPECT_EQ(column(u"select count(*) as v from tblHRLoan l join tblHRLoanDetail d on d.LoanID "
                     "= l.ID where l.Notes like cast(d.EmployeeID as nvarchar(10)) + ':%'"_s),
              QStringList{QString::number(2 * kSaves)});
}

TEST_F(SqlServer, TheSearchFindsByItsCriteria) {
    cnt().Execute(
        u"insert into tblEmployee (Code, FirstName, SureName) values "
        "(N'12', N'علي', N'رضايي'), (N'40', N'مريم', N'احمدي')"_s);
    const QStringList ids = column(u"select ID as v from tblEmployee order by ID"_s);
    loan_save::LoanRecord quoted = loan(true, u"وام 'ويژه'"_s, {});
    quoted.members.append({ids[0], {ids[1], u"null"_s, u"null"_s}});
    const qint32 found = loan_save::WriteLoan(cnt(), quoted, std::nullopt);
    loan_save::LoanRecord other = loan(false, u"ديگر"_s, {});
    other.loanValue = u"900"_s;
    other.members.append({ids[1], {u"null"_s, u"null"_s, u"null"_s}});
    loan_save::WriteLoan(cnt(), other, std::nullopt);

    const data::SqlDialect server(data::DatabaseKind::SqlServer);
    search::SearchCriteria c;
    c.notes = u"'ويژه'"_s;
    c.loanValueFrom = u"۱۰۰۰"_s;
    c.tempSave = false;
    c.supporterId = ids[1].toInt();
    c.beginDateFrom = u"1403/01/31"_s;
    QString sql = CheckedTsql(search::SearchQuery(server, c));
    EXPECT_EQ(column(sql.replace(u"Select *,"_s, u"Select ID as v,"_s)),
              QStringList{QString::number(found)});
}

// ---- The setup, tested everywhere ----

TEST(SqlServerSetup, TheScriptSplitsIntoItsBatchesInOrder) {
    const QString script =
        u"SET NOCOUNT ON;\n"
        "GO\n"
        "-- a comment\n"
        "/* GO inside\n"
        "GO\n"
        "a comment */\n"
        "create table t (n int);\n"
        "  go  \n"
        "insert into t values (1);\n"
        "GO 2\n"
        "EXEC('select ''\n"
        "GO\n"
        "'' as text');\n"
        "GOTO done;\n"
        "go\r\n"
        "-- only a comment\n"
        "GO\n"
        "select [GO\n"
        "GO] from t\n"_s;
    EXPECT_EQ(
        SplitBatches(script),
        (QStringList{u"SET NOCOUNT ON;"_s,
                     u"-- a comment\n/* GO inside\nGO\na comment */\ncreate table t (n int);"_s,
                     u"insert into t values (1);"_s, u"insert into t values (1);"_s,
                     u"EXEC('select ''\nGO\n'' as text');\nGOTO done;"_s,
                     u"select [GO\nGO] from t"_s}));

    // The module's own script: every object created in a batch of its own, tables before the
    // views that read them and the procedures last, and every batch parses as T-SQL.
    QFile file(data::SqlServerSchemaScriptPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList batches = SplitBatches(QString::fromUtf8(file.readAll()));
    ASSERT_EQ(batches.size(), 19);
    auto batchOf = [&](const QString& object) {
        for (qsizetype i = 0; i < batches.size(); ++i)
            if (batches[i].contains(u"OBJECT_ID(N'dbo."_s + object + u"'"_s)) return int(i);
        return -1;
    };
    EXPECT_EQ(batchOf(u"tblHRLoanType"_s), 1);
    EXPECT_EQ(batchOf(u"tblHRLoan"_s), 2);
    EXPECT_LT(batchOf(u"tblEmployee"_s), batchOf(u"vwHRLoanData"_s));
    EXPECT_LT(batchOf(u"vwHRLoanData"_s), batchOf(u"spHRLoanExceptionNew"_s));
    for (const QString& batch : batches) {
        EXPECT_FALSE(batch.contains(
            QRegularExpression(u"^\\s*GO\\s*$"_s, QRegularExpression::MultilineOption)));
        CheckedTsql(batch);
    }
}

TEST(SqlServerSetup, BatchesRunInOrderAndStopAtTheFirstRefused) {
    if (!data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    QTemporaryDir dir;
    const QString name = u"batches-"_s + QUuid::createUuid().toString();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QODBC"_s, name);
        db.setDatabaseName(u"Driver=SQLite3;Database="_s + dir.filePath(u"b.db"_s));
        ASSERT_TRUE(db.open());
        RunBatches(db, SplitBatches(u"create table t (n int)\nGO\ninsert into t values (1)\nGO 2\n"
                                    "insert into t select max(n) * 10 from t\ngo\n"_s));
        try {
            RunBatches(db, SplitBatches(u"insert into t values (2)\nGO\ninsert into missing "
                                        "values (3)\nGO\ninsert into t values (4)\n"_s));
            ADD_FAILURE() << "no batch refused";
        } catch (const KavError& e) {
            EXPECT_TRUE(e.message().startsWith(
                u"batch 2 of 3 («insert into missing values (3)») was refused: "_s))
                << e.message().toStdString();
        }
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec(u"select n from t order by rowid"_s));
        QStringList rows;
        while (q.next()) rows << q.value(0).toString();
        EXPECT_EQ(rows, (QStringList{u"1"_s, u"1"_s, u"10"_s, u"2"_s}));
    }
    QSqlDatabase::removeDatabase(name);
}

namespace {

struct ServerRun {
    int code = -1;
    QString out;
};

// This program again, only the SQL Server tests, with the variable as given.
ServerRun runServerTests(const QString& server) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(u"KAVHRLOAN_TEST_SQLSERVER"_s);
    if (!server.isEmpty()) env.insert(u"KAVHRLOAN_TEST_SQLSERVER"_s, server);
    env.insert(u"KAV_TSQL_CHECK"_s, u"/nonexistent"_s);  // this run checks no T-SQL
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QCoreApplication::applicationFilePath(), {u"--gtest_filter=SqlServer.*"_s});
    ServerRun r;
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAll());
    return r;
}

int unusedPort() {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
    socklen_t n = sizeof a;
    ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &n);
    ::close(s);
    return ntohs(a.sin_port);
}

}  // namespace

TEST(SqlServerSetup, WithoutAServerTheTestsAreSkippedWithOneLine) {
    const ServerRun r = runServerTests(QString());
    EXPECT_EQ(r.code, 0) << r.out.toStdString();
    EXPECT_EQ(r.out.count(kSkipLine), 1) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(u"[  SKIPPED ] 4 tests"_s)) << r.out.toStdString();
}

// A server named but not there: the tests fail (they do not pass by skipping), saying that
// the connection failed, without the password.
TEST(SqlServerSetup, AServerThatIsNotThereFailsClearly) {
    const ServerRun r = runServerTests(
        u"Provider=SQLOLEDB;Data Source=127.0.0.1,%1;Initial Catalog=master;User ID=sa;"
        "Password=Secr3t-Value"_s.arg(unusedPort()));
    EXPECT_NE(r.code, 0);
    EXPECT_TRUE(r.out.contains(u"the scratch database could not be set up: SQL Server: "_s))
        << r.out.toStdString();
    EXPECT_FALSE(r.out.contains(u"Secr3t-Value"_s));
    EXPECT_FALSE(r.out.contains(kSkipLine));
}
