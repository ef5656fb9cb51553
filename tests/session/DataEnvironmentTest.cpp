#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <functional>
#include <optional>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "session/DataEnvironment.h"
#include "session/Module.h"
#include "support/Raises.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

void fillEmployees(const test::TestDatabase& db) {
    db.exec(
        {u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
         u"(1, '101', 'علي', 'رضايي', 1), (2, '102', '', 'احمدي', 1), "
         u"(3, '103', NULL, 'کريمي', 3)"_s,
         u"insert into tblVarekUserPermission (UserID, FormPermissionID) values "
         u"(7, 111801), (7, 111803), (8, 111802)"_s});
}

// What a window reads, the same on every path: Null apart from empty, values of every kind by
// name and position, and a reader's texts (a fraction as CStr writes it).
void checkReading(Module& module) {
    Recordset& rs = module.DtEn().rs();
    rs.Open(u"select ID, FirstName, SureName from tblEmployee order by ID"_s);
    ASSERT_EQ(rs.RecordCount(), 3);
    QStringList seen;  // names asked in any case
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
        seen << rs.Fields(u"id"_s).toString() + u"|"_s +
                    (rs.IsNull(u"FirstName"_s) ? u"NULL"_s : rs.Fields(u"FIRSTNAME"_s).toString());
    EXPECT_EQ(seen, (QStringList{u"1|علي"_s, u"2|"_s, u"3|NULL"_s}));
    EXPECT_THROW(rs.Fields(u"ID"_s), KavError);
    rs.Open(u"select * from tblEmployee where ID = -5"_s);
    EXPECT_EQ(rs.RecordCount(), 0);
    EXPECT_TRUE(rs.EOF_());
    EXPECT_THROW(rs.Fields(u"NoSuchColumn"_s), KavError);

    const QString sql =
        u"select -42 as Whole, 1500.5 as Fraction, 1500.0 as Round, 'کاظم' as Name, '' as Blank, "
        u"NULL as Absent, 7 as whole"_s;
    Recordset values = module.DtEn().NewRecordset();
    values.Open(sql);
    const QVariantList expected = {qlonglong(-42), 1500.5, 1500.0, u"کاظم"_s, u""_s};
    for (int c = 0; c < 5; ++c) {
        EXPECT_EQ(values.Fields(c), expected[c]) << c;
        EXPECT_FALSE(values.IsNull(c)) << c;
    }
    EXPECT_TRUE(values.IsNull(u"ABSENT"_s));
    // Of two columns with one name the first wins, whatever case either is asked in.
    EXPECT_EQ(values.Fields(u"wHoLe"_s), QVariant(qlonglong(-42)));

    RowReader rows(module.DtEn().cnt(), sql);
    EXPECT_EQ(rows.FieldIndex(u"NAME"_s), 3);
    EXPECT_EQ(rows.FieldIndex(u"WHOLE"_s), 0);
    ASSERT_TRUE(rows.Next());
    const QByteArrayList texts = {"-42", "1500.5", "1500", "کاظم", "", "", "7"};
    for (int c = 0; c < 7; ++c) EXPECT_EQ(rows.Text(c).toByteArray(), texts[c]) << c;
    EXPECT_TRUE(rows.IsNull(5));
    EXPECT_FALSE(rows.IsNull(4));
    EXPECT_FALSE(rows.Next());
    try {
        rows.FieldIndex(u"Missing"_s);
        ADD_FAILURE() << "found a missing column";
    } catch (const KavError& e) {
        EXPECT_EQ(e.message(), u"ستون «Missing» در نتيجه پرس و جو وجود ندارد."_s);
    }
}

// The role check and the two adjustment procedures, each argument landing in its column.
void checkStoredCommands(Module& module, const test::TestDatabase& db) {
    struct Role {
        qint16 user;
        qint32 permission;
        bool has;
    };
    // Neither the user alone nor the permission alone decides.
    for (const Role& r : {Role{7, 111801, true}, Role{7, 111802, false}, Role{8, 111801, false},
                          Role{8, 111802, true}}) {
        module.session.SessionUserID = r.user;
        EXPECT_EQ(module.HasPermission(r.permission), r.has) << r.user << " " << r.permission;
    }
    DataEnvironment& env = module.DtEn();
    const int first = env.spHRLoanExceptionNew(5, 1, 1500, QDate(2024, 3, 20), u"1403/01/01"_s,
                                               QDate(), QString());
    const int second = env.spHRLoanExceptionNew(6, 2, 2000, QDate(2024, 3, 21), u"1403/01/02"_s,
                                                QDate(2024, 9, 21), u"1403/06/31"_s);
    EXPECT_GT(second, first);
    env.spHRLoanExceptionUpdate(first, 9, 3, QDate(2024, 4, 20), u"1403/02/01"_s, QDate(), u""_s,
                                1750);
    // An empty date, as the adjustment window sends it, is stored as 1900-01-01 and an empty
    // (not Null) Persian text.
    const QString rows =
        u"select LoanID, EmployeeID, MonthlyDebit, BeginDate, FarsiBeginDate, "
        u"EndDate, FarsiEndDate from tblHRLoanException order by ID"_s;
    EXPECT_EQ(db.table(rows),
              (QStringList{u"9|3|1750|2024-04-20|1403/02/01|1900-01-01|"_s,
                           u"6|2|2000|2024-03-21|1403/01/02|2024-09-21|1403/06/31"_s}));
    // A deleted last row's key is not handed out again.
    db.exec(u"delete from tblHRLoanException where ID=%1"_s.arg(second));
    EXPECT_GT(env.spHRLoanExceptionNew(5, 1, 1, QDate(), QString(), QDate(), QString()), second);
}

// A serialised transaction begins; rolled back it leaves nothing, committed it stands.
void checkRollbackAndCommit(Connection& cnt, const test::TestDatabase& db) {
    const QString count = u"select count(*) from tblHRLoanType"_s;
    const int before = db.scalar(count).toInt();
    for (const bool commit : {false, true}) {
        cnt.BeginSerialised(u"KAVHRLoan"_s);
        cnt.Execute(u"insert into tblHRLoanType (Name) values ('x')"_s);
        commit ? cnt.Commit() : cnt.Rollback();
        EXPECT_EQ(db.scalar(count).toInt(), before + int(commit)) << commit;
    }
}

}  // namespace

// On the embedded database the connection's statements, Qt SQL's and the readers' all run on
// one handle: a row written inside a transaction is seen by the others before the commit.
TEST(DataEnvironment, ReadsRunsStoredCommandsAndTransactions) {
    test::TestModule t;
    fillEmployees(t.db);
    checkReading(t.module);
    checkStoredCommands(t.module, t.db);
    Connection& cnt = t.module.DtEn().cnt();
    checkRollbackAndCommit(cnt, t.db);
    ASSERT_TRUE(cnt.RunsOnSqlite());
    cnt.BeginSerialised(u"KAVHRLoan"_s);
    cnt.Execute(u"delete from tblEmployee where ID=3"_s);
    QSqlQuery q(cnt.Database());
    ASSERT_TRUE(q.exec(u"select count(*) from tblEmployee"_s) && q.next());
    EXPECT_EQ(q.value(0).toInt(), 2);
    q.finish();
    RowReader rows(cnt, u"select count(*) as n from tblEmployee"_s);
    ASSERT_TRUE(rows.Next());
    EXPECT_EQ(rows.Text(0).toByteArray(), "2");
    cnt.Rollback();
    EXPECT_EQ(t.db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 3);
}

// The ODBC path, with the SQLite ODBC driver standing in for the suite's server.
TEST(DataEnvironment, RunsThroughOdbcWithTheSqliteDriver) {
    if (!data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    test::TestDatabase db;
    fillEmployees(db);
    Module module;
    module.session.SessionConnectionString = u"Driver=SQLite3;Database="_s + db.file();
    module.OpenSessionConnection();
    EXPECT_EQ(module.DtEn().cnt().Database().driverName(), u"QODBC"_s);
    EXPECT_TRUE(module.DtEn().Dialect().kind() == data::DatabaseKind::SQLite &&
                !module.DtEn().cnt().RunsOnSqlite());
    checkReading(module);
    checkStoredCommands(module, db);
    checkRollbackAndCommit(module.DtEn().cnt(), db);
    EXPECT_THROW(module.DtEn().cnt().Execute(u"delete from tblNoSuch"_s), KavError);
}

// A data source of odbc.ini (here a private one) connects under either name, with the dialect
// of the driver it names; a database held by another client is waited for about as long as on
// the embedded path, then reported busy in the same words.
TEST(DataEnvironment, AnOdbcDataSourceConnectsAndWaitsForABusyDatabaseAsLongAsTheEmbeddedPath) {
    if (!data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    test::TestDatabase db;
    fillEmployees(db);
    QTemporaryDir dir;
    QFile ini(dir.filePath(u"odbc.ini"_s));
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write("[Loans]\nDriver=SQLite3\nDatabase=" + db.file().toUtf8() + "\n");
    ini.close();
    const QByteArray old = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.fileName().toLocal8Bit());
    for (const QString& cs : {u"Provider=MSDASQL;Data Source=Loans"_s, u"DSN=Loans"_s}) {
        SCOPED_TRACE(cs.toStdString());
        Module module;
        module.session.SessionConnectionString = cs;
        module.OpenSessionConnection();
        checkReading(module);
        Connection& cnt = module.DtEn().cnt();
        EXPECT_EQ(cnt.Kind(), data::DatabaseKind::SQLite);
        if (cs.startsWith(u"DSN"_s)) {
            ASSERT_TRUE(db.exec(u"BEGIN IMMEDIATE"_s));  // the other client
            QElapsedTimer waited;
            waited.start();
            try {
                cnt.BeginSerialised(u"KAVHRLoan"_s);
                ADD_FAILURE() << "not busy";
            } catch (const KavError& e) {
                EXPECT_EQ(e.kind(), KavError::Kind::Busy);
                EXPECT_TRUE(e.message().startsWith(
                    u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ چند لحظه بعد دوباره تلاش "
                    u"کنيد.\n\u2066"_s))
                    << e.message().toStdString();
            }
            EXPECT_GE(waited.elapsed(), 4000);
            EXPECT_LT(waited.elapsed(), 8000);
            ASSERT_TRUE(db.exec(u"ROLLBACK"_s));
            checkRollbackAndCommit(cnt, db);  // free again, and nothing was left open
        }
    }
    old.isNull() ? qunsetenv("ODBCINI") : qputenv("ODBCINI", old);
}

// Closing finishes a reader left open, so another client can take the file whole; opening,
// writing and closing never switch the file's journal mode.
TEST(DataEnvironment, ClosingLetsTheFileGoAsItWas) {
    for (const QString& mode : {u"delete"_s, u"wal"_s}) {
        test::TestModule t;
        fillEmployees(t.db);
        ASSERT_EQ(t.db.scalar(u"PRAGMA journal_mode="_s + mode).toString(), mode);
        Connection& cnt = t.module.DtEn().cnt();
        WriteTransaction tx(cnt, u"KAVHRLoan"_s);
        cnt.Execute(u"delete from tblEmployee where ID=3"_s);
        tx.Commit();
        RowReader rows(cnt, u"select ID from tblEmployee order by ID"_s);
        ASSERT_TRUE(rows.Next());
        cnt.Close();
        EXPECT_FALSE(rows.Next());
        EXPECT_TRUE(t.db.exec(u"BEGIN EXCLUSIVE"_s));
        EXPECT_TRUE(t.db.exec(u"ROLLBACK"_s));
        EXPECT_EQ(t.db.scalar(u"PRAGMA journal_mode"_s).toString(), mode);
        Recordset rs(cnt);  // the connection opens again on use
        rs.Open(u"select count(*) as n from tblEmployee"_s);
        EXPECT_EQ(rs.Fields(u"n"_s).toInt(), 2);
    }
}

// The driver's own text stands on a line of its own, isolated left to right, also when the
// rows fail while read and when another client holds the database (the busy message).
TEST(DataEnvironment, FailingStatementsCarryTheDriversTextOnItsOwnLine) {
    test::TestModule t;
    Connection& cnt = t.module.DtEn().cnt();
    const QString overflow = u"select abs(-9223372036854775807 - 1) as x"_s;
    const QString noTable = u"خطاي پايگاه داده:\n\u2066no such table: tblNoSuchTable\u2069"_s;
    const QString overflowed = u"خطاي پايگاه داده:\n\u2066integer overflow\u2069"_s;
    using Kind = KavError::Kind;
    struct Case {
        std::function<void()> run;
        Kind kind;
        QString message;
    };
    const Case cases[] = {
        {[&] { cnt.Execute(u"insert into tblNoSuchTable values (1)"_s); }, Kind::Database, noTable},
        {[&] { t.module.DtEn().rs().Open(u"select * from tblNoSuchTable"_s); }, Kind::Database,
         noTable},
        {[&] { RowReader(cnt, overflow).Next(); }, Kind::Database, overflowed},
        {[&] { t.module.DtEn().rs().Open(overflow); }, Kind::Database, overflowed},
        {[&] {
             ASSERT_TRUE(t.db.exec(u"BEGIN IMMEDIATE"_s));  // the other client
             cnt.BeginSerialised(u"KAVHRLoan"_s);
         },
         Kind::Busy,
         u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ چند لحظه بعد دوباره تلاش "
         u"کنيد.\n\u2066database is locked\u2069"_s},
    };
    t.module.DtEn().rs().Open(u"select 1"_s);  // a failing Open closes what was open
    for (const Case& c : cases) {
        try {
            c.run();
            ADD_FAILURE() << "no error";
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), c.kind);
            EXPECT_EQ(e.message(), c.message);
        }
    }
    EXPECT_FALSE(t.module.DtEn().rs().IsOpen());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    ASSERT_TRUE(t.db.exec(u"ROLLBACK"_s));
    checkRollbackAndCommit(cnt, t.db);  // free again, and no transaction was left open
}

// A COMMIT the database refuses (here a deferred foreign key) leaves nothing written and no
// transaction open, whether the caller rolls back or not.
TEST(DataEnvironment, ARefusedCommitRollsBack) {
    test::TestModule t;
    t.db.exec({u"create table parent (id integer primary key)"_s,
               u"create table child (id integer, parent integer references parent(id) "
               u"deferrable initially deferred)"_s});
    Connection& cnt = t.module.DtEn().cnt();
    cnt.Execute(u"PRAGMA foreign_keys = ON"_s);
    for (const bool throughWriteTransaction : {false, true}) {
        EXPECT_EQ(test::RaisedKind([&] {
                      std::optional<WriteTransaction> tx;
                      if (throughWriteTransaction)
                          tx.emplace(cnt, u"KAVHRLoan"_s);
                      else
                          cnt.BeginSerialised(u"KAVHRLoan"_s);
                      cnt.Execute(u"insert into child values (1, 99)"_s);
                      throughWriteTransaction ? tx->Commit() : cnt.Commit();
                  }),
                  KavError::Kind::Database);
        EXPECT_EQ(t.db.scalar(u"select count(*) from child"_s).toInt(), 0);
        checkRollbackAndCommit(cnt, t.db);  // no transaction was left open
    }
}

// Each entry call points a fresh data environment at the session's connection string; one
// that names no database that opens fails on use as a connection error.
TEST(DataEnvironment, OpenSessionConnectionRepointsTheEnvironment) {
    test::TestModule t;
    fillEmployees(t.db);
    test::TestDatabase other;
    other.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values (9, '9', 'x', 'y')"_s);
    t.module.DtEn().rs().Open(u"select count(*) as n from tblEmployee"_s);
    t.module.session.SessionConnectionString = other.connectionString();
    t.module.OpenSessionConnection();
    EXPECT_EQ(t.module.DtEn().cnt().ConnectionString(), other.connectionString());
    Recordset& after = t.module.DtEn().rs();
    EXPECT_FALSE(after.IsOpen());  // a fresh environment, fresh recordsets
    after.Open(u"select count(*) as n from tblEmployee"_s);
    EXPECT_EQ(after.Fields(u"n"_s).toInt(), 1);
    for (const QString& cs : {u"0"_s, QString(), u"Provider=Nonsense;Data Source=x"_s,
                              u"Provider=SQLite;Data Source=/no/such/dir/x.db"_s}) {
        t.module.session.SessionConnectionString = cs;
        t.module.OpenSessionConnection();
        EXPECT_EQ(test::RaisedKind([&] { t.module.DtEn().rs().Open(u"select 1"_s); }),
                  KavError::Kind::Connection)
            << cs.toStdString();
    }
}
