#pragma once

// The three stored procedures the module calls, and their emulation on the embedded
// database (the same effect on the same tables as the suite's procedures).

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace kav::data {

struct ProcedureInfo {
    QString name;
    QStringList parameters;  // in the order the module passes them, with their "@"
};

const ProcedureInfo& HasPermissionProcedure();        // spVarekHasPermission
const ProcedureInfo& LoanExceptionNewProcedure();     // spHRLoanExceptionNew
const ProcedureInfo& LoanExceptionUpdateProcedure();  // spHRLoanExceptionUpdate

// "{? = CALL dbo.NAME( ?, ?) }": the ODBC call text with one "?" per parameter.
QString OdbcCallText(const ProcedureInfo& procedure);

// Runs the procedure on the embedded database with the parameters in their order and
// returns its return value: spVarekHasPermission 1 when granted else 0;
// spHRLoanExceptionNew the new ID; spHRLoanExceptionUpdate 0. Dates arrive as QDate (an
// invalid one is the empty date), amounts as double. Each value is taken as SQL Server takes
// it for the parameter's type: what SQL Server would refuse (a text that is no date for a
// datetime, no number for money or int) raises KavError (TypeMismatch); a Null date is stored
// as 1900-01-01 and a Null Persian date as the empty text, as the suite's procedures do, and
// any other Null is stored as Null (a Null loan or employee is refused by the table). A
// failing statement raises KavError (Database, or Busy) with the driver's text.
int RunEmulatedProcedure(QSqlDatabase& db, const QString& procedure, const QVariantList& params);

}  // namespace kav::data
