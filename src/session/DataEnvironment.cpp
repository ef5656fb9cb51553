#include "session/DataEnvironment.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include "base/Errors.h"
#include "data/DriverError.h"
#include "data/Procedures.h"
#include "session/BusyPointer.h"

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcSql, "kav.sql", QtWarningMsg)

namespace kav {

namespace {

// A statement the driver refused: Busy when another client holds the database, else
// Database, with the driver's text on a line of its own.
[[noreturn]] void databaseError(const QString& sql, const QSqlError& error) {
    qCWarning(lcSql) << "statement failed:" << sql << error.text() << error.nativeErrorCode();
    throw data::DriverError(error);
}

}  // namespace

// ---- Recordset ----

void Recordset::Open(const QString& sql) {
    Close();
    BusyPointer busy;  // while the statement waits for the database and its rows arrive
    cnt_->Open();
    QSqlQuery q(cnt_->Database());
    q.setForwardOnly(true);
    qCDebug(lcSql) << sql;
    if (!q.exec(sql)) databaseError(sql, q.lastError());
    const QSqlRecord rec = q.record();
    const int cols = rec.count();
    for (int c = 0; c < cols; ++c) {
        // The first of two columns with one name wins, as a lookup by name finds it.
        index_.insert(rec.fieldName(c).toLower(), index_.value(rec.fieldName(c).toLower(), c));
    }
    while (q.next()) {
        QVector<QVariant> row;
        row.reserve(cols);
        for (int c = 0; c < cols; ++c) row.append(q.value(c));
        rows_.append(std::move(row));
    }
    if (q.lastError().isValid()) databaseError(sql, q.lastError());
    q.finish();
    open_ = true;
    pos_ = 0;
}

void Recordset::Close() {
    open_ = false;
    pos_ = 0;
    index_.clear();
    rows_.clear();
}

bool Recordset::HasField(const QString& column) const { return index_.contains(column.toLower()); }

QVariant Recordset::Fields(const QString& column) const {
    const auto it = index_.constFind(column.toLower());
    if (it == index_.constEnd())
        throw KavError(KavError::Kind::Database,
                       u"ستون «%1» در نتيجه پرس و جو وجود ندارد."_s.arg(column));
    if (EOF_())
        throw KavError(KavError::Kind::Database,
                       u"رکورد جاري وجود ندارد (خواندن ستون «%1»)."_s.arg(column));
    return rows_[pos_][*it];
}

// ---- Connection ----

Connection::Connection()
    : qtName_(u"kav-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces)) {}

Connection::~Connection() {
    Close();
    if (QSqlDatabase::contains(qtName_)) QSqlDatabase::removeDatabase(qtName_);
}

void Connection::SetConnectionString(const QString& oleDb) {
    Close();
    connectionString_ = oleDb;
    dialect_.reset();
}

bool Connection::IsOpen() const {
    return QSqlDatabase::contains(qtName_) && QSqlDatabase::database(qtName_, false).isOpen();
}

void Connection::Open() {
    if (IsOpen()) return;
    const data::ConnectionTarget target = data::MapConnectionString(connectionString_);
    if (QSqlDatabase::contains(qtName_)) QSqlDatabase::removeDatabase(qtName_);
    if (!QSqlDatabase::isDriverAvailable(target.qtDriver))
        throw KavError(KavError::Kind::Connection,
                       u"راه انداز پايگاه داده %1 نصب نشده است."_s.arg(target.qtDriver));
    if (target.qtDriver == u"QSQLITE" && !QFileInfo::exists(target.databaseName))
        throw KavError(KavError::Kind::Connection,
                       u"فايل پايگاه داده «%1» وجود ندارد."_s.arg(target.databaseName));
    QSqlDatabase db = QSqlDatabase::addDatabase(target.qtDriver, qtName_);
    db.setDatabaseName(target.databaseName);
    // A client that finds the database held by another waits this long before it says so.
    if (target.qtDriver == u"QSQLITE")
        db.setConnectOptions(
            u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(data::SqlDialect::LockWaitMilliseconds));
    BusyPointer busy;
    if (!db.open()) {
        const QString text = db.lastError().text().trimmed();
        throw KavError(KavError::Kind::Connection,
                       u"اتصال به پايگاه داده برقرار نشد:"_s + DriverTextLine(text));
    }
    dialect_ = std::make_unique<data::SqlDialect>(target.kind);
}

void Connection::Close() {
    if (QSqlDatabase::contains(qtName_)) {
        QSqlDatabase db = QSqlDatabase::database(qtName_, false);
        if (db.isOpen()) db.close();
    }
}

QSqlDatabase Connection::Database() {
    Open();
    return QSqlDatabase::database(qtName_, false);
}

const data::SqlDialect& Connection::Dialect() {
    Open();
    return *dialect_;
}

data::DatabaseKind Connection::Kind() { return Dialect().kind(); }

void Connection::Execute(const QString& sql) {
    BusyPointer busy;
    Open();
    QSqlQuery q(Database());
    qCDebug(lcSql) << sql;
    if (!q.exec(sql)) databaseError(sql, q.lastError());
    q.finish();
}

void Connection::BeginSerialised(const QString& lockName) {
    const data::SqlDialect& dialect = Dialect();
    const QString sql = dialect.beginSerialised(lockName);
    if (!dialect.beginReturnsLockResult()) {
        Execute(sql);
        return;
    }
    BusyPointer busy;
    int result = -999;
    {
        QSqlQuery q(Database());
        q.setForwardOnly(true);
        qCDebug(lcSql) << sql;
        if (!q.exec(sql)) {
            const QSqlError error = q.lastError();
            q.finish();
            Rollback();
            databaseError(sql, error);
        }
        if (q.next()) result = q.value(0).toInt();
        q.finish();
    }
    // sp_getapplock: 0 or 1 granted; -1 timed out, -2 cancelled, -3 deadlock, -999 refused.
    if (result < 0) {
        Rollback();
        throw data::BusyError(u"sp_getapplock @Resource = '%1': %2"_s.arg(lockName).arg(result));
    }
}

void Connection::Commit() {
    const QString sql = Dialect().commitTransaction();
    try {
        Execute(sql);
    } catch (...) {
        // A COMMIT that failed leaves nothing half-written: what is still open is rolled back.
        Rollback();
        throw;
    }
}

void Connection::Rollback() noexcept {
    try {
        if (!IsOpen()) return;
        QSqlQuery q(Database());
        const QString sql = Dialect().rollbackTransaction();
        qCDebug(lcSql) << sql;
        if (!q.exec(sql)) qCWarning(lcSql) << "rollback failed:" << q.lastError().text();
        q.finish();
    } catch (...) {
    }
}

// ---- WriteTransaction ----

WriteTransaction::WriteTransaction(Connection& cnt, const QString& lockName) : cnt_(cnt) {
    cnt_.BeginSerialised(lockName);
}

WriteTransaction::~WriteTransaction() {
    if (open_) cnt_.Rollback();
}

void WriteTransaction::Commit() {
    open_ = false;  // Commit rolls back by itself when the COMMIT fails
    cnt_.Commit();
}

// ---- DataEnvironment ----

DataEnvironment::DataEnvironment() : rs_(cnt_) {}

int DataEnvironment::CallProcedure(const QString& name, const QVariantList& params) {
    cnt_.Open();
    if (cnt_.Kind() == data::DatabaseKind::SQLite) {
        BusyPointer busy;
        QSqlDatabase db = cnt_.Database();
        return data::RunEmulatedProcedure(db, name, params);
    }

    const data::ProcedureInfo* info = nullptr;
    for (const auto* p : {&data::HasPermissionProcedure(), &data::LoanExceptionNewProcedure(),
                          &data::LoanExceptionUpdateProcedure()})
        if (p->name.compare(name, Qt::CaseInsensitive) == 0) info = p;
    if (!info)
        throw KavError(KavError::Kind::Usage, u"روال ذخيره شده «%1» تعريف نشده است."_s.arg(name));

    BusyPointer busy;
    QSqlQuery q(cnt_.Database());
    q.setForwardOnly(true);
    const QString call = data::OdbcCallText(*info);
    if (!q.prepare(call)) databaseError(call, q.lastError());
    q.bindValue(0, 0, QSql::Out);
    for (int i = 0; i < params.size(); ++i) {
        QVariant v = params[i];
        if (v.typeId() == QMetaType::QDate && !v.toDate().isValid()) v = QDate(1900, 1, 1);
        q.bindValue(i + 1, v);
    }
    if (!q.exec()) databaseError(call, q.lastError());
    // The return value arrives after every result has been read.
    do {
        while (q.next()) {
        }
    } while (q.nextResult());
    const int value = q.boundValue(0).toInt();
    q.finish();
    return value;
}

int DataEnvironment::spVarekHasPermission(qint16 userId, qint32 formPermissionId) {
    return CallProcedure(data::HasPermissionProcedure().name,
                         {QVariant::fromValue<int>(userId), QVariant::fromValue(formPermissionId)});
}

int DataEnvironment::spHRLoanExceptionNew(qint32 loanId, qint32 employeeId, double monthlyDebit,
                                          const QDate& beginDate, const QString& farsiBeginDate,
                                          const QDate& endDate, const QString& farsiEndDate) {
    return CallProcedure(
        data::LoanExceptionNewProcedure().name,
        {loanId, employeeId, monthlyDebit, beginDate, farsiBeginDate, endDate, farsiEndDate});
}

int DataEnvironment::spHRLoanExceptionUpdate(qint32 id, qint32 loanId, qint32 employeeId,
                                             const QDate& beginDate, const QString& farsiBeginDate,
                                             const QDate& endDate, const QString& farsiEndDate,
                                             double monthlyDebit) {
    return CallProcedure(
        data::LoanExceptionUpdateProcedure().name,
        {id, loanId, employeeId, beginDate, farsiBeginDate, endDate, farsiEndDate, monthlyDebit});
}

}  // namespace kav
