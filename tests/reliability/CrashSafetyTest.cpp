// A client killed (SIGKILL) at random moments while it saves a large loan final and temporary
// again and again, and new final loans between: after every kill the database passes its
// integrity check, every loan is wholly one version (the one before the save that was cut
// short, or the one after), loan numbers stay unique and no member row is left without its
// loan. The next client carries on where the last one stopped.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlQuery>
#include <iostream>
#include <random>

#include "ChildProcess.h"
#include "LoanVersions.h"
#include "session/DataEnvironment.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::reliability;

namespace {

constexpr int kMembers = 1500;

QStringList column(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    QStringList values;
    if (!q.exec(sql)) values << u"failed: "_s + sql;
    while (q.next()) values << q.value(0).toString();
    return values;
}

}  // namespace

TEST(CrashSafety, AClientKilledWhileSavingLeavesEveryLoanWhollyBeforeOrAfter) {
    const int kills = Scaled(6, 100);
    test::TestDatabase db;
    {
        Connection cnt;
        cnt.SetConnectionString(db.connectionString());
        ASSERT_EQ(loan_save::WriteLoan(cnt, LargeLoanVersion(0, kMembers), std::nullopt), 1);
    }
    std::mt19937 rng(14);
    qint64 version = 0, newLoans = 0;
    int cutShort = 0, committedUnreported = 0, saves = 0;
    const QString journal = db.file() + u"-journal"_s;
    for (int kill = 0; kill < kills; ++kill) {
        Child child({u"crash-saves"_s, db.file(), QString::number(kMembers)});
        ASSERT_TRUE(child.WaitForLine(u"ready"_s)) << child.Errors().toStdString();
        // One to three saves go through; the kill then lands anywhere in the next two, however
        // fast this build saves.
        QElapsedTimer timer;
        timer.start();
        const int before = std::uniform_int_distribution<int>(1, 3)(rng);
        while (child.Lines().size() < 1 + before && timer.elapsed() < 120000) child.Pump(100);
        const qint64 perSave = timer.elapsed() / before;
        const qint64 wait = std::uniform_int_distribution<qint64>(0, 2 * perSave)(rng);
        timer.restart();
        while (timer.elapsed() < wait) child.Pump(int(wait - timer.elapsed()));
        child.Kill();
        saves +=
            int(child.Lines().filter(u"saved "_s).size() + child.Lines().filter(u"new "_s).size());
        const qint64 reportedVersion = child.LastNumber(u"saved"_s, version);
        const qint64 reportedNew = child.LastNumber(u"new"_s, newLoans);
        if (QFileInfo(journal).size() > 0) ++cutShort;  // a transaction was open: a hot journal

        // The next client to open the file rolls back what was cut short.
        EXPECT_EQ(column(db.db(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
        version = VersionOf(column(db.db(), u"select Notes from tblHRLoan where ID=1"_s).value(0));
        ASSERT_TRUE(version == reportedVersion || version == reportedVersion + 1)
            << "loan 1 holds version " << version << ", the client last reported "
            << reportedVersion;
        EXPECT_EQ(LoanDifference(db.db(), 1, LargeLoanVersion(version, kMembers)), QString());

        const QStringList newNotes =
            column(db.db(), u"select Notes from tblHRLoan where ID > 1 order by ID"_s);
        newLoans = newNotes.size();
        ASSERT_TRUE(newLoans == reportedNew || newLoans == reportedNew + 1)
            << newLoans << " new loans, the client reported " << reportedNew;
        if (version > reportedVersion || newLoans > reportedNew) ++committedUnreported;
        for (int j = 1; j <= newLoans; ++j) {
            EXPECT_EQ(newNotes[j - 1], u"n%1"_s.arg(j));
            EXPECT_EQ(LoanDifference(db.db(), j + 1, NewLoan(j, kMembers)), QString());
        }
        EXPECT_EQ(column(db.db(),
                         u"select Code from tblHRLoan where Code is not null group by "
                         "Code having count(*) > 1"_s),
                  QStringList());
        EXPECT_EQ(column(db.db(),
                         u"select count(*) from tblHRLoanDetail where LoanID not in "
                         "(select ID from tblHRLoan)"_s),
                  QStringList{u"0"_s});
        if (HasFailure()) break;
    }
    // The kills must have landed inside saves, not only between them.
    EXPECT_GT(cutShort, 0);
    std::cout << "[ figures  ] " << kills << " kills survived, " << cutShort
              << " with a save's transaction open, " << committedUnreported
              << " just after a commit; " << saves << " saves completed, loan 1 at version "
              << version << ", " << newLoans << " new loans of " << NewLoanMembers
              << " members, the large loan " << kMembers << " members; nothing lost\n";
}
