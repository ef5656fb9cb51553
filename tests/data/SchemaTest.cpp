#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "data/EmbeddedSchema.h"
#include "data/Procedures.h"
#include "support/TestDatabase.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using ScratchDb = kav::test::TestDatabase;

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

// Each view read as the windows read it, whole, against the rows written here.
TEST(Views, GiveTheRowsTheWindowsRead) {
    ScratchDb s;
    seed(s);
    struct Case {
        QString sql;
        QStringList rows;
    };
    const QString borrowers =
        u" where ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3) order by ID"_s;
    const QStringList selectable = {u"1|1001|علی رضایی"_s, u"2|1002|مریم احمدی"_s,
                                    u"3|1003|حسن کریمی"_s, u"4|1004|سارا نوری"_s};
    const Case cases[] = {
        {u"select ID, LoanID, Code, TypeID, LoanTypeDesc, LoanValue, FarsiPaymentDate, EndDate, "
         u"UseRemainedValueInFirstMonth, Notes, EmployeeID, EmployeeCode, EmployeeName, "
         u"SupporterEmployeeID1, SupporterEmployeeName1, SupporterEmployeeName2, "
         u"SupporterEmployeeName3 from vwHRLoanData order by ID, EmployeeID"_s,
         {u"1|1|1|1|وام ضروری|12000500|1403/01/01|2025-03-20|0|یادداشت|1|1001|علی رضایی|2|"
          u"مریم احمدی|حسن کریمی|سارا نوری"_s,
          u"1|1|1|1|وام ضروری|12000500|1403/01/01|2025-03-20|0|یادداشت|2|1002|مریم احمدی|NULL|"
          u"NULL|NULL|NULL"_s,
          u"2|2|NULL|2|مساعده|4000000|1403/07/01|2025-01-19|2|NULL|NULL|NULL|NULL|NULL|NULL|NULL|"
          u"NULL"_s}},
        {u"select LoanID, EmployeeID, Code, FirstName, SureName, SupporterEmployeeID1, "
         u"SupporterEmployeeID2, SupporterEmployeeID3 from vwHRLoanEmployees order by LoanID, "
         u"EmployeeID"_s,
         {u"1|1|1001|علی|رضایی|2|3|4"_s, u"1|2|1002|مریم|احمدی|NULL|NULL|NULL"_s}},
        {u"select ID, LoanID, EmployeeID, EmployeeName, FarsiBeginDate, FarsiEndDate, MonthlyDebit "
         u"from vwHRLoanException"_s,
         {u"1|1|1|علی رضایی|1403/03/01|1403/04/31|500000"_s}},
        {u"select ID, Code, EmployeeName from vwEmployeeMajor"_s + borrowers, selectable},
        {u"select ID, Code, EmployeeName from vwEmployeeMinor"_s + borrowers, selectable},
        {u"select count(*) from vwEmployeeMajor union all select count(*) from vwEmployeeMinor"_s,
         {u"5"_s, u"5"_s}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sql.toStdString());
        EXPECT_EQ(s.table(c.sql), c.rows);
    }
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

// The T-SQL reference script is kept in step with the embedded schema.

struct Script {
    QMap<QString, QStringList> objects;     // lower-case table or view name -> columns
    QMap<QString, QStringList> procedures;  // lower-case name -> parameters in order
};

// Reads the script loosely: the columns of each table and view and each procedure's parameters.
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

QString scriptText() {
    QFile f(SqlServerSchemaScriptPath());
    if (!f.open(QIODevice::ReadOnly)) ADD_FAILURE() << f.fileName().toStdString();
    return QString::fromUtf8(f.readAll());
}

TEST(Schema, SqlServerScriptHasTheSameTablesViewsAndColumns) {
    const Script script = parseScript(scriptText());

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

// The script never alters or drops anything and creates each object only when it is missing.
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

// Both databases get the same indexes, among them the ones a member's schedule is read by.
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
