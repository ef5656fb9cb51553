#include "controls/FarsiDateText.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

struct Fields {
    int year = 0, month = 0, day = 0;
};

// A field as a whole number: blanks around it are allowed, inside it only digits.
bool readField(const QString& field, int* value) {
    const QString t = field.trimmed();
    if (t.isEmpty() || t.size() > 9) return false;
    int v = 0;
    for (const QChar c : t) {
        if (c < u'0' || c > u'9') return false;
        v = v * 10 + (c.unicode() - u'0');
    }
    *value = v;
    return true;
}

bool readFields(const QString& text, Fields* f) {
    const QStringList parts = LatinDigits(text).split(u'/');
    if (parts.size() != 3) return false;
    if (!readField(parts[0], &f->year) || !readField(parts[1], &f->month) ||
        !readField(parts[2], &f->day))
        return false;
    return f->year >= 1 && f->year <= 9999 && f->month >= 1 && f->month <= 12 && f->day >= 1;
}

}  // namespace

QCalendar JalaliCalendar() { return QCalendar(QCalendar::System::Jalali); }

QDate ParseFarsiDate(const QString& text) {
    Fields f;
    if (!readFields(text, &f)) return {};
    return JalaliCalendar().dateFromParts(f.year, f.month, f.day);
}

QDate ParseStoredFarsiDate(const QString& text) {
    Fields f;
    if (!readFields(text, &f)) return {};
    const QCalendar cal = JalaliCalendar();
    const int last = cal.daysInMonth(f.month, f.year);
    if (last <= 0) return {};
    return cal.dateFromParts(f.year, f.month, qMin(f.day, last));
}

QString FarsiDateText(const QDate& date) {
    if (!date.isValid()) return {};
    const QCalendar::YearMonthDay p = JalaliCalendar().partsFromDate(date);
    if (!p.isValid()) return {};
    return u"%1/%2/%3"_s.arg(p.year, 4, 10, QChar(u'0'))
        .arg(p.month, 2, 10, QChar(u'0'))
        .arg(p.day, 2, 10, QChar(u'0'));
}

}  // namespace kav::controls
