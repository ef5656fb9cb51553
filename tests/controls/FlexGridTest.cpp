#include <gtest/gtest.h>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "ControlWindow.h"
#include "base/Errors.h"
#include "controls/FlexGrid.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

// The data rows (or from the header on), each as its cells joined by '|'.
QStringList rows(const FlexGrid& grid, int from = 1) {
    QStringList out;
    for (int r = from; r < grid.Rows(); ++r) {
        QStringList cells;
        for (int c = 0; c < grid.Cols(); ++c) cells << grid.TextMatrix(r, c);
        out << cells.join(u'|');
    }
    return out;
}

// The texts as the data rows of a one-column grid, sorted with the code, joined by ','.
QString sorted(const QString& cells, int code) {
    FlexGrid grid;
    grid.setCols(1);
    for (const QString& c : cells.split(u',')) grid.AddItem(c);
    grid.setCol(0);
    grid.Sort(code);
    return rows(grid).join(u',');
}

}  // namespace

// Rows shrink and grow, never below the header; the current row follows.
TEST(FlexGrid, RowZeroIsTheHeaderAndTheShapeChanges) {
    FlexGrid grid;
    grid.setCols(3);
    grid.setRows(1);
    const QAbstractItemModel* model = grid.view()->model();
    EXPECT_EQ(model->rowCount(), 0);
    grid.setTextMatrix(0, 1, u"نام"_s);
    grid.AddItem(u"1\tعلي\tx\textra"_s);  // texts beyond the last column are dropped
    EXPECT_EQ(rows(grid, 0), (QStringList{u"|نام|"_s, u"1|علي|x"_s}));
    EXPECT_EQ(
        model->headerData(1, Qt::Horizontal).toString() + model->index(0, 1).data().toString(),
        u"نامعلي"_s);
    EXPECT_EQ(grid.Row(), 1);  // the first data row becomes current
    grid.Clear();              // every text, the header's too; the shape stays
    EXPECT_EQ(rows(grid, 0), (QStringList{u"||"_s, u"||"_s}));
    EXPECT_THROW(grid.TextMatrix(2, 0), kav::KavError);
    EXPECT_THROW(grid.setTextMatrix(0, 3, u"x"_s), kav::KavError);
    EXPECT_THROW(grid.setRow(2), kav::KavError);
    grid.setRows(5);
    for (int r = 1; r < 5; ++r) grid.setTextMatrix(r, 1, QString::number(r));
    grid.setRow(4);
    grid.setRows(3);
    EXPECT_EQ(grid.Row(), 2);  // the current row follows the last one
    grid.setRows(4);
    grid.AddItem(u"x\ty"_s);
    grid.AddItem();
    EXPECT_EQ(rows(grid), (QStringList{u"|1|"_s, u"|2|"_s, u"||"_s, u"x|y|"_s, u"||"_s}));
    grid.setRows(0);  // never below the header
    EXPECT_EQ(QList<int>({grid.Rows(), grid.Row()}), QList<int>({1, 0}));
    grid.setRows(2);
    grid.setTextMatrix(1, 2, u"d"_s);
    grid.setCols(2);
    grid.setCols(3);
    EXPECT_EQ(rows(grid), QStringList{u"||"_s});  // a dropped column loses its texts
}

TEST(FlexGrid, FormatStringAndColumnWidthsInTwips) {
    FlexGrid grid;
    grid.setFormatString(u"رديف |^شماره رايانه اي کارمند |^کد   کارمند|^ کارمند   |>مبلغ|<kav1"_s);
    EXPECT_EQ(rows(grid, 0),
              QStringList{u"رديف |شماره رايانه اي کارمند |کد   کارمند| کارمند   |مبلغ|kav1"_s});
    QList<int> alignments;  // general, centre, centre, centre, right, left
    for (int c = 0; c < 6; ++c) alignments << grid.ColAlignment(c);
    EXPECT_EQ(alignments, (QList<int>{9, 4, 4, 4, 7, 1}));
    EXPECT_GT(grid.ColWidth(1), grid.ColWidth(5));
    grid.setColWidth(0, 1500);
    grid.setColWidth(1, 0);
    EXPECT_EQ(grid.view()->columnWidth(0), 1500 * grid.logicalDpiX() / 1440);
    EXPECT_TRUE(grid.view()->isColumnHidden(1));
    grid.setColWidth(1, 2000);
    EXPECT_FALSE(grid.view()->isColumnHidden(1));
    EXPECT_EQ(grid.ColWidth(1), 2000);
}

TEST(FlexGrid, SortsByTheCurrentColumnWithEachCode) {
    // Generic: numbers among themselves by value, everything else as text without case;
    // numeric: texts read as 0, ties keep their order; text without case: "10" before "2.5".
    const QString cells = u"10,b,9,A,2.5,a,,B"_s;
    const QString expected[] = {u",2.5,9,10,A,a,b,B"_s, u"b,B,A,a,10,9,2.5,"_s,
                                u"b,A,a,,B,2.5,9,10"_s, u"10,9,2.5,b,A,a,,B"_s,
                                u",10,2.5,9,A,a,b,B"_s, u"b,B,A,a,9,2.5,10,"_s};
    for (int code = 1; code <= 6; ++code)
        EXPECT_EQ(sorted(cells, code), expected[code - 1]) << code;
    // Text with case: the same letter in both cases is no longer a tie.
    EXPECT_EQ(sorted(u"b,A,a,B"_s, 7), u"a,A,b,B"_s);
    EXPECT_EQ(sorted(u"b,A,a,B"_s, 8), u"B,b,A,a"_s);
    // Persian collation: gaf before yeh although its code point is higher.
    EXPECT_EQ(sorted(u"ياسر,گلي,احمد"_s, 5), u"احمد,گلي,ياسر"_s);
    // Whole rows move, and only the data rows.
    FlexGrid grid;
    grid.setFormatString(u"رديف |^نام"_s);
    for (const QString& row : {u"1\tزهرا"_s, u"2\tالهام"_s, u"3\tبهار"_s}) grid.AddItem(row);
    grid.setCol(1);
    grid.Sort(FlexGrid::flexSortGenericAscending);
    EXPECT_EQ(rows(grid), (QStringList{u"2|الهام"_s, u"3|بهار"_s, u"1|زهرا"_s}));
    EXPECT_EQ(grid.TextMatrix(0, 1), u"نام"_s);
    EXPECT_EQ(grid.Col(), 1);
}

TEST(FlexGrid, SelectionCurrentCellAndTopRowShowInTheView) {
    FlexGrid grid;
    grid.resize(300, 200);
    grid.setCols(5);
    grid.setRows(500);
    QSignalSpy moved(&grid, &FlexGrid::RowColChange);
    grid.setRow(2);
    grid.setCol(1);
    grid.setColSel(4);
    EXPECT_EQ(moved.count(), 2);
    EXPECT_EQ(grid.RowSel(), 2);
    EXPECT_EQ(grid.view()->currentIndex(), grid.view()->model()->index(1, 1));
    grid.show();
    QTest::qWait(0);
    EXPECT_EQ(grid.TopRow(), 1);
    grid.setTopRow(100);
    EXPECT_EQ(grid.TopRow(), 100);
}

TEST(FlexGrid, MouseAndKeysReachTheWindow) {
    kav::test::Shown<FlexGrid> w;
    FlexGrid* grid = w.control;
    grid->setFormatString(u"رديف |^نام|^كد"_s);
    grid->AddItem(u"1\tالف\t10"_s);
    grid->AddItem(u"2\tب\t20"_s);
    w.window.resize(400, 300);
    QTest::qWait(0);
    // Each click as "mouse row,col current row,col"; a header click moves nothing.
    QStringList events;
    QObject::connect(grid, &FlexGrid::Click, [&] {
        events << u"%1,%2 %3,%4"_s.arg(grid->MouseRow())
                      .arg(grid->MouseCol())
                      .arg(grid->Row())
                      .arg(grid->Col());
    });
    QObject::connect(grid, &FlexGrid::DblClick, [&] { events << u"double"_s; });
    QHeaderView* header = grid->view()->horizontalHeader();
    const int x = header->sectionViewportPosition(2) + header->sectionSize(2) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    const QRect cell = grid->view()->visualRect(grid->view()->model()->index(1, 1));
    QTest::mouseClick(grid->view()->viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid->view()->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(events, (QStringList{u"0,2 1,0"_s, u"2,1 2,1"_s, u"double"_s}));
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

// A text shared with the cell above or on the left stays its own when either is written over,
// also after the grid packs its texts anew, after a sort, and when too long to pack.
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
    grid.setTextMatrixUtf8(3, 0, {});
    const QStringList written = {u"1403/02/01||"_s, u"x|1403/02/01|"_s,
                                 u"|وام ضروري|"_s + longText};
    EXPECT_EQ(rows(grid), written);
    grid.setRows(6);
    grid.AddItem(u"cccc\tdddd\tdddd"_s);
    grid.AddItem(u"eeee\tdddd\tffff"_s);
    for (int i = 0; i < 9000; ++i)  // enough overwrites to make the grid pack its texts again
        grid.setTextMatrix(4, 2, QString(200, QChar(u'a' + i % 26)));
    const QStringList added = {u"||"_s + QString(200, u'd'), u"||"_s, u"cccc|dddd|dddd"_s,
                               u"eeee|dddd|ffff"_s};
    EXPECT_EQ(rows(grid), written + added);
    grid.setRows(4);
    grid.setCol(0);
    grid.Sort(FlexGrid::flexSortGenericDescending);
    EXPECT_EQ(rows(grid),
              (QStringList{u"x|1403/02/01|"_s, u"1403/02/01||"_s, u"|وام ضروري|"_s + longText}));
    EXPECT_EQ(grid.view()->model()->index(2, 2).data().toString(), longText);
}
