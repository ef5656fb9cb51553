#pragma once

// The loan sheet's texts: the module's own.

#include <QString>

namespace kav::sheet::texts {

using namespace Qt::StringLiterals;

// The Tools menu entries and the save dialog's caption.
inline const QString MenuPrint = u"چاپ برگه وام"_s;
inline const QString MenuSavePdf = u"ذخيره برگه وام (PDF)"_s;
inline const QString SaveCaption = u"ذخيره برگه وام"_s;
// In the loan window's status bar after a save (%1 the file).
inline const QString Saved = u"برگه وام در فايل «%1» ذخيره شد."_s;

// The title: the session's title (%1), then the sheet with the loan's number (%2).
inline const QString TitleFinal = u"%1 - برگه وام شماره %2"_s;
inline const QString TitleTemporary = u"%1 - برگه وام موقت"_s;
// In large type on every page of a temporary loan.
inline const QString Notice = u"وام موقت: تا ثبت قطعي در محاسبات فيش حقوقي لحاظ نمي شود"_s;

// The facts, "label: value", two on one line apart by two em spaces.
inline const QString FactNumber = u"شماره وام: %1\u2003\u2003شماره رايانه اي: %2"_s;
inline const QString FactTemporaryNumber = u"شماره رايانه اي: %1 (وام موقت)"_s;
inline const QString FactType = u"نوع وام: %1"_s;
inline const QString FactAmounts = u"مبلغ وام: %1\u2003\u2003مبلغ اوليه: %2"_s;
inline const QString FactInstalments =
    u"تعداد اقساط: %1\u2003\u2003اقساط ماهيانه: %2\u2003\u2003مانده: %3\u2003\u2003پرداخت مانده اقساط در: %4"_s;
inline const QString FactDates =
    u"تاريخ پرداخت: %1\u2003\u2003تاريخ شروع قسط: %2\u2003\u2003تاريخ تسويه: %3"_s;
inline const QString FactNotes = u"ملاحظات: %1"_s;
inline const QString FactMemberCount = u"تعداد کارمندان: %1"_s;
inline const QString FactBorrower = u"وام گيرنده: %1"_s;
// Where the remainder goes (UseRemainedValueInFirstMonth 1, 0, 2).
inline const QString RemainderFirst = u"ماه اول"_s;
inline const QString RemainderLast = u"ماه آخر"_s;
inline const QString RemainderSeparate = u"ماه جداگانه در آخرين ماه"_s;
// A value the loan does not have.
inline const QString None = u"-"_s;
// A guarantor whose employee row is gone (%1 his ID).
inline const QString UnknownEmployee = u"شماره رايانه اي %1"_s;

// The tables.
inline const QString ColumnRow = u"رديف"_s;
inline const QString ColumnCode = u"کد کارمند"_s;
inline const QString ColumnMember = u"کارمند"_s;
inline const QString ColumnGuarantor = u"ضامن %1"_s;
inline const QString ColumnGuarantorName = u"ضامن"_s;
inline const QString GuarantorsTitle = u"ضامنين وام گيرنده"_s;
inline const QString NoGuarantor = u"اين کارمند ضامني ندارد."_s;

// The signatures.
inline const QString Pledge = u"امضاي وام گيرنده و ضامنين زير به منزله پذيرش شرايط بالا است."_s;
inline const QString SignBorrower = u"امضاي وام گيرنده: %1"_s;
inline const QString SignGuarantor = u"امضاي ضامن %1: %2"_s;
inline const QString SignDate = u"تاريخ:"_s;

// The file name's words.
inline const QString FileSheet = u"برگه وام"_s;
inline const QString FileTemporarySheet = u"برگه وام موقت"_s;

// The loan is not in the database (%1 its ID).
inline const QString NotFound = u"وامي با شماره رايانه اي %1 يافت نشد."_s;

}  // namespace kav::sheet::texts
