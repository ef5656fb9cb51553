#include "data/Procedures.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>

#include "data/Names.h"
#include "data/SqlDialect.h"
#include "base/Errors.h"

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

[[noreturn]] void failStatement(const QSqlQuery& q, const QString& sql) {
    const QSqlError e = q.lastError();
    QString text = e.text().trimmed();
    if (text.isEmpty()) text = e.databaseText();
    throw KavError(KavError::Kind::Database, text + u"\n"_s + sql);
}

QSqlQuery run(QSqlDatabase& db, const QString& sql, const QVariantList& values) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql)) failStatement(q, sql);
    for (const QVariant& v : values) q.addBindValue(v);
    if (!q.exec()) failStatement(q, sql);
    return q;
}

// A Gregorian date as the embedded database stores it; an empty date is 1900-01-01.
QVariant dateValue(const QVariant& v) {
    return SqlDialect(DatabaseKind::SQLite).dateText(SqlDialect::readDate(v));
}

// A Persian date text: the text as given, never Null.
QVariant farsiValue(const QVariant& v) {
    const QString s = v.isNull() ? QString() : v.toString();
    return s.isNull() ? u""_s : s;
}

QVariant intValue(const QVariant& v, const QString& name) {
    bool ok = false;
    const qlonglong value = v.toLongLong(&ok);
    if (!ok)
        throw KavError(KavError::Kind::Usage,
                       u"مقدار پارامتر %1 عدد صحيح نيست: «%2»"_s.arg(name, v.toString()));
    return value;
}

QVariant amountValue(const QVariant& v, const QString& name) {
    bool ok = false;
    const double value = v.toDouble(&ok);
    if (!ok)
        throw KavError(KavError::Kind::Usage,
                       u"مقدار پارامتر %1 عدد نيست: «%2»"_s.arg(name, v.toString()));
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
         amountValue(p[2], n::atMonthlyDebit), dateValue(p[3]), farsiValue(p[4]), dateValue(p[5]),
         farsiValue(p[6])});
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
        {intValue(p[1], n::atLoanID), intValue(p[2], n::atEmployeeID), dateValue(p[3]),
         farsiValue(p[4]), dateValue(p[5]), farsiValue(p[6]), amountValue(p[7], n::atMonthlyDebit),
         intValue(p[0], n::atID)});
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
