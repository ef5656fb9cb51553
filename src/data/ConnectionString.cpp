#include "data/ConnectionString.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <algorithm>
#include <optional>

#include "base/Errors.h"
#include "data/SqlDialect.h"

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {

const QString kMsDriver18 = u"ODBC Driver 18 for SQL Server"_s;
const QString kMsDriver17 = u"ODBC Driver 17 for SQL Server"_s;
const QString kFreeTds = u"FreeTDS"_s;

const QRegularExpression& passwordAttribute() {
    // The key, the "=" and the value up to the next ";" (or the end of its quotes or braces).
    static const QRegularExpression re(
        uR"(\b(password|pwd)(\s*=\s*)('(?:[^']|'')*'?|"(?:[^"]|"")*"?|\{(?:[^}]|\}\})*\}?|[^;]*))"_s,
        QRegularExpression::CaseInsensitiveOption);
    return re;
}

[[noreturn]] void fail(const QString& message) {
    // A message quotes parts of the string; a password among them is not shown.
    throw KavError(KavError::Kind::Connection, MaskPasswords(message));
}

struct Pair {
    QString key;    // lower case, inner blanks collapsed
    QString name;   // as written
    QString value;  // unquoted
};

// A key as a message may name it. A key is all that comes before "="; when a password was
// written without it ("Password secret;"), only the first word is named.
QString shownKey(const QString& name) {
    static const QRegularExpression passwordKey(u"^(password|pwd)\\b"_s,
                                                QRegularExpression::CaseInsensitiveOption);
    if (!passwordKey.match(name).hasMatch()) return name;
    return name.section(u' ', 0, 0) + u" ***"_s;
}

// Splits "key=value;key='va;lue';..." the way OLE DB does: keys are case-insensitive,
// a value may be enclosed in single or double quotes (a doubled quote stands for one),
// an ODBC value may be enclosed in braces ("}}" stands for one "}").
QList<Pair> parse(const QString& text) {
    QList<Pair> pairs;
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n) {
        while (i < n && (text[i].isSpace() || text[i] == u';')) ++i;
        if (i >= n) break;
        const qsizetype keyStart = i;
        while (i < n && text[i] != u'=' && text[i] != u';') ++i;
        const QString name = text.mid(keyStart, i - keyStart).simplified();
        const QString key = name.toLower();
        if (i >= n || text[i] != u'=')
            fail(u"بخش «%1» از رشته اتصال به شکل «نام=مقدار» نيست."_s.arg(shownKey(name)));
        if (key.isEmpty()) fail(u"در رشته اتصال مقداري بدون نام آمده است."_s);
        ++i;  // '='
        while (i < n && text[i] == u' ') ++i;
        QString value;
        if (i < n && (text[i] == u'\'' || text[i] == u'"' || text[i] == u'{')) {
            const QChar open = text[i];
            const QChar close = open == u'{' ? u'}' : open;
            ++i;
            bool closed = false;
            while (i < n) {
                if (text[i] == close) {
                    if (i + 1 < n && text[i + 1] == close) {
                        value += close;
                        i += 2;
                        continue;
                    }
                    ++i;
                    closed = true;
                    break;
                }
                value += text[i++];
            }
            if (!closed)
                fail(u"مقدار «%1» در رشته اتصال بسته نشده است (علامت نقل قول پاياني ندارد)."_s.arg(
                    shownKey(name)));
            while (i < n && text[i] != u';') {
                if (!text[i].isSpace())
                    fail(
                        u"پس از مقدار نقل‌قول‌شده «%1» در رشته اتصال نويسه اضافي آمده است."_s
                            .arg(shownKey(name)));
                ++i;
            }
        } else {
            const qsizetype valueStart = i;
            while (i < n && text[i] != u';') ++i;
            value = text.mid(valueStart, i - valueStart).trimmed();
        }
        pairs.append({key, name, value});
    }
    return pairs;
}

QString lookup(const QList<Pair>& pairs, std::initializer_list<const char16_t*> keys) {
    // The last occurrence wins, as in OLE DB.
    QString found;
    bool have = false;
    for (const Pair& p : pairs)
        for (const char16_t* k : keys)
            if (p.key == QStringView(k)) {
                found = p.value;
                have = true;
            }
    return have ? found : QString();
}

bool has(const QList<Pair>& pairs, std::initializer_list<const char16_t*> keys) {
    for (const Pair& p : pairs)
        for (const char16_t* k : keys)
            if (p.key == QStringView(k)) return true;
    return false;
}

// An ODBC attribute value, braced when it holds a character that would end it.
QString odbcValue(const QString& value) {
    if (value.contains(u';') || value.contains(u'{') || value.contains(u'}') ||
        value.contains(u'=') || value != value.trimmed()) {
        QString v = value;
        v.replace(u"}"_s, u"}}"_s);
        return u'{' + v + u'}';
    }
    return value;
}

QString odbcDriverValue(const QString& driver) {
    QString d = driver;
    d.replace(u"}"_s, u"}}"_s);
    return u'{' + d + u'}';
}

bool isTrue(const QString& value) {
    const QString v = value.trimmed().toLower();
    return v == u"sspi" || v == u"true" || v == u"yes" || v == u"1";
}

bool isSqlServerProvider(const QString& provider) {
    // "SQLOLEDB.1", "SQLNCLI11", "MSOLEDBSQL19" ...
    const QString p = provider.trimmed().toUpper();
    return p.startsWith(u"SQLOLEDB") || p.startsWith(u"SQLNCLI") || p.startsWith(u"MSOLEDBSQL");
}

bool isFreeTdsDriver(const QString& driver) { return driver.contains(u"tds", Qt::CaseInsensitive); }

// The version of Microsoft's "ODBC Driver NN for SQL Server", 0 for any other driver.
int microsoftDriverVersion(const QString& driver) {
    static const QRegularExpression re(u"ODBC Driver (\\d+) for SQL Server"_s,
                                       QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = re.match(driver);
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}

// What the OLE DB string asks of encryption: "Use Encryption for Data" (True/False, and
// Optional/Mandatory/Strict of the newer providers) or "Encrypt" (yes/no and the same words).
enum class Encryption { Unset, Off, Optional, Mandatory, Strict };

Encryption encryptionOf(const QList<Pair>& pairs) {
    const QString given = lookup(pairs, {u"encrypt", u"use encryption for data"}).trimmed();
    const QString v = given.toLower();
    if (v.isEmpty()) return Encryption::Unset;
    if (v == u"true" || v == u"yes" || v == u"1" || v == u"mandatory") return Encryption::Mandatory;
    if (v == u"false" || v == u"no" || v == u"0") return Encryption::Off;
    if (v == u"optional") return Encryption::Optional;
    if (v == u"strict") return Encryption::Strict;
    fail(
        u"مقدار «%1» براي رمزنگاري (Use Encryption for Data) شناخته نيست؛ True، False، "
        u"Optional، Mandatory يا Strict پذيرفته مي‌شود."_s.arg(given));
}

// "Trust Server Certificate": whether the server's certificate is taken unchecked.
std::optional<bool> trustOf(const QList<Pair>& pairs) {
    const QString given =
        lookup(pairs, {u"trustservercertificate", u"trust server certificate"}).trimmed();
    const QString v = given.toLower();
    if (v.isEmpty()) return std::nullopt;
    if (v == u"true" || v == u"yes" || v == u"1") return true;
    if (v == u"false" || v == u"no" || v == u"0") return false;
    fail(
        u"مقدار «%1» براي Trust Server Certificate شناخته نيست؛ True يا False پذيرفته مي‌شود."_s
            .arg(given));
}

// "." and "(local)" (with an optional instance or port) mean this machine.
QString mapServer(const QString& dataSource, bool freeTds) {
    QString server = dataSource.trimmed();
    if (server.startsWith(u"tcp:", Qt::CaseInsensitive)) server = server.mid(4);
    qsizetype cut = server.size();
    for (QChar sep : {u'\\', u','}) {
        const qsizetype at = server.indexOf(sep);
        if (at >= 0 && at < cut) cut = at;
    }
    QString host = server.left(cut).trimmed();
    const QString rest = server.mid(cut);
    const QString h = host.toLower();
    if (h == u"." || h == u"(local)" || h.isEmpty())
        host = freeTds ? u"127.0.0.1"_s : u"localhost"_s;
    return host + rest;
}

ConnectionTarget mapSqlServer(const QList<Pair>& pairs, const QStringList& installed,
                              const QString& driverOverride) {
    const QString dataSource =
        lookup(pairs, {u"data source", u"server", u"address", u"addr", u"network address"});
    if (dataSource.trimmed().isEmpty())
        fail(u"رشته اتصال نام سرور پايگاه داده (Data Source) را مشخص نکرده است."_s);
    const QString driver = ChooseSqlServerOdbcDriver(installed, driverOverride);
    const bool freeTds = isFreeTdsDriver(driver);

    QStringList parts;
    parts << u"Driver="_s + odbcDriverValue(driver);
    parts << u"Server="_s + odbcValue(mapServer(dataSource, freeTds));
    const QString catalog = lookup(pairs, {u"initial catalog", u"database"});
    if (!catalog.isEmpty()) parts << u"Database="_s + odbcValue(catalog);

    const bool integrated = isTrue(lookup(pairs, {u"integrated security", u"trusted_connection"}));
    if (integrated) {
        parts << u"Trusted_Connection=yes"_s;
    } else {
        const QString user = lookup(pairs, {u"user id", u"uid", u"user"});
        const QString password = lookup(pairs, {u"password", u"pwd"});
        if (!user.isEmpty()) parts << u"UID="_s + odbcValue(user);
        if (has(pairs, {u"password", u"pwd"})) parts << u"PWD="_s + odbcValue(password);
    }
    const QString app = lookup(pairs, {u"application name", u"app"});
    if (!app.isEmpty() && !freeTds) parts << u"APP="_s + odbcValue(app);

    const Encryption encryption = encryptionOf(pairs);
    const std::optional<bool> trust = trustOf(pairs);
    if (freeTds) {
        // FreeTDS speaks 8-bit to Qt's ODBC driver; UTF-8 keeps Persian texts intact.
        parts << u"TDS_Version=7.4"_s << u"ClientCharset=UTF-8"_s;
        switch (encryption) {
            case Encryption::Unset:
                break;
            case Encryption::Off:
                parts << u"Encryption=off"_s;
                break;
            case Encryption::Optional:
                parts << u"Encryption=request"_s;
                break;
            case Encryption::Mandatory:
                parts << u"Encryption=require"_s;
                break;
            case Encryption::Strict:
                fail(
                    u"راه‌انداز %1 رمزنگاري Strict (TDS 8) را نمي‌شناسد؛ ODBC Driver 18 for SQL "
                    u"Server را نصب کنيد يا Use Encryption for Data=Mandatory بدهيد."_s.arg(
                        driver));
        }
    } else {
        switch (encryption) {
            case Encryption::Unset:
                break;
            case Encryption::Off:
            case Encryption::Optional:
                parts << u"Encrypt=no"_s;
                break;
            case Encryption::Mandatory:
                parts << u"Encrypt=yes"_s;
                break;
            case Encryption::Strict:
                if (microsoftDriverVersion(driver) < 18)
                    fail(
                        u"رمزنگاري Strict به ODBC Driver 18 for SQL Server يا تازه‌تر نياز دارد؛ "
                        u"راه‌انداز اين اتصال %1 است."_s.arg(driver));
                parts << u"Encrypt=strict"_s;
                break;
        }
        if (trust)
            parts << (*trust ? u"TrustServerCertificate=yes"_s : u"TrustServerCertificate=no"_s);
        else if (microsoftDriverVersion(driver) >= 18 && encryption != Encryption::Mandatory &&
                 encryption != Encryption::Strict)
            // Driver 18 encrypts by default; the OLE DB providers the suite used did not
            // check the server's certificate unless encryption was asked for, so neither does
            // the module.
            parts << u"TrustServerCertificate=yes"_s;
    }
    return {u"QODBC"_s, parts.join(u';'), DatabaseKind::SqlServer};
}

ConnectionTarget mapOdbc(const QList<Pair>& pairs, bool viaMsdasql,
                         const QHash<QString, QString>& dataSources) {
    QStringList parts;
    QString driver, dsn;
    for (const Pair& p : pairs) {
        if (p.key == u"provider" || p.key == u"persist security info" ||
            p.key == u"extended properties")
            continue;
        if (p.key == u"driver") {
            driver = p.value;
            parts << u"Driver="_s + odbcDriverValue(p.value);
        } else if ((p.key == u"data source" && viaMsdasql) || p.key == u"dsn") {
            // The data source comes first: Qt's ODBC driver puts "DSN=" in front of a string
            // that names neither a driver nor a server (QodbcDatabaseName).
            dsn = p.value;
            parts.prepend(u"DSN="_s + odbcValue(p.value));
        } else if (p.key == u"user id") {
            parts << u"UID="_s + odbcValue(p.value);
        } else if (p.key == u"password") {
            parts << u"PWD="_s + odbcValue(p.value);
        } else if (p.key == u"initial catalog") {
            parts << u"Database="_s + odbcValue(p.value);
        } else {
            // Keep the attribute under the name it was given (ODBC keys are
            // case-insensitive too).
            parts << p.name + u'=' + odbcValue(p.value);
        }
    }
    if (driver.isEmpty() && dsn.isEmpty())
        fail(
            u"رشته اتصال ODBC نه راه‌انداز (Driver) را نام برده است و نه منبع داده (DSN) را."_s);
    // A data source's driver is the one its odbc.ini section names.
    QString served = driver;
    if (served.isEmpty())
        for (auto it = dataSources.constBegin(); it != dataSources.constEnd(); ++it)
            if (it.key().compare(dsn, Qt::CaseInsensitive) == 0) served = it.value();
    const bool sqlite = served.contains(u"sqlite", Qt::CaseInsensitive) ||
                        (served.isEmpty() && dsn.contains(u"sqlite", Qt::CaseInsensitive));
    if (sqlite) {
        // A busy database is waited for as long as on the embedded path (the SQLite ODBC
        // driver waits out its Timeout twice before it reports busy), and a file that is not
        // there is not made.
        if (!has(pairs, {u"timeout"}))
            parts << u"Timeout=%1"_s.arg(SqlDialect::LockWaitMilliseconds / 2);
        if (!has(pairs, {u"nocreat"})) parts << u"NoCreat=1"_s;
    } else if (isFreeTdsDriver(served) && !has(pairs, {u"clientcharset"})) {
        parts << u"ClientCharset=UTF-8"_s;
    }
    return {u"QODBC"_s, parts.join(u';'), sqlite ? DatabaseKind::SQLite : DatabaseKind::SqlServer};
}

ConnectionTarget mapEmbedded(const QList<Pair>& pairs) {
    const QString file = lookup(pairs, {u"data source", u"database"});
    if (file.trimmed().isEmpty())
        fail(u"رشته اتصال پايگاه داده محلي فايل آن را (Data Source) مشخص نکرده است."_s);
    return {u"QSQLITE"_s, file, DatabaseKind::SQLite};
}

QString odbcinstReport(const char* label) {
    static const QString report = [] {
        QProcess p;
        p.start(u"odbcinst"_s, {u"-j"_s});
        if (!p.waitForFinished(3000)) {
            p.kill();
            p.waitForFinished(1000);
            return QString();
        }
        return QString::fromLocal8Bit(p.readAllStandardOutput());
    }();
    for (const QString& line : report.split(u'\n')) {
        if (line.startsWith(QLatin1StringView(label))) {
            const qsizetype colon = line.indexOf(u':');
            if (colon > 0) return line.mid(colon + 1).trimmed();
        }
    }
    return QString();
}

// The data sources of an odbc.ini and the driver each names.
void readDataSources(const QString& path, QHash<QString, QString>& sources) {
    if (path.isEmpty() || !QFileInfo::exists(path)) return;
    QSettings ini(path, QSettings::IniFormat);
    for (const QString& group : ini.childGroups()) {
        if (group.compare(u"ODBC", Qt::CaseInsensitive) == 0 ||
            group.compare(u"ODBC Data Sources", Qt::CaseInsensitive) == 0)
            continue;
        sources.insert(group, ini.value(group + u"/Driver"_s).toString());
    }
}

// Where unixODBC keeps its driver list: ODBCSYSINI/ODBCINSTINI when set, else what
// "odbcinst -j" reports, else /etc/odbcinst.ini.
QString odbcinstIniPath() {
    const QString sysIni = qEnvironmentVariable("ODBCSYSINI");
    const QString instIni = qEnvironmentVariable("ODBCINSTINI", u"odbcinst.ini"_s);
    if (!sysIni.isEmpty()) return QDir(sysIni).filePath(instIni);
    const QString fromTool = odbcinstReport("DRIVERS");
    return fromTool.isEmpty() ? u"/etc/odbcinst.ini"_s : fromTool;
}

}  // namespace

QHash<QString, QString> OdbcDataSources() {
    // unixODBC looks in the system's odbc.ini and then the user's, which wins.
    QHash<QString, QString> sources;
    const QString sysIni = qEnvironmentVariable("ODBCSYSINI");
    readDataSources(!sysIni.isEmpty() ? QDir(sysIni).filePath(u"odbc.ini"_s)
                                      : odbcinstReport("SYSTEM DATA SOURCES"),
                    sources);
    const QString userIni = qEnvironmentVariable("ODBCINI");
    readDataSources(!userIni.isEmpty() ? userIni : QDir::home().filePath(u".odbc.ini"_s), sources);
    return sources;
}

QString QodbcDatabaseName(const QString& odbcString) {
    if (odbcString.contains(u"DRIVER="_s, Qt::CaseInsensitive) ||
        odbcString.contains(u"SERVER="_s, Qt::CaseInsensitive) ||
        !odbcString.startsWith(u"DSN="_s, Qt::CaseInsensitive))
        return odbcString;
    return odbcString.mid(4);
}

QString ChooseSqlServerOdbcDriver(const QStringList& installedDrivers, const QString& override) {
    QString chosen = override.trimmed();
    if (chosen.startsWith(u'{') && chosen.endsWith(u'}')) chosen = chosen.mid(1, chosen.size() - 2);
    if (!chosen.isEmpty()) return chosen;
    for (const QString& preferred : {kMsDriver18, kMsDriver17})
        for (const QString& d : installedDrivers)
            if (d.compare(preferred, Qt::CaseInsensitive) == 0) return d;
    for (const QString& d : installedDrivers)
        if (d.compare(kFreeTds, Qt::CaseInsensitive) == 0) return d;
    return kFreeTds;
}

QStringList InstalledOdbcDrivers() {
    const QString path = odbcinstIniPath();
    if (!QFileInfo::exists(path)) return {};
    QSettings ini(path, QSettings::IniFormat);
    QStringList drivers;
    for (const QString& group : ini.childGroups()) {
        // [ODBC] holds unixODBC's own options, [ODBC Drivers] the Windows-style list.
        if (group.compare(u"ODBC", Qt::CaseInsensitive) == 0 ||
            group.compare(u"ODBC Drivers", Qt::CaseInsensitive) == 0)
            continue;
        drivers << group;
    }
    return drivers;
}

ConnectionTarget MapConnectionString(const QString& oleDb, const QStringList& installedDrivers,
                                     const QString& driverOverride,
                                     const QHash<QString, QString>& dataSources) {
    const QString text = oleDb.trimmed();
    if (text == u"0")
        fail(
            u"رشته اتصال به پايگاه داده تعيين نشده است: مقدار آن هنوز «0» است، يعني برنامه ميزبان "
            u"OLEConnectionstring را مقدار نداده است."_s);
    if (text.isEmpty()) fail(u"رشته اتصال به پايگاه داده خالي است."_s);

    const QList<Pair> pairs = parse(text);
    const QString provider = lookup(pairs, {u"provider"}).trimmed();
    if (provider.isEmpty()) {
        if (has(pairs, {u"driver", u"dsn"})) return mapOdbc(pairs, false, dataSources);
        fail(
            u"رشته اتصال فراهم‌کننده (Provider) يا راه‌انداز ODBC (Driver) را مشخص نکرده است."_s);
    }
    if (isSqlServerProvider(provider)) return mapSqlServer(pairs, installedDrivers, driverOverride);
    if (provider.compare(u"SQLite", Qt::CaseInsensitive) == 0) return mapEmbedded(pairs);
    if (provider.toUpper().startsWith(u"MSDASQL")) return mapOdbc(pairs, true, dataSources);
    fail(
        u"فراهم‌کننده «%1» در رشته اتصال شناخته نيست؛ SQLOLEDB، SQLNCLI، MSOLEDBSQL، MSDASQL "
        u"يا "
        u"SQLite پذيرفته مي‌شود."_s.arg(provider));
}

QString MaskPasswords(const QString& text, const QString& connectionString) {
    QString masked = text;
    masked.replace(passwordAttribute(), u"\\1\\2***"_s);
    if (connectionString.isEmpty()) return masked;
    QStringList secrets;
    try {
        for (const Pair& p : parse(connectionString))
            if ((p.key == u"password" || p.key == u"pwd") && p.value.size() >= 3)
                secrets << p.value;
    } catch (const KavError&) {
        // A string that does not parse: its attribute values are masked as text below.
    }
    // A string that does not parse may still hold a password, with or without its "=".
    static const QRegularExpression loosePassword(
        uR"(\b(password|pwd)\b\s*=?\s*('(?:[^']|'')*'?|"(?:[^"]|"")*"?|\{(?:[^}]|\}\})*\}?|[^;]*))"_s,
        QRegularExpression::CaseInsensitiveOption);
    for (auto it = loosePassword.globalMatch(connectionString); it.hasNext();) {
        QString value = it.next().captured(2).trimmed();
        if (value.startsWith(u'\'') || value.startsWith(u'"') || value.startsWith(u'{')) {
            const QChar close = value[0] == u'{' ? u'}' : value[0];
            value.remove(0, 1);
            if (value.endsWith(close)) value.chop(1);
        }
        if (value.size() >= 3) secrets << value;
    }
    // The longest first, so a password that holds another is masked whole.
    std::sort(secrets.begin(), secrets.end(),
              [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (const QString& secret : secrets) masked.replace(secret, u"***"_s);
    return masked;
}

ConnectionTarget MapConnectionString(const QString& oleDb) {
    return MapConnectionString(oleDb, InstalledOdbcDrivers(),
                               qEnvironmentVariable("KAVHRLOAN_ODBC_DRIVER"), OdbcDataSources());
}

}  // namespace kav::data
