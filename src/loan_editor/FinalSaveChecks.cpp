#include "loan_editor/FinalSaveChecks.h"

#include <QSet>
#include <optional>

#include "base/Errors.h"
#include "controls/FarsiDateText.h"
#include "loan_editor/LoanDates.h"
#include "loan_editor/LoanEditorSql.h"
#include "session/DataEnvironment.h"
#include "session/Module.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::final_checks {

namespace {

// An ID cell as a number; nothing for "null", an empty cell or anything else.
std::optional<qint64> idOf(const QString& cell) {
    bool ok = false;
    const qint64 id = LatinDigits(cell).trimmed().toLongLong(&ok);
    return ok ? std::optional<qint64>(id) : std::nullopt;
}

// An amount box's value text; an empty box is 0, as the save writes it.
vb::Currency amountOf(const QString& valueText) {
    const QString text = LatinDigits(valueText).trimmed();
    return text.isEmpty() ? vb::Currency() : AmountCurrency(text);
}

QString shown(vb::Currency amount) { return GroupDigits(amount.toString()); }

// count x instalment + remainder, or nothing when it leaves the currency range.
std::optional<qint64> instalmentsPlusRemainder(qint64 count, vb::Currency instalment,
                                               vb::Currency remainder) {
    qint64 total = 0;
    if (__builtin_mul_overflow(count, instalment.raw(), &total) ||
        __builtin_add_overflow(total, remainder.raw(), &total))
        return std::nullopt;
    return total;
}

// The settlement date n instalments from the first give, as the date box would show it;
// empty when the count is too large for the calendar.
QString derivedEndDate(qint64 count, const QString& beginDate) {
    try {
        return controls::FarsiDateText(controls::ParseStoredFarsiDate(
            loan::EndDateFromCount(QString::number(count), loan::CountWidth::Int32, beginDate)));
    } catch (const KavError&) {
        return {};
    }
}

class Namer {
public:
    explicit Namer(const DatabaseFacts& facts) : facts_(facts) {}
    QString operator()(const QString& cell) const {
        const std::optional<qint64> id = idOf(cell);
        const auto it = id ? facts_.people.constFind(*id) : facts_.people.constEnd();
        if (it == facts_.people.constEnd() || it->name.trimmed().isEmpty())
            return u"با شماره رايانه اي %1"_s.arg(cell.trimmed());
        if (it->code.trimmed().isEmpty()) return u"«%1»"_s.arg(it->name.simplified());
        return u"«%1» (کد %2)"_s.arg(it->name.simplified(), it->code.trimmed());
    }

private:
    const DatabaseFacts& facts_;
};

}  // namespace

QList<qint64> PeopleIds(const loan_save::LoanRecord& loan) {
    QList<qint64> ids;
    auto add = [&](const QString& cell) {
        if (const auto id = idOf(cell); id && !ids.contains(*id)) ids << *id;
    };
    for (const loan_save::MemberRow& m : loan.members) {
        add(m.employeeId);
        for (const QString& g : m.guarantors) add(g);
    }
    return ids;
}

QString PeopleQuery(const data::SqlDialect& dialect, const QList<qint64>& ids) {
    QStringList list;
    for (const qint64 id : ids) list << QString::number(id);
    const QString plus = dialect.concatOperator();
    return u"select e.ID, e.Code, e.FirstName "_s + plus + u"' '"_s + plus +
           u"e.SureName as 'EmployeeName', e.WorkStatusID from tblEmployee e Where e.ID in ("_s +
           list.join(u',') + u")"_s;
}

DatabaseFacts ReadFacts(Connection& cnt, const loan_save::LoanRecord& loan) {
    DatabaseFacts facts;
    Recordset rs(cnt);
    rs.Open(loan_sql::LoanTypeMaxValue(loan.typeId));
    if (rs.RecordCount() > 0) facts.ceiling = rs.Fields(u"MaxValue"_s);
    rs.Close();
    const QList<qint64> ids = PeopleIds(loan);
    if (ids.isEmpty()) return facts;
    rs.Open(PeopleQuery(cnt.Dialect(), ids));
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        const QVariant status = rs.Fields(u"WorkStatusID"_s);
        facts.people.insert(
            rs.Fields(u"ID"_s).toLongLong(),
            Person{FieldText(rs.Fields(u"EmployeeName"_s)), FieldText(rs.Fields(u"Code"_s)),
                   !status.isNull() && status.toLongLong() == 3});
    }
    rs.Close();
    return facts;
}

QStringList Problems(const loan_save::LoanRecord& loan, const QString& remainder,
                     const DatabaseFacts& facts) {
    QStringList lines;
    const vb::Currency amount = amountOf(loan.loanValue);
    const vb::Currency instalment = amountOf(loan.monthlyValue);
    // A count that is no whole number never gets this far: the save refuses it first.
    const std::optional<QString> countText = loan_save::CountSql(loan.payBackNumber);
    const bool hasCount = countText && *countText != u"Null"_s;
    const qint64 count = hasCount ? countText->toLongLong() : 0;

    if (hasCount) {
        const auto total = instalmentsPlusRemainder(count, instalment, amountOf(remainder));
        if (!total || *total != amount.raw())
            lines << u"جمع اقساط و مانده (%1) با مبلغ وام (%2) برابر نيست."_s.arg(
                total ? shown(vb::Currency::fromRaw(*total)) : u"?"_s, shown(amount));
    }
    if (countText && count == 0) lines << u"تعداد اقساط مشخص نشده يا صفر است."_s;
    const bool hasBegin = !loan.farsiBeginDate.trimmed().isEmpty();
    if (!hasBegin) lines << u"تاريخ شروع قسط مشخص نشده است."_s;
    if (hasBegin && count > 0) {
        const QString end = derivedEndDate(count, loan.farsiBeginDate);
        if (!end.isEmpty() && end != loan.farsiEndDate)
            lines << u"تاريخ تسويه (%1) با تعداد اقساط مطابقت ندارد: %2 قسط از %3 تا %4 است."_s.arg(
                loan.farsiEndDate, QString::number(count), loan.farsiBeginDate, end);
    }
    if (hasBegin && !loan.farsiPayDate.trimmed().isEmpty() &&
        loan.farsiPayDate > loan.farsiBeginDate)
        lines << u"تاريخ پرداخت (%1) بعد از تاريخ شروع قسط (%2) است."_s.arg(loan.farsiPayDate,
                                                                            loan.farsiBeginDate);
    if (!facts.ceiling.isNull()) {
        const vb::Currency ceiling = vb::Currency::fromDouble(facts.ceiling.toDouble());
        if (amount > ceiling)
            lines << u"مبلغ وام (%1) از سقف اين نوع وام (%2) بيشتر است."_s.arg(shown(amount),
                                                                               shown(ceiling));
    }

    const Namer name(facts);
    QStringList selfGuaranteed, doubleGuarantors, left;
    for (const loan_save::MemberRow& m : loan.members) {
        const std::optional<qint64> member = idOf(m.employeeId);
        QSet<qint64> seen, repeated;
        bool guaranteesHimself = false;
        for (const QString& cell : m.guarantors) {
            const std::optional<qint64> g = idOf(cell);
            if (!g) continue;
            if (g == member) guaranteesHimself = true;
            // One line for a guarantor named twice or three times.
            if (seen.contains(*g) && !repeated.contains(*g)) {
                repeated.insert(*g);
                doubleGuarantors << u"%1 دو بار ضامن کارمند %2 است."_s.arg(name(cell),
                                                                           name(m.employeeId));
            }
            seen.insert(*g);
        }
        if (guaranteesHimself)
            selfGuaranteed << u"کارمند %1 ضامن خودش است."_s.arg(name(m.employeeId));
        if (member && facts.people.value(*member).hasLeft)
            left << u"کارمند %1 ترک کار کرده است."_s.arg(name(m.employeeId));
    }
    return lines + selfGuaranteed + doubleGuarantors + left;
}

QString QuestionTitle() { return u"بررسي پيش از ثبت قطعي"_s; }

QString QuestionText(const QStringList& problems) {
    QStringList text{u"پيش از ثبت قطعي، اين موارد را بررسي کنيد:"_s};
    for (const QString& p : problems) text << u"- "_s + p;
    text << u"آيا با اين حال وام ثبت قطعي شود؟"_s;
    return text.join(u'\n');
}

bool Confirmed(Module& module, const loan_save::LoanRecord& loan, const QString& remainder) {
    const QStringList problems = Problems(loan, remainder, ReadFacts(module.DtEn().cnt(), loan));
    if (problems.isEmpty()) return true;
    return module.AskQuestion(QuestionTitle(), QuestionText(problems)) == AnswerYes;
}

}  // namespace kav::final_checks
