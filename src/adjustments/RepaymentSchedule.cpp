#include "adjustments/RepaymentSchedule.h"

#include <algorithm>
#include <climits>

#include "base/Errors.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

using vb::Currency;

namespace {

Currency minOf(Currency a, Currency b) { return a < b ? a : b; }

}  // namespace

std::optional<int> MonthNumber(const QString& text) {
    const QStringList parts = LatinDigits(text.trimmed()).split(u'/');
    if (parts.size() < 2) return std::nullopt;
    bool okYear = false, okMonth = false;
    const int year = parts[0].trimmed().toInt(&okYear);
    const int month = parts[1].trimmed().toInt(&okMonth);
    if (!okYear || !okMonth || year < 1 || year > 9999 || month < 1 || month > 12)
        return std::nullopt;
    return year * 12 + month - 1;
}

std::optional<int> MonthNumber(QByteArrayView utf8) {
    // Digits, "/", digits, then nothing or "/" and anything: read as it stands. Every other
    // text (blanks, other digits, signs) is decoded and read as above.
    const QByteArrayView text = utf8.trimmed();
    const auto digits = [&](qsizetype& i, int& value) {
        const qsizetype start = i;
        value = 0;
        while (i < text.size() && text[i] >= '0' && text[i] <= '9' && i - start < 6)
            value = value * 10 + (text[i++] - '0');
        return i > start && (i == text.size() || text[i] < '0' || text[i] > '9');
    };
    qsizetype i = 0;
    int year = 0, month = 0;
    bool plain = std::all_of(text.begin(), text.end(), [](char c) { return uchar(c) < 0x80; }) &&
                 digits(i, year) && i < text.size() && text[i] == '/' && digits(++i, month) &&
                 (i == text.size() || text[i] == '/');
    if (!plain) return MonthNumber(QString::fromUtf8(utf8));
    if (year < 1 || year > 9999 || month < 1 || month > 12) return std::nullopt;
    return year * 12 + month - 1;
}

QString MonthText(int monthNumber) {
    return u"%1/%2"_s.arg(monthNumber / 12, 4, 10, QChar(u'0'))
        .arg(monthNumber % 12 + 1, 2, 10, QChar(u'0'));
}

std::optional<Currency> AmountOf(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return std::nullopt;
    switch (value.typeId()) {
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::Short:
        case QMetaType::Long: {
            qint64 raw = 0;
            if (__builtin_mul_overflow(value.toLongLong(), Currency::Scale, &raw))
                throw KavError(KavError::Kind::Overflow,
                               u"مبلغ بيش از حد بزرگ است: "_s + value.toString());
            return Currency::fromRaw(raw);
        }
        case QMetaType::Double:
        case QMetaType::Float:
            return Currency::fromDouble(value.toDouble());
        default:
            return vb::CCur(value.toString());
    }
}

MonthTerms TermsInMonths(const LoanTerms& t) {
    return {t.loanValue,
            t.monthlyValue,
            t.payBackNumber,
            t.remainderOption,
            MonthNumber(t.farsiBeginDate),
            MonthNumber(t.farsiEndDate)};
}

std::optional<AdjustmentPeriod> PeriodOf(const Adjustment& a) {
    const QString from = a.farsiBeginDate.trimmed(), to = a.farsiEndDate.trimmed();
    const std::optional<int> f = from.isEmpty() ? std::optional<int>(INT_MIN) : MonthNumber(from);
    const std::optional<int> t = to.isEmpty() ? std::optional<int>(INT_MAX) : MonthNumber(to);
    if (!f || !t) return std::nullopt;
    return AdjustmentPeriod{a.id, *f, *t, a.monthlyDebit};
}

namespace {

// What the terms plan, once checked.
struct Plan {
    Currency loanValue;
    Currency monthly;
    int begin = 0;
    std::optional<int> settlement;
    qint32 count = 0;    // 0: no count, months at the instalment until paid
    Currency remainder;  // above 0 when the instalments leave one
    int option = 0;
};

// The plan, or why there is none (problem, when given, says so).
std::optional<Plan> planOf(const MonthTerms& t, QString* problem) {
    const auto fail = [&](const QString& why) {
        if (problem) *problem = why;
        return std::nullopt;
    };
    if (!t.monthlyValue)
        return fail(
            u"قسط ماهيانه وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s);
    if (*t.monthlyValue <= Currency())
        return fail(
            u"قسط ماهيانه وام بايد بيشتر از صفر باشد؛ برنامه بازپرداخت ساخته نمي‌شود."_s);
    if (!t.beginMonth)
        return fail(
            u"تاريخ شروع اقساط وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s);
    Plan p;
    p.loanValue = t.loanValue;
    p.monthly = *t.monthlyValue;
    p.begin = *t.beginMonth;
    p.settlement = t.settlementMonth;
    p.count = t.payBackNumber.value_or(0) > 0 ? *t.payBackNumber : 0;
    if (p.count > 0) {
        qint64 instalments = 0;
        if (__builtin_mul_overflow(p.monthly.raw(), qint64(p.count), &instalments))
            instalments = LLONG_MAX;
        if (t.loanValue.raw() > instalments)
            p.remainder = Currency::fromRaw(t.loanValue.raw() - instalments);
    }
    p.option = t.remainderOption;
    return p;
}

// Walks the member's months from the first (the first instalment's, or an earlier payslip's)
// up to and including `stop`, handing each row (its month text left empty) with its month
// number to visit. Stops when the balance is paid and no payslip month is left; returns false
// when it stopped after maxMonths rows instead.
template <class Visit>
bool walk(const Plan& plan, std::span<const AdjustmentPeriod> periods,
          std::span<const PaidMonth> paid, int stop, int maxMonths, Visit&& visit) {
    int first = plan.begin, last = INT_MIN;
    if (!paid.empty()) {
        first = std::min(first, paid.front().month);
        last = paid.back().month;
    }
    const bool hasRemainder = plan.remainder > Currency();
    Currency balance = plan.loanValue;
    size_t next = 0;  // the first payslip month not yet reached
    int rows = 0;
    for (int month = first; month <= stop; ++month) {
        if (balance <= Currency() && month > last) break;
        if (rows >= maxMonths) return false;
        Row row;
        row.afterSettlement = plan.settlement && month > *plan.settlement;
        const int instalment = month - plan.begin + 1;  // 1 for the first month; below 1 before it
        Currency base;
        if (instalment >= 1) {
            base = plan.monthly;
            if (hasRemainder) {
                const bool withFirst = plan.option == 1 && instalment == 1;
                const bool withLast =
                    plan.option != 1 && plan.option != 2 && instalment == plan.count;
                if (withFirst || withLast) {
                    base = plan.monthly + plan.remainder;
                    row.remainderMonth = true;
                } else if (plan.option == 2 && instalment == plan.count + 1) {
                    base = plan.remainder;
                    row.remainderMonth = true;
                }
            }
        }
        const Currency room = balance > Currency() ? balance : Currency();
        row.planned = minOf(base, room);
        Currency expected = row.planned;
        if (instalment >= 1) {
            // Of the periods covering the month the one with the highest ID holds; -1 replaces
            // nothing.
            const AdjustmentPeriod* holds = nullptr;
            for (const AdjustmentPeriod& p : periods)
                if (month >= p.from && month <= p.to && (!holds || p.id > holds->id)) holds = &p;
            if (holds && holds->monthlyDebit >= Currency()) {
                row.adjustment = minOf(holds->monthlyDebit, room);
                row.adjustmentId = holds->id;
                expected = *row.adjustment;
            }
        }
        while (next < paid.size() && paid[next].month < month) ++next;
        if (next < paid.size() && paid[next].month == month) {
            Currency sum;
            for (; next < paid.size() && paid[next].month == month; ++next)
                sum = sum + paid[next].paid;
            row.deducted = sum;
        }
        row.taken = row.deducted ? *row.deducted : expected;
        balance = balance - row.taken;
        row.balance = balance;
        ++rows;
        visit(std::move(row), month);
    }
    return true;
}

}  // namespace

Schedule Compute(const LoanTerms& terms, const QVector<Adjustment>& adjustments,
                 const QVector<Payslip>& payslips, int maxMonths) {
    Schedule s;
    s.balance = terms.loanValue;
    const std::optional<Plan> plan = planOf(TermsInMonths(terms), &s.problem);
    if (!plan) return s;

    QVector<AdjustmentPeriod> periods;
    periods.reserve(adjustments.size());
    for (const Adjustment& a : adjustments)
        if (const std::optional<AdjustmentPeriod> p = PeriodOf(a)) periods.append(*p);
    QVector<PaidMonth> paid;
    paid.reserve(payslips.size());
    for (const Payslip& p : payslips)
        if (const std::optional<int> m = MonthNumber(p.payMonth)) paid.append({*m, p.paidValue});
    std::stable_sort(paid.begin(), paid.end(),
                     [](const PaidMonth& a, const PaidMonth& b) { return a.month < b.month; });

    const bool whole = walk(*plan, periods, paid, INT_MAX, maxMonths, [&](Row&& row, int month) {
        row.month = MonthText(month);
        s.totalTaken = s.totalTaken + row.taken;
        if (row.deducted) s.totalDeducted = s.totalDeducted + *row.deducted;
        s.balance = row.balance;
        s.rows.append(std::move(row));
    });
    if (!whole)
        s.problem =
            u"مانده وام در %1 ماه به صفر نمي‌رسد؛ فقط %1 ماه نخست نشان داده شده است."_s
                .arg(maxMonths);
    return s;
}

std::optional<Row> MonthRow(const MonthTerms& terms, std::span<const AdjustmentPeriod> periods,
                            std::span<const PaidMonth> paid, int month, int maxMonths) {
    const std::optional<Plan> plan = planOf(terms, nullptr);
    if (!plan) return std::nullopt;
    std::optional<Row> found;
    walk(*plan, periods, paid, month, maxMonths, [&](Row&& row, int m) {
        if (m == month) found = std::move(row);
    });
    if (found) found->month = MonthText(month);
    return found;
}

}  // namespace kav::schedule
