#pragma once

// The monthly register's own texts (the window, its files and the command line).

#include <QString>
#include <QStringList>

namespace kav::deductions_texts {

using namespace Qt::StringLiterals;

// The window's caption, the loan window's menu entry and the PDF's title.
inline const QString Caption = u"کسور ماهانه وام"_s;

// The criteria and the commands.
inline const QString LabelMonth = u"ماه:"_s;
inline const QString LabelLoanType = u"نوع وام:"_s;
inline const QString LabelEmployee = u"كارمند:"_s;
inline const QString AllLoanTypes = u"همه انواع وام"_s;
inline const QString CaptionSearch = u"جستجو"_s;
inline const QString CaptionExportCsv = u"ذخيره CSV"_s;
inline const QString CaptionExportPdf = u"ذخيره PDF"_s;
inline const QString CaptionPrint = u"چاپ"_s;
inline const QString CaptionExit = u"خروج"_s;

// The register's columns, in the order of deductions::Column.
inline const QStringList ColumnTitles = {u"کد پرسنلي"_s,       u"نام و نام خانوادگي"_s,
                                         u"شماره وام"_s,       u"نوع وام"_s,
                                         u"قسط ماهيانه"_s,     u"تعديل"_s,
                                         u"کسر اين ماه"_s,     u"کسر شده در فيش"_s,
                                         u"مانده پس از ماه"_s, u"توضيح"_s};

// The marks of the note column (besides the schedule's own: the remainder month, a month
// after the settlement date).
inline const QString NotePaidWithoutPlan = u"کسر در فيش بدون قسط"_s;
inline const QString NoteLeft = u"ترک کار کرده"_s;

// The totals: the tabs, the columns of their grids, the notes of the total lines in the files
// and the overall line under the grids.
inline const QString TabRows = u"اعضاي وام"_s;
inline const QString TabEmployees = u"جمع هر کارمند"_s;
inline const QString TabLoanTypes = u"جمع هر نوع وام"_s;
inline const QString ColumnLoanCount = u"تعداد وام"_s;
inline const QString ColumnRowCount = u"تعداد رديف"_s;
// %1: the number of the employee's loans, or of the rows.
inline const QString TotalEmployee = u"جمع کارمند (%1 وام)"_s;
inline const QString TotalLoanType = u"جمع نوع وام (%1 رديف)"_s;
inline const QString TotalOverall = u"جمع کل (%1 رديف)"_s;
// %1 month, %2 rows, %3 to deduct, %4 deducted on payslips, %5 balance.
inline const QString OverallLine =
    u"جمع کل ماه %1: %2 رديف؛ کسر اين ماه %3؛ کسر شده در فيش %4؛ مانده پس از ماه %5"_s;

// The status line: the rows found, none, a file saved.
inline const QString StatusRows = u"%1 رديف از %2 کارمند"_s;
inline const QString StatusNone = u"براي ماه %1 رديفي نيست."_s;
inline const QString StatusSaved = u"%1 رديف در فايل «%2» ذخيره شد."_s;
// A double-click while the loan window shows a loan being entered or edited.
inline const QString StatusEditorBusy =
    u"پنجره وام در حال ثبت يا ويرايش وام است؛ وام %1 پس از ثبت يا انصراف باز مي‌شود."_s;

// The facts at the head of every page of the PDF.
inline const QString FactMonth = u"ماه: %1"_s;
inline const QString FactLoanType = u"نوع وام: %1"_s;
inline const QString FactEmployee = u"كارمند: %1"_s;
inline const QString FactAll = u"همه"_s;

// Saving: the dialog's title and the suggested names (%1: the month as yyyy-mm).
inline const QString ExportDialogTitle = u"ذخيره کسور ماهانه وام"_s;
// The exports' proposed file name (%1: the month), before today's date.
inline const QString FileName = u"کسور وام %1"_s;

// Warnings, titled WarningTitle.
inline const QString WarningTitle = u"هشدار"_s;
// %1: the text typed.
inline const QString NotAMonth =
    u"«%1» ماه شمسي نيست؛ ماه را به شکل سال/ماه بنويسيد، مانند 1403/07."_s;

// The command line (kavhrloan --deductions): %1 rows, %2 the month, %3 the file.
inline const QString CommandWritten = u"%1 رديف کسور ماه %2 در فايل «%3» نوشته شد."_s;
inline const QString CommandNeedsCsv =
    u"--deductions ماه را مي‌گيرد و --csv فايلي را که نوشته مي‌شود؛ هر دو لازم است."_s;
inline const QString CommandNoDatabase =
    u"پايگاه داده مشخص نشده است: آن را با --connection بدهيد (يا رشته اتصال ذخيره شده)، يا "
    u"--demo براي پايگاه داده نمايشي."_s;
inline const QString CommandNoUser =
    u"کاربر مشخص نشده است: شناسه کاربر را با --user ID بدهيد (يا UserID ذخيره شده)."_s;

}  // namespace kav::deductions_texts
