#include "data/PayslipColumns.h"

#include <QRegularExpression>
#include <QSettings>

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

std::optional<int> PayslipColumns::MonthNumber(const QVariant& value) const {
    if (!value.isValid() || value.isNull()) return std::nullopt;
    const QString text = latinDigits(value.toString().trimmed());
    const qsizetype y = monthForm.indexOf(u"yyyy"_s), m = monthForm.indexOf(u"mm"_s);
    if (y < 0 || m < 0 || text.size() < monthForm.size()) return std::nullopt;
    // Every other character of the form stands for itself.
    for (qsizetype i = 0; i < monthForm.size(); ++i) {
        const bool inYear = i >= y && i < y + 4, inMonth = i >= m && i < m + 2;
        if (inYear || inMonth) {
            if (!text[i].isDigit()) return std::nullopt;
        } else if (text[i] != monthForm[i]) {
            return std::nullopt;
        }
    }
    const int year = text.mid(y, 4).toInt(), month = text.mid(m, 2).toInt();
    if (year < 1 || month < 1 || month > 12) return std::nullopt;
    return year * 12 + month - 1;
}

QString PayslipColumns::MonthText(int monthNumber) const {
    QString text = monthForm;
    text.replace(text.indexOf(u"yyyy"_s), 4, u"%1"_s.arg(monthNumber / 12, 4, 10, QChar(u'0')));
    text.replace(text.indexOf(u"mm"_s), 2, u"%1"_s.arg(monthNumber % 12 + 1, 2, 10, QChar(u'0')));
    return text;
}

}  // namespace kav::data
