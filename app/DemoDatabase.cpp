#include "DemoDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cstdio>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DemoData.h"

using namespace Qt::StringLiterals;

namespace app {

QString DemoDatabasePath() {
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return QDir(dir).filePath(u"kavhrloan-demo.db"_s);
}

QString DemoConnection() {
    const QString file = DemoDatabasePath();
    try {
        kav::data::CreateDemoDatabase(file);
    } catch (const kav::KavError&) {
        if (!QFileInfo::exists(file) || !QFile::remove(file)) throw;
        kav::data::CreateDemoDatabase(file);
    }
    return kav::data::EmbeddedConnectionString(file);
}

QString FreshDemoConnection() {
    const QString file = DemoDatabasePath();
    for (const QString& f : {file, file + u"-journal"_s, file + u"-wal"_s, file + u"-shm"_s})
        if (QFileInfo::exists(f) && !QFile::remove(f))
            throw kav::KavError(kav::KavError::Kind::Connection,
                                u"پايگاه داده نمايشي «%1» پاک نشد؛ از نو ساخته نشد."_s.arg(f));
    return DemoConnection();
}

int CreateDemoDatabaseFile(const QString& file) {
    kav::data::CreateDemoDatabase(file);
    std::printf("%s\n", QFileInfo(file).absoluteFilePath().toUtf8().constData());
    return 0;
}

}  // namespace app
