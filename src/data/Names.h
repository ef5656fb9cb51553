#pragma once

// The names the data layer itself uses: the tables and views of the loan database, the
// stored procedures with their parameters and the columns the emulated procedures write.
// The windows' SQL texts are written out whole in their builders, as the suite's texts stand.

#include <QString>

namespace kav::data::names {

// Tables
inline const QString tblHRLoan = QStringLiteral("tblHRLoan");
inline const QString tblHRLoanDetail = QStringLiteral("tblHRLoanDetail");
inline const QString tblHRLoanType = QStringLiteral("tblHRLoanType");
inline const QString tblHRLoanException = QStringLiteral("tblHRLoanException");
inline const QString tblHRMonthlyPaiedLoan = QStringLiteral("tblHRMonthlyPaiedLoan");
inline const QString tblEmployee = QStringLiteral("tblEmployee");
inline const QString tblHROrdinance = QStringLiteral("tblHROrdinance");
inline const QString tblVarekSystemParameters = QStringLiteral("tblVarekSystemParameters");
inline const QString tblVarekUserPermission = QStringLiteral("tblVarekUserPermission");

// Views
inline const QString vwHRLoanData = QStringLiteral("vwHRLoanData");
inline const QString vwHRLoanEmployees = QStringLiteral("vwHRLoanEmployees");
inline const QString vwHRLoanException = QStringLiteral("vwHRLoanException");
inline const QString vwEmployeeMajor = QStringLiteral("vwEmployeeMajor");
inline const QString vwEmployeeMinor = QStringLiteral("vwEmployeeMinor");

// Stored procedures and their parameters
inline const QString spVarekHasPermission = QStringLiteral("spVarekHasPermission");
inline const QString spHRLoanExceptionNew = QStringLiteral("spHRLoanExceptionNew");
inline const QString spHRLoanExceptionUpdate = QStringLiteral("spHRLoanExceptionUpdate");
inline const QString atID = QStringLiteral("@ID");
inline const QString atUserID = QStringLiteral("@UserID");
inline const QString atFormPermissionID = QStringLiteral("@FormPermissionID");
inline const QString atLoanID = QStringLiteral("@LoanID");
inline const QString atEmployeeID = QStringLiteral("@EmployeeID");
inline const QString atMonthlyDebit = QStringLiteral("@MonthlyDebit");
inline const QString atBeginDate = QStringLiteral("@BeginDate");
inline const QString atFarsiBeginDate = QStringLiteral("@FarsiBeginDate");
inline const QString atEndDate = QStringLiteral("@EndDate");
inline const QString atFarsiEndDate = QStringLiteral("@FarsiEndDate");

// Columns the emulated procedures write
inline const QString ID = QStringLiteral("ID");
inline const QString LoanID = QStringLiteral("LoanID");
inline const QString EmployeeID = QStringLiteral("EmployeeID");
inline const QString BeginDate = QStringLiteral("BeginDate");
inline const QString FarsiBeginDate = QStringLiteral("FarsiBeginDate");
inline const QString EndDate = QStringLiteral("EndDate");
inline const QString FarsiEndDate = QStringLiteral("FarsiEndDate");
inline const QString MonthlyDebit = QStringLiteral("MonthlyDebit");
inline const QString UserID = QStringLiteral("UserID");
inline const QString FormPermissionID = QStringLiteral("FormPermissionID");

// The system parameter row that holds the working date.
constexpr int DefaultPayDateParameterID = 3450;

// Permission numbers checked against the suite's role system: opening the module, creating
// and deleting a loan (one number for both), editing a loan.
enum Permission : int {
    PermissionOpenModule = 111801,
    PermissionNewOrDeleteLoan = 111802,
    PermissionEditLoan = 111803,
};

}  // namespace kav::data::names
