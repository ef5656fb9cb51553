#include "adjustments/RepaymentSchedule.h"

#include <QHash>
#include <algorithm>
#include <climits>

#include "base/Errors.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::schedule {

using vb::Currency;

namespace {

Currency minOf(Currency a, Currency b) { return a < b ? a : b; }

// An adjustment's period as month numbers; an empty bound is open.
struct Period {
    qint32 id;
    int from;
    int to;
    Currency debit;
};

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

Schedule Compute(const LoanTerms& terms, const QVector<Adjustment>& adjustments,
                 const QVector<Payslip>& payslips, int maxMonths) {
    Schedule s;
    s.balance = terms.loanValue;
    if (!terms.monthlyValue) {
        s.problem =
            u"قسط ماهيانه وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s;
        return s;
    }
    const Currency monthly = *terms.monthlyValue;
    if (monthly <= Currency()) {
        s.problem =
            u"قسط ماهيانه وام بايد بيشتر از صفر باشد؛ برنامه بازپرداخت ساخته نمي‌شود."_s;
        return s;
    }
    const std::optional<int> begin = MonthNumber(terms.farsiBeginDate);
    if (!begin) {
        s.problem =
            u"تاريخ شروع اقساط وام مشخص نشده است؛ برنامه بازپرداخت ساخته نمي‌شود."_s;
        return s;
    }
    const std::optional<int> settlement = MonthNumber(terms.farsiEndDate);

    // The remainder of the amount after the equal instalments, when there is a count.
    const qint32 count = terms.payBackNumber.value_or(0) > 0 ? *terms.payBackNumber : 0;
    Currency remainder;
    if (count > 0) {
        qint64 instalments = 0;
        if (__builtin_mul_overflow(monthly.raw(), qint64(count), &instalments))
            instalments = LLONG_MAX;
        if (terms.loanValue.raw() > instalments)
            remainder = Currency::fromRaw(terms.loanValue.raw() - instalments);
    }
    const bool hasRemainder = remainder > Currency();
    const int option = terms.remainderOption;

    // Adjustments, highest ID first, so the first that covers a month holds.
    QVector<Period> periods;
    periods.reserve(adjustments.size());
    for (const Adjustment& a : adjustments) {
        const QString from = a.farsiBeginDate.trimmed(), to = a.farsiEndDate.trimmed();
        const std::optional<int> f =
            from.isEmpty() ? std::optional<int>(INT_MIN) : MonthNumber(from);
        const std::optional<int> t = to.isEmpty() ? std::optional<int>(INT_MAX) : MonthNumber(to);
        if (!f || !t) continue;  // a period that is no period covers no month
        periods.append({a.id, *f, *t, a.monthlyDebit});
    }
    std::stable_sort(periods.begin(), periods.end(),
                     [](const Period& a, const Period& b) { return a.id > b.id; });

    // Payslip amounts per month; two rows of one month add up.
    QHash<int, Currency> paid;
    paid.reserve(payslips.size());
    int first = *begin, last = INT_MIN;
    for (const Payslip& p : payslips) {
        const std::optional<int> m = MonthNumber(p.payMonth);
        if (!m) continue;
        paid[*m] = paid.value(*m) + p.paidValue;
        first = std::min(first, *m);
        last = std::max(last, *m);
    }

    Currency balance = terms.loanValue;
    for (int month = first;; ++month) {
        if (balance <= Currency() && month > last) break;
        if (s.rows.size() >= maxMonths) {
            s.problem =
                u"مانده وام در %1 ماه به صفر نمي‌رسد؛ فقط %1 ماه نخست نشان داده شده است."_s
                    .arg(maxMonths);
            break;
        }
        Row row;
        row.month = MonthText(month);
        row.afterSettlement = settlement && month > *settlement;
        const int instalment = month - *begin + 1;  // 1 for the first month; below 1 before it
        Currency base;
        if (instalment >= 1) {
            base = monthly;
            if (hasRemainder) {
                const bool withFirst = option == 1 && instalment == 1;
                const bool withLast = option != 1 && option != 2 && instalment == count;
                if (withFirst || withLast) {
                    base = monthly + remainder;
                    row.remainderMonth = true;
                } else if (option == 2 && instalment == count + 1) {
                    base = remainder;
                    row.remainderMonth = true;
                }
            }
        }
        const Currency room = balance > Currency() ? balance : Currency();
        row.planned = minOf(base, room);
        Currency expected = row.planned;
        if (instalment >= 1) {
            for (const Period& p : periods) {
                if (month < p.from || month > p.to) continue;
                if (p.debit >= Currency()) {  // -1 replaces nothing
                    row.adjustment = minOf(p.debit, room);
                    row.adjustmentId = p.id;
                    expected = *row.adjustment;
                }
                break;
            }
        }
        const auto deducted = paid.constFind(month);
        if (deducted != paid.constEnd()) row.deducted = *deducted;
        row.taken = row.deducted ? *row.deducted : expected;
        balance = balance - row.taken;
        row.balance = balance;

        s.totalTaken = s.totalTaken + row.taken;
        if (row.deducted) s.totalDeducted = s.totalDeducted + *row.deducted;
        s.rows.append(row);
    }
    s.balance = balance;
    return s;
}

}  // namespace kav::schedule
