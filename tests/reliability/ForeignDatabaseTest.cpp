// Opening what is not the loan module's: a missing file, an empty file, a file that is no
// database, a database without the loan tables (or with only some of them), and connection
// strings that name nothing usable. kavhrloan says why in one line and exits with 2; the
// control raises an error that says the same for its host to show; the file is never
// touched: the same bytes, the same time, no journal beside it, no schema given to it.

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>
#include <QUuid>
#include <functional>

#include "AppRun.h"
#include "base/Errors.h"
#include "host/kavHRLoan1.h"
#include "loan_editor/FormHRLoan.h"
#include "session/Module.h"
#include "support/QtPrinters.h"
#include "support/ScriptedMessages.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

void sqliteFile(const QString& file, const QStringList& statements) {
    const QString name = QUuid::createUuid().toString();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        for (const QString& sql : statements) ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
    }
    QSqlDatabase::removeDatabase(name);
}

struct Foreign {
    const char* what;
    // Makes the file (when there is one) in the folder; returns the connection string.
    std::function<QString(const QString& file)> make;
    // The message, the file's path in place of %1.
    QString message;
};

QString embedded(const QString& file) { return u"Provider=SQLite;Data Source="_s + file; }

const QString kNoLoanTables =
    u"پايگاه داده «%1» پايگاه داده وام کارمندان نيست: tblHRLoan، tblHRLoanDetail، "
    u"tblHRLoanType، tblEmployee، vwHRLoanData در آن وجود ندارد؛ چيزي در آن نوشته نشد."_s;

const Foreign kForeign[] = {
    {"a missing file", [](const QString& file) { return embedded(file); },
     u"فايل پايگاه داده «%1» وجود ندارد."_s},
    {"an empty file",
     [](const QString& file) {
         QFile f(file);
         EXPECT_TRUE(f.open(QIODevice::WriteOnly));
         return embedded(file);
     },
     kNoLoanTables},
    {"a text file",
     [](const QString& file) {
         QFile f(file);
         EXPECT_TRUE(f.open(QIODevice::WriteOnly));
         f.write(QByteArray("Code;Name\n1;loans.csv is no database\n").repeated(200));
         return embedded(file);
     },
     u"فايل «%1» پايگاه داده نيست؛ چيزي در آن نوشته نشد."_s},
    {"another program's database",
     [](const QString& file) {
         sqliteFile(file, {u"create table notes (id integer primary key, text text)"_s,
                           u"insert into notes (text) values ('keep me')"_s});
         return embedded(file);
     },
     kNoLoanTables},
    {"a database with some of the loan tables",
     [](const QString& file) {
         sqliteFile(file, {u"create table tblHRLoan (ID integer primary key, Code integer)"_s,
                           u"create table tblEmployee (ID integer primary key)"_s});
         return embedded(file);
     },
     u"پايگاه داده «%1» پايگاه داده وام کارمندان نيست: tblHRLoanDetail، tblHRLoanType، "
     u"vwHRLoanData در آن وجود ندارد؛ چيزي در آن نوشته نشد."_s},
    {"a connection string without the file", [](const QString&) { return u"Provider=SQLite"_s; },
     u"رشته اتصال پايگاه داده محلي فايل آن را (Data Source) مشخص نکرده است."_s},
    {"a connection string without a provider",
     [](const QString& file) { return u"Data Source="_s + file; },
     u"رشته اتصال فراهم‌کننده (Provider) يا راه‌انداز ODBC (Driver) را مشخص نکرده است."_s},
    {"an unknown provider", [](const QString&) { return u"Provider=Jet;Data Source=x.mdb"_s; },
     u"فراهم‌کننده «Jet» در رشته اتصال شناخته نيست؛ SQLOLEDB، SQLNCLI، MSOLEDBSQL، MSDASQL "
     u"يا SQLite پذيرفته مي‌شود."_s},
    {"an unclosed quote",
     [](const QString& file) { return u"Provider=SQLite;Data Source='"_s + file; },
     u"مقدار «Data Source» در رشته اتصال بسته نشده است (علامت نقل قول پاياني ندارد)."_s},
};

QString messageFor(const Foreign& f, const QString& file) {
    return QString(f.message).replace(u"%1"_s, file);
}

// What a file is: its bytes and its time, and the files beside it.
struct FileState {
    explicit FileState(const QString& path) {
        QFile f(path);
        exists = f.open(QIODevice::ReadOnly);
        if (exists) bytes = f.readAll();
        modified = QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
        folder = QDir(QFileInfo(path).path()).entryList(QDir::Files | QDir::Hidden);
    }
    bool operator==(const FileState&) const = default;
    bool exists = false;
    QByteArray bytes;
    QDateTime modified;
    QStringList folder;
};

}  // namespace

TEST(ForeignDatabase, KavhrloanSaysWhyInOneLineExitsWithTwoAndLeavesTheFileAlone) {
    for (const Foreign& f : kForeign) {
        SCOPED_TRACE(f.what);
        AppHome app;
        QTemporaryDir dir;
        const QString file = dir.filePath(u"loans.db"_s);
        const QString connection = f.make(file);
        const FileState before(file);
        QThread::msleep(20);  // a write now would show in the time
        const AppOutcome r = app.run({u"--connection"_s, connection, u"--user"_s, u"1"_s});
        EXPECT_EQ(r.code, 2);
        EXPECT_EQ(r.err, u"kavhrloan: "_s + messageFor(f, file) + u"\n"_s);
        EXPECT_EQ(r.out, QString());
        EXPECT_TRUE(FileState(file) == before);
        EXPECT_FALSE(QFileInfo::exists(app.settingsFile()));  // a failed start keeps nothing
    }
}

// A driver's text comes on a line of its own in a message; the terminal still gets one line.
TEST(ForeignDatabase, AFolderInsteadOfAFileIsOneLineToo) {
    AppHome app;
    QTemporaryDir dir;
    const FileState before(dir.filePath(u"x"_s));
    const AppOutcome r = app.run({u"--connection"_s, embedded(dir.path()), u"--user"_s, u"1"_s});
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err,
              u"kavhrloan: اتصال به پايگاه داده برقرار نشد: \u2066unable to open database file "
              u"Error opening database\u2069\n"_s);
    EXPECT_TRUE(FileState(dir.filePath(u"x"_s)) == before);  // nothing made in the folder
}

TEST(ForeignDatabase, TheControlRaisesTheSameForItsHostAndTouchesNothing) {
    for (const Foreign& f : kForeign) {
        SCOPED_TRACE(f.what);
        QTemporaryDir dir;
        const QString file = dir.filePath(u"loans.db"_s);
        const QString connection = f.make(file);
        const FileState before(file);
        auto module = std::make_shared<Module>();
        auto messages = std::make_shared<MessageScript>();
        module->SetMessageFactory(ScriptedFactory(messages));
        module->SetModalRunner([](QDialog&) { return 0; });
        {
            kavHRLoan1 control(module);
            control.setOLEConnectionstring(connection);
            control.setUserID(1);
            for (const bool view : {false, true}) {
                try {
                    qint32 loan = 1;
                    view ? control.View(loan) : control.ClearShow();
                    ADD_FAILURE() << "opened";
                } catch (const KavError& e) {
                    EXPECT_EQ(e.kind(), KavError::Kind::Connection);
                    EXPECT_EQ(e.message(), messageFor(f, file));
                }
            }
        }
        EXPECT_FALSE(module->HasWindow<FormHRLoan>());
        EXPECT_EQ(messages->texts(), QStringList());
        module.reset();  // the connection closes
        EXPECT_TRUE(FileState(file) == before);
    }
}
