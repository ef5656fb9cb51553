#include <gtest/gtest.h>

#include "data/SuiteCheck.h"
#include "support/QtPrinters.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav::data;
using namespace kav::data::suite_check;
using kav::test::CheckedTsql;

namespace {

// The catalogue queries on SQL Server, as the server receives them.
TEST(SuiteCheckSql, SqlServerCatalogueTexts) {
    const QString objects =
        u"SELECT v.Name, o.type AS Type FROM (VALUES (N'tblHRLoan', N'tblHRLoan'), "
        u"(N'tblHRLoanDetail', N'tblHRLoanDetail'), (N'tblHRLoanType', N'tblHRLoanType'), "
        u"(N'tblHRLoanException', N'tblHRLoanException'), (N'tblHRMonthlyPaiedLoan', "
        u"N'tblHRMonthlyPaiedLoan'), (N'tblEmployee', N'tblEmployee'), (N'tblHROrdinance', "
        u"N'tblHROrdinance'), (N'tblVarekSystemParameters', N'tblVarekSystemParameters'), "
        u"(N'vwHRLoanData', N'vwHRLoanData'), (N'vwHRLoanEmployees', N'vwHRLoanEmployees'), "
        u"(N'vwHRLoanException', N'vwHRLoanException'), (N'vwEmployeeMajor', N'vwEmployeeMajor'), "
        u"(N'vwEmployeeMinor', N'vwEmployeeMinor'), (N'spVarekHasPermission', "
        u"N'dbo.spVarekHasPermission'), (N'spHRLoanExceptionNew', N'dbo.spHRLoanExceptionNew'), "
        u"(N'spHRLoanExceptionUpdate', N'dbo.spHRLoanExceptionUpdate'), (N'tblHRLoanHistory', "
        u"N'tblHRLoanHistory')) AS v(Name, Lookup) LEFT "
        u"JOIN sys.objects o ON o.object_id = OBJECT_ID(v.Lookup)"_s;
    const QString indexes =
        u"SELECT OBJECT_NAME(i.object_id) AS TableName, i.name AS IndexName FROM sys.indexes i "
        u"WHERE i.name IN (N'IX_tblHRLoan_Code', N'IX_tblHRLoan_TypeID', "
        u"N'IX_tblHRLoanDetail_LoanID', N'IX_tblHRLoanDetail_EmployeeID', "
        u"N'IX_tblHRLoanException_LoanID_EmployeeID', N'IX_tblHRLoanException_EmployeeID', "
        u"N'IX_tblHRMonthlyPaiedLoan_LoanID_EmployeeID', N'IX_tblHRMonthlyPaiedLoan_EmployeeID', "
        u"N'IX_tblEmployee_Code', N'IX_tblHROrdinance_EmployeeID', N'IX_tblHRLoanHistory_LoanID', "
        u"N'IX_tblHRLoanHistory_Command_RestoredFromLoanID')"_s;
    const QString parameters =
        u"SELECT OBJECT_NAME(p.object_id) AS ProcedureName, p.name AS ParameterName FROM "
        u"sys.parameters p WHERE p.object_id IN (OBJECT_ID(N'dbo.spVarekHasPermission'), "
        u"OBJECT_ID(N'dbo.spHRLoanExceptionNew'), OBJECT_ID(N'dbo.spHRLoanExceptionUpdate')) "
        u"ORDER BY p.object_id, p.parameter_id"_s;
    const QString rights =
        u"SELECT v.Name, v.Permission, CASE WHEN OBJECT_ID(v.Lookup) IS NULL THEN NULL ELSE "
        u"HAS_PERMS_BY_NAME(QUOTENAME(OBJECT_SCHEMA_NAME(OBJECT_ID(v.Lookup))) + N'.' + "
        u"QUOTENAME(OBJECT_NAME(OBJECT_ID(v.Lookup))), N'OBJECT', v.Permission) END AS Granted "
        u"FROM (VALUES (N'tblHRLoan', N'tblHRLoan', N'SELECT'), (N'tblHRLoan', N'tblHRLoan', "
        u"N'INSERT'), (N'tblHRLoan', N'tblHRLoan', N'UPDATE'), (N'tblHRLoan', N'tblHRLoan', "
        u"N'DELETE'), (N'tblHRLoanDetail', N'tblHRLoanDetail', N'SELECT'), (N'tblHRLoanDetail', "
        u"N'tblHRLoanDetail', N'INSERT'), (N'tblHRLoanDetail', N'tblHRLoanDetail', N'DELETE'), "
        u"(N'tblHRLoanException', N'tblHRLoanException', N'SELECT'), (N'tblHRLoanException', "
        u"N'tblHRLoanException', N'DELETE'), (N'spVarekHasPermission', "
        u"N'dbo.spVarekHasPermission', N'EXECUTE'), (N'spHRLoanExceptionNew', "
        u"N'dbo.spHRLoanExceptionNew', N'EXECUTE'), (N'spHRLoanExceptionUpdate', "
        u"N'dbo.spHRLoanExceptionUpdate', N'EXECUTE'), (N'tblHRLoanHistory', N'tblHRLoanHistory', "
        u"N'SELECT'), (N'tblHRLoanHistory', N'tblHRLoanHistory', N'INSERT')) AS v(Name, Lookup, "
        u"Permission)"_s;
    const QString columnTypes =
        u"SELECT v.TableName, v.ColumnName, TYPE_NAME(c.system_type_id) AS TypeName FROM (VALUES "
        u"(N'tblHRLoan', N'Notes')) AS v(TableName, ColumnName) INNER JOIN sys.columns c ON "
        u"c.object_id = OBJECT_ID(v.TableName) AND c.name = v.ColumnName"_s;
    const QString workingDate = u"Select * from tblVarekSystemParameters Where ID=3450"_s;
    QStringList server;
    for (const MetadataQuery& q : MetadataQueries(DatabaseKind::SqlServer))
        server << CheckedTsql(q.sql);
    EXPECT_EQ(server,
              (QStringList{objects, indexes, workingDate, parameters, rights, columnTypes}));
    // The embedded database answers the first three from its own catalogue.
    QStringList lite;
    for (const MetadataQuery& q : MetadataQueries(DatabaseKind::SQLite)) lite << q.sql;
    EXPECT_EQ(lite.size(), 3);
    EXPECT_TRUE(lite[0].startsWith(u"SELECT name AS Name, type AS Type FROM sqlite_master"_s));
    EXPECT_EQ(lite[2], workingDate);
}

ResultSet rows(const QStringList& columns, const QList<QVariantList>& values) {
    return {columns, values};
}

// A suite database as SQL Server describes it, with one fault of each kind: every line that
// is not "present" says what and why, and one missing object makes the exit code 2.
TEST(SuiteCheck, DecidesEveryLineFromTheServersRows) {
    SuiteFacts f;
    f.kind = DatabaseKind::SqlServer;
    QList<QVariantList> objects;
    for (const CheckedObject& o : CheckedObjects()) {
        if (o.kind == ObjectKind::Index) continue;
        const bool gone = o.name == u"vwEmployeeMinor"_s;
        objects << QVariantList{o.name, gone ? QVariant() : QVariant(u"U "_s)};
        if (o.kind != ObjectKind::Procedure && !gone) f.columns.insert(o.name, o.columns);
    }
    ReadObjects(f, rows({u"Name"_s, u"Type"_s}, objects));
    f.columns.insert(u"vwEmployeeMinor"_s, std::nullopt);
    f.columns.insert(u"tblEmployee"_s, std::nullopt);  // there, but not to be read
    f.columns[u"tblHRLoan"_s]->removeAll(u"OriginalLoanValue"_s);
    f.columns.insert(u"tblHRMonthlyPaiedLoan"_s,
                     QStringList{u"ID"_s, u"LoanID"_s, u"employeeid"_s, u"PayMonth"_s});
    ReadParameters(f, rows({u"ProcedureName"_s, u"ParameterName"_s},
                           {{u"spVarekHasPermission"_s, u"@UserID"_s},
                            {u"spVarekHasPermission"_s, u"@FormPermissionID"_s},
                            {u"spVarekHasPermission"_s, u"@CompanyID"_s},
                            {u"spHRLoanExceptionNew"_s, u"@LoanID"_s},
                            {u"spHRLoanExceptionNew"_s, u"@EmployeeID"_s},
                            {u"spHRLoanExceptionNew"_s, u"@MonthlyDebit"_s},
                            {u"spHRLoanExceptionNew"_s, u"@BeginDate"_s},
                            {u"spHRLoanExceptionNew"_s, u"@FarsiBeginDate"_s},
                            {u"spHRLoanExceptionNew"_s, u"@EndDate"_s},
                            {u"spHRLoanExceptionNew"_s, u"@FarsiEndDate"_s},
                            {u"SPHRLOANEXCEPTIONUPDATE"_s, u"@ID"_s},
                            {u"SPHRLOANEXCEPTIONUPDATE"_s, u"@MonthlyDebit"_s},
                            {u"SPHRLOANEXCEPTIONUPDATE"_s, u"@LoanID"_s}}));
    ReadRights(f, rows({u"Name"_s, u"Permission"_s, u"Granted"_s},
                       {{u"tblHRLoan"_s, u"SELECT"_s, 1},
                        {u"tblHRLoan"_s, u"INSERT"_s, 1},
                        {u"tblHRLoan"_s, u"UPDATE"_s, 1},
                        {u"tblHRLoan"_s, u"DELETE"_s, 1},
                        {u"tblHRLoanDetail"_s, u"SELECT"_s, 1},
                        {u"tblHRLoanDetail"_s, u"INSERT"_s, 0},
                        {u"tblHRLoanDetail"_s, u"DELETE"_s, 0},
                        {u"tblHRLoanException"_s, u"SELECT"_s, 1},
                        {u"tblHRLoanException"_s, u"DELETE"_s, 1},
                        {u"spVarekHasPermission"_s, u"EXECUTE"_s, 1},
                        {u"spHRLoanExceptionNew"_s, u"EXECUTE"_s, QVariant()},
                        {u"spHRLoanExceptionUpdate"_s, u"EXECUTE"_s, 1},
                        {u"tblHRLoanHistory"_s, u"SELECT"_s, 1},
                        {u"tblHRLoanHistory"_s, u"INSERT"_s, 0}}));
    ReadColumnTypes(f, rows({u"TableName"_s, u"ColumnName"_s, u"TypeName"_s},
                            {{u"tblHRLoan"_s, u"Notes"_s, u"varchar"_s}}));
    QList<QVariantList> indexes;
    for (const CheckedObject& o : CheckedObjects())
        if (o.kind == ObjectKind::Index && o.name != u"IX_tblEmployee_Code"_s)
            indexes << QVariantList{o.table.toUpper(), o.name};
    ReadIndexes(f, rows({u"TableName"_s, u"IndexName"_s}, indexes));
    ReadWorkingDate(f, rows({u"ID"_s, u"Value"_s}, {{3450, u"1403/13/01"_s}}));
    f.user = 12;
    f.permissions = {{111801, 1}, {111802, 1}, {111803, 0}};

    const QList<Line> lines = Decide(f, PayslipColumns{});
    QStringList notPresent;
    int present = 0;
    for (const Line& l : lines) {
        if (l.status == Status::Present)
            ++present;
        else
            notPresent << LineText(l);
    }
    EXPECT_EQ(
        notPresent,
        (QStringList{
            u"ناموجود: جدول tblHRLoan ستون OriginalLoanValue را ندارد: وام‌ها خوانده و ذخيره "
            u"نمي‌شوند"_s,
            u"ناموجود: جدول tblEmployee هست ولي خوانده نمي‌شود (حق SELECT؟): ماژول باز نمي‌شود"_s,
            u"ناموجود: نماي vwEmployeeMinor نيست: انتخاب کارمند در پنجره‌ها کار نمي‌کند"_s,
            u"محدود: روال ذخيره‌شده spVarekHasPermission (@UserID، @FormPermissionID) پس از آنها "
            u"@CompanyID را هم دارد که ماژول نمي‌فرستد: هر يک بايد مقدار پيش‌فرض داشته باشد"_s,
            u"ناموجود: روال ذخيره‌شده spHRLoanExceptionUpdate: پارامترهاي آن «@ID، @MonthlyDebit، "
            u"@LoanID» است و ماژول «@ID، @LoanID، @EmployeeID، @BeginDate، @FarsiBeginDate، "
            u"@EndDate، @FarsiEndDate، @MonthlyDebit» را به همين ترتيب مي‌فرستد: تغيير تعديل قسط "
            u"ذخيره نمي‌شود"_s,
            u"محدود: ستون Notes از جدول tblHRLoan از نوع varchar است و متن يونيکد نگه نمي‌دارد: «ی» "
            u"فارسي و رقم‌هاي فارسي در آن به نويسه‌هاي ديگر تبديل مي‌شوند"_s,
            u"محدود: پارامتر 3450 (تاريخ کاري سيستم) در tblVarekSystemParameters: «1403/13/01» "
            u"تاريخ yyyy/mm/dd نيست؛ تاريخ‌هايي که پنجره وام براي وام تازه پيشنهاد مي‌کند درست "
            u"نيستند"_s,
            u"محدود: ستون فيش حقوقي PaidValue (مبلغ کسر شده، تنظيم Payslip/PaidColumn) در "
            u"tblHRMonthlyPaiedLoan نيست: جدول بازپرداخت عضو فقط اقساط برنامه‌ريزي‌شده را نشان "
            u"مي‌دهد، نه آنچه در فيش‌ها کسر شده است"_s,
            u"محدود: شاخص IX_tblEmployee_Code روي tblEmployee نيست: جستجو و خواندن وام‌ها روي داده "
            u"زياد کندتر است"_s,
            u"ناموجود: حق INSERT، DELETE روي جدول tblHRLoanDetail به اين کاربر پايگاه داده داده "
            u"نشده است: ذخيره و حذف وام و حذف عضو رد مي‌شود"_s,
            u"بررسي نشد: حق‌هاي EXECUTE روي روال ذخيره‌شده spHRLoanExceptionNew: اين شيء پيدا نشد"_s,
            u"ناموجود: حق INSERT روي جدول tblHRLoanHistory به اين کاربر پايگاه داده داده نشده "
            u"است: ثبت تاريخچه، و با آن هر ذخيره، حذف و تعديل وام، رد مي‌شود"_s,
            u"محدود: کاربر 12 نقش 111803 را ندارد: وامي را ويرايش نمي‌کند"_s}));
    EXPECT_EQ(present, 31);
    EXPECT_EQ(ExitCode(lines), 2);
    EXPECT_EQ(Summary(lines),
              u"اين پايگاه داده براي ماژول وام کارمندان آماده نيست: 6 مورد ناموجود؛ "
              u"6 مورد محدود؛ 1 مورد بررسي نشد."_s);
}

}  // namespace
