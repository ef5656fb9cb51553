#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using namespace kav::data;

namespace {

const QStringList kFreeTdsOnly{u"FreeTDS"_s, u"SQLite3"_s};
const QStringList kMicrosoft{u"FreeTDS"_s, u"ODBC Driver 17 for SQL Server"_s,
                             u"ODBC Driver 18 for SQL Server"_s};

// Each string gives the Qt driver, what it opens and the dialect, written here as
// "driver|database|S" (S for SQL Server, L for SQLite). Drivers installed: F FreeTDS only,
// M FreeTDS and Microsoft's 17 and 18, 7 FreeTDS and 17.
TEST(ConnectionString, GivesTheQtDriverTheOdbcStringAndTheDialect) {
    const std::tuple<QString, char, QString> cases[] = {
        // FreeTDS with a local server, quoted values, keys in any case; a named instance kept
        {u"Provider=SQLOLEDB.1;Persist Security Info=False;User ID=sa;PASSWORD='p;w''d';"
         u"Initial Catalog=Payroll;data source=."_s,
         'F',
         u"QODBC|Driver={FreeTDS};Server=127.0.0.1;Database=Payroll;UID=sa;PWD={p;w'd};"
         u"TDS_Version=7.4;ClientCharset=UTF-8|S"_s},
        {u"Provider=SQLNCLI11;Data Source=(local)\\SQLEXPRESS;Initial Catalog=HR;"
         u"Integrated Security=SSPI"_s,
         'F',
         u"QODBC|Driver={FreeTDS};Server=127.0.0.1\\SQLEXPRESS;Database=HR;"
         u"Trusted_Connection=yes;TDS_Version=7.4;ClientCharset=UTF-8|S"_s},
        // Microsoft's newest driver first, trusting the certificate as OLE DB did
        {u"Provider=MSOLEDBSQL;Server=db01,1433;Database=HR;UID=u;PWD=x"_s, 'M',
         u"QODBC|Driver={ODBC Driver 18 for SQL Server};Server=db01,1433;Database=HR;UID=u;"
         u"PWD=x;TrustServerCertificate=yes|S"_s},
        {u"Provider=SQLOLEDB;Data Source=.;Initial Catalog=HR;Integrated Security=true"_s, '7',
         u"QODBC|Driver={ODBC Driver 17 for SQL Server};Server=localhost;Database=HR;"
         u"Trusted_Connection=yes|S"_s},
        {u"Provider=SQLite;Data Source=/tmp/a b/loans.db"_s, 'F', u"QSQLITE|/tmp/a b/loans.db|L"_s},
        {u"provider=sqlite; data source=\"C:\\x;y.db\""_s, 'F', u"QSQLITE|C:\\x;y.db|L"_s},
        {u"Provider=MSDASQL;Driver={SQLite3};Database=/tmp/l.db"_s, 'F',
         u"QODBC|Driver={SQLite3};Database=/tmp/l.db;Timeout=2500;NoCreat=1|L"_s},
        {u"Driver={FreeTDS};Server=db05;Port=1433;Database=HR"_s, 'F',
         u"QODBC|Driver={FreeTDS};Server=db05;Port=1433;Database=HR;ClientCharset=UTF-8|S"_s},
        {u"Provider=MSDASQL.1;Data Source=PayrollDsn"_s, 'F', u"QODBC|DSN=PayrollDsn|S"_s},
        // The SQLite driver waits as the embedded path does and makes no file; FreeTDS speaks
        // UTF-8; a data source is served by the driver its odbc.ini section names.
        {u"Driver=SQLite3;Database=/tmp/l.db;Timeout=100"_s, 'F',
         u"QODBC|Driver={SQLite3};Database=/tmp/l.db;Timeout=100;NoCreat=1|L"_s},
        {u"Provider=MSDASQL;UID=u;Data Source=LocalLoans"_s, 'F',
         u"QODBC|DSN=LocalLoans;UID=u;Timeout=2500;NoCreat=1|L"_s},
        {u"DSN=Payroll;Database=HR"_s, 'F',
         u"QODBC|DSN=Payroll;Database=HR;ClientCharset=UTF-8|S"_s},
        {u"DSN=Other"_s, 'F', u"QODBC|DSN=Other|S"_s},
        // Encryption in each driver's words; Microsoft's 18 trusts the certificate unless
        // encryption is asked for, as the OLE DB providers did.
        {u"Provider=SQLOLEDB;Data Source=db;Use Encryption for Data=True"_s, 'F',
         u"QODBC|Driver={FreeTDS};Server=db;TDS_Version=7.4;ClientCharset=UTF-8;"
         u"Encryption=require|S"_s},
        {u"Provider=MSOLEDBSQL;Data Source=db;Use Encryption for Data=Optional"_s, 'F',
         u"QODBC|Driver={FreeTDS};Server=db;TDS_Version=7.4;ClientCharset=UTF-8;"
         u"Encryption=request|S"_s},
        {u"Provider=SQLOLEDB;Data Source=db;Encrypt=no"_s, 'F',
         u"QODBC|Driver={FreeTDS};Server=db;TDS_Version=7.4;ClientCharset=UTF-8;"
         u"Encryption=off|S"_s},
        {u"Provider=SQLOLEDB;Data Source=db;Use Encryption for Data=True"_s, 'M',
         u"QODBC|Driver={ODBC Driver 18 for SQL Server};Server=db;Encrypt=yes|S"_s},
        {u"Provider=MSOLEDBSQL;Data Source=db;Encrypt=Strict;Trust Server Certificate=False"_s, 'M',
         u"QODBC|Driver={ODBC Driver 18 for SQL Server};Server=db;Encrypt=strict;"
         u"TrustServerCertificate=no|S"_s},
        {u"Provider=SQLOLEDB;Data Source=db;Use Encryption for Data=False"_s, 'M',
         u"QODBC|Driver={ODBC Driver 18 for SQL Server};Server=db;Encrypt=no;"
         u"TrustServerCertificate=yes|S"_s},
        {u"Provider=SQLOLEDB;Data Source=db;Encrypt=yes;TrustServerCertificate=true"_s, '7',
         u"QODBC|Driver={ODBC Driver 17 for SQL Server};Server=db;Encrypt=yes;"
         u"TrustServerCertificate=yes|S"_s},
    };
    const QHash<QString, QString> dataSources{{u"localloans"_s, u"SQLite3"_s},
                                              {u"Payroll"_s, u"FreeTDS"_s}};
    const auto target = [](const ConnectionTarget& t) {
        return t.qtDriver + u'|' + t.databaseName + u'|' +
               (t.kind == DatabaseKind::SQLite ? u'L' : u'S');
    };
    for (const auto& [oleDb, installed, expected] : cases)
        EXPECT_EQ(target(MapConnectionString(oleDb,
                                             installed == 'F'   ? kFreeTdsOnly
                                             : installed == 'M' ? kMicrosoft
                                                                : kMicrosoft.mid(0, 2),
                                             {}, dataSources)),
                  expected);
    // The override names the driver whatever is installed.
    EXPECT_EQ(target(MapConnectionString(
                  u"Provider=SQLOLEDB;Data Source=srv;Initial Catalog=HR;User ID=a;Password=b"_s,
                  kMicrosoft, u" {FreeTDS} "_s)),
              u"QODBC|Driver={FreeTDS};Server=srv;Database=HR;UID=a;PWD=b;TDS_Version=7.4;"
              u"ClientCharset=UTF-8|S"_s);
}

// A string that cannot be mapped raises a connection error naming the problem.
TEST(ConnectionString, RefusesWhatItCannotMapNamingTheProblem) {
    struct Bad {
        QString oleDb, mustMention;
    };
    for (const Bad& c :
         {Bad{u"0"_s, u"«0»"_s},  // the control's initial value
          Bad{u""_s, u"خالي"_s},
          Bad{u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=a.mdb"_s,
              u"Microsoft.Jet.OLEDB.4.0"_s},
          Bad{u"Provider=SQLite"_s, u"Data Source"_s},
          Bad{u"Provider=SQLite;Data Source="_s, u"Data Source"_s},
          Bad{u"Provider=SQLOLEDB;Initial Catalog=HR"_s, u"Data Source"_s},
          Bad{u"Data Source=.;Initial Catalog=HR"_s, u"Provider"_s},
          Bad{u"Provider=SQLite;Data Source='unclosed.db"_s, u"Data Source"_s},
          Bad{u"Provider=SQLite;garbage;Data Source=x.db"_s, u"garbage"_s},
          Bad{u"Provider=MSDASQL;UID=x"_s, u"Driver"_s},
          // Encryption a driver cannot honour is never dropped.
          Bad{u"Provider=MSOLEDBSQL;Data Source=db;Encrypt=strict"_s, u"Strict"_s},
          Bad{u"Provider=SQLOLEDB;Data Source=db;Encrypt=always"_s, u"always"_s},
          Bad{u"Provider=SQLOLEDB;Data Source=db;Trust Server Certificate=maybe"_s, u"maybe"_s}}) {
        try {
            MapConnectionString(c.oleDb, kFreeTdsOnly, {});
            ADD_FAILURE() << "accepted: " << c.oleDb.toStdString();
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Connection);
            EXPECT_TRUE(e.message().contains(c.mustMention))
                << e.message().toStdString() << " lacks " << c.mustMention.toStdString();
        }
    }
}

// Qt's ODBC driver puts "DSN=" in front of a string that names neither a driver nor a server.
TEST(ConnectionString, QtIsHandedADataSourceWithoutItsKey) {
    EXPECT_EQ(QodbcDatabaseName(u"DSN=Payroll;UID=u"_s), u"Payroll;UID=u"_s);
    EXPECT_EQ(QodbcDatabaseName(u"DSN=Payroll;Server=db"_s), u"DSN=Payroll;Server=db"_s);
    EXPECT_EQ(QodbcDatabaseName(u"Driver={SQLite3};Database=a"_s),
              u"Driver={SQLite3};Database=a"_s);
    // Strict needs Microsoft's driver 18: 17 refuses it too.
    EXPECT_THROW(MapConnectionString(u"Provider=MSOLEDBSQL;Data Source=db;Encrypt=strict"_s,
                                     kMicrosoft.mid(0, 2), {}),
                 KavError);
}

// The drivers of odbcinst.ini, and the data sources of the system's odbc.ini and the user's,
// which wins.
TEST(ConnectionString, ReadsTheDriversAndDataSourcesUnixOdbcKnows) {
    QTemporaryDir dir;
    const auto write = [&](const QString& name, const QByteArray& text) {
        QFile ini(dir.filePath(name));
        ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write(text);
    };
    write(u"odbcinst.ini"_s,
          "[ODBC]\nTrace=No\n\n[FreeTDS]\nDriver=libtdsodbc.so\n\n"
          "[ODBC Driver 18 for SQL Server]\nDriver=/opt/msodbcsql18/lib64/x.so\n");
    write(u"odbc.ini"_s,
          "[ODBC Data Sources]\nPayroll=x\n\n[Payroll]\nDriver=FreeTDS\nServer=db\n\n"
          "[Local]\nDriver=SQLite3\n");
    write(u"user.ini"_s, "[Payroll]\nDriver=ODBC Driver 18 for SQL Server\n");
    const QByteArray oldSys = qgetenv("ODBCSYSINI"), oldUser = qgetenv("ODBCINI");
    qputenv("ODBCSYSINI", dir.path().toLocal8Bit());
    qputenv("ODBCINI", dir.filePath(u"user.ini"_s).toLocal8Bit());
    const QStringList drivers = InstalledOdbcDrivers();
    const QHash<QString, QString> sources = OdbcDataSources();
    oldSys.isNull() ? qunsetenv("ODBCSYSINI") : qputenv("ODBCSYSINI", oldSys);
    oldUser.isNull() ? qunsetenv("ODBCINI") : qputenv("ODBCINI", oldUser);
    EXPECT_EQ(drivers, (QStringList{u"FreeTDS"_s, u"ODBC Driver 18 for SQL Server"_s}));
    EXPECT_EQ(sources, (QHash<QString, QString>{{u"Payroll"_s, u"ODBC Driver 18 for SQL Server"_s},
                                                {u"Local"_s, u"SQLite3"_s}}));
}

}  // namespace
