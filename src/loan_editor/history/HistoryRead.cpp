#include "loan_editor/history/HistoryRead.h"

#include <QSet>

#include "data/LoanSnapshot.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/history/HistorySql.h"
#include "session/DataEnvironment.h"

using namespace Qt::StringLiterals;

namespace kav::history {

namespace snapshot = data::snapshot;

namespace {

std::optional<qint64> integer(const QVariant& value) {
    bool ok = false;
    const qint64 n = value.toLongLong(&ok);
    if (value.isNull() || !ok) return std::nullopt;
    return n;
}

QString text(const QVariant& value) { return value.isNull() ? QString() : value.toString(); }

}  // namespace

QDateTime MomentUtc(const QVariant& value) {
    if (value.isNull()) return {};
    if (value.typeId() == QMetaType::QDateTime) {
        // The server's clock in UTC, handed over as a date and time without a zone.
        const QDateTime dt = value.toDateTime();
        return QDateTime(dt.date(), dt.time(), Qt::UTC);
    }
    const QString t = value.toString().trimmed();
    for (const QString& format : {u"yyyy-MM-dd HH:mm:ss.zzz"_s, u"yyyy-MM-dd HH:mm:ss"_s,
                                  u"yyyy-MM-ddTHH:mm:ss.zzz"_s, u"yyyy-MM-ddTHH:mm:ss"_s}) {
        QDateTime dt = QDateTime::fromString(t, format);
        if (dt.isValid()) return QDateTime(dt.date(), dt.time(), Qt::UTC);
    }
    return {};
}

QList<HistoryEntry> ReadHistory(Connection& cnt, qint32 loanId) {
    // The loan, and the loans it was restored from, each once.
    QList<qint32> ids{loanId};
    for (qint32 id = loanId;;) {
        Recordset rs(cnt);
        rs.Open(sql::RestoredFrom(id));
        if (rs.RecordCount() == 0 || rs.IsNull(u"RestoredFromLoanID"_s)) break;
        id = rs.Fields(u"RestoredFromLoanID"_s).toInt();
        if (ids.contains(id)) break;
        ids << id;
    }
    QList<HistoryEntry> entries;
    RowReader rows(cnt, sql::Entries(cnt.Dialect(), ids));
    const int id = rows.FieldIndex(u"ID"_s), loan = rows.FieldIndex(u"LoanID"_s),
              from = rows.FieldIndex(u"RestoredFromLoanID"_s),
              code = rows.FieldIndex(u"LoanCode"_s), command = rows.FieldIndex(u"Command"_s),
              user = rows.FieldIndex(u"UserID"_s), position = rows.FieldIndex(u"PositionID"_s),
              employee = rows.FieldIndex(u"EmployeeID"_s), at = rows.FieldIndex(u"ChangedAtUtc"_s),
              before = rows.FieldIndex(u"LoanBefore"_s), after = rows.FieldIndex(u"LoanAfter"_s),
              name = rows.FieldIndex(u"EmployeeName"_s);
    while (rows.Next()) {
        HistoryEntry e;
        e.id = rows.Fields(id).toLongLong();
        e.loanId = rows.Fields(loan).toInt();
        if (const auto f = integer(rows.Fields(from))) e.restoredFrom = qint32(*f);
        e.code = integer(rows.Fields(code));
        e.command = text(rows.Fields(command));
        e.userId = rows.Fields(user).toInt();
        e.positionId = rows.Fields(position).toInt();
        e.employeeId = rows.Fields(employee).toInt();
        e.atUtc = MomentUtc(rows.Fields(at));
        e.before = text(rows.Fields(before));
        e.after = text(rows.Fields(after));
        e.employeeName = text(rows.Fields(name)).simplified();
        entries << e;
    }
    return entries;
}

QList<DeletedLoan> ReadDeletedLoans(Connection& cnt) {
    QList<DeletedLoan> loans;
    RowReader rows(cnt, sql::DeletedLoans(cnt.Dialect()));
    const int loan = rows.FieldIndex(u"LoanID"_s), user = rows.FieldIndex(u"UserID"_s),
              at = rows.FieldIndex(u"ChangedAtUtc"_s), before = rows.FieldIndex(u"LoanBefore"_s),
              name = rows.FieldIndex(u"EmployeeName"_s), last = rows.FieldIndex(u"LastCode"_s);
    while (rows.Next()) {
        DeletedLoan d;
        d.loanId = rows.Fields(loan).toInt();
        d.lastCode = integer(rows.Fields(last));
        d.userId = rows.Fields(user).toInt();
        d.employeeName = text(rows.Fields(name)).simplified();
        d.atUtc = MomentUtc(rows.Fields(at));
        const snapshot::State state = snapshot::Parse(text(rows.Fields(before)));
        if (state.loan) d.typeId = snapshot::Integer(state.loan->value(u"TypeID"_s));
        d.memberCount = int(state.members.size());
        loans << d;
    }
    return loans;
}

QHash<qint64, QString> ReadLoanTypes(Connection& cnt) {
    QHash<qint64, QString> types;
    Recordset rs(cnt);
    rs.Open(loan_sql::LoanTypes());
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
        types.insert(rs.Fields(u"ID"_s).toLongLong(), text(rs.Fields(u"Name"_s)));
    return types;
}

Names ReadNames(Connection& cnt, const QList<HistoryEntry>& entries) {
    Names names;
    names.types = ReadLoanTypes(cnt);
    QSet<qint64> ids;
    for (const HistoryEntry& e : entries) {
        for (const QString& s : {e.before, e.after}) {
            const snapshot::State state = snapshot::Parse(s);
            for (const snapshot::Member& m : state.members) {
                ids.insert(m.employeeId);
                for (const auto& g : m.guarantors)
                    if (g) ids.insert(*g);
            }
            if (state.adjustment)
                if (const auto id = snapshot::Integer(state.adjustment->value(u"EmployeeID"_s)))
                    ids.insert(*id);
        }
    }
    if (ids.isEmpty()) return names;
    QList<qint64> list(ids.begin(), ids.end());
    std::sort(list.begin(), list.end());
    // A few hundred at a time, so that no statement grows past what a server takes.
    for (qsizetype start = 0; start < list.size(); start += 500) {
        RowReader rows(cnt, sql::EmployeeNames(cnt.Dialect(), list.mid(start, 500)));
        const int id = rows.FieldIndex(u"ID"_s), name = rows.FieldIndex(u"EmployeeName"_s);
        while (rows.Next())
            names.employees.insert(rows.Fields(id).toLongLong(),
                                   text(rows.Fields(name)).simplified());
    }
    return names;
}

}  // namespace kav::history
