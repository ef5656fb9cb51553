#include "adjustments/AdjustmentSql.h"

#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::adjustment_sql {

namespace {
QString number(qint64 value) { return QString::number(value); }
}  // namespace

QString AdjustmentById(qint32 id) {
    return u"select * from vwHRLoanException where ID ="_s + number(id);
}

QString StoredAdjustment(qint32 id) {
    return u"Select * from tblHRLoanException where Id="_s + number(id);
}

QString MemberLoanRows(qint32 loanId, qint32 employeeId) {
    return u"Select * from vwHRLoanData where  LoanID="_s + number(loanId) + u" And EmployeeId="_s +
           number(employeeId);
}

QString DeleteAdjustment(const data::SqlDialect& dialect, qint32 id, qint32 employeeId) {
    return dialect.deleteFrom(u"tblHRLoanException"_s) + u" where ID="_s + number(id) +
           u" and EmployeeID="_s + number(employeeId);
}

QString ListQuery(qint32 employeeId, const QString& farsiBeginDate, const QString& farsiEndDate) {
    QString sql = u"Select * from vwHRLoanException Where ID>=0 "_s;
    if (employeeId != -1) sql += u" and EmployeeID="_s + number(employeeId);
    if (!farsiEndDate.isEmpty())
        sql += u" and FarsiEndDate<= '"_s + SqlQuote(farsiEndDate) + u"'"_s;
    if (!farsiBeginDate.isEmpty())
        sql += u" and FarsiBeginDate>= '"_s + SqlQuote(farsiBeginDate) + u"'"_s;
    return sql;
}

QString LoanHeader(qint32 loanId) {
    return u"select * from vwHRLoanData where ID ="_s + number(loanId);
}

QString MemberAdjustments(qint32 loanId, qint32 employeeId) {
    return u"Select * from tblHRLoanException where LoanID="_s + number(loanId) +
           u" and EmployeeID="_s + number(employeeId) + u" order by ID"_s;
}

}  // namespace kav::adjustment_sql
