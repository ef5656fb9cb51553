// The host application as a terminal runs it: its exit codes, what it says, what it stores.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>

#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

// Each test has a home of its own: settings, the demo database and nothing else go there.
class AppTest : public ::testing::Test {
protected:
    void SetUp() override {
        env = QProcessEnvironment::systemEnvironment();
        env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        env.insert(u"HOME"_s, home.path());
        env.insert(u"XDG_CONFIG_HOME"_s, home.filePath(u"config"_s));
        env.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
        QDir().mkpath(home.filePath(u"run"_s));
        QFile::setPermissions(home.filePath(u"run"_s),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        env.insert(u"XDG_RUNTIME_DIR"_s, home.filePath(u"run"_s));
    }
    Outcome run(const QStringList& args, const QProcessEnvironment& environment) {
        QProcess p;
        p.setProcessEnvironment(environment);
        p.start(QStringLiteral(KAVHRLOAN_BINARY), args);
        Outcome r;
        if (!p.waitForFinished(30000)) {
            p.kill();
            p.waitForFinished();
            ADD_FAILURE() << "kavhrloan did not finish: " << args.join(u' ').toStdString();
            return r;
        }
        r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        r.out = QString::fromUtf8(p.readAllStandardOutput());
        r.err = QString::fromUtf8(p.readAllStandardError());
        return r;
    }
    Outcome run(const QStringList& args) { return run(args, env); }
    QString settingsFile() const { return home.filePath(u"config/KAV/kavhrloan.conf"_s); }
    QString demoFile() const { return home.filePath(u"data/KAV/kavhrloan/kavhrloan-demo.db"_s); }
    QStringList storedKeys() const {
        QSettings s(settingsFile(), QSettings::IniFormat);
        return s.allKeys();
    }
    QTemporaryDir home;
    QProcessEnvironment env;
};

const QString kRefusal = u"شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s;

}  // namespace

TEST_F(AppTest, VersionAndHelpNeedNoDisplay) {
    QProcessEnvironment bare = env;
    for (const QString& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        bare.remove(name);
    const Outcome version = run({u"--version"_s}, bare);
    EXPECT_EQ(version.code, 0);
    EXPECT_TRUE(
        QRegularExpression(u"^kavhrloan \\d+\\.\\d+\\.\\d+\\n$"_s).match(version.out).hasMatch())
        << version.out.toStdString();
    const Outcome help = run({u"--help-all"_s}, bare);
    EXPECT_EQ(help.code, 0);
    for (const QString& option :
         {u"--connection"_s, u"--user"_s, u"--demo"_s, u"--reset-settings"_s})
        EXPECT_TRUE(help.out.contains(option)) << option.toStdString();
    EXPECT_TRUE(help.out.contains(settingsFile())) << help.out.toStdString();
    const Outcome window = run({}, bare);
    EXPECT_EQ(window.code, 2);
    EXPECT_TRUE(window.err.contains(u"no display"_s));
}

TEST_F(AppTest, ADatabaseThatDoesNotOpenExitsWithTwoAndStoresNothing) {
    const QString missing = home.filePath(u"nowhere/loans.db"_s);
    const Outcome r =
        run({u"--connection"_s, u"Provider=SQLite;Data Source="_s + missing, u"--user"_s, u"1"_s});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains(u"kavhrloan: فايل پايگاه داده «"_s + missing + u"» وجود ندارد."_s))
        << r.err.toStdString();
    EXPECT_EQ(storedKeys(), QStringList());
    const Outcome provider =
        run({u"--connection"_s, u"Provider=Nonsense;Data Source=x"_s, u"--user"_s, u"1"_s});
    EXPECT_EQ(provider.code, 2);
}

// The demo user is for the demo database only; another database needs its user named.
TEST_F(AppTest, AnotherDatabaseNeedsItsUserAndARefusedRoleExitsWithThree) {
    kav::test::TestDatabase db;
    db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s);
    const Outcome noUser = run({u"--connection"_s, db.connectionString()});
    EXPECT_EQ(noUser.code, 2);
    EXPECT_TRUE(noUser.err.contains(u"--user ID"_s)) << noUser.err.toStdString();

    const Outcome refused = run({u"--connection"_s, db.connectionString(), u"--user"_s, u"2"_s});
    EXPECT_EQ(refused.code, 3);
    EXPECT_TRUE(refused.err.contains(u"خطا: "_s + kRefusal)) << refused.err.toStdString();
    EXPECT_EQ(storedKeys(), QStringList());  // a refused start keeps nothing

    const Outcome badOption = run({u"--connection"_s, db.connectionString(), u"--user"_s, u"x1"_s});
    EXPECT_EQ(badOption.code, 2);
    EXPECT_TRUE(badOption.err.contains(u"--user: "_s)) << badOption.err.toStdString();
}

// A stored value that cannot be read stops the start with its name, unless an option
// replaces it; --reset-settings forgets what is stored.
TEST_F(AppTest, AnUnreadableStoredPropertyIsNamedAndAnOptionReplacesIt) {
    kav::test::TestDatabase db;
    {
        QSettings s(settingsFile(), QSettings::IniFormat);
        s.setValue(u"kavHRLoan1/UserID"_s, u"abc"_s);
        s.setValue(u"kavHRLoan1/OLEConnectionstring"_s, db.connectionString());
    }
    const Outcome stopped = run({});
    EXPECT_EQ(stopped.code, 2);
    EXPECT_TRUE(stopped.err.contains(u"مقدار ذخيره شده ويژگي UserID («abc») عدد نيست."_s))
        << stopped.err.toStdString();
    EXPECT_TRUE(stopped.err.contains(u"--reset-settings"_s));

    const Outcome replaced = run({u"--user"_s, u"2"_s});  // no permission: refused, but started
    EXPECT_EQ(replaced.code, 3);

    const Outcome reset = run({u"--reset-settings"_s});
    EXPECT_EQ(reset.code, 0);
    EXPECT_EQ(storedKeys(), QStringList());
}

TEST_F(AppTest, AScreenshotThatCannotBeWrittenExitsWithTwo) {
    QFile blocker(home.filePath(u"file"_s));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const Outcome r = run({u"--screenshots"_s, home.filePath(u"file/shots"_s)});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains(u"نوشته نشد"_s)) << r.err.toStdString();
}

// The demo runs on the demo database whatever is stored, and makes it again when the file
// there is empty. (The window then waits for the clerk; the test ends it.)
TEST_F(AppTest, TheDemoMakesAnEmptyDemoDatabaseAgain) {
    QDir().mkpath(QFileInfo(demoFile()).path());
    QFile empty(demoFile());
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    {
        QSettings s(settingsFile(), QSettings::IniFormat);
        s.setValue(u"kavHRLoan1/UserID"_s, u"abc"_s);
        s.setValue(u"kavHRLoan1/OLEConnectionstring"_s, u"Provider=SQLite;Data Source=/x.db"_s);
    }
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(KAVHRLOAN_BINARY), {u"--demo"_s});
    int employees = 0;
    for (int i = 0; i < 600 && employees == 0 && p.state() != QProcess::NotRunning; ++i) {
        QThread::msleep(100);
        {
            QSqlDatabase check = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"demo-check"_s);
            check.setDatabaseName(demoFile());
            check.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
            if (QFileInfo(demoFile()).size() > 0 && check.open()) {
                QSqlQuery q(check);
                if (q.exec(u"select count(*) from tblEmployee"_s) && q.next())
                    employees = q.value(0).toInt();
            }
        }
        QSqlDatabase::removeDatabase(u"demo-check"_s);
    }
    const bool stillRunning = p.state() != QProcess::NotRunning;
    p.kill();
    p.waitForFinished();
    EXPECT_GT(employees, 0);
    EXPECT_TRUE(stillRunning) << QString::fromUtf8(p.readAllStandardError()).toStdString();
}
