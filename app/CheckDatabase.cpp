#include "CheckDatabase.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QSettings>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <cstdio>
#include <optional>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DriverError.h"
#include "data/Names.h"
#include "data/PayslipColumns.h"
#include "data/SuiteCheck.h"
#include "host/PropertyBag.h"
#include "session/DataEnvironment.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;
namespace check = kav::data::suite_check;

namespace {

void print(const QString& line) {
    QString text = line;
    text.replace(u'\n', u' ');
    std::printf("%s\n", text.toUtf8().constData());
}

// The rows of a catalogue query, read through the connection's own database handle.
check::ResultSet run(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        const QSqlError error = q.lastError();
        q.finish();
        throw kav::data::DriverError(error);
    }
    check::ResultSet rs;
    const QSqlRecord record = q.record();
    for (int c = 0; c < record.count(); ++c) rs.columns << record.fieldName(c);
    while (q.next()) {
        QVariantList row;
        for (int c = 0; c < record.count(); ++c) row << q.value(c);
        rs.rows << row;
    }
    q.finish();
    return rs;
}

// What the database holds, found out without writing anything.
check::SuiteFacts readFacts(kav::DataEnvironment& env, std::optional<qint16> user) {
    kav::Connection& cnt = env.cnt();
    check::SuiteFacts facts;
    facts.kind = cnt.Kind();
    QSqlDatabase db = cnt.Database();
    if (db.driverName() == u"QSQLITE") {
        const QFileInfo file(db.databaseName());
        facts.embeddedFile = file.absoluteFilePath();
        facts.fileWritable = file.isWritable() && QFileInfo(file.absolutePath()).isWritable();
    }
    for (const check::MetadataQuery& q : check::MetadataQueries(facts.kind)) {
        try {
            q.read(facts, run(db, q.sql));
        } catch (const kav::KavError& e) {
            facts.failures << q.what + u" خوانده نشد: "_s + e.message();
        }
    }
    for (const check::CheckedObject& o : check::CheckedObjects()) {
        if (o.kind == check::ObjectKind::Table || o.kind == check::ObjectKind::View)
            facts.columns.insert(o.name, cnt.ColumnsOf(o.name));
        else if (o.kind == check::ObjectKind::Procedure &&
                 facts.kind == kav::data::DatabaseKind::SQLite)
            facts.columns.insert(o.table, cnt.ColumnsOf(o.table));
    }
    facts.user = user;
    if (user) {
        for (const int permission :
             {kav::data::names::PermissionOpenModule, kav::data::names::PermissionNewOrDeleteLoan,
              kav::data::names::PermissionEditLoan}) {
            try {
                facts.permissions.insert(permission, env.spVarekHasPermission(*user, permission));
            } catch (const kav::KavError& e) {
                facts.permissionError = e.message();
                break;
            }
        }
    }
    return facts;
}

}  // namespace

int CheckDatabase(QSettings& settings, const QString& propertyGroup,
                  const QCommandLineParser& parser, const QCommandLineOption& connection,
                  const QCommandLineOption& user) {
    kav::SettingsPropertyBag stored(settings, propertyGroup);
    const QString connectionString =
        parser.isSet(connection) ? parser.value(connection)
                                 : stored.ReadProperty(u"OLEConnectionstring"_s, u"0"_s).toString();
    std::optional<qint16> userId;
    const QString userText = parser.isSet(user)
                                 ? parser.value(user)
                                 : stored.ReadProperty(u"UserID"_s, QString()).toString();
    try {
        if (!userText.trimmed().isEmpty() && userText.trimmed() != u"0")
            userId = kav::vb::CInt(userText);
    } catch (const kav::KavError& e) {
        throw kav::KavError(e.kind(), u"--user: "_s + e.message());
    }
    const kav::data::PayslipColumns payslip = kav::data::PayslipColumns::FromSettings(settings);

    kav::DataEnvironment env;
    try {
        env.cnt().SetConnectionString(connectionString);
        env.cnt().Open();
        print(u"پايگاه داده: "_s + kav::data::MaskPasswords(connectionString, connectionString));
        const QList<check::Line> lines = check::Decide(readFacts(env, userId), payslip);
        for (const check::Line& line : lines)
            print(kav::data::MaskPasswords(check::LineText(line), connectionString));
        print(check::Summary(lines));
        return check::ExitCode(lines);
    } catch (const kav::KavError& e) {
        throw kav::KavError(e.kind(), kav::data::MaskPasswords(e.message(), connectionString));
    }
}
