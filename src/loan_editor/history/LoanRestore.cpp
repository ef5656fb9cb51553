#include "loan_editor/history/LoanRestore.h"

#include "data/LoanSnapshot.h"
#include "loan_editor/history/HistorySql.h"
#include "session/DataEnvironment.h"

using namespace Qt::StringLiterals;

namespace kav::history {

namespace snapshot = data::snapshot;

namespace {

QDate dateOf(const QJsonValue& v) { return QDate::fromString(v.toString(), u"yyyy-MM-dd"_s); }

}  // namespace

loan_save::LoanRecord RecordOf(const QString& snapshotText) {
    const snapshot::State state = snapshot::Parse(snapshotText);
    const QJsonObject loan = state.loan.value_or(QJsonObject());
    loan_save::LoanRecord r;
    r.isFinal = false;
    r.typeId = snapshot::Integer(loan.value(u"TypeID"_s)).value_or(-1);
    r.payDate = dateOf(loan.value(u"PaymentDate"_s));
    r.beginDate = dateOf(loan.value(u"BeginDate"_s));
    r.endDate = dateOf(loan.value(u"EndDate"_s));
    r.farsiPayDate = loan.value(u"FarsiPaymentDate"_s).toString();
    r.farsiBeginDate = loan.value(u"FarsiBeginDate"_s).toString();
    r.farsiEndDate = loan.value(u"FarsiEndDate"_s).toString();
    r.loanValue = snapshot::NumberText(loan.value(u"LoanValue"_s));
    r.originalValue = snapshot::NumberText(loan.value(u"OriginalLoanValue"_s));
    r.monthlyValue = snapshot::NumberText(loan.value(u"MonthlyValue"_s));
    r.payBackNumber = snapshot::NumberText(loan.value(u"PayBackNumber"_s));
    r.remainderOption =
        int(snapshot::Integer(loan.value(u"UseRemainedValueInFirstMonth"_s)).value_or(0));
    r.notes = loan.value(u"Notes"_s).toString();
    for (const snapshot::Member& m : state.members) {
        loan_save::MemberRow row;
        row.employeeId = QString::number(m.employeeId);
        for (std::size_t g = 0; g < 3; ++g)
            row.guarantors[g] = m.guarantors[g] ? QString::number(*m.guarantors[g]) : u"null"_s;
        r.members << row;
    }
    return r;
}

qint32 RestoreLoan(Connection& cnt, qint32 deletedLoanId, const Actor& actor) {
    if (!IsKept(cnt))
        throw RestoreRefused(u"تاريخچه وام ها نگهداري نمي شود؛ وامي بازگردانده نشد."_s);
    const data::SqlDialect& dialect = cnt.Dialect();
    WriteTransaction tx(cnt, loan_save::LockName());
    Recordset rs(cnt);
    rs.Open(sql::RestoreState(deletedLoanId));
    if (rs.Fields(u"Restored"_s).toInt() > 0 || rs.Fields(u"Stored"_s).toInt() > 0)
        throw RestoreRefused(
            u"وام با شماره رايانه اي %1 را کاربر ديگري بازگردانده است؛ دوباره بازگردانده نشد."_s
                .arg(deletedLoanId));
    rs.Open(sql::DeletedSnapshot(deletedLoanId));
    const QString deleted = rs.RecordCount() > 0 && !rs.IsNull(u"LoanBefore"_s)
                                ? rs.Fields(u"LoanBefore"_s).toString()
                                : QString();
    rs.Close();
    if (!snapshot::Parse(deleted).loan)
        throw RestoreRefused(
            u"حذف وام با شماره رايانه اي %1 در تاريخچه ثبت نشده است؛ وام بازگردانده نشد."_s.arg(
                deletedLoanId));

    const loan_save::LoanRecord loan = RecordOf(deleted);
    const qint32 id = loan_save::InsertNewHeader(cnt, loan);
    for (const QString& statement : loan_save::Writes(dialect, loan, id)) cnt.Execute(statement);
    cnt.Execute(sql::MoveAdjustments(deletedLoanId, id));

    Row row;
    row.loanId = id;
    row.restoredFrom = deletedLoanId;
    row.command = Command::Restore;
    row.actor = actor;
    row.before = deleted;
    row.after = ReadLoan(cnt, id).text;
    cnt.Execute(InsertRow(dialect, row));
    tx.Commit();
    return id;
}

}  // namespace kav::history
