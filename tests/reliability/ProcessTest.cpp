// Other processes (kav_reliability_child) on the test's database: a client killed while it
// saves, and two clients saving at once. KAVHRLOAN_SOAK=1 asks for the long runs of soak.sh.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <iostream>
#include <random>

#include "LoanVersions.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::reliability;

namespace {

int Scaled(int suite, int soak) {
    return qEnvironmentVariableIsEmpty("KAVHRLOAN_SOAK") ? suite : soak;
}

// kav_reliability_child and the lines it has printed.
struct Child {
    explicit Child(const QStringList& arguments) {
        process.start(QStringLiteral(KAV_RELIABILITY_CHILD), arguments);
    }
    ~Child() { kill(); }
    // Reads what has arrived, waiting at most `milliseconds`.
    void pump(int milliseconds) {
        process.waitForReadyRead(milliseconds);
        pending += process.readAllStandardOutput();
        for (qsizetype end; (end = pending.indexOf('\n')) >= 0; pending.remove(0, end + 1))
            lines << QString::fromUtf8(pending.left(end));
    }
    bool ready() {
        QElapsedTimer timer;
        timer.start();
        while (!lines.contains(u"ready"_s) && timer.elapsed() < 20000 &&
               process.state() != QProcess::NotRunning)
            pump(100);
        pump(0);
        return lines.contains(u"ready"_s);
    }
    void kill() {
        process.kill();  // SIGKILL
        process.waitForFinished();
        pump(0);
    }
    // The number after the last line "word N", or `otherwise`.
    qint64 last(const QString& word, qint64 otherwise) const {
        for (qsizetype i = lines.size() - 1; i >= 0; --i)
            if (lines[i].startsWith(word + u' ')) return lines[i].mid(word.size() + 1).toLongLong();
        return otherwise;
    }
    QProcess process;
    QByteArray pending;
    QStringList lines;
};

// "" when the stored loan `id` is exactly the record (header, final or temporary, member rows
// in order); otherwise what is stored and what was saved.
QString LoanDifference(const test::TestDatabase& db, qint64 id, const loan_save::LoanRecord& e) {
    QStringList saved = {
        u"%1|%2|%3|%4|%5|%6|%7|%8"_s.arg(e.isFinal)
            .arg(e.notes, e.loanValue, e.originalValue, e.monthlyValue, e.payBackNumber)
            .arg(e.remainderOption)
            .arg(e.typeId)};
    for (const loan_save::MemberRow& m : e.members)
        saved << QStringList{m.employeeId, m.guarantors[0], m.guarantors[1], m.guarantors[2]}.join(
            u'|');
    const QStringList stored =
        db.table(
            u"select Code is not null, Notes, LoanValue, OriginalLoanValue, MonthlyValue, "
            "PayBackNumber, UseRemainedValueInFirstMonth, TypeID from tblHRLoan where ID=%1"_s.arg(
                id)) +
        db.table(
            u"select EmployeeID, ifnull(SupporterEmployeeID1, 'null'), "
            "ifnull(SupporterEmployeeID2, 'null'), ifnull(SupporterEmployeeID3, 'null') "
            "from tblHRLoanDetail where LoanID=%1 order by ID"_s.arg(id));
    if (stored == saved) return {};
    return u"loan %1 holds [%2] and %3 member rows, not [%4] and %5"_s.arg(id)
        .arg(stored.value(0))
        .arg(stored.size() - 1)
        .arg(saved[0])
        .arg(saved.size() - 1);
}

}  // namespace

// A large loan saved final and temporary again and again, a new final loan after each: after
// every kill the file passes its integrity check, every loan is wholly one version (the one
// before the save cut short or the one after), codes stay unique, no member row is orphaned.
TEST(CrashSafety, AClientKilledWhileSavingLeavesEveryLoanWhollyBeforeOrAfter) {
    constexpr int kMembers = 1500;
    const int kills = Scaled(4, 100);
    test::TestDatabase db;
    {
        Connection cnt;
        cnt.SetConnectionString(db.connectionString());
        ASSERT_EQ(loan_save::WriteLoan(cnt, LargeLoanVersion(0, kMembers), std::nullopt), 1);
    }
    std::mt19937 rng(14);
    qint64 version = 0, newLoans = 0;
    int cutShort = 0;
    for (int kill = 0; kill < kills && !HasFailure(); ++kill) {
        Child child({u"crash-saves"_s, db.file(), QString::number(kMembers)});
        ASSERT_TRUE(child.ready()) << child.process.readAllStandardError().toStdString();
        // One to three saves go through, timed; the kill lands anywhere in the next two.
        QElapsedTimer timer;
        timer.start();
        const int before = std::uniform_int_distribution<int>(1, 3)(rng);
        while (child.lines.size() < 1 + before && timer.elapsed() < 120000) child.pump(100);
        const qint64 wait =
            std::uniform_int_distribution<qint64>(0, 2 * timer.elapsed() / before)(rng);
        timer.restart();
        while (timer.elapsed() < wait) child.pump(int(wait - timer.elapsed()));
        child.kill();
        const qint64 reportedVersion = child.last(u"saved"_s, version);
        const qint64 reportedNew = child.last(u"new"_s, newLoans);
        cutShort += QFileInfo(db.file() + u"-journal"_s).size() > 0;  // a hot journal

        // Opening the file rolls back what was cut short.
        EXPECT_EQ(db.table(u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
        version = db.scalar(u"select substr(Notes, 2) from tblHRLoan where ID=1"_s).toLongLong();
        ASSERT_TRUE(version == reportedVersion || version == reportedVersion + 1)
            << "loan 1 at version " << version << ", the client reported " << reportedVersion;
        EXPECT_EQ(LoanDifference(db, 1, LargeLoanVersion(version, kMembers)), QString());
        newLoans = db.scalar(u"select count(*) from tblHRLoan where ID > 1"_s).toLongLong();
        ASSERT_TRUE(newLoans == reportedNew || newLoans == reportedNew + 1)
            << newLoans << " new loans, the client reported " << reportedNew;
        for (int j = 1; j <= newLoans; ++j)
            EXPECT_EQ(LoanDifference(db, j + 1, NewLoan(j, kMembers)), QString());
        EXPECT_EQ(db.table(u"select Code from tblHRLoan where Code is not null group by "
                           "Code having count(*) > 1 union all select count(*) from "
                           "tblHRLoanDetail where LoanID not in (select ID from tblHRLoan)"_s),
                  QStringList{u"0"_s});
    }
    EXPECT_GT(cutShort, 0) << "no kill landed inside a save";
    std::cout << "[ figures  ] " << kills << " kills, " << cutShort << " inside a save; loan 1 at "
              << "version " << version << ", " << newLoans << " new loans; nothing lost\n";
}

// Two processes saving final loans at the same moment: codes 1, 2, 3, ... without a gap or a
// repeat, each loan with exactly the member rows of the client that saved it, no error shown.
TEST(Concurrency, TwoProcessesSavingAtOnceGetDistinctGapFreeCodesAndTheirOwnMembers) {
    const int saves = Scaled(200, 2000);
    test::TestDatabase db;
    std::vector<std::unique_ptr<Child>> clients;
    for (const QString& tag : {u"1"_s, u"2"_s}) {
        clients.push_back(std::make_unique<Child>(
            QStringList{u"concurrent"_s, db.file(), QString::number(saves), tag, u"3"_s}));
        ASSERT_TRUE(clients.back()->ready())
            << clients.back()->process.readAllStandardError().toStdString();
    }
    for (auto& c : clients) {
        c->process.write("go\n");
        c->process.waitForBytesWritten();
    }
    for (auto& c : clients) {
        EXPECT_TRUE(c->process.waitForFinished(240000));
        c->pump(0);
        EXPECT_EQ(c->process.exitCode(), 0) << c->lines.join(u'\n').toStdString();
    }

    int code = 0, turns = 0;
    QString lastTag;
    for (const QString& row : db.table(u"select ID, Code, Notes from tblHRLoan order by Code"_s)) {
        const QStringList f = row.split(u'|'), tagAndNumber = f.value(2).split(u':');
        EXPECT_EQ(f[1].toInt(), ++code);
        ASSERT_EQ(tagAndNumber.size(), 2) << row.toStdString();
        turns += tagAndNumber[0] != lastTag;
        lastTag = tagAndNumber[0];
        EXPECT_EQ(LoanDifference(db, f[0].toLongLong(),
                                 TaggedLoan(tagAndNumber[0].toInt(), tagAndNumber[1].toInt(), 3)),
                  QString());
    }
    EXPECT_EQ(code, 2 * saves);
    EXPECT_EQ(db.scalar(u"select count(distinct Notes) || ' ' || (select count(*) from "
                        "tblHRLoanDetail) from tblHRLoan"_s),
              u"%1 %2"_s.arg(2 * saves).arg(6 * saves));
    EXPECT_GE(turns, 3) << "the two did not save at the same time";
}
