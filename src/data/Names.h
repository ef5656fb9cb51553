#pragma once

// The names of the tables, views, columns and stored procedures of the loan database, each
// spelled once. Column lookups are case-insensitive, so one spelling serves "CODE" and
// "Code" alike.

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

// Columns of the tables
inline const QString ID = QStringLiteral("ID");
inline const QString Code = QStringLiteral("Code");
inline const QString TypeID = QStringLiteral("TypeID");
inline const QString LoanID = QStringLiteral("LoanID");
inline const QString EmployeeID = QStringLiteral("EmployeeID");
inline const QString PaymentDate = QStringLiteral("PaymentDate");
inline const QString FarsiPaymentDate = QStringLiteral("FarsiPaymentDate");
inline const QString BeginDate = QStringLiteral("BeginDate");
inline const QString FarsiBeginDate = QStringLiteral("FarsiBeginDate");
inline const QString EndDate = QStringLiteral("EndDate");
inline const QString FarsiEndDate = QStringLiteral("FarsiEndDate");
inline const QString LoanValue = QStringLiteral("LoanValue");
inline const QString OriginalLoanValue = QStringLiteral("OriginalLoanValue");
inline const QString MonthlyValue = QStringLiteral("MonthlyValue");
inline const QString PayBackNumber = QStringLiteral("PayBackNumber");
inline const QString UseRemainedValueInFirstMonth = QStringLiteral("UseRemainedValueInFirstMonth");
inline const QString Notes = QStringLiteral("Notes");
inline const QString SupporterEmployeeID1 = QStringLiteral("SupporterEmployeeID1");
inline const QString SupporterEmployeeID2 = QStringLiteral("SupporterEmployeeID2");
inline const QString SupporterEmployeeID3 = QStringLiteral("SupporterEmployeeID3");
inline const QString Name = QStringLiteral("Name");
inline const QString MaxValue = QStringLiteral("MaxValue");
inline const QString MonthlyDebit = QStringLiteral("MonthlyDebit");
inline const QString PayMonth = QStringLiteral("PayMonth");    // payroll month "yyyy/mm"
inline const QString PaidValue = QStringLiteral("PaidValue");  // amount deducted
inline const QString FirstName = QStringLiteral("FirstName");
inline const QString SureName = QStringLiteral("SureName");
inline const QString FatherName = QStringLiteral("FatherName");
inline const QString WorkStatusID = QStringLiteral("WorkStatusID");
inline const QString Value = QStringLiteral("Value");
inline const QString UserID = QStringLiteral("UserID");
inline const QString FormPermissionID = QStringLiteral("FormPermissionID");

// Columns computed by the views and by the module's own SELECT texts
inline const QString LoanTypeDesc = QStringLiteral("LoanTypeDesc");
inline const QString EmployeeCode = QStringLiteral("EmployeeCode");
inline const QString EmployeeName = QStringLiteral("EmployeeName");
inline const QString SupporterEmployeeName1 = QStringLiteral("SupporterEmployeeName1");
inline const QString SupporterEmployeeName2 = QStringLiteral("SupporterEmployeeName2");
inline const QString SupporterEmployeeName3 = QStringLiteral("SupporterEmployeeName3");
inline const QString Supporter1 = QStringLiteral("Supporter1");
inline const QString Supporter2 = QStringLiteral("Supporter2");
inline const QString Supporter3 = QStringLiteral("Supporter3");
inline const QString LoanCode = QStringLiteral("LoanCode");
inline const QString MAXID = QStringLiteral("MAXID");

// System parameter rows and permission numbers
constexpr int DefaultPayDateParameterID = 3450;
constexpr int PermissionOpenModule = 111801;
constexpr int PermissionNewOrDeleteLoan = 111802;
constexpr int PermissionEditLoan = 111803;
// Employees with this work status are left out of the borrower chooser.
constexpr int WorkStatusLeft = 3;

}  // namespace kav::data::names
