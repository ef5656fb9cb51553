#pragma once

// The embedded database reached through the sqlite3 C library alone: the baseline every
// measurement of the module is compared with, and the generator's fast writer.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QtGlobal>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace kav::bench {

class RawDb {
public:
    // Opens (creating when create is true) the database file. Raises KavError (Connection).
    explicit RawDb(const QString& file, bool create = false);
    ~RawDb();
    RawDb(const RawDb&) = delete;
    RawDb& operator=(const RawDb&) = delete;

    sqlite3* handle() const { return db_; }

    // Runs one or more statements that return no rows. Raises KavError (Database).
    void exec(const QString& sql);

    // Runs a query, steps every row and reads the named columns (found without regard to
    // case; every column when the list is empty) as text, the way a program that only
    // shows the values would. Returns the number of rows.
    qint64 stepAll(const QString& sql, const QStringList& columns = {});

    // Runs a query and returns the named columns (every column when the list is empty) of
    // every row as texts; Null is the empty text.
    QList<QStringList> rows(const QString& sql, const QStringList& columns = {});

    // The named columns of every row kept as UTF-8, one cell after the other, the way a grid
    // model that converts only the cells it paints would keep them.
    struct Utf8Cells {
        QByteArray bytes;
        std::vector<quint32> ends;  // where each cell ends in bytes
    };
    Utf8Cells utf8Cells(const QString& sql, const QStringList& columns);

    // The first column of the first row, or a null QVariant.
    QVariant scalar(const QString& sql);

    // A checksum of every byte read by stepAll, so the reads cannot be optimised away.
    quint64 readSum() const { return sum_; }

private:
    sqlite3_stmt* prepare(const QString& sql);
    // The indexes of the named columns; raises KavError (Database) for an unknown one.
    static std::vector<int> columnsOf(sqlite3_stmt* stmt, const QStringList& columns,
                                      const QString& sql);
    // Finalises the statement; raises KavError (Database) unless it ran to its end.
    void finish(sqlite3_stmt* stmt, int rc, const QString& sql);
    [[noreturn]] void fail(const QString& sql) const;

    sqlite3* db_ = nullptr;
    quint64 sum_ = 0;
};

// A statement prepared once and run many times with values bound by position (1-based):
// the generator's inserts.
class RawStatement {
public:
    RawStatement(RawDb& db, const QString& sql);
    ~RawStatement();
    RawStatement(const RawStatement&) = delete;
    RawStatement& operator=(const RawStatement&) = delete;

    RawStatement& bind(int index, qint64 value);
    RawStatement& bind(int index, const QString& value);
    RawStatement& bindNull(int index);
    // Steps the statement, then resets it and clears its values.
    void run();

private:
    RawDb& db_;
    QString sql_;
    sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace kav::bench
