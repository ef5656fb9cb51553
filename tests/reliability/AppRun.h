#pragma once

// A loopback port where nothing listens, and kavhrloan run as a terminal runs it in a home of
// its own (settings and runtime folder there and nowhere else).

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <unistd.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace kav::test {

using namespace Qt::StringLiterals;

inline int UnusedPort() {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t n = sizeof a;
    ::bind(s, reinterpret_cast<sockaddr*>(&a), n);
    ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &n);
    ::close(s);
    return ntohs(a.sin_port);
}

#ifdef KAVHRLOAN_BINARY
struct AppOutcome {
    int code = -1;
    QString out, err;
};

struct AppHome {
    AppHome() {
        env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        env.insert(u"HOME"_s, home.path());
        for (const auto& [variable, folder] : {std::pair{u"XDG_CONFIG_HOME"_s, u"config"_s},
                                               {u"XDG_DATA_HOME"_s, u"data"_s},
                                               {u"XDG_RUNTIME_DIR"_s, u"run"_s}}) {
            QDir(home.path()).mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            env.insert(variable, home.filePath(folder));
        }
    }
    AppOutcome run(const QStringList& args) const {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(KAVHRLOAN_BINARY), args);
        EXPECT_TRUE(p.waitForFinished(60000)) << args.join(u' ').toStdString();
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString settingsFile() const { return home.filePath(u"config/KAV/kavhrloan.conf"_s); }
    QTemporaryDir home;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
};
#endif

}  // namespace kav::test
