#include "data/EmbeddedSchema.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

#include "data/Names.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::data {

// The loan database on SQLite. It has the tables and columns of the suite's SQL Server
// database (sqlserver/KAVHRLoan.sql) with these translations:
//  - ID keys are INTEGER PRIMARY KEY AUTOINCREMENT, SQLite's identity: an ID is never
//    handed out twice, so "MAX(ID)" read after an insert is the new row's key, as with
//    IDENTITY.
//  - Gregorian dates are TEXT 'yyyy-MM-dd', which the SQLite dialect writes as its date
//    literal and which compares in date order; an empty date is '1900-01-01'.
//  - Amounts (money on SQL Server) have NUMERIC affinity, so whole rial amounts come back
//    as integers and print without an exponent.
//  - The views join names with || where T-SQL uses +.
QStringList EmbeddedSchemaStatements() {
    return {
        uR"(CREATE TABLE IF NOT EXISTS tblHRLoanType (
    -- Loan types; MaxValue is the largest amount a loan of the type may have, Null for none.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    Name TEXT NOT NULL,
    MaxValue NUMERIC NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHRLoan (
    -- One row per loan. Code is Null while the loan is temporary and the loan number once
    -- it is final. UseRemainedValueInFirstMonth: 1 the remainder with the first instalment,
    -- 0 with the last, 2 in a separate month after the last.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    Code INTEGER NULL,
    TypeID INTEGER NULL,
    PaymentDate TEXT NULL,
    FarsiPaymentDate TEXT NULL,
    BeginDate TEXT NULL,
    FarsiBeginDate TEXT NULL,
    EndDate TEXT NULL,
    FarsiEndDate TEXT NULL,
    LoanValue NUMERIC NULL,
    OriginalLoanValue NUMERIC NULL,
    MonthlyValue NUMERIC NULL,
    PayBackNumber INTEGER NULL,
    UseRemainedValueInFirstMonth INTEGER NULL,
    Notes TEXT NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHRLoanDetail (
    -- The members of a loan, one row per employee who receives it, with up to three
    -- guarantors (Null where absent).
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    LoanID INTEGER NOT NULL,
    EmployeeID INTEGER NOT NULL,
    SupporterEmployeeID1 INTEGER NULL,
    SupporterEmployeeID2 INTEGER NULL,
    SupporterEmployeeID3 INTEGER NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHRLoanException (
    -- Instalment adjustments: for one member of one loan, the amount deducted each month of
    -- the period instead of the loan's MonthlyValue. An empty end is '' with 1900-01-01; an
    -- empty MonthlyDebit is -1.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    LoanID INTEGER NOT NULL,
    EmployeeID INTEGER NOT NULL,
    BeginDate TEXT NULL,
    FarsiBeginDate TEXT NULL,
    EndDate TEXT NULL,
    FarsiEndDate TEXT NULL,
    MonthlyDebit NUMERIC NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHRMonthlyPaiedLoan (
    -- Instalments the payroll deducted on payslips; any row of a loan freezes it.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    LoanID INTEGER NOT NULL,
    EmployeeID INTEGER NOT NULL,
    PayMonth TEXT NULL,
    PaidValue NUMERIC NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblEmployee (
    -- Employees (kept by the suite). Code is the personnel number; WorkStatusID 3 marks
    -- employees who are no longer borrowers.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    Code TEXT NULL,
    FirstName TEXT NULL,
    SureName TEXT NULL,
    FatherName TEXT NULL,
    WorkStatusID INTEGER NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHROrdinance (
    -- Employment ordinances (kept by the suite): who was employed from when to when.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    EmployeeID INTEGER NOT NULL,
    BeginDate TEXT NULL,
    EndDate TEXT NULL,
    FarsiBeginDate TEXT NULL,
    FarsiEndDate TEXT NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblVarekSystemParameters (
    -- Site-wide parameters; 3450 is the working date ('yyyy/mm/dd', Persian).
    ID INTEGER PRIMARY KEY,
    Value TEXT NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblVarekUserPermission (
    -- The permissions each user holds; spVarekHasPermission grants exactly these.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    UserID INTEGER NOT NULL,
    FormPermissionID INTEGER NOT NULL
))"_s,
        uR"(CREATE TABLE IF NOT EXISTS tblHRLoanHistory (
    -- The module's own record of every write that changed a loan: the loan (for a restore
    -- also the loan it was brought back from), its number at that moment, the command, who
    -- (user, position and the session's employee), when (UTC, 'yyyy-MM-dd HH:mm:ss.SSS') and
    -- the loan before and after as JSON text (header, members with their guarantors, and
    -- for the adjustment commands the adjustment row). Rows are only ever added.
    ID INTEGER PRIMARY KEY AUTOINCREMENT,
    LoanID INTEGER NOT NULL,
    RestoredFromLoanID INTEGER NULL,
    LoanCode INTEGER NULL,
    Command TEXT NOT NULL,
    UserID INTEGER NULL,
    PositionID INTEGER NULL,
    EmployeeID INTEGER NULL,
    ChangedAtUtc TEXT NOT NULL,
    LoanBefore TEXT NULL,
    LoanAfter TEXT NULL
))"_s,
        // The indexes of the module's queries. A member's schedule reads his adjustments and
        // payslips of one loan by (LoanID, EmployeeID). The members keep an index on each
        // column alone: with one on both, the overlap check of a save would probe every pair
        // of its members and the loans of the type (20 ms instead of 3 for 1,000 members).
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoan_Code ON tblHRLoan (Code)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoan_TypeID ON tblHRLoan (TypeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanDetail_LoanID ON tblHRLoanDetail (LoanID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanDetail_EmployeeID ON tblHRLoanDetail (EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanException_LoanID_EmployeeID ON tblHRLoanException (LoanID, EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanException_EmployeeID ON tblHRLoanException (EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRMonthlyPaiedLoan_LoanID_EmployeeID ON tblHRMonthlyPaiedLoan (LoanID, EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRMonthlyPaiedLoan_EmployeeID ON tblHRMonthlyPaiedLoan (EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblEmployee_Code ON tblEmployee (Code)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHROrdinance_EmployeeID ON tblHROrdinance (EmployeeID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanHistory_LoanID ON tblHRLoanHistory (LoanID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblHRLoanHistory_Command_RestoredFromLoanID ON tblHRLoanHistory (Command, RestoredFromLoanID)"_s,
        u"CREATE INDEX IF NOT EXISTS IX_tblVarekUserPermission_UserID ON tblVarekUserPermission (UserID, FormPermissionID)"_s,
        uR"(CREATE VIEW IF NOT EXISTS vwHRLoanData AS
-- One row per member of a loan: the loan's header, its type's name, the member's personnel
-- code and name, his guarantors and their names. ID and LoanID are both the loan's ID: the
-- editor loads a loan with "where ID =" and the search opens the loan of a row by its ID.
-- A loan without members still gives one row, its member columns Null, so a temporary loan
-- saved before its members can be loaded.
SELECT
    l.ID AS ID,
    l.ID AS LoanID,
    d.EmployeeID AS EmployeeID,
    l.TypeID AS TypeID,
    l.Code AS Code,
    l.LoanValue AS LoanValue,
    l.OriginalLoanValue AS OriginalLoanValue,
    l.MonthlyValue AS MonthlyValue,
    l.PayBackNumber AS PayBackNumber,
    l.UseRemainedValueInFirstMonth AS UseRemainedValueInFirstMonth,
    l.PaymentDate AS PaymentDate,
    l.FarsiPaymentDate AS FarsiPaymentDate,
    l.BeginDate AS BeginDate,
    l.FarsiBeginDate AS FarsiBeginDate,
    l.EndDate AS EndDate,
    l.FarsiEndDate AS FarsiEndDate,
    l.Notes AS Notes,
    d.SupporterEmployeeID1 AS SupporterEmployeeID1,
    d.SupporterEmployeeID2 AS SupporterEmployeeID2,
    d.SupporterEmployeeID3 AS SupporterEmployeeID3,
    t.Name AS LoanTypeDesc,
    e.Code AS EmployeeCode,
    e.FirstName || ' ' || e.SureName AS EmployeeName,
    s1.FirstName || ' ' || s1.SureName AS SupporterEmployeeName1,
    s2.FirstName || ' ' || s2.SureName AS SupporterEmployeeName2,
    s3.FirstName || ' ' || s3.SureName AS SupporterEmployeeName3
FROM tblHRLoan l
    LEFT JOIN tblHRLoanDetail d ON d.LoanID = l.ID
    LEFT JOIN tblHRLoanType t ON t.ID = l.TypeID
    LEFT JOIN tblEmployee e ON e.ID = d.EmployeeID
    LEFT JOIN tblEmployee s1 ON s1.ID = d.SupporterEmployeeID1
    LEFT JOIN tblEmployee s2 ON s2.ID = d.SupporterEmployeeID2
    LEFT JOIN tblEmployee s3 ON s3.ID = d.SupporterEmployeeID3)"_s,
        uR"(CREATE VIEW IF NOT EXISTS vwHRLoanEmployees AS
-- The members of each loan with their personnel code and name, and their guarantors' IDs;
-- the member grid joins it to tblEmployee for the guarantors' names.
SELECT
    d.LoanID AS LoanID,
    d.EmployeeID AS EmployeeID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    d.SupporterEmployeeID1 AS SupporterEmployeeID1,
    d.SupporterEmployeeID2 AS SupporterEmployeeID2,
    d.SupporterEmployeeID3 AS SupporterEmployeeID3
FROM tblHRLoanDetail d
    LEFT JOIN tblEmployee e ON e.ID = d.EmployeeID)"_s,
        uR"(CREATE VIEW IF NOT EXISTS vwHRLoanException AS
-- Instalment adjustments with the employee's name, for the adjustment list and editor.
SELECT
    x.ID AS ID,
    x.LoanID AS LoanID,
    x.EmployeeID AS EmployeeID,
    e.FirstName || ' ' || e.SureName AS EmployeeName,
    x.BeginDate AS BeginDate,
    x.FarsiBeginDate AS FarsiBeginDate,
    x.EndDate AS EndDate,
    x.FarsiEndDate AS FarsiEndDate,
    x.MonthlyDebit AS MonthlyDebit
FROM tblHRLoanException x
    LEFT JOIN tblEmployee e ON e.ID = x.EmployeeID)"_s,
        uR"(CREATE VIEW IF NOT EXISTS vwEmployeeMajor AS
-- The employee list an employee selector searches (by code or name); a selector's filter
-- is a WHERE condition on these columns.
SELECT
    e.ID AS ID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    e.FirstName || ' ' || e.SureName AS EmployeeName,
    e.WorkStatusID AS WorkStatusID
FROM tblEmployee e)"_s,
        uR"(CREATE VIEW IF NOT EXISTS vwEmployeeMinor AS
-- One employee looked up by ID, for what a selector shows of the chosen record.
SELECT
    e.ID AS ID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    e.FirstName || ' ' || e.SureName AS EmployeeName,
    e.WorkStatusID AS WorkStatusID
FROM tblEmployee e)"_s,
    };
}

void CreateEmbeddedSchema(QSqlDatabase& db) {
    const bool inTransaction = db.transaction();
    for (const QString& sql : EmbeddedSchemaStatements()) {
        QSqlQuery q(db);
        if (!q.exec(sql)) {
            const QString error = q.lastError().text();
            if (inTransaction) db.rollback();
            throw KavError(KavError::Kind::Database, error + u"\n"_s + sql);
        }
    }
    if (inTransaction && !db.commit())
        throw KavError(KavError::Kind::Database, db.lastError().text());
}

bool HasEmbeddedSchema(QSqlDatabase& db) {
    const QStringList tables = db.tables(QSql::Tables);
    for (const QString& t : tables)
        if (t.compare(names::tblHRLoan, Qt::CaseInsensitive) == 0) return true;
    return false;
}

QString SqlServerSchemaScriptPath() {
    const QString source = QString::fromUtf8(KAV_SQLSERVER_SCHEMA);
    if (QFileInfo::exists(source)) return source;
    // Installed: <prefix>/bin/app and <prefix>/share/KAVHRLoan/KAVHRLoan.sql.
    const QString installed = QDir(QCoreApplication::applicationDirPath())
                                  .filePath(u"../share/KAVHRLoan/KAVHRLoan.sql"_s);
    return QDir::cleanPath(installed);
}

}  // namespace kav::data
