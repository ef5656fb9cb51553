// The search text as SQL Server receives it and the sort rules; the search window: what it
// shows, how it fills (on SQLite and through ODBC) and sorts its grid, how it opens a loan in
// the editor, its keys and its export.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <functional>

#include "SearchFixture.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "data/ConnectionString.h"
#include "search/SearchGrid.h"
#include "search/SearchOpener.h"
#include "search/SearchSql.h"
#include "support/Raises.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using controls::FlexGrid;
using search::SearchCriteria;
using Set = std::function<void(SearchCriteria&)>;

namespace {

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

TEST_F(SearchTest, LoadsCaptionTypesAndAnEmptyGrid) {
    FormSearch& f = form();
    EXPECT_EQ(f.windowTitle(), u"جستجوي وام کارمندان"_s);
    EXPECT_TRUE(f.chkTempSave->isChecked() && f.chkFinalSave->isChecked());
    ASSERT_EQ(f.cmbLoanType->count(), 3);
    EXPECT_EQ(f.cmbLoanType->itemText(2), u"مسکن"_s);
    EXPECT_EQ(f.cmbLoanType->itemData(2).toInt(), 3);
    EXPECT_EQ(f.cmbLoanType->currentIndex(), -1);
    const FlexGrid& g = *f.Flexsearchresult;
    ASSERT_EQ(g.Cols(), 17);
    EXPECT_EQ(g.Rows(), 1);
    const int widths[17] = {600,  1200, 1200, 1500, 2400, 1200, 1200, 1200, 1200,
                            1200, 1200, 1200, 1200, 1800, 1800, 1800, 0};
    // At least the width the table gives, wider where a value would be cut; the id hidden.
    for (int c = 0; c < 17; ++c) {
        EXPECT_EQ(g.TextMatrix(0, c), kHeaders[c]) << c;
        EXPECT_GE(g.ColWidth(c), widths[c] - 15) << c;
    }
    EXPECT_EQ(g.ColWidth(16), 0);
    EXPECT_LT(g.ColWidth(4), 2400 + 15);
    EXPECT_FALSE(f.cmdExport->isEnabled());
}

TEST_F(SearchTest, FillsOneRowPerMemberAndSaysHowManyWereFound) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.cmdSearch->click();
    EXPECT_EQ(rows(), kAllRows);
    EXPECT_EQ(f.lblStatus->text(), u"5 رکورد يافت شد."_s);
    EXPECT_TRUE(f.cmdExport->isEnabled());
    EXPECT_EQ(f.Flexsearchresult->Col(), 1);
    EXPECT_EQ(f.Flexsearchresult->ColSel(), 16);
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
}

TEST_F(SearchTest, NothingFoundABadAmountAndADatabaseErrorEachSaySo) {
    FormSearch& f = form();
    f.cmdSearch->click();
    f.TxtPerMonthTo->setText(u"۱۲x"_s);  // runs nothing: the last result stays
    f.cmdSearch->click();
    const QStringList bad = Shown();
    EXPECT_TRUE(bad.size() == 1 && bad[0].startsWith(u"خطا: "_s) &&
                bad[0].contains(u"مبلغ ماهيانه تا"_s));
    EXPECT_EQ(rows(), kAllRows);

    f.TxtPerMonthTo->clear();
    f.chkTempSave->setChecked(false);
    f.chkFinalSave->setChecked(false);
    f.cmdSearch->click();
    EXPECT_EQ(Shown(), QStringList{u"اطلاع: رکوردي يافت نشد."_s});
    EXPECT_EQ(f.Flexsearchresult->Rows(), 1);
    EXPECT_FALSE(f.cmdExport->isEnabled());

    f.chkTempSave->setChecked(true);
    f.cmdSearch->click();
    t.db.exec(u"drop view vwHRLoanData"_s);
    f.cmdSearch->click();
    EXPECT_TRUE(Shown().value(0).startsWith(u"خطا: "_s));
    EXPECT_EQ(f.Flexsearchresult->Rows(), 1);
    EXPECT_TRUE(f.lblStatus->text().isEmpty());
    EXPECT_FALSE(f.cmdExport->isEnabled());
}

TEST_F(SearchTest, EqualOrLaterFromDateClearsTheToDateOfEachPair) {
    FormSearch& f = form();
    const std::pair<controls::VarekDate*, controls::VarekDate*> pairs[] = {
        {f.datPaymentDatef, f.datPaymentDateTo},
        {f.datBeginDatef, f.datBeginDateTo},
        {f.datEndDatef, f.datEndDateTo}};
    for (const auto& [from, to] : pairs) {
        from->setFarsidate(u"1402/05/01"_s);
        to->setFarsidate(u"1402/05/02"_s);
        emit to->DateChanged();
        EXPECT_EQ(to->farsidate(), u"1402/05/02"_s);
        from->setFarsidate(u"1402/05/02"_s);  // equal: cleared too
        emit from->DateChanged();
        EXPECT_TRUE(to->IsEmpty()) << from->objectName().toStdString();
        to->setFarsidate(u"1402/04/30"_s);
        emit to->DateChanged();
        EXPECT_TRUE(to->IsEmpty());
        EXPECT_EQ(from->farsidate(), u"1402/05/02"_s);
    }
}

TEST_F(SearchTest, SortsTextAndNumberColumnsBothWaysAlsoByAHeaderClick) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    QHeaderView* header = f.Flexsearchresult->view()->horizontalHeader();
    auto at = [&](int col) {
        return QPoint(header->sectionViewportPosition(col) + header->sectionSize(col) / 2,
                      header->height() / 2);
    };
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at(3));  // empty grid: no sort
    f.cmdSearch->click();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at(3));  // surnames, as text
    EXPECT_EQ(column(0).join(u' '), u"5 3 1 4 2"_s);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, at(2));  // opens nothing
    EXPECT_TRUE(editor().opened.isEmpty());
    EXPECT_TRUE(f.isVisible());
    f.cmdSearch->click();  // the remembered orders outlive a new search
    f.DoSort(3);
    EXPECT_EQ(column(0).join(u' '), u"2 4 1 3 5"_s);
    f.DoSort(6);  // the amount, as a number with its "/" removed
    EXPECT_EQ(column(6).join(u' '), u"3000 900000 12500000 12500000 50000000"_s);
    f.DoSort(6);
    EXPECT_EQ(column(6).first(), u"50000000"_s);
    EXPECT_EQ(column(10).first(), u"50/000/000"_s);  // other columns keep their "/"
    // The type's name sorts as a number: every name reads as 0, so the order stays.
    const QString before = column(0).join(u' ');
    f.DoSort(4);
    EXPECT_EQ(column(0).join(u' '), before);
    EXPECT_EQ(RaisedKind([&] { f.DoSort(31); }), KavError::Kind::Usage);
    EXPECT_EQ(RaisedKind([&] { f.DoSort(20); }), KavError::Kind::Usage);  // beyond the grid
}

TEST_F(SearchTest, OpensTheChosenLoanInTheEditor) {
    FormSearch& f = form();
    FlexGrid& g = *f.Flexsearchresult;
    g.Refresh();
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
    EXPECT_EQ(editor().idText, u"2"_s);
    EXPECT_FALSE(f.isVisible());  // hidden, not unloaded
    EXPECT_FALSE(f.IsUnloaded());
    QApplication::processEvents();
    EXPECT_EQ(g.Col(), 1);
    EXPECT_EQ(g.ColSel(), 10);

    // Enter in the grid opens too, and a loan id above 32767 opens like any other.
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    g.setRow(5);
    g.SetFocus();
    QTest::keyClick(g.view(), Qt::Key_Return);
    EXPECT_EQ(editor().opened, (QList<qint32>{2, 40000}));
    EXPECT_EQ(editor().idText, u"40000"_s);
    EXPECT_EQ(rows().size(), 5);  // Enter in the grid never searches again

    // An id that is no loan id gives a message and opens nothing.
    for (const QString& bad : {u"x12"_s, u"4294967296"_s}) {
        f.show();
        g.setTextMatrix(1, 16, bad);
        g.setRow(1);
        int enter = 13;
        emit g.KeyPress(enter);
        const QStringList shown = Shown();
        EXPECT_TRUE(shown.size() == 1 && shown[0].startsWith(u"خطا: "_s) && shown[0].contains(bad));
        EXPECT_TRUE(f.isVisible());
    }
    EXPECT_EQ(editor().opened.size(), 2);
}

TEST_F(SearchTest, KeysOfTheCriteria) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    f.txtLoanValueF->setFocus();  // digits (Persian ones too), the point and backspace
    for (const QString& key : {u"1"_s, u"a"_s, u"۲"_s, u"-"_s, u"."_s, u"5"_s, u"/"_s})
        QTest::sendKeyEvent(QTest::Click, f.txtLoanValueF, Qt::Key_unknown, key, Qt::NoModifier);
    QTest::keyClick(f.txtLoanValueF, Qt::Key_Backspace);
    EXPECT_EQ(f.txtLoanValueF->text(), u"1۲."_s);
    f.cmbLoanType->setCurrentIndex(1);
    f.cmbLoanType->setFocus();
    QTest::keyClick(f.cmbLoanType, Qt::Key_Delete);
    EXPECT_EQ(f.cmbLoanType->currentIndex(), -1);  // Delete empties the type
    f.txtLoanValueF->clear();
    f.txtNotes->setFocus();
    QTest::keyClick(f.txtNotes, Qt::Key_Return);
    EXPECT_EQ(rows().size(), 5);  // Enter in the criteria searches
    f.cmdExit->setEnabled(false);
    QTest::keyClick(f.txtNotes, Qt::Key_Escape);
    EXPECT_TRUE(f.isVisible());  // Escape exits only while the exit button is enabled
    f.cmdExit->setEnabled(true);
    QTest::keyClick(f.txtNotes, Qt::Key_Escape);
    EXPECT_TRUE(f.IsUnloaded());
}

TEST_F(SearchTest, ExportsTheShownRowsInTheirOrderAsCsv) {
    FormSearch& f = form();
    QTemporaryDir dir;
    QString asked;
    f.AskSaveFileName = [&](QWidget*, const QString& suggested) {
        asked = suggested;
        return QString();  // cancelled
    };
    f.cmdSearch->click();
    f.DoSort(1);
    f.DoSort(1);  // personnel codes descending
    f.cmdExport->click();
    EXPECT_TRUE(asked.endsWith(u".csv"_s));
    EXPECT_TRUE(dir.isValid() && QDir(dir.path()).isEmpty());

    f.AskSaveFileName = [&](QWidget*, const QString&) { return dir.filePath(u"loans"_s); };
    f.cmdExport->click();
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

// The same fill through Qt's ODBC driver (the path of the suite's server), with the SQLite
// ODBC driver standing in for it.
TEST_F(SearchTest, FillsTheSameThroughOdbc) {
    if (!data::InstalledOdbcDrivers().contains(u"SQLite3"_s))
        GTEST_SKIP() << "the SQLite3 ODBC driver is not installed";
    Module odbc;
    odbc.session.SessionConnectionString = u"Driver=SQLite3;Database="_s + t.db.file();
    odbc.OpenSessionConnection();
    ASSERT_EQ(odbc.DtEn().cnt().Database().driverName(), u"QODBC"_s);
    FlexGrid grid;
    search::InitializeGrid(grid);
    Connection& cnt = odbc.DtEn().cnt();
    EXPECT_EQ(search::FillSearchGrid(cnt, search::SearchQuery(cnt.Dialect(), {}), grid), 5);
    for (int r = 1; r < grid.Rows(); ++r) {
        QStringList cells;
        for (int c = 0; c < 17; ++c) cells << grid.TextMatrix(r, c);
        EXPECT_EQ(cells.join(u'|'), kAllRows.value(r - 1));
    }
    EXPECT_EQ(RaisedKind([&] { search::FillSearchGrid(cnt, u"select * from tblNoSuch"_s, grid); }),
              KavError::Kind::Database);
    EXPECT_EQ(grid.Rows(), 1);
}

TEST_F(SearchTest, TheOpenerKeepsTheWindowUntilTheClerkExits) {
    SearchOpener opener(t.module);
    QList<QDialog*> shown;
    std::function<void(FormSearch&)> clerk = [](FormSearch&) {};
    t.module.SetModalRunner([&](QDialog& d) {
        shown << &d;
        if (auto* f = qobject_cast<FormSearch*>(&d)) clerk(*f);
        return 0;
    });
    clerk = [](FormSearch& f) {
        f.txtNotes->setText(u"خانه"_s);
        f.cmdSearch->click();
        f.Flexsearchresult->setRow(1);
        f.Flexsearchresult_DblClick();  // hides the window to open the loan
    };
    opener.ShowSearch();
    clerk = [](FormSearch&) {};
    opener.ShowSearch();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0], shown[1]);
    EXPECT_EQ(form().txtNotes->text(), u"خانه"_s);  // criteria and results kept
    EXPECT_EQ(editor().opened, QList<qint32>{1});

    clerk = [](FormSearch& f) { f.cmdExit->click(); };
    opener.ShowSearch();
    EXPECT_FALSE(t.module.HasWindow<FormSearch>());
    clerk = [](FormSearch&) {};
    opener.ShowSearch();
    EXPECT_TRUE(form().txtNotes->text().isEmpty());  // a new window
}

namespace {

const data::SqlDialect kServer(data::DatabaseKind::SqlServer);
const data::SqlDialect kLite(data::DatabaseKind::SQLite);
const QString kBase =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

SearchCriteria criteria(const Set& set) {
    SearchCriteria c;
    set(c);
    return c;
}

}  // namespace

TEST(SearchQuery, EveryCriterionAddsItsFragmentInItsOrder) {
    SearchCriteria c;
    c.tempSave = false;
    c.notes = u"وام"_s;
    c.loanValueFrom = u"100"_s;
    c.loanValueTo = u"۹۰۰"_s;
    c.loanTypeId = 2;
    c.employeeId = 4;
    c.supporterId = 1;
    c.paymentDateFrom = u"1401/01/01"_s;
    c.paymentDateTo = u"1401/12/29"_s;
    c.beginDateFrom = u"1401/02/01"_s;
    c.beginDateTo = u"1401/02/31"_s;
    c.endDateFrom = u"1402/01/01"_s;
    c.endDateTo = u"1402/12/29"_s;
    c.perMonthFrom = u"10"_s;
    c.perMonthTo = u"20.75"_s;
    EXPECT_EQ(
        CheckedTsql(search::SearchQuery(kServer, c)),
        kBase +
            u" and Code is Not Null and Notes like '%وام%' and LoanValue>=100 and LoanValue<=900 and TypeID=2 and EmployeeID=4 and (SupporterEmployeeID1=1 OR SupporterEmployeeID2=1 OR SupporterEmployeeID3=1 ) and FarsiPaymentDate>='1401/01/01'  and FarsiPaymentDate<='1401/12/29'   and FarsiBeginDate>='1401/02/01'  and FarsiBeginDate<='1401/02/31'  and FarsiEndDate>='1402/01/01'  and FarsiEndDate<='1402/12/29'  and MonthlyValue>=10 and MonthlyValue<=20.75"_s);

    // Single criteria with the inputs that need care; SQLite gets the same text.
    const std::pair<Set, QString> single[] = {
        {[](SearchCriteria&) {}, u""_s},
        {[](SearchCriteria& c) { c.finalSave = false; }, u" and Code is Null"_s},
        {[](SearchCriteria& c) { c.tempSave = c.finalSave = false; },
         u" and Code is Null and Code is Not Null"_s},
        {[](SearchCriteria& c) { c.notes = u"   "_s; }, u" and Notes like '%%'"_s},
        {[](SearchCriteria& c) { c.notes = u"  'ويژه' "_s; }, u" and Notes like '%''ويژه''%'"_s},
        {[](SearchCriteria& c) { c.loanValueFrom = u"1/000/000"_s; }, u" and LoanValue>=1000000"_s},
        {[](SearchCriteria& c) { c.loanValueTo = u"۲۵۰۰۰۰۰"_s; }, u" and LoanValue<=2500000"_s},
        {[](SearchCriteria& c) { c.perMonthFrom = u"12.50"_s; }, u" and MonthlyValue>=12.5"_s},
        {[](SearchCriteria& c) { c.perMonthTo = u"1,250,000"_s; }, u" and MonthlyValue<=1250000"_s},
    };
    for (const auto& [set, fragments] : single) {
        EXPECT_EQ(CheckedTsql(search::SearchQuery(kServer, criteria(set))), kBase + fragments);
        EXPECT_EQ(search::SearchQuery(kLite, criteria(set)), kBase + fragments);
    }
}

TEST(SearchQuery, AnAmountThatIsNoNumberStopsWithAClearMessage) {
    const std::pair<Set, QString> cases[] = {
        {[](SearchCriteria& c) { c.loanValueFrom = u"12a"_s; },
         u"مبلغ «12a» در «مبلغ از» عدد نيست."_s},
        {[](SearchCriteria& c) { c.loanValueTo = u" "_s; }, u"مبلغ « » در «مبلغ تا» عدد نيست."_s},
        {[](SearchCriteria& c) { c.perMonthFrom = u"."_s; },
         u"مبلغ «.» در «مبلغ ماهيانه از» عدد نيست."_s},
        {[](SearchCriteria& c) { c.perMonthTo = u"99999999999999999999"_s; },
         u"مبلغ «99999999999999999999» در «مبلغ ماهيانه تا» عدد نيست."_s},
    };
    for (const auto& [set, message] : cases) {
        QString raised;
        try {
            search::SearchQuery(kServer, criteria(set));
        } catch (const KavError& e) {
            raised = e.message();
        }
        EXPECT_EQ(raised, message);
    }
    EXPECT_EQ(search::AmountBound(u"۱۲٫۵"_s, u"x"_s), u"12.5"_s);  // the Persian decimal sign
}

TEST(SearchRules, SortCodesAlternatePerColumnGroup) {
    QList<int> numeric;
    for (int c = 0; c < search::SortSlots; ++c)
        if (search::IsNumericSortColumn(c)) numeric << c;
    EXPECT_EQ(numeric, (QList<int>{1, 4, 6, 9, 10, 11}));
    for (const int c : {1, 4, 6, 9, 10, 11, 0, 2, 3, 12, 16, 30}) {
        const int first = search::IsNumericSortColumn(c) ? 3 : 1;
        EXPECT_EQ((QList<int>{search::NextSortCode(c, 0), search::NextSortCode(c, first),
                              search::NextSortCode(c, first + 1)}),
                  (QList<int>{first, first + 1, first}))
            << c;
    }
    EXPECT_EQ(RaisedKind([] { search::NextSortCode(31, 0); }), KavError::Kind::Usage);
    EXPECT_EQ(RaisedKind([] { search::NextSortCode(-1, 0); }), KavError::Kind::Usage);
}
