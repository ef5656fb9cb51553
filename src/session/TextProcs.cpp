#include "session/TextProcs.h"

#include <algorithm>

#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav {

QString LatinDigits(const QString& text) {
    QString out = text;
    for (QChar& c : out) {
        const char16_t u = c.unicode();
        if (u >= 0x06F0 && u <= 0x06F9)
            c = QChar(u'0' + (u - 0x06F0));
        else if (u >= 0x0660 && u <= 0x0669)
            c = QChar(u'0' + (u - 0x0660));
    }
    return out;
}

QString FieldText(const QVariant& v) {
    if (v.isNull()) return QString();
    if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float)
        return vb::CStr(v.toDouble());
    return v.toString();
}

QString SqlQuote(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\'')
            out += u"''"_s;
        else
            out += c;
    }
    return out;
}

vb::Currency DateDigits(const QString& text) {
    QString digits = text;
    digits.remove(u'/');
    return vb::CCur(digits);
}

QString GroupDigits(const QVariant& value) {
    QString text;
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        text = vb::CStr(value.toDouble());
    else
        text = value.toString();
    // Only the digits of the whole-number part are grouped: a sign before them and a
    // fraction (or anything else) after them stay as they are. Up to four digits stay
    // ungrouped; longer runs are grouped by threes from the right. A text that does not
    // start with digits is returned unchanged.
    qsizetype first = 0;
    if (first < text.size() && (text[first] == u'-' || text[first] == u'+')) ++first;
    qsizetype end = first;
    while (end < text.size() && text[end] >= u'0' && text[end] <= u'9') ++end;
    const QString digits = text.mid(first, end - first);
    qsizetype n = digits.size();
    if (n <= 4) return text;
    QString grouped;
    while (n > 3) {
        grouped.prepend(u'/' + digits.mid(n - 3, 3));
        n -= 3;
    }
    return text.left(first) + digits.left(n) + grouped + text.mid(end);
}

QByteArrayView GroupedAmountUtf8(vb::Currency amount, std::array<char, 40>& buffer) {
    const qint64 raw = amount.raw();
    const quint64 magnitude = raw < 0 ? quint64(0) - quint64(raw) : quint64(raw);
    quint64 whole = magnitude / quint64(vb::Currency::Scale);
    const quint64 frac = magnitude % quint64(vb::Currency::Scale);
    // Written from the end: the fraction without its trailing zeros, the whole number grouped
    // by threes when it has more than four digits, the sign.
    char* end = buffer.data() + buffer.size();
    char* p = end;
    if (frac != 0) {
        char digits[4];
        quint64 f = frac;
        for (int i = 3; i >= 0; --i, f /= 10) digits[i] = char('0' + f % 10);
        int n = 4;
        while (digits[n - 1] == '0') --n;
        p -= n;
        std::copy_n(digits, n, p);
        *--p = '.';
    }
    char plain[24];
    int n = 0;
    do {
        plain[n++] = char('0' + whole % 10);
        whole /= 10;
    } while (whole != 0);
    for (int i = 0; i < n; ++i) {
        if (n > 4 && i > 0 && i % 3 == 0) *--p = '/';
        *--p = plain[i];
    }
    if (raw < 0) *--p = '-';
    return QByteArrayView(p, end - p);
}

QVariant CellNumber(const QString& text) {
    if (text.trimmed().isEmpty()) return QVariant::fromValue<qint16>(-1);
    if (text == u"True") return QVariant::fromValue<qint16>(1);
    QString digits = text;
    digits.remove(u'/');
    try {
        return QVariant(vb::Val(digits));
    } catch (const KavError&) {
        // A number past the range of a double ("1e999") is ignored like every other error:
        // the cell counts as 0.
        return QVariant(0.0);
    }
}

double AmountValue(const QString& text) {
    QString plain = LatinDigits(text);
    plain.remove(u'/');
    return vb::Val(plain);
}

QString AmountBeyondRangeText(const QString& typed, const QString& boxCaption) {
    // The largest whole amount of the currency range, grouped as the boxes show amounts.
    const QString largest = GroupDigits(u"922337203685477"_s);
    return u"مبلغ «%1» در «%2» از بزرگ\u200Cترين مبلغ ممکن (%3) بيشتر است."_s.arg(
        typed.trimmed(), boxCaption, largest);
}

vb::Currency AmountCurrency(const QString& text) {
    QString plain = LatinDigits(text);
    plain.remove(u'/');
    return vb::CCur(plain);
}

}  // namespace kav
