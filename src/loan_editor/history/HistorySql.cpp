#include "loan_editor/history/HistorySql.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace kav::history::sql {

namespace {

QString number(qint64 value) { return QString::number(value); }

template <class T>
QString idList(const QList<T>& ids) {
    QStringList texts;
    for (const T id : ids) texts << number(id);
    return texts.isEmpty() ? u"-1"_s : texts.join(u',');
}

QString employeeName(const data::SqlDialect& dialect, const QString& alias) {
    const QString plus = dialect.concatOperator();
    return alias + u".FirstName "_s + plus + u" ' ' "_s + plus + u" "_s + alias +
           u".SureName as EmployeeName"_s;
}

}  // namespace

QString Entries(const data::SqlDialect& dialect, const QList<qint32>& loanIds) {
    return u"Select h.ID, h.LoanID, h.RestoredFromLoanID, h.LoanCode, h.Command, h.UserID, "
           u"h.PositionID, h.EmployeeID, h.ChangedAtUtc, h.LoanBefore, h.LoanAfter, "_s +
           employeeName(dialect, u"e"_s) +
           u" from tblHRLoanHistory h left outer join tblEmployee e on e.ID = h.EmployeeID "
           u"Where h.LoanID in ("_s +
           idList(loanIds) + u") Order by h.ID desc"_s;
}

QString RestoredFrom(qint32 loanId) {
    return u"Select RestoredFromLoanID from tblHRLoanHistory Where LoanID="_s + number(loanId) +
           u" and Command='restore'"_s;
}

QString DeletedLoans(const data::SqlDialect& dialect) {
    return u"Select h.ID, h.LoanID, h.UserID, h.EmployeeID, h.ChangedAtUtc, h.LoanBefore, "_s +
           employeeName(dialect, u"e"_s) +
           u", (Select x.LoanCode from tblHRLoanHistory x Where x.ID = (Select MAX(y.ID) from "
           u"tblHRLoanHistory y Where y.LoanID = h.LoanID and y.LoanCode is not null)) as "
           u"LastCode from tblHRLoanHistory h left outer join tblEmployee e on e.ID = "
           u"h.EmployeeID Where h.Command = 'delete' and not exists (Select 1 from "
           u"tblHRLoanHistory r Where r.Command = 'restore' and r.RestoredFromLoanID = h.LoanID) "
           u"and not exists (Select 1 from tblHRLoan l Where l.ID = h.LoanID) Order by h.ID desc"_s;
}

QString EmployeeNames(const data::SqlDialect& dialect, const QList<qint64>& ids) {
    return u"Select e.ID, e.Code, "_s + employeeName(dialect, u"e"_s) +
           u" from tblEmployee e Where e.ID in ("_s + idList(ids) + u")"_s;
}

QString RestoreState(qint32 loanId) {
    return u"Select (Select count(*) from tblHRLoanHistory Where Command = 'restore' and "
           u"RestoredFromLoanID = "_s +
           number(loanId) + u") as Restored, (Select count(*) from tblHRLoan Where ID = "_s +
           number(loanId) + u") as Stored"_s;
}

QString DeletedSnapshot(qint32 loanId) {
    return u"Select LoanBefore from tblHRLoanHistory Where LoanID="_s + number(loanId) +
           u" and Command='delete' Order by ID desc"_s;
}

QString MoveAdjustments(qint32 fromLoanId, qint32 toLoanId) {
    return u"Update tblHRLoanException Set LoanID = "_s + number(toLoanId) + u" Where LoanID = "_s +
           number(fromLoanId);
}

}  // namespace kav::history::sql
