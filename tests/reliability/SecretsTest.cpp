// Passwords: the settings file that keeps the control's properties (the connection string,
// password and all) is readable by its owner only, also when it was wider before; no line the
// program prints or logs (every logging category on), no message and no error shows a
// password from a connection string, whatever the driver echoes.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QLoggingCategory>
#include <QMutex>

#include "AppRun.h"
#include "base/Errors.h"
#include "host/kavHRLoan1.h"
#include "session/Module.h"
#include "support/QtPrinters.h"
#include "support/ScriptedMessages.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

const QString kSecret = u"Secr3t-Value"_s;

int modeOf(const QString& file) {
    struct stat st {};
    if (::stat(QFile::encodeName(file).constData(), &st) != 0) return -1;
    return int(st.st_mode & 0777);
}

// A port on this machine where nothing listens.
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

// Connection strings holding the password that fail to open, each a different way.
QStringList failingConnections(const QString& folder) {
    return {
        u"Provider=SQLOLEDB;Data Source=127.0.0.1,%1;Initial Catalog=loans;User ID=clerk;"
        "Password=%2"_s.arg(unusedPort())
            .arg(kSecret),
        u"Driver=SQLite3;Database=%1/no/such/folder/loans.db;PWD=%2"_s.arg(folder, kSecret),
        u"Provider=MSDASQL;Driver={No Such Driver};Server=127.0.0.1;PWD={%1}"_s.arg(kSecret),
        u"Provider=SQLOLEDB;Password %1;Data Source=127.0.0.1"_s.arg(kSecret),
        u"Provider=Secret;Data Source=x;Password='%1"_s.arg(kSecret),
    };
}

QMutex logMutex;
QStringList logLines;
void keepLog(QtMsgType, const QMessageLogContext& context, const QString& text) {
    QMutexLocker lock(&logMutex);
    logLines << QString::fromUtf8(context.category) + u": "_s + text;
}

}  // namespace

TEST(Secrets, TheSettingsFileIsForItsOwnerOnlyEvenWhenItWasWider) {
    AppHome app;
    TestDatabase db;
    db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s);
    const QString connection = db.connectionString() + u";Password="_s + kSecret;
    AppOutcome r =
        app.run({u"--connection"_s, connection, u"--user"_s, u"1"_s, u"--quit-when-shown"_s});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(modeOf(app.settingsFile()), 0600);
    QFile settings(app.settingsFile());
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().contains(kSecret.toUtf8()));  // what the rights protect

    for (const int wider : {0644, 0666}) {
        ASSERT_EQ(::chmod(QFile::encodeName(app.settingsFile()).constData(), mode_t(wider)), 0);
        r = app.run({u"--caption"_s, u"وام"_s, u"--quit-when-shown"_s});
        EXPECT_EQ(r.code, 0) << r.err.toStdString();
        EXPECT_EQ(modeOf(app.settingsFile()), 0600) << wider;
    }
    ASSERT_EQ(::chmod(QFile::encodeName(app.settingsFile()).constData(), 0644), 0);
    EXPECT_EQ(app.run({u"--reset-settings"_s}).code, 0);
    EXPECT_EQ(modeOf(app.settingsFile()), 0600);
    EXPECT_FALSE(r.err.contains(kSecret));
}

TEST(Secrets, NoLineOrMessageOfAFailedStartShowsThePassword) {
    AppHome app;
    app.env.insert(u"QT_LOGGING_RULES"_s, u"*.debug=true"_s);
    for (const QString& connection : failingConnections(app.home.path())) {
        SCOPED_TRACE(connection.toStdString());
        const AppOutcome r = app.run({u"--connection"_s, connection, u"--user"_s, u"1"_s});
        EXPECT_EQ(r.code, 2);
        EXPECT_TRUE(r.err.contains(u"kavhrloan: "_s)) << r.err.toStdString();
        EXPECT_FALSE(r.err.contains(kSecret)) << r.err.toStdString();
        EXPECT_FALSE(r.out.contains(kSecret)) << r.out.toStdString();
    }
}

TEST(Secrets, TheControlsErrorsMessagesAndLogsNeverShowThePassword) {
    QTemporaryDir folder;
    QLoggingCategory::setFilterRules(u"*.debug=true"_s);
    const QtMessageHandler previous = qInstallMessageHandler(keepLog);
    auto messages = std::make_shared<MessageScript>();
    for (const QString& connection : failingConnections(folder.path())) {
        SCOPED_TRACE(connection.toStdString());
        auto module = std::make_shared<Module>();
        module->SetMessageFactory(ScriptedFactory(messages));
        kavHRLoan1 control(module);
        control.setOLEConnectionstring(connection);
        control.setUserID(1);
        try {
            control.ClearShow();
            ADD_FAILURE() << "opened";
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Connection);
            EXPECT_FALSE(e.message().contains(kSecret)) << e.message().toStdString();
        }
        // A driver's text that echoes the connection string, shown through the module.
        module->session.SessionConnectionString = connection;
        module->ShowMessage(u"خطا"_s, u"[driver] login failed: "_s + connection);
        EXPECT_FALSE(messages->last().text.contains(kSecret))
            << messages->last().text.toStdString();
        EXPECT_TRUE(messages->last().text.startsWith(u"[driver] login failed: "_s));
    }
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules(QString());
    EXPECT_EQ(logLines.filter(kSecret), QStringList());
}
