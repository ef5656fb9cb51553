// Generated inputs, thousands each, from fixed seeds: the conversions, the text procedures, the
// connection-string mapping and the Jalali dates never crash, raise only the errors they are
// meant to raise, and keep the invariants the windows rely on. Every expected value is worked
// out here independently (integer arithmetic, Qt's own parsing, SQLite reading a text back).

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUuid>
#include <iostream>
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

using Rng = std::mt19937_64;
qint64 inputsTried = 0;

int uniform(Rng& rng, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(rng);
}

QString pick(Rng& rng, const QString& alphabet, int maxLength) {
    QString s;
    const int n = uniform(rng, 0, maxLength);
    for (int i = 0; i < n; ++i) s += alphabet[uniform(rng, 0, int(alphabet.size()) - 1)];
    return s;
}

QString digits(Rng& rng, int low, int high) {
    QString s;
    const int n = uniform(rng, low, high);
    for (int i = 0; i < n; ++i) s += QChar(u'0' + uniform(rng, 0, 9));
    return s;
}

// A text of up to maxLength tokens (characters, or pairs that stand for one character).
QString pickTokens(Rng& rng, const QStringList& tokens, int maxLength) {
    QString s;
    const int n = uniform(rng, 0, maxLength);
    for (int i = 0; i < n; ++i) s += tokens[uniform(rng, 0, int(tokens.size()) - 1)];
    return s;
}

// Persian or Arabic-Indic digits in place of some Latin ones.
QString easternDigits(Rng& rng, const QString& text) {
    QString s = text;
    for (QChar& c : s)
        if (c >= u'0' && c <= u'9' && uniform(rng, 0, 2) > 0)
            c = QChar(char16_t((uniform(rng, 0, 1) ? 0x06F0 : 0x0660) + (c.unicode() - u'0')));
    return s;
}

const QString kNumberish = u"0123456789  +-.eE/,'x;٫۱۲۳٤٥"_s;

// The raised error's kind, or nothing.
template <class F>
std::optional<KavError::Kind> raised(F&& f) {
    try {
        f();
    } catch (const KavError& e) {
        return e.kind();
    }
    return std::nullopt;
}

// Half to even on a double whose fraction is exact (|x| well below 2^52).
double halfToEven(double x) {
    const double floor = std::floor(x);
    const double fraction = x - floor;
    if (fraction > 0.5) return floor + 1;
    if (fraction < 0.5) return floor;
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

// A decimal text's value in ten-thousandths, halves to even, from its digits alone; nothing
// when it leaves the 64-bit range.
std::optional<qint64> currencyRaw(bool negative, const QString& whole, const QString& fraction) {
    __int128 v = 0;
    for (const QChar c : whole) {
        v = v * 10 + (c.unicode() - u'0');
        if (v > (__int128(1) << 100)) return std::nullopt;
    }
    const QString four = fraction.left(4).leftJustified(4, u'0');
    for (const QChar c : four) v = v * 10 + (c.unicode() - u'0');
    const QString rest = fraction.mid(4);
    if (!rest.isEmpty()) {
        const int first = rest[0].unicode() - u'0';
        bool tail = false;
        for (const QChar c : rest.mid(1)) tail |= c != u'0';
        if (first > 5 || (first == 5 && (tail || v % 2 == 1))) ++v;
    }
    if (negative) v = -v;
    if (v > std::numeric_limits<qint64>::max() || v < std::numeric_limits<qint64>::min())
        return std::nullopt;
    return qint64(v);
}

// The plain text of an amount in ten-thousandths: no trailing zeros, no point for a whole one.
QString currencyText(qint64 raw) {
    const bool negative = raw < 0;
    const unsigned __int128 m = negative ? -__int128(raw) : __int128(raw);
    QString text = QString::number(quint64(m / 10000));
    QString fraction = QString::number(quint64(m % 10000)).rightJustified(4, u'0');
    while (fraction.endsWith(u'0')) fraction.chop(1);
    if (!fraction.isEmpty()) text += u'.' + fraction;
    return negative ? u'-' + text : text;
}

}  // namespace

TEST(Properties, ValReadsTheNumberAtTheStartAndOnlyAHugeExponentRaises) {
    Rng rng(1401);
    for (int i = 0; i < 4000; ++i, ++inputsTried) {
        const QString garbage = pick(rng, kNumberish, 24);
        const auto kind = raised([&] { vb::Val(garbage); });
        EXPECT_TRUE(!kind || *kind == KavError::Kind::Overflow) << garbage.toStdString();

        // A written number, with blanks before it and text after it that cannot continue it.
        const QString whole = digits(rng, 1, 15);
        const QString fraction = uniform(rng, 0, 1) ? u"."_s + digits(rng, 1, 8) : QString();
        const QString sign = QStringList{u""_s, u"-"_s, u"+"_s}[uniform(rng, 0, 2)];
        const QString number = sign + whole + fraction;
        const QString text = QString(uniform(rng, 0, 3), u' ') +
                             number + QStringList{u""_s,       u"x"_s, u"/12/05"_s,
                                                  u"; drop"_s, u"'"_s, u"-3"_s}[uniform(rng, 0, 5)];
        EXPECT_EQ(vb::Val(text), number.toDouble()) << text.toStdString();
    }
}

TEST(Properties, CIntAndCLngRoundHalvesToEvenAndOverflowOutsideTheirRange) {
    Rng rng(1402);
    const double fractions[] = {0.0, 0.5, 0.25, 0.75, 0.4999999, 0.5000001};
    for (int i = 0; i < 6000; ++i, ++inputsTried) {
        const double base = uniform(rng, 0, 1) ? double(uniform(rng, -40000, 40000))
                                               : double(uniform(rng, -1100000000, 1100000000)) * 2;
        const double x = base + fractions[uniform(rng, 0, 5)] * (uniform(rng, 0, 1) ? 1 : -1);
        const double expected = halfToEven(x);
        const bool fits16 = expected >= -32768 && expected <= 32767;
        const bool fits32 = expected >= -2147483648.0 && expected <= 2147483647.0;
        if (fits16)
            EXPECT_EQ(vb::CInt(x), qint16(expected)) << x;
        else
            EXPECT_EQ(raised([&] { vb::CInt(x); }), KavError::Kind::Overflow) << x;
        if (fits32)
            EXPECT_EQ(vb::CLng(x), qint32(expected)) << x;
        else
            EXPECT_EQ(raised([&] { vb::CLng(x); }), KavError::Kind::Overflow) << x;
        // The same number written as a text; a text that is no number is a type mismatch.
        const QString text = QString::number(x, 'f', 7);
        if (fits32) {
            EXPECT_EQ(vb::CLng(u" "_s + text + u" "_s), qint32(expected)) << x;
        }
        const QString notNumber = text + u"x"_s;
        EXPECT_EQ(raised([&] { vb::CLng(notNumber); }), KavError::Kind::TypeMismatch);
    }
}

TEST(Properties, CurrencyReadsEveryRialExactlyAndItsTextReadsBackTheSame) {
    Rng rng(1403);
    for (int i = 0; i < 5000; ++i, ++inputsTried) {
        const bool negative = uniform(rng, 0, 1);
        const QString whole = digits(rng, 1, uniform(rng, 0, 4) ? 12 : 17);
        const QString fraction = uniform(rng, 0, 1) ? digits(rng, 0, 8) : QString();
        const QString text = (negative ? u"-"_s : QString()) + whole +
                             (fraction.isEmpty() ? QString() : u"."_s + fraction);
        const std::optional<qint64> raw = currencyRaw(negative, whole, fraction);
        if (!raw) {
            EXPECT_EQ(raised([&] { vb::CCur(text); }), KavError::Kind::Overflow)
                << text.toStdString();
            continue;
        }
        const vb::Currency c = vb::CCur(text);
        EXPECT_EQ(c.raw(), *raw) << text.toStdString();
        EXPECT_EQ(c.toString(), currencyText(*raw)) << text.toStdString();
        EXPECT_EQ(vb::CCur(c.toString()).raw(), *raw) << text.toStdString();
        // Grouped for display and typed in Persian digits, an amount reads as the same number.
        if (!negative) {
            EXPECT_EQ(AmountCurrency(easternDigits(rng, GroupDigits(text))).raw(), *raw)
                << text.toStdString();
        }
    }
    // Sums stay exact or raise the overflow error, never wrap.
    for (int i = 0; i < 3000; ++i, ++inputsTried) {
        const qint64 a =
            std::uniform_int_distribution<qint64>(std::numeric_limits<qint64>::min(),
                                                  std::numeric_limits<qint64>::max())(rng) >>
            uniform(rng, 0, 40);
        const qint64 b =
            std::uniform_int_distribution<qint64>(std::numeric_limits<qint64>::min(),
                                                  std::numeric_limits<qint64>::max())(rng) >>
            uniform(rng, 0, 40);
        const __int128 sum = __int128(a) + b;
        const auto add = [&] { return vb::Currency::fromRaw(a) + vb::Currency::fromRaw(b); };
        if (sum > std::numeric_limits<qint64>::max() || sum < std::numeric_limits<qint64>::min())
            EXPECT_EQ(raised(add), KavError::Kind::Overflow) << a << " + " << b;
        else
            EXPECT_EQ(add().raw(), qint64(sum)) << a << " + " << b;
        EXPECT_EQ(vb::CCur(vb::Currency::fromRaw(a).toString()).raw(), a);
    }
}

TEST(Properties, GroupDigitsOnlyAddsSlashesBetweenGroupsOfThree) {
    Rng rng(1404);
    for (int i = 0; i < 6000; ++i, ++inputsTried) {
        const QString whole = digits(rng, 1, 19);
        const QString sign = uniform(rng, 0, 3) == 0 ? u"-"_s : QString();
        const QString fraction = uniform(rng, 0, 3) == 0 ? u"."_s + digits(rng, 1, 3) : QString();
        const QString text = sign + whole + fraction;
        const QString grouped = GroupDigits(text);
        EXPECT_EQ(QString(grouped).remove(u'/'), text) << text.toStdString();
        const QStringList groups =
            grouped.mid(sign.size(), grouped.size() - sign.size() - fraction.size()).split(u'/');
        if (whole.size() <= 4) {
            EXPECT_EQ(grouped, text);
        } else {
            EXPECT_GE(groups[0].size(), 1);
            EXPECT_LE(groups[0].size(), 3);
            for (qsizetype g = 1; g < groups.size(); ++g)
                EXPECT_EQ(groups[g].size(), 3) << grouped.toStdString();
        }
        const qint64 value =
            std::uniform_int_distribution<qint64>(std::numeric_limits<qint64>::min(),
                                                  std::numeric_limits<qint64>::max())(rng) >>
            uniform(rng, 0, 60);
        EXPECT_EQ(GroupDigits(QVariant(value)).remove(u'/'), QString::number(value));
    }
}

TEST(Properties, CellNumberNeverFailsAndDatesCompareInDateOrder) {
    Rng rng(1405);
    const QString anything = kNumberish + u"TrueFalse ۲۰ آب\t"_s;
    for (int i = 0; i < 5000; ++i, ++inputsTried) {
        const QString text = uniform(rng, 0, 9)
                                 ? pick(rng, anything, 20)
                                 : QStringList{u"True"_s, u"   "_s, u""_s, u"1e999"_s,
                                               u"-1E+400x"_s}[uniform(rng, 0, 4)];
        QVariant v;
        EXPECT_NO_THROW(v = CellNumber(text)) << text.toStdString();
        const bool small = v.typeId() == QMetaType::Short;
        EXPECT_TRUE(small || v.typeId() == QMetaType::Double) << text.toStdString();
        if (text.trimmed().isEmpty()) {
            EXPECT_EQ(v, QVariant::fromValue<qint16>(-1));
        } else if (text == u"True") {
            EXPECT_EQ(v, QVariant::fromValue<qint16>(1));
        }
    }
    for (int i = 0; i < 3000; ++i, ++inputsTried) {
        const int a[] = {uniform(rng, 1000, 1999), uniform(rng, 1, 12), uniform(rng, 1, 31)};
        const int b[] = {uniform(rng, 1000, 1999), uniform(rng, 1, 12), uniform(rng, 1, 31)};
        const auto text = [](const int* d) {
            return u"%1/%2/%3"_s.arg(d[0])
                .arg(d[1], 2, 10, QChar(u'0'))
                .arg(d[2], 2, 10, QChar(u'0'));
        };
        const double x = CellNumber(text(a)).toDouble(), y = CellNumber(text(b)).toDouble();
        EXPECT_EQ(x, a[0] * 10000.0 + a[1] * 100 + a[2]);
        EXPECT_EQ(x < y, text(a) < text(b))
            << text(a).toStdString() << " " << text(b).toStdString();
        EXPECT_EQ(DateDigits(text(a)).raw(), (a[0] * 10000LL + a[1] * 100 + a[2]) * 10000);
        EXPECT_EQ(DateDigits(text(a)) < DateDigits(text(b)), text(a) < text(b));
        // Anything else is a number or the type-mismatch error, nothing worse.
        const QString other = pick(rng, anything, 12);
        const auto kind = raised([&] { DateDigits(other); });
        EXPECT_TRUE(!kind || *kind == KavError::Kind::TypeMismatch ||
                    *kind == KavError::Kind::Overflow)
            << other.toStdString();
    }
}

TEST(Properties, AQuotedTextReadsBackAsTheOriginalThroughSqlite) {
    const QString name = u"quote-"_s + QUuid::createUuid().toString();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(u":memory:"_s);
        ASSERT_TRUE(db.open());
        Rng rng(1406);
        QStringList hostile;
        for (const QChar c :
             u"''''\";--/**/%_[]\\\n\t\r;select drop ' or '1'='1 آيا مطمئن هستيد؟ "
             u"ي ك ۱۲ \u200c\u2066"_s)
            hostile << QString(c);
        hostile << u"😀"_s << u"--"_s << u"/*"_s << u"*/"_s << u"'; drop table tblHRLoan; --"_s;
        QSqlQuery q(db);
        for (int i = 0; i < 4000; ++i, ++inputsTried) {
            const QString text = pickTokens(rng, hostile, 40);
            const QString quoted = SqlQuote(text);
            EXPECT_EQ(quoted.size(), text.size() + text.count(u'\''));
            ASSERT_TRUE(q.exec(u"select '"_s + quoted + u"'"_s)) << text.toStdString();
            ASSERT_TRUE(q.next());
            EXPECT_EQ(q.value(0).toString(), text);
            EXPECT_FALSE(q.next());  // one row: the text, nothing run besides
        }
    }
    QSqlDatabase::removeDatabase(name);
}

namespace {

// An ODBC connection string's attributes, read the way a driver manager reads them.
QMap<QString, QString> odbcAttributes(const QString& text) {
    QMap<QString, QString> out;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype eq = text.indexOf(u'=', i);
        if (eq < 0) break;
        const QString key = text.mid(i, eq - i).toLower();
        i = eq + 1;
        QString value;
        if (i < text.size() && text[i] == u'{') {
            ++i;
            while (i < text.size()) {
                if (text[i] == u'}') {
                    if (i + 1 < text.size() && text[i + 1] == u'}') {
                        value += u'}';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                value += text[i++];
            }
        } else {
            const qsizetype end = text.indexOf(u';', i);
            value = text.mid(i, end < 0 ? -1 : end - i);
            i = end < 0 ? text.size() : end;
        }
        out.insert(key, value);
        if (i < text.size() && text[i] == u';') ++i;
    }
    return out;
}

// A value in double quotes, as OLE DB writes one that holds separators.
QString oleQuoted(const QString& value) {
    return u'"' + QString(value).replace(u"\""_s, u"\"\""_s) + u'"';
}

}  // namespace

TEST(Properties, ConnectionStringsMapEveryValueIntactAndErrorsNeverShowThePassword) {
    Rng rng(1407);
    const QString valueChars = u"abcXYZ019 ;'\"{}=.,\\-_آبپ"_s;
    const QStringList keyCase = {u"Data Source"_s, u"DATA SOURCE"_s, u"data source"_s};
    for (int i = 0; i < 3000; ++i, ++inputsTried) {
        const QString server = u"srv"_s + pick(rng, u"abc019-."_s, 8) +
                               QStringList{u""_s, u",1433"_s, u"\\INST"_s}[uniform(rng, 0, 2)];
        const QString catalog = u"c"_s + pick(rng, valueChars, 12);
        const QString user = u"u"_s + pick(rng, valueChars, 12);
        const QString password = pick(rng, valueChars, 16) + u"P"_s;
        QStringList parts = {keyCase[uniform(rng, 0, 2)] + u"="_s + server,
                             u"Initial Catalog="_s + oleQuoted(catalog),
                             u"User ID="_s + oleQuoted(user), u"Password="_s + oleQuoted(password),
                             u"Persist Security Info=True"_s};
        std::shuffle(parts.begin(), parts.end(), rng);
        const QString ole = u"Provider=SQLOLEDB.1;"_s + parts.join(u"; "_s);
        const data::ConnectionTarget t = data::MapConnectionString(ole, {u"FreeTDS"_s}, {});
        const QMap<QString, QString> odbc = odbcAttributes(t.databaseName);
        EXPECT_EQ(odbc.value(u"server"_s), server) << ole.toStdString();
        EXPECT_EQ(odbc.value(u"database"_s), catalog) << ole.toStdString();
        EXPECT_EQ(odbc.value(u"uid"_s), user) << ole.toStdString();
        EXPECT_EQ(odbc.value(u"pwd"_s), password) << ole.toStdString();
        EXPECT_EQ(odbc.value(u"driver"_s), u"FreeTDS"_s);

        const QString file = u"/tmp/"_s + pick(rng, valueChars, 10) + u".db"_s;
        const data::ConnectionTarget embedded =
            data::MapConnectionString(u"Provider=SQLite;Data Source="_s + oleQuoted(file), {}, {});
        EXPECT_EQ(embedded.databaseName, file);

        // Broken strings: a connection error, and the password never appears in its text.
        const QString secret = u"Sec"_s + digits(rng, 4, 6) + u"ret"_s;
        QString broken = pick(rng, u"Provider=SQLOLEDB;Data Source=x;'\"{} =;"_s, 30);
        broken.insert(uniform(rng, 0, int(broken.size())),
                      QStringList{u";Password="_s, u";PWD="_s, u";Password "_s, u";pwd "_s,
                                  u";Password='"_s}[uniform(rng, 0, 4)] +
                          secret);
        try {
            data::MapConnectionString(broken, {u"FreeTDS"_s}, {});
        } catch (const KavError& e) {
            EXPECT_EQ(e.kind(), KavError::Kind::Connection);
            EXPECT_FALSE(e.message().contains(secret))
                << broken.toStdString() << "\n -> " << e.message().toStdString();
        }
    }
}

TEST(Properties, EveryJalaliDayFrom1300To1500ReadsBackFromItsText) {
    const QCalendar jalali = controls::JalaliCalendar();
    QDate day = jalali.dateFromParts(1300, 1, 1);
    const QDate end = jalali.dateFromParts(1501, 1, 1);
    QString previous;
    int days = 0;
    for (; day < end; day = day.addDays(1), ++days, ++inputsTried) {
        const QString text = controls::FarsiDateText(day);
        ASSERT_EQ(controls::ParseFarsiDate(text), day) << text.toStdString();
        EXPECT_GT(text, previous);  // texts sort as the days do
        previous = text;
        const QCalendar::YearMonthDay p = jalali.partsFromDate(day);
        // Unpadded, in Persian digits, with blanks around the fields: the same day.
        const QString loose = u" %1/ %2/%3 "_s.arg(p.year).arg(p.month).arg(p.day);
        EXPECT_EQ(controls::ParseFarsiDate(LatinDigits(loose)), day);
        QString persian = loose;
        for (QChar& c : persian)
            if (c.isDigit()) c = QChar(char16_t(0x06F0 + (c.unicode() - u'0')));
        EXPECT_EQ(controls::ParseFarsiDate(persian), day) << persian.toStdString();
        const int last = jalali.daysInMonth(p.month, p.year);
        if (p.day == last) {
            // The day after the month's last is refused when typed and read as the last day
            // when it comes from stored data.
            const QString past = u"%1/%2/%3"_s.arg(p.year).arg(p.month).arg(last + 1);
            EXPECT_FALSE(controls::ParseFarsiDate(past).isValid()) << past.toStdString();
            EXPECT_EQ(controls::ParseStoredFarsiDate(past), day) << past.toStdString();
        }
    }
    std::cout << "[ figures  ] " << inputsTried << " generated inputs tried\n";
}
