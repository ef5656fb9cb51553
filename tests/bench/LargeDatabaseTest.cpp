#include <gtest/gtest.h>

#include <QCalendar>
#include <QDate>
#include <QFile>
#include <QTemporaryDir>
#include <set>

#include "LargeDatabase.h"
#include "RawSqlite.h"
#include "base/Errors.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using namespace kav::bench;

namespace {

// A twenty-fifth of the default sizes: 200 employees, 1,000 loans, 4,000 member rows, one
// loan with 40 members, 12,000 payslip rows among them 300 months of one member.
LargeDatabaseOptions small(quint64 seed = 7) {
    LargeDatabaseOptions o;
    o.seed = seed;
    return o.scaledDown(25);
}

// Every table's rows in key order, as text: equal dumps are equal databases.
QStringList dump(const QString& file) {
    RawDb db(file);
    QStringList out;
    for (const QString& table :
         {u"tblEmployee"_s, u"tblHRLoanType"_s, u"tblHRLoan"_s, u"tblHRLoanDetail"_s,
          u"tblHRLoanException"_s, u"tblHRMonthlyPaiedLoan"_s, u"tblHROrdinance"_s,
          u"tblVarekSystemParameters"_s, u"tblVarekUserPermission"_s})
        for (const QStringList& row : db.rows(u"select * from "_s + table + u" order by ID"_s))
            out << table + u": "_s + row.join(u'|');
    return out;
}

class LargeDatabaseTest : public ::testing::Test {
protected:
    QString file(const QString& name) const { return dir.filePath(name); }
    QTemporaryDir dir;
};

TEST_F(LargeDatabaseTest, SameSeedSameDatabaseOtherSeedAnother) {
    const Landmarks a = CreateLargeDatabase(file(u"a.db"_s), small(7));
    const Landmarks b = CreateLargeDatabase(file(u"b.db"_s), small(7));
    CreateLargeDatabase(file(u"c.db"_s), small(8));
    const QStringList dumpA = dump(file(u"a.db"_s));
    EXPECT_EQ(dumpA, dump(file(u"b.db"_s)));
    EXPECT_NE(dumpA, dump(file(u"c.db"_s)));
    EXPECT_EQ(a.bigLoanId, b.bigLoanId);
    EXPECT_EQ(a.longScheduleEmployeeId, b.longScheduleEmployeeId);
}

TEST_F(LargeDatabaseTest, HasTheSizesAskedForAndItsLandmarks) {
    const LargeDatabaseOptions o = small();
    ASSERT_EQ(o.employees, 200);
    ASSERT_EQ(o.bigLoanMembers, 40);
    const Landmarks made = CreateLargeDatabase(file(u"l.db"_s), o);
    RawDb db(file(u"l.db"_s));
    auto count = [&](const QString& sql) { return db.scalar(sql).toLongLong(); };
    EXPECT_EQ(db.scalar(u"PRAGMA journal_mode"_s).toString(), u"wal"_s);  // made here, so WAL
    EXPECT_EQ(count(u"select count(*) from tblEmployee"_s), 200);
    EXPECT_EQ(count(u"select count(*) from tblHRLoan"_s), 1000);
    EXPECT_EQ(count(u"select count(*) from tblHRLoanDetail"_s), 4000);
    EXPECT_EQ(count(u"select count(*) from tblHRLoanException"_s), 800);
    EXPECT_EQ(count(u"select count(*) from tblHRMonthlyPaiedLoan"_s), 12000);
    EXPECT_EQ(count(u"select count(*) from tblHROrdinance"_s), 400);
    EXPECT_EQ(count(u"select count(*) from tblHRLoanType"_s), 8);
    EXPECT_EQ(count(u"select count(distinct TypeID) from tblHRLoan"_s), 8);
    EXPECT_GT(count(u"select count(*) from tblEmployee where WorkStatusID=3"_s), 0);
    EXPECT_GT(count(u"select count(*) from tblHRLoan where Code is null"_s), 0);
    EXPECT_EQ(count(u"select count(distinct Code) from tblHRLoan"_s),
              count(u"select count(Code) from tblHRLoan"_s));
    // The working date is what the payslips stop before; user 1 may open, create and edit.
    EXPECT_EQ(db.scalar(u"select Value from tblVarekSystemParameters where ID=3450"_s).toString(),
              u"1403/07/01"_s);
    EXPECT_EQ(count(u"select count(*) from tblVarekUserPermission where UserID=1 and "
                    u"FormPermissionID in (111801, 111802, 111803)"_s),
              3);

    const Landmarks found = FindLandmarks(db);
    EXPECT_EQ(found.bigLoanId, made.bigLoanId);
    EXPECT_EQ(found.longScheduleLoanId, made.longScheduleLoanId);
    EXPECT_EQ(found.longScheduleEmployeeId, made.longScheduleEmployeeId);

    // The big loan can be edited and saved: temporary, nothing deducted yet.
    const QString big = QString::number(made.bigLoanId);
    EXPECT_EQ(count(u"select count(*) from tblHRLoanDetail where LoanID="_s + big), 40);
    EXPECT_TRUE(db.scalar(u"select Code from tblHRLoan where ID="_s + big).isNull());
    EXPECT_EQ(count(u"select count(*) from tblHRMonthlyPaiedLoan where LoanID="_s + big), 0);

    // Every other loan has 1 to 12 members, never one twice.
    EXPECT_EQ(count(u"select count(*) from (select LoanID, count(*) n from tblHRLoanDetail where "
                    u"LoanID<>"_s +
                    big + u" group by LoanID) where n between 1 and 12"_s),
              999);
    EXPECT_EQ(count(u"select count(*) from (select distinct LoanID, EmployeeID from "
                    u"tblHRLoanDetail)"_s),
              4000);

    // The long schedule: 300 consecutive months of the member ending with 1403/06.
    const QList<QStringList> months = db.rows(
        u"select PayMonth from tblHRMonthlyPaiedLoan where LoanID=%1 and EmployeeID=%2 order by ID"_s
            .arg(made.longScheduleLoanId)
            .arg(made.longScheduleEmployeeId));
    ASSERT_EQ(months.size(), 300);
    EXPECT_EQ(months.first().first().toStdString(), "1378/07");
    EXPECT_EQ(months.last().first().toStdString(), "1403/06");
    for (qsizetype i = 1; i < months.size(); ++i) {
        const QString& prev = months[i - 1].first();
        const QString& cur = months[i].first();
        const int step = (cur.left(4).toInt() * 12 + cur.mid(5).toInt()) -
                         (prev.left(4).toInt() * 12 + prev.mid(5).toInt());
        ASSERT_EQ(step, 1) << prev.toStdString() << " " << cur.toStdString();
    }
}

TEST_F(LargeDatabaseTest, RowsAreCoherent) {
    CreateLargeDatabase(file(u"l.db"_s), small());
    RawDb db(file(u"l.db"_s));
    // Guarantors are others than the member and than each other.
    EXPECT_EQ(
        db.scalar(u"select count(*) from tblHRLoanDetail where "
                  u"SupporterEmployeeID1=EmployeeID or SupporterEmployeeID2=EmployeeID or "
                  u"SupporterEmployeeID3=EmployeeID or SupporterEmployeeID1=SupporterEmployeeID2 "
                  u"or SupporterEmployeeID1=SupporterEmployeeID3 or "
                  u"SupporterEmployeeID2=SupporterEmployeeID3 or "
                  u"(SupporterEmployeeID1 is null and SupporterEmployeeID2 is not null)"_s)
            .toInt(),
        0);
    EXPECT_GT(db.scalar(u"select count(*) from tblHRLoanDetail where SupporterEmployeeID3 is not "
                        u"null"_s)
                  .toInt(),
              0);
    // Each Persian date is the Gregorian date beside it; a loan ends where its count says.
    const QCalendar jalali(QCalendar::System::Jalali);
    auto same = [&](const QString& farsi, const QString& gregorian) {
        const QStringList p = farsi.split(u'/');
        return QDate(p[0].toInt(), p[1].toInt(), p[2].toInt(), jalali).toString(u"yyyy-MM-dd"_s) ==
               gregorian;
    };
    for (const QStringList& r :
         db.rows(u"select FarsiPaymentDate, PaymentDate, FarsiBeginDate, BeginDate, FarsiEndDate, "
                 u"EndDate, PayBackNumber from tblHRLoan"_s)) {
        ASSERT_TRUE(same(r[0], r[1]) && same(r[2], r[3]) && same(r[4], r[5]))
            << r.join(u' ').toStdString();
        const int months = (r[4].left(4).toInt() * 12 + r[4].mid(5, 2).toInt()) -
                           (r[2].left(4).toInt() * 12 + r[2].mid(5, 2).toInt()) + 1;
        ASSERT_EQ(months, r[6].toInt()) << r.join(u' ').toStdString();
        ASSERT_LE(r[0], u"1403/06/31"_s);
    }
    for (
        const QStringList& r : db.rows(
            u"select FarsiBeginDate, BeginDate, FarsiEndDate, EndDate from tblHRLoanException"_s)) {
        ASSERT_TRUE(same(r[0], r[1])) << r.join(u' ').toStdString();
        ASSERT_TRUE(r[2].isEmpty() ? r[3] == u"1900-01-01"_s : same(r[2], r[3]) && r[0] <= r[2])
            << r.join(u' ').toStdString();
    }
    // Nobody who has left holds a loan of the last years; names are Persian.
    EXPECT_EQ(db.scalar(u"select count(*) from tblHRLoanDetail d join tblHRLoan l on l.ID=d.LoanID "
                        u"join tblEmployee e on e.ID=d.EmployeeID where e.WorkStatusID=3 and "
                        u"l.FarsiPaymentDate >= '1401'"_s)
                  .toInt(),
              0);
    const QString name =
        db.scalar(u"select FirstName || SureName from tblEmployee where ID=1"_s).toString();
    ASSERT_FALSE(name.isEmpty());
    for (QChar c : name)
        EXPECT_TRUE((c.unicode() >= 0x0600 && c.unicode() <= 0x06FF) || c.unicode() == 0x200C);
}

TEST_F(LargeDatabaseTest, RefusesSizesItCannotMeetAndLeavesNoFile) {
    LargeDatabaseOptions tooFew = small();
    tooFew.memberRows = tooFew.loans;  // fewer than one member per loan besides the big one
    EXPECT_EQ(kav::test::RaisedKind([&] { CreateLargeDatabase(file(u"x.db"_s), tooFew); }),
              KavError::Kind::Usage);
    LargeDatabaseOptions tooMany = small();
    tooMany.payslipRows = 50'000'000;
    EXPECT_EQ(kav::test::RaisedKind([&] { CreateLargeDatabase(file(u"x.db"_s), tooMany); }),
              KavError::Kind::Usage);
    EXPECT_FALSE(QFile::exists(file(u"x.db"_s)));
    // An existing file is never overwritten.
    CreateLargeDatabase(file(u"y.db"_s), small());
    EXPECT_EQ(kav::test::RaisedKind([&] { CreateLargeDatabase(file(u"y.db"_s), small()); }),
              KavError::Kind::Usage);
    EXPECT_TRUE(QFile::exists(file(u"y.db"_s)));
}

}  // namespace
