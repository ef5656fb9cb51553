#include "TestDatabase.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include "data/DemoData.h"
#include "data/EmbeddedSchema.h"

using namespace Qt::StringLiterals;

namespace kav::test {

namespace {

// The statement run on the database; a failing one fails the test and names the statement.
QSqlQuery run(const QSqlDatabase& db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql))
        ADD_FAILURE() << sql.toStdString() << "\n  -> " << q.lastError().text().toStdString();
    return q;
}

}  // namespace

TestDatabase::TestDatabase(bool withSchema)
    : name_(u"test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    file_ = dir_.filePath(u"loans.db"_s);
    db_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, name_);
    db_.setDatabaseName(file_);
    if (!db_.open()) ADD_FAILURE() << db_.lastError().text().toStdString();
    if (withSchema) data::CreateEmbeddedSchema(db_);
}

TestDatabase::~TestDatabase() {
    db_.close();
    db_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(name_);
}

QString TestDatabase::connectionString() const {
    if (ThroughOdbc()) return u"Driver=SQLite3;Database="_s + file_;
    return data::EmbeddedConnectionString(file_);
}

bool ThroughOdbc() { return qEnvironmentVariableIntValue("KAV_TEST_THROUGH_ODBC") == 1; }

bool TestDatabase::exec(const QString& sql) const { return run(db_, sql).isActive(); }

void TestDatabase::exec(const QStringList& statements) const {
    for (const QString& sql : statements) exec(sql);
}

QList<Row> TestDatabase::rows(const QString& sql) const {
    QList<Row> out;
    for (QSqlQuery q = run(db_, sql); q.next();) {
        Row r;
        for (int i = 0; i < q.record().count(); ++i)
            r.insert(q.record().fieldName(i).toLower(), q.value(i));
        out << r;
    }
    return out;
}

QVariant TestDatabase::scalar(const QString& sql) const {
    QSqlQuery q = run(db_, sql);
    return q.next() ? q.value(0) : QVariant();
}

QStringList TestDatabase::table(const QString& sql) const {
    QStringList out;
    for (QSqlQuery q = run(db_, sql); q.next();) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << (q.isNull(i) ? u"NULL"_s : q.value(i).toString());
        out << cells.join(u'|');
    }
    return out;
}

TestModule::TestModule() {
    module.session.SessionConnectionString = db.connectionString();
    module.SetMessageFactory(ScriptedFactory(messages));
    // A window shown by one test never opens at the size another left behind.
    module.SetRemembersWindows(false);
    module.SetModalRunner([this](QDialog&) {
        ++modalShown;
        return 0;
    });
    module.OpenSessionConnection();
    // A run through ODBC that fell back to the embedded path would prove nothing.
    if (ThroughOdbc()) {
        EXPECT_EQ(module.DtEn().cnt().Database().driverName(), u"QODBC"_s);
    }
}

void TestModule::grant(qint16 user, std::initializer_list<qint32> permissions) {
    for (qint32 p : permissions)
        db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (%1, %2)"_s
                    .arg(user)
                    .arg(p));
}

}  // namespace kav::test
