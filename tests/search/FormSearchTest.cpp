// The search window: what it shows, how it fills and sorts its grid, how it opens a loan in
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

#include "SearchFixture.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "data/ConnectionString.h"
#include "search/SearchGrid.h"
#include "search/SearchOpener.h"
#include "search/SearchSql.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using controls::FlexGrid;

namespace {

const QStringList kHeaders = {u"رديف"_s,         u"کد پرسنلي"_s,      u"نام"_s,
                              u"نام خانوادگي"_s, u"نوع وام"_s,        u"تاريخ دريافت وام"_s,
                              u"مبلغ وام"_s,     u"تاريخ شروع"_s,     u"تاريخ پايان"_s,
                              u"مبلغ قسط"_s,     u"مانده اول ماه"_s,  u"مانده آخر ماه"_s,
                              u"وضعيت وام"_s,    u"ضامن 1"_s,         u"ضامن 2"_s,
                              u"ضامن 3"_s,       u"شماره رايانه اي"_s};

// The unsorted result of a search without criteria, in the view's order.
const QList<QStringList> kAllRows = {
    {u"1"_s, u"1001"_s, u"علي"_s, u"رضايي"_s, u"قرض الحسنه"_s, u"1402/01/15"_s, u"12/500/000"_s,
     u"1402/02/31"_s, u"1402/12/29"_s, u"1/041/666"_s, u"12/500/000"_s, u"12/500/000"_s,
     u"ثبت موقت"_s, u"مريم احمدي"_s, u"حسن کريمي"_s, u""_s, u"1"_s},
    {u"2"_s, u"1004"_s, u"زهرا"_s, u"موسوي"_s, u"قرض الحسنه"_s, u"1402/01/15"_s, u"12/500/000"_s,
     u"1402/02/31"_s, u"1402/12/29"_s, u"1/041/666"_s, u"12/500/000"_s, u"12/500/000"_s,
     u"ثبت موقت"_s, u""_s, u""_s, u""_s, u"1"_s},
    {u"3"_s, u"1002"_s, u"مريم"_s, u"احمدي"_s, u"ضروري"_s, u"1403/05/01"_s, u"900/000"_s,
     u"1403/06/31"_s, u"1404/05/31"_s, u""_s, u"900/000"_s, u"900/000"_s, u"ثبت قطعي"_s,
     u"علي رضايي"_s, u""_s, u""_s, u"2"_s},
    {u"4"_s, u"1003"_s, u"حسن"_s, u"کريمي"_s, u"قرض الحسنه"_s, u"1401/10/10"_s, u"50/000/000"_s,
     u"1401/10/30"_s, u"1402/09/30"_s, u"5/000/000"_s, u"50/000/000"_s, u"50/000/000"_s,
     u"ثبت قطعي"_s, u""_s, u""_s, u"رضا نوري"_s, u"3"_s},
    {u"5"_s, u""_s, u""_s, u""_s, u"مسکن"_s, u"1403/01/01"_s, u"3000"_s, u"1403/01/31"_s,
     u"1403/12/30"_s, u"250"_s, u"3000"_s, u"3000"_s, u"ثبت موقت"_s, u""_s, u""_s, u""_s,
     u"40000"_s},
};

QString rowIds(const QList<QStringList>& rows) {
    QStringList ids;
    for (const QStringList& r : rows) ids << r[0];
    return ids.join(u' ');
}

}  // namespace

TEST_F(SearchTest, LoadsCaptionTypesAndAnEmptyGrid) {
    FormSearch& f = form();
    EXPECT_EQ(f.windowTitle(), u"جستجوي وام کارمندان"_s);
    EXPECT_TRUE(f.chkTempSave->isChecked());
    EXPECT_TRUE(f.chkFinalSave->isChecked());
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
    form().cmdSearch->click();
    EXPECT_EQ(gridRows(), kAllRows);
    EXPECT_EQ(form().lblStatus->text(), u"5 رکورد يافت شد."_s);
    EXPECT_TRUE(form().cmdExport->isEnabled());
    EXPECT_EQ(form().Flexsearchresult->Col(), 1);
    EXPECT_EQ(form().Flexsearchresult->ColSel(), 16);
    EXPECT_TRUE(t.messages->shown.isEmpty());

    // Criteria narrow the next search; the grid shows only its rows, from the first.
    form().Flexsearchresult->setRow(5);
    form().chkTempSave->setChecked(false);
    form().cmdSearch->click();
    EXPECT_EQ(column(16), (QStringList{u"2"_s, u"3"_s}));
    EXPECT_EQ(column(0), (QStringList{u"1"_s, u"2"_s}));
    EXPECT_EQ(form().Flexsearchresult->Row(), 1);
}

TEST_F(SearchTest, NothingFoundSaysSoAndEmptiesTheGrid) {
    form().cmdSearch->click();
    form().chkTempSave->setChecked(false);
    form().chkFinalSave->setChecked(false);
    form().cmdSearch->click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"اطلاع"_s);
    EXPECT_EQ(t.messages->last().text, u"رکوردي يافت نشد."_s);
    EXPECT_EQ(form().Flexsearchresult->Rows(), 1);
    EXPECT_FALSE(form().cmdExport->isEnabled());
}

TEST_F(SearchTest, AnAmountThatIsNoNumberRunsNothing) {
    form().cmdSearch->click();
    form().TxtPerMonthTo->setText(u"۱۲x"_s);
    form().cmdSearch->click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_TRUE(t.messages->last().text.contains(u"مبلغ ماهيانه تا"_s));
    EXPECT_EQ(gridRows(), kAllRows);  // the last result stays
}

TEST_F(SearchTest, GridTakesTheFocusUnlessTheAdjustmentListHoldsResults) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    for (const qint16 started : {0, 1, 2}) {
        t.module.session.LoanEditStarted = started;
        f.txtNotes->setFocus();
        f.cmdSearch->click();
        EXPECT_EQ(f.Flexsearchresult->view()->hasFocus(), started != 2) << started;
    }
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

TEST_F(SearchTest, SortsTextAndNumberColumnsBothWays) {
    FormSearch& f = form();
    f.cmdSearch->click();
    f.DoSort(3);  // surnames, as text
    EXPECT_EQ(rowIds(gridRows()), u"5 3 1 4 2"_s);
    f.cmdSearch->click();  // the remembered orders outlive a new search
    f.DoSort(3);
    EXPECT_EQ(rowIds(gridRows()), u"2 4 1 3 5"_s);
    f.DoSort(6);  // the amount, as a number with its "/" removed
    EXPECT_EQ(column(6),
              (QStringList{u"3000"_s, u"900000"_s, u"12500000"_s, u"12500000"_s, u"50000000"_s}));
    f.DoSort(6);
    EXPECT_EQ(column(6).first(), u"50000000"_s);
    EXPECT_EQ(column(10).first(), u"50/000/000"_s);  // other columns keep their "/"
    // The type's name sorts as a number: every name reads as 0, so the order stays.
    const QString before = rowIds(gridRows());
    f.DoSort(4);
    EXPECT_EQ(rowIds(gridRows()), before);
    EXPECT_EQ(RaisedKind([&] { f.DoSort(31); }), KavError::Kind::Usage);
    EXPECT_EQ(RaisedKind([&] { f.DoSort(20); }), KavError::Kind::Usage);  // beyond the grid
}

TEST_F(SearchTest, HeaderClickSortsAndItsDoubleClickOpensNothing) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    QHeaderView* header = f.Flexsearchresult->view()->horizontalHeader();
    auto at = [&](int col) {
        return QPoint(header->sectionViewportPosition(col) + header->sectionSize(col) / 2,
                      header->height() / 2);
    };
    ASSERT_EQ(header->logicalIndexAt(at(3)), 3);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at(3));  // empty grid: no sort
    f.cmdSearch->click();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at(3));
    EXPECT_EQ(rowIds(gridRows()), u"5 3 1 4 2"_s);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, at(2));
    EXPECT_TRUE(editor().opened.isEmpty());
    EXPECT_TRUE(f.isVisible());
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
    EXPECT_EQ(gridRows().size(), 5);  // Enter in the grid never searches again
}

TEST_F(SearchTest, AnIdThatIsNoLoanIdGivesAMessage) {
    FormSearch& f = form();
    f.cmdSearch->click();
    f.show();
    for (const QString& bad : {u"x12"_s, u"4294967296"_s}) {
        f.Flexsearchresult->setTextMatrix(1, 16, bad);
        f.Flexsearchresult->setRow(1);
        int enter = 13;
        emit f.Flexsearchresult->KeyPress(enter);
        EXPECT_EQ(t.messages->last().title, u"خطا"_s);
        EXPECT_TRUE(t.messages->last().text.contains(bad));
    }
    EXPECT_TRUE(editor().opened.isEmpty());
    EXPECT_TRUE(f.isVisible());
}

TEST_F(SearchTest, KeysOfTheCriteria) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    // The amount boxes take digits (Persian ones too), the point and backspace.
    f.txtLoanValueF->setFocus();
    for (const QString& key : {u"1"_s, u"a"_s, u"۲"_s, u"-"_s, u"."_s, u"5"_s, u"/"_s})
        QTest::sendKeyEvent(QTest::Click, f.txtLoanValueF, Qt::Key_unknown, key, Qt::NoModifier);
    QTest::keyClick(f.txtLoanValueF, Qt::Key_Backspace);
    EXPECT_EQ(f.txtLoanValueF->text(), u"1۲."_s);

    // Delete on the type empties it.
    f.cmbLoanType->setCurrentIndex(1);
    f.cmbLoanType->setFocus();
    QTest::keyClick(f.cmbLoanType, Qt::Key_Delete);
    EXPECT_EQ(f.cmbLoanType->currentIndex(), -1);

    // Enter in the criteria searches.
    f.txtLoanValueF->clear();
    f.txtNotes->setFocus();
    QTest::keyClick(f.txtNotes, Qt::Key_Return);
    EXPECT_EQ(gridRows().size(), 5);

    // Escape exits only while the exit button is enabled.
    f.cmdExit->setEnabled(false);
    QTest::keyClick(f.txtNotes, Qt::Key_Escape);
    EXPECT_TRUE(f.isVisible());
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
    const QStringList lines = QString::fromUtf8(bytes.mid(3)).split(u"\r\n"_s);
    ASSERT_EQ(lines.size(), 7);  // header, five rows, the empty rest after the last CR LF
    EXPECT_EQ(lines[0], kHeaders.mid(0, 16).join(u','));
    EXPECT_EQ(
        lines[1],
        u"2,1004,زهرا,موسوي,قرض الحسنه,1402/01/15,12500000,1402/02/31,1402/12/29,1041666,12500000,12500000,ثبت موقت,,,"_s);
    EXPECT_EQ(lines[5],
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
    for (int r = 1; r < grid.Rows(); ++r)
        for (int c = 0; c < 17; ++c) EXPECT_EQ(grid.TextMatrix(r, c), kAllRows[r - 1][c]) << r << c;
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

TEST_F(SearchTest, ADatabaseErrorLeavesAnEmptyGrid) {
    form().cmdSearch->click();
    t.db.exec(u"drop view vwHRLoanData"_s);
    form().cmdSearch->click();
    ASSERT_EQ(t.messages->shown.size(), 1);
    EXPECT_EQ(t.messages->last().title, u"خطا"_s);
    EXPECT_EQ(form().Flexsearchresult->Rows(), 1);
    EXPECT_TRUE(form().lblStatus->text().isEmpty());
    EXPECT_FALSE(form().cmdExport->isEnabled());
}
