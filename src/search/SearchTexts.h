#pragma once

// The search window's own texts, as the users know them.

#include <QString>
#include <QStringList>

namespace kav::search_texts {

using namespace Qt::StringLiterals;

// The caption: this followed by the module's title.
inline const QString CaptionPrefix = u"جستجوي "_s;

// Captions of the criteria, one per control or pair of from/to controls.
inline const QString LabelLoanType = u"نوع وام:"_s;
inline const QString LabelLoanValue = u"مبلغ از:"_s;
inline const QString LabelPerMonth = u"مبلغ ماهيانه از:"_s;
inline const QString LabelPaymentDate = u"تاريخ پرداخت از:"_s;
inline const QString LabelBeginDate = u":تاريخ شروع قسط از"_s;
inline const QString LabelEndDate = u":تاريخ تسويه از"_s;
inline const QString LabelEmployee = u"كارمند:"_s;
inline const QString LabelSupporter = u"ضامن:"_s;
inline const QString LabelNotes = u"ملاحظات:"_s;
inline const QString CaptionTempSave = u"ثبت موقت"_s;
inline const QString CaptionFinalSave = u"ثبت قطعي"_s;

// The result grid: header texts and widths in twips, column 0 to 16.
inline const QStringList GridHeaders = {
    u"رديف"_s,         u"کد پرسنلي"_s,       u"نام"_s,
    u"نام خانوادگي"_s, u"نوع وام"_s,         u"تاريخ دريافت وام"_s,
    u"مبلغ وام"_s,     u"تاريخ شروع"_s,      u"تاريخ پايان"_s,
    u"مبلغ قسط"_s,     u"مانده اول ماه"_s,   u"مانده آخر ماه"_s,
    u"وضعيت وام"_s,    u"ضامن 1"_s,          u"ضامن 2"_s,
    u"ضامن 3"_s,       u"شماره رايانه اي"_s,
};
inline constexpr int GridWidths[17] = {600,  1200, 1200, 1500, 2400, 1200, 1200, 1200, 1200,
                                       1200, 1200, 1200, 1200, 1800, 1800, 1800, 0};

// The status column.
inline const QString StatusTemporary = u"ثبت موقت"_s;
inline const QString StatusFinal = u"ثبت قطعي"_s;

// The empty result.
inline const QString NotFound = u"رکوردي يافت نشد."_s;
inline const QString InfoTitle = u"اطلاع"_s;

// Texts the window adds: the to-boxes' label, the commands, the status line under the grid and
// the export.
inline const QString LabelTo = u"تا:"_s;
inline const QString CaptionSearch = u"جستجو"_s;
inline const QString CaptionNewSearch = u"جستجوي جديد"_s;
inline const QString CaptionExport = u"ذخيره در فايل CSV"_s;
inline const QString CaptionPrint = u"چاپ"_s;
inline const QString CaptionExit = u"خروج"_s;
// "%1 rows found."
inline const QString StatusFound = u"%1 رکورد يافت شد."_s;
// A from/to date pair (%1) cleared its to-date (%2), which was not after the from-date (%3).
inline const QString StatusToDateCleared =
    u"%1: تاريخ «تا» (%2) پاک شد، چون بايد بعد از تاريخ «از» (%3) باشد."_s;
inline const QString PairPaymentDate = u"تاريخ پرداخت"_s;
inline const QString PairBeginDate = u"تاريخ شروع قسط"_s;
inline const QString PairEndDate = u"تاريخ تسويه"_s;
// "%1 rows saved in the file «%2»."
inline const QString StatusSaved = u"%1 رکورد در فايل «%2» ذخيره شد."_s;
inline const QString ExportDialogTitle = u"ذخيره نتيجه جستجو"_s;
// The export's proposed file name, before the date.
inline const QString ExportFileName = u"نتيجه جستجوي وام"_s;

// Errors, shown titled "خطا".
// The amount box (%1) holds a text (%2) that is not a number.
inline const QString AmountNotNumber = u"مبلغ «%2» در «%1» عدد نيست."_s;
inline const QString BoxLoanValueFrom = u"مبلغ از"_s;
inline const QString BoxLoanValueTo = u"مبلغ تا"_s;
inline const QString BoxPerMonthFrom = u"مبلغ ماهيانه از"_s;
inline const QString BoxPerMonthTo = u"مبلغ ماهيانه تا"_s;
// The hidden id of a result row (%1) is no loan id.
inline const QString BadLoanId = u"شماره رايانه اي «%1» شماره وام معتبري نيست."_s;
// A sort column (%1) beyond the remembered orders.
inline const QString BadSortColumn =
    u"ستون %1 براي مرتب سازي وجود ندارد؛ ستون ها از 0 تا 30 هستند."_s;

}  // namespace kav::search_texts
