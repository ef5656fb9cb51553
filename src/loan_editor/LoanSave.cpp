#include "loan_editor/LoanSave.h"

#include <QRegularExpression>

#include "base/Errors.h"
#include "loan_editor/LoanEditorTexts.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::loan_save {

namespace {

QString number(qint64 value) { return QString::number(value); }

// An amount box's value text as a plain decimal; an empty box is 0. An amount beyond the
// currency range names its box (its label's caption).
QString amount(const QString& valueText, const QString& boxLabel) {
    if (valueText.trimmed().isEmpty()) return u"0"_s;
    try {
        return AmountCurrency(LatinDigits(valueText)).toString();
    } catch (const KavError& e) {
        if (e.kind() != KavError::Kind::Overflow) throw;
        throw KavError(e.kind(), AmountBeyondRangeText(valueText, QString(boxLabel).remove(u':')));
    }
}

// A Jalali date text between quotes.
QString farsi(const QString& text) { return SqlQuote(text); }

QString count(const QString& payBackNumber) {
    const std::optional<QString> sql = CountSql(payBackNumber);
    if (!sql) throw KavError(KavError::Kind::TypeMismatch, CountProblem(payBackNumber));
    return *sql;
}

}  // namespace

std::optional<QString> CountSql(const QString& payBackNumber) {
    const QString text = LatinDigits(payBackNumber).trimmed();
    if (text.isEmpty()) return u"Null"_s;
    static const QRegularExpression digits(u"^[0-9]{1,10}$"_s);
    if (!digits.match(text).hasMatch()) return std::nullopt;
    const qint64 value = text.toLongLong();
    if (value > 2147483647) return std::nullopt;
    return number(value);
}

QString CountProblem(const QString& payBackNumber) {
    if (CountSql(payBackNumber)) return {};
    const QString typed = payBackNumber.trimmed();
    static const QRegularExpression negative(u"^-\\s*[0-9]+$"_s);
    return negative.match(LatinDigits(typed)).hasMatch()
               ? editor_texts::CountNegativeError.arg(typed)
               : editor_texts::CountNotWholeError.arg(typed);
}

QString MemberList(const LoanRecord& loan) {
    QStringList ids;
    for (const MemberRow& m : loan.members) ids << m.employeeId;
    return ids.join(u',');
}

QString OverlapQuery(const data::SqlDialect& dialect, const LoanRecord& loan,
                     qint32 excludedLoanId) {
    return u"Select distinct EmployeeID from tblHRLoanDetail Where EmployeeID in ("_s +
           MemberList(loan) + u") and LoanID <> "_s + number(excludedLoanId) +
           u" and LoanID in (Select x.ID from tblHRLoan x Where Not (x.BeginDate>'"_s +
           dialect.dateText(loan.endDate) + u"' Or x.EndDate < '"_s +
           dialect.dateText(loan.beginDate) + u"') and TypeID="_s + number(loan.typeId) + u")"_s;
}

QString InsertHeader(const data::SqlDialect& dialect, const LoanRecord& loan) {
    // The fifth and seventh values are the end date's Jalali text and Gregorian date; the
    // update that always follows writes every column again with its own value.
    return u"insert into tblHRLoan (TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
           u"FarsiBeginDate, EndDate, FarsiEndDate, LoanValue) Values ("_s +
           number(loan.typeId) + u", '"_s + dialect.dateText(loan.payDate) + u"', '"_s +
           farsi(loan.farsiPayDate) + u"', '"_s + dialect.dateText(loan.beginDate) + u"', '"_s +
           farsi(loan.farsiEndDate) + u"', '"_s + dialect.dateText(loan.endDate) + u"', '"_s +
           dialect.dateText(loan.endDate) + u"', "_s +
           amount(loan.loanValue, editor_texts::LabelRequestedValue) + u")"_s;
}

QString InsertHeaderReturningId(const data::SqlDialect& dialect, const LoanRecord& loan) {
    if (dialect.kind() != data::DatabaseKind::SqlServer) return InsertHeader(dialect, loan);
    return InsertHeader(dialect, loan) + u"; SELECT CAST(SCOPE_IDENTITY() AS int) AS NewID"_s;
}

QString InsertedId() {
    return u"Select ID as NewID from tblHRLoan Where rowid = last_insert_rowid()"_s;
}

QString MaxId() { return u"Select MAX(ID) as MAXID from tblHRLoan"_s; }

QStringList Writes(const data::SqlDialect& dialect, const LoanRecord& loan, qint32 loanId) {
    const QString code =
        loan.isFinal
            ? u" "_s + dialect.isNullFunction() +
                  u"((Select MAX(x.CODE) from tblHRLoan x Where x.Code is not null), 0)+1"_s
            : u"NULL"_s;
    const QString notes =
        loan.notes.trimmed().isEmpty() ? u"Null"_s : dialect.typedText(loan.notes);
    QStringList statements;
    statements << u"Update tblHRLoan"_s + u" Set TypeID = "_s + number(loan.typeId) +
                      u", Code = "_s + code + u", PaymentDate = '"_s +
                      dialect.dateText(loan.payDate) + u"'"_s + u", FarsiPaymentDate = '"_s +
                      farsi(loan.farsiPayDate) + u"'"_s + u", BeginDate = '"_s +
                      dialect.dateText(loan.beginDate) + u"'"_s + u", FarsiBeginDate = '"_s +
                      farsi(loan.farsiBeginDate) + u"'"_s + u", EndDate = '"_s +
                      dialect.dateText(loan.endDate) + u"'"_s + u", FarsiEndDate = '"_s +
                      farsi(loan.farsiEndDate) + u"'"_s + u", OriginalLoanValue="_s +
                      amount(loan.originalValue, editor_texts::LabelOriginalValue) +
                      u", MonthlyValue="_s +
                      amount(loan.monthlyValue, editor_texts::LabelPerMonth) + u", LoanValue="_s +
                      amount(loan.loanValue, editor_texts::LabelRequestedValue) +
                      u", PayBackNumber="_s + count(loan.payBackNumber) +
                      u", UseRemainedValueInFirstMonth="_s + number(loan.remainderOption) +
                      u", Notes="_s + notes + u" Where ID= "_s + number(loanId);
    statements << dialect.deleteFrom(u"tblHRLoanDetail"_s) + u" Where LoanID="_s + number(loanId);
    for (const MemberRow& m : loan.members)
        statements << u"insert into tblHRLoanDetail(LoanID, EmployeeID, SupporterEmployeeID1, "
                      u"SupporterEmployeeID2, SupporterEmployeeID3) Values ("_s +
                          number(loanId) + u", "_s + m.employeeId + u", "_s + m.guarantors[0] +
                          u", "_s + m.guarantors[1] + u", "_s + m.guarantors[2] + u")"_s;
    return statements;
}

QStringList DeleteLoan(const data::SqlDialect& dialect, qint32 loanId) {
    return {
        dialect.deleteFrom(u"tblHRLoanDetail"_s) + u" where LoanID="_s + number(loanId) + u" "_s,
        dialect.deleteFrom(u"tblHRLoan"_s) + u" where ID="_s + number(loanId) + u" "_s};
}

QString BackToTemporary(qint32 loanId) {
    return u"Update tblHRLoan Set Code = Null where ID="_s + number(loanId);
}

QString LockName() { return u"KAVHRLoan"_s; }

void RunWrites(Connection& cnt, const QStringList& statements) {
    WriteTransaction tx(cnt, LockName());
    for (const QString& sql : statements) cnt.Execute(sql);
    tx.Commit();
}

namespace {

history::Command historyCommand(stored_loan::Command command, bool isFinal) {
    switch (command) {
        case stored_loan::Command::Delete:
            return history::Command::Delete;
        case stored_loan::Command::BackToTemporary:
            return history::Command::BackToTemporary;
        case stored_loan::Command::RemoveMember:
            return history::Command::RemoveMember;
        case stored_loan::Command::Save:
            break;
    }
    return isFinal ? history::Command::FinalSave : history::Command::TemporarySave;
}

}  // namespace

void RunCheckedWrites(Connection& cnt, const stored_loan::Expected& stored,
                      stored_loan::Command command, const QStringList& statements,
                      const history::Actor& actor) {
    history::Recorder record(cnt, historyCommand(command, false), actor);
    WriteTransaction tx(cnt, LockName());
    stored_loan::Require(cnt, stored, command);
    record.Before(stored.loanId);
    for (const QString& sql : statements) cnt.Execute(sql);
    record.After(stored.loanId);
    tx.Commit();
}

// The ID the database gave the header just inserted: the insert's own, else MAX(ID).
qint32 InsertNewHeader(Connection& cnt, const LoanRecord& loan) {
    const data::SqlDialect& dialect = cnt.Dialect();
    Recordset rs(cnt);
    if (dialect.kind() == data::DatabaseKind::SqlServer) {
        rs.Open(InsertHeaderReturningId(dialect, loan));
    } else {
        cnt.Execute(InsertHeaderReturningId(dialect, loan));
        rs.Open(InsertedId());
    }
    if (rs.RecordCount() > 0 && !rs.IsNull(u"NewID"_s))
        return vb::CLng(rs.Fields(u"NewID"_s).toDouble());
    rs.Open(MaxId());
    if (rs.RecordCount() > 0 && !rs.IsNull(u"MAXID"_s))
        return vb::CLng(rs.Fields(u"MAXID"_s).toDouble());
    return -1;
}

qint32 WriteLoan(Connection& cnt, const LoanRecord& loan,
                 const std::optional<stored_loan::Expected>& stored, const history::Actor& actor) {
    count(loan.payBackNumber);  // a count that cannot be written stops the save here
    const data::SqlDialect& dialect = cnt.Dialect();
    history::Recorder record(cnt, historyCommand(stored_loan::Command::Save, loan.isFinal), actor);
    WriteTransaction tx(cnt, LockName());
    qint32 id = -1;
    if (stored) {
        // Another clerk may have deleted the loan, made it final or the payroll deducted from
        // it since the window showed it: then nothing is written.
        stored_loan::Require(cnt, *stored, stored_loan::Command::Save);
        id = stored->loanId;
        record.Before(id);
    } else {
        id = InsertNewHeader(cnt, loan);
    }
    for (const QString& sql : Writes(dialect, loan, id)) cnt.Execute(sql);
    record.After(id);
    tx.Commit();
    return id;
}

}  // namespace kav::loan_save
