#include "TsqlCheck.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace kav::test {

namespace {

// The texts handed to CheckedTsql (made on first use, whenever that is).
QStringList& collected() {
    static QStringList texts;
    return texts;
}

QString checkScript() {
    QString path = qEnvironmentVariable("KAV_TSQL_CHECK");
    if (path.isEmpty() && qEnvironmentVariableIsSet("KAV_SOURCE_DIR"))
        path = QDir::cleanPath(QDir(qEnvironmentVariable("KAV_SOURCE_DIR"))
                                   .filePath(u"../shared/tools/tsql-check/check.js"_s));
    return QFileInfo::exists(path) ? path : QString();
}

TsqlResult run(const QStringList& arguments) {
    TsqlResult r;
    const QString script = checkScript();
    QString node = QStandardPaths::findExecutable(u"node"_s);
    if (node.isEmpty()) node = QStandardPaths::findExecutable(u"nodejs"_s);
    if (script.isEmpty() || node.isEmpty()) {
        r.output = script.isEmpty() ? u"tsql-check not found"_s : u"Node.js not found"_s;
        return r;
    }
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(node, QStringList{script} + arguments);
    r.available = true;
    const bool finished = p.waitForFinished(120000);
    r.output = finished ? QString::fromUtf8(p.readAll()) : u"tsql-check did not finish"_s;
    r.passed = finished && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    return r;
}

// Checks what the program's tests collected, once, when the program ends.
class TsqlEnvironment : public ::testing::Environment {
public:
    void TearDown() override {
        const QStringList texts = collected();
        if (texts.isEmpty()) return;
        const TsqlResult r = RunTsqlCheck(texts);
        if (!r.available) {
            std::printf("T-SQL syntax check skipped (%s): %lld texts unchecked\n",
                        r.output.toUtf8().constData(), static_cast<long long>(texts.size()));
            return;
        }
        if (!r.passed)
            ADD_FAILURE() << "SQL Server texts that do not parse:\n" << r.output.toStdString();
        else
            std::printf("T-SQL syntax check: %s", r.output.toUtf8().constData());
    }
};

const bool registered = [] {
    ::testing::AddGlobalTestEnvironment(new TsqlEnvironment);
    return true;
}();

}  // namespace

const QString& CheckedTsql(const QString& text) {
    (void)registered;
    collected().append(text);
    return text;
}

TsqlResult RunTsqlCheck(const QStringList& texts) {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"statements.json"_s);
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly)) return {};
    out.write(QJsonDocument(QJsonArray::fromStringList(texts)).toJson());
    out.close();
    return run({u"--json"_s, file});
}

}  // namespace kav::test
