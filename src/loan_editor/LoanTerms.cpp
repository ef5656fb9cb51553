#include "loan_editor/LoanTerms.h"

#include <cmath>

#include "base/Errors.h"
#include "loan_editor/LoanEditorTexts.h"
#include "session/Messages.h"
#include "session/TextProcs.h"

using namespace Qt::StringLiterals;

namespace kav::loan {

namespace {

QString warningTitle() { return WarningTitle(); }

bool isBlank(const QString& text) { return text.trimmed().isEmpty(); }

constexpr int KeyBackspace = 8;

bool isAmountKey(int keyAscii) {
    return (keyAscii >= u'0' && keyAscii <= u'9') || keyAscii == u'.' || keyAscii == KeyBackspace;
}

// A result that no box can hold (an amount divided by a vanishing one).
double finite(double value) {
    if (!std::isfinite(value))
        throw KavError(KavError::Kind::Overflow,
                       u"سرريز عددي: حاصل محاسبه اقساط خارج از محدوده است."_s);
    return value;
}

bool isIntegral(const QVariant& v) {
    switch (v.typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
            return true;
        default:
            return false;
    }
}

bool isFloating(const QVariant& v) {
    return v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float;
}

// A database value as currency: numbers exactly, texts through the currency conversion
// (a text that is not a number raises the type-mismatch error).
vb::Currency currencyOf(const QVariant& v) {
    if (isFloating(v)) return vb::CCur(v.toDouble());
    if (isIntegral(v)) return vb::CCur(QString::number(v.toLongLong()));
    return vb::CCur(v.toString());
}

// A database value as a double; a text that is not a number raises the type-mismatch error.
double numberOf(const QVariant& v) {
    if (isFloating(v) || isIntegral(v)) return v.toDouble();
    return vb::CDbl(v.toString());
}

// An amount rounded to a whole number, halves to even (2.5 -> 2, 3.5 -> 4).
qint64 wholeNumber(vb::Currency amount) {
    const qint64 raw = amount.raw();
    qint64 whole = raw / vb::Currency::Scale;  // towards zero
    const qint64 rest = raw % vb::Currency::Scale;
    const qint64 half = vb::Currency::Scale / 2;
    const qint64 away = rest < 0 ? -rest : rest;
    if (away > half || (away == half && whole % 2 != 0)) whole += rest < 0 ? -1 : 1;
    return whole;
}

bool isAbsent(const QVariant& v) {
    return v.isNull() || (!isFloating(v) && !isIntegral(v) && isBlank(v.toString()));
}

// Shared by leaving the amount and leaving the monthly instalment: the count that the monthly
// instalment gives and the remainder it leaves.
void countFromPerMonth(const TermsFields& f, TermsUpdate& u) {
    if (isBlank(f.loanValueText) || isBlank(f.perMonthText) || AmountValue(f.perMonthText) == 0)
        return;
    const double amount = AmountValue(f.loanValueValue);
    const double perMonth = AmountValue(f.perMonthValue);
    if (perMonth == 0)
        throw KavError(KavError::Kind::DivisionByZero,
                       u"مبلغ قسط ماهيانه صفر است و تعداد اقساط را "
                       u"نمي‌توان حساب کرد (Division by zero)."_s);
    const QString count = vb::CStr(finite(vb::Int(amount / perMonth)));
    u.payBackNumber = count;
    // The remainder uses the count as the box now holds it.
    u.rem = vb::CStr(amount - perMonth * vb::Val(count));
}

}  // namespace

void RequireAmountsInRange(const TermsFields& f) {
    namespace T = editor_texts;
    const std::pair<const QString*, QString> boxes[] = {
        {&f.originalValueValue, T::LabelOriginalValue},
        {&f.loanValueValue, T::LabelRequestedValue},
        {&f.perMonthValue, T::LabelPerMonth}};
    for (const auto& [value, label] : boxes) {
        if (isBlank(*value)) continue;
        try {
            AmountCurrency(*value);
        } catch (const KavError& e) {
            if (e.kind() == KavError::Kind::Overflow)
                throw KavError(e.kind(),
                               AmountBeyondRangeText(*value, QString(label).remove(u':')));
        }
    }
}

QString CeilingText(const QVariant& maxValue) {
    if (maxValue.isNull()) return {};
    if (!isFloating(maxValue) && !isIntegral(maxValue) && !vb::IsNumeric(maxValue.toString()))
        return maxValue.toString();
    return currencyOf(maxValue).toString();
}

std::optional<Message> CeilingWarning(const QString& amountText, const QVariant& maxValue) {
    if (maxValue.isNull()) return std::nullopt;
    const vb::Currency ceiling = currencyOf(maxValue);
    if (vb::CCur(AmountValue(amountText)) <= ceiling) return std::nullopt;
    return Message{warningTitle(), u"مبلغ درخواستي شما از سقف  وام ("_s + ceiling.toString() +
                                       u") بيشتر شده است."_s};
}

LoanValueKey LoanValueKeyPress(qint32 mode, bool typeSelected, int keyAscii) {
    LoanValueKey r;
    r.keyAscii = keyAscii;
    if (mode != 1 && mode != 2) return r;
    if (!typeSelected) {
        r.warning = Message{warningTitle(), editor_texts::NoTypeWarning};
        r.clearAmountAndFocusType = true;
        r.keyAscii = 0;
        return r;
    }
    if (!isAmountKey(keyAscii)) r.keyAscii = 0;
    return r;
}

int PerMonthKeyPress(int keyAscii) { return isAmountKey(keyAscii) ? keyAscii : 0; }

std::optional<QString> OriginalValueLeft(const TermsFields& f) {
    if (!isBlank(f.loanValueText)) return std::nullopt;
    return f.originalValueValue;
}

vb::Currency PayBackNumberGotFocus(const QString& payBackNumber) {
    return vb::CCur(vb::Val(LatinDigits(payBackNumber)));
}

vb::Currency PerMonthGotFocus(const QString& perMonthValue) {
    return vb::CCur(AmountValue(perMonthValue));
}

TermsUpdate LoanValueLeft(const TermsFields& f, const QVariant& maxValue) {
    TermsUpdate u;
    try {
        u.warning = CeilingWarning(f.loanValueText, maxValue);
        countFromPerMonth(f, u);
        if (isBlank(f.loanValueText)) u.loanValue = f.originalValueValue;
    } catch (...) {
        u.error = std::current_exception();
    }
    return u;
}

namespace {

// Steps 2 and 3 of leaving the count: the instalment and remainder, then the options.
void instalmentFromCount(const TermsFields& f, TermsUpdate& u) {
    const QString countText = LatinDigits(f.payBackNumber);
    const double count = vb::Val(countText);
    if (isBlank(countText) || isBlank(f.loanValueText) || count == 0) return;
    const double amount = AmountValue(f.loanValueValue);
    // Rounded down to a whole unit; what that drops goes to the remainder.
    const QString perMonth = vb::CStr(finite(vb::Int(amount / count)));
    u.perMonth = perMonth;
    u.rem = vb::CStr(amount - AmountValue(perMonth) * count);

    // The first/last-month options only matter when the count does not divide the amount.
    // Both are rounded to whole numbers (halves to even) in 64 bits, so every amount the
    // currency holds can be tested.
    const qint64 wholeAmount = wholeNumber(AmountCurrency(f.loanValueText.trimmed()));
    const qint64 wholeCount = wholeNumber(vb::CCur(countText.trimmed()));
    if (wholeCount == 0)
        throw KavError(
            KavError::Kind::DivisionByZero,
            u"تعداد اقساط «%1» به عدد صحيح صفر گرد مي‌شود "
            u"و مانده تقسيم مبلغ وام بر آن تعريف نشده است "
            u"(Division by zero)."_s.arg(f.payBackNumber.trimmed()));
    u.remainderOptionsEnabled = wholeAmount % wholeCount != 0;
}

}  // namespace

TermsUpdate PayBackNumberLeft(const TermsFields& f, vb::Currency payBackNumberAtFocus) {
    TermsUpdate u;
    if (PayBackNumberGotFocus(f.payBackNumber) == payBackNumberAtFocus) return u;

    if (!f.payBackNumber.isEmpty() && !isBlank(f.beginDate))
        u.endDate = EndDateFromCount(f.payBackNumber, CountWidth::Int16, f.beginDate);
    try {
        instalmentFromCount(f, u);
    } catch (...) {
        u.error = std::current_exception();
    }
    return u;
}

TermsUpdate PerMonthLeft(const TermsFields& f, vb::Currency perMonthAtFocus) {
    TermsUpdate u;
    if (vb::CCur(AmountValue(f.perMonthText)) == perMonthAtFocus) return u;
    countFromPerMonth(f, u);
    try {
        const QString count = u.payBackNumber.value_or(f.payBackNumber);
        if (!count.isEmpty() && !isBlank(f.beginDate))
            u.endDate = EndDateFromCount(count, CountWidth::Int32, f.beginDate);
    } catch (...) {
        u.error = std::current_exception();
    }
    return u;
}

QString txtRemOnLoad(const QVariant& loanValue, const QVariant& monthlyValue,
                     const QVariant& payBackNumber) {
    if (isAbsent(loanValue) || isAbsent(monthlyValue) || isAbsent(payBackNumber)) return {};
    return vb::CStr(numberOf(loanValue) - numberOf(monthlyValue) * numberOf(payBackNumber));
}

}  // namespace kav::loan
