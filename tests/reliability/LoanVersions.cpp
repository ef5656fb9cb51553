#include "LoanVersions.h"

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

}  // namespace kav::reliability
