#include "data/PayslipColumns.h"

#include <QRegularExpression>
#include <QSettings>
#include <algorithm>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {

// Persian and Arabic-Indic digits as the digits they are.
QString latinDigits(QString text) {
    for (QChar& c : text)
        if (c.isDigit() && c.unicode() > 0x7f) c = QChar(u'0' + c.digitValue());
    return text;
}

// The settings' keys, in the order PayslipColumns holds them.
struct Key {
    QString name;
    QString PayslipColumns::*field;
};
const Key kKeys[] = {{u"EmployeeColumn"_s, &PayslipColumns::employee},
                     {u"MonthColumn"_s, &PayslipColumns::month},
                     {u"MonthForm"_s, &PayslipColumns::monthForm},
                     {u"PaidColumn"_s, &PayslipColumns::paid}};

}  // namespace

PayslipColumns PayslipColumns::FromSettings(QSettings& settings) {
    PayslipColumns c;
    settings.beginGroup(PayslipSettingsGroup);
    for (const Key& k : kKeys) {
        const QString value = settings.value(k.name).toString().trimmed();
        if (!value.isEmpty()) c.*k.field = value;
    }
    settings.endGroup();
    // A column's name goes into the statements as it stands: a plain name only.
    static const QRegularExpression name(u"^[A-Za-z_][A-Za-z0-9_]*$"_s);
    for (const Key& k : kKeys)
        if (k.field != &PayslipColumns::monthForm && !name.match(c.*k.field).hasMatch())
            throw KavError(KavError::Kind::Usage,
                           u"نام ستون «%1» در تنظيمات (Payslip/%2) نام ستون نيست."_s.arg(
                               c.*k.field, k.name));
    if (!c.monthForm.contains(u"yyyy"_s) || !c.monthForm.contains(u"mm"_s))
        throw KavError(KavError::Kind::Usage,
                       u"شکل ماه فيش حقوقي «%1» در تنظيمات (Payslip/MonthForm) بايد yyyy و mm "
                       u"داشته باشد، مانند yyyy/mm."_s.arg(c.monthForm));
    return c;
}

void PayslipColumns::Store(QSettings& settings) const {
    const PayslipColumns defaults;
    settings.beginGroup(PayslipSettingsGroup);
    for (const Key& k : kKeys) {
        if (this->*k.field == defaults.*k.field)
            settings.remove(k.name);
        else
            settings.setValue(k.name, this->*k.field);
    }
    settings.endGroup();
}

namespace {

int code(const QString& text, qsizetype i) { return text[i].unicode(); }
int code(QByteArrayView text, qsizetype i) { return uchar(text[i]); }

// The month of a text (Latin digits) in the form; T is QString or QByteArrayView.
template <class T>
std::optional<int> monthIn(const QString& form, const T& text) {
    const qsizetype y = form.indexOf(u"yyyy"_s), m = form.indexOf(u"mm"_s);
    if (y < 0 || m < 0 || text.size() < form.size()) return std::nullopt;
    const auto digit = [&](qsizetype i) { return code(text, i) - '0'; };
    // Every other character of the form stands for itself.
    for (qsizetype i = 0; i < form.size(); ++i) {
        const bool inYear = i >= y && i < y + 4, inMonth = i >= m && i < m + 2;
        if (inYear || inMonth) {
            if (digit(i) < 0 || digit(i) > 9) return std::nullopt;
        } else if (code(text, i) != form[i].unicode()) {
            return std::nullopt;
        }
    }
    const int year = digit(y) * 1000 + digit(y + 1) * 100 + digit(y + 2) * 10 + digit(y + 3);
    const int month = digit(m) * 10 + digit(m + 1);
    if (year < 1 || month < 1 || month > 12) return std::nullopt;
    return year * 12 + month - 1;
}

}  // namespace

std::optional<int> PayslipColumns::MonthNumber(const QVariant& value) const {
    if (!value.isValid() || value.isNull()) return std::nullopt;
    return monthIn(monthForm, latinDigits(value.toString().trimmed()));
}

std::optional<int> PayslipColumns::MonthNumber(QByteArrayView utf8) const {
    const bool ascii =
        std::all_of(utf8.begin(), utf8.end(), [](char c) { return uchar(c) < 0x80; });
    if (!ascii) return MonthNumber(QVariant(QString::fromUtf8(utf8)));
    return monthIn(monthForm, utf8.trimmed());
}

QString PayslipColumns::MonthText(int monthNumber) const {
    QString text = monthForm;
    text.replace(text.indexOf(u"yyyy"_s), 4, u"%1"_s.arg(monthNumber / 12, 4, 10, QChar(u'0')));
    text.replace(text.indexOf(u"mm"_s), 2, u"%1"_s.arg(monthNumber % 12 + 1, 2, 10, QChar(u'0')));
    return text;
}

}  // namespace kav::data
