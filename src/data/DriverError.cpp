#include "data/DriverError.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {

// SQLite: 5 SQLITE_BUSY, 6 SQLITE_LOCKED. SQL Server: 1222 lock request timed out, 1205 chosen
// as a deadlock victim. ODBC drivers may join several native codes with ";".
bool hasBusyCode(const QString& nativeCodes) {
    for (const QString& code : nativeCodes.split(u';', Qt::SkipEmptyParts)) {
        const QString c = code.trimmed();
        if (c == u"5" || c == u"6" || c == u"1222" || c == u"1205") return true;
    }
    return false;
}

}  // namespace

QString DriverText(const QSqlError& error) {
    QString text = error.databaseText().trimmed();
    if (text.isEmpty()) text = error.text().trimmed();
    return text;
}

bool IsBusyError(const QSqlError& error) {
    if (hasBusyCode(error.nativeErrorCode())) return true;
    // The SQLite ODBC driver reports the engine's words, not its code.
    const QString text = error.text();
    return text.contains(u"database is locked"_s, Qt::CaseInsensitive) ||
           text.contains(u"database table is locked"_s, Qt::CaseInsensitive);
}

KavError BusyError(const QString& driverText) {
    return KavError(KavError::Kind::Busy,
                    u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ چند لحظه بعد دوباره "
                    u"تلاش کنيد."_s +
                        DriverTextLine(driverText));
}

KavError DriverError(const QSqlError& error) {
    const QString text = DriverText(error);
    if (IsBusyError(error)) return BusyError(text);
    return KavError(KavError::Kind::Database, u"خطاي پايگاه داده:"_s + DriverTextLine(text));
}

}  // namespace kav::data
