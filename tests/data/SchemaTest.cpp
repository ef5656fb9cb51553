#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "DataTestSupport.h"
#include "data/EmbeddedSchema.h"
#include "data/Procedures.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using kav::data::test::ScratchDb;

namespace {

// Five employees (the fifth has left), two loan types, a final loan with two members (the
// first with three guarantors, the second with none), a temporary loan without members,
// and one adjustment.
void seed(ScratchDb& s) {
    s.exec({
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        u"(1, '1001', 'علی', 'رضایی', 1), (2, '1002', 'مریم', 'احمدی', 1), "
        u"(3, '1003', 'حسن', 'کریمی', 1), (4, '1004', 'سارا', 'نوری', 1), "
        u"(5, '10005', 'رضا', 'موسوی', 3)"_s,
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
        u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) values "
        u"(1, 1, '1403/01', 1000000)"_s,
        u"insert into tblHROrdinance (EmployeeID, BeginDate, EndDate, FarsiBeginDate, "
        u"FarsiEndDate) "
        u"values (3, '2024-03-20', '2025-03-20', '1403/01/01', '1403/12/30'), "
        u"(4, '2020-03-20', '2021-03-20', '1399/01/01', '1399/12/30')"_s,
        u"insert into tblVarekSystemParameters (ID, Value) values (3450, '1403/07/01')"_s,
    });
}

TEST(Views, LoanDataGivesOneRowPerMemberWithTheLoansIdAndTheNames) {
    ScratchDb s;
    seed(s);
    const auto rows = s.rows(u"select * from vwHRLoanData where ID =1"_s);
    ASSERT_EQ(rows.size(), 2);
    const auto& a = rows[0][u"employeeid"_s].toInt() == 1 ? rows[0] : rows[1];
    const auto& b = rows[0][u"employeeid"_s].toInt() == 1 ? rows[1] : rows[0];
    for (const auto* r : {&a, &b}) {
        EXPECT_EQ((*r)[u"id"_s].toInt(), 1);
        EXPECT_EQ((*r)[u"loanid"_s].toInt(), 1);
        EXPECT_EQ((*r)[u"code"_s].toInt(), 1);
        EXPECT_EQ((*r)[u"typeid"_s].toInt(), 1);
        EXPECT_EQ((*r)[u"loantypedesc"_s].toString(), u"وام ضروری"_s);
        EXPECT_EQ((*r)[u"loanvalue"_s].toLongLong(), 12000500);
        EXPECT_EQ((*r)[u"farsipaymentdate"_s].toString(), u"1403/01/01"_s);
        EXPECT_EQ((*r)[u"enddate"_s].toString(), u"2025-03-20"_s);
        EXPECT_EQ((*r)[u"notes"_s].toString(), u"یادداشت"_s);
    }
    EXPECT_EQ(a[u"employeecode"_s].toString(), u"1001"_s);
    EXPECT_EQ(a[u"employeename"_s].toString(), u"علی رضایی"_s);
    EXPECT_EQ(a[u"supporteremployeeid1"_s].toInt(), 2);
    EXPECT_EQ(a[u"supporteremployeename1"_s].toString(), u"مریم احمدی"_s);
    EXPECT_EQ(a[u"supporteremployeename2"_s].toString(), u"حسن کریمی"_s);
    EXPECT_EQ(a[u"supporteremployeename3"_s].toString(), u"سارا نوری"_s);
    EXPECT_TRUE(b[u"supporteremployeeid1"_s].isNull());
    EXPECT_TRUE(b[u"supporteremployeename1"_s].isNull());
    EXPECT_EQ(s.rows(u"select * from vwHRLoanData where LoanID=1 and EmployeeID=2"_s).size(), 1);
}

TEST(Views, LoanDataStillShowsALoanWithoutMembers) {
    ScratchDb s;
    seed(s);
    const auto rows = s.rows(u"select * from vwHRLoanData where ID =2"_s);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0][u"id"_s].toInt(), 2);
    EXPECT_EQ(rows[0][u"loanid"_s].toInt(), 2);
    EXPECT_TRUE(rows[0][u"code"_s].isNull());
    EXPECT_TRUE(rows[0][u"employeeid"_s].isNull());
    EXPECT_EQ(rows[0][u"loantypedesc"_s].toString(), u"مساعده"_s);
    EXPECT_EQ(rows[0][u"useremainedvalueinfirstmonth"_s].toInt(), 2);
}

TEST(Views, LoanEmployeesGiveCodesNamesAndGuarantors) {
    ScratchDb s;
    seed(s);
    const auto rows =
        s.rows(u"select * from vwHRLoanEmployees where LoanID=1 order by EmployeeID"_s);
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0][u"employeeid"_s].toInt(), 1);
    EXPECT_EQ(rows[0][u"code"_s].toString(), u"1001"_s);
    EXPECT_EQ(rows[0][u"firstname"_s].toString(), u"علی"_s);
    EXPECT_EQ(rows[0][u"surename"_s].toString(), u"رضایی"_s);
    EXPECT_EQ(rows[0][u"supporteremployeeid1"_s].toInt(), 2);
    EXPECT_EQ(rows[0][u"supporteremployeeid3"_s].toInt(), 4);
    EXPECT_EQ(rows[1][u"employeeid"_s].toInt(), 2);
    EXPECT_TRUE(rows[1][u"supporteremployeeid1"_s].isNull());
    EXPECT_TRUE(s.rows(u"select * from vwHRLoanEmployees where LoanID=2"_s).isEmpty());
}

TEST(Views, AdjustmentsCarryTheEmployeesName) {
    ScratchDb s;
    seed(s);
    const auto rows = s.rows(u"select * from vwHRLoanException where ID =1"_s);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0][u"employeename"_s].toString(), u"علی رضایی"_s);
    EXPECT_EQ(rows[0][u"loanid"_s].toInt(), 1);
    EXPECT_EQ(rows[0][u"farsibegindate"_s].toString(), u"1403/03/01"_s);
    EXPECT_EQ(rows[0][u"farsienddate"_s].toString(), u"1403/04/31"_s);
    EXPECT_EQ(rows[0][u"monthlydebit"_s].toInt(), 500000);
}

TEST(Views, EmployeeSelectorSourcesTakeTheBorrowerFilter) {
    ScratchDb s;
    seed(s);
    const QString filter = u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s;
    for (const QString& view : {u"vwEmployeeMajor"_s, u"vwEmployeeMinor"_s}) {
        const auto all = s.rows(u"select * from "_s + view);
        EXPECT_EQ(all.size(), 5);
        const auto rows = s.rows(u"select * from "_s + view + u" where"_s + filter);
        ASSERT_EQ(rows.size(), 4) << view.toStdString();
        for (const auto& r : rows) EXPECT_NE(r[u"id"_s].toInt(), 5);
        const auto one = s.rows(u"select * from "_s + view + u" where ID=2"_s);
        ASSERT_EQ(one.size(), 1);
        EXPECT_EQ(one[0][u"employeename"_s].toString(), u"مریم احمدی"_s);
        EXPECT_EQ(one[0][u"code"_s].toString(), u"1002"_s);
    }
}

TEST(Schema, CreatingTwiceKeepsTheRows) {
    ScratchDb s;
    seed(s);
    EXPECT_TRUE(HasEmbeddedSchema(s.db()));
    CreateEmbeddedSchema(s.db());
    EXPECT_EQ(s.scalar(u"select count(*) from tblHRLoan"_s).toInt(), 2);
    ScratchDb empty(false);
    EXPECT_FALSE(HasEmbeddedSchema(empty.db()));
}

TEST(Schema, HoldsEveryTableAndViewTheModuleNames) {
    ScratchDb s;
    QStringList objects;
    for (const auto& r : s.rows(u"select name from sqlite_master where type in ('table','view')"_s))
        objects << r[u"name"_s].toString();
    for (const QString& n : {u"tblHRLoan"_s, u"tblHRLoanDetail"_s, u"tblHRLoanType"_s,
                             u"tblHRLoanException"_s, u"tblHRMonthlyPaiedLoan"_s, u"tblEmployee"_s,
                             u"tblHROrdinance"_s, u"tblVarekSystemParameters"_s,
                             u"tblVarekUserPermission"_s, u"vwHRLoanData"_s, u"vwHRLoanEmployees"_s,
                             u"vwHRLoanException"_s, u"vwEmployeeMajor"_s, u"vwEmployeeMinor"_s})
        EXPECT_TRUE(objects.contains(n)) << n.toStdString();
    // The keys are identities: the ID of a deleted last row is not handed out again.
    s.exec({u"insert into tblHRLoan (TypeID) values (1)"_s,
            u"insert into tblHRLoan (TypeID) values (1)"_s, u"delete from tblHRLoan where ID=2"_s,
            u"insert into tblHRLoan (TypeID) values (1)"_s});
    EXPECT_EQ(s.scalar(u"Select MAX(ID) as MAXID from tblHRLoan"_s).toInt(), 3);
}

// ---- The T-SQL reference script is kept in step with the embedded schema ----

struct Script {
    QMap<QString, QStringList> objects;     // lower-case table or view name -> columns
    QMap<QString, QStringList> procedures;  // lower-case name -> parameters in order
};

// Reads the script loosely: the column lines of each CREATE TABLE, the select list of
// each CREATE VIEW (the name after the last AS of an item) and each procedure's
// parameters.
Script parseScript(const QString& text) {
    Script out;
    static const QRegularExpression table(
        uR"(CREATE\s+TABLE\s+(?:dbo\.)?\[?(\w+)\]?\s*\((.*?)\n\);)"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    for (auto it = table.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        QStringList columns;
        for (QString line : m.captured(2).split(u'\n')) {
            line = line.trimmed();
            if (line.isEmpty() || line.startsWith(u"--"_s) || line.startsWith(u"CONSTRAINT"_s))
                continue;
            columns << line.section(u' ', 0, 0).remove(u'[').remove(u']').toLower();
        }
        out.objects.insert(m.captured(1).toLower(), columns);
    }
    static const QRegularExpression view(
        uR"(CREATE\s+(?:OR\s+ALTER\s+)?VIEW\s+(?:dbo\.)?\[?(\w+)\]?\s+AS\s+SELECT\s(.*?)\sFROM\s)"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression alias(uR"(\s+AS\s+\[?(\w+)\]?\s*$)"_s,
                                          QRegularExpression::CaseInsensitiveOption);
    for (auto it = view.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        QStringList columns;
        for (const QString& item : m.captured(2).split(u',')) {
            const auto a = alias.match(item);
            columns << (a.hasMatch() ? a.captured(1) : item.trimmed().section(u'.', -1)).toLower();
        }
        out.objects.insert(m.captured(1).toLower(), columns);
    }
    static const QRegularExpression proc(
        uR"(CREATE\s+(?:OR\s+ALTER\s+)?PROC(?:EDURE)?\s+(?:dbo\.)?\[?(\w+)\]?(.*?)\n\s*AS\s*\n)"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression param(uR"(@\w+)"_s);
    for (auto it = proc.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        QStringList params;
        for (auto p = param.globalMatch(m.captured(2)); p.hasNext();)
            params << p.next().captured(0);
        out.procedures.insert(m.captured(1).toLower(), params);
    }
    return out;
}

TEST(Schema, SqlServerScriptHasTheSameTablesViewsAndColumns) {
    QFile f(SqlServerSchemaScriptPath());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << f.fileName().toStdString();
    const Script script = parseScript(QString::fromUtf8(f.readAll()));

    ScratchDb s;
    QMap<QString, QStringList> embedded;
    for (const auto& r : s.rows(u"select name from sqlite_master where type in ('table','view') "
                                u"and name not like 'sqlite%'"_s)) {
        const QString name = r[u"name"_s].toString();
        QStringList columns;
        for (const auto& c : s.rows(u"pragma table_info("_s + name + u")"_s))
            columns << c[u"name"_s].toString().toLower();
        embedded.insert(name.toLower(), columns);
    }
    ASSERT_EQ(embedded.size(), 14);
    EXPECT_EQ(script.objects.keys(), embedded.keys());
    for (auto it = embedded.cbegin(); it != embedded.cend(); ++it)
        EXPECT_EQ(script.objects.value(it.key()), it.value()) << it.key().toStdString();

    for (const ProcedureInfo* p :
         {&HasPermissionProcedure(), &LoanExceptionNewProcedure(), &LoanExceptionUpdateProcedure()})
        EXPECT_EQ(script.procedures.value(p->name.toLower()), p->parameters)
            << p->name.toStdString();
}

QString scriptText() {
    QFile f(SqlServerSchemaScriptPath());
    if (!f.open(QIODevice::ReadOnly)) ADD_FAILURE() << f.fileName().toStdString();
    return QString::fromUtf8(f.readAll());
}

// The script runs on the suite's own database too, where these objects belong to the suite:
// it never alters, replaces or drops anything, and each object it creates is created only when
// no object of that name exists.
TEST(Schema, SqlServerScriptCreatesOnlyWhatIsMissing) {
    QString text = scriptText();
    text.remove(QRegularExpression(u"--[^\\n]*"_s));  // comments name objects too
    static const QRegularExpression replacing(
        uR"(\b(ALTER|DROP)\s+(TABLE|VIEW|PROC|PROCEDURE|INDEX)\b)"_s,
        QRegularExpression::CaseInsensitiveOption);
    EXPECT_FALSE(replacing.match(text).hasMatch())
        << replacing.match(text).captured(0).toStdString();
    const QStringList batches = text.split(QRegularExpression(u"\n\\s*GO\\s*\n"_s));
    static const QRegularExpression create(
        uR"(CREATE\s+(TABLE|VIEW|PROCEDURE|INDEX)\s+(?:dbo\.)?(\w+))"_s,
        QRegularExpression::CaseInsensitiveOption);
    int created = 0;
    for (const QString& batch : batches) {
        for (auto it = create.globalMatch(batch); it.hasNext();) {
            const auto m = it.next();
            const QString kind = m.captured(1).toUpper();
            const QString name = m.captured(2);
            ++created;
            // The guard sits before the CREATE in its batch.
            const QString before = batch.left(m.capturedStart());
            const QString guard =
                kind == u"INDEX"
                    ? u"NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'%1'"_s.arg(name)
                    : u"IF OBJECT_ID(N'dbo.%1', N'%2') IS NULL"_s.arg(name,
                                                                      kind == u"TABLE"  ? u"U"_s
                                                                      : kind == u"VIEW" ? u"V"_s
                                                                                        : u"P"_s);
            EXPECT_TRUE(before.contains(guard)) << name.toStdString();
        }
    }
    EXPECT_EQ(created, 9 + 11 + 5 + 3);  // tables, indexes, views, procedures
}

// The script parses as T-SQL, and so does each view and procedure it creates through EXEC.
TEST(Schema, SqlServerScriptParsesAsTsql) {
    static const QRegularExpression exec(uR"(EXEC\(N'((?:[^']|'')*)'\);)"_s);
    int bodies = 0;
    for (auto it = exec.globalMatch(scriptText()); it.hasNext(); ++bodies)
        kav::test::CheckedTsql(it.next().captured(1).replace(u"''"_s, u"'"_s));
    EXPECT_EQ(bodies, 8);

    const kav::test::TsqlResult whole = kav::test::RunTsqlCheckOnFile(SqlServerSchemaScriptPath());
    if (!whole.available)
        GTEST_SKIP() << "T-SQL syntax check not run: " << whole.output.toStdString();
    EXPECT_TRUE(whole.passed) << whole.output.toStdString();
}

// Both databases get the same indexes, on the same columns in the same order; among them the
// ones a member's schedule is read by.
TEST(Schema, SqlServerScriptHasTheSameIndexes) {
    QMap<QString, QString> script;
    static const QRegularExpression index(
        uR"(CREATE\s+INDEX\s+(\w+)\s+ON\s+dbo\.(\w+)\s*\(([^)]*)\))"_s);
    for (auto it = index.globalMatch(scriptText()); it.hasNext();) {
        const auto m = it.next();
        script.insert(m.captured(1), m.captured(2) + u"("_s + m.captured(3).remove(u' ') + u")"_s);
    }
    ScratchDb s;
    QMap<QString, QString> embedded;
    for (const auto& r : s.rows(u"select name, tbl_name from sqlite_master where type = 'index' "
                                u"and name not like 'sqlite%'"_s)) {
        QStringList columns;
        for (const auto& c : s.rows(u"pragma index_info("_s + r[u"name"_s].toString() + u")"_s))
            columns << c[u"name"_s].toString();
        embedded.insert(r[u"name"_s].toString(),
                        r[u"tbl_name"_s].toString() + u"("_s + columns.join(u',') + u")"_s);
    }
    EXPECT_EQ(embedded, script);
    for (const QString& table : {u"tblHRLoanException"_s, u"tblHRMonthlyPaiedLoan"_s})
        EXPECT_EQ(script.value(u"IX_%1_LoanID_EmployeeID"_s.arg(table)),
                  table + u"(LoanID,EmployeeID)"_s);
}

}  // namespace
