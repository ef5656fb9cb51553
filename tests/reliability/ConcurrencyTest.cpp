// Two clerks' programs saving new final loans at the same moment, as two processes on one
// database file: every loan gets its own number, the numbers run 1, 2, 3, ... without a gap,
// every member row belongs to the loan of the client that saved it, and neither clerk sees an
// error while the other holds the database only briefly. A database held past the wait says
// so plainly and writes nothing.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QSqlQuery>
#include <iostream>

#include "ChildProcess.h"
#include "LoanVersions.h"
#include "loan_editor/EditorFixture.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::reliability;

TEST(Concurrency, TwoProcessesSavingAtOnceGetDistinctGapFreeCodesAndTheirOwnMembers) {
    const int saves = Scaled(200, 2000);
    constexpr int kMembers = 3;
    test::TestDatabase db;
    Child first(
        {u"concurrent"_s, db.file(), QString::number(saves), u"1"_s, QString::number(kMembers)});
    Child second(
        {u"concurrent"_s, db.file(), QString::number(saves), u"2"_s, QString::number(kMembers)});
    ASSERT_TRUE(first.WaitForLine(u"ready"_s)) << first.Errors().toStdString();
    ASSERT_TRUE(second.WaitForLine(u"ready"_s)) << second.Errors().toStdString();
    QElapsedTimer timer;
    timer.start();
    first.Write("go\n");
    second.Write("go\n");
    EXPECT_EQ(first.Finish(240000), 0) << first.Lines().join(u'\n').toStdString();
    EXPECT_EQ(second.Finish(240000), 0) << second.Lines().join(u'\n').toStdString();
    const qint64 elapsed = timer.elapsed();
    EXPECT_EQ(first.Lines().filter(u"error"_s), QStringList());
    EXPECT_EQ(second.Lines().filter(u"error"_s), QStringList());

    QSqlQuery q(db.db());
    ASSERT_TRUE(q.exec(u"select ID, Code, Notes from tblHRLoan order by Code"_s));
    int expectedCode = 1, turns = 0;
    QString lastTag;
    QSet<QString> notes;
    while (q.next()) {
        EXPECT_EQ(q.value(1).toInt(), expectedCode++) << "codes are not 1, 2, 3, ...";
        const QString note = q.value(2).toString();
        EXPECT_FALSE(notes.contains(note)) << note.toStdString() << " saved twice";
        notes.insert(note);
        const QStringList tagAndNumber = note.split(u':');
        ASSERT_EQ(tagAndNumber.size(), 2) << note.toStdString();
        if (tagAndNumber[0] != lastTag) ++turns;
        lastTag = tagAndNumber[0];
        // The header and exactly the member rows of the client that saved it.
        EXPECT_EQ(
            LoanDifference(db.db(), q.value(0).toLongLong(),
                           TaggedLoan(tagAndNumber[0].toInt(), tagAndNumber[1].toInt(), kMembers)),
            QString());
    }
    EXPECT_EQ(expectedCode - 1, 2 * saves);
    EXPECT_EQ(db.scalar(u"select count(*) from tblHRLoanDetail"_s).toInt(), 2 * saves * kMembers);
    // The two really saved at the same time: their loans' numbers interleave.
    EXPECT_GE(turns, 3);
    std::cout << "[ figures  ] " << 2 * saves << " final loans saved by two processes at once in "
              << elapsed << " ms, the clients took turns " << turns << " times; codes 1.."
              << 2 * saves << " without gap, no error shown\n";
}

namespace {

using test::EditorTest;

class BusyTest : public EditorTest {
protected:
    QString loans() {
        QString text;
        for (const test::Row& r : t.db.rows(u"select ID, Code, Notes from tblHRLoan order by ID"_s))
            text += r[u"id"_s].toString() + u' ' + r[u"code"_s].toString() + u' ' +
                    r[u"notes"_s].toString() + u'\n';
        return text + t.db.scalar(u"select count(*) from tblHRLoanDetail"_s).toString();
    }
};

}  // namespace

// While another program holds the database for less than the wait, saving simply takes a
// moment longer; held past the wait, the clerk reads that the database is busy, nothing is
// written and the window stays as it was, so saving again works.
TEST_F(BusyTest, ASaveWaitsOutAShortLockAndSaysBusyAfterALongOne) {
    auto& w = editor();
    w.ViewPRSLoansInfo(test::TemporaryLoan);
    w.cmdEdit_Click();
    w.txtNotes->setText(u"کوتاه"_s);
    {
        Child holder({u"hold"_s, t.db.file(), u"1500"_s});
        ASSERT_TRUE(holder.WaitForLine(u"locked"_s)) << holder.Errors().toStdString();
        QElapsedTimer timer;
        timer.start();
        w.cmdFinSave->click();
        EXPECT_GE(timer.elapsed(), 800);  // it did wait for the other program
        EXPECT_EQ(t.messages->texts(), QStringList());
        EXPECT_EQ(session().LoanFormMode, ModeView);
        EXPECT_EQ(t.db.scalar(u"select Notes from tblHRLoan where ID=1"_s).toString(), u"کوتاه"_s);
        EXPECT_EQ(holder.Finish(10000), 0);
    }

    w.ViewPRSLoansInfo(test::SeparateLoan);
    w.cmdEdit_Click();
    w.txtNotes->setText(u"بلند"_s);
    const QString before = loans();
    {
        Child holder({u"hold"_s, t.db.file(), u"60000"_s});
        ASSERT_TRUE(holder.WaitForLine(u"locked"_s)) << holder.Errors().toStdString();
        w.cmdRegSave->click();
        ASSERT_EQ(t.messages->shown.size(), 1);
        EXPECT_EQ(t.messages->last().title, u"خطا"_s);
        EXPECT_TRUE(t.messages->last().text.startsWith(
            u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ چند لحظه بعد دوباره تلاش "
            u"کنيد."_s))
            << t.messages->last().text.toStdString();
        EXPECT_EQ(loans(), before);
        EXPECT_EQ(session().LoanFormMode, ModeEdit);
        EXPECT_EQ(w.txtNotes->text(), u"بلند"_s);
        holder.Kill();  // the other program ends; its lock goes with it
    }
    w.cmdRegSave->click();
    EXPECT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.db.scalar(u"select Notes from tblHRLoan where ID=4"_s).toString(), u"بلند"_s);
    EXPECT_EQ(session().LoanFormMode, ModeView);
}
