#include "loan_editor/LoanEditorSql.h"

using namespace Qt::StringLiterals;

namespace kav::loan_sql {

namespace {
QString number(qint64 value) { return QString::number(value); }
}  // namespace

QString FillLoan(qint32 loanId) {
    return u"select * from vwHRLoanData where ID ="_s + number(loanId);
}

QString LoanTypes() { return u"select * from tblHRLoanType"_s; }

QString LoanTypeMaxValue(qint64 typeId) {
    return u"Select MaxValue from tblHRLoanType where ID="_s + number(typeId);
}

QString LoanTypeRow(qint64 typeId) {
    return u"select * from tblHRLoanType where ID="_s + number(typeId);
}

QString MemberGrid(const data::SqlDialect& dialect, qint32 loanId) {
    const QString plus = dialect.concatOperator();
    auto fullName = [&](const QString& e) {
        return e + u".FirstName "_s + plus + u"' '"_s + plus + e + u".SureName"_s;
    };
    return u"select vw.*, "_s + fullName(u"e1"_s) + u" as 'Supporter1', "_s + fullName(u"e2"_s) +
           u" as 'Supporter2', "_s + fullName(u"e3"_s) +
           u" as 'Supporter3' from vwHRLoanEmployees vw left outer join tblemployee e1 on "
           u"supporterEmployeeid1=e1.id left outer join tblemployee e2 on supporteremployeeid2=e2.id "
           u"left outer join tblemployee e3 on supporteremployeeid3=e3.id where vw.LoanID="_s +
           number(loanId);
}

QString PaidInstalments(qint32 loanId) {
    return u"Select * from tblHRMonthlyPaiedLoan Where LoanID="_s + number(loanId);
}

QString EmployeeRow(const data::SqlDialect& dialect, qint32 employeeId) {
    const QString plus = dialect.concatOperator();
    return u"select e.ID, e.Code, e.FirstName "_s + plus + u"' '"_s + plus +
           u"e.SureName as 'EmployeeName' from tblEmployee e Where e.ID="_s + number(employeeId);
}

QString OrdinanceEmployees(const data::SqlDialect& dialect, const QString& idList,
                           const QDate& begin, const QDate& end) {
    const QString plus = dialect.concatOperator();
    const QString endText = dialect.dateText(end.isValid() ? end : QDate(2050, 1, 1));
    const QString beginText = dialect.dateText(begin.isValid() ? begin : QDate(1900, 1, 1));
    return u"select distinct x.EmployeeID, e.Code, e.FirstName "_s + plus + u"' '"_s + plus +
           u"e.SureName as 'EmployeeName' from tblEmployee e inner join tblHROrdinance x on "
           u"x.EmployeeID=e.ID Where e.ID not in ("_s +
           idList + u") and Not (x.BeginDate>'"_s + endText + u"' or x.EndDate<'"_s + beginText +
           u"')"_s;
}

QString DeleteMember(const data::SqlDialect& dialect, qint32 loanId, qint32 employeeId) {
    return dialect.deleteFrom(u"tblHRLoanDetail"_s) + u" where LoanID="_s + number(loanId) +
           u" and EmployeeID="_s + number(employeeId) + u" "_s;
}

}  // namespace kav::loan_sql
