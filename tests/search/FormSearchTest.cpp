// The search text as SQL Server receives it; the search window's grid, opening and export.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include "SearchFixture.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "search/SearchSql.h"
#include "support/PdfText.h"
#include "support/Raises.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using controls::FlexGrid;
using search::SearchCriteria;

namespace {

const data::SqlDialect kServer(data::DatabaseKind::SqlServer);
const QString kBase =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

const QStringList kHeaders =
    u"رديف|کد پرسنلي|نام|نام خانوادگي|نوع وام|تاريخ دريافت وام|مبلغ وام|تاريخ شروع|تاريخ پايان|مبلغ قسط|مانده اول ماه|مانده آخر ماه|وضعيت وام|ضامن 1|ضامن 2|ضامن 3|شماره رايانه اي"_s
        .split(u'|');

// The unsorted result of a search without criteria, in the view's order, cells joined by '|'.
const QStringList kAllRows = {
    u"1|1001|علي|رضايي|قرض الحسنه|1402/01/15|12/500/000|1402/02/31|1402/12/29|1/041/666|12/500/000|12/500/000|ثبت موقت|مريم احمدي|حسن کريمي||1"_s,
    u"2|1004|زهرا|موسوي|قرض الحسنه|1402/01/15|12/500/000|1402/02/31|1402/12/29|1/041/666|12/500/000|12/500/000|ثبت موقت||||1"_s,
    u"3|1002|مريم|احمدي|ضروري|1403/05/01|900/000|1403/06/31|1404/05/31||900/000|900/000|ثبت قطعي|علي رضايي|||2"_s,
    u"4|1003|حسن|کريمي|قرض الحسنه|1401/10/10|50/000/000|1401/10/30|1402/09/30|5/000/000|50/000/000|50/000/000|ثبت قطعي|||رضا نوري|3"_s,
    u"5||||مسکن|1403/01/01|3000|1403/01/31|1403/12/30|250|3000|3000|ثبت موقت||||40000"_s,
};

}  // namespace

TEST_F(SearchTest, FillsOneRowPerMemberAndSaysWhenNothingIsFoundOrWhatWentWrong) {
    FormSearch& f = form();
    EXPECT_EQ(f.windowTitle(), u"جستجوي وام کارمندان"_s);
    EXPECT_EQ(f.cmbLoanType->itemText(2) + f.cmbLoanType->itemData(2).toString(), u"مسکن3"_s);
    EXPECT_EQ(f.cmbLoanType->currentIndex(), -1);
    EXPECT_FALSE(f.cmdExport->isEnabled());
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.cmdSearch->click();
    QStringList headers;
    for (int c = 0; c < 17; ++c) headers << f.Flexsearchresult->TextMatrix(0, c);
    EXPECT_EQ(headers, kHeaders);
    EXPECT_EQ(f.Flexsearchresult->ColWidth(16), 0);  // the id hidden
    EXPECT_EQ(rows(), kAllRows);
    EXPECT_EQ(f.lblStatus->text(), u"5 رکورد يافت شد."_s);
    EXPECT_TRUE(f.cmdExport->isEnabled());
    EXPECT_EQ(f.Flexsearchresult->Col() * 100 + f.Flexsearchresult->ColSel(), 116);
    EXPECT_EQ(Shown(), QStringList());
    // Criteria narrow the next search; the grid shows only its rows, from the first, and
    // takes the focus unless the adjustment list holds results (2).
    for (const qint16 started : {0, 1, 2}) {
        t.module.session.LoanEditStarted = started;
        f.Flexsearchresult->setRow(2);
        f.chkTempSave->setChecked(false);
        f.txtNotes->setFocus();
        f.cmdSearch->click();
        EXPECT_EQ(column(16).join(u' ') + column(0).join(u' '), u"2 31 2"_s);
        EXPECT_EQ(f.Flexsearchresult->Row(), 1);
        EXPECT_EQ(f.Flexsearchresult->view()->hasFocus(), started != 2) << started;
    }
    f.chkFinalSave->setChecked(false);
    f.cmdSearch->click();
    EXPECT_EQ(Shown(), QStringList{u"اطلاع: رکوردي يافت نشد."_s});
    EXPECT_EQ(f.Flexsearchresult->Rows(), 1);
    f.chkTempSave->setChecked(true);
    f.cmdSearch->click();
    t.db.exec(u"drop view vwHRLoanData"_s);
    f.cmdSearch->click();
    EXPECT_TRUE(Shown().value(0).startsWith(u"خطا: "_s));
    EXPECT_EQ(QString::number(f.Flexsearchresult->Rows()) + f.lblStatus->text(), u"1"_s);
    EXPECT_FALSE(f.cmdExport->isEnabled());
}

TEST_F(SearchTest, SortsTextAndNumberColumnsBothWaysAlsoByAHeaderClick) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.cmdSearch->click();
    QHeaderView* header = f.Flexsearchresult->view()->horizontalHeader();
    const QPoint surname(header->sectionViewportPosition(3) + 5, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, surname);  // as text
    EXPECT_EQ(column(0).join(u' '), u"5 3 1 4 2"_s);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, surname);  // opens nothing
    EXPECT_TRUE(editor().opened.isEmpty());
    f.DoSort(3);
    EXPECT_EQ(column(0).join(u' '), u"2 4 1 3 5"_s);
    f.DoSort(6);  // the amount, as a number with its "/" removed
    EXPECT_EQ(column(6).join(u' '), u"3000 900000 12500000 12500000 50000000"_s);
    f.DoSort(6);
    EXPECT_EQ(column(10).first(), u"50/000/000"_s);  // other columns keep their "/"
    f.DoSort(9);                                     // the instalment, a number too
    EXPECT_EQ(column(9).join(u' '), u" 250 1041666 1041666 5000000"_s);
    // The type's name sorts as a number: every name reads as 0, so the order stays.
    const QStringList before = column(0);
    f.DoSort(4);
    EXPECT_EQ(column(0), before);
    for (const int beyond : {-1, 31, 20})  // beyond the sort slots, or the grid
        EXPECT_EQ(RaisedKind([&] { f.DoSort(beyond); }), KavError::Kind::Usage);
}

// The sort orders live as long as the module: the window opened again sorts on from them.
TEST_F(SearchTest, SortOrdersOutliveTheWindow) {
    FormSearch* first = &form();
    first->cmdSearch->click();
    first->DoSort(3);  // surnames ascending
    EXPECT_EQ(column(0).join(u' '), u"5 3 1 4 2"_s);
    first->cmdExit->click();
    ASSERT_TRUE(first->IsUnloaded());
    t.module.UnloadWindow<FormSearch>();
    form().cmdSearch->click();
    form().DoSort(3);  // descending now
    EXPECT_EQ(column(0).join(u' '), u"2 4 1 3 5"_s);
}

// Each from-date that is equal to or later than its to-date clears the to-date, whichever of
// the two changed.
TEST_F(SearchTest, EqualOrLaterFromDateClearsTheToDateOfEachPair) {
    FormSearch& f = form();
    for (const auto& [from, to] :
         {std::pair{f.datPaymentDatef, f.datPaymentDateTo},
          std::pair{f.datBeginDatef, f.datBeginDateTo}, std::pair{f.datEndDatef, f.datEndDateTo}}) {
        SCOPED_TRACE(from->objectName().toStdString());
        from->setFarsidate(u"1402/05/01"_s);
        to->setFarsidate(u"1402/05/02"_s);
        emit to->DateChanged();
        EXPECT_EQ(to->farsidate(), u"1402/05/02"_s);
        from->setFarsidate(u"1402/05/02"_s);  // equal: cleared too, and the status line says so
        emit from->DateChanged();
        EXPECT_TRUE(to->IsEmpty());
        if (from == f.datPaymentDatef) {
            EXPECT_EQ(f.lblStatus->text(), u"تاريخ پرداخت: تاريخ «تا» (1402/05/02) پاک شد، چون "
                                           u"بايد بعد از تاريخ «از» (1402/05/02) باشد."_s);
        }
        to->setFarsidate(u"1402/04/30"_s);
        emit to->DateChanged();
        EXPECT_TRUE(to->IsEmpty());
        EXPECT_EQ(from->farsidate(), u"1402/05/02"_s);
    }
}

// The amount boxes take digits (Persian ones too), the point and backspace; Delete empties the
// type; Enter searches; Escape exits only while the exit button is enabled.
TEST_F(SearchTest, KeysOfTheCriteria) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.txtLoanValueF->setFocus();
    for (const QString& key : {u"1"_s, u"a"_s, u"۲"_s, u"-"_s, u"."_s, u"5"_s, u"/"_s})
        QTest::sendKeyEvent(QTest::Click, f.txtLoanValueF, Qt::Key_unknown, key, Qt::NoModifier);
    QTest::keyClick(f.txtLoanValueF, Qt::Key_Backspace);
    EXPECT_EQ(f.txtLoanValueF->text(), u"1۲."_s);
    f.cmbLoanType->setCurrentIndex(1);
    f.cmbLoanType->setFocus();
    QTest::keyClick(f.cmbLoanType, Qt::Key_Delete);
    EXPECT_EQ(f.cmbLoanType->currentIndex(), -1);
    f.txtLoanValueF->clear();
    f.txtNotes->setFocus();
    QTest::keyClick(f.txtNotes, Qt::Key_Return);
    EXPECT_EQ(gridRows().size(), 5);
    // Enter on a focused button presses it: a new search empties the criteria, none runs.
    f.txtNotes->setText(u"x"_s);
    f.cmdNewSearch->setFocus();
    QTest::keyClick(f.cmdNewSearch, Qt::Key_Return);
    EXPECT_EQ(f.txtNotes->text() + QString::number(gridRows().size()), u"5"_s);
    f.cmdExit->setEnabled(false);
    QTest::keyClick(f.txtNotes, Qt::Key_Escape);
    EXPECT_TRUE(f.isVisible());
    f.cmdExit->setEnabled(true);
    QTest::keyClick(f.txtNotes, Qt::Key_Escape);
    EXPECT_TRUE(f.IsUnloaded());
}

// The employee box names one employee (his loans), nobody (every loan), or holds typed text
// that names nobody: that stops the search, which says which box, and lists no other loans.
TEST_F(SearchTest, TheEmployeeBoxNamesOneEmployeeNobodyOrStopsTheSearch) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.sltEmployee->setValue(4);
    f.cmdSearch->click();
    EXPECT_EQ(column(1), QStringList{u"1004"_s});
    f.sltEmployee->SetFocus();
    f.sltEmployee->lineEdit()->selectAll();
    QTest::keyClicks(f.sltEmployee->lineEdit(), u"9999"_s);
    f.txtNotes->setFocus();
    f.cmdSearch->click();
    EXPECT_EQ(Shown(), QStringList{u"هشدار: کادر «كارمند» کارمندي را مشخص نمي‌کند («9999»)؛ يک "
                                   u"کارمند را از فهرست انتخاب کنيد يا کادر را خالي کنيد."_s});
    EXPECT_EQ(column(1), QStringList{u"1004"_s});
    EXPECT_TRUE(f.sltEmployee->lineEdit()->hasFocus());
    QTest::keyClick(f.sltEmployee->lineEdit(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(f.sltEmployee->lineEdit(), Qt::Key_Delete);
    f.txtNotes->setFocus();
    f.cmdSearch->click();
    EXPECT_EQ(rows().size(), 5);
}

TEST_F(SearchTest, OpensTheChosenLoanInTheEditor) {
    FormSearch& f = form();
    FlexGrid& g = *f.Flexsearchresult;
    f.Flexsearchresult_DblClick();  // empty grid
    f.cmdSearch->click();
    t.module.session.LoanEditStarted = 1;
    g.setRow(3);
    f.Flexsearchresult_DblClick();
    g.setRow(0);  // the header
    t.module.session.LoanEditStarted = 0;
    f.Flexsearchresult_DblClick();
    EXPECT_TRUE(editor().opened.isEmpty());
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    g.setRow(3);
    const QRect cell = g.view()->visualRect(g.view()->model()->index(2, 2));
    QTest::mouseDClick(g.view()->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(editor().opened, QList<qint32>{2});
    // Hidden, not unloaded.
    EXPECT_EQ(editor().idText + QString::number(f.isVisible() + f.IsUnloaded()), u"20"_s);
    f.show();  // Enter opens too, never searches again, and an id above 32767 is like any other
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    g.setRow(5);
    g.SetFocus();
    QTest::keyClick(g.view(), Qt::Key_Return);
    EXPECT_EQ(editor().opened, (QList<qint32>{2, 40000}));
    EXPECT_EQ(editor().idText, u"40000"_s);
    EXPECT_EQ(rows().size(), 5);
    for (const QString& bad : {u"x12"_s, u"4294967296"_s}) {  // no loan id: nothing opens
        f.show();
        g.setTextMatrix(1, 16, bad);
        g.setRow(1);
        int enter = 13;
        emit g.KeyPress(enter);
        const QString shown = Shown().join(u'\n');
        EXPECT_TRUE(shown.startsWith(u"خطا: "_s) && shown.contains(bad) && f.isVisible())
            << bad.toStdString();
    }
    EXPECT_EQ(editor().opened.size(), 2);
}

TEST_F(SearchTest, ExportsTheShownRowsInTheirOrderAsCsv) {
    FormSearch& f = form();
    QTemporaryDir dir;
    QString asked;
    t.module.SetSaveFileQuestion(
        [&](QWidget*, const QString&, const QString& proposed, const QString&) {
            asked = QFileInfo(proposed).fileName();
            return dir.filePath(u"loans"_s);
        });
    f.cmdSearch->click();
    f.DoSort(1);
    f.DoSort(1);  // personnel codes descending
    f.cmdExport->click();
    EXPECT_TRUE(asked.startsWith(u"نتيجه-جستجوي-وام-1"_s) && asked.endsWith(u".csv"_s))
        << asked.toStdString();
    QFile file(dir.filePath(u"loans.csv"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    ASSERT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
    // The header, five rows without the hidden id, each line ended by CR LF.
    const QStringList lines = QString::fromUtf8(bytes.mid(3)).split(u"\r\n"_s);
    EXPECT_EQ(lines.size(), 7);
    EXPECT_EQ(lines.value(0), kHeaders.mid(0, 16).join(u','));
    EXPECT_EQ(
        lines.value(1),
        u"2,1004,زهرا,موسوي,قرض الحسنه,1402/01/15,12500000,1402/02/31,1402/12/29,1041666,12500000,12500000,ثبت موقت,,,"_s);
    EXPECT_EQ(lines.value(5),
              u"5,,,,مسکن,1403/01/01,3000,1403/01/31,1403/12/30,250,3000,3000,ثبت موقت,,,"_s);
    EXPECT_EQ(f.lblStatus->text(),
              u"5 رکورد در فايل «\u2066%1\u2069» ذخيره شد."_s.arg(dir.filePath(u"loans.csv"_s)));
}

// Printed: the rows as shown (sorted), the visible columns only, the count and who printed
// them on the page.
TEST_F(SearchTest, PrintsTheShownRows) {
    FormSearch& f = form();
    EXPECT_FALSE(f.cmdPrint->isEnabled());
    f.cmdSearch->click();
    f.DoSort(1);
    f.DoSort(1);  // personnel codes descending
    const QList<QStringList> printed = PrintedRows(t.module, [&] { f.cmdPrint->click(); });
    ASSERT_EQ(printed.size(), 1);
    const QStringList& rows = printed[0];
    const qsizetype first = rows.indexOf(
        Plain(u"2|1004|زهرا|موسوي|قرض الحسنه|1402/01/15|12/500/000|1402/02/31|1402/12/29|"
              "1/041/666|12/500/000|12/500/000|ثبت موقت"_s));
    EXPECT_GT(first, 0);
    EXPECT_EQ(rows.indexOf(Plain(u"4|1003|حسن|کريمي|قرض الحسنه|1401/10/10|50/000/000|1401/10/30|"
                                 "1402/09/30|5/000/000|50/000/000|50/000/000|ثبت قطعي|رضا نوري"_s)),
              first + 1);
    // The titles (a long one over two lines), not the hidden column's.
    const QString all = rows.join(u'|');
    for (const QString& title : kHeaders.mid(0, 16))
        EXPECT_TRUE(all.contains(Plain(title).left(6))) << title.toStdString();
    EXPECT_FALSE(all.contains(Plain(kHeaders[16])));
    EXPECT_TRUE(printed[0].join(u'|').contains(Plain(u"5 رکورد يافت شد."_s)));
}

TEST(SearchQuery, EveryCriterionAddsItsFragmentInItsOrder) {
    // clang-format off
    const SearchCriteria all{
        .tempSave = false, .notes = u"وام"_s, .loanValueFrom = u"100"_s, .loanValueTo = u"۹۰۰"_s,
        .loanTypeId = 2, .employeeId = 4, .supporterId = 1, .paymentDateFrom = u"1401/01/01"_s,
        .paymentDateTo = u"1401/12/29"_s, .beginDateFrom = u"1401/02/01"_s,
        .beginDateTo = u"1401/02/31"_s, .endDateFrom = u"1402/01/01"_s,
        .endDateTo = u"1402/12/29"_s, .perMonthFrom = u"10"_s, .perMonthTo = u"20.75"_s};
    // clang-format on
    EXPECT_EQ(
        CheckedTsql(search::SearchQuery(kServer, all)),
        kBase +
            u" and Code is Not Null and Notes like N'%وام%' and LoanValue>=100 and LoanValue<=900 and TypeID=2 and EmployeeID=4 and (SupporterEmployeeID1=1 OR SupporterEmployeeID2=1 OR SupporterEmployeeID3=1 ) and FarsiPaymentDate>='1401/01/01'  and FarsiPaymentDate<='1401/12/29'   and FarsiBeginDate>='1401/02/01'  and FarsiBeginDate<='1401/02/31'  and FarsiEndDate>='1402/01/01'  and FarsiEndDate<='1402/12/29'  and MonthlyValue>=10 and MonthlyValue<=20.75"_s);
    // Single criteria with the inputs that need care; SQLite gets the same text but for the
    // typed notes, which SQL Server reads as Unicode text.
    const std::tuple<SearchCriteria, QString, QString> single[] = {
        {{}, u""_s, u""_s},
        {{.finalSave = false}, u" and Code is Null"_s, u" and Code is Null"_s},
        {{.tempSave = false, .finalSave = false}, u" and Code is Null and Code is Not Null"_s,
         u" and Code is Null and Code is Not Null"_s},
        {{.notes = u"   "_s}, u" and Notes like N'%%'"_s, u" and Notes like '%%'"_s},
        {{.notes = u"  'ويژه' \u06CC\u06F1\u0663"_s},
         u" and Notes like N'%''ويژه'' \u06CC\u06F1\u0663%'"_s,
         u" and Notes like '%''ويژه'' \u06CC\u06F1\u0663%'"_s},
        {{.loanValueTo = u"۲۵۰۰۰۰۰"_s}, u" and LoanValue<=2500000"_s, u" and LoanValue<=2500000"_s},
        {{.perMonthTo = u"1,250,000"_s}, u" and MonthlyValue<=1250000"_s,
         u" and MonthlyValue<=1250000"_s},
    };
    for (const auto& [criteria, server, sqlite] : single) {
        EXPECT_EQ(CheckedTsql(search::SearchQuery(kServer, criteria)), kBase + server);
        EXPECT_EQ(search::SearchQuery(data::SqlDialect(data::DatabaseKind::SQLite), criteria),
                  kBase + sqlite);
    }
    // An amount that is no number stops with a message naming its box.
    const std::pair<SearchCriteria, QString> bad[] = {
        {{.loanValueTo = u" "_s}, u"مبلغ « » در «مبلغ تا» عدد نيست."_s},
        {{.perMonthFrom = u"."_s}, u"مبلغ «.» در «مبلغ ماهيانه از» عدد نيست."_s},
        {{.perMonthTo = u"99999999999999999999"_s},
         u"مبلغ «99999999999999999999» در «مبلغ ماهيانه تا» از بزرگ\u200Cترين مبلغ ممکن "
         "(922/337/203/685/477) بيشتر است."_s},
    };
    for (const auto& [criteria, message] : bad) {
        QString raised;
        try {
            search::SearchQuery(kServer, criteria);
        } catch (const KavError& e) {
            raised = e.message();
        }
        EXPECT_EQ(raised, message);
    }
    EXPECT_EQ(search::AmountBound(u"۱۲٫۵"_s, u"x"_s), u"12.5"_s);  // the Persian decimal sign
}
