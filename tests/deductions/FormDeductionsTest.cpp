// The register's window: from the loan window's Tools menu to the rows, the totals, the sort,
// opening a loan and the files; the demo database's working month.

#include <gtest/gtest.h>

#include <QAction>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include "controls/FlexGrid.h"
#include "controls/VarekSelector.h"
#include "data/DemoData.h"
#include "deductions/DeductionsOpener.h"
#include "deductions/FormDeductions.h"
#include "loan_editor/FormHRLoan.h"
#include "support/PdfText.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav;
using controls::FlexGrid;

namespace {

// The loan window as the register sees it: which loans it was asked to open.
struct FakeEditor : LoanEditorPort {
    QList<qint32> opened;
    bool ViewPRSLoansInfo(qint32 id) override {
        opened << id;
        return true;
    }
    void SetLoanIdText(const QString&) override {}
    int StateValue() const override { return 0; }
    QString LoanValueText() const override { return {}; }
};

class FormDeductionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        t.db.exec({
            u"insert into tblHRLoanType (ID, Name) values (1, 'ضروري'), (2, 'مسکن')"_s,
            u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
            "(1, '1001', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 1)"_s,
            u"insert into tblHRLoan (ID, Code, TypeID, FarsiBeginDate, FarsiEndDate, LoanValue, "
            "MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth) values "
            "(7, 1, 1, '1403/01/31', '1403/10/30', 10000000, 1000000, 10, 0),"
            "(8, 2, 2, '1403/05/31', '1404/04/31', 24000000, 2000000, 12, 1)"_s,
            u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (7, 1), (7, 2), (8, 1)"_s,
            u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) values "
            "(7, 1, '1403/07', 900000)"_s,
            u"insert into tblVarekSystemParameters (ID, Value) values (3450, '1403/07/12')"_s,
        });
        t.module.ProvidePort<LoanEditorPort>([this](Module&) -> LoanEditorPort& { return editor; });
    }
    FormDeductions& form() { return t.module.Window<FormDeductions>(); }
    QStringList row(const FlexGrid& g, int r) {
        QStringList cells;
        for (int c = 0; c < g.Cols(); ++c) cells << g.TextMatrix(r, c);
        return cells;
    }
    QStringList shown() {
        QStringList out;
        for (const auto& m : t.messages->shown) out << m.title + u": "_s + m.text;
        t.messages->shown.clear();
        return out;
    }
    test::TestModule t;
    FakeEditor editor;
};

}  // namespace

// The loan window's Tools menu opens the register, on the working date's month.
TEST_F(FormDeductionsTest, OpensFromTheToolsMenuOnTheWorkingMonth) {
    t.module.ProvidePort<DeductionsPort>(
        [](Module& m) -> DeductionsPort& { return m.Window<DeductionsOpener>(); });
    QStringList opened;
    t.module.SetModalRunner([&](QDialog& d) {
        opened << d.objectName();
        return 0;
    });
    FormHRLoan& loans = t.module.Window<FormHRLoan>();
    auto* entry = loans.findChild<QAction*>(u"mnuDeductions"_s);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(), u"کسور ماهانه وام"_s);
    EXPECT_EQ(entry->parent(), static_cast<QObject*>(loans.mnuTool));
    entry->trigger();
    EXPECT_EQ(opened, QStringList{u"FormDeductions"_s});
    EXPECT_EQ(form().windowTitle(), u"کسور ماهانه وام"_s);
    EXPECT_EQ(form().txtMonth->text(), u"1403/07"_s);
    EXPECT_FALSE(form().cmdExportCsv->isEnabled());
}

TEST_F(FormDeductionsTest, ShowsRowsTotalsAndSortsByAHeaderClick) {
    FormDeductions& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.cmdSearch->click();
    const FlexGrid& g = *f.FlexDeductions;
    ASSERT_EQ(g.Rows(), 4);
    EXPECT_EQ(row(g, 0), (QStringList{u"کد پرسنلي"_s, u"نام و نام خانوادگي"_s, u"شماره وام"_s,
                                      u"نوع وام"_s, u"قسط ماهيانه"_s, u"تعديل"_s, u"کسر اين ماه"_s,
                                      u"کسر شده در فيش"_s, u"مانده پس از ماه"_s, u"توضيح"_s}));
    EXPECT_EQ(row(g, 1), (QStringList{u"1001"_s,
                                      u"علي رضايي"_s,
                                      u"1"_s,
                                      u"ضروري"_s,
                                      u"1/000/000"_s,
                                      {},
                                      u"1/000/000"_s,
                                      u"900/000"_s,
                                      u"3/100/000"_s,
                                      {}}));
    EXPECT_EQ(f.lblStatus->text(), u"3 رديف از 2 کارمند"_s);
    EXPECT_EQ(f.lblTotals->text(),
              u"جمع کل ماه 1403/07: 3 رديف؛ کسر اين ماه 4/000/000؛ کسر شده در فيش 900/000؛ "
              "مانده پس از ماه 24/100/000"_s);
    EXPECT_TRUE(f.lblNotice->isHidden());
    EXPECT_EQ(row(*f.FlexEmployeeTotals, 1),
              (QStringList{u"1001"_s, u"علي رضايي"_s, u"2"_s, u"3/000/000"_s, u"900/000"_s,
                           u"21/100/000"_s}));
    EXPECT_EQ(row(*f.FlexLoanTypeTotals, 2),
              (QStringList{u"مسکن"_s, u"1"_s, u"2/000/000"_s, u"0"_s, u"18/000/000"_s}));
    EXPECT_EQ(f.tabRegister->tabText(1), u"جمع هر کارمند"_s);

    // The header of the balance, clicked twice: ascending, then descending.
    QHeaderView* header = g.view()->horizontalHeader();
    const auto click = [&](int c) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(c) + 5, header->height() / 2));
    };
    const auto balances = [&] {
        return QStringList{g.TextMatrix(1, 8), g.TextMatrix(2, 8), g.TextMatrix(3, 8)};
    };
    click(8);
    EXPECT_EQ(balances(), (QStringList{u"3/000/000"_s, u"3/100/000"_s, u"18/000/000"_s}));
    click(8);
    EXPECT_EQ(balances(), (QStringList{u"18/000/000"_s, u"3/100/000"_s, u"3/000/000"_s}));
    EXPECT_TRUE(shown().isEmpty());
}

// A month that is not one, or an employee box whose text names nobody, is said and the
// register shown stays; an employee chosen narrows it to his loans.
TEST_F(FormDeductionsTest, TheMonthAndTheEmployeeBox) {
    FormDeductions& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.sltEmployee->setValue(2);
    f.cmdSearch->click();
    EXPECT_EQ(f.FlexDeductions->Rows(), 2);
    f.txtMonth->setText(u"1403/13"_s);
    f.cmdSearch->click();
    EXPECT_EQ(shown(), QStringList{u"هشدار: «1403/13» ماه شمسي نيست؛ ماه را به شکل سال/ماه "
                                   u"بنويسيد، مانند 1403/07."_s});
    EXPECT_TRUE(f.txtMonth->hasFocus());
    f.txtMonth->setText(u"۱۴۰۳/۸"_s);
    f.sltEmployee->SetFocus();
    f.sltEmployee->lineEdit()->selectAll();
    QTest::keyClicks(f.sltEmployee->lineEdit(), u"9999"_s);
    f.txtMonth->setFocus();
    f.cmdSearch->click();
    EXPECT_EQ(
        shown(),
        QStringList{
            u"هشدار: کادر «كارمند» کارمندي را مشخص نمي‌کند («9999»)؛ يک "
            u"کارمند را از فهرست انتخاب کنيد يا کادر را خالي کنيد."_s});
    EXPECT_EQ(f.RegisterShown().rows.size(), 1);
    f.sltEmployee->Clear();
    f.cmdSearch->click();
    EXPECT_EQ(f.txtMonth->text(), u"1403/08"_s);
    EXPECT_EQ(f.FlexDeductions->Rows(), 4);
    EXPECT_EQ(f.Facts(), (QStringList{u"ماه: 1403/08"_s, u"نوع وام: همه"_s, u"كارمند: همه"_s}));
}

// A double-click opens the row's loan while the loan window shows a loan or nothing; while it
// is entering or editing one the status line says why nothing opens.
TEST_F(FormDeductionsTest, OpensTheLoanInViewOrEmptyModeOnly) {
    FormDeductions& f = form();
    f.cmdSearch->click();
    FlexGrid& g = *f.FlexDeductions;
    for (qint32 mode : {ModeEdit, ModeNew}) {
        t.module.session.LoanFormMode = mode;
        g.setRow(3);
        emit g.DblClick();
    }
    EXPECT_TRUE(editor.opened.isEmpty());
    EXPECT_EQ(
        f.lblStatus->text(),
        u"پنجره وام در حال ثبت يا ويرايش وام است؛ وام 1 پس از ثبت يا انصراف باز مي‌شود."_s);
    for (qint32 mode : {ModeView, ModeEmpty}) {
        t.module.session.LoanFormMode = mode;
        g.setRow(mode == ModeView ? 2 : 3);
        emit g.DblClick();
    }
    EXPECT_EQ(editor.opened, (QList<qint32>{8, 7}));
}

TEST_F(FormDeductionsTest, SavesCsvAndPdf) {
    FormDeductions& f = form();
    f.cmdSearch->click();
    QStringList suggested;
    const QString base = QFileInfo(t.db.file()).absolutePath() + u"/register"_s;
    t.module.SetSaveFileQuestion(
        [&](QWidget*, const QString&, const QString& path, const QString&) {
            suggested << QFileInfo(path).fileName().left(19) + u'.' + QFileInfo(path).suffix();
            return base;
        });
    f.cmdExportCsv->click();
    QFile csv(base + u".csv"_s);
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = csv.readAll().split('\n');
    EXPECT_EQ(lines.value(1),
              u"\"1001\",علي رضايي,1,ضروري,1000000,,1000000,900000,3100000,\r"_s.toUtf8());
    EXPECT_EQ(lines.size(), 11);  // titles, 3 rows, blank, 2 employees, 2 types, overall, end
    f.cmdExportPdf->click();
    // The PDF's rows as the window shows them, each page saying who printed it; printed, the
    // same pages.
    const QList<QStringList> rows = test::PdfRows(base + u".pdf"_s);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_TRUE(rows[0].contains(
        test::Plain(u"1001|علي رضايي|1|ضروري|1/000/000|1/000/000|900/000|3/100/000"_s)));
    EXPECT_TRUE(rows[0].join(u'|').contains(test::Plain(u"چاپ توسط کاربر"_s)));
    const QStringList printed = test::PrintedPages(t.module, [&] { f.cmdPrint->click(); });
    ASSERT_EQ(printed.size(), 1);
    EXPECT_TRUE(printed[0].contains(test::Plain(u"علي رضايي"_s)));
    // The month, then today's Jalali date.
    EXPECT_EQ(suggested, (QStringList{u"کسور-وام-1403-07-14.csv"_s, u"کسور-وام-1403-07-14.pdf"_s}));
    EXPECT_TRUE(f.lblStatus->text().startsWith(u"3 رديف در فايل «"_s));
    EXPECT_TRUE(shown().isEmpty());
}

// Without the payslip table's columns the register shows the plan, says so in one line and
// leaves the payslip cells and totals empty.
TEST_F(FormDeductionsTest, WithoutThePayslipColumns) {
    t.db.exec({u"drop table tblHRMonthlyPaiedLoan"_s,
               u"create table tblHRMonthlyPaiedLoan (ID integer primary key, LoanID int)"_s});
    FormDeductions& f = form();
    f.cmdSearch->click();
    EXPECT_FALSE(f.lblNotice->isHidden());
    EXPECT_EQ(
        f.lblNotice->text(),
        u"ستون‌هاي کارمند، ماه و مبلغ فيش حقوقي (EmployeeID، PayMonth، PaidValue) در "
        "جدول tblHRMonthlyPaiedLoan نيست؛ فقط مبالغ برنامه‌ريزي شده نشان داده مي‌شود."_s);
    EXPECT_EQ(f.FlexDeductions->TextMatrix(1, 7), QString());
    EXPECT_EQ(f.FlexDeductions->TextMatrix(1, 8), u"3/000/000"_s);
    EXPECT_EQ(f.FlexLoanTypeTotals->TextMatrix(1, 3), QString());
    EXPECT_TRUE(f.lblTotals->text().contains(u"کسر شده در فيش -؛"_s));
}

// The demo's working month shows every kind on a first run.
TEST(DemoRegister, TheWorkingMonthShowsEveryKind) {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"demo.db"_s);
    data::CreateDemoDatabase(file);
    Module module;
    module.session.SessionConnectionString = data::EmbeddedConnectionString(file);
    module.SetMessageFactory([] { return nullptr; });
    module.OpenSessionConnection();
    FormDeductions& f = module.Window<FormDeductions>();
    f.cmdSearch_Click();
    const deductions::Register& reg = f.RegisterShown();
    int adjusted = 0, paid = 0, unpaid = 0, pastSettlement = 0, paidWithoutPlan = 0;
    QHash<qint32, int> loansOf;
    for (const auto& r : reg.rows) {
        adjusted += r.month.adjustment.has_value();
        paid += r.month.deducted.has_value();
        unpaid += !r.month.deducted;
        pastSettlement += r.month.afterSettlement && r.month.balance > vb::Currency();
        paidWithoutPlan += r.PaidWithoutPlan();
        ++loansOf[r.employeeId];
    }
    EXPECT_EQ(f.txtMonth->text(), u"1403/07"_s);
    EXPECT_GT(adjusted, 0);
    EXPECT_GT(paid, 0);
    EXPECT_GT(unpaid, 0);
    EXPECT_GT(pastSettlement, 0);
    EXPECT_GT(paidWithoutPlan, 0);
    EXPECT_GT(std::count_if(loansOf.begin(), loansOf.end(), [](int n) { return n > 1; }), 0);
}
