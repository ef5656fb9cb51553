// The benchmarks' large database generator, at a twenty-fifth of its default sizes.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "LargeDatabase.h"
#include "RawSqlite.h"
#include "base/Errors.h"
#include "support/QtPrinters.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using kav::KavError;
using kav::test::RaisedKind;
using namespace kav::bench;

namespace {

LargeDatabaseOptions small(quint64 seed = 7) {
    LargeDatabaseOptions o;
    o.seed = seed;
    return o.scaledDown(25);
}

// Every table's rows in key order, as text.
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

}  // namespace

TEST(LargeDatabase, SameSeedSameDatabaseOtherSeedAnotherAndNothingOverwritten) {
    QTemporaryDir dir;
    CreateLargeDatabase(dir.filePath(u"a.db"_s), small(7));
    CreateLargeDatabase(dir.filePath(u"b.db"_s), small(7));
    CreateLargeDatabase(dir.filePath(u"c.db"_s), small(8));
    const QStringList dumpA = dump(dir.filePath(u"a.db"_s)), dumpC = dump(dir.filePath(u"c.db"_s));
    EXPECT_EQ(dump(dir.filePath(u"b.db"_s)), dumpA);
    EXPECT_NE(dumpC, dumpA);
    // Sizes it cannot meet, or a file that exists: refused, and no file left or lost.
    LargeDatabaseOptions tooFew = small(), tooMany = small();
    tooFew.memberRows = tooFew.loans;  // less than a member per loan besides the big one
    tooMany.payslipRows = 50'000'000;
    for (const LargeDatabaseOptions& o : {tooFew, tooMany})
        EXPECT_EQ(RaisedKind([&] { CreateLargeDatabase(dir.filePath(u"x.db"_s), o); }),
                  KavError::Kind::Usage);
    EXPECT_FALSE(QFile::exists(dir.filePath(u"x.db"_s)));
    EXPECT_EQ(RaisedKind([&] { CreateLargeDatabase(dir.filePath(u"c.db"_s), small()); }),
              KavError::Kind::Usage);
    EXPECT_EQ(dump(dir.filePath(u"c.db"_s)), dumpC);
}

TEST(LargeDatabase, HasTheSizesItsLandmarksAndCoherentRows) {
    QTemporaryDir dir;
    const Landmarks made = CreateLargeDatabase(dir.filePath(u"l.db"_s), small());
    RawDb db(dir.filePath(u"l.db"_s));
    const QString big = QString::number(made.bigLoanId);
    const std::pair<QString, QString> facts[] = {
        {u"PRAGMA journal_mode"_s, u"wal"_s},
        {u"select (select count(*) from tblEmployee) || ' ' || (select count(*) from "
         "tblHRLoanType) || ' ' || (select count(*) from tblHRLoanDetail) || ' ' || (select "
         "count(*) from tblHRLoanException) || ' ' || (select count(*) from "
         "tblHRMonthlyPaiedLoan) || ' ' || (select count(*) from tblHROrdinance)"_s,
         u"200 8 4000 800 12000 400"_s},
        {u"select count(*) || ' ' || count(distinct TypeID) || ' ' || (count(Code) = "
         "count(distinct Code)) || ' ' || (count(Code) < count(*)) from tblHRLoan"_s,
         u"1000 8 1 1"_s},
        {u"select count(*) > 0 from tblEmployee where WorkStatusID=3"_s, u"1"_s},
        // The working date the payslips stop before; user 1 may open, create and edit.
        {u"select Value from tblVarekSystemParameters where ID=3450"_s, u"1403/07/01"_s},
        {u"select group_concat(FormPermissionID) from (select FormPermissionID from "
         "tblVarekUserPermission where UserID=1 order by 1)"_s,
         u"111801,111802,111803"_s},
        // The big loan: temporary, 40 members, nothing deducted yet; the others 1 to 12
        // members, never one twice.
        {u"select count(*) || ' ' || (select Code is null from tblHRLoan where ID=%1) || ' ' || "
         "(select count(*) from tblHRMonthlyPaiedLoan where LoanID=%1) from tblHRLoanDetail "
         "where LoanID=%1"_s.arg(big),
         u"40 1 0"_s},
        {u"select count(*) from (select LoanID, count(*) n, count(distinct EmployeeID) d from "
         "tblHRLoanDetail where LoanID<>%1 group by LoanID) where n between 1 and 12 and n = d"_s
             .arg(big),
         u"999"_s},
        // Guarantors are others than the member and than each other, filled from the first.
        {u"select count(*) from tblHRLoanDetail where EmployeeID in (SupporterEmployeeID1, "
         "SupporterEmployeeID2, SupporterEmployeeID3) or SupporterEmployeeID1 in "
         "(SupporterEmployeeID2, SupporterEmployeeID3) or SupporterEmployeeID2 = "
         "SupporterEmployeeID3 or (SupporterEmployeeID1 is null and SupporterEmployeeID2 is not "
         "null)"_s,
         u"0"_s},
    };
    for (const auto& [sql, value] : facts)
        EXPECT_EQ(db.scalar(sql).toString(), value) << sql.toStdString();
    const auto ids = [](const Landmarks& l) {
        return QList<qint32>({l.bigLoanId, l.longScheduleLoanId, l.longScheduleEmployeeId});
    };
    EXPECT_EQ(ids(FindLandmarks(db)), ids(made));

    // The long schedule: 300 months of one member, ending with 1403/06.
    const QList<QStringList> months = db.rows(
        u"select PayMonth from tblHRMonthlyPaiedLoan where LoanID=%1 and EmployeeID=%2 "
        "order by ID"_s.arg(made.longScheduleLoanId)
            .arg(made.longScheduleEmployeeId));
    ASSERT_EQ(months.size(), 300);
    EXPECT_EQ(QStringList({months.first().first(), months.last().first()}),
              QStringList({u"1378/07"_s, u"1403/06"_s}));
}
