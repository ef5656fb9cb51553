#include <gtest/gtest.h>

#include <QCalendar>
#include <QDate>
#include <QFile>
#include <QGuiApplication>
#include <QSqlQuery>
#include <functional>
#include <vector>

#include "base/Errors.h"
#include "data/DemoData.h"
#include "session/DataEnvironment.h"
#include "session/Module.h"
#include "support/QtPrinters.h"
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

// Values of every kind read the same through a recordset, by name and by position, and
// through a reader, whose texts are what the windows show: a fraction as CStr writes it.
void checkValuesOfEveryKind(Module& module) {
    const QString sql =
        u"select -42 as Whole, 1500.5 as Fraction, 1500.0 as Round, 'کاظم' as Name, '' as Blank, "
        u"NULL as Absent, 7 as whole"_s;
    Recordset rs = module.DtEn().NewRecordset();
    rs.Open(sql);
    ASSERT_EQ(rs.RecordCount(), 1);
    const QVariantList expected = {qlonglong(-42), 1500.5, 1500.0, u"کاظم"_s, u""_s};
    for (int c = 0; c < 5; ++c) {
        EXPECT_EQ(rs.Fields(c), expected[c]) << c;
        // ODBC drivers choose their own integer widths; the embedded path is Qt SQL's.
        if (module.DtEn().cnt().RunsOnSqlite()) {
            EXPECT_EQ(rs.Fields(c).typeId(), expected[c].typeId()) << c;
        }
        EXPECT_FALSE(rs.IsNull(c)) << c;
    }
    EXPECT_TRUE(rs.IsNull(5));
    EXPECT_TRUE(rs.IsNull(u"ABSENT"_s));
    // Of two columns with one name the first wins, whatever case either is asked in.
    for (const QString& name : {u"whole"_s, u"WHOLE"_s, u"Whole"_s, u"whole"_s})
        EXPECT_EQ(rs.FieldIndex(name), 0) << name.toStdString();
    EXPECT_EQ(rs.Fields(u"wHoLe"_s), QVariant(qlonglong(-42)));

    RowReader rows(module.DtEn().cnt(), sql);
    EXPECT_EQ(rows.FieldCount(), 7);
    EXPECT_EQ(rows.FieldIndex(u"NAME"_s), 3);
    EXPECT_THROW(rows.Text(0), KavError);  // no row yet
    ASSERT_TRUE(rows.Next());
    const QByteArrayList texts = {"-42", "1500.5", "1500", "کاظم", "", "", "7"};
    for (int c = 0; c < 7; ++c) EXPECT_EQ(rows.Text(c).toByteArray(), texts[c]) << c;
    EXPECT_EQ(rows.Fields(1), QVariant(1500.5));
    EXPECT_TRUE(rows.IsNull(5));
    EXPECT_FALSE(rows.IsNull(4));
    EXPECT_FALSE(rows.Next());
    EXPECT_EQ(rows.RowsRead(), 1);
    EXPECT_THROW(rows.Fields(0), KavError);
    try {
        rows.FieldIndex(u"Missing"_s);
        ADD_FAILURE() << "found a missing column";
    } catch (const KavError& e) {
        EXPECT_EQ(e.message(), u"ستون «Missing» در نتيجه پرس و جو وجود ندارد."_s);
    }
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
    checkValuesOfEveryKind(t.module);
}

// The connection's statements, Qt SQL's and the readers' all run on one handle: a row
// written inside a transaction is seen by the others before it is committed.
TEST(DataEnvironment, OneConnectionOneHandle) {
    test::TestModule t;
    fillEmployees(t.db);
    Connection& cnt = t.module.DtEn().cnt();
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

// Opening a database, reading and writing it never switches its journal: a site's file keeps
// the mode it has, the rollback journal or a write-ahead log.
TEST(DataEnvironment, AnOpenedDatabaseKeepsItsJournalMode) {
    for (const QString& mode : {u"delete"_s, u"wal"_s}) {
        test::TestModule t;
        fillEmployees(t.db);
        ASSERT_EQ(t.db.scalar(u"PRAGMA journal_mode="_s + mode).toString(), mode);
        Connection& cnt = t.module.DtEn().cnt();
        WriteTransaction tx(cnt, u"KAVHRLoan"_s);
        cnt.Execute(u"delete from tblEmployee where ID=3"_s);
        tx.Commit();
        Recordset rs(cnt);
        rs.Open(u"PRAGMA journal_mode"_s);
        EXPECT_EQ(rs.Fields(0).toString(), mode);
        cnt.Close();
        EXPECT_EQ(t.db.scalar(u"PRAGMA journal_mode"_s).toString(), mode);
    }
}

// A reader left open when its connection closes is finished, so the file is let go: another
// client can take it whole, and the reader reads no further.
TEST(DataEnvironment, ClosingTheConnectionFinishesOpenReaders) {
    test::TestModule t;
    fillEmployees(t.db);
    Connection& cnt = t.module.DtEn().cnt();
    RowReader rows(cnt, u"select ID from tblEmployee order by ID"_s);
    ASSERT_TRUE(rows.Next());
    cnt.Close();
    EXPECT_FALSE(rows.Next());
    EXPECT_TRUE(t.db.exec(u"BEGIN EXCLUSIVE"_s));
    EXPECT_TRUE(t.db.exec(u"ROLLBACK"_s));
    Recordset rs(cnt);  // the connection opens again on use
    rs.Open(u"select count(*) as n from tblEmployee"_s);
    EXPECT_EQ(rs.Fields(u"n"_s).toInt(), 3);
}

// A statement that fails while its rows are read (not when it is prepared) says so.
TEST(DataEnvironment, AFailureWhileReadingRowsCarriesTheDriversText) {
    test::TestModule t;
    const QString sql = u"select abs(-9223372036854775807 - 1) as x"_s;
    RowReader rows(t.module.DtEn().cnt(), sql);
    try {
        rows.Next();
        ADD_FAILURE() << "no error";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Database);
        EXPECT_EQ(e.message(), u"خطاي پايگاه داده:\n\u2066integer overflow\u2069"_s);
    }
    Recordset rs(t.module.DtEn().cnt());
    EXPECT_THROW(rs.Open(sql), KavError);
    EXPECT_FALSE(rs.IsOpen());
}

// The driver's own text stands on a line of its own, isolated left to right, so its colon
// and brackets stay where the driver put them inside the right-to-left message.
TEST(DataEnvironment, FailingStatementsCarryTheDriversTextOnItsOwnLine) {
    test::TestModule t;
    const QString expected = u"خطاي پايگاه داده:\n\u2066no such table: tblNoSuchTable\u2069"_s;
    for (const auto& run : std::vector<std::function<void()>>{
             [&] { t.module.DtEn().cnt().Execute(u"insert into tblNoSuchTable values (1)"_s); },
             [&] { t.module.DtEn().rs().Open(u"select * from tblNoSuchTable"_s); }}) {
        try {
            run();
            ADD_FAILURE() << "no error";
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Database);
            EXPECT_EQ(e.message(), expected);
        }
    }
}

// Another client holds the database: the wait ends in the busy message, the transaction is
// not left open, and the pointer is back to normal.
TEST(DataEnvironment, ABusyDatabaseSaysSoAfterWaiting) {
    test::TestModule t;
    ASSERT_TRUE(t.db.exec(u"BEGIN IMMEDIATE"_s));  // the other client
    Connection& cnt = t.module.DtEn().cnt();
    try {
        cnt.BeginSerialised(u"KAVHRLoan"_s);
        ADD_FAILURE() << "began while another client writes";
    } catch (const KavError& e) {
        EXPECT_EQ(e.kind(), KavError::Kind::Busy);
        EXPECT_EQ(e.message(),
                  u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ چند لحظه بعد دوباره تلاش "
                  u"کنيد.\n\u2066database is locked\u2069"_s);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    ASSERT_TRUE(t.db.exec(u"ROLLBACK"_s));
    cnt.BeginSerialised(u"KAVHRLoan"_s);  // free again
    cnt.Rollback();
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
        try {
            if (throughWriteTransaction) {
                WriteTransaction tx(cnt, u"KAVHRLoan"_s);
                cnt.Execute(u"insert into child values (1, 99)"_s);
                tx.Commit();
            } else {
                cnt.BeginSerialised(u"KAVHRLoan"_s);
                cnt.Execute(u"insert into child values (1, 99)"_s);
                cnt.Commit();
            }
            ADD_FAILURE() << "the commit went through";
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Database);
        }
        EXPECT_EQ(t.db.scalar(u"select count(*) from child"_s).toInt(), 0);
        // No transaction is left open: a new one begins; rolled back it leaves nothing, and
        // committed it stands.
        cnt.BeginSerialised(u"KAVHRLoan"_s);
        cnt.Execute(u"insert into parent values (1)"_s);
        cnt.Rollback();
        EXPECT_EQ(t.db.scalar(u"select count(*) from parent"_s).toInt(), 0);
        cnt.BeginSerialised(u"KAVHRLoan"_s);
        cnt.Execute(u"insert into parent values (1)"_s);
        cnt.Commit();
        EXPECT_EQ(t.db.scalar(u"select count(*) from parent"_s).toInt(), 1);
        cnt.Execute(u"delete from parent"_s);
    }
}

// Each entry call points a fresh data environment at the session's connection string.
TEST(DataEnvironment, OpenSessionConnectionRepointsTheEnvironment) {
    test::TestModule t;
    fillEmployees(t.db);
    test::TestDatabase other;
    other.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values (9, '9', 'x', 'y')"_s);
    Recordset& before = t.module.DtEn().rs();
    before.Open(u"select count(*) as n from tblEmployee"_s);
    EXPECT_EQ(before.Fields(u"n"_s).toInt(), 3);

    t.module.session.SessionConnectionString = other.connectionString();
    t.module.OpenSessionConnection();
    EXPECT_EQ(t.module.DtEn().cnt().ConnectionString(), other.connectionString());
    Recordset& after = t.module.DtEn().rs();
    EXPECT_FALSE(after.IsOpen());  // a fresh environment, fresh recordsets
    after.Open(u"select count(*) as n from tblEmployee"_s);
    EXPECT_EQ(after.Fields(u"n"_s).toInt(), 1);
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
    EXPECT_FALSE(module.DtEn().cnt().RunsOnSqlite());
    checkRecordsetNavigation(module);
    checkValuesOfEveryKind(module);
    EXPECT_TRUE(module.HasPermission(111801));
    EXPECT_FALSE(module.HasPermission(111802));
    Connection& cnt = module.DtEn().cnt();
    cnt.BeginSerialised(u"KAVHRLoan"_s);
    cnt.Execute(u"delete from tblEmployee where ID=3"_s);
    cnt.Rollback();
    EXPECT_EQ(db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 3);
    cnt.BeginSerialised(u"KAVHRLoan"_s);
    cnt.Execute(u"delete from tblEmployee where ID=3"_s);
    cnt.Commit();
    EXPECT_EQ(db.scalar(u"select count(*) from tblEmployee"_s).toInt(), 2);
    EXPECT_THROW(module.DtEn().cnt().Execute(u"delete from tblNoSuch"_s), KavError);
}
