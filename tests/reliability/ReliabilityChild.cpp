// kav_reliability_child: a second client of the loan database for the reliability tests. It
// saves loans the way the loan editor does (loan_save::WriteLoan on a connection of its own),
// so the tests can kill it half-way, run two of it at once, or let it hold the database.
//
//   kav_reliability_child crash-saves FILE MEMBERS
//       Saves loan 1 again and again as version v+1 of what it holds (final on odd versions,
//       temporary on even ones, MEMBERS member rows), each followed by one new final loan
//       "n<j>" of NewLoanMembers members; prints "saved v" / "new j" after each commit. Runs
//       until killed.
//   kav_reliability_child concurrent FILE COUNT TAG MEMBERS
//       Prints "ready", waits for a line on its input, then saves COUNT new final loans with
//       the notes "TAG:i" and MEMBERS member rows each (employees TAG*1000+k), a few
//       milliseconds apart. Prints
//       "error ..." for every save that raised and "done E" at the end; exits with 1 when E
//       is not 0.
//   kav_reliability_child hold FILE MILLISECONDS
//       Begins a write transaction, prints "locked", keeps it for MILLISECONDS, rolls it
//       back, prints "released".

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QThread>
#include <cstdio>
#include <iostream>
#include <string>

#include "LoanVersions.h"
#include "base/Errors.h"
#include "data/DemoData.h"
#include "loan_editor/LoanSave.h"
#include "session/DataEnvironment.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

int usage() {
    std::fprintf(stderr,
                 "usage: kav_reliability_child crash-saves FILE MEMBERS | concurrent FILE COUNT "
                 "TAG MEMBERS | hold FILE MILLISECONDS\n");
    return 2;
}

qint64 scalar(Connection& cnt, const QString& sql) {
    Recordset rs(cnt);
    rs.Open(sql);
    const QVariant v = rs.RecordCount() > 0 ? rs.Fields(u"n"_s) : QVariant();
    return v.isNull() ? 0 : v.toLongLong();
}

int crashSaves(const QString& file, int members) {
    Connection cnt;
    cnt.SetConnectionString(data::EmbeddedConnectionString(file));
    // Where the last client stopped: the version loan 1 holds and the new loans stored.
    Recordset rs(cnt);
    rs.Open(u"select Notes from tblHRLoan where ID=1"_s);
    qint64 version = reliability::VersionOf(rs.Fields(u"Notes"_s).toString());
    rs.Close();
    qint64 newLoans = scalar(cnt, u"select count(*) as n from tblHRLoan where Notes like 'n%'"_s);
    say(u"ready"_s);
    for (;;) {
        ++version;
        loan_save::WriteLoan(cnt, reliability::LargeLoanVersion(version, members), qint32(1));
        say(u"saved %1"_s.arg(version));
        ++newLoans;
        loan_save::WriteLoan(cnt, reliability::NewLoan(newLoans, members), std::nullopt);
        say(u"new %1"_s.arg(newLoans));
    }
}

int concurrent(const QString& file, int count, int tag, int members) {
    Connection cnt;
    cnt.SetConnectionString(data::EmbeddedConnectionString(file));
    cnt.Open();
    say(u"ready"_s);
    std::string go;
    std::getline(std::cin, go);
    int errors = 0;
    for (int i = 1; i <= count; ++i) {
        // A moment between two saves, as between two clerks' clicks; the other client gets
        // its turn.
        QThread::usleep(3000 + (i * 7919 + tag * 104729) % 7000);
        try {
            loan_save::WriteLoan(cnt, reliability::TaggedLoan(tag, i, members), std::nullopt);
        } catch (const KavError& e) {
            ++errors;
            say(u"error %1 %2"_s.arg(int(e.kind())).arg(e.message().simplified()));
        }
    }
    say(u"done %1"_s.arg(errors));
    return errors == 0 ? 0 : 1;
}

int hold(const QString& file, int milliseconds) {
    QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"holder"_s);
    db.setDatabaseName(file);
    if (!db.open()) return 2;
    {
        QSqlQuery q(db);
        if (!q.exec(u"BEGIN IMMEDIATE"_s) ||
            !q.exec(u"update tblHRLoan set Notes = Notes where 1=0"_s)) {
            say(u"failed "_s + q.lastError().text());
            return 1;
        }
        say(u"locked"_s);
        QThread::msleep(milliseconds);
        q.exec(u"ROLLBACK"_s);
    }
    say(u"released"_s);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    try {
        if (a.size() == 4 && a[1] == u"crash-saves") return crashSaves(a[2], a[3].toInt());
        if (a.size() == 6 && a[1] == u"concurrent")
            return concurrent(a[2], a[3].toInt(), a[4].toInt(), a[5].toInt());
        if (a.size() == 4 && a[1] == u"hold") return hold(a[2], a[3].toInt());
    } catch (const KavError& e) {
        std::fprintf(stderr, "kav_reliability_child: %s\n", e.message().toUtf8().constData());
        return 1;
    }
    return usage();
}
