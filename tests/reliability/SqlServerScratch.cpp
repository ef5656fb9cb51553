#include "SqlServerScratch.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DriverError.h"
#include "data/EmbeddedSchema.h"

using namespace Qt::StringLiterals;

namespace kav::test {

QString SqlServerConnection() { return qEnvironmentVariable("KAVHRLOAN_TEST_SQLSERVER").trimmed(); }

namespace {

// True when the batch holds something besides blanks and comments.
bool hasStatement(const QString& batch) {
    QString rest = batch;
    rest.remove(
        QRegularExpression(u"/\\*.*?\\*/"_s, QRegularExpression::DotMatchesEverythingOption));
    rest.remove(QRegularExpression(u"--[^\\n]*"_s));
    return !rest.trimmed().isEmpty();
}

}  // namespace

QStringList SplitBatches(const QString& script) {
    static const QRegularExpression go(u"^\\s*GO(?:\\s+(\\d+))?\\s*$"_s,
                                       QRegularExpression::CaseInsensitiveOption);
    QStringList batches;
    QString batch;
    int commentDepth = 0;  // inside /* */ (they nest in T-SQL)
    QChar quote;           // inside '...', "..." or [...]
    const QStringList lines = script.split(u'\n');
    for (const QString& rawLine : lines) {
        const QString line = QString(rawLine).remove(u'\r');
        if (commentDepth == 0 && quote.isNull()) {
            const QRegularExpressionMatch m = go.match(line);
            if (m.hasMatch()) {
                const int times = m.captured(1).isEmpty() ? 1 : m.captured(1).toInt();
                if (hasStatement(batch))
                    for (int i = 0; i < times; ++i) batches << batch.trimmed();
                batch.clear();
                continue;
            }
        }
        // Follow comments and quotes to the end of the line.
        for (qsizetype i = 0; i < line.size(); ++i) {
            const QChar c = line[i];
            const QChar next = i + 1 < line.size() ? line[i + 1] : QChar();
            if (!quote.isNull()) {
                const QChar close = quote == u'[' ? u']' : quote;
                if (c == close) {
                    if (next == close)
                        ++i;  // doubled: the character itself
                    else
                        quote = QChar();
                }
            } else if (commentDepth > 0) {
                if (c == u'*' && next == u'/') {
                    --commentDepth;
                    ++i;
                } else if (c == u'/' && next == u'*') {
                    ++commentDepth;
                    ++i;
                }
            } else if (c == u'-' && next == u'-') {
                break;  // the rest of the line is a comment
            } else if (c == u'/' && next == u'*') {
                ++commentDepth;
                ++i;
            } else if (c == u'\'' || c == u'"' || c == u'[') {
                quote = c;
            }
        }
        batch += line + u'\n';
    }
    if (hasStatement(batch)) batches << batch.trimmed();
    return batches;
}

void RunBatches(QSqlDatabase db, const QStringList& batches) {
    for (qsizetype i = 0; i < batches.size(); ++i) {
        QSqlQuery q(db);
        if (q.exec(batches[i])) {
            q.finish();
            continue;
        }
        const QString driverText = data::DriverText(q.lastError());
        throw KavError(KavError::Kind::Database,
                       u"batch %1 of %2 («%3») was refused: %4"_s.arg(i + 1)
                           .arg(batches.size())
                           .arg(batches[i].section(u'\n', 0, 0), driverText));
    }
}

namespace {

QSqlDatabase openServer(const QString& oleDb, const QString& qtName) {
    const data::ConnectionTarget target = data::MapConnectionString(oleDb);
    QSqlDatabase db = QSqlDatabase::addDatabase(target.qtDriver, qtName);
    db.setDatabaseName(target.databaseName);
    if (!db.open())
        throw KavError(KavError::Kind::Connection,
                       data::MaskPasswords(u"SQL Server: "_s + db.lastError().text(), oleDb));
    return db;
}

void exec(QSqlDatabase db, const QString& sql) { RunBatches(db, {sql}); }

}  // namespace

ScratchDatabase::ScratchDatabase(const QString& serverConnection)
    : server_(serverConnection),
      name_(u"KAVHRLoanTest_"_s + QUuid::createUuid().toString(QUuid::Id128).left(12)),
      qtName_(u"scratch-"_s + name_) {
    QSqlDatabase admin = openServer(server_, qtName_);
    exec(admin, u"CREATE DATABASE "_s + name_ + u" COLLATE Persian_100_CI_AI"_s);
    admin.close();
    QSqlDatabase::removeDatabase(qtName_);

    QFile file(data::SqlServerSchemaScriptPath());
    if (!file.open(QIODevice::ReadOnly))
        throw KavError(KavError::Kind::Usage, u"cannot read "_s + file.fileName());
    QSqlDatabase scratch = openServer(connectionString(), qtName_);
    RunBatches(scratch, SplitBatches(QString::fromUtf8(file.readAll())));
    scratch.close();
    QSqlDatabase::removeDatabase(qtName_);
}

ScratchDatabase::~ScratchDatabase() {
    try {
        QSqlDatabase admin = openServer(server_, qtName_);
        exec(admin, u"ALTER DATABASE "_s + name_ + u" SET SINGLE_USER WITH ROLLBACK IMMEDIATE"_s);
        exec(admin, u"DROP DATABASE "_s + name_);
        admin.close();
    } catch (const KavError&) {
        // Left behind on the server: its name says it is a test's.
    }
    QSqlDatabase::removeDatabase(qtName_);
}

QString ScratchDatabase::connectionString() const {
    // The last Initial Catalog of a connection string wins.
    return server_ + u";Initial Catalog="_s + name_;
}

}  // namespace kav::test
