// The loan sheet: what its pages say, the Tools menu's entries, the PDF and the printed pages.

#include <QCalendar>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>
#include <algorithm>

#include "EditorFixture.h"
#include "base/Errors.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/sheet/LoanSheet.h"
#include "support/PdfText.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;

namespace kav::test {
namespace {

class SheetTest : public EditorTest {
protected:
    sheet::Content content(qint32 loan) {
        return sheet::ContentOf(sheet::ReadLoan(t.module.DtEn().cnt(), loan), u"وام کارمندان"_s);
    }
    // The entries as the clerk finds them when he opens the Tools menu.
    QAction* entry(const char* name) {
        emit editor().mnuTool->aboutToShow();
        return editor().mnuTool->findChild<QAction*>(QString::fromLatin1(name));
    }
    static QString rows(const QList<QStringList>& table) {
        QStringList out;
        for (const QStringList& r : table) out << r.join(u'|');
        return out.join(u'\n');
    }
};

TEST_F(SheetTest, WhatEachPageSays) {
    EXPECT_EQ(
        CheckedTsql(sheet::MembersQuery(data::SqlDialect(data::DatabaseKind::SqlServer), 7)),
        u"select d.EmployeeID, e.Code, e.FirstName +' '+e.SureName as 'EmployeeName', "
        "d.SupporterEmployeeID1, s1.Code as 'SupporterCode1', s1.FirstName +' '+s1.SureName "
        "as 'SupporterName1', d.SupporterEmployeeID2, s2.Code as 'SupporterCode2', "
        "s2.FirstName +' '+s2.SureName as 'SupporterName2', d.SupporterEmployeeID3, s3.Code "
        "as 'SupporterCode3', s3.FirstName +' '+s3.SureName as 'SupporterName3' from "
        "tblHRLoanDetail d left outer join tblEmployee e on e.ID=d.EmployeeID left outer join "
        "tblEmployee s1 on s1.ID=d.SupporterEmployeeID1 left outer join tblEmployee s2 on "
        "s2.ID=d.SupporterEmployeeID2 left outer join tblEmployee s3 on "
        "s3.ID=d.SupporterEmployeeID3 where d.LoanID=7"_s);

    // The temporary loan: the notice, its ID, its terms, its two members.
    const sheet::Content temporary = content(TemporaryLoan);
    EXPECT_EQ(temporary.title, u"وام کارمندان - برگه وام موقت"_s);
    EXPECT_EQ(temporary.notice, u"وام موقت: تا ثبت قطعي در محاسبات فيش حقوقي لحاظ نمي شود"_s);
    EXPECT_EQ(temporary.facts.join(u'\n'),
              u"شماره رايانه اي: 1 (وام موقت)\n"
              "نوع وام: قرض الحسنه\n"
              "مبلغ وام: 1/000/000\u2003\u2003مبلغ اوليه: 1/200/000\n"
              "تعداد اقساط: 12\u2003\u2003اقساط ماهيانه: 83/333\u2003\u2003مانده: 4\u2003\u2003"
              "پرداخت مانده اقساط در: ماه اول\n"
              "تاريخ پرداخت: 1403/01/06\u2003\u2003تاريخ شروع قسط: 1403/01/31\u2003\u2003"
              "تاريخ تسويه: 1403/12/30\n"
              "ملاحظات: وام مسکن\n"
              "تعداد کارمندان: 2"_s);
    EXPECT_EQ(temporary.memberColumns.join(u'|'), u"رديف|کد کارمند|کارمند|ضامن 1|ضامن 2|ضامن 3"_s);
    EXPECT_EQ(rows(temporary.memberRows),
              u"1|1001|علي رضايي|1002 - مريم احمدي|1003 - حسن کريمي\n2|1004|زهرا موسوي"_s);
    ASSERT_EQ(temporary.borrowers.size(), 2);
    const sheet::BorrowerPage& first = temporary.borrowers[0];
    EXPECT_EQ(
        first.facts.mid(0, 3).join(u'\n'),
        u"شماره رايانه اي: 1 (وام موقت)\nوام گيرنده: 1001 - علي رضايي\nنوع وام: قرض الحسنه"_s);
    EXPECT_EQ(rows(first.guarantorRows), u"1|1002|مريم احمدي\n2|1003|حسن کريمي"_s);
    EXPECT_EQ(first.signatures.join(u'|'),
              u"امضاي وام گيرنده: علي رضايي|امضاي ضامن 1: مريم احمدي|امضاي ضامن 2: حسن کريمي"_s);
    EXPECT_EQ(first.noGuarantor, QString());
    const sheet::BorrowerPage& second = temporary.borrowers[1];
    EXPECT_EQ(second.signatures.join(u'|'), u"امضاي وام گيرنده: زهرا موسوي"_s);
    EXPECT_EQ(second.noGuarantor, u"اين کارمند ضامني ندارد."_s);

    // The final loan by its number; a loan of Nulls says "-" where it has nothing.
    const sheet::Content final = content(FinalLoan);
    EXPECT_EQ(final.title, u"وام کارمندان - برگه وام شماره 7"_s);
    EXPECT_EQ(final.notice, QString());
    EXPECT_EQ(final.facts.value(0), u"شماره وام: 7\u2003\u2003شماره رايانه اي: 2"_s);
    EXPECT_EQ(final.facts.value(3),
              u"تعداد اقساط: 3\u2003\u2003اقساط ماهيانه: 300\u2003\u2003"
              "مانده: 0\u2003\u2003پرداخت مانده اقساط در: ماه آخر"_s);
    const sheet::Content sparse = content(SparseLoan);
    EXPECT_EQ(sparse.facts.mid(2, 5).join(u'\n'),
              u"مبلغ وام: 500\u2003\u2003مبلغ اوليه: -\n"
              "تعداد اقساط: -\u2003\u2003اقساط ماهيانه: -\u2003\u2003مانده: -\u2003\u2003"
              "پرداخت مانده اقساط در: -\n"
              "تاريخ پرداخت: -\u2003\u2003تاريخ شروع قسط: 1403/01/31\u2003\u2003"
              "تاريخ تسويه: 1403/03/31\n"
              "ملاحظات: -\n"
              "تعداد کارمندان: 0"_s);
    EXPECT_TRUE(sparse.borrowers.isEmpty());

    try {
        sheet::ReadLoan(t.module.DtEn().cnt(), 99);
        ADD_FAILURE() << "read";
    } catch (const KavError& e) {
        EXPECT_EQ(e.message(), u"وامي با شماره رايانه اي 99 يافت نشد."_s);
    }
}

// Both entries only while the window shows a stored loan in view mode.
TEST_F(SheetTest, TheToolsMenuOffersItForAStoredLoanInView) {
    QStringList seen;
    const auto look = [&](const QString& state) {
        seen << state + u": "_s + (entry("mnuPrintSheet")->isEnabled() ? u"on"_s : u"off"_s) +
                    u" "_s + (entry("mnuSaveSheetPdf")->isEnabled() ? u"on"_s : u"off"_s);
    };
    look(u"empty"_s);
    editor().ViewPRSLoansInfo(TemporaryLoan);
    look(u"view"_s);
    editor().cmdEdit_Click();
    look(u"edit"_s);
    t.messages->answers = {6};
    editor().cmdCancel_Click();
    editor().cmdNew_Click();
    look(u"new"_s);
    EXPECT_EQ(seen.join(u'\n'), u"empty: off off\nview: on on\nedit: off off\nnew: off off"_s);
}

// The PDF: the members with their guarantors and codes on the first page, each borrower's page
// with his guarantors and the signature boxes, the notice of a temporary loan on every page; a
// name with the loan and the date; nothing written without an answer.
TEST_F(SheetTest, SavedAsPdfItHoldsEveryMemberGuarantorAndSignature) {
    QTemporaryDir dir;
    QString proposed, answer;
    t.module.SetSaveFileQuestion(
        [&](QWidget*, const QString&, const QString& path, const QString&) {
            proposed = QFileInfo(path).fileName();
            return answer;
        });
    editor().ViewPRSLoansInfo(TemporaryLoan);
    entry("mnuSaveSheetPdf")->trigger();
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
    const QCalendar::YearMonthDay today =
        QCalendar(QCalendar::System::Jalali).partsFromDate(QDate::currentDate());
    EXPECT_EQ(proposed, u"برگه-وام-موقت-1-%1-%2-%3.pdf"_s.arg(today.year)
                            .arg(today.month, 2, 10, QChar(u'0'))
                            .arg(today.day, 2, 10, QChar(u'0')));

    answer = dir.filePath(u"sheet.pdf"_s);
    entry("mnuSaveSheetPdf")->trigger();
    EXPECT_TRUE(editor().stbLoan->MessageText().startsWith(u"برگه وام در فايل «"_s));
    const QList<QStringList> pages = PdfRows(answer);
    ASSERT_EQ(pages.size(), 3);
    // A row of a page that starts so, and holds the words (pdftotext moves a "-" or a ":"
    // about among numbers).
    const auto row = [&](int page, const QString& start, const QStringList& words) {
        for (const QString& r : pages[page]) {
            if (r.startsWith(Plain(start)) &&
                std::all_of(words.begin(), words.end(),
                            [&](const QString& w) { return r.contains(Plain(w)); }))
                return true;
        }
        return false;
    };
    for (int n = 0; n < 3; ++n)
        EXPECT_TRUE(pages[n].join(u'|').contains(Plain(u"محاسبات فيش حقوقي لحاظ نمي شود"_s))) << n;
    EXPECT_TRUE(
        row(0, u"1|1001|علي رضايي|"_s, {u"1002"_s, u"مريم احمدي"_s, u"1003"_s, u"حسن کريمي"_s}));
    EXPECT_TRUE(row(0, u"2|1004|زهرا موسوي"_s, {}));
    EXPECT_TRUE(row(1, u"1|1002|مريم احمدي"_s, {}));
    EXPECT_TRUE(row(1, u"2|1003|حسن کريمي"_s, {}));
    EXPECT_TRUE(row(1, u"امضاي وام گيرنده"_s, {u"علي رضايي"_s, u"امضاي ضامن"_s, u"مريم احمدي"_s}));
    EXPECT_TRUE(row(1, u"امضاي ضامن"_s, {u"2"_s, u"حسن کريمي"_s}));
    EXPECT_TRUE(row(2, u"اين کارمند ضامني ندارد."_s, {}));
    EXPECT_TRUE(row(2, u"امضاي وام گيرنده"_s, {u"زهرا موسوي"_s}));

    // The final loan: its number, no notice.
    editor().ViewPRSLoansInfo(FinalLoan);
    answer = dir.filePath(u"final.pdf"_s);
    entry("mnuSaveSheetPdf")->trigger();
    EXPECT_TRUE(proposed.startsWith(u"برگه-وام-7-"_s)) << proposed.toStdString();
    const QList<QStringList> final = PdfRows(answer);
    ASSERT_EQ(final.size(), 2);
    EXPECT_TRUE(final[0].join(u'|').contains(Plain(u"برگه وام شماره 7"_s)));
    EXPECT_FALSE(final[0].join(u'|').contains(Plain(u"لحاظ نمي شود"_s)));
    EXPECT_TRUE(final[1].contains(Plain(u"1|1001|علي رضايي"_s)));
    EXPECT_TRUE(final[0].join(u'|').contains(Plain(u"1|1002|مريم احمدي|"_s)));
}

// Printed, the sheet's pages come out as in the PDF, each saying who printed it; a loan another
// clerk deleted meanwhile is said so and nothing is printed.
TEST_F(SheetTest, PrintedAsOnPaperAndNotWhenTheLoanIsGone) {
    editor().ViewPRSLoansInfo(TemporaryLoan);
    const QStringList pages = PrintedPages(t.module, [&] { entry("mnuPrintSheet")->trigger(); });
    ASSERT_EQ(pages.size(), 3);
    for (const QString& page : pages) EXPECT_TRUE(page.contains(Plain(u"چاپ توسط کاربر"_s)));
    EXPECT_TRUE(pages[1].contains(u"1001"_s) && pages[1].contains(u"1003"_s));

    t.db.exec(
        {u"delete from tblHRLoanDetail where LoanID=1"_s, u"delete from tblHRLoan where ID=1"_s});
    EXPECT_TRUE(PrintedPages(t.module, [&] { entry("mnuPrintSheet")->trigger(); }).isEmpty());
    EXPECT_EQ(Shown(), QStringList{u"خطا: وامي با شماره رايانه اي 1 يافت نشد."_s});
}

}  // namespace
}  // namespace kav::test
