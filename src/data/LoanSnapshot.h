#pragma once

// A loan as the history keeps it: one JSON text with the loan's header row ("loan"), its
// members with their guarantors ("members", by employee ID), and for the adjustment commands
// the adjustment row ("adjustment"). Values are kept as the loan's own: whole numbers and
// amounts as numbers, Gregorian dates as "yyyy-MM-dd", texts as stored, Null as null, so one
// loan gives one text on SQL Server and on SQLite, and two texts are equal exactly when the
// rows are.
//
//   {"loan":{"Code":null,"FarsiBeginDate":"1403/01/31",...,"TypeID":1},
//    "members":[{"EmployeeID":1,"SupporterEmployeeID1":2,...}, ...]}

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>
#include <optional>

namespace kav::data::snapshot {

enum class Kind { Integer, Amount, Date, Text };

struct Column {
    QString name;
    Kind kind;
};

// The columns kept of each table, in the order they are read.
const QList<Column>& LoanColumns();        // tblHRLoan
const QList<Column>& MemberColumns();      // tblHRLoanDetail
const QList<Column>& AdjustmentColumns();  // tblHRLoanException

// A database value as the snapshot keeps it (null for Null or a value that is no value of
// its kind).
QJsonValue Value(const QVariant& value, Kind kind);
// A row, its values in the order of the columns.
QJsonObject RowObject(const QList<Column>& columns, const QVariantList& values);

// One member as a snapshot names him.
struct Member {
    qint64 employeeId = -1;
    std::array<std::optional<qint64>, 3> guarantors;
    bool operator==(const Member&) const = default;
};

// A member row read from the database (EmployeeID, SupporterEmployeeID1-3).
Member MemberOf(const QVariantList& values);

// The parts of one snapshot.
struct Parts {
    std::optional<QJsonObject> loan;        // nothing: the loan is not (or no longer) stored
    QList<Member> members;                  // in the order of MembersQuery
    bool withAdjustment = false;            // an adjustment command's snapshot
    std::optional<QJsonObject> adjustment;  // nothing: no such adjustment row
};
// The text; a null text when there is neither a loan nor an adjustment.
QString Text(const Parts& parts);

// A snapshot read back. A null or unreadable text is a loan that is not there.
struct State {
    std::optional<QJsonObject> loan;
    QList<Member> members;
    std::optional<QJsonObject> adjustment;
};
State Parse(const QString& text);

// A number of a snapshot (an ID, a code): nothing for null.
std::optional<qint64> Integer(const QJsonValue& value);
// A number as plain decimal text, without an exponent ("12500000.5"); empty for no number.
QString NumberText(const QJsonValue& value);

// The reads of a snapshot's parts (the same text on every database).
QString LoanQuery(qint32 loanId);
QString MembersQuery(qint32 loanId);
QString AdjustmentQuery(qint32 adjustmentId);

// ---- The history table the snapshots are kept in ----

QString HistoryTable();  // tblHRLoanHistory
QStringList HistoryColumns();

// The commands a history row names.
enum class Command {
    TemporarySave,
    FinalSave,
    Delete,
    BackToTemporary,
    RemoveMember,
    AdjustmentNew,
    AdjustmentEdit,
    AdjustmentDelete,
    Restore,
};
// The command as the table keeps it ("final-save", ...), and back.
QString CommandCode(Command command);
std::optional<Command> CommandFromCode(const QString& code);
bool IsAdjustmentCommand(Command command);

}  // namespace kav::data::snapshot
