#include "data/LoanSnapshot.h"

#include <QJsonDocument>
#include <cmath>

#include "data/SqlDialect.h"

using namespace Qt::StringLiterals;

namespace kav::data::snapshot {

const QList<Column>& LoanColumns() {
    static const QList<Column> columns = {
        {u"ID"_s, Kind::Integer},
        {u"Code"_s, Kind::Integer},
        {u"TypeID"_s, Kind::Integer},
        {u"PaymentDate"_s, Kind::Date},
        {u"FarsiPaymentDate"_s, Kind::Text},
        {u"BeginDate"_s, Kind::Date},
        {u"FarsiBeginDate"_s, Kind::Text},
        {u"EndDate"_s, Kind::Date},
        {u"FarsiEndDate"_s, Kind::Text},
        {u"LoanValue"_s, Kind::Amount},
        {u"OriginalLoanValue"_s, Kind::Amount},
        {u"MonthlyValue"_s, Kind::Amount},
        {u"PayBackNumber"_s, Kind::Integer},
        {u"UseRemainedValueInFirstMonth"_s, Kind::Integer},
        {u"Notes"_s, Kind::Text},
    };
    return columns;
}

const QList<Column>& MemberColumns() {
    static const QList<Column> columns = {
        {u"EmployeeID"_s, Kind::Integer},
        {u"SupporterEmployeeID1"_s, Kind::Integer},
        {u"SupporterEmployeeID2"_s, Kind::Integer},
        {u"SupporterEmployeeID3"_s, Kind::Integer},
    };
    return columns;
}

const QList<Column>& AdjustmentColumns() {
    static const QList<Column> columns = {
        {u"ID"_s, Kind::Integer},          {u"LoanID"_s, Kind::Integer},
        {u"EmployeeID"_s, Kind::Integer},  {u"BeginDate"_s, Kind::Date},
        {u"FarsiBeginDate"_s, Kind::Text}, {u"EndDate"_s, Kind::Date},
        {u"FarsiEndDate"_s, Kind::Text},   {u"MonthlyDebit"_s, Kind::Amount},
    };
    return columns;
}

namespace {

// Whole numbers stay exact as JSON numbers up to 2^53.
constexpr double kExact = 9007199254740992.0;

QJsonValue number(double value) {
    if (!std::isfinite(value)) return QJsonValue::Null;
    if (value == std::trunc(value) && std::fabs(value) < kExact) return qint64(value);
    return value;
}

}  // namespace

QJsonValue Value(const QVariant& value, Kind kind) {
    if (!value.isValid() || value.isNull()) return QJsonValue::Null;
    bool ok = false;
    switch (kind) {
        case Kind::Integer: {
            const qint64 whole = value.toLongLong(&ok);
            if (ok) return whole;
            const double d = value.toDouble(&ok);
            return ok ? number(std::round(d)) : QJsonValue(QJsonValue::Null);
        }
        case Kind::Amount: {
            const double d = value.toDouble(&ok);
            return ok ? number(d) : QJsonValue(QJsonValue::Null);
        }
        case Kind::Date: {
            const QDate d = SqlDialect::readDate(value);
            return d.isValid() ? QJsonValue(d.toString(u"yyyy-MM-dd"_s))
                               : QJsonValue(QJsonValue::Null);
        }
        case Kind::Text:
            return value.toString();
    }
    return QJsonValue::Null;
}

QJsonObject RowObject(const QList<Column>& columns, const QVariantList& values) {
    QJsonObject row;
    for (int c = 0; c < columns.size(); ++c)
        row.insert(columns[c].name,
                   Value(c < values.size() ? values[c] : QVariant(), columns[c].kind));
    return row;
}

Member MemberOf(const QVariantList& values) {
    Member m;
    m.employeeId = Integer(Value(values.value(0), Kind::Integer)).value_or(-1);
    for (int g = 0; g < 3; ++g)
        m.guarantors[std::size_t(g)] = Integer(Value(values.value(g + 1), Kind::Integer));
    return m;
}

namespace {

// An object as the compact JSON text QJsonDocument writes.
QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

void appendNumber(QByteArray& out, const std::optional<qint64>& n) {
    if (n)
        out += QByteArray::number(*n);
    else
        out += "null";
}

}  // namespace

QString Text(const Parts& parts) {
    if (!parts.loan && !parts.adjustment) return {};
    // Written as QJsonDocument writes the whole (keys in order, no blanks); the members, a
    // thousand of them on a large loan, straight into the text.
    QByteArray out;
    out.reserve(200 + parts.members.size() * 100);
    out += '{';
    if (parts.withAdjustment) {
        out += "\"adjustment\":";
        out += parts.adjustment ? compact(*parts.adjustment) : QByteArray("null");
        out += ',';
    }
    out += "\"loan\":";
    out += parts.loan ? compact(*parts.loan) : QByteArray("null");
    out += ",\"members\":[";
    for (qsizetype i = 0; i < parts.members.size(); ++i) {
        const Member& m = parts.members[i];
        if (i > 0) out += ',';
        out += "{\"EmployeeID\":";
        appendNumber(out, m.employeeId);
        for (int g = 0; g < 3; ++g) {
            out += ",\"SupporterEmployeeID";
            out += char('1' + g);
            out += "\":";
            appendNumber(out, m.guarantors[std::size_t(g)]);
        }
        out += '}';
    }
    out += "]}";
    return QString::fromUtf8(out);
}

std::optional<qint64> Integer(const QJsonValue& value) {
    if (!value.isDouble()) return std::nullopt;
    return value.toInteger();
}

QString NumberText(const QJsonValue& value) {
    if (!value.isDouble()) return {};
    const double d = value.toDouble();
    if (d == double(value.toInteger())) return QString::number(value.toInteger());
    QString text = QString::number(d, 'f', 4);
    while (text.endsWith(u'0')) text.chop(1);
    if (text.endsWith(u'.')) text.chop(1);
    return text;
}

State Parse(const QString& text) {
    State state;
    if (text.isEmpty()) return state;
    const QJsonObject root = QJsonDocument::fromJson(text.toUtf8()).object();
    if (root.value(u"loan"_s).isObject()) state.loan = root.value(u"loan"_s).toObject();
    if (root.value(u"adjustment"_s).isObject())
        state.adjustment = root.value(u"adjustment"_s).toObject();
    for (const QJsonValue& m : root.value(u"members"_s).toArray()) {
        const QJsonObject row = m.toObject();
        Member member;
        member.employeeId = Integer(row.value(u"EmployeeID"_s)).value_or(-1);
        for (int g = 0; g < 3; ++g)
            member.guarantors[std::size_t(g)] =
                Integer(row.value(u"SupporterEmployeeID%1"_s.arg(g + 1)));
        state.members << member;
    }
    return state;
}

namespace {

QString columnList(const QList<Column>& columns) {
    QStringList names;
    for (const Column& c : columns) names << c.name;
    return names.join(u", "_s);
}

}  // namespace

QString LoanQuery(qint32 loanId) {
    return u"Select "_s + columnList(LoanColumns()) + u" from tblHRLoan Where ID="_s +
           QString::number(loanId);
}

QString MembersQuery(qint32 loanId) {
    // Ordered, so that the same members give the same text whatever order they were saved in.
    return u"Select "_s + columnList(MemberColumns()) + u" from tblHRLoanDetail Where LoanID="_s +
           QString::number(loanId) +
           u" Order by EmployeeID, SupporterEmployeeID1, SupporterEmployeeID2, "
           u"SupporterEmployeeID3"_s;
}

QString AdjustmentQuery(qint32 adjustmentId) {
    return u"Select "_s + columnList(AdjustmentColumns()) +
           u" from tblHRLoanException Where ID="_s + QString::number(adjustmentId);
}

QString HistoryTable() { return u"tblHRLoanHistory"_s; }

QStringList HistoryColumns() {
    return {u"ID"_s,           u"LoanID"_s,     u"RestoredFromLoanID"_s, u"LoanCode"_s,
            u"Command"_s,      u"UserID"_s,     u"PositionID"_s,         u"EmployeeID"_s,
            u"ChangedAtUtc"_s, u"LoanBefore"_s, u"LoanAfter"_s};
}

namespace {

struct CommandName {
    Command command;
    const char16_t* code;
};
constexpr CommandName kCommands[] = {
    {Command::TemporarySave, u"temporary-save"},
    {Command::FinalSave, u"final-save"},
    {Command::Delete, u"delete"},
    {Command::BackToTemporary, u"back-to-temporary"},
    {Command::RemoveMember, u"remove-member"},
    {Command::AdjustmentNew, u"adjustment-new"},
    {Command::AdjustmentEdit, u"adjustment-edit"},
    {Command::AdjustmentDelete, u"adjustment-delete"},
    {Command::Restore, u"restore"},
};

}  // namespace

QString CommandCode(Command command) {
    for (const CommandName& c : kCommands)
        if (c.command == command) return QString::fromUtf16(c.code);
    return {};
}

std::optional<Command> CommandFromCode(const QString& code) {
    for (const CommandName& c : kCommands)
        if (code == QString::fromUtf16(c.code)) return c.command;
    return std::nullopt;
}

bool IsAdjustmentCommand(Command command) {
    return command == Command::AdjustmentNew || command == Command::AdjustmentEdit ||
           command == Command::AdjustmentDelete;
}

}  // namespace kav::data::snapshot
