#include <gtest/gtest.h>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "QtPrinters.h"
#include "controls/FlexGrid.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

// A grid of one column holding the texts as its data rows.
void fill(FlexGrid& grid, const QStringList& cells) {
    grid.setRows(1);
    grid.setCols(1);
    for (const QString& c : cells) grid.AddItem(c);
}

QStringList column(const FlexGrid& grid, int col = 0) {
    QStringList out;
    for (int r = 1; r < grid.Rows(); ++r) out << grid.TextMatrix(r, col);
    return out;
}

QStringList sorted(const QStringList& cells, int code) {
    FlexGrid grid;
    fill(grid, cells);
    grid.setCol(0);
    grid.Sort(code);
    return column(grid);
}

}  // namespace

TEST(FlexGrid, RowZeroIsTheHeader) {
    FlexGrid grid;
    grid.setCols(3);
    grid.setRows(1);
    EXPECT_EQ(grid.Rows(), 1);
    EXPECT_EQ(grid.view()->model()->rowCount(), 0);
    grid.setTextMatrix(0, 1, u"نام"_s);
    EXPECT_EQ(grid.view()->model()->headerData(1, Qt::Horizontal).toString(), u"نام"_s);

    grid.AddItem(u"1\tعلي\tx\textra"_s);  // texts beyond the last column are dropped
    EXPECT_EQ(grid.Rows(), 2);
    EXPECT_EQ(grid.view()->model()->rowCount(), 1);
    EXPECT_EQ(grid.view()->model()->index(0, 1).data().toString(), u"علي"_s);
    EXPECT_EQ(grid.TextMatrix(1, 2), u"x"_s);
    EXPECT_EQ(grid.Row(), 1);  // the first data row becomes current

    grid.Clear();  // every text, the header's too; the shape stays
    EXPECT_EQ(grid.TextMatrix(0, 1), QString());
    EXPECT_EQ(grid.TextMatrix(1, 1), QString());
    EXPECT_EQ(grid.Rows(), 2);
    EXPECT_EQ(grid.Cols(), 3);

    EXPECT_THROW(grid.TextMatrix(2, 0), kav::KavError);
    EXPECT_THROW(grid.setTextMatrix(0, 3, u"x"_s), kav::KavError);
    EXPECT_THROW(grid.setRow(2), kav::KavError);
}

TEST(FlexGrid, RowsShrinkAndGrow) {
    FlexGrid grid;
    grid.setCols(2);
    grid.setRows(5);
    for (int r = 1; r < 5; ++r) grid.setTextMatrix(r, 1, QString::number(r));
    grid.setRow(4);
    grid.setRows(3);
    EXPECT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.Row(), 2);  // the current row follows the last one
    EXPECT_EQ(column(grid, 1), (QStringList{u"1"_s, u"2"_s}));
    grid.setRows(4);
    EXPECT_EQ(column(grid, 1), (QStringList{u"1"_s, u"2"_s, QString()}));
    grid.AddItem(u"x\ty"_s);
    grid.AddItem();
    EXPECT_EQ(grid.Rows(), 6);
    grid.Refresh();
    EXPECT_EQ(grid.view()->model()->rowCount(), 5);
    EXPECT_EQ(grid.view()->model()->index(3, 1).data().toString(), u"y"_s);
    grid.setRows(0);  // never below the header
    EXPECT_EQ(grid.Rows(), 1);
    EXPECT_EQ(grid.Row(), 0);

    grid.setCols(4);
    grid.setRows(2);
    grid.setTextMatrix(1, 3, u"d"_s);
    grid.setCols(2);
    grid.setCols(4);
    EXPECT_EQ(grid.TextMatrix(1, 3), QString());
}

TEST(FlexGrid, FormatStringSetsColumnsHeadersAndAlignment) {
    FlexGrid grid;
    grid.setFormatString(u"رديف |^شماره رايانه اي کارمند |^کد   کارمند|^ کارمند   |>مبلغ|<kav1"_s);
    EXPECT_EQ(grid.Cols(), 6);
    EXPECT_EQ(grid.TextMatrix(0, 0), u"رديف "_s);
    EXPECT_EQ(grid.TextMatrix(0, 2), u"کد   کارمند"_s);
    EXPECT_EQ(grid.TextMatrix(0, 3), u" کارمند   "_s);
    EXPECT_EQ(grid.TextMatrix(0, 5), u"kav1"_s);
    EXPECT_EQ(grid.ColAlignment(0), FlexGrid::flexAlignGeneral);
    EXPECT_EQ(grid.ColAlignment(1), FlexGrid::flexAlignCenterCenter);
    EXPECT_EQ(grid.ColAlignment(4), FlexGrid::flexAlignRightCenter);
    EXPECT_EQ(grid.ColAlignment(5), FlexGrid::flexAlignLeftCenter);
    EXPECT_GT(grid.ColWidth(1), grid.ColWidth(5));
}

TEST(FlexGrid, ColumnWidthsInTwips) {
    FlexGrid grid;
    grid.setCols(3);
    grid.setColWidth(0, 1500);
    grid.setColWidth(1, 0);
    EXPECT_EQ(grid.ColWidth(0), 1500);
    EXPECT_EQ(grid.view()->columnWidth(0), 1500 * grid.logicalDpiX() / 1440);
    EXPECT_EQ(grid.ColWidth(1), 0);
    EXPECT_TRUE(grid.view()->isColumnHidden(1));
    grid.setColWidth(1, 2000);
    EXPECT_FALSE(grid.view()->isColumnHidden(1));
    EXPECT_EQ(grid.ColWidth(1), 2000);
}

TEST(FlexGrid, SortsByTheCurrentColumnWithEachCode) {
    const QStringList cells = {u"10"_s, u"b"_s, u"9"_s, u"A"_s, u"2.5"_s, u"a"_s, u""_s, u"B"_s};
    // Generic: numbers among themselves by value, everything else as text without case.
    EXPECT_EQ(sorted(cells, 1),
              (QStringList{u""_s, u"2.5"_s, u"9"_s, u"10"_s, u"A"_s, u"a"_s, u"b"_s, u"B"_s}));
    EXPECT_EQ(sorted(cells, 2),
              (QStringList{u"b"_s, u"B"_s, u"A"_s, u"a"_s, u"10"_s, u"9"_s, u"2.5"_s, u""_s}));
    // Numeric: texts read as 0, ties keep their order.
    EXPECT_EQ(sorted(cells, 3),
              (QStringList{u"b"_s, u"A"_s, u"a"_s, u""_s, u"B"_s, u"2.5"_s, u"9"_s, u"10"_s}));
    EXPECT_EQ(sorted(cells, 4),
              (QStringList{u"10"_s, u"9"_s, u"2.5"_s, u"b"_s, u"A"_s, u"a"_s, u""_s, u"B"_s}));
    // Text without case: "10" before "2.5" before "9".
    EXPECT_EQ(sorted(cells, 5),
              (QStringList{u""_s, u"10"_s, u"2.5"_s, u"9"_s, u"A"_s, u"a"_s, u"b"_s, u"B"_s}));
    EXPECT_EQ(sorted(cells, 6),
              (QStringList{u"b"_s, u"B"_s, u"A"_s, u"a"_s, u"9"_s, u"2.5"_s, u"10"_s, u""_s}));
    // Text with case: the same letter in both cases is no longer a tie.
    const QStringList letters = {u"b"_s, u"A"_s, u"a"_s, u"B"_s};
    const QStringList up = sorted(letters, 7), down = sorted(letters, 8);
    EXPECT_EQ(up, sorted(up, 7));
    EXPECT_EQ(QStringList(up.rbegin(), up.rend()), down);
    EXPECT_NE(up.indexOf(u"a"_s) < up.indexOf(u"A"_s), up.indexOf(u"b"_s) > up.indexOf(u"B"_s));
    // Persian collation: gaf before yeh although its code point is higher.
    EXPECT_EQ(sorted({u"ياسر"_s, u"گلي"_s, u"احمد"_s}, 5),
              (QStringList{u"احمد"_s, u"گلي"_s, u"ياسر"_s}));
    // Dates as texts keep date order.
    EXPECT_EQ(sorted({u"1403/10/01"_s, u"1403/02/15"_s, u"1402/12/29"_s}, 1),
              (QStringList{u"1402/12/29"_s, u"1403/02/15"_s, u"1403/10/01"_s}));
}

TEST(FlexGrid, SortMovesWholeRowsAndOnlyDataRows) {
    FlexGrid grid;
    grid.setFormatString(u"رديف |^نام"_s);
    grid.AddItem(u"1\tزهرا"_s);
    grid.AddItem(u"2\tالهام"_s);
    grid.AddItem(u"3\tبهار"_s);
    grid.setCol(1);
    grid.Sort(FlexGrid::flexSortGenericAscending);
    EXPECT_EQ(column(grid, 0), (QStringList{u"2"_s, u"3"_s, u"1"_s}));
    EXPECT_EQ(grid.TextMatrix(0, 1), u"نام"_s);
    EXPECT_EQ(grid.Col(), 1);
}

TEST(FlexGrid, SelectionAndCurrentCellShowInTheView) {
    FlexGrid grid;
    grid.setCols(5);
    grid.setRows(4);
    QSignalSpy moved(&grid, &FlexGrid::RowColChange);
    grid.setRow(2);
    grid.setCol(1);
    grid.setColSel(4);
    EXPECT_EQ(moved.count(), 2);
    EXPECT_EQ(grid.RowSel(), 2);
    EXPECT_EQ(grid.view()->currentIndex(), grid.view()->model()->index(1, 1));
    const QModelIndexList selected = grid.view()->selectionModel()->selectedIndexes();
    EXPECT_EQ(selected.size(), 4);
    for (const QModelIndex& i : selected) EXPECT_EQ(i.row(), 1);
}

TEST(FlexGrid, MouseAndKeysReachTheWindow) {
    QWidget window;
    auto* grid = new FlexGrid(&window);
    window.resize(400, 300);
    grid->resize(400, 300);
    grid->setFormatString(u"رديف |^نام|^كد"_s);
    grid->AddItem(u"1\tالف\t10"_s);
    grid->AddItem(u"2\tب\t20"_s);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    int clicks = 0, doubles = 0;
    QObject::connect(grid, &FlexGrid::Click, [&] { ++clicks; });
    QObject::connect(grid, &FlexGrid::DblClick, [&] { ++doubles; });
    QHeaderView* header = grid->view()->horizontalHeader();
    const int x = header->sectionViewportPosition(2) + header->sectionSize(2) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    EXPECT_EQ(grid->MouseRow(), 0);
    EXPECT_EQ(grid->MouseCol(), 2);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(grid->Row(), 1);  // a header click moves nothing

    const QRect cell = grid->view()->visualRect(grid->view()->model()->index(1, 1));
    QTest::mouseClick(grid->view()->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(grid->MouseRow(), 2);
    EXPECT_EQ(grid->Row(), 2);
    EXPECT_EQ(grid->Col(), 1);
    QTest::mouseDClick(grid->view()->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(doubles, 1);

    QList<int> downs, presses;
    QObject::connect(grid, &FlexGrid::KeyDown, [&](int& code, int shift) {
        downs << code << shift;
        if (code == 46) code = 0;
    });
    QObject::connect(grid, &FlexGrid::KeyPress, [&](int& ascii) { presses << ascii; });
    QTest::keyClick(grid->view(), Qt::Key_Delete);
    QTest::keyClick(grid->view(), Qt::Key_Return);
    QTest::keyClick(grid->view(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(downs, (QList<int>{46, 0, 13, 0, 16, 1, 38, 1}));  // Shift goes down first
    EXPECT_EQ(presses, (QList<int>{13}));
}

TEST(FlexGrid, TopRowScrolls) {
    FlexGrid grid;
    grid.resize(300, 200);
    grid.setCols(2);
    grid.setRows(500);
    grid.show();
    QTest::qWait(0);
    EXPECT_EQ(grid.TopRow(), 1);
    grid.setTopRow(100);
    EXPECT_EQ(grid.TopRow(), 100);
}

// Texts written as UTF-8 or as QString read back alike; a text shared with the cell above or
// on the left stays its own when either is written over, also after the grid has packed its
// texts anew (many overwrites), after a sort, and for texts too long to pack.
TEST(FlexGrid, CellsKeepTheirOwnTextsWhateverTheyShare) {
    FlexGrid grid;
    grid.setCols(3);
    grid.setRows(4);
    const QString longText = QString(5000, u'ک') + u"!"_s;
    grid.setTextMatrixUtf8(1, 0, "1403/02/01");
    grid.setTextMatrix(2, 0, u"1403/02/01"_s);  // shares the row above's
    grid.setTextMatrixUtf8(2, 1, QByteArrayView(u"1403/02/01"_s.toUtf8()));  // and its left's
    grid.setTextMatrixUtf8(3, 0, u"وام ضروري"_s.toUtf8());
    grid.setTextMatrix(3, 1, u"وام ضروري"_s);
    grid.setTextMatrix(3, 2, longText);
    grid.setTextMatrix(2, 0, u"x"_s);
    EXPECT_EQ(column(grid, 0), (QStringList{u"1403/02/01"_s, u"x"_s, u"وام ضروري"_s}));
    EXPECT_EQ(column(grid, 1), (QStringList{QString(), u"1403/02/01"_s, u"وام ضروري"_s}));
    grid.setTextMatrixUtf8(3, 0, {});
    EXPECT_EQ(grid.TextMatrix(3, 1), u"وام ضروري"_s);

    grid.setRows(6);
    grid.AddItem(u"cccc\tdddd\tdddd"_s);
    grid.AddItem(u"eeee\tdddd\tffff"_s);
    const QStringList packedRows = {u"cccc"_s, u"dddd"_s, u"dddd"_s,
                                    u"eeee"_s, u"dddd"_s, u"ffff"_s};
    // Enough overwrites to make the grid pack its texts again.
    for (int round = 0; round < 3; ++round)
        for (int i = 0; i < 3000; ++i)
            grid.setTextMatrix(2, 2, QString(200, QChar(u'a' + (i + round) % 26)));
    EXPECT_EQ(grid.TextMatrix(2, 2), QString(200, QChar(u'a' + 2999 % 26 + 2)));
    QStringList packed;
    for (int r = 6; r <= 7; ++r)
        for (int c = 0; c < 3; ++c) packed << grid.TextMatrix(r, c);
    EXPECT_EQ(packed, packedRows);
    grid.setRows(4);
    EXPECT_EQ(column(grid, 0), (QStringList{u"1403/02/01"_s, u"x"_s, QString()}));
    EXPECT_EQ(column(grid, 1), (QStringList{QString(), u"1403/02/01"_s, u"وام ضروري"_s}));
    EXPECT_EQ(grid.TextMatrix(3, 2), longText);

    grid.setCol(0);
    grid.Sort(FlexGrid::flexSortGenericDescending);
    EXPECT_EQ(column(grid, 0), (QStringList{u"x"_s, u"1403/02/01"_s, QString()}));
    EXPECT_EQ(column(grid, 1), (QStringList{u"1403/02/01"_s, QString(), u"وام ضروري"_s}));
    EXPECT_EQ(grid.TextMatrix(3, 2), longText);
    EXPECT_EQ(grid.view()->model()->index(2, 2).data().toString(), longText);
}
