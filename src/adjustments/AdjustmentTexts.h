#pragma once

// The adjustment window's and the list's own texts, as the users know them.

#include <QString>

namespace kav::adjustment_texts {

using namespace Qt::StringLiterals;

// The window's caption.
inline const QString Caption = u"تعديل وام"_s;
inline const QString LabelEmployee = u"كارمند:"_s;
inline const QString LabelFrom = u"از تاريخ:"_s;
inline const QString LabelTo = u"تا تاريخ:"_s;
inline const QString LabelPerMonth = u"اقساط ماهيانه:"_s;

// Status line after New: the title followed by this.
inline const QString StatusNewSuffix = u" جديد"_s;

// Status line after Edit and during Delete: this followed by the title.
inline const QString StatusEditPrefix = u"اصلاح "_s;
inline const QString StatusDeletePrefix = u"حذف "_s;

// Command captions.
inline const QString CaptionNew = u"جديد"_s;
inline const QString CaptionEdit = u"اصلاح"_s;
inline const QString CaptionDelete = u"حذف"_s;
inline const QString CaptionSave = u"ثبت"_s;
inline const QString CaptionCancel = u"انصراف"_s;
inline const QString CaptionList = u"جستجو"_s;
inline const QString CaptionExit = u"خروج"_s;

// The save's warnings, titled WarningTitle().
inline const QString WarnReversedPeriod =
    u"تاريخ شروع تعديل وام,از پايان آن بزرگتر انتخاب شده است."_s;
inline const QString WarnPeriodOutsideLoan =
    u"بازه تعديل با توجه به بازه پرداخت وام به درستي تعيين نشده است."_s;
inline const QString WarnInstalmentAboveAmount = u"مقدار قسط بايد كمتر از مبلغ باشد."_s;

// Questions: the delete title (two blanks) and the cancel title, each followed by the title.
inline const QString DeleteTitlePrefix = u"حذف  "_s;
inline const QString CancelTitlePrefix = u"انصراف از ثبت "_s;
inline const QString AreYouSure = u"آيا مطمئن هستيد؟"_s;

// The list's grid header.
inline const QString ListFormat =
    u"رديف |^کارمند |^تاريخ شروع بازه|^تاريخ پايان بازه|^مقدار قسط |^شماره رايانه |^شماره رايانه وام "_s;

// ---- Texts the module adds ----

// A monthly debit that is not an amount (%1: the text typed).
inline const QString WarnDebitNotAmount =
    u"مقدار «%1» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s;
// The instalment box as messages name it.
inline const QString BoxPerMonth = u"اقساط ماهيانه"_s;

// The loan's terms.
inline const QString FrameLoanInfo = u"مشخصات وام"_s;
inline const QString LabelLoanCode = u"شماره وام:"_s;
inline const QString LabelLoanType = u"نوع وام:"_s;
inline const QString LabelLoanValue = u"مبلغ وام:"_s;
inline const QString LabelMonthlyValue = u"قسط ماهيانه:"_s;
inline const QString LabelPayBackNumber = u"تعداد اقساط:"_s;
inline const QString LabelRemainder = u"پرداخت مانده اقساط در:"_s;
inline const QString LabelBeginDate = u"تاريخ شروع قسط:"_s;
inline const QString LabelEndDate = u"تاريخ تسويه:"_s;
inline const QString TemporaryLoan = u"موقت"_s;
inline const QString RemainderFirst = u"ماه اول"_s;
inline const QString RemainderLast = u"ماه آخر"_s;
inline const QString RemainderSeparate = u"ماه جداگانه در آخرين ماه"_s;
inline const QString LoanNotFound = u"وام شماره %1 يافت نشد."_s;

// The member's schedule.
inline const QString FrameBalance = u"برنامه بازپرداخت کارمند"_s;
inline const QString LabelPaidSoFar = u"کسر شده در فيش:"_s;
inline const QString LabelDebt = u"مانده بدهي:"_s;
inline const QString LabelLastMonth = u"ماه پايان بازپرداخت:"_s;
inline const QString RowColumn = u"رديف"_s;
inline const QString NoLoan = u"وامي مشخص نشده است."_s;
inline const QString NoMember = u"کارمندي انتخاب نشده است."_s;
inline const QString NotAMember = u"کارمند انتخاب شده عضو اين وام نيست."_s;
inline const QString CaptionExportCsv = u"ذخيره CSV"_s;
inline const QString CaptionExportPdf = u"ذخيره PDF"_s;
inline const QString CaptionPrint = u"چاپ"_s;
inline const QString ExportCaption = u"ذخيره برنامه بازپرداخت"_s;
// The export's proposed file name: these words, the loan, the member's code, then the date.
inline const QString FileSchedule = u"برنامه بازپرداخت"_s;
inline const QString FileLoanNumber = u"وام %1"_s;
inline const QString FileTemporaryLoan = u"وام موقت %1"_s;
inline const QString ExportTitle = u"برنامه بازپرداخت وام"_s;
inline const QString NothingToExport = u"برنامه بازپرداختي براي ذخيره وجود ندارد."_s;
inline const QString FactLoan = u"وام: "_s;
inline const QString FactMember = u"کارمند: "_s;
inline const QString FactTerms = u"مبلغ وام: %1   قسط ماهيانه: %2   تعداد اقساط: %3"_s;
inline const QString FactDates = u"تاريخ شروع قسط: %1   تاريخ تسويه: %2"_s;
inline const QString FactBalance = u"کسر شده در فيش: %1   مانده بدهي: %2"_s;

// The adjustment list.
inline const QString ListCaption = u"ليست تعديل وام"_s;
inline const QString ListLabelFrom = u"از تاريخ:"_s;
inline const QString ListLabelTo = u"تا تاريخ:"_s;
inline const QString ListCaptionSearch = u"جستجو"_s;
inline const QString ListCaptionNew = u"جديد"_s;
inline const QString ListCaptionExit = u"خروج"_s;
// DoSort with a column it keeps no direction for (%1: the column).
inline const QString SortColumnMissing = u"ستون %1 براي مرتب سازي وجود ندارد."_s;

}  // namespace kav::adjustment_texts
