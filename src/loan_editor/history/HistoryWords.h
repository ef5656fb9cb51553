#pragma once

// What the history window says of each row, without a widget: who made the change, when (Tehran
// time with its Jalali date), what the command was, and the differences between the loan before
// and after in words ("field: before ← after"; members added and removed; guarantors changed;
// the adjustment), with the labels of the loan window.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "data/LoanSnapshot.h"
#include "loan_editor/history/HistoryRead.h"

namespace kav::history::words {

// The session's employee by name, else "user N".
QString Who(const QString& employeeName, qint32 userId);
// The moment in Tehran time with its Jalali date: "1403/07/01 09:45".
QString When(const QDateTime& utc);
// The command in words (the final save with the number it gave, a restore with the loan it
// came from); an unknown code as it stands.
QString What(const HistoryEntry& entry);
// The differences, a line each.
QStringList Differences(const QString& before, const QString& after, const Names& names);

// The members the row removed (in the snapshot before and not after), with their guarantors.
QList<data::snapshot::Member> RemovedMembers(const QString& before, const QString& after);

// At most this many members are named per kind of change; the rest are counted.
constexpr int NamedMembers = 10;

}  // namespace kav::history::words
