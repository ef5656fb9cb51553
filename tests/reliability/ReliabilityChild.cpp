// kav_reliability_child: another client of a test's database, saving as the loan editor does.
//   crash-saves FILE MEMBERS: saves loan 1 as its next version, then a new loan, printing
//       "saved V" and "new J" after each commit, until killed.
//   concurrent FILE COUNT TAG MEMBERS: after "ready" and a line on its input, saves COUNT
//       tagged loans a few milliseconds apart; "error ..." for each that raised; exit code 1
//       when one did.

#include <QCoreApplication>
#include <QThread>
#include <cstdio>
#include <iostream>

#include "LoanVersions.h"
#include "base/Errors.h"
#include "data/DemoData.h"
#include "session/DataEnvironment.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

qint64 number(Connection& cnt, const QString& sql) {
    Recordset rs(cnt);
    rs.Open(sql);
    return rs.RecordCount() > 0 ? rs.Fields(u"n"_s).toLongLong() : 0;
}

[[noreturn]] void crashSaves(Connection& cnt, int members) {
    // Where the last client stopped.
    qint64 version = number(cnt, u"select substr(Notes, 2) as n from tblHRLoan where ID=1"_s);
    qint64 newLoans = number(cnt, u"select count(*) as n from tblHRLoan where ID > 1"_s);
    say(u"ready"_s);
    for (;;) {
        loan_save::WriteLoan(cnt, reliability::LargeLoanVersion(++version, members),
                            stored_loan::Expected{1, std::nullopt, true});
        say(u"saved %1"_s.arg(version));
        loan_save::WriteLoan(cnt, reliability::NewLoan(++newLoans, members), std::nullopt);
        say(u"new %1"_s.arg(newLoans));
    }
}

int concurrent(Connection& cnt, int count, int tag, int members) {
    cnt.Open();
    say(u"ready"_s);
    std::cin.get();  // the line that says go
    int errors = 0;
    for (int i = 1; i <= count; ++i) {
        // A moment between two saves, as between two clerks' clicks.
        QThread::usleep(3000 + (i * 7919 + tag * 104729) % 7000);
        try {
            loan_save::WriteLoan(cnt, reliability::TaggedLoan(tag, i, members), std::nullopt);
        } catch (const KavError& e) {
            ++errors;
            say(u"error %1 %2"_s.arg(int(e.kind())).arg(e.message().simplified()));
        }
    }
    return errors == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    try {
        Connection cnt;
        if (a.size() > 2) cnt.SetConnectionString(data::EmbeddedConnectionString(a[2]));
        if (a.size() == 4 && a[1] == u"crash-saves") crashSaves(cnt, a[3].toInt());
        if (a.size() == 6 && a[1] == u"concurrent")
            return concurrent(cnt, a[3].toInt(), a[4].toInt(), a[5].toInt());
    } catch (const KavError& e) {
        std::fprintf(stderr, "kav_reliability_child: %s\n", e.message().toUtf8().constData());
        return 1;
    }
    std::fprintf(stderr, "usage: see the head of ReliabilityChild.cpp\n");
    return 2;
}
