// Generated inputs from fixed seeds: conversions, text procedures, connection strings and
// Jalali dates raise only the errors they are meant to and keep their invariants; expected
// values are worked out another way (integer arithmetic, Qt, SQLite, a driver manager).

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <cmath>
#include <limits>
#include <random>

#include "base/Errors.h"
#include "controls/FarsiDateText.h"
#include "data/ConnectionString.h"
#include "session/TextProcs.h"
#include "session/Vb.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

std::mt19937_64 rng;

int uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }
QString oneOf(const QStringList& tokens) { return tokens[uniform(0, int(tokens.size()) - 1)]; }
// Up to maxLength characters of the alphabet (or tokens of the list).
QString pick(const QStringList& tokens, int maxLength) {
    QString s;
    for (int n = uniform(0, maxLength); n > 0; --n) s += oneOf(tokens);
    return s;
}
QString pick(const QString& alphabet, int maxLength) {
    return pick(alphabet.split(QString(), Qt::SkipEmptyParts), maxLength);
}
QString digits(int low, int high) {
    QString s;
    for (int n = uniform(low, high); n > 0; --n) s += QChar(u'0' + uniform(0, 9));
    return s;
}

const QString kNumberish = u"0123456789  +-.eE/,'x;٫۱۲۳٤٥"_s;

template <class F>
std::optional<KavError::Kind> raised(F&& f) {
    try {
        f();
    } catch (const KavError& e) {
        return e.kind();
    }
    return std::nullopt;
}

// A decimal text's value in ten-thousandths, halves to even, from its digits alone; nothing
// when it leaves the 64-bit range.
std::optional<qint64> currencyRaw(bool negative, const QString& whole, const QString& fraction) {
    __int128 v = 0;
    for (const QChar c : whole + fraction.left(4).leftJustified(4, u'0'))
        v = std::min<__int128>(v * 10 + (c.unicode() - u'0'), __int128(1) << 100);
    const QString rest = fraction.mid(4);
    if (!rest.isEmpty()) {
        const bool tail = rest.mid(1).count(u'0') < rest.size() - 1;
        if (rest[0] > u'5' || (rest[0] == u'5' && (tail || v % 2 == 1))) ++v;
    }
    v = negative ? -v : v;
    if (v > std::numeric_limits<qint64>::max() || v < std::numeric_limits<qint64>::min()) return {};
    return qint64(v);
}

}  // namespace

TEST(Properties, ValAndCurrencyReadNumbersExactly) {
    rng.seed(1401);
    for (int i = 0; i < 4000; ++i) {
        const QString garbage = pick(kNumberish, 24);
        const auto kind = raised([&] { vb::Val(garbage); });
        EXPECT_TRUE(!kind || *kind == KavError::Kind::Overflow) << garbage.toStdString();
        // A number with blanks before it and text after it that cannot continue it.
        const QString number = oneOf({u""_s, u"-"_s, u"+"_s}) + digits(1, 15) +
                               (uniform(0, 1) ? u"."_s + digits(1, 8) : QString());
        const QString text = QString(uniform(0, 3), u' ') + number +
                             oneOf({u""_s, u"x"_s, u"/12/05"_s, u"; drop"_s, u"'"_s, u"-3"_s});
        EXPECT_EQ(vb::Val(text), number.toDouble()) << text.toStdString();
    }
    for (int i = 0; i < 5000; ++i) {
        const bool negative = uniform(0, 1);
        const QString whole = digits(1, uniform(0, 4) ? 12 : 17);
        const QString fraction = uniform(0, 1) ? digits(0, 8) : QString();
        const QString text = (negative ? u"-"_s : QString()) + whole +
                             (fraction.isEmpty() ? QString() : u"."_s + fraction);
        SCOPED_TRACE(text.toStdString());
        const std::optional<qint64> raw = currencyRaw(negative, whole, fraction);
        if (!raw) {
            EXPECT_EQ(raised([&] { vb::CCur(text); }), KavError::Kind::Overflow);
            continue;
        }
        const vb::Currency c = vb::CCur(text);
        EXPECT_EQ(c.raw(), *raw);
        EXPECT_EQ(vb::CCur(c.toString()).raw(), *raw);
        if (negative) continue;
        // Grouped for display and some digits Persian or Arabic-Indic: the same amount.
        QString shown = GroupDigits(text);
        for (QChar& ch : shown)
            if (ch.isDigit() && uniform(0, 2) > 0)
                ch = QChar(char16_t((uniform(0, 1) ? 0x06F0 : 0x0660) + (ch.unicode() - u'0')));
        EXPECT_EQ(AmountCurrency(shown).raw(), *raw) << shown.toStdString();
    }
}

TEST(Properties, WholeNumbersRoundHalvesToEvenAndRaiseOutsideTheirRangeGroupingKeepsTheDigits) {
    rng.seed(1403);
    for (int i = 0; i < 4000; ++i) {
        // Quarters around and beyond both ranges, so halves and both edges come up often.
        const double value =
            std::uniform_int_distribution<qint64>(-12000000000LL, 12000000000LL)(rng) /
            (uniform(0, 1) ? 4.0 : 400000.0);
        SCOPED_TRACE(value);
        const double nearest = std::nearbyint(value);  // the default rounding: halves to even
        const auto check = [&](auto convert, double low, double high) {
            const auto kind = raised([&] { convert(value); });
            if (nearest < low || nearest > high)
                EXPECT_EQ(kind, KavError::Kind::Overflow);
            else
                EXPECT_EQ(double(convert(value)), nearest);
        };
        check([](double v) { return vb::CInt(v); }, -32768, 32767);
        check([](double v) { return vb::CLng(v); }, -2147483648.0, 2147483647.0);

        // Grouping: the digits come back when the separators are taken out, and every group
        // after the first has three digits.
        const QString whole = QString::number(std::uniform_int_distribution<qint64>(
            0, uniform(0, 1) ? 99999 : std::numeric_limits<qint64>::max())(rng));
        const QString number = oneOf({u""_s, u"-"_s}) + whole +
                               (uniform(0, 2) == 0 ? u"."_s + digits(1, 3) : QString());
        const QString grouped = GroupDigits(number);
        EXPECT_EQ(QString(grouped).remove(u'/'), number) << number.toStdString();
        const QStringList groups = QString(grouped).remove(u'-').section(u'.', 0, 0).split(u'/');
        if (whole.size() <= 4) EXPECT_EQ(groups.size(), 1) << grouped.toStdString();
        for (qsizetype g = 1; g < groups.size(); ++g)
            EXPECT_EQ(groups[g].size(), 3) << grouped.toStdString();
        // A grid cell reads any text at all as a number, and the grouped number as itself.
        EXPECT_EQ(CellNumber(grouped).toDouble(), number.toDouble());
        CellNumber(pick(kNumberish, 16));
    }
}

TEST(Properties, DatesReadAsNumbersAndAnythingElseAsANumberOrAMismatch) {
    rng.seed(1405);
    const QString anything = kNumberish + u"TrueFalse ۲۰ آب\t"_s;
    for (int i = 0; i < 3000; ++i) {
        // Zero-padded texts sort as the numbers do, so the exact number says the order too.
        const int y = uniform(1000, 1999), m = uniform(1, 12), d = uniform(1, 31);
        const QString date =
            u"%1/%2/%3"_s.arg(y).arg(m, 2, 10, QChar(u'0')).arg(d, 2, 10, QChar(u'0'));
        EXPECT_EQ(CellNumber(date).toDouble(), y * 10000.0 + m * 100 + d) << date.toStdString();
        EXPECT_EQ(DateDigits(date).raw(), (y * 10000LL + m * 100 + d) * 10000);
        const QString other = pick(anything, 12);
        const auto kind = raised([&] { DateDigits(other); });
        EXPECT_TRUE(!kind || *kind == KavError::Kind::TypeMismatch ||
                    *kind == KavError::Kind::Overflow)
            << other.toStdString();
    }
}

TEST(Properties, AQuotedTextReadsBackAsTheOriginalThroughSqlite) {
    rng.seed(1406);
    QStringList hostile =
        u"''\";-/*%_[]\\\n\t\r;select drop ' or '1'='1 آيا مطمئن هستيد؟ ي ك ۱۲ \u200c\u2066"_s
            .split(QString(), Qt::SkipEmptyParts);
    hostile << u"😀"_s << u"--"_s << u"/*"_s << u"*/"_s << u"'; drop table tblHRLoan; --"_s;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"quote"_s);
        db.setDatabaseName(u":memory:"_s);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        for (int i = 0; i < 4000; ++i) {
            const QString text = pick(hostile, 40);
            ASSERT_TRUE(q.exec(u"select '"_s + SqlQuote(text) + u"'"_s)) << text.toStdString();
            ASSERT_TRUE(q.next());
            EXPECT_EQ(q.value(0).toString(), text);
            EXPECT_FALSE(q.next());  // one row: the text, nothing run besides
        }
    }
    QSqlDatabase::removeDatabase(u"quote"_s);
}

namespace {

// An ODBC connection string's attributes as a driver manager reads them: key=value; or
// key={value} with }} for a brace.
QMap<QString, QString> odbcAttributes(const QString& text) {
    static const QRegularExpression attribute(u"([^=;]+)=(\\{(?:[^}]|\\}\\})*\\}|[^;]*);?"_s);
    QMap<QString, QString> out;
    for (const QRegularExpressionMatch& m : attribute.globalMatch(text)) {
        const QString value = m.captured(2);
        out.insert(m.captured(1).toLower(),
                   value.startsWith(u'{') ? value.mid(1, value.size() - 2).replace(u"}}"_s, u"}"_s)
                                          : value);
    }
    return out;
}

// A value in double quotes, as OLE DB writes one that holds separators.
QString oleQuoted(const QString& value) {
    return u'"' + QString(value).replace(u"\""_s, u"\"\""_s) + u'"';
}

}  // namespace

TEST(Properties, ConnectionStringsMapEveryValueIntactAndErrorsNeverShowThePassword) {
    rng.seed(1407);
    const QString valueChars = u"abcXYZ019 ;'\"{}=.,\\-_آبپ"_s;
    for (int i = 0; i < 3000; ++i) {
        const QString server =
            u"srv"_s + pick(u"abc019-."_s, 8) + oneOf({u""_s, u",1433"_s, u"\\INST"_s});
        const QString catalog = u"c"_s + pick(valueChars, 12), user = u"u"_s + pick(valueChars, 12);
        const QString password = pick(valueChars, 16) + u"P"_s;
        QStringList parts = {
            oneOf({u"Data Source"_s, u"DATA SOURCE"_s, u"data source"_s}) + u"="_s + server,
            u"Initial Catalog="_s + oleQuoted(catalog), u"User ID="_s + oleQuoted(user),
            u"Password="_s + oleQuoted(password), u"Persist Security Info=True"_s};
        std::shuffle(parts.begin(), parts.end(), rng);
        const QString ole = u"Provider=SQLOLEDB.1;"_s + parts.join(u"; "_s);
        SCOPED_TRACE(ole.toStdString());
        const QMap<QString, QString> odbc =
            odbcAttributes(data::MapConnectionString(ole, {u"FreeTDS"_s}, {}).databaseName);
        EXPECT_EQ(odbc.value(u"server"_s), server);
        EXPECT_EQ(odbc.value(u"database"_s), catalog);
        EXPECT_EQ(odbc.value(u"uid"_s), user);
        EXPECT_EQ(odbc.value(u"pwd"_s), password);
        EXPECT_EQ(odbc.value(u"driver"_s), u"FreeTDS"_s);

        // Broken strings: a connection error, and the password never in its text.
        const QString secret = u"Sec"_s + digits(4, 6) + u"ret"_s;
        QString broken = pick(u"Provider=SQLOLEDB;Data Source=x;'\"{} =;"_s, 30);
        broken.insert(
            uniform(0, int(broken.size())),
            oneOf({u";Password="_s, u";PWD="_s, u";Password "_s, u";pwd "_s, u";Password='"_s}) +
                secret);
        try {
            data::MapConnectionString(broken, {u"FreeTDS"_s}, {});
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Connection);
            EXPECT_FALSE(e.message().contains(secret))
                << broken.toStdString() << " -> " << e.message().toStdString();
        }
    }
}

TEST(Properties, EveryJalaliDayFrom1300To1500ReadsBackFromItsText) {
    const QCalendar jalali = controls::JalaliCalendar();
    QString previous;
    for (QDate day = jalali.dateFromParts(1300, 1, 1); day < jalali.dateFromParts(1501, 1, 1);
         day = day.addDays(1)) {
        const QString text = controls::FarsiDateText(day);
        ASSERT_EQ(controls::ParseFarsiDate(text), day) << text.toStdString();
        EXPECT_GT(text, previous);  // texts sort as the days do
        previous = text;
        // Unpadded, with blanks around the fields, in Persian digits: the same day.
        const QCalendar::YearMonthDay p = jalali.partsFromDate(day);
        QString loose = u" %1/ %2/%3 "_s.arg(p.year).arg(p.month).arg(p.day);
        for (QChar& c : loose)
            if (c.isDigit()) c = QChar(char16_t(0x06F0 + (c.unicode() - u'0')));
        EXPECT_EQ(controls::ParseFarsiDate(loose), day) << loose.toStdString();
        if (p.day == jalali.daysInMonth(p.month, p.year)) {
            // The day after the month's last: refused when typed, the last day when stored.
            const QString past = u"%1/%2/%3"_s.arg(p.year).arg(p.month).arg(p.day + 1);
            EXPECT_FALSE(controls::ParseFarsiDate(past).isValid()) << past.toStdString();
            EXPECT_EQ(controls::ParseStoredFarsiDate(past), day) << past.toStdString();
        }
    }
}
