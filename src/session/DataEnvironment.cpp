#include "session/DataEnvironment.h"

#include <sqlite3.h>

#include <QFileInfo>
#include <QLoggingCategory>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstring>
#include <thread>

#include "base/Errors.h"
#include "data/DriverError.h"
#include "data/Procedures.h"
#include "session/Vb.h"

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

// A refused call of the sqlite3 C library, as Qt SQL reports it: the engine's message as the
// database's text and its result code as the native code (5 busy, 6 locked).
[[noreturn]] void sqliteError(sqlite3* db, int rc, const QString& sql) {
    const QString text = QString::fromUtf8(sqlite3_errmsg(db));
    databaseError(sql, QSqlError(u"Unable to execute statement"_s, text, QSqlError::StatementError,
                                 QString::number(rc & 0xff)));
}

QString noCurrentRow(const QString& column) {
    return u"رکورد جاري وجود ندارد (خواندن ستون «%1»)."_s.arg(column);
}

// The names of a prepared statement's columns.
QStringList columnNames(sqlite3_stmt* stmt) {
    QStringList names;
    const int n = sqlite3_column_count(stmt);
    names.reserve(n);
    for (int c = 0; c < n; ++c) names << QString::fromUtf8(sqlite3_column_name(stmt, c));
    return names;
}

// A column of the current row as Qt's SQLite driver gives it: a Null as a null text, whole
// numbers as qlonglong, fractions as double, texts as QString, blobs as QByteArray.
QVariant sqliteValue(sqlite3_stmt* stmt, int c) {
    switch (sqlite3_column_type(stmt, c)) {
        case SQLITE_INTEGER:
            return QVariant(qlonglong(sqlite3_column_int64(stmt, c)));
        case SQLITE_FLOAT:
            return QVariant(sqlite3_column_double(stmt, c));
        case SQLITE_NULL:
            return QVariant(QMetaType::fromType<QString>());
        case SQLITE_BLOB:
            return QByteArray(static_cast<const char*>(sqlite3_column_blob(stmt, c)),
                              sqlite3_column_bytes(stmt, c));
        default:
            return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, c)),
                                     sqlite3_column_bytes(stmt, c));
    }
}

// A fraction as the windows show it.
QByteArray fractionText(double value) { return vb::CStr(value).toUtf8(); }

}  // namespace

// ---- ColumnNames ----

void ColumnNames::assign(const QStringList& names) {
    clear();
    names_ = names;
    for (int c = 0; c < names.size(); ++c) {
        const QString folded = names[c].toLower();
        if (!folded_.contains(folded)) folded_.insert(folded, c);
    }
}

void ColumnNames::clear() {
    names_.clear();
    folded_.clear();
    asked_.clear();
}

int ColumnNames::find(const QString& name) const {
    const auto asked = asked_.constFind(name);
    if (asked != asked_.constEnd()) return *asked;
    const int index = folded_.value(name.toLower(), -1);
    asked_.insert(name, index);
    return index;
}

int ColumnNames::require(const QString& name) const {
    const int index = find(name);
    if (index < 0)
        throw KavError(KavError::Kind::Database,
                       u"ستون «%1» در نتيجه پرس و جو وجود ندارد."_s.arg(name));
    return index;
}

// ---- Recordset ----

Recordset::Recordset(Connection& cnt) : cnt_(&cnt) {}
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

void Recordset::Open(const QString& sql) {
    Close();
    BusyPointer busy;  // while the statement waits for the database and its rows arrive
    qCDebug(lcSql) << sql;
    if (sqlite3* db = cnt_->sqliteHandle()) {
        compact_ = true;
        sqlite3_stmt* stmt = cnt_->prepare(sql);
        const int cols = sqlite3_column_count(stmt);
        names_.assign(columnNames(stmt));
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            for (int c = 0; c < cols; ++c) {
                Cell cell;
                cell.type = qint8(sqlite3_column_type(stmt, c));
                switch (cell.type) {
                    case SQLITE_INTEGER:
                        cell.value = sqlite3_column_int64(stmt, c);
                        break;
                    case SQLITE_FLOAT: {
                        const double d = sqlite3_column_double(stmt, c);
                        std::memcpy(&cell.value, &d, sizeof d);
                        break;
                    }
                    case SQLITE_TEXT:
                    case SQLITE_BLOB: {
                        // A UTF-8 database's text as it lies in the row (no terminated copy).
                        const void* p = cell.type == SQLITE_TEXT && !cnt_->utf8_
                                            ? static_cast<const void*>(sqlite3_column_text(stmt, c))
                                            : sqlite3_column_blob(stmt, c);
                        cell.size = sqlite3_column_bytes(stmt, c);
                        cell.value = qint64(texts_.size());
                        if (cell.size > 0) texts_.append(static_cast<const char*>(p), cell.size);
                        break;
                    }
                    default:
                        break;
                }
                cells_.push_back(cell);
            }
            ++rows_;
        }
        if (rc != SQLITE_DONE) {
            const QString text = QString::fromUtf8(sqlite3_errmsg(db));
            sqlite3_finalize(stmt);
            Close();
            databaseError(sql, QSqlError(u"Unable to fetch row"_s, text, QSqlError::StatementError,
                                         QString::number(rc & 0xff)));
        }
        sqlite3_finalize(stmt);
        // A large result does not keep the spare room its arrays grew with.
        if (cells_.capacity() - cells_.size() > cells_.size() / 4 + 4096) cells_.shrink_to_fit();
        if (texts_.capacity() - texts_.size() > texts_.size() / 4 + 65536) texts_.shrink_to_fit();
    } else {
        QSqlQuery q(cnt_->Database());
        q.setForwardOnly(true);
        if (!q.exec(sql)) databaseError(sql, q.lastError());
        const QSqlRecord rec = q.record();
        const int cols = rec.count();
        QStringList names;
        for (int c = 0; c < cols; ++c) names << rec.fieldName(c);
        names_.assign(names);
        while (q.next()) {
            for (int c = 0; c < cols; ++c) values_.push_back(q.value(c));
            ++rows_;
        }
        if (q.lastError().isValid()) {
            const QSqlError error = q.lastError();
            Close();
            databaseError(sql, error);
        }
        q.finish();
    }
    open_ = true;
    pos_ = 0;
}

void Recordset::Close() {
    open_ = false;
    compact_ = false;
    pos_ = 0;
    rows_ = 0;
    names_.clear();
    // A recordset that held many rows gives their memory back.
    std::vector<Cell>().swap(cells_);
    std::string().swap(texts_);
    std::vector<QVariant>().swap(values_);
}

bool Recordset::HasField(const QString& column) const { return names_.find(column) >= 0; }

int Recordset::FieldIndex(const QString& column) const { return names_.require(column); }

void Recordset::checkCurrent(int index, const QString& column) const {
    if (index < 0 || index >= names_.count())
        throw KavError(KavError::Kind::Database,
                       u"ستون %1 در نتيجه پرس و جو وجود ندارد."_s.arg(index));
    if (EOF_()) throw KavError(KavError::Kind::Database, noCurrentRow(column));
}

QVariant Recordset::Fields(const QString& column) const {
    const int index = names_.require(column);
    checkCurrent(index, column);
    return Fields(index);
}

QVariant Recordset::Fields(int index) const {
    checkCurrent(index, QString::number(index));
    const qsizetype at = pos_ * names_.count() + index;
    if (!compact_) return values_[size_t(at)];
    const Cell& cell = cells_[size_t(at)];
    switch (cell.type) {
        case SQLITE_INTEGER:
            return QVariant(qlonglong(cell.value));
        case SQLITE_FLOAT: {
            double d;
            std::memcpy(&d, &cell.value, sizeof d);
            return QVariant(d);
        }
        case SQLITE_TEXT:
            return QString::fromUtf8(texts_.data() + cell.value, cell.size);
        case SQLITE_BLOB:
            return QByteArray(texts_.data() + cell.value, cell.size);
        default:
            return QVariant(QMetaType::fromType<QString>());
    }
}

bool Recordset::IsNull(int index) const {
    checkCurrent(index, QString::number(index));
    const qsizetype at = pos_ * names_.count() + index;
    if (!compact_) return values_[size_t(at)].isNull();
    return cells_[size_t(at)].type == SQLITE_NULL;
}

// ---- RowReader ----

RowReader::RowReader(Connection& cnt, const QString& sql) : cnt_(&cnt), sql_(sql) {
    qCDebug(lcSql) << sql;
    if (cnt_->sqliteHandle()) {
        stmt_ = cnt_->prepare(sql);
        names_.assign(columnNames(stmt_));
        scratch_.resize(size_t(names_.count()));
        numbers_.resize(size_t(names_.count()));
    } else {
        query_ = std::make_unique<QSqlQuery>(cnt_->Database());
        query_->setForwardOnly(true);
        if (!query_->exec(sql)) {
            const QSqlError error = query_->lastError();
            query_.reset();
            databaseError(sql, error);
        }
        const QSqlRecord rec = query_->record();
        QStringList names;
        for (int c = 0; c < rec.count(); ++c) names << rec.fieldName(c);
        names_.assign(names);
        scratch_.resize(size_t(names_.count()));
    }
    cnt_->readers_.push_back(this);
    registered_ = true;
}

RowReader::~RowReader() { finish(); }

void RowReader::finish() noexcept {
    if (stmt_) sqlite3_finalize(stmt_);
    stmt_ = nullptr;
    if (query_) query_->finish();
    query_.reset();
    onRow_ = false;
    if (registered_) {
        auto& readers = cnt_->readers_;
        readers.erase(std::remove(readers.begin(), readers.end(), this), readers.end());
        registered_ = false;
    }
}

bool RowReader::Next() {
    onRow_ = false;
    if (stmt_) {
        const int rc = sqlite3_step(stmt_);
        if (rc == SQLITE_ROW) {
            onRow_ = true;
        } else if (rc != SQLITE_DONE) {
            sqlite3* db = sqlite3_db_handle(stmt_);
            const QString text = QString::fromUtf8(sqlite3_errmsg(db));
            finish();
            databaseError(sql_, QSqlError(u"Unable to fetch row"_s, text, QSqlError::StatementError,
                                          QString::number(rc & 0xff)));
        }
    } else if (query_) {
        if (query_->next()) {
            onRow_ = true;
        } else if (query_->lastError().isValid()) {
            const QSqlError error = query_->lastError();
            finish();
            databaseError(sql_, error);
        }
    }
    if (onRow_) ++rowsRead_;
    return onRow_;
}

void RowReader::checkCurrent(int index) const {
    if (index < 0 || index >= names_.count())
        throw KavError(KavError::Kind::Database,
                       u"ستون %1 در نتيجه پرس و جو وجود ندارد."_s.arg(index));
    if (!onRow_) throw KavError(KavError::Kind::Database, noCurrentRow(QString::number(index)));
}

bool RowReader::IsNull(int index) const {
    checkCurrent(index);
    if (stmt_) return sqlite3_column_type(stmt_, index) == SQLITE_NULL;
    return query_->isNull(index);
}

QVariant RowReader::Fields(int index) const {
    checkCurrent(index);
    if (stmt_) return sqliteValue(stmt_, index);
    return query_->value(index);
}

QByteArrayView RowReader::Text(int index) {
    checkCurrent(index);
    if (stmt_) {
        switch (sqlite3_column_type(stmt_, index)) {
            case SQLITE_NULL:
                return {};
            case SQLITE_INTEGER: {
                // Written here rather than by sqlite3, which would allocate the text.
                char* out = numbers_[size_t(index)].data();
                const char* end =
                    std::to_chars(out, out + NumberSize, sqlite3_column_int64(stmt_, index)).ptr;
                return QByteArrayView(out, end - out);
            }
            case SQLITE_FLOAT:
                scratch_[size_t(index)] = fractionText(sqlite3_column_double(stmt_, index));
                return scratch_[size_t(index)];
            case SQLITE_TEXT:
                // A UTF-8 database's text as it lies in the row, without the terminating
                // zero sqlite3_column_text would copy it to make.
                if (cnt_->utf8_) {
                    const auto* p = static_cast<const char*>(sqlite3_column_blob(stmt_, index));
                    return QByteArrayView(p, sqlite3_column_bytes(stmt_, index));
                }
                [[fallthrough]];
            default: {
                const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, index));
                return QByteArrayView(p, sqlite3_column_bytes(stmt_, index));
            }
        }
    }
    const QVariant v = query_->value(index);
    QByteArray& text = scratch_[size_t(index)];
    if (v.isNull())
        text.clear();
    else if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float)
        text = fractionText(v.toDouble());
    else
        text = v.toString().toUtf8();
    return text;
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
    sqlite_ = nullptr;
    const data::ConnectionTarget target = data::MapConnectionString(connectionString_);
    if (QSqlDatabase::contains(qtName_)) QSqlDatabase::removeDatabase(qtName_);
    if (!QSqlDatabase::isDriverAvailable(target.qtDriver))
        throw KavError(KavError::Kind::Connection,
                       u"راه انداز پايگاه داده %1 نصب نشده است."_s.arg(target.qtDriver));
    if (target.qtDriver == u"QSQLITE" && !QFileInfo::exists(target.databaseName))
        throw KavError(KavError::Kind::Connection,
                       u"فايل پايگاه داده «%1» وجود ندارد."_s.arg(target.databaseName));
    QSqlDatabase db = QSqlDatabase::addDatabase(target.qtDriver, qtName_);
    db.setDatabaseName(target.qtDriver == u"QODBC" ? data::QodbcDatabaseName(target.databaseName)
                                                   : target.databaseName);
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
    // Qt's SQLite driver and this library use the one sqlite3 library of the system, so the
    // connection's statements run on the driver's own handle (its busy wait included).
    if (target.qtDriver == u"QSQLITE" && db.driver()) {
        const QVariant handle = db.driver()->handle();
        if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
            sqlite_ = *static_cast<sqlite3* const*>(handle.constData());
    }
    // Waiting for another client's lock: try again every millisecond. SQLite's own wait sleeps
    // longer and longer between tries (up to 100 ms), so a client that saves often would keep
    // taking the lock back before a waiting one woke up.
    if (sqlite_) sqlite3_busy_handler(sqlite_, &Connection::waitForLock, this);
    utf8_ = false;
    if (sqlite_) {
        // The first read of the database: another client holding it past the wait is the
        // busy error here, after the one wait, not a second wait at the next statement.
        sqlite3_stmt* stmt = nullptr;
        int rc = sqlite3_prepare_v2(sqlite_, "PRAGMA encoding", -1, &stmt, nullptr);
        if (rc == SQLITE_OK) rc = sqlite3_step(stmt);
        if (rc == SQLITE_ROW)
            utf8_ =
                qstrcmp(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)), "UTF-8") == 0;
        sqlite3_finalize(stmt);
        if ((rc & 0xFF) == SQLITE_BUSY || (rc & 0xFF) == SQLITE_LOCKED) {
            const QString text = QString::fromUtf8(sqlite3_errstr(rc));
            Close();
            throw data::BusyError(text);
        }
    }
    dialect_ = std::make_unique<data::SqlDialect>(target.kind);
    // On SQL Server a statement that meets another client's lock waits as long as a write
    // waits for the module's own lock, then fails as busy (1222), instead of without end.
    if (const QString wait = dialect_->lockTimeout(); !wait.isEmpty() && !sqlite_) {
        QSqlQuery q(db);
        if (!q.exec(wait)) qCWarning(lcSql) << wait << q.lastError().text();
        q.finish();
    }
}

void Connection::Close() {
    // Statements still open on the handle are finalised first, or it would not close.
    while (!readers_.empty()) readers_.back()->finish();
    sqlite_ = nullptr;
    columns_.clear();
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

sqlite3* Connection::sqliteHandle() {
    Open();
    return sqlite_;
}

bool Connection::RunsOnSqlite() { return sqliteHandle() != nullptr; }

std::optional<QStringList> Connection::ColumnsOf(const QString& table) {
    Open();
    const QString key = table.toLower();
    if (const auto known = columns_.constFind(key); known != columns_.constEnd()) return *known;
    std::optional<QStringList> names;
    const QString sql = u"Select * from %1 Where 1=0"_s.arg(table);
    if (sqlite_) {
        sqlite3_stmt* stmt = nullptr;
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(sqlite_, utf8.constData(), int(utf8.size()), &stmt, nullptr) ==
                SQLITE_OK &&
            stmt)
            names = columnNames(stmt);
        sqlite3_finalize(stmt);
    } else {
        QSqlQuery q(Database());
        q.setForwardOnly(true);
        if (q.exec(sql)) {
            const QSqlRecord rec = q.record();
            names = QStringList();
            for (int c = 0; c < rec.count(); ++c) *names << rec.fieldName(c);
        }
        q.finish();
    }
    qCDebug(lcSql) << "columns of" << table << (names ? names->join(u',') : u"(none)"_s);
    columns_.insert(key, names);
    return names;
}

bool Connection::HasColumns(const QString& table, const QStringList& columns) {
    const std::optional<QStringList> present = ColumnsOf(table);
    if (!present) return false;
    for (const QString& c : columns)
        if (!present->contains(c, Qt::CaseInsensitive)) return false;
    return true;
}

int Connection::waitForLock(void* connection, int tries) {
    auto& self = *static_cast<Connection*>(connection);
    auto& waitStart = self.waitStart_;
    const auto now = std::chrono::steady_clock::now();
    if (tries == 0) waitStart = now;
    if (now - waitStart >= std::chrono::milliseconds(data::SqlDialect::LockWaitMilliseconds))
        return 0;  // busy: the statement fails with SQLITE_BUSY
    if (self.lockWaitHook_ &&
        (tries == 0 || now - self.waitHooked_ >= std::chrono::milliseconds(100))) {
        self.waitHooked_ = now;
        try {
            const std::function<void()> hook = self.lockWaitHook_;  // the hook may replace it
            hook();
        } catch (...) {
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 1;
}

sqlite3_stmt* Connection::prepare(const QString& sql) {
    const QByteArray utf8 = sql.toUtf8();
    sqlite3_stmt* stmt = nullptr;
    const char* tail = nullptr;
    const int rc = sqlite3_prepare_v2(sqlite_, utf8.constData(), int(utf8.size()), &stmt, &tail);
    if (rc != SQLITE_OK) {
        sqlite3_finalize(stmt);
        sqliteError(sqlite_, rc, sql);
    }
    // One statement per text, as Qt's driver runs them.
    if (tail && !QByteArrayView(tail, utf8.constData() + utf8.size() - tail).trimmed().isEmpty()) {
        sqlite3_finalize(stmt);
        databaseError(sql, QSqlError(u"Unable to execute multiple statements at a time"_s,
                                     u"Unable to execute multiple statements at a time"_s,
                                     QSqlError::StatementError, QString::number(SQLITE_MISUSE)));
    }
    if (!stmt)  // only blanks or a comment
        databaseError(sql, QSqlError(u"No query"_s, u"No query"_s, QSqlError::StatementError,
                                     QString::number(SQLITE_MISUSE)));
    return stmt;
}

void Connection::Execute(const QString& sql) {
    BusyPointer busy;
    Open();
    qCDebug(lcSql) << sql;
    if (sqlite_) {
        sqlite3_stmt* stmt = prepare(sql);
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        }
        if (rc != SQLITE_DONE) {
            const QString text = QString::fromUtf8(sqlite3_errmsg(sqlite_));
            sqlite3_finalize(stmt);
            databaseError(sql, QSqlError(u"Unable to execute statement"_s, text,
                                         QSqlError::StatementError, QString::number(rc & 0xff)));
        }
        sqlite3_finalize(stmt);
        return;
    }
    QSqlQuery q(Database());
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
        const QString sql = Dialect().rollbackTransaction();
        qCDebug(lcSql) << sql;
        if (sqlite_) {
            // Nothing to roll back when no transaction is open.
            if (sqlite3_get_autocommit(sqlite_)) return;
            char* message = nullptr;
            if (sqlite3_exec(sqlite_, sql.toUtf8().constData(), nullptr, nullptr, &message) !=
                SQLITE_OK)
                qCWarning(lcSql) << "rollback failed:" << message;
            sqlite3_free(message);
            return;
        }
        QSqlQuery q(Database());
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
