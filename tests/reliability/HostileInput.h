#pragma once

// What the hostile-input tests share: a watch on the statements a connection runs, pasting and
// typing into a box as the clerk does, the database's schema and contents as text, and the
// texts that look like SQL.

#include <sqlite3.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QString>
#include <QStringList>
#include <QTest>

#include "support/TestDatabase.h"

namespace kav::test {

using namespace Qt::StringLiterals;

// Every statement that starts running on a connection while it is watched.
class StatementTrace {
public:
    explicit StatementTrace(QSqlDatabase db) {
        const QVariant handle = db.driver()->handle();
        db_ = *static_cast<sqlite3* const*>(handle.data());
        sqlite3_trace_v2(db_, SQLITE_TRACE_STMT, &StatementTrace::seen, this);
    }
    ~StatementTrace() { sqlite3_trace_v2(db_, 0, nullptr, nullptr); }
    QStringList statements;
    // The statements that write or begin and end a transaction.
    QStringList writes() const {
        QStringList out;
        for (const QString& s : statements)
            if (!s.startsWith(u"select"_s, Qt::CaseInsensitive) &&
                !s.startsWith(u"PRAGMA"_s, Qt::CaseInsensitive))
                out << s;
        return out;
    }

private:
    static int seen(unsigned, void* self, void*, void* sql) {
        static_cast<StatementTrace*>(self)->statements
            << QString::fromUtf8(static_cast<const char*>(sql));
        return 0;
    }
    sqlite3* db_;
};

inline void paste(QWidget* box, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
}

inline void type(QWidget* box, const QString& text) {
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, box, Qt::Key_unknown, QString(c), Qt::NoModifier);
}

inline QStringList schema(const TestDatabase& db) {
    QStringList names;
    for (const Row& r : db.rows(u"select type, name, sql from sqlite_master order by name"_s))
        names << r[u"name"_s].toString() + u' ' + r[u"sql"_s].toString();
    return names;
}

// The texts of the suite's tables, every row, to compare before and after.
inline QString contents(const TestDatabase& db, const QString& where = QString()) {
    QString text;
    for (const QString& sql : {u"select * from tblHRLoan "_s + where + u" order by ID"_s,
                               u"select * from tblHRLoanDetail order by ID"_s,
                               u"select * from tblEmployee order by ID"_s})
        for (const Row& r : db.rows(sql)) {
            for (auto it = r.begin(); it != r.end(); ++it) text += it->toString() + u';';
            text += u'\n';
        }
    return text;
}

// Text in a box, and how the statement must quote it.
struct Hostile {
    QString typed;
    QString quoted;
};

inline const Hostile kHostile[] = {
    {u"x'); delete from tblHRLoan; --"_s, u"x''); delete from tblHRLoan; --"_s},
    {u"'; drop table tblHRLoanDetail; /*"_s, u"''; drop table tblHRLoanDetail; /*"_s},
    {u"*/ ' or 1=1 --"_s, u"*/ '' or 1=1 --"_s},
    {u"وام ''ويژه''; --"_s, u"وام ''''ويژه''''; --"_s},
    {u"\\' \" ` ; \\"_s, u"\\'' \" ` ; \\"_s},
};

}  // namespace kav::test
