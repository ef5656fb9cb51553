#include "LoanVersions.h"

#include <QSqlQuery>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace kav::reliability {

namespace {

const QString kNull = u"null"_s;

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
    loan.loanValue = QString::number(value);
    loan.originalValue = QString::number(value + 7);
    loan.monthlyValue = QString::number(value % 1000 + 1);
    loan.payBackNumber = QString::number(1 + value % 60);
    loan.remainderOption = int(value % 3);
    loan.notes = notes;
    return loan;
}

QString id(qint64 value) { return QString::number(value); }

QString cell(const QVariant& v) { return v.isNull() ? kNull : v.toString(); }

}  // namespace

loan_save::LoanRecord LargeLoanVersion(qint64 version, int members) {
    loan_save::LoanRecord loan =
        baseLoan(version % 2 == 1, 1, 1000000 + version, u"v%1"_s.arg(version));
    for (int e = 1; e <= members; ++e) {
        const qint64 second = (qint64(e) * 7 + version) % members + 1;
        loan.members.append({id(e),
                             {id((e + version) % members + 1),
                              (e * 7 + version) % 3 == 0 ? kNull : id(second), kNull}});
    }
    return loan;
}

qint64 VersionOf(const QString& notes) {
    if (!notes.startsWith(u'v')) return 0;
    return notes.mid(1).toLongLong();
}

loan_save::LoanRecord NewLoan(qint64 j, int employees) {
    loan_save::LoanRecord loan = baseLoan(true, 2, 5000 + j, u"n%1"_s.arg(j));
    for (int k = 0; k < NewLoanMembers; ++k)
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

QString LoanDifference(QSqlDatabase db, qint64 loanId, const loan_save::LoanRecord& expected) {
    QSqlQuery q(db);
    q.exec(
        u"select Code, Notes, LoanValue, OriginalLoanValue, MonthlyValue, PayBackNumber, "
        "UseRemainedValueInFirstMonth, TypeID from tblHRLoan where ID=%1"_s.arg(loanId));
    if (!q.next()) return u"loan %1 is missing"_s.arg(loanId);
    const QStringList header = {q.value(0).isNull() ? u"temporary"_s : u"final"_s,
                                q.value(1).toString(),
                                cell(q.value(2)),
                                cell(q.value(3)),
                                cell(q.value(4)),
                                cell(q.value(5)),
                                cell(q.value(6)),
                                cell(q.value(7))};
    const QStringList wanted = {expected.isFinal ? u"final"_s : u"temporary"_s,
                                expected.notes,
                                expected.loanValue,
                                expected.originalValue,
                                expected.monthlyValue,
                                expected.payBackNumber,
                                id(expected.remainderOption),
                                id(expected.typeId)};
    if (header != wanted)
        return u"loan %1 holds %2 instead of %3"_s.arg(loanId).arg(header.join(u' '),
                                                                   wanted.join(u' '));
    q.exec(
        u"select EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, "
        "SupporterEmployeeID3 from tblHRLoanDetail where LoanID=%1 order by ID"_s.arg(loanId));
    QStringList rows;
    while (q.next())
        rows << QStringList{cell(q.value(0)), cell(q.value(1)), cell(q.value(2)), cell(q.value(3))}
                    .join(u',');
    QStringList wantedRows;
    for (const loan_save::MemberRow& m : expected.members)
        wantedRows << QStringList{m.employeeId, m.guarantors[0], m.guarantors[1], m.guarantors[2]}
                          .join(u',');
    if (rows != wantedRows)
        return u"loan %1 (%2) has %3 member rows, not the %4 of its version%5"_s.arg(loanId)
            .arg(expected.notes)
            .arg(rows.size())
            .arg(wantedRows.size())
            .arg(rows.size() == wantedRows.size() ? u", with other guarantors"_s : QString());
    return {};
}

}  // namespace kav::reliability
