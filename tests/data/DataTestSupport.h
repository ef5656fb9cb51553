#pragma once

// A scratch embedded database for the data tests: a temporary file with the loan schema
// and a handful of helpers to run statements and read rows.

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUuid>
#include <QVariantMap>

#include "data/EmbeddedSchema.h"

namespace kav::data::test {

using Row = QVariantMap;  // column name (lower case) -> value

class ScratchDb {
public:
    explicit ScratchDb(bool withSchema = true)
        : name_(QStringLiteral("scratch-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
        file_ = dir_.filePath(QStringLiteral("loans.db"));
        db_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        db_.setDatabaseName(file_);
        if (!db_.open()) ADD_FAILURE() << db_.lastError().text().toStdString();
        if (withSchema) CreateEmbeddedSchema(db_);
    }
    ~ScratchDb() {
        db_.close();
        db_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(name_);
    }
    ScratchDb(const ScratchDb&) = delete;
    ScratchDb& operator=(const ScratchDb&) = delete;

    QSqlDatabase& db() { return db_; }
    const QString& file() const { return file_; }

    // Runs one statement; an error fails the test and says which statement.
    bool exec(const QString& sql) {
        QSqlQuery q(db_);
        if (q.exec(sql)) return true;
        ADD_FAILURE() << sql.toStdString() << "\n  -> " << q.lastError().text().toStdString();
        return false;
    }
    void exec(const QStringList& statements) {
        for (const QString& s : statements) exec(s);
    }
    QList<Row> rows(const QString& sql) {
        QList<Row> out;
        QSqlQuery q(db_);
        if (!q.exec(sql)) {
            ADD_FAILURE() << sql.toStdString() << "\n  -> " << q.lastError().text().toStdString();
            return out;
        }
        while (q.next()) {
            Row r;
            const QSqlRecord rec = q.record();
            for (int i = 0; i < rec.count(); ++i) r.insert(rec.fieldName(i).toLower(), q.value(i));
            out << r;
        }
        return out;
    }
    QVariant scalar(const QString& sql) {
        QSqlQuery q(db_);
        if (!q.exec(sql)) {
            ADD_FAILURE() << sql.toStdString() << "\n  -> " << q.lastError().text().toStdString();
            return {};
        }
        return q.next() ? q.value(0) : QVariant();
    }

private:
    QTemporaryDir dir_;
    QString name_;
    QString file_;
    QSqlDatabase db_;
};

}  // namespace kav::data::test
