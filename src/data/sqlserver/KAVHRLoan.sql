-- KAVHRLoan: the loan tables, views and stored procedures on SQL Server.
--
-- What it creates, each object only when no object of that name exists yet. Nothing is
-- ever altered, replaced or dropped: in the suite's own database these objects belong to
-- the suite and stay exactly as they are, so the script is safe to run there too.
--   tables      tblHRLoanType, tblHRLoan, tblHRLoanDetail, tblHRLoanException,
--               tblHRMonthlyPaiedLoan, tblEmployee, tblHROrdinance, tblVarekSystemParameters;
--               tblHRLoanHistory, the module's own record of its writes;
--               tblVarekUserPermission only together with spVarekHasPermission (it holds the
--               permissions that procedure grants)
--   indexes     on the columns the module searches by, on the tables above
--   views       vwHRLoanData, vwHRLoanEmployees, vwHRLoanException, vwEmployeeMajor,
--               vwEmployeeMinor
--   procedures  spVarekHasPermission, spHRLoanExceptionNew, spHRLoanExceptionUpdate
--
-- Where to run it: on the database that the module's connection string names (its Initial
-- Catalog), as a login allowed to create tables, views and procedures in the dbo schema:
--     sqlcmd -S SERVER -d DATABASE -E -i KAVHRLoan.sql       (or -U LOGIN -P PASSWORD)
-- It is meant for a database without the suite (development, tests, a site that runs the
-- module alone); on the suite's database it only adds what is missing.
--
-- It is kept in step with the embedded SQLite schema (src/data/EmbeddedSchema.cpp): the
-- same tables, views and column names. Dates are datetime (the module writes them as
-- 'yyyyMMdd'; an empty date is 1900-01-01), Persian dates nvarchar 'yyyy/mm/dd', amounts
-- money. Views and procedures are created through EXEC, since CREATE VIEW and CREATE
-- PROCEDURE must each stand alone in their batch; quotes inside them are doubled.

SET ANSI_NULLS ON;
SET QUOTED_IDENTIFIER ON;
GO

-- Loan types; MaxValue is the largest amount a loan of the type may have, Null for none.
IF OBJECT_ID(N'dbo.tblHRLoanType', N'U') IS NULL
CREATE TABLE dbo.tblHRLoanType (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRLoanType PRIMARY KEY,
    Name nvarchar(100) NOT NULL,
    MaxValue money NULL
);
GO

-- One row per loan. Code is Null while the loan is temporary and the loan number once it
-- is final. UseRemainedValueInFirstMonth: 1 the remainder with the first instalment, 0 with
-- the last, 2 in a separate month after the last.
IF OBJECT_ID(N'dbo.tblHRLoan', N'U') IS NULL
CREATE TABLE dbo.tblHRLoan (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRLoan PRIMARY KEY,
    Code int NULL,
    TypeID int NULL,
    PaymentDate datetime NULL,
    FarsiPaymentDate nvarchar(10) NULL,
    BeginDate datetime NULL,
    FarsiBeginDate nvarchar(10) NULL,
    EndDate datetime NULL,
    FarsiEndDate nvarchar(10) NULL,
    LoanValue money NULL,
    OriginalLoanValue money NULL,
    MonthlyValue money NULL,
    PayBackNumber int NULL,
    UseRemainedValueInFirstMonth int NULL,
    Notes nvarchar(max) NULL
);
GO

-- The members of a loan, one row per employee who receives it, with up to three
-- guarantors (Null where absent).
IF OBJECT_ID(N'dbo.tblHRLoanDetail', N'U') IS NULL
CREATE TABLE dbo.tblHRLoanDetail (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRLoanDetail PRIMARY KEY,
    LoanID int NOT NULL,
    EmployeeID int NOT NULL,
    SupporterEmployeeID1 int NULL,
    SupporterEmployeeID2 int NULL,
    SupporterEmployeeID3 int NULL
);
GO

-- Instalment adjustments: for one member of one loan, the amount deducted each month of
-- the period instead of the loan's MonthlyValue. An empty end is N'' with 1900-01-01; an
-- empty MonthlyDebit is -1.
IF OBJECT_ID(N'dbo.tblHRLoanException', N'U') IS NULL
CREATE TABLE dbo.tblHRLoanException (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRLoanException PRIMARY KEY,
    LoanID int NOT NULL,
    EmployeeID int NOT NULL,
    BeginDate datetime NULL,
    FarsiBeginDate nvarchar(10) NULL,
    EndDate datetime NULL,
    FarsiEndDate nvarchar(10) NULL,
    MonthlyDebit money NULL
);
GO

-- Instalments the payroll deducted on payslips; any row of a loan freezes it.
IF OBJECT_ID(N'dbo.tblHRMonthlyPaiedLoan', N'U') IS NULL
CREATE TABLE dbo.tblHRMonthlyPaiedLoan (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRMonthlyPaiedLoan PRIMARY KEY,
    LoanID int NOT NULL,
    EmployeeID int NOT NULL,
    PayMonth nvarchar(7) NULL,
    PaidValue money NULL
);
GO

-- Employees (kept by the suite). Code is the personnel number; WorkStatusID 3 marks
-- employees who are no longer borrowers.
IF OBJECT_ID(N'dbo.tblEmployee', N'U') IS NULL
CREATE TABLE dbo.tblEmployee (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblEmployee PRIMARY KEY,
    Code nvarchar(20) NULL,
    FirstName nvarchar(50) NULL,
    SureName nvarchar(80) NULL,
    FatherName nvarchar(50) NULL,
    WorkStatusID int NULL
);
GO

-- Employment ordinances (kept by the suite): who was employed from when to when.
IF OBJECT_ID(N'dbo.tblHROrdinance', N'U') IS NULL
CREATE TABLE dbo.tblHROrdinance (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHROrdinance PRIMARY KEY,
    EmployeeID int NOT NULL,
    BeginDate datetime NULL,
    EndDate datetime NULL,
    FarsiBeginDate nvarchar(10) NULL,
    FarsiEndDate nvarchar(10) NULL
);
GO

-- Site-wide parameters; 3450 is the working date ('yyyy/mm/dd', Persian).
IF OBJECT_ID(N'dbo.tblVarekSystemParameters', N'U') IS NULL
CREATE TABLE dbo.tblVarekSystemParameters (
    ID int NOT NULL CONSTRAINT PK_tblVarekSystemParameters PRIMARY KEY,
    Value nvarchar(200) NULL
);
GO

-- The permissions each user holds; spVarekHasPermission grants exactly these. The suite's
-- own role system answers instead where its procedure exists.
IF OBJECT_ID(N'dbo.tblVarekUserPermission', N'U') IS NULL
    AND OBJECT_ID(N'dbo.spVarekHasPermission', N'P') IS NULL
CREATE TABLE dbo.tblVarekUserPermission (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblVarekUserPermission PRIMARY KEY,
    UserID int NOT NULL,
    FormPermissionID int NOT NULL
);
GO

-- The module's own record of every write that changed a loan: the loan (for a restore also
-- the loan it was brought back from), its number at that moment, the command, who (user,
-- position and the session's employee), when (UTC) and the loan before and after as JSON
-- text (header, members with their guarantors, and for the adjustment commands the
-- adjustment row). Rows are only ever added.
IF OBJECT_ID(N'dbo.tblHRLoanHistory', N'U') IS NULL
CREATE TABLE dbo.tblHRLoanHistory (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_tblHRLoanHistory PRIMARY KEY,
    LoanID int NOT NULL,
    RestoredFromLoanID int NULL,
    LoanCode int NULL,
    Command nvarchar(30) NOT NULL,
    UserID int NULL,
    PositionID int NULL,
    EmployeeID int NULL,
    ChangedAtUtc datetime NOT NULL,
    LoanBefore nvarchar(max) NULL,
    LoanAfter nvarchar(max) NULL
);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoan_Code'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoan'))
    CREATE INDEX IX_tblHRLoan_Code ON dbo.tblHRLoan (Code);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoan_TypeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoan'))
    CREATE INDEX IX_tblHRLoan_TypeID ON dbo.tblHRLoan (TypeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanDetail_LoanID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanDetail'))
    CREATE INDEX IX_tblHRLoanDetail_LoanID ON dbo.tblHRLoanDetail (LoanID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanDetail_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanDetail'))
    CREATE INDEX IX_tblHRLoanDetail_EmployeeID ON dbo.tblHRLoanDetail (EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanException_LoanID_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanException'))
    CREATE INDEX IX_tblHRLoanException_LoanID_EmployeeID ON dbo.tblHRLoanException (LoanID, EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanException_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanException'))
    CREATE INDEX IX_tblHRLoanException_EmployeeID ON dbo.tblHRLoanException (EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRMonthlyPaiedLoan_LoanID_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRMonthlyPaiedLoan'))
    CREATE INDEX IX_tblHRMonthlyPaiedLoan_LoanID_EmployeeID ON dbo.tblHRMonthlyPaiedLoan (LoanID, EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRMonthlyPaiedLoan_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHRMonthlyPaiedLoan'))
    CREATE INDEX IX_tblHRMonthlyPaiedLoan_EmployeeID ON dbo.tblHRMonthlyPaiedLoan (EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblEmployee_Code'
               AND object_id = OBJECT_ID(N'dbo.tblEmployee'))
    CREATE INDEX IX_tblEmployee_Code ON dbo.tblEmployee (Code);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHROrdinance_EmployeeID'
               AND object_id = OBJECT_ID(N'dbo.tblHROrdinance'))
    CREATE INDEX IX_tblHROrdinance_EmployeeID ON dbo.tblHROrdinance (EmployeeID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanHistory_LoanID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanHistory'))
    CREATE INDEX IX_tblHRLoanHistory_LoanID ON dbo.tblHRLoanHistory (LoanID);
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblHRLoanHistory_Command_RestoredFromLoanID'
               AND object_id = OBJECT_ID(N'dbo.tblHRLoanHistory'))
    CREATE INDEX IX_tblHRLoanHistory_Command_RestoredFromLoanID
        ON dbo.tblHRLoanHistory (Command, RestoredFromLoanID);
IF OBJECT_ID(N'dbo.tblVarekUserPermission', N'U') IS NOT NULL
    AND NOT EXISTS (SELECT 1 FROM sys.indexes WHERE name = N'IX_tblVarekUserPermission_UserID'
                    AND object_id = OBJECT_ID(N'dbo.tblVarekUserPermission'))
    CREATE INDEX IX_tblVarekUserPermission_UserID
        ON dbo.tblVarekUserPermission (UserID, FormPermissionID);
GO

-- One row per member of a loan: the loan's header, its type's name, the member's personnel
-- code and name, his guarantors and their names. ID and LoanID are both the loan's ID: the
-- editor loads a loan with "where ID =" and the search opens the loan of a row by its ID.
-- A loan without members still gives one row, its member columns Null, so a temporary loan
-- saved before its members can be loaded.
IF OBJECT_ID(N'dbo.vwHRLoanData', N'V') IS NULL
EXEC(N'CREATE VIEW dbo.vwHRLoanData AS
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
    e.FirstName + N'' '' + e.SureName AS EmployeeName,
    s1.FirstName + N'' '' + s1.SureName AS SupporterEmployeeName1,
    s2.FirstName + N'' '' + s2.SureName AS SupporterEmployeeName2,
    s3.FirstName + N'' '' + s3.SureName AS SupporterEmployeeName3
FROM dbo.tblHRLoan l
    LEFT JOIN dbo.tblHRLoanDetail d ON d.LoanID = l.ID
    LEFT JOIN dbo.tblHRLoanType t ON t.ID = l.TypeID
    LEFT JOIN dbo.tblEmployee e ON e.ID = d.EmployeeID
    LEFT JOIN dbo.tblEmployee s1 ON s1.ID = d.SupporterEmployeeID1
    LEFT JOIN dbo.tblEmployee s2 ON s2.ID = d.SupporterEmployeeID2
    LEFT JOIN dbo.tblEmployee s3 ON s3.ID = d.SupporterEmployeeID3');
GO

-- The members of each loan with their personnel code and name, and their guarantors' IDs;
-- the member grid joins it to tblEmployee for the guarantors' names.
IF OBJECT_ID(N'dbo.vwHRLoanEmployees', N'V') IS NULL
EXEC(N'CREATE VIEW dbo.vwHRLoanEmployees AS
SELECT
    d.LoanID AS LoanID,
    d.EmployeeID AS EmployeeID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    d.SupporterEmployeeID1 AS SupporterEmployeeID1,
    d.SupporterEmployeeID2 AS SupporterEmployeeID2,
    d.SupporterEmployeeID3 AS SupporterEmployeeID3
FROM dbo.tblHRLoanDetail d
    LEFT JOIN dbo.tblEmployee e ON e.ID = d.EmployeeID');
GO

-- Instalment adjustments with the employee's name, for the adjustment list and editor.
IF OBJECT_ID(N'dbo.vwHRLoanException', N'V') IS NULL
EXEC(N'CREATE VIEW dbo.vwHRLoanException AS
SELECT
    x.ID AS ID,
    x.LoanID AS LoanID,
    x.EmployeeID AS EmployeeID,
    e.FirstName + N'' '' + e.SureName AS EmployeeName,
    x.BeginDate AS BeginDate,
    x.FarsiBeginDate AS FarsiBeginDate,
    x.EndDate AS EndDate,
    x.FarsiEndDate AS FarsiEndDate,
    x.MonthlyDebit AS MonthlyDebit
FROM dbo.tblHRLoanException x
    LEFT JOIN dbo.tblEmployee e ON e.ID = x.EmployeeID');
GO

-- The employee list an employee selector searches (by code or name); a selector's filter
-- is a WHERE condition on these columns.
IF OBJECT_ID(N'dbo.vwEmployeeMajor', N'V') IS NULL
EXEC(N'CREATE VIEW dbo.vwEmployeeMajor AS
SELECT
    e.ID AS ID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    e.FirstName + N'' '' + e.SureName AS EmployeeName,
    e.WorkStatusID AS WorkStatusID
FROM dbo.tblEmployee e');
GO

-- One employee looked up by ID, for what a selector shows of the chosen record.
IF OBJECT_ID(N'dbo.vwEmployeeMinor', N'V') IS NULL
EXEC(N'CREATE VIEW dbo.vwEmployeeMinor AS
SELECT
    e.ID AS ID,
    e.Code AS Code,
    e.FirstName AS FirstName,
    e.SureName AS SureName,
    e.FirstName + N'' '' + e.SureName AS EmployeeName,
    e.WorkStatusID AS WorkStatusID
FROM dbo.tblEmployee e');
GO

-- Returns 1 when the user holds the permission, else 0.
IF OBJECT_ID(N'dbo.spVarekHasPermission', N'P') IS NULL
EXEC(N'CREATE PROCEDURE dbo.spVarekHasPermission
    @UserID int,
    @FormPermissionID int
AS
BEGIN
    SET NOCOUNT ON;
    IF EXISTS (SELECT 1 FROM dbo.tblVarekUserPermission
               WHERE UserID = @UserID AND FormPermissionID = @FormPermissionID)
        RETURN 1;
    RETURN 0;
END');
GO

-- Stores a new instalment adjustment and returns its ID.
IF OBJECT_ID(N'dbo.spHRLoanExceptionNew', N'P') IS NULL
EXEC(N'CREATE PROCEDURE dbo.spHRLoanExceptionNew
    @LoanID int,
    @EmployeeID int,
    @MonthlyDebit money,
    @BeginDate datetime,
    @FarsiBeginDate nvarchar(10),
    @EndDate datetime,
    @FarsiEndDate nvarchar(10)
AS
BEGIN
    SET NOCOUNT ON;
    INSERT INTO dbo.tblHRLoanException
        (LoanID, EmployeeID, MonthlyDebit, BeginDate, FarsiBeginDate, EndDate, FarsiEndDate)
    VALUES
        (@LoanID, @EmployeeID, @MonthlyDebit, ISNULL(@BeginDate, ''19000101''),
         ISNULL(@FarsiBeginDate, N''''), ISNULL(@EndDate, ''19000101''), ISNULL(@FarsiEndDate, N''''));
    RETURN CAST(SCOPE_IDENTITY() AS int);
END');
GO

-- Rewrites an instalment adjustment by its ID; returns 0.
IF OBJECT_ID(N'dbo.spHRLoanExceptionUpdate', N'P') IS NULL
EXEC(N'CREATE PROCEDURE dbo.spHRLoanExceptionUpdate
    @ID int,
    @LoanID int,
    @EmployeeID int,
    @BeginDate datetime,
    @FarsiBeginDate nvarchar(10),
    @EndDate datetime,
    @FarsiEndDate nvarchar(10),
    @MonthlyDebit money
AS
BEGIN
    SET NOCOUNT ON;
    UPDATE dbo.tblHRLoanException
    SET LoanID = @LoanID,
        EmployeeID = @EmployeeID,
        BeginDate = ISNULL(@BeginDate, ''19000101''),
        FarsiBeginDate = ISNULL(@FarsiBeginDate, N''''),
        EndDate = ISNULL(@EndDate, ''19000101''),
        FarsiEndDate = ISNULL(@FarsiEndDate, N''''),
        MonthlyDebit = @MonthlyDebit
    WHERE ID = @ID;
    RETURN 0;
END');
GO
