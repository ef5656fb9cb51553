#include "session/Module.h"

#include <QCalendar>
#include <QDate>
#include <QDialog>

#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "session/MessageDialogs.h"
#include "session/Printing.h"

using namespace Qt::StringLiterals;

namespace kav {

Module::Module() : messages_(DialogMessageFactory()), modal_([](QDialog& d) { return d.exec(); }) {}

Module::~Module() {
    // Windows go first: they may still reach the data environment while closing.
    windows_.clear();
    dtEn_.reset();
}

DataEnvironment& Module::DtEn() {
    if (!dtEn_) {
        dtEn_ = std::make_unique<DataEnvironment>();
        dtEn_->cnt().SetConnectionString(session.SessionConnectionString);
        dtEn_->cnt().SetLockWaitHook(lockWaitHook_);
    }
    return *dtEn_;
}

void Module::OpenSessionConnection() {
    // A fresh environment: fresh connection, commands and recordsets. The connection opens
    // with the session's string at the first command that needs it.
    dtEn_.reset();
    DtEn();
}

// A driver's text inside a message never shows a password of the session's connection.
void Module::ShowMessage(const QVariant& title, const QString& text) const {
    kav::ShowMessage(messages_, title, data::MaskPasswords(text, session.SessionConnectionString));
}

qint16 Module::AskQuestion(const QVariant& title, const QString& text) const {
    return kav::AskQuestion(messages_, title,
                            data::MaskPasswords(text, session.SessionConnectionString));
}

bool Module::HasPermission(qint32 permission) {
    return DtEn().spVarekHasPermission(session.SessionUserID, permission) == 1;
}

QString Module::RoleRefusalText() {
    return u"شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد."_s;
}

void Module::ShowRoleRefusal() const { ShowMessage(ErrorTitle(), RoleRefusalText()); }

QString Module::SystemWorkingDate() {
    Recordset rs = DtEn().NewRecordset();
    rs.Open(u"Select * from tblVarekSystemParameters Where ID=3450"_s);
    if (rs.RecordCount() > 0) {
        rs.MoveFirst();
        return rs.Fields(u"Value"_s).toString();
    }
    const QCalendar jalali(QCalendar::System::Jalali);
    const QCalendar::YearMonthDay ymd = jalali.partsFromDate(QDate::currentDate());
    return u"%1/%2/%3"_s.arg(ymd.year, 4, 10, QChar(u'0'))
        .arg(ymd.month, 2, 10, QChar(u'0'))
        .arg(ymd.day, 2, 10, QChar(u'0'));
}

void Module::SetLockWaitHook(std::function<void()> hook) {
    lockWaitHook_ = std::move(hook);
    if (dtEn_) dtEn_->cnt().SetLockWaitHook(lockWaitHook_);
}

int Module::ShowModal(QDialog& dialog) const { return modal_(dialog); }

void Module::PrintPreview(QWidget* parent, QPrinter& printer,
                          const std::function<void(QPrinter&)>& paint) const {
    if (preview_)
        preview_(parent, printer, paint);
    else
        ShowQtPrintPreview(*this, parent, printer, paint);
}

void Module::missingPort(const char* port) {
    throw KavError(KavError::Kind::Usage,
                   u"پنجره مورد نياز در اين برنامه موجود نيست (%1)."_s.arg(QString::fromLatin1(port)));
}

}  // namespace kav
