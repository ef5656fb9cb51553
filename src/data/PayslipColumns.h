#pragma once

// The payslip table's columns beyond the loan id. The module's own script names them
// EmployeeID, PayMonth ("yyyy/mm") and PaidValue; a suite that names them otherwise, or keeps
// the month in another form, says so in the settings (group "Payslip": EmployeeColumn,
// MonthColumn, MonthForm, PaidColumn). Whether they are there at all is found out once per
// connection: without them the schedule and the monthly register show planned amounts only.

#include <QByteArrayView>
#include <QString>
#include <QVariant>
#include <optional>

class QSettings;

namespace kav::data {

struct PayslipColumns {
    QString employee = QStringLiteral("EmployeeID");
    QString month = QStringLiteral("PayMonth");
    // The month's text form: "yyyy" and "mm" stand for the Jalali year and month, every other
    // character stands for itself ("yyyy/mm", "yyyymm", "yyyy-mm"). A longer stored text (a
    // day after the month) is read by its leading part.
    QString monthForm = QStringLiteral("yyyy/mm");
    QString paid = QStringLiteral("PaidValue");

    // The group's values over the defaults; a blank value keeps the default. A form without
    // both "yyyy" and "mm" is refused by name (KavError, Usage).
    static PayslipColumns FromSettings(QSettings& settings);
    // Writes the values that differ from the defaults (and removes the others).
    void Store(QSettings& settings) const;

    // A stored month (text or number, Persian digits too) as a month number
    // (year * 12 + month - 1); nothing when it is not one in this form.
    std::optional<int> MonthNumber(const QVariant& value) const;
    // The same of the stored text in UTF-8, as the database hands it over (a number as its
    // decimal text); a text of plain ASCII is read without decoding it.
    std::optional<int> MonthNumber(QByteArrayView utf8) const;
    // The month number in this form, as it is stored ("1403/07" for "yyyy/mm").
    QString MonthText(int monthNumber) const;

    bool operator==(const PayslipColumns&) const = default;
};

// The settings group.
inline const QString PayslipSettingsGroup = QStringLiteral("Payslip");

}  // namespace kav::data
