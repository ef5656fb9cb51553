#include "TestDatabase.h"

#include <QDialog>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

#include "data/DemoData.h"
#include "data/EmbeddedSchema.h"
#include "session/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::test {

namespace {

template <class F>
void withDatabase(const QString& file, F&& f) {
    const QString name = u"test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        if (!db.open()) throw std::runtime_error(db.lastError().text().toStdString());
        f(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace

TestDatabase::TestDatabase() {
    file_ = dir_.filePath(u"loans.db"_s);
    withDatabase(file_, [](QSqlDatabase& db) { data::CreateEmbeddedSchema(db); });
}

QString TestDatabase::connectionString() const { return data::EmbeddedConnectionString(file_); }

void TestDatabase::exec(const QStringList& statements) const {
    withDatabase(file_, [&](QSqlDatabase& db) {
        for (const QString& sql : statements) {
            QSqlQuery q(db);
            if (!q.exec(sql))
                throw std::runtime_error((sql + u": "_s + q.lastError().text()).toStdString());
        }
    });
}

void TestDatabase::exec(const QString& sql) const { exec(QStringList{sql}); }

QVariant TestDatabase::scalar(const QString& sql) const {
    QVariant v;
    withDatabase(file_, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (!q.exec(sql))
            throw std::runtime_error((sql + u": "_s + q.lastError().text()).toStdString());
        if (q.next()) v = q.value(0);
    });
    return v;
}

TestModule::TestModule() {
    module.session.SessionConnectionString = db.connectionString();
    module.SetMessageFactory(ScriptedFactory(messages));
    module.SetModalRunner([this](QDialog&) {
        ++modalShown;
        return 0;
    });
    module.OpenSessionConnection();
}

void TestModule::grant(qint16 user, std::initializer_list<qint32> permissions) {
    for (qint32 p : permissions)
        db.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (%1, %2)"_s
                    .arg(user)
                    .arg(p));
}

}  // namespace kav::test
