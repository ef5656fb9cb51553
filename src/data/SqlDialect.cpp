#include "data/SqlDialect.h"

#include <QDateTime>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {
const QDate kEmptyDate(1900, 1, 1);
}

QString SqlDialect::dateText(const QDate& date) const {
    const QDate d = date.isValid() ? date : kEmptyDate;
    return d.toString(kind_ == DatabaseKind::SqlServer ? u"yyyyMMdd"_s : u"yyyy-MM-dd"_s);
}

QDate SqlDialect::readDate(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return {};
    switch (value.typeId()) {
        case QMetaType::QDate:
            return value.toDate();
        case QMetaType::QDateTime:
            return value.toDateTime().date();
        default:
            break;
    }
    const QString text = value.toString().trimmed();
    if (text.isEmpty()) return {};
    // "yyyy-MM-dd", "yyyyMMdd", and either followed by a time of day.
    const QString datePart =
        text.left(text.indexOf(u' ') >= 0 ? text.indexOf(u' ') : text.size()).section(u'T', 0, 0);
    for (const QString& format : {u"yyyy-MM-dd"_s, u"yyyyMMdd"_s}) {
        const QDate d = QDate::fromString(datePart, format);
        if (d.isValid()) return d;
    }
    return {};
}

QString SqlDialect::deleteFrom(const QString& table) const {
    return (kind_ == DatabaseKind::SqlServer ? u"delete "_s : u"delete from "_s) + table;
}

QString SqlDialect::concatOperator() const {
    return kind_ == DatabaseKind::SqlServer ? u"+"_s : u"||"_s;
}

QString SqlDialect::isNullFunction() const {
    return kind_ == DatabaseKind::SqlServer ? u"IsNull"_s : u"IfNull"_s;
}

QString SqlDialect::typedText(const QString& text) const {
    QString quoted = text;
    quoted.replace(u"'"_s, u"''"_s);
    return (kind_ == DatabaseKind::SqlServer ? u"N'"_s : u"'"_s) + quoted + u"'"_s;
}

QString SqlDialect::beginSerialised(const QString& lockName) const {
    if (kind_ == DatabaseKind::SQLite) return u"BEGIN IMMEDIATE"_s;
    QString name = lockName;
    name.replace(u"'"_s, u"''"_s);
    return u"SET NOCOUNT ON; BEGIN TRANSACTION; DECLARE @LockResult int; "
           u"EXEC @LockResult = sp_getapplock @Resource = N'%1', @LockMode = 'Exclusive', "
           u"@LockOwner = 'Transaction', @LockTimeout = %2; SELECT @LockResult AS LockResult"_s
               .arg(name)
               .arg(LockWaitMilliseconds);
}

QString SqlDialect::commitTransaction() const {
    return kind_ == DatabaseKind::SqlServer ? u"COMMIT TRANSACTION"_s : u"COMMIT"_s;
}

QString SqlDialect::rollbackTransaction() const {
    return kind_ == DatabaseKind::SqlServer ? u"IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"_s
                                            : u"ROLLBACK"_s;
}

QString SqlDialect::lockTimeout() const {
    if (kind_ == DatabaseKind::SQLite) return {};
    return u"SET LOCK_TIMEOUT %1"_s.arg(LockWaitMilliseconds);
}

}  // namespace kav::data
