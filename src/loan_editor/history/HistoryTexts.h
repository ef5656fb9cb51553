#pragma once

// The texts of the loan's history, the deleted loans and the restore: the module's own.

#include <QString>

namespace kav::history::texts {

using namespace Qt::StringLiterals;

// The Tools menu entries and the windows' captions.
inline const QString HistoryCaption = u"تاريخچه وام"_s;
inline const QString DeletedLoansCaption = u"وام هاي حذف شده"_s;

// Printing either window.
inline const QString CaptionPrint = u"چاپ"_s;

// The history window.
inline const QString HistoryHeaders[] = {u"زمان"_s, u"کاربر"_s, u"عمليات"_s, u"تغييرات"_s};
inline const QString CaptionPutBack = u"افزودن دوباره کارمند حذف شده"_s;
// In the loan window's status bar: a member put back from the history (%1 his name).
inline const QString MemberPutBack =
    u"کارمند «%1» از تاريخچه به جدول برگشت؛ با ثبت وام ذخيره مي شود."_s;
// No row: the loan has no history yet.
inline const QString NoHistory = u"براي اين وام تغييري ثبت نشده است."_s;

// The deleted loans.
inline const QString DeletedHeaders[] = {u"شماره رايانه اي"_s, u"آخرين شماره وام"_s, u"نوع وام"_s,
                                         u"تعداد کارمندان"_s,  u"حذف کننده"_s,       u"زمان حذف"_s};
inline const QString CaptionRestore = u"بازگرداندن"_s;
inline const QString RestoreTitle = u"بازگرداندن وام"_s;
// The question before a restore: %1 the deleted loan's ID, %2 its member count.
inline const QString RestoreQuestion =
    u"وام حذف شده با شماره رايانه اي %1 و %2 کارمند به صورت وام موقت بازگردانده شود؟"_s;
// In the loan window's status bar after a restore: %1 the deleted loan's ID, %2 the new one.
inline const QString Restored =
    u"وام حذف شده با شماره رايانه اي %1 به صورت موقت با شماره رايانه اي %2 بازگردانده شد."_s;
inline const QString RestoreOnlyInViewOrEmpty =
    u"وام حذف شده فقط در حالت مشاهده يا بدون وام بازگردانده مي شود."_s;

// In the loan window's status bar, once, when the database has no history table.
inline const QString NoHistoryKept =
    u"تاريخچه تغييرات وام ها نگهداري نمي شود (جدول tblHRLoanHistory در پايگاه داده نيست)."_s;

}  // namespace kav::history::texts
