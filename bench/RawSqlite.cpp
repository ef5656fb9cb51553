#include "RawSqlite.h"

#include <sqlite3.h>

#include <QByteArray>
#include <vector>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::bench {

RawDb::RawDb(const QString& file, bool create) {
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(file.toUtf8().constData(), &db_, flags, nullptr) != SQLITE_OK) {
        const QString error = QString::fromUtf8(sqlite3_errmsg(db_));
        sqlite3_close(db_);
        db_ = nullptr;
        throw KavError(KavError::Kind::Connection, file + u": "_s + error);
    }
    sqlite3_busy_timeout(db_, 10000);
}

RawDb::~RawDb() { sqlite3_close(db_); }

void RawDb::fail(const QString& sql) const {
    throw KavError(KavError::Kind::Database,
                   QString::fromUtf8(sqlite3_errmsg(db_)) + u"\n"_s + sql.left(300));
}

void RawDb::exec(const QString& sql) {
    if (sqlite3_exec(db_, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(sql);
}

sqlite3_stmt* RawDb::prepare(const QString& sql) {
    sqlite3_stmt* stmt = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(db_, text.constData(), int(text.size()), &stmt, nullptr) != SQLITE_OK)
        fail(sql);
    return stmt;
}

std::vector<int> RawDb::columnsOf(sqlite3_stmt* stmt, const QStringList& columns,
                                  const QString& sql) {
    std::vector<int> wanted;
    const int count = sqlite3_column_count(stmt);
    if (columns.isEmpty()) {
        for (int c = 0; c < count; ++c) wanted.push_back(c);
        return wanted;
    }
    for (const QString& name : columns) {
        int found = -1;
        for (int c = 0; c < count && found < 0; ++c)
            if (name.compare(QString::fromUtf8(sqlite3_column_name(stmt, c)),
                             Qt::CaseInsensitive) == 0)
                found = c;
        if (found < 0) {
            sqlite3_finalize(stmt);
            throw KavError(KavError::Kind::Database, u"no column "_s + name + u" in "_s + sql);
        }
        wanted.push_back(found);
    }
    return wanted;
}

void RawDb::finish(sqlite3_stmt* stmt, int rc, const QString& sql) {
    const QString error = QString::fromUtf8(sqlite3_errmsg(db_));
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE)
        throw KavError(KavError::Kind::Database, error + u"\n"_s + sql.left(300));
}

qint64 RawDb::stepAll(const QString& sql, const QStringList& columns) {
    sqlite3_stmt* stmt = prepare(sql);
    const std::vector<int> wanted = columnsOf(stmt, columns, sql);
    qint64 count = 0;
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        ++count;
        for (int c : wanted) {
            const unsigned char* text = sqlite3_column_text(stmt, c);
            const int bytes = sqlite3_column_bytes(stmt, c);
            if (text && bytes > 0) sum_ += quint64(text[0]) + quint64(bytes);
        }
    }
    finish(stmt, rc, sql);
    return count;
}

QList<QStringList> RawDb::rows(const QString& sql, const QStringList& columns) {
    sqlite3_stmt* stmt = prepare(sql);
    const std::vector<int> wanted = columnsOf(stmt, columns, sql);
    QList<QStringList> result;
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        QStringList row;
        row.reserve(qsizetype(wanted.size()));
        for (int c : wanted)
            row << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, c)),
                                     sqlite3_column_bytes(stmt, c));
        result << row;
    }
    finish(stmt, rc, sql);
    return result;
}

RawDb::Utf8Cells RawDb::utf8Cells(const QString& sql, const QStringList& columns) {
    sqlite3_stmt* stmt = prepare(sql);
    const std::vector<int> wanted = columnsOf(stmt, columns, sql);
    Utf8Cells cells;
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        for (int c : wanted) {
            cells.bytes.append(reinterpret_cast<const char*>(sqlite3_column_text(stmt, c)),
                               sqlite3_column_bytes(stmt, c));
            cells.ends.push_back(quint32(cells.bytes.size()));
        }
    }
    finish(stmt, rc, sql);
    return cells;
}

QVariant RawDb::scalar(const QString& sql) {
    sqlite3_stmt* stmt = prepare(sql);
    QVariant value;
    const int rc = sqlite3_step(stmt);
    if (rc == SQLITE_ROW) {
        switch (sqlite3_column_type(stmt, 0)) {
            case SQLITE_INTEGER:
                value = qint64(sqlite3_column_int64(stmt, 0));
                break;
            case SQLITE_FLOAT:
                value = sqlite3_column_double(stmt, 0);
                break;
            case SQLITE_NULL:
                break;
            default:
                value =
                    QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)),
                                      sqlite3_column_bytes(stmt, 0));
        }
    }
    const QString error = QString::fromUtf8(sqlite3_errmsg(db_));
    sqlite3_finalize(stmt);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
        throw KavError(KavError::Kind::Database, error + u"\n"_s + sql.left(300));
    return value;
}

// ---- RawStatement ----

RawStatement::RawStatement(RawDb& db, const QString& sql) : db_(db), sql_(sql) {
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(db.handle(), text.constData(), int(text.size()), &stmt_, nullptr) !=
        SQLITE_OK)
        throw KavError(KavError::Kind::Database,
                       QString::fromUtf8(sqlite3_errmsg(db.handle())) + u"\n"_s + sql);
}

RawStatement::~RawStatement() { sqlite3_finalize(stmt_); }

RawStatement& RawStatement::bind(int index, qint64 value) {
    sqlite3_bind_int64(stmt_, index, value);
    return *this;
}

RawStatement& RawStatement::bind(int index, const QString& value) {
    const QByteArray text = value.toUtf8();
    sqlite3_bind_text(stmt_, index, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    return *this;
}

RawStatement& RawStatement::bindNull(int index) {
    sqlite3_bind_null(stmt_, index);
    return *this;
}

void RawStatement::run() {
    const int rc = sqlite3_step(stmt_);
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW)
        throw KavError(KavError::Kind::Database,
                       QString::fromUtf8(sqlite3_errmsg(db_.handle())) + u"\n"_s + sql_);
}

}  // namespace kav::bench
