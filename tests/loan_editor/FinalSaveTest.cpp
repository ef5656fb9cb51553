// The question before a final save, and the loan window's status bar.

#include <gtest/gtest.h>

#include "EditorFixture.h"
#include "loan_editor/FinalSaveChecks.h"
#include "loan_editor/LoanStatusBar.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

TEST(FinalSaveChecksSql, SqlServerTextOfTheMembersAndGuarantors) {
    loan_save::LoanRecord loan;
    loan.members = {{u"12"_s, {u"40"_s, u"12"_s, u"null"_s}},
                    {u"۴۰"_s, {u"7"_s, u""_s, u"null"_s}}};
    EXPECT_EQ(
        CheckedTsql(final_checks::PeopleQuery(data::SqlDialect(data::DatabaseKind::SqlServer),
                                              final_checks::PeopleIds(loan))),
        u"select e.ID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName', e.WorkStatusID from tblEmployee e Where e.ID in (12,40,7)"_s);
}

namespace {

class FinalSaveQuestion : public EditorTest,
                          public ::testing::WithParamInterface<std::tuple<int, int>> {
public:
    using EditorTest::editor;
    using EditorTest::OnPicker;
    using EditorTest::t;

protected:
    // What the window shows, and what its status bar says.
    QString windowState() {
        auto& w = editor();
        return QStringList{
            QString::number(mode()),       w.txtCode->text(),           w.txtLoanValue->Text(),
            w.TxtPerMonth->Text(),         w.txtPayBackNumber->text(),  w.txtRem->Text(),
            w.datLoanPayDate->farsidate(), w.datBeginDate->farsidate(), w.datEndDate->farsidate(),
            MemberColumn(1).join(u','),    w.stbLoan->MessageText()}
            .join(u'|');
    }
};

// A change the clerk made to loan 1 (members 1 with guarantors 2 and 3, and 4) and the lines
// the question then lists.
struct Case {
    const char* name;
    std::function<void(FinalSaveQuestion&, FormHRLoan&)> change;
    QStringList lines;
};

const QString kQuestion =
    u"? بررسي پيش از ثبت قطعي: پيش از ثبت قطعي، اين موارد را بررسي کنيد:\n%1\nآيا با اين حال وام ثبت قطعي شود؟"_s;

// clang-format off
const Case kCases[] = {
    {"CountZero", [](FinalSaveQuestion&, FormHRLoan& w) {
         // An instalment above the amount: the count it gives is 0.
         w.TxtPerMonth->setText(u"5000000"_s);
         w.txtPayBackNumber->setText(u"0"_s);
         w.txtRem->setText(u"1000000"_s);
     }, {u"- تعداد اقساط مشخص نشده يا صفر است."_s}},
    {"NoFirstInstalment", [](FinalSaveQuestion&, FormHRLoan& w) { w.datBeginDate->Clear(); },
     {u"- تاريخ شروع قسط مشخص نشده است."_s}},
    {"TermsAndSettlement", [](FinalSaveQuestion&, FormHRLoan& w) {
         w.txtLoanValue->setText(u"1200000"_s);  // the count and instalment not recomputed
         w.datEndDate->setFarsidate(u"1404/02/31"_s);
     }, {u"- جمع اقساط و مانده (1/000/000) با مبلغ وام (1/200/000) برابر نيست."_s,
         u"- تاريخ تسويه (1404/02/31) با تعداد اقساط مطابقت ندارد: 12 قسط از 1403/01/31 تا 1403/12/30 است."_s}},
    {"PaymentAndCeiling", [](FinalSaveQuestion&, FormHRLoan& w) {
         w.datLoanPayDate->setFarsidate(u"1403/02/10"_s);
         w.txtLoanValue->setText(u"60000000"_s);
         w.TxtPerMonth->setText(u"5000000"_s);
         w.txtRem->setText(u"0"_s);
     }, {u"- تاريخ پرداخت (1403/02/10) بعد از تاريخ شروع قسط (1403/01/31) است."_s,
         u"- مبلغ وام (60/000/000) از سقف اين نوع وام (50/000/000) بيشتر است."_s}},
    {"Members", [](FinalSaveQuestion& test, FormHRLoan& w) {
         test.t.db.exec(u"update tblEmployee set WorkStatusID = 3 where ID = 4"_s);
         test.OnPicker(Pick(2, {2, 3, 3}));
         w.cmdAddEmp_Click();
     }, {u"- کارمند «مريم احمدي» (کد 1002) ضامن خودش است."_s,
         u"- «حسن کريمي» (کد 1003) دو بار ضامن کارمند «مريم احمدي» (کد 1002) است."_s,
         u"- کارمند «زهرا موسوي» (کد 1004) ترک کار کرده است."_s}},
};
// clang-format on

}  // namespace

// Only yes saves; no and no answer write nothing and leave the window as it was.
TEST_P(FinalSaveQuestion, ListsEveryProblemOnItsOwnLineAndOnlyYesSaves) {
    const auto [index, answer] = GetParam();
    const Case& c = kCases[index];
    auto& w = editor();
    Edit(TemporaryLoan);
    c.change(*this, w);
    w.TxtPerMonth_GotFocus();  // the save's recalculation then leaves the terms as they are
    EXPECT_EQ(Shown(), QStringList());  // changing the members asks nothing
    const QString before = Snapshot();
    const QString shown = windowState();
    t.messages->answers = {answer};
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(), QStringList{kQuestion.arg(c.lines.join(u'\n'))});
    if (answer == 1) {
        EXPECT_EQ(Code(TemporaryLoan).toInt(), 8);
        EXPECT_EQ(mode(), ModeView);
    } else {
        EXPECT_EQ(Snapshot(), before);
        EXPECT_EQ(windowState(), shown);
    }
}

INSTANTIATE_TEST_SUITE_P(YesNoAndNoAnswer, FinalSaveQuestion,
                         ::testing::Combine(::testing::Range(0, int(std::size(kCases))),
                                            ::testing::Values(1, 0, 5)),
                         [](const auto& info) {
                             const int answer = std::get<1>(info.param);
                             return std::string(kCases[std::get<0>(info.param)].name) +
                                    (answer == 1   ? "Yes"
                                     : answer == 0 ? "No"
                                                   : "NoAnswer");
                         });

TEST_F(EditorTest, NothingToListAsksNothingAndTemporarySavesAndNewMembersCheckNothing) {
    auto& w = editor();
    Edit(TemporaryLoan);
    w.cmdFinSave_Click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(Code(TemporaryLoan).toInt(), 8);
    // A member who guarantees himself twice, saved as temporary: not a word.
    Edit(SeparateLoan);
    OnPicker(Pick(2, {2, 2, -1}));
    w.cmdAddEmp_Click();
    w.cmdRegSave_Click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(Scalar(u"select SupporterEmployeeID2 from tblHRLoanDetail where LoanID=4"_s), 2);
}

TEST_F(EditorTest, TheStatusBarShowsTheModeAndWhatEachWriteDidWithTheLoan) {
    auto& w = editor();
    // Mode, then what the last write did.
    auto bar = [&] { return w.stbLoan->ModeText() + u" | "_s + w.stbLoan->MessageText(); };
    session().LoanFormMode = ModeEmpty;
    w.DisableLockComponent();
    EXPECT_EQ(bar(), u"حالت: بدون وام | "_s);
    w.cmdNew_Click();
    EXPECT_EQ(bar(), u"حالت: جديد | "_s);
    w.cmbLoanType->setCurrentIndex(0);
    w.txtLoanValue->setText(u"2000"_s);
    w.txtPayBackNumber->setText(u"4"_s);
    w.datEndDate->setFarsidate(u"1403/08/30"_s);
    w.cmdRegSave_Click();
    EXPECT_EQ(bar(), u"حالت: مشاهده | وام با شماره رايانه اي 6 به صورت موقت ثبت شد."_s);
    Edit(TemporaryLoan);
    EXPECT_EQ(bar(), u"حالت: ويرايش | وام با شماره رايانه اي 6 به صورت موقت ثبت شد."_s);
    w.FlexEmployee->setRow(2);
    w.cmdDeleteEmp_Click();
    EXPECT_EQ(bar(), u"حالت: ويرايش | کارمند «زهرا موسوي» از وام با شماره رايانه اي 1 حذف شد."_s);
    w.cmdFinSave_Click();
    EXPECT_EQ(bar(), u"حالت: مشاهده | وام شماره 8 (شماره رايانه اي 1) به صورت قطعي ثبت شد."_s);
    t.messages->answers = {1};
    w.cmdBacktoTemp_Click();
    EXPECT_EQ(bar(), u"حالت: مشاهده | وام شماره 8 (شماره رايانه اي 1) به حالت موقت برگشت."_s);
    t.messages->answers = {1};
    w.cmdDelete_Click();
    EXPECT_EQ(bar(), u"حالت: بدون وام | وام با شماره رايانه اي 1 حذف شد."_s);
    EXPECT_EQ(w.lblMessage->text(), u" "_s);  // its own text, as before
    w.stbLoan->ShowNotice(u"تاريخچه اي نگه داشته نمي شود."_s);
    EXPECT_EQ(bar(), u"حالت: بدون وام | تاريخچه اي نگه داشته نمي شود."_s);
}
