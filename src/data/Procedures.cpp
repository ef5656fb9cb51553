#include "data/Procedures.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <climits>
#include <cmath>

#include "base/Errors.h"
#include "data/DriverError.h"
#include "data/Names.h"
#include "data/SqlDialect.h"

using namespace Qt::StringLiterals;

namespace kav::data {

namespace n = names;

const ProcedureInfo& HasPermissionProcedure() {
    static const ProcedureInfo info{n::spVarekHasPermission, {n::atUserID, n::atFormPermissionID}};
    return info;
}

const ProcedureInfo& LoanExceptionNewProcedure() {
    static const ProcedureInfo info{
        n::spHRLoanExceptionNew,
        {n::atLoanID, n::atEmployeeID, n::atMonthlyDebit, n::atBeginDate, n::atFarsiBeginDate,
         n::atEndDate, n::atFarsiEndDate}};
    return info;
}

const ProcedureInfo& LoanExceptionUpdateProcedure() {
    static const ProcedureInfo info{
        n::spHRLoanExceptionUpdate,
        {n::atID, n::atLoanID, n::atEmployeeID, n::atBeginDate, n::atFarsiBeginDate, n::atEndDate,
         n::atFarsiEndDate, n::atMonthlyDebit}};
    return info;
}

QString OdbcCallText(const ProcedureInfo& procedure) {
    QStringList marks;
    for (qsizetype i = 0; i < procedure.parameters.size(); ++i) marks << u" ?"_s;
    return u"{? = CALL dbo."_s + procedure.name + u'(' + marks.join(u',') + u") }"_s;
}

namespace {

[[noreturn]] void failStatement(const QSqlQuery& q, const QString&) {
    throw DriverError(q.lastError());
}

QSqlQuery run(QSqlDatabase& db, const QString& sql, const QVariantList& values) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql)) failStatement(q, sql);
    for (const QVariant& v : values) q.addBindValue(v);
    if (!q.exec()) failStatement(q, sql);
    return q;
}

// The parameters arrive as the suite's procedures receive them, and are converted the way
// SQL Server converts a value to the parameter's type: what it would refuse raises the
// type-mismatch error naming the parameter, and a Null stays Null unless the procedure
// itself replaces it.

[[noreturn]] void notA(const QString& what, const QString& name, const QVariant& v) {
    throw KavError(KavError::Kind::TypeMismatch,
                   u"مقدار پارامتر %1 %2 نيست: «%3»"_s.arg(name, what, v.toString()));
}

bool isText(const QVariant& v) { return v.typeId() == QMetaType::QString; }

// @BeginDate, @EndDate (datetime): the procedures store a Null as 1900-01-01, as is the
// empty date (an invalid QDate, or an empty text, which SQL Server reads as 1900-01-01).
// A text must be a date ("yyyy-MM-dd" or "yyyyMMdd", a time of day allowed).
QVariant dateValue(const QVariant& v, const QString& name) {
    const SqlDialect lite(DatabaseKind::SQLite);
    if (v.isNull()) return lite.dateText(QDate());
    switch (v.typeId()) {
        case QMetaType::QDate:
        case QMetaType::QDateTime:
            return lite.dateText(SqlDialect::readDate(v));
        case QMetaType::QString: {
            if (v.toString().trimmed().isEmpty()) return lite.dateText(QDate());
            const QDate d = SqlDialect::readDate(v);
            if (!d.isValid()) notA(u"تاريخ"_s, name, v);
            return lite.dateText(d);
        }
        default:
            notA(u"تاريخ"_s, name, v);
    }
}

// @FarsiBeginDate, @FarsiEndDate (nvarchar(10)): a Null is stored as the empty text; a longer
// text is cut to ten characters, as the parameter's type cuts it.
QVariant farsiValue(const QVariant& v) {
    if (v.isNull()) return u""_s;
    return v.toString().left(10);
}

// An int parameter: a whole number, a number with a fraction cut towards zero, a text of a
// whole number; an empty text is 0. Null stays Null.
QVariant intValue(const QVariant& v, const QString& name) {
    if (v.isNull()) return QVariant(QMetaType::fromType<qlonglong>());
    if (isText(v)) {
        const QString t = v.toString().trimmed();
        if (t.isEmpty()) return qlonglong(0);
        bool ok = false;
        const qlonglong value = t.toLongLong(&ok);
        if (!ok || value < INT_MIN || value > INT_MAX) notA(u"عدد صحيح"_s, name, v);
        return value;
    }
    bool ok = false;
    const double value = v.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= double(INT_MIN) - 1 ||
        value >= double(INT_MAX) + 1)
        notA(u"عدد صحيح"_s, name, v);
    return qlonglong(std::trunc(value));
}

// A money parameter: a number within the money range, or a text of one; an empty text is 0.
// Null stays Null.
QVariant amountValue(const QVariant& v, const QString& name) {
    if (v.isNull()) return QVariant(QMetaType::fromType<double>());
    bool ok = false;
    double value = 0;
    if (isText(v)) {
        const QString t = v.toString().trimmed();
        value = t.isEmpty() ? 0.0 : t.toDouble(&ok);
        if (t.isEmpty()) ok = true;
    } else {
        value = v.toDouble(&ok);
    }
    if (!ok || !std::isfinite(value)) notA(u"مبلغ"_s, name, v);
    if (std::fabs(value) > 922337203685477.5807)
        throw KavError(
            KavError::Kind::Overflow,
            u"مقدار پارامتر %1 از محدوده مبلغ بيرون است: «%2»"_s.arg(name, v.toString()));
    return value;
}

void checkCount(const ProcedureInfo& p, const QVariantList& params) {
    if (params.size() != p.parameters.size())
        throw KavError(
            KavError::Kind::Usage,
            u"روال %1 با %2 پارامتر فراخوانده شد؛ %3 پارامتر مي‌خواهد."_s
                .arg(p.name, QString::number(params.size()), QString::number(p.parameters.size())));
}

int hasPermission(QSqlDatabase& db, const QVariantList& p) {
    const QString sql = u"select count(*) from "_s + n::tblVarekUserPermission + u" where "_s +
                        n::UserID + u" = ? and "_s + n::FormPermissionID + u" = ?"_s;
    QSqlQuery q =
        run(db, sql, {intValue(p[0], n::atUserID), intValue(p[1], n::atFormPermissionID)});
    const bool granted = q.next() && q.value(0).toLongLong() > 0;
    return granted ? 1 : 0;
}

int exceptionNew(QSqlDatabase& db, const QVariantList& p) {
    // @LoanID, @EmployeeID, @MonthlyDebit, @BeginDate, @FarsiBeginDate, @EndDate, @FarsiEndDate
    const QString sql = u"insert into "_s + n::tblHRLoanException + u" ("_s +
                        QStringList{n::LoanID,         n::EmployeeID, n::MonthlyDebit, n::BeginDate,
                                    n::FarsiBeginDate, n::EndDate,    n::FarsiEndDate}
                            .join(u", "_s) +
                        u") values (?, ?, ?, ?, ?, ?, ?)"_s;
    run(db, sql,
        {intValue(p[0], n::atLoanID), intValue(p[1], n::atEmployeeID),
         amountValue(p[2], n::atMonthlyDebit), dateValue(p[3], n::atBeginDate), farsiValue(p[4]),
         dateValue(p[5], n::atEndDate), farsiValue(p[6])});
    // The key the insert just assigned, as SCOPE_IDENTITY() gives it on SQL Server.
    const QString last = u"select last_insert_rowid()"_s;
    QSqlQuery q = run(db, last, {});
    if (!q.next()) failStatement(q, last);
    return q.value(0).toInt();
}

int exceptionUpdate(QSqlDatabase& db, const QVariantList& p) {
    // @ID, @LoanID, @EmployeeID, @BeginDate, @FarsiBeginDate, @EndDate, @FarsiEndDate,
    // @MonthlyDebit
    const QString sql = u"update "_s + n::tblHRLoanException + u" set "_s + n::LoanID +
                        u" = ?, "_s + n::EmployeeID + u" = ?, "_s + n::BeginDate + u" = ?, "_s +
                        n::FarsiBeginDate + u" = ?, "_s + n::EndDate + u" = ?, "_s +
                        n::FarsiEndDate + u" = ?, "_s + n::MonthlyDebit + u" = ? where "_s + n::ID +
                        u" = ?"_s;
    run(db, sql,
        {intValue(p[1], n::atLoanID), intValue(p[2], n::atEmployeeID),
         dateValue(p[3], n::atBeginDate), farsiValue(p[4]), dateValue(p[5], n::atEndDate),
         farsiValue(p[6]), amountValue(p[7], n::atMonthlyDebit), intValue(p[0], n::atID)});
    return 0;
}

}  // namespace

int RunEmulatedProcedure(QSqlDatabase& db, const QString& procedure, const QVariantList& params) {
    QString name = procedure.trimmed();
    if (name.startsWith(u"dbo."_s, Qt::CaseInsensitive)) name = name.mid(4);
    struct Entry {
        const ProcedureInfo& info;
        int (*run)(QSqlDatabase&, const QVariantList&);
    };
    const Entry entries[] = {{HasPermissionProcedure(), hasPermission},
                             {LoanExceptionNewProcedure(), exceptionNew},
                             {LoanExceptionUpdateProcedure(), exceptionUpdate}};
    for (const Entry& e : entries) {
        if (name.compare(e.info.name, Qt::CaseInsensitive) != 0) continue;
        checkCount(e.info, params);
        return e.run(db, params);
    }
    throw KavError(
        KavError::Kind::Database,
        u"روال ذخيره‌شده «%1» در پايگاه داده محلي وجود ندارد."_s
            .arg(procedure));
}

}  // namespace kav::data
