#include "deductions/DeductionsSql.h"

using namespace Qt::StringLiterals;

namespace kav::deductions::deductions_sql {

namespace {

// The filters as conditions: the member's loan type and the member himself. `loanType` is
// the condition on the type given its number.
QStringList conditions(const Filter& f, const QString& loanType, const QString& employeeColumn) {
    QStringList where;
    if (f.loanTypeId) where << loanType.arg(*f.loanTypeId);
    if (f.employeeId) where << employeeColumn + u"="_s + QString::number(*f.employeeId);
    return where;
}

QString whereClause(const QStringList& conditions) {
    return conditions.isEmpty() ? QString() : u" where "_s + conditions.join(u" and "_s);
}

const QString kLoanOfType = u"LoanID in (select ID from tblHRLoan where TypeID=%1)"_s;

}  // namespace

QString LoanTypesQuery() { return u"select ID, Name from tblHRLoanType order by ID"_s; }

QString MembersQuery(const Filter& filter) {
    return u"select d.LoanID, d.EmployeeID, l.Code as LoanCode, l.TypeID, t.Name as "
           u"LoanTypeName, l.LoanValue, l.MonthlyValue, l.PayBackNumber, "
           u"l.UseRemainedValueInFirstMonth, l.FarsiBeginDate, l.FarsiEndDate, e.Code as "
           u"EmployeeCode, e.FirstName, e.SureName, e.WorkStatusID from tblHRLoanDetail d "
           u"inner join tblHRLoan l on l.ID=d.LoanID left outer join tblHRLoanType t on "
           u"t.ID=l.TypeID left outer join tblEmployee e on e.ID=d.EmployeeID"_s +
           whereClause(QStringList{u"l.Code is not null"_s} +
                       conditions(filter, u"l.TypeID=%1"_s, u"d.EmployeeID"_s));
}

QString AdjustmentsQuery(const Filter& filter) {
    return u"select ID, LoanID, EmployeeID, FarsiBeginDate, FarsiEndDate, MonthlyDebit from "
           u"tblHRLoanException"_s +
           whereClause(conditions(filter, kLoanOfType, u"EmployeeID"_s));
}

QString PayslipsQuery(const data::PayslipColumns& columns, const Filter& filter) {
    return u"select LoanID, "_s + columns.employee + u", "_s + columns.month + u", "_s +
           columns.paid + u" from tblHRMonthlyPaiedLoan"_s +
           whereClause(conditions(filter, kLoanOfType, columns.employee));
}

}  // namespace kav::deductions::deductions_sql
