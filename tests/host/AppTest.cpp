// The host application as a terminal runs it: its exit codes, what it says, what it stores.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

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
        env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        env.insert(u"HOME"_s, home.path());
        env.insert(u"XDG_CONFIG_HOME"_s, home.filePath(u"config"_s));
        env.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
        env.insert(u"XDG_RUNTIME_DIR"_s, home.path());  // private to its owner, as it must be
    }
    Outcome run(const QStringList& args, const QProcessEnvironment* environment = nullptr) {
        QProcess p;
        p.setProcessEnvironment(environment ? *environment : env);
        p.start(QStringLiteral(KAVHRLOAN_BINARY), args);
        if (!p.waitForFinished(30000)) {
            p.kill();
            p.waitForFinished();
            ADD_FAILURE() << "kavhrloan did not finish: " << args.join(u' ').toStdString();
            return {};
        }
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString settingsFile() const { return home.filePath(u"config/KAV/kavhrloan.conf"_s); }
    QStringList storedKeys() const {
        return QSettings(settingsFile(), QSettings::IniFormat).allKeys();
    }
    void store(const QString& userId, const QString& connection) const {
        QSettings s(settingsFile(), QSettings::IniFormat);
        s.setValue(u"kavHRLoan1/UserID"_s, userId);
        s.setValue(u"kavHRLoan1/OLEConnectionstring"_s, connection);
    }
    QTemporaryDir home;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
};

TEST_F(AppTest, VersionAndHelpNeedNoDisplayAndTheWindowDoes) {
    QProcessEnvironment bare = env;
    for (const QString& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        bare.remove(name);
    const Outcome version = run({u"--version"_s}, &bare);
    EXPECT_EQ(version.code, 0);
    EXPECT_TRUE(version.out.startsWith(u"kavhrloan "_s)) << version.out.toStdString();
    const Outcome help = run({u"--help-all"_s}, &bare);
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.contains(settingsFile())) << help.out.toStdString();
    const Outcome window = run({}, &bare);
    EXPECT_EQ(window.code, 2);
    EXPECT_TRUE(window.err.contains(u"no display"_s));
}

// Failed starts exit with 2, a refused role with 3, and store nothing; a stored value that
// cannot be read stops the start unless an option replaces it.
TEST_F(AppTest, FailedStartsExitWithTwoOrThreeAndStoreNothing) {
    kav::test::TestDatabase db;
    db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s);
    const QString missing = home.filePath(u"nowhere/loans.db"_s);
    QFile blocker(home.filePath(u"file"_s));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const QString connection = db.connectionString();
    struct Case {
        QStringList args;
        int code;
        QString says;
    };
    const Case cases[] = {
        {{u"--connection"_s, u"Provider=SQLite;Data Source="_s + missing, u"--user"_s, u"1"_s},
         2,
         u"kavhrloan: فايل پايگاه داده «"_s + missing + u"» وجود ندارد."_s},
        {{u"--connection"_s, u"Provider=Nonsense;Data Source=x"_s, u"--user"_s, u"1"_s}, 2, {}},
        // The demo user is for the demo database only; another database needs its user named.
        {{u"--connection"_s, connection}, 2, u"--user ID"_s},
        {{u"--connection"_s, connection, u"--user"_s, u"x1"_s}, 2, u"--user: "_s},
        {{u"--connection"_s, connection, u"--user"_s, u"2"_s},
         3,
         u"خطا: شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s},
        {{u"--screenshots"_s, home.filePath(u"file/shots"_s)}, 2, u"نوشته نشد"_s},
        // A loan the database does not hold opens no window.
        {{u"--connection"_s, connection, u"--user"_s, u"1"_s, u"--view"_s, u"99"_s},
         2,
         u"kavhrloan: وامي با شماره رايانه اي 99 در پايگاه داده نيست؛ پنجره وام باز نشد.\n"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const Outcome r = run(c.args);
        EXPECT_EQ(r.code, c.code);
        EXPECT_TRUE(r.err.contains(c.says)) << r.err.toStdString();
        EXPECT_EQ(storedKeys(), QStringList());
    }
    store(u"abc"_s, connection);
    const Outcome stopped = run({});
    EXPECT_EQ(stopped.code, 2);
    EXPECT_TRUE(stopped.err.contains(u"مقدار ذخيره شده ويژگي UserID («abc») عدد نيست."_s))
        << stopped.err.toStdString();
    EXPECT_TRUE(stopped.err.contains(u"--reset-settings"_s));
    EXPECT_EQ(run({u"--user"_s, u"2"_s}).code, 3);  // no permission: refused, but started
    // The windows' sizes and columns go with the properties.
    QSettings(settingsFile(), QSettings::IniFormat)
        .setValue(u"Windows/FormSearch/columns/Flexsearchresult"_s, u"40"_s);
    EXPECT_EQ(run({u"--reset-settings"_s}).code, 0);
    EXPECT_EQ(storedKeys(), QStringList());
}

// The demo runs on the demo database whatever is stored, makes it again when the file there
// is empty, keeps what was saved in it (until --fresh-demo) and stores no properties.
TEST_F(AppTest, TheDemoMakesAnEmptyDemoDatabaseAgain) {
    const QString demo = home.filePath(u"data/KAV/kavhrloan/kavhrloan-demo.db"_s);
    QDir().mkpath(QFileInfo(demo).path());
    QFile empty(demo);
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    store(u"abc"_s, u"Provider=SQLite;Data Source=/x.db"_s);
    const Outcome r = run({u"--demo"_s, u"--quit-when-shown"_s});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    // The window shown keeps its size and its grid's columns for the next run.
    EXPECT_EQ(
        storedKeys().filter(u"Windows/"_s),
        (QStringList{u"Windows/FormHRLoan/columns/FlexEmployee"_s, u"Windows/FormHRLoan/size"_s}));
    // The notes of loan 1 as the demo database holds them; a text given is saved first.
    const auto notes = [&](const QString& saved = {}) {
        QString text;
        {
            QSqlDatabase check = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"demo-check"_s);
            check.setDatabaseName(demo);
            EXPECT_TRUE(check.open());
            QSqlQuery q(check);
            if (!saved.isEmpty())
                q.exec(u"update tblHRLoan set Notes='%1' where ID=1"_s.arg(saved));
            if (q.exec(u"select Notes from tblHRLoan where ID=1"_s) && q.next())
                text = q.value(0).toString();
        }
        QSqlDatabase::removeDatabase(u"demo-check"_s);
        return text;
    };
    const QString made = notes();
    EXPECT_EQ(notes(u"saved by a demo run"_s), u"saved by a demo run"_s);
    EXPECT_EQ(run({u"--demo"_s, u"--quit-when-shown"_s}).code, 0);
    EXPECT_EQ(notes(), u"saved by a demo run"_s);
    EXPECT_EQ(run({u"--fresh-demo"_s, u"--quit-when-shown"_s}).code, 0);
    EXPECT_EQ(notes(), made);
    EXPECT_EQ(QSettings(settingsFile(), QSettings::IniFormat).value(u"kavHRLoan1/UserID"_s),
              u"abc"_s);
}

}  // namespace
