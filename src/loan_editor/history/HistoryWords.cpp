#include "loan_editor/history/HistoryWords.h"

#include <QCalendar>
#include <QHash>
#include <QSet>
#include <QTimeZone>

#include "loan_editor/LoanEditorTexts.h"
#include "session/LoanHistory.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::history::words {

namespace snapshot = data::snapshot;
namespace T = editor_texts;

namespace {

const QString kArrow = u" ← "_s;
const QString kEmpty = u"خالي"_s;

// A label of the loan window without its colon.
QString label(const QString& caption) {
    QString text = caption;
    text.remove(u':');
    return text.trimmed();
}

enum class Show { Plain, Amount, Type, Remainder };

struct Field {
    const char16_t* column;
    QString label;
    Show show;
    const char16_t* twin;  // a Gregorian date's Jalali text: shown only when that is unchanged
};

const QList<Field>& fields() {
    static const QString gregorian = u" (ميلادي)"_s;
    static const QList<Field> list = {
        {u"Code", label(T::LabelCode), Show::Plain, nullptr},
        {u"TypeID", label(T::LabelLoanType), Show::Type, nullptr},
        {u"FarsiPaymentDate", label(T::LabelPayDate), Show::Plain, nullptr},
        {u"PaymentDate", label(T::LabelPayDate) + gregorian, Show::Plain, u"FarsiPaymentDate"},
        {u"FarsiBeginDate", label(T::LabelBeginDate), Show::Plain, nullptr},
        {u"BeginDate", label(T::LabelBeginDate) + gregorian, Show::Plain, u"FarsiBeginDate"},
        {u"FarsiEndDate", label(T::LabelEndDate), Show::Plain, nullptr},
        {u"EndDate", label(T::LabelEndDate) + gregorian, Show::Plain, u"FarsiEndDate"},
        {u"OriginalLoanValue", label(T::LabelOriginalValue), Show::Amount, nullptr},
        {u"LoanValue", label(T::LabelRequestedValue), Show::Amount, nullptr},
        {u"PayBackNumber", label(T::LabelPayBackNumber), Show::Plain, nullptr},
        {u"MonthlyValue", label(T::LabelPerMonth), Show::Amount, nullptr},
        {u"UseRemainedValueInFirstMonth", label(T::LabelRemainderOptions), Show::Remainder,
         nullptr},
        {u"Notes", label(T::LabelNotes), Show::Plain, nullptr},
    };
    return list;
}

QString plain(const QJsonValue& v) {
    if (v.isNull() || v.isUndefined()) return kEmpty;
    if (v.isDouble()) return snapshot::NumberText(v);
    const QString text = v.toString();
    return text.trimmed().isEmpty() ? kEmpty : text;
}

QString value(const QJsonValue& v, Show show, const Names& names) {
    if (v.isNull() || v.isUndefined()) return kEmpty;
    switch (show) {
        case Show::Amount:
            return GroupDigits(plain(v));
        case Show::Type:
            return names.types.value(v.toInteger(), plain(v));
        case Show::Remainder:
            switch (v.toInt(-1)) {
                case 1:
                    return T::OptionFirstMonth;
                case 0:
                    return T::OptionLastMonth;
                case 2:
                    return T::OptionSeparateMonth;
                default:
                    return plain(v);
            }
        case Show::Plain:
            break;
    }
    return plain(v);
}

QString employee(qint64 id, const Names& names) {
    const QString name = names.employees.value(id);
    return name.isEmpty() ? u"کارمند %1"_s.arg(id) : name;
}

QString guarantors(const snapshot::Member& m, const Names& names) {
    QStringList list;
    for (const auto& g : m.guarantors)
        if (g) list << employee(*g, names);
    return list.isEmpty() ? kEmpty : list.join(u"، "_s);
}

// At most NamedMembers lines of one kind, then how many more.
void addMembers(QStringList& lines, const QStringList& named) {
    for (int i = 0; i < named.size() && i < NamedMembers; ++i) lines << named[i];
    if (named.size() > NamedMembers)
        lines << u"و %1 کارمند ديگر"_s.arg(named.size() - NamedMembers);
}

void memberLines(QStringList& lines, const snapshot::State& before, const snapshot::State& after,
                 const Names& names) {
    QHash<qint64, snapshot::Member> was, is;
    for (const snapshot::Member& m : before.members) was.insert(m.employeeId, m);
    for (const snapshot::Member& m : after.members) is.insert(m.employeeId, m);
    QStringList added, removed, changed;
    for (const snapshot::Member& m : after.members) {
        const auto old = was.constFind(m.employeeId);
        if (old == was.constEnd()) {
            const QString g = guarantors(m, names);
            added << u"کارمند افزوده شد: "_s + employee(m.employeeId, names) +
                         (g == kEmpty ? QString() : u" (ضامن: %1)"_s.arg(g));
        } else if (old->guarantors != m.guarantors) {
            changed << u"ضامنين %1: "_s.arg(employee(m.employeeId, names)) +
                           guarantors(*old, names) + kArrow + guarantors(m, names);
        }
    }
    for (const snapshot::Member& m : before.members)
        if (!is.contains(m.employeeId))
            removed << u"کارمند حذف شد: "_s + employee(m.employeeId, names);
    addMembers(lines, added);
    addMembers(lines, removed);
    addMembers(lines, changed);
}

// "«name» از 1402/03/01 تا 1402/04/31، اقساط ماهيانه 2/000/000"
QString adjustment(const QJsonObject& a, const Names& names) {
    QString text = u"«%1»"_s.arg(employee(a.value(u"EmployeeID"_s).toInteger(), names));
    const QString from = plain(a.value(u"FarsiBeginDate"_s)),
                  to = plain(a.value(u"FarsiEndDate"_s));
    if (from != kEmpty) text += u" از "_s + from;
    if (to != kEmpty) text += u" تا "_s + to;
    const QJsonValue debit = a.value(u"MonthlyDebit"_s);
    text +=
        u"، "_s + label(T::LabelPerMonth) + u" "_s +
        (debit.isDouble() && debit.toDouble() != -1 ? value(debit, Show::Amount, names) : kEmpty);
    return text;
}

}  // namespace

QString Who(const QString& employeeName, qint32 userId) {
    if (!employeeName.trimmed().isEmpty()) return employeeName.simplified();
    return u"کاربر %1"_s.arg(userId);
}

QString When(const QDateTime& utc) {
    if (!utc.isValid()) return {};
    QTimeZone tehran(QByteArrayLiteral("Asia/Tehran"));
    if (!tehran.isValid()) tehran = QTimeZone(3 * 3600 + 30 * 60);  // no zone data: +03:30
    const QDateTime local = utc.toTimeZone(tehran);
    const QCalendar::YearMonthDay ymd =
        QCalendar(QCalendar::System::Jalali).partsFromDate(local.date());
    return u"%1/%2/%3 %4"_s.arg(ymd.year, 4, 10, QChar(u'0'))
        .arg(ymd.month, 2, 10, QChar(u'0'))
        .arg(ymd.day, 2, 10, QChar(u'0'))
        .arg(local.time().toString(u"HH:mm"_s));
}

QString What(const HistoryEntry& entry) {
    const std::optional<Command> command = CommandFromCode(entry.command);
    if (!command) return entry.command;
    switch (*command) {
        case Command::TemporarySave:
            return T::CaptionRegSave;
        case Command::FinalSave:
            return entry.code ? u"%1 با شماره %2"_s.arg(T::CaptionFinSave).arg(*entry.code)
                              : T::CaptionFinSave;
        case Command::Delete:
            return u"حذف وام"_s;
        case Command::BackToTemporary:
            return u"بازگشت به حالت موقت"_s;
        case Command::RemoveMember:
            return T::CaptionDeleteEmp;
        case Command::AdjustmentNew:
            return u"ثبت تعديل جديد"_s;
        case Command::AdjustmentEdit:
            return u"اصلاح تعديل"_s;
        case Command::AdjustmentDelete:
            return u"حذف تعديل"_s;
        case Command::Restore:
            return entry.restoredFrom
                       ? u"بازگرداندن وام حذف شده با شماره رايانه اي %1"_s.arg(*entry.restoredFrom)
                       : u"بازگرداندن وام حذف شده"_s;
    }
    return entry.command;
}

QStringList Differences(const QString& beforeText, const QString& afterText, const Names& names) {
    const snapshot::State before = snapshot::Parse(beforeText);
    const snapshot::State after = snapshot::Parse(afterText);
    QStringList lines;
    if (before.loan || after.loan) {
        const QJsonObject was = before.loan.value_or(QJsonObject());
        const QJsonObject is = after.loan.value_or(QJsonObject());
        const bool both = before.loan && after.loan;
        for (const Field& f : fields()) {
            const QString column = QString::fromUtf16(f.column);
            const QJsonValue a = was.value(column), b = is.value(column);
            if (both) {
                if (a == b) continue;
                if (f.twin &&
                    was.value(QString::fromUtf16(f.twin)) != is.value(QString::fromUtf16(f.twin)))
                    continue;
                lines << f.label + u": "_s + value(a, f.show, names) + kArrow +
                             value(b, f.show, names);
            } else {
                // A loan that came into being or went away: what it holds.
                const QJsonValue v = before.loan ? a : b;
                if (f.twin || v.isNull() || plain(v) == kEmpty) continue;
                lines << f.label + u": "_s + value(v, f.show, names);
            }
        }
    }
    memberLines(lines, before, after, names);
    if (before.adjustment && after.adjustment) {
        if (*before.adjustment != *after.adjustment)
            lines << u"تعديل: "_s + adjustment(*before.adjustment, names) + kArrow +
                         adjustment(*after.adjustment, names);
    } else if (after.adjustment) {
        lines << u"تعديل جديد: "_s + adjustment(*after.adjustment, names);
    } else if (before.adjustment) {
        lines << u"تعديل حذف شد: "_s + adjustment(*before.adjustment, names);
    }
    return lines;
}

QList<snapshot::Member> RemovedMembers(const QString& beforeText, const QString& afterText) {
    const snapshot::State before = snapshot::Parse(beforeText);
    const snapshot::State after = snapshot::Parse(afterText);
    QSet<qint64> kept;
    for (const snapshot::Member& m : after.members) kept.insert(m.employeeId);
    QList<snapshot::Member> removed;
    for (const snapshot::Member& m : before.members)
        if (!kept.contains(m.employeeId)) removed << m;
    return removed;
}

}  // namespace kav::history::words
