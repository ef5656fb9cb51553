#include "loan_editor/StoredLoanCheck.h"

#include "loan_editor/LoanEditorTexts.h"
#include "session/DataEnvironment.h"

using namespace Qt::StringLiterals;

namespace kav::stored_loan {

QString StateQuery(const data::SqlDialect& dialect, qint32 loanId) {
    const bool server = dialect.kind() == data::DatabaseKind::SqlServer;
    const QString id = QString::number(loanId);
    return u"Select l.Code, (Select count(*) from tblHRMonthlyPaiedLoan p"_s +
           (server ? u" WITH (HOLDLOCK)"_s : QString()) + u" Where p.LoanID="_s + id +
           u") as PaidRows from tblHRLoan l"_s + (server ? u" WITH (UPDLOCK, HOLDLOCK)"_s : QString()) +
           u" Where l.ID="_s + id;
}

Finding Compare(const Expected& expected, bool exists, bool storedIsFinal, int payslipRows) {
    if (!exists) return {Change::Gone, 0};
    if (expected.isFinal && storedIsFinal != *expected.isFinal)
        return {storedIsFinal ? Change::BecameFinal : Change::BecameTemporary, payslipRows};
    if (expected.noPayslips && payslipRows > 0) return {Change::Paid, payslipRows};
    return {Change::None, payslipRows};
}

Finding Check(Connection& cnt, const Expected& expected) {
    Recordset rs(cnt);
    rs.Open(StateQuery(cnt.Dialect(), expected.loanId));
    if (rs.RecordCount() == 0) return Compare(expected, false, false, 0);
    rs.MoveFirst();
    const QVariant code = rs.Fields(u"Code"_s);
    const bool isFinal = !code.isNull() && !code.toString().trimmed().isEmpty();
    return Compare(expected, true, isFinal, rs.Fields(u"PaidRows"_s).toInt());
}

QString RefusalText(const Finding& finding, Command command) {
    namespace T = editor_texts;
    QString reason;
    switch (finding.change) {
        case Change::Gone:
            reason = T::ChangedGone;
            break;
        case Change::BecameFinal:
            reason = T::ChangedFinal;
            break;
        case Change::BecameTemporary:
            reason = T::ChangedTemporary;
            break;
        case Change::Paid:
            reason = T::ChangedPaid.arg(finding.payslipRows);
            break;
        case Change::None:
            return {};
    }
    switch (command) {
        case Command::Save:
            return reason + T::NotSaved;
        case Command::Delete:
            return reason + T::NotDeleted;
        case Command::BackToTemporary:
            return reason + T::NotReturned;
        case Command::RemoveMember:
            return reason + T::MemberNotRemoved;
    }
    return reason;
}

void Require(Connection& cnt, const Expected& expected, Command command) {
    const Finding finding = Check(cnt, expected);
    if (finding.change != Change::None) throw LoanChangedError(finding, command);
}

}  // namespace kav::stored_loan
