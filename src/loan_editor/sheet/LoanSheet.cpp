#include "loan_editor/sheet/LoanSheet.h"

#include "base/Errors.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanTerms.h"
#include "loan_editor/sheet/SheetTexts.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::sheet {

namespace T = texts;

QString MembersQuery(const data::SqlDialect& dialect, qint32 loanId) {
    const QString plus = dialect.concatOperator();
    const auto name = [&](const QString& e) {
        return e + u".FirstName "_s + plus + u"' '"_s + plus + e + u".SureName"_s;
    };
    QString sql = u"select d.EmployeeID, e.Code, "_s + name(u"e"_s) + u" as 'EmployeeName'"_s;
    for (const QString& n : {u"1"_s, u"2"_s, u"3"_s})
        sql += u", d.SupporterEmployeeID"_s + n + u", s"_s + n + u".Code as 'SupporterCode"_s + n +
               u"', "_s + name(u"s"_s + n) + u" as 'SupporterName"_s + n + u"'"_s;
    sql += u" from tblHRLoanDetail d left outer join tblEmployee e on e.ID=d.EmployeeID"_s;
    for (const QString& n : {u"1"_s, u"2"_s, u"3"_s})
        sql += u" left outer join tblEmployee s"_s + n + u" on s"_s + n +
               u".ID=d.SupporterEmployeeID"_s + n;
    return sql + u" where d.LoanID="_s + QString::number(loanId);
}

Loan ReadLoan(Connection& cnt, qint32 loanId) {
    Loan loan;
    Recordset rs(cnt);
    rs.Open(loan_sql::FillLoan(loanId));
    if (rs.EOF_()) throw KavError(KavError::Kind::Usage, T::NotFound.arg(loanId));
    loan.id = loanId;
    loan.code = FieldText(rs.Fields(u"CODE"_s)).trimmed();
    loan.type = FieldText(rs.Fields(u"LoanTypeDesc"_s));
    loan.loanValue = rs.Fields(u"LoanValue"_s);
    loan.originalValue = rs.Fields(u"OriginalLoanValue"_s);
    loan.monthlyValue = rs.Fields(u"MonthlyValue"_s);
    loan.payBackNumber = rs.Fields(u"PayBackNumber"_s);
    loan.remainderOption = rs.Fields(u"UseRemainedValueInFirstMonth"_s);
    loan.paymentDate = FieldText(rs.Fields(u"FarsiPaymentDate"_s)).trimmed();
    loan.beginDate = FieldText(rs.Fields(u"FarsiBeginDate"_s)).trimmed();
    loan.endDate = FieldText(rs.Fields(u"FarsiEndDate"_s)).trimmed();
    loan.notes = FieldText(rs.Fields(u"Notes"_s)).trimmed();
    rs.Close();

    rs.Open(MembersQuery(cnt.Dialect(), loanId));
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        Member m;
        m.borrower = {FieldText(rs.Fields(u"Code"_s)).trimmed(),
                      FieldText(rs.Fields(u"EmployeeName"_s)).simplified()};
        for (const QString& n : {u"1"_s, u"2"_s, u"3"_s}) {
            const QVariant id = rs.Fields(u"SupporterEmployeeID"_s + n);
            if (id.isNull()) continue;
            QString name = FieldText(rs.Fields(u"SupporterName"_s + n)).simplified();
            if (name.isEmpty()) name = T::UnknownEmployee.arg(FieldText(id));
            m.guarantors << Person{FieldText(rs.Fields(u"SupporterCode"_s + n)).trimmed(), name};
        }
        loan.members << m;
    }
    rs.Close();
    return loan;
}

namespace {

QString orNone(const QString& text) { return text.trimmed().isEmpty() ? T::None : text; }

QString amount(const QVariant& value) {
    return value.isNull() ? T::None : GroupDigits(FieldText(value));
}

QString personText(const Person& p) {
    return p.code.isEmpty() ? p.name : p.code + u" - "_s + p.name;
}

QString remainderOption(const QVariant& option) {
    if (option.isNull()) return T::None;
    switch (option.toInt()) {
        case 1:
            return T::RemainderFirst;
        case 0:
            return T::RemainderLast;
        case 2:
            return T::RemainderSeparate;
        default:
            return FieldText(option);
    }
}

}  // namespace

Content ContentOf(const Loan& loan, const QString& sessionTitle) {
    Content c;
    const bool temporary = loan.code.isEmpty();
    c.title = temporary ? T::TitleTemporary.arg(sessionTitle)
                        : T::TitleFinal.arg(sessionTitle, loan.code);
    if (temporary) c.notice = T::Notice;
    const QString number =
        temporary ? T::FactTemporaryNumber.arg(loan.id) : T::FactNumber.arg(loan.code).arg(loan.id);
    const QStringList terms = {
        T::FactType.arg(orNone(loan.type)),
        T::FactAmounts.arg(amount(loan.loanValue), amount(loan.originalValue)),
        T::FactInstalments.arg(orNone(FieldText(loan.payBackNumber)), amount(loan.monthlyValue),
                               orNone(GroupDigits(loan::txtRemOnLoad(
                                   loan.loanValue, loan.monthlyValue, loan.payBackNumber))),
                               remainderOption(loan.remainderOption)),
        T::FactDates.arg(orNone(loan.paymentDate), orNone(loan.beginDate), orNone(loan.endDate)),
    };
    c.facts = QStringList{number} + terms +
              QStringList{T::FactNotes.arg(orNone(loan.notes)),
                          T::FactMemberCount.arg(loan.members.size())};

    c.memberColumns = {T::ColumnRow, T::ColumnCode, T::ColumnMember};
    for (int g = 1; g <= 3; ++g) c.memberColumns << T::ColumnGuarantor.arg(g);
    for (qsizetype i = 0; i < loan.members.size(); ++i) {
        const Member& m = loan.members[i];
        QStringList row = {QString::number(i + 1), m.borrower.code, m.borrower.name};
        for (const Person& g : m.guarantors) row << personText(g);
        c.memberRows << row;

        BorrowerPage page;
        page.facts = QStringList{number, T::FactBorrower.arg(personText(m.borrower))} + terms;
        page.guarantorsTitle = T::GuarantorsTitle;
        page.guarantorColumns = {T::ColumnRow, T::ColumnCode, T::ColumnGuarantorName};
        if (m.guarantors.isEmpty()) page.noGuarantor = T::NoGuarantor;
        page.pledge = T::Pledge;
        page.signatures << T::SignBorrower.arg(m.borrower.name);
        for (qsizetype g = 0; g < m.guarantors.size(); ++g) {
            page.guarantorRows << QStringList{QString::number(g + 1), m.guarantors[g].code,
                                              m.guarantors[g].name};
            page.signatures << T::SignGuarantor.arg(g + 1).arg(m.guarantors[g].name);
        }
        c.borrowers << page;
    }
    return c;
}

QStringList FileWords(const Loan& loan) {
    if (loan.code.isEmpty()) return {T::FileTemporarySheet, QString::number(loan.id)};
    return {T::FileSheet, loan.code};
}

}  // namespace kav::sheet
