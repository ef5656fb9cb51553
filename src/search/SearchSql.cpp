#include "search/SearchSql.h"

#include "base/Errors.h"
#include "search/SearchTexts.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::search {

namespace T = search_texts;

QString AmountBound(const QString& text, const QString& box) {
    QString plain = LatinDigits(text);
    plain.replace(QChar(0x066B), u'.');  // the Persian decimal sign
    for (const QChar separator : {QChar(u'/'), QChar(u','), QChar(0x066C)}) plain.remove(separator);
    try {
        return vb::CCur(plain).toString();
    } catch (const KavError& e) {
        if (e.kind() == KavError::Kind::Overflow)
            throw KavError(e.kind(), AmountBeyondRangeText(text, box));
        throw KavError(e.kind(), T::AmountNotNumber.arg(box, text));
    }
}

QString SearchQuery(const data::SqlDialect& dialect, const SearchCriteria& c) {
    // Both dialects run the suite's text as it is, but for the notes typed by the clerk,
    // which SQL Server reads as Unicode text.
    QString sql =
        u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

    // With neither box ticked both fragments go in and nothing is found, as the clerk asked.
    if (!(c.tempSave && c.finalSave)) {
        if (!c.finalSave) sql += u" and Code is Null"_s;
        if (!c.tempSave) sql += u" and Code is Not Null"_s;
    }
    // A text of blanks passes the test and is trimmed to nothing: every row with notes.
    if (!c.notes.isEmpty())
        sql += u" and Notes like "_s + dialect.typedText(u"%"_s + c.notes.trimmed() + u"%"_s);
    if (!c.loanValueFrom.isEmpty())
        sql += u" and LoanValue>="_s + AmountBound(c.loanValueFrom, T::BoxLoanValueFrom);
    if (!c.loanValueTo.isEmpty())
        sql += u" and LoanValue<="_s + AmountBound(c.loanValueTo, T::BoxLoanValueTo);
    if (c.loanTypeId) sql += u" and TypeID="_s + QString::number(*c.loanTypeId);
    if (c.employeeId != -1) sql += u" and EmployeeID="_s + QString::number(c.employeeId);
    if (c.supporterId != -1) {
        const QString id = QString::number(c.supporterId);
        sql += u" and (SupporterEmployeeID1="_s + id + u" OR SupporterEmployeeID2="_s + id +
               u" OR SupporterEmployeeID3="_s + id + u" )"_s;
    }
    if (!c.paymentDateFrom.isEmpty())
        sql += u" and FarsiPaymentDate>='"_s + c.paymentDateFrom + u"' "_s;
    if (!c.paymentDateTo.isEmpty())
        sql += u" and FarsiPaymentDate<='"_s + c.paymentDateTo + u"'  "_s;
    if (!c.beginDateFrom.isEmpty()) sql += u" and FarsiBeginDate>='"_s + c.beginDateFrom + u"' "_s;
    if (!c.beginDateTo.isEmpty()) sql += u" and FarsiBeginDate<='"_s + c.beginDateTo + u"' "_s;
    if (!c.endDateFrom.isEmpty()) sql += u" and FarsiEndDate>='"_s + c.endDateFrom + u"' "_s;
    if (!c.endDateTo.isEmpty()) sql += u" and FarsiEndDate<='"_s + c.endDateTo + u"' "_s;
    if (!c.perMonthFrom.isEmpty())
        sql += u" and MonthlyValue>="_s + AmountBound(c.perMonthFrom, T::BoxPerMonthFrom);
    if (!c.perMonthTo.isEmpty())
        sql += u" and MonthlyValue<="_s + AmountBound(c.perMonthTo, T::BoxPerMonthTo);
    return sql;
}

QString LoanTypesQuery() { return u"select * from tblHRLoanType"_s; }

bool ClearsToDate(const QString& fromDate, const QString& toDate) {
    return !fromDate.isEmpty() && !toDate.isEmpty() && fromDate >= toDate;
}

bool IsNumericSortColumn(int column) {
    switch (column) {
        case 1:
        case 4:  // the loan type's name: kept with the numbers on purpose
        case 6:
        case 9:
        case 10:
        case 11:
            return true;
        default:
            return false;
    }
}

int NextSortCode(int column, int lastCode) {
    if (column < 0 || column >= SortSlots)
        throw KavError(KavError::Kind::Usage, search_texts::BadSortColumn.arg(column));
    // 3/4 numeric ascending/descending, 1/2 generic ascending/descending.
    if (IsNumericSortColumn(column)) return lastCode == 3 ? 4 : 3;
    return lastCode == 1 ? 2 : 1;
}

}  // namespace kav::search
