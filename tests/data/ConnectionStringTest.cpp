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
         u"QODBC|Driver={SQLite3};Database=/tmp/l.db|L"_s},
        {u"Driver={FreeTDS};Server=db05;Port=1433;Database=HR"_s, 'F',
         u"QODBC|Driver={FreeTDS};Server=db05;Port=1433;Database=HR|S"_s},
        {u"Provider=MSDASQL.1;Data Source=PayrollDsn"_s, 'F', u"QODBC|DSN=PayrollDsn|S"_s},
    };
    const auto target = [](const ConnectionTarget& t) {
        return t.qtDriver + u'|' + t.databaseName + u'|' +
               (t.kind == DatabaseKind::SQLite ? u'L' : u'S');
    };
    for (const auto& [oleDb, installed, expected] : cases)
        EXPECT_EQ(target(MapConnectionString(oleDb,
                                             installed == 'F'   ? kFreeTdsOnly
                                             : installed == 'M' ? kMicrosoft
                                                                : kMicrosoft.mid(0, 2),
                                             {})),
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
    for (const Bad& c : {Bad{u"0"_s, u"«0»"_s},  // the control's initial value
                         Bad{u""_s, u"خالي"_s},
                         Bad{u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=a.mdb"_s,
                             u"Microsoft.Jet.OLEDB.4.0"_s},
                         Bad{u"Provider=SQLite"_s, u"Data Source"_s},
                         Bad{u"Provider=SQLite;Data Source="_s, u"Data Source"_s},
                         Bad{u"Provider=SQLOLEDB;Initial Catalog=HR"_s, u"Data Source"_s},
                         Bad{u"Data Source=.;Initial Catalog=HR"_s, u"Provider"_s},
                         Bad{u"Provider=SQLite;Data Source='unclosed.db"_s, u"Data Source"_s},
                         Bad{u"Provider=SQLite;garbage;Data Source=x.db"_s, u"garbage"_s},
                         Bad{u"Provider=MSDASQL;UID=x"_s, u"Driver"_s}}) {
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
    old.isNull() ? qunsetenv("ODBCSYSINI") : qputenv("ODBCSYSINI", old);
    EXPECT_EQ(drivers, (QStringList{u"FreeTDS"_s, u"ODBC Driver 18 for SQL Server"_s}));
}

}  // namespace
