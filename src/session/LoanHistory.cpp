#include "session/LoanHistory.h"

#include "data/LoanSnapshot.h"
#include "session/DataEnvironment.h"
#include "session/Session.h"

using namespace Qt::StringLiterals;

namespace kav::history {

namespace snapshot = data::snapshot;

namespace {

QString number(qint64 value) { return QString::number(value); }

template <class T>
QString orNull(const std::optional<T>& value) {
    return value ? number(*value) : u"Null"_s;
}

// The current row of a reader as a snapshot row.
QJsonObject rowOf(const RowReader& rows, const QList<snapshot::Column>& columns) {
    QVariantList values;
    for (int c = 0; c < columns.size(); ++c) values << rows.Fields(c);
    return snapshot::RowObject(columns, values);
}

}  // namespace

Actor ActorOf(const Session& session) {
    return {session.SessionUserID, session.SessionPositionID, session.SessionEmployeeID};
}

bool IsKept(Connection& cnt) {
    return cnt.HasColumns(snapshot::HistoryTable(), snapshot::HistoryColumns());
}

QString InsertRow(const data::SqlDialect& dialect, const Row& row) {
    const bool server = dialect.kind() == data::DatabaseKind::SqlServer;
    const auto text = [&](const QString& t) {
        return t.isNull() ? u"Null"_s : dialect.typedText(t);
    };
    return u"insert into tblHRLoanHistory (LoanID, RestoredFromLoanID, LoanCode, Command, UserID, "
           u"PositionID, EmployeeID, ChangedAtUtc, LoanBefore, LoanAfter) Values ("_s +
           number(row.loanId) + u", "_s + orNull(row.restoredFrom) + u", "_s + orNull(row.code) +
           u", '"_s + CommandCode(row.command) + u"', "_s + number(row.actor.userId) + u", "_s +
           number(row.actor.positionId) + u", "_s + number(row.actor.employeeId) + u", "_s +
           (server ? u"GETUTCDATE()"_s : u"strftime('%Y-%m-%d %H:%M:%f', 'now')"_s) + u", "_s +
           text(row.before) + u", "_s + text(row.after) + u")"_s;
}

namespace {

// The header and members of a loan into `parts`; false when the loan is not stored.
bool readLoan(Connection& cnt, qint32 loanId, snapshot::Parts& parts) {
    {
        RowReader rows(cnt, snapshot::LoanQuery(loanId));
        if (!rows.Next()) return false;
        parts.loan = rowOf(rows, snapshot::LoanColumns());
    }
    RowReader rows(cnt, snapshot::MembersQuery(loanId));
    // Four whole numbers a row, read as such (a large loan has a thousand rows).
    while (rows.Next()) {
        snapshot::Member m;
        m.employeeId = rows.IsNull(0) ? -1 : rows.Fields(0).toLongLong();
        for (int g = 0; g < 3; ++g)
            if (!rows.IsNull(g + 1)) m.guarantors[std::size_t(g)] = rows.Fields(g + 1).toLongLong();
        parts.members << m;
    }
    return true;
}

Snapshot finish(const snapshot::Parts& parts, qint32 loanId) {
    Snapshot s;
    s.text = snapshot::Text(parts);
    s.loanId = loanId;
    if (parts.loan) s.code = snapshot::Integer(parts.loan->value(u"Code"_s));
    return s;
}

}  // namespace

Snapshot ReadLoan(Connection& cnt, qint32 loanId) {
    snapshot::Parts parts;
    if (loanId >= 0) readLoan(cnt, loanId, parts);
    return finish(parts, loanId);
}

Snapshot ReadAdjustment(Connection& cnt, qint32 loanId, qint32 adjustmentId) {
    snapshot::Parts parts;
    parts.withAdjustment = true;
    if (adjustmentId >= 0) {
        RowReader rows(cnt, snapshot::AdjustmentQuery(adjustmentId));
        if (rows.Next()) {
            parts.adjustment = rowOf(rows, snapshot::AdjustmentColumns());
            loanId =
                qint32(snapshot::Integer(parts.adjustment->value(u"LoanID"_s)).value_or(loanId));
        }
    }
    if (loanId >= 0) readLoan(cnt, loanId, parts);
    return finish(parts, loanId);
}

// ---- Recorder ----

Recorder::Recorder(Connection& cnt, Command command, const Actor& actor)
    : cnt_(cnt), command_(command), actor_(actor), kept_(IsKept(cnt)) {}

Snapshot Recorder::read(qint32 loanId, qint32 adjustmentId) {
    return IsAdjustmentCommand(command_) ? ReadAdjustment(cnt_, loanId, adjustmentId)
                                         : ReadLoan(cnt_, loanId);
}

void Recorder::Before(qint32 loanId, qint32 adjustmentId) {
    if (!kept_) return;
    before_ = read(loanId, adjustmentId);
}

bool Recorder::After(qint32 loanId, qint32 adjustmentId) {
    if (!kept_) return false;
    // A deleted adjustment's loan is the one it belonged to before.
    const Snapshot after =
        read(before_.loanId >= 0 && IsAdjustmentCommand(command_) ? before_.loanId : loanId,
             adjustmentId);
    if (after.text == before_.text && after.text.isNull() == before_.text.isNull()) return false;
    Row row;
    row.loanId = after.loanId >= 0 ? after.loanId : before_.loanId;
    row.code = after.code ? after.code : before_.code;
    row.command = command_;
    row.actor = actor_;
    row.before = before_.text;
    row.after = after.text;
    cnt_.Execute(InsertRow(cnt_.Dialect(), row));
    return true;
}

}  // namespace kav::history
