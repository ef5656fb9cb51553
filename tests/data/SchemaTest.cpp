#include <gtest/gtest.h>

#include <QCalendar>
#include <QFile>
#include <QRegularExpression>

#include "base/Errors.h"
#include "data/DemoData.h"
#include "data/EmbeddedSchema.h"
#include "data/Procedures.h"
#include "session/DataEnvironment.h"
#include "session/LoanHistory.h"
#include "support/TestDatabase.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using ScratchDb = kav::test::TestDatabase;

namespace {

// Four employees, two loan types, a final loan with two members (the first with three
// guarantors, the second with none), a temporary loan without members, and an adjustment.
void seed(ScratchDb& s) {
    s.exec({
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        u"(1, '1001', 'علی', 'رضایی', 1), (2, '1002', 'مریم', 'احمدی', 1), "
        u"(3, '1003', 'حسن', 'کریمی', 1), (4, '1004', 'سارا', 'نوری', 1)"_s,
        u"insert into tblHRLoanType (ID, Name, MaxValue) values (1, 'وام ضروری', 100000000), "
        u"(2, 'مساعده', NULL)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
        u"FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, "
        u"PayBackNumber, UseRemainedValueInFirstMonth, Notes) values "
        u"(1, 1, 1, '2024-03-20', '1403/01/01', '2024-04-19', '1403/01/31', '2025-03-20', "
        u"'1403/12/30', 12000500, 12000500, 1000000, 12, 0, 'یادداشت'), "
        u"(2, NULL, 2, '2024-09-22', '1403/07/01', '2024-10-21', '1403/07/30', '2025-01-19', "
        u"'1403/10/30', 4000000, 4000000, 1000000, 4, 2, NULL)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID, SupporterEmployeeID1, "
        u"SupporterEmployeeID2, SupporterEmployeeID3) values (1, 1, 2, 3, 4), "
        u"(1, 2, NULL, NULL, NULL)"_s,
        u"insert into tblHRLoanException (LoanID, EmployeeID, BeginDate, FarsiBeginDate, EndDate, "
        u"FarsiEndDate, MonthlyDebit) values (1, 1, '2024-05-21', '1403/03/01', '2024-07-21', "
        u"'1403/04/31', 500000)"_s,
    });
}

// One row per member, and one for a loan without members. (The other views are read by the
// window and selector tests.)
TEST(Views, GiveTheRowsTheWindowsRead) {
    ScratchDb s;
    seed(s);
    EXPECT_EQ(
        s.table(u"select ID, LoanID, Code, TypeID, LoanTypeDesc, LoanValue, FarsiPaymentDate, "
                u"EndDate, UseRemainedValueInFirstMonth, Notes, EmployeeID, EmployeeCode, "
                u"EmployeeName, SupporterEmployeeID1, SupporterEmployeeName1, "
                u"SupporterEmployeeName2, SupporterEmployeeName3 from vwHRLoanData order by ID, "
                u"EmployeeID"_s),
        (QStringList{
            u"1|1|1|1|وام ضروری|12000500|1403/01/01|2025-03-20|0|یادداشت|1|1001|علی رضایی|"
            u"2|مریم احمدی|حسن کریمی|سارا نوری"_s,
            u"1|1|1|1|وام ضروری|12000500|1403/01/01|2025-03-20|0|یادداشت|2|1002|مریم احمدی|"
            u"NULL|NULL|NULL|NULL"_s,
            u"2|2|NULL|2|مساعده|4000000|1403/07/01|2025-01-19|2|NULL|NULL|NULL|NULL|NULL|"
            u"NULL|NULL|NULL"_s}));
}

// Creating the schema again keeps the rows; the keys are identities: the ID of a deleted
// last row is not handed out again.
TEST(Schema, CreatingTwiceKeepsTheRowsAndKeysAreIdentities) {
    ScratchDb s;
    seed(s);
    EXPECT_TRUE(HasEmbeddedSchema(s.db()));
    CreateEmbeddedSchema(s.db());
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan"_s).toInt(), 2);
    s.exec({u"delete from tblHRLoan where ID=2"_s, u"insert into tblHRLoan (TypeID) values (1)"_s});
    EXPECT_EQ(s.scalar(u"Select MAX(ID) as MAXID from tblHRLoan"_s).toInt(), 3);
    ScratchDb empty(false);
    EXPECT_FALSE(HasEmbeddedSchema(empty.db()));
}

class DemoDatabase : public ::testing::Test {
protected:
    void SetUp() override { CreateDemoDatabase(s.file()); }
    ScratchDb s{false};
};

// Each query counts demo rows that would break what the windows assume.
TEST_F(DemoDatabase, BreaksNoRuleTheWindowsRelyOn) {
    const QString violations[] = {
        // nobody who has left is a borrower
        u"select count(*) from tblHRLoanDetail d join tblEmployee e on e.ID = d.EmployeeID "
        u"where e.WorkStatusID=3"_s,
        // no loan exceeds its type's ceiling
        u"select count(*) from tblHRLoan l join tblHRLoanType t on t.ID = l.TypeID "
        u"where t.MaxValue is not null and l.LoanValue > t.MaxValue"_s,
        // nobody guarantees his own loan; the payroll deducts final loans only
        u"select count(*) from tblHRLoanDetail where EmployeeID in "
        u"(SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3)"_s,
        u"select count(*) from tblHRMonthlyPaiedLoan p join tblHRLoan l on l.ID = p.LoanID "
        u"where l.Code is null"_s,
        // each adjustment belongs to a member of its loan and lies within the loan's period
        u"select count(*) from tblHRLoanException x where not exists (select 1 from vwHRLoanData "
        u"v where v.LoanID = x.LoanID and v.EmployeeID = x.EmployeeID and x.FarsiBeginDate >= "
        u"v.FarsiBeginDate and (x.FarsiEndDate = '' or x.FarsiEndDate <= v.FarsiEndDate))"_s,
    };
    for (const QString& sql : violations) EXPECT_EQ(s.scalar(sql).toInt(), 0) << sql.toStdString();
}

// Each loan's instalments add up, each Gregorian date is its Persian text's day, the
// instalments span as many months as there are, and final loans are numbered 1, 2, 3...
TEST_F(DemoDatabase, LoansAreCoherent) {
    const QCalendar jalali(QCalendar::System::Jalali);
    const auto month = [](const QString& f) {
        return f.left(4).toInt() * 12 + f.mid(5, 2).toInt();
    };
    const auto loans = s.rows(u"select * from tblHRLoan order by Code"_s);  // Nulls first
    ASSERT_GE(loans.size(), 8);
    QList<int> codes, expected;
    for (const auto& l : loans) {
        SCOPED_TRACE(l[u"id"_s].toInt());
        const qint64 value = l[u"loanvalue"_s].toLongLong();
        const qint64 monthly = l[u"monthlyvalue"_s].toLongLong();
        const int n = l[u"paybacknumber"_s].toInt();
        EXPECT_TRUE(n > 0 && value - monthly * n >= 0 && value - monthly * n < monthly);
        for (const QString& c : {u"payment"_s, u"begin"_s, u"end"_s}) {
            const QString f = l[u"farsi"_s + c + u"date"_s].toString();
            const QDate g(f.left(4).toInt(), f.mid(5, 2).toInt(), f.mid(8, 2).toInt(), jalali);
            EXPECT_EQ(l[c + u"date"_s].toString(), g.toString(u"yyyy-MM-dd"_s)) << qPrintable(f);
        }
        const QString b = l[u"farsibegindate"_s].toString(), e = l[u"farsienddate"_s].toString();
        EXPECT_EQ(month(e) - month(b), n - 1) << qPrintable(b) << " .. " << qPrintable(e);
        EXPECT_LE(l[u"farsipaymentdate"_s].toString(), b);
        if (!l[u"code"_s].isNull()) {
            codes << l[u"code"_s].toInt();
            expected << int(codes.size());
        }
    }
    EXPECT_FALSE(codes.isEmpty());
    EXPECT_EQ(codes, expected);
}

// The demo's history ends where its loans are: the last row of a loan still stored has the
// loan as stored after it, and each row starts where the one before it ended.
TEST_F(DemoDatabase, HistoryLeadsToTheLoansAsStored) {
    kav::Connection cnt;
    cnt.SetConnectionString(EmbeddedConnectionString(s.file()));
    QHash<int, QString> last;
    int rows = 0;
    for (const auto& r : s.rows(u"select * from tblHRLoanHistory order by ID"_s)) {
        const int loan = r[u"loanid"_s].toInt();
        EXPECT_EQ(r[u"loanbefore"_s].toString(), last.value(loan)) << loan;
        last[loan] = r[u"loanafter"_s].toString();
        ++rows;
    }
    EXPECT_EQ(rows, 10);
    for (const int loan : {9, 12}) EXPECT_EQ(last[loan], kav::history::ReadLoan(cnt, loan).text);
    EXPECT_TRUE(last[15].isNull());
}

TEST_F(DemoDatabase, IsLeftAloneWhenCreatedAgainButGainsTheHistoryTable) {
    s.exec(u"delete from tblHRLoanType where ID=1"_s);
    s.exec(u"drop table tblHRLoanHistory"_s);  // a demo made before the module kept history
    CreateDemoDatabase(s.file());
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanType where ID=1"_s).toInt(), 0);
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoanHistory"_s).toInt(), 0);
    EXPECT_THROW(CreateDemoDatabase(u"/nonexistent-folder/x/demo.db"_s), kav::KavError);
}

// The T-SQL reference script is kept in step with the embedded schema.
QString scriptText() {
    QFile f(SqlServerSchemaScriptPath());
    if (!f.open(QIODevice::ReadOnly)) ADD_FAILURE() << f.fileName().toStdString();
    return QString::fromUtf8(f.readAll());
}

QRegularExpression pattern(const QString& text) {
    return QRegularExpression(text, QRegularExpression::CaseInsensitiveOption |
                                        QRegularExpression::DotMatchesEverythingOption |
                                        QRegularExpression::MultilineOption);
}

// The script read loosely, as "name: columns" (tables, views, indexes) and "name: parameters"
// (procedures), lower case and sorted.
QStringList scriptObjects(const QString& text) {
    const std::pair<QString, QString> kinds[] = {
        // the object, then each item in its text
        {uR"(CREATE\s+TABLE\s+dbo\.(\w+)\s*\((.*?)\n\);)"_s, uR"(^[ \t]*(?!--|CONSTRAINT)(\w+))"_s},
        {uR"(CREATE\s+VIEW\s+dbo\.(\w+)\s+AS\s+SELECT\s(.*?)\sFROM\s)"_s,
         uR"(\sAS\s+(\w+)\s*(?:,|$))"_s},
        {uR"(CREATE\s+INDEX\s+(\w+)\s+ON\s+dbo\.\w+\s*\(([^)]*)\))"_s, uR"((\w+))"_s},
        {uR"(CREATE\s+PROCEDURE\s+dbo\.(\w+)(.*?)\n\s*AS\s*\n)"_s, uR"((@\w+))"_s},
    };
    QStringList out;
    for (const auto& [object, item] : kinds) {
        for (auto it = pattern(object).globalMatch(text); it.hasNext();) {
            const auto m = it.next();
            QStringList items;
            for (auto i = pattern(item).globalMatch(m.captured(2)); i.hasNext();)
                items << i.next().captured(1);
            out << (m.captured(1) + u": "_s + items.join(u',')).toLower();
        }
    }
    out.sort();
    return out;
}

// Tables and views with the same columns, the same indexes on the same columns, and the
// procedures with the parameters the module calls them with.
TEST(Schema, SqlServerScriptHasTheSameTablesViewsIndexesAndProcedures) {
    ScratchDb s;
    QStringList embedded;
    for (const auto& r : s.rows(u"select type, name from sqlite_master where type in "
                                u"('table','view','index') and name not like 'sqlite%'"_s)) {
        const QString name = r[u"name"_s].toString();
        const bool index = r[u"type"_s] == u"index"_s;
        QStringList columns;
        for (const auto& c :
             s.rows(u"pragma %1(%2)"_s.arg(index ? u"index_info"_s : u"table_info"_s, name)))
            columns << c[u"name"_s].toString();
        embedded << (name + u": "_s + columns.join(u',')).toLower();
    }
    for (const ProcedureInfo* p :
         {&HasPermissionProcedure(), &LoanExceptionNewProcedure(), &LoanExceptionUpdateProcedure()})
        embedded << (p->name + u": "_s + p->parameters.join(u',')).toLower();
    embedded.sort();
    EXPECT_EQ(scriptObjects(scriptText()), embedded);
    EXPECT_EQ(embedded.size(), 10 + 5 + 13 + 3);
    EXPECT_TRUE(
        embedded.contains(u"ix_tblhrmonthlypaiedloan_loanid_employeeid: loanid,employeeid"_s));
}

// The script never alters or drops anything and creates each object only when it is missing.
TEST(Schema, SqlServerScriptCreatesOnlyWhatIsMissing) {
    QString text = scriptText();
    text.remove(QRegularExpression(u"--[^\\n]*"_s));  // comments name objects too
    static const QRegularExpression replacing =
        pattern(uR"(\b(ALTER|DROP)\s+(TABLE|VIEW|PROC|PROCEDURE|INDEX)\b)"_s);
    EXPECT_FALSE(replacing.match(text).hasMatch())
        << replacing.match(text).captured(0).toStdString();
    static const QRegularExpression create =
        pattern(uR"(CREATE\s+(TABLE|VIEW|PROCEDURE|INDEX)\s+(?:dbo\.)?(\w+))"_s);
    int created = 0;
    for (const QString& batch : text.split(QRegularExpression(u"\n\\s*GO\\s*\n"_s))) {
        for (auto it = create.globalMatch(batch); it.hasNext(); ++created) {
            const auto m = it.next();
            const QString kind = m.captured(1).toUpper(), name = m.captured(2);
            // An index is looked up by name, the others by name and type (U, V or P).
            const QString guard =
                kind == u"INDEX"_s
                    ? u"NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'%1'"_s.arg(name)
                    : u"IF OBJECT_ID(N'dbo.%1', N'%2') IS NULL"_s.arg(
                          name, kind == u"TABLE"_s ? u"U"_s : kind.left(1));
            EXPECT_TRUE(batch.left(m.capturedStart()).contains(guard)) << name.toStdString();
        }
    }
    EXPECT_EQ(created, 10 + 13 + 5 + 3);  // tables, indexes, views, procedures
}

// Each view and procedure the script creates through EXEC parses as T-SQL (the batches
// themselves are checked with the SQL Server tests).
TEST(Schema, SqlServerScriptParsesAsTsql) {
    static const QRegularExpression exec(uR"(EXEC\(N'((?:[^']|'')*)'\);)"_s);
    int bodies = 0;
    for (auto it = exec.globalMatch(scriptText()); it.hasNext(); ++bodies)
        kav::test::CheckedTsql(it.next().captured(1).replace(u"''"_s, u"'"_s));
    EXPECT_EQ(bodies, 8);
}

}  // namespace
