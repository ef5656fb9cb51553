#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/ConnectionString.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using namespace kav::data;

namespace {

const QStringList kFreeTdsOnly{u"FreeTDS"_s, u"SQLite3"_s};
const QStringList kMicrosoft{u"FreeTDS"_s, u"ODBC Driver 17 for SQL Server"_s,
                             u"ODBC Driver 18 for SQL Server"_s};

struct Case {
    const char* what;
    QString oleDb;
    QStringList installed;
    QString override;
    QString driver;
    QString database;
    DatabaseKind kind;
};

class Mapping : public ::testing::TestWithParam<Case> {};

TEST_P(Mapping, GivesTheQtDriverTheOdbcStringAndTheDialect) {
    const Case& c = GetParam();
    const ConnectionTarget t = MapConnectionString(c.oleDb, c.installed, c.override);
    EXPECT_EQ(t.qtDriver, c.driver);
    EXPECT_EQ(t.databaseName, c.database);
    EXPECT_EQ(t.kind, c.kind);
}

INSTANTIATE_TEST_SUITE_P(
    ConnectionString, Mapping,
    ::testing::Values(
        Case{"FreeTDS with a local server, quoted values, keys in any case",
             u"Provider=SQLOLEDB.1;Persist Security Info=False;User ID=sa;PASSWORD='p;w''d';"
             u"Initial Catalog=Payroll;data source=."_s,
             kFreeTdsOnly,
             {},
             u"QODBC"_s,
             u"Driver={FreeTDS};Server=127.0.0.1;Database=Payroll;UID=sa;PWD={p;w'd};"
             u"TDS_Version=7.4;ClientCharset=UTF-8"_s,
             DatabaseKind::SqlServer},
        Case{"(local) with a named instance keeps the instance",
             u"Provider=SQLNCLI11;Data Source=(local)\\SQLEXPRESS;Initial Catalog=HR;"
             u"Integrated Security=SSPI"_s,
             kFreeTdsOnly,
             {},
             u"QODBC"_s,
             u"Driver={FreeTDS};Server=127.0.0.1\\SQLEXPRESS;Database=HR;Trusted_Connection=yes;"
             u"TDS_Version=7.4;ClientCharset=UTF-8"_s,
             DatabaseKind::SqlServer},
        Case{"Microsoft's driver 18 is preferred and trusts the certificate as OLE DB did",
             u"Provider=MSOLEDBSQL;Server=db01,1433;Database=HR;UID=u;PWD=x"_s,
             kMicrosoft,
             {},
             u"QODBC"_s,
             u"Driver={ODBC Driver 18 for SQL Server};Server=db01,1433;Database=HR;UID=u;PWD=x;"
             u"TrustServerCertificate=yes"_s,
             DatabaseKind::SqlServer},
        Case{"Integrated Security=true and a local server on Microsoft's driver 17",
             u"Provider=SQLOLEDB;Data Source=.;Initial Catalog=HR;Integrated Security=true"_s,
             QStringList{u"ODBC Driver 17 for SQL Server"_s},
             {},
             u"QODBC"_s,
             u"Driver={ODBC Driver 17 for SQL Server};Server=localhost;Database=HR;"
             u"Trusted_Connection=yes"_s,
             DatabaseKind::SqlServer},
        Case{"an override names the driver even when others are installed",
             u"Provider=SQLOLEDB;Data Source=srv;Initial Catalog=HR;User ID=a;Password=b"_s,
             kMicrosoft, u"{FreeTDS}"_s, u"QODBC"_s,
             u"Driver={FreeTDS};Server=srv;Database=HR;UID=a;PWD=b;TDS_Version=7.4;"
             u"ClientCharset=UTF-8"_s,
             DatabaseKind::SqlServer},
        Case{"the embedded database",
             u"Provider=SQLite;Data Source=/tmp/a b/loans.db"_s,
             {},
             {},
             u"QSQLITE"_s,
             u"/tmp/a b/loans.db"_s,
             DatabaseKind::SQLite},
        Case{"the embedded database with a quoted file name",
             u"provider=sqlite; data source=\"C:\\x;y.db\""_s,
             {},
             {},
             u"QSQLITE"_s,
             u"C:\\x;y.db"_s,
             DatabaseKind::SQLite},
        Case{"MSDASQL over the SQLite ODBC driver speaks SQLite",
             u"Provider=MSDASQL;Driver={SQLite3};Database=/tmp/l.db"_s,
             kFreeTdsOnly,
             {},
             u"QODBC"_s,
             u"Driver={SQLite3};Database=/tmp/l.db"_s,
             DatabaseKind::SQLite},
        Case{"a bare ODBC string to SQL Server",
             u"Driver={FreeTDS};Server=10.0.0.5;Port=1433;Database=HR"_s,
             kFreeTdsOnly,
             {},
             u"QODBC"_s,
             u"Driver={FreeTDS};Server=10.0.0.5;Port=1433;Database=HR"_s,
             DatabaseKind::SqlServer},
        Case{"MSDASQL with a data source name",
             u"Provider=MSDASQL.1;Data Source=PayrollDsn"_s,
             kFreeTdsOnly,
             {},
             u"QODBC"_s,
             u"DSN=PayrollDsn"_s,
             DatabaseKind::SqlServer}),
    [](const ::testing::TestParamInfo<Case>& info) { return "case" + std::to_string(info.index); });

struct BadCase {
    QString oleDb;
    QString mustMention;  // a word the message must contain
};

class Refused : public ::testing::TestWithParam<BadCase> {};

TEST_P(Refused, RaisesAConnectionErrorNamingTheProblem) {
    const BadCase& c = GetParam();
    try {
        MapConnectionString(c.oleDb, kFreeTdsOnly, {});
        FAIL() << "accepted: " << c.oleDb.toStdString();
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Connection);
        EXPECT_TRUE(e.message().contains(c.mustMention))
            << e.message().toStdString() << " lacks " << c.mustMention.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    ConnectionString, Refused,
    ::testing::Values(BadCase{u"0"_s, u"«0»"_s},  // the control's initial value
                      BadCase{u" 0 "_s, u"«0»"_s}, BadCase{u""_s, u"خالي"_s},
                      BadCase{u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=a.mdb"_s,
                              u"Microsoft.Jet.OLEDB.4.0"_s},
                      BadCase{u"Provider=SQLite"_s, u"Data Source"_s},
                      BadCase{u"Provider=SQLite;Data Source="_s, u"Data Source"_s},
                      BadCase{u"Provider=SQLOLEDB;Initial Catalog=HR"_s, u"Data Source"_s},
                      BadCase{u"Data Source=.;Initial Catalog=HR"_s, u"Provider"_s},
                      BadCase{u"Provider=SQLite;Data Source='unclosed.db"_s, u"Data Source"_s},
                      BadCase{u"Provider=SQLite;garbage;Data Source=x.db"_s, u"garbage"_s},
                      BadCase{u"Provider=MSDASQL;UID=x"_s, u"Driver"_s}));

TEST(ConnectionString, ChoosesMicrosoftsNewestDriverThenFreeTds) {
    EXPECT_EQ(ChooseSqlServerOdbcDriver(kMicrosoft, {}), u"ODBC Driver 18 for SQL Server"_s);
    EXPECT_EQ(ChooseSqlServerOdbcDriver({u"FreeTDS"_s, u"ODBC Driver 17 for SQL Server"_s}, {}),
              u"ODBC Driver 17 for SQL Server"_s);
    EXPECT_EQ(ChooseSqlServerOdbcDriver({u"SQLite3"_s}, {}), u"FreeTDS"_s);
    EXPECT_EQ(ChooseSqlServerOdbcDriver(kMicrosoft, u" FreeTDS "_s), u"FreeTDS"_s);
}

TEST(ConnectionString, ReadsTheDriverSectionsOfOdbcinstIni) {
    QTemporaryDir dir;
    QFile ini(dir.filePath(u"odbcinst.ini"_s));
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write(
        "[ODBC]\nTrace=No\n\n[FreeTDS]\nDriver=libtdsodbc.so\n\n"
        "[ODBC Driver 18 for SQL Server]\nDriver=/opt/msodbcsql18/lib64/x.so\n");
    ini.close();
    const QByteArray old = qgetenv("ODBCSYSINI");
    qputenv("ODBCSYSINI", dir.path().toLocal8Bit());
    const QStringList drivers = InstalledOdbcDrivers();
    if (old.isNull())
        qunsetenv("ODBCSYSINI");
    else
        qputenv("ODBCSYSINI", old);
    EXPECT_EQ(drivers, (QStringList{u"FreeTDS"_s, u"ODBC Driver 18 for SQL Server"_s}));
}

}  // namespace
