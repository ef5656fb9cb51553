#include "deductions/DeductionRegister.h"

#include <QCollator>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <numeric>
#include <span>
#include <vector>

#include "adjustments/ScheduleExport.h"
#include "adjustments/ScheduleSource.h"
#include "deductions/DeductionsTexts.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::deductions {

namespace T = deductions_texts;
using vb::Currency;

namespace {

// A member of a loan: the key of the adjustments and payslip rows read for the register.
struct Key {
    qint32 employee = 0;
    qint32 loan = 0;
    friend auto operator<=>(const Key&, const Key&) = default;
};

// Values read for many members, kept by member (ascending keys) so that each member's own
// are one contiguous run.
template <class V>
class ByMember {
public:
    void add(const Key& key, const V& value) { read_.push_back({key, value}); }

    // Orders what was read by member and, within a member, by `less`; afterwards only `of`.
    template <class Less>
    void order(Less less) {
        std::sort(read_.begin(), read_.end(), [&](const Entry& a, const Entry& b) {
            return a.key != b.key ? a.key < b.key : less(a.value, b.value);
        });
        keys_.reserve(read_.size());
        values_.reserve(read_.size());
        for (const Entry& e : read_) {
            keys_.push_back(e.key);
            values_.push_back(e.value);
        }
        read_ = {};
    }

    std::span<const V> of(const Key& key) const {
        const auto [first, last] = std::equal_range(keys_.begin(), keys_.end(), key);
        if (first == last) return {};
        return {values_.data() + (first - keys_.begin()), size_t(last - first)};
    }

    // Keeps only the values of each member that `keep` wants (given the value and whether it is
    // its member's last).
    template <class Keep>
    void retain(Keep keep) {
        size_t kept = 0;
        for (size_t i = 0; i < keys_.size(); ++i) {
            if (!keep(values_[i], i + 1 == keys_.size() || keys_[i + 1] != keys_[i])) continue;
            keys_[kept] = keys_[i];
            values_[kept] = values_[i];
            ++kept;
        }
        keys_.resize(kept);
        values_.resize(kept);
    }

private:
    struct Entry {
        Key key;
        V value;
    };
    std::vector<Entry> read_;
    std::vector<Key> keys_;
    std::vector<V> values_;
};

std::optional<qint32> idOf(const QVariant& value) {
    if (value.isNull()) return std::nullopt;
    bool ok = false;
    const qint32 id = value.toInt(&ok);
    return ok ? std::optional<qint32>(id) : std::nullopt;
}

// The adjustments of the final loans, as the member's schedule reads his own.
ByMember<schedule::AdjustmentPeriod> readPeriods(Connection& cnt, const Filter& filter) {
    ByMember<schedule::AdjustmentPeriod> out;
    RowReader rows(cnt, deductions_sql::AdjustmentsQuery(filter));
    const int id = rows.FieldIndex(u"ID"_s), loan = rows.FieldIndex(u"LoanID"_s),
              employee = rows.FieldIndex(u"EmployeeID"_s),
              begin = rows.FieldIndex(u"FarsiBeginDate"_s),
              end = rows.FieldIndex(u"FarsiEndDate"_s), debit = rows.FieldIndex(u"MonthlyDebit"_s);
    while (rows.Next()) {
        const std::optional<qint32> l = idOf(rows.Fields(loan)), e = idOf(rows.Fields(employee));
        if (!l || !e) continue;
        const std::optional<schedule::AdjustmentPeriod> period = schedule::PeriodOf(
            {rows.Fields(id).toInt(), FieldText(rows.Fields(begin)), FieldText(rows.Fields(end)),
             schedule::AmountOf(rows.Fields(debit)).value_or(Currency::fromRaw(-Currency::Scale))});
        if (period) out.add({*e, *l}, *period);
    }
    out.order([](const schedule::AdjustmentPeriod& a, const schedule::AdjustmentPeriod& b) {
        return a.id < b.id;
    });
    return out;
}

// The payslip rows of the final loans, each month read as the member's schedule reads it: in
// the settings' form, else as a "yyyy/mm" text. Those after the month only tell how far the
// schedule runs: of them each member keeps his last.
ByMember<schedule::PaidMonth> readPaid(Connection& cnt, const data::PayslipColumns& columns,
                                       const Filter& filter, int month) {
    ByMember<schedule::PaidMonth> out;
    RowReader rows(cnt, deductions_sql::PayslipsQuery(columns, filter));
    const int loan = rows.FieldIndex(u"LoanID"_s), employee = rows.FieldIndex(columns.employee),
              payMonth = rows.FieldIndex(columns.month), paid = rows.FieldIndex(columns.paid);
    while (rows.Next()) {
        const QByteArrayView stored = rows.Text(payMonth);
        std::optional<int> m = columns.MonthNumber(stored);
        if (!m) m = schedule::MonthNumber(stored);
        if (!m) continue;
        const std::optional<qint32> l = idOf(rows.Fields(loan)), e = idOf(rows.Fields(employee));
        if (!l || !e) continue;
        out.add({*e, *l},
                {*m, *m > month ? Currency()
                                : schedule::AmountOf(rows.Fields(paid)).value_or(Currency())});
    }
    out.order([](const schedule::PaidMonth& a, const schedule::PaidMonth& b) {
        return a.month < b.month;
    });
    // Of the months after the register's, the last is all MonthRow needs.
    out.retain(
        [month](const schedule::PaidMonth& p, bool last) { return p.month <= month || last; });
    return out;
}

QString amountCell(const std::optional<Currency>& amount, bool grouped) {
    if (!amount) return {};
    return grouped ? schedule::AmountText(*amount) : amount->toString();
}

}  // namespace

bool RegisterRow::PaidWithoutPlan() const { return month.deducted && ToDeduct() == Currency(); }

Register ReadRegister(Connection& cnt, const data::PayslipColumns& columns, int month,
                      const Filter& filter) {
    Register reg;
    reg.month = month;
    reg.filter = filter;
    reg.payslipsKnown = schedule::HasPayslipColumns(cnt, columns);
    const ByMember<schedule::AdjustmentPeriod> periods = readPeriods(cnt, filter);
    const ByMember<schedule::PaidMonth> paid =
        reg.payslipsKnown ? readPaid(cnt, columns, filter, month) : ByMember<schedule::PaidMonth>();

    RowReader rows(cnt, deductions_sql::MembersQuery(filter));
    const int loan = rows.FieldIndex(u"LoanID"_s), employee = rows.FieldIndex(u"EmployeeID"_s),
              loanCode = rows.FieldIndex(u"LoanCode"_s), typeId = rows.FieldIndex(u"TypeID"_s),
              typeName = rows.FieldIndex(u"LoanTypeName"_s),
              loanValue = rows.FieldIndex(u"LoanValue"_s),
              monthlyValue = rows.FieldIndex(u"MonthlyValue"_s),
              payBack = rows.FieldIndex(u"PayBackNumber"_s),
              option = rows.FieldIndex(u"UseRemainedValueInFirstMonth"_s),
              begin = rows.FieldIndex(u"FarsiBeginDate"_s),
              end = rows.FieldIndex(u"FarsiEndDate"_s), code = rows.FieldIndex(u"EmployeeCode"_s),
              first = rows.FieldIndex(u"FirstName"_s), sure = rows.FieldIndex(u"SureName"_s),
              status = rows.FieldIndex(u"WorkStatusID"_s);
    QHash<qint32, QString> typeNames;  // one text per type, shared by its rows
    while (rows.Next()) {
        const std::optional<qint32> l = idOf(rows.Fields(loan)), e = idOf(rows.Fields(employee));
        if (!l || !e) continue;
        const Key key{*e, *l};

        // The terms as the adjustment window reads them for the member's schedule.
        schedule::MonthTerms terms;
        terms.loanValue = schedule::AmountOf(rows.Fields(loanValue)).value_or(Currency());
        terms.monthlyValue = schedule::AmountOf(rows.Fields(monthlyValue));
        if (!rows.IsNull(payBack)) terms.payBackNumber = rows.Fields(payBack).toInt();
        terms.remainderOption = rows.IsNull(option) ? 0 : rows.Fields(option).toInt();
        terms.beginMonth = schedule::MonthNumber(rows.Text(begin));
        terms.settlementMonth = schedule::MonthNumber(rows.Text(end));
        std::optional<schedule::Row> row =
            schedule::MonthRow(terms, periods.of(key), paid.of(key), month);
        if (!row) continue;

        RegisterRow r;
        r.loanId = *l;
        r.employeeId = *e;
        r.loanTypeId = idOf(rows.Fields(typeId));
        r.employeeCode = QString::fromUtf8(rows.Text(code));
        const QString firstName = QString::fromUtf8(rows.Text(first)).trimmed();
        const QString sureName = QString::fromUtf8(rows.Text(sure)).trimmed();
        r.employeeName = firstName.isEmpty() || sureName.isEmpty() ? firstName + sureName
                                                                   : firstName + u' ' + sureName;
        r.loanCode = QString::fromUtf8(rows.Text(loanCode));
        const qint32 typeKey = r.loanTypeId.value_or(-1);
        auto type = typeNames.find(typeKey);
        if (type == typeNames.end())
            type = typeNames.insert(typeKey, QString::fromUtf8(rows.Text(typeName)));
        r.loanType = *type;
        r.left = !rows.IsNull(status) && rows.Fields(status).toInt() == 3;
        r.instalment = terms.monthlyValue;
        r.month = std::move(*row);
        reg.rows.append(std::move(r));
    }
    // By employee, then loan; a member written twice into a loan counts once.
    const auto keyOf = [](const RegisterRow& r) { return Key{r.employeeId, r.loanId}; };
    std::sort(reg.rows.begin(), reg.rows.end(),
              [&](const RegisterRow& a, const RegisterRow& b) { return keyOf(a) < keyOf(b); });
    reg.rows.erase(std::unique(reg.rows.begin(), reg.rows.end(),
                               [&](const RegisterRow& a, const RegisterRow& b) {
                                   return keyOf(a) == keyOf(b);
                               }),
                   reg.rows.end());
    return reg;
}

std::optional<int> ParseMonth(const QString& text) {
    static const QRegularExpression form(u"^(\\d{4})/(\\d{1,2})$"_s);
    const QRegularExpressionMatch m = form.match(LatinDigits(text.trimmed()));
    if (!m.hasMatch()) return std::nullopt;
    const int year = m.captured(1).toInt(), month = m.captured(2).toInt();
    if (year < 1 || month < 1 || month > 12) return std::nullopt;
    return year * 12 + month - 1;
}

QString NotAMonthText(const QString& text) { return T::NotAMonth.arg(text.trimmed()); }

Totals ComputeTotals(const QVector<RegisterRow>& rows) {
    Totals t;
    QHash<qint32, qsizetype> employees, types;
    const auto add = [](Total& total, const RegisterRow& r) {
        ++total.rows;
        total.toDeduct = total.toDeduct + r.ToDeduct();
        if (r.month.deducted) total.deducted = total.deducted + *r.month.deducted;
        total.balance = total.balance + r.month.balance;
    };
    for (const RegisterRow& r : rows) {
        auto e = employees.find(r.employeeId);
        if (e == employees.end()) {
            e = employees.insert(r.employeeId, t.employees.size());
            Total total;
            total.id = r.employeeId;
            total.code = r.employeeCode;
            total.name = r.employeeName;
            t.employees.append(total);
        }
        add(t.employees[*e], r);
        const qint32 typeId = r.loanTypeId.value_or(-1);
        auto k = types.find(typeId);
        if (k == types.end()) {
            k = types.insert(typeId, t.loanTypes.size());
            Total total;
            total.id = typeId;
            total.name = r.loanType;
            t.loanTypes.append(total);
        }
        add(t.loanTypes[*k], r);
        add(t.overall, r);
    }
    QCollator collator(QLocale(QLocale::Persian, QLocale::Iran));
    std::stable_sort(t.loanTypes.begin(), t.loanTypes.end(), [&](const Total& a, const Total& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return t;
}

QStringList ColumnTitles() { return T::ColumnTitles; }

QString RowNote(const RegisterRow& row) {
    QStringList notes;
    const QString schedule = schedule::RowNote(row.month);
    if (!schedule.isEmpty()) notes << schedule;
    if (row.PaidWithoutPlan()) notes << T::NotePaidWithoutPlan;
    if (row.left) notes << T::NoteLeft;
    return notes.join(u"، "_s);
}

QStringList RowCells(const RegisterRow& r, bool grouped) {
    return {r.employeeCode,
            r.employeeName,
            r.loanCode,
            r.loanType,
            amountCell(r.instalment, grouped),
            amountCell(r.month.adjustment, grouped),
            amountCell(r.ToDeduct(), grouped),
            amountCell(r.month.deducted, grouped),
            amountCell(r.month.balance, grouped),
            RowNote(r)};
}

QList<QStringList> TotalLines(const Totals& totals, bool grouped, bool payslipsKnown) {
    const auto line = [&](const QString& code, const QString& name, const QString& type,
                          const Total& t, const QString& note) {
        return QStringList{code,
                           name,
                           QString(),
                           type,
                           QString(),
                           QString(),
                           amountCell(t.toDeduct, grouped),
                           payslipsKnown ? amountCell(t.deducted, grouped) : QString(),
                           amountCell(t.balance, grouped),
                           note};
    };
    QList<QStringList> lines;
    lines.reserve(totals.employees.size() + totals.loanTypes.size() + 1);
    for (const Total& t : totals.employees)
        lines << line(t.code, t.name, QString(), t, T::TotalEmployee.arg(t.rows));
    for (const Total& t : totals.loanTypes)
        lines << line(QString(), QString(), t.name, t, T::TotalLoanType.arg(t.rows));
    lines << line(QString(), QString(), QString(), totals.overall,
                  T::TotalOverall.arg(totals.overall.rows));
    return lines;
}

QList<QStringList> CsvRows(const Register& reg, const Totals& totals) {
    QList<QStringList> rows;
    const QList<QStringList> total = TotalLines(totals, false, reg.payslipsKnown);
    rows.reserve(reg.rows.size() + total.size() + 2);
    rows << ColumnTitles();
    for (const RegisterRow& r : reg.rows) rows << RowCells(r, false);
    rows << QStringList();
    rows << total;
    return rows;
}

TableDocument Document(const Register& reg, const Totals& totals, const QStringList& facts) {
    TableDocument doc;
    doc.title = T::Caption;
    doc.facts = {facts.join(u"؛   "_s)};  // one line, so each page keeps its rows
    doc.columnTitles = ColumnTitles();
    doc.columnShares = {0.065, 0.14, 0.065, 0.12, 0.085, 0.08, 0.085, 0.09, 0.09, 0.18};
    doc.textColumns = {ColName, ColLoanType, ColNote};
    doc.landscape = true;
    const QList<QStringList> total = TotalLines(totals, true, reg.payslipsKnown);
    doc.lines.reserve(reg.rows.size() + total.size() + 1);
    for (const RegisterRow& r : reg.rows) doc.lines << TableDocument::Line{RowCells(r, true)};
    doc.lines << TableDocument::Line{};  // the totals after a blank line, as in the CSV file
    for (const QStringList& t : total) doc.lines << TableDocument::Line{t, true};
    return doc;
}

void SortRows(QVector<RegisterRow>& rows, int column, bool descending) {
    const qsizetype n = rows.size();
    std::vector<qsizetype> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), qsizetype(0));
    const auto sign = [descending](int c) { return descending ? -c : c; };
    const auto amountOf = [column](const RegisterRow& r) -> std::optional<Currency> {
        switch (column) {
            case ColInstalment:
                return r.instalment;
            case ColAdjustment:
                return r.month.adjustment;
            case ColToDeduct:
                return r.ToDeduct();
            case ColDeducted:
                return r.month.deducted;
            default:
                return r.month.balance;
        }
    };
    if (column >= ColInstalment && column <= ColBalance) {
        std::vector<std::optional<Currency>> key(static_cast<size_t>(n));
        for (qsizetype i = 0; i < n; ++i) key[size_t(i)] = amountOf(rows[i]);
        std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) {
            const auto& x = key[size_t(a)];
            const auto& y = key[size_t(b)];
            const int c = x == y ? 0 : (!x || (y && *x < *y)) ? -1 : 1;  // nothing lowest
            return sign(c) < 0;
        });
    } else {
        // Codes as numbers when every one reads as a whole number; texts in Persian order.
        const auto textOf = [column](const RegisterRow& r) {
            return column == ColCode       ? r.employeeCode
                   : column == ColName     ? r.employeeName
                   : column == ColLoanCode ? r.loanCode
                   : column == ColLoanType ? r.loanType
                                           : RowNote(r);
        };
        std::vector<qint64> number;
        if (column == ColCode || column == ColLoanCode) {
            number.reserve(size_t(n));
            for (const RegisterRow& r : rows) {
                bool ok = false;
                number.push_back(textOf(r).trimmed().toLongLong(&ok));
                if (!ok) {
                    number.clear();
                    break;
                }
            }
        }
        if (!number.empty() || n == 0) {
            std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) {
                const qint64 x = number[size_t(a)], y = number[size_t(b)];
                return sign(x < y ? -1 : (x > y ? 1 : 0)) < 0;
            });
        } else {
            QCollator collator(QLocale(QLocale::Persian, QLocale::Iran));
            collator.setCaseSensitivity(Qt::CaseInsensitive);
            std::vector<QCollatorSortKey> key;
            key.reserve(size_t(n));
            for (const RegisterRow& r : rows) key.push_back(collator.sortKey(textOf(r)));
            std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) {
                return sign(key[size_t(a)].compare(key[size_t(b)])) < 0;
            });
        }
    }
    QVector<RegisterRow> sorted;
    sorted.reserve(n);
    for (qsizetype i : order) sorted.append(std::move(rows[i]));
    rows = std::move(sorted);
}

}  // namespace kav::deductions
