#pragma once

// The loan editor's own texts, as the users know them.

#include <QString>

namespace kav::editor_texts {

using namespace Qt::StringLiterals;

// The module's title and the editor's caption when empty.
inline const QString TitleEmpty = u"وام کارمندان"_s;
inline const QString TitleView = u"وام کارمندان (مشاهده)"_s;
inline const QString TitleEdit = u"وام کارمندان (ويرايش)"_s;
inline const QString TitleNew = u"وام کارمندان (جديد)"_s;
// Status line after New: the title followed by this.
inline const QString StatusNewSuffix = u" جديد"_s;
// Status line after Edit: this followed by the title.
inline const QString StatusEditPrefix = u"اصلاح "_s;
inline const QString StatusDeletePrefix = u"حذف "_s;
// Title of the delete question (two blanks).
inline const QString DeleteTitlePrefix = u"حذف  "_s;
inline const QString CancelTitlePrefix = u"انصراف از ثبت "_s;
inline const QString AreYouSure = u"آيا مطمئن هستيد؟"_s;
inline const QString TroubleTitle = u"اشکال"_s;
inline const QString InfoTitle = u"اطلاع"_s;
inline const QString PaidRefusalStart = u"به دليل محاسبه در فيش هاي حقوقي ("_s;
inline const QString PaidRefusalDeleteEnd = u" عدد)، امکان حذف وجود ندارد!"_s;
inline const QString PaidRefusalBackEnd = u" عدد)، امکان بازگشت وجود ندارد!"_s;
inline const QString UnloadTemporaryQuestion =
    u"در صورتي که اطلاعات را ثبت قطعي نکنيد، در محاسبات فيش حقوقي لحاظ نخواهد شد، آيا قصد خروج داريد؟"_s;
inline const QString UnloadEditQuestion =
    u"اطلاعات ممکن است تغيير کرده باشد، آيا قصد خروج بدون ثبت تغييرات داريد؟"_s;
inline const QString LabelMaxLoanValue = u"سقف وام:"_s;
inline const QString LabelOriginalValue = u"مبلغ اوليه:"_s;
inline const QString LabelRequestedValue = u"مانده اول ماه:"_s;
inline const QString LabelPayBackNumber = u"تعداد اقساط:"_s;
inline const QString LabelPerMonth = u"اقساط ماهيانه:"_s;
inline const QString LabelRem = u"مانده:"_s;
inline const QString OptionFirstMonth = u"ماه اول"_s;
inline const QString OptionLastMonth = u"ماه آخر"_s;
inline const QString OptionSeparateMonth = u"ماه جداگانه در آخرين ماه"_s;
inline const QString LabelRemainderOptions = u"پرداخت مانده اقساط در:"_s;
inline const QString LabelPayDate = u"تاريخ پرداخت:"_s;
inline const QString LabelBeginDate = u":تاريخ شروع قسط"_s;
inline const QString LabelEndDate = u":تاريخ تسويه"_s;
inline const QString LabelLoanType = u"نوع وام:"_s;
inline const QString LabelNotes = u"ملاحظات:"_s;
inline const QString CaptionAddOrdinanceEmployees = u"کارمندان داراي حکم کارگزيني"_s;
inline const QString MemberGridFormat =
    u"رديف |^شماره رايانه اي کارمند |^کد   کارمند|^ کارمند   |^ ضامن 1 |^ ضامن 2 |^ ضامن 3|kav1|kav2|kav3"_s;
inline const QString CaptionNew = u"جديد"_s;
inline const QString CaptionEdit = u"اصلاح"_s;
inline const QString CaptionDelete = u"حذف"_s;
inline const QString CaptionCancel = u"انصراف"_s;
inline const QString CaptionExit = u"خروج"_s;
inline const QString CaptionSearch = u"جستجو"_s;
inline const QString CaptionRegSave = u"ثبت موقت"_s;
inline const QString CaptionFinSave = u"ثبت قطعي"_s;
inline const QString CaptionBalance = u"تعديل وام"_s;
inline const QString NoTypeWarning = u"ابتدا نوع وام را مشخص كنيد."_s;
inline const QString BeginBeforePayWarning = u"تاريخ شروع قسط نبايد قبل از تاريخ پرداخت باشد."_s;
inline const QString BeginAfterEndWarning = u"تاريخ شروع قسط نبايد بعد از تاريخ پرداخت باشد."_s;

// Captions the module adds for controls that had none of their own.
inline const QString CaptionBackToTemp = u"بازگشت به موقت"_s;
inline const QString CaptionAddEmp = u"افزودن کارمند"_s;
inline const QString CaptionDeleteEmp = u"حذف کارمند"_s;
inline const QString CaptionDefineAccount = u"تعريف حساب"_s;
inline const QString CaptionTools = u"عمليات"_s;
inline const QString LabelCode = u"شماره وام:"_s;
inline const QString LabelID = u"شماره رايانه اي:"_s;
inline const QString CaptionIsValid = u"معتبر"_s;
inline const QString FrameMembers = u"کارمندان و ضامنين وام"_s;

// Saving a loan.
inline const QString NoMemberError = u"هيچ کارمندي مشخص نشده است."_s;
// A count of instalments that is not a whole number is never written (%1: the count typed).
inline const QString CountNotWholeError = u"تعداد اقساط «%1» عدد صحيح نيست؛ وام ثبت نشد."_s;
inline const QString CountNegativeError = u"تعداد اقساط «%1» منفي است؛ وام ثبت نشد."_s;
// A write refused because the stored loan changed after this window showed it: what
// changed, then what was not done.
inline const QString ChangedGone = u"اين وام را کاربر ديگري حذف کرده است"_s;
inline const QString ChangedFinal = u"اين وام را کاربر ديگري ثبت قطعي کرده است"_s;
inline const QString ChangedTemporary = u"اين وام را کاربر ديگري به حالت موقت برگردانده است"_s;
inline const QString ChangedPaid =
    u"براي اين وام در اين فاصله در فيش هاي حقوقي (%1 عدد) کسر ثبت شده است"_s;
inline const QString NotSaved = u"؛ تغييرات شما ثبت نشد."_s;
inline const QString NotDeleted = u"؛ وام حذف نشد."_s;
inline const QString NotReturned = u"؛ وام به حالت موقت برنگشت."_s;
inline const QString MemberNotRemoved = u"؛ کارمند از وام حذف نشد."_s;
// The overlap question: this, the number of members, then OverlapQuestionEnd.
inline const QString OverlapQuestionStart = u"تعداد «"_s;
inline const QString OverlapQuestionEnd =
    u"» کارمند قبلا در صندوقي با زمان متداخل وجود دارد، آيا از ثبت مطمئن هستيد؟"_s;
inline const QString DuplicateMemberMarked = u"کاربر تکراري در جدول مشخص شده است."_s;
// Returning a final loan to temporary.
inline const QString BackToTempQuestion = u"آيا قصد بازگشت به حالت موقت داريد؟"_s;
inline const QString QuestionTitle = u"پرسش"_s;

// The employee picker.
inline const QString PickerCaption = u"تعيين کارمند"_s;
inline const QString LabelBorrower = u"كارمند:"_s;
inline const QString LabelGuarantor1 = u"ضامن 1:"_s;
inline const QString LabelGuarantor2 = u"ضامن 2:"_s;
inline const QString LabelGuarantor3 = u"ضامن 3:"_s;
inline const QString CaptionOK = u"تاييد"_s;
inline const QString DuplicateEmployeeWarning = u"کارمند موردنظر تکراري است."_s;
inline const QString NoEmployeeError = u"کارمند مشخص نشده است!"_s;
// Employees with work status 3 are never borrowers.
inline const QString BorrowerFilter =
    u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s;
inline const QString EmployeeMajorView = u"vwEmployeeMajor"_s;
inline const QString EmployeeMinorView = u"vwEmployeeMinor"_s;

}  // namespace kav::editor_texts
