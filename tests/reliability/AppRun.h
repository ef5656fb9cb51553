#pragma once

// Runs the host application kavhrloan as a terminal runs it, in a home of its own (settings,
// demo database and runtime folder there and nowhere else).

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace kav::test {

struct AppOutcome {
    int code = -1;
    QString out, err;
};

class AppHome {
public:
    AppHome() {
        using namespace Qt::StringLiterals;
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
    AppOutcome run(const QStringList& args) const {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(KAVHRLOAN_BINARY), args);
        AppOutcome r;
        if (!p.waitForFinished(60000)) {
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
    QString settingsFile() const {
        return home.filePath(QStringLiteral("config/KAV/kavhrloan.conf"));
    }
    QTemporaryDir home;
    QProcessEnvironment env;
};

}  // namespace kav::test
