#include "data/LoanDatabaseCheck.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include "base/Errors.h"
#include "data/DriverError.h"
#include "data/Names.h"

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {

// SQLite 26 (SQLITE_NOTADB): the file's first page is not a database header.
bool notADatabase(const QSqlError& error) {
    return error.nativeErrorCode() == u"26" ||
           error.text().contains(u"not a database"_s, Qt::CaseInsensitive);
}

// SQLite "no such table", SQL Server 208 "Invalid object name".
bool missingObject(const QSqlError& error) {
    for (const QString& code : error.nativeErrorCode().split(u';', Qt::SkipEmptyParts))
        if (code.trimmed() == u"208") return true;
    const QString text = error.text();
    return text.contains(u"no such table"_s, Qt::CaseInsensitive) ||
           text.contains(u"Invalid object name"_s, Qt::CaseInsensitive);
}

QString named(const QString& shownName) {
    return shownName.isEmpty() ? u"پايگاه داده اين اتصال"_s : u"پايگاه داده «%1»"_s.arg(shownName);
}

}  // namespace

void CheckLoanDatabase(QSqlDatabase db, const QString& shownName) {
    QStringList missing;
    for (const QString& object : {names::tblHRLoan, names::tblHRLoanDetail, names::tblHRLoanType,
                                  names::tblEmployee, names::vwHRLoanData}) {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (q.exec(u"select * from "_s + object + u" where 1=0"_s)) {
            q.finish();
            continue;
        }
        const QSqlError error = q.lastError();
        q.finish();
        if (notADatabase(error))
            throw KavError(
                KavError::Kind::Connection,
                shownName.isEmpty()
                    ? u"اين اتصال به پايگاه داده نمي‌رسد؛ چيزي نوشته نشد."_s
                    : u"فايل «%1» پايگاه داده نيست؛ چيزي در آن نوشته نشد."_s.arg(shownName));
        if (!missingObject(error)) throw DriverError(error);
        missing << object;
    }
    if (!missing.isEmpty())
        throw KavError(KavError::Kind::Connection,
                       u"%1 پايگاه داده وام کارمندان نيست: %2 در آن وجود ندارد؛ چيزي در آن نوشته "
                       u"نشد."_s.arg(named(shownName), missing.join(u"، "_s)));
}

}  // namespace kav::data
