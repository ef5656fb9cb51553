#include "LoanVersions.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace kav::reliability {

namespace {

const QString kNull = u"null"_s;

QString id(qint64 value) { return QString::number(value); }

loan_save::LoanRecord baseLoan(bool isFinal, qint64 typeId, qint64 value, const QString& notes) {
    loan_save::LoanRecord loan;
    loan.isFinal = isFinal;
    loan.typeId = typeId;
    loan.payDate = QDate(2024, 3, 25);
    loan.farsiPayDate = u"1403/01/06"_s;
    loan.beginDate = QDate(2024, 4, 19);
    loan.farsiBeginDate = u"1403/01/31"_s;
    loan.endDate = QDate(2025, 3, 20);
    loan.farsiEndDate = u"1403/12/30"_s;
    loan.loanValue = id(value);
    loan.originalValue = id(value + 7);
    loan.monthlyValue = id(value % 1000 + 1);
    loan.payBackNumber = id(1 + value % 60);
    loan.remainderOption = int(value % 3);
    loan.notes = notes;
    return loan;
}

// The rows of a query, each row's columns joined, Null as "null".
QStringList rows(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    q.exec(sql);
    QStringList out;
    while (q.next()) {
        QStringList cells;
        for (int c = 0; c < q.record().count(); ++c)
            cells << (q.isNull(c) ? kNull : q.value(c).toString());
        out << cells.join(u',');
    }
    return out;
}

}  // namespace

loan_save::LoanRecord LargeLoanVersion(qint64 version, int members) {
    loan_save::LoanRecord loan =
        baseLoan(version % 2 == 1, 1, 1000000 + version, u"v%1"_s.arg(version));
    for (int e = 1; e <= members; ++e)
        loan.members.append(
            {id(e),
             {id((e + version) % members + 1),
              (e * 7 + version) % 3 == 0 ? kNull : id((e * 7 + version) % members + 1), kNull}});
    return loan;
}

loan_save::LoanRecord NewLoan(qint64 j, int employees) {
    loan_save::LoanRecord loan = baseLoan(true, 2, 5000 + j, u"n%1"_s.arg(j));
    for (int k = 0; k < 40; ++k)
        loan.members.append({id((j * 13 + k) % employees + 1),
                             {k % 2 ? id(j % employees + 1) : kNull, kNull, kNull}});
    return loan;
}

loan_save::LoanRecord TaggedLoan(int tag, int i, int members) {
    loan_save::LoanRecord loan = baseLoan(true, tag, i, u"%1:%2"_s.arg(tag).arg(i));
    for (int k = 0; k < members; ++k)
        loan.members.append({id(tag * 1000 + k), {kNull, kNull, kNull}});
    return loan;
}

QString LoanDifference(QSqlDatabase db, qint64 loanId, const loan_save::LoanRecord& e) {
    QStringList wanted = {QStringList{id(e.isFinal), e.notes, e.loanValue, e.originalValue,
                                      e.monthlyValue, e.payBackNumber, id(e.remainderOption),
                                      id(e.typeId)}
                              .join(u',')};
    for (const loan_save::MemberRow& m : e.members)
        wanted << QStringList{m.employeeId, m.guarantors[0], m.guarantors[1], m.guarantors[2]}.join(
            u',');
    const QStringList stored =
        rows(db,
             u"select Code is not null, Notes, LoanValue, OriginalLoanValue, MonthlyValue, "
             "PayBackNumber, UseRemainedValueInFirstMonth, TypeID from tblHRLoan where ID=%1"_s.arg(
                 loanId)) +
        rows(db,
             u"select EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, "
             "SupporterEmployeeID3 from tblHRLoanDetail where LoanID=%1 order by ID"_s.arg(loanId));
    if (stored == wanted) return {};
    return u"loan %1 holds [%2] and %3 member rows, not [%4] and the %5 of its version"_s
        .arg(loanId)
        .arg(stored.value(0))
        .arg(stored.size() - 1)
        .arg(wanted[0])
        .arg(wanted.size() - 1);
}

}  // namespace kav::reliability
