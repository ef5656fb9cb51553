#include "session/Vb.h"

#include <QRegularExpression>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::vb {

namespace {

[[noreturn]] void overflow() {
    throw KavError(KavError::Kind::Overflow, u"سرريز عددي: مقدار خارج از محدوده است (Overflow)."_s);
}

[[noreturn]] void typeMismatch(const QString& text) {
    throw KavError(KavError::Kind::TypeMismatch,
                   u"مقدار «%1» عدد نيست (Type mismatch)."_s.arg(text));
}

// Rounds to the nearest whole number, halves to even.
double roundHalfEven(double value) { return std::nearbyint(value); }

// Reads the number at the start of text from position pos; returns the characters used.
// Accepts: sign, digits, point, digits, exponent. Blanks are skipped as the runtime does.
qsizetype scanNumber(const QString& text, qsizetype pos, QString* out) {
    const qsizetype n = text.size();
    auto skipBlanks = [&](qsizetype& i) {
        while (i < n &&
               (text[i] == u' ' || text[i] == u'\t' || text[i] == u'\n' || text[i] == u'\r'))
            ++i;
    };
    qsizetype i = pos;
    skipBlanks(i);
    QString s;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) {
        s += text[i];
        ++i;
        skipBlanks(i);
    }
    bool digits = false;
    while (i < n) {
        if (text[i].isDigit() && text[i].unicode() < 128) {
            s += text[i];
            digits = true;
        } else if (text[i] != u' ' && text[i] != u'\t') {
            break;
        }
        ++i;
    }
    if (i < n && text[i] == u'.') {
        s += u'.';
        ++i;
        while (i < n) {
            if (text[i].isDigit() && text[i].unicode() < 128) {
                s += text[i];
                digits = true;
            } else if (text[i] != u' ' && text[i] != u'\t') {
                break;
            }
            ++i;
        }
    }
    if (!digits) {
        *out = QString();
        return 0;
    }
    if (i < n && (text[i] == u'e' || text[i] == u'E')) {
        qsizetype j = i + 1;
        QString e = u"e"_s;
        if (j < n && (text[j] == u'+' || text[j] == u'-')) e += text[j++];
        qsizetype start = j;
        while (j < n && text[j].isDigit() && text[j].unicode() < 128) e += text[j++];
        if (j > start) {
            s += e;
            i = j;
        }
    }
    *out = s;
    return i - pos;
}

}  // namespace

double Val(const QString& text) {
    QString number;
    scanNumber(text, 0, &number);
    if (number.isEmpty()) return 0.0;
    // An exponent too large for a double is the overflow error; one too small reads as 0.
    const QByteArray latin = number.toLatin1();
    const double v = std::strtod(latin.constData(), nullptr);
    if (std::isinf(v)) overflow();
    return v;
}

bool IsNumeric(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) return false;
    QString number;
    const qsizetype used = scanNumber(t, 0, &number);
    // Blanks inside the digits are read by Val but refused by a conversion of the whole text.
    if (t.contains(u' ') || t.contains(u'\t')) return false;
    return !number.isEmpty() && used == t.size();
}

double CDbl(const QString& text) {
    if (!IsNumeric(text)) typeMismatch(text);
    return Val(text);
}

qint16 CInt(double value) {
    if (std::isnan(value)) overflow();
    const double r = roundHalfEven(value);
    if (r < std::numeric_limits<qint16>::min() || r > std::numeric_limits<qint16>::max())
        overflow();
    return static_cast<qint16>(r);
}

qint32 CLng(double value) {
    if (std::isnan(value)) overflow();
    const double r = roundHalfEven(value);
    if (r < double(std::numeric_limits<qint32>::min()) ||
        r > double(std::numeric_limits<qint32>::max()))
        overflow();
    return static_cast<qint32>(r);
}

qint16 CInt(const QString& text) { return CInt(CDbl(text)); }
qint32 CLng(const QString& text) { return CLng(CDbl(text)); }

double Int(double value) { return std::floor(value); }

QString CStr(double value) {
    if (value == 0.0) return u"0"_s;
    // Fifteen significant digits, as the runtime prints a double.
    QString s = QString::number(value, 'g', 15);
    if (s.contains(u'e')) {
        // Large or tiny numbers: the runtime's "1.5E+20" form.
        const qsizetype e = s.indexOf(u'e');
        QString mant = s.left(e);
        QString exp = s.mid(e + 1);
        const QChar sign = exp.startsWith(u'-') ? u'-' : u'+';
        if (exp.startsWith(u'+') || exp.startsWith(u'-')) exp.remove(0, 1);
        while (exp.size() > 2 && exp.startsWith(u'0')) exp.remove(0, 1);
        if (exp.size() < 2) exp.prepend(u'0');
        return mant + u'E' + sign + exp;
    }
    return s;
}

QString Str(double value) {
    QString s = CStr(value);
    // Str drops the zero before the point: 0.5 -> " .5", -0.5 -> "-.5".
    if (s.startsWith(u"0."))
        s.remove(0, 1);
    else if (s.startsWith(u"-0."))
        s.remove(1, 1);
    return value >= 0 ? u' ' + s : s;
}

Currency Currency::fromDouble(double value) {
    if (!std::isfinite(value)) overflow();
    // The whole part and the fraction apart: both are exact in a double, so the amount is
    // scaled without losing the units near the top of the range.
    const double whole = std::trunc(value);
    if (std::fabs(whole) > double(std::numeric_limits<qint64>::max() / Scale) + 1) overflow();
    const double fraction = roundHalfEven((value - whole) * double(Scale));
    qint64 raw = 0;
    if (__builtin_mul_overflow(static_cast<qint64>(whole), Scale, &raw) ||
        __builtin_add_overflow(raw, static_cast<qint64>(fraction), &raw))
        overflow();
    return fromRaw(raw);
}

QString Currency::toString() const {
    const bool negative = raw_ < 0;
    const quint64 magnitude = negative ? quint64(0) - quint64(raw_) : quint64(raw_);
    QString whole = QString::number(magnitude / Scale);
    quint64 frac = magnitude % Scale;
    QString text = whole;
    if (frac != 0) {
        QString f = QString::number(frac).rightJustified(4, u'0');
        while (f.endsWith(u'0')) f.chop(1);
        text += u'.' + f;
    }
    return negative ? u'-' + text : text;
}

Currency operator+(Currency a, Currency b) {
    qint64 r;
    if (__builtin_add_overflow(a.raw_, b.raw_, &r)) overflow();
    return Currency::fromRaw(r);
}

Currency operator-(Currency a, Currency b) {
    qint64 r;
    if (__builtin_sub_overflow(a.raw_, b.raw_, &r)) overflow();
    return Currency::fromRaw(r);
}

Currency CCur(double value) { return Currency::fromDouble(value); }

Currency CCur(const QString& text) {
    if (!IsNumeric(text)) typeMismatch(text);
    // The text is read exactly, not through a double, so large amounts keep every rial.
    const QString t = text.trimmed();
    if (t.contains(u'e') || t.contains(u'E')) return Currency::fromDouble(Val(t));
    QString digits = t;
    bool negative = false;
    if (digits.startsWith(u'+') || digits.startsWith(u'-')) {
        negative = digits.startsWith(u'-');
        digits.remove(0, 1);
    }
    digits.remove(u' ');
    digits.remove(u'\t');
    const qsizetype point = digits.indexOf(u'.');
    QString whole = point < 0 ? digits : digits.left(point);
    QString frac = point < 0 ? QString() : digits.mid(point + 1);
    if (whole.isEmpty()) whole = u"0"_s;
    // Four decimals, the fifth and later rounded half to even.
    QString four = frac.left(4).leftJustified(4, u'0');
    const QString rest = frac.mid(4);
    // The magnitude in ten-thousandths, unsigned, so that the most negative amount fits;
    // every step is checked, so an amount past either end is the overflow error.
    bool ok = false;
    const quint64 w = whole.toULongLong(&ok);
    if (!ok) overflow();
    quint64 magnitude = 0;
    if (__builtin_mul_overflow(w, quint64(Currency::Scale), &magnitude) ||
        __builtin_add_overflow(magnitude, four.toULongLong(), &magnitude))
        overflow();
    if (!rest.isEmpty()) {
        const int first = rest[0].digitValue();
        const bool tail = rest.mid(1).contains(QRegularExpression(u"[1-9]"_s));
        if ((first > 5 || (first == 5 && (tail || (magnitude % 2) != 0))) &&
            __builtin_add_overflow(magnitude, quint64(1), &magnitude))
            overflow();
    }
    const quint64 limit = negative ? quint64(std::numeric_limits<qint64>::max()) + 1
                                   : quint64(std::numeric_limits<qint64>::max());
    if (magnitude > limit) overflow();
    return Currency::fromRaw(negative ? qint64(quint64(0) - magnitude) : qint64(magnitude));
}

}  // namespace kav::vb
