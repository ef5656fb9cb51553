#pragma once

// Reading the history back, without a widget: a loan's history rows (a restored loan's include
// those of the loan it was brought back from), the deleted loans that can be restored, and the
// names the window shows.

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace kav {
class Connection;
}

namespace kav::history {

struct HistoryEntry {
    qint64 id = 0;
    qint32 loanId = -1;
    std::optional<qint32> restoredFrom;
    std::optional<qint64> code;
    QString command;  // as the table keeps it
    qint32 userId = 0;
    qint32 positionId = 0;
    qint32 employeeId = 0;
    QString employeeName;  // the session's employee, empty when unknown
    QDateTime atUtc;
    QString before, after;  // snapshot texts
};

// The loan's rows and those of every loan it was restored from, newest first.
QList<HistoryEntry> ReadHistory(Connection& cnt, qint32 loanId);

struct DeletedLoan {
    qint32 loanId = -1;
    std::optional<qint64> lastCode;  // the last number it had, if any
    std::optional<qint64> typeId;
    int memberCount = 0;
    qint32 userId = 0;
    QString employeeName;  // who deleted it
    QDateTime atUtc;
};
// The deleted loans not restored yet, the latest deleted first.
QList<DeletedLoan> ReadDeletedLoans(Connection& cnt);

// Names for the window: employees as "first name surname", loan types by ID.
struct Names {
    QHash<qint64, QString> employees;
    QHash<qint64, QString> types;
};
// The types, and the employees named in the snapshots of the entries.
Names ReadNames(Connection& cnt, const QList<HistoryEntry>& entries);
QHash<qint64, QString> ReadLoanTypes(Connection& cnt);

// The moment of a row in UTC, as the database gives it (a date and time, or the text
// "yyyy-MM-dd HH:mm:ss.zzz").
QDateTime MomentUtc(const QVariant& value);

}  // namespace kav::history
